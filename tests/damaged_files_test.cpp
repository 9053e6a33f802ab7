// Damaged files the fuzzers made, each once a crash, a hang or undefined behaviour: now a clear
// error, and nothing the player had is lost.
#include <gtest/gtest.h>

#include <cstdio>
#include <filesystem>

#include "media/animation.h"
#include "menus/settings_files.h"
#include "player/save.h"
#include "support/fixture.h"
#include "world/tiled.h"

namespace {

std::string MapWith(const std::string& width, const std::string& data) {
    return R"({"width":)" + width + R"(,"height":1,"tilewidth":32,"tileheight":32,"layers":[)" +
           R"({"type":"tilelayer","name":"Ground","width":2,"height":1,"data":)" + data + "}]}";
}

}  // namespace

TEST(DamagedMap, NumbersThatDoNotFitAreRefusedNamingTheFileAndWhy) {
    struct Case {
        std::string map, reason;
    };
    const Case cases[] = {
        {MapWith("1e300", "[1,2]"), "\"width\" is out of range"},
        {MapWith("true", "[1,2]"), "\"width\" is not a number"},
        {MapWith("2", "[1,-1]"), "\"data\" is out of range"},
        // A flipped tile carries its flags in the high bits.
        {MapWith("2", "[1,2147483649]"), "flipped tiles"},
        {MapWith("2", "[1,4194304]"), "flipped tiles"},
        {MapWith("-2", "[1,2]"), "\"width\" is negative"},
        // Minus one by minus one cells would pass for one cell once multiplied.
        {R"({"width":1,"height":1,"tilewidth":32,"tileheight":32,"layers":[{"type":"tilelayer",)"
         R"("name":"Ground","width":-1,"height":-1,"data":[5]}]})",
         "\"width\" is negative"},
    };
    for (const Case& c : cases) {
        TiledMap map;
        std::string error;
        EXPECT_FALSE(ParseTiledMap(c.map, "Room5.json", map, error)) << c.map;
        EXPECT_NE(error.find("Room5.json"), std::string::npos) << error;
        EXPECT_NE(error.find(c.reason), std::string::npos) << error;
        EXPECT_TRUE(map.layers.empty());
    }
    TiledMap map;
    std::string error;
    EXPECT_TRUE(ParseTiledMap(MapWith("2", "[1,1048576]"), "Room5.json", map, error)) << error;
}

TEST(DamagedMap, APropertyTooLargeForANumberReadsAsNone) {
    TiledProperty huge{"id", "int", "", 1e300}, negative{"id", "float", "", -3e9},
        fine{"id", "float", "", -7.5};
    EXPECT_EQ(PropertyInt(&huge), 0);
    EXPECT_EQ(PropertyInt(&negative), 0);
    EXPECT_EQ(PropertyInt(&fine), -7);
}

TEST(DamagedAnimationData, ValuesBeyondAnySheetReadAsZeroAndAreReported) {
    std::FILE* file = std::tmpfile();
    std::fputs(
        "size : (2147483647,64)\nfirst Frame Position : (0,-16)\n"
        "IDLE | NbFrame : 6 / FrameRate : 4294967295\n"
        "WALK | NbFrame : 8 / FrameRate : 12\n",
        file);
    std::rewind(file);
    testing::internal::CaptureStderr();
    sf::Vector2i size, first;
    EXPECT_FALSE(ReadAnimSize(file, size));
    EXPECT_FALSE(ReadAnimFirstFrame(file, first));
    Animation idle, walk;
    ReadAnimClip(file, "IDLE", idle, size, first, 0);
    ReadAnimClip(file, "WALK", walk, size, first, 1);
    std::fclose(file);
    std::string errors = testing::internal::GetCapturedStderr();
    EXPECT_EQ(size, sf::Vector2i(0, 0));
    EXPECT_EQ(first, sf::Vector2i(0, 0));
    // A rate past what any screen shows once made a single update spin for ever.
    EXPECT_EQ(idle.frameCount, 0u);
    EXPECT_EQ(idle.frameRate, 0u);
    EXPECT_EQ(walk.frameCount, 8u);  // the next line reads as usual
    EXPECT_NE(errors.find("(2147483647,64) is out of range"), std::string::npos) << errors;
    EXPECT_NE(errors.find("IDLE has 6 frames at 4294967295 per second"), std::string::npos)
        << errors;
}

TEST(DamagedAnimationData, FarFramesWrapWithoutOverflowOrSpinning) {
    sf::Sprite sprite;
    Animation clip;
    clip.sprite = &sprite;
    clip.sheetSize = {1, 1};
    clip.frameCount = 4096;
    clip.frameRate = 240;
    clip.frameRect = {16384, 16384, 16384, 16384};
    clip.currentFrame = 4094;
    UpdateAnimation(clip, 0.001f);  // once 67 million rows walked one by one into an overflow
    EXPECT_EQ(sprite.getTextureRect().width, 16384);
    // A row of the sheet as the game lays it: the 26th frame of 10 px on a 100 px sheet.
    clip.sheetSize = {100, 100};
    clip.frameRect = {0, 0, 10, 10};
    clip.currentFrame = 24;
    clip.timer = 0;
    clip.frameRate = 10;
    UpdateAnimation(clip, 0.11f);
    EXPECT_EQ(sprite.getTextureRect(), sf::IntRect(50, 20, 10, 10));
}

using DamagedSettings = SandboxTest;

TEST_F(DamagedSettings, AVolumeOrKeyOutOfRangeKeepsItsOldValue) {
    WriteFile(kSoundSettingsPath, "MASTER VOLUME 4000\nMUSIC -3\nSOUNDS 100\n");
    WriteFile(kBindingSettingsPath, "LEFT : 101\nRIGHT : -1\n");
    Settings() = SettingsValues{{40, 50, 60}, {1, 2, 3, 4, 5, 6, 7, 8, 9}};
    ReadSoundSettings();
    ReadBindingSettings();
    EXPECT_EQ(Settings().volumes[SOUND_MASTER], 40);  // not forty times too loud
    EXPECT_EQ(Settings().volumes[SOUND_MUSIC], 50);
    EXPECT_EQ(Settings().volumes[SOUND_EFFECTS], 100);
    EXPECT_EQ(Settings().bindings[BINDING_LEFT], 1);
    EXPECT_EQ(Settings().bindings[BINDING_RIGHT], -1);  // no key at all is a choice
}

using DamagedSave = SandboxTest;

TEST_F(DamagedSave, IsKeptAsideWhenANewGameReplacesIt) {
    const std::string damaged =
        "////////////////////\nCHECKPOINT DATA :\ncheckpointID 2\nroomID 4\n////";
    WriteFile(kSavePath, damaged);
    testing::internal::CaptureStderr();
    LoadSave();
    std::string errors = testing::internal::GetCapturedStderr();
    EXPECT_EQ(Save().roomID, 1);
    EXPECT_EQ(ReadFile(kDamagedSavePath), damaged);
    EXPECT_NE(errors.find("is damaged: a new game starts"), std::string::npos) << errors;
    // A readable save leaves nothing aside.
    std::filesystem::remove(kDamagedSavePath);
    LoadSave();
    EXPECT_FALSE(std::filesystem::exists(kDamagedSavePath));
}

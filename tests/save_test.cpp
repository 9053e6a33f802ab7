// The save file: a new game, damaged files, and the three writers.
#include "player/save.h"

#include <gtest/gtest.h>

#include <filesystem>

#include "common/file_write.h"
#include "support/fixture.h"

namespace {

const char* const kNewGame =
    "////////////////////\nCHECKPOINT DATA :\ncheckpointID 0\nroomID 1\n"
    "////////////////////\nABILITIES DATA :\ncanDash 0\ncanRun 0\nCanCreatePlatform 0\n"
    "potionCount 1\n";

using SaveFile = SandboxTest;

}  // namespace

TEST_F(SaveFile, AMissingFileStartsANewGameAndIsWritten) {
    std::filesystem::remove(kSavePath);
    LoadSave();
    EXPECT_EQ(Save().checkpointID, 0);
    EXPECT_EQ(Save().roomID, 1);
    EXPECT_EQ(Save().abilities.potionCount, 1);
    EXPECT_EQ(ReadFile(kSavePath), kNewGame);
}

TEST_F(SaveFile, ACompleteFileIsReadAsItIs) {
    WriteFile(kSavePath,
              "////////////////////\nCHECKPOINT DATA :\ncheckpointID 2\nroomID 13\n"
              "////////////////////\nABILITIES DATA :\ncanDash 1\ncanRun 1\n"
              "CanCreatePlatform 0\npotionCount 4\n");
    LoadSave();
    EXPECT_EQ(Save().checkpointID, 2);
    EXPECT_EQ(Save().roomID, 13);
    EXPECT_EQ(Save().abilities.canRun, 1);
    EXPECT_EQ(Save().abilities.potionCount, 4);
}

TEST_F(SaveFile, AMissingAbilitySectionOrAMinusOneLosesEverything) {
    WriteFile(kSavePath, "////////////////////\nCHECKPOINT DATA :\ncheckpointID 1\nroomID 4\n");
    LoadSave();
    EXPECT_EQ(Save().roomID, 1);
    EXPECT_EQ(ReadFile(kSavePath), kNewGame);

    std::string minusOne = kNewGame;
    minusOne.replace(minusOne.find("roomID 1"), 8, "roomID -1");
    WriteFile(kSavePath, minusOne);
    LoadSave();
    EXPECT_EQ(ReadFile(kSavePath), kNewGame);
}

TEST_F(SaveFile, RestingKeepsTheAbilitiesAndBuyingRaisesOnlyTheSavedCount) {
    LoadSave();
    Abilities abilities = Save().abilities;
    abilities.canDash = 1;
    SaveAbilities(abilities);
    WriteCheckpointSave(0, 4);
    LoadSave();
    EXPECT_EQ(Save().roomID, 4);
    EXPECT_EQ(Save().abilities.canDash, 1);
    EXPECT_NE(ReadFile(kSavePath).find("canDash 1\ncanRun 0\n"), std::string::npos);
}

TEST_F(SaveFile, AnUnwritableSaveKeepsTheNewValuesInMemory) {
    LoadSave();
    std::filesystem::remove(kSavePath);
    std::filesystem::create_directory(kSavePath);
    testing::internal::CaptureStderr();
    WriteCheckpointSave(3, 16);
    EXPECT_EQ(testing::internal::GetCapturedStderr(), "Open file error !\n");
    EXPECT_EQ(Save().roomID, 16);
    testing::internal::CaptureStderr();
    WriteNewGameSave();
    EXPECT_EQ(testing::internal::GetCapturedStderr(), "Open file error!\n");
    EXPECT_EQ(Save().roomID, 16);  // a new game that cannot be written changes nothing
}

TEST_F(SaveFile, AFileIsReplacedWholeOrNotAtAll) {
    namespace fs = std::filesystem;
    fs::create_directories("Assets/Saves/Busy");
    WriteFile("Assets/Saves/Old.txt", "old text\n");
    const struct {
        const char* path;
        bool written;
    } cases[] = {
        {"Assets/Saves/New.txt", true},
        {"Assets/Saves/Old.txt", true},
        {"Assets/Saves/Busy", false},       // a folder stands where the file would go
        {"Assets/Nowhere/New.txt", false},  // the folder is missing
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.path);
        EXPECT_EQ(WriteFileSafely(c.path, "new text\n"), c.written);
        EXPECT_FALSE(fs::exists(std::string(c.path) + ".tmp"));
        if (c.written) {
            EXPECT_EQ(ReadFile(c.path), "new text\n");
        }
    }
    EXPECT_TRUE(fs::is_directory("Assets/Saves/Busy"));
}

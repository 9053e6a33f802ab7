// The generated content as the game reads it: every animation sheet against its data file, every
// sound against the format its place asks for, every room map against the level rules. Files are
// found by walking Assets/, so new sheets, sounds and rooms are covered as they come.
#include <gtest/gtest.h>

#include <filesystem>
#include <functional>
#include <iostream>
#include <map>
#include <regex>
#include <set>
#include <tuple>

#include "support/content_check.h"
#include "support/hero_fixture.h"
#include "support/level_check.h"
#include "world/room.h"

namespace fs = std::filesystem;

namespace {

const fs::path kAssets = fs::path(OV_SOURCE_DIR) / "Assets";

std::vector<fs::path> AssetFiles(const std::function<bool(const std::string&)>& wanted) {
    std::vector<fs::path> files;
    for (const fs::directory_entry& entry : fs::recursive_directory_iterator(kAssets)) {
        if (entry.is_regular_file() && wanted(entry.path().filename().string()))
            files.push_back(entry.path());
    }
    std::sort(files.begin(), files.end());
    return files;
}

bool EndsWith(const std::string& text, const std::string& end) {
    return text.size() >= end.size() &&
           text.compare(text.size() - end.size(), end.size(), end) == 0;
}

std::string Lines(const std::vector<std::string>& faults) {
    std::string text;
    for (const std::string& fault : faults) text += "\n  " + fault;
    return text;
}

}  // namespace

TEST(ContentTest, EveryAnimationSheetHoldsTheFramesItsDataFileDescribes) {
    auto files = AssetFiles([](const std::string& name) { return EndsWith(name, "AnimData.txt"); });
    ASSERT_FALSE(files.empty());
    for (const fs::path& file : files) {
        auto faults = CheckAnimSheets(file);
        EXPECT_TRUE(faults.empty()) << fs::relative(file, kAssets) << Lines(faults);
    }
}

// The hero's loader knows its labels: reading the file by the labels it holds must agree.
TEST_F(HeroTest, TheHeroLoaderReadsEveryClipTheDataFileHolds) {
    AnimFile file = ReadAnimFile("Assets/Sprites/Player/Hero1AnimData.txt");
    ASSERT_EQ(file.sections.size(), 1u);
    const auto& clips = file.sections[0].clips;
    ASSERT_EQ(clips.size(), size_t(PLAYER_STATE_COUNT));
    for (int state = 0; state < PLAYER_STATE_COUNT; state++) {
        const Animation& loaded = GetPlayer().clips[state];
        EXPECT_EQ(loaded.frameCount, clips[state].clip.frameCount) << clips[state].label;
        EXPECT_EQ(loaded.frameRate, clips[state].clip.frameRate) << clips[state].label;
        EXPECT_EQ(loaded.frameRect, clips[state].clip.frameRect) << clips[state].label;
    }
}

TEST(ContentTest, EverySoundOpensInTheFormatItsPlaceAsksFor) {
    auto files = AssetFiles([](const std::string& name) { return EndsWith(name, ".wav"); });
    ASSERT_FALSE(files.empty());
    for (const fs::path& file : files) {
        auto faults = CheckSound(file, fs::relative(file, kAssets).string());
        EXPECT_TRUE(faults.empty()) << Lines(faults);
    }
}

// Every room map, loaded once by the game's loader and kept for the level rules.
class BuiltRooms : public ::testing::Test {
protected:
    static void SetUpTestSuite() {
        fs::path previous = fs::current_path();
        fs::current_path(OV_SOURCE_DIR);
        sf::RenderWindow window(sf::VideoMode(320, 180), "rooms", sf::Style::None);
        const std::regex name("Room([0-9]+)\\.json");
        rooms = new std::map<int, Room>();
        for (const fs::path& path : AssetFiles([](const std::string&) { return true; })) {
            std::smatch match;
            std::string file = path.filename().string();
            if (path.parent_path().filename() != "Rooms" || !std::regex_match(file, match, name))
                continue;
            int number = std::stoi(match[1]);
            testing::internal::CaptureStdout();
            LoadRoomMap(window, RoomMapPath(number), 32, 3.0f, number);
            std::string log = testing::internal::GetCapturedStdout();
            if (!CurrentRoom().loaded) loadFaults.push_back(file + " does not load:\n" + log);
            (*rooms)[number] = std::move(CurrentRoom());
            CurrentRoom() = Room();
        }
        fs::current_path(previous);
    }
    static void TearDownTestSuite() {
        delete rooms;
        rooms = nullptr;
    }

    static std::map<int, const Room*> All() {
        std::map<int, const Room*> all;
        for (const auto& [number, room] : *rooms) all[number] = &room;
        return all;
    }
    static void ExpectEveryRoomKeeps(std::vector<std::string> (*rule)(const Room&)) {
        for (const auto& [number, room] : *rooms) {
            auto faults = rule(room);
            EXPECT_TRUE(faults.empty()) << "room " << number << Lines(faults);
        }
    }

    static std::map<int, Room>* rooms;
    static std::vector<std::string> loadFaults;
};

std::map<int, Room>* BuiltRooms::rooms = nullptr;
std::vector<std::string> BuiltRooms::loadFaults;

TEST_F(BuiltRooms, EveryRoomMapLoads) {
    EXPECT_GE(rooms->size(), 1u);
    EXPECT_TRUE(loadFaults.empty()) << Lines(loadFaults);
}

// The doors that lead to rooms still to be built, as (room, door, room it leads to): the forest
// is whole, and so is the city: every door leads to a built room.
const std::set<std::tuple<int, int, int>> kDoorsToRoomsNotBuilt = {};

TEST_F(BuiltRooms, DoorsComeInPairsThatLeadBackToEachOther) {
    DoorPairReport report = CheckDoorPairs(All());
    EXPECT_TRUE(report.faults.empty()) << Lines(report.faults);
    std::set<std::tuple<int, int, int>> unbuilt;
    for (const DoorToUnbuiltRoom& door : report.unbuilt) {
        unbuilt.insert({door.room, door.door, door.targetRoom});
        std::cout << "room " << door.room << " door " << door.door << " leads to room "
                  << door.targetRoom << ", not built yet\n";
    }
    for (const auto& [room, door, target] : unbuilt) {
        EXPECT_TRUE(kDoorsToRoomsNotBuilt.count({room, door, target}))
            << "room " << room << " door " << door << " leads to room " << target
            << ", which has no map";
    }
    for (const auto& [room, door, target] : kDoorsToRoomsNotBuilt) {
        EXPECT_TRUE(unbuilt.count({room, door, target}))
            << "room " << room << " door " << door << " to room " << target
            << " is no longer a door to a room not built: take it off the list";
    }
}

TEST_F(BuiltRooms, RoomsAreWalledExceptAtTheirDoors) {
    ExpectEveryRoomKeeps(CheckWalls);
}

TEST_F(BuiltRooms, SpawnsStandOnAFloorInsideTheirContainers) {
    ExpectEveryRoomKeeps(CheckStandingPoints);
}

TEST_F(BuiltRooms, ArrivalsStandOutsideEveryDoorWhereTheWalkInBringsTheHero) {
    ExpectEveryRoomKeeps(CheckArrivals);
}

TEST_F(BuiltRooms, LockedDoorsShutTheHeroInWithWhatOpensThem) {
    ExpectEveryRoomKeeps(CheckLockedDoors);
}

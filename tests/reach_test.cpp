// The hero's reach: the check's numbers bracket the real hero, and on the built rooms every
// room's goals lie within reach, every gate holds without its ability and opens with it, nobody
// is ever stuck, and the rooms chain from the first checkpoint through the city.
#include "support/reach.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <iostream>
#include <memory>

#include "support/hero_fixture.h"

namespace fs = std::filesystem;

namespace {

constexpr int kLastRoom = 23;

std::string Lines(const std::vector<std::string>& faults) {
    std::string text;
    for (const std::string& fault : faults) text += "\n  " + fault;
    return text;
}

}  // namespace

// Every room map, loaded once by the game's loader, and the reach of both heroes in each.
class ReachInRooms : public ::testing::Test {
protected:
    static void SetUpTestSuite() {
        fs::path previous = fs::current_path();
        fs::current_path(OV_SOURCE_DIR);
        static sf::RenderWindow window(sf::VideoMode(320, 180), "reach", sf::Style::None);
        rooms = new std::map<int, Room>();
        for (int number = 1; number <= kLastRoom; number++) {
            if (!fs::exists(RoomMapPath(number))) continue;  // a room still to be built
            testing::internal::CaptureStdout();
            LoadRoomMap(window, RoomMapPath(number), 32, 3.0f, number);
            testing::internal::GetCapturedStdout();
            (*rooms)[number] = std::move(CurrentRoom());
            CurrentRoom() = Room();
        }
        fs::current_path(previous);
        maps = new std::map<std::pair<int, Margin>, std::unique_ptr<ReachMap>>();
    }
    static void TearDownTestSuite() {
        delete maps;
        delete rooms;
        maps = nullptr;
        rooms = nullptr;
    }

    static const ReachMap& Map(int number, Margin margin) {
        auto& map = (*maps)[{number, margin}];
        if (!map) map = std::make_unique<ReachMap>(rooms->at(number), margin);
        return *map;
    }
    static const ReachMap& Weaker(int number) { return Map(number, Margin::kWeaker); }
    static const ReachMap& Stronger(int number) { return Map(number, Margin::kStronger); }
    static std::map<int, const ReachMap*> All(Margin margin) {
        std::map<int, const ReachMap*> all;
        for (const auto& [number, room] : *rooms) all[number] = &Map(number, margin);
        return all;
    }

    static std::map<int, Room>* rooms;
    static std::map<std::pair<int, Margin>, std::unique_ptr<ReachMap>>* maps;
};

std::map<int, Room>* ReachInRooms::rooms = nullptr;
std::map<std::pair<int, Margin>, std::unique_ptr<ReachMap>>* ReachInRooms::maps = nullptr;

namespace {

constexpr int kDash = REACH_DASH, kDashRun = REACH_DASH | REACH_RUN;
constexpr ReachStart kFromDoor0{false, 0}, kFromDoor1{false, 1};

ReachGoal DoorGoal(int id) {
    return {ReachGoal::DOOR, id};
}

// What the way through each room needs, from where the hero first comes in, with what he has by
// then (the dash from room 3's chest on, the run from room 8's, the cloud from room 15's).
struct RoomNeeds {
    int room;
    ReachStart from;
    int abilities;
    std::vector<ReachGoal> goals;
};

const std::vector<RoomNeeds> kCriticalPath = {
    {1, {true, 0}, 0, {DoorGoal(0)}},
    {2, kFromDoor0, 0, {{ReachGoal::STATUE, 0}, DoorGoal(1), DoorGoal(2), DoorGoal(3)}},
    {3, kFromDoor0, 0, {{ReachGoal::CHEST, 0}, DoorGoal(0), DoorGoal(2)}},
    {3, kFromDoor0, kDash, {DoorGoal(1), DoorGoal(3)}},
    {4,
     kFromDoor0,
     kDash,
     {{ReachGoal::STATUE, 0}, {ReachGoal::MERCHANT, 0}, DoorGoal(1), DoorGoal(2), DoorGoal(3)}},
    {5, kFromDoor0, kDash, {DoorGoal(1), DoorGoal(2)}},
    {6, kFromDoor0, 0, {DoorGoal(1)}},
    {7, kFromDoor0, 0, {DoorGoal(0)}},
    {8, kFromDoor0, kDash, {{ReachGoal::CHEST, 0}, DoorGoal(1), DoorGoal(2)}},
    {9, kFromDoor0, kDashRun, {DoorGoal(0)}},
    {10, kFromDoor0, kDash, {DoorGoal(1)}},
    {11, kFromDoor0, kDashRun, {DoorGoal(1)}},
    {12, kFromDoor0, kDashRun, {DoorGoal(1)}},  // up in the cabin
    {12, {false, 1}, kDashRun, {DoorGoal(0)}},  // down the drop shaft, or in the cabin
    {13, kFromDoor0, kDashRun, {{ReachGoal::STATUE, 0}, {ReachGoal::MERCHANT, 0}, DoorGoal(1)}},
    {14, kFromDoor0, kDashRun, {DoorGoal(1)}},
    {15, kFromDoor0, kDashRun, {{ReachGoal::CHEST, 0}, DoorGoal(1), DoorGoal(2)}},
    {16, kFromDoor0, kDashRun, {{ReachGoal::STATUE, 0}, DoorGoal(1)}},
    {16, {false, 1}, kDashRun, {DoorGoal(0)}},  // back up to the clock tower from the armoury
    {17, kFromDoor0, REACH_ALL, {DoorGoal(1)}},
    {18, kFromDoor0, 0, {DoorGoal(0)}},
    {19, kFromDoor0, 0, {DoorGoal(1), DoorGoal(2)}},
    {19, kFromDoor1, 0, {DoorGoal(0), DoorGoal(2)}},
    {20, kFromDoor0, 0, {DoorGoal(1)}},
    {21, kFromDoor0, 0, {DoorGoal(1)}},
    {22, kFromDoor0, 0, {DoorGoal(1)}},
    {23, kFromDoor0, 0, {DoorGoal(0)}},
};

// Each gate: the room, the doors beyond it, and what the hero has when he first meets it.
struct Gate {
    int room;
    std::vector<int> beyond;
    int before, ability;
};

const std::vector<Gate> kGates = {
    {3, {1, 3}, 0, kDash},             // the chasm under the low roof
    {5, {2}, 0, kDash},                // the spike pit in the tunnel
    {11, {1}, kDash, REACH_RUN},       // the broken bridge
    {16, {2}, kDashRun, REACH_CLOUD},  // the bell tower's sheer face
    {17, {1}, kDashRun, REACH_CLOUD},  // the bare wall at the foot of the armoury's tower
};

std::vector<ReachGoal> DoorGoals(const std::vector<int>& ids) {
    std::vector<ReachGoal> goals;
    for (int id : ids) goals.push_back(DoorGoal(id));
    return goals;
}

}  // namespace

// The check's two heroes bracket the real one on a flat floor: the jump's height, and the dash's
// length.
TEST_F(HeroTest, TheReachChecksHeroesBracketTheRealJumpAndDash) {
    HeroMoves weaker = MovesFor(Margin::kWeaker), stronger = MovesFor(Margin::kStronger);
    float floor = Y();
    Press(BINDING_JUMP);
    float rise = floor - Peak(60);
    EXPECT_GT(rise, weaker.JumpHeight());
    EXPECT_LT(rise, stronger.JumpHeight());
    Hold(BINDING_JUMP, false);
    Step(60);

    Save().abilities.canDash = 1;
    float start = GetPlayerPosition().x;
    Press(BINDING_DASH);
    Hold(BINDING_DASH, false);
    Step(30);
    float dash = GetPlayerPosition().x - start;
    EXPECT_GT(dash, weaker.Dash());
    EXPECT_LT(dash, stronger.Dash());
}

TEST_F(ReachInRooms, WhatTheWayThroughEachRoomNeedsIsInReach) {
    for (const RoomNeeds& needs : kCriticalPath) {
        auto faults = CheckInReach(Weaker(needs.room), needs.from, needs.abilities, needs.goals);
        EXPECT_TRUE(faults.empty()) << Lines(faults);
    }
}

TEST_F(ReachInRooms, EachGateHoldsWithoutItsAbilityAndOpensWithIt) {
    for (const Gate& gate : kGates) {
        for (int door : gate.beyond) {
            auto held =
                CheckOutOfReach(Stronger(gate.room), kFromDoor0, gate.before, {DoorGoal(door)});
            EXPECT_TRUE(held.empty()) << Lines(held);
        }
        auto opened = CheckInReach(Weaker(gate.room), kFromDoor0, gate.before | gate.ability,
                                   DoorGoals(gate.beyond));
        EXPECT_TRUE(opened.empty()) << Lines(opened);
    }
}

TEST_F(ReachInRooms, FromEveryPlaceSomeDoorIsReachedWithoutAbilities) {
    for (const auto& [number, room] : *rooms) {
        auto faults = CheckNoTrap(Weaker(number), Stronger(number));
        EXPECT_TRUE(faults.empty()) << Lines(faults);
    }
}

TEST_F(ReachInRooms, TheChestsLeadFromTheFirstCheckpointToTheCity) {
    RoomTour tour = TourRooms(All(Margin::kWeaker), 1, {true, 0}, true);
    EXPECT_TRUE(tour.doors.count({11, 1})) << "room 11's east door is not reached";
    EXPECT_EQ(tour.abilities[11] & kDashRun, kDashRun);
    EXPECT_TRUE(tour.doors.count({16, 2})) << "room 16's door past the cloud gate is not reached";
    EXPECT_EQ(tour.abilities[16], REACH_ALL);

    // Without the chests no door leads from the rooms before the gates into those beyond them.
    const std::set<int> beyond = {4, 8, 9, 10, 11};
    RoomTour without = TourRooms(All(Margin::kStronger), 1, {true, 0}, false);
    EXPECT_TRUE(without.rooms.count(3)) << "without the chests the hero never reaches room 3";
    for (auto [room, id] : without.doors) {
        const TransitionDoor* door = nullptr;
        for (const TransitionDoor& candidate : rooms->at(room).transitionDoors) {
            if (candidate.id == id) door = &candidate;
        }
        if (!door || beyond.count(room) || !beyond.count(door->targetedRoom)) continue;
        ADD_FAILURE() << "without the chests the hero leaves room " << room << " by door " << id
                      << " for room " << door->targetedRoom;
    }
}

// The level rules catch what they are there for: a well-made pair of rooms passes, and each fault
// put into it is reported with the room and the object.
#include "support/level_check.h"

#include <gtest/gtest.h>

#include <functional>

#include "enemies/enemies.h"

namespace {

constexpr float T = 96;            // one tile in world px
constexpr float kFloorY = 11 * T;  // both rooms stand on row 11

ShapePtr Box(float left, float top, float width, float height) {
    auto shape = std::make_shared<sf::RectangleShape>(sf::Vector2f(width, height));
    shape->setPosition(left, top);
    return shape;
}

void AddSolid(Room& room, float left, float top, float width, float height) {
    room.collisions.push_back({Box(left, top, width, height), COLLISION_SOLID, 1});
}

TransitionDoor MakeDoor(ShapePtr shape, const char* direction, int id, int targetRoom) {
    TransitionDoor door;
    door.shape = std::move(shape);
    door.cameraTransition = direction;
    door.hasCameraTransition = true;
    door.id = id;
    door.targetedRoom = targetRoom;
    door.targetedDoorId = id;  // the door of the same id in the other room
    return door;
}

// A 20 x 12 room with rock all round, but for a door four tiles tall in its east (Right) or west
// (Left) wall that leads to the other room's door 0; a statue, an arrival two tiles in from the
// door, and a Trash in its arena. Collisions 0 to 3: ceiling, floor, west wall, east wall.
Room MakeRoom(int number, int other, bool eastDoor) {
    Room room;
    room.roomNumber = number;
    room.cameraContainer = Box(0, 0, 20 * T, 12 * T);
    AddSolid(room, 0, 0, 20 * T, T);
    AddSolid(room, 0, kFloorY, 20 * T, T);
    AddSolid(room, 0, 0, T, eastDoor ? 12 * T : 7 * T);
    AddSolid(room, 19 * T, 0, T, eastDoor ? 7 * T : 12 * T);
    room.transitionDoors.push_back(MakeDoor(Box(eastDoor ? 19 * T : 0, 7 * T, T, 4 * T),
                                            eastDoor ? "Right" : "Left", 0, other));
    room.doorSpawns.push_back({{eastDoor ? 17.5f * T : 2.5f * T, kFloorY}, 0, 0});
    room.checkpointSpawns.push_back({{10.5f * T, kFloorY}, 0});
    room.enemyContainers.push_back({Box(4 * T, 5 * T, 10 * T, 6 * T + 24), 0});
    room.enemySpawns.push_back({{8.5f * T, kFloorY}, 3, 0});
    return room;
}

struct Pair {
    Room one = MakeRoom(1, 2, true);
    Room two = MakeRoom(2, 1, false);

    std::vector<std::string> Faults() const {
        std::vector<std::string> faults = CheckDoorPairs({{1, &one}, {2, &two}}).faults;
        for (const Room* room : {&one, &two}) {
            auto more = CheckLevelRules(*room);
            faults.insert(faults.end(), more.begin(), more.end());
        }
        return faults;
    }
};

std::string Lines(const std::vector<std::string>& faults) {
    std::string text;
    for (const std::string& fault : faults) text += "\n  " + fault;
    return text;
}

struct Breakage {
    const char* what;
    std::function<void(Pair&)> damage;
    const char* reported;  // a piece of the fault's line
};

}  // namespace

TEST(LevelRules, AWellMadePairOfRoomsKeepsEveryRule) {
    Pair pair;
    EXPECT_TRUE(pair.Faults().empty()) << Lines(pair.Faults());
    EXPECT_TRUE(CheckDoorPairs({{1, &pair.one}, {2, &pair.two}}).unbuilt.empty());
}

TEST(LevelRules, EachFaultIsReportedWithItsRoomAndObject) {
    const std::vector<Breakage> breakages = {
        {"a hole in the ceiling",
         [](Pair& p) {
             p.one.collisions[0].shape->setSize({8 * T, T});
         },
         "room 1: the top edge is open from x 768 to x 1824 [tiles 8-18 of row 0]"},
        {"an east wall that is an open locked door",
         [](Pair& p) { p.two.collisions[3].active = 0; },
         "room 2: the right edge is open from y 96 to y 1056 [tiles 1-10 of column 19]"},
        {"no camera container", [](Pair& p) { p.one.cameraContainer.reset(); },
         "room 1: no camera container"},
        {"the way back leads elsewhere", [](Pair& p) { p.two.transitionDoors[0].targetedRoom = 5; },
         "room 1 door 0 (Right) at (1824, 672, 96 x 384) arrives through room 2 door 0 (Left), "
         "which leads to room 5 instead of back to room 1"},
        {"the way back comes in at another door",
         [](Pair& p) { p.one.doorSpawns[0].linkedDoorId = 4; },
         "whose way back comes in at no door"},
        {"both doors leave the same way",
         [](Pair& p) { p.two.transitionDoors[0].cameraTransition = "Right"; },
         "which leaves Right; it should leave Left"},
        {"a misspelt direction",
         [](Pair& p) { p.one.transitionDoors[0].cameraTransition = "Rigth"; },
         "room 1 door 0: CameraTransition \"Rigth\" is not Left, Right, Up or Down"},
        {"no arrival spawn", [](Pair& p) { p.two.doorSpawns.clear(); },
         "leads to door spawn 0 of room 2, which has none"},
        {"a spawn and its door with different ids",
         [](Pair& p) {
             p.two.transitionDoors[0].id = 3;
             p.two.doorSpawns[0].linkedDoorId = 3;
         },
         "but its spawn has id 0: a door and its spawn share their id"},
        {"an arrival inside the door", [](Pair& p) { p.one.doorSpawns[0].position.x = 19.5f * T; },
         "room 1: door spawn 0 at (1872, 1056) [tile 19, 11] stands in door 0 (Right)"},
        {"an arrival beyond its door", [](Pair& p) { p.one.doorSpawns[0].position.x = 21 * T; },
         "is on the wrong side of its door 0 (Right)"},
        {"an arrival on a ledge above the door's floor",
         [](Pair& p) { p.two.doorSpawns[0].position.y -= T; },
         "the hero walks in level with the bottom of its door 0 (Left) (y 1056)"},
        {"a floating statue", [](Pair& p) { p.one.checkpointSpawns[0].position.y -= 3 * T; },
         "room 1: checkpoint spawn 0 at (1008, 768) [tile 10, 8] does not stand on a floor"},
        {"a statue sunk in the floor", [](Pair& p) { p.one.checkpointSpawns[0].position.y += T; },
         "puts the hero inside the solid rectangle (0, 1056, 1920 x 96)"},
        {"an arrival over a pool",
         [](Pair& p) {
             p.one.triggers.push_back({Box(16 * T, kFloorY - 30, 3 * T, 30), "DeathZone", 0, 0});
         },
         "room 1: door spawn 0 at (1680, 1056) [tile 17, 11] puts the hero in the death zone "
         "(1536, 1026, 288 x 30)"},
        {"a statue outside the room", [](Pair& p) { p.two.checkpointSpawns[0].position.x = -T; },
         "room 2: checkpoint spawn 0 at (-96, 1056) [tile -1, 11] lies outside the camera "
         "container"},
        {"an enemy beside its arena", [](Pair& p) { p.one.enemySpawns[0].position.x = 2.5f * T; },
         "room 1: enemy spawn 0 (kind 3) at (240, 1056) [tile 2, 11] lies outside its container 0"},
        {"an enemy naming no arena", [](Pair& p) { p.one.enemySpawns[0].containerId = 7; },
         "names container 7, which the room lacks"},
        {"an enemy hovering", [](Pair& p) { p.two.enemySpawns[0].position.y -= 30; },
         "enemy spawn 0 (kind 3) at (816, 1026) [tile 8, 10] does not stand exactly on a floor"},
    };
    for (const Breakage& breakage : breakages) {
        Pair pair;
        breakage.damage(pair);
        std::string faults = Lines(pair.Faults());
        EXPECT_NE(faults.find(breakage.reported), std::string::npos)
            << breakage.what << ": expected \"" << breakage.reported << "\" among" << faults;
    }
}

TEST(LevelRules, ADoorToARoomNotBuiltYetIsListedNotFailed) {
    Pair pair;
    DoorPairReport report = CheckDoorPairs({{1, &pair.one}});
    EXPECT_TRUE(report.faults.empty()) << Lines(report.faults);
    ASSERT_EQ(report.unbuilt.size(), 1u);
    EXPECT_EQ(report.unbuilt[0].room, 1);
    EXPECT_EQ(report.unbuilt[0].door, 0);
    EXPECT_EQ(report.unbuilt[0].targetRoom, 2);
}

// Holes in the ceiling and the floor: the hero falls from an Up door onto the floor under it and
// rises through a Down door onto the ledge over it.
TEST(LevelRules, HolesPairUpAndDownAndBringTheHeroThroughTheirMiddle) {
    Pair pair;
    Room& upper = pair.one;
    Room& lower = pair.two;
    upper.collisions[1].shape->setSize({8 * T, T});  // the floor opens at columns 8-9
    AddSolid(upper, 10 * T, kFloorY, 10 * T, T);
    upper.collisions.push_back({Box(8 * T, 9 * T, 2 * T, 30), COLLISION_ONE_WAY, 1});
    lower.collisions[0].shape->setSize({8 * T, T});  // the ceiling opens at columns 8-9
    AddSolid(lower, 10 * T, 0, 10 * T, T);
    upper.transitionDoors.push_back(MakeDoor(Box(8 * T, kFloorY, 2 * T, T), "Down", 1, 2));
    lower.transitionDoors.push_back(MakeDoor(Box(8 * T, 0, 2 * T, T), "Up", 1, 1));
    upper.doorSpawns.push_back({{9 * T, 9 * T}, 1, 1});  // on the ledge over the hole
    lower.doorSpawns.push_back({{9 * T, kFloorY}, 1, 1});
    upper.enemySpawns[0].position.x = 5.5f * T;  // off the hole
    EXPECT_TRUE(pair.Faults().empty()) << Lines(pair.Faults());

    upper.doorSpawns.back().position = {9 * T, 12 * T};  // under the hole, out of the room
    lower.doorSpawns.back().position.x = 12 * T;         // beside the hole's middle
    std::string faults = Lines(pair.Faults());
    EXPECT_NE(faults.find("door spawn 1 at (864, 1152) [tile 9, 12] is on the wrong side of its "
                          "door 1 (Down)"),
              std::string::npos)
        << faults;
    EXPECT_NE(faults.find("the hero comes through the middle of its door 1 (Up) (x 864)"),
              std::string::npos)
        << faults;
}

namespace {

// The Nomad's clearing in small: a boss room 30 x 12 whose two doors open into low passages, each
// with a gate (a locked door of group 0) and past it a lock trigger, and the boss alone between.
Room MakeBossRoom() {
    Room room;
    room.roomNumber = 10;
    room.bossRoom = 1;
    room.cameraContainer = Box(0, 0, 30 * T, 12 * T);
    AddSolid(room, 0, 0, 30 * T, T);
    AddSolid(room, 0, kFloorY, 30 * T, T);
    AddSolid(room, 0, 0, T, 7 * T);
    AddSolid(room, 29 * T, 0, T, 7 * T);
    AddSolid(room, T, T, 7 * T, 6 * T);       // the roof of the west passage, columns 1-7
    AddSolid(room, 22 * T, T, 7 * T, 6 * T);  // and of the east one, columns 22-28
    room.transitionDoors.push_back(MakeDoor(Box(0, 7 * T, T, 4 * T), "Left", 0, 4));
    room.transitionDoors.push_back(MakeDoor(Box(29 * T, 7 * T, T, 4 * T), "Right", 1, 11));
    room.doorSpawns.push_back({{2.5f * T, kFloorY}, 0, 0});
    room.doorSpawns.push_back({{27.5f * T, kFloorY}, 1, 1});
    DoorList gates;
    gates.enemyToKill = 1;
    for (float column : {4.0f, 25.0f}) {
        Door gate;
        gate.shape = Box(column * T, 7 * T, T, 4 * T);
        gates.doors.push_back(gate);
        room.collisions.push_back({gate.shape, COLLISION_SOLID, 0});  // open, as loaded
    }
    room.doorLists.push_back(gates);
    for (float column : {6.0f, 23.0f}) {
        room.triggers.push_back({Box(column * T, 7 * T, T, 4 * T), "Locked Door trigger", 0, 0});
    }
    room.enemyContainers.push_back({Box(8 * T, 5 * T, 14 * T, 6 * T + 8), 0});
    room.enemySpawns.push_back({{15.5f * T, kFloorY}, 2, 0});
    return room;
}

}  // namespace

TEST(LevelRules, ABossIsFoughtBehindGatesThatOnlyItsDeathOpens) {
    Room clearing = MakeBossRoom();
    EXPECT_TRUE(CheckLevelRules(clearing).empty()) << Lines(CheckLevelRules(clearing));

    const std::vector<std::pair<const char*, std::function<void(Room&)>>> breakages = {
        {"room 10: with its locked doors shut, the boss (enemy spawn 0 (kind 2) at (1488, 1056) "
         "[tile 15, 11]) still reaches door 1 (Right) (2784, 672, 96 x 384)",
         [](Room& r) { r.doorLists[0].doors.pop_back(); }},
        {"room 10: door spawn 1 at (2640, 1056) [tile 27, 11] reaches the boss (enemy spawn 0 "
         "(kind 2) at (1488, 1056) [tile 15, 11]) past every \"Locked Door trigger\"",
         [](Room& r) { r.triggers.pop_back(); }},
        {"room 10: the \"Locked Door trigger\" of group 0 at (192, 672, 96 x 384) lies where the "
         "shut doors keep no enemy that can die",
         [](Room& r) { r.triggers[0].shape->setPosition(2 * T, 7 * T); }},
        {"room 10: door group 0 waits for 2 kills; the room holds 1 enemy that can die: its doors "
         "never open again",
         [](Room& r) { r.doorLists[0].enemyToKill = 2; }},
        {"room 10: door group 0 waits for 1 kill; the room holds 0 enemies that can die",
         [](Room& r) { r.enemySpawns[0].enemyType = 5; }},
        {"room 10: door group 0 waits for no kill",
         [](Room& r) { r.doorLists[0].enemyToKill = 0; }},
        {"room 10: door group 0 has no \"Locked Door trigger\" of its id: its doors never close",
         [](Room& r) {
             for (Trigger& trigger : r.triggers) trigger.value = 1;
         }},
        {"room 10 is a boss room without locked doors", [](Room& r) { r.doorLists.clear(); }},
    };
    for (const auto& [reported, damage] : breakages) {
        Room room = MakeBossRoom();
        damage(room);
        std::string faults = Lines(CheckLevelRules(room));
        EXPECT_NE(faults.find(reported), std::string::npos)
            << "expected \"" << reported << "\" among" << faults;
    }
}

// She dissolves at life 0 and her death counts as a kill: her garden needs its gates too.
TEST(LevelRules, TheGoddessIsFoughtBehindGatesLikeAnyBoss) {
    Room garden = MakeBossRoom();
    garden.enemySpawns[0] = {{15.5f * T, kFloorY - 110}, ENEMY_GODDESS, 0};
    EXPECT_TRUE(CheckLevelRules(garden).empty()) << Lines(CheckLevelRules(garden));
    garden.doorLists.clear();
    garden.triggers.clear();
    std::string faults = Lines(CheckLevelRules(garden));
    EXPECT_NE(faults.find("room 10 is a boss room without locked doors"), std::string::npos)
        << faults;
}

// Each kind's spawn as it moves: flying enemies hover over a floor, the King (who has no
// gravity) has floor under his whole arena, and nothing in the middle layers hides the Goddess
// on her drift.
TEST(LevelRules, EachKindStandsOrHoversAsItMoves) {
    auto tile = [](const char* layer, float x, float y) {
        sf::Sprite sprite;
        sprite.setTextureRect({0, 0, 32, 32});
        sprite.setScale(3, 3);
        sprite.setPosition(x, y);
        return RoomLayer{layer, {sprite}};
    };
    struct Case {
        const char* what;
        std::function<void(Room&)> place;
        const char* reported;  // nullptr: the room keeps every rule
    };
    const std::vector<Case> cases = {
        {"a knight a tile over its floor",
         [](Room& r) {
             r.enemySpawns[0] = {{8.5f * T, kFloorY - T}, ENEMY_FLYING_KNIGHT, 0};
         },
         nullptr},
        {"a knight in the ceiling",
         [](Room& r) {
             r.enemySpawns[0] = {{8.5f * T, T / 2}, ENEMY_FLYING_KNIGHT, 0};
         },
         "room 1: enemy spawn 0 (kind 6) at (816, 48) [tile 8, 0] hovers inside the solid "
         "rectangle (0, 0, 1920 x 96)"},
        {"a knight high over the floor",
         [](Room& r) {
             r.enemySpawns[0] = {{8.5f * T, 4 * T}, ENEMY_FLYING_KNIGHT, 0};
         },
         "enemy spawn 0 (kind 6) at (816, 384) [tile 8, 4] hovers over no floor within 576 px"},
        {"the King on his floor", [](Room& r) { r.enemySpawns[0].enemyType = ENEMY_KING; },
         nullptr},
        {"the King over a pit in his arena",
         [](Room& r) {
             r.enemySpawns[0].enemyType = ENEMY_KING;
             r.collisions[1].shape->setSize({12 * T, T});
             AddSolid(r, 13 * T, kFloorY, 7 * T, T);
         },
         "enemy spawn 0 (kind 1) at (816, 1056) [tile 8, 11] walks on air at (1156, 1056) "
         "[tile 12, 11]: his arena (384, 480, 960 x 600) reaches past his floor"},
        {"the Goddess with her floor drawn behind her",
         [&](Room& r) {
             r.enemySpawns[0] = {{10 * T, kFloorY - 110}, ENEMY_GODDESS, 0};
             r.layers.push_back(tile("Background", 12 * T, kFloorY));
         },
         nullptr},
        {"a middle-layer tile in the Goddess's flight",
         [&](Room& r) {
             r.enemySpawns[0] = {{10 * T, kFloorY - 110}, ENEMY_GODDESS, 0};
             r.layers.push_back(tile("Ground", 12 * T, kFloorY));
         },
         "enemy spawn 0 (kind 7) at (960, 946) [tile 10, 9]: the tile of layer \"Ground\" at "
         "(1152, 1056) [tile 12, 11] lies in her flight (160, 746, 1600 x 400) and hides her"},
        {"the Goddess drifting through a wall",
         [](Room& r) {
             r.enemySpawns[0] = {{6 * T, kFloorY - 110}, ENEMY_GODDESS, 0};
         },
         "enemy spawn 0 (kind 7) at (576, 946) [tile 6, 9] drifts out of the room: her flight "
         "(-224, 746, 1600 x 400)"},
    };
    for (const Case& c : cases) {
        Room room = MakeRoom(1, 2, true);
        c.place(room);
        std::string faults = Lines(CheckStandingPoints(room));
        if (!c.reported) {
            EXPECT_TRUE(faults.empty()) << c.what << ":" << faults;
        } else {
            EXPECT_NE(faults.find(c.reported), std::string::npos)
                << c.what << ": expected \"" << c.reported << "\" among" << faults;
        }
    }
}

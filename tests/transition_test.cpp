// Walking through every door of the authored rooms, falling into pits, and dying.
#include "world/transition.h"

#include <gtest/gtest.h>

#include <cmath>
#include <filesystem>
#include <set>

#include "app/game.h"
#include "app/game_state.h"
#include "app/input.h"
#include "enemies/enemies.h"
#include "hud/boss_hud.h"
#include "menus/settings_files.h"
#include "player/player.h"
#include "player/save.h"
#include "support/fixture.h"
#include "world/camera.h"
#include "world/room.h"
#include "world/room_lifecycle.h"

namespace {

constexpr float kDt = 1.0f / 60.0f;

class TransitionTest : public AppTest {
protected:
    void SetUp() override {
        AppTest::SetUp();
        ClickAt(200, 594);  // PLAY
        ASSERT_EQ(GetGameState(), GAME_STATE_GAME);
    }

    // Game updates at a steady 60 per second, without drawing.
    void Update(int frames) {
        for (int i = 0; i < frames; i++) UpdateGame(*app.window, kDt);
    }

    void Enter(int room) {
        testing::internal::CaptureStdout();
        CleanupRoom();
        LoadNextTargetRoom(*app.window, room);
        testing::internal::GetCapturedStdout();
    }

    static void Hold(int action, bool down) { InputScriptKey(Settings().bindings[action], down); }
    static void Press(int action) {
        Hold(action, true);
        HandlePlayerKeyPressed(Settings().bindings[action]);
    }

    // Runs until a door transition starts (or two seconds pass); returns whether one did.
    bool UntilTransition() {
        for (int i = 0; i < 120 && !Transition().transitionActive; i++) Update(1);
        return Transition().transitionActive != 0;
    }

    static const TransitionDoor* DoorTo(int room) {
        for (const TransitionDoor& door : CurrentRoom().transitionDoors) {
            if (door.targetedRoom == room) return &door;
        }
        return nullptr;
    }
    static sf::Vector2f ArrivalPoint(int id) {
        for (const DoorSpawn& spawn : CurrentRoom().doorSpawns) {
            if (spawn.id == id) return spawn.position;
        }
        return {};
    }

    // Runs until the door transition has ended; returns what was printed.
    std::string RunTransition() {
        testing::internal::CaptureStdout();
        for (int i = 0; i < 900 && (Transition().transitionActive || i == 0); i++) Update(1);
        return testing::internal::GetCapturedStdout();
    }
};

struct DoorCase {
    int room;
    int door;
};

}  // namespace

TEST_F(TransitionTest, EveryDoorLeadsToItsRoomAndTheHeroArrivesInControl) {
    std::vector<DoorCase> doors;
    for (int room : {1, 2, 3, 4, 5, 6, 7, 11}) {
        Enter(room);
        for (int i = 0; i < int(CurrentRoom().transitionDoors.size()); i++) {
            int target = CurrentRoom().transitionDoors[i].targetedRoom;
            if (std::filesystem::exists(RoomMapPath(target))) doors.push_back({room, i});
        }
    }
    ASSERT_GE(doors.size(), 10u);
    std::set<int> directions;
    GetPlayer().godMode = 1;  // the rooms' enemies are not what this walk is about
    for (const DoorCase& c : doors) {
        Enter(c.room);
        const TransitionDoor& door = CurrentRoom().transitionDoors[c.door];
        SCOPED_TRACE("room " + std::to_string(c.room) + " door " + std::to_string(door.id));
        int target = door.targetedRoom;
        directions.insert(TransitionDirectionOf(door.cameraTransition, door.hasCameraTransition));
        sf::FloatRect bounds = door.shape->getGlobalBounds();
        SetPlayerPosition({bounds.left + bounds.width / 2, bounds.top + bounds.height - 1});
        std::string log = RunTransition();
        EXPECT_NE(log.find("TRANSITION !!!!!!!!!!!!!!!!!!!\n"), std::string::npos);
        EXPECT_EQ(log.find("No door found with this id !"), std::string::npos);
        ASSERT_EQ(CurrentRoomNumber(), target);
        EXPECT_EQ(Transition().transitionActive, 0);
        EXPECT_EQ(GetPlayer().body.controllable, 1);
        sf::Vector2f arrival = Transition().arrivalPoint;
        EXPECT_NEAR(GetPlayerPosition().x, arrival.x, 200);
        // Standing still after arriving does not send the hero straight back.
        Update(120);
        EXPECT_EQ(CurrentRoomNumber(), target);
        EXPECT_EQ(Transition().transitionActive, 0);
    }
    EXPECT_EQ(directions.size(), 4u) << "doors of all four directions";
}

TEST_F(TransitionTest, ADoorEnteredInMidAirDropsToTheFloorFirst) {
    Enter(2);
    const TransitionDoor* sideways = nullptr;
    for (const TransitionDoor& door : CurrentRoom().transitionDoors) {
        if (door.cameraTransition == "Right" && door.targetedRoom == 3) sideways = &door;
    }
    ASSERT_NE(sideways, nullptr);
    sf::FloatRect bounds = sideways->shape->getGlobalBounds();
    SetPlayerPosition({bounds.left + bounds.width / 2, bounds.top + bounds.height - 150});
    Update(2);
    ASSERT_EQ(Transition().transitionActive, 1);
    float y = GetPlayerPosition().y;
    Update(3);
    EXPECT_GT(GetPlayerPosition().y, y);  // falling at 500 px/s, not walking yet
    RunTransition();
    EXPECT_EQ(CurrentRoomNumber(), 3);
}

// Jumping from the ledge under room 7's ceiling hole: the head reaches the door long before the
// feet could.
TEST_F(TransitionTest, AHeadJumpingIntoACeilingHoleTakesTheDoor) {
    Enter(7);
    const TransitionDoor* hole = DoorTo(6);
    ASSERT_NE(hole, nullptr);
    GetPlayer().godMode = 1;  // the cellar's Frog is not what this is about
    sf::FloatRect bounds = hole->shape->getGlobalBounds();
    SetPlayerPosition(ArrivalPoint(0));  // the ledge under the hole
    Update(30);
    ASSERT_FALSE(Transition().transitionActive);
    ASSERT_TRUE(PlayerStanding());
    Press(BINDING_JUMP);
    ASSERT_TRUE(UntilTransition());
    Hold(BINDING_JUMP, false);
    EXPECT_GE(GetPlayerPosition().y, bounds.top + bounds.height);  // the feet are still below
    RunTransition();
    EXPECT_EQ(CurrentRoomNumber(), 6);
}

// Dropping through the cover over room 6's floor hole: the feet reach the door while the head is
// still above it.
TEST_F(TransitionTest, FeetDroppingIntoAFloorHoleTakeTheDoor) {
    Enter(6);
    const TransitionDoor* hole = DoorTo(7);
    ASSERT_NE(hole, nullptr);
    sf::FloatRect bounds = hole->shape->getGlobalBounds();
    GetPlayer().godMode = 1;
    SetPlayerPosition(ArrivalPoint(1));  // on the cover
    Update(30);
    ASSERT_FALSE(Transition().transitionActive);
    ASSERT_TRUE(PlayerStanding());
    Hold(BINDING_DOWN, true);
    Press(BINDING_JUMP);
    ASSERT_TRUE(UntilTransition());
    Hold(BINDING_DOWN, false);
    Hold(BINDING_JUMP, false);
    EXPECT_LT(PlayerBodyBounds().top, bounds.top);  // the head is still above
    RunTransition();
    EXPECT_EQ(CurrentRoomNumber(), 7);
}

TEST_F(TransitionTest, APitCostsThirtyLifeATouchAndIsLethal) {
    Enter(5);
    const Trigger* pit = nullptr;
    for (const Trigger& trigger : CurrentRoom().triggers) {
        if (trigger.name == "DeathZone") pit = &trigger;
    }
    ASSERT_NE(pit, nullptr);
    sf::FloatRect zone = pit->shape->getGlobalBounds();
    SetPlayerPosition({zone.left + zone.width / 2, zone.top + zone.height / 2 + 90});
    UpdateGame(*app.window, kDt);
    EXPECT_EQ(GetPlayer().life, 70);
    Update(6);
    EXPECT_LE(GetPlayer().life, 10);  // every touch costs 30: pits are meant to kill
    Update(10);
    EXPECT_EQ(GetPlayer().body.state, PLAYER_DEAD);
}

TEST_F(TransitionTest, DeathZoomsFadesAndRevivesAtTheSavedCheckpoint) {
    Update(30);
    ASSERT_EQ(Save().roomID, 1);
    SetPlayerPosition(GetPlayerPosition() + sf::Vector2f(300, 0));
    Update(30);
    GetPlayer().life = 0;
    int steps[9] = {};
    for (int i = 0; i < 1500; i++) {
        Update(1);
        steps[Transition().respawnStep]++;
        if (i > 10 && Transition().respawnStep == 0) break;
    }
    // Steps 1 and 4 pass within the frame that reaches them.
    for (int step : {2, 3, 5, 6, 7, 8}) EXPECT_GT(steps[step], 0) << "step " << step;
    EXPECT_GT(steps[2], 200);  // the slow five-second zoom on the fallen hero
    EXPECT_EQ(Transition().respawnStep, 0);
    EXPECT_EQ(CurrentRoomNumber(), 1);
    EXPECT_EQ(GetPlayer().life, 100);
    EXPECT_EQ(GetPlayer().body.controllable, 1);
    EXPECT_EQ(GetPlayer().body.state, PLAYER_IDLE);
    EXPECT_EQ(GameCamera().mode, CAMERA_FOLLOW);
    EXPECT_EQ(GameCamera().view->getSize(), sf::Vector2f(1920, 1080));
    sf::Vector2f checkpoint = CurrentRoom().checkpointSpawns[0].position;
    EXPECT_NEAR(GetPlayerPosition().x, checkpoint.x, 1);
}

TEST_F(TransitionTest, TheArenaLocksBehindTheHeroAndOpensWhenItsTrashFall) {
    Enter(6);
    Room& room = CurrentRoom();
    ASSERT_EQ(room.doorLists.size(), 1u);
    ASSERT_EQ(EnemyCount(ENEMY_TRASH), 3);
    const Trigger* lock = nullptr;
    for (const Trigger& trigger : room.triggers) {
        if (trigger.name == "Locked Door trigger") lock = &trigger;
    }
    ASSERT_NE(lock, nullptr);
    GetPlayer().godMode = 1;
    sf::FloatRect zone = lock->shape->getGlobalBounds();
    SetPlayerPosition({zone.left + zone.width / 2, zone.top + zone.height - 1});
    Update(2);
    const DoorList& arena = room.doorLists[0];
    EXPECT_EQ(arena.triggered, 1);
    for (const Door& door : arena.doors) {
        EXPECT_EQ(door.closed, 1);
        EXPECT_EQ(room.collisions[door.collisionIndex].active, 1);
    }
    Update(60);  // the doors slide down; the fight goes on
    EXPECT_EQ(arena.opened, 0);
    for (int i = 0; i < EnemyCount(ENEMY_TRASH); i++) *GetEnemyLife(i, ENEMY_TRASH) = 0;
    Update(3);
    EXPECT_EQ(CountDeadEnemies(), 3);
    EXPECT_EQ(arena.opened, 1);
    for (const Door& door : arena.doors) {
        EXPECT_EQ(room.collisions[door.collisionIndex].active, 0);
    }
}

// Kills made before the lock do not count towards opening it: with one Trash down beforehand, the
// three kills of the arena are counted from the lock on.
TEST_F(TransitionTest, KillsBeforeTheArenaLocksDoNotOpenIt) {
    Enter(6);
    Room& room = CurrentRoom();
    ASSERT_EQ(room.doorLists.size(), 1u);
    ASSERT_EQ(room.doorLists[0].enemyToKill, 3);
    ASSERT_EQ(EnemyCount(ENEMY_TRASH), 3);
    AddEnemy(ENEMY_TRASH, GetEnemyPosition(0, ENEMY_TRASH) + sf::Vector2f(300, 0),
             GetEnemyContainer(0, ENEMY_TRASH), room.region);
    ASSERT_EQ(EnemyCount(ENEMY_TRASH), 4);
    const Trigger* lock = nullptr;
    for (const Trigger& trigger : room.triggers) {
        if (trigger.name == "Locked Door trigger") lock = &trigger;
    }
    ASSERT_NE(lock, nullptr);
    GetPlayer().godMode = 1;
    SetPlayerPosition(ArrivalPoint(0));  // the east passage, before the threshold
    *GetEnemyLife(0, ENEMY_TRASH) = 0;
    Update(30);
    ASSERT_EQ(CountDeadEnemies(), 1);
    const DoorList& arena = room.doorLists[0];
    ASSERT_EQ(arena.triggered, 0);

    sf::FloatRect zone = lock->shape->getGlobalBounds();
    SetPlayerPosition({zone.left + zone.width / 2, zone.top + zone.height - 1});
    Update(2);
    ASSERT_EQ(arena.triggered, 1);
    for (int i : {1, 2}) *GetEnemyLife(i, ENEMY_TRASH) = 0;
    Update(120);
    EXPECT_EQ(CountDeadEnemies(), 3);
    EXPECT_EQ(arena.opened, 0) << "two kills since the lock";
    for (const Door& door : arena.doors) {
        EXPECT_EQ(room.collisions[door.collisionIndex].active, 1);
    }
    *GetEnemyLife(3, ENEMY_TRASH) = 0;
    Update(3);
    EXPECT_EQ(arena.opened, 1) << "the third kill since the lock";
    for (const Door& door : arena.doors) {
        EXPECT_EQ(room.collisions[door.collisionIndex].active, 0);
    }
}

// A game kept at the garden's statue starts in the garden as a walk in would: framed to the
// garden, with the Goddess's bar rising.
TEST_F(TransitionTest, AGameResumedInTheGardenFramesItAndRaisesTheGoddesssBar) {
    WriteCheckpointSave(0, 23);
    testing::internal::CaptureStdout();
    CleanupGame();
    LoadGame(*app.window);
    Update(360);
    testing::internal::GetCapturedStdout();
    ASSERT_EQ(CurrentRoomNumber(), 23);
    EXPECT_EQ(GameCamera().view->getSize(), FitViewSize(CurrentRoom().cameraContainer->getSize()));
    ASSERT_EQ(BossBars().size(), 1u);
    EXPECT_EQ(BossBars()[0].container->getPosition(), BossBars()[0].target) << "risen";
    EXPECT_EQ(BossBars()[0].shownLife, 60);
}

// The watch gallery and the garden show the whole room at once; the rooms beside them do not.
TEST_F(TransitionTest, OnlyTheRoomsShownWholeWidenTheViewAndTheNextRoomNarrowsItAgain) {
    const sf::View& view = *GameCamera().view;
    for (int room : {14, 15, 23, 22, 14, 13}) {
        Enter(room);
        bool whole = room == 14 || room == 23;
        sf::Vector2f size = view.getSize();
        if (whole) {
            EXPECT_GT(size.x, 1920) << "room " << room << " shown whole";
        } else {
            EXPECT_EQ(size, sf::Vector2f(1920, 1080)) << "room " << room << " after a whole room";
        }
    }
}

// The shaft's long ride widens the view to 3840 x 2160: the shaft holds that view whole with the
// cabin in its middle, the view stays that wide after the ride (it is the room's fit), and the
// next room gets the normal framing back.
TEST_F(TransitionTest, TheShaftHoldsTheRidesWideViewAndTheNextRoomNarrowsItAgain) {
    Enter(12);
    Camera& camera = GameCamera();
    const sf::Vector2f wide(3840, 2160);
    ASSERT_FALSE(CurrentRoom().elevators.empty());
    float cabin = CurrentRoom().elevators.front().stops.front().position.x;
    for (float y : {1200.0f, 4000.0f}) {
        camera.view->setSize(wide);
        camera.view->setCenter(cabin, y);
        ClampViewToContainer();
        EXPECT_LT(std::abs(camera.view->getCenter().x - cabin), 96) << "the cabin off the middle";
        EXPECT_EQ(camera.view->getCenter().y, y) << "the view moved up or down";
    }
    EXPECT_EQ(FitViewSize(CurrentRoom().cameraContainer->getSize()), wide);
    // After the ride, down the door to the high square, or up the shaft again and out at its foot.
    for (int next : {13, 11}) {
        Enter(12);
        camera.mode = CAMERA_FOLLOW;
        camera.targetSize = wide;
        camera.view->setSize(wide);
        Enter(next);
        EXPECT_EQ(camera.view->getSize(), sf::Vector2f(1920, 1080)) << "room " << next;
        EXPECT_EQ(camera.targetSize, sf::Vector2f(1920, 1080)) << "room " << next;
    }
}

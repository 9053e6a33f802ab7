// The map screen in play: opening and closing it (M, gamepad button 6, Escape, the checkpoint
// menu's TELEPORT), the drag and its limits, picking a room through the drag, the zoom in and out,
// where teleport is offered, the teleport itself, the frozen world, and what it leaves behind.
#include <gtest/gtest.h>

#include <filesystem>

#include "app/game.h"
#include "app/input.h"
#include "enemies/enemies.h"
#include "hud/map_screen.h"
#include "interactables/checkpoint_menu.h"
#include "menus/settings_files.h"
#include "player/player.h"
#include "support/game_fixture.h"
#include "world/camera.h"
#include "world/room.h"
#include "world/room_lifecycle.h"
#include "world/transition.h"

#if defined(__SANITIZE_ADDRESS__) && __has_include(<sanitizer/lsan_interface.h>)
#include <sanitizer/lsan_interface.h>
#define OV_LEAK_CHECK 1
#endif

namespace {

constexpr int kRoom2 = 1, kRoom4 = 3, kRoom5 = 4, kRoom13 = 12;
const sf::Vector2f kEmpty(1700, 950);  // no room lies there, however the map is dragged
const sf::Vector2f kRoom4Teleport(1210, 717);
constexpr int kZoomFrames = 50;  // more than the zoom's 0.75 s at 60 updates a second

class MapTest : public GameRoomTest {
protected:
    void SetUp() override {
        GameRoomTest::SetUp();
        GetPlayer().godMode = 1;  // the rooms' enemies are not what these tests are about
    }

    void Press(sf::Keyboard::Key key) {
        InputScriptPressKey(key);
        Frames(1);
        InputScriptReleaseKey(key);
    }

    void StandAtStatue(int room) {
        Enter(room);
        StandAt(CheckpointSpawnPosition(0));
    }

    void OpenMap() {
        Press(sf::Keyboard::M);
        ASSERT_EQ(Overlays().mapOpen, 1);
        ASSERT_TRUE(GetMapScreen().built);
    }

    // A press on an empty spot, held while the pointer moves by the distance, then released.
    void Drag(sf::Vector2f by) {
        InputScriptMouseButton(sf::Mouse::Left, true);
        InputScriptClick(sf::Mouse::Left, {int(kEmpty.x), int(kEmpty.y)});
        Frames(1);
        MoveTo(kEmpty.x + by.x, kEmpty.y + by.y);
        InputScriptMouseButton(sf::Mouse::Left, false);
        Frames(1);
    }

    void Pick(int index) {
        sf::Vector2f at = MapRoomOnScreen(index);
        ClickAt(at.x, at.y);
        ASSERT_EQ(GetMapScreen().roomPicked, 1);
        ASSERT_EQ(GetMapScreen().pickedRoom, index);
    }

    const MapRoom& Room(int index) { return GetMapScreen().rooms[index]; }

    // Frames until the teleport has closed the map; the log of those frames.
    std::string RunTeleport() {
        testing::internal::CaptureStdout();
        for (int i = 0; i < 300 && Overlays().mapOpen; i++) Update(1);
        return testing::internal::GetCapturedStdout();
    }
};

TEST_F(MapTest, DragStopsAtItsLimitsEitherWay) {
    OpenMap();
    Drag({150, -40});
    EXPECT_EQ(GetMapScreen().offset, sf::Vector2f(150, -40));
    Drag({2000, 2000});
    EXPECT_EQ(GetMapScreen().offset, kMapDragLimit);
    Drag({-3000, -3000});
    EXPECT_EQ(GetMapScreen().offset, -kMapDragLimit);
    // Released, the pointer moves without taking the map along.
    MoveTo(100, 100);
    EXPECT_EQ(GetMapScreen().offset, -kMapDragLimit);
}

TEST_F(MapTest, HoverAndPickFollowTheDraggedMap) {
    OpenMap();
    sf::Vector2f home = MapRoomOnScreen(kRoom4);
    Drag({200, 100});
    EXPECT_EQ(MapRoomOnScreen(kRoom4), home + sf::Vector2f(200, 100));
    MoveTo(home.x, home.y);  // where the room was: nothing lies there now
    for (int i = 0; i < kMapRoomCount; i++) EXPECT_EQ(Room(i).button.hovered, 0) << i;
    MoveTo(home.x + 200, home.y + 100);
    EXPECT_EQ(Room(kRoom4).button.hovered, 1);
    Pick(kRoom4);
    // The zoom starts where the room was seen (one frame of it has run) and the map goes back
    // home under it.
    EXPECT_EQ(GetMapScreen().offset, sf::Vector2f(0, 0));
    sf::Vector2f zooming = Room(kRoom4).button.shape->getPosition();
    EXPECT_NEAR(zooming.x, home.x + 200, 5);
    EXPECT_NEAR(zooming.y, home.y + 100, 5);
}

TEST_F(MapTest, PickedRoomZoomsInAndEscapeZoomsBackOut) {
    OpenMap();
    Pick(kRoom5);
    Update(kZoomFrames);
    const MapRoom& room = Room(kRoom5);
    EXPECT_EQ(GetMapScreen().zoomedIn, 1);
    EXPECT_EQ(room.button.shape->getScale(), sf::Vector2f(100, 100));
    EXPECT_EQ(room.button.shape->getPosition(), sf::Vector2f(960, 540));
    EXPECT_EQ(room.button.shape->getFillColor(), sf::Color(0, 0, 25, 255));
    ASSERT_TRUE(room.preview);  // the room's picture
    EXPECT_EQ(room.preview->getColor(), sf::Color::White);
    EXPECT_FALSE(room.teleportButton);

    Press(sf::Keyboard::Escape);
    EXPECT_EQ(Overlays().mapOpen, 1);
    EXPECT_EQ(GetMapScreen().roomPicked, 0);
    Update(kZoomFrames);
    EXPECT_EQ(GetMapScreen().zoomedIn, 0);
    EXPECT_EQ(room.button.shape->getScale(), sf::Vector2f(1, 1));
    EXPECT_EQ(room.button.shape->getPosition(), room.home);
    EXPECT_EQ(room.button.shape->getFillColor(), room.fill);
    EXPECT_EQ(room.preview->getColor().a, 0);
    // Zoomed out, another room can be picked.
    Pick(kRoom4);
}

TEST_F(MapTest, EscapeBeforeTheZoomEndsClosesTheWholeMap) {
    OpenMap();
    Pick(kRoom5);
    Update(20);
    ASSERT_EQ(GetMapScreen().zoomedIn, 0);
    Press(sf::Keyboard::Escape);
    EXPECT_EQ(Overlays().mapOpen, 0);
    EXPECT_FALSE(GetMapScreen().built);
    EXPECT_EQ(Overlays().pauseOpen, 0);
}

TEST_F(MapTest, TeleportIsOfferedOnBuiltStatueRoomsWhenOpenedAtAStatue) {
    bool room13Built = std::filesystem::exists(RoomMapPath(13));
    struct Case {
        bool atStatue;
        int index;
        bool offered;
    };
    const Case cases[] = {{true, kRoom4, true},   {true, kRoom2, true},
                          {true, kRoom5, false},  {true, kRoom13, room13Built},
                          {false, kRoom4, false}, {false, kRoom5, false}};
    for (const Case& c : cases) {
        if (c.atStatue) {
            StandAtStatue(2);
        } else {
            Enter(3);
            Update(20);
        }
        OpenMap();
        EXPECT_EQ(GetMapScreen().offerTeleport, c.atStatue ? 1 : 0);
        Pick(c.index);
        EXPECT_EQ(Room(c.index).teleportAvailable, c.offered ? 1 : 0) << c.index;
        EXPECT_EQ(bool(Room(c.index).teleportButton), c.offered) << c.index;
        Press(sf::Keyboard::Escape);  // before the zoom has ended: the map closes
        ASSERT_EQ(Overlays().mapOpen, 0);
    }
}

TEST_F(MapTest, TeleportToRoom4LandsTheHeroAtItsStatueAndReleasesTheMap) {
    StandAtStatue(2);
    OpenMap();
    Pick(kRoom4);
    Update(kZoomFrames);
    MoveTo(kRoom4Teleport.x, kRoom4Teleport.y);
    EXPECT_EQ(Room(kRoom4).teleportHovered, 1);
    EXPECT_EQ(Room(kRoom4).teleportButton->getScale(), sf::Vector2f(1.5f, 1.5f));
    ClickAt(kRoom4Teleport.x, kRoom4Teleport.y);
    ASSERT_EQ(GetMapScreen().teleportRequested, 1);
    // Keys are ignored while the screen fades out.
    Press(sf::Keyboard::Escape);
    ASSERT_EQ(Overlays().mapOpen, 1);
    std::string log = RunTeleport();
    EXPECT_NE(log.find("teleport to room 4\n"), std::string::npos);
    EXPECT_EQ(Overlays().mapOpen, 0);
    EXPECT_FALSE(GetMapScreen().built);
    EXPECT_EQ(CurrentRoomNumber(), 4);
    EXPECT_EQ(CurrentRoom().roomNumber, 4);
    EXPECT_EQ(GetPlayerPosition(), CheckpointSpawnPosition(0));
    EXPECT_EQ(Fade().direction, FADE_TO_CLEAR);
    // The view is on the hero at once, and the world runs on under the clearing fade.
    sf::Vector2f view = GameCamera().view->getCenter();
    EXPECT_LT(std::abs(view.x - GetPlayerPosition().x), 960);
    EXPECT_LT(std::abs(view.y - GetPlayerPosition().y), 540);
    Update(60);
    EXPECT_EQ(Fade().shape->getFillColor().a, 0);
    EXPECT_TRUE(PlayerStanding());
    EXPECT_EQ(GetPlayer().body.controllable, 1);
    EXPECT_LT(std::abs(GetPlayerPosition().x - CheckpointSpawnPosition(0).x), 1.0f);
}

TEST_F(MapTest, WorldStandsStillWhileTheMapIsOpen) {
    Enter(6);  // the arena: Trash patrolling
    Update(30);
    ASSERT_GT(EnemyCount(ENEMY_TRASH), 0);
    SetPlayerPosition(GetPlayerPosition() - sf::Vector2f(0, 200));  // in the air
    OpenMap();
    sf::Vector2f hero = GetPlayerPosition(), trash = GetEnemyPosition(0, ENEMY_TRASH);
    sf::Vector2f camera = GameCamera().view->getCenter();
    Update(60);
    EXPECT_EQ(Overlays().worldFrozen, 1);
    EXPECT_EQ(GetPlayer().body.controllable, 0);
    EXPECT_EQ(GetPlayerPosition(), hero);
    EXPECT_EQ(GetEnemyPosition(0, ENEMY_TRASH), trash);
    EXPECT_EQ(GameCamera().view->getCenter(), camera);
    Press(sf::Keyboard::M);
    EXPECT_EQ(Overlays().mapOpen, 0);
    Update(10);
    EXPECT_EQ(Overlays().worldFrozen, 0);
    EXPECT_NE(GetPlayerPosition(), hero);
}

TEST_F(MapTest, OpensOnlyInFreePlayAndTakesNothingFromThePad) {
    // Not during a room change, nor under the pause.
    Transition().transitionActive = 1;
    Press(sf::Keyboard::M);
    EXPECT_EQ(Overlays().mapOpen, 0);
    Transition().transitionActive = 0;
    Press(sf::Keyboard::Escape);
    ASSERT_EQ(Overlays().pauseOpen, 1);
    Press(sf::Keyboard::M);
    EXPECT_EQ(Overlays().mapOpen, 0);
    Press(sf::Keyboard::Escape);
    ASSERT_EQ(Overlays().pauseOpen, 0);

    // Gamepad button 6 opens it; pressed again it changes nothing, and Escape closes the map
    // without pausing.
    InputScriptPressButton(6);
    Frames(1);
    ASSERT_EQ(Overlays().mapOpen, 1);
    Drag({100, 50});
    InputScriptPressButton(6);
    Frames(1);
    EXPECT_EQ(GetMapScreen().offset, sf::Vector2f(100, 50));
    Press(sf::Keyboard::Escape);
    EXPECT_EQ(Overlays().mapOpen, 0);
    EXPECT_EQ(Overlays().pauseOpen, 0);
}

TEST_F(MapTest, CheckpointMenuTeleportFoldsTheMenuUnderTheMap) {
    StandAtStatue(2);
    TapAction(BINDING_INTERACT);
    ASSERT_EQ(Overlays().checkpointMenuOpen, 1);
    Update(90);
    ASSERT_EQ(GetCheckpointMenu().selected, CHECKPOINT_TELEPORT);
    InputScriptPressButton(0);
    Frames(1);
    ASSERT_EQ(Overlays().mapOpen, 1);
    EXPECT_EQ(GetMapScreen().offerTeleport, 1);
    EXPECT_EQ(GetCheckpointMenu().closing, 1);
    // Clicks go to the map, not to the menu behind it.
    Pick(kRoom4);
    Update(kZoomFrames);
    ClickAt(kRoom4Teleport.x, kRoom4Teleport.y);
    RunTeleport();
    EXPECT_EQ(CurrentRoomNumber(), 4);
    // The statue's menu stayed behind with its room.
    EXPECT_EQ(Overlays().checkpointMenuOpen, 0);
    EXPECT_TRUE(GetCheckpointMenu().buttons.empty());
}

TEST_F(MapTest, OpeningClosingAndTeleportingLeaveNothingBehind) {
    StandAtStatue(4);
    for (int round = 0; round < 3; round++) {
        OpenMap();
        Pick(kRoom5);
        Update(kZoomFrames);
        Press(sf::Keyboard::Escape);
        Update(kZoomFrames);
        Press(sf::Keyboard::M);
        ASSERT_FALSE(GetMapScreen().built);
    }
    OpenMap();
    Pick(kRoom2);
    Update(kZoomFrames);
    ClickAt(830, 330);
    RunTeleport();
    ASSERT_EQ(CurrentRoomNumber(), 2);
    EXPECT_FALSE(GetMapScreen().built);
    // The next opening builds anew, with the hero's marker in the new room.
    Update(5);
    OpenMap();
    EXPECT_EQ(GetMapScreen().marker->getPosition(), Room(kRoom2).home + sf::Vector2f(20, 0));
#ifdef OV_LEAK_CHECK
    EXPECT_EQ(__lsan_do_recoverable_leak_check(), 0);
#endif
}

}  // namespace

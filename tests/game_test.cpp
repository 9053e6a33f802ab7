// The game state on the authored rooms: loading, the frame's regimes, and each room as a player
// would find it.
#include "app/game.h"

#include <gtest/gtest.h>

#include "app/game_state.h"
#include "app/input.h"
#include "app/region_music.h"
#include "player/player.h"
#include "support/fixture.h"
#include "world/camera.h"
#include "world/room.h"
#include "world/room_draw.h"
#include "world/room_lifecycle.h"

namespace {

const int kAuthoredRooms[] = {1, 2, 3, 4, 5, 6, 7, 11};

class GameTest : public AppTest {
protected:
    void SetUp() override {
        AppTest::SetUp();
        testing::internal::CaptureStdout();
        ClickAt(200, 594);  // PLAY
        log = testing::internal::GetCapturedStdout();
        ASSERT_EQ(GetGameState(), GAME_STATE_GAME);
    }

    // Loads a room as a room change does and puts the camera's target on an arrival point.
    void EnterRoom(int number) {
        CleanupRoom();
        LoadNextTargetRoom(*app.window, number);
        const Room& room = CurrentRoom();
        if (!room.checkpointSpawns.empty()) {
            SetPlayerPosition(room.checkpointSpawns[0].position);
        } else if (!room.doorSpawns.empty()) {
            SetPlayerPosition(room.doorSpawns[0].position);
        }
    }

    std::string log;
};

// Whether a point just below the feet lies on something that carries the hero.
bool StandsOnGround(sf::Vector2f feet) {
    for (const Collision& collision : CurrentRoom().collisions) {
        if (collision.shape->getGlobalBounds().contains(feet.x, feet.y + 2)) return true;
    }
    return false;
}

bool Inside(const sf::FloatRect& outer, const sf::FloatRect& inner) {
    return inner.left >= outer.left - 0.5f && inner.top >= outer.top - 0.5f &&
           inner.left + inner.width <= outer.left + outer.width + 0.5f &&
           inner.top + inner.height <= outer.top + outer.height + 0.5f;
}

}  // namespace

TEST_F(GameTest, PlayLoadsTheFirstRoomBehindTheLoadingScreen) {
    EXPECT_EQ(log.rfind("Cleanup Menu\nLoad Game\n", 0), 0u);
    EXPECT_NE(log.find("camera size : x = 1920.000000\ty = 1080.000000\n"), std::string::npos);
    EXPECT_NE(log.find("Update loading screen !\n"), std::string::npos);
    EXPECT_NE(log.find("nb of collisions : "), std::string::npos);
    EXPECT_EQ(CurrentRoomNumber(), 1);
    EXPECT_TRUE(CurrentRoom().loaded);
    EXPECT_EQ(CurrentRoom().region, REGION_FOREST);
    ASSERT_FALSE(CurrentRoom().checkpointSpawns.empty());
    sf::Vector2f spawn = CurrentRoom().checkpointSpawns[0].position;
    EXPECT_NEAR(GetPlayerPosition().x, spawn.x, 0.01);
    EXPECT_NEAR(GetPlayerPosition().y, spawn.y, 3);
}

TEST_F(GameTest, AFrozenWorldStandsStillWhileTheFadeGoesOn) {
    Frames(30);
    Room& room = CurrentRoom();
    ASSERT_FALSE(room.tileAnimations.empty());
    ASSERT_FALSE(room.backgrounds.empty());
    Overlays().pauseOpen = 1;
    SetPlayerPosition(GetPlayerPosition() + sf::Vector2f(800, 0));  // the camera would follow
    sf::Vector2f center = GameCamera().view->getCenter();
    sf::Vector2f background = room.backgrounds[0].sprite->getPosition();
    float animationTimer = room.tileAnimations[0].timer;
    StartScreenFade(FADE_TO_BLACK, 0.2f);
    Frames(20);
    EXPECT_EQ(Overlays().worldFrozen, 1);
    EXPECT_EQ(GameCamera().view->getCenter(), center);
    EXPECT_EQ(room.backgrounds[0].sprite->getPosition(), background);
    EXPECT_EQ(room.tileAnimations[0].timer, animationTimer);
    EXPECT_EQ(Fade().done, 1);
    EXPECT_EQ(Fade().shape->getFillColor(), sf::Color::Black);
    Overlays().pauseOpen = 0;
    Frames(5);
    EXPECT_EQ(Overlays().worldFrozen, 0);
    EXPECT_NE(GameCamera().view->getCenter(), center);
}

TEST_F(GameTest, ForestMusicPlaysInTheForestAndCityMusicInTheCity) {
    Frames(2);
    EXPECT_TRUE(RegionMusicPlaying(REGION_FOREST));
    EXPECT_FALSE(RegionMusicPlaying(REGION_CITY));
    EnterRoom(11);
    Frames(2);
    EXPECT_FALSE(RegionMusicPlaying(REGION_FOREST));
    EXPECT_TRUE(RegionMusicPlaying(REGION_CITY));
}

TEST_F(GameTest, HomeShowsTheRoomsHiddenRectangles) {
    InputScriptPressKey(sf::Keyboard::Home);
    Frames(1);
    EXPECT_EQ(DebugOverlay(), 1);
    InputScriptPressKey(sf::Keyboard::Home);
    Frames(1);
    EXPECT_EQ(DebugOverlay(), 0);
}

TEST_F(GameTest, EveryAuthoredRoomIsAPlaceTheCameraCanFrame) {
    for (int number : kAuthoredRooms) {
        SCOPED_TRACE("room " + std::to_string(number));
        testing::internal::CaptureStdout();
        EnterRoom(number);
        Frames(90);
        std::string frames = testing::internal::GetCapturedStdout();
        const Room& room = CurrentRoom();
        ASSERT_TRUE(room.loaded);
        EXPECT_EQ(frames.find("Camera container is not set"), std::string::npos);
        EXPECT_EQ(room.region, number <= 10 ? REGION_FOREST : REGION_CITY);
        EXPECT_GT(room.collisions.size(), 50u);
        EXPECT_FALSE(room.backgrounds.empty());
        EXPECT_FALSE(room.transitionDoors.empty());
        ASSERT_TRUE(room.cameraContainer);
        sf::FloatRect container = room.cameraContainer->getGlobalBounds();
        sf::View& view = *GameCamera().view;
        sf::FloatRect shown(view.getCenter() - view.getSize() / 2.0f, view.getSize());
        EXPECT_TRUE(Inside(container, shown));
        for (const CheckpointSpawn& spawn : room.checkpointSpawns) {
            EXPECT_TRUE(StandsOnGround(spawn.position)) << "checkpoint " << spawn.id;
        }
        for (const DoorSpawn& spawn : room.doorSpawns) {
            EXPECT_TRUE(container.contains(spawn.position)) << "door spawn " << spawn.id;
        }
        for (const EnemySpawn& enemy : room.enemySpawns) {
            bool contained = false;
            for (const EnemyContainer& box : room.enemyContainers) {
                contained |=
                    box.id == enemy.containerId &&
                    box.shape->getGlobalBounds().contains(enemy.position.x, enemy.position.y - 1);
            }
            EXPECT_TRUE(contained) << "enemy at " << enemy.position.x << ", " << enemy.position.y;
            if (enemy.enemyType == 3 || enemy.enemyType == 4) {
                EXPECT_TRUE(StandsOnGround(enemy.position));  // these never fall
            }
        }
    }
}

TEST_F(GameTest, TheFirstRoomStartsANewGameWithoutAStatue) {
    const Room& room = CurrentRoom();
    bool checkpointZero = false;
    for (const CheckpointSpawn& spawn : room.checkpointSpawns) checkpointZero |= spawn.id == 0;
    EXPECT_TRUE(checkpointZero);
    for (const Trigger& trigger : room.triggers) EXPECT_NE(trigger.name, "Interaction spawn");
}

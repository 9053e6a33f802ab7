// The conjured cloud, driven by scripted input on a hand-built room and in the game itself.
#include "player/cloud.h"

#include <gtest/gtest.h>

#include "app/game_state.h"
#include "support/hero_fixture.h"
#include "world/room_draw.h"

namespace {

class CloudTest : public HeroTest {
protected:
    void SetUp() override {
        HeroTest::SetUp();
        Save().abilities.CanCreatePlatform = 1;
    }
    void TearDown() override {
        DebugOverlay() = 0;
        HeroTest::TearDown();
    }

    static float Vy() { return GetPlayer().body.vy; }
    // A full jump from where the hero stands, up to the top of its rise (jump released there).
    static void RiseToTheTop() {
        Press(BINDING_JUMP);
        for (int i = 0; i < 90; i++) {
            Step(1);
            if (State() == PLAYER_JUMP && !PlayerStanding() && Vy() >= 0) break;
        }
        Hold(BINDING_JUMP, false);
    }
    static void PressCloud() {
        Press(BINDING_CLOUD);
        Hold(BINDING_CLOUD, false);
    }
    static int LiveClouds() {
        int live = 0;
        for (int i = 0; i < CloudCount(); i++) live += GetCloudState(i) != CLOUD_DESTRUCTION;
        return live;
    }
    // Steps until the hero stands (at most `frames`); whether it does.
    static bool StepUntilStanding(int frames) {
        for (int i = 0; i < frames && !(PlayerStanding() && State() == PLAYER_IDLE); i++) Step(1);
        return PlayerStanding();
    }
    // Counts the frames the first cloud spends in `state`.
    static int FramesIn(int state) {
        int frames = 0;
        while (GetCloudState(0) == state && frames < 600) {
            Step(1);
            frames++;
        }
        return frames;
    }
};

// The game itself, driven through the window's events: the cloud key and the right trigger.
class CloudGameTest : public AppTest {
protected:
    void SetUp() override {
        AppTest::SetUp();
        ClickAt(200, 594);  // PLAY
        ASSERT_EQ(GetGameState(), GAME_STATE_GAME);
        Save().abilities.CanCreatePlatform = 1;
        ASSERT_TRUE(Land());
    }
    bool Land() {
        for (int i = 0; i < 180 && !(PlayerStanding() && PlayerOnSolidGround()); i++) Frames(1);
        return PlayerOnSolidGround();
    }
    // Jumps (the JUMP binding's key) and stops at the top of the rise.
    void RiseToTheTop() {
        auto jump = sf::Keyboard::Key(Settings().bindings[BINDING_JUMP]);
        InputScriptPressKey(jump);
        for (int i = 0; i < 90; i++) {
            Frames(1);
            const PlayerBody& body = GetPlayer().body;
            if (body.state == PLAYER_JUMP && !PlayerStanding() && body.vy >= 0) break;
        }
        InputScriptReleaseKey(jump);
    }
};

}  // namespace

TEST_F(CloudTest, NoCloudOnTheGroundOrWithoutTheAbility) {
    PressCloud();
    Step(30);
    EXPECT_EQ(CloudCount(), 0);
    EXPECT_FLOAT_EQ(Y(), kFloor);

    Save().abilities.CanCreatePlatform = 0;
    RiseToTheTop();
    PressCloud();
    EXPECT_EQ(CloudCount(), 0);
    EXPECT_TRUE(StepUntilStanding(120));
    EXPECT_FLOAT_EQ(Y(), kFloor);
    EXPECT_EQ(GetPlayer().body.onCloud, 0);
}

TEST_F(CloudTest, ACloudMadeAtTheTopOfAJumpHoldsTheHero) {
    RiseToTheTop();
    float top = Y();
    ASSERT_LT(top, kFloor - 250);
    // The press is taken even while the hero is not in control.
    GetPlayer().body.controllable = 0;
    PressCloud();
    GetPlayer().body.controllable = 1;
    ASSERT_EQ(CloudCount(), 1);
    EXPECT_EQ(GetCloudState(0), CLOUD_CREATION);
    EXPECT_FLOAT_EQ(GetCloudBox(0).top, top);  // right under the feet
    EXPECT_EQ(GetPlayer().body.onCloud, 1);
    Step(60);
    EXPECT_NEAR(Y(), top, 1.0f);
    EXPECT_TRUE(PlayerStanding());
    EXPECT_FALSE(PlayerOnSolidGround());
    EXPECT_EQ(State(), PLAYER_IDLE);
    EXPECT_EQ(GetCloudState(0), CLOUD_STATIC);
    // Walking about on it: still held, still one cloud.
    Hold(BINDING_RIGHT, true);
    Step(4);
    Hold(BINDING_RIGHT, false);
    Step(2);
    EXPECT_NEAR(Y(), top, 1.0f);
    EXPECT_EQ(LiveClouds(), 1);
}

TEST_F(CloudTest, JumpingOffACloudDissolvesItUntilTheHeroTouchesGroundOrAPlatform) {
    for (bool platform : {false, true}) {
        SCOPED_TRACE(platform ? "landing on a platform" : "landing on the floor");
        // A platform the first jump passes up through and the fall from the cloud lands on.
        if (platform) AddOneWay({-1000, kFloor - 150, 8000, 20});
        float landing = platform ? kFloor - 150 : kFloor;
        RiseToTheTop();
        PressCloud();
        Step(20);
        ASSERT_EQ(LiveClouds(), 1);
        Press(BINDING_JUMP);
        Step(3);
        Hold(BINDING_JUMP, false);
        EXPECT_EQ(LiveClouds(), 0);
        EXPECT_LT(Vy(), 0);
        // At the top of the second rise no cloud comes.
        while (Vy() < 0) Step(1);
        PressCloud();
        EXPECT_EQ(LiveClouds(), 0);
        ASSERT_TRUE(StepUntilStanding(180));
        EXPECT_FLOAT_EQ(Y(), landing);
        EXPECT_EQ(GetPlayer().body.onCloud, 0);
        Step(30);
        EXPECT_EQ(CloudCount(), 0);  // the dissolving cloud is gone
        // Touching the room gives the cloud back.
        RiseToTheTop();
        PressCloud();
        EXPECT_EQ(LiveClouds(), 1);
        Step(30);
        EXPECT_TRUE(PlayerStanding());
        // Down the quick way for the next round.
        Hold(BINDING_DOWN, true);
        Press(BINDING_JUMP);
        Step(2);
        Hold(BINDING_JUMP, false);
        Hold(BINDING_DOWN, false);
        ASSERT_TRUE(StepUntilStanding(180));
        Step(30);
    }
}

TEST_F(CloudTest, AStillHeroIsHeldForTheCreationClipPlusThreeSecondsThenFalls) {
    RiseToTheTop();
    float top = Y();
    PressCloud();
    int forming = FramesIn(CLOUD_CREATION);
    EXPECT_GT(forming, 1);
    EXPECT_LT(forming, 60);
    int held = FramesIn(CLOUD_STATIC);
    EXPECT_NEAR(held, 180, 1);  // 3 s
    EXPECT_NEAR(Y(), top, 1.0f);
    ASSERT_EQ(GetCloudState(0), CLOUD_DESTRUCTION);
    Step(10);
    EXPECT_GT(Y(), top + 10);
    EXPECT_FALSE(PlayerStanding());
    ASSERT_TRUE(StepUntilStanding(120));
    EXPECT_FLOAT_EQ(Y(), kFloor);
    EXPECT_EQ(CloudCount(), 0);
}

TEST_F(CloudTest, DownAndJumpOnACloudDropsThroughIt) {
    RiseToTheTop();
    float top = Y();
    PressCloud();
    Step(30);
    ASSERT_TRUE(PlayerStanding());
    Hold(BINDING_DOWN, true);
    Press(BINDING_JUMP);
    Step(1);
    EXPECT_EQ(LiveClouds(), 0);
    EXPECT_EQ(GetPlayer().body.jumpRequest, 0);
    bool rose = false;
    for (int i = 0; i < 20; i++) {
        Step(1);
        rose = rose || Vy() < 0;
    }
    EXPECT_FALSE(rose);  // down plus jump never jumps
    EXPECT_GT(Y(), top + 20);
    Hold(BINDING_JUMP, false);
    Hold(BINDING_DOWN, false);
    ASSERT_TRUE(StepUntilStanding(120));
    EXPECT_FLOAT_EQ(Y(), kFloor);
}

// A sheer wall six tiles high beside the hero: one jump falls short, a cloud at the top of it and
// a second jump clear it.
TEST_F(CloudTest, ACloudTurnsOneJumpIntoTwoAndClearsASixTileWall) {
    constexpr float kWallLeft = 700, kWallTop = kFloor - 576;
    AddSolid({kWallLeft, kWallTop, 3000, 576});
    Hold(BINDING_RIGHT, true);
    for (bool cloud : {false, true}) {
        SCOPED_TRACE(cloud ? "jump, cloud, jump" : "one jump");
        SetPlayerPosition({500, kFloor});
        Step(60);  // walked up to the wall
        ASSERT_NEAR(GetPlayerPosition().x, kWallLeft - 40, 1);
        RiseToTheTop();
        if (cloud) {
            PressCloud();
            Step(10);
            Press(BINDING_JUMP);
        }
        Step(90);
        Hold(BINDING_JUMP, false);
        ASSERT_TRUE(StepUntilStanding(120));
        if (cloud) {
            EXPECT_FLOAT_EQ(Y(), kWallTop);
            EXPECT_GT(GetPlayerPosition().x, kWallLeft);
        } else {
            EXPECT_FLOAT_EQ(Y(), kFloor);
            EXPECT_LT(GetPlayerPosition().x, kWallLeft);
        }
    }
}

TEST_F(CloudTest, TheDebugViewShowsTheCloudBoxAndTheHeroBoxes) {
    RiseToTheTop();
    PressCloud();
    Step(30);
    sf::Vector2f feet = GetPlayerPosition();
    sf::RenderTexture canvas;
    ASSERT_TRUE(canvas.create(400, 400));
    canvas.setView(sf::View(feet, {400, 400}));
    auto picture = [&canvas] {
        canvas.clear(sf::Color::Black);
        DrawPlayer(canvas);
        canvas.display();
        return canvas.getTexture().copyToImage();
    };
    // Canvas pixel of a world point.
    auto at = [&](const sf::Image& image, float dx, float dy) {
        return image.getPixel(unsigned(200 + dx), unsigned(200 + dy));
    };
    auto any = [&](const sf::Image& image, sf::Color color, float dx0, float dx1, float dy0,
                   float dy1) {
        for (float dy = dy0; dy <= dy1; dy++) {
            for (float dx = dx0; dx <= dx1; dx++) {
                if (at(image, dx, dy) == color) return true;
            }
        }
        return false;
    };
    sf::Image plain = picture();
    DebugOverlay() = 1;
    sf::Image debug = picture();

    // The cloud box, red over whatever the cloud shows, across the feet and below them.
    sf::FloatRect box = GetCloudBox(0);
    float boxDy = box.top + box.height / 2 - feet.y;
    for (float dx : {-box.width / 2 + 4, box.width / 2 - 4}) {
        sf::Color before = at(plain, dx, boxDy), after = at(debug, dx, boxDy);
        EXPECT_NE(before, after);
        EXPECT_GT(int(after.r) - int(after.g), 50);
    }
    // The body's green outline at its sides, the yellow sensor under the feet.
    EXPECT_TRUE(any(debug, sf::Color::Green, -41, -38, -100, -100));
    EXPECT_TRUE(any(debug, sf::Color::Green, 37, 40, -100, -100));
    EXPECT_TRUE(any(debug, sf::Color::Yellow, 0, 0, -2, 2));
    EXPECT_FALSE(any(plain, sf::Color::Green, -41, -38, -100, -100));
    EXPECT_FALSE(any(plain, sf::Color::Yellow, 0, 0, -2, 2));
}

TEST_F(CloudGameTest, TheCloudKeyAndTheRightTriggerMakeClouds) {
    RiseToTheTop();
    auto key = sf::Keyboard::Key(Settings().bindings[BINDING_CLOUD]);
    InputScriptPressKey(key);
    Frames(1);
    InputScriptReleaseKey(key);
    ASSERT_EQ(CloudCount(), 1);
    Frames(20);
    EXPECT_TRUE(PlayerStanding());
    EXPECT_FALSE(PlayerOnSolidGround());

    RiseToTheTop();  // off the cloud, which dissolves
    ASSERT_TRUE(Land());
    RiseToTheTop();
    InputScriptMoveAxis(sf::Joystick::Z, -50);  // the left trigger dashes, never makes a cloud
    Frames(1);
    InputScriptMoveAxis(sf::Joystick::Z, 0);
    EXPECT_EQ(GetCloudState(0), -1);
    RiseToTheTop();
    ASSERT_TRUE(Land());
    RiseToTheTop();
    InputScriptMoveAxis(sf::Joystick::Z, 50);
    Frames(1);
    InputScriptMoveAxis(sf::Joystick::Z, 0);
    EXPECT_EQ(GetCloudState(0), CLOUD_CREATION);
}

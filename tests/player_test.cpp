// The hero's movement and collision, driven by scripted input on a hand-built room.
#include <gtest/gtest.h>

#include "player/player_combat.h"
#include "support/hero_fixture.h"

namespace {

class PlayerTest : public HeroTest {
protected:
    // The floor ends at x 600; the next floor is far below.
    static void UseLedge() {
        CurrentRoom().collisions.clear();
        AddSolid({-1000, kFloor, 1600, 96});
        AddSolid({-1000, kFloor + 2000, 8000, 96});
    }
    // Whether the hero moves upwards at any time over the next frames.
    static bool Rises(int frames) {
        bool rose = false;
        for (int i = 0; i < frames; i++) {
            Step(1);
            rose = rose || GetPlayer().body.vy < 0;
        }
        return rose;
    }
    // One way to dash right off the ledge, then to press jump in the air.
    struct DashTry {
        bool holdDash;           // the dash input stays held: a run, or a walk without the run
        bool holdRight;          // steering right all along
        bool pressWhileDashing;  // jump pressed during the dash, else just after it
    };
    // Returns false if the dash ended with the hero still on the ledge.
    static bool DashOffTheLedgeAndJump(float x, DashTry how) {
        Step(120);  // down on the lower floor from any earlier try
        SetPlayerPosition({x, kFloor});
        Step(60);  // standing, the dash cooled down
        Hold(BINDING_RIGHT, how.holdRight);
        Press(BINDING_DASH);
        Hold(BINDING_DASH, how.holdDash);
        for (int i = 0; i < 3 && State() != PLAYER_DASH; i++) Step(1);
        while (State() == PLAYER_DASH) {
            if (how.pressWhileDashing && !PlayerStanding()) Press(BINDING_JUMP);
            Step(1);
        }
        if (PlayerStanding()) return false;
        if (!how.pressWhileDashing) Press(BINDING_JUMP);
        return true;
    }
    static void ReleaseAll() {
        for (int action : {BINDING_JUMP, BINDING_DASH, BINDING_RIGHT}) Hold(action, false);
    }
};

}  // namespace

TEST_F(PlayerTest, StandsOnTheFloorAfterItsFirstFall) {
    EXPECT_EQ(State(), PLAYER_IDLE);
    EXPECT_FLOAT_EQ(Y(), kFloor);
    EXPECT_TRUE(PlayerStanding());
    EXPECT_TRUE(PlayerOnSolidGround());
    EXPECT_EQ(GetPlayer().life, 100);
    EXPECT_EQ(GetPlayer().potions, 1);  // a new game carries one potion
}

TEST_F(PlayerTest, WalksAtWalkSpeedAndBothDirectionsCancel) {
    Hold(BINDING_RIGHT, true);
    Step(1);
    EXPECT_EQ(State(), PLAYER_WALK);
    float start = GetPlayerPosition().x;
    Step(60);
    EXPECT_NEAR(GetPlayerPosition().x - start, 700, 15);
    EXPECT_TRUE(PlayerFacingRight());
    Hold(BINDING_LEFT, true);
    Step(2);
    EXPECT_EQ(State(), PLAYER_IDLE);
    float x = GetPlayerPosition().x;
    Step(30);
    EXPECT_EQ(GetPlayerPosition().x, x);
    EXPECT_TRUE(PlayerFacingRight());  // facing stays while both are held
}

TEST_F(PlayerTest, WallsStopTheWalk) {
    AddSolid({700, kFloor - 400, 96, 400});
    Hold(BINDING_RIGHT, true);
    Step(120);
    EXPECT_NEAR(GetPlayerPosition().x, 700 - 40, 0.01);
    EXPECT_TRUE(GetPlayer().body.blocked[CONTACT_RIGHT]);
}

TEST_F(PlayerTest, AFullJumpRisesAboutThreeTilesAndATapIsAShortHop) {
    Press(BINDING_JUMP);
    float full = kFloor - Peak(60);
    EXPECT_NEAR(full, 300, 25);
    Step(60);
    ASSERT_EQ(State(), PLAYER_IDLE);

    Press(BINDING_JUMP);
    Step(2);
    Hold(BINDING_JUMP, false);
    float hop = kFloor - Peak(60);
    EXPECT_GT(hop, 100);
    EXPECT_LT(hop, 170);
}

TEST_F(PlayerTest, AJumpPressedJustBeforeLandingIsKept) {
    SetPlayerPosition({500, kFloor - 30});  // lands about 0.15 s after the press
    Step(2);
    ASSERT_EQ(State(), PLAYER_FALL);
    Press(BINDING_JUMP);
    Hold(BINDING_JUMP, false);
    Step(30);  // lands within 0.2 s and jumps at once
    EXPECT_LT(Y(), kFloor - 50);

    Step(120);
    SetPlayerPosition({500, kFloor - 600});
    Step(2);
    Press(BINDING_JUMP);
    Hold(BINDING_JUMP, false);
    Step(60);  // 0.2 s of falling forgets the press
    EXPECT_FLOAT_EQ(Y(), kFloor);
    EXPECT_EQ(State(), PLAYER_IDLE);
}

TEST_F(PlayerTest, WalkingOffALedgeLeavesAMomentToJump) {
    UseLedge();
    Hold(BINDING_RIGHT, true);
    while (PlayerStanding()) Step(1);  // the feet just left the ledge
    Step(3);
    EXPECT_EQ(State(), PLAYER_WALK);
    Press(BINDING_JUMP);
    Step(2);
    EXPECT_EQ(State(), PLAYER_JUMP);
    EXPECT_LT(GetPlayer().body.vy, 0);
}

// The ledge grace is for walking off an edge. A dash that carries the hero off one must not buy a
// jump in the air, whether it ends standing still, running, or walking (run held without the run
// ability): the dash and run gates of the rooms count on it.
TEST_F(PlayerTest, ADashOffALedgeBuysNoJumpInTheAir) {
    UseLedge();
    Save().abilities.canDash = 1;
    int airborneEnds = 0;
    for (int canRun : {0, 1}) {
        for (int way = 0; way < 8; way++) {
            DashTry how{(way & 1) != 0, (way & 2) != 0, (way & 4) != 0};
            for (float x = 590; x > 200; x -= 25) {
                SCOPED_TRACE(testing::Message()
                             << "run ability " << canRun << ", dash held " << how.holdDash
                             << ", right held " << how.holdRight << ", jump while dashing "
                             << how.pressWhileDashing << ", from x " << x);
                Save().abilities.canRun = canRun;
                if (DashOffTheLedgeAndJump(x, how)) {
                    airborneEnds++;
                    EXPECT_FALSE(Rises(30));
                    EXPECT_EQ(State(), PLAYER_FALL);
                }
                ReleaseAll();
            }
        }
    }
    EXPECT_GT(airborneEnds, 160);
}

TEST_F(PlayerTest, AKnockBackOffALedgeBuysNoJumpInTheAir) {
    UseLedge();
    SetPlayerPosition({570, kFloor});
    Step(10);
    HurtPlayer(10, {470, kFloor});  // knocked right, over the edge
    while (State() == PLAYER_TAKE_DAMAGE) Step(1);
    ASSERT_FALSE(PlayerStanding());
    Press(BINDING_JUMP);
    EXPECT_FALSE(Rises(30));
    EXPECT_EQ(State(), PLAYER_FALL);
}

TEST_F(PlayerTest, DownAndJumpDropThroughAOneWayPlatform) {
    AddOneWay({0, kFloor - 300, 1000, 30});
    SetPlayerPosition({500, kFloor - 320});
    Step(10);
    ASSERT_EQ(State(), PLAYER_IDLE);
    EXPECT_FLOAT_EQ(Y(), kFloor - 300);
    Hold(BINDING_DOWN, true);
    Press(BINDING_JUMP);  // never a jump while down is held
    Step(2);
    Hold(BINDING_JUMP, false);
    Hold(BINDING_DOWN, false);
    Step(60);
    EXPECT_FLOAT_EQ(Y(), kFloor);
    EXPECT_EQ(GetPlayer().dropThrough, 0);
}

TEST_F(PlayerTest, JumpingUpThroughAOneWayPlatformLandsOnIt) {
    AddOneWay({0, kFloor - 200, 1000, 30});
    Press(BINDING_JUMP);
    Step(90);
    EXPECT_FLOAT_EQ(Y(), kFloor - 200);
    EXPECT_EQ(State(), PLAYER_IDLE);
}

TEST_F(PlayerTest, ASquareOverlapPushesUpAndAColumnPushesSideways) {
    CurrentRoom().collisions.clear();
    AddSolid({460, 970, 30, 30});  // a 30 x 30 overlap at the left of the feet
    SetPlayerPosition({500, 1000});
    Step(1);
    EXPECT_NEAR(Y(), 970, 1);  // resolved upwards, not sideways
    CurrentRoom().collisions.clear();
    AddSolid({-1000, kFloor, 8000, 96});
    AddSolid({530, 700, 100, 300});
    SetPlayerPosition({500, 1000});
    Step(1);
    EXPECT_FLOAT_EQ(GetPlayerPosition().x, 490);  // out to the left by the overlap's width
}

TEST_F(PlayerTest, DashNeedsTheAbilityAndCoolsDown) {
    Press(BINDING_DASH);
    Step(1);
    EXPECT_NE(State(), PLAYER_DASH);
    Save().abilities.canDash = 1;
    Press(BINDING_DASH);
    Hold(BINDING_DASH, false);
    Step(1);
    ASSERT_EQ(State(), PLAYER_DASH);
    float start = GetPlayerPosition().x;
    Step(15);
    EXPECT_EQ(State(), PLAYER_IDLE);
    EXPECT_NEAR(GetPlayerPosition().x - start, 2100 * 0.2f, 40);
    Press(BINDING_DASH);
    Step(2);
    EXPECT_NE(State(), PLAYER_DASH);  // 0.7 s of cooldown
    Step(40);
    Press(BINDING_DASH);
    Step(1);
    EXPECT_EQ(State(), PLAYER_DASH);
}

TEST_F(PlayerTest, RunNeedsItsAbilityAndRunJumpsKeepTheirSpeed) {
    Save().abilities.canDash = 1;
    Press(BINDING_DASH);
    Step(20);  // dash ends while run is held, without the run ability: walk
    EXPECT_NE(State(), PLAYER_RUN);
    Hold(BINDING_DASH, false);
    Step(60);
    Save().abilities.canRun = 1;
    Press(BINDING_DASH);
    Step(20);
    ASSERT_EQ(State(), PLAYER_RUN);
    Press(BINDING_JUMP);
    Step(2);
    ASSERT_EQ(State(), PLAYER_JUMP);
    float start = GetPlayerPosition().x;
    Hold(BINDING_DASH, false);
    Hold(BINDING_LEFT, true);  // no steering in a run-jump
    Step(10);
    EXPECT_NEAR(GetPlayerPosition().x - start, 1190 * 10 * kDt, 5);
}

TEST_F(PlayerTest, WithoutControlTheHeroIgnoresInputAndDiesAtZeroLife) {
    GetPlayer().body.controllable = 0;
    Press(BINDING_JUMP);
    Hold(BINDING_RIGHT, true);
    Step(10);
    EXPECT_EQ(State(), PLAYER_IDLE);
    EXPECT_EQ(GetPlayer().body.jumpRequest, 0);
    GetPlayer().body.controllable = 1;
    Hold(BINDING_RIGHT, false);
    GetPlayer().life = 0;
    Step(1);
    EXPECT_EQ(State(), PLAYER_DEAD);
    EXPECT_EQ(GetPlayer().body.controllable, 0);
}

TEST_F(PlayerTest, TheSafePositionIsTakenOnceASecondOnSolidGround) {
    Step(60);
    EXPECT_EQ(GetPlayer().lastSafePosition, GetPlayerPosition());
    Hold(BINDING_RIGHT, true);
    Step(30);
    sf::Vector2f recorded = GetPlayer().lastSafePosition;
    EXPECT_NE(recorded, GetPlayerPosition());
    Step(31);
    EXPECT_NE(GetPlayer().lastSafePosition, recorded);
}

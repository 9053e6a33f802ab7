// The gates of the built rooms, crossed by the real hero on the real room's collisions with
// scripted input: with the ability he lands on the far side, without it the same input leaves
// him in the pit. The rooms are loaded without their enemies.
#include <gtest/gtest.h>

#include "player/cloud.h"
#include "support/hero_fixture.h"

namespace {

constexpr float T = 96;  // one tile in world px

class GateCrossing : public HeroTest {
protected:
    // The room's map in place of the fixture's floor, and the hero standing at `feet`.
    static void Enter(int room, sf::Vector2f feet, bool dash, bool run, bool cloud = false) {
        for (int action : {BINDING_RIGHT, BINDING_DASH, BINDING_JUMP, BINDING_CLOUD})
            Hold(action, false);
        testing::internal::CaptureStdout();
        if (CurrentRoom().roomNumber != room) {
            sf::RenderWindow window(sf::VideoMode(320, 180), "gates", sf::Style::None);
            LoadRoomMap(window, RoomMapPath(room), 32, 3.0f, room);
        }
        Save().abilities.canDash = dash;
        Save().abilities.canRun = run;
        Save().abilities.CanCreatePlatform = cloud;
        // The fixture's hero, fresh: a new one each time would pile up its sounds.
        Player& player = GetPlayer();
        player.body = PlayerBody();
        player.dropThrough = 0;
        player.jumpBufferTimer = 0;
        ResetPlayerActions();
        while (CloudCount() > 0) RemoveCloud(0);
        SetPlayerState(PLAYER_FALL);
        SetPlayerFacing(true);
        SetPlayerPosition(feet);
        Step(10);
        testing::internal::GetCapturedStdout();
        ASSERT_TRUE(CurrentRoom().loaded) << "room " << room;
        ASSERT_TRUE(PlayerStanding())
            << "room " << room << ": the hero does not stand at " << feet.x << ", " << feet.y;
    }
    // Runs until the hero, having left the ground, stands again or drops out of the room.
    static sf::Vector2f Settle() {
        float bottom = CurrentRoom().cameraContainer->getGlobalBounds().height;
        bool flew = false;
        for (int frame = 0; frame < 600 && Y() < bottom; frame++) {
            UpdatePlayer(kDt);
            if (!PlayerStanding()) {
                flew = true;
            } else if (flew) {
                break;
            }
        }
        return GetPlayerPosition();
    }
    // Walks right from where the hero stands, dashing (a press, then the key let go) once he
    // has taken a step.
    static sf::Vector2f WalkAndDash() {
        Hold(BINDING_RIGHT, true);
        Step(2);
        Press(BINDING_DASH);
        Step(1);
        Hold(BINDING_DASH, false);
        return Settle();
    }
};

}  // namespace

// Room 3's chasm under the low roof: the rim's floor is row 14, the chasm columns 30 to 34, the
// far floor row 16 from column 35.
TEST_F(GateCrossing, TheDashCarriesOverRoomThreesChasmAndAWalkFallsIn) {
    Enter(3, {29 * T + 48, 14 * T}, true, false);
    sf::Vector2f landed = WalkAndDash();
    EXPECT_NEAR(landed.y, 16 * T, 4);
    EXPECT_GE(landed.x, 35 * T);

    Enter(3, {29 * T + 48, 14 * T}, false, false);
    landed = WalkAndDash();
    EXPECT_GT(landed.y, 17 * T) << "he should be deep in the chasm";
    EXPECT_LT(landed.x, 35 * T);
}

// Room 5's tunnel: its floor is row 12 to column 37, the spike pit columns 38 to 42 (the spikes
// on row 14) and the far floor row 14 from column 43.
TEST_F(GateCrossing, TheDashCarriesOverRoomFivesSpikePitAndAWalkFallsIn) {
    Enter(5, {37 * T + 48, 12 * T}, true, false);
    sf::Vector2f landed = WalkAndDash();
    EXPECT_NEAR(landed.y, 14 * T, 4);
    EXPECT_GE(landed.x, 43 * T);

    Enter(5, {37 * T + 48, 12 * T}, false, false);
    landed = WalkAndDash();
    EXPECT_GE(landed.x, 38 * T);
    EXPECT_LT(landed.x, 43 * T) << "he should have come down among the spikes";
}

// Without the dash the best a walk can do at a low-roofed gate: walk off the edge and jump in
// the ledge grace, so that the head knocks the roof and the fall starts afresh from it.
TEST_F(GateCrossing, AJumpInTheLedgeGraceUnderTheLowRoofsFallsShort) {
    struct Edge {
        int room;
        sf::Vector2f feet;
        float farFloor, farEdge;
    };
    for (Edge edge : {Edge{3, {29 * T + 48, 14 * T}, 16 * T, 35 * T},
                      Edge{5, {37 * T + 48, 12 * T}, 14 * T, 43 * T}}) {
        for (int late = 0; late < 10; late++) {
            Enter(edge.room, edge.feet, false, false);
            Hold(BINDING_RIGHT, true);
            for (int frame = 0; frame < 60 && PlayerStanding(); frame++) Step(1);
            Step(late);
            Press(BINDING_JUMP);
            sf::Vector2f landed = Settle();
            Hold(BINDING_JUMP, false);
            Hold(BINDING_RIGHT, false);
            EXPECT_FALSE(std::abs(landed.y - edge.farFloor) < 4 && landed.x >= edge.farEdge - 28)
                << "room " << edge.room << ": a jump " << late
                << " updates after walking off lands on the far side at " << landed.x << ", "
                << landed.y;
        }
    }
}

// Room 11's broken bridge: the street (row 11) ends at column 12 and starts again at column 23;
// the drain under it has its floor on row 15.
TEST_F(GateCrossing, ARunningJumpClearsRoomElevensVoidAndAWalkingJumpDropsIntoTheDrain) {
    for (bool run : {true, false}) {
        Enter(11, {3 * T + 48, 11 * T}, true, run);
        Hold(BINDING_RIGHT, true);
        Press(BINDING_DASH);  // held on: the run follows the dash
        for (int frame = 0; frame < 300 && GetPlayerPosition().x < 13 * T - 10; frame++) Step(1);
        Press(BINDING_JUMP);
        sf::Vector2f landed = Settle();
        if (run) {
            EXPECT_NEAR(landed.y, 11 * T, 4) << "with the run";
            EXPECT_GE(landed.x, 23 * T) << "with the run";
        } else {
            EXPECT_NEAR(landed.y, 15 * T, 4) << "without the run, in the drain";
            EXPECT_LT(landed.x, 23 * T) << "without the run";
        }
        for (int action : {BINDING_RIGHT, BINDING_DASH, BINDING_JUMP}) Hold(action, false);
    }
}

// Room 16's bell tower: the balcony's floor is row 16 up to column 38, the tower's sheer face is
// column 39 and its top, the floor before door 2, row 10. The hero jumps against the face, makes
// a cloud at the top of the jump and jumps again from it; without the cloud the same keys bring
// him back down onto the balcony.
TEST_F(GateCrossing, ACloudAtTheTopOfAJumpClimbsRoomSixteensBellTowerAndAJumpAloneFallsBack) {
    for (bool cloud : {true, false}) {
        Enter(16, {37 * T + 48, 16 * T}, true, true);
        Save().abilities.CanCreatePlatform = cloud;
        Hold(BINDING_RIGHT, true);
        Press(BINDING_JUMP);
        Step(2);
        for (float last = Y() + 1; Y() < last;) {  // rising against the face
            last = Y();
            Step(1);
        }
        Hold(BINDING_JUMP, false);
        Press(BINDING_CLOUD);
        Hold(BINDING_CLOUD, false);
        Step(3);
        Press(BINDING_JUMP);
        sf::Vector2f landed = Settle();
        for (int action : {BINDING_RIGHT, BINDING_JUMP}) Hold(action, false);
        Save().abilities.CanCreatePlatform = 0;
        if (cloud) {
            EXPECT_NEAR(landed.y, 10 * T, 4) << "with the cloud, on top of the tower";
            EXPECT_GE(landed.x, 39 * T) << "with the cloud";
        } else {
            EXPECT_NEAR(landed.y, 16 * T, 4) << "without the cloud, back on the balcony";
            EXPECT_LT(landed.x, 39 * T) << "without the cloud";
        }
    }
}

// Room 17's tower: its foot (floor row 30, columns 58-62) meets a bare wall six tiles tall (column
// 63), whose top is the shelf on row 24. Pressed against the wall, the hero jumps, calls a cloud
// at the top of the rise and jumps again from it.
TEST_F(GateCrossing, ACloudAtTheTopOfAJumpClimbsRoomSeventeensBareWallAndAJumpAloneFallsBack) {
    for (bool cloud : {true, false}) {
        Enter(17, {62 * T + 48, 30 * T}, true, true, cloud);
        Hold(BINDING_RIGHT, true);
        Press(BINDING_JUMP);
        for (int frame = 0; frame < 90 && (PlayerStanding() || GetPlayer().body.vy < 0); frame++)
            Step(1);
        Hold(BINDING_JUMP, false);
        Press(BINDING_CLOUD);
        Hold(BINDING_CLOUD, false);
        Step(2);
        Press(BINDING_JUMP);
        sf::Vector2f landed = Settle();
        for (int action : {BINDING_RIGHT, BINDING_JUMP}) Hold(action, false);
        if (cloud) {
            EXPECT_NEAR(landed.y, 24 * T, 4) << "with the cloud, on the shelf";
            EXPECT_GE(landed.x, 63 * T) << "with the cloud";
        } else {
            EXPECT_NEAR(landed.y, 30 * T, 4) << "without the cloud, back at the foot";
            EXPECT_LT(landed.x, 63 * T) << "without the cloud";
        }
    }
}

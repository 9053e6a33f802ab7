// The whole critical path played from a new game by the scripted player: every room entered
// through its door, every chest opened, every statue rested at, the four bosses beaten with the
// sword, and the ending run to the title menu. When a room or an enemy changes so that the route
// breaks, the failure says in which room, going where, and how long the player tried.
#include <cstdlib>

#include "app/game_state.h"
#include "support/autoplayer.h"
#include "support/fixture.h"
#include "world/room_lifecycle.h"

namespace {

using G = AutoplayGoal;

// The route: each room with what is done there, in order, and the game time it may take.
const std::vector<AutoplayRoom> kRoute = {
    {1, {{G::DOOR, 0}}, 60},
    {2, {{G::STATUE, 0}, {G::DOOR, 1}}, 90},
    {3, {{G::CHEST, 0}, {G::DOOR, 1}}, 90},
    {4, {{G::STATUE, 0}, {G::DOOR, 2}}, 90},
    {8, {{G::CHEST, 0}, {G::DOOR, 1}}, 90},
    {4, {{G::DOOR, 3}}, 60},
    {10, {{G::KILL, 0}, {G::DOOR, 1}}, 150},
    {11, {{G::DOOR, 1}}, 60},
    {12, {{G::STATUE, 0}, {G::DOOR, 1}}, 90},
    {13, {{G::STATUE, 0}, {G::DOOR, 1}}, 90},
    {14, {{G::DOOR, 1}}, 60},
    {15, {{G::CHEST, 0}, {G::DOOR, 1}}, 120},
    {16, {{G::STATUE, 0}, {G::DOOR, 1}}, 120},
    {17, {{G::KILL, 0}, {G::DOOR, 1}}, 150},
    {19, {{G::DOOR, 2}}, 60},
    {20, {{G::STATUE, 0}, {G::DOOR, 1}}, 60},
    {21, {{G::KILL, 0}, {G::DOOR, 1}}, 150},
    {22, {{G::DOOR, 1}}, 90},
    {23, {{G::STATUE, 0}, {G::KILL, 0}}, 600},
};

// A new game from the title menu, its rooms' random draws fixed.
class Playthrough : public AppTest {
protected:
    void SetUp() override {
        AppTest::SetUp();
        std::srand(20261125);
        ClickAt(200, 594);  // PLAY
        ASSERT_EQ(GetGameState(), GAME_STATE_GAME);
        StartAutoplayer(app);
    }
    void TearDown() override {
        StopAutoplayer();
        AppTest::TearDown();
    }
};

}  // namespace

TEST_F(Playthrough, TheScriptedPlayerFollowsTheCriticalPathToTheEnd) {
    testing::internal::CaptureStdout();
    std::string fault;
    size_t played = 0;
    // OV_PLAYTHROUGH_FROM=<leg> starts at that leg of the route, to work on a later stretch.
    const char* from = std::getenv("OV_PLAYTHROUGH_FROM");
    if (from && std::atoi(from) > 0 && size_t(std::atoi(from)) < kRoute.size()) {
        played = size_t(std::atoi(from));
        int abilities = 0, chests = 0;
        for (size_t leg = 0; leg < played; leg++) {
            for (const AutoplayGoal& goal : kRoute[leg].goals) {
                if (goal.kind == G::CHEST) abilities |= 1 << chests++;  // dash, run, cloud
            }
        }
        AutoplayEnterRoom(kRoute[played].room, kRoute[played - 1].room, abilities);
    }
    for (; played < kRoute.size() && fault.empty(); played++) {
        fault = AutoplayRoomGoals(kRoute[played]);
        if (!fault.empty()) break;
    }
    if (fault.empty() && played == kRoute.size()) fault = AutoplayEnding(120);
    testing::internal::GetCapturedStdout();
    std::string where = played < kRoute.size()
                            ? "on leg " + std::to_string(played + 1) + " of the route's " +
                                  std::to_string(kRoute.size())
                            : std::string("in the ending");
    EXPECT_EQ(fault, "") << where << ", after " << AutoplayClock() << " s of play";
}

// The ending: dawn over the world, the roll, and the way back to the title with the save kept.
#include "menus/ending.h"

#include <gtest/gtest.h>

#include "app/game.h"
#include "app/game_state.h"
#include "app/input.h"
#include "menus/main_menu.h"
#include "support/game_fixture.h"

namespace {

class EndingTest : public GameRoomTest {
protected:
    // Frames with drawing, each of dt seconds of game time, until the condition or the limit.
    template <typename Condition>
    int RunUntil(Condition done, int limit) {
        for (int i = 0; i < limit; i++) {
            if (done()) return i;
            Frames(1);
        }
        return limit;
    }
};

TEST_F(EndingTest, DawnTakesTheHerosControlThenTheScreenRollsAndTheTitleComesBack) {
    std::string save = ReadFile("Assets/Saves/PlayerSave.txt");
    testing::internal::CaptureStdout();
    StartEnding();
    Frames(2);
    EXPECT_FALSE(GetPlayer().body.controllable) << "the hero stands still while the light rises";
    // Escape neither pauses nor skips the dawn.
    InputScriptPressKey(sf::Keyboard::Escape);
    InputScriptReleaseKey(sf::Keyboard::Escape);
    Frames(1);
    EXPECT_EQ(Overlays().pauseOpen, 0);
    EXPECT_FALSE(EndingScreenShown());

    // The screen comes after about four seconds of frames at most 1/60 s long.
    int frames = RunUntil([] { return EndingScreenShown(); }, 600);
    EXPECT_LT(frames, 600) << "the ending screen never showed";
    EXPECT_EQ(GetGameState(), GAME_STATE_GAME);

    // A press hurries the roll; one at THE END goes back to the title at once, well before the
    // roll could have ended at its own pace (about a minute).
    int pressed = 0;
    for (; pressed < 20 && GetGameState() == GAME_STATE_GAME; pressed++) {
        InputScriptPressKey(sf::Keyboard::Space);
        InputScriptReleaseKey(sf::Keyboard::Space);
        Frames(1);
        for (int i = 0; i < 60 && GetGameState() == GAME_STATE_GAME; i++) Update(1);
    }
    EXPECT_LT(pressed, 16) << "the presses did not hurry the roll";
    std::string log = testing::internal::GetCapturedStdout();
    EXPECT_EQ(GetGameState(), GAME_STATE_MENU) << "the title menu never came back";
    EXPECT_NE(log.find("Ending : dawn\n"), std::string::npos);
    EXPECT_NE(log.find("Ending : the end\n"), std::string::npos);
    EXPECT_NE(log.find("Ending : back to the title\n"), std::string::npos);
    EXPECT_EQ(ReadFile("Assets/Saves/PlayerSave.txt"), save) << "the ending must keep the save";
    EXPECT_FALSE(EndingRunning());
}

TEST_F(EndingTest, WithoutAPressTheRollEndsByItselfAndANewGameStartsClean) {
    testing::internal::CaptureStdout();
    StartEnding();
    // Dawn, the roll at its own pace and THE END's pause: well under two minutes of game time.
    for (int i = 0; i < 60 * 120 && GetGameState() == GAME_STATE_GAME; i++) Update(1);
    testing::internal::GetCapturedStdout();
    ASSERT_EQ(GetGameState(), GAME_STATE_MENU);
    ClickAt(200, 594);  // PLAY again
    ASSERT_EQ(GetGameState(), GAME_STATE_GAME);
    EXPECT_FALSE(EndingRunning());
    Frames(2);
    EXPECT_TRUE(GetPlayer().body.controllable);
}

}  // namespace

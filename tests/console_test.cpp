// The debug console in a running game: typing, its limits, and every command as a tester uses it.
#include "debug/console.h"

#include <gtest/gtest.h>

#include "enemies/enemies.h"
#include "hud/explanation_panel.h"
#include "interactables/money.h"
#include "player/save.h"
#include "support/game_fixture.h"
#include "world/camera.h"
#include "world/room_draw.h"

namespace {

class ConsoleTest : public GameRoomTest {
protected:
    void SetUp() override {
        GameRoomTest::SetUp();
        Money().money = Money().moneyShown = 0;
    }

    // F1 and the line typed; Enter's key runs it (the world still frozen) and its carriage
    // return, read in the next frame, closes the console.
    std::string TypeAndPressEnter(const std::string& line) {
        Tap(sf::Keyboard::F1);
        EXPECT_EQ(Overlays().consoleOpen, 1);
        Type(line);
        return Tap(sf::Keyboard::Enter);
    }
    std::string Run(const std::string& line) {
        std::string log = TypeAndPressEnter(line);
        Type("\r");
        return log;
    }
};

}  // namespace

TEST_F(ConsoleTest, OpensFrozenTypesEditsAndClosesWithoutRunningOnEscape) {
    Tap(sf::Keyboard::F1);
    ASSERT_EQ(Overlays().consoleOpen, 1);
    sf::Vector2f hero = GetPlayerPosition();
    Type("/addd");
    Type("\b");
    EXPECT_EQ(ConsoleLine(), "/add");
    // Keys typed into the console do not move the hero, nor does the world run.
    InputScriptPressKey(sf::Keyboard::Key(Settings().bindings[BINDING_RIGHT]));
    Frames(10);
    InputScriptReleaseKey(sf::Keyboard::Key(Settings().bindings[BINDING_RIGHT]));
    EXPECT_EQ(GetPlayer().body.controllable, 0);
    EXPECT_EQ(GetPlayerPosition(), hero);

    Tap(sf::Keyboard::Escape);
    EXPECT_EQ(Overlays().consoleOpen, 0);
    EXPECT_EQ(Overlays().pauseOpen, 0);
    EXPECT_EQ(ConsoleLine(), "");
    Frames(1);
    EXPECT_EQ(GetPlayer().body.controllable, 1);
}

TEST_F(ConsoleTest, TheLineHoldsAtMost255PrintableCharacters) {
    Tap(sf::Keyboard::F1);
    Type(std::string(300, 'a') + "\t\x7f");
    EXPECT_EQ(ConsoleLine(), std::string(255, 'a'));
    Type("\b");
    Type("bc");
    EXPECT_EQ(ConsoleLine(), std::string(254, 'a') + "b");
}

TEST_F(ConsoleTest, MoneyIsAddedWithItsPopupAndRemovedBelowZero) {
    Run("/add money 250");
    EXPECT_EQ(Overlays().consoleOpen, 0);
    EXPECT_EQ(ConsoleLine(), "");
    EXPECT_EQ(Money().money, 250);
    ASSERT_TRUE(MoneyPopupText());
    EXPECT_EQ(std::string(MoneyPopupText()->getString()), "+ 250");
    Update(200);
    EXPECT_EQ(Money().moneyShown, 250);

    Money().money = Money().moneyShown = 100;
    std::string log = TypeAndPressEnter("/remove money 500");
    EXPECT_NE(log.find("Money removed : 500\n"), std::string::npos);
    EXPECT_EQ(Money().money, -400);
    EXPECT_EQ(Money().moneyShown, 0);
    Type("\r");  // the world's next update
    EXPECT_EQ(Money().moneyShown, -400);

    Run("/add money");  // no amount adds nothing
    EXPECT_EQ(Money().money, -400);
}

TEST_F(ConsoleTest, GiveMatchesItsPrefixesAndOpensTheAbilityPanel) {
    struct Case {
        const char* line;
        int dash, run, cloud;
    };
    const Case cases[] = {
        {"/give/runx", 0, 0, 0}, {"/give/run", 0, 1, 0},    {"/give/cloudy", 0, 1, 1},
        {"/give/das", 0, 1, 1},  {"/give/dashes", 1, 1, 1},
    };
    WriteNewGameSave();
    for (const Case& c : cases) {
        SCOPED_TRACE(c.line);
        Overlays().explanationOpen = 0;
        Run(c.line);
        const Abilities& owned = Save().abilities;
        EXPECT_EQ(owned.canDash, c.dash);
        EXPECT_EQ(owned.canRun, c.run);
        EXPECT_EQ(owned.CanCreatePlatform, c.cloud);
    }
    EXPECT_EQ(Overlays().explanationOpen, 1);
    EXPECT_EQ(std::string(ExplanationTitle()->getString()), "Dash");
}

TEST_F(ConsoleTest, GodTogglesAndHealsDebugTogglesAndKillsNeedExactWords) {
    GetPlayer().life = 40;
    Run("/god");
    EXPECT_EQ(GetPlayer().godMode, 1);
    EXPECT_EQ(GetPlayer().life, 100);
    GetPlayer().life = 70;
    Run("/godmod");
    EXPECT_EQ(GetPlayer().godMode, 0);
    EXPECT_EQ(GetPlayer().life, 100);

    int debug = DebugOverlay();
    Run("/debug");
    EXPECT_EQ(DebugOverlay(), 1 - debug);
    Run("/debug ");
    EXPECT_EQ(DebugOverlay(), 1 - debug);
    Run("/debug");
    EXPECT_EQ(DebugOverlay(), debug);

    Run("/kill/players");
    EXPECT_NE(GetPlayer().body.state, PLAYER_DEAD);
    Run("/kill/player");
    EXPECT_EQ(GetPlayer().body.state, PLAYER_DEAD);
    EXPECT_EQ(GetPlayer().life, 100);
}

TEST_F(ConsoleTest, KillEnemyFellsEveryEnemyOfTheRoomWithoutPaying) {
    GetPlayer().godMode = 1;
    Enter(3);
    int alive = 0;
    for (int kind = 0; kind < ENEMY_KIND_COUNT; kind++) alive += EnemyCount(kind);
    ASSERT_GT(alive, 3);
    Run("/kill/enemy");
    Update(240);
    EXPECT_EQ(CountDeadEnemies(), alive);
    EXPECT_EQ(Money().money, 0);
}

TEST_F(ConsoleTest, TheCameraShowsTheWholeRoomAndComesBack) {
    Enter(3);
    ASSERT_TRUE(CurrentRoom().cameraContainer);
    sf::Vector2f room = CurrentRoom().cameraContainer->getSize();
    Run("/camera/dezoom");
    sf::Vector2f size = GameView()->getSize();
    EXPECT_EQ(size, FitViewSize(room));
    EXPECT_GT(size.x, 1920 * 2);
    Run("/camera/zoom");
    EXPECT_EQ(GameView()->getSize(), sf::Vector2f(1920, 1080));
}

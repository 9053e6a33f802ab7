// The program shell: frame time, window rebuilds, states and the title menu's routing.
#include <gtest/gtest.h>

#include <cstring>

#include "app/game.h"
#include "app/game_state.h"
#include "app/input.h"
#include "menus/credits.h"
#include "menus/main_menu.h"
#include "menus/settings_files.h"
#include "menus/settings_screen.h"
#include "support/fixture.h"

namespace {

unsigned Bits(float value) {
    unsigned bits;
    std::memcpy(&bits, &value, sizeof bits);
    return bits;
}

// Menu coordinates of the list entries' labels.
const sf::Vector2f kPlay(200, 594), kSettings(200, 702), kCredits(200, 783), kQuit(200, 864);

}  // namespace

TEST(FrameTime, LongFramesCountAsOneSixtiethAndShortOnesPassThrough) {
    EXPECT_EQ(Bits(ClampFrameTime(4.5f)), 0x3C888889u);
    EXPECT_EQ(Bits(ClampFrameTime(0.0200001f)), 0x3C888889u);
    EXPECT_EQ(ClampFrameTime(0.02f), 0.02f);
    EXPECT_EQ(ClampFrameTime(0.001f), 0.001f);
}

using Shell = AppTest;
using TitleMenu = AppTest;

TEST_F(Shell, StartsOnTheTitleMenuWithBindingsFromTheFile) {
    EXPECT_EQ(GetGameState(), GAME_STATE_MENU);
    EXPECT_EQ(GetMenuScreen(), MENU_SCREEN_LIST);
    EXPECT_EQ(GetSelectedEntry(), MENU_ENTRY_PLAY);
    EXPECT_EQ(Settings().bindings[BINDING_RIGHT], sf::Keyboard::D);
    EXPECT_EQ(app.window->getSize(), sf::Vector2u(1920, 1080));
    EXPECT_EQ(app.style, 7);
}

TEST_F(Shell, FullScreenTwiceGivesBackTheWindowAndKeepsTheState) {
    ClickAt(kCredits.x, kCredits.y);
    ASSERT_EQ(GetMenuScreen(), MENU_SCREEN_CREDITS);
    InputScriptPressKey(sf::Keyboard::F11);
    Frames(1);
    EXPECT_EQ(app.style, 8);
    InputScriptPressKey(sf::Keyboard::F11);
    Frames(1);
    EXPECT_EQ(app.style, 7);
    EXPECT_TRUE(app.window->isOpen());
    EXPECT_EQ(app.window->getSize(), sf::Vector2u(1920, 1080));
    EXPECT_EQ(GetMenuScreen(), MENU_SCREEN_CREDITS);
    EXPECT_TRUE(CreditsLoaded());
}

TEST_F(Shell, ClosingDuringAGameFreesItOnceAfterTheWindow) {
    ClickAt(kPlay.x, kPlay.y);
    ASSERT_EQ(GetGameState(), GAME_STATE_GAME);
    sf::Event close{};
    close.type = sf::Event::Closed;
    InputScriptEvent(close);
    Frames(1);
    EXPECT_FALSE(app.window->isOpen());
    ShutDownApp(app);
    EXPECT_EQ(app.window, nullptr);
    EXPECT_EQ(GameView(), nullptr);
}

TEST_F(TitleMenu, PlayFreesTheMenuBeforeTheGameLoads) {
    testing::internal::CaptureStdout();
    ClickAt(kPlay.x, kPlay.y);
    ClickAt(kPlay.x, kPlay.y);  // the menu is gone: a second PLAY is impossible
    std::string log = testing::internal::GetCapturedStdout();
    EXPECT_EQ(log.rfind("Cleanup Menu\nLoad Game\n", 0), 0u);
    EXPECT_EQ(log.find("Load Game", log.find("Load Game") + 1), std::string::npos);
    EXPECT_EQ(GetGameState(), GAME_STATE_GAME);
    EXPECT_EQ(MenuLayer(), nullptr);
}

TEST_F(TitleMenu, HoverSelectsAndThePadConfirmsTheSelection) {
    MoveTo(kSettings.x, kSettings.y);
    EXPECT_EQ(GetSelectedEntry(), MENU_ENTRY_SETTINGS);
    InputScriptPressButton(0);
    Frames(1);
    EXPECT_EQ(GetMenuScreen(), MENU_SCREEN_SETTINGS);
    EXPECT_EQ(GetSettingsTab(), SETTINGS_TAB_SOUND);
    EXPECT_TRUE(SettingsScreenLoaded());
}

TEST_F(TitleMenu, PadSelectionStopsAtBothEndsOfTheList) {
    InputScriptMoveAxis(sf::Joystick::PovY, 100);  // up, already on PLAY
    Frames(1);
    EXPECT_EQ(GetSelectedEntry(), MENU_ENTRY_PLAY);
    for (int i = 0; i < 5; i++) InputScriptMoveAxis(sf::Joystick::PovY, -100);
    InputScriptMoveAxis(sf::Joystick::PovY, 0);
    Frames(1);
    EXPECT_EQ(GetSelectedEntry(), MENU_ENTRY_QUIT);
    InputScriptMoveAxis(sf::Joystick::PovY, 100);
    Frames(1);
    EXPECT_EQ(GetSelectedEntry(), MENU_ENTRY_CREDITS);
}

TEST_F(TitleMenu, KeyboardDoesNothingOnTheList) {
    for (int key :
         {sf::Keyboard::Enter, sf::Keyboard::Space, sf::Keyboard::Escape, sf::Keyboard::Down}) {
        InputScriptPressKey(sf::Keyboard::Key(key));
    }
    Frames(2);
    EXPECT_EQ(GetGameState(), GAME_STATE_MENU);
    EXPECT_EQ(GetMenuScreen(), MENU_SCREEN_LIST);
    EXPECT_EQ(GetSelectedEntry(), MENU_ENTRY_PLAY);
    EXPECT_TRUE(app.window->isOpen());
}

TEST_F(TitleMenu, CreditsLeaveOnlyByMouseAndDoNotPileUp) {
    for (int round = 0; round < 3; round++) {
        ClickAt(kCredits.x, kCredits.y);
        ASSERT_EQ(GetMenuScreen(), MENU_SCREEN_CREDITS);
        InputScriptPressButton(0);
        InputScriptPressKey(sf::Keyboard::Escape);
        Frames(1);
        EXPECT_EQ(GetMenuScreen(), MENU_SCREEN_CREDITS);
        ClickAt(1766, 1026, sf::Mouse::Right);  // any button on RETURN
        EXPECT_EQ(GetMenuScreen(), MENU_SCREEN_LIST);
        EXPECT_FALSE(CreditsLoaded());
    }
}

TEST_F(TitleMenu, QuitClosesTheWindow) {
    ClickAt(kQuit.x, kQuit.y);
    EXPECT_FALSE(app.window->isOpen());
}

TEST_F(TitleMenu, ClicksOutsideTheEntriesChooseNothing) {
    ClickAt(1400, 600);
    ClickAt(kQuit.x, kQuit.y + 60);
    EXPECT_EQ(GetMenuScreen(), MENU_SCREEN_LIST);
    EXPECT_TRUE(app.window->isOpen());
}

TEST_F(TitleMenu, ReturningToTheMenuReadsTheBindingsAgainAndSelectsPlay) {
    MoveTo(kQuit.x, kQuit.y);
    Settings().bindings[BINDING_JUMP] = sf::Keyboard::K;
    SwitchGameState(GAME_STATE_GAME, *app.window);
    SwitchGameState(GAME_STATE_MENU, *app.window);
    EXPECT_EQ(Settings().bindings[BINDING_JUMP], sf::Keyboard::Space);
    EXPECT_EQ(GetSelectedEntry(), MENU_ENTRY_PLAY);
}

TEST_F(TitleMenu, DrawsTheBackdropTitleAndList) {
    app.window->clear();
    DrawMenu(*app.window);
    sf::Texture shot;
    ASSERT_TRUE(shot.create(1920, 1080));
    shot.update(*app.window);
    sf::Image image = shot.copyToImage();
    // The backdrop covers the window's clear colour everywhere, and the title is white.
    EXPECT_NE(image.getPixel(1800, 100), sf::Color(110, 192, 166));
    int white = 0;
    for (unsigned x = 72; x < 900; x++) {
        for (unsigned y = 60; y < 330; y += 3) white += image.getPixel(x, y) == sf::Color::White;
    }
    EXPECT_GT(white, 2000);
}

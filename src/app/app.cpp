#include "app/app.h"

#include <unistd.h>

#include <cstdlib>

#include "app/events.h"
#include "app/game.h"
#include "app/game_state.h"
#include "app/input.h"
#include "common/log.h"
#include "menus/main_menu.h"
#include "menus/settings_screen.h"

namespace {

const sf::Color kClearColor(110, 192, 166, 255);

}  // namespace

float ClampFrameTime(float seconds) {
    if (seconds > 0.020000001f) return 1.0f / 60.0f;
    return seconds;
}

void RecreateWindow(AppWindow& app) {
    app.clock = std::make_unique<sf::Clock>();
    app.window = std::make_unique<sf::RenderWindow>(sf::VideoMode(1920, 1080, 32), "Game",
                                                    sf::Uint32(app.style));
    app.window->setFramerateLimit(60);
    app.window->setKeyRepeatEnabled(false);
    app.window->setVerticalSyncEnabled(true);
}

void ToggleFullScreen(AppWindow& app) {
    app.clock.reset();
    app.window.reset();
    app.style =
        app.style == WINDOW_STYLE_WINDOWED ? WINDOW_STYLE_FULLSCREEN : WINDOW_STYLE_WINDOWED;
    RecreateWindow(app);
}

void LogGamepadConnected() {
    Log("gamepad %d connected type %s\n", 0, InputJoystickName(0).c_str());
}

void StartApp(AppWindow& app) {
    std::srand(unsigned(getpid()));
    app.style = WINDOW_STYLE_WINDOWED;
    ResetGameStates();
    RecreateWindow(app);
    SwitchGameState(GAME_STATE_MENU, *app.window);
    InputJoystickUpdate();
    if (InputJoystickConnected(0)) {
        LogGamepadConnected();
    } else {
        Log("gamepad %d not connected\n", 0);
    }
}

void RunFrame(AppWindow& app) {
    PollEvents(app);
    if (InputJoystickConnected(0)) InputJoystickUpdate();
    float dt = ClampFrameTime(app.clock->restart().asSeconds());
    if (GetGameState() == GAME_STATE_MENU) {
        if (GetMenuScreen() == MENU_SCREEN_SETTINGS) UpdateSettingsScreen();
    } else if (GetGameState() == GAME_STATE_GAME) {
        UpdateGame(*app.window, dt);
    }
    // In play the world's picture covers every pixel of the window: clearing it first would
    // only cost a full-screen fill.
    if (GetGameState() != GAME_STATE_GAME) app.window->clear(kClearColor);
    if (GetGameState() == GAME_STATE_MENU) DrawMenu(*app.window);
    if (GetGameState() == GAME_STATE_GAME) DrawGame(*app.window);
    app.window->display();
}

void ShutDownApp(AppWindow& app) {
    app.clock.reset();
    app.window.reset();
    CleanupCurrentState();
}

int RunApp() {
    AppWindow app;
    StartApp(app);
    while (app.window->isOpen()) RunFrame(app);
    ShutDownApp(app);
    return 0;
}

// The program: one window, a frame loop capped at 60 frames per second, and the two states.
#pragma once

#include <SFML/Graphics.hpp>
#include <memory>

enum WindowStyleValue { WINDOW_STYLE_WINDOWED = 7, WINDOW_STYLE_FULLSCREEN = 8 };

struct AppWindow {
    std::unique_ptr<sf::RenderWindow> window;
    std::unique_ptr<sf::Clock> clock;
    int style = WINDOW_STYLE_WINDOWED;
};

// A frame longer than 0.02 s (a load, a dragged window) counts as exactly one 60th of a second.
float ClampFrameTime(float seconds);

// Builds a new clock and window with the record's style (1920 x 1080, "Game", 60 fps, vsync).
void RecreateWindow(AppWindow& app);
// F11: windowed <-> full screen, keeping whatever state is running.
void ToggleFullScreen(AppWindow& app);

// Reports gamepad 0 with its name.
void LogGamepadConnected();

// Start-up up to the first frame: random seed, window, title menu, gamepad report.
void StartApp(AppWindow& app);
// One frame of the loop: events, gamepad, time, update, clear, draw, display.
void RunFrame(AppWindow& app);
// After the loop: clock, window, then the running state.
void ShutDownApp(AppWindow& app);

// The whole program; returns the exit status.
int RunApp();

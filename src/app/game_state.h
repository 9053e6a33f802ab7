// The two top-level states (title menu, game) and which screen of a menu is shown.
#pragma once

namespace sf {
class RenderWindow;
}

enum GameStateValue { GAME_STATE_NONE = 0, GAME_STATE_MENU = 1, GAME_STATE_GAME = 2 };
enum MenuScreenValue {
    MENU_SCREEN_LIST = 0,
    MENU_SCREEN_SETTINGS = 2,
    MENU_SCREEN_CREDITS = 3,
};
enum SettingsTabValue { SETTINGS_TAB_SOUND = 0, SETTINGS_TAB_BINDING = 1 };

int GetGameState();
int GetMenuScreen();
void SetMenuScreen(int screen);
int GetSettingsTab();
void SetSettingsTab(int tab);

// Back to the values at program start: no state yet, list screen, sound tab.
void ResetGameStates();

// Frees the current state, stores the new one, loads it: the only way the state changes.
void SwitchGameState(int newState, sf::RenderWindow& window);
// Frees whatever state is loaded (at shut-down).
void CleanupCurrentState();

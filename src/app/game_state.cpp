#include "app/game_state.h"

#include "app/game.h"
#include "menus/main_menu.h"

namespace {

int gameState = GAME_STATE_NONE;
int menuScreen = MENU_SCREEN_LIST;
int settingsTab = SETTINGS_TAB_SOUND;

}  // namespace

int GetGameState() {
    return gameState;
}
int GetMenuScreen() {
    return menuScreen;
}
void SetMenuScreen(int screen) {
    menuScreen = screen;
}
int GetSettingsTab() {
    return settingsTab;
}
void SetSettingsTab(int tab) {
    settingsTab = tab;
}

void ResetGameStates() {
    gameState = GAME_STATE_NONE;
    menuScreen = MENU_SCREEN_LIST;
    settingsTab = SETTINGS_TAB_SOUND;
}

void CleanupCurrentState() {
    if (gameState == GAME_STATE_MENU) CleanupMenu();
    if (gameState == GAME_STATE_GAME) CleanupGame();
}

void SwitchGameState(int newState, sf::RenderWindow& window) {
    CleanupCurrentState();
    gameState = newState;
    if (gameState == GAME_STATE_MENU) LoadMenu();
    if (gameState == GAME_STATE_GAME) LoadGame(window);
}

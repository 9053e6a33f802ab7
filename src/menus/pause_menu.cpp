#include "menus/pause_menu.h"

#include <algorithm>
#include <array>
#include <memory>

#include "app/game.h"
#include "app/game_state.h"
#include "app/input.h"
#include "common/ui.h"
#include "menus/settings_screen.h"

namespace {

const std::array<const char*, 3> kLabels = {"RESUME", "SETTINGS", "MAIN MENU"};
const std::array<float, 3> kRows = {518.4f, 648, 777.6f};

constexpr sf::Uint8 kDarkening = 200;

// Black of alpha a drawn over black of alpha b lets (255 - a)(255 - b) / 255 of the picture
// through: one layer of the returned alpha does the same with one pass over the screen.
constexpr sf::Uint8 StackedDarkness(int a, int b) {
    return sf::Uint8(255 - ((255 - a) * (255 - b) + 127) / 255);
}

struct PauseMenu {
    bool loaded = false;
    FontPtr font;
    // The pause draws straight onto the window over the frozen world: one black rectangle over
    // the whole screen darkens it, without a full-screen layer of its own.
    std::unique_ptr<sf::RectangleShape> darkening;
    std::unique_ptr<sf::RectangleShape> background;
    TextPtr title;
    std::array<Button, 3> buttons;
    TexturePtr leftArrowTexture;
    TexturePtr rightArrowTexture;
    Selector selector;
    int selection = PAUSE_ENTRY_RESUME;
};

PauseMenu pauseMenu;

void SelectEntry(int entry) {
    pauseMenu.selection = entry;
    PlaceSelector(pauseMenu.selector, pauseMenu.buttons[entry]);
}

}  // namespace

void LoadPauseMenu() {
    FreePauseMenu();
    pauseMenu.font = LoadFont("Assets/Fonts/alagard.ttf");
    pauseMenu.darkening = std::make_unique<sf::RectangleShape>(sf::Vector2f(1920, 1080));
    pauseMenu.darkening->setFillColor(sf::Color(0, 0, 0, kDarkening));
    pauseMenu.background = std::make_unique<sf::RectangleShape>(sf::Vector2f(960, 486));
    pauseMenu.background->setOrigin(480, 243);
    pauseMenu.background->setFillColor(sf::Color::Transparent);
    pauseMenu.background->setPosition(960, 648);
    CreateText(pauseMenu.title, pauseMenu.font.get(), "PAUSE", {960, 270}, 198, {0.5f, 0.8f},
               sf::Color::White);
    for (size_t i = 0; i < pauseMenu.buttons.size(); i++) {
        CreateButton(pauseMenu.buttons[i], {864, 81}, pauseMenu.font.get(), kLabels[i], 45,
                     sf::Color::White, sf::Color::Transparent, {960, kRows[i]});
    }
    pauseMenu.leftArrowTexture = LoadTexture("Assets/Sprites/Menu/ButtonSelectorLeft.png");
    pauseMenu.rightArrowTexture = LoadTexture("Assets/Sprites/Menu/ButtonSelectorRight.png");
    CreateSelector(pauseMenu.selector, pauseMenu.leftArrowTexture.get(),
                   pauseMenu.rightArrowTexture.get(), {1.5f, 1.5f},
                   pauseMenu.buttons[PAUSE_ENTRY_RESUME]);
    pauseMenu.selection = PAUSE_ENTRY_RESUME;
    pauseMenu.loaded = true;
}

void FreePauseMenu() {
    // Every handle goes back to null.
    pauseMenu = PauseMenu();
}

bool PauseMenuLoaded() {
    return pauseMenu.loaded;
}

void PlacePausePanel() {
    CancelSettingsWaits();
    SetMenuScreen(MENU_SCREEN_LIST);
}

void HoverPauseButtons(sf::Vector2f pointer) {
    if (!pauseMenu.loaded) return;
    if (GetMenuScreen() == MENU_SCREEN_SETTINGS) {
        SettingsMouseMoved(pointer);
        return;
    }
    if (GetMenuScreen() != MENU_SCREEN_LIST) return;
    for (size_t i = 0; i < pauseMenu.buttons.size(); i++) {
        pauseMenu.buttons[i].hovered = UpdateButtonHover(pointer, pauseMenu.buttons[i]);
        if (pauseMenu.buttons[i].hovered) SelectEntry(int(i));
    }
}

bool PauseButtonHovered(int entry) {
    return pauseMenu.loaded && pauseMenu.buttons[entry].hovered != 0;
}

void MovePauseSelection(int step) {
    if (!pauseMenu.loaded) return;
    SelectEntry(std::clamp(pauseMenu.selection + step, 0, int(pauseMenu.buttons.size()) - 1));
}

int GetPauseSelection() {
    return pauseMenu.selection;
}

void ChoosePauseEntry(int entry, sf::RenderWindow& window) {
    switch (entry) {
        case PAUSE_ENTRY_SETTINGS:
            SetMenuScreen(MENU_SCREEN_SETTINGS);
            SetSettingsTab(SETTINGS_TAB_SOUND);
            LoadSettingsScreen();
            break;
        case PAUSE_ENTRY_MAIN_MENU:
            Overlays().pauseOpen = 0;
            Overlays().worldFrozen = 0;
            SwitchGameState(GAME_STATE_MENU, window);
            break;
        default: break;
    }
}

void LeavePauseSettings() {
    SetMenuScreen(MENU_SCREEN_LIST);
    SetSettingsTab(SETTINGS_TAB_SOUND);
    FreeSettingsScreen();
}

void UpdatePauseMenu(int& pauseOpen) {
    if (!pauseMenu.loaded) return;
    if (GetMenuScreen() == MENU_SCREEN_LIST) {
        bool clicked =
            InputMouseButtonDown(sf::Mouse::Left) && pauseMenu.buttons[PAUSE_ENTRY_RESUME].hovered;
        bool pressed = InputJoystickButtonDown(0, 0) && pauseMenu.selection == PAUSE_ENTRY_RESUME;
        if (clicked || pressed) pauseOpen = 0;
    } else if (GetMenuScreen() == MENU_SCREEN_SETTINGS) {
        UpdateSettingsScreen();
    }
}

void DrawPauseMenu(sf::RenderTarget& target) {
    if (!pauseMenu.loaded) return;
    bool settings = GetMenuScreen() == MENU_SCREEN_SETTINGS;
    // The settings screen darkens what it covers once more: both darkenings in one pass.
    sf::Uint8 alpha = settings ? StackedDarkness(kDarkening, kSettingsBackdropAlpha) : kDarkening;
    pauseMenu.darkening->setFillColor(sf::Color(0, 0, 0, alpha));
    target.draw(*pauseMenu.darkening);
    if (settings) {
        DrawSettingsScreen(target, false);
        return;
    }
    if (pauseMenu.background->getFillColor().a != 0) target.draw(*pauseMenu.background);
    for (const Button& button : pauseMenu.buttons) DrawButton(target, button);
    target.draw(*pauseMenu.title);
    DrawSelector(target, pauseMenu.selector);
}

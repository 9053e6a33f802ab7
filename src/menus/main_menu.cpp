#include "menus/main_menu.h"

#include <algorithm>
#include <array>
#include <memory>

#include "app/game_state.h"
#include "common/log.h"
#include "common/ui.h"
#include "menus/credits.h"
#include "menus/settings_files.h"
#include "menus/settings_screen.h"

namespace {

struct ListEntry {
    const char* label;
    sf::Vector2f size;
    unsigned characterSize;
    sf::Vector2f position;
};

const std::array<ListEntry, 4> kEntries = {{
    {"PLAY", {288, 91.8f}, 81, {240, 594}},
    {"SETTINGS", {288, 37.8f}, 36, {240, 702}},
    {"CREDITS", {288, 37.8f}, 36, {240, 783}},
    {"QUIT", {288, 37.8f}, 36, {240, 864}},
}};

struct MainMenu {
    FontPtr font;
    std::unique_ptr<sf::RenderTexture> layer;
    SpritePtr layerSprite;
    TexturePtr backgroundTexture;
    SpritePtr background;
    TextPtr titleTop;
    TextPtr titleBottom;
    std::array<Button, 4> buttons;
    TexturePtr leftArrowTexture;
    TexturePtr rightArrowTexture;
    Selector selector;
    int selectedEntry = 0;
};

MainMenu menu;

}  // namespace

void LoadMenu() {
    Log("Load Menu\n");
    menu.font = LoadFont("Assets/Fonts/alagard.ttf");
    menu.layer = std::make_unique<sf::RenderTexture>();
    menu.layer->create(1920, 1080);
    menu.backgroundTexture = LoadTexture("Assets/Sprites/Menu/GameMenu.png");
    CreateSprite(menu.background, menu.backgroundTexture.get(), {0, 0}, {0, 0}, {1, 1});

    const sf::Font* font = menu.font.get();
    CreateText(menu.titleTop, font, "Ombrith", {72, 135}, 198, {0, 0.8f}, sf::Color::White);
    CreateText(menu.titleBottom, font, "Valkesh", {72, 297}, 198, {0, 0.8f}, sf::Color::White);
    for (size_t i = 0; i < kEntries.size(); i++) {
        const ListEntry& entry = kEntries[i];
        CreateListButton(menu.buttons[i], entry.size, font, entry.label, entry.characterSize,
                         sf::Color::White, sf::Color::Transparent, entry.position);
    }

    ReadBindingSettings();
    ReadSoundSettings();

    // The layer is presented as an ordinary displayed render texture, so it is shown upright.
    CreateSprite(menu.layerSprite, &menu.layer->getTexture(), {960, 540}, {0.5f, 0.5f}, {1, 1});
    menu.rightArrowTexture = LoadTexture("Assets/Sprites/Menu/ButtonSelectorRight.png");
    menu.leftArrowTexture = LoadTexture("Assets/Sprites/Menu/ButtonSelectorLeft.png");
    menu.selectedEntry = MENU_ENTRY_PLAY;
    CreateSelector(menu.selector, menu.leftArrowTexture.get(), menu.rightArrowTexture.get(),
                   {1.5f, 1.5f}, menu.buttons[MENU_ENTRY_PLAY]);
}

void DrawMenu(sf::RenderWindow& window) {
    if (!menu.layer) return;
    window.setView(window.getDefaultView());
    sf::RenderTexture& layer = *menu.layer;
    layer.clear(sf::Color::Transparent);
    layer.draw(*menu.background);
    switch (GetMenuScreen()) {
        case MENU_SCREEN_LIST:
            for (const Button& button : menu.buttons) DrawButton(layer, button);
            layer.draw(*menu.titleTop);
            layer.draw(*menu.titleBottom);
            DrawSelector(layer, menu.selector);
            break;
        case MENU_SCREEN_SETTINGS: DrawSettingsScreen(layer); break;
        case MENU_SCREEN_CREDITS: DrawCredits(layer); break;
        default: break;
    }
    layer.display();
    window.draw(*menu.layerSprite);
}

void CleanupMenu() {
    if (!menu.layer) return;
    Log("Cleanup Menu\n");
    FreeSettingsScreen();
    FreeCredits();
    menu.font.reset();
    menu.titleTop.reset();
    menu.titleBottom.reset();
    for (Button& button : menu.buttons) FreeButton(button);
    menu.background.reset();
    menu.backgroundTexture.reset();
    FreeSelector(menu.selector);
    menu.leftArrowTexture.reset();
    menu.rightArrowTexture.reset();
    menu.layerSprite.reset();
    menu.layer.reset();
}

void HoverMenuButtons(sf::Vector2f pointer) {
    if (!menu.layer || GetMenuScreen() != MENU_SCREEN_LIST) return;
    for (size_t i = 0; i < menu.buttons.size(); i++) {
        menu.buttons[i].hovered = UpdateButtonHover(pointer, menu.buttons[i]);
        if (menu.buttons[i].hovered) {
            menu.selectedEntry = int(i);
            PlaceSelector(menu.selector, menu.buttons[i]);
        }
    }
}

int FirstHoveredMenuEntry() {
    for (size_t i = 0; i < menu.buttons.size(); i++) {
        if (menu.buttons[i].hovered) return int(i);
    }
    return -1;
}

void MoveMenuSelection(int step) {
    if (!menu.layer) return;
    int last = int(menu.buttons.size()) - 1;
    menu.selectedEntry = std::clamp(menu.selectedEntry + step, 0, last);
    PlaceSelector(menu.selector, menu.buttons[menu.selectedEntry]);
}

int GetSelectedEntry() {
    return menu.selectedEntry;
}

void ChooseMenuEntry(int entry, sf::RenderWindow& window) {
    switch (entry) {
        case MENU_ENTRY_PLAY:
            SwitchGameState(GAME_STATE_GAME, window);
            SetMenuScreen(MENU_SCREEN_LIST);
            break;
        case MENU_ENTRY_SETTINGS:
            SetMenuScreen(MENU_SCREEN_SETTINGS);
            SetSettingsTab(SETTINGS_TAB_SOUND);
            LoadSettingsScreen();
            break;
        case MENU_ENTRY_CREDITS:
            SetMenuScreen(MENU_SCREEN_CREDITS);
            LoadCredits();
            break;
        case MENU_ENTRY_QUIT: window.close(); break;
        default: break;
    }
}

sf::RenderTexture* MenuLayer() {
    return menu.layer.get();
}

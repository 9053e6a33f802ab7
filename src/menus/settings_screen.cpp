#include "menus/settings_screen.h"

#include <array>
#include <memory>

#include "app/game_state.h"
#include "app/input.h"
#include "app/keys.h"
#include "common/text.h"
#include "common/ui.h"
#include "menus/settings_files.h"

namespace {

enum SettingsButton {
    BUTTON_SOUND,
    BUTTON_BINDING,
    BUTTON_OK,
    BUTTON_CANCEL,
    BUTTON_APPLY,
    BUTTON_RETURN,
    BUTTON_COUNT
};

struct ButtonLayout {
    const char* label;
    sf::Vector2f size;
    unsigned characterSize;
    sf::Color labelColor;
    sf::Color background;
    sf::Vector2f position;
};

const std::array<ButtonLayout, BUTTON_COUNT> kButtons = {{
    {"SOUND", {288, 37.8f}, 45, sf::Color::White, sf::Color::Transparent, {960, 108}},
    {"BINDING", {288, 37.8f}, 45, sf::Color::White, sf::Color::Transparent, {1488, 108}},
    {"OK", {96, 48.6f}, 30, sf::Color::Black, sf::Color::White, {96, 1026}},
    {"CANCEL", {192, 48.6f}, 30, sf::Color::Black, sf::Color::White, {288, 1026}},
    {"APPLY", {192, 48.6f}, 30, sf::Color::Black, sf::Color::White, {537.6f, 1026}},
    {"RETURN", {192, 48.6f}, 30, sf::Color::Black, sf::Color::White, {1766.4f, 1026}},
}};

const std::array<const char*, 3> kSoundLabels = {"MASTER VOLUME", "MUSIC", "SOUND"};
const std::array<float, 3> kSoundRows = {324, 432, 540};

// The labels' inner spacing lines the colons up in the menu font.
const std::array<const char*, BINDING_COUNT> kBindingLabels = {
    "LEFT               :", "RIGHT              :", "DOWN              :",
    "JUMP               :", "PARRY             :",  "DASH / RUN\t :",
    "INTERACT        :",    "HEAl               :", "CLOUD CREATION :"};

struct KeyEntry {
    Button button;
    int waiting = 0;
};

struct SettingsScreen {
    bool loaded = false;
    FontPtr font;
    TextPtr title;
    std::unique_ptr<sf::RectangleShape> backdrop;
    std::array<Button, BUTTON_COUNT> buttons;
    std::unique_ptr<sf::RectangleShape> square;
    TexturePtr markerTexture;
    SpritePtr marker;
    TexturePtr barTexture, fillTexture, handleTexture;
    std::array<TextPtr, 3> soundLabels;
    std::array<Slider, 3> sliders;
    std::array<TextPtr, 3> percents;
    std::array<TextPtr, BINDING_COUNT> bindingLabels;
    std::array<KeyEntry, BINDING_COUNT> keys;
};

SettingsScreen screen;

float BindingRow(int index) {
    return 297.0f + 81.0f * float(index);
}

void SetSquare(bool pending) {
    screen.square->setFillColor(pending ? sf::Color::Red : sf::Color::Green);
}

void ShowPercent(int category) {
    CreateText(screen.percents[category], screen.font.get(), "", {1632, kSoundRows[category]}, 45,
               {0.5f, 0.8f}, sf::Color::White);
    SetTextNumber(*screen.percents[category], "%d%%", screen.sliders[category].value);
    sf::Text& text = *screen.percents[category];
    text.setOrigin(OriginFromFactor(text.getGlobalBounds(), {0.5f, 0.8f}));
}

// Re-reads the sound file and shows its values.
void BuildSoundTab() {
    ReadSoundSettings();
    if (!screen.barTexture) {
        screen.barTexture = LoadTexture("Assets/Sprites/Settings/bar.png");
        screen.fillTexture = LoadTexture("Assets/Sprites/Settings/filler.png");
        screen.handleTexture = LoadTexture("Assets/Sprites/Settings/button.png");
    }
    for (int i = 0; i < 3; i++) {
        CreateText(screen.soundLabels[i], screen.font.get(), kSoundLabels[i], {96, kSoundRows[i]},
                   48, {0, 0.85f}, sf::Color::White);
        screen.sliders[i].value = Settings().volumes[i];
        screen.sliders[i].dragging = 0;
        CreateSlider(screen.sliders[i], screen.barTexture.get(), screen.fillTexture.get(),
                     screen.handleTexture.get(), {672, kSoundRows[i]});
        ShowPercent(i);
    }
}

void LabelKeyEntry(int action) {
    Button& button = screen.keys[action].button;
    CreateText(button.text, screen.font.get(), KeyName(Settings().bindings[action]),
               button.shape->getPosition(), 30, {0.5f, 0.8f}, button.textColor);
}

// Re-reads the binding file and shows its keys.
void BuildBindingTab() {
    ReadBindingSettings();
    for (int i = 0; i < BINDING_COUNT; i++) {
        CreateText(screen.bindingLabels[i], screen.font.get(), kBindingLabels[i],
                   {96, BindingRow(i)}, 48, {0, 0.85f}, sf::Color::White);
        CreateButton(screen.keys[i].button, {144, 37.8f}, screen.font.get(),
                     KeyName(Settings().bindings[i]), 30, sf::Color::White, sf::Color::Transparent,
                     {672, BindingRow(i)});
        screen.keys[i].waiting = 0;
    }
}

// CANCEL and RETURN: the files' values again, every wait dropped.
void RestoreFromFiles() {
    ReadSoundSettings();
    ReadBindingSettings();
    for (int i = 0; i < 3; i++) {
        screen.sliders[i].value = Settings().volumes[i];
        UpdateSliderFill(screen.sliders[i]);
        ShowPercent(i);
    }
    for (int i = 0; i < BINDING_COUNT; i++) {
        screen.keys[i].waiting = 0;
        screen.keys[i].button.shape->setFillColor(sf::Color::White);
        LabelKeyEntry(i);
    }
    SetSquare(false);
}

void ShowTab(int tab) {
    SetSettingsTab(tab);
    if (tab == SETTINGS_TAB_SOUND) {
        BuildSoundTab();
    } else {
        BuildBindingTab();
    }
    const Button& tabButton =
        screen.buttons[tab == SETTINGS_TAB_SOUND ? BUTTON_SOUND : BUTTON_BINDING];
    sf::Vector2f position = tabButton.shape->getPosition();
    screen.marker->setPosition(position.x, position.y + 50);
}

void LeaveToList() {
    FreeSettingsScreen();
    SetMenuScreen(MENU_SCREEN_LIST);
}

// Runs one command button; returns false once the screen is gone.
bool PressButton(int index) {
    switch (index) {
        case BUTTON_SOUND:
            if (GetSettingsTab() == SETTINGS_TAB_BINDING) ShowTab(SETTINGS_TAB_SOUND);
            return true;
        case BUTTON_BINDING:
            if (GetSettingsTab() == SETTINGS_TAB_SOUND) ShowTab(SETTINGS_TAB_BINDING);
            return true;
        case BUTTON_OK:
            WriteSettings();
            LeaveToList();
            return false;
        case BUTTON_CANCEL: RestoreFromFiles(); return true;
        case BUTTON_APPLY:
            WriteSettings();
            SetSquare(false);
            return true;
        case BUTTON_RETURN:
            RestoreFromFiles();
            LeaveToList();
            return false;
        default: return true;
    }
}

void DragSlider(Slider& slider, float pointerX) {
    float barX = slider.bar->getPosition().x;
    float barWidth = slider.bar->getGlobalBounds().width;
    float barHeight = slider.bar->getGlobalBounds().height;
    float handleX = pointerX;
    if (pointerX <= barX - 0.001f) handleX = barX;
    if (pointerX >= barX + barWidth + 0.001f) handleX = barX + barWidth;
    slider.handle->setPosition(handleX, slider.handle->getPosition().y);
    float progress = (handleX - barX) / barWidth;
    slider.fill->setTextureRect(sf::IntRect(0, 0, int(progress * barWidth), int(barHeight)));
    slider.value = int(progress * 100);
}

void MoveSliders(sf::Vector2f pointer) {
    bool leftDown = InputMouseButtonDown(sf::Mouse::Left);
    for (int i = 0; i < 3; i++) {
        Slider& slider = screen.sliders[i];
        slider.hovered = slider.handle->getGlobalBounds().contains(pointer) ? 1 : 0;
        if (slider.hovered && leftDown) slider.dragging = 1;
        if (!leftDown) slider.dragging = 0;
        if (slider.dragging) DragSlider(slider, pointer.x);
        Settings().volumes[i] = slider.value;
        ShowPercent(i);
    }
}

}  // namespace

void LoadSettingsScreen() {
    FreeSettingsScreen();
    screen.font = LoadFont("Assets/Fonts/alagard.ttf");
    CreateText(screen.title, screen.font.get(), "SETTINGS", {96, 27}, 96, {0, 0}, sf::Color::White);
    screen.backdrop = std::make_unique<sf::RectangleShape>(sf::Vector2f(1920, 1080));
    screen.backdrop->setOrigin(960, 540);
    screen.backdrop->setFillColor(sf::Color(0, 0, 0, kSettingsBackdropAlpha));
    screen.backdrop->setPosition(960, 540);
    BuildSoundTab();
    BuildBindingTab();
    for (int i = 0; i < BUTTON_COUNT; i++) {
        const ButtonLayout& layout = kButtons[i];
        CreateButton(screen.buttons[i], layout.size, screen.font.get(), layout.label,
                     layout.characterSize, layout.labelColor, layout.background, layout.position);
    }
    screen.square = std::make_unique<sf::RectangleShape>(sf::Vector2f(48.6f, 48.6f));
    screen.square->setOrigin(24.3f, 24.3f);
    screen.square->setPosition(672, 1026);
    SetSquare(false);
    screen.markerTexture = LoadTexture("Assets/Sprites/Settings/windowSelect.png");
    CreateSprite(screen.marker, screen.markerTexture.get(), {960, 162}, {0.5f, 0.5f}, {2, 2});
    screen.loaded = true;
}

void UpdateSettingsScreen() {
    if (!screen.loaded || GetSettingsTab() != SETTINGS_TAB_SOUND) return;
    for (const Slider& slider : screen.sliders) {
        if (slider.dragging) SetSquare(true);
    }
}

void SettingsMouseMoved(sf::Vector2f pointer) {
    if (!screen.loaded) return;
    for (Button& button : screen.buttons) button.hovered = UpdateButtonHover(pointer, button);
    if (GetSettingsTab() == SETTINGS_TAB_SOUND) {
        MoveSliders(pointer);
        return;
    }
    for (const KeyEntry& key : screen.keys) {
        if (key.waiting) return;
    }
    for (KeyEntry& key : screen.keys) key.button.hovered = UpdateButtonHover(pointer, key.button);
}

void SettingsMousePressed(const sf::Event& event) {
    if (!screen.loaded) return;
    if (event.mouseButton.button == sf::Mouse::Left) {
        for (int i = 0; i < BUTTON_COUNT; i++) {
            if (screen.buttons[i].hovered && !PressButton(i)) return;
        }
    }
    if (GetSettingsTab() != SETTINGS_TAB_BINDING) return;
    for (KeyEntry& key : screen.keys) {
        if (!key.button.hovered) continue;
        key.button.shape->setFillColor(sf::Color::Cyan);
        key.waiting = 1;
    }
}

void SettingsKeyPressed(const sf::Event& event) {
    if (!screen.loaded || event.key.code < 0) return;
    int code = event.key.code;
    for (int i = 0; i < BINDING_COUNT; i++) {
        KeyEntry& key = screen.keys[i];
        if (!key.waiting) continue;
        key.waiting = 0;
        key.button.shape->setFillColor(sf::Color::Transparent);
        if (code == sf::Keyboard::Escape) continue;
        bool usedElsewhere = false;
        for (int other = 0; other < BINDING_COUNT; other++) {
            if (other != i && Settings().bindings[other] == code) usedElsewhere = true;
        }
        if (usedElsewhere) continue;
        Settings().bindings[i] = code;
        LabelKeyEntry(i);
        SetSquare(true);
    }
}

void CancelSettingsWaits() {
    for (KeyEntry& key : screen.keys) key.waiting = 0;
}

void DrawSettingsScreen(sf::RenderTarget& target, bool withBackdrop) {
    if (!screen.loaded) return;
    if (withBackdrop) target.draw(*screen.backdrop);
    target.draw(*screen.title);
    if (GetSettingsTab() == SETTINGS_TAB_SOUND) {
        for (int i = 0; i < 3; i++) {
            DrawSlider(target, screen.sliders[i]);
            target.draw(*screen.percents[i]);
            target.draw(*screen.soundLabels[i]);
        }
    } else {
        for (int i = 0; i < BINDING_COUNT; i++) {
            DrawButton(target, screen.keys[i].button);
            target.draw(*screen.bindingLabels[i]);
        }
    }
    for (const Button& button : screen.buttons) DrawButton(target, button);
    target.draw(*screen.square);
    target.draw(*screen.marker);
}

void FreeSettingsScreen() {
    // Every handle goes back to null, so freeing twice is harmless.
    screen = SettingsScreen();
}

bool SettingsScreenLoaded() {
    return screen.loaded;
}

bool SettingsPending() {
    return screen.loaded && screen.square->getFillColor() == sf::Color::Red;
}

int SettingsSliderValue(int category) {
    return screen.sliders[category].value;
}

bool SettingsKeyWaiting(int action) {
    return screen.keys[action].waiting != 0;
}

sf::String SettingsKeyLabel(int action) {
    const TextPtr& text = screen.keys[action].button.text;
    return text ? text->getString() : sf::String();
}

sf::String SettingsPercentText(int category) {
    const TextPtr& text = screen.percents[category];
    return text ? text->getString() : sf::String();
}

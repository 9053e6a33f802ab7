#include "interactables/checkpoint_menu.h"

#include <algorithm>
#include <cmath>

#include "app/game.h"
#include "common/ease.h"
#include "common/log.h"
#include "player/player.h"

namespace {

const char* const kButtonTexturePath = "Assets/Sprites/WorldHUD/button.png";
const char* const kFontPath = "Assets/Fonts/alagard.ttf";
const char* const kLabels[CHECKPOINT_BUTTON_COUNT] = {"TELEPORT", "SAVE", "LEAVE"};

const sf::Vector2f kButtonSize(175, 52);
const sf::Vector2f kAnchorOffset(280, -365);
const float kButtonSpacing = 65;
const float kTweenDuration = 0.5f;
const float kSelectedScale = 1.2f;
const float kLeaveDistance = 200;
// The picture is shown as drawn; without it a dark stone keeps the white labels readable.
const sf::Color kTexturedFill = sf::Color::White;
const sf::Color kBareFill(96, 84, 72);

CheckpointMenu menu;

void SetButtonScale(Button& button, sf::Vector2f scale) {
    button.shape->setScale(scale);
    button.text->setScale(scale);
}

// While folding or unfolding, every button copies the first one's scale.
void CopyFirstScale() {
    sf::Vector2f scale = menu.buttons[0].shape->getScale();
    for (Button& button : menu.buttons) SetButtonScale(button, scale);
}

void ShowSelection() {
    for (int i = 0; i < CHECKPOINT_BUTTON_COUNT; i++) {
        Button& button = menu.buttons[i];
        float scale = button.shape->getScale().x;
        if (i != menu.selectedButton && scale > 1) SetButtonScale(button, {1, 1});
        if (i == menu.selectedButton && scale < kSelectedScale) {
            SetButtonScale(button, {kSelectedScale, kSelectedScale});
        }
    }
}

// The first button unfolds; then the second and third slide down under it.
void Unfold(float dt) {
    auto& buttons = menu.buttons;
    int unfolded = TweenShapeScale(*buttons[0].shape, {1, 1}, kTweenDuration, dt, menu.unfoldTween);
    CopyFirstScale();
    if (!unfolded) return;
    int slid = 1;
    for (int i = 1; i < CHECKPOINT_BUTTON_COUNT; i++) {
        sf::Vector2f goal = menu.menuAnchor + sf::Vector2f(0, kButtonSpacing * float(i));
        slid = TweenPosition(*buttons[i].shape, goal, kTweenDuration, EASE_CUBIC_IN_OUT, dt,
                             menu.slideTweens[i - 1]);
        buttons[i].text->setPosition(buttons[i].shape->getPosition());
    }
    if (slid) menu.menuOpening = 0;
}

void FreeButtons() {
    for (Button& button : menu.buttons) FreeButton(button);
    menu.font.reset();
}

// Folded flat: the buttons and the font go, the hero gets the control back (the frame does it).
void FinishClosing() {
    FreeButtons();
    menu.foldTween = Tween();
    menu.menuClosing = 0;
    Overlays().checkpointMenuOpen = 0;
}

void RunAction(int button) {
    switch (button) {
        // The map will open in teleport mode here once it exists.
        case CHECKPOINT_TELEPORT: Log("TP Pressed\n"); break;
        // The rest already wrote the save when the menu opened.
        case CHECKPOINT_SAVE: Log("REST Pressed\n"); break;
        case CHECKPOINT_LEAVE: CloseCheckpointMenu(); break;
        default: break;
    }
}

bool ButtonsExist() {
    return menu.buttons[0].shape != nullptr;
}

}  // namespace

const CheckpointMenu& GetCheckpointMenu() {
    return menu;
}

void OpenCheckpointMenu(sf::Vector2f checkpointPosition) {
    FreeButtons();
    menu.menuOpening = 1;
    menu.menuClosing = 0;
    menu.menuCheckpointPosition = checkpointPosition;
    menu.menuAnchor = checkpointPosition + kAnchorOffset;
    menu.unfoldTween = menu.foldTween = Tween();
    menu.slideTweens = {};
    if (!menu.buttonTexture) menu.buttonTexture = LoadTexture(kButtonTexturePath);
    menu.font = LoadFont(kFontPath);
    sf::Color fill = menu.buttonTexture ? kTexturedFill : kBareFill;
    for (int i = 0; i < CHECKPOINT_BUTTON_COUNT; i++) {
        Button& button = menu.buttons[i];
        CreateButton(button, kButtonSize, menu.font.get(), kLabels[i], 25, sf::Color::White, fill,
                     menu.menuAnchor);
        if (menu.buttonTexture) button.shape->setTexture(menu.buttonTexture.get());
        SetButtonScale(button, {1, 0});
    }
    menu.selectedButton = CHECKPOINT_TELEPORT;
    Overlays().checkpointMenuOpen = 1;
    GetPlayer().body.controllable = 0;
}

void UpdateCheckpointMenu(float playerX, float dt) {
    if (!Overlays().checkpointMenuOpen || !ButtonsExist()) return;
    if (!menu.menuOpening && !menu.menuClosing) ShowSelection();
    if (menu.menuOpening) {
        Unfold(dt);
    } else if (menu.menuClosing) {
        int folded =
            TweenShapeScale(*menu.buttons[0].shape, {1, 0}, kTweenDuration, dt, menu.foldTween);
        CopyFirstScale();
        if (folded) {
            FinishClosing();
            return;
        }
    }
    if (!menu.menuOpening) {
        menu.unfoldTween = Tween();
        menu.slideTweens = {};
    }
    if (std::fabs(menu.menuCheckpointPosition.x - playerX) > kLeaveDistance) menu.menuClosing = 1;
}

void CloseCheckpointMenu() {
    if (Overlays().checkpointMenuOpen) menu.menuClosing = 1;
}

int CheckpointMenuOpening() {
    return menu.menuOpening;
}

void HoverCheckpointMenu(sf::Vector2f worldPointer) {
    if (!ButtonsExist()) return;
    for (int i = 0; i < CHECKPOINT_BUTTON_COUNT; i++) {
        Button& button = menu.buttons[i];
        button.hovered = UpdateButtonHover(worldPointer, button);
        if (button.hovered) menu.selectedButton = i;
    }
}

void PressCheckpointMenu() {
    if (!ButtonsExist()) return;
    for (int i = CHECKPOINT_BUTTON_COUNT - 1; i >= 0; i--) {
        if (menu.buttons[i].hovered) {
            RunAction(i);
            return;
        }
    }
}

void ConfirmCheckpointSelection() {
    if (ButtonsExist()) RunAction(menu.selectedButton);
}

void MoveCheckpointSelection(int step) {
    menu.selectedButton = std::clamp(menu.selectedButton + step, 0, CHECKPOINT_BUTTON_COUNT - 1);
}

void DrawCheckpointMenu(sf::RenderTarget& target) {
    for (const Button& button : menu.buttons) DrawButton(target, button);
}

void FreeCheckpointMenu() {
    FreeButtons();
    menu = CheckpointMenu();
}

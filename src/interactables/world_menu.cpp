#include "interactables/world_menu.h"

#include <algorithm>
#include <cmath>

#include "common/ease.h"

namespace {

const char* const kButtonTexturePath = "Assets/Sprites/WorldHUD/button.png";
const char* const kFontPath = "Assets/Fonts/alagard.ttf";

const sf::Vector2f kButtonSize(175, 52);
const unsigned kCharacterSize = 25;
const float kButtonSpacing = 65;
const float kTweenDuration = 0.5f;
const float kSelectedScale = 1.2f;
// The picture is shown as drawn; without it a dark stone keeps the white labels readable.
const sf::Color kTexturedFill = sf::Color::White;
const sf::Color kBareFill(96, 84, 72);

void SetButtonScale(Button& button, sf::Vector2f scale) {
    button.shape->setScale(scale);
    button.text->setScale(scale);
}

// While folding or unfolding, every button copies the first one's scale.
void CopyFirstScale(WorldMenu& menu) {
    sf::Vector2f scale = menu.buttons[0].shape->getScale();
    for (Button& button : menu.buttons) SetButtonScale(button, scale);
}

void ShowSelection(WorldMenu& menu) {
    for (int i = 0; i < int(menu.buttons.size()); i++) {
        Button& button = menu.buttons[i];
        float scale = button.shape->getScale().x;
        if (i != menu.selected && scale > 1) SetButtonScale(button, {1, 1});
        if (i == menu.selected && scale < kSelectedScale) {
            SetButtonScale(button, {kSelectedScale, kSelectedScale});
        }
    }
}

// The first button unfolds; then the others slide down under it.
void Unfold(WorldMenu& menu, float dt) {
    auto& buttons = menu.buttons;
    int unfolded = TweenShapeScale(*buttons[0].shape, {1, 1}, kTweenDuration, dt, menu.unfoldTween);
    CopyFirstScale(menu);
    if (!unfolded) return;
    int slid = 1;
    for (int i = 1; i < int(buttons.size()); i++) {
        sf::Vector2f goal = menu.anchor + sf::Vector2f(0, kButtonSpacing * float(i));
        slid = TweenPosition(*buttons[i].shape, goal, kTweenDuration, EASE_CUBIC_IN_OUT, dt,
                             menu.slideTweens[i - 1]);
        buttons[i].text->setPosition(buttons[i].shape->getPosition());
    }
    if (slid) menu.opening = 0;
}

// Returns 1 once folded flat; the buttons are then freed.
int Fold(WorldMenu& menu, float dt) {
    int folded =
        TweenShapeScale(*menu.buttons[0].shape, {1, 0}, kTweenDuration, dt, menu.foldTween);
    CopyFirstScale(menu);
    if (!folded) return 0;
    FreeWorldMenuButtons(menu);
    menu.foldTween = Tween();
    menu.closing = 0;
    return 1;
}

}  // namespace

void OpenWorldMenu(WorldMenu& menu, std::span<const char* const> labels, sf::Vector2f ownerPosition,
                   sf::Vector2f anchorOffset, float leaveDistance) {
    FreeWorldMenuButtons(menu);
    menu.opening = 1;
    menu.closing = 0;
    menu.ownerPosition = ownerPosition;
    menu.anchor = ownerPosition + anchorOffset;
    menu.leaveDistance = leaveDistance;
    menu.unfoldTween = menu.foldTween = Tween();
    menu.slideTweens.assign(labels.empty() ? 0 : labels.size() - 1, Tween());
    if (!menu.buttonTexture) menu.buttonTexture = LoadTexture(kButtonTexturePath);
    menu.font = LoadFont(kFontPath);
    sf::Color fill = menu.buttonTexture ? kTexturedFill : kBareFill;
    menu.buttons.resize(labels.size());
    for (size_t i = 0; i < labels.size(); i++) {
        Button& button = menu.buttons[i];
        CreateButton(button, kButtonSize, menu.font.get(), labels[i], kCharacterSize,
                     sf::Color::White, fill, menu.anchor);
        if (menu.buttonTexture) button.shape->setTexture(menu.buttonTexture.get());
        SetButtonScale(button, {1, 0});
    }
    menu.selected = 0;
}

int UpdateWorldMenu(WorldMenu& menu, float playerX, float dt) {
    if (!WorldMenuShown(menu)) return 0;
    if (!menu.opening && !menu.closing) ShowSelection(menu);
    if (menu.opening) {
        Unfold(menu, dt);
    } else if (menu.closing && Fold(menu, dt)) {
        return 1;
    }
    if (!menu.opening) {
        menu.unfoldTween = Tween();
        std::fill(menu.slideTweens.begin(), menu.slideTweens.end(), Tween());
    }
    if (std::fabs(menu.ownerPosition.x - playerX) > menu.leaveDistance) menu.closing = 1;
    return 0;
}

void CloseWorldMenu(WorldMenu& menu) {
    if (WorldMenuShown(menu)) menu.closing = 1;
}

bool WorldMenuShown(const WorldMenu& menu) {
    return !menu.buttons.empty() && menu.buttons[0].shape != nullptr;
}

void HoverWorldMenu(WorldMenu& menu, sf::Vector2f worldPointer) {
    if (!WorldMenuShown(menu)) return;
    for (int i = 0; i < int(menu.buttons.size()); i++) {
        Button& button = menu.buttons[i];
        button.hovered = UpdateButtonHover(worldPointer, button);
        if (button.hovered) menu.selected = i;
    }
}

int HoveredWorldButton(const WorldMenu& menu) {
    if (!WorldMenuShown(menu)) return -1;
    for (int i = int(menu.buttons.size()) - 1; i >= 0; i--) {
        if (menu.buttons[i].hovered) return i;
    }
    return -1;
}

void MoveWorldSelection(WorldMenu& menu, int step) {
    int last = std::max(0, int(menu.buttons.size()) - 1);
    menu.selected = std::clamp(menu.selected + step, 0, last);
}

void DrawWorldMenu(sf::RenderTarget& target, const WorldMenu& menu) {
    for (const Button& button : menu.buttons) DrawButton(target, button);
}

void FreeWorldMenuButtons(WorldMenu& menu) {
    // The labels go before the font they use.
    for (Button& button : menu.buttons) FreeButton(button);
    menu.buttons.clear();
    menu.font.reset();
}

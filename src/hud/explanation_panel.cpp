#include "hud/explanation_panel.h"

#include <algorithm>
#include <string>

#include "app/keys.h"
#include "common/drawables.h"
#include "common/ease.h"
#include "common/motion.h"
#include "menus/settings_files.h"
#include "player/save.h"

namespace {

struct AbilityPage {
    const char* title;
    const char* icon;
    float iconScale;
    const char* description;
    int binding;
};

// "RT" and "LT" name the gamepad's triggers; the key bound on the keyboard follows.
const AbilityPage kPages[ABILITY_COUNT] = {
    {"Dash", "Assets/Sprites/ExplanationHUD/BOTTE.png", 4,
     "Quickly cover a short distance \n\n\nPress : RT / ", BINDING_DASH},
    {"Run", "Assets/Sprites/ExplanationHUD/BOTTE AILESRecovered.png", 4,
     "Run right after performing a dash.\n\n\nMaintain : RT / ", BINDING_DASH},
    {"Cloud Creation", "Assets/Sprites/Shop/AttackUp.png", 3.5f,
     "Create a small cloud while in the air.\n\n\nPress :  LT / ", BINDING_CLOUD},
};

constexpr float kFadeSeconds = 1.0f;

struct Panel {
    int* open = nullptr;
    TexturePtr blockTexture, iconTexture;
    SpritePtr block, icon;
    FontPtr font;
    TextPtr title, description;
    int fadingIn = 0;
    int closeRequested = 0;
    ColorTween blockTween, iconTween;
} panel;

// One step of a sprite's colour towards the goal; true once the fade has run its time.
bool StepColor(sf::Sprite& sprite, ColorTween& tween, sf::Color goal, float dt) {
    sf::Color color = sprite.getColor();
    int done = StepColorTween(tween, color, goal, kFadeSeconds, EASE_CUBIC_IN_OUT, dt);
    sprite.setColor(color);
    return done != 0;
}

// Both pictures towards the goal, the texts taking the icon's colour; true when both are there.
bool FadeTo(sf::Color goal, float dt) {
    bool blockDone = !panel.block || StepColor(*panel.block, panel.blockTween, goal, dt);
    bool iconDone = !panel.icon || StepColor(*panel.icon, panel.iconTween, goal, dt);
    sf::Color textColor = panel.icon ? panel.icon->getColor() : goal;
    if (panel.title) panel.title->setFillColor(textColor);
    if (panel.description) panel.description->setFillColor(textColor);
    if (!blockDone || !iconDone) return false;
    panel.blockTween = ColorTween();
    panel.iconTween = ColorTween();
    return true;
}

void GrantAbility(int ability) {
    Abilities abilities = Save().abilities;
    if (ability == ABILITY_DASH) abilities.canDash = 1;
    if (ability == ABILITY_RUN) abilities.canRun = 1;
    if (ability == ABILITY_CLOUD) abilities.CanCreatePlatform = 1;
    SaveAbilities(abilities);
}

void BuildPage(const AbilityPage& page) {
    const sf::Color clear(255, 255, 255, 0);
    sf::FloatRect plate = panel.block ? panel.block->getGlobalBounds() : sf::FloatRect();
    panel.iconTexture = LoadTexture(page.icon);
    CreateSprite(panel.icon, panel.iconTexture.get(), {plate.left + 50, plate.top + 30}, {0, 0},
                 {page.iconScale, page.iconScale});
    panel.icon->setColor(clear);
    sf::FloatRect icon = panel.icon->getGlobalBounds();
    float textX = icon.left + icon.width + 25;
    CreateText(panel.title, panel.font.get(), page.title, {textX, icon.top}, 55, {0, 0}, clear);
    std::string description = page.description + KeyName(Settings().bindings[page.binding]);
    CreateText(panel.description, panel.font.get(), description, {textX, icon.top + 70}, 25, {0, 0},
               clear);
}

}  // namespace

void LoadExplanationPanel(int& explanationOpen) {
    DestroyExplanationPanel();
    panel.open = &explanationOpen;
    panel.blockTexture = LoadTexture("Assets/Sprites/ExplanationHUD/block.png");
    CreateSprite(panel.block, panel.blockTexture.get(), {960, 540}, {0.5f, 0.5f}, {1.25f, 1.25f});
    panel.block->setColor(sf::Color(255, 255, 255, 0));
    panel.font = LoadFont("Assets/Fonts/alagard.ttf");
}

void DestroyExplanationPanel() {
    panel = Panel();
}

void ShowAbilityExplanation(int ability) {
    if (ability < 0 || ability >= ABILITY_COUNT || !panel.open) return;
    BuildPage(kPages[ability]);
    panel.blockTween = ColorTween();
    panel.iconTween = ColorTween();
    panel.closeRequested = 0;
    *panel.open = 1;
    panel.fadingIn = 1;
    GrantAbility(ability);
}

void RequestExplanationClose() {
    if (panel.open && *panel.open) panel.closeRequested = 1;
}

void UpdateExplanationPanel(float dt) {
    if (panel.fadingIn) {
        if (FadeTo(sf::Color::White, dt)) panel.fadingIn = 0;
        return;
    }
    if (panel.closeRequested && FadeTo(sf::Color(255, 255, 255, 0), dt)) {
        panel.closeRequested = 0;
        if (panel.open) *panel.open = 0;
    }
}

void DrawExplanationPanel(sf::RenderTarget& target) {
    if (panel.block) target.draw(*panel.block);
    if (panel.icon) target.draw(*panel.icon);
    if (panel.title) target.draw(*panel.title);
    if (panel.description) target.draw(*panel.description);
}

const sf::Text* ExplanationTitle() {
    return panel.title.get();
}

const sf::Text* ExplanationDescription() {
    return panel.description.get();
}

int ExplanationAlpha() {
    return panel.block ? panel.block->getColor().a : 0;
}

#include "hud/boss_hud.h"

#include <algorithm>
#include <array>

#include "common/ease.h"
#include "common/log.h"
#include "enemies/enemies.h"

namespace {

constexpr float kSlideDuration = 2.0f;
constexpr float kBelowScreen = 324;

struct Templates {
    TexturePtr containerTexture, trailTexture, barTexture, ornamentsTexture;
    SpritePtr container, trail, bar, ornaments;
    FontPtr font;
    TextPtr name;
};

Templates templates;
std::vector<BossBar> bars;

const std::array<const char*, ENEMY_KIND_COUNT> kNames = {
    "The Frog",          "Anvileimh : The City's Guardian",
    "The Lost Nomad",    "The Forgotten Warrior",
    "The Amber Glutton", "The Carnivorous Plant",
    "The Empty Armor",   "The Goddess"};

void MakeTemplate(SpritePtr& sprite, const TexturePtr& texture, float y) {
    CreateSprite(sprite, texture.get(), {960, y}, {0.5f, 0.5f}, {3, 3});
    if (!texture) sprite->setPosition(960, y);
}

SpritePtr Copy(const SpritePtr& sprite) {
    return sprite ? std::make_unique<sf::Sprite>(*sprite) : std::make_unique<sf::Sprite>();
}

float TemplateWidth(const SpritePtr& sprite) {
    return sprite && sprite->getTexture() ? float(sprite->getTexture()->getSize().x) : 0;
}

// The container leads; the other parts keep their place relative to it.
void MoveBar(BossBar& bar, sf::Vector2f by) {
    for (SpritePtr* part : {&bar.trail, &bar.bar, &bar.ornaments}) (*part)->move(by);
    bar.name->move(by);
}

void SlideTo(BossBar& bar, Tween& tween, sf::Vector2f goal, int easing, float dt) {
    sf::Vector2f before = bar.container->getPosition();
    TweenPosition(*bar.container, goal, kSlideDuration, easing, dt, tween);
    MoveBar(bar, bar.container->getPosition() - before);
}

void SetWidth(sf::Sprite& sprite, int width) {
    sf::IntRect rect = sprite.getTextureRect();
    rect.width = std::max(0, width);
    sprite.setTextureRect(rect);
}

void Fill(BossBar& bar) {
    float ratio = bar.maxLife != 0 && bar.life ? float(*bar.life) / float(bar.maxLife) : 0;
    ratio = std::max(0.0f, ratio);
    SetWidth(*bar.bar, int(ratio * TemplateWidth(templates.bar)));
}

// The trail waits half a second after a change, then shrinks a texel a frame to the fill.
void Trail(BossBar& bar, float dt) {
    int trailWidth = bar.trail->getTextureRect().width;
    int barWidth = bar.bar->getTextureRect().width;
    if (trailWidth == barWidth) return;
    if (bar.trailTimer < bar.trailDelay) bar.trailTimer += dt;
    if (bar.trailTimer < bar.trailDelay) return;
    int width = trailWidth - 1;
    SetWidth(*bar.trail, width);
    if (width <= barWidth) {
        bar.trail->setTextureRect(bar.bar->getTextureRect());
        bar.trailTimer = 0;
    }
    float full = TemplateWidth(templates.trail);
    float shown = full > 0 ? float(bar.maxLife) * float(std::max(width, 0)) / full : 0;
    bar.shownLife = std::max(0.0f, shown);
}

void AddBar(int index, int kind) {
    int* life = GetEnemyLife(index, kind);
    if (!life) return;
    float n = float(bars.size());
    BossBar bar;
    bar.container = Copy(templates.container);
    bar.trail = Copy(templates.trail);
    bar.bar = Copy(templates.bar);
    bar.ornaments = Copy(templates.ornaments);
    bar.name =
        templates.name ? std::make_unique<sf::Text>(*templates.name) : std::make_unique<sf::Text>();
    bar.name->setString(BossName(kind));
    bar.container->move(0, kBelowScreen);
    MoveBar(bar, {0, kBelowScreen});
    bar.shownLife = float(*life);
    bar.maxLife = *life;
    bar.life = life;
    float height = templates.container->getGlobalBounds().height;
    bar.target = templates.container->getPosition() + sf::Vector2f(0, -n * height * 0.7f);
    Log("\n%f %f %f\n", 0.0, 0.0, double(-n * height * 0.7f));
    bars.push_back(std::move(bar));
}

}  // namespace

void LoadBossHud() {
    templates.containerTexture = LoadTexture("Assets/Sprites/HUD/Boss/LifeContainer.png");
    templates.trailTexture = LoadTexture("Assets/Sprites/HUD/Boss/LifeBarLosed.png");
    templates.barTexture = LoadTexture("Assets/Sprites/HUD/Boss/LifeBar.png");
    templates.ornamentsTexture = LoadTexture("Assets/Sprites/HUD/Boss/LifeOrnements.png");
    float height = templates.containerTexture ? float(templates.containerTexture->getSize().y) : 0;
    float y = 1080 - height * 1.5f;
    MakeTemplate(templates.container, templates.containerTexture, y);
    MakeTemplate(templates.trail, templates.trailTexture, y);
    MakeTemplate(templates.bar, templates.barTexture, y);
    MakeTemplate(templates.ornaments, templates.ornamentsTexture, y);
    templates.font = LoadFont("Assets/Fonts/alagard.ttf");
    sf::FloatRect corner = templates.container->getGlobalBounds();
    CreateText(templates.name, templates.font.get(), "text", {corner.left, corner.top}, 50,
               {-0.5f, 0.3f}, sf::Color(149, 46, 54, 255));
    templates.name->setOutlineThickness(2);
    templates.name->setOutlineColor(sf::Color::Black);
}

void AddBossBars() {
    if (!templates.container) return;
    for (int kind = 0; kind < ENEMY_KIND_COUNT; kind++) {
        for (int i = 0; i < EnemyCount(kind); i++) {
            if (!IsEnemyDead(i, kind)) AddBar(i, kind);
        }
    }
}

void UpdateBossHud(float dt) {
    bool allEmpty = !bars.empty();
    for (BossBar& bar : bars) {
        if (bar.introTimer < bar.introDelay) bar.introTimer += dt;
        if (bar.introTimer >= bar.introDelay && !bar.outro.started) {
            SlideTo(bar, bar.intro, bar.target, EASE_CUBIC_OUT, dt);
        }
        Fill(bar);
        Trail(bar, dt);
        allEmpty = allEmpty && bar.shownLife <= 0;
    }
    if (!allEmpty) return;
    for (size_t i = bars.size(); i-- > 0;) {
        BossBar& bar = bars[i];
        sf::Vector2f away = bar.outro.started ? bar.outro.from : bar.container->getPosition();
        SlideTo(bar, bar.outro, away + sf::Vector2f(0, 1080), EASE_CUBIC_IN, dt);
        if (TweenDone(bar.outro)) RemoveBossBar(int(i));
    }
}

void DrawBossHud(sf::RenderTarget& target, float brightness) {
    for (BossBar& bar : bars) {
        for (const SpritePtr* part : {&bar.container, &bar.trail, &bar.bar, &bar.ornaments}) {
            DrawDarkened(target, **part, brightness);
        }
        DrawDarkened(target, *bar.name, brightness);
    }
}

void RemoveBossBar(int index) {
    if (index >= 0 && size_t(index) < bars.size()) bars.erase(bars.begin() + index);
}

void RemoveAllBossBars() {
    bars.clear();
}

void DestroyBossHud() {
    bars.clear();
    templates = Templates();
}

const std::vector<BossBar>& BossBars() {
    return bars;
}

const char* BossName(int kind) {
    return kind >= 0 && kind < ENEMY_KIND_COUNT ? kNames[kind] : "Enemy";
}

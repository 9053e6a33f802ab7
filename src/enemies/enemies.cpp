#include "enemies/enemies.h"

#include <array>
#include <cmath>

#include "app/game.h"
#include "common/log.h"
#include "common/motion.h"
#include "enemies/trash.h"
#include "hud/player_hud.h"
#include "interactables/money.h"
#include "media/effects.h"
#include "player/player.h"
#include "player/player_combat.h"
#include "world/camera.h"
#include "world/room.h"

namespace {

// What the framework needs of a kind. A kind whose module is not part of the game yet has no
// operations: its roster is empty.
struct KindOps {
    int (*count)() = nullptr;
    sf::Sprite* (*sprite)(int) = nullptr;
    sf::FloatRect (*hurtbox)(int) = nullptr;
    sf::FloatRect (*attackBox)(int) = nullptr;
    int* (*life)(int) = nullptr;
    int (*container)(int) = nullptr;
    int (*state)(int) = nullptr;
    bool (*striking)(int) = nullptr;
    void (*disarm)(int) = nullptr;
    void (*update)(float, sf::Vector2f) = nullptr;
    void (*draw)(sf::RenderTarget&) = nullptr;
    void (*destroyAll)() = nullptr;
};

std::array<KindOps, ENEMY_KIND_COUNT> MakeKinds() {
    std::array<KindOps, ENEMY_KIND_COUNT> kinds{};
    kinds[ENEMY_TRASH] = {TrashCount,  TrashSprite,    TrashHurtbox, TrashAttackBox,
                          TrashLife,   TrashContainer, TrashState,   TrashStriking,
                          DisarmTrash, UpdateTrashes,  DrawTrashes,  DestroyAllTrashes};
    return kinds;
}

const std::array<KindOps, ENEMY_KIND_COUNT> kinds = MakeKinds();

// The state in which each kind lies dead (the Plant never dies).
constexpr std::array<int, ENEMY_KIND_COUNT> kDeadState = {2, 5, 6, 3, 3, -1, 3, 5};
// What a hit of each kind costs the hero, and whether a parry stops it.
constexpr std::array<int, ENEMY_KIND_COUNT> kDamage = {18, 25, 16, 12, 5, 100, 15, 30};
constexpr std::array<bool, ENEMY_KIND_COUNT> kParryable = {false, true,  true, true,
                                                           false, false, true, true};
// The money each kind drops when the hero fells it.
constexpr std::array<int, ENEMY_KIND_COUNT> kMoney = {10, 250, 60, 30, 20, 0, 80, 0};

EffectList blood;

bool Built(int kind) {
    return kind >= 0 && kind < ENEMY_KIND_COUNT && kinds[kind].count;
}

sf::FloatRect ContainerBounds(int containerId) {
    for (const EnemyContainer& container : CurrentRoom().enemyContainers) {
        if (container.id == containerId) return container.shape->getGlobalBounds();
    }
    return {};
}

// Walls push an enemy out along the axis of the smaller overlap (a tie pushes vertically).
void PushOutOfWalls(sf::Sprite& sprite, sf::FloatRect box) {
    for (const Collision& collision : CurrentRoom().collisions) {
        if (!collision.active || collision.kind != COLLISION_SOLID) continue;
        sf::FloatRect solid = collision.shape->getGlobalBounds();
        sf::FloatRect overlap;
        if (!box.intersects(solid, overlap)) continue;
        sf::Vector2f push;
        if (overlap.height <= overlap.width) {
            push.y = overlap.top == solid.top ? -overlap.height : overlap.height;
        } else {
            push.x = overlap.left == solid.left ? -overlap.width : overlap.width;
        }
        sprite.move(push);
        box.left += push.x;
        box.top += push.y;
    }
}

void ParryHit() {
    Player& player = GetPlayer();
    player.body.parrySucceeded = 1;
    sf::FloatRect bounds = player.sprite->getGlobalBounds();
    sf::Vector2i offset = player.parryEffectOffset;
    float x = PlayerFacingRight() ? bounds.left + 3.0f * float(offset.x)
                                  : bounds.left + bounds.width - 3.0f * float(offset.x);
    AddEffect(player.parryEffects, {x, bounds.top + 3.0f * float(offset.y)}, 0, {3, 3});
    CreateSoundArray(player.sounds[SOUND_PARRY_SUCCESS], 0);
    // The zoom punch: the follow mode eases the view back.
    Camera& camera = GameCamera();
    if (!camera.view) return;
    sf::Vector2f size = camera.view->getSize();
    if (camera.mode == CAMERA_FOLLOW) size = camera.targetSize;
    if (camera.mode == CAMERA_FIXED) size = camera.fixedSize;
    camera.view->setSize(size * 0.95f);
}

}  // namespace

void LoadEnemyAssets() {
    LoadTrashAssets();
    LoadEffectList(blood, "Assets/Sprites/FX/DamageBloodFX.png", {135, 106}, 5, 15);
}

void DestroyEnemyAssets() {
    DestroyTrashAssets();
    FreeEffectList(blood);
}

void AddEnemy(int enemyType, sf::Vector2f position, int containerId, int region) {
    if (enemyType == ENEMY_TRASH) AddTrashEnemy(position, containerId, region);
}

void DestroyAllEnemies() {
    for (const KindOps& kind : kinds) {
        if (kind.destroyAll) kind.destroyAll();
    }
    blood.instances.clear();
}

void UpdateEnemies(float dt, sf::Vector2f target) {
    for (int kind = 0; kind < ENEMY_KIND_COUNT; kind++) {
        if (kind == ENEMY_PLANT || kind == ENEMY_GODDESS) continue;
        for (int i = 0; i < EnemyCount(kind); i++) {
            sf::Sprite& sprite = *GetEnemySprite(i, kind);
            sf::FloatRect box = GetEnemyHurtbox(i, kind);
            PushOutOfWalls(sprite, box);
            ClampToContainer(&sprite, CLAMP_SPRITE, box, true, GetEnemyContainer(i, kind));
        }
    }
    for (const KindOps& kind : kinds) {
        if (kind.update) kind.update(dt, target);
    }
    UpdateEffects(blood, dt);
}

void FadeEnemyFlashes(float dt) {
    for (int kind = 0; kind < ENEMY_KIND_COUNT; kind++) {
        for (int i = 0; i < EnemyCount(kind); i++) {
            sf::Sprite& sprite = *GetEnemySprite(i, kind);
            if (sprite.getColor() != sf::Color::White) {
                FadeSpriteColor(sprite, sf::Color::White, dt, 600);
            }
        }
    }
}

void DrawEnemies(sf::RenderTarget& target, bool drawMain, bool drawBack) {
    for (int kind = 0; kind < ENEMY_KIND_COUNT; kind++) {
        bool back = kind == ENEMY_GODDESS || kind == ENEMY_PLANT;
        if ((back ? drawBack : drawMain) && kinds[kind].draw) kinds[kind].draw(target);
    }
    DrawEffects(target, blood);
}

void EnemiesHitPlayer() {
    Player& player = GetPlayer();
    if (!player.created) return;
    sf::FloatRect body = PlayerBodyBounds();
    for (int kind = 0; kind < ENEMY_KIND_COUNT; kind++) {
        for (int i = 0; i < EnemyCount(kind); i++) {
            if (!IsEnemyStriking(i, kind)) continue;
            if (!GetEnemyAttackBox(i, kind, 0).intersects(body)) continue;
            if (player.body.state == PLAYER_DEAD) continue;
            sf::Vector2f enemy = GetEnemyPosition(i, kind);
            if (player.body.state == PLAYER_PARRY && kParryable[kind]) {
                SetPlayerFacing(enemy.x >= GetPlayerPosition().x);
                ParryHit();
            } else {
                if (!player.godMode) HurtPlayer(kDamage[kind], enemy);
                FlashDamageVignette();
            }
            kinds[kind].disarm(i);
        }
    }
}

void PlayerHitsEnemies() {
    Player& player = GetPlayer();
    if (!player.created) return;
    int damage = PlayerAttackDamage();
    if (damage == 0) return;
    sf::FloatRect bounds = player.sprite->getGlobalBounds();
    sf::Vector2f size(bounds.width * 0.5f, bounds.height * 0.6f);
    player.attackBox.setSize(size);
    player.attackBox.setPosition(bounds.left + bounds.width * 0.5f, bounds.top + bounds.height);
    player.attackBox.setOrigin(player.sprite->getScale().x <= 0 ? size.x : 0, size.y);
    sf::FloatRect attack = player.attackBox.getGlobalBounds();
    for (int kind = 0; kind < ENEMY_KIND_COUNT; kind++) {
        for (int i = 0; i < EnemyCount(kind); i++) {
            if (IsEnemyDead(i, kind)) continue;
            sf::FloatRect hurtbox = GetEnemyHurtbox(i, kind);
            if (!hurtbox.intersects(attack)) continue;
            int* life = GetEnemyLife(i, kind);
            if (life) *life -= damage;
            sf::Vector2f center(hurtbox.left + hurtbox.width / 2, hurtbox.top + hurtbox.height / 2);
            bool left = center.x < GetPlayerPosition().x;
            AddEffect(blood, center, 0, {left ? -3.0f : 3.0f, 3});
            player.body.hitDealt = 1;
            CreateSoundArray(player.sounds[SOUND_HIT], 0);
            GetEnemySprite(i, kind)->setColor(sf::Color::Red);
            if (life && *life < 1) {
                Log("enemy down : kind %d\n", kind);
                PayEnemyMoney(kind, GetEnemyPosition(i, kind));
            }
        }
    }
}

int EnemyMoney(int kind) {
    return kind >= 0 && kind < ENEMY_KIND_COUNT ? kMoney[kind] : 0;
}

void PayEnemyMoney(int kind, sf::Vector2f position) {
    int value = EnemyMoney(kind);
    AddKillReward(value);
    const MoneyState& money = Money();
    int remaining = value;
    while (money.bigCoinValue > 0 && remaining > money.bigCoinValue) {
        SpawnCoin(position, COIN_BIG);
        remaining -= money.bigCoinValue;
    }
    while (money.smallCoinValue > 0 && remaining > 0) {
        SpawnCoin(position, COIN_SMALL);
        remaining -= money.smallCoinValue;
    }
}

int EnemyCount(int kind) {
    return Built(kind) ? kinds[kind].count() : 0;
}

int CountDeadEnemies() {
    int dead = 0;
    for (int kind = 0; kind < ENEMY_KIND_COUNT; kind++) {
        for (int i = 0; i < EnemyCount(kind); i++) dead += IsEnemyDead(i, kind) ? 1 : 0;
    }
    return dead;
}

sf::Sprite* GetEnemySprite(int index, int kind) {
    return kinds[kind].sprite(index);
}

sf::FloatRect GetEnemyHurtbox(int index, int kind) {
    return Built(kind) ? kinds[kind].hurtbox(index) : sf::FloatRect();
}

sf::FloatRect GetEnemyAttackBox(int index, int kind, int attack) {
    (void)attack;  // only the Slime has several attacks at once: its projectiles
    return Built(kind) ? kinds[kind].attackBox(index) : sf::FloatRect();
}

int* GetEnemyLife(int index, int kind) {
    return Built(kind) && kinds[kind].life ? kinds[kind].life(index) : nullptr;
}

int GetEnemyContainer(int index, int kind) {
    return kinds[kind].container(index);
}

bool IsEnemyStriking(int index, int kind) {
    return Built(kind) && kinds[kind].striking(index);
}

bool IsEnemyDead(int index, int kind) {
    return Built(kind) && kDeadState[kind] >= 0 && kinds[kind].state(index) == kDeadState[kind];
}

sf::Vector2f GetEnemyPosition(int index, int kind) {
    return GetEnemySprite(index, kind)->getPosition();
}

bool ClampToContainer(sf::Transformable* object, int objectKind, const sf::FloatRect& box,
                      bool move, int containerId) {
    sf::FloatRect c = ContainerBounds(containerId);
    float right = box.left + box.width, bottom = box.top + box.height;
    float dx = 0, dy = 0;
    if (box.width <= c.width && box.left < c.left) dx += c.left - box.left;
    if (right > c.left + c.width) dx += c.left + c.width - right;
    if (box.height <= c.height && box.top < c.top) dy += c.top - box.top;
    if (bottom > c.top + c.height) dy += c.top + c.height - bottom;
    if (move && object && (objectKind == CLAMP_SPRITE || objectKind == CLAMP_SHAPE)) {
        object->move(dx, dy);
    }
    return dx != 0 || dy != 0;
}

bool ContainerContains(sf::Vector2f point, int containerId) {
    return ContainerBounds(containerId).contains(point);
}

bool EnemyNearTarget(sf::Vector2f position, sf::Vector2f target) {
    return std::fabs(position.x - target.x) < 2880 || std::fabs(position.y - target.y) < 1404;
}

#include "enemies/enemies.h"

#include <array>
#include <cmath>

#include "app/game.h"
#include "common/log.h"
#include "common/motion.h"
#include "enemies/enemy_body.h"
#include "enemies/flying_knight.h"
#include "enemies/frog.h"
#include "enemies/goddess.h"
#include "enemies/king.h"
#include "enemies/nomad.h"
#include "enemies/plant.h"
#include "enemies/slime.h"
#include "enemies/trash.h"
#include "hud/player_hud.h"
#include "interactables/money.h"
#include "media/effects.h"
#include "player/player.h"
#include "player/player_combat.h"
#include "world/camera.h"
#include "world/room.h"
#include "world/transition.h"

namespace {

// The roster's table, in kind order: one row per kind.
std::array<const EnemyKindOps*, ENEMY_KIND_COUNT> MakeKinds() {
    std::array<const EnemyKindOps*, ENEMY_KIND_COUNT> kinds{};
    kinds[ENEMY_FROG] = &FrogKind();
    kinds[ENEMY_KING] = &KingKind();
    kinds[ENEMY_NOMAD] = &NomadKind();
    kinds[ENEMY_TRASH] = &TrashKind();
    kinds[ENEMY_SLIME] = &SlimeKind();
    kinds[ENEMY_PLANT] = &PlantKind();
    kinds[ENEMY_FLYING_KNIGHT] = &FlyingKnightKind();
    kinds[ENEMY_GODDESS] = &GoddessKind();
    return kinds;
}

const std::array<const EnemyKindOps*, ENEMY_KIND_COUNT>& Kinds() {
    static const std::array<const EnemyKindOps*, ENEMY_KIND_COUNT> kinds = MakeKinds();
    return kinds;
}

const EnemyKindOps* Kind(int kind) {
    return kind >= 0 && kind < ENEMY_KIND_COUNT ? Kinds()[kind] : nullptr;
}

// The money each kind drops when the hero fells it.
constexpr std::array<int, ENEMY_KIND_COUNT> kMoney = {10, 250, 60, 30, 20, 0, 80, 0};

// The back pass draws the Goddess, then the Plants, behind everything else.
constexpr std::array<int, 2> kDrawnBehind = {ENEMY_GODDESS, ENEMY_PLANT};

EffectList blood;

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

// An attack that reached the hero: parried or landed, then spent.
void TakeBlow(int index, int kind, int attack) {
    Player& player = GetPlayer();
    const EnemyKindOps& ops = *Kind(kind);
    EnemyBlow blow = ops.blow(index, attack);
    sf::Vector2f enemy = GetEnemyPosition(index, kind);
    if (player.body.state == PLAYER_PARRY && blow.parryable) {
        SetPlayerFacing(enemy.x >= GetPlayerPosition().x);
        ParryHit();
    } else {
        if (!player.godMode) HurtPlayer(blow.damage, enemy);
        FlashDamageVignette();
    }
    if (ops.landed) {
        ops.landed(index, attack);
    } else {
        ops.body(index).armed = 0;
    }
}

// Blood on the hurtbox's centre, turned away from whoever struck.
void Bleed(sf::FloatRect hurtbox, float attackerX) {
    sf::Vector2f center(hurtbox.left + hurtbox.width / 2, hurtbox.top + hurtbox.height / 2);
    AddEffect(blood, center, 0, {center.x < attackerX ? -3.0f : 3.0f, 3});
}

}  // namespace

void LoadEnemyAssets() {
    for (const EnemyKindOps* kind : Kinds()) {
        if (kind && kind->loadAssets) kind->loadAssets();
    }
    LoadEffectList(blood, "Assets/Sprites/FX/DamageBloodFX.png", {135, 106}, 5, 15);
}

void DestroyEnemyAssets() {
    for (const EnemyKindOps* kind : Kinds()) {
        if (kind && kind->destroyAssets) kind->destroyAssets();
    }
    FreeEffectList(blood);
}

void AddEnemy(int enemyType, sf::Vector2f position, int containerId, int region) {
    const EnemyKindOps* kind = Kind(enemyType);
    if (kind && kind->add) kind->add(position, containerId, region);
}

void DestroyAllEnemies() {
    for (const EnemyKindOps* kind : Kinds()) {
        if (kind && kind->destroyAll) kind->destroyAll();
    }
    blood.instances.clear();
}

void UpdateEnemies(float dt, sf::Vector2f target) {
    for (int kind = 0; kind < ENEMY_KIND_COUNT; kind++) {
        if (!Kind(kind) || !Kind(kind)->pushedOut) continue;
        for (int i = 0; i < EnemyCount(kind); i++) {
            sf::Sprite& sprite = *GetEnemySprite(i, kind);
            sf::FloatRect box = GetEnemyHurtbox(i, kind);
            PushOutOfWalls(sprite, box);
            ClampToContainer(&sprite, CLAMP_SPRITE, box, true, GetEnemyContainer(i, kind));
        }
    }
    for (const EnemyKindOps* kind : Kinds()) {
        if (kind && kind->update) kind->update(dt, target);
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
    auto draw = [&target](int kind) {
        if (Kind(kind) && Kind(kind)->draw) Kind(kind)->draw(target);
    };
    if (drawMain) {
        for (int kind = 0; kind < ENEMY_KIND_COUNT; kind++) {
            if (kind != ENEMY_GODDESS && kind != ENEMY_PLANT) draw(kind);
        }
    }
    if (drawBack) {
        for (int kind : kDrawnBehind) draw(kind);
    }
    DrawEffects(target, blood);
}

void EnemiesHitPlayer() {
    Player& player = GetPlayer();
    // Walking through a door the hero is out of the fight: the walk would carry a fallen hero on.
    if (!player.created || Transition().transitionActive) return;
    sf::FloatRect body = PlayerBodyBounds();
    for (int kind = 0; kind < ENEMY_KIND_COUNT; kind++) {
        for (int i = 0; i < EnemyCount(kind); i++) {
            if (!IsEnemyStriking(i, kind)) continue;
            for (int attack = 0; attack < EnemyAttackCount(i, kind); attack++) {
                if (!GetEnemyAttackBox(i, kind, attack).intersects(body)) continue;
                if (player.body.state == PLAYER_DEAD) continue;
                TakeBlow(i, kind, attack);
            }
        }
    }
}

void PlayerHitsEnemies() {
    Player& player = GetPlayer();
    if (!player.created) return;
    int damage = PlayerAttackDamage();
    if (damage == 0) return;
    sf::FloatRect attack = PlacePlayerAttackBox();
    for (int kind = 0; kind < ENEMY_KIND_COUNT; kind++) {
        for (int i = 0; i < EnemyCount(kind); i++) {
            if (IsEnemyDead(i, kind)) continue;
            sf::FloatRect hurtbox = GetEnemyHurtbox(i, kind);
            if (!hurtbox.intersects(attack)) continue;
            int* life = GetEnemyLife(i, kind);
            if (life) *life -= damage;
            Bleed(hurtbox, GetPlayerPosition().x);
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

void DamageEnemy(int index, int kind, int damage, sf::Vector2f attackerPosition) {
    if (index < 0 || index >= EnemyCount(kind)) return;
    int* life = GetEnemyLife(index, kind);
    if (life) *life -= damage;
    if (damage < 1) return;
    sf::FloatRect hurtbox = GetEnemyHurtbox(index, kind);
    if (hurtbox.width == 0 && hurtbox.height == 0) hurtbox = {};
    Bleed(hurtbox, attackerPosition.x);
}

sf::Vector2f BossFocusPoint(sf::Vector2f fallback) {
    sf::Vector2f point = fallback;
    for (int kind = 0; kind < ENEMY_KIND_COUNT; kind++) {
        for (int i = 0; i < EnemyCount(kind); i++) {
            sf::FloatRect bounds = GetEnemySprite(i, kind)->getGlobalBounds();
            point = {bounds.left + bounds.width / 2, bounds.top + bounds.height / 2};
        }
    }
    return point;
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
    return Kind(kind) && Kind(kind)->count ? Kind(kind)->count() : 0;
}

int EnemyAttackCount(int index, int kind) {
    const EnemyKindOps* ops = Kind(kind);
    if (!ops || !ops->attackBox) return 0;
    return ops->attackCount ? ops->attackCount(index) : 1;
}

int CountDeadEnemies() {
    int dead = 0;
    for (int kind = 0; kind < ENEMY_KIND_COUNT; kind++) {
        for (int i = 0; i < EnemyCount(kind); i++) dead += IsEnemyDead(i, kind) ? 1 : 0;
    }
    return dead;
}

sf::Sprite* GetEnemySprite(int index, int kind) {
    return Kind(kind)->body(index).sprite.get();
}

sf::FloatRect GetEnemyHurtbox(int index, int kind) {
    const EnemyKindOps* ops = Kind(kind);
    return ops && ops->hurtbox ? ops->hurtbox(index) : sf::FloatRect();
}

sf::FloatRect GetEnemyAttackBox(int index, int kind, int attack) {
    const EnemyKindOps* ops = Kind(kind);
    return ops && ops->attackBox ? ops->attackBox(index, attack) : sf::FloatRect();
}

int* GetEnemyLife(int index, int kind) {
    const EnemyKindOps* ops = Kind(kind);
    if (!ops || ops->deadState < 0) return nullptr;  // what never dies has no life to count
    return &ops->body(index).life;
}

int GetEnemyContainer(int index, int kind) {
    return Kind(kind)->body(index).containerId;
}

bool IsEnemyStriking(int index, int kind) {
    const EnemyKindOps* ops = Kind(kind);
    return ops && ops->striking && ops->striking(index);
}

bool IsEnemyDead(int index, int kind) {
    const EnemyKindOps* ops = Kind(kind);
    return ops && ops->deadState >= 0 && ops->body(index).state == ops->deadState;
}

sf::Vector2f GetEnemyPosition(int index, int kind) {
    return GetEnemySprite(index, kind)->getPosition();
}

int GetEnemyState(int index, int kind) {
    return Kind(kind)->body(index).state;
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

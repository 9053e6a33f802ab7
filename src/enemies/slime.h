// The Slime: a stationary ranged enemy that turns to the hero, spits slow projectiles at them on
// its launch frame and shuffles sideways when the hero is below it. Each Slime owns the
// projectiles it spat; they fly straight until they touch a wall or the hero, burst, and go.
#pragma once

#include <SFML/Graphics.hpp>
#include <vector>

#include "common/drawables.h"
#include "enemies/enemies.h"
#include "media/animation.h"

enum SlimeState { SLIME_IDLE = 0, SLIME_WALK = 1, SLIME_ATTACK = 2, SLIME_DEAD = 3 };

struct Projectile {
    SpritePtr sprite;  // rotated to its heading: 0 up, clockwise
    sf::Vector2f direction;
    Animation burst;  // plays once after impact; frame 0 is the look in flight
    int destroyed = 0;
};

struct ProjectileBank {
    TexturePtr texture;
    std::vector<Projectile> projectiles;
    int speed = 600;  // px/s
    float spin = 0;   // degrees per second
    sf::RectangleShape hitbox;
};

// The Slime's row in the roster's table.
const EnemyKindOps& SlimeKind();

void AddSlimeEnemy(sf::Vector2f position, int containerId, int region);
// The region's projectile look, no projectiles yet.
void InitProjectileBank(ProjectileBank& bank, int region);
// A projectile at `position` heading `angle` degrees (0 up, 90 right, 180 down, 270 left).
void AddProjectile(ProjectileBank& bank, sf::Vector2f position, float angle);
// Flies every projectile on until a wall stops it, then plays its burst and removes it.
void UpdateProjectiles(ProjectileBank& bank, float dt);
void DestroyProjectile(ProjectileBank& bank, int index);
// A projectile's hitbox where it is now.
sf::FloatRect ProjectileBox(ProjectileBank& bank, int index);

ProjectileBank& SlimeProjectiles(int index);

// The Flying Knight, "The Empty Armor": an empty suit of armour that bobs in the air, patrols
// until it notices the hero, keeps its distance, and sends its sword at them: a two-cut slash
// beside the hero, or a plunge from above.
#pragma once

#include <SFML/Graphics.hpp>

#include "enemies/enemies.h"

enum FlyingKnightState { KNIGHT_IDLE = 0, KNIGHT_PATROL = 1, KNIGHT_ATTACK = 2, KNIGHT_DEAD = 3 };

enum FlyingKnightAttack { KNIGHT_NO_ATTACK = -1, KNIGHT_SLASH = 0, KNIGHT_PLUNGE = 1 };

// The Flying Knight's row in the roster's table.
const EnemyKindOps& FlyingKnightKind();

void AddFlyingKnightEnemy(sf::Vector2f position, int containerId);
int FlyingKnightState(int index);
int FlyingKnightAttackKind(int index);
const sf::Sprite& FlyingKnightSword(int index);
// The patrol speed every Flying Knight shares; its sign is the way they all patrol.
float FlyingKnightPatrolSpeed();

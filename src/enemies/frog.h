// The Frog: a small hopper under gravity that leaps at the hero every one to three seconds while
// they are in its arena, and hurts them only while it is in the air.
#pragma once

#include <SFML/Graphics.hpp>

#include "enemies/enemies.h"

enum FrogState { FROG_IDLE = 0, FROG_JUMP = 1, FROG_DEAD = 2 };

// The Frog's row in the roster's table.
const EnemyKindOps& FrogKind();

void AddFrogEnemy(sf::Vector2f position, int containerId, int region);

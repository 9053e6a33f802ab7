// The Trash: the foot soldier that patrols its arena, notices the hero, chases and lunges.
#pragma once

#include <SFML/Graphics.hpp>

#include "enemies/enemies.h"

enum TrashState { TRASH_IDLE = 0, TRASH_WALK = 1, TRASH_ATTACK = 2, TRASH_DEAD = 3 };

// The Trash's row in the roster's table.
const EnemyKindOps& TrashKind();

void AddTrashEnemy(sf::Vector2f position, int containerId, int region);
int TrashState(int index);

// The carnivorous Plant: a trap hidden in the ground that snaps shut on the hero within reach,
// closes up and rearms. It cannot be hurt and never dies.
#pragma once

#include <SFML/Graphics.hpp>

#include "enemies/enemies.h"

enum PlantState { PLANT_IDLE = 0, PLANT_ATTACK = 1, PLANT_CLOSE = 2 };

// The Plant's row in the roster's table.
const EnemyKindOps& PlantKind();

void AddPlantEnemy(sf::Vector2f position, int containerId);
int PlantState(int index);

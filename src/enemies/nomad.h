// The Nomad: the hooded duellist of the forest. It patrols until it notices the hero, walks up to
// them and fights in randomised combos of light and heavy cuts, an escape dash and a rush dash,
// resting between combos.
#pragma once

#include <SFML/Graphics.hpp>

#include "enemies/enemies.h"

enum NomadState {
    NOMAD_IDLE = 0,
    NOMAD_WALK = 1,
    NOMAD_LIGHT_ATTACK = 2,
    NOMAD_HEAVY_ATTACK = 3,
    NOMAD_ESCAPE_DASH = 4,
    NOMAD_RUSH_DASH = 5,
    NOMAD_DEAD = 6
};

// The Nomad's row in the roster's table.
const EnemyKindOps& NomadKind();

void AddNomadEnemy(sf::Vector2f position, int containerId);
int NomadState(int index);
// How far ahead the Nomad strikes (half its sprite's width): it attacks a hero closer than this.
float NomadReach(int index);

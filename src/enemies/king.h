// The King, "Anvileimh : The City's Guardian": the city's boss. He waits, lurches at the hero and
// fights with a greatsword stroke of varying wind-up, a dash across the arena and a crashing
// leap, chained into combos by chance. His own music plays from his arrival until he falls.
#pragma once

#include <SFML/Graphics.hpp>

#include "enemies/enemies.h"

enum KingState {
    KING_IDLE = 0,
    KING_WALK = 1,
    KING_ATTACK = 2,
    KING_DASH_ATTACK = 3,
    KING_JUMP_ATTACK = 4,
    KING_DEAD = 5
};

// The King's row in the roster's table.
const EnemyKindOps& KingKind();

void AddKingEnemy(sf::Vector2f position, int containerId);
int KingState(int index);
int KingComboCount(int index);
// The attack's frame rate for the swing under way (its file rate, slowed by the wind-up drawn).
unsigned KingAttackRate(int index);
// Where the leap under way comes down (x) and the height of its top (y).
sf::Vector2f KingJumpAim(int index);
// Voices of the King's music playing now, over every King of the room.
int KingMusicVoices();

// The hero's fighting: the three-hit combo, the charged heavy attack, the jump attack, the parry,
// taking damage, revival, potions and the slow regeneration of life.
#pragma once

#include <SFML/Graphics/Rect.hpp>
#include <SFML/System/Vector2.hpp>

// The damage an enemy hit deals to the hero, from where it came.
void HurtPlayer(int damage, sf::Vector2f attackerPosition);

// From IDLE, WALK or RUN: a held heavy attack, a parry or a light attack begins. Returns whether
// a fight state was entered.
bool StartGroundCombat(bool parryAllowed);
// From JUMP or FALL: a requested jump attack begins.
bool StartJumpAttack();
// The state handlers of the fight states; returns false for a state that is not one of them.
bool UpdateCombatState(int state, float dt);

// Input from the routing: attack press, heavy / jump-attack press, parry press, heal press.
void PlayerAttackPressed();
void PlayerHeavyPressed();
void PlayerParryPressed();
void PlayerDrinkPotion();
// The heal of the gamepad's vertical pad: any state, one potion fills the current segment.
void PlayerPadHeal();

// The damage of the hero's state when its damage frame shows, else 0; the weapon's bonus is
// added to every blow that deals damage.
int PlayerAttackDamage();
// In a striking state (a light attack, the heavy or the jump-attack blow).
bool PlayerStriking();
// The sword's reach: the front half of the frame, its lower 60 %, placed on the hero now.
sf::FloatRect PlacePlayerAttackBox();
// What the blacksmith's upgrades add to each blow. Like the money, it lasts as long as the
// program runs and is never saved.
int& WeaponDamageBonus();

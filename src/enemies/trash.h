// The Trash: the foot soldier that patrols its arena, notices the hero, chases and lunges.
#pragma once

#include <SFML/Graphics.hpp>

enum TrashState { TRASH_IDLE = 0, TRASH_WALK = 1, TRASH_ATTACK = 2, TRASH_DEAD = 3 };

void LoadTrashAssets();
void DestroyTrashAssets();
void AddTrashEnemy(sf::Vector2f position, int containerId, int region);
void UpdateTrashes(float dt, sf::Vector2f target);
void DrawTrashes(sf::RenderTarget& target);
void DestroyAllTrashes();

int TrashCount();
sf::Sprite* TrashSprite(int index);
sf::FloatRect TrashHurtbox(int index);
sf::FloatRect TrashAttackBox(int index);
int* TrashLife(int index);
int TrashContainer(int index);
int TrashState(int index);
bool TrashStriking(int index);
void DisarmTrash(int index);

// The enemies of the current room: the roster of the eight kinds, their per-frame dispatch, the
// two hit exchanges with the hero, the blood effects, and the rules every kind shares (walls,
// arenas, damage, parries, money).
#pragma once

#include <SFML/Graphics.hpp>

enum EnemyKind {
    ENEMY_FROG = 0,
    ENEMY_KING = 1,
    ENEMY_NOMAD = 2,
    ENEMY_TRASH = 3,
    ENEMY_SLIME = 4,
    ENEMY_PLANT = 5,
    ENEMY_FLYING_KNIGHT = 6,
    ENEMY_GODDESS = 7,
    ENEMY_KIND_COUNT = 8
};

void LoadEnemyAssets();
void DestroyEnemyAssets();
// Creates an enemy of the spawn's kind (types outside 0..7 create nothing).
void AddEnemy(int enemyType, sf::Vector2f position, int containerId, int region);
// Every kind's destroy-all (the room is being left).
void DestroyAllEnemies();

void UpdateEnemies(float dt, sf::Vector2f target);
// Tinted enemies fade back to white after a hit.
void FadeEnemyFlashes(float dt);
void DrawEnemies(sf::RenderTarget& target, bool drawMain, bool drawBack);
void EnemiesHitPlayer();
void PlayerHitsEnemies();

// The money a kind drops, and its payment where an enemy of the kind fell to the hero: the sum
// is credited and split into coins, big ones while more than a big coin's worth remains.
int EnemyMoney(int kind);
void PayEnemyMoney(int kind, sf::Vector2f position);

int EnemyCount(int kind);
int CountDeadEnemies();
sf::Sprite* GetEnemySprite(int index, int kind);
sf::FloatRect GetEnemyHurtbox(int index, int kind);
sf::FloatRect GetEnemyAttackBox(int index, int kind, int attack);
int* GetEnemyLife(int index, int kind);
int GetEnemyContainer(int index, int kind);
bool IsEnemyStriking(int index, int kind);
bool IsEnemyDead(int index, int kind);
sf::Vector2f GetEnemyPosition(int index, int kind);

// Arenas: moves a box back inside its container (a box wider than the container keeps to its
// right edge); returns whether it stuck out. objectKind 0 moves a sprite, 2 a rectangle shape.
enum ClampObject { CLAMP_SPRITE = 0, CLAMP_SHAPE = 2 };
bool ClampToContainer(sf::Transformable* object, int objectKind, const sf::FloatRect& box,
                      bool move, int containerId);
bool ContainerContains(sf::Vector2f point, int containerId);
// Enemies act only near the hero: within 2880 px across or 1404 px up and down.
bool EnemyNearTarget(sf::Vector2f position, sf::Vector2f target);

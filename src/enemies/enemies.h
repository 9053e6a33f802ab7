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

struct EnemyBody;

// What an attack that reaches the hero costs, and whether a parry stops it.
struct EnemyBlow {
    int damage = 0;
    bool parryable = false;
};

// One kind's row in the roster's table: what the framework needs of it. A new kind is one module
// that fills a row, and the row added to the table.
struct EnemyKindOps {
    void (*loadAssets)() = nullptr;
    void (*destroyAssets)() = nullptr;  // destroys every enemy of the kind too
    void (*add)(sf::Vector2f position, int containerId, int region) = nullptr;
    int (*count)() = nullptr;
    EnemyBody& (*body)(int index) = nullptr;
    sf::FloatRect (*hurtbox)(int index) = nullptr;
    int (*attackCount)(int index) = nullptr;  // null: one attack
    sf::FloatRect (*attackBox)(int index, int attack) = nullptr;
    bool (*striking)(int index) = nullptr;
    EnemyBlow (*blow)(int index, int attack) = nullptr;
    void (*landed)(int index, int attack) = nullptr;  // null: the attack is disarmed
    void (*update)(float dt, sf::Vector2f target) = nullptr;
    void (*draw)(sf::RenderTarget& target) = nullptr;
    void (*destroyAll)() = nullptr;
    int deadState = -1;     // -1: never dies
    bool pushedOut = true;  // kept out of walls and inside its arena by the framework
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

// The console's hit: life minus the damage and, for 1 or more, blood on the hurtbox's centre
// turned away from the attacker. No money.
void DamageEnemy(int index, int kind, int damage, sf::Vector2f attackerPosition);
// The point a boss room's arrival pans to: the bounds centre of its last enemy, or `fallback`.
sf::Vector2f BossFocusPoint(sf::Vector2f fallback);

int EnemyCount(int kind);
int EnemyAttackCount(int index, int kind);
int CountDeadEnemies();
sf::Sprite* GetEnemySprite(int index, int kind);
sf::FloatRect GetEnemyHurtbox(int index, int kind);
sf::FloatRect GetEnemyAttackBox(int index, int kind, int attack);
int* GetEnemyLife(int index, int kind);
int GetEnemyContainer(int index, int kind);
bool IsEnemyStriking(int index, int kind);
bool IsEnemyDead(int index, int kind);
sf::Vector2f GetEnemyPosition(int index, int kind);
int GetEnemyState(int index, int kind);

// Arenas: moves a box back inside its container (a box wider than the container keeps to its
// right edge); returns whether it stuck out. objectKind 0 moves a sprite, 2 a rectangle shape.
enum ClampObject { CLAMP_SPRITE = 0, CLAMP_SHAPE = 2 };
bool ClampToContainer(sf::Transformable* object, int objectKind, const sf::FloatRect& box,
                      bool move, int containerId);
bool ContainerContains(sf::Vector2f point, int containerId);
// Enemies act only near the hero: within 2880 px across or 1404 px up and down.
bool EnemyNearTarget(sf::Vector2f position, sf::Vector2f target);

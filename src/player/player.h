// The hero: the record, the state machine, the per-update physics and the collision of the body
// against the room.
#pragma once

#include <SFML/Graphics.hpp>
#include <array>
#include <vector>

#include "common/afterimage.h"
#include "common/drawables.h"
#include "media/animation.h"
#include "media/effects.h"
#include "media/sound.h"

enum PlayerState {
    PLAYER_IDLE = 0,
    PLAYER_WALK,
    PLAYER_DASH,
    PLAYER_RUN,
    PLAYER_JUMP,
    PLAYER_FALL,
    PLAYER_LIGHT_ATTACK_1,
    PLAYER_LIGHT_ATTACK_2,
    PLAYER_LIGHT_ATTACK_3,
    PLAYER_HEAVY_ATTACK_PREPARATION,
    PLAYER_HEAVY_ATTACK_WAIT,
    PLAYER_HEAVY_ATTACK_HIT,
    PLAYER_JUMP_ATTACK_IN_THE_AIR,
    PLAYER_JUMP_ATTACK_HIT,
    PLAYER_TAKE_DAMAGE,
    PLAYER_DEAD,
    PLAYER_PARRY,
    PLAYER_REVIVE,
    PLAYER_STATE_COUNT
};

struct PlayerTuning {
    float walkSpeed = 700.0f;
    float gravity = 40.0f;
    float maxFallSpeed = 20.0f;
    float jumpImpulse = 20.0f;
    float dashDuration = 0.2f;
    float parryDuration = 0.3f;
    float dashCooldown = 0.7f;
    float attackCooldown = 0.3f;
    float parryCooldown = 0.5f;
};

enum Contact { CONTACT_DOWN = 0, CONTACT_LEFT, CONTACT_RIGHT, CONTACT_UP };

struct PlayerBody {
    int groundMode = PLAYER_IDLE;
    int dashRequest = 0, attackRequest = 0, jumpAttackRequest = 0, comboRequest = 0;
    int parryRequest = 0, jumpRequest = 0;
    int parrySucceeded = 0, controllable = 1, hitDealt = 0, onCloud = 0;
    float vx = 0, vy = 0;
    sf::Vector2f damageSource;
    sf::Vector2f anchor;
    std::array<int, 4> blocked{};  // by Contact
    int state = PLAYER_FALL;
    int stateEntered = 0;
};

enum PlayerSound {
    SOUND_LIGHT_ATTACK = 0,
    SOUND_HEAVY_ATTACK,
    SOUND_DASH,
    SOUND_PARRY,
    SOUND_PARRY_SUCCESS,
    SOUND_FOOTSTEP,
    SOUND_LANDING,
    SOUND_TAKE_DAMAGE,
    SOUND_HIT,
    PLAYER_SOUND_COUNT
};

struct Player {
    SpritePtr sprite;
    TexturePtr texture;
    sf::Vector2i frameSize;
    std::array<Animation, PLAYER_STATE_COUNT> clips;
    std::array<int, PLAYER_STATE_COUNT> damageFrame{};
    sf::Vector2i parryEffectOffset;
    PlayerTuning tuning;
    PlayerBody body;
    float stateTimer = 0, stateDuration = 0;
    float dashCooldownTimer = 0, attackCooldownTimer = 0, parryCooldownTimer = 0;
    int life = 100;
    int potions = 0;
    int godMode = 0;
    float regenDelayTimer = 0, regenTickTimer = 0;
    sf::Vector2f lastSafePosition;
    float safeTimer = 0;
    float jumpBufferTimer = 0;
    int dropThrough = 0;
    int onSolidGround = 0;
    int footstepArmed = 0;
    AfterimageTrail trail;
    std::array<SoundArray, PLAYER_SOUND_COUNT> sounds;
    EffectList parryEffects;
    sf::RectangleShape bodyBox;
    std::array<sf::RectangleShape, 4> sensors;  // by Contact
    sf::RectangleShape attackBox;
    bool created = false;
};

Player& GetPlayer();

void CreatePlayer(sf::Vector2f spawnPosition);
void DestroyPlayer();
void LoadPlayerAnimations();
void SetPlayerState(int state);
void HandlePlayerKeyPressed(int key);
void UpdatePlayer(float dt);
// Timed states run out, every cooldown is ready, pending requests and hit flags are dropped.
void ResetPlayerActions();
void DrawPlayer(sf::RenderTarget& target);
sf::Vector2f GetPlayerPosition();
void SetPlayerPosition(sf::Vector2f position);

// The body box placed at the feet.
sf::FloatRect PlayerBodyBounds();
// Standing on a solid rectangle (not a one-way platform or a cloud).
bool PlayerOnSolidGround();
bool PlayerStanding();  // any support under the feet
bool PlayerFacingRight();
void SetPlayerFacing(bool right);

// What the devices say the player holds (bindings, gamepad and mouse).
bool RightHeld();
bool LeftHeld();
bool DownHeld();
bool JumpHeld();
bool RunHeld();
bool HeavyHeld();
bool AttackHeld();

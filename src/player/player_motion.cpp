// The hero's update: gravity, the movement states, collision with the room and the clouds, the
// safe position, the afterimage trail and the jump buffer.
#include <algorithm>
#include <cmath>

#include "player/cloud.h"
#include "player/player.h"
#include "player/player_combat.h"
#include "player/save.h"
#include "world/room.h"

namespace {

// A faint black ghost every thirtieth of a second, gone after 0.15 s.
const AfterimageLook kHeroTrail = {1.0f / 30.0f, sf::Color(0, 0, 0, 30), 0.15f};

Player& P() {
    return GetPlayer();
}
PlayerBody& Body() {
    return GetPlayer().body;
}

bool Blocked(int contact) {
    return Body().blocked[contact] != 0;
}

bool FacingBlocked() {
    return PlayerFacingRight() ? Blocked(CONTACT_RIGHT) : Blocked(CONTACT_LEFT);
}

void Steer(float dt) {
    PlayerBody& body = Body();
    body.vx = 0;
    bool right = RightHeld(), left = LeftHeld();
    if (right) body.vx += P().tuning.walkSpeed * dt;
    if (left) body.vx -= P().tuning.walkSpeed * dt;
    if (left && Blocked(CONTACT_LEFT) && !PlayerFacingRight()) body.vx = 0;
    if (right && Blocked(CONTACT_RIGHT) && PlayerFacingRight()) body.vx = 0;
}

void Face() {
    bool right = RightHeld(), left = LeftHeld();
    if (right && !left) SetPlayerFacing(true);
    if (left && !right) SetPlayerFacing(false);
}

void Forward(float dt, float factor) {
    float speed = P().tuning.walkSpeed * dt * factor;
    Body().vx = FacingBlocked() ? 0 : (PlayerFacingRight() ? speed : -speed);
}

// Airborne horizontal motion: a run-jump keeps its speed without steering.
void AirMove(float dt) {
    if (Body().groundMode == PLAYER_RUN) {
        Forward(dt, 1.7f);
    } else {
        Steer(dt);
        Face();
    }
}

void Footsteps() {
    int frame = P().clips[Body().state].currentFrame;
    if ((frame == 2 || frame == 7) && P().footstepArmed) {
        CreateSoundArray(P().sounds[SOUND_FOOTSTEP], 0);
        P().footstepArmed = 0;
    }
    if (frame == 1 || frame == 6) P().footstepArmed = 1;
}

void Land() {
    SetPlayerState(Body().groundMode == PLAYER_RUN ? PLAYER_RUN : PLAYER_IDLE);
    CreateSoundArray(P().sounds[SOUND_LANDING], 0);
}

bool DashReady() {
    return P().dashCooldownTimer >= P().tuning.dashCooldown;
}

void StartJump() {
    SetPlayerState(PLAYER_JUMP);
    Body().vy = -P().tuning.jumpImpulse;
    Body().anchor.y = GetPlayerPosition().y;
}

void UpdateIdle() {
    PlayerBody& body = Body();
    body.groundMode = PLAYER_IDLE;
    bool right = RightHeld(), left = LeftHeld();
    if (StartGroundCombat(true)) return;
    // Only a standing hero jumps from IDLE: one left in the air by a dash or a knock-back falls,
    // and the press waits in the jump buffer.
    if (body.jumpRequest && Blocked(CONTACT_DOWN) && !Blocked(CONTACT_UP)) {
        SetPlayerState(PLAYER_JUMP);
    } else if (!Blocked(CONTACT_DOWN)) {
        SetPlayerState(PLAYER_FALL);
    } else if (right != left) {
        if (!Blocked(right ? CONTACT_RIGHT : CONTACT_LEFT)) SetPlayerState(PLAYER_WALK);
    } else if (body.dashRequest && DashReady() && !FacingBlocked()) {
        SetPlayerState(PLAYER_DASH);
    }
}

void UpdateWalk(float dt) {
    PlayerBody& body = Body();
    body.groundMode = PLAYER_WALK;
    // The ledge grace is for walking off an edge: a walk that begins in the air (a dash that
    // ended off a ledge with the run input held) falls at once.
    bool beganInTheAir = body.stateEntered && !Blocked(CONTACT_DOWN);
    body.stateEntered = 0;
    Steer(dt);
    Face();
    Footsteps();
    if (StartGroundCombat(true)) {
    } else if (body.vx == 0) {
        SetPlayerState(PLAYER_IDLE);
    } else if (body.jumpRequest && !Blocked(CONTACT_UP)) {
        SetPlayerState(PLAYER_JUMP);
    }
    if (body.dashRequest && DashReady()) SetPlayerState(PLAYER_DASH);
    if (body.vy >= 5 || beganInTheAir) SetPlayerState(PLAYER_FALL);
}

void UpdateRun(float dt) {
    PlayerBody& body = Body();
    body.groundMode = PLAYER_RUN;
    Forward(dt, 1.7f);
    Footsteps();
    if (StartGroundCombat(false)) {
    } else if (body.vx == 0 || !RunHeld()) {
        SetPlayerState(PLAYER_IDLE);
    }
    bool right = RightHeld(), left = LeftHeld();
    if (!Blocked(CONTACT_DOWN)) {
        SetPlayerState(PLAYER_FALL);
    } else if (body.jumpRequest && !Blocked(CONTACT_UP)) {
        SetPlayerState(PLAYER_JUMP);
    } else if ((PlayerFacingRight() && left && !right) ||
               (!PlayerFacingRight() && right && !left)) {
        SetPlayerState(PLAYER_WALK);
    }
}

void UpdateDash(float dt) {
    Player& player = P();
    PlayerBody& body = Body();
    if (body.stateEntered) {
        player.stateDuration = player.tuning.dashDuration;
        body.stateEntered = 0;
    }
    Forward(dt, 3.0f);
    if (body.vx == 0) {
        SetPlayerState(PLAYER_IDLE);
        body.dashRequest = 0;
        return;
    }
    player.stateTimer += dt;
    if (player.stateTimer >= player.stateDuration) {
        SetPlayerState(RunHeld() ? PLAYER_RUN : PLAYER_IDLE);
        player.dashCooldownTimer = 0;
        body.dashRequest = 0;
    }
}

void UpdateJump(float dt) {
    PlayerBody& body = Body();
    // A jump asked for on the ground starts even if the ground has just gone: walking off a
    // ledge leaves a few updates to jump (the ledge grace). IDLE, WALK and RUN ask for a jump
    // only while standing or within that grace, so the first update may trust them.
    bool fromGround = body.stateEntered != 0;
    body.stateEntered = 0;
    if (body.jumpRequest && (Blocked(CONTACT_DOWN) || fromGround)) {
        StartJump();
        body.stateEntered = 0;
    }
    body.jumpRequest = 0;
    AirMove(dt);
    if (Blocked(CONTACT_UP)) body.vy = 1.0f;
    bool risenPastHop = body.anchor.y - GetPlayerPosition().y > 100;
    if (!JumpHeld() && risenPastHop && body.vy < -3) body.vy = -3;
    if (StartJumpAttack()) {
    } else if (body.vy >= 5) {
        SetPlayerState(PLAYER_FALL);
    } else if (Blocked(CONTACT_DOWN) && body.vy >= 0) {
        Land();
    }
    if (Blocked(CONTACT_LEFT) || Blocked(CONTACT_RIGHT)) body.groundMode = PLAYER_WALK;
}

void UpdateFall(float dt) {
    PlayerBody& body = Body();
    if (body.vy < 0) body.vy = 5;
    AirMove(dt);
    if (StartJumpAttack()) {
    } else if (Blocked(CONTACT_DOWN)) {
        Land();
    }
    if (Blocked(CONTACT_LEFT) || Blocked(CONTACT_RIGHT)) body.groundMode = PLAYER_WALK;
}

void UpdateRevive() {
    if (P().clips[PLAYER_REVIVE].finished) SetPlayerState(PLAYER_IDLE);
}

void RunStateMachine(float dt) {
    switch (Body().state) {
        case PLAYER_IDLE: UpdateIdle(); break;
        case PLAYER_WALK: UpdateWalk(dt); break;
        case PLAYER_RUN: UpdateRun(dt); break;
        case PLAYER_DASH: UpdateDash(dt); break;
        case PLAYER_JUMP: UpdateJump(dt); break;
        case PLAYER_FALL: UpdateFall(dt); break;
        case PLAYER_REVIVE: UpdateRevive(); break;
        default: UpdateCombatState(Body().state, dt); break;
    }
}

void AdvanceCooldowns(float dt) {
    Player& player = P();
    int state = player.body.state;
    if (state != PLAYER_DASH && state != PLAYER_RUN) {
        player.dashCooldownTimer =
            std::min(player.dashCooldownTimer + dt, player.tuning.dashCooldown);
    }
    player.attackCooldownTimer =
        std::min(player.attackCooldownTimer + dt, player.tuning.attackCooldown);
    player.parryCooldownTimer =
        std::min(player.parryCooldownTimer + dt, player.tuning.parryCooldown);
}

bool Active(const Collision& collision, int kind) {
    return collision.active && collision.kind == kind;
}

// Moves the body out of every solid rectangle it overlaps, one rectangle at a time.
void PushOutOfSolids() {
    sf::Sprite& sprite = *P().sprite;
    for (const Collision& collision : CurrentRoom().collisions) {
        if (!Active(collision, COLLISION_SOLID)) continue;
        sf::FloatRect solid = collision.shape->getGlobalBounds();
        sf::FloatRect overlap;
        if (!PlayerBodyBounds().intersects(solid, overlap)) continue;
        if (overlap.height <= overlap.width) {
            sprite.move(0, overlap.top == solid.top ? -overlap.height : overlap.height);
        } else {
            sprite.move(overlap.left == solid.left ? -overlap.width : overlap.width, 0);
        }
    }
}

sf::Vector2f Feet() {
    sf::FloatRect box = PlayerBodyBounds();
    return {box.left + box.width / 2, box.top + box.height};
}

bool InsideOneWay(sf::Vector2f point, float* top = nullptr) {
    for (const Collision& collision : CurrentRoom().collisions) {
        if (!Active(collision, COLLISION_ONE_WAY)) continue;
        sf::FloatRect bounds = collision.shape->getGlobalBounds();
        if (bounds.contains(point)) {
            if (top) *top = bounds.top;
            return true;
        }
    }
    return false;
}

void CatchOnOneWayPlatforms() {
    Player& player = P();
    if (player.body.vy <= 0) return;
    if (DownHeld() && JumpHeld()) {
        player.dropThrough = 1;
        return;
    }
    if (player.dropThrough) return;
    for (const Collision& collision : CurrentRoom().collisions) {
        if (!Active(collision, COLLISION_ONE_WAY)) continue;
        sf::FloatRect bounds = collision.shape->getGlobalBounds();
        if (bounds.contains(Feet())) player.sprite->setPosition(GetPlayerPosition().x, bounds.top);
    }
}

bool TouchesSolid(const sf::RectangleShape& sensor) {
    sf::FloatRect bounds = sensor.getGlobalBounds();
    for (const Collision& collision : CurrentRoom().collisions) {
        if (Active(collision, COLLISION_SOLID) &&
            bounds.intersects(collision.shape->getGlobalBounds())) {
            return true;
        }
    }
    return false;
}

void ReadSensors() {
    Player& player = P();
    sf::FloatRect box = PlayerBodyBounds();
    player.sensors[CONTACT_DOWN].setPosition(Feet());
    player.sensors[CONTACT_LEFT].setPosition(box.left, box.top + box.height / 2);
    player.sensors[CONTACT_RIGHT].setPosition(box.left + box.width, box.top + box.height / 2);
    player.sensors[CONTACT_UP].setPosition(box.left + box.width / 2, box.top);
    for (int contact = CONTACT_DOWN; contact <= CONTACT_UP; contact++) {
        bool touches = TouchesSolid(player.sensors[contact]);
        if (contact == CONTACT_DOWN) {
            player.onSolidGround = touches;
            sf::FloatRect down = player.sensors[CONTACT_DOWN].getGlobalBounds();
            sf::Vector2f bottom(down.left + down.width / 2, down.top + down.height);
            if (DownHeld() && JumpHeld()) {
                player.dropThrough = 1;
            } else if (!player.dropThrough && player.body.vy >= 0 && InsideOneWay(bottom)) {
                touches = true;
            }
        }
        player.body.blocked[contact] = touches;
    }
}

void UpdateDropThrough() {
    Player& player = P();
    if (!player.dropThrough) return;
    sf::FloatRect down = player.sensors[CONTACT_DOWN].getGlobalBounds();
    player.dropThrough = InsideOneWay({down.left + down.width / 2, down.top + down.height});
}

void UpdateSafePosition(float dt) {
    Player& player = P();
    if (!player.onSolidGround) {
        player.safeTimer = 1.0f;
    } else if (player.body.state == PLAYER_TAKE_DAMAGE) {
        player.safeTimer = 0;
    } else {
        player.safeTimer = std::min(player.safeTimer + dt, 1.0f);
        if (player.safeTimer >= 1.0f) {
            player.lastSafePosition = GetPlayerPosition();
            player.safeTimer = 0;
        }
    }
}

void UpdateRegeneration(float dt) {
    Player& player = P();
    int state = player.body.state;
    if (state == PLAYER_TAKE_DAMAGE || state == PLAYER_DEAD) {
        player.regenDelayTimer = player.regenTickTimer = 0;
        return;
    }
    player.regenDelayTimer = std::min(player.regenDelayTimer + dt, 15.0f);
    if (player.regenDelayTimer < 15.0f) return;
    player.regenTickTimer = std::min(player.regenTickTimer + dt, 1.0f);
    if (player.regenTickTimer >= 1.0f) {
        player.life += 1;
        player.regenTickTimer = 0;
    }
    if (player.life == 40 || player.life == 70 || player.life > 99) player.regenTickTimer = 0;
}

void UpdateTrail(float dt) {
    Player& player = P();
    int state = player.body.state;
    bool enabled =
        state == PLAYER_DASH || state == PLAYER_RUN || player.body.groundMode == PLAYER_RUN;
    UpdateAfterimages(player.trail, *player.sprite, enabled, kHeroTrail, dt);
}

void UpdateJumpBuffer(float dt) {
    Player& player = P();
    if (player.body.jumpRequest && player.body.state == PLAYER_FALL) {
        player.jumpBufferTimer = std::min(player.jumpBufferTimer + dt, 0.2f);
        if (player.jumpBufferTimer >= 0.2f) player.body.jumpRequest = 0;
    } else {
        player.jumpBufferTimer = 0;
    }
}

}  // namespace

void ResetPlayerActions() {
    Player& player = P();
    player.stateTimer = player.stateDuration;
    player.dashCooldownTimer = player.tuning.dashCooldown;
    player.attackCooldownTimer = player.tuning.attackCooldown;
    player.parryCooldownTimer = player.tuning.parryCooldown;
    PlayerBody& body = player.body;
    body.hitDealt = body.parrySucceeded = 0;
    body.dashRequest = body.attackRequest = body.jumpAttackRequest = 0;
    body.comboRequest = body.parryRequest = body.jumpRequest = 0;
}

void UpdatePlayer(float dt) {
    Player& player = P();
    if (!player.created) return;
    PlayerBody& body = player.body;
    if (body.state == PLAYER_REVIVE) {
        player.life = 100;
    } else if (player.life < 1) {
        if (body.state != PLAYER_DEAD) SetPlayerState(PLAYER_DEAD);
        body.controllable = 0;
    }
    body.vx = 0;
    body.vy += player.tuning.gravity * dt;
    if (Blocked(CONTACT_DOWN) && body.vy >= 0) body.vy = 0;
    body.vy = std::min(body.vy, player.tuning.maxFallSpeed);
    if (!body.controllable && body.state != PLAYER_REVIVE) {
        ResetPlayerActions();  // without control the machine waits
    } else {
        RunStateMachine(dt);
    }
    player.sprite->move(body.vx, body.vy);
    UpdateAnimation(player.clips[body.state], dt);
    AdvanceCooldowns(dt);
    UpdateEffects(player.parryEffects, dt);
    for (SoundArray& sound : player.sounds) UpdateSoundArray(sound, GetPlayerPosition());
    PushOutOfSolids();
    CatchOnOneWayPlatforms();
    ReadSensors();
    StandOnClouds();
    UpdateDropThrough();
    UpdateSafePosition(dt);
    UpdateRegeneration(dt);
    UpdateClouds(dt);
    UpdateTrail(dt);
    UpdateJumpBuffer(dt);
}

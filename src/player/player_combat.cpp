#include "player/player_combat.h"

#include <algorithm>

#include "player/player.h"
#include "player/save.h"

namespace {

Player& P() {
    return GetPlayer();
}
PlayerBody& Body() {
    return GetPlayer().body;
}

bool AttackReady() {
    return P().attackCooldownTimer >= P().tuning.attackCooldown;
}
bool ParryReady() {
    return P().parryCooldownTimer >= P().tuning.parryCooldown;
}

bool IsLightAttack(int state) {
    return state == PLAYER_LIGHT_ATTACK_1 || state == PLAYER_LIGHT_ATTACK_2 ||
           state == PLAYER_LIGHT_ATTACK_3;
}

// The clip's frame counted from 1, as damage frames are.
int FrameNumber(int state) {
    return P().clips[state].currentFrame + 1;
}

bool FacingBlocked() {
    const PlayerBody& body = Body();
    return PlayerFacingRight() ? body.blocked[CONTACT_RIGHT] : body.blocked[CONTACT_LEFT];
}

float Forward(float speed) {
    if (FacingBlocked()) return 0;
    return PlayerFacingRight() ? speed : -speed;
}

void Face() {
    bool right = RightHeld(), left = LeftHeld();
    if (right && !left) SetPlayerFacing(true);
    if (left && !right) SetPlayerFacing(false);
}

void ClearAttackRequests() {
    PlayerBody& body = Body();
    body.attackRequest = body.jumpAttackRequest = body.comboRequest = 0;
}

// The segments of the life bar: 0-40, 40-70, 70-100.
int NextSegmentTop(int life) {
    if (life < 40) return 40;
    if (life < 70) return 70;
    return 100;
}

void UpdateLightAttack(int state, float dt) {
    Player& player = P();
    PlayerBody& body = player.body;
    int frame = FrameNumber(state);
    int damageFrame = player.damageFrame[state];
    body.vx = 0;
    if (frame == damageFrame || frame == damageFrame + 1) {
        float lunge = player.tuning.walkSpeed * dt * 0.1f;
        body.vx = body.hitDealt ? -Forward(2 * lunge) : Forward(lunge);
        if (FacingBlocked()) body.vx = 0;
    }
    if (player.clips[state].finished) {
        bool chain = (body.comboRequest || AttackHeld()) && state != PLAYER_LIGHT_ATTACK_3;
        if (chain) {
            SetPlayerState(state + 1);
        } else {
            // Straight back to IDLE, without its sound: the combo is over.
            body.state = PLAYER_IDLE;
            body.stateEntered = 1;
            RestartAnimation(player.clips[PLAYER_IDLE]);
            player.attackCooldownTimer = 0;
        }
        ClearAttackRequests();
        Face();
        return;
    }
    if (frame > damageFrame) {
        bool cancelled = false;
        if (body.parryRequest) {
            SetPlayerState(PLAYER_PARRY);
            cancelled = true;
        } else if (body.dashRequest) {
            SetPlayerState(PLAYER_DASH);
            cancelled = true;
        }
        if (cancelled) ClearAttackRequests();
        body.hitDealt = 0;
    }
}

void UpdateHeavy(int state) {
    Player& player = P();
    PlayerBody& body = player.body;
    body.vx = 0;
    if (state == PLAYER_HEAVY_ATTACK_PREPARATION && player.clips[state].finished) {
        SetPlayerState(PLAYER_HEAVY_ATTACK_WAIT);
        body.anchor = GetPlayerPosition();
    } else if (state == PLAYER_HEAVY_ATTACK_WAIT && !HeavyHeld()) {
        SetPlayerState(PLAYER_HEAVY_ATTACK_HIT);
    } else if (state == PLAYER_HEAVY_ATTACK_HIT && player.clips[state].finished) {
        SetPlayerState(PLAYER_IDLE);
    }
}

void UpdateJumpAttack(int state, float dt) {
    Player& player = P();
    PlayerBody& body = player.body;
    body.vx = 0;
    if (state == PLAYER_JUMP_ATTACK_IN_THE_AIR) {
        if (!body.blocked[CONTACT_DOWN]) {
            float factor = body.groundMode == PLAYER_RUN
                               ? 1.7f
                               : (body.groundMode == PLAYER_WALK ? 1.0f : 0.0f);
            body.vx = Forward(player.tuning.walkSpeed * dt * factor);
        }
        if (body.blocked[CONTACT_UP]) body.vy = 1.0f;
        if (body.blocked[CONTACT_DOWN]) SetPlayerState(PLAYER_JUMP_ATTACK_HIT);
    } else if (player.clips[state].finished) {
        SetPlayerState(PLAYER_IDLE);
        body.attackRequest = body.jumpAttackRequest = 0;
    }
}

void UpdateParry(float dt) {
    Player& player = P();
    PlayerBody& body = player.body;
    if (body.stateEntered) {
        player.stateDuration = player.tuning.parryDuration;
        player.stateTimer = 0;
        body.parryRequest = 0;
        body.stateEntered = 0;
    }
    body.vx = 0;
    if (body.parrySucceeded) {
        bool backBlocked =
            PlayerFacingRight() ? body.blocked[CONTACT_LEFT] : body.blocked[CONTACT_RIGHT];
        float slide = player.tuning.walkSpeed * dt * 0.1f;
        if (!backBlocked) body.vx = PlayerFacingRight() ? -slide : slide;
    }
    player.stateTimer += dt;
    if (player.stateTimer >= player.stateDuration) {
        if (!body.parrySucceeded) player.parryCooldownTimer = 0;
        SetPlayerState(PLAYER_IDLE);
        body.parrySucceeded = 0;
    }
}

void UpdateTakeDamage(float dt) {
    Player& player = P();
    PlayerBody& body = player.body;
    if (body.stateEntered) {
        player.stateTimer = 0;
        player.stateDuration = 0.3f;
        body.stateEntered = 0;
    }
    if (player.stateTimer < 0.3f) {
        body.vx = body.damageSource.x > GetPlayerPosition().x ? -5.0f : 5.0f;
        player.stateTimer += dt;
        return;
    }
    if (body.parryRequest) {
        SetPlayerState(PLAYER_PARRY);
    } else if (body.attackRequest) {
        SetPlayerState(PLAYER_LIGHT_ATTACK_1);
    } else if (body.dashRequest) {
        SetPlayerState(PLAYER_DASH);
    } else if (body.jumpRequest) {
        SetPlayerState(PLAYER_JUMP);
    } else {
        SetPlayerState(PLAYER_IDLE);
    }
    ResetPlayerActions();
}

}  // namespace

void HurtPlayer(int damage, sf::Vector2f attackerPosition) {
    Player& player = P();
    player.life -= damage;
    SetPlayerState(PLAYER_TAKE_DAMAGE);
    ResetPlayerActions();
    player.body.damageSource = attackerPosition;
}

bool StartGroundCombat(bool parryAllowed) {
    PlayerBody& body = Body();
    if (HeavyHeld()) {
        SetPlayerState(PLAYER_HEAVY_ATTACK_PREPARATION);
    } else if (parryAllowed && body.parryRequest && ParryReady()) {
        SetPlayerState(PLAYER_PARRY);
    } else if (body.attackRequest && AttackReady()) {
        SetPlayerState(PLAYER_LIGHT_ATTACK_1);
    } else {
        return false;
    }
    return true;
}

bool StartJumpAttack() {
    PlayerBody& body = Body();
    if (!body.jumpAttackRequest) return false;
    body.groundMode = body.vx == 0 ? PLAYER_IDLE : PLAYER_WALK;
    SetPlayerState(PLAYER_JUMP_ATTACK_IN_THE_AIR);
    return true;
}

bool UpdateCombatState(int state, float dt) {
    if (IsLightAttack(state)) {
        UpdateLightAttack(state, dt);
    } else if (state >= PLAYER_HEAVY_ATTACK_PREPARATION && state <= PLAYER_HEAVY_ATTACK_HIT) {
        UpdateHeavy(state);
    } else if (state == PLAYER_JUMP_ATTACK_IN_THE_AIR || state == PLAYER_JUMP_ATTACK_HIT) {
        UpdateJumpAttack(state, dt);
    } else if (state == PLAYER_PARRY) {
        UpdateParry(dt);
    } else if (state == PLAYER_TAKE_DAMAGE) {
        UpdateTakeDamage(dt);
    } else {
        return false;
    }
    return true;
}

void PlayerAttackPressed() {
    PlayerBody& body = Body();
    if (!P().created || !body.controllable) return;
    int state = body.state;
    if (IsLightAttack(state)) {
        body.comboRequest = 1;
    } else if (state == PLAYER_IDLE || state == PLAYER_WALK || state == PLAYER_RUN ||
               state == PLAYER_TAKE_DAMAGE || state == PLAYER_PARRY) {
        body.attackRequest = 1;
    }
}

void PlayerHeavyPressed() {
    PlayerBody& body = Body();
    if (!P().created || !body.controllable) return;
    if (body.state == PLAYER_JUMP || body.state == PLAYER_FALL) body.jumpAttackRequest = 1;
}

void PlayerParryPressed() {
    PlayerBody& body = Body();
    if (!P().created || !body.controllable) return;
    if (body.state == PLAYER_PARRY && !body.parrySucceeded) return;
    body.parryRequest = 1;
}

void PlayerDrinkPotion() {
    Player& player = P();
    int state = player.body.state;
    if (!player.created || player.potions <= 0) return;
    if (state != PLAYER_IDLE && state != PLAYER_WALK && state != PLAYER_RUN) return;
    player.life = NextSegmentTop(player.life);
    player.potions--;
}

void PlayerPadHeal() {
    Player& player = P();
    if (!player.created || player.potions < 1) return;
    player.life = NextSegmentTop(player.life);
    player.potions--;
}

int PlayerAttackDamage() {
    const Player& player = P();
    int state = player.body.state;
    if (player.body.hitDealt) return 0;
    int damage = 0;
    if (IsLightAttack(state)) damage = 1;
    if (state == PLAYER_HEAVY_ATTACK_HIT) damage = 3;
    if (state == PLAYER_JUMP_ATTACK_HIT) damage = 5;
    if (damage == 0 || FrameNumber(state) != player.damageFrame[state]) return 0;
    return damage + WeaponDamageBonus();
}

int& WeaponDamageBonus() {
    static int bonus = 0;
    return bonus;
}

bool PlayerStriking() {
    int state = P().body.state;
    return IsLightAttack(state) || state == PLAYER_HEAVY_ATTACK_HIT ||
           state == PLAYER_JUMP_ATTACK_HIT;
}

sf::FloatRect PlacePlayerAttackBox() {
    Player& player = P();
    sf::FloatRect bounds = player.sprite->getGlobalBounds();
    sf::Vector2f size(bounds.width * 0.5f, bounds.height * 0.6f);
    player.attackBox.setSize(size);
    player.attackBox.setPosition(bounds.left + bounds.width * 0.5f, bounds.top + bounds.height);
    player.attackBox.setOrigin(player.sprite->getScale().x <= 0 ? size.x : 0, size.y);
    return player.attackBox.getGlobalBounds();
}

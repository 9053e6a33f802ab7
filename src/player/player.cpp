#include "player/player.h"

#include <cstdio>
#include <cstdlib>

#include "app/input.h"
#include "common/log.h"
#include "menus/settings_files.h"
#include "player/cloud.h"
#include "player/player_combat.h"
#include "player/save.h"
#include "world/room_draw.h"

namespace {

Player player;

const char* const kAnimDataPath = "Assets/Sprites/Player/Hero1AnimData.txt";

// Per state: its label in the animation file, whether its clip loops, and its damage frame.
constexpr const char* kDamage = " / DAMAGE FRAME : %d";
const std::array<AnimClipSpec, PLAYER_STATE_COUNT> kClips = {{
    {"IDLE", 1},
    {"WALK", 1},
    {"DASH", 1},
    {"RUN", 1},
    {"JUMP", 0},
    {"FALL", 1},
    {"LIGHT ATTACK_1", 0, kDamage},
    {"LIGHT ATTACK_2", 0, kDamage},
    {"LIGHT ATTACK_3", 0, kDamage},
    {"HEAVY ATTACK_PREPARATION", 0},
    {"HEAVY ATTACK_WAIT", 1},
    {"HEAVY ATTACK_HIT", 0, kDamage},
    {"JUMP ATTACK_IN_THE_AIR", 0},
    {"JUMP ATTACK_HIT", 0, kDamage},
    {"TAKE DAMAGE", 0},
    {"DEAD", 0},
    {"PARRY", 0},
    {"REVIVE", 0},
}};

const std::array<const char*, PLAYER_SOUND_COUNT> kSoundFiles = {
    "Assets/Sounds/SFX/Player/Sword_Light_Attack.wav",
    "Assets/Sounds/SFX/Player/Sword_Heavy_Attack.wav",
    "Assets/Sounds/SFX/Player/Dash.wav",
    "Assets/Sounds/SFX/Player/Parry.wav",
    "Assets/Sounds/SFX/Player/ParrySucces.wav",
    "Assets/Sounds/SFX/Player/Walk.wav",
    "Assets/Sounds/SFX/Player/Fall.wav",
    "Assets/Sounds/SFX/Player/TakeDamage.wav",
    "Assets/Sounds/SFX/Player/AttackSucces.wav",
};

bool KeyHeld(int action) {
    return InputKeyDown(Settings().bindings[action]);
}

float Axis(sf::Joystick::Axis axis) {
    return InputJoystickConnected(0) ? InputJoystickAxis(0, axis) : 0.0f;
}

bool Button(unsigned button) {
    return InputJoystickConnected(0) && InputJoystickButtonDown(0, button);
}

void CreateShapes() {
    player.bodyBox = sf::RectangleShape({80, 180});
    player.bodyBox.setOrigin(40, 180);
    player.bodyBox.setFillColor(sf::Color(0, 255, 0, 50));
    auto sensor = [](sf::Vector2f size, sf::Vector2f origin) {
        sf::RectangleShape shape(size);
        shape.setOrigin(origin);
        shape.setFillColor(sf::Color::Yellow);
        return shape;
    };
    player.sensors[CONTACT_DOWN] = sensor({56, 1}, {28, 0});
    player.sensors[CONTACT_LEFT] = sensor({3, 126}, {3, 63});
    player.sensors[CONTACT_RIGHT] = sensor({3, 126}, {0, 63});
    player.sensors[CONTACT_UP] = sensor({56, 1}, {28, 1});
    player.attackBox.setFillColor(sf::Color(255, 0, 0, 90));
}

// The debug view of the hero's boxes: where it can be hurt (green, outlined inside its bounds so
// the drawing covers exactly what collides), where its sword reaches while striking (red) and the
// four contact sensors (yellow).
void DrawPlayerBoxes(sf::RenderTarget& target) {
    if (PlayerStriking()) {
        PlacePlayerAttackBox();
        target.draw(player.attackBox);
    }
    sf::RectangleShape body = player.bodyBox;
    body.setPosition(GetPlayerPosition());
    body.setOutlineColor(sf::Color::Green);
    body.setOutlineThickness(-2);
    target.draw(body);
    for (const sf::RectangleShape& sensor : player.sensors) target.draw(sensor);
}

// A random hurt pose, never the same twice in a row.
void PickDamagePose() {
    Animation& clip = player.clips[PLAYER_TAKE_DAMAGE];
    int previous = clip.frameRect.left;
    int left = previous;
    for (int tries = 0; tries < 64 && left == previous; tries++) {
        left = (std::rand() % 4) * player.frameSize.x;
    }
    clip.frameRect.left = left;
}

}  // namespace

Player& GetPlayer() {
    return player;
}

bool RightHeld() {
    return KeyHeld(BINDING_RIGHT) || Axis(sf::Joystick::X) / 100.0f >= 0.7f;
}
bool LeftHeld() {
    return KeyHeld(BINDING_LEFT) || Axis(sf::Joystick::X) / 100.0f <= -0.7f;
}
bool DownHeld() {
    return KeyHeld(BINDING_DOWN) || Axis(sf::Joystick::Y) / 100.0f >= 0.7f;
}
bool JumpHeld() {
    return KeyHeld(BINDING_JUMP) || Button(0);
}
bool RunHeld() {
    return KeyHeld(BINDING_DASH) || Axis(sf::Joystick::Z) < -0.1f;
}
bool HeavyHeld() {
    return Button(3) || InputMouseButtonDown(sf::Mouse::Right);
}
bool AttackHeld() {
    return Button(2) || InputMouseButtonDown(sf::Mouse::Left);
}

void LoadPlayerAnimations() {
    AnimData data;
    auto parryOffset = [](std::FILE* file, int clip) {
        if (clip != PLAYER_PARRY) return;
        sf::Vector2i& offset = player.parryEffectOffset;
        [[maybe_unused]] int read =
            std::fscanf(file, " / PARRY IMPACT FX POSITIOJN ( %d,%d)", &offset.x, &offset.y);
        Log("%d %d \n", offset.x, offset.y);
    };
    if (!ReadAnimData(kAnimDataPath, kClips, data, parryOffset)) return;
    player.frameSize = data.frameSize;
    BindClips(data.clips, player.sprite.get(), SheetSize(player.sprite.get()));
    for (int state = 0; state < PLAYER_STATE_COUNT; state++) {
        player.clips[state] = data.clips[state];
        player.damageFrame[state] = data.damageFrames[state];
    }
}

void CreatePlayer(sf::Vector2f spawnPosition) {
    player = Player();
    player.life = 100;
    player.potions = Save().abilities.potionCount;
    player.body.controllable = 1;
    player.lastSafePosition = spawnPosition;
    player.sprite = std::make_unique<sf::Sprite>();
    player.texture = LoadTexture("Assets/Sprites/Player/Hero1.png");
    if (player.texture) player.sprite->setTexture(*player.texture);
    LoadPlayerAnimations();
    sf::IntRect frame(0, 0, player.frameSize.x, player.frameSize.y);
    CreateSprite(player.sprite, player.texture.get(), spawnPosition, frame, {0.5f, 1.0f}, {3, 3});
    if (!player.texture) {  // invisible, but the hero still stands and moves where it should
        player.sprite->setScale(3, 3);
        player.sprite->setPosition(spawnPosition);
    }
    if (player.frameSize == sf::Vector2i()) player.frameSize = {frame.width, frame.height};
    for (Animation& clip : player.clips) {
        clip.sprite = player.sprite.get();
        if (player.texture) clip.sheetSize = player.texture->getSize();
    }
    SetPlayerState(PLAYER_FALL);
    player.dashCooldownTimer = player.tuning.dashCooldown;
    player.attackCooldownTimer = player.tuning.attackCooldown;
    player.parryCooldownTimer = player.tuning.parryCooldown;
    for (int i = 0; i < PLAYER_SOUND_COUNT; i++) {
        LoadSoundArray(player.sounds[i], kSoundFiles[i], 100, 0, SOUND_EFFECTS, 0);
    }
    LoadEffectList(player.parryEffects, "Assets/Sprites/FX/PlayerparryFX.png", {78, 76}, 5, 10);
    CreateShapes();
    player.created = true;
    CreateCloudModule();
}

void DestroyPlayer() {
    DestroyCloudModule();
    player = Player();
}

void SetPlayerState(int state) {
    if (state == PLAYER_RUN && !Save().abilities.canRun) state = PLAYER_WALK;
    PlayerBody& body = player.body;
    body.stateEntered = 1;
    body.state = state;
    RestartAnimation(player.clips[state]);
    body.hitDealt = 0;
    player.stateTimer = 0;
    if (state == PLAYER_TAKE_DAMAGE) PickDamagePose();
    switch (state) {
        case PLAYER_DASH: CreateSoundArray(player.sounds[SOUND_DASH], 1); break;
        case PLAYER_LIGHT_ATTACK_1:
        case PLAYER_LIGHT_ATTACK_2:
        case PLAYER_LIGHT_ATTACK_3: CreateSoundArray(player.sounds[SOUND_LIGHT_ATTACK], 1); break;
        case PLAYER_HEAVY_ATTACK_HIT:
        case PLAYER_JUMP_ATTACK_HIT: CreateSoundArray(player.sounds[SOUND_HEAVY_ATTACK], 1); break;
        case PLAYER_PARRY: CreateSoundArray(player.sounds[SOUND_PARRY], 1); break;
        case PLAYER_TAKE_DAMAGE:
            if (VoiceCount(player.sounds[SOUND_TAKE_DAMAGE]) == 0) {
                CreateSoundArray(player.sounds[SOUND_TAKE_DAMAGE], 1);
            }
            break;
        default: break;
    }
}

void HandlePlayerKeyPressed(int key) {
    PlayerBody& body = player.body;
    if (!player.created) return;
    const SettingsValues& settings = Settings();
    // A potion can be drunk, and a cloud made, whatever holds the hero's control.
    if (key == settings.bindings[BINDING_HEAL]) PlayerDrinkPotion();
    if (key == settings.bindings[BINDING_CLOUD]) TryCreateCloud();
    if (!body.controllable) return;
    int state = body.state;
    if (key == settings.bindings[BINDING_JUMP] && !DownHeld() &&
        (state == PLAYER_IDLE || state == PLAYER_WALK || state == PLAYER_DASH ||
         state == PLAYER_RUN || state == PLAYER_FALL)) {
        body.jumpRequest = 1;
    }
    if (key == settings.bindings[BINDING_DASH] && Save().abilities.canDash) {
        bool onFoot = state == PLAYER_IDLE || state == PLAYER_WALK;
        bool inCombo = state >= PLAYER_LIGHT_ATTACK_1 && state <= PLAYER_LIGHT_ATTACK_3;
        if (onFoot || (inCombo && !body.comboRequest)) body.dashRequest = 1;
    }
    if (key == settings.bindings[BINDING_PARRY]) PlayerParryPressed();
}

void DrawPlayer(sf::RenderTarget& target) {
    if (!player.created) return;
    DrawClouds(target);
    DrawAfterimages(target, player.trail);
    target.draw(*player.sprite);
    DrawEffects(target, player.parryEffects);
    if (DebugOverlay()) DrawPlayerBoxes(target);
}

sf::Vector2f GetPlayerPosition() {
    return player.sprite ? player.sprite->getPosition() : sf::Vector2f();
}

void SetPlayerPosition(sf::Vector2f position) {
    if (player.sprite) player.sprite->setPosition(position);
}

sf::FloatRect PlayerBodyBounds() {
    player.bodyBox.setPosition(GetPlayerPosition());
    return player.bodyBox.getGlobalBounds();
}

bool PlayerOnSolidGround() {
    return player.onSolidGround != 0;
}

bool PlayerStanding() {
    return player.body.blocked[CONTACT_DOWN] != 0;
}

bool PlayerFacingRight() {
    return player.sprite && player.sprite->getScale().x == 3.0f;
}

void SetPlayerFacing(bool right) {
    if (player.sprite) player.sprite->setScale(right ? 3.0f : -3.0f, 3.0f);
}

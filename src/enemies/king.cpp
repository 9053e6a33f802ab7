#include "enemies/king.h"

#include <array>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <new>
#include <vector>

#include "common/ease.h"
#include "common/log.h"
#include "common/motion.h"
#include "enemies/enemy_body.h"
#include "world/room_draw.h"

namespace {

const char* const kTexture = "Assets/Sprites/Enemies/Boss/King.png";
const char* const kAnimData = "Assets/Sprites/Enemies/Boss/KingAnimData.txt";
const std::array<const char*, 5> kSounds = {
    "Assets/Sounds/SFX/Enemy/King/Walk.wav", "Assets/Sounds/SFX/Enemy/King/Attack.wav",
    "Assets/Sounds/SFX/Enemy/King/DashAttack.wav", "Assets/Sounds/SFX/Enemy/King/JumpAttack.wav",
    "Assets/Sounds/SFX/Enemy/King/Death.wav"};
const char* const kMusic = "Assets/Sounds/MUSIC/King_Music.wav";
enum KingSound {
    SOUND_STEP = 0,
    SOUND_ATTACK = 1,
    SOUND_DASH = 2,
    SOUND_LANDING = 3,
    SOUND_DEATH = 4,
    SOUND_MUSIC_SLOT = 5
};
// The leap's line carries its jump and fall frames before its damage frame; they are read apart.
const std::array<AnimClipSpec, 6> kClips = {{{"IDLE", 1},
                                             {"WALK", 1},
                                             {"ATTACK", 0, " / Damage Frame : %d"},
                                             {"DASH ATTACK", 0, " / Dash Frame : %d"},
                                             {"JUMP ATTACK", 0},
                                             {"DEAD", 0}}};

constexpr bool kSheetFacesLeft = true;
constexpr int kFullLife = 30;
constexpr float kPause = 0.8f;
constexpr float kFirstWait = 4.0f;
constexpr float kWalkSpeed = 500;
constexpr float kDashSpeed = 8000;
constexpr float kLeapHeight = 150;
constexpr float kTweenTime = 0.3f;
constexpr float kFallDelay = 0.1f;
constexpr float kJumpAimAbove = 2500;  // beyond this an engaged King leaps rather than dashes
constexpr float kDeadSinkSpeed = 500;
// The wind-up of a swing is stretched by slowing its frames by one of these shares.
constexpr std::array<float, 3> kSlowdowns = {0.0f, 0.2f, 0.4f};

struct King {
    EnemyBody body;
    sf::Vector2f jumpAim;
    sf::Vector2f home;
    Tween tween;  // the leap's rise, then its fall
    float fallDelayTimer = 0;
    int comboCount = 0;  // moves chained since the last rest
    float pauseTimer = 0;
    int approachRoll = 0;
    int engaged = 0;  // his first swing from a walk has come
    float firstWaitTimer = 0;
    int stepFlag = 0;  // a stride is under way: its footfall is due
    int jumpSoundFlag = 1;
    int attackSoundFlag = 1;
    int dashSoundFlag = 0;
};

EnemySheet sheet;
unsigned attackRate = 0;  // the swing's rate as the file gives it; each swing rewrites the clip's
int jumpFrame = 0, fallFrame = 0;
std::vector<King> kings;
sf::RectangleShape hurtbox;
sf::RectangleShape attackBox;
sf::RectangleShape probe;

sf::Sprite& Sprite(King& king) {
    return *king.body.sprite;
}

float X(const King& king) {
    return BodyPosition(king.body).x;
}

bool Right(const King& king) {
    return FacesRight(king.body, kSheetFacesLeft);
}

void FaceTarget(King& king, sf::Vector2f target) {
    FaceRight(king.body, target.x > X(king), kSheetFacesLeft);
}

int Frame(const King& king) {
    return CurrentClip(king.body).currentFrame + 1;
}

Animation& Clip(King& king) {
    return king.body.clips[size_t(king.body.current)];
}

sf::FloatRect PlaceHurtbox(const King& king) {
    hurtbox.setPosition(BodyPosition(king.body));
    return hurtbox.getGlobalBounds();
}

// A thin post as tall as one and a half frames, standing on the hurtbox's front bottom corner.
void PlaceProbe(const King& king) {
    sf::FloatRect body = PlaceHurtbox(king);
    float left = Right(king) ? body.left + body.width : body.left - probe.getSize().x;
    probe.setPosition(left, body.top + body.height - probe.getSize().y);
}

void Begin(King& king, int state) {
    EnterState(king.body, state);
    Clip(king).paused = 0;
    king.body.armed = 1;
    if (state == KING_DASH_ATTACK) king.dashSoundFlag = 1;
    if (state == KING_JUMP_ATTACK) {
        king.tween = Tween();
        king.fallDelayTimer = 0;
    }
}

// A swing whose wind-up is drawn: its frames run at the full rate, or 20 % or 40 % slower.
void BeginAttack(King& king) {
    Begin(king, KING_ATTACK);
    float slowdown = kSlowdowns[size_t(std::rand() % 3)];
    Clip(king).frameRate = attackRate - unsigned(std::trunc(float(attackRate) * slowdown));
}

void Rest(King& king) {
    Begin(king, KING_IDLE);
    king.comboCount = 0;
}

// The odds of resting after a move shrink as the combo grows.
int RestThreshold(int comboCount) {
    if (comboCount == 0) return 70;
    return comboCount == 1 ? 40 : 0;
}

void DecideFromWalk(King& king, float dist) {
    float width = hurtbox.getSize().x;
    if (king.approachRoll >= 40 && king.engaged) {
        if (dist < kJumpAimAbove) {
            Begin(king, dist > width || std::rand() % 2 ? KING_DASH_ATTACK : KING_JUMP_ATTACK);
        } else {
            Begin(king, KING_JUMP_ATTACK);
        }
    } else if (dist < 2 * width) {
        BeginAttack(king);
        king.engaged = 1;
    }
}

void DecideFromAttack(King& king) {
    if (std::rand() % 100 >= RestThreshold(king.comboCount)) {
        Rest(king);
    } else if (std::rand() % 100 < 50) {
        BeginAttack(king);
        king.comboCount += 2;
    } else {
        Begin(king, std::rand() % 100 < 55 ? KING_DASH_ATTACK : KING_JUMP_ATTACK);
        king.comboCount += 1;
    }
}

void DecideFromDash(King& king) {
    if (std::rand() % 100 >= RestThreshold(king.comboCount)) {
        Rest(king);
    } else {
        Begin(king, std::rand() % 100 < 50 ? KING_DASH_ATTACK : KING_JUMP_ATTACK);
        king.comboCount += 1;
    }
}

// A leap chains without adding to the combo.
void DecideFromJump(King& king) {
    if (std::rand() % 100 >= (king.comboCount == 0 ? 50 : 0)) {
        Rest(king);
    } else if (std::rand() % 100 < 60) {
        BeginAttack(king);
    } else {
        Begin(king, std::rand() % 100 < 60 ? KING_JUMP_ATTACK : KING_DASH_ATTACK);
    }
}

void Decide(King& king, sf::Vector2f target) {
    float dist = std::fabs(target.x - X(king));
    switch (king.body.state) {
        case KING_IDLE:
            if (king.pauseTimer >= kPause && king.firstWaitTimer >= kFirstWait) {
                Begin(king, KING_WALK);
                king.approachRoll = std::rand() % 100;
                king.pauseTimer = 0;
            }
            break;
        case KING_WALK: DecideFromWalk(king, dist); break;
        case KING_ATTACK: DecideFromAttack(king); break;
        case KING_DASH_ATTACK: DecideFromDash(king); break;
        case KING_JUMP_ATTACK: DecideFromJump(king); break;
        default: break;
    }
}

// The first rest lasts the whole first wait; the wait is never counted again.
void UpdateIdle(King& king, float dt, sf::Vector2f target) {
    if (king.pauseTimer < kPause) king.pauseTimer += dt;
    if (king.firstWaitTimer < kFirstWait) king.firstWaitTimer += dt;
    Decide(king, target);
}

// Each stride lurches forward; on the planted frames he stands, and the foot lands once.
void UpdateWalk(King& king, float dt, sf::Vector2f target) {
    int f = Frame(king);
    bool planted = (f >= 5 && f <= 8) || f >= 14;
    if (planted) {
        if (king.stepFlag) PlaySound(king.body, SOUND_STEP, 0);
        king.stepFlag = 0;
    } else {
        Sprite(king).move((X(king) > target.x ? -kWalkSpeed : kWalkSpeed) * dt, 0);
        king.stepFlag = 1;
    }
    FaceTarget(king, target);
    Decide(king, target);
}

void UpdateAttack(King& king, sf::Vector2f target) {
    int f = Frame(king);
    int damage = king.body.damageFrames[KING_ATTACK];
    if (f < damage) FaceTarget(king, target);
    if (f == damage && king.attackSoundFlag) {
        PlaySound(king.body, SOUND_ATTACK, 1);
        king.attackSoundFlag = 0;
    }
    if (ClipFinished(king.body)) {
        Decide(king, target);
        king.attackSoundFlag = 1;
    }
}

// On the dash frame he crosses the arena at once; walls and the arena's edge stop him.
void UpdateDash(King& king, float dt, sf::Vector2f target) {
    int f = Frame(king);
    int dash = king.body.damageFrames[KING_DASH_ATTACK];
    if (f < dash) FaceTarget(king, target);
    if (f == dash) {
        if (king.dashSoundFlag) PlaySound(king.body, SOUND_DASH, 1);
        king.dashSoundFlag = 0;
        Sprite(king).move((Right(king) ? kDashSpeed : -kDashSpeed) * dt, 0);
    }
    if (ClipFinished(king.body)) Decide(king, target);
}

// The held frame moves on; its timer restarts so the next frame shows for its whole length.
void StepPastHeldFrame(King& king) {
    Animation& clip = Clip(king);
    clip.paused = 0;
    clip.currentFrame++;
    clip.timer = 0;
    king.tween = Tween();
}

// Crouch (aiming where the hero stands), rise over the aim, hang, crash straight down.
void UpdateJump(King& king, float dt, sf::Vector2f target) {
    int f = Frame(king);
    sf::Sprite& sprite = Sprite(king);
    if (f < jumpFrame) {
        FaceTarget(king, target);
        king.jumpAim = {target.x, sprite.getPosition().y - kLeapHeight};
    } else if (f == jumpFrame) {
        Clip(king).paused = 1;
        if (TweenPosition(sprite, king.jumpAim, kTweenTime, EASE_LINEAR, dt, king.tween)) {
            StepPastHeldFrame(king);
            king.jumpAim = {king.jumpAim.x, sprite.getPosition().y + kLeapHeight};
        }
    } else if (f == fallFrame) {
        Clip(king).paused = 1;
        if (king.fallDelayTimer < kFallDelay) {
            king.fallDelayTimer += dt;
        } else if (TweenPosition(sprite, king.jumpAim, kTweenTime, EASE_LINEAR, dt, king.tween)) {
            StepPastHeldFrame(king);
            king.fallDelayTimer = 0;
            if (king.jumpSoundFlag) PlaySound(king.body, SOUND_LANDING, 1);
            king.jumpSoundFlag = 0;
        }
    } else if (ClipFinished(king.body)) {
        Decide(king, target);
        king.jumpSoundFlag = 1;
    }
}

// However high he fell, the body comes down to the height he was spawned at.
void UpdateDead(King& king, float dt) {
    sf::Sprite& sprite = Sprite(king);
    MoveSpriteTowards(sprite, {sprite.getPosition().x, king.home.y}, kDeadSinkSpeed, dt, 0);
}

void SilenceFallenKings() {
    for (King& king : kings) {
        if (king.body.state != KING_DEAD) continue;
        SoundArray& music = king.body.sounds[SOUND_MUSIC_SLOT];
        while (VoiceCount(music) > 0) RemoveSound(music, VoiceCount(music) - 1);
    }
}

void UpdateKing(King& king, float dt, sf::Vector2f target) {
    EnemyBody& body = king.body;
    if (body.life < 1 && body.state != KING_DEAD) {
        Begin(king, KING_DEAD);
        PlaySound(body, SOUND_DEATH, 0);
    }
    AdvanceClip(body, dt);
    switch (body.state) {
        case KING_IDLE: UpdateIdle(king, dt, target); break;
        case KING_WALK: UpdateWalk(king, dt, target); break;
        case KING_ATTACK: UpdateAttack(king, target); break;
        case KING_DASH_ATTACK: UpdateDash(king, dt, target); break;
        case KING_JUMP_ATTACK: UpdateJump(king, dt, target); break;
        case KING_DEAD: UpdateDead(king, dt); break;
        default: break;
    }
    SilenceFallenKings();
    SoundsFollow(body);
}

void ReadJumpFrames(std::FILE* file, int clip) {
    if (clip != KING_JUMP_ATTACK) return;
    int damage = 0;
    if (std::fscanf(file, " / Jump Frame : %d / Fall Frame %d / Damage Frame : %d", &jumpFrame,
                    &fallFrame, &damage) == 3) {
        sheet.anim.damageFrames[KING_JUMP_ATTACK] = damage;
    }
}

void LoadAssets() {
    jumpFrame = fallFrame = 0;
    LoadEnemySheet(sheet, kTexture, kAnimData, kClips, ReadJumpFrames);
    attackRate = sheet.anim.clips[KING_ATTACK].frameRate;
    sf::Vector2f frame(sheet.anim.frameSize);
    hurtbox = sf::RectangleShape({frame.x * 0.5f, frame.y * 1.4f});
    hurtbox.setOrigin(frame.x * 0.25f, frame.y * 1.4f);
    hurtbox.setFillColor(sf::Color(0, 0, 255, 100));
    attackBox = sf::RectangleShape({1, 1});
    attackBox.setFillColor(sf::Color(255, 0, 0, 100));
    probe = sf::RectangleShape({1, frame.y * 1.5f});
    probe.setFillColor(sf::Color(255, 255, 255, 100));
}

void DestroyAssets() {
    kings.clear();
    sheet = EnemySheet();
}

sf::FloatRect Hurtbox(int index) {
    return PlaceHurtbox(kings[size_t(index)]);
}

// The swing covers the half of the sprite on his facing side; the dash a small box at his feet;
// the landing a wide box centred on him. Out of a move the box is empty at the origin.
sf::FloatRect AttackBox(int index, int) {
    const King& king = kings[size_t(index)];
    sf::FloatRect bounds = king.body.sprite->getGlobalBounds();
    sf::Vector2f feet(bounds.left + bounds.width * 0.5f, bounds.top + bounds.height);
    attackBox.setScale(1, 1);
    switch (king.body.state) {
        case KING_ATTACK:
            attackBox.setSize({bounds.width * 0.5f, bounds.height});
            attackBox.setOrigin(0, bounds.height);
            if (Right(king)) {
                attackBox.setPosition(bounds.left + bounds.width * 0.9f, feet.y);
                attackBox.setScale(-1, 1);
            } else {
                attackBox.setPosition(bounds.left + bounds.width * 0.1f, feet.y);
            }
            break;
        case KING_DASH_ATTACK:
        case KING_JUMP_ATTACK: {
            bool dash = king.body.state == KING_DASH_ATTACK;
            sf::Vector2f size(bounds.width * (dash ? 0.2f : 0.6f),
                              bounds.height * (dash ? 0.4f : 1.0f));
            attackBox.setSize(size);
            attackBox.setOrigin(size.x / 2, size.y);
            attackBox.setPosition(feet);
            break;
        }
        default:
            attackBox.setSize({0, 0});
            attackBox.setOrigin(0, 0);
            attackBox.setPosition(0, 0);
            return sf::FloatRect();
    }
    return attackBox.getGlobalBounds();
}

bool Striking(int index) {
    const EnemyBody& body = kings[size_t(index)].body;
    return body.armed && AtDamageFrame(body);
}

// The swing and the dash can be parried; the leap's landing cannot.
EnemyBlow Blow(int index, int) {
    switch (kings[size_t(index)].body.state) {
        case KING_ATTACK: return {25, true};
        case KING_DASH_ATTACK: return {35, true};
        case KING_JUMP_ATTACK: return {40, false};
        default: return {0, false};
    }
}

void DrawAll(sf::RenderTarget& target) {
    for (const King& king : kings) target.draw(*king.body.sprite);
    if (!DebugOverlay()) return;
    for (int i = 0; i < int(kings.size()); i++) {
        PlaceProbe(kings[size_t(i)]);
        AttackBox(i, 0);
        DrawHitbox(target, hurtbox);
        DrawHitbox(target, attackBox);
        DrawHitbox(target, probe);
    }
}

}  // namespace

const EnemyKindOps& KingKind() {
    static const EnemyKindOps ops = [] {
        EnemyKindOps kind;
        FillRosterOps<kings, UpdateKing, true>(kind);
        kind.loadAssets = LoadAssets;
        kind.destroyAssets = DestroyAssets;
        kind.add = [](sf::Vector2f position, int containerId, int) {
            AddKingEnemy(position, containerId);
        };
        kind.hurtbox = Hurtbox;
        kind.attackBox = AttackBox;
        kind.striking = Striking;
        kind.blow = Blow;
        kind.draw = DrawAll;
        kind.deadState = KING_DEAD;
        return kind;
    }();
    return ops;
}

void AddKingEnemy(sf::Vector2f position, int containerId) {
    King king;
    CreateEnemyBody(king.body, sheet.texture.get(), sheet.anim, position, {0.5f, 1.0f}, containerId,
                    kFullLife);
    LoadEnemySounds(king.body, kSounds, 0);
    king.body.sounds.resize(SOUND_MUSIC_SLOT + 1);
    LoadSoundArray(king.body.sounds[SOUND_MUSIC_SLOT], kMusic, 100, 1, SOUND_MUSIC, 0);
    king.home = position;
    try {
        kings.push_back(std::move(king));
    } catch (const std::bad_alloc&) {
        LogError("Erreur realloc dans AddKingEnemy\n");
        return;
    }
    // His music starts the moment he arrives.
    CreateSoundArray(kings.back().body.sounds[SOUND_MUSIC_SLOT], 0);
}

int KingState(int index) {
    return kings[size_t(index)].body.state;
}

int KingComboCount(int index) {
    return kings[size_t(index)].comboCount;
}

unsigned KingAttackRate(int index) {
    return kings[size_t(index)].body.clips[KING_ATTACK].frameRate;
}

sf::Vector2f KingJumpAim(int index) {
    return kings[size_t(index)].jumpAim;
}

int KingMusicVoices() {
    int voices = 0;
    for (const King& king : kings) voices += VoiceCount(king.body.sounds[SOUND_MUSIC_SLOT]);
    return voices;
}

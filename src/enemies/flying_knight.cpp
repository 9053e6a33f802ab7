#include "enemies/flying_knight.h"

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

const char* const kKnightTexture = "Assets/Sprites/Enemies/Flying Knight/GladiatorSpriteSheet.png";
const char* const kSwordTexture = "Assets/Sprites/Enemies/Flying Knight/SwordSpriteSheet.png";
const char* const kAnimData = "Assets/Sprites/Enemies/Flying Knight/FlyingKnightAnimData.txt";
// The message has always named the sheet with a .txt ending; log readers look for it as it is.
const char* const kMissingData =
    "FILE [Assets/Sprites/Enemies/Flying Knight/GladiatorSpriteSheet.txt] Cant' be open\n";
const std::array<const char*, 2> kSounds = {
    "Assets/Sounds/SFX/Enemy/Flying Knight/Flying_Knight_Attack.wav",
    "Assets/Sounds/SFX/Enemy/Flying Knight/Flying_Knight_Dead.wav"};
enum KnightSound { SOUND_ATTACK = 0, SOUND_DEAD = 1 };

// The knight's clips and the sword's, in the data file's order.
enum KnightClip { CLIP_IDLE = 0, CLIP_DEATH = 1, CLIP_REVIVE = 2 };
enum SwordClip { CLIP_STATIC = 0, CLIP_ATTACK = 1 };
const std::array<AnimClipSpec, 3> kKnightClips = {{{"IDLE", 1}, {"DEATH", 0}, {"REVIVE", 0}}};
const std::array<AnimClipSpec, 2> kSwordClips = {{{"STATIC", 1}, {"ATTACK", 0}}};

constexpr bool kSheetFacesLeft = false;
constexpr int kFullLife = 12;
constexpr float kPatrolSpeed = 150;
constexpr float kRest = 2;
constexpr float kBobHeight = 20;
constexpr float kBobTime = 1;
constexpr float kBackAwaySpeed = 250;
constexpr float kKeptDistance = 400;
constexpr float kRetreatSpeed = 750;
constexpr float kSwordSpeed = 750;
constexpr float kSwordWait = 0.5f;
constexpr float kDropTime = 2;
constexpr float kStrikeShare = 0.9f;  // the plunge strikes in the drop's last tenth

struct FlyingKnight {
    EnemyBody body;   // the armour: state, life, arena, armed, sounds
    EnemyBody sword;  // only its sprite and clips
    int blocked = 0;
    int detected = 0;
    float restTimer = 0;
    sf::Vector2f home;
    float bobTarget = 0;
    Tween bob;
    int attack = KNIGHT_NO_ATTACK;
    int swordPlaced = 0;
    float swordWait = 0;
    float floatTarget = 0;  // the idle sword's height, between two marks by the hurtbox
    Tween swordFloat, turn, rise, drop, settle, rest;
    float turnGoal = 180;
    sf::Vector2f retreatPoint;
    int retreating = 0;
};

EnemySheet knightSheet;
EnemySheet swordSheet;
int damageFrame1 = 0, damageFrame2 = 0;
std::vector<FlyingKnight> knights;
sf::RectangleShape hurtbox;
sf::RectangleShape attackBox;
sf::RectangleShape probe;
// Every patrolling Flying Knight floats this way; a blocked one turns them all. Kept between rooms.
float patrolSpeed = kPatrolSpeed;

sf::Sprite& Knight(FlyingKnight& knight) {
    return *knight.body.sprite;
}

sf::Sprite& Sword(FlyingKnight& knight) {
    return *knight.sword.sprite;
}

float X(const FlyingKnight& knight) {
    return BodyPosition(knight.body).x;
}

bool Right(const FlyingKnight& knight) {
    return FacesRight(knight.body, kSheetFacesLeft);
}

float SwordHeight() {
    return float(swordSheet.anim.frameSize.y) * 3;
}

sf::FloatRect PlaceHurtbox(const FlyingKnight& knight) {
    hurtbox.setPosition(BodyPosition(knight.body));
    return hurtbox.getGlobalBounds();
}

// Out of the patrol the knight backs away from the hero, so the probe looks behind it.
bool MovesRight(const FlyingKnight& knight) {
    return knight.detected ? !Right(knight) : Right(knight);
}

sf::FloatRect PlaceProbe(const FlyingKnight& knight) {
    sf::FloatRect body = PlaceHurtbox(knight);
    sf::Vector2f size = probe.getSize();
    float left = MovesRight(knight) ? body.left + body.width : body.left - size.x;
    probe.setPosition(left, body.top + body.height - size.y);
    return probe.getGlobalBounds();
}

void ClearSwordTweens(FlyingKnight& knight) {
    knight.swordFloat = knight.turn = knight.rise = knight.drop = Tween();
    knight.settle = knight.rest = Tween();
    knight.swordPlaced = 0;
    knight.swordWait = 0;
}

void SetFlyingKnightState(FlyingKnight& knight, int state) {
    knight.body.state = state;
    RestartAnimation(knight.sword.clips[CLIP_ATTACK]);
    knight.body.armed = 1;
    ClearSwordTweens(knight);
    if (state == KNIGHT_ATTACK) PlaySound(knight.body, SOUND_ATTACK, 1);
    if (state == KNIGHT_DEAD) {
        knight.attack = KNIGHT_NO_ATTACK;
        ShowClip(knight.body, CLIP_DEATH);
        PlaySound(knight.body, SOUND_DEAD, 0);
    }
}

// As the Nomad: only inside the arena, and only when facing the hero until hurt.
bool Detect(FlyingKnight& knight, sf::Vector2f target) {
    if (!ContainerContains(target, knight.body.containerId)) {
        knight.detected = 0;
    } else if (!knight.detected) {
        bool facing = (target.x >= X(knight)) == Right(knight);
        if (facing || knight.body.life != kFullLife) knight.detected = 1;
    }
    return knight.detected != 0;
}

// Floats between its home height and 20 px above it, easing at both ends.
void Bob(FlyingKnight& knight, float dt) {
    sf::Sprite& sprite = Knight(knight);
    if (!TweenPosition(sprite, {sprite.getPosition().x, knight.bobTarget}, kBobTime,
                       EASE_CUBIC_IN_OUT, dt, knight.bob)) {
        return;
    }
    bool home = std::fabs(sprite.getPosition().y - knight.home.y) <= 1;
    knight.bobTarget += home ? -kBobHeight : kBobHeight;
    knight.bob = Tween();
}

// The sword hangs behind the knight, upright, drifting up and down beside the hurtbox.
void FloatSword(FlyingKnight& knight, float dt) {
    sf::FloatRect body = PlaceHurtbox(knight);
    sf::Sprite& sword = Sword(knight);
    float behind = Right(knight) ? body.left : body.left + body.width;
    MoveSpriteTowards(sword, {behind, sword.getPosition().y}, kBackAwaySpeed, dt, 0);
    RotateSpriteTowards(sword, 0, 100, dt);
    if (!TweenPosition(sword, {sword.getPosition().x, knight.floatTarget}, 3, EASE_CUBIC_IN_OUT, dt,
                       knight.swordFloat)) {
        return;
    }
    float high = body.top + body.height / 1.65f;
    knight.floatTarget = std::fabs(knight.floatTarget - high) <= 21 ? body.top + body.height : high;
    knight.swordFloat = Tween();
}

// The idle sword turns its edge away from the knight.
void FaceSword(FlyingKnight& knight) {
    Sword(knight).setScale(Sword(knight).getPosition().x > X(knight) ? -3.0f : 3.0f, 3.0f);
}

void Decide(FlyingKnight& knight) {
    EnemyBody& body = knight.body;
    if (!knight.detected) {
        if (body.state != KNIGHT_PATROL) SetFlyingKnightState(knight, KNIGHT_PATROL);
        return;
    }
    if (body.state == KNIGHT_IDLE && knight.restTimer >= kRest) {
        SetFlyingKnightState(knight, KNIGHT_PATROL);
        knight.restTimer = 0;
    } else if (body.state == KNIGHT_PATROL) {
        knight.attack = std::rand() % 100 > 49 ? KNIGHT_PLUNGE : KNIGHT_SLASH;
        SetFlyingKnightState(knight, KNIGHT_ATTACK);
    }
}

// Backs away from a hero closer than 400 px; cornered, it dashes 400 px past them instead.
void KeepDistance(FlyingKnight& knight, float dt, sf::Vector2f target) {
    sf::Sprite& sprite = Knight(knight);
    FaceRight(knight.body, target.x >= X(knight), kSheetFacesLeft);
    if (std::fabs(target.x - X(knight)) < kKeptDistance && !knight.retreating) {
        if (!knight.blocked) {
            sprite.move((target.x > X(knight) ? -kBackAwaySpeed : kBackAwaySpeed) * dt, 0);
        } else {
            float side = target.x >= X(knight) ? kKeptDistance : -kKeptDistance;
            knight.retreatPoint = {X(knight) + side, sprite.getPosition().y};
            knight.retreating = 1;
        }
    }
    if (knight.retreating && MoveSpriteTowards(sprite, knight.retreatPoint, kRetreatSpeed, dt, 0)) {
        knight.retreating = 0;
    }
    Decide(knight);
}

void Patrol(FlyingKnight& knight, float dt) {
    if (knight.blocked) patrolSpeed = -patrolSpeed;
    Knight(knight).move(patrolSpeed * dt, 0);
    if ((patrolSpeed > 0) != Right(knight))
        FaceRight(knight.body, patrolSpeed > 0, kSheetFacesLeft);
}

void EndAttack(FlyingKnight& knight) {
    SetFlyingKnightState(knight, KNIGHT_IDLE);
}

// Beside the hero on the knight's side, a breath's wait, then the two cuts.
void Slash(FlyingKnight& knight, float dt, sf::Vector2f target) {
    sf::Sprite& sword = Sword(knight);
    sf::Vector2f size = hurtbox.getSize();
    float side = target.x <= X(knight) ? size.x / 1.5f : -size.x / 1.5f;
    sf::Vector2f place(target.x + side, target.y + size.y * 0.5f);
    sword.setScale(target.x >= sword.getPosition().x ? 3.0f : -3.0f, 3.0f);
    if (!knight.swordPlaced) {
        RotateSpriteTowards(sword, 0, 360, dt);
        knight.swordPlaced = MoveSpriteTowards(sword, place, kSwordSpeed, dt, 1);
        return;
    }
    if (knight.swordWait < kSwordWait) {
        knight.swordWait += dt;
        return;
    }
    Animation& cut = knight.sword.clips[CLIP_ATTACK];
    UpdateAnimation(cut, dt);
    int frame = cut.currentFrame + 1;
    if (frame == damageFrame1 + 1 || frame == damageFrame2 - 1) knight.body.armed = 1;
    if (cut.finished) EndAttack(knight);
}

// Turns point down while rising over the hero, then drops on them.
void Plunge(FlyingKnight& knight, float dt, sf::Vector2f target) {
    sf::Sprite& sword = Sword(knight);
    if (!TweenDone(knight.rise)) {
        if (!knight.turn.started) {
            float from = sword.getRotation();
            knight.turnGoal = 180;
            for (float goal : {-180.0f, 540.0f}) {
                if (std::fabs(goal - from) < std::fabs(knight.turnGoal - from))
                    knight.turnGoal = goal;
            }
        }
        sf::Vector2f angle(sword.getRotation(), 0);
        StepTween(knight.turn, angle, {knight.turnGoal, 0}, 1, EASE_LINEAR, dt);
        sword.setRotation(angle.x);
        TweenPosition(sword, {target.x, target.y - 2 * SwordHeight()}, 1, EASE_LINEAR, dt,
                      knight.rise);
        return;
    }
    if (knight.drop.elapsed < kDropTime * kStrikeShare)
        sword.setPosition(target.x, sword.getPosition().y);
    if (TweenPosition(sword, {sword.getPosition().x, target.y}, kDropTime, EASE_ELASTIC_IN, dt,
                      knight.drop)) {
        EndAttack(knight);
    }
}

void RunAttack(FlyingKnight& knight, float dt, sf::Vector2f target) {
    if (knight.body.state != KNIGHT_ATTACK) return;  // keeping its distance ended it
    if (knight.attack == KNIGHT_PLUNGE) {
        Plunge(knight, dt, target);
    } else {
        Slash(knight, dt, target);
    }
}

// The armour sinks to its home height; the sword turns point down and settles above it.
void Die(FlyingKnight& knight, float dt) {
    float x = X(knight);
    MoveSpriteTowards(Knight(knight), {x, knight.home.y}, 100, dt, 0);
    sf::Sprite& sword = Sword(knight);
    RotateSpriteTowards(sword, 180, 100, dt);
    if (!TweenDone(knight.settle)) {
        TweenPosition(sword, {x, knight.home.y - 1.5f * SwordHeight()}, 2, EASE_CUBIC_IN_OUT, dt,
                      knight.settle);
    } else {
        TweenPosition(sword, {x, knight.home.y - SwordHeight()}, 1, EASE_CUBIC_OUT, dt,
                      knight.rest);
    }
}

void UpdateKnight(FlyingKnight& knight, float dt, sf::Vector2f target) {
    EnemyBody& body = knight.body;
    if (body.state != KNIGHT_DEAD) Detect(knight, target);
    knight.blocked = BoxBlocked(PlaceProbe(knight), body.containerId);
    if (body.life < 1 && body.state != KNIGHT_DEAD) SetFlyingKnightState(knight, KNIGHT_DEAD);
    AdvanceClip(body, dt);
    if (body.state != KNIGHT_ATTACK) UpdateAnimation(knight.sword.clips[CLIP_STATIC], dt);
    if (body.state != KNIGHT_DEAD) {
        Bob(knight, dt);
        if (body.state != KNIGHT_ATTACK) FloatSword(knight, dt);
    }
    switch (body.state) {
        case KNIGHT_IDLE:
            if (knight.restTimer < kRest) knight.restTimer += dt;
            KeepDistance(knight, dt, target);
            FaceSword(knight);
            break;
        case KNIGHT_PATROL:
            if (knight.detected) {
                KeepDistance(knight, dt, target);
            } else {
                Patrol(knight, dt);
            }
            FaceSword(knight);
            break;
        case KNIGHT_ATTACK:
            KeepDistance(knight, dt, target);
            RunAttack(knight, dt, target);
            break;
        case KNIGHT_DEAD: Die(knight, dt); break;
        default: break;
    }
    SoundsFollow(body);
}

// One section of the data file: "size", "first Frame Position", then its clips in row order.
void ReadSection(std::FILE* file, std::span<const AnimClipSpec> specs, AnimData& anim) {
    ReadAnimSize(file, anim.frameSize);
    ReadAnimFirstFrame(file, anim.firstFrame);
    for (size_t i = 0; i < specs.size(); i++) {
        ReadAnimClip(file, specs[i].label, anim.clips[i], anim.frameSize, anim.firstFrame, int(i));
        anim.clips[i].loop = specs[i].loop;
    }
}

// The one file holds the knight's section and the sword's, the slash's two damage frames last.
void ReadKnightData() {
    knightSheet.anim = AnimData();
    swordSheet.anim = AnimData();
    knightSheet.anim.clips.assign(kKnightClips.size(), Animation());
    swordSheet.anim.clips.assign(kSwordClips.size(), Animation());
    damageFrame1 = damageFrame2 = 0;
    std::FILE* file = std::fopen(kAnimData, "r");
    if (!file) {
        Log("%s", kMissingData);
        return;
    }
    [[maybe_unused]] int read = std::fscanf(file, " KNIGHT :");
    ReadSection(file, kKnightClips, knightSheet.anim);
    read = std::fscanf(file, " SWORD :");
    ReadSection(file, kSwordClips, swordSheet.anim);
    damageFrame1 = ReadAnimTail(file, " / DamageFrame : %d");
    damageFrame2 = ReadAnimTail(file, " /Damage Frame %d");
    std::fclose(file);
    knightSheet.read = swordSheet.read = true;
}

void LoadAssets() {
    knightSheet.texture = LoadTexture(kKnightTexture);
    swordSheet.texture = LoadTexture(kSwordTexture);
    ReadKnightData();
    knightSheet.anim.damageFrames.assign(kKnightClips.size(), 0);
    swordSheet.anim.damageFrames.assign(kSwordClips.size(), 0);
    sf::Vector2f frame(knightSheet.anim.frameSize);
    sf::Vector2f body(frame.x * 0.7f * 3, frame.y * 0.8f * 3);
    hurtbox = sf::RectangleShape(body);
    hurtbox.setOrigin(body.x / 2, body.y);
    hurtbox.setFillColor(sf::Color(0, 0, 255, 100));
    attackBox = sf::RectangleShape({1, 1});
    attackBox.setFillColor(sf::Color(255, 0, 0, 100));
    probe = sf::RectangleShape({1, frame.y * 1.5f});
    probe.setFillColor(sf::Color(255, 255, 255, 100));
    patrolSpeed = kPatrolSpeed;
}

void DestroyAssets() {
    knights.clear();
    knightSheet = EnemySheet();
    swordSheet = EnemySheet();
}

sf::FloatRect Hurtbox(int index) {
    return PlaceHurtbox(knights[size_t(index)]);
}

// The slash's box is the sword's whole frame; the plunge's a third of its width below the hilt.
sf::FloatRect AttackBox(int index, int) {
    FlyingKnight& knight = knights[size_t(index)];
    attackBox.setScale(1, 1);
    if (knight.body.state != KNIGHT_ATTACK) {
        attackBox.setSize({0, 0});
        attackBox.setOrigin(0, 0);
        attackBox.setPosition(0, 0);
        return sf::FloatRect();
    }
    sf::FloatRect bounds = Sword(knight).getGlobalBounds();
    bool plunge = knight.attack == KNIGHT_PLUNGE;
    sf::Vector2f size(plunge ? bounds.width / 3 : bounds.width, bounds.height);
    attackBox.setSize(size);
    attackBox.setOrigin(size.x / 2, plunge ? 0 : size.y);
    attackBox.setPosition(Sword(knight).getPosition());
    return attackBox.getGlobalBounds();
}

bool Striking(int index) {
    const FlyingKnight& knight = knights[size_t(index)];
    if (!knight.body.armed) return false;
    int frame = knight.sword.clips[CLIP_ATTACK].currentFrame + 1;
    bool cut = frame == damageFrame1 || frame == damageFrame2;
    bool drop = knight.drop.started && knight.drop.elapsed > knight.drop.duration * kStrikeShare;
    return cut || drop;
}

EnemyBlow Blow(int, int) {
    return {15, true};
}

// The sword, the armour, and the sword again while it attacks so it shows in front.
void DrawAll(sf::RenderTarget& target) {
    for (FlyingKnight& knight : knights) {
        target.draw(Sword(knight));
        target.draw(Knight(knight));
        if (knight.body.state == KNIGHT_ATTACK) target.draw(Sword(knight));
    }
    if (!DebugOverlay()) return;
    for (int i = 0; i < int(knights.size()); i++) {
        PlaceProbe(knights[size_t(i)]);
        AttackBox(i, 0);
        DrawHitbox(target, hurtbox);
        DrawHitbox(target, attackBox);
        DrawHitbox(target, probe);
    }
}

}  // namespace

const EnemyKindOps& FlyingKnightKind() {
    static const EnemyKindOps ops = [] {
        EnemyKindOps kind;
        FillRosterOps<knights, UpdateKnight, true>(kind);
        kind.loadAssets = LoadAssets;
        kind.destroyAssets = DestroyAssets;
        kind.add = [](sf::Vector2f position, int containerId, int) {
            AddFlyingKnightEnemy(position, containerId);
        };
        kind.hurtbox = Hurtbox;
        kind.attackBox = AttackBox;
        kind.striking = Striking;
        kind.blow = Blow;
        kind.draw = DrawAll;
        kind.deadState = KNIGHT_DEAD;
        return kind;
    }();
    return ops;
}

void AddFlyingKnightEnemy(sf::Vector2f position, int containerId) {
    FlyingKnight knight;
    CreateEnemyBody(knight.body, knightSheet.texture.get(), knightSheet.anim, position,
                    {0.5f, 1.0f}, containerId, kFullLife);
    CreateEnemyBody(knight.sword, swordSheet.texture.get(), swordSheet.anim, position, {0.5f, 1.0f},
                    containerId, 0);
    LoadEnemySounds(knight.body, kSounds, 1);
    knight.body.state = KNIGHT_IDLE;
    knight.home = position;
    knight.bobTarget = position.y;
    sf::FloatRect body = PlaceHurtbox(knight);
    knight.floatTarget = body.top + body.height / 2;
    try {
        knights.push_back(std::move(knight));
    } catch (const std::bad_alloc&) {
        LogError("Erreur realloc dans AddFlyingKnightEnemy\n");
    }
}

int FlyingKnightState(int index) {
    return knights[size_t(index)].body.state;
}

int FlyingKnightAttackKind(int index) {
    return knights[size_t(index)].attack;
}

const sf::Sprite& FlyingKnightSword(int index) {
    return *knights[size_t(index)].sword.sprite;
}

float FlyingKnightPatrolSpeed() {
    return patrolSpeed;
}

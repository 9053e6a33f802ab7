#include "enemies/frog.h"

#include <array>
#include <cmath>
#include <cstdlib>
#include <memory>
#include <vector>

#include "enemies/enemy_body.h"

namespace {

const char* const kTexture = "Assets/Sprites/Enemies/frog.png";
const std::array<const char*, 3> kSounds = {"Assets/Sounds/SFX/Enemy/Frog/Frog_Idle.wav",
                                            "Assets/Sounds/SFX/Enemy/Frog/Frog_Jump.wav",
                                            "Assets/Sounds/SFX/Enemy/Frog/Frog_Death.wav"};
// The frog's sheet has no animation file: one clip per row of 64 x 48 frames.
const std::array<FixedClipSpec, 3> kClips = {{{8, 6, 1}, {1, 1, 0}, {3, 3, 0}}};
const sf::Vector2i kFrame = {64, 48};

constexpr bool kSheetFacesLeft = true;
constexpr int kFullLife = 4;
constexpr float kGravity = 981;
constexpr float kMaxFallSpeed = 350;
constexpr float kLeapSpeed = 250;
constexpr float kTakeOffSpeed = 600;
constexpr float kDeadFallSpeed = 700;
constexpr float kStraightUpReach = 70;  // closer than this across, it leaps where it last did
enum FrogSound { SOUND_IDLE = 0, SOUND_JUMP = 1, SOUND_DEATH = 2 };
enum Probe { PROBE_GROUND = 0, PROBE_LEFT = 1, PROBE_RIGHT = 2, PROBE_HEAD = 3, PROBE_COUNT = 4 };

struct Frog {
    EnemyBody body;
    sf::RectangleShape hurtbox;  // also what hurts the hero in a leap
    sf::Vector2f velocity;
    float jumpTimer = 0;
    float gravity = kGravity;
    float maxFallSpeed = kMaxFallSpeed;
    float leapSpeed = kLeapSpeed;
    std::array<int, PROBE_COUNT> touching{};
};

TexturePtr texture;
AnimData anim;
// Just below the feet, beside the body on either side and just above the head; shared by every
// Frog and made by the first one.
std::array<std::unique_ptr<sf::RectangleShape>, PROBE_COUNT> probes;
std::vector<Frog> frogs;

float NextJumpTimer() {
    return float(std::rand() % 3 + 1);
}

void CreateProbes() {
    auto make = [](sf::Vector2f size, sf::Vector2f origin) {
        auto shape = std::make_unique<sf::RectangleShape>(size);
        shape->setOrigin(origin);
        shape->setScale(3, 3);
        shape->setFillColor(sf::Color(255, 255, 0, 120));
        return shape;
    };
    probes[PROBE_GROUND] = make({28, 1}, {14, 0});
    probes[PROBE_LEFT] = make({3, 25}, {3, 12.5f});
    probes[PROBE_RIGHT] = make({3, 25}, {0, 12.5f});
    probes[PROBE_HEAD] = make({28, 1}, {14, 1});
}

void PlaceProbes(Frog& frog) {
    sf::FloatRect box = frog.hurtbox.getGlobalBounds();
    float middle = box.top + box.height / 2;
    probes[PROBE_GROUND]->setPosition(BodyPosition(frog.body));
    probes[PROBE_LEFT]->setPosition(box.left, middle);
    probes[PROBE_RIGHT]->setPosition(box.left + box.width, middle);
    probes[PROBE_HEAD]->setPosition(box.left + box.width / 2, box.top);
    for (int i = 0; i < PROBE_COUNT; i++) {
        frog.touching[i] = BoxBlocked(probes[i]->getGlobalBounds(), frog.body.containerId);
    }
}

bool FacingLeft(const Frog& frog) {
    return !FacesRight(frog.body, kSheetFacesLeft);
}

// Sitting, the frog counts down and leaps; it picks its direction only on the ground and drifts
// only in the air.
void Move(Frog& frog, float dt, sf::Vector2f target) {
    sf::Sprite& sprite = *frog.body.sprite;
    bool grounded = frog.touching[PROBE_GROUND];
    float dx = target.x - sprite.getPosition().x;
    if (ContainerContains(target, frog.body.containerId) || !grounded) {
        if (grounded) {
            frog.jumpTimer -= dt;
            if (frog.jumpTimer <= 0) {
                frog.velocity.y = -kTakeOffSpeed;
                frog.jumpTimer = NextJumpTimer();
            }
        }
        sprite.move(0, frog.velocity.y * dt);
        if (std::fabs(dx) > kStraightUpReach && grounded) {
            frog.velocity.x = dx > 0 ? frog.leapSpeed : -frog.leapSpeed;
        }
    }
    if (frog.velocity.x != 0) FaceRight(frog.body, frog.velocity.x > 0, kSheetFacesLeft);
    if (grounded) return;
    bool left = FacingLeft(frog);
    if ((left && frog.touching[PROBE_LEFT]) || (!left && frog.touching[PROBE_RIGHT])) {
        frog.velocity.x = 0;
    }
    sprite.move(frog.velocity.x * dt, 0);
}

// Dying, taking off and landing each re-arm the frog and make their sound.
void Enter(Frog& frog, int state, int sound) {
    EnterState(frog.body, state);
    frog.body.armed = 1;
    PlaySound(frog.body, sound, 1);
}

void UpdateFrog(Frog& frog, float dt, sf::Vector2f target) {
    EnemyBody& body = frog.body;
    PlaceProbes(frog);
    bool grounded = frog.touching[PROBE_GROUND];
    frog.velocity.y += frog.gravity * dt;
    if (grounded && frog.velocity.y >= 0) frog.velocity.y = 0;
    frog.velocity.y = std::fmin(frog.velocity.y, frog.maxFallSpeed);
    if (body.state == FROG_DEAD) {
        frog.velocity.x = 0;
    } else {
        Move(frog, dt, target);
        frog.hurtbox.setPosition(BodyPosition(body));
    }
    if (frog.touching[PROBE_HEAD]) frog.velocity.y = 0;
    if (body.life < 1 && body.state != FROG_DEAD) {
        Enter(frog, FROG_DEAD, SOUND_DEATH);
    } else if (body.state != FROG_DEAD && !grounded && body.state != FROG_JUMP) {
        Enter(frog, FROG_JUMP, SOUND_JUMP);
    } else if (body.state != FROG_DEAD && grounded && body.state != FROG_IDLE) {
        Enter(frog, FROG_IDLE, SOUND_IDLE);
    }
    AdvanceClip(body, dt);
    if (body.state == FROG_DEAD && !grounded) body.sprite->move(0, kDeadFallSpeed * dt);
    SoundsFollow(body);
}

void LoadAssets() {
    texture = LoadTexture(kTexture);
    anim = FixedSheet(kFrame, kClips);
}

void DestroyAssets() {
    frogs.clear();
    texture.reset();
    for (auto& probe : probes) probe.reset();
}

void DrawAll(sf::RenderTarget& target) {
    for (const Frog& frog : frogs) {
        target.draw(*frog.body.sprite);
        DrawHitbox(target, frog.hurtbox);
    }
}

sf::FloatRect Hurtbox(int index) {
    return frogs[index].hurtbox.getGlobalBounds();
}

// Its whole body is the weapon.
sf::FloatRect AttackBox(int index, int) {
    return Hurtbox(index);
}

// Only a frog in the air hurts, once per leap.
bool Striking(int index) {
    const EnemyBody& body = frogs[index].body;
    return body.state == FROG_JUMP && body.armed;
}

EnemyBlow Blow(int, int) {
    return {18, false};
}

}  // namespace

const EnemyKindOps& FrogKind() {
    static const EnemyKindOps ops = [] {
        EnemyKindOps kind;
        FillRosterOps<frogs, UpdateFrog>(kind);
        kind.loadAssets = LoadAssets;
        kind.destroyAssets = DestroyAssets;
        kind.add = AddFrogEnemy;
        kind.hurtbox = Hurtbox;
        kind.attackBox = AttackBox;
        kind.striking = Striking;
        kind.blow = Blow;
        kind.draw = DrawAll;
        kind.deadState = FROG_DEAD;
        return kind;
    }();
    return ops;
}

void AddFrogEnemy(sf::Vector2f position, int containerId, int) {
    Frog frog;
    CreateEnemyBody(frog.body, texture.get(), anim, position, {0.5f, 1.0f}, containerId, kFullLife);
    frog.jumpTimer = NextJumpTimer();
    LoadEnemySounds(frog.body, kSounds, 1);
    frog.hurtbox = sf::RectangleShape({35, 25});
    frog.hurtbox.setOrigin(17.5f, 25);
    frog.hurtbox.setScale(3, 3);
    frog.hurtbox.setFillColor(sf::Color(0, 255, 0, 125));
    frog.hurtbox.setPosition(position);
    if (!probes[PROBE_GROUND]) CreateProbes();
    frogs.push_back(std::move(frog));
}

#include "enemies/slime.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdlib>
#include <numbers>

#include "common/log.h"
#include "enemies/enemy_body.h"
#include "world/room.h"

namespace {

const char* const kSlimeTexture = "Assets/Sprites/Enemies/Slime/Slime SpriteSheet.png";
const char* const kNecroTexture = "Assets/Sprites/Enemies/Slime/NecroSlime SpriteSheet.png";
const char* const kBlueTexture = "Assets/Sprites/Enemies/Slime/BlueSlime SpriteSheet.png";
const char* const kAnimData = "Assets/Sprites/Enemies/Slime/SlimeAnimData.txt";
const std::array<const char*, 2> kProjectileTextures = {
    "Assets/Sprites/Enemies/Slime/Slime-Projectile-SpriteSheet.png",
    "Assets/Sprites/Enemies/Slime/BlueSlime-Projectile-SpriteSheet.png"};
const std::array<const char*, 2> kSounds = {"Assets/Sounds/SFX/Enemy/Slime/Slime_Attack.wav",
                                            "Assets/Sounds/SFX/Enemy/Slime/Slime_Dead.wav"};
const std::array<AnimClipSpec, 4> kClips = {
    {{"IDLE", 1}, {"WALK", 1}, {"ATTACK", 0, " / Damage Frame : %d"}, {"DEAD", 0}}};
// The burst after impact: one row of 22 x 22 frames whose first frame is the look in flight.
const std::array<FixedClipSpec, 1> kBurst = {{{6, 10, 0}}};
const sf::Vector2i kProjectileFrame = {22, 22};

constexpr bool kSheetFacesLeft = true;
constexpr int kFullLife = 3;
constexpr float kAttackPeriod = 2.5f;
constexpr float kRange = 1536;
constexpr float kShuffleSpeed = 100;
constexpr int kProjectileSpeed = 600;
enum SlimeSound { SOUND_ATTACK = 0, SOUND_DEATH = 1 };

struct Slime {
    EnemyBody body;
    int blocked = 0;  // the way ahead is a wall or the arena's edge
    int fired = 0;    // this attack has spat its projectile
    float attackTimer = 0;
    float attackPeriod = kAttackPeriod;
    ProjectileBank bank;
    int region = REGION_FOREST;
};

// The plain Slime's sheet carries the animation data all three looks share.
EnemySheet sheet;
TexturePtr necroTexture, blueTexture;
sf::Vector2i mouth;  // where projectiles leave, in the sheet's pixels from the frame's corner
sf::RectangleShape hurtbox, probe, marker;
std::vector<Slime> slimes;

bool FacingLeft(const Slime& slime) {
    return !FacesRight(slime.body, kSheetFacesLeft);
}

sf::FloatRect PlaceHurtbox(const Slime& slime) {
    hurtbox.setPosition(BodyPosition(slime.body));
    return hurtbox.getGlobalBounds();
}

// The probe just ahead of the Slime's front, as tall as the Slime, standing on its feet.
sf::FloatRect PlaceProbe(const Slime& slime) {
    sf::FloatRect box = PlaceHurtbox(slime);
    sf::Vector2f size = probe.getSize();
    float left = FacingLeft(slime) ? box.left - size.x : box.left + box.width;
    probe.setPosition(left, box.top + box.height - size.y);
    return probe.getGlobalBounds();
}

// Half a Slime's height below its feet: a hero lower than this is below it.
float BelowLine(const Slime& slime) {
    sf::FloatRect box = PlaceHurtbox(slime);
    return box.top + 1.5f * box.height;
}

// Turns to the hero once they stand clear of its sprite on either side.
void FaceTarget(Slime& slime, sf::Vector2f target) {
    sf::FloatRect bounds = slime.body.sprite->getGlobalBounds();
    if (target.x > bounds.left + bounds.width) {
        FaceRight(slime.body, true, kSheetFacesLeft);
    } else if (target.x < bounds.left) {
        FaceRight(slime.body, false, kSheetFacesLeft);
    }
}

sf::Vector2f LaunchPoint(const Slime& slime) {
    sf::FloatRect bounds = slime.body.sprite->getGlobalBounds();
    float x = FacingLeft(slime) ? bounds.left + float(mouth.x) * 3
                                : bounds.left + bounds.width - float(mouth.x) * 3;
    return {x, bounds.top + float(mouth.y) * 3};
}

// The heading from the launch point to the hero: its angle from straight up (0 to 180), taken
// on the side the Slime faces.
float LaunchAngle(sf::Vector2f from, sf::Vector2f to, bool facingLeft) {
    sf::Vector2f v = to - from;
    float length = std::hypot(v.x, v.y);
    float angle = 0;
    if (length > 0) {
        angle = std::acos(std::clamp(-v.y / length, -1.0f, 1.0f)) * 180 / std::numbers::pi_v<float>;
    }
    return facingLeft ? std::fmod(360 - angle, 360.0f) : angle;
}

// Every period the Slime spits, when the hero is within range across; the timer restarts
// either way.
void RunAttackTimer(Slime& slime, float dt, sf::Vector2f target) {
    if (slime.attackTimer < slime.attackPeriod) slime.attackTimer += dt;
    if (slime.attackTimer < slime.attackPeriod) return;
    if (std::fabs(BodyPosition(slime.body).x - target.x) < kRange) {
        EnterState(slime.body, SLIME_ATTACK);
        PlaySound(slime.body, SOUND_ATTACK, 1);
    }
    slime.attackTimer = 0;
}

void UpdateIdle(Slime& slime, float dt, sf::Vector2f target) {
    FaceTarget(slime, target);
    RunAttackTimer(slime, dt, target);
    // A hero below sends it shuffling, even out of a spit it just began.
    if (!slime.blocked && target.y > BelowLine(slime)) EnterState(slime.body, SLIME_WALK);
}

void UpdateWalk(Slime& slime, float dt, sf::Vector2f target) {
    FaceTarget(slime, target);
    float speed = FacingLeft(slime) ? -kShuffleSpeed : kShuffleSpeed;
    slime.body.sprite->move(speed * dt, 0);
    if (target.y < BelowLine(slime) || slime.blocked) EnterState(slime.body, SLIME_IDLE);
    RunAttackTimer(slime, dt, target);
}

void UpdateAttack(Slime& slime, sf::Vector2f target) {
    if (AtDamageFrame(slime.body) && !slime.fired) {
        sf::Vector2f from = LaunchPoint(slime);
        AddProjectile(slime.bank, from, LaunchAngle(from, target, FacingLeft(slime)));
        slime.fired = 1;
    }
    if (ClipFinished(slime.body)) {
        EnterState(slime.body, SLIME_IDLE);
        slime.fired = 0;
    }
}

void UpdateSlime(Slime& slime, float dt, sf::Vector2f target) {
    EnemyBody& body = slime.body;
    sf::FloatRect ahead = PlaceProbe(slime);
    slime.blocked = ProbeBlocked(ahead, {ahead.left, ahead.top}, body.containerId) ? 1 : 0;
    if (body.life < 1 && body.state != SLIME_DEAD) {
        EnterState(body, SLIME_DEAD);
        PlaySound(body, SOUND_DEATH, 1);
    }
    AdvanceClip(body, dt);
    switch (body.state) {
        case SLIME_IDLE: UpdateIdle(slime, dt, target); break;
        case SLIME_WALK: UpdateWalk(slime, dt, target); break;
        case SLIME_ATTACK: UpdateAttack(slime, target); break;
        default: break;
    }
    // A dead Slime's projectiles fly on.
    UpdateProjectiles(slime.bank, dt);
    SoundsFollow(body);
}

void ReadMouth(std::FILE* file, int clip) {
    if (clip == -1 && std::fscanf(file, " projectile position : (%d,%d)", &mouth.x, &mouth.y) != 2)
        mouth = {0, 0};
}

void LoadAssets() {
    mouth = {0, 0};
    LoadEnemySheet(sheet, kSlimeTexture, kAnimData, kClips, ReadMouth);
    necroTexture = LoadTexture(kNecroTexture);
    blueTexture = LoadTexture(kBlueTexture);
    sf::Vector2f frame(sheet.anim.frameSize);
    hurtbox = sf::RectangleShape({0.7f * frame.x * 3, frame.y * 3});
    hurtbox.setOrigin(hurtbox.getSize().x / 2, hurtbox.getSize().y);
    hurtbox.setFillColor(sf::Color(0, 0, 255, 100));
    probe = sf::RectangleShape({1, frame.y * 3});
    probe.setFillColor(sf::Color(255, 255, 0, 120));
    marker = sf::RectangleShape({1, 1});
}

void DestroyAssets() {
    slimes.clear();
    sheet = EnemySheet();
    necroTexture.reset();
    blueTexture.reset();
}

void DrawAll(sf::RenderTarget& target) {
    for (Slime& slime : slimes) {
        target.draw(*slime.body.sprite);
        PlaceProbe(slime);
        DrawHitbox(target, hurtbox);
        marker.setPosition(LaunchPoint(slime));
        DrawHitbox(target, marker);
        DrawHitbox(target, probe);
        ProjectileBank& bank = slime.bank;
        for (size_t i = 0; i < bank.projectiles.size(); i++) {
            target.draw(*bank.projectiles[i].sprite);
            ProjectileBox(bank, int(i));
            DrawHitbox(target, bank.hitbox);
        }
    }
}

sf::FloatRect Hurtbox(int index) {
    return PlaceHurtbox(slimes[index]);
}

// One attack per projectile in flight or bursting.
int AttackCount(int index) {
    return int(slimes[index].bank.projectiles.size());
}

sf::FloatRect AttackBox(int index, int attack) {
    ProjectileBank& bank = slimes[index].bank;
    if (attack < 0 || size_t(attack) >= bank.projectiles.size()) return {};
    if (bank.projectiles[attack].destroyed) return {};
    return ProjectileBox(bank, attack);
}

// Its projectiles are dangerous on every frame, whatever the Slime is doing.
bool Striking(int) {
    return true;
}

EnemyBlow Blow(int, int) {
    return {5, false};
}

// A projectile that reached the hero bursts where it is.
void Landed(int index, int attack) {
    ProjectileBank& bank = slimes[index].bank;
    if (attack >= 0 && size_t(attack) < bank.projectiles.size()) {
        bank.projectiles[attack].destroyed = 1;
    }
}

}  // namespace

const EnemyKindOps& SlimeKind() {
    static const EnemyKindOps ops = [] {
        EnemyKindOps kind;
        FillRosterOps<slimes, UpdateSlime, true>(kind);
        kind.loadAssets = LoadAssets;
        kind.destroyAssets = DestroyAssets;
        kind.add = AddSlimeEnemy;
        kind.hurtbox = Hurtbox;
        kind.attackCount = AttackCount;
        kind.attackBox = AttackBox;
        kind.striking = Striking;
        kind.blow = Blow;
        kind.landed = Landed;
        kind.draw = DrawAll;
        kind.deadState = SLIME_DEAD;
        return kind;
    }();
    return ops;
}

void AddSlimeEnemy(sf::Vector2f position, int containerId, int region) {
    const sf::Texture* texture = blueTexture.get();
    if (region == REGION_FOREST)
        texture = std::rand() % 2 ? sheet.texture.get() : necroTexture.get();
    Slime slime;
    CreateEnemyBody(slime.body, texture, sheet.anim, position, {0.5f, 1.0f}, containerId,
                    kFullLife);
    slime.region = region;
    InitProjectileBank(slime.bank, region);
    slime.attackTimer = float(std::rand() % 50 + 50) * kAttackPeriod / 100;
    LoadEnemySounds(slime.body, kSounds, 1);
    slimes.push_back(std::move(slime));
}

void InitProjectileBank(ProjectileBank& bank, int region) {
    bank.texture = LoadTexture(kProjectileTextures[region == REGION_FOREST ? 0 : 1]);
    bank.projectiles.clear();
    bank.speed = kProjectileSpeed;
    bank.spin = 0;
    bank.hitbox = sf::RectangleShape({10, 10});
    bank.hitbox.setOrigin(5, 5);
    bank.hitbox.setScale(3, 3);
    bank.hitbox.setFillColor(sf::Color(255, 0, 0, 150));
}

void AddProjectile(ProjectileBank& bank, sf::Vector2f position, float angle) {
    static const AnimData burst = FixedSheet(kProjectileFrame, kBurst);
    Projectile projectile;
    sf::IntRect frame(0, 0, kProjectileFrame.x, kProjectileFrame.y);
    CreateSprite(projectile.sprite, bank.texture.get(), position, frame, {0.5f, 0.5f}, {3, 3});
    if (!bank.texture) {
        projectile.sprite->setOrigin(11, 11);
        projectile.sprite->setScale(3, 3);
        projectile.sprite->setPosition(position);
    }
    projectile.sprite->setRotation(angle);
    float heading = (angle - 90) * std::numbers::pi_v<float> / 180;
    projectile.direction = {std::cos(heading), std::sin(heading)};
    projectile.burst = burst.clips[0];
    projectile.burst.sprite = projectile.sprite.get();
    projectile.burst.sheetSize = SheetSize(projectile.sprite.get());
    bank.projectiles.push_back(std::move(projectile));
}

void UpdateProjectiles(ProjectileBank& bank, float dt) {
    for (size_t i = 0; i < bank.projectiles.size();) {
        Projectile& projectile = bank.projectiles[i];
        if (!projectile.destroyed && TouchesSolid(ProjectileBox(bank, int(i)))) {
            projectile.destroyed = 1;
        }
        if (!projectile.destroyed) {
            projectile.sprite->move(projectile.direction * (float(bank.speed) * dt));
            projectile.sprite->rotate(bank.spin * dt);
        } else {
            UpdateAnimation(projectile.burst, dt);
            if (projectile.burst.finished) {
                DestroyProjectile(bank, int(i));
                continue;
            }
        }
        i++;
    }
}

void DestroyProjectile(ProjectileBank& bank, int index) {
    if (index < 0 || size_t(index) >= bank.projectiles.size()) {
        Log("\nDestroyProjectile error : i not in range\n");
        return;
    }
    bank.projectiles.erase(bank.projectiles.begin() + index);
}

sf::FloatRect ProjectileBox(ProjectileBank& bank, int index) {
    bank.hitbox.setPosition(bank.projectiles[index].sprite->getPosition());
    return bank.hitbox.getGlobalBounds();
}

ProjectileBank& SlimeProjectiles(int index) {
    return slimes[index].bank;
}

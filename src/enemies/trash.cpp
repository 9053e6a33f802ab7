#include "enemies/trash.h"

#include <array>
#include <cmath>
#include <memory>
#include <vector>

#include "common/log.h"
#include "enemies/enemy_body.h"

namespace {

const std::array<const char*, 2> kTextures = {"Assets/Sprites/Enemies/Trash/TrashForest.png",
                                              "Assets/Sprites/Enemies/Trash/TrashCity.png"};
const std::array<const char*, 2> kAnimData = {
    "Assets/Sprites/Enemies/Trash/TrashForestAnimData.txt",
    "Assets/Sprites/Enemies/Trash/TrashCityAnimData.txt"};
const std::array<const char*, 2> kSounds = {"Assets/Sounds/SFX/Enemy/Trash/Trash_Attack.wav",
                                            "Assets/Sounds/SFX/Enemy/Trash/Trash_Death.wav"};
const std::array<AnimClipSpec, 4> kClips = {
    {{"IDLE", 1}, {"WALK", 1}, {"ATTACK", 0, " / Damage Frame : %d"}, {"DEAD", 0}}};

constexpr bool kSheetFacesLeft = true;
constexpr int kFullLife = 6;
constexpr float kPatrolSpeed = 180;
constexpr float kChaseSpeed = 300;
constexpr float kLungeSpeed = 1500;
constexpr float kAttackReach = 200;
enum TrashSound { SOUND_ATTACK = 0, SOUND_DEATH = 1 };

struct Trash {
    EnemyBody body;
    sf::RectangleShape hurtbox;
    float cooldownTimer = 0;
    float cooldown = 0.6f;
    int detected = 0;
};

std::array<TexturePtr, 2> textures;
std::vector<Trash> trashes;
// The probes ahead of a patrolling Trash, made once from the first Trash's hurtbox.
std::unique_ptr<sf::RectangleShape> leftProbe, rightProbe;
sf::RectangleShape attackBox;

bool FacingLeft(const Trash& trash) {
    return !FacesRight(trash.body, kSheetFacesLeft);
}

void Face(Trash& trash, bool right) {
    FaceRight(trash.body, right, kSheetFacesLeft);
}

void CreateProbes(const sf::RectangleShape& hurtbox) {
    float height = hurtbox.getGlobalBounds().height / 3;
    auto probe = [height]() {
        auto shape = std::make_unique<sf::RectangleShape>(sf::Vector2f(3, height));
        shape->setOrigin(1.5f, height / 2);
        shape->setScale(3, 3);
        shape->setFillColor(sf::Color(255, 255, 0, 120));
        return shape;
    };
    leftProbe = probe();
    rightProbe = probe();
}

// Noticing the hero: only inside the arena, and only when facing them until hurt.
bool Detect(Trash& trash, sf::Vector2f target) {
    if (!ContainerContains(target, trash.body.containerId)) {
        trash.detected = 0;
    } else if (!trash.detected) {
        float x = BodyPosition(trash.body).x;
        bool facing = (target.x >= x && !FacingLeft(trash)) || (target.x < x && FacingLeft(trash));
        if (facing || trash.body.life != kFullLife) trash.detected = 1;
    }
    return trash.detected != 0;
}

void StartAttack(Trash& trash) {
    trash.body.armed = 1;
    EnterState(trash.body, TRASH_ATTACK);
    PlaySound(trash.body, SOUND_ATTACK, 1);
}

void UpdateIdle(Trash& trash, float dt, sf::Vector2f target) {
    if (trash.cooldownTimer < trash.cooldown) trash.cooldownTimer += dt;
    if (!Detect(trash, target)) {
        EnterState(trash.body, TRASH_WALK);
        trash.body.armed = 1;
        return;
    }
    if (trash.cooldownTimer < trash.cooldown) return;
    trash.cooldownTimer = 0;
    trash.body.armed = 1;
    if (std::fabs(target.x - BodyPosition(trash.body).x) <= kAttackReach) {
        StartAttack(trash);
    } else {
        EnterState(trash.body, TRASH_WALK);
    }
}

// Patrol speed, turning round where the probe ahead leaves the arena.
float Patrol(Trash& trash) {
    sf::Vector2f position = BodyPosition(trash.body);
    bool left = FacingLeft(trash);
    sf::RectangleShape& probe = left ? *leftProbe : *rightProbe;
    probe.setPosition(position.x + (left ? -40.0f : 40.0f), position.y - 70);
    sf::FloatRect bounds = probe.getGlobalBounds();
    sf::Vector2f edge(left ? bounds.left : bounds.left + bounds.width,
                      bounds.top + bounds.height / 2);
    if (!ContainerContains(edge, trash.body.containerId)) Face(trash, left);
    return left ? -kPatrolSpeed : kPatrolSpeed;
}

void UpdateWalk(Trash& trash, float dt, sf::Vector2f target) {
    float dx = target.x - BodyPosition(trash.body).x;
    float speed = 0;
    if (!Detect(trash, target)) {
        speed = Patrol(trash);
    } else if (std::fabs(dx) <= kAttackReach) {
        StartAttack(trash);
    } else {
        speed = dx > 0 ? kChaseSpeed : -kChaseSpeed;
    }
    trash.body.sprite->move(speed * dt, 0);
    if (Detect(trash, target) && speed != 0) Face(trash, speed > 0);
}

void UpdateAttack(Trash& trash, float dt, sf::Vector2f target) {
    EnemyBody& body = trash.body;
    int frame = CurrentClip(body).currentFrame + 1;
    bool right = target.x > BodyPosition(body).x;
    if (frame == 1) {
        Face(trash, right);
    } else if (AtDamageFrame(body) && body.armed) {
        body.sprite->move((right ? kLungeSpeed : -kLungeSpeed) * dt, 0);
        Face(trash, right);
    }
    if (ClipFinished(body)) {
        EnterState(body, TRASH_IDLE);
        body.armed = 1;
    }
}

void UpdateTrash(Trash& trash, float dt, sf::Vector2f target) {
    EnemyBody& body = trash.body;
    if (body.life < 1 && body.state != TRASH_DEAD) {
        EnterState(body, TRASH_DEAD);
        body.armed = 1;
        PlaySound(body, SOUND_DEATH, 1);
    }
    switch (body.state) {
        case TRASH_IDLE: UpdateIdle(trash, dt, target); break;
        case TRASH_WALK: UpdateWalk(trash, dt, target); break;
        case TRASH_ATTACK: UpdateAttack(trash, dt, target); break;
        default: break;
    }
    if (body.state != TRASH_DEAD) trash.hurtbox.setPosition(BodyPosition(body));
    AdvanceClip(body, dt);
    SoundsFollow(body);
}

void LoadAssets() {
    for (int region = 0; region < 2; region++) textures[region] = LoadTexture(kTextures[region]);
}

void DestroyAssets() {
    trashes.clear();
    for (TexturePtr& texture : textures) texture.reset();
    leftProbe.reset();
    rightProbe.reset();
}

void DrawAll(sf::RenderTarget& target) {
    for (const Trash& trash : trashes) target.draw(*trash.body.sprite);
}

sf::FloatRect Hurtbox(int index) {
    return trashes[index].hurtbox.getGlobalBounds();
}

// The lunge's reach: from the centre line, 55 % of the frame ahead of the Trash.
sf::FloatRect AttackBox(int index, int) {
    const sf::Sprite& sprite = *trashes[index].body.sprite;
    sf::FloatRect bounds = sprite.getGlobalBounds();
    sf::Vector2f size(bounds.width * 0.55f, bounds.height);
    attackBox.setSize(size);
    attackBox.setPosition(bounds.left + bounds.width * 0.5f, bounds.top + bounds.height * 0.5f);
    attackBox.setOrigin(sprite.getScale().x > 0 ? size.x : 0, size.y * 0.5f);
    return attackBox.getGlobalBounds();
}

bool Striking(int index) {
    const EnemyBody& body = trashes[index].body;
    return body.armed && body.state == TRASH_ATTACK && AtDamageFrame(body);
}

EnemyBlow Blow(int, int) {
    return {12, true};
}

}  // namespace

const EnemyKindOps& TrashKind() {
    static const EnemyKindOps ops = [] {
        EnemyKindOps kind;
        FillRosterOps<trashes, UpdateTrash>(kind);
        kind.loadAssets = LoadAssets;
        kind.destroyAssets = DestroyAssets;
        kind.add = AddTrashEnemy;
        kind.hurtbox = Hurtbox;
        kind.attackBox = AttackBox;
        kind.striking = Striking;
        kind.blow = Blow;
        kind.draw = DrawAll;
        kind.deadState = TRASH_DEAD;
        return kind;
    }();
    return ops;
}

void AddTrashEnemy(sf::Vector2f position, int containerId, int region) {
    int look = region == 1 ? 1 : 0;
    AnimData anim;
    if (!ReadAnimData(kAnimData[look], kClips, anim)) {
        Log("Can't Open File : %s\n", kAnimData[look]);
        return;
    }
    Trash trash;
    CreateEnemyBody(trash.body, textures[look].get(), anim, position, {0.5f, 1.0f}, containerId,
                    kFullLife);
    LoadEnemySounds(trash.body, kSounds, 1);
    trash.hurtbox = sf::RectangleShape({25, 45});
    trash.hurtbox.setOrigin(12.5f, 45);
    trash.hurtbox.setScale(3, 3);
    trash.hurtbox.setFillColor(sf::Color(0, 0, 255, 100));
    trash.hurtbox.setPosition(position);
    if (!leftProbe) CreateProbes(trash.hurtbox);
    trashes.push_back(std::move(trash));
}

int TrashState(int index) {
    return trashes[index].body.state;
}

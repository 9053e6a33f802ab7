#include "enemies/trash.h"

#include <array>
#include <cmath>
#include <cstdint>
#include <cstdio>
#include <memory>
#include <vector>

#include "common/drawables.h"
#include "common/log.h"
#include "enemies/enemies.h"
#include "media/animation.h"
#include "media/sound.h"

namespace {

const std::array<const char*, 2> kTextures = {"Assets/Sprites/Enemies/Trash/TrashForest.png",
                                              "Assets/Sprites/Enemies/Trash/TrashCity.png"};
const std::array<const char*, 2> kAnimData = {
    "Assets/Sprites/Enemies/Trash/TrashForestAnimData.txt",
    "Assets/Sprites/Enemies/Trash/TrashCityAnimData.txt"};
const std::array<const char*, 2> kSounds = {"Assets/Sounds/SFX/Enemy/Trash/Trash_Attack.wav",
                                            "Assets/Sounds/SFX/Enemy/Trash/Trash_Death.wav"};

constexpr int kFullLife = 6;
constexpr float kPatrolSpeed = 180;
constexpr float kChaseSpeed = 300;
constexpr float kLungeSpeed = 1500;
constexpr float kAttackReach = 200;
enum TrashSound { SOUND_ATTACK = 0, SOUND_DEATH = 1 };

struct Trash {
    SpritePtr sprite;
    sf::RectangleShape hurtbox;
    int state = TRASH_IDLE;
    sf::Vector2f velocity;
    std::array<Animation, 4> clips;
    int current = TRASH_IDLE;
    float cooldownTimer = 0;
    float cooldown = 0.6f;
    int life = kFullLife;
    int armed = 0;
    std::array<int, 4> damageFrames{};
    int containerId = 0;
    int detected = 0;
    std::array<SoundArray, 2> sounds;
};

std::array<TexturePtr, 2> textures;
std::vector<Trash> trashes;
// The probes ahead of a patrolling Trash, made once from the first Trash's hurtbox.
std::unique_ptr<sf::RectangleShape> leftProbe, rightProbe;
sf::RectangleShape attackBox;

bool FacingLeft(const Trash& trash) {
    return trash.sprite->getScale().x >= 0;
}

void Face(Trash& trash, bool right) {
    trash.sprite->setScale(right ? -3.0f : 3.0f, 3.0f);
}

void Enter(Trash& trash, int state) {
    trash.state = state;
    trash.current = state;
    RestartAnimation(trash.clips[state]);
}

bool ReadAnimData(const char* path, Trash& trash) {
    std::FILE* file = std::fopen(path, "r");
    if (!file) return false;
    sf::Vector2i size, first;
    ReadAnimSize(file, size);
    ReadAnimFirstFrame(file, first);
    const char* labels[4] = {"IDLE", "WALK", "ATTACK", "DEAD"};
    for (int state = 0; state < 4; state++) {
        Animation& clip = trash.clips[state];
        clip.sprite = trash.sprite.get();
        ReadAnimClip(file, labels[state], clip, size, first, state);
        clip.loop = state == TRASH_IDLE || state == TRASH_WALK;
        if (state == TRASH_ATTACK) {
            trash.damageFrames[state] = ReadAnimTail(file, " / Damage Frame : %d");
        }
    }
    std::fclose(file);
    return true;
}

sf::Vector2i ReadFrameSize(const char* path, bool& opened) {
    sf::Vector2i size;
    std::FILE* file = std::fopen(path, "r");
    opened = file != nullptr;
    if (file) {
        ReadAnimSize(file, size);
        std::fclose(file);
    }
    return size;
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
    if (!ContainerContains(target, trash.containerId)) {
        trash.detected = 0;
    } else if (!trash.detected) {
        float x = trash.sprite->getPosition().x;
        bool facing = (target.x >= x && !FacingLeft(trash)) || (target.x < x && FacingLeft(trash));
        if (facing || trash.life != kFullLife) trash.detected = 1;
    }
    return trash.detected != 0;
}

void StartAttack(Trash& trash) {
    trash.armed = 1;
    Enter(trash, TRASH_ATTACK);
    CreateSoundArray(trash.sounds[SOUND_ATTACK], 1);
}

void UpdateIdle(Trash& trash, float dt, sf::Vector2f target) {
    if (trash.cooldownTimer < trash.cooldown) trash.cooldownTimer += dt;
    if (!Detect(trash, target)) {
        Enter(trash, TRASH_WALK);
        trash.armed = 1;
        return;
    }
    if (trash.cooldownTimer < trash.cooldown) return;
    trash.cooldownTimer = 0;
    trash.armed = 1;
    if (std::fabs(target.x - trash.sprite->getPosition().x) <= kAttackReach) {
        StartAttack(trash);
    } else {
        Enter(trash, TRASH_WALK);
    }
}

// Patrol speed, turning round where the probe ahead leaves the arena.
float Patrol(Trash& trash) {
    sf::Vector2f position = trash.sprite->getPosition();
    bool left = FacingLeft(trash);
    sf::RectangleShape& probe = left ? *leftProbe : *rightProbe;
    probe.setPosition(position.x + (left ? -40.0f : 40.0f), position.y - 70);
    sf::FloatRect bounds = probe.getGlobalBounds();
    sf::Vector2f edge(left ? bounds.left : bounds.left + bounds.width,
                      bounds.top + bounds.height / 2);
    if (!ContainerContains(edge, trash.containerId)) {
        trash.sprite->setScale(-trash.sprite->getScale().x, trash.sprite->getScale().y);
    }
    return left ? -kPatrolSpeed : kPatrolSpeed;
}

void UpdateWalk(Trash& trash, float dt, sf::Vector2f target) {
    float dx = target.x - trash.sprite->getPosition().x;
    float speed = 0;
    if (!Detect(trash, target)) {
        speed = Patrol(trash);
    } else if (std::fabs(dx) <= kAttackReach) {
        StartAttack(trash);
    } else {
        speed = dx > 0 ? kChaseSpeed : -kChaseSpeed;
    }
    trash.velocity.x = speed;
    trash.sprite->move(trash.velocity * dt);
    if (Detect(trash, target) && speed != 0) Face(trash, speed > 0);
}

void UpdateAttack(Trash& trash, float dt, sf::Vector2f target) {
    Animation& clip = trash.clips[TRASH_ATTACK];
    int frame = clip.currentFrame + 1;
    float x = trash.sprite->getPosition().x;
    if (frame == 1) {
        Face(trash, target.x > x);
    } else if (frame == trash.damageFrames[TRASH_ATTACK] && trash.armed) {
        bool right = target.x > x;
        trash.sprite->move((right ? kLungeSpeed : -kLungeSpeed) * dt, 0);
        Face(trash, right);
    }
    if (clip.finished) {
        RestartAnimation(clip);
        Enter(trash, TRASH_IDLE);
        trash.armed = 1;
    }
}

void UpdateTrash(Trash& trash, float dt, sf::Vector2f target) {
    if (trash.life < 1 && trash.state != TRASH_DEAD) {
        Enter(trash, TRASH_DEAD);
        trash.armed = 1;
        CreateSoundArray(trash.sounds[SOUND_DEATH], 1);
    }
    switch (trash.state) {
        case TRASH_IDLE: UpdateIdle(trash, dt, target); break;
        case TRASH_WALK: UpdateWalk(trash, dt, target); break;
        case TRASH_ATTACK: UpdateAttack(trash, dt, target); break;
        default: break;
    }
    if (trash.state != TRASH_DEAD) trash.hurtbox.setPosition(trash.sprite->getPosition());
    UpdateAnimation(trash.clips[trash.current], dt);
    for (SoundArray& sound : trash.sounds) UpdateSoundArray(sound, trash.sprite->getPosition());
}

}  // namespace

void LoadTrashAssets() {
    for (int region = 0; region < 2; region++) textures[region] = LoadTexture(kTextures[region]);
}

void DestroyTrashAssets() {
    DestroyAllTrashes();
    for (TexturePtr& texture : textures) texture.reset();
    leftProbe.reset();
    rightProbe.reset();
}

void AddTrashEnemy(sf::Vector2f position, int containerId, int region) {
    int look = region == 1 ? 1 : 0;
    bool opened = false;
    sf::Vector2i frame = ReadFrameSize(kAnimData[look], opened);
    if (!opened) {
        Log("Can't Open File : %s\n", kAnimData[look]);
        return;
    }
    Trash trash;
    sf::IntRect rect(0, 0, frame.x, frame.y);
    CreateSprite(trash.sprite, textures[look].get(), position, rect, {0.5f, 1.0f}, {3, 3});
    if (!textures[look]) {
        trash.sprite->setScale(3, 3);
        trash.sprite->setPosition(position);
    }
    for (int i = 0; i < 2; i++)
        LoadSoundArray(trash.sounds[i], kSounds[i], 100, 0, SOUND_EFFECTS, 1);
    trash.hurtbox = sf::RectangleShape({25, 45});
    trash.hurtbox.setOrigin(12.5f, 45);
    trash.hurtbox.setScale(3, 3);
    trash.hurtbox.setFillColor(sf::Color(0, 0, 255, 100));
    trash.hurtbox.setPosition(position);
    if (!leftProbe) CreateProbes(trash.hurtbox);
    trash.containerId = containerId;
    ReadAnimData(kAnimData[look], trash);
    if (textures[look]) {
        for (Animation& clip : trash.clips) clip.sheetSize = textures[look]->getSize();
    }
    trashes.push_back(std::move(trash));
}

void UpdateTrashes(float dt, sf::Vector2f target) {
    for (Trash& trash : trashes) {
        if (EnemyNearTarget(trash.sprite->getPosition(), target)) UpdateTrash(trash, dt, target);
    }
}

void DrawTrashes(sf::RenderTarget& target) {
    for (const Trash& trash : trashes) target.draw(*trash.sprite);
}

void DestroyAllTrashes() {
    trashes.clear();
}

int TrashCount() {
    return int(trashes.size());
}
sf::Sprite* TrashSprite(int index) {
    return trashes[index].sprite.get();
}
sf::FloatRect TrashHurtbox(int index) {
    return trashes[index].hurtbox.getGlobalBounds();
}

sf::FloatRect TrashAttackBox(int index) {
    const sf::Sprite& sprite = *trashes[index].sprite;
    sf::FloatRect bounds = sprite.getGlobalBounds();
    sf::Vector2f size(bounds.width * 0.55f, bounds.height);
    attackBox.setSize(size);
    attackBox.setPosition(bounds.left + bounds.width * 0.5f, bounds.top + bounds.height * 0.5f);
    attackBox.setOrigin(sprite.getScale().x > 0 ? size.x : 0, size.y * 0.5f);
    return attackBox.getGlobalBounds();
}

int* TrashLife(int index) {
    return &trashes[index].life;
}
int TrashContainer(int index) {
    return trashes[index].containerId;
}
int TrashState(int index) {
    return trashes[index].state;
}

bool TrashStriking(int index) {
    const Trash& trash = trashes[index];
    int frame = trash.clips[trash.current].currentFrame + 1;
    return trash.armed && trash.state == TRASH_ATTACK &&
           std::uint16_t(frame) == std::uint16_t(trash.damageFrames[trash.state]);
}

void DisarmTrash(int index) {
    trashes[index].armed = 0;
}

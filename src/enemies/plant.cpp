#include "enemies/plant.h"

#include <array>
#include <cmath>
#include <vector>

#include "enemies/enemy_body.h"
#include "world/room_draw.h"

namespace {

const char* const kTexture = "Assets/Sprites/Enemies/Plant/PlantTrap.png";
const char* const kAnimData = "Assets/Sprites/Enemies/Plant/PlantAnimData.txt";
const std::array<const char*, 2> kSounds = {"Assets/Sounds/SFX/Enemy/Plant/Plant_Attack.wav",
                                            "Assets/Sounds/SFX/Enemy/Plant/Plant_Close.wav"};
const std::array<AnimClipSpec, 3> kClips = {
    {{"IDLE", 1}, {"ATTACK", 0, " / Damage Frame : %d"}, {"CLOSE", 0}}};

// The sprite always shows a 168 x 146 frame, with the ground line 124.1 texels down: the roots
// below it are hidden by the floor tiles drawn over the back pass.
const sf::Vector2i kFrame(168, 146);
const sf::Vector2f kOrigin(0.5f, 124.1f / 146.0f);
// The snap triggers when the hero's body centre comes this close to the Plant's root.
constexpr float kReachX = 110;
constexpr float kReachY = 130;
enum PlantSound { SOUND_SNAP = 0, SOUND_CLOSE = 1 };

struct Plant {
    EnemyBody body;
    sf::RectangleShape hurtbox;  // empty: the hero's sword passes through
};

TexturePtr texture;
std::vector<Plant> plants;
sf::RectangleShape attackBox;

bool WithinReach(const Plant& plant, sf::Vector2f target) {
    sf::Vector2f position = BodyPosition(plant.body);
    return std::fabs(position.x - target.x) < kReachX && std::fabs(position.y - target.y) < kReachY;
}

void Snap(Plant& plant) {
    EnterState(plant.body, PLANT_ATTACK);
    plant.body.armed = 1;
    PlaySound(plant.body, SOUND_SNAP, 1);
}

void UpdatePlant(Plant& plant, float dt, sf::Vector2f target) {
    EnemyBody& body = plant.body;
    switch (body.state) {
        case PLANT_IDLE:
            if (WithinReach(plant, target)) Snap(plant);
            break;
        case PLANT_ATTACK:
            if (ClipFinished(body)) {
                EnterState(body, PLANT_CLOSE);
                body.armed = 1;
                PlaySound(body, SOUND_CLOSE, 1);
            }
            break;
        case PLANT_CLOSE:
            if (ClipFinished(body)) {
                EnterState(body, PLANT_IDLE);
                body.armed = 1;
                // Rearmed: a hero still standing on it is bitten again at once.
                if (WithinReach(plant, target)) Snap(plant);
            }
            break;
        default: break;
    }
    plant.hurtbox.setPosition(BodyPosition(body));
    AdvanceClip(body, dt);
    SoundsFollow(body);
}

void LoadAssets() {
    texture = LoadTexture(kTexture);
    attackBox.setFillColor(sf::Color(255, 0, 0, 100));
}

void DestroyAssets() {
    plants.clear();
    texture.reset();
}

sf::FloatRect Hurtbox(int index) {
    return plants[index].hurtbox.getGlobalBounds();
}

// The jaws: half the frame's width around its middle, from a little below the top.
sf::FloatRect AttackBox(int index, int) {
    sf::FloatRect bounds = plants[index].body.sprite->getGlobalBounds();
    attackBox.setScale(1, 1);
    attackBox.setOrigin(0, 0);
    attackBox.setSize({bounds.width * 0.5f, bounds.height / 1.3f});
    attackBox.setPosition(bounds.left + bounds.width * 0.25f + bounds.width * 0.005f,
                          bounds.top + bounds.height / 3.6f);
    return attackBox.getGlobalBounds();
}

void DrawAll(sf::RenderTarget& target) {
    for (const Plant& plant : plants) target.draw(*plant.body.sprite);
    if (!DebugOverlay()) return;
    for (int i = 0; i < int(plants.size()); i++) {
        target.draw(plants[i].hurtbox);
        AttackBox(i, 0);
        target.draw(attackBox);
    }
}

bool Striking(int index) {
    const EnemyBody& body = plants[index].body;
    return body.armed && body.state == PLANT_ATTACK && AtDamageFrame(body);
}

// The snap goes through any parry.
EnemyBlow Blow(int, int) {
    return {100, false};
}

}  // namespace

const EnemyKindOps& PlantKind() {
    static const EnemyKindOps ops = [] {
        EnemyKindOps kind;
        FillRosterOps<plants, UpdatePlant>(kind);
        kind.loadAssets = LoadAssets;
        kind.destroyAssets = DestroyAssets;
        kind.add = [](sf::Vector2f position, int containerId, int) {
            AddPlantEnemy(position, containerId);
        };
        kind.hurtbox = Hurtbox;
        kind.attackBox = AttackBox;
        kind.striking = Striking;
        kind.blow = Blow;
        kind.draw = DrawAll;
        kind.deadState = -1;
        kind.pushedOut = false;
        return kind;
    }();
    return ops;
}

void AddPlantEnemy(sf::Vector2f position, int containerId) {
    AnimData anim;
    ReadEnemyAnim(kAnimData, kClips, anim);
    anim.frameSize = kFrame;
    Plant plant;
    CreateEnemyBody(plant.body, texture.get(), anim, position, kOrigin, containerId, 0);
    LoadEnemySounds(plant.body, kSounds, 0);
    plant.hurtbox = sf::RectangleShape({0, 0});
    plant.hurtbox.setScale(3, 3);
    plant.hurtbox.setFillColor(sf::Color(0, 0, 100, 100));
    plant.hurtbox.setPosition(position);
    plants.push_back(std::move(plant));
}

int PlantState(int index) {
    return plants[index].body.state;
}

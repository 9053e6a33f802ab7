#include "player/cloud.h"

#include <algorithm>
#include <array>
#include <vector>

#include "common/drawables.h"
#include "common/log.h"
#include "media/animation.h"
#include "media/sound.h"
#include "player/player.h"
#include "player/save.h"
#include "world/room_draw.h"

namespace {

const char* const kSheetPath = "Assets/Sprites/Player/PlatformCapacity-SpriteSheet.png";
const char* const kAnimDataPath = "Assets/Sprites/Player/PlatformCapacityAnimData.txt";
const char* const kCreationSound = "Assets/Sounds/SFX/Player/Capacity/CloudCreation.wav";
const char* const kDestructionSound = "Assets/Sounds/SFX/Player/Capacity/CloudDestruction.wav";

// Only the held cloud loops; forming and dissolving play once.
const std::array<AnimClipSpec, CLOUD_STATE_COUNT> kClips = {{
    {"CREATION", 0},
    {"STATIC", 1},
    {"DESTRUCTION", 0},
}};

constexpr float kLifetime = 3.0f;
// The sprite sits this far above the feet, so the box (this far below the sprite's top) starts
// exactly at the feet.
constexpr float kBoxDrop = 15.0f;

struct Cloud {
    SpritePtr sprite;
    int cloudState = CLOUD_CREATION;
    std::array<Animation, CLOUD_STATE_COUNT> clips;
    float lifeTimer = 0;
    float lifetime = kLifetime;
};

struct CloudModule {
    TexturePtr texture;
    sf::Vector2i frameSize;
    std::vector<Animation> clips;  // the file's clips, copied onto each cloud's sprite
    sf::RectangleShape cloudBox;   // one box, placed on a cloud whenever it is tested
    SoundArray creationSound, destructionSound;
    std::vector<Cloud> clouds;
    bool roomUnderFeet = false;  // the room's down sensor touched, before the clouds counted
    bool created = false;
};

CloudModule module;

void LoadCloudAnimations() {
    AnimData data;
    module.clips.assign(CLOUD_STATE_COUNT, Animation());
    for (int i = 0; i < CLOUD_STATE_COUNT; i++) module.clips[i].loop = kClips[i].loop;
    if (!ReadAnimData(kAnimDataPath, kClips, data)) {
        Log("FILE [%s] Cant' be open", kAnimDataPath);
        return;
    }
    module.frameSize = data.frameSize;
    module.clips = data.clips;
}

void CreateCloudBox() {
    sf::Vector2f frame(module.frameSize);
    module.cloudBox = sf::RectangleShape({0.7f * frame.x, 0.7f * frame.y});
    module.cloudBox.setOrigin(0.35f * frame.x, 0);
    module.cloudBox.setScale(3, 3);
    module.cloudBox.setFillColor(sf::Color(255, 0, 0, 100));
}

sf::FloatRect PlaceBox(const Cloud& cloud) {
    module.cloudBox.setPosition(cloud.sprite->getPosition() + sf::Vector2f(0, kBoxDrop));
    return module.cloudBox.getGlobalBounds();
}

bool Live(const Cloud& cloud) {
    return cloud.cloudState != CLOUD_DESTRUCTION;
}

void EnterState(Cloud& cloud, int state) {
    cloud.cloudState = state;
    RestartAnimation(cloud.clips[state]);
}

void Dissolve(Cloud& cloud) {
    if (!Live(cloud)) return;
    EnterState(cloud, CLOUD_DESTRUCTION);
    CreateSoundArray(module.destructionSound, 0);
}

// Forming, then holding for its lifetime, then dissolving and gone.
void AgeClouds(float dt) {
    for (int i = int(module.clouds.size()) - 1; i >= 0; i--) {
        Cloud& cloud = module.clouds[size_t(i)];
        Animation& clip = cloud.clips[cloud.cloudState];
        UpdateAnimation(clip, dt);
        if (cloud.cloudState == CLOUD_CREATION && clip.finished) {
            EnterState(cloud, CLOUD_STATIC);
        } else if (cloud.cloudState == CLOUD_STATIC) {
            cloud.lifeTimer = std::min(cloud.lifeTimer + dt, cloud.lifetime);
            if (cloud.lifeTimer >= cloud.lifetime) Dissolve(cloud);
        } else if (cloud.cloudState == CLOUD_DESTRUCTION && clip.finished) {
            RemoveCloud(i);
        }
    }
}

// A cloud is for one stand: it goes as soon as the airborne hero is off it, and a drop-through
// takes every cloud with it.
void DissolveLeftClouds() {
    if (module.clouds.empty()) return;
    Player& player = GetPlayer();
    if (!PlayerStanding()) {
        sf::FloatRect body = PlayerBodyBounds();
        for (Cloud& cloud : module.clouds) {
            if (Live(cloud) && !PlaceBox(cloud).intersects(body)) Dissolve(cloud);
        }
    }
    bool dropping = DownHeld() && JumpHeld();
    for (int i = int(module.clouds.size()) - 1; i >= 0; i--) {
        if (!dropping && !player.dropThrough) continue;
        player.dropThrough = 1;
        Dissolve(module.clouds[size_t(i)]);
    }
}

// Standing on the room clears the flag; standing on a cloud sets it; in the air it stays, so a
// hero who left a cloud must touch the room before making another.
void UpdateOnCloud() {
    Player& player = GetPlayer();
    if (!PlayerStanding()) return;
    player.body.onCloud = module.roomUnderFeet ? 0 : 1;
    if (DownHeld() && JumpHeld()) player.dropThrough = 1;
}

const Cloud* At(int index) {
    if (index < 0 || size_t(index) >= module.clouds.size()) return nullptr;
    return &module.clouds[size_t(index)];
}

}  // namespace

void CreateCloudModule() {
    DestroyCloudModule();
    module.texture = LoadTexture(kSheetPath);
    LoadCloudAnimations();
    CreateCloudBox();
    LoadSoundArray(module.creationSound, kCreationSound, 100, 0, SOUND_EFFECTS, 0);
    LoadSoundArray(module.destructionSound, kDestructionSound, 100, 0, SOUND_EFFECTS, 0);
    module.created = true;
}

void DestroyCloudModule() {
    module.clouds.clear();
    FreeSoundArray(module.creationSound);
    FreeSoundArray(module.destructionSound);
    module = CloudModule();
}

void TryCreateCloud() {
    Player& player = GetPlayer();
    if (!module.created || !player.created) return;
    if (PlayerStanding() || !Save().abilities.CanCreatePlatform || player.body.onCloud) return;
    if (std::any_of(module.clouds.begin(), module.clouds.end(), Live)) return;
    AddCloud(GetPlayerPosition());
    player.body.vy = 0;
    player.body.onCloud = 1;
    player.body.jumpRequest = 0;
}

void AddCloud(sf::Vector2f feet) {
    if (!module.created) return;
    Cloud& cloud = module.clouds.emplace_back();
    sf::IntRect frame(0, 0, module.frameSize.x, module.frameSize.y);
    sf::Vector2f top = feet - sf::Vector2f(0, kBoxDrop);
    CreateSprite(cloud.sprite, module.texture.get(), top, frame, {0.5f, 0.0f}, {3, 3});
    cloud.sprite->setPosition(top);  // without its sheet the cloud still holds the hero
    std::vector<Animation> clips = module.clips;
    BindClips(clips, cloud.sprite.get(), SheetSize(cloud.sprite.get()));
    std::copy(clips.begin(), clips.end(), cloud.clips.begin());
    EnterState(cloud, CLOUD_CREATION);
    CreateSoundArray(module.creationSound, 0);
}

void RemoveCloud(int index) {
    if (!At(index)) return;
    module.clouds.erase(module.clouds.begin() + index);
}

void StandOnClouds() {
    Player& player = GetPlayer();
    int& down = player.body.blocked[CONTACT_DOWN];
    module.roomUnderFeet = down != 0;
    sf::FloatRect body = PlayerBodyBounds();
    for (const Cloud& cloud : module.clouds) {
        if (Live(cloud) && body.intersects(PlaceBox(cloud))) down = 1;
    }
}

void UpdateClouds(float dt) {
    if (!module.created) return;
    AgeClouds(dt);
    DissolveLeftClouds();
    UpdateOnCloud();
    UpdateSoundArray(module.creationSound, GetPlayerPosition());
    UpdateSoundArray(module.destructionSound, GetPlayerPosition());
}

void DrawClouds(sf::RenderTarget& target) {
    for (const Cloud& cloud : module.clouds) target.draw(*cloud.sprite);
    if (!DebugOverlay()) return;
    for (const Cloud& cloud : module.clouds) {
        if (!Live(cloud)) continue;
        PlaceBox(cloud);
        target.draw(module.cloudBox);
    }
}

int CloudCount() {
    return int(module.clouds.size());
}

int GetCloudState(int index) {
    const Cloud* cloud = At(index);
    return cloud ? cloud->cloudState : -1;
}

sf::FloatRect GetCloudBox(int index) {
    const Cloud* cloud = At(index);
    return cloud ? PlaceBox(*cloud) : sf::FloatRect();
}

const sf::Sprite* GetCloudSprite(int index) {
    const Cloud* cloud = At(index);
    return cloud ? cloud->sprite.get() : nullptr;
}

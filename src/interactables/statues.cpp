#include "interactables/statues.h"

#include <new>

#include "app/game.h"
#include "common/log.h"
#include "interactables/checkpoint_menu.h"
#include "player/player.h"
#include "player/save.h"
#include "world/room.h"
#include "world/room_lifecycle.h"

namespace {

const char* const kInteractionSpawn = "Interaction spawn";

struct StatuePictures {
    const char* statue;
    const char* outline;
};

const StatuePictures kPictures[] = {
    {"Assets/Sprites/Objects/Checkpoint/Forest-Statue.png",
     "Assets/Sprites/Objects/Checkpoint/Forest-StatueOutline.png"},
    {"Assets/Sprites/Objects/Checkpoint/City-Statue.png",
     "Assets/Sprites/Objects/Checkpoint/City-StatueOutline.png"},
};

std::vector<Statue> statues;
TexturePtr statueTexture;
TexturePtr outlineTexture;

}  // namespace

void LoadStatueTextures(int region) {
    statues.clear();  // no sprite may outlive the pictures it shows
    statueTexture.reset();
    outlineTexture.reset();
    if (region != REGION_FOREST && region != REGION_CITY) return;
    statueTexture = LoadTexture(kPictures[region].statue);
    outlineTexture = LoadTexture(kPictures[region].outline);
}

void AddStatue(sf::Vector2f position) {
    try {
        statues.emplace_back();
    } catch (const std::bad_alloc&) {
        LogError("Erreur realloc dans AddNomadEnemy\n");
        return;
    }
    Statue& statue = statues.back();
    CreateSprite(statue.statueSprite, statueTexture.get(), position, {0.5f, 1.0f}, {3, 3});
    CreateSprite(statue.outlineSprite, outlineTexture.get(), position, {0.5f, 1.0f}, {3, 3});
}

void AddRoomStatues(int roomNumber) {
    if (roomNumber == 1) return;
    int count = int(CurrentRoom().checkpointSpawns.size());
    for (int id = 0; id < count; id++) AddStatue(CheckpointSpawnPosition(id));
}

void DestroyStatues() {
    statues.clear();
    statueTexture.reset();
    outlineTexture.reset();
}

const std::vector<Statue>& Statues() {
    return statues;
}

void UpdateStatueOutlines(const sf::FloatRect& body) {
    for (const Trigger& trigger : CurrentRoom().triggers) {
        if (trigger.name != kInteractionSpawn) continue;
        if (trigger.value < 0 || trigger.value >= int(statues.size())) continue;
        bool touched = trigger.shape->getGlobalBounds().intersects(body);
        statues[trigger.value].showOutline = touched ? 1 : 0;
    }
}

void DrawStatues(sf::RenderTarget& target) {
    for (const Statue& statue : statues) {
        if (statue.showOutline && statue.outlineSprite) target.draw(*statue.outlineSprite);
        if (statue.statueSprite) target.draw(*statue.statueSprite);
    }
}

void Rest() {
    sf::FloatRect body = PlayerBodyBounds();
    for (const Trigger& trigger : CurrentRoom().triggers) {
        if (!trigger.shape->getGlobalBounds().intersects(body)) continue;
        if (trigger.name != kInteractionSpawn) continue;
        Log("OUI !");
        WriteCheckpointSave(trigger.value, CurrentRoomNumber());
        GetPlayer().life = 100;
        const OverlayFlags& flags = Overlays();
        if (!flags.checkpointMenuOpen && !flags.consoleOpen) {
            OpenCheckpointMenu(CheckpointSpawnPosition(trigger.value));
        }
    }
}

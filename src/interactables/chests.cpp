#include "interactables/chests.h"

#include <cstdio>
#include <cstdlib>
#include <new>

#include "common/ease.h"
#include "common/log.h"
#include "hud/explanation_panel.h"
#include "player/player.h"
#include "world/room.h"

namespace {

const char* const kChestTrigger = "Chest trigger";
const char* const kItemPictures[ABILITY_COUNT] = {
    "Assets/Sprites/Objects/PlayerCapacity/Boot.png",
    "Assets/Sprites/Objects/PlayerCapacity/WingBoot.png",
    "Assets/Sprites/Objects/PlayerCapacity/Cloud.png",
};

constexpr int kFrameWidth = 37, kFrameHeight = 29;
constexpr float kRiseSeconds = 1.0f, kFlySeconds = 1.0f;

std::vector<Chest> chests;
TexturePtr chestTexture, outlineTexture;
TexturePtr itemTextures[ABILITY_COUNT];

void BindChestClips(Chest& chest) {
    sf::Vector2u sheet = SheetSize(chest.chestSprite.get());
    chest.clips[CHEST_CLOSED] = {
        chest.chestSprite.get(), sheet, 1, 1, {0, 0, kFrameWidth, kFrameHeight}};
    chest.clips[CHEST_OPENING] = {
        chest.chestSprite.get(), sheet, 2, 6, {0, kFrameHeight, kFrameWidth, kFrameHeight}};
}

void BuildChest(Chest& chest, const ChestSpawn& spawn) {
    sf::Vector2f scale(spawn.right ? 3.0f : -3.0f, 3.0f);
    sf::IntRect closed(0, 0, kFrameWidth, kFrameHeight);
    CreateSprite(chest.chestSprite, chestTexture.get(), spawn.position, closed,
                 {0.5f, 27.55f / kFrameHeight}, scale);
    CreateSprite(chest.outlineSprite, outlineTexture.get(), spawn.position, {0.49f, 0.95f}, scale);
    chest.abilityType = spawn.ability;
    BindChestClips(chest);
}

bool TouchesChestTrigger(const sf::FloatRect& body) {
    for (const Trigger& trigger : CurrentRoom().triggers) {
        if (trigger.name == kChestTrigger && trigger.shape->getGlobalBounds().intersects(body)) {
            return true;
        }
    }
    return false;
}

// The chest's height on screen, whichever way it faces.
float ChestHeight(const Chest& chest) {
    return chest.chestSprite ? chest.chestSprite->getGlobalBounds().height : 0;
}

void Open(Chest& chest) {
    chest.opened = 1;
    chest.animState = CHEST_OPENING;
    RestartAnimation(chest.clips[CHEST_OPENING]);
    sf::Vector2f at = chest.chestSprite->getPosition();
    at.y -= 0.5f * ChestHeight(chest);
    int type = chest.abilityType;
    const sf::Texture* texture =
        type >= 0 && type < ABILITY_COUNT ? itemTextures[type].get() : nullptr;
    CreateSprite(chest.itemSprite, texture, at, {0.5f, 0.5f}, {3, 3});
    chest.rise = Tween();
    chest.fly = Tween();
    chest.itemActive = 1;
}

// Up out of the chest, then into the hero, whose position is read every update.
void MoveItem(Chest& chest, float dt, sf::Vector2f playerPosition) {
    sf::Sprite& item = *chest.itemSprite;
    sf::Vector2f top = chest.chestSprite->getPosition();
    top.y -= 1.5f * ChestHeight(chest);
    if (!TweenPosition(item, top, kRiseSeconds, EASE_CUBIC_OUT, dt, chest.rise)) return;
    sf::Vector2f hero(playerPosition.x, playerPosition.y - 1.5f * item.getGlobalBounds().height);
    if (!TweenPosition(item, hero, kFlySeconds, EASE_CUBIC_IN, dt, chest.fly)) return;
    chest.itemSprite.reset();
    chest.itemActive = 0;
    ShowAbilityExplanation(chest.abilityType);
}

}  // namespace

void CreateChests() {
    DestroyChests();
    const std::vector<ChestSpawn>& spawns = CurrentRoom().chestSpawns;
    if (spawns.empty()) return;
    chestTexture = LoadTexture("Assets/Sprites/Objects/Chest.png");
    outlineTexture = LoadTexture("Assets/Sprites/Objects/ChestOutline.png");
    for (int type = 0; type < ABILITY_COUNT; type++) {
        itemTextures[type] = LoadTexture(kItemPictures[type]);
    }
    try {
        chests.resize(spawns.size());
    } catch (const std::bad_alloc&) {
        LogError("Chest list alloc failed !\n");
        std::exit(1);
    }
    for (size_t i = 0; i < spawns.size(); i++) BuildChest(chests[i], spawns[i]);
}

void DestroyChests() {
    chests.clear();
    chestTexture.reset();
    outlineTexture.reset();
    for (TexturePtr& texture : itemTextures) texture.reset();
}

const std::vector<Chest>& Chests() {
    return chests;
}

void UpdateChestOutlines(const sf::FloatRect& body) {
    bool touched = TouchesChestTrigger(body);
    for (Chest& chest : chests) chest.showOutline = touched && !chest.opened ? 1 : 0;
}

void OpenChests() {
    if (!TouchesChestTrigger(PlayerBodyBounds())) return;
    for (Chest& chest : chests) {
        if (!chest.opened) Open(chest);
    }
}

void UpdateChests(float dt, sf::Vector2f playerPosition) {
    for (Chest& chest : chests) {
        UpdateAnimation(chest.clips[chest.animState], dt);
        if (chest.animState == CHEST_OPENING && chest.itemActive && chest.itemSprite) {
            MoveItem(chest, dt, playerPosition);
        }
    }
}

void DrawChests(sf::RenderTarget& target) {
    for (const Chest& chest : chests) {
        if (chest.showOutline && chest.outlineSprite) target.draw(*chest.outlineSprite);
        if (chest.chestSprite) target.draw(*chest.chestSprite);
        if (chest.itemSprite) target.draw(*chest.itemSprite);
    }
}

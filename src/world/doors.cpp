#include "world/doors.h"

#include <algorithm>

#include "common/ease.h"
#include "common/motion.h"
#include "world/room.h"
#include "world/tiled.h"

namespace {

struct DoorSprite {
    std::unique_ptr<CombinedSprite> picture;
    Tween tween;
    int closing = 0;
    int opening = 0;
};

TexturePtr columnTexture, baseTexture;
std::vector<DoorSprite> doorSprites;
int baseline = 0;

constexpr float kCloseDuration = 0.8f;
constexpr float kOpenDuration = 1.0f;

std::vector<Door*> AllDoors() {
    std::vector<Door*> doors;
    for (DoorList& list : CurrentRoom().doorLists) {
        for (Door& door : list.doors) doors.push_back(&door);
    }
    return doors;
}

void SetCollision(const Door& door, int active) {
    auto& collisions = CurrentRoom().collisions;
    if (door.collisionIndex >= 0 && door.collisionIndex < int(collisions.size())) {
        collisions[door.collisionIndex].active = active;
    }
}

// Moves a door picture towards its goal with an eased tween; returns 1 when it got there.
int SlideDoor(DoorSprite& sprite, sf::Vector2f goal, float duration, int easing, float dt) {
    int done = TweenPosition(*sprite.picture->sprite, goal, duration, easing, dt, sprite.tween);
    if (done) sprite.tween = Tween();
    return done;
}

void UpdateBaseline(int deadEnemies) {
    const auto& lists = CurrentRoom().doorLists;
    bool anyTriggered = std::any_of(lists.begin(), lists.end(),
                                    [](const DoorList& list) { return list.triggered != 0; });
    if (anyTriggered) return;
    bool allIdle = std::all_of(lists.begin(), lists.end(), [](const DoorList& list) {
        return !list.opened && !list.triggered;
    });
    baseline = allIdle ? deadEnemies : 0;
}

}  // namespace

void BuildDoors(const TiledLayer& layer, float scale, std::vector<DoorList>& lists) {
    for (const TiledLayer& group : layer.layers) {
        DoorList list;
        list.enemyToKill = PropertyInt(FindProperty(group.properties, "enemyToKill"));
        list.id = PropertyInt(FindProperty(group.properties, "id"));
        for (const TiledLayer& child : group.layers) {
            Door door;
            for (const TiledObject& object : child.objects) {
                if (object.point) continue;
                door.shape = std::make_shared<sf::RectangleShape>(
                    sf::Vector2f(object.width * scale, object.height * scale));
                door.shape->setPosition(object.x * scale, object.y * scale);
                door.shape->setFillColor(sf::Color(255, 0, 0, 100));
                door.closed = PropertyInt(FindProperty(object.properties, "isClosed"));
            }
            if (door.shape) list.doors.push_back(door);
        }
        lists.push_back(std::move(list));
    }
}

void CreateDoorSprites(int region) {
    FreeDoorSprites();
    const char* column = region == REGION_CITY ? "Assets/Sprites/Objects/Door/City-Door.png"
                                               : "Assets/Sprites/Objects/Door/Forest-Door.png";
    const char* base = region == REGION_CITY
                           ? "Assets/Sprites/Objects/Door/City-DoorDownPart.png"
                           : "Assets/Sprites/Objects/Door/Forest-DoorDownPart.png";
    columnTexture = LoadTexture(column);
    baseTexture = LoadTexture(base);
    if (columnTexture) columnTexture->setRepeated(true);
    for (Door* door : AllDoors()) {
        sf::FloatRect bounds = door->shape->getGlobalBounds();
        sf::Vector2f anchor(bounds.left + bounds.width / 2, bounds.top);
        SpritePtr basePiece, columnPiece;
        CreateSprite(basePiece, baseTexture.get(), anchor, {0.5f, 1.0f}, {3, 3});
        float baseHeight = basePiece->getGlobalBounds().height;
        int baseTextureHeight = baseTexture ? int(baseTexture->getSize().y) : 0;
        int columnWidth = columnTexture ? int(columnTexture->getSize().x) : 0;
        sf::IntRect rect(0, 0, columnWidth, int(bounds.height / 3) - baseTextureHeight);
        CreateSprite(columnPiece, columnTexture.get(), {anchor.x, anchor.y - baseHeight}, rect,
                     {0.5f, 1.0f}, {3, 3});
        DoorSprite sprite;
        sprite.picture = std::make_unique<CombinedSprite>(
            CombineSprites(columnPiece, basePiece, sf::Color::Transparent, false));
        sf::Sprite& picture = *sprite.picture->sprite;
        sf::FloatRect local = picture.getLocalBounds();
        picture.setOrigin(local.width / 2, local.height);
        picture.setPosition(anchor);
        doorSprites.push_back(std::move(sprite));
    }
}

void CheckLockedDoorTriggers(const sf::FloatRect& hitbox) {
    Room& room = CurrentRoom();
    for (const Trigger& trigger : room.triggers) {
        if (trigger.name != "Locked Door trigger") continue;
        if (!trigger.shape->getGlobalBounds().intersects(hitbox)) continue;
        int index = 0;
        for (DoorList& list : room.doorLists) {
            bool locks =
                list.id == trigger.value && !list.opened && !list.triggered && !list.doors.empty();
            for (Door& door : list.doors) {
                if (locks) {
                    door.closed = 1;
                    if (index < int(doorSprites.size())) doorSprites[index].closing = 1;
                    SetCollision(door, 1);
                }
                index++;
            }
            if (locks) list.triggered = 1;
        }
    }
}

void UpdateDoors(int deadEnemies, float dt) {
    UpdateBaseline(deadEnemies);
    Room& room = CurrentRoom();
    int index = 0;
    for (DoorList& list : room.doorLists) {
        if (list.triggered && list.kills >= list.enemyToKill) {
            for (size_t d = 0; d < list.doors.size(); d++) {
                if (index + int(d) < int(doorSprites.size())) doorSprites[index + d].opening = 1;
                list.doors[d].closed = 0;
                SetCollision(list.doors[d], 0);
            }
            list.opened = 1;
            list.triggered = 0;
        }
        int used = 0;
        for (const DoorList& other : room.doorLists) used += other.opened ? other.enemyToKill : 0;
        if (list.triggered) list.kills = std::max(0, (deadEnemies - baseline) - used);
        index += int(list.doors.size());
    }
    std::vector<Door*> doors = AllDoors();
    for (size_t i = 0; i < doors.size() && i < doorSprites.size(); i++) {
        DoorSprite& sprite = doorSprites[i];
        sf::FloatRect bounds = doors[i]->shape->getGlobalBounds();
        float x = bounds.left + bounds.width / 2;
        if (sprite.closing) {
            if (SlideDoor(sprite, {x, bounds.top + bounds.height}, kCloseDuration, EASE_BOUNCE_OUT,
                          dt)) {
                sprite.closing = 0;
            }
        } else if (sprite.opening) {
            if (SlideDoor(sprite, {x, bounds.top}, kOpenDuration, EASE_CUBIC_IN, dt)) {
                sprite.opening = 0;
            }
        }
    }
}

void DrawDoors(sf::RenderTarget& target) {
    for (const DoorSprite& sprite : doorSprites) {
        if (sprite.picture && sprite.picture->sprite) target.draw(*sprite.picture->sprite);
    }
}

void FreeDoorSprites() {
    doorSprites.clear();
    columnTexture.reset();
    baseTexture.reset();
}

int DoorKillBaseline() {
    return baseline;
}
void ResetDoorKillBaseline() {
    baseline = 0;
}

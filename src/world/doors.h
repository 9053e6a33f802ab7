// Locked doors: stepping into a lock trigger slides a group's doors down and makes them solid;
// enough kills in the room since then slide them up again.
#pragma once

#include <SFML/Graphics.hpp>
#include <memory>
#include <vector>

#include "common/motion.h"

struct TiledLayer;

struct Door {
    std::shared_ptr<sf::RectangleShape> shape;  // also the door's entry in the room's collisions
    int kind = 0;
    int closed = 0;
    int collisionIndex = -1;
};

struct DoorList {
    int opened = 0;
    int triggered = 0;
    std::vector<Door> doors;
    int enemyToKill = 0;
    int kills = 0;
    int id = 0;
};

// Reads the "Door group" layer of a map (scale: map px to world px).
void BuildDoors(const TiledLayer& layer, float scale, std::vector<DoorList>& lists);
// The door pictures of the room's region, raised above their rectangles.
void CreateDoorSprites(int region);
void CheckLockedDoorTriggers(const sf::FloatRect& hitbox);
void UpdateDoors(int deadEnemies, float dt);
void DrawDoors(sf::RenderTarget& target);
void FreeDoorSprites();

// The kills counted before the current lock (kept across rooms).
int DoorKillBaseline();
void ResetDoorKillBaseline();

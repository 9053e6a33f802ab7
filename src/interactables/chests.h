// Chests: each holds one ability item (boots: the dash, winged boots: the run, a cloud: the cloud
// platform). Standing at a "Chest trigger" outlines the closed chests; INTERACT there opens them:
// the lid swings back, the item rises out, flies into the hero, and the ability's panel opens,
// which grants and saves it. A chest's opened state lasts while its room stays loaded.
#pragma once

#include <SFML/Graphics.hpp>
#include <array>
#include <vector>

#include "common/drawables.h"
#include "common/motion.h"
#include "media/animation.h"

enum ChestClip { CHEST_CLOSED = 0, CHEST_OPENING = 1 };

struct Chest {
    SpritePtr chestSprite;
    SpritePtr outlineSprite;
    int opened = 0;
    int animState = CHEST_CLOSED;
    std::array<Animation, 2> clips;
    int showOutline = 0;
    int abilityType = 0;
    SpritePtr itemSprite;  // from the opening until the item reaches the hero
    int itemActive = 0;
    Tween rise;  // 1 s, cubic out, up out of the chest
    Tween fly;   // 1 s, cubic in, homing in on the hero
};

// Room load, after the room's data: one closed chest per chest entry of the room, and the
// pictures they show (the previous room's are released).
void CreateChests();
// Room cleanup; safe to call twice.
void DestroyChests();
const std::vector<Chest>& Chests();

// Every game update: the closed chests are outlined while the body touches a chest trigger.
void UpdateChestOutlines(const sf::FloatRect& body);
// The chest part of the INTERACT action (the hero standing): every closed chest of the room
// opens when the body touches a chest trigger.
void OpenChests();
// Every game update: the lids' clips, and each item's rise then flight to the hero's chest
// height; on arrival the item is gone and its ability's panel opens.
void UpdateChests(float dt, sf::Vector2f playerPosition);
// With the room's objects, after the statues: outline, chest, item.
void DrawChests(sf::RenderTarget& target);

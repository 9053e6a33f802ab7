// Checkpoint statues: one for each checkpoint of the room, outlined while the hero touches its
// "Interaction spawn" trigger. Resting there writes the checkpoint to the save, refills life and
// unfolds the checkpoint menu above the statue.
#pragma once

#include <SFML/Graphics.hpp>
#include <vector>

#include "common/drawables.h"

struct Statue {
    SpritePtr statueSprite;
    SpritePtr outlineSprite;
    int showOutline = 0;
};

// Starts a room's statues: the list empty, and the pair of pictures of the region (forest or
// city) in place of the previous room's; any other region loads none. A missing picture leaves
// the statues invisible.
void LoadStatueTextures(int region);
// Appends a statue whose feet stand at the position.
void AddStatue(sf::Vector2f position);
// Statue k at the room's checkpoint of id k, for every checkpoint of the current room; room 1,
// where a new game starts, never has one.
void AddRoomStatues(int roomNumber);
// Frees every statue and both pictures; safe to call twice.
void DestroyStatues();
const std::vector<Statue>& Statues();

// Each "Interaction spawn" trigger outlines its statue (index = the trigger's value) while the
// body touches it.
void UpdateStatueOutlines(const sf::FloatRect& body);
// Each statue in order, its outline under it while shown.
void DrawStatues(sf::RenderTarget& target);

// The resting part of the INTERACT action: for every "Interaction spawn" trigger the body
// touches, in the room's order, save that checkpoint and refill life; the first one opens the
// checkpoint menu unless the menu or the debug console is already open.
void Rest();

// Drawing the current room and keeping its moving decoration alive: parallax backgrounds,
// animated tiles, trigger proximity, and the debug overlay of the room's invisible rectangles.
#pragma once

#include <SFML/Graphics.hpp>

struct Background;

// Cuts a backdrop whose sprite is set up (texture rect included, repeats too) into the pieces
// that hold any visible texel, and notes whether it is opaque all over.
void BuildBackgroundPieces(Background& background);
// The backdrops' bottom rows laid over each other, the farthest first (the last of the list), and
// averaged: the fog they end in, which fills a view taller than they are below them.
sf::Color BackdropFootColor(const std::vector<Background>& backgrounds);
// Draws each tile layer's still tiles once into a picture of its own, cut into the pieces that
// show something: a few hundred tiles become a few dozen quads. Animated tiles stay sprites.
void FlattenTileLayers();
// Notes the tile cells of the current room where opaque tiles (of any layer) hide the backdrops.
void BuildBackdropCover();
// Whether opaque tiles hide the backdrops everywhere in the area.
bool BackdropsHiddenIn(sf::FloatRect area);
// Backdrops (the map's first background in front, none where opaque tiles hide them), then
// "Background" tile layers.
void DrawRoomBackgrounds(sf::RenderTarget& target);
// Every tile layer other than "Background" and "Foreground", in map order.
void DrawRoomMiddleLayers(sf::RenderTarget& target);
void DrawRoomForeground(sf::RenderTarget& target);
// Solid rectangles, near triggers, exits, enemy containers, death zones, the camera container and
// the proximity circle, while the overlay is on.
void DrawRoomDebug(sf::RenderTarget& target);

void UpdateBackgrounds(const sf::View& view);
void UpdateRoomProximity(sf::Vector2f center, float radius, float dt);

// The view centre seen by the previous background update.
sf::Vector2f& LastViewCenter();
int& DebugOverlay();

// The map screen: the twenty rooms of the forest (green) and the city (blue) as rectangles laid
// out like the world, the four statue rooms marked with their icon and the hero's room with his
// marker. The map can be dragged; a click on a room zooms it up into a picture of the room filling
// the screen, and Escape zooms back out. When the map was opened at a statue, the pictures of the
// statue rooms carry a teleport button: the screen fades to black, the hero arrives at that room's
// statue and the screen clears. The world is frozen while the map is open.
//
// Laid out on a 1920 x 1080 screen and drawn straight onto the window through a screen view, like
// the other panels.
#pragma once

#include <SFML/Graphics.hpp>
#include <array>
#include <memory>

#include "common/drawables.h"
#include "common/motion.h"
#include "common/ui.h"

constexpr int kMapRoomCount = 20;
constexpr float kMapZoomSeconds = 0.75f;
// How far the map can be dragged from its home, either way.
const sf::Vector2f kMapDragLimit(480, 270);

struct MapRoom {
    Button button;  // the rectangle, and the room's number as a label that is never visible
    sf::Color fill;
    sf::Vector2f home;  // the rectangle's place on the undragged map
    TexturePtr previewTexture;
    SpritePtr preview;  // the room's picture, loaded the first time the room is picked
    TexturePtr teleportTexture;
    SpritePtr teleportButton;  // on a statue room's picture, when teleport is offered
    int teleportHovered = 0;
    int teleportAvailable = 0;
    Tween positionTween, scaleTween;
    ColorTween previewTween, fillTween;
};

struct MapScreen {
    bool built = false;
    int offerTeleport = 0;  // opened at a statue
    std::array<MapRoom, kMapRoomCount> rooms;
    FontPtr font;
    std::unique_ptr<sf::RectangleShape> backdrop;
    TexturePtr iconTexture, markerTexture;
    std::array<SpritePtr, 4> icons;
    SpritePtr marker;
    sf::Vector2f offset;      // how far the map is dragged from its home
    sf::Vector2f dragOffset;  // the offset minus the pointer, at the press
    int dragging = 0;
    int roomPicked = 0;
    int pickedRoom = -1;  // index of the room picked last, -1 until one is
    int zoomedIn = 0;     // the picked room's zoom has completed, or its zoom-out runs
    int teleportRequested = 0;
};

// M, gamepad button 6 and the checkpoint menu's TELEPORT: builds and opens the map and freezes the
// world, unless it is already open, a room change or the respawn runs, or the hero is dead.
// Teleport is offered when the hero stands at a statue, or when the map opens from one.
void RequestMapScreen(bool fromStatue = false);

// M closes the map; Escape closes the picked room's completed zoom, else the map. Nothing else,
// and nothing at all while a teleport runs.
void MapKeyPressed(int key);
// The pointer on the 1920 x 1080 screen: hover of the rooms (the drag taken into account), the
// drag, and the teleport button's hover.
void MapPointerMoved(sf::Vector2f pointer);
// Left button: picks the room under the pointer, or asks for the teleport on its button.
void MapPointerPressed(sf::Vector2f pointer, sf::Mouse::Button button);
// Each frame while the map is open (the world frozen): drag, zoom in or out, the drag limits, and
// the teleport, which closes the map.
void UpdateMapScreen(sf::RenderWindow& window, float dt);
void DrawMapScreen(sf::RenderTarget& target);
// Frees everything the opening built; safe to call twice.
void FreeMapScreen();

const MapScreen& GetMapScreen();
// Where a room's rectangle shows on the screen now, drag included.
sf::Vector2f MapRoomOnScreen(int index);
// The room number of a map index, and whether it holds one of the four statues.
int MapRoomNumber(int index);
bool IsStatueRoom(int index);

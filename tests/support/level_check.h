// Level rules for rooms as the game loads them: doors in pairs that lead back to each other,
// arrivals outside every door, spawns inside their containers and on a floor, walls all round
// except at the doors. Each check returns one line per fault naming the room, the object and its
// world coordinates (with the tile, 96 world px, in brackets); an empty list means the room is
// sound.
#pragma once

#include <map>
#include <string>
#include <vector>

#include "world/room.h"

// One tile of a room, in world pixels.
constexpr float kTile = 96;

// How a fault names things: a number rounded to the pixel, a point with its tile, a rectangle,
// a room.
std::string Num(float value);
std::string At(sf::Vector2f point);
std::string RectText(const sf::FloatRect& rect);
std::string RoomName(const Room& room);

// The hero's body box, standing on its feet.
constexpr float kHeroWidth = 80, kHeroHeight = 180;
// How far a hero spawn may stand above its floor: arrivals and revivals drop onto it.
constexpr float kLongestSpawnDrop = 96;
// How high a flying enemy (the Flying Knight, the Goddess) may hover over its floor.
constexpr float kHighestHover = 6 * kTile;
// The Goddess's drift about her spawn, either way.
constexpr float kFlightHalfWidth = 800, kFlightHalfHeight = 200;

// Every edge of the camera container is solid rock or a transition door.
std::vector<std::string> CheckWalls(const Room& room);
// Checkpoint and door spawns inside the camera container, clear of rock and death zones, a short
// drop above a floor; enemies inside their container, chests and the merchant exactly on a floor
// (flying enemies hover over one; the King, who has no gravity, has floor under his whole arena;
// the Goddess's flight is clear of middle-layer tiles).
std::vector<std::string> CheckStandingPoints(const Room& room);
// Door spawns outside every door rectangle, on the room's side of the door they belong to, where
// the door's walk-in actually brings the hero.
std::vector<std::string> CheckArrivals(const Room& room);
// Locked doors that close and open again: each group has its trigger and waits for no more kills
// than the room's mortal enemies, and each trigger lies on their side of the shut doors. In a boss
// room the shut doors close every way out around the boss, and every arrival steps into a trigger
// before it can reach the boss.
std::vector<std::string> CheckLockedDoors(const Room& room);
// The four above.
std::vector<std::string> CheckLevelRules(const Room& room);

struct DoorToUnbuiltRoom {
    int room = 0;
    int door = 0;
    int targetRoom = 0;
};

struct DoorPairReport {
    std::vector<std::string> faults;
    std::vector<DoorToUnbuiltRoom> unbuilt;  // not a fault: those rooms come later
};

// Every door of every room leads to a door of its target room that leads back to it, in the
// opposite direction, through the arrival spawns the game's transition uses. Rooms by number.
DoorPairReport CheckDoorPairs(const std::map<int, const Room*>& rooms);

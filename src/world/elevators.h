// Elevators: a cabin built from tiles rides between numbered stops of its room and carries the
// hero. Levers stand at the stops; pulling one fetches the cabin, interacting inside the cabin
// sends it on. Gears spin and sparks fly while a cabin moves. Where each cabin rests and which
// levers are active is kept per room in Assets/Saves/Elevator/ElevatorRoom-<N>.txt.
#pragma once

#include <SFML/Graphics.hpp>
#include <cstdio>
#include <memory>
#include <string>
#include <vector>

#include "common/drawables.h"

struct TiledLayer;
struct TiledTileset;

struct ElevatorStop {
    sf::Vector2f position;  // the cabin's bottom centre rests here
    int id = 0;
};

struct Lever {
    int id = 0;  // the stop it stands at
    sf::Vector2f position;
    std::shared_ptr<sf::RectangleShape> zone;
    int active = 0;
};

struct Elevator {
    TexturePtr texture;  // the cabin's tiles baked into one picture
    SpritePtr sprite;    // origin at the bottom centre
    int id = 0;
    std::vector<ElevatorStop> stops;
    // Also entries of the room's collisions, so the hero stands on the moving floor.
    std::vector<std::shared_ptr<sf::RectangleShape>> collisionShapes;
    std::shared_ptr<sf::RectangleShape> callTrigger;
    std::vector<Lever> levers;
    int moving = 0;
};

// Reads the "Elevator group" layer: one child group per cabin (its stops and call trigger, its
// tile layer, its "Lever group"). `tiles` is the room's tileset picture; scale: map px to world.
void BuildElevators(const TiledLayer& layer, const TiledTileset& tileset, const sf::Texture* tiles,
                    float scale, std::vector<Elevator>& elevators);

// The state file of a room number.
std::string ElevatorStatePath(int roomNumber);
// Puts the current room's cabins and levers as the state file says; writes the file from the
// map's state when it is missing, and replaces a damaged one (reported) the same way.
void LoadElevatorStates();
// The same from an open file (or text in memory): false, changing nothing, when it is damaged or
// does not fit the room's cabins.
bool ReadElevatorStates(std::FILE* file);
// The text the state file is written with.
std::string ElevatorStatesText();
// Writes the current room's state file (through a temporary file and a rename).
void SaveElevatorStates();

// The id of the first stop the cabin rests exactly on, -1 between stops.
int CurrentStopId(const Elevator& elevator);
// Seconds of one trip: 0.2 s per tile between the first two stops, long trips shortened.
float ElevatorTravelDuration(const Elevator& elevator);
// Seconds into the current trip, 0 when no cabin moves.
float ElevatorTravelElapsed();

// Lever sprites, gears and sparks of the current room; freed by the room cleanup.
void CreateElevatorDecorations();
void DestroyElevatorDecorations();

// One frame: lever clips, gears, moving cabins. The hero's position is moved along when he rides.
void UpdateElevators(float dt, sf::Vector2f& playerPosition, const sf::FloatRect& playerBody);
void InteractWithElevators(const sf::FloatRect& hitbox);
void UpdateLeverHighlights(const sf::FloatRect& hitbox);
// Room 12's long ride: the view zooms out in the middle of the trip and back in after.
void UpdateElevatorRideZoom(int roomNumber);
// The zoom's decision for a ride `elapsed` seconds into a trip of `duration` seconds (elapsed 0:
// no cabin moves, and a view left out by a short trip comes back).
void RideZoom(float elapsed, float duration);

enum ElevatorPart { ELEVATOR_LEVERS = 0, ELEVATOR_SPARKS = 1, ELEVATOR_GEARS = 2 };
void DrawElevatorParts(sf::RenderTarget& target, int part);
void DrawElevatorCabins(sf::RenderTarget& target);
// The call triggers and lever zones, for the debug overlay.
void DrawElevatorDebug(sf::RenderTarget& target);

// Read-outs for the HUD of the debug overlay and for checks.
float ElevatorGearSpeed();
bool LeverHighlighted(size_t index);
bool LeverClipFinished(size_t index);

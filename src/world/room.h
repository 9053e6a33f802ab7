// The current room, read from its Tiled map: tile sprites, solid rectangles, named triggers,
// arrival points, exits, enemy spawns, the camera container, parallax backgrounds and animated
// tiles. All coordinates are world pixels (map pixels x 3). One room is loaded at a time.
#pragma once

#include <SFML/Graphics.hpp>
#include <array>
#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "common/drawables.h"
#include "world/doors.h"
#include "world/elevators.h"

struct TiledMap;
struct TiledTileset;

using ShapePtr = std::shared_ptr<sf::RectangleShape>;

enum Region { REGION_FOREST = 0, REGION_CITY = 1 };
enum CollisionKind { COLLISION_SOLID = 0, COLLISION_ONE_WAY = 1 };

struct RoomLayer {
    std::string name;
    std::vector<sf::Sprite> tiles;
    // The still tiles drawn once at the art's scale, and the pieces of that picture that show
    // something; null when the layer is drawn tile by tile.
    std::unique_ptr<sf::RenderTexture> still{};
    sf::VertexArray stillPieces{sf::Quads};
    std::vector<int> animatedTiles{};  // indices in `tiles`, drawn over the picture
};

struct Collision {
    ShapePtr shape;  // shared with a door or an elevator when it belongs to one
    int kind = COLLISION_SOLID;
    int active = 1;
};

struct Trigger {
    ShapePtr shape;
    std::string name;
    int value = 0;
    int near = 0;
};

struct TransitionDoor {
    ShapePtr shape;
    std::string cameraTransition;
    bool hasCameraTransition = false;
    int targetedRoom = 0;
    int targetedDoorId = 0;
    int id = 0;
};

struct DoorSpawn {
    sf::Vector2f position;
    int id = 0;
    int linkedDoorId = 0;
};

struct CheckpointSpawn {
    sf::Vector2f position;
    int id = 0;
};

struct EnemySpawn {
    sf::Vector2f position;
    int enemyType = 0;
    int containerId = 0;
};

struct EnemyContainer {
    ShapePtr shape;
    int id = 0;
};

struct DeathZone {
    ShapePtr shape;
};

// How many texels of a picture pass a test, above and left of every texel: any rectangle's
// count in constant time. (width + 1) x (height + 1) sums.
struct TexelTable {
    std::vector<int> sums;
    int width = 0, height = 0;
};

struct Background {
    TexturePtr texture;
    SpritePtr sprite;  // places the backdrop; what is drawn is `pieces`, in the sprite's frame
    // The parts of the sprite that are not wholly transparent, as textured quads: most of a
    // backdrop is empty sky, and a software renderer pays for every texel it blends.
    sf::VertexArray pieces{sf::Quads};
    int opaque = 0;    // no texel lets anything through: copied, not blended
    TexelTable solid;  // its texels that let nothing through, hiding the backdrops behind
    float parallaxX = 0, parallaxY = 0;
    int loopX = 0, loopY = 0, followY = 0;
};

struct ChestSpawn {
    sf::Vector2f position;
    int ability = 0;
    int right = 0;
    int id = 0;
};

constexpr int kMaxTileAnimationFrames = 100;

struct TileAnimation {
    int layer = 0;  // the sprite is tiles[tile] of layers[layer]
    int tile = 0;
    const sf::Texture* texture = nullptr;
    unsigned frame = 0;
    unsigned frameCount = 0;
    std::array<float, kMaxTileAnimationFrames> durations{};
    float timer = 0;
    std::array<unsigned, kMaxTileAnimationFrames> tileIds{};
    unsigned tileSize = 32;
};

struct Room {
    std::vector<RoomLayer> layers;
    std::vector<Collision> collisions;
    std::vector<Trigger> triggers;
    std::vector<TransitionDoor> transitionDoors;
    std::vector<DoorSpawn> doorSpawns;
    std::vector<CheckpointSpawn> checkpointSpawns;
    std::vector<EnemySpawn> enemySpawns;
    std::vector<EnemyContainer> enemyContainers;
    std::vector<DeathZone> deathZones;
    std::vector<Background> backgrounds;
    std::vector<ChestSpawn> chestSpawns;
    std::vector<TileAnimation> tileAnimations;
    std::vector<DoorList> doorLists;
    std::vector<Elevator> elevators;
    // Per tile cell, row by row: an opaque tile hides the backdrops there.
    std::vector<std::uint8_t> backdropCover;
    int coverColumns = 0;
    ShapePtr cameraContainer;
    ShapePtr merchantZone;
    sf::Vector2f merchantPosition;
    int hasMerchant = 0;
    int region = REGION_FOREST;
    int bossRoom = 0;
    // The colour the backdrops fade to at their foot: what a view taller than them shows below.
    sf::Color backdropFoot = sf::Color::Black;
    TexturePtr tilesetTexture;
    std::unique_ptr<sf::CircleShape> proximityCircle;
    float proximityRadius = 0;
    float scale = 3.0f;
    int tileSize = 32;
    int roomNumber = 0;
    bool loaded = false;  // false when the last load failed: the room is then empty
};

Room& CurrentRoom();

// Reads a room's map behind the loading screen (one frame per top-level layer). A missing or
// malformed map or tileset is reported with the file's name and leaves an empty room.
void LoadRoomMap(sf::RenderWindow& window, const std::string& mapPath, int tileSize, float scale,
                 int roomNumber);
// Builds the current room from a map and its tileset already read (an empty tileset when its
// file could not be read), without a window; `eachLayer` runs before each top-level layer.
void BuildRoom(const TiledMap& map, const TiledTileset& tileset, float scale, int roomNumber,
               const std::function<void()>& eachLayer = {});
// Frees everything the load created. The region and the boss flag stay as they were: a map
// that does not set them keeps the previous room's.
void ReleaseRoom();

// Where the checkpoint of that id stands in the room, (0, 0) when there is none.
sf::Vector2f CheckpointSpawnPosition(int id);

// The map file of a room number.
std::string RoomMapPath(int roomNumber);

// A room map and its tileset against any bytes (the map's text, then after a zero byte the
// tileset's): a readable map builds a whole room, an unreadable one says why, and releasing the
// room leaves nothing behind.
#include <cstring>

#include "fuzz/fuzz_support.h"
#include "world/room.h"
#include "world/tiled.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    EnterScratchFolder();
    const char* text = reinterpret_cast<const char*>(data);
    const void* zero = std::memchr(text, 0, size);
    size_t mapSize = zero ? size_t(static_cast<const char*>(zero) - text) : size;
    std::string mapText(text, mapSize);
    std::string tilesetText = zero ? std::string(text + mapSize + 1, size - mapSize - 1) : "";

    TiledMap map;
    std::string error;
    if (!ParseTiledMap(mapText, "Room12.json", map, error)) {
        Require(error.find("Room12.json") != std::string::npos, "a refused map is named");
        Require(map.layers.empty(), "a refused map leaves nothing half read");
        return 0;
    }
    TiledTileset tileset;
    if (!ParseTiledTileset(tilesetText, "Tileset.json", tileset, error)) {
        Require(tileset.tiles.empty(), "a refused tileset leaves nothing half read");
    }
    BuildRoom(map, tileset, 3.0f, 12);
    const Room& room = CurrentRoom();
    Require(room.loaded, "a readable map builds a room");
    for (const Collision& collision : room.collisions)
        Require(bool(collision.shape), "a collision has a box");
    CheckpointSpawnPosition(0);
    ReleaseRoom();
    Require(room.collisions.empty() && room.layers.empty() && room.elevators.empty(),
            "releasing the room frees everything");
    return 0;
}

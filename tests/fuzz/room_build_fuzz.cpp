// A room map and its tileset against any bytes (the map's text, then after a zero byte the
// tileset's): a readable map builds a whole room, and releasing the room leaves nothing behind.
// Building draws each tile layer into a picture, so this target needs a display (make fuzz runs
// it under a virtual one); the readers alone are fuzzed by room_map_fuzz.cpp.
#include <SFML/Window/Context.hpp>

#include "fuzz/fuzz_support.h"
#include "world/room.h"
#include "world/tiled.h"

namespace {

// One graphics context for the whole process: without it, the context that a room's pictures
// need, and the display connection under it, would be made anew (slowly) for every input.
void KeepGraphicsContext() {
    static sf::Context context;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    EnterScratchFolder();
    KeepGraphicsContext();
    RoomTexts texts = SplitRoomInput(data, size);
    TiledMap map;
    std::string error;
    if (!ParseTiledMap(texts.map, "Room12.json", map, error)) return 0;
    TiledTileset tileset;
    ParseTiledTileset(texts.tileset, "Tileset.json", tileset, error);
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

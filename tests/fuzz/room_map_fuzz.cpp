// The room map and tileset readers against any bytes (the map's text, then after a zero byte the
// tileset's): a refused file says why, naming itself, and leaves nothing half read; an accepted
// map's tile layers hold one tile per cell, each one a tileset can have. One input in sixteen is
// also read from real files, which must read the same. Building the room is room_build_fuzz.cpp.
#include <cstdint>

#include "fuzz/fuzz_support.h"
#include "world/tiled.h"

namespace {

constexpr const char* kMapPath = "Assets/Maps/Room12.json";
constexpr const char* kTilesetPath = "Assets/Maps/Tileset.json";
constexpr unsigned kMaxTile = 1u << 20;

bool TileLayersWhole(const std::vector<TiledLayer>& layers) {
    for (const TiledLayer& layer : layers) {
        if (layer.hasData) {
            if (layer.width < 0 || layer.height < 0) return false;
            if (layer.data.size() != uint64_t(layer.width) * uint64_t(layer.height)) return false;
            for (unsigned tile : layer.data) {
                if (tile > kMaxTile) return false;
            }
        }
        if (!TileLayersWhole(layer.layers)) return false;
    }
    return true;
}

void ThroughTheFiles(const RoomTexts& texts, bool mapRead, const std::string& mapError,
                     bool tilesetRead, const std::string& tilesetError) {
    EnterScratchFolder();
    WriteText(kMapPath, texts.map);
    WriteText(kTilesetPath, texts.tileset);
    TiledMap map;
    TiledTileset tileset;
    std::string error;
    Require(LoadTiledMap(kMapPath, map, error) == mapRead && error == mapError,
            "the map's file reads as the same text in memory");
    error.clear();
    Require(LoadTiledTileset(kTilesetPath, tileset, error) == tilesetRead && error == tilesetError,
            "the tileset's file reads as the same text in memory");
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    RoomTexts texts = SplitRoomInput(data, size);
    TiledMap map;
    std::string mapError;
    bool mapRead = ParseTiledMap(texts.map, kMapPath, map, mapError);
    if (mapRead) {
        Require(TileLayersWhole(map.layers), "a tile layer holds one drawable tile per cell");
    } else {
        Require(mapError.find(kMapPath) != std::string::npos, "a refused map is named");
        Require(map.layers.empty(), "a refused map leaves nothing half read");
    }
    TiledTileset tileset;
    std::string tilesetError;
    bool tilesetRead = ParseTiledTileset(texts.tileset, kTilesetPath, tileset, tilesetError);
    if (!tilesetRead) {
        Require(tilesetError.find(kTilesetPath) != std::string::npos, "a refused tileset is named");
        Require(tileset.tiles.empty(), "a refused tileset leaves nothing half read");
    }
    if (SampledForFiles(data, size)) {
        ThroughTheFiles(texts, mapRead, mapError, tilesetRead, tilesetError);
    }
    return 0;
}

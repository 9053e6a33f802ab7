// Reading maps and external tilesets saved by the Tiled editor in its JSON format: what room
// loading needs, as plain records. Tile layers must store their data as plain number arrays.
#pragma once

#include <string>
#include <vector>

struct TiledProperty {
    std::string name;
    std::string type;   // "int", "float", "bool", "string", ...
    std::string text;   // string value
    double number = 0;  // int, float and bool values (true = 1)
};

struct TiledObject {
    int id = 0;
    std::string name;
    float x = 0, y = 0, width = 0, height = 0;
    bool point = false;
    std::vector<TiledProperty> properties;
};

struct TiledLayer {
    std::string type;  // "tilelayer", "objectgroup", "group", "imagelayer"
    std::string name;
    int width = 0, height = 0;
    bool hasData = false;
    std::vector<unsigned> data;
    std::vector<TiledObject> objects;
    std::vector<TiledLayer> layers;  // children of a group
    std::string image;
    float offsetX = 0, offsetY = 0;
    float parallaxX = 1, parallaxY = 1;
    std::vector<TiledProperty> properties;
};

struct TiledMap {
    int width = 0, height = 0, tileWidth = 0, tileHeight = 0;
    std::vector<TiledProperty> properties;
    std::vector<TiledLayer> layers;
};

struct TiledFrame {
    int tileId = 0;
    int duration = 0;  // milliseconds
};

struct TiledTile {
    int id = 0;
    bool hasCollision = false;
    std::vector<TiledObject> collision;
    std::vector<TiledFrame> animation;
};

struct TiledTileset {
    std::string name, image;
    int columns = 0, tileCount = 0, tileWidth = 0, tileHeight = 0;
    int imageWidth = 0, imageHeight = 0;
    std::vector<TiledTile> tiles;  // in file order
};

// Both return false and describe the problem in `error` (the file's name included) when the
// file is missing or not a map / tileset this game can read.
bool LoadTiledMap(const std::string& path, TiledMap& map, std::string& error);
bool LoadTiledTileset(const std::string& path, TiledTileset& tileset, std::string& error);
// The same from a file's text already read; `path` names it in the error.
bool ParseTiledMap(const std::string& text, const std::string& path, TiledMap& map,
                   std::string& error);
bool ParseTiledTileset(const std::string& text, const std::string& path, TiledTileset& tileset,
                       std::string& error);
void FreeTiledMap(TiledMap& map);
void FreeTiledTileset(TiledTileset& tileset);

// The first custom property, or null when there is none.
const TiledProperty* FirstProperty(const std::vector<TiledProperty>& properties);
const TiledProperty* FindProperty(const std::vector<TiledProperty>& properties,
                                  const std::string& name);
// The integer value of a property (a string holding a number counts), 0 for null.
int PropertyInt(const TiledProperty* property);

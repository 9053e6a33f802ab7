#include "world/tiled.h"

#include <fstream>
#include <limits>
#include <nlohmann/json.hpp>
#include <sstream>
#include <stdexcept>
#include <type_traits>

using nlohmann::json;

namespace {

constexpr unsigned kMaxTile = 1u << 20;

// A malformed file: the message says what was expected.
struct FormatError : std::runtime_error {
    using std::runtime_error::runtime_error;
};

const json& Require(const json& node, const char* key) {
    if (!node.is_object() || !node.contains(key)) {
        throw FormatError(std::string("missing \"") + key + "\"");
    }
    return node.at(key);
}

// A value as T. Numbers must fit T: a damaged value is refused, naming its key, instead of
// wrapping around or becoming infinite.
template <typename T>
T Get(const json& value, const char* key) {
    if constexpr (std::is_arithmetic_v<T> && !std::is_same_v<T, bool>) {
        if (!value.is_number()) throw FormatError(std::string("\"") + key + "\" is not a number");
        double number = value.get<double>();
        if (!(number >= double(std::numeric_limits<T>::lowest()) &&
              number <= double(std::numeric_limits<T>::max()))) {
            throw FormatError(std::string("\"") + key + "\" is out of range");
        }
        return static_cast<T>(number);
    } else {
        return value.get<T>();
    }
}

template <typename T>
T Required(const json& node, const char* key) {
    return Get<T>(Require(node, key), key);
}

// A map's or a layer's size: a negative one could pass for a small one once multiplied.
int Size(int value, const char* key) {
    if (value < 0) throw FormatError(std::string("\"") + key + "\" is negative");
    return value;
}

template <typename T>
T Optional(const json& node, const char* key, T fallback) {
    if (!node.is_object() || !node.contains(key) || node.at(key).is_null()) return fallback;
    return Get<T>(node.at(key), key);
}

std::vector<TiledProperty> ReadProperties(const json& node) {
    std::vector<TiledProperty> properties;
    if (!node.is_object() || !node.contains("properties")) return properties;
    for (const json& entry : node.at("properties")) {
        TiledProperty property;
        property.name = Required<std::string>(entry, "name");
        property.type = Optional<std::string>(entry, "type", "string");
        const json& value = Require(entry, "value");
        if (value.is_string()) {
            property.text = value.get<std::string>();
        } else if (value.is_boolean()) {
            property.number = value.get<bool>() ? 1 : 0;
        } else if (value.is_number()) {
            property.number = value.get<double>();
        }
        properties.push_back(std::move(property));
    }
    return properties;
}

TiledObject ReadObject(const json& node) {
    TiledObject object;
    object.id = Optional<int>(node, "id", 0);
    object.name = Optional<std::string>(node, "name", "");
    object.x = Required<float>(node, "x");
    object.y = Required<float>(node, "y");
    object.width = Optional<float>(node, "width", 0);
    object.height = Optional<float>(node, "height", 0);
    object.point = Optional<bool>(node, "point", false);
    object.properties = ReadProperties(node);
    return object;
}

std::vector<TiledObject> ReadObjects(const json& node) {
    std::vector<TiledObject> objects;
    for (const json& entry : Require(node, "objects")) objects.push_back(ReadObject(entry));
    return objects;
}

void ReadTileData(const json& node, TiledLayer& layer) {
    if (node.contains("encoding") && node.at("encoding") != "csv") {
        throw FormatError("layer \"" + layer.name + "\" is not stored as plain numbers");
    }
    const json& data = Require(node, "data");
    if (!data.is_array()) throw FormatError("layer \"" + layer.name + "\" has no number array");
    layer.hasData = true;
    layer.data.reserve(data.size());
    for (const json& value : data) {
        unsigned tile = Get<unsigned>(value, "data");
        // Flipped tiles carry flags in the high bits; no tileset of ours is that large either.
        if (tile > kMaxTile) {
            throw FormatError("layer \"" + layer.name + "\" holds tile " + std::to_string(tile) +
                              ": flipped tiles and tiles past " + std::to_string(kMaxTile) +
                              " are not read");
        }
        layer.data.push_back(tile);
    }
    if (layer.data.size() != size_t(layer.width) * size_t(layer.height)) {
        throw FormatError("layer \"" + layer.name + "\" holds " +
                          std::to_string(layer.data.size()) + " tiles for " +
                          std::to_string(layer.width) + " x " + std::to_string(layer.height));
    }
}

TiledLayer ReadLayer(const json& node) {
    TiledLayer layer;
    layer.type = Required<std::string>(node, "type");
    layer.name = Optional<std::string>(node, "name", "");
    layer.width = Size(Optional<int>(node, "width", 0), "width");
    layer.height = Size(Optional<int>(node, "height", 0), "height");
    layer.offsetX = Optional<float>(node, "offsetx", 0);
    layer.offsetY = Optional<float>(node, "offsety", 0);
    layer.parallaxX = Optional<float>(node, "parallaxx", 1);
    layer.parallaxY = Optional<float>(node, "parallaxy", 1);
    layer.properties = ReadProperties(node);
    if (layer.type == "tilelayer") ReadTileData(node, layer);
    if (layer.type == "objectgroup") layer.objects = ReadObjects(node);
    if (layer.type == "imagelayer") layer.image = Optional<std::string>(node, "image", "");
    if (layer.type == "group") {
        for (const json& child : Require(node, "layers")) layer.layers.push_back(ReadLayer(child));
    }
    return layer;
}

TiledTile ReadTile(const json& node) {
    TiledTile tile;
    tile.id = Required<int>(node, "id");
    if (node.contains("objectgroup")) {
        tile.hasCollision = true;
        tile.collision = ReadObjects(node.at("objectgroup"));
    }
    if (node.contains("animation")) {
        for (const json& frame : node.at("animation")) {
            tile.animation.push_back(
                {Required<int>(frame, "tileid"), Required<int>(frame, "duration")});
        }
    }
    return tile;
}

bool ParseText(const std::string& text, const std::string& name, json& root, std::string& error) {
    root = json::parse(text, nullptr, false);
    if (root.is_discarded() || !root.is_object()) {
        error = name + " is not valid JSON";
        return false;
    }
    return true;
}

bool ReadWholeFile(const std::string& path, std::string& text, std::string& error) {
    std::ifstream file(path, std::ios::binary);
    if (!file) {
        error = "cannot open " + path;
        return false;
    }
    std::ostringstream contents;
    contents << file.rdbuf();
    text = contents.str();
    return true;
}

}  // namespace

bool LoadTiledMap(const std::string& path, TiledMap& map, std::string& error) {
    std::string text;
    return ReadWholeFile(path, text, error) && ParseTiledMap(text, path, map, error);
}

bool LoadTiledTileset(const std::string& path, TiledTileset& tileset, std::string& error) {
    std::string text;
    return ReadWholeFile(path, text, error) && ParseTiledTileset(text, path, tileset, error);
}

bool ParseTiledMap(const std::string& text, const std::string& path, TiledMap& map,
                   std::string& error) {
    json root;
    if (!ParseText(text, path, root, error)) return false;
    try {
        if (Optional<bool>(root, "infinite", false))
            throw FormatError("infinite maps are not read");
        map.width = Size(Required<int>(root, "width"), "width");
        map.height = Size(Required<int>(root, "height"), "height");
        map.tileWidth = Required<int>(root, "tilewidth");
        map.tileHeight = Required<int>(root, "tileheight");
        map.properties = ReadProperties(root);
        for (const json& layer : Require(root, "layers")) map.layers.push_back(ReadLayer(layer));
    } catch (const std::exception& problem) {
        error = path + ": " + problem.what();
        FreeTiledMap(map);
        return false;
    }
    return true;
}

bool ParseTiledTileset(const std::string& text, const std::string& path, TiledTileset& tileset,
                       std::string& error) {
    json root;
    if (!ParseText(text, path, root, error)) return false;
    try {
        tileset.name = Optional<std::string>(root, "name", "");
        tileset.image = Required<std::string>(root, "image");
        tileset.columns = Required<int>(root, "columns");
        tileset.tileCount = Optional<int>(root, "tilecount", 0);
        tileset.tileWidth = Required<int>(root, "tilewidth");
        tileset.tileHeight = Required<int>(root, "tileheight");
        tileset.imageWidth = Optional<int>(root, "imagewidth", 0);
        tileset.imageHeight = Optional<int>(root, "imageheight", 0);
        if (root.contains("tiles")) {
            for (const json& tile : root.at("tiles")) tileset.tiles.push_back(ReadTile(tile));
        }
    } catch (const std::exception& problem) {
        error = path + ": " + problem.what();
        FreeTiledTileset(tileset);
        return false;
    }
    return true;
}

void FreeTiledMap(TiledMap& map) {
    map = TiledMap();
}

void FreeTiledTileset(TiledTileset& tileset) {
    tileset = TiledTileset();
}

const TiledProperty* FirstProperty(const std::vector<TiledProperty>& properties) {
    return properties.empty() ? nullptr : &properties.front();
}

const TiledProperty* FindProperty(const std::vector<TiledProperty>& properties,
                                  const std::string& name) {
    for (const TiledProperty& property : properties) {
        if (property.name == name) return &property;
    }
    return nullptr;
}

int PropertyInt(const TiledProperty* property) {
    if (!property) return 0;
    if (property->type == "string") return std::atoi(property->text.c_str());
    // A number too large for an int reads as none.
    double number = property->number;
    if (!(number >= double(std::numeric_limits<int>::min()) &&
          number <= double(std::numeric_limits<int>::max()))) {
        return 0;
    }
    return int(number);
}

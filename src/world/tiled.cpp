#include "world/tiled.h"

#include <fstream>
#include <nlohmann/json.hpp>
#include <stdexcept>

using nlohmann::json;

namespace {

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

template <typename T>
T Optional(const json& node, const char* key, T fallback) {
    if (!node.is_object() || !node.contains(key) || node.at(key).is_null()) return fallback;
    return node.at(key).get<T>();
}

std::vector<TiledProperty> ReadProperties(const json& node) {
    std::vector<TiledProperty> properties;
    if (!node.is_object() || !node.contains("properties")) return properties;
    for (const json& entry : node.at("properties")) {
        TiledProperty property;
        property.name = Require(entry, "name").get<std::string>();
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
    object.x = Require(node, "x").get<float>();
    object.y = Require(node, "y").get<float>();
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
    for (const json& value : data) layer.data.push_back(value.get<unsigned>());
    if (layer.data.size() != size_t(layer.width) * size_t(layer.height)) {
        throw FormatError("layer \"" + layer.name + "\" holds " +
                          std::to_string(layer.data.size()) + " tiles for " +
                          std::to_string(layer.width) + " x " + std::to_string(layer.height));
    }
}

TiledLayer ReadLayer(const json& node) {
    TiledLayer layer;
    layer.type = Require(node, "type").get<std::string>();
    layer.name = Optional<std::string>(node, "name", "");
    layer.width = Optional<int>(node, "width", 0);
    layer.height = Optional<int>(node, "height", 0);
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
    tile.id = Require(node, "id").get<int>();
    if (node.contains("objectgroup")) {
        tile.hasCollision = true;
        tile.collision = ReadObjects(node.at("objectgroup"));
    }
    if (node.contains("animation")) {
        for (const json& frame : node.at("animation")) {
            tile.animation.push_back(
                {Require(frame, "tileid").get<int>(), Require(frame, "duration").get<int>()});
        }
    }
    return tile;
}

bool ParseFile(const std::string& path, json& root, std::string& error) {
    std::ifstream file(path);
    if (!file) {
        error = "cannot open " + path;
        return false;
    }
    root = json::parse(file, nullptr, false);
    if (root.is_discarded() || !root.is_object()) {
        error = path + " is not valid JSON";
        return false;
    }
    return true;
}

}  // namespace

bool LoadTiledMap(const std::string& path, TiledMap& map, std::string& error) {
    json root;
    if (!ParseFile(path, root, error)) return false;
    try {
        if (Optional<bool>(root, "infinite", false))
            throw FormatError("infinite maps are not read");
        map.width = Require(root, "width").get<int>();
        map.height = Require(root, "height").get<int>();
        map.tileWidth = Require(root, "tilewidth").get<int>();
        map.tileHeight = Require(root, "tileheight").get<int>();
        map.properties = ReadProperties(root);
        for (const json& layer : Require(root, "layers")) map.layers.push_back(ReadLayer(layer));
    } catch (const std::exception& problem) {
        error = path + ": " + problem.what();
        FreeTiledMap(map);
        return false;
    }
    return true;
}

bool LoadTiledTileset(const std::string& path, TiledTileset& tileset, std::string& error) {
    json root;
    if (!ParseFile(path, root, error)) return false;
    try {
        tileset.name = Optional<std::string>(root, "name", "");
        tileset.image = Require(root, "image").get<std::string>();
        tileset.columns = Require(root, "columns").get<int>();
        tileset.tileCount = Optional<int>(root, "tilecount", 0);
        tileset.tileWidth = Require(root, "tilewidth").get<int>();
        tileset.tileHeight = Require(root, "tileheight").get<int>();
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
    return int(property->number);
}

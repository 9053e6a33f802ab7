#include "world/room.h"

#include "common/log.h"
#include "common/motion.h"
#include "world/camera.h"
#include "world/room_draw.h"
#include "world/tiled.h"

namespace {

Room room;

// The loading screen, alive only while a map is read.
struct LoadingScreen {
    std::unique_ptr<sf::Clock> clock;
    std::unique_ptr<sf::RenderTexture> canvas;
    SpritePtr sprite;
    TexturePtr spinnerTexture;
    SpritePtr spinner;
    float timer = 0;
    float delay = 2.0f;
};

LoadingScreen loading;

sf::Vector2f GameViewSize() {
    const Camera& camera = GameCamera();
    return camera.view ? camera.view->getSize() : sf::Vector2f(1920, 1080);
}

sf::Vector2f GameViewCenter() {
    const Camera& camera = GameCamera();
    return camera.view ? camera.view->getCenter() : sf::Vector2f(960, 540);
}

void CreateLoadingScreen() {
    loading = LoadingScreen();
    loading.clock = std::make_unique<sf::Clock>();
    loading.canvas = std::make_unique<sf::RenderTexture>();
    loading.canvas->create(1920, 1080);
    sf::Vector2f view = GameViewSize();
    float scale = view.x / 1920.0f;
    CreateSprite(loading.sprite, &loading.canvas->getTexture(), GameViewCenter(), {0.5f, 0.5f},
                 {scale, scale});
    loading.spinnerTexture = LoadTexture("Assets/Sprites/HUD/LoadingSpinner.png");
    CreateSprite(loading.spinner, loading.spinnerTexture.get(), {0, 0}, {0.5f, 0.5f}, {3, 3});
    sf::FloatRect bounds = loading.spinner->getGlobalBounds();
    loading.spinner->setPosition(view.x - 0.8f * bounds.width, view.y - 0.8f * bounds.height);
    loading.spinner->setColor(sf::Color(255, 255, 255, 0));
    Log("camera size : x = %f\ty = %f\n", view.x, view.y);
}

void UpdateLoadingScreen(sf::RenderWindow& window) {
    float elapsed = loading.clock->restart().asSeconds();
    Log("Update loading screen !\n");
    float scale = GameViewSize().x / 1920.0f;
    loading.sprite->setScale(scale, scale);
    if (loading.timer < loading.delay) loading.timer += elapsed;
    if (loading.timer >= loading.delay) {
        loading.spinner->rotate(200.0f * elapsed);
        FadeSpriteColor(*loading.spinner, sf::Color::White, elapsed, 100);
    }
    window.clear(sf::Color::Black);
    loading.canvas->clear(sf::Color::Black);
    if (GameCamera().view) window.setView(*GameCamera().view);
    loading.canvas->draw(*loading.spinner);
    loading.canvas->display();
    window.draw(*loading.sprite);
    window.display();
}

ShapePtr MakeShape(sf::Vector2f position, sf::Vector2f size, sf::Color fill) {
    auto shape = std::make_shared<sf::RectangleShape>(size);
    shape->setPosition(position);
    shape->setFillColor(fill);
    return shape;
}

ShapePtr ObjectShape(const TiledObject& object, sf::Color fill) {
    float s = room.scale;
    return MakeShape({object.x * s, object.y * s}, {object.width * s, object.height * s}, fill);
}

sf::Vector2f ObjectPoint(const TiledObject& object) {
    return {object.x * room.scale, object.y * room.scale};
}

ShapePtr CreateCollisionShape(const TiledObject& object, sf::Vector2f tileOrigin) {
    float s = room.scale;
    auto shape = MakeShape({(tileOrigin.x + object.x) * s, (tileOrigin.y + object.y) * s},
                           {object.width * s, object.height * s}, sf::Color(255, 0, 0, 100));
    shape->setOutlineColor(sf::Color::Red);
    shape->setOutlineThickness(2);
    return shape;
}

void AddTileAnimation(const TiledTile& descriptor, int layerIndex, int tileIndex, int index) {
    if (descriptor.animation.empty() || descriptor.animation.front().tileId != index) return;
    TileAnimation animation;
    animation.layer = layerIndex;
    animation.tile = tileIndex;
    animation.texture = room.tilesetTexture.get();
    // Longer animations are cut to the frames the record can hold.
    size_t frames = std::min<size_t>(descriptor.animation.size(), kMaxTileAnimationFrames);
    animation.frameCount = unsigned(frames);
    for (size_t i = 0; i < frames; i++) {
        animation.durations[i] = float(descriptor.animation[i].duration) / 1000.0f;
        animation.tileIds[i] = unsigned(descriptor.animation[i].tileId);
    }
    animation.tileSize = unsigned(room.tileSize);
    room.tileAnimations.push_back(animation);
}

void BuildTileLayer(const TiledLayer& layer, const TiledTileset& tileset, int layerIndex) {
    RoomLayer& entry = room.layers[layerIndex];
    int columns = room.tilesetTexture ? int(room.tilesetTexture->getSize().x) / 32 : 1;
    if (columns < 1) columns = 1;
    float s = room.scale;
    for (int r = 0; r < layer.height; r++) {
        for (int c = 0; c < layer.width; c++) {
            unsigned value = layer.data[size_t(r) * size_t(layer.width) + size_t(c)];
            if (value == 0) continue;
            int index = int(value - 1);
            sf::Sprite sprite;
            if (room.tilesetTexture) sprite.setTexture(*room.tilesetTexture);
            sprite.setTextureRect(
                sf::IntRect((index % columns) * 32, (index / columns) * 32, 32, 32));
            sprite.setPosition(float(c * 32) * s, float(r * 32) * s);
            sprite.setScale(s, s);
            entry.tiles.push_back(sprite);
            int tileIndex = int(entry.tiles.size()) - 1;
            sf::Vector2f origin(float(c * 32), float(r * 32));
            for (const TiledTile& descriptor : tileset.tiles) {
                if (descriptor.hasCollision && descriptor.id == index) {
                    for (const TiledObject& object : descriptor.collision) {
                        room.collisions.push_back({CreateCollisionShape(object, origin),
                                                   PropertyInt(FirstProperty(object.properties)),
                                                   1});
                    }
                }
                AddTileAnimation(descriptor, layerIndex, tileIndex, index);
            }
        }
    }
}

void ReadTriggers(const TiledLayer& layer) {
    for (const TiledObject& object : layer.objects) {
        room.triggers.push_back({ObjectShape(object, sf::Color(0, 255, 0, 100)), object.name,
                                 PropertyInt(FirstProperty(object.properties)), 0});
    }
}

void ReadPlayerSpawns(const TiledLayer& layer) {
    for (const TiledObject& object : layer.objects) {
        if (!object.point) continue;
        if (object.name == "PlayerDoorSpawn") {
            room.doorSpawns.push_back(
                {ObjectPoint(object), PropertyInt(FindProperty(object.properties, "id")),
                 PropertyInt(FindProperty(object.properties, "LinkedDoorID"))});
        } else if (object.name == "PlayerCheckpoint") {
            room.checkpointSpawns.push_back(
                {ObjectPoint(object), PropertyInt(FirstProperty(object.properties))});
        }
    }
}

void ReadTransitionDoors(const TiledLayer& layer) {
    for (const TiledObject& object : layer.objects) {
        TransitionDoor door;
        door.shape = ObjectShape(object, sf::Color(125, 125, 125, 100));
        if (const TiledProperty* camera = FindProperty(object.properties, "CameraTransition")) {
            door.cameraTransition = camera->text;
            door.hasCameraTransition = true;
        }
        door.targetedRoom = PropertyInt(FindProperty(object.properties, "TargetedRoom"));
        door.targetedDoorId = PropertyInt(FindProperty(object.properties, "targetedDoorID"));
        door.id = PropertyInt(FindProperty(object.properties, "id"));
        room.transitionDoors.push_back(std::move(door));
    }
}

void ReadEnemies(const TiledLayer& layer) {
    for (const TiledObject& object : layer.objects) {
        if (object.name == "EnemySpawn" && object.point) {
            room.enemySpawns.push_back(
                {ObjectPoint(object), PropertyInt(FindProperty(object.properties, "EnemyType")),
                 PropertyInt(FindProperty(object.properties, "idContainer"))});
        } else if (object.name == "EnemiesContainer") {
            room.enemyContainers.push_back({ObjectShape(object, sf::Color(0, 255, 0, 100)),
                                            PropertyInt(FirstProperty(object.properties))});
        }
    }
}

void ReadDeathZones(const TiledLayer& layer) {
    for (const TiledObject& object : layer.objects) {
        room.deathZones.push_back({ObjectShape(object, sf::Color(0, 0, 255, 100))});
    }
}

void ReadCameraContainer(const TiledLayer& layer) {
    for (const TiledObject& object : layer.objects) {
        room.cameraContainer = ObjectShape(object, sf::Color(251, 0, 255, 50));
    }
}

void ReadBackgrounds(const TiledLayer& group) {
    for (const TiledLayer& layer : group.layers) {
        if (layer.image.empty()) continue;
        Background background;
        background.texture = LoadTexture("Assets/Maps/RoomBackground/" + layer.image);
        float s = room.scale;
        CreateSprite(background.sprite, background.texture.get(),
                     {layer.offsetX * s, layer.offsetY * s}, {0, 0}, {s, s});
        background.parallaxX = layer.parallaxX - 1;
        background.parallaxY = layer.parallaxY - 1;
        background.loopX = PropertyInt(FindProperty(layer.properties, "LoopX"));
        background.loopY = PropertyInt(FindProperty(layer.properties, "LoopY"));
        background.followY = PropertyInt(FindProperty(layer.properties, "FollowY"));
        sf::IntRect rect = background.sprite->getTextureRect();
        if (background.texture && background.loopX) {
            background.sprite->setTextureRect({rect.left, rect.top, 4 * rect.width, rect.height});
            background.texture->setRepeated(true);
        } else if (background.texture && background.loopY) {
            background.sprite->setTextureRect({rect.left, rect.top, rect.width, -4 * rect.height});
            background.texture->setRepeated(true);
        }
        BuildBackgroundPieces(background);
        room.backgrounds.push_back(std::move(background));
    }
    room.backdropFoot = BackdropFootColor(room.backgrounds);
}

void ReadMerchant(const TiledLayer& layer) {
    for (const TiledObject& object : layer.objects) {
        if (object.point) {
            room.merchantPosition = ObjectPoint(object);
        } else {
            room.merchantZone = ObjectShape(object, sf::Color(0, 255, 0, 100));
        }
    }
    room.hasMerchant = 1;
}

void ReadChests(const TiledLayer& layer) {
    for (const TiledObject& object : layer.objects) {
        if (!object.point) continue;
        ChestSpawn chest;
        chest.position = ObjectPoint(object);
        chest.ability = PropertyInt(FindProperty(object.properties, "Ability"));
        chest.right = PropertyInt(FindProperty(object.properties, "Right"));
        if (FindProperty(object.properties, "id")) {
            chest.id = PropertyInt(FirstProperty(object.properties));
        }
        room.chestSpawns.push_back(chest);
    }
}

void ReadLayerContents(const TiledLayer& layer) {
    const std::string& name = layer.name;
    if (name == "Trigger") ReadTriggers(layer);
    if (name == "Player") ReadPlayerSpawns(layer);
    if (name == "TransitionDoor") ReadTransitionDoors(layer);
    if (name == "Door group" && layer.type == "group")
        BuildDoors(layer, room.scale, room.doorLists);
    if (name == "Enemies") ReadEnemies(layer);
    if (name == "DeathZone") ReadDeathZones(layer);
    if (name == "CameraContainer") ReadCameraContainer(layer);
    if (name == "Background" && layer.type == "group") ReadBackgrounds(layer);
    if (name == "Pnj") ReadMerchant(layer);
    if (name == "Chest") ReadChests(layer);
}

// Map properties: the tileset name (and the region it implies) and the boss flag.
std::string ReadMapProperties(const TiledMap& map) {
    std::string tilesetName;
    for (const TiledProperty& property : map.properties) {
        if (property.name == "tsx name") tilesetName = property.text;
        if (property.name == "Boss room") room.bossRoom = PropertyInt(&property);
    }
    if (tilesetName == "City") room.region = REGION_CITY;
    if (tilesetName == "Forest") room.region = REGION_FOREST;
    return tilesetName;
}

void ResetRoomContents(int roomNumber) {
    room.layers.clear();
    room.collisions.clear();
    room.triggers.clear();
    room.transitionDoors.clear();
    room.doorSpawns.clear();
    room.checkpointSpawns.clear();
    room.enemySpawns.clear();
    room.enemyContainers.clear();
    room.deathZones.clear();
    room.backgrounds.clear();
    room.chestSpawns.clear();
    room.tileAnimations.clear();
    room.doorLists.clear();
    room.elevators.clear();
    room.backdropCover.clear();
    room.coverColumns = 0;
    room.hasMerchant = 0;
    room.roomNumber = roomNumber;
    room.loaded = false;
}

void CreateProximityCircle() {
    room.proximityCircle = std::make_unique<sf::CircleShape>(1440.0f);
    room.proximityCircle->setOrigin(1440, 1440);
    room.proximityCircle->setPosition(960, 540);
    room.proximityCircle->setFillColor(sf::Color::Transparent);
    room.proximityCircle->setOutlineColor(sf::Color::Red);
    room.proximityCircle->setOutlineThickness(3);
    room.proximityRadius = 1440;
}

void FreeLoadingScreen() {
    loading = LoadingScreen();
}

// A cabin's floor moves with it: its entries share the cabin's rectangles.
void LinkElevatorCollisions() {
    for (const Elevator& elevator : room.elevators) {
        for (const ShapePtr& shape : elevator.collisionShapes) {
            room.collisions.push_back({shape, COLLISION_SOLID, 1});
        }
    }
}

// Doors block through the room's collisions: each shares its rectangle with its entry.
void LinkDoorCollisions() {
    for (DoorList& list : room.doorLists) {
        for (Door& door : list.doors) {
            door.collisionIndex = int(room.collisions.size());
            room.collisions.push_back({door.shape, COLLISION_SOLID, door.closed});
        }
    }
}

}  // namespace

Room& CurrentRoom() {
    return room;
}

sf::Vector2f CheckpointSpawnPosition(int id) {
    for (const CheckpointSpawn& spawn : room.checkpointSpawns) {
        if (spawn.id == id) return spawn.position;
    }
    return {0, 0};
}

std::string RoomMapPath(int roomNumber) {
    return "Assets/Maps/Rooms/Room" + std::to_string(roomNumber) + ".json";
}

void LoadRoomMap(sf::RenderWindow& window, const std::string& mapPath, int tileSize, float scale,
                 int roomNumber) {
    (void)tileSize;  // maps are always read in 32-pixel tiles
    ResetRoomContents(roomNumber);
    CreateLoadingScreen();
    TiledMap map;
    TiledTileset tileset;
    std::string error;
    if (!LoadTiledMap(mapPath, map, error)) {
        Log("Room map error : %s\n", error.c_str());
        FreeLoadingScreen();
        return;
    }
    std::string name = ReadMapProperties(map);
    if (!LoadTiledTileset("Assets/Maps/Tilesets/Tileset-" + name + ".json", tileset, error)) {
        Log("Room map error : %s\n", error.c_str());
    }
    BuildRoom(map, tileset, scale, roomNumber, [&window] { UpdateLoadingScreen(window); });
    FreeTiledTileset(tileset);
    FreeTiledMap(map);
    FreeLoadingScreen();
}

void BuildRoom(const TiledMap& map, const TiledTileset& tileset, float scale, int roomNumber,
               const std::function<void()>& eachLayer) {
    ResetRoomContents(roomNumber);
    std::string name = ReadMapProperties(map);
    room.tilesetTexture = LoadTexture("Assets/Maps/Tilesets/" + name + ".png");
    room.scale = scale;
    room.tileSize = 32;
    CreateProximityCircle();
    for (const TiledLayer& layer : map.layers) {
        if (eachLayer) eachLayer();
        room.layers.emplace_back();
        room.layers.back().name = layer.name;
        if (layer.hasData) BuildTileLayer(layer, tileset, int(room.layers.size()) - 1);
        ReadLayerContents(layer);
        if (layer.name == "Elevator group" && layer.type == "group") {
            BuildElevators(layer, tileset, room.tilesetTexture.get(), room.scale, room.elevators);
            LoadElevatorStates();
        }
    }
    LinkElevatorCollisions();
    LinkDoorCollisions();
    BuildBackdropCover();
    FlattenTileLayers();
    room.loaded = true;
    Log("nb of collisions : %d\n", int(room.collisions.size()));
}

void ReleaseRoom() {
    if (!room.elevators.empty()) SaveElevatorStates();
    room.cameraContainer.reset();
    room.merchantZone.reset();
    int number = room.roomNumber;
    ResetRoomContents(number);
    room.tilesetTexture.reset();
    room.proximityCircle.reset();
}

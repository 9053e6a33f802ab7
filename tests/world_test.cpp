// Reading Tiled maps into the room: every layer kind, the odd shapes maps can hold, and bad files.
#include <gtest/gtest.h>

#include <nlohmann/json.hpp>

#include "support/fixture.h"
#include "world/camera.h"
#include "world/room.h"
#include "world/room_draw.h"
#include "world/tiled.h"

using nlohmann::json;

namespace {

json Property(const std::string& name, const std::string& type, json value) {
    return {{"name", name}, {"type", type}, {"value", value}};
}

json Rect(const std::string& name, float x, float y, float w, float h, json properties = json()) {
    json object = {{"id", 1}, {"name", name}, {"x", x}, {"y", y}, {"width", w}, {"height", h}};
    if (!properties.is_null()) object["properties"] = properties;
    return object;
}

json Point(const std::string& name, float x, float y, json properties = json()) {
    json object = Rect(name, x, y, 0, 0, properties);
    object["point"] = true;
    return object;
}

json ObjectLayer(const std::string& name, json objects) {
    return {{"type", "objectgroup"}, {"name", name}, {"objects", objects}};
}

json TileLayer(const std::string& name, int width, int height, std::vector<unsigned> data) {
    return {{"type", "tilelayer"},
            {"name", name},
            {"width", width},
            {"height", height},
            {"data", data}};
}

json Map(int width, int height, json layers, json properties) {
    return {{"type", "map"},           {"orientation", "orthogonal"},
            {"infinite", false},       {"width", width},
            {"height", height},        {"tilewidth", 32},
            {"tileheight", 32},        {"layers", layers},
            {"properties", properties}};
}

// A 10-column tileset: tile 3 is solid, tile 4 a one-way platform, tiles 5-7 animate from 5.
json Tileset() {
    json solid = {{"id", 3}, {"objectgroup", {{"objects", {Rect("", 0, 0, 32, 32)}}}}};
    json oneWay = {
        {"id", 4},
        {"objectgroup", {{"objects", {Rect("", 0, 0, 32, 10, {Property("kind", "int", 1)})}}}}};
    json frames = json::array();
    for (int tile : {5, 6, 7}) frames.push_back({{"tileid", tile}, {"duration", 100}});
    json animated = {{"id", 5}, {"animation", frames}};
    return {{"type", "tileset"},   {"name", "Test"},
            {"image", "Test.png"}, {"columns", 10},
            {"tilecount", 40},     {"tilewidth", 32},
            {"tileheight", 32},    {"imagewidth", 320},
            {"imageheight", 128},  {"tiles", {solid, oneWay, animated}}};
}

class RoomLoading : public AppTest {
protected:
    void SetUp() override {
        AppTest::SetUp();
        std::filesystem::create_directories("Assets/Maps/Tilesets");
        WriteFile("Assets/Maps/Tilesets/Tileset-Test.json", Tileset().dump());
        sf::Image image;
        image.create(320, 128, sf::Color::Blue);
        ASSERT_TRUE(image.saveToFile("Assets/Maps/Tilesets/Test.png"));
        CreateCamera({960, 540});
    }
    void TearDown() override {
        ReleaseRoom();
        DestroyCamera();
        AppTest::TearDown();
    }

    // Loads a map and returns what the loader printed.
    std::string Load(const json& map) {
        WriteFile("map.json", map.dump());
        testing::internal::CaptureStdout();
        LoadRoomMap(*app.window, "map.json", 32, 3.0f, 7);
        return testing::internal::GetCapturedStdout();
    }
};

}  // namespace

TEST_F(RoomLoading, TilesBecomeSpritesAndCollisionsOfTheirTileset) {
    // Row 0: empty, tile value 12 (index 11 = column 1, row 1), solid (4), one-way (5).
    // Row 1: animated first frame (6), its second frame placed alone (7), nothing, solid.
    json map = Map(4, 2, {TileLayer("Ground", 4, 2, {0, 12, 4, 5, 6, 7, 0, 4})},
                   {Property("tsx name", "string", "Test"), Property("Boss room", "int", 0)});
    std::string log = Load(map);
    Room& room = CurrentRoom();
    ASSERT_EQ(room.layers.size(), 1u);
    ASSERT_EQ(room.layers[0].tiles.size(), 6u);
    EXPECT_EQ(room.layers[0].tiles[0].getTextureRect(), sf::IntRect(32, 32, 32, 32));
    EXPECT_EQ(room.layers[0].tiles[0].getPosition(), sf::Vector2f(96, 0));
    EXPECT_EQ(room.layers[0].tiles[0].getScale(), sf::Vector2f(3, 3));
    ASSERT_EQ(room.collisions.size(), 3u);
    EXPECT_EQ(room.collisions[0].kind, COLLISION_SOLID);
    EXPECT_EQ(room.collisions[1].kind, COLLISION_ONE_WAY);
    EXPECT_EQ(room.collisions[1].shape->getSize(), sf::Vector2f(96, 30));
    EXPECT_EQ(room.collisions[2].shape->getPosition(), sf::Vector2f(288, 96));
    ASSERT_EQ(room.tileAnimations.size(), 1u);  // only where the first frame is placed
    EXPECT_EQ(room.tileAnimations[0].frameCount, 3u);
    EXPECT_FLOAT_EQ(room.tileAnimations[0].durations[1], 0.1f);
    EXPECT_NE(log.find("nb of collisions : 3\n"), std::string::npos);
    EXPECT_TRUE(room.loaded);
}

TEST_F(RoomLoading, ObjectLayersFillTheRoomInWorldPixels) {
    json map = Map(
        2, 2,
        {ObjectLayer("Trigger", {Rect("DeathZone", 10, 20, 30, 40, {Property("value", "int", 2)}),
                                 Point("Chest trigger", 5, 5)}),
         ObjectLayer("Player",
                     {Point("PlayerDoorSpawn", 100, 64,
                            {Property("LinkedDoorID", "int", 3), Property("id", "int", 1)}),
                      Point("PlayerCheckpoint", 50, 64, {Property("id", "int", 0)})}),
         ObjectLayer("TransitionDoor",
                     {Rect("", 0, 0, 16, 64,
                           {Property("CameraTransition", "string", "Right "),
                            Property("TargetedRoom", "int", 2), Property("id", "int", 3),
                            Property("targetedDoorID", "int", 1)})}),
         ObjectLayer("Enemies",
                     {Point("EnemySpawn", 30, 64,
                            {Property("EnemyType", "int", 3), Property("idContainer", "int", 1)}),
                      Rect("EnemySpawn", 30, 64, 10, 10), Point("EnemiesContainer", 1, 2),
                      Rect("EnemiesContainer", 0, 0, 64, 64, {Property("id", "int", 1)})}),
         ObjectLayer("CameraContainer", {Rect("", 0, 0, 10, 10), Rect("", 0, 0, 640, 360)}),
         ObjectLayer("Pnj", {Rect("", 0, 0, 20, 20), Point("", 12, 13)}),
         ObjectLayer("Chest", {Point("", 7, 8,
                                     {Property("Ability", "int", 2), Property("Right", "int", 1),
                                      Property("id", "int", 9)})})},
        {Property("tsx name", "string", "Test")});
    std::string log = Load(map);
    Room& room = CurrentRoom();
    ASSERT_EQ(room.triggers.size(), 2u);
    EXPECT_EQ(room.triggers[0].name, "DeathZone");
    EXPECT_EQ(room.triggers[0].value, 2);
    EXPECT_EQ(room.triggers[0].shape->getGlobalBounds(), sf::FloatRect(30, 60, 90, 120));
    EXPECT_EQ(room.triggers[1].shape->getSize(), sf::Vector2f(0, 0));
    ASSERT_EQ(room.doorSpawns.size(), 1u);
    EXPECT_EQ(room.doorSpawns[0].position, sf::Vector2f(300, 192));
    EXPECT_EQ(room.doorSpawns[0].linkedDoorId, 3);
    EXPECT_EQ(room.checkpointSpawns[0].position, sf::Vector2f(150, 192));
    ASSERT_EQ(room.transitionDoors.size(), 1u);
    EXPECT_EQ(room.transitionDoors[0].cameraTransition, "Right ");
    EXPECT_EQ(room.transitionDoors[0].targetedRoom, 2);
    EXPECT_EQ(room.transitionDoors[0].targetedDoorId, 1);
    ASSERT_EQ(room.enemySpawns.size(), 1u);  // the rectangle named EnemySpawn is not one
    EXPECT_EQ(room.enemySpawns[0].enemyType, 3);
    ASSERT_EQ(room.enemyContainers.size(), 2u);  // a point container is a 0 x 0 rectangle
    EXPECT_EQ(room.enemyContainers[0].shape->getSize(), sf::Vector2f(0, 0));
    EXPECT_EQ(room.enemyContainers[1].id, 1);
    ASSERT_TRUE(room.cameraContainer);  // the last of two
    EXPECT_EQ(room.cameraContainer->getSize(), sf::Vector2f(1920, 1080));
    EXPECT_EQ(room.hasMerchant, 1);
    EXPECT_EQ(room.merchantPosition, sf::Vector2f(36, 39));
    ASSERT_EQ(room.chestSpawns.size(), 1u);
    EXPECT_EQ(room.chestSpawns[0].ability, 2);
    EXPECT_EQ(room.chestSpawns[0].id, 2);  // a chest's id is its first property's value
    EXPECT_EQ(std::count(log.begin(), log.end(), '!'), 7);  // one loading frame per layer
}

TEST_F(RoomLoading, RegionAndBossFlagCarryOverWhenAMapIsSilent) {
    Load(Map(1, 1, json::array(),
             {Property("tsx name", "string", "City"), Property("Boss room", "int", 1)}));
    EXPECT_EQ(CurrentRoom().region, REGION_CITY);
    ReleaseRoom();
    Load(Map(1, 1, json::array(), {Property("tsx name", "string", "Test")}));
    EXPECT_EQ(CurrentRoom().region, REGION_CITY);
    EXPECT_EQ(CurrentRoom().bossRoom, 1);
    Load(Map(1, 1, json::array(),
             {Property("tsx name", "string", "Forest"), Property("Boss room", "int", 0)}));
    EXPECT_EQ(CurrentRoom().region, REGION_FOREST);
    EXPECT_EQ(CurrentRoom().bossRoom, 0);
}

TEST_F(RoomLoading, BackgroundsLoopWideBeforeTall) {
    std::filesystem::create_directories("Assets/Maps/RoomBackground/Test");
    sf::Image image;
    image.create(100, 50, sf::Color::Red);
    ASSERT_TRUE(image.saveToFile("Assets/Maps/RoomBackground/Test/sky.png"));
    json both = {
        {"type", "imagelayer"},
        {"name", "sky"},
        {"image", "../RoomBackground/Test/sky.png"},
        {"offsetx", 10},
        {"offsety", 20},
        {"parallaxx", 1.8},
        {"properties", {Property("LoopX", "bool", true), Property("LoopY", "bool", true)}}};
    json tall = both;
    tall["properties"] = {Property("LoopY", "int", 1), Property("FollowY", "bool", true)};
    tall.erase("parallaxx");
    json group = {{"type", "group"}, {"name", "Background"}, {"layers", {both, tall}}};
    Load(Map(1, 1, {group}, {Property("tsx name", "string", "Test")}));
    Room& room = CurrentRoom();
    ASSERT_EQ(room.backgrounds.size(), 2u);
    const Background& wide = room.backgrounds[0];
    EXPECT_EQ(wide.sprite->getTextureRect(), sf::IntRect(0, 0, 400, 50));
    EXPECT_EQ(wide.sprite->getPosition(), sf::Vector2f(30, 60));
    EXPECT_NEAR(wide.parallaxX, 0.8f, 1e-6f);
    EXPECT_EQ(wide.parallaxY, 0);  // a factor Tiled leaves out is 1
    EXPECT_EQ(room.backgrounds[1].sprite->getTextureRect(), sf::IntRect(0, 0, 100, -200));
    EXPECT_EQ(room.backgrounds[1].followY, 1);
    EXPECT_TRUE(wide.texture->isRepeated());
}

TEST_F(RoomLoading, BrokenFilesAreNamedAndLeaveAnEmptyRoom) {
    testing::internal::CaptureStdout();
    LoadRoomMap(*app.window, "no-such-room.json", 32, 3.0f, 99);
    std::string missing = testing::internal::GetCapturedStdout();
    EXPECT_NE(missing.find("no-such-room.json"), std::string::npos);
    EXPECT_FALSE(CurrentRoom().loaded);
    EXPECT_TRUE(CurrentRoom().layers.empty());

    WriteFile("bad.json", "{\"width\": 3, ");
    testing::internal::CaptureStdout();
    LoadRoomMap(*app.window, "bad.json", 32, 3.0f, 99);
    EXPECT_NE(testing::internal::GetCapturedStdout().find("bad.json is not valid JSON"),
              std::string::npos);

    json encoded = Map(2, 1, {TileLayer("Ground", 2, 1, {1, 1})}, json::array());
    encoded["layers"][0]["encoding"] = "base64";
    encoded["layers"][0]["data"] = "AQAAAAEAAAA=";
    EXPECT_NE(Load(encoded).find("not stored as plain numbers"), std::string::npos);
    EXPECT_NE(Load(Map(3, 1, {TileLayer("Ground", 3, 1, {1, 1})}, json::array()))
                  .find("holds 2 tiles for 3 x 1"),
              std::string::npos);
    json noTileset =
        Map(1, 1, {TileLayer("Ground", 1, 1, {4})}, {Property("tsx name", "string", "Nowhere")});
    EXPECT_NE(Load(noTileset).find("Tileset-Nowhere.json"), std::string::npos);
    EXPECT_EQ(CurrentRoom().layers[0].tiles.size(), 1u);  // drawn empty, nothing lost
}

TEST(TiledProperties, FirstPropertyAndNumbersInText) {
    std::vector<TiledProperty> properties = {{"b", "string", "12", 0}, {"a", "int", "", 5}};
    EXPECT_EQ(PropertyInt(FirstProperty(properties)), 12);
    EXPECT_EQ(PropertyInt(FindProperty(properties, "a")), 5);
    EXPECT_EQ(PropertyInt(FindProperty(properties, "c")), 0);
    EXPECT_EQ(FirstProperty({}), nullptr);
}

// Elevators read from a map: the cabin's ride with the hero on board, levers pulled at the wrong
// moment, the per-room state file kept across visits (and a damaged one), and the long ride's zoom.
#include <gtest/gtest.h>

#include <nlohmann/json.hpp>

#include "support/fixture.h"
#include "support/game_fixture.h"
#include "world/camera.h"
#include "world/elevators.h"
#include "world/room.h"

using nlohmann::json;

namespace {

constexpr float kFrame = 1.0f / 60;
constexpr int kRoom = 7;
// The cabin: roof tiles on row 2, floor tiles on row 3, columns 2 to 4; its floor is 5 map px
// down the floor row. Stop 1 is ten tiles under stop 0.
const sf::Vector2f kStop0(112 * 3, 128 * 3), kStop1(112 * 3, 448 * 3);
const float kFloorTop = (3 * 32 + 5) * 3;
const sf::Vector2f kRider(336, kFloorTop);
const sf::FloatRect kInCabin(316, kFloorTop - 100, 40, 100);
const sf::FloatRect kAtLever0(10, 300, 40, 80);
const sf::FloatRect kAtLever1(10, 1260, 40, 80);
const std::string kFreshState =
    "#Elevator ID : 4\nPos ID : 0\n- Lever ID : 0\nLever is active : 1\n- Lever ID : 1\n"
    "Lever is active : 1\n\n";

Elevator& Cabin() {
    return CurrentRoom().elevators.at(0);
}

json Property(const std::string& name, const std::string& type, json value) {
    return {{"name", name}, {"type", type}, {"value", value}};
}

json Rect(const std::string& name, float x, float y, float w, float h) {
    return {{"id", 1}, {"name", name}, {"x", x}, {"y", y}, {"width", w}, {"height", h}};
}

json Point(float x, float y, json properties) {
    json object = Rect("", x, y, 0, 0);
    object["point"] = true;
    object["properties"] = properties;
    return object;
}

json Layer(const std::string& name, json objects) {
    return {{"type", "objectgroup"}, {"name", name}, {"objects", objects}};
}

json LeverLayer(float y, int stop) {
    return Layer("Lever",
                 {Rect("", 0, y - 32, 48, 32),
                  Point(24, y, {Property("id", "int", stop), Property("isActive", "bool", true)})});
}

json CabinTiles() {
    std::vector<unsigned> data(10 * 20, 0);
    for (int c = 2; c <= 4; c++) {
        data[2 * 10 + c] = 10;  // roof: tile 9
        data[3 * 10 + c] = 9;   // floor: tile 8, solid from 5 px down
    }
    return {{"type", "tilelayer"}, {"name", "Cabin"}, {"width", 10},
            {"height", 20},        {"data", data},    {"properties", {Property("id", "int", 4)}}};
}

// One elevator as the room sources write it: stops and trigger first, the cabin, its levers.
json ElevatorMap() {
    json stops = Layer(
        "Stops", {Point(112, 128, {Property("id", "int", 0)}),
                  Point(112, 448, {Property("id", "int", 1)}), Rect("Trigger", 64, 32, 96, 80)});
    json levers = {{"type", "group"},
                   {"name", "Lever group"},
                   {"layers", {LeverLayer(128, 0), LeverLayer(448, 1)}}};
    json cabin = {
        {"type", "group"}, {"name", "Elevator"}, {"layers", {stops, CabinTiles(), levers}}};
    json group = {{"type", "group"}, {"name", "Elevator group"}, {"layers", {cabin}}};
    json container = Layer("CameraContainer", {Rect("", 0, 0, 1280, 600)});
    return {{"type", "map"},
            {"orientation", "orthogonal"},
            {"infinite", false},
            {"width", 10},
            {"height", 20},
            {"tilewidth", 32},
            {"tileheight", 32},
            {"layers", {group, container}},
            {"properties", {Property("tsx name", "string", "Test")}}};
}

json Tileset() {
    json floor = {{"id", 8}, {"objectgroup", {{"objects", {Rect("", 0, 5, 32, 10)}}}}};
    return {{"type", "tileset"},  {"name", "Test"},  {"image", "Test.png"}, {"columns", 10},
            {"tilecount", 40},    {"tilewidth", 32}, {"tileheight", 32},    {"imagewidth", 320},
            {"imageheight", 128}, {"tiles", {floor}}};
}

class ElevatorRoom : public AppTest {
protected:
    void SetUp() override {
        AppTest::SetUp();
        std::filesystem::create_directories("Assets/Maps/Tilesets");
        WriteFile("Assets/Maps/Tilesets/Tileset-Test.json", Tileset().dump());
        sf::Image image;
        image.create(320, 128, sf::Color::Blue);
        ASSERT_TRUE(image.saveToFile("Assets/Maps/Tilesets/Test.png"));
        WriteFile("map.json", ElevatorMap().dump());
        CreateCamera({960, 540});
    }
    void TearDown() override {
        ReleaseRoom();
        DestroyElevatorDecorations();
        DestroyCamera();
        AppTest::TearDown();
    }

    void Load() {
        testing::internal::CaptureStdout();
        LoadRoomMap(*app.window, "map.json", 32, 3.0f, kRoom);
        testing::internal::GetCapturedStdout();
        CreateElevatorDecorations();
    }
    std::string State() { return ReadFile(ElevatorStatePath(kRoom)); }

    // Runs frames until the cabin rests; returns how many it took.
    int RideOut(sf::Vector2f& rider) {
        int frames = 0;
        testing::internal::CaptureStdout();
        while (Cabin().moving && frames < 1000) {
            UpdateElevators(kFrame, rider, {});
            frames++;
        }
        testing::internal::GetCapturedStdout();
        return frames;
    }
};

}  // namespace

TEST(ElevatorTrip, AFifthOfASecondPerTileAndLongTripsShortened) {
    auto trip = [](float tiles) {
        Elevator elevator;
        elevator.stops = {{{0, 0}, 0}, {{0, tiles * 96}, 1}};
        return ElevatorTravelDuration(elevator);
    };
    EXPECT_FLOAT_EQ(trip(10), 2.0f);
    EXPECT_FLOAT_EQ(trip(80), 16.0f);
    EXPECT_NEAR(trip(100), 20.0f, 1e-4);
    EXPECT_NEAR(trip(101), 13.5f, 0.05f);
    EXPECT_FLOAT_EQ(trip(0.9f), 0.0f);  // under a tile: no trip time at all
}

TEST_F(ElevatorRoom, TheCabinStandsOnItsFirstStopWithItsFloorAmongTheCollisions) {
    Load();
    ASSERT_EQ(CurrentRoom().elevators.size(), 1u);
    Elevator& cabin = Cabin();
    EXPECT_EQ(cabin.id, 4);
    EXPECT_EQ(cabin.sprite->getPosition(), kStop0);
    EXPECT_EQ(CurrentStopId(cabin), 0);
    ASSERT_EQ(cabin.collisionShapes.size(), 3u);
    ASSERT_EQ(CurrentRoom().collisions.size(), 3u);
    for (size_t k = 0; k < 3; k++) {
        EXPECT_EQ(CurrentRoom().collisions[k].shape, cabin.collisionShapes[k]);
        EXPECT_FLOAT_EQ(cabin.collisionShapes[k]->getPosition().y, kFloorTop);
    }
    EXPECT_TRUE(cabin.callTrigger->getGlobalBounds().contains(kRider));
    sf::FloatRect picture = cabin.sprite->getGlobalBounds();
    EXPECT_EQ(picture, sf::FloatRect(192, 192, 288, 192));
    EXPECT_EQ(cabin.levers.size(), 2u);
}

TEST_F(ElevatorRoom, TheCabinCarriesTheHeroToTheNextStopAndBack) {
    Load();
    InteractWithElevators(kInCabin);
    ASSERT_TRUE(Cabin().moving);
    sf::Vector2f rider = kRider;
    float topSpeed = 0;
    int frames = 0;
    testing::internal::CaptureStdout();
    while (Cabin().moving && frames < 1000) {
        UpdateElevators(kFrame, rider, {});
        topSpeed = std::max(topSpeed, ElevatorGearSpeed());
        frames++;
        // The hero keeps standing on the floor all the way down.
        EXPECT_FLOAT_EQ(rider.y, Cabin().collisionShapes[0]->getPosition().y);
    }
    testing::internal::GetCapturedStdout();
    EXPECT_NEAR(frames, 120, 2);  // ten tiles: two seconds
    EXPECT_EQ(Cabin().sprite->getPosition(), kStop1);
    EXPECT_EQ(CurrentStopId(Cabin()), 1);
    EXPECT_FLOAT_EQ(rider.y, kFloorTop + 960);
    EXPECT_FLOAT_EQ(rider.x, kRider.x);
    EXPECT_GT(topSpeed, 3.0f);
    EXPECT_LE(topSpeed, 5.0f);
    // The gears run down within 100 frames.
    sf::Vector2f away(5000, 5000);
    for (int i = 0; i < 100; i++) UpdateElevators(kFrame, away, {});
    EXPECT_EQ(ElevatorGearSpeed(), 0.0f);
    // Riding from the last stop goes back to the first; a hero outside is left behind.
    sf::FloatRect inCabin = kInCabin;
    inCabin.top += 960;
    InteractWithElevators(inCabin);
    RideOut(away);
    EXPECT_EQ(CurrentStopId(Cabin()), 0);
    EXPECT_EQ(away, sf::Vector2f(5000, 5000));
}

TEST_F(ElevatorRoom, ALeverFetchesTheCabinButNotWhileItMoves) {
    Load();
    sf::Vector2f away(5000, 5000);
    RideOut(away);  // the levers' first pull clip plays out
    for (int i = 0; i < 60; i++) UpdateElevators(kFrame, away, {});
    ASSERT_TRUE(LeverClipFinished(0));
    UpdateLeverHighlights(kAtLever1);
    EXPECT_TRUE(LeverHighlighted(1));
    EXPECT_FALSE(LeverHighlighted(0));
    // The lever at the cabin's own stop does nothing.
    InteractWithElevators(kAtLever0);
    EXPECT_FALSE(Cabin().moving);
    // Sent off from the cabin, then the far lever pulled on the way: the trip goes on unchanged.
    InteractWithElevators(kInCabin);
    ASSERT_TRUE(Cabin().moving);
    UpdateElevators(kFrame, away, {});
    UpdateLeverHighlights(kAtLever1);
    EXPECT_FALSE(LeverHighlighted(1));
    InteractWithElevators(kAtLever0);
    EXPECT_TRUE(LeverClipFinished(0));  // no pull while it moves
    RideOut(away);
    EXPECT_EQ(CurrentStopId(Cabin()), 1);
    // At rest at stop 1, lever 0 calls it back up and both levers play their pull.
    InteractWithElevators(kAtLever0);
    EXPECT_TRUE(Cabin().moving);
    EXPECT_FALSE(LeverClipFinished(0));
    EXPECT_FALSE(LeverClipFinished(1));
    RideOut(away);
    EXPECT_EQ(CurrentStopId(Cabin()), 0);
}

TEST_F(ElevatorRoom, TheStateFileKeepsTheCabinAndLeversAcrossVisits) {
    ASSERT_FALSE(std::filesystem::exists(ElevatorStatePath(kRoom)));
    Load();
    EXPECT_EQ(State(), kFreshState);  // written at the first visit
    InteractWithElevators(kInCabin);
    sf::Vector2f away(5000, 5000);
    RideOut(away);
    testing::internal::CaptureStdout();
    ReleaseRoom();
    testing::internal::GetCapturedStdout();
    std::string saved = kFreshState;
    saved.replace(saved.find("Pos ID : 0"), 10, "Pos ID : 1");
    EXPECT_EQ(State(), saved);
    EXPECT_FALSE(std::filesystem::exists(ElevatorStatePath(kRoom) + ".tmp"));

    // The next visit finds the cabin below, its floor and trigger with it.
    std::string edited = saved;
    edited.replace(edited.rfind("Lever is active : 1"), 19, "Lever is active : 0");
    WriteFile(ElevatorStatePath(kRoom), edited);
    Load();
    EXPECT_EQ(Cabin().sprite->getPosition(), kStop1);
    EXPECT_FLOAT_EQ(Cabin().collisionShapes[2]->getPosition().y, kFloorTop + 960);
    sf::Vector2f rider = kRider + sf::Vector2f(0, 960);
    EXPECT_TRUE(Cabin().callTrigger->getGlobalBounds().contains(rider));
    EXPECT_EQ(Cabin().levers[0].active, 1);
    EXPECT_EQ(Cabin().levers[1].active, 0);

    // Left in the middle of a trip, the cabin is found where it was going.
    Cabin().levers[1].active = 1;
    sf::FloatRect inCabin = kInCabin;
    inCabin.top += 960;
    InteractWithElevators(inCabin);
    for (int i = 0; i < 30; i++) UpdateElevators(kFrame, away, {});
    ASSERT_EQ(CurrentStopId(Cabin()), -1);
    testing::internal::CaptureStdout();
    ReleaseRoom();
    testing::internal::GetCapturedStdout();
    EXPECT_EQ(State(), kFreshState);
}

TEST_F(ElevatorRoom, ADamagedStateFileIsReportedAndReplacedByTheMapsState) {
    for (std::string damage :
         {std::string("#Elevator ID : 4\nPos ID : banana\n"),
          std::string("#Elevator ID : 4\nPos ID : 9\n"),
          std::string("#Elevator ID : 77\nPos ID : 1\n"), std::string("\x01\x02 garbage")}) {
        WriteFile(ElevatorStatePath(kRoom), damage);
        testing::internal::CaptureStderr();
        Load();
        std::string errors = testing::internal::GetCapturedStderr();
        EXPECT_NE(errors.find("damaged"), std::string::npos) << damage;
        EXPECT_EQ(Cabin().sprite->getPosition(), kStop0) << damage;
        EXPECT_EQ(State(), kFreshState) << damage;
        testing::internal::CaptureStdout();
        ReleaseRoom();
        testing::internal::GetCapturedStdout();
    }
}

TEST_F(ElevatorRoom, TheLongRideZoomsOutMidwayAndFitsTheRoomAfter) {
    Load();
    Camera& camera = GameCamera();
    UpdateCamera(kFrame, {960, 540});  // settles into following the hero
    RideZoom(1.0f, 10.0f);             // the first fifth: no zoom yet
    EXPECT_EQ(camera.mode, CAMERA_FOLLOW);
    RideZoom(3.0f, 10.0f);
    EXPECT_EQ(camera.mode, CAMERA_BLEND);
    EXPECT_EQ(camera.targetSize, sf::Vector2f(3840, 2160));
    testing::internal::CaptureStdout();
    for (int i = 0; i < 320 && camera.mode == CAMERA_BLEND; i++) UpdateCamera(kFrame, {960, 540});
    EXPECT_EQ(camera.mode, CAMERA_FOLLOW);
    EXPECT_EQ(camera.view->getSize(), sf::Vector2f(3840, 2160));
    RideZoom(4.0f, 10.0f);  // already out: no second blend
    EXPECT_EQ(camera.mode, CAMERA_FOLLOW);
    RideZoom(6.5f, 10.0f);
    EXPECT_EQ(camera.mode, CAMERA_BLEND);
    // The container, 3840 x 1800, would fit a view wider than the screen: the normal framing.
    sf::Vector2f fitted(1920, 1080);
    EXPECT_EQ(camera.targetSize, fitted);
    for (int i = 0; i < 320 && camera.mode == CAMERA_BLEND; i++) UpdateCamera(kFrame, {960, 540});
    testing::internal::GetCapturedStdout();
    EXPECT_EQ(camera.view->getSize(), fitted);
    // With no cabin moving, the view is left alone.
    UpdateElevatorRideZoom(12);
    EXPECT_EQ(camera.mode, CAMERA_FOLLOW);
    // A trip that ends while the view is out: it comes back once the blend is over.
    RideZoom(3.0f, 10.0f);
    RideZoom(0, 10.0f);
    EXPECT_EQ(camera.targetSize, sf::Vector2f(3840, 2160));  // not while the blend runs
    for (int i = 0; i < 320 && camera.mode == CAMERA_BLEND; i++) UpdateCamera(kFrame, {960, 540});
    RideZoom(0, 10.0f);
    EXPECT_EQ(camera.mode, CAMERA_BLEND);
    EXPECT_EQ(camera.targetSize, fitted);
}

namespace {

// The same elevator in a city room of the game, on the city's own cabin tiles.
class ElevatorGame : public GameRoomTest {
protected:
    static constexpr int kCityRoom = 90;

    void SetUp() override {
        GameRoomTest::SetUp();
        json map = ElevatorMap();
        map["properties"] = {Property("tsx name", "string", "City")};
        json& tiles = map["layers"][0]["layers"][0]["layers"][1]["data"];
        for (json& tile : tiles) {
            if (tile == 10) tile = 44;  // the roof's middle
            if (tile == 9) tile = 47;   // the floor's middle
        }
        std::filesystem::create_directories("Assets/Maps/Rooms");
        WriteFile(RoomMapPath(kCityRoom), map.dump());
        Enter(kCityRoom);
    }
};

}  // namespace

TEST_F(ElevatorGame, TheHeroRidesDownStandingOnTheFloorAndBackUp) {
    StandAt(kRider);
    // Where the hero's feet rest above a floor is the hero's own business: keep it all the way.
    float above = kFloorTop - GetPlayerPosition().y;
    ASSERT_LT(std::abs(above), 4.0f);
    auto floor = [] { return Cabin().collisionShapes[0]->getPosition().y; };
    TapAction(BINDING_INTERACT);
    ASSERT_TRUE(Cabin().moving);
    for (int i = 0; i < 130; i++) {
        Update(1);
        ASSERT_NEAR(floor() - GetPlayerPosition().y, above, 1.0f) << "frame " << i;
    }
    EXPECT_EQ(CurrentStopId(Cabin()), 1);
    EXPECT_TRUE(PlayerStanding());
    EXPECT_NEAR(GetPlayerPosition().y, kFloorTop + 960 - above, 1.0f);
    Update(10);
    TapAction(BINDING_INTERACT);
    ASSERT_TRUE(Cabin().moving);
    for (int i = 0; i < 130; i++) {
        Update(1);
        ASSERT_NEAR(floor() - GetPlayerPosition().y, above, 1.0f) << "frame " << i;
    }
    EXPECT_EQ(CurrentStopId(Cabin()), 0);
    EXPECT_TRUE(PlayerStanding());
}

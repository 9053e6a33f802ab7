#include "hud/map_screen.h"

#include <algorithm>
#include <filesystem>
#include <string>

#include "app/game.h"
#include "app/input.h"
#include "common/ease.h"
#include "common/log.h"
#include "interactables/checkpoint_menu.h"
#include "interactables/statues.h"
#include "player/player.h"
#include "world/camera.h"
#include "world/room.h"
#include "world/room_lifecycle.h"
#include "world/transition.h"

namespace {

struct RoomPlace {
    sf::Vector2f size;
    sf::Vector2f position;
    float previewScale;
};

// The world's shape: rooms lie where their rectangles lie, and doors join rectangles that touch.
const RoomPlace kPlaces[kMapRoomCount] = {
    {{182, 32.5f}, {192, 540}, 0.35f},
    {{143, 93.6f}, {289.5f, 612.8f}, 0.35f},
    {{104, 52}, {422.1f, 592}, 0.35f},
    {{104, 65}, {535.2f, 628.4f}, 0.35f},
    {{104, 32.5f}, {422.1f, 644}, 0.35f},
    {{91, 52}, {163.4f, 605}, 0.35f},
    {{19.5f, 19.5f}, {199.8f, 649.2f}, 1},
    {{123.5f, 45.5f}, {544.3f, 562.1f}, 0.55f},
    {{19.5f, 19.5f}, {624.9f, 575.1f}, 1},
    {{178.1f, 32.5f}, {686, 644}, 0.25f},
    {{178.1f, 32.5f}, {873.2f, 644}, 0.35f},
    {{32.5f, 356.2f}, {987.6f, 482.8f}, 0.1f},
    {{97.5f, 65}, {1063, 335.9f}, 1},
    {{97.5f, 32.5f}, {1169.6f, 352.8f}, 1},
    {{97.5f, 136.5f}, {1277.5f, 300.8f}, 0.35f},
    {{97.5f, 136.5f}, {1385.4f, 300.8f}, 0.35f},
    {{162.5f, 71.5f}, {1525.8f, 333.3f}, 0.35f},
    {{65, 52}, {1185.2f, 267}, 0.35f},
    {{122.2f, 50.7f}, {1505, 257.9f}, 0.35f},
    {{91, 32.5f}, {1620.7f, 267}, 0.35f},
};

// The statue rooms (2, 4, 13, 16) and where their teleport button stands over the picture.
const int kStatueRooms[4] = {1, 3, 12, 15};
const sf::Vector2f kTeleportPlaces[4] = {{830, 330}, {1210, 717}, {1205, 725}, {1050, 505}};

const sf::Color kForestFill(150, 200, 100, 175), kForestOutline(175, 200, 125, 255);
const sf::Color kCityFill(75, 100, 175, 175), kCityOutline(125, 175, 225, 255);
const sf::Color kZoomedFill(0, 0, 25, 255);
const sf::Color kClear(255, 255, 255, 0);
const sf::Vector2f kScreenCenter(960, 540);
constexpr float kZoomedScale = 100;
constexpr float kTeleportFade = 0.8f;
constexpr int kFirstCityRoom = 11;

MapScreen map;

int StatueSlot(int index) {
    for (int slot = 0; slot < 4; slot++) {
        if (kStatueRooms[slot] == index) return slot;
    }
    return -1;
}

std::string PreviewPath(int index) {
    return "Assets/Sprites/Minimap/Rooms/MiniMapRoom" + std::to_string(MapRoomNumber(index)) +
           ".png";
}

bool HeroAtStatue() {
    const auto& statues = Statues();
    return std::any_of(statues.begin(), statues.end(),
                       [](const Statue& statue) { return statue.showOutline != 0; });
}

void BuildRoom(int index) {
    MapRoom& room = map.rooms[index];
    const RoomPlace& place = kPlaces[index];
    bool city = MapRoomNumber(index) >= kFirstCityRoom;
    room.fill = city ? kCityFill : kForestFill;
    room.home = place.position;
    CreateButton(room.button, place.size, map.font.get(), std::to_string(MapRoomNumber(index)), 15,
                 sf::Color::Transparent, room.fill, place.position);
    room.button.shape->setOutlineThickness(2);
    room.button.shape->setOutlineColor(city ? kCityOutline : kForestOutline);
}

// The statue icons beside their rooms and the hero's marker on his; the marker stays off the map
// in the rooms beyond it.
void BuildMarks() {
    map.iconTexture = LoadTexture("Assets/Sprites/Minimap/Teleport/CheckpointIcon.png");
    for (int slot = 0; slot < 4; slot++) {
        sf::Vector2f at = kPlaces[kStatueRooms[slot]].position - sf::Vector2f(20, 0);
        CreateSprite(map.icons[slot], map.iconTexture.get(), at, {0.5f, 0.5f}, {0.55f, 0.55f});
    }
    map.markerTexture = LoadTexture("Assets/Sprites/Minimap/Teleport/Player.png");
    CreateSprite(map.marker, map.markerTexture.get(), {-10, -10}, {0.5f, 0.5f}, {1, 1});
    int here = CurrentRoomNumber() - 1;
    if (here < 0 || here >= kMapRoomCount) return;
    float beside = IsStatueRoom(here) ? 20.0f : 0.0f;
    map.marker->setPosition(kPlaces[here].position + sf::Vector2f(beside, 0));
}

void OpenMap(bool offerTeleport) {
    FreeMapScreen();
    map.offerTeleport = offerTeleport ? 1 : 0;
    map.font = LoadFont("Assets/Fonts/alagard.ttf");
    map.backdrop = std::make_unique<sf::RectangleShape>(sf::Vector2f(1920, 1080));
    map.backdrop->setFillColor(sf::Color(0, 0, 0, 200));
    for (int index = 0; index < kMapRoomCount; index++) BuildRoom(index);
    BuildMarks();
    map.built = true;
    OverlayFlags& flags = Overlays();
    flags.mapOpen = 1;
    flags.worldFrozen = 1;
}

void CloseMap() {
    FreeMapScreen();
    Overlays().mapOpen = 0;
}

void ClampOffset() {
    map.offset.x = std::clamp(map.offset.x, -kMapDragLimit.x, kMapDragLimit.x);
    map.offset.y = std::clamp(map.offset.y, -kMapDragLimit.y, kMapDragLimit.y);
}

void ResetTweens(MapRoom& room) {
    room.positionTween = room.scaleTween = Tween();
    room.previewTween = room.fillTween = ColorTween();
}

// The pointer taken back onto the undragged map.
void HoverRooms(sf::Vector2f pointer) {
    for (MapRoom& room : map.rooms) {
        room.button.hovered = UpdateButtonHover(pointer - map.offset, room.button);
    }
}

void HoverTeleport(sf::Vector2f pointer) {
    MapRoom& room = map.rooms[map.pickedRoom];
    if (!room.teleportAvailable || !room.teleportButton) return;
    room.teleportButton->setScale(1, 1);
    room.teleportHovered = room.teleportButton->getGlobalBounds().contains(pointer) ? 1 : 0;
    if (room.teleportHovered) room.teleportButton->setScale(1.5f, 1.5f);
}

void LoadPreview(MapRoom& room, int index) {
    if (room.preview) return;
    room.previewTexture = LoadTexture(PreviewPath(index));
    if (!room.previewTexture) return;
    float scale = kPlaces[index].previewScale;
    CreateSprite(room.preview, room.previewTexture.get(), kScreenCenter, {0.5f, 0.5f},
                 {scale, scale});
    room.preview->setColor(kClear);
}

// Only to a statue room that is built, and only when the map was opened at a statue.
void OfferTeleport(MapRoom& room, int index) {
    int slot = StatueSlot(index);
    if (slot < 0 || !map.offerTeleport || room.teleportButton) return;
    if (!std::filesystem::exists(RoomMapPath(MapRoomNumber(index)))) return;
    room.teleportTexture = LoadTexture("Assets/Sprites/MiniMap/Teleport/CheckpointIcon.png");
    CreateSprite(room.teleportButton, room.teleportTexture.get(), kTeleportPlaces[slot],
                 {0.5f, 0.5f}, {1, 1});
    room.teleportAvailable = 1;
}

// The zoom starts where the room is seen, and the map goes back home under it.
void PickRoom(int index) {
    MapRoom& room = map.rooms[index];
    ResetTweens(room);
    room.button.shape->setPosition(room.home + map.offset);
    map.offset = {0, 0};
    map.roomPicked = 1;
    map.pickedRoom = index;
    LoadPreview(room, index);
    OfferTeleport(room, index);
}

void StepPreview(MapRoom& room, sf::Color goal, float dt) {
    if (!room.preview) return;
    sf::Color color = room.preview->getColor();
    StepColorTween(room.previewTween, color, goal, kMapZoomSeconds, EASE_CUBIC_IN_OUT, dt);
    room.preview->setColor(color);
}

void StepFill(MapRoom& room, sf::Color goal, float dt) {
    sf::Color color = room.button.shape->getFillColor();
    StepColorTween(room.fillTween, color, goal, kMapZoomSeconds, EASE_CUBIC_IN_OUT, dt);
    room.button.shape->setFillColor(color);
}

void ZoomIn(float dt) {
    MapRoom& room = map.rooms[map.pickedRoom];
    sf::RectangleShape& shape = *room.button.shape;
    map.offset = {0, 0};
    TweenPosition(shape, kScreenCenter, kMapZoomSeconds, EASE_CUBIC_IN_OUT, dt, room.positionTween);
    if (TweenShapeScale(shape, {kZoomedScale, kZoomedScale}, kMapZoomSeconds, dt,
                        room.scaleTween)) {
        map.zoomedIn = 1;
    }
    StepPreview(room, sf::Color::White, dt);
    StepFill(room, kZoomedFill, dt);
}

void ZoomOut(float dt) {
    MapRoom& room = map.rooms[map.pickedRoom];
    sf::RectangleShape& shape = *room.button.shape;
    TweenShapeScale(shape, {1, 1}, kMapZoomSeconds, dt, room.scaleTween);
    StepPreview(room, kClear, dt);
    StepFill(room, room.fill, dt);
    if (TweenPosition(shape, room.home, kMapZoomSeconds, EASE_CUBIC_IN_OUT, dt,
                      room.positionTween)) {
        // Exactly home, whatever the rounding of the last step.
        shape.setPosition(room.home);
        shape.setScale(1, 1);
        map.zoomedIn = 0;
        ResetTweens(room);
    }
}

// The hero set down at the statue of the room: no walk in, no fall speed, no pending action.
void ArriveAtStatue(sf::RenderWindow& window, int roomNumber) {
    Log("teleport to room %d\n", roomNumber);
    // The statue's menu stays with the room left behind.
    FreeCheckpointMenu();
    Overlays().checkpointMenuOpen = 0;
    Camera& camera = GameCamera();
    if (camera.view) camera.view->setSize(1920, 1080);
    camera.targetSize = camera.fixedSize = {1920, 1080};
    CleanupRoom();
    LoadNextTargetRoom(window, roomNumber);
    SetPlayerPosition(CheckpointSpawnPosition(0));
    ResetPlayerActions();
    Player& player = GetPlayer();
    player.body.vx = player.body.vy = 0;
    player.lastSafePosition = GetPlayerPosition();
    SettleCameraOn(GetPlayerPosition());
}

// Black first; once black, the room changes under the fade and the map closes.
void RunTeleport(sf::RenderWindow& window) {
    const ScreenFade& fade = Fade();
    if (fade.direction != FADE_TO_BLACK) {
        StartScreenFade(FADE_TO_BLACK, kTeleportFade);
        return;
    }
    if (!fade.done) return;
    ArriveAtStatue(window, MapRoomNumber(map.pickedRoom));
    StartScreenFade(FADE_TO_CLEAR, kTeleportFade);
    CloseMap();
}

// Once zoomed, the picture fills the screen opaquely: the darkening under it would not show.
bool ZoomCoversScreen() {
    if (!map.roomPicked) return false;
    const sf::RectangleShape& shape = *map.rooms[map.pickedRoom].button.shape;
    sf::FloatRect bounds = shape.getGlobalBounds();
    return shape.getFillColor().a == 255 && bounds.contains(0, 0) && bounds.contains(1919, 1079);
}

void DrawPicked(sf::RenderTarget& target) {
    const MapRoom& room = map.rooms[map.pickedRoom];
    target.draw(*room.button.shape);
    if (room.preview && room.preview->getColor().a != 0) target.draw(*room.preview);
    if (room.teleportButton) target.draw(*room.teleportButton);
}

// The labels are clear and not drawn; the room zooming out goes over the others.
void DrawRooms(sf::RenderTarget& target) {
    sf::RenderStates dragged(sf::Transform().translate(map.offset));
    for (int index = 0; index < kMapRoomCount; index++) {
        if (index != map.pickedRoom) target.draw(*map.rooms[index].button.shape, dragged);
    }
    if (map.pickedRoom >= 0) {
        const MapRoom& last = map.rooms[map.pickedRoom];
        target.draw(*last.button.shape, dragged);
        if (last.preview && last.preview->getColor().a != 0) target.draw(*last.preview, dragged);
    }
    for (const SpritePtr& icon : map.icons) {
        if (icon) target.draw(*icon, dragged);
    }
    if (map.marker) target.draw(*map.marker, dragged);
}

}  // namespace

int MapRoomNumber(int index) {
    return index + 1;
}

bool IsStatueRoom(int index) {
    return StatueSlot(index) >= 0;
}

void RequestMapScreen(bool fromStatue) {
    const TransitionState& transition = Transition();
    if (Overlays().mapOpen || transition.transitionActive || transition.respawnStep != 0) return;
    if (GetPlayer().body.state == PLAYER_DEAD) return;
    OpenMap(fromStatue || HeroAtStatue());
}

void MapKeyPressed(int key) {
    if (!map.built || map.teleportRequested) return;
    if (key == sf::Keyboard::M) {
        CloseMap();
    } else if (key == sf::Keyboard::Escape) {
        if (!map.roomPicked || !map.zoomedIn) {
            CloseMap();
            return;
        }
        map.roomPicked = 0;
        for (MapRoom& room : map.rooms) ResetTweens(room);
    }
}

void MapPointerMoved(sf::Vector2f pointer) {
    if (!map.built) return;
    if (map.roomPicked) {
        HoverTeleport(pointer);
        return;
    }
    if (map.dragging) {
        map.offset = pointer + map.dragOffset;
        ClampOffset();
    }
    if (!map.zoomedIn) HoverRooms(pointer);
}

void MapPointerPressed(sf::Vector2f pointer, sf::Mouse::Button button) {
    if (!map.built || button != sf::Mouse::Left || map.teleportRequested) return;
    map.dragOffset = map.offset - pointer;
    if (map.roomPicked) {
        HoverTeleport(pointer);
        if (map.rooms[map.pickedRoom].teleportHovered) map.teleportRequested = 1;
        return;
    }
    if (map.zoomedIn) return;
    HoverRooms(pointer);
    for (int index = 0; index < kMapRoomCount; index++) {
        if (map.rooms[index].button.hovered) {
            PickRoom(index);
            return;
        }
    }
}

void UpdateMapScreen(sf::RenderWindow& window, float dt) {
    if (!map.built) return;
    map.dragging = InputMouseButtonDown(sf::Mouse::Left) && !map.roomPicked ? 1 : 0;
    if (map.roomPicked) {
        ZoomIn(dt);
    } else if (map.zoomedIn) {
        ZoomOut(dt);
    }
    ClampOffset();
    if (map.teleportRequested) RunTeleport(window);
}

void DrawMapScreen(sf::RenderTarget& target) {
    if (!map.built) return;
    if (!ZoomCoversScreen()) target.draw(*map.backdrop);
    if (map.roomPicked) {
        DrawPicked(target);
    } else {
        DrawRooms(target);
    }
}

void FreeMapScreen() {
    map = MapScreen();
}

const MapScreen& GetMapScreen() {
    return map;
}

sf::Vector2f MapRoomOnScreen(int index) {
    return map.rooms[index].button.shape->getPosition() + map.offset;
}

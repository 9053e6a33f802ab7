#include "world/room_lifecycle.h"

#include "enemies/enemies.h"
#include "hud/boss_hud.h"
#include "interactables/chests.h"
#include "interactables/merchant.h"
#include "interactables/statues.h"
#include "world/camera.h"
#include "world/doors.h"
#include "world/elevators.h"
#include "world/room.h"

namespace {

int currentRoom = 0;
// The last room fitted the view to itself: the next room gets the normal framing back. So does the
// room after the shaft (room 12), left while its long ride's wide view was still out.
bool viewFitted = false;
const sf::Vector2f kNormalViewSize(1920, 1080);

// Rooms 14 and 23 show their whole container at once; every other room the normal framing.
void FrameRoom(int roomNumber) {
    Camera& camera = GameCamera();
    if (!camera.view) return;
    bool fits = (roomNumber == 14 || roomNumber == 23) && CurrentRoom().cameraContainer;
    bool reframe = fits || viewFitted;
    viewFitted = fits || roomNumber == 12;
    if (!reframe) return;
    sf::Vector2f size =
        fits ? FitViewSize(CurrentRoom().cameraContainer->getSize()) : kNormalViewSize;
    // A blend (as a game starts) goes on towards its target's size: that size is set too.
    int settling = camera.mode == CAMERA_BLEND ? camera.blendTarget : camera.mode;
    if (settling == CAMERA_FOLLOW) camera.targetSize = size;
    if (settling == CAMERA_FIXED) camera.fixedSize = size;
    camera.view->setSize(size);
}

}  // namespace

void LoadNextTargetRoom(sf::RenderWindow& window, int roomNumber) {
    currentRoom = roomNumber;
    LoadRoomMap(window, RoomMapPath(roomNumber), 32, 3.0f, roomNumber);
    LoadStatueTextures(CurrentRoom().region);
    FrameRoom(roomNumber);
    const Room& room = CurrentRoom();
    CreateElevatorDecorations();
    CreateDoorSprites(room.region);
    AddRoomStatues(roomNumber);
    CreateChests();
    CreateMerchant();
    LoadBossHud();
    for (const EnemySpawn& spawn : room.enemySpawns) {
        AddEnemy(spawn.enemyType, spawn.position, spawn.containerId, room.region);
    }
    if (room.bossRoom != 0) AddBossBars();
}

void CleanupRoom() {
    RemoveAllBossBars();
    DestroyAllEnemies();
    ReleaseRoom();
    DestroyStatues();
    DestroyChests();
    DestroyMerchant();
    FreeDoorSprites();
    DestroyElevatorDecorations();
}

int CurrentRoomNumber() {
    return currentRoom;
}

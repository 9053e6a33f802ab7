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

}  // namespace

void LoadNextTargetRoom(sf::RenderWindow& window, int roomNumber) {
    currentRoom = roomNumber;
    LoadRoomMap(window, RoomMapPath(roomNumber), 32, 3.0f, roomNumber);
    LoadStatueTextures(CurrentRoom().region);
    Camera& camera = GameCamera();
    if ((roomNumber == 14 || roomNumber == 23) && camera.view && CurrentRoom().cameraContainer) {
        sf::Vector2f fitted = FitViewSize(CurrentRoom().cameraContainer->getSize());
        if (camera.mode == CAMERA_FOLLOW) camera.targetSize = fitted;
        if (camera.mode == CAMERA_FIXED) camera.fixedSize = fitted;
        camera.view->setSize(fitted);
    }
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

#include "world/transition.h"

#include "common/ease.h"
#include "common/log.h"
#include "enemies/enemies.h"
#include "player/player.h"
#include "player/save.h"
#include "world/camera.h"
#include "world/room.h"
#include "world/room_lifecycle.h"

namespace {

TransitionState transition;

const char* const kBanner =
    "\n---------------------------------------------------------\n"
    "-----------------------------------------------------\n"
    "TRANSITION !!!!!!!!!!!!!!!!!!!\n"
    "-----------------------------------------------------------------\n"
    "------------------------------------------------------------------------\n";

const float kDoorFade = 0.8f;

sf::FloatRect DoorBounds(int index) {
    const auto& doors = CurrentRoom().transitionDoors;
    if (index < 0 || index >= int(doors.size())) return {};
    return doors[index].shape->getGlobalBounds();
}

// Leaving: the door's far side; arriving: the arrival point, on the door's axis.
sf::Vector2f WalkGoal(int direction, sf::Vector2f position, const sf::FloatRect& door) {
    bool leaving = Fade().direction == FADE_TO_BLACK;
    switch (direction) {
        case TRANSITION_RIGHT:
            return {leaving ? door.left + door.width : transition.arrivalPoint.x, position.y};
        case TRANSITION_UP: return {position.x, leaving ? door.top : transition.arrivalPoint.y};
        case TRANSITION_DOWN:
            return {position.x, leaving ? door.top + 2 * door.height : transition.arrivalPoint.y};
        default: return {leaving ? door.left : transition.arrivalPoint.x, position.y};
    }
}

// The eased vertical rise out of a hole in the floor.
int RiseIntoRoom(sf::Sprite& sprite, float dt) {
    Tween& tween = transition.riseTween;
    if (!tween.started) {
        tween = Tween();
        tween.started = 1;
        tween.duration = 1.0f;
        tween.easing = EASE_BACK_IN_OUT;
        tween.from = sprite.getPosition();
    }
    tween.elapsed += dt;
    float progress = std::min(1.0f, tween.elapsed / tween.duration);
    float eased = Ease(tween.easing, progress);
    float y = tween.from.y + eased * (transition.arrivalPoint.y - tween.from.y);
    sprite.setPosition(sprite.getPosition().x, y);
    if (progress >= 1 && sprite.getPosition().y <= transition.arrivalPoint.y + 0.5f) {
        tween = Tween();
        return 1;
    }
    return 0;
}

void StartFade(int direction, float duration) {
    StartScreenFade(direction, duration);
}

sf::Vector2f FocusOnBoss() {
    return BossFocusPoint(GameCamera().view->getCenter());
}

// The view's size after a door: zoom in when the container is smaller than the view.
void SizeViewForArrival() {
    Camera& camera = GameCamera();
    if (!camera.view || !CurrentRoom().cameraContainer) return;
    sf::Vector2f container = CurrentRoom().cameraContainer->getSize();
    sf::Vector2f view = camera.view->getSize();
    float sx = container.x / view.x, sy = container.y / view.y;
    if (sx < 1 || sy < 1) {
        sf::Vector2f size = view * std::min(sx, sy);
        camera.view->setSize(size);
        camera.fixedSize = camera.targetSize = size;
    } else if (camera.mode == CAMERA_FOLLOW) {
        camera.view->setSize(camera.targetSize);
    } else if (camera.mode == CAMERA_FIXED) {
        camera.view->setSize(camera.fixedSize);
    }
}

void StartRespawnZoom() {
    Camera& camera = GameCamera();
    if (camera.mode == CAMERA_BLEND) return;
    sf::Vector2f feet = GetPlayerPosition();
    camera.fixedCenter = {feet.x, feet.y - 0.14f * camera.view->getSize().y};
    camera.fixedRotation = 0;
    camera.fixedSize = {576, 324};
    camera.blendTarget = CAMERA_FIXED;
    camera.mode = CAMERA_BLEND;
    camera.blendDuration = 5.0f;
    camera.centerEasing = camera.sizeEasing = camera.rotationEasing = EASE_CUBIC_IN;
    if (Fade().direction != FADE_TO_BLACK) StartFade(FADE_TO_BLACK, 5.0f);
}

void PlaceAtCheckpoint() {
    sf::Vector2f spawn = CheckpointSpawnPosition(Save().checkpointID);
    SetPlayerPosition(spawn);
    Camera& camera = GameCamera();
    if (camera.mode != CAMERA_BLEND) {
        camera.fixedSize = camera.view->getSize();
        camera.fixedRotation = 0;
        camera.fixedCenter = {spawn.x, spawn.y - 150};
    }
    GetPlayer().body.blocked[CONTACT_DOWN] = 1;
    UpdateScreenFade(camera.view->getCenter(), camera.view->getSize(), 0);
}

void StartRespawnUnzoom() {
    Camera& camera = GameCamera();
    if (camera.mode == CAMERA_BLEND) return;
    camera.targetRotation = 0;
    camera.targetSize = {1920, 1080};
    camera.blendMovesCenter = 1;
    camera.blendTarget = CAMERA_FOLLOW;
    camera.mode = CAMERA_BLEND;
    camera.blendDuration = 3.0f;
    camera.centerEasing = camera.sizeEasing = camera.rotationEasing = EASE_CUBIC_OUT;
    if (Fade().direction != FADE_TO_CLEAR) StartFade(FADE_TO_CLEAR, 3.0f);
}

}  // namespace

TransitionState& Transition() {
    return transition;
}

void ResetTransition() {
    transition = TransitionState();
}

int TransitionDirectionOf(const std::string& word, bool present) {
    if (!present) return TRANSITION_LEFT;
    if (word == "Right") return TRANSITION_RIGHT;
    if (word == "Up") return TRANSITION_UP;
    if (word == "Down") return TRANSITION_DOWN;
    return TRANSITION_LEFT;
}

void CheckTransitionDoors() {
    sf::Vector2f feet = GetPlayerPosition();
    sf::Vector2f head(feet.x, PlayerBodyBounds().top);
    const auto& doors = CurrentRoom().transitionDoors;
    int entered = -1;
    for (int i = 0; i < int(doors.size()); i++) {
        sf::FloatRect bounds = doors[i].shape->getGlobalBounds();
        if (bounds.contains(feet) || bounds.contains(head)) entered = i;
    }
    if (entered < 0) return;
    Log("%s", kBanner);
    transition.transitionDoor = entered;
    transition.transitionDirection =
        TransitionDirectionOf(doors[entered].cameraTransition, doors[entered].hasCameraTransition);
    if (Fade().direction != FADE_TO_BLACK) StartFade(FADE_TO_BLACK, kDoorFade);
    transition.transitionActive = 1;
    transition.bossFocusRequest = 1;
    GetPlayer().body.controllable = 0;
}

void UpdateDoorTransition(sf::RenderWindow& window, float dt) {
    int direction = transition.transitionDirection;
    Player& player = GetPlayer();
    bool sideways = direction == TRANSITION_LEFT || direction == TRANSITION_RIGHT;
    if (!PlayerStanding() && sideways) {
        player.sprite->move(0, 500 * dt);
        return;
    }
    int arrived = WalkThroughDoor(direction, *player.sprite, transition.transitionDoor, dt);
    int pose = arrived ? PLAYER_IDLE : PLAYER_WALK;
    if (player.body.state != pose) SetPlayerState(pose);
    if (!arrived || !(Fade().done || Fade().direction == FADE_TO_CLEAR)) return;
    if (Fade().direction == FADE_TO_BLACK) {
        ChangeRoomThroughDoor(window);
        StartFade(FADE_TO_CLEAR, kDoorFade);
        return;
    }
    if (CurrentRoom().bossRoom != 0) {
        if (transition.bossFocusRequest) {
            StartBossFocus(FocusOnBoss());
            transition.bossFocusRequest = 0;
        }
        if (GameCamera().mode == CAMERA_BLEND) return;
    }
    EndDoorTransition();
}

int WalkThroughDoor(int direction, sf::Sprite& sprite, int door, float dt) {
    sf::FloatRect bounds = DoorBounds(door);
    // Through a hole in the ceiling or the floor the door carries the hero: the fall speed
    // gathered meanwhile would otherwise pull back down harder than the walk lifts.
    if (direction == TRANSITION_UP || direction == TRANSITION_DOWN) GetPlayer().body.vy = 0;
    sf::Vector2f goal = WalkGoal(direction, sprite.getPosition(), bounds);
    float walkSpeed = GetPlayer().tuning.walkSpeed;
    switch (direction) {
        case TRANSITION_RIGHT:
            SetPlayerFacing(true);
            return MoveSpriteTowards(sprite, goal, walkSpeed, dt, 1);
        case TRANSITION_UP:
            if (Fade().direction == FADE_TO_CLEAR) return RiseIntoRoom(sprite, dt);
            return MoveSpriteTowards(sprite, goal, walkSpeed, dt, 1);
        case TRANSITION_DOWN:
            return MoveSpriteTowards(sprite, goal, GetPlayer().tuning.maxFallSpeed, 1, 1);
        default: SetPlayerFacing(false); return MoveSpriteTowards(sprite, goal, walkSpeed, dt, 1);
    }
}

void ChangeRoomThroughDoor(sf::RenderWindow& window) {
    int direction = transition.transitionDirection;
    const TransitionDoor& entered = CurrentRoom().transitionDoors[transition.transitionDoor];
    int targetRoom = entered.targetedRoom;
    int targetDoor = entered.targetedDoorId;
    CleanupRoom();
    LoadNextTargetRoom(window, targetRoom);
    transition.transitionDoor = targetDoor;
    const Room& room = CurrentRoom();
    int exit = -1;
    for (const DoorSpawn& spawn : room.doorSpawns) {
        if (spawn.id != targetDoor) continue;
        for (int i = 0; i < int(room.transitionDoors.size()) && exit < 0; i++) {
            if (room.transitionDoors[i].id == spawn.linkedDoorId) exit = i;
        }
        if (exit >= 0) break;
    }
    if (exit < 0) {
        Log("No door found with this id !\n");
    } else {
        sf::FloatRect d = DoorBounds(exit);
        sf::Vector2f placed[] = {{d.left + d.width, d.top + d.height},
                                 {d.left, d.top + d.height},
                                 {d.left + d.width / 2, d.top + 2 * d.height},
                                 {d.left + d.width / 2, d.top + d.height}};
        SetPlayerPosition(placed[direction]);
        transition.transitionDoor = exit;
    }
    transition.arrivalPoint = {0, 0};
    for (const DoorSpawn& spawn : room.doorSpawns) {
        if (spawn.id == targetDoor) {
            transition.arrivalPoint = spawn.position;
            break;
        }
    }
    SizeViewForArrival();
}

void EndDoorTransition() {
    transition.transitionActive = 0;
    Player& player = GetPlayer();
    player.body.controllable = 1;
    player.lastSafePosition = GetPlayerPosition();
    // Straight into IDLE, without the state's sound.
    player.body.stateEntered = 1;
    player.body.state = PLAYER_IDLE;
    RestartAnimation(player.clips[PLAYER_IDLE]);
    player.body.hitDealt = 0;
    player.stateTimer = 0;
}

void UpdateRespawnSequence(sf::RenderWindow& window) {
    Player& player = GetPlayer();
    player.body.controllable = 0;
    switch (transition.respawnStep) {
        case 1:
            StartRespawnZoom();
            transition.respawnStep = 2;
            break;
        case 2:
            if (GameCamera().mode == CAMERA_FIXED) transition.respawnStep = 3;
            break;
        case 3:
            CleanupRoom();
            LoadNextTargetRoom(window, Save().roomID);
            transition.respawnStep = 4;
            [[fallthrough]];
        case 4:
            PlaceAtCheckpoint();
            transition.respawnStep = 5;
            break;
        case 5:
            player.body.blocked[CONTACT_DOWN] = 1;
            if (player.body.state == PLAYER_DEAD) SetPlayerState(PLAYER_REVIVE);
            if (player.body.state == PLAYER_IDLE) transition.respawnStep = 6;
            break;
        case 6:
            StartRespawnUnzoom();
            transition.respawnStep = 7;
            break;
        case 7:
            if (GameCamera().mode == CAMERA_FOLLOW) transition.respawnStep = 8;
            break;
        case 8:
            player.body.controllable = 1;
            player.lastSafePosition = GetPlayerPosition();
            transition.respawnStep = 0;
            break;
        default: break;
    }
}

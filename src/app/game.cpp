#include "app/game.h"

#include <SFML/Audio/Listener.hpp>

#include "app/region_music.h"
#include "common/log.h"
#include "menus/credits.h"
#include "menus/settings_screen.h"
#include "world/camera.h"
#include "world/room.h"
#include "world/room_draw.h"
#include "world/room_lifecycle.h"

namespace {

OverlayFlags flags;
bool loaded = false;

// A new game starts in the first room of the forest, at its checkpoint 0.
const int kStartRoom = 1;
const int kStartCheckpoint = 0;

// Where the hero stands: the camera's target.
sf::Vector2f heroPosition;

const char* const kNoContainer = "Camera container is not set !\n";

sf::Vector2f CheckpointPosition(int id) {
    for (const CheckpointSpawn& spawn : CurrentRoom().checkpointSpawns) {
        if (spawn.id == id) return spawn.position;
    }
    return {0, 0};
}

void RunWorld(float dt) {
    sf::View& view = *GameCamera().view;
    sf::Listener::setPosition(view.getCenter().x, view.getCenter().y, 0);
    UpdateBackgrounds(view);
    for (int check = 0; check < 2; check++) {
        if (!CurrentRoom().cameraContainer) Log("%s", kNoContainer);
    }
    UpdateCamera(dt, heroPosition);
    GameCamera().shake = 0;
    UpdateRoomProximity(view.getCenter(), 1.21f * view.getSize().x, dt);
    if (flags.respawnStep == 0) ClampViewToContainer();
}

}  // namespace

OverlayFlags& Overlays() {
    return flags;
}

void LoadGame(sf::RenderWindow& window) {
    Log("Load Game\n");
    flags = OverlayFlags();
    heroPosition = {0, 0};
    CreateCamera(heroPosition);
    LoadNextTargetRoom(window, kStartRoom);
    heroPosition = CheckpointPosition(kStartCheckpoint);
    LastViewCenter() = {0, 0};
    CreateScreenFade();
    flags.transitionActive = 0;
    flags.respawnStep = 0;
    LoadRegionMusic();
    loaded = true;
}

void UpdateGame(sf::RenderWindow& window, float dt) {
    (void)window;
    if (!loaded) return;
    flags.worldFrozen =
        (flags.consoleOpen || flags.pauseOpen || flags.mapOpen || flags.explanationOpen) ? 1 : 0;
    if (!flags.worldFrozen) RunWorld(dt);
    UpdateRegionMusic();
    const sf::View& view = *GameCamera().view;
    UpdateScreenFade(view.getCenter(), view.getSize(), dt);
}

void DrawGame(sf::RenderWindow& window) {
    if (!loaded) return;
    // The world is drawn with the view the window kept from the previous frame.
    DrawRoomBackgrounds(window);
    DrawRoomMiddleLayers(window);
    DrawRoomDebug(window);
    DrawRoomForeground(window);
    window.setView(*GameCamera().view);
    if (Fade().shape) window.draw(*Fade().shape);
}

void CleanupGame() {
    if (!loaded) return;
    DestroyCamera();
    ReleaseRoom();
    FreeSettingsScreen();
    FreeCredits();
    DestroyScreenFade();
    // The loops end with the game: the title menu is silent.
    FreeRegionMusic();
    loaded = false;
}

const sf::View* GameView() {
    return GameCamera().view.get();
}

sf::Vector2f& HeroPosition() {
    return heroPosition;
}

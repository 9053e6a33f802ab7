#include "app/game.h"

#include <SFML/Audio/Listener.hpp>

#include "app/game_state.h"
#include "app/region_music.h"
#include "common/log.h"
#include "debug/console.h"
#include "enemies/enemies.h"
#include "enemies/goddess.h"
#include "hud/explanation_panel.h"
#include "hud/map_screen.h"
#include "hud/player_hud.h"
#include "interactables/checkpoint_menu.h"
#include "interactables/chests.h"
#include "interactables/merchant.h"
#include "interactables/money.h"
#include "interactables/shop.h"
#include "interactables/statues.h"
#include "menus/credits.h"
#include "menus/ending.h"
#include "menus/pause_menu.h"
#include "menus/settings_screen.h"
#include "player/player.h"
#include "player/save.h"
#include "world/camera.h"
#include "world/doors.h"
#include "world/elevators.h"
#include "world/pixel_canvas.h"
#include "world/room.h"
#include "world/room_draw.h"
#include "world/room_lifecycle.h"
#include "world/transition.h"

namespace {

OverlayFlags flags;
bool loaded = false;

const char* const kNoContainer = "Camera container is not set !\n";

void RequestShake() {
    Camera& camera = GameCamera();
    const Player& player = GetPlayer();
    camera.shake = 0;
    if (player.body.state == PLAYER_TAKE_DAMAGE) {
        camera.shake = 1;
        camera.shakeAmplitude = 10;
    }
    if (player.body.hitDealt) {
        camera.shake = 1;
        camera.shakeAmplitude = 4;
    }
}

// Pits, spikes and water: 30 life, and back to where the hero stood this frame.
void CheckDeathZones() {
    Player& player = GetPlayer();
    for (const Trigger& trigger : CurrentRoom().triggers) {
        if (trigger.name != "DeathZone") continue;
        if (!trigger.shape->getGlobalBounds().intersects(PlayerBodyBounds())) continue;
        player.life -= 30;
        if (player.life > 0) SetPlayerPosition(player.lastSafePosition);
    }
}

// The middle of the hero's body along x, or 0 once he is dead.
float HeroCenterX() {
    if (GetPlayer().body.state == PLAYER_DEAD) return 0;
    sf::FloatRect body = PlayerBodyBounds();
    return body.left + body.width / 2;
}

// A riding hero goes where the cabin takes him.
void RideElevators(float dt) {
    sf::Vector2f position = GetPlayerPosition();
    UpdateElevators(dt, position, PlayerBodyBounds());
    if (position != GetPlayerPosition()) SetPlayerPosition(position);
}

void RunWorld(float dt) {
    sf::View& view = *GameCamera().view;
    sf::Listener::setPosition(view.getCenter().x, view.getCenter().y, 0);
    UpdateBackgrounds(view);
    for (int check = 0; check < 2; check++) {
        if (!CurrentRoom().cameraContainer) Log("%s", kNoContainer);
    }
    UpdateCamera(dt, GetPlayerPosition());
    RequestShake();
    UpdatePlayer(dt);
    bool dead = GetPlayer().body.state == PLAYER_DEAD;
    sf::FloatRect body = PlayerBodyBounds();
    sf::Vector2f target =
        dead ? sf::Vector2f()
             : sf::Vector2f(body.left + body.width / 2, body.top + body.height / 2);
    UpdateEnemies(dt, target);
    FadeEnemyFlashes(dt);
    UpdateMerchant(dt);
    RideElevators(dt);
    UpdateStatueOutlines(PlayerBodyBounds());
    UpdateLeverHighlights(PlayerBodyBounds());
    UpdateChestOutlines(PlayerBodyBounds());
    CheckDeathZones();
    CheckLockedDoorTriggers(PlayerBodyBounds());
    UpdateDoors(CountDeadEnemies(), dt);
    UpdatePlayerHud(GetPlayer().life, GetPlayer().potions, dt);
    if (flags.checkpointMenuOpen) {
        UpdateCheckpointMenu(GetPlayerPosition().x, dt);
        SetPlayerControllable(flags.checkpointMenuOpen ? 0 : 1);
    }
    if (flags.merchantMenuOpen) {
        UpdateMerchantMenu(GetPlayerPosition().x, dt);
        SetPlayerControllable(flags.merchantMenuOpen ? 0 : 1);
    }
    if (flags.shopOpen) UpdateShop(HeroCenterX());
    UpdateRoomProximity(view.getCenter(), 1.21f * view.getSize().x, dt);
    if (Transition().respawnStep == 0) ClampViewToContainer();
    if (!Transition().transitionActive) CheckTransitionDoors();
    // Coins home in on the hero's chest.
    body = PlayerBodyBounds();
    UpdateMoney(dt, {body.left + 0.5f * body.width, body.top + 0.45f * body.height});
    EnemiesHitPlayer();
    PlayerHitsEnemies();
    UpdateElevatorRideZoom(CurrentRoom().roomNumber);
    UpdateChests(dt, GetPlayerPosition());
    if (GoddessDefeated()) StartEnding();
}

void RunSequences(sf::RenderWindow& window, float dt) {
    const sf::View& view = *GameCamera().view;
    UpdateScreenFade(view.getCenter(), view.getSize(), dt);
    TransitionState& transition = Transition();
    if (transition.transitionActive) UpdateDoorTransition(window, dt);
    if (GetPlayer().body.state == PLAYER_DEAD && PlayerStanding() && transition.respawnStep == 0) {
        transition.respawnStep = 1;
    }
    if (transition.respawnStep != 0) UpdateRespawnSequence(window);
}

// The black of a fade covers the area: the whole canvas, margin included, or the whole screen.
void DrawFade(sf::RenderTarget& target, sf::FloatRect area) {
    const ScreenFade& fade = Fade();
    if (!fade.shape || fade.shape->getFillColor().a == 0) return;
    sf::RectangleShape cover({area.width, area.height});
    cover.setPosition(area.left, area.top);
    cover.setFillColor(fade.shape->getFillColor());
    target.draw(cover);
}

// The fade covers the world and the panels over it. With only the world below it, it is drawn on
// the world's canvas at a ninth of the fill; over a panel, on the window (the map's teleport
// fades out over the map).
bool FadeOverPanels() {
    return flags.pauseOpen != 0 || flags.mapOpen != 0;
}

void DrawWorld(sf::RenderTarget& target, const sf::View& seen) {
    DrawRoomBackgrounds(target);
    DrawMerchant(target);
    DrawElevatorParts(target, ELEVATOR_GEARS);
    DrawEnemies(target, false, true);
    DrawDoors(target);
    DrawRoomMiddleLayers(target);
    DrawRoomDebug(target);
    DrawStatues(target);
    DrawChests(target);
    DrawElevatorParts(target, ELEVATOR_SPARKS);
    DrawEnemies(target, true, false);
    DrawCoins(target);
    DrawPlayer(target);
    DrawElevatorParts(target, ELEVATOR_LEVERS);
    DrawRoomForeground(target);
    DrawDamageVignette(target, seen);
    DrawEndingLight(target, PixelCanvasArea());
    if (!FadeOverPanels()) DrawFade(target, PixelCanvasArea());
    if (Transition().respawnStep >= 1 && !flags.worldFrozen) DrawPlayer(target);
}

// Overlays frozen over the world, each updating only itself.
void RunOverlays(sf::RenderWindow& window, float dt) {
    if (flags.pauseOpen) {
        UpdatePauseMenu(flags.pauseOpen);
    } else if (flags.mapOpen) {
        UpdateMapScreen(window, dt);
    }
    if (flags.explanationOpen) UpdateExplanationPanel(dt);
}

// The panels are laid out on 1920 x 1080 and go straight onto the window through a screen view,
// covering the window whatever the camera's zoom.
void DrawPanels(sf::RenderWindow& window) {
    if (!flags.shopOpen && !flags.pauseOpen && !flags.explanationOpen && !flags.consoleOpen &&
        !flags.mapOpen) {
        return;
    }
    window.setView(window.getDefaultView());
    if (flags.shopOpen) DrawShop(window);
    if (flags.explanationOpen) DrawExplanationPanel(window);
    if (flags.pauseOpen) DrawPauseMenu(window);
    if (flags.mapOpen) DrawMapScreen(window);
    if (FadeOverPanels()) DrawFade(window, {0, 0, 1920, 1080});
    if (flags.consoleOpen) DrawConsole(window);
}

}  // namespace

OverlayFlags& Overlays() {
    return flags;
}

void SetPlayerControllable(int controllable) {
    Player& player = GetPlayer();
    player.body.controllable = controllable;
    if (controllable) player.lastSafePosition = GetPlayerPosition();
}

void LoadGame(sf::RenderWindow& window) {
    Log("Load Game\n");
    flags = OverlayFlags();
    FreeCheckpointMenu();
    FreeMapScreen();
    LoadSave();
    CreatePlayer({0, 0});
    LoadEnemyAssets();
    CreateCamera(GetPlayerPosition());
    LoadNextTargetRoom(window, Save().roomID);
    SetPlayerPosition(CheckpointSpawnPosition(Save().checkpointID));
    LastViewCenter() = {0, 0};
    InitMoney();
    CreatePlayerHud();
    LoadExplanationPanel(flags.explanationOpen);
    LoadPauseMenu();
    CreateConsole();
    CreateScreenFade();
    CreatePixelCanvas();
    ResetTransition();
    SetPlayerControllable(1);
    LoadRegionMusic();
    loaded = true;
}

void UpdateGame(sf::RenderWindow& window, float dt) {
    if (!loaded) return;
    if (EndingRunning()) {
        UpdateEnding(dt);
        if (EndingFinished()) {
            SwitchGameState(GAME_STATE_MENU, window);
            return;
        }
        if (EndingScreenShown()) return;
    }
    flags.worldFrozen =
        (flags.consoleOpen || flags.pauseOpen || flags.mapOpen || flags.explanationOpen) ? 1 : 0;
    bool mayAct =
        !flags.worldFrozen && !Transition().transitionActive && !flags.shopOpen && !EndingRunning();
    SetPlayerControllable(mayAct ? 1 : 0);
    if (flags.worldFrozen) {
        RunOverlays(window, dt);
    } else {
        RunWorld(dt);
    }
    UpdateRegionMusic();
    RunSequences(window, dt);
}

void DrawGame(sf::RenderWindow& window) {
    if (!loaded) return;
    if (EndingScreenShown()) {
        window.setView(window.getDefaultView());
        DrawEndingScreen(window);
        window.setView(*GameCamera().view);
        return;
    }
    // The world is drawn with the view the window kept from the previous frame.
    sf::View seen = window.getView();
    DrawWorld(BeginPixelCanvas(window, seen, CurrentRoom().backdropFoot), seen);
    PresentPixelCanvas(window);
    // The world's menus stand in the world but are drawn sharp, over the scaled-up canvas.
    window.setView(*GameCamera().view);
    if (flags.merchantMenuOpen) DrawMerchantMenu(window);
    if (flags.checkpointMenuOpen) DrawCheckpointMenu(window);
    // The HUD goes on the window at full resolution. The fade is already on the world: the HUD
    // is darkened as much, which shows what the fade drawn over it would.
    const ScreenFade& fade = Fade();
    float veil = fade.shape ? float(fade.shape->getFillColor().a) / 255.0f : 0.0f;
    // Once the Goddess has fallen the light takes the screen, with nothing over it.
    if (!EndingRunning()) DrawPlayerHud(window, FadeOverPanels() ? 1.0f : 1.0f - veil);
    DrawPanels(window);
    // The next frame's world is drawn with this view.
    window.setView(*GameCamera().view);
}

void CleanupGame() {
    if (!loaded) return;
    DestroyCamera();
    DestroyEnemyAssets();
    CleanupRoom();
    DestroyStatues();
    FreeCheckpointMenu();
    FreeMapScreen();
    DestroyPlayerHud();
    DestroyMoney();
    FreeSettingsScreen();
    FreeCredits();
    FreeEnding();
    FreePauseMenu();
    DestroyConsole();
    DestroyExplanationPanel();
    DestroyScreenFade();
    DestroyPixelCanvas();
    DestroyPlayer();
    ResetTransition();
    // The loops end with the game: the title menu is silent.
    FreeRegionMusic();
    loaded = false;
}

const sf::View* GameView() {
    return GameCamera().view.get();
}

#include "app/events.h"

#include "app/game.h"
#include "app/game_state.h"
#include "app/input.h"
#include "common/log.h"
#include "common/ui.h"
#include "debug/console.h"
#include "hud/explanation_panel.h"
#include "hud/map_screen.h"
#include "interactables/checkpoint_menu.h"
#include "interactables/chests.h"
#include "interactables/merchant.h"
#include "interactables/shop.h"
#include "interactables/statues.h"
#include "menus/credits.h"
#include "menus/ending.h"
#include "menus/main_menu.h"
#include "menus/pause_menu.h"
#include "menus/settings_files.h"
#include "menus/settings_screen.h"
#include "player/cloud.h"
#include "player/player.h"
#include "player/player_combat.h"
#include "player/save.h"
#include "world/elevators.h"
#include "world/room_draw.h"

namespace {

// The menus are laid out on a 1920 x 1080 canvas; map the pointer onto it so that a resized or
// full-screen window still points where the player sees.
sf::Vector2f MenuPointer(const sf::RenderWindow& window, int x, int y) {
    return window.mapPixelToCoords({x, y}, window.getDefaultView());
}

void MenuMouseMoved(const sf::RenderWindow& window, const sf::Event& event) {
    sf::Vector2f pointer = MenuPointer(window, event.mouseMove.x, event.mouseMove.y);
    switch (GetMenuScreen()) {
        case MENU_SCREEN_LIST: HoverMenuButtons(pointer); break;
        case MENU_SCREEN_SETTINGS: SettingsMouseMoved(pointer); break;
        case MENU_SCREEN_CREDITS: HoverCreditsReturn(pointer); break;
        default: break;
    }
}

void MenuMousePressed(sf::RenderWindow& window, const sf::Event& event) {
    switch (GetMenuScreen()) {
        case MENU_SCREEN_LIST: {
            int entry = FirstHoveredMenuEntry();
            if (event.mouseButton.button == sf::Mouse::Left && entry >= 0) {
                ChooseMenuEntry(entry, window);
            }
            break;
        }
        case MENU_SCREEN_SETTINGS: SettingsMousePressed(event); break;
        case MENU_SCREEN_CREDITS:
            if (CreditsReturnHovered()) {
                FreeCredits();
                SetMenuScreen(MENU_SCREEN_LIST);
            }
            break;
        default: break;
    }
}

void RouteMenuEvent(AppWindow& app, const sf::Event& event) {
    bool onList = GetMenuScreen() == MENU_SCREEN_LIST;
    switch (event.type) {
        case sf::Event::KeyPressed: SettingsKeyPressed(event); break;
        case sf::Event::MouseMoved: MenuMouseMoved(*app.window, event); break;
        case sf::Event::MouseButtonPressed: MenuMousePressed(*app.window, event); break;
        case sf::Event::JoystickButtonPressed:
            if (onList && event.joystickButton.button == 0) {
                ChooseMenuEntry(GetSelectedEntry(), *app.window);
            }
            break;
        case sf::Event::JoystickMoved:
            if (onList && event.joystickMove.axis == sf::Joystick::PovY) {
                if (event.joystickMove.position < 0) MoveMenuSelection(+1);
                if (event.joystickMove.position > 0) MoveMenuSelection(-1);
            }
            break;
        default: break;
    }
}

void RouteJoystickConnection(const sf::Event& event) {
    if (event.joystickConnect.joystickId != 0) return;
    InputJoystickUpdate();
    if (event.type == sf::Event::JoystickConnected) {
        LogGamepadConnected();
    } else {
        Log("gamepad %d disconnected\n", 0);
    }
}

// The triggers: pulling the left one (Z below -0.1) asks for a dash, the right one (Z above 0.1)
// makes a cloud; the pad up drinks a potion.
void PlayerAxisMoved(const sf::Event& event) {
    Player& player = GetPlayer();
    int state = player.body.state;
    float z = InputJoystickAxis(0, sf::Joystick::Z);
    bool dashTrigger = z < -0.1f;
    if (!player.body.parryRequest && dashTrigger &&
        (state == PLAYER_IDLE || state == PLAYER_WALK) && Save().abilities.canDash) {
        player.body.dashRequest = 1;
    }
    if (event.joystickMove.axis == sf::Joystick::PovY && event.joystickMove.position > 0) {
        PlayerPadHeal();
    }
    if (z > 0.1f) TryCreateCloud();
}

// Escape or gamepad button 7 in free play. The panel is made ready in every case.
void RequestPause() {
    OverlayFlags& flags = Overlays();
    bool unfolding = CheckpointMenuOpening() || MerchantMenuOpening();
    if (GetMenuScreen() == MENU_SCREEN_LIST && !unfolding && !flags.mapOpen && !flags.shopOpen) {
        flags.pauseOpen = 1;
        flags.worldFrozen = 1;
    }
    PlacePausePanel();
}

// Escape closes the list, or leaves the settings screen for the list without saving; other keys
// go to the settings screen (a rebinding waiting for its key).
void PauseKeyPressed(const sf::Event& event) {
    bool onSettings = GetMenuScreen() == MENU_SCREEN_SETTINGS;
    if (event.key.code == sf::Keyboard::Escape) {
        if (onSettings) {
            LeavePauseSettings();
        } else {
            Overlays().pauseOpen = 0;
        }
    } else if (onSettings) {
        SettingsKeyPressed(event);
    }
}

// The INTERACT action, only with the feet on the ground: resting at a statue, talking to the
// blacksmith, opening a chest.
void RunInteractAction() {
    if (!PlayerStanding()) return;
    Rest();
    OpenMerchantMenu();
    InteractWithElevators(PlayerBodyBounds());
    OpenChests();
}

// While INTERACT is held (its key or gamepad button 1), any key press interacts instead. The
// INTERACT key's own press counts too, however short the tap that was already released.
bool InteractHeld(int pressedKey) {
    int interact = Settings().bindings[BINDING_INTERACT];
    return pressedKey == interact || InputKeyDown(interact) || InputJoystickButtonDown(0, 1);
}

void GameKeyPressed(const sf::Event& event) {
    int key = event.key.code;
    OverlayFlags& flags = Overlays();
    if (EndingRunning()) {
        EndingSkipPressed();
        return;
    }
    if (flags.consoleOpen) {
        ConsoleKeyPressed(key, flags.consoleOpen);
        return;
    }
    if (flags.pauseOpen) {
        PauseKeyPressed(event);
        return;
    }
    if (flags.explanationOpen) {
        if (key == Settings().bindings[BINDING_JUMP]) RequestExplanationClose();
        return;
    }
    if (flags.mapOpen) {
        MapKeyPressed(key);
        return;
    }
    if (Overlays().checkpointMenuOpen) {
        if (key == sf::Keyboard::Escape) CloseCheckpointMenu();
        return;
    }
    // The shop closes first; the blacksmith's menu stays, for another BUY or LEAVE.
    if (Overlays().shopOpen) {
        if (key == sf::Keyboard::Escape) CloseShop();
        return;
    }
    if (Overlays().merchantMenuOpen) {
        if (key == sf::Keyboard::Escape) CloseMerchantMenu();
        return;
    }
    if (InteractHeld(key)) {
        RunInteractAction();
        return;
    }
    if (key == sf::Keyboard::Escape) RequestPause();
    if (key == sf::Keyboard::M) RequestMapScreen();
    if (key == sf::Keyboard::Home) DebugOverlay() = DebugOverlay() ? 0 : 1;
    if (key == sf::Keyboard::F1) {
        flags.consoleOpen = 1;
        flags.worldFrozen = 1;
    }
    HandlePlayerKeyPressed(key);
}

// Gamepad button 1 interacts; button 0 jumps under the same conditions as the jump key, unless a
// dash is pending.
void PlayerButtonPressed(unsigned button) {
    if (button == 1) RunInteractAction();
    const Player& player = GetPlayer();
    if (!player.body.controllable) return;
    int state = player.body.state;
    bool mayJump = state == PLAYER_IDLE || state == PLAYER_WALK || state == PLAYER_DASH ||
                   state == PLAYER_RUN || state == PLAYER_FALL;
    if (button == 0 && mayJump && !DownHeld() && !player.body.dashRequest) {
        GetPlayer().body.jumpRequest = 1;
    }
    if (button == 2) PlayerAttackPressed();
    if (button == 3) PlayerHeavyPressed();
    if (button == 4) PlayerParryPressed();
}

void GameButtonPressed(sf::RenderWindow& window, unsigned button) {
    if (EndingRunning()) {
        EndingSkipPressed();
        return;
    }
    if (Overlays().pauseOpen) {
        // Button 0 on RESUME is polled by the game update.
        if (GetMenuScreen() == MENU_SCREEN_LIST && button == 0) {
            ChoosePauseEntry(GetPauseSelection(), window);
        }
        return;
    }
    if (Overlays().explanationOpen) {
        if (button == 0) RequestExplanationClose();
        return;
    }
    if (Overlays().checkpointMenuOpen) {
        if (button == 0) ConfirmCheckpointSelection();
        return;
    }
    if (Overlays().merchantMenuOpen) {
        if (button == 0) ConfirmMerchantSelection();
        return;
    }
    // The map takes nothing from the pad: it closes with M or Escape.
    if (Overlays().mapOpen) return;
    if (button == 6) RequestMapScreen();
    if (button == 7) RequestPause();
    PlayerButtonPressed(button);
}

// The pause and the map are pointed at on their 1920 x 1080 canvas, the world's menus in world
// coordinates. The map covers everything: the menus behind it are out of reach.
// What the pointer is over among the world's menus and the shop.
void PointAtWorldMenus(sf::Vector2f screen) {
    const sf::View* view = GameView();
    if (view && Overlays().checkpointMenuOpen) HoverCheckpointMenu(ScreenToWorld(*view, screen));
    if (view && Overlays().merchantMenuOpen) HoverMerchantMenu(ScreenToWorld(*view, screen));
    if (Overlays().shopOpen) HoverShop(screen);
}

void GameMouseMoved(const sf::RenderWindow& window, const sf::Event& event) {
    sf::Vector2f screen = MenuPointer(window, event.mouseMove.x, event.mouseMove.y);
    if (Overlays().pauseOpen) HoverPauseButtons(screen);
    if (Overlays().mapOpen) {
        MapPointerMoved(screen);
        return;
    }
    PointAtWorldMenus(screen);
}

void GameMousePressed(sf::RenderWindow& window, const sf::Event& event) {
    if (EndingRunning()) {
        EndingSkipPressed();
        return;
    }
    bool left = event.mouseButton.button == sf::Mouse::Left;
    if (left) PlayerAttackPressed();
    if (event.mouseButton.button == sf::Mouse::Right) PlayerHeavyPressed();
    if (Overlays().mapOpen) {
        MapPointerPressed(MenuPointer(window, event.mouseButton.x, event.mouseButton.y),
                          event.mouseButton.button);
        return;
    }
    // A click counts where it lands, though the pointer has not moved since a menu unfolded
    // under it or the view slid beneath it.
    PointAtWorldMenus(MenuPointer(window, event.mouseButton.x, event.mouseButton.y));
    if (Overlays().checkpointMenuOpen && left) PressCheckpointMenu();
    // The shop first: the click that opens it from the menu buys nothing.
    if (Overlays().shopOpen && left) PressShop();
    if (Overlays().merchantMenuOpen && left) PressMerchantMenu();
    if (!Overlays().pauseOpen) return;
    if (GetMenuScreen() == MENU_SCREEN_SETTINGS) {
        SettingsMousePressed(event);
    } else if (left) {
        // RESUME is polled by the game update.
        for (int entry : {PAUSE_ENTRY_SETTINGS, PAUSE_ENTRY_MAIN_MENU}) {
            if (PauseButtonHovered(entry)) {
                ChoosePauseEntry(entry, window);
                return;
            }
        }
    }
}

// The pad's vertical axis moves the selection of the first menu open; the world part (dash,
// heal) follows whatever is open.
void GameAxisMoved(const sf::Event& event) {
    bool pad = event.joystickMove.axis == sf::Joystick::PovY;
    int step = event.joystickMove.position < 0 ? +1 : (event.joystickMove.position > 0 ? -1 : 0);
    bool onPauseList = Overlays().pauseOpen && GetMenuScreen() == MENU_SCREEN_LIST;
    if (pad && step != 0) {
        if (onPauseList) {
            MovePauseSelection(step);
        } else if (Overlays().checkpointMenuOpen) {
            MoveCheckpointSelection(step);
        } else if (Overlays().merchantMenuOpen) {
            MoveMerchantSelection(step);
        }
    }
    PlayerAxisMoved(event);
}

void RouteGameEvent(sf::RenderWindow& window, const sf::Event& event) {
    switch (event.type) {
        case sf::Event::KeyPressed: GameKeyPressed(event); break;
        case sf::Event::JoystickButtonPressed:
            GameButtonPressed(window, event.joystickButton.button);
            break;
        case sf::Event::JoystickMoved: GameAxisMoved(event); break;
        case sf::Event::MouseMoved: GameMouseMoved(window, event); break;
        case sf::Event::MouseButtonPressed: GameMousePressed(window, event); break;
        case sf::Event::TextEntered:
            if (Overlays().consoleOpen) {
                ConsoleTextEntered(event.text.unicode, Overlays().consoleOpen);
            }
            break;
        default: break;
    }
}

bool IsJoystickEventOfOtherPad(const sf::Event& event) {
    switch (event.type) {
        case sf::Event::JoystickButtonPressed:
        case sf::Event::JoystickButtonReleased: return event.joystickButton.joystickId != 0;
        case sf::Event::JoystickMoved: return event.joystickMove.joystickId != 0;
        default: return false;
    }
}

}  // namespace

void PollEvents(AppWindow& app) {
    sf::Event event;
    while (app.window && app.window->isOpen() && InputPollEvent(*app.window, event)) {
        if (event.type == sf::Event::Closed) {
            app.window->close();
            continue;
        }
        if (event.type == sf::Event::JoystickConnected ||
            event.type == sf::Event::JoystickDisconnected) {
            RouteJoystickConnection(event);
            continue;
        }
        if (IsJoystickEventOfOtherPad(event)) continue;
        if (GetGameState() == GAME_STATE_MENU) {
            RouteMenuEvent(app, event);
        } else if (GetGameState() == GAME_STATE_GAME) {
            RouteGameEvent(*app.window, event);
        }
        if (event.type == sf::Event::KeyPressed && event.key.code == sf::Keyboard::F11) {
            ToggleFullScreen(app);
        }
    }
}

#include "interactables/checkpoint_menu.h"

#include "app/game.h"
#include "common/log.h"
#include "hud/map_screen.h"
#include "player/player.h"

namespace {

const char* const kLabels[CHECKPOINT_BUTTON_COUNT] = {"TELEPORT", "SAVE", "LEAVE"};
const sf::Vector2f kAnchorOffset(280, -365);
const float kLeaveDistance = 200;

WorldMenu menu;

void RunAction(int button) {
    switch (button) {
        // The menu folds under the map, opened to travel from this statue.
        case CHECKPOINT_TELEPORT:
            Log("TP Pressed\n");
            CloseCheckpointMenu();
            RequestMapScreen(true);
            break;
        // The rest already wrote the save when the menu opened.
        case CHECKPOINT_SAVE: Log("REST Pressed\n"); break;
        case CHECKPOINT_LEAVE: CloseCheckpointMenu(); break;
        default: break;
    }
}

}  // namespace

const WorldMenu& GetCheckpointMenu() {
    return menu;
}

void OpenCheckpointMenu(sf::Vector2f checkpointPosition) {
    OpenWorldMenu(menu, kLabels, checkpointPosition, kAnchorOffset, kLeaveDistance);
    menu.selected = CHECKPOINT_TELEPORT;
    Overlays().checkpointMenuOpen = 1;
    GetPlayer().body.controllable = 0;
}

void UpdateCheckpointMenu(float playerX, float dt) {
    if (!Overlays().checkpointMenuOpen) return;
    // Folded flat: the hero gets the control back (the frame does it).
    if (UpdateWorldMenu(menu, playerX, dt)) Overlays().checkpointMenuOpen = 0;
}

void CloseCheckpointMenu() {
    if (Overlays().checkpointMenuOpen) CloseWorldMenu(menu);
}

int CheckpointMenuOpening() {
    return menu.opening;
}

void HoverCheckpointMenu(sf::Vector2f worldPointer) {
    HoverWorldMenu(menu, worldPointer);
}

void PressCheckpointMenu() {
    int hovered = HoveredWorldButton(menu);
    if (hovered >= 0) RunAction(hovered);
}

void ConfirmCheckpointSelection() {
    if (WorldMenuShown(menu)) RunAction(menu.selected);
}

void MoveCheckpointSelection(int step) {
    MoveWorldSelection(menu, step);
}

void DrawCheckpointMenu(sf::RenderTarget& target) {
    DrawWorldMenu(target, menu);
}

void FreeCheckpointMenu() {
    FreeWorldMenuButtons(menu);
    menu = WorldMenu();
}

// The checkpoint menu: three buttons (TELEPORT, SAVE, LEAVE) that unfold above the statue the
// hero rested at. They stand in the world, drawn over it with the game view; the world goes on
// while the menu is shown, only the hero's control is taken away.
#pragma once

#include <SFML/Graphics.hpp>

#include "interactables/world_menu.h"

enum CheckpointButton {
    CHECKPOINT_TELEPORT = 0,
    CHECKPOINT_SAVE = 1,
    CHECKPOINT_LEAVE = 2,
    CHECKPOINT_BUTTON_COUNT = 3
};

const WorldMenu& GetCheckpointMenu();

// Builds the three buttons flat at the anchor above the checkpoint, selects TELEPORT, marks the
// menu open and takes the hero's control.
void OpenCheckpointMenu(sf::Vector2f checkpointPosition);
// Each frame while the menu is open: the selection's look, unfolding, folding (which frees the
// buttons and clears the open flag), and folding once the hero is more than 200 px away.
void UpdateCheckpointMenu(float playerX, float dt);
// Starts folding (Escape, LEAVE, distance).
void CloseCheckpointMenu();
int CheckpointMenuOpening();

// The pointer in world coordinates: a hovered button becomes the selection.
void HoverCheckpointMenu(sf::Vector2f worldPointer);
// Left click: the action of the hovered button (the one drawn on top).
void PressCheckpointMenu();
// Gamepad confirm: the action of the selected button.
void ConfirmCheckpointSelection();
// +1 moves the selection down, -1 up, within the three buttons.
void MoveCheckpointSelection(int step);

void DrawCheckpointMenu(sf::RenderTarget& target);
// Frees the buttons, the font and the button picture; safe to call twice.
void FreeCheckpointMenu();

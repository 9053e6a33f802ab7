// The blacksmith: in the rooms that have one he stands at his anvil hammering away, the anvil
// ringing on every blow. INTERACT next to him unfolds his two-button menu (BUY, LEAVE) above him;
// BUY opens the shop panel (interactables/shop). Like the checkpoint menu, his menu stands in the
// world and only takes the hero's control away.
#pragma once

#include <SFML/Graphics.hpp>

#include "common/drawables.h"
#include "interactables/world_menu.h"
#include "media/animation.h"
#include "media/sound.h"

enum MerchantButton { MERCHANT_BUY = 0, MERCHANT_LEAVE = 1, MERCHANT_BUTTON_COUNT = 2 };

struct Merchant {
    TexturePtr texture;
    SpritePtr sprite;
    Animation clip;  // twelve frames, the hammer lands on frame 5
    SoundArray anvilSound;
    int anvilPlayed = 0;  // rung on this blow; re-armed once the clip has moved on
};

// Room load: the blacksmith at the room's merchant point, when the room has one.
void CreateMerchant();
// Room cleanup: the blacksmith, with his menu and the shop if they were open; safe to call twice.
void DestroyMerchant();
bool MerchantPresent();
const Merchant& GetMerchant();
sf::Vector2f MerchantPosition();

// Every world update: the hammering and the anvil's ring, placed at the blacksmith.
void UpdateMerchant(float dt);
// With the room's objects, after the backgrounds.
void DrawMerchant(sf::RenderTarget& target);

// The blacksmith's part of the INTERACT action: with the hero's body in his zone, and neither his
// menu nor the debug console open, the menu unfolds and the hero's control is taken.
void OpenMerchantMenu();
// Each frame while the menu is open; folding clears the open flag. It folds once the hero is
// more than 150 px away.
void UpdateMerchantMenu(float playerX, float dt);
// Starts folding (Escape, LEAVE).
void CloseMerchantMenu();
int MerchantMenuOpening();
const WorldMenu& GetMerchantMenu();

// The pointer in world coordinates: a hovered button becomes the selection.
void HoverMerchantMenu(sf::Vector2f worldPointer);
// Left click: the hovered button's action (BUY opens the shop, LEAVE folds the menu).
void PressMerchantMenu();
// Gamepad confirm: the selected button's action.
void ConfirmMerchantSelection();
// +1 moves the selection down, -1 up.
void MoveMerchantSelection(int step);

void DrawMerchantMenu(sf::RenderTarget& target);
// Frees the buttons, the font and the button picture and clears the open flag; safe to call twice.
void FreeMerchantMenu();

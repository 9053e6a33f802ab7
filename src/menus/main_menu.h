// The title menu: the painted backdrop, the game's title and the list PLAY, SETTINGS, CREDITS,
// QUIT with selector arrows. It also hosts the settings and credits screens.
#pragma once

#include <SFML/Graphics.hpp>

enum MenuEntry { MENU_ENTRY_PLAY = 0, MENU_ENTRY_SETTINGS, MENU_ENTRY_CREDITS, MENU_ENTRY_QUIT };

// Builds the menu and reads both settings files.
void LoadMenu();
void DrawMenu(sf::RenderWindow& window);
// Frees the menu and the screens it hosts; safe to call twice.
void CleanupMenu();

// Pointer in menu pixels: hovering an entry also selects it.
void HoverMenuButtons(sf::Vector2f pointer);
// The first hovered entry in list order, or -1.
int FirstHoveredMenuEntry();
// The gamepad's vertical pad: +1 moves the selection down, -1 up, within the list.
void MoveMenuSelection(int step);
int GetSelectedEntry();
// Carries out PLAY, SETTINGS, CREDITS or QUIT.
void ChooseMenuEntry(int entry, sf::RenderWindow& window);

// The menu layer the hosted screens draw into (null while the menu is not loaded).
sf::RenderTexture* MenuLayer();

// The pause menu: during play the world freezes, the screen darkens and a centred list offers
// RESUME, SETTINGS and MAIN MENU. SETTINGS shows the title menu's settings screen over the frozen
// world. Built with each game and freed with it.
#pragma once

#include <SFML/Graphics.hpp>

enum PauseEntry { PAUSE_ENTRY_RESUME = 0, PAUSE_ENTRY_SETTINGS, PAUSE_ENTRY_MAIN_MENU };

void LoadPauseMenu();
// Safe to call twice, and when nothing is loaded.
void FreePauseMenu();
bool PauseMenuLoaded();

// Made ready for showing, on every pause request in free play whether or not the menu opens: no
// binding waits for a key and the list is the screen shown.
void PlacePausePanel();

// Pointer in pixels of the 1920 x 1080 overlay: on the list a hovered button becomes the
// selection; on the settings screen the pointer goes to that screen.
void HoverPauseButtons(sf::Vector2f pointer);
bool PauseButtonHovered(int entry);
// The gamepad's vertical pad: +1 moves the selection down, -1 up, within the list.
void MovePauseSelection(int step);
int GetPauseSelection();

// SETTINGS and MAIN MENU (RESUME is polled by UpdatePauseMenu). MAIN MENU ends the game.
void ChoosePauseEntry(int entry, sf::RenderWindow& window);
// Escape on the settings screen: back to the list, nothing saved and nothing restored.
void LeavePauseSettings();

// Once a frame while paused. On the list, the left button held on RESUME, or gamepad button 0
// held while RESUME is selected, closes the pause (a click needs no release); on the settings
// screen, the screen's own update.
void UpdatePauseMenu(int& pauseOpen);

// Draws the pause over whatever the target shows, in 1920 x 1080 overlay coordinates (the caller
// sets that view): the darkening, then the list or the settings screen.
void DrawPauseMenu(sf::RenderTarget& target);

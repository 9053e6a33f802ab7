// The in-game state: loading a game, its frame update and drawing, and freeing it.
#pragma once

#include <SFML/Graphics.hpp>

// Overlays that decide, each frame, whether the world runs (the door transition and the respawn
// sequence keep their own state, with the room changes).
struct OverlayFlags {
    int pauseOpen = 0;
    int consoleOpen = 0;
    int mapOpen = 0;
    int explanationOpen = 0;
    int checkpointMenuOpen = 0;
    int merchantMenuOpen = 0;
    int shopOpen = 0;
    int worldFrozen = 0;
};

OverlayFlags& Overlays();

void LoadGame(sf::RenderWindow& window);
void UpdateGame(sf::RenderWindow& window, float dt);
void DrawGame(sf::RenderWindow& window);
// Safe to call when no game is loaded.
void CleanupGame();

// The game view while a game is loaded, else null.
const sf::View* GameView();

// Gives or takes the hero's control; giving it also records where the hero stands as safe.
void SetPlayerControllable(int controllable);

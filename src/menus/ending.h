// The end of the game. When the Goddess falls, dawn floods the world until it is all light; then
// the ending screen rolls its epilogue and the credits over the title's landscape, the forest's
// theme plays, and the title menu comes back. The save stays as the last rest wrote it.
#pragma once

#include <SFML/Graphics.hpp>

// Starts the dawn (once; a second call does nothing until the ending is freed).
void StartEnding();
bool EndingRunning();
// The ending screen covers everything: the world is neither run nor drawn.
bool EndingScreenShown();
void UpdateEnding(float dt);
// The dawn's light over the world, drawn on the world's picture (area: what it covers).
void DrawEndingLight(sf::RenderTarget& target, sf::FloatRect area);
// The ending screen, on 1920 x 1080 screen coordinates.
void DrawEndingScreen(sf::RenderTarget& target);
// A key, a button or a click: the roll hurries on; at its end, the title comes back.
void EndingSkipPressed();
// The roll is over: the game gives way to the title menu.
bool EndingFinished();
// Safe to call when nothing runs.
void FreeEnding();

// The credits page shown from the title menu: who made the game and with what.
#pragma once

#include <SFML/Graphics.hpp>

void LoadCredits();
void DrawCredits(sf::RenderTarget& target);
// Safe to call when nothing is loaded.
void FreeCredits();
// Pointer in menu pixels.
void HoverCreditsReturn(sf::Vector2f pointer);
bool CreditsReturnHovered();
bool CreditsLoaded();

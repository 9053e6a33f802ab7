// The credits page shown from the title menu: who made the game and with what.
#pragma once

#include <SFML/Graphics.hpp>
#include <string>
#include <vector>

void LoadCredits();
void DrawCredits(sf::RenderTarget& target);
// Safe to call when nothing is loaded.
void FreeCredits();
// Pointer in menu pixels.
void HoverCreditsReturn(sf::Vector2f pointer);
bool CreditsReturnHovered();
bool CreditsLoaded();

// The same credits as lines for a roll (the ending): headings, then their names, then the font.
struct CreditLine {
    std::string text;
    int heading = 0;
};
std::vector<CreditLine> CreditRoll();

// The settings screen: SOUND tab (three volume sliders) and BINDING tab (nine rebindable keys),
// with OK, CANCEL, APPLY, RETURN and a square that is green when what is shown is saved.
#pragma once

#include <SFML/Graphics.hpp>

// The screen darkens whatever is behind it with black of this alpha.
constexpr sf::Uint8 kSettingsBackdropAlpha = 200;

// Builds the screen from the files on disk (callers set the menu screen).
void LoadSettingsScreen();
// Per frame: a slider being dragged marks a pending change.
void UpdateSettingsScreen();
// Pointer in pixels of the menu layer.
void SettingsMouseMoved(sf::Vector2f pointer);
void SettingsMousePressed(const sf::Event& event);
// Completes a pending rebinding.
void SettingsKeyPressed(const sf::Event& event);
// No key entry waits for a key any more.
void CancelSettingsWaits();
// A caller that has already darkened the target by the backdrop (the pause, which folds it into
// its own darkening) leaves it out.
void DrawSettingsScreen(sf::RenderTarget& target, bool withBackdrop = true);
// Safe to call when nothing is loaded.
void FreeSettingsScreen();

// What the screen shows, for the game's tests and traces.
bool SettingsScreenLoaded();
bool SettingsPending();  // the square is red
int SettingsSliderValue(int category);
bool SettingsKeyWaiting(int action);
sf::String SettingsKeyLabel(int action);
sf::String SettingsPercentText(int category);

// The ability panel: when the hero finds the dash, the run or the cloud, a plate fades in over the
// frozen world with the ability's icon, its name and what to press, naming the current key
// binding. Showing it grants the ability and saves it; JUMP (or gamepad button 0) fades it out.
//
// Laid out on a 1920 x 1080 screen and drawn straight onto the window through a screen view, like
// the HUD and the pause menu.
#pragma once

#include <SFML/Graphics.hpp>

enum AbilityIndex { ABILITY_DASH = 0, ABILITY_RUN = 1, ABILITY_CLOUD = 2, ABILITY_COUNT = 3 };

// Game load: the plate, the font and a reference to the overlay flag the panel raises and clears.
void LoadExplanationPanel(int& explanationOpen);
// Game cleanup; safe to call twice.
void DestroyExplanationPanel();

// Builds the panel for an ability (out of range does nothing), opens it, and saves the ability
// as owned.
void ShowAbilityExplanation(int ability);
// JUMP or button 0 while shown: the panel fades out once its fade-in has ended.
void RequestExplanationClose();
// Every frame while the panel is open: the fade in, or the fade out asked for, which closes it.
void UpdateExplanationPanel(float dt);
void DrawExplanationPanel(sf::RenderTarget& target);

// What the panel shows now (tests, screenshots); null before the first showing.
const sf::Text* ExplanationTitle();
const sf::Text* ExplanationDescription();
// The plate's opacity, 0 to 255.
int ExplanationAlpha();

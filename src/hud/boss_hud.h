// Boss bars: in a boss room every enemy that has a life gets a framed bar at the bottom of the
// screen with its title. The bars slide up a moment after the arrival, drain as the enemies are
// hurt (a lighter trail catches up after half a second) and slide away once every bar is empty.
// They only read the enemies' life.
#pragma once

#include <SFML/Graphics.hpp>
#include <vector>

#include "common/drawables.h"
#include "common/motion.h"

struct BossBar {
    SpritePtr container, trail, bar, ornaments;
    TextPtr name;
    float shownLife = 0;
    int maxLife = 0;
    int* life = nullptr;  // the enemy's own life
    float trailTimer = 0;
    float trailDelay = 0.5f;
    Tween intro, outro;
    sf::Vector2f target;
    float introTimer = 0;
    float introDelay = 2.5f;
};

// Every room load, before the enemies: the pictures and the font (templates made once).
void LoadBossHud();
// After the spawns of a boss room: one bar per living enemy with a life, in kind order.
void AddBossBars();
void UpdateBossHud(float dt);
// Onto the HUD's 1920 x 1080 view, darkened with the rest of the HUD.
void DrawBossHud(sf::RenderTarget& target, float brightness);
void RemoveBossBar(int index);
// Leaving a room removes its bars; the game's end also drops the templates.
void RemoveAllBossBars();
void DestroyBossHud();

const std::vector<BossBar>& BossBars();
// The title shown for a kind ("Enemy" for an unknown one).
const char* BossName(int kind);

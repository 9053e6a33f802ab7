// The hero's HUD over the game: the life bar in three pieces with the trailing "lost" layers that
// drain after a hit, the heal flask showing the potions left, the money counter (values kept by
// interactables/money) and the vignette that flashes on every hit and pulses at low life.
//
// Everything is laid out on a 1920 x 1080 screen and drawn straight onto the window through a
// 1920 x 1080 view, whatever the camera's zoom: no full-screen layer is composited. The vignette,
// which reaches over half the screen, is drawn with the world instead, on the world's pixel
// canvas (a ninth of the pixels), just before the fade: it lies over the world and under the
// life bar, the flask and the counter.
#pragma once

#include <SFML/Graphics.hpp>
#include <array>
#include <vector>

#include "common/drawables.h"
#include "media/animation.h"

enum LifePiece { LIFE_PIECE_1 = 0, LIFE_PIECE_2 = 1, LIFE_PIECE_3 = 2, LIFE_PIECE_COUNT = 3 };

constexpr int kHealClipCount = 7;

struct PlayerHud {
    TexturePtr containerTexture, piece1Texture, piece1LostTexture, pieceTexture, pieceLostTexture;
    SpritePtr container;
    std::array<SpritePtr, LIFE_PIECE_COUNT> lost;  // drawn under each fill
    std::array<SpritePtr, LIFE_PIECE_COUNT> fill;
    int lifeShown = 100;
    int lifeMax = 100;
    float lostTimer = 0;  // one timer for the three lost layers
    float lostDelay = 0.5f;

    TexturePtr healTexture;
    SpritePtr heal;
    std::array<Animation, kHealClipCount> healClips;
    int currentHealClip = 0;

    TexturePtr vignetteTexture;
    SpritePtr vignette;
    int vignetteFlash = 0;
    float pulsePhase = 0;
    float pulseFactor = 0;
    // The parts of the vignette picture that are not fully transparent, as texture rectangles:
    // only these are drawn.
    std::vector<sf::IntRect> vignetteBands;
};

PlayerHud& GetPlayerHud();

// Game load, after the money (the counter's values): loads the pictures and the font. A missing
// picture is reported and its sprite stays blank.
void CreatePlayerHud();
// Every game update: the flask (from the potions left and the save's potionCount), the life bar
// and the vignette.
void UpdatePlayerHud(int life, int potions, float dt);
// The fills follow `life` at once; the lost layers drain right to left, one texel a frame, each
// piece 0.5 s after the piece to its right has finished.
void UpdateLifeBar(int life, float dt);
// After the world, onto the window. `brightness` (1 normal, 0 black) darkens the HUD as much as
// the screen fade darkens the world, so a fade to black hides the HUD too.
void DrawPlayerHud(sf::RenderTarget& target, float brightness);
// With the world, on its target and through its view: the vignette placed over what `seen`
// shows on the screen, as the full-screen picture it is. Nothing is drawn while it is clear.
void DrawDamageVignette(sf::RenderTarget& target, const sf::View& seen);
// Every landed enemy hit, god mode included: the vignette shows at full strength and fades.
void FlashDamageVignette();
// Game cleanup; safe to call twice.
void DestroyPlayerHud();

// Pixels the vignette fills when it shows.
long VignetteFillPixels();

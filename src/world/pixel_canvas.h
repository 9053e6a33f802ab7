// The world's picture on its own pixel grid: one texel of the canvas is three world pixels, the
// size of one pixel of our art. The world is drawn there through the game view, then the canvas
// is scaled up onto the window once with hard pixels. A software renderer fills a ninth of the
// pixels it would at full resolution, and every sprite keeps whole, equal pixels.
#pragma once

#include <SFML/Graphics.hpp>

// World pixels per canvas texel.
constexpr int kWorldPixelsPerTexel = 3;

void CreatePixelCanvas();
// Safe to call twice.
void DestroyPixelCanvas();

// Prepares a frame seen through `view` and returns the target to draw the world on. The canvas
// view keeps the view's centre on the texel grid; the remainder is added back when presenting.
// It starts as `background` wherever the world will not cover it.
sf::RenderTarget& BeginPixelCanvas(sf::RenderTarget& window, const sf::View& view,
                                   sf::Color background = sf::Color::Black);
// The canvas rectangle in world pixels (for drawings that must cover it, like the fade).
sf::FloatRect PixelCanvasArea();
// Scales, rotates and shifts the canvas onto the window so it shows exactly what `view` sees.
void PresentPixelCanvas(sf::RenderTarget& window);

// The size in texels (even, with a margin for the sub-texel shift) that a view needs: the
// bounding box of the rotated view on the texel grid.
sf::Vector2u PixelCanvasSizeFor(const sf::View& view);
// The view's centre snapped onto the texel grid.
sf::Vector2f SnapToTexelGrid(sf::Vector2f center);

// A shader that copies texels as they are, with no colour to multiply them by: a software
// renderer fills about a sixth faster with it. Null without a canvas or where shaders are missing.
const sf::Shader* PlainTextureShader();

// The benchmark compares against drawing the world straight onto the window at full resolution;
// with this set, Begin returns the window under the view and Present does nothing.
void SetFullResolutionWorld(int on);
int FullResolutionWorld();

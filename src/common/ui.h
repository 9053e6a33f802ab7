// Menu building blocks shared by every screen: buttons with hover shading, the selector arrows
// that frame the chosen entry, and the volume slider.
#pragma once

#include <SFML/Graphics.hpp>
#include <memory>
#include <string>

#include "common/drawables.h"

struct Button {
    std::unique_ptr<sf::RectangleShape> shape;
    TextPtr text;
    int hovered = 0;
    sf::Color shapeColor;
    sf::Color textColor;
};

struct Selector {
    SpritePtr left;
    SpritePtr right;
    int useTextBounds = 1;
};

struct Slider {
    SpritePtr fill;
    SpritePtr bar;
    SpritePtr handle;
    int value = 0;  // percent
    int hovered = 0;
    int dragging = 0;
};

// A centred button: background rectangle centred on the position, label centred on it too.
void CreateButton(Button& button, sf::Vector2f size, const sf::Font* font, const std::string& label,
                  unsigned characterSize, sf::Color labelColor, sf::Color backgroundColor,
                  sf::Vector2f position);

// A button of a vertical list: labels start at a common left margin inside their buttons.
void CreateListButton(Button& button, sf::Vector2f size, const sf::Font* font,
                      const std::string& label, unsigned characterSize, sf::Color labelColor,
                      sf::Color backgroundColor, sf::Vector2f position);

// Shades the button while the pointer is over it; returns 1 when it is.
int UpdateButtonHover(sf::Vector2f pointer, Button& button);

// Menus that stand in the world (checkpoint, merchant) are hovered in world coordinates: a pointer
// on the 1920 x 1080 screen maps into what the view shows, the same factor on both axes.
sf::Vector2f ScreenToWorld(const sf::View& view, sf::Vector2f screen);

void DrawButton(sf::RenderTarget& target, const Button& button);
void FreeButton(Button& button);

void CreateSelector(Selector& selector, const sf::Texture* leftTexture,
                    const sf::Texture* rightTexture, sf::Vector2f scale, const Button& target);
// Puts the arrows 50 pixels left and right of the button's label (or background).
void PlaceSelector(Selector& selector, const Button& button);
void DrawSelector(sf::RenderTarget& target, const Selector& selector);
void FreeSelector(Selector& selector);

// The caller sets value beforehand.
void CreateSlider(Slider& slider, const sf::Texture* barTexture, const sf::Texture* fillTexture,
                  const sf::Texture* handleTexture, sf::Vector2f position);
// Moves the handle to the value and crops the fill up to it.
void UpdateSliderFill(Slider& slider);
void DrawSlider(sf::RenderTarget& target, const Slider& slider);
void FreeSlider(Slider& slider);

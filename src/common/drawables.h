// Building sprites and texts with one origin convention: an origin factor (fx, fy) puts the
// origin at (fx * width, fy * height) of the drawable's local size; (0.5, 1) is the bottom centre.
#pragma once

#include <SFML/Graphics.hpp>
#include <memory>
#include <string>

using SpritePtr = std::unique_ptr<sf::Sprite>;
using TexturePtr = std::unique_ptr<sf::Texture>;
using TextPtr = std::unique_ptr<sf::Text>;
using FontPtr = std::unique_ptr<sf::Font>;

// Loads a picture; null (and SFML's own message) when the file is missing or unreadable.
TexturePtr LoadTexture(const std::string& path);
FontPtr LoadFont(const std::string& path);

// Fills the slot (creating the sprite if it is empty). A null texture leaves an empty sprite and
// reports it. A zero-sized rectangle becomes the whole texture, in the caller's variable too.
void CreateSprite(SpritePtr& slot, const sf::Texture* texture, sf::Vector2f position,
                  sf::IntRect& rectangle, sf::Vector2f originFactor, sf::Vector2f scale);

// Same, for callers that always want the whole texture.
void CreateSprite(SpritePtr& slot, const sf::Texture* texture, sf::Vector2f position,
                  sf::Vector2f originFactor, sf::Vector2f scale);

// A sprite baked from two, owning its own texture.
struct CombinedSprite {
    TexturePtr texture;
    SpritePtr sprite;
};

// Bakes two sprites into one picture covering both; frees the sources when asked.
CombinedSprite CombineSprites(SpritePtr& first, SpritePtr& second, sf::Color background,
                              bool destroySources);

// The string is Windows-1252 text.
void CreateText(TextPtr& slot, const sf::Font* font, const std::string& string,
                sf::Vector2f position, unsigned characterSize, sf::Vector2f originFactor,
                sf::Color fill);

// The origin factor applied to a drawable's current local size.
sf::Vector2f OriginFromFactor(sf::FloatRect bounds, sf::Vector2f factor);

// A colour darkened towards black with its alpha kept. Blended over a picture that a black veil of
// alpha (1 - brightness) x 255 already covers, it shows exactly what it would under that veil.
sf::Color Darken(sf::Color color, float brightness);
// Draws a sprite or a text darkened so, leaving its own colour as it was.
void DrawDarkened(sf::RenderTarget& target, const sf::Sprite& sprite, float brightness);
void DrawDarkened(sf::RenderTarget& target, sf::Text& text, float brightness);

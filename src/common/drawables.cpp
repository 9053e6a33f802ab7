#include "common/drawables.h"

#include <algorithm>

#include "common/log.h"
#include "common/text.h"

namespace {

const char* const kNoTextureMessage = "\nerror function CreateSprite : no texture\n";

// Steps both values down by whole units while both stay positive, keeping their offset.
void PullTowardsZero(float& a, float& b) {
    while (a > 0 && b > 0) {
        a -= 1;
        b -= 1;
    }
}

}  // namespace

TexturePtr LoadTexture(const std::string& path) {
    // The picture first: a missing file needs no graphics context (the map readers run without).
    sf::Image image;
    if (!image.loadFromFile(path)) return nullptr;
    auto texture = std::make_unique<sf::Texture>();
    if (!texture->loadFromImage(image)) return nullptr;
    return texture;
}

FontPtr LoadFont(const std::string& path) {
    auto font = std::make_unique<sf::Font>();
    if (!font->loadFromFile(path)) return nullptr;
    return font;
}

sf::Vector2f OriginFromFactor(sf::FloatRect bounds, sf::Vector2f factor) {
    return {factor.x * bounds.width, factor.y * bounds.height};
}

void CreateSprite(SpritePtr& slot, const sf::Texture* texture, sf::Vector2f position,
                  sf::IntRect& rectangle, sf::Vector2f originFactor, sf::Vector2f scale) {
    if (!slot) slot = std::make_unique<sf::Sprite>();
    if (!texture) {
        Log("%s", kNoTextureMessage);
        return;
    }
    slot->setTexture(*texture, false);
    if (rectangle.width == 0 && rectangle.height == 0) {
        sf::Vector2u size = texture->getSize();
        rectangle = sf::IntRect(0, 0, int(size.x), int(size.y));
    }
    // Rectangle, scale, origin, position: the origin follows the final rectangle.
    slot->setTextureRect(rectangle);
    slot->setScale(scale);
    slot->setOrigin(originFactor.x * float(rectangle.width),
                    originFactor.y * float(rectangle.height));
    slot->setPosition(position);
}

void CreateSprite(SpritePtr& slot, const sf::Texture* texture, sf::Vector2f position,
                  sf::Vector2f originFactor, sf::Vector2f scale) {
    sf::IntRect whole;
    CreateSprite(slot, texture, position, whole, originFactor, scale);
}

CombinedSprite CombineSprites(SpritePtr& first, SpritePtr& second, sf::Color background,
                              bool destroySources) {
    sf::FloatRect a = first->getGlobalBounds();
    sf::FloatRect b = second->getGlobalBounds();
    float left = std::min(a.left, b.left);
    float top = std::min(a.top, b.top);
    float right = std::max(a.left + a.width, b.left + b.width);
    float bottom = std::max(a.top + a.height, b.top + b.height);

    sf::Sprite copyA = *first;
    sf::Sprite copyB = *second;
    copyA.setOrigin(0, 0);
    copyB.setOrigin(0, 0);
    float ax = a.left, bx = b.left, ay = a.top, by = b.top;
    PullTowardsZero(ax, bx);
    PullTowardsZero(ay, by);
    copyA.setPosition(ax, ay);
    copyB.setPosition(bx, by);

    sf::RenderTexture canvas;
    CombinedSprite result;
    if (canvas.create(unsigned(right - left), unsigned(bottom - top))) {
        canvas.clear(background);
        canvas.draw(copyA);
        canvas.draw(copyB);
        canvas.display();
        result.texture = std::make_unique<sf::Texture>(canvas.getTexture());
    }
    if (result.texture && result.texture->getSize().x > 0) {
        CreateSprite(result.sprite, result.texture.get(), {left, top}, {0, 0}, {1, 1});
    } else {
        result.texture.reset();
        CreateSprite(result.sprite, nullptr, {left, top}, {0, 0}, {1, 1});
    }
    if (destroySources) {
        first.reset();
        second.reset();
    }
    return result;
}

void CreateText(TextPtr& slot, const sf::Font* font, const std::string& string,
                sf::Vector2f position, unsigned characterSize, sf::Vector2f originFactor,
                sf::Color fill) {
    slot = std::make_unique<sf::Text>();
    if (font) slot->setFont(*font);
    slot->setString(FromWindows1252(string));
    slot->setFillColor(fill);
    slot->setCharacterSize(characterSize);
    slot->setOrigin(OriginFromFactor(slot->getGlobalBounds(), originFactor));
    slot->setPosition(position);
}

sf::Color Darken(sf::Color color, float brightness) {
    float k = std::clamp(brightness, 0.0f, 1.0f);
    auto channel = [k](sf::Uint8 value) { return sf::Uint8(float(value) * k + 0.5f); };
    return sf::Color(channel(color.r), channel(color.g), channel(color.b), color.a);
}

void DrawDarkened(sf::RenderTarget& target, const sf::Sprite& sprite, float brightness) {
    if (brightness >= 1) {
        target.draw(sprite);
        return;
    }
    sf::Sprite copy = sprite;
    copy.setColor(Darken(sprite.getColor(), brightness));
    target.draw(copy);
}

void DrawDarkened(sf::RenderTarget& target, sf::Text& text, float brightness) {
    sf::Color fill = text.getFillColor();
    if (brightness < 1) text.setFillColor(Darken(fill, brightness));
    target.draw(text);
    text.setFillColor(fill);
}

#include "common/ui.h"

#include <algorithm>

namespace {

sf::Color Darker(sf::Color color, int amount) {
    auto lower = [amount](sf::Uint8 channel) { return sf::Uint8(std::max(0, channel - amount)); };
    return sf::Color(lower(color.r), lower(color.g), lower(color.b), color.a);
}

void CreateButtonShape(Button& button, sf::Vector2f size, sf::Color labelColor,
                       sf::Color backgroundColor, sf::Vector2f position) {
    button.hovered = 0;
    button.shapeColor = backgroundColor;
    button.textColor = labelColor;
    button.shape = std::make_unique<sf::RectangleShape>(size);
    button.shape->setOrigin(size.x * 0.5f, size.y * 0.5f);
    button.shape->setFillColor(button.shapeColor);
    button.shape->setPosition(position);
    button.shape->setScale(1, 1);
}

}  // namespace

void CreateButton(Button& button, sf::Vector2f size, const sf::Font* font, const std::string& label,
                  unsigned characterSize, sf::Color labelColor, sf::Color backgroundColor,
                  sf::Vector2f position) {
    CreateButtonShape(button, size, labelColor, backgroundColor, position);
    CreateText(button.text, font, label, position, characterSize, {0.5f, 0.8f}, labelColor);
}

void CreateListButton(Button& button, sf::Vector2f size, const sf::Font* font,
                      const std::string& label, unsigned characterSize, sf::Color labelColor,
                      sf::Color backgroundColor, sf::Vector2f position) {
    CreateButtonShape(button, size, labelColor, backgroundColor, position);
    CreateText(button.text, font, label, {position.x - 85, position.y}, characterSize,
               {0.0f, 0.75f}, labelColor);
}

int UpdateButtonHover(sf::Vector2f pointer, Button& button) {
    bool inside = button.shape->getGlobalBounds().contains(pointer);
    button.shape->setFillColor(inside ? Darker(button.shapeColor, 75) : button.shapeColor);
    button.text->setFillColor(inside ? Darker(button.textColor, 100) : button.textColor);
    return inside ? 1 : 0;
}

sf::Vector2f ScreenToWorld(const sf::View& view, sf::Vector2f screen) {
    float factor = view.getSize().x / 1920.0f;
    return view.getCenter() - view.getSize() / 2.0f + screen * factor;
}

void DrawButton(sf::RenderTarget& target, const Button& button) {
    // A clear background shows nothing; drawing it would only cost fill.
    if (button.shape && button.shape->getFillColor().a != 0) target.draw(*button.shape);
    if (button.text) target.draw(*button.text);
}

void FreeButton(Button& button) {
    button.shape.reset();
    button.text.reset();
    button.hovered = 0;
}

void CreateSelector(Selector& selector, const sf::Texture* leftTexture,
                    const sf::Texture* rightTexture, sf::Vector2f scale, const Button& target) {
    selector.useTextBounds = 1;
    CreateSprite(selector.left, leftTexture, {0, 0}, {0.5f, 0.45f}, scale);
    CreateSprite(selector.right, rightTexture, {0, 0}, {0.5f, 0.45f}, scale);
    PlaceSelector(selector, target);
}

void PlaceSelector(Selector& selector, const Button& button) {
    sf::FloatRect bounds =
        selector.useTextBounds ? button.text->getGlobalBounds() : button.shape->getGlobalBounds();
    float y = bounds.top + bounds.height * 0.5f;
    selector.left->setPosition(bounds.left - 50, y);
    selector.right->setPosition(bounds.left + bounds.width + 50, y);
}

void DrawSelector(sf::RenderTarget& target, const Selector& selector) {
    if (selector.left) target.draw(*selector.left);
    if (selector.right) target.draw(*selector.right);
}

void FreeSelector(Selector& selector) {
    selector.left.reset();
    selector.right.reset();
}

void CreateSlider(Slider& slider, const sf::Texture* barTexture, const sf::Texture* fillTexture,
                  const sf::Texture* handleTexture, sf::Vector2f position) {
    slider.hovered = 0;
    CreateSprite(slider.bar, barTexture, position, {0.0f, 0.5f}, {1, 1});
    CreateSprite(slider.fill, fillTexture, position, {0.0f, 0.5f}, {1, 1});
    CreateSprite(slider.handle, handleTexture, position, {0.5f, 0.5f}, {1, 1});
    UpdateSliderFill(slider);
}

void UpdateSliderFill(Slider& slider) {
    sf::FloatRect bar = slider.bar->getGlobalBounds();
    float barX = slider.bar->getPosition().x;
    float handleX = barX + float(slider.value) / 100.0f * bar.width;
    slider.handle->setPosition(handleX, slider.handle->getPosition().y);
    slider.fill->setTextureRect(sf::IntRect(0, 0, int(handleX - barX), int(bar.height)));
}

void DrawSlider(sf::RenderTarget& target, const Slider& slider) {
    if (slider.bar) target.draw(*slider.bar);
    if (slider.fill) target.draw(*slider.fill);
    if (slider.handle) target.draw(*slider.handle);
}

void FreeSlider(Slider& slider) {
    slider.fill.reset();
    slider.bar.reset();
    slider.handle.reset();
    slider.hovered = 0;
    slider.dragging = 0;
}

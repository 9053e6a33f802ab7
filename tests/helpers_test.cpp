// The shared toolbox: easing, motion helpers, drawables and menu pieces.
#include <gtest/gtest.h>

#include <cmath>
#include <cstring>

#include "common/afterimage.h"
#include "common/draw_list.h"
#include "common/drawables.h"
#include "common/ease.h"
#include "common/motion.h"
#include "common/text.h"
#include "common/ui.h"

namespace {

TexturePtr SolidTexture(unsigned width, unsigned height, sf::Color color) {
    sf::Image image;
    image.create(width, height, color);
    auto texture = std::make_unique<sf::Texture>();
    texture->loadFromImage(image);
    return texture;
}

}  // namespace

TEST(Ease, EveryCurveRunsFromZeroToOneAndUnknownKindsGiveZero) {
    for (int kind = EASE_LINEAR; kind <= EASE_BACK_IN_OUT; kind++) {
        EXPECT_NEAR(Ease(kind, 0.0f), 0.0f, 1e-5f) << "kind " << kind;
        EXPECT_NEAR(Ease(kind, 1.0f), 1.0f, 1e-5f) << "kind " << kind;
    }
    EXPECT_EQ(Ease(11, 0.5f), 0.0f);
    EXPECT_EQ(Ease(-1, 0.5f), 0.0f);
}

TEST(Ease, MidpointsAndShapesOfTheCurves) {
    EXPECT_FLOAT_EQ(Ease(EASE_CUBIC_IN, 0.5f), 0.125f);
    EXPECT_FLOAT_EQ(Ease(EASE_CUBIC_OUT, 0.5f), 0.875f);
    EXPECT_FLOAT_EQ(Ease(EASE_CUBIC_IN_OUT, 0.25f), 0.0625f);
    EXPECT_FLOAT_EQ(Ease(EASE_CUBIC_IN_OUT, 0.75f), 0.9375f);
    EXPECT_NEAR(Ease(EASE_BOUNCE_IN_OUT, 0.5f), 0.5f, 1e-5f);
    EXPECT_NEAR(Ease(EASE_ELASTIC_IN_OUT, 0.5f), 0.5f, 1e-5f);
    EXPECT_NEAR(Ease(EASE_BACK_IN_OUT, 0.5f), 0.5f, 1e-5f);
    // Back and elastic curves overshoot: that is their point.
    EXPECT_LT(Ease(EASE_BACK_IN_OUT, 0.1f), 0.0f);
    EXPECT_GT(Ease(EASE_ELASTIC_OUT, 0.1f), 1.0f);
}

TEST(Ease, BounceIsContinuousAcrossItsFourArcs) {
    for (float edge : {0.36363637f, 0.72727275f, 0.90909094f}) {
        EXPECT_NEAR(BounceOut(edge - 1e-4f), BounceOut(edge + 1e-4f), 2e-3f) << edge;
    }
    EXPECT_NEAR(Ease(EASE_BOUNCE_IN, 0.3f), 1.0f - BounceOut(0.7f), 1e-6f);
}

TEST(Motion, MoveSnapsToTheTargetInsteadOfOvershooting) {
    sf::Sprite sprite;
    sprite.setPosition(0, 0);
    EXPECT_EQ(MoveSpriteTowards(sprite, {100, 0}, 0, 0.016f, 1), 1);
    EXPECT_EQ(sprite.getPosition(), sf::Vector2f(100, 0));

    sprite.setPosition(0, 0);
    EXPECT_EQ(MoveSpriteTowards(sprite, {30, 40}, 600, 0.05f, 1), 0);  // 30 of 50 px, diagonal
    EXPECT_NEAR(sprite.getPosition().x, 18, 1e-4);
    EXPECT_NEAR(sprite.getPosition().y, 24, 1e-4);
    EXPECT_EQ(MoveSpriteTowards(sprite, {30, 40}, 600, 0.05f, 1), 1);
    EXPECT_EQ(sprite.getPosition(), sf::Vector2f(30, 40));

    // Axis by axis: the short axis arrives first and stays put.
    sprite.setPosition(0, 0);
    EXPECT_EQ(MoveSpriteTowards(sprite, {10, -100}, 600, 0.05f, 0), 0);
    EXPECT_EQ(sprite.getPosition(), sf::Vector2f(10, -30));
}

TEST(Motion, RotationTakesTheShortWayRound) {
    sf::Sprite sprite;
    sprite.setRotation(350);
    EXPECT_EQ(RotateSpriteTowards(sprite, 10, 100, 0.1f), 0);
    EXPECT_NEAR(sprite.getRotation(), 0, 1e-3);  // 350 + 10, wrapped
    sprite.setRotation(10);
    RotateSpriteTowards(sprite, 350, 100, 0.1f);
    EXPECT_NEAR(sprite.getRotation(), 0, 1e-3);
    sprite.setRotation(90);
    EXPECT_EQ(RotateSpriteTowards(sprite, 95, 100, 0.1f), 1);
    EXPECT_FLOAT_EQ(sprite.getRotation(), 95);
    EXPECT_EQ(RotateSpriteTowards(sprite, 200, 0, 0.1f), 1);
}

TEST(Motion, FlashFadesAllTheWayBackToWhite) {
    sf::Sprite sprite;
    sprite.setColor(sf::Color(255, 0, 0));
    int frames = 0;
    while (!FadeSpriteColor(sprite, sf::Color::White, 1.0f / 60, 600) && frames < 200) frames++;
    // Fast at first, then the last units one a frame: a struck enemy is white again in about
    // a second, never left a shade red.
    EXPECT_LT(frames, 80);
    EXPECT_EQ(sprite.getColor(), sf::Color::White);

    sprite.setColor(sf::Color(255, 255, 255, 255));
    sf::Color dim(10, 10, 10, 255);
    for (int i = 0; i < 100 && !FadeSpriteColor(sprite, dim, 1.0f / 60, 600); i++) {
    }
    EXPECT_EQ(sprite.getColor(), dim);  // falling channels do reach the target
}

TEST(Motion, TweenEasesTheScaleAndFinishes) {
    sf::RectangleShape shape({10, 10});
    Tween tween;
    EXPECT_EQ(TweenShapeScale(shape, {2, 2}, 1.0f, 0.5f, tween), 0);
    EXPECT_FLOAT_EQ(shape.getScale().x, 1.5f);  // cubic in-out at half time is half way
    EXPECT_EQ(TweenShapeScale(shape, {2, 2}, 1.0f, 0.6f, tween), 1);
    EXPECT_EQ(shape.getScale(), sf::Vector2f(2, 2));
    EXPECT_EQ(TweenShapeScale(shape, {2, 2}, 1.0f, 0.1f, tween), 1);

    Tween instant;
    EXPECT_EQ(TweenShapeScale(shape, {0.5f, 3}, 0.0f, 0.016f, instant), 1);
    EXPECT_EQ(shape.getScale(), sf::Vector2f(0.5f, 3));
}

TEST(Motion, PositionTweenEasesToTheTargetAndStaysDone) {
    sf::RectangleShape shape({10, 10});
    shape.setPosition(100, 200);
    Tween tween;
    EXPECT_EQ(TweenPosition(shape, {100, 330}, 0.5f, EASE_CUBIC_IN_OUT, 0.125f, tween), 0);
    EXPECT_FLOAT_EQ(shape.getPosition().y, 200 + 130 * 0.0625f);  // a quarter in: 4t^3
    EXPECT_EQ(TweenPosition(shape, {100, 330}, 0.5f, EASE_CUBIC_IN_OUT, 0.125f, tween), 0);
    EXPECT_FLOAT_EQ(shape.getPosition().y, 265);
    EXPECT_EQ(TweenPosition(shape, {100, 330}, 0.5f, EASE_CUBIC_IN_OUT, 0.3f, tween), 1);
    EXPECT_EQ(shape.getPosition(), sf::Vector2f(100, 330));
    EXPECT_EQ(TweenPosition(shape, {100, 330}, 0.5f, EASE_CUBIC_IN_OUT, 0.1f, tween), 1);
    EXPECT_EQ(shape.getPosition(), sf::Vector2f(100, 330));  // done: it stays where it ended
    EXPECT_TRUE(TweenDone(tween));
}

TEST(Drawables, ZeroRectangleMeansTheWholeTextureAndOriginFollowsIt) {
    TexturePtr texture = SolidTexture(40, 20, sf::Color::Red);
    SpritePtr sprite;
    sf::IntRect rectangle;
    CreateSprite(sprite, texture.get(), {100, 50}, rectangle, {0.5f, 1.0f}, {3, 3});
    EXPECT_EQ(rectangle, sf::IntRect(0, 0, 40, 20));
    EXPECT_EQ(sprite->getOrigin(), sf::Vector2f(20, 20));
    sf::FloatRect bounds = sprite->getGlobalBounds();
    EXPECT_EQ(bounds, sf::FloatRect(40, -10, 120, 60));  // feet at the position
}

TEST(Drawables, MissingTextureLeavesAnEmptySpriteAndSaysSo) {
    SpritePtr sprite;
    testing::internal::CaptureStdout();
    CreateSprite(sprite, nullptr, {5, 5}, {0, 0}, {1, 1});
    EXPECT_EQ(testing::internal::GetCapturedStdout(),
              "\nerror function CreateSprite : no texture\n");
    ASSERT_TRUE(sprite);
    EXPECT_EQ(sprite->getTexture(), nullptr);
}

TEST(Drawables, CombinedSpriteCoversBothAndKeepsTheirPixels) {
    TexturePtr red = SolidTexture(10, 10, sf::Color::Red);
    TexturePtr blue = SolidTexture(10, 10, sf::Color::Blue);
    SpritePtr first, second;
    CreateSprite(first, red.get(), {5, 5}, {0, 0}, {1, 1});
    CreateSprite(second, blue.get(), {12, 8}, {0, 0}, {1, 1});
    CombinedSprite combined = CombineSprites(first, second, sf::Color::Transparent, true);
    EXPECT_FALSE(first);
    EXPECT_FALSE(second);
    ASSERT_TRUE(combined.texture);
    EXPECT_EQ(combined.texture->getSize(), sf::Vector2u(17, 13));
    EXPECT_EQ(combined.sprite->getPosition(), sf::Vector2f(5, 5));
    sf::Image pixels = combined.texture->copyToImage();
    EXPECT_EQ(pixels.getPixel(1, 1), sf::Color::Red);
    EXPECT_EQ(pixels.getPixel(15, 11), sf::Color::Blue);
    EXPECT_EQ(pixels.getPixel(15, 1), sf::Color::Transparent);
}

TEST(Drawables, Windows1252TextShowsItsAccents) {
    sf::String text = FromWindows1252("\xE0\xE9\xE8\xE7 \x80");
    ASSERT_EQ(text.getSize(), 6u);
    EXPECT_EQ(text[0], 0xE0u);
    EXPECT_EQ(text[3], 0xE7u);
    EXPECT_EQ(text[5], 0x20ACu);  // the euro sign lives in the 0x80 row
}

TEST(Drawables, NumbersOnScreenGoThroughTheirFormat) {
    sf::Text text;
    EXPECT_EQ(SetTextNumber(text, "%d%%", 42), 3);
    EXPECT_EQ(text.getString(), "42%");
}

TEST(Ui, HoverDarkensWithoutWrappingBelowBlack) {
    Button button;
    CreateButton(button, {100, 40}, nullptr, "OK", 30, sf::Color(90, 200, 255),
                 sf::Color(50, 100, 200, 128), {200, 100});
    EXPECT_EQ(UpdateButtonHover({200, 100}, button), 1);
    EXPECT_EQ(button.shape->getFillColor(), sf::Color(0, 25, 125, 128));
    EXPECT_EQ(button.text->getFillColor(), sf::Color(0, 100, 155));
    EXPECT_EQ(UpdateButtonHover({200, 121}, button), 0);  // just below the 40 px box
    EXPECT_EQ(button.shape->getFillColor(), sf::Color(50, 100, 200, 128));
    EXPECT_EQ(button.text->getFillColor(), sf::Color(90, 200, 255));
}

TEST(Ui, ScreenPointsMapIntoWhatTheViewShows) {
    const struct {
        sf::View view;
        sf::Vector2f screen;
        sf::Vector2f world;
    } cases[] = {
        {sf::View({960, 540}, {1920, 1080}), {100, 200}, {100, 200}},
        {sf::View({5000, 2000}, {1920, 1080}), {0, 0}, {4040, 1460}},
        {sf::View({1000, 1000}, {960, 540}), {0, 0}, {520, 730}},  // zoomed in
        {sf::View({1000, 1000}, {960, 540}), {1920, 1080}, {1480, 1270}},
        {sf::View({0, 0}, {3840, 2160}), {960, 540}, {0, 0}},  // zoomed out
    };
    for (const auto& c : cases) {
        sf::Vector2f world = ScreenToWorld(c.view, c.screen);
        EXPECT_FLOAT_EQ(world.x, c.world.x);
        EXPECT_FLOAT_EQ(world.y, c.world.y);
    }
}

TEST(Ui, SelectorFramesTheLabelFiftyPixelsOut) {
    sf::Font font;
    ASSERT_TRUE(font.loadFromFile(std::string(OV_SOURCE_DIR) + "/Assets/Fonts/alagard.ttf"));
    Button button;
    CreateListButton(button, {288, 37.8f}, &font, "SETTINGS", 36, sf::Color::White,
                     sf::Color::Transparent, {240, 702});
    EXPECT_EQ(button.text->getPosition(), sf::Vector2f(155, 702));
    TexturePtr arrow = SolidTexture(24, 24, sf::Color::Yellow);
    Selector selector;
    CreateSelector(selector, arrow.get(), arrow.get(), {1.5f, 1.5f}, button);
    sf::FloatRect label = button.text->getGlobalBounds();
    EXPECT_FLOAT_EQ(selector.left->getPosition().x, label.left - 50);
    EXPECT_FLOAT_EQ(selector.right->getPosition().x, label.left + label.width + 50);
    EXPECT_FLOAT_EQ(selector.left->getPosition().y, label.top + label.height / 2);
}

TEST(Ui, SliderHandleAndFillFollowTheValue) {
    TexturePtr bar = SolidTexture(200, 20, sf::Color::Black);
    TexturePtr knob = SolidTexture(10, 10, sf::Color::White);
    Slider slider;
    slider.value = 25;
    CreateSlider(slider, bar.get(), bar.get(), knob.get(), {100, 300});
    EXPECT_EQ(slider.handle->getPosition(), sf::Vector2f(150, 300));
    EXPECT_EQ(slider.fill->getTextureRect(), sf::IntRect(0, 0, 50, 20));
    slider.value = 100;
    UpdateSliderFill(slider);
    EXPECT_EQ(slider.fill->getTextureRect(), sf::IntRect(0, 0, 200, 20));
}

TEST(DrawListTest, DrawsKnownKindsInOrderAndSkipsTheRest) {
    sf::RenderTexture canvas;
    ASSERT_TRUE(canvas.create(4, 4));
    sf::RectangleShape back({4, 4}), front({2, 2});
    back.setFillColor(sf::Color::Red);
    front.setFillColor(sf::Color::Green);
    sf::CircleShape ignored(4);
    ignored.setFillColor(sf::Color::Blue);
    DrawListEntry entries[3] = {
        {&back, DRAW_LIST_RECTANGLE}, {&front, DRAW_LIST_RECTANGLE}, {&ignored, 7}};
    DrawList list;
    for (DrawListEntry& entry : entries) AddToDrawList(list, &entry);
    EXPECT_EQ(list.count, 3);
    canvas.clear();
    DrawDrawList(list, canvas);
    canvas.display();
    sf::Image pixels = canvas.getTexture().copyToImage();
    EXPECT_EQ(pixels.getPixel(0, 0), sf::Color::Green);
    EXPECT_EQ(pixels.getPixel(3, 3), sf::Color::Red);
    ClearDrawList(list);
    EXPECT_EQ(list.count, 0);
}

// A trail drawn one ghost in k, each made as dense as k ghosts, must look like the whole trail
// where the ghosts pile up, and always keep the newest ghost.
TEST(Afterimages, ThinnedTrailIsAsDenseAsTheWholeOne) {
    sf::Texture white;
    ASSERT_TRUE(white.create(4, 4));
    std::vector<sf::Uint8> pixels(4 * 4 * 4, 255);
    white.update(pixels.data());
    AfterimageTrail trail;
    for (int i = 0; i < 10; i++) {
        sf::Sprite ghost(white);
        ghost.setPosition(float(i), 0);  // the newest ghost alone reaches column 12
        ghost.setColor(sf::Color(119, 86, 162, 100));
        trail.ghosts.push_back({ghost, 0});
    }
    auto drawn = [&](int every) {
        sf::RenderTexture canvas;
        EXPECT_TRUE(canvas.create(16, 4));
        canvas.clear(sf::Color::Black);
        DrawAfterimages(canvas, trail, every);
        canvas.display();
        return canvas.getTexture().copyToImage();
    };
    sf::Image whole = drawn(1), thinned = drawn(4);
    // Column 9 lies under every ghost but the first six.
    sf::Color a = whole.getPixel(9, 1), b = thinned.getPixel(9, 1);
    EXPECT_NEAR(a.r, b.r, 12);
    EXPECT_NEAR(a.g, b.g, 12);
    EXPECT_NEAR(a.b, b.b, 12);
    EXPECT_NE(thinned.getPixel(12, 1), sf::Color::Black);
    EXPECT_EQ(thinned.getPixel(13, 1), sf::Color::Black);
    // A trail with no ghost left, as when the Goddess's are blown away, draws nothing.
    trail.ghosts.clear();
    EXPECT_EQ(drawn(4).getPixel(12, 1), sf::Color::Black);
}

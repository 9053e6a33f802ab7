// The pixel canvas must show exactly what the view shows at full resolution: same place, same
// zoom, same turn, whole art pixels, and a camera that glides by fractions of a texel.
#include "world/pixel_canvas.h"

#include <gtest/gtest.h>

#include <cstdlib>

namespace {

// A piece of pixel art whose every pixel differs from its neighbours, drawn at the game's scale
// on the texel grid, so any misplaced texel shows as a wrong colour.
class PixelCanvasTest : public ::testing::Test {
protected:
    void SetUp() override {
        sf::Image art;
        art.create(700, 400);
        std::srand(7);
        for (unsigned y = 0; y < art.getSize().y; y++) {
            for (unsigned x = 0; x < art.getSize().x; x++) {
                art.setPixel(x, y,
                             sf::Color(sf::Uint8(std::rand()), sf::Uint8(std::rand()),
                                       sf::Uint8(std::rand())));
            }
        }
        ASSERT_TRUE(texture.loadFromImage(art));
        sprite.setTexture(texture);
        sprite.setScale(3, 3);
        sprite.setPosition(-801, -399);  // on the texel grid, as tiles are
        ground.setSize({20000, 20000});
        ground.setPosition(-10000, -10000);
        ground.setFillColor(sf::Color(40, 60, 90));
        ASSERT_TRUE(screen.create(1920, 1080));
        CreatePixelCanvas();
    }
    void TearDown() override {
        SetFullResolutionWorld(0);
        DestroyPixelCanvas();
    }

    sf::Image Shot(const sf::View& view, int fullResolution) {
        SetFullResolutionWorld(fullResolution);
        screen.clear(sf::Color::Magenta);
        sf::RenderTarget& world = BeginPixelCanvas(screen, view);
        world.draw(ground);
        world.draw(sprite);
        PresentPixelCanvas(screen);
        screen.display();
        return screen.getTexture().copyToImage();
    }

    // The share of the screen's pixels that both paths colour alike.
    double Agreement(const sf::View& view) {
        sf::Image full = Shot(view, 1);
        sf::Image pixel = Shot(view, 0);
        size_t same = 0, total = 0;
        for (unsigned y = 0; y < 1080; y += 3) {
            for (unsigned x = 0; x < 1920; x += 3) {
                same += full.getPixel(x, y) == pixel.getPixel(x, y);
                total++;
            }
        }
        return double(same) / double(total);
    }

    sf::Texture texture;
    sf::Sprite sprite;
    sf::RectangleShape ground;
    sf::RenderTexture screen;
};

}  // namespace

TEST_F(PixelCanvasTest, ShowsWhatTheViewShowsAtEveryFraming) {
    struct Framing {
        const char* what;
        sf::Vector2f center, size;
        float rotation;
    };
    const Framing framings[] = {
        {"the normal view on the grid", {300, 195}, {1920, 1080}, 0},

        {"a camera between texels", {301.4f, 196.7f}, {1920, 1080}, 0},
        {"a camera half a texel off on both axes", {-200.5f, 100.5f}, {1920, 1080}, 0},
        {"the parry punch zoom", {288.2f, 200.9f}, {1824, 1026}, 0},
        {"the respawn close-up", {310.6f, 240.2f}, {576, 324}, 0},
        {"a zoomed-out ride", {350.3f, 250.1f}, {3840, 2160}, 0},
        {"a turned close-up", {305.2f, 230.8f}, {800, 450}, 12},
        {"a camera turning back", {300, 220}, {1920, 1080}, 353.5f},
    };
    for (const Framing& framing : framings) {
        sf::View view(framing.center, framing.size);
        view.setRotation(framing.rotation);
        // Edges of art pixels may round either way; everything else must agree.
        EXPECT_GT(Agreement(view), 0.97) << framing.what;
    }
}

TEST_F(PixelCanvasTest, ArtPixelsStayWholeAndEqual) {
    sf::View view({301.4f, 196.7f}, {1920, 1080});
    sf::Image shot = Shot(view, 0);
    // Along a row, colours change only every three screen pixels at the normal zoom.
    int runs = 0, shortRuns = 0, run = 1;
    for (unsigned x = 1; x < 1920; x++) {
        if (shot.getPixel(x, 540) == shot.getPixel(x - 1, 540)) {
            run++;
            continue;
        }
        runs++;
        if (run < 3) shortRuns++;
        run = 1;
    }
    EXPECT_GT(runs, 600);     // a run per art pixel across the screen
    EXPECT_LE(shortRuns, 1);  // only the first run may be cut by the screen's edge
}

TEST_F(PixelCanvasTest, CanvasCoversRotatedAndZoomedViewsOnAnEvenGrid) {
    sf::Vector2u normal = PixelCanvasSizeFor(sf::View({0, 0}, {1920, 1080}));
    EXPECT_EQ(normal, sf::Vector2u(642, 362));
    sf::View turned({0, 0}, {1920, 1080});
    turned.setRotation(90);
    sf::Vector2u side = PixelCanvasSizeFor(turned);
    EXPECT_GE(side.x, 362u);
    EXPECT_GE(side.y, 642u);
    sf::Vector2u odd = PixelCanvasSizeFor(sf::View({0, 0}, {1000, 1001}));
    EXPECT_EQ(odd.x % 2, 0u);
    EXPECT_EQ(odd.y % 2, 0u);
    EXPECT_EQ(SnapToTexelGrid({4.4f, -4.6f}), sf::Vector2f(3, -6));
    EXPECT_EQ(SnapToTexelGrid({1.6f, 1.4f}), sf::Vector2f(3, 0));
}

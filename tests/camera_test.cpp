// The camera's follow, blends, clamp and shake, the screen fade, and the moving parts of a room.
#include "world/camera.h"

#include <gtest/gtest.h>

#include <cstdlib>

#include "support/pictures.h"
#include "world/room.h"
#include "world/room_draw.h"

namespace {

class CameraTest : public ::testing::Test {
protected:
    void SetUp() override {
        CreateCamera({0, 0});
        GameCamera().mode = CAMERA_FOLLOW;
    }
    void TearDown() override {
        DestroyCamera();
        ReleaseRoom();
        CurrentRoom() = Room();
    }
    sf::View& View() { return *GameCamera().view; }
    void SetContainer(sf::FloatRect rect) {
        CurrentRoom().cameraContainer =
            std::make_shared<sf::RectangleShape>(sf::Vector2f(rect.width, rect.height));
        CurrentRoom().cameraContainer->setPosition(rect.left, rect.top);
    }
};

}  // namespace

TEST_F(CameraTest, FollowLagsCloseAndCatchesUpFarGoals) {
    FollowTarget({5, 0});
    EXPECT_EQ(View().getCenter(), sf::Vector2f(0, 0));
    View().setCenter(0, 0);
    FollowTarget({50, 1});
    EXPECT_NEAR(View().getCenter().x, 1.5f, 1e-3);  // 3 % of 50 px
    EXPECT_FLOAT_EQ(View().getCenter().y, 1);       // within a step: snaps
    View().setCenter(0, 0);
    FollowTarget({250, 0});
    EXPECT_NEAR(View().getCenter().x, 150, 1e-3);  // 100 px short of the goal
}

TEST_F(CameraTest, RotationAndZoomEaseBackByOnePercentAFrame) {
    View().setRotation(350);
    FollowTarget(View().getCenter());
    EXPECT_NEAR(View().getRotation(), 353.5f, 1e-3);  // upwards to 360, not back through 180
    View().setRotation(0);
    View().setSize(2920, 1080);
    FollowTarget(View().getCenter());
    EXPECT_LT(View().getSize().x, 2920);
    View().setSize(1920.5f, 1080);
    FollowTarget(View().getCenter());
    EXPECT_EQ(View().getSize(), sf::Vector2f(1920, 1080));
}

TEST_F(CameraTest, BlendsEndInTheirModeAndAZeroBlendEndsAtOnce) {
    Camera& camera = GameCamera();
    camera.mode = CAMERA_BLEND;
    camera.blendTarget = CAMERA_FIXED;
    camera.fixedCenter = {500, 300};
    camera.fixedSize = {576, 324};
    camera.fixedRotation = 10;
    camera.blendDuration = 0;
    UpdateCamera(1.0f / 60, {0, 0});
    EXPECT_EQ(camera.mode, CAMERA_FIXED);
    EXPECT_EQ(View().getSize(), sf::Vector2f(576, 324));
    EXPECT_FLOAT_EQ(View().getRotation(), 10);

    camera.mode = CAMERA_BLEND;
    camera.blendTarget = CAMERA_FOLLOW;
    camera.blendDuration = 1.0f;
    camera.sizeEasing = 0;
    int frames = 0;
    while (camera.mode == CAMERA_BLEND && frames < 200) {
        UpdateCamera(0.1f, {0, 0});
        frames++;
    }
    EXPECT_NEAR(frames, 10, 1);
    EXPECT_EQ(camera.mode, CAMERA_FOLLOW);
    EXPECT_EQ(View().getSize(), sf::Vector2f(1920, 1080));
}

TEST_F(CameraTest, ContainerKeepsTheViewInsideAndANarrowOneAlignsTheRightEdge) {
    SetContainer({0, 0, 5000, 2000});
    View().setCenter(100, 100);
    ClampViewToContainer();
    EXPECT_EQ(View().getCenter(), sf::Vector2f(960, 540));
    View().setCenter(4900, 1900);
    ClampViewToContainer();
    EXPECT_EQ(View().getCenter(), sf::Vector2f(4040, 1460));

    SetContainer({0, 0, 1000, 2000});
    View().setCenter(960, 540);  // left edges together
    ClampViewToContainer();
    EXPECT_EQ(View().getCenter(), sf::Vector2f(40, 540));
}

TEST_F(CameraTest, FollowGoalAboveTheFeetIsClampedToo) {
    SetContainer({0, 0, 3000, 1080});
    UpdateCamera(1.0f / 60, {1500, 1080});
    // Goal (1500, 1080 - 151.2) is pulled up so the view stays in the container.
    for (int i = 0; i < 400; i++) UpdateCamera(1.0f / 60, {1500, 1080});
    EXPECT_NEAR(View().getCenter().x, 1500, 7);
    EXPECT_NEAR(View().getCenter().y, 540, 7);
}

TEST_F(CameraTest, ShakeStaysWithinHalfTheAmplitude) {
    SetContainer({-10000, -10000, 20000, 20000});
    Camera& camera = GameCamera();
    std::srand(7);
    int low = 100, high = -100;
    for (int i = 0; i < 500; i++) {
        View().setCenter(0, 0);
        camera.shake = 1;
        camera.shakeAmplitude = 10;
        UpdateCamera(1.0f / 60, {0, 0.14f * 1080});
        int offset = int(View().getCenter().x);
        low = std::min(low, offset);
        high = std::max(high, offset);
    }
    EXPECT_EQ(low, -5);
    EXPECT_EQ(high, 4);
}

TEST_F(CameraTest, BossFocusPansHoldsAndReturns) {
    SetContainer({0, 0, 10000, 2000});
    Camera& camera = GameCamera();
    View().setCenter(1000, 900);
    StartBossFocus({3000, 900});
    StartBossFocus({9000, 900});  // a running focus is not restarted
    float seconds = 0;
    while (camera.focusActive && seconds < 10) {
        UpdateCamera(0.1f, {1000, 1000});
        seconds += 0.1f;
        if (camera.focusPhase == 1) {
            EXPECT_NEAR(View().getCenter().x, 3000, 0.01);
        }
    }
    EXPECT_NEAR(seconds, 6.1f, 0.25f);  // 2 s there, 2 s held, 2 s back
    EXPECT_EQ(camera.mode, CAMERA_FOLLOW);
    EXPECT_NEAR(View().getCenter().x, 1000, 0.5);
}

TEST_F(CameraTest, FitKeepsTheViewsProportions) {
    EXPECT_EQ(FitViewSize({3840, 3000}), sf::Vector2f(3840, 2160));
    sf::Vector2f narrow = FitViewSize({1000, 1080});
    EXPECT_NEAR(narrow.x, 1000, 1e-3);
    EXPECT_NEAR(narrow.y, 562.5f, 1e-3);
}

TEST_F(CameraTest, FadesReachTheirColour) {
    CreateScreenFade();
    UpdateScreenFade({0, 0}, {1920, 1080}, 0.016f);
    EXPECT_EQ(Fade().shape->getFillColor().a, 0);  // created with nothing to do
    EXPECT_EQ(Fade().done, 1);
    StartScreenFade(FADE_TO_BLACK, 0);
    UpdateScreenFade({0, 0}, {1920, 1080}, 0.016f);
    EXPECT_EQ(Fade().shape->getFillColor(), sf::Color::Black);
    EXPECT_EQ(Fade().done, 1);
    StartScreenFade(FADE_TO_CLEAR, 0.8f);
    int frames = 0;
    for (; !Fade().done && frames < 100; frames++) UpdateScreenFade({5, 6}, {100, 50}, 0.1f);
    EXPECT_EQ(frames, 8);
    EXPECT_EQ(Fade().shape->getFillColor().a, 0);
    EXPECT_EQ(Fade().shape->getPosition(), sf::Vector2f(5, 6));
    DestroyScreenFade();
}

namespace {

class BackgroundTest : public CameraTest {
protected:
    Background& AddBackground(float factor, int loopX) {
        Background background;
        background.sprite = std::make_unique<sf::Sprite>();
        background.texture = std::make_unique<sf::Texture>();
        EXPECT_TRUE(background.texture->create(640, 360));
        background.sprite->setTexture(*background.texture);
        background.sprite->setTextureRect({0, 0, loopX ? 2560 : 640, 360});
        background.sprite->setScale(3, 3);
        background.parallaxX = factor - 1;
        background.loopX = loopX;
        CurrentRoom().backgrounds.push_back(std::move(background));
        return CurrentRoom().backgrounds.back();
    }
};

}  // namespace

TEST_F(BackgroundTest, StillViewLeavesBackgroundsAndParallaxMovesThem) {
    Background& far = AddBackground(1.5f, 0);
    View().setCenter(1000, 540);
    LastViewCenter() = {1000, 540};
    UpdateBackgrounds(View());
    EXPECT_EQ(far.sprite->getPosition(), sf::Vector2f(0, 0));
    View().setCenter(1100, 540);
    UpdateBackgrounds(View());
    EXPECT_EQ(far.sprite->getPosition(), sf::Vector2f(50, 0));
}

TEST_F(BackgroundTest, LoopingBackgroundJumpsByHalfOnceTheViewPassesItsMiddle) {
    Background& sky = AddBackground(1.0f, 1);  // 7680 px wide, fixed in the world
    LastViewCenter() = {960, 540};
    View().setCenter(960 + 3000, 540);  // left edge 3000: before the middle (3840)
    UpdateBackgrounds(View());
    EXPECT_EQ(sky.sprite->getPosition().x, 0);
    View().setCenter(960 + 3850, 540);  // left edge 10 px past the middle
    UpdateBackgrounds(View());
    EXPECT_EQ(sky.sprite->getPosition().x, 3840);
    sky.followY = 1;
    View().setCenter(960 + 3850, 2000);
    UpdateBackgrounds(View());
    EXPECT_EQ(sky.sprite->getPosition().y, 2000 - 540);
}

TEST_F(BackgroundTest, AnimatedTileAdvancesOneFrameAndDropsTheRest) {
    Room& room = CurrentRoom();
    auto texture = std::make_unique<sf::Texture>();
    ASSERT_TRUE(texture->create(320, 64));
    room.layers.emplace_back();
    room.layers.back().name = "Water";
    room.layers.back().tiles = {sf::Sprite(*texture, {0, 0, 32, 32})};
    TileAnimation animation;
    animation.texture = texture.get();
    animation.frameCount = 3;
    animation.durations = {0.1f, 0.1f, 0.1f};
    animation.tileIds = {5, 12, 7};
    room.tileAnimations.push_back(animation);
    UpdateRoomProximity({0, 0}, 100, 0.25f);
    EXPECT_EQ(room.tileAnimations[0].frame, 1u);
    EXPECT_EQ(room.tileAnimations[0].timer, 0);
    EXPECT_EQ(room.layers[0].tiles[0].getTextureRect(), sf::IntRect(64, 32, 32, 32));
    room.layers.clear();
    room.tileAnimations.clear();
}

TEST_F(BackgroundTest, TriggersNearTheViewAreMarked) {
    Room& room = CurrentRoom();
    auto shape = std::make_shared<sf::RectangleShape>(sf::Vector2f(100, 100));
    shape->setPosition(2000, -50);
    room.triggers.push_back({shape, "Chest trigger", 0, 0});
    // The trigger's centre is 2050 px away; its half sizes add 100 to the reach.
    UpdateRoomProximity({0, 0}, 1960, 0);
    EXPECT_EQ(room.triggers[0].near, 1);
    UpdateRoomProximity({0, 0}, 1940, 0);
    EXPECT_EQ(room.triggers[0].near, 0);
    room.triggers.clear();
}

TEST_F(BackgroundTest, OverlayDrawsOnlyWhenOnAndNeverInactiveRectangles) {
    sf::RenderTexture canvas;
    ASSERT_TRUE(canvas.create(64, 64));
    canvas.setView(sf::View(sf::FloatRect(0, 0, 64, 64)));
    Room& room = CurrentRoom();
    auto open = std::make_shared<sf::RectangleShape>(sf::Vector2f(32, 64));
    open->setFillColor(sf::Color::Red);
    auto closed = std::make_shared<sf::RectangleShape>(sf::Vector2f(32, 64));
    closed->setPosition(32, 0);
    closed->setFillColor(sf::Color::Red);
    room.collisions.push_back({open, COLLISION_SOLID, 0});
    room.collisions.push_back({closed, COLLISION_SOLID, 1});
    auto pixel = [&](unsigned x) {
        canvas.clear(sf::Color::Black);
        DrawRoomDebug(canvas);
        canvas.display();
        return canvas.getTexture().copyToImage().getPixel(x, 10);
    };
    DebugOverlay() = 0;
    EXPECT_EQ(pixel(40), sf::Color::Black);
    DebugOverlay() = 1;
    EXPECT_EQ(pixel(40), sf::Color::Red);
    EXPECT_EQ(pixel(10), sf::Color::Black);
    DebugOverlay() = 0;
    room.collisions.clear();
}

namespace {

// A 50 x 30 backdrop, a size no piece divides: a red hill in its lower right, clear elsewhere but
// for one faint texel high on the left, which must not be dropped.
sf::Image HillPicture() {
    return MakePicture({50, 30}, [](unsigned x, unsigned y) {
        if (x == 3 && y == 2) return sf::Color(0, 0, 255, 1);
        return y > 18 && x > 20 ? sf::Color(200, 40, 40, 255) : sf::Color(0, 0, 0, 0);
    });
}

// The backdrop drawn as a plain sprite, then as its pieces, onto the same grey.
std::pair<sf::Image, sf::Image> BothWays(Background& background) {
    sf::RenderTexture canvas;
    EXPECT_TRUE(canvas.create(320, 200));
    canvas.setView(sf::View(sf::FloatRect(-37, -23, 320, 200)));
    auto draw = [&](auto&& what) {
        canvas.clear(sf::Color(90, 90, 90));
        what();
        canvas.display();
        return canvas.getTexture().copyToImage();
    };
    sf::Image sprite = draw([&] { canvas.draw(*background.sprite); });
    sf::RenderStates states(background.texture.get());
    states.transform = background.sprite->getTransform();
    sf::Image pieces = draw([&] { canvas.draw(background.pieces, states); });
    return {sprite, pieces};
}

}  // namespace

// The backdrop is drawn as the squares that show something; they must give back the very picture
// the whole sprite gives, across the picture's ragged edges and its repeats either way.
TEST(BackgroundPieces, DrawExactlyWhatTheWholeBackdropDraws) {
    struct Case {
        const char* name;
        sf::IntRect rect;
        float scale;
    } cases[] = {
        {"plain", {0, 0, 50, 30}, 3},
        {"repeated sideways", {0, 0, 200, 30}, 2},
        {"repeated upwards, flipped", {0, 0, 50, -120}, 2},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        Background background;
        background.texture = std::make_unique<sf::Texture>();
        ASSERT_TRUE(background.texture->loadFromImage(HillPicture()));
        background.texture->setRepeated(true);
        background.sprite = std::make_unique<sf::Sprite>(*background.texture, c.rect);
        background.sprite->setPosition(-11, 4);
        background.sprite->setScale(c.scale, c.scale);
        BuildBackgroundPieces(background);
        EXPECT_FALSE(background.opaque);
        auto [sprite, pieces] = BothWays(background);
        ASSERT_EQ(sprite.getSize(), pieces.getSize());
        int differing = 0;
        for (unsigned y = 0; y < sprite.getSize().y; y++) {
            for (unsigned x = 0; x < sprite.getSize().x; x++) {
                differing += sprite.getPixel(x, y) != pieces.getPixel(x, y);
            }
        }
        EXPECT_EQ(differing, 0);
        // The empty sky is left out: fewer texels drawn than the whole rectangle.
        float covered = 0;
        for (size_t i = 0; i + 3 < background.pieces.getVertexCount(); i += 4) {
            sf::Vector2f a = background.pieces[i].position, b = background.pieces[i + 2].position;
            covered += (b.x - a.x) * (b.y - a.y);
        }
        EXPECT_LT(covered, 0.8f * float(std::abs(c.rect.width * c.rect.height)));
    }
}

// An opaque backdrop covers its whole rectangle and is copied without blending.
TEST(BackgroundPieces, OpaqueBackdropCoversEverything) {
    Background background;
    background.texture = std::make_unique<sf::Texture>();
    ASSERT_TRUE(background.texture->loadFromImage(MakePicture({40, 24}, Plain(sf::Color::Blue))));
    background.sprite = std::make_unique<sf::Sprite>(*background.texture);
    BuildBackgroundPieces(background);
    EXPECT_TRUE(background.opaque);
    EXPECT_EQ(background.pieces.getBounds(), sf::FloatRect(0, 0, 40, 24));
}

// Under a view taller than the backdrops the canvas shows the fog they end in: their bottom rows
// laid over each other, the farthest (last) first; a flipped backdrop ends in its picture's top.
TEST(BackgroundPieces, TheFootColourIsTheBackdropsBottomRowsLaidOverEachOther) {
    auto backdrop = [](sf::Color top, sf::Color bottom, bool flipped) {
        Background background;
        background.texture = std::make_unique<sf::Texture>();
        EXPECT_TRUE(background.texture->loadFromImage(
            MakePicture({8, 4}, [&](unsigned, unsigned y) { return y == 3 ? bottom : top; })));
        sf::IntRect rect(0, 0, 8, flipped ? -16 : 4);
        background.sprite = std::make_unique<sf::Sprite>(*background.texture, rect);
        return background;
    };
    std::vector<Background> layers;
    layers.push_back(backdrop(sf::Color::Transparent, sf::Color(0, 0, 200, 128), false));  // near
    layers.push_back(backdrop(sf::Color::White, sf::Color(200, 0, 0), false));             // sky
    sf::Color foot = BackdropFootColor(layers);
    EXPECT_NEAR(foot.r, 100, 1);
    EXPECT_NEAR(foot.g, 0, 1);
    EXPECT_NEAR(foot.b, 100, 1);
    layers[1] = backdrop(sf::Color(0, 200, 0), sf::Color::White, true);
    foot = BackdropFootColor(layers);
    EXPECT_NEAR(foot.r, 0, 1);
    EXPECT_NEAR(foot.g, 100, 1);
    EXPECT_EQ(BackdropFootColor({}), sf::Color::Black);
}

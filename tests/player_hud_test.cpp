// The hero's HUD: the life bar's pieces and lost layers, the flask's clips, the vignette's flash
// and pulse, and what the HUD draws. The pictures are made here at the sizes the art keeps to.
#include "hud/player_hud.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <functional>

#include "interactables/money.h"
#include "player/save.h"
#include "support/fixture.h"
#include "support/pictures.h"

namespace {

constexpr float kDt = 1.0f / 60.0f;
const sf::Vector2u kScreen(1920, 1080);

// Dark red edges rising from a transparent ellipse that fills most of the screen.
sf::Color VignetteTexel(unsigned x, unsigned y) {
    double dx = (double(x) + 0.5 - 960) / (960 * 0.85), dy = (double(y) + 0.5 - 540) / (540 * 0.8);
    double d = std::sqrt(dx * dx + dy * dy);
    int alpha = d <= 1 ? 0 : std::min(255, int((d - 1) * 900));
    return sf::Color(110, 0, 10, sf::Uint8(alpha));
}

// Only the drawing tests need it: the vignette's strength lives in its sprite's colour.
void WriteVignette() {
    static const sf::Image vignette = MakePicture(kScreen, VignetteTexel);  // made once
    WritePicture("Assets/Sprites/HUD/Player/vignette.png", vignette);
}

void WriteHudPictures() {
    const std::string dir = "Assets/Sprites/HUD/Player/";
    WritePicture(dir + "LifeContainer.png", {210, 24}, Plain({40, 30, 30}));
    WritePicture(dir + "LifeBar40.png", {53, 8}, Plain({200, 20, 30}));
    WritePicture(dir + "LifeBar40Lost.png", {53, 8}, Plain({240, 230, 220}));
    WritePicture(dir + "LifeBar30.png", {40, 8}, Plain({200, 20, 30}));
    WritePicture(dir + "LifeBarLost.png", {40, 8}, Plain({240, 230, 220}));
    WritePicture(dir + "HealBar/HealSheet.png", {216, 156}, [](unsigned x, unsigned y) {
        return sf::Color(sf::Uint8(x), sf::Uint8(y), 120);  // every frame differs
    });
    WritePicture("Assets/Sprites/HUD/Score/hud piece.png", {10, 10}, Plain({230, 190, 40}));
}

class HudTest : public SandboxTest {
protected:
    void SetUp() override {
        SandboxTest::SetUp();
        WriteHudPictures();
        LoadSave();
        Save().abilities.potionCount = 3;
        CreatePlayerHud();
    }
    void TearDown() override {
        DestroyPlayerHud();
        SandboxTest::TearDown();
    }

    static PlayerHud& Hud() { return GetPlayerHud(); }
    static void Update(int life, int potions, int frames) {
        for (int i = 0; i < frames; i++) UpdatePlayerHud(life, potions, kDt);
    }
    static void Bar(int life, int frames) {
        for (int i = 0; i < frames; i++) UpdateLifeBar(life, kDt);
    }
    static int Fill(int piece) { return Hud().fill[piece]->getTextureRect().width; }
    static int Lost(int piece) { return Hud().lost[piece]->getTextureRect().width; }
    static int Alpha() { return Hud().vignette->getColor().a; }

    static sf::Image Render(const std::function<void(sf::RenderTarget&)>& draw) {
        sf::RenderTexture target;
        EXPECT_TRUE(target.create(kScreen.x, kScreen.y));
        target.clear(sf::Color(40, 90, 60));
        draw(target);
        target.display();
        return target.getTexture().copyToImage();
    }
    // The largest difference of any channel between two pictures.
    static int Difference(const sf::Image& a, const sf::Image& b) {
        const sf::Uint8 *p = a.getPixelsPtr(), *q = b.getPixelsPtr();
        int worst = 0;
        for (size_t i = 0; i < size_t(kScreen.x) * kScreen.y * 4; i++) {
            worst = std::max(worst, std::abs(int(p[i]) - int(q[i])));
        }
        return worst;
    }
};

struct PiecesCase {
    int life;
    int piece1, piece2, piece3;  // fill widths in texels (53, 40, 40 full)
};

class LifePiecesTest : public HudTest, public testing::WithParamInterface<PiecesCase> {};

}  // namespace

TEST_P(LifePiecesTest, EachPieceFillsItsShareOfTheLife) {
    const PiecesCase& c = GetParam();
    UpdateLifeBar(c.life, kDt);
    EXPECT_EQ(Fill(LIFE_PIECE_1), c.piece1);
    EXPECT_EQ(Fill(LIFE_PIECE_2), c.piece2);
    EXPECT_EQ(Fill(LIFE_PIECE_3), c.piece3);
    for (int piece = 0; piece < LIFE_PIECE_COUNT; piece++) {
        EXPECT_EQ(Hud().fill[piece]->getTextureRect().height, 8);
    }
    EXPECT_EQ(Hud().lifeShown, c.life);
}

INSTANTIATE_TEST_SUITE_P(Lives, LifePiecesTest,
                         testing::Values(PiecesCase{100, 53, 40, 40}, PiecesCase{82, 53, 40, 15},
                                         PiecesCase{71, 53, 40, 0}, PiecesCase{70, 53, 40, 0},
                                         PiecesCase{55, 53, 19, 0}, PiecesCase{41, 53, 0, 0},
                                         PiecesCase{40, 53, 0, 0}, PiecesCase{20, 26, 0, 0},
                                         PiecesCase{0, 0, 0, 0}, PiecesCase{-12, 0, 0, 0}));

TEST_F(HudTest, AfterAHitTheLostLayerWaitsHalfASecondThenDrainsATexelAFrame) {
    Bar(100, 1);
    Bar(82, 1);
    ASSERT_EQ(Fill(LIFE_PIECE_3), 15);
    EXPECT_EQ(Lost(LIFE_PIECE_3), 40);
    int waited = 0;
    while (Lost(LIFE_PIECE_3) == 40 && waited < 100) {
        Bar(82, 1);
        waited++;
    }
    EXPECT_GE(waited, 30);
    EXPECT_LE(waited, 31);
    for (int width = 39; width > 16; width--) {
        EXPECT_EQ(Lost(LIFE_PIECE_3), width);
        Bar(82, 1);
    }
    EXPECT_EQ(Lost(LIFE_PIECE_3), 16);
    Bar(82, 1);
    EXPECT_EQ(Lost(LIFE_PIECE_3), 15);
    EXPECT_EQ(Hud().lostTimer, 0);
}

TEST_F(HudTest, EachPieceDrainsHalfASecondAfterThePieceToItsRightHasFinished) {
    Bar(100, 1);
    Bar(50, 1);  // piece 3 empties, piece 2 keeps 9 of 29
    ASSERT_EQ(Fill(LIFE_PIECE_2), 12);
    int piece3Done = -1, piece2Starts = -1;
    for (int frame = 1; frame < 400 && piece2Starts < 0; frame++) {
        Bar(50, 1);
        if (piece3Done < 0 && Lost(LIFE_PIECE_3) == 0) piece3Done = frame;
        if (piece3Done < 0) {
            EXPECT_EQ(Lost(LIFE_PIECE_2), 40) << "frame " << frame;
        }
        if (Lost(LIFE_PIECE_2) < 40) piece2Starts = frame;
    }
    ASSERT_GT(piece3Done, 0);
    EXPECT_GE(piece2Starts - piece3Done, 29);
    EXPECT_LE(piece2Starts - piece3Done, 31);
    Bar(50, 60);
    EXPECT_EQ(Lost(LIFE_PIECE_2), 12);
    EXPECT_EQ(Lost(LIFE_PIECE_1), 53);  // piece 1 lost nothing
}

TEST_F(HudTest, WhenLifeRisesTheLostLayerCatchesUpWithTheFillAfterTheDelay) {
    Bar(30, 300);
    ASSERT_EQ(Lost(LIFE_PIECE_1), 39);
    Bar(40, 25);
    EXPECT_EQ(Fill(LIFE_PIECE_1), 53);
    EXPECT_EQ(Lost(LIFE_PIECE_1), 39);  // hidden under the fill meanwhile
    Bar(40, 10);
    EXPECT_EQ(Lost(LIFE_PIECE_1), 53);
}

namespace {

struct FlaskCase {
    int saved, potions;            // first state, held for a second
    int savedAfter, potionsAfter;  // then this one, held for a second
    int clip;                      // the clip shown, on its last frame
};

class FlaskTest : public HudTest, public testing::WithParamInterface<FlaskCase> {};

// Frames and sheet row of each clip, as the sheet is laid out.
const int kClipFrames[kHealClipCount] = {1, 8, 5, 8, 5, 8, 8};
const int kClipRow[kHealClipCount] = {0, 0, 26, 52, 78, 104, 130};

}  // namespace

TEST_P(FlaskTest, TheFlaskShowsThePotionsLeftOfWhatItHolds) {
    const FlaskCase& c = GetParam();
    Save().abilities.potionCount = c.saved;
    Update(100, c.potions, 60);
    Save().abilities.potionCount = c.savedAfter;
    Update(100, c.potionsAfter, 60);
    ASSERT_EQ(Hud().currentHealClip, c.clip);
    sf::IntRect last(27 * (kClipFrames[c.clip] - 1), kClipRow[c.clip], 27, 26);
    EXPECT_EQ(Hud().heal->getTextureRect(), last);  // played once, holding its last frame
    EXPECT_EQ(Hud().heal->getPosition(), sf::Vector2f(247, 175));
}

INSTANTIATE_TEST_SUITE_P(
    PotionStates, FlaskTest,
    testing::Values(FlaskCase{3, 3, 3, 3, 0}, FlaskCase{3, 3, 3, 2, 4}, FlaskCase{3, 2, 3, 1, 5},
                    FlaskCase{3, 1, 3, 0, 6}, FlaskCase{3, 0, 3, 3, 0}, FlaskCase{2, 2, 2, 1, 2},
                    FlaskCase{2, 1, 2, 0, 3}, FlaskCase{2, 2, 2, 5, 0}, FlaskCase{1, 1, 1, 0, 1},
                    // a potion bought: the flask grows, the potions carried stay
                    FlaskCase{2, 2, 3, 2, 4},
                    // a flask of another size keeps the clip it shows
                    FlaskCase{4, 4, 4, 1, 0}, FlaskCase{1, 0, 4, 4, 1}, FlaskCase{0, 0, 0, 0, 0}));

TEST_F(HudTest, ALeftClipRestartsUnlessAFlaskOfTwoOrThreeIsFullAgain) {
    struct Case {
        int saved, first, second;
        int left;  // the clip that the second change leaves
        bool restarted;
    };
    const Case cases[] = {{3, 2, 3, 4, false},
                          {2, 1, 2, 2, false},
                          {1, 0, 1, 1, true},
                          {3, 2, 1, 4, true},
                          {2, 1, 0, 2, true}};
    for (const Case& c : cases) {
        CreatePlayerHud();
        Save().abilities.potionCount = c.saved;
        Update(100, c.saved, 5);
        Update(100, c.first, 60);
        Update(100, c.second, 2);
        const Animation& left = Hud().healClips[c.left];
        SCOPED_TRACE(testing::Message() << c.saved << " " << c.first << " " << c.second);
        EXPECT_NE(Hud().currentHealClip, c.left);
        EXPECT_EQ(left.finished, c.restarted ? 0 : 1);
        EXPECT_EQ(left.currentFrame, c.restarted ? 0 : kClipFrames[c.left] - 1);
    }
}

TEST_F(HudTest, AHitFlashesTheVignetteWhichFadesAwayAtFullLife) {
    Update(100, 3, 5);
    EXPECT_EQ(Alpha(), 0);
    FlashDamageVignette();
    EXPECT_EQ(Alpha(), 255);
    Update(100, 3, 1);
    EXPECT_EQ(Alpha(), int(std::exp(-200 * kDt / 100) * 255));
    int previous = Alpha(), frames = 1;
    while (Hud().vignetteFlash && frames < 600) {
        Update(100, 3, 1);
        EXPECT_LE(Alpha(), previous);
        previous = Alpha();
        frames++;
    }
    EXPECT_EQ(Hud().vignetteFlash, 0);
    EXPECT_EQ(Alpha(), 0);
    EXPECT_LT(frames, 4 * 60);
    Update(100, 3, 30);
    EXPECT_EQ(Alpha(), 0);
}

TEST_F(HudTest, AtLowLifeTheVignettePulsesStrongerTheLowerTheLife) {
    struct Case {
        int life;
        int peak;  // int(|life / 40 - 1| x 255)
    };
    const Case cases[] = {{1, 248}, {10, 191}, {20, 127}, {40, 0}, {41, 0}, {100, 0}, {0, 0}};
    for (const Case& c : cases) {
        CreatePlayerHud();
        FlashDamageVignette();  // a flash gives way to the pulse at once
        std::vector<int> alpha;
        for (int i = 0; i < 120; i++) {
            Update(c.life, 3, 1);
            alpha.push_back(Alpha());
        }
        SCOPED_TRACE(c.life);
        if (c.peak == 0) {
            // Life 40 pulses with no strength; above 40, or dead, the flash simply fades.
            bool low = c.life >= 1 && c.life <= 40;
            EXPECT_EQ(alpha[0], low ? 0 : int(std::exp(-200 * kDt / 100) * 255));
            EXPECT_TRUE(std::is_sorted(alpha.rbegin(), alpha.rend()));
            continue;
        }
        EXPECT_LE(alpha[0], c.peak);
        int top = *std::max_element(alpha.begin(), alpha.begin() + 60);
        EXPECT_GE(top, c.peak - 2);
        EXPECT_LE(top, c.peak);
        int low = *std::min_element(alpha.begin() + 80, alpha.begin() + 110);
        EXPECT_LE(low, c.peak / 10);
        EXPECT_GT(alpha[119], c.peak / 2);  // and rises again while the life stays low
    }
}

TEST_F(HudTest, TheVignetteDrawnWithTheWorldCoversTheScreenAsTheWholePictureWould) {
    WriteVignette();
    CreatePlayerHud();
    FlashDamageVignette();
    sf::Sprite picture = *Hud().vignette;
    sf::Image whole = Render([&](sf::RenderTarget& target) { target.draw(picture); });
    // The world's view: the screen itself, a camera far into a room, and one zoomed out.
    const sf::View views[] = {sf::View(sf::FloatRect(0, 0, 1920, 1080)),
                              sf::View({5000, 3000}, {1920, 1080}),
                              sf::View({5000, 3000}, {3840, 2160})};
    for (const sf::View& seen : views) {
        sf::Image bands = Render([&](sf::RenderTarget& target) {
            target.setView(seen);
            DrawDamageVignette(target, seen);
        });
        EXPECT_EQ(Difference(bands, whole), 0) << "view width " << seen.getSize().x;
    }
    long visible = 0;
    for (unsigned y = 0; y < kScreen.y; y++) {
        for (unsigned x = 0; x < kScreen.x; x++) visible += VignetteTexel(x, y).a ? 1 : 0;
    }
    EXPECT_GE(VignetteFillPixels(), visible);  // only the visible edges are filled
    EXPECT_LE(VignetteFillPixels(), visible * 11 / 10);
    Hud().vignette->setColor(sf::Color::Transparent);
    sf::Image clear =
        Render([](sf::RenderTarget& target) { DrawDamageVignette(target, target.getView()); });
    EXPECT_EQ(Difference(clear, Render([](sf::RenderTarget&) {})), 0);
}

TEST_F(HudTest, AFadeDarkensTheHudAsItWouldCoveringIt) {
    ShowMoneyPopup(250);
    Update(100, 2, 3);  // the flask mid-clip
    for (sf::Uint8 veil : {sf::Uint8(100), sf::Uint8(255)}) {
        sf::RectangleShape fade{sf::Vector2f(kScreen)};
        fade.setFillColor(sf::Color(0, 0, 0, veil));
        sf::Image covered = Render([&](sf::RenderTarget& target) {
            DrawPlayerHud(target, 1);
            target.draw(fade);
        });
        sf::Image darkened = Render([&](sf::RenderTarget& target) {
            target.draw(fade);
            DrawPlayerHud(target, 1.0f - float(veil) / 255.0f);
        });
        EXPECT_LE(Difference(covered, darkened), 2) << "veil " << int(veil);
    }
}

TEST(VisibleBands, TheBandsHoldEveryVisibleTexelOnceAndSkipTheClearMiddle) {
    struct Case {
        std::vector<std::string> rows;  // '#' visible, '.' clear
        unsigned strip;
        std::vector<sf::IntRect> bands;
    };
    const Case cases[] = {
        {{"........", "........"}, 2, {}},
        {{"#......#", "##....##"}, 2, {{0, 0, 2, 2}, {6, 0, 2, 2}}},
        {{"#......#", "#......#", "##....##", "##....##"},
         1,
         {{0, 0, 1, 2}, {7, 0, 1, 2}, {0, 2, 2, 2}, {6, 2, 2, 2}}},
        {{"########"}, 4, {{0, 0, 8, 1}}},
        {{"....#..."}, 1, {{4, 0, 4, 1}}},
        {{"...#...."}, 1, {{0, 0, 4, 1}}},
        {{"...##..."}, 1, {{0, 0, 8, 1}}},
        {{"#.#....."}, 1, {{0, 0, 3, 1}}},
        {{"........", "......#."}, 2, {{6, 0, 2, 2}}},
    };
    for (const Case& c : cases) {
        sf::Image picture;
        picture.create(unsigned(c.rows[0].size()), unsigned(c.rows.size()), sf::Color::Transparent);
        for (unsigned y = 0; y < c.rows.size(); y++) {
            for (unsigned x = 0; x < c.rows[y].size(); x++) {
                if (c.rows[y][x] == '#') picture.setPixel(x, y, sf::Color(255, 0, 0, 1));
            }
        }
        SCOPED_TRACE(c.rows[0]);
        EXPECT_EQ(VisibleBands(picture, c.strip), c.bands);
    }
}

// The hero's HUD: the life bar's pieces and lost layers, the flask's clips, the vignette's flash
// and pulse, and what is drawn. The pictures are made here at the sizes the art keeps to.
#include "hud/player_hud.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>

#include "interactables/money.h"
#include "player/save.h"
#include "support/fixture.h"
#include "support/pictures.h"

namespace {

constexpr float kDt = 1.0f / 60.0f;
const sf::Vector2u kScreen(1920, 1080);
const int kClipFrames[kHealClipCount] = {1, 8, 5, 8, 5, 8, 8};  // as the sheet is laid out
const int kClipRow[kHealClipCount] = {0, 0, 26, 52, 78, 104, 130};

// Dark red edges rising from a transparent ellipse that fills most of the screen.
sf::Color VignetteTexel(unsigned x, unsigned y) {
    double dx = (x + 0.5 - 960) / (960 * 0.85), dy = (y + 0.5 - 540) / (540 * 0.8);
    double d = std::sqrt(dx * dx + dy * dy);
    return sf::Color(110, 0, 10, sf::Uint8(d <= 1 ? 0 : std::min(255, int((d - 1) * 900))));
}

class HudTest : public SandboxTest {
protected:
    void SetUp() override {
        SandboxTest::SetUp();
        const std::string dir = "Assets/Sprites/HUD/Player/";
        WritePicture(dir + "LifeContainer.png", {210, 24}, Plain({40, 30, 30}));
        for (const char* name : {"LifeBar40.png", "LifeBar40Lost.png"}) {
            WritePicture(dir + name, {53, 8}, Plain({200, 20, 30}));
        }
        for (const char* name : {"LifeBar30.png", "LifeBarLost.png"}) {
            WritePicture(dir + name, {40, 8}, Plain({240, 230, 220}));
        }
        WritePicture(dir + "HealBar/HealSheet.png", {216, 156}, [](unsigned x, unsigned y) {
            return sf::Color(sf::Uint8(x), sf::Uint8(y), 120);
        });
        WritePicture("Assets/Sprites/HUD/Score/hud piece.png", {10, 10}, Plain({230, 190, 40}));
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
    // Frames until the lost layer of a piece first narrows.
    static int FramesUntilLostShrinks(int piece, int life) {
        int frames = 0, width = Lost(piece);
        while (Lost(piece) == width && frames++ < 400) Bar(life, 1);
        return frames;
    }

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

struct FlaskCase {
    int saved, potions;            // held for a second,
    int savedAfter, potionsAfter;  // then these for a second
    int clip;                      // the clip shown, on its last frame
};

class FlaskTest : public HudTest, public testing::WithParamInterface<FlaskCase> {};

}  // namespace

TEST_P(LifePiecesTest, EachPieceFillsItsShareOfTheLife) {
    const PiecesCase& c = GetParam();
    UpdateLifeBar(c.life, kDt);
    EXPECT_EQ(Fill(LIFE_PIECE_1), c.piece1);
    EXPECT_EQ(Fill(LIFE_PIECE_2), c.piece2);
    EXPECT_EQ(Fill(LIFE_PIECE_3), c.piece3);
    EXPECT_EQ(Hud().fill[LIFE_PIECE_1]->getTextureRect().height, 8);
}

INSTANTIATE_TEST_SUITE_P(Lives, LifePiecesTest,
                         testing::Values(PiecesCase{100, 53, 40, 40}, PiecesCase{82, 53, 40, 15},
                                         PiecesCase{71, 53, 40, 0}, PiecesCase{70, 53, 40, 0},
                                         PiecesCase{55, 53, 19, 0}, PiecesCase{41, 53, 0, 0},
                                         PiecesCase{40, 53, 0, 0}, PiecesCase{20, 26, 0, 0},
                                         PiecesCase{0, 0, 0, 0}, PiecesCase{-12, 0, 0, 0}));

TEST_F(HudTest, LostLayersWaitHalfASecondThenDrainATexelAFramePieceAfterPiece) {
    Bar(100, 1);
    Bar(82, 1);  // piece 3 keeps 11 of 29
    ASSERT_EQ(Fill(LIFE_PIECE_3), 15);
    int waited = FramesUntilLostShrinks(LIFE_PIECE_3, 82);
    EXPECT_TRUE(waited == 30 || waited == 31) << waited;
    for (int width = 39; width > 15; width--) {
        EXPECT_EQ(Lost(LIFE_PIECE_3), width);
        Bar(82, 1);
    }
    EXPECT_EQ(Lost(LIFE_PIECE_3), 15);
    Bar(50, 1);  // piece 3 empties, piece 2 keeps 9 of 29
    ASSERT_EQ(Fill(LIFE_PIECE_2), 12);
    int drained3 = 0;
    while (Lost(LIFE_PIECE_3) > 0 && drained3++ < 100) {
        Bar(50, 1);
        ASSERT_EQ(Lost(LIFE_PIECE_2), 40);  // waits for the piece to its right
    }
    waited = FramesUntilLostShrinks(LIFE_PIECE_2, 50);
    EXPECT_TRUE(waited >= 29 && waited <= 31) << waited;
    Bar(50, 60);
    EXPECT_EQ(Lost(LIFE_PIECE_2), 12);
    EXPECT_EQ(Lost(LIFE_PIECE_1), 53);
    Bar(20, 200);
    EXPECT_EQ(Lost(LIFE_PIECE_1), 26);
    Bar(40, 25);  // a potion: the fill grows at once, the lost layer catches up after the delay
    EXPECT_EQ(Fill(LIFE_PIECE_1), 53);
    EXPECT_EQ(Lost(LIFE_PIECE_1), 26);
    Bar(40, 10);
    EXPECT_EQ(Lost(LIFE_PIECE_1), 53);
}

TEST_P(FlaskTest, TheFlaskShowsThePotionsLeftOfWhatItHolds) {
    const FlaskCase& c = GetParam();
    Save().abilities.potionCount = c.saved;
    Update(100, c.potions, 60);
    Save().abilities.potionCount = c.savedAfter;
    Update(100, c.potionsAfter, 60);
    ASSERT_EQ(Hud().currentHealClip, c.clip);
    sf::IntRect last(27 * (kClipFrames[c.clip] - 1), kClipRow[c.clip], 27, 26);
    EXPECT_EQ(Hud().heal->getTextureRect(), last);  // played once, holding its last frame
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

TEST_F(HudTest, AFlashFadesAwayAboveFortyAndGivesWayToAPulseBelow) {
    struct Case {
        int life;
        int peak;  // int(|life / 40 - 1| x 255) where it pulses, else 0
    };
    const int fadedOnce = int(std::exp(-200 * kDt / 100) * 255);
    const Case cases[] = {{1, 248}, {10, 191}, {20, 127}, {40, 0}, {41, 0}, {100, 0}, {0, 0}};
    for (const Case& c : cases) {
        CreatePlayerHud();
        FlashDamageVignette();
        EXPECT_EQ(Alpha(), 255);
        std::vector<int> alpha;
        for (int i = 0; i < 240; i++) {
            Update(c.life, 3, 1);
            alpha.push_back(Alpha());
        }
        SCOPED_TRACE(c.life);
        if (c.life < 1 || c.life > 40) {  // the flash fades out and stays out
            EXPECT_EQ(alpha[0], fadedOnce);
            EXPECT_TRUE(std::is_sorted(alpha.rbegin(), alpha.rend()));
            EXPECT_EQ(alpha.back(), 0);
            EXPECT_EQ(Hud().vignetteFlash, 0);
            continue;
        }
        int top = *std::max_element(alpha.begin(), alpha.begin() + 60);
        EXPECT_LE(alpha[0], c.peak);
        EXPECT_TRUE(top >= c.peak - 2 && top <= c.peak) << top;
        EXPECT_LE(*std::min_element(alpha.begin() + 80, alpha.begin() + 110), c.peak / 10);
        EXPECT_GE(alpha[119], c.peak / 2);  // and rises again while the life stays low
    }
}

TEST_F(HudTest, TheVignetteDrawnWithTheWorldCoversTheScreenAsTheWholePictureWould) {
    static const sf::Image picture = MakePicture(kScreen, VignetteTexel);
    WritePicture("Assets/Sprites/HUD/Player/vignette.png", picture);
    CreatePlayerHud();
    FlashDamageVignette();
    sf::Sprite whole = *Hud().vignette;
    sf::Image expected = Render([&](sf::RenderTarget& target) { target.draw(whole); });
    // The world's view: the screen itself, a camera far into a room, and one zoomed out.
    for (const sf::View& seen :
         {sf::View(sf::FloatRect(0, 0, 1920, 1080)), sf::View({5000, 3000}, {1920, 1080}),
          sf::View({5000, 3000}, {3840, 2160})}) {
        sf::Image drawn = Render([&](sf::RenderTarget& target) {
            target.setView(seen);
            DrawDamageVignette(target, seen);
        });
        EXPECT_EQ(Difference(drawn, expected), 0) << "view width " << seen.getSize().x;
    }
    long visible = 0;
    const sf::Uint8* pixels = picture.getPixelsPtr();
    for (size_t i = 3; i < size_t(kScreen.x) * kScreen.y * 4; i += 4) visible += pixels[i] ? 1 : 0;
    EXPECT_GE(VignetteFillPixels(), visible);  // only the visible edges are filled
    EXPECT_LE(VignetteFillPixels(), visible * 11 / 10);
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

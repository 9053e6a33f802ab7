// The pause menu in play: what it freezes, how it opens and closes, the settings inside it, the
// way back to the title, and what it looks like over a room.
#include <gtest/gtest.h>

#include <chrono>
#include <filesystem>
#include <thread>
#include <vector>

#include "app/game.h"
#include "app/game_state.h"
#include "app/input.h"
#include "enemies/enemies.h"
#include "menus/main_menu.h"
#include "menus/pause_menu.h"
#include "menus/settings_files.h"
#include "menus/settings_screen.h"
#include "player/player.h"
#include "support/fixture.h"
#include "world/camera.h"
#include "world/room.h"
#include "world/room_lifecycle.h"

#if defined(__SANITIZE_ADDRESS__) && __has_include(<sanitizer/lsan_interface.h>)
#include <sanitizer/lsan_interface.h>
#define OV_LEAK_CHECK 1
#endif

namespace {

const sf::Vector2f kResume(960, 518), kSettings(960, 648), kMainMenu(960, 777), kPlay(200, 594);

class PauseTest : public AppTest {
protected:
    void SetUp() override {
        AppTest::SetUp();
        ClickAt(kPlay.x, kPlay.y);
        ASSERT_EQ(GetGameState(), GAME_STATE_GAME);
        Frames(5);
    }
    void Press(sf::Keyboard::Key key) {
        InputScriptPressKey(key);
        Frames(1);
        InputScriptReleaseKey(key);
    }
    void Pad(unsigned button) {
        InputScriptPressButton(button);
        Frames(1);
    }
    void PadDown() {
        InputScriptMoveAxis(sf::Joystick::PovY, -100);
        InputScriptMoveAxis(sf::Joystick::PovY, 0);
        Frames(1);
    }
    // One frame's picture, taken before it is shown.
    sf::Image Shot(const char* keep = nullptr) {
        app.window->clear();
        DrawGame(*app.window);
        sf::Texture shot;
        EXPECT_TRUE(shot.create(1920, 1080));
        shot.update(*app.window);
        sf::Image image = shot.copyToImage();
        if (keep) {
            std::filesystem::path out = std::filesystem::path(OV_SOURCE_DIR) / "tests" / "out";
            std::filesystem::create_directories(out);
            EXPECT_TRUE(image.saveToFile((out / keep).string()));
        }
        return image;
    }
};

// Everything in the world that moves or counts time.
struct WorldPicture {
    sf::Vector2f hero, camera;
    sf::IntRect heroFrame;
    float heroTimer = 0;
    std::vector<sf::Vector2f> enemies, backgrounds;
    std::vector<sf::IntRect> enemyFrames;
    std::vector<std::pair<unsigned, float>> tiles;
    bool operator==(const WorldPicture&) const = default;
};

WorldPicture TakePicture() {
    WorldPicture picture;
    picture.hero = GetPlayerPosition();
    picture.camera = GameCamera().view->getCenter();
    picture.heroFrame = GetPlayer().sprite->getTextureRect();
    picture.heroTimer = GetPlayer().stateTimer;
    for (int i = 0; i < EnemyCount(ENEMY_TRASH); i++) {
        picture.enemies.push_back(GetEnemyPosition(i, ENEMY_TRASH));
        picture.enemyFrames.push_back(GetEnemySprite(i, ENEMY_TRASH)->getTextureRect());
    }
    for (const Background& b : CurrentRoom().backgrounds) {
        picture.backgrounds.push_back(b.sprite->getPosition());
    }
    for (const TileAnimation& t : CurrentRoom().tileAnimations) {
        picture.tiles.emplace_back(t.frame, t.timer);
    }
    return picture;
}

// Mean channel value and count of pure white pixels over a block.
std::pair<double, int> Measure(const sf::Image& image, sf::IntRect block) {
    double sum = 0;
    int white = 0;
    for (int y = block.top; y < block.top + block.height; y++) {
        for (int x = block.left; x < block.left + block.width; x++) {
            sf::Color c = image.getPixel(unsigned(x), unsigned(y));
            sum += c.r + c.g + c.b;
            white += c == sf::Color::White;
        }
    }
    return {sum / (3.0 * block.width * block.height), white};
}

}  // namespace

TEST_F(PauseTest, PauseFreezesTheWorldAndResumingTakesOneCappedStep) {
    CleanupRoom();
    LoadNextTargetRoom(*app.window, 6);  // the arena: three Trash patrolling
    ASSERT_GT(EnemyCount(ENEMY_TRASH), 0);
    SetPlayerPosition(CurrentRoom().enemySpawns[0].position + sf::Vector2f(600, -10));
    InputScriptKey(Settings().bindings[BINDING_RIGHT], true);
    Frames(40);
    WorldPicture running = TakePicture();
    Frames(20);
    ASSERT_NE(TakePicture().enemies, running.enemies);  // they do move while the world runs

    Press(sf::Keyboard::Escape);
    ASSERT_EQ(Overlays().worldFrozen, 1);
    EXPECT_EQ(GetPlayer().body.controllable, 0);
    WorldPicture paused = TakePicture();
    Frames(90);  // right still held
    EXPECT_TRUE(TakePicture() == paused);

    Press(sf::Keyboard::Escape);
    EXPECT_EQ(Overlays().pauseOpen, 0);
    // However long the real pause, the next frame advances the world by one 60th of a second.
    std::this_thread::sleep_for(std::chrono::milliseconds(150));
    const TileAnimation& tile = CurrentRoom().tileAnimations[0];
    std::pair<unsigned, float> before(tile.frame, tile.timer);
    float x = GetPlayerPosition().x;
    Frames(1);
    if (tile.frame == before.first) {
        EXPECT_NEAR(tile.timer - before.second, 1.0f / 60, 1e-5);
    }
    EXPECT_LE(GetPlayerPosition().x - x, GetPlayer().tuning.walkSpeed * 0.02f);
    EXPECT_FALSE(TakePicture() == paused);
}

TEST_F(PauseTest, HoldingTheButtonAndMovingOntoResumeClosesOnTheFirstHoveredFrame) {
    Press(sf::Keyboard::Escape);
    MoveTo(kResume.x, kResume.y);  // hovered, button up
    Frames(2);
    EXPECT_EQ(Overlays().pauseOpen, 1);
    InputScriptMouseButton(sf::Mouse::Left, true);
    MoveTo(kResume.x, kResume.y + 200);  // held, away from RESUME
    Frames(2);
    EXPECT_EQ(Overlays().pauseOpen, 1);
    MoveTo(kResume.x, kResume.y);
    EXPECT_EQ(Overlays().pauseOpen, 0);
}

TEST_F(PauseTest, OpensOnlyInFreePlayAndThePadResumesWithButtonZero) {
    for (int OverlayFlags::*blocker : {&OverlayFlags::mapOpen, &OverlayFlags::shopOpen}) {
        // Escape may close the shop itself: each request finds the blocker in place.
        Overlays().*blocker = 1;
        Press(sf::Keyboard::Escape);
        EXPECT_EQ(Overlays().pauseOpen, 0);
        Overlays().*blocker = 1;
        Pad(7);
        EXPECT_EQ(Overlays().pauseOpen, 0);
        Overlays().*blocker = 0;
    }
    Pad(7);
    ASSERT_EQ(Overlays().pauseOpen, 1);
    Pad(7);  // its own button does not close it
    InputScriptJoystickButton(0, true);
    Pad(0);
    EXPECT_EQ(Overlays().pauseOpen, 0);
}

TEST_F(PauseTest, EscapeFromItsSettingsKeepsWhatWasChangedAndWritesNothing) {
    const std::string sound = ReadFile(kSoundSettingsPath),
                      binding = ReadFile(kBindingSettingsPath);
    Press(sf::Keyboard::Escape);
    ClickAt(kSettings.x, kSettings.y);
    ASSERT_TRUE(SettingsScreenLoaded());
    sf::Texture bar;
    ASSERT_TRUE(bar.loadFromFile("Assets/Sprites/Settings/bar.png"));
    InputScriptMouseButton(sf::Mouse::Left, true);  // music handle to the bar's start
    MoveTo(672 + float(Settings().volumes[SOUND_MUSIC]) / 100 * float(bar.getSize().x), 432);
    MoveTo(400, 432);
    InputScriptMouseButton(sf::Mouse::Left, false);
    ClickAt(1488, 108);  // BINDING tab; JUMP waits for K
    ClickAt(672, 297 + 81 * BINDING_JUMP);
    Press(sf::Keyboard::K);

    Press(sf::Keyboard::Escape);
    EXPECT_EQ(Overlays().pauseOpen, 1);  // back on the list
    EXPECT_EQ(GetMenuScreen(), MENU_SCREEN_LIST);
    EXPECT_EQ(GetSettingsTab(), SETTINGS_TAB_SOUND);
    EXPECT_FALSE(SettingsScreenLoaded());
    EXPECT_EQ(Settings().volumes[SOUND_MUSIC], 0);
    EXPECT_EQ(Settings().bindings[BINDING_JUMP], sf::Keyboard::K);
    EXPECT_EQ(ReadFile(kSoundSettingsPath), sound);
    EXPECT_EQ(ReadFile(kBindingSettingsPath), binding);
}

TEST_F(PauseTest, MainMenuEndsTheGameAndPlayStartsAFreshOne) {
    Pad(7);
    for (int i = 0; i < 3; i++) PadDown();  // stops on MAIN MENU
    EXPECT_EQ(GetPauseSelection(), PAUSE_ENTRY_MAIN_MENU);
    Pad(0);
    EXPECT_EQ(GetGameState(), GAME_STATE_MENU);
    EXPECT_EQ(GetSelectedEntry(), MENU_ENTRY_PLAY);
    EXPECT_EQ(Overlays().worldFrozen, 0);
    EXPECT_FALSE(PauseMenuLoaded());
    EXPECT_EQ(GameView(), nullptr);
    EXPECT_FALSE(GetPlayer().created);

    ClickAt(kPlay.x, kPlay.y);
    ASSERT_EQ(GetGameState(), GAME_STATE_GAME);
    EXPECT_EQ(Overlays().pauseOpen, 0);
    EXPECT_EQ(GetPauseSelection(), PAUSE_ENTRY_RESUME);
    Frames(3);
    Press(sf::Keyboard::Escape);
    ClickAt(kMainMenu.x, kMainMenu.y);
    EXPECT_EQ(GetGameState(), GAME_STATE_MENU);
#ifdef OV_LEAK_CHECK
    // Two whole games, one with its settings screen open, have left nothing unreachable.
    ClickAt(kPlay.x, kPlay.y);
    Press(sf::Keyboard::Escape);
    ClickAt(kSettings.x, kSettings.y);
    SwitchGameState(GAME_STATE_MENU, *app.window);
    EXPECT_EQ(__lsan_do_recoverable_leak_check(), 0);
#endif
}

TEST_F(PauseTest, DrawsOverTheDarkenedRoomAndUnderAFade) {
    Frames(30);
    sf::Image room = Shot();
    Press(sf::Keyboard::Escape);
    sf::Image paused = Shot("pause.png");
    const sf::IntRect empty(1400, 700, 400, 250);  // nothing of either screen there
    // Black of alpha 200 over the frozen room lets 55 / 255 of it through.
    EXPECT_NEAR(Measure(paused, empty).first, Measure(room, empty).first * 55 / 255, 1.5);
    EXPECT_GT(Measure(paused, {660, 140, 600, 160}).second, 3000);  // PAUSE
    for (sf::Vector2f label : {kResume, kSettings, kMainMenu}) {
        EXPECT_GT(Measure(paused, {int(label.x) - 200, int(label.y) - 30, 400, 50}).second, 300);
    }
    ClickAt(kSettings.x, kSettings.y);
    sf::Image settings = Shot("pause_settings.png");
    // The settings' own backdrop darkens it once more: 55 / 255 of 55 / 255.
    EXPECT_NEAR(Measure(settings, empty).first, Measure(room, empty).first * 12 / 255, 1.0);
    EXPECT_GT(Measure(settings, {96, 27, 500, 110}).second, 2000);  // SETTINGS

    Press(sf::Keyboard::Escape);
    StartScreenFade(FADE_TO_BLACK, 0.05f);
    Frames(10);
    EXPECT_LT(Measure(Shot(), {0, 0, 1920, 1080}).first, 0.5);
}

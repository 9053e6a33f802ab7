// The pause menu in play: what it freezes, how it closes, the settings inside it, the way back to
// the title, and what it looks like over a room.
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

const sf::Vector2f kResume(960, 518), kSettings(960, 648), kMainMenu(960, 777);
const sf::Vector2f kPlay(200, 594);
const float kMasterRow = 324, kBarLeft = 672;

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
    void PadButton(unsigned button) {
        InputScriptPressButton(button);
        Frames(1);
    }
    void PadAxis(float position) {
        InputScriptMoveAxis(sf::Joystick::PovY, position);
        InputScriptMoveAxis(sf::Joystick::PovY, 0);
        Frames(1);
    }

    // The picture of one frame, taken before it is shown.
    sf::Image Shot() {
        app.window->clear();
        DrawGame(*app.window);
        sf::Texture shot;
        EXPECT_TRUE(shot.create(1920, 1080));
        shot.update(*app.window);
        return shot.copyToImage();
    }
    static void Keep(const sf::Image& image, const std::string& name) {
        std::filesystem::path folder = std::filesystem::path(OV_SOURCE_DIR) / "tests" / "out";
        std::filesystem::create_directories(folder);
        EXPECT_TRUE(image.saveToFile((folder / name).string()));
    }
};

// Everything in the world that moves or counts time.
struct WorldPicture {
    sf::Vector2f hero;
    sf::IntRect heroFrame;
    float heroStateTimer = 0;
    int heroState = 0;
    std::vector<sf::Vector2f> enemies;
    std::vector<sf::IntRect> enemyFrames;
    std::vector<sf::Vector2f> backgrounds;
    std::vector<std::pair<unsigned, float>> tiles;
    sf::Vector2f camera;

    bool operator==(const WorldPicture&) const = default;
};

WorldPicture TakePicture() {
    WorldPicture picture;
    const Player& player = GetPlayer();
    picture.hero = GetPlayerPosition();
    picture.heroFrame = player.sprite->getTextureRect();
    picture.heroStateTimer = player.stateTimer;
    picture.heroState = player.body.state;
    for (int i = 0; i < EnemyCount(ENEMY_TRASH); i++) {
        picture.enemies.push_back(GetEnemyPosition(i, ENEMY_TRASH));
        picture.enemyFrames.push_back(GetEnemySprite(i, ENEMY_TRASH)->getTextureRect());
    }
    for (const Background& background : CurrentRoom().backgrounds) {
        picture.backgrounds.push_back(background.sprite->getPosition());
    }
    for (const TileAnimation& tile : CurrentRoom().tileAnimations) {
        picture.tiles.emplace_back(tile.frame, tile.timer);
    }
    picture.camera = GameCamera().view->getCenter();
    return picture;
}

// Mean of the red, green and blue channels over a block of pixels.
double Brightness(const sf::Image& image, sf::IntRect block) {
    double sum = 0;
    for (int y = block.top; y < block.top + block.height; y++) {
        for (int x = block.left; x < block.left + block.width; x++) {
            sf::Color c = image.getPixel(unsigned(x), unsigned(y));
            sum += c.r + c.g + c.b;
        }
    }
    return sum / (3.0 * block.width * block.height);
}

int WhitePixels(const sf::Image& image, sf::IntRect block) {
    int white = 0;
    for (int y = block.top; y < block.top + block.height; y++) {
        for (int x = block.left; x < block.left + block.width; x++) {
            white += image.getPixel(unsigned(x), unsigned(y)) == sf::Color::White;
        }
    }
    return white;
}

}  // namespace

TEST_F(PauseTest, PauseFreezesTheWorldAndResumingTakesOneCappedStep) {
    CleanupRoom();
    LoadNextTargetRoom(*app.window, 6);  // the arena: three Trash patrolling
    ASSERT_GT(EnemyCount(ENEMY_TRASH), 0);
    ASSERT_FALSE(CurrentRoom().tileAnimations.empty());
    SetPlayerPosition(CurrentRoom().enemySpawns[0].position + sf::Vector2f(600, -10));
    InputScriptKey(Settings().bindings[BINDING_RIGHT], true);
    Frames(40);
    WorldPicture running = TakePicture();
    Frames(20);
    ASSERT_NE(TakePicture().enemies, running.enemies);  // they do move while the world runs
    ASSERT_NE(TakePicture().hero, running.hero);

    Press(sf::Keyboard::Escape);
    ASSERT_EQ(Overlays().pauseOpen, 1);
    EXPECT_EQ(Overlays().worldFrozen, 1);
    EXPECT_EQ(GetPlayer().body.controllable, 0);
    WorldPicture paused = TakePicture();
    Frames(90);  // right still held
    EXPECT_TRUE(TakePicture() == paused);

    Press(sf::Keyboard::Escape);
    EXPECT_EQ(Overlays().pauseOpen, 0);
    // A long real pause before the next frame still advances the world by one 60th of a second.
    std::this_thread::sleep_for(std::chrono::milliseconds(150));
    float walked = GetPlayerPosition().x;
    const TileAnimation& tile = CurrentRoom().tileAnimations[0];
    unsigned frame = tile.frame;
    float timer = tile.timer;
    Frames(1);
    EXPECT_EQ(Overlays().worldFrozen, 0);
    if (tile.frame == frame) {
        EXPECT_NEAR(tile.timer - timer, 1.0f / 60.0f, 1e-5);
    } else {
        EXPECT_EQ(tile.timer, 0.0f);
    }
    EXPECT_LE(GetPlayerPosition().x - walked, GetPlayer().tuning.walkSpeed * 0.02f);
    EXPECT_FALSE(TakePicture() == paused);
}

TEST_F(PauseTest, HoldingTheButtonAndMovingOntoResumeClosesOnTheFirstHoveredFrame) {
    Press(sf::Keyboard::Escape);
    ASSERT_EQ(Overlays().pauseOpen, 1);
    MoveTo(kResume.x, kResume.y);  // hovered, button up
    Frames(3);
    EXPECT_EQ(Overlays().pauseOpen, 1);
    InputScriptMouseButton(sf::Mouse::Left, true);
    MoveTo(kResume.x, kResume.y + 200);  // held, but nowhere near RESUME
    Frames(3);
    EXPECT_EQ(Overlays().pauseOpen, 1);
    MoveTo(kResume.x, kResume.y);
    EXPECT_EQ(Overlays().pauseOpen, 0);
    InputScriptMouseButton(sf::Mouse::Left, false);
    Frames(1);
    EXPECT_EQ(Overlays().worldFrozen, 0);
    EXPECT_EQ(GetPlayer().body.controllable, 1);
}

TEST_F(PauseTest, ThePadOpensMovesWithinTheListAndResumesWithButtonZero) {
    PadButton(7);
    ASSERT_EQ(Overlays().pauseOpen, 1);
    EXPECT_EQ(GetPauseSelection(), PAUSE_ENTRY_RESUME);
    PadAxis(100);  // up, already at the top
    EXPECT_EQ(GetPauseSelection(), PAUSE_ENTRY_RESUME);
    for (int i = 0; i < 4; i++) PadAxis(-100);
    EXPECT_EQ(GetPauseSelection(), PAUSE_ENTRY_MAIN_MENU);
    PadAxis(100);
    PadAxis(100);
    EXPECT_EQ(GetPauseSelection(), PAUSE_ENTRY_RESUME);
    PadButton(7);  // the pause does not close on its own button
    EXPECT_EQ(Overlays().pauseOpen, 1);
    InputScriptJoystickButton(0, true);
    PadButton(0);
    EXPECT_EQ(Overlays().pauseOpen, 0);
    InputScriptJoystickButton(0, false);
}

TEST_F(PauseTest, PauseOpensOnlyInFreePlay) {
    struct Case {
        const char* name;
        int OverlayFlags::*flag;
    };
    const Case blockers[] = {
        {"map", &OverlayFlags::mapOpen},
        {"shop", &OverlayFlags::shopOpen},
        {"checkpoint menu opening", &OverlayFlags::checkpointMenuOpening},
        {"merchant menu opening", &OverlayFlags::merchantMenuOpening},
    };
    for (const Case& blocker : blockers) {
        SCOPED_TRACE(blocker.name);
        Overlays().*blocker.flag = 1;
        Press(sf::Keyboard::Escape);
        PadButton(7);
        EXPECT_EQ(Overlays().pauseOpen, 0);
        Overlays().*blocker.flag = 0;
        Frames(1);
    }
    Press(sf::Keyboard::Escape);
    EXPECT_EQ(Overlays().pauseOpen, 1);
    Press(sf::Keyboard::Escape);
    EXPECT_EQ(Overlays().pauseOpen, 0);
}

TEST_F(PauseTest, EscapeFromItsSettingsKeepsTheMovedVolumesAndWritesNothing) {
    const std::string sound = ReadFile(kSoundSettingsPath);
    const std::string binding = ReadFile(kBindingSettingsPath);
    auto soundTime = std::filesystem::last_write_time(kSoundSettingsPath);
    Press(sf::Keyboard::Escape);
    ClickAt(kSettings.x, kSettings.y);
    ASSERT_EQ(GetMenuScreen(), MENU_SCREEN_SETTINGS);
    ASSERT_TRUE(SettingsScreenLoaded());
    EXPECT_EQ(GetSettingsTab(), SETTINGS_TAB_SOUND);

    sf::Texture bar;
    ASSERT_TRUE(bar.loadFromFile("Assets/Sprites/Settings/bar.png"));
    float handle = kBarLeft + float(Settings().volumes[SOUND_MASTER]) / 100.0f * bar.getSize().x;
    InputScriptMouseButton(sf::Mouse::Left, true);
    MoveTo(handle, kMasterRow);
    MoveTo(kBarLeft + bar.getSize().x + 200, kMasterRow);
    InputScriptMouseButton(sf::Mouse::Left, false);
    MoveTo(kBarLeft, kMasterRow + 300);
    ASSERT_EQ(Settings().volumes[SOUND_MASTER], 100);
    EXPECT_TRUE(SettingsPending());
    EXPECT_EQ(Overlays().worldFrozen, 1);

    Press(sf::Keyboard::Escape);
    EXPECT_EQ(Overlays().pauseOpen, 1);  // back on the list, still paused
    EXPECT_EQ(GetMenuScreen(), MENU_SCREEN_LIST);
    EXPECT_EQ(GetSettingsTab(), SETTINGS_TAB_SOUND);
    EXPECT_FALSE(SettingsScreenLoaded());
    EXPECT_EQ(Settings().volumes[SOUND_MASTER], 100);
    EXPECT_EQ(ReadFile(kSoundSettingsPath), sound);
    EXPECT_EQ(ReadFile(kBindingSettingsPath), binding);
    EXPECT_EQ(std::filesystem::last_write_time(kSoundSettingsPath), soundTime);
    Press(sf::Keyboard::Escape);
    EXPECT_EQ(Overlays().pauseOpen, 0);
}

TEST_F(PauseTest, KeysOnItsSettingsRebindAndItsOwnReturnGoesBackToTheList) {
    Press(sf::Keyboard::Escape);
    ClickAt(kSettings.x, kSettings.y);
    ClickAt(1488, 108);  // BINDING
    ASSERT_EQ(GetSettingsTab(), SETTINGS_TAB_BINDING);
    const float jumpRow = 297.0f + 81.0f * float(BINDING_JUMP);
    MoveTo(672, jumpRow);
    ClickAt(672, jumpRow);
    ASSERT_TRUE(SettingsKeyWaiting(BINDING_JUMP));
    Press(sf::Keyboard::K);
    EXPECT_EQ(Settings().bindings[BINDING_JUMP], sf::Keyboard::K);
    EXPECT_EQ(Overlays().pauseOpen, 1);
    ClickAt(1766.4f, 1026);  // RETURN restores the file's binding
    EXPECT_EQ(GetMenuScreen(), MENU_SCREEN_LIST);
    EXPECT_EQ(Settings().bindings[BINDING_JUMP], sf::Keyboard::Space);
    EXPECT_EQ(Overlays().pauseOpen, 1);
}

TEST_F(PauseTest, MainMenuEndsTheGameAndPlayStartsAFreshOne) {
    // By the pad: open, down twice, confirm.
    PadButton(7);
    PadAxis(-100);
    PadAxis(-100);
    testing::internal::CaptureStdout();
    PadButton(0);
    std::string log = testing::internal::GetCapturedStdout();
    EXPECT_EQ(log.rfind("Load Menu\n", 0), 0u);
    EXPECT_EQ(GetGameState(), GAME_STATE_MENU);
    EXPECT_EQ(GetMenuScreen(), MENU_SCREEN_LIST);
    EXPECT_EQ(GetSelectedEntry(), MENU_ENTRY_PLAY);
    EXPECT_EQ(Overlays().pauseOpen, 0);
    EXPECT_EQ(Overlays().worldFrozen, 0);
    EXPECT_FALSE(PauseMenuLoaded());
    EXPECT_EQ(GameView(), nullptr);
    EXPECT_FALSE(GetPlayer().created);

    // A second game pauses again, and leaves by the mouse.
    ClickAt(kPlay.x, kPlay.y);
    ASSERT_EQ(GetGameState(), GAME_STATE_GAME);
    EXPECT_TRUE(PauseMenuLoaded());
    EXPECT_EQ(GetPauseSelection(), PAUSE_ENTRY_RESUME);
    Frames(3);
    Press(sf::Keyboard::Escape);
    ASSERT_EQ(Overlays().pauseOpen, 1);
    MoveTo(kMainMenu.x, kMainMenu.y);
    ClickAt(kMainMenu.x, kMainMenu.y);
    EXPECT_EQ(GetGameState(), GAME_STATE_MENU);
    EXPECT_EQ(GetSelectedEntry(), MENU_ENTRY_PLAY);
    ClickAt(kPlay.x, kPlay.y);
    EXPECT_EQ(GetGameState(), GAME_STATE_GAME);
    Frames(3);
    EXPECT_EQ(Overlays().pauseOpen, 0);
}

#ifdef OV_LEAK_CHECK
TEST_F(PauseTest, LoadCleanupLoadLeavesNothingBehind) {
    // Warm up what stays for the whole run (fonts' glyph caches, the drivers), then count.
    SwitchGameState(GAME_STATE_MENU, *app.window);
    SwitchGameState(GAME_STATE_GAME, *app.window);
    Press(sf::Keyboard::Escape);
    ClickAt(kSettings.x, kSettings.y);
    SwitchGameState(GAME_STATE_MENU, *app.window);
    EXPECT_EQ(__lsan_do_recoverable_leak_check(), 0);
}
#endif

TEST_F(PauseTest, DrawsAsADarkenedRoomWithTheListAndItsSettingsDarkerStill) {
    Frames(30);
    sf::Image room = Shot();
    Press(sf::Keyboard::Escape);
    sf::Image paused = Shot();
    Keep(paused, "pause.png");
    // The frozen room shows through at 55 / 255 of its brightness (black of alpha 200 over it).
    const sf::IntRect corner(1400, 700, 400, 250);  // nothing of either screen there
    EXPECT_NEAR(Brightness(paused, corner), Brightness(room, corner) * 55.0 / 255.0, 1.5);
    EXPECT_GT(WhitePixels(paused, {660, 140, 600, 160}), 3000);  // PAUSE
    for (sf::Vector2f label : {kResume, kSettings, kMainMenu}) {
        EXPECT_GT(WhitePixels(paused, sf::IntRect(int(label.x) - 200, int(label.y) - 30, 400, 50)),
                  300);
    }
    // The selector arrows frame RESUME: something bright left and right of its label.
    EXPECT_GT(Brightness(paused, {700, 490, 120, 50}), Brightness(paused, corner) + 5);

    ClickAt(kSettings.x, kSettings.y);
    sf::Image settings = Shot();
    Keep(settings, "pause_settings.png");
    EXPECT_NEAR(Brightness(settings, corner), Brightness(room, corner) * 12.0 / 255.0, 1.0);
    EXPECT_GT(WhitePixels(settings, {96, 27, 500, 110}), 2000);  // SETTINGS

    // A fade to black covers the pause too.
    Press(sf::Keyboard::Escape);
    StartScreenFade(FADE_TO_BLACK, 0.05f);
    Frames(10);
    sf::Image faded = Shot();
    EXPECT_EQ(WhitePixels(faded, {660, 140, 600, 160}), 0);
    EXPECT_LT(Brightness(faded, {0, 0, 1920, 1080}), 0.5);
}

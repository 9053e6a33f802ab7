// The settings screen as a player uses it: sliders, tabs, rebinding and the four commands.
#include "menus/settings_screen.h"

#include <gtest/gtest.h>

#include "app/game_state.h"
#include "app/input.h"
#include "common/text.h"
#include "menus/main_menu.h"
#include "menus/settings_files.h"
#include "support/fixture.h"

namespace {

const float kBarLeft = 672;
const float kRowMaster = 324;
const sf::Vector2f kSoundTab(960, 108), kBindingTab(1488, 108), kOk(96, 1026), kCancel(288, 1026),
    kApply(537.6f, 1026), kReturn(1766.4f, 1026);

float KeyRow(int action) {
    return 297.0f + 81.0f * float(action);
}

class SettingsScreenTest : public AppTest {
protected:
    void SetUp() override {
        AppTest::SetUp();
        ClickAt(200, 702);  // SETTINGS
        ASSERT_TRUE(SettingsScreenLoaded());
        sf::Texture bar;
        ASSERT_TRUE(bar.loadFromFile("Assets/Sprites/Settings/bar.png"));
        barWidth = float(bar.getSize().x);
    }

    float HandleX(int value) const { return kBarLeft + float(value) / 100.0f * barWidth; }

    // Presses the left button on the handle and drags it to x.
    void DragMaster(float fromX, float toX) {
        InputScriptMouseButton(sf::Mouse::Left, true);
        MoveTo(fromX, kRowMaster);
        MoveTo(toX, kRowMaster);
        InputScriptMouseButton(sf::Mouse::Left, false);
        MoveTo(toX, kRowMaster + 200);
    }

    void WaitOnKey(int action, sf::Mouse::Button button = sf::Mouse::Left) {
        MoveTo(672, KeyRow(action));
        ClickAt(672, KeyRow(action), button);
    }

    float barWidth = 0;
};

}  // namespace

TEST_F(SettingsScreenTest, DraggingToTheEndShowsOneHundredAndReturnRestoresTheFile) {
    const std::string before = ReadFile(kSoundSettingsPath);
    int start = Settings().volumes[SOUND_MASTER];
    InputScriptMouseButton(sf::Mouse::Left, true);
    MoveTo(HandleX(start), kRowMaster);
    MoveTo(HandleX(100) + 300, kRowMaster);  // far past the bar's end
    EXPECT_TRUE(SettingsPending());          // a drag in progress is a pending change
    InputScriptMouseButton(sf::Mouse::Left, false);
    MoveTo(HandleX(100) + 300, kRowMaster + 200);
    EXPECT_EQ(SettingsSliderValue(SOUND_MASTER), 100);
    EXPECT_EQ(SettingsPercentText(SOUND_MASTER), "100%");
    EXPECT_EQ(Settings().volumes[SOUND_MASTER], 100);  // in force before any save

    ClickAt(kReturn.x, kReturn.y);
    EXPECT_EQ(GetMenuScreen(), MENU_SCREEN_LIST);
    EXPECT_FALSE(SettingsScreenLoaded());
    EXPECT_EQ(Settings().volumes[SOUND_MASTER], start);
    EXPECT_EQ(ReadFile(kSoundSettingsPath), before);
}

TEST_F(SettingsScreenTest, DragClampsToTheBarAndPassingOverWithoutPressingDoesNothing) {
    int music = Settings().volumes[SOUND_MUSIC];
    MoveTo(HandleX(Settings().volumes[SOUND_MASTER]), kRowMaster);  // hover, button up
    MoveTo(kBarLeft + 10, kRowMaster);
    EXPECT_EQ(SettingsSliderValue(SOUND_MASTER), Settings().volumes[SOUND_MASTER]);
    DragMaster(HandleX(Settings().volumes[SOUND_MASTER]), kBarLeft - 500);
    EXPECT_EQ(SettingsSliderValue(SOUND_MASTER), 0);
    EXPECT_EQ(SettingsPercentText(SOUND_MASTER), "0%");
    DragMaster(kBarLeft, HandleX(50) + 1);
    EXPECT_EQ(SettingsSliderValue(SOUND_MASTER), 50);
    EXPECT_EQ(Settings().volumes[SOUND_MUSIC], music);  // the other rows stay
}

TEST_F(SettingsScreenTest, ApplySavesAndStaysCancelReloads) {
    DragMaster(HandleX(Settings().volumes[SOUND_MASTER]), HandleX(30) + 1);
    EXPECT_TRUE(SettingsPending());
    ClickAt(kApply.x, kApply.y);
    EXPECT_FALSE(SettingsPending());
    EXPECT_TRUE(SettingsScreenLoaded());
    EXPECT_EQ(ReadFile(kSoundSettingsPath).rfind("MASTER VOLUME 30\n", 0), 0u);

    DragMaster(HandleX(30), HandleX(80) + 1);
    EXPECT_EQ(Settings().volumes[SOUND_MASTER], 80);
    ClickAt(kCancel.x, kCancel.y);
    EXPECT_EQ(Settings().volumes[SOUND_MASTER], 30);
    EXPECT_EQ(SettingsSliderValue(SOUND_MASTER), 30);
    EXPECT_EQ(SettingsPercentText(SOUND_MASTER), "30%");
    EXPECT_FALSE(SettingsPending());
}

TEST_F(SettingsScreenTest, RebindingAcceptsAFreeKeyAndOkWritesBothFiles) {
    ClickAt(kBindingTab.x, kBindingTab.y);
    ASSERT_EQ(GetSettingsTab(), SETTINGS_TAB_BINDING);
    WaitOnKey(BINDING_JUMP);
    EXPECT_TRUE(SettingsKeyWaiting(BINDING_JUMP));
    InputScriptPressKey(sf::Keyboard::J);
    Frames(1);
    EXPECT_FALSE(SettingsKeyWaiting(BINDING_JUMP));
    EXPECT_EQ(Settings().bindings[BINDING_JUMP], sf::Keyboard::J);
    EXPECT_EQ(SettingsKeyLabel(BINDING_JUMP), "J");
    EXPECT_TRUE(SettingsPending());

    WriteFile(kSoundSettingsPath, "MASTER VOLUME 1\nMUSIC 2\nSOUNDS 3\n");
    ClickAt(kOk.x, kOk.y);
    EXPECT_EQ(GetMenuScreen(), MENU_SCREEN_LIST);
    EXPECT_NE(ReadFile(kBindingSettingsPath).find("JUMP : 9\n"), std::string::npos);
    // OK writes the sound file too, with the values in force.
    EXPECT_NE(ReadFile(kSoundSettingsPath), "MASTER VOLUME 1\nMUSIC 2\nSOUNDS 3\n");
}

TEST_F(SettingsScreenTest, EscapeCancelsAWaitAndAKeyInUseIsRefused) {
    ClickAt(kBindingTab.x, kBindingTab.y);
    int jump = Settings().bindings[BINDING_JUMP];
    WaitOnKey(BINDING_JUMP);
    InputScriptPressKey(sf::Keyboard::Escape);
    Frames(1);
    EXPECT_FALSE(SettingsKeyWaiting(BINDING_JUMP));
    EXPECT_EQ(Settings().bindings[BINDING_JUMP], jump);
    EXPECT_FALSE(SettingsPending());

    WaitOnKey(BINDING_JUMP, sf::Mouse::Right);  // either button starts a wait
    EXPECT_TRUE(SettingsKeyWaiting(BINDING_JUMP));
    InputScriptPressKey(sf::Keyboard::Key(Settings().bindings[BINDING_PARRY]));
    Frames(1);
    EXPECT_FALSE(SettingsKeyWaiting(BINDING_JUMP));
    EXPECT_EQ(Settings().bindings[BINDING_JUMP], jump);
    EXPECT_EQ(SettingsKeyLabel(BINDING_JUMP), "Space");
    EXPECT_FALSE(SettingsPending());
}

TEST_F(SettingsScreenTest, SwitchingTabsShowsTheFileAgainAndCancelUndoesARebind) {
    ClickAt(kBindingTab.x, kBindingTab.y);
    WaitOnKey(BINDING_LEFT);
    InputScriptPressKey(sf::Keyboard::Left);
    Frames(1);
    EXPECT_EQ(Settings().bindings[BINDING_LEFT], sf::Keyboard::Left);
    ClickAt(kCancel.x, kCancel.y);
    EXPECT_EQ(Settings().bindings[BINDING_LEFT], sf::Keyboard::A);
    EXPECT_EQ(SettingsKeyLabel(BINDING_LEFT), "A");

    WaitOnKey(BINDING_LEFT);
    InputScriptPressKey(sf::Keyboard::Num2);
    Frames(1);
    EXPECT_EQ(SettingsKeyLabel(BINDING_LEFT), FromWindows1252("\xE9"));  // shown with its accent
    ClickAt(kSoundTab.x, kSoundTab.y);
    ClickAt(kBindingTab.x, kBindingTab.y);  // the binding tab re-reads its file
    EXPECT_EQ(Settings().bindings[BINDING_LEFT], sf::Keyboard::A);
}

TEST_F(SettingsScreenTest, KeysWithoutAWaitChangeNothing) {
    ClickAt(kBindingTab.x, kBindingTab.y);
    SettingsValues before = Settings();
    InputScriptPressKey(sf::Keyboard::J);
    sf::Event unknown{};
    unknown.type = sf::Event::KeyPressed;
    unknown.key.code = sf::Keyboard::Unknown;
    InputScriptEvent(unknown);
    Frames(1);
    for (int i = 0; i < BINDING_COUNT; i++) EXPECT_EQ(Settings().bindings[i], before.bindings[i]);
    EXPECT_FALSE(SettingsPending());
}

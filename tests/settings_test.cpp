// The settings files and the names the binding screen shows for keys.
#include <gtest/gtest.h>

#include "app/keys.h"
#include "menus/settings_files.h"
#include "support/fixture.h"

using SettingsFiles = SandboxTest;

TEST(KeyNames, CoverTheWholeKeyboardAndNothingElse) {
    EXPECT_EQ(KeyName(-1), "Unknown");
    EXPECT_EQ(KeyName(-2), " ");
    EXPECT_EQ(KeyName(101), " ");
    EXPECT_EQ(KeyName(0), "A");
    EXPECT_EQ(KeyName(25), "Z");
    EXPECT_EQ(KeyName(26), "\xE0");
    EXPECT_EQ(KeyName(28), "\xE9");
    EXPECT_EQ(KeyName(29), "\"");
    EXPECT_EQ(KeyName(35), "\xE7");
    EXPECT_EQ(KeyName(38), "L Shift");
    EXPECT_EQ(KeyName(53), "\\");
    EXPECT_EQ(KeyName(57), "Space");
    EXPECT_EQ(KeyName(59), "Return");  // the backspace key
    EXPECT_EQ(KeyName(68), "-");
    EXPECT_EQ(KeyName(74), "Down");
    EXPECT_EQ(KeyName(75), "Num 0");
    EXPECT_EQ(KeyName(84), "Num 9");
    EXPECT_EQ(KeyName(85), "F1");
    EXPECT_EQ(KeyName(sf::Keyboard::F11), "F11");
    EXPECT_EQ(KeyName(99), "F15");
    EXPECT_EQ(KeyName(100), "Pause");
}

TEST_F(SettingsFiles, ShippedDefaultsAreDistinctPlayableKeys) {
    ReadBindingSettings();
    ReadSoundSettings();
    const int fixed[] = {sf::Keyboard::Escape, sf::Keyboard::M, sf::Keyboard::Home,
                         sf::Keyboard::F1, sf::Keyboard::F11};
    for (int i = 0; i < BINDING_COUNT; i++) {
        int key = Settings().bindings[i];
        EXPECT_GE(key, 0);
        EXPECT_LE(key, 100);
        for (int other = i + 1; other < BINDING_COUNT; other++) {
            EXPECT_NE(key, Settings().bindings[other]) << i << " and " << other;
        }
        for (int reserved : fixed) EXPECT_NE(key, reserved) << "binding " << i;
    }
    EXPECT_EQ(Settings().bindings[BINDING_LEFT], sf::Keyboard::A);
    EXPECT_EQ(Settings().bindings[BINDING_JUMP], sf::Keyboard::Space);
    for (int volume : Settings().volumes) {
        EXPECT_GE(volume, 0);
        EXPECT_LE(volume, 100);
    }
}

TEST_F(SettingsFiles, WrittenFilesReadBackTheSameValues) {
    SettingsValues chosen;
    chosen.volumes[SOUND_MASTER] = 0;
    chosen.volumes[SOUND_MUSIC] = 100;
    chosen.volumes[SOUND_EFFECTS] = 37;
    for (int i = 0; i < BINDING_COUNT; i++) chosen.bindings[i] = 71 + i;
    Settings() = chosen;
    WriteSettings();
    EXPECT_EQ(ReadFile(kSoundSettingsPath), "MASTER VOLUME 0\nMUSIC 100\nSOUNDS 37\n");
    EXPECT_EQ(ReadFile(kBindingSettingsPath),
              "LEFT : 71\nRIGHT : 72\nDOWN : 73\nJUMP : 74\nPARRY : 75\nDASH : 76\n"
              "INTERACT : 77\nHEAL : 78\nCLOUD CREATION : 79\n");
    Settings() = SettingsValues();
    ReadSoundSettings();
    ReadBindingSettings();
    for (int i = 0; i < 3; i++) EXPECT_EQ(Settings().volumes[i], chosen.volumes[i]);
    for (int i = 0; i < BINDING_COUNT; i++) EXPECT_EQ(Settings().bindings[i], chosen.bindings[i]);
}

TEST_F(SettingsFiles, DamagedLineKeepsItsOldValueSilently) {
    Settings().volumes[SOUND_MUSIC] = 55;
    WriteFile(kSoundSettingsPath, "MASTER VOLUME 90\nMUZAK 12\nSOUNDS 40\n");
    testing::internal::CaptureStdout();
    testing::internal::CaptureStderr();
    ReadSoundSettings();
    EXPECT_EQ(testing::internal::GetCapturedStdout(), "");
    EXPECT_EQ(testing::internal::GetCapturedStderr(), "");
    EXPECT_EQ(Settings().volumes[SOUND_MASTER], 90);
    EXPECT_EQ(Settings().volumes[SOUND_MUSIC], 55);
}

TEST_F(SettingsFiles, ExtraWhiteSpaceStillReads) {
    WriteFile(kBindingSettingsPath,
              "LEFT :    1\n\n\nRIGHT:2\nDOWN : 3\r\nJUMP : 4\nPARRY : 5\nDASH : 6\n"
              "INTERACT : 7\nHEAL : 8\nCLOUD   CREATION : 9");
    ReadBindingSettings();
    for (int i = 0; i < BINDING_COUNT; i++) EXPECT_EQ(Settings().bindings[i], i + 1) << i;
}

TEST_F(SettingsFiles, MissingFileEndsTheProgram) {
    GTEST_FLAG_SET(death_test_style, "threadsafe");
    std::filesystem::remove(kBindingSettingsPath);
    EXPECT_EXIT(ReadBindingSettings(), testing::ExitedWithCode(1), "Erreur de lecture\n");
}

TEST_F(SettingsFiles, UnwritableFileEndsTheProgram) {
    GTEST_FLAG_SET(death_test_style, "threadsafe");
    std::filesystem::remove(kSoundSettingsPath);
    std::filesystem::create_directory(kSoundSettingsPath);  // a folder cannot be opened to write
    EXPECT_EXIT(WriteSettings(), testing::ExitedWithCode(1),
                "Erreur de d'\xE9"
                "criture\n");
}

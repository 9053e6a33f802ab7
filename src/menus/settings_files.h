// The three volumes and nine key bindings, and the two plain-text files that keep them.
#pragma once

#include <cstdio>
#include <string>

enum SoundCategory { SOUND_MASTER = 0, SOUND_MUSIC = 1, SOUND_EFFECTS = 2 };

enum BindingAction {
    BINDING_LEFT = 0,
    BINDING_RIGHT = 1,
    BINDING_DOWN = 2,
    BINDING_JUMP = 3,
    BINDING_PARRY = 4,
    BINDING_DASH = 5,
    BINDING_INTERACT = 6,
    BINDING_HEAL = 7,
    BINDING_CLOUD = 8,
    BINDING_COUNT = 9,
};

constexpr const char* kSoundSettingsPath = "Assets/Settings/SoundSettings.txt";
constexpr const char* kBindingSettingsPath = "Assets/Settings/BindingSettings.txt";

struct SettingsValues {
    int volumes[3] = {0, 0, 0};        // percent, by SoundCategory
    int bindings[BINDING_COUNT] = {};  // key codes, by BindingAction
};

// The values in force for the whole program.
SettingsValues& Settings();

// Reading an unreadable file ends the program: the game cannot run without both files. A line
// that does not match, or holds a volume outside 0..100 or a key the keyboard does not have,
// keeps its previous value, silently.
void ReadSoundSettings();
void ReadBindingSettings();
// The same from an open file (or text in memory), and the texts the writer writes.
void ReadSoundSettings(std::FILE* file);
void ReadBindingSettings(std::FILE* file);
std::string SoundSettingsText();
std::string BindingSettingsText();
// Writes the sound file, then the binding file, each replaced whole (never left half written).
void WriteSettings();

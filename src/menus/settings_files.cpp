#include "menus/settings_files.h"

#include <SFML/Window/Keyboard.hpp>
#include <cstdio>
#include <string>

#include "common/file_write.h"
#include "common/log.h"

namespace {

SettingsValues values;

// Both files are scanned with exactly the formats they are written with, so a written file reads
// back unchanged; blanks and line breaks in a format match any white space.
const char* const kSoundFormats[3] = {"MASTER VOLUME %d\n", "MUSIC %d\n", "SOUNDS %d\n"};
const char* const kBindingFormats[BINDING_COUNT] = {
    "LEFT : %d\n", "RIGHT : %d\n",    "DOWN : %d\n", "JUMP : %d\n",          "PARRY : %d\n",
    "DASH : %d\n", "INTERACT : %d\n", "HEAL : %d\n", "CLOUD CREATION : %d\n"};

// The values a file may hold: a volume in percent, a key the keyboard has (or none).
struct Range {
    int low, high;
};
constexpr Range kVolumeRange{0, 100};
constexpr Range kKeyRange{sf::Keyboard::Unknown, sf::Keyboard::KeyCount - 1};

// A value out of its range is treated as a line that does not match: the old value stays.
void ScanValues(std::FILE* file, const char* const* formats, int* target, int count, Range range) {
    for (int i = 0; i < count; i++) {
        int value = 0;
        if (std::fscanf(file, formats[i], &value) == 1 && value >= range.low &&
            value <= range.high) {
            target[i] = value;
        }
    }
}

void ReadValues(const char* path, const char* const* formats, int* target, int count, Range range) {
    std::FILE* file = std::fopen(path, "r");
    if (!file) FatalExit("Erreur de lecture\n");
    ScanValues(file, formats, target, count, range);
    std::fclose(file);
}

std::string ValuesText(const char* const* formats, const int* source, int count) {
    std::string text;
    char line[64];
    for (int i = 0; i < count; i++) {
        std::snprintf(line, sizeof line, formats[i], source[i]);
        text += line;
    }
    return text;
}

// Through a temporary file and a rename, so a crash mid-write keeps the old file whole.
void WriteValues(const char* path, const char* const* formats, const int* source, int count) {
    if (!WriteFileSafely(path, ValuesText(formats, source, count)))
        FatalExit(
            "Erreur de d'\xE9"
            "criture\n");
}

}  // namespace

SettingsValues& Settings() {
    return values;
}

void ReadSoundSettings() {
    ReadValues(kSoundSettingsPath, kSoundFormats, values.volumes, 3, kVolumeRange);
}

void ReadBindingSettings() {
    ReadValues(kBindingSettingsPath, kBindingFormats, values.bindings, BINDING_COUNT, kKeyRange);
}

void ReadSoundSettings(std::FILE* file) {
    ScanValues(file, kSoundFormats, values.volumes, 3, kVolumeRange);
}

void ReadBindingSettings(std::FILE* file) {
    ScanValues(file, kBindingFormats, values.bindings, BINDING_COUNT, kKeyRange);
}

std::string SoundSettingsText() {
    return ValuesText(kSoundFormats, values.volumes, 3);
}

std::string BindingSettingsText() {
    return ValuesText(kBindingFormats, values.bindings, BINDING_COUNT);
}

void WriteSettings() {
    WriteValues(kSoundSettingsPath, kSoundFormats, values.volumes, 3);
    WriteValues(kBindingSettingsPath, kBindingFormats, values.bindings, BINDING_COUNT);
}

#include "menus/settings_files.h"

#include <cstdio>

#include "common/log.h"

namespace {

SettingsValues values;

// Both files are scanned with exactly the formats they are written with, so a written file reads
// back unchanged; blanks and line breaks in a format match any white space.
const char* const kSoundFormats[3] = {"MASTER VOLUME %d\n", "MUSIC %d\n", "SOUNDS %d\n"};
const char* const kBindingFormats[BINDING_COUNT] = {
    "LEFT : %d\n", "RIGHT : %d\n",    "DOWN : %d\n", "JUMP : %d\n",          "PARRY : %d\n",
    "DASH : %d\n", "INTERACT : %d\n", "HEAL : %d\n", "CLOUD CREATION : %d\n"};

void ReadValues(const char* path, const char* const* formats, int* target, int count) {
    std::FILE* file = std::fopen(path, "r");
    if (!file) FatalExit("Erreur de lecture\n");
    for (int i = 0; i < count; i++) {
        [[maybe_unused]] int matched = std::fscanf(file, formats[i], &target[i]);
    }
    std::fclose(file);
}

void WriteValues(const char* path, const char* const* formats, const int* source, int count) {
    std::FILE* file = std::fopen(path, "w");
    if (!file)
        FatalExit(
            "Erreur de d'\xE9"
            "criture\n");
    for (int i = 0; i < count; i++) std::fprintf(file, formats[i], source[i]);
    std::fclose(file);
}

}  // namespace

SettingsValues& Settings() {
    return values;
}

void ReadSoundSettings() {
    ReadValues(kSoundSettingsPath, kSoundFormats, values.volumes, 3);
}

void ReadBindingSettings() {
    ReadValues(kBindingSettingsPath, kBindingFormats, values.bindings, BINDING_COUNT);
}

void WriteSettings() {
    WriteValues(kSoundSettingsPath, kSoundFormats, values.volumes, 3);
    WriteValues(kBindingSettingsPath, kBindingFormats, values.bindings, BINDING_COUNT);
}

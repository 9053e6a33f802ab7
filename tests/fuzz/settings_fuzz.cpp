// The settings files' readers against any bytes: the values read stay in their ranges, and what
// the writer then writes reads back unchanged.
#include <SFML/Window/Keyboard.hpp>
#include <cstring>

#include "fuzz/fuzz_support.h"
#include "menus/settings_files.h"

namespace {

void Sentinels(int base) {
    for (int i = 0; i < 3; i++) Settings().volumes[i] = base + i;
    for (int i = 0; i < BINDING_COUNT; i++) Settings().bindings[i] = base + i;
}

bool InRange() {
    for (int volume : Settings().volumes) {
        if (volume < 0 || volume > 100) return false;
    }
    for (int key : Settings().bindings) {
        if (key < sf::Keyboard::Unknown || key >= sf::Keyboard::KeyCount) return false;
    }
    return true;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    EnterScratchFolder();
    WriteBytes(kSoundSettingsPath, data, size);
    WriteBytes(kBindingSettingsPath, data, size);
    Sentinels(10);
    ReadSoundSettings();
    ReadBindingSettings();
    Require(InRange(), "a volume or a key read from a file is one the game can use");
    SettingsValues read = Settings();
    WriteSettings();
    Sentinels(50);
    ReadSoundSettings();
    ReadBindingSettings();
    Require(std::memcmp(&read, &Settings(), sizeof read) == 0,
            "what the writer writes reads back unchanged");
    return 0;
}

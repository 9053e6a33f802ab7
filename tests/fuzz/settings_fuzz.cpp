// The settings files' readers against any bytes, read in memory by the readers' own code: the
// values read stay in their ranges, and what the writer writes reads back unchanged. One input in
// sixteen also goes through the real files, which must read the same.
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

bool Same(const SettingsValues& a, const SettingsValues& b) {
    return std::memcmp(&a, &b, sizeof a) == 0;
}

void ReadFromMemory(const uint8_t* sound, size_t soundSize, const uint8_t* binding,
                    size_t bindingSize) {
    MemoryFile soundFile(sound, soundSize), bindingFile(binding, bindingSize);
    ReadSoundSettings(soundFile.get());
    ReadBindingSettings(bindingFile.get());
}

void ThroughTheFiles(const uint8_t* data, size_t size, const SettingsValues& read) {
    EnterScratchFolder();
    WriteBytes(kSoundSettingsPath, data, size);
    WriteBytes(kBindingSettingsPath, data, size);
    Sentinels(10);
    ReadSoundSettings();
    ReadBindingSettings();
    Require(Same(read, Settings()), "the files read as the same text in memory");
    WriteSettings();
    Require(ReadText(kSoundSettingsPath) == SoundSettingsText() &&
                ReadText(kBindingSettingsPath) == BindingSettingsText(),
            "the writer writes the texts it describes");
    Sentinels(50);
    ReadSoundSettings();
    ReadBindingSettings();
    Require(Same(read, Settings()), "what the writer writes to the files reads back unchanged");
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    Sentinels(10);
    ReadFromMemory(data, size, data, size);
    Require(InRange(), "a volume or a key read from a file is one the game can use");
    SettingsValues read = Settings();
    std::string sound = SoundSettingsText(), binding = BindingSettingsText();
    Sentinels(50);
    ReadFromMemory(reinterpret_cast<const uint8_t*>(sound.data()), sound.size(),
                   reinterpret_cast<const uint8_t*>(binding.data()), binding.size());
    Require(Same(read, Settings()), "what the writer writes reads back unchanged");
    if (SampledForFiles(data, size)) ThroughTheFiles(data, size, read);
    return 0;
}

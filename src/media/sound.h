// Sound sources: one loaded sample and the voices currently playing it, so an effect can overlap
// itself. Volume = the source's base volume x the player's setting for its category; spatial
// sources fade out with their distance from the camera centre, where the listener stands.
#pragma once

#include <SFML/Audio.hpp>
#include <memory>
#include <string>
#include <vector>

#include "menus/settings_files.h"

struct SoundArray {
    std::unique_ptr<sf::SoundBuffer> buffer;
    std::vector<std::unique_ptr<sf::Sound>> voices;  // oldest first
    float baseVolume = 100;
    int loop = 0;
    int category = SOUND_EFFECTS;
    int spatial = 0;
};

constexpr float kVoiceMinDistance = 250.0f;
constexpr float kSilenceDistance = 1152.0f;

// Loads the sample (a missing file gives silent voices) and sets the source's fields.
void LoadSoundArray(SoundArray& array, const std::string& path, float baseVolume, int loop,
                    int category, int spatial);
// Plays the sound: restarts the newest voice when reuse is set and one exists, else adds a voice.
void CreateSoundArray(SoundArray& array, int reuse);
// Once per frame with the source's world position: places or fades the playing voices and
// drops the stopped ones.
void UpdateSoundArray(SoundArray& array, sf::Vector2f sourcePosition);
// Destroys one voice; out-of-range indexes are ignored.
void RemoveSound(SoundArray& array, int index);
// Every voice, then the sample.
void FreeSoundArray(SoundArray& array);
int VoiceCount(const SoundArray& array);

#include "media/sound.h"

#include <cmath>

#include "common/log.h"

void LoadSoundArray(SoundArray& array, const std::string& path, float baseVolume, int loop,
                    int category, int spatial) {
    array.buffer = std::make_unique<sf::SoundBuffer>();
    if (!array.buffer->loadFromFile(path)) array.buffer.reset();
    array.voices.clear();
    array.baseVolume = baseVolume;
    array.loop = loop;
    array.category = category;
    array.spatial = spatial;
}

void CreateSoundArray(SoundArray& array, int reuse) {
    if (reuse && !array.voices.empty()) {
        array.voices.back()->play();
        return;
    }
    auto voice = std::make_unique<sf::Sound>();
    if (array.buffer) voice->setBuffer(*array.buffer);
    int setting = Settings().volumes[array.category];
    Log("type : %d", setting);
    voice->setVolume(float(setting) * array.baseVolume / 100.0f);
    voice->setLoop(array.loop != 0);
    voice->setMinDistance(kVoiceMinDistance);
    array.voices.push_back(std::move(voice));
    array.voices.back()->play();
}

void UpdateSoundArray(SoundArray& array, sf::Vector2f sourcePosition) {
    sf::Vector3f listener = sf::Listener::getPosition();
    for (int i = int(array.voices.size()) - 1; i >= 0; i--) {
        sf::Sound& voice = *array.voices[i];
        if (voice.getStatus() != sf::Sound::Playing) {
            RemoveSound(array, i);
            continue;
        }
        if (!array.spatial) {
            voice.setPosition(listener);
            continue;
        }
        float dx = sourcePosition.x - listener.x;
        float dy = sourcePosition.y - listener.y;
        float distance = std::sqrt(dx * dx + dy * dy);
        voice.setVolume(std::max(0.0f, (1.0f - distance / kSilenceDistance) * array.baseVolume));
    }
}

void RemoveSound(SoundArray& array, int index) {
    if (index < 0 || index >= int(array.voices.size())) return;
    array.voices.erase(array.voices.begin() + index);
}

void FreeSoundArray(SoundArray& array) {
    array.voices.clear();
    array.buffer.reset();
}

int VoiceCount(const SoundArray& array) {
    return int(array.voices.size());
}

#include "app/region_music.h"

#include <array>

#include "enemies/king.h"
#include "media/sound.h"
#include "world/room.h"

namespace {

std::array<SoundArray, 2> music;  // by Region
bool loaded = false;

}  // namespace

void LoadRegionMusic() {
    LoadSoundArray(music[REGION_FOREST], "Assets/Sounds/MUSIC/ForestMusic.wav", 100, 1, SOUND_MUSIC,
                   0);
    LoadSoundArray(music[REGION_CITY], "Assets/Sounds/MUSIC/CityMusic.wav", 100, 1, SOUND_MUSIC, 0);
    loaded = true;
}

void UpdateRegionMusic() {
    if (!loaded) return;
    // The King's music stands in for the region's while he lives; the loop starts afresh after.
    if (KingMusicVoices() > 0) {
        for (SoundArray& array : music) {
            while (VoiceCount(array) > 0) RemoveSound(array, 0);
        }
        return;
    }
    int region = CurrentRoom().region == REGION_CITY ? REGION_CITY : REGION_FOREST;
    SoundArray& other = music[1 - region];
    while (VoiceCount(other) > 0) RemoveSound(other, 0);
    if (VoiceCount(music[region]) == 0 && music[region].buffer) CreateSoundArray(music[region], 0);
    // The loops follow the listener, so they keep their full volume wherever the camera goes.
    UpdateSoundArray(music[region], {0, 0});
}

void FreeRegionMusic() {
    for (SoundArray& array : music) FreeSoundArray(array);
    loaded = false;
}

bool RegionMusicPlaying(int region) {
    return VoiceCount(music[region]) > 0;
}

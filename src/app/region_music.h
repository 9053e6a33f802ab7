// The forest and city loops: the region's music plays while the player is in it and changes at
// the border between the forest and the city.
#pragma once

void LoadRegionMusic();
// Once per frame: starts the current room's region music and stops the other.
void UpdateRegionMusic();
// Stops both loops and frees them (leaving the game).
void FreeRegionMusic();
// Whether a region's loop is playing now.
bool RegionMusicPlaying(int region);

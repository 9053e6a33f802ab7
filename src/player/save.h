// The one save: the checkpoint last rested at, the abilities and the potions carried.
#pragma once

#include <cstdio>
#include <string>

struct Abilities {
    int canDash = 0;
    int canRun = 0;
    int CanCreatePlatform = 0;
    int potionCount = 0;
};

struct SaveRecord {
    int checkpointID = -1;
    int roomID = -1;
    Abilities abilities{-1, -1, -1, -1};
};

constexpr const char* kSavePath = "Assets/Saves/PlayerSave.txt";
// Where a save that could not be read is kept when a new game replaces it.
constexpr const char* kDamagedSavePath = "Assets/Saves/PlayerSave.damaged.txt";

SaveRecord& Save();

// The fields a save's text holds, read from an open file (or text in memory); an unread field
// stays -1. Complete when no field is -1.
SaveRecord ReadSaveRecord(std::FILE* file);
bool SaveRecordComplete(const SaveRecord& record);
// The whole text the writers write for a record.
std::string SaveText(const SaveRecord& record);

// Reads the save; a missing file or any unread field starts a new game (and rewrites the file,
// keeping a damaged one aside, reported).
void LoadSave();
// Checkpoint 0 of room 1, no abilities, one potion.
void WriteNewGameSave();
void WriteCheckpointSave(int checkpointID, int roomID);
void SaveAbilities(const Abilities& abilities);

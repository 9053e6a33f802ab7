#include "player/save.h"

#include <cstdio>
#include <initializer_list>
#include <string>

#include "common/file_write.h"
#include "common/log.h"

namespace {

SaveRecord save;

const char* const kRule = "////////////////////\n";

std::string Line(const char* format, int value) {
    char buffer[64];
    std::snprintf(buffer, sizeof buffer, format, value);
    return buffer;
}

// Lines 1 to 4: the checkpoint rested at.
std::string CheckpointSection(const SaveRecord& record) {
    return std::string(kRule) + "CHECKPOINT DATA :\n" +
           Line("checkpointID %d\n", record.checkpointID) + Line("roomID %d\n", record.roomID);
}

// Lines 5 to 10: the abilities and the potions.
std::string AbilitiesSection(const Abilities& a) {
    return std::string(kRule) + "ABILITIES DATA :\n" + Line("canDash %d\n", a.canDash) +
           Line("canRun %d\n", a.canRun) + Line("CanCreatePlatform %d\n", a.CanCreatePlatform) +
           Line("potionCount %d\n", a.potionCount);
}

// Rewrites the whole file from the record.
void WriteWholeSave() {
    if (!WriteFileSafely(kSavePath, SaveText(save))) LogError("Open file error !\n");
}

// A damaged save is kept aside before the new game replaces it: the player's progress can still
// be mended by hand.
void KeepDamagedSave() {
    if (std::rename(kSavePath, kDamagedSavePath) == 0) {
        LogError("The save %s is damaged: a new game starts, the damaged file is kept as %s\n",
                 kSavePath, kDamagedSavePath);
    }
}

}  // namespace

std::string SaveText(const SaveRecord& record) {
    return CheckpointSection(record) + AbilitiesSection(record.abilities);
}

SaveRecord& Save() {
    return save;
}

SaveRecord ReadSaveRecord(std::FILE* file) {
    SaveRecord record;
    Abilities& a = record.abilities;
    // Each pattern is scanned on its own, so one damaged line leaves only later fields unread.
    [[maybe_unused]] int read =
        std::fscanf(file, "//////////////////// CHECKPOINT DATA : checkpointID %d roomID %d",
                    &record.checkpointID, &record.roomID);
    read = std::fscanf(file, " //////////////////// ABILITIES DATA : canDash %d canRun %d",
                       &a.canDash, &a.canRun);
    read = std::fscanf(file, " CanCreatePlatform %d potionCount %d", &a.CanCreatePlatform,
                       &a.potionCount);
    return record;
}

bool SaveRecordComplete(const SaveRecord& record) {
    const Abilities& a = record.abilities;
    for (int value : {record.checkpointID, record.roomID, a.canDash, a.canRun, a.CanCreatePlatform,
                      a.potionCount}) {
        if (value == -1) return false;
    }
    return true;
}

void LoadSave() {
    save = SaveRecord();
    bool found = false;
    if (std::FILE* file = std::fopen(kSavePath, "r")) {
        found = true;
        save = ReadSaveRecord(file);
        std::fclose(file);
    }
    if (SaveRecordComplete(save)) return;
    if (found) KeepDamagedSave();
    WriteNewGameSave();
}

void WriteNewGameSave() {
    SaveRecord fresh;
    fresh.checkpointID = 0;
    fresh.roomID = 1;
    fresh.abilities = {0, 0, 0, 1};
    if (!WriteFileSafely(kSavePath, SaveText(fresh))) {
        LogError("Open file error!\n");
        return;
    }
    save = fresh;
}

void WriteCheckpointSave(int checkpointID, int roomID) {
    save.checkpointID = checkpointID;
    save.roomID = roomID;
    WriteWholeSave();
}

void SaveAbilities(const Abilities& abilities) {
    save.abilities = abilities;
    WriteWholeSave();
}

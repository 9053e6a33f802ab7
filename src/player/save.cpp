#include "player/save.h"

#include <cstdio>
#include <initializer_list>

#include "common/log.h"

namespace {

SaveRecord save;

const char* const kRule = "////////////////////\n";

void WriteCheckpointSection(std::FILE* file) {
    std::fprintf(file, "%s", kRule);
    std::fprintf(file, "CHECKPOINT DATA :\n");
    std::fprintf(file, "checkpointID %d\n", save.checkpointID);
    std::fprintf(file, "roomID %d\n", save.roomID);
}

void WriteAbilitiesSection(std::FILE* file) {
    const Abilities& a = save.abilities;
    std::fprintf(file, "%s", kRule);
    std::fprintf(file, "ABILITIES DATA :\n");
    std::fprintf(file, "canDash %d\n", a.canDash);
    std::fprintf(file, "canRun %d\n", a.canRun);
    std::fprintf(file, "CanCreatePlatform %d\n", a.CanCreatePlatform);
    std::fprintf(file, "potionCount %d\n", a.potionCount);
}

bool Complete() {
    const Abilities& a = save.abilities;
    for (int value : {save.checkpointID, save.roomID, a.canDash, a.canRun, a.CanCreatePlatform,
                      a.potionCount}) {
        if (value == -1) return false;
    }
    return true;
}

// Rewrites the whole file from the record.
void WriteWholeSave() {
    std::FILE* file = std::fopen(kSavePath, "w");
    if (!file) {
        LogError("Open file error !\n");
        return;
    }
    WriteCheckpointSection(file);
    WriteAbilitiesSection(file);
    std::fclose(file);
}

}  // namespace

SaveRecord& Save() {
    return save;
}

void LoadSave() {
    save = SaveRecord();
    if (std::FILE* file = std::fopen(kSavePath, "r")) {
        Abilities& a = save.abilities;
        // Each pattern is scanned on its own, so one damaged line leaves only later fields unread.
        [[maybe_unused]] int read =
            std::fscanf(file, "//////////////////// CHECKPOINT DATA : checkpointID %d roomID %d",
                        &save.checkpointID, &save.roomID);
        read = std::fscanf(file, " //////////////////// ABILITIES DATA : canDash %d canRun %d",
                           &a.canDash, &a.canRun);
        read = std::fscanf(file, " CanCreatePlatform %d potionCount %d", &a.CanCreatePlatform,
                           &a.potionCount);
        std::fclose(file);
    }
    if (!Complete()) WriteNewGameSave();
}

void WriteNewGameSave() {
    std::FILE* file = std::fopen(kSavePath, "w+");
    if (!file) {
        LogError("Open file error!\n");
        return;
    }
    save.checkpointID = 0;
    save.roomID = 1;
    save.abilities = {0, 0, 0, 1};
    WriteCheckpointSection(file);
    WriteAbilitiesSection(file);
    std::fclose(file);
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

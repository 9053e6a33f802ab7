// The save file's reader against any bytes: the text is read in memory by the reader's own code;
// a whole record reads back unchanged from what the writers write. A whole save (and one damaged
// save in sixteen) also goes through the real file: a load ends with every field read, the file
// it leaves reads back the same, and a damaged file is kept aside, never lost.
#include <filesystem>

#include "fuzz/fuzz_support.h"
#include "player/save.h"

namespace {

bool SameRecord(const SaveRecord& a, const SaveRecord& b) {
    const Abilities &x = a.abilities, &y = b.abilities;
    return a.checkpointID == b.checkpointID && a.roomID == b.roomID && x.canDash == y.canDash &&
           x.canRun == y.canRun && x.CanCreatePlatform == y.CanCreatePlatform &&
           x.potionCount == y.potionCount;
}

SaveRecord ReadFromMemory(const std::string& text) {
    MemoryFile file(text);
    return ReadSaveRecord(file.get());
}

void ThroughTheFile(const uint8_t* data, size_t size, const SaveRecord& parsed, bool whole) {
    EnterScratchFolder();
    std::filesystem::remove(kDamagedSavePath);
    WriteBytes(kSavePath, data, size);
    LoadSave();
    SaveRecord loaded = Save();
    Require(SaveRecordComplete(loaded), "a load ends with every field read");
    if (whole) Require(SameRecord(loaded, parsed), "the file reads as the same text in memory");
    Require(std::filesystem::exists(kDamagedSavePath) != whole,
            "a save is kept aside exactly when it is damaged");
    if (!whole) {
        Require(
            ReadText(kDamagedSavePath) == std::string(reinterpret_cast<const char*>(data), size),
            "a damaged save is kept aside byte for byte");
    }
    LoadSave();
    Require(SameRecord(Save(), loaded), "the file a load leaves reads back the same");
    WriteCheckpointSave(loaded.checkpointID, loaded.roomID);
    SaveAbilities(loaded.abilities);
    LoadSave();
    Require(SameRecord(Save(), loaded), "what the writers write to the file reads back unchanged");
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    SaveRecord parsed;
    {
        MemoryFile input(data, size);
        parsed = ReadSaveRecord(input.get());
    }
    bool whole = SaveRecordComplete(parsed);
    if (whole) {
        Require(SameRecord(ReadFromMemory(SaveText(parsed)), parsed),
                "what the writers write reads back unchanged");
    }
    if (whole || SampledForFiles(data, size)) ThroughTheFile(data, size, parsed, whole);
    return 0;
}

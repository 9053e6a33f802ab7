// The save file's reader against any bytes: a load always ends with a whole record, the file it
// leaves reads back the same, what the writers write reads back unchanged, and a damaged file is
// kept aside, never lost.
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

bool Whole(const SaveRecord& r) {
    const Abilities& a = r.abilities;
    return r.checkpointID != -1 && r.roomID != -1 && a.canDash != -1 && a.canRun != -1 &&
           a.CanCreatePlatform != -1 && a.potionCount != -1;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    EnterScratchFolder();
    std::filesystem::remove(kDamagedSavePath);
    WriteBytes(kSavePath, data, size);
    LoadSave();
    SaveRecord loaded = Save();
    Require(Whole(loaded), "a load ends with every field read");
    if (std::filesystem::exists(kDamagedSavePath)) {
        Require(
            ReadText(kDamagedSavePath) == std::string(reinterpret_cast<const char*>(data), size),
            "a damaged save is kept aside byte for byte");
    }
    LoadSave();
    Require(SameRecord(Save(), loaded), "the file a load leaves reads back the same");
    WriteCheckpointSave(loaded.checkpointID, loaded.roomID);
    SaveAbilities(loaded.abilities);
    LoadSave();
    Require(SameRecord(Save(), loaded), "what the writers write reads back unchanged");
    return 0;
}

// A thousand room changes in one game: doors, deaths with the whole respawn sequence, and
// teleport-style reloads of a statue room, all through the game's own room cleanup and load.
// Memory in use must not grow between the 100th change and the last, and LeakSanitizer must find
// nothing left unreachable. It takes long in the sanitizer build: make test leaves it to the
// "soak" test (ctest -L soak).
#include <unistd.h>

#include <filesystem>
#include <fstream>
#include <random>

#include "player/save.h"
#include "support/game_fixture.h"
#include "world/transition.h"

#if defined(__SANITIZE_ADDRESS__)
// From the sanitizer runtime (its headers are not always installed with the compiler).
extern "C" size_t __sanitizer_get_current_allocated_bytes();
extern "C" int __lsan_do_recoverable_leak_check();
#else
#include <malloc.h>
#endif

namespace {

constexpr int kChanges = 1000;
constexpr int kMeasuredFrom = 100;
// Allocator pools, driver caches and the log's buffers may settle a little after the start.
constexpr size_t kToleratedGrowth = 2 << 20;

size_t BytesInUse() {
#if defined(__SANITIZE_ADDRESS__)
    return __sanitizer_get_current_allocated_bytes();
#else
    return mallinfo2().uordblks;
#endif
}

size_t ResidentBytes() {
    std::ifstream statm("/proc/self/statm");
    size_t pages = 0, resident = 0;
    statm >> pages >> resident;
    return resident * size_t(sysconf(_SC_PAGESIZE));
}

class Soak : public GameRoomTest {
protected:
    // Through a door of the room that leads to a room that exists, as a walk through it would.
    void ThroughADoor() {
        const Room& room = CurrentRoom();
        std::vector<int> doors;
        for (size_t i = 0; i < room.transitionDoors.size(); i++) {
            int target = room.transitionDoors[i].targetedRoom;
            if (std::filesystem::exists(RoomMapPath(target))) doors.push_back(int(i));
        }
        ASSERT_FALSE(doors.empty()) << "room " << room.roomNumber << " has no way out";
        const TransitionDoor& door = room.transitionDoors[size_t(doors[dice() % doors.size()])];
        TransitionState& transition = Transition();
        transition.transitionDoor = int(&door - room.transitionDoors.data());
        transition.transitionDirection =
            TransitionDirectionOf(door.cameraTransition, door.hasCameraTransition);
        ChangeRoomThroughDoor(*app.window);
        // The walk in runs to its end: cut short, it would leave the hero in the doorway.
        for (int frame = 0; frame < 600 && transition.transitionActive; frame++) Update(1);
        ASSERT_FALSE(transition.transitionActive) << "the walk into room " << CurrentRoomNumber();
    }

    // As the statue's teleport would: the checkpoint saved, the room cleaned up and loaded.
    void TeleportToStatue(int room, int checkpoint) {
        WriteCheckpointSave(checkpoint, room);
        CleanupRoom();
        LoadNextTargetRoom(*app.window, room);
        SetPlayerPosition(CheckpointSpawnPosition(checkpoint));
        Update(10);
    }

    // The hero falls where he stands; the game's respawn sequence runs to its end.
    void DieAndRespawn() {
        for (int frame = 0; frame < 240 && !PlayerStanding(); frame++) Update(1);
        SetPlayerState(PLAYER_DEAD);
        bool started = false;
        for (int frame = 0; frame < 1200; frame++) {
            UpdateGame(*app.window, kStep);
            started = started || Transition().respawnStep != 0;
            if (started && Transition().respawnStep == 0) return;
        }
        FAIL() << "the respawn sequence did not end (step " << Transition().respawnStep << ")";
    }

    std::minstd_rand dice{7};
};

}  // namespace

TEST_F(Soak, DISABLED_AThousandRoomChangesNeitherLeakNorGrow) {
    size_t inUse = 0, resident = 0;
    for (int change = 1; change <= kChanges; change++) {
        testing::internal::CaptureStdout();
        if (change % 10 == 8) {
            TeleportToStatue(change % 20 == 8 ? 2 : 4, 0);
        } else if (change % 10 == 9) {
            DieAndRespawn();
        } else {
            ThroughADoor();
            Update(2);
        }
        testing::internal::GetCapturedStdout();
        ASSERT_FALSE(HasFatalFailure()) << "change " << change;
        ASSERT_TRUE(CurrentRoom().loaded) << "change " << change;
        if (change == kMeasuredFrom) inUse = BytesInUse(), resident = ResidentBytes();
    }
    size_t inUseAfter = BytesInUse(), residentAfter = ResidentBytes();
    std::printf("in use: %zu bytes after %d changes, %zu after %d; resident: %zu then %zu\n", inUse,
                kMeasuredFrom, inUseAfter, kChanges, resident, residentAfter);
    EXPECT_LE(inUseAfter, inUse + kToleratedGrowth)
        << "memory in use grew from " << inUse << " to " << inUseAfter << " bytes";
#if defined(__SANITIZE_ADDRESS__)
    EXPECT_EQ(__lsan_do_recoverable_leak_check(), 0) << "LeakSanitizer found memory left behind";
#endif
}

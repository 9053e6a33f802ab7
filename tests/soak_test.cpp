// A thousand room changes in one game: doors, deaths with the whole respawn sequence, and
// teleports from the map to a statue room, each the way a player makes it.
// Memory in use must not grow between the 100th change and the last, and LeakSanitizer must find
// nothing left unreachable. It takes long in the sanitizer build: make test leaves it to the
// "soak" test (ctest -L soak).
#include <unistd.h>

#include <filesystem>
#include <fstream>
#include <random>

#include "hud/map_screen.h"
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
    // A key pressed for one frame (the soak captures what each change prints: no Tap here).
    void Press(int key) {
        InputScriptPressKey(sf::Keyboard::Key(key));
        Frames(1);
        InputScriptReleaseKey(sf::Keyboard::Key(key));
    }

    // Through a door of the room that leads to a room that exists: the hero steps into the
    // doorway and the game walks him out, changes the room and walks him in.
    void ThroughADoor() {
        const Room& room = CurrentRoom();
        std::vector<int> doors;
        for (size_t i = 0; i < room.transitionDoors.size(); i++) {
            int target = room.transitionDoors[i].targetedRoom;
            if (std::filesystem::exists(RoomMapPath(target))) doors.push_back(int(i));
        }
        ASSERT_FALSE(doors.empty()) << "room " << room.roomNumber << " has no way out";
        const TransitionDoor& door = room.transitionDoors[size_t(doors[dice() % doors.size()])];
        int target = door.targetedRoom;
        sf::FloatRect bounds = door.shape->getGlobalBounds();
        SetPlayerPosition({bounds.left + bounds.width / 2, bounds.top + bounds.height - 1});
        const TransitionState& transition = Transition();
        bool started = false;
        for (int frame = 0; frame < 900; frame++) {
            Update(1);
            started = started || transition.transitionActive;
            if (started && !transition.transitionActive) break;
        }
        ASSERT_TRUE(started) << "the door of room " << room.roomNumber << " to room " << target;
        ASSERT_FALSE(transition.transitionActive) << "the walk into room " << target;
        ASSERT_EQ(CurrentRoomNumber(), target);
    }

    // As a player does from a statue: the map opened by the statue's TELEPORT, the room picked,
    // its teleport button clicked; at the statue he arrives at, the hero rests, which saves.
    void TeleportToStatue(int room) {
        RequestMapScreen(true);
        ASSERT_EQ(Overlays().mapOpen, 1);
        int index = room - 1;
        sf::Vector2f at = MapRoomOnScreen(index);
        ClickAt(at.x, at.y);
        ASSERT_EQ(GetMapScreen().pickedRoom, index);
        Update(int(kMapZoomSeconds / kStep) + 5);
        const SpritePtr& button = GetMapScreen().rooms[size_t(index)].teleportButton;
        ASSERT_TRUE(button) << "no teleport to room " << room;
        sf::FloatRect bounds = button->getGlobalBounds();
        ClickAt(bounds.left + bounds.width / 2, bounds.top + bounds.height / 2);
        ASSERT_EQ(GetMapScreen().teleportRequested, 1);
        for (int frame = 0; frame < 300 && Overlays().mapOpen; frame++) Update(1);
        ASSERT_EQ(Overlays().mapOpen, 0);
        ASSERT_EQ(CurrentRoomNumber(), room);
        for (int frame = 0; frame < 240 && !PlayerStanding(); frame++) Update(1);
        Press(Settings().bindings[BINDING_INTERACT]);
        ASSERT_EQ(Save().roomID, room);
        ASSERT_EQ(Overlays().checkpointMenuOpen, 1);
        Press(sf::Keyboard::Escape);
        for (int frame = 0; frame < 120 && Overlays().checkpointMenuOpen; frame++) Update(1);
        ASSERT_EQ(Overlays().checkpointMenuOpen, 0);
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
            TeleportToStatue(change % 20 == 8 ? 2 : 4);
        } else if (change % 10 == 9) {
            DieAndRespawn();
        } else {
            ThroughADoor();
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

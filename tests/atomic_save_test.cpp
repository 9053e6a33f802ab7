// Killing the game in the middle of a save: a child process writes the save, an elevator state
// and the settings through the game's own writers, round after round, until it is killed at a
// random moment. Every file left on disk must then be whole (the old one or the new one) and
// accepted by the game's own reader.
#include <signal.h>
#include <sys/wait.h>
#include <unistd.h>

#include <chrono>
#include <filesystem>
#include <random>
#include <thread>

#include "menus/settings_files.h"
#include "player/save.h"
#include "support/fixture.h"
#include "world/elevators.h"
#include "world/room.h"

namespace {

constexpr int kRoom = 12;

// One cabin with two stops and two levers.
void BuildRoomElevator() {
    Room& room = CurrentRoom();
    room.roomNumber = kRoom;
    room.elevators.clear();
    Elevator elevator;
    elevator.id = 7;
    elevator.sprite = std::make_unique<sf::Sprite>();
    elevator.stops = {{{300, 900}, 0}, {{300, 300}, 1}};
    elevator.sprite->setPosition(elevator.stops[0].position);
    elevator.callTrigger = std::make_shared<sf::RectangleShape>();
    elevator.levers = {{0, {0, 0}, nullptr, 0}, {1, {0, 0}, nullptr, 0}};
    room.elevators.push_back(std::move(elevator));
}

// Round n writes values that all derive from n, so a file mixing two rounds shows.
void WriteRound(int n) {
    WriteCheckpointSave(n, n + 1);
    SaveAbilities({n % 2, n % 2, n % 2, n % 5});
    for (int& volume : Settings().volumes) volume = n % 101;
    for (int& key : Settings().bindings) key = n % 100;
    WriteSettings();
    Elevator& cabin = CurrentRoom().elevators.front();
    cabin.sprite->setPosition(cabin.stops[size_t(n % 2)].position);
    for (Lever& lever : cabin.levers) lever.active = n % 2;
    SaveElevatorStates();
}

[[noreturn]] void WriteUntilKilled(int firstRound) {
    for (int n = firstRound;; n++) WriteRound(n);
}

using KilledMidSave = SandboxTest;

}  // namespace

TEST_F(KilledMidSave, LeavesEveryFileWholeAndReadable) {
    BuildRoomElevator();
    WriteRound(0);
    std::mt19937 random(20240611);
    std::uniform_int_distribution<int> delay(0, 20000);  // microseconds
    int round = 1;
    for (int kill = 0; kill < 150; kill++) {
        pid_t child = fork();
        ASSERT_GE(child, 0);
        if (child == 0) WriteUntilKilled(round);
        std::this_thread::sleep_for(std::chrono::microseconds(delay(random)));
        ::kill(child, SIGKILL);
        int status = 0;
        ASSERT_EQ(waitpid(child, &status, 0), child);
        ASSERT_TRUE(WIFSIGNALED(status)) << "the writer ended by itself";
        round += 1000;

        SCOPED_TRACE("kill " + std::to_string(kill));
        LoadSave();
        EXPECT_FALSE(std::filesystem::exists(kDamagedSavePath)) << ReadFile(kDamagedSavePath);
        const SaveRecord& save = Save();
        EXPECT_EQ(save.roomID, save.checkpointID + 1) << ReadFile(kSavePath);

        Settings() = SettingsValues{{1, 2, 3}, {0, 1, 2, 3, 4, 5, 6, 7, 8}};
        ReadSoundSettings();
        ReadBindingSettings();
        const SettingsValues& read = Settings();
        EXPECT_TRUE(read.volumes[0] == read.volumes[1] && read.volumes[1] == read.volumes[2])
            << ReadFile(kSoundSettingsPath);
        for (int key : read.bindings)
            EXPECT_EQ(key, read.bindings[0]) << ReadFile(kBindingSettingsPath);

        std::string state = ReadFile(ElevatorStatePath(kRoom));
        BuildRoomElevator();
        LoadElevatorStates();
        EXPECT_EQ(ReadFile(ElevatorStatePath(kRoom)), state) << "the state file was refused";
        const Elevator& cabin = CurrentRoom().elevators.front();
        EXPECT_EQ(CurrentStopId(cabin), cabin.levers[0].active) << state;
        if (HasFailure()) break;
    }
    CurrentRoom().elevators.clear();
}

// An elevator room's state file against any bytes, read in memory by the reader's own code: every
// cabin ends at one of its stops with its levers on or off, a refused file changes nothing, and
// what the room writes puts it back the same way. A readable file (and one refused file in
// sixteen) also goes through the real file: it loads the same, and the file the load leaves puts
// the room back the same way.
#include <vector>

#include "fuzz/fuzz_support.h"
#include "world/elevators.h"
#include "world/room.h"

namespace {

constexpr int kRoom = 12;

// Two cabins: one with three stops and two levers, one with two stops and none.
void BuildRoomElevators() {
    Room& room = CurrentRoom();
    room.roomNumber = kRoom;
    room.elevators.clear();
    const std::vector<std::vector<ElevatorStop>> stops = {
        {{{300, 900}, 0}, {{300, 300}, 1}, {{900, 300}, 2}}, {{{1500, 600}, 0}, {{1500, 0}, 1}}};
    for (size_t i = 0; i < stops.size(); i++) {
        Elevator elevator;
        elevator.id = int(i) + 1;
        elevator.sprite = std::make_unique<sf::Sprite>();
        elevator.sprite->setPosition(stops[i][0].position);
        elevator.stops = stops[i];
        elevator.callTrigger = std::make_shared<sf::RectangleShape>(sf::Vector2f(96, 96));
        for (int lever = 0; lever < (i == 0 ? 2 : 0); lever++) {
            elevator.levers.push_back({lever, {0, 0}, nullptr, lever});
        }
        room.elevators.push_back(std::move(elevator));
    }
}

struct CabinState {
    int stop;
    std::vector<int> levers;
    bool operator==(const CabinState&) const = default;
};

std::vector<CabinState> RoomState() {
    std::vector<CabinState> state;
    for (const Elevator& elevator : CurrentRoom().elevators) {
        CabinState cabin{CurrentStopId(elevator), {}};
        for (const Lever& lever : elevator.levers) cabin.levers.push_back(lever.active);
        state.push_back(cabin);
    }
    return state;
}

bool ReadFromMemory(const uint8_t* data, size_t size) {
    MemoryFile file(data, size);
    return ReadElevatorStates(file.get());
}

void ThroughTheFile(const uint8_t* data, size_t size, bool applied,
                    const std::vector<CabinState>& loaded, const std::string& written) {
    EnterScratchFolder();
    std::string path = ElevatorStatePath(kRoom);
    WriteBytes(path, data, size);
    BuildRoomElevators();
    LoadElevatorStates();
    Require(RoomState() == loaded, "the file loads as the same text in memory");
    if (applied) {
        Require(ReadText(path) == std::string(reinterpret_cast<const char*>(data), size),
                "a readable file is not rewritten by a load");
    } else {
        Require(ReadText(path) == written, "a refused file is replaced by the room's state");
    }
    SaveElevatorStates();
    Require(ReadText(path) == written, "the room writes the text it describes");
    BuildRoomElevators();
    LoadElevatorStates();
    Require(RoomState() == loaded, "what the room writes to the file puts it back the same way");
    Require(ReadText(path) == written, "a file the room wrote is not rewritten by a load");
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    BuildRoomElevators();
    std::vector<CabinState> mapState = RoomState();
    bool applied = ReadFromMemory(data, size);
    std::vector<CabinState> loaded = RoomState();
    if (!applied) Require(loaded == mapState, "a refused file changes nothing");
    for (const CabinState& cabin : loaded) {
        Require(cabin.stop >= 0, "every cabin rests at one of its stops");
        for (int active : cabin.levers) Require(active == 0 || active == 1, "a lever is on or off");
    }
    // Written back by the room, then read into a fresh room: the same cabins, the same text.
    std::string written = ElevatorStatesText();
    BuildRoomElevators();
    Require(ReadFromMemory(reinterpret_cast<const uint8_t*>(written.data()), written.size()),
            "what the room writes is readable");
    Require(RoomState() == loaded, "what the room writes puts it back the same way");
    Require(ElevatorStatesText() == written, "a room read from its own text writes that text");
    if (applied || SampledForFiles(data, size))
        ThroughTheFile(data, size, applied, loaded, written);
    CurrentRoom().elevators.clear();
    return 0;
}

// Room benchmark: loads each room the way the game does, then times whole frames (update, draw
// and display) while the hero walks to and fro, once with the world drawn straight onto the
// window at full resolution and once through the pixel canvas, and prints both with their ratio.
// Run it under a display (make bench does, in a virtual one).
#include <algorithm>
#include <chrono>
#include <cstdio>
#include <ctime>
#include <filesystem>
#include <string>
#include <vector>

#include "app/app.h"
#include "app/game.h"
#include "app/game_state.h"
#include "app/input.h"
#include "menus/settings_files.h"
#include "player/player.h"
#include "world/camera.h"
#include "world/elevators.h"
#include "world/pixel_canvas.h"
#include "world/room.h"
#include "world/room_lifecycle.h"
#include "world/transition.h"

namespace {

using Clock = std::chrono::steady_clock;

constexpr int kWarmUp = 30;
constexpr int kFrames = 600;
constexpr int kLeg = 150;           // frames before the walk turns round
constexpr float kDoorMargin = 240;  // the walk turns this far before a door
constexpr float kDt = 1.0f / 60.0f;

struct FrameTimes {
    double p50 = 0, p99 = 0;
    double cpuP50 = 0;  // every thread's processor time, the renderer's included
};

double Milliseconds(Clock::time_point from, Clock::time_point to) {
    return std::chrono::duration<double, std::milli>(to - from).count();
}

// Processor time barely moves when other work shares the machine, unlike the wall clock: it
// compares two versions of a room on a busy machine.
double ProcessMilliseconds() {
    timespec now{};
    clock_gettime(CLOCK_PROCESS_CPUTIME_ID, &now);
    return double(now.tv_sec) * 1e3 + double(now.tv_nsec) / 1e6;
}

double Percentile(std::vector<double> values, double p) {
    std::sort(values.begin(), values.end());
    size_t index = std::min(values.size() - 1, size_t(p * double(values.size() - 1) + 0.5));
    return values[index];
}

bool NearDoorAhead(bool right) {
    sf::FloatRect body = PlayerBodyBounds();
    sf::FloatRect ahead(right ? body.left + body.width : body.left - kDoorMargin, body.top,
                        kDoorMargin, body.height);
    for (const TransitionDoor& door : CurrentRoom().transitionDoors) {
        if (door.shape->getGlobalBounds().intersects(ahead)) return true;
    }
    return false;
}

// The life the walk keeps the hero at: 1 to 40 keeps the HUD's vignette pulsing.
int keptLife = 100;
// Instead of walking, the hero rides the room's first cabin to and fro (the shaft's ride zooms
// the view out to twice the screen).
bool riding = false;

// The hero walks to and fro inside the room, turning before doors, and never dies, so every
// frame measured belongs to the room itself.
struct Walker {
    bool right = true;
    int legFrames = 0;

    void Step() {
        if (++legFrames >= kLeg || NearDoorAhead(right)) {
            right = !right;
            legFrames = 0;
        }
        InputScriptKey(Settings().bindings[BINDING_RIGHT], right);
        InputScriptKey(Settings().bindings[BINDING_LEFT], !right);
        GetPlayer().life = keptLife;
    }
};

void PlaceHero() {
    const Room& room = CurrentRoom();
    if (riding && !room.elevators.empty()) {
        // Dropped onto the cabin's deck, which stands a short hop over its floor.
        SetPlayerPosition(room.elevators.front().sprite->getPosition() - sf::Vector2f(0, 96));
    } else if (!room.checkpointSpawns.empty()) {
        SetPlayerPosition(room.checkpointSpawns[0].position);
    } else if (!room.doorSpawns.empty()) {
        SetPlayerPosition(room.doorSpawns[0].position);
    }
}

double LoadRoom(sf::RenderWindow& window, int number) {
    auto begin = Clock::now();
    CleanupRoom();
    LoadNextTargetRoom(window, number);
    double load = Milliseconds(begin, Clock::now());
    ResetTransition();
    PlaceHero();
    return load;
}

FrameTimes MeasureFrames(sf::RenderWindow& window, int number) {
    LoadRoom(window, number);
    Walker walker;
    std::vector<double> frames, processor;
    for (int frame = 0; frame < kWarmUp + kFrames; frame++) {
        if (!riding) {
            walker.Step();
        } else if (!CurrentRoom().elevators.empty() && !CurrentRoom().elevators.front().moving) {
            InteractWithElevators(PlayerBodyBounds());  // on the deck: off it goes again
        }
        auto begin = Clock::now();
        double cpuBegin = ProcessMilliseconds();
        UpdateGame(window, kDt);
        // The game clears the window only where the world does not cover it.
        if (FullResolutionWorld()) window.clear();
        DrawGame(window);
        window.display();
        if (frame >= kWarmUp) {
            frames.push_back(Milliseconds(begin, Clock::now()));
            processor.push_back(ProcessMilliseconds() - cpuBegin);
        }
    }
    if (CurrentRoomNumber() != number) {
        std::fprintf(stderr, "room %d: the walk left the room\n", number);
    }
    return {Percentile(frames, 0.5), Percentile(frames, 0.99), Percentile(processor, 0.5)};
}

sf::Image DrawnFrame(sf::RenderWindow& window) {
    window.clear();
    DrawGame(window);
    sf::Texture frame;
    frame.create(window.getSize().x, window.getSize().y);
    frame.update(window);
    window.display();
    return frame.copyToImage();
}

// The same moment drawn both ways, side by side: the middle of the screen, where the hero stands.
void SaveComparison(sf::RenderWindow& window, int number, const std::string& folder) {
    StartScreenFade(FADE_TO_CLEAR, 0);  // no fade left over from the room before
    for (int frame = 0; frame < 90; frame++) UpdateGame(window, kDt);
    DrawGame(window);  // the window's view catches up with the camera
    SetFullResolutionWorld(1);
    sf::Image full = DrawnFrame(window);
    SetFullResolutionWorld(0);
    sf::Image canvas = DrawnFrame(window);
    const sf::IntRect crop(480, 270, 960, 540);
    sf::Image pair;
    pair.create(2 * unsigned(crop.width) + 8, unsigned(crop.height), sf::Color::White);
    pair.copy(full, 0, 0, crop);
    pair.copy(canvas, unsigned(crop.width) + 8, 0, crop);
    pair.saveToFile(folder + "/room" + std::to_string(number) + ".png");
}

void MeasureRoom(AppWindow& app, int number, const std::string& shots) {
    sf::RenderWindow& window = *app.window;
    double load = LoadRoom(window, number);
    if (!shots.empty()) SaveComparison(window, number, shots);
    SetFullResolutionWorld(1);
    FrameTimes full = MeasureFrames(window, number);
    SetFullResolutionWorld(0);
    FrameTimes canvas = MeasureFrames(window, number);
    std::fprintf(stderr, "| %d | %.0f | %.2f | %.2f | %.2f | %.2f | %.2f | %.2f |\n", number, load,
                 full.p50, full.p99, canvas.p50, canvas.p99, full.p50 / canvas.p50, canvas.cpuP50);
}

}  // namespace

int main(int argc, char** argv) {
    AppWindow app;
    StartApp(app);
    InputStartScript();
    app.window->setFramerateLimit(0);  // measure the work, not the frame cap
    app.window->setVerticalSyncEnabled(false);
    SwitchGameState(GAME_STATE_GAME, *app.window);
    // The table goes to the error stream: the game's own log lines fill standard output.
    std::fprintf(
        stderr,
        "\n| room | load ms | full resolution p50 ms | full resolution p99 ms "
        "| pixel canvas p50 ms | pixel canvas p99 ms | p50 ratio | pixel canvas CPU p50 ms |\n"
        "|---|---|---|---|---|---|---|---|\n");
    // Arguments: room numbers (all built rooms when none), "--shots FOLDER" to save the
    // side-by-side pictures of both paths there, "--life N" to walk at that life, "--ride" to
    // ride the room's cabin instead of walking.
    std::vector<int> rooms;
    std::string shots;
    for (int i = 1; i < argc; i++) {
        std::string argument = argv[i];
        if (argument == "--shots" && i + 1 < argc) {
            shots = argv[++i];
        } else if (argument == "--ride") {
            riding = true;
        } else if (argument == "--life" && i + 1 < argc) {
            keptLife = std::atoi(argv[++i]);
        } else {
            rooms.push_back(std::atoi(argv[i]));
        }
    }
    if (rooms.empty()) {
        for (int number = 1; number <= 23; number++) rooms.push_back(number);
    }
    for (int number : rooms) {
        if (std::filesystem::exists(RoomMapPath(number))) MeasureRoom(app, number, shots);
    }
    ShutDownApp(app);
    return 0;
}

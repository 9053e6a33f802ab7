// Room benchmark: loads each room the way the game does and measures the load, then the frame's
// update and draw over a fixed number of frames, reporting percentiles. Run it under a display
// (make bench does, in a virtual one).
#include <algorithm>
#include <chrono>
#include <cstdio>
#include <filesystem>
#include <vector>

#include "app/app.h"
#include "app/game.h"
#include "app/game_state.h"
#include "app/input.h"
#include "menus/settings_files.h"
#include "player/player.h"
#include "world/room.h"
#include "world/room_lifecycle.h"

namespace {

using Clock = std::chrono::steady_clock;

constexpr int kFrames = 600;
constexpr float kDt = 1.0f / 60.0f;

double Milliseconds(Clock::time_point from, Clock::time_point to) {
    return std::chrono::duration<double, std::milli>(to - from).count();
}

double Percentile(std::vector<double> values, double p) {
    std::sort(values.begin(), values.end());
    size_t index = std::min(values.size() - 1, size_t(p * double(values.size() - 1) + 0.5));
    return values[index];
}

// The hero walks right, then back left, so the camera and the backgrounds move. (A walk that
// finds a door simply goes on in the next room.)
void Walk(int frame) {
    bool right = (frame / 150) % 2 == 0;
    InputScriptKey(Settings().bindings[BINDING_RIGHT], right);
    InputScriptKey(Settings().bindings[BINDING_LEFT], !right);
}

void MeasureRoom(AppWindow& app, int number) {
    sf::RenderWindow& window = *app.window;
    auto begin = Clock::now();
    CleanupRoom();
    LoadNextTargetRoom(window, number);
    double load = Milliseconds(begin, Clock::now());
    const Room& room = CurrentRoom();
    size_t tiles = 0;
    for (const RoomLayer& layer : room.layers) tiles += layer.tiles.size();
    size_t collisions = room.collisions.size();
    if (!room.checkpointSpawns.empty()) {
        SetPlayerPosition(room.checkpointSpawns[0].position);
    } else if (!room.doorSpawns.empty()) {
        SetPlayerPosition(room.doorSpawns[0].position);
    }
    std::vector<double> update, draw;
    for (int frame = 0; frame < kFrames; frame++) {
        Walk(frame);
        auto t0 = Clock::now();
        UpdateGame(window, kDt);
        auto t1 = Clock::now();
        window.clear();
        DrawGame(window);
        window.display();
        auto t2 = Clock::now();
        update.push_back(Milliseconds(t0, t1));
        draw.push_back(Milliseconds(t1, t2));
    }
    std::printf("| %d | %zu | %zu | %.1f | %.3f | %.3f | %.2f | %.2f | %.2f |\n", number, tiles,
                collisions, load, Percentile(update, 0.5), Percentile(update, 0.99),
                Percentile(draw, 0.5), Percentile(draw, 0.95), Percentile(draw, 0.99));
}

}  // namespace

int main() {
    AppWindow app;
    StartApp(app);
    InputStartScript();
    app.window->setFramerateLimit(0);  // measure the work, not the frame cap
    SwitchGameState(GAME_STATE_GAME, *app.window);
    std::printf(
        "\n| room | tiles | collisions | load ms | update p50 ms | update p99 ms "
        "| draw p50 ms | draw p95 ms | draw p99 ms |\n|---|---|---|---|---|---|---|---|---|\n");
    for (int number = 1; number <= 23; number++) {
        if (std::filesystem::exists(RoomMapPath(number))) MeasureRoom(app, number);
    }
    ShutDownApp(app);
    return 0;
}

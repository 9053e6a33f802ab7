// A scripted player for the running game: it reads the hero, the room and the enemies each update
// and answers with the key bindings and mouse clicks a player would give, through the input
// script. It walks the routes the reach analysis plans (walks, jumps, drops, dashes, runs,
// clouds, rides), fights what stands in its way, and says where it got stuck when it does.
#pragma once

#include <string>
#include <vector>

#include "app/app.h"

// One thing to do in a room, in order: open a chest (its index), rest at a statue (its
// checkpoint id), kill every enemy (bosses), or leave by a door (its id).
struct AutoplayGoal {
    enum Kind { CHEST, STATUE, KILL, DOOR } kind = DOOR;
    int id = 0;
};

struct AutoplayRoom {
    int room = 0;
    std::vector<AutoplayGoal> goals;
    float seconds = 120;  // of game time, for the whole room
};

// Takes the controls of a game already running in `app` (the hero in his room).
void StartAutoplayer(AppWindow& app);
void StopAutoplayer();

// Plays a room's goals; empty when every one was done, else what went wrong and where.
std::string AutoplayRoomGoals(const AutoplayRoom& plan);
// Runs the game, the controls released, until the ending has taken the game back to the title
// menu; empty on success.
std::string AutoplayEnding(float seconds);

// Carries the hero into `room` as if through its door from `fromRoom`, with the abilities given
// (REACH_* bits): to work on a later stretch of the route without playing the ones before.
void AutoplayEnterRoom(int room, int fromRoom, int abilities);

// Seconds of game time played so far.
float AutoplayClock();

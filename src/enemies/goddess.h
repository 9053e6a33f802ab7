// The Goddess, the last boss: a winged figure of light that drifts along a figure-eight over her
// garden and strikes with lightning dropped on the hero, a whip lashing the ground below her, and
// two sparks that glide to the arena's far sides and then burn a beam between them. Below half
// life she is enraged: she drifts faster, strikes more often and makes her sparks first. At life 0
// she stops, flares and dissolves, and then reports that the game's ending may begin.
#pragma once

#include <SFML/Graphics.hpp>
#include <functional>

#include "enemies/enemies.h"

enum GoddessState {
    GODDESS_IDLE = 0,
    GODDESS_LIGHTNING = 1,
    GODDESS_CREATE_SPARK = 2,
    GODDESS_TRIGGER_SPARK = 3,
    GODDESS_WHIP = 4,
    GODDESS_DEAD = 5
};

// The Goddess's row in the roster's table.
const EnemyKindOps& GoddessKind();

void AddGoddessEnemy(sf::Vector2f position, int containerId);

// One idle frame's choice of a move: the pressure grows, then the dice (`roll` yields what rand()
// yields) decide. GODDESS_IDLE when no move starts this frame.
int ChooseGoddessMove(int& pressure, bool enraged, bool sparksExist, bool sparksArrived,
                      const std::function<int()>& roll);
// Where the hover puts her at a phase of the figure-eight around its centre.
sf::Vector2f GoddessHoverPoint(sf::Vector2f centre, float phase);

// What the rest of the game and the tests may read of a Goddess.
struct GoddessStatus {
    int state = 0;
    int life = 0;
    bool enraged = false;
    int pressure = 0;
    float phase = 0;
    bool relocating = false;
    bool wingsShown = false;
    bool lashing = false;  // the whip is out
    bool lightningShown = false;
    sf::Vector2f lightningPoint;
    bool sparksExist = false, sparksArrived = false;
    bool beamOn = false;
    float beamTimer = 0;
    sf::Vector2f body, spark1, spark2;
    float bodyScaleX = 3, whipScaleX = 3;
    int bodyFrame = 0, whipFrame = 0;  // the shown frames' indexes on their clips
    float fade = 1;                    // 1 while she stands, down to 0 as she dissolves
};
GoddessStatus GetGoddessStatus(int index);

// A Goddess of the room has fallen and finished dissolving: the game's ending may begin.
bool GoddessDefeated();

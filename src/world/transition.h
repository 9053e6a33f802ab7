// Moving the hero between rooms: through transition doors (walk out while the screen fades to
// black, load the next room, walk in while it clears) and through death (a slow zoom on the
// fallen hero, black, the checkpoint room, revival).
#pragma once

#include <SFML/Graphics.hpp>

#include "common/motion.h"

enum TransitionDirection {
    TRANSITION_LEFT = 0,
    TRANSITION_RIGHT = 1,
    TRANSITION_UP = 2,
    TRANSITION_DOWN = 3
};

struct TransitionState {
    int transitionActive = 0;
    int transitionDirection = TRANSITION_LEFT;
    int transitionDoor = 0;
    int bossFocusRequest = 0;
    sf::Vector2f arrivalPoint;
    int respawnStep = 0;
    Tween riseTween;
};

TransitionState& Transition();
void ResetTransition();

// The direction word of a door: exactly "Left", "Right", "Up" or "Down"; anything else is left.
int TransitionDirectionOf(const std::string& word, bool present);

void CheckTransitionDoors();
void UpdateDoorTransition(sf::RenderWindow& window, float dt);
int WalkThroughDoor(int direction, sf::Sprite& sprite, int door, float dt);
void ChangeRoomThroughDoor(sf::RenderWindow& window);
void EndDoorTransition();
void UpdateRespawnSequence(sf::RenderWindow& window);

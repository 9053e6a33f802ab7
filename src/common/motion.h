// Motion helpers: move, turn, fade or scale something towards a goal at a given speed. Each snaps
// to the goal when less than one step remains, so nothing overshoots; each returns 1 at the goal.
#pragma once

#include <SFML/Graphics.hpp>

// A running scale animation, owned by the caller and zeroed before first use.
struct Tween {
    float elapsed = 0;
    float duration = 0;
    int started = 0;
    int easing = 0;
    sf::Vector2f from;
};

// speed in pixels per second; 0 jumps. straight = 0 moves each axis on its own.
int MoveSpriteTowards(sf::Transformable& sprite, sf::Vector2f target, float speed, float dt,
                      int straight);
// Degrees and degrees per second, the short way round; 0 jumps.
int RotateSpriteTowards(sf::Transformable& sprite, float targetAngle, float speed, float dt);
// Exponential approach of each channel; truncation can leave a rising channel one unit short, so
// callers call again while the colour differs.
int FadeSpriteColor(sf::Sprite& sprite, sf::Color target, float dt, float rate);
// Eased scale change over a duration (cubic in-out).
// Starts a tween from a value (every other field zeroed).
void StartTween(Tween& tween, sf::Vector2f from, float duration, int easing);
// One step of an eased move of a two-axis value (a position, a scale, a view's centre) towards a
// goal; the first step starts the tween from the value. An axis already at the goal takes the
// goal as its start. Returns 1 from the step whose elapsed time reaches the duration on.
int StepTween(Tween& tween, sf::Vector2f& value, sf::Vector2f goal, float duration, int easing,
              float dt);
int TweenShapeScale(sf::Transformable& shape, sf::Vector2f targetScale, float duration, float dt,
                    Tween& tween);
// Eased move towards a goal: the first call starts the tween from the current position; on an
// axis where the object already sits at the goal, the start is put there too. Returns 1 from the
// call whose elapsed time reaches the duration on (the tween is then left as it is).
int TweenPosition(sf::Transformable& object, sf::Vector2f goal, float duration, int easing,
                  float dt, Tween& tween);
// The tween has started and run its whole duration.
bool TweenDone(const Tween& tween);

// A colour moving to a goal, each channel on its own by the eased factor; zeroed before first use.
struct ColorTween {
    float elapsed = 0;
    int started = 0;
    sf::Color from;
};

// One step of a colour towards a goal; the first step starts the tween from the value. Returns 1
// from the step whose elapsed time reaches the duration on.
int StepColorTween(ColorTween& tween, sf::Color& value, sf::Color goal, float duration, int easing,
                   float dt);

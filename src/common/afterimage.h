// Afterimage trails: fading copies of a sprite left behind as it moves. The hero leaves one while
// dashing or running; the Goddess leaves one of her body and one of her wings all the time. Each
// owner gives its own spacing, tint and lifetime.
#pragma once

#include <SFML/Graphics.hpp>
#include <vector>

struct Afterimage {
    sf::Sprite sprite;
    float age = 0;
};

struct AfterimageTrail {
    std::vector<Afterimage> ghosts;  // oldest first
    float timer = 0;                 // the spawn accumulator
};

struct AfterimageLook {
    float interval;  // seconds between two ghosts (at most one per update)
    sf::Color tint;
    float lifetime;  // seconds
};

// The accumulator runs whether or not the trail is enabled; an enabled trail whose accumulator
// passed the interval takes one interval off it and copies `source` as it is now. Ghosts older
// than the lifetime go.
void UpdateAfterimages(AfterimageTrail& trail, const sf::Sprite& source, bool enabled,
                       const AfterimageLook& look, float dt);
// Draws every `every`-th ghost from the newest, each as opaque as that many stacked ghosts: a
// dense trail for a fraction of the texels filled.
void DrawAfterimages(sf::RenderTarget& target, const AfterimageTrail& trail, int every = 1);

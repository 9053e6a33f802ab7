#include "common/afterimage.h"

#include <algorithm>

void UpdateAfterimages(AfterimageTrail& trail, const sf::Sprite& source, bool enabled,
                       const AfterimageLook& look, float dt) {
    trail.timer += dt;
    if (enabled && trail.timer > look.interval) {
        trail.timer -= look.interval;
        Afterimage ghost{source, 0};
        ghost.sprite.setColor(look.tint);
        trail.ghosts.push_back(ghost);
    }
    for (Afterimage& ghost : trail.ghosts) ghost.age += dt;
    std::erase_if(trail.ghosts,
                  [&look](const Afterimage& ghost) { return ghost.age > look.lifetime; });
}

void DrawAfterimages(sf::RenderTarget& target, const AfterimageTrail& trail) {
    for (const Afterimage& ghost : trail.ghosts) target.draw(ghost.sprite);
}

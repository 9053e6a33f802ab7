#include "common/afterimage.h"

#include <algorithm>
#include <cmath>

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

void DrawAfterimages(sf::RenderTarget& target, const AfterimageTrail& trail, int every) {
    every = std::max(every, 1);
    int count = int(trail.ghosts.size());
    if (count == 0) return;
    for (int i = (count - 1) % every; i < count; i += every) {
        sf::Sprite ghost = trail.ghosts[size_t(i)].sprite;
        sf::Color color = ghost.getColor();
        float through = std::pow(1.0f - float(color.a) / 255.0f, float(every));
        color.a = sf::Uint8(std::lround(255.0f * (1.0f - through)));
        ghost.setColor(color);
        target.draw(ghost);
    }
}

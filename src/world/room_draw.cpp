#include "world/room_draw.h"

#include <cmath>

#include "world/elevators.h"
#include "world/pixel_canvas.h"
#include "world/room.h"

namespace {

sf::Vector2f lastViewCenter;
int debugOverlay = 0;

// The part of the world the target shows, for skipping tiles that cannot be seen.
sf::FloatRect VisibleArea(const sf::RenderTarget& target) {
    const sf::View& view = target.getView();
    sf::Vector2f size = view.getSize();
    if (view.getRotation() != 0) {
        float side = std::hypot(size.x, size.y);
        size = {side, side};
    }
    sf::Vector2f center = view.getCenter();
    return sf::FloatRect(center.x - size.x / 2, center.y - size.y / 2, size.x, size.y);
}

void DrawTiles(sf::RenderTarget& target, const RoomLayer& layer, const sf::FloatRect& visible) {
    for (const sf::Sprite& tile : layer.tiles) {
        if (visible.intersects(tile.getGlobalBounds())) target.draw(tile);
    }
}

void DrawLayersNamed(sf::RenderTarget& target, const char* name) {
    sf::FloatRect visible = VisibleArea(target);
    for (const RoomLayer& layer : CurrentRoom().layers) {
        if (layer.name == name) DrawTiles(target, layer, visible);
    }
}

void MoveBackground(Background& background, sf::Vector2f center, sf::Vector2f size,
                    sf::Vector2f shift, int roomNumber) {
    sf::Sprite& sprite = *background.sprite;
    sprite.move(shift.x * background.parallaxX, shift.y * background.parallaxY);
    sf::FloatRect bounds = sprite.getGlobalBounds();
    if (background.loopX) {
        float viewLeft = center.x - size.x / 2;
        if (viewLeft > bounds.left + bounds.width / 2) {
            sprite.setPosition(bounds.left + bounds.width / 2, bounds.top);
        } else if (bounds.left > viewLeft) {
            sprite.setPosition(bounds.left - bounds.width / 2, bounds.top);
        }
    }
    if (background.loopY) {
        if (center.y + size.y / 2 > bounds.top + bounds.height) {
            sprite.setPosition(bounds.left, bounds.top + bounds.height / 2);
        } else if (bounds.top > center.y - size.y / 2) {
            sprite.setPosition(bounds.left, bounds.top - bounds.height / 2);
        }
    }
    if (background.followY) {
        // Tall shafts show their silhouettes lower on the screen.
        float offset = (roomNumber == 12 || roomNumber == 22) ? 270.0f : 540.0f;
        sprite.setPosition(sprite.getPosition().x, center.y - offset);
    }
}

void AdvanceTileAnimation(TileAnimation& animation, float dt) {
    Room& room = CurrentRoom();
    animation.timer += dt;
    while (animation.frameCount > 0 && animation.durations[animation.frame] < animation.timer) {
        animation.timer = 0;
        animation.frame = (animation.frame + 1) % animation.frameCount;
        unsigned id = animation.tileIds[animation.frame];
        unsigned size = animation.tileSize;
        unsigned columns = animation.texture ? animation.texture->getSize().x / size : 1;
        if (columns == 0) columns = 1;
        sf::Sprite& sprite = room.layers[animation.layer].tiles[animation.tile];
        sprite.setTextureRect(sf::IntRect(int((id % columns) * size), int((id / columns) * size),
                                          int(size), int(size)));
    }
}

}  // namespace

sf::Vector2f& LastViewCenter() {
    return lastViewCenter;
}
int& DebugOverlay() {
    return debugOverlay;
}

void DrawRoomBackgrounds(sf::RenderTarget& target) {
    const Room& room = CurrentRoom();
    for (auto it = room.backgrounds.rbegin(); it != room.backgrounds.rend(); ++it) {
        if (!it->sprite) continue;
        // Backgrounds are never tinted: the plain copy fills faster.
        sf::RenderStates states;
        states.shader = PlainTextureShader();
        target.draw(*it->sprite, states);
    }
    DrawLayersNamed(target, "Background");
}

void DrawRoomMiddleLayers(sf::RenderTarget& target) {
    sf::FloatRect visible = VisibleArea(target);
    for (const RoomLayer& layer : CurrentRoom().layers) {
        if (layer.name == "Elevator group") {
            DrawElevatorCabins(target);
        } else if (layer.name != "Background" && layer.name != "Foreground") {
            DrawTiles(target, layer, visible);
        }
    }
}

void DrawRoomForeground(sf::RenderTarget& target) {
    DrawLayersNamed(target, "Foreground");
}

void DrawRoomDebug(sf::RenderTarget& target) {
    if (!debugOverlay) return;
    const Room& room = CurrentRoom();
    for (const Collision& collision : room.collisions) {
        if (collision.active) target.draw(*collision.shape);
    }
    for (const Trigger& trigger : room.triggers) {
        if (trigger.near) target.draw(*trigger.shape);
    }
    for (const TransitionDoor& door : room.transitionDoors) target.draw(*door.shape);
    for (const EnemyContainer& container : room.enemyContainers) target.draw(*container.shape);
    // The stored death zones show too, so a level designer sees every hazard at once.
    for (const DeathZone& zone : room.deathZones) target.draw(*zone.shape);
    DrawElevatorDebug(target);
    if (room.cameraContainer) target.draw(*room.cameraContainer);
    if (room.proximityCircle) target.draw(*room.proximityCircle);
}

void UpdateBackgrounds(const sf::View& view) {
    Room& room = CurrentRoom();
    sf::Vector2f center = view.getCenter();
    if (center != lastViewCenter && !room.backgrounds.empty()) {
        sf::Vector2f shift = center - lastViewCenter;
        for (Background& background : room.backgrounds) {
            if (background.sprite) {
                MoveBackground(background, center, view.getSize(), shift, room.roomNumber);
            }
        }
    }
    lastViewCenter = center;
}

void UpdateRoomProximity(sf::Vector2f center, float radius, float dt) {
    Room& room = CurrentRoom();
    if (room.proximityCircle) room.proximityCircle->setPosition(center);
    if (radius != room.proximityRadius) {
        if (room.proximityCircle) {
            room.proximityCircle->setRadius(radius);
            room.proximityCircle->setOrigin(radius, radius);
        }
        room.proximityRadius = radius;
    }
    for (Trigger& trigger : room.triggers) {
        sf::FloatRect bounds = trigger.shape->getGlobalBounds();
        float dx = bounds.left + bounds.width / 2 - center.x;
        float dy = bounds.top + bounds.height / 2 - center.y;
        float distance = std::sqrt(dx * dx + dy * dy);
        trigger.near = distance < bounds.height / 2 + bounds.width / 2 + room.proximityRadius;
    }
    for (TileAnimation& animation : room.tileAnimations) AdvanceTileAnimation(animation, dt);
}

#include "common/motion.h"

#include <algorithm>
#include <cmath>

#include "common/ease.h"

namespace {

float StepAxis(float value, float target, float step) {
    float difference = target - value;
    if (step > std::fabs(difference)) return target;
    return value + (difference > 0 ? step : -step);
}

sf::Uint8 FadeChannel(sf::Uint8 channel, sf::Uint8 target, float k) {
    if (channel == target) return channel;
    int next = int(k * float(channel) + (1.0f - k) * float(target));
    // Truncation would hold a rising channel short of its target for ever: step on by one.
    if (next == channel) next += target > channel ? 1 : -1;
    return sf::Uint8(next);
}

sf::Uint8 BlendChannel(sf::Uint8 from, sf::Uint8 to, float k) {
    float value = float(from) + (float(to) - float(from)) * k;
    return sf::Uint8(std::clamp(value, 0.0f, 255.0f));
}

}  // namespace

int MoveSpriteTowards(sf::Transformable& sprite, sf::Vector2f target, float speed, float dt,
                      int straight) {
    sf::Vector2f position = sprite.getPosition();
    if (speed == 0) {
        position = target;
    } else if (straight) {
        float step = speed * dt;
        double dx = double(target.x) - position.x;
        double dy = double(target.y) - position.y;
        double distance = std::sqrt(dx * dx + dy * dy);
        if (step > distance) {
            position = target;
        } else {
            position.x += float(dx / distance * step);
            position.y += float(dy / distance * step);
        }
    } else {
        float step = speed * dt;
        position = {StepAxis(position.x, target.x, step), StepAxis(position.y, target.y, step)};
    }
    sprite.setPosition(position);
    return std::fabs(position.x - target.x) < 0.5f && std::fabs(position.y - target.y) < 0.5f;
}

int RotateSpriteTowards(sf::Transformable& sprite, float targetAngle, float speed, float dt) {
    if (speed == 0) {
        sprite.setRotation(targetAngle);
    } else {
        float step = speed * dt;
        float difference = targetAngle - sprite.getRotation();
        if (difference > 180) {
            difference -= 360;
        } else if (difference < -180) {
            difference += 360;
        }
        if (step > std::fabs(difference)) {
            sprite.setRotation(targetAngle);
        } else {
            sprite.rotate(difference > 0 ? step : -step);
        }
    }
    return std::fabs(sprite.getRotation() - targetAngle) < 0.5f;
}

int FadeSpriteColor(sf::Sprite& sprite, sf::Color target, float dt, float rate) {
    float k = std::exp(-rate * dt / 100.0f);
    sf::Color color = sprite.getColor();
    color.r = FadeChannel(color.r, target.r, k);
    color.g = FadeChannel(color.g, target.g, k);
    color.b = FadeChannel(color.b, target.b, k);
    color.a = FadeChannel(color.a, target.a, k);
    sprite.setColor(color);
    return color == target;
}

void StartTween(Tween& tween, sf::Vector2f from, float duration, int easing) {
    tween = Tween();
    tween.from = from;
    tween.duration = duration;
    tween.easing = easing;
    tween.started = 1;
}

int StepTween(Tween& tween, sf::Vector2f& value, sf::Vector2f goal, float duration, int easing,
              float dt) {
    if (!tween.started) StartTween(tween, value, duration, easing);
    if (value.x == goal.x) tween.from.x = goal.x;
    if (value.y == goal.y) tween.from.y = goal.y;
    if (duration == 0) value = goal;
    if (tween.elapsed >= tween.duration) return 1;
    tween.elapsed += dt;
    float progress = std::min(1.0f, tween.elapsed / tween.duration);
    value = tween.from + (goal - tween.from) * Ease(tween.easing, progress);
    return progress >= 1 ? 1 : 0;
}

int TweenShapeScale(sf::Transformable& shape, sf::Vector2f targetScale, float duration, float dt,
                    Tween& tween) {
    sf::Vector2f scale = shape.getScale();
    int done = StepTween(tween, scale, targetScale, duration, EASE_CUBIC_IN_OUT, dt);
    shape.setScale(scale);
    return done;
}

int TweenPosition(sf::Transformable& object, sf::Vector2f goal, float duration, int easing,
                  float dt, Tween& tween) {
    sf::Vector2f position = object.getPosition();
    int done = StepTween(tween, position, goal, duration, easing, dt);
    object.setPosition(position);
    return done;
}

bool TweenDone(const Tween& tween) {
    return tween.started && tween.elapsed >= tween.duration;
}

int StepColorTween(ColorTween& tween, sf::Color& value, sf::Color goal, float duration, int easing,
                   float dt) {
    if (!tween.started) tween = ColorTween{0, 1, value};
    tween.elapsed += dt;
    float k = duration <= 0 ? 1.0f : Ease(easing, std::min(1.0f, tween.elapsed / duration));
    const sf::Color& a = tween.from;
    value = {BlendChannel(a.r, goal.r, k), BlendChannel(a.g, goal.g, k),
             BlendChannel(a.b, goal.b, k), BlendChannel(a.a, goal.a, k)};
    return tween.elapsed >= duration ? 1 : 0;
}

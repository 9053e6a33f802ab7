#include "world/camera.h"

#include <algorithm>
#include <cmath>
#include <cstdlib>

#include "common/ease.h"
#include "common/log.h"
#include "world/room.h"

namespace {

Camera camera;
ScreenFade fade;

const char* const kNoContainer = "Camera container is not set !\n";

float Length(sf::Vector2f v) {
    return std::sqrt(v.x * v.x + v.y * v.y);
}

sf::FloatRect RectAround(sf::Vector2f center, sf::Vector2f size) {
    return sf::FloatRect(center.x - size.x / 2, center.y - size.y / 2, size.x, size.y);
}

sf::Vector2f CenterOf(const sf::FloatRect& rect) {
    return {rect.left + rect.width / 2, rect.top + rect.height / 2};
}

float AxisShift(float containerStart, float containerSize, float start, float size) {
    float shift = 0;
    if (containerSize >= size && containerStart > start) shift = containerStart - start;
    if (start + size > containerStart + containerSize) {
        shift += (containerStart + containerSize) - (start + size);
    }
    return shift;
}

// The view's centre moved onto the container, when the rectangle around it leaves it.
sf::Vector2f ClampCenter(sf::Vector2f center, sf::Vector2f size) {
    sf::FloatRect moved;
    if (!ClampRectToContainer(RectAround(center, size), moved)) return CenterOf(moved);
    return center;
}

void FollowRotation() {
    sf::View& view = *camera.view;
    float rotation = view.getRotation();
    float target = camera.targetRotation;
    float firstGap = std::fabs(target - rotation);
    float step = firstGap / 100.0f;
    if (step == 0) {
        view.setRotation(target);
        return;
    }
    if (std::fabs(target - rotation) > 180) target += (target - rotation > 0) ? -360.0f : 360.0f;
    if (rotation > target - step && rotation < target + step) {
        view.setRotation(camera.targetRotation);
    } else {
        view.rotate(target > rotation ? step : -step);
    }
    if (firstGap < 1) view.setRotation(camera.targetRotation);
}

void FollowSize() {
    sf::View& view = *camera.view;
    sf::Vector2f size = view.getSize();
    sf::Vector2f target = camera.targetSize;
    float step = std::fabs(size.x - target.x) / 100.0f;
    if (step == 0) {
        view.setSize(target);
        return;
    }
    sf::Vector2f gap = target - size;
    float gapLength = Length(gap);
    if (step <= gapLength) view.setSize(size + gap / gapLength * step);
    if (std::fabs(size.x - target.x) < 1) view.setSize(target);
}

// The rotation and size halves of a blend; returns 1 when the size tween has ended.
void TweenRotation(float dt, float destination) {
    Tween& tween = camera.rotationTween;
    sf::View& view = *camera.view;
    if (!tween.started) {
        tween.elapsed = 0;
        tween.from.x = view.getRotation();
        tween.duration = camera.blendDuration;
        tween.easing = camera.rotationEasing;
        tween.started = 1;
    }
    if (camera.blendDuration == 0) view.setRotation(destination);
    if (tween.elapsed < tween.duration) {
        tween.elapsed += dt;
        float progress = std::min(1.0f, tween.elapsed / tween.duration);
        if (destination - tween.from.x > 180) destination -= 360;
        if (destination - tween.from.x < -180) destination += 360;
        view.setRotation(tween.from.x +
                         Ease(tween.easing, progress) * (destination - tween.from.x));
    }
}

int TweenSize(float dt, sf::Vector2f destination) {
    Tween& tween = camera.sizeTween;
    sf::View& view = *camera.view;
    sf::Vector2f size = view.getSize();
    if (!tween.started) {
        tween.elapsed = 0;
        tween.from = size;
        tween.duration = camera.blendDuration;
        tween.easing = camera.sizeEasing;
        tween.started = 1;
    }
    if (size.x == destination.x) tween.from.x = size.x;
    if (size.y == destination.y) tween.from.y = size.y;
    if (camera.blendDuration == 0) view.setSize(destination);
    if (tween.elapsed >= tween.duration) return 1;
    tween.elapsed += dt;
    float progress = std::min(1.0f, tween.elapsed / tween.duration);
    view.setSize(tween.from + (destination - tween.from) * Ease(tween.easing, progress));
    return progress >= 1 ? 1 : 0;
}

void UpdateBossFocus(float dt, sf::Vector2f followCenter) {
    sf::Vector2f size = camera.view->getSize();
    camera.focusPoint = ClampCenter(camera.focusPoint, size);
    switch (camera.focusPhase) {
        case 0:
            if (MoveViewTo(*camera.view, camera.focusPanDuration, camera.focusPoint, dt,
                           camera.focusTween, EASE_CUBIC_IN_OUT)) {
                camera.focusPhase = 1;
                camera.focusTween = Tween();
            }
            break;
        case 1:
            if (camera.focusTimer < camera.focusHold) camera.focusTimer += dt;
            if (camera.focusTimer >= camera.focusHold) camera.focusPhase = 2;
            break;
        case 2:
            if (MoveViewTo(*camera.view, camera.focusPanDuration, followCenter, dt,
                           camera.focusTween, EASE_CUBIC_IN_OUT)) {
                camera.focusActive = 0;
                camera.focusPoint = {0, 0};
                camera.focusPhase = 0;
                camera.focusPanDuration = camera.focusHold = camera.focusTimer = 0;
                camera.focusTween = Tween();
                camera.mode = CAMERA_FOLLOW;
            }
            break;
        default: break;
    }
}

}  // namespace

Camera& GameCamera() {
    return camera;
}
ScreenFade& Fade() {
    return fade;
}

void CreateCamera(sf::Vector2f center) {
    camera = Camera();
    camera.view = std::make_unique<sf::View>(center, sf::Vector2f(1920, 1080));
    camera.targetSize = {1920, 1080};
    camera.mode = CAMERA_BLEND;
    camera.blendTarget = CAMERA_FOLLOW;
    camera.blendDuration = 0;
}

void DestroyCamera() {
    camera = Camera();
}

void UpdateCamera(float dt, sf::Vector2f target) {
    if (!camera.view) return;
    sf::Vector2f size = camera.view->getSize();
    sf::Vector2f desired = ClampCenter({target.x, target.y - 0.14f * size.y}, size);
    if (camera.focusActive) {
        UpdateBossFocus(dt, desired);
        return;
    }
    switch (camera.mode) {
        case CAMERA_FOLLOW: FollowTarget(desired); break;
        case CAMERA_FIXED: camera.view->setCenter(camera.fixedCenter); break;
        case CAMERA_BLEND: BlendCamera(dt, desired); break;
        default: break;
    }
    if (camera.shake && camera.shakeAmplitude > 0) {
        int half = camera.shakeAmplitude / 2;
        sf::Vector2f base = camera.mode == CAMERA_FOLLOW ? camera.view->getCenter() : desired;
        int r1 = std::rand(), r2 = std::rand();
        camera.view->setCenter(base.x + float(r1 % camera.shakeAmplitude - half),
                               base.y + float(r2 % camera.shakeAmplitude - half));
    }
}

void FollowTarget(sf::Vector2f goal) {
    sf::View& view = *camera.view;
    sf::Vector2f center = view.getCenter();
    if (!camera.followX) goal.x = center.x;
    if (!camera.followY) goal.y = center.y;
    sf::Vector2f away = center - goal;
    float distance = Length(away);
    if (distance > 100.01f) {
        view.setCenter(goal + away * (100.0f / distance));
        camera.centerTween = Tween();
    } else if (distance > 7) {
        float step = distance * 3.0f / 100.0f;
        auto approach = [step](float value, float target) {
            if (value > target - step && value < target + step) return target;
            return value + (target > value ? step : -step);
        };
        view.setCenter(approach(center.x, goal.x), approach(center.y, goal.y));
    }
    FollowRotation();
    FollowSize();
}

void BlendCamera(float dt, sf::Vector2f followCenter) {
    sf::Vector2f center, size;
    float rotation = 0;
    if (camera.blendTarget == CAMERA_FOLLOW) {
        center = followCenter;
        rotation = camera.targetRotation;
        size = camera.targetSize;
    } else if (camera.blendTarget == CAMERA_FIXED) {
        center = camera.fixedCenter;
        rotation = camera.fixedRotation;
        size = camera.fixedSize;
    }
    if (camera.blendTarget == CAMERA_FOLLOW && camera.centerTween.elapsed == 0) {
        FollowTarget(followCenter);
    }
    if (camera.blendMovesCenter || camera.blendTarget != CAMERA_FOLLOW) {
        MoveViewTo(*camera.view, camera.blendDuration, center, dt, camera.centerTween,
                   camera.centerEasing);
    }
    TweenRotation(dt, rotation);
    if (TweenSize(dt, size)) {
        camera.mode = camera.blendTarget;
        camera.blendMovesCenter = 0;
        camera.centerTween = camera.rotationTween = camera.sizeTween = Tween();
    }
}

int MoveViewTo(sf::View& view, float duration, sf::Vector2f destination, float dt, Tween& tween,
               int easing) {
    sf::Vector2f center = view.getCenter();
    if (!tween.started) StartTween(tween, center, duration, easing);
    // Already there: the move has nothing left to do.
    if (center == destination) tween.elapsed = tween.duration;
    int done = StepTween(tween, center, destination, duration, easing, dt);
    view.setCenter(center);
    return done;
}

int ClampRectToContainer(const sf::FloatRect& rect, sf::FloatRect& out) {
    sf::FloatRect container;
    if (CurrentRoom().cameraContainer) {
        container = CurrentRoom().cameraContainer->getGlobalBounds();
    } else {
        Log("%s", kNoContainer);
    }
    float dx = AxisShift(container.left, container.width, rect.left, rect.width);
    float dy = AxisShift(container.top, container.height, rect.top, rect.height);
    out = sf::FloatRect(rect.left + dx, rect.top + dy, rect.width, rect.height);
    return dx == 0 && dy == 0;
}

void ClampViewToContainer() {
    if (!camera.view) return;
    sf::FloatRect view = RectAround(camera.view->getCenter(), camera.view->getSize());
    sf::FloatRect moved;
    ClampRectToContainer(view, moved);
    camera.view->move(moved.left - view.left, moved.top - view.top);
}

sf::Vector2f FitViewSize(sf::Vector2f size) {
    sf::Vector2f view = camera.view->getSize();
    float sx = view.x == 0 ? 0 : size.x / view.x;
    float sy = view.y == 0 ? 0 : size.y / view.y;
    float s = std::min(sx, sy);
    return view * s;
}

void StartBossFocus(sf::Vector2f point) {
    if (camera.focusActive) return;
    camera.mode = CAMERA_BLEND;
    camera.focusPanDuration = 2.0f;
    camera.focusPhase = 0;
    camera.focusTimer = 0;
    camera.focusHold = 2.0f;
    camera.focusActive = 1;
    camera.focusPoint = point;
}

void SettleCameraOn(sf::Vector2f feet) {
    if (!camera.view) return;
    camera.focusActive = 0;
    camera.focusPhase = 0;
    camera.focusTimer = 0;
    camera.focusTween = camera.centerTween = camera.rotationTween = camera.sizeTween = Tween();
    camera.mode = CAMERA_FOLLOW;
    camera.blendMovesCenter = 0;
    camera.targetRotation = 0;
    camera.view->setRotation(0);
    sf::Vector2f size = camera.view->getSize();
    camera.view->setCenter(feet.x, feet.y - 0.14f * size.y);
    ClampViewToContainer();
}

void CreateScreenFade() {
    fade = ScreenFade();
    fade.shape = std::make_unique<sf::RectangleShape>(sf::Vector2f(1, 1));
    fade.shape->setOrigin(0.5f, 0.5f);
    fade.shape->setFillColor(sf::Color(0, 0, 0, 0));
    fade.direction = FADE_TO_CLEAR;
    fade.done = 1;
    fade.started = 1;
}

void DestroyScreenFade() {
    fade = ScreenFade();
}

void StartScreenFade(int direction, float duration) {
    fade.direction = direction;
    fade.duration = duration;
    fade.elapsed = 0;
    fade.started = 0;
    fade.length = 0;
    fade.done = 0;
}

void UpdateScreenFade(sf::Vector2f center, sf::Vector2f size, float dt) {
    if (!fade.shape) return;
    fade.shape->setSize(size);
    fade.shape->setOrigin(size.x / 2, size.y / 2);
    fade.shape->setPosition(center);
    sf::Color target =
        fade.direction == FADE_TO_BLACK ? sf::Color(0, 0, 0, 255) : sf::Color(0, 0, 0, 0);
    if (fade.direction == FADE_TO_BLACK) fade.done = 0;
    if (!fade.started) {
        fade.elapsed = 0;
        fade.startColor = fade.shape->getFillColor();
        fade.length = fade.duration;
        fade.started = 1;
        fade.easing = fade.direction == FADE_TO_BLACK ? EASE_CUBIC_OUT : EASE_CUBIC_IN;
    }
    if (fade.duration == 0) fade.shape->setFillColor(target);
    if (fade.elapsed < fade.length) {
        fade.elapsed += dt;
        float progress = std::min(1.0f, fade.elapsed / fade.length);
        float eased = Ease(fade.easing, progress);
        auto channel = [eased](sf::Uint8 from, sf::Uint8 to) {
            float value = float(from) + eased * (float(to) - float(from));
            return sf::Uint8(std::clamp(value, 0.0f, 255.0f));
        };
        sf::Color start = fade.startColor;
        fade.shape->setFillColor(sf::Color(channel(start.r, target.r), channel(start.g, target.g),
                                           channel(start.b, target.b), channel(start.a, target.a)));
        if (progress < 1) return;
    }
    fade.done = 1;
}

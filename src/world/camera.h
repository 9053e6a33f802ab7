// The game view: follows the hero a little above the feet with a soft lag, stays inside the
// room's camera container, blends between framings, pans to a boss, shakes; and the full-screen
// fade that room changes use.
#pragma once

#include <SFML/Graphics.hpp>
#include <memory>

#include "common/motion.h"

enum CameraMode { CAMERA_FOLLOW = 0, CAMERA_FIXED = 1, CAMERA_BLEND = 2 };

struct Camera {
    std::unique_ptr<sf::View> view;
    int mode = CAMERA_FOLLOW;
    int blendTarget = 0;
    sf::Vector2f fixedCenter;
    float fixedRotation = 0;
    sf::Vector2f fixedSize;
    float targetRotation = 0;
    sf::Vector2f targetSize;
    int blendMovesCenter = 0;
    float blendDuration = 0;
    int centerEasing = 0, sizeEasing = 0, rotationEasing = 0;
    Tween centerTween, rotationTween, sizeTween;
    int shake = 0;
    int shakeAmplitude = 0;
    int followX = 1, followY = 1;
    int focusActive = 0;
    sf::Vector2f focusPoint;
    int focusPhase = 0;
    float focusPanDuration = 0, focusHold = 0, focusTimer = 0;
    Tween focusTween;
};

enum FadeDirection { FADE_TO_BLACK = 0, FADE_TO_CLEAR = 1 };

struct ScreenFade {
    std::unique_ptr<sf::RectangleShape> shape;
    int direction = FADE_TO_CLEAR;
    float duration = 0;
    float elapsed = 0;
    int started = 0;
    int easing = 0;
    sf::Color startColor;
    float length = 0;
    int done = 1;
};

Camera& GameCamera();
ScreenFade& Fade();

// Creates the view centred on a point at the normal 1920 x 1080 size, with the start values.
void CreateCamera(sf::Vector2f center);
void DestroyCamera();

void UpdateCamera(float dt, sf::Vector2f target);
void FollowTarget(sf::Vector2f goal);
void BlendCamera(float dt, sf::Vector2f followCenter);
int MoveViewTo(sf::View& view, float duration, sf::Vector2f destination, float dt, Tween& tween,
               int easing);
// The rectangle moved to lie in the camera container (a container smaller than the rectangle
// aligns its right or bottom edge); returns 1 when no move was needed.
int ClampRectToContainer(const sf::FloatRect& rect, sf::FloatRect& out);
void ClampViewToContainer();
// The view's size scaled to the largest size with its proportions that fits `size`.
sf::Vector2f FitViewSize(sf::Vector2f size);
void StartBossFocus(sf::Vector2f point);
// Ends any blend or boss pan and puts the view straight where following the hero's feet leads,
// inside the container (a hero set down in a new room without walking in).
void SettleCameraOn(sf::Vector2f feet);

// The fade rectangle: black, covering the view, done (no fade running).
void CreateScreenFade();
void DestroyScreenFade();
// Starts a fade towards black (FADE_TO_BLACK) or towards clear.
void StartScreenFade(int direction, float duration);
void UpdateScreenFade(sf::Vector2f center, sf::Vector2f size, float dt);

// Easing curves indexed by number, used by tweens and camera blends.
#pragma once

enum EaseKind {
    EASE_LINEAR = 0,
    EASE_CUBIC_IN = 1,
    EASE_CUBIC_OUT = 2,
    EASE_CUBIC_IN_OUT = 3,
    EASE_BOUNCE_IN = 4,
    EASE_BOUNCE_OUT = 5,
    EASE_BOUNCE_IN_OUT = 6,
    EASE_ELASTIC_IN = 7,
    EASE_ELASTIC_OUT = 8,
    EASE_ELASTIC_IN_OUT = 9,
    EASE_BACK_IN_OUT = 10,
};

float BounceOut(float t);
// t in [0, 1]; an unknown kind gives 0.
float Ease(int kind, float t);

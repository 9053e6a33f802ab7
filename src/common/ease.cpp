#include "common/ease.h"

#include <cmath>

float BounceOut(float t) {
    const float n = 7.5625f;
    if (t < 0.36363637f) return n * t * t;
    if (t < 0.72727275f) {
        t -= 0.54545456f;
        return n * t * t + 0.75f;
    }
    if (t < 0.90909094f) {
        t -= 0.8181818f;
        return n * t * t + 0.9375f;
    }
    t -= 0.95454544f;
    return n * t * t + 0.984375f;
}

namespace {

float ElasticIn(float t) {
    if (t == 0.0f || t == 1.0f) return t;
    return -powf(2.0f, 10.0f * t - 10.0f) * sinf((10.0f * t - 10.75f) * 2.0943952f);
}

float ElasticOut(float t) {
    if (t == 0.0f || t == 1.0f) return t;
    return powf(2.0f, -10.0f * t) * sinf((10.0f * t - 0.75f) * 2.0943952f) + 1.0f;
}

float ElasticInOut(float t) {
    if (t == 0.0f || t == 1.0f) return t;
    float wave = sinf((20.0f * t - 11.125f) * 1.3962635f);
    if (t < 0.5f) return -(powf(2.0f, 20.0f * t - 10.0f) * wave) / 2.0f;
    return powf(2.0f, 10.0f - 20.0f * t) * wave / 2.0f + 1.0f;
}

float BackInOut(float t) {
    if (t < 0.5f) return (2.0f * t) * (2.0f * t) * (7.1898189f * t - 2.5949094f) / 2.0f;
    float u = 2.0f * t - 2.0f;
    return (u * u * (3.5949094f * u + 2.5949094f) + 2.0f) / 2.0f;
}

}  // namespace

float Ease(int kind, float t) {
    switch (kind) {
        case EASE_LINEAR: return t;
        case EASE_CUBIC_IN: return t * t * t;
        case EASE_CUBIC_OUT: return 1.0f - (1.0f - t) * (1.0f - t) * (1.0f - t);
        case EASE_CUBIC_IN_OUT: {
            if (t < 0.5f) return 4.0f * t * t * t;
            float u = 2.0f - 2.0f * t;
            return 1.0f - u * u * u / 2.0f;
        }
        case EASE_BOUNCE_IN: return 1.0f - BounceOut(1.0f - t);
        case EASE_BOUNCE_OUT: return BounceOut(t);
        case EASE_BOUNCE_IN_OUT:
            return t < 0.5f ? (1.0f - BounceOut(1.0f - 2.0f * t)) / 2.0f
                            : (1.0f + BounceOut(2.0f * t - 1.0f)) / 2.0f;
        case EASE_ELASTIC_IN: return ElasticIn(t);
        case EASE_ELASTIC_OUT: return ElasticOut(t);
        case EASE_ELASTIC_IN_OUT: return ElasticInOut(t);
        case EASE_BACK_IN_OUT: return BackInOut(t);
        default: return 0.0f;
    }
}

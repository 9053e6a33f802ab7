#include "media/animation.h"

#include <algorithm>
#include <cstdint>
#include <string>

#include "common/log.h"

namespace {

// The largest picture side, frame count and frame rate a file may give; beyond, a value reads as
// a line that does not match (0), reported.
constexpr int kMaxPixels = 16384;
constexpr unsigned kMaxFrames = 4096;
constexpr unsigned kMaxFrameRate = 240;

int ClampToInt(int64_t value) {
    return int(std::clamp<int64_t>(value, INT32_MIN, INT32_MAX));
}

bool ReadPoint(std::FILE* file, const char* format, sf::Vector2i& point) {
    point = {0, 0};
    if (std::fscanf(file, format, &point.x, &point.y) != 2) return false;
    if (point.x >= 0 && point.x <= kMaxPixels && point.y >= 0 && point.y <= kMaxPixels) return true;
    LogError("Animation data: (%d,%d) is out of range, read as (0,0)\n", point.x, point.y);
    point = {0, 0};
    return false;
}

}  // namespace

void UpdateAnimation(Animation& animation, float dt) {
    if (animation.paused || !animation.sprite) return;
    animation.timer += dt;
    float frameDuration = 1.0f / float(animation.frameRate);
    while (animation.timer > frameDuration) {
        animation.currentFrame++;
        animation.timer -= frameDuration;
        if (unsigned(animation.currentFrame) >= animation.frameCount) {
            if (animation.loop) {
                animation.currentFrame = 0;
                continue;
            }
            animation.finished = 1;
            animation.currentFrame = int(animation.frameCount) - 1;
            break;
        }
    }
    // In 64 bits and by division, so that no frame number or sheet size can overflow or spin.
    const sf::IntRect& frame = animation.frameRect;
    int64_t left = int64_t(animation.currentFrame) * frame.width + frame.left;
    int64_t top = frame.top;
    int64_t sheetWidth = animation.sheetSize.x;
    if (sheetWidth != 0 && animation.sheetSize.y != 0 && left + frame.width > sheetWidth) {
        int64_t rows = (left + frame.width - sheetWidth + sheetWidth - 1) / sheetWidth;
        left -= rows * sheetWidth;
        top += rows * frame.height;
    }
    animation.sprite->setTextureRect(
        sf::IntRect(ClampToInt(left), ClampToInt(top), frame.width, frame.height));
}

void RestartAnimation(Animation& animation) {
    animation.currentFrame = 0;
    animation.timer = 0;
    animation.finished = 0;
}

bool ReadAnimSize(std::FILE* file, sf::Vector2i& size) {
    return ReadPoint(file, " size : (%d,%d) ", size);
}

bool ReadAnimFirstFrame(std::FILE* file, sf::Vector2i& position) {
    return ReadPoint(file, " first Frame Position : (%d,%d) ", position);
}

void ReadAnimClip(std::FILE* file, const char* label, Animation& clip, sf::Vector2i frameSize,
                  sf::Vector2i firstFrame, int row) {
    std::string format = std::string(" ") + label + " | NbFrame : %u / FrameRate : %u";
    clip.frameCount = 0;
    clip.frameRate = 0;
    [[maybe_unused]] int read =
        std::fscanf(file, format.c_str(), &clip.frameCount, &clip.frameRate);
    if (clip.frameCount > kMaxFrames || clip.frameRate > kMaxFrameRate) {
        LogError("Animation data: %s has %u frames at %u per second, out of range, read as 0\n",
                 label, clip.frameCount, clip.frameRate);
        clip.frameCount = 0;
        clip.frameRate = 0;
    }
    clip.frameRect =
        sf::IntRect(firstFrame.x, firstFrame.y + row * frameSize.y, frameSize.x, frameSize.y);
    clip.currentFrame = 0;
    clip.timer = 0;
    clip.finished = 0;
    clip.paused = 0;
    if (clip.sprite && clip.sprite->getTexture())
        clip.sheetSize = clip.sprite->getTexture()->getSize();
}

int ReadAnimTail(std::FILE* file, const char* format) {
    int value = 0;
    if (std::fscanf(file, format, &value) != 1) return 0;
    return value;
}

bool ReadAnimData(const char* path, std::span<const AnimClipSpec> specs, AnimData& data,
                  const std::function<void(std::FILE*, int)>& extra) {
    std::FILE* file = std::fopen(path, "r");
    if (!file) return false;
    ReadAnimData(file, specs, data, extra);
    std::fclose(file);
    return true;
}

void ReadAnimData(std::FILE* file, std::span<const AnimClipSpec> specs, AnimData& data,
                  const std::function<void(std::FILE*, int)>& extra) {
    ReadAnimSize(file, data.frameSize);
    ReadAnimFirstFrame(file, data.firstFrame);
    if (extra) extra(file, -1);
    data.clips.assign(specs.size(), Animation());
    data.damageFrames.assign(specs.size(), 0);
    for (size_t i = 0; i < specs.size(); i++) {
        Animation& clip = data.clips[i];
        ReadAnimClip(file, specs[i].label, clip, data.frameSize, data.firstFrame, int(i));
        clip.loop = specs[i].loop;
        if (specs[i].damageTail) data.damageFrames[i] = ReadAnimTail(file, specs[i].damageTail);
        if (extra) extra(file, int(i));
    }
}

void BindClips(std::vector<Animation>& clips, sf::Sprite* sprite, sf::Vector2u sheetSize) {
    for (Animation& clip : clips) {
        clip.sprite = sprite;
        clip.sheetSize = sheetSize;
    }
}

sf::Vector2u SheetSize(const sf::Sprite* sprite) {
    return sprite && sprite->getTexture() ? sprite->getTexture()->getSize() : sf::Vector2u();
}

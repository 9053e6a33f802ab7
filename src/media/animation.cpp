#include "media/animation.h"

#include <string>

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
    const sf::IntRect& frame = animation.frameRect;
    int left = animation.currentFrame * frame.width + frame.left;
    int top = frame.top;
    if (animation.sheetSize.x != 0 && animation.sheetSize.y != 0) {
        while (float(left + frame.width) > float(animation.sheetSize.x)) {
            left -= int(animation.sheetSize.x);
            top += frame.height;
        }
    }
    animation.sprite->setTextureRect(sf::IntRect(left, top, frame.width, frame.height));
}

void RestartAnimation(Animation& animation) {
    animation.currentFrame = 0;
    animation.timer = 0;
    animation.finished = 0;
}

bool ReadAnimSize(std::FILE* file, sf::Vector2i& size) {
    size = {0, 0};
    return std::fscanf(file, " size : (%d,%d) ", &size.x, &size.y) == 2;
}

bool ReadAnimFirstFrame(std::FILE* file, sf::Vector2i& position) {
    position = {0, 0};
    return std::fscanf(file, " first Frame Position : (%d,%d) ", &position.x, &position.y) == 2;
}

void ReadAnimClip(std::FILE* file, const char* label, Animation& clip, sf::Vector2i frameSize,
                  sf::Vector2i firstFrame, int row) {
    std::string format = std::string(" ") + label + " | NbFrame : %u / FrameRate : %u";
    clip.frameCount = 0;
    clip.frameRate = 0;
    [[maybe_unused]] int read =
        std::fscanf(file, format.c_str(), &clip.frameCount, &clip.frameRate);
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
    std::fclose(file);
    return true;
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

// An animation data file against any bytes, read in memory by the reader's own code: the hero's
// layout of clips is read, then every clip is played on sheets of a few sizes, as the game would,
// for short and long frames. One input in sixteen is also read from a real file.
#include <array>
#include <cstdio>

#include "fuzz/fuzz_support.h"
#include "media/animation.h"

namespace {

constexpr const char* kDamage = " / DAMAGE FRAME : %d";

const std::array<AnimClipSpec, 6> kClips = {{
    {"IDLE", 1},
    {"WALK", 1},
    {"LIGHT ATTACK_1", 0, kDamage},
    {"HEAVY ATTACK_WAIT", 1},
    {"DEAD", 0},
    {"PARRY", 0},
}};

// What a sheet adds to the common format: a point after the header and one after the parry.
void ExtraPoints(std::FILE* file, int clip) {
    int x = 0, y = 0;
    if (clip == -1) {
        [[maybe_unused]] int read = std::fscanf(file, " projectile position : (%d,%d)", &x, &y);
    } else if (clip == 5) {
        [[maybe_unused]] int read =
            std::fscanf(file, " / PARRY IMPACT FX POSITIOJN ( %d,%d)", &x, &y);
    }
}

void Play(Animation clip, sf::Sprite& sprite, sf::Vector2u sheet) {
    clip.sprite = &sprite;
    clip.sheetSize = sheet;
    for (float dt : {0.016f, 0.35f, 0.016f, 5.0f, 0.2f}) {
        UpdateAnimation(clip, dt);
        if (clip.frameCount > 0) {
            Require(unsigned(clip.currentFrame) < clip.frameCount,
                    "a clip shows one of its frames");
        }
    }
}

bool SameData(const AnimData& a, const AnimData& b) {
    if (a.frameSize != b.frameSize || a.firstFrame != b.firstFrame ||
        a.damageFrames != b.damageFrames || a.clips.size() != b.clips.size()) {
        return false;
    }
    for (size_t i = 0; i < a.clips.size(); i++) {
        const Animation &x = a.clips[i], &y = b.clips[i];
        if (x.frameCount != y.frameCount || x.frameRate != y.frameRate ||
            x.frameRect != y.frameRect || x.loop != y.loop) {
            return false;
        }
    }
    return true;
}

// One input in sixteen is also read from a real file, which must read the same.
void ThroughTheFile(const uint8_t* data, size_t size, const AnimData& read) {
    EnterScratchFolder();
    WriteBytes("AnimData.txt", data, size);
    AnimData anim;
    Require(ReadAnimData("AnimData.txt", kClips, anim, ExtraPoints), "an existing file is read");
    Require(SameData(anim, read), "the file reads as the same text in memory");
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    AnimData anim;
    {
        MemoryFile file(data, size);
        ReadAnimData(file.get(), kClips, anim, ExtraPoints);
    }
    Require(anim.clips.size() == kClips.size() && anim.damageFrames.size() == kClips.size(),
            "one clip and one damage frame per label");
    sf::Sprite sprite;
    for (const Animation& clip : anim.clips) {
        for (sf::Vector2u sheet :
             {sf::Vector2u(0, 0), sf::Vector2u(1, 1), sf::Vector2u(768, 1440)}) {
            Play(clip, sprite, sheet);
        }
    }
    if (SampledForFiles(data, size)) ThroughTheFile(data, size, anim);
    return 0;
}

// Sprite-sheet clips: one row of frames per clip, advanced by time.
#pragma once

#include <SFML/Graphics.hpp>
#include <cstdio>
#include <functional>
#include <span>
#include <vector>

struct Animation {
    sf::Sprite* sprite = nullptr;  // shared by every clip of an entity; not owned
    sf::Vector2u sheetSize;        // the sprite's texture size when the clip was loaded
    unsigned frameCount = 0;
    unsigned frameRate = 0;
    sf::IntRect frameRect;  // frame 0
    int loop = 0;
    int currentFrame = 0;
    float timer = 0;
    int finished = 0;
    int paused = 0;
};

// Advances the clip by dt seconds and shows the current frame on the sprite. A clip longer than
// its row continues on the next row down.
void UpdateAnimation(Animation& animation, float dt);

// Restarts a clip from its first frame.
void RestartAnimation(Animation& animation);

// Reading animation data files (text, formatted scanning; blanks match any white space). A value
// beyond what a sheet can hold (sides and positions 0..16384, 4096 frames, 240 per second) is
// reported and reads as 0, like a line that does not match.
// "size : (w,h)"; false when the line does not match (the values then stay 0).
bool ReadAnimSize(std::FILE* file, sf::Vector2i& size);
// "first Frame Position : (x,y)".
bool ReadAnimFirstFrame(std::FILE* file, sf::Vector2i& position);
// "<label> | NbFrame : n / FrameRate : r": fills the clip's counts (0 when unread) and lays the
// clip out as row `row` of its section.
void ReadAnimClip(std::FILE* file, const char* label, Animation& clip, sf::Vector2i frameSize,
                  sf::Vector2i firstFrame, int row);
// A clip's tail such as " / Damage Frame : %d"; the number, or 0 when it does not match.
int ReadAnimTail(std::FILE* file, const char* format);

// One clip of an animation data file: its label, whether it loops, and the tail that carries its
// damage frame (a scanf format with one %d), if it has one.
struct AnimClipSpec {
    const char* label;
    int loop;
    const char* damageTail = nullptr;
};

// What an animation data file holds: the frame size, the first frame's position, one clip per
// spec (clip i lays out row i) and each clip's damage frame (0 without one).
struct AnimData {
    sf::Vector2i frameSize;
    sf::Vector2i firstFrame;
    std::vector<Animation> clips;
    std::vector<int> damageFrames;
};

// Reads a whole animation data file. `extra` reads what a sheet adds to the common format: it is
// called with -1 after the header and with each clip's index after that clip's line. False when
// the file cannot be opened (nothing is read).
bool ReadAnimData(const char* path, std::span<const AnimClipSpec> specs, AnimData& data,
                  const std::function<void(std::FILE*, int)>& extra = {});
// The same from an open file (or text in memory).
void ReadAnimData(std::FILE* file, std::span<const AnimClipSpec> specs, AnimData& data,
                  const std::function<void(std::FILE*, int)>& extra = {});
// The size of the sheet a sprite shows (0 x 0 without a texture).
sf::Vector2u SheetSize(const sf::Sprite* sprite);
// Binds copies of the clips to a sprite showing a sheet of `sheetSize`.
void BindClips(std::vector<Animation>& clips, sf::Sprite* sprite, sf::Vector2u sheetSize);

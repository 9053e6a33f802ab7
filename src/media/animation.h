// Sprite-sheet clips: one row of frames per clip, advanced by time.
#pragma once

#include <SFML/Graphics.hpp>
#include <cstdio>

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

// Reading animation data files (text, formatted scanning; blanks match any white space).
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

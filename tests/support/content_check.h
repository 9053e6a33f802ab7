// Checks of the generated content under Assets/: animation sheets against their data files, and
// sounds against the format the game needs. Each check returns one line per fault, naming the
// file, the clip or section and the numbers involved; an empty list means the file is sound.
#pragma once

#include <filesystem>
#include <string>
#include <vector>

#include "media/animation.h"

struct AnimClipLine {
    std::string label;
    int line = 0;
    Animation clip;    // as the game's reader fills it
    std::string tail;  // what follows the frame rate, e.g. " / Damage Frame : 4"
};

struct AnimSection {
    std::string name;  // the "NAME :" line of a file with several sheets, empty otherwise
    sf::Vector2i frameSize, firstFrame;
    std::vector<AnimClipLine> clips;
};

struct AnimFile {
    std::vector<AnimSection> sections;
    std::vector<std::string> faults;  // lines the reader could not make sense of
};

// Reads an animation data file line by line with the game's own scanning functions; the labels
// are taken from the file itself, so any entity's file reads.
AnimFile ReadAnimFile(const std::filesystem::path& path);

// The sheets each section of a data file describes (several when sheets share one file).
std::vector<std::vector<std::filesystem::path>> SheetsOf(const std::filesystem::path& animData);

// Every frame of every clip inside its sheet, not blank, not wrapped into another clip's row;
// every clip with frames and a rate; frame numbers in tails among the clip's frames.
std::vector<std::string> CheckAnimSheets(const std::filesystem::path& animData);

// A sound loaded as the game loads it, against the format its place under Assets/ asks for.
// `assetPath` is the path from Assets/ on ("Sounds/SFX/...").
std::vector<std::string> CheckSound(const std::filesystem::path& wav, const std::string& assetPath);

#include "support/content_check.h"

#include <cstdio>
#include <fstream>
#include <iterator>
#include <regex>

#include "media/sound.h"

namespace fs = std::filesystem;

namespace {

std::string Trim(const std::string& text) {
    size_t begin = text.find_first_not_of(" \t\r\n");
    if (begin == std::string::npos) return "";
    size_t end = text.find_last_not_of(" \t\r\n");
    return text.substr(begin, end - begin + 1);
}

std::string RectText(const sf::IntRect& rect) {
    return "(" + std::to_string(rect.left) + ", " + std::to_string(rect.top) + ", " +
           std::to_string(rect.width) + ", " + std::to_string(rect.height) + ")";
}

AnimSection& Current(AnimFile& file) {
    if (file.sections.empty()) file.sections.emplace_back();
    return file.sections.back();
}

bool Untouched(const AnimSection& section) {
    return section.frameSize == sf::Vector2i() && section.clips.empty();
}

// A clip line: its label is what stands before the bar, its tail what follows the frame rate.
void ReadClipLine(std::FILE* file, const std::string& text, int line, AnimSection& section) {
    AnimClipLine clip{text.substr(0, text.find(" | ")), line, {}, {}};
    ReadAnimClip(file, clip.label.c_str(), clip.clip, section.frameSize, section.firstFrame,
                 int(section.clips.size()));
    char rest[512] = "";
    if (std::fgets(rest, sizeof rest, file)) clip.tail = Trim(rest);
    section.clips.push_back(clip);
}

// One line of the file; `file` stands at the line's start, `text` is the line trimmed.
void ReadAnimLine(std::FILE* file, const std::string& text, int line, AnimFile& out) {
    std::string where = "line " + std::to_string(line) + ": ";
    bool point = text.find(':') != std::string::npos && text.find('(') != std::string::npos;
    if (text.rfind("size", 0) == 0) {
        if (!out.sections.empty() && !Untouched(out.sections.back())) out.sections.emplace_back();
        if (!ReadAnimSize(file, Current(out).frameSize))
            out.faults.push_back(where + "the frame size does not read");
    } else if (text.rfind("first Frame Position", 0) == 0) {
        if (!ReadAnimFirstFrame(file, Current(out).firstFrame))
            out.faults.push_back(where + "the first frame's position does not read");
    } else if (text.find(" | ") != std::string::npos) {
        ReadClipLine(file, text, line, Current(out));
    } else if (text.back() == ':' && !point) {
        if (out.sections.empty() || !Untouched(out.sections.back())) out.sections.emplace_back();
        out.sections.back().name = Trim(text.substr(0, text.size() - 1));
    } else if (!point) {
        // Extra points such as "projectile position : (x,y)" are the entity's own business.
        out.faults.push_back(where + "\"" + text + "\" is not a line of an animation file");
    }
}

// Where the frame sits once the game's clip update has placed it (long clips wrap rows).
sf::IntRect FrameRect(const Animation& clip, int frame, sf::Vector2u sheetSize) {
    sf::Sprite sprite;
    Animation shown = clip;
    shown.sprite = &sprite;
    shown.sheetSize = sheetSize;
    shown.currentFrame = frame;
    shown.timer = 0;
    shown.paused = 0;
    UpdateAnimation(shown, 0);
    return sprite.getTextureRect();
}

bool Blank(const sf::Image& image, const sf::IntRect& rect) {
    for (int y = rect.top; y < rect.top + rect.height; y++) {
        for (int x = rect.left; x < rect.left + rect.width; x++) {
            if (image.getPixel(unsigned(x), unsigned(y)).a != 0) return false;
        }
    }
    return true;
}

// Frame numbers a tail names ("Damage Frame : 4", "DamageFrame : 2", "Fall Frame 7") must be
// frames of the clip, counted from 1, or the move they time never happens.
void CheckTailFrames(const AnimClipLine& line, const std::string& where,
                     std::vector<std::string>& faults) {
    static const std::regex number("([A-Za-z]+) ?Frame *:? *(-?[0-9]+)", std::regex::icase);
    for (std::sregex_iterator it(line.tail.begin(), line.tail.end(), number), end; it != end;
         ++it) {
        int frame = std::stoi((*it)[2]);
        if (frame < 1 || unsigned(frame) > line.clip.frameCount) {
            faults.push_back(where + (*it)[1].str() + " frame " + std::to_string(frame) +
                             " is not one of its " + std::to_string(line.clip.frameCount) +
                             " frames");
        }
    }
}

void CheckClip(const AnimSection& section, int index, const sf::Image& image,
               const std::string& where, std::vector<std::string>& faults) {
    const AnimClipLine& line = section.clips[index];
    const Animation& clip = line.clip;
    if (clip.frameCount == 0 || clip.frameRate == 0) {
        faults.push_back(where + "reads NbFrame " + std::to_string(clip.frameCount) +
                         " / FrameRate " + std::to_string(clip.frameRate) +
                         " (the line does not read)");
        return;
    }
    CheckTailFrames(line, where, faults);
    sf::Vector2u size = image.getSize();
    for (int frame = 0; frame < int(clip.frameCount); frame++) {
        sf::IntRect rect = FrameRect(clip, frame, size);
        std::string at = where + "frame " + std::to_string(frame) + " at " + RectText(rect);
        if (rect.left < 0 || rect.top < 0 || rect.left + rect.width > int(size.x) ||
            rect.top + rect.height > int(size.y)) {
            faults.push_back(at + " lies outside the " + std::to_string(size.x) + " x " +
                             std::to_string(size.y) + " sheet");
            return;
        }
        int row = (rect.top - section.firstFrame.y) / section.frameSize.y;
        if (row != index && row >= 0 && row < int(section.clips.size())) {
            faults.push_back(at + " wraps into the row of " + section.clips[row].label);
        }
        if (Blank(image, rect)) faults.push_back(at + " is blank");
    }
}

void CheckSection(const AnimSection& section, const std::string& name, const fs::path& sheet,
                  std::vector<std::string>& faults) {
    std::string owner = name + (section.name.empty() ? "" : " " + section.name) + " (" +
                        sheet.filename().string() + "): ";
    sf::Image image;
    if (!fs::is_regular_file(sheet) || !image.loadFromFile(sheet.string())) {
        faults.push_back(owner + "the sheet is missing or unreadable");
        return;
    }
    if (section.frameSize.x <= 0 || section.frameSize.y <= 0) {
        faults.push_back(owner + "no frame size");
        return;
    }
    for (int i = 0; i < int(section.clips.size()); i++) {
        const AnimClipLine& line = section.clips[i];
        CheckClip(section, i, image,
                  owner + "line " + std::to_string(line.line) + " " + line.label + ": ", faults);
    }
}

// Data files whose sheets are not simply "<Name>.png" beside "<Name>AnimData.txt": one list of
// sheets per section, relative to the data file's folder.
struct SheetNames {
    const char* animData;
    std::vector<std::vector<const char*>> sections;
};

const std::vector<SheetNames>& SheetTable() {
    static const std::vector<SheetNames> table = {
        {"PlatformCapacityAnimData.txt", {{"PlatformCapacity-SpriteSheet.png"}}},
        {"SlimeAnimData.txt",
         {{"Slime SpriteSheet.png", "NecroSlime SpriteSheet.png", "BlueSlime SpriteSheet.png"}}},
        {"FlyingKnightAnimData.txt", {{"GladiatorSpriteSheet.png"}, {"SwordSpriteSheet.png"}}},
        {"PlantAnimData.txt", {{"PlantTrap.png"}}},
        {"GoddessAnimData.txt",
         {{"Body 518x347.png"},
          {"wings hair 518x347.png"},
          {"Attack_Whip 838x372.png"},
          {"../../FX/beam 211x388.png"},
          {"../../FX/orb 100x100.png"},
          {"../../FX/VerticalLaser.png"}}},
    };
    return table;
}

// What a sound's place asks of it. Spatial voices stay where they were made while the listener
// follows the camera, and OpenAL fades a mono sample with that distance on top of our own falloff:
// spatial effects are stereo, and so are the region loops. Other sounds may be either (0).
struct SoundRule {
    const char* prefix;  // of the path from Assets/
    unsigned channels;
    float longest;  // seconds, 0 for no limit
};

const std::vector<SoundRule>& SoundRules() {
    static const std::vector<SoundRule> rules = {
        {"Sounds/MUSIC/ForestMusic.wav", 2, 0},
        {"Sounds/MUSIC/CityMusic.wav", 2, 0},
        {"Sounds/SFX/Enemy/Frog/", 2, 0},
        {"Sounds/SFX/Enemy/Nomad/", 2, 0},
        {"Sounds/SFX/Enemy/Trash/", 2, 0},
        {"Sounds/SFX/Enemy/Slime/", 2, 0},
        {"Sounds/SFX/Enemy/Flying Knight/", 2, 0},
        // The anvil rings once per hammer cycle of the merchant's clip (12 frames at 10 fps).
        {"Sounds/SFX/PNJ/PNJ_Hit_Anvil.wav", 2, 1.2f},
        // Taking damage again while it plays is silent, so it must end before the next hit.
        {"Sounds/SFX/Player/TakeDamage.wav", 0, 0.3f},
    };
    return rules;
}

SoundRule RuleFor(const std::string& assetPath) {
    for (const SoundRule& rule : SoundRules()) {
        if (assetPath.rfind(rule.prefix, 0) == 0) return rule;
    }
    return {"", 0, 0};
}

unsigned Little(const std::string& bytes, size_t at, int size) {
    unsigned value = 0;
    for (int i = size - 1; i >= 0; i--) value = value << 8 | unsigned(uint8_t(bytes[at + i]));
    return value;
}

// The sample encoding from the WAV header: SFML reads more than the 16-bit integer PCM we ship.
std::string PcmFault(const fs::path& wav) {
    std::ifstream in(wav, std::ios::binary);
    std::string bytes((std::istreambuf_iterator<char>(in)), std::istreambuf_iterator<char>());
    if (bytes.size() < 12 || bytes.compare(0, 4, "RIFF") || bytes.compare(8, 4, "WAVE"))
        return "is not a RIFF WAVE file";
    for (size_t at = 12; at + 8 <= bytes.size(); at += 8 + Little(bytes, at + 4, 4)) {
        if (bytes.compare(at, 4, "fmt ") || at + 24 > bytes.size()) continue;
        unsigned format = Little(bytes, at + 8, 2), bits = Little(bytes, at + 22, 2);
        if (format == 1 && bits == 16) return "";
        return "is format " + std::to_string(format) + " with " + std::to_string(bits) +
               "-bit samples, not 16-bit integer PCM";
    }
    return "has no format chunk";
}

}  // namespace

AnimFile ReadAnimFile(const fs::path& path) {
    AnimFile out;
    std::FILE* file = std::fopen(path.c_str(), "r");
    if (!file) {
        out.faults.push_back("cannot be opened");
        return out;
    }
    char buffer[512];
    for (int line = 1;; line++) {
        long start = std::ftell(file);
        if (!std::fgets(buffer, sizeof buffer, file)) break;
        long next = std::ftell(file);
        std::string text = Trim(buffer);
        if (text.empty()) continue;
        std::fseek(file, start, SEEK_SET);
        ReadAnimLine(file, text, line, out);
        std::fseek(file, next, SEEK_SET);
    }
    std::fclose(file);
    return out;
}

std::vector<std::vector<fs::path>> SheetsOf(const fs::path& animData) {
    fs::path folder = animData.parent_path();
    std::string name = animData.filename().string();
    for (const SheetNames& entry : SheetTable()) {
        if (name != entry.animData) continue;
        std::vector<std::vector<fs::path>> sheets;
        for (const auto& section : entry.sections) {
            sheets.emplace_back();
            for (const char* sheet : section) sheets.back().push_back(folder / sheet);
        }
        return sheets;
    }
    std::string stem = animData.stem().string();
    stem = stem.substr(0, stem.rfind("AnimData"));
    return {{folder / (stem + ".png")}};
}

std::vector<std::string> CheckAnimSheets(const fs::path& animData) {
    std::string name = animData.filename().string();
    AnimFile file = ReadAnimFile(animData);
    std::vector<std::string> faults;
    for (const std::string& fault : file.faults) faults.push_back(name + " " + fault);
    auto sheets = SheetsOf(animData);
    if (file.sections.size() != sheets.size()) {
        faults.push_back(name + ": " + std::to_string(file.sections.size()) +
                         " sections, but sheets are known for " + std::to_string(sheets.size()));
        return faults;
    }
    for (size_t i = 0; i < sheets.size(); i++) {
        if (file.sections[i].clips.empty()) faults.push_back(name + ": a section without clips");
        for (const fs::path& sheet : sheets[i]) CheckSection(file.sections[i], name, sheet, faults);
    }
    return faults;
}

std::vector<std::string> CheckSound(const fs::path& wav, const std::string& assetPath) {
    std::vector<std::string> faults;
    if (std::string fault = PcmFault(wav); !fault.empty())
        faults.push_back(assetPath + " " + fault);
    SoundArray array;
    LoadSoundArray(array, wav.string(), 100, 0, SOUND_EFFECTS, 0);
    if (!array.buffer) {
        faults.push_back(assetPath + " does not open as a sound");
        return faults;
    }
    const sf::SoundBuffer& buffer = *array.buffer;
    unsigned rate = buffer.getSampleRate(), channels = buffer.getChannelCount();
    SoundRule rule = RuleFor(assetPath);
    if (rate != 44100 && rate != 22050)
        faults.push_back(assetPath + " plays at " + std::to_string(rate) +
                         " Hz, not 44100 or 22050");
    if (rule.channels ? channels != rule.channels : channels < 1 || channels > 2) {
        faults.push_back(assetPath + " has " + std::to_string(channels) + " channels, not " +
                         (rule.channels ? std::to_string(rule.channels) : "1 or 2"));
    }
    float seconds = buffer.getDuration().asSeconds();
    if (buffer.getSampleCount() == 0) faults.push_back(assetPath + " holds no sound");
    if (rule.longest > 0 && seconds > rule.longest + 0.001f) {
        char text[64];
        std::snprintf(text, sizeof text, " lasts %.2f s, more than %.2f s", seconds, rule.longest);
        faults.push_back(assetPath + text);
    }
    FreeSoundArray(array);
    return faults;
}

// The content checks catch what they are there for: broken animation data against a small sheet,
// and sounds in the wrong format for their place.
#include "support/content_check.h"

#include <gtest/gtest.h>

#include <SFML/Audio.hpp>
#include <fstream>
#include <functional>

#include "support/fixture.h"

namespace {

std::string Lines(const std::vector<std::string>& faults) {
    std::string text;
    for (const std::string& fault : faults) text += "\n  " + fault;
    return text;
}

// A 64 x 32 sheet of 16 x 16 frames: two rows of four, all drawn but the last of row 1.
void WriteSheet(const std::string& path) {
    sf::Image image;
    image.create(64, 32, sf::Color::Transparent);
    for (unsigned frame = 0; frame < 7; frame++) {
        image.setPixel(frame % 4 * 16 + 8, frame / 4 * 16 + 8, sf::Color::White);
    }
    ASSERT_TRUE(image.saveToFile(path));
}

struct SheetCase {
    const char* what;
    const char* name;  // the data file is <name>AnimData.txt beside Test.png
    const char* text;
    const char* reported;  // a piece of the fault's line, empty when none is expected
};

void WriteSound(const std::string& path, unsigned channels, unsigned rate, float seconds) {
    std::vector<sf::Int16> samples(size_t(float(rate) * seconds) * channels, 1000);
    sf::SoundBuffer buffer;
    ASSERT_TRUE(buffer.loadFromSamples(samples.data(), samples.size(), channels, rate));
    ASSERT_TRUE(buffer.saveToFile(path));
}

// An 8-bit PCM file: SFML plays it, but it is not what the generators write.
void WriteEightBitSound(const std::string& path) {
    auto word = [](std::string& out, unsigned value, int bytes) {
        for (int i = 0; i < bytes; i++) out += char(value >> (8 * i) & 0xFF);
    };
    std::string bytes = "RIFF";
    word(bytes, 36 + 4410, 4);
    bytes += "WAVEfmt ";
    word(bytes, 16, 4);
    word(bytes, 1, 2);
    word(bytes, 1, 2);
    word(bytes, 44100, 4);
    word(bytes, 44100, 4);
    word(bytes, 1, 2);
    word(bytes, 8, 2);
    bytes += "data";
    word(bytes, 4410, 4);
    bytes += std::string(4410, char(128));
    std::ofstream(path, std::ios::binary) << bytes;
}

struct SoundCase {
    const char* what;
    const char* assetPath;
    std::function<void(const std::string&)> write;
    const char* reported;  // empty when the sound is sound
};

}  // namespace

using ContentChecks = SandboxTest;

TEST_F(ContentChecks, AnimationDataFaultsAreFoundAgainstTheSheet) {
    WriteSheet("Test.png");
    const std::vector<SheetCase> cases = {
        {"two clips that fit", "Test",
         "size : (16,16)\nfirst Frame Position : (0,0)\n\n"
         "IDLE | NbFrame : 4 / FrameRate : 8\nWALK | NbFrame : 3 / FrameRate : 8 / Damage Frame : "
         "3\n",
         ""},
        {"a blank frame", "Test",
         "size : (16,16)\nIDLE | NbFrame : 4 / FrameRate : 8\n"
         "WALK | NbFrame : 4 / FrameRate : 8\n",
         "line 3 WALK: frame 3 at (48, 16, 16, 16) is blank"},
        {"a clip longer than its row", "Test",
         "size : (16,16)\nIDLE | NbFrame : 5 / FrameRate : 8\nWALK | NbFrame : 3 / FrameRate : 8\n",
         "IDLE: frame 4 at (0, 16, 16, 16) wraps into the row of WALK"},
        {"a clip past the sheet's foot", "Test",
         "size : (16,16)\nIDLE | NbFrame : 4 / FrameRate : 8\nWALK | NbFrame : 5 / FrameRate : 8\n",
         "WALK: frame 4 at (0, 32, 16, 16) lies outside the 64 x 32 sheet"},
        {"a typo in a clip line", "Test",
         "size : (16,16)\nIDLE | NbFrme : 4 / FrameRate : 8\nWALK | NbFrame : 3 / FrameRate : 8\n",
         "line 2 IDLE: reads NbFrame 0 / FrameRate 0"},
        {"a damage frame past the clip's end", "Test",
         "size : (16,16)\nIDLE | NbFrame : 4 / FrameRate : 8 / Damage Frame : 5\n",
         "IDLE: Damage frame 5 is not one of its 4 frames"},
        {"a misspelt size line", "Test", "sise : (16,16)\nIDLE | NbFrame : 4 / FrameRate : 8\n",
         "TestAnimData.txt (Test.png): no frame size"},
        {"a line that belongs nowhere", "Test",
         "size : (16,16)\nIDLE NbFrame 4\nWALK | NbFrame : 3 / FrameRate : 8\n",
         "line 2: \"IDLE NbFrame 4\" is not a line of an animation file"},
        {"no sheet beside the data", "Ghost",
         "size : (16,16)\nIDLE | NbFrame : 4 / FrameRate : 8\n",
         "(Ghost.png): the sheet is missing"},
        {"two sections for one sheet", "Test",
         "BODY :\nsize : (16,16)\nIDLE | NbFrame : 4 / FrameRate : 8\n"
         "ARM :\nsize : (16,16)\nWALK | NbFrame : 3 / FrameRate : 8\n",
         "2 sections, but sheets are known for 1"},
    };
    for (const SheetCase& c : cases) {
        std::string path = std::string(c.name) + "AnimData.txt";
        WriteFile(path, c.text);
        std::string faults = Lines(CheckAnimSheets(path));
        if (*c.reported == 0) {
            EXPECT_EQ(faults, "") << c.what;
        } else {
            EXPECT_NE(faults.find(c.reported), std::string::npos)
                << c.what << ": expected \"" << c.reported << "\" among" << faults;
        }
    }
}

TEST_F(ContentChecks, SoundsInTheWrongFormatForTheirPlaceAreFound) {
    const std::vector<SoundCase> cases = {
        {"a stereo enemy effect", "Sounds/SFX/Enemy/Trash/Trash_Attack.wav",
         [](const std::string& path) { WriteSound(path, 2, 44100, 0.2f); }, ""},
        {"a mono spatial effect", "Sounds/SFX/Enemy/Frog/Frog_Jump.wav",
         [](const std::string& path) { WriteSound(path, 1, 44100, 0.2f); },
         "Frog_Jump.wav has 1 channels, not 2"},
        {"a mono region loop", "Sounds/MUSIC/CityMusic.wav",
         [](const std::string& path) { WriteSound(path, 1, 22050, 0.5f); },
         "has 1 channels, not 2"},
        {"an odd sample rate", "Sounds/SFX/Player/Dash.wav",
         [](const std::string& path) { WriteSound(path, 1, 32000, 0.2f); },
         "Dash.wav plays at 32000 Hz, not 44100 or 22050"},
        {"an anvil longer than the hammer's cycle", "Sounds/SFX/PNJ/PNJ_Hit_Anvil.wav",
         [](const std::string& path) { WriteSound(path, 2, 44100, 1.5f); },
         "PNJ_Hit_Anvil.wav lasts 1.50 s, more than 1.20 s"},
        {"8-bit samples", "Sounds/SFX/Player/Walk.wav", WriteEightBitSound,
         "Walk.wav is format 1 with 8-bit samples, not 16-bit integer PCM"},
        {"not a sound at all", "Sounds/SFX/Player/Fall.wav",
         [](const std::string& path) { WriteFile(path, "not a sound"); },
         "Fall.wav does not open as a sound"},
    };
    for (const SoundCase& c : cases) {
        c.write("sound.wav");
        testing::internal::CaptureStderr();  // SFML's own complaint about the broken file
        std::string faults = Lines(CheckSound("sound.wav", c.assetPath));
        testing::internal::GetCapturedStderr();
        if (*c.reported == 0) {
            EXPECT_EQ(faults, "") << c.what;
        } else {
            EXPECT_NE(faults.find(c.reported), std::string::npos)
                << c.what << ": expected \"" << c.reported << "\" among" << faults;
        }
    }
}

#include "menus/ending.h"

#include <algorithm>
#include <array>
#include <vector>

#include "app/region_music.h"
#include "common/drawables.h"
#include "common/ease.h"
#include "common/log.h"
#include "media/sound.h"
#include "menus/credits.h"

namespace {

constexpr float kDawnSeconds = 4.0f;  // the light rises until the world is all white
constexpr float kWashSeconds = 2.5f;  // the white settles onto the landscape
constexpr float kRollSpeed = 60.0f;   // px a second
constexpr float kHurry = 8.0f;        // the roll's speed after a press
constexpr float kHoldSeconds = 8.0f;  // how long THE END stays before the title returns
constexpr float kColumnX = 430.0f;    // the roll runs down the landscape's calm left side
constexpr float kTheEndY = 540.0f;
const sf::Color kDawn(255, 240, 214);
const sf::Color kInk(12, 14, 30, 220);

const std::array<const char*, 4> kEpilogue = {
    "The Goddess is still.", "Her light goes out over the city,",
    "and for the first time in an age", "morning comes to Ombrith Valkesh."};

struct RollLine {
    TextPtr text;
    float offset = 0;  // below the roll's top
};

struct Ending {
    int running = 0;
    int screenShown = 0;
    int finished = 0;
    float dawn = 0;    // seconds since she fell
    float screen = 0;  // seconds the ending screen has shown
    float scroll = 0;  // how far the roll has risen
    float speed = kRollSpeed;
    float held = 0;  // seconds THE END has stood still
    FontPtr font;
    TexturePtr landscapeTexture;
    SpritePtr landscape;
    std::vector<RollLine> lines;
    RollLine theEnd;
    SoundArray music;
};

Ending ending;

void AddLine(const std::string& text, unsigned size, float& offset, float gapBefore) {
    offset += gapBefore;
    RollLine line;
    CreateText(line.text, ending.font.get(), text, {kColumnX, 0}, size, {0.5f, 0.5f},
               sf::Color::White);
    line.text->setOutlineColor(kInk);
    line.text->setOutlineThickness(size >= 60 ? 4.0f : 2.0f);
    line.offset = offset;
    ending.lines.push_back(std::move(line));
}

// The epilogue, then the credits, then a last word; THE END follows and stops mid-screen.
void BuildRoll() {
    float offset = 0;
    AddLine("Ombrith Valkesh", 96, offset, 0);
    for (size_t i = 0; i < kEpilogue.size(); i++) AddLine(kEpilogue[i], 40, offset, i ? 58 : 150);
    for (const CreditLine& line : CreditRoll()) {
        AddLine(line.text, line.heading ? 58 : 34, offset, line.heading ? 130 : 54);
    }
    AddLine("Thank you for playing", 46, offset, 170);
    ending.theEnd.offset = offset + 420;
    CreateText(ending.theEnd.text, ending.font.get(), "THE END", {kColumnX, 0}, 110, {0.5f, 0.5f},
               sf::Color::White);
    ending.theEnd.text->setOutlineColor(kInk);
    ending.theEnd.text->setOutlineThickness(5);
}

void ShowScreen() {
    ending.screenShown = 1;
    ending.font = LoadFont("Assets/Fonts/alagard.ttf");
    ending.landscapeTexture = LoadTexture("Assets/Sprites/Menu/GameMenu.png");
    CreateSprite(ending.landscape, ending.landscapeTexture.get(), {0, 0}, {0, 0}, {1, 1});
    BuildRoll();
    // The region's loop gives way to the forest's theme, calm after the fight.
    FreeRegionMusic();
    LoadSoundArray(ending.music, "Assets/Sounds/MUSIC/ForestMusic.wav", 100, 1, SOUND_MUSIC, 0);
    CreateSoundArray(ending.music, 0);
    Log("Ending : the end\n");
}

// Where THE END stands: it rises with the roll and stops in the middle of the screen.
float TheEndY() {
    return std::max(kTheEndY, 1080 + ending.theEnd.offset - ending.scroll);
}

void UpdateRoll(float dt) {
    ending.screen += dt;
    if (ending.screen < kWashSeconds) return;
    if (TheEndY() > kTheEndY) {
        ending.scroll += ending.speed * dt;
        return;
    }
    ending.held += dt;
    if (ending.held >= kHoldSeconds && !ending.finished) {
        ending.finished = 1;
        Log("Ending : back to the title\n");
    }
}

// How far the white has settled: 0 all white, 1 the landscape as it is.
float Settled() {
    return Ease(EASE_CUBIC_OUT, std::min(1.0f, ending.screen / kWashSeconds));
}

}  // namespace

void StartEnding() {
    if (ending.running) return;
    ending = Ending();
    ending.running = 1;
    Log("Ending : dawn\n");
}

bool EndingRunning() {
    return ending.running != 0;
}

bool EndingScreenShown() {
    return ending.screenShown != 0;
}

void UpdateEnding(float dt) {
    if (!ending.running) return;
    if (!ending.screenShown) {
        ending.dawn += dt;
        if (ending.dawn >= kDawnSeconds) ShowScreen();
        return;
    }
    UpdateRoll(dt);
    UpdateSoundArray(ending.music, {0, 0});
}

void DrawEndingLight(sf::RenderTarget& target, sf::FloatRect area) {
    if (!ending.running || ending.screenShown) return;
    float light = Ease(EASE_CUBIC_IN, std::min(1.0f, ending.dawn / kDawnSeconds));
    sf::RectangleShape wash({area.width, area.height});
    wash.setPosition(area.left, area.top);
    wash.setFillColor(sf::Color(kDawn.r, kDawn.g, kDawn.b, sf::Uint8(255 * light)));
    target.draw(wash);
}

void DrawEndingScreen(sf::RenderTarget& target) {
    if (!ending.screenShown) return;
    float settled = Settled();
    target.clear(kDawn);
    if (ending.landscape) {
        ending.landscape->setColor(sf::Color(255, 255, 255, sf::Uint8(255 * settled)));
        target.draw(*ending.landscape);
    }
    sf::Uint8 alpha = sf::Uint8(255 * settled);
    for (RollLine& line : ending.lines) {
        float y = 1080 + line.offset - ending.scroll;
        if (y < -120 || y > 1200) continue;
        line.text->setPosition(kColumnX, y);
        line.text->setFillColor(sf::Color(255, 255, 255, alpha));
        line.text->setOutlineColor(sf::Color(kInk.r, kInk.g, kInk.b, sf::Uint8(kInk.a * settled)));
        target.draw(*line.text);
    }
    float theEndY = TheEndY();
    if (theEndY < 1200) {
        ending.theEnd.text->setPosition(kColumnX, theEndY);
        target.draw(*ending.theEnd.text);
    }
}

void EndingSkipPressed() {
    if (!ending.screenShown) return;
    if (TheEndY() > kTheEndY) {
        ending.speed = kRollSpeed * kHurry;
    } else {
        ending.held = kHoldSeconds;
    }
}

bool EndingFinished() {
    return ending.finished != 0;
}

void FreeEnding() {
    FreeSoundArray(ending.music);
    ending = Ending();
}

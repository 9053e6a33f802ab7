#include "menus/credits.h"

#include <array>
#include <memory>
#include <vector>

#include "common/ui.h"

namespace {

// The game is made by its team with free tools; nobody is named who did not take part.
const std::array<const char*, 5> kProgrammers = {"The Ombrith Valkesh team",
                                                 "SFML 2.5 (zlib licence)", "nlohmann/json (MIT)",
                                                 "GoogleTest & Benchmark", "Maps edited in Tiled"};
const std::array<const char*, 4> kArtists = {"The Ombrith Valkesh team", "Procedural pixel art",
                                             "Synthesised sound & music", "Generated in Python"};

// The menu font is Cardo Bold; the console's is DejaVu Sans Mono (Bitstream Vera licence).
const char* const kFontCredit = "Font by : David J. Perry";
const char* const kFontLicence = "Cardo, SIL Open Font License 1.1";

struct Credits {
    bool loaded = false;
    FontPtr font;
    std::unique_ptr<sf::RectangleShape> backdrop;
    TextPtr title;
    Button back;
    TextPtr programmersHeading;
    TextPtr artistsHeading;
    std::vector<TextPtr> names;
    TextPtr fontCredit;
    TextPtr fontLicence;
    TexturePtr studioTexture, emblemTexture;
    SpritePtr studioLogo, emblemLogo;
};

Credits credits;

// Name lines centred under their heading: 45 px below its bottom edge, then every 67.5 px.
template <size_t N>
void AddNameColumn(const sf::Text& heading, const std::array<const char*, N>& names) {
    sf::FloatRect bounds = heading.getGlobalBounds();
    float y = bounds.top + bounds.height + 45;
    for (const char* name : names) {
        TextPtr line;
        CreateText(line, credits.font.get(), name, {heading.getPosition().x, y}, 39, {0.5f, 0.5f},
                   sf::Color::White);
        credits.names.push_back(std::move(line));
        y += 67.5f;
    }
}

}  // namespace

void LoadCredits() {
    FreeCredits();
    credits.font = LoadFont("Assets/Fonts/alagard.ttf");
    const sf::Font* font = credits.font.get();
    credits.backdrop = std::make_unique<sf::RectangleShape>(sf::Vector2f(1920, 1080));
    credits.backdrop->setFillColor(sf::Color(0, 0, 0, 170));
    CreateText(credits.title, font, "CREDITS", {960, 75.6f}, 150, {0.5f, 0.85f}, sf::Color::White);
    CreateButton(credits.back, {192, 54}, font, "RETURN", 30, sf::Color::White,
                 sf::Color::Transparent, {1766.4f, 1026});
    CreateText(credits.programmersHeading, font, "PROGRAMMERS", {480, 270}, 75, {0.5f, 0.5f},
               sf::Color::White);
    CreateText(credits.artistsHeading, font, "ARTISTS", {1440, 270}, 75, {0.5f, 0.5f},
               sf::Color::White);
    AddNameColumn(*credits.programmersHeading, kProgrammers);
    AddNameColumn(*credits.artistsHeading, kArtists);
    CreateText(credits.fontCredit, font, kFontCredit, {1632, 864}, 39, {0.5f, 0.5f},
               sf::Color::White);
    CreateText(credits.fontLicence, font, kFontLicence, {1632, 918}, 27, {0.5f, 0.5f},
               sf::Color(200, 200, 200));
    credits.studioTexture = LoadTexture("Assets/Sprites/Logo/LogoStudio.png");
    credits.emblemTexture = LoadTexture("Assets/Sprites/Logo/LogoLumorra.png");
    CreateSprite(credits.studioLogo, credits.studioTexture.get(), {288, 896.4f}, {0.5f, 0.5f},
                 {0.1f, 0.1f});
    CreateSprite(credits.emblemLogo, credits.emblemTexture.get(), {672, 896.4f}, {0.5f, 0.5f},
                 {0.2f, 0.2f});
    credits.loaded = true;
}

void DrawCredits(sf::RenderTarget& target) {
    if (!credits.loaded) return;
    target.draw(*credits.backdrop);
    target.draw(*credits.title);
    DrawButton(target, credits.back);
    target.draw(*credits.programmersHeading);
    for (size_t i = 0; i < kProgrammers.size(); i++) target.draw(*credits.names[i]);
    target.draw(*credits.artistsHeading);
    for (size_t i = kProgrammers.size(); i < credits.names.size(); i++) {
        target.draw(*credits.names[i]);
    }
    target.draw(*credits.fontCredit);
    target.draw(*credits.fontLicence);
    target.draw(*credits.studioLogo);
    target.draw(*credits.emblemLogo);
}

void FreeCredits() {
    credits = Credits();
}

void HoverCreditsReturn(sf::Vector2f pointer) {
    if (credits.loaded) credits.back.hovered = UpdateButtonHover(pointer, credits.back);
}

bool CreditsReturnHovered() {
    return credits.loaded && credits.back.hovered;
}

bool CreditsLoaded() {
    return credits.loaded;
}

std::vector<CreditLine> CreditRoll() {
    std::vector<CreditLine> roll;
    roll.push_back({"PROGRAMMERS", 1});
    for (const char* name : kProgrammers) roll.push_back({name, 0});
    roll.push_back({"ARTISTS", 1});
    for (const char* name : kArtists) roll.push_back({name, 0});
    roll.push_back({"FONTS", 1});
    roll.push_back({kFontCredit, 0});
    roll.push_back({kFontLicence, 0});
    roll.push_back({"The console: DejaVu Sans Mono (Bitstream Vera licence)", 0});
    return roll;
}

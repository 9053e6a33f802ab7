#include "hud/player_hud.h"

#include <algorithm>
#include <cmath>

#include "common/motion.h"
#include "hud/boss_hud.h"
#include "interactables/money.h"
#include "player/save.h"

namespace {

const sf::FloatRect kScreen(0, 0, 1920, 1080);
constexpr unsigned kVignetteStrip = 8;  // rows per band of the vignette

struct HealClipRow {
    unsigned frames;
    int rowY;
};
// The flask's seven clips on its sheet, all at 10 frames a second and played once.
constexpr std::array<HealClipRow, kHealClipCount> kHealClips = {
    {{1, 0}, {8, 0}, {5, 26}, {8, 52}, {5, 78}, {8, 104}, {8, 130}}};
const sf::Vector2i kHealFrame(27, 26);

PlayerHud hud;

int TextureWidth(const sf::Sprite& sprite) {
    return sprite.getTexture() ? int(sprite.getTexture()->getSize().x) : 0;
}

// Cuts the sprite to a fraction of its texture's width (an empty rectangle below 0).
void SetFillFraction(sf::Sprite& sprite, double fraction) {
    sf::IntRect rect = sprite.getTextureRect();
    rect.width = fraction < 0 ? 0 : int(double(TextureWidth(sprite)) * fraction);
    sprite.setTextureRect(rect);
}

void SetFull(sf::Sprite& sprite) {
    SetFillFraction(sprite, 1.0);
}

// The clip that shows `potions` left of a flask that holds `savedCount`; -1 keeps the current
// one (a flask of another size than 1 to 3).
int ChooseHealClip(int savedCount, int potions) {
    if (savedCount < 1 || savedCount > 3) return -1;
    if (potions >= savedCount) return 0;
    switch (savedCount) {
        case 1: return potions == 0 ? 1 : -1;
        case 2: return potions == 1 ? 2 : potions == 0 ? 3 : -1;
        default: return potions == 2 ? 4 : potions == 1 ? 5 : potions == 0 ? 6 : -1;
    }
}

void UpdateHealFlask(int potions, float dt) {
    UpdateAnimation(hud.healClips[hud.currentHealClip], dt);
    int savedCount = Save().abilities.potionCount;
    int chosen = ChooseHealClip(savedCount, potions);
    if (chosen < 0 || chosen == hud.currentHealClip) return;
    // A full flask of two or three leaves the used clip where it stopped.
    bool keepLeft = chosen == 0 && (savedCount == 2 || savedCount == 3);
    if (!keepLeft) RestartAnimation(hud.healClips[hud.currentHealClip]);
    hud.currentHealClip = chosen;
}

// One step of a lost layer towards its fill: after the shared delay, one texel a frame; when it
// meets (or was narrower than) the fill it takes the fill's rectangle and the delay starts again.
void DrainLostLayer(int piece, float dt) {
    sf::Sprite& lost = *hud.lost[piece];
    const sf::IntRect fill = hud.fill[piece]->getTextureRect();
    sf::IntRect rect = lost.getTextureRect();
    if (rect.width == fill.width) return;
    hud.lostTimer = std::min(hud.lostTimer + dt, hud.lostDelay);
    if (hud.lostTimer < hud.lostDelay) return;
    rect.width -= 1;
    if (rect.width <= fill.width) {
        lost.setTextureRect(fill);
        hud.lostTimer = 0;
    } else {
        lost.setTextureRect(rect);
    }
}

void SetFills(int life) {
    const double max = hud.lifeMax;
    sf::Sprite& piece1 = *hud.fill[LIFE_PIECE_1];
    sf::Sprite& piece2 = *hud.fill[LIFE_PIECE_2];
    sf::Sprite& piece3 = *hud.fill[LIFE_PIECE_3];
    if (life >= max * 0.71) {
        SetFull(piece1);
        SetFull(piece2);
        SetFillFraction(piece3, (life - max * 0.71) / (max - max * 0.71));
    } else if (life >= max * 0.41) {
        SetFull(piece1);
        SetFillFraction(piece3, 0);
        SetFillFraction(piece2, (life - max * 0.41) / (max * 0.7 - max * 0.41));
    } else {
        SetFillFraction(piece2, 0);
        SetFillFraction(piece3, 0);
        SetFillFraction(piece1, life / (max * 0.4));
    }
    if (life >= hud.lifeMax) SetFull(piece3);
}

// Idle: transparent. Life 1 to 40: a pulse, stronger the lower the life. Otherwise a flash fades.
void UpdateVignette(float dt) {
    sf::Sprite& vignette = *hud.vignette;
    hud.pulsePhase += 2 * dt;
    hud.pulseFactor = std::fabs(std::sin(hud.pulsePhase));
    double divisor = hud.lifeMax * 0.4;
    double r = divisor == 0 ? 0 : hud.lifeShown / divisor;
    if (r > 0 && r <= 1) {
        int strength = int(std::fabs(r - 1) * 255);
        vignette.setColor(sf::Color(255, 255, 255, sf::Uint8(int(strength * hud.pulseFactor))));
    } else if (hud.vignetteFlash) {
        if (FadeSpriteColor(vignette, sf::Color(255, 255, 255, 0), dt, 200)) {
            hud.vignetteFlash = 0;
        }
    } else {
        vignette.setColor(sf::Color(255, 255, 255, 0));
    }
}

void Quad(std::vector<sf::Vertex>& vertices, const sf::IntRect& band, sf::Color color) {
    float l = float(band.left), t = float(band.top);
    float r = l + float(band.width), b = t + float(band.height);
    const sf::Vector2f corners[6] = {{l, t}, {r, t}, {r, b}, {l, t}, {r, b}, {l, b}};
    for (const sf::Vector2f& corner : corners) vertices.emplace_back(corner, color, corner);
}

// Screen pixels (1920 x 1080) to the normalised device square that a view maps onto the screen.
const sf::Transform kScreenToDevice(2.0f / 1920, 0, -1, 0, -2.0f / 1080, 1, 0, 0, 1);

void CreateLifeBar() {
    hud.containerTexture = LoadTexture("Assets/Sprites/HUD/Player/LifeContainer.png");
    hud.piece1Texture = LoadTexture("Assets/Sprites/HUD/Player/LifeBar40.png");
    hud.piece1LostTexture = LoadTexture("Assets/Sprites/HUD/Player/LifeBar40Lost.png");
    hud.pieceTexture = LoadTexture("Assets/Sprites/HUD/Player/LifeBar30.png");
    hud.pieceLostTexture = LoadTexture("Assets/Sprites/HUD/Player/LifeBarLost.png");
    const sf::Vector2f scale(3, 3);
    CreateSprite(hud.container, hud.containerTexture.get(), {25, 25}, {0, 0}, scale);
    const std::array<sf::Vector2f, LIFE_PIECE_COUNT> positions = {
        {{235, 61}, {394, 61}, {514, 61}}};
    for (int piece = 0; piece < LIFE_PIECE_COUNT; piece++) {
        bool first = piece == LIFE_PIECE_1;
        const sf::Texture* lost = first ? hud.piece1LostTexture.get() : hud.pieceLostTexture.get();
        const sf::Texture* fill = first ? hud.piece1Texture.get() : hud.pieceTexture.get();
        CreateSprite(hud.lost[piece], lost, positions[piece], {0, 0}, scale);
        CreateSprite(hud.fill[piece], fill, positions[piece], {0, 0}, scale);
    }
    hud.lifeShown = hud.lifeMax = 100;
    hud.lostTimer = 0;
    hud.lostDelay = 0.5f;
}

void CreateHealFlask() {
    hud.healTexture = LoadTexture("Assets/Sprites/HUD/Player/HealBar/HealSheet.png");
    sf::IntRect frame({0, 0}, kHealFrame);
    CreateSprite(hud.heal, hud.healTexture.get(), {247, 175}, frame, {0, 0}, {3, 3});
    for (int i = 0; i < kHealClipCount; i++) {
        Animation& clip = hud.healClips[i];
        clip = Animation();
        clip.sprite = hud.heal.get();
        if (hud.healTexture) clip.sheetSize = hud.healTexture->getSize();
        clip.frameCount = kHealClips[i].frames;
        clip.frameRate = 10;
        clip.frameRect = sf::IntRect({0, kHealClips[i].rowY}, kHealFrame);
        clip.loop = 0;
    }
    hud.currentHealClip = 0;
}

// The texture rectangles, in strips of `strip` rows, that hold every texel of the picture whose
// alpha is not 0, outside a transparent middle; rectangles never overlap.
std::vector<sf::IntRect> VisibleBands(const sf::Image& picture, unsigned strip) {
    const int width = int(picture.getSize().x), height = int(picture.getSize().y);
    std::vector<sf::IntRect> bands;
    if (width == 0 || height == 0 || strip == 0) return bands;
    const sf::Uint8* pixels = picture.getPixelsPtr();
    auto alpha = [&](int x, int y) {
        return pixels[4 * (size_t(y) * size_t(width) + size_t(x)) + 3];
    };
    const int middle = width / 2;
    // Per strip: the left part ends after its last visible texel left of the middle, the right
    // part starts at its first visible texel from the middle on.
    struct Strip {
        int top, bottom, leftEnd, rightStart;
    };
    std::vector<Strip> strips;
    for (int top = 0; top < height; top += int(strip)) {
        Strip s{top, std::min(height, top + int(strip)), 0, width};
        for (int y = s.top; y < s.bottom; y++) {
            for (int x = middle - 1; x >= s.leftEnd; x--) {
                if (alpha(x, y)) {
                    s.leftEnd = x + 1;
                    break;
                }
            }
            for (int x = middle; x < s.rightStart; x++) {
                if (alpha(x, y)) {
                    s.rightStart = x;
                    break;
                }
            }
        }
        if (!strips.empty() && strips.back().leftEnd == s.leftEnd &&
            strips.back().rightStart == s.rightStart) {
            strips.back().bottom = s.bottom;
        } else {
            strips.push_back(s);
        }
    }
    for (const Strip& s : strips) {
        int rows = s.bottom - s.top;
        if (s.leftEnd >= s.rightStart) {
            bands.emplace_back(0, s.top, width, rows);
            continue;
        }
        if (s.leftEnd > 0) bands.emplace_back(0, s.top, s.leftEnd, rows);
        if (s.rightStart < width)
            bands.emplace_back(s.rightStart, s.top, width - s.rightStart, rows);
    }
    return bands;
}

void CreateVignette() {
    hud.vignetteTexture = LoadTexture("Assets/Sprites/HUD/Player/vignette.png");
    CreateSprite(hud.vignette, hud.vignetteTexture.get(), {0, 0}, {0, 0}, {1, 1});
    hud.vignette->setColor(sf::Color(255, 255, 255, 0));
    hud.vignetteFlash = 0;
    hud.pulsePhase = 0;
    hud.pulseFactor = 0;
    hud.vignetteBands.clear();
    if (hud.vignetteTexture) {
        hud.vignetteBands = VisibleBands(hud.vignetteTexture->copyToImage(), kVignetteStrip);
    }
}

}  // namespace

PlayerHud& GetPlayerHud() {
    return hud;
}

void CreatePlayerHud() {
    // Only the hero's own pieces are made anew: the boss bars belong to the room, loaded first.
    DestroyMoneyCounter();
    hud = PlayerHud();
    // The ability explanation panel is made here too once it exists, handed the game's
    // explanationOpen flag.
    CreateHealFlask();
    CreateLifeBar();
    CreateVignette();
    CreateMoneyCounter();
}

void UpdatePlayerHud(int life, int potions, float dt) {
    if (!hud.container) return;
    UpdateHealFlask(potions, dt);
    UpdateLifeBar(life, dt);
    UpdateBossHud(dt);
    UpdateVignette(dt);
}

void UpdateLifeBar(int life, float dt) {
    if (!hud.container) return;
    DrainLostLayer(LIFE_PIECE_3, dt);
    if (hud.lost[LIFE_PIECE_3]->getTextureRect().width < 1) DrainLostLayer(LIFE_PIECE_2, dt);
    if (hud.lost[LIFE_PIECE_2]->getTextureRect().width < 1) DrainLostLayer(LIFE_PIECE_1, dt);
    hud.lifeShown = life;
    SetFills(life);
}

void DrawPlayerHud(sf::RenderTarget& target, float brightness) {
    if (!hud.container) return;
    const sf::View previous = target.getView();
    target.setView(sf::View(kScreen));
    DrawDarkened(target, *hud.container, brightness);
    for (int piece = 0; piece < LIFE_PIECE_COUNT; piece++) {
        DrawDarkened(target, *hud.lost[piece], brightness);
        DrawDarkened(target, *hud.fill[piece], brightness);
    }
    DrawBossHud(target, brightness);  // over the life bar, under the flask
    DrawDarkened(target, *hud.heal, brightness);
    DrawMoneyCounter(target, brightness);
    target.setView(previous);
}

void DrawDamageVignette(sf::RenderTarget& target, const sf::View& seen) {
    if (!hud.vignette) return;
    const sf::Sprite& vignette = *hud.vignette;
    if (!vignette.getTexture() || vignette.getColor().a == 0) return;
    // Only the visible edge of the picture is filled: the transparent middle costs nothing.
    std::vector<sf::Vertex> vertices;
    vertices.reserve(hud.vignetteBands.size() * 6);
    for (const sf::IntRect& band : hud.vignetteBands) Quad(vertices, band, vignette.getColor());
    sf::RenderStates states(vignette.getTexture());
    states.transform = seen.getInverseTransform() * kScreenToDevice * vignette.getTransform();
    target.draw(vertices.data(), vertices.size(), sf::Triangles, states);
}

void FlashDamageVignette() {
    hud.vignetteFlash = 1;
    if (hud.vignette) hud.vignette->setColor(sf::Color(255, 255, 255, 255));
}

void DestroyPlayerHud() {
    DestroyMoneyCounter();
    DestroyBossHud();
    hud = PlayerHud();
}

long VignetteFillPixels() {
    long pixels = 0;
    for (const sf::IntRect& band : hud.vignetteBands) pixels += long(band.width) * band.height;
    return pixels;
}

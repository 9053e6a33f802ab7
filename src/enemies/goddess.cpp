#include "enemies/goddess.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <new>
#include <span>
#include <string>
#include <vector>

#include "app/input.h"
#include "common/afterimage.h"
#include "common/ease.h"
#include "common/log.h"
#include "common/motion.h"
#include "enemies/enemy_body.h"
#include "world/room_draw.h"

namespace {

const char* const kAnimData = "Assets/Sprites/Enemies/Goddess/GoddessAnimData.txt";
enum Part { PART_BODY, PART_WINGS, PART_WHIP, PART_LIGHTNING, PART_SPARK, PART_LASER, PART_COUNT };
// Per part: its texture and its section of the data file.
struct PartFile {
    const char* texture;
    const char* section;
};
const std::array<PartFile, PART_COUNT> kParts = {{
    {"Assets/Sprites/Enemies/Goddess/Body 518x347.png", "BODY"},
    {"Assets/Sprites/Enemies/Goddess/wings hair 518x347.png", "WINGS"},
    {"Assets/Sprites/Enemies/Goddess/Attack_Whip 838x372.png", "WHIP"},
    {"Assets/Sprites/FX/beam 211x388.png", "LASER"},
    {"Assets/Sprites/FX/orb 100x100.png", "ORBES"},
    {"Assets/Sprites/FX/VerticalLaser.png", "VERTICAL LASER"},
}};
const char* const kDamageTail = " / DamageFrame : %d";
const std::array<AnimClipSpec, 5> kBodyClips = {{{"IDLE", 1},
                                                 {"ATTACK_LIGHTNING", 0, kDamageTail},
                                                 {"ATTACK_CREATE_SPARK", 0, kDamageTail},
                                                 {"ATTACK_TRIGGER_SPARK", 0, kDamageTail},
                                                 {"ATTACK_WHIP", 0, kDamageTail}}};
// The parts loop, but the lightning plays once so that it can go out again.
const std::array<AnimClipSpec, 1> kLoopingPart = {{{"ANIM", 1}}};
const std::array<AnimClipSpec, 1> kOncePart = {{{"ANIM", 0}}};

constexpr int kFullLife = 60;
constexpr int kRageLife = 30;  // enraged below it
constexpr float kHoverWidth = 800, kHoverHeight = 200;
constexpr float kHoverSpeed = 0.6f, kRageHoverSpeed = 1.0f;
constexpr float kLightningGlide = 2, kWhipGlide = 0.7f;
constexpr float kRelocate = 1.3f, kRageRelocate = 0.5f;
constexpr float kWhipRaise = 40;
const sf::Vector2f kSparkBirth = {200, -300};
const sf::Vector2f kSparkGoal = {1228.8f, -100};
constexpr float kSparkGlide = 5;
constexpr float kBeamDuration = 2.5f;
constexpr float kBeamLength = 3000, kBeamHeight = 200;
constexpr float kLightningWidth = 150;
constexpr float kLashLength = 3000, kLashDrop = 400;
constexpr int kLashAgain = 40, kRageLashAgain = 60;  // in a hundred
const AfterimageLook kTrail = {1.0f / 70.0f, sf::Color(119, 86, 162, 100), 0.5f};
// Her thirty-odd ghosts a trail overlap almost wholly: one in four, each as dense as four, looks
// the same and fills a quarter of the texels. Her wings, four times the body's area and soft at
// their edges, keep one ghost in eight.
constexpr int kBodyTrailDrawnEvery = 4, kWingsTrailDrawnEvery = 8;
// Her fall: her light flares, then she fades as she rises, her afterimages blown away from her.
constexpr float kFlareTime = 0.6f, kFadeTime = 2.4f;
constexpr float kRiseSpeed = 60, kScatterSpeed = 420;

// The opaque part of each frame of a sheet, so that the huge, mostly empty frames (and the dozens
// of afterimages made of them) only cost the pixels that show.
struct FrameTrims {
    sf::Vector2i frame;
    int columns = 0;
    std::vector<sf::IntRect> opaque;
    bool built = false;
};

struct Goddess {
    EnemyBody body;  // state, life, arena, armed, the five body clips and their damage frames
    std::array<EnemyBody, PART_COUNT> parts;  // PART_BODY unused; the others one clip each
    EnemyBody spark2;
    sf::Vector2f hoverCentre, arenaCentre;
    float phase = 0;
    Tween glide, relocate, sparkGlide1, sparkGlide2;
    AfterimageTrail bodyTrail, wingsTrail;
    int relocating = 0;
    int wingsShown = 0;
    int fired = 0;  // the move's damage frame has done its work
    int lightningDropped = 0;
    sf::Vector2f lightningPoint;
    int sparksExist = 0, sparksFormed = 0, sparksArrived = 0;
    int beamOn = 0;
    float beamTimer = 0, beamDuration = kBeamDuration;
    int lightningShown = 0;
    int pressure = 0;
    float deathTimer = 0;
    int defeated = 0;
};

std::array<EnemySheet, PART_COUNT> sheets;
std::array<FrameTrims, PART_COUNT> trims;
std::vector<Goddess> goddesses;
sf::RectangleShape hurtbox;
sf::RectangleShape attackBox;

sf::Sprite& Sprite(Goddess& g, int part) {
    return part == PART_BODY ? *g.body.sprite : *g.parts[size_t(part)].sprite;
}

Animation& Clip(Goddess& g, int part) {
    return g.parts[size_t(part)].clips[0];
}

bool Enraged(const Goddess& g) {
    return g.body.life < kRageLife;
}

int Frame(const EnemyBody& body) {
    return CurrentClip(body).currentFrame + 1;
}

int DamageFrame(const Goddess& g, int state) {
    return size_t(state) < g.body.damageFrames.size() ? g.body.damageFrames[size_t(state)] : 0;
}

void BuildTrims(FrameTrims& table, const sf::Texture* texture, sf::Vector2i frame) {
    table.built = true;
    if (!texture || frame.x <= 0 || frame.y <= 0) return;
    sf::Image image = texture->copyToImage();
    sf::Vector2u size = image.getSize();
    table.frame = frame;
    table.columns = int(size.x) / frame.x;
    int rows = int(size.y) / frame.y;
    const sf::Uint8* pixels = image.getPixelsPtr();
    for (int row = 0; row < rows; row++) {
        for (int column = 0; column < table.columns; column++) {
            int left = frame.x, top = frame.y, right = -1, bottom = -1;
            for (int y = 0; y < frame.y; y++) {
                const sf::Uint8* line =
                    pixels + 4 * (size_t(row * frame.y + y) * size.x + size_t(column * frame.x));
                for (int x = 0; x < frame.x; x++) {
                    if (line[4 * x + 3] == 0) continue;
                    left = std::min(left, x), right = std::max(right, x);
                    top = std::min(top, y), bottom = std::max(bottom, y);
                }
            }
            sf::IntRect opaque(column * frame.x + left, row * frame.y + top, right - left + 1,
                               bottom - top + 1);
            table.opaque.push_back(right < 0 ? sf::IntRect() : opaque);
        }
    }
}

// The same sprite showing only the opaque part of its frame, at the same place on screen.
sf::Sprite Trimmed(const sf::Sprite& sprite, int part) {
    FrameTrims& table = trims[size_t(part)];
    if (!table.built) BuildTrims(table, sprite.getTexture(), sheets[size_t(part)].anim.frameSize);
    sf::IntRect rect = sprite.getTextureRect();
    if (table.columns == 0 || rect.left % table.frame.x || rect.top % table.frame.y) return sprite;
    size_t cell = size_t(rect.top / table.frame.y * table.columns + rect.left / table.frame.x);
    if (cell >= table.opaque.size()) return sprite;
    const sf::IntRect& opaque = table.opaque[cell];
    sf::Sprite trimmed = sprite;
    trimmed.setTextureRect(opaque);
    trimmed.setOrigin(sprite.getOrigin() -
                      sf::Vector2f(float(opaque.left - rect.left), float(opaque.top - rect.top)));
    return trimmed;
}

// The body shows a state's clip and plays it; the wings beat with it, except from the damage frame
// of a lightning or a lash on.
void AnimateBody(Goddess& g, int state, float dt) {
    g.body.current = state;
    AdvanceClip(g.body, dt);
    bool calm =
        state == GODDESS_IDLE || state == GODDESS_CREATE_SPARK || state == GODDESS_TRIGGER_SPARK;
    if (!calm && Frame(g.body) >= DamageFrame(g, state)) return;
    if (!g.wingsShown) UpdateAnimation(Clip(g, PART_WINGS), dt);
    g.wingsShown = 1;
}

void SetBodyFacing(Goddess& g, float scaleX) {
    Sprite(g, PART_BODY).setScale(scaleX, 3);
    Sprite(g, PART_WHIP).setScale(scaleX, 3);
}

void StartMove(Goddess& g, int move) {
    g.body.state = move;
    g.body.armed = 1;
    RestartAnimation(g.body.clips[size_t(move)]);
    g.glide = Tween();
    g.fired = g.lightningDropped = 0;
}

void EndMove(Goddess& g, bool relocate) {
    g.body.state = GODDESS_IDLE;
    g.pressure = 0;
    if (!relocate) return;
    g.relocating = 1;
    g.relocate = Tween();
    g.phase = 0;  // she comes back to the figure-eight where it crosses itself
    SetBodyFacing(g, 3);
}

void DebugKeys(Goddess& g) {
    constexpr std::array<std::pair<sf::Keyboard::Key, int>, 4> keys = {{
        {sf::Keyboard::Numpad1, GODDESS_LIGHTNING},
        {sf::Keyboard::Numpad7, GODDESS_CREATE_SPARK},
        {sf::Keyboard::Numpad8, GODDESS_TRIGGER_SPARK},
        {sf::Keyboard::Numpad2, GODDESS_WHIP},
    }};
    for (const auto& [key, move] : keys) {
        if (InputKeyDown(key)) StartMove(g, move);
    }
}

void Hover(Goddess& g, float dt) {
    float step = (Enraged(g) ? kRageHoverSpeed : kHoverSpeed) * dt;
    if (g.phase == 0) {
        g.phase = std::rand() % 2 ? step : -step;
    } else {
        g.phase += g.phase > 0 ? step : -step;
    }
    constexpr float kTurn = 2 * 3.14159265f;
    if (std::fabs(g.phase) > kTurn) g.phase -= g.phase > 0 ? kTurn : -kTurn;
    Sprite(g, PART_BODY).setPosition(GoddessHoverPoint(g.hoverCentre, g.phase));
}

void Idle(Goddess& g, float dt) {
    AnimateBody(g, GODDESS_IDLE, dt);
    int move = ChooseGoddessMove(g.pressure, Enraged(g), g.sparksExist, g.sparksArrived,
                                 [] { return std::rand(); });
    if (move != GODDESS_IDLE) StartMove(g, move);
    Hover(g, dt);
}

// A glide before the move, the body and wings animating on the way; true once it has arrived.
bool Glide(Goddess& g, sf::Vector2f goal, float duration, float dt) {
    if (TweenDone(g.glide)) return true;
    AnimateBody(g, GODDESS_IDLE, dt);
    TweenPosition(Sprite(g, PART_BODY), goal, duration, EASE_CUBIC_OUT, dt, g.glide);
    return false;
}

void Lightning(Goddess& g, float dt, sf::Vector2f target) {
    sf::Sprite& body = Sprite(g, PART_BODY);
    if (!Glide(g, {target.x, g.hoverCentre.y}, kLightningGlide, dt)) return;
    AnimateBody(g, GODDESS_LIGHTNING, dt);
    int damage = DamageFrame(g, GODDESS_LIGHTNING);
    if (Frame(g.body) < damage) body.setPosition(target.x, body.getPosition().y);
    if (Frame(g.body) >= damage && !g.fired) {
        g.lightningPoint = {body.getPosition().x, g.arenaCentre.y};
        g.fired = 1;
    }
    if (g.fired && !g.lightningDropped && Frame(g.body) >= damage + 2) {
        g.lightningDropped = g.lightningShown = 1;
        RestartAnimation(Clip(g, PART_LIGHTNING));
        Sprite(g, PART_LIGHTNING).setPosition(g.lightningPoint);
    }
    if (ClipFinished(g.body)) EndMove(g, true);
}

void CreateSparks(Goddess& g) {
    sf::Vector2f at = Sprite(g, PART_BODY).getPosition();
    Sprite(g, PART_SPARK).setPosition(at.x - kSparkBirth.x, at.y + kSparkBirth.y);
    g.spark2.sprite->setPosition(at.x + kSparkBirth.x, at.y + kSparkBirth.y);
    RestartAnimation(Clip(g, PART_SPARK));
    RestartAnimation(g.spark2.clips[0]);
    g.sparksExist = 1;
    g.sparksFormed = g.sparksArrived = 0;
    g.sparkGlide1 = g.sparkGlide2 = Tween();
}

// The spark moves: their one effect on the damage frame, then back to the hover.
void SparkMove(Goddess& g, float dt) {
    int state = g.body.state;
    AnimateBody(g, state, dt);
    if (!g.fired && Frame(g.body) >= DamageFrame(g, state)) {
        g.fired = 1;
        if (state == GODDESS_CREATE_SPARK) {
            CreateSparks(g);
        } else {
            g.beamOn = 1;
            g.beamTimer = 0;
        }
    }
    if (ClipFinished(g.body)) EndMove(g, false);
}

void Whip(Goddess& g, float dt, sf::Vector2f target) {
    float height = Sprite(g, PART_BODY).getGlobalBounds().height;
    if (!Glide(g, {g.hoverCentre.x, target.y - height / 4}, kWhipGlide, dt)) return;
    AnimateBody(g, GODDESS_WHIP, dt);
    if (ClipFinished(g.body)) {
        if (std::rand() % 100 >= (Enraged(g) ? kRageLashAgain : kLashAgain)) {
            EndMove(g, true);
            return;
        }
        RestartAnimation(g.body.clips[GODDESS_WHIP]);
        g.body.armed = 1;
        SetBodyFacing(g, -3);
    }
    Animation& whip = Clip(g, PART_WHIP);
    whip.currentFrame = CurrentClip(g.body).currentFrame;
    UpdateAnimation(whip, 0);
}

void StateLogic(Goddess& g, float dt, sf::Vector2f target) {
    if (g.relocating) {
        AnimateBody(g, GODDESS_IDLE, dt);
        float duration = Enraged(g) ? kRageRelocate : kRelocate;
        if (TweenPosition(Sprite(g, PART_BODY), g.hoverCentre, duration, EASE_CUBIC_IN, dt,
                          g.relocate)) {
            g.relocating = 0;
        }
        return;
    }
    switch (g.body.state) {
        case GODDESS_IDLE: Idle(g, dt); break;
        case GODDESS_LIGHTNING: Lightning(g, dt, target); break;
        case GODDESS_CREATE_SPARK:
        case GODDESS_TRIGGER_SPARK: SparkMove(g, dt); break;
        case GODDESS_WHIP: Whip(g, dt, target); break;
        default: break;
    }
}

void Fall(Goddess& g) {
    g.body.state = GODDESS_DEAD;
    g.body.armed = 0;
    g.beamOn = g.lightningShown = g.relocating = 0;
    SetBodyFacing(g, 3);
    Log("goddess down\n");
}

float Fade(const Goddess& g) {
    if (g.body.state != GODDESS_DEAD) return 1;
    return std::clamp(1 - (g.deathTimer - kFlareTime) / kFadeTime, 0.0f, 1.0f);
}

// Her light swells and dies back in the first moments of her fall.
float Flare(const Goddess& g) {
    if (g.body.state != GODDESS_DEAD || g.deathTimer >= kFlareTime) return 0;
    return std::sin(3.14159265f * g.deathTimer / kFlareTime);
}

void Dissolve(Goddess& g, float dt) {
    g.deathTimer += dt;
    AnimateBody(g, GODDESS_IDLE, dt);
    sf::Vector2f at = Sprite(g, PART_BODY).getPosition();
    if (g.deathTimer > kFlareTime) Sprite(g, PART_BODY).move(0, -kRiseSpeed * dt);
    for (AfterimageTrail* trail : {&g.bodyTrail, &g.wingsTrail}) {
        for (Afterimage& ghost : trail->ghosts) {
            sf::Vector2f away = ghost.sprite.getPosition() - at;
            float length = std::hypot(away.x, away.y);
            if (length > 0.5f) ghost.sprite.move(away * (kScatterSpeed * dt / length));
        }
    }
    if (!g.defeated && g.deathTimer >= kFlareTime + kFadeTime) {
        g.defeated = 1;
        Log("goddess defeated\n");
    }
}

void UpdateSparks(Goddess& g, float dt) {
    sf::Sprite& spark1 = Sprite(g, PART_SPARK);
    sf::Sprite& spark2 = *g.spark2.sprite;
    if (g.sparksExist) {
        Animation& first = Clip(g, PART_SPARK);
        UpdateAnimation(first, dt);
        UpdateAnimation(g.spark2.clips[0], dt);
        // The sparks set off once the first has played its clip through.
        if (first.frameCount == 0 || unsigned(first.currentFrame) + 1 >= first.frameCount)
            g.sparksFormed = 1;
        if (g.sparksFormed) {
            sf::Vector2f c = g.arenaCentre;
            int left = TweenPosition(spark1, {c.x - kSparkGoal.x, c.y + kSparkGoal.y}, kSparkGlide,
                                     EASE_CUBIC_IN_OUT, dt, g.sparkGlide1);
            int right = TweenPosition(spark2, {c.x + kSparkGoal.x, c.y + kSparkGoal.y}, kSparkGlide,
                                      EASE_CUBIC_IN_OUT, dt, g.sparkGlide2);
            g.sparksArrived = left && right;
        }
    }
    spark1.rotate(1);
    spark2.rotate(-1);
}

void UpdateBeam(Goddess& g, float dt) {
    if (!g.beamOn) return;
    g.beamTimer += dt;
    if (g.beamTimer < g.beamDuration) return;
    g.beamOn = 0;
    g.sparkGlide1 = g.sparkGlide2 = Tween();
    g.sparksArrived = 0;
}

void UpdateGoddess(Goddess& g, float dt, sf::Vector2f target) {
    g.wingsShown = 0;
    if (g.body.life < 1 && g.body.state != GODDESS_DEAD) Fall(g);
    bool alive = g.body.state != GODDESS_DEAD;
    if (alive) {
        DebugKeys(g);
        StateLogic(g, dt, target);
    } else {
        Dissolve(g, dt);
    }
    sf::Vector2f at = Sprite(g, PART_BODY).getPosition();
    Sprite(g, PART_WINGS).setPosition(at);
    Sprite(g, PART_WHIP).setPosition(at.x, at.y - kWhipRaise);
    UpdateAfterimages(g.bodyTrail, Trimmed(Sprite(g, PART_BODY), PART_BODY), alive, kTrail, dt);
    UpdateAfterimages(g.wingsTrail, Trimmed(Sprite(g, PART_WINGS), PART_WINGS), alive, kTrail, dt);
    if (g.lightningShown) {
        UpdateAnimation(Clip(g, PART_LIGHTNING), dt);
        if (Clip(g, PART_LIGHTNING).finished) g.lightningShown = 0;
    }
    UpdateSparks(g, dt);
    UpdateBeam(g, dt);
    UpdateAnimation(Clip(g, PART_LASER), dt);
}

// One section of the data file: its label, its size, then its clips, rows from the top left.
void ReadSection(std::FILE* file, const char* label, std::span<const AnimClipSpec> specs,
                 AnimData& anim) {
    std::string heading = std::string(" ") + label + " :%n";
    int consumed = 0;
    [[maybe_unused]] int read = std::fscanf(file, heading.c_str(), &consumed);
    ReadAnimSize(file, anim.frameSize);
    for (size_t i = 0; i < specs.size(); i++) {
        ReadAnimClip(file, specs[i].label, anim.clips[i], anim.frameSize, {0, 0}, int(i));
        anim.clips[i].loop = specs[i].loop;
        if (specs[i].damageTail) anim.damageFrames[i] = ReadAnimTail(file, specs[i].damageTail);
    }
}

std::span<const AnimClipSpec> Specs(int part) {
    if (part == PART_BODY) return kBodyClips;
    return part == PART_LIGHTNING ? std::span<const AnimClipSpec>(kOncePart) : kLoopingPart;
}

void ReadGoddessData() {
    for (int part = 0; part < PART_COUNT; part++) {
        AnimData& anim = sheets[size_t(part)].anim;
        anim = AnimData();
        anim.clips.assign(Specs(part).size(), Animation());
        anim.damageFrames.assign(Specs(part).size(), 0);
    }
    std::FILE* file = std::fopen(kAnimData, "r");
    if (!file) {
        Log("File : (%s) Can't be Open\n", kAnimData);
        return;
    }
    for (int part = 0; part < PART_COUNT; part++) {
        ReadSection(file, kParts[size_t(part)].section, Specs(part), sheets[size_t(part)].anim);
        sheets[size_t(part)].read = true;
    }
    std::fclose(file);
}

void LoadAssets() {
    for (int part = 0; part < PART_COUNT; part++) {
        sheets[size_t(part)].texture = LoadTexture(kParts[size_t(part)].texture);
        trims[size_t(part)] = FrameTrims();
    }
    ReadGoddessData();
    sf::Vector2f frame(sheets[PART_BODY].anim.frameSize);
    sf::Vector2f size(frame.x * 0.3f, frame.y * 1.5f);
    hurtbox = sf::RectangleShape(size);
    hurtbox.setOrigin(size.x / 2, size.y / 5);
    hurtbox.setFillColor(sf::Color(0, 0, 255, 100));
    attackBox = sf::RectangleShape({1, 1});
    attackBox.setFillColor(sf::Color(255, 0, 0, 100));
}

void DestroyAssets() {
    goddesses.clear();
    for (int part = 0; part < PART_COUNT; part++) {
        sheets[size_t(part)] = EnemySheet();
        trims[size_t(part)] = FrameTrims();
    }
}

sf::FloatRect Hurtbox(int index) {
    hurtbox.setPosition(BodyPosition(goddesses[size_t(index)].body));
    return hurtbox.getGlobalBounds();
}

void ShapeAttackBox(sf::Vector2f size, sf::Vector2f origin, sf::Vector2f position) {
    attackBox.setScale(1, 1);
    attackBox.setSize(size);
    attackBox.setOrigin(origin);
    attackBox.setPosition(position);
}

sf::FloatRect AttackBox(int index, int) {
    Goddess& g = goddesses[size_t(index)];
    sf::Vector2f body = Sprite(g, PART_BODY).getPosition();
    if (g.beamOn) {
        ShapeAttackBox({kBeamLength, kBeamHeight}, {kBeamLength / 2, kBeamHeight}, g.arenaCentre);
    } else if (g.body.state == GODDESS_LIGHTNING) {
        float height = Sprite(g, PART_LIGHTNING).getGlobalBounds().height;
        ShapeAttackBox({kLightningWidth, height}, {kLightningWidth / 2, height},
                       Sprite(g, PART_LIGHTNING).getPosition());
    } else if (g.body.state == GODDESS_WHIP) {
        ShapeAttackBox({kLashLength, kLashDrop}, {kLashLength / 2, 0}, body);
    } else {
        ShapeAttackBox({0, 0}, {0, 0}, body);
    }
    return attackBox.getGlobalBounds();
}

bool Lashing(const Goddess& g) {
    return g.body.state == GODDESS_WHIP && g.body.current == GODDESS_WHIP;
}

bool Striking(int index) {
    const Goddess& g = goddesses[size_t(index)];
    if (g.beamOn) return true;
    return g.body.armed && (g.lightningShown || (Lashing(g) && AtDamageFrame(g.body)));
}

// The beam burns on every frame; only the lash can be parried.
EnemyBlow Blow(int index, int) {
    const Goddess& g = goddesses[size_t(index)];
    if (g.beamOn) return {1, false};
    if (g.lightningShown) return {25, false};
    if (Lashing(g) && AtDamageFrame(g.body)) return {30, true};
    return {0, false};
}

void DrawPart(sf::RenderTarget& target, const sf::Sprite& sprite, float fade, float flare) {
    sf::Sprite shown = sprite;
    sf::Color color = shown.getColor();
    color.a = sf::Uint8(float(color.a) * fade);
    shown.setColor(color);
    target.draw(shown);
    if (flare <= 0) return;
    shown.setColor(sf::Color(255, 255, 255, sf::Uint8(255 * flare)));
    target.draw(shown, sf::BlendAdd);
}

void DrawGoddess(sf::RenderTarget& target, Goddess& g) {
    float fade = Fade(g), flare = Flare(g);
    if (fade <= 0) return;
    if (g.wingsShown) DrawAfterimages(target, g.wingsTrail, kWingsTrailDrawnEvery);
    DrawAfterimages(target, g.bodyTrail, kBodyTrailDrawnEvery);
    if (g.wingsShown) DrawPart(target, Trimmed(Sprite(g, PART_WINGS), PART_WINGS), fade, flare);
    DrawPart(target, Trimmed(Sprite(g, PART_BODY), PART_BODY), fade, flare);
    if (Lashing(g)) DrawPart(target, Trimmed(Sprite(g, PART_WHIP), PART_WHIP), fade, 0);
    if (g.lightningShown) target.draw(Sprite(g, PART_LIGHTNING));
    if (DebugOverlay()) {
        hurtbox.setPosition(BodyPosition(g.body));
        DrawHitbox(target, hurtbox);
        DrawHitbox(target, attackBox);
    }
    if (g.beamOn) target.draw(Sprite(g, PART_LASER));
    if (!g.sparksExist) return;
    DrawPart(target, Sprite(g, PART_SPARK), fade, flare);
    DrawPart(target, *g.spark2.sprite, fade, flare);
}

void DrawAll(sf::RenderTarget& target) {
    for (int i = 0; i < int(goddesses.size()); i++) {
        AttackBox(i, 0);
        DrawGoddess(target, goddesses[size_t(i)]);
    }
}

}  // namespace

const EnemyKindOps& GoddessKind() {
    static const EnemyKindOps ops = [] {
        EnemyKindOps kind;
        FillRosterOps<goddesses, UpdateGoddess>(kind);
        // She acts wherever the hero is.
        kind.update = [](float dt, sf::Vector2f target) {
            for (Goddess& g : goddesses) UpdateGoddess(g, dt, target);
        };
        kind.loadAssets = LoadAssets;
        kind.destroyAssets = DestroyAssets;
        kind.add = [](sf::Vector2f position, int containerId, int) {
            AddGoddessEnemy(position, containerId);
        };
        kind.hurtbox = Hurtbox;
        kind.attackBox = AttackBox;
        kind.striking = Striking;
        kind.blow = Blow;
        kind.draw = DrawAll;
        kind.deadState = GODDESS_DEAD;
        kind.pushedOut = false;
        return kind;
    }();
    return ops;
}

void AddGoddessEnemy(sf::Vector2f position, int containerId) {
    Goddess g;
    const EnemySheet& body = sheets[PART_BODY];
    CreateEnemyBody(g.body, body.texture.get(), body.anim, position, {0.5f, 0.5f}, containerId,
                    kFullLife);
    for (int part = PART_WINGS; part < PART_COUNT; part++) {
        const EnemySheet& sheet = sheets[size_t(part)];
        CreateEnemyBody(g.parts[size_t(part)], sheet.texture.get(), sheet.anim, position,
                        {0.5f, 0.5f}, containerId, 0);
    }
    const EnemySheet& spark = sheets[PART_SPARK];
    CreateEnemyBody(g.spark2, spark.texture.get(), spark.anim, position, {0.5f, 0.5f}, containerId,
                    0);
    g.hoverCentre = g.arenaCentre = position;
    // The beam runs between the sparks' goals, across the band it burns.
    Sprite(g, PART_LASER).setPosition(position.x, position.y + kSparkGoal.y);
    Sprite(g, PART_LASER).setRotation(90);
    try {
        goddesses.push_back(std::move(g));
    } catch (const std::bad_alloc&) {
        LogError("Erreur realloc dans AddGoddessEnemy\n");
    }
}

int ChooseGoddessMove(int& pressure, bool enraged, bool sparksExist, bool sparksArrived,
                      const std::function<int()>& roll) {
    pressure += enraged ? 2 : 1;
    int r = roll() % (enraged ? 100000 / 4 : 100000);
    if (enraged && !sparksExist) return GODDESS_CREATE_SPARK;
    if (r >= pressure && pressure <= 300) return GODDESS_IDLE;
    int threshold = sparksExist ? 55 : 95;
    if (roll() % 100 < threshold) return roll() % 100 < 55 ? GODDESS_WHIP : GODDESS_LIGHTNING;
    if (!sparksExist) return GODDESS_CREATE_SPARK;
    if (sparksArrived) return GODDESS_TRIGGER_SPARK;
    return roll() % 100 < 50 ? GODDESS_WHIP : GODDESS_LIGHTNING;
}

sf::Vector2f GoddessHoverPoint(sf::Vector2f centre, float phase) {
    return {centre.x + kHoverWidth * std::sin(phase),
            centre.y + kHoverHeight * std::sin(2 * phase)};
}

GoddessStatus GetGoddessStatus(int index) {
    GoddessStatus status;
    if (index < 0 || size_t(index) >= goddesses.size()) return status;
    Goddess& g = goddesses[size_t(index)];
    status.state = g.body.state;
    status.life = g.body.life;
    status.enraged = Enraged(g);
    status.pressure = g.pressure;
    status.phase = g.phase;
    status.relocating = g.relocating;
    status.wingsShown = g.wingsShown;
    status.lashing = Lashing(g);
    status.lightningShown = g.lightningShown;
    status.lightningPoint = g.lightningPoint;
    status.sparksExist = g.sparksExist;
    status.sparksArrived = g.sparksArrived;
    status.beamOn = g.beamOn;
    status.beamTimer = g.beamTimer;
    status.body = Sprite(g, PART_BODY).getPosition();
    status.spark1 = Sprite(g, PART_SPARK).getPosition();
    status.spark2 = g.spark2.sprite->getPosition();
    status.bodyScaleX = Sprite(g, PART_BODY).getScale().x;
    status.whipScaleX = Sprite(g, PART_WHIP).getScale().x;
    status.bodyFrame = CurrentClip(g.body).currentFrame;
    status.whipFrame = Clip(g, PART_WHIP).currentFrame;
    status.fade = Fade(g);
    return status;
}

bool GoddessDefeated() {
    for (const Goddess& g : goddesses) {
        if (g.defeated) return true;
    }
    return false;
}

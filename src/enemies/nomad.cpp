#include "enemies/nomad.h"

#include <array>
#include <cmath>
#include <cstdlib>
#include <new>
#include <vector>

#include "common/log.h"
#include "enemies/enemy_body.h"
#include "world/room_draw.h"

namespace {

const char* const kTexture = "Assets/Sprites/Enemies/Nomad.png";
const char* const kAnimData = "Assets/Sprites/Enemies/NomadAnimData.txt";
const std::array<const char*, 4> kSounds = {"Assets/Sounds/SFX/Enemy/Nomad/Nomad_Light_Attack.wav",
                                            "Assets/Sounds/SFX/Enemy/Nomad/Nomad_Heavy_Attack.wav",
                                            "Assets/Sounds/SFX/Enemy/Nomad/Nomad_Death.wav",
                                            "Assets/Sounds/SFX/Enemy/Nomad/Nomad_Rush_Dash.wav"};
// The escape dash has a sound slot of its own, with no sample: it dashes away in silence.
enum NomadSound {
    SOUND_LIGHT = 0,
    SOUND_HEAVY = 1,
    SOUND_DEATH = 2,
    SOUND_RUSH = 3,
    SOUND_ESCAPE = 4,
    SOUND_SLOTS = 5
};
// The dashes' lines carry a dash frame too; it changes nothing and is read past.
const std::array<AnimClipSpec, 7> kClips = {{{"IDLE", 1},
                                             {"WALK", 1},
                                             {"LIGHT_ATTACK", 0, " / Damage Frame : %d"},
                                             {"HEAVY_ATTACK", 0, " / Damage Frame : %d"},
                                             {"ESCAPE_DASH", 0},
                                             {"RUSH_DASH", 0},
                                             {"DEAD", 0}}};
// The sound each state starts with (-1: none).
constexpr std::array<int, 7> kStateSound = {-1,           -1,         SOUND_LIGHT, SOUND_HEAVY,
                                            SOUND_ESCAPE, SOUND_RUSH, SOUND_DEATH};

constexpr bool kSheetFacesLeft = false;
constexpr int kFullLife = 15;
constexpr float kWalkSpeed = 150;
constexpr float kDashSpeed = 3000;
constexpr float kDashLength = 300;
constexpr float kIdleTime = 1.5f;

struct Nomad {
    EnemyBody body;
    float dashStart = 0;  // where the current dash set off (x)
    int blocked = 0;      // the way ahead is a wall or the arena's edge
    int comboCount = 0;   // actions finished since the last rest
    float idleTimer = 0;
    float idleTime = kIdleTime;
    int detected = 0;
    int struck = 0;  // the combo has chained a light or heavy cut
};

EnemySheet sheet;
std::vector<Nomad> nomads;
sf::RectangleShape hurtbox;
sf::RectangleShape attackBox;
sf::RectangleShape probe;
// Every patrolling Nomad walks this way; the sign is the direction. Kept from room to room.
float patrolSpeed = 90;

float X(const Nomad& nomad) {
    return BodyPosition(nomad.body).x;
}

bool Right(const Nomad& nomad) {
    return FacesRight(nomad.body, kSheetFacesLeft);
}

void FaceTarget(Nomad& nomad, sf::Vector2f target) {
    FaceRight(nomad.body, target.x >= X(nomad), kSheetFacesLeft);
}

sf::FloatRect PlaceHurtbox(const Nomad& nomad) {
    hurtbox.setPosition(BodyPosition(nomad.body));
    return hurtbox.getGlobalBounds();
}

// A thin probe as tall as the body, just outside it on the side the Nomad is moving to (behind
// it during the escape dash).
sf::FloatRect PlaceProbe(const Nomad& nomad) {
    sf::FloatRect body = PlaceHurtbox(nomad);
    bool ahead = Right(nomad) != (nomad.body.state == NOMAD_ESCAPE_DASH);
    sf::Vector2f size = probe.getSize();
    float left = ahead ? body.left + body.width : body.left - size.x;
    probe.setPosition(left, body.top + body.height - size.y);
    return probe.getGlobalBounds();
}

float Reach(const Nomad& nomad) {
    return nomad.body.sprite->getGlobalBounds().width * 0.5f;
}

void SetNomadState(Nomad& nomad, int state) {
    EnterState(nomad.body, state);
    nomad.body.armed = 1;
    PlaySound(nomad.body, kStateSound[state], 0);
    if (state == NOMAD_ESCAPE_DASH || state == NOMAD_RUSH_DASH) nomad.dashStart = X(nomad);
}

// A light or a heavy cut, at even odds.
void StartCut(Nomad& nomad) {
    SetNomadState(nomad, NOMAD_LIGHT_ATTACK + std::rand() % 2);
    nomad.struck = 1;
}

// Noticing the hero: only inside the arena, and only when facing them until hurt.
bool Detect(Nomad& nomad, sf::Vector2f target) {
    if (!ContainerContains(target, nomad.body.containerId)) {
        nomad.detected = 0;
    } else if (!nomad.detected) {
        bool facing =
            (target.x >= X(nomad) && Right(nomad)) || (target.x < X(nomad) && !Right(nomad));
        if (facing || nomad.body.life != kFullLife) nomad.detected = 1;
    }
    return nomad.detected != 0;
}

// After an action: chain another with 80 % odds, then 50 %, then none. A combo whose chain
// breaks before any cut gets one; otherwise the Nomad rests.
void Chain(Nomad& nomad, bool inReach) {
    nomad.comboCount++;
    int roll = std::rand() % 100;
    int threshold = nomad.comboCount == 1 ? 80 : (nomad.comboCount == 2 ? 50 : 0);
    if (roll > threshold) {
        if (nomad.struck) {
            SetNomadState(nomad, NOMAD_IDLE);
        } else {
            StartCut(nomad);
        }
    } else if (roll == threshold) {
        SetNomadState(nomad, NOMAD_IDLE);
    } else {
        int next = std::rand() % 100;
        if (inReach) {
            if (next >= 60) {
                SetNomadState(nomad, NOMAD_ESCAPE_DASH + std::rand() % 2);
            } else {
                StartCut(nomad);
            }
        } else if (next < 70) {
            SetNomadState(nomad, NOMAD_RUSH_DASH);
        }
        // Otherwise nothing this frame: the finished action decides again on the next one.
    }
}

void Decide(Nomad& nomad, sf::Vector2f target, float dt) {
    if (nomad.comboCount == 0) nomad.struck = 0;
    if (!Detect(nomad, target)) {
        if (nomad.body.state != NOMAD_WALK) SetNomadState(nomad, NOMAD_WALK);
        return;
    }
    bool inReach = std::fabs(target.x - X(nomad)) < Reach(nomad);
    switch (nomad.body.state) {
        case NOMAD_IDLE:
            if (nomad.idleTimer < nomad.idleTime) {
                nomad.idleTimer += dt;
            } else {
                SetNomadState(nomad, NOMAD_WALK);
                nomad.idleTimer = 0;
            }
            nomad.comboCount = 0;
            break;
        case NOMAD_WALK:
            if (inReach) {
                SetNomadState(nomad, NOMAD_LIGHT_ATTACK + std::rand() % 4);
                nomad.struck = 1;
            }
            break;
        case NOMAD_LIGHT_ATTACK:
        case NOMAD_HEAVY_ATTACK:
        case NOMAD_ESCAPE_DASH:
        case NOMAD_RUSH_DASH: Chain(nomad, inReach); break;
        default: break;
    }
}

void UpdateWalk(Nomad& nomad, float dt, sf::Vector2f target) {
    if (Detect(nomad, target)) {
        FaceTarget(nomad, target);
        nomad.body.sprite->move((X(nomad) > target.x ? -kWalkSpeed : kWalkSpeed) * dt, 0);
        Decide(nomad, target, dt);
        return;
    }
    if (nomad.blocked) patrolSpeed = -patrolSpeed;
    nomad.body.sprite->move(patrolSpeed * dt, 0);
    if ((patrolSpeed > 0 && !Right(nomad)) || (patrolSpeed < 0 && Right(nomad))) {
        FaceRight(nomad.body, patrolSpeed > 0, kSheetFacesLeft);
    }
}

// A dash that has run its length goes no further, even while the Nomad is still making up its
// mind about what comes next.
bool DashCovered(const Nomad& nomad) {
    return std::fabs(X(nomad) - nomad.dashStart) > kDashLength;
}

// Backwards, away from the hero, until 300 px are covered or the way behind is shut.
void UpdateEscape(Nomad& nomad, float dt, sf::Vector2f target) {
    if (nomad.blocked) {
        nomad.dashStart = X(nomad);
        Decide(nomad, target, dt);
        return;
    }
    if (!DashCovered(nomad)) {
        nomad.body.sprite->move((Right(nomad) ? -kDashSpeed : kDashSpeed) * dt, 0);
    }
    if (DashCovered(nomad) || ClipFinished(nomad.body)) Decide(nomad, target, dt);
}

// Forwards after the wind-up frame, until 300 px are covered or the way ahead is shut.
void UpdateRush(Nomad& nomad, float dt, sf::Vector2f target) {
    if (ClipFinished(nomad.body)) {
        Decide(nomad, target, dt);
        FaceTarget(nomad, target);
        return;
    }
    if (CurrentClip(nomad.body).currentFrame == 0) {
        nomad.dashStart = X(nomad);
        return;
    }
    if (!nomad.blocked && !DashCovered(nomad)) {
        nomad.body.sprite->move((Right(nomad) ? kDashSpeed : -kDashSpeed) * dt, 0);
    }
    if (nomad.blocked || DashCovered(nomad)) Decide(nomad, target, dt);
}

void UpdateNomad(Nomad& nomad, float dt, sf::Vector2f target) {
    EnemyBody& body = nomad.body;
    nomad.blocked = ProbeBlocked(PlaceProbe(nomad), probe.getPosition(), body.containerId);
    if (body.life < 1 && body.state != NOMAD_DEAD) SetNomadState(nomad, NOMAD_DEAD);
    AdvanceClip(body, dt);
    int frame = CurrentClip(body).currentFrame + 1;
    switch (body.state) {
        case NOMAD_IDLE: Decide(nomad, target, dt); break;
        case NOMAD_WALK: UpdateWalk(nomad, dt, target); break;
        case NOMAD_LIGHT_ATTACK:
            if (frame == 1 || AtDamageFrame(body)) FaceTarget(nomad, target);
            if (ClipFinished(body)) Decide(nomad, target, dt);
            break;
        case NOMAD_HEAVY_ATTACK:
            if (frame == 1) FaceTarget(nomad, target);
            if (ClipFinished(body)) Decide(nomad, target, dt);
            break;
        case NOMAD_ESCAPE_DASH: UpdateEscape(nomad, dt, target); break;
        case NOMAD_RUSH_DASH: UpdateRush(nomad, dt, target); break;
        default: break;
    }
    SoundsFollow(body);
}

void ReadDashFrame(std::FILE* file, int clip) {
    if (clip == NOMAD_ESCAPE_DASH || clip == NOMAD_RUSH_DASH) {
        ReadAnimTail(file, " / Dash Frame : %d");
    }
}

void LoadAssets() {
    LoadEnemySheet(sheet, kTexture, kAnimData, kClips, ReadDashFrame);
    sf::Vector2f frame(sheet.anim.frameSize);
    sf::Vector2f body(frame.x * 0.2f * 3, frame.y * 0.5f * 3);
    hurtbox = sf::RectangleShape(body);
    hurtbox.setOrigin(body.x / 2, body.y);
    hurtbox.setFillColor(sf::Color(0, 0, 255, 100));
    attackBox = sf::RectangleShape({1, 1});
    attackBox.setFillColor(sf::Color(255, 0, 0, 100));
    probe = sf::RectangleShape({1, frame.y * 1.5f});
    probe.setFillColor(sf::Color(255, 255, 255, 100));
    patrolSpeed = 90;
}

void DestroyAssets() {
    nomads.clear();
    sheet = EnemySheet();
}

sf::FloatRect Hurtbox(int index) {
    return PlaceHurtbox(nomads[index]);
}

// From the centre line, half the sprite's width forward, rising from the feet: half the height
// for the light cut, all of it for the heavy one. Out of a cut it waits at the world's origin.
sf::FloatRect AttackBox(int index, int) {
    const EnemyBody& body = nomads[index].body;
    sf::FloatRect bounds = body.sprite->getGlobalBounds();
    bool light = body.state == NOMAD_LIGHT_ATTACK;
    bool cutting = light || body.state == NOMAD_HEAVY_ATTACK;
    sf::Vector2f size(bounds.width * 0.5f, light ? bounds.height * 0.5f : bounds.height);
    attackBox.setSize(size);
    if (cutting) {
        attackBox.setPosition(bounds.left + bounds.width * 0.5f, bounds.top + bounds.height);
        attackBox.setOrigin(0, size.y);
        attackBox.setScale(FacesRight(body, kSheetFacesLeft) ? 1.0f : -1.0f, 1);
    } else {
        attackBox.setPosition(0, 0);
        attackBox.setOrigin(0, 0);
        attackBox.setScale(1, 1);
    }
    return attackBox.getGlobalBounds();
}

void DrawAll(sf::RenderTarget& target) {
    for (const Nomad& nomad : nomads) target.draw(*nomad.body.sprite);
    if (!DebugOverlay()) return;
    for (int i = 0; i < int(nomads.size()); i++) {
        PlaceProbe(nomads[i]);
        AttackBox(i, 0);
        target.draw(hurtbox);
        target.draw(attackBox);
        target.draw(probe);
    }
}

bool Striking(int index) {
    const EnemyBody& body = nomads[index].body;
    bool cutting = body.state == NOMAD_LIGHT_ATTACK || body.state == NOMAD_HEAVY_ATTACK;
    return body.armed && cutting && AtDamageFrame(body);
}

// Both cuts can be parried; nothing else the Nomad does hurts.
EnemyBlow Blow(int index, int) {
    switch (nomads[index].body.state) {
        case NOMAD_LIGHT_ATTACK: return {16, true};
        case NOMAD_HEAVY_ATTACK: return {20, true};
        default: return {0, false};
    }
}

}  // namespace

const EnemyKindOps& NomadKind() {
    static const EnemyKindOps ops = [] {
        EnemyKindOps kind;
        FillRosterOps<nomads, UpdateNomad, true>(kind);
        kind.loadAssets = LoadAssets;
        kind.destroyAssets = DestroyAssets;
        kind.add = [](sf::Vector2f position, int containerId, int) {
            AddNomadEnemy(position, containerId);
        };
        kind.hurtbox = Hurtbox;
        kind.attackBox = AttackBox;
        kind.striking = Striking;
        kind.blow = Blow;
        kind.draw = DrawAll;
        kind.deadState = NOMAD_DEAD;
        return kind;
    }();
    return ops;
}

void AddNomadEnemy(sf::Vector2f position, int containerId) {
    Nomad nomad;
    CreateEnemyBody(nomad.body, sheet.texture.get(), sheet.anim, position, {0.5f, 1.0f},
                    containerId, kFullLife);
    LoadEnemySounds(nomad.body, kSounds, 1);
    nomad.body.sounds.resize(SOUND_SLOTS);
    try {
        nomads.push_back(std::move(nomad));
    } catch (const std::bad_alloc&) {
        LogError("Erreur realloc dans AddNomadEnemy\n");
    }
}

int NomadState(int index) {
    return nomads[index].body.state;
}

float NomadReach(int index) {
    return Reach(nomads[index]);
}

#include "support/autoplayer.h"

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <map>
#include <memory>
#include <optional>
#include <set>

#include "app/events.h"
#include "app/game.h"
#include "app/game_state.h"
#include "app/input.h"
#include "enemies/enemies.h"
#include "enemies/enemy_body.h"
#include "enemies/flying_knight.h"
#include "enemies/frog.h"
#include "enemies/goddess.h"
#include "enemies/king.h"
#include "enemies/nomad.h"
#include "enemies/plant.h"
#include "enemies/slime.h"
#include "enemies/trash.h"
#include "interactables/chests.h"
#include "menus/ending.h"
#include "menus/settings_files.h"
#include "player/player.h"
#include "player/player_combat.h"
#include "player/save.h"
#include "support/level_check.h"
#include "support/reach.h"
#include "world/elevators.h"
#include "world/room.h"
#include "world/room_lifecycle.h"
#include "world/transition.h"

namespace {

constexpr float kStep = 1.0f / 60.0f;
constexpr int kForever = 1 << 20;
// No way forward for this long in one room is being stuck.
constexpr float kStuckSeconds = 40;

AppWindow* app = nullptr;
float playClock = 0;
std::set<int> held;  // key codes held down

// ---------------------------------------------------------------- the hands

int Key(int action) {
    return Settings().bindings[action];
}

void Hold(int action, bool down) {
    int key = Key(action);
    if (down == (held.count(key) != 0)) return;
    if (down) {
        InputScriptPressKey(sf::Keyboard::Key(key));
        held.insert(key);
    } else {
        InputScriptReleaseKey(sf::Keyboard::Key(key));
        held.erase(key);
    }
}

// A fresh press (the game acts on presses), left held.
void Press(int action) {
    Hold(action, false);
    Hold(action, true);
}

void TapKey(int key) {
    InputScriptPressKey(sf::Keyboard::Key(key));
    InputScriptReleaseKey(sf::Keyboard::Key(key));
    held.erase(key);
}

void ReleaseAll() {
    for (int key : std::set<int>(held)) InputScriptReleaseKey(sf::Keyboard::Key(key));
    held.clear();
}

// Left and right: toward `dir`, or neither.
void Steer(int dir) {
    Hold(BINDING_RIGHT, dir > 0);
    Hold(BINDING_LEFT, dir < 0);
}

void Attack() {
    InputScriptClick(sf::Mouse::Left, {960, 540});
}

const char* const kMoveNames[] = {"walk", "fall", "jump", "dash", "run", "ride"};

// With OV_AUTOPLAY_TRACE set, a line every quarter second on stderr: how the player sees things.
void Trace();

void WatchKnights();
extern std::map<int, float> knightAttacks;

void Frame() {
    WatchKnights();
    Trace();
    PollEvents(*app);
    if (GetGameState() == GAME_STATE_GAME) UpdateGame(*app->window, kStep);
    playClock += kStep;
}

// ---------------------------------------------------------------- what the eyes see

sf::Vector2f Feet() {
    return GetPlayerPosition();
}

float HeroX() {
    return Feet().x;
}

int Abilities() {
    const ::Abilities& owned = Save().abilities;
    return (owned.canDash ? REACH_DASH : 0) | (owned.canRun ? REACH_RUN : 0) |
           (owned.CanCreatePlatform ? REACH_CLOUD : 0);
}

std::string Where() {
    return "(" + std::to_string(int(Feet().x)) + ", " + std::to_string(int(Feet().y)) + ")";
}

struct Foe {
    int kind = 0, index = 0;
    sf::FloatRect box;
};

// Plants cannot be cut down, only kept away from.
std::vector<Foe> LivingFoes() {
    std::vector<Foe> foes;
    for (int kind = 0; kind < ENEMY_KIND_COUNT; kind++) {
        if (kind == ENEMY_PLANT) continue;
        for (int i = 0; i < EnemyCount(kind); i++) {
            if (IsEnemyDead(i, kind)) continue;
            int* life = GetEnemyLife(i, kind);
            if (life && *life <= 0) continue;
            foes.push_back({kind, i, GetEnemyHurtbox(i, kind)});
        }
    }
    return foes;
}

sf::Vector2f Middle(const sf::FloatRect& r) {
    return {r.left + r.width / 2, r.top + r.height / 2};
}

// ---------------------------------------------------------------- the bot

struct Flight {
    bool active = false;
    ReachStep step;
    float takeOff = 0, startY = 0;
    int phase = 0;  // run-jumps: 0 back up, 1 charge; then 2 in the air
    int t = -1;     // updates since the take-off
    int wait = 0;
    int cloudAt = -1;
};

struct Bot {
    int room = -1;
    std::unique_ptr<ReachMap> map;
    std::vector<ReachStep> route;
    int routeAbilities = -1;
    std::string routeGoal;
    Flight flight;
    int lostFrames = 0;
    int interactWait = 0;
    int attackWait = 0;
};

Bot bot;

void Trace() {
    static const bool on = std::getenv("OV_AUTOPLAY_TRACE") != nullptr;
    static int frame = 0;
    static const int every =
        std::atoi(std::getenv("OV_AUTOPLAY_TRACE") ? std::getenv("OV_AUTOPLAY_TRACE") : "15");
    if (!on || frame++ % std::max(every, 1) != 0) return;
    const Player& player = GetPlayer();
    std::fprintf(stderr, "%7.2f room %d at %s state %d life %d vy %.1f up %d foes %zu", playClock,
                 CurrentRoomNumber(), Where().c_str(), player.body.state, player.life,
                 player.body.vy, player.body.blocked[CONTACT_UP], LivingFoes().size());
    std::fprintf(stderr, " potions %d", player.potions);
    for (const Foe& foe : LivingFoes()) {
        sf::Vector2f m = Middle(foe.box);
        if (std::abs(m.x - Feet().x) < 600) {
            int* life = GetEnemyLife(foe.index, foe.kind);
            std::fprintf(stderr, " [kind %d at %d,%d state %d life %d box %d-%d]", foe.kind,
                         int(m.x), int(m.y), GetEnemyState(foe.index, foe.kind), life ? *life : 0,
                         int(foe.box.left), int(foe.box.left + foe.box.width));
        }
    }
    sf::FloatRect blade = PlacePlayerAttackBox();
    std::fprintf(stderr, " blade %d-%d,%d-%d", int(blade.left), int(blade.left + blade.width),
                 int(blade.top), int(blade.top + blade.height));
    if (bot.flight.active) {
        const ReachStep& s = bot.flight.step;
        std::fprintf(stderr, " flying %s dir %d hold %d-%d%s%s to [%d,%d] t %d",
                     kMoveNames[s.how.kind], s.how.dir, s.how.holdFrom, s.how.holdTo,
                     s.how.cloud ? " cloud" : "", s.how.drop ? " drop" : "", s.to.column, s.to.row,
                     bot.flight.t);
    } else if (auto here = bot.map ? bot.map->PlaceAt(Feet()) : std::nullopt) {
        for (const ReachStep& s : bot.route) {
            if (!(s.from == *here)) continue;
            std::fprintf(stderr, " at [%d,%d] next %s dir %d to [%d,%d]", here->column, here->row,
                         kMoveNames[s.how.kind], s.how.dir, s.to.column, s.to.row);
        }
    }
    std::fprintf(stderr, "\n");
}

void LoadRoomMap() {
    if (bot.room == CurrentRoomNumber() && bot.map) return;
    bot.room = CurrentRoomNumber();
    bot.map = std::make_unique<ReachMap>(CurrentRoom(), Margin::kWeaker);
    bot.route.clear();
    bot.flight = Flight();
    knightAttacks.clear();
}

bool Busy() {
    const OverlayFlags& flags = Overlays();
    return Transition().transitionActive || Transition().respawnStep != 0 ||
           !GetPlayer().body.controllable || flags.explanationOpen || flags.checkpointMenuOpen ||
           flags.merchantMenuOpen || flags.shopOpen || flags.pauseOpen || flags.mapOpen;
}

// Panels and menus that take the controls: the ability panel closes with JUMP, the others with
// Escape.
void ClosePanels() {
    const OverlayFlags& flags = Overlays();
    if (bot.interactWait-- > 0) return;
    bot.interactWait = 20;
    if (flags.explanationOpen) {
        TapKey(Key(BINDING_JUMP));
    } else if (flags.checkpointMenuOpen || flags.merchantMenuOpen || flags.shopOpen ||
               flags.pauseOpen || flags.mapOpen) {
        TapKey(sf::Keyboard::Escape);
    }
}

bool OnGround() {
    int state = GetPlayer().body.state;
    return PlayerStanding() &&
           (state == PLAYER_IDLE || state == PLAYER_WALK || state == PLAYER_RUN);
}

// ---------------------------------------------------------------- flights

void StartFlight(const ReachStep& step, float takeOff) {
    bot.flight = Flight();
    bot.flight.active = true;
    bot.flight.step = step;
    bot.flight.takeOff = takeOff;
    bot.flight.startY = Feet().y;
    bot.flight.phase = step.how.kind == ReachMove::RUN_JUMP ? 0 : 2;
}

void EndFlight() {
    bot.flight.active = false;
    ReleaseAll();
}

// One update of a flight's input; the flight ends on landing.
void FlyOn() {
    Flight& f = bot.flight;
    const ReachMove& how = f.step.how;
    int dir = how.dir;
    const Player& player = GetPlayer();
    if (player.body.state == PLAYER_TAKE_DAMAGE || player.body.state == PLAYER_DEAD) {
        EndFlight();
        return;
    }
    if (f.phase == 0) {  // back up for a run-up a dash and a tile long
        Steer(-dir);
        float runway = (f.takeOff - HeroX()) * float(dir);
        bool behind = bot.map->PlaceAt(Feet() - sf::Vector2f(float(dir) * 60, 0)).has_value();
        if (runway >= 600 || !behind || f.wait++ > 90) {
            f.phase = 1;
            f.wait = 0;
        }
        return;
    }
    if (f.phase == 1) {  // the run: a dash with the key held on, then the jump at the edge
        Steer(dir);
        if (f.wait == 0 && player.dashCooldownTimer < player.tuning.dashCooldown) return;
        if (f.wait++ == 0) Press(BINDING_DASH);
        if ((f.takeOff - HeroX()) * float(dir) <= 22 || f.wait > 120) {
            Press(BINDING_JUMP);
            f.phase = 2;
            f.t = 0;
        }
        return;
    }
    f.t++;
    int t = f.t;
    switch (how.kind) {
        case ReachMove::JUMP:
            if (t == 0) Press(BINDING_JUMP);
            if (how.cloud && f.cloudAt < 0 && t > 2 && player.body.vy >= 0) {
                Hold(BINDING_JUMP, false);
                TapKey(Key(BINDING_CLOUD));
                f.cloudAt = t;
            }
            if (f.cloudAt >= 0 && t == f.cloudAt + 2) Press(BINDING_JUMP);
            Steer(t >= how.holdFrom && t < how.holdTo ? dir : 0);
            break;
        case ReachMove::DASH:
            if (t == 0) {
                Steer(dir);
                Press(BINDING_DASH);
            }
            if (t == 1 && !how.runAfterDash) Hold(BINDING_DASH, false);
            if (t >= 12) Steer(t >= how.holdFrom && t < how.holdTo ? dir : 0);
            break;
        case ReachMove::RUN_JUMP: Steer(dir); break;
        case ReachMove::FALL:
            if (how.drop) {
                bool through = Feet().y > f.startY + 40;
                Hold(BINDING_DOWN, !through && t < 60);
                if (t == 0) Press(BINDING_JUMP);
                if (through) Hold(BINDING_JUMP, false);
                Steer(t >= how.holdFrom && t < how.holdTo ? dir : 0);
            } else {
                // Walk off, then count the flight from the moment the feet leave the floor.
                if (f.wait >= 0 && PlayerStanding() && f.wait++ < 40) {
                    Steer(dir);
                    f.t = -1;
                    return;
                }
                if (f.wait >= 0) {
                    f.wait = -1;
                    f.t = t = 0;
                }
                Steer(t >= how.holdFrom && t < how.holdTo ? dir : 0);
            }
            break;
        default: break;
    }
    // Coming down over the floor aimed at, the hands steer onto its middle: the real hero is a
    // little faster than the planned one, and narrow branches forgive little. After a cloud, only
    // once the jump off it is past its top.
    sf::Vector2f aim = bot.map->FeetAt(f.step.to);
    bool steerable = how.kind == ReachMove::JUMP || how.kind == ReachMove::FALL;
    bool offCloud = !how.cloud || (f.cloudAt >= 0 && t > f.cloudAt + 8);
    if (steerable && f.step.door < 0 && offCloud && player.body.vy > 0 && t > 0 &&
        Feet().y < aim.y - 8) {
        float off = aim.x - HeroX();
        Steer(std::abs(off) > 14 ? (off > 0 ? 1 : -1) : 0);
    }
    bool cloudPending = how.cloud && (f.cloudAt < 0 || t < f.cloudAt + 8);
    if ((t > 3 && PlayerStanding() && player.body.vy >= 0 && !cloudPending) || t > 400) {
        EndFlight();
    }
}

// ---------------------------------------------------------------- fighting

// The parry is raised this long before a blow's damage frame (it holds 0.3 s).
constexpr float kParryLead = 0.2f;
// No swing is started when a blow lands sooner than this: the light cut's damage frame comes
// 0.125 s after the press, and the parry may cancel the swing only after it.
constexpr float kSwingTime = 0.3f;

const EnemyKindOps& Ops(int kind) {
    switch (kind) {
        case ENEMY_FROG: return FrogKind();
        case ENEMY_KING: return KingKind();
        case ENEMY_NOMAD: return NomadKind();
        case ENEMY_TRASH: return TrashKind();
        case ENEMY_SLIME: return SlimeKind();
        case ENEMY_PLANT: return PlantKind();
        case ENEMY_FLYING_KNIGHT: return FlyingKnightKind();
        default: return GoddessKind();
    }
}

// The Flying Knight's sword has clips of its own: its cut is the sheet's second row, at 12
// frames a second, and lands on the third and the fifth frame. The plunge rises over the hero
// for a second, then drops for two and strikes in the drop's last tenth.
constexpr int kKnightCutFrames[] = {3, 5};
constexpr float kKnightCutRate = 12;
constexpr float kKnightPlungeStrike = 1 + 2 * 0.9f;

// When the Flying Knights' attacks under way began, by knight.
std::map<int, float> knightAttacks;

void WatchKnights() {
    for (int i = 0; i < EnemyCount(ENEMY_FLYING_KNIGHT); i++) {
        if (GetEnemyState(i, ENEMY_FLYING_KNIGHT) != KNIGHT_ATTACK) {
            knightAttacks.erase(i);
        } else if (!knightAttacks.count(i)) {
            knightAttacks[i] = playClock;
        }
    }
}

std::optional<float> KnightBlow(const Foe& foe) {
    const EnemyBody& body = Ops(foe.kind).body(foe.index);
    if (body.state != KNIGHT_ATTACK || !body.armed) return std::nullopt;
    if (FlyingKnightAttackKind(foe.index) == KNIGHT_PLUNGE) {
        auto start = knightAttacks.find(foe.index);
        if (start == knightAttacks.end()) return std::nullopt;
        return std::max(0.0f, start->second + kKnightPlungeStrike - playClock);
    }
    sf::IntRect frame = FlyingKnightSword(foe.index).getTextureRect();
    if (frame.top != frame.height || frame.width <= 0) return std::nullopt;  // not cutting yet
    int shown = frame.left / frame.width + 1;
    for (int cut : kKnightCutFrames) {
        if (cut >= shown) return float(cut - shown) / kKnightCutRate;
    }
    return std::nullopt;
}

// Seconds until the foe's armed attack reaches its damage frame (0 while on it); nothing when
// no blow of its clip is coming.
std::optional<float> UntilBlow(const Foe& foe) {
    if (foe.kind == ENEMY_FLYING_KNIGHT) return KnightBlow(foe);
    const EnemyBody& body = Ops(foe.kind).body(foe.index);
    size_t clip = size_t(body.current);
    if (!body.armed || clip >= body.damageFrames.size() || body.damageFrames[clip] <= 0) {
        return std::nullopt;
    }
    const Animation& shown = CurrentClip(body);
    int frame = shown.currentFrame + 1, damage = body.damageFrames[clip];
    if (frame > damage || shown.finished || shown.frameRate == 0) return std::nullopt;
    if (frame == damage) return 0.0f;
    return float(damage - frame) / float(shown.frameRate) - shown.timer;
}

// The floor the hero stands on ends less than a step behind him (facing `dir`).
bool EdgeBehind(int dir) {
    sf::Vector2f below = Feet() + sf::Vector2f(-float(dir) * 50, 4);
    for (const Collision& collision : CurrentRoom().collisions) {
        if (collision.active && collision.shape->getGlobalBounds().contains(below)) return false;
    }
    return true;
}

int ClipFrame(const Foe& foe) {
    return CurrentClip(Ops(foe.kind).body(foe.index)).currentFrame + 1;
}

// The King's dash crosses the arena on its damage frame: all of it ahead of him is in its way.
bool InKingsDash(const Foe& foe) {
    if (GetEnemyState(foe.index, foe.kind) != KING_DASH_ATTACK) return false;
    sf::Vector2f king = Middle(foe.box);
    bool right = GetEnemySprite(foe.index, foe.kind)->getScale().x < 0;  // drawn facing left
    return (HeroX() > king.x) == right && std::abs(HeroX() - king.x) < 1200;
}

// The King's leap: in the air (the two frames before the landing's) it comes down on the aim
// taken at the take-off, across six tenths of his sprite's width.
std::optional<float> KingLanding(const Foe& foe) {
    if (GetEnemyState(foe.index, foe.kind) != KING_JUMP_ATTACK) return std::nullopt;
    int landing = Ops(foe.kind).body(foe.index).damageFrames[KING_JUMP_ATTACK];
    int frame = ClipFrame(foe);
    if (frame < landing - 2 || frame > landing) return std::nullopt;
    return KingJumpAim(foe.index).x;
}

constexpr float kLightningHalfWidth = 75;

// The Goddess's lightning falls where she stood on the move's damage frame, a column of its
// width over the lawn.
std::optional<float> GoddessLightning(const Foe& foe) {
    GoddessStatus status = GetGoddessStatus(foe.index);
    if (status.state != GODDESS_LIGHTNING) return std::nullopt;
    const EnemyBody& body = Ops(foe.kind).body(foe.index);
    if (body.current != GODDESS_LIGHTNING ||
        ClipFrame(foe) < body.damageFrames[GODDESS_LIGHTNING]) {
        return std::nullopt;
    }
    return status.lightningPoint.x;
}

// The beam between the Goddess's sparks burns a band across the garden, from her spawn's height
// up; it may come whenever the sparks have reached the garden's sides.
constexpr float kBeamBand = 200;
bool BeamComing(const Foe& foe) {
    GoddessStatus status = GetGoddessStatus(foe.index);
    return status.sparksArrived || status.beamOn;
}

// The places where the hero stands clear above the beam's band.
std::vector<Place> AboveTheBeam(const Foe& foe) {
    float bandTop = Middle(foe.box).y;
    for (const EnemySpawn& spawn : CurrentRoom().enemySpawns) {
        if (spawn.enemyType == ENEMY_GODDESS) bandTop = spawn.position.y - kBeamBand;
    }
    std::vector<Place> above, roomy;
    for (Place place : bot.map->Places()) {
        if (bot.map->FeetAt(place).y < bandTop - 8) above.push_back(place);
    }
    // A tile of floor either side leaves room to step out of the lightning without falling.
    auto has = [&](Place place) {
        return std::find(above.begin(), above.end(), place) != above.end();
    };
    for (Place place : above) {
        if (has({place.column - 1, place.row}) && has({place.column + 1, place.row})) {
            roomy.push_back(place);
        }
    }
    return roomy.empty() ? above : roomy;
}

// The Goddess is lashing or about to: a flight now would meet the lash in the air, where it
// cannot be parried.
bool LashComing() {
    for (const Foe& foe : LivingFoes()) {
        if (foe.kind == ENEMY_GODDESS && GetGoddessStatus(foe.index).state == GODDESS_WHIP) {
            return true;
        }
    }
    return false;
}

// Where to step out of a blow that cannot be parried (-1 or 1), or 0 when none is coming.
int DodgeDir() {
    for (const Foe& foe : LivingFoes()) {
        if (std::optional<float> bolt = GoddessLightning(foe)) {
            float clear = kLightningHalfWidth + PlayerBodyBounds().width / 2 + 16;
            if (std::abs(HeroX() - *bolt) >= clear) continue;
            // Away from the bolt, onto the side whose floor goes on under the feet past its reach.
            int away = HeroX() >= *bolt ? 1 : -1;
            auto floorAt = [&](int dir) {
                float x = *bolt + float(dir) * (clear + 8);
                auto place = bot.map->PlaceAt({x, Feet().y});
                return place && std::abs(bot.map->FeetAt(*place).x - x) <= kTile / 2;
            };
            return floorAt(away) || !floorAt(-away) ? away : -away;
        }
        if (foe.kind != ENEMY_KING) continue;
        std::optional<float> aim = KingLanding(foe);
        if (!aim) continue;
        float clear = GetEnemySprite(foe.index, foe.kind)->getGlobalBounds().width * 0.3f +
                      PlayerBodyBounds().width / 2 + 60;
        if (std::abs(HeroX() - *aim) >= clear) continue;
        // Away from the aim, or past it when a wall is close behind.
        int away = HeroX() >= *aim ? 1 : -1;
        sf::FloatRect arena;
        for (const EnemyContainer& c : CurrentRoom().enemyContainers) {
            if (c.id == GetEnemyContainer(foe.index, foe.kind)) arena = c.shape->getGlobalBounds();
        }
        float room = away > 0 ? arena.left + arena.width - HeroX() : HeroX() - arena.left;
        return room > clear ? away : -away;
    }
    return 0;
}

// The Goddess's lash is parryable only on its damage frame: its whole move counts, to see it come.
bool Parryable(const Foe& foe, int attack) {
    if (foe.kind == ENEMY_GODDESS) return GetEnemyState(foe.index, foe.kind) == GODDESS_WHIP;
    return Ops(foe.kind).blow(foe.index, attack).parryable;
}

// A parryable attack of the foe is at the hero's body, or just short of it.
bool ParryableAtBody(const Foe& foe) {
    if (InKingsDash(foe)) return true;
    if (foe.kind == ENEMY_FLYING_KNIGHT && FlyingKnightAttackKind(foe.index) == KNIGHT_PLUNGE) {
        return std::abs(FlyingKnightSword(foe.index).getPosition().x - HeroX()) < 120;
    }
    sf::FloatRect body = PlayerBodyBounds();
    body.left -= 50, body.width += 100, body.top -= 20, body.height += 20;
    int attacks = std::max(1, EnemyAttackCount(foe.index, foe.kind));
    for (int a = 0; a < attacks; a++) {
        if (Parryable(foe, a) && GetEnemyAttackBox(foe.index, foe.kind, a).intersects(body)) {
            return true;
        }
    }
    return false;
}

// The soonest parryable blow coming at the hero, in seconds.
std::optional<float> NextBlow() {
    std::optional<float> soonest;
    for (const Foe& foe : LivingFoes()) {
        std::optional<float> when = UntilBlow(foe);
        if (!when && IsEnemyStriking(foe.index, foe.kind)) when = 0.0f;
        if (when && ParryableAtBody(foe) && (!soonest || *when < *soonest)) soonest = when;
    }
    return soonest;
}

void RaiseParry() {
    const Player& player = GetPlayer();
    Steer(0);
    if (player.body.state != PLAYER_PARRY &&
        player.parryCooldownTimer >= player.tuning.parryCooldown) {
        TapKey(Key(BINDING_PARRY));
    }
}

// The blade covers the middle of the foe's body.
bool InReach(const Foe& foe) {
    sf::FloatRect blade = PlacePlayerAttackBox();
    sf::Vector2f middle = Middle(foe.box);
    float y = std::clamp(middle.y, foe.box.top, foe.box.top + foe.box.height);
    y = std::clamp(y, blade.top, blade.top + blade.height - 1);
    return blade.contains(middle.x, y) && foe.box.intersects(blade);
}

// Steps out of a blow that cannot be parried, parries one about to land; false when neither.
bool Defend() {
    if (int away = DodgeDir()) {
        Steer(away);
        return true;
    }
    std::optional<float> blow = NextBlow();
    if (blow && *blow <= kParryLead) {
        RaiseParry();
        return true;
    }
    return false;
}

// A potion fills the life up to the top of its segment (40, 70, 100): drunk just past a segment's
// bottom it gives the most, and only with no blow about to land.
constexpr int kDrinkBelow = 46;
bool ShouldDrink() {
    const Player& player = GetPlayer();
    if (player.potions <= 0 || player.life >= kDrinkBelow || DodgeDir() != 0) return false;
    std::optional<float> blow = NextBlow();
    return !blow || *blow > kSwingTime;
}

// With the Goddess's beam coming, the place to wait it out on: the nearest clear above it.
std::optional<Place> BeamRefuge() {
    for (const Foe& foe : LivingFoes()) {
        if (foe.kind != ENEMY_GODDESS || !BeamComing(foe)) continue;
        std::optional<Place> best;
        float bestDistance = 1e9f;
        for (Place place : AboveTheBeam(foe)) {
            sf::Vector2f off = bot.map->FeetAt(place) - Feet();
            float distance = std::hypot(off.x, off.y);
            if (distance < bestDistance) bestDistance = distance, best = place;
        }
        return best;
    }
    return std::nullopt;
}

// Fights the nearest enemy on the hero's level (any, when `seek`); false when there is none
// worth fighting. Parries the blows coming, strikes when no blow lands before the cut.
bool Fight(bool seek, bool hold = false) {
    sf::FloatRect body = PlayerBodyBounds();
    sf::Vector2f me = Middle(body);
    std::optional<Foe> nearest;
    float best = seek ? 1e9f : 300;
    for (const Foe& foe : LivingFoes()) {
        sf::Vector2f them = Middle(foe.box);
        float bottom = foe.box.top + foe.box.height;
        bool level = bottom > body.top + body.height - 110 && foe.box.top < body.top + body.height;
        float dx = std::abs(them.x - me.x);
        if ((level || seek) && dx < best) {
            best = dx;
            nearest = foe;
        }
    }
    if (!nearest) return false;
    const Player& player = GetPlayer();
    if (Defend()) return true;
    std::optional<float> blow = NextBlow();
    if (hold) {
        Steer(0);
        if (InReach(*nearest) && (!blow || *blow > kSwingTime) && bot.attackWait-- <= 0) {
            Attack();
            bot.attackWait = 6;
        }
        return true;
    }
    float dx = Middle(nearest->box).x - me.x;
    int dir = dx > 0 ? 1 : -1;
    // Parries and hits push the hero back: off a ledge's edge he steps in again first.
    if (EdgeBehind(dir) && !player.body.blocked[dir > 0 ? CONTACT_RIGHT : CONTACT_LEFT]) {
        Steer(dir);
        return true;
    }
    if (InReach(*nearest)) {
        Steer(0);
        if ((!blow || *blow > kSwingTime) && bot.attackWait-- <= 0) {
            Attack();
            bot.attackWait = 6;
        }
        return true;
    }
    if (blow && *blow < kSwingTime + 0.3f) {
        Steer(0);  // wait for the blow, ready to parry
        return true;
    }
    // A step or a wall between: the route planner takes over.
    if (player.body.blocked[dir > 0 ? CONTACT_RIGHT : CONTACT_LEFT]) return false;
    if (PlayerFacingRight() != (dir > 0) && std::abs(dx) > 30) {
        Steer(dir);
        return true;
    }
    // Step closer while the floor goes on that way.
    if (!bot.map->PlaceAt(Feet() + sf::Vector2f(float(dir) * 60, 0))) return false;
    Steer(dir);
    return true;
}

// ---------------------------------------------------------------- walking a route

// The places where a Plant's jaws reach the body.
std::vector<Place> PlantPlaces() {
    std::vector<Place> avoid;
    for (int i = 0; i < EnemyCount(ENEMY_PLANT); i++) {
        sf::Vector2f root = GetEnemyPosition(i, ENEMY_PLANT);
        for (Place place : bot.map->Places()) {
            sf::Vector2f feet = bot.map->FeetAt(place);
            if (std::abs(feet.x - root.x) < 170 && feet.y > root.y - 40 && feet.y < root.y + 230) {
                avoid.push_back(place);
            }
        }
    }
    return avoid;
}

// Takes the next move of the route to `goal` (or into `door`); false when none is known.
bool Navigate(Place goal, int door, const std::string& goalName) {
    auto here = bot.map->PlaceAt(Feet());
    if (!here) {
        Steer(0);
        return true;  // on a cloud or a moving cabin: wait
    }
    auto on = std::find_if(bot.route.begin(), bot.route.end(),
                           [&](const ReachStep& step) { return step.from == *here; });
    if (on == bot.route.end() || bot.routeGoal != goalName || bot.routeAbilities != Abilities()) {
        bot.route = bot.map->Route(*here, Abilities(), goal, door, PlantPlaces());
        bot.routeGoal = goalName;
        bot.routeAbilities = Abilities();
        on = bot.route.begin();
        if (bot.route.empty()) return false;
    }
    const ReachStep& step = *on;
    const ReachMove& how = step.how;
    if (how.kind == ReachMove::WALK) {
        float target = bot.map->FeetAt(step.to).x;
        Steer(step.door >= 0 || std::abs(target - HeroX()) > 4 ? how.dir : 0);
        return true;
    }
    if (how.kind == ReachMove::RIDE) {
        Steer(0);
        if (bot.interactWait-- <= 0) {
            TapKey(Key(BINDING_INTERACT));
            bot.interactWait = 240;
        }
        return true;
    }
    float x = HeroX();
    float takeOff = how.drop ? bot.map->FeetAt(step.from).x : bot.map->TakeOffX(step.from, how.dir);
    float ahead = (takeOff - x) * float(how.dir);
    if (how.drop ? std::abs(takeOff - x) < 30 : (ahead <= 12 && ahead >= -10)) {
        if (LashComing()) {
            Steer(0);
            return true;
        }
        if (how.kind != ReachMove::JUMP && how.kind != ReachMove::RUN_JUMP) Steer(0);
        StartFlight(step, takeOff);
        FlyOn();
    } else {
        Steer(takeOff > x ? 1 : -1);
    }
    return true;
}

// The room a door of the current room leads to, or -1.
int DoorTarget(int id) {
    for (const TransitionDoor& door : CurrentRoom().transitionDoors) {
        if (door.id == id) return door.targetedRoom;
    }
    return -1;
}

// The door of the current room to a room, or -1.
int DoorTo(int room) {
    for (const TransitionDoor& door : CurrentRoom().transitionDoors) {
        if (door.targetedRoom == room) return door.id;
    }
    return -1;
}

// The floor under the first foe left (a boss), to walk to when it cannot be reached on the level.
std::optional<Place> FloorUnderFoe() {
    std::vector<Foe> foes = LivingFoes();
    if (foes.empty()) return std::nullopt;
    const sf::FloatRect& box = foes[0].box;
    for (int tiles = 0; tiles < 10; tiles++) {
        sf::Vector2f point(box.left + box.width / 2, box.top + box.height + float(tiles) * 96);
        if (auto place = bot.map->PlaceAt(point)) return place;
    }
    return std::nullopt;
}

std::string GoalName(const AutoplayGoal& goal) {
    switch (goal.kind) {
        case AutoplayGoal::CHEST: return "the chest";
        case AutoplayGoal::STATUE: return "the statue";
        case AutoplayGoal::KILL: return "the boss";
        case AutoplayGoal::DOOR: {
            for (const TransitionDoor& door : CurrentRoom().transitionDoors) {
                if (door.id == goal.id) return "the door to " + std::to_string(door.targetedRoom);
            }
            return "door " + std::to_string(goal.id);
        }
    }
    return "?";
}

std::optional<Place> GoalPlace(const AutoplayGoal& goal) {
    const Room& room = CurrentRoom();
    if (goal.kind == AutoplayGoal::CHEST && goal.id < int(room.chestSpawns.size())) {
        return bot.map->PlaceUnder(room.chestSpawns[size_t(goal.id)].position);
    }
    if (goal.kind == AutoplayGoal::STATUE) {
        for (const CheckpointSpawn& spawn : room.checkpointSpawns) {
            if (spawn.id == goal.id) return bot.map->PlaceUnder(spawn.position);
        }
    }
    return std::nullopt;
}

std::string Stuck(const AutoplayGoal& goal, float since, const std::string& why) {
    ReleaseAll();
    return "stuck in room " + std::to_string(CurrentRoomNumber()) + " going to " + GoalName(goal) +
           " at " + Where() + " after " + std::to_string(int(playClock - since)) + " s" +
           (why.empty() ? "" : ": " + why);
}

// Plays one goal to its end; empty when done.
std::string PlayGoal(const AutoplayGoal& goal, float deadline, float roomStart) {
    int room = CurrentRoomNumber();
    // A door goal holds through a detour: a fall into a room below is walked back out of, by a
    // door to the room wanted or else by the door back.
    int wanted = goal.kind == AutoplayGoal::DOOR ? DoorTarget(goal.id) : -1;
    bool interacted = false;
    float lastProgress = playClock;
    size_t lastRouteLeft = 1 << 30;
    while (true) {
        if (GetPlayer().body.state == PLAYER_DEAD) {
            return "the hero died in room " + std::to_string(room) + " at " + Where() +
                   " going to " + GoalName(goal) + " after " +
                   std::to_string(int(playClock - roomStart)) + " s";
        }
        if (playClock > deadline) return Stuck(goal, roomStart, "out of time");
        LoadRoomMap();
        // Done?
        if (goal.kind == AutoplayGoal::DOOR && CurrentRoomNumber() == wanted &&
            !Transition().transitionActive) {
            ReleaseAll();
            return "";
        }
        if (goal.kind == AutoplayGoal::CHEST && goal.id < int(Chests().size()) &&
            Chests()[size_t(goal.id)].opened && !Chests()[size_t(goal.id)].itemActive &&
            !Overlays().explanationOpen) {
            return "";
        }
        if (goal.kind == AutoplayGoal::STATUE && interacted && !Overlays().checkpointMenuOpen) {
            return "";
        }
        if (goal.kind == AutoplayGoal::KILL && LivingFoes().empty()) return "";
        if (Busy()) {
            if (bot.flight.active) EndFlight();
            Steer(0);
            if (Overlays().checkpointMenuOpen) interacted = true;
            ClosePanels();
            Frame();
            continue;
        }
        if (bot.flight.active) {
            FlyOn();
            Frame();
            continue;
        }
        if (!OnGround()) {
            Steer(DodgeDir());
            int state = GetPlayer().body.state;
            bool swinging = state >= PLAYER_LIGHT_ATTACK_1 && state <= PLAYER_LIGHT_ATTACK_3;
            std::optional<float> blow = NextBlow();
            if (swinging && blow && *blow <= kParryLead) TapKey(Key(BINDING_PARRY));
            Frame();
            continue;
        }
        if (ShouldDrink()) TapKey(Key(BINDING_HEAL));
        std::optional<Place> refuge = goal.kind == AutoplayGoal::KILL ? BeamRefuge() : std::nullopt;
        auto standing = bot.map->PlaceAt(Feet());
        bool sheltered = refuge && standing && *standing == *refuge;
        bool fought =
            refuge && !sheltered ? Defend() : Fight(goal.kind == AutoplayGoal::KILL, sheltered);
        if (refuge && !sheltered && !fought) {
            if (!Navigate(*refuge, -1, "above the beam"))
                return Stuck(goal, roomStart, "no way above the beam");
        } else if (!fought) {
            bool known = true;
            auto place = GoalPlace(goal);
            auto here = bot.map->PlaceAt(Feet());
            if (goal.kind == AutoplayGoal::DOOR || CurrentRoomNumber() != room) {
                int door = CurrentRoomNumber() == room ? goal.id : DoorTo(wanted);
                if (door < 0) door = DoorTo(room);
                known = Navigate(Place(), door, GoalName(goal) + std::to_string(door));
            } else if (place && here && *here == *place) {
                Steer(0);
                if (bot.interactWait-- <= 0) {
                    TapKey(Key(BINDING_INTERACT));
                    bot.interactWait = 30;
                    interacted = true;
                }
            } else if (place) {
                known = Navigate(*place, -1, GoalName(goal));
            } else if (auto floor = FloorUnderFoe()) {
                known = Navigate(*floor, -1, GoalName(goal));
            }
            if (!known) return Stuck(goal, roomStart, "no way from here");
        }
        if (!bot.route.empty() && bot.route.size() < lastRouteLeft) {
            lastRouteLeft = bot.route.size();
            lastProgress = playClock;
        }
        auto here = bot.map->PlaceAt(Feet());
        if (here && !bot.route.empty()) {
            auto on = std::find_if(bot.route.begin(), bot.route.end(),
                                   [&](const ReachStep& s) { return s.from == *here; });
            size_t left = size_t(bot.route.end() - on);
            if (on != bot.route.end() && left < lastRouteLeft) {
                lastRouteLeft = left;
                lastProgress = playClock;
            }
        }
        if (playClock - lastProgress > kStuckSeconds && goal.kind != AutoplayGoal::KILL) {
            return Stuck(goal, roomStart, "");
        }
        Frame();
    }
}

}  // namespace

void StartAutoplayer(AppWindow& window) {
    app = &window;
    knightAttacks.clear();
    playClock = 0;
    held.clear();
    bot = Bot();
}

void StopAutoplayer() {
    ReleaseAll();
    bot = Bot();
    app = nullptr;
}

std::string AutoplayRoomGoals(const AutoplayRoom& plan) {
    if (CurrentRoomNumber() != plan.room) {
        return "expected to be in room " + std::to_string(plan.room) + " but the hero is in room " +
               std::to_string(CurrentRoomNumber());
    }
    float start = playClock;
    for (const AutoplayGoal& goal : plan.goals) {
        std::string fault = PlayGoal(goal, start + plan.seconds, start);
        if (!fault.empty()) return fault;
    }
    return "";
}

std::string AutoplayEnding(float seconds) {
    ReleaseAll();
    float deadline = playClock + seconds;
    bool shown = false;  // the ending's own screen, not just any way back to the menu
    while (GetGameState() == GAME_STATE_GAME) {
        if (playClock > deadline) {
            return std::string("the ending did not reach the title menu in ") +
                   std::to_string(int(seconds)) + " s (" +
                   (EndingRunning() ? "the ending runs" : "no ending") + ")";
        }
        shown = shown || EndingScreenShown();
        Frame();
    }
    return shown ? "" : "the game left for the title menu without its ending";
}

void AutoplayEnterRoom(int room, int fromRoom, int abilities) {
    ::Abilities& owned = Save().abilities;
    owned.canDash = (abilities & REACH_DASH) != 0;
    owned.canRun = (abilities & REACH_RUN) != 0;
    owned.CanCreatePlatform = (abilities & REACH_CLOUD) != 0;
    CleanupRoom();
    LoadNextTargetRoom(*app->window, room);
    int door = DoorTo(fromRoom);
    for (const DoorSpawn& spawn : CurrentRoom().doorSpawns) {
        if (spawn.linkedDoorId == door) SetPlayerPosition(spawn.position);
    }
    bot = Bot();
    for (int i = 0; i < 30; i++) Frame();
}

float AutoplayClock() {
    return playClock;
}

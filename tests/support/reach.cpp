#include "support/reach.h"

#include <algorithm>
#include <cmath>
#include <deque>
#include <limits>
#include <tuple>

#include "support/level_check.h"
#include "world/transition.h"

namespace {

constexpr float kUpdate = 1.0f / 60.0f;  // the game's fixed step
// The hero's motion multiplies the walk by these for the run and the dash.
constexpr float kRunFactor = 1.7f, kDashFactor = 3.0f;
// The walking state turns into a fall once the fall reaches this speed: the ledge grace.
constexpr float kGraceFallSpeed = 5.0f;
// How much slower (or faster) the weaker (or stronger) hero moves and jumps.
constexpr float kMargin = 0.03f;
// The hero stands while his down sensor, this wide about his middle, touches a floor.
constexpr float kFootWidth = 56;
// A few pixels of slack for the 2 px outline the collision rectangles carry.
constexpr float kOutline = 4;
constexpr int kLongestFlight = 600;
constexpr int kForever = 1 << 20;
constexpr float kHalfWidth = kHeroWidth / 2;

sf::Vector2f Feet(Place place) {
    return {(float(place.column) + 0.5f) * kTile, float(place.row) * kTile};
}

// A place names the tile it stands on; a point, the tile it lies in.
using ::At;
std::string At(Place place) {
    sf::Vector2f feet = Feet(place);
    return "(" + Num(feet.x) + ", " + Num(feet.y) + ") [tile " + std::to_string(place.column) +
           ", " + std::to_string(place.row) + "]";
}

bool IsLockedDoor(const Room& room, const ShapePtr& shape) {
    for (const DoorList& list : room.doorLists) {
        for (const Door& door : list.doors) {
            if (door.shape == shape) return true;
        }
    }
    return false;
}

const TransitionDoor* DoorWithId(const Room& room, int id) {
    for (const TransitionDoor& door : room.transitionDoors) {
        if (door.id == id) return &door;
    }
    return nullptr;
}

const char* DirectionName(const TransitionDoor& door) {
    static const char* const kNames[] = {"Left", "Right", "Up", "Down"};
    return kNames[TransitionDirectionOf(door.cameraTransition, door.hasCameraTransition)];
}

std::optional<sf::Vector2f> StartPoint(const Room& room, ReachStart start) {
    if (start.checkpoint) {
        for (const CheckpointSpawn& spawn : room.checkpointSpawns) {
            if (spawn.id == start.id) return spawn.position;
        }
    } else {
        for (const DoorSpawn& spawn : room.doorSpawns) {
            if (spawn.id == start.id) return spawn.position;
        }
    }
    return std::nullopt;
}

std::string StartName(const Room& room, ReachStart start) {
    std::string name =
        (start.checkpoint ? "checkpoint spawn " : "door spawn ") + std::to_string(start.id);
    if (auto point = StartPoint(room, start)) name += " at " + At(*point);
    return name;
}

}  // namespace

std::string AbilityNames(int abilities) {
    std::vector<std::string> names;
    if (abilities & REACH_DASH) names.push_back("the dash");
    if (abilities & REACH_RUN) names.push_back("the run");
    if (abilities & REACH_CLOUD) names.push_back("the cloud");
    if (names.empty()) return "no ability";
    std::string text = names[0];
    for (size_t i = 1; i < names.size(); i++) {
        text += (i + 1 == names.size() ? " and " : ", ") + names[i];
    }
    return text;
}

int ChestAbility(const ChestSpawn& chest) {
    return chest.ability >= 0 && chest.ability <= 2 ? 1 << chest.ability : 0;
}

float HeroMoves::JumpHeight() const {
    float rise = 0;
    for (float vy = -jump + gravity; vy < 0; vy += gravity) rise -= vy;
    return rise + jump;  // the update that starts the jump moves it at its full speed
}

HeroMoves MovesFor(Margin margin, const PlayerTuning& tuning) {
    bool stronger = margin == Margin::kStronger;
    float factor = stronger ? 1 + kMargin : 1 - kMargin;
    HeroMoves moves;
    moves.walk = tuning.walkSpeed * kUpdate * factor;
    moves.run = moves.walk * kRunFactor;
    moves.dash = moves.walk * kDashFactor;
    int dashUpdates = int(std::lround(tuning.dashDuration / kUpdate));
    moves.dashUpdates = stronger ? dashUpdates + 1 : dashUpdates;
    moves.gravity = tuning.gravity * kUpdate;
    moves.jump = tuning.jumpImpulse * factor;
    moves.maxFall = tuning.maxFallSpeed;
    if (stronger) {
        moves.overhang = kFootWidth / 2 + kOutline;
        moves.ledgeReach = kOutline;
        moves.graceUpdates = int(std::ceil(kGraceFallSpeed / moves.gravity));
        moves.stepUp = kOutline;
    }
    return moves;
}

bool ReachResult::Stands(Place place) const {
    return std::find(places.begin(), places.end(), place) != places.end();
}

std::string ReachResult::Way(Place place) const {
    auto found = std::find(places.begin(), places.end(), place);
    if (found == places.end()) return "no way";
    std::vector<Place> way;
    for (int i = int(found - places.begin()); i >= 0; i = cameFrom[size_t(i)]) {
        way.push_back(places[size_t(i)]);
    }
    std::string text;
    for (size_t i = way.size(); i-- > 0;) {
        bool walked = i + 1 < way.size() && i > 0 && way[i].row == way[i + 1].row &&
                      way[i].row == way[i - 1].row;
        if (walked) continue;
        text += (text.empty() ? "[" : " > [") + std::to_string(way[i].column) + ", " +
                std::to_string(way[i].row) + "]";
    }
    return text;
}

// ---------------------------------------------------------------- the room as cells

ReachMap::ReachMap(const Room& room, Margin margin, const PlayerTuning& tuning)
    : room_(room), margin_(margin), moves_(MovesFor(margin, tuning)) {
    sf::FloatRect bounds = room.cameraContainer ? room.cameraContainer->getGlobalBounds()
                                                : sf::FloatRect(0, 0, kTile, kTile);
    // The cells lie on the map's tiles whatever the view's bounds: a view need not end on a tile.
    origin_ = {std::floor(bounds.left / kTile) * kTile, std::floor(bounds.top / kTile) * kTile};
    columns_ = int(std::ceil((bounds.left + bounds.width - origin_.x) / kTile));
    rows_ = int(std::ceil((bounds.top + bounds.height - origin_.y) / kTile));
    cells_.assign(size_t(columns_ * rows_), OPEN);
    // Locked doors count as open: the fights that shut them open them again.
    for (const Collision& collision : room.collisions) {
        if (!collision.active || IsLockedDoor(room, collision.shape)) continue;
        sf::FloatRect r = collision.shape->getGlobalBounds();
        for (int row = 0; row < rows_; row++) {
            for (int column = 0; column < columns_; column++) {
                float x = origin_.x + (float(column) + 0.5f) * kTile;
                float top = origin_.y + float(row) * kTile;
                Cell& cell = cells_[size_t(row * columns_ + column)];
                if (collision.kind == COLLISION_SOLID && r.contains(x, top + kTile / 2)) {
                    cell = ROCK;
                } else if (collision.kind == COLLISION_ONE_WAY && cell == OPEN &&
                           r.contains(x, top + 1)) {
                    cell = LEDGE;
                }
            }
        }
    }
    // Each cabin is a floor at every stop, wherever it rests now: a lever fetches it.
    std::vector<std::vector<std::vector<Place>>> cabins;
    for (const Elevator& elevator : room.elevators) {
        int width = int(elevator.collisionShapes.size());
        std::vector<std::vector<Place>>& stops = cabins.emplace_back();
        for (const ElevatorStop& stop : elevator.stops) {
            sf::Vector2f bottom = stop.position - origin_;
            int row = int(std::lround(bottom.y / kTile)) - 1;
            int first = int(std::lround(bottom.x / kTile - float(width) / 2));
            std::vector<Place>& deck = stops.emplace_back();
            for (int column = first; column < first + width; column++) {
                if (column < 0 || row < 0 || column >= columns_ || row >= rows_) continue;
                cells_[size_t(row * columns_ + column)] = ROCK;
                deck.push_back({column, row});
            }
        }
    }
    for (const Trigger& trigger : room.triggers) {
        if (trigger.name == "DeathZone") deathZones_.push_back(trigger.shape->getGlobalBounds());
    }
    for (const TransitionDoor& door : room.transitionDoors) {
        doors_.push_back(door.shape->getGlobalBounds());
        doorIds_.push_back(door.id);
    }
    FindPlaces();
    movesFrom_.resize(places_.size());
    for (int i = 0; i < int(places_.size()); i++) AddMoves(i);
    // A ride takes the hero from his spot on the deck to the same spot at every other stop.
    for (const auto& stops : cabins) {
        for (const std::vector<Place>& from : stops) {
            for (const std::vector<Place>& to : stops) {
                for (size_t k = 0; k < from.size() && k < to.size() && &from != &to; k++) {
                    int a = PlaceIndex(from[k].column, from[k].row);
                    int b = PlaceIndex(to[k].column, to[k].row);
                    ReachMove ride;
                    ride.kind = ReachMove::RIDE;
                    if (a >= 0 && b >= 0) movesFrom_[size_t(a)].push_back({b, 0, ride});
                }
            }
        }
    }
}

ReachMap::Cell ReachMap::At(int column, int row) const {
    if (column < 0 || row < 0 || column >= columns_ || row >= rows_) return ROCK;
    return cells_[size_t(row * columns_ + column)];
}

// Any rock cell overlapping the rectangle (edges touching do not count).
bool ReachMap::RockIn(float left, float top, float right, float bottom) const {
    int c0 = int(std::floor((left - origin_.x) / kTile));
    int c1 = int(std::ceil((right - origin_.x) / kTile)) - 1;
    int r0 = int(std::floor((top - origin_.y) / kTile));
    int r1 = int(std::ceil((bottom - origin_.y) / kTile)) - 1;
    for (int row = r0; row <= r1; row++) {
        for (int column = c0; column <= c1; column++) {
            if (Rock(column, row)) return true;
        }
    }
    return false;
}

bool ReachMap::BodyInRock(float x, float y) const {
    return RockIn(x - kHalfWidth, y - kHeroHeight, x + kHalfWidth, y);
}

bool ReachMap::Deadly(float x, float y) const {
    sf::FloatRect body(x - kHalfWidth, y - kHeroHeight, kHeroWidth, kHeroHeight);
    return std::any_of(deathZones_.begin(), deathZones_.end(),
                       [&](const sf::FloatRect& zone) { return zone.intersects(body); });
}

// The game enters a door when the feet or the top of the body lie in it.
int ReachMap::DoorAt(float x, float y) const {
    for (int i = 0; i < int(doors_.size()); i++) {
        if (doors_[i].contains(x, y) || doors_[i].contains(x, y - kHeroHeight)) return i;
    }
    return -1;
}

int ReachMap::PlaceIndex(int column, int row) const {
    if (column < 0 || row < 0 || column >= columns_ || row >= rows_) return -1;
    return placeIndex_[size_t(row * columns_ + column)];
}

// A floor (rock or ledge) with room for the body above it and nothing deadly about it.
void ReachMap::FindPlaces() {
    placeIndex_.assign(cells_.size(), -1);
    for (int row = 0; row < rows_; row++) {
        for (int column = 0; column < columns_; column++) {
            if (At(column, row) == OPEN || Rock(column, row - 1) || Rock(column, row - 2)) continue;
            sf::Vector2f feet = Feet({column, row}) + origin_;
            if (Deadly(feet.x, feet.y)) continue;
            placeIndex_[size_t(row * columns_ + column)] = int(places_.size());
            places_.push_back({column, row});
        }
    }
}

// ---------------------------------------------------------------- flights

// Moves the body sideways; rock stops it at its face, or (stronger hero) lifts it onto a corner
// whose top is a little above the feet, as the game's push-out does.
bool ReachMap::Sideways(float& x, float& y, float vx) const {
    if (vx == 0) return false;
    float nx = x + vx;
    if (!BodyInRock(nx, y)) {
        x = nx;
        return false;
    }
    // The push-out lifts the body when it sinks less into the rock than it moved into it.
    float top = std::floor((y - origin_.y - 0.01f) / kTile) * kTile + origin_.y;
    float lift = moves_.stepUp > 0 ? std::abs(vx) + moves_.stepUp : 0;
    if (y - top <= lift && !BodyInRock(nx, top)) {
        x = nx;
        y = top;
        return false;
    }
    if (vx > 0) {
        float face = std::floor((nx + kHalfWidth - origin_.x) / kTile) * kTile + origin_.x;
        x = std::clamp(face - kHalfWidth, x, nx);
    } else {
        float face = (std::floor((nx - kHalfWidth - origin_.x) / kTile) + 1) * kTile + origin_.x;
        x = std::clamp(face + kHalfWidth, nx, x);
    }
    return true;
}

// Moves the body up or down. Rising, the head stops under rock; falling, the first floor crossed
// catches the feet: rock under the middle (for the stronger hero, under his feet), or a ledge
// under the middle that is not being dropped through. The weaker hero's fall onto a corner that
// only part of the body overhangs is `uncertain`.
bool ReachMap::Vertical(float x, float& y, float& vy, float dropBelow, bool& uncertain) const {
    float ny = y + vy;
    if (vy < 0) {
        if (BodyInRock(x, ny)) {
            float head = std::floor((ny - kHeroHeight - origin_.y) / kTile) + 1;
            ny = std::min(y, head * kTile + origin_.y + kHeroHeight);
            vy = 1;  // as the game does when the head is blocked
        }
        y = ny;
        return false;
    }
    bool stronger = margin_ == Margin::kStronger;
    int first = int(std::ceil((y - origin_.y) / kTile - 1e-4f));
    int last = int(std::floor((ny - origin_.y) / kTile));
    for (int row = first; row <= last; row++) {
        float top = float(row) * kTile + origin_.y;
        auto any = [&](float half, Cell kind) {
            int c0 = int(std::floor((x - half - origin_.x) / kTile));
            int c1 = int(std::ceil((x + half - origin_.x) / kTile)) - 1;
            for (int column = std::min(c0, c1); column <= std::max(c0, c1); column++) {
                if (At(column, row) == kind) return true;
            }
            return false;
        };
        bool underFeet = any(std::max(moves_.overhang, 0.01f), ROCK);
        bool underBody = any(kHalfWidth - 0.01f, ROCK);
        bool ledge = top > dropBelow && any(std::max(moves_.ledgeReach, 0.01f), LEDGE);
        if (underFeet || ledge) {
            y = top;
            vy = 0;
            return true;
        }
        // Standing on an edge he walks off; coming down on a corner, who knows.
        if (underBody && !stronger && top > y + 0.01f) {
            uncertain = true;
            return false;
        }
    }
    y = ny;
    return false;
}

// The place the feet stand on: the floor under the middle, or the nearest under the body.
std::optional<int> ReachMap::Landing(float x, float y) const {
    int row = int(std::lround((y - origin_.y) / kTile));
    int middle = int(std::floor((x - origin_.x) / kTile));
    float within = x - origin_.x - float(middle) * kTile;
    int side = within < kTile / 2 ? middle - 1 : middle + 1;
    for (int column : {middle, side}) {
        if (At(column, row) == OPEN) continue;
        int index = PlaceIndex(column, row);
        if (index >= 0) return index;
    }
    return std::nullopt;
}

std::optional<int> ReachMap::Fly(sf::Vector2f feet, const Launch& launch) const {
    float x = feet.x, y = feet.y, vy = 0;
    bool airborne = false, jumped = false, clouded = false;
    int start = launch.grace;
    int active = start + (launch.kind == DASH ? moves_.dashUpdates : 1);
    float dropBelow = launch.drop ? y + kTile / 3 : -std::numeric_limits<float>::infinity();
    auto horizontal = [&](int t) {
        float dir = float(launch.dir);
        if (t < start) return dir * moves_.walk;
        int s = t - start;
        if (launch.kind == DASH && s < moves_.dashUpdates) return dir * moves_.dash;
        if (launch.kind == RUN_JUMP || (launch.kind == DASH && launch.runAfterDash))
            return dir * moves_.run;
        return s >= launch.holdFrom && s < launch.holdTo ? dir * moves_.walk : 0.0f;
    };
    for (int t = 0; t < kLongestFlight; t++) {
        vy = std::min(vy + moves_.gravity, moves_.maxFall);
        if (t == start && (launch.kind == JUMP || launch.kind == RUN_JUMP)) {
            vy = -moves_.jump;
            jumped = true;
        }
        if (launch.cloud && jumped && !clouded && t > start && vy >= 0) {
            vy = -moves_.jump;  // a cloud under the feet at the top of the jump, and a new jump
            clouded = true;
        }
        Sideways(x, y, horizontal(t));
        bool uncertain = false;
        bool landed = Vertical(x, y, vy, dropBelow, uncertain);
        if (uncertain || Deadly(x, y)) return std::nullopt;
        if (int door = DoorAt(x, y); door >= 0) return -1 - door;
        if (!landed) {
            airborne = true;
        } else if ((airborne && t >= active) || t >= active + 10) {
            return Landing(x, y);
        }
    }
    return std::nullopt;
}

// ---------------------------------------------------------------- moves

// Where the hero takes off toward `dir`: the edge of his floor (past it by the overhang), or
// against a wall.
float ReachMap::TakeOff(Place place, int dir) const {
    sf::Vector2f feet = Feet(place) + origin_;
    float target = feet.x + float(dir) * (kTile / 2 - 0.5f + moves_.overhang);
    float x = feet.x, y = feet.y;
    while ((target - x) * float(dir) > 0) {
        float step = std::clamp(target - x, -kHalfWidth, kHalfWidth);
        if (Sideways(x, y, step)) break;
    }
    return x;
}

// The floor behind the take-off, in tiles, on the same level.
int ReachMap::Runway(Place place, int dir) const {
    int tiles = 1;
    while (PlaceIndex(place.column - dir * tiles, place.row) >= 0) tiles++;
    return tiles;
}

std::vector<ReachMap::Launch> ReachMap::Launches(int index, int dir) const {
    Place place = places_[size_t(index)];
    bool edge = PlaceIndex(place.column + dir, place.row) < 0;
    std::vector<Launch> launches;
    auto add = [&](int kind, int holdFrom, int holdTo, int needs) -> Launch& {
        Launch launch;
        launch.dir = dir, launch.kind = kind, launch.holdFrom = holdFrom, launch.holdTo = holdTo;
        launch.needs = needs;
        return launches.emplace_back(launch);
    };
    if (edge) {
        for (int holdTo : {kForever, 6, 12, 24}) add(FALL, 0, holdTo, 0);
    }
    if (At(place.column, place.row) == LEDGE) {
        for (int holdTo : {0, 8, kForever}) add(FALL, 0, holdTo, 0).drop = true;
    }
    // Steering in the air: on from the take-off, released after a while, or held only later.
    const std::pair<int, int> holds[] = {{0, kForever},  {0, 8},         {0, 16},
                                         {0, 28},        {0, 40},        {10, kForever},
                                         {20, kForever}, {30, kForever}, {kForever, kForever}};
    for (auto [from, to] : holds) add(JUMP, from, to, 0);
    for (auto [from, to] : holds) add(JUMP, from, to, REACH_CLOUD).cloud = true;
    if (!edge) return launches;
    add(DASH, 0, kForever, REACH_DASH);
    add(DASH, kForever, kForever, REACH_DASH);
    add(DASH, 0, kForever, REACH_DASH | REACH_RUN).runAfterDash = true;
    // A run starts where a dash ends on the ground.
    float runway = float(Runway(place, dir)) * kTile;
    if (margin_ == Margin::kStronger || runway >= moves_.Dash() + kTile)
        add(RUN_JUMP, 0, kForever, REACH_DASH | REACH_RUN);
    // Jumps and dashes in the ledge grace, after walking off the edge.
    if (moves_.graceUpdates == 0) return launches;
    for (int grace : {moves_.graceUpdates / 2, moves_.graceUpdates}) {
        add(JUMP, 0, kForever, 0).grace = grace;
        add(DASH, 0, kForever, REACH_DASH).grace = grace;
        add(RUN_JUMP, 0, kForever, REACH_DASH | REACH_RUN).grace = grace;
        Launch& run = add(DASH, 0, kForever, REACH_DASH | REACH_RUN);
        run.grace = grace;
        run.runAfterDash = true;
    }
    return launches;
}

void ReachMap::AddMoves(int index) {
    Place place = places_[size_t(index)];
    sf::Vector2f feet = Feet(place) + origin_;
    std::vector<Move>& moves = movesFrom_[size_t(index)];
    // The first input found for each target and needs is kept.
    auto add = [&](Move move) {
        auto same = [&](const Move& m) { return m.target == move.target && m.needs == move.needs; };
        if (std::none_of(moves.begin(), moves.end(), same)) moves.push_back(move);
    };
    for (int dir : {-1, 1}) {
        ReachMove walk;
        walk.dir = dir;
        int beside = PlaceIndex(place.column + dir, place.row);
        if (beside >= 0) add({beside, 0, walk});
        float x = TakeOff(place, dir);
        if (int door = DoorAt(x, feet.y); door >= 0) add({-1 - door, 0, walk});
        for (const Launch& launch : Launches(index, dir)) {
            sf::Vector2f from = launch.drop ? feet : sf::Vector2f(x, feet.y);
            if (auto end = Fly(from, launch); end && *end != index) {
                ReachMove how;
                how.kind = ReachMove::Kind(ReachMove::FALL + launch.kind);
                how.dir = dir, how.grace = launch.grace, how.holdFrom = launch.holdFrom;
                how.holdTo = launch.holdTo, how.runAfterDash = launch.runAfterDash;
                how.cloud = launch.cloud, how.drop = launch.drop;
                add({*end, launch.needs, how});
            }
        }
    }
    if (int door = DoorAt(feet.x, feet.y); door >= 0) add({-1 - door, 0, ReachMove()});
}

std::optional<Place> ReachMap::PlaceUnder(sf::Vector2f point) const {
    int column = int(std::floor((point.x - origin_.x) / kTile));
    int row = int(std::ceil((point.y - origin_.y - 4) / kTile));
    for (int r = row; r <= row + 1; r++) {
        if (At(column, r) == OPEN) continue;
        int index = PlaceIndex(column, r);
        if (index >= 0) return places_[size_t(index)];
        return std::nullopt;
    }
    return std::nullopt;
}

ReachResult ReachMap::From(Place start, int abilities) const {
    ReachResult result;
    int first = PlaceIndex(start.column, start.row);
    if (first < 0) return result;
    std::vector<char> seen(places_.size(), 0);
    std::deque<std::pair<int, int>> todo = {{first, -1}};  // a place and where it came from
    seen[size_t(first)] = 1;
    while (!todo.empty()) {
        auto [index, from] = todo.front();
        todo.pop_front();
        int here = int(result.places.size());
        result.places.push_back(places_[size_t(index)]);
        result.cameFrom.push_back(from);
        for (const Move& move : movesFrom_[size_t(index)]) {
            if ((move.needs & ~abilities) != 0) continue;
            if (move.target < 0) {
                result.doorsFrom.emplace(doorIds_[size_t(-1 - move.target)], here);
            } else if (!seen[size_t(move.target)]) {
                seen[size_t(move.target)] = 1;
                todo.push_back({move.target, here});
            }
        }
    }
    return result;
}

namespace {

// What a move costs a route: walking a tile least, a flight more the more it asks of the hands.
int MoveCost(const ReachMove& how) {
    switch (how.kind) {
        case ReachMove::WALK: return 1;
        case ReachMove::FALL: return how.drop ? 4 : 3;
        case ReachMove::JUMP: return how.cloud ? 12 : (how.holdTo < (1 << 20) ? 6 : 5);
        case ReachMove::DASH: return 8;
        case ReachMove::RUN_JUMP: return 14;
        case ReachMove::RIDE: return 20;
    }
    return 1;
}

}  // namespace

std::vector<ReachStep> ReachMap::Route(Place start, int abilities, Place goal, int door,
                                       const std::vector<Place>& avoid) const {
    int first = PlaceIndex(start.column, start.row);
    int last = door >= 0 ? -1 : PlaceIndex(goal.column, goal.row);
    if (first < 0 || (door < 0 && last < 0)) return {};
    std::vector<int> cost(places_.size(), std::numeric_limits<int>::max());
    std::vector<std::pair<int, Move>> from(places_.size(), {-1, Move{}});
    std::set<std::pair<int, int>> todo = {{0, first}};
    cost[size_t(first)] = 0;
    int doorFrom = -1;
    ReachMove doorMove;
    int doorCost = std::numeric_limits<int>::max();
    while (!todo.empty()) {
        auto [c, index] = *todo.begin();
        todo.erase(todo.begin());
        if (c > cost[size_t(index)] || c >= doorCost || index == last) break;
        for (const Move& move : movesFrom_[size_t(index)]) {
            if ((move.needs & ~abilities) != 0) continue;
            int next = c + MoveCost(move.how);
            if (move.target < 0) {
                if (door >= 0 && doorIds_[size_t(-1 - move.target)] == door && next < doorCost) {
                    doorCost = next, doorFrom = index, doorMove = move.how;
                }
            } else if (next < cost[size_t(move.target)] &&
                       std::find(avoid.begin(), avoid.end(), places_[size_t(move.target)]) ==
                           avoid.end()) {
                todo.erase({cost[size_t(move.target)], move.target});
                cost[size_t(move.target)] = next;
                from[size_t(move.target)] = {index, move};
                todo.insert({next, move.target});
            }
        }
    }
    std::vector<ReachStep> route;
    int at = last;
    if (door >= 0) {
        if (doorFrom < 0) return {};
        route.push_back({places_[size_t(doorFrom)], places_[size_t(doorFrom)], doorMove, door});
        at = doorFrom;
    } else if (cost[size_t(last)] == std::numeric_limits<int>::max()) {
        return {};
    }
    for (; at != first; at = from[size_t(at)].first) {
        auto [previous, move] = from[size_t(at)];
        route.push_back({places_[size_t(previous)], places_[size_t(at)], move.how, -1});
    }
    std::reverse(route.begin(), route.end());
    return route;
}

std::optional<Place> ReachMap::PlaceAt(sf::Vector2f feet) const {
    int row = int(std::lround((feet.y - origin_.y) / kTile));
    int middle = int(std::floor((feet.x - origin_.x) / kTile));
    float within = feet.x - origin_.x - float(middle) * kTile;
    for (int column : {middle, within < kTile / 2 ? middle - 1 : middle + 1}) {
        int index = PlaceIndex(column, row);
        if (index >= 0) return places_[size_t(index)];
    }
    return std::nullopt;
}

sf::Vector2f ReachMap::FeetAt(Place place) const {
    return Feet(place) + origin_;
}

// ---------------------------------------------------------------- checks

namespace {

std::optional<sf::Vector2f> GoalPoint(const Room& room, const ReachGoal& goal) {
    switch (goal.kind) {
        case ReachGoal::DOOR:
            if (const TransitionDoor* door = DoorWithId(room, goal.id)) {
                sf::FloatRect r = door->shape->getGlobalBounds();
                return sf::Vector2f(r.left + r.width / 2, r.top + r.height / 2);
            }
            return std::nullopt;
        case ReachGoal::CHEST:
            if (goal.id < 0 || goal.id >= int(room.chestSpawns.size())) return std::nullopt;
            return room.chestSpawns[size_t(goal.id)].position;
        case ReachGoal::STATUE: return StartPoint(room, {true, goal.id});
        case ReachGoal::MERCHANT:
            if (!room.hasMerchant) return std::nullopt;
            return room.merchantPosition;
    }
    return std::nullopt;
}

std::string GoalName(const Room& room, const ReachGoal& goal) {
    std::string id = std::to_string(goal.id);
    auto point = GoalPoint(room, goal);
    std::string where = point ? " at " + At(*point) : " (missing)";
    switch (goal.kind) {
        case ReachGoal::DOOR:
            if (const TransitionDoor* door = DoorWithId(room, goal.id)) {
                return "door " + id + " (" + DirectionName(*door) + ") " +
                       RectText(door->shape->getGlobalBounds());
            }
            return "door " + id + " (missing)";
        case ReachGoal::CHEST: return "chest " + id + where;
        case ReachGoal::STATUE: return "the statue (checkpoint " + id + ")" + where;
        case ReachGoal::MERCHANT: return "the merchant" + where;
    }
    return "?";
}

bool Reaches(const ReachMap& map, const ReachResult& result, const ReachGoal& goal) {
    if (goal.kind == ReachGoal::DOOR) return result.Enters(goal.id);
    auto point = GoalPoint(map.room(), goal);
    if (!point) return false;
    auto place = map.PlaceUnder(*point);
    return place && result.Stands(*place);
}

// The place reached nearest to a point, to say how far the hero got.
std::string Nearest(const ReachResult& result, sf::Vector2f point) {
    if (result.places.empty()) return "nowhere";
    auto distance = [&](Place place) {
        sf::Vector2f d = Feet(place) - point;
        return d.x * d.x + d.y * d.y;
    };
    return At(*std::min_element(result.places.begin(), result.places.end(),
                                [&](Place a, Place b) { return distance(a) < distance(b); }));
}

std::string WayTo(const ReachMap& map, const ReachResult& result, const ReachGoal& goal) {
    if (goal.kind == ReachGoal::DOOR) {
        auto from = result.doorsFrom.find(goal.id);
        if (from == result.doorsFrom.end()) return "?";
        return result.Way(result.places[size_t(from->second)]) + " > door";
    }
    auto point = GoalPoint(map.room(), goal);
    auto place = point ? map.PlaceUnder(*point) : std::nullopt;
    return place ? result.Way(*place) : "?";
}

struct Arrival {
    std::optional<Place> place;
    std::string fault;
};

Arrival ArrivalPlace(const ReachMap& map, ReachStart start) {
    const Room& room = map.room();
    auto point = StartPoint(room, start);
    if (!point) return {std::nullopt, RoomName(room) + ": no " + StartName(room, start)};
    auto place = map.PlaceUnder(*point);
    if (!place) {
        return {std::nullopt, RoomName(room) + ": " + StartName(room, start) +
                                  " stands on no place the hero can stand"};
    }
    return {place, ""};
}

}  // namespace

std::vector<std::string> CheckInReach(const ReachMap& weaker, ReachStart start, int abilities,
                                      const std::vector<ReachGoal>& goals) {
    const Room& room = weaker.room();
    Arrival arrival = ArrivalPlace(weaker, start);
    if (!arrival.place) return {arrival.fault};
    ReachResult result = weaker.From(*arrival.place, abilities);
    std::vector<std::string> faults;
    for (const ReachGoal& goal : goals) {
        if (Reaches(weaker, result, goal)) continue;
        auto point = GoalPoint(room, goal);
        faults.push_back(RoomName(room) + ": " + GoalName(room, goal) + " is out of reach from " +
                         StartName(room, start) + " with " + AbilityNames(abilities) +
                         "; the nearest place reached is " +
                         (point ? Nearest(result, *point) : "none"));
    }
    return faults;
}

std::vector<std::string> CheckOutOfReach(const ReachMap& stronger, ReachStart start, int abilities,
                                         const std::vector<ReachGoal>& goals) {
    const Room& room = stronger.room();
    Arrival arrival = ArrivalPlace(stronger, start);
    if (!arrival.place) return {arrival.fault};
    ReachResult result = stronger.From(*arrival.place, abilities);
    std::vector<std::string> faults;
    for (const ReachGoal& goal : goals) {
        if (!Reaches(stronger, result, goal)) continue;
        faults.push_back(RoomName(room) + ": " + GoalName(room, goal) + " is within reach of " +
                         StartName(room, start) + " with " + AbilityNames(abilities) +
                         " (a hero a little stronger than ours gets there by the places " +
                         WayTo(stronger, result, goal) + ")");
    }
    return faults;
}

std::vector<std::string> CheckNoTrap(const ReachMap& weaker, const ReachMap& stronger) {
    const Room& room = weaker.room();
    std::vector<ReachStart> starts;
    for (const DoorSpawn& spawn : room.doorSpawns) starts.push_back({false, spawn.id});
    for (const CheckpointSpawn& spawn : room.checkpointSpawns) starts.push_back({true, spawn.id});
    // Each place with the first arrival and abilities that reach it.
    std::vector<std::pair<Place, std::string>> reached;
    for (int abilities : {0, REACH_DASH, REACH_DASH | REACH_RUN, REACH_ALL}) {
        for (ReachStart start : starts) {
            Arrival arrival = ArrivalPlace(stronger, start);
            if (!arrival.place) continue;  // the arrivals' own check reports it
            for (Place place : stronger.From(*arrival.place, abilities).places) {
                bool known = std::any_of(reached.begin(), reached.end(),
                                         [&](const auto& entry) { return entry.first == place; });
                if (!known) {
                    reached.push_back({place, "reached from " + StartName(room, start) + " with " +
                                                  AbilityNames(abilities)});
                }
            }
        }
    }
    std::vector<std::string> faults;
    for (const auto& [place, how] : reached) {
        if (!weaker.From(place, 0).doorsFrom.empty()) continue;
        faults.push_back(RoomName(room) + ": the place at " + At(place) + ", " + how +
                         ", leads to no door with no ability: the hero is stuck there");
    }
    return faults;
}

RoomTour TourRooms(const std::map<int, const ReachMap*>& maps, int room, ReachStart start,
                   bool takeChests) {
    RoomTour tour;
    using State = std::tuple<int, bool, int, int>;  // room, checkpoint, spawn id, abilities
    std::set<State> seen;
    std::deque<State> todo = {{room, start.checkpoint, start.id, 0}};
    while (!todo.empty()) {
        auto [number, checkpoint, id, abilities] = todo.front();
        todo.pop_front();
        if (!seen.insert({number, checkpoint, id, abilities}).second) continue;
        const ReachMap& map = *maps.at(number);
        Arrival arrival = ArrivalPlace(map, {checkpoint, id});
        if (!arrival.place) continue;
        ReachResult result = map.From(*arrival.place, abilities);
        const auto& chests = map.room().chestSpawns;
        for (int more = abilities; takeChests; result = map.From(*arrival.place, abilities)) {
            for (int i = 0; i < int(chests.size()); i++) {
                if (Reaches(map, result, {ReachGoal::CHEST, i})) more |= ChestAbility(chests[i]);
            }
            if (more == abilities) break;
            abilities = more;
        }
        tour.rooms.insert(number);
        tour.abilities[number] |= abilities;
        for (const auto& [doorId, from] : result.doorsFrom) {
            tour.doors.insert({number, doorId});
            const TransitionDoor* door = DoorWithId(map.room(), doorId);
            if (door && maps.count(door->targetedRoom)) {
                todo.push_back({door->targetedRoom, false, door->targetedDoorId, abilities});
            }
        }
    }
    return tour;
}

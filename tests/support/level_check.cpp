#include "support/level_check.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <optional>

#include "enemies/enemies.h"
#include "world/transition.h"

namespace {

using Faults = std::vector<std::string>;

// Collision rectangles carry a 2 px outline that the game's bounds include; a few pixels either
// way are the same place.
constexpr float kSlack = 4;

const std::array<const char*, 4> kDirectionNames = {"Left", "Right", "Up", "Down"};
const std::array<int, 4> kOpposite = {TRANSITION_RIGHT, TRANSITION_LEFT, TRANSITION_DOWN,
                                      TRANSITION_UP};

sf::FloatRect Bounds(const ShapePtr& shape) {
    return shape->getGlobalBounds();
}

int Direction(const TransitionDoor& door) {
    return TransitionDirectionOf(door.cameraTransition, door.hasCameraTransition);
}

std::string DoorName(const TransitionDoor& door) {
    return "door " + std::to_string(door.id) + " (" + kDirectionNames[Direction(door)] + ")";
}

const TransitionDoor* DoorWithId(const Room& room, int id) {
    for (const TransitionDoor& door : room.transitionDoors) {
        if (door.id == id) return &door;
    }
    return nullptr;
}

// ---------------------------------------------------------------- walls

struct Span {
    float from, to;
};

// The stretches of [from, to] that no span covers.
std::vector<Span> Gaps(std::vector<Span> spans, float from, float to) {
    std::sort(spans.begin(), spans.end(), [](Span a, Span b) { return a.from < b.from; });
    std::vector<Span> gaps;
    float reached = from;
    for (const Span& span : spans) {
        if (span.from > reached + 1) gaps.push_back({reached, span.from});
        reached = std::max(reached, span.to);
    }
    if (to > reached + 1) gaps.push_back({reached, to});
    return gaps;
}

// The rectangles that close an edge: active solid rock and the transition doors.
std::vector<sf::FloatRect> Closures(const Room& room) {
    std::vector<sf::FloatRect> rects;
    for (const Collision& collision : room.collisions) {
        if (collision.active && collision.kind == COLLISION_SOLID)
            rects.push_back(Bounds(collision.shape));
    }
    for (const TransitionDoor& door : room.transitionDoors) rects.push_back(Bounds(door.shape));
    return rects;
}

// One edge, probed half a pixel inside the container: along x when `horizontal`.
void CheckEdge(const Room& room, const char* name, bool horizontal, float probe, float from,
               float to, Faults& faults) {
    std::vector<Span> spans;
    for (const sf::FloatRect& r : Closures(room)) {
        float low = horizontal ? r.top : r.left, high = low + (horizontal ? r.height : r.width);
        if (probe < low || probe >= high) continue;
        spans.push_back(horizontal ? Span{r.left, r.left + r.width}
                                   : Span{r.top, r.top + r.height});
    }
    const char* axis = horizontal ? "x" : "y";
    std::string line = std::string(horizontal ? " of row " : " of column ") +
                       std::to_string(int(std::floor(probe / kTile)));
    for (const Span& gap : Gaps(spans, from, to)) {
        int first = int(std::floor(gap.from / kTile)), last = int(std::ceil(gap.to / kTile)) - 1;
        faults.push_back(RoomName(room) + ": the " + name + " edge is open from " + axis + " " +
                         Num(gap.from) + " to " + axis + " " + Num(gap.to) + " [tiles " +
                         std::to_string(first) + "-" + std::to_string(last) + line +
                         "]: neither rock nor a door closes it");
    }
}

// ---------------------------------------------------------------- standing points

// The top of the highest floor (rock or one-way) under x from `above` to `below` the feet.
std::optional<float> FloorUnder(const Room& room, sf::Vector2f feet, float above, float below) {
    std::optional<float> floor;
    for (const Collision& collision : room.collisions) {
        bool ground = collision.kind == COLLISION_SOLID || collision.kind == COLLISION_ONE_WAY;
        if (!collision.active || !ground) continue;
        sf::FloatRect b = Bounds(collision.shape);
        if (feet.x < b.left || feet.x >= b.left + b.width) continue;
        if (b.top < feet.y - above || b.top > feet.y + below) continue;
        if (!floor || b.top < *floor) floor = b.top;
    }
    return floor;
}

std::optional<sf::FloatRect> RockInside(const Room& room, const sf::FloatRect& box) {
    for (const Collision& collision : room.collisions) {
        if (!collision.active || collision.kind != COLLISION_SOLID) continue;
        sf::FloatRect overlap;
        if (box.intersects(Bounds(collision.shape), overlap) && overlap.width > kSlack &&
            overlap.height > kSlack) {
            return Bounds(collision.shape);
        }
    }
    return std::nullopt;
}

std::optional<sf::FloatRect> RockAt(const Room& room, sf::Vector2f point) {
    for (const Collision& collision : room.collisions) {
        if (collision.active && collision.kind == COLLISION_SOLID &&
            Bounds(collision.shape).contains(point))
            return Bounds(collision.shape);
    }
    return std::nullopt;
}

sf::FloatRect HeroBox(sf::Vector2f feet) {
    return {feet.x - kHeroWidth / 2, feet.y - kHeroHeight, kHeroWidth, kHeroHeight};
}

void CheckInsideCamera(const Room& room, const std::string& what, sf::Vector2f point,
                       Faults& faults) {
    if (room.cameraContainer && !Bounds(room.cameraContainer).contains(point)) {
        faults.push_back(what + " at " + At(point) + " lies outside the camera container " +
                         RectText(Bounds(room.cameraContainer)));
    }
}

// The hurting triggers the hero meets standing in `box` (the game tests its body against them).
std::optional<sf::FloatRect> DeathZoneIn(const Room& room, const sf::FloatRect& box) {
    for (const Trigger& trigger : room.triggers) {
        if (trigger.name == "DeathZone" && box.intersects(Bounds(trigger.shape)))
            return Bounds(trigger.shape);
    }
    return std::nullopt;
}

// A hero spawn: in the room, clear of rock, dropping a short way at most onto a floor, and
// nothing that hurts on the way down.
void CheckHeroSpawn(const Room& room, const std::string& what, sf::Vector2f feet, Faults& faults) {
    std::string name = RoomName(room) + ": " + what + " at " + At(feet);
    CheckInsideCamera(room, RoomName(room) + ": " + what, feet, faults);
    if (auto rock = RockInside(room, HeroBox(feet))) {
        faults.push_back(name + " puts the hero inside the solid rectangle " + RectText(*rock));
    }
    std::optional<float> floor = FloorUnder(room, feet, kSlack, kLongestSpawnDrop);
    if (!floor) {
        faults.push_back(name + " does not stand on a floor: nothing solid or one-way within " +
                         Num(kLongestSpawnDrop) + " px under its feet");
    }
    sf::FloatRect fall = HeroBox(feet);
    fall.height += std::max(0.0f, floor.value_or(feet.y) - feet.y);
    if (auto zone = DeathZoneIn(room, fall)) {
        faults.push_back(name + " puts the hero in the death zone " + RectText(*zone));
    }
}

// Enemies, chests and the merchant do not fall: their point must be on the floor itself.
void CheckPlacedOnFloor(const Room& room, const std::string& what, sf::Vector2f feet,
                        Faults& faults) {
    std::string name = RoomName(room) + ": " + what;
    CheckInsideCamera(room, name, feet, faults);
    if (!FloorUnder(room, feet, kSlack, kSlack)) {
        faults.push_back(name + " at " + At(feet) + " does not stand exactly on a floor");
    }
}

bool Flies(const EnemySpawn& enemy) {
    return enemy.enemyType == ENEMY_FLYING_KNIGHT || enemy.enemyType == ENEMY_GODDESS;
}

// A flying enemy keeps its spawn's height: it hovers in open air over a floor.
void CheckHovering(const Room& room, const std::string& what, sf::Vector2f at, Faults& faults) {
    std::string name = RoomName(room) + ": " + what;
    CheckInsideCamera(room, name, at, faults);
    if (auto rock = RockAt(room, at)) {
        faults.push_back(name + " at " + At(at) + " hovers inside the solid rectangle " +
                         RectText(*rock));
    } else if (!FloorUnder(room, at, kSlack, kHighestHover)) {
        faults.push_back(name + " at " + At(at) + " hovers over no floor within " +
                         Num(kHighestHover) + " px");
    }
}

// The King has no gravity: wherever his arena lets him walk, the floor must be at his feet.
void CheckKingsFloor(const Room& room, const std::string& what, const EnemySpawn& king,
                     const sf::FloatRect& arena, Faults& faults) {
    for (float x = arena.left + kSlack; x < arena.left + arena.width - kSlack; x += kTile / 4) {
        if (FloorUnder(room, {x, king.position.y}, kSlack, kSlack)) continue;
        faults.push_back(RoomName(room) + ": " + what + " at " + At(king.position) +
                         " walks on air at " + At({x, king.position.y}) + ": his arena " +
                         RectText(arena) + " reaches past his floor");
        return;
    }
}

// The Goddess drifts 800 px either side of her spawn and 200 px up and down, drawn behind the
// middle layers: no middle-layer tile may hide her there.
void CheckFlightZone(const Room& room, const std::string& what, sf::Vector2f at, Faults& faults) {
    sf::FloatRect zone(at.x - kFlightHalfWidth, at.y - kFlightHalfHeight, 2 * kFlightHalfWidth,
                       2 * kFlightHalfHeight);
    std::string name = RoomName(room) + ": " + what + " at " + At(at);
    if (room.cameraContainer) {
        sf::FloatRect camera = Bounds(room.cameraContainer), inside;
        if (!zone.intersects(camera, inside) || inside != zone)
            faults.push_back(name + " drifts out of the room: her flight " + RectText(zone));
    }
    for (const RoomLayer& layer : room.layers) {
        if (layer.name == "Background" || layer.name == "Foreground") continue;
        for (const sf::Sprite& tile : layer.tiles) {
            sf::FloatRect overlap;
            if (!tile.getGlobalBounds().intersects(zone, overlap) || overlap.width < 1 ||
                overlap.height < 1)
                continue;
            faults.push_back(name + ": the tile of layer \"" + layer.name + "\" at " +
                             At(tile.getPosition()) + " lies in her flight " + RectText(zone) +
                             " and hides her");
            return;
        }
    }
}

void CheckEnemy(const Room& room, int index, const EnemySpawn& enemy, Faults& faults) {
    std::string what =
        "enemy spawn " + std::to_string(index) + " (kind " + std::to_string(enemy.enemyType) + ")";
    if (Flies(enemy)) {
        CheckHovering(room, what, enemy.position, faults);
    } else {
        CheckPlacedOnFloor(room, what, enemy.position, faults);
    }
    if (enemy.enemyType == ENEMY_GODDESS) CheckFlightZone(room, what, enemy.position, faults);
    const EnemyContainer* container = nullptr;
    for (const EnemyContainer& candidate : room.enemyContainers) {
        if (candidate.id == enemy.containerId) {
            container = &candidate;
            break;
        }
    }
    std::string name = RoomName(room) + ": " + what + " at " + At(enemy.position);
    std::string id = std::to_string(enemy.containerId);
    if (!container) {
        faults.push_back(name + " names container " + id + ", which the room lacks");
    } else if (!Bounds(container->shape).contains(enemy.position)) {
        faults.push_back(name + " lies outside its container " + id + " " +
                         RectText(Bounds(container->shape)));
    } else if (enemy.enemyType == ENEMY_KING) {
        CheckKingsFloor(room, what, enemy, Bounds(container->shape), faults);
    }
}

// ---------------------------------------------------------------- arrivals

// Where the walk-in brings the hero: level with a side door's bottom, or straight down or up
// through the middle of a hole.
void CheckWalkIn(const Room& room, const DoorSpawn& spawn, const TransitionDoor& door,
                 Faults& faults) {
    sf::FloatRect d = Bounds(door.shape);
    sf::Vector2f p = spawn.position;
    int direction = Direction(door);
    bool wrongSide = (direction == TRANSITION_LEFT && p.x < d.left + d.width) ||
                     (direction == TRANSITION_RIGHT && p.x > d.left) ||
                     (direction == TRANSITION_UP && p.y < d.top + d.height) ||
                     (direction == TRANSITION_DOWN && p.y > d.top);
    std::string name = RoomName(room) + ": door spawn " + std::to_string(spawn.id) + " at " + At(p);
    if (wrongSide) {
        faults.push_back(name + " is on the wrong side of its " + DoorName(door) + " " +
                         RectText(d) + ": the hero walks in from the door towards the room");
    }
    bool sideways = direction == TRANSITION_LEFT || direction == TRANSITION_RIGHT;
    if (sideways && std::abs(p.y - (d.top + d.height)) > kSlack) {
        faults.push_back(name + ": the hero walks in level with the bottom of its " +
                         DoorName(door) + " (y " + Num(d.top + d.height) +
                         "), not at the spawn's height");
    }
    if (!sideways && std::abs(p.x - (d.left + d.width / 2)) > kSlack) {
        faults.push_back(name + ": the hero comes through the middle of its " + DoorName(door) +
                         " (x " + Num(d.left + d.width / 2) + "), not at the spawn's x");
    }
}

// The game enters a door when the hero's feet or the top of the body lie in its rectangle.
void CheckOutsideDoors(const Room& room, const DoorSpawn& spawn, Faults& faults) {
    sf::Vector2f feet = spawn.position, head(feet.x, feet.y - kHeroHeight);
    for (const TransitionDoor& door : room.transitionDoors) {
        sf::FloatRect d = Bounds(door.shape);
        if (!d.contains(feet) && !d.contains(head)) continue;
        faults.push_back(RoomName(room) + ": door spawn " + std::to_string(spawn.id) + " at " +
                         At(feet) + " stands in " + DoorName(door) + " " + RectText(d) +
                         ": arriving there leaves again at once");
    }
}

// ---------------------------------------------------------------- door pairs

struct Arrival {
    const DoorSpawn* spawn = nullptr;  // the first spawn with the id
    const TransitionDoor* door = nullptr;
};

// As the room change resolves it: the first spawn with the id whose linked door exists.
Arrival ResolveArrival(const Room& room, int spawnId) {
    Arrival arrival;
    for (const DoorSpawn& spawn : room.doorSpawns) {
        if (spawn.id != spawnId) continue;
        if (!arrival.spawn) arrival.spawn = &spawn;
        if (const TransitionDoor* door = DoorWithId(room, spawn.linkedDoorId)) {
            return {&spawn, door};
        }
    }
    return arrival;
}

bool KnownWord(const TransitionDoor& door) {
    return door.hasCameraTransition && std::find(kDirectionNames.begin(), kDirectionNames.end(),
                                                 door.cameraTransition) != kDirectionNames.end();
}

// The door of `here` leads into `there`: it must arrive through a door that leads back to it.
void CheckPair(const Room& here, const TransitionDoor& door, const Room& there, Faults& faults) {
    std::string name =
        RoomName(here) + " " + DoorName(door) + " at " + RectText(Bounds(door.shape));
    std::string target = RoomName(there);
    int spawnId = door.targetedDoorId;
    Arrival arrival = ResolveArrival(there, spawnId);
    if (!arrival.spawn) {
        faults.push_back(name + " leads to door spawn " + std::to_string(spawnId) + " of " +
                         target + ", which has none");
        return;
    }
    if (!arrival.door) {
        faults.push_back(name + " arrives at door spawn " + std::to_string(spawnId) + " of " +
                         target + ", which links door " +
                         std::to_string(arrival.spawn->linkedDoorId) + ", not in that room");
        return;
    }
    const TransitionDoor& back = *arrival.door;
    std::string through = " arrives through " + target + " " + DoorName(back);
    if (back.id != spawnId) {
        faults.push_back(name + through + ", but its spawn has id " + std::to_string(spawnId) +
                         ": a door and its spawn share their id");
    }
    if (back.targetedRoom != here.roomNumber) {
        faults.push_back(name + through + ", which leads to room " +
                         std::to_string(back.targetedRoom) + " instead of back to " +
                         RoomName(here));
    } else if (const TransitionDoor* home = ResolveArrival(here, back.targetedDoorId).door;
               home != &door) {
        faults.push_back(name + through + ", whose way back comes in at " +
                         (home ? DoorName(*home) : std::string("no door")) + " of " +
                         RoomName(here) + " instead of this one");
    }
    int expected = kOpposite[Direction(door)];
    if (Direction(back) != expected) {
        faults.push_back(name + through + ", which leaves " + kDirectionNames[Direction(back)] +
                         "; it should leave " + kDirectionNames[expected]);
    }
}

// ---------------------------------------------------------------- locked doors

const char* const kLockTrigger = "Locked Door trigger";
const std::array<std::pair<int, int>, 4> kSteps = {{{1, 0}, {-1, 0}, {0, 1}, {0, -1}}};

// The room on the tile grid: a cell is blocked when solid rock covers its centre.
struct Grid {
    sf::FloatRect bounds;
    int columns = 0, rows = 0;
    std::vector<char> blocked;

    int Cell(sf::Vector2f p) const {
        int c = int(std::floor((p.x - bounds.left) / kTile));
        int r = int(std::floor((p.y - bounds.top) / kTile));
        return c < 0 || r < 0 || c >= columns || r >= rows ? -1 : r * columns + c;
    }
    sf::Vector2f Centre(int cell) const {
        return {bounds.left + (float(cell % columns) + 0.5f) * kTile,
                bounds.top + (float(cell / columns) + 0.5f) * kTile};
    }
    void Block(const sf::FloatRect& rect) {
        for (int cell = 0; cell < columns * rows; cell++) {
            if (rect.contains(Centre(cell))) blocked[cell] = 1;
        }
    }
};

bool IsLockedDoor(const Room& room, const ShapePtr& shape) {
    for (const DoorList& list : room.doorLists) {
        for (const Door& door : list.doors) {
            if (door.shape == shape) return true;
        }
    }
    return false;
}

// Rock, the locked doors when `doorsShut`, and the lock triggers when `triggersBlock`.
Grid OpenSpace(const Room& room, bool doorsShut, bool triggersBlock) {
    Grid grid;
    grid.bounds = Bounds(room.cameraContainer);
    grid.columns = int(std::ceil(grid.bounds.width / kTile));
    grid.rows = int(std::ceil(grid.bounds.height / kTile));
    grid.blocked.assign(size_t(grid.columns * grid.rows), 0);
    for (const Collision& collision : room.collisions) {
        if (collision.active && collision.kind == COLLISION_SOLID &&
            !IsLockedDoor(room, collision.shape)) {
            grid.Block(Bounds(collision.shape));
        }
    }
    for (const DoorList& list : room.doorLists) {
        for (const Door& door : list.doors) {
            if (doorsShut) grid.Block(Bounds(door.shape));
        }
    }
    for (const Trigger& trigger : room.triggers) {
        if (triggersBlock && trigger.name == kLockTrigger) grid.Block(Bounds(trigger.shape));
    }
    return grid;
}

// The cells reached from the body standing at `feet` through open cells, sideways and up and
// down. A hero reaches less (it falls and jumps only so high), so what this misses is surely out
// of reach.
std::vector<char> Reach(const Grid& grid, sf::Vector2f feet) {
    std::vector<char> reached(grid.blocked.size(), 0);
    int start = grid.Cell({feet.x, feet.y - kTile / 2});
    if (start < 0 || grid.blocked[start]) return reached;
    std::vector<int> todo = {start};
    reached[start] = 1;
    while (!todo.empty()) {
        int cell = todo.back();
        todo.pop_back();
        int c = cell % grid.columns, r = cell / grid.columns;
        for (auto [dc, dr] : kSteps) {
            if (c + dc < 0 || c + dc >= grid.columns || r + dr < 0 || r + dr >= grid.rows) continue;
            int next = cell + dr * grid.columns + dc;
            if (grid.blocked[next] || reached[next]) continue;
            reached[next] = 1;
            todo.push_back(next);
        }
    }
    return reached;
}

bool ReachesInto(const Grid& grid, const std::vector<char>& reached, const sf::FloatRect& rect) {
    for (size_t cell = 0; cell < reached.size(); cell++) {
        if (reached[cell] && rect.contains(grid.Centre(int(cell)))) return true;
    }
    return false;
}

bool ReachesBody(const Grid& grid, const std::vector<char>& reached, sf::Vector2f feet) {
    int cell = grid.Cell({feet.x, feet.y - kTile / 2});
    return cell >= 0 && reached[cell];
}

// The plant only ever sinks back into its mound: no kill of it opens a door.
bool Mortal(const EnemySpawn& enemy) {
    return enemy.enemyType != ENEMY_PLANT;
}

std::string EnemyName(const Room& room, size_t index) {
    const EnemySpawn& enemy = room.enemySpawns[index];
    return "enemy spawn " + std::to_string(index) + " (kind " + std::to_string(enemy.enemyType) +
           ") at " + At(enemy.position);
}

void CheckGroupCounts(const Room& room, Faults& faults) {
    int mortal = int(std::count_if(room.enemySpawns.begin(), room.enemySpawns.end(), Mortal));
    for (const DoorList& list : room.doorLists) {
        std::string group = RoomName(room) + ": door group " + std::to_string(list.id);
        bool closes = std::any_of(
            room.triggers.begin(), room.triggers.end(),
            [&](const Trigger& t) { return t.name == kLockTrigger && t.value == list.id; });
        if (!closes) {
            faults.push_back(group +
                             " has no \"Locked Door trigger\" of its id: its doors never "
                             "close");
        }
        if (list.enemyToKill <= 0) {
            faults.push_back(group + " waits for no kill: its doors open again as they shut");
        } else if (list.enemyToKill > mortal) {
            faults.push_back(group + " waits for " + std::to_string(list.enemyToKill) +
                             (list.enemyToKill == 1 ? " kill" : " kills") + "; the room holds " +
                             std::to_string(mortal) + (mortal == 1 ? " enemy" : " enemies") +
                             " that can die: its doors never open again");
        }
    }
}

// A trigger must close its doors on the enemies they wait for, not between them and the hero.
void CheckTriggerSides(const Room& room, const Grid& shut, Faults& faults) {
    std::vector<std::vector<char>> kept;
    for (const EnemySpawn& enemy : room.enemySpawns) {
        if (Mortal(enemy)) kept.push_back(Reach(shut, enemy.position));
    }
    for (const Trigger& trigger : room.triggers) {
        if (trigger.name != kLockTrigger) continue;
        std::string name = RoomName(room) + ": the \"Locked Door trigger\" of group " +
                           std::to_string(trigger.value) + " at " + RectText(Bounds(trigger.shape));
        bool known = std::any_of(room.doorLists.begin(), room.doorLists.end(),
                                 [&](const DoorList& list) { return list.id == trigger.value; });
        if (!known) {
            faults.push_back(name + " closes a group the room lacks");
            continue;
        }
        bool withEnemies = std::any_of(kept.begin(), kept.end(), [&](const auto& reached) {
            return ReachesInto(shut, reached, Bounds(trigger.shape));
        });
        if (!withEnemies) {
            faults.push_back(name +
                             " lies where the shut doors keep no enemy that can die: it "
                             "locks the hero out of the kills that open them");
        }
    }
}

// The boss is shut in on every side, and nobody comes at it without shutting the doors first.
void CheckBossShutIn(const Room& room, const Grid& shut, Faults& faults) {
    if (room.doorLists.empty()) {
        faults.push_back(RoomName(room) +
                         " is a boss room without locked doors: nothing keeps "
                         "the hero in the fight");
        return;
    }
    for (size_t i = 0; i < room.enemySpawns.size(); i++) {
        std::vector<char> reached = Reach(shut, room.enemySpawns[i].position);
        for (const TransitionDoor& door : room.transitionDoors) {
            if (!ReachesInto(shut, reached, Bounds(door.shape))) continue;
            faults.push_back(RoomName(room) + ": with its locked doors shut, the boss (" +
                             EnemyName(room, i) + ") still reaches " + DoorName(door) + " " +
                             RectText(Bounds(door.shape)) + ": that way out stays open");
        }
    }
    Grid guarded = OpenSpace(room, false, true);
    for (const DoorSpawn& spawn : room.doorSpawns) {
        std::vector<char> reached = Reach(guarded, spawn.position);
        for (size_t i = 0; i < room.enemySpawns.size(); i++) {
            if (!ReachesBody(guarded, reached, room.enemySpawns[i].position)) continue;
            faults.push_back(RoomName(room) + ": door spawn " + std::to_string(spawn.id) + " at " +
                             At(spawn.position) + " reaches the boss (" + EnemyName(room, i) +
                             ") past every \"Locked Door trigger\": that fight begins with the "
                             "doors open");
        }
    }
}

}  // namespace

std::string Num(float value) {
    return std::to_string(int(std::lround(value)));
}

std::string At(sf::Vector2f point) {
    return "(" + Num(point.x) + ", " + Num(point.y) + ") [tile " +
           std::to_string(int(std::floor(point.x / kTile))) + ", " +
           std::to_string(int(std::floor(point.y / kTile))) + "]";
}

std::string RectText(const sf::FloatRect& rect) {
    return "(" + Num(rect.left) + ", " + Num(rect.top) + ", " + Num(rect.width) + " x " +
           Num(rect.height) + ")";
}

std::string RoomName(const Room& room) {
    return "room " + std::to_string(room.roomNumber);
}

std::vector<std::string> CheckLockedDoors(const Room& room) {
    Faults faults;
    if (!room.cameraContainer) return faults;  // the walls' check reports it
    CheckGroupCounts(room, faults);
    Grid shut = OpenSpace(room, true, false);
    CheckTriggerSides(room, shut, faults);
    if (room.bossRoom != 0) CheckBossShutIn(room, shut, faults);
    return faults;
}

std::vector<std::string> CheckWalls(const Room& room) {
    Faults faults;
    if (!room.cameraContainer) return {RoomName(room) + ": no camera container"};
    sf::FloatRect c = Bounds(room.cameraContainer);
    float right = c.left + c.width, bottom = c.top + c.height;
    CheckEdge(room, "top", true, c.top + 0.5f, c.left, right, faults);
    CheckEdge(room, "bottom", true, bottom - 0.5f, c.left, right, faults);
    CheckEdge(room, "left", false, c.left + 0.5f, c.top, bottom, faults);
    CheckEdge(room, "right", false, right - 0.5f, c.top, bottom, faults);
    return faults;
}

std::vector<std::string> CheckStandingPoints(const Room& room) {
    Faults faults;
    if (!room.cameraContainer) faults.push_back(RoomName(room) + ": no camera container");
    for (const CheckpointSpawn& spawn : room.checkpointSpawns) {
        CheckHeroSpawn(room, "checkpoint spawn " + std::to_string(spawn.id), spawn.position,
                       faults);
    }
    for (const DoorSpawn& spawn : room.doorSpawns) {
        CheckHeroSpawn(room, "door spawn " + std::to_string(spawn.id), spawn.position, faults);
    }
    for (size_t i = 0; i < room.enemySpawns.size(); i++) {
        CheckEnemy(room, int(i), room.enemySpawns[i], faults);
    }
    for (size_t i = 0; i < room.chestSpawns.size(); i++) {
        CheckPlacedOnFloor(room, "chest " + std::to_string(i), room.chestSpawns[i].position,
                           faults);
    }
    if (room.hasMerchant) CheckPlacedOnFloor(room, "the merchant", room.merchantPosition, faults);
    return faults;
}

std::vector<std::string> CheckArrivals(const Room& room) {
    Faults faults;
    for (const DoorSpawn& spawn : room.doorSpawns) {
        CheckOutsideDoors(room, spawn, faults);
        if (const TransitionDoor* door = DoorWithId(room, spawn.linkedDoorId)) {
            CheckWalkIn(room, spawn, *door, faults);
        } else {
            faults.push_back(RoomName(room) + ": door spawn " + std::to_string(spawn.id) +
                             " links door " + std::to_string(spawn.linkedDoorId) +
                             ", which the room lacks");
        }
    }
    return faults;
}

std::vector<std::string> CheckLevelRules(const Room& room) {
    Faults faults = CheckWalls(room);
    for (const Faults& more :
         {CheckStandingPoints(room), CheckArrivals(room), CheckLockedDoors(room)}) {
        faults.insert(faults.end(), more.begin(), more.end());
    }
    return faults;
}

DoorPairReport CheckDoorPairs(const std::map<int, const Room*>& rooms) {
    DoorPairReport report;
    for (const auto& [number, room] : rooms) {
        for (const TransitionDoor& door : room->transitionDoors) {
            if (!KnownWord(door)) {
                report.faults.push_back(RoomName(*room) + " door " + std::to_string(door.id) +
                                        ": CameraTransition \"" + door.cameraTransition +
                                        "\" is not Left, Right, Up or Down; the game reads it as "
                                        "Left");
            }
            auto target = rooms.find(door.targetedRoom);
            if (target == rooms.end()) {
                report.unbuilt.push_back({number, door.id, door.targetedRoom});
                continue;
            }
            CheckPair(*room, door, *target->second, report.faults);
        }
    }
    return report;
}

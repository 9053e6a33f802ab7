#include "support/level_check.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <optional>

#include "world/transition.h"

namespace {

using Faults = std::vector<std::string>;

// Collision rectangles carry a 2 px outline that the game's bounds include; a few pixels either
// way are the same place.
constexpr float kSlack = 4;
constexpr float kTile = 96;

const std::array<const char*, 4> kDirectionNames = {"Left", "Right", "Up", "Down"};
const std::array<int, 4> kOpposite = {TRANSITION_RIGHT, TRANSITION_LEFT, TRANSITION_DOWN,
                                      TRANSITION_UP};

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

void CheckEnemy(const Room& room, int index, const EnemySpawn& enemy, Faults& faults) {
    std::string what =
        "enemy spawn " + std::to_string(index) + " (kind " + std::to_string(enemy.enemyType) + ")";
    CheckPlacedOnFloor(room, what, enemy.position, faults);
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

}  // namespace

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
    for (const Faults& more : {CheckStandingPoints(room), CheckArrivals(room)}) {
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

// The hero's reach in a room: the places where he can stand and the doors and objects he can get
// to by walking, falling, jumping and dropping through ledges, and with his abilities by dashing,
// running and making clouds. The moves follow the hero's tuning at the game's fixed step, with a
// margin either way: a weaker hero (a little slower, a lower jump, no ledge grace) proves that a
// place is in reach, a stronger one (a little faster, a higher jump, the grace and the body's
// push-out onto corners) proves that it is out of reach. A gate that is barely crossable, or
// barely closed, fails one of the two. An elevator's cabin is a floor at each of its stops,
// joined by the ride.
//
// Places are reported as level_check does: world coordinates of the hero's feet, with the tile
// (96 world px) in brackets; the tile's row is the floor cell he stands on.
#pragma once

#include <map>
#include <optional>
#include <set>
#include <string>
#include <vector>

#include "player/player.h"
#include "world/room.h"

// The abilities as the check knows them, one bit each.
constexpr int REACH_DASH = 1, REACH_RUN = 2, REACH_CLOUD = 4, REACH_ALL = 7;

// "no ability", "the dash", "the dash and the run", ...
std::string AbilityNames(int abilities);
// The bit a chest's Ability value grants (0 dash, 1 run, 2 cloud).
int ChestAbility(const ChestSpawn& chest);

enum class Margin { kWeaker, kStronger };

// The hero's movement per update at the game's fixed step, in world px.
struct HeroMoves {
    float walk = 0, run = 0, dash = 0;
    int dashUpdates = 0;
    float gravity = 0, jump = 0, maxFall = 0;
    float overhang = 0;    // how far past a floor's edge his middle may be while he stands
    float ledgeReach = 0;  // how far either side of his middle a one-way ledge catches him
    int graceUpdates = 0;  // updates after walking off an edge in which he still jumps or dashes
    float stepUp = 0;      // the push-out lifts him onto a corner this much (and his move) deep
    float Dash() const { return dash * float(dashUpdates); }
    // The highest rise of a jump from the ground.
    float JumpHeight() const;
};
HeroMoves MovesFor(Margin margin, const PlayerTuning& tuning = PlayerTuning());

// The hero stands on top of the cell (column, row).
struct Place {
    int column = -1, row = -1;
    bool operator==(const Place&) const = default;
};

// The input that takes the hero from one place to the next: a walk to the tile beside, a ride, or
// a flight that starts at the take-off point toward `dir` (walking off for `grace` updates, then
// the move; the direction held in the air in [holdFrom, holdTo) updates after the take-off).
struct ReachMove {
    enum Kind { WALK, FALL, JUMP, DASH, RUN_JUMP, RIDE } kind = WALK;
    int dir = 1, grace = 0, holdFrom = 0, holdTo = 1 << 20;
    bool runAfterDash = false, cloud = false, drop = false;
};

// One move of a route; `door` is the transition door id it enters, or -1.
struct ReachStep {
    Place from, to;
    ReachMove how;
    int door = -1;
};

// What the hero reaches from one place with one set of abilities.
struct ReachResult {
    std::vector<Place> places;
    std::vector<int> cameFrom;     // for each place, the index in `places` of the one before
    std::map<int, int> doorsFrom;  // transition door ids entered, with the place left from
    bool Stands(Place place) const;
    bool Enters(int door) const { return doorsFrom.count(door) != 0; }
    // The way to a place reached, as the places where the hero leaves the ground and lands.
    std::string Way(Place place) const;
};

class ReachMap {
public:
    ReachMap(const Room& room, Margin margin, const PlayerTuning& tuning = PlayerTuning());

    // The place under a spawn or an object on a floor (a door spawn may be a tile above it).
    std::optional<Place> PlaceUnder(sf::Vector2f point) const;
    ReachResult From(Place start, int abilities) const;
    // The cheapest way (walks cost least, then drops, jumps, dashes, runs and clouds) from a place
    // to another, or into a door (`door` >= 0), never landing on a place to `avoid`; empty when
    // there is none.
    std::vector<ReachStep> Route(Place start, int abilities, Place goal, int door = -1,
                                 const std::vector<Place>& avoid = {}) const;
    // The place the feet stand on, the floor under the middle first, else one under the feet.
    std::optional<Place> PlaceAt(sf::Vector2f feet) const;
    // World coordinates of the feet standing in the middle of a place.
    sf::Vector2f FeetAt(Place place) const;
    // Where a flight toward `dir` from a place leaves the ground (x of the middle).
    float TakeOffX(Place place, int dir) const { return TakeOff(place, dir); }
    const std::vector<Place>& Places() const { return places_; }
    const Room& room() const { return room_; }
    const HeroMoves& moves() const { return moves_; }

private:
    enum Cell : char { OPEN, ROCK, LEDGE };
    enum Kind { FALL, JUMP, DASH, RUN_JUMP };
    // One flight's input: walking off for `grace` updates, then the move, the direction held in
    // the air in [holdFrom, holdTo) updates after the take-off.
    struct Launch {
        int dir = 1, kind = FALL, grace = 0, holdFrom = 0, holdTo = 1 << 20;
        bool runAfterDash = false, cloud = false, drop = false;
        int needs = 0;
    };
    struct Move {
        int target;  // a place index, or -1 - door index
        int needs;
        ReachMove how;
    };

    Cell At(int column, int row) const;
    bool Rock(int column, int row) const { return At(column, row) == ROCK; }
    bool RockIn(float left, float top, float right, float bottom) const;
    bool BodyInRock(float x, float y) const;
    bool Deadly(float x, float y) const;
    int DoorAt(float x, float y) const;
    int PlaceIndex(int column, int row) const;
    void FindPlaces();
    void AddMoves(int index);
    std::vector<Launch> Launches(int index, int dir) const;
    float TakeOff(Place place, int dir) const;
    int Runway(Place place, int dir) const;
    // The place or door a flight ends in: a place index, -1 - door index, or nothing.
    std::optional<int> Fly(sf::Vector2f feet, const Launch& launch) const;
    bool Sideways(float& x, float& y, float vx) const;
    bool Vertical(float x, float& y, float& vy, float dropBelow, bool& uncertain) const;
    std::optional<int> Landing(float x, float y) const;

    const Room& room_;
    Margin margin_;
    HeroMoves moves_;
    sf::Vector2f origin_;
    int columns_ = 0, rows_ = 0;
    std::vector<Cell> cells_;
    std::vector<sf::FloatRect> deathZones_, doors_;
    std::vector<int> doorIds_;
    std::vector<Place> places_;
    std::vector<int> placeIndex_;
    std::vector<std::vector<Move>> movesFrom_;
};

// Where the hero comes into a room: a door spawn or a checkpoint spawn.
struct ReachStart {
    bool checkpoint = false;
    int id = 0;
};

// What the critical path needs in a room.
struct ReachGoal {
    enum Kind { DOOR, CHEST, STATUE, MERCHANT } kind = DOOR;
    int id = 0;  // the door id, the chest's index, the checkpoint id
};

// One line per goal the weaker hero does not reach from the start with the abilities.
std::vector<std::string> CheckInReach(const ReachMap& weaker, ReachStart start, int abilities,
                                      const std::vector<ReachGoal>& goals);
// One line per goal the stronger hero still reaches from the start with the abilities.
std::vector<std::string> CheckOutOfReach(const ReachMap& stronger, ReachStart start, int abilities,
                                         const std::vector<ReachGoal>& goals);
// One line per place the stronger hero reaches from an arrival with some abilities, from which
// the weaker hero without any reaches no door: nobody is ever stuck in a room.
std::vector<std::string> CheckNoTrap(const ReachMap& weaker, const ReachMap& stronger);

// The rooms walked door to door from a start, the abilities growing as chests are reached (when
// `takeChests`); the maps by room number, one margin for all. Doors to rooms without a map are
// listed among the doors but lead nowhere.
struct RoomTour {
    std::set<int> rooms;
    std::set<std::pair<int, int>> doors;  // (room, door id) entered
    std::map<int, int> abilities;         // the most the hero had in each room
};
RoomTour TourRooms(const std::map<int, const ReachMap*>& maps, int room, ReachStart start,
                   bool takeChests);

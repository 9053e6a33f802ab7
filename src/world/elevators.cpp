#include "world/elevators.h"

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <sstream>

#include "common/ease.h"
#include "common/file_write.h"
#include "common/log.h"
#include "common/motion.h"
#include "media/animation.h"
#include "world/camera.h"
#include "world/room.h"
#include "world/tiled.h"

namespace {

constexpr int kTile = 32;
constexpr unsigned kLeverFrames = 8;  // the pull clip of Elevator-Lever.png
constexpr unsigned kLeverFps = 16;
constexpr float kMaxGearSpeed = 5.0f;
const sf::Color kZoneColor(0, 255, 0, 100);
const sf::Color kSparkHot(255, 236, 190, 255);

using Shape = std::shared_ptr<sf::RectangleShape>;

struct LeverSprite {
    SpritePtr sprite;
    SpritePtr outline;
    bool highlighted = false;
    Animation clip;
};

struct Gear {
    SpritePtr sprite;
    int small = 0;
};

struct Spark {
    SpritePtr sprite;
    Animation clip;
};

// Shared by every cabin of the room: only one rides at a time.
struct Travel {
    int target = 0;
    Tween tween;
    float duration = 0;
    bool gearsSpinning = false;
    float gearSpeed = 0;
    bool playerOnElevator = false;
};

struct Decorations {
    TexturePtr lever, outline, bigGear, smallGear, sparkDown, sparkUp;
    std::vector<LeverSprite> levers;
    std::vector<Gear> gears;
    std::vector<Spark> sparks;
};

Travel travel;
Decorations decor;

Shape MakeShape(sf::Vector2f position, sf::Vector2f size, sf::Color fill) {
    auto shape = std::make_shared<sf::RectangleShape>(size);
    shape->setPosition(position);
    shape->setFillColor(fill);
    return shape;
}

const ElevatorStop* StopWithId(const Elevator& elevator, int id) {
    for (const ElevatorStop& stop : elevator.stops) {
        if (stop.id == id) return &stop;
    }
    return nullptr;
}

// Moves the cabin and everything riding with it (collisions, call trigger) by the same step.
void ShiftCabin(Elevator& elevator, sf::Vector2f delta) {
    if (elevator.sprite) elevator.sprite->move(delta);
    for (Shape& shape : elevator.collisionShapes) shape->move(delta);
    if (elevator.callTrigger) elevator.callTrigger->move(delta);
}

void PlaceCabin(Elevator& elevator, sf::Vector2f position) {
    if (elevator.sprite) ShiftCabin(elevator, position - elevator.sprite->getPosition());
}

// ---------------------------------------------------------------- building

struct CabinTiles {
    std::vector<sf::Sprite> sprites;  // in map pixels, baked at the tile size
    sf::IntRect cells;                // the tiles' bounding box in cells
};

void ReadCabinTiles(const TiledLayer& layer, const TiledTileset& tileset, const sf::Texture* tiles,
                    float scale, Elevator& elevator, CabinTiles& cabin) {
    int columns = tiles ? std::max(1, int(tiles->getSize().x) / kTile) : 1;
    int left = layer.width, top = layer.height, right = -1, bottom = -1;
    for (int r = 0; r < layer.height; r++) {
        for (int c = 0; c < layer.width; c++) {
            unsigned value = layer.data[size_t(r) * size_t(layer.width) + size_t(c)];
            if (value == 0) continue;
            int index = int(value - 1);
            sf::Sprite sprite;
            if (tiles) sprite.setTexture(*tiles);
            sprite.setTextureRect(
                {(index % columns) * kTile, (index / columns) * kTile, kTile, kTile});
            sprite.setPosition(float(c * kTile), float(r * kTile));
            cabin.sprites.push_back(sprite);
            left = std::min(left, c), top = std::min(top, r);
            right = std::max(right, c), bottom = std::max(bottom, r);
            for (const TiledTile& tile : tileset.tiles) {
                if (!tile.hasCollision || tile.id != index) continue;
                for (const TiledObject& box : tile.collision) {
                    auto shape = MakeShape(
                        {(c * kTile + box.x) * scale, (r * kTile + box.y) * scale},
                        {box.width * scale, box.height * scale}, sf::Color(255, 0, 0, 100));
                    shape->setOutlineColor(sf::Color::Red);
                    shape->setOutlineThickness(2);
                    elevator.collisionShapes.push_back(shape);
                }
            }
        }
    }
    cabin.cells =
        right < 0 ? sf::IntRect() : sf::IntRect(left, top, right - left + 1, bottom - top + 1);
}

// Bakes the tiles into one picture; the sprite's origin is its bottom centre, placed where the
// tiles were authored.
void BakeCabin(const CabinTiles& cabin, float scale, Elevator& elevator) {
    sf::IntRect cells = cabin.cells;
    elevator.sprite = std::make_unique<sf::Sprite>();
    // Without the tileset's picture there is nothing to bake (and no graphics context needed).
    if (cells.width > 0 && cabin.sprites.front().getTexture()) {
        sf::RenderTexture canvas;
        if (canvas.create(unsigned(cells.width * kTile), unsigned(cells.height * kTile))) {
            canvas.clear(sf::Color::Transparent);
            for (sf::Sprite tile : cabin.sprites) {
                tile.move(-float(cells.left * kTile), -float(cells.top * kTile));
                canvas.draw(tile);
            }
            canvas.display();
            elevator.texture = std::make_unique<sf::Texture>(canvas.getTexture());
            elevator.sprite->setTexture(*elevator.texture, true);
        }
    }
    float w = float(cells.width * kTile), h = float(cells.height * kTile);
    elevator.sprite->setOrigin(w / 2, h);
    elevator.sprite->setScale(scale, scale);
    elevator.sprite->setPosition((cells.left * kTile + w / 2) * scale,
                                 (cells.top * kTile + h) * scale);
}

void ReadLevers(const TiledLayer& group, float scale, Elevator& elevator) {
    for (const TiledLayer& layer : group.layers) {
        Lever lever;
        lever.zone = MakeShape({0, 0}, {0, 0}, kZoneColor);
        for (const TiledObject& object : layer.objects) {
            if (object.point) {
                lever.position = {object.x * scale, object.y * scale};
                lever.id = PropertyInt(FindProperty(object.properties, "id"));
                lever.active = PropertyInt(FindProperty(object.properties, "isActive")) ? 1 : 0;
            } else {
                lever.zone->setPosition(object.x * scale, object.y * scale);
                lever.zone->setSize({object.width * scale, object.height * scale});
            }
        }
        elevator.levers.push_back(lever);
    }
}

void ReadStops(const TiledLayer& layer, float scale, Elevator& elevator) {
    for (const TiledObject& object : layer.objects) {
        if (object.point) {
            elevator.stops.push_back({{object.x * scale, object.y * scale},
                                      PropertyInt(FindProperty(object.properties, "id"))});
        } else if (object.name == "Trigger") {
            elevator.callTrigger =
                MakeShape({object.x * scale, object.y * scale},
                          {object.width * scale, object.height * scale}, kZoneColor);
        }
    }
}

Elevator BuildElevator(const TiledLayer& group, const TiledTileset& tileset,
                       const sf::Texture* tiles, float scale) {
    Elevator elevator;
    elevator.callTrigger = MakeShape({0, 0}, {0, 0}, kZoneColor);
    for (const TiledLayer& layer : group.layers) {
        if (layer.hasData) {
            CabinTiles cabin;
            ReadCabinTiles(layer, tileset, tiles, scale, elevator, cabin);
            elevator.id = PropertyInt(FirstProperty(layer.properties));
            BakeCabin(cabin, scale, elevator);
            // The floor and the trigger go with the cabin to stop 0.
            const ElevatorStop* first = StopWithId(elevator, 0);
            PlaceCabin(elevator, first ? first->position : sf::Vector2f());
        } else if (layer.name == "Lever group") {
            ReadLevers(layer, scale, elevator);
        } else {
            ReadStops(layer, scale, elevator);
        }
    }
    if (!elevator.sprite) elevator.sprite = std::make_unique<sf::Sprite>();
    return elevator;
}

// ---------------------------------------------------------------- the state file

std::string StateText(const std::vector<Elevator>& elevators) {
    std::ostringstream text;
    for (const Elevator& elevator : elevators) {
        int stop = CurrentStopId(elevator);
        // A cabin released mid-trip is written where it was going.
        if (stop < 0) stop = elevator.moving ? travel.target : 0;
        text << "#Elevator ID : " << elevator.id << "\nPos ID : " << stop << "\n";
        for (size_t j = 0; j < elevator.levers.size(); j++) {
            text << "- Lever ID : " << j << "\nLever is active : " << elevator.levers[j].active
                 << "\n";
        }
        text << "\n";
    }
    return text.str();
}

bool WriteStates(const std::string& path) {
    Log("Path : %s\n", path.c_str());
    if (WriteFileSafely(path, StateText(CurrentRoom().elevators))) return true;
    LogError("Error opening file : %s\n", path.c_str());
    return false;
}

Elevator* ElevatorWithId(int id) {
    std::vector<Elevator>& elevators = CurrentRoom().elevators;
    Elevator* found = nullptr;
    for (Elevator& elevator : elevators) {
        if (elevator.id == id) found = &elevator;
    }
    return found;
}

struct LeverState {
    int index = 0, active = 0;
};

struct ElevatorState {
    int id = 0, stop = 0;
    std::vector<LeverState> levers;
};

// Parses the whole file first, so a damaged file changes nothing.
bool ParseStates(std::FILE* file, std::vector<ElevatorState>& states) {
    char line[256];
    while (std::fgets(line, sizeof line, file)) {
        int a = 0;
        if (line[0] == '\n' || line[0] == '\r') continue;
        if (std::sscanf(line, "#Elevator ID : %d", &a) == 1) {
            states.push_back({a, -1, {}});
        } else if (!states.empty() && std::sscanf(line, "Pos ID : %d", &a) == 1) {
            states.back().stop = a;
        } else if (!states.empty() && std::sscanf(line, "- Lever ID : %d", &a) == 1) {
            states.back().levers.push_back({a, -1});
        } else if (!states.empty() && !states.back().levers.empty() &&
                   std::sscanf(line, "Lever is active : %d", &a) == 1) {
            states.back().levers.back().active = a;
        } else {
            return false;
        }
    }
    for (const ElevatorState& state : states) {
        if (state.stop < 0) return false;
        for (const LeverState& lever : state.levers) {
            if (lever.active != 0 && lever.active != 1) return false;
        }
    }
    return true;
}

bool StatesFit(const std::vector<ElevatorState>& states) {
    for (const ElevatorState& state : states) {
        Elevator* elevator = ElevatorWithId(state.id);
        if (!elevator || !StopWithId(*elevator, state.stop)) return false;
        for (const LeverState& lever : state.levers) {
            if (lever.index < 0 || size_t(lever.index) >= elevator->levers.size()) return false;
        }
    }
    return true;
}

void ApplyStates(const std::vector<ElevatorState>& states) {
    for (const ElevatorState& state : states) {
        Elevator& elevator = *ElevatorWithId(state.id);
        PlaceCabin(elevator, StopWithId(elevator, state.stop)->position);
        for (const LeverState& lever : state.levers) {
            elevator.levers[size_t(lever.index)].active = lever.active;
        }
    }
}

// ---------------------------------------------------------------- travel

bool IsVerticalTrip(const Elevator& elevator, sf::Vector2f goal) {
    return elevator.sprite->getPosition().x == goal.x;
}

void UpdateSparks(const Elevator& elevator, float dt) {
    sf::FloatRect cabin = elevator.sprite->getGlobalBounds();
    const ElevatorStop* goal = StopWithId(elevator, travel.target);
    bool vertical = goal && IsVerticalTrip(elevator, goal->position);
    float p = travel.duration > 0 ? std::min(1.0f, travel.tween.elapsed / travel.duration) : 1;
    // The sparks flare over the first 40 % of the trip and die away over the rest.
    float glow =
        p < 0.4f ? Ease(EASE_CUBIC_IN, p / 0.4f) : 1 - Ease(EASE_CUBIC_IN_OUT, (p - 0.4f) / 0.6f);
    sf::Color color = kSparkHot;
    color.a = sf::Uint8(std::clamp(glow * 255.0f, 0.0f, 255.0f));
    for (size_t i = 0; i < decor.sparks.size(); i++) {
        Spark& spark = decor.sparks[i];
        UpdateAnimation(spark.clip, dt);
        float x = (i % 2 == 0) ? cabin.left : cabin.left + cabin.width;
        spark.sprite->setPosition(x, cabin.top + cabin.height / 2);
        spark.sprite->setRotation(vertical ? 0.0f : (i < 2 ? -90.0f : 270.0f));
        spark.sprite->setColor(color);
    }
}

void ResetSparks() {
    for (Spark& spark : decor.sparks) spark.sprite->setColor(sf::Color(255, 255, 255, 0));
}

void SpinGears() {
    if (travel.gearsSpinning) {
        if (travel.gearSpeed + 0.03f <= kMaxGearSpeed) travel.gearSpeed += 0.03f;
    } else {
        travel.gearSpeed = travel.gearSpeed > 0 ? std::max(0.0f, travel.gearSpeed - 0.05f) : 0;
    }
    for (Gear& gear : decor.gears)
        gear.sprite->rotate(gear.small ? -travel.gearSpeed : travel.gearSpeed);
}

// Keeps a rider of a sideways trip inside the cabin.
void HoldRider(const sf::FloatRect& trigger, sf::Vector2f& player) {
    player.x = std::clamp(player.x, trigger.left, trigger.left + trigger.width);
}

void MoveCabin(Elevator& elevator, float dt, sf::Vector2f& player) {
    const ElevatorStop* goal = StopWithId(elevator, travel.target);
    if (!goal) {
        LogError("You give a wrong posId also the Vector going to be 0 !\n");
        elevator.moving = 0;
        return;
    }
    travel.duration = ElevatorTravelDuration(elevator);
    sf::FloatRect trigger = elevator.callTrigger->getGlobalBounds();
    sf::Vector2f before = elevator.sprite->getPosition();
    sf::Vector2f position = before;
    if (StepTween(travel.tween, position, goal->position, travel.duration, EASE_CUBIC_IN_OUT, dt)) {
        elevator.moving = 0;
        position = goal->position;  // exactly, so that the cabin is found at its stop
    }
    sf::Vector2f delta = position - before;
    ShiftCabin(elevator, delta);
    travel.playerOnElevator = trigger.contains(player);
    if (travel.playerOnElevator) {
        player += delta;
        if (!IsVerticalTrip(elevator, goal->position)) HoldRider(trigger, player);
    }
    UpdateSparks(elevator, dt);
    travel.gearsSpinning = true;
    if (!elevator.moving) {
        travel.tween = Tween();
        ResetSparks();
        travel.gearsSpinning = false;
    }
}

void StartTrip(Elevator& elevator, int target) {
    travel.target = target;
    travel.tween = Tween();
    elevator.moving = 1;
}

// Inside the cabin: on to the next stop, back to the first after the last.
void Ride(Elevator& elevator, int stop) {
    const Lever* here = nullptr;
    for (const Lever& lever : elevator.levers) {
        if (lever.id == stop) here = &lever;
    }
    if (!here || !here->active || elevator.stops.empty()) return;
    StartTrip(elevator, (stop + 1) % int(elevator.stops.size()));
    for (Lever& lever : elevator.levers) lever.active = 1;
}

// At a lever: the cabin comes to the lever's stop.
void PullLever(Elevator& elevator, size_t index, int stop, bool wasMoving) {
    Lever& lever = elevator.levers[index];
    if (!wasMoving && lever.active && lever.id != stop && StopWithId(elevator, lever.id)) {
        StartTrip(elevator, lever.id);
        for (LeverSprite& sprite : decor.levers) RestartAnimation(sprite.clip);
    }
    elevator.levers[(index + 1) % elevator.levers.size()].active = 1;
}

SpritePtr DecorSprite(const sf::Texture* texture, sf::Vector2f position, sf::Vector2f origin) {
    auto sprite = std::make_unique<sf::Sprite>();
    if (texture) sprite->setTexture(*texture);
    sprite->setOrigin(origin);
    sprite->setScale(3, 3);
    sprite->setPosition(position);
    return sprite;
}

void CreateLever(const Lever& lever) {
    LeverSprite entry;
    entry.sprite = DecorSprite(decor.lever.get(), lever.position, {34, 40.89f});
    entry.sprite->setTextureRect({0, 0, 68, 47});
    sf::Vector2f outlineSize =
        decor.outline ? sf::Vector2f(decor.outline->getSize()) : sf::Vector2f();
    entry.outline = DecorSprite(decor.outline.get(), lever.position,
                                {outlineSize.x / 2, 0.87f * outlineSize.y});
    entry.clip.sprite = entry.sprite.get();
    entry.clip.sheetSize = SheetSize(entry.sprite.get());
    entry.clip.frameCount = kLeverFrames;
    entry.clip.frameRate = kLeverFps;
    entry.clip.frameRect = {0, 0, 68, 47};
    decor.levers.push_back(std::move(entry));
}

void AddGear(const sf::Texture* texture, sf::Vector2f position, int small) {
    sf::Vector2f size = texture ? sf::Vector2f(texture->getSize()) : sf::Vector2f();
    decor.gears.push_back({DecorSprite(texture, position, size / 2.0f), small});
}

void CreateSparks() {
    for (int i = 0; i < 4; i++) {
        Spark spark;
        const sf::Texture* texture = i < 2 ? decor.sparkDown.get() : decor.sparkUp.get();
        spark.sprite = DecorSprite(texture, {0, 0}, {7.5f, 14});
        spark.sprite->setTextureRect({0, 0, 15, 28});
        spark.sprite->setColor(sf::Color(255, 255, 255, 0));
        spark.clip.sprite = spark.sprite.get();
        spark.clip.sheetSize = SheetSize(spark.sprite.get());
        spark.clip.frameCount = 4;
        spark.clip.frameRate = 12;
        spark.clip.frameRect = {0, 0, 15, 28};
        spark.clip.loop = 1;
        decor.sparks.push_back(std::move(spark));
    }
}

const Elevator* MovingCabin() {
    for (const Elevator& elevator : CurrentRoom().elevators) {
        if (elevator.moving) return &elevator;
    }
    return nullptr;
}

// Sparks 0 and 1 (falling) when the cabin heads down, or sideways to the right.
bool SparksFall() {
    const Elevator* cabin = MovingCabin();
    const ElevatorStop* goal = cabin ? StopWithId(*cabin, travel.target) : nullptr;
    if (!goal) return false;
    sf::Vector2f at = cabin->sprite->getPosition();
    return goal->position.y > at.y || (goal->position.y == at.y && goal->position.x > at.x);
}

void StartZoomBlend(sf::Vector2f size) {
    Camera& camera = GameCamera();
    camera.targetRotation = 0;
    camera.targetSize = size;
    camera.blendTarget = CAMERA_FOLLOW;
    camera.mode = CAMERA_BLEND;
    camera.blendDuration = 5.0f;
    camera.sizeEasing = camera.rotationEasing = EASE_CUBIC_IN_OUT;
    camera.centerEasing = EASE_LINEAR;
}

}  // namespace

void BuildElevators(const TiledLayer& layer, const TiledTileset& tileset, const sf::Texture* tiles,
                    float scale, std::vector<Elevator>& elevators) {
    for (const TiledLayer& group : layer.layers) {
        elevators.push_back(BuildElevator(group, tileset, tiles, scale));
    }
}

std::string ElevatorStatePath(int roomNumber) {
    return "Assets/Saves/Elevator/ElevatorRoom-" + std::to_string(roomNumber) + ".txt";
}

void LoadElevatorStates() {
    std::string path = ElevatorStatePath(CurrentRoom().roomNumber);
    Log("Path : %s\n", path.c_str());
    std::FILE* file = std::fopen(path.c_str(), "r");
    if (!file) {
        WriteStates(path);
        return;
    }
    Log("Entered in file !\n");
    bool applied = ReadElevatorStates(file);
    std::fclose(file);
    if (applied) return;
    LogError("Elevator state file %s is damaged: the map's state replaces it\n", path.c_str());
    WriteStates(path);
}

bool ReadElevatorStates(std::FILE* file) {
    std::vector<ElevatorState> states;
    if (!ParseStates(file, states) || !StatesFit(states)) return false;
    ApplyStates(states);
    return true;
}

std::string ElevatorStatesText() {
    return StateText(CurrentRoom().elevators);
}

void SaveElevatorStates() {
    WriteStates(ElevatorStatePath(CurrentRoom().roomNumber));
}

int CurrentStopId(const Elevator& elevator) {
    if (!elevator.sprite) return -1;
    for (const ElevatorStop& stop : elevator.stops) {
        if (stop.position == elevator.sprite->getPosition()) return stop.id;
    }
    return -1;
}

float ElevatorTravelDuration(const Elevator& elevator) {
    if (elevator.stops.size() < 2) return 0;
    sf::Vector2f d = elevator.stops[1].position - elevator.stops[0].position;
    float distance = std::hypot(d.x, d.y);
    float seconds = std::floor(distance / 3 / 32) * 0.2f;
    // Long trips are shortened progressively.
    if (seconds > 20) seconds *= 1 - 0.5f * std::log(1 + seconds) / std::log(101.0f);
    return seconds;
}

float ElevatorTravelElapsed() {
    return MovingCabin() ? travel.tween.elapsed : 0;
}

void CreateElevatorDecorations() {
    DestroyElevatorDecorations();
    decor.lever = LoadTexture("Assets/Sprites/Objects/Elevator-Lever.png");
    decor.outline = LoadTexture("Assets/Sprites/Objects/Elevator-LeverOutline.png");
    decor.bigGear = LoadTexture("Assets/Sprites/Objects/Gear-Big.png");
    decor.smallGear = LoadTexture("Assets/Sprites/Objects/Gear-Small.png");
    decor.sparkDown = LoadTexture("Assets/Sprites/FX/SparkDownFX.png");
    decor.sparkUp = LoadTexture("Assets/Sprites/FX/SparkUpFX.png");
    CreateSparks();
    for (const Elevator& elevator : CurrentRoom().elevators) {
        for (const Lever& lever : elevator.levers) {
            AddGear(decor.bigGear.get(), lever.position, 0);
            AddGear(decor.smallGear.get(), lever.position - sf::Vector2f(100, 100), 1);
            CreateLever(lever);
        }
    }
    travel = Travel();
}

void DestroyElevatorDecorations() {
    decor = Decorations();
}

void UpdateElevators(float dt, sf::Vector2f& playerPosition, const sf::FloatRect& playerBody) {
    (void)playerBody;
    for (LeverSprite& lever : decor.levers) UpdateAnimation(lever.clip, dt);
    SpinGears();
    for (Elevator& elevator : CurrentRoom().elevators) {
        if (elevator.moving) MoveCabin(elevator, dt, playerPosition);
    }
}

void InteractWithElevators(const sf::FloatRect& hitbox) {
    for (Elevator& elevator : CurrentRoom().elevators) {
        int stop = CurrentStopId(elevator);
        bool wasMoving = elevator.moving != 0;
        if (!wasMoving && hitbox.intersects(elevator.callTrigger->getGlobalBounds())) {
            Ride(elevator, stop);
        }
        for (size_t i = 0; i < elevator.levers.size(); i++) {
            if (hitbox.intersects(elevator.levers[i].zone->getGlobalBounds())) {
                PullLever(elevator, i, stop, wasMoving || elevator.moving);
            }
        }
    }
}

void UpdateLeverHighlights(const sf::FloatRect& hitbox) {
    size_t index = 0;
    for (const Elevator& elevator : CurrentRoom().elevators) {
        for (const Lever& lever : elevator.levers) {
            if (index >= decor.levers.size()) return;
            decor.levers[index++].highlighted = !elevator.moving && lever.active &&
                                                hitbox.intersects(lever.zone->getGlobalBounds());
        }
    }
}

void RideZoom(float elapsed, float duration) {
    const Camera& camera = GameCamera();
    if (!camera.view || camera.mode == CAMERA_BLEND) return;
    sf::Vector2f wide(3840, 2160);
    // A trip shorter than the blends ends with the view still out: it comes back after.
    bool riding = elapsed > 0;
    if (!riding && camera.targetSize != wide) return;
    if (riding && elapsed > 0.2f * duration && elapsed < 0.6f * duration) {
        if (camera.targetSize != wide) StartZoomBlend(wide);
    } else if ((!riding || elapsed >= 0.6f * duration) && CurrentRoom().cameraContainer) {
        // Back to the container's fitted size, but never wider than the screen's own framing:
        // the shaft stands in a container as wide as the ride's view, which would stay out.
        const sf::Vector2f normal(1920, 1080);
        sf::Vector2f fitted = FitViewSize(CurrentRoom().cameraContainer->getSize());
        if (fitted.x > normal.x) fitted = normal;
        if (camera.targetSize != fitted) StartZoomBlend(fitted);
    }
}

void UpdateElevatorRideZoom(int roomNumber) {
    const std::vector<Elevator>& elevators = CurrentRoom().elevators;
    if (roomNumber != 12 || elevators.empty()) return;
    RideZoom(ElevatorTravelElapsed(), ElevatorTravelDuration(elevators.front()));
}

void DrawElevatorParts(sf::RenderTarget& target, int part) {
    if (part == ELEVATOR_LEVERS) {
        for (const LeverSprite& lever : decor.levers) {
            if (lever.highlighted && lever.clip.finished) target.draw(*lever.outline);
            target.draw(*lever.sprite);
        }
    } else if (part == ELEVATOR_SPARKS && decor.sparks.size() == 4) {
        size_t first = SparksFall() ? 0 : 2;
        target.draw(*decor.sparks[first].sprite);
        target.draw(*decor.sparks[first + 1].sprite);
    } else if (part == ELEVATOR_GEARS) {
        for (const Gear& gear : decor.gears) target.draw(*gear.sprite);
    }
}

void DrawElevatorCabins(sf::RenderTarget& target) {
    for (const Elevator& elevator : CurrentRoom().elevators) {
        if (elevator.sprite) target.draw(*elevator.sprite);
    }
}

void DrawElevatorDebug(sf::RenderTarget& target) {
    for (const Elevator& elevator : CurrentRoom().elevators) {
        target.draw(*elevator.callTrigger);
        for (const Lever& lever : elevator.levers) target.draw(*lever.zone);
    }
}

float ElevatorGearSpeed() {
    return travel.gearSpeed;
}

bool LeverHighlighted(size_t index) {
    return index < decor.levers.size() && decor.levers[index].highlighted;
}

bool LeverClipFinished(size_t index) {
    return index < decor.levers.size() && decor.levers[index].clip.finished;
}

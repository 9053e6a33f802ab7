#include "debug/console.h"

#include <array>
#include <cstdio>
#include <cstring>

#include "app/game.h"
#include "common/drawables.h"
#include "common/log.h"
#include "enemies/enemies.h"
#include "hud/explanation_panel.h"
#include "interactables/money.h"
#include "player/player.h"
#include "world/camera.h"
#include "world/room.h"
#include "world/room_draw.h"

namespace {

constexpr size_t kLineBytes = 256;
const char* const kHelp =
    "/debug   /god   /kill/player   /kill/enemy\n"
    "/add money N   /remove money N\n"
    "/camera/zoom   /camera/dezoom\n"
    "/give/dash   /give/run   /give/cloud";

struct Console {
    std::array<char, kLineBytes> text{};
    size_t length = 0;
    FontPtr font;
    TextPtr line, help;
    std::unique_ptr<sf::RectangleShape> box;
} console;

void ClearLine() {
    console.text.fill('\0');
    console.length = 0;
}

void ShowLine() {
    if (console.line) console.line->setString(console.text.data());
}

bool StartsWith(const std::string& line, const char* prefix, size_t count) {
    return line.compare(0, count, prefix, count) == 0 && line.size() >= count;
}

int ScanAmount(const std::string& line, const char* format) {
    int amount = 0;
    if (std::sscanf(line.c_str(), format, &amount) != 1) amount = 0;
    return amount;
}

void KillEveryEnemy() {
    for (int kind = 0; kind < ENEMY_KIND_COUNT; kind++) {
        for (int index = 0; index < EnemyCount(kind); index++) {
            DamageEnemy(index, kind, 999999, {0, 0});
        }
    }
}

void ToggleGodMode() {
    Player& player = GetPlayer();
    player.life = 100;
    player.godMode = player.godMode ? 0 : 1;
}

void AddMoney(int amount) {
    Money().money += amount;
    SetMoneyText(Money().moneyShown);
    ShowMoneyPopup(amount);
}

void RemoveMoney(int amount) {
    MoneyState& money = Money();
    money.money -= amount;
    money.moneyShown = std::max(0, money.moneyShown - amount);
    SetMoneyText(money.moneyShown);
    Log("Money removed : %d\n", amount);
}

// The view takes a size fitted to the screen's shape, and the camera keeps it as its own.
void SetCameraSize(sf::Vector2f size) {
    Camera& camera = GameCamera();
    sf::Vector2f fitted = FitViewSize(size);
    if (camera.mode == CAMERA_FOLLOW) camera.targetSize = fitted;
    if (camera.mode == CAMERA_FIXED) camera.fixedSize = fitted;
    if (camera.view) camera.view->setSize(fitted);
}

void ShowWholeRoom() {
    sf::Vector2f size;
    if (CurrentRoom().cameraContainer) {
        size = CurrentRoom().cameraContainer->getSize();
    } else {
        for (int axis = 0; axis < 2; axis++) Log("Camera container is not set !\n");
    }
    SetCameraSize(size);
}

}  // namespace

void CreateConsole() {
    DestroyConsole();
    console.font = LoadFont("Assets/Fonts/ButtonFont2.ttf");
    console.box = std::make_unique<sf::RectangleShape>(sf::Vector2f(576, 216));
    console.box->setOrigin(288, 108);
    console.box->setPosition(1593.6f, 918);
    console.box->setFillColor(sf::Color::Black);
    console.box->setOutlineThickness(1);
    console.box->setOutlineColor(sf::Color::White);
    // The line starts at the box's top left corner, however long it grows.
    CreateText(console.line, console.font.get(), "", {1315.2f, 815.4f}, 25, {0, 0},
               sf::Color::White);
    CreateText(console.help, console.font.get(), kHelp, {1315.2f, 900}, 17, {0, 0},
               sf::Color(150, 150, 150));
}

void DestroyConsole() {
    console = Console();
}

void ConsoleTextEntered(unsigned character, int& consoleOpen) {
    if (character == 13) {
        ClearLine();
        consoleOpen = 0;
        SetPlayerControllable(1);
    } else if (character == 8) {
        if (console.length > 0) console.text[--console.length] = '\0';
    } else if (character >= 32 && character <= 126 && console.length < kLineBytes - 1) {
        console.text[console.length++] = char(character);
    }
    ShowLine();
}

void ConsoleKeyPressed(int key, int& consoleOpen) {
    if (key == sf::Keyboard::Escape || key == sf::Keyboard::F1) {
        consoleOpen = 0;
        ClearLine();
        ShowLine();
    } else if (key == sf::Keyboard::Enter) {
        RunConsoleCommand(console.text.data());
    }
}

void RunConsoleCommand(const std::string& line) {
    if (line == "/debug") {
        DebugOverlay() = DebugOverlay() ? 0 : 1;
    } else if (line == "/kill/player") {
        SetPlayerState(PLAYER_DEAD);
    } else if (line == "/kill/enemy") {
        KillEveryEnemy();
    } else if (line == "/god" || line == "/godmod") {
        ToggleGodMode();
    } else if (StartsWith(line, "/add money", 10)) {
        AddMoney(ScanAmount(line, "/add money %d"));
    } else if (StartsWith(line, "/remove mo", 10)) {
        RemoveMoney(ScanAmount(line, "/remove money %d"));
    } else if (StartsWith(line, "/camera/de", 10)) {
        ShowWholeRoom();
    } else if (StartsWith(line, "/camera/zo", 10)) {
        SetCameraSize({1920, 1080});
    } else if (StartsWith(line, "/give/dash", 10)) {
        ShowAbilityExplanation(ABILITY_DASH);
    } else if (line == "/give/run") {
        ShowAbilityExplanation(ABILITY_RUN);
    } else if (StartsWith(line, "/give/clou", 10)) {
        ShowAbilityExplanation(ABILITY_CLOUD);
    }
}

std::string ConsoleLine() {
    return console.text.data();
}

void DrawConsole(sf::RenderTarget& target) {
    if (!console.box) return;
    target.draw(*console.box);
    if (console.help) target.draw(*console.help);
    if (!console.line) return;
    target.draw(*console.line);
    // A caret after the line shows where typing goes.
    sf::FloatRect bounds = console.line->getGlobalBounds();
    float x = console.length ? bounds.left + bounds.width + 4 : 1315.2f;
    sf::RectangleShape caret({12, 3});
    caret.setPosition(x, 815.4f + 28);
    target.draw(caret);
}

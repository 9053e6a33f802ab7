#include "app/input.h"

#include <array>
#include <deque>

namespace {

struct ScriptState {
    bool active = false;
    std::deque<sf::Event> events;
    std::array<bool, sf::Keyboard::KeyCount> keys{};
    std::array<bool, sf::Mouse::ButtonCount> mouseButtons{};
    sf::Vector2i mouse;
    bool joystickConnected = false;
    std::string joystickName;
    std::array<bool, sf::Joystick::ButtonCount> joystickButtons{};
    std::array<float, sf::Joystick::AxisCount> joystickAxes{};
};

ScriptState script;

}  // namespace

bool InputPollEvent(sf::Window& window, sf::Event& event) {
    if (!script.active) return window.pollEvent(event);
    sf::Event dropped;
    while (window.pollEvent(dropped)) {
    }
    if (script.events.empty()) return false;
    event = script.events.front();
    script.events.pop_front();
    return true;
}

bool InputKeyDown(int key) {
    if (key < 0 || key >= sf::Keyboard::KeyCount) return false;
    if (script.active) return script.keys[key];
    return sf::Keyboard::isKeyPressed(sf::Keyboard::Key(key));
}

bool InputMouseButtonDown(sf::Mouse::Button button) {
    if (script.active) return script.mouseButtons[button];
    return sf::Mouse::isButtonPressed(button);
}

sf::Vector2i InputMousePosition(const sf::Window& window) {
    if (script.active) return script.mouse;
    return sf::Mouse::getPosition(window);
}

void InputJoystickUpdate() {
    if (!script.active) sf::Joystick::update();
}

bool InputJoystickConnected(unsigned joystick) {
    if (script.active) return joystick == 0 && script.joystickConnected;
    return sf::Joystick::isConnected(joystick);
}

bool InputJoystickButtonDown(unsigned joystick, unsigned button) {
    if (script.active) {
        return joystick == 0 && button < script.joystickButtons.size() &&
               script.joystickButtons[button];
    }
    return sf::Joystick::isButtonPressed(joystick, button);
}

float InputJoystickAxis(unsigned joystick, sf::Joystick::Axis axis) {
    if (script.active) return joystick == 0 ? script.joystickAxes[axis] : 0.0f;
    return sf::Joystick::getAxisPosition(joystick, axis);
}

std::string InputJoystickName(unsigned joystick) {
    if (script.active) return joystick == 0 ? script.joystickName : "";
    return sf::Joystick::getIdentification(joystick).name.toAnsiString();
}

void InputStartScript() {
    script = ScriptState();
    script.active = true;
}

void InputStopScript() {
    script = ScriptState();
}

bool InputScripted() {
    return script.active;
}

void InputScriptEvent(const sf::Event& event) {
    script.events.push_back(event);
}

void InputScriptKey(int key, bool down) {
    if (key >= 0 && key < sf::Keyboard::KeyCount) script.keys[key] = down;
}

void InputScriptMouse(sf::Vector2i position) {
    script.mouse = position;
}

void InputScriptMouseButton(sf::Mouse::Button button, bool down) {
    script.mouseButtons[button] = down;
}

void InputScriptJoystick(bool connected, const std::string& name) {
    script.joystickConnected = connected;
    script.joystickName = name;
}

void InputScriptJoystickButton(unsigned button, bool down) {
    if (button < script.joystickButtons.size()) script.joystickButtons[button] = down;
}

void InputScriptJoystickAxis(sf::Joystick::Axis axis, float position) {
    script.joystickAxes[axis] = position;
}

void InputScriptPressKey(sf::Keyboard::Key key) {
    InputScriptKey(key, true);
    sf::Event event{};
    event.type = sf::Event::KeyPressed;
    event.key.code = key;
    InputScriptEvent(event);
}

void InputScriptReleaseKey(sf::Keyboard::Key key) {
    InputScriptKey(key, false);
    sf::Event event{};
    event.type = sf::Event::KeyReleased;
    event.key.code = key;
    InputScriptEvent(event);
}

void InputScriptMoveMouse(sf::Vector2i position) {
    InputScriptMouse(position);
    sf::Event event{};
    event.type = sf::Event::MouseMoved;
    event.mouseMove.x = position.x;
    event.mouseMove.y = position.y;
    InputScriptEvent(event);
}

void InputScriptClick(sf::Mouse::Button button, sf::Vector2i position) {
    InputScriptMoveMouse(position);
    sf::Event event{};
    event.type = sf::Event::MouseButtonPressed;
    event.mouseButton.button = button;
    event.mouseButton.x = position.x;
    event.mouseButton.y = position.y;
    InputScriptEvent(event);
}

void InputScriptPressButton(unsigned button) {
    sf::Event event{};
    event.type = sf::Event::JoystickButtonPressed;
    event.joystickButton.joystickId = 0;
    event.joystickButton.button = button;
    InputScriptEvent(event);
}

void InputScriptMoveAxis(sf::Joystick::Axis axis, float position) {
    InputScriptJoystickAxis(axis, position);
    sf::Event event{};
    event.type = sf::Event::JoystickMoved;
    event.joystickMove.joystickId = 0;
    event.joystickMove.axis = axis;
    event.joystickMove.position = position;
    InputScriptEvent(event);
}

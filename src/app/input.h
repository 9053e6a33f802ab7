// The one door through which the game reads its devices: window events and the direct polls of
// keyboard, mouse and gamepad. A script can take the devices' place, so tests and demos drive the
// game frame by frame with exactly the input a player would give.
#pragma once

#include <SFML/Window.hpp>
#include <string>

bool InputPollEvent(sf::Window& window, sf::Event& event);
bool InputKeyDown(int key);
bool InputMouseButtonDown(sf::Mouse::Button button);
sf::Vector2i InputMousePosition(const sf::Window& window);
void InputJoystickUpdate();
bool InputJoystickConnected(unsigned joystick);
bool InputJoystickButtonDown(unsigned joystick, unsigned button);
float InputJoystickAxis(unsigned joystick, sf::Joystick::Axis axis);
std::string InputJoystickName(unsigned joystick);

// Scripted input. While a script runs, the real devices are ignored and the window's own events
// are drained and dropped; every poll answers from the script's state.
void InputStartScript();
void InputStopScript();
bool InputScripted();
void InputScriptEvent(const sf::Event& event);
void InputScriptKey(int key, bool down);
void InputScriptMouse(sf::Vector2i position);
void InputScriptMouseButton(sf::Mouse::Button button, bool down);
void InputScriptJoystick(bool connected, const std::string& name);
void InputScriptJoystickButton(unsigned button, bool down);
void InputScriptJoystickAxis(sf::Joystick::Axis axis, float position);

// Conveniences that set the state and queue the matching event, as a device would.
void InputScriptPressKey(sf::Keyboard::Key key);
void InputScriptReleaseKey(sf::Keyboard::Key key);
void InputScriptMoveMouse(sf::Vector2i position);
void InputScriptClick(sf::Mouse::Button button, sf::Vector2i position);
void InputScriptPressButton(unsigned button);
void InputScriptMoveAxis(sf::Joystick::Axis axis, float position);

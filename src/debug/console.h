// The debug console: F1 during play opens a one-line prompt over the frozen world for test
// commands (debug drawing, killing the hero or every enemy, god mode, money, the camera's zoom,
// the abilities). Enter runs the line and closes the prompt; Escape or F1 closes it unrun.
//
// Laid out on a 1920 x 1080 screen (a box at the bottom right) and drawn onto the window through
// a screen view, after everything else.
#pragma once

#include <SFML/Graphics.hpp>
#include <string>

// Game load: an empty line and the box, its font and texts.
void CreateConsole();
// Game cleanup; safe to call twice.
void DestroyConsole();

// A character typed while the console is open: carriage return closes it (and gives the hero
// control back), backspace erases, printable ASCII is appended while the line holds under 255.
void ConsoleTextEntered(unsigned character, int& consoleOpen);
// Any key pressed while the console is open: Escape and F1 close it with the line emptied; Enter
// runs the line (the carriage return that follows closes the console).
void ConsoleKeyPressed(int key, int& consoleOpen);
// Runs one command line; anything that is not a command does nothing.
void RunConsoleCommand(const std::string& line);

// The line typed so far.
std::string ConsoleLine();
void DrawConsole(sf::RenderTarget& target);

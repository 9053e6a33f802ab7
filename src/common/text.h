// The game's strings are single-byte Windows-1252 text; SFML draws Unicode.
#pragma once

#include <SFML/System/String.hpp>
#include <string>

sf::String FromWindows1252(const std::string& bytes);

namespace sf {
class Text;
}

// Shows a number through a printf format in a small fixed buffer ("%d", "%d%%"). A failed format
// leaves the text unchanged; returns what snprintf returned.
int SetTextNumber(sf::Text& text, const char* format, int value);

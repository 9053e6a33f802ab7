#include "common/text.h"

namespace {

// Windows-1252 differs from Latin-1 only in 0x80..0x9F.
constexpr sf::Uint32 kHighControls[32] = {
    0x20AC, 0xFFFD, 0x201A, 0x0192, 0x201E, 0x2026, 0x2020, 0x2021, 0x02C6, 0x2030, 0x0160,
    0x2039, 0x0152, 0xFFFD, 0x017D, 0xFFFD, 0xFFFD, 0x2018, 0x2019, 0x201C, 0x201D, 0x2022,
    0x2013, 0x2014, 0x02DC, 0x2122, 0x0161, 0x203A, 0x0153, 0xFFFD, 0x017E, 0x0178};

}  // namespace

sf::String FromWindows1252(const std::string& bytes) {
    std::basic_string<sf::Uint32> wide;
    wide.reserve(bytes.size());
    for (unsigned char c : bytes) {
        wide.push_back(c >= 0x80 && c < 0xA0 ? kHighControls[c - 0x80] : sf::Uint32(c));
    }
    return sf::String(wide);
}

#include <SFML/Graphics/Text.hpp>
#include <cstdio>

int SetTextNumber(sf::Text& text, const char* format, int value) {
    char buffer[32];
    int written = std::snprintf(buffer, sizeof buffer, format, value);
    if (written >= 0) text.setString(buffer);
    return written;
}

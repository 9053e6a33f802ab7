// Pictures made by a test inside its sandbox, for art the game may not have yet.
#pragma once

#include <gtest/gtest.h>

#include <SFML/Graphics/Image.hpp>
#include <filesystem>
#include <functional>
#include <string>
#include <vector>

// Writes a picture over whatever the sandbox holds at that path: a link to the game's own file
// is removed first, never written through.
inline void WritePicture(const std::string& path, const sf::Image& image) {
    std::filesystem::create_directories(std::filesystem::path(path).parent_path());
    std::filesystem::remove(path);
    ASSERT_TRUE(image.saveToFile(path));
}

inline sf::Image MakePicture(sf::Vector2u size,
                             const std::function<sf::Color(unsigned, unsigned)>& color) {
    std::vector<sf::Uint8> pixels(size_t(size.x) * size.y * 4);
    for (unsigned y = 0; y < size.y; y++) {
        for (unsigned x = 0; x < size.x; x++) {
            sf::Color c = color(x, y);
            sf::Uint8* p = &pixels[4 * (size_t(y) * size.x + x)];
            p[0] = c.r, p[1] = c.g, p[2] = c.b, p[3] = c.a;
        }
    }
    sf::Image image;
    image.create(size.x, size.y, pixels.data());
    return image;
}

inline void WritePicture(const std::string& path, sf::Vector2u size,
                         const std::function<sf::Color(unsigned, unsigned)>& color) {
    WritePicture(path, MakePicture(size, color));
}

inline std::function<sf::Color(unsigned, unsigned)> Plain(sf::Color color) {
    return [color](unsigned, unsigned) { return color; };
}

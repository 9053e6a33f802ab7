// Shortcuts of the room's drawing that must never change the picture, checked on real rooms
// everywhere the camera goes: backdrops left out where opaque tiles or nearer backdrops cover
// them, and each tile layer drawn as one picture of its still tiles with its animated tiles over
// it.
#include <gtest/gtest.h>

#include <algorithm>
#include <functional>
#include <memory>
#include <vector>

#include "support/game_fixture.h"
#include "world/room_draw.h"

namespace {

class RoomDrawing : public GameRoomTest {
protected:
    // The room's layers as the game draws them, seen through a 1920 x 1080 view at `center`,
    // on a canvas of one texel per three world pixels.
    sf::Image Drawn(sf::Vector2f center) {
        sf::View view(center, {1920, 1080});
        UpdateBackgrounds(view);
        sf::RenderTexture canvas;
        EXPECT_TRUE(canvas.create(640, 360));
        canvas.setView(view);
        canvas.clear(sf::Color::Magenta);
        DrawRoomBackgrounds(canvas);
        DrawRoomMiddleLayers(canvas);
        DrawRoomForeground(canvas);
        canvas.display();
        return canvas.getTexture().copyToImage();
    }

    // Counts the texels (every other one) that differ between two drawings of the room at each
    // of `centers`, `change` being made before the second and undone after it. With `walking`
    // the view goes from one centre to the next as the camera would, and the backdrops slide
    // by their parallax; otherwise they stay where they are.
    int Differences(const std::vector<sf::Vector2f>& centers, bool walking,
                    const std::function<void()>& change, const std::function<void()>& undo) {
        int differing = 0;
        for (sf::Vector2f center : centers) {
            if (!walking) LastViewCenter() = center;
            sf::Image shortcut = Drawn(center);
            change();
            sf::Image plain = Drawn(center);
            undo();
            for (unsigned y = 0; y < 360; y += 2) {
                for (unsigned x = 0; x < 640; x += 2) {
                    differing += shortcut.getPixel(x, y) != plain.getPixel(x, y);
                }
            }
        }
        return differing;
    }

    // Six places spread over the room.
    int Differences(const std::function<void()>& change, const std::function<void()>& undo) {
        sf::FloatRect bounds = CurrentRoom().cameraContainer->getGlobalBounds();
        std::vector<sf::Vector2f> centers;
        for (float fx : {0.2f, 0.5f, 0.8f}) {
            for (float fy : {0.25f, 0.75f}) {
                centers.push_back(
                    {bounds.left + fx * bounds.width, bounds.top + fy * bounds.height});
            }
        }
        return Differences(centers, false, change, undo);
    }
};

TEST_F(RoomDrawing, BackdropsBehindOpaqueTilesAreNeverMissed) {
    for (int number : {11, 12, 17, 23}) {
        SCOPED_TRACE("room " + std::to_string(number));
        Enter(number);
        Room& room = CurrentRoom();
        ASSERT_GT(room.coverColumns, 0) << "no opaque tile anywhere";
        int columns = room.coverColumns;
        // Without the cover every backdrop piece in view is drawn.
        EXPECT_EQ(Differences([&] { room.coverColumns = 0; }, [&] { room.coverColumns = columns; }),
                  0);
    }
}

// The far backdrops are left out where a nearer one's solid texels hide them. The layers slide
// apart as the camera walks, so the test walks it across the room, in steps no multiple of a
// piece, and through the shaft's tall backdrops.
TEST_F(RoomDrawing, BackdropsBehindNearerBackdropsAreNeverMissed) {
    for (int number : {2, 12, 16, 23}) {
        SCOPED_TRACE("room " + std::to_string(number));
        Enter(number);
        Room& room = CurrentRoom();
        int solid = 0;
        for (size_t i = 0; i + 1 < room.backgrounds.size(); i++) {
            solid +=
                room.backgrounds[i].solid.sums.empty() ? 0 : room.backgrounds[i].solid.sums.back();
        }
        ASSERT_GT(solid, 0) << "no nearer backdrop hides anything";
        sf::FloatRect bounds = room.cameraContainer->getGlobalBounds();
        std::vector<sf::Vector2f> centers;
        LastViewCenter() = {bounds.left + 960, bounds.top + 540};
        for (float f = 0; f <= 1; f += 0.125f) {
            centers.push_back({bounds.left + 960 + f * std::max(0.0f, bounds.width - 1920) + 7 * f,
                               bounds.top + 540 + f * std::max(0.0f, bounds.height - 1080)});
        }
        std::vector<TexelTable> tables;
        auto forget = [&] {
            for (Background& b : room.backgrounds) tables.push_back(std::move(b.solid));
        };
        auto giveBack = [&] {
            for (size_t i = 0; i < room.backgrounds.size(); i++) {
                room.backgrounds[i].solid = std::move(tables[i]);
            }
            tables.clear();
        };
        EXPECT_EQ(Differences(centers, true, forget, giveBack), 0);
    }
}

TEST_F(RoomDrawing, LayersDrawnAsPicturesMatchTheirTiles) {
    for (int number : {2, 5, 12, 17}) {
        SCOPED_TRACE("room " + std::to_string(number));
        Enter(number);
        Room& room = CurrentRoom();
        std::vector<std::unique_ptr<sf::RenderTexture>> pictures;
        int animated = 0;
        for (RoomLayer& layer : room.layers) {
            animated += int(layer.animatedTiles.size());
            if (!layer.tiles.empty() && layer.name != "Elevator group") {
                EXPECT_TRUE(layer.still) << layer.name << " drawn tile by tile";
            }
        }
        // The water and torches keep moving: some rooms must show it.
        if (number == 2) {
            EXPECT_GT(animated, 0);
        }
        auto takePictures = [&] {
            for (RoomLayer& layer : room.layers) pictures.push_back(std::move(layer.still));
        };
        auto giveBack = [&] {
            for (size_t i = 0; i < room.layers.size(); i++) {
                room.layers[i].still = std::move(pictures[i]);
            }
            pictures.clear();
        };
        EXPECT_EQ(Differences(takePictures, giveBack), 0);
    }
}

}  // namespace

// Two shortcuts of the room's drawing that must never change the picture, checked on real rooms
// everywhere the camera goes: backdrops left out where opaque tiles cover them, and each tile
// layer drawn as one picture of its still tiles with its animated tiles over it.
#include <gtest/gtest.h>

#include <functional>
#include <memory>

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

    // Counts the texels (every other one) that differ between two drawings of the room at six
    // places spread over it, `change` being made before the second and undone after it.
    int Differences(const std::function<void()>& change, const std::function<void()>& undo) {
        sf::FloatRect bounds = CurrentRoom().cameraContainer->getGlobalBounds();
        int differing = 0;
        for (float fx : {0.2f, 0.5f, 0.8f}) {
            for (float fy : {0.25f, 0.75f}) {
                sf::Vector2f center(bounds.left + fx * bounds.width,
                                    bounds.top + fy * bounds.height);
                LastViewCenter() = center;
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
        }
        return differing;
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

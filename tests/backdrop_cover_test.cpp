// Backdrops are left out where opaque tiles cover them. That must never change the picture: the
// rooms drawn with and without the cover look the same everywhere the camera goes.
#include <gtest/gtest.h>

#include "support/game_fixture.h"
#include "world/room_draw.h"

namespace {

class BackdropCover : public GameRoomTest {
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
};

TEST_F(BackdropCover, LeavesEveryRoomLookingTheSame) {
    for (int number : {11, 12, 17, 23}) {
        SCOPED_TRACE("room " + std::to_string(number));
        Enter(number);
        Room& room = CurrentRoom();
        ASSERT_GT(room.coverColumns, 0) << "no opaque tile anywhere";
        sf::FloatRect bounds = room.cameraContainer->getGlobalBounds();
        int differing = 0, samples = 0;
        for (float fx : {0.2f, 0.5f, 0.8f}) {
            for (float fy : {0.25f, 0.75f}) {
                sf::Vector2f center(bounds.left + fx * bounds.width,
                                    bounds.top + fy * bounds.height);
                LastViewCenter() = center;
                sf::Image covered = Drawn(center);
                std::vector<std::uint8_t> cover = room.backdropCover;
                int columns = room.coverColumns;
                room.coverColumns = 0;  // every backdrop piece drawn
                sf::Image whole = Drawn(center);
                room.backdropCover = cover;
                room.coverColumns = columns;
                for (unsigned y = 0; y < 360; y += 2) {
                    for (unsigned x = 0; x < 640; x += 2) {
                        samples++;
                        differing += covered.getPixel(x, y) != whole.getPixel(x, y);
                    }
                }
            }
        }
        EXPECT_EQ(differing, 0) << "of " << samples << " texels";
    }
}

}  // namespace

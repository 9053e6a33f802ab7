// A game started from the title menu, moved into any authored room, and driven at a steady 60
// updates a second (without drawing) or frame by frame with scripted events.
#pragma once

#include <gtest/gtest.h>

#include <string>

#include "app/game.h"
#include "app/game_state.h"
#include "app/input.h"
#include "menus/settings_files.h"
#include "player/player.h"
#include "support/fixture.h"
#include "world/room.h"
#include "world/room_lifecycle.h"

class GameRoomTest : public AppTest {
protected:
    static constexpr float kStep = 1.0f / 60.0f;

    void SetUp() override {
        AppTest::SetUp();
        ClickAt(200, 594);  // PLAY: a new game in room 1
        ASSERT_EQ(GetGameState(), GAME_STATE_GAME);
    }

    void Enter(int room) {
        testing::internal::CaptureStdout();
        CleanupRoom();
        LoadNextTargetRoom(*app.window, room);
        testing::internal::GetCapturedStdout();
    }

    // Game updates without events or drawing.
    void Update(int frames) {
        for (int i = 0; i < frames; i++) UpdateGame(*app.window, kStep);
    }

    // The hero dropped just above a point and left to land on it.
    void StandAt(sf::Vector2f feet) {
        SetPlayerPosition(feet - sf::Vector2f(0, 4));
        Update(20);
        ASSERT_TRUE(PlayerStanding());
    }

    // A tap of a key, released before the frame reads it; returns what was printed.
    std::string Tap(int key) {
        testing::internal::CaptureStdout();
        InputScriptPressKey(sf::Keyboard::Key(key));
        InputScriptReleaseKey(sf::Keyboard::Key(key));
        Frames(1);
        return testing::internal::GetCapturedStdout();
    }
    std::string TapAction(int action) { return Tap(Settings().bindings[action]); }

    // Characters as the keyboard types them: one text event each, read in one frame.
    void Type(const std::string& text) {
        for (char c : text) {
            sf::Event event;
            event.type = sf::Event::TextEntered;
            event.text.unicode = sf::Uint32(static_cast<unsigned char>(c));
            InputScriptEvent(event);
        }
        Frames(1);
    }
};

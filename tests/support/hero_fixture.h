// A hand-built room (a long floor) with the hero standing on it, driven by scripted input.
#pragma once

#include "app/input.h"
#include "menus/settings_files.h"
#include "player/player.h"
#include "player/save.h"
#include "support/fixture.h"
#include "world/room.h"

inline constexpr float kDt = 1.0f / 60.0f;
inline constexpr float kFloor = 1000;

class HeroTest : public SandboxTest {
protected:
    void SetUp() override {
        SandboxTest::SetUp();
        ReadBindingSettings();
        LoadSave();
        CurrentRoom() = Room();
        AddSolid({-1000, kFloor, 8000, 96});
        CreatePlayer({500, kFloor});
        Step(5);  // lands from its creation in FALL
    }
    void TearDown() override {
        DestroyPlayer();
        CurrentRoom() = Room();
        SandboxTest::TearDown();
    }

    static void AddRect(sf::FloatRect rect, int kind) {
        auto shape = std::make_shared<sf::RectangleShape>(sf::Vector2f(rect.width, rect.height));
        shape->setPosition(rect.left, rect.top);
        CurrentRoom().collisions.push_back({shape, kind, 1});
    }
    static void AddSolid(sf::FloatRect rect) { AddRect(rect, COLLISION_SOLID); }
    static void AddOneWay(sf::FloatRect rect) { AddRect(rect, COLLISION_ONE_WAY); }

    static void Step(int frames) {
        for (int i = 0; i < frames; i++) UpdatePlayer(kDt);
    }
    static void Hold(int action, bool down) { InputScriptKey(Settings().bindings[action], down); }
    static void Press(int action) {
        Hold(action, true);
        HandlePlayerKeyPressed(Settings().bindings[action]);
    }
    static int State() { return GetPlayer().body.state; }
    static float Y() { return GetPlayerPosition().y; }
    // Highest point (smallest y) over the next frames.
    static float Peak(int frames) {
        float top = Y();
        for (int i = 0; i < frames; i++) {
            UpdatePlayer(kDt);
            top = std::min(top, Y());
        }
        return top;
    }
};

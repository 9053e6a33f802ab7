// The hero on the fixture's long floor with the game's enemy kinds loaded, one container over the
// floor, and no money: enemies are added by the test and driven frame by frame.
#pragma once

#include "enemies/enemies.h"
#include "interactables/money.h"
#include "support/hero_fixture.h"

class EnemyTest : public HeroTest {
protected:
    void SetUp() override {
        HeroTest::SetUp();
        LoadEnemyAssets();
        AddContainer({-1000, kFloor - 800, 8000, 800});
        Money().money = Money().moneyShown = 0;
    }
    void TearDown() override {
        DestroyEnemyAssets();
        DestroyMoney();
        Money().money = Money().moneyShown = 0;
        HeroTest::TearDown();
    }
    static void AddContainer(sf::FloatRect rect) {
        auto shape = std::make_shared<sf::RectangleShape>(sf::Vector2f(rect.width, rect.height));
        shape->setPosition(rect.left, rect.top);
        CurrentRoom().enemyContainers = {{shape, 1}};
    }
    // What the enemies aim at: the middle of the hero's body.
    static sf::Vector2f Target() {
        sf::FloatRect body = PlayerBodyBounds();
        return {body.left + body.width / 2, body.top + body.height / 2};
    }
    // The enemies' half of a frame, the hero standing still where the test put them.
    static void EnemiesOnly(int frames) {
        for (int i = 0; i < frames; i++) {
            UpdateEnemies(kDt, Target());
            EnemiesHitPlayer();
        }
    }
    // Whole frames: the hero, the enemies and both hit exchanges.
    static void Fight(int frames) {
        for (int i = 0; i < frames; i++) {
            UpdatePlayer(kDt);
            UpdateEnemies(kDt, State() == PLAYER_DEAD ? sf::Vector2f() : Target());
            EnemiesHitPlayer();
            PlayerHitsEnemies();
        }
    }
};

// Boss bars: stacking, the slide in and out, the fill and its trail; the console's hit; the
// point a boss room's arrival pans to.
#include "hud/boss_hud.h"

#include <gtest/gtest.h>

#include "enemies/enemies.h"
#include "enemies/trash.h"
#include "interactables/money.h"
#include "support/hero_fixture.h"

namespace {

class BossHudTest : public HeroTest {
protected:
    void SetUp() override {
        HeroTest::SetUp();
        LoadEnemyAssets();
        auto shape = std::make_shared<sf::RectangleShape>(sf::Vector2f(8000, 600));
        shape->setPosition(-1000, kFloor - 600);
        CurrentRoom().enemyContainers.push_back({shape, 1});
        LoadBossHud();
    }
    void TearDown() override {
        RemoveAllBossBars();
        DestroyEnemyAssets();
        DestroyBossHud();
        HeroTest::TearDown();
    }
    // Two Trash far from the hero (they stay put while the bars run).
    static void TwoBosses() {
        AddTrashEnemy({3000, kFloor}, 1, 0);
        AddTrashEnemy({3200, kFloor}, 1, 0);
        AddBossBars();
    }
    static void Run(float seconds) {
        for (float t = 0; t < seconds; t += kDt) UpdateBossHud(kDt);
    }
    static const BossBar& Bar(int i) { return BossBars()[size_t(i)]; }
    static int FillWidth(int i) { return Bar(i).bar->getTextureRect().width; }
    static int TrailWidth(int i) { return Bar(i).trail->getTextureRect().width; }
};

}  // namespace

TEST_F(BossHudTest, BarsStackUpwardAndSlideInAfterTheirDelay) {
    TwoBosses();
    ASSERT_EQ(BossBars().size(), 2u);
    float height = Bar(0).container->getGlobalBounds().height;
    ASSERT_GT(height, 0);
    EXPECT_NEAR(Bar(0).target.y - Bar(1).target.y, height * 0.7f, 0.01f);
    // Below the screen until the delay has passed, then in place two seconds later.
    float start = Bar(0).container->getPosition().y;
    EXPECT_GT(Bar(0).container->getGlobalBounds().top, 1080 - 1);
    Run(2.4f);
    EXPECT_EQ(Bar(0).container->getPosition().y, start);
    Run(2.2f);
    EXPECT_NEAR(Bar(0).container->getPosition().y, Bar(0).target.y, 0.01f);
    EXPECT_NEAR(Bar(1).container->getPosition().y, Bar(1).target.y, 0.01f);
    // The parts keep their place on the frame.
    EXPECT_EQ(Bar(1).bar->getPosition(), Bar(1).container->getPosition());
    EXPECT_EQ(std::string(Bar(0).name->getString()), "The Forgotten Warrior");
}

TEST_F(BossHudTest, AHitShortensTheFillAtOnceAndTheTrailFollowsAfterHalfASecond) {
    TwoBosses();
    Run(5);
    int full = FillWidth(0);
    ASSERT_GT(full, 10);
    *GetEnemyLife(0, ENEMY_TRASH) -= 3;  // half of six
    UpdateBossHud(kDt);
    EXPECT_EQ(FillWidth(0), full / 2);
    EXPECT_EQ(TrailWidth(0), full);
    Run(0.45f);
    EXPECT_EQ(TrailWidth(0), full);
    Run(0.1f);
    int moving = TrailWidth(0);
    EXPECT_LT(moving, full);
    UpdateBossHud(kDt);
    EXPECT_EQ(TrailWidth(0), moving - 1);  // one texel a frame
    Run(3);  // a texel a frame: 150 texels take two and a half seconds
    EXPECT_EQ(TrailWidth(0), FillWidth(0));
    EXPECT_EQ(FillWidth(1), full);  // the other boss is untouched
}

TEST_F(BossHudTest, BarsLeaveOnlyWhenEveryBarIsEmptyEvenIfKilledWhileSlidingIn) {
    TwoBosses();
    Run(1);  // still sliding in
    *GetEnemyLife(0, ENEMY_TRASH) = 0;
    Run(6);
    ASSERT_EQ(BossBars().size(), 2u);  // one boss still stands
    EXPECT_LE(Bar(0).shownLife, 0);
    EXPECT_NEAR(Bar(0).container->getPosition().y, Bar(0).target.y, 0.01f);
    *GetEnemyLife(1, ENEMY_TRASH) = -4;  // overkill floors at empty
    int frames = 0;
    while (Bar(1).shownLife > 0 && frames++ < 600) UpdateBossHud(kDt);
    ASSERT_EQ(BossBars().size(), 2u);  // the trail has just caught up
    Run(1);
    ASSERT_EQ(BossBars().size(), 2u);
    EXPECT_GT(Bar(1).container->getPosition().y, Bar(1).target.y);  // on its way down
    EXPECT_GT(Bar(0).container->getPosition().y, Bar(0).target.y);
    Run(1.1f);
    EXPECT_TRUE(BossBars().empty());
}

TEST_F(BossHudTest, OnlyLivingEnemiesWithALifeGetABarAndLeavingTheRoomDropsThem) {
    AddTrashEnemy({3000, kFloor}, 1, 0);
    AddTrashEnemy({3200, kFloor}, 1, 0);
    *GetEnemyLife(1, ENEMY_TRASH) = 0;
    UpdateEnemies(kDt, {3000, kFloor});  // the second one falls dead
    AddBossBars();
    EXPECT_EQ(BossBars().size(), 1u);
    RemoveAllBossBars();
    EXPECT_TRUE(BossBars().empty());
    EXPECT_STREQ(BossName(2), "The Lost Nomad");
    EXPECT_STREQ(BossName(8), "Enemy");
}

TEST_F(BossHudTest, TheConsolesHitTakesLifeAndBleedsButPaysNothing) {
    AddTrashEnemy({3000, kFloor}, 1, 0);
    int before = *GetEnemyLife(0, ENEMY_TRASH);
    int money = Money().money;
    DamageEnemy(0, ENEMY_TRASH, 999999, {0, 0});
    EXPECT_EQ(*GetEnemyLife(0, ENEMY_TRASH), before - 999999);
    UpdateEnemies(kDt, {3000, kFloor});
    EXPECT_TRUE(IsEnemyDead(0, ENEMY_TRASH));
    EXPECT_EQ(Money().money, money);
    DamageEnemy(5, ENEMY_TRASH, 1, {0, 0});  // no such enemy: nothing happens
    DamageEnemy(0, 42, 1, {0, 0});
}

TEST_F(BossHudTest, ABossRoomsArrivalPansToItsLastEnemy) {
    sf::Vector2f fallback(123, 456);
    EXPECT_EQ(BossFocusPoint(fallback), fallback);
    AddTrashEnemy({3000, kFloor}, 1, 0);
    AddTrashEnemy({3600, kFloor}, 1, 0);
    sf::Vector2f focus = BossFocusPoint(fallback);
    EXPECT_NEAR(focus.x, 3600, 1);
    EXPECT_LT(focus.y, kFloor);  // the middle of its body, above its feet
}

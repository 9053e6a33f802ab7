// Money: what each kind pays and in which coins, the counter's climb, the popup, the coins'
// flight, and the totals across games; a Trash felled in a real room pays the counter.
#include "interactables/money.h"

#include <gtest/gtest.h>

#include <cmath>

#include "app/game_state.h"
#include "app/input.h"
#include "enemies/enemies.h"
#include "menus/settings_files.h"
#include "player/player.h"
#include "support/fixture.h"
#include "support/pictures.h"
#include "world/room_lifecycle.h"

namespace {

constexpr float kDt = 1.0f / 60.0f;

class MoneyTest : public SandboxTest {
protected:
    void SetUp() override {
        SandboxTest::SetUp();
        WritePicture("Assets/Sprites/Objects/small piece.png", {6, 6}, Plain({200, 170, 40}));
        WritePicture("Assets/Sprites/Objects/big piece.png", {9, 9}, Plain({230, 200, 60}));
        Money().money = Money().moneyShown = 0;
        InitMoney();
        CreateMoneyCounter();
    }
    void TearDown() override {
        DestroyMoneyCounter();
        DestroyMoney();
        Money().money = Money().moneyShown = 0;
        SandboxTest::TearDown();
    }
    static std::string Amount() { return MoneyAmountText()->getString().toAnsiString(); }
    static std::string Popup() { return MoneyPopupText()->getString().toAnsiString(); }
};

struct PayoutCase {
    int kind;
    int money;
    int big;
    int small;
};

class PayoutTest : public MoneyTest, public testing::WithParamInterface<PayoutCase> {};

}  // namespace

TEST_P(PayoutTest, EachKindPaysItsValueInBigCoinsWhileMoreThanFiftyRemain) {
    const PayoutCase& c = GetParam();
    const sf::Vector2f fell(700, 900);
    PayEnemyMoney(c.kind, fell);
    EXPECT_EQ(Money().money, c.money);
    EXPECT_EQ(Popup(), "+ " + std::to_string(c.money));
    EXPECT_TRUE(MoneyPopupShowing());
    int big = 0, small = 0;
    for (const Coin& coin : Coins()) {
        (coin.coinType == COIN_BIG ? big : small)++;
        EXPECT_EQ(coin.sprite->getPosition(), fell);
        EXPECT_EQ(coin.sprite->getScale(), sf::Vector2f(3, 3));
        EXPECT_LE(std::fabs(coin.scatterTarget.x - fell.x), 200);
        EXPECT_LE(std::fabs(coin.scatterTarget.y - fell.y), 100);
    }
    EXPECT_EQ(big, c.big);
    EXPECT_EQ(small, c.small);
}

INSTANTIATE_TEST_SUITE_P(
    Kinds, PayoutTest,
    testing::Values(PayoutCase{ENEMY_FROG, 10, 0, 1}, PayoutCase{ENEMY_KING, 250, 4, 5},
                    PayoutCase{ENEMY_NOMAD, 60, 1, 1}, PayoutCase{ENEMY_TRASH, 30, 0, 3},
                    PayoutCase{ENEMY_SLIME, 20, 0, 2}, PayoutCase{ENEMY_PLANT, 0, 0, 0},
                    PayoutCase{ENEMY_FLYING_KNIGHT, 80, 1, 3}, PayoutCase{ENEMY_GODDESS, 0, 0, 0}));

TEST_F(MoneyTest, TheCounterClimbsEveryHundredthBySteps10Then1AndSnapsDown) {
    const int steps[][2] = {{1500, 100}, {1001, 100}, {1000, 10}, {101, 10}, {100, 1}};
    for (const auto& c : steps) {  // {gap, step}
        Money().moneyShown = 0;
        Money().money = c[0];
        UpdateMoney(0.01f, {});
        EXPECT_EQ(Money().moneyShown, c[1]) << "gap " << c[0];
    }
    for (auto [dt, updatesPerStep] : {std::pair{0.01f, 1}, {kDt, 1}, {0.004f, 3}}) {
        Money().money = Money().moneyShown = 0;
        AddKillReward(250);
        std::vector<int> shown;
        for (int step = 0; step < 120; step++) {
            for (int i = 0; i < updatesPerStep; i++) UpdateMoney(dt, {});
            shown.push_back(Money().moneyShown);
        }
        SCOPED_TRACE(dt);
        EXPECT_EQ(shown[0], 10);
        EXPECT_EQ(shown[14], 150);  // gap 100: from here on one at a time
        EXPECT_EQ(shown[15], 151);
        EXPECT_EQ(shown[113], 249);
        EXPECT_EQ(shown[119], 250);
        EXPECT_EQ(Amount(), "250");
    }
    Money().money = 120;  // spent
    UpdateMoney(kDt, {});
    EXPECT_EQ(Money().moneyShown, 120);
    EXPECT_EQ(Amount(), "120");
    EXPECT_FLOAT_EQ(MoneyAmountText()->getOrigin().x,
                    MoneyAmountText()->getLocalBounds().width / 2);
}

TEST_F(MoneyTest, TheGainShowsForTwoSeconds) {
    AddKillReward(250);
    EXPECT_EQ(Popup(), "+ 250");
    for (int i = 0; i < 118; i++) UpdateMoney(kDt, {});
    EXPECT_TRUE(MoneyPopupShowing());
    for (int i = 0; i < 3; i++) UpdateMoney(kDt, {});
    EXPECT_FALSE(MoneyPopupShowing());
}

TEST_F(MoneyTest, CoinsScatterThenFlyIntoTheMovingHeroAndVanish) {
    SpawnCoin({1000, 500}, COIN_BIG);
    SpawnCoin({1000, 500}, COIN_SMALL);
    ASSERT_EQ(Coins().size(), 2u);
    sf::Vector2f hero(400, 600);
    int frames = 0;
    for (; frames < 42; frames++) UpdateMoney(kDt, hero);
    for (const Coin& coin : Coins()) {
        EXPECT_NEAR(coin.sprite->getPosition().x, coin.scatterTarget.x, 0.5);
        EXPECT_NEAR(coin.sprite->getPosition().y, coin.scatterTarget.y, 0.5);
    }
    sf::Vector2f last;
    while (!Coins().empty() && frames < 200) {
        hero.x += 5;  // the hero runs; the coins follow
        UpdateMoney(kDt, hero);
        if (!Coins().empty()) last = Coins()[0].sprite->getPosition();
        frames++;
    }
    EXPECT_TRUE(Coins().empty());
    EXPECT_GE(frames, 84);  // two legs of 0.7 s
    EXPECT_LE(frames, 87);
    EXPECT_NEAR(last.x, hero.x - 5, 0.5);  // it had reached the hero where the hero was
    EXPECT_NEAR(last.y, hero.y, 0.5);
}

namespace {

class MoneyGameTest : public AppTest {
protected:
    void SetUp() override {
        AppTest::SetUp();
        Money().money = Money().moneyShown = 0;
        ClickAt(200, 594);  // PLAY
        ASSERT_EQ(GetGameState(), GAME_STATE_GAME);
    }
    void TearDown() override {
        AppTest::TearDown();
        Money().money = Money().moneyShown = 0;
    }
    static std::string Amount() { return MoneyAmountText()->getString().toAnsiString(); }
};

}  // namespace

TEST_F(MoneyGameTest, ASecondGameKeepsTheMoneyAndDropsTheCoins) {
    AddKillReward(120);
    SpawnCoin(GetPlayerPosition(), COIN_BIG);
    Frames(10);
    ASSERT_FALSE(Coins().empty());
    SwitchGameState(GAME_STATE_MENU, *app.window);
    EXPECT_TRUE(Coins().empty());
    ClickAt(200, 594);  // PLAY again
    ASSERT_EQ(GetGameState(), GAME_STATE_GAME);
    EXPECT_EQ(Money().money, 120);
    EXPECT_TRUE(Coins().empty());
    Frames(120);
    EXPECT_EQ(Money().moneyShown, 120);
    EXPECT_EQ(Amount(), "120");
}

TEST_F(MoneyGameTest, FellingATrashInTheArenaPaysThirtyAndTheCounterClimbsToIt) {
    CleanupRoom();
    LoadNextTargetRoom(*app.window, 6);
    ASSERT_GT(EnemyCount(ENEMY_TRASH), 0);
    GetPlayer().godMode = 1;
    sf::Vector2f trash = GetEnemyPosition(0, ENEMY_TRASH);
    SetPlayerPosition({trash.x - 150, trash.y});
    Frames(5);
    const int right = Settings().bindings[BINDING_RIGHT], left = Settings().bindings[BINDING_LEFT];
    int coinsAtKill = -1;
    for (int frame = 0; frame < 60 * 30 && !IsEnemyDead(0, ENEMY_TRASH); frame++) {
        sf::Vector2f enemy = GetEnemyPosition(0, ENEMY_TRASH), hero = GetPlayerPosition();
        bool far = std::fabs(enemy.x - hero.x) > 110;
        InputScriptKey(right, far && enemy.x > hero.x);
        InputScriptKey(left, far && enemy.x < hero.x);
        int state = GetPlayer().body.state;
        if (!far && (state == PLAYER_IDLE || state == PLAYER_WALK)) {
            SetPlayerFacing(enemy.x > hero.x);
            InputScriptClick(sf::Mouse::Left, {960, 540});
        }
        Frames(1);
        if (coinsAtKill < 0 && *GetEnemyLife(0, ENEMY_TRASH) < 1) coinsAtKill = int(Coins().size());
    }
    ASSERT_LT(*GetEnemyLife(0, ENEMY_TRASH), 1);
    EXPECT_EQ(Money().money, 30);
    EXPECT_EQ(coinsAtKill, 3);  // three small coins burst out of it
    Frames(120);
    EXPECT_EQ(Money().moneyShown, 30);
    EXPECT_EQ(Amount(), "30");
    EXPECT_TRUE(Coins().empty());  // all flew into the hero
}

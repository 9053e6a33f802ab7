// The Goddess: her figure-eight, the dice that choose her moves, her rage, what each move costs and
// which one a parry stops, the beam's band, the sparks' glides around a beam, the mirrored second
// lash, and her fall with the signal that the ending may begin.
#include "enemies/goddess.h"

#include <gtest/gtest.h>

#include <cmath>
#include <cstdlib>
#include <vector>

#include "app/input.h"
#include "hud/boss_hud.h"
#include "support/enemy_fixture.h"

namespace {

constexpr float kCalmSpeed = 0.6f, kRageSpeed = 1.0f;

class GoddessTest : public EnemyTest {
protected:
    // Her spawn: above the hero, a hundred pixels over the floor, as in her garden.
    static sf::Vector2f Spawn() { return {GetPlayerPosition().x, kFloor - 100}; }
    static GoddessStatus Status() { return GetGoddessStatus(0); }
    // A debug key held for one frame.
    static void Force(sf::Keyboard::Key key) {
        InputScriptKey(key, true);
        EnemiesOnly(1);
        InputScriptKey(key, false);
    }
    static void Hold(sf::Keyboard::Key key, bool down) { InputScriptKey(key, down); }
    static void ExpectAt(sf::Vector2f actual, sf::Vector2f expected) {
        EXPECT_NEAR(actual.x, expected.x, 0.01f);
        EXPECT_NEAR(actual.y, expected.y, 0.01f);
    }
    template <typename Done>
    static int RunUntil(Done done, int limit = 1200) {
        int frames = 0;
        while (!done() && frames < limit) {
            EnemiesOnly(1);
            frames++;
        }
        return frames;
    }
};

}  // namespace

TEST_F(GoddessTest, SheHoversAlongAFigureEightSixteenHundredWideAndFourHundredHigh) {
    sf::Vector2f c(100, 200);
    float left = 1e9f, right = -1e9f, top = 1e9f, bottom = -1e9f;
    for (int i = 0; i <= 1000; i++) {
        sf::Vector2f p = GoddessHoverPoint(c, 2 * 3.14159265f * float(i) / 1000);
        left = std::min(left, p.x), right = std::max(right, p.x);
        top = std::min(top, p.y), bottom = std::max(bottom, p.y);
    }
    EXPECT_NEAR(right - left, 1600, 1);
    EXPECT_NEAR(bottom - top, 400, 1);
    EXPECT_EQ(GoddessHoverPoint(c, 0), c);  // the path crosses itself at its centre

    std::srand(3);
    AddGoddessEnemy(Spawn(), 1);
    EnemiesOnly(1);
    float phase = Status().phase;
    ASSERT_NE(phase, 0);  // off in one direction or the other
    int idle = 0;
    for (; idle < 40 && Status().state == GODDESS_IDLE; idle++) {
        EnemiesOnly(1);
        GoddessStatus now = Status();
        EXPECT_NEAR(std::fabs(now.phase - phase), kCalmSpeed * kDt, 1e-4);
        EXPECT_EQ((now.phase > 0), (phase > 0));  // it keeps its way
        sf::Vector2f expected = GoddessHoverPoint(Spawn(), now.phase);
        EXPECT_NEAR(now.body.x, expected.x, 0.01f);
        EXPECT_NEAR(now.body.y, expected.y, 0.01f);
        phase = now.phase;
    }
    EXPECT_GE(idle, 20);
}

TEST_F(GoddessTest, TheDiceChooseHerMovesAsThePressureGrows) {
    struct Case {
        const char* what;
        int pressure;
        bool enraged, sparks, arrived;
        std::vector<int> rolls;
        int move;
        int pressureAfter;
    } cases[] = {
        {"calm, the dice above the pressure", 0, false, false, false, {5000}, GODDESS_IDLE, 1},
        {"calm, a move: the whip", 9, false, false, false, {3, 94, 54}, GODDESS_WHIP, 10},
        {"calm, a move: the lightning", 9, false, false, false, {3, 94, 55}, GODDESS_LIGHTNING, 10},
        {"calm, no sparks: make them", 9, false, false, false, {3, 95}, GODDESS_CREATE_SPARK, 10},
        {"a pressure past 300 always moves",
         300,
         false,
         false,
         false,
         {32767, 99},
         GODDESS_CREATE_SPARK,
         301},
        {"sparks gliding: whip", 0, false, true, false, {0, 55, 49}, GODDESS_WHIP, 1},
        {"sparks gliding: lightning", 0, false, true, false, {0, 55, 50}, GODDESS_LIGHTNING, 1},
        {"sparks gliding, first branch", 0, false, true, false, {0, 54, 55}, GODDESS_LIGHTNING, 1},
        {"sparks arrived: the beam", 0, false, true, true, {0, 55}, GODDESS_TRIGGER_SPARK, 1},
        {"sparks arrived, first branch", 0, false, true, true, {0, 54, 10}, GODDESS_WHIP, 1},
        {"enraged without sparks: make them",
         0,
         true,
         false,
         false,
         {32767},
         GODDESS_CREATE_SPARK,
         2},
        {"enraged dice are a quarter as wide",
         0,
         true,
         true,
         true,
         {25001, 60},
         GODDESS_TRIGGER_SPARK,
         2},
        {"the same dice calm", 0, false, true, true, {25001}, GODDESS_IDLE, 1},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.what);
        size_t used = 0;
        int pressure = c.pressure;
        int move = ChooseGoddessMove(pressure, c.enraged, c.sparks, c.arrived, [&] {
            return used < c.rolls.size() ? c.rolls[used++] : (used++, 0);
        });
        EXPECT_EQ(move, c.move);
        EXPECT_EQ(pressure, c.pressureAfter);
        EXPECT_EQ(used, c.rolls.size());
    }
}

TEST_F(GoddessTest, BelowHalfLifeSheIsEnragedDriftsFasterAndMakesHerSparksFirst) {
    AddGoddessEnemy(Spawn(), 1);
    std::srand(3);
    EnemiesOnly(2);
    ASSERT_EQ(Status().state, GODDESS_IDLE);
    *GetEnemyLife(0, ENEMY_GODDESS) = 30;
    EXPECT_FALSE(Status().enraged);
    *GetEnemyLife(0, ENEMY_GODDESS) = 29;
    EXPECT_TRUE(Status().enraged);
    float phase = Status().phase;
    EnemiesOnly(1);
    EXPECT_EQ(Status().state, GODDESS_CREATE_SPARK);
    EXPECT_NEAR(std::fabs(Status().phase - phase), kRageSpeed * kDt, 1e-4);
    RunUntil([] { return Status().sparksExist; });
    sf::Vector2f body = Status().body;
    EXPECT_EQ(Status().spark1, body + sf::Vector2f(-200, -300));
    EXPECT_EQ(Status().spark2, body + sf::Vector2f(200, -300));
}

TEST_F(GoddessTest, EachMoveCostsItsOwnAndOnlyTheWhipCanBeParried) {
    struct Case {
        sf::Keyboard::Key key;
        bool parry;
        int lifeAfter;
        bool parried;
    } cases[] = {
        {sf::Keyboard::Numpad1, false, 75, false}, {sf::Keyboard::Numpad1, true, 75, false},
        {sf::Keyboard::Numpad2, false, 70, false}, {sf::Keyboard::Numpad2, true, 100, true},
        {sf::Keyboard::Numpad8, false, 99, false}, {sf::Keyboard::Numpad8, true, 99, false}};
    Player& player = GetPlayer();
    for (const Case& c : cases) {
        SCOPED_TRACE(int(c.key) * 10 + c.parry);
        DestroyAllEnemies();
        player.life = 100;
        player.body.parrySucceeded = 0;
        SetPlayerState(PLAYER_IDLE);
        AddGoddessEnemy(Spawn(), 1);
        std::srand(1);
        Force(c.key);
        for (int f = 0; f < 600 && player.life == 100 && !player.body.parrySucceeded; f++) {
            if (c.parry && State() != PLAYER_PARRY) SetPlayerState(PLAYER_PARRY);
            EnemiesOnly(1);
        }
        EXPECT_EQ(player.life, c.lifeAfter);
        EXPECT_EQ(player.body.parrySucceeded != 0, c.parried);
    }
}

TEST_F(GoddessTest, TheBeamBurnsOnePerFrameInsideItsBandAndNothingOutside) {
    struct Case {
        float spawnY;
        int lost;
    } cases[] = {{kFloor - 100, 30}, {kFloor + 150, 30}, {kFloor - 170, 30}, {kFloor - 600, 0}};
    Player& player = GetPlayer();
    for (const Case& c : cases) {
        SCOPED_TRACE(c.spawnY);
        DestroyAllEnemies();
        AddGoddessEnemy({GetPlayerPosition().x + 900, c.spawnY}, 1);
        Force(sf::Keyboard::Numpad8);
        RunUntil([] { return Status().beamOn; });
        ASSERT_TRUE(Status().beamOn);
        player.life = 100;
        SetPlayerState(PLAYER_IDLE);
        EnemiesOnly(30);
        EXPECT_EQ(100 - player.life, c.lost);
    }
}

TEST_F(GoddessTest, TheSparksGlideApartOverFiveSecondsAndAgainAfterEveryBeam) {
    GetPlayer().godMode = 1;
    AddGoddessEnemy(Spawn(), 1);
    sf::Vector2f c = Spawn();
    Force(sf::Keyboard::Numpad7);
    RunUntil([] { return Status().sparksExist; });
    ASSERT_TRUE(Status().sparksExist);
    // Held, the lightning key keeps her starting her glide: she chooses nothing of her own.
    Hold(sf::Keyboard::Numpad1, true);
    int frames = RunUntil([] { return Status().sparksArrived; });
    // The spark's clip plays to its last frame (the eighth, at 12 a second), then the 5 s glide.
    EXPECT_NEAR(float(frames) * kDt, 7.0f / 12 + 5, 0.1f);
    ExpectAt(Status().spark1, c + sf::Vector2f(-1228.8f, -100));
    ExpectAt(Status().spark2, c + sf::Vector2f(1228.8f, -100));

    Hold(sf::Keyboard::Numpad1, false);
    Force(sf::Keyboard::Numpad8);
    RunUntil([] { return Status().beamOn; });
    Hold(sf::Keyboard::Numpad1, true);
    int beam = RunUntil([] { return !Status().beamOn; });
    EXPECT_NEAR(float(beam + 1) * kDt, 2.5f, 2 * kDt);
    EXPECT_TRUE(Status().sparksExist);
    EXPECT_FALSE(Status().sparksArrived);  // their glides start over from where they are
    ExpectAt(Status().spark1, c + sf::Vector2f(-1228.8f, -100));
    int again = RunUntil([] { return Status().sparksArrived; });
    EXPECT_NEAR(float(again) * kDt, 5, 0.05f);
    ExpectAt(Status().spark2, c + sf::Vector2f(1228.8f, -100));
    Hold(sf::Keyboard::Numpad1, false);
}

TEST_F(GoddessTest, ASecondLashIsMirroredAndLandsAgainThenSheGoesBackToHerHover) {
    // Dice that lash again (below 40) and that stop (60 or more), thrown as each lash ends (a
    // landed blow rolls dice of its own).
    auto seedFor = [](bool again) {
        unsigned seed = 1;
        for (std::srand(seed); (std::rand() % 100 < 40) != again && seed < 1000;)
            std::srand(++seed);
        return seed;
    };
    unsigned again = seedFor(true), stop = seedFor(false);
    Player& player = GetPlayer();
    AddGoddessEnemy(Spawn(), 1);
    Force(sf::Keyboard::Numpad2);
    std::vector<float> scales;
    bool framesAgree = true;
    for (int f = 0; f < 300 && Status().state == GODDESS_WHIP; f++) {
        int life = player.life;
        SetPlayerState(PLAYER_IDLE);
        if (Status().bodyFrame == 6) std::srand(Status().bodyScaleX > 0 ? again : stop);
        EnemiesOnly(1);
        if (Status().lashing) framesAgree &= Status().whipFrame == Status().bodyFrame;
        if (player.life != life) scales.push_back(Status().bodyScaleX);
    }
    ASSERT_EQ(scales.size(), 2u);
    EXPECT_EQ(scales[0], 3);
    EXPECT_EQ(scales[1], -3);
    EXPECT_EQ(player.life, 40);
    EXPECT_TRUE(framesAgree);
    EXPECT_EQ(Status().state, GODDESS_IDLE);
    EXPECT_TRUE(Status().relocating);
    EXPECT_EQ(Status().bodyScaleX, 3);
    EXPECT_EQ(Status().whipScaleX, 3);
    RunUntil([] { return !Status().relocating; }, 120);
    ExpectAt(Status().body, Spawn());
}

TEST_F(GoddessTest, AtLifeZeroSheStopsHerBarLeavesAndSheDissolvesBeforeTheEndingMayBegin) {
    LoadBossHud();
    AddGoddessEnemy(Spawn(), 1);
    AddBossBars();
    ASSERT_EQ(BossBars().size(), 1u);
    EXPECT_EQ(BossBars()[0].name->getString().toAnsiString(), "The Goddess");
    Force(sf::Keyboard::Numpad8);
    RunUntil([] { return Status().beamOn; });
    ASSERT_TRUE(IsEnemyStriking(0, ENEMY_GODDESS));

    DamageEnemy(0, ENEMY_GODDESS, 60, GetPlayerPosition());
    EnemiesOnly(1);
    EXPECT_TRUE(IsEnemyDead(0, ENEMY_GODDESS));
    EXPECT_FALSE(Status().beamOn);
    EXPECT_FALSE(IsEnemyStriking(0, ENEMY_GODDESS));
    EXPECT_FALSE(GoddessDefeated());
    InputScriptKey(sf::Keyboard::Numpad2, true);  // her debug keys do nothing any more
    int frames = 0;
    for (; frames < 600 && !GoddessDefeated(); frames++) {
        EnemiesOnly(1);
        UpdateBossHud(kDt);
        EXPECT_EQ(Status().state, GODDESS_DEAD);
    }
    InputScriptKey(sf::Keyboard::Numpad2, false);
    EXPECT_TRUE(GoddessDefeated());
    EXPECT_NEAR(float(frames) * kDt, 3, 0.1f);
    EXPECT_EQ(Status().fade, 0);
    for (int f = 0; f < 600 && !BossBars().empty(); f++) UpdateBossHud(kDt);
    EXPECT_TRUE(BossBars().empty());
    RemoveAllBossBars();
    DestroyBossHud();

    DestroyAllEnemies();  // a room left behind takes the signal with it
    EXPECT_FALSE(GoddessDefeated());
}

// The King: his combos under chosen rolls, the first approach, the leap from range, the swing's
// wind-up, where the leap comes down, which blows a parry stops, his music, and the dash against
// walls and the arena's edge.
#include "enemies/king.h"

#include <gtest/gtest.h>

#include <cmath>
#include <cstdlib>
#include <functional>
#include <string>
#include <vector>

#include "app/region_music.h"
#include "hud/boss_hud.h"
#include "player/player_combat.h"
#include "support/enemy_fixture.h"

namespace {

// One roll of the dice: rand() % modulus must fall in [low, high).
struct Roll {
    int modulus;
    int low;
    int high;
};
constexpr Roll kAnyRate = {3, 0, 3};
constexpr Roll kAny = {100, 0, 100};

// A seed whose first draws fall as the rolls say, planted so that the next draws are those.
void Plant(const std::vector<Roll>& rolls) {
    for (unsigned seed = 1; seed < 1000000; seed++) {
        std::srand(seed);
        bool fits = true;
        for (const Roll& roll : rolls) {
            int value = std::rand() % roll.modulus;
            if (value < roll.low || value >= roll.high) fits = false;
        }
        if (fits) {
            std::srand(seed);
            return;
        }
    }
    FAIL() << "no seed gives these rolls";
}

class KingTest : public EnemyTest {
protected:
    void SetUp() override {
        EnemyTest::SetUp();
        GetPlayer().godMode = 1;
    }
    static float KingX() { return GetEnemyPosition(0, ENEMY_KING).x; }
    static float HurtboxWidth() { return GetEnemyHurtbox(0, ENEMY_KING).width; }
    // Frames until `done` holds (at most `limit`); the number of frames taken.
    static int Until(const std::function<bool()>& done, int limit = 60 * 20) {
        int frames = 0;
        while (frames < limit && !done()) {
            EnemiesOnly(1);
            frames++;
        }
        return frames;
    }
    static bool In(int state) { return KingState(0) == state; }
    // A King 400 px right of the hero; he walks up and starts his first swing.
    static void FirstSwing() {
        AddKingEnemy({GetPlayerPosition().x + 400, kFloor}, 1);
        Until([] { return In(KING_ATTACK); });
        ASSERT_TRUE(In(KING_ATTACK));
    }
    // Plays the move under way out, the hooks around every frame, until the next has begun (the
    // same move again restarts its clip from the first frame).
    static void PlayOut(const std::function<void()>& eachFrame = {},
                        const std::function<void()>& afterFrame = {}) {
        int state = KingState(0), combo = KingComboCount(0);
        EnemiesOnly(1);  // the move's own first frame is shown
        for (int frame = Frame(), f = 0; f < 60 * 10; f++) {
            if (eachFrame) eachFrame();
            EnemiesOnly(1);
            if (afterFrame) afterFrame();
            int now = Frame();
            if (KingState(0) != state || KingComboCount(0) != combo || now < frame) return;
            frame = now;
        }
    }
    // Frames until the King's blow would land, were the hero in its way.
    static int FramesToStrike() {
        for (int f = 1; f < 600; f++) {
            UpdateEnemies(kDt, Target());
            if (Striking()) return f;
        }
        return -1;
    }
    static int Frame() { return GetEnemySprite(0, ENEMY_KING)->getTextureRect().left; }
    static bool Striking() { return IsEnemyStriking(0, ENEMY_KING); }
};

struct Link {
    int state;
    int combo;
};

}  // namespace

TEST_F(KingTest, CombosChainAsTheRollsSayAndEndInARest) {
    struct Case {
        const char* name;
        std::vector<Roll> rolls;  // drawn from the end of the first swing on
        std::vector<Link> chain;  // the moves that follow it, the rest last
    } cases[] = {
        {"a lone swing rests", {{100, 70, 100}}, {{KING_IDLE, 0}}},
        {"swing, swing, rest",
         {{100, 0, 70}, {100, 0, 50}, kAnyRate, kAny},
         {{KING_ATTACK, 2}, {KING_IDLE, 0}}},
        {"swing, dash, dash, rest",
         {{100, 0, 70}, {100, 50, 100}, {100, 0, 55}, {100, 0, 40}, {100, 0, 50}, kAny},
         {{KING_DASH_ATTACK, 1}, {KING_DASH_ATTACK, 2}, {KING_IDLE, 0}}},
        {"swing, dash, leap, rest",
         {{100, 0, 70}, {100, 50, 100}, {100, 0, 55}, {100, 0, 40}, {100, 50, 100}, kAny},
         {{KING_DASH_ATTACK, 1}, {KING_JUMP_ATTACK, 2}, {KING_IDLE, 0}}},
        {"a dash one into a combo rests on 40 or more",
         {{100, 0, 70}, {100, 50, 100}, {100, 0, 55}, {100, 40, 100}},
         {{KING_DASH_ATTACK, 1}, {KING_IDLE, 0}}},
        {"swing, leap, rest",
         {{100, 0, 70}, {100, 50, 100}, {100, 55, 100}, kAny},
         {{KING_JUMP_ATTACK, 1}, {KING_IDLE, 0}}},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        DestroyAllEnemies();
        FirstSwing();
        Plant(c.rolls);
        for (const Link& link : c.chain) {
            PlayOut();
            EXPECT_EQ(KingState(0), link.state);
            EXPECT_EQ(KingComboCount(0), link.combo);
        }
    }
}

TEST_F(KingTest, ALeapOpeningACombo) {
    // After a rest the engaged King opens with a leap from beside the hero (an even roll); the
    // leap leaves the combo count alone whatever follows it.
    struct Case {
        const char* name;
        std::vector<Roll> after;
        Link next;
    } cases[] = {
        {"a swing", {{100, 0, 50}, {100, 0, 60}, kAnyRate}, {KING_ATTACK, 0}},
        {"another leap", {{100, 0, 50}, {100, 60, 100}, {100, 0, 60}}, {KING_JUMP_ATTACK, 0}},
        {"a dash", {{100, 0, 50}, {100, 60, 100}, {100, 60, 100}}, {KING_DASH_ATTACK, 0}},
        {"a rest", {{100, 50, 100}}, {KING_IDLE, 0}},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        DestroyAllEnemies();
        FirstSwing();
        // The swing rests; the next walk rolls 40 or more and, the hero at his feet, an even
        // draw makes it a leap.
        std::vector<Roll> all = {{100, 70, 100}, {100, 40, 100}, {2, 0, 1}};
        all.insert(all.end(), c.after.begin(), c.after.end());
        Plant(all);
        Until([] { return In(KING_IDLE); });
        SetPlayerPosition({KingX(), kFloor});
        Until([] { return In(KING_JUMP_ATTACK); });
        ASSERT_TRUE(In(KING_JUMP_ATTACK));
        EXPECT_EQ(KingComboCount(0), 0);
        PlayOut();
        EXPECT_EQ(KingState(0), c.next.state);
        EXPECT_EQ(KingComboCount(0), c.next.combo);
    }
}

TEST_F(KingTest, TheFirstApproachEndsInASwingFromCloseRangeWhateverTheRoll) {
    for (unsigned seed = 1; seed <= 6; seed++) {
        SCOPED_TRACE(seed);
        DestroyAllEnemies();
        std::srand(seed);
        AddKingEnemy({GetPlayerPosition().x + 1500, kFloor}, 1);
        int waited = Until([] { return !In(KING_IDLE); });
        EXPECT_GE(waited, 239) << "he moved before his first four seconds were up";
        EXPECT_EQ(KingState(0), KING_WALK);
        Until([] { return !In(KING_WALK); });
        EXPECT_EQ(KingState(0), KING_ATTACK);
        EXPECT_LT(std::fabs(Target().x - KingX()), 2 * HurtboxWidth());
    }
}

TEST_F(KingTest, AnEngagedKingLeapsAtAFarTargetAndDashesAtANearerOne) {
    struct Case {
        float away;
        int move;
    } cases[] = {{3000, KING_JUMP_ATTACK},
                 {2600, KING_JUMP_ATTACK},
                 {1500, KING_DASH_ATTACK},
                 {400, KING_DASH_ATTACK}};
    for (const Case& c : cases) {
        for (unsigned odd = 0; odd < 2; odd++) {
            SCOPED_TRACE(c.away + odd);
            DestroyAllEnemies();
            SetPlayerPosition({500, kFloor});
            FirstSwing();
            // Rest, then an approach roll of 40 or more; the parity roll must not matter here.
            Plant({{100, 70, 100}, {100, 40, 100}, {2, int(odd), int(odd) + 1}});
            Until([] { return In(KING_IDLE); });
            SetPlayerPosition({KingX() - c.away, kFloor});
            Until([] { return !In(KING_IDLE) && !In(KING_WALK); });
            EXPECT_EQ(KingState(0), c.move);
        }
    }
}

TEST_F(KingTest, TheSwingLandsAfterItsDrawnWindUp) {
    int nominal = 0;
    const float stretch[] = {1.0f, 1.25f, 10.0f / 6.0f};
    for (int k = 0; k < 3; k++) {
        SCOPED_TRACE(k);
        DestroyAllEnemies();
        AddKingEnemy({GetPlayerPosition().x + 400, kFloor}, 1);
        Until([] { return In(KING_WALK); });
        Plant({{3, k, k + 1}});
        Until([] { return In(KING_ATTACK); });
        ASSERT_TRUE(In(KING_ATTACK));
        int windUp = FramesToStrike();
        if (k == 0) nominal = windUp;
        EXPECT_NEAR(float(windUp), nominal * stretch[k], 1.5f);
        // Every swing draws anew from the file's rate: a slowed one does not slow the next.
        EXPECT_EQ(KingAttackRate(0), 10u - unsigned(10 * (k * 0.2f)));
    }
    EXPECT_NEAR(nominal, 30, 1.5f);  // five frames at ten a second
}

TEST_F(KingTest, TheLeapComesDownWhereTheHeroStoodBeforeItAndNotWhereTheyWent) {
    FirstSwing();
    Plant({{100, 0, 70}, {100, 50, 100}, {100, 55, 100}, kAny});
    Until([] { return In(KING_JUMP_ATTACK); });
    ASSERT_TRUE(In(KING_JUMP_ATTACK));
    GetPlayer().godMode = 0;
    float groundY = GetEnemyPosition(0, ENEMY_KING).y;
    SetPlayerPosition({KingX() - 600, kFloor});
    sf::Vector2f aimed(Target().x, groundY - 150);
    // Off the ground, the hero runs far the other way; the King keeps to his aim.
    Until([&] { return GetEnemyPosition(0, ENEMY_KING).y < groundY - 1; });
    SetPlayerPosition({KingX() + 900, kFloor});
    float top = groundY;
    int life = GetPlayer().life;
    for (int f = 0; f < 120 && In(KING_JUMP_ATTACK); f++) {
        EnemiesOnly(1);
        top = std::min(top, GetEnemyPosition(0, ENEMY_KING).y);
    }
    EXPECT_NEAR(top, aimed.y, 1);
    EXPECT_NEAR(KingX(), aimed.x, 1);
    EXPECT_NEAR(GetEnemyPosition(0, ENEMY_KING).y, groundY, 1);
    EXPECT_EQ(GetPlayer().life, life) << "the landing reached a hero 900 px away";
}

TEST_F(KingTest, AParryStopsTheSwingAndTheDashButNotTheLeap) {
    struct Case {
        const char* name;
        std::vector<Roll> rolls;  // from the first swing's end to the move
        int move;
        bool parry;
        int cost;  // life lost to the move
    } cases[] = {
        {"swing", {}, KING_ATTACK, false, 25},
        {"swing parried", {}, KING_ATTACK, true, 0},
        {"dash", {{100, 0, 70}, {100, 50, 100}, {100, 0, 55}, kAny}, KING_DASH_ATTACK, false, 35},
        {"dash parried",
         {{100, 0, 70}, {100, 50, 100}, {100, 0, 55}, kAny},
         KING_DASH_ATTACK,
         true,
         0},
        {"leap", {{100, 0, 70}, {100, 50, 100}, {100, 55, 100}, kAny}, KING_JUMP_ATTACK, false, 40},
        {"leap parried",
         {{100, 0, 70}, {100, 50, 100}, {100, 55, 100}, kAny},
         KING_JUMP_ATTACK,
         true,
         40},
    };
    Player& player = GetPlayer();
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        DestroyAllEnemies();
        // Hurt, the hero turns to a random pose: a hit before the move would spend the rolls.
        player.godMode = 1;
        player.life = 100;
        SetPlayerState(PLAYER_IDLE);
        FirstSwing();
        if (c.move != KING_ATTACK) {
            Plant(c.rolls);
            Until([&] { return In(c.move); });
        }
        player.godMode = 0;
        ASSERT_TRUE(In(c.move));
        player.body.parrySucceeded = 0;
        int blows = 0, life = player.life, parries = 0;
        PlayOut(
            [&] {
                int wanted = c.parry ? PLAYER_PARRY : PLAYER_IDLE;
                if (State() != wanted) SetPlayerState(wanted);
                life = player.life;
                player.body.parrySucceeded = 0;
            },
            [&] {
                blows += life != player.life || player.body.parrySucceeded;
                parries += player.body.parrySucceeded;
            });
        EXPECT_EQ(blows, 1);
        EXPECT_EQ(100 - player.life, c.cost);
        EXPECT_EQ(parries, c.parry && c.cost == 0 ? 1 : 0);
    }
}

TEST_F(KingTest, HisMusicPlaysFromHisArrivalInPlaceOfTheCityLoopUntilHeFalls) {
    CurrentRoom().region = REGION_CITY;
    LoadRegionMusic();
    UpdateRegionMusic();
    ASSERT_TRUE(RegionMusicPlaying(REGION_CITY));
    AddKingEnemy({GetPlayerPosition().x + 1200, kFloor}, 1);
    AddKingEnemy({GetPlayerPosition().x + 1600, kFloor}, 1);
    EXPECT_EQ(KingMusicVoices(), 2);
    for (int f = 0; f < 30; f++) {
        EnemiesOnly(1);
        UpdateRegionMusic();
    }
    EXPECT_EQ(KingMusicVoices(), 2) << "a looping voice stopped";
    EXPECT_FALSE(RegionMusicPlaying(REGION_CITY));
    *GetEnemyLife(0, ENEMY_KING) = 0;
    EnemiesOnly(1);
    UpdateRegionMusic();
    EXPECT_EQ(KingMusicVoices(), 1);
    EXPECT_FALSE(RegionMusicPlaying(REGION_CITY)) << "the city loop plays over the living King";
    *GetEnemyLife(1, ENEMY_KING) = 0;
    EnemiesOnly(1);
    UpdateRegionMusic();
    EXPECT_EQ(KingMusicVoices(), 0);
    EXPECT_TRUE(RegionMusicPlaying(REGION_CITY));
    FreeRegionMusic();
}

TEST_F(KingTest, AKingFelledInMidLeapComesDownToHisSpawnHeightHarmless) {
    FirstSwing();
    Plant({{100, 0, 70}, {100, 50, 100}, {100, 55, 100}, kAny});
    Until([] { return GetEnemyPosition(0, ENEMY_KING).y < kFloor - 100; });
    ASSERT_TRUE(In(KING_JUMP_ATTACK));
    DamageEnemy(0, ENEMY_KING, 30, GetPlayerPosition());
    bool struck = false;
    for (int f = 0; f < 60; f++) {
        EnemiesOnly(1);
        struck |= Striking();
    }
    EXPECT_TRUE(IsEnemyDead(0, ENEMY_KING));
    EXPECT_FALSE(struck);
    EXPECT_FLOAT_EQ(GetEnemyPosition(0, ENEMY_KING).y, kFloor);
}

TEST_F(KingTest, InABossRoomHisBarNamesTheCitysGuardian) {
    LoadBossHud();
    AddKingEnemy({3000, kFloor}, 1);
    AddBossBars();
    ASSERT_EQ(BossBars().size(), 1u);
    EXPECT_EQ(std::string(BossBars()[0].name->getString()), "Anvileimh : The City's Guardian");
    EXPECT_EQ(BossBars()[0].maxLife, 30);
    RemoveAllBossBars();
    DestroyBossHud();
}

TEST_F(KingTest, TheDashStopsAtAWallOrTheArenaEdge) {
    struct Case {
        const char* name;
        bool wall;
        float stop;  // where the hurtbox's left edge ends up
    } cases[] = {{"a wall", true, 200}, {"the arena's edge", false, -100}};
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        DestroyAllEnemies();
        CurrentRoom().collisions.resize(1);  // the floor alone
        if (c.wall) AddSolid({-600, kFloor - 800, 800, 800});
        AddContainer({-100, kFloor - 800, 8000, 800});
        SetPlayerPosition({500, kFloor});
        FirstSwing();
        Plant({{100, 0, 70}, {100, 50, 100}, {100, 0, 55}, kAny});
        Until([] { return In(KING_DASH_ATTACK); });
        ASSERT_TRUE(In(KING_DASH_ATTACK));
        float start = KingX();
        Until([] { return !In(KING_DASH_ATTACK); });
        EXPECT_LT(KingX(), start - 150) << "he did not dash";
        EXPECT_NEAR(GetEnemyHurtbox(0, ENEMY_KING).left, c.stop, 1);
    }
}

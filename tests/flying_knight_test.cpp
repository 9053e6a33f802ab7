// The Flying Knight: its sword's two attacks and what they cost, the dice between them, the
// patrol all knights share, the dash out of a corner, its fall and purse, its boss bar.
#include "enemies/flying_knight.h"

#include <gtest/gtest.h>

#include <cmath>
#include <cstdlib>
#include <filesystem>
#include <string>

#include "enemies/enemy_body.h"
#include "hud/boss_hud.h"
#include "interactables/money.h"
#include "player/player_combat.h"
#include "support/enemy_fixture.h"
#include "world/room_draw.h"

namespace {

class FlyingKnightTest : public EnemyTest {
protected:
    static float KnightX(int index) { return GetEnemyPosition(index, ENEMY_FLYING_KNIGHT).x; }
    // A knight 600 px left of the hero, facing them: it notices them at once.
    static void KnightFacingTheHero() {
        AddFlyingKnightEnemy({GetPlayerPosition().x - 600, kFloor - 150}, 1);
    }
    // Seeds the dice so that the next attack is `kind`.
    static void SeedFor(int kind) {
        unsigned seed = 1;
        for (std::srand(seed); (std::rand() % 100 > 49 ? KNIGHT_PLUNGE : KNIGHT_SLASH) != kind;)
            std::srand(++seed);
        std::srand(seed);
    }
    static void WaitForTheAttack() {
        for (int f = 0; f < 400 && FlyingKnightState(0) != KNIGHT_ATTACK; f++) EnemiesOnly(1);
    }
};

}  // namespace

TEST_F(FlyingKnightTest, TheSlashCutsTwiceAndThePlungeOnceForFifteenAndAParryStopsBoth) {
    struct Case {
        int kind;
        bool parry;
        int lifeAfter;
    } cases[] = {{KNIGHT_SLASH, false, 70},
                 {KNIGHT_SLASH, true, 100},
                 {KNIGHT_PLUNGE, false, 85},
                 {KNIGHT_PLUNGE, true, 100}};
    Player& player = GetPlayer();
    for (const Case& c : cases) {
        SCOPED_TRACE(c.kind * 10 + c.parry);
        DestroyAllEnemies();
        player.life = 100;
        player.body.parrySucceeded = 0;
        SetPlayerState(PLAYER_IDLE);
        KnightFacingTheHero();
        SeedFor(c.kind);
        WaitForTheAttack();
        ASSERT_EQ(FlyingKnightState(0), KNIGHT_ATTACK);
        ASSERT_EQ(FlyingKnightAttackKind(0), c.kind);
        int blows = 0;
        for (int f = 0; f < 600 && FlyingKnightState(0) == KNIGHT_ATTACK; f++) {
            if (c.parry && State() != PLAYER_PARRY) SetPlayerState(PLAYER_PARRY);
            int life = player.life, parries = player.body.parrySucceeded;
            player.body.parrySucceeded = 0;
            EnemiesOnly(1);
            blows += life != player.life || player.body.parrySucceeded;
            player.body.parrySucceeded |= parries;
        }
        EXPECT_EQ(FlyingKnightState(0), KNIGHT_IDLE);  // the attack played out
        EXPECT_EQ(blows, c.kind == KNIGHT_SLASH ? 2 : 1);
        EXPECT_EQ(player.life, c.lifeAfter);
        EXPECT_EQ(player.body.parrySucceeded, c.parry ? 1 : 0);
    }
}

TEST_F(FlyingKnightTest, TheDiceChooseBetweenSlashAndPlungeAndTheKnightRestsBetweenAttacks) {
    GetPlayer().godMode = 1;
    int seen[2] = {0, 0};
    for (unsigned seed = 1; seed <= 8; seed++) {
        DestroyAllEnemies();
        KnightFacingTheHero();
        std::srand(seed);
        int expected = std::rand() % 100 > 49 ? KNIGHT_PLUNGE : KNIGHT_SLASH;
        std::srand(seed);
        int frames = 0;
        for (; frames < 400 && FlyingKnightState(0) != KNIGHT_ATTACK; frames++) EnemiesOnly(1);
        EXPECT_EQ(FlyingKnightAttackKind(0), expected) << "seed " << seed;
        EXPECT_GE(frames, 119) << "it attacked before its first rest was over";
        seen[expected]++;
        for (int f = 0; f < 600 && FlyingKnightState(0) == KNIGHT_ATTACK; f++) EnemiesOnly(1);
        int rest = 0;
        for (; rest < 400 && FlyingKnightState(0) != KNIGHT_ATTACK; rest++) EnemiesOnly(1);
        EXPECT_GE(rest, 119) << "no rest after an attack, seed " << seed;
    }
    EXPECT_GT(seen[KNIGHT_SLASH], 0);
    EXPECT_GT(seen[KNIGHT_PLUNGE], 0);
}

TEST_F(FlyingKnightTest, OneBlockedKnightTurnsThePatrolOfAll) {
    AddContainer({1500, kFloor - 800, 2000, 800});  // the hero stays outside: never noticed
    AddSolid({2900, kFloor - 800, 100, 800});
    AddFlyingKnightEnemy({2000, kFloor - 100}, 1);
    AddFlyingKnightEnemy({2600, kFloor - 100}, 1);
    ASSERT_GT(FlyingKnightPatrolSpeed(), 0);
    float far = KnightX(0);
    EnemiesOnly(30);
    EXPECT_GT(KnightX(0), far + 50);  // both float right
    float maxRight = 0;
    for (int f = 0; f < 240; f++) {
        EnemiesOnly(1);
        maxRight = std::max(maxRight, GetEnemyHurtbox(1, ENEMY_FLYING_KNIGHT).left +
                                          GetEnemyHurtbox(1, ENEMY_FLYING_KNIGHT).width);
    }
    EXPECT_LE(maxRight, 2901);  // the wall turned it
    EXPECT_LT(FlyingKnightPatrolSpeed(), 0);
    float before = KnightX(0);
    EnemiesOnly(30);
    EXPECT_LT(KnightX(0), before - 50);  // the one that never met the wall turned as well
    EXPECT_LT(GetEnemySprite(0, ENEMY_FLYING_KNIGHT)->getScale().x, 0);
    EXPECT_EQ(FlyingKnightState(0), KNIGHT_PATROL);
}

TEST_F(FlyingKnightTest, ACorneredKnightDashesFourHundredPixelsOverTheHero) {
    AddSolid({900, kFloor - 800, 100, 800});
    SetPlayerPosition({1300, kFloor});
    AddFlyingKnightEnemy({1060, kFloor - 100}, 1);
    EnemiesOnly(2);
    float start = KnightX(0);
    EnemiesOnly(40);
    EXPECT_NEAR(KnightX(0), start + 400, 30);
    EXPECT_GT(KnightX(0), GetPlayerPosition().x);  // past the hero
}

TEST_F(FlyingKnightTest, AFelledKnightPaysEightyAndItsSwordSettlesPointDownAboveIt) {
    AddContainer({540, kFloor - 800, 4000, 800});  // the hero outside it: the knight never flees
    SetPlayerFacing(true);
    sf::Vector2f home(600, kFloor);
    AddFlyingKnightEnemy(home, 1);
    *GetEnemyLife(0, ENEMY_FLYING_KNIGHT) = 1;
    InputScriptMouseButton(sf::Mouse::Left, true);
    PlayerAttackPressed();
    InputScriptMouseButton(sf::Mouse::Left, false);
    Fight(40);
    ASSERT_TRUE(IsEnemyDead(0, ENEMY_FLYING_KNIGHT));
    bool struck = false;
    for (int f = 0; f < 60 * 4; f++) {
        Fight(1);
        struck |= IsEnemyStriking(0, ENEMY_FLYING_KNIGHT) &&
                  GetEnemyAttackBox(0, ENEMY_FLYING_KNIGHT, 0).width > 0;
    }
    EXPECT_FALSE(struck);
    EXPECT_EQ(Money().money, 80);
    EXPECT_NEAR(GetEnemyPosition(0, ENEMY_FLYING_KNIGHT).y, home.y, 0.5);
    const sf::Sprite& sword = FlyingKnightSword(0);
    float swordHeight = sword.getGlobalBounds().height;
    EXPECT_NEAR(sword.getRotation(), 180, 0.5);
    EXPECT_NEAR(sword.getPosition().x, KnightX(0), 0.5);
    EXPECT_NEAR(sword.getPosition().y, home.y - swordHeight, 1);
}

TEST_F(FlyingKnightTest, InABossRoomItsBarReadsTheEmptyArmor) {
    LoadBossHud();
    AddFlyingKnightEnemy({3000, kFloor - 100}, 1);
    AddBossBars();
    ASSERT_EQ(BossBars().size(), 1u);
    EXPECT_EQ(std::string(BossBars()[0].name->getString()), "The Empty Armor");
    EXPECT_EQ(BossBars()[0].maxLife, 12);
    RemoveAllBossBars();
    DestroyBossHud();
}

TEST_F(FlyingKnightTest, WithoutItsArtTheKnightFloatsHarmlessly) {
    DestroyEnemyAssets();
    std::filesystem::remove("Assets/Sprites/Enemies/Flying Knight/FlyingKnightAnimData.txt");
    LoadEnemyAssets();
    KnightFacingTheHero();
    for (int f = 0; f < 600; f++) EnemiesOnly(1);
    EXPECT_EQ(GetPlayer().life, 100);
}

TEST_F(FlyingKnightTest, TheHitboxDisplayShowsTheKnightsHurtbox) {
    AddFlyingKnightEnemy({3000, kFloor - 100}, 1);
    sf::FloatRect body = GetEnemyHurtbox(0, ENEMY_FLYING_KNIGHT);
    sf::RenderTexture canvas;
    ASSERT_TRUE(canvas.create(100, 100));
    // A corner of the hurtbox that the armour leaves empty.
    canvas.setView(sf::View({body.left + 4, body.top + body.height - 4}, {100, 100}));
    auto centre = [&canvas] {
        canvas.clear(sf::Color::Black);
        DrawEnemies(canvas, true, false);
        canvas.display();
        return canvas.getTexture().copyToImage().getPixel(50, 50);
    };
    EXPECT_EQ(centre(), sf::Color::Black);
    DebugOverlay() = 1;
    sf::Color shown = centre();
    DebugOverlay() = 0;
    EXPECT_GT(shown.b, 60);
    EXPECT_LT(shown.r, 30);
}

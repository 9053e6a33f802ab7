// The Slime and its projectiles, and the Frog: shots and their aim, walls and the hero stopping
// projectiles, the Slime's shuffle, the Frog's leaps and its airborne bite, and what each pays.
#include <gtest/gtest.h>

#include <cmath>
#include <cstdlib>
#include <filesystem>

#include "app/input.h"
#include "enemies/enemies.h"
#include "enemies/frog.h"
#include "enemies/slime.h"
#include "interactables/money.h"
#include "player/player_combat.h"
#include "support/hero_fixture.h"
#include "support/pictures.h"
#include "world/room_draw.h"

namespace {

// Our own small sheets, so the numbers below do not hang on the game's art: a 32 x 24 slime
// whose mouth is 4 px in and 10 px down, spitting on the 4th of 6 frames at 12 fps.
const char* const kSlimeAnimData =
    "size : (32,24)\n"
    "first Frame Position : (0,0)\n"
    "projectile position : (4,10)\n\n"
    "IDLE | NbFrame : 4 / FrameRate : 8\n"
    "WALK | NbFrame : 4 / FrameRate : 8\n"
    "ATTACK | NbFrame : 6 / FrameRate : 12 / Damage Frame : 4\n"
    "DEAD | NbFrame : 4 / FrameRate : 8\n";
const char* const kSlimeDir = "Assets/Sprites/Enemies/Slime/";

class SlimeFrogTest : public HeroTest {
protected:
    void SetUp() override {
        HeroTest::SetUp();
        std::string dir = kSlimeDir;
        for (const char* name :
             {"Slime SpriteSheet.png", "NecroSlime SpriteSheet.png", "BlueSlime SpriteSheet.png"}) {
            WritePicture(dir + name, {192, 96}, Plain({90, 200, 90}));
        }
        for (const char* name :
             {"Slime-Projectile-SpriteSheet.png", "BlueSlime-Projectile-SpriteSheet.png"}) {
            WritePicture(dir + name, {132, 22}, Plain({200, 90, 200}));
        }
        std::filesystem::remove(dir + "SlimeAnimData.txt");  // never write through to the game's
        WriteFile(dir + "SlimeAnimData.txt", kSlimeAnimData);
        WritePicture("Assets/Sprites/Enemies/frog.png", {512, 144}, Plain({60, 160, 60}));
        LoadEnemyAssets();
        AddContainer(1, {-1000, kFloor - 600, 8000, 600});
    }
    void TearDown() override {
        DestroyEnemyAssets();
        DebugOverlay() = 0;
        HeroTest::TearDown();
    }

    static void AddContainer(int id, sf::FloatRect rect) {
        auto shape = std::make_shared<sf::RectangleShape>(sf::Vector2f(rect.width, rect.height));
        shape->setPosition(rect.left, rect.top);
        CurrentRoom().enemyContainers.push_back({shape, id});
    }
    static sf::Vector2f HeroCentre() {
        sf::FloatRect body = PlayerBodyBounds();
        return {body.left + body.width / 2, body.top + body.height / 2};
    }
    // The enemies' half of a frame, aimed at `target`, with the hero standing still.
    static void Run(int frames, sf::Vector2f target) {
        for (int i = 0; i < frames; i++) {
            UpdateEnemies(kDt, target);
            EnemiesHitPlayer();
        }
    }
    static void Run(int frames) { Run(frames, HeroCentre()); }
    static std::vector<Projectile>& Shots(int slime = 0) {
        return SlimeProjectiles(slime).projectiles;
    }
    static sf::Vector2f ShotAt(int shot, int slime = 0) {
        return Shots(slime)[shot].sprite->getPosition();
    }
    // Frames until the first Slime starts to spit (or `limit`).
    static int FramesToAttack(sf::Vector2f target, int limit) {
        int frames = 0;
        while (GetEnemyState(0, ENEMY_SLIME) != SLIME_ATTACK && frames < limit) {
            UpdateEnemies(kDt, target);
            frames++;
        }
        return frames;
    }
    // Where a Slime at `feet` facing left spits from: its mouth, from the frame's corner.
    static sf::Vector2f Mouth(sf::Vector2f feet, bool facingLeft) {
        float x = facingLeft ? feet.x - 48 + 12 : feet.x + 48 - 12;
        return {x, feet.y - 72 + 30};
    }
};

}  // namespace

TEST_F(SlimeFrogTest, ASlimesFirstShotComesWithinItsOpeningWindowAndOnlyWithinRange) {
    int earliest = 1000, latest = 0;
    for (unsigned seed = 1; seed <= 16; seed++) {
        std::srand(seed);
        AddSlimeEnemy({1500, kFloor}, 1, REGION_FOREST);
        int frames = FramesToAttack(HeroCentre(), 300);
        EXPECT_GE(frames, 2) << "seed " << seed;   // at least 0.025 s
        EXPECT_LE(frames, 76) << "seed " << seed;  // at most 1.25 s
        earliest = std::min(earliest, frames);
        latest = std::max(latest, frames);
        DestroyAllEnemies();
    }
    EXPECT_GT(latest - earliest, 30);  // the opening wait is drawn per Slime

    std::srand(7);
    AddSlimeEnemy({2000, kFloor}, 1, REGION_CITY);
    sf::Vector2f far(2000 - 1540, HeroCentre().y), near(2000 - 1530, HeroCentre().y);
    EXPECT_EQ(FramesToAttack(far, 400), 400);  // periods pass without a shot
    EXPECT_TRUE(Shots().empty());
    int frames = FramesToAttack(near, 400);
    EXPECT_GT(frames, 1);  // the timer restarted when the hero was out of range
    EXPECT_LE(frames, 151);
}

struct AimCase {
    const char* name;
    sf::Vector2f targetFromMouth;
    bool facesLeft;  // at the shot
    float rotation;
    sf::Vector2f heading;
};

void PrintTo(const AimCase& c, std::ostream* out) {
    *out << c.name;
}

class SlimeAimTest : public SlimeFrogTest, public testing::WithParamInterface<AimCase> {};

TEST_P(SlimeAimTest, TheShotHeadsForTheHerosPoint) {
    const AimCase& c = GetParam();
    std::srand(1);
    sf::Vector2f feet(2000, kFloor);
    AddSlimeEnemy(feet, 1, REGION_FOREST);
    sf::Vector2f target = Mouth(feet, true) + c.targetFromMouth;
    for (int i = 0; i < 200 && Shots().empty(); i++) UpdateEnemies(kDt, target);
    ASSERT_EQ(Shots().size(), 1u);
    EXPECT_EQ(GetEnemySprite(0, ENEMY_SLIME)->getScale().x > 0, c.facesLeft);
    EXPECT_NEAR(Shots()[0].sprite->getRotation(), c.rotation, 0.01f);
    sf::Vector2f from = ShotAt(0);
    sf::Vector2f mouth = Mouth(feet, c.facesLeft);
    EXPECT_NEAR(from.x, mouth.x + c.heading.x * 10, 0.01f);  // one frame of flight from the mouth
    EXPECT_NEAR(from.y, mouth.y + c.heading.y * 10, 0.01f);
    UpdateEnemies(kDt * 6, target);
    EXPECT_NEAR(ShotAt(0).x - from.x, c.heading.x * 60, 0.01f);  // 600 px/s
    EXPECT_NEAR(ShotAt(0).y - from.y, c.heading.y * 60, 0.01f);
}

INSTANTIATE_TEST_SUITE_P(
    Headings, SlimeAimTest,
    testing::Values(AimCase{"StraightUpIsZero", {0, -400}, true, 0, {0, -1}},
                    AimCase{"LevelOnTheLeftIs270", {-800, 0}, true, 270, {-1, 0}},
                    AimCase{"LevelOnTheRightIs90", {800 + 72, 0}, false, 90, {1, 0}}),
    [](const testing::TestParamInfo<AimCase>& info) { return info.param.name; });

TEST_F(SlimeFrogTest, AWallStopsAProjectileWhichBurstsInPlaceAndGoes) {
    ProjectileBank bank;
    InitProjectileBank(bank, REGION_CITY);
    AddSolid({3000, 0, 100, kFloor});
    AddProjectile(bank, {2500, 700}, 90);
    AddProjectile(bank, {2500, 0}, 180);  // down, to the floor
    int frames = 0;
    while (!bank.projectiles[0].destroyed && frames++ < 200) UpdateProjectiles(bank, kDt);
    EXPECT_EQ(frames, 50);  // 490 px at 10 px a frame, its box 15 px ahead of it
    sf::Vector2f stop = bank.projectiles[0].sprite->getPosition();
    EXPECT_GE(stop.x + 15, 3000);
    EXPECT_LT(stop.x + 15, 3011);
    EXPECT_EQ(bank.projectiles[0].sprite->getTextureRect().left, 0);  // the look in flight
    int bursting = 0;
    bool animated = false;
    while (!bank.projectiles.empty() && bank.projectiles[0].sprite->getPosition() == stop) {
        UpdateProjectiles(bank, kDt);
        animated |= bank.projectiles[0].sprite->getTextureRect().left > 0;
        bursting++;
    }
    EXPECT_NEAR(bursting, 36, 2);  // six frames at 10 fps, where it struck
    EXPECT_TRUE(animated);
    ASSERT_EQ(bank.projectiles.size(), 1u);  // the one falling to the floor flies on
    EXPECT_GT(bank.projectiles[0].sprite->getPosition().y, 800);

    testing::internal::CaptureStdout();
    DestroyProjectile(bank, 1);
    DestroyProjectile(bank, -1);
    EXPECT_EQ(testing::internal::GetCapturedStdout(),
              "\nDestroyProjectile error : i not in range\n"
              "\nDestroyProjectile error : i not in range\n");
    EXPECT_EQ(bank.projectiles.size(), 1u);
}

TEST_F(SlimeFrogTest, EachProjectileThatReachesTheHeroCostsFiveThroughAParryAndBurstsThere) {
    std::srand(3);
    AddSlimeEnemy({1300, kFloor}, 1, REGION_FOREST);
    sf::Vector2f centre = HeroCentre();
    AddProjectile(SlimeProjectiles(0), {900, centre.y}, 270);
    AddProjectile(SlimeProjectiles(0), {1100, centre.y}, 270);
    EXPECT_EQ(EnemyAttackCount(0, ENEMY_SLIME), 2);
    SetPlayerState(PLAYER_PARRY);
    int frames = 0;
    while (GetPlayer().life == 100 && frames++ < 100) Run(1, centre);
    EXPECT_EQ(GetPlayer().life, 95);
    EXPECT_EQ(GetPlayer().body.parrySucceeded, 0);
    ASSERT_GE(Shots().size(), 2u);
    EXPECT_EQ(Shots()[0].destroyed, 1);
    EXPECT_EQ(Shots()[1].destroyed, 0);  // the second flies on
    EXPECT_EQ(GetEnemyAttackBox(0, ENEMY_SLIME, 0), sf::FloatRect());
    sf::Vector2f hit = ShotAt(0);
    EXPECT_TRUE(PlayerBodyBounds().intersects({hit.x - 15, hit.y - 15, 30, 30}));
    Run(10, centre);
    EXPECT_EQ(ShotAt(0), hit);  // bursting where it struck
    EXPECT_EQ(GetPlayer().life, 95);
    Run(15, centre);
    EXPECT_EQ(GetPlayer().life, 90);  // the second one
    Run(190 - frames - 25, centre);
    EXPECT_EQ(GetPlayer().life, 85);  // and the Slime's own shot
}

TEST_F(SlimeFrogTest, AFelledSlimesProjectilesFlyOnAndStillHurt) {
    std::srand(4);
    AddSlimeEnemy({1300, kFloor}, 1, REGION_FOREST);
    for (int i = 0; i < 200 && Shots().empty(); i++) Run(1);
    ASSERT_EQ(Shots().size(), 1u);
    *GetEnemyLife(0, ENEMY_SLIME) = 0;
    Run(1);
    EXPECT_TRUE(IsEnemyDead(0, ENEMY_SLIME));
    Run(120);
    EXPECT_EQ(GetPlayer().life, 95);
    Run(300);
    EXPECT_EQ(GetPlayer().life, 95);  // the dead spit no more
    EXPECT_TRUE(Shots().empty());
}

TEST_F(SlimeFrogTest, AHeroBelowSendsASlimeShufflingToTheEdgeOfItsLedge) {
    AddSolid({1000, kFloor - 400, 600, 40});
    AddContainer(2, {1000, kFloor - 800, 600, 400});
    std::srand(2);
    AddSlimeEnemy({1400, kFloor - 400}, 2, REGION_FOREST);
    bool walked = false;
    for (int i = 0; i < 360; i++) {
        Run(1);
        walked |= GetEnemyState(0, ENEMY_SLIME) == SLIME_WALK;
    }
    EXPECT_TRUE(walked);
    float x = GetEnemyPosition(0, ENEMY_SLIME).x;
    EXPECT_LT(x, 1100);
    EXPECT_GE(GetEnemyHurtbox(0, ENEMY_SLIME).left, 1000 - 2);
    bool walking = false;
    for (int i = 0; i < 120; i++) {
        Run(1);
        walking |= GetEnemyState(0, ENEMY_SLIME) == SLIME_WALK;
    }
    EXPECT_FALSE(walking);  // the edge stops it; it does not tread against it
    EXPECT_FLOAT_EQ(GetEnemyPosition(0, ENEMY_SLIME).x, x);

    sf::Vector2f above(1400, kFloor - 700);
    bool moved = false;
    for (int i = 0; i < 200; i++) {
        float before = GetEnemyPosition(0, ENEMY_SLIME).x;
        Run(1, above);
        moved |= GetEnemyPosition(0, ENEMY_SLIME).x != before && i > 0;
    }
    EXPECT_FALSE(moved);  // a hero level or above is shot at, not approached
}

TEST_F(SlimeFrogTest, OnlyALeapingFrogHurtsAndOncePerLeap) {
    std::srand(5);
    AddFrogEnemy({GetPlayerPosition().x, kFloor}, 1, REGION_FOREST);
    ASSERT_TRUE(GetEnemyHurtbox(0, ENEMY_FROG).intersects(PlayerBodyBounds()));
    Run(55);  // sitting on the hero: its first leap is a second away at least
    EXPECT_EQ(GetPlayer().life, 100);
    EXPECT_EQ(GetEnemyState(0, ENEMY_FROG), FROG_IDLE);

    int leaps = 0, lifeAtTakeOff = 100;
    for (int i = 0; i < 60 * 12 && leaps < 3; i++) {
        int before = GetEnemyState(0, ENEMY_FROG), life = GetPlayer().life;
        Run(1);
        int now = GetEnemyState(0, ENEMY_FROG);
        if (before == FROG_IDLE && now == FROG_JUMP) lifeAtTakeOff = life;
        if (before == FROG_JUMP && now == FROG_IDLE) {
            leaps++;
            EXPECT_EQ(GetPlayer().life, lifeAtTakeOff - 18) << "leap " << leaps;
        }
        if (now == FROG_IDLE) {
            EXPECT_EQ(GetPlayer().life, 100 - 18 * leaps);
        }
    }
    EXPECT_EQ(leaps, 3);
    EXPECT_EQ(GetPlayer().life, 100 - 3 * 18);
}

TEST_F(SlimeFrogTest, AFrogLeapsAtTheHeroOnlyInItsArenaAfterOneToThreeSecondsSitting) {
    const unsigned seed = 11;
    std::srand(seed);
    std::vector<int> waits;
    for (int i = 0; i < 4; i++) waits.push_back((std::rand() % 3 + 1) * 60);
    CurrentRoom().enemyContainers.clear();
    AddContainer(1, {1000, kFloor - 600, 2000, 600});
    std::srand(seed);
    AddFrogEnemy({2800, kFloor}, 1, REGION_FOREST);

    Run(60 * 4, HeroCentre());  // the hero is outside its arena
    EXPECT_FLOAT_EQ(GetEnemyPosition(0, ENEMY_FROG).y, kFloor);
    EXPECT_EQ(GetEnemyState(0, ENEMY_FROG), FROG_IDLE);

    sf::Vector2f target(1100, kFloor - 60);
    int sitting = 0, leaps = 0;
    float takeOffX = 2800, peak = kFloor;
    while (leaps < 4 && sitting < 400) {
        int before = GetEnemyState(0, ENEMY_FROG);
        Run(1, target);
        int now = GetEnemyState(0, ENEMY_FROG);
        peak = std::min(peak, GetEnemyPosition(0, ENEMY_FROG).y);
        if (now == FROG_IDLE) sitting++;
        if (before == FROG_IDLE && now == FROG_JUMP) {
            EXPECT_NEAR(sitting, waits[leaps], 2) << "leap " << leaps;
            sitting = 0;
            leaps++;
        }
        if (before == FROG_JUMP && now == FROG_IDLE) {
            float x = GetEnemyPosition(0, ENEMY_FROG).x;
            EXPECT_LT(x, takeOffX - 250);  // drifting towards the hero at 250 px/s
            EXPECT_GT(x, takeOffX - 400);
            EXPECT_NEAR(peak, kFloor - 183, 12);
            takeOffX = x;
            peak = kFloor;
        }
    }
    EXPECT_EQ(leaps, 4);
}

struct PayCase {
    const char* name;
    void (*add)(sf::Vector2f, int, int);
    int kind;
    int money;
};

void PrintTo(const PayCase& c, std::ostream* out) {
    *out << c.name;
}

class FelledKindTest : public SlimeFrogTest, public testing::WithParamInterface<PayCase> {};

TEST_P(FelledKindTest, OneSwingFellsItAndPaysItsValueOnce) {
    const PayCase& c = GetParam();
    InitMoney();
    Money().money = 0;
    std::srand(9);
    c.add({GetPlayerPosition().x + 70, kFloor}, 1, REGION_FOREST);
    *GetEnemyLife(0, c.kind) = 1;
    InputScriptMouseButton(sf::Mouse::Left, true);
    PlayerAttackPressed();
    InputScriptMouseButton(sf::Mouse::Left, false);
    for (int i = 0; i < 90; i++) {
        UpdatePlayer(kDt);
        UpdateEnemies(kDt, HeroCentre());
        PlayerHitsEnemies();
    }
    EXPECT_TRUE(IsEnemyDead(0, c.kind));
    EXPECT_EQ(Money().money, c.money);
    EXPECT_EQ(int(Coins().size()), c.money / 10);
    DestroyMoney();
    Money().money = 0;
}

INSTANTIATE_TEST_SUITE_P(Kinds, FelledKindTest,
                         testing::Values(PayCase{"SlimePaysTwenty", AddSlimeEnemy, ENEMY_SLIME, 20},
                                         PayCase{"FrogPaysTen", AddFrogEnemy, ENEMY_FROG, 10}),
                         [](const testing::TestParamInfo<PayCase>& info) {
                             return info.param.name;
                         });

TEST_F(SlimeFrogTest, WithoutTheirArtBothKindsStillActAndTheirBoxesShowInTheOverlay) {
    DestroyEnemyAssets();
    std::string dir = kSlimeDir;
    for (const char* name : {"SlimeAnimData.txt", "Slime SpriteSheet.png",
                             "NecroSlime SpriteSheet.png", "Slime-Projectile-SpriteSheet.png"}) {
        std::filesystem::remove(dir + name);
    }
    std::filesystem::remove("Assets/Sprites/Enemies/frog.png");
    LoadEnemyAssets();
    std::srand(1);
    AddSlimeEnemy({1500, kFloor}, 1, REGION_FOREST);
    AddFrogEnemy({900, kFloor}, 1, REGION_FOREST);
    EXPECT_EQ(GetEnemyHurtbox(0, ENEMY_SLIME).width, 0);
    AddProjectile(SlimeProjectiles(0), {1400, 700}, 270);

    sf::RenderTexture canvas;
    ASSERT_TRUE(canvas.create(200, 200));
    canvas.setView(sf::View({1400, 700}, {200, 200}));
    auto centre = [&canvas] {
        canvas.clear(sf::Color::Black);
        DrawEnemies(canvas, true, false);
        canvas.display();
        return canvas.getTexture().copyToImage().getPixel(100, 100);
    };
    EXPECT_EQ(centre(), sf::Color::Black);  // an invisible projectile
    DebugOverlay() = 1;
    EXPECT_GT(centre().r, 100);  // its hitbox in the overlay

    float highest = kFloor;
    for (int i = 0; i < 60 * 4; i++) {
        Run(1);
        highest = std::min(highest, GetEnemyPosition(0, ENEMY_FROG).y);
        if (i % 30 == 0) centre();
    }
    EXPECT_LT(highest, kFloor - 100);  // the frog still leaps
}

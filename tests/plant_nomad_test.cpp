// The carnivorous Plant (its snap, its rearm, a sword that passes through it) and the Nomad (its
// dice, its cuts and dashes, its arena, its purse), ending with a whole duel against it.
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <filesystem>
#include <set>
#include <vector>

#include "enemies/enemies.h"
#include "enemies/enemy_body.h"
#include "enemies/nomad.h"
#include "enemies/plant.h"
#include "enemies/trash.h"
#include "interactables/money.h"
#include "player/player_combat.h"
#include "support/hero_fixture.h"
#include "support/pictures.h"

namespace {

// Sheets of the shapes the game expects, with clip timings fixed here so that the fights below do
// not hang on the art of the day.
const char* const kPlantAnim =
    "size : (168,146)\n"
    "first Frame Position : (0,0)\n"
    "IDLE | NbFrame : 4 / FrameRate : 8\n"
    "ATTACK | NbFrame : 6 / FrameRate : 12 / Damage Frame : 4\n"
    "CLOSE | NbFrame : 4 / FrameRate : 12\n";
const char* const kNomadAnim =
    "size : (128,128)\n"
    "first Frame Position : (0,0)\n\n"
    "IDLE | NbFrame : 8 / FrameRate : 8\n"
    "WALK | NbFrame : 8 / FrameRate : 10\n"
    "LIGHT_ATTACK | NbFrame : 9 / FrameRate : 14 / Damage Frame : 5\n"
    "HEAVY_ATTACK | NbFrame : 12 / FrameRate : 12 / Damage Frame : 7\n"
    "ESCAPE_DASH | NbFrame : 6 / FrameRate : 12 / Dash Frame : 1\n"
    "RUSH_DASH | NbFrame : 6 / FrameRate : 12 / Dash Frame : 2\n"
    "DEAD | NbFrame : 10 / FrameRate : 10\n";
const sf::Color kPlantGreen(0, 200, 0);
const sf::Color kNomadRed(200, 0, 0);
constexpr float kDashStep = 3000 * kDt;  // the most a dash moves in one frame

class KindsTest : public HeroTest {
protected:
    void SetUp() override {
        HeroTest::SetUp();
        WriteArt();
        LoadEnemyAssets();
        AddContainer(1, {-1000, kFloor - 800, 8000, 800});
        Money().money = Money().moneyShown = 0;
        GetPlayer().potions = 0;
    }
    void TearDown() override {
        DestroyEnemyAssets();
        DestroyMoney();
        Money().money = Money().moneyShown = 0;
        HeroTest::TearDown();
    }

    virtual void WriteArt() {
        Replace("Assets/Sprites/Enemies/Plant/PlantAnimData.txt", kPlantAnim);
        WritePicture("Assets/Sprites/Enemies/Plant/PlantTrap.png", {168 * 6, 146 * 3},
                     Plain(kPlantGreen));
        Replace("Assets/Sprites/Enemies/NomadAnimData.txt", kNomadAnim);
        WritePicture("Assets/Sprites/Enemies/Nomad.png", {128 * 12, 128 * 7}, Plain(kNomadRed));
    }
    // Writes a file of the sandbox without writing through its link to the game's own.
    static void Replace(const std::string& path, const std::string& text) {
        std::filesystem::create_directories(std::filesystem::path(path).parent_path());
        std::filesystem::remove(path);
        WriteFile(path, text);
    }
    static void AddContainer(int id, sf::FloatRect rect) {
        auto shape = std::make_shared<sf::RectangleShape>(sf::Vector2f(rect.width, rect.height));
        shape->setPosition(rect.left, rect.top);
        CurrentRoom().enemyContainers.push_back({shape, id});
    }
    static sf::Vector2f Target() {
        if (State() == PLAYER_DEAD) return {0, 0};
        sf::FloatRect body = PlayerBodyBounds();
        return {body.left + body.width / 2, body.top + body.height / 2};
    }
    // The enemies' half of a frame, with the hero standing still where the test put them.
    static void EnemiesOnly(int frames) {
        for (int i = 0; i < frames; i++) {
            UpdateEnemies(kDt, Target());
            EnemiesHitPlayer();
        }
    }
    // A whole frame of the fight, in the game's order.
    static void Fight(int frames) {
        for (int i = 0; i < frames; i++) {
            UpdatePlayer(kDt);
            UpdateEnemies(kDt, Target());
            EnemiesHitPlayer();
            PlayerHitsEnemies();
        }
    }
    static void Click() {
        InputScriptMouseButton(sf::Mouse::Left, true);
        PlayerAttackPressed();
    }
    static void Release() { InputScriptMouseButton(sf::Mouse::Left, false); }

    // The hero, played from the keyboard and mouse by a simple duellist: close in, swing while
    // the Nomad rests or walks, parry each of its cuts just before it lands.
    void Duel() {
        CurrentRoom().enemyContainers.clear();
        AddSolid({0, kFloor - 600, 96, 600});
        AddSolid({1600, kFloor - 600, 96, 600});
        AddContainer(1, {96, kFloor - 600, 1504, 600});
        SetPlayerPosition({400, kFloor});
        AddNomadEnemy({1200, kFloor}, 1);
        std::srand(4321);
        Player& player = GetPlayer();
        int parried = 0, frames = 0;
        bool attackHeld = false;
        auto move = [](int direction) {
            Hold(BINDING_LEFT, direction < 0);
            Hold(BINDING_RIGHT, direction > 0);
        };
        for (; frames < 60 * 120 && !IsEnemyDead(0, ENEMY_NOMAD) && State() != PLAYER_DEAD;
             frames++) {
            const EnemyBody& nomad = NomadBody();
            const Animation& clip = CurrentClip(nomad);
            float dx = NomadX() - GetPlayerPosition().x;
            bool facing = (dx > 0) == PlayerFacingRight();
            // Seconds until the cut shown lands, if one is coming.
            float toBlow = 1e9f;
            if (Cutting(nomad.state) && nomad.armed && clip.frameRate > 0) {
                int ahead = nomad.damageFrames[nomad.state] - 1 - clip.currentFrame;
                if (ahead >= 0) toBlow = float(ahead) / float(clip.frameRate) - clip.timer;
            }
            bool threatened = toBlow < 0.25f && std::fabs(dx) < NomadReach(0) + 80;
            bool wantAttack = false;
            if (threatened) {
                move(0);
                if (State() != PLAYER_PARRY || player.body.parrySucceeded) Press(BINDING_PARRY);
            } else if (std::fabs(dx) > 120 || !facing) {
                Hold(BINDING_PARRY, false);
                move(dx > 0 ? 1 : -1);
            } else {
                Hold(BINDING_PARRY, false);
                move(0);
                wantAttack = !Cutting(nomad.state);
            }
            if (wantAttack && !attackHeld) Click();
            if (!wantAttack && attackHeld) Release();
            attackHeld = wantAttack;

            int parries = player.body.parrySucceeded;
            Fight(1);
            parried += !parries && player.body.parrySucceeded;
        }
        EXPECT_TRUE(IsEnemyDead(0, ENEMY_NOMAD)) << "after " << frames << " frames";
        EXPECT_GT(player.life, 0);
        EXPECT_GE(parried, 1);
        EXPECT_EQ(Money().money, 60);
    }

    static EnemyBody& NomadBody(int index = 0) { return NomadKind().body(index); }
    static int Nomad(int index = 0) { return NomadState(index); }
    static float NomadX(int index = 0) { return GetEnemyPosition(index, ENEMY_NOMAD).x; }
    static bool Cutting(int state) {
        return state == NOMAD_LIGHT_ATTACK || state == NOMAD_HEAVY_ATTACK;
    }
    static bool Dashing(int state) {
        return state == NOMAD_ESCAPE_DASH || state == NOMAD_RUSH_DASH;
    }
    // A Nomad `gap` px left of the hero, facing them.
    static void NomadFacingTheHero(float gap) {
        AddNomadEnemy({GetPlayerPosition().x - gap, kFloor}, 1);
    }
    // A seed whose first roll opens a combo with the wanted action.
    static unsigned SeedOpening(int action) {
        for (unsigned seed = 1;; seed++) {
            std::srand(seed);
            if (NOMAD_LIGHT_ATTACK + std::rand() % 4 == action) return seed;
        }
    }
};

// The same, with the sheets and timings the game ships.
class ShippedArtTest : public KindsTest {
protected:
    void WriteArt() override {}
};

// What a Nomad does, frame by frame: each action it starts (a state entered, or an action
// restarted), and how long it rested before walking in again.
struct Action {
    int state;
    int frame;
    float x;  // where the Nomad stood at the end of that frame
};

std::vector<Action> Actions(int frames, const std::function<void()>& step) {
    std::vector<Action> actions;
    int last = -1, lastFrame = 0, lastFinished = 0;
    for (int f = 0; f < frames; f++) {
        step();
        const EnemyBody& body = NomadKind().body(0);
        const Animation& clip = CurrentClip(body);
        bool restarted = body.state == last && body.state >= NOMAD_LIGHT_ATTACK &&
                         (clip.currentFrame < lastFrame || (lastFinished && !clip.finished));
        if (body.state != last || restarted) {
            actions.push_back({body.state, f, body.sprite->getPosition().x});
        }
        last = body.state;
        lastFrame = clip.currentFrame;
        lastFinished = clip.finished;
    }
    return actions;
}

}  // namespace

// ---- The carnivorous Plant ----

TEST_F(KindsTest, ThePlantSnapsOnlyAtAHeroWithinItsReach) {
    const sf::Vector2f root(1500, kFloor);
    struct Case {
        sf::Vector2f offset;
        bool snaps;
    } cases[] = {{{120, -90}, false},  {{100, -120}, true}, {{-100, -120}, true},
                 {{100, -135}, false}, {{-109, 60}, true},  {{0, 131}, false}};
    for (const Case& c : cases) {
        DestroyAllEnemies();
        AddPlantEnemy(root, 1);
        for (int i = 0; i < 10; i++) UpdateEnemies(kDt, root + c.offset);
        EXPECT_EQ(PlantState(0) != PLANT_IDLE, c.snaps) << c.offset.x << ", " << c.offset.y;
    }
}

TEST_F(KindsTest, ThePlantBitesAHundredOncePerSnapThroughAParryAndRearmsAtOnce) {
    AddPlantEnemy({1500, kFloor}, 1);
    SetPlayerPosition({1600, kFloor});
    Player& player = GetPlayer();
    player.life = 1000;  // enough to count three bites
    int snaps = 0, bites = 0, last = PLANT_IDLE, idleBetween = 0;
    for (int f = 0; f < 600 && !(snaps == 3 && PlantState(0) == PLANT_CLOSE); f++) {
        if (State() != PLAYER_PARRY) SetPlayerState(PLAYER_PARRY);
        int life = player.life;
        EnemiesOnly(1);
        if (player.life != life) {
            bites++;
            EXPECT_EQ(life - player.life, 100);
            EXPECT_EQ(PlantState(0), PLANT_ATTACK);
        }
        if (PlantState(0) == PLANT_ATTACK && last != PLANT_ATTACK) snaps++;
        if (snaps > 0 && PlantState(0) == PLANT_IDLE) idleBetween++;
        last = PlantState(0);
    }
    EXPECT_EQ(snaps, 3);
    EXPECT_EQ(bites, 3);
    EXPECT_EQ(player.life, 700);
    EXPECT_EQ(player.body.parrySucceeded, 0);
    EXPECT_EQ(idleBetween, 0);  // still on it: the next snap follows the close at once

    SetPlayerPosition({2000, kFloor});  // steps away while it closes
    EnemiesOnly(120);
    EXPECT_EQ(PlantState(0), PLANT_IDLE);
    EXPECT_EQ(player.life, 700);
}

TEST_F(KindsTest, TheSwordPassesThroughAPlantThatNeverDiesNorMoves) {
    GetPlayer().godMode = 1;
    SetPlayerFacing(true);
    // Its arena does not exist: a clamped enemy would be thrown to the world's origin.
    AddPlantEnemy({560, kFloor}, 99);
    AddTrashEnemy({600, kFloor}, 1, 0);
    Click();
    Release();
    Fight(40);
    EXPECT_EQ(*GetEnemyLife(0, ENEMY_TRASH), 5);  // the same swing reached the Trash behind it
    EXPECT_EQ(GetEnemySprite(0, ENEMY_PLANT)->getColor(), sf::Color::White);
    EXPECT_EQ(GetEnemyLife(0, ENEMY_PLANT), nullptr);
    DamageEnemy(0, ENEMY_PLANT, 50, GetPlayerPosition());  // the console's kill
    Fight(60);
    EXPECT_FALSE(IsEnemyDead(0, ENEMY_PLANT));
    EXPECT_EQ(CountDeadEnemies(), 0);
    EXPECT_EQ(Money().money, 0);
    EXPECT_EQ(GetEnemyPosition(0, ENEMY_PLANT), sf::Vector2f(560, kFloor));
}

TEST_F(KindsTest, ThePlantIsDrawnInTheBackPassAndTheNomadInTheMainOne) {
    AddPlantEnemy({1500, kFloor}, 1);
    AddNomadEnemy({3000, kFloor}, 1);
    EnemiesOnly(1);
    sf::RenderTexture canvas;
    ASSERT_TRUE(canvas.create(64, 64));
    auto colourAt = [&canvas](sf::Vector2f point, bool main, bool back) {
        canvas.setView(sf::View(point, {64, 64}));
        canvas.clear(sf::Color::Black);
        DrawEnemies(canvas, main, back);
        canvas.display();
        return canvas.getTexture().copyToImage().getPixel(32, 32);
    };
    const sf::Vector2f plant(1500, kFloor - 100), nomad(3000, kFloor - 100);
    EXPECT_EQ(colourAt(plant, false, true), kPlantGreen);
    EXPECT_EQ(colourAt(plant, true, false), sf::Color::Black);
    EXPECT_EQ(colourAt(nomad, true, false), kNomadRed);
    EXPECT_EQ(colourAt(nomad, false, true), sf::Color::Black);
}

TEST_F(KindsTest, WithoutTheirArtBothKindsStandHarmlessly) {
    DestroyEnemyAssets();
    for (const char* path :
         {"Assets/Sprites/Enemies/Plant/PlantAnimData.txt",
          "Assets/Sprites/Enemies/Plant/PlantTrap.png", "Assets/Sprites/Enemies/NomadAnimData.txt",
          "Assets/Sprites/Enemies/Nomad.png"}) {
        std::filesystem::remove(path);
    }
    LoadEnemyAssets();
    AddPlantEnemy({560, kFloor}, 1);
    NomadFacingTheHero(100);
    ASSERT_EQ(EnemyCount(ENEMY_PLANT), 1);
    ASSERT_EQ(EnemyCount(ENEMY_NOMAD), 1);
    Fight(300);
    EXPECT_EQ(GetPlayer().life, 100);
    sf::RenderTexture canvas;
    ASSERT_TRUE(canvas.create(16, 16));
    DrawEnemies(canvas, true, true);
}

// ---- The Nomad ----

TEST_F(KindsTest, TheNomadOpensEachComboWithTheActionItsFirstRollNames) {
    std::set<int> openers;
    for (unsigned seed = 1; seed <= 12; seed++) {
        DestroyAllEnemies();
        NomadFacingTheHero(150);
        std::srand(seed);
        int expected = NOMAD_LIGHT_ATTACK + std::rand() % 4;
        std::srand(seed);
        for (int f = 0; f < 300 && Nomad() <= NOMAD_WALK; f++) EnemiesOnly(1);
        EXPECT_EQ(Nomad(), expected) << "seed " << seed;
        openers.insert(Nomad());
    }
    EXPECT_EQ(openers.size(), 4u);
}

TEST_F(KindsTest, NomadCombosChainAtMostFourActionsWithACutAndRestBetween) {
    GetPlayer().godMode = 1;
    auto run = [this]() {
        DestroyAllEnemies();
        NomadFacingTheHero(150);
        std::srand(2024);
        return Actions(60 * 120, [] { EnemiesOnly(1); });
    };
    std::vector<Action> actions = run();
    std::vector<std::vector<int>> combos;  // the actions of each, in order
    std::set<int> openers;
    int restStart = -1;
    bool inCombo = false;
    for (const Action& action : actions) {
        ASSERT_NE(action.state, NOMAD_DEAD);
        if (action.state == NOMAD_IDLE) {
            restStart = action.frame;
            inCombo = false;
        } else if (action.state == NOMAD_WALK) {
            if (restStart >= 0) {
                EXPECT_GE(action.frame - restStart, 89) << action.frame;
            }
            restStart = -1;
            inCombo = false;
        } else {
            if (!inCombo) {
                combos.push_back({});
                openers.insert(action.state);
            }
            inCombo = true;
            combos.back().push_back(action.state);
        }
    }
    ASSERT_GE(combos.size(), 25u);
    EXPECT_EQ(openers.size(), 4u);
    int single = 0, withoutChainedCut = 0;
    for (const std::vector<int>& combo : combos) {
        EXPECT_LE(combo.size(), 4u);
        single += combo.size() == 1;
        withoutChainedCut +=
            combo.size() > 1 && std::none_of(combo.begin() + 1, combo.end(), Cutting);
    }
    // Only a roll landing exactly on its threshold ends a combo early: rare.
    EXPECT_LE(single * 10, int(combos.size()));
    EXPECT_LE(withoutChainedCut * 10, int(combos.size()));

    std::vector<Action> again = run();  // the same dice, the same fight
    ASSERT_EQ(again.size(), actions.size());
    for (size_t i = 0; i < actions.size(); i++) {
        EXPECT_EQ(again[i].state, actions[i].state);
        EXPECT_EQ(again[i].frame, actions[i].frame);
    }
}

TEST_F(KindsTest, NomadCutsCostSixteenAndTwentyAndParryAndItsDashesNeverHurt) {
    struct Case {
        int opener;
        bool parry;
        int lifeAfter;
    } cases[] = {{NOMAD_LIGHT_ATTACK, false, 84}, {NOMAD_HEAVY_ATTACK, false, 80},
                 {NOMAD_LIGHT_ATTACK, true, 100}, {NOMAD_HEAVY_ATTACK, true, 100},
                 {NOMAD_ESCAPE_DASH, false, 100}, {NOMAD_RUSH_DASH, false, 100}};
    Player& player = GetPlayer();
    for (const Case& c : cases) {
        SCOPED_TRACE(c.opener * 10 + c.parry);
        DestroyAllEnemies();
        player.life = 100;
        player.body.parrySucceeded = 0;
        SetPlayerState(PLAYER_IDLE);
        NomadFacingTheHero(150);
        std::srand(SeedOpening(c.opener));
        bool struck = false;
        int f = 0;
        for (; f < 300 && Nomad() <= NOMAD_WALK; f++) EnemiesOnly(1);
        ASSERT_EQ(Nomad(), c.opener);
        // Through the opening action, up to whatever follows it (another of the same restarts).
        for (int shown = 0; f < 600; f++) {
            UpdateEnemies(kDt, Target());
            int frame = CurrentClip(NomadBody()).currentFrame;
            if (Nomad() != c.opener || frame < shown) break;
            shown = frame;
            EnemyBlow blow = NomadKind().blow(0, 0);
            EXPECT_EQ(blow.damage, c.opener == NOMAD_LIGHT_ATTACK   ? 16
                                   : c.opener == NOMAD_HEAVY_ATTACK ? 20
                                                                    : 0);
            EXPECT_EQ(blow.parryable, Cutting(c.opener));
            struck |= IsEnemyStriking(0, ENEMY_NOMAD);
            if (c.parry && State() != PLAYER_PARRY) SetPlayerState(PLAYER_PARRY);
            EnemiesHitPlayer();
        }
        EXPECT_EQ(struck, Cutting(c.opener));
        EXPECT_EQ(player.life, c.lifeAfter);  // a cut lands once
        EXPECT_EQ(player.body.parrySucceeded, c.parry ? 1 : 0);
    }
}

TEST_F(KindsTest, NomadDashesStopAfterThreeHundredPixelsOrAtTheEdgeOfTheArena) {
    GetPlayer().godMode = 1;
    CurrentRoom().enemyContainers.clear();
    AddContainer(1, {100, kFloor - 600, 1400, 600});
    AddSolid({1000, kFloor - 400, 96, 400});  // a pillar inside the arena, right of the duel
    SetPlayerPosition({700, kFloor});
    NomadFacingTheHero(150);
    std::srand(77);
    float overshoot = 0;
    std::vector<Action> actions = Actions(60 * 90, [&overshoot] {
        EnemiesOnly(1);
        sf::FloatRect body = GetEnemyHurtbox(0, ENEMY_NOMAD);
        overshoot = std::max({overshoot, 100 - body.left, body.left + body.width - 1000});
    });
    int dashes = 0, cutShort = 0;
    float longest = 0;
    for (size_t i = 0; i + 1 < actions.size(); i++) {
        if (!Dashing(actions[i].state)) continue;
        float travel = std::fabs(actions[i + 1].x - actions[i].x);
        longest = std::max(longest, travel);
        cutShort += travel < 300 - kDashStep;
        dashes++;
    }
    EXPECT_GE(dashes, 10);
    EXPECT_GE(cutShort, 1);  // some ran into the pillar or the arena's end
    EXPECT_LE(longest, 300 + kDashStep + 1);
    EXPECT_LE(overshoot, kDashStep);  // never more than one frame's step, pushed back the next
}

TEST_F(KindsTest, NomadsPatrolTogetherAndNoticeTheHeroFacingThemOrOnceHurt) {
    SetPlayerPosition({200, kFloor});
    AddSolid({1500, kFloor - 400, 96, 400});
    AddNomadEnemy({1000, kFloor}, 1);  // both face right, away from the hero
    AddNomadEnemy({1300, kFloor}, 1);
    EnemiesOnly(300);  // the second walks into the wall and every patrol turns
    EXPECT_LT(NomadX(0), 1000);
    EXPECT_LT(NomadX(1), 1300);
    EXPECT_LT(GetEnemySprite(0, ENEMY_NOMAD)->getScale().x, 0);

    DestroyEnemyAssets();  // the shared patrol starts rightwards again
    LoadEnemyAssets();
    AddNomadEnemy({1000, kFloor}, 1);
    EnemiesOnly(60);
    float before = NomadX();
    EnemiesOnly(30);
    EXPECT_GT(NomadX(), before);  // patrols on, away from the hero
    *GetEnemyLife(0, ENEMY_NOMAD) = 14;
    EnemiesOnly(200);
    EXPECT_LT(NomadX(), before);  // hurt, it comes for the hero
}

TEST_F(KindsTest, AFelledNomadPaysSixtyOnceAndStaysDown) {
    InitMoney();
    GetPlayer().godMode = 1;
    SetPlayerFacing(false);
    NomadFacingTheHero(100);
    *GetEnemyLife(0, ENEMY_NOMAD) = 1;
    Click();
    Release();
    Fight(40);
    EXPECT_EQ(Money().money, 60);
    int big = 0, small = 0;
    for (const Coin& coin : Coins()) (coin.coinType == COIN_BIG ? big : small)++;
    EXPECT_EQ(big, 1);
    EXPECT_EQ(small, 1);
    EXPECT_EQ(Nomad(), NOMAD_DEAD);
    EXPECT_TRUE(IsEnemyDead(0, ENEMY_NOMAD));
    EXPECT_EQ(CountDeadEnemies(), 1);

    float x = NomadX();
    bool struck = false;
    for (int i = 0; i < 3; i++) {
        Step(30);
        Click();
        Release();
        for (int f = 0; f < 40; f++) {
            Fight(1);
            struck |= IsEnemyStriking(0, ENEMY_NOMAD);
        }
    }
    EXPECT_EQ(Money().money, 60);  // a fallen Nomad is not felled again
    EXPECT_FALSE(struck);
    EXPECT_EQ(NomadX(), x);
    EXPECT_TRUE(ClipFinished(NomadBody()));  // its fall played out and holds its last frame
    EXPECT_EQ(GetPlayer().life, 100);
}

TEST_F(KindsTest, TheHeroWinsADuelWithTheNomad) {
    Duel();
}

TEST_F(ShippedArtTest, TheHeroWinsADuelWithTheNomad) {
    Duel();
}

TEST_F(ShippedArtTest, TheShippedSheetsReadInFull) {
    AddPlantEnemy({1500, kFloor}, 1);
    AddNomadEnemy({3000, kFloor}, 1);
    EXPECT_EQ(GetEnemySprite(0, ENEMY_PLANT)->getTextureRect(), sf::IntRect(0, 0, 168, 146));
    struct Sheet {
        EnemyBody& body;
        std::set<int> striking;  // the clips with a damage frame
    } sheets[] = {{PlantKind().body(0), {PLANT_ATTACK}},
                  {NomadKind().body(0), {NOMAD_LIGHT_ATTACK, NOMAD_HEAVY_ATTACK}}};
    for (const Sheet& sheet : sheets) {
        sf::Vector2u size = sheet.body.sprite->getTexture()->getSize();
        for (size_t i = 0; i < sheet.body.clips.size(); i++) {
            SCOPED_TRACE(i);
            const Animation& clip = sheet.body.clips[i];
            EXPECT_GT(clip.frameCount, 0u);
            EXPECT_GT(clip.frameRate, 0u);
            EXPECT_LE(unsigned(clip.frameRect.top + clip.frameRect.height), size.y);
            int damage = sheet.body.damageFrames[i];
            if (sheet.striking.count(int(i))) {
                EXPECT_GE(damage, 1);
                EXPECT_LE(damage, int(clip.frameCount));
            } else {
                EXPECT_EQ(damage, 0);  // a dash frame is no damage frame
            }
        }
    }
}

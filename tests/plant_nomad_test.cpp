// The carnivorous Plant (its snap, its rearm, a sword that passes through it) and the Nomad (its
// dice, its cuts and dashes, its arena, its purse), ending with a whole duel against it.
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <filesystem>
#include <set>
#include <vector>

#include "enemies/enemy_body.h"
#include "enemies/nomad.h"
#include "enemies/plant.h"
#include "enemies/trash.h"
#include "interactables/money.h"
#include "player/player_combat.h"
#include "support/enemy_fixture.h"

namespace {

class PlantNomadTest : public EnemyTest {
protected:
    static void Swing(bool down) {
        InputScriptMouseButton(sf::Mouse::Left, down);
        if (down) PlayerAttackPressed();
    }
    static EnemyBody& NomadBody() { return NomadKind().body(0); }
    static float NomadX() { return GetEnemyPosition(0, ENEMY_NOMAD).x; }
    static bool Cutting(int state) {
        return state == NOMAD_LIGHT_ATTACK || state == NOMAD_HEAVY_ATTACK;
    }
    // A Nomad `gap` px left of the hero, facing them.
    static void NomadFacingTheHero(float gap) {
        AddNomadEnemy({GetPlayerPosition().x - gap, kFloor}, 1);
    }
    static void WaitForAnOpening() {
        for (int f = 0; f < 300 && NomadState(0) <= NOMAD_WALK; f++) EnemiesOnly(1);
    }
};

// Each action a Nomad starts (a state entered, or a cut or dash restarted) and where it stood.
struct Action {
    int state, frame;
    float x;
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
        if (body.state != last || restarted)
            actions.push_back({body.state, f, BodyPosition(body).x});
        last = body.state, lastFrame = clip.currentFrame, lastFinished = clip.finished;
    }
    return actions;
}

}  // namespace

TEST_F(PlantNomadTest, ThePlantBitesAHundredOncePerSnapThroughAParryAndRearmsAtOnce) {
    AddPlantEnemy({1500, kFloor}, 1);
    SetPlayerPosition({1620, kFloor});  // 120 px beside it: out of reach
    EnemiesOnly(60);
    EXPECT_EQ(PlantState(0), PLANT_IDLE);
    SetPlayerPosition({1600, kFloor});
    Player& player = GetPlayer();
    player.life = 1000;  // enough to count three bites
    int snaps = 0, bites = 0, idleBetween = 0;
    for (int f = 0; f < 600 && !(snaps == 3 && PlantState(0) == PLANT_CLOSE); f++) {
        if (State() != PLAYER_PARRY) SetPlayerState(PLAYER_PARRY);
        int life = player.life, before = PlantState(0);
        EnemiesOnly(1);
        bites += life != player.life;
        EXPECT_TRUE(life == player.life || life - player.life == 100);
        snaps += PlantState(0) == PLANT_ATTACK && before != PLANT_ATTACK;
        idleBetween += snaps > 0 && PlantState(0) == PLANT_IDLE;
    }
    EXPECT_EQ(bites, 3);
    EXPECT_EQ(player.life, 700);
    EXPECT_EQ(player.body.parrySucceeded, 0);
    EXPECT_EQ(idleBetween, 0);  // still on it: the next snap follows the close at once
    SetPlayerPosition({2000, kFloor});
    EnemiesOnly(120);
    EXPECT_EQ(PlantState(0), PLANT_IDLE);
    EXPECT_EQ(player.life, 700);
}

TEST_F(PlantNomadTest, TheSwordPassesThroughAPlantThatNeverDiesNorMoves) {
    GetPlayer().godMode = 1;
    SetPlayerFacing(true);
    AddPlantEnemy({560, kFloor}, 99);  // no such arena: a clamped enemy would be thrown away
    AddTrashEnemy({600, kFloor}, 1, 0);
    Swing(true);
    Swing(false);
    Fight(40);
    EXPECT_EQ(*GetEnemyLife(0, ENEMY_TRASH), 5);  // the same swing reached the Trash behind it
    EXPECT_EQ(GetEnemySprite(0, ENEMY_PLANT)->getColor(), sf::Color::White);
    EXPECT_EQ(GetEnemyLife(0, ENEMY_PLANT), nullptr);
    DamageEnemy(0, ENEMY_PLANT, 50, GetPlayerPosition());  // the console's kill
    Fight(60);
    EXPECT_EQ(CountDeadEnemies(), 0);
    EXPECT_EQ(Money().money, 0);
    EXPECT_EQ(GetEnemyPosition(0, ENEMY_PLANT), sf::Vector2f(560, kFloor));
}

TEST_F(PlantNomadTest, WithoutTheirArtBothKindsStandHarmlessly) {
    DestroyEnemyAssets();
    for (const char* path :
         {"Plant/PlantAnimData.txt", "Plant/PlantTrap.png", "NomadAnimData.txt", "Nomad.png"}) {
        std::filesystem::remove(std::string("Assets/Sprites/Enemies/") + path);
    }
    LoadEnemyAssets();
    AddPlantEnemy({560, kFloor}, 1);
    NomadFacingTheHero(100);
    Fight(300);
    EXPECT_EQ(GetPlayer().life, 100);
}

TEST_F(PlantNomadTest, NomadCombosOpenOnTheFirstRollChainAtMostFourActionsAndRest) {
    for (unsigned seed = 1; seed <= 6; seed++) {
        DestroyAllEnemies();
        NomadFacingTheHero(150);
        std::srand(seed);
        int expected = NOMAD_LIGHT_ATTACK + std::rand() % 4;
        std::srand(seed);
        WaitForAnOpening();
        EXPECT_EQ(NomadState(0), expected) << "seed " << seed;
    }
    GetPlayer().godMode = 1;
    DestroyAllEnemies();
    NomadFacingTheHero(150);
    std::srand(2024);
    std::vector<std::vector<int>> combos;
    std::set<int> openers;
    int restStart = -1, single = 0, withoutChainedCut = 0;
    bool inCombo = false;
    for (const Action& action : Actions(60 * 120, [] { EnemiesOnly(1); })) {
        ASSERT_NE(action.state, NOMAD_DEAD);
        if (action.state == NOMAD_WALK && restStart >= 0) {
            EXPECT_GE(action.frame - restStart, 89) << "a short rest at " << action.frame;
        }
        restStart = action.state == NOMAD_IDLE ? action.frame : -1;
        if (action.state <= NOMAD_WALK) {
            inCombo = false;
            continue;
        }
        if (!inCombo) {
            combos.push_back({});
            openers.insert(action.state);
            inCombo = true;
        }
        combos.back().push_back(action.state);
    }
    ASSERT_GE(combos.size(), 25u);
    EXPECT_EQ(openers.size(), 4u);
    for (const std::vector<int>& combo : combos) {
        EXPECT_LE(combo.size(), 4u);
        single += combo.size() == 1;
        withoutChainedCut +=
            combo.size() > 1 && std::none_of(combo.begin() + 1, combo.end(), Cutting);
    }
    // Only a roll landing right on its threshold ends a combo before a cut has been chained.
    EXPECT_LE(single * 10, int(combos.size()));
    EXPECT_LE(withoutChainedCut * 10, int(combos.size()));
}

TEST_F(PlantNomadTest, NomadCutsCostSixteenAndTwentyAndParryAndItsDashesNeverHurt) {
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
        NomadFacingTheHero(150);
        unsigned seed = 1;
        for (std::srand(seed); NOMAD_LIGHT_ATTACK + std::rand() % 4 != c.opener;)
            std::srand(++seed);
        std::srand(seed);
        WaitForAnOpening();
        ASSERT_EQ(NomadState(0), c.opener);
        bool struck = false;
        // Through the opening action, up to whatever follows it (the same one again restarts).
        for (int f = 0, shown = 0; f < 300; f++) {
            UpdateEnemies(kDt, Target());
            int frame = CurrentClip(NomadBody()).currentFrame;
            if (NomadState(0) != c.opener || frame < shown) break;
            shown = frame;
            struck |= IsEnemyStriking(0, ENEMY_NOMAD);
            if (c.parry && State() != PLAYER_PARRY) SetPlayerState(PLAYER_PARRY);
            EnemiesHitPlayer();
        }
        EXPECT_EQ(struck, Cutting(c.opener));
        EXPECT_EQ(player.life, c.lifeAfter);  // a cut lands once
        EXPECT_EQ(player.body.parrySucceeded, c.parry ? 1 : 0);
    }
}

TEST_F(PlantNomadTest, NomadDashesStopAfterThreeHundredPixelsAtAWallOrTheArenasEnd) {
    const float step = 3000 * kDt;  // the most a dash moves in a frame
    GetPlayer().godMode = 1;
    AddContainer({100, kFloor - 600, 1400, 600});
    AddSolid({1000, kFloor - 400, 96, 400});  // a pillar inside the arena, right of the duel
    SetPlayerPosition({700, kFloor});
    NomadFacingTheHero(150);
    std::srand(77);
    float overshoot = 0, longest = 0;
    std::vector<Action> actions = Actions(60 * 90, [&overshoot] {
        EnemiesOnly(1);
        sf::FloatRect body = GetEnemyHurtbox(0, ENEMY_NOMAD);
        overshoot = std::max({overshoot, 100 - body.left, body.left + body.width - 1000});
    });
    int dashes = 0, cutShort = 0;
    for (size_t i = 0; i + 1 < actions.size(); i++) {
        if (actions[i].state != NOMAD_ESCAPE_DASH && actions[i].state != NOMAD_RUSH_DASH) continue;
        float travel = std::fabs(actions[i + 1].x - actions[i].x);
        longest = std::max(longest, travel);
        cutShort += travel < 300 - step;
        dashes++;
    }
    EXPECT_GE(dashes, 10);
    EXPECT_GE(cutShort, 1);  // some ran into the pillar or the arena's end
    EXPECT_LE(longest, 300 + step + 1);
    EXPECT_LE(overshoot, step);  // one frame's step at most, pushed back on the next
}

// The hero, played from the keyboard and mouse by a simple duellist: close in, swing while the
// Nomad rests or walks, parry each of its cuts just before it lands.
TEST_F(PlantNomadTest, TheHeroWinsADuelWithTheNomad) {
    AddSolid({0, kFloor - 600, 96, 600});
    AddSolid({1600, kFloor - 600, 96, 600});
    AddContainer({96, kFloor - 600, 1504, 600});
    SetPlayerPosition({400, kFloor});
    AddNomadEnemy({1200, kFloor}, 1);
    std::srand(4321);
    Player& player = GetPlayer();
    int parried = 0, frames = 0;
    bool swinging = false;
    for (; frames < 60 * 120 && !IsEnemyDead(0, ENEMY_NOMAD) && State() != PLAYER_DEAD; frames++) {
        const EnemyBody& nomad = NomadBody();
        const Animation& clip = CurrentClip(nomad);
        float dx = NomadX() - GetPlayerPosition().x;
        float toBlow = 1e9f;  // seconds until the cut shown lands
        if (Cutting(nomad.state) && nomad.armed && clip.frameRate > 0) {
            int ahead = nomad.damageFrames[nomad.state] - 1 - clip.currentFrame;
            if (ahead >= 0) toBlow = float(ahead) / float(clip.frameRate) - clip.timer;
        }
        bool threatened = toBlow < 0.25f && std::fabs(dx) < NomadReach(0) + 80;
        bool closeIn = !threatened && (std::fabs(dx) > 120 || (dx > 0) != PlayerFacingRight());
        Hold(BINDING_LEFT, closeIn && dx < 0);
        Hold(BINDING_RIGHT, closeIn && dx > 0);
        Hold(BINDING_PARRY, threatened);
        if (threatened && (State() != PLAYER_PARRY || player.body.parrySucceeded)) {
            Press(BINDING_PARRY);
        }
        bool swing = !threatened && !closeIn && !Cutting(nomad.state);
        if (swing != swinging) Swing(swing);
        swinging = swing;
        int parries = player.body.parrySucceeded;
        Fight(1);
        parried += !parries && player.body.parrySucceeded;
    }
    ASSERT_TRUE(IsEnemyDead(0, ENEMY_NOMAD)) << "after " << frames << " frames";
    EXPECT_GT(player.life, 0);
    EXPECT_GE(parried, 1);
    bool struck = false;  // the fallen Nomad is struck on: it pays once and strikes no more
    for (int f = 0; f < 180; f++) {
        Swing(f % 40 == 0);
        Fight(1);
        struck |= IsEnemyStriking(0, ENEMY_NOMAD);
    }
    EXPECT_EQ(Money().money, 60);
    EXPECT_FALSE(struck);
    EXPECT_TRUE(ClipFinished(NomadBody()));  // its fall played out and holds its last frame
}

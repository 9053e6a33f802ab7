// Fighting: the hero's attacks, parries, potions and regeneration; the Trash; locked doors.
#include <gtest/gtest.h>

#include <fstream>
#include <nlohmann/json.hpp>

#include "enemies/enemies.h"
#include "enemies/trash.h"
#include "hud/player_hud.h"
#include "player/player_combat.h"
#include "support/hero_fixture.h"
#include "world/doors.h"
#include "world/tiled.h"
#include "world/transition.h"

namespace {

class CombatTest : public HeroTest {
protected:
    void SetUp() override {
        HeroTest::SetUp();
        LoadEnemyAssets();
        AddContainer(1, {-1000, kFloor - 600, 8000, 600});
    }
    void TearDown() override {
        DestroyEnemyAssets();
        HeroTest::TearDown();
    }

    static void AddContainer(int id, sf::FloatRect rect) {
        auto shape = std::make_shared<sf::RectangleShape>(sf::Vector2f(rect.width, rect.height));
        shape->setPosition(rect.left, rect.top);
        CurrentRoom().enemyContainers.push_back({shape, id});
    }
    // One frame of the fight, in the game's order.
    static void Fight(int frames) {
        for (int i = 0; i < frames; i++) {
            UpdatePlayer(kDt);
            sf::FloatRect body = PlayerBodyBounds();
            UpdateEnemies(kDt, {body.left + body.width / 2, body.top + body.height / 2});
            EnemiesHitPlayer();
            PlayerHitsEnemies();
        }
    }
    static void Click() {
        InputScriptMouseButton(sf::Mouse::Left, true);
        PlayerAttackPressed();
    }
    static void Release() { InputScriptMouseButton(sf::Mouse::Left, false); }
    // Runs until the hero leaves the given state (or a second passes).
    static int FramesIn(int state) {
        int frames = 0;
        while (State() == state && frames < 120) {
            UpdatePlayer(kDt);
            frames++;
        }
        return frames;
    }
};

}  // namespace

TEST_F(CombatTest, HoldingAttackChainsTheThreeHitsThenCoolsDown) {
    Click();
    Step(1);
    ASSERT_EQ(State(), PLAYER_LIGHT_ATTACK_1);
    FramesIn(PLAYER_LIGHT_ATTACK_1);
    EXPECT_EQ(State(), PLAYER_LIGHT_ATTACK_2);
    FramesIn(PLAYER_LIGHT_ATTACK_2);
    EXPECT_EQ(State(), PLAYER_LIGHT_ATTACK_3);
    FramesIn(PLAYER_LIGHT_ATTACK_3);
    EXPECT_EQ(State(), PLAYER_IDLE);
    Release();
    Click();
    Release();
    Step(2);
    EXPECT_EQ(State(), PLAYER_IDLE);  // 0.3 s before the next combo
    Step(18);
    Click();
    Step(1);
    EXPECT_EQ(State(), PLAYER_LIGHT_ATTACK_1);
}

TEST_F(CombatTest, AReleasedAttackEndsTheComboAfterOneHit) {
    Click();
    Release();
    Step(1);
    FramesIn(PLAYER_LIGHT_ATTACK_1);
    EXPECT_EQ(State(), PLAYER_IDLE);
}

TEST_F(CombatTest, HeavyAttackChargesWhileHeldAndStrikesOnRelease) {
    InputScriptMouseButton(sf::Mouse::Right, true);
    Step(1);
    ASSERT_EQ(State(), PLAYER_HEAVY_ATTACK_PREPARATION);
    FramesIn(PLAYER_HEAVY_ATTACK_PREPARATION);
    ASSERT_EQ(State(), PLAYER_HEAVY_ATTACK_WAIT);
    Step(60);
    EXPECT_EQ(State(), PLAYER_HEAVY_ATTACK_WAIT);  // held as long as the button is
    InputScriptMouseButton(sf::Mouse::Right, false);
    Step(1);
    ASSERT_EQ(State(), PLAYER_HEAVY_ATTACK_HIT);
    FramesIn(PLAYER_HEAVY_ATTACK_HIT);
    EXPECT_EQ(State(), PLAYER_IDLE);
}

TEST_F(CombatTest, AJumpAttackPlungesOnLanding) {
    Press(BINDING_JUMP);
    Step(10);
    PlayerHeavyPressed();
    Step(1);
    ASSERT_EQ(State(), PLAYER_JUMP_ATTACK_IN_THE_AIR);
    FramesIn(PLAYER_JUMP_ATTACK_IN_THE_AIR);
    EXPECT_EQ(State(), PLAYER_JUMP_ATTACK_HIT);
    EXPECT_FLOAT_EQ(Y(), kFloor);
}

TEST_F(CombatTest, PotionsFillTheCurrentSegment) {
    Player& player = GetPlayer();
    player.potions = 3;
    int expected[][2] = {{39, 40}, {40, 70}, {70, 100}};
    for (auto& step : expected) {
        player.life = step[0];
        PlayerDrinkPotion();
        EXPECT_EQ(player.life, step[1]);
    }
    EXPECT_EQ(player.potions, 0);
    player.life = 20;
    PlayerDrinkPotion();
    EXPECT_EQ(player.life, 20);
    EXPECT_EQ(Save().abilities.potionCount, 1);  // the save keeps its own count
}

TEST_F(CombatTest, LifeRegeneratesToTheTopOfItsSegmentAfterFifteenQuietSeconds) {
    Player& player = GetPlayer();
    player.life = 41;
    Step(60 * 15 - 5);
    EXPECT_EQ(player.life, 41);
    Step(60 * 40);
    EXPECT_EQ(player.life, 70);
}

TEST_F(CombatTest, AHitKnocksTheHeroBackAndTheHeroRecovers) {
    float x = GetPlayerPosition().x;
    HurtPlayer(12, {x + 100, kFloor});
    EXPECT_EQ(GetPlayer().life, 88);
    Step(1);
    EXPECT_EQ(State(), PLAYER_TAKE_DAMAGE);
    Step(20);
    EXPECT_EQ(State(), PLAYER_IDLE);
    EXPECT_LT(GetPlayerPosition().x, x - 50);  // pushed away from the attacker
    HurtPlayer(200, {x, kFloor});
    Step(2);
    EXPECT_EQ(State(), PLAYER_DEAD);
}

TEST_F(CombatTest, AFailedParryWaitsHalfASecondAndAHitParryChainsAtOnce) {
    PlayerParryPressed();
    Step(1);
    ASSERT_EQ(State(), PLAYER_PARRY);
    FramesIn(PLAYER_PARRY);
    EXPECT_EQ(State(), PLAYER_IDLE);
    PlayerParryPressed();
    Step(5);
    EXPECT_EQ(State(), PLAYER_IDLE);  // the failed parry's cooldown
    Step(30);
    PlayerParryPressed();
    Step(1);
    ASSERT_EQ(State(), PLAYER_PARRY);
    GetPlayer().body.parrySucceeded = 1;
    FramesIn(PLAYER_PARRY);
    PlayerParryPressed();
    Step(1);
    EXPECT_EQ(State(), PLAYER_PARRY);
}

TEST_F(CombatTest, OneSwingHurtsEveryTrashItTouchesOnce) {
    AddTrashEnemy({600, kFloor}, 1, 0);
    AddTrashEnemy({620, kFloor}, 1, 0);
    ASSERT_EQ(EnemyCount(ENEMY_TRASH), 2);
    Click();
    Release();
    Fight(40);
    EXPECT_EQ(*GetEnemyLife(0, ENEMY_TRASH), 5);
    EXPECT_EQ(*GetEnemyLife(1, ENEMY_TRASH), 5);
}

TEST_F(CombatTest, EachWeaponUpgradeAddsOneToEveryBlow) {
    WeaponDamageBonus() = 2;
    AddTrashEnemy({600, kFloor}, 1, 0);
    Click();
    Release();
    Fight(40);
    WeaponDamageBonus() = 0;  // it outlives the test otherwise
    EXPECT_EQ(*GetEnemyLife(0, ENEMY_TRASH), 6 - 3);
}

TEST_F(CombatTest, ATrashFacingAwayIgnoresTheHeroUntilHurt) {
    AddTrashEnemy({1200, kFloor}, 1, 0);
    GetEnemySprite(0, ENEMY_TRASH)->setScale(-3, 3);  // faces right, away from the hero
    Fight(30);
    EXPECT_GT(GetEnemyPosition(0, ENEMY_TRASH).x, 1200);  // patrols on, away
    *GetEnemyLife(0, ENEMY_TRASH) = 5;
    float before = GetEnemyPosition(0, ENEMY_TRASH).x;
    Fight(60);
    EXPECT_LT(GetEnemyPosition(0, ENEMY_TRASH).x, before);  // now it comes for the hero
}

TEST_F(CombatTest, APatrollingTrashTurnsAtTheEdgeOfItsArena) {
    CurrentRoom().enemyContainers.clear();
    AddContainer(1, {1000, kFloor - 400, 500, 400});
    SetPlayerPosition({-500, kFloor});  // outside the arena: unnoticed
    AddTrashEnemy({1100, kFloor}, 1, 0);
    float lowest = 2000, highest = 0;
    for (int i = 0; i < 600; i++) {
        Fight(1);
        float x = GetEnemyPosition(0, ENEMY_TRASH).x;
        lowest = std::min(lowest, x);
        highest = std::max(highest, x);
    }
    EXPECT_GT(lowest, 1000);
    EXPECT_LT(highest, 1500);
    EXPECT_GT(highest - lowest, 300);  // it walks the arena back and forth
}

TEST_F(CombatTest, ATrashStrikeCostsTwelveAndGodModeTakesNothingButStillFlashes) {
    AddTrashEnemy({560, kFloor}, 1, 0);
    SetPlayerFacing(true);
    GetPlayerHud().vignetteFlash = 0;
    int frames = 0;
    while (GetPlayer().life == 100 && frames++ < 300) Fight(1);
    EXPECT_EQ(GetPlayer().life, 88);
    EXPECT_EQ(GetPlayerHud().vignetteFlash, 1);

    Step(60);
    GetPlayer().godMode = 1;
    GetPlayerHud().vignetteFlash = 0;
    bool attacked = false, hurt = false, flashed = false;
    for (int i = 0; i < 300; i++) {
        Fight(1);
        attacked |= TrashState(0) == TRASH_ATTACK;
        hurt |= State() == PLAYER_TAKE_DAMAGE;
        flashed |= GetPlayerHud().vignetteFlash != 0;
    }
    EXPECT_TRUE(attacked);
    EXPECT_FALSE(hurt);
    EXPECT_TRUE(flashed);
    EXPECT_EQ(GetPlayer().life, 88);
}

// A blow as the hero steps into a door would kill him there, and the walk through the door
// would carry him on, standing, at no life.
TEST_F(CombatTest, NoBlowLandsWhileTheHeroWalksThroughADoor) {
    AddTrashEnemy({560, kFloor}, 1, 0);
    GetPlayer().life = 1;
    sf::Vector2f target(GetPlayerPosition().x, kFloor - 90);
    for (int i = 0; i < 300 && !IsEnemyStriking(0, ENEMY_TRASH); i++) UpdateEnemies(kDt, target);
    ASSERT_TRUE(IsEnemyStriking(0, ENEMY_TRASH));
    Transition().transitionActive = 1;
    EnemiesHitPlayer();
    Transition().transitionActive = 0;
    EXPECT_EQ(GetPlayer().life, 1);
    EXPECT_NE(State(), PLAYER_DEAD);
    EnemiesHitPlayer();  // out of the door, the same blow lands
    EXPECT_LE(GetPlayer().life, 0);
}

TEST_F(CombatTest, AParriedStrikeTurnsTheHeroSparksAndCostsNothing) {
    AddTrashEnemy({560, kFloor}, 1, 0);
    SetPlayerFacing(false);  // the blow comes from behind
    sf::Vector2f target(GetPlayerPosition().x, kFloor - 90);
    for (int i = 0; i < 300 && !IsEnemyStriking(0, ENEMY_TRASH); i++) UpdateEnemies(kDt, target);
    ASSERT_TRUE(IsEnemyStriking(0, ENEMY_TRASH));
    SetPlayerState(PLAYER_PARRY);
    EnemiesHitPlayer();
    EXPECT_EQ(GetPlayer().life, 100);
    EXPECT_EQ(GetPlayer().body.parrySucceeded, 1);
    EXPECT_TRUE(PlayerFacingRight());
    EXPECT_EQ(GetPlayer().parryEffects.instances.size(), 1u);
    EXPECT_FALSE(IsEnemyStriking(0, ENEMY_TRASH));  // a parried blow cannot land afterwards
}

TEST(LockedDoors, TheKillCountStartsAtTheLockAndOpenGroupsAreSubtracted) {
    Room& room = CurrentRoom();
    room = Room();
    for (int id : {1, 2}) {
        DoorList list;
        list.id = id;
        list.enemyToKill = id == 1 ? 3 : 2;
        Door door;
        door.shape = std::make_shared<sf::RectangleShape>(sf::Vector2f(96, 288));
        door.collisionIndex = int(room.collisions.size());
        room.collisions.push_back({door.shape, COLLISION_SOLID, 0});
        list.doors.push_back(door);
        room.doorLists.push_back(list);
        auto trigger = std::make_shared<sf::RectangleShape>(sf::Vector2f(10, 10));
        trigger->setPosition(float(id) * 1000, 0);
        room.triggers.push_back({trigger, "Locked Door trigger", id, 0});
    }
    CreateDoorSprites(REGION_FOREST);
    UpdateDoors(4, kDt);
    CheckLockedDoorTriggers({995, 0, 10, 10});
    EXPECT_EQ(room.doorLists[0].triggered, 1);
    EXPECT_EQ(room.collisions[0].active, 1);
    UpdateDoors(6, kDt);
    EXPECT_EQ(room.doorLists[0].opened, 0);
    UpdateDoors(7, kDt);
    UpdateDoors(7, kDt);
    EXPECT_EQ(room.doorLists[0].opened, 1);
    EXPECT_EQ(room.collisions[0].active, 0);
    CheckLockedDoorTriggers({995, 0, 10, 10});  // an open group never locks again
    EXPECT_EQ(room.doorLists[0].triggered, 0);
    UpdateDoors(7, kDt);
    CheckLockedDoorTriggers({1995, 0, 10, 10});
    UpdateDoors(7, kDt);
    EXPECT_EQ(room.doorLists[1].kills, 4);
    UpdateDoors(7, kDt);
    EXPECT_EQ(room.doorLists[1].opened, 1);
    FreeDoorSprites();
    room = Room();
}

TEST(LockedDoors, GroupsAreReadFromTheMapLayer) {
    nlohmann::json layer = {
        {"type", "group"},
        {"name", "Door group"},
        {"layers",
         {{{"type", "group"},
           {"name", "arena"},
           {"properties",
            {{{"name", "enemyToKill"}, {"type", "int"}, {"value", 3}},
             {{"name", "id"}, {"type", "int"}, {"value", 1}}}},
           {"layers",
            {{{"type", "objectgroup"},
              {"name", "door"},
              {"objects",
               {{{"id", 1},
                 {"name", ""},
                 {"x", 32},
                 {"y", 64},
                 {"width", 32},
                 {"height", 96},
                 {"properties",
                  {{{"name", "isClosed"}, {"type", "bool"}, {"value", true}}}}}}}}}}}}}};
    nlohmann::json map = {
        {"width", 1}, {"height", 1}, {"tilewidth", 32}, {"tileheight", 32}, {"layers", {layer}}};
    std::string path = testing::TempDir() + "/doors.json";
    std::ofstream(path) << map.dump();
    TiledMap parsed;
    std::string error;
    ASSERT_TRUE(LoadTiledMap(path, parsed, error)) << error;
    std::vector<DoorList> lists;
    BuildDoors(parsed.layers[0], 3.0f, lists);
    ASSERT_EQ(lists.size(), 1u);
    EXPECT_EQ(lists[0].enemyToKill, 3);
    ASSERT_EQ(lists[0].doors.size(), 1u);
    EXPECT_EQ(lists[0].doors[0].closed, 1);
    EXPECT_EQ(lists[0].doors[0].shape->getGlobalBounds(), sf::FloatRect(96, 192, 96, 288));
}

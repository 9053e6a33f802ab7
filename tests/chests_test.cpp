// Chests in the authored rooms and the ability panel they open: the outline, the lid, the item's
// rise and flight into the hero, the panel's fades, and the ability granted and saved.
#include "interactables/chests.h"

#include <gtest/gtest.h>

#include "hud/explanation_panel.h"
#include "player/save.h"
#include "support/game_fixture.h"

namespace {

class ChestTest : public GameRoomTest {
protected:
    void SetUp() override {
        GameRoomTest::SetUp();
        GetPlayer().godMode = 1;  // the room's enemies are not what these tests are about
    }

    // Room 3, the hero standing at the dash's chest.
    void AtRoom3Chest() {
        Enter(3);
        ASSERT_EQ(Chests().size(), 1u);
        chest = CurrentRoom().chestSpawns[0].position;
        StandAt(chest);
    }

    // From the press until the item reaches the hero: the rise, then the flight.
    void OpenAndWaitForItem() {
        TapAction(BINDING_INTERACT);
        ASSERT_EQ(Chests()[0].opened, 1);
        Update(125);
    }

    static std::string Description() {
        const sf::Text* text = ExplanationDescription();
        return text ? std::string(text->getString()) : "";
    }

    sf::Vector2f chest;
};

}  // namespace

TEST_F(ChestTest, TheDashChestOutlinesOpensSendsItsBootsAndGrantsTheDashThroughItsPanel) {
    ASSERT_EQ(Save().abilities.canDash, 0);
    AtRoom3Chest();
    Update(1);
    EXPECT_EQ(Chests()[0].showOutline, 1);
    EXPECT_GT(Chests()[0].chestSprite->getScale().x, 0);  // facing right

    TapAction(BINDING_INTERACT);
    const Chest& opened = Chests()[0];
    ASSERT_EQ(opened.opened, 1);
    ASSERT_TRUE(opened.itemSprite);
    EXPECT_EQ(opened.showOutline, 0);
    // Out of the chest's middle (the frame of the press has moved it up a little already).
    sf::Vector2f start = opened.itemSprite->getPosition();
    EXPECT_NEAR(start.y, chest.y - 0.5f * 87, 8);

    // Risen to a chest and a half above the chest after a second, the lid on its last frame.
    Update(60);
    ASSERT_TRUE(Chests()[0].itemSprite);
    EXPECT_NEAR(Chests()[0].itemSprite->getPosition().y, chest.y - 1.5f * 87, 2);
    EXPECT_EQ(Chests()[0].clips[CHEST_OPENING].currentFrame, 1);
    EXPECT_EQ(Overlays().explanationOpen, 0);

    // The hero walks off meanwhile: the item follows him and lands at his chest.
    SetPlayerPosition(GetPlayerPosition() + sf::Vector2f(-150, 0));
    Update(30);
    ASSERT_TRUE(Chests()[0].itemSprite);
    float x = Chests()[0].itemSprite->getPosition().x;
    EXPECT_LT(x, chest.x - 10);
    Update(35);
    EXPECT_FALSE(Chests()[0].itemSprite);
    EXPECT_EQ(Overlays().explanationOpen, 1);
    EXPECT_EQ(Save().abilities.canDash, 1);
    EXPECT_NE(ReadFile(kSavePath).find("canDash 1\n"), std::string::npos);
    ASSERT_TRUE(ExplanationTitle());
    EXPECT_EQ(std::string(ExplanationTitle()->getString()), "Dash");
}

TEST_F(ChestTest, ThePanelFreezesTheWorldAndClosesOnJumpOnlyAfterItsFadeIn) {
    AtRoom3Chest();
    OpenAndWaitForItem();
    ASSERT_EQ(Overlays().explanationOpen, 1);
    sf::Vector2f hero = GetPlayerPosition();

    // JUMP during the fade-in is kept; the fade-out follows the fade-in.
    Frames(1);
    TapAction(BINDING_JUMP);
    Update(30);
    EXPECT_EQ(Overlays().worldFrozen, 1);
    EXPECT_EQ(Overlays().explanationOpen, 1);
    EXPECT_GT(ExplanationAlpha(), 0);
    EXPECT_LT(ExplanationAlpha(), 255);
    Update(30);
    EXPECT_EQ(Overlays().explanationOpen, 1);
    Update(62);
    EXPECT_EQ(Overlays().explanationOpen, 0);
    EXPECT_EQ(ExplanationAlpha(), 0);
    EXPECT_EQ(GetPlayer().body.state == PLAYER_JUMP, false);
    EXPECT_NEAR(GetPlayerPosition().x, hero.x, 0.01);
}

TEST_F(ChestTest, AnOpenedChestStaysOpenUntilTheRoomReloadsAndThenGivesItsAbilityAgain) {
    AtRoom3Chest();
    OpenAndWaitForItem();
    Update(70);
    TapAction(BINDING_JUMP);
    Update(70);
    ASSERT_EQ(Overlays().explanationOpen, 0);

    TapAction(BINDING_INTERACT);
    EXPECT_FALSE(Chests()[0].itemSprite);
    EXPECT_EQ(Chests()[0].showOutline, 0);

    AtRoom3Chest();
    EXPECT_EQ(Chests()[0].opened, 0);
    OpenAndWaitForItem();
    EXPECT_EQ(Overlays().explanationOpen, 1);
    EXPECT_EQ(Save().abilities.canDash, 1);
}

TEST_F(ChestTest, NothingOpensFromTheAirOrAwayFromTheChest) {
    AtRoom3Chest();
    SetPlayerPosition(chest - sf::Vector2f(0, 80));
    Update(1);
    ASSERT_FALSE(PlayerStanding());
    TapAction(BINDING_INTERACT);
    EXPECT_EQ(Chests()[0].opened, 0);

    StandAt(CurrentRoom().doorSpawns[0].position);
    Update(1);
    EXPECT_EQ(Chests()[0].showOutline, 0);
    TapAction(BINDING_INTERACT);
    EXPECT_EQ(Chests()[0].opened, 0);
}

TEST_F(ChestTest, TheRunChestFacesLeftAndItsPanelNamesTheReboundDashKey) {
    Settings().bindings[BINDING_DASH] = sf::Keyboard::LShift;
    Enter(8);
    ASSERT_EQ(Chests().size(), 1u);
    EXPECT_LT(Chests()[0].chestSprite->getScale().x, 0);
    EXPECT_EQ(Chests()[0].abilityType, ABILITY_RUN);

    ShowAbilityExplanation(ABILITY_RUN);
    EXPECT_EQ(std::string(ExplanationTitle()->getString()), "Run");
    EXPECT_TRUE(Description().ends_with("Maintain : RT / L Shift")) << Description();
    EXPECT_EQ(Save().abilities.canRun, 1);

    Settings().bindings[BINDING_CLOUD] = sf::Keyboard::G;
    ShowAbilityExplanation(ABILITY_CLOUD);
    EXPECT_TRUE(Description().ends_with("Press :  LT / G")) << Description();
    EXPECT_EQ(Save().abilities.CanCreatePlatform, 1);
}

// The blacksmith of the statue hollow (room 4): his hammering and the anvil's ring, his BUY /
// LEAVE menu, and the shop it opens: prices, purchases and their refusals, the save, and the ways
// the shop and the menu close.
#include "interactables/merchant.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <functional>

#include "app/game.h"
#include "app/game_state.h"
#include "app/input.h"
#include "enemies/enemies.h"
#include "interactables/money.h"
#include "interactables/shop.h"
#include "menus/settings_files.h"
#include "player/player.h"
#include "player/player_combat.h"
#include "player/save.h"
#include "support/fixture.h"
#include "world/room.h"
#include "world/room_lifecycle.h"

namespace {

constexpr float kDt = 1.0f / 60.0f;
const char* const kAnvilPath = "Assets/Sounds/SFX/PNJ/PNJ_Hit_Anvil.wav";

std::string Shown(const TextPtr& text) {
    return text ? text->getString().toAnsiString() : std::string("<none>");
}

class MerchantTest : public AppTest {
protected:
    void SetUp() override {
        AppTest::SetUp();
        SetMoney(0, 0);
        WeaponDamageBonus() = 0;
        ClickAt(200, 594);  // PLAY: a new game in room 1
        ASSERT_EQ(GetGameState(), GAME_STATE_GAME);
        GetPlayer().godMode = 1;
        EnterRoom4();
    }
    void TearDown() override {
        AppTest::TearDown();
        SetMoney(0, 0);  // the totals outlive a game
        WeaponDamageBonus() = 0;
    }

    // Room 4 without its creatures: nothing but the hero moves near the forge.
    void EnterRoom4() {
        testing::internal::CaptureStdout();
        CleanupRoom();
        LoadNextTargetRoom(*app.window, 4);
        DestroyAllEnemies();
        testing::internal::GetCapturedStdout();
        ASSERT_TRUE(MerchantPresent());
        smith = CurrentRoom().merchantPosition;
    }

    static void SetMoney(int money, int shown) {
        Money().money = money;
        Money().moneyShown = shown;
    }

    void Update(int frames) {
        for (int i = 0; i < frames; i++) UpdateGame(*app.window, kDt);
    }

    void StandNearSmith(float offset = 0) {
        SetPlayerPosition(smith + sf::Vector2f(offset, -4));
        Update(20);
        ASSERT_TRUE(PlayerStanding());
    }

    std::string PressInteract() {
        int interact = Settings().bindings[BINDING_INTERACT];
        testing::internal::CaptureStdout();
        InputScriptPressKey(sf::Keyboard::Key(interact));
        InputScriptReleaseKey(sf::Keyboard::Key(interact));
        Frames(1);
        return testing::internal::GetCapturedStdout();
    }

    void PressEscape() {
        InputScriptPressKey(sf::Keyboard::Escape);
        Frames(1);
        InputScriptReleaseKey(sf::Keyboard::Escape);
    }

    // Talks to the blacksmith and lets his menu unfold completely.
    void OpenMenu() {
        StandNearSmith();
        PressInteract();
        ASSERT_EQ(Overlays().merchantMenuOpen, 1);
        for (int i = 0; i < 90 && GetMerchantMenu().opening; i++) Frames(1);
        ASSERT_EQ(GetMerchantMenu().opening, 0);
    }

    static sf::Vector2f ToScreen(sf::Vector2f world) {
        const sf::View& view = *GameView();
        sf::Vector2f topLeft = view.getCenter() - view.getSize() / 2.0f;
        return (world - topLeft) * (1920.0f / view.getSize().x);
    }

    void ClickMenuButton(int button) {
        sf::Vector2f screen = ToScreen(GetMerchantMenu().buttons[button].shape->getPosition());
        ASSERT_TRUE(sf::FloatRect(0, 0, 1920, 1080).contains(screen));
        ClickAt(screen.x, screen.y);
    }

    // Opens the shop through the menu's BUY, as a player does.
    void OpenShopByClick() {
        OpenMenu();
        ClickMenuButton(MERCHANT_BUY);
        ASSERT_EQ(Overlays().shopOpen, 1);
    }

    // Clicks a good's BUY on the panel; returns what was logged.
    std::string ClickBuy(int good) {
        sf::Vector2f at = GetShop().items[good].buyButton.shape->getPosition();
        testing::internal::CaptureStdout();
        ClickAt(at.x, at.y);
        return testing::internal::GetCapturedStdout();
    }

    static std::string Price(int good) { return Shown(GetShop().items[good].priceText); }

    static void SaveCount(int potionCount) {
        Abilities abilities = Save().abilities;
        abilities.potionCount = potionCount;
        SaveAbilities(abilities);
    }

    static bool MenuFreed() {
        const WorldMenu& menu = GetMerchantMenu();
        return menu.buttons.empty() && !menu.font && Overlays().merchantMenuOpen == 0;
    }

    sf::Vector2f smith;
};

}  // namespace

TEST_F(MerchantTest, TheBlacksmithStandsOnHisPointAndTalksOnlyToAHeroInHisZone) {
    const Merchant& merchant = GetMerchant();
    EXPECT_EQ(merchant.sprite->getPosition(), smith);
    EXPECT_EQ(merchant.sprite->getOrigin(), sf::Vector2f(61.5f, 129));
    EXPECT_EQ(merchant.sprite->getScale(), sf::Vector2f(3, 3));
    EXPECT_EQ(merchant.sprite->getTextureRect(), sf::IntRect(0, 0, 123, 129));

    const struct {
        const char* name;
        float offset;
        bool inTheAir;
        int consoleOpen;
        bool opens;
    } cases[] = {
        {"at his anvil", 0, false, 0, true},
        {"at the edge of his zone", -150, false, 0, true},
        {"out of his zone", -200, false, 0, false},
        {"jumping at him", 0, true, 0, false},
        {"with the console open", 0, false, 1, false},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        FreeMerchantMenu();
        Overlays() = OverlayFlags();
        StandNearSmith(c.offset);
        if (c.inTheAir) {
            SetPlayerPosition(smith - sf::Vector2f(0, 60));
            Update(1);
            ASSERT_FALSE(PlayerStanding());
        }
        Overlays().consoleOpen = c.consoleOpen;
        std::string log = c.consoleOpen ? "" : PressInteract();
        if (c.consoleOpen) {
            InputScriptPressButton(1);  // the pad's INTERACT still reaches the world
            Frames(1);
        }
        EXPECT_EQ(log.find("OUI !"), std::string::npos);  // the statue is not here
        EXPECT_EQ(Overlays().merchantMenuOpen, c.opens ? 1 : 0);
        if (!c.opens) continue;
        const WorldMenu& menu = GetMerchantMenu();
        EXPECT_EQ(menu.ownerPosition, smith);
        EXPECT_EQ(menu.anchor, smith + sf::Vector2f(-250, -200));
        ASSERT_EQ(menu.buttons.size(), 2u);
        EXPECT_EQ(Shown(menu.buttons[MERCHANT_BUY].text), "BUY");
        EXPECT_EQ(Shown(menu.buttons[MERCHANT_LEAVE].text), "LEAVE");
        EXPECT_EQ(menu.selected, MERCHANT_BUY);
        EXPECT_EQ(GetPlayer().body.controllable, 0);
    }
}

TEST_F(MerchantTest, TheMenuUnfoldsAndBuyOpensTheShopPanel) {
    OpenMenu();
    const WorldMenu& menu = GetMerchantMenu();
    Frames(2);
    sf::Vector2f leave = menu.buttons[MERCHANT_LEAVE].shape->getPosition();
    EXPECT_NEAR(leave.x, menu.anchor.x, 0.01f);
    EXPECT_NEAR(leave.y, menu.anchor.y + 65, 0.01f);
    EXPECT_EQ(menu.buttons[MERCHANT_BUY].shape->getScale(), sf::Vector2f(1.2f, 1.2f));
    EXPECT_EQ(menu.buttons[MERCHANT_LEAVE].shape->getScale(), sf::Vector2f(1, 1));

    app.window->clear();
    DrawGame(*app.window);
    sf::Texture before;
    ASSERT_TRUE(before.create(1920, 1080));
    before.update(*app.window);

    ClickMenuButton(MERCHANT_BUY);
    ASSERT_EQ(Overlays().shopOpen, 1);
    EXPECT_EQ(Overlays().merchantMenuOpen, 1);
    Frames(1);
    EXPECT_EQ(GetPlayer().body.controllable, 0);
    const Shop& shop = GetShop();
    EXPECT_EQ(shop.background->getGlobalBounds(), sf::FloatRect(240, 135, 1440, 810));
    EXPECT_EQ(Shown(shop.itemsHeading), "ITEMS : ");
    EXPECT_EQ(Shown(shop.skillsHeading), "SKILLS : ");
    EXPECT_EQ(shop.itemsHeading->getPosition(), sf::Vector2f(340, 235));
    EXPECT_EQ(shop.skillsHeading->getPosition(), sf::Vector2f(1060, 235));
    EXPECT_EQ(Shown(shop.items[SHOP_POTION].nameText), "POTION");
    EXPECT_EQ(Shown(shop.items[SHOP_WEAPON].nameText), "WEAPON DAMAGE +");
    EXPECT_EQ(Price(SHOP_POTION), "750");  // a new game keeps one potion in the save
    EXPECT_EQ(Price(SHOP_WEAPON), "500");
    // Each icon's left middle at its place; its price right of it and its BUY under the price.
    const sf::Vector2f places[SHOP_GOOD_COUNT] = {{340, 355}, {1060, 355}};
    for (int good = 0; good < SHOP_GOOD_COUNT; good++) {
        const ShopItem& item = shop.items[good];
        sf::FloatRect icon = item.icon->getGlobalBounds();
        EXPECT_FLOAT_EQ(icon.left, places[good].x);
        EXPECT_FLOAT_EQ(icon.top + icon.height / 2, places[good].y);
        EXPECT_EQ(item.buyButton.shape->getPosition(),
                  sf::Vector2f(icon.left + icon.width + 250, icon.top + icon.height / 2 + 30));
        EXPECT_EQ(item.priceText->getPosition(),
                  sf::Vector2f(icon.left + icon.width + 25, icon.top + icon.height / 2));
    }

    // Drawn over the world and the HUD: the panel darkens the screen where it lies.
    app.window->clear();
    DrawGame(*app.window);
    sf::Texture after;
    ASSERT_TRUE(after.create(1920, 1080));
    after.update(*app.window);
    sf::Image open = after.copyToImage(), closed = before.copyToImage();
    std::filesystem::create_directories(std::string(OV_SOURCE_DIR) + "/tests/out");
    open.saveToFile(std::string(OV_SOURCE_DIR) + "/tests/out/shop_panel.png");
    auto sum = [](sf::Color c) { return int(c.r) + int(c.g) + int(c.b); };
    sf::Color inside = open.getPixel(250, 900), under = closed.getPixel(250, 900);
    EXPECT_LT(sum(inside), sum(under) / 2 + 2);
}

// The pointer may rest on BUY since before the menu unfolded, with no move to tell the menu.
TEST_F(MerchantTest, AClickOnBuyOpensTheShopThoughThePointerNeverMoved) {
    OpenMenu();
    Frames(2);
    sf::Vector2f at = ToScreen(GetMerchantMenu().buttons[MERCHANT_BUY].shape->getPosition());
    sf::Event press;
    press.type = sf::Event::MouseButtonPressed;
    press.mouseButton = {sf::Mouse::Left, int(at.x), int(at.y)};
    InputScriptEvent(press);
    Frames(1);
    EXPECT_EQ(Overlays().shopOpen, 1);
}

TEST_F(MerchantTest, EscapeClosesTheShopThenTheMenu) {
    OpenShopByClick();
    PressEscape();
    EXPECT_EQ(Overlays().shopOpen, 0);
    EXPECT_EQ(GetShop().background, nullptr);
    EXPECT_EQ(Overlays().merchantMenuOpen, 1);  // back to BUY or LEAVE
    EXPECT_EQ(Overlays().pauseOpen, 0);
    PressEscape();
    Update(45);
    EXPECT_TRUE(MenuFreed());
    EXPECT_EQ(Overlays().pauseOpen, 0);
    EXPECT_EQ(GetPlayer().body.controllable, 1);
}

TEST_F(MerchantTest, ThePadPicksBuyOrLeave) {
    OpenMenu();
    InputScriptPressButton(0);
    Frames(1);
    EXPECT_EQ(Overlays().shopOpen, 1);
    // Under the shop the pad no longer reaches the menu.
    InputScriptMoveAxis(sf::Joystick::PovY, -100);
    InputScriptMoveAxis(sf::Joystick::PovY, 0);
    Frames(1);
    EXPECT_EQ(GetMerchantMenu().selected, MERCHANT_BUY);
    PressEscape();
    InputScriptMoveAxis(sf::Joystick::PovY, -100);
    InputScriptMoveAxis(sf::Joystick::PovY, 0);
    Frames(1);
    EXPECT_EQ(GetMerchantMenu().selected, MERCHANT_LEAVE);
    InputScriptPressButton(0);
    Frames(1);
    EXPECT_EQ(Overlays().shopOpen, 0);
    Update(45);
    EXPECT_TRUE(MenuFreed());
}

TEST_F(MerchantTest, ThePotionCostsByThePotionsSavedAndTriplesWithEachPurchase) {
    const struct {
        int saved;
        int price;  // 0: sold out
        const char* shown;
        const char* afterPurchase;
    } cases[] = {
        {0, 500, "500", "1500"},
        {1, 750, "750", "2250"},
        {2, 1000, "1000", "SOLD OUT"},  // that purchase was the third potion
        {3, 0, "SOLD OUT", "SOLD OUT"},
    };
    OpenMenu();
    for (const auto& c : cases) {
        SCOPED_TRACE(c.saved);
        SaveCount(c.saved);
        SetMoney(100000, 100000);
        GetPlayer().potions = 0;
        OpenShop();
        const ShopItem& potion = GetShop().items[SHOP_POTION];
        EXPECT_EQ(Price(SHOP_POTION), c.shown);
        bool soldOut = c.price == 0;
        EXPECT_EQ(potion.icon->getColor(), soldOut ? sf::Color(100, 100, 100) : sf::Color::White);
        std::string log = ClickBuy(SHOP_POTION);
        EXPECT_EQ(log, "potion +\n");
        EXPECT_EQ(Price(SHOP_POTION), c.afterPurchase);
        int bought = soldOut ? 0 : 1;
        EXPECT_EQ(Save().abilities.potionCount, c.saved + bought);
        EXPECT_EQ(Money().money, 100000 - c.price);
        EXPECT_EQ(GetPlayer().potions, 0);  // carried from the next game on
        std::string file = ReadFile(kSavePath);
        EXPECT_TRUE(file.ends_with("potionCount " + std::to_string(c.saved + bought) + "\n"))
            << file;
        EXPECT_NE(file.find("CHECKPOINT DATA :\ncheckpointID 0\nroomID 1\n"), std::string::npos);
    }
    // A tripled price lasts only while the panel is open.
    SaveCount(0);
    OpenShop();
    ClickBuy(SHOP_POTION);
    ASSERT_EQ(Price(SHOP_POTION), "1500");
    PressEscape();
    InputScriptPressButton(0);  // BUY again
    Frames(1);
    EXPECT_EQ(Price(SHOP_POTION), "750");
}

TEST_F(MerchantTest, APurchaseIsRefusedUnlessTheCounterShowsThePriceAndFewerThanThreeAreCarried) {
    const struct {
        const char* name;
        int good;
        int money, shown, carried;
        bool bought;
    } cases[] = {
        {"potion, just enough", SHOP_POTION, 500, 500, 1, true},
        {"potion, one short", SHOP_POTION, 499, 499, 1, false},
        {"potion, counter still climbing", SHOP_POTION, 900, 480, 1, false},
        {"potion, three carried", SHOP_POTION, 5000, 5000, 3, false},
        {"potion, two carried", SHOP_POTION, 5000, 5000, 2, true},
        {"weapon, just enough", SHOP_WEAPON, 500, 500, 1, true},
        {"weapon, counter still climbing", SHOP_WEAPON, 2000, 499, 1, false},
    };
    OpenShopByClick();
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        SaveCount(0);
        WeaponDamageBonus() = 0;
        OpenShop();
        SetMoney(c.money, c.shown);
        GetPlayer().potions = c.carried;
        std::string log = ClickBuy(c.good);
        EXPECT_EQ(log, c.good == SHOP_POTION ? "potion +\n" : "attack +\n");
        int paid = c.bought ? 500 : 0;
        EXPECT_EQ(Money().money, c.money - paid);
        if (c.money == c.shown) {  // else the counter has climbed on since
            EXPECT_EQ(Money().moneyShown, c.shown - paid);
            EXPECT_EQ(MoneyAmountText()->getString().toAnsiString(),
                      std::to_string(c.shown - paid));
        }
        bool potion = c.good == SHOP_POTION;
        EXPECT_EQ(Save().abilities.potionCount, potion && c.bought ? 1 : 0);
        EXPECT_EQ(WeaponDamageBonus(), !potion && c.bought ? 1 : 0);
        EXPECT_EQ(Price(c.good), potion && c.bought ? "1500" : "500");
    }
    // Once the counter has caught up, the same click buys.
    SaveCount(0);
    OpenShop();
    SetMoney(900, 480);
    GetPlayer().potions = 1;
    ClickBuy(SHOP_POTION);
    EXPECT_EQ(Money().money, 900);
    Update(150);  // the counter climbs one step a frame
    ASSERT_EQ(Money().moneyShown, 900);
    ClickBuy(SHOP_POTION);
    EXPECT_EQ(Money().money, 400);
    EXPECT_EQ(Save().abilities.potionCount, 1);
}

TEST_F(MerchantTest, WalkingOffMoreThan150PxClosesTheShopAndTheMenu) {
    const struct {
        const char* name;
        float offset;
        bool closes;
    } cases[] = {
        {"151 px right", 151, true},
        {"151 px left", -151, true},
        {"150 px right", 150, false},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        FreeMerchantMenu();
        Overlays() = OverlayFlags();
        OpenShopByClick();
        SetPlayerPosition(smith + sf::Vector2f(c.offset, -4));  // thrown there by a blow
        Update(1);
        EXPECT_EQ(Overlays().shopOpen, c.closes ? 0 : 1);
        Update(45);
        EXPECT_EQ(MenuFreed(), c.closes);
        EXPECT_EQ(GetPlayer().body.controllable, c.closes ? 1 : 0);
    }
}

TEST_F(MerchantTest, LeavingTheRoomTakesTheBlacksmithHisMenuAndTheShop) {
    OpenShopByClick();
    CleanupRoom();
    EXPECT_FALSE(MerchantPresent());
    EXPECT_EQ(Overlays().shopOpen, 0);
    EXPECT_TRUE(MenuFreed());
    LoadNextTargetRoom(*app.window, 2);
    EXPECT_FALSE(MerchantPresent());
    Frames(2);
}

TEST_F(MerchantTest, TheAnvilRingsOnceOnEveryHammerBlow) {
    // Without its sample every ring is a voice that ends at once, so each ring shows in the log.
    std::filesystem::remove(kAnvilPath);
    EnterRoom4();
    for (float dt : {kDt, 0.01f}) {
        SCOPED_TRACE(dt);
        std::vector<int> ringFrames;
        int updates = int(3 * 1.2f / dt);  // three turns of the twelve frames at 10 per second
        for (int i = 0; i < updates; i++) {
            testing::internal::CaptureStdout();
            UpdateMerchant(dt);
            std::string log = testing::internal::GetCapturedStdout();
            if (log.find("type : ") != std::string::npos) {
                ringFrames.push_back(GetMerchant().sprite->getTextureRect().left / 123);
            }
        }
        EXPECT_EQ(ringFrames, std::vector<int>({5, 5, 5}));
    }
}

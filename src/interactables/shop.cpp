#include "interactables/shop.h"

#include <algorithm>
#include <cmath>

#include "app/game.h"
#include "common/log.h"
#include "common/text.h"
#include "interactables/merchant.h"
#include "interactables/money.h"
#include "player/player.h"
#include "player/player_combat.h"
#include "player/save.h"

namespace {

const char* const kFontPath = "Assets/Fonts/alagard.ttf";
const char* const kButtonTexturePath = "Assets/Sprites/WorldHUD/button.png";
const char* const kPotionIconPath = "Assets/Sprites/Shop/Potion.png";
const char* const kWeaponIconPath = "Assets/Sprites/Shop/AttackUp.png";
const char* const kSoldOut = "SOLD OUT";

const sf::FloatRect kPanel(240, 135, 1440, 810);
const sf::Color kPanelColor(0, 0, 0, 200);
const sf::Color kGreyed(100, 100, 100);
const sf::Color kBareButton(96, 84, 72);
const sf::Vector2f kBuySize(144, 43.2f);
const float kLeaveDistance = 150;
// The potion's price by the potions already kept in the save; the fourth is not sold.
const int kPotionPrices[] = {500, 750, 1000};
const int kPotionPriceGrowth = 3;
const int kAttackPrice = 500;

Shop shop;

struct GoodLook {
    const char* icon;
    const char* name;
    sf::Vector2f place;  // the icon's left middle
};

const GoodLook kGoods[SHOP_GOOD_COUNT] = {
    {kPotionIconPath, "POTION", {kPanel.left + 100, kPanel.top + 220}},
    {kWeaponIconPath, "WEAPON DAMAGE +", {kPanel.left + kPanel.width / 2 + 100, kPanel.top + 220}},
};

void PricePotion() {
    int count = Save().abilities.potionCount;
    shop.potionSoldOut = count >= kMaxPotionsCarried ? 1 : 0;
    if (count >= 0 && count < kMaxPotionsCarried) shop.potionPrice = kPotionPrices[count];
    if (shop.potionSoldOut) shop.potionPrice = 0;
}

void ShowPrice(ShopItem& item, int price, bool soldOut) {
    if (!item.priceText) return;
    if (soldOut) {
        item.priceText->setString(kSoldOut);
    } else {
        SetTextNumber(*item.priceText, "%d", price);
    }
}

void ShowPotionStock() {
    ShopItem& potion = shop.items[SHOP_POTION];
    ShowPrice(potion, shop.potionPrice, shop.potionSoldOut);
    if (potion.icon) potion.icon->setColor(shop.potionSoldOut ? kGreyed : sf::Color::White);
}

void BuildHeadings() {
    const sf::Font* font = shop.font.get();
    sf::Vector2f items(kPanel.left + 100, kPanel.top + 100);
    sf::Vector2f skills(kPanel.left + kPanel.width / 2 + 100, kPanel.top + 100);
    CreateText(shop.itemsHeading, font, "ITEMS : ", items, 63, {0, 0.8f}, sf::Color::White);
    CreateText(shop.skillsHeading, font, "SKILLS : ", skills, 63, {0, 0.85f}, sf::Color::White);
}

// The icon at its place, its name and price to its right, its BUY button under the price.
void BuildItem(ShopItem& item, const GoodLook& look, int price) {
    item.iconTexture = LoadTexture(look.icon);
    CreateSprite(item.icon, item.iconTexture.get(), look.place, {0, 0.5f}, {1.75f, 1.75f});
    sf::FloatRect icon = item.icon->getGlobalBounds();
    float right = icon.left + icon.width;
    const sf::Font* font = shop.font.get();
    CreateText(item.nameText, font, look.name, {right + 25, icon.top}, 48, {0, 0},
               sf::Color::White);
    CreateText(item.priceText, font, std::to_string(price),
               {right + 25, icon.top + icon.height / 2}, 30, {0, 0}, sf::Color::White);
    sf::Color fill = shop.buttonTexture ? sf::Color::White : kBareButton;
    CreateButton(item.buyButton, kBuySize, font, "BUY", 30, sf::Color::White, fill,
                 {right + 250, icon.top + icon.height / 2 + 30});
    if (shop.buttonTexture) item.buyButton.shape->setTexture(shop.buttonTexture.get());
    item.buyHovered = 0;
}

void FreeItem(ShopItem& item) {
    FreeButton(item.buyButton);
    item.nameText.reset();
    item.priceText.reset();
    item.icon.reset();
    item.iconTexture.reset();
    item.buyHovered = 0;
}

// Both totals go down at once; the counter shows what is left.
void Spend(int price) {
    MoneyState& money = Money();
    money.money -= price;
    money.moneyShown = std::max(0, money.moneyShown - price);
    SetMoneyText(money.moneyShown);
}

bool Affordable(int price) {
    return price <= Money().moneyShown;
}

void BuyPotion() {
    Log("potion +\n");
    if (shop.potionSoldOut || GetPlayer().potions >= kMaxPotionsCarried) return;
    if (!Affordable(shop.potionPrice)) return;
    // One more potion kept in the save: the hero carries it from the next game on.
    Abilities abilities = Save().abilities;
    abilities.potionCount++;
    SaveAbilities(abilities);
    Spend(shop.potionPrice);
    shop.potionPrice *= kPotionPriceGrowth;
    if (abilities.potionCount >= kMaxPotionsCarried) PricePotion();
    ShowPotionStock();
}

void BuyWeaponUpgrade() {
    Log("attack +\n");
    if (!Affordable(shop.attackPrice)) return;
    Spend(shop.attackPrice);
    WeaponDamageBonus() += kWeaponUpgradeDamage;
    ShowPrice(shop.items[SHOP_WEAPON], shop.attackPrice, false);
}

bool Built() {
    return shop.background != nullptr;
}

}  // namespace

const Shop& GetShop() {
    return shop;
}

void OpenShop() {
    CloseShop();
    PricePotion();
    shop.attackPrice = kAttackPrice;
    shop.background =
        std::make_unique<sf::RectangleShape>(sf::Vector2f(kPanel.width, kPanel.height));
    shop.background->setOrigin(kPanel.width / 2, kPanel.height / 2);
    shop.background->setFillColor(kPanelColor);
    shop.background->setPosition(kPanel.left + kPanel.width / 2, kPanel.top + kPanel.height / 2);
    shop.font = LoadFont(kFontPath);
    shop.buttonTexture = LoadTexture(kButtonTexturePath);
    BuildHeadings();
    BuildItem(shop.items[SHOP_POTION], kGoods[SHOP_POTION], shop.potionPrice);
    BuildItem(shop.items[SHOP_WEAPON], kGoods[SHOP_WEAPON], shop.attackPrice);
    ShowPotionStock();
    Overlays().shopOpen = 1;
}

void CloseShop() {
    // The texts go before the font they use.
    for (ShopItem& item : shop.items) FreeItem(item);
    shop.itemsHeading.reset();
    shop.skillsHeading.reset();
    shop.background.reset();
    shop.buttonTexture.reset();
    shop.font.reset();
    Overlays().shopOpen = 0;
}

void UpdateShop(float heroCenterX) {
    // Without a blacksmith there is nothing to walk away from (his leaving closes the shop).
    if (!Overlays().shopOpen || !MerchantPresent()) return;
    if (std::fabs(MerchantPosition().x - heroCenterX) > kLeaveDistance) CloseShop();
}

void HoverShop(sf::Vector2f screenPointer) {
    if (!Built()) return;
    for (ShopItem& item : shop.items) {
        item.buyHovered = UpdateButtonHover(screenPointer, item.buyButton);
    }
}

void PressShop() {
    if (!Overlays().shopOpen || !Built()) return;
    if (shop.items[SHOP_POTION].buyHovered) BuyPotion();
    if (shop.items[SHOP_WEAPON].buyHovered) BuyWeaponUpgrade();
}

void DrawShop(sf::RenderTarget& target) {
    if (!Built()) return;
    target.draw(*shop.background);
    target.draw(*shop.itemsHeading);
    target.draw(*shop.skillsHeading);
    for (const ShopItem& item : shop.items) {
        if (item.icon->getTexture()) target.draw(*item.icon);
        target.draw(*item.nameText);
        target.draw(*item.priceText);
        DrawButton(target, item.buyButton);
    }
}

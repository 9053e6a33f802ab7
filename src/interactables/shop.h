// The blacksmith's shop: a dark panel over the screen with two goods, a potion (one more potion
// kept in the save, dearer with every potion already owned) and a weapon upgrade (a harder blow
// for the rest of the run), each with its price and a BUY button. Goods are paid from the money
// the counter shows; a purchase is refused while the counter is still below the price.
//
// The panel is laid out on a 1920 x 1080 screen and drawn straight onto the window through a
// screen view, after the HUD; it is pointed at in those screen coordinates.
#pragma once

#include <SFML/Graphics.hpp>
#include <array>
#include <memory>

#include "common/drawables.h"
#include "common/ui.h"

enum ShopGood { SHOP_POTION = 0, SHOP_WEAPON = 1, SHOP_GOOD_COUNT = 2 };

struct ShopItem {
    TexturePtr iconTexture;
    SpritePtr icon;
    TextPtr nameText;
    TextPtr priceText;
    Button buyButton;
    int buyHovered = 0;
};

struct Shop {
    std::unique_ptr<sf::RectangleShape> background;
    FontPtr font;
    TexturePtr buttonTexture;
    TextPtr itemsHeading;
    TextPtr skillsHeading;
    std::array<ShopItem, SHOP_GOOD_COUNT> items;
    // Prices outlive the panel: a saved count the price table does not know keeps the last one.
    int potionPrice = 0;
    int attackPrice = 500;
    int potionSoldOut = 0;  // three potions kept in the save: the blacksmith has no more
};

constexpr int kMaxPotionsCarried = 3;
constexpr int kWeaponUpgradeDamage = 1;

const Shop& GetShop();

// BUY in the blacksmith's menu: prices from the potions kept in the save, the panel built, and
// the shop marked open. Opening it again rebuilds it.
void OpenShop();
// Escape, distance, the blacksmith gone: the panel's objects are freed and the shop marked
// closed. Safe to call when it is not open.
void CloseShop();
// Every world update while open: the shop closes once the hero's body centre (0 while dead) is
// more than 150 px along x from the blacksmith.
void UpdateShop(float heroCenterX);

// The pointer in screen coordinates: hovering shades a BUY button.
void HoverShop(sf::Vector2f screenPointer);
// Left click: the purchase of the good whose BUY is hovered. Each attempt logs "potion +" or
// "attack +", bought or refused.
void PressShop();

// Onto a target whose view is the 1920 x 1080 screen.
void DrawShop(sf::RenderTarget& target);

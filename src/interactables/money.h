// Money: the totals, the coins that burst out of a fallen enemy and fly into the hero (they are
// decoration, the money is credited at once), and the HUD counter that climbs towards the total
// with its "+ N" popup. The totals last as long as the program runs: a new game keeps them.
#pragma once

#include <SFML/Graphics.hpp>
#include <vector>

#include "common/drawables.h"
#include "common/motion.h"

struct MoneyState {
    int money = 0;       // the real total
    int moneyShown = 0;  // what the counter shows; it moves towards money
    float countTimer = 0;
    float countStep = 0.01f;
    float popupTimer = 0;
    float popupDuration = 2.0f;
    int smallCoinValue = 10;
    int bigCoinValue = 50;
};

enum CoinType { COIN_SMALL = 0, COIN_BIG = 1 };

struct Coin {
    SpritePtr sprite;
    int coinType = COIN_SMALL;
    sf::Vector2f scatterTarget;
    Tween scatter;  // 0.7 s, cubic out
    Tween collect;  // 0.7 s, cubic in, towards the hero
};

MoneyState& Money();
const std::vector<Coin>& Coins();

// Game load: the coin pictures, no coins, the counter's pace and the popup's length. The totals
// are left as they are.
void InitMoney();
// Game cleanup: the coins in flight and their pictures. The totals are kept.
void DestroyMoney();

// An enemy fell to the hero: the amount is credited and shown as "+ amount".
void AddKillReward(int amount);
// One coin bursting out at a point (the bottom centre of its picture).
void SpawnCoin(sf::Vector2f position, int coinType);
// Every game update, before the hit exchanges: coins scatter then home in on `target` (the
// hero's chest), the counter climbs or snaps down, the popup's time runs.
void UpdateMoney(float dt, sf::Vector2f target);
// The coins, in the world, in the order they were spawned.
void DrawCoins(sf::RenderTarget& target);

// The counter on the HUD: a coin icon, the amount and the popup of the last gain. Created, drawn
// and destroyed by the player HUD; `brightness` (0 to 1) darkens it under a fade.
void CreateMoneyCounter();
void DrawMoneyCounter(sf::RenderTarget& target, float brightness);
void DestroyMoneyCounter();
// "%d" of the value, centred on its position.
void SetMoneyText(int value);
// "+ %d" of the amount, centred, shown for popupDuration from now.
void ShowMoneyPopup(int amount);
bool MoneyPopupShowing();
// Null while the counter does not exist.
const sf::Text* MoneyAmountText();
const sf::Text* MoneyPopupText();

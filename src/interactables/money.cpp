#include "interactables/money.h"

#include <algorithm>
#include <cstdlib>

#include "common/ease.h"
#include "common/text.h"

namespace {

constexpr float kCoinFlight = 0.7f;  // each of the two legs of a coin's flight

const char* const kCoinTextures[2] = {"Assets/Sprites/Objects/small piece.png",
                                      "Assets/Sprites/Objects/big piece.png"};

struct MoneyCounter {
    FontPtr font;
    TextPtr amount;
    TextPtr popup;
    TexturePtr iconTexture;
    SpritePtr icon;
};

MoneyState state;
std::vector<Coin> coins;
TexturePtr coinTextures[2];
MoneyCounter counter;

void CenterOrigin(sf::Text& text) {
    text.setOrigin(OriginFromFactor(text.getLocalBounds(), {0.5f, 0.5f}));
}

// Scatters, then homes in on the target; returns false once the coin has arrived and must go.
bool FlyCoin(Coin& coin, float dt, sf::Vector2f target) {
    if (!TweenDone(coin.scatter)) {
        TweenPosition(*coin.sprite, coin.scatterTarget, kCoinFlight, EASE_CUBIC_OUT, dt,
                      coin.scatter);
        return true;
    }
    if (TweenDone(coin.collect)) return false;
    TweenPosition(*coin.sprite, target, kCoinFlight, EASE_CUBIC_IN, dt, coin.collect);
    return true;
}

void UpdateCounter(float dt) {
    if (state.moneyShown < state.money) {
        state.countTimer = std::min(state.countTimer + dt, state.countStep);
        if (state.countTimer >= state.countStep) {
            int gap = state.money - state.moneyShown;
            state.moneyShown += gap < 101 ? 1 : gap < 1001 ? 10 : 100;
            state.countTimer = 0;
        }
    } else if (state.moneyShown > state.money) {
        state.moneyShown = state.money;
    }
}

}  // namespace

MoneyState& Money() {
    return state;
}

const std::vector<Coin>& Coins() {
    return coins;
}

void InitMoney() {
    for (int type = COIN_SMALL; type <= COIN_BIG; type++) {
        coinTextures[type] = LoadTexture(kCoinTextures[type]);
    }
    coins.clear();
    state.smallCoinValue = 10;
    state.bigCoinValue = 50;
    state.countTimer = 0;
    state.countStep = 0.01f;
    state.popupTimer = 0;
    state.popupDuration = 2.0f;
}

void DestroyMoney() {
    coins.clear();
    for (TexturePtr& texture : coinTextures) texture.reset();
}

void AddKillReward(int amount) {
    state.money += amount;
    ShowMoneyPopup(amount);
}

void SpawnCoin(sf::Vector2f position, int coinType) {
    Coin coin;
    coin.coinType = coinType == COIN_BIG ? COIN_BIG : COIN_SMALL;
    CreateSprite(coin.sprite, coinTextures[coin.coinType].get(), position, {0.5f, 1.0f}, {3, 3});
    int r1 = std::rand() % 401;
    int r2 = std::rand() % 201;
    coin.scatterTarget = {position.x + float(r1 - 200), position.y + float(r2 - 100)};
    coins.push_back(std::move(coin));
}

void UpdateMoney(float dt, sf::Vector2f target) {
    for (size_t i = 0; i < coins.size();) {
        if (FlyCoin(coins[i], dt, target)) {
            i++;
        } else {
            coins.erase(coins.begin() + long(i));
        }
    }
    UpdateCounter(dt);
    SetMoneyText(state.moneyShown);
    if (state.popupTimer < state.popupDuration) state.popupTimer += dt;
}

void DrawCoins(sf::RenderTarget& target) {
    for (const Coin& coin : coins) target.draw(*coin.sprite);
}

void CreateMoneyCounter() {
    DestroyMoneyCounter();
    counter.font = LoadFont("Assets/Fonts/alagard.ttf");
    CreateText(counter.amount, counter.font.get(), "0", {1820, 31}, 72, {1, 0.5f},
               sf::Color::White);
    CreateText(counter.popup, counter.font.get(), "", {1790, 101}, 60, {1, 0.5f}, sf::Color::White);
    counter.iconTexture = LoadTexture("Assets/Sprites/HUD/Score/hud piece.png");
    CreateSprite(counter.icon, counter.iconTexture.get(), {1800, 55}, {0.5f, 0.5f}, {3, 3});
}

void DrawMoneyCounter(sf::RenderTarget& target, float brightness) {
    if (!counter.icon) return;
    DrawDarkened(target, *counter.icon, brightness);
    DrawDarkened(target, *counter.amount, brightness);
    if (MoneyPopupShowing()) DrawDarkened(target, *counter.popup, brightness);
}

void DestroyMoneyCounter() {
    // The texts go before the font they use.
    counter.amount.reset();
    counter.popup.reset();
    counter.icon.reset();
    counter = MoneyCounter();
}

void SetMoneyText(int value) {
    if (!counter.amount) return;
    SetTextNumber(*counter.amount, "%d", value);
    CenterOrigin(*counter.amount);
}

void ShowMoneyPopup(int amount) {
    state.popupTimer = 0;
    if (!counter.popup) return;
    SetTextNumber(*counter.popup, "+ %d", amount);
    CenterOrigin(*counter.popup);
}

bool MoneyPopupShowing() {
    return state.popupTimer < state.popupDuration;
}

const sf::Text* MoneyAmountText() {
    return counter.amount.get();
}

const sf::Text* MoneyPopupText() {
    return counter.popup.get();
}

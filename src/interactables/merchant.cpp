#include "interactables/merchant.h"

#include "app/game.h"
#include "interactables/shop.h"
#include "player/player.h"
#include "world/room.h"

namespace {

const char* const kSheetPath = "Assets/Sprites/Merchant/blackSmith.png";
const char* const kAnvilPath = "Assets/Sounds/SFX/PNJ/PNJ_Hit_Anvil.wav";
const sf::Vector2i kFrameSize(123, 129);
const unsigned kFrameCount = 12;
const unsigned kFrameRate = 10;
const int kStrikeFrame = 5;

const char* const kLabels[MERCHANT_BUTTON_COUNT] = {"BUY", "LEAVE"};
const sf::Vector2f kAnchorOffset(-250, -200);
const float kLeaveDistance = 150;

Merchant merchant;
bool present = false;
WorldMenu menu;

void RunAction(int button) {
    if (button == MERCHANT_BUY) OpenShop();
    if (button == MERCHANT_LEAVE) CloseMerchantMenu();
}

// The shop panel covers the screen: the buttons under it in the world are out of reach.
bool MenuReachable() {
    return Overlays().merchantMenuOpen && !Overlays().shopOpen;
}

}  // namespace

void CreateMerchant() {
    DestroyMerchant();
    const Room& room = CurrentRoom();
    if (!room.hasMerchant) return;
    merchant.texture = LoadTexture(kSheetPath);
    sf::IntRect frame({0, 0}, kFrameSize);
    CreateSprite(merchant.sprite, merchant.texture.get(), room.merchantPosition, frame,
                 {0.5f, 1.0f}, {3, 3});
    Animation& clip = merchant.clip;
    clip = Animation();
    clip.sprite = merchant.sprite.get();
    clip.sheetSize = SheetSize(merchant.sprite.get());
    clip.frameCount = kFrameCount;
    clip.frameRate = kFrameRate;
    clip.frameRect = frame;
    clip.loop = 1;
    LoadSoundArray(merchant.anvilSound, kAnvilPath, 100, 0, SOUND_EFFECTS, 1);
    merchant.anvilPlayed = 0;
    present = true;
}

void DestroyMerchant() {
    FreeMerchantMenu();
    CloseShop();
    FreeSoundArray(merchant.anvilSound);
    merchant.sprite.reset();
    merchant.texture.reset();
    merchant = Merchant();
    present = false;
}

bool MerchantPresent() {
    return present;
}

const Merchant& GetMerchant() {
    return merchant;
}

sf::Vector2f MerchantPosition() {
    return present ? merchant.sprite->getPosition() : sf::Vector2f();
}

void UpdateMerchant(float dt) {
    if (!present) return;
    UpdateAnimation(merchant.clip, dt);
    // One ring per blow, however many updates the striking frame lasts.
    if (merchant.clip.currentFrame == kStrikeFrame && !merchant.anvilPlayed) {
        CreateSoundArray(merchant.anvilSound, 1);
        merchant.anvilPlayed = 1;
    }
    if (merchant.clip.currentFrame != kStrikeFrame) merchant.anvilPlayed = 0;
    UpdateSoundArray(merchant.anvilSound, MerchantPosition());
}

void DrawMerchant(sf::RenderTarget& target) {
    if (present && merchant.sprite->getTexture()) target.draw(*merchant.sprite);
}

void OpenMerchantMenu() {
    const OverlayFlags& flags = Overlays();
    if (!present || flags.merchantMenuOpen || flags.consoleOpen) return;
    const Room& room = CurrentRoom();
    if (!room.merchantZone) return;
    if (!room.merchantZone->getGlobalBounds().intersects(PlayerBodyBounds())) return;
    OpenWorldMenu(menu, kLabels, MerchantPosition(), kAnchorOffset, kLeaveDistance);
    menu.selected = MERCHANT_BUY;
    Overlays().merchantMenuOpen = 1;
    GetPlayer().body.controllable = 0;
}

void UpdateMerchantMenu(float playerX, float dt) {
    if (!Overlays().merchantMenuOpen) return;
    if (!UpdateWorldMenu(menu, playerX, dt)) return;
    // Folded flat: the shop it led to goes with it; the frame gives the hero the control back.
    Overlays().merchantMenuOpen = 0;
    CloseShop();
}

void CloseMerchantMenu() {
    if (Overlays().merchantMenuOpen) CloseWorldMenu(menu);
}

int MerchantMenuOpening() {
    return menu.opening;
}

const WorldMenu& GetMerchantMenu() {
    return menu;
}

// Kept up to date under the shop too, so that a click after the shop closes acts on what the
// pointer is over then.
void HoverMerchantMenu(sf::Vector2f worldPointer) {
    if (Overlays().merchantMenuOpen) HoverWorldMenu(menu, worldPointer);
}

void PressMerchantMenu() {
    int hovered = HoveredWorldButton(menu);
    if (MenuReachable() && hovered >= 0) RunAction(hovered);
}

void ConfirmMerchantSelection() {
    if (MenuReachable() && WorldMenuShown(menu)) RunAction(menu.selected);
}

void MoveMerchantSelection(int step) {
    if (MenuReachable()) MoveWorldSelection(menu, step);
}

void DrawMerchantMenu(sf::RenderTarget& target) {
    DrawWorldMenu(target, menu);
}

void FreeMerchantMenu() {
    FreeWorldMenuButtons(menu);
    menu = WorldMenu();
    Overlays().merchantMenuOpen = 0;
}

#include "app/game.h"

#include <memory>

#include "common/log.h"
#include "menus/credits.h"
#include "menus/settings_screen.h"

namespace {

OverlayFlags flags;
std::unique_ptr<sf::View> gameView;

}  // namespace

OverlayFlags& Overlays() {
    return flags;
}

void LoadGame(sf::RenderWindow& window) {
    (void)window;
    Log("Load Game\n");
    flags = OverlayFlags();
    gameView = std::make_unique<sf::View>(sf::Vector2f(0, 0), sf::Vector2f(1920, 1080));
}

void UpdateGame(sf::RenderWindow& window, float dt) {
    (void)window;
    (void)dt;
    if (!gameView) return;
    flags.worldFrozen =
        (flags.consoleOpen || flags.pauseOpen || flags.mapOpen || flags.explanationOpen) ? 1 : 0;
}

void DrawGame(sf::RenderWindow& window) {
    if (!gameView) return;
    window.setView(*gameView);
}

void CleanupGame() {
    if (!gameView) return;
    gameView.reset();
    FreeSettingsScreen();
    FreeCredits();
}

const sf::View* GameView() {
    return gameView.get();
}

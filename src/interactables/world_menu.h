// Buttons that unfold in the world above something the hero interacts with (a statue, the
// blacksmith): they grow from flat at an anchor, then the lower ones slide down under the first;
// the selected one is shown larger; they fold flat again when asked to or when the hero walks off,
// and folding frees them. Drawn over the world with the game view.
#pragma once

#include <SFML/Graphics.hpp>
#include <span>
#include <vector>

#include "common/drawables.h"
#include "common/motion.h"
#include "common/ui.h"

struct WorldMenu {
    int opening = 0;  // unfolding, then the lower buttons sliding down
    int closing = 0;  // folding, once any opening has ended
    int selected = 0;
    sf::Vector2f ownerPosition;  // the statue or the blacksmith the menu belongs to
    sf::Vector2f anchor;         // where the first button stands
    float leaveDistance = 0;     // how far along x the hero may stray before it folds
    std::vector<Button> buttons;
    Tween unfoldTween;
    std::vector<Tween> slideTweens;  // one for each button under the first
    Tween foldTween;
    TexturePtr buttonTexture;
    FontPtr font;
};

// Builds the buttons flat at ownerPosition + anchorOffset, selects the first and starts
// unfolding. Anything the menu held before is freed first.
void OpenWorldMenu(WorldMenu& menu, std::span<const char* const> labels, sf::Vector2f ownerPosition,
                   sf::Vector2f anchorOffset, float leaveDistance);
// Each frame while shown: the selection's look, unfolding, folding, and folding once the hero is
// more than leaveDistance away. Returns 1 on the frame it has folded flat and freed its buttons.
int UpdateWorldMenu(WorldMenu& menu, float playerX, float dt);
// Starts folding (it waits for any unfolding to end).
void CloseWorldMenu(WorldMenu& menu);
bool WorldMenuShown(const WorldMenu& menu);

// The pointer in world coordinates: a hovered button becomes the selection.
void HoverWorldMenu(WorldMenu& menu, sf::Vector2f worldPointer);
// The hovered button drawn on top, or -1.
int HoveredWorldButton(const WorldMenu& menu);
// +1 moves the selection down, -1 up, within the buttons.
void MoveWorldSelection(WorldMenu& menu, int step);

void DrawWorldMenu(sf::RenderTarget& target, const WorldMenu& menu);
// The buttons and the font; the button picture stays for the next opening.
void FreeWorldMenuButtons(WorldMenu& menu);

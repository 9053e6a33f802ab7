// Short sprite-sheet effects played once where something happened (blood, parry sparks).
#pragma once

#include <SFML/Graphics.hpp>
#include <memory>
#include <string>
#include <vector>

#include "common/drawables.h"
#include "media/animation.h"

struct EffectInstance {
    std::unique_ptr<sf::Sprite> sprite;
    Animation clip;
};

struct EffectList {
    TexturePtr texture;
    SpritePtr templateSprite;
    Animation templateClip;
    std::vector<EffectInstance> instances;
};

// A sheet of `frames` frames of `frameSize` in one row from (0, 0), centred on its position.
void LoadEffectList(EffectList& list, const std::string& path, sf::Vector2i frameSize,
                    unsigned frames, unsigned frameRate);
void AddEffect(EffectList& list, sf::Vector2f position, float rotation, sf::Vector2f scale);
// Advances every instance; finished ones are removed.
void UpdateEffects(EffectList& list, float dt);
void DrawEffects(sf::RenderTarget& target, const EffectList& list);
void FreeEffectList(EffectList& list);

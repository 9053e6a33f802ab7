#include "media/effects.h"

void LoadEffectList(EffectList& list, const std::string& path, sf::Vector2i frameSize,
                    unsigned frames, unsigned frameRate) {
    list = EffectList();
    list.texture = LoadTexture(path);
    sf::IntRect frame(0, 0, frameSize.x, frameSize.y);
    CreateSprite(list.templateSprite, list.texture.get(), {0, 0}, frame, {0.5f, 0.5f}, {1, 1});
    list.templateClip.frameCount = frames;
    list.templateClip.frameRate = frameRate;
    list.templateClip.frameRect = frame;
    list.templateClip.loop = 0;
}

void AddEffect(EffectList& list, sf::Vector2f position, float rotation, sf::Vector2f scale) {
    if (!list.templateSprite) return;
    EffectInstance instance;
    instance.sprite = std::make_unique<sf::Sprite>(*list.templateSprite);
    instance.sprite->setPosition(position);
    instance.sprite->setRotation(rotation);
    instance.sprite->setScale(scale);
    instance.clip = list.templateClip;
    instance.clip.sprite = instance.sprite.get();
    if (list.texture) instance.clip.sheetSize = list.texture->getSize();
    RestartAnimation(instance.clip);
    instance.clip.paused = 0;
    list.instances.push_back(std::move(instance));
}

void UpdateEffects(EffectList& list, float dt) {
    for (int i = int(list.instances.size()) - 1; i >= 0; i--) {
        EffectInstance& instance = list.instances[i];
        UpdateAnimation(instance.clip, dt);
        if (instance.clip.finished) list.instances.erase(list.instances.begin() + i);
    }
}

void DrawEffects(sf::RenderTarget& target, const EffectList& list) {
    for (const EffectInstance& instance : list.instances) target.draw(*instance.sprite);
}

void FreeEffectList(EffectList& list) {
    list = EffectList();
}

// The conjured cloud: a short-lived platform the hero makes under the feet while airborne. It
// forms, holds for a while, and dissolves when its time is up, when the hero leaves it or when
// the hero drops through it. The module lives and dies with the hero.
#pragma once

#include <SFML/Graphics.hpp>

enum CloudState { CLOUD_CREATION = 0, CLOUD_STATIC, CLOUD_DESTRUCTION, CLOUD_STATE_COUNT };

// The cloud's sheet, clips, box and sounds; no clouds yet.
void CreateCloudModule();
// Every cloud and everything the module loaded.
void DestroyCloudModule();

// The cloud press (key or trigger): a cloud under the airborne hero, who stops there, if the
// ability is owned, the hero has not stood on a cloud since last touching the room, and every
// other cloud is already dissolving.
void TryCreateCloud();
// A forming cloud whose box starts at `feet`.
void AddCloud(sf::Vector2f feet);
// Out-of-range indexes are ignored.
void RemoveCloud(int index);

// After the room's sensors: a live cloud under the body holds the hero up.
void StandOnClouds();
// Late in the hero's update: the clouds' life, dissolving the ones left or dropped through, and
// whether the hero now stands on a cloud.
void UpdateClouds(float dt);
// The clouds in the order they were made; their boxes too while the debug overlay is on.
void DrawClouds(sf::RenderTarget& target);

int CloudCount();
int GetCloudState(int index);  // -1 out of range
// The box the hero stands on, in world pixels (empty out of range).
sf::FloatRect GetCloudBox(int index);
const sf::Sprite* GetCloudSprite(int index);

#include "enemies/enemy_body.h"

#include <cstdint>

#include "enemies/enemies.h"
#include "world/room.h"
#include "world/room_draw.h"

AnimData FixedSheet(sf::Vector2i frameSize, std::span<const FixedClipSpec> clips) {
    AnimData data;
    data.frameSize = frameSize;
    for (size_t i = 0; i < clips.size(); i++) {
        Animation clip;
        clip.frameCount = clips[i].frames;
        clip.frameRate = clips[i].frameRate;
        clip.frameRect = sf::IntRect(0, int(i) * frameSize.y, frameSize.x, frameSize.y);
        clip.loop = clips[i].loop;
        data.clips.push_back(clip);
    }
    data.damageFrames.assign(clips.size(), 0);
    return data;
}

void LoadEnemySheet(EnemySheet& sheet, const char* texturePath, const char* animPath,
                    std::span<const AnimClipSpec> clips,
                    const std::function<void(std::FILE*, int)>& extra) {
    sheet.texture = LoadTexture(texturePath);
    sheet.read = ReadEnemyAnim(animPath, clips, sheet.anim, extra);
}

bool ReadEnemyAnim(const char* animPath, std::span<const AnimClipSpec> clips, AnimData& anim,
                   const std::function<void(std::FILE*, int)>& extra) {
    anim = AnimData();
    if (ReadAnimData(animPath, clips, anim, extra)) return true;
    anim.clips.assign(clips.size(), Animation());
    anim.damageFrames.assign(clips.size(), 0);
    return false;
}

void CreateEnemyBody(EnemyBody& body, const sf::Texture* texture, const AnimData& anim,
                     sf::Vector2f position, sf::Vector2f origin, int containerId, int life) {
    sf::IntRect frame(0, 0, anim.frameSize.x, anim.frameSize.y);
    CreateSprite(body.sprite, texture, position, frame, origin, {3, 3});
    if (!texture) {
        body.sprite->setScale(3, 3);
        body.sprite->setPosition(position);
    }
    body.clips = anim.clips;
    body.damageFrames = anim.damageFrames;
    BindClips(body.clips, body.sprite.get(), SheetSize(body.sprite.get()));
    body.state = body.current = 0;
    body.containerId = containerId;
    body.life = life;
    body.armed = 0;
}

void LoadEnemySounds(EnemyBody& body, std::span<const char* const> paths, int spatial) {
    body.sounds.clear();
    body.sounds.resize(paths.size());
    for (size_t i = 0; i < paths.size(); i++) {
        LoadSoundArray(body.sounds[i], paths[i], 100, 0, SOUND_EFFECTS, spatial);
    }
}

void EnterState(EnemyBody& body, int state) {
    body.state = state;
    ShowClip(body, state);
}

void ShowClip(EnemyBody& body, int clip) {
    if (clip < 0 || size_t(clip) >= body.clips.size()) return;
    body.current = clip;
    RestartAnimation(body.clips[clip]);
}

void AdvanceClip(EnemyBody& body, float dt) {
    if (size_t(body.current) < body.clips.size()) UpdateAnimation(body.clips[body.current], dt);
}

const Animation& CurrentClip(const EnemyBody& body) {
    static const Animation none;
    return size_t(body.current) < body.clips.size() ? body.clips[body.current] : none;
}

bool AtDamageFrame(const EnemyBody& body) {
    if (size_t(body.current) >= body.damageFrames.size()) return false;
    int frame = CurrentClip(body).currentFrame + 1;
    return std::uint16_t(frame) == std::uint16_t(body.damageFrames[body.current]);
}

bool ClipFinished(const EnemyBody& body) {
    return CurrentClip(body).finished != 0;
}

void SoundsFollow(EnemyBody& body) {
    for (SoundArray& sound : body.sounds) UpdateSoundArray(sound, BodyPosition(body));
}

void PlaySound(EnemyBody& body, int sound, int reuse) {
    if (sound >= 0 && size_t(sound) < body.sounds.size())
        CreateSoundArray(body.sounds[sound], reuse);
}

bool FacesRight(const EnemyBody& body, bool sheetFacesLeft) {
    float x = body.sprite->getScale().x;
    return sheetFacesLeft ? x < 0 : x > 0;
}

void FaceRight(EnemyBody& body, bool right, bool sheetFacesLeft) {
    bool flip = right == sheetFacesLeft;
    body.sprite->setScale(flip ? -3.0f : 3.0f, 3.0f);
}

sf::Vector2f BodyPosition(const EnemyBody& body) {
    return body.sprite->getPosition();
}

bool TouchesSolid(const sf::FloatRect& box) {
    for (const Collision& collision : CurrentRoom().collisions) {
        if (collision.active && collision.kind == COLLISION_SOLID &&
            collision.shape->getGlobalBounds().intersects(box)) {
            return true;
        }
    }
    return false;
}

bool BoxBlocked(const sf::FloatRect& box, int containerId) {
    return TouchesSolid(box) || ClampToContainer(nullptr, CLAMP_SHAPE, box, false, containerId);
}

bool ProbeBlocked(const sf::FloatRect& probe, sf::Vector2f point, int containerId) {
    return BoxBlocked(probe, containerId) || !ContainerContains(point, containerId);
}

void DrawHitbox(sf::RenderTarget& target, const sf::Shape& shape) {
    if (DebugOverlay()) target.draw(shape);
}

// What every enemy kind's record holds and does the same way: its sprite, state, life, arena,
// armed attack, clips with their damage frames, and sounds that follow it. A kind's module keeps
// only its own behaviour and builds on these.
#pragma once

#include <SFML/Graphics.hpp>
#include <span>
#include <vector>

#include "common/drawables.h"
#include "enemies/enemies.h"
#include "media/animation.h"
#include "media/sound.h"

struct EnemyBody {
    SpritePtr sprite;
    int state = 0;
    int current = 0;  // the clip shown, usually the state's own
    int life = 0;
    int containerId = 0;
    int armed = 0;  // the current attack may still land
    std::vector<Animation> clips;
    std::vector<int> damageFrames;  // per clip, counted from 1; 0 without one
    std::vector<SoundArray> sounds;
};

// A kind's sheet as read once at load: the frame size and the template clips.
struct EnemySheet {
    TexturePtr texture;
    AnimData anim;
    bool read = false;
};

// One row of a sheet whose layout is fixed in code rather than read from a file.
struct FixedClipSpec {
    unsigned frames;
    unsigned frameRate;
    int loop;
};

// The clips of a sheet laid out in code: clip i is row i of `frameSize` frames from (0, 0); no
// damage frames.
AnimData FixedSheet(sf::Vector2i frameSize, std::span<const FixedClipSpec> clips);

// Loads a kind's texture and reads its animation data file (a missing file leaves it unread).
void LoadEnemySheet(EnemySheet& sheet, const char* texturePath, const char* animPath,
                    std::span<const AnimClipSpec> clips,
                    const std::function<void(std::FILE*, int)>& extra = {});
// Reads an animation data file; a missing one gives blank clips (empty frames that never play
// through) rather than none, so the kind's logic can always index them.
bool ReadEnemyAnim(const char* animPath, std::span<const AnimClipSpec> clips, AnimData& anim,
                   const std::function<void(std::FILE*, int)>& extra = {});

// Makes the body's sprite on `texture` (frame 0 of `frameSize`, origin at `origin` times the
// frame, scale 3) at `position`, and copies the sheet's clips onto it.
void CreateEnemyBody(EnemyBody& body, const sf::Texture* texture, const AnimData& anim,
                     sf::Vector2f position, sf::Vector2f origin, int containerId, int life);
// Loads the body's sounds, spatial or not, at base volume 100.
void LoadEnemySounds(EnemyBody& body, std::span<const char* const> paths, int spatial);

// Switches to a state and shows its clip from the first frame.
void EnterState(EnemyBody& body, int state);
// Shows another state's clip without changing state (a kind whose clips outnumber its states).
void ShowClip(EnemyBody& body, int clip);
void AdvanceClip(EnemyBody& body, float dt);
const Animation& CurrentClip(const EnemyBody& body);
// The shown clip's frame, counted from 1, is its damage frame (compared as 16-bit, as the files
// store them).
bool AtDamageFrame(const EnemyBody& body);
bool ClipFinished(const EnemyBody& body);
// Every sound of the enemy is heard from where it stands.
void SoundsFollow(EnemyBody& body);
void PlaySound(EnemyBody& body, int sound, int reuse);

// Facing, for a sheet drawn facing left (scale x +3) or right.
bool FacesRight(const EnemyBody& body, bool sheetFacesLeft);
void FaceRight(EnemyBody& body, bool right, bool sheetFacesLeft);
sf::Vector2f BodyPosition(const EnemyBody& body);

// A box touches a solid wall or sticks out of the arena.
bool BoxBlocked(const sf::FloatRect& box, int containerId);
// A probe ahead of a walker is blocked when it touches a solid wall, or its point or box leaves
// the walker's arena.
bool ProbeBlocked(const sf::FloatRect& probe, sf::Vector2f point, int containerId);
// A box touches any active solid collision of the room.
bool TouchesSolid(const sf::FloatRect& box);

// Draws a hurtbox, attack box or probe while the hitbox display is on.
void DrawHitbox(sf::RenderTarget& target, const sf::Shape& shape);

// The row entries every kind fills the same way from its roster, a vector of records that each
// hold a `body`: the count, the body, destroying them all, and updating every record near the
// hero with `update` (last to first when `backwards`: the slimes and the Nomads go that way).
template <auto& roster, auto update, bool backwards = false>
void FillRosterOps(EnemyKindOps& kind) {
    kind.count = [] { return int(roster.size()); };
    kind.body = [](int index) -> EnemyBody& { return roster[size_t(index)].body; };
    kind.destroyAll = [] { roster.clear(); };
    kind.update = [](float dt, sf::Vector2f target) {
        int count = int(roster.size());
        for (int k = 0; k < count; k++) {
            auto& record = roster[size_t(backwards ? count - 1 - k : k)];
            if (EnemyNearTarget(BodyPosition(record.body), target)) update(record, dt, target);
        }
    };
}

// Animation clips, their data files, and sound voices.
#include <gtest/gtest.h>

#include <chrono>
#include <cstdio>
#include <thread>

#include "media/animation.h"
#include "media/sound.h"
#include "menus/settings_files.h"
#include "support/fixture.h"

namespace {

Animation Clip(sf::Sprite& sprite, unsigned frames, unsigned rate, int loop) {
    Animation clip;
    clip.sprite = &sprite;
    clip.frameCount = frames;
    clip.frameRate = rate;
    clip.frameRect = sf::IntRect(0, 0, 128, 128);
    clip.loop = loop;
    return clip;
}

}  // namespace

TEST(AnimationTest, LongStepsSkipFramesAndKeepTheRemainder) {
    sf::Sprite sprite;
    Animation clip = Clip(sprite, 4, 10, 1);
    UpdateAnimation(clip, 0.35f);
    EXPECT_EQ(clip.currentFrame, 3);
    EXPECT_NEAR(clip.timer, 0.05f, 1e-5f);
    EXPECT_EQ(sprite.getTextureRect(), sf::IntRect(384, 0, 128, 128));
    UpdateAnimation(clip, 0.06f);
    EXPECT_EQ(clip.currentFrame, 0);
    EXPECT_EQ(clip.finished, 0);
}

TEST(AnimationTest, AClipThatDoesNotLoopStopsOnItsLastFrame) {
    sf::Sprite sprite;
    Animation clip = Clip(sprite, 3, 12, 0);
    for (int i = 0; i < 100; i++) UpdateAnimation(clip, 1.0f / 60);
    EXPECT_EQ(clip.finished, 1);
    EXPECT_EQ(clip.currentFrame, 2);
    UpdateAnimation(clip, 5.0f);
    EXPECT_EQ(clip.currentFrame, 2);
    RestartAnimation(clip);
    EXPECT_EQ(clip.finished, 0);
    EXPECT_EQ(clip.currentFrame, 0);
}

TEST(AnimationTest, LongClipsContinueOnTheNextRowOfTheSheet) {
    sf::Sprite sprite;
    Animation clip = Clip(sprite, 8, 10, 1);
    clip.sheetSize = {512, 1024};
    UpdateAnimation(clip, 0.51f);  // frame 5
    EXPECT_EQ(clip.currentFrame, 5);
    EXPECT_EQ(sprite.getTextureRect(), sf::IntRect(128, 128, 128, 128));
}

TEST(AnimationTest, PausedOrRatelessClipsStayPut) {
    sf::Sprite sprite;
    Animation paused = Clip(sprite, 4, 10, 1);
    paused.paused = 1;
    paused.timer = 0.03f;
    UpdateAnimation(paused, 1.0f);
    EXPECT_EQ(paused.timer, 0.03f);
    EXPECT_EQ(paused.currentFrame, 0);
    Animation frozen = Clip(sprite, 4, 0, 1);
    UpdateAnimation(frozen, 10.0f);
    EXPECT_EQ(frozen.currentFrame, 0);
    EXPECT_EQ(frozen.finished, 0);
}

TEST(AnimationTest, DataFileLaysClipsOutInRowsAndATypoZeroesWhatFollows) {
    std::FILE* file = std::tmpfile();
    std::fputs(
        "size : (64, 48)\nfirst Frame Position : (0,16)\n\n"
        "IDLE | NbFrame : 6 / FrameRate : 10\n"
        "ATTACK | NbFrame : 7 / FrameRate : 12 / Damage Frame : 4\n"
        "DEAD | NbFrme : 9 / FrameRate : 10\n"
        "HIT | NbFrame : 2 / FrameRate : 8\n",
        file);
    std::rewind(file);
    sf::Vector2i size, first;
    EXPECT_TRUE(ReadAnimSize(file, size));
    EXPECT_TRUE(ReadAnimFirstFrame(file, first));
    EXPECT_EQ(size, sf::Vector2i(64, 48));
    Animation idle, attack, dead, hit;
    ReadAnimClip(file, "IDLE", idle, size, first, 0);
    ReadAnimClip(file, "ATTACK", attack, size, first, 1);
    int damageFrame = ReadAnimTail(file, " / Damage Frame : %d");
    ReadAnimClip(file, "DEAD", dead, size, first, 2);
    ReadAnimClip(file, "HIT", hit, size, first, 3);
    std::fclose(file);
    EXPECT_EQ(idle.frameCount, 6u);
    EXPECT_EQ(attack.frameRate, 12u);
    EXPECT_EQ(damageFrame, 4);
    EXPECT_EQ(attack.frameRect, sf::IntRect(0, 64, 64, 48));
    EXPECT_EQ(dead.frameCount, 0u);  // the misspelt line reads as nothing...
    EXPECT_EQ(hit.frameCount, 0u);   // ...and so does every line after it
}

using SoundTest = SandboxTest;

namespace {

// A short click of a sound, written where the test runs.
void WriteShortSound(const std::string& path, float seconds) {
    std::vector<sf::Int16> samples(size_t(22050 * seconds), 0);
    for (size_t i = 0; i < samples.size(); i++) samples[i] = sf::Int16((i % 50) * 200);
    sf::SoundBuffer buffer;
    ASSERT_TRUE(buffer.loadFromSamples(samples.data(), samples.size(), 1, 22050));
    ASSERT_TRUE(buffer.saveToFile(path));
}

}  // namespace

TEST_F(SoundTest, OverlappingVoicesEndAndTheListStartsAfresh) {
    WriteShortSound("click.wav", 0.05f);
    Settings().volumes[SOUND_EFFECTS] = 80;
    SoundArray array;
    LoadSoundArray(array, "click.wav", 100, 0, SOUND_EFFECTS, 0);
    testing::internal::CaptureStdout();
    for (int i = 0; i < 3; i++) CreateSoundArray(array, 0);
    EXPECT_EQ(testing::internal::GetCapturedStdout(), "type : 80type : 80type : 80");
    EXPECT_EQ(VoiceCount(array), 3);
    std::this_thread::sleep_for(std::chrono::milliseconds(250));
    UpdateSoundArray(array, {0, 0});
    EXPECT_EQ(VoiceCount(array), 0);
    CreateSoundArray(array, 0);
    EXPECT_EQ(VoiceCount(array), 1);
    FreeSoundArray(array);
}

TEST_F(SoundTest, ReuseRestartsTheNewestVoiceAndVolumeComesFromTheSetting) {
    WriteShortSound("click.wav", 0.5f);
    Settings().volumes[SOUND_EFFECTS] = 50;
    SoundArray array;
    LoadSoundArray(array, "click.wav", 100, 0, SOUND_EFFECTS, 0);
    for (int i = 0; i < 4; i++) CreateSoundArray(array, 1);
    EXPECT_EQ(VoiceCount(array), 1);
    EXPECT_NEAR(array.voices[0]->getVolume(), 50, 0.01);
    EXPECT_EQ(array.voices[0]->getMinDistance(), 250);
    RemoveSound(array, 5);
    RemoveSound(array, -1);
    EXPECT_EQ(VoiceCount(array), 1);
    FreeSoundArray(array);
}

TEST_F(SoundTest, SpatialVoicesFadeWithDistanceFromTheListener) {
    WriteShortSound("click.wav", 1.0f);
    Settings().volumes[SOUND_EFFECTS] = 100;
    SoundArray array;
    LoadSoundArray(array, "click.wav", 100, 0, SOUND_EFFECTS, 1);
    sf::Listener::setPosition(1000, 500, 0);
    CreateSoundArray(array, 0);
    UpdateSoundArray(array, {1576, 500});
    EXPECT_NEAR(array.voices[0]->getVolume(), 50, 0.01);
    UpdateSoundArray(array, {1000, 500 + 1152});
    EXPECT_EQ(array.voices[0]->getVolume(), 0);
    EXPECT_EQ(array.voices[0]->getPosition(), sf::Vector3f(0, 0, 0));  // never moved to the source
    FreeSoundArray(array);
}

TEST_F(SoundTest, AMissingSampleGivesSilentVoicesWithoutComplaint) {
    SoundArray array;
    testing::internal::CaptureStderr();
    LoadSoundArray(array, "nothing-here.wav", 100, 0, SOUND_EFFECTS, 0);
    testing::internal::GetCapturedStderr();
    CreateSoundArray(array, 0);
    UpdateSoundArray(array, {0, 0});
    EXPECT_EQ(VoiceCount(array), 0);
}

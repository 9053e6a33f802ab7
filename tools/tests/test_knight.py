"""The Flying Knight's two sheets as the game reads them: the one data file line by line, each sheet's
rows against its clips, the armour filling its hurtbox and falling in a heap, the sword standing on
its hilt, and the bright tell on exactly the slash's two damage frames."""
import unittest

import numpy as np

from tests.common import bbox, luminance, opaque, picture
from tests.test_small_enemies import SheetCase, cells, read_data, used_frames

FOLDER = "Assets/Sprites/Enemies/Flying Knight/"


def clip(label):
    return rf"{label} \| NbFrame : (\d+) / FrameRate : (\d+)"


class FlyingKnightSheetsTest(SheetCase):
    @classmethod
    def setUpClass(cls):
        v = read_data(FOLDER + "FlyingKnightAnimData.txt", [
            r"KNIGHT :\n", r"size : \((\d+),(\d+)\)\n", r"first Frame Position : \(0,0\)\n\n",
            clip("IDLE") + r"\n", clip("DEATH") + r"\n\n", clip("REVIVE") + r"\n\n",
            r"SWORD :\n", r"size : \((\d+),(\d+)\)\n", r"first Frame Position : \(0,0\)\n\n",
            clip("STATIC") + r"\n",
            clip("ATTACK") + r" / DamageFrame : (\d+) /Damage Frame (\d+)\n\n"])
        cls.kw, cls.kh = v[0], v[1]
        cls.kcounts, cls.krates = [v[2], v[4], v[6]], [v[3], v[5], v[7]]
        cls.sw, cls.sh = v[8], v[9]
        cls.scounts, cls.srates = [v[10], v[12]], [v[11], v[13]]
        cls.d1, cls.d2 = v[14], v[15]
        cls.knight = picture(FOLDER + "GladiatorSpriteSheet.png")
        cls.sword = picture(FOLDER + "SwordSpriteSheet.png")

    def test_rows_match_the_clips_and_every_clip_plays_through(self):
        self.assertLayout(self.knight, self.kw, self.kh, self.kcounts, "knight")
        self.assertLayout(self.sword, self.sw, self.sh, self.scounts, "sword")
        for n, rate in zip(self.kcounts + self.scounts, self.krates + self.srates):
            self.assertGreaterEqual(n, 1)
            self.assertTrue(1 <= rate <= 60, "a clip that never finishes, or skips a damage frame")

    def test_slash_hits_twice_with_a_rearm_frame_between(self):
        n = self.scounts[1]
        self.assertGreaterEqual(self.d1, 2, "no wind-up before the first cut")
        self.assertGreaterEqual(self.d2, self.d1 + 2, "no frame between the cuts to re-arm on")
        self.assertLess(self.d2, n, "the second cut has no follow-through, or never comes")

    def test_tell_on_exactly_the_two_cuts(self):
        grid = cells(self.sword, self.sw, self.sh)
        calm = max(luminance(f[..., :3])[opaque(f)].max() for f in grid[0][:self.scounts[0]])
        for k, f in enumerate(grid[1][:self.scounts[1]], start=1):
            bright = int((opaque(f) & (luminance(f[..., :3]) > max(calm, 240))).sum())
            with self.subTest(frame=k):
                if k in (self.d1, self.d2):
                    self.assertGreaterEqual(bright, 12, "a cut with no flash")
                else:
                    self.assertLessEqual(bright, 4, "a harmless frame flashes like a cut")

    def test_sword_hangs_upright_on_its_hilt(self):
        """The game turns the sword about its frame's bottom centre and points it down by turning
        it 180 degrees: the hilt must be there and the point straight above it."""
        grid = cells(self.sword, self.sw, self.sh)
        for col, f in enumerate(grid[0][:self.scounts[0]] + [grid[1][0], grid[1][self.scounts[1] - 1]]):
            with self.subTest(col=col):
                top, bottom, left, right = bbox(opaque(f))
                self.assertGreaterEqual(bottom, self.sh - 3, "the hilt is not on the bottom edge")
                self.assertLessEqual(top, self.sh // 8, "the blade is short of the frame's top")
                point = np.nonzero(opaque(f)[top])[0]
                self.assertLessEqual(abs(point.mean() + 0.5 - self.sw / 2), 1.5, "the point is off the axis")

    def test_armour_fills_its_hurtbox_and_falls_in_a_heap(self):
        grid = cells(self.knight, self.kw, self.kh)
        hurt_w, hurt_h = 0.7 * self.kw, 0.8 * self.kh
        for f in grid[0][:self.kcounts[0]]:
            top, bottom, left, right = bbox(opaque(f))
            self.assertLessEqual(abs((left + right + 1) / 2 - self.kw / 2), 4, "off the centre line")
            self.assertGreaterEqual(right - left + 1, hurt_w - 4, "narrower than its hurtbox")
            self.assertGreaterEqual(self.kh - top, hurt_h, "shorter than its hurtbox")
            self.assertGreaterEqual(bottom, self.kh - 16, "floating far above its own position")
        heap = grid[1][self.kcounts[1] - 1]
        top, bottom, _, _ = bbox(opaque(heap))
        self.assertGreaterEqual(bottom, self.kh - 2, "the heap does not lie on the ground")
        self.assertLess(self.kh - top, self.kh // 2, "the held death frame still stands")
        first_revive = grid[2][0]
        self.assertGreater(bbox(opaque(first_revive))[0], self.kh // 2, "the revival does not start from the heap")

    def test_knight_and_sword_differ_from_frame_to_frame(self):
        """Idle clips breathe: a loop of identical frames shows nothing of the bob or the runes."""
        for img, fw, fh, counts in ((self.knight, self.kw, self.kh, self.kcounts[:1]),
                                    (self.sword, self.sw, self.sh, self.scounts[:1])):
            frames = used_frames(cells(img, fw, fh)[:1], counts)
            changes = sum(not np.array_equal(a, b) for a, b in zip(frames, frames[1:] + frames[:1]))
            self.assertGreaterEqual(changes, len(frames) - 1)


if __name__ == "__main__":
    unittest.main()

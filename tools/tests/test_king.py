"""The King's sheet as the game reads it (its data file line by line, the rows against the clips, the
strike frames and their tell, the footfalls of the walk, the leap off the ground), and his music
loop's format and join."""
import unittest

import numpy as np

from ovgen import audio
from tests.common import ROOT, bbox, opaque, picture
from tests.test_small_enemies import SheetCase, cells, read_data, tell_pixels

FOLDER = "Assets/Sprites/Enemies/Boss/"
MUSIC = "Assets/Sounds/MUSIC/King_Music.wav"


def clip(label):
    return rf"{label} \| NbFrame : (\d+) / FrameRate : (\d+)"


class KingSheetTest(SheetCase):
    @classmethod
    def setUpClass(cls):
        v = read_data(FOLDER + "KingAnimData.txt", [
            r"size : \((\d+),(\d+)\)\n", r"first Frame Position : \(0,0\)\n\n",
            clip("IDLE") + r"\n", clip("WALK") + r"\n", clip("ATTACK") + r" / Damage Frame : (\d+)\n",
            clip("DASH ATTACK") + r" / Dash Frame : (\d+)\n",
            clip("JUMP ATTACK") + r" / Jump Frame : (\d+) / Fall Frame (\d+) / Damage Frame : (\d+)\n",
            clip("DEAD") + r"\n"])
        cls.fw, cls.fh = v[0], v[1]
        cls.counts = [v[2], v[4], v[6], v[9], v[12], v[17]]
        cls.rates = [v[3], v[5], v[7], v[10], v[13], v[18]]
        cls.hit, cls.dash = v[8], v[11]
        cls.jump, cls.fall, cls.land = v[14], v[15], v[16]
        cls.img = picture(FOLDER + "King.png")
        cls.grid = cells(cls.img, cls.fw, cls.fh)

    def frames(self, row):
        return self.grid[row][:self.counts[row]]

    def test_rows_match_the_clips_and_every_move_plays_through(self):
        self.assertLayout(self.img, self.fw, self.fh, self.counts, "king")
        for n, rate in zip(self.counts, self.rates):
            self.assertGreaterEqual(n, 1)
            self.assertTrue(1 <= rate <= 60, "a clip that never finishes, or skips its strike")

    def test_each_strike_has_a_wind_up_and_a_follow_through(self):
        self.assertTrue(2 <= self.hit < self.counts[2])
        self.assertTrue(2 <= self.dash < self.counts[3])
        self.assertTrue(1 < self.jump < self.fall < self.land <= self.counts[4],
                        "the leap's frames out of order: the landing would never hit")
        self.assertEqual(self.land, self.fall + 1, "the landing is not the frame after the fall")

    def test_the_tell_flashes_on_the_strikes_and_nowhere_calm(self):
        calm = self.frames(0)
        for row, strike in ((2, self.hit), (3, self.dash), (4, self.land)):
            with self.subTest(row=row):
                self.assertGreaterEqual(tell_pixels(self.frames(row)[strike - 1], calm), 12)
                self.assertLessEqual(tell_pixels(self.frames(row)[0], calm), 0, "the first frame flashes")
        for f in self.frames(1) + self.frames(5):
            self.assertEqual(tell_pixels(f, calm), 0, "a harmless clip flashes like a strike")

    def test_the_body_fills_its_hurtbox_and_stands_on_its_origin(self):
        w, h = round(self.fw / 6), round(self.fh * 1.4 / 3)
        for f in self.frames(0):
            box = opaque(f)[self.fh - h:, self.fw // 2 - w // 2:self.fw // 2 + w // 2]
            self.assertGreater(box.mean(), 0.6, "the hurtbox is mostly empty")
            self.assertGreaterEqual(bbox(opaque(f))[1], self.fh - 2, "floating above the origin")

    def test_the_feet_land_on_the_footfall_frames_and_stay_put(self):
        """The game plays the footfall on walk frames 5 and 14 and stands him still on 5-8 and
        14 on: the feet must not slide there, and the grit flies on the landings."""
        walk = self.frames(1)
        feet = [opaque(f)[-3:] for f in walk]   # the soles and the grit
        for a, b in ((5, 6), (6, 7), (7, 8), (14, 15), (15, 16)):
            with self.subTest(frames=(a, b)):
                moved = (feet[a - 1] != feet[b - 1]).sum()
                if a in (5, 14):   # the grit of the landing clears after it
                    self.assertGreater(moved, 0)
                else:
                    self.assertEqual(moved, 0, "the planted feet slide on a standing frame")
        ground = [opaque(f)[-3:].sum() for f in walk]
        for plant in (5, 14):
            self.assertEqual(ground[plant - 1], max(ground[plant - 2:plant + 1]),
                             "no grit where the foot lands")

    def test_the_leap_leaves_the_ground_and_crashes_back_down(self):
        leap = self.frames(4)
        for k in (self.jump, self.fall):
            self.assertLess(bbox(opaque(leap[k - 1]))[1], self.fh - 4, f"frame {k} is still on the ground")
        landing = opaque(leap[self.land - 1])
        self.assertGreaterEqual(bbox(landing)[1], self.fh - 2)
        self.assertGreater(bbox(landing)[3] - bbox(landing)[2], bbox(opaque(leap[0]))[3] - bbox(opaque(leap[0]))[2],
                           "no dust thrown wide by the crash")

    def test_he_falls_and_stays_down(self):
        last = opaque(self.frames(5)[-1])
        self.assertGreater(bbox(last)[0] + 0, self.fh // 3, "the held death frame still stands")
        self.assertGreaterEqual(bbox(last)[1], self.fh - 2)


class KingMusicTest(unittest.TestCase):
    def test_a_small_sixteen_bit_loop_of_about_a_minute_that_joins_cleanly(self):
        x, sr = audio.read_wav(ROOT / MUSIC)
        self.assertIn(sr, (22050, 44100))
        self.assertEqual(x.ndim, 1, "mono keeps it small")
        self.assertTrue(45 <= len(x) / sr <= 70, f"{len(x) / sr:.1f} s")
        self.assertLess((ROOT / MUSIC).stat().st_size, 4_000_000)
        with open(ROOT / MUSIC, "rb") as f:
            self.assertEqual(int.from_bytes(f.read(36)[34:36], "little"), 16, "not 16-bit")
        # the join: the step from the last sample to the first is no larger than the music's own
        steps = np.abs(np.diff(x))
        self.assertLessEqual(abs(x[0] - x[-1]), np.percentile(steps, 99.9))
        # and the loop neither fades out nor in at the join
        window = sr // 2
        rms = lambda y: float(np.sqrt(np.mean(y ** 2)))
        whole = rms(x)
        self.assertGreater(rms(x[-window:]), 0.3 * whole)
        self.assertGreater(rms(x[:window]), 0.3 * whole)
        self.assertLess(np.max(np.abs(x)), 0.75, "peaks over -3 dBFS")


if __name__ == "__main__":
    unittest.main()

"""The Goddess's sheets as the game reads them: the data file line by line (no first-frame lines),
the body's five rows and the parts' single rows against their clips, the whip wrapping into its
sheet's second row, her figure inside the hurtbox, the tell on exactly the damage frames, the
lightning landing on its frame's centre, and the drawing cost of her huge frames."""
import unittest

import numpy as np

from tests.common import bbox, opaque, picture
from tests.test_small_enemies import SheetCase, cells, read_data

FOLDER = "Assets/Sprites/Enemies/Goddess/"
FX = "Assets/Sprites/FX/"


def clip(label, damage=False):
    return rf"{label} \| NbFrame : (\d+) / FrameRate : (\d+)" + (r" / DamageFrame : (\d+)" if damage else "")


def part(name):
    return [rf"\n\n{name} :\n", r"size : \((\d+),(\d+)\)\n", clip("ANIM")]


def white(frame):
    return int((opaque(frame) & (frame[..., :3].min(axis=-1) == 255)).sum())


class GoddessSheetsTest(SheetCase):
    @classmethod
    def setUpClass(cls):
        v = read_data(FOLDER + "GoddessAnimData.txt", [
            r"BODY :\n", r"size : \((\d+),(\d+)\)\n\n", clip("IDLE") + r"\n",
            clip("ATTACK_LIGHTNING", True) + r"\n", clip("ATTACK_CREATE_SPARK", True) + r"\n",
            clip("ATTACK_TRIGGER_SPARK", True) + r"\n", clip("ATTACK_WHIP", True)]
            + part("WINGS") + part("WHIP") + part("LASER") + part("ORBES") + part("VERTICAL LASER") + [r"\n"])
        cls.bw, cls.bh = v[0], v[1]
        cls.counts = [v[2], v[4], v[7], v[10], v[13]]
        cls.rates = [v[3], v[5], v[8], v[11], v[14]]
        cls.damage = [None, v[6], v[9], v[12], v[15]]
        rest = v[16:]
        cls.parts = {name: rest[4 * i:4 * i + 4] for i, name in
                     enumerate(("WINGS", "WHIP", "LASER", "ORBES", "VERTICAL LASER"))}
        cls.body = picture(FOLDER + "Body 518x347.png")
        cls.wings = picture(FOLDER + "wings hair 518x347.png")
        cls.whip = picture(FOLDER + "Attack_Whip 838x372.png")
        cls.fx = {"LASER": picture(FX + "beam 211x388.png"), "ORBES": picture(FX + "orb 100x100.png"),
                  "VERTICAL LASER": picture(FX + "VerticalLaser.png")}

    def test_sizes_match_the_file_names_and_every_clip_plays_through_its_damage_frame(self):
        self.assertEqual((self.bw, self.bh), (518, 347))
        self.assertEqual(self.parts["WINGS"][:2], [518, 347])
        self.assertEqual(self.parts["WHIP"][:2], [838, 372])
        self.assertEqual(self.parts["LASER"][:2], [211, 388])
        self.assertEqual(self.parts["ORBES"][:2], [100, 100])
        for n, rate, d in zip(self.counts, self.rates, self.damage):
            self.assertTrue(n >= 1 and 1 <= rate <= 60)
            if d is not None:
                self.assertTrue(2 <= d <= n, "no wind-up, or a damage frame never reached")
        light_n, light_d = self.counts[1], self.damage[1]
        self.assertGreaterEqual(light_n, light_d + 3, "the lightning must show, and stay a frame, before she ends")
        self.assertEqual(self.parts["WHIP"][2], self.counts[4], "the whip shows the body's lash frame by frame")

    def test_body_rows_and_part_rows_hold_their_clips(self):
        self.assertLayout(self.body, self.bw, self.bh, self.counts, "body")
        self.assertLessEqual(self.body.shape[1], 4096)
        w, h, n, _ = self.parts["WINGS"]
        self.assertLayout(self.wings, w, h, [n], "wings")
        for name, img in self.fx.items():   # bolts and beams run off their frames' edges on purpose
            w, h, n, _ = self.parts[name]
            self.assertEqual(img.shape[:2], (h, w * n), name)
            for k, f in enumerate(cells(img, w, h)[0]):
                with self.subTest(name=name, frame=k):
                    self.assertTrue(opaque(f).any(), "a used frame is blank")

    def test_whip_frames_wrap_into_the_next_row_at_the_sheet_width(self):
        w, h, n, _ = self.parts["WHIP"]
        per_row = self.whip.shape[1] // w
        self.assertEqual(self.whip.shape[1] % w, 0)
        self.assertLess(per_row, n, "the sheet does not wrap")
        self.assertGreaterEqual(per_row * (self.whip.shape[0] // h), n)
        frames = [f for row in cells(self.whip, w, h) for f in row][:n]
        for k, f in enumerate(frames):
            with self.subTest(frame=k):
                self.assertTrue(opaque(f).any())
        # the lash on its damage frame reaches across most of the frame, low below her
        lash = frames[self.damage[4] - 1]
        top, bottom, left, right = bbox(opaque(lash))
        self.assertGreater(right - left, 0.8 * w)
        self.assertGreater(bottom, h / 2 + 100)

    def test_she_stands_in_her_hurtbox(self):
        """The game's box covers the central 30 % of the frame from 40 % to 90 % of its height."""
        for k, f in enumerate(cells(self.body, self.bw, self.bh)[0][:self.counts[0]]):
            solid = opaque(f)
            cx = self.bw // 2
            band = solid[int(0.4 * self.bh):int(0.9 * self.bh), cx - 10:cx + 10]
            with self.subTest(frame=k):
                self.assertGreater(band.mean(), 0.85, "her torso and gown do not fill the box's middle")
                top, bottom, _, _ = bbox(solid)
                self.assertLess(top, 0.4 * self.bh, "no head above the box")

    def test_the_tell_is_on_exactly_the_damage_frames(self):
        grid = cells(self.body, self.bw, self.bh)
        for row in range(1, 5):
            for k in range(self.counts[row]):
                with self.subTest(row=row, frame=k + 1):
                    if k + 1 == self.damage[row]:
                        self.assertGreaterEqual(white(grid[row][k]), 12)
                    else:
                        self.assertEqual(white(grid[row][k]), 0)

    def test_the_lightning_strikes_the_centre_of_its_frame(self):
        """The game centres the column on the point where it falls."""
        w, h, n, _ = self.parts["LASER"]
        strike = cells(self.fx["LASER"], w, h)[0][1]
        solid = opaque(strike)
        top, _, _, _ = bbox(solid)
        self.assertLessEqual(top, 2, "the bolt does not come from the top")
        self.assertTrue(solid[h // 2 - 2:h // 2 + 2, w // 2 - 6:w // 2 + 6].all(), "nothing lands at the centre")

    def test_the_frames_mostly_empty_space_is_cheap_to_draw(self):
        """Shown at 3 over a 642 x 362 canvas, her frames would each cover most of it: the game draws
        only the opaque box of each frame, so those boxes must stay a fraction of the canvas."""
        canvas = 642 * 362
        for name, img, (w, h) in (("body", self.body, (self.bw, self.bh)), ("wings", self.wings, (self.bw, self.bh))):
            for r, row in enumerate(cells(img, w, h)):
                for c, f in enumerate(row):
                    if not opaque(f).any():
                        continue
                    top, bottom, left, right = bbox(f[..., 3] > 0)
                    with self.subTest(sheet=name, row=r, col=c):
                        self.assertLess((bottom - top + 1) * (right - left + 1), 0.4 * canvas)


if __name__ == "__main__":
    unittest.main()

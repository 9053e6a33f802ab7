"""The slime, frog and carnivorous plant as the game reads them: the data files line by line, the
sheets' sizes and rows, used and empty cells, where each body stands, the bright tell on the frames
that hurt, and the slime's gobs."""
import re
import unittest

import numpy as np

from tests.common import ROOT, bbox, luminance, opaque, picture

SLIME = "Assets/Sprites/Enemies/Slime/"
LOOKS = ("Slime SpriteSheet.png", "NecroSlime SpriteSheet.png", "BlueSlime SpriteSheet.png")
GOBS = ("Slime-Projectile-SpriteSheet.png", "BlueSlime-Projectile-SpriteSheet.png")
FROG = "Assets/Sprites/Enemies/frog.png"
PLANT = "Assets/Sprites/Enemies/Plant/"
PLANT_GROUND = 124        # the origin's row: (84, 124.1)


def clip(label, damage=False):
    return rf"{label} \| NbFrame : (\d+) / FrameRate : (\d+)" + (r" / Damage Frame : (\d+)" if damage else "")


def read_data(rel, lines):
    """The file's numbers, if it is exactly `lines` (regular expressions) joined by LF."""
    raw = (ROOT / rel).read_bytes()
    match = re.fullmatch("".join(lines), raw.decode("ascii"))
    if not match:
        raise AssertionError(f"{rel} does not read line by line:\n{raw.decode('ascii', 'replace')}")
    return [int(v) for v in match.groups()]


def cells(img, fw, fh):
    """The sheet cut into frames: rows of columns."""
    return [[img[r * fh:(r + 1) * fh, c * fw:(c + 1) * fw] for c in range(img.shape[1] // fw)]
            for r in range(img.shape[0] // fh)]


def brightest(frames):
    return max(luminance(f[..., :3])[opaque(f)].max() for f in frames)


def tell_pixels(frame, calm_frames):
    """Pixels of `frame` brighter than anything in the calm clip: the flash of a dangerous frame."""
    return int((opaque(frame) & (luminance(frame[..., :3]) > brightest(calm_frames) + 4)).sum())


def iou(a, b):
    return (a & b).sum() / max((a | b).sum(), 1)


def used_frames(grid, counts):
    return [f for row, n in zip(grid, counts) for f in row[:n]]


class SheetCase(unittest.TestCase):
    def assertLayout(self, img, fw, fh, counts, what):
        """Width = frame width x the longest clip, one row per clip, every used frame drawn, every
        cell past a clip's end empty (the game never shows it, a stray pixel there is a fault)."""
        self.assertEqual(img.shape[:2], (fh * len(counts), fw * max(counts)), what)
        grid = cells(img, fw, fh)
        for row, n in enumerate(counts):
            for col, f in enumerate(grid[row]):
                with self.subTest(what=what, row=row, col=col):
                    if col < n:
                        self.assertTrue(opaque(f).any(), "a used frame is blank")
                        self.assertFalse(f[0].any() or f[:, 0].any() or f[:, -1].any(),
                                         "the art is cut by the frame edge")
                    else:
                        self.assertFalse(f[..., 3].any(), "a cell past the clip's end is not empty")
        return grid


class SlimeTest(SheetCase):
    @classmethod
    def setUpClass(cls):
        v = read_data(SLIME + "SlimeAnimData.txt", [
            r"size : \((\d+),(\d+)\)\n", r"first Frame Position : \(0,0\)\n",
            r"projectile position : \((\d+),(\d+)\)\n\n",
            clip("IDLE") + r"\n", clip("WALK") + r"\n", clip("ATTACK", True) + r"\n", clip("DEAD") + r"\n"])
        cls.fw, cls.fh, cls.px, cls.py = v[:4]
        cls.counts = [v[4], v[6], v[8], v[11]]
        cls.rates = [v[5], v[7], v[9], v[12]]
        cls.launch = v[10]
        cls.grids = {}
        for name in LOOKS:
            img = picture(SLIME + name)
            cls.grids[name] = cells(img, cls.fw, cls.fh)

    def test_timing_lets_every_clip_play_and_the_spit_come(self):
        for n, rate in zip(self.counts, self.rates):
            self.assertGreaterEqual(n, 1)
            self.assertTrue(1 <= rate <= 60, "a clip that never advances, or skips its launch frame")
        self.assertTrue(1 <= self.launch <= self.counts[2], "the launch frame never comes")

    def test_three_looks_share_one_layout_and_one_silhouette(self):
        masks = {}
        for name in LOOKS:
            self.assertLayout(picture(SLIME + name), self.fw, self.fh, self.counts, name)
            masks[name] = [opaque(f) for f in used_frames(self.grids[name], self.counts)]
        for name in LOOKS[1:]:
            for a, b in zip(masks[LOOKS[0]], masks[name]):
                self.assertGreater(iou(a, b), 0.85, f"{name} is posed differently")

    def test_body_stands_on_the_bottom_centre_and_fills_its_hurtbox(self):
        hurt_w = 0.7 * self.fw
        for name in LOOKS:
            for row in (0, 1):
                for col in range(self.counts[row]):
                    with self.subTest(look=name, row=row, col=col):
                        f = self.grids[name][row][col]
                        top, bottom, left, right = bbox(opaque(f))
                        feet = np.nonzero(opaque(f)[-1])[0]
                        self.assertEqual(bottom, self.fh - 1, "not standing on the frame's bottom")
                        self.assertLessEqual(abs((feet[0] + feet[-1] + 1) / 2 - self.fw / 2), 3)
                        self.assertLessEqual(abs((right - left + 1) - hurt_w), 6, "body and hurtbox differ")
                        if row == 0:    # the hurtbox is the frame's height: crop it to the slime
                            self.assertLessEqual(top, self.fh // 4, "the frame is taller than the slime")
            tallest = min(bbox(opaque(f))[0] for f in used_frames(self.grids[name], self.counts))
            self.assertLessEqual(tallest, 2, "the frame is taller than the slime ever stands")
            dead = self.grids[name][3][self.counts[3] - 1]
            self.assertLess(self.fh - bbox(opaque(dead))[0], self.fh // 2, "the held dead frame still stands")

    def test_spit_leaves_the_mouth_on_a_bright_launch_frame(self):
        self.assertLess(self.px, self.fw / 2, "the sheets face left: the mouth is on the left")
        for name in LOOKS:
            with self.subTest(look=name):
                spit = self.grids[name][2][self.launch - 1]
                near = opaque(spit)[self.py - 1:self.py + 2, self.px - 1:self.px + 2]
                self.assertTrue(near.any(), "the launch point is off the body")
                self.assertGreaterEqual(tell_pixels(spit, self.grids[name][0][:self.counts[0]]), 5)


    def test_launch_frame_is_the_spit_after_a_squash(self):
        """A launch frame one off would fire the gob from a squashed or settling slime."""
        for name in LOOKS:
            with self.subTest(look=name):
                tops = [bbox(opaque(f))[0] for f in self.grids[name][2][:self.counts[2]]]
                rest = min(bbox(opaque(f))[0] for f in self.grids[name][0][:self.counts[0]])
                self.assertEqual(tops[self.launch - 1], min(tops), "the spit is not the attack's stretch")
                self.assertGreater(tops[self.launch - 2], rest, "no squash before the spit")

    def test_each_look_wears_its_region(self):
        def mean_rgb(img):
            return img[opaque(img)][:, :3].astype(float).mean(axis=0)
        r, g, b = mean_rgb(picture(SLIME + LOOKS[0]))
        self.assertTrue(g > r + 20 and g > b + 20, "the forest slime is not green")
        r, g, b = mean_rgb(picture(SLIME + LOOKS[1]))
        self.assertTrue(r > g + 10 and b > g + 10, "the undead slime is not violet")
        r, g, b = mean_rgb(picture(SLIME + LOOKS[2]))
        self.assertTrue(b > r + 40 and b > g + 10, "the city slime is not blue")
        r, g, b = mean_rgb(picture(SLIME + GOBS[0]))
        self.assertGreater(g, b + 20, "the forest gob is not green")
        r, g, b = mean_rgb(picture(SLIME + GOBS[1]))
        self.assertGreater(b, g + 10, "the city gob is not blue")


class SlimeGobTest(unittest.TestCase):
    SIDE, FRAMES, HIT = 22, 6, 10

    def frames(self, name):
        img = picture(SLIME + name)
        self.assertEqual(img.shape[:2], (self.SIDE, self.SIDE * self.FRAMES), name)
        return [img[:, k * self.SIDE:(k + 1) * self.SIDE] for k in range(self.FRAMES)]

    def test_every_frame_is_drawn_inside_its_box(self):
        for name in GOBS:
            for k, f in enumerate(self.frames(name)):
                with self.subTest(gob=name, frame=k):
                    self.assertTrue(opaque(f).any())
                    self.assertFalse(f[0].any() or f[-1].any() or f[:, 0].any() or f[:, -1].any())

    def test_flying_gob_sits_on_its_hitbox_heading_up(self):
        lo, hi = (self.SIDE - self.HIT) // 2, (self.SIDE + self.HIT) // 2
        for name in GOBS:
            with self.subTest(gob=name):
                gob = opaque(self.frames(name)[0])
                self.assertGreater(gob[lo:hi, lo:hi].mean(), 0.6, "the gob does not fill its hitbox")
                top, bottom, left, right = bbox(gob)
                self.assertLessEqual(abs((left + right + 1) / 2 - self.SIDE / 2), 1.5)
                self.assertGreaterEqual(top, lo - 1, "the head runs ahead of the hitbox")
                self.assertGreater(bottom - self.SIDE / 2, self.SIDE / 2 - top, "no tail trailing down")

    def test_burst_splashes_out_then_thins(self):
        for name in GOBS:
            with self.subTest(gob=name):
                fr = [opaque(f) for f in self.frames(name)]
                width = [bbox(m)[3] - bbox(m)[2] + 1 for m in fr]
                self.assertGreaterEqual(max(width[1:3]), width[0] + 6, "the burst does not spread")
                area = [m.sum() for m in fr]
                self.assertTrue(area[2] > area[3] > area[4] > area[5], "the splash does not thin out")


class FrogTest(SheetCase):
    FW, FH, COUNTS, HURT = 64, 48, (8, 1, 3), (35, 25)

    @classmethod
    def setUpClass(cls):
        cls.img = picture(FROG)

    def test_sheet_is_the_layout_the_game_assumes(self):
        self.assertLayout(self.img, self.FW, self.FH, self.COUNTS, "frog")

    def test_sits_on_its_hurtbox_looking_left(self):
        grid = cells(self.img, self.FW, self.FH)
        for col in range(self.COUNTS[0]):
            with self.subTest(frame=col):
                m = opaque(grid[0][col])
                top, bottom, left, right = bbox(m)
                self.assertEqual(bottom, self.FH - 1)
                self.assertLessEqual(abs((left + right + 1) / 2 - self.FW / 2), 4)
                self.assertLessEqual(abs(right - left + 1 - self.HURT[0]), 8)
                self.assertLessEqual(abs(self.FH - top - self.HURT[1]), 4)
                self.assertLess(np.nonzero(m[top])[0].mean(), self.FW / 2, "the head is not on the left")

    def test_leap_stretches_out_over_its_attack_box_with_a_flash(self):
        grid = cells(self.img, self.FW, self.FH)
        idle = grid[0][:self.COUNTS[0]]
        leap = opaque(grid[1][0])
        _, _, left, right = bbox(leap)
        sit = np.mean([bbox(opaque(f))[3] - bbox(opaque(f))[2] + 1 for f in idle])
        self.assertGreaterEqual(right - left + 1, 1.25 * sit, "the leap does not stretch out")
        x0 = (self.FW - self.HURT[0]) // 2
        on_box = leap[self.FH - self.HURT[1]:, x0:x0 + self.HURT[0]].sum()
        self.assertGreater(on_box / leap.sum(), 0.5, "the body that hurts is off the attack box")
        self.assertGreaterEqual(tell_pixels(grid[1][0], idle), 5, "no tell on the leap")

    def test_dead_frog_ends_lying_on_the_ground(self):
        last = opaque(cells(self.img, self.FW, self.FH)[2][self.COUNTS[2] - 1])
        self.assertEqual(bbox(last)[1], self.FH - 1)


class PlantTest(SheetCase):
    FW, FH = 168, 146

    @classmethod
    def setUpClass(cls):
        v = read_data(PLANT + "PlantAnimData.txt", [
            r"size : \(168,146\)\n", r"first Frame Position : \(0,0\)\n",
            clip("IDLE") + r"\n", clip("ATTACK", True) + r"\n", clip("CLOSE") + r"\n"])
        cls.counts = [v[0], v[2], v[5]]
        cls.rates = [v[1], v[3], v[6]]
        cls.bite = v[4]
        cls.img = picture(PLANT + "PlantTrap.png")
        cls.grid = cells(cls.img, cls.FW, cls.FH)

    def test_sheet_and_timing(self):
        self.assertLayout(self.img, self.FW, self.FH, self.counts, "plant")
        for rate in self.rates:
            self.assertTrue(1 <= rate <= 60)
        self.assertTrue(1 <= self.bite <= self.counts[1], "the bite never comes")

    def test_trap_lies_hidden_on_the_ground_line(self):
        for col in range(self.counts[0]):
            with self.subTest(frame=col):
                m = opaque(self.grid[0][col])
                top, bottom, left, right = bbox(m)
                self.assertGreaterEqual(top, PLANT_GROUND - 30, "the resting trap is not hidden")
                self.assertLessEqual(bottom, PLANT_GROUND + 5, "drawn deep under the floor line")
                self.assertTrue(m[PLANT_GROUND - 4:PLANT_GROUND + 1].any(), "not on the ground line")
                self.assertLessEqual(abs((left + right + 1) / 2 - self.FW / 2), 4)

    def test_snap_fills_the_bite_box_with_a_flash(self):
        snap = self.grid[1][self.bite - 1]
        m = opaque(snap)[:PLANT_GROUND]
        x0, x1, y0 = round(0.255 * self.FW), round(0.755 * self.FW), round(self.FH / 3.6)
        self.assertGreater(m[y0:, x0:x1].sum() / m.sum(), 0.85, "the jaws close outside their box")
        self.assertLessEqual(bbox(m)[0], y0 + 25, "the jaws do not rise over the hero")
        self.assertGreaterEqual(tell_pixels(snap, self.grid[0][:self.counts[0]]), 5, "no tell on the snap")

    def test_bite_lands_on_the_frame_the_jaws_shut(self):
        """One frame early the jaws are still a wide V, empty down the middle; the bite must be
        the first frame they meet there."""
        def seam(f):
            mid = self.FW // 2
            return opaque(f)[PLANT_GROUND - 60:PLANT_GROUND - 20, mid - 2:mid + 3].mean()
        seams = [seam(f) for f in self.grid[1][:self.bite]]
        self.assertGreater(seams[-1], 0.9, "the jaws are open on the bite")
        self.assertTrue(all(v < 0.3 for v in seams[:-1]), "the jaws shut before the bite")

    def test_close_ends_where_idle_begins(self):
        end = opaque(self.grid[2][self.counts[2] - 1])
        self.assertGreater(iou(end, opaque(self.grid[0][0])), 0.6, "the trap jumps back into place")


if __name__ == "__main__":
    unittest.main()


class DrawingTest(unittest.TestCase):
    """The pixel-art rules every sheet keeps, so each reads on both regions' dark backgrounds."""
    SHEETS = [(SLIME + n, 52, 32) for n in LOOKS] + [(SLIME + n, 22, 22) for n in GOBS] + [
        (FROG, 64, 48), (PLANT + "PlantTrap.png", 168, 146)]

    def test_hard_pixels_with_a_dark_outline(self):
        for rel, _, _ in self.SHEETS:
            with self.subTest(sheet=rel):
                img = picture(rel)
                self.assertTrue(set(np.unique(img[..., 3])) <= {0, 255}, "soft, half-clear pixels")
                m = opaque(img)
                pad = np.pad(m, 1)
                edge = m & ~(pad[:-2, 1:-1] & pad[2:, 1:-1] & pad[1:-1, :-2] & pad[1:-1, 2:])
                dark = luminance(img[..., :3])[edge] < 60
                self.assertGreater(dark.mean(), 0.85, "the silhouette has no ink outline")

    def test_light_comes_from_the_top_left(self):
        """A sheet mirrored to face right would keep its art but carry its light on the right."""
        for rel, fw, fh in [(SLIME + LOOKS[0], 52, 32), (FROG, 64, 48)]:
            with self.subTest(sheet=rel):
                f = picture(rel)[:fh, :fw]
                m = opaque(f)
                top, bottom, left, right = bbox(m)
                lum = luminance(f[..., :3])
                cx, cy = (left + right) / 2, (top + bottom) / 2
                ys, xs = np.mgrid[0:fh, 0:fw]
                lit = lum[m & (xs < cx) & (ys < cy)].mean()
                shade = lum[m & (xs > cx) & (ys > cy)].mean()
                self.assertGreater(lit, shade + 10)

    def test_looping_clips_join_without_a_jump(self):
        loops = [(picture(SLIME + n), 52, 32, (0, 1)) for n in LOOKS]
        loops += [(picture(FROG), 64, 48, (0,)), (picture(PLANT + "PlantTrap.png"), 168, 146, (0,))]
        for img, fw, fh, rows in loops:
            grid = cells(img, fw, fh)
            for row in rows:
                frames = [f for f in grid[row] if f[..., 3].any()]
                with self.subTest(size=(fw, fh), row=row):
                    for a, b in zip(frames, frames[1:] + frames[:1]):
                        self.assertGreater(iou(opaque(a), opaque(b)), 0.75, "a loop frame jumps")

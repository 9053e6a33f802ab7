"""The Lost Nomad's sheet and the boss bar, against what the game reads from them: the AnimData
fields it scans, the rows and frames it steps through, the hurtbox and attack boxes it derives
from the frame size, and where the boss HUD puts its four pictures and the name."""
import re
import unittest

import numpy as np
from PIL import ImageFont

from tests.common import ROOT, bbox, luminance, opaque, picture

SHEET = "Assets/Sprites/Enemies/Nomad.png"
DATA = ROOT / "Assets/Sprites/Enemies/NomadAnimData.txt"
ROWS = ("IDLE", "WALK", "LIGHT_ATTACK", "HEAVY_ATTACK", "ESCAPE_DASH", "RUSH_DASH", "DEAD")
TAILS = {"LIGHT_ATTACK": "Damage", "HEAVY_ATTACK": "Damage", "ESCAPE_DASH": "Dash", "RUSH_DASH": "Dash"}
BOSS = "Assets/Sprites/HUD/Boss/"
HUD_W, HUD_H, SCALE = 1920, 1080, 3


def tell(img):
    """White-hot pixels: the flash of a dangerous frame."""
    rgb = img[..., :3].astype(int)
    return opaque(img) & (rgb.min(axis=-1) >= 190) & (rgb[..., 0] >= 250) & (rgb[..., 1] >= 240)


def read_nomad_data():
    """The file, matched as a whole against the lines the game scans, in its order."""
    raw = DATA.read_bytes()
    text = raw.decode("ascii")
    clip = r"{} \| NbFrame : (\d+) / FrameRate : (\d+)"
    pattern = r"size : \((\d+),(\d+)\)\nfirst Frame Position : \(0,0\)\n\n"
    for label in ROWS:
        pattern += clip.format(label)
        if label in TAILS:
            pattern += r" / {} Frame : (\d+)".format(TAILS[label])
        pattern += r"\n"
    m = re.fullmatch(pattern, text)
    if not m:
        raise AssertionError("NomadAnimData.txt does not read as the game scans it")
    values = [int(v) for v in m.groups()]
    (fw, fh), values = values[:2], values[2:]
    clips = {}
    for label in ROWS:
        n, rate, values = values[0], values[1], values[2:]
        k = None
        if label in TAILS:
            k, values = values[0], values[1:]
        clips[label] = (n, rate, k)
    return raw, fw, fh, clips


class NomadSheetTest(unittest.TestCase):
    @classmethod
    def setUpClass(cls):
        cls.raw, cls.fw, cls.fh, cls.clips = read_nomad_data()
        cls.sheet = picture(SHEET)

    def frame(self, label, i):
        row = ROWS.index(label)
        return self.sheet[row * self.fh:(row + 1) * self.fh, i * self.fw:(i + 1) * self.fw]

    def frames(self, label):
        return [self.frame(label, i) for i in range(self.clips[label][0])]

    def test_data_file_is_plain_ascii_with_sane_clips(self):
        self.assertFalse(self.raw.startswith(b"\xef\xbb\xbf"))
        self.assertNotIn(b"\r", self.raw)
        for label, (n, rate, k) in self.clips.items():
            with self.subTest(label=label):
                self.assertGreaterEqual(n, 1)
                self.assertTrue(1 <= rate <= 60, "a clip that never finishes or skips its damage frame")
                if TAILS.get(label) == "Damage":
                    # a wind-up before the blow and a follow-through after it
                    self.assertTrue(2 <= k < n, f"damage frame {k} of {n}")
                elif k is not None:
                    self.assertTrue(1 <= k <= n)

    def test_sheet_layout_matches_the_data(self):
        counts = [self.clips[label][0] for label in ROWS]
        self.assertEqual(self.sheet.shape[:2], (self.fh * len(ROWS), self.fw * max(counts)))
        for label, n in zip(ROWS, counts):
            for i in range(self.sheet.shape[1] // self.fw):
                with self.subTest(label=label, frame=i):
                    used = self.frame(label, i)[..., 3].any()
                    self.assertEqual(used, i < n, "used frames drawn, unused cells empty")

    def test_every_frame_stands_on_its_origin_inside_the_frame(self):
        for label in ROWS:
            for i, f in enumerate(self.frames(label)):
                with self.subTest(label=label, frame=i):
                    self.assertTrue(f[-1, :, 3].any(), "nothing on the origin row")
                    self.assertFalse(f[0].any() or f[:, 0].any() or f[:, -1].any(), "cut by the frame")

    def test_standing_body_fills_the_hurtbox(self):
        # the hurtbox is the central fifth of the frame width and the lower half of its height
        hw, hh = self.fw * 0.2, self.fh * 0.5
        x0, x1 = int(self.fw / 2 - hw / 2), int(self.fw / 2 + hw / 2)
        for label in ("IDLE", "WALK"):
            for i, f in enumerate(self.frames(label)):
                with self.subTest(label=label, frame=i):
                    solid = opaque(f)
                    top = bbox(solid)[0]
                    self.assertAlmostEqual(self.fh - top, hh, delta=hh * 0.15)
                    self.assertGreater(solid[-int(hh):, x0:x1].mean(), 0.3)
                    feet = np.nonzero(solid[-1])[0]
                    self.assertLessEqual(abs((feet.min() + feet.max() + 1) / 2 - self.fw / 2), 8)

    def test_the_blows_are_told_and_reach_the_attack_box(self):
        reach = self.fw * 0.5                      # the attack box runs half the frame width ahead
        for label, box_h in (("LIGHT_ATTACK", self.fh * 0.5), ("HEAVY_ATTACK", self.fh)):
            n, _, k = self.clips[label]
            with self.subTest(label=label):
                hit = self.frame(label, k - 1)
                flash = tell(hit)
                self.assertGreaterEqual(flash.sum(), 12, "no tell on the damage frame")
                ys, xs = np.nonzero(flash)
                self.assertTrue((xs >= self.fw / 2).any(), "the flash is not on the blade in front")
                # the blade (not the smear) reaches most of the way to the end of the box, within it
                front = opaque(hit)
                cols = np.nonzero(front[self.fh - int(box_h):].any(axis=0))[0]
                self.assertGreaterEqual(cols.max() - self.fw / 2, 0.8 * reach)
                # the frame before the cut already warns: the eyes flare
                self.assertGreater(tell(self.frame(label, k - 2)).sum(), 0, "no flare before the cut")
                later = [tell(f).sum() for f in self.frames(label)[k + 1:]]
                self.assertTrue(all(v < flash.sum() for v in later), "the tell outlasts the blow")

    def test_no_tell_while_it_only_stands_or_walks(self):
        for label in ("IDLE", "WALK"):
            for i, f in enumerate(self.frames(label)):
                self.assertFalse(tell(f).any(), f"{label} {i}")

    def test_the_sheet_faces_right(self):
        # in its guard the blade is held out in front: most of the idle frame lies right of centre
        f = opaque(self.frame("IDLE", 0))
        half = self.fw // 2
        self.assertGreater(f[:, half + 13:].sum(), f[:, :half - 13].sum())

    def test_dashes_read_as_dashes(self):
        # the first frame the game moves the Nomad on trails afterimages (translucent pixels) on
        # the side it leaves: ahead of it for the leap back, behind it for the lunge
        for label, first, behind in (("ESCAPE_DASH", 0, 1), ("RUSH_DASH", 1, -1)):
            with self.subTest(label=label):
                f = self.frame(label, first)
                soft = (f[..., 3] > 0) & (f[..., 3] < 255)
                self.assertGreater(soft.sum(), 60, "no afterimage")
                cols = np.nonzero(soft.any(axis=0))[0]
                side = (cols.mean() - self.fw / 2) * behind
                self.assertGreater(side, 0, "the afterimage is on the wrong side")


class BossBarTest(unittest.TestCase):
    @classmethod
    def setUpClass(cls):
        cls.pics = {k: picture(BOSS + k + ".png")
                    for k in ("LifeContainer", "LifeBarLosed", "LifeBar", "LifeOrnements")}

    def placed(self, key):
        """(left, top) on the HUD as the game draws it: origin at the picture's centre, x3, at
        (960, 1080 - 1.5 x the frame's height)."""
        h, w = self.pics[key].shape[:2]
        hc = self.pics["LifeContainer"].shape[0]
        cx, cy = HUD_W / 2, HUD_H - hc * SCALE / 2
        return cx - w * SCALE / 2, cy - h * SCALE / 2

    def test_fill_and_trail_are_cut_cleanly(self):
        fill, trail = self.pics["LifeBar"], self.pics["LifeBarLosed"]
        self.assertEqual(fill.shape, trail.shape)
        for name, bar in (("fill", fill), ("trail", trail)):
            with self.subTest(bar=name):
                self.assertTrue(opaque(bar).all(), "a transparent margin throws the life ratio off")
                self.assertTrue((bar == bar[:, :1]).all(), "a cut bar must look the same at any width")
        self.assertGreater(luminance(trail[..., :3]).mean(), luminance(fill[..., :3]).mean() + 30)
        rgb = fill[..., :3].astype(int)
        self.assertTrue((rgb[..., 0] > rgb[..., 1] + 60).mean() > 0.8)

    def test_all_four_land_on_whole_pixels_with_the_frame_on_the_bottom_edge(self):
        for key in self.pics:
            left, top = self.placed(key)
            self.assertEqual((left % 1, top % 1), (0, 0), f"{key} lands between screen pixels")
        h = self.pics["LifeContainer"].shape[0]
        self.assertEqual(self.placed("LifeContainer")[1] + h * SCALE, HUD_H)
        self.assertEqual(self.pics["LifeOrnements"].shape, self.pics["LifeContainer"].shape)

    def test_fill_lies_in_the_frames_groove(self):
        box, fill = self.pics["LifeContainer"], self.pics["LifeBar"]
        bx, by = self.placed("LifeContainer")
        fx, fy = self.placed("LifeBar")
        x0, y0 = int((fx - bx) // SCALE), int((fy - by) // SCALE)
        h, w = fill.shape[:2]
        groove = box[y0:y0 + h, x0:x0 + w]
        self.assertTrue((groove[..., 3] > 0).all(), "lost life must show the empty groove")
        self.assertLess(luminance(groove[..., :3]).mean(), 40)
        for row in (y0 - 2, y0 + h + 1):          # gold rails just above and below it
            rail = box[row, x0:x0 + w]
            self.assertTrue((rail[:, 3] == 255).all())
            self.assertGreater(luminance(rail[:, :3]).mean(), 100)

    def test_ornaments_leave_the_bar_readable(self):
        orn, fill = self.pics["LifeOrnements"], self.pics["LifeBar"]
        ox, oy = self.placed("LifeOrnements")
        fx, fy = self.placed("LifeBar")
        x0, y0 = int((fx - ox) // SCALE), int((fy - oy) // SCALE)
        over = orn[y0:y0 + fill.shape[0], x0:x0 + fill.shape[1], 3]
        self.assertLess((over == 255).mean(), 0.03, "the ornaments hide the fill")
        w = fill.shape[1]
        self.assertTrue((over[:, w // 10:w - w // 10] < 160).all(), "only a faint sheen over the middle")

    def test_the_longest_name_sits_over_the_frame_above_the_bar(self):
        # the game's text: size 50, outline 2, origin (-0.5, 0.3) x the size of the word "text",
        # at the frame's top-left; its glyphs hang from a baseline one size below the text's top
        font = ImageFont.truetype(str(ROOT / "Assets/Fonts/alagard.ttf"), 50)
        x0, y0, x1, y1 = font.getbbox("text", anchor="ls")
        w, h = x1 - x0 + 4, y1 - y0 + 4
        left, top = self.placed("LifeContainer")
        pen_x, base = left + 0.5 * w, top - 0.3 * h + 50
        nx0, ny0, nx1, ny1 = font.getbbox("Anvileimh : The City's Guardian", anchor="ls")
        box = self.pics["LifeContainer"]
        fy = self.placed("LifeBar")[1]
        self.assertLessEqual(pen_x + nx1 + 2, left + box.shape[1] * SCALE, "the name runs off the frame")
        self.assertLessEqual(base + ny1 + 2, fy - 2 * SCALE, "the name's descenders reach the bar")
        self.assertGreaterEqual(base + ny0 - 2, top - SCALE, "the name floats above the frame")


if __name__ == "__main__":
    unittest.main()

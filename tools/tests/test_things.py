"""The chest, the ability items, the conjured cloud, the ability panel, the shop icons and the
blacksmith, against what the game reads from them: frame layouts it steps through, origins it
places them by, the box the hero stands on, and where the panels put icons and text."""
import re
import unittest

import numpy as np
from PIL import ImageFont

from tests.common import ROOT, bbox, luminance, opaque, picture

OBJECTS = "Assets/Sprites/Objects/"
CHEST_FRAME = (37, 29)
CHEST_ORIGIN = (18.5, 27.55)
ITEMS = ("Boot", "WingBoot", "Cloud")                 # by ability type 0, 1, 2
CLOUD_SHEET = "Assets/Sprites/Player/PlatformCapacity-SpriteSheet.png"
CLOUD_DATA = ROOT / "Assets/Sprites/Player/PlatformCapacityAnimData.txt"
CLOUD_TOP = 5                                         # the feet: 15 world px under the cloud's top
HERO_FEET = range(-9, 9)                              # columns of the hero's boots from the origin
SMITH = "Assets/Sprites/Merchant/blackSmith.png"
SMITH_FRAME, SMITH_FRAMES, ANVIL_FRAME = (123, 129), 12, 5
FONT = ROOT / "Assets/Fonts/alagard.ttf"
LONGEST_KEY = "L Windows"


def grown(mask):
    """Every set pixel and its eight neighbours."""
    p = np.pad(mask, 1)
    out = np.zeros_like(mask)
    h, w = mask.shape
    for dy in (0, 1, 2):
        for dx in (0, 1, 2):
            out |= p[dy:dy + h, dx:dx + w]
    return out


def cells(sheet, fw, fh):
    """{(row, column): frame} of a sheet cut in fw x fh cells."""
    return {(r, c): sheet[r * fh:(r + 1) * fh, c * fw:(c + 1) * fw]
            for r in range(sheet.shape[0] // fh) for c in range(sheet.shape[1] // fw)}


def ink(font_size, text):
    """(left, top, right, bottom) of a one-line text's glyphs, from the pen at its baseline."""
    return ImageFont.truetype(str(FONT), font_size).getbbox(text, anchor="ls")


def text_box(x, y, size, lines):
    """The glyphs' box of a text placed like the game's, origin (0, 0) at (x, y): the first
    baseline one character size below y, the next ones a line spacing apart."""
    f = ImageFont.truetype(str(FONT), size)
    spacing = max(f.font.height, 1.25 * size)
    boxes = [(i, f.getbbox(line, anchor="ls")) for i, line in enumerate(lines) if line]
    top = min(y + size + i * spacing + b[1] for i, b in boxes)
    bottom = max(y + size + i * spacing + b[3] for i, b in boxes)
    return x + min(b[0] for _, b in boxes), top, x + max(b[2] for _, b in boxes), bottom


def overlap(a, b):
    return a[0] < b[2] and b[0] < a[2] and a[1] < b[3] and b[1] < a[3]


class ChestTest(unittest.TestCase):
    @classmethod
    def setUpClass(cls):
        cls.sheet = picture(OBJECTS + "Chest.png")
        cls.cells = cells(cls.sheet, *CHEST_FRAME)
        cls.closed, cls.opening, cls.held = cls.cells[0, 0], cls.cells[1, 0], cls.cells[1, 1]

    def test_sheet_holds_the_closed_frame_and_the_two_opening_frames(self):
        self.assertEqual(self.sheet.shape[:2], (2 * CHEST_FRAME[1], 2 * CHEST_FRAME[0]))
        for key in ((0, 0), (1, 0), (1, 1)):
            self.assertTrue(opaque(self.cells[key]).sum() > 300, f"frame {key} is empty")
        self.assertFalse(self.cells[0, 1][..., 3].any(), "the closed row has one frame only")
        self.assertTrue(set(np.unique(self.sheet[..., 3])) <= {0, 255}, "soft pixels in the chest")

    def test_every_frame_stands_on_the_origin(self):
        # the origin is 27.55 down: the base line is the row across the floor, under 18.5
        for name, f in (("closed", self.closed), ("opening", self.opening), ("open", self.held)):
            with self.subTest(frame=name):
                top, bottom, left, right = bbox(opaque(f))
                self.assertEqual(bottom, int(CHEST_ORIGIN[1]))
                self.assertTrue(left >= 1 and right <= CHEST_FRAME[0] - 2 and top >= 1, "cut by the frame")
        top, bottom, left, right = bbox(opaque(self.closed))
        self.assertLessEqual(abs((left + right + 1) / 2 - CHEST_ORIGIN[0]), 1.0)

    def test_outline_is_the_closed_chest_grown_by_one_pixel(self):
        outline = picture(OBJECTS + "ChestOutline.png")
        self.assertEqual(outline.shape[:2], self.closed.shape[:2], "origins would not line up")
        solid = opaque(self.closed)
        self.assertFalse(solid[0].any() or solid[:, 0].any() or solid[:, -1].any() or solid[-1].any(),
                         "no room left for the outline")
        self.assertTrue(np.array_equal(opaque(outline), grown(solid)))
        self.assertTrue(set(np.unique(outline[..., 3])) <= {0, 255})
        colours = np.unique(outline[opaque(outline)][:, :3], axis=0)
        self.assertEqual(len(colours), 1)
        self.assertGreater(luminance(colours[0]), 200)

    def test_the_lid_swings_up(self):
        tops = [bbox(opaque(f))[0] for f in (self.closed, self.opening, self.held)]
        self.assertGreater(tops[0], tops[1] + 2, "the opening lid does not rise")
        self.assertGreaterEqual(tops[1], tops[2])
        # the box under the lid does not move: the lower half of every frame is the same
        half = CHEST_FRAME[1] * 2 // 3
        for f in (self.opening, self.held):
            self.assertTrue(np.array_equal(f[half:, :, 3], self.closed[half:, :, 3]))

    def test_chest_is_lit_from_the_top_left(self):
        # the game mirrors the picture for a chest facing left; the art itself faces right
        solid = opaque(self.closed)
        lum = luminance(self.closed[..., :3])
        top, bottom, left, right = bbox(solid)
        cols = np.arange(self.closed.shape[1])[None, :]
        third = (right - left) // 3
        self.assertGreater(lum[solid & (cols < left + third)].mean(), lum[solid & (cols > right - third)].mean())


class ItemTest(unittest.TestCase):
    @classmethod
    def setUpClass(cls):
        cls.items = {name: picture(f"{OBJECTS}PlayerCapacity/{name}.png") for name in ITEMS}

    def test_items_are_centred_on_their_origin_with_a_clear_margin(self):
        for name, img in self.items.items():
            with self.subTest(item=name):
                h, w = img.shape[:2]
                self.assertTrue(16 <= w <= 48 and 16 <= h <= 48, f"{w} x {h}")
                top, bottom, left, right = bbox(img[..., 3] > 0)
                self.assertTrue(top >= 1 and left >= 1 and bottom <= h - 2 and right <= w - 2, "cut off")
                self.assertLessEqual(abs((left + right + 1) / 2 - w / 2), 2.0)
                self.assertLessEqual(abs((top + bottom + 1) / 2 - h / 2), 3.0)
                self.assertTrue(set(np.unique(img[..., 3])) <= {0, 255})

    def test_the_three_items_tell_apart_at_a_glance(self):
        def share(img, test):
            rgb = img[opaque(img)][:, :3].astype(int)
            return test(rgb[:, 0], rgb[:, 1], rgb[:, 2]).mean()

        def white(r, g, b):
            return (luminance(np.stack([r, g, b], -1)) > 190) & (np.max([r, g, b], 0) - np.min([r, g, b], 0) < 60)

        def red(r, g, b):
            return (r > g + 50) & (r > b + 40)

        def cyan(r, g, b):
            return (b > 200) & (r < 150)
        boot, wing, cloud = (self.items[n] for n in ITEMS)
        self.assertGreater(share(wing, white), 0.15, "the winged boot's wing is not there")
        self.assertLess(share(boot, white), 0.10)
        self.assertGreater(share(boot, red), 0.3, "the dash boot is not red leather")
        self.assertLess(share(wing, red), 0.1)
        self.assertGreater(share(boot, cyan), 0.02, "no speed lines behind the dash boot")
        self.assertEqual(share(wing, cyan), 0.0)
        self.assertGreater(share(cloud, white), 0.25)
        self.assertLess(share(cloud, red), 0.05)


def read_cloud_data():
    """The file, matched as a whole against the lines the game scans, in its order."""
    raw = CLOUD_DATA.read_bytes()
    pattern = (r"size : \((\d+),(\d+)\)\nfirst Frame Position : \(0,0\)\n\n"
               r"CREATION \| NbFrame : (\d+) / FrameRate : (\d+)\n"
               r"STATIC \| NbFrame : (\d+) / FrameRate : (\d+)\n\n"
               r"DESTRUCTION \| NbFrame : (\d+) / FrameRate : (\d+)\n\n")
    m = re.fullmatch(pattern, raw.decode("ascii"))
    if not m:
        raise AssertionError("PlatformCapacityAnimData.txt does not read as the game scans it")
    v = [int(x) for x in m.groups()]
    return v[0], v[1], {"CREATION": v[2:4], "STATIC": v[4:6], "DESTRUCTION": v[6:8]}


class CloudTest(unittest.TestCase):
    @classmethod
    def setUpClass(cls):
        cls.w, cls.h, cls.clips = read_cloud_data()
        cls.sheet = picture(CLOUD_SHEET)

    def frames(self, label):
        row = ("CREATION", "STATIC", "DESTRUCTION").index(label)
        n = self.clips[label][0]
        return [self.sheet[row * self.h:(row + 1) * self.h, i * self.w:(i + 1) * self.w] for i in range(n)]

    def test_sheet_matches_the_clips_and_every_clip_finishes(self):
        most = max(n for n, _ in self.clips.values())
        self.assertEqual(self.sheet.shape[:2], (3 * self.h, most * self.w))
        for label, (n, rate) in self.clips.items():
            with self.subTest(clip=label):
                self.assertTrue(n >= 1 and 1 <= rate <= 60, f"{n} frames at {rate} fps")
                for i, f in enumerate(self.frames(label)):
                    self.assertTrue(f[..., 3].any(), f"frame {i} is empty")
                row = ("CREATION", "STATIC", "DESTRUCTION").index(label)
                rest = self.sheet[row * self.h:(row + 1) * self.h, n * self.w:]
                self.assertFalse(rest[..., 3].any(), "art after the clip's last frame")
        n, rate = self.clips["CREATION"]
        self.assertLessEqual(n / rate, 0.6, "the cloud forms too slowly for a mid-air rescue")

    def test_the_feet_meet_the_cloud_while_it_can_be_stood_on(self):
        cx = self.w // 2
        for label in ("CREATION", "STATIC"):
            for i, f in enumerate(self.frames(label)):
                with self.subTest(clip=label, frame=i):
                    a = f[..., 3] > 0
                    self.assertFalse(a[:CLOUD_TOP].any(), "art above the walkable top")
                    for dx in HERO_FEET:
                        col = a[:, cx + dx]
                        self.assertTrue(col.any() and np.argmax(col) == CLOUD_TOP,
                                        f"the surface under column {dx} is not on row {CLOUD_TOP}")

    def test_body_keeps_inside_the_box_the_hero_stands_on(self):
        x0, x1 = 0.15 * self.w, 0.85 * self.w
        y1 = CLOUD_TOP + 0.7 * self.h
        for label in ("CREATION", "STATIC"):
            for i, f in enumerate(self.frames(label)):
                with self.subTest(clip=label, frame=i):
                    top, bottom, left, right = bbox(f[..., 3] > 0)
                    self.assertTrue(left >= x0 and right + 1 <= x1, f"columns {left}..{right}")
                    self.assertLessEqual(bottom + 1, y1)

    def test_the_cloud_dissolves(self):
        size = [opaque(f).sum() for f in self.frames("DESTRUCTION")]
        whole = opaque(self.frames("STATIC")[0]).sum()
        self.assertGreater(size[0], 0.6 * whole)
        self.assertLess(size[-1], 0.1 * whole)
        self.assertTrue(all(a >= b for a, b in zip(size[1:], size[2:])), "it grows back while dissolving")


class PanelTest(unittest.TestCase):
    """block.png drawn x1.25 centred on the 1920 x 1080 screen; the icon at (left + 50, top + 30);
    the title (55) 25 px right of the icon, the description (25) 70 px under the icon's top."""
    ABILITIES = (("Dash", "ExplanationHUD/BOTTE.png", 4.0, "Quickly cover a short distance \n\n\nPress : RT / "),
                 ("Run", "ExplanationHUD/BOTTE AILESRecovered.png", 4.0,
                  "Run right after performing a dash.\n\n\nMaintain : RT / "),
                 ("Cloud Creation", "Shop/AttackUp.png", 3.5,
                  "Create a small cloud while in the air.\n\n\nPress :  LT / "))

    @classmethod
    def setUpClass(cls):
        cls.block = picture("Assets/Sprites/ExplanationHUD/block.png")
        h, w = cls.block.shape[:2]
        cls.left, cls.top = 960 - 1.25 * w / 2, 540 - 1.25 * h / 2

    def plain(self, rect):
        """Is the block plain dark plate under a screen rectangle?"""
        x0, y0, x1, y1 = ((v - o) / 1.25 for v, o in zip(rect, (self.left, self.top) * 2))
        h, w = self.block.shape[:2]
        if x0 < 0 or y0 < 0 or x1 > w or y1 > h:
            return False
        under = self.block[int(y0):int(np.ceil(y1)), int(x0):int(np.ceil(x1))]
        return bool((under[..., 3] >= 200).all() and (luminance(under[..., :3]) < 50).all())

    def test_block_is_a_dark_plate_in_a_gold_frame(self):
        h, w = self.block.shape[:2]
        self.assertTrue(2.2 <= w / h <= 3.0, "not the proportions of a panel for an icon and four lines")
        rim = np.concatenate([self.block[2:8, w // 4:3 * w // 4].reshape(-1, 4),
                              self.block[h // 4:3 * h // 4, 2:8].reshape(-1, 4)])
        rgb = rim[:, :3].astype(int)
        self.assertGreater(((rgb[:, 0] > 180) & (rgb[:, 0] > rgb[:, 2] + 60)).mean(), 0.2, "no gold frame")

    def test_icon_title_and_four_lines_sit_on_plain_plate(self):
        for title, icon_rel, scale, text in self.ABILITIES:
            with self.subTest(ability=title):
                icon = picture("Assets/Sprites/" + icon_rel)
                il, it = self.left + 50, self.top + 30
                iw, ih = icon.shape[1] * scale, icon.shape[0] * scale
                self.assertTrue(self.plain((il, it, il + iw, it + ih)), "the icon covers the frame")
                tx = il + iw + 25
                self.assertTrue(self.plain(text_box(tx, it, 55, [title])), "the title runs off the plate")
                lines = (text + LONGEST_KEY).split("\n")
                self.assertEqual(len(lines), 4)
                self.assertTrue(self.plain(text_box(tx, it + 70, 25, lines)), "the description runs off")

    def test_icons_are_drawn_at_one_size_in_the_panel(self):
        sizes = [picture("Assets/Sprites/" + rel).shape[0] * s for _, rel, s, _ in self.ABILITIES]
        self.assertLessEqual(max(sizes) - min(sizes), 16)
        boots = [picture("Assets/Sprites/" + rel) for _, rel, _, _ in self.ABILITIES[:2]]
        self.assertEqual(boots[0].shape, boots[1].shape)


class ShopTest(unittest.TestCase):
    """Icons x1.75 from their left middle at (340, 355) and (1060, 355) on a 1440 x 810 panel at
    (240, 135); the name (48) at the icon's top right + 25, the price (30) at its middle, the BUY
    button (144 x 43.2, centred) 250 px right of the icon and 30 px under its middle."""
    PANEL = (240, 135, 1680, 945)
    GOODS = (("Potion", "POTION", (340, 355)), ("AttackUp", "WEAPON DAMAGE +", (1060, 355)))

    def test_names_prices_and_buttons_fit_the_panel_without_overlapping(self):
        for name, label, (px_, py) in self.GOODS:
            with self.subTest(icon=name):
                icon = picture(f"Assets/Sprites/Shop/{name}.png")
                self.assertLessEqual(icon.shape[1], 100)
                W, H = icon.shape[1] * 1.75, icon.shape[0] * 1.75
                L, T = px_, py - H / 2
                self.assertTrue(T >= self.PANEL[1] and T + H <= self.PANEL[3])
                name_box = text_box(L + W + 25, T, 48, [label])
                price_box = text_box(L + W + 25, T + H / 2, 30, ["13500"])
                bx, by = L + W + 250, T + H / 2 + 30
                button = (bx - 72, by - 21.6, bx + 72, by + 21.6)
                for box in (name_box, price_box, button):
                    self.assertLessEqual(box[2], self.PANEL[2] - 8, "runs off the panel")
                    self.assertLessEqual(box[3], self.PANEL[3])
                self.assertFalse(overlap(name_box, price_box), "the price runs into the name")
                self.assertFalse(overlap(button, name_box) or overlap(button, price_box))

    def test_shop_icons_share_their_row_and_frame(self):
        potion, upgrade = (picture(f"Assets/Sprites/Shop/{n}.png") for n, _, _ in self.GOODS)
        self.assertEqual(potion.shape, upgrade.shape)
        for img in (potion, upgrade):
            # the game greys the potion by tinting it: it must be opaque where it shows
            self.assertTrue(set(np.unique(img[..., 3])) <= {0, 255})
            self.assertGreater(opaque(img).mean(), 0.6)


class BlacksmithTest(unittest.TestCase):
    @classmethod
    def setUpClass(cls):
        sheet = picture(SMITH)
        fw, fh = SMITH_FRAME
        cls.sheet = sheet
        cls.frames = [sheet[:, i * fw:(i + 1) * fw] for i in range(sheet.shape[1] // fw)]

    def test_one_row_of_twelve_frames_standing_on_the_floor(self):
        self.assertEqual(self.sheet.shape[:2], (SMITH_FRAME[1], SMITH_FRAME[0] * SMITH_FRAMES))
        for i, f in enumerate(self.frames):
            with self.subTest(frame=i):
                a = f[..., 3] > 0
                self.assertTrue(a[-1].any(), "nothing on the floor under the origin")
                self.assertFalse(a[0].any() or a[:, 0].any() or a[:, -1].any(), "cut by the frame")
                top, bottom, left, right = bbox(a)
                self.assertGreaterEqual(SMITH_FRAME[1] - top, 70, "shorter than a smith should be")

    def test_the_hammer_lands_on_the_frame_the_anvil_rings(self):
        tops = [bbox(f[..., 3] > 0)[0] for f in self.frames]
        raised = min(tops[ANVIL_FRAME - 3:ANVIL_FRAME])
        self.assertGreater(tops[ANVIL_FRAME], raised + 15, "the hammer is still up when the anvil rings")

        def burst(f):
            # white-hot sparks over the anvil's face, right of the smith and below his shoulders
            rgb = f[..., :3].astype(int)
            hot = opaque(f) & (rgb.min(axis=-1) >= 200) & (rgb[..., 0] >= 250)
            return hot[80:105, 62:105].sum()
        bursts = [burst(f) for f in self.frames]
        self.assertEqual(int(np.argmax(bursts)), ANVIL_FRAME)
        self.assertGreater(bursts[ANVIL_FRAME], 3 * max(bursts[:ANVIL_FRAME] + bursts[ANVIL_FRAME + 1:]))

    def test_the_merchant_menu_hides_nothing(self):
        # BUY (x1.2) is centred 250 world px left of and 200 above the merchant's point: in the
        # frame, the first 14 columns between 49 and 70 tx above the floor stay clear
        for i, f in enumerate(self.frames):
            with self.subTest(frame=i):
                self.assertFalse(f[SMITH_FRAME[1] - 80:SMITH_FRAME[1] - 49, :14, 3].any())


if __name__ == "__main__":
    unittest.main()

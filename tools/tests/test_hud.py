"""The hero's HUD pictures against what the HUD code reads: positions on the 1920 x 1080 HUD,
widths it cuts, clip rows it steps through, and the menu button."""
import unittest

import numpy as np

from tests.common import bbox, luminance, opaque, picture

PLAYER = "Assets/Sprites/HUD/Player/"
CONTAINER_AT = (25, 25)
PIECES_AT = ((235, 61), (394, 61), (514, 61))   # HUD px of pieces 1, 2, 3
FLASK_AT = (247, 175)
SCALE = 3
HEAL_ROWS = (8, 5, 8, 5, 8, 8)                   # frames in sheet rows 0..5 (clips 1..6)
FRAME = (27, 26)


class LifeBarTest(unittest.TestCase):
    def test_piece_sizes(self):
        fill40, lost40 = picture(PLAYER + "LifeBar40.png"), picture(PLAYER + "LifeBar40Lost.png")
        fill30, lost30 = picture(PLAYER + "LifeBar30.png"), picture(PLAYER + "LifeBarLost.png")
        self.assertEqual(fill40.shape[1], 53)
        self.assertEqual(fill30.shape[1], 40)
        self.assertEqual(lost40.shape, fill40.shape)
        self.assertEqual(lost30.shape, fill30.shape)
        self.assertEqual(fill40.shape[0], fill30.shape[0])

    def test_pieces_abut_in_hud_space(self):
        widths = (picture(PLAYER + "LifeBar40.png").shape[1], picture(PLAYER + "LifeBar30.png").shape[1],
                  picture(PLAYER + "LifeBar30.png").shape[1])
        for k in range(2):
            self.assertEqual(PIECES_AT[k][0] + SCALE * widths[k], PIECES_AT[k + 1][0])

    def test_cut_bars_look_the_same_at_any_width(self):
        # the game cuts the width from the right: no transparent margin, every column alike
        for name in ("LifeBar40", "LifeBar40Lost", "LifeBar30", "LifeBarLost"):
            with self.subTest(name=name):
                bar = picture(PLAYER + name + ".png")
                self.assertTrue(opaque(bar).all())
                self.assertTrue((bar == bar[:, :1]).all())

    def test_fill_is_red_and_lost_layer_stands_apart(self):
        fill = picture(PLAYER + "LifeBar30.png")[..., :3].astype(int)
        lost = picture(PLAYER + "LifeBarLost.png")[..., :3].astype(int)
        self.assertTrue((fill[..., 0] > fill[..., 1] + 60).mean() > 0.8)
        self.assertGreater(luminance(lost).mean(), luminance(fill).mean() + 30)


class ContainerTest(unittest.TestCase):
    def setUp(self):
        self.box = picture(PLAYER + "LifeContainer.png")
        self.bar_h = picture(PLAYER + "LifeBar40.png").shape[0]

    def local(self, hud_xy):
        x, y = hud_xy[0] - CONTAINER_AT[0], hud_xy[1] - CONTAINER_AT[1]
        self.assertEqual((x % SCALE, y % SCALE), (0, 0), "not on the container's pixel grid")
        return x // SCALE, y // SCALE

    def test_bars_land_on_the_groove(self):
        x0, y0 = self.local(PIECES_AT[0])
        self.assertEqual((x0, y0), (70, 12))
        x1 = self.local(PIECES_AT[2])[0] + picture(PLAYER + "LifeBar30.png").shape[1]
        h, w = self.box.shape[:2]
        self.assertGreaterEqual(w, x1 + 1, "the last piece runs off the container")
        groove = self.box[y0:y0 + self.bar_h, x0:x1]
        self.assertTrue((groove[..., 3] > 0).all(), "emptied life must show the groove")
        self.assertLess(luminance(groove[..., :3]).mean(), 40)
        # gold rails frame the groove just above and below it
        for row in (y0 - 2, y0 + self.bar_h + 1):
            rail = self.box[row, x0:x1]
            self.assertTrue(opaque(rail[None])[0].all())
            self.assertGreater(luminance(rail[..., :3]).mean(), 100)

    def test_flask_hangs_in_its_alcove(self):
        # every pixel of every flask frame lands on the alcove's dark inside, never on its gold
        fx, fy = self.local(FLASK_AT)
        h, w = self.box.shape[:2]
        self.assertLessEqual(fy + FRAME[1], h)
        behind = self.box[fy:fy + FRAME[1], fx:fx + FRAME[0]]
        sheet = picture(PLAYER + "HealBar/HealSheet.png")
        drawn = np.zeros(behind.shape[:2], bool)
        for row in range(sheet.shape[0] // FRAME[1]):
            for col in range(sheet.shape[1] // FRAME[0]):
                cell = sheet[row * FRAME[1]:(row + 1) * FRAME[1], col * FRAME[0]:(col + 1) * FRAME[0]]
                drawn |= cell[..., 3] > 0
        a = behind[..., 3][drawn]
        self.assertTrue(((a > 0) & (a < 255)).all())
        # and a gold frame closes round it on both sides and below
        for column in (self.box[fy + 8:fy + FRAME[1], fx - 1], self.box[fy + 8:fy + FRAME[1], fx + FRAME[0]],
                       self.box[fy + FRAME[1], fx:fx + FRAME[0]]):
            self.assertTrue((column[:, 3] == 255).all())


class HealSheetTest(unittest.TestCase):
    def setUp(self):
        self.sheet = picture(PLAYER + "HealBar/HealSheet.png")

    def frame(self, row, col):
        fw, fh = FRAME
        return self.sheet[row * fh:(row + 1) * fh, col * fw:(col + 1) * fw]

    def draught(self, row, col):
        """Pixels of warm draught in the bulb (below the neck), where the frame differs from the
        empty flask."""
        f = self.frame(row, col).astype(int)[8:]
        empty = self.frame(0, 7).astype(int)[8:]
        changed = (f != empty).any(axis=-1)
        r, g, b = f[..., 0], f[..., 1], f[..., 2]
        warm = (r > 140) & (r >= g) & (g > b) & (r - b > 50)
        return (changed & (f[..., 3] == 255) & warm).sum()

    def test_layout(self):
        self.assertEqual(self.sheet.shape[:2], (6 * FRAME[1], 8 * FRAME[0]))
        for row, n in enumerate(HEAL_ROWS):
            for col in range(8):
                used = self.frame(row, col)[..., 3].any()
                self.assertEqual(used, col < n, f"row {row} frame {col}")

    def test_rows_join_where_one_use_follows_another(self):
        full = self.frame(0, 0)
        for row in (1, 3):
            self.assertTrue(np.array_equal(self.frame(row, 0), full), f"row {row} does not start full")
        for end_row, start_row in ((1, 2), (3, 4), (4, 5)):
            last = self.frame(end_row, HEAL_ROWS[end_row] - 1)
            self.assertTrue(np.array_equal(last, self.frame(start_row, 0)), f"row {start_row}")
        empty = self.frame(0, 7)
        for row in (2, 5):
            self.assertTrue(np.array_equal(self.frame(row, HEAL_ROWS[row] - 1), empty))

    def test_levels_drain_and_hold(self):
        full = self.draught(0, 0)
        ends = {row: self.draught(row, HEAL_ROWS[row] - 1) for row in range(6)}
        self.assertEqual(ends[0], 0)
        self.assertAlmostEqual(ends[1] / full, 1 / 2, delta=0.08)
        self.assertAlmostEqual(ends[3] / full, 2 / 3, delta=0.08)
        self.assertAlmostEqual(ends[4] / full, 1 / 3, delta=0.08)
        for row, n in enumerate(HEAL_ROWS):
            amounts = [self.draught(row, c) for c in range(n)]
            self.assertEqual(amounts, sorted(amounts, reverse=True), f"row {row} refills")
            self.assertLess(amounts[-1], amounts[0])


class VignetteTest(unittest.TestCase):
    def test_size_clear_centre_and_red_edge(self):
        vig = picture(PLAYER + "vignette.png")
        self.assertEqual(vig.shape[:2], (1080, 1920))
        a = vig[..., 3]
        # the centre is exactly clear over a large rectangle
        self.assertFalse(a[200:880, 330:1590].any())
        self.assertGreater((a == 0).mean(), 0.4)
        for corner in (a[:40, :40], a[-40:, -40:]):
            self.assertGreater(corner.mean(), 200)
        rgb = vig[a > 0][:, :3].astype(int)
        self.assertTrue((rgb[:, 0] > rgb[:, 1] + 20).all())
        # it grows darker towards the edge, band by band
        bands = [a[540, x:x + 60].mean() for x in range(300, 0, -60)]
        self.assertEqual(bands, sorted(bands))


class CounterAndButtonTest(unittest.TestCase):
    def test_coin_icon_leaves_room_for_the_amount(self):
        icon = picture("Assets/Sprites/HUD/Score/hud piece.png")
        h, w = icon.shape[:2]
        left = 1800 - SCALE * w / 2            # origin at the centre, at HUD (1800, 55)
        rgb = icon[..., :3].astype(int)
        gold = opaque(icon) & (rgb[..., 0] > 150) & (rgb[..., 0] > rgb[..., 2] + 60)
        middle = gold[h // 2 - 3:h // 2 + 3, :w // 2]      # the coin, clear of the plaque's rules
        coin_right = left + SCALE * (bbox(middle)[3] + 1)
        self.assertLessEqual(coin_right, 1746, "a four-digit amount would cover the coin")
        # the size-72 amount spans HUD y 29..79: the plaque must be taller than it
        self.assertGreaterEqual(55 - SCALE * h / 2, 0)
        self.assertLessEqual(55 - SCALE * h / 2, 29)
        self.assertGreaterEqual(55 + SCALE * h / 2, 79)

    def test_world_button_stretches_to_the_menu_buttons(self):
        button = picture("Assets/Sprites/WorldHUD/button.png")
        h, w = button.shape[:2]
        self.assertAlmostEqual((w / h) / (175 / 52), 1.0, delta=0.05)
        self.assertAlmostEqual(175 / w, 3.0, delta=0.1)
        # white labels need a dark face; the frame is gold and opaque all round
        face = button[h // 3:h - h // 3, w // 4:w - w // 4]
        self.assertLess(luminance(face[..., :3]).mean(), 70)
        self.assertTrue((face[..., 3] > 200).all())
        edge = np.concatenate([button[1, 3:-3], button[-2, 3:-3], button[3:-3, 1], button[3:-3, -2]])
        self.assertTrue((edge[:, 3] == 255).all())
        self.assertGreater(luminance(edge[:, :3]).mean(), 100)


if __name__ == "__main__":
    unittest.main()

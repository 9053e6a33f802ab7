"""Checkpoint statues, their highlight pictures and the coins, as the game draws them: whole
texture, x3, origin at the bottom centre."""
import unittest

import numpy as np

from tests.common import bbox, luminance, opaque, picture

STATUES = "Assets/Sprites/Objects/Checkpoint/{}-{}.png"
HERO_HEIGHT = 54          # the hero's idle frame, feet to helm, in texture px


def grown(mask):
    """Every set pixel and its eight neighbours."""
    p = np.pad(mask, 1)
    out = np.zeros_like(mask)
    h, w = mask.shape
    for dy in (0, 1, 2):
        for dx in (0, 1, 2):
            out |= p[dy:dy + h, dx:dx + w]
    return out


class StatueTest(unittest.TestCase):
    def pair(self, region):
        return picture(STATUES.format(region, "Statue")), picture(STATUES.format(region, "StatueOutline"))

    def test_outline_is_the_statue_grown_by_one_pixel_on_the_same_canvas(self):
        for region in ("Forest", "City"):
            with self.subTest(region=region):
                statue, outline = self.pair(region)
                self.assertEqual(statue.shape, outline.shape)
                self.assertTrue(np.array_equal(opaque(outline), grown(opaque(statue))))
                # one bright colour, fully opaque or fully clear
                self.assertTrue(set(np.unique(outline[..., 3])) <= {0, 255})
                colours = np.unique(outline[opaque(outline)][:, :3], axis=0)
                self.assertEqual(len(colours), 1)
                self.assertGreater(luminance(colours[0]), 200)

    def test_statue_stands_on_its_bottom_centre_with_room_for_the_outline(self):
        for region in ("Forest", "City"):
            with self.subTest(region=region):
                statue, _ = self.pair(region)
                h, w = statue.shape[:2]
                top, bottom, left, right = bbox(opaque(statue))
                self.assertEqual(bottom, h - 1, "the plinth must meet the floor")
                self.assertGreaterEqual(top, 1)
                self.assertGreaterEqual(left, 1)
                self.assertLessEqual(right, w - 2)
                self.assertLessEqual(abs((left + right + 1) / 2 - w / 2), 2.0, "not centred on the origin")

    def test_statue_is_at_least_as_tall_as_the_hero(self):
        for region in ("Forest", "City"):
            with self.subTest(region=region):
                statue, _ = self.pair(region)
                top, bottom, left, right = bbox(opaque(statue))
                self.assertGreaterEqual(bottom - top + 1, HERO_HEIGHT)
                self.assertLessEqual(statue.shape[0], 96)

    def test_statue_is_hard_pixels_lit_from_the_top_left_with_a_warm_flame(self):
        for region in ("Forest", "City"):
            with self.subTest(region=region):
                statue, _ = self.pair(region)
                a = statue[..., 3]
                soft = (a > 0) & (a < 255)
                self.assertLess(soft.sum(), 0.02 * (a > 0).sum(), "only a faint glow may be soft")
                solid = opaque(statue)
                rgb = statue[..., :3].astype(int)
                flame = solid & (rgb[..., 0] > 230) & (rgb[..., 1] > 150) & (rgb[..., 2] < 200)
                self.assertGreaterEqual(flame.sum(), 4, "no candle flame")
                top, bottom, left, right = bbox(solid)
                lum = luminance(statue[..., :3])
                third = (right - left) // 3
                cols = np.arange(statue.shape[1])
                lit = lum[solid & (cols < left + third)[None, :] & ~flame].mean()
                dark = lum[solid & (cols > right - third)[None, :] & ~flame].mean()
                self.assertGreater(lit, dark)

    def test_each_region_wears_its_own_palette(self):
        forest, _ = self.pair("Forest")
        city, _ = self.pair("City")

        def share(img, test):
            rgb = img[opaque(img)][:, :3].astype(int)
            return test(rgb[:, 0], rgb[:, 1], rgb[:, 2]).mean()

        moss = share(forest, lambda r, g, b: (g > r + 25) & (g > b + 40))
        verdigris = share(city, lambda r, g, b: (g > r + 40) & (b > r + 30))
        self.assertGreater(moss, 0.05)
        self.assertGreater(verdigris, 0.04)
        self.assertLess(share(city, lambda r, g, b: (g > r + 25) & (g > b + 40)), 0.02)


class CoinTest(unittest.TestCase):
    def test_coins_rest_on_their_bottom_centre(self):
        for name in ("small piece", "big piece"):
            with self.subTest(name=name):
                coin = picture(f"Assets/Sprites/Objects/{name}.png")
                h, w = coin.shape[:2]
                top, bottom, left, right = bbox(coin[..., 3] > 0)
                self.assertEqual(bottom, h - 1)
                self.assertLessEqual(abs((left + right + 1) / 2 - w / 2), 1.5)

    def test_coins_are_bright_gold_with_a_dark_outline(self):
        sizes = {}
        for name in ("small piece", "big piece"):
            with self.subTest(name=name):
                coin = picture(f"Assets/Sprites/Objects/{name}.png")
                self.assertTrue(set(np.unique(coin[..., 3])) <= {0, 255})
                rgb = coin[opaque(coin)][:, :3].astype(int)
                ink = luminance(rgb) < 40
                face = rgb[~ink]
                gold = (face[:, 0] > face[:, 1]) & (face[:, 1] > face[:, 2]) & (luminance(face) > 100)
                self.assertGreater(gold.mean(), 0.8)
                self.assertGreater(ink.sum(), 8, "no dark outline")
                self.assertGreater(luminance(rgb).max(), 230, "no glint")
                sizes[name] = opaque(coin).sum()
        self.assertGreater(sizes["big piece"], 1.8 * sizes["small piece"])


if __name__ == "__main__":
    unittest.main()

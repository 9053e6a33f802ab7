"""The elevator's lever, gears, sparks and cabin tiles, against what the game reads from them: the
frames its clips step through, the origins it places them by, and the cabin floor the hero
stands on."""
import json
import unittest

import numpy as np

from tests.common import ROOT, bbox, opaque, picture

OBJECTS = "Assets/Sprites/Objects/"
LEVER_FRAME = (68, 47)
LEVER_FRAMES = 8                       # the game's pull clip steps through this many
LEVER_ORIGIN = (34, 40.89)
SPARK_FRAME, SPARK_FRAMES = (15, 28), 4
GEAR_GAP = 141 / 3                     # big and small gear centres, in texture pixels
CABIN_ROOF = (42, 43, 44)              # tileset indices of the cabin's two rows
CABIN_FLOOR = (45, 46, 47)
CABIN_DECK = 5


def frames(img, w):
    return [img[:, i * w:(i + 1) * w] for i in range(img.shape[1] // w)]


class LeverTest(unittest.TestCase):
    def setUp(self):
        self.sheet = picture(OBJECTS + "Elevator-Lever.png")

    def test_the_pull_clip_starts_and_ends_at_rest_and_moves_between(self):
        self.assertEqual(self.sheet.shape[:2], (LEVER_FRAME[1], LEVER_FRAME[0] * LEVER_FRAMES))
        fs = frames(self.sheet, LEVER_FRAME[0])
        np.testing.assert_array_equal(fs[0], fs[-1])
        moved = [not np.array_equal(f, fs[0]) for f in fs[1:-1]]
        self.assertTrue(all(moved))

    def test_every_frame_stands_on_the_origin(self):
        for f in frames(self.sheet, LEVER_FRAME[0]):
            top, bottom, left, right = bbox(opaque(f))
            self.assertAlmostEqual(bottom + 1, LEVER_ORIGIN[1], delta=1.2)
            self.assertLess(abs((left + right + 1) / 2 - LEVER_ORIGIN[0]), 3)
            self.assertGreater(top, 0)

    def test_outline_is_the_rest_pose_grown(self):
        outline = picture(OBJECTS + "Elevator-LeverOutline.png")
        self.assertEqual(outline.shape[:2], (LEVER_FRAME[1], LEVER_FRAME[0]))
        rest = opaque(self.sheet[:, :LEVER_FRAME[0]])
        glow = opaque(outline)
        self.assertTrue(np.all(glow[rest]))
        self.assertGreater(glow.sum(), rest.sum())


class GearAndSparkTest(unittest.TestCase):
    def test_gears_are_square_centred_and_mesh(self):
        radii = []
        for name in ("Gear-Big.png", "Gear-Small.png"):
            g = picture(OBJECTS + name)
            self.assertEqual(g.shape[0], g.shape[1])
            top, bottom, left, right = bbox(opaque(g))
            self.assertAlmostEqual((top + bottom + 1) / 2, g.shape[0] / 2, delta=1)
            self.assertAlmostEqual((left + right + 1) / 2, g.shape[1] / 2, delta=1)
            radii.append((right - left + 1) / 2)
        teeth = 4.0
        self.assertLess(sum(radii) - 2 * teeth, GEAR_GAP)       # the wheels do not overlap
        self.assertGreater(sum(radii), GEAR_GAP)                # but their teeth engage

    def test_spark_clips_have_four_visible_frames(self):
        for name in ("SparkDownFX.png", "SparkUpFX.png"):
            img = picture("Assets/Sprites/FX/" + name)
            self.assertEqual(img.shape[:2], (SPARK_FRAME[1], SPARK_FRAME[0] * SPARK_FRAMES))
            fs = frames(img, SPARK_FRAME[0])
            for f in fs:
                self.assertGreater(opaque(f).sum(), 10)
            self.assertFalse(np.array_equal(fs[0], fs[1]))

    def test_down_sparks_spring_from_the_top_and_up_sparks_from_the_bottom(self):
        down = opaque(picture("Assets/Sprites/FX/SparkDownFX.png"))
        up = opaque(picture("Assets/Sprites/FX/SparkUpFX.png"))
        self.assertGreater(down[:6].sum(), down[-6:].sum())
        self.assertGreater(up[-6:].sum(), up[:6].sum())


class CabinTilesTest(unittest.TestCase):
    def test_cabin_tiles_are_drawn_and_only_the_floor_is_solid(self):
        sheet = picture("Assets/Maps/Tilesets/City.png")
        tiles = json.loads((ROOT / "Assets/Maps/Tilesets/Tileset-City.json").read_text())
        solid = {t["id"]: t["objectgroup"]["objects"] for t in tiles["tiles"] if "objectgroup" in t}
        for index in CABIN_ROOF + CABIN_FLOOR:
            r, c = divmod(index, 16)
            self.assertGreater(opaque(sheet[r * 32:(r + 1) * 32, c * 32:(c + 1) * 32]).sum(), 100)
        for index in CABIN_ROOF:
            self.assertNotIn(index, solid)
        for index in CABIN_FLOOR:
            (rect,) = solid[index]
            self.assertEqual((rect["x"], rect["y"], rect["width"]), (0, CABIN_DECK, 32))
            r, c = divmod(index, 16)
            deck_row = sheet[r * 32 + CABIN_DECK, c * 32:(c + 1) * 32]
            self.assertTrue(np.all(deck_row[:, 3] == 255))      # the floor is drawn where it stands


if __name__ == "__main__":
    unittest.main()

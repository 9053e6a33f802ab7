"""The map screen's pictures as the game shows them: every built room's picture at its preview
scale, centred on the 1920 x 1080 screen and sampled without smoothing; the statue under the
teleport button; the icons."""
import json
import unittest
from fractions import Fraction

import numpy as np

from ovgen import pixel as px
from tests.common import ROOT, bbox, luminance, opaque, picture

ROOMS = "Assets/Sprites/Minimap/Rooms/MiniMapRoom{}.png"
SCALES = {7: 1, 9: 1, 13: 1, 14: 1, 8: Fraction(11, 20), 10: Fraction(1, 4), 12: Fraction(1, 10)}
BUTTONS = {2: (830, 330), 4: (1210, 717), 13: (1205, 725), 16: (1050, 505)}


def built_rooms():
    numbers = (int(p.stem[4:]) for p in (ROOT / "Assets/Maps/Rooms").glob("Room*.json"))
    return sorted(n for n in numbers if 1 <= n <= 20)


def scale_of(number):
    return Fraction(SCALES.get(number, Fraction(7, 20)))


def on_screen(img, scale):
    """The picture as the game draws it: origin at its centre, at (960, 540), each screen pixel
    taking the texel under its centre. Returns the shown pixels and their top left on the screen."""
    h, w = img.shape[:2]
    sw, sh = w * scale, h * scale
    shown = px.scale_nearest(img, float(scale))
    return shown, (960 - sw / 2, 540 - sh / 2), (sw, sh)


class RoomPictureTest(unittest.TestCase):
    def test_every_built_room_has_a_picture_and_no_other_room_does(self):
        rooms = built_rooms()
        self.assertIn(4, rooms)
        pictures = sorted(int(p.stem[len("MiniMapRoom"):])
                          for p in (ROOT / "Assets/Sprites/Minimap/Rooms").glob("*.png"))
        self.assertEqual(pictures, rooms)

    def test_pictures_land_whole_on_the_screen_and_lose_no_pixel(self):
        for number in built_rooms():
            with self.subTest(room=number):
                img = picture(ROOMS.format(number))
                scale = scale_of(number)
                self.assertLessEqual(max(img.shape[:2]), 4096)
                shown, (left, top), (sw, sh) = on_screen(img, scale)
                # A whole, even number of screen pixels: the picture starts on a pixel's edge.
                self.assertEqual((sw.denominator, sh.denominator), (1, 1))
                self.assertEqual((left.denominator, top.denominator), (1, 1))
                self.assertEqual(shown.shape[:2], (sh, sw))
                # Every texel shows the screen pixel it falls in: nothing is skipped.
                ty = (np.arange(img.shape[0]) * 2 + 1) * scale.numerator // (2 * scale.denominator)
                tx = (np.arange(img.shape[1]) * 2 + 1) * scale.numerator // (2 * scale.denominator)
                self.assertTrue(np.array_equal(shown[ty][:, tx], img))
                # The room, opaque in its frame, lies on the screen; the margin is clear.
                top_row, bottom, left_col, right = bbox(opaque(shown))
                self.assertTrue(opaque(shown)[top_row:bottom + 1, left_col:right + 1].all())
                self.assertEqual(int(shown[..., 3][~opaque(shown)].max(initial=0)), 0)
                self.assertGreaterEqual(left + left_col, 24)
                self.assertGreaterEqual(top + top_row, 24)
                self.assertLessEqual(left + right, 1920 - 24)
                self.assertLessEqual(top + bottom, 1080 - 24)
                # Framed in gold, ink outside.
                self.assertEqual(tuple(shown[top_row, (left_col + right) // 2, :3]), px.INK)
                frame = shown[top_row + 1:top_row + 3, left_col + 4:right - 4, :3]
                self.assertGreater(luminance(frame).mean(), 90)
                self.assertGreater(frame[..., 0].mean(), frame[..., 2].mean() + 40)

    def test_the_picture_is_the_room_at_its_proportions_and_as_large_as_fits(self):
        for number in built_rooms():
            with self.subTest(room=number):
                tmap = json.loads((ROOT / f"Assets/Maps/Rooms/Room{number}.json").read_text())
                shown, _, _ = on_screen(picture(ROOMS.format(number)), scale_of(number))
                top, bottom, left, right = bbox(opaque(shown))
                w, h = right - left + 1, bottom - top + 1
                self.assertAlmostEqual(w / h, tmap["width"] / tmap["height"], delta=0.02 * w / h)
                # Either the 4096 px texture limit holds it back, or hard pixels twice as large
                # would not fit, or it fills a good part of the screen (statue rooms give some of
                # it up to stand the statue under the button).
                limit = 4096 * scale_of(number)
                least = 0.35 if number in BUTTONS else 0.8
                map_w = tmap["width"] * tmap["tilewidth"]
                whole = w % map_w == 0 and (w + map_w > 1728 or h * (w + map_w) / w > 972)
                self.assertTrue(w >= limit - 30 or h >= limit - 30 or whole or
                                w >= least * 1728 or h >= least * 972, (w, h))
                # Not a flat fill: the room's tiles show.
                rgb = shown[top:bottom:3, left:right:3, :3].astype(np.int64)
                packed = (rgb[..., 0] << 16) | (rgb[..., 1] << 8) | rgb[..., 2]
                self.assertGreater(len(np.unique(packed)), 60)

    def test_the_statue_stands_under_the_teleport_button(self):
        for number in [n for n in built_rooms() if n in BUTTONS]:
            with self.subTest(room=number):
                tmap = json.loads((ROOT / f"Assets/Maps/Rooms/Room{number}.json").read_text())
                layer = next(lay for lay in tmap["layers"] if lay["name"] == "Player")
                statue = next(o for o in layer["objects"] if o["name"] == "PlayerCheckpoint"
                              and {p["name"]: p["value"] for p in o["properties"]}["id"] == 0)
                shown, (left, top), _ = on_screen(picture(ROOMS.format(number)), scale_of(number))
                t, b, lft, r = bbox(opaque(shown))
                per_pixel = (r - lft + 1) / (tmap["width"] * tmap["tilewidth"])
                x = float(left) + lft + statue["x"] * per_pixel
                feet = float(top) + t + statue["y"] * per_pixel
                bx, by = BUTTONS[number]
                # Over the statue: between its feet and a statue's height above them.
                self.assertLess(abs(x - bx), 6)
                self.assertTrue(feet - 90 * per_pixel <= by <= feet, (feet, by))


class IconTest(unittest.TestCase):
    def test_the_teleport_button_is_the_map_icon(self):
        a = ROOT / "Assets/Sprites/Minimap/Teleport/CheckpointIcon.png"
        b = ROOT / "Assets/Sprites/MiniMap/Teleport/CheckpointIcon.png"
        self.assertEqual(a.read_bytes(), b.read_bytes())

    def test_icon_is_a_gold_ringed_medallion_round_its_centre(self):
        icon = picture("Assets/Sprites/Minimap/Teleport/CheckpointIcon.png")
        h, w = icon.shape[:2]
        self.assertEqual((h, w), (56, 56))
        top, bottom, left, right = bbox(icon[..., 3] > 0)
        self.assertEqual((top + bottom, left + right), (h - 1, w - 1))
        for corner in (icon[0, 0], icon[0, -1], icon[-1, 0], icon[-1, -1]):
            self.assertEqual(corner[3], 0)
        ring = icon[h // 2, left + 2:left + 6, :3].astype(float)  # the ring on the left
        self.assertGreater(ring[..., 0].mean(), ring[..., 2].mean() + 50)
        # Still a medallion at the map's 0.55: its disc keeps its share of the square.
        small = px.scale_nearest(icon, 0.55)
        self.assertAlmostEqual(opaque(small).mean(), opaque(icon).mean(), delta=0.05)

    def test_player_marker_is_small_bright_and_centred(self):
        marker = picture("Assets/Sprites/Minimap/Teleport/Player.png")
        self.assertLessEqual(max(marker.shape[:2]), 24)
        top, bottom, left, right = bbox(opaque(marker))
        self.assertEqual((top + bottom, left + right),
                         (marker.shape[0] - 1, marker.shape[1] - 1))
        self.assertGreater(luminance(marker[opaque(marker)][:, :3]).max(), 230)


if __name__ == "__main__":
    unittest.main()

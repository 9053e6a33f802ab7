"""The camera container written from a room source: the whole room unless a `camera` line keeps
the view to some of its cells, which must lie inside the room and hold a whole screen."""
import unittest

from ovgen import rooms
from tests.test_room_hover import GRID


def container(tmap):
    (layer,) = [layer for layer in tmap["layers"] if layer["name"] == "CameraContainer"]
    (box,) = layer["objects"]
    return box["x"], box["y"], box["width"], box["height"]


class CameraTest(unittest.TestCase):
    def build(self, lines=""):
        return rooms.build(rooms.parse(GRID + lines))

    def test_the_view_keeps_to_the_whole_room_or_to_the_cells_asked(self):
        self.assertEqual(container(self.build()), (0, 0, 30 * 32, 12 * 32))
        self.assertEqual(container(self.build("camera 2 0 29 11\n")),
                         (2 * 32, 0, 28 * 32, 12 * 32))

    def test_cells_outside_the_room_or_smaller_than_a_screen_are_refused(self):
        for line in ("camera 0 0 30 11\n", "camera -1 0 29 11\n", "camera 0 1 29 11\n",
                     "camera 0 0 18 11\n", "camera 0 0 29\n", "camera 5 0 4 11\n"):
            with self.assertRaises(rooms.SourceError, msg=line):
                self.build(line)


if __name__ == "__main__":
    unittest.main()

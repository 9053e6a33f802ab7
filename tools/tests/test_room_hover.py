"""Flying enemies written in a room source: a Flying Knight or the Goddess hovers the height its
line asks over the floor under its letter, in the arena of that floor; walking kinds refuse to
hover; and nothing of the middle layers is drawn where the Goddess drifts."""
import unittest

from ovgen import rooms

GRID = """room 91
size 30 12
region City
grid
##############################
#............................#
#............................#
#............................#
#............................#
#............................#
#............................#
#..............G.............#
#.d...........=====........d.#
#...K.......................g#
##############################
##############################
end
"""


def spawns(tmap):
    (enemies,) = [layer for layer in tmap["layers"] if layer["name"] == "Enemies"]
    points = [o for o in enemies["objects"] if o.get("point")]
    boxes = {o["properties"][0]["value"]: o for o in enemies["objects"] if not o.get("point")}
    return points, boxes


def layer_data(tmap, name):
    found = [layer for layer in tmap["layers"]
             if layer["name"] == name and layer["type"] == "tilelayer"]
    return found[0]["data"] if found else [0] * (30 * 12)


class HoverTest(unittest.TestCase):
    def build(self, lines):
        return rooms.build(rooms.parse(GRID + lines))

    def test_a_knight_hovers_over_the_floor_under_its_letter_inside_that_floors_arena(self):
        points, boxes = spawns(self.build("enemy knight K above 32\n"))
        (knight,) = points
        self.assertEqual((knight["x"], knight["y"]), (4.5 * 32, 10 * 32 - 32))
        box = boxes[knight["properties"][1]["value"]]
        self.assertEqual(box["y"] + box["height"], 10 * 32 + 8)  # the floor of row 10
        self.assertLess(box["y"], knight["y"])

    def test_a_walker_does_not_hover_nor_a_flyer_out_of_its_arena(self):
        for line in ("enemy trash K above 32\n", "enemy knight K above 300\n",
                     "enemy knight K above\n"):
            with self.assertRaises(rooms.SourceError, msg=line):
                self.build(line)

    def test_the_goddess_hovers_over_the_ledge_under_her_and_nothing_in_the_middle_hides_her(self):
        tmap = self.build("enemy goddess G above 33\n")
        (goddess,) = spawns(tmap)[0]
        self.assertEqual((goddess["x"], goddess["y"]), (15.5 * 32, 8 * 32 - 33))
        left, right = goddess["x"] - 800 / 3, goddess["x"] + 800 / 3
        top, bottom = goddess["y"] - 200 / 3, goddess["y"] + 200 / 3
        back = layer_data(tmap, "Background")
        for name in ("Ground", "Decor"):
            for i, tile in enumerate(layer_data(tmap, name)):
                x, y = i % 30 * 32, i // 30 * 32
                inside = x + 32 > left and x < right and y + 32 > top and y < bottom
                self.assertFalse(tile and inside, f"{name} tile at cell {i % 30}, {i // 30}")
        # her ledge is still there, drawn behind her
        self.assertTrue(all(back[8 * 30 + x] for x in range(14, 19)))

    def test_a_piece_placed_by_hand_in_her_flight_is_refused(self):
        source = GRID.replace("#..............G", "#...........g..G") + "enemy goddess G above 33\n"
        with self.assertRaises(rooms.SourceError):
            rooms.build(rooms.parse(source))


if __name__ == "__main__":
    unittest.main()

"""An elevator written in a room source becomes the map layers the game builds a cabin from: the
stops before the cabin's tiles, the cabin's floor tiles where it stands, a call trigger that holds
a rider's feet, a lever at each stop standing on its floor."""
import unittest

from ovgen import rooms
from ovgen import tile_catalog as tc

SOURCE = """room 90
size 12 16
region City
grid
############
#..........#
#..........#
#...EEE....#
#.L.EEE....#
#####..#####
#####..#####
#####..#####
#####..#####
#...FFF....#
#.M.FFF....#
############
############
############
############
############
end
elevator 3 E F L M
"""


def group(layer, name):
    (found,) = [child for child in layer["layers"] if child["name"] == name]
    return found


class RoomElevatorTest(unittest.TestCase):
    def setUp(self):
        self.map = rooms.build(rooms.parse(SOURCE))
        (self.cabin,) = group(self.map, "Elevator group")["layers"]

    def test_the_stops_come_first_and_the_first_is_the_cabins_bottom_centre(self):
        stops, tiles, levers = self.cabin["layers"]
        self.assertEqual((stops["type"], tiles["type"], levers["name"]),
                         ("objectgroup", "tilelayer", "Lever group"))
        self.assertEqual(tiles["properties"][0]["value"], 3)
        points = [(o["x"], o["y"]) for o in stops["objects"] if o.get("point")]
        self.assertEqual(points, [(5.5 * 32, 5 * 32), (5.5 * 32, 11 * 32)])
        placed = [(i % 12, i // 12, v - 1) for i, v in enumerate(tiles["data"]) if v]
        self.assertEqual(len(placed), 6)
        xs = {x for x, _y, _t in placed}
        ys = {y for _x, y, _t in placed}
        self.assertEqual(((min(xs) + max(xs) + 1) / 2 * 32, (max(ys) + 1) * 32), points[0])
        for x, y, tile in placed:
            self.assertEqual(tile in tc.CABIN_FLOOR, y == max(ys))

    def test_the_trigger_holds_the_feet_of_a_rider_on_the_floor(self):
        stops = self.cabin["layers"][0]
        (trigger,) = [o for o in stops["objects"] if o["name"] == "Trigger"]
        floor = 4 * 32 + tc.CABIN_DECK        # the deck's top on the cabin's second row
        self.assertLess(trigger["y"], floor)
        self.assertGreater(trigger["y"] + trigger["height"], floor)
        # as the game re-places it from the cabin's bounds: half the cabin's height above it
        self.assertEqual((trigger["x"], trigger["y"], trigger["width"]), (4 * 32, 2 * 32, 96))

    def test_each_stop_has_an_active_lever_on_its_floor(self):
        levers = self.cabin["layers"][2]["layers"]
        self.assertEqual(len(levers), 2)
        for k, (layer, floor) in enumerate(zip(levers, (5 * 32, 11 * 32))):
            (point,) = [o for o in layer["objects"] if o.get("point")]
            (zone,) = [o for o in layer["objects"] if not o.get("point")]
            props = {p["name"]: p["value"] for p in point["properties"]}
            self.assertEqual(props, {"id": k, "isActive": True})
            self.assertEqual((point["x"], point["y"]), (2.5 * 32, floor))
            self.assertLessEqual(zone["y"], point["y"] - 64)
            self.assertEqual(zone["y"] + zone["height"], point["y"])

    def test_a_wrongly_sized_stop_is_refused(self):
        bad = SOURCE.replace("#...FFF....#\n#.M.FFF....#", "#...FF.....#\n#.M.FF.....#")
        with self.assertRaises(rooms.SourceError):
            rooms.build(rooms.parse(bad))


if __name__ == "__main__":
    unittest.main()

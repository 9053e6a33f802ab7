"""The parallax layers of each region, shared by the background painter and the room builder.

Each layer is one PNG under Assets/Maps/RoomBackground/<Region>/, drawn at scale 3. The game moves
a layer by (view displacement) x (factor - 1) each frame: factor 1 is fixed in the world, 2 is glued
to the screen, so distant layers use factors between 1 and 2. Every layer here loops horizontally
(the picture must tile seamlessly left to right) and follows the view vertically (its top stays
at the view's top), so it covers the screen in rooms of any size.

The game draws the layers from the last to the first: LAYERS lists the nearest first.
"""

WIDTH, HEIGHT = 640, 360  # native px; 1920 x 1080 world px at scale 3

REGIONS = ("Forest", "City")

# name, parallax factor x, parallax factor y
LAYERS = [
    ("near", 1.30, 2.0),  # low fog and the nearest silhouettes, mostly transparent
    ("mid", 1.55, 2.0),   # trees / houses in mid distance
    ("far", 1.80, 2.0),   # hills / towers far away
    ("sky", 1.97, 2.0),   # sky, moon, stars: opaque
]


def image_path(region, name):
    """The path as written in a map's image layer: relative to the map folder for Tiled, and
    relative to Assets/Maps/RoomBackground/ for the game (both resolve to the same file)."""
    return f"../RoomBackground/{region}/{name}.png"


def asset_path(region, name):
    return f"Assets/Maps/RoomBackground/{region}/{name}.png"

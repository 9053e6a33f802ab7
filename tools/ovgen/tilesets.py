"""The two region tilesets, their Tiled tileset files and a preview scene of each.

Writes Assets/Maps/Tilesets/Forest.png and City.png (16 x 10 tiles of 32 x 32, the layout of
tile_catalog), Tileset-Forest.json and Tileset-City.json (Tiled external tilesets: collision
rectangles with an int `kind`, animations), and docs/tileset_preview_forest.png / _city.png: a
small room built with tile_catalog.terrain_tile, shown x3 as in the game.
"""
import json

import numpy as np

from . import pixel as px
from . import tile_catalog as tc
from . import tiles_city, tiles_forest
from .tiles_common import T, blit

REGIONS = (("Forest", tiles_forest), ("City", tiles_city))
TILED_VERSION, FORMAT_VERSION = "1.8.2", "1.8"


# ---------------------------------------------------------------- sheet


def sheet(tiles):
    """Place {index: 32 x 32 canvas} on the 16 x 10 sheet; missing tiles stay transparent."""
    out = np.zeros((tc.ROWS * T, tc.COLUMNS * T, 4), float)
    for index, tile in tiles.items():
        r, c = divmod(index, tc.COLUMNS)
        out[r * T:(r + 1) * T, c * T:(c + 1) * T] = tile
    return px.to_rgba8(out)


def tileset_json(name):
    """The Tiled external tileset: one entry per tile with collision and / or an animation."""
    entries = []
    for index in range(tc.COLUMNS * tc.ROWS):
        entry = {"id": index}
        rects = tc.collision_of(index)
        if rects:
            entry["objectgroup"] = {
                "draworder": "index", "id": 2, "name": "", "opacity": 1, "type": "objectgroup",
                "visible": True, "x": 0, "y": 0,
                "objects": [{
                    "height": h, "id": k + 1, "name": "", "rotation": 0, "type": "",
                    "visible": True, "width": w, "x": x, "y": y,
                    "properties": [{"name": "kind", "type": "int", "value": kind}],
                } for k, (x, y, w, h, kind) in enumerate(rects)],
            }
        if index in tc.ANIMATIONS:
            entry["animation"] = [{"tileid": t, "duration": ms} for t, ms in tc.ANIMATIONS[index]]
        if len(entry) > 1:
            entries.append(entry)
    return {
        "columns": tc.COLUMNS, "image": f"{name}.png",
        "imageheight": tc.ROWS * T, "imagewidth": tc.COLUMNS * T,
        "margin": 0, "name": name, "spacing": 0, "tilecount": tc.COLUMNS * tc.ROWS,
        "tiledversion": TILED_VERSION, "tileheight": T, "tiles": entries, "tilewidth": T,
        "type": "tileset", "version": FORMAT_VERSION,
    }


# ---------------------------------------------------------------- preview scene

# '#' terrain, '=' one-way planks, '-' bridge, '~' water, 'B' back wall behind the cell.
SCENE = [
    "######################",
    "######################",
    "####BBBBBBB#######BBB#",
    "###BBBBBBBBB#####BBBBB",
    "##BBBBBBBBBBBB##BBBBB.",
    "#BBBBBBBBBBBBBBBBBBB..",
    "#BB==BBBBBBBBBBBBBB...",
    "#BBBBBBBBBBB##.....---",
    "##BBBBBBBB####........",
    "###BBBBB######.....###",
    "####~~~~~~~#####--####",
    "####~~~~~~~###########",
]
# (column, row, region-independent role) decorations; resolved per region in the painters' lists.
SCENE_DECO = [
    ("hang", 4, 3, 1), ("hang", 6, 2, 5), ("hang", 8, 2, 0), ("hang", 9, 2, 3),
    ("hang", 14, 2, 6), ("hang", 13, 3, 7), ("hang", 15, 1, 2),
    ("ground", 6, 7, 5), ("ground", 8, 7, 0), ("ground", 9, 7, 3), ("ground", 15, 6, 8),
    ("ground", 16, 6, 1), ("ground", 19, 8, 4), ("ground", 20, 8, 12), ("ground", 3, 8, 10),
    ("ground", 12, 6, 6), ("ground", 17, 8, 14),
    ("anim", 5, 5, tc.TORCH[0]), ("anim", 11, 5, tc.TORCH[0]), ("anim", 7, 4, tc.FIREFLIES[0]),
    ("anim", 10, 7, tc.GLOW[0]), ("anim", 16, 4, tc.LAMP[0]), ("anim", 19, 6, tc.EMBERS[0]),
    ("back", 8, 4, 0), ("back", 2, 6, 2), ("back", 17, 3, 4),
]
SCENE_FRONT = [(14, 9, 2), (15, 9, 3), (21, 8, 4), (18, 2, 8), (19, 2, 6), (20, 2, 9)]


def _scene_cells():
    h, w = len(SCENE), len(SCENE[0])

    def at(x, y):
        return SCENE[y][x] if 0 <= x < w and 0 <= y < h else "#"
    return h, w, at


def preview(tiles, sky):
    """The preview room as an RGBA picture at the native scale."""
    h, w, at = _scene_cells()
    rng = np.random.RandomState(7)
    out = np.zeros((h * T, w * T, 4), float)
    out[...] = sky(h * T, w * T)

    def put(index, x, y):
        blit(out, tiles[index], x * T, y * T)

    for y in range(h):  # back wall
        for x in range(w):
            if at(x, y) in "B=~":
                up, down, left, right = (at(x, y - 1) not in "B=~#", at(x, y + 1) not in "B=~#",
                                         at(x - 1, y) not in "B=~#", at(x + 1, y) not in "B=~#")
                idx = tc.BACK_TOP if up else tc.BACK_BOTTOM if down else tc.BACK_LEFT if left \
                    else tc.BACK_RIGHT if right else tc.BACK_FILL[rng.randint(4)]
                put(idx, x, y)
    for kind, x, y, k in SCENE_DECO:
        if kind == "back":
            put(tc.BACK_DETAIL[k], x, y)
    for y in range(h):
        for x in range(w):
            ch = at(x, y)
            if ch == "#":
                put(tc.terrain_tile(lambda a, b: at(a, b) == "#", x, y,
                                    lambda n: rng.randint(n)), x, y)
            elif ch in "=-":
                left, right = at(x - 1, y) == ch, at(x + 1, y) == ch
                base = 0 if ch == "=" else 4
                role = 1 if left and right else 0 if right else 2 if left else 3
                put(tc.ONEWAY_LEFT + base + role, x, y)
            elif ch == "~":
                put(tc.WATER_TOP[0] if at(x, y - 1) != "~" else tc.WATER_BODY[0], x, y)
    for kind, x, y, k in SCENE_DECO:
        if kind == "hang":
            while y < h and not (at(x, y) != "#" and at(x, y - 1) == "#"):
                y += 1
            put(tc.DECO_HANG[k], x, y)
        elif kind == "ground":
            while y < h and not (at(x, y) not in "#~" and at(x, y + 1) == "#"):
                y += 1
            put(tc.DECO_GROUND[k], x, y)
        elif kind == "anim":
            put(k, x, y)
    return out


def preview_full(tiles, sky):
    """The preview with its foreground layer, drawn last as in the game."""
    out = preview(tiles, sky)
    for x, y, k in SCENE_FRONT:
        blit(out, tiles[tc.FRONT[k]], x * T, y * T)
    return out


def generate(out):
    written = []
    for name, painter in REGIONS:
        tiles = painter.draw_tiles()
        written.append(px.save_png(sheet(tiles), out / f"Assets/Maps/Tilesets/{name}.png"))
        path = out / f"Assets/Maps/Tilesets/Tileset-{name}.json"
        path.write_text(json.dumps(tileset_json(name), indent=1) + "\n", encoding="ascii")
        written.append(path)
        pic = px.upscale(px.to_rgba8(preview_full(tiles, painter.preview_sky)), 3)
        written.append(px.save_png(pic, out / f"docs/tileset_preview_{name.lower()}.png"))
    return written

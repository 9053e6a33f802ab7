"""The tile catalogue shared by both region tilesets and by the room builder.

Both tilesets (Forest, City) use the same layout: the same index always means the same role, drawn
in each region's own style. So a room's layout can be written once and dressed by either region.

The sheet is 16 tiles wide (512 px) and 32 x 32 px per tile. A tile's index is row * 16 + column;
in a map a placed tile is written as index + 1 (the tileset's first gid is 1).

Terrain is autotiled from its four neighbours: mask bit 0 = solid above (N), bit 1 = solid to the
right (E), bit 2 = solid below (S), bit 3 = solid to the left (W). TERRAIN[mask] is the tile for that
mask; when all four are solid, an open diagonal picks an inner corner, otherwise a fill tile.
"""

COLUMNS = 16
ROWS = 10
TILE = 32

N, E, S, W = 1, 2, 4, 8


def _at(row, col):
    return row * COLUMNS + col


# Row 0: terrain by neighbour mask (index = mask).
TERRAIN = [_at(0, mask) for mask in range(16)]

# Row 1: inner corners (the named diagonal is open), fills, embedded details, flat-top variants.
INNER_NE, INNER_NW, INNER_SE, INNER_SW = (_at(1, c) for c in range(4))
FILL = [_at(1, c) for c in range(4, 8)]
FILL_DETAIL = [_at(1, c) for c in range(8, 12)]  # stones, roots, bones in the earth / bricks
TOP_VARIANT = [_at(1, c) for c in range(12, 16)]  # alternatives for TERRAIN[E | S | W]

# Row 2: one-way platforms (collision kind 1 on their top 10 px) and hazards.
ONEWAY_LEFT, ONEWAY_MIDDLE, ONEWAY_RIGHT, ONEWAY_SINGLE = (_at(2, c) for c in range(4))
BRIDGE_LEFT, BRIDGE_MIDDLE, BRIDGE_RIGHT, BRIDGE_SINGLE = (_at(2, c) for c in range(4, 8))
SPIKES = [_at(2, 8), _at(2, 9)]  # sit on a floor tile's top; the room adds a death zone
# The elevator cabin, two tiles tall: a roof row (left, middle, right) over a floor row whose
# tiles each carry one solid rectangle CABIN_DECK px below their top (the cabin's floor).
CABIN_ROOF = [_at(2, c) for c in range(10, 13)]
CABIN_FLOOR = [_at(2, c) for c in range(13, 16)]
CABIN_DECK, CABIN_DECK_HEIGHT = 5, 10

# Row 3: small decoration standing on the ground (no collision): drawn in a middle layer above
# the terrain. Forest: grass, flowers, rocks, mushrooms, bushes, skull, sign, fern, stump.
# City: weeds, rubble, crates, barrels, bollards, sign, grate, stones.
DECO_GROUND = [_at(3, c) for c in range(16)]

# Row 4: decoration hanging from a ceiling tile's underside (vines, roots, stalactites, chains,
# banners, hanging lanterns), no collision.
DECO_HANG = [_at(4, c) for c in range(16)]

# Row 5: the back wall of caves and buildings, for the "Background" tile layer (no collision).
BACK_FILL = [_at(5, c) for c in range(4)]
BACK_TOP, BACK_BOTTOM, BACK_LEFT, BACK_RIGHT = (_at(5, c) for c in range(4, 8))
BACK_DETAIL = [_at(5, c) for c in range(8, 16)]  # windows, arches, pillars, carvings

# Row 6 and 7: animated tiles, four frames each; the first frame is the tile that is placed.
WATER_TOP = [_at(6, c) for c in range(0, 4)]
WATER_BODY = [_at(6, c) for c in range(4, 8)]
TORCH = [_at(6, c) for c in range(8, 12)]
GLOW = [_at(6, c) for c in range(12, 16)]  # forest: glowing moss; city: a copper rune light
WATERFALL = [_at(7, c) for c in range(0, 4)]
FIREFLIES = [_at(7, c) for c in range(4, 8)]
LAMP = [_at(7, c) for c in range(8, 12)]  # forest: hanging lantern; city: street lamp head
EMBERS = [_at(7, c) for c in range(12, 16)]

# Row 8 and 9: large pieces made of several tiles, for the middle and foreground layers.
# TRUNK: a tree trunk (forest) or a stone column (city), top / middle / base, 1 tile wide.
TRUNK_TOP, TRUNK_MIDDLE, TRUNK_BASE = _at(8, 0), _at(8, 1), _at(8, 2)
# CANOPY: a 3 x 2 block of foliage (forest) or a roof with eaves (city), row-major.
CANOPY = [_at(8, 3), _at(8, 4), _at(8, 5), _at(9, 3), _at(9, 4), _at(9, 5)]
# FRONT: foreground silhouettes (leaves, grass blades, railings) drawn over the player.
FRONT = [_at(8, c) for c in range(6, 16)] + [_at(9, c) for c in range(6, 16)]
# Row 9 columns 0-2: a wooden / iron door frame piece left, middle, right, drawn in the middle.
FRAME_LEFT, FRAME_MIDDLE, FRAME_RIGHT = _at(9, 0), _at(9, 1), _at(9, 2)

SOLID = set(TERRAIN) | {INNER_NE, INNER_NW, INNER_SE, INNER_SW} | set(FILL) | set(FILL_DETAIL) \
    | set(TOP_VARIANT)
ONE_WAY = {ONEWAY_LEFT, ONEWAY_MIDDLE, ONEWAY_RIGHT, ONEWAY_SINGLE,
           BRIDGE_LEFT, BRIDGE_MIDDLE, BRIDGE_RIGHT, BRIDGE_SINGLE}
ONE_WAY_HEIGHT = 10  # map px from the tile's top

# Animated tiles: first frame -> list of (tile, milliseconds).
ANIMATIONS = {
    WATER_TOP[0]: [(t, 180) for t in WATER_TOP],
    WATER_BODY[0]: [(t, 220) for t in WATER_BODY],
    TORCH[0]: [(t, 110) for t in TORCH],
    GLOW[0]: [(GLOW[0], 400), (GLOW[1], 300), (GLOW[2], 400), (GLOW[3], 300)],
    WATERFALL[0]: [(t, 120) for t in WATERFALL],
    FIREFLIES[0]: [(t, 250) for t in FIREFLIES],
    LAMP[0]: [(t, 160) for t in LAMP],
    EMBERS[0]: [(t, 140) for t in EMBERS],
}


def collision_of(index):
    """The tileset collision rectangles of a tile: list of (x, y, w, h, kind)."""
    if index in SOLID:
        return [(0, 0, TILE, TILE, 0)]
    if index in ONE_WAY:
        return [(0, 0, TILE, ONE_WAY_HEIGHT, 1)]
    if index in CABIN_FLOOR:
        return [(0, CABIN_DECK, TILE, CABIN_DECK_HEIGHT, 0)]
    return []


def terrain_tile(solid_at, x, y, pick):
    """The terrain tile for cell (x, y); solid_at(x, y) tells whether a cell is terrain (cells
    outside the room count as terrain, so the room's walls meet its edges without a seam);
    pick(n) returns a deterministic choice in range(n) for variety."""
    mask = (N if solid_at(x, y - 1) else 0) | (E if solid_at(x + 1, y) else 0) \
        | (S if solid_at(x, y + 1) else 0) | (W if solid_at(x - 1, y) else 0)
    if mask == E | S | W:
        variants = [TERRAIN[mask]] * 4 + TOP_VARIANT
        return variants[pick(len(variants))]
    if mask != N | E | S | W:
        return TERRAIN[mask]
    if not solid_at(x + 1, y - 1):
        return INNER_NE
    if not solid_at(x - 1, y - 1):
        return INNER_NW
    if not solid_at(x + 1, y + 1):
        return INNER_SE
    if not solid_at(x - 1, y + 1):
        return INNER_SW
    fills = FILL * 3 + FILL_DETAIL
    return fills[pick(len(fills))]

"""Room maps: turn each text source `tools/rooms/Room<N>.txt` into `Assets/Maps/Rooms/Room<N>.json`.

A source has three parts (the format is described in full in docs/world.md):

    room 3                      header: number, size in tiles, region, music loop, boss flag
    size 52 26
    region Forest
    music Forest
    boss 0
    grid                        one text row per tile row, exactly `width` characters
    ###..::::=====....
    end
    door 0 Left 2:1 A           objects, placed by the capital letters of the grid
    enemy slime E
    lockgroup 1 kill 3          a locked door group, its doors and the trigger that closes it
    lockdoor 1 K
    locktrigger 1 Q

The grid is terrain and hand-placed decoration; everything else (autotiled edges, grass, hanging
roots, back-wall borders, door spawns, enemy containers, death zones, the camera container) is
derived here, so a room is edited in one place and its objects always agree with its ground.
The Tiled JSON written is deterministic: fixed key order, tile data as plain number arrays (one
map row per line), no randomness beyond a hash of the room number and the cell.
"""
import hashlib
import json
from pathlib import Path

from . import background_catalog as bgc
from . import tile_catalog as tc

ROOT = Path(__file__).resolve().parent.parent.parent
SOURCES = ROOT / "tools" / "rooms"
T = tc.TILE  # map px per tile

# ---------------------------------------------------------------- grid alphabet

SOLID = "#"
AIR = "."
BACK = ":"            # air with the cave / building back wall behind it
ONEWAY = "="          # wooden ledge, drop-through (collision kind 1)
BRIDGE = "-"          # rope bridge, drop-through
WATER = "~"
SPIKES = "^"
TRUNK = "|"           # a tree trunk (forest) or stone column (city); foliage / roof on top
MARKS = {             # single-tile decoration placed by hand, drawn in the "Decor" layer
    "t": tc.TORCH[0], "l": tc.LAMP[0], "g": tc.GLOW[0], "f": tc.FIREFLIES[0],
    "w": tc.WATERFALL[0], "e": tc.EMBERS[0],
}
HAND_GROUND = "d"     # force ground decoration here
HAND_HANG = "v"       # force hanging decoration here
HAND_FRONT = "*"      # a foreground silhouette here
THICKET = "%"         # a thicket: one dark foreground mass over its cells, ragged at its open edges
NO_DECOR = "x"        # keep this cell free of generated decoration
PIECES = {            # chosen pieces, drawn in the "Decor" layer: (on the floor, hanging)
    "s": tc.DECO_GROUND[15],   # a standing stone with a rune
    "k": tc.DECO_GROUND[10],   # an old skull in the moss
    "m": tc.DECO_GROUND[7],    # a big glowing cap
    "n": tc.DECO_HANG[1],      # long vines; stack them for a curtain down a wall
}
CARVINGS = {          # back-wall cells with a chosen carving, drawn in the "Background" layer
    "r": tc.BACK_DETAIL[0],    # a carved rune
    "c": tc.BACK_DETAIL[4],    # a crystal vein
    "o": tc.BACK_DETAIL[5],    # an old carved face
}
ALPHABET = set(SOLID + AIR + BACK + ONEWAY + BRIDGE + WATER + SPIKES + TRUNK + HAND_GROUND
               + HAND_HANG + HAND_FRONT + THICKET + NO_DECOR) | set(MARKS) | set(PIECES) \
    | set(CARVINGS) | set("ABCDEFGHIJKLMNOPQRSTUVWXYZ")

ENEMY_TYPES = {"frog": 0, "king": 1, "nomad": 2, "trash": 3, "slime": 4, "plant": 5,
               "knight": 6, "goddess": 7}
DIRECTIONS = ("Left", "Right", "Up", "Down")
ABILITIES = {"dash": 0, "run": 1, "cloud": 2}
UNDYING = {"plant"}  # never dies, so it never counts towards a door group's kills
FLYING = {"knight", "goddess"}  # float at their spawn's height: may hover over their floor
HOVER_CEILING = 6 * T           # a hovering spawn stays inside its container, six tiles tall
# The Goddess drifts on a figure-eight 1600 x 400 world px about her spawn (map px here), drawn
# behind the middle layers: the tiles her drift crosses go to the "Background" layer.
FLIGHT_HALF_WIDTH, FLIGHT_HALF_HEIGHT = 800 / 3, 200 / 3
LOCKDOOR_MIN_ROWS = 3  # a locked door is at least three tiles tall

# Decoration density per region: ground decor, hanging decor, fireflies in open air,
# glowing moss on cave floors, foreground silhouettes.
DENSITY = {
    "Forest": dict(ground=0.5, hang=0.45, fireflies=0.012, glow=0.25, front=0.05, detail=0.05),
    "City": dict(ground=0.35, hang=0.30, fireflies=0.0, glow=0.12, front=0.03, detail=0.10),
}


class SourceError(ValueError):
    pass


class Room:
    def __init__(self, number):
        self.number = number
        self.width = self.height = 0
        self.region = None
        self.music = None
        self.boss = 0
        self.rows = []
        self.objects = []  # (line number, words)

    # -- cells
    def cell(self, x, y):
        if 0 <= x < self.width and 0 <= y < self.height:
            return self.rows[y][x]
        return SOLID

    def solid(self, x, y):
        return self.cell(x, y) == SOLID

    def standable(self, x, y):
        return self.cell(x, y) in (SOLID, ONEWAY, BRIDGE)

    def open(self, x, y):
        """Air a body can stand in (not terrain, not water)."""
        return self.cell(x, y) not in (SOLID, WATER)

    def anchors(self, letter):
        return [(x, y) for y, row in enumerate(self.rows)
                for x, ch in enumerate(row) if ch == letter]

    def area(self, letter, line):
        cells = self.anchors(letter)
        if not cells:
            raise SourceError(f"line {line}: no cell '{letter}' in the grid")
        xs = [c[0] for c in cells]
        ys = [c[1] for c in cells]
        return min(xs), min(ys), max(xs), max(ys)


def parse(text, name="room"):
    room = None
    in_grid = False
    for n, raw in enumerate(text.splitlines(), 1):
        line = raw.rstrip()
        if in_grid:
            if line == "end":
                in_grid = False
                continue
            if len(line) != room.width:
                raise SourceError(f"{name}:{n}: grid row is {len(line)} wide, not {room.width}")
            bad = set(line) - ALPHABET
            if bad:
                raise SourceError(f"{name}:{n}: unknown grid characters {''.join(sorted(bad))}")
            room.rows.append(line)
            continue
        line = line.split("#", 1)[0].strip() if not line.startswith("#") else ""
        if not line:
            continue
        words = line.split()
        key = words[0]
        if key == "room":
            room = Room(int(words[1]))
        elif room is None:
            raise SourceError(f"{name}:{n}: the source must start with 'room N'")
        elif key == "size":
            room.width, room.height = int(words[1]), int(words[2])
        elif key == "region":
            if words[1] not in bgc.REGIONS:
                raise SourceError(f"{name}:{n}: region must be one of {bgc.REGIONS}")
            room.region = words[1]
        elif key == "music":
            room.music = words[1]
        elif key == "boss":
            room.boss = int(words[1])
        elif key == "grid":
            in_grid = True
        else:
            room.objects.append((n, words))
    if room is None or room.region is None:
        raise SourceError(f"{name}: missing 'room' or 'region'")
    if len(room.rows) != room.height:
        raise SourceError(f"{name}: grid has {len(room.rows)} rows, not {room.height}")
    if room.music not in (None, room.region):
        raise SourceError(f"{name}: the music loop follows the region ({room.region})")
    return room


# ---------------------------------------------------------------- tiles

def _hash(room, x, y, salt):
    key = f"{room.number}:{x}:{y}:{salt}".encode()
    return int.from_bytes(hashlib.blake2s(key, digest_size=4).digest(), "little")


def _chance(room, x, y, salt, p):
    return _hash(room, x, y, salt) % 10000 < p * 10000


def _pick(room, x, y, salt, n):
    return _hash(room, x, y, salt) % n


def _run_tile(room, x, y, ch, left, middle, right, single):
    lft, rgt = room.cell(x - 1, y) == ch, room.cell(x + 1, y) == ch
    if lft and rgt:
        return middle
    if rgt:
        return left
    if lft:
        return right
    return single


def _back(room, x, y):
    """Whether an air cell shows the back wall: drawn ':' cells, and marked cells beside them."""
    ch = room.cell(x, y)
    if ch == BACK or ch in CARVINGS:
        return True
    if ch in (SOLID, AIR) or not (0 <= x < room.width and 0 <= y < room.height):
        return False
    return any(room.cell(x + dx, y + dy) == BACK or room.cell(x + dx, y + dy) in CARVINGS
               for dx, dy in ((-1, 0), (1, 0), (0, -1), (0, 1)))


# Ground decoration pools by region (indices into DECO_GROUND): grass and small pieces are
# common, large or odd ones rare; signs and rune stones are only placed by hand ('d' cells pick
# from the same pool).
GROUND_POOL = {
    "Forest": [0] * 6 + [1] * 5 + [3] * 3 + [2] * 2 + [4] * 2 + [6] * 2 + [13] * 2
    + [5, 8, 9, 7, 12, 10, 14],
    "City": [0] * 4 + [1] * 2 + [2] * 3 + [11] * 3 + [3] * 2 + [10] * 2
    + [4, 5, 6, 7, 8, 12, 14, 13, 15],
}
# Foreground silhouettes (indices into FRONT): on floors, for '*' cells, under ceilings.
FRONT_POOL = {
    "Forest": dict(floor=[0, 1, 2, 3, 18], hand=[4, 4, 0, 2], hang=[15]),
    "City": dict(floor=[0, 1, 2, 3], hand=[4, 18], hang=[15]),
}
DETAIL_CHANCE = 0.3  # stones, roots and bones in the ground: rare, never side by side
# Thicket pieces (indices into FRONT): whole, and ragged at the bottom, top, left or right.
THICKET_WHOLE, THICKET_BOTTOM, THICKET_TOP, THICKET_LEFT, THICKET_RIGHT = 10, 11, 12, 13, 14


def _thicket_tile(room, x, y):
    """A thicket cell's piece: whole inside the mass, ragged where it meets open air (rock and
    more thicket close it); a free bottom edge wins, then the top, the left and the right."""
    def closed(dx, dy):
        return room.cell(x + dx, y + dy) in (THICKET, SOLID)
    for (dx, dy), piece in (((0, 1), THICKET_BOTTOM), ((0, -1), THICKET_TOP),
                            ((-1, 0), THICKET_LEFT), ((1, 0), THICKET_RIGHT)):
        if not closed(dx, dy):
            return tc.FRONT[piece]
    return tc.FRONT[THICKET_WHOLE]


def tile_layers(room):
    """Return the tile layers as {name: [row-major tile indices or None]}."""
    w, h = room.width, room.height
    dens = DENSITY[room.region]
    size = w * h
    ground, decor, back, front = [None] * size, [None] * size, [None] * size, [None] * size
    occupied = set()  # cells that already hold a decor tile

    def put(layer, x, y, tile):
        if 0 <= x < w and 0 <= y < h:
            layer[y * w + x] = tile

    for y in range(h):
        for x in range(w):
            ch = room.cell(x, y)
            if ch == SOLID:
                tile = tc.terrain_tile(room.solid, x, y,
                                       lambda n, x=x, y=y: _pick(room, x, y, "t", n))
                if tile in tc.FILL_DETAIL and (not _chance(room, x, y, "fd", DETAIL_CHANCE) or any(
                        ground[(y + dy) * w + x + dx] in tc.FILL_DETAIL
                        for dx, dy in ((-1, 0), (-1, -1), (0, -1), (1, -1))
                        if 0 <= x + dx < w and y + dy >= 0)):
                    tile = tc.FILL[_pick(room, x, y, "f", len(tc.FILL))]
                put(ground, x, y, tile)
            elif ch == ONEWAY:
                put(ground, x, y, _run_tile(room, x, y, ONEWAY, tc.ONEWAY_LEFT, tc.ONEWAY_MIDDLE,
                                            tc.ONEWAY_RIGHT, tc.ONEWAY_SINGLE))
            elif ch == BRIDGE:
                put(ground, x, y, _run_tile(room, x, y, BRIDGE, tc.BRIDGE_LEFT, tc.BRIDGE_MIDDLE,
                                            tc.BRIDGE_RIGHT, tc.BRIDGE_SINGLE))
            elif ch == WATER:
                top = room.cell(x, y - 1) != WATER
                put(ground, x, y, tc.WATER_TOP[0] if top else tc.WATER_BODY[0])
            elif ch == SPIKES:
                put(ground, x, y, tc.SPIKES[_pick(room, x, y, "s", 2)])
            elif ch in MARKS or ch in PIECES:
                put(decor, x, y, MARKS.get(ch, PIECES.get(ch)))
                occupied.add((x, y))

    # Back walls, with borders where they meet open air.
    for y in range(h):
        for x in range(w):
            if not _back(room, x, y):
                continue

            def outside(dx, dy):
                nx, ny = x + dx, y + dy
                return not room.solid(nx, ny) and not _back(room, nx, ny)
            if room.cell(x, y) in CARVINGS:
                tile = CARVINGS[room.cell(x, y)]
            elif outside(0, -1):
                tile = tc.BACK_TOP
            elif outside(0, 1):
                tile = tc.BACK_BOTTOM
            elif outside(-1, 0):
                tile = tc.BACK_LEFT
            elif outside(1, 0):
                tile = tc.BACK_RIGHT
            elif _chance(room, x, y, "bd", dens["detail"]):
                tile = tc.BACK_DETAIL[_pick(room, x, y, "bdp", len(tc.BACK_DETAIL))]
            else:
                tile = tc.BACK_FILL[_pick(room, x, y, "bf", len(tc.BACK_FILL))]
            put(back, x, y, tile)

    # Trees / columns: a vertical run of '|' is a trunk, crowned by foliage / a roof.
    def trunk(x, y):  # a ledge crossing a trunk is a branch: the trunk goes on behind it
        ch = room.cell(x, y)
        return ch == TRUNK or ch in (ONEWAY, BRIDGE) and room.cell(x, y - 1) == TRUNK \
            and room.cell(x, y + 1) == TRUNK

    for y in range(h):
        for x in range(w):
            if not trunk(x, y):
                continue
            above, below = trunk(x, y - 1), trunk(x, y + 1)
            put(back, x, y, tc.TRUNK_MIDDLE if above and below else
                tc.TRUNK_BASE if above else tc.TRUNK_TOP if below else tc.TRUNK_MIDDLE)
            if not above and room.cell(x, y - 1) in (AIR, BACK):  # a lamp on top: no crown
                for i, tile in enumerate(tc.CANOPY):
                    cx, cy = x - 1 + i % 3, y - 2 + i // 3
                    if not room.solid(cx, cy) and 0 <= cx < w and 0 <= cy < h:
                        put(back, cx, cy, tile)

    # Generated decoration on floors and under ceilings, and hand markers.
    pool, fronts = GROUND_POOL[room.region], FRONT_POOL[room.region]
    for y in range(h):
        for x in range(w):
            ch = room.cell(x, y)
            if ch in (SOLID, WATER, SPIKES, ONEWAY, BRIDGE, NO_DECOR) or (x, y) in occupied:
                continue
            on_floor = room.solid(x, y + 1) and 0 <= y + 1 < h or ch == HAND_GROUND
            under_ceiling = (room.solid(x, y - 1) and y > 0 and not room.solid(x, y + 1)) \
                or ch == HAND_HANG
            def choose(options, salt, x=x, y=y):
                return options[_pick(room, x, y, salt, len(options))]
            if ch == HAND_FRONT:
                put(front, x, y, tc.FRONT[choose(fronts["hand"], "fr")])
                continue
            if ch == THICKET:
                put(front, x, y, _thicket_tile(room, x, y))
                continue
            if on_floor:
                if ch == HAND_GROUND or _chance(room, x, y, "g", dens["ground"]):
                    put(decor, x, y, tc.DECO_GROUND[choose(pool, "gp")])
                elif _back(room, x, y) and _chance(room, x, y, "gl", dens["glow"]):
                    put(decor, x, y, tc.GLOW[0])
                if not _back(room, x, y) and _chance(room, x, y, "fg", dens["front"]):
                    put(front, x, y, tc.FRONT[choose(fronts["floor"], "fr")])
            elif under_ceiling:
                if ch == HAND_HANG or _chance(room, x, y, "h", dens["hang"]):
                    put(decor, x, y, tc.DECO_HANG[_pick(room, x, y, "hp", len(tc.DECO_HANG))])
                elif _chance(room, x, y, "fh", dens["front"] / 2):
                    put(front, x, y, tc.FRONT[choose(fronts["hang"], "fr")])
            elif ch == AIR and _chance(room, x, y, "ff", dens["fireflies"]):
                put(decor, x, y, tc.FIREFLIES[0])

    layers = {"Background": back, "Ground": ground, "Decor": decor, "Foreground": front}
    return layers


# ---------------------------------------------------------------- objects

def _prop(name, kind, value):
    return {"name": name, "type": kind, "value": value}


def _props(**kw):
    """Properties sorted the way Tiled saves them (by name, capitals first)."""
    out = []
    for name in sorted(kw):
        value = kw[name]
        kind = "bool" if isinstance(value, bool) else "int" if isinstance(value, int) \
            else "float" if isinstance(value, float) else "string"
        out.append(_prop(name.replace("_", " "), kind, value))
    return out


class Objects:
    """Collects the object layers' contents in map px, and the locked door groups."""

    def __init__(self):
        self.layers = {name: [] for name in
                       ("Trigger", "Player", "TransitionDoor", "Enemies", "DeathZone",
                        "CameraContainer", "Pnj", "Chest")}
        self.door_groups = {}  # group id -> dict(kill=n, doors=[(x, y, w, h, closed)])
        self.elevators = []    # dicts from _elevator, in source order
        self.flight_zones = []  # (left, top, right, bottom) of each Goddess's drift

    def rect(self, layer, name, x, y, w, h, props=None):
        self.layers[layer].append(dict(name=name, x=x, y=y, width=w, height=h, point=False,
                                       properties=props or []))

    def point(self, layer, name, x, y, props=None):
        self.layers[layer].append(dict(name=name, x=x, y=y, width=0, height=0, point=True,
                                       properties=props or []))


def _floor_below(room, x, y):
    """First row at or below y whose cell in column x can be stood on (its top is the floor)."""
    for yy in range(y, room.height):
        if room.standable(x, yy):
            return yy
    return None


def _door_spawn(room, direction, box, line):
    """Where a player arriving through this door stands: (x, y) in map px."""
    x0, y0, x1, y1 = box
    if direction == "Left":    # an opening in the left wall: the spawn stands two tiles inside
        return (x1 + 2.5) * T, (y1 + 1) * T
    if direction == "Right":
        return (x0 - 1.5) * T, (y1 + 1) * T
    cx = (x0 + x1 + 1) / 2
    col = int(cx)
    if direction == "Up":      # a hole in the ceiling: the spawn is on the first floor below it
        fy = _floor_below(room, col, y1 + 1)
        if fy is None:
            raise SourceError(f"line {line}: no floor under the Up door")
        return cx * T, fy * T
    # Down: a hole in the floor, with a one-way ledge across it just above the door
    for yy in range(y0 - 1, -1, -1):
        if room.cell(col, yy) in (ONEWAY, BRIDGE):
            return cx * T, yy * T
    raise SourceError(f"line {line}: a Down door needs a one-way ledge across its hole")


def _segment(room, x, y):
    """The flat walkable floor segment through the cell (x, y) above a floor: columns a..b."""
    def walk(c):
        return room.standable(c, y + 1) and room.open(c, y) and room.open(c, y - 1) \
            and room.cell(c, y) not in (SPIKES,)
    a = b = x
    while 0 < a and walk(a - 1):
        a -= 1
    while b < room.width - 1 and walk(b + 1):
        b += 1
    return a, b


def _components(room, ch):
    seen, out = set(), []
    for y in range(room.height):
        for x in range(room.width):
            if room.cell(x, y) != ch or (x, y) in seen:
                continue
            stack, cells = [(x, y)], []
            seen.add((x, y))
            while stack:
                cx, cy = stack.pop()
                cells.append((cx, cy))
                for nx, ny in ((cx + 1, cy), (cx - 1, cy), (cx, cy + 1), (cx, cy - 1)):
                    if room.cell(nx, ny) == ch and (nx, ny) not in seen and \
                            0 <= nx < room.width and 0 <= ny < room.height:
                        seen.add((nx, ny))
                        stack.append((nx, ny))
            xs, ys = [c[0] for c in cells], [c[1] for c in cells]
            out.append((min(xs), min(ys), max(xs), max(ys)))
    return out


def _lockdoor_box(room, letter, line):
    """The cells of a locked door: one column, at least three rows, standing on solid ground, under
    solid terrain at least as tall as the door (the open door hangs there, hidden by the rock)."""
    x0, y0, x1, y1 = room.area(letter, line)
    rows = y1 - y0 + 1
    if len(room.anchors(letter)) != (x1 - x0 + 1) * rows:
        raise SourceError(f"line {line}: the cells '{letter}' do not form a rectangle")
    if x0 != x1 or rows < LOCKDOOR_MIN_ROWS:
        raise SourceError(f"line {line}: a locked door is one tile wide and at least "
                          f"{LOCKDOOR_MIN_ROWS} tall")
    if y1 + 1 >= room.height or not room.solid(x0, y1 + 1):
        raise SourceError(f"line {line}: the locked door '{letter}' must stand on solid ground")
    if y0 - rows < 0 or not all(room.solid(x0, y) for y in range(y0 - rows, y0)):
        raise SourceError(f"line {line}: the locked door '{letter}' needs solid terrain above it, "
                          f"{rows} tiles tall, to hide it when open")
    return x0, y0, x1, y1


def _cabin_box(room, letter, line, what):
    x0, y0, x1, y1 = room.area(letter, line)
    if len(room.anchors(letter)) != (x1 - x0 + 1) * (y1 - y0 + 1):
        raise SourceError(f"line {line}: the cells '{letter}' do not form a rectangle")
    if y1 - y0 + 1 != 2 or x1 - x0 + 1 < 2:
        raise SourceError(f"line {line}: {what} '{letter}' must be 2 tiles tall and at least 2 wide")
    return x0, y0, x1, y1


def _elevator(room, words, line):
    """elevator <id> <cabin> <stop> <lever> <lever>: the cabin's cells at its first stop, the
    cells it fills at its second stop, and the cell of the lever at each stop (it stands on the
    floor under its letter). In map px: the stops are the cabin's bottom centre at each end, the
    call trigger spans the cabin from half its height above it down to its floor row."""
    eid, cabin, stop, levers = int(words[1]), words[2], words[3], words[4:]
    if len(levers) != 2:
        raise SourceError(f"line {line}: an elevator has two levers, one at each stop")
    x0, y0, x1, y1 = _cabin_box(room, cabin, line, "the cabin")
    sx0, sy0, sx1, sy1 = _cabin_box(room, stop, line, "the second stop")
    if (sx1 - sx0, sy1 - sy0) != (x1 - x0, y1 - y0):
        raise SourceError(f"line {line}: the second stop '{stop}' is not the cabin's size")
    width = (x1 - x0 + 1) * T
    stops = [((x0 + x1 + 1) / 2 * T, (y1 + 1) * T), ((sx0 + sx1 + 1) / 2 * T, (sy1 + 1) * T)]
    placed = []
    for k, letter in enumerate(levers):
        lx0, ly0, lx1, ly1 = room.area(letter, line)
        floor = _floor_below(room, lx0, ly1 + 1)
        if floor is None:
            raise SourceError(f"line {line}: the lever '{letter}' has no floor under it")
        px, py = (lx0 + lx1 + 1) / 2 * T, floor * T
        placed.append(dict(id=k, x=px, y=py, zone=(px - 48, py - 80, 96, 80)))
    tiles = {}
    for x in range(x0, x1 + 1):
        part = 0 if x == x0 else 2 if x == x1 else 1
        tiles[(x, y0)] = tc.CABIN_ROOF[part]
        tiles[(x, y1)] = tc.CABIN_FLOOR[part]
    return dict(id=eid, stops=stops, tiles=tiles, levers=placed,
                trigger=(x0 * T, y0 * T - T, width, 3 * T))


def _hover(words, line):
    """The height in map px that "above <n>" lifts a flying kind's spawn over its floor; 0."""
    if len(words) == 3:
        return 0
    if len(words) != 5 or words[3] != "above" or words[1] not in FLYING:
        raise SourceError(f"line {line}: only {sorted(FLYING)} hover: write "
                          f"'enemy <kind> <letter> above <map px>'")
    above = float(words[4])
    if not 0 < above <= HOVER_CEILING:
        raise SourceError(f"line {line}: a spawn hovers between 0 and {HOVER_CEILING} map px up")
    return above


def _clear_flight_zones(room, tiles, zones):
    """Ground tiles under the Goddess's drift move behind her (they still collide), the
    generated decoration there is left out, and a hand-placed piece there is an error."""
    w = room.width
    for x0, y0, x1, y1 in zones:
        for y in range(max(0, int(y0 // T)), min(room.height, int(-(-y1 // T)))):
            for x in range(max(0, int(x0 // T)), min(w, int(-(-x1 // T)))):
                i = y * w + x
                if tiles["Decor"][i] is not None:
                    if room.cell(x, y) in MARKS or room.cell(x, y) in PIECES:
                        raise SourceError(f"the piece at ({x}, {y}) lies in the Goddess's flight")
                    tiles["Decor"][i] = None
                if tiles["Ground"][i] is not None:
                    if tiles["Background"][i] is not None:
                        raise SourceError(f"the cell ({x}, {y}) under the Goddess's flight has "
                                          f"a back wall and ground")
                    tiles["Background"][i], tiles["Ground"][i] = tiles["Ground"][i], None


def _camera_cells(room, words, line):
    """A room the view must not show whole (a fitted view costs its area in texels) keeps the
    camera in part of its cells: at least a screen's worth, inside the room."""
    if len(words) != 5:
        raise SourceError(f"line {line}: write 'camera <x0> <y0> <x1> <y1>' in cells")
    x0, y0, x1, y1 = (int(w) for w in words[1:])
    if not (0 <= x0 <= x1 < room.width and 0 <= y0 <= y1 < room.height):
        raise SourceError(f"line {line}: the camera's cells must lie inside the room")
    if (x1 - x0 + 1) * T < 640 or (y1 - y0 + 1) * T < 360:
        raise SourceError(f"line {line}: the camera's cells must hold a whole screen")
    return x0, y0, x1, y1


def objects(room):
    obj = Objects()
    doors, containers = [], {}
    checkpoints = []
    letters = {}
    lock_triggers = []
    camera = (0, 0, room.width - 1, room.height - 1)
    for line, words in room.objects:
        key = words[0]
        marks = [w for w in words[1:] if len(w) == 1 and w.isupper()]
        letter = marks[-1] if marks else None
        if letter:
            if letter in letters:
                raise SourceError(f"line {line}: '{letter}' already marks the object of line "
                                  f"{letters[letter]}")
            letters[letter] = line
        try:
            if key == "door":
                # door <id> <Left|Right|Up|Down> <room>:<door id> <letter>
                did, direction, target, letter = int(words[1]), words[2], words[3], words[4]
                if direction not in DIRECTIONS:
                    raise SourceError(f"line {line}: direction must be one of {DIRECTIONS}")
                troom, tdoor = (int(v) for v in target.split(":"))
                box = room.area(letter, line)
                x0, y0, x1, y1 = box
                obj.rect("TransitionDoor", "TransitionDoor", x0 * T, y0 * T,
                         (x1 - x0 + 1) * T, (y1 - y0 + 1) * T,
                         _props(CameraTransition=direction, TargetedRoom=troom, id=did,
                                targetedDoorID=tdoor))
                sx, sy = _door_spawn(room, direction, box, line)
                doors.append((did, sx, sy))
            elif key == "checkpoint":
                # checkpoint <id> <letter> [statue]
                cid, letter = int(words[1]), words[2]
                x0, y0, x1, y1 = room.area(letter, line)
                px, py = (x0 + x1 + 1) / 2 * T, (y1 + 1) * T
                checkpoints.append((cid, px, py))
                if "statue" in words[3:]:
                    obj.rect("Trigger", "Interaction spawn", px - 40, py - 96, 80, 96,
                             _props(value=cid))
            elif key == "chest":
                # chest <dash|run|cloud> <left|right> <letter>
                ability, facing, letter = ABILITIES[words[1]], words[2], words[3]
                x0, y0, x1, y1 = room.area(letter, line)
                px, py = (x0 + x1 + 1) / 2 * T, (y1 + 1) * T
                obj.point("Chest", "Chest", px, py,
                          _props(Ability=ability, Right=1 if facing == "right" else 0))
                obj.rect("Trigger", "Chest trigger", px - 48, py - 80, 96, 80, _props(value=0))
            elif key == "merchant":
                x0, y0, x1, y1 = room.area(words[1], line)
                px, py = (x0 + x1 + 1) / 2 * T, (y1 + 1) * T
                obj.rect("Pnj", "MerchantZone", px - 44, py - 96, 88, 96)
                obj.point("Pnj", "Merchant", px, py)
            elif key == "enemy":
                # enemy <kind> <letter> [above <map px>]: one enemy on every cell of the letter,
                # standing on the floor under it, or (a flying kind) hovering that far above it
                kind, letter = ENEMY_TYPES[words[1]], words[2]
                above = _hover(words, line)
                cells = room.anchors(letter)
                if not cells:
                    raise SourceError(f"line {line}: no cell '{letter}' in the grid")
                for x, y in cells:
                    floor = _floor_below(room, x, y + 1) if above else y + 1
                    if floor is None or not room.standable(x, floor):
                        raise SourceError(f"line {line}: enemy at ({x}, {y}) has no floor")
                    seg = (*_segment(room, x, floor - 1), floor - 1)
                    if seg not in containers:
                        containers[seg] = len(containers)
                    px, py = (x + 0.5) * T, floor * T - above
                    obj.point("Enemies", "EnemySpawn", px, py,
                              _props(EnemyType=kind, idContainer=containers[seg]))
                    if words[1] == "goddess":
                        obj.flight_zones.append((px - FLIGHT_HALF_WIDTH, py - FLIGHT_HALF_HEIGHT,
                                                 px + FLIGHT_HALF_WIDTH, py + FLIGHT_HALF_HEIGHT))
            elif key == "trigger":
                # trigger <name with _ for spaces> <value> <letter>
                x0, y0, x1, y1 = room.area(words[3], line)
                obj.rect("Trigger", words[1].replace("_", " "), x0 * T, y0 * T,
                         (x1 - x0 + 1) * T, (y1 - y0 + 1) * T, _props(value=int(words[2])))
            elif key == "lockgroup":
                # lockgroup <id> kill <n>: a locked door group that reopens after n kills
                gid, kill = int(words[1]), int(words[3])
                if words[2] != "kill" or len(words) != 4:
                    raise SourceError(f"line {line}: write 'lockgroup <id> kill <n>'")
                if gid in obj.door_groups:
                    raise SourceError(f"line {line}: door group {gid} is declared twice")
                obj.door_groups[gid] = dict(kill=kill, doors=[], line=line)
            elif key == "lockdoor":
                # lockdoor <id> <letter> [closed]: one door of group <id>, open unless "closed"
                gid, letter = int(words[1]), words[2]
                if gid not in obj.door_groups:
                    raise SourceError(f"line {line}: declare 'lockgroup {gid}' before its doors")
                x0, y0, x1, y1 = _lockdoor_box(room, letter, line)
                obj.door_groups[gid]["doors"].append(
                    (x0 * T, y0 * T, (x1 - x0 + 1) * T, (y1 - y0 + 1) * T,
                     words[3:] == ["closed"]))
            elif key == "elevator":
                obj.elevators.append(_elevator(room, words, line))
            elif key == "camera":
                # camera <x0> <y0> <x1> <y1>: the cells the view is kept in (all by default)
                camera = _camera_cells(room, words, line)
            elif key == "locktrigger":
                # locktrigger <id> <letter>: stepping into the letter's cells closes group <id>
                gid, letter = int(words[1]), words[2]
                x0, y0, x1, y1 = room.area(letter, line)
                lock_triggers.append((line, gid, (x0, y0, x1, y1)))
            else:
                raise SourceError(f"line {line}: unknown object '{key}'")
        except (IndexError, KeyError, ValueError) as err:
            if isinstance(err, SourceError):
                raise
            raise SourceError(f"line {line}: cannot read '{' '.join(words)}' ({err})") from None

    killable = sum(len(room.anchors(words[2])) for _line, words in room.objects
                   if words[0] == "enemy" and words[1] not in UNDYING)
    for gid, group in obj.door_groups.items():
        if not group["doors"]:
            raise SourceError(f"line {group['line']}: door group {gid} has no 'lockdoor'")
        if not 0 < group["kill"] <= killable:
            raise SourceError(f"line {group['line']}: door group {gid} waits for {group['kill']} "
                              f"kills; the room holds {killable} enemies that can die")
        if not any(g == gid for _line, g, _box in lock_triggers):
            raise SourceError(f"line {group['line']}: door group {gid} has no 'locktrigger'")
    for line, gid, (x0, y0, x1, y1) in lock_triggers:
        if gid not in obj.door_groups:
            raise SourceError(f"line {line}: there is no 'lockgroup {gid}'")
        obj.rect("Trigger", "Locked Door trigger", x0 * T, y0 * T, (x1 - x0 + 1) * T,
                 (y1 - y0 + 1) * T, _props(value=gid))
    for did, sx, sy in sorted(doors):
        obj.point("Player", "PlayerDoorSpawn", sx, sy, _props(LinkedDoorID=did, id=did))
    for cid, px, py in sorted(checkpoints):
        obj.point("Player", "PlayerCheckpoint", px, py, _props(id=cid))
    for (a, b, y), cid in sorted(containers.items(), key=lambda kv: kv[1]):
        top = max(0, y - 6)
        obj.rect("Enemies", "EnemiesContainer", a * T, top * T, (b - a + 1) * T,
                 (y + 1 - top) * T + 8, _props(id=cid))
    # Lethal water and spikes: hurting triggers, mirrored in the DeathZone layer.
    zones = []
    for x0, y0, x1, y1 in _components(room, WATER):
        zones.append((x0 * T, y0 * T + 12, (x1 - x0 + 1) * T, (y1 - y0 + 1) * T - 12))
    for x0, y0, x1, y1 in _components(room, SPIKES):
        zones.append((x0 * T + 2, y0 * T + 14, (x1 - x0 + 1) * T - 4, (y1 - y0 + 1) * T - 14))
    for x, y, w, h in sorted(zones):
        obj.rect("Trigger", "DeathZone", x, y, w, h, _props(value=0))
        obj.rect("DeathZone", "DeathZone", x, y, w, h)
    x0, y0, x1, y1 = camera
    obj.rect("CameraContainer", "CameraContainer", x0 * T, y0 * T, (x1 - x0 + 1) * T,
             (y1 - y0 + 1) * T)
    return obj


# ---------------------------------------------------------------- Tiled JSON

TILED_VERSION = "1.8.2"
FORMAT_VERSION = "1.8"


def _num(v):
    return int(v) if float(v).is_integer() else round(float(v), 3)


def build(room):
    """The room as a Tiled map (a dict in the key order Tiled writes)."""
    ids = {"layer": 0, "object": 0}

    def next_id(kind):
        ids[kind] += 1
        return ids[kind]

    layers = []
    backdrops = []
    group_id = next_id("layer")
    for name, fx, fy in bgc.LAYERS:
        backdrops.append({
            "id": next_id("layer"), "image": bgc.image_path(room.region, name), "name": name,
            "offsetx": 0, "offsety": 0, "opacity": 1, "parallaxx": fx, "parallaxy": fy,
            "properties": _props(FollowY=True, LoopX=True),
            "type": "imagelayer", "visible": True, "x": 0, "y": 0})
    layers.append({"id": group_id, "layers": backdrops, "name": "Background", "opacity": 1,
                   "type": "group", "visible": True, "x": 0, "y": 0})

    obj = objects(room)
    tiles = tile_layers(room)
    _clear_flight_zones(room, tiles, obj.flight_zones)
    for name in ("Background", "Ground", "Decor", "Foreground"):
        data = [0 if t is None else t + 1 for t in tiles[name]]
        if name in ("Background", "Foreground") and not any(data):
            continue
        layers.append({"data": data, "height": room.height, "id": next_id("layer"), "name": name,
                       "opacity": 1, "type": "tilelayer", "visible": True, "width": room.width,
                       "x": 0, "y": 0})

    always = ("Trigger", "Player", "TransitionDoor", "Enemies", "CameraContainer")
    for name, items in obj.layers.items():
        if not items and name not in always:
            continue
        out = []
        for it in items:
            o = {"height": _num(it["height"]), "id": next_id("object"), "name": it["name"]}
            if it["point"]:
                o["point"] = True
            if it["properties"]:
                o["properties"] = it["properties"]
            o.update({"rotation": 0, "type": "", "visible": True, "width": _num(it["width"]),
                      "x": _num(it["x"]), "y": _num(it["y"])})
            out.append(o)
        layers.append({"draworder": "topdown", "id": next_id("layer"), "name": name,
                       "objects": out, "opacity": 1, "type": "objectgroup", "visible": True,
                       "x": 0, "y": 0})

    if obj.door_groups:
        groups = []
        top_id = next_id("layer")
        for gid in sorted(obj.door_groups):
            group = obj.door_groups[gid]
            group_layer = next_id("layer")
            doors = []
            for k, (x, y, w, h, closed) in enumerate(group["doors"]):
                rect = {"height": _num(h), "id": next_id("object"), "name": "Door",
                        "properties": _props(isClosed=closed), "rotation": 0, "type": "",
                        "visible": True, "width": _num(w), "x": _num(x), "y": _num(y)}
                doors.append({"draworder": "topdown", "id": next_id("layer"), "name": f"Door {k}",
                              "objects": [rect], "opacity": 1, "type": "objectgroup",
                              "visible": True, "x": 0, "y": 0})
            groups.append({"id": group_layer, "layers": doors, "name": f"Doors {gid}",
                           "opacity": 1, "properties": _props(enemyToKill=group["kill"], id=gid),
                           "type": "group", "visible": True, "x": 0, "y": 0})
        layers.append({"id": top_id, "layers": groups, "name": "Door group", "opacity": 1,
                       "type": "group", "visible": True, "x": 0, "y": 0})

    if obj.elevators:
        layers.append(_elevator_group(room, obj.elevators, next_id))

    return {
        "compressionlevel": -1, "height": room.height, "infinite": False, "layers": layers,
        "nextlayerid": ids["layer"] + 1, "nextobjectid": ids["object"] + 1,
        "orientation": "orthogonal",
        "properties": [_prop("Boss room", "int", room.boss),
                       _prop("tsx name", "string", room.region)],
        "renderorder": "right-down", "tiledversion": TILED_VERSION, "tileheight": T,
        "tilesets": [{"firstgid": 1, "source": f"../Tilesets/Tileset-{room.region}.json"}],
        "tilewidth": T, "type": "map", "version": FORMAT_VERSION, "width": room.width,
    }


def _object(next_id, name, x, y, w=0, h=0, point=False, props=None):
    o = {"height": _num(h), "id": next_id("object"), "name": name}
    if point:
        o["point"] = True
    if props:
        o["properties"] = props
    o.update({"rotation": 0, "type": "", "visible": True, "width": _num(w), "x": _num(x),
              "y": _num(y)})
    return o


def _object_layer(next_id, name, objects_):
    return {"draworder": "topdown", "id": next_id("layer"), "name": name, "objects": objects_,
            "opacity": 1, "type": "objectgroup", "visible": True, "x": 0, "y": 0}


def _elevator_group(room, elevators, next_id):
    """The "Elevator group": per cabin its stops and call trigger (read first, so the cabin
    finds its first stop), its tile layer (the first property is its id), its "Lever group"."""
    top_id = next_id("layer")
    cabins = []
    for e in elevators:
        group_id = next_id("layer")
        stops = [_object(next_id, "", x, y, point=True, props=_props(id=k))
                 for k, (x, y) in enumerate(e["stops"])]
        stops.append(_object(next_id, "Trigger", *e["trigger"]))
        data = [0] * (room.width * room.height)
        for (x, y), tile in e["tiles"].items():
            data[y * room.width + x] = tile + 1
        cabin = {"data": data, "height": room.height, "id": next_id("layer"), "name": "Cabin",
                 "opacity": 1, "properties": _props(id=e["id"]), "type": "tilelayer",
                 "visible": True, "width": room.width, "x": 0, "y": 0}
        levers = [_object_layer(next_id, f"Lever {lv['id']}",
                                [_object(next_id, "", *lv["zone"]),
                                 _object(next_id, "", lv["x"], lv["y"], point=True,
                                         props=_props(id=lv["id"], isActive=True))])
                  for lv in e["levers"]]
        lever_group = {"id": next_id("layer"), "layers": levers, "name": "Lever group",
                       "opacity": 1, "type": "group", "visible": True, "x": 0, "y": 0}
        cabins.append({"id": group_id, "layers": [_object_layer(next_id, "Stops", stops), cabin,
                                                  lever_group],
                       "name": f"Elevator {e['id']}", "opacity": 1, "type": "group",
                       "visible": True, "x": 0, "y": 0})
    return {"id": top_id, "layers": cabins, "name": "Elevator group", "opacity": 1,
            "type": "group", "visible": True, "x": 0, "y": 0}


def dumps(tmap):
    """JSON text with every tile layer's data written one map row per line."""
    rows = {}

    def mark(layer):
        if layer.get("type") == "tilelayer":
            key = f"@@DATA{len(rows)}@@"
            w = layer["width"]
            data = layer["data"]
            rows[key] = "[\n" + ",\n".join(
                "  " + ",".join(str(v) for v in data[i:i + w]) for i in range(0, len(data), w)
            ) + "]"
            layer = dict(layer, data=key)
        if layer.get("type") == "group":
            layer = dict(layer, layers=[mark(child) for child in layer["layers"]])
        return layer

    text = json.dumps(dict(tmap, layers=[mark(layer) for layer in tmap["layers"]]), indent=1)
    for key, value in rows.items():
        text = text.replace(f'"{key}"', value)
    return text + "\n"


def load_source(path):
    path = Path(path)
    room = parse(path.read_text(encoding="ascii"), path.name)
    if path.stem != f"Room{room.number}":
        raise SourceError(f"{path.name}: holds room {room.number}")
    return room


def sources():
    return sorted(SOURCES.glob("Room*.txt"), key=lambda p: int(p.stem[4:]))


def generate(out):
    out = Path(out)
    written = []
    for src in sources():
        room = load_source(src)
        path = out / "Assets" / "Maps" / "Rooms" / f"Room{room.number}.json"
        path.parent.mkdir(parents=True, exist_ok=True)
        path.write_text(dumps(build(room)), encoding="ascii", newline="\n")
        written.append(path)
    return written

"""Locked doors: Sprites/Objects/Door/Forest-Door.png, Forest-DoorDownPart.png, City-Door.png,
City-DoorDownPart.png.

A locked door is a column that slides down to block a passage. The game repeats the column
texture vertically and cuts it to the door's height less the base piece, then draws the base
piece under it, both x3 and bottom-centred. So the column (32 x 32, a full tile wide at x3) tiles
vertically without a seam: every feature either runs the full height or repeats with a 32 px
period. The base piece (32 x 12) is the heavy foot that meets the floor.
- Forest: a portcullis of lashed dark logs with iron bands and a thorn vine; the foot is a
  crossbeam over three iron-shod stakes.
- City: a riveted iron slab between copper-trimmed stiles; the foot is an iron sill with teeth.
Light from the top left: the left edge carries a lighter rim, the right edge falls into shadow,
with a dark 1 px outline on both sides so the door reads on cave walls and open sky alike.
"""
import math

import numpy as np

from . import pixel as px

W, REPEAT, BASE_H = 32, 32, 12

# forest
LOG = px.ramp("#0c0806", "#1e140d", "#2e1f14", "#43301e", "#5e452b", "#7d5f3c")
IRON_F = px.ramp("#0c0e0f", "#1f2425", "#363e3d", "#56605a", "#7e8a80")
ROPE = px.ramp("#2a2014", "#4e3f26", "#7a6640", "#a48e5c")
VINE = px.ramp("#0a1a10", "#1b3f26", "#2a5e30", "#44813a", "#72ad48")
THORN = px.ramp("#4e4632", "#8a7a56", "#c4b48a")
# city
IRON_C = px.ramp("#0a0b12", "#171a26", "#242838", "#353b50", "#4d5570", "#6e7896")
COPPER = px.ramp("#12302e", "#245a55", "#37837a", "#5fb09c", "#a2e0c6")
RUST = px.rgb("#5a3420")
INK = px.rgb("#07060a")


def _canvas(h):
    return np.zeros((h, W, 4), float)


def _fill(c, mask, colour):
    c[mask, :3] = colour
    c[mask, 3] = 255


def _edges(c, rim):
    """Dark outline down both sides, a lighter rim inside the left one, shade inside the right."""
    solid = c[..., 3] > 0
    left = solid & ~px.shift(solid, 0, 1)
    right = solid & ~px.shift(solid, 0, -1)
    _fill(c, left, INK)
    _fill(c, right, INK)
    inner_l = solid & ~left & px.shift(left, 0, 1)
    _fill(c, inner_l, rim)


# ---------------------------------------------------------------- forest


LOGS = [(0, 11), (11, 22), (22, 32)]       # log columns [x0, x1)


def _log_tone(x, x0, x1):
    """Rounded log: lit on the left, dark on the right (0..1)."""
    u = (x + 0.5 - x0) / (x1 - x0)
    return np.clip(0.95 - 0.9 * u + 0.25 * np.sin(np.pi * u), 0, 1)


def forest_column():
    h = REPEAT
    ys, xs = np.mgrid[0:h, 0:W]
    c = _canvas(h)
    rng = np.random.RandomState(8101)
    for k, (x0, x1) in enumerate(LOGS):
        inside = (xs >= x0) & (xs < x1)
        t = _log_tone(xs, x0, x1)
        # bark grain: wavy vertical furrows with a 32 px period, so the column tiles
        ph = rng.rand() * 2 * np.pi
        furrow = np.sin((xs - x0) * 1.9 + 0.9 * np.sin(2 * np.pi * ys / h * 2 + ph + k)) > 0.78
        tone = 1 + np.floor(t * 3.99).astype(int)
        tone = np.where(furrow, np.maximum(tone - 2, 0), tone)
        _fill(c, inside, LOG[0])
        for v in range(6):
            _fill(c, inside & (tone == v), LOG[v])
        # the crevice between logs
        _fill(c, (xs == x1 - 1) & (k < 2), LOG[0])
        # a knot on each log at a different height
        ky, kx = (5 + 11 * k) % h, (x0 + x1) / 2
        knot = ((xs - kx) / 2.0) ** 2 + ((ys - ky) / 1.4) ** 2 <= 1
        _fill(c, knot, LOG[1])
        _fill(c, knot & ~px.shift(knot, 1, 0), LOG[0])
    # an iron band across the logs, riveted, lit on its top edge
    band = (ys >= 3) & (ys <= 6)
    _fill(c, band, IRON_F[2])
    _fill(c, ys == 3, IRON_F[3])
    _fill(c, ys == 6, IRON_F[1])
    _fill(c, ys == 7, LOG[0])
    for x in (3, 8, 14, 19, 25, 29):
        _fill(c, (ys == 4) & (xs == x), IRON_F[4])
        _fill(c, (ys == 5) & (xs == x), IRON_F[0])
    # rope lashing: three diagonal turns where the logs meet
    for x1 in (11, 22):
        for j in range(3):
            y0 = 19 + 3 * j
            rope = (np.abs((ys - y0) - (xs - x1 + 2) * 0.5) <= 0.6) & (np.abs(xs - x1 + 0.5) <= 2.5)
            _fill(c, rope, ROPE[2])
            _fill(c, rope & ~px.shift(rope, 1, 0), ROPE[3])
            _fill(c, rope & ~px.shift(rope, -1, 0), ROPE[0])
    # a thorn vine winding down the front, periodic in y
    yy = np.arange(h) + 0.5
    vx = 16 + 9.5 * np.sin(2 * np.pi * yy / h + 0.6)
    vine = np.abs(xs + 0.5 - vx[:, None]) <= 1.1
    _fill(c, vine, VINE[2])
    _fill(c, vine & (xs + 0.5 < vx[:, None]), VINE[3])
    _fill(c, vine & (xs + 0.5 > vx[:, None] + 0.5), VINE[1])
    # thorns and leaves along the vine
    for y in (2, 9, 15, 24, 29):
        x = int(vx[y])
        side = 1 if y % 2 else -1
        for d in (1, 2):
            xx = x + side * (1 + d)
            if 0 < xx < W - 1:
                c[y - d + 1, xx, :3] = THORN[2 - d]
                c[y - d + 1, xx, 3] = 255
    for y in (6, 20):
        x = int(vx[y])
        leaf = ((xs - (x - 2.5)) / 2.2) ** 2 + ((ys - y) / 1.2) ** 2 <= 1
        _fill(c, leaf, VINE[3])
        _fill(c, leaf & ~px.shift(leaf, 1, 1), VINE[4])
    # a dark shadow cast on the logs under the vine
    shadow = px.shift(vine, 1, 1) & ~vine & (c[..., 3] > 0)
    c[shadow, :3] *= 0.6
    _edges(c, LOG[5])
    return px.to_rgba8(c)


def forest_base():
    h = BASE_H
    ys, xs = np.mgrid[0:h, 0:W]
    c = _canvas(h)
    # three stakes continue the logs and end in iron-shod points at the floor
    for k, (x0, x1) in enumerate(LOGS):
        mid = (x0 + x1 - 1) / 2.0
        half = (x1 - x0) / 2.0
        taper = np.where(ys < 6, half, half * np.clip((h - ys) / (h - 6 + 0.5), 0.25, 1))
        stake = (np.abs(xs - mid) <= taper) & (ys >= 4)
        t = _log_tone(xs, x0, x1)
        tone = np.where(ys < 7, 1 + np.floor(t * 3.99).astype(int), 1 + np.floor(t * 2.99).astype(int))
        for v in range(6):
            _fill(c, stake & (tone == v) & (ys < 7), LOG[v])
            _fill(c, stake & (tone == v) & (ys >= 7), IRON_F[min(v, 4)])
        _fill(c, stake & (ys == 7), IRON_F[3])
        _fill(c, stake & (ys == 6), INK)
    # the crossbeam: a horizontal log, lit on top, with iron caps
    beam = ys < 5
    t = np.clip(1 - ys / 4.5, 0, 1)
    tone = 1 + np.floor(t * 3.99).astype(int)
    for v in range(6):
        _fill(c, beam & (tone == v), LOG[v])
    _fill(c, beam & (np.sin(xs * 0.9 + ys * 2.1) > 0.85), LOG[1])
    _fill(c, beam & ((xs < 3) | (xs > W - 4)), IRON_F[2])
    _fill(c, (ys == 0) & ((xs < 3) | (xs > W - 4)), IRON_F[4])
    _fill(c, (ys == 2) & ((xs == 1) | (xs == W - 2)), IRON_F[4])
    _fill(c, ys == 0, LOG[5])
    _fill(c, (ys == 0) & ((xs < 3) | (xs > W - 4)), IRON_F[4])
    _edges(c, LOG[5])
    # outline under the beam and round the stakes where they meet the air
    solid = c[..., 3] > 0
    _fill(c, solid & ~px.shift(solid, -1, 0) & (ys < h - 1) & (ys >= 4), INK)
    return px.to_rgba8(c)


# ---------------------------------------------------------------- city


def city_column():
    h = REPEAT
    ys, xs = np.mgrid[0:h, 0:W]
    c = _canvas(h)
    # the slab: iron plates, each a little bevelled
    _fill(c, np.ones((h, W), bool), IRON_C[2])
    plate = (xs >= 5) & (xs <= 26)
    seam = (ys == 15) | (ys == 31)
    _fill(c, plate & ((ys == 0) | (ys == 16)), IRON_C[4])
    _fill(c, plate & ((ys == 14) | (ys == 30)), IRON_C[1])
    _fill(c, plate & seam, IRON_C[0])
    # a faint vertical brushing on the plates, and one plate darker (the repeat hides it)
    brush = plate & ((xs * 7 + (ys // 16) * 3) % 11 == 0) & ~seam
    _fill(c, brush, IRON_C[1])
    _fill(c, plate & (xs == 5) & ~seam, IRON_C[4])
    _fill(c, plate & (xs == 26) & ~seam, IRON_C[1])
    # rust streaks running down from the rivets
    for x, y0, ln in ((9, 3, 5), (22, 19, 6), (15, 19, 3)):
        _fill(c, (xs == x) & (ys > y0) & (ys <= y0 + ln), RUST)
    for y in (2, 12, 18, 28):
        for x in (8, 15, 22):
            _fill(c, (ys == y) & (xs == x), IRON_C[5])
            _fill(c, (ys == y + 1) & (xs == x), IRON_C[0])
    # stiles with copper trim down both sides
    stile_l, stile_r = xs <= 4, xs >= 27
    _fill(c, stile_l | stile_r, IRON_C[1])
    _fill(c, (xs == 2) | (xs == 29), COPPER[2])
    _fill(c, (xs == 3) | (xs == 30), COPPER[1])
    _fill(c, (xs == 1), COPPER[4])
    _fill(c, (xs == 4) | (xs == 27), IRON_C[0])
    _fill(c, (xs == 28), IRON_C[3])
    for y in (7, 23):
        _fill(c, (ys == y) & ((xs == 2) | (xs == 29)), COPPER[4])
        _fill(c, (ys == y + 1) & ((xs == 2) | (xs == 29)), COPPER[0])
    # a horizontal copper-edged strap across the slab, once per repeat
    strap = (ys >= 6) & (ys <= 9) & plate
    _fill(c, strap, IRON_C[3])
    _fill(c, strap & (ys == 6), COPPER[3])
    _fill(c, strap & (ys == 9), COPPER[0])
    for x in (7, 11, 16, 20, 24):
        _fill(c, (ys == 7) & (xs == x), IRON_C[5])
        _fill(c, (ys == 8) & (xs == x), IRON_C[1])
    _edges(c, COPPER[4])
    return px.to_rgba8(c)


def city_base():
    h = BASE_H
    ys, xs = np.mgrid[0:h, 0:W]
    c = _canvas(h)
    sill = ys < 7
    _fill(c, sill, IRON_C[2])
    _fill(c, sill & (ys == 0), COPPER[3])
    _fill(c, sill & (ys == 1), COPPER[2])
    _fill(c, sill & (ys == 2), IRON_C[4])
    _fill(c, sill & (ys == 6), IRON_C[0])
    _fill(c, sill & (ys == 5), IRON_C[1])
    for x in (3, 9, 16, 22, 28):
        _fill(c, (ys == 4) & (xs == x), IRON_C[5])
    # teeth biting into the floor
    for k in range(5):
        x0 = 1 + k * 6
        mid = x0 + 2.5
        tooth = (ys >= 7) & (np.abs(xs + 0.5 - (mid + 0.5)) <= 3.0 * (h - ys) / (h - 6.5))
        _fill(c, tooth, IRON_C[3])
        _fill(c, tooth & (xs + 0.5 > mid + 0.6), IRON_C[1])
        _fill(c, tooth & (xs + 0.5 <= mid - 0.4), IRON_C[4])
    _edges(c, COPPER[4])
    solid = c[..., 3] > 0
    _fill(c, solid & ~px.shift(solid, -1, 0) & (ys >= 6) & (ys < h - 1), INK)
    return px.to_rgba8(c)


# ---------------------------------------------------------------- output


def assemble(column, base, height_world):
    """The door as the game composes it, in texture pixels: the column repeated and cut to
    floor(h / 3) - base height rows, the base under it."""
    rows = height_world // 3 - base.shape[0]
    reps = -(-rows // column.shape[0])
    return np.concatenate([np.tile(column, (reps, 1, 1))[:rows], base])


def _check(column, base, name):
    if column.shape != (REPEAT, W, 4) or base.shape != (BASE_H, W, 4):
        raise ValueError(f"{name}: column {column.shape}, base {base.shape}")
    if (column[..., 3] != 255).any():
        raise ValueError(f"{name}: the column must be opaque to block the passage")
    # the seam: the last row must join the first as well as any two neighbouring rows join
    rows = column[..., :3].astype(int)
    diffs = [np.abs(rows[i] - rows[(i + 1) % REPEAT]).sum() for i in range(REPEAT)]
    if diffs[-1] > max(diffs[:-1]):
        raise ValueError(f"{name}: the column shows a seam where it repeats")


def generate(out):
    folder = out / "Assets/Sprites/Objects/Door"
    written = []
    for name, column, base in (("Forest", forest_column(), forest_base()),
                               ("City", city_column(), city_base())):
        _check(column, base, name)
        written.append(px.save_png(column, folder / f"{name}-Door.png"))
        written.append(px.save_png(base, folder / f"{name}-DoorDownPart.png"))
    return written

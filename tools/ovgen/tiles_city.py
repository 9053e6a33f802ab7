"""The City tileset: cut slate-and-indigo stone, verdigris copper, cold lamp light, a few embers.

Same layout and light as the Forest set (tile_catalog).
draw_tiles() returns {index: 32 x 32 canvas}.
"""
import numpy as np

from . import pixel as px
from . import tile_catalog as tc
from . import tiles_forest as forest
from .tiles_common import (T, Fields, blit, canvas, dim, ellipse, fill, glow, interior_window,
                           lines, mirror_x, pfbm, pixels, pnoise_1d, rect, shade, strand,
                           shade_silhouette, strand_mask, terrain_cells)

STONE = px.ramp("#0d0e18", "#181c30", "#232a46", "#323c60", "#4a5782", "#6a78a2")
MORTAR = px.rgb("#0a0b13")
COPPER = px.ramp("#163635", "#245a55", "#37837a", "#5fb09c", "#a2e0c6")
BRASS = px.ramp("#3a2414", "#6e4424", "#a5683a", "#d69a5a")
LAMP = px.ramp("#1c3a6a", "#3f7fc0", "#8fd4ff", "#d8f3ff", "#ffffff")
EMBER = px.ramp("#7a2410", "#c4481c", "#ee8a38", "#ffc772", "#fff2c8")
IRON = px.ramp("#0e0f16", "#1d202c", "#313646", "#4d5468", "#7a8299")
WOOD = px.ramp("#1c130f", "#33241a", "#4e3626", "#6d4d34", "#8f6a48")
CLOTH = px.ramp("#1a1634", "#2c2656", "#433a80", "#5f54a8")
WEED = px.ramp("#132420", "#1f3a30", "#2f5a44", "#4f8060", "#7fae80")
BONE = px.ramp("#4a4852", "#7e7c88", "#b4b0b8", "#e0dce0")
BACK = px.ramp("#07080e", "#0b0c16", "#0f111d", "#141726", "#1a1e31")
FRONT_C = px.ramp("#040409", "#080912", "#0e101e", "#181b30")
WATER = px.ramp("#0a1a2a", "#10283c", "#173a52", "#245670", "#4a8fb0", "#b8ecff")

_R = np.random.RandomState(31337)
GRAIN = pfbm(T, _R, (8, 4))


def _blocks(y, x):
    """Running bond of 32 x 16 blocks: (block id, mortar mask, block-local x, y)."""
    yi, xi = y.astype(int), x.astype(int)
    course = yi // 16
    bx = (xi - 16 * course) % T  # course 1 is offset by half a block
    by = yi % 16
    mortar = (by == 15) | (bx == T - 1)
    bid = course * 2 + ((xi - 16 * course) // T) % 2
    return bid, mortar, bx, by


# ---------------------------------------------------------------- terrain


def terrain(cells, kind, k):
    f = Fields(cells, "square")
    y, x = f.y, f.x
    yi, xi = y.astype(int), x.astype(int)
    c = canvas()
    c[..., 3] = 255
    lit = np.maximum.reduce([np.clip(1 - f.dn / 18, 0, 1), 0.7 * np.clip(1 - f.dw / 10, 0, 1),
                             0.4 * np.clip(1 - f.de / 10, 0, 1)])
    shift = np.where(lit > 0.25, 1, 0)  # stone near an open face is one step brighter
    bid, mortar, bx, by = _blocks(y, x)
    body = 1 + shift + ((bid % 3 == 1) & (GRAIN > 0.55) & (shift == 0))
    tone = np.full((T, T), 0)
    tone = body.copy()
    tone = np.where(by == 0, body + 1, tone)
    tone = np.where(bx == 0, body + 1, tone)
    tone = np.where((by == 14) | (bx == T - 2), body - 1, tone)
    tone = np.where((GRAIN > 0.62) & (by > 1) & (by < 13) & ((xi * 3 + yi * 5) % 7 == 0), body - 1,
                    tone)
    c[..., :3] = STONE[np.clip(tone, 0, 5)]
    c[mortar, :3] = MORTAR
    win = interior_window(3)
    if kind == "fill":
        _fill_variant(c, k, y, x)
    elif kind == "detail":
        _detail(c, k)

    # exposed faces: a dressed edge, lit on the left, in shade on the right, dark underneath
    fill(c, (f.dw < 1), STONE[4])
    fill(c, (f.dw >= 1) & (f.dw < 2) & ~mortar, STONE[3 + (lit > 0.5)])
    fill(c, (f.de < 1), STONE[1])
    fill(c, (f.de >= 1) & (f.de < 2), STONE[0])
    fill(c, (f.ds < 1), STONE[0])
    fill(c, (f.ds >= 1) & (f.ds < 3) & ~mortar, STONE[1])
    stain = (f.ds < 9) & ((xi % 11 == 4) | (xi % 11 == 5)) & (f.ds > 1) & (f.ds < 4 + xi % 5)
    fill(c, stain, COPPER[1])

    # top: a course of capstones over a copper trim
    cap = f.dn < 6
    cap_joint = ((xi + 8) % 16 == 0) & (f.cn < 6)
    fill(c, cap, STONE[3])
    fill(c, cap & (f.dn < 1), STONE[5])
    fill(c, cap & (f.dn >= 1) & (f.dn < 2), STONE[4])
    fill(c, cap & (f.dn >= 5), STONE[1])
    fill(c, cap_joint & (f.dn >= 1), MORTAR)
    fill(c, cap & px.shift(cap_joint, 0, 1) & (f.dn >= 1) & (f.dn < 5), STONE[4])
    fill(c, cap & ((xi * 5 + yi * 3) % 13 == 0) & (f.dn > 1.5) & (f.dn < 4.5), STONE[2])
    trim = (f.dn >= 6) & (f.dn < 8)
    fill(c, trim, COPPER[2])
    fill(c, trim & (f.dn < 7), COPPER[3])
    fill(c, trim & (f.dn >= 7) & (xi % 8 == 3), COPPER[0])
    fill(c, (f.dn >= 8) & (f.dn < 9), STONE[0])
    drip = (f.dn >= 9) & (f.dn < 11 + (xi * 7) % 5) & (xi % 13 == 6)
    fill(c, drip, COPPER[1])
    if kind == "top":
        _top_variant(c, k)
    cut = f.corner_cut(1.6)
    c[cut] = 0
    return c


def _fill_variant(c, k, y, x):
    yy, xx = y, x
    if k == 1:  # a cracked block
        crack = lines(T, T, [(6, 1), (9, 5), (8, 9), (12, 13)])
        fill(c, crack, MORTAR)
        fill(c, px.shift(crack, 0, 1) & ~crack & (yy < 14), STONE[3])
    elif k == 2:  # the upper block split in two
        fill(c, (xx.astype(int) == 13) & (yy < 15), MORTAR)
        fill(c, (xx.astype(int) == 14) & (yy < 15) & (yy > 0), STONE[3])
    elif k == 3:  # a chipped corner with a copper stain
        chip = ellipse(T, T, 30, 14, 4, 3) & (yy < 15)
        fill(c, chip, STONE[0])
        fill(c, chip & ~px.shift(chip, 1, 0), STONE[1])
        stain = (xx.astype(int) % 9 == 5) & (yy > 17) & (yy < 27)
        fill(c, stain, COPPER[1])


def _detail(c, k):
    D = lambda r: dim(r, STONE[1], 0.5)  # noqa: E731
    if k == 0:  # a carved rune, faintly lit
        rune = lines(T, T, [(16, 3), (16, 12)]) | lines(T, T, [(12, 5), (16, 8), (20, 5)]) \
            | lines(T, T, [(12, 12), (20, 12)])
        fill(c, px.shift(rune, 1, 1), STONE[4])
        fill(c, rune, D(LAMP)[1])
    elif k == 1:  # a copper vent
        vent = rect(T, T, 7, 18, 25, 29)
        fill(c, vent, D(COPPER)[1])
        fill(c, vent & ~px.erode(vent), D(COPPER)[2])
        for x in range(9, 24, 3):
            fill(c, rect(T, T, x, 20, x + 2, 27), MORTAR)
        fill(c, pixels(T, T, [(8, 19), (23, 19), (8, 27), (23, 27)]), D(COPPER)[3])
    elif k == 2:  # a niche with a skull
        niche = rect(T, T, 9, 2, 23, 14) | ellipse(T, T, 16, 2, 7, 2)
        fill(c, niche & (px.grid(T, T)[0] < 14), MORTAR)
        skull = ellipse(T, T, 16, 9, 4, 3.5) | rect(T, T, 14, 10, 19, 14)
        shade(c, skull, D(BONE)[0:3])
        fill(c, pixels(T, T, [(14, 9), (17, 9)]), MORTAR)
    else:  # an iron ring
        ring = ellipse(T, T, 16, 24, 4, 4) & ~ellipse(T, T, 16, 24, 2.6, 2.6)
        shade(c, ring, D(IRON)[1:4])
        fill(c, rect(T, T, 14, 18, 19, 21), D(IRON)[2])


def _top_variant(c, k):
    yy, xx = px.grid(T, T)
    if k == 0:  # weeds in a joint
        for x, h, lean in ((13, 5, -2), (14, 7, -1), (15, 6, 1), (16, 4, 2), (18, 3, 1)):
            fill(c, lines(T, T, [(x, 5), (x + lean, 5 - h + 3)]), WEED[2])
        fill(c, pixels(T, T, [(12, 1), (17, 2)]), WEED[3])
    elif k == 1:  # a brass plaque in the trim
        plaque = rect(T, T, 10, 5, 22, 10)
        shade(c, plaque, BRASS[1:4])
        fill(c, rect(T, T, 12, 7, 20, 8), BRASS[0])
    elif k == 2:  # a broken capstone
        chip = px.poly_mask(T, T, [(11, -1), (20, -1), (18, 3), (13, 3)])
        c[chip & (yy < 2)] = 0
        fill(c, chip & (yy >= 2), STONE[4])
        fill(c, rect(T, T, 13, 3, 18, 4), STONE[1])
    else:  # a drain grate
        grate = rect(T, T, 11, 1, 21, 5)
        fill(c, grate, MORTAR)
        for x in range(12, 21, 2):
            fill(c, rect(T, T, x, 1, x + 1, 5), IRON[2])
        fill(c, rect(T, T, 11, 0, 21, 1), IRON[3])


# ---------------------------------------------------------------- platforms and hazards


def grating(role):
    """An iron grating on brackets; role 0 left end, 1 middle, 2 right end, 3 single."""
    c = canvas()
    yy, xx = px.grid(T, T)
    left, right = role in (0, 3), role in (2, 3)
    x0, x1 = (1 if left else 0), (31 if right else 32)
    span = (xx >= x0) & (xx < x1)
    fill(c, span & (yy < 2), IRON[4])
    fill(c, span & (yy >= 2) & (yy < 3), IRON[2])
    lattice = span & (yy >= 3) & (yy < 8) & (((xx.astype(int) + yy.astype(int)) % 4 == 0)
                                             | ((xx.astype(int) - yy.astype(int)) % 4 == 0))
    fill(c, lattice, IRON[2])
    fill(c, span & (yy >= 8) & (yy < 10), IRON[1])
    fill(c, span & (yy >= 8) & (yy < 9), IRON[3])
    for x in range(4, T, 8):
        fill(c, pixels(T, T, [(x, 0)]) & span, COPPER[3])
    for end, flip in ((left, False), (right, True)):
        if end:
            e = canvas()
            br = lines(T, T, [(1, 9), (1, 22)], 2) | lines(T, T, [(2, 21), (12, 9)], 2)
            shade(e, br, IRON[1:4])
            fill(e, pixels(T, T, [(1, 12), (1, 19)]), COPPER[3])
            if flip:
                e = mirror_x(e)
            blit(c, e, 0, 0)
    return c


def scaffold(role):
    """Wooden scaffold boards on a beam with X braces."""
    c = canvas()
    yy, xx = px.grid(T, T)
    left, right = role in (0, 3), role in (2, 3)
    boards = rect(T, T, 0, 0, T, 5)
    for sx in (0, 11, 22):
        fill(c, boards & (xx >= sx) & (xx < sx + 10), WOOD[2 + (sx == 11)])
    fill(c, boards & (yy < 1), WOOD[4])
    fill(c, boards & (yy >= 4), WOOD[0])
    fill(c, pixels(T, T, [(2, 2), (8, 2), (13, 2), (19, 2), (24, 2), (30, 2)]), IRON[3])
    beam = rect(T, T, 0, 5, T, 9)
    shade(c, beam, WOOD[1:4])
    fill(c, rect(T, T, 6, 5, 8, 9) | rect(T, T, 24, 5, 26, 9), IRON[2])
    brace = lines(T, T, [(2, 9), (30, 30)]) | lines(T, T, [(30, 9), (2, 30)])
    fill(c, brace, WOOD[1])
    fill(c, px.shift(brace, -1, 0) & ~brace & (yy > 9), WOOD[2])
    for end, flip in ((left, False), (right, True)):
        if end:
            e = canvas()
            post = rect(T, T, 1, 0, 5, T)
            shade(e, post, WOOD[1:4])
            fill(e, rect(T, T, 0, 3, 6, 5) | rect(T, T, 0, 20, 6, 22), IRON[2])
            if flip:
                e = mirror_x(e)
            blit(c, e, 0, 0)
    return c


def cabin(row, part):
    """The elevator cabin: an iron cage under a hanger beam (row 0), its deck and truss (row 1);
    part 0 left, 1 middle, 2 right. The deck's top is tc.CABIN_DECK px down the floor row."""
    c = canvas()
    yy, xx = px.grid(T, T)
    deck0, deck1 = tc.CABIN_DECK, tc.CABIN_DECK + tc.CABIN_DECK_HEIGHT
    bars = (xx.astype(int) % 8 == 3)
    if row == 0:
        shade(c, rect(T, T, 0, 4, T, 10), IRON[1:4])
        fill(c, rect(T, T, 0, 10, T, 11), IRON[0])
        for x in range(2, T, 8):
            fill(c, pixels(T, T, [(x, 6)]), COPPER[3])
        fill(c, bars & (yy >= 11), IRON[2])
        if part == 1:
            hook = lines(T, T, [(16, 0), (16, 4)], 2)
            shade(c, hook, IRON[1:4])
    else:
        fill(c, bars & (yy < deck0), IRON[2])
        shade(c, rect(T, T, 0, deck0, T, deck1), IRON[1:4])
        fill(c, rect(T, T, 0, deck0, T, deck0 + 1), COPPER[3])
        for x in range(4, T, 8):
            fill(c, pixels(T, T, [(x, deck0 + 4)]), COPPER[2])
        truss = (lines(T, T, [(0, deck1), (16, 26)]) | lines(T, T, [(31, deck1), (16, 26)])) & (yy >= deck1)
        if part != 1:
            truss = lines(T, T, [(0, deck1), (0, 22)], 2) if part == 0 else lines(T, T, [(30, deck1), (30, 22)], 2)
            truss |= rect(T, T, 0, deck1, T, deck1 + 2)
        fill(c, truss, IRON[1])
    if part != 1:
        post = rect(T, T, 0, 0 if row else 4, 3, deck1 if row else T)
        shade(c, post, IRON[1:4])
        if part == 2:
            c = mirror_x(c)
    return c


def iron_spikes(k):
    c = canvas()
    yy, xx = px.grid(T, T)
    base = rect(T, T, 0, 27, T, T)
    shade(c, base, IRON[1:4])
    fill(c, rect(T, T, 0, T - 1, T, T), IRON[0])
    heights = (14, 18, 12, 17) if k == 0 else (16, 11, 19, 13)
    for i, h in enumerate(heights):
        cx = 4 + i * 8
        sp = px.poly_mask(T, T, [(cx - 3, 28), (cx, 28 - h), (cx + 3, 28)])
        fill(c, sp, IRON[2])
        fill(c, sp & (xx < cx), IRON[3])
        fill(c, sp & (xx >= cx + 1), IRON[1])
        fill(c, pixels(T, T, [(cx - 1, 28 - h + 1), (cx - 1, 28 - h + 2)]), IRON[4])
        if k == 1 and i == 2:
            fill(c, sp & (yy > 20), EMBER[0])  # old rust
    return c


# ---------------------------------------------------------------- ground decoration


def _weeds(c, cx, h, n, rng):
    hs = [h * (0.5 + 0.5 * np.sin(np.pi * (i + 0.5) / n)) * (0.8 + 0.3 * rng.rand())
          for i in range(n)]
    ls = [(i - n / 2) * 1.0 + rng.randn() * 0.7 for i in range(n)]
    forest.blades(c, cx - n / 2, T - 1, hs, ls, WEED)


def _crate(c, x0, y0, w, h):
    box = rect(T, T, x0, y0, x0 + w, y0 + h)
    shade(c, box, WOOD[1:4])
    fill(c, box & ~px.erode(box), WOOD[0])
    fill(c, lines(T, T, [(x0 + 1, y0 + h - 2), (x0 + w - 2, y0 + 1)]) & box, WOOD[1])
    fill(c, rect(T, T, x0 + 1, y0 + 1, x0 + w - 1, y0 + 2), WOOD[4])
    for x, y in ((x0 + 1, y0 + 1), (x0 + w - 2, y0 + 1), (x0 + 1, y0 + h - 2),
                 (x0 + w - 2, y0 + h - 2)):
        fill(c, pixels(T, T, [(x, y)]), IRON[3])


def deco_ground(k):
    c = canvas()
    rng = np.random.RandomState(1400 + k)
    yy, xx = px.grid(T, T)
    if k == 0:  # weeds
        _weeds(c, 16, 7, 6, rng)
    elif k == 1:  # tall weeds with seed heads
        _weeds(c, 13, 14, 7, rng)
        _weeds(c, 21, 9, 4, rng)
        fill(c, pixels(T, T, [(11, 18), (15, 17), (20, 22)]), BONE[2])
    elif k == 2:  # a little rubble
        for cx, cy, r in ((11, 29.5, 3), (16, 30, 2.2), (20, 29.8, 2.8)):
            shade(c, ellipse(T, T, cx, cy, r, r * 0.8) & (yy < T), STONE[2:5])
    elif k == 3:  # a rubble heap with a broken block
        heap = ellipse(T, T, 16, 32, 14, 10)
        shade(c, heap, STONE[1:4])
        for cx, cy, r in ((10, 26, 3), (17, 24, 3.5), (23, 27, 3), (14, 29, 2.5)):
            shade(c, ellipse(T, T, cx, cy, r, r * 0.8), STONE[2:5])
        blk = rect(T, T, 18, 19, 27, 25)
        shade(c, blk, STONE[2:5])
        fill(c, rect(T, T, 18, 24, 27, 25), MORTAR)
    elif k == 4:  # crate
        _crate(c, 6, 13, 20, 19)
    elif k == 5:  # two crates
        _crate(c, 3, 17, 16, 15)
        _crate(c, 18, 23, 11, 9)
        _crate(c, 7, 6, 11, 11)
    elif k == 6:  # barrel
        body = rect(T, T, 9, 10, 23, T) | ellipse(T, T, 16, 21, 8, 11)
        body &= (yy >= 10)
        shade(c, body, WOOD[1:4])
        for y in (12, 20, 28):
            fill(c, body & (yy >= y) & (yy < y + 2), IRON[2])
            fill(c, body & (yy >= y) & (yy < y + 1), IRON[3])
        fill(c, body & (np.abs(xx - 12) < 0.5), WOOD[4])
        fill(c, ellipse(T, T, 16, 10.5, 6.5, 1.2), WOOD[1])
    elif k == 7:  # clay pots
        for cx, cy, r, h in ((12, 24, 6, 14), (22, 27, 4, 9)):
            pot = ellipse(T, T, cx, cy, r, r * 1.05) | rect(T, T, int(cx - r / 2), int(cy - h / 2),
                                                           int(cx + r / 2), int(cy))
            pot &= yy < T
            shade(c, pot, BRASS[0:3])
            fill(c, rect(T, T, int(cx - r / 2) - 1, int(cy - h / 2), int(cx + r / 2) + 1,
                         int(cy - h / 2) + 1), BRASS[2])
            fill(c, pot & (np.abs(yy - cy + 1) < 0.5), BRASS[0])
    elif k == 8:  # iron bollard
        post = rect(T, T, 12, 12, 20, T)
        shade(c, post, IRON[1:4])
        head = ellipse(T, T, 16, 12, 5, 3.5)
        shade(c, head, IRON[2:5])
        fill(c, rect(T, T, 11, 18, 21, 20), COPPER[2])
        fill(c, rect(T, T, 11, 18, 21, 19), COPPER[3])
        fill(c, rect(T, T, 10, 29, 22, T), IRON[1])
    elif k == 9:  # a shop sign on a post
        fill(c, rect(T, T, 6, 6, 9, T), IRON[2])
        fill(c, rect(T, T, 6, 6, 7, T), IRON[3])
        fill(c, rect(T, T, 6, 6, 26, 8), IRON[2])
        fill(c, pixels(T, T, [(12, 8), (12, 9), (22, 8), (22, 9)]), IRON[3])
        board = rect(T, T, 10, 10, 25, 20)
        shade(c, board, WOOD[1:4])
        fill(c, board & ~px.erode(board), COPPER[2])
        key = ellipse(T, T, 15, 15, 2, 2) | rect(T, T, 16, 14, 22, 16)
        fill(c, key, BRASS[3])
        fill(c, rect(T, T, 5, 30, 10, T), IRON[1])
    elif k == 10:  # floor grate with a glow under it
        grate = rect(T, T, 6, 27, 26, 31)
        fill(c, grate, IRON[1])
        for x in range(7, 26, 3):
            fill(c, rect(T, T, x, 28, x + 2, 30), LAMP[1])
        fill(c, rect(T, T, 6, 27, 26, 28), IRON[3])
        glow(c, 16, 28, 9, LAMP[1], 0.18)
    elif k == 11:  # loose paving stones
        for x0, w, tilt in ((5, 8, 0), (14, 7, 1), (22, 6, 0)):
            s = rect(T, T, x0, 28 - tilt, x0 + w, 31)
            shade(c, s, STONE[2:5])
            fill(c, rect(T, T, x0, 30, x0 + w, 31), STONE[1])
    elif k == 12:  # stone urn
        urn = ellipse(T, T, 16, 19, 7, 6) | rect(T, T, 12, 24, 21, 28) | rect(T, T, 10, 28, 23, T) \
            | rect(T, T, 9, 11, 24, 14)
        shade(c, urn, STONE[2:5])
        fill(c, rect(T, T, 9, 13, 24, 14), STONE[1])
        fill(c, rect(T, T, 10, 17, 23, 18), COPPER[2])
        _weeds(c, 16, 6, 4, rng)
        c[(yy > 24) & (c[..., 3] > 0) & ~urn] = 0
    elif k == 13:  # candles
        for x, h in ((10, 8), (14, 12), (19, 6), (22, 10)):
            stick = rect(T, T, x, T - h, x + 3, T)
            shade(c, stick, BONE[1:4])
            fill(c, pixels(T, T, [(x + 1, T - h - 1)]), EMBER[3])
            fill(c, pixels(T, T, [(x + 1, T - h - 2)]), EMBER[2])
            glow(c, x + 1.5, T - h - 2, 4, EMBER[2], 0.2)
        fill(c, rect(T, T, 8, T - 2, 26, T), BONE[1])
    elif k == 14:  # sack
        sack = ellipse(T, T, 16, 24, 9, 8) | ellipse(T, T, 16, 14, 3, 3)
        sack &= yy < T
        shade(c, sack, px.ramp("#2e2a24", "#4e473a", "#6e6552", "#8e8468")[0:3])
        fill(c, rect(T, T, 13, 16, 20, 18), WOOD[1])
    else:  # copper valve
        pipe = rect(T, T, 13, 14, 19, T)
        shade(c, pipe, COPPER[1:4])
        fill(c, rect(T, T, 11, 26, 21, 29), COPPER[1])
        fill(c, rect(T, T, 11, 26, 21, 27), COPPER[3])
        wheel = ellipse(T, T, 16, 11, 6, 6) & ~ellipse(T, T, 16, 11, 4.4, 4.4)
        wheel |= rect(T, T, 10, 10, 22, 12) | rect(T, T, 15, 5, 17, 17)
        shade(c, wheel, BRASS[1:4])
    return c


# ---------------------------------------------------------------- hanging decoration


def chain(c, x, length, ramp=IRON):
    for y in range(0, length, 3):
        link = rect(T, T, x - 1, y, x + 2, y + 3) & ~rect(T, T, x, y + 1, x + 1, y + 2) \
            if (y // 3) % 2 == 0 else rect(T, T, x, y, x + 1, y + 3)
        fill(c, link, ramp[2])
        fill(c, link & (px.grid(T, T)[1] < x + 0.5), ramp[3])


def banner(c, x0, x1, length, torn=False):
    yy, xx = px.grid(T, T)
    mid = (x0 + x1) / 2
    ragged = (xx * 7 % 5) + (xx > mid) * 6
    bottom = length - np.where(torn, ragged, 3 - np.abs(xx - mid + 0.5))
    cloth = (xx >= x0) & (xx < x1) & (yy >= 2) & (yy < bottom)
    fill(c, cloth, CLOTH[2])
    fill(c, cloth & (xx < x0 + 2), CLOTH[3])
    fill(c, cloth & (xx >= x1 - 2), CLOTH[1])
    fill(c, cloth & ((xx - x0) % 5 == 3), CLOTH[1])
    fill(c, rect(T, T, x0 - 1, 0, x1 + 1, 2), IRON[3])
    emblem = ellipse(T, T, (x0 + x1) / 2, length * 0.45, 3, 3) & ~ellipse(
        T, T, (x0 + x1) / 2 + 1, length * 0.45 - 1, 2.2, 2.2)
    fill(c, emblem & cloth, COPPER[3])
    fill(c, cloth & (yy < bottom) & (yy >= bottom - 1), CLOTH[0])


def deco_hang(k):
    c = canvas()
    yy, xx = px.grid(T, T)
    if k == 0:
        chain(c, 11, 12)
        chain(c, 20, 8)
    elif k == 1:
        chain(c, 9, T)
        chain(c, 22, 24)
    elif k == 2:  # chain with a hook
        chain(c, 16, 20)
        hook = lines(T, T, [(16, 20), (16, 25), (18, 27), (20, 25), (20, 23)], 2)
        shade(c, hook, IRON[1:4])
    elif k == 3:
        banner(c, 9, 23, 30)
    elif k == 4:
        banner(c, 9, 23, 26, torn=True)
    elif k == 5:  # hanging cage
        chain(c, 16, 8)
        cage = rect(T, T, 9, 10, 24, 28)
        bars = cage & ((xx.astype(int) - 9) % 3 == 0)
        fill(c, bars, IRON[2])
        fill(c, rect(T, T, 9, 10, 24, 11) | rect(T, T, 9, 27, 24, 28) | rect(T, T, 9, 19, 24, 20),
             IRON[3])
        fill(c, ellipse(T, T, 16.5, 10, 7.5, 3) & (yy < 10.5), IRON[2])
        fill(c, ellipse(T, T, 16, 25, 3, 2), BONE[1])
    elif k == 6:  # unlit lantern
        grey = px.ramp("#222222", "#333333", "#444444", "#555555", "#666666")
        forest_l = forest.lantern(0, IRON, grey, IRON)
        m = forest_l[..., 3] > 200
        c[m] = forest_l[m]
        fill(c, rect(T, T, 12, 12, 20, 20), STONE[1])
        fill(c, rect(T, T, 12, 12, 14, 20), STONE[2])
    elif k == 7:  # pipe with a drip
        pipe = rect(T, T, 13, 0, 19, 16)
        shade(c, pipe, COPPER[1:4])
        fill(c, rect(T, T, 12, 13, 20, 16), COPPER[1])
        fill(c, rect(T, T, 12, 13, 20, 14), COPPER[3])
        fill(c, pixels(T, T, [(16, 19), (16, 24), (16, 25)]), WATER[4])
    elif k == 8:  # cobweb
        web = forest.deco_hang(8)
        m = web[..., 3] > 0
        c[m] = web[m]
    elif k == 9:  # mineral drips
        for cx, w, h in ((8, 4, 7), (14, 5, 12), (21, 4, 6), (26, 3, 9)):
            forest.stalactite(c, cx, w, h, STONE)
        fill(c, pixels(T, T, [(14, 14)]), LAMP[2])
    elif k == 10:  # rope with a knot
        rope = strand_mask(T, T, strand(16, 0, 26, 0.6, 0.5))
        fill(c, rope | px.shift(rope, 0, 1), WOOD[3])
        fill(c, rope, BRASS[2])
        fill(c, ellipse(T, T, 16.5, 24, 2, 2), WOOD[3])
    elif k == 11:  # hanging sign
        fill(c, lines(T, T, [(10, 0), (10, 10)]) | lines(T, T, [(22, 0), (22, 10)]), IRON[3])
        board = rect(T, T, 6, 10, 27, 21)
        shade(c, board, WOOD[1:4])
        fill(c, board & ~px.erode(board), COPPER[2])
        mug = rect(T, T, 13, 13, 19, 19) | (ellipse(T, T, 20, 16, 2, 2) & ~ellipse(T, T, 20, 16, 1,
                                                                                   1))
        fill(c, mug, BRASS[3])
    elif k == 12:  # ivy down a wall
        for x, ln, ph in ((6, 22, 0.4), (12, 14, 1.9), (19, 27, 2.7), (25, 18, 0.8)):
            forest.vine(c, x, ln, ph, WEED)
    elif k == 13:  # draped cloth
        cloth = (yy < 8 + 6 * np.sin(np.clip(xx, 0, T) * np.pi / T)) & (yy >= 0)
        fill(c, cloth, CLOTH[2])
        fill(c, cloth & (yy < 2), CLOTH[3])
        fill(c, cloth & ((xx.astype(int) % 6) == 0), CLOTH[1])
        fill(c, cloth & ~px.shift(cloth, -1, 0), CLOTH[0])
        for x in (3, 29):
            fill(c, rect(T, T, x - 1, 0, x + 1, 14), CLOTH[1])
    elif k == 14:  # copper bell
        chain(c, 16, 8)
        bell = px.poly_mask(T, T, [(12, 10), (20, 10), (23, 22), (9, 22)]) | ellipse(T, T, 16, 10,
                                                                                   4, 3)
        shade(c, bell, COPPER[1:4])
        fill(c, rect(T, T, 8, 21, 24, 23), COPPER[3])
        fill(c, ellipse(T, T, 16, 24, 1.5, 1.5), BRASS[2])
    else:  # broken chain
        chain(c, 13, 16)
        chain(c, 21, 6)
        fill(c, pixels(T, T, [(12, 17), (14, 18)]), IRON[2])
    return c


# ---------------------------------------------------------------- back wall


def _back_base():
    c = canvas()
    c[..., 3] = 255
    yy, xx = px.grid(T, T)
    yi, xi = yy.astype(int), xx.astype(int)
    course = yi // 8
    bx = (xi - 8 * (course % 2)) % 16
    by = yi % 8
    bid = course * 4 + ((xi - 8 * (course % 2)) // 16) % 2
    base = np.where((bid * 7) % 5 == 0, 1, 2)
    tone = np.where(by == 0, base + 1, base)
    tone = np.where(by == 6, base - 1, tone)
    c[..., :3] = BACK[tone]
    c[(by == 7) | (bx == 15), :3] = BACK[0]
    return c


def back_tile(k):
    c = _back_base()
    yy, xx = px.grid(T, T)
    if k < 4:
        if k == 1:
            fill(c, lines(T, T, [(9, 9), (12, 13), (11, 17)]), BACK[0])
        elif k == 2:
            fill(c, rect(T, T, 16, 8, 23, 15), BACK[0])
            fill(c, rect(T, T, 17, 10, 21, 14), BACK[2])
        elif k == 3:
            fill(c, (xx.astype(int) % 11 == 6) & (yy > 9) & (yy < 24), dim(COPPER, BACK[1], 0.7)[1])
        return c
    if k == 4:  # a cornice along the top
        band = rect(T, T, 0, 0, T, 7)
        fill(c, band, BACK[3])
        fill(c, rect(T, T, 0, 0, T, 1), BACK[4])
        fill(c, rect(T, T, 0, 5, T, 7), BACK[1])
        fill(c, rect(T, T, 0, 7, T, 8), BACK[0])
        for x in range(3, T, 8):
            fill(c, rect(T, T, x, 7, x + 3, 10), BACK[2])
    elif k == 5:  # a plinth along the bottom
        fill(c, rect(T, T, 0, 24, T, T), BACK[2])
        fill(c, rect(T, T, 0, 24, T, 25), BACK[4])
        fill(c, rect(T, T, 0, 23, T, 24), BACK[0])
        fill(c, (xx.astype(int) % 16 == 15) & (yy > 24), BACK[0])
    else:  # a pilaster on the open side
        x0, x1 = (0, 7) if k == 6 else (25, 32)
        p = rect(T, T, x0, 0, x1, T)
        fill(c, p, BACK[3])
        fill(c, p & (xx < x0 + 1), BACK[4])
        fill(c, p & (xx >= x1 - 1), BACK[1])
        fill(c, rect(T, T, x1 if k == 6 else x0 - 1, 0, x1 + 1 if k == 6 else x0, T), BACK[0])
    return c


def back_detail(k):
    c = _back_base()
    yy, xx = px.grid(T, T)
    if k in (0, 1, 3):  # arched window, narrow slit, arch top
        if k == 0:
            hole = rect(T, T, 9, 10, 23, 30) | ellipse(T, T, 16, 10, 7, 7)
        elif k == 1:
            hole = rect(T, T, 14, 8, 18, 26) | ellipse(T, T, 16, 8, 2, 2)
        else:
            hole = (ellipse(T, T, 16, 32, 14, 22) & ~ellipse(T, T, 16, 32, 10, 17))
        frame = px.dilate(px.dilate(hole, True), True) & ~hole
        fill(c, frame, BACK[3])
        fill(c, frame & (yy < 14) & (xx < 16), BACK[4])
        if k == 3:
            fill(c, hole, BACK[4])
            fill(c, hole & ((np.degrees(np.arctan2(yy - 32, xx - 16)).astype(int) % 20) < 2),
                 BACK[1])
            return c
        fill(c, hole, LAMP[0])
        fill(c, hole & (xx + yy * 0.5 < 25), dim(LAMP, BACK[1], 0.25)[1])
        fill(c, hole & ((xx.astype(int) == 16) | (yy.astype(int) == 18)), BACK[1])
        fill(c, pixels(T, T, [(12, 12), (13, 11)]) & hole, LAMP[2])
    elif k == 2:  # pillar, tiles top to bottom
        p = rect(T, T, 9, 0, 23, T)
        fill(c, p, BACK[3])
        fill(c, p & (xx < 11), BACK[4])
        fill(c, p & (xx >= 20), BACK[1])
        fill(c, p & ((xx.astype(int) - 9) % 4 == 2) & (xx > 11) & (xx < 20), BACK[2])
        fill(c, rect(T, T, 8, 0, 9, T) | rect(T, T, 23, 0, 24, T), BACK[0])
    elif k == 4:  # relief panel with a rune
        panel = rect(T, T, 6, 5, 26, 27)
        fill(c, panel, BACK[2])
        fill(c, panel & ~px.erode(panel), BACK[4])
        rune = lines(T, T, [(16, 9), (16, 23)]) | lines(T, T, [(11, 13), (16, 17), (21, 13)])
        fill(c, rune, dim(COPPER, BACK[2], 0.3)[2])
    elif k == 5:  # tapestry
        forest_c = canvas()
        banner(forest_c, 8, 24, 31)
        m = forest_c[..., 3] > 0
        c[m, :3] = dim(forest_c[m, :3], BACK[1], 0.45)
    elif k == 6:  # niche with an urn
        niche = rect(T, T, 9, 8, 23, 28) | ellipse(T, T, 16, 8, 7, 5)
        fill(c, niche, BACK[0])
        fill(c, px.outline_of(niche) & (yy < 18), BACK[4])
        urn = ellipse(T, T, 16, 21, 4, 5) | rect(T, T, 14, 14, 19, 17) | rect(T, T, 13, 25, 20, 28)
        shade(c, urn, dim(BRASS, BACK[1], 0.4)[0:3])
    else:  # cracked wall with exposed rubble
        hole = ellipse(T, T, 15, 17, 10, 8)
        fill(c, hole, BACK[0])
        for cx, cy in ((11, 16), (16, 19), (20, 15), (13, 21)):
            shade(c, ellipse(T, T, cx, cy, 2.5, 2), BACK[1:4])
        cracks = lines(T, T, [(24, 14), (28, 8), (31, 6)]) | lines(T, T, [(6, 22), (2, 27)])
        fill(c, cracks, BACK[0])
    return c


# ---------------------------------------------------------------- animated tiles


def rune_light(frame):
    level = [0, 1, 2, 1][frame]
    c = canvas()
    plate = rect(T, T, 7, 6, 25, 26)
    shade(c, plate, COPPER[0:3])
    fill(c, plate & ~px.erode(plate), COPPER[3])
    fill(c, pixels(T, T, [(8, 7), (23, 7), (8, 24), (23, 24)]), BRASS[2])
    rune = lines(T, T, [(16, 9), (16, 23)]) | lines(T, T, [(11, 12), (16, 16), (21, 12)]) \
        | lines(T, T, [(11, 20), (16, 17), (21, 20)])
    glow(c, 16, 16, 12 + 2 * level, LAMP[1], 0.08 + 0.06 * level)
    fill(c, rune, LAMP[level])
    if level == 2:
        fill(c, rune & (px.grid(T, T)[0] < 14), LAMP[3])
    return c


def street_lamp(frame):
    """A lamp hung from a curled bracket that comes out of the wall on the left."""
    c = canvas()
    arm = lines(T, T, [(0, 6), (14, 6)], 2) | lines(T, T, [(3, 8), (8, 13)])
    curl = ellipse(T, T, 6, 10, 3, 3) & ~ellipse(T, T, 6, 10, 1.8, 1.8)
    shade(c, arm | curl, IRON[1:4])
    fill(c, rect(T, T, 0, 3, 2, 12), IRON[2])
    lamp = forest.lantern(frame, IRON, px.ramp("#1c3a6a", "#3f7fc0", "#8fd4ff", "#d8f3ff",
                                               "#ffffff"), LAMP)
    blit(c, lamp, 0, 0)
    return c


def wisps(frame):
    return forest.fireflies(frame, px.ramp("#2a4f8a", "#5fa2e0", "#a8e0ff", "#eaffff"))


def sewer_fall(frame):
    return forest.waterfall(frame, WATER)


# ---------------------------------------------------------------- large pieces


def column(part):
    c = canvas()
    yy, xx = px.grid(T, T)
    shaft = rect(T, T, 9, 0, 23, T)
    fill(c, shaft, STONE[2])
    flute = (xx.astype(int) - 9) % 4 == 3
    fill(c, shaft & flute, STONE[1])
    fill(c, shaft & (xx < 11), STONE[4])
    fill(c, shaft & (xx >= 20), STONE[1])
    fill(c, shaft & (xx >= 22), STONE[0])
    if part == 0:  # capital
        c[yy < 12] = 0
        cap = rect(T, T, 2, 0, 30, 5) | rect(T, T, 5, 5, 27, 9) | rect(T, T, 7, 9, 25, 12)
        shade(c, cap, STONE[2:5])
        fill(c, rect(T, T, 2, 4, 30, 5) | rect(T, T, 5, 8, 27, 9), STONE[1])
        fill(c, rect(T, T, 5, 5, 27, 7) & ((xx.astype(int) % 4) == 1), COPPER[2])
        fill(c, ellipse(T, T, 6, 8, 2, 2) | ellipse(T, T, 26, 8, 2, 2), STONE[3])
    elif part == 2:  # base
        base = rect(T, T, 6, 20, 26, 25) | rect(T, T, 3, 25, 29, T)
        c[base] = 0
        shade(c, base, STONE[2:5])
        fill(c, rect(T, T, 6, 24, 26, 25) | rect(T, T, 3, T - 1, 29, T), STONE[1])
        fill(c, rect(T, T, 6, 20, 26, 21), COPPER[2])
    else:
        crack = lines(T, T, [(15, 8), (17, 13), (16, 19)])
        fill(c, crack, STONE[0])
    return c


def roof():
    """A 3 x 2 verdigris copper roof with a dormer, as one 96 x 64 picture."""
    W, H = 3 * T, 2 * T
    c = px.new_sprite(H, W)
    yy, xx = px.grid(H, W)
    slope = px.poly_mask(W, H, [(0, 50), (48, 6), (96, 50)])
    fill(c, slope, COPPER[2])
    seams = slope & (xx.astype(int) % 6 == 0)
    fill(c, seams, COPPER[1])
    fill(c, slope & (xx.astype(int) % 6 == 1), COPPER[3])
    fill(c, slope & (xx > 48) & ~seams, COPPER[1])
    fill(c, slope & (xx > 48) & (xx.astype(int) % 6 == 1), COPPER[2])
    edge = slope & ~px.erode(slope)
    fill(c, edge & (xx < 48), COPPER[4])
    fill(c, edge & (xx >= 48), COPPER[0])
    # ridge finial
    fin = rect(H, W, 47, 0, 49, 8) | ellipse(H, W, 48, 2, 2, 2)
    shade(c, fin, BRASS[1:4])
    # eaves and the dark gable underneath
    eave = rect(H, W, 0, 50, W, 54)
    fill(c, eave, STONE[2])
    fill(c, rect(H, W, 0, 50, W, 51), STONE[4])
    fill(c, rect(H, W, 0, 53, W, 54), STONE[0])
    wall = rect(H, W, 6, 54, 90, H)
    fill(c, wall, STONE[1])
    for x in range(10, 90, 10):
        fill(c, rect(H, W, x, 54, x + 2, 58), WOOD[2])
    fill(c, rect(H, W, 6, 57, 90, 58), STONE[0])
    # dormer with a lit window
    dormer = rect(H, W, 40, 26, 56, 42)
    fill(c, dormer, STONE[2])
    fill(c, px.poly_mask(W, H, [(37, 27), (48, 17), (59, 27)]), COPPER[3])
    win = rect(H, W, 44, 30, 52, 40)
    fill(c, win, LAMP[1])
    fill(c, rect(H, W, 44, 30, 47, 40), LAMP[2])
    fill(c, rect(H, W, 48, 30, 49, 40) | rect(H, W, 44, 34, 52, 35), STONE[0])
    # chimney
    ch = rect(H, W, 70, 14, 78, 30) & ~slope | (rect(H, W, 70, 14, 78, 30) & (yy < 30))
    ch &= ~(slope & (yy > 30))
    shade(c, rect(H, W, 70, 14, 78, 30) & (yy < 14 + (78 - xx) * 0 + 16), STONE[1:4])
    fill(c, rect(H, W, 69, 12, 79, 15), STONE[3])
    return c


def iron_frame(part):
    c = canvas()
    yy, xx = px.grid(T, T)
    if part == 1:
        beam = rect(T, T, 0, 0, T, 8)
        shade(c, beam, IRON[1:4])
        for x in range(3, T, 8):
            fill(c, pixels(T, T, [(x, 3)]), COPPER[3])
        fill(c, rect(T, T, 0, 8, T, 9), IRON[0])
        scroll = ellipse(T, T, 16, 11, 4, 3) & ~ellipse(T, T, 16, 11, 2.6, 1.8) & (yy > 8)
        fill(c, scroll, IRON[2])
        return c
    post = rect(T, T, 22, 0, 29, T)
    shade(c, post, IRON[1:4])
    for y in (4, 20):
        fill(c, rect(T, T, 21, y, 30, y + 3), COPPER[2])
        fill(c, rect(T, T, 21, y, 30, y + 1), COPPER[3])
    fill(c, pixels(T, T, [(25, 12), (25, 28)]), IRON[4])
    return c if part == 0 else mirror_x(c)


def front(k):
    """Foreground silhouettes; the same roles as the forest's, built from city shapes."""
    if k in (0, 1, 2, 3, 6, 7, 8, 9, 15, 16, 17):
        c = canvas()
        yy, xx = px.grid(T, T)
        if k in (0, 1, 2, 3):  # balustrade: middle, middle, left end, right end
            m = rect(T, T, 0, 8, T, 12) | rect(T, T, 0, 27, T, T)
            for x in range(2 + (k == 1) * 4, T, 8):
                m |= ellipse(T, T, x + 1.5, 19, 2.6, 6) | rect(T, T, x, 12, x + 3, 27)
            if k == 2:
                m = (m & (xx >= 8)) | rect(T, T, 6, 4, 13, T)
            if k == 3:
                m = (m & (xx < 24)) | rect(T, T, 19, 4, 26, T)
        elif k in (6, 7, 8, 9):  # chains and cloth along a ceiling
            x0 = 8 if k == 8 else 0
            x1 = 24 if k == 9 else T
            m = (yy < 3) & (xx >= x0) & (xx < x1)
            sag = 3 + 6 * np.sin(np.clip((xx - x0) / max(1, x1 - x0), 0, 1) * np.pi)
            m |= (np.abs(yy - sag) < 1.2) & (xx >= x0) & (xx < x1)
            for x in range(x0 + 4, x1 - 2, 9):
                m |= rect(T, T, x, 0, x + 2, 10 + (x * 7) % 14)
        elif k == 15:  # a chain that tiles top to bottom
            m = np.zeros((T, T), bool)
            for y in range(0, T, 4):
                if (y // 4) % 2 == 0:
                    m |= rect(T, T, 14, y, 18, y + 4) & ~rect(T, T, 15, y + 1, 17, y + 3)
                else:
                    m |= rect(T, T, 15, y, 17, y + 4)
        else:  # an iron beam with a bracket, from the left (16) or the right (17)
            m = rect(T, T, 0, 8, 26, 14) | lines(T, T, [(0, 26), (16, 14)], 3) \
                | ellipse(T, T, 27, 11, 3, 3)
            if k == 17:
                m = m[:, ::-1]
        return _silhouette(m)
    # the rest share the forest's shapes, recoloured to the city's night
    src = forest.front(k if k != 18 else 4)
    m = src[..., 3] > 0
    if k in (10, 11, 12, 13, 14):  # masonry mass and its edges
        yy, xx = px.grid(T, T)
        m = m.copy()
        if k == 10:
            m = np.ones((T, T), bool)
        else:
            u = {11: T - yy, 12: yy, 13: xx, 14: T - xx}[k]
            m = u > 8
        c = _silhouette(m)
        yi, xi = yy.astype(int), xx.astype(int)
        bricks = m & ((yi % 8 == 7) | ((xi + 8 * (yi // 8 % 2)) % 16 == 15))
        fill(c, bricks, FRONT_C[0])
        return c
    return _silhouette(m)


def _silhouette(m):
    return shade_silhouette(canvas(), m, FRONT_C)


# ---------------------------------------------------------------- the sheet


def draw_tiles():
    tiles = {}
    for index, cells, kind, k in terrain_cells():
        tiles[index] = terrain(cells, kind, k)
    for role in range(4):
        tiles[tc.ONEWAY_LEFT + role] = grating(role)
        tiles[tc.BRIDGE_LEFT + role] = scaffold(role)
    for k, index in enumerate(tc.SPIKES):
        tiles[index] = iron_spikes(k)
    for part in range(3):
        tiles[tc.CABIN_ROOF[part]] = cabin(0, part)
        tiles[tc.CABIN_FLOOR[part]] = cabin(1, part)
    for k in range(16):
        tiles[tc.DECO_GROUND[k]] = deco_ground(k)
        tiles[tc.DECO_HANG[k]] = deco_hang(k)
    for k, index in enumerate(tc.BACK_FILL + [tc.BACK_TOP, tc.BACK_BOTTOM, tc.BACK_LEFT,
                                              tc.BACK_RIGHT]):
        tiles[index] = back_tile(k)
    for k, index in enumerate(tc.BACK_DETAIL):
        tiles[index] = back_detail(k)
    for f in range(4):
        tiles[tc.WATER_TOP[f]] = forest.water_top(f, WATER)
        tiles[tc.WATER_BODY[f]] = forest.water_body(f, WATER)
        tiles[tc.TORCH[f]] = forest.torch(f, EMBER, IRON, IRON)
        tiles[tc.GLOW[f]] = rune_light(f)
        tiles[tc.WATERFALL[f]] = sewer_fall(f)
        tiles[tc.FIREFLIES[f]] = wisps(f)
        tiles[tc.LAMP[f]] = street_lamp(f)
        tiles[tc.EMBERS[f]] = forest.embers(f, EMBER)
    tiles[tc.TRUNK_TOP], tiles[tc.TRUNK_MIDDLE], tiles[tc.TRUNK_BASE] = (column(p)
                                                                        for p in range(3))
    big = roof()
    for i, index in enumerate(tc.CANOPY):
        r, col = divmod(i, 3)
        tiles[index] = big[r * T:(r + 1) * T, col * T:(col + 1) * T].copy()
    tiles[tc.FRAME_LEFT], tiles[tc.FRAME_MIDDLE], tiles[tc.FRAME_RIGHT] = (iron_frame(p)
                                                                          for p in range(3))
    for k, index in enumerate(tc.FRONT):
        tiles[index] = front(k)
    return tiles


def preview_sky(h, w):
    yy, xx = px.grid(h, w)
    t = 0.25 + 0.5 * (1 - yy / h) * (0.4 + 0.6 * xx / w)
    out = np.zeros((h, w, 4))
    out[..., :3] = px.dither_ramp(np.clip(t, 0, 1), px.ramp("#05061a", "#090b22", "#0e122c",
                                                          "#141a38", "#1c2444"))
    out[..., 3] = 255
    return out

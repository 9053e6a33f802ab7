"""The Forest tileset: mossy earth and rock under a moonlit canopy.

Palette: deep greens and moss, bark browns, teal mist, warm firefly yellow. Light from the top left.
draw_tiles() returns {tile index: 32 x 32 RGBA canvas} in the layout of tile_catalog.
"""
import numpy as np

from . import pixel as px
from . import tile_catalog as tc
from .tiles_common import (T, Fields, bevel_wrapped, blit, canvas, cells_texture, dim, ellipse,
                           fill, flame, glow, interior_window, lines, mirror_x, pfbm, pixels,
                           pnoise_1d, rect, shade, shade_silhouette, strand, strand_mask,
                           terrain_cells, wrap)

EARTH = px.ramp("#120d0d", "#1b1412", "#241a15", "#30221a", "#3f2d1f", "#523b26")
GRASS = px.ramp("#10261a", "#1b3f26", "#2a5e30", "#44813a", "#72ad48", "#aad666")
ROCK = px.ramp("#111618", "#1d2527", "#2b3633", "#3f4d45", "#5c6c5c")
BARK = px.ramp("#150e0a", "#281a11", "#3f2a1a", "#5c3f25", "#7f5c36")
WOOD = px.ramp("#20150d", "#3a2716", "#583b20", "#7b5630", "#a27a46")
ROPE = px.ramp("#3a2e1c", "#6a5634", "#9c8250")
MOSS = px.ramp("#173222", "#27502f", "#3f763b", "#6a9f4c")
TEAL = px.ramp("#123134", "#235e5d", "#3f978f", "#84d8c2", "#d2fff0")
FIRE = px.ramp("#8a2c10", "#d8661e", "#f7a83c", "#ffe08a", "#fffbe4")
FLY = px.ramp("#7a5a1c", "#d8aa3c", "#ffe27e", "#fffbe0")
BONE = px.ramp("#4e4a40", "#888070", "#beb69e", "#e6dec6")
CAP = px.ramp("#3e1c24", "#6e3038", "#9c4e48", "#c98266")  # mushroom caps, muted red-brown
BACK = px.ramp("#07090a", "#0b0f10", "#0f1415", "#131a1a", "#19221f")
FRONT_C = px.ramp("#040806", "#08100c", "#0e1a13", "#172a1d")
WATER = px.ramp("#0c2a30", "#134148", "#1d5a5e", "#33817c", "#6cc2b0", "#c8fff0")
IRON = px.ramp("#121416", "#24282a", "#3c4242", "#626a66")

_R = np.random.RandomState(20240611)
BASE_N = pfbm(T, _R, (8, 4))


def _profile(rng, lo, hi, spikes=0.0, spike=0):
    """A wrapping 1-D profile of whole pixels between lo and hi, with occasional spikes."""
    p = lo + (hi - lo) * pnoise_1d(T, 8, rng)
    p = p + (rng.rand(T) < spikes) * spike
    return np.round(p)


GRASS_DEPTH = _profile(_R, 5, 8, 0.2, 3)
TIP_CUT = np.clip(np.round(2.6 * pnoise_1d(T, 4, _R) - 0.5 + 0.7 * (_R.rand(T) > 0.6)), 0, 2)
BLADE = _R.rand(T) > 0.6
SIDE_NOTCH = (_R.rand(T) > 0.75).astype(float)
DRIP = np.clip(np.round(2.2 * pnoise_1d(T, 4, _R) + (_R.rand(T) > 0.7)), 0, 3)
# rock slabs on wall faces: (top, bottom, depth into the wall), wrapping every 32 px
SLABS = [(0, 6, 7), (6, 13, 5), (13, 18, 8), (18, 25, 6), (25, 32, 9)]
ROOTS = [(x, 5 + _R.rand() * 9, _R.rand() * 6) for x in (3.5, 12.5, 21.5, 27.5)]


def _expo(d, r):
    return np.clip(1 - d / r, 0, 1)


# ---------------------------------------------------------------- terrain


def _stones(c, seed, lit, n, window):
    """A few small stones set in the earth, kept inside `window` so neighbours never cut them."""
    rng = np.random.RandomState(seed)
    for _ in range(n):
        cx, cy = 6 + rng.rand() * 20, 6 + rng.rand() * 20
        rx, ry = 0.9 + rng.rand() * 1.8, 0.7 + rng.rand() * 1.0
        m = ellipse(T, T, cx, cy, rx, ry) & (window > 0.5)
        if not m.any():
            continue
        hi = int(lit[int(cy), int(cx)] > 0.3)
        shade(c, m, ROCK[hi:hi + 3])
        fill(c, px.shift(m, 1, 0) & ~m, EARTH[0])


def _wall_face(c, dist, y, lit_face):
    """Stacked rock slabs on a wall face: each slab its own depth, lit on its top edge."""
    face = np.zeros((T, T), bool)
    yi = y.astype(int)
    for y0, y1, depth in SLABS:
        in_slab = (yi >= y0) & (yi < y1) & (dist < depth)
        face |= in_slab
        body = ROCK[2] if lit_face else ROCK[1]
        fill(c, in_slab, body)
        fill(c, in_slab & (yi == y0), ROCK[3] if lit_face else ROCK[2])
        fill(c, in_slab & (yi == y1 - 1), ROCK[1] if lit_face else ROCK[0])
        fill(c, in_slab & (dist >= depth - 1), ROCK[0])
        fill(c, in_slab & (dist < 1) & (yi < y1 - 1), ROCK[4] if lit_face else ROCK[2])
        spot = in_slab & ((yi * 7 + dist.astype(int) * 5) % 11 == 0) & (dist > 1.5) \
            & (dist < depth - 1.5)
        fill(c, spot, ROCK[1] if lit_face else ROCK[0])
    return face


def terrain(cells, kind, k):
    f = Fields(cells, "round")
    y, x = f.y, f.x
    xi, yi = x.astype(int), y.astype(int)
    c = canvas()
    lit = np.maximum.reduce([_expo(f.dn, 24), 0.7 * _expo(f.dw, 14), 0.45 * _expo(f.de, 14),
                             0.25 * _expo(f.ds, 8)])
    v = lit * 3.9 + (BASE_N - 0.5) * 1.1
    idx = np.clip(np.floor(v).astype(int) + 1, 0, 5)
    c[..., :3] = EARTH[idx]
    c[..., 3] = 255
    win = interior_window(4)
    if kind == "fill":
        _stones(c, 100 + k, lit, 3 + k % 2, win)
        if k % 2 == 1:  # a faint darker seam
            seam = lines(T, T, [(7, 9 + 5 * k), (14, 11 + 4 * k), (24, 8 + 5 * k)])
            fill(c, seam & (win > 0.3), EARTH[0])
    elif kind == "detail":
        _stones(c, 140 + k, lit, 1, win)
        _fill_detail(c, k)
    else:
        seed = 160 + sum(1 << "N E S W NE NW SE SW".split().index(s) for s in f.open) + 40 * k
        _stones(c, seed, lit, 2, win * (f.d > 9))

    # roots under the grass, drawn along the depth below the surface
    g = GRASS_DEPTH[xi]
    if "N" in f.open or {"NE", "NW"} & f.open:
        for rx, rlen, ph in ROOTS:
            cx = rx + 1.3 * np.sin(f.dn * 0.45 + ph)
            r = (np.abs(wrap(x - cx)) < 0.6) & (f.dn > g) & (f.dn < g + rlen)
            fill(c, r, EARTH[1])
            fill(c, r & px.shift(~r, 0, 1) & (f.dn < g + rlen * 0.6), BARK[3])

    # rock faces on the sides: the left-facing face catches the light
    face_w = (f.dw < 10) & (f.dw <= f.de)
    face_e = (f.de < 10) & (f.de < f.dw)
    if face_w.any():
        sub = canvas()
        m = _wall_face(sub, f.dw, y + 0.0, True) & face_w
        c[m] = sub[m]
    if face_e.any():
        sub = canvas()
        m = _wall_face(sub, f.de, (y + 16) % T, False) & face_e
        c[m] = sub[m]

    # ceilings: a dark underside with hair roots
    under = f.ds < 3
    fill(c, under & (f.ds >= 1), EARTH[1])
    fill(c, under & (f.ds < 1), EARTH[0])
    hair = (f.ds < 7) & (f.ds >= 1) & (np.abs(wrap(x - 5 - 11 * (x // 11 % 2))) < 0.5)
    fill(c, hair, BARK[2])

    # grass on top, with a lip that hangs over the convex corners
    grass = f.dn < g
    lip = np.zeros_like(grass)
    for open_side, cd in (("W", f.cw), ("E", f.ce)):
        if "N" in f.open and open_side in f.open:
            hang = np.array([12.0, 9.0, 5.0, 2.0])[np.clip(cd.astype(int), 0, 3)]
            hang = hang + 3 * ((y.astype(int) + x.astype(int)) % 3 == 0)
            lip |= (cd < 3.2) & (f.cn < g + hang)
    grass |= lip
    blade = BLADE[xi]
    top = TIP_CUT[xi] if "N" in f.open else 0
    gt = np.where(f.dn < top + 1.2, 4, np.where(f.dn + blade * 1.5 < top + 3, 3, 2))
    gt = np.where(grass & (f.dn > g - 1.5), 1, gt)
    gt = np.where(grass & (f.dn > g - 0.5), 0, gt)
    lip_only = lip & ~(f.dn < g)
    gt = np.where(lip_only, np.where(f.cw < 1 if "W" in f.open else f.ce < 1.0, 3, 1), gt)
    shadow = (f.dn >= g) & (f.dn < g + 1.5) & ~lip
    c[shadow, :3] = EARTH[np.clip(idx[shadow] - 2, 0, 5)]
    for t in range(5):
        fill(c, grass & (gt == t), GRASS[t])
    tips = grass & (f.dn < top + 1.2) & blade
    fill(c, tips, GRASS[5])
    lip_end = lip_only & px.shift(~lip, -1, 0)
    fill(c, lip_end, GRASS[0])
    if kind == "top":
        _top_variant(c, k)

    # silhouette: blade tips, notches, earthy drips, rounded corners
    cut = f.corner_cut(3.5)
    if "N" in f.open:
        cut |= f.cn < TIP_CUT[xi]
    if "S" in f.open:
        cut |= f.cs < DRIP[xi]
    if "W" in f.open:
        cut |= (f.cw < SIDE_NOTCH[yi]) & (f.cn > g + 4)
    if "E" in f.open:
        cut |= (f.ce < SIDE_NOTCH[(yi + 13) % T]) & (f.cn > g + 4)
    c[cut] = 0
    return c


def _fill_detail(c, k):
    ROCK, BONE, TEAL, BARK = (dim(r, EARTH[1], 0.35) for r in (ROCK_, BONE_, TEAL_, BARK_))
    if k == 0:  # a buried boulder
        m = ellipse(T, T, 16, 17, 9, 6.5) & ~ellipse(T, T, 24, 12, 4, 3)
        shade(c, m, ROCK[1:4], 1)
        fill(c, m & ~px.shift(m, -1, 0), ROCK[0])
        fill(c, lines(T, T, [(12, 14), (15, 18), (19, 19)]) & m, ROCK[0])
        fill(c, pixels(T, T, [(11, 12), (12, 12)]), ROCK[4])
    elif k == 1:  # a tangle of roots
        for pts in ([(5, 8), (11, 13), (16, 12), (22, 17), (27, 16)],
                    [(9, 24), (13, 19), (16, 12)], [(19, 26), (21, 21), (22, 17)]):
            m = lines(T, T, pts, 2)
            fill(c, m, BARK[2])
            fill(c, m & ~px.shift(m, 1, 0), BARK[3])
            fill(c, m & ~px.shift(m, -1, 0), BARK[1])
    elif k == 2:  # an old skull and a bone
        skull = ellipse(T, T, 13, 15, 5, 4.5) | rect(T, T, 10, 17, 17, 21)
        shade(c, skull, BONE[0:3])
        fill(c, pixels(T, T, [(11, 15), (12, 15), (15, 15), (16, 15), (11, 16), (15, 16)]),
             EARTH[0])
        fill(c, pixels(T, T, [(13, 18), (11, 20), (13, 20), (15, 20)]), EARTH[1])
        bone = lines(T, T, [(19, 22), (26, 19)], 2)
        shade(c, bone | ellipse(T, T, 19, 22.5, 1.6, 1.6) | ellipse(T, T, 26, 19, 1.6, 1.6),
              BONE[0:3])
    else:  # a vein of teal crystal
        for cx, cy, h, lean in ((12, 20, 8, -2), (16, 21, 11, 0), (20, 20, 7, 2)):
            m = px.poly_mask(T, T, [(cx - 2, cy), (cx + lean, cy - h), (cx + 2, cy)])
            shade(c, m, TEAL[1:4])
            fill(c, m & (np.abs(px.grid(T, T)[1] - cx - lean * 0.5) < 0.6), TEAL[4])
        glow(c, 16, 16, 9, TEAL[3], 0.0)


ROCK_, BONE_, TEAL_, BARK_ = ROCK, BONE, TEAL, BARK


def _top_variant(c, k):
    if k == 0:  # small flowers in the grass
        for x, y, col in ((9, 1, TEAL[3]), (12, 2, FLY[2]), (19, 1, TEAL[4]), (23, 2, TEAL[3])):
            fill(c, pixels(T, T, [(x, y)]), col)
            fill(c, pixels(T, T, [(x, y + 1)]), GRASS[1])
    elif k == 1:  # a stone breaking through
        m = ellipse(T, T, 15.5, 4.5, 6, 4.5)
        shade(c, m, ROCK[2:5])
        fill(c, m & ~px.shift(m, -1, 0), ROCK[1])
        fill(c, m & (px.grid(T, T)[0] < 2.2), MOSS[2])
        fill(c, rect(T, T, 9, 7, 22, 9) & ~m, GRASS[1])
    elif k == 2:  # a pair of tiny mushrooms
        for cx, h in ((12, 4), (15, 3)):
            fill(c, rect(T, T, cx, 2, cx + 1, 2 + h), BONE[2])
            cap = ellipse(T, T, cx + 0.5, 1.5, 2.2, 1.2)
            shade(c, cap, CAP[1:4])
        fill(c, pixels(T, T, [(20, 0), (21, 1), (20, 2)]), GRASS[4])
    else:  # a root arching out of the soil
        m = lines(T, T, [(8, 12), (10, 7), (15, 5), (21, 7), (24, 11)], 2)
        fill(c, m, BARK[2])
        fill(c, m & ~px.shift(m, 1, 0), BARK[4])
        fill(c, m & ~px.shift(m, -1, 0), BARK[1])


# ---------------------------------------------------------------- platforms and hazards


def _log(c, y0, y1, x0, x1):
    m = rect(T, T, x0, y0, x1, y1)
    fill(c, m, WOOD[2])
    fill(c, m & (np.arange(T)[:, None] == y0), WOOD[4])
    fill(c, m & (np.arange(T)[:, None] == y0 + 1), WOOD[3])
    fill(c, m & (np.arange(T)[:, None] == y1 - 1), WOOD[0])
    fill(c, m & (np.arange(T)[:, None] == y1 - 2), WOOD[1])
    return m


def oneway(role):
    """Planks on a log beam; role 0 left end, 1 middle, 2 right end, 3 single."""
    c = canvas()
    left, right = role in (0, 3), role in (2, 3)
    x0, x1 = (2 if left else 0), (30 if right else 32)
    # beam under the planks
    beam = rect(T, T, x0 + 1, 5, x1 - 1, 10)
    shade(c, beam, BARK[1:4])
    fill(c, beam & (np.arange(T)[:, None] == 9), BARK[0])
    # planks
    planks = rect(T, T, x0, 0, x1, 5)
    fill(c, planks, WOOD[2])
    fill(c, planks & (np.arange(T)[:, None] == 0), WOOD[4])
    fill(c, planks & (np.arange(T)[:, None] == 1), WOOD[3])
    fill(c, planks & (np.arange(T)[:, None] == 4), WOOD[0])
    for sx in (7, 15, 23, 31):
        seam = rect(T, T, sx, 1, sx + 1, 4) & planks
        fill(c, seam, WOOD[0])
        fill(c, pixels(T, T, [(sx - 2, 2)]) & planks, IRON[3])
    grain = pixels(T, T, [(3, 2), (4, 2), (11, 3), (12, 3), (19, 2), (27, 3), (28, 3)]) & planks
    fill(c, grain, WOOD[1])
    fill(c, pixels(T, T, [(9, 0), (10, 0), (20, 0)]) & planks, MOSS[2])
    for end, flip in ((left, False), (right, True)):
        if not end:
            continue
        e = canvas()
        ring = ellipse(T, T, 3.5, 5, 2.6, 4.2)
        shade(e, ring, WOOD[1:4])
        fill(e, ellipse(T, T, 3.5, 5, 1.2, 2), WOOD[4])
        fill(e, pixels(T, T, [(3, 5)]), WOOD[1])
        lash = rect(T, T, 7, 0, 9, 10)
        fill(e, lash, ROPE[1])
        fill(e, lash & (np.arange(T)[:, None] % 2 == 0), ROPE[2])
        strut = lines(T, T, [(6, 10), (2, 22)], 2)
        shade(e, strut, BARK[1:4])
        fill(e, strand_mask(T, T, strand(11, 10, 7, 0.6, 1.0)), MOSS[1])
        if flip:
            e = mirror_x(e)
        blit(c, e, 0, 0)
    if not left and not right:
        fill(c, strand_mask(T, T, strand(18, 10, 5, 0.6, 2.0)), MOSS[1])
    return c


def bridge(role):
    """A rope bridge: slats on two ropes; ends tied to posts."""
    c = canvas()
    left, right = role in (0, 3), role in (2, 3)
    for sx in range(0, T, 6):
        slat = rect(T, T, sx, 0, sx + 5, 5)
        if (left and sx < 6) or (right and sx > 24):
            continue
        fill(c, slat, WOOD[2] if sx % 12 else WOOD[1])
        fill(c, slat & (np.arange(T)[:, None] == 0), WOOD[4])
        fill(c, slat & (np.arange(T)[:, None] == 4), WOOD[0])
        fill(c, slat & (np.arange(T)[None, :] == sx + 4), WOOD[1])
    for ry in (5, 8):
        rope = rect(T, T, 0, ry, T, ry + 1)
        if left:
            rope &= np.arange(T)[None, :] >= 4
        if right:
            rope &= np.arange(T)[None, :] < 28
        fill(c, rope, ROPE[1])
        fill(c, rope & (np.arange(T)[None, :] % 3 == 0), ROPE[2])
    for kx in range(2, T, 6):
        fill(c, rect(T, T, kx, 5, kx + 1, 9), ROPE[0])
    for end, flip in ((left, False), (right, True)):
        if not end:
            continue
        e = canvas()
        post = rect(T, T, 1, 0, 5, T)
        shade(e, post, BARK[1:4])
        fill(e, rect(T, T, 1, 0, 5, 1), WOOD[4])
        for ky in (4, 7):
            knot = rect(T, T, 0, ky, 6, ky + 2)
            fill(e, knot, ROPE[1])
            fill(e, knot & (np.arange(T)[None, :] % 2 == 0), ROPE[2])
        fill(e, rect(T, T, 4, 5, 6, 6), ROPE[1])
        if flip:
            e = mirror_x(e)
        blit(c, e, 0, 0)
    return c


def brambles(k):
    c = canvas()
    rng = np.random.RandomState(300 + k)
    vines = []
    for i in range(4 if k == 0 else 5):
        x0 = -2 + i * 9 + rng.rand() * 4
        h = 9 + rng.rand() * (6 if k == 0 else 10)
        pts = [(x0 + j * 1.6, T - 1 - h * np.sin(min(np.pi, j * 0.32)) * (0.6 + 0.4 * rng.rand()))
               for j in range(11)]
        vines.append(pts)
    for pts in vines:
        m = lines(T, T, pts, 2)
        fill(c, m, BARK[1])
        fill(c, m & ~px.shift(m, 1, 0), BARK[3])
        for j in range(1, len(pts) - 1, 2):
            x, y = pts[j]
            if 0 <= x < T - 1:
                fill(c, pixels(T, T, [(x, y - 2), (x + 1, y - 3)]), BONE[2])
                fill(c, pixels(T, T, [(x, y - 1)]), BARK[2])
    base = rect(T, T, 0, T - 3, T, T)
    fill(c, base & (np.arange(T)[None, :] % 3 != 1), BARK[1])
    fill(c, rect(T, T, 0, T - 1, T, T), BARK[0])
    for x in (5, 14, 23):
        fill(c, pixels(T, T, [(x, T - 5), (x + 1, T - 6)]), BONE[3])
    return c


# ---------------------------------------------------------------- ground decoration


def blades(c, base_x, base_y, heights, leans, ramp, width=1):
    for i, (h, lean) in enumerate(zip(heights, leans)):
        x = base_x + i * width * 1.0
        m = lines(T, T, [(x, base_y), (x + lean * 0.5, base_y - h * 0.6), (x + lean, base_y - h)])
        tone = 2 if lean < 0 else 1
        fill(c, m, ramp[tone])
        tip = lines(T, T, [(x + lean * 0.7, base_y - h * 0.8), (x + lean, base_y - h)])
        fill(c, tip, ramp[tone + 1])


def grass_tuft(c, cx, height, rng, ramp=GRASS, n=7):
    hs = [height * (0.45 + 0.55 * np.sin(np.pi * (i + 0.5) / n)) * (0.8 + 0.3 * rng.rand())
          for i in range(n)]
    ls = [(i - n / 2) * 1.1 + rng.randn() * 0.8 for i in range(n)]
    blades(c, cx - n / 2, T - 1, hs, ls, ramp)


def mushroom(c, cx, base, h, r, caps, glow_col=None):
    stem = rect(T, T, int(cx - 1), int(base - h), int(cx + 1), int(base))
    shade(c, stem, BONE[1:4])
    cap = ellipse(T, T, cx, base - h, r, r * 0.62) & (px.grid(T, T)[0] < base - h + 1)
    shade(c, cap, caps)
    fill(c, cap & ~px.shift(cap, 1, 0) & (px.grid(T, T)[1] < cx), caps[2])
    fill(c, rect(T, T, int(cx - r + 1), int(base - h + 1), int(cx + r), int(base - h + 2)) & ~cap,
         BONE[0])
    if glow_col is not None:
        glow(c, cx, base - h, r + 5, glow_col, 0.3)


def deco_ground(k):
    c = canvas()
    rng = np.random.RandomState(400 + k)
    yy, xx = px.grid(T, T)
    if k == 0:  # short grass tuft
        grass_tuft(c, 16, 7, rng, n=6)
    elif k == 1:  # tall grass clump
        grass_tuft(c, 12, 15, rng, n=8)
        grass_tuft(c, 21, 10, rng, n=5)
    elif k == 2:  # teal bell flowers
        grass_tuft(c, 16, 6, rng, n=7)
        for x, h in ((11, 11), (16, 14), (21, 10)):
            fill(c, lines(T, T, [(x, T - 1), (x + 1, T - h)]), GRASS[2])
            bell = ellipse(T, T, x + 1.5, T - h + 1, 1.6, 1.6)
            shade(c, bell, TEAL[2:5])
            fill(c, pixels(T, T, [(x + 1, T - h + 2)]), TEAL[4])
            glow(c, x + 1.5, T - h + 1, 4.5, TEAL[3], 0.22)
    elif k == 3:  # yellow star flowers
        grass_tuft(c, 15, 7, rng, n=8)
        for x, h in ((10, 8), (15, 12), (20, 9), (24, 6)):
            fill(c, lines(T, T, [(x, T - 1), (x, T - h)]), GRASS[2])
            fill(c, pixels(T, T, [(x - 1, T - h), (x + 1, T - h), (x, T - h - 1), (x, T - h + 1)]),
                 FLY[1])
            fill(c, pixels(T, T, [(x, T - h)]), FLY[3])
    elif k == 4:  # small rocks
        for cx, cy, rx, ry in ((12, 28.5, 4.5, 3.2), (19, 29.5, 3, 2.2), (8, 30, 2, 1.6)):
            shade(c, ellipse(T, T, cx, cy, rx, ry) & (yy < T), ROCK[1:4])
        fill(c, pixels(T, T, [(10, 26), (11, 26)]), MOSS[2])
    elif k == 5:  # large mossy boulder
        m = ellipse(T, T, 16, 24, 13, 9) & (yy < T)
        shade(c, m, ROCK[1:4], 2)
        fill(c, m & ~px.shift(m, -1, 0), ROCK[0])
        fill(c, lines(T, T, [(13, 20), (16, 25), (15, 29)]) & m, ROCK[0])
        moss = m & (yy < 20 + 2 * np.sin(xx * 0.7)) & (xx < 24)
        shade(c, moss, MOSS[1:4])
        fill(c, m & ~px.shift(m, 1, 0) & moss, MOSS[3])
        for x in (8, 11, 18):
            fill(c, strand_mask(T, T, strand(x, 20, 3 + x % 3, 0.3, x)) & m, MOSS[1])
    elif k == 6:  # cluster of small mushrooms
        for cx, h, r in ((11, 6, 3), (16, 9, 4), (21, 5, 2.6)):
            mushroom(c, cx, T, h, r, CAP[1:4])
        grass_tuft(c, 16, 4, rng, n=9)
    elif k == 7:  # big glowing cap
        mushroom(c, 15, T, 16, 9, TEAL[1:4], TEAL[3])
        for x, y in ((11, 14), (17, 13), (20, 15), (13, 16)):
            fill(c, pixels(T, T, [(x, y)]), TEAL[4])
        mushroom(c, 23, T, 6, 3, TEAL[1:4])
    elif k == 8:  # bush
        blobs = [(9, 24, 7), (16, 19, 8.5), (23, 24, 7), (16, 26, 9)]
        m = np.zeros((T, T), bool)
        for cx, cy, r in blobs:
            m |= ellipse(T, T, cx, cy, r, r * 0.85)
        m &= yy < T
        _foliage(c, m, GRASS, rng, 0.8)
    elif k == 9:  # fern: fronds arching out of one crown
        for deg, ln in ((-158, 12), (-132, 15), (-104, 16), (-76, 16), (-48, 15), (-22, 12)):
            a = np.radians(deg)
            pts = [(16 + np.cos(a) * j, T - 1 + np.sin(a) * j + 0.035 * j * j) for j in range(ln)]
            lit_side = deg < -90
            fill(c, lines(T, T, pts), GRASS[2])
            for j in range(2, ln - 1, 2):
                x, y = pts[j]
                leaf = pixels(T, T, [(x - 1, y - 1), (x + 1, y - 1), (x - 1, y), (x + 1, y)])
                fill(c, leaf, GRASS[3] if lit_side else GRASS[2])
            x, y = pts[-1]
            fill(c, pixels(T, T, [(x, y)]), GRASS[4] if lit_side else GRASS[3])
        fill(c, pixels(T, T, [(15, T - 1), (16, T - 1), (17, T - 1), (16, T - 2)]), GRASS[1])
    elif k == 10:  # mossy skull
        skull = ellipse(T, T, 15, 24, 7, 6) | rect(T, T, 11, 26, 20, 32)
        shade(c, skull & (yy < T), BONE[0:3] if False else BONE[1:4], 1)
        fill(c, ellipse(T, T, 12.5, 25, 1.6, 1.8) | ellipse(T, T, 18, 25, 1.6, 1.8), EARTH[0])
        fill(c, pixels(T, T, [(15, 28), (15, 29)]), EARTH[1])
        fill(c, pixels(T, T, [(12, 31), (14, 31), (16, 31), (18, 31)]), BONE[0])
        moss = skull & (yy < 21 + (xx % 3 == 0))
        fill(c, moss, MOSS[2])
        fill(c, moss & ~px.shift(moss, 1, 0), MOSS[3])
        grass_tuft(c, 23, 5, rng, n=4)
    elif k == 11:  # wooden sign post
        post = rect(T, T, 15, 12, 18, T)
        shade(c, post, WOOD[1:4])
        board = rect(T, T, 6, 8, 26, 17)
        shade(c, board, WOOD[1:4])
        fill(c, board & ~px.erode(board), WOOD[0])
        fill(c, rect(T, T, 9, 11, 13, 12) | rect(T, T, 14, 12, 21, 13) | rect(T, T, 10, 14, 17,
                                                                               15), WOOD[0])
        fill(c, pixels(T, T, [(16, 9), (16, 16)]), IRON[3])
        fill(c, pixels(T, T, [(7, 8), (8, 8), (9, 8)]), MOSS[2])
        grass_tuft(c, 16, 4, rng, n=5)
    elif k == 12:  # stump
        body = rect(T, T, 9, 19, 24, T) | ellipse(T, T, 16.5, 19, 7.5, 2.5) \
            | px.poly_mask(T, T, [(5, 32), (9, 25), (11, 32)]) \
            | px.poly_mask(T, T, [(22, 32), (24, 26), (28, 32)])
        shade(c, body, BARK[1:4], 1)
        for x in (12, 15, 19, 22):
            fill(c, rect(T, T, x, 21, x + 1, T - 1) & body, BARK[1])
        top = ellipse(T, T, 16.5, 19, 6.5, 1.8)
        fill(c, top, WOOD[3])
        fill(c, ellipse(T, T, 16.5, 19, 3.5, 0.9), WOOD[2])
        fill(c, pixels(T, T, [(16, 19)]), WOOD[4])
        fill(c, rect(T, T, 8, 22, 10, 28) & body, MOSS[2])
    elif k == 13:  # pebbles and a twig
        for cx, cy, rx in ((9, 30, 1.8), (14, 30.5, 1.4), (22, 30, 2.2), (25, 30.8, 1.2)):
            shade(c, ellipse(T, T, cx, cy, rx, rx * 0.8), ROCK[1:4])
        twig = lines(T, T, [(11, 29), (17, 28), (20, 26)])
        fill(c, twig, BARK[3])
        fill(c, pixels(T, T, [(15, 27), (16, 26)]), BARK[3])
    elif k == 14:  # reeds with cattails
        for x, h, lean in ((10, 22, -2), (13, 26, 0), (16, 20, 1), (19, 24, 2), (22, 17, 3)):
            stem = lines(T, T, [(x, T - 1), (x + lean, T - h)])
            fill(c, stem, GRASS[2] if lean < 1 else GRASS[1])
            if h > 19:
                hx = int(x + lean * 0.8)
                head = rect(T, T, hx, T - h + 2, hx + 2, T - h + 7)
                shade(c, head, BARK[2:5])
        grass_tuft(c, 16, 6, rng, n=8)
    else:  # standing stone with a faint rune
        stone = px.poly_mask(T, T, [(9, 32), (10, 9), (15, 5), (21, 7), (23, 32)])
        shade(c, stone, ROCK[1:4], 2)
        fill(c, stone & ~px.shift(stone, -1, 0), ROCK[0])
        rune = lines(T, T, [(16, 11), (16, 24)]) | lines(T, T, [(13, 14), (16, 17), (19, 14)]) \
            | lines(T, T, [(13, 22), (16, 19), (19, 22)])
        fill(c, rune & stone, TEAL[3])
        fill(c, pixels(T, T, [(16, 11), (16, 18)]), TEAL[4])
        glow(c, 16, 17, 11, TEAL[2], 0.16)
        moss = stone & (yy > 27 - (xx % 4 == 0) * 2)
        fill(c, moss, MOSS[2])
        fill(c, stone & (yy < 9), MOSS[2])
    return c


def _foliage(c, m, ramp, rng, light=1.0):
    """Leafy mass: clumps lit from the top left, with leaf-edge notches."""
    yy, xx = px.grid(T, T)
    tone = px.bevel(m, 2)
    n = rng.rand(T, T)
    fill(c, m, ramp[1])
    fill(c, m & (tone == 2) & (n < 0.85), ramp[3])
    fill(c, m & (tone == 1) & ((xx + yy) % 5 == 0), ramp[2])
    fill(c, m & (tone == 0), ramp[0])
    lit_leaf = m & ((xx * 3 + yy * 5) % 11 == 0) & (yy + xx < 38 * light)
    fill(c, lit_leaf, ramp[4])
    fill(c, m & ((xx * 7 + yy * 3) % 13 == 0) & (tone != 2), ramp[0])


# ---------------------------------------------------------------- hanging decoration


def vine(c, x0, length, phase, ramp=GRASS, leaves=True, sway=1.2):
    pts = strand(x0, 0, length, sway, phase)
    m = strand_mask(T, T, pts)
    m |= px.shift(m, 1, 0) & px.shift(m, 0, 1)
    fill(c, m, ramp[1])
    if leaves:
        for j in range(3, len(pts) - 1, 4):
            x, y = pts[j]
            side = 1 if (j // 4) % 2 else -1
            leaf = pixels(T, T, [(x + side, y), (x + 2 * side, y), (x + side, y + 1)])
            fill(c, leaf, ramp[3] if side < 0 else ramp[2])
        x, y = pts[-1]
        fill(c, pixels(T, T, [(x, y)]), ramp[3])


def root_strand(c, x0, length, phase, width=2):
    pts = strand(x0, 0, length, 1.0, phase, freq=0.25)
    for j, (x, y) in enumerate(pts):
        w = max(1, int(round(width * (1 - j / len(pts)) + 0.4)))
        fill(c, rect(T, T, int(x), int(y), int(x) + w, int(y) + 1), BARK[2])
        fill(c, pixels(T, T, [(int(x), y)]), BARK[3])
    xe, ye = pts[-1]
    fill(c, pixels(T, T, [(xe, ye + 1)]), BARK[1])


def stalactite(c, cx, w, h, ramp=ROCK):
    m = px.poly_mask(T, T, [(cx - w / 2, -1), (cx + w / 2, -1), (cx + 0.5, h)])
    shade(c, m, ramp[1:4])
    fill(c, m & (px.grid(T, T)[1] > cx + 1), ramp[1])
    return m


def deco_hang(k):
    c = canvas()
    rng = np.random.RandomState(500 + k)
    yy, xx = px.grid(T, T)
    if k == 0:  # short vines
        for x, ln, ph in ((7, 10, 0.5), (12, 15, 2.0), (19, 8, 1.0), (25, 12, 3.0)):
            vine(c, x, ln, ph)
    elif k == 1:  # long vines to the floor of the tile
        for x, ln, ph in ((6, 31, 0.3), (13, 22, 1.7), (20, 30, 2.4), (26, 18, 0.9)):
            vine(c, x, ln, ph)
    elif k == 2:  # leafy curtain
        for x in range(3, 30, 4):
            vine(c, x, 8 + (x * 7) % 17, x * 0.9)
        m = rect(T, T, 0, 0, T, 3) & (yy < 2 + (xx % 3 == 0) + (xx % 5 == 0))
        fill(c, m, GRASS[2])
        fill(c, m & (yy < 1), GRASS[3])
    elif k == 3:  # short roots
        for x, ln, ph in ((8, 9, 0.3), (14, 13, 1.5), (22, 7, 2.2)):
            root_strand(c, x, ln, ph)
    elif k == 4:  # long roots
        for x, ln, ph in ((6, 24, 0.2), (13, 30, 1.1), (21, 20, 2.4), (26, 27, 3.3)):
            root_strand(c, x, ln, ph, 3 if ln > 25 else 2)
    elif k == 5:  # moss drape
        edge = 6 + 5 * np.sin(xx * 0.45) + 3 * np.sin(xx * 1.3 + 1)
        m = yy < edge
        fill(c, m, MOSS[1])
        fill(c, m & (yy < edge - 3), MOSS[2])
        fill(c, m & (yy < 2), MOSS[3])
        for x in range(2, T, 3):
            ln = edge[0, x] + 3 + (x * 5) % 9
            fill(c, lines(T, T, [(x, edge[0, x] - 1), (x + 0.5, ln)]), MOSS[1])
            fill(c, pixels(T, T, [(x, ln)]), MOSS[0])
    elif k == 6:  # small stalactite
        stalactite(c, 14, 7, 12)
        stalactite(c, 20, 4, 6)
        fill(c, pixels(T, T, [(14, 15)]), TEAL[3])
    elif k == 7:  # large stalactite
        stalactite(c, 15, 14, 26)
        stalactite(c, 6, 5, 9)
        stalactite(c, 25, 6, 13)
        fill(c, pixels(T, T, [(15, 29)]), TEAL[3])
    elif k == 8:  # cobweb in the top left corner
        for ang in np.linspace(0.05, 1.52, 5):
            fill(c, lines(T, T, [(0, 0), (np.cos(ang) * 22, np.sin(ang) * 22)]), BONE[1], 0.55)
        for r in (6, 11, 16, 20):
            pts = [(np.cos(a) * r * (1 - 0.08 * np.sin(a * 8)), np.sin(a) * r) for a in
                   np.linspace(0.05, 1.52, 9)]
            fill(c, lines(T, T, pts), BONE[2], 0.55)
    elif k == 9:  # glowing pods
        for x, ln in ((9, 10), (16, 16), (23, 8)):
            fill(c, lines(T, T, [(x, 0), (x, ln)]), GRASS[1])
            pod = ellipse(T, T, x + 0.5, ln + 2.5, 2, 3)
            shade(c, pod, TEAL[2:5])
            glow(c, x + 0.5, ln + 2.5, 7, TEAL[3], 0.22)
    elif k == 10:  # teal moss strands (old man's beard)
        for x in range(2, 31, 2):
            ln = 6 + (x * 13) % 19
            pts = strand(x, 0, ln, 0.8, x * 0.7)
            m = strand_mask(T, T, pts)
            fill(c, m, TEAL[1] if x % 4 else MOSS[1])
            fill(c, m & (yy < ln * 0.4), TEAL[2] if x % 4 else MOSS[2])
    elif k == 11:  # flowering vine
        for x, ln, ph in ((9, 24, 0.8), (21, 18, 2.1)):
            vine(c, x, ln, ph)
        for x, y in ((8, 9), (11, 17), (9, 23), (22, 7), (20, 14), (22, 18)):
            fill(c, pixels(T, T, [(x, y), (x + 1, y), (x, y + 1)]), FLY[1])
            fill(c, pixels(T, T, [(x, y)]), FLY[3])
    elif k == 12:  # a root holding a stone
        root_strand(c, 10, 14, 0.5)
        root_strand(c, 18, 12, 1.5)
        stone = ellipse(T, T, 14, 19, 6, 5)
        shade(c, stone, ROCK[1:4])
        fill(c, lines(T, T, [(10, 17), (14, 21), (19, 18)]), BARK[2])
    elif k == 13:  # a cocoon on a silk thread
        fill(c, lines(T, T, [(17, 0), (17, 13)]), BONE[2], 0.7)
        coc = ellipse(T, T, 17, 19, 3, 6)
        shade(c, coc, BONE[0:3])
        for y in (15, 18, 21, 23):
            fill(c, rect(T, T, 15, y, 20, y + 1) & coc, BONE[0])
    elif k == 14:  # ivy clump
        m = ellipse(T, T, 16, 0, 14, 9) | ellipse(T, T, 9, 5, 5, 5) | ellipse(T, T, 22, 6, 5, 6)
        _foliage(c, m, GRASS, rng)
        vine(c, 12, 16, 1.0)
    else:  # cluster of dripstones
        for cx, w, h in ((5, 4, 8), (10, 5, 14), (16, 4, 7), (21, 6, 18), (27, 4, 9)):
            stalactite(c, cx, w, h)
    return c


# ---------------------------------------------------------------- back wall


_BACK_PTS = [(4, 5), (19, 3), (11, 15), (26, 16), (3, 25), (18, 27)]
BACK_ID, BACK_EDGE = cells_texture(T, _BACK_PTS)
BACK_N = pfbm(T, np.random.RandomState(77), (16, 8))


def _back_base():
    """Cave rock behind everything: big rounded boulders, dark and with little contrast."""
    c = canvas()
    c[..., 3] = 255
    yy, xx = px.grid(T, T)
    for i in range(len(_BACK_PTS)):
        m = BACK_ID == i
        tone = bevel_wrapped(m, 1)
        base = 2 if i % 3 else 1
        c[m, :3] = BACK[base]
        c[m & (tone == 2), :3] = BACK[base + 1]
        c[m & (tone == 0), :3] = BACK[base - 1]
    c[(BACK_EDGE < 0.6) & (BACK_N > 0.45), :3] = BACK[0]
    speck = ((xx.astype(int) * 5 + yy.astype(int) * 11) % 17 == 0) & (BACK_EDGE > 2)
    c[speck, :3] = BACK[3]
    return c


def back_tile(k):
    c = _back_base()
    yy, xx = px.grid(T, T)
    if k < 4:  # fills
        rng = np.random.RandomState(600 + k)
        win = interior_window(4) > 0.5
        for _ in range(2 + k % 2):
            cx, cy = 8 + rng.rand() * 16, 8 + rng.rand() * 16
            m = ellipse(T, T, cx, cy, 1.5 + rng.rand() * 2, 1 + rng.rand()) & win
            shade(c, m, BACK[1:4])
        return c
    edge = {4: yy, 5: T - yy, 6: xx, 7: T - xx}[k]
    along = {4: xx, 5: xx, 6: yy, 7: yy}[k].astype(int)
    prof = 5 + 3 * pnoise_1d(T, 8, np.random.RandomState(640 + k))[along % T]
    c[edge < prof] = 0
    lip = (edge >= prof) & (edge < prof + 1)
    fill(c, lip, BACK[4] if k in (4, 6) else BACK[2])
    fill(c, (edge >= prof + 1) & (edge < prof + 2), BACK[3] if k in (4, 6) else BACK[1])
    if k == 4:  # a little moss on the upper rim
        fill(c, lip & (along % 3 != 0), MOSS[0])
    return c


def back_detail(k):
    c = _back_base()
    yy, xx = px.grid(T, T)
    if k == 0:  # carved rune
        frame = rect(T, T, 8, 6, 24, 26)
        fill(c, frame, BACK[2])
        fill(c, frame & ~px.erode(frame), BACK[4])
        fill(c, frame & ~px.shift(frame, -1, 0), BACK[0])
        rune = lines(T, T, [(16, 9), (16, 23)]) | lines(T, T, [(12, 12), (16, 16), (20, 12)]) \
            | lines(T, T, [(12, 20), (20, 20)])
        fill(c, rune, TEAL[1])
        fill(c, rune & (yy < 14), TEAL[2])
    elif k == 1:  # root curtain over the rock
        for x, ln, ph in ((4, 30, 0.3), (10, 24, 1.4), (17, 32, 2.2), (24, 20, 0.6), (28, 28, 1.9)):
            pts = strand(x, 0, ln, 1.2, ph, freq=0.2)
            m = strand_mask(T, T, pts)
            fill(c, m | px.shift(m, 0, 1), BARK[1])
            fill(c, m, BARK[2])
    elif k == 2:  # a dark tunnel mouth
        hole = ellipse(T, T, 16, 20, 11, 12) & (yy < 31)
        fill(c, hole, BACK[0])
        fill(c, ellipse(T, T, 16, 22, 8, 9) & hole, rgb_mix(BACK[0], (0, 0, 0), 0.5))
        rim = px.outline_of(hole) & (yy < 31)
        fill(c, rim & (yy < 20), BACK[4])
        fill(c, rim & (yy >= 20), BACK[2])
    elif k == 3:  # moss patch creeping over the rock
        n = pfbm(T, np.random.RandomState(650), (8, 4))
        m = ellipse(T, T, 16, 13, 13, 9) & (n > 0.38)
        m |= ellipse(T, T, 16, 13, 8, 5)
        fill(c, m, MOSS[0])
        fill(c, m & ~px.shift(m, 1, 0), MOSS[1])
        for x in range(6, 27, 3):
            fill(c, strand_mask(T, T, strand(x, 13, 6 + x % 7, 0.4, x)) & ~m, MOSS[0])
    elif k == 4:  # crystal vein
        vein = lines(T, T, [(3, 27), (10, 20), (15, 17), (22, 10), (29, 5)], 2)
        fill(c, vein, BACK[0])
        for x, y in ((10, 19), (15, 16), (22, 9)):
            m = px.poly_mask(T, T, [(x - 2, y + 1), (x, y - 4), (x + 2, y + 1)])
            fill(c, m, TEAL[1])
            fill(c, m & (xx < x), TEAL[2])
        glow(c, 16, 15, 9, TEAL[1], 0.0)
    elif k == 5:  # an old carved face
        face = ellipse(T, T, 16, 16, 9, 11)
        fill(c, face, BACK[2])
        fill(c, face & ~px.shift(face, 1, 0), BACK[4])
        fill(c, face & ~px.shift(face, -1, 0), BACK[0])
        fill(c, ellipse(T, T, 12.5, 14, 2, 1.2) | ellipse(T, T, 19.5, 14, 2, 1.2), BACK[0])
        fill(c, rect(T, T, 15, 15, 17, 20), BACK[3])
        fill(c, rect(T, T, 13, 22, 20, 23), BACK[0])
        fill(c, pixels(T, T, [(12, 14), (19, 14)]), TEAL[1])
    elif k == 6:  # shelf fungi
        for cx, cy, w in ((10, 10, 5), (20, 16, 6), (12, 23, 4)):
            m = ellipse(T, T, cx, cy, w, 2) & (yy < cy + 0.5)
            shade(c, m, CAP[0:3])
            fill(c, rect(T, T, int(cx - w + 1), cy, int(cx + w), cy + 1), BACK[0])
    else:  # water seep
        for x, ph in ((13, 0.0), (18, 1.5)):
            m = strand_mask(T, T, strand(x, 0, 31, 0.7, ph, freq=0.3))
            fill(c, m | px.shift(m, 0, 1), BACK[0])
            fill(c, m, WATER[1])
        fill(c, pixels(T, T, [(13, 9), (18, 21)]), WATER[4])
    return c


def rgb_mix(a, b, t):
    return np.asarray(a, float) * (1 - t) + np.asarray(b, float) * t


# ---------------------------------------------------------------- animated tiles


def _water_colour(c, m, tone, pal=None):
    c[m, :3] = (WATER if pal is None else pal)[tone]
    c[m, 3] = 205


def water_top(frame, pal=None):
    c = canvas()
    yy, xx = px.grid(T, T)
    ph = frame * np.pi / 2
    surf = 6 + 1.1 * np.sin(2 * np.pi * xx / T - ph) + 0.6 * np.sin(4 * np.pi * xx / T + 2 * ph)
    surf = np.round(surf)
    body = yy >= surf
    _water_colour(c, body, 2, pal)
    _water_colour(c, body & (yy > surf + 5 + 2 * np.sin(2 * np.pi * xx / T - ph + 1)), 1, pal)
    _water_colour(c, body & (yy >= 16), 1, pal)
    _water_colour(c, (yy >= surf) & (yy < surf + 1), 4, pal)
    _water_colour(c, (yy >= surf + 1) & (yy < surf + 2), 3, pal)
    crest = (yy >= surf) & (yy < surf + 1) & (np.sin(2 * np.pi * xx / T - ph) > 0.6)
    _water_colour(c, crest, 5, pal)
    for sx, sy in ((6, 10), (19, 12), (27, 9)):  # glints drifting with the waves
        x = int((sx + frame * 8) % T)
        if frame % 2 == 0 or sx == 19:
            _water_colour(c, pixels(T, T, [(x, sy), (x + 1, sy)]), 3, pal)
    return c


def water_body(frame, pal=None):
    c = canvas()
    _water_colour(c, np.ones((T, T), bool), 1, pal)
    for tone, m in caustics(frame):
        _water_colour(c, m, tone, pal)
    return c


def caustics(frame):
    """Wavy broken light lines drifting sideways; they wrap every 32 px and loop in four frames."""
    yy, xx = px.grid(T, T)
    ph = frame * np.pi / 2
    bend = yy + 2.5 * np.sin(2 * np.pi * xx / T * 2 + ph) + 1.5 * np.sin(2 * np.pi * xx / T - ph)
    band = np.sin(2 * np.pi * bend / 16)
    gate = np.sin(2 * np.pi * (xx + yy * 0.5) / T * 2 - ph)
    light = (band > 0.93) & (gate > -0.2)
    dark = (band < -0.96) & (gate < 0.3)
    return [(2, light), (3, light & (gate > 0.6)), (0, dark)]


def torch(frame, ramp=FIRE, metal=IRON, wood=WOOD):
    c = canvas()
    stick = px.poly_mask(T, T, [(14, 17), (19, 17), (17.5, 30), (15.5, 30)])
    shade(c, stick, wood[1:4])
    band = rect(T, T, 13, 17, 20, 19) | rect(T, T, 15, 24, 18, 26)
    shade(c, band, metal[1:4])
    fill(c, rect(T, T, 13, 15, 20, 17), wood[0])
    glow(c, 16.5, 11, 13, ramp[2], 0.24)
    f = flame(T, T, 16.5, 15.5, 12, 7, frame, ramp)
    blit(c, f, 0, 0)
    return c


def glow_moss(frame):
    level = [0, 1, 2, 1][frame]
    c = canvas()
    yy, xx = px.grid(T, T)
    rock = ellipse(T, T, 16, 31, 13, 7) & (yy < T)
    shade(c, rock, ROCK[1:4])
    moss = rock & (yy < 27 + np.sin(xx * 0.9) * 1.5)
    fill(c, moss, MOSS[1])
    spots = [(8, 26), (12, 25), (15, 24), (19, 25), (22, 26), (11, 27), (17, 26), (24, 27)]
    cols = (TEAL[1], TEAL[2], TEAL[3])
    for i, (x, y) in enumerate(spots):
        on = (i + level) % 3 != 0 or level == 2
        fill(c, pixels(T, T, [(x, y)]), cols[min(2, level)] if on else TEAL[1])
        if level == 2 and i % 2 == 0:
            fill(c, pixels(T, T, [(x, y - 1)]), TEAL[4])
    for x, y, ln in ((10, 24, 5), (16, 23, 7), (21, 24, 4)):
        fill(c, lines(T, T, [(x, y), (x, y - ln)]), MOSS[2])
        fill(c, pixels(T, T, [(x, y - ln)]), TEAL[2 + (level > 0)] if level else TEAL[1])
    glow(c, 16, 24, 8 + 2 * level, TEAL[2], 0.1 + 0.07 * level)
    # spores rising through the loop
    for i, (sx, base) in enumerate(((9, 20), (18, 17), (24, 21))):
        y = base - frame * 3 - i
        fill(c, pixels(T, T, [(sx + (frame + i) % 2, y)]), TEAL[3 + (level == 2)])
    return c


def waterfall(frame, pal=None):
    WATER_ = WATER if pal is None else pal
    c = canvas()
    yy, xx = px.grid(T, T)
    c[..., :3] = WATER_[2]
    c[..., 3] = 225
    shift = frame * 8
    streak = pnoise_1d(T, 4, np.random.RandomState(700))
    u = (yy - shift) % T
    lanes = (streak[xx.astype(int)] > 0.55)
    flow = np.sin(2 * np.pi * (u / T) * 2 + 2 * np.pi * 9 * xx / T)
    c[lanes & (flow > 0.2), :3] = WATER_[3]
    c[lanes & (flow > 0.8), :3] = WATER_[4]
    c[~lanes & (flow < -0.75), :3] = WATER_[1]
    foam = (np.sin(2 * np.pi * u / T + 2 * np.pi * 12 * xx / T) > 0.93)
    c[foam, :3] = WATER_[5]
    c[xx < 1, :3] = WATER_[4]
    c[xx >= T - 1, :3] = WATER_[1]
    return c


def fireflies(frame, ramp=FLY):
    c = canvas()
    flies = [(7, 8, 0.0, 3), (22, 6, 1.3, 4), (14, 19, 2.6, 3), (26, 24, 4.0, 2.5), (5, 26, 5.1, 2)]
    for i, (x, y, ph, r) in enumerate(flies):
        a = ph + frame * np.pi / 2
        fx, fy = x + r * np.cos(a), y + r * 0.6 * np.sin(2 * a)
        bright = (i + frame) % 4 != 0
        glow(c, fx + 0.5, fy + 0.5, 3.5 if bright else 2.5, ramp[1], 0.28)
        fill(c, pixels(T, T, [(fx, fy)]), ramp[3] if bright else ramp[2])
    return c


def lantern(frame, metal=IRON, ramp=FIRE, glass=FLY):
    c = canvas()
    fill(c, rect(T, T, 15, 0, 17, 8) & (px.grid(T, T)[0] % 3 != 2), metal[2])
    fill(c, rect(T, T, 15, 0, 17, 8) & (px.grid(T, T)[0] % 3 == 2), metal[1])
    glow(c, 16, 15, 13, ramp[2], 0.2 + 0.04 * (frame % 2))
    cap = px.poly_mask(T, T, [(10, 11), (16, 7), (22, 11)])
    shade(c, cap, metal[1:4])
    body = rect(T, T, 11, 11, 21, 21)
    fill(c, body, metal[1])
    pane = rect(T, T, 12, 12, 20, 20)
    fill(c, pane, glass[1])
    fill(c, rect(T, T, 12, 12, 14, 20), glass[2])
    f = flame(T, T, 16, 19, 6, 4, frame, ramp)
    blit(c, f, 0, 0)
    fill(c, rect(T, T, 15, 11, 17, 21), metal[1])
    fill(c, rect(T, T, 10, 21, 22, 23), metal[2])
    fill(c, rect(T, T, 10, 21, 22, 22), metal[3])
    fill(c, rect(T, T, 15, 23, 17, 25), metal[1])
    return c


def embers(frame, ramp=FIRE):
    c = canvas()
    rng = np.random.RandomState(720)
    for i in range(8):
        x0, y0 = rng.rand() * T, rng.rand() * T
        speed = 8 if i % 2 == 0 else 16  # both loop in four frames over a 32 px period
        y = (y0 - frame * speed) % T
        x = (x0 + 1.5 * np.sin(frame * np.pi / 2 + i)) % T
        col = ramp[3] if (i + frame) % 3 == 0 else ramp[2] if i % 2 else ramp[1]
        fill(c, pixels(T, T, [(x, y)]), col)
        if i % 3 == 0:
            fill(c, pixels(T, T, [(x, (y + 1) % T)]), ramp[0], 0.7)
    return c


# ---------------------------------------------------------------- large pieces


def trunk(part):
    c = canvas()
    yy, xx = px.grid(T, T)
    wob = 0.8 * np.sin(yy * 2 * np.pi / T)
    left, right = 7 + wob, 25 + wob * 0.5
    if part == 0:  # top: the trunk forks into two limbs that reach into the canopy
        body = (xx > left) & (xx < right) & (yy > 14)
        body |= lines(T, T, [(11, 18), (6, 8), (3, 0)], 6) | lines(T, T, [(20, 18), (24, 7),
                                                                         (27, 0)], 6)
        body |= lines(T, T, [(16, 16), (16, 0)], 4)
    elif part == 1:
        body = (xx > left) & (xx < right)
    else:
        flare = 3 * np.clip((yy - 18) / 13, 0, 1) ** 2
        body = (xx > left - flare * 2) & (xx < right + flare * 2)
        body |= px.poly_mask(T, T, [(0, 32), (7, 24), (10, 32)]) | px.poly_mask(
            T, T, [(22, 32), (27, 25), (32, 31), (32, 32)])
    fill(c, body, BARK[2])
    # vertical bark ridges; lit on the left, in shade on the right
    ridge = (np.sin(xx * 1.3 + np.sin(yy * 0.3) * 1.5) > 0.55)
    fill(c, body & ridge, BARK[1])
    fill(c, body & (xx < left + 4), BARK[3])
    fill(c, body & (xx < left + 2) & ~ridge, BARK[4])
    fill(c, body & (xx > right - 5), BARK[1])
    fill(c, body & (xx > right - 2), BARK[0])
    if part == 1:
        knot = ellipse(T, T, 18, 16, 2.5, 3.5)
        fill(c, knot, BARK[1])
        fill(c, ellipse(T, T, 18, 16.5, 1.2, 2) , BARK[0])
        fill(c, px.outline_of(knot) & (yy < 15), BARK[3])
    if part == 2:
        moss = body & (yy > 26 - 2 * np.sin(xx * 0.6)) & (xx < 20)
        fill(c, moss, MOSS[1])
        fill(c, moss & ~px.shift(moss, 1, 0), MOSS[2])
    return c


def canopy():
    """The 3 x 2 foliage block as one 96 x 64 picture."""
    W, H = 3 * T, 2 * T
    c = px.new_sprite(H, W)
    yy, xx = px.grid(H, W)
    rng = np.random.RandomState(800)
    m = np.zeros((H, W), bool)
    for cx, cy, r in ((20, 30, 17), (48, 22, 21), (76, 30, 17), (34, 40, 16), (62, 40, 16),
                      (48, 44, 14), (10, 42, 9), (86, 42, 9)):
        m |= ((xx - cx) / r) ** 2 + ((yy - cy) / (r * 0.82)) ** 2 <= 1
    edge = pfbm(T, rng, (8, 4))
    edge = np.tile(edge, (2, 3))
    m &= ~(px.outline_of(m, True) & False)
    m = m & ~(~px.erode(m) & (edge > 0.55))
    tone = np.full((H, W), 1)
    clumps = [(cx, cy) for cx, cy, _ in ((14, 22, 0), (30, 14, 0), (48, 8, 0), (66, 14, 0),
                                         (82, 22, 0), (24, 34, 0), (46, 28, 0), (70, 34, 0),
                                         (38, 46, 0), (58, 48, 0), (16, 44, 0), (84, 44, 0))]
    for cx, cy in clumps:
        d = np.hypot(xx - cx, (yy - cy) * 1.3)
        tone = np.where((d < 8) & (xx - cx + yy - cy < -1), np.maximum(tone, 3), tone)
        tone = np.where((d < 10) & (d >= 8) & (xx - cx + yy - cy > 2), np.minimum(tone, 0), tone)
        tone = np.where((d < 6.5) & (xx - cx + yy - cy < -4), 4, tone)
    shade_y = yy > 40 + 6 * np.sin(xx * 0.15)
    tone = np.where(shade_y & (tone > 1), 1, tone)
    tone = np.where(yy > 52, 0, tone)
    leaf = ((xx * 3 + yy * 7) % 9 == 0)
    tone = np.where(leaf & (tone >= 2), tone - 1, tone)
    tone = np.where(m & ~px.erode(m) & (xx + yy > 60), 0, tone)
    ramp = GRASS
    for t in range(5):
        fill(c, m & (tone == t), ramp[t])
    # hanging leaves under the mass
    for x in range(6, W - 4, 5):
        bottom = np.nonzero(m[:, x])[0]
        if len(bottom):
            y0 = bottom.max()
            ln = 2 + (x * 7) % 6
            strip = np.zeros((H, W), bool)
            strip[y0:min(H, y0 + ln), x] = True
            fill(c, strip, GRASS[0])
            if y0 + ln < H:
                fill(c, pixels(H, W, [(x, y0 + ln - 1)]), GRASS[1])
    # the trunk's limbs disappear into the middle
    limb = np.zeros((H, W), bool)
    limb[52:, 39:45] = True
    limb[52:, 52:58] = True
    limb[54:, 45:52] = True
    fill(c, limb & ~m, BARK[1])
    for x, y in ((30, 20), (56, 14), (70, 26), (22, 36)):
        fill(c, pixels(H, W, [(x, y)]), FLY[2])
    return c


def frame_piece(part):
    c = canvas()
    yy, xx = px.grid(T, T)
    if part == 1:  # lintel beam across the top
        beam = rect(T, T, 0, 0, T, 9)
        shade(c, beam, WOOD[1:4])
        fill(c, beam & (yy > 7.5), WOOD[0])
        for x in (3, 27):
            fill(c, pixels(T, T, [(x, 4)]), IRON[3])
        fill(c, rect(T, T, 8, 3, 22, 4), WOOD[1])
        for x in range(2, T, 5):  # moss on the beam
            fill(c, pixels(T, T, [(x, 0), (x + 1, 0)]), MOSS[2])
        fill(c, strand_mask(T, T, strand(12, 9, 6, 0.5, 1)), MOSS[1])
        return c
    post = rect(T, T, 22, 0, 30, T)
    shade(c, post, WOOD[1:4], 1)
    for y in (5, 18, 27):
        fill(c, rect(T, T, 23, y, 29, y + 1), WOOD[1])
    fill(c, rect(T, T, 21, 11, 31, 14), IRON[2])
    fill(c, rect(T, T, 21, 11, 31, 12), IRON[3])
    fill(c, pixels(T, T, [(22, 12), (29, 12)]), IRON[0])
    moss = post & (yy > 24 + 2 * np.sin(xx))
    fill(c, moss, MOSS[1])
    return c if part == 0 else mirror_x(c)


def front(k):
    """Foreground silhouettes, much darker than the world and a faint rim on their lit edges."""
    c = canvas()
    yy, xx = px.grid(T, T)
    rng = np.random.RandomState(900 + k)
    m = np.zeros((T, T), bool)

    def blades_mask(x0, x1, hmin, hmax, step=2):
        out = np.zeros((T, T), bool)
        for x in np.arange(x0, x1, step):
            h = hmin + rng.rand() * (hmax - hmin)
            lean = rng.randn() * 2.5
            out |= lines(T, T, [(x, T), (x + lean * 0.4, T - h * 0.5), (x + lean, T - h)],
                         2 if h > hmin + (hmax - hmin) * 0.6 else 1)
        return out

    if k in (0, 1):  # tall grass, tiles sideways
        m = blades_mask(0, T, 8, 22) | (yy > 26)
    elif k == 2:  # tall grass, left end
        m = blades_mask(10, T, 6, 20) | ((yy > 26) & (xx > 10 - (yy - 26) * 2))
    elif k == 3:  # tall grass, right end
        m = blades_mask(0, 22, 6, 20) | ((yy > 26) & (xx < 22 + (yy - 26) * 2))
    elif k == 4:  # bush
        for cx, cy, r in ((9, 24, 9), (19, 18, 10), (27, 25, 7), (16, 28, 12)):
            m |= ellipse(T, T, cx, cy, r, r * 0.9)
        m &= ~((~px.erode(m)) & ((xx * 5 + yy * 3) % 4 == 0))
    elif k == 5:  # fern
        for ang, ln in ((-2.6, 15), (-2.1, 20), (-1.6, 24), (-1.1, 20), (-0.6, 14)):
            pts = [(16 + np.cos(ang + 0.01 * j * j) * j, T + np.sin(ang) * j) for j in range(ln)]
            m |= lines(T, T, pts, 2)
            for j in range(3, ln, 3):
                x, y = pts[j]
                m |= lines(T, T, [(x, y), (x - 3, y - 2)]) | lines(T, T, [(x, y), (x + 3, y - 2)])
    elif k in (6, 7, 8, 9):  # hanging leaves along a ceiling: middle, middle, left end, right end
        x0 = 8 if k == 8 else 0
        x1 = 24 if k == 9 else T
        m = (yy < 4 + 2 * np.sin(xx * 0.8 + k)) & (xx >= x0) & (xx < x1)
        for x in range(x0 + 1, x1 - 1, 3):
            ln = 6 + rng.rand() * 18
            pts = strand(x, 0, ln, 1.0, rng.rand() * 6)
            s = strand_mask(T, T, pts)
            m |= s
            for j in range(4, len(pts), 5):
                lx, ly = pts[j]
                m |= ellipse(T, T, lx + 1, ly + 1, 2, 1.2)
    elif k == 10:  # dense foliage, tiles on every side
        m = np.ones((T, T), bool)
    elif k in (11, 12, 13, 14):  # foliage edges: bottom, top, left, right
        u = {11: T - yy, 12: yy, 13: xx, 14: T - xx}[k]
        along = {11: xx, 12: xx, 13: yy, 14: yy}[k]
        prof = 8 + 4 * np.sin(along * 2 * np.pi / T * 2) + 2 * np.sin(along * 2 * np.pi / T * 5)
        m = u > prof
        lobes = (u > prof - 3) & (np.sin(along * 2 * np.pi * 10 / T) > 0.6)
        m |= lobes
    elif k == 15:  # vine that tiles top to bottom
        pts = [(14 + 3 * np.sin(y * 2 * np.pi / T), y) for y in np.arange(0, T, 0.5)]
        m = lines(T, T, pts, 2)
        for y in (4, 13, 21, 29):
            x = 14 + 3 * np.sin(y * 2 * np.pi / T)
            side = 1 if y % 2 else -1
            m |= ellipse(T, T, x + side * 3.5, y, 3, 1.7)
    elif k in (16, 17):  # branch entering from the left (16) or the right (17)
        m = lines(T, T, [(0, 12), (10, 14), (20, 12), (30, 15)], 4) \
            | lines(T, T, [(12, 14), (18, 22), (22, 26)], 2) | lines(T, T, [(20, 12), (26, 6)], 2)
        for cx, cy in ((29, 15), (24, 5), (22, 26), (26, 10), (16, 20)):
            m |= ellipse(T, T, cx, cy, 3.5, 2.2)
        if k == 17:
            m = m[:, ::-1]
    elif k == 18:  # reeds
        m = blades_mask(2, 30, 16, 31, 3)
        for x in (8, 17, 24):
            m |= rect(T, T, x, 4 + x % 5, x + 2, 10 + x % 5)
    else:  # drifting leaves, no support
        for cx, cy, a in ((8, 9, 0.5), (20, 6, -0.4), (14, 20, 1.0), (25, 24, -0.8)):
            m |= ellipse(T, T, cx, cy, 2.6, 1.3) & ~ellipse(T, T, cx + 1, cy - 1, 1.2, 0.6)
    return shade_silhouette(c, m, FRONT_C, tiling=10 <= k <= 14)


# ---------------------------------------------------------------- the sheet


def draw_tiles():
    tiles = {}
    for index, cells, kind, k in terrain_cells():
        tiles[index] = terrain(cells, kind, k)
    for role in range(4):
        tiles[tc.ONEWAY_LEFT + role] = oneway(role)
        tiles[tc.BRIDGE_LEFT + role] = bridge(role)
    for k, index in enumerate(tc.SPIKES):
        tiles[index] = brambles(k)
    for k in range(16):
        tiles[tc.DECO_GROUND[k]] = deco_ground(k)
        tiles[tc.DECO_HANG[k]] = deco_hang(k)
    for k, index in enumerate(tc.BACK_FILL + [tc.BACK_TOP, tc.BACK_BOTTOM, tc.BACK_LEFT,
                                              tc.BACK_RIGHT]):
        tiles[index] = back_tile(k)
    for k, index in enumerate(tc.BACK_DETAIL):
        tiles[index] = back_detail(k)
    for f in range(4):
        tiles[tc.WATER_TOP[f]] = water_top(f)
        tiles[tc.WATER_BODY[f]] = water_body(f)
        tiles[tc.TORCH[f]] = torch(f)
        tiles[tc.GLOW[f]] = glow_moss(f)
        tiles[tc.WATERFALL[f]] = waterfall(f)
        tiles[tc.FIREFLIES[f]] = fireflies(f)
        tiles[tc.LAMP[f]] = lantern(f)
        tiles[tc.EMBERS[f]] = embers(f)
    tiles[tc.TRUNK_TOP], tiles[tc.TRUNK_MIDDLE], tiles[tc.TRUNK_BASE] = (trunk(p) for p in range(3))
    big = canopy()
    for i, index in enumerate(tc.CANOPY):
        r, col = divmod(i, 3)
        tiles[index] = big[r * T:(r + 1) * T, col * T:(col + 1) * T].copy()
    tiles[tc.FRAME_LEFT], tiles[tc.FRAME_MIDDLE], tiles[tc.FRAME_RIGHT] = (frame_piece(p)
                                                                          for p in range(3))
    for k, index in enumerate(tc.FRONT):
        tiles[index] = front(k)
    return tiles


def preview_sky(h, w):
    """A night backdrop for the preview: deep teal-blue, lighter towards the top right."""
    yy, xx = px.grid(h, w)
    t = 0.25 + 0.5 * (1 - yy / h) * (0.4 + 0.6 * xx / w)
    out = np.zeros((h, w, 4))
    out[..., :3] = px.dither_ramp(np.clip(t, 0, 1), px.ramp("#050a0e", "#0a151a", "#0f2026",
                                                          "#163038", "#1f3f46"))
    out[..., 3] = 255
    return out

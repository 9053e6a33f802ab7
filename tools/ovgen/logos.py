"""Credits emblems, both 200 x 200 pixel-art designs on a transparent background.

LogoStudio.png: the studio's mark, a moth circling a lantern flame inside a gold medallion (x10).
LogoLumorra.png: the game's crest, a blade before a crescent moon between forest and city (x5).
"""
import numpy as np

from . import pixel as px

N = 200
C = N / 2
NIGHT = px.ramp("#070814", "#0c0f22", "#121733", "#1a2244", "#243056")
PALE = px.ramp("#3a3650", "#6f6a86", "#a9a3b3", "#d9d0c6", "#f2ead8", "#fffbee")
FLAME = px.ramp("#8a2c0e", "#e0641e", "#ffb040", "#ffe79a", "#fffbe6")
SILVER = px.ramp("#1d2230", "#4a5368", "#8d97ad", "#c9d1de", "#f4f8ff")
LEAF = px.ramp("#0e2a1c", "#1d4a2c", "#2f6e3a", "#58a050", "#9ad070")
STONE = px.ramp("#141933", "#232a4a", "#353f66", "#55618e")
ROOF = px.ramp("#1d4646", "#2b625d", "#3f857a", "#6fb8a2")
LAMP = px.rgb("#9fe3ff")


def ellipse(cx, cy, rx, ry, angle=0.0):
    ys, xs = px.grid(N, N)
    a = np.radians(angle)
    u = (xs - cx) * np.cos(a) + (ys - cy) * np.sin(a)
    v = -(xs - cx) * np.sin(a) + (ys - cy) * np.cos(a)
    return (u / rx) ** 2 + (v / ry) ** 2 <= 1.0


def mirror(mask):
    return mask | mask[:, ::-1]


def shade_field(mask, colours, bias=0.0):
    """Fill a mask with a ramp: brighter towards the top left, edges bevelled, dithered."""
    ys, xs = px.grid(N, N)
    t = 0.55 + bias - 0.0025 * ((xs - 40) + (ys - 40))
    tone = px.bevel(mask, 2)
    t = t + np.where(tone == 2, 0.25, 0) - np.where(tone == 0, 0.25, 0)
    return px.dither_ramp(np.clip(t, 0, 1), colours)


def fill(s, mask, colours, bias=0.0):
    cols = shade_field(mask, colours, bias)
    s[mask, :3] = cols[mask]
    s[mask, 3] = 255


def gold_ring(s, mask, depth=2):
    tone = px.bevel(mask, depth)
    px.paint_tones(s, tone, [px.GOLD[2], px.GOLD[3], px.GOLD[4]])
    glint = mask & ~px.shift(mask, 1, 0) & ~px.shift(mask, 0, 1)
    px.paint(s, glint, px.GOLD[5])


def ink(s, mask, width=2):
    ring = mask
    for _ in range(width):
        ring = px.dilate(ring, diagonal=True)
    px.paint(s, ring & ~mask, px.INK)


# ---------------------------------------------------------------- studio mark


def studio(seed=31):
    rng = np.random.RandomState(seed)
    s = px.new_sprite(N, N)
    ys, xs = px.grid(N, N)
    r = np.hypot(xs - C, ys - C)
    outer, field = r <= 94, r <= 82
    ink(s, outer, 3)
    gold_ring(s, outer & ~field)
    fill(s, field, NIGHT, bias=-0.05)
    _field_stars(s, field & (r < 76), rng)
    inner_ring = (r <= 77) & (r > 75)
    px.paint(s, inner_ring, px.GOLD[2])
    _ring_studs(s, r)
    _flame(s)
    _moth(s)
    return px.upscale(px.to_rgba8(s), 10)


def _field_stars(s, field, rng):
    for _ in range(26):
        x, y = rng.randint(0, N), rng.randint(0, N)
        if field[y, x]:
            s[y, x, :3] = PALE[2] if rng.rand() < 0.7 else PALE[4]


def _ring_studs(s, r):
    for k in range(8):
        a = np.radians(k * 45 - 90)
        cx, cy = C + 88 * np.cos(a), C + 88 * np.sin(a)
        big = k % 2 == 0
        stud = ellipse(cx, cy, 4.2 if big else 2.6, 4.2 if big else 2.6)
        ink(s, stud, 1)
        fill(s, stud, px.GOLD[2:], bias=0.15)


def _flame(s):
    """A small lantern flame above the moth: the light the moth is drawn to."""
    body = ellipse(C, 52, 6, 10) | (ellipse(C, 44, 3, 9) & (px.grid(N, N)[0] < 46))
    core = ellipse(C, 54, 3, 5)
    glow = ellipse(C, 52, 15, 17) & ~body
    ys, xs = px.grid(N, N)
    px.paint(s, glow & px.dither_mask(0.55 - np.hypot(xs - C, ys - 52) / 30), FLAME[1], 0.55)
    ink(s, body, 1)
    fill(s, body, FLAME[1:4], bias=0.1)
    fill(s, core, FLAME[3:], bias=0.2)


def _moth(s):
    fore = mirror(ellipse(C - 33, 98, 36, 19, -28))
    hind = mirror(ellipse(C - 22, 127, 22, 17, 35))
    wings = fore | hind
    body = ellipse(C, 110, 6, 26)
    head = ellipse(C, 83, 6, 6)
    antennae = _antennae()
    ink(s, wings | body | head | antennae, 2)
    fill(s, wings, PALE[1:], bias=0.05)
    _wing_marks(s, fore, hind)
    fill(s, body | head, PALE[:4], bias=-0.05)
    _body_bands(s, body)
    s[antennae, :3] = PALE[3]
    s[antennae, 3] = 255


def _antennae():
    ys, xs = px.grid(N, N)
    left = np.zeros((N, N), bool)
    for t in np.linspace(0, 1, 60):  # a feathered arc from the head towards the flame
        x, y = C - 3 - 16 * t, 80 - 22 * t + 10 * t * t
        left |= np.hypot(xs - x, ys - y) < 1.6
        if int(t * 60) % 6 == 0 and t > 0.2:
            left |= (np.abs(xs - x + 2) < 1) & (np.abs(ys - y - 2) < 2)
    return mirror(left)


def _wing_marks(s, fore, hind):
    ys, xs = px.grid(N, N)
    edge = (fore | hind) & ~px.erode(px.erode(px.erode(fore | hind)))
    px.paint(s, edge, PALE[1])
    px.paint(s, edge & px.dither_mask(np.full((N, N), 0.5)), px.GOLD[2])
    eyes = mirror(ellipse(C - 42, 95, 9, 6, -28))
    pupils = mirror(ellipse(C - 42, 95, 5, 2.5, -28))
    px.paint(s, eyes & fore, px.GOLD[3])
    px.paint(s, eyes & fore & ~px.shift(eyes, -1, -1), px.GOLD[2])
    px.paint(s, pupils, NIGHT[2])
    veins = mirror((np.abs((ys - 104) + 0.55 * (xs - C + 8)) < 0.8) & (xs < C - 8))
    veins |= mirror((np.abs((ys - 118) - 0.45 * (xs - C + 8)) < 0.8) & (xs < C - 8))
    px.paint(s, veins & (fore | hind) & ~eyes, PALE[2])
    spots = mirror(ellipse(C - 24, 132, 5, 4, 35))
    px.paint(s, spots & hind, px.GOLD[2])


def _body_bands(s, body):
    ys = px.grid(N, N)[0]
    px.paint(s, body & (np.abs((ys - 100) % 7 - 3) < 1), PALE[1])


# ---------------------------------------------------------------- the game's crest


def shield_mask():
    ys, xs = px.grid(N, N)
    top = 40 + 0.0032 * (xs - C) ** 2 - 6 * np.exp(-((xs - C) / 14) ** 2)
    half = np.where(ys < 118, 64, 64 * np.sqrt(np.clip(1 - ((ys - 118) / 66) ** 2, 0, 1)))
    return (ys >= top) & (np.abs(xs - C) <= half) & (ys <= 184)


def crest(seed=53):
    rng = np.random.RandomState(seed)
    s = px.new_sprite(N, N)
    shield = shield_mask()
    field = px.erode(px.erode(px.erode(px.erode(px.erode(shield)))))
    ink(s, shield, 3)
    gold_ring(s, shield & ~field)
    fill(s, field, NIGHT, bias=0.05)
    _field_stars(s, field, rng)
    _crescent(s, field)
    _branch(s, field)
    _spire(s, field)
    _blade(s)
    _ornaments(s)
    return px.upscale(px.to_rgba8(s), 5)


def _crescent(s, field):
    moon = ellipse(C, 92, 48, 48) & ~ellipse(C + 20, 80, 42, 42) & field
    glow = ellipse(C, 92, 54, 54) & ~ellipse(C, 92, 48, 48) & ~ellipse(C + 20, 80, 44, 44) & field
    px.paint(s, glow & px.dither_mask(np.full((N, N), 0.5)), NIGHT[4])
    fill(s, moon, PALE[2:], bias=0.1)


def _branch(s, field):
    """Forest side: a leafy bough curling up the left of the shield."""
    ys, xs = px.grid(N, N)
    stem = np.zeros((N, N), bool)
    leaves = np.zeros((N, N), bool)
    pts = [(C - 26 - 30 * np.sin(t * 2.2) * 0.6 - 6 * t, 172 - 112 * t) for t in np.linspace(0, 1, 80)]
    for i, (x, y) in enumerate(pts):
        stem |= np.hypot(xs - x, ys - y) < 1.6
    for k, i in enumerate(range(6, 80, 9)):
        x, y = pts[i]
        side = -1 if k % 2 == 0 else 1
        leaves |= ellipse(x + side * 8, y - 3, 8.5, 3.8, -35 * side)
    leaves &= field
    stem &= field
    ink(s, leaves | stem, 1)
    s[stem, :3] = px.rgb("#4a3220")
    s[stem, 3] = 255
    fill(s, leaves, LEAF[1:], bias=0.0)
    px.paint(s, leaves & px.erode(leaves) & ~px.erode(px.erode(leaves)) & (ys % 2 == 0), LEAF[3])


def _spire(s, field):
    """City side: a slate tower with a verdigris spire and cold lit windows."""
    ys, xs = px.grid(N, N)
    cx = C + 36
    tower = (np.abs(xs - cx) <= 9) & (ys >= 92) & (ys <= 176)
    annex = (xs >= cx + 6) & (xs <= cx + 22) & (ys >= 128) & (ys <= 176)
    roof = px.poly_mask(N, N, [(cx - 12, 93), (cx + 0.5, 44), (cx + 13, 93)])
    aroof = px.poly_mask(N, N, [(cx + 4, 129), (cx + 14, 112), (cx + 24, 129)])
    body = (tower | annex) & field
    roofs = (roof | aroof) & field & ~tower
    ink(s, body | roofs, 1)
    fill(s, body, STONE, bias=0.0)
    fill(s, roofs, ROOF, bias=0.05)
    for wy in (104, 122, 140):
        px.paint(s, (np.abs(xs - cx) < 1.5) & (ys >= wy) & (ys < wy + 6), LAMP)
    px.paint(s, (np.abs(xs - cx - 15) < 1) & (ys >= 140) & (ys < 145), px.rgb("#ee8a38"))
    px.paint(s, field & (ys >= 176) & (ys < 179) & (np.abs(xs - C) < 60), STONE[1])


def _blade(s):
    """A long silver blade, point down, with gold guard, wrapped grip and gem pommel."""
    ys, xs = px.grid(N, N)
    dx = xs - C
    taper = np.clip((170 - ys) / 14, 0, 1)
    blade = (np.abs(dx) <= 5.5 * taper) & (ys >= 60) & (ys <= 170)
    guard = px.poly_mask(N, N, [(C - 30, 54), (C - 24, 50), (C + 24, 50), (C + 30, 54),
                                (C + 24, 60), (C - 24, 60)])
    grip = (np.abs(dx) <= 3.5) & (ys >= 28) & (ys < 50)
    pommel = np.abs(dx) + np.abs(ys - 22) <= 7
    ink(s, blade | guard | grip | pommel, 2)
    s[blade, 3] = 255
    s[blade, :3] = np.where((dx < 0)[blade][:, None], SILVER[3], SILVER[2])
    px.paint(s, blade & (np.abs(dx) < 1), SILVER[1])
    px.paint(s, blade & (dx < 0) & ~px.shift(blade, 0, 1), SILVER[4])
    px.paint(s, blade & (dx > 0) & ~px.shift(blade, 0, -1), SILVER[1])
    s[grip, :3] = px.rgb("#3a2018")
    s[grip, 3] = 255
    px.paint(s, grip & ((ys.astype(int) % 4) == 0), px.GOLD[2])
    gold_ring(s, guard, 1)
    gold_ring(s, pommel, 1)
    px.paint(s, np.abs(dx) + np.abs(ys - 22) <= 3, px.rgb("#3fa3c0"))
    px.paint(s, (np.abs(dx + 1) < 1) & (np.abs(ys - 21) < 1), px.rgb("#effdff"))


def _ornaments(s):
    """Gold studs on the shield's shoulders and a small finial under its point."""
    ys, xs = px.grid(N, N)
    finial = np.abs(xs - C) + np.abs(ys - 190) <= 5
    for stud in (ellipse(C - 56, 46, 5, 5), ellipse(C + 56, 46, 5, 5), finial):
        ink(s, stud, 1)
        fill(s, stud, px.GOLD[2:], bias=0.1)


def generate(out):
    files = {
        "Assets/Sprites/Logo/LogoStudio.png": studio(),
        "Assets/Sprites/Logo/LogoLumorra.png": crest(),
    }
    return [px.save_png(img, out / rel) for rel, img in files.items()]

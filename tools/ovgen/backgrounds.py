"""The parallax backgrounds of the two regions: four layers each, 640 x 360, shown x3.

Forest: night sky with a full moon; misty hills and a distant tree line; tall pines and oaks with
moonlit rims; dark near trunks and a fog band. City: colder sky with a crescent moon; towers and
spires on a ridge; rooftops, chimneys and verdigris domes; dark scaffolds, a broken arch and fog.

Every layer tiles left to right (the game repeats it side by side), so everything here is drawn
on a periodic grid: noise wraps, shapes are measured by wrapped distance or drawn three times
(one width to the left and right). The top of each picture stays at the top of the screen, so
the layers are composed for a 1920 x 1080 view. Light comes from the top left. Contrast stays low
so the tiles in front read clearly. Names, size and order come from background_catalog.
"""
import numpy as np
from PIL import Image, ImageDraw

from . import pixel as px
from . import title_backdrop as tb
from .background_catalog import HEIGHT as H
from .background_catalog import LAYERS, REGIONS, WIDTH as W
from .background_catalog import asset_path

SCALE = 3
TAU = 2 * np.pi

# ---------------------------------------------------------------- palettes

FOREST_SKY = tb.SKY
CITY_SKY = px.ramp("#04040f", "#070819", "#0b0d22", "#10132b", "#151934", "#1b203d",
                   "#222845", "#2a304e", "#333a58")
CITY_HALO = px.ramp("#1d2444", "#252d52", "#313a62")
CITY_CLOUD = px.ramp("#0d1024", "#151a33", "#232a48", "#4a5478")
CITY_MOON = px.ramp("#8f97a8", "#b2b9c6", "#d0d5dc", "#e9ecf0", "#fafbff")
FOREST_MIST = tb.MIST
CITY_FOG = px.rgb("#3a4766")
FIREFLY = tb.FIREFLY

FOREST = {
    "ridge": px.ramp("#12242c", "#162b33", "#1b333b", "#36605f"),
    "far": tb.FOREST["far"],
    "mid": tb.FOREST["mid"],
    "oak": px.ramp("#0d1d19", "#132820", "#1a3529", "#33603f"),
    "bark": px.ramp("#0a110f", "#111a15", "#1a261d", "#2f4634"),
    "near": px.ramp("#040a08", "#07110d", "#0b1912", "#16301f"),
}
CITY = {
    "stone": tb.CITY["stone"],
    "roof": tb.CITY["roof"],
    "hill": tb.CITY["hill"],
    "window": tb.CITY["window"],
    "ember": tb.CITY["ember"],
    "dark": px.ramp("#0a0c18", "#0f1222", "#161a2e", "#262d48"),
    "wood": px.ramp("#0c0a10", "#141017", "#1d171f", "#302833"),
}


# ---------------------------------------------------------------- periodic helpers


def wrapped_dx(xs, cx):
    """Signed horizontal distance from cx, measured the short way round the loop."""
    return (xs - cx + W / 2) % W - W / 2


def pnoise_1d(cell, rng, phase=0.0):
    """Smooth value noise over the W columns that wraps at the seam (W divisible by cell)."""
    knots = rng.rand(W // cell)
    x = (np.arange(W) + phase) / cell
    i = np.floor(x).astype(int)
    f = px.smoothstep(0, 1, x - i)
    n = len(knots)
    return knots[i % n] * (1 - f) + knots[(i + 1) % n] * f


def pnoise_2d(cell, rng):
    """Smooth value noise over H x W that wraps left to right."""
    gw = W // cell
    g = rng.rand(H // cell + 2, gw)
    y = np.arange(H)[:, None] / cell
    x = np.arange(W)[None, :] / cell
    iy, ix = np.floor(y).astype(int), np.floor(x).astype(int)
    fy, fx = px.smoothstep(0, 1, y - iy), px.smoothstep(0, 1, x - ix)
    top = g[iy, ix % gw] * (1 - fx) + g[iy, (ix + 1) % gw] * fx
    bottom = g[iy + 1, ix % gw] * (1 - fx) + g[iy + 1, (ix + 1) % gw] * fx
    return top * (1 - fy) + bottom * fy


def pfbm(rng, cells=(64, 32, 16, 8)):
    total, weight = np.zeros((H, W)), 0.0
    for k, cell in enumerate(cells):
        total += 0.5 ** k * pnoise_2d(cell, rng)
        weight += 0.5 ** k
    return total / weight


def waves(xs, terms):
    """A periodic profile: sum of amp * sin(2 pi k x / W + phase) for (k, amp, phase)."""
    return sum(a * np.sin(TAU * k * xs / W + p) for k, a, p in terms)


def roll_x(mask, dx):
    return np.roll(mask, dx, axis=1)


def top_left_edge(mask):
    """Pixels of a mask whose upper or left neighbour is outside it (wrapping left to right)."""
    return mask & (~px.shift(mask, 1, 0) | ~roll_x(mask, 1))


def wrapped_draw(paint):
    """Rasterise PIL drawing calls three times (offset -W, 0, +W) into one index image.

    paint(draw, ox) draws with integer fill values; the result is an (H, W) int array."""
    img = Image.new("L", (W, H), 0)
    d = ImageDraw.Draw(img)
    for ox in (-W, 0, W):
        paint(d, ox)
    return np.array(img).astype(int)


def mist_band(layer, yline, thick, strength, colour, rng, cell=32, cap=0.6, steps=4):
    """Soft mist in a few dithered alpha steps around a (periodic) line."""
    ys = np.arange(H)[:, None] + 0.5
    n = pfbm(rng, cells=(cell * 2, cell, cell // 2))
    band = np.exp(-((ys - yline[None, :]) / thick) ** 2)
    alpha = np.clip(band * strength * (0.7 + 0.9 * (n - 0.5)), 0, cap)
    levels = px.dither_index(alpha / cap, steps) * cap / (steps - 1)
    px.paint(layer, levels > 0, colour, levels)


def haze(colours, towards, amount):
    return colours * (1 - amount) + np.asarray(towards, float) * amount


# ---------------------------------------------------------------- sky


def sky(pal, moon, full, clouds, cloud_pal, halo_pal, moon_pal, rng, stars=300, glow=None):
    """The opaque sky: dithered gradient, moon halo, stars, the moon, thin cloud strata."""
    mx, my, r = moon
    ys, xs = px.grid(H, W)
    dx = wrapped_dx(xs, mx)
    t = (ys / 330.0) ** 1.3 * 0.9
    t += 0.30 * np.exp(-(dx ** 2 + ((ys - my) * 1.3) ** 2) / (2 * 90.0 ** 2))
    if glow is not None:  # a faint warm-cold glow low over the city
        t += glow * px.smoothstep(200, 330, ys)
    c = px.dither_ramp(np.clip(t, 0, 1), pal)
    hx, hy = (0.0, 0.0) if full else (-0.3 * r, -0.2 * r)  # a crescent glows on its lit side
    d = np.hypot(dx - hx, ys - my - hy)
    halo = np.clip(1 - (d - r) / 22.0, 0, 1) ** 1.6
    steps = px.dither_index(halo, len(halo_pal) + 1)
    for i, col in enumerate(halo_pal, start=1):
        c[steps == i] = col
    _stars(c, rng, stars, moon)
    _moon(c, rng, moon, full, moon_pal)
    for yc, th, x0, span in clouds:
        _cloud(c, rng, moon, yc, th, x0, span, cloud_pal)
    return c


def _stars(c, rng, n, moon):
    mx, my, r = moon
    xs = rng.randint(0, W, n)
    ys = (rng.rand(n) ** 1.7 * 250).astype(int)
    mag = rng.rand(n)
    for x, y, m in zip(xs, ys, mag):
        if np.hypot(wrapped_dx(x, mx), y - my) < r + 20:
            continue
        if m > 0.975 and y < 200:
            for ddx, ddy in ((1, 0), (-1, 0), (0, 1), (0, -1)):
                c[y + ddy, (x + ddx) % W] = px.rgb("#4f5a86")
            c[y, x] = px.rgb("#e8eeff")
        else:
            fade = 1 - y / 300.0  # stars thin out towards the horizon glow
            col = px.rgb("#aab6dc") if m > 0.85 else px.rgb("#616c98") if m > 0.5 \
                else px.rgb("#363e66")
            if m * fade > 0.15:
                c[y, x] = col


def _moon(c, rng, moon, full, pal):
    mx, my, r = moon
    ys, xs = px.grid(H, W)
    dx, dy = wrapped_dx(xs, mx) / r, (ys - my) / r
    inside = dx * dx + dy * dy <= 1.0
    maria = pfbm(rng, cells=(16, 8, 4))
    limb = np.sqrt(np.clip(1 - dx * dx - dy * dy, 0, 1))
    t = 0.35 + 0.55 * limb - 0.12 * (dx + dy) - 0.7 * np.clip(maria - 0.5, 0, 1)
    if not full:  # a waning crescent: the lit sliver faces the upper left
        t = np.where((dx - 0.48) ** 2 + (dy - 0.30) ** 2 < 0.86, -1.0, t)
    lit = inside & (t >= 0)
    c[lit] = px.dither_ramp(np.clip(t, 0, 1), pal)[lit]
    rim = lit & ~px.erode(lit)
    c[rim & (dx + dy > 0.2)] = pal[1]


def _cloud(c, rng, moon, yc, th, x0, span, pal):
    """A long thin stratus: dark body, a darker underside, silver top edge near the moon."""
    mx, my, r = moon
    ys, xs = px.grid(H, W)
    n = pfbm(rng, cells=(64, 32, 16, 8))
    along = wrapped_dx(xs, x0 + span / 2) / (span / 2)
    wave = yc + 3 * np.sin(TAU * 5 * xs / W + yc)
    body = np.exp(-((ys - wave) / th) ** 2) * (1 - px.smoothstep(0.6, 1.0, np.abs(along)))
    m = body * (0.55 + 0.9 * (n - 0.5)) > 0.42
    near_moon = np.exp(-(wrapped_dx(xs, mx) ** 2 + (ys - my) ** 2) / (2 * 60.0 ** 2))
    edge = m & ~px.shift(m, 1, 0)
    c[m] = c[m] * 0.35 + pal[1] * 0.65
    c[m & ~px.shift(m, -1, 0)] = pal[0]
    c[edge & (near_moon > 0.12)] = pal[2]
    c[edge & (near_moon > 0.5)] = pal[3]


# ---------------------------------------------------------------- forest


def forest_sky(rng):
    clouds = [(58, 3.0, 300, 260), (116, 4.5, 40, 300), (134, 3.0, 120, 220),
              (176, 4.0, 420, 330), (96, 2.5, 520, 180)]
    return sky(FOREST_SKY, (170.0, 74.0, 27.0), True, clouds, tb.CLOUD, tb.HALO, tb.MOON_RAMP,
               rng, stars=330)


def periodic_pines(rng, base, gap, hmin, hmax, slope):
    """Top profile of a row of pines standing on `base`, wrapping at the seam, and which tree owns
    each column (its centre x, for lighting the left side)."""
    top = base.astype(float).copy()
    owner = np.zeros(W)
    x = rng.randint(0, gap)
    start = x
    while x < start + W:
        h = rng.randint(hmin, hmax + 1)
        g = base[x % W]
        hw = int(h / slope) + 2
        for d in range(-hw, hw + 1):
            xx = (x + d) % W
            tier = 1.5 * ((abs(d) + (h % 3)) % 3 == 0) * (abs(d) > 0)
            y = g - h + abs(d) * slope + tier
            if y < top[xx]:
                top[xx], owner[xx] = y, x  # the trunk column
        x += rng.randint(max(2, gap // 2), gap + 1)
    return np.floor(top).astype(int), owner


def paint_treeline(layer, top, owner, pal, rng, fade=40.0, rim_depth=0.45):
    """A solid tree line: lit left halves, shaded right halves, a cold rim on top-left edges,
    darkening with depth below the tree tops; opaque down to the bottom of the picture."""
    ys = np.arange(H)[:, None]
    xs = np.arange(W)[None, :]
    inside = ys >= top[None, :]
    depth = (ys - top[None, :]) / fade
    lit_side = wrapped_dx(xs, owner[None, :] % W) < 0
    grain = pnoise_2d(4, rng)
    t = np.where(lit_side, 0.64, 0.38) - 0.55 * np.clip(depth, 0, 1) + 0.18 * (grain - 0.5)
    cols = px.dither_ramp(np.clip(t, 0, 1), pal[:3])
    px.paint(layer, inside, [0, 0, 0])
    layer[inside, :3] = cols[inside]
    rim = top_left_edge(inside) & lit_side & (depth < rim_depth)
    layer[rim, :3] = pal[3]
    return inside


def forest_far(rng):
    layer = px.new_sprite(H, W)
    xs = np.arange(W)
    # the farthest ridge, pale in the mist
    base_a = 214 + waves(xs, [(1, 9, 0.4), (2, 6, 2.1), (5, 3, 0.7), (9, 1.5, 1.9)])
    top_a, own_a = periodic_pines(rng, base_a, 6, 4, 12, 2.6)
    paint_treeline(layer, top_a, own_a, haze(FOREST["ridge"], FOREST_SKY[7], 0.35), rng, fade=60)
    mist_band(layer, base_a + 8, 10.0, 0.75, FOREST_MIST, rng, cell=32, cap=0.55)
    # the nearer far ridge with a denser tree line
    base_b = 256 + waves(xs, [(1, 11, 2.6), (3, 7, 0.3), (4, 3, 1.3), (8, 2, 0.2)])
    top_b, own_b = periodic_pines(rng, base_b, 8, 8, 22, 2.3)
    paint_treeline(layer, top_b, own_b, FOREST["far"], rng, fade=70)
    mist_band(layer, base_b + 10, 12.0, 0.8, FOREST_MIST, rng, cell=32, cap=0.5)
    mist_band(layer, np.full(W, 335.0), 30.0, 0.7, FOREST_MIST, rng, cell=16, cap=0.3)
    return layer


def spruce(cx, peak, base, slope, tier):
    """A tall spruce, tier by tier: each branch tier flares out and steps back in."""
    ys, xs = px.grid(H, W)
    dx = wrapped_dx(xs, cx)
    depth = ys - peak
    flare = 0.55 + 0.45 * ((depth % tier) / tier) ** 0.7
    half = depth / slope * flare + 0.6
    crown = (np.abs(dx) <= half) & (depth >= 0) & (ys < base)
    trunk = (np.abs(dx) < 2.0) & (depth > 0) & (ys < base + 4)
    return crown | trunk, dx


def oak(cx, cy, r, rng):
    """An oak: a clustered crown of lumpy discs on a trunk with two limbs. Returns (crown, trunk,
    light field) where light is high on the upper-left of each lump."""
    ys, xs = px.grid(H, W)
    crown = np.zeros((H, W), bool)
    light = np.full((H, W), -9.0)
    lumps = [(0, 0, 1.0)] + [(rng.uniform(-1, 1) * r * 0.75, rng.uniform(-0.6, 0.5) * r * 0.8,
                              rng.uniform(0.45, 0.7)) for _ in range(6)]
    wobble = pnoise_2d(5, rng)
    for ox, oy, s in lumps:
        lx, ly, lr = cx + ox, cy + oy, r * s
        dx, dy = wrapped_dx(xs, lx), ys - ly
        d = np.hypot(dx, dy) / lr
        m = d < 0.92 + 0.22 * (wobble - 0.5)
        crown |= m
        light = np.where(m, np.maximum(light, -(dx + dy) / (lr * 1.5) + 0.15 * (1 - d)), light)
    dx = wrapped_dx(xs, cx)
    trunk_w = 2.5 + r / 14.0 + np.clip((ys - cy - r * 1.6) / 30.0, 0, 3)
    trunk = (np.abs(dx + 0.04 * (ys - cy)) < trunk_w) & (ys > cy)
    for side in (-1, 1):  # two limbs into the crown
        t = (ys - cy) / r
        limb = (np.abs(dx - side * (0.5 - t) * r * 0.8) < 1.6) & (t > -0.1) & (t < 0.55)
        trunk |= limb
    return crown, trunk, light


def forest_mid(rng):
    layer = px.new_sprite(H, W)
    pal, opal, bark = FOREST["mid"], FOREST["oak"], FOREST["bark"]
    xs = np.arange(W)
    ground = 318 + waves(xs, [(1, 5, 1.0), (3, 3, 2.2), (7, 1.5, 0.4)])
    grain = pnoise_2d(5, rng)
    # oaks behind the spruces, then the spruces
    for cx, cy, r in [(74, 204, 34), (270, 196, 38), (476, 208, 32)]:
        crown, trunk, light = oak(cx, cy, r, rng)
        xsg = np.arange(W)[None, :]
        tr = trunk & ~crown
        t = np.where(wrapped_dx(xsg, cx) < 0, 0.62, 0.3) + 0.1 * (grain - 0.5)
        layer[tr, :3] = px.dither_ramp(np.clip(t, 0, 1), bark[:3])[tr]
        layer[tr, 3] = 255
        t = 0.42 + 0.55 * light + 0.28 * (grain - 0.5)
        layer[crown, :3] = px.dither_ramp(np.clip(t, 0, 1), opal[:3])[crown]
        layer[crown, 3] = 255
        rim = top_left_edge(crown) & (light > 0.05)
        layer[rim, :3] = opal[3]
    spruces = [(150, 112, 3.0, 10), (204, 156, 3.4, 9), (352, 104, 3.1, 10), (398, 164, 3.5, 8),
               (566, 122, 3.0, 11), (20, 168, 3.4, 8)]
    for cx, peak, slope, tier in spruces:
        m, dx = spruce(cx, peak, ground[cx] + 6, slope, tier)
        ys = np.arange(H)[:, None]
        depth = np.clip((ys - peak) / 260.0, 0, 1)
        t = np.where(dx < 0, 0.66, 0.34) - 0.35 * depth + 0.2 * (grain - 0.5)
        layer[m, :3] = px.dither_ramp(np.clip(t, 0, 1), pal[:3])[m]
        layer[m, 3] = 255
        rim = top_left_edge(m) & (dx < 0) & (depth < 0.4)
        layer[rim, :3] = (pal[2] + pal[3]) / 2
    # undergrowth and floor
    ys = np.arange(H)[:, None]
    bush = ground[None, :] - 10 * pnoise_1d(16, rng)[None, :] - 6 * pnoise_1d(8, rng)[None, :]
    floor = ys >= bush
    t = 0.5 - 0.5 * np.clip((ys - bush) / 24.0, 0, 1) + 0.25 * (grain - 0.5)
    layer[floor, :3] = px.dither_ramp(np.clip(t, 0, 1), pal[:3])[floor]
    layer[floor, 3] = 255
    layer[top_left_edge(floor) & (xs[None, :] % 3 != 0), :3] = pal[2]
    mist_band(layer, ground - 4, 12.0, 0.75, FOREST_MIST, rng, cell=32, cap=0.35)
    _fireflies(layer, rng, 14, 240, 350)
    return layer


def _fireflies(layer, rng, n, y0, y1):
    for _ in range(n):
        x, y = rng.randint(0, W), rng.randint(y0, y1)
        big = rng.rand() < 0.3
        if big:
            for dx, dy in ((1, 0), (-1, 0), (0, 1), (0, -1)):
                p = layer[y + dy, (x + dx) % W]
                p[:3] = p[:3] * 0.5 + FIREFLY[0] * 0.5 if p[3] else FIREFLY[0]
                p[3] = max(p[3], 160)
        layer[y, x] = [*(FIREFLY[2] if big else FIREFLY[1]), 255]


def forest_near(rng):
    layer = px.new_sprite(H, W)
    pal = FOREST["near"]
    ys, xs = px.grid(H, W)
    bark = pnoise_2d(4, rng)
    streak = pnoise_1d(4, rng)[None, :]
    trunks = [(96, 13), (332, 8), (508, 17)]
    solid = np.zeros((H, W), bool)
    light = np.zeros((H, W))
    for cx, hw in trunks:
        dx = wrapped_dx(xs, cx + 6 * np.sin(ys / 90.0 + cx))
        flare = hw + 10 * px.smoothstep(300, 360, ys) ** 2  # roots spread at the foot
        m = np.abs(dx) < flare
        solid |= m
        light = np.where(m, -dx / flare, light)
        for by, side, length in [(40 + cx % 50, -1, 40), (110 + cx % 37, 1, 30)]:  # limbs
            along = side * dx
            limb = (along > 0) & (along < length) & (np.abs(ys - (by + along * 0.45)) <
                                                     3.2 - along / length * 2)
            solid |= limb
            light = np.where(limb & ~m, 0.3, light)
    # a dark canopy fringe hanging from the top edge
    fringe = 10 + 14 * pnoise_1d(32, rng) + 8 * pnoise_1d(8, rng) - 6
    hang = ys < fringe[None, :] + 6 * (pnoise_2d(4, rng) - 0.5)
    for cx, _ in trunks:  # heavier foliage above each trunk
        hang |= (ys < 34 + 10 * pnoise_2d(8, rng)) & (np.abs(wrapped_dx(xs, cx)) < 40 +
                                                     14 * pnoise_2d(8, rng))
    solid |= hang
    light = np.where(hang & (light == 0), 0.1, light)
    t = 0.40 + 0.45 * light + 0.25 * (bark - 0.5) + 0.15 * (streak - 0.5)
    cols = px.dither_ramp(np.clip(t, 0, 1), pal[:3])
    layer[solid, :3] = cols[solid]
    layer[solid, 3] = 255
    rim = top_left_edge(solid) & (light > 0.5) & ~hang
    layer[rim, :3] = pal[3]
    # grass along the foot, then the fog band
    ground = 350 + waves(np.arange(W), [(2, 3, 0.5), (5, 2, 1.7)])
    tufts = ys >= ground[None, :] - 5 * (pnoise_2d(4, rng) > 0.55) * pnoise_2d(4, rng)
    layer[tufts, :3] = pal[0]
    layer[tufts, 3] = 255
    mist_band(layer, np.full(W, 352.0) - 6 * pnoise_1d(64, rng), 26.0, 0.9, FOREST_MIST, rng,
              cell=32, cap=0.32)
    _fireflies(layer, rng, 6, 280, 340)
    return layer


# ---------------------------------------------------------------- city


def city_sky(rng):
    clouds = [(44, 3.0, 380, 240), (92, 4.5, 120, 320), (108, 3.0, 260, 200),
              (150, 5.0, 500, 360), (196, 4.0, 40, 280), (88, 2.5, 20, 160)]
    return sky(CITY_SKY, (118.0, 62.0, 20.0), False, clouds, CITY_CLOUD, CITY_HALO, CITY_MOON,
               rng, stars=260, glow=0.08)


def _palette_paint(layer, index, colours):
    """Paint an index image onto an RGBA layer: index k > 0 takes colours[k - 1]."""
    for k, col in enumerate(colours, start=1):
        m = index == k
        layer[m, :3] = col
        layer[m, 3] = 255


def _building_shapes(d, ox, x, w, top, bottom, roof, rh, idx):
    """Draw one building: body (base tone), left lit strip, right shadow strip, roof halves.
    idx maps 'base', 'lit', 'shadow', 'roof_lit', 'roof_dark', 'rim' to index values."""
    x = x + ox
    d.rectangle([x, top, x + w - 1, bottom], fill=idx["base"])
    d.rectangle([x, top, x, bottom], fill=idx["lit"])
    d.rectangle([x + w - 2, top, x + w - 1, bottom], fill=idx["shadow"])
    mid = x + (w - 1) / 2
    if roof == "spire":
        d.polygon([(x - 1, top), (mid, top - rh), (mid, top)], fill=idx["roof_lit"])
        d.polygon([(mid + 1, top - rh + 2), (x + w, top), (mid + 1, top)], fill=idx["roof_dark"])
        d.line([(x - 1, top), (mid, top - rh)], fill=idx["rim"])
    elif roof == "gable":
        d.polygon([(x - 1, top), (mid, top - rh), (mid, top)], fill=idx["roof_lit"])
        d.polygon([(mid, top - rh), (x + w, top), (mid, top)], fill=idx["roof_dark"])
        d.line([(x - 1, top), (mid, top - rh)], fill=idx["rim"])
    elif roof == "dome":
        d.pieslice([x - 1, top - rh, x + w, top + rh], 180, 360, fill=idx["roof_dark"])
        d.pieslice([x - 1, top - rh, x + w - 3, top + rh - 2], 180, 270, fill=idx["roof_lit"])
        d.arc([x - 1, top - rh, x + w, top + rh], 190, 250, fill=idx["rim"])
        d.line([(mid, top - rh - 4), (mid, top - rh)], fill=idx["roof_dark"])
    elif roof == "flat":
        for cx in range(x, x + w, 3):
            d.rectangle([cx, top - 2, min(cx + 1, x + w - 1), top - 1], fill=idx["base"])


def city_far(rng):
    layer = px.new_sprite(H, W)
    xs = np.arange(W)
    ridge = 262 + waves(xs, [(1, 12, 1.2), (2, 6, 0.2), (5, 2.5, 2.0), (11, 1.2, 0.6)])
    sky_tone = CITY_SKY[7]
    stone = haze(CITY["stone"], sky_tone, 0.45)
    roof = haze(CITY["roof"], sky_tone, 0.5)
    colours = [stone[1], stone[2], stone[0], roof[2], roof[1], roof[3]]
    idx = dict(base=1, lit=2, shadow=3, roof_lit=4, roof_dark=5, rim=6)
    shapes = []
    x = 4
    while x < W - 6:  # clusters of towers along the ridge, a few gaps between them
        w = rng.randint(6, 15)
        h = rng.randint(18, 46) + (38 if rng.rand() < 0.15 else 0)
        kind = ["spire", "gable", "dome", "flat", "spire"][rng.randint(0, 5)]
        rh = {"spire": rng.randint(12, 30), "gable": rng.randint(4, 8),
              "dome": max(3, w // 2), "flat": 0}[kind]
        shapes.append((x, w, h, kind, rh))
        x += w + (rng.randint(18, 40) if rng.rand() < 0.2 else rng.randint(-3, 2))
    # a keep with a tall spire, the landmark on every screen
    shapes.append((300, 18, 96, "spire", 44))

    def paint(d, ox):
        for x, w, h, kind, rh in shapes:
            base = int(ridge[min(x + w // 2, W - 1)])
            _building_shapes(d, ox, x, w, base - h, H, kind, rh, idx)
    index = wrapped_draw(paint)
    _palette_paint(layer, index, colours)
    for x, w, h, kind, rh in shapes:  # a few cold lit windows
        base = int(ridge[min(x + w // 2, W - 1)])
        for wy in range(base - h + 4, base - 4, 5):
            for wx in range(x + 2, x + w - 3, 3):
                r = rng.rand()
                if r < 0.06:
                    layer[wy:wy + 2, wx % W, :3] = CITY["window"][0] * 0.8 + sky_tone * 0.2
                    layer[wy, wx % W, :3] = CITY["window"][1] * 0.7 + sky_tone * 0.3
                elif r < 0.075:
                    layer[wy:wy + 2, wx % W, :3] = CITY["ember"][0] * 0.7 + sky_tone * 0.3
    # the ridge under the walls
    ys = np.arange(H)[:, None]
    hill = ys >= ridge[None, :] - 2
    grain = pnoise_2d(4, rng)
    t = 0.6 - 0.6 * np.clip((ys - ridge[None, :]) / 60.0, 0, 1) + 0.25 * (grain - 0.5)
    hill_pal = haze(CITY["hill"], sky_tone, 0.3)
    layer[hill, :3] = px.dither_ramp(np.clip(t, 0, 1), hill_pal)[hill]
    layer[hill, 3] = 255
    layer[top_left_edge(hill) & (np.arange(W)[None, :] % 2 == 0), :3] = hill_pal[3]
    mist_band(layer, ridge + 14, 14.0, 0.8, CITY_FOG, rng, cell=32, cap=0.5)
    mist_band(layer, np.full(W, 345.0), 30.0, 0.8, CITY_FOG, rng, cell=16, cap=0.3)
    return layer


def city_mid(rng):
    """A row of houses that fills the loop exactly: steep slate gables, stepped gables, hipped
    roofs, verdigris domes, chimneys and one bell tower. Darker and larger than the far towers."""
    layer = px.new_sprite(H, W)
    st, rf, dk = CITY["stone"], CITY["roof"], CITY["dark"]
    colours = [haze(st, dk[1], 0.55)[1], haze(st, dk[2], 0.5)[2], dk[1],   # 1-3 wall
               haze(st, dk[2], 0.45)[2], dk[2],                             # 4-5 slate
               haze(rf, dk[2], 0.25)[1], haze(rf, dk[1], 0.3)[0],           # 6-7 verdigris
               haze(rf, dk[2], 0.2)[2], haze(st, dk[2], 0.4)[3]]            # 8-9 rims
    wall = dict(base=1, lit=2, shadow=3)
    houses = []
    x = 0
    while x < W:
        w = rng.randint(26, 52)
        if W - (x + w) < 26:
            w = W - x
        kind = ["gable", "gable", "hip", "dome", "stepped", "gable", "hip"][rng.randint(0, 7)]
        houses.append([x, w, rng.randint(214, 246), kind, rng.randint(0, 3)])
        x += w
    houses[4][2:4] = [176, "tower"]
    houses[len(houses) // 2 + 2][2:4] = [222, "dome"]

    def body(d, x, w, top):
        d.rectangle([x, top, x + w - 1, H], fill=wall["base"])
        d.rectangle([x, top, x, H], fill=wall["lit"])
        d.rectangle([x + w - 2, top, x + w - 1, H], fill=wall["shadow"])
        d.rectangle([x, top, x + w - 1, top + 1], fill=wall["shadow"])  # shade under the eaves

    def paint(d, ox):
        for x, w, top, kind, nch in houses:
            x += ox
            mid = x + (w - 1) / 2
            for k in range(nch):  # chimneys behind the roof line
                cx = x + 5 + k * (w - 14)
                d.rectangle([cx, top - 22 - 4 * k, cx + 4, top], fill=1)
                d.rectangle([cx, top - 22 - 4 * k, cx, top], fill=2)
                d.rectangle([cx - 1, top - 24 - 4 * k, cx + 5, top - 22 - 4 * k], fill=3)
            if kind == "tower":  # a bell tower: open belfry, verdigris dome and finial
                bx, bw, bt = int(mid) - 9, 18, top
                body(d, x, w, 236)
                d.polygon([(x - 1, 236), (mid, 222), (x + w, 236)], fill=5)
                d.polygon([(x - 1, 236), (mid, 222), (mid, 236)], fill=4)
                body(d, bx, bw, bt)
                d.rectangle([bx + 5, bt + 8, bx + 12, bt + 22], fill=3)
                d.pieslice([bx + 5, bt + 4, bx + 12, bt + 12], 180, 360, fill=3)
                d.pieslice([bx - 2, bt - 12, bx + bw + 1, bt + 12], 180, 360, fill=7)
                d.pieslice([bx - 2, bt - 12, bx + bw - 4, bt + 8], 180, 270, fill=6)
                d.arc([bx - 2, bt - 12, bx + bw + 1, bt + 12], 195, 255, fill=8)
                d.line([(mid, bt - 20), (mid, bt - 12)], fill=7)
                continue
            body(d, x, w, top)
            if kind == "gable":
                rh = int(w * 0.5)
                d.polygon([(x, top), (mid, top - rh), (x + w - 1, top)], fill=5)
                d.polygon([(x, top), (mid, top - rh), (mid, top)], fill=4)
                d.line([(x, top), (mid, top - rh)], fill=9)
            elif kind == "hip":
                d.polygon([(x, top), (x + 8, top - 12), (x + w - 9, top - 12), (x + w - 1, top)],
                          fill=5)
                d.polygon([(x, top), (x + 8, top - 12), (mid, top - 12), (mid, top)], fill=4)
                d.line([(x, top), (x + 8, top - 12), (x + w - 9, top - 12)], fill=9)
            elif kind == "stepped":  # a stepped gable facing the street
                for k in range(4):
                    y0 = top - 6 * (k + 1)
                    d.rectangle([x + 2 + 4 * k, y0, x + w - 3 - 4 * k, y0 + 6], fill=1)
                    d.rectangle([x + 2 + 4 * k, y0, x + w - 3 - 4 * k, y0], fill=2)
                    d.rectangle([x + w - 4 - 4 * k, y0, x + w - 3 - 4 * k, y0 + 6], fill=3)
            elif kind == "dome":
                dw = w - 8
                d.pieslice([x + 4, top - dw // 2, x + 4 + dw, top + dw // 2], 180, 360, fill=7)
                d.pieslice([x + 4, top - dw // 2, x + dw, top + dw // 2 - 4], 180, 270, fill=6)
                d.arc([x + 4, top - dw // 2, x + 4 + dw, top + dw // 2], 195, 250, fill=8)
                d.line([(mid, top - dw // 2 - 5), (mid, top - dw // 2)], fill=7)
    index = wrapped_draw(paint)
    _palette_paint(layer, index, colours)
    for x, w, top, kind, nch in houses:  # windows: a row or two under the eaves, few lit
        if kind == "tower":
            continue
        for wy in range(top + 8, top + 32, 13):
            for wx in range(x + 8, x + w - 9, 9):
                r = rng.rand()
                if r < 0.3:
                    continue  # shuttered
                col = CITY["window"][0] * 0.7 if r < 0.42 else CITY["ember"][0] * 0.75 \
                    if r < 0.46 else dk[0]
                layer[wy + 1:wy + 5, wx:wx + 2, :3] = col  # houses never cross the seam
                layer[wy, wx, :3] = col  # a round-headed window, one pixel at the top
                if r < 0.42:
                    layer[wy + 1, wx, :3] = CITY["window"][1] * 0.65
    # the street level sinks into shadow, in three flat dithered steps
    solid = index > 0
    ys = np.arange(H)[:, None] * np.ones((1, W))
    t = 1 - px.smoothstep(248, 318, ys)
    steps = px.dither_index(t, 3)
    layer[solid & (steps == 1), :3] = layer[solid & (steps == 1), :3] * 0.5 + dk[1] * 0.5
    layer[solid & (steps == 0), :3] = dk[0] * 0.6 + dk[1] * 0.4
    _smoke(layer, [(x, w, top, k) for x, w, top, k, n in houses],
           {x: n for x, w, top, k, n in houses}, rng)
    mist_band(layer, np.full(W, 322.0), 22.0, 0.9, CITY_FOG, rng, cell=32, cap=0.35)
    return layer


def _smoke(layer, houses, chimneys, rng):
    """Thin smoke leaning right from a few chimneys, in sparse dithered pixels."""
    ys, xs = px.grid(H, W)
    n = pfbm(rng, cells=(16, 8, 4))
    for x, w, top, kind in houses:
        if chimneys[x] == 0 or rng.rand() < 0.5 or kind == "tower":
            continue
        cx, cy = x + 7, top - 24
        rise = np.clip((cy - ys) / 60.0, 0, 1)
        dx = wrapped_dx(xs, cx + 26 * rise ** 1.5)
        plume = np.exp(-(dx / (2 + 7 * rise)) ** 2) * (ys < cy) * (1 - rise)
        a = np.clip(plume * (0.4 + 0.8 * (n - 0.5)), 0, 0.35)
        levels = px.dither_index(a / 0.35, 3) * 0.35 / 2
        px.paint(layer, levels > 0, CITY_FOG, levels)


def city_near(rng):
    layer = px.new_sprite(H, W)
    dk, wood = CITY["dark"], CITY["wood"]
    # index: 1 stone base, 2 stone lit, 3 stone shadow, 4 wood base, 5 wood lit, 6 rope/iron
    colours = [dk[1], dk[2], dk[0], wood[1], wood[2], wood[0]]

    def paint(d, ox):
        # an arch spanning the top of the view, on two piers
        for x0 in (376 + ox, 548 + ox):
            d.rectangle([x0, 0, x0 + 21, H], fill=1)
            d.rectangle([x0, 0, x0 + 1, H], fill=2)
            d.rectangle([x0 + 19, 0, x0 + 21, H], fill=3)
            d.rectangle([x0 - 3, 304, x0 + 24, H], fill=1)  # plinth
            d.rectangle([x0 - 3, 304, x0 + 24, 305], fill=2)
            d.rectangle([x0 - 2, 112, x0 + 23, 117], fill=1)  # impost
            d.line([(x0 - 2, 112), (x0 + 23, 112)], fill=2)
        a0, a1, spring = 398 + ox, 547 + ox, 118
        d.rectangle([a0 - 22, 0, a1 + 22, spring], fill=1)
        d.rectangle([a0 - 22, 0, a1 + 22, 1], fill=3)
        box = [a0, spring - (a1 - a0) // 2, a1, spring + (a1 - a0) // 2]
        d.pieslice(box, 180, 360, fill=0)  # the opening
        d.rectangle([a0, spring, a1, spring + 2], fill=0)
        d.arc(box, 180, 270, fill=3)  # the soffit's shaded left half
        d.arc(box, 270, 360, fill=2)  # lit on the side that faces the light
        cx, cy, rx = (a0 + a1) / 2, spring, (a1 - a0) / 2
        for k in range(1, 8):  # voussoir joints
            ang = np.pi + np.pi * k / 8
            d.line([(cx + np.cos(ang) * rx, cy + np.sin(ang) * rx),
                    (cx + np.cos(ang) * (rx + 9), cy + np.sin(ang) * (rx + 9))], fill=3)
        # scaffolding: two poles, planks, cross braces
        for sx in (104 + ox, 168 + ox):
            d.rectangle([sx, 0, sx + 3, H], fill=4)
            d.rectangle([sx, 0, sx, H], fill=5)
        for py in (118, 208, 292):
            d.rectangle([96 + ox, py, 178 + ox, py + 3], fill=4)
            d.line([(96 + ox, py), (178 + ox, py)], fill=5)
        d.line([(107 + ox, 122), (168 + ox, 207)], fill=4, width=2)
        d.line([(168 + ox, 211), (107 + ox, 291)], fill=4, width=2)
        d.line([(107 + ox, 30), (168 + ox, 30)], fill=4, width=3)
        d.line([(140 + ox, 33), (140 + ox, 70)], fill=6)  # a rope and hook
        d.line([(138 + ox, 70), (142 + ox, 70)], fill=6)
        # a hanging chain with a dark lantern under the arch
        d.line([(472 + ox, 40), (472 + ox, 78)], fill=6)
        d.rectangle([469 + ox, 78, 475 + ox, 86], fill=6)
    index = wrapped_draw(paint)
    _palette_paint(layer, index, colours)
    grain = pnoise_2d(4, rng)
    stone = (index >= 1) & (index <= 3)
    speck = stone & (grain > 0.72) & (px.bayer(H, W) > 0.5)
    layer[speck, :3] = dk[0]
    mist_band(layer, np.full(W, 350.0) - 8 * pnoise_1d(64, rng), 26.0, 0.9, CITY_FOG, rng,
              cell=32, cap=0.32)
    return layer


# ---------------------------------------------------------------- output

PAINTERS = {
    "Forest": {"sky": forest_sky, "far": forest_far, "mid": forest_mid, "near": forest_near},
    "City": {"sky": city_sky, "far": city_far, "mid": city_mid, "near": city_near},
}
SEEDS = {"sky": 11, "far": 23, "mid": 37, "near": 41}


def build(region, name):
    """One layer as uint8 RGBA (H, W, 4); the sky is opaque, the others transparent above."""
    rng = np.random.RandomState(SEEDS[name] + (100 if region == "City" else 0))
    img = px.to_rgba8(PAINTERS[region][name](rng))
    alpha = img[..., 3]
    if name == "sky" and alpha.min() < 255:
        raise ValueError(f"{region} sky has holes")
    if name in ("far", "mid") and alpha[0].any():  # the sky must show above them
        raise ValueError(f"{region} {name} is not clear at the top")
    if name == "near" and (alpha > 0).mean() > 0.35:
        raise ValueError(f"{region} near layer covers more than 35% of the view")
    return img


def compose(layers, offsets=None):
    """Composite a region's layers (dict name -> RGBA) back to front at native size; offsets
    shift each layer left by that many native px, as a scrolled view would."""
    out = np.zeros((H, W, 3))
    for name, _, _ in reversed(LAYERS):
        img = layers[name].astype(float)
        if offsets:
            img = np.roll(img, -offsets.get(name, 0), axis=1)
        a = img[..., 3:4] / 255.0
        out = out * (1 - a) + img[..., :3] * a
    return px.to_rgba8(out)


# layer offsets for the previews: the view has moved right, so each layer has moved by its own
# parallax and the seams of all four pictures fall somewhere inside the frame
PREVIEW_OFFSETS = {"near": 420, "mid": 250, "far": 120, "sky": 16}


def generate(out):
    written = []
    for region in REGIONS:
        layers = {name: build(region, name) for name, _, _ in LAYERS}
        for name, img in layers.items():
            written.append(px.save_png(img, out / asset_path(region, name)))
        preview = px.upscale(compose(layers, PREVIEW_OFFSETS), SCALE)
        written.append(px.save_png(preview, out / f"docs/background_preview_{region.lower()}.png"))
    return written

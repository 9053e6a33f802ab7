"""The title screen backdrop: night forest rising to the hill city, drawn at 640 x 360, shown x3.

Layers, back to front: sky, stars, moon, clouds, city hill, far forest, mist, mid forest, mist,
near forest, ground, fireflies. The left third stays calm (sky, low trees, soft fog) for the title
and the menu list.
"""
import numpy as np

from . import pixel as px

W, H, SCALE = 640, 360, 3
MOON = (452.0, 86.0, 35.0)  # centre x, centre y, radius (native pixels)

SKY = px.ramp("#05061a", "#080a20", "#0c1028", "#111731", "#161f3a", "#1c2842",
              "#23334b", "#2c4151", "#365058")
MOON_RAMP = px.ramp("#a9a893", "#c8c5ac", "#e1dcc0", "#f3eed6", "#fffbea")
HALO = px.ramp("#2a3656", "#34426a", "#41527c")
CLOUD = px.ramp("#121830", "#1a2340", "#2a3658", "#56658a")
MIST = px.rgb("#3b6a68")
FIREFLY = px.ramp("#6d6428", "#c9a53e", "#ffd75e", "#fff5b8")

CITY = {
    "stone": px.ramp("#181d36", "#232a48", "#323c60", "#4c5882"),
    "roof": px.ramp("#1d4646", "#2b625d", "#3f857a", "#63ab98"),
    "hill": px.ramp("#0f1428", "#151b33", "#1d2540", "#2a3452"),
    "window": px.ramp("#3f7fb8", "#8fd4ff", "#d8f3ff"),
    "ember": px.ramp("#a8461c", "#ee8a38", "#ffc772"),
}
FOREST = {  # shadow, base, lit, rim for each depth
    "far": px.ramp("#0f2028", "#132830", "#19323a", "#3a6766"),
    "mid": px.ramp("#0b1f1a", "#102a22", "#17392b", "#2e6144"),
    "near": px.ramp("#050d0b", "#08140f", "#0d1e16", "#1c3a28"),
}


def build(seed=1207):
    rng = np.random.RandomState(seed)
    c = np.zeros((H, W, 3))
    sky(c)
    stars(c, rng)
    moon(c, rng)
    bats(c)
    clouds(c, rng)
    city(c, rng)
    layers(c, rng)
    fireflies(c, rng)
    calm_left(c)
    return px.to_rgba8(c)


# ---------------------------------------------------------------- sky


def sky_field():
    ys, xs = px.grid(H, W)
    t = (ys / 300.0) ** 1.35 * 0.85
    mx, my, _ = MOON
    glow = np.exp(-((xs - mx) ** 2 + ((ys - my) * 1.3) ** 2) / (2 * 95.0 ** 2))
    t += 0.38 * glow
    t -= 0.12 * (1 - px.smoothstep(0, 300, xs)) * (1 - px.smoothstep(120, 300, ys))
    return np.clip(t, 0, 1)


def sky(c):
    c[:] = px.dither_ramp(sky_field(), SKY)
    ys, xs = px.grid(H, W)
    mx, my, r = MOON
    d = np.hypot(xs - mx, ys - my)
    halo = np.clip(1 - (d - r) / 26.0, 0, 1) ** 1.6 * (d > r)
    c[:] = _halo_colours(c, halo)


def _halo_colours(c, halo):
    """Mix the sky towards the moon's pale halo in a few dithered steps."""
    steps = px.dither_index(halo * 1.0, 4)
    out = c.copy()
    for i, col in enumerate(HALO, start=1):
        out[steps == i] = col
    return out


def stars(c, rng):
    n = 420
    xs = rng.randint(0, W, n)
    ys = (rng.rand(n) ** 1.6 * 230).astype(int)
    mag = rng.rand(n)
    keep = rng.rand(n)
    mx, my, r = MOON
    for x, y, m, k in zip(xs, ys, mag, keep):
        calm = x < 300 and k > 0.22  # few stars behind the title
        if calm or np.hypot(x - mx, y - my) < r + 22 or y > 250 - (x > 400) * 60:
            continue
        if m > 0.965:
            _bright_star(c, x, y)
        else:
            c[y, x] = px.rgb("#c9d3f0") if m > 0.8 else px.rgb("#6f7aa4") if m > 0.45 \
                else px.rgb("#3e4670")


def _bright_star(c, x, y):
    for dx, dy in ((1, 0), (-1, 0), (0, 1), (0, -1)):
        if 0 <= x + dx < W and 0 <= y + dy < H:
            c[y + dy, x + dx] = px.rgb("#5b6794")
    c[y, x] = px.rgb("#f4f7ff")


# ---------------------------------------------------------------- moon and clouds


def moon(c, rng):
    mx, my, r = MOON
    ys, xs = px.grid(H, W)
    dx, dy = (xs - mx) / r, (ys - my) / r
    inside = dx * dx + dy * dy <= 1.0
    maria = px.fbm_2d(H, W, rng, cells=(18, 9, 4))
    limb = np.sqrt(np.clip(1 - dx * dx - dy * dy, 0, 1))
    t = 0.35 + 0.55 * limb - 0.12 * (dx + dy) - 0.75 * np.clip(maria - 0.5, 0, 1)
    craters = _craters(ys, xs, rng)
    t -= 0.18 * craters
    c[inside] = px.dither_ramp(np.clip(t, 0, 1), MOON_RAMP)[inside]
    rim = inside & ~px.erode(inside)
    c[rim & (dx + dy > 0.2)] = MOON_RAMP[1]


def _craters(ys, xs, rng):
    mx, my, r = MOON
    out = np.zeros_like(xs)
    for _ in range(7):
        a, d = rng.rand() * 2 * np.pi, rng.rand() ** 0.7 * r * 0.75
        cx, cy, cr = mx + np.cos(a) * d, my + np.sin(a) * d, 2 + rng.rand() * 3.5
        out += ((xs - cx) ** 2 + (ys - cy) ** 2) <= cr * cr
    return np.clip(out, 0, 1)


def clouds(c, rng):
    """Long thin strata drifting in front of the moon, silver on their moon-facing edge."""
    ys, xs = px.grid(H, W)
    mx, my, r = MOON
    n = px.fbm_2d(H, W, rng, cells=(64, 32, 16, 8))
    bands = [(112, 5.0, 300, 640), (128, 3.5, 360, 600), (62, 3.0, 500, 640), (150, 4.0, 250, 460)]
    for yc, th, x0, x1 in bands:
        wave = yc + 3 * np.sin(xs / 37.0 + yc)
        body = np.exp(-((ys - wave) / th) ** 2) * px.smoothstep(x0, x0 + 60, xs) \
            * (1 - px.smoothstep(x1 - 60, x1, xs))
        dens = body * (0.55 + 0.9 * (n - 0.5))
        m = dens > 0.42
        near_moon = np.exp(-((xs - mx) ** 2 + (ys - my) ** 2) / (2 * 55.0 ** 2))
        top_edge = m & ~px.shift(m, 1, 0)
        px.paint(c, m, CLOUD[1])
        px.paint(c, m & ~px.shift(m, -1, 0), CLOUD[0])
        px.paint(c, top_edge & (near_moon > 0.15), CLOUD[2])
        px.paint(c, top_edge & (near_moon > 0.55), CLOUD[3])


def bats(c):
    shape = px.ascii_mask(["#...#", ".###.", "..#.."])
    for x, y in ((404, 58), (418, 49), (497, 122)):
        h, w = shape.shape
        c[y:y + h, x:x + w][shape] = px.rgb("#0b0e1c")


# ---------------------------------------------------------------- the city on its hill


def hill_profile():
    xs = np.arange(W)
    rise = px.smoothstep(340, 492, xs)
    return 350 - 190 * rise + 3 * np.sin(xs / 11.0) * rise


BUILDINGS = [  # x, width, height above the hill crest, roof kind, roof height
    (462, 12, 48, "spire", 38), (474, 8, 30, "gable", 6), (483, 14, 22, "dome", 7),
    (498, 7, 34, "spire", 16), (506, 13, 18, "gable", 7), (520, 10, 40, "flat", 0),
    (531, 16, 26, "gable", 8), (548, 9, 58, "spire", 24), (558, 12, 20, "gable", 6),
    (571, 18, 30, "dome", 9), (590, 8, 44, "spire", 18), (599, 14, 24, "gable", 7),
    (614, 10, 34, "flat", 0), (625, 15, 22, "gable", 8),
]


def city(c, rng):
    base = hill_profile()
    crest = 162
    layer = np.zeros((H, W, 4))
    for b in BUILDINGS:
        _building(layer, rng, crest, *b)
    _wall(layer, crest)
    _hill(layer, base, rng)
    haze = 0.16
    mask = layer[..., 3] > 0
    c[mask] = layer[mask, :3] * (1 - haze) + SKY[6] * haze


def _building(layer, rng, crest, x, w, h, roof, rh):
    top = crest - h
    body = np.zeros((H, W), bool)
    body[top:crest + 4, x:x + w] = True
    roofm = _roof_mask(x, w, top, roof, rh)
    st, rf = CITY["stone"], CITY["roof"]
    px.paint_tones(layer, np.where(body, 1, -1), st)
    layer[body & (np.arange(W) >= x + w - 2)[None, :], :3] = st[0]
    layer[body & (np.arange(W) == x)[None, :], :3] = st[3] if h > 30 else st[2]
    if roof == "flat":
        _battlements(layer, x, w, top)
    else:
        px.paint_tones(layer, _roof_tones(roofm, x, w), rf)
    _windows(layer, rng, x, w, top, crest)


def _roof_mask(x, w, top, kind, rh):
    if kind == "dome":
        return px.draw_mask(W, H, lambda d: d.pieslice(
            [x - 1, top - rh, x + w, top + rh], 180, 360, fill=1))
    if kind == "spire":
        pts = [(x - 1, top), (x + w / 2 - 0.5, top - rh), (x + w, top)]
    elif kind == "gable":
        pts = [(x - 1, top), (x + w / 2 - 0.5, top - rh), (x + w, top)]
    else:
        return np.zeros((H, W), bool)
    return px.poly_mask(W, H, pts)


def _roof_tones(mask, x, w):
    xs = np.arange(W)[None, :]
    tone = np.where(mask, np.where(xs < x + w / 2, 2, 1), -1)
    tone[mask & ~px.shift(mask, 1, 0) & (xs < x + w / 2)] = 3
    tone[mask & ~px.shift(mask, 0, -1)] = 0
    return tone


def _battlements(layer, x, w, top):
    for cx in range(x, x + w, 3):
        layer[top - 2:top, cx:min(cx + 2, x + w)] = [*CITY["stone"][1], 255]


def _windows(layer, rng, x, w, top, crest):
    for wy in range(top + 3, crest - 2, 4):
        for wx in range(x + 2, x + w - 2, 3):
            r = rng.rand()
            if r < 0.22:
                layer[wy:wy + 2, wx] = [*CITY["window"][1], 255]
                layer[wy, wx] = [*CITY["window"][2], 255]
            elif r < 0.25:
                layer[wy:wy + 2, wx] = [*CITY["ember"][1], 255]
            elif r < 0.33:
                layer[wy:wy + 2, wx] = [*CITY["window"][0] * 0.6, 255]


def _wall(layer, crest):
    x0 = 452
    layer[crest - 6:crest + 6, x0:W] = [*CITY["stone"][1], 255]
    layer[crest - 6, x0:W] = [*CITY["stone"][2], 255]
    for cx in range(x0, W, 4):
        layer[crest - 8:crest - 6, cx:cx + 2] = [*CITY["stone"][1], 255]
        layer[crest - 8, cx] = [*CITY["stone"][2], 255]
    for gx in range(x0 + 18, W, 37):  # buttress towers along the wall
        layer[crest - 12:crest + 6, gx:gx + 5] = [*CITY["stone"][1], 255]
        layer[crest - 12:crest + 6, gx] = [*CITY["stone"][3], 255]
        layer[crest - 14:crest - 12, gx:gx + 5:2] = [*CITY["stone"][1], 255]
        layer[crest - 6, gx + 2] = [*CITY["ember"][2], 255]


def _hill(layer, base, rng):
    """Rocky crag under the walls: lit left slope, vertical strata, a lantern-lit road."""
    ys, xs = px.grid(H, W)
    hill = ys >= base[None, :]
    grad = np.clip((ys - base[None, :]) / 34.0, 0, 1)
    slope = np.gradient(base)[None, :]
    strata = px.noise_2d(H, W, 3, rng)[:, :] * 0.25 + 0.25 * np.sin(xs / 2.3 + ys / 9.0)
    t = 0.7 - 0.55 * grad + np.where(slope < -0.2, 0.22, 0.0) + 0.35 * (strata - 0.25)
    cols = px.dither_ramp(np.clip(t, 0, 1), CITY["hill"])
    layer[hill, :3] = cols[hill]
    layer[hill, 3] = 255
    road = [(430, 212), (470, 196), (447, 184), (488, 172), (470, 164)]
    for (x0, y0), (x1, y1) in zip(road, road[1:]):
        n = max(abs(x1 - x0), abs(y1 - y0))
        for k in range(n + 1):
            x, y = int(round(x0 + (x1 - x0) * k / n)), int(round(y0 + (y1 - y0) * k / n))
            if hill[y, x]:
                layer[y, x, :3] = CITY["hill"][3]
        layer[y1 - 2:y1, x1, :3] = CITY["ember"][1]
        layer[y1 - 2, x1, :3] = CITY["ember"][2]


# ---------------------------------------------------------------- forest layers


def pine_line(rng, base, gap, hmin, hmax, slope, xmin=-20):
    """Top profile of a row of pines standing on `base`; also which tree owns each column."""
    top = base.astype(float).copy()
    owner = np.full(W, -999)
    x = xmin + rng.randint(0, gap)
    while x < W + gap:
        h = rng.randint(hmin, hmax + 1)
        g = base[int(np.clip(x, 0, W - 1))]
        hw = int(h / slope) + 2
        for d in range(-hw, hw + 1):
            xx = x + d
            if 0 <= xx < W:
                tier = 1.6 * ((abs(d) + (h % 3)) % 3 == 0) * (abs(d) > 0)
                y = g - h + abs(d) * slope + tier
                if y < top[xx]:
                    top[xx], owner[xx] = y, x
        x += rng.randint(max(2, gap // 2), gap + 1)
    return np.floor(top).astype(int), owner


def paint_trees(c, top, owner, pal, fade=40.0):
    ys = np.arange(H)[:, None]
    xs = np.arange(W)[None, :]
    inside = ys >= top[None, :]
    depth = (ys - top[None, :]) / fade
    lit_side = xs < owner[None, :]
    t = np.where(lit_side, 0.62, 0.38) - 0.55 * np.clip(depth, 0, 1)
    cols = px.dither_ramp(np.clip(t, 0, 1) * np.ones((H, W)), pal[:3])
    c[inside] = cols[inside]
    edge = inside & ~px.shift(inside, 1, 0) | inside & ~px.shift(inside, 0, 1)
    rim = edge & lit_side & (depth < 0.5)
    c[rim] = pal[3]


def mist(c, yline, thick, strength, rng, colour=MIST, cell=40):
    ys, xs = px.grid(H, W)
    n = px.fbm_2d(H, W, rng, cells=(cell * 2, cell, cell // 2))
    band = np.exp(-((ys - yline[None, :]) / thick) ** 2)
    alpha = np.clip(band * strength * (0.7 + 0.8 * (n - 0.5)), 0, 0.6)
    levels = px.dither_index(alpha / 0.6, 4) * 0.6 / 3
    px.paint(c, levels > 0, colour, levels)


def layers(c, rng):
    xs = np.arange(W)
    rise = px.smoothstep(140, 560, xs)
    far_base = 322 - 128 * rise + 4 * np.sin(xs / 23.0)
    far_top, far_own = pine_line(rng, far_base, 7, 8, 22, 2.4)
    far_top = np.maximum(far_top, far_base - 11 - 18 * px.smoothstep(150, 300, xs))
    paint_trees(c, far_top, far_own, FOREST["far"], fade=45)
    mist(c, far_base + 2, 8.0, 0.65, rng)
    mid_base = 340 - 96 * px.smoothstep(210, 640, xs) + 3 * np.sin(xs / 17.0)
    mid_top, mid_own = pine_line(rng, mid_base, 11, 16, 44, 2.1)
    mid_top = np.maximum(mid_top, mid_base - 12 - 40 * px.smoothstep(200, 360, xs))
    paint_trees(c, mid_top, mid_own, FOREST["mid"], fade=50)
    mist(c, mid_base - 2, 9.0, 0.7, rng, cell=32)
    near(c, rng)


def spruce_mask(cx, peak, base, slope, tier=12):
    """A tall spruce built row by row: each branch tier flares out, then steps back in."""
    ys, xs = px.grid(H, W)
    depth = ys - peak
    flare = 0.6 + 0.4 * ((depth % tier) / tier) ** 0.7
    half = depth / slope * flare + 0.6
    trunk = (np.abs(xs - cx) < 2.5) & (ys < base)
    return ((np.abs(xs - cx) <= half) & (depth >= 0) & (ys < base)) | trunk & (depth > 0)


def paint_solid(c, mask, cx, pal):
    """Near silhouettes: lit left faces, shaded right faces, a cold rim on top-left edges."""
    xs = np.arange(W)[None, :]
    inside = mask
    c[inside & (xs < cx)] = pal[1]
    c[inside & (xs >= cx)] = pal[0]
    rim = inside & (~px.shift(inside, 1, 0) | ~px.shift(inside, 0, 1)) & (xs < cx)
    c[rim] = pal[3]
    c[px.shift(rim, 0, 1) & inside & ~rim & (xs < cx)] = pal[2]


def near(c, rng):
    xs = np.arange(W)
    pal = FOREST["near"]
    ground = 344 - 14 * px.smoothstep(300, 640, xs) + 3 * np.sin(xs / 29.0)
    trees = [(372, 288, 3.1), (404, 300, 3.4), (455, 246, 3.0), (497, 270, 3.3),
             (530, 226, 2.9), (571, 262, 3.2), (606, 196, 3.0), (641, 20, 5.2)]
    for cx, peak, slope in trees:
        g = ground[min(cx, W - 1)] + 4
        paint_solid(c, spruce_mask(cx, peak, g, slope, tier=9 + (cx % 5)), cx, pal)
    _ground(c, rng, ground, pal)


def _ground(c, rng, ground, pal):
    """Dark forest floor with grass tufts and ferns catching a thin rim of moonlight."""
    ys = np.arange(H)[:, None]
    floor = ys >= ground[None, :]
    tufts = np.zeros((H, W), bool)
    for x in range(W):
        if rng.rand() < 0.45:
            h = rng.randint(1, 6)
            g = int(ground[x])
            tufts[g - h:g, x] = True
    for x in rng.randint(0, W, 18):  # ferns: little fans of blades
        g = int(ground[x])
        for k in range(-3, 4):
            if 0 <= x + k < W:
                tufts[g - 6 + abs(k):g, x + k] = True
    solid = floor | tufts
    c[solid] = pal[0]
    rim = solid & ~px.shift(solid, 1, 0) & (np.arange(W)[None, :] % 2 == 0)
    c[rim] = pal[2]
    c[rim & (rng.rand(H, W) < 0.25)] = pal[3]


def fireflies(c, rng):
    spots = 0
    while spots < 26:
        x, y = rng.randint(250, 630), rng.randint(200, 348)
        if y < 330 - 0.25 * (x - 250) and rng.rand() < 0.7:
            continue
        big = rng.rand() < 0.3
        if big:
            for dx, dy in ((1, 0), (-1, 0), (0, 1), (0, -1)):
                c[y + dy, x + dx] = c[y + dy, x + dx] * 0.4 + FIREFLY[1] * 0.6
        c[y, x] = FIREFLY[3] if big else FIREFLY[2]
        spots += 1


def calm_left(c):
    """Darken the left third a little in ordered-dither steps so white text reads on it."""
    ys, xs = px.grid(H, W)
    shade = 0.22 * (1 - px.smoothstep(120, 420, xs))
    levels = px.dither_index(shade / 0.22, 3) * 0.11
    c *= (1 - levels)[..., None]


def render():
    return px.upscale(build(), SCALE)

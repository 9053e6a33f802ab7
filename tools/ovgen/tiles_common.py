"""Drawing helpers shared by the Forest and City tilesets.

Every tile is a float RGBA canvas of 32 x 32 (`pixel.new_sprite`). Terrain is painted from distance
fields: for each pixel, how far it is from the open air around its cell (given which neighbours
are open). Two tiles that share an edge see the same air along it, and every texture repeats
every 32 px, so neighbouring tiles join without a seam whichever variants meet.
"""
import numpy as np

from . import pixel as px

T = 32

# ---------------------------------------------------------------- wrapping noise


def pnoise(size, cell, rng):
    """Smooth value noise on a size x size grid that wraps at its edges (cell divides size)."""
    n = size // cell
    knots = rng.rand(n, n)
    y = np.arange(size)[:, None] / cell
    x = np.arange(size)[None, :] / cell
    iy, ix = np.floor(y).astype(int), np.floor(x).astype(int)
    fy, fx = y - iy, x - ix
    fy, fx = fy * fy * (3 - 2 * fy), fx * fx * (3 - 2 * fx)
    k = lambda a, b: knots[a % n, b % n]  # noqa: E731
    top = k(iy, ix) * (1 - fx) + k(iy, ix + 1) * fx
    bottom = k(iy + 1, ix) * (1 - fx) + k(iy + 1, ix + 1) * fx
    return top * (1 - fy) + bottom * fy


def pfbm(size, rng, cells=(16, 8, 4)):
    total, weight = np.zeros((size, size)), 0.0
    for k, cell in enumerate(cells):
        total += 0.5 ** k * pnoise(size, cell, rng)
        weight += 0.5 ** k
    return total / weight


def pnoise_1d(size, cell, rng):
    """Wrapping 1-D value noise in [0, 1]."""
    n = size // cell
    knots = rng.rand(n)
    x = np.arange(size) / cell
    i = np.floor(x).astype(int)
    f = x - i
    f = f * f * (3 - 2 * f)
    return knots[i % n] * (1 - f) + knots[(i + 1) % n] * f


def wrap(d, period=T):
    """Signed shortest offset on a circle of `period` px."""
    return (d + period / 2) % period - period / 2


# ---------------------------------------------------------------- terrain fields

_RECTS = {  # open neighbour -> its cell in tile coordinates (x0, y0, x1, y1)
    "N": (0, -T, T, 0), "S": (0, T, T, 2 * T), "W": (-T, 0, 0, T), "E": (T, 0, 2 * T, T),
    "NE": (T, -T, 2 * T, 0), "NW": (-T, -T, 0, 0), "SE": (T, T, 2 * T, 2 * T),
    "SW": (-T, T, 0, 2 * T),
}


class Fields:
    """Distances (px) from each pixel centre of a terrain tile to the open air around it.

    dn / ds / dw / de: to air above / below / left / right (diagonal cells count for both of their
    sides); cn / cs / cw / ce: the same through the four edge cells only; d: to any air.
    metric 'round' is Euclidean (organic corners), 'square' is Chebyshev (masonry corners).
    """

    def __init__(self, open_cells, metric="round"):
        self.open = set(open_cells)
        self.y, self.x = px.grid(T, T)
        self.metric = metric
        self.dn = self._dist(("N", "NE", "NW"))
        self.ds = self._dist(("S", "SE", "SW"))
        self.dw = self._dist(("W", "NW", "SW"))
        self.de = self._dist(("E", "NE", "SE"))
        self.cn, self.cs = self._dist(("N",)), self._dist(("S",))
        self.cw, self.ce = self._dist(("W",)), self._dist(("E",))
        self.d = np.minimum(np.minimum(self.dn, self.ds), np.minimum(self.dw, self.de))

    def _dist(self, keys):
        d = np.full((T, T), np.inf)
        for k in keys:
            if k in self.open:
                x0, y0, x1, y1 = _RECTS[k]
                dx = np.abs(np.clip(self.x, x0, x1) - self.x)
                dy = np.abs(np.clip(self.y, y0, y1) - self.y)
                dist = np.hypot(dx, dy) if self.metric == "round" else np.maximum(dx, dy)
                d = np.minimum(d, dist)
        return d

    def corner_cut(self, r=3.5):
        """Pixels cut away to round the convex corners (two open edge cells that meet)."""
        cut = np.zeros((T, T), bool)
        for a, b in (("cn", "cw"), ("cn", "ce"), ("cs", "cw"), ("cs", "ce")):
            da, db = getattr(self, a), getattr(self, b)
            cut |= (da < r) & (db < r) & (np.hypot(r - da, r - db) > r)
        return cut


def terrain_cells():
    """(tile index, open neighbour cells, kind, variant) for every terrain tile of the catalogue."""
    from . import tile_catalog as tc
    out = []
    names = (("N", tc.N), ("E", tc.E), ("S", tc.S), ("W", tc.W))
    for mask in range(16):
        out.append((tc.TERRAIN[mask], {n for n, bit in names if not mask & bit}, "edge", 0))
    for idx, diag in ((tc.INNER_NE, "NE"), (tc.INNER_NW, "NW"), (tc.INNER_SE, "SE"),
                      (tc.INNER_SW, "SW")):
        out.append((idx, {diag}, "edge", 0))
    for k, idx in enumerate(tc.FILL):
        out.append((idx, set(), "fill", k))
    for k, idx in enumerate(tc.FILL_DETAIL):
        out.append((idx, set(), "detail", k))
    for k, idx in enumerate(tc.TOP_VARIANT):
        out.append((idx, {"N"}, "top", k))
    return out


def interior_window(margin=5):
    """1 inside the tile, falling to 0 within `margin` px of its edges: for details that must not
    reach a neighbour."""
    y, x = px.grid(T, T)
    e = np.minimum(np.minimum(x, T - x), np.minimum(y, T - y))
    return np.clip((e - 1) / margin, 0, 1)


# ---------------------------------------------------------------- shapes


def canvas(h=T, w=T):
    return px.new_sprite(h, w)


def ellipse(h, w, cx, cy, rx, ry):
    y, x = px.grid(h, w)
    return ((x - cx) / rx) ** 2 + ((y - cy) / ry) ** 2 <= 1.0


def rect(h, w, x0, y0, x1, y1):
    """Pixels with x0 <= x < x1 and y0 <= y < y1."""
    m = np.zeros((h, w), bool)
    m[max(0, y0):max(0, y1), max(0, x0):max(0, x1)] = True
    return m


def lines(h, w, points, width=1):
    return px.draw_mask(w, h, lambda d: d.line([tuple(p) for p in points], fill=1, width=width))


def pixels(h, w, coords):
    m = np.zeros((h, w), bool)
    for x, y in coords:
        if 0 <= x < w and 0 <= y < h:
            m[int(y), int(x)] = True
    return m


def shade(c, mask, ramp3, depth=1, rim=None):
    """Three tones, lit on the top left, shadowed on the bottom right; rim: an extra outer tone
    on the shadow side (a darker edge that separates the shape from what is behind)."""
    tone = px.bevel(mask, depth)
    px.paint_tones(c, tone, ramp3)
    if rim is not None:
        edge = mask & ~(px.shift(mask, -1, 0) & px.shift(mask, 0, -1))
        px.paint(c, edge, rim)
    return c


def fill(c, mask, colour, alpha=1.0):
    return px.paint(c, mask, colour, alpha)


def strand(x0, y0, length, sway, phase, step=1.0, freq=0.35):
    """Points of a hanging strand: from (x0, y0) straight down with a gentle sine sway."""
    pts = []
    for i in range(int(length / step) + 1):
        y = y0 + i * step
        pts.append((x0 + sway * np.sin(phase + i * step * freq) * min(1.0, i / 6.0), y))
    return pts


def strand_mask(h, w, pts):
    m = np.zeros((h, w), bool)
    for x, y in pts:
        xi, yi = int(round(x - 0.5)), int(round(y - 0.5))
        if 0 <= xi < w and 0 <= yi < h:
            m[yi, xi] = True
    # close diagonal gaps so the strand reads as one line
    return m


def mirror_x(c):
    return c[:, ::-1].copy()


def glow(c, cx, cy, radius, colour, strength=0.35):
    """A soft halo in two flat steps of partial alpha (only on empty or dark pixels)."""
    h, w = c.shape[:2]
    y, x = px.grid(h, w)
    d = np.hypot(x - cx, y - cy)
    outer = (d < radius) & (c[..., 3] < 255)
    inner = (d < radius * 0.6) & (c[..., 3] < 255)
    _add_light(c, outer, colour, strength * 0.5)
    _add_light(c, inner, colour, strength * 0.5)


def _add_light(c, mask, colour, a):
    colour = np.asarray(colour, float)
    empty = mask & (c[..., 3] == 0)
    c[empty, :3] = colour
    c[empty, 3] = 255 * a
    part = mask & ~empty
    if part.any():
        old_a = c[part, 3] / 255.0
        new_a = old_a + a * (1 - old_a)
        c[part, :3] = (c[part, :3] * old_a[:, None] + colour * a * (1 - old_a)[:, None]) \
            / new_a[:, None]
        c[part, 3] = 255 * new_a


def blit(dst, src, x, y):
    """Alpha-composite a small RGBA canvas onto another at (x, y), clipped."""
    h, w = src.shape[:2]
    H, W = dst.shape[:2]
    x0, y0, x1, y1 = max(0, x), max(0, y), min(W, x + w), min(H, y + h)
    if x0 >= x1 or y0 >= y1:
        return dst
    s = src[y0 - y:y1 - y, x0 - x:x1 - x]
    d = dst[y0:y1, x0:x1]
    sa, da = s[..., 3:4] / 255.0, d[..., 3:4] / 255.0
    oa = sa + da * (1 - sa)
    rgb = np.where(oa > 0, (s[..., :3] * sa + d[..., :3] * da * (1 - sa)) / np.maximum(oa, 1e-6), 0)
    d[..., :3] = rgb
    d[..., 3:4] = oa * 255
    return dst


# ---------------------------------------------------------------- flames and particles


def flame(h, w, cx, base_y, height, width, frame, ramp, seed=0):
    """A flickering flame (frames 0..3 loop), tip swaying; ramp: dark red .. white core."""
    c = canvas(h, w)
    y, x = px.grid(h, w)
    sway = [0.0, 1.0, 0.3, -0.8][frame % 4]
    hs = height * [1.0, 0.86, 1.08, 0.92][frame % 4]
    t = np.clip((base_y - y) / hs, 0, 1.2)  # 0 at the base, 1 at the tip
    centre = cx + sway * t * t * 2.0
    half = width / 2 * np.sqrt(np.clip(1 - t, 0, 1)) * (0.55 + 0.45 * np.sin(np.clip(t, 0, 1)
                                                                             * np.pi * 0.9 + 0.6))
    body = (np.abs(x - centre) <= half + 0.25) & (y <= base_y) & (t < 1)
    core = (np.abs(x - centre) <= half * 0.45) & body & (t < 0.55)
    mid = (np.abs(x - centre) <= half * 0.75) & body & (t < 0.8)
    px.paint(c, body, ramp[1])
    px.paint(c, mid, ramp[2])
    px.paint(c, core, ramp[3])
    hot = core & (t < 0.3) & (np.abs(x - centre) <= half * 0.25 + 0.3)
    px.paint(c, hot, ramp[4])
    edge = body & ~px.erode(body) & (x > centre)
    px.paint(c, edge & ~core, ramp[0])
    # a spark that rises and fades over the loop
    sy = int(base_y - hs - 1 - frame * 2)
    sx = int(round(cx + [1, -1, 2, 0][frame % 4]))
    if 0 <= sy < h and frame != 3:
        c[sy, sx] = [*ramp[3], 255]
    return c


def cells_texture(size, points):
    """Wrapping Voronoi cells: (cell id of each pixel, distance to the nearest cell border)."""
    y, x = px.grid(size, size)
    d = np.stack([np.hypot(wrap(x - px_, size), wrap(y - py_, size)) for px_, py_ in points])
    order = np.sort(d, axis=0)
    return np.argmin(d, axis=0), (order[1] - order[0]) / 2


def bevel_wrapped(mask, depth=1):
    """pixel.bevel on a mask that wraps around the tile's edges."""
    h, w = mask.shape
    big = np.tile(mask, (3, 3))
    return px.bevel(big, depth)[h:2 * h, w:2 * w]


def dim(ramp, towards, t=0.4):
    """A ramp pulled towards a colour (used for details half buried in a darker material)."""
    return np.asarray(ramp, float) * (1 - t) + np.asarray(towards, float) * t


def shade_silhouette(c, m, colours, tiling=False):
    """A foreground silhouette: a dark base, a faint rim towards the top-left light, a darker lower
    edge and a few specks of moonlight near the top. colours: the four tones, darkest first.
    A tiling piece (a mass that goes on into its neighbours) gets no rim along the tile's sides."""
    yy, xx = px.grid(T, T)
    fill(c, m, colours[1])
    tone = px.bevel(np.pad(m, 1, mode="edge"), 1)[1:-1, 1:-1] if tiling else px.bevel(m, 1)
    fill(c, m & (tone == 2) & (xx + yy < 44), colours[2])
    fill(c, m & (tone == 0), colours[0])
    fill(c, m & (tone == 2) & ((xx * 7 + yy * 3) % 9 == 0) & (yy < 20), colours[3])
    return c

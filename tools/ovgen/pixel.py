"""Shared pixel-art helpers: colours, ordered dithering, noise, masks, shading, upscaling, PNG output.

Pictures are numpy arrays: RGB canvases are float (H, W, 3) in 0..255 while drawing, sprites are
uint8 (H, W, 4). Masks are bool (H, W). Nothing here reads the clock or an unseeded random source.
"""
from pathlib import Path

import numpy as np
from PIL import Image, ImageDraw

# ---------------------------------------------------------------- colours


def rgb(hex_code):
    """'#rrggbb' -> (r, g, b)."""
    h = hex_code.lstrip("#")
    return tuple(int(h[i:i + 2], 16) for i in (0, 2, 4))


def ramp(*hex_codes):
    """A palette ramp as an (N, 3) float array, darkest first."""
    return np.array([rgb(h) for h in hex_codes], dtype=float)


# Interface gold, shared by every menu piece and emblem (darkest first).
GOLD = ramp("#2a1608", "#6b3f14", "#a8701f", "#d9a53a", "#f5d272", "#fff3c4")
INK = rgb("#140c0a")  # the dark 1 px outline of interface pieces

# ---------------------------------------------------------------- dithering

_BAYER4 = np.array([[0, 8, 2, 10], [12, 4, 14, 6], [3, 11, 1, 9], [15, 7, 13, 5]], float)


def bayer(h, w):
    """Ordered-dither thresholds in (0, 1), tiled over an h x w grid."""
    t = (_BAYER4 + 0.5) / 16.0
    return np.tile(t, (h // 4 + 1, w // 4 + 1))[:h, :w]


def dither_index(t, n):
    """Map a field t in [0, 1] onto n palette steps with ordered dithering."""
    v = np.clip(t, 0.0, 1.0) * (n - 1)
    base = np.floor(v)
    step = (v - base) > bayer(*t.shape)
    return np.clip(base + step, 0, n - 1).astype(int)


def dither_ramp(t, colours):
    """Colour a field t in [0, 1] with a ramp, dithered between neighbouring steps."""
    return colours[dither_index(t, len(colours))]


def dither_mask(alpha):
    """A bool mask whose local density follows alpha in [0, 1]."""
    return np.clip(alpha, 0.0, 1.0) > bayer(*alpha.shape)


# ---------------------------------------------------------------- noise


def _smooth(t):
    return t * t * (3.0 - 2.0 * t)


def noise_1d(n, cell, rng):
    """Smooth value noise in [0, 1] over n samples, one random knot every `cell` samples."""
    knots = rng.rand(n // cell + 2)
    x = np.arange(n) / cell
    i = np.floor(x).astype(int)
    f = _smooth(x - i)
    return knots[i] * (1 - f) + knots[i + 1] * f


def noise_2d(h, w, cell, rng):
    """Smooth value noise in [0, 1] on an h x w grid with square cells."""
    grid = rng.rand(h // cell + 2, w // cell + 2)
    y = np.arange(h)[:, None] / cell
    x = np.arange(w)[None, :] / cell
    iy, ix = np.floor(y).astype(int), np.floor(x).astype(int)
    fy, fx = _smooth(y - iy), _smooth(x - ix)
    top = grid[iy, ix] * (1 - fx) + grid[iy, ix + 1] * fx
    bottom = grid[iy + 1, ix] * (1 - fx) + grid[iy + 1, ix + 1] * fx
    return top * (1 - fy) + bottom * fy


def fbm_2d(h, w, rng, cells=(48, 24, 12, 6)):
    """Several octaves of value noise, normalised to [0, 1]."""
    total = np.zeros((h, w))
    weight = 0.0
    for k, cell in enumerate(cells):
        amp = 0.5 ** k
        total += amp * noise_2d(h, w, cell, rng)
        weight += amp
    return total / weight


def smoothstep(e0, e1, x):
    return _smooth(np.clip((np.asarray(x, float) - e0) / (e1 - e0), 0.0, 1.0))


# ---------------------------------------------------------------- masks and shapes


def grid(h, w):
    """Pixel-centre coordinates (ys, xs) of an h x w grid."""
    return np.mgrid[0:h, 0:w] + 0.5


def draw_mask(w, h, paint):
    """Rasterise PIL drawing calls (no anti-aliasing) into a bool mask: paint(draw)."""
    img = Image.new("L", (w, h), 0)
    paint(ImageDraw.Draw(img))
    return np.array(img) > 0


def poly_mask(w, h, points):
    return draw_mask(w, h, lambda d: d.polygon([tuple(p) for p in points], fill=1))


def disc_mask(h, w, cx, cy, r):
    ys, xs = grid(h, w)
    return (xs - cx) ** 2 + (ys - cy) ** 2 <= r * r


def ascii_mask(rows):
    """A mask from strings: any character but '.' is set."""
    return np.array([[ch != "." for ch in row] for row in rows])


def shift(mask, dy, dx):
    """Move a mask by (dy, dx); pixels shifted in are False."""
    out = np.zeros_like(mask)
    h, w = mask.shape
    ys, yd = (slice(0, h - dy), slice(dy, h)) if dy >= 0 else (slice(-dy, h), slice(0, h + dy))
    xs, xd = (slice(0, w - dx), slice(dx, w)) if dx >= 0 else (slice(-dx, w), slice(0, w + dx))
    out[yd, xd] = mask[ys, xs]
    return out


def dilate(mask, diagonal=False):
    out = mask | shift(mask, 1, 0) | shift(mask, -1, 0) | shift(mask, 0, 1) | shift(mask, 0, -1)
    if diagonal:
        for dy in (-1, 1):
            for dx in (-1, 1):
                out |= shift(mask, dy, dx)
    return out


def erode(mask):
    return ~dilate(~mask)


def outline_of(mask, diagonal=False):
    """The 1 px ring just outside a mask."""
    return dilate(mask, diagonal) & ~mask


def bevel(mask, depth=1):
    """Tone map for light from the top left: 0 shadow edge, 1 base, 2 lit edge (-1 outside)."""
    tone = np.where(mask, 1, -1)
    for d in range(1, depth + 1):
        shade = mask & ~(shift(mask, -d, 0) & shift(mask, 0, -d))
        lit = mask & ~(shift(mask, d, 0) & shift(mask, 0, d))
        tone[shade & (tone == 1)] = 0
        tone[lit] = 2
    return tone


# ---------------------------------------------------------------- painting


def paint(canvas, mask, colour, alpha=1.0):
    """Blend a colour into an RGB(A) canvas where mask is set (alpha may be an array)."""
    colour = np.asarray(colour, float)
    a = np.where(mask, alpha, 0.0)
    mix = a
    if canvas.shape[-1] == 4:
        mix = np.where(mask & (canvas[..., 3] == 0), 1.0, a)  # no dark fringe on empty pixels
        canvas[..., 3] = np.maximum(canvas[..., 3], 255.0 * a)
    canvas[..., :3] = canvas[..., :3] * (1 - mix[..., None]) + colour * mix[..., None]
    return canvas


def paint_tones(canvas, tone, colours):
    """Paint a tone map (values >= 0 index colours) onto a canvas."""
    for i, c in enumerate(colours):
        paint(canvas, tone == i, c)
    return canvas


def new_sprite(h, w):
    """A transparent RGBA float canvas."""
    return np.zeros((h, w, 4), float)


def to_rgba8(canvas):
    """Round a canvas to uint8 RGBA; RGB canvases become opaque."""
    c = np.clip(np.rint(canvas), 0, 255).astype(np.uint8)
    if c.shape[-1] == 3:
        c = np.concatenate([c, np.full(c.shape[:2] + (1,), 255, np.uint8)], axis=-1)
    c[c[..., 3] == 0, :3] = 0  # no stray colour under transparent pixels
    return c


def upscale(img, k):
    """Nearest-neighbour upscale by an integer factor: every pixel becomes a k x k block."""
    return np.repeat(np.repeat(img, k, axis=0), k, axis=1)


def scale_nearest(img, s):
    """Scale like an unsmoothed SFML texture: each output pixel samples the texel under its centre."""
    h, w = img.shape[:2]
    oh, ow = max(1, int(round(h * s))), max(1, int(round(w * s)))
    ys = np.minimum(((np.arange(oh) + 0.5) / s).astype(int), h - 1)
    xs = np.minimum(((np.arange(ow) + 0.5) / s).astype(int), w - 1)
    return img[ys][:, xs]


def sheet(clips, fw, fh):
    """A sprite sheet: one row per clip, its frames (fh x fw RGBA) side by side from the left."""
    cols = max(len(frames) for _, frames in clips)
    img = np.zeros((fh * len(clips), fw * cols, 4), np.uint8)
    for row, (_, frames) in enumerate(clips):
        for col, f in enumerate(frames):
            img[row * fh:(row + 1) * fh, col * fw:(col + 1) * fw] = f
    return img


def save_png(img, path):
    """Write 8-bit RGBA, non-interlaced, with no metadata, so equal pixels give equal bytes."""
    path = Path(path)
    path.parent.mkdir(parents=True, exist_ok=True)
    arr = img if img.dtype == np.uint8 else to_rgba8(img)
    Image.fromarray(arr, "RGBA").save(path, format="PNG", optimize=False, compress_level=9)
    return path

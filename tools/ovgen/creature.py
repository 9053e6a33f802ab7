"""Pieces shared by the small enemies (slime, frog, carnivorous plant).

- `Key`: the base of their key poses. `rig.render` reads `ghosts`, `dust` and `glint` from any pose,
  and `tween` / `timeline` fill a clip from key poses of any such dataclass.
- `relief_tone`: three tones and a highlight for a soft, rounded shape lit from the top left. The
  shape is raised into a dome from its distance to the edge, and its slope is lit, so a blob gets a
  bright shoulder on the top left and a dark belly on the bottom right, not just a lit rim.
- `star`: the hard-pixel flash that marks a dangerous frame.
- `pose_sheet`: a review picture with every frame x3, labelled, over the region's ground colours,
  with boxes (hurtbox, attack box) and points (launch point) drawn on it.
"""
from dataclasses import dataclass, fields, replace

import numpy as np
from PIL import Image, ImageDraw, ImageFont

from . import pixel as px
from . import rig

# ---------------------------------------------------------------- poses


@dataclass(frozen=True)
class Key:
    """What every pose carries for the rig's renderer, whatever the creature."""
    ghosts: tuple = ()     # (dx, dy, strength) afterimages
    dust: tuple = ()       # (x, y, size) puffs on the ground
    glint: float = -1.0    # the knight's blade glint; creatures have no blade
    tags: tuple = ()       # free words: "tell", "flash", ...

    def but(self, **changes):
        return replace(self, **changes)


_STEPPED = {"ghosts", "dust", "glint", "tags"}


def _mix(a, b, t):
    if isinstance(a, tuple):
        return tuple(_mix(x, y, t) for x, y in zip(a, b))
    if isinstance(a, (int, float)) and not isinstance(a, bool):
        return a + (b - a) * t
    return a if t < 0.5 else b


def tween(a, b, t):
    """The pose a fraction t of the way from a to b; effects and tags come from the nearer key."""
    values = {}
    for f in fields(a):
        va, vb = getattr(a, f.name), getattr(b, f.name)
        values[f.name] = (va if t < 0.5 else vb) if f.name in _STEPPED else _mix(va, vb, t)
    return type(a)(**values)


def timeline(n, keys):
    """n frames from keys [(frame, pose, ease)], eased by the later key's curve (see rig.EASE)."""
    frames = []
    for i in range(n):
        k = max(j for j, key in enumerate(keys) if key[0] <= i)
        f0, p0 = keys[k][0], keys[k][1]
        if k + 1 == len(keys) or f0 == i:
            frames.append(p0)
            continue
        f1, p1, ease = keys[k + 1]
        frames.append(tween(p0, p1, rig.EASE[ease]((i - f0) / (f1 - f0))))
    return frames


# ---------------------------------------------------------------- soft shading

# towards the top left of the picture and out of it (x right, y down, z to the viewer)
LIGHT = np.array([-0.55, -0.62, 0.56])
LIGHT = LIGHT / np.linalg.norm(LIGHT)


def _erode8(mask):
    return ~px.dilate(~mask, diagonal=True)


def edge_distance(mask, limit):
    """Steps from outside to each pixel of the mask (1 on its edge), counted up to `limit`;
    alternating 4- and 8-neighbour steps keep the fronts roughly round."""
    d = np.zeros(mask.shape)
    cur = mask.copy()
    for k in range(limit):
        if not cur.any():
            break
        d += cur
        cur = px.erode(cur) if k % 2 else _erode8(cur)
    return d


def _blur(a, r):
    """Box blur (window 2r + 1), zero outside."""
    if r <= 0:
        return a
    k = 2 * r + 1
    p = np.pad(a, r)
    c = np.cumsum(np.pad(p, ((1, 0), (0, 0))), axis=0)
    a = (c[k:] - c[:-k]) / k
    c = np.cumsum(np.pad(a, ((0, 0), (1, 0))), axis=1)
    return (c[:, k:] - c[:, :-k]) / k


def relief(mask, radius, depth=1.0):
    """Light on the shape raised into a dome: -1 (facing away) .. 1 (facing the light)."""
    d = np.minimum(edge_distance(mask, radius + 1) / radius, 1.0)
    height = np.sqrt(np.clip(1.0 - (1.0 - d) ** 2, 0.0, 1.0)) * radius * depth
    height = _blur(_blur(height * mask, 1), 1)
    gy, gx = np.gradient(height)
    n = np.stack([-gx, -gy, np.ones_like(gx)], axis=-1)
    n /= np.linalg.norm(n, axis=-1, keepdims=True)
    return np.where(mask, n @ LIGHT, -1.0)


def relief_tone(mask, radius, cuts=(0.38, 0.62, 0.9), depth=1.0, dither=0.0):
    """A tone map for `rig.Part.tone`: -1 outside, 0 shadow, 1 base, 2 light, 3 highlight.
    `cuts` are the light levels where each tone starts; `dither` blends the bands' edges over that
    many light units with the ordered-dither pattern (0: clean bands)."""
    light = relief(mask, radius, depth)
    if dither:
        light = light + (px.bayer(*mask.shape) - 0.5) * dither
    tone = np.zeros(mask.shape, int)
    for c in cuts:
        tone += light >= c
    return np.where(mask, tone, -1)


# ---------------------------------------------------------------- composing parts


def compose(parts, w, h):
    """Parts (`rig.Part`, back to front) into a uint8 RGBA frame, in the rig's style: three tones
    per part (its own `tone` map, or lit from the top left by `rig.tone_map`), details, a 1 px line
    in the back part's ink where a part of another group passes in front, a dark outline around the
    silhouette in the ink of the part it touches, and a rim of the part's brightest tone on the
    edges that face the top left (only those: a slope going down to the right stays unlit).
    Parts with `outline` False (sprays, glows) draw no lines and no outline of their own."""
    owner = np.full((h, w), -1)
    for i, p in enumerate(parts):
        owner[p.mask] = i
    img = np.zeros((h, w, 4), float)
    for i, p in enumerate(parts):
        vis = owner == i
        if not vis.any():
            continue
        tone = p.tone if p.tone is not None else rig.tone_map(p.mask, 1, 1 if p.mask.sum() < 60 else 2)
        cols = p.material.tones(p.dim)
        for k, c in enumerate(cols):
            img[vis & (tone == k), :3] = c
        for dm, dt in p.details:
            sel = vis & dm
            img[sel, :3] = p.material.ink if dt == "ink" else cols[dt]
        img[vis, 3] = 255
    group = np.array([p.group for p in parts] + [""], dtype=object)
    inked = np.array([p.outline for p in parts] + [False])
    lined = np.zeros((h, w), bool)
    for dy, dx in ((1, 0), (-1, 0), (0, 1), (0, -1)):
        nb = px.shift(owner + 1, dy, dx) - 1
        lined |= (owner >= 0) & (nb > owner) & (group[owner] != group[nb]) & inked[owner] & inked[nb]
    sil = np.zeros((h, w), bool)
    for i, p in enumerate(parts):
        img[lined & (owner == i), :3] = p.material.ink
        if p.outline:
            sil |= owner == i
    faces_light = ~(px.shift(sil, 1, 0) & px.shift(sil, 0, 1))      # open above or to the left
    faces_away = ~(px.shift(sil, -1, 0) & px.shift(sil, 0, -1))     # open below or to the right
    rim = sil & faces_light & ~faces_away & ~lined
    for i, p in enumerate(parts):
        if p.outline and not p.dim:
            img[rim & (owner == i), :3] = p.material.rim
    ring = px.outline_of(sil) & (owner < 0)
    for dy, dx in ((1, 0), (0, 1), (-1, 0), (0, -1)):
        src = px.shift(np.where(sil, owner, -1) + 1, dy, dx) - 1
        for i, p in enumerate(parts):
            sel = ring & (src == i) & (img[..., 3] == 0)
            img[sel, :3] = p.material.ink
            img[sel, 3] = 255
    return px.to_rgba8(img)


# ---------------------------------------------------------------- the tell


def star(img, c, colours, size, clamp=True):
    """A four-point flash on pixel c: a white core, arms fading through `colours` (brightest
    first, four of them), short diagonals. Drawn over everything."""
    h, w = img.shape[:2]
    cx, cy = c
    if clamp:
        cx, cy = min(max(cx, size + 1), w - size - 2), min(max(cy, size + 1), h - size - 2)
    pts = [(0, 0, 0), (1, 0, 1), (-1, 0, 1), (0, 1, 1), (0, -1, 1)]
    for k in range(2, size + 1):
        tone = 1 if k <= size // 2 else (2 if k < size else 3)
        pts += [(k, 0, tone), (-k, 0, tone), (0, k, tone), (0, -k, tone)]
    if size >= 3:
        pts += [(1, 1, 2), (-1, -1, 2), (1, -1, 2), (-1, 1, 2)]
    for dx, dy, tone in pts:
        x, y = cx + dx, cy + dy
        if 0 <= x < w and 0 <= y < h:
            img[y, x, :3] = colours[tone]
            img[y, x, 3] = 255


# ---------------------------------------------------------------- review sheets

GROUNDS = {"forest": [(16, 24, 22, 255), (28, 44, 36, 255)],
           "city": [(18, 20, 34, 255), (34, 36, 56, 255)],
           "both": [(28, 44, 36, 255), (34, 36, 56, 255)]}    # forest and city, frame by frame


@dataclass
class SheetRow:
    """One row of a pose sheet: a title, a second line, the frames and what to draw on them.
    `boxes(col)` returns (x0, y0, x1, y1, rgba) rectangles in texture pixels (x1, y1 exclusive),
    `points(col)` (x, y, rgba) marks; `marked` holds the columns framed in red (damage frames);
    `overlays(col)` pictures laid over a frame (what the game draws on top, such as a shot)."""
    title: str
    info: str
    frames: list
    region: str
    boxes: object = None
    points: object = None
    marked: tuple = ()
    overlays: object = None    # col -> [(uint8 RGBA picture, left, top)] drawn over the frame


def pose_sheet(rows, font_path, path, scale=3, label_w=230, pad=6):
    """Every frame of `rows` at `scale`, one labelled row each, written to `path`."""
    fh, fw = rows[0].frames[0].shape[:2]
    cols = max(len(r.frames) for r in rows)
    cw, ch = fw * scale, fh * scale
    W = label_w + cols * (cw + pad) + pad
    H = len(rows) * (ch + pad) + pad
    img = Image.new("RGBA", (W, H), (18, 20, 26, 255))
    draw = ImageDraw.Draw(img)
    font = ImageFont.truetype(str(font_path), 16)
    for r, row in enumerate(rows):
        y = pad + r * (ch + pad)
        draw.text((pad, y + 8), row.title, font=font, fill=(225, 220, 205, 255))
        draw.text((pad, y + 30), row.info, font=font, fill=(150, 150, 160, 255))
        for col, f in enumerate(row.frames):
            x = label_w + col * (cw + pad)
            draw.rectangle([x, y, x + cw - 1, y + ch - 1], GROUNDS[row.region][(r + col) % 2])
            for x0, y0, x1, y1, colour in (row.boxes(col) if row.boxes else ()):
                draw.rectangle([x + round(x0 * scale), y + round(y0 * scale),
                                x + round(x1 * scale) - 1, y + round(y1 * scale) - 1], outline=colour)
            img.alpha_composite(Image.fromarray(px.upscale(f, scale), "RGBA"), (x, y))
            for pic, ox, oy in (row.overlays(col) if row.overlays else ()):
                img.alpha_composite(Image.fromarray(px.upscale(pic, scale), "RGBA"),
                                    (x + ox * scale, y + oy * scale))
            for qx, qy, colour in (row.points(col) if row.points else ()):
                cx, cy = x + round(qx * scale), y + round(qy * scale)
                draw.line([cx - 4, cy, cx + 4, cy], fill=colour)
                draw.line([cx, cy - 4, cx, cy + 4], fill=colour)
            if col in row.marked:
                draw.rectangle([x, y, x + cw - 1, y + ch - 1], outline=(200, 60, 50, 255))
    return px.save_png(np.array(img), path)

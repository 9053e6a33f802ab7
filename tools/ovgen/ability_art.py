"""Painters shared by the ability pictures: the dash boot, the winged boot, the cloud, the sword.

Each painter draws on a `rig.Canvas` in design units scaled by `k` (1 design unit = k texture
px), so the same boot is drawn at 24 px for the item rising out of a chest and at twice that for
the explanation panel's icon, and stays on model. Shapes are rasterised at pixel centres and
shaded by the character renderer (`rig.render`): three tones lit from the top left, a lighter rim
on the top-left edge, 1 px lines between parts and a darker 1 px outline round the whole.

What tells the two boots apart at a glance:
- the dash boot is low and leaning forward, dark oxblood leather with a gold toe cap and a gold
  arrowhead on the shaft, three cyan speed lines streaming behind it;
- the winged boot stands upright, pale tan leather with gold trim, and a large white wing rises
  from its heel, taller than the boot itself.
The cloud is a cluster of round puffs, white on top and lavender-blue underneath, the same cloud
the hero conjures as a platform.
"""
import math

import numpy as np

from . import pixel as px
from . import rig

M = rig.Material.of
DASH_LEATHER = M("#1e0709", "#5e1a1e", "#8e2a2e", "#b84a44", "#e27a62")
WING_LEATHER = M("#1e1208", "#6e4a2a", "#9a6e40", "#c29a62", "#e6c48e")
SOLE = M("#0e0808", "#241818", "#3a2a26", "#54403a", "#6a544c")
GOLD = M("#2a1608", "#a8701f", "#d9a53a", "#f5d272", "#fff3c4")
FEATHER = M("#2a2c44", "#9aa6c8", "#d2dbf0", "#f2f6ff", "#ffffff")
CLOUD = M("#262c4c", "#7d86b8", "#b8c4e6", "#e8eefc", "#ffffff")
STEEL = M("#0c0e16", "#4f5a70", "#8a98b0", "#c8d4e6", "#f4f8ff")
SPEED = px.ramp("#1d5f9a", "#3fa6e0", "#8fe0ff", "#e6fbff")   # darkest first
SPARK = px.ramp("#d8861e", "#ffc34a", "#fff0a0", "#ffffff")


def part(name, mask, mat, group, tone=None, outline=True):
    p = rig.Part(name, mask, mat, group, outline=outline)
    p.tone = tone
    return p


def render(parts, w, h):
    """Rasterise parts (back to front) with the character renderer."""
    return rig.render(None, rig.Pose(), w, h, builder=lambda _b, _p, _cv: (parts, None))


def scaled(points, k, origin=(0.0, 0.0), angle=0.0):
    """Design points scaled by k, turned by `angle` degrees about the design origin, then moved."""
    a = math.radians(angle)
    ca, sa = math.cos(a), math.sin(a)
    return [(origin[0] + k * (x * ca - y * sa), origin[1] + k * (x * sa + y * ca)) for x, y in points]


# ---------------------------------------------------------------- boots


def boot_parts(cv, k, origin, angle, leather, winged):
    """A boot seen from the side, toe to the right, its sole's heel corner at `origin`.

    Design units: the foot is 17 long and the shaft 17.5 tall."""
    def poly(pts):
        return cv.polygon(scaled(pts, k, origin, angle))

    def pt(x, y):
        return scaled([(x, y)], k, origin, angle)[0]

    shaft = poly([(0.5, 1.8), (1.2, 7.0), (0.9, 12.0), (0.0, 14.4), (8.4, 14.4), (7.6, 12.0),
                  (7.2, 9.6), (8.2, 8.0), (10.6, 6.8), (13.6, 5.8), (15.8, 4.8), (16.9, 3.4),
                  (16.8, 1.8)])
    sole = poly([(0.0, 0.0), (15.8, 0.0), (17.2, 0.8), (17.2, 2.2), (0.2, 2.2)])
    heel = poly([(0.0, -0.4), (4.6, -0.4), (4.4, 2.6), (0.2, 2.6)])
    cuff = poly([(0.0, 14.0), (8.4, 14.0), (9.2, 17.6), (-0.8, 17.6)])
    toe = poly([(12.2, 2.1), (17.2, 2.1), (17.0, 3.6), (15.4, 5.0), (12.6, 6.0)])
    parts = [part("sole", sole | heel, SOLE, "sole"),
             part("boot", shaft & ~sole, leather, "boot"),
             part("cuff", cuff, leather, "cuff")]
    band = poly([(-0.8, 16.4), (9.2, 16.4), (9.2, 17.6), (-0.8, 17.6)])
    parts.append(part("band", band, GOLD, "cuff"))
    if winged:
        strap = poly([(1.0, 7.4), (7.4, 8.4), (7.4, 10.0), (1.0, 9.0)])
        buckle = poly([(4.4, 7.4), (6.8, 7.6), (6.8, 10.4), (4.4, 10.2)])
        parts.append(part("strap", strap & ~buckle, leather, "strap"))
        parts.append(part("buckle", buckle, GOLD, "strap"))
    else:
        parts.append(part("toe", toe, GOLD, "toe"))
        arrow = np.zeros_like(shaft)
        for x0 in ((2.0, 4.6) if k >= 1.5 else (3.0,)):
            arrow |= poly([(x0, 13.0), (x0 + 2.6, 10.6), (x0, 8.2), (x0 + 1.3, 8.2), (x0 + 3.9, 10.6),
                           (x0 + 1.3, 13.0)])
        parts.append(part("arrow", arrow & shaft & ~cuff, GOLD, "arrow", outline=False))
    return parts, pt


def dash_boot(w, h, k, origin, angle=-10.0, streaks=True):
    """The dash boot: leaning into a dash, oxblood leather, a gold toe cap and arrowheads,
    cyan speed lines streaming behind. Returns uint8 RGBA."""
    cv = rig.Canvas(w, h)
    parts, pt = boot_parts(cv, k, origin, angle, DASH_LEATHER, winged=False)
    img = render(parts, w, h)
    if streaks:
        speed_lines(img, cv, k, pt)
    return img


def speed_lines(img, cv, k, pt):
    """Three horizontal streaks behind the boot: thin, bright at the boot end, fading back."""
    empty = img[..., 3] == 0
    for y, x0, ln in ((13.5, -2.0, 7.0), (9.0, -1.5, 9.5), (4.5, -2.0, 6.0)):
        a = pt(x0, y)
        for i in range(int(round(ln * k))):
            x = a[0] - i
            col, row = cv.pixel((x, a[1]))
            if not (0 <= col < cv.w and 0 <= row < cv.h):
                continue
            t = i / max(ln * k - 1, 1)
            if t > 0.55 and (i % 2):
                continue                       # the tail breaks up
            tone = 3 if t < 0.2 else (2 if t < 0.55 else 1)
            for dy in range(max(1, int(round(k * 0.6)))):
                r = row + dy
                if r < cv.h and empty[r, col]:
                    img[r, col, :3] = SPEED[tone]
                    img[r, col, 3] = 255
        # a darker underside keeps the streak readable on a pale sky
        for i in range(int(round(ln * k * 0.55))):
            col, row = cv.pixel((a[0] - i, a[1]))
            r = row + max(1, int(round(k * 0.6)))
            if 0 <= col < cv.w and r < cv.h and img[r, col, 3] == 0:
                img[r, col, :3] = SPEED[0]
                img[r, col, 3] = 255


WING = [(0.0, 0.0), (-0.6, 4.2), (-3.4, 8.2), (-7.6, 10.8), (-12.0, 11.8), (-14.6, 11.2),
        (-11.6, 8.8), (-14.0, 7.2), (-10.6, 6.0), (-12.4, 3.6), (-8.6, 3.2), (-9.8, 0.6), (-6.0, 1.0),
        (-5.6, -1.6), (-1.8, -1.4)]
NOTCHES = ((-11.6, 8.8), (-10.6, 6.0), (-8.6, 3.2), (-6.0, 1.0))


def wing_tone(cv, k, root, angle=0.0, size=1.0):
    """A white wing rising from `root` and sweeping back: a curved leading edge, five primaries
    with pointed tips along the trailing edge, a lavender line running in from each notch, the
    coverts along the leading edge catching the light. Returns (mask, tone map)."""
    kk = k * size
    mask = cv.polygon(scaled(WING, kk, root, angle))
    tone = np.where(mask, 1, -1)
    base = rig.tone_map(mask, 1, 1)
    tone[mask & (base == 0)] = 0
    for nx, ny in NOTCHES:
        a = scaled([(nx, ny)], kk, root, angle)[0]
        b = scaled([(nx * 0.45 + 0.6, ny * 0.55 + 2.2)], kk, root, angle)[0]
        tone[cv.capsule(a, b, 0.5) & mask] = 0
    lead = cv.polygon(scaled([(0.4, 0.0), (-0.6, 4.2), (-3.4, 8.2), (-7.6, 10.8), (-12.0, 11.8),
                              (-11.0, 9.6), (-6.8, 8.0), (-3.2, 5.0), (-2.0, 1.0)], kk, root, angle))
    tone[mask & lead & (tone == 1)] = 2
    return mask, tone


def winged_boot(w, h, k, origin, angle=0.0, wing_size=1.0):
    """The winged boot: upright, pale tan leather, gold trim and buckle, a white wing rising from
    the heel higher than the boot. Returns uint8 RGBA."""
    cv = rig.Canvas(w, h)
    parts, pt = boot_parts(cv, k, origin, angle, WING_LEATHER, winged=True)
    wing, tone = wing_tone(cv, k, pt(2.6, 10.0), angle, wing_size)
    parts.insert(0, part("wing", wing, FEATHER, "wing", tone))
    return render(parts, w, h)


# ---------------------------------------------------------------- cloud


def puff_uv(cv, k, centre, puff):
    """Coordinates of every pixel relative to a puff, in units of its radius. A puff is
    (dx, dy, r) for a round one or (dx, dy, r, half_length) for a long one with a flat top."""
    dx, dy, r = puff[:3]
    half = puff[3] if len(puff) > 3 else 0.0
    cx, cy = centre[0] + k * dx, centre[1] + k * dy
    qx = np.clip(cv.x, cx - k * half, cx + k * half)
    return (cv.x - qx) / (k * r), (cv.y - cy) / (k * r)


def cloud_puffs(cv, k, centre, puffs):
    """A cloud as the union of puffs (see `puff_uv`) around `centre`, with a flat underside."""
    mask = np.zeros((cv.h, cv.w), bool)
    for p in puffs:
        u, v = puff_uv(cv, k, centre, p)
        mask |= u * u + v * v <= 1.0
    return mask & (cv.y >= centre[1] - 0.2 * k)


def cloud_tone(cv, mask, centre, k, puffs):
    """Tones for a cloud lit from the top left, puffs listed back to front: each pixel takes the
    shading of the front-most puff over it (a white cap on its top left, a lavender belly low on its
    right), a seam of shadow runs where a puff overlaps the ones behind it, and the flat underside
    is in shadow. 0 shadow, 1 base, 2 light, 3 white."""
    tone = np.full(mask.shape, -1)
    covered = np.zeros_like(mask)
    for p in puffs:
        u, v = puff_uv(cv, k, centre, p)
        inside = ((u * u + v * v) <= 1.0) & mask
        t = np.where(v - 0.5 * u > 0.35, 2, np.where(v - 0.3 * u < -0.45, 0, 1))
        t = np.where((v - 0.5 * u > 0.75) & (u * u + v * v > 0.45), 3, t)
        seam = px.outline_of(inside) & covered & mask & (cv.y > centre[1] + 0.6 * k)
        tone[seam] = 0
        tone[inside] = t[inside]
        covered |= inside
    under = mask & (cv.y < centre[1] + 0.9 * k)
    tone[under] = 0
    return tone


# puffs back to front: the high crown, the shoulders, then the low puffs in front
ITEM_PUFFS = ((-0.8, 5.6, 4.6), (5.6, 4.0, 3.4), (-6.6, 3.4, 3.2), (9.2, 2.2, 2.2), (-9.8, 2.0, 2.0),
              (-3.4, 1.8, 3.4), (3.0, 1.8, 3.2))


def cloud(w, h, k, centre, puffs=ITEM_PUFFS):
    """A small round cloud. Returns uint8 RGBA."""
    cv = rig.Canvas(w, h)
    mask = cloud_puffs(cv, k, centre, puffs)
    tone = cloud_tone(cv, mask, centre, k, puffs)
    return render([part("cloud", mask, CLOUD, "cloud", tone)], w, h)


# ---------------------------------------------------------------- sword


def sword_parts(cv, k, hilt, angle=90.0, blade=24.0):
    """A long silver sword with a gold cross-guard: `hilt` is the guard's centre, the blade points
    along `angle`. Design units: the blade is `blade` long and 2.6 wide."""
    d = rig.vec(angle)
    n = rig.vec(angle + 90)
    def at(u, v=0.0):
        return (hilt[0] + k * (u * d[0] + v * n[0]), hilt[1] + k * (u * d[1] + v * n[1]))
    bl = cv.polygon([at(0.5, 1.3), at(blade - 3.2, 1.2), at(blade, 0.0), at(blade - 3.2, -1.2),
                     at(0.5, -1.3)])
    guard = cv.capsule(at(0, -4.6), at(0, 4.6), 0.95 * k)
    guard |= cv.ellipse(at(0), 1.5 * k, 1.5 * k)
    grip = cv.capsule(at(-1.0), at(-5.5), 0.85 * k)
    pommel = cv.ellipse(at(-6.6), 1.4 * k, 1.4 * k)
    # the blade's half towards the light is bright, the other half base, its far edge in shadow
    side = ((cv.x - hilt[0]) * n[0] + (cv.y - hilt[1]) * n[1]) > 0
    light_side = side if (n[0] < 0 or n[1] > 0) else ~side
    blade_tone = np.where(bl, np.where(light_side, 2, 1), -1)
    blade_tone[bl & ~light_side & ~px.erode(bl)] = 0
    return [part("grip", grip, M("#120a06", "#3a2414", "#5a3a22", "#7a5434", "#9a7450"), "hilt"),
            part("pommel", pommel, GOLD, "hilt"),
            part("blade", bl, STEEL, "blade", blade_tone),
            part("guard", guard, GOLD, "guard")]


def sparkle(img, c, arm, colours=SPARK):
    """A four-point star of light (no outline), brightest at the centre."""
    h, w = img.shape[:2]
    cx, cy = c
    for kk in range(-arm, arm + 1):
        tone = 3 if kk == 0 else (2 if abs(kk) < arm else 1)
        for y, x in ((cy + kk, cx), (cy, cx + kk)):
            if 0 <= y < h and 0 <= x < w:
                img[y, x, :3] = colours[tone]
                img[y, x, 3] = 255

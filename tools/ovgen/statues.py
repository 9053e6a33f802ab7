"""Checkpoint statues: Sprites/Objects/Checkpoint/Forest-Statue.png, City-Statue.png and their
highlight pictures Forest-StatueOutline.png, City-StatueOutline.png.

A statue is where the hero rests, so it has to read at a glance as a shrine: a hooded stone figure
on a plinth with a small warm flame. The game draws it x3 with the origin at the bottom centre
(the plinth's foot stands on the floor), and draws the outline picture first, under the statue,
while the hero touches it: the outline is the statue's silhouette grown by 1 px (diagonals too) in
the interface glow colour, on the same canvas, so the two bottom centres line up.
- Forest (64 x 64): a hooded pilgrim seen from the side, kneeling on its heels with its head
  bowed over hands pressed together in prayer, votive candles burning at its knees; moss on
  every surface that faces up and creeping over the plinth, roots gripping the plinth, ferns at
  its foot and a teal rune cut in the stone.
- City (60 x 80): a hooded guardian of carved slate standing with both hands on a sword planted
  point down, a verdigris halo behind the head, copper bands on a stepped plinth and a candle in
  an arched niche.
Light from the top left: three stone tones, a lighter rim on the top-left edges, a darker 1 px
outline round everything but the flame; the flame warms the stone near it.
"""
import math

import numpy as np

from . import pixel as px
from . import rig

FOREST_SIZE = (64, 64)   # width, height in texture px
CITY_SIZE = (60, 80)

M = rig.Material.of
FOREST = {
    "stone": M("#0b0f0c", "#2b322c", "#465045", "#687464", "#8a9683"),
    "plinth": M("#0b0f0c", "#262b25", "#3b433a", "#59634f", "#76816a"),
    "moss": M("#07110a", "#1f4326", "#32662f", "#4f8a3a", "#7cb04c"),
    "root": M("#0a0605", "#2e1e13", "#4a3220", "#6b4a2c", "#8c6a42"),
    "wax": M("#2a1c10", "#b89a70", "#e0c89a", "#f6e8c4", "#fff8e4"),
}
CITY = {
    "stone": M("#07060c", "#262a3e", "#3c4360", "#5a6484", "#7e89aa"),
    "plinth": M("#07060c", "#1c1f2e", "#2c3146", "#454d68", "#5f6886"),
    "copper": M("#071312", "#1e4a46", "#2f756c", "#55a890", "#98dcc0"),
    "steel": M("#07080c", "#3a4150", "#5f6a7c", "#9aa6b8", "#dfe7f2"),
    "wax": M("#2a1c10", "#b89a70", "#e0c89a", "#f6e8c4", "#fff8e4"),
}
FLAME = px.ramp("#c4561c", "#ee8a2e", "#ffc14a", "#ffe48e", "#fff6cf")  # darkest first
EMBER = px.rgb("#ff9a3a")      # the warm cast of the flame on nearby stone
RUNE = px.ramp("#123a3a", "#2f8a80", "#7fe0c8")   # forest glowing rune (matches the moss glow)
GLOW = px.rgb("#ffe9a6")       # highlight colour of interactive objects


# ---------------------------------------------------------------- shading helpers


def row_extent_tone(mask, lit=0.30, shade=0.68, top_lit=True):
    """Tone map for a rounded upright form (a robe, a hood): per row, the left part of the span
    is lit, the middle is base, the right falls into shadow; rows facing up are lit too."""
    tone = np.where(mask, 1, -1)
    h, w = mask.shape
    xs = np.arange(w)
    for y in range(h):
        row = mask[y]
        if not row.any():
            continue
        cols = xs[row]
        x0, x1 = cols.min(), cols.max()
        u = (xs - x0 + 0.5) / max(x1 - x0 + 1, 1)
        tone[y, row & (u < lit)] = 2
        tone[y, row & (u > shade)] = 0
    if top_lit:
        up = mask & ~px.shift(mask, 1, 0)
        tone[up & (tone == 1)] = 2
    return tone


def box_tone(mask, lit_w=1, shade_w=2):
    """Tone map for a block seen from the front: lit top and left faces, shaded right side and
    underside, base in between."""
    tone = np.where(mask, 1, -1)
    lit = np.zeros_like(mask)
    shade = np.zeros_like(mask)
    for d in range(1, lit_w + 1):
        lit |= ~px.shift(mask, d, 0) | ~px.shift(mask, 0, d)
    for d in range(1, shade_w + 1):
        shade |= ~px.shift(mask, 0, -d) | ~px.shift(mask, -d, 0)
    tone[mask & shade] = 0
    tone[mask & lit & ~(~px.shift(mask, 0, -1))] = 2
    tone[mask & ~px.shift(mask, 1, 0)] = 2
    return tone


def part(name, mask, mat, group, tone=None, outline=True):
    p = rig.Part(name, mask, mat, group, outline=outline)
    p.tone = tone
    return p


def render(parts, w, h):
    """Rasterise parts (back to front) with the character renderer: part lines, rim and outline."""
    return rig.render(None, rig.Pose(), w, h, builder=lambda _b, _p, _cv: (parts, None))


def paint_px(img, mask, colour, alpha=255):
    img[mask, :3] = colour
    img[mask, 3] = alpha


def warm_light(img, centre, radius, strength, cv):
    """Tint opaque stone pixels near a flame towards the ember colour (stepped, no soft blend):
    two rings, the nearer warmer."""
    d = np.hypot(cv.x - centre[0], cv.y - centre[1])
    solid = img[..., 3] == 255
    for r, k in ((radius, strength * 0.5), (radius * 0.6, strength)):
        sel = solid & (d <= r)
        img[sel, :3] = np.clip(img[sel, :3] * (1 - k) + np.array(EMBER) * k * 1.15, 0, 255)


def flame(img, cv, base, height, width=1.6):
    """A small candle flame standing on `base` (rig coords): hard-pixel teardrop, hot core."""
    bx, by = base
    y = cv.y - by
    t = np.clip(y / height, 0, 1)
    half = width * np.sin(np.pi * np.clip(t * 0.85 + 0.1, 0, 1)) * (1 - 0.35 * t)
    body = (y >= 0) & (y <= height) & (np.abs(cv.x - bx) <= half + 0.15)
    core = body & (y <= height * 0.55) & (np.abs(cv.x - bx) <= half * 0.5 + 0.05)
    tip = body & (y > height * 0.75)
    paint_px(img, body, FLAME[2])
    paint_px(img, tip, FLAME[1])
    paint_px(img, body & (cv.x < bx) & (y <= height * 0.7), FLAME[3])
    paint_px(img, core, FLAME[4])
    return body


def halo(img, cv, centre, radius, colour, alpha):
    """A faint glow round a flame on empty pixels only: one dithered ring of low alpha."""
    d = np.hypot(cv.x - centre[0], cv.y - centre[1])
    ring = (d <= radius) & (img[..., 3] == 0)
    dots = ring & px.dither_mask(np.clip(1.15 - d / radius, 0, 1) * 0.8)
    img[dots, :3] = colour
    img[dots, 3] = alpha


def outline_picture(statue):
    """The highlight: every opaque statue pixel grown by 1 px (diagonals too), in the glow colour."""
    solid = statue[..., 3] == 255
    grown = px.dilate(solid, diagonal=True)
    out = np.zeros_like(statue)
    out[grown, :3] = GLOW
    out[grown, 3] = 255
    return out


# ---------------------------------------------------------------- forest


def candle(img, cv, x0, top, height, wax_mat):
    """A candle stub standing with its foot at y = top - height, wick at `top`, and its flame."""
    x, y = cv.x, cv.y
    body = (np.abs(x - x0) <= 1.0) & (y >= top - height) & (y <= top)
    paint_px(img, px.outline_of(body) & (y <= top + 0.5) & (img[..., 3] == 0), wax_mat.ink)
    paint_px(img, body, wax_mat.base)
    paint_px(img, body & (x < x0), wax_mat.light)
    paint_px(img, body & (y > top - 1) & (x >= x0), wax_mat.rim)
    return body


def forest_statue():
    w, h = FOREST_SIZE
    cv = rig.Canvas(w, h)
    x, y = cv.x, cv.y
    m = FOREST
    rng = np.random.RandomState(4101)
    # plinth: a rough foot, a tapering block, a capstone; chipped corners
    foot = cv.polygon([(-23, 0), (23, 0), (22, 4), (-22, 4)])
    block = cv.polygon([(-19, 3.5), (19, 3.5), (18, 13.5), (-18, 13.5)])
    cap = cv.polygon([(-21, 13), (21, 13), (21.5, 15.5), (20, 17.5), (-20, 17.5), (-21.5, 15.5)])
    chip = cv.polygon([(12, 17.6), (17, 17.6), (16, 16)]) | cv.polygon([(-23, 0), (-21, 0), (-23, 2)])
    cap &= ~chip
    foot &= ~chip
    # the kneeling pilgrim in profile, facing right: sitting back on its heels, the robe falling
    # from the cowl down the back, the head bowed over hands pressed together in prayer
    robe = cv.polygon([(-16.5, 17.5), (15.5, 17.5), (15.8, 20.5), (14.2, 23.8), (5.5, 26.2),
                       (5.0, 30.0), (5.6, 38.0), (5.2, 44.5), (-3.5, 48.5), (-9.5, 43.5), (-11.8, 34),
                       (-14.2, 24.5), (-16.2, 20.5)])
    hood = (cv.ellipse((0.6, 51.6), 6.6, 6.9) | cv.polygon([(2.5, 57.6), (8.2, 53.8), (9.6, 48.6),
                                                           (6.0, 47.2)])
            | cv.polygon([(-5.2, 54.5), (-7.4, 45.5), (-3.0, 45.0)]))
    face = cv.ellipse((6.9, 48.9), 2.3, 3.6, angle=-28) & hood & (y < 52.6)
    upper = cv.capsule((-2.0, 44.0), (2.2, 34.4), 3.2, 2.7)
    fore = cv.capsule((2.2, 34.4), (8.6, 40.2), 2.5, 2.2)
    hands = cv.ellipse((10.0, 42.2), 1.9, 3.4, angle=-30)
    arms = upper | fore | hands

    parts = [
        part("foot", foot, m["plinth"], "plinth", box_tone(foot)),
        part("block", block, m["plinth"], "plinth", box_tone(block, 2, 3)),
        part("cap", cap, m["plinth"], "cap", box_tone(cap, 1, 2)),
        part("robe", robe | hood, m["stone"], "robe", row_extent_tone(robe | hood, 0.34, 0.74)),
        part("arm", arms, m["stone"], "arm", rig.tone_map(arms, 1, 1)),
    ]
    img = render(parts, w, h).astype(float)
    solid = img[..., 3] == 255
    st = m["stone"]

    # the face: deep in the cowl's shadow; the cowl's front edge is lit
    paint_px(img, face & solid, st.ink)
    paint_px(img, face & solid & px.shift(face, 0, 1) & ~px.shift(face, 0, -1) & (y < 48.5), st.shadow)
    lip = px.outline_of(face) & hood & ~arms & (y > 47)
    paint_px(img, lip & (x < 6.8), st.rim)
    paint_px(img, lip & (x >= 6.8), st.light)
    # the cowl's fold falling to the shoulder, and robe folds down the back and over the thigh
    for fx0, fy0, fx1, fy1 in ((-1.5, 56.0, -4.2, 47.5), (-8.5, 42.0, -11.6, 25.0), (-4.2, 40.5, -5.0, 27.0),
                               (-0.5, 25.2, 12.0, 21.8), (-11.5, 19.6, 4.0, 19.2)):
        groove = cv.capsule((fx0, fy0), (fx1, fy1), 0.55) & robe & ~px.dilate(arms | face)
        paint_px(img, groove, st.shadow)
        paint_px(img, px.shift(groove, -1, 0) & (robe | hood) & ~groove & ~px.dilate(arms), st.light)
    # the sleeve's cuff at the wrist
    cuff = cv.capsule((7.2, 38.2), (6.0, 40.9), 0.5) & arms
    paint_px(img, cuff, st.shadow)
    # cracks in the plinth
    for pts in (((-12, 12.5), (-10.5, 9), (-12, 6), (-10, 4)), ((9, 13), (11, 10.5), (10, 8))):
        for a, b in zip(pts, pts[1:]):
            paint_px(img, cv.capsule(a, b, 0.5) & block, m["plinth"].ink)
    # the rune cut in the plinth: a stem with two pairs of branches, glowing teal
    rune = (cv.capsule((0, 5.6), (0, 11.4), 0.55) | cv.capsule((0, 8.4), (-2.6, 10.8), 0.5) |
            cv.capsule((0, 8.4), (2.6, 10.8), 0.5) | cv.capsule((0, 6.4), (-2.2, 8.2), 0.5) |
            cv.capsule((0, 6.4), (2.2, 8.2), 0.5)) & block
    paint_px(img, px.dilate(rune) & block & ~rune, RUNE[0])
    paint_px(img, rune, RUNE[1])
    paint_px(img, rune & (y > 9.5) & (np.abs(x) < 0.6), RUNE[2])

    # moss on what faces up: the hood's crown, the shoulders, the knees, the capstone
    up = solid & ~px.shift(solid, 1, 0)
    cover = np.zeros_like(solid)
    for k in range(1, 3):
        cover |= px.shift(up, k - 1, 0) & solid
    noise = px.noise_2d(h, w, 3, rng)
    keep = ~face & ~arms & ~px.dilate(face)
    moss = cover & (noise > 0.40) & keep
    moss |= up & (noise > 0.25) & keep
    # patches creeping over the robe's hem and the plinth, thickest near the ground
    blot = px.noise_2d(h, w, 4, rng)
    moss |= solid & keep & (blot > 0.76 - 0.004 * np.clip(30 - y, 0, 30)) & (y < 30) & (y > 2)
    moss |= solid & keep & (blot > 0.72) & (y >= 30)
    # and it runs down the plinth's front in drips
    for dx, ln in ((-17, 5), (-13, 3), (-6, 2), (7, 4), (15, 6), (19, 3)):
        moss |= (x > dx - 0.5) & (x <= dx + 0.5) & (y <= 17.5) & (y > 17.5 - ln) & solid
    moss &= ~rune
    mt = np.where(noise > 0.62, 3, np.where(noise > 0.45, 2, 1))
    top_row = moss & ~px.shift(moss, 1, 0)
    cols = m["moss"].tones()
    for k in (1, 2, 3):
        paint_px(img, moss & (mt == k), cols[k - 1])
    paint_px(img, top_row & (x < 4), cols[3])
    paint_px(img, top_row & (x >= 4), cols[2])

    # roots climbing from the ground over the plinth's sides and front corners
    roots = [
        [(-26, 0.5), (-23.5, 3), (-21.2, 7), (-19.8, 11.5), (-17, 14.5), (-14, 15.5)],
        [(-29, 0.5), (-25, 1.5), (-22.5, 4.5)],
        [(25.5, 0.5), (22.6, 3.5), (20.8, 8), (20.2, 12), (18, 15), (15.5, 16)],
        [(29, 0.5), (25.8, 2.2), (23.8, 5)],
        [(-19.5, 9.5), (-16.5, 8.5), (-15.5, 6.5)],
    ]
    root_mask = np.zeros_like(solid)
    for pts in roots:
        for i, (a, b) in enumerate(zip(pts, pts[1:])):
            r0 = 1.35 - 0.18 * i
            root_mask |= cv.capsule(a, b, max(r0, 0.6), max(r0 - 0.18, 0.55))
    rt = rig.tone_map(root_mask, 1, 1)
    rcols = m["root"].tones()
    ring = px.outline_of(root_mask) & ~root_mask
    paint_px(img, ring & (img[..., 3] == 0), m["root"].ink)
    paint_px(img, ring & solid & (px.shift(root_mask, 1, 0) | px.shift(root_mask, 0, -1)), m["root"].ink)
    for k in range(3):
        paint_px(img, root_mask & (rt == k), rcols[k])
    solid = img[..., 3] == 255

    # ferns and grass at the foot, both sides
    for cx, side, n in ((-25.5, -1, 4), (24.5, 1, 4), (-21, 1, 2), (19.5, -1, 2)):
        for i in range(n):
            ang = 90 - side * (18 + 20 * i) + (rng.rand() - 0.5) * 10
            ln = 5.5 - 0.8 * i + rng.rand()
            tip = (cx + ln * math.cos(math.radians(ang)), 0.5 + ln * math.sin(math.radians(ang)))
            blade = cv.capsule((cx, 0.5), tip, 0.6, 0.4) & (img[..., 3] == 0)
            paint_px(img, blade, cols[1 + (i % 2)])
            paint_px(img, blade & (cv.y > 3.5), cols[3])
    grass_ring = px.outline_of((img[..., 3] == 255) & ~solid) & (img[..., 3] == 0) & (cv.y > 1)
    paint_px(img, grass_ring, m["moss"].ink)

    # votive candles on the capstone, at the pilgrim's knees: the light that says "rest here"
    lights = ((-14.6, 17.5 + 5.0, 5.0), (-11.2, 17.5 + 3.0, 3.0), (13.4, 17.5 + 4.0, 4.0))
    for cx, top, ht in lights:
        warm_light(img, (cx, top + 2.0), 4.5, 0.40, cv)
    for cx, top, ht in lights:
        candle(img, cv, cx, top, ht, m["wax"])
        flame(img, cv, (cx, top + 0.6), 4.2, 1.2)
    for cx, top, ht in lights:
        halo(img, cv, (cx, top + 2.6), 3.6, FLAME[3], 80)
    return px.to_rgba8(img)


# ---------------------------------------------------------------- city


def city_statue():
    w, h = CITY_SIZE
    cv = rig.Canvas(w, h)
    x, y = cv.x, cv.y
    m = CITY
    # stepped plinth with an arched niche, copper bands under the cornice and above the step
    step = cv.polygon([(-23, 0), (23, 0), (23, 3.5), (21.5, 5), (-21.5, 5), (-23, 3.5)])
    block = cv.polygon([(-17.5, 4.5), (17.5, 4.5), (17.5, 20.5), (-17.5, 20.5)])
    cornice = cv.polygon([(-21, 20), (21, 20), (21, 23), (19.5, 25), (-19.5, 25), (-21, 23)])
    niche = (cv.ellipse((0, 14.5), 5.2, 5.2) | ((np.abs(x) <= 5.2) & (y <= 14.5))) & (y >= 7.5)
    # the guardian: a long robe, a mantle, a hood, sleeves down to hands on the sword's grip
    robe = cv.polygon([(-15, 25), (15, 25), (13.4, 28), (11.5, 40), (10, 55), (-10, 55), (-11.5, 40),
                       (-13.4, 28)])
    mantle = cv.polygon([(-11.8, 49), (11.8, 49), (10.5, 58.5), (6, 61), (-6, 61), (-10.5, 58.5)])
    hood = cv.polygon([(-7.8, 55), (7.8, 55), (8.2, 63.5), (6.2, 69), (2.5, 73.5), (0.4, 75.5),
                       (-1.4, 74.5), (-5.2, 70.5), (-7.9, 64.5)])
    face = cv.ellipse((0.4, 63.6), 3.7, 4.6) & (y <= 67)
    halo_ring = (np.hypot(x, y - 65.5) <= 11.2) & (np.hypot(x, y - 65.5) >= 8.9)
    upper_l = cv.capsule((-9.0, 55.5), (-8.6, 49.0), 3.2, 2.9)
    upper_r = cv.capsule((9.0, 55.5), (8.6, 49.0), 3.2, 2.9)
    sleeve_l = upper_l | cv.capsule((-8.6, 49.0), (-2.6, 46.6), 2.9, 2.4)
    sleeve_r = upper_r | cv.capsule((8.6, 49.0), (2.6, 46.6), 2.9, 2.4)
    hands = cv.ellipse((0, 46.4), 3.6, 2.6)
    blade = cv.polygon([(-1.6, 41.5), (1.6, 41.5), (1.6, 28.5), (0, 25.2), (-1.6, 28.5)])
    guard = cv.polygon([(-6.5, 41.2), (6.5, 41.2), (5.8, 43.6), (-5.8, 43.6)])
    grip = (np.abs(x) <= 1.1) & (y >= 43.5) & (y <= 49.5)
    pommel = cv.ellipse((0, 50.2), 1.9, 1.5)

    def fold_tone(mask, lit, shade):
        return row_extent_tone(mask, lit, shade)

    parts = [
        part("halo", halo_ring, m["copper"], "halo", rig.tone_map(halo_ring, 1, 1)),
        part("step", step, m["plinth"], "step", box_tone(step)),
        part("block", block, m["plinth"], "block", box_tone(block, 2, 3)),
        part("cornice", cornice, m["plinth"], "cornice", box_tone(cornice, 1, 2)),
        part("robe", robe | mantle, m["stone"], "robe", fold_tone(robe | mantle, 0.28, 0.66)),
        part("blade", blade, m["steel"], "sword",
             np.where(blade, np.where(x < 0, 2, np.where(x < 1, 1, 0)), -1)),
        part("guard", guard, m["copper"], "guard", box_tone(guard)),
        part("hood", hood, m["stone"], "hood", fold_tone(hood, 0.34, 0.70)),
        part("grip", grip | pommel, m["copper"], "grip", rig.tone_map(grip | pommel, 1, 1)),
        part("arms", sleeve_l | sleeve_r | hands, m["stone"], "arms",
             rig.tone_map(sleeve_l | sleeve_r | hands, 1, 1)),
    ]
    img = render(parts, w, h).astype(float)
    solid = img[..., 3] == 255
    # the hands folded one over the other on the grip, the sleeves' cuffs in shadow
    st = m["stone"]
    paint_px(img, hands & (np.abs(y - 46.4) < 0.5) & (np.abs(x) < 3.0), st.shadow)
    for sx in (-1, 1):
        cuff = cv.capsule((sx * 4.4, 44.6), (sx * 4.0, 48.4), 0.5) & (sleeve_l | sleeve_r)
        paint_px(img, cuff, st.shadow)
    # the face: bowed in the hood's shadow, the chin and the bridge of the nose just lit
    st = m["stone"]
    paint_px(img, face, st.ink)
    paint_px(img, face & (y < 61.0) & (np.abs(x - 0.4) < 2.2), st.shadow)
    brow = px.shift(face, -1, 0) & hood & ~face
    paint_px(img, brow & (x < 0), st.rim)
    # robe folds: long vertical grooves
    for fx0, fx1 in ((-6.5, -5.0), (5.5, 4.2), (-10.2, -8.4), (9.6, 8.2)):
        groove = cv.capsule((fx0, 25.6), (fx1, 47.5), 0.55) & solid & (robe & ~mantle)
        groove &= ~px.dilate(blade | guard | hands | sleeve_l | sleeve_r)
        paint_px(img, groove, m["stone"].shadow)
        paint_px(img, px.shift(groove, 0, -1) & robe & ~groove & ~px.dilate(blade), m["stone"].light)
    # the mantle's hem over the robe, in shadow, under the sleeves
    hem = mantle & ~px.shift(mantle, -1, 0) & ~px.dilate(sleeve_l | sleeve_r | hands | grip | pommel)
    paint_px(img, hem, st.shadow)
    # copper bands: one across the cornice, one along the step, studs between
    band = cornice & (y >= 21.2) & (y <= 22.6)
    cc = m["copper"].tones()
    paint_px(img, band, cc[1])
    paint_px(img, band & (y > 22), cc[2])
    paint_px(img, band & (x < -18), cc[3])
    sband = step & (y >= 2.2) & (y <= 3.4) & (np.abs(x) < 21.8)
    paint_px(img, sband, cc[1])
    for sx in (-14, -7, 7, 14):
        stud = (np.abs(x - sx) < 0.6) & (np.abs(y - 12.5) < 0.6)
        paint_px(img, stud, cc[2])
        paint_px(img, px.shift(stud, 1, 0), m["plinth"].ink)
    # verdigris streaks running down from the band, and a mortar line on the block
    for sx, ln in ((-15.5, 5), (-9.5, 3), (11.5, 6), (16.5, 2)):
        streak = (np.abs(x - sx) < 0.5) & (y < 20.5) & (y > 20.5 - ln) & block
        paint_px(img, streak, cc[0])
    mortar = block & (np.abs(y - 12.6) < 0.5) & ~niche & (np.abs(x) > 6.8) & (np.abs(x) < 17)
    paint_px(img, mortar, m["plinth"].shadow)
    # the niche: a recess in shadow, its arch lit inside on the right, a candle glowing in it
    paint_px(img, niche, m["plinth"].ink)
    rim = px.outline_of(niche) & block
    paint_px(img, rim & (x < 0), m["plinth"].shadow)
    paint_px(img, rim & (x >= 0), m["plinth"].rim)
    back = niche & (y >= 8.5)
    paint_px(img, back & (np.hypot(x - 0.4, y - 12) < 3.6), px.rgb("#3a2626"))
    wax = (np.abs(x - 0.4) <= 1.05) & (y >= 7.5) & (y <= 10.6)
    paint_px(img, wax, m["wax"].base)
    paint_px(img, wax & (x < 0.4), m["wax"].light)
    paint_px(img, niche & (y < 8.3), m["plinth"].shadow)
    warm_light(img, (0.4, 12.0), 4.6, 0.45, cv)
    flame(img, cv, (0.4, 10.8), 5.0, 1.6)
    # a glint of the steel near the tip, lamp blue on the blade's lit edge
    paint_px(img, blade & (x < -0.5) & (y > 34) & (y < 36.5), m["steel"].rim)
    return px.to_rgba8(img)


# ---------------------------------------------------------------- output


def statues():
    """{region: (statue, outline)} as uint8 RGBA pictures."""
    out = {}
    for name, painter in (("Forest", forest_statue), ("City", city_statue)):
        s = painter()
        out[name] = (s, outline_picture(s))
    return out


def generate(out):
    folder = out / "Assets/Sprites/Objects/Checkpoint"
    written = []
    for name, (statue, outline) in statues().items():
        written.append(px.save_png(statue, folder / f"{name}-Statue.png"))
        written.append(px.save_png(outline, folder / f"{name}-StatueOutline.png"))
    return written

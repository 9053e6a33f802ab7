"""The ability panel and the shop's icons.

Sprites/ExplanationHUD/ (the panel that opens when an ability is found):
- block.png (640 x 256, drawn x1.25 centred on the 1920 x 1080 screen, so 800 x 320 from
  (560, 380)): a dark translucent plate in a gold frame with corner flourishes and the crest's
  crescent on its top edge. Drawn on a 320 x 128 grid shown x2 (2.5 screen px a pixel, close to
  the world's 3). The game puts the icon 50, 30 screen px in from its top left, the title (size 55)
  right of the icon and four lines of description (size 25) under the title: that whole area is
  plain plate, no ornament.
- BOTTE.png and "BOTTE AILESRecovered.png" (48 x 48, x4, origin top left): the dash boot and the
  winged boot on a night-blue medallion in a gold ring, like the helm medallion of the life gauge.
Sprites/Shop/:
- Potion.png (36 x 56, x1.75 in the shop, from its left middle): the flask of amber draught the
  heal gauge shows, in a gold lancet frame.
- AttackUp.png (36 x 56): a silver sword rising point up out of a cloud, in the same frame. The
  shop sells it as the weapon upgrade (x1.75) and the ability panel shows it x3.5 for the cloud:
  the blade reads as the upgrade, the cloud it rises from as the conjured cloud.
The icons are portrait so that the shop's widest name, "WEAPON DAMAGE +" at size 48, still ends
inside the shop's 1440 px panel, and tall enough that the price (size 30, at the icon's middle)
sits under the name (size 48, at the icon's top).
"""
import math

import numpy as np

from . import ability_art as aa
from . import hud
from . import pixel as px
from . import rig

BLOCK_W, BLOCK_H = 640, 256
BLOCK_SCALE = 1.25
GRID = 2                          # texture px per drawn pixel of the block
BOOT_ICON = 48
TALL_ICON = (36, 56)              # width, height of the shop icons
NIGHT = hud.NIGHT
GOLD = px.GOLD


# ---------------------------------------------------------------- the panel


def block():
    """The panel's plate and frame on the 320 x 128 grid, shown x2."""
    w, h = BLOCK_W // GRID, BLOCK_H // GRID
    s = px.new_sprite(h, w)
    ys, xs = px.grid(h, w)
    cut = 5.0
    corner = np.minimum(xs, w - xs) + np.minimum(ys, h - ys)

    def inset(k):
        """The plate's outline shape moved k pixels in from the canvas edge."""
        return (xs >= k) & (xs < w - k) & (ys >= k) & (ys < h - k) & (corner >= cut + k)

    plate = inset(0)
    # the plate: near black, a touch of warmth at the top, fading darker to the bottom (dithered)
    t = px.dither_index(ys / h, 3)
    tones = [px.rgb("#1c1620"), px.rgb("#141018"), px.rgb("#0d0a10")]
    for k, col in enumerate(tones):
        px.paint(s, plate & (t == k), col, 232 / 255.0)
    # the frame: ink, a 2 px gold bevel, ink, and a thin inlay three pixels further in
    px.paint(s, plate & ~inset(1), px.INK)
    ring = inset(1) & ~inset(3)
    tone = px.bevel(inset(1), 1)
    px.paint_tones(s, np.where(ring, tone, -1), [GOLD[2], GOLD[3], GOLD[4]])
    px.paint(s, inset(3) & ~inset(4), px.INK)
    inlay_zone = inset(6)
    inlay = inlay_zone & ~inset(7)
    px.paint(s, inlay, GOLD[1])
    px.paint(s, inlay & (ys < h / 2) & (xs < w / 2), GOLD[2])
    # corner flourishes: a curl of gold in each corner, turned to fit
    for fx, fy in ((1, 1), (-1, 1), (1, -1), (-1, -1)):
        ox = 7.0 if fx > 0 else w - 7.0
        oy = 7.0 if fy > 0 else h - 7.0
        dx, dy = (xs - ox) * fx, (ys - oy) * fy
        r = np.hypot(dx - 5.0, dy - 5.0)
        curl = (np.abs(r - 4.0) < 0.75) & ~((dx > 5.0) & (dy > 5.0)) & (dx >= 0) & (dy >= 0)
        stem_x = (np.abs(dy) < 0.75) & (dx >= 5.0) & (dx < 22.0)
        stem_y = (np.abs(dx) < 0.75) & (dy >= 5.0) & (dy < 14.0)
        leaf = (np.abs(dx - 24.0) + np.abs(dy) * 1.6 <= 2.2) | (np.abs(dy - 16.0) + np.abs(dx) * 1.6 <= 2.2)
        stud = np.hypot(dx - 5.0, dy - 5.0) <= 1.3
        flourish = (curl | stem_x | stem_y | leaf) & inlay_zone
        px.paint(s, px.outline_of(flourish) & inset(4), GOLD[0])
        px.paint(s, flourish, GOLD[3])
        px.paint(s, flourish & ~px.shift(flourish, 1, 1), GOLD[4])
        px.paint(s, stud, GOLD[5])
    # the crest on the top edge: a small medallion with the crescent, breaking the frame
    cx, cy = w / 2.0, 4.0
    med = np.hypot(xs - cx, (ys - cy) * 1.0) <= 8.0
    med &= ys < h / 2
    px.paint(s, px.outline_of(med, diagonal=True) & (ys < 12) & (s[..., 3] < 255) | (px.outline_of(med, True) & ring), px.INK)
    tone = px.bevel(med, 1)
    px.paint_tones(s, tone, [GOLD[2], GOLD[3], GOLD[4]])
    face = np.hypot(xs - cx, ys - cy) <= 5.4
    px.paint(s, face, NIGHT[1])
    moon = (np.hypot(xs - cx + 0.4, ys - cy) <= 3.9) & ~(np.hypot(xs - cx - 1.3, ys - cy + 1.0) <= 3.2)
    px.paint(s, moon, GOLD[4])
    px.paint(s, moon & ~px.shift(moon, 1, 1), GOLD[5])
    # a small diamond at the bottom edge's middle
    dia = np.abs(xs - w / 2.0) + np.abs(ys - (h - 2.5)) * 1.3 <= 3.4
    px.paint(s, px.outline_of(dia) & (s[..., 3] < 255), px.INK)
    hud.gold_piece(s, dia)
    return px.upscale(px.to_rgba8(s), GRID)


# ---------------------------------------------------------------- medallion icons


def medallion(size):
    """A night-blue disc in a gold ring with four rivets (float RGBA): the icons' backing."""
    s = px.new_sprite(size, size)
    ys, xs = px.grid(size, size)
    c = size / 2.0
    r = np.hypot(xs - c, ys - c)
    ring_w = max(2.0, size / 14.0)
    outer = r <= c - 1.0
    field = r <= c - 1.0 - ring_w
    px.paint(s, px.outline_of(outer, True), px.INK)
    ring = outer & ~field
    tone = px.bevel(outer, 1)
    px.paint_tones(s, np.where(ring, tone, -1), [GOLD[2], GOLD[3], GOLD[4]])
    px.paint(s, field, NIGHT[1])
    px.paint(s, field & (r > c - 4.0 - ring_w), NIGHT[0])
    px.paint(s, field & ((xs - c) + (ys - c) < -0.9 * c) & (r > c - 6.0 - ring_w), NIGHT[2])
    px.paint(s, px.outline_of(field) & field, px.INK)
    for a in (45, 135, 225, 315):
        rx = c + (c - 1.0 - ring_w / 2) * math.cos(math.radians(a))
        ry = c + (c - 1.0 - ring_w / 2) * math.sin(math.radians(a))
        rivet = np.hypot(xs - rx, ys - ry) <= 0.9
        px.paint(s, rivet, GOLD[5] if a == 225 else GOLD[4])
    # a few stars in the night
    for sx, sy in ((0.30, 0.34), (0.70, 0.28), (0.26, 0.66), (0.62, 0.72)):
        x, y = int(sx * size), int(sy * size)
        px.paint(s, (np.abs(xs - x - 0.5) < 0.6) & (np.abs(ys - y - 0.5) < 0.6), NIGHT[3])
    return s


def over(base, img):
    """Draw a uint8 RGBA picture over a float canvas where it is opaque."""
    a = img[..., 3] > 0
    base[a, :3] = img[a, :3]
    base[a, 3] = np.maximum(base[a, 3], img[a, 3])
    return base


def dash_icon():
    s = medallion(BOOT_ICON)
    boot = aa.dash_boot(BOOT_ICON, BOOT_ICON, 1.95, (-12.0, 7.0), -10.0)
    return px.to_rgba8(over(s, boot))


def wing_icon():
    s = medallion(BOOT_ICON)
    boot = aa.winged_boot(BOOT_ICON, BOOT_ICON, 1.62, (-5.6, 6.0), 0.0, wing_size=1.15)
    return px.to_rgba8(over(s, boot))


# ---------------------------------------------------------------- shop icons


def lancet(w, h):
    """A gold lancet arch with a night field (float RGBA) and the field's mask."""
    s = px.new_sprite(h, w)
    ys, xs = px.grid(h, w)
    cx = w / 2.0
    spring = w * 0.62                               # where the arch springs from the sides
    half = w / 2.0 - 1.0
    # two arcs of radius w - 2 centred on the opposite sides meet in a point at the top
    rad = 2 * half * 0.9
    left_arc = np.hypot(xs - (cx + half - rad), ys - spring) <= rad
    right_arc = np.hypot(xs - (cx - half + rad), ys - spring) <= rad
    outer = (np.abs(xs - cx) <= half) & (ys < h - 1) & ((ys >= spring) | (left_arc & right_arc))
    field = px.erode(px.erode(px.erode(outer)))
    px.paint(s, px.outline_of(outer, True), px.INK)
    ring = outer & ~field
    tone = px.bevel(outer, 1)
    px.paint_tones(s, np.where(ring, tone, -1), [GOLD[2], GOLD[3], GOLD[4]])
    px.paint(s, field, NIGHT[1])
    px.paint(s, field & (ys > h * 0.7), NIGHT[0])
    px.paint(s, field & (ys < h * 0.35) & (xs < cx), NIGHT[2])
    px.paint(s, px.outline_of(field) & field, px.INK)
    return s, field


def potion():
    """The heal flask in a lancet frame: round bulb, neck, cork, amber draught to three quarters,
    a curved reflection on its lit side."""
    w, h = TALL_ICON
    s, field = lancet(w, h)
    ys, xs = px.grid(h, w)
    cx, cy, rad = w / 2.0, h - 17.0, 11.0
    bulb = np.hypot(xs - cx, ys - cy) <= rad
    neck = (np.abs(xs - cx) <= 3.5) & (ys >= cy - rad - 9) & (ys < cy - rad + 3)
    lip = (np.abs(xs - cx) <= 5.0) & (ys >= cy - rad - 9) & (ys < cy - rad - 6.5)
    cork = (np.abs(xs - cx) <= 2.6) & (ys >= cy - rad - 14) & (ys < cy - rad - 8)
    glass = bulb | neck
    inside = px.erode(glass) & (ys >= cy - rad + 1)
    px.paint(s, px.outline_of(glass | lip | cork, diagonal=True), px.INK)
    px.paint(s, glass, hud.GLASS[2])
    px.paint(s, inside, hud.GLASS[1])
    surf = cy - rad * 0.35
    liquid = inside & (ys >= surf)
    body_t = (ys - surf) / (cy + rad - surf)
    px.paint(s, liquid, hud.DRAUGHT[3])
    px.paint(s, liquid & (body_t > 0.45), hud.DRAUGHT[2])
    px.paint(s, liquid & (body_t > 0.8), hud.DRAUGHT[1])
    px.paint(s, liquid & (xs > cx + 6), hud.DRAUGHT[1])
    px.paint(s, liquid & (xs < cx - 5) & (body_t < 0.8), hud.DRAUGHT[4])
    px.paint(s, liquid & ~px.shift(liquid, 1, 0), hud.DRAUGHT[5])
    for bx, by in ((cx - 2, cy + 4), (cx + 3, cy + 1), (cx + 1, cy + 7)):
        px.paint(s, (np.abs(xs - bx) < 0.6) & (np.abs(ys - by) < 0.6) & liquid, hud.DRAUGHT[5])
    px.paint(s, lip, hud.GLASS[2])
    px.paint(s, lip & (ys < cy - rad - 8), hud.GLASS[3])
    tone = px.bevel(cork, 1)
    px.paint_tones(s, tone, [hud.CORK[1], hud.CORK[2], hud.CORK[3]])
    streak = (np.abs(np.hypot(xs - cx, ys - cy) - rad * 0.72) <= 0.6) & (xs < cx - 1.5) & \
        (ys < cy + 2) & (ys > cy - rad * 0.75)
    px.paint(s, streak, hud.GLASS[4])
    px.paint(s, (np.abs(xs - (cx + 6.5)) < 0.6) & (np.abs(ys - (cy + 5.5)) < 0.6), hud.GLASS[3])
    px.paint(s, bulb & ~px.shift(bulb, -1, 0) & ~liquid, hud.GLASS[2])
    img = px.to_rgba8(s)
    aa.sparkle(img, (int(cx - 7), int(cy - rad - 4)), 2)
    return img


def attack_up():
    """A silver sword rising point up out of a cloud, in a lancet frame: a glint at the tip and a
    pair of gold chevrons rising on each side of the blade."""
    w, h = TALL_ICON
    s, field = lancet(w, h)
    cv = rig.Canvas(w, h)
    parts = aa.sword_parts(cv, 1.45, (0.0, 17.5), 90.0, blade=22.5)
    sword = aa.render(parts, w, h)
    puffs = ((-0.5, 5.2, 5.0), (7.0, 3.6, 4.2), (-7.6, 3.4, 4.0), (12.4, 1.6, 2.4), (-12.8, 1.6, 2.4),
             (-4.0, 1.4, 3.8), (4.0, 1.4, 3.8))
    cloud = aa.cloud(w, h, 1.0, (0.0, 4.5), puffs)
    over(s, sword)
    over(s, cloud)
    ys, xs = px.grid(h, w)
    for cx0 in (8.0, w - 8.0):
        chevs = np.zeros((h, w), bool)
        for cy0 in (27.0, 32.0):
            chevs |= (np.abs(ys - (cy0 + np.abs(xs - cx0) * 0.8)) < 0.9) & (np.abs(xs - cx0) <= 3.2)
        px.paint(s, px.outline_of(chevs, True) & field & ~chevs, px.INK)
        px.paint(s, chevs, GOLD[3])
        px.paint(s, chevs & ~px.shift(chevs, 1, 0), GOLD[5])
    img = px.to_rgba8(s)
    tip = np.nonzero(sword[..., 3].any(axis=1))[0].min()
    aa.sparkle(img, (w // 2, int(tip) + 1), 3)
    return img


def pictures():
    return {
        "Assets/Sprites/ExplanationHUD/block.png": block(),
        "Assets/Sprites/ExplanationHUD/BOTTE.png": dash_icon(),
        "Assets/Sprites/ExplanationHUD/BOTTE AILESRecovered.png": wing_icon(),
        "Assets/Sprites/Shop/Potion.png": potion(),
        "Assets/Sprites/Shop/AttackUp.png": attack_up(),
    }


def generate(out):
    return [px.save_png(img, out / rel) for rel, img in pictures().items()]

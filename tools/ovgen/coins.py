"""Coins: Sprites/Objects/small piece.png (worth 10) and big piece.png (worth 50).

Coins burst out of a fallen enemy, scatter and fly into the hero; the game draws them x3 with the
origin at the bottom centre. They break the region palettes on purpose: interface gold with a dark
1 px outline, a bright rim on the top left and a white glint, so they read on moss and slate alike.
- small piece (9 x 9): a plain coin, its edge showing on the right as it tilts.
- big piece (15 x 15): a broad coin stamped with the crescent moon of the game's crest, ringed,
  with a four-point sparkle on its top-left rim.
`coin_face` is shared with the money counter's icon in the HUD.
"""
import numpy as np

from . import pixel as px

SMALL = 9
BIG = 15


def coin_face(n, r, emblem=True):
    """A gold coin on an n x n transparent canvas, radius r, centred; returns float RGBA.

    Light from the top left: the face is lit on that side and shaded on the other, the coin's
    thickness shows as a dark sliver on the right. From radius 5 up the coin has a raised rim
    (lit outside top left, its inner edge casting a shadow on the field) and a struck crescent."""
    s = px.new_sprite(n, n)
    ys, xs = px.grid(n, n)
    c = (n - 1) / 2.0 + 0.5
    dx, dy = xs - c, ys - c
    d = np.hypot(dx, dy)
    disc = d <= r
    edge = (np.hypot(dx - 1, dy) <= r) & ~disc          # the coin's thickness, to the right
    px.paint(s, px.outline_of(disc | edge, diagonal=False), px.INK)
    px.paint(s, edge, px.GOLD[1])
    lean = (dx + dy) / max(r, 1e-6)                     # -1.4 top left .. +1.4 bottom right
    face = np.where(lean < -0.45, 4, np.where(lean > 0.55, 2, 3))
    if r >= 5:
        field = d <= r - 2.0
        rim = disc & ~field
        # the field sits lower than the rim: its top-left edge in the rim's shadow, its
        # bottom-right edge catching the light
        face = np.where(field, 3, face)
        lip = field & ~px.erode(field)
        face = np.where(lip & (lean < 0), 2, face)
        face = np.where(lip & (lean > 0.3), 4, face)
        face = np.where(rim & (lean > 0.55), 2, face)
        face = np.where(rim & (lean < -0.45), 4, face)
    for k in (2, 3, 4):
        px.paint(s, disc & (face == k), px.GOLD[k])
    if r >= 5 and emblem:
        # the crescent of the crest struck in relief: bright body, lit top-left rim, shadow below
        moon = (np.hypot(dx + 0.4, dy) <= r * 0.48) & ~(np.hypot(dx - 1.3, dy + 0.9) <= r * 0.40)
        px.paint(s, moon, px.GOLD[4])
        px.paint(s, moon & ~px.shift(moon, 1, 1), px.GOLD[5])
        px.paint(s, px.shift(moon, 1, 1) & ~moon & (d <= r - 2.0), px.GOLD[2])
    # the glint on the top-left of the face
    gy, gx = np.unravel_index(np.argmin(np.where(disc & ~px.erode(disc), lean, 9)), disc.shape)
    s[gy + 1, gx + 1, :3] = px.GOLD[5]
    return s


def sparkle(s, cx, cy, arm):
    """A four-point star of white-gold pixels (no outline: it is light, not matter)."""
    for k in range(-arm, arm + 1):
        col = px.GOLD[5] if abs(k) < arm else px.GOLD[4]
        for y, x in ((cy + k, cx), (cy, cx + k)):
            if 0 <= y < s.shape[0] and 0 <= x < s.shape[1]:
                s[y, x, :3] = col
                s[y, x, 3] = 255
    s[cy, cx, :3] = (255, 255, 255)


def small_piece():
    s = coin_face(SMALL, 3.5, emblem=False)
    return px.to_rgba8(s)


def big_piece():
    s = coin_face(BIG, 6.2)
    sparkle(s, 3, 3, 2)
    return px.to_rgba8(s)


def generate(out):
    folder = out / "Assets/Sprites/Objects"
    return [px.save_png(small_piece(), folder / "small piece.png"),
            px.save_png(big_piece(), folder / "big piece.png")]

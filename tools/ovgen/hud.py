"""The hero's HUD and the in-world menu button.

Sprites/HUD/Player/ (all x3 on the 1920 x 1080 HUD surface unless said otherwise):
- LifeContainer.png (208 x 80), drawn at (25, 25): a gold medallion holding the hero's pale helm,
  a gold-rimmed groove for the three life pieces, and an arched alcove under it where the heal
  flask hangs. The pieces are drawn over the groove from HUD (235, 61), i.e. texture (70, 12) of
  the container: piece 1 at x 70..122, piece 2 at 123..162, piece 3 at 163..202, rows 12..19.
  The flask (HUD (247, 175)) sits in the alcove at texture (74, 50)..(100, 75).
- LifeBar40.png (53 x 8) and LifeBar30.png (40 x 8): the crimson fills. The game cuts their width
  from the right, so every column of a bar looks the same.
- LifeBar40Lost.png, LifeBarLost.png: the same sizes, a pale ember drawn under the fills that
  drains after a hit.
- vignette.png (1920 x 1080, x1): dark blood red at the edges, fading over a band to exactly
  transparent in a large centre; drawn on a 640 x 360 grid with ordered dithering and shown x3
  like everything else.
- HealBar/HealSheet.png (216 x 156, frames 27 x 26): the flask of amber healing draught, see
  `heal_sheet`.
Sprites/HUD/Score/hud piece.png (70 x 22, x3, origin centre at (1800, 55)): the money counter's
coin on the left end of a dark plaque; the amount (size 72, centred at (1820, 31)) is written
over the plaque, right of the coin.
Sprites/WorldHUD/button.png (58 x 17): the checkpoint and merchant menu buttons. The game
stretches it onto 175 x 52 rectangles (about x3) and tints it darker when hovered; white labels
sit on its dark face.
"""
import math

import numpy as np

from . import coins
from . import pixel as px

# ---------------------------------------------------------------- geometry the game relies on

HUD_SCALE = 3
CONTAINER_POS = (25, 25)          # HUD px
BAR_POS = (235, 61)               # HUD px, piece 1
PIECE_X = (235, 394, 514)         # HUD px of pieces 1, 2, 3
FLASK_POS = (247, 175)            # HUD px
COIN_POS = (1800, 55)             # HUD px, centre of the counter's icon
BAR_H = 8
PIECE1_W, PIECE_W = 53, 40
CONTAINER_W, CONTAINER_H = 208, 80
FRAME_W, FRAME_H = 27, 26         # heal flask frame
HEAL_CLIPS = [  # (frames, start level, end level) per sheet row; clip 0 is frame (0, 0)
    (8, 1.0, 0.0),
    (5, 1.0, 1 / 2), (8, 1 / 2, 0.0),
    (5, 1.0, 2 / 3), (8, 2 / 3, 1 / 3), (8, 1 / 3, 0.0),
]
HEAL_COLS = 8
VIGNETTE_W, VIGNETTE_H = 1920, 1080
VIGNETTE_CLEAR = (330, 200, 1590, 880)  # HUD px: inside this rectangle the vignette is alpha 0


def to_container(hud_xy):
    """A HUD position as texture px inside the container."""
    return ((hud_xy[0] - CONTAINER_POS[0]) // HUD_SCALE, (hud_xy[1] - CONTAINER_POS[1]) // HUD_SCALE)


BAR_X, BAR_Y = to_container(BAR_POS)                  # (70, 12)
FLASK_X, FLASK_Y = to_container(FLASK_POS)            # (74, 50)

# ---------------------------------------------------------------- palettes

PANEL = (px.rgb("#0d0a10"), 200)   # dark translucent interface panel: colour, alpha
GROOVE = px.ramp("#07050a", "#120c12", "#1c1218", "#2a1a1e")
LIFE = px.ramp("#3a0610", "#6e0c18", "#a8141f", "#d8283a", "#f0564e", "#ff9a84")
LOST = px.ramp("#6a3a2a", "#a0603e", "#d89a62", "#f4cc90", "#fff0c8")
DRAUGHT = px.ramp("#5a1e08", "#9c4010", "#d8701c", "#f8a232", "#ffd062", "#fff2b8")
GLASS = px.ramp("#0c1018", "#182230", "#2c3c50", "#7d97ad", "#dcecf6")
CORK = px.ramp("#2a1a0e", "#5e3c22", "#8c6238", "#b88a52")
MASK = px.ramp("#1c1822", "#8d8696", "#cdc6ba", "#efe9dc", "#fffdf4")
SCARF = px.ramp("#3c0710", "#8f1727", "#d8343a", "#ff7356")
NIGHT = px.ramp("#07081a", "#0c1026", "#141a36", "#1e2648")
BLOOD_EDGE = px.rgb("#3a0308")


def gold_piece(s, mask, depth=1):
    """Gold on a mask: bevelled light from the top left, a dark outline (diagonals too)."""
    px.paint(s, px.outline_of(mask, diagonal=True) & (s[..., 3] == 0), px.INK)
    tone = px.bevel(mask, depth)
    px.paint_tones(s, tone, [px.GOLD[2], px.GOLD[3], px.GOLD[4]])


def panel(s, mask):
    colour, alpha = PANEL
    px.paint(s, mask, colour, alpha / 255.0)


# ---------------------------------------------------------------- life bar pieces


def bar(width, ramp_rows):
    """A bar piece: one colour per row (top to bottom), every column alike, fully opaque."""
    s = np.zeros((BAR_H, width, 4), np.uint8)
    s[..., :3] = np.array(ramp_rows, float).round().astype(np.uint8)[:, None, :]
    s[..., 3] = 255
    return s


def life_rows():
    # the crimson of a lit liquid: a bright skin on top, a glossy band, a deep underside
    return [LIFE[4], LIFE[5], LIFE[4], LIFE[3], LIFE[3], LIFE[2], LIFE[1], LIFE[0]]


def lost_rows():
    return [LOST[3], LOST[4], LOST[3], LOST[2], LOST[2], LOST[2], LOST[1], LOST[0]]


# ---------------------------------------------------------------- container


def helm(s, cx, cy):
    """The hero's pale helm, front on, with its visor slit and the red scarf under it."""
    h, w = s.shape[:2]
    ys, xs = px.grid(h, w)
    dx, dy = xs - cx, ys - cy
    dome = ((dx / 9.2) ** 2 + ((dy + 1.5) / 11.5) ** 2 <= 1) & (dy <= 8.5)
    jaw = (np.abs(dx) <= 6.6 - 0.55 * np.clip(dy - 4, 0, 9)) & (dy > 3) & (dy <= 11.5)
    head = dome | jaw
    crest = (np.abs(dx + 0.2) <= 0.7) & (dy >= -13) & (dy <= -3)
    scarf = (((dx / 10.5) ** 2 + ((dy - 13.2) / 3.4) ** 2) <= 1)
    tail = ((np.abs(dy - 14.0 - 0.45 * (dx - 6)) <= 1.6) & (dx >= 5) & (dx <= 15.5)) | \
           ((np.abs(dx - 5.5 + 0.25 * (dy - 15)) <= 1.5) & (dy >= 14) & (dy <= 20.5))
    px.paint(s, px.outline_of(head | scarf | tail, diagonal=True), MASK[0])
    tone = px.bevel(scarf | tail, 1)
    px.paint_tones(s, tone, [SCARF[1], SCARF[2], SCARF[3]])
    px.paint(s, (scarf | tail) & (np.abs(dy - 13.0) < 0.5) & (dx > -9), SCARF[1])
    px.paint(s, px.outline_of(head) & (scarf | tail), MASK[0])
    t = -(dx / 9.2) - (dy / 11.5)                       # lit towards the top left
    px.paint(s, head, MASK[2])
    px.paint(s, head & (t > 0.45), MASK[3])
    px.paint(s, head & (t > 1.05), MASK[4])
    px.paint(s, head & (t < -0.55), MASK[1])
    px.paint(s, head & ~px.shift(head, 0, -1) & (dx > 0), MASK[1])
    # the visor: a T of shadow, lit along its lower lips
    slit = ((np.abs(dy - 1.0) <= 0.9) & (np.abs(dx) <= 6.6)) | ((np.abs(dx) <= 0.9) & (dy >= 1) & (dy <= 7.5))
    px.paint(s, slit, MASK[0])
    px.paint(s, px.shift(slit, 1, 0) & head & ~slit, MASK[4])
    px.paint(s, crest, MASK[1])
    px.paint(s, crest & (dx < 0), MASK[3])


def life_container():
    s = px.new_sprite(CONTAINER_H, CONTAINER_W)
    ys, xs = px.grid(CONTAINER_H, CONTAINER_W)
    # the groove the pieces fill: a dark panel between two gold rails, one gold finial each end
    slot = (xs >= BAR_X) & (xs < BAR_X + PIECE1_W + 2 * PIECE_W) & (ys >= BAR_Y) & (ys < BAR_Y + BAR_H)
    rails = ((xs >= BAR_X - 4) & (xs < CONTAINER_W - 4) &
             (((ys >= BAR_Y - 3) & (ys < BAR_Y - 1)) |
              ((ys >= BAR_Y + BAR_H + 1) & (ys < BAR_Y + BAR_H + 3))))
    end_x = BAR_X + PIECE1_W + 2 * PIECE_W            # 203: first column after piece 3
    cap_r = (xs >= end_x) & (xs < end_x + 2) & (ys >= BAR_Y - 3) & (ys < BAR_Y + BAR_H + 3)
    tip = (np.abs(ys - (BAR_Y + BAR_H / 2)) + (xs - end_x - 2) <= 3.2) & (xs >= end_x + 2)
    cap_l = (xs >= 56) & (xs < BAR_X - 1) & (ys >= BAR_Y - 3) & (ys < BAR_Y + BAR_H + 3)
    cap_l |= (xs >= 56) & (xs < BAR_X - 4) & \
        (np.abs(ys - (BAR_Y + BAR_H / 2)) <= BAR_H / 2 + 5 - 0.5 * (xs - 56))
    # studs on the rails where one piece meets the next
    studs = np.zeros_like(slot)
    for bx in (BAR_X + PIECE1_W, BAR_X + PIECE1_W + PIECE_W):
        studs |= (np.abs(xs - bx) <= 1.0) & ((np.abs(ys - (BAR_Y - 4.5)) <= 1.0) |
                                             (np.abs(ys - (BAR_Y + BAR_H + 3.5)) <= 1.0))
    # the medallion on the left, overlapping the groove's left cap
    mc = (34.0, 31.0)
    r = np.hypot(xs - mc[0], ys - mc[1])
    ring = (r <= 27.5) & (r > 23.5)
    field = r <= 23.5
    # the alcove of the flask: its inside is exactly the flask's frame with an arched top, and a
    # 2 px gold frame round it; it hangs from the groove by a stem
    acx = FLASK_X + FRAME_W / 2.0
    spring = FLASK_Y + 6.0                            # where the arch springs from the sides
    arch_in = (xs >= FLASK_X) & (xs < FLASK_X + FRAME_W) & (ys < FLASK_Y + FRAME_H) & \
        ((ys >= spring) | (np.hypot(xs - acx, ys - spring) <= FRAME_W / 2.0 + 0.3))
    arch = px.dilate(px.dilate(arch_in, diagonal=True), diagonal=True)
    fy0 = int(np.nonzero(arch.any(axis=1))[0].min())
    stem = (np.abs(xs - acx) <= 1.2) & (ys >= BAR_Y + BAR_H + 3) & (ys < fy0 - 2)
    knot = np.hypot(xs - acx, ys - (BAR_Y + BAR_H + 7.5)) <= 2.2
    # dark panels first: the groove, the medallion's field, the alcove
    panel(s, slot)
    px.paint(s, slot & (ys == BAR_Y), GROOVE[0])
    px.paint(s, slot & (ys == BAR_Y + BAR_H - 1), GROOVE[3])
    panel(s, arch_in)
    px.paint(s, field, NIGHT[1])
    px.paint(s, field & (r > 20.5), NIGHT[0])
    px.paint(s, field & ((xs - mc[0]) + (ys - mc[1]) < -20) & (r > 19.5), NIGHT[2])
    # gold: rails, caps, studs, medallion ring, alcove frame, stem, scroll
    gold = rails | cap_r | tip | cap_l | studs | ring | (arch & ~arch_in) | stem | knot
    gold_piece(s, gold)
    px.paint(s, px.outline_of(slot) & ~gold & ~slot, px.INK)
    # the medallion ring: an inner groove and four rivets
    px.paint(s, (np.abs(r - 25.5) < 0.5), px.GOLD[2])
    for a in (45, 135, 225, 315):
        rx = mc[0] + 25.5 * math.cos(math.radians(a))
        ry = mc[1] + 25.5 * math.sin(math.radians(a))
        rivet = np.hypot(xs - rx, ys - ry) <= 1.0
        px.paint(s, rivet, px.GOLD[5] if a == 225 else px.GOLD[4])
    px.paint(s, px.outline_of(field) & field, px.INK)
    # stars in the medallion's night, and the helm before them
    for sx, sy in ((20, 24), (46, 19), (24, 41), (45, 40), (30, 13)):
        px.paint(s, (np.abs(xs - sx - 0.5) < 0.6) & (np.abs(ys - sy - 0.5) < 0.6), NIGHT[3])
    shoulders = field & (((xs - mc[0]) / 19.0) ** 2 + ((ys - mc[1] - 23.0) / 10.0) ** 2 <= 1)
    px.paint(s, shoulders, px.rgb("#1a1626"))
    px.paint(s, shoulders & ~px.shift(shoulders, 1, 0), px.rgb("#3a3450"))
    px.paint(s, shoulders & ~px.shift(shoulders, 1, 0) & (xs < mc[0] - 6), px.rgb("#534b70"))
    helm(s, mc[0], mc[1] - 2.0)
    px.paint(s, px.outline_of(field) & field, px.INK)
    return px.to_rgba8(s)


# ---------------------------------------------------------------- heal flask


def flask(level, frame=0, frames=1, start=None, end=None):
    """One 27 x 26 frame of the flask, filled to `level` (0 empty .. 1 full). While the level is
    falling from `start` to `end`, the surface sloshes (never below the level it settles at, so
    the clip never seems to refill), bubbles rise and motes of light leave through the neck."""
    s = px.new_sprite(FRAME_H, FRAME_W)
    ys, xs = px.grid(FRAME_H, FRAME_W)
    cx, cy, rad = 13.5, 16.0, 9.0
    bulb = np.hypot(xs - cx, ys - cy) <= rad
    neck = (np.abs(xs - cx) <= 3.0) & (ys >= 3.0) & (ys < 9.0)
    lip = (np.abs(xs - cx) <= 4.0) & (ys >= 4.0) & (ys < 6.0)
    cork = (np.abs(xs - cx) <= 2.2) & (ys >= 1.0) & (ys < 5.0)
    glass = bulb | neck
    inside = px.erode(glass) & (ys >= 6.0)
    px.paint(s, px.outline_of(glass | lip | cork, diagonal=True), px.INK)
    px.paint(s, glass, GLASS[1], 0.82)
    px.paint(s, inside, GLASS[0], 0.82)
    # the draught: fills the inside from the bottom up to its level
    surf = surface_row(inside, level)
    bot_y = float(np.nonzero(inside.any(axis=1))[0].max() + 1)
    moving = start is not None and frames > 1
    t = frame / (frames - 1) if moving else 1.0
    amp = 1.2 * (1 - t) if moving else 0.0
    wave = amp * np.sin(xs * 0.9 + frame * 2.1)
    liquid = inside & (ys >= surf + wave) & (level > 0)
    if moving and end is not None and end > 0:
        liquid |= inside & (ys >= surface_row(inside, end))
    body_t = (ys - surf) / max(bot_y - surf, 1.0)
    px.paint(s, liquid, DRAUGHT[3])
    px.paint(s, liquid & (body_t > 0.45), DRAUGHT[2])
    px.paint(s, liquid & (body_t > 0.8), DRAUGHT[1])
    px.paint(s, liquid & (xs > cx + 5), DRAUGHT[1])
    px.paint(s, liquid & (xs < cx - 4) & (body_t < 0.8), DRAUGHT[4])
    skin = liquid & ~px.shift(liquid, 1, 0)
    px.paint(s, skin, DRAUGHT[5])
    if moving and t < 1:
        rng = np.random.RandomState(700 + frame)
        for k in range(2):
            bx = 9 + (5 * k + 3 * frame) % 10
            by = int(round(bot_y - 2 - ((frame * 3 + 5 * k) % 9)))
            if 0 <= by < FRAME_H and liquid[by, bx]:
                s[by, bx, :3] = DRAUGHT[5]
        # motes of light rising out of the neck while the draught is drunk
        for k in range(3):
            my = 3 - ((frame + 2 * k) % 4)
            mx = int(cx) - 3 + (k * 3 + frame) % 7
            if 0 <= my < FRAME_H and s[my, mx, 3] == 0 and rng.rand() < 0.9:
                s[my, mx, :3] = DRAUGHT[4 + (k % 2)]
                s[my, mx, 3] = 255
    # the cork and the glass's lip
    px.paint(s, lip, GLASS[2])
    px.paint(s, lip & (ys < 5), GLASS[3])
    tone = px.bevel(cork, 1)
    px.paint_tones(s, tone, [CORK[1], CORK[2], CORK[3]])
    # reflections on the glass, always on top: a long curved streak on the lit side, a dot
    streak = (np.abs(np.hypot(xs - cx, ys - cy) - 6.8) <= 0.55) & (xs < cx - 1.5) & \
        (ys < cy + 1) & (ys > cy - 6.5)
    px.paint(s, streak, GLASS[4])
    px.paint(s, (np.abs(xs - (cx + 5.5)) < 0.6) & (np.abs(ys - (cy + 4.5)) < 0.6), GLASS[3])
    px.paint(s, (np.abs(xs - (cx - 1.5)) < 0.6) & (ys >= 6) & (ys < 8), GLASS[3])
    # the dark rim the bulb sits on, inside the outline: the glass is thick at the bottom
    px.paint(s, bulb & ~px.shift(bulb, -1, 0) & ~liquid, GLASS[2])
    return px.to_rgba8(s)


def surface_row(inside, level):
    """The row where the draught's surface lies so that it fills `level` of the bulb's volume
    (counted in pixels of the inside below the neck), not of its height: a third of a round
    flask is a shallow pool."""
    rows = inside.sum(axis=1).astype(float)
    rows[:8] = 0                                      # the neck does not count
    below = np.cumsum(rows[::-1])[::-1]               # pixels at or below each row
    target = level * rows.sum()
    if level <= 0:
        return float(len(rows) + 1)
    y = int(np.nonzero(below >= target - 1e-9)[0].max())
    # the fraction of row y needed on top of the rows below it
    extra = (target - (below[y] - rows[y])) / max(rows[y], 1.0)
    return y + 1.0 - extra


def ease_in_out(t):
    return t * t * (3 - 2 * t)


def heal_clips():
    """The sheet's rows as lists of frames: each row drains from one level to the next, starting
    full of its first level and holding the new level on its last frame."""
    rows = []
    for frames, a, b in HEAL_CLIPS:
        row = []
        for i in range(frames):
            t = i / (frames - 1)
            level = b if i == frames - 1 else a + (b - a) * ease_in_out(t)
            row.append(flask(level, i, frames, start=a if 0 < i < frames - 1 else None, end=b))
        rows.append((f"{a:.2f}->{b:.2f}", row))
    return rows


def heal_sheet():
    return px.sheet(heal_clips(), FRAME_W, FRAME_H)


# ---------------------------------------------------------------- vignette


def vignette():
    """1920 x 1080: blood red at the edges, fading inwards over a dithered band to exactly 0."""
    w, h = VIGNETTE_W // HUD_SCALE, VIGNETTE_H // HUD_SCALE
    ys, xs = px.grid(h, w)
    x0, y0, x1, y1 = (v / HUD_SCALE for v in VIGNETTE_CLEAR)
    # distance outside the clear rectangle, measured as a fraction of the band to the edge
    fx = np.maximum(np.maximum(x0 - xs, xs - x1), 0) / x0
    fy = np.maximum(np.maximum(y0 - ys, ys - y1), 0) / y0
    f = np.clip(np.hypot(fx, fy), 0, 1)
    a = f ** 1.6
    levels = 8
    q = px.dither_index(a, levels + 1) / levels      # stepped alpha, dithered between steps
    s = np.zeros((h, w, 4), float)
    deep = np.clip(f * 1.4 - 0.4, 0, 1)[..., None]
    s[..., :3] = np.array(px.rgb("#7a0a12")) * (1 - deep) + np.array(BLOOD_EDGE) * deep
    s[..., 3] = 235 * q
    s[q == 0] = 0
    return px.upscale(px.to_rgba8(s), HUD_SCALE)


# ---------------------------------------------------------------- money counter icon

ICON_W, ICON_H = 70, 22


def hud_piece():
    """The counter's coin on the left end of a dark plaque the amount is written on. The amount
    (size 72, centred at HUD (1820, 31)) covers HUD y 29..79, between the plaque's gold rules
    (y 25 and 85); up to four digits stay clear of the coin (HUD x 1695..1743)."""
    s = px.new_sprite(ICON_H, ICON_W)
    ys, xs = px.grid(ICON_H, ICON_W)
    mid = ICON_H / 2.0
    body = (xs >= 9) & (xs < ICON_W - 6) & (ys >= 1) & (ys < ICON_H - 1)
    point = (np.abs(ys - mid) + (xs - (ICON_W - 6)) <= mid - 1) & (xs >= ICON_W - 6)
    plaque = body | point
    panel(s, plaque)
    px.paint(s, plaque & (ys < 3), px.rgb("#241a20"), 0.85)
    rule = (xs >= 14) & (xs < ICON_W - 8)
    px.paint(s, rule & (np.abs(ys - 1.5) < 0.6), px.GOLD[4])
    px.paint(s, rule & (np.abs(ys - 2.5) < 0.6), px.GOLD[2])
    px.paint(s, rule & (np.abs(ys - (ICON_H - 2.5)) < 0.6), px.GOLD[3])
    px.paint(s, rule & (np.abs(ys - (ICON_H - 1.5)) < 0.6), px.GOLD[1])
    diamond = np.abs(xs - (ICON_W - 4.5)) + np.abs(ys - mid) <= 3.1
    gold_piece(s, diamond)
    px.paint(s, (np.abs(xs - (ICON_W - 5.5)) < 0.6) & (np.abs(ys - (mid - 1)) < 0.6), px.GOLD[5])
    coin = coins.coin_face(16, 6.8)
    a = coin[..., 3] > 0
    top = (ICON_H - 16) // 2
    s[top:top + 16, 0:16][a] = coin[a]
    return px.to_rgba8(s)


# ---------------------------------------------------------------- world menu button

BUTTON_W, BUTTON_H = 58, 17


def world_button():
    """A dark plate in a 2 px gold frame with cut corners, corner studs and a thin inlay; the face
    is lighter at the top, shadowed under the frame's top and left edges (58 x 17, shown ~x3)."""
    s = px.new_sprite(BUTTON_H, BUTTON_W)
    ys, xs = px.grid(BUTTON_H, BUTTON_W)
    outer = (np.minimum(xs, BUTTON_W - xs) + np.minimum(ys, BUTTON_H - ys) >= 2.5)
    face = (xs >= 3) & (xs < BUTTON_W - 3) & (ys >= 3) & (ys < BUTTON_H - 3)
    px.paint(s, outer & ~px.erode(outer), px.INK)
    frame = px.erode(outer) & ~face
    tone = px.bevel(px.erode(outer), 1)
    px.paint_tones(s, np.where(frame, tone, -1), [px.GOLD[2], px.GOLD[3], px.GOLD[4]])
    inner_edge = frame & px.dilate(face)
    px.paint(s, inner_edge & (ys < BUTTON_H / 2), px.GOLD[2])
    px.paint(s, inner_edge & (ys >= BUTTON_H / 2) & ~(ys < 3), px.GOLD[4])
    px.paint(s, frame & (ys < 1.6) & (xs > 3) & (xs < BUTTON_W - 3), px.GOLD[5])
    # the face: dark, a touch lighter at the top, an inner shadow under the frame
    px.paint(s, face, px.rgb("#1e1620"), 0.92)
    px.paint(s, face & (ys < 7), px.rgb("#2a1f2a"), 0.92)
    px.paint(s, face & ((ys < 4) | (xs < 4)), px.rgb("#0f0a10"), 0.95)
    px.paint(s, face & (ys >= BUTTON_H - 4), px.rgb("#3a2a30"), 0.92)
    # thin gold inlay at both ends of the face, clear of the label in the middle
    inlay = face & ((ys == 5) | (ys == BUTTON_H - 6)) & ((xs < 10) | (xs >= BUTTON_W - 10)) & \
        (xs >= 6) & (xs < BUTTON_W - 6)
    px.paint(s, inlay, px.GOLD[1])
    # studs in the face's corners
    for cx, cy in ((4, 4), (BUTTON_W - 5, 4), (4, BUTTON_H - 5), (BUTTON_W - 5, BUTTON_H - 5)):
        stud = (np.abs(xs - cx - 0.5) < 0.6) & (np.abs(ys - cy - 0.5) < 0.6)
        px.paint(s, stud, px.GOLD[5] if (cx, cy) == (4, 4) else px.GOLD[4])
        px.paint(s, px.shift(stud, 1, 1) & face, px.INK)
    return px.to_rgba8(s)


# ---------------------------------------------------------------- output


def pictures():
    """Every picture of this module: repository path -> uint8 RGBA."""
    return {
        "Assets/Sprites/HUD/Player/LifeContainer.png": life_container(),
        "Assets/Sprites/HUD/Player/LifeBar40.png": bar(PIECE1_W, life_rows()),
        "Assets/Sprites/HUD/Player/LifeBar40Lost.png": bar(PIECE1_W, lost_rows()),
        "Assets/Sprites/HUD/Player/LifeBar30.png": bar(PIECE_W, life_rows()),
        "Assets/Sprites/HUD/Player/LifeBarLost.png": bar(PIECE_W, lost_rows()),
        "Assets/Sprites/HUD/Player/vignette.png": vignette(),
        "Assets/Sprites/HUD/Player/HealBar/HealSheet.png": heal_sheet(),
        "Assets/Sprites/HUD/Score/hud piece.png": hud_piece(),
        "Assets/Sprites/WorldHUD/button.png": world_button(),
    }


def generate(out):
    return [px.save_png(img, out / rel) for rel, img in pictures().items()]

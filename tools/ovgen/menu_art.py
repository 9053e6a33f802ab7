"""Menu and settings interface pieces: selector arrows, volume slider (bar, fill, knob), tab marker.

All are gold on a dark 1 px outline, lit from the top left, drawn on a small grid and upscaled.
"""
import numpy as np

from . import pixel as px
from . import title_backdrop

GEM = px.ramp("#0f2a3a", "#1f5f7a", "#3fa3c0", "#9fe6f2", "#effdff")  # cold moonstone
GROOVE = px.ramp("#07060a", "#100d14", "#19151d", "#2a2228")
EMBER_FILL = px.ramp("#7a2e10", "#c4561c", "#ee8a2e", "#ffc14a", "#ffe48e", "#fff6cf")

ARROW = [  # the left selector, pointing right at the label; outline is added around it
    "............",
    ".....#......",
    ".....##.....",
    ".....####...",
    "..#...####..",
    ".###..#####.",
    ".###..#####.",
    "..#...####..",
    ".....####...",
    ".....##.....",
    ".....#......",
    "............",
]


def gold_piece(mask, depth=1):
    """A gold sprite from a mask: bevelled body plus a dark outline (diagonals included)."""
    s = px.new_sprite(*mask.shape)
    px.paint(s, px.outline_of(mask, diagonal=True), px.INK)
    tone = px.bevel(mask, depth)
    px.paint_tones(s, tone, [px.GOLD[2], px.GOLD[3], px.GOLD[4]])
    return s


def selector_arrows():
    """Faceted gold arrowheads: the upper facets catch the light, the lower ones fall in shade."""
    mask = px.ascii_mask(ARROW)
    left = gold_piece(mask)
    lower = mask & (np.arange(12)[:, None] >= 6)
    px.paint(left, lower & (px.bevel(mask) == 1), px.GOLD[2])
    px.paint(left, lower & (px.bevel(mask) == 2), px.GOLD[3])
    px.paint(left, mask & (np.arange(12)[:, None] == 5) & (np.arange(12)[None, :] >= 7), px.GOLD[5])
    left = px.upscale(left, 2)
    return left, left[:, ::-1].copy()


# ---------------------------------------------------------------- volume slider

BAR_W, BAR_H, BAR_SCALE = 288, 8, 3


def _frame(interior):
    """The slider's shared frame (rounded ends, gold rim) around a given 6-row interior."""
    s = px.new_sprite(BAR_H, BAR_W)
    s[1:7, 1:BAR_W - 1, :3] = interior
    s[1:7, 1:BAR_W - 1, 3] = 255
    gold = px.GOLD
    s[0, 2:BAR_W - 2] = [*gold[4], 255]
    s[7, 2:BAR_W - 2] = [*gold[2], 255]
    for x, col in ((0, gold[3]), (BAR_W - 1, gold[2])):
        s[2:6, x] = [*col, 255]
    for x, y in ((1, 1), (1, 6), (BAR_W - 2, 1), (BAR_W - 2, 6)):
        s[y, x] = [*(gold[4] if x == 1 and y == 1 else gold[3]), 255]
    return s


def bar():
    """The empty slider: a dark recessed groove, shadowed under its top lip."""
    rows = [GROOVE[0], GROOVE[0], GROOVE[1], GROOVE[1], GROOVE[2], GROOVE[3]]
    interior = np.array(rows)[:, None, :].repeat(BAR_W - 2, axis=1)
    s = _frame(interior)
    s[2:6, 1:BAR_W - 1, 3] = 228  # a little of the screen shows through the groove
    for x in range(1 + 24, BAR_W - 1, 24):  # faint notches every tenth-ish of the scale
        s[5, x, :3] = GROOVE[3]
    return px.upscale(s, BAR_SCALE)


def filler():
    """The filled slider: molten gold, hot in the middle; uniform along x so any crop fits."""
    rows = [EMBER_FILL[5], EMBER_FILL[4], EMBER_FILL[3], EMBER_FILL[3], EMBER_FILL[2], EMBER_FILL[1]]
    interior = np.array(rows)[:, None, :].repeat(BAR_W - 2, axis=1)
    sparks = (np.arange(BAR_W - 2) % 6) == 3
    interior[3, sparks] = EMBER_FILL[4]
    interior[5, (np.arange(BAR_W - 2) % 6) == 0] = EMBER_FILL[0]
    return px.upscale(_frame(interior), BAR_SCALE)


KNOB = [
    "............",
    "....####....",
    "..########..",
    "..########..",
    ".##########.",
    ".##########.",
    ".##########.",
    ".##########.",
    "..########..",
    "..########..",
    "....####....",
    "............",
]


def knob():
    """A gold-rimmed medallion holding a cold moonstone, readable over groove and fill."""
    disc = px.ascii_mask(KNOB)
    s = gold_piece(disc)
    gem = px.erode(px.erode(disc))
    tone = px.bevel(gem)
    px.paint_tones(s, tone, [GEM[1], GEM[2], GEM[3]])
    ys, xs = np.mgrid[0:12, 0:12]
    px.paint(s, gem & (ys == 4) & (xs == 4), GEM[4])
    px.paint(s, gem & (ys == 7) & (xs == 6), GEM[3])  # light caught inside the stone
    return px.upscale(s, 3)


# ---------------------------------------------------------------- settings tab marker


def window_select():
    """Tab underline (144 x 8, shown x2): a tapering gold rule with a central diamond."""
    w, h = 144, 8
    ys, xs = px.grid(h, w)
    cx = w / 2
    d = np.abs(xs - cx)
    rule = (np.abs(ys - 4) < 1) & (d < 62)
    rule |= (np.abs(ys - 4) < 1.5) & (d < 40) & (ys >= 3)
    diamond = np.abs(xs - cx) + np.abs(ys - 4) < 3.6
    tips = (np.abs(xs - (cx - 65)) + np.abs(ys - 4) < 1.6) | (np.abs(xs - (cx + 65)) + np.abs(ys - 4) < 1.6)
    shape = rule | diamond | tips
    s = gold_piece(shape)
    px.paint(s, diamond & (np.abs(xs - cx) < 1) & (np.abs(ys - 4) < 1), px.GOLD[5])
    return s


def generate(out):
    left, right = selector_arrows()
    files = {
        "Assets/Sprites/Menu/GameMenu.png": title_backdrop.render(),
        "Assets/Sprites/Menu/ButtonSelectorLeft.png": left,
        "Assets/Sprites/Menu/ButtonSelectorRight.png": right,
        "Assets/Sprites/Settings/bar.png": bar(),
        "Assets/Sprites/Settings/filler.png": filler(),
        "Assets/Sprites/Settings/button.png": knob(),
        "Assets/Sprites/Settings/windowSelect.png": window_select(),
    }
    return [px.save_png(img, out / rel) for rel, img in files.items()]

"""The boss life bar, Sprites/HUD/Boss/, and docs/boss_bar_preview.png.

The game draws the four pictures at one point, each with its origin at its own centre, x3, in
this order: the frame, the trail, the fill, the ornaments; then the boss's name. The point is
(960, 1080 - 1.5 x the frame's height), so the frame's bottom sits on the bottom edge of the
1920 x 1080 HUD, and later bars stack upwards by 0.7 of the frame's height.

- LifeContainer.png (320 x 52): a dark groove between two gold rails with spear-tipped end caps,
  studs at the quarters, a title bracket rising at the left end and a crescent pendant under the
  middle. The groove is centred in the frame (the fill is centred on the same point), 300 x 8 at
  texture (10, 22). The name (the game's font, size 50, crimson with a black outline) is set at
  the frame's top-left, shifted by the size of the word "text": it stands on the top rail, its
  descenders just reaching it. Everything has even sizes, so every centre falls on a whole
  screen pixel.
- LifeBarLosed.png (300 x 8): the trail, the pale ember of the player's lost life, shown under
  the fill and shrinking from the right after a hit.
- LifeBar.png (300 x 8): the fill, a deep wine red with a bright skin. The game cuts its width
  from the right in proportion to the boss's life, so it is opaque to every edge and every
  column looks the same.
- LifeOrnements.png (320 x 52): what lies over the bar: gold clasps over both ends of the groove
  and a faint glass sheen along it (translucent, so the fill, the trail and the empty groove all
  look under glass).
"""
import numpy as np
from PIL import Image, ImageDraw, ImageFont

from . import hud
from . import pixel as px

FOLDER = "Assets/Sprites/HUD/Boss/"
CW, CH = 320, 52              # the frame
BW, BH = 300, 8               # the fill and the trail
SLOT_X, SLOT_Y = (CW - BW) // 2, (CH - BH) // 2      # (10, 22): the groove, centred in the frame
HUD_W, HUD_H, SCALE = 1920, 1080, 3
NAME_SIZE, NAME_COLOUR, NAME_OUTLINE = 50, (149, 46, 54, 255), 2

BOSS = px.ramp("#2a0410", "#580c1c", "#8a1426", "#b82232", "#dc4646", "#ff8a76")


def bar(rows):
    """A bar: one colour per row (top to bottom), every column alike, fully opaque."""
    s = np.zeros((BH, BW, 4), np.uint8)
    s[..., :3] = np.array(rows, float).round().astype(np.uint8)[:, None, :]
    s[..., 3] = 255
    return s


def fill():
    # the skin of a lit liquid on top, a glossy band, a deep underside
    return bar([BOSS[4], BOSS[5], BOSS[4], BOSS[3], BOSS[3], BOSS[2], BOSS[1], BOSS[0]])


def trail():
    return bar(hud.lost_rows())


def container():
    s = px.new_sprite(CH, CW)
    ys, xs = px.grid(CH, CW)
    mid_y = SLOT_Y + BH / 2.0
    slot = (xs >= SLOT_X) & (xs < SLOT_X + BW) & (ys >= SLOT_Y) & (ys < SLOT_Y + BH)
    rails = (xs >= SLOT_X - 4) & (xs < SLOT_X + BW + 4) & \
        (((ys >= SLOT_Y - 3) & (ys < SLOT_Y - 1)) | ((ys >= SLOT_Y + BH + 1) & (ys < SLOT_Y + BH + 3)))
    caps = np.zeros_like(slot)
    tips = np.zeros_like(slot)
    for x0, out in ((SLOT_X - 5, -1), (SLOT_X + BW + 2, 1)):
        caps |= (xs >= x0) & (xs < x0 + 3) & (ys >= SLOT_Y - 5) & (ys < SLOT_Y + BH + 5)
        edge = x0 if out < 0 else x0 + 3                   # the cap's outer side
        d = (edge - xs) if out < 0 else (xs - edge)
        tips |= (d >= 0) & (np.abs(ys - mid_y) + d <= 5.2)
    # a ring on each spear tip
    rings = np.zeros_like(slot)
    for cx in (2.5, CW - 2.5):
        r = np.hypot(xs - cx, ys - mid_y)
        rings |= (r <= 2.3)
    # studs above and below the rails at the quarters
    studs = np.zeros_like(slot)
    for k in (1, 2, 3):
        bx = SLOT_X + BW * k / 4.0
        studs |= (np.abs(xs - bx) <= 1.0) & ((np.abs(ys - (SLOT_Y - 4.5)) <= 1.0) |
                                             (np.abs(ys - (SLOT_Y + BH + 3.5)) <= 1.0))
    # the title bracket: a gold stem rising from the left cap, a diamond on top, a short spur
    # reaching right along the name's cap line
    bracket = (xs >= SLOT_X - 4) & (xs < SLOT_X - 2) & (ys >= 8) & (ys < SLOT_Y - 5)
    bracket |= (np.abs(xs - (SLOT_X - 3)) + np.abs(ys - 5.5) <= 3.2)
    bracket |= (xs >= SLOT_X - 2) & (xs < SLOT_X + 2) & (ys >= 5) & (ys < 6)
    # the pendant: a stem from the lower rail to a crescent in a ring under the middle
    pc = (CW / 2.0, SLOT_Y + BH + 13.0)
    stem = (np.abs(xs - CW / 2.0) <= 1.0) & (ys >= SLOT_Y + BH + 3) & (ys < pc[1] - 5.5)
    pr = np.hypot(xs - pc[0], ys - pc[1])
    ring = (pr <= 6.8) & (pr > 4.6)
    disc = pr <= 4.6
    crescent = disc & (np.hypot(xs - pc[0] - 1.9, ys - pc[1] + 1.3) > 3.7) & (pr <= 3.8)
    # a small drop under each end cap
    scrolls = np.zeros_like(slot)
    for cx in (SLOT_X - 3.5, SLOT_X + BW + 3.5):
        scrolls |= (np.abs(xs - cx) * 1.6 + np.abs(ys - (SLOT_Y + BH + 7.5)) <= 3.0)
    # the groove: a dark panel, darkest along its top edge
    hud.panel(s, slot)
    px.paint(s, slot & (np.floor(ys) == SLOT_Y), hud.GROOVE[0])
    px.paint(s, slot & (np.floor(ys) == SLOT_Y + BH - 1), hud.GROOVE[3])
    px.paint(s, disc, hud.NIGHT[1])
    gold = rails | caps | tips | studs | bracket | stem | ring | scrolls
    gold &= ~slot
    hud.gold_piece(s, gold & ~rings)
    hud.gold_piece(s, rings)                               # its own bevel, so it reads as a ring
    px.paint(s, rings & (np.hypot(xs - np.where(xs < CW / 2, 2.5, CW - 2.5), ys - mid_y) <= 1.0), px.INK)
    px.paint(s, px.outline_of(slot) & ~gold & ~slot, px.INK)
    px.paint(s, crescent, px.GOLD[5])
    px.paint(s, crescent & (xs > pc[0]), px.GOLD[4])
    px.paint(s, px.outline_of(disc) & disc & ~crescent, px.INK)
    # a bright rivet on the top-left of each cap
    for cx in (SLOT_X - 4, SLOT_X + BW + 2):
        px.paint(s, (np.floor(xs) == cx) & (np.floor(ys) == SLOT_Y - 4), px.GOLD[5])
    return px.to_rgba8(s)


def ornaments():
    s = px.new_sprite(CH, CW)
    ys, xs = px.grid(CH, CW)
    # clasps over both ends of the groove, a little taller than it
    clasps = np.zeros((CH, CW), bool)
    for x0 in (SLOT_X - 1, SLOT_X + BW - 2):
        clasps |= (xs >= x0) & (xs < x0 + 3) & (ys >= SLOT_Y - 2) & (ys < SLOT_Y + BH + 2)
    hud.gold_piece(s, clasps)
    px.paint(s, clasps & (np.floor(ys) == SLOT_Y + BH // 2 - 1) & (np.floor(xs) % 3 == 1), px.GOLD[5])
    # the glass: a faint sheen along the second row, a brighter streak near the left, a soft
    # shade along the bottom
    inner = (xs >= SLOT_X + 2) & (xs < SLOT_X + BW - 2)
    row = np.floor(ys)
    px.paint(s, inner & (row == SLOT_Y + 1), (255, 250, 235), 0.22)
    px.paint(s, inner & (row == SLOT_Y + 1) & (xs >= SLOT_X + 6) & (xs < SLOT_X + 40), (255, 250, 235), 0.5)
    px.paint(s, inner & (row == SLOT_Y + 2) & (xs >= SLOT_X + 8) & (xs < SLOT_X + 18), (255, 250, 235), 0.3)
    px.paint(s, inner & (row == SLOT_Y + BH - 1), (0, 0, 0), 0.25)
    return px.to_rgba8(s)


def pictures():
    return {
        FOLDER + "LifeContainer.png": container(),
        FOLDER + "LifeBarLosed.png": trail(),
        FOLDER + "LifeBar.png": fill(),
        FOLDER + "LifeOrnements.png": ornaments(),
    }


# ---------------------------------------------------------------- where the game draws it


def centre(container_h, stacked=0):
    """The screen point all four pictures are centred on, for the n-th bar."""
    y = HUD_H - container_h * SCALE / 2.0 - stacked * container_h * SCALE * 0.7
    return HUD_W / 2.0, y


def name_pen(font_path, container_left, container_top):
    """Where the name's pen starts (its left, its baseline): the text's origin is (-0.5, 0.3)
    times the size of the word "text" (with its outline), and it is placed on the frame's
    top-left; the glyphs hang from a baseline one character size below the text's top."""
    f = ImageFont.truetype(str(font_path), NAME_SIZE)
    x0, y0, x1, y1 = f.getbbox("text", anchor="ls")
    w, h = x1 - x0 + 2 * NAME_OUTLINE, y1 - y0 + 2 * NAME_OUTLINE
    return container_left + 0.5 * w, container_top - 0.3 * h + NAME_SIZE


def draw_boss_bar(canvas, out, name, life, trail_life, max_life, stacked=0):
    """One boss bar on a 1920 x 1080 canvas, as the game draws it: the fill cut to
    trunc(life / max x its width), the trail to its own width, the name over everything."""
    tex = {k: np.array(Image.open(out / (FOLDER + k + ".png")).convert("RGBA"))
           for k in ("LifeContainer", "LifeBarLosed", "LifeBar", "LifeOrnements")}
    cx, cy = centre(tex["LifeContainer"].shape[0], stacked)
    for key, width in (("LifeContainer", None), ("LifeBarLosed", trail_life), ("LifeBar", life),
                       ("LifeOrnements", None)):
        img = tex[key]
        h, w = img.shape[:2]
        if width is not None:
            cut = int(max(width, 0) / max_life * w) if max_life else 0
            img = img[:, :cut]
        if img.shape[1] == 0:
            continue
        big = Image.fromarray(px.upscale(img, SCALE))
        canvas.alpha_composite(big, (int(cx - w * SCALE / 2), int(cy - h * SCALE / 2)))
    ch, cw = tex["LifeContainer"].shape[:2]
    left, top = cx - cw * SCALE / 2, cy - ch * SCALE / 2
    font = out / "Assets/Fonts/alagard.ttf"
    pen = name_pen(font, left, top)
    ImageDraw.Draw(canvas).text(pen, name, font=ImageFont.truetype(str(font), NAME_SIZE), fill=NAME_COLOUR,
                                stroke_width=NAME_OUTLINE, stroke_fill=(0, 0, 0, 255), anchor="ls")


# ---------------------------------------------------------------- preview


NOMAD_LIFE = 15


def preview(out):
    """Three screens of the Nomad's clearing: the bar full as the fight opens; at 8 of 15 just
    after a hit, the trail still showing the life lost; at 1 of 15 with the trail catching up."""
    from . import hud_preview as hp
    from . import nomad
    sheet = hp.load(out, nomad.SHEET)

    def frame(row, col):
        f = sheet[row * nomad.FH:(row + 1) * nomad.FH, col * nomad.FW:(col + 1) * nomad.FW]
        return np.ascontiguousarray(f[:, ::-1])            # facing left, towards the hero

    floor = hp.GROUND * 32
    shots = []
    for seed, (row, col), hero_x, nomad_x, life, lost, player in (
            (4, (0, 0), 200, 420, 15, 15, (100, (53, 40, 40))),
            (7, (2, 4), 250, 330, 8, 10, (55, (53, 40, 0))),
            (9, (3, 5), 210, 330, 1, 3, (20, (53, 0, 0)))):
        v = hp.room(out, "Forest", seed, deco=((2, 0), (9, 4), (15, 1)))
        hp.put_bottom_centre(v, hp.hero_idle(out), hero_x, floor)
        hp.put_bottom_centre(v, frame(row, col), nomad_x, floor)
        c = hp.screen(v)
        hp.draw_hud(c, out, player[0], player[1], (0, 0), 120)
        draw_boss_bar(c, out, "The Lost Nomad", life, lost, NOMAD_LIFE)
        shots.append(np.array(c))
    return np.concatenate(shots, axis=0)


def generate(out):
    written = [px.save_png(img, out / rel) for rel, img in pictures().items()]
    written.append(px.save_png(preview(out), out / "docs/boss_bar_preview.png"))
    return written

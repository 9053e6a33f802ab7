"""Chests and the ability items that rise out of them.

Sprites/Objects/Chest.png (74 x 58: frames of 37 x 29, drawn x3 from texture (18.5, 27.55), the
chest's foot on row 27): row 0 the closed chest (1 frame), row 1 the opening (2 frames, the game
holds the last). The chest is seen from the front and a little from the right and above, so the
game mirrors it for a chest facing left: a barrel-lidded strongbox of dark oak, gold bands and
corner guards, a gold lock plate with the crescent of the game's crest. Opening, the lid swings
back on its rear hinge and the inside glows with the light of the ability it keeps.
Sprites/Objects/ChestOutline.png (37 x 29): the closed chest's silhouette grown by 1 px (diagonals
too) in the highlight glow of the statues, drawn under the chest while the hero stands at it.

Sprites/Objects/PlayerCapacity/ (24 x 24 each, x3, origin at the centre): Boot.png (the dash),
WingBoot.png (the run), Cloud.png (the cloud), each with a faint dithered glow, as they rise out
of the open chest and fly into the hero.

The chest is built as a few solids in an oblique view (x right, y up, z away from the viewer,
drawn at x + 0.5 z, y + 0.3 z): the box, and the lid as a half-barrel turned about its hinge.
Faces are shaded by their normal against a light from the top left and the front, then rendered
with the character renderer for its part lines, rim light and outline.
"""
import math

import numpy as np
from PIL import Image

from . import ability_art as aa
from . import pixel as px
from . import rig
from .statues import GLOW

FW, FH = 37, 29                 # one frame
ORIGIN = (18.5, 27.55)          # the game's origin, texture px
ITEM_W, ITEM_H = 40, 32         # item canvas
ITEMS = ("Boot", "WingBoot", "Cloud")   # by ability type 0, 1, 2

# box: width, height, depth; lid dome height; oblique offsets per unit of depth
W, H, D, DOME = 24.0, 10.0, 8.0, 5.0
OX, OY = 0.5, 0.42
BASE = 2.0                      # rig y of the chest's underside: its ink line is row 27
LEFT = -(W + OX * D) / 2.0      # rig x of the front face's left edge
LID_ANGLES = (0.0, 52.0, 104.0)  # closed, opening, open (degrees the lid has turned back)

M = rig.Material.of
OAK = M("#120806", "#3a2014", "#573220", "#7a4a2c", "#9c6a40")
OAK_IN = M("#0a0404", "#1e0f0a", "#2e1810", "#3e2216", "#4e2c1c")
GOLDM = M("#2a1608", "#a8701f", "#d9a53a", "#f5d272", "#fff3c4")
LIGHT = px.ramp("#f0a040", "#ffd062", "#fff0a0", "#fffbe4")    # the glow inside, darkest first
L_DIR = np.array([-0.55, 0.75, -0.45])
L_DIR = L_DIR / np.linalg.norm(L_DIR)
VIEW = np.array([OX, OY, -1.0])


def project(p):
    """A point (x, y, z) of the chest to rig coordinates of the frame."""
    x, y, z = p
    return (LEFT + x + OX * z, BASE + y + OY * z)


def face_tone(normal):
    """0 shadow, 1 base, 2 light for a face with this normal."""
    d = float(np.dot(normal, L_DIR))
    return 2 if d > 0.62 else (1 if d > 0.05 else 0)


def visible(normal):
    return float(np.dot(normal, VIEW)) > 1e-6


def quad(cv, pts):
    return cv.polygon([project(p) for p in pts])


def lid_profile(angle, n=10):
    """The lid's cross-section in the (z, y) plane, turned back `angle` degrees about the hinge at
    the box's top back edge: the dome's arc from the front edge to the back edge."""
    a = math.radians(angle)
    ca, sa = math.cos(a), math.sin(a)
    hz, hy = D, H
    pts = []
    for i in range(n + 1):
        t = math.pi * i / n
        z = D / 2.0 - D / 2.0 * math.cos(t)
        y = H + DOME * math.sin(t)
        dz, dy = z - hz, y - hy
        # turning back: the front edge rises over the hinge and falls behind it
        pts.append((hz + dz * ca + dy * sa, hy - dz * sa + dy * ca))
    return pts


class Faces:
    """Accumulates face masks with their tones and materials, back to front."""

    def __init__(self, cv):
        self.cv = cv
        self.items = []

    def add(self, name, mask, mat, tone, group):
        self.items.append((name, mask, mat, tone, group))

    def parts(self):
        out = []
        for name, mask, mat, tone, group in self.items:
            out.append(aa.part(name, mask, mat, group, np.where(mask, tone, -1)))
        return out


def box_faces(cv, faces, open_top):
    """The box: front, right side, and its top (the lid's seat, or the open inside)."""
    front = quad(cv, [(0, 0, 0), (W, 0, 0), (W, H, 0), (0, H, 0)])
    side = quad(cv, [(W, 0, 0), (W, 0, D), (W, H, D), (W, H, 0)])
    top = quad(cv, [(0, H, 0), (W, H, 0), (W, H, D), (0, H, D)])
    faces.add("side", side & ~front, OAK, face_tone(np.array([1.0, 0, 0])), "box")
    faces.add("front", front, OAK, face_tone(np.array([0, 0, -1.0])), "box")
    if open_top:
        rim = top & ~quad(cv, [(1.2, H, 1.0), (W - 1.2, H, 1.0), (W - 1.2, H, D - 1.0), (1.2, H, D - 1.0)])
        inside = top & ~rim
        faces.add("rim", rim, OAK, 2, "box")
        faces.add("inside", inside, OAK_IN, 0, "inside")
    return front, side, top


def lid_faces(cv, faces, angle):
    """The lid: its curved outside in strips, its flat underside once it has turned far enough to
    show it, and the right end cap."""
    prof = lid_profile(angle)
    hinge_front = prof[0]
    outside = np.zeros((cv.h, cv.w), bool)
    tone = np.full((cv.h, cv.w), -1)
    for (z0, y0), (z1, y1) in zip(prof, prof[1:]):
        dz, dy = z1 - z0, y1 - y0
        n = np.array([0.0, dz, -dy])          # outward normal of the arc (turning from front to back)
        n /= np.linalg.norm(n)
        if not visible(n):
            continue
        m = quad(cv, [(0, y0, z0), (W, y0, z0), (W, y1, z1), (0, y1, z1)])
        tone[m] = face_tone(n)
        outside |= m
    # the flat underside, from the front edge to the hinge
    zb, yb = hinge_front
    zh, yh = prof[-1]
    under_n = np.array([0.0, -(zh - zb), (yh - yb)])
    under_n = under_n / np.linalg.norm(under_n)
    under = np.zeros_like(outside)
    if visible(under_n) and angle > 0:
        under = quad(cv, [(0, yb, zb), (W, yb, zb), (W, yh, zh), (0, yh, zh)])
    cap = cv.polygon([project((W, y, z)) for z, y in prof])
    faces.add("lid_under", under & ~outside, OAK_IN, 1, "lid")
    faces.add("lid", outside, OAK, tone, "lid")
    faces.add("lid_cap", cap & ~outside & ~under, OAK, 0, "lid")
    return outside, under, cap, prof


def band_on_lid(cv, prof, x0, x1):
    """A metal band wrapping the lid's outside between x0 and x1."""
    m = np.zeros((cv.h, cv.w), bool)
    for (z0, y0), (z1, y1) in zip(prof, prof[1:]):
        m |= quad(cv, [(x0, y0, z0), (x1, y0, z0), (x1, y1, z1), (x0, y1, z1)])
    return m


def chest_frame(angle):
    """One frame of the chest with the lid turned back `angle` degrees. Returns uint8 RGBA."""
    cv = rig.Canvas(FW, FH)
    faces = Faces(cv)
    open_top = angle > 0
    lid_first = angle > 90
    if lid_first:
        outside, under, cap, prof = lid_faces(cv, faces, angle)
        front, side, top = box_faces(cv, faces, open_top)
    else:
        front, side, top = box_faces(cv, faces, open_top)
        outside, under, cap, prof = lid_faces(cv, faces, angle)
    # gold: two bands round the box and the lid, corner guards, the lid's front lip, the lock
    bands_box = quad(cv, [(3.0, 0, 0), (5.0, 0, 0), (5.0, H, 0), (3.0, H, 0)]) | \
        quad(cv, [(W - 5.0, 0, 0), (W - 3.0, 0, 0), (W - 3.0, H, 0), (W - 5.0, H, 0)])
    guard = quad(cv, [(W - 1.6, 0, 0), (W, 0, 0), (W, 0, 1.6), (W, H, 1.6), (W, H, 0), (W - 1.6, H, 0)])
    guard |= quad(cv, [(0, 0, 0), (1.6, 0, 0), (1.6, H, 0), (0, H, 0)])
    foot = quad(cv, [(0, 0, 0), (W, 0, 0), (W, 1.4, 0), (0, 1.4, 0)]) | \
        quad(cv, [(W, 0, 0), (W, 0, D), (W, 1.4, D), (W, 1.4, 0)])
    box_gold = (bands_box | guard | foot) & (front | side)
    lid_gold = (band_on_lid(cv, prof, 3.0, 5.0) | band_on_lid(cv, prof, W - 5.0, W - 3.0)) & outside
    lip = band_on_lid(cv, prof[:2], 0, W) & outside
    img = aa.render(faces.parts(), FW, FH).astype(float)
    solid = img[..., 3] == 255
    g = GOLDM
    # the gold, shaded like the wood under it: lit on lit faces, dark on the shaded side
    wood_tone = np.full((FH, FW), -1)
    for name, mask, mat, tone, group in faces.items:
        t = np.where(mask, tone, -1)
        wood_tone = np.where(mask, t, wood_tone)
    cap_edge = cap & ~outside & ~under & ~px.erode(cap) if angle > 0 else np.zeros_like(cap)
    under_lip = under & ~px.erode(under) & ~px.shift(under, -1, 0) if angle > 60 else np.zeros_like(under)
    gold = (box_gold | lid_gold | lip | cap_edge | under_lip) & solid
    edge_ink = img[..., :3].sum(axis=-1) <= sum(OAK.ink) + 1
    gold &= ~edge_ink
    for t, col in ((0, g.shadow), (1, g.base), (2, g.light)):
        sel = gold & (wood_tone == t)
        img[sel, :3] = col
    img[gold & ~px.shift(gold, 1, 0) & (wood_tone >= 1) & ~foot, :3] = g.rim
    img[gold & foot & front, :3] = g.base
    # the lid's underside catches the light from inside: warm, brighter towards its lower edge
    if angle > 0:
        u = under & solid & ~gold & ~edge_ink
        if u.any():
            rows = np.nonzero(u.any(axis=1))[0]
            t = (cv.y - cv.y[rows.max(), 0]) / max(rows.max() - rows.min(), 1)
            warm = px.ramp("#2e1810", "#5a2e14", "#8a4a1c")
            img[u, :3] = warm[0]
            img[u & (np.abs(t) < 0.55), :3] = warm[1]
            img[u & (np.abs(t) < 0.25), :3] = warm[2]
    # plank seams on the front and rivets on the bands
    for y in (4.0, 7.6):
        seam = (np.abs(cv.y - (BASE + y)) < 0.5) & front & ~box_gold & solid & ~edge_ink
        img[seam, :3] = OAK.shadow
    for bx in (4.0, W - 4.0):
        for y in (2.6, H - 1.6):
            c = project((bx, y, 0))
            col, row = cv.pixel(c)
            if 0 <= row < FH and 0 <= col < FW and gold[row, col]:
                img[row, col, :3] = g.rim
    # the lock: a gold plate under the front's top edge with the crest's crescent on it
    lock_c = project((W / 2.0, H - 1.6, 0))
    plate = cv.polygon([(lock_c[0] - 2.6, lock_c[1] + 2.2), (lock_c[0] + 2.6, lock_c[1] + 2.2),
                        (lock_c[0] + 2.6, lock_c[1] - 1.6), (lock_c[0], lock_c[1] - 3.4),
                        (lock_c[0] - 2.6, lock_c[1] - 1.6)]) & front
    ink_ring = px.outline_of(plate) & front & solid
    img[ink_ring, :3] = OAK.ink
    tone = rig.tone_map(plate, 1, 1)
    for t, col in ((0, g.shadow), (1, g.light), (2, g.rim)):
        img[plate & (tone == t), :3] = col
    moon = cv.ellipse((lock_c[0] - 0.2, lock_c[1] - 0.2), 1.45, 1.45) & \
        ~cv.ellipse((lock_c[0] + 0.6, lock_c[1] + 0.4), 1.2, 1.2) & plate
    img[moon, :3] = g.shadow
    if open_top:
        glow_inside(img, cv, top, angle)
    return px.to_rgba8(img)


def glow_inside(img, cv, top, angle):
    """The open chest's inside: a pool of light rising from its floor, white at the heart, orange
    towards the dark walls; stronger once the lid is thrown back."""
    inside = top & (img[..., 3] == 255) & (img[..., :3].sum(axis=-1) <= sum(OAK_IN.shadow) + 1)
    if not inside.any():
        return
    rows = np.nonzero(inside.any(axis=1))[0]
    r0, r1 = rows.min(), rows.max()
    ys, xs = px.grid(FH, FW)
    cols = np.nonzero(inside.any(axis=0))[0]
    cx = (cols.min() + cols.max() + 1) / 2.0
    d = np.hypot((xs - cx) / max((cols.max() - cols.min()) / 2.0, 1), (ys - (r1 + 1)) / max(r1 - r0 + 1, 1))
    strength = 1.0 if angle > 90 else 0.75
    for lim, col in ((1.05, LIGHT[0]), (0.8, LIGHT[1]), (0.55, LIGHT[2]), (0.3, LIGHT[3])):
        sel = inside & (d < lim * strength)
        img[sel, :3] = col


def chest_sheet():
    """Row 0: the closed chest; row 1: the two opening frames."""
    frames = [chest_frame(a) for a in LID_ANGLES]
    clips = [("closed", frames[:1]), ("opening", frames[1:])]
    return px.sheet(clips, FW, FH), frames


def outline_picture(frame):
    """The highlight: the closed chest's opaque pixels grown by 1 px (diagonals too)."""
    grown = px.dilate(frame[..., 3] == 255, diagonal=True)
    out = np.zeros_like(frame)
    out[grown, :3] = GLOW
    out[grown, 3] = 255
    return out


# ---------------------------------------------------------------- items


def fit(img, w, h):
    """Centre a picture's opaque box on a w x h canvas, keeping a 1 px clear margin."""
    ys, xs = np.nonzero(img[..., 3])
    crop = img[ys.min():ys.max() + 1, xs.min():xs.max() + 1]
    ch, cw = crop.shape[:2]
    if ch > h - 2 or cw > w - 2:
        raise ValueError(f"item of {cw} x {ch} does not fit {w} x {h} with a margin")
    out = np.zeros((h, w, 4), np.uint8)
    top, left = (h - ch) // 2, (w - cw) // 2
    out[top:top + ch, left:left + cw] = crop
    return out


def boot_item():
    return finish_item(aa.dash_boot(48, 48, 1.2, (-10.0, 10.0), -10.0))


def wing_boot_item():
    return finish_item(aa.winged_boot(48, 48, 1.06, (-3.0, 8.0), 0.0, wing_size=1.12))


def cloud_item():
    return finish_item(aa.cloud(48, 48, 1.35, (0.0, 14.0)))


def finish_item(img):
    """Fit the item on its canvas and put a small star of light on its top left: it is not an
    ordinary thing."""
    img = fit(img, ITEM_W, ITEM_H)
    solid = img[..., 3] == 255
    ys, xs = np.nonzero(solid)
    top = ys.min()
    row = solid[top + 1]
    x = int(np.nonzero(row)[0].min()) if row.any() else int(xs.min())
    aa.sparkle(img, (max(x - 1, 3), max(top + 1, 3)), 2)
    return img


def items():
    return {"Boot": boot_item(), "WingBoot": wing_boot_item(), "Cloud": cloud_item()}


# ---------------------------------------------------------------- preview


def place(canvas, img, pos, origin, scale=3, mirror=False):
    """Draw a texture like an unsmoothed SFML sprite: x`scale` (mirrored for a negative x scale),
    its origin (texture px) on `pos` (world px)."""
    big = px.upscale(img[:, ::-1] if mirror else img, scale)
    ox = (img.shape[1] - origin[0]) if mirror else origin[0]
    canvas.alpha_composite(Image.fromarray(big), (int(round(pos[0] - ox * scale)),
                                                  int(round(pos[1] - origin[1] * scale))))


def preview(out, sheet, outline, pictures):
    """docs/chest_and_items_preview.png: a forest room x3 with, left to right, the closed chest,
    the chest highlighted with the hero at it, the first opening frame, and the open chest (the
    held last frame) with each item at the top of its rise; the last chest faces left."""
    from . import hud_preview as hp
    floor = hp.GROUND * 32
    view = hp.room(out, "Forest", 11, deco=((1, 0), (9, 4), (18, 6)))
    shot = hp.screen(view)
    s = 3
    frame = {k: sheet[r * FH:(r + 1) * FH, c * FW:(c + 1) * FW] for k, (r, c) in
             {"closed": (0, 0), "opening": (1, 0), "open": (1, 1)}.items()}
    hero = hp.hero_idle(out)
    spots = [(40, "closed", None, False), (148, "outlined", None, False), (246, "opening", None, False),
             (344, "open", "Boot", False), (442, "open", "WingBoot", False), (560, "open", "Cloud", True)]
    for x, state, item, mirror in spots:
        pos = (x * s, floor * s)
        if state == "outlined":
            place(shot, outline, pos, (0.49 * FW, 0.95 * FH), s, mirror)
            place(shot, frame["closed"], pos, ORIGIN, s, mirror)
            place(shot, hero, (pos[0] - 30 * s, pos[1]), (hero.shape[1] / 2, hero.shape[0]), s)
        else:
            place(shot, frame[state], pos, ORIGIN, s, mirror)
        if item:
            pic = pictures[item]
            top = (pos[0], pos[1] - 1.5 * FH * s)      # the end of the rise
            place(shot, pic, top, (pic.shape[1] / 2, pic.shape[0] / 2), s)
    band = np.array(shot)[(floor - 100) * s:(floor + 14) * s]
    return band


def generate(out):
    sheet, frames = chest_sheet()
    folder = out / "Assets/Sprites/Objects"
    written = [px.save_png(sheet, folder / "Chest.png"),
               px.save_png(outline_picture(frames[0]), folder / "ChestOutline.png")]
    pictures = items()
    for name, img in pictures.items():
        written.append(px.save_png(img, folder / "PlayerCapacity" / f"{name}.png"))
    written.append(px.save_png(preview(out, sheet, outline_picture(frames[0]), pictures),
                               out / "docs/chest_and_items_preview.png"))
    return written

"""The Flying Knight, "The Empty Armor": Sprites/Enemies/Flying Knight/GladiatorSpriteSheet.png,
SwordSpriteSheet.png, FlyingKnightAnimData.txt, and docs/knight_poses.png (every frame x3 with the
hurtbox and the sword's striking frames).

An empty suit of slate-blue plate floating over a wisp of cold light: a great helm with a red crest
and a glowing visor slit, pauldrons, a cuirass over a tattered red tabard, and two gauntlets that
hover apart from the body, nothing joining the pieces but the dark inside. Its sword flies on its
own: a long blade with cyan runes, drawn upright with the hilt on the frame's bottom centre (the
game turns it about that point, 180 degrees for the plunge).

Knight frames are 48 x 64, facing right; the game's hurtbox is 70 % of the width by 80 % of the
height, bottom-centred, and the armour fills it. Rows: IDLE (the pieces bob out of phase and the
wisp flickers; loops), DEATH (the light goes out and the pieces fall into a heap; holds its last
frame), REVIVE (the heap rising back into a knight; never shown).

Sword frames are 56 x 64. Rows: STATIC (the blade hangs upright, its runes pulsing; loops), ATTACK
(the slash beside the hero: a wind-up, a cut down across on the first damage frame, a low recoil,
a rising cut back up on the second, the return upright). The blade flashes white with a star on
both damage frames; the game re-arms the slash on the frame between them.
"""
import math

import numpy as np

from . import creature
from . import pixel as px
from . import rig
from .animdata import FieldReader
from .rig import Part, add, vec

KW, KH = 48, 64          # knight frame
SW, SH = 56, 64          # sword frame
FOLDER = "Assets/Sprites/Enemies/Flying Knight/"
KNIGHT_SHEET = FOLDER + "GladiatorSpriteSheet.png"
SWORD_SHEET = FOLDER + "SwordSpriteSheet.png"
DATA = FOLDER + "FlyingKnightAnimData.txt"

KNIGHT_CLIPS = [("IDLE", 8), ("DEATH", 10), ("REVIVE", 10)]     # label, frame rate
SWORD_CLIPS = [("STATIC", 6), ("ATTACK", 12)]
DAMAGE = (3, 5)          # the slash's two damage frames, 1-based, with a re-arm frame between
HURTBOX = (KW * 0.7, KH * 0.8)

MATERIALS = {
    "steel": rig.Material.of("#0a0d14", "#2c3648", "#4a5a72", "#7488a4", "#b4c6dc"),
    "dark_steel": rig.Material.of("#07090e", "#1c2230", "#2e384c", "#48566e", "#6e7e98"),
    "brass": rig.Material.of("#140c04", "#5e4016", "#96692a", "#c89a4a", "#ecd08c"),
    "cloth": rig.Material.of("#100406", "#44121a", "#6c1e28", "#92303a", "#b44a50"),
    "void": rig.Material.of("#020306", "#05070c", "#0a0e16", "#0e1420", "#0e1420"),
    "wisp": rig.Material.of("#0a2a30", "#1e6a78", "#3aa6b4", "#7ee0e6", "#c8fbff"),
    "glow": rig.Material.of("#0a2a30", "#3aa6b4", "#7ee0e6", "#c8fbff", "#ffffff"),
    "blade": rig.Material.of("#0c1018", "#5a6a7c", "#94a6b6", "#c4d2de", "#e6eef4"),
    "grip": rig.Material.of("#0c0806", "#2a1a14", "#462c20", "#664230", "#8a5a40"),
}
FLASH = rig.Material.of("#2a3a48", "#d8f4ff", "#f4fcff", "#ffffff", "#ffffff")
SMEAR = rig.Material.of("#0a2a30", "#3a8e9c", "#8ee6ee", "#e4feff", "#ffffff")
TELL = [px.rgb(h) for h in ("#ffffff", "#e4feff", "#8ee6ee", "#3aa6b4")]

# ---------------------------------------------------------------- the knight


def _piece_offsets(phase, fall):
    """Where each piece floats (dx, dy) in rig units: out-of-phase bobbing while alive, dropping to
    its place in the heap as `fall` goes 0 to 1 (each piece a little after the one above it)."""
    def bob(k, amp=1.0):
        return amp * math.sin(2 * math.pi * (phase + 0.17 * k))

    alive = {"helm": (0.0, bob(0)), "body": (0.0, bob(1, 0.6)), "gauntlet_f": (0.0, bob(2, 1.4)),
             "gauntlet_b": (0.0, bob(3, 1.4)), "pauldrons": (0.0, bob(1, 0.8))}
    heap = {"helm": (14.0, -43.0), "body": (-3.0, -21.0), "gauntlet_f": (4.0, -24.0),
            "gauntlet_b": (-6.0, -24.0), "pauldrons": (-1.0, -25.0)}
    delay = {"helm": 0.25, "body": 0.0, "gauntlet_f": 0.1, "gauntlet_b": 0.15, "pauldrons": 0.05}
    out = {}
    for name, (ax, ay) in alive.items():
        t = min(max((fall - delay[name]) / (1.0 - delay[name]), 0.0), 1.0)
        t = t * t                                   # they drop, gathering speed
        hx, hy = heap[name]
        out[name] = (ax + hx * t, ay + hy * t)
    return out


def build_knight(cv, phase, fall, wisp, visor):
    """The armour's parts, back to front. `wisp` 0..1 the light under it, `visor` 0..1 its eyes."""
    m = MATERIALS
    off = _piece_offsets(phase, fall)
    parts = []

    def at(name, p):
        d = off[name]
        return (p[0] + d[0], p[1] + d[1])

    # the back gauntlet, dim and behind the body
    g = at("gauntlet_b", (-11.0, 27.0))
    parts.append(Part("gauntlet_b", cv.capsule(g, add(g, (1.0, 7.0)), 2.6, 2.2), m["steel"], "gb", dim=True))

    # the tattered tabard, swaying
    sway = 1.2 * math.sin(2 * math.pi * (phase + 0.3))
    b = off["body"]
    top_y, hem_y = 25.0 + b[1], 8.0 + b[1] + 6.0 * min(fall, 1.0) ** 2
    hem = [(6.0 + sway + b[0], hem_y), (3.0 + sway + b[0], hem_y + 3.0), (0.5 + sway + b[0], hem_y - 1.0),
           (-2.5 + sway + b[0], hem_y + 2.5), (-5.5 + sway + b[0], hem_y + 0.5)]
    tabard = cv.polygon([(-6.0 + b[0], top_y), (7.0 + b[0], top_y)] + hem)
    parts.append(Part("tabard", tabard, m["cloth"], "tabard"))

    if wisp > 0:                                     # the cold light the armour floats on
        flick = math.sin(2 * math.pi * phase * 2)
        w = 6.0 * wisp
        tip = (-2.0 + 1.5 * flick, 13.0 - 11.0 * wisp)
        mask = cv.polygon([(-w, 15.0), (w, 15.0), (w * 0.5, 8.0), tip, (-w * 0.7, 7.0)])
        mask &= px.bayer(cv.h, cv.w) < 0.35 + 0.9 * (cv.y - tip[1]) / 6.0
        parts.append(Part("wisp", mask, m["wisp"], "fx", outline=False))

    # skirt plates (faulds) below the waist
    faulds = cv.polygon([at("body", p) for p in ((-9.0, 24.0), (10.0, 24.0), (11.5, 17.0), (-10.5, 17.0))])
    fp = Part("faulds", faulds, m["steel"], "body")
    fp.details.append((cv.capsule(at("body", (-10.0, 20.5)), at("body", (11.0, 20.5)), 0.4) & faulds, "ink"))
    parts.append(fp)

    # the cuirass: broad shoulders, a keel forward, a belt
    chest = cv.polygon([at("body", p) for p in ((-10.0, 43.0), (9.0, 43.0), (12.0, 36.0), (10.0, 26.0),
                                                 (-8.5, 26.0), (-11.0, 36.0))])
    cp = Part("cuirass", chest, m["steel"], "body")
    cp.tone = creature.relief_tone(chest, 5)
    cp.details.append((cv.capsule(at("body", (4.0, 42.0)), at("body", (6.5, 29.0)), 0.45) & chest, 3))
    cp.details.append((cv.capsule(at("body", (-9.0, 27.5)), at("body", (10.0, 27.5)), 0.9) & chest, 0))
    cp.details.append((cv.ellipse(at("body", (2.0, 27.5)), 1.4, 1.2) & chest, 3))
    parts.append(cp)
    # the empty collar: the dark inside of the armour shows where a neck should be
    collar = cv.ellipse(at("body", (0.5, 43.5)), 6.0, 2.0)
    parts.append(Part("collar", collar, m["void"], "void", outline=False))

    # pauldrons
    for sx in (-1, 1):
        c = at("pauldrons", (9.5 * sx - 0.5, 40.5))
        pm = cv.ellipse(c, 5.0, 4.2, 15 * sx)
        pp = Part(f"pauldron{sx}", pm, m["steel"], f"pauldron{sx}", dim=sx < 0)
        pp.tone = creature.relief_tone(pm, 3)
        pp.details.append((cv.capsule(add(c, (-4.0, -1.5)), add(c, (4.0, -1.5)), 0.4) & pm, "ink"))
        parts.append(pp)

    # the great helm, floating a hand above the collar
    h = at("helm", (1.0, 51.5))
    helm = cv.polygon([add(h, p) for p in ((-6.0, 6.0), (5.5, 6.5), (7.5, 3.0), (7.0, -5.5), (-6.5, -6.0),
                                           (-7.0, 2.0))])
    hp = Part("helm", helm, m["steel"], "helm")
    hp.tone = creature.relief_tone(helm, 4)
    slit = cv.capsule(add(h, (0.5, 1.0)), add(h, (7.5, 1.0)), 0.7) & helm
    vlight = m["glow"] if visor > 0.5 else (m["wisp"] if visor > 0 else m["void"])
    hp.details.append((slit, "ink"))
    breaths = cv.capsule(add(h, (4.0, -2.5)), add(h, (4.0, -4.5)), 0.35) | \
        cv.capsule(add(h, (6.0, -2.5)), add(h, (6.0, -4.5)), 0.35)
    hp.details.append((breaths & helm, "ink"))
    hp.details.append((cv.capsule(add(h, (-5.0, 5.0)), add(h, (5.0, 5.5)), 0.4) & helm, 3))
    # the crest, swept back
    crest = cv.polygon([add(h, p) for p in ((-2.0, 6.0), (3.0, 6.5), (1.0, 9.0), (-6.0, 9.5 + sway * 0.5),
                                            (-12.0, 6.0 + sway), (-8.0, 5.0))])
    parts.append(Part("crest", crest, m["cloth"], "crest"))
    parts.append(hp)
    if visor > 0:
        eye = cv.capsule(add(h, (2.0, 1.0)), add(h, (6.5, 1.0)), 0.55) & helm
        parts.append(Part("visor", eye, vlight, "fx", outline=False))

    # the front gauntlet, hovering beside the body, fist closed
    g = at("gauntlet_f", (13.0, 26.0))
    gf = cv.capsule(add(g, (-1.0, 9.0)), g, 2.3, 2.9) | cv.ellipse(add(g, (0.5, -1.0)), 3.0, 2.6)
    gp = Part("gauntlet_f", gf, m["steel"], "gf")
    gp.details.append((cv.capsule(add(g, (-2.5, 5.0)), add(g, (2.5, 5.5)), 0.4) & gf, "ink"))
    gp.details.append((cv.capsule(add(g, (-2.5, 1.5)), add(g, (3.0, 1.5)), 0.4) & gf, 0))
    parts.append(gp)
    return parts


def render_knight(phase, fall=0.0, wisp=1.0, visor=1.0):
    cv = rig.Canvas(KW, KH, 1)
    return creature.compose(build_knight(cv, phase, fall, wisp, visor), KW, KH)


def knight_clips():
    idle = [render_knight(i / 6) for i in range(6)]
    n = 8
    death = []
    for i in range(n):
        t = i / (n - 1)
        # the visor flickers and dies first, then the wisp, then everything falls
        visor = 1.0 if i == 0 else (0.4 if i in (1, 3) else 0.0)
        death.append(render_knight(0.0, fall=min(max((t - 0.2) / 0.8, 0.0), 1.0), wisp=max(0.0, 1.0 - 2.5 * t),
                                   visor=visor))
    revive = []
    for i in range(n):
        t = i / (n - 1)
        revive.append(render_knight(0.0, fall=1.0 - min(t / 0.8, 1.0), wisp=min(1.0, 2.0 * t),
                                    visor=1.0 if t > 0.7 else (0.4 if t > 0.4 else 0.0)))
    return [("IDLE", idle), ("DEATH", death), ("REVIVE", revive)]


# ---------------------------------------------------------------- the sword

POMMEL, GRIP, BLADE = 2.0, 7.0, 51.0     # lengths along the sword from the pommel's end
HALF = (POMMEL + GRIP + BLADE) / 2.0
PIVOT = (0.0, HALF + 1.0)                # the slash turns the sword about its middle


def build_sword(cv, base, angle, runes, flash, smear=None):
    """A sword whose pommel end sits at `base`, pointing along `angle` (90 is up)."""
    m = MATERIALS
    d, n = vec(angle), vec(angle + 90)
    guard_c = add(base, d, POMMEL + GRIP)
    tip = add(guard_c, d, BLADE)
    parts = []
    if smear is not None:
        parts.append(smear)
    edge_l, edge_r = [], []
    for k in range(11):
        t = k / 10
        w = 2.4 * (1.0 - 0.35 * t) if t < 0.86 else 2.4 * 0.65 * (1.0 - t) / 0.14
        p = add(guard_c, d, BLADE * t)
        edge_l.append(add(p, n, w))
        edge_r.append(add(p, n, -w))
    blade = cv.polygon(edge_l + edge_r[::-1]) | cv.capsule(guard_c, add(guard_c, d, BLADE * 0.94), 0.6)
    bp = Part("blade", blade, FLASH if flash else m["blade"], "blade")
    fuller = cv.capsule(add(guard_c, d, 3.0), add(guard_c, d, BLADE * 0.7), 0.45) & blade
    bp.details.append((fuller, 0 if not flash else 2))
    for k in range(4):                             # runes in the fuller, pulsing one after another
        c = add(guard_c, d, 6.0 + 7.5 * k)
        glow = 0.5 + 0.5 * math.sin(2 * math.pi * (runes - k * 0.25))
        if not flash and glow > 0.35:
            rune = cv.ellipse(c, 0.9, 0.9) & blade
            bp.details.append((rune, 3 if glow > 0.75 else 2))
    parts.append(bp)
    grip = cv.capsule(add(base, d, POMMEL), guard_c, 1.1)
    gp = Part("grip", grip, m["grip"], "hilt")
    for k in range(3):
        c = add(base, d, POMMEL + 1.5 + 2.0 * k)
        gp.details.append((cv.capsule(add(c, n, -1.2), add(add(c, n, 1.2), d, 0.8), 0.35) & grip, 0))
    parts.append(gp)
    parts.append(Part("pommel", cv.ellipse(add(base, d, 1.2), 1.7, 1.7), m["brass"], "hilt"))
    guard = cv.capsule(add(guard_c, n, -6.0), add(guard_c, n, 6.0), 1.1) | cv.ellipse(guard_c, 1.8, 1.8)
    guard |= cv.capsule(add(add(guard_c, n, 6.0), d, 0.0), add(add(guard_c, n, 6.5), d, 2.0), 0.9)
    guard |= cv.capsule(add(add(guard_c, n, -6.0), d, 0.0), add(add(guard_c, n, -6.5), d, 2.0), 0.9)
    parts.append(Part("guard", guard, m["brass"], "hilt"))
    return parts, tip


def _arc(cv, a0, a1, r0, r1):
    """The smear of a cut swept about the pivot from angle a0 to a1, widest at its head."""
    dx, dy = cv.x - PIVOT[0], cv.y - PIVOT[1]
    r = np.hypot(dx, dy)
    ang = np.degrees(np.arctan2(dy, dx))
    span = a1 - a0
    t = ((ang - a0) * np.sign(span)) % 360.0 / abs(span)
    inner = r1 - (r1 - r0) * np.clip(t, 0, 1) ** 0.7
    band = (t <= 1.0) & (r <= r1) & (r >= inner)
    band &= px.bayer(cv.h, cv.w) < np.clip(t * 2.0, 0, 1)
    s = np.clip((r - inner) / np.maximum(r1 - inner, 1e-3), 0, 1)
    p = Part("smear", band, SMEAR, "fx", outline=False)
    p.tone = np.where(band, np.where(s > 0.7, 3, np.where(s > 0.35, 2, 1)), -1)
    return p


def render_sword(angle, runes=0.0, flash=False, arc=None, upright=False):
    """The sword at `angle`; upright frames stand on the hilt at the bottom centre, the others turn
    about the sword's middle."""
    cv = rig.Canvas(SW, SH, 1)
    if upright:
        base = (0.0, 1.0)
    else:
        base = add(PIVOT, vec(angle), -HALF)
    smear = _arc(cv, arc[0], arc[1], HALF * 0.5, 26.0) if arc else None
    parts, tip = build_sword(cv, base, angle, runes, flash, smear)
    img = creature.compose(parts, SW, SH)
    if flash:
        creature.star(img, cv.pixel(add(PIVOT, vec(angle), HALF * 0.55)), TELL, 5)
    return img


def sword_clips():
    static = [render_sword(90.0, runes=i / 4, upright=True) for i in range(4)]
    # angles of the blade (hilt to point): upright, wound back over the shoulder, the cut down
    # across (d1), a low recoil, the rising cut back up (d2), the follow-through, upright again
    attack = [render_sword(90.0, upright=True),
              render_sword(140.0, runes=0.5),
              render_sword(-40.0, flash=True, arc=(140.0, -40.0)),
              render_sword(-60.0),
              render_sword(95.0, flash=True, arc=(-60.0, 95.0)),
              render_sword(110.0),
              render_sword(90.0, upright=True)]
    return [("STATIC", static), ("ATTACK", attack)]


# ---------------------------------------------------------------- the data file


def anim_data(knight, sword):
    n = {label: len(frames) for label, frames in knight + sword}
    r = dict(KNIGHT_CLIPS + SWORD_CLIPS)
    return ("KNIGHT :\n"
            f"size : ({KW},{KH})\n"
            "first Frame Position : (0,0)\n\n"
            f"IDLE | NbFrame : {n['IDLE']} / FrameRate : {r['IDLE']}\n"
            f"DEATH | NbFrame : {n['DEATH']} / FrameRate : {r['DEATH']}\n\n"
            f"REVIVE | NbFrame : {n['REVIVE']} / FrameRate : {r['REVIVE']}\n\n"
            "SWORD :\n"
            f"size : ({SW},{SH})\n"
            "first Frame Position : (0,0)\n\n"
            f"STATIC | NbFrame : {n['STATIC']} / FrameRate : {r['STATIC']}\n"
            f"ATTACK | NbFrame : {n['ATTACK']} / FrameRate : {r['ATTACK']} / DamageFrame : {DAMAGE[0]}"
            f" /Damage Frame {DAMAGE[1]}\n\n")


def read_anim_data(text):
    """Read the file the way the game does, field by field; every field must match. Returns the
    knight's (size, first, clips) and the sword's (size, first, clips, (d1, d2))."""
    reader = FieldReader(text, "Flying Knight AnimData")
    need = reader.need
    need("KNIGHT :\n")
    ksize = tuple(need("size : (%d,%d)\n"))
    kfirst = tuple(need("first Frame Position : (%d,%d)\n\n"))
    kclips = [tuple(need("IDLE | NbFrame : %d / FrameRate : %d\n")),
              tuple(need("DEATH | NbFrame : %d / FrameRate : %d\n\n")),
              tuple(need("REVIVE | NbFrame : %d / FrameRate : %d\n\n"))]
    need("SWORD :\n")
    ssize = tuple(need("size : (%d,%d)\n"))
    sfirst = tuple(need("first Frame Position : (%d,%d)\n\n"))
    static = tuple(need("STATIC | NbFrame : %d / FrameRate : %d\n"))
    a = need("ATTACK | NbFrame : %d / FrameRate : %d / DamageFrame : %d /Damage Frame %d\n\n")
    reader.finish()
    return (ksize, kfirst, kclips), (ssize, sfirst, [static, tuple(a[:2])], tuple(a[2:]))


def is_tell(img):
    rgb = img[..., :3].astype(int)
    return (img[..., 3] == 255) & (rgb.min(axis=-1) >= 235)


def check(text, knight_img, sword_img, knight, sword):
    """What the game would not report: a field that stops scanning, a row that wraps, a clip that
    never finishes, damage frames without a tell or a re-arm frame between them, art cut off."""
    raw = text.encode("ascii")
    if b"\r" in raw:
        raise ValueError("Flying Knight AnimData must use LF line ends")
    (ksize, kfirst, kclips), (ssize, sfirst, sclips, (d1, d2)) = read_anim_data(text)
    if ksize != (KW, KH) or ssize != (SW, SH) or kfirst != (0, 0) or sfirst != (0, 0):
        raise ValueError("Flying Knight AnimData sizes")
    for (size, img, clips, rows) in ((ksize, knight_img, kclips, knight), (ssize, sword_img, sclips, sword)):
        if img.shape[:2] != (size[1] * len(rows), size[0] * max(len(f) for _, f in rows)):
            raise ValueError(f"Flying Knight sheet is {img.shape[1]}x{img.shape[0]}")
        for (n, rate), (label, frames) in zip(clips, rows):
            if not (n == len(frames) >= 1 and 1 <= rate <= 60):
                raise ValueError(f"Flying Knight {label}: {n} frames at {rate} fps")
            for i, f in enumerate(frames):
                if f[0].any() or f[:, 0].any() or f[:, -1].any():
                    raise ValueError(f"Flying Knight {label} {i}: cut off by the frame edge")
    n = sclips[1][0]
    if not (2 <= d1 and d1 + 2 <= d2 < n):
        raise ValueError(f"Flying Knight slash: damage frames {d1}, {d2} of {n}")
    attack = sword[1][1]
    for k in (d1, d2):
        if is_tell(attack[k - 1]).sum() < 12:
            raise ValueError(f"Flying Knight slash: no tell on frame {k}")
    for k in range(n):
        if k + 1 not in (d1, d2) and is_tell(attack[k]).sum() > 4:
            raise ValueError(f"Flying Knight slash: tell colours on frame {k + 1}")


# ---------------------------------------------------------------- review sheet


def pose_sheet(knight, sword, out):
    pad = (SW - KW) // 2            # knight frames are centred in the wider sword cells
    hw, hh = HURTBOX
    rows = []
    for label, frames in knight:
        wide = [np.pad(f, ((0, 0), (pad, pad), (0, 0))) for f in frames]
        rate = dict(KNIGHT_CLIPS)[label]
        box = (SW / 2 - hw / 2, KH - hh, SW / 2 + hw / 2, KH, (90, 110, 170, 255))
        rows.append(creature.SheetRow(f"KNIGHT {label}", f"{len(frames)} x {rate} fps", wide, "city",
                                      boxes=lambda col, b=box: [b]))
    for label, frames in sword:
        rate = dict(SWORD_CLIPS)[label]
        info = f"{len(frames)} x {rate} fps" + (f", hits {DAMAGE[0]}, {DAMAGE[1]}" if label == "ATTACK" else "")
        marked = tuple(k - 1 for k in DAMAGE) if label == "ATTACK" else ()
        rows.append(creature.SheetRow(f"SWORD {label}", info, frames, "city", marked=marked,
                                      points=lambda col: [(SW / 2, SH - 0.5, (240, 200, 80, 255))]))
    return creature.pose_sheet(rows, out / "Assets/Fonts/ButtonFont2.ttf", out / "docs/knight_poses.png")


def generate(out):
    knight, sword = knight_clips(), sword_clips()
    knight_img, sword_img = px.sheet(knight, KW, KH), px.sheet(sword, SW, SH)
    text = anim_data(knight, sword)
    check(text, knight_img, sword_img, knight, sword)
    written = [px.save_png(knight_img, out / KNIGHT_SHEET), px.save_png(sword_img, out / SWORD_SHEET)]
    txt = out / DATA
    txt.parent.mkdir(parents=True, exist_ok=True)
    txt.write_bytes(text.encode("ascii"))
    return written + [txt, pose_sheet(knight, sword, out)]

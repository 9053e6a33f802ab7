"""The carnivorous plant: Sprites/Enemies/Plant/PlantTrap.png, PlantAnimData.txt and
docs/plant_poses.png.

A trap hidden in the ground. Two toothed lobes, hinged together just under the soil, lie open and
buried with only a ring of pale teeth poking out of a mossy mound, and a glowing bud on a stalk
between them for a lure. When the hero comes within reach the mound bursts, the lobes swing up
around the hinge and snap shut into an upright pod whose teeth interlock down a crimson seam;
then the pod chews, relaxes, opens and lies back down into the ground.

The game fixes the frame at 168 x 146 with the origin at (84, 124.1), so the ground line is row
124 and everything below it is hidden by the floor tiles; nothing is drawn deeper than a few rows
under it. The bite's box spans x 25.5 % .. 75.5 % of the frame and y 28 % down, so the shut pod
fills that box from the ground to about row 50. The plant cannot be hurt, has no facing and never
dies.

Rows: IDLE (loops: the lure sways, the teeth twitch), ATTACK (once: burst, swing, SNAP on the
damage frame with a flash down the seam and swing smears, then chewing), CLOSE (once: the pod
relaxes, opens and sinks back).
"""
from dataclasses import dataclass
import math

import numpy as np

from . import pixel as px
from . import rig
from .animdata import FieldReader, clip_line, read_clip
from .creature import Key, SheetRow, compose, pose_sheet, relief_tone, star, timeline
from .rig import Part, add, vec

FW, FH = 168, 146
ORIGIN = (84, 124.1)
GROUND = FH - 124          # the ground line in rig units (y up from the frame's bottom)
PATH = "Assets/Sprites/Enemies/Plant/PlantTrap.png"
DATA = "Assets/Sprites/Enemies/Plant/PlantAnimData.txt"
# label, frame rate, damage frame (1-based)
CLIPS = [("IDLE", 6, None), ("ATTACK", 20, 3), ("CLOSE", 16, None)]
LOBE_LEN, LOBE_W = 70.0, 31.0
BURIED = 4.0               # how far under the ground line anything is drawn


def _mat(*hexes):
    return rig.Material.of(*hexes)


SKIN = _mat("#0a1408", "#2c4a1e", "#48702a", "#76a03a", "#b0d060")
FLESH = _mat("#1e0608", "#7a1a26", "#b02c34", "#e0584e", "#ff9a80")
TOOTH = _mat("#1a1408", "#a89868", "#d8cc98", "#e8dcae", "#efe6c0")
FANG_FLASH = _mat("#1a1408", "#d8cc98", "#f4ecc4", "#fff8e8", "#ffffff")   # the teeth as they bite home
LEAF = _mat("#071008", "#1c3a1c", "#2c5a2a", "#468038", "#6ea048")
SOIL = _mat("#0c0806", "#2a1c12", "#3e2a1a", "#5a4028", "#6a5030")
MOSS = _mat("#0a1208", "#2e5024", "#467a30", "#6a9f3c", "#9cc866")
LURE = _mat("#1a1004", "#d08a1e", "#ffc84a", "#ffe27a", "#ffec9c")
STALK = _mat("#0a1408", "#2c4a1e", "#48702a", "#6a9438", "#8ab850")
TELL = [px.rgb(h) for h in ("#ffffff", "#fff4d8", "#ffc0a0", "#e0584e")]
FX_ARC = _mat("#000000", "#6a8a5a", "#a8c890", "#e4f2d0", "#ffffff")

# ---------------------------------------------------------------- poses


@dataclass(frozen=True)
class Trap(Key):
    """One key pose. `open` is how far each lobe lies from upright (0 shut, about 98 flat open
    and tipped into the ground)."""
    open: float = 102.0
    lift: float = 5.0        # the hinge over the ground line, rising as the pod comes up
    squeeze: float = 1.0     # the pod's width
    mound: float = 1.0       # the soil heaped over the trap, 0 .. 1
    lure: float = 1.0        # the lure's stalk, 0 hidden .. 1 up
    sway: float = 0.0        # the lure's and leaves' sway, -1 .. 1
    twitch: float = 0.0      # the teeth poking out a little further
    clods: tuple = ()        # (x, y, r) flying dirt
    drool: tuple = ()        # (x, y, length) drops hanging from the seam
    smear: float = 0.0       # the lobes' swing, in degrees, drawn as smears
    glow: float = 0.0        # the maw flushing bright


def _hinge(p):
    return (0.0, GROUND - 3.0 + p.lift)


LIE = 102.0   # lying open, tipped into the ground: only the teeth near the hinge poke out


def _lobe_frame(p, side):
    """Direction along the lobe and its outer normal; side +1 is the left lobe."""
    theta = 90.0 + side * p.open
    d = vec(theta)
    n = (-d[1] * side, d[0] * side)
    return d, n


def _lobe(cv, p, side):
    """The lobe's mask, its lip (the crimson inner face along the rim), its teeth, its tip."""
    h = _hinge(p)
    d, n = _lobe_frame(p, side)
    L, W = LOBE_LEN, LOBE_W * p.squeeze
    outer, lip_pts = [], []
    steps = 18
    for k in range(steps + 1):
        u = L * k / steps
        v = W * math.sin(math.pi * min(u / L, 1.0)) ** 0.7 * (1.0 - 0.25 * (u / L) ** 2)
        outer.append(add(add(h, d, u), n, v))
        lip_pts.append(add(add(h, d, u), n, min(v, 6.0 + 2.0 * p.glow)))
    tip = add(h, d, L)
    body = cv.polygon(outer + [tip, h])
    lip = cv.polygon(lip_pts + [tip, h]) & body
    # veins fanning from the hinge over the outer face
    veins = np.zeros_like(body)
    for a in (0.3, 0.55, 0.8):
        q = add(add(h, d, L * a), n, W * 0.75 * math.sin(math.pi * a))
        veins |= cv.capsule(add(h, d, 6.0), q, 0.5) & px.erode(body)
    # teeth along the rim, raked towards the tip, pointing at the other lobe; the two lobes'
    # teeth are staggered by half a step so they interlock when shut
    teeth = np.zeros_like(body)
    step = 7.0
    u = 7.0 + (step / 2 if side < 0 else 0.0)
    k = 0
    while u < L - 5.0:
        mid = 1.0 - abs(u / L - 0.45) * 1.2
        length = (6.5 + 4.5 * mid - 1.5 * (k % 2)) * (1.0 + 0.2 * p.twitch)
        base = add(h, d, u)
        tip_t = add(add(base, n, -length), d, 3.5)
        teeth |= cv.polygon([add(base, d, -1.6), add(base, d, 1.6), tip_t])
        u += step
        k += 1
    return body, lip, veins, teeth, tip


def _leaf(cv, base, angle, length, width, curl):
    """A long pointed leaf from `base`, bending by `curl` degrees along its length."""
    pts_l, pts_r, spine = [], [], []
    pos = base
    for k in range(9):
        t = k / 8
        a = angle + curl * t
        w = width * math.sin(math.pi * min(t * 1.1, 1.0)) ** 0.8
        nrm = vec(a + 90)
        pts_l.append(add(pos, nrm, w))
        pts_r.append(add(pos, nrm, -w))
        spine.append(pos)
        pos = add(pos, vec(a), length / 8)
    mask = cv.polygon(pts_l + [pos] + pts_r[::-1])
    rib = np.zeros_like(mask)
    for a, b in zip(spine[1:], spine[2:]):
        rib |= cv.capsule(a, b, 0.45)
    return mask, rib & mask


def build(p, cv):
    parts = []
    g = GROUND
    above = cv.y >= g - BURIED
    # the swing: speed arcs through the space each lobe swept, just outside its back
    if p.smear:
        h = _hinge(p)
        dist = np.hypot(cv.x - h[0], cv.y - h[1])
        ang = np.degrees(np.arctan2(cv.y - h[1], cv.x - h[0]))
        arcs = np.zeros((cv.h, cv.w), bool)
        for side in (-1, 1):
            edge = 90.0 + side * (p.open + 14.0)
            lo, hi = sorted((edge, edge + side * p.smear))
            for k, r in enumerate((LOBE_LEN * 0.6, LOBE_LEN * 0.78, LOBE_LEN * 0.94)):
                span = (ang >= lo + 4 * k * (side < 0)) & (ang <= hi - 4 * k * (side > 0))
                arcs |= span & (np.abs(dist - r) < 0.55)
        part = Part("arcs", arcs & above & (px.bayer(cv.h, cv.w) < 0.9), FX_ARC, "fx", outline=False)
        part.tone = np.where(part.mask, 2, -1)
        parts.append(part)
    # leaves behind the trap, lying on the ground and curling up at their tips
    back_leaves = np.zeros((cv.h, cv.w), bool)
    ribs = np.zeros_like(back_leaves)
    for base_x, ang, ln, curl in ((-10.0, 168.0, 40.0, -22.0), (10.0, 12.0, 38.0, 24.0),
                                  (-4.0, 150.0, 26.0, -30.0), (5.0, 32.0, 27.0, 28.0)):
        m, r = _leaf(cv, (base_x, g - 1.0), ang + 4 * p.sway, ln, 3.6, curl)
        back_leaves |= m
        ribs |= r
    lp = Part("leaves_b", back_leaves & above, LEAF, "leaves_b", dim=True)
    lp.details.append((ribs, 2))
    parts.append(lp)

    # the lure: a glowing bud nodding on its stalk (eaten up by the closed pod)
    if p.lure > 0:
        top = (3.0 + 3.0 * p.sway, g + 2.0 + 15.0 * p.lure)
        mid = (1.0 - 1.5 * p.sway, g + 2.0 + 8.0 * p.lure)
        stalk = cv.capsule((0.0, g - 2.0), mid, 1.3, 1.0) | cv.capsule(mid, top, 1.0, 0.8)
        parts.append(Part("stalk", stalk & above, STALK, "lure"))
        bud = cv.ellipse(add(top, (0.5, 2.0)), 2.8 * p.lure, 3.2 * p.lure, -15.0 * p.sway)
        bp = Part("bud", bud, LURE, "bud")
        bp.tone = relief_tone(bud, 2, cuts=(0.25, 0.5, 0.8))
        parts.append(bp)

    # the lobes: right one first, the left one over it, then every tooth over both
    all_teeth = np.zeros((cv.h, cv.w), bool)
    lobes = {}
    for side in (-1, 1):
        body, lip, veins, teeth, tip = _lobe(cv, p, side)
        lobes[side] = (body, tip)
        body &= above
        lobe = Part(f"lobe{side}", body & ~lip, SKIN, f"lobe{side}")
        lobe.tone = relief_tone(body & ~lip, 9, cuts=(0.42, 0.66, 0.92), depth=0.8)
        lobe.details.append((veins & body & ~lip, 0))
        parts.append(lobe)
        lp = Part(f"lip{side}", lip & above, FLESH, f"lobe{side}")
        lp.tone = np.where(lip, 2 if p.glow > 0.5 else 1, -1)
        lp.tone[lip & px.outline_of(body & ~lip)] = 0 if p.glow <= 0.5 else 1
        parts.append(lp)
        all_teeth |= teeth

    # the soil heaped over the hinge, moss on its crown
    if p.mound > 0:
        mound = cv.ellipse((0.0, g - 1.0), 14.0 + 16.0 * p.mound, 2.5 + 4.5 * p.mound)
        mound |= cv.ellipse((-12.0, g - 1.5), 9.0 * p.mound + 1.0, 2.0 + 2.5 * p.mound)
        mound |= cv.ellipse((13.0, g - 1.5), 8.0 * p.mound + 1.0, 2.0 + 2.2 * p.mound)
        mound &= above
        mp = Part("mound", mound, SOIL, "mound")
        mp.tone = relief_tone(mound, 3, cuts=(0.35, 0.6, 0.9))
        pebbles = (cv.ellipse((-7.0, g + 1.0), 1.2, 0.9) | cv.ellipse((9.0, g + 0.5), 1.0, 0.8)
                   | cv.ellipse((17.0, g - 0.5), 0.9, 0.7)) & mound
        mp.details.append((pebbles, 3))
        parts.append(mp)
        moss = mound & ~px.shift(mound, -2, 0) & (cv.y > g + 1.0)
        mo = Part("moss", moss, MOSS, "mound")
        mo.tone = np.where(moss, 1, -1)
        mo.tone[moss & ~px.shift(mound, 1, 0)] = 2
        parts.append(mo)

    parts.append(Part("teeth", all_teeth & above, FANG_FLASH if "flash" in p.tags else TOOTH, "teeth"))

    # front leaves, lying on the ground at the mound's foot
    front = np.zeros((cv.h, cv.w), bool)
    ribs = np.zeros_like(front)
    for base_x, ang, ln, curl in ((-20.0, 186.0, 30.0, -14.0), (21.0, -6.0, 31.0, 16.0)):
        m, r = _leaf(cv, (base_x, g - 1.5), ang - 3 * p.sway, ln, 3.2, curl)
        front |= m
        ribs |= r
    fp = Part("leaves_f", front & above, LEAF, "leaves_f")
    fp.details.append((ribs, 2))
    parts.append(fp)

    # dirt thrown up by the burst
    if p.clods:
        clods = np.zeros((cv.h, cv.w), bool)
        for x, y, r in p.clods:
            clods |= cv.ellipse((x, y), r, r * 0.85, 20.0)
        cp = Part("clods", clods, SOIL, "clods")
        parts.append(cp)
    for x, y, ln in p.drool:
        dm = cv.capsule((x, y), (x, y - ln), 0.8, 1.3)
        dp = Part("drool", dm, FLESH, "drool")
        dp.tone = np.where(dm, 3, -1)
        dp.tone[dm & ~px.shift(dm, 0, -1)] = 2
        parts.append(dp)
    return parts, lobes


def render(p):
    cv = rig.Canvas(FW, FH)
    parts, _ = build(p, cv)
    img = compose(parts, FW, FH)
    if "flash" in p.tags:    # the snap: flashes on the seam where the teeth meet
        h = _hinge(p)
        for t, size in ((0.9, 6), (0.55, 4), (0.25, 3)):
            star(img, cv.pixel((0.0, h[1] + LOBE_LEN * t)), TELL, size)
    return img


# ---------------------------------------------------------------- clips

REST = Trap(open=LIE)


def idle():
    """The lure nods, the leaves stir, the teeth twitch once."""
    frames = []
    for i in range(6):
        s = math.sin(2 * math.pi * i / 6)
        frames.append(REST.but(sway=s, lure=1.0 - 0.08 * (1 - s), twitch=1.0 if i == 3 else 0.0,
                               open=LIE - (2.0 if i == 3 else 0.0)))
    return frames


def attack():
    """Burst out of the mound, swing up wide open, SNAP (damage frame 3), then chew."""
    burst = REST.but(open=58.0, lift=4.0, mound=0.45, lure=0.0, glow=1.0, twitch=1.0,
                     clods=((-30.0, 36.0, 3.4), (26.0, 40.0, 3.0), (-14.0, 50.0, 2.4), (40.0, 31.0, 2.2),
                            (8.0, 46.0, 2.0), (-44.0, 30.0, 1.8), (-4.0, 38.0, 1.4)), tags=("tell",))
    wide = REST.but(open=26.0, lift=7.0, mound=0.4, lure=0.0, glow=1.0, twitch=1.0, smear=28.0,
                    clods=((-42.0, 47.0, 3.0), (34.0, 53.0, 2.6), (-20.0, 64.0, 2.0), (50.0, 40.0, 1.8),
                           (10.0, 60.0, 1.6), (-56.0, 36.0, 1.5)),
                    tags=("tell",))
    snap = REST.but(open=0.0, lift=8.0, squeeze=1.06, mound=0.4, lure=0.0, smear=26.0,
                    clods=((-50.0, 46.0, 2.6), (42.0, 52.0, 2.2), (-24.0, 70.0, 1.7), (58.0, 36.0, 1.5),
                           (14.0, 72.0, 1.3)),
                    tags=("tell", "flash"))
    clamp = REST.but(open=0.0, lift=6.0, squeeze=0.92, mound=0.4, lure=0.0,
                     clods=((-50.0, 34.0, 2.0), (46.0, 40.0, 1.6), (-24.0, 60.0, 1.2)))
    chew1 = REST.but(open=0.0, lift=5.0, squeeze=1.04, mound=0.4, lure=0.0,
                     clods=((-52.0, 22.0, 1.8), (50.0, 27.0, 1.4)), drool=((2.0, 36.0, 4.0),))
    chew2 = REST.but(open=0.0, lift=4.0, squeeze=0.95, mound=0.4, lure=0.0, drool=((2.0, 33.0, 6.0),))
    chew3 = REST.but(open=0.0, lift=4.0, squeeze=1.02, mound=0.4, lure=0.0, drool=((-1.0, 34.0, 3.0),))
    return timeline(10, [(0, burst, "linear"), (1, wide, "out"), (2, snap, "linear"), (3, clamp, "out"),
                         (4, chew1, "inout"), (5, chew2, "inout"), (6, chew3, "inout"),
                         (7, chew2.but(drool=()), "inout"), (9, REST.but(open=0.0, lift=3.0, mound=0.4,
                                                                         lure=0.0), "inout")])


def close():
    """The pod relaxes, parts, opens wide and lies back down under the soil; the lure comes up."""
    shut = REST.but(open=0.0, lift=3.0, mound=0.4, lure=0.0)
    part = REST.but(open=10.0, lift=2.5, mound=0.45, lure=0.0, drool=((-3.0, 40.0, 5.0),))
    wide = REST.but(open=45.0, lift=1.5, mound=0.55, lure=0.0)
    low = REST.but(open=85.0, lift=3.0, mound=0.8, lure=0.3)
    flat = REST.but(open=LIE + 2.0, mound=1.0, lure=0.8, sway=-0.6)
    return timeline(8, [(0, shut, "linear"), (1, part, "out"), (3, wide, "inout"), (5, low, "inout"),
                        (6, flat, "out"), (7, REST.but(sway=-0.2), "inout")])


POSES = {"IDLE": idle, "ATTACK": attack, "CLOSE": close}


def build_clips():
    return [(label, [render(p) for p in POSES[label]()]) for label, _, _ in CLIPS]


# ---------------------------------------------------------------- data file


def anim_data(clips):
    lines = [f"size : ({FW},{FH})", "first Frame Position : (0,0)"]
    for (label, rate, dmg), (_, frames) in zip(CLIPS, clips):
        lines.append(clip_line(label, len(frames), rate, None if dmg is None else ("Damage", dmg)))
    return "\n".join(lines) + "\n"


def read_anim_data(text):
    reader = FieldReader(text, "Plant AnimData")
    need = reader.need
    size = need("size : (%d,%d)\n")
    first = need("first Frame Position : (%d,%d)\n")
    rows = [read_clip(reader, label, None if dmg is None else "Damage") for label, _, dmg in CLIPS]
    reader.finish()
    return tuple(size), tuple(first), rows


def check(text, img, clips):
    """The faults the game would not report: a field that stops scanning, a frame size that
    disagrees with the fixed sprite rectangle, a row that wraps, a bite that never comes, art cut
    by the frame edge or hanging below the floor."""
    raw = text.encode("ascii")
    if raw.startswith(b"\xef\xbb\xbf") or b"\r" in raw:
        raise ValueError("Plant AnimData must be plain ASCII with LF line ends")
    (fw, fh), first, rows = read_anim_data(text)
    if (fw, fh) != (FW, FH) or first != (0, 0):
        raise ValueError(f"Plant AnimData size {fw}x{fh} / first {first}")
    if img.shape[:2] != (fh * len(CLIPS), fw * max(n for _, n, _, _ in rows)):
        raise ValueError(f"plant sheet is {img.shape[1]}x{img.shape[0]}")
    for (label, n, rate, dmg), (_, frames) in zip(rows, clips):
        if not (n >= 1 and n == len(frames) and 1 <= rate <= 60):
            raise ValueError(f"Plant {label}: {n} frames at {rate} fps")
        if dmg is not None and not 1 <= dmg <= n:
            raise ValueError(f"Plant {label}: damage frame {dmg} of {n}")
        for i, f in enumerate(frames):
            if f[0].any() or f[:, 0].any() or f[:, -1].any():
                raise ValueError(f"plant {label} {i}: cut off by the frame edge")
            if f[round(ORIGIN[1]) + int(BURIED) + 1:, :, 3].any():
                raise ValueError(f"plant {label} {i}: drawn too far under the ground line")


# ---------------------------------------------------------------- review sheet


def _boxes(label, dmg):
    jaws = (FW * 0.255, FH / 3.6 * 1.0, FW * 0.755, FH, (200, 60, 50, 255))
    reach = (ORIGIN[0] - 110 / 3, ORIGIN[1] - 130 / 3, ORIGIN[0] + 110 / 3, ORIGIN[1], (80, 120, 90, 255))
    ground = (0, ORIGIN[1], FW, ORIGIN[1] + 1, (90, 80, 60, 255))

    def boxes(col):
        out = [ground]
        if label == "IDLE":
            out.append(reach)
        if dmg is not None and col == dmg - 1:
            out.append(jaws)
        return out
    return boxes


def generate(out):
    clips = build_clips()
    img = px.sheet(clips, FW, FH)
    text = anim_data(clips)
    check(text, img, clips)
    written = [px.save_png(img, out / PATH)]
    path = out / DATA
    path.write_bytes(text.encode("ascii"))
    written.append(path)
    rows = []
    for (label, rate, dmg), (_, frames) in zip(CLIPS, clips):
        info = f"{len(frames)} x {rate} fps" + (f", bites on {dmg}" if dmg else "")
        rows.append(SheetRow(f"plant {label}", info, frames, "both", _boxes(label, dmg),
                             marked=(dmg - 1,) if dmg else ()))
    written.append(pose_sheet(rows, out / "Assets/Fonts/ButtonFont2.ttf", out / "docs/plant_poses.png"))
    return written

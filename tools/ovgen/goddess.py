"""The Goddess, the last boss: Sprites/Enemies/Goddess/Body 518x347.png, wings hair 518x347.png,
Attack_Whip 838x372.png, GoddessAnimData.txt, and her effects Sprites/FX/beam 211x388.png (the
lightning column), orb 100x100.png (a spark), VerticalLaser.png (the beam between the sparks);
docs/goddess_poses.png (every frame with the hurtbox and the move's attack box).

A tall figure of light and night hovering over her garden: moon-pale skin, a gown of night sky
dotted with stars that frays into mist below the knees, verdigris trim, an ember diadem and halo,
glowing eyes. Her wings and long hair are a separate sheet drawn behind her on the same canvas;
they fade away from the damage frame of her lightning and her lash. Every sheet is drawn facing the
viewer (she turns only by the game's mirroring for the second lash).

Every frame's origin is its centre, the body's position. The game's hurtbox covers the central
30 % of the width from 40 % to 90 % of the height, where her bodice and gown are. Each attack reads
before it lands: the arm rises and light gathers before the lightning, the whip is drawn back
before the lash, and the dangerous frames carry a white tell (eyes and hand, the whip's crack).
"""
import math

import numpy as np

from . import creature
from . import pixel as px
from . import rig
from .animdata import FieldReader
from .rig import Part, add

BW, BH = 518, 347          # body and wings frames
WW, WH = 838, 372          # whip frames
LW, LH = 211, 388          # lightning column
OW, OH = 100, 100          # spark
VW, VH = 68, 820           # the beam, drawn upright (the game turns it across the arena)
WHIP_ROW = 4               # whip frames per sheet row: the sheet wraps into a second row
FOLDER = "Assets/Sprites/Enemies/Goddess/"
FX = "Assets/Sprites/FX/"
BODY_SHEET = FOLDER + "Body 518x347.png"
WINGS_SHEET = FOLDER + "wings hair 518x347.png"
WHIP_SHEET = FOLDER + "Attack_Whip 838x372.png"
LIGHTNING_SHEET = FX + "beam 211x388.png"
ORB_SHEET = FX + "orb 100x100.png"
LASER_SHEET = FX + "VerticalLaser.png"
DATA = FOLDER + "GoddessAnimData.txt"

# label, frames, rate, damage frame (1-based)
BODY_CLIPS = [("IDLE", 6, 8, None), ("ATTACK_LIGHTNING", 7, 8, 3), ("ATTACK_CREATE_SPARK", 6, 8, 4),
              ("ATTACK_TRIGGER_SPARK", 6, 8, 4), ("ATTACK_WHIP", 7, 10, 5)]
PARTS = [("WINGS", BW, BH, 8, 10), ("WHIP", WW, WH, 7, 10), ("LASER", LW, LH, 6, 15),
         ("ORBES", OW, OH, 8, 12), ("VERTICAL LASER", VW, VH, 4, 20)]
HURTBOX = (BW * 0.3 / 3, BH * 1.5 / 3)          # in texels: the game's box is at scale 1
HURT_ORIGIN = (HURTBOX[0] / 2, HURTBOX[1] / 5)
WHIP_RAISE = 40 / 3                              # the whip is drawn 40 px above the body

M = {
    "skin": rig.Material.of("#1a1230", "#6a6a9a", "#a8acd0", "#d8dcf0", "#f4f6ff"),
    "gown": rig.Material.of("#05050c", "#0e0f24", "#1c1d40", "#2e3164", "#4a56a0"),
    "trim": rig.Material.of("#0a1a1a", "#1f5a56", "#3a8c82", "#6cc0b0", "#b0f0e0"),
    "ember": rig.Material.of("#2a0e04", "#7a3410", "#c8641c", "#f0a040", "#ffe0a0"),
    "hair": rig.Material.of("#05050c", "#12132a", "#222450", "#383c78", "#5a64b0"),
    "wing": rig.Material.of("#070818", "#1a1d44", "#2c3570", "#4a66b0", "#9ad0f0"),
    "light": rig.Material.of("#0a2a40", "#3a8ac0", "#8ad0f0", "#d0f4ff", "#ffffff"),
    "mist": rig.Material.of("#05050c", "#232650", "#3a3f78", "#5a64a8", "#8a96d0"),
}
TELL = [px.rgb(h) for h in ("#ffffff", "#ffffff", "#ffe0a0", "#f07a28")]
LIGHT_RAMP = [px.rgb(h) for h in ("#1a2a6a", "#3a6ad0", "#8ad0f0", "#d8f6ff", "#ffffff")]
EMBER_RAMP = [px.rgb(h) for h in ("#3a0c04", "#a03a10", "#f07a28", "#ffc060", "#fff0c0")]

# ---------------------------------------------------------------- poses


class Pose:
    """One key pose of her body, in texels about the frame centre (x right, y up)."""

    def __init__(self, hand_f=(22, -8), hand_b=(-22, -8), bob=0.0, sway=0.0, glow_f=0.0, glow_b=0.0,
                 eyes=0.0, tell=None, lean=0.0, hem=0.0):
        self.hand_f, self.hand_b = hand_f, hand_b   # hand targets (front = her right, screen right)
        self.bob, self.sway, self.lean, self.hem = bob, sway, lean, hem
        self.glow_f, self.glow_b = glow_f, glow_b   # light gathered in each hand, 0..1
        self.eyes = eyes                            # 0 calm, 1 flaring white
        self.tell = tell                            # where the star of a dangerous frame goes

    def mixed(self, other, t):
        def mix(a, b):
            if isinstance(a, tuple):
                return tuple(x + (y - x) * t for x, y in zip(a, b))
            return a + (b - a) * t
        p = Pose()
        for k in ("hand_f", "hand_b", "bob", "sway", "glow_f", "glow_b", "eyes", "lean", "hem"):
            setattr(p, k, mix(getattr(self, k), getattr(other, k)))
        p.tell = self.tell if t < 0.5 else other.tell
        return p


def keyed(n, keys):
    """n poses from [(frame, pose, ease)]: in-betweens eased by the later key's curve."""
    out = []
    for i in range(n):
        k = max(j for j, key in enumerate(keys) if key[0] <= i)
        f0, p0 = keys[k][0], keys[k][1]
        if k + 1 == len(keys) or f0 == i:
            out.append(p0)
            continue
        f1, p1, ease = keys[k + 1]
        out.append(p0.mixed(p1, rig.EASE[ease]((i - f0) / (f1 - f0))))
    return out


SHOULDER_Y, UPPER, FORE = 36.0, 22.0, 21.0


def shoulders(pose):
    y = SHOULDER_Y + pose.bob
    return (15.0 + pose.lean, y), (-15.0 + pose.lean, y)


def hands(pose):
    """Where her hands end up (the arms reach for their targets from the shoulders)."""
    sf, sb = shoulders(pose)
    _, hf = rig.two_bone(sf, add(sf, pose.hand_f), UPPER, FORE, 1)
    _, hb = rig.two_bone(sb, add(sb, pose.hand_b), UPPER, FORE, -1)
    return hf, hb


# ---------------------------------------------------------------- the body


class Frame:
    """A canvas whose coordinates are texels about the frame centre (x right, y up)."""

    def __init__(self, w, h):
        self.cv = rig.Canvas(w, h, 1)
        self.cy = h / 2.0
        self.w, self.h = w, h

    def p(self, x, y):
        return (x, y + self.cy)

    def pixel(self, x, y):
        return self.cv.pixel(self.p(x, y))


def _stars(mask, seed, density):
    rng = np.random.RandomState(seed)
    return mask & (rng.random_sample(mask.shape) < density) & px.erode(px.erode(mask))


def _gown(f, pose):
    """The gown: a bodice, then a skirt that flares and frays into mist below the knees."""
    cv, b, s = f.cv, pose.bob, pose.sway
    top = [f.p(-16 + pose.lean, 38 + b), f.p(16 + pose.lean, 38 + b), f.p(10, 2 + b), f.p(-10, 2 + b)]
    bodice = cv.polygon(top)
    hem_y = -128 + b
    pts = [f.p(-9, 4 + b), f.p(9, 4 + b)]
    for k in range(9):
        t = k / 8
        x = 34 - 68 * t + 5 * s
        wave = 6 * math.sin(2 * math.pi * (t * 2 + pose.hem))
        pts.append(f.p(x, hem_y + wave - (10 if k % 2 else 0)))
    skirt = cv.polygon([pts[0], pts[1], f.p(22 + 2 * s, -40 + b)] + pts[2:] + [f.p(-22 + 2 * s, -40 + b)])
    # the hem frays: dithered away as it falls, with strands of mist beyond it
    fade = np.clip((cv.y - (f.cy + hem_y - 6)) / 42.0, 0, 1)
    skirt &= px.bayer(cv.h, cv.w) < 0.15 + fade
    mist = np.zeros_like(skirt)
    for k in range(5):
        x0 = -26 + 13 * k + 3 * s
        x1 = x0 + 6 * math.sin(2 * math.pi * (pose.hem + k * 0.3))
        mist |= cv.capsule(f.p(x0, hem_y + 4), f.p(x1, hem_y - 18 - 4 * (k % 2)), 1.6, 0.6)
    mist &= px.bayer(cv.h, cv.w) < 0.55
    parts = [Part("mist", mist, M["mist"], "fx", outline=False)]
    gown = Part("gown", skirt | bodice, M["gown"], "gown")
    gown.tone = creature.relief_tone(skirt | bodice, 8)
    gown.details.append((_stars(skirt, 7, 0.012), 3))
    folds = np.zeros_like(skirt)
    for x0, x1 in ((-4, -14), (5, 16), (0, 2)):
        folds |= cv.capsule(f.p(x0, -6 + b), f.p(x1 + 3 * s, -110 + b), 0.6)
    gown.details.append((folds & skirt, 0))
    trim = cv.capsule(f.p(-9, 3 + b), f.p(9, 3 + b), 1.6) | cv.capsule(f.p(-2, 32 + b), f.p(0, 4 + b), 0.8)
    trim |= cv.capsule(f.p(-13 + pose.lean, 33 + b), f.p(13 + pose.lean, 33 + b), 1.0)
    parts.append(gown)
    parts.append(Part("trim", trim & (skirt | bodice | px.dilate(bodice)), M["trim"], "trim"))
    return parts


def _arm(f, name, shoulder, target, bend, dim):
    cv = f.cv
    elbow, hand = rig.two_bone(shoulder, add(shoulder, target), UPPER, FORE, bend)
    s, e, h = f.p(*shoulder), f.p(*elbow), f.p(*hand)
    arm = cv.capsule(s, e, 4.2, 3.2) | cv.capsule(e, h, 3.0, 2.4)
    # a sleeve of night falls from the upper arm
    sleeve = cv.ribbon([add(s, (0, 2)), e, add(e, (-4 * bend, -22))], [5.5, 7.0, 1.5])
    parts = [Part(name + "_sleeve", sleeve, M["gown"], name + "s", dim=dim),
             Part(name, arm, M["skin"], name, dim=dim),
             Part(name + "_hand", cv.ellipse(h, 2.9, 2.9), M["skin"], name, dim=dim)]
    cuff = cv.capsule(add(e, (0, 0)), add(e, ((h[0] - e[0]) * 0.15, (h[1] - e[1]) * 0.15)), 2.9)
    parts.append(Part(name + "_cuff", cuff & ~parts[2].mask, M["trim"], name, dim=dim))
    return parts


def _head(f, pose):
    cv, b = f.cv, pose.bob
    c = (pose.lean * 0.6, 56 + b)
    head = cv.ellipse(f.p(*c), 9.5, 11.5)
    neck = cv.capsule(f.p(c[0] * 0.5, 36 + b), f.p(c[0], 50 + b), 3.6)
    parts = [Part("neck", neck, M["skin"], "neck")]
    hp = Part("head", head, M["skin"], "head")
    hp.tone = creature.relief_tone(head, 5)
    eye_col = 3 if pose.eyes < 0.5 else 3
    for sx in (-1, 1):
        eye = cv.capsule(f.p(c[0] + 3.2 * sx - 1.2, c[1] - 1), f.p(c[0] + 3.2 * sx + 1.2, c[1] - 1.4), 0.7)
        hp.details.append((eye & head, "ink"))
    parts.append(hp)
    # hair framing the face, parted in the middle
    hair = cv.ellipse(f.p(c[0], c[1] + 3.5), 11.0, 10.0) & ~cv.ellipse(f.p(c[0], c[1] - 3.5), 8.0, 10.5)
    hair |= cv.capsule(f.p(c[0] - 9.5, c[1] + 2), f.p(c[0] - 11, c[1] - 16), 2.8, 1.5)
    hair |= cv.capsule(f.p(c[0] + 9.5, c[1] + 2), f.p(c[0] + 11, c[1] - 16), 2.8, 1.5)
    parts.append(Part("hair", hair, M["hair"], "hair"))
    diadem = cv.capsule(f.p(c[0] - 9, c[1] + 7), f.p(c[0] + 9, c[1] + 7), 1.0)
    diadem |= cv.polygon([f.p(c[0] - 2.5, c[1] + 7), f.p(c[0] + 2.5, c[1] + 7), f.p(c[0], c[1] + 14)])
    parts.append(Part("diadem", diadem, M["ember"], "diadem"))
    eyes = np.zeros_like(head)
    for sx in (-1, 1):
        eyes |= cv.capsule(f.p(c[0] + 3.2 * sx - 1.0, c[1] - 1.1), f.p(c[0] + 3.2 * sx + 1.0, c[1] - 1.3), 0.5)
    glow = M["light"] if pose.eyes < 0.5 else rig.Material.of("#ffffff", "#ffffff", "#ffffff", "#ffffff", "#ffffff")
    parts.append(Part("eyes", eyes & head, glow, "fx", outline=False))
    del eye_col
    return parts, c


def _halo(f, c, pose):
    """An ember ring behind her head, broken at the bottom."""
    cv = f.cv
    ring = cv.ellipse(f.p(c[0], c[1] + 4), 19, 19) & ~cv.ellipse(f.p(c[0], c[1] + 4), 16.5, 16.5)
    ring &= cv.y > f.cy + c[1] - 6
    part = Part("halo", ring, M["ember"], "halo", outline=False)
    tone = np.where(ring, 2, -1)
    tone[ring & (cv.x < c[0]) & (cv.y > f.cy + c[1] + 10)] = 3
    tone[ring & (cv.x > c[0] + 6)] = 1
    part.tone = tone
    return part


def _glow(f, at, strength, name):
    """Light gathered in a hand: a dithered halo round a bright core."""
    cv = f.cv
    if strength <= 0:
        return []
    r = 3 + 9 * strength
    outer = cv.ellipse(f.p(*at), r, r) & (px.bayer(cv.h, cv.w) < 0.5)
    core = cv.ellipse(f.p(*at), r * 0.45, r * 0.45)
    a = Part(name + "_halo", outer & ~core, M["light"], "fx", outline=False)
    a.tone = np.where(outer & ~core, 1, -1)
    b = Part(name + "_core", core, M["light"], "fx", outline=False)
    b.tone = np.where(core, 2, -1)
    return [a, b]


def render_body(pose):
    f = Frame(BW, BH)
    sf, sb = shoulders(pose)
    parts = []
    head_parts, c = _head(f, pose)
    parts.append(_halo(f, c, pose))
    parts += _arm(f, "arm_b", sb, pose.hand_b, -1, True)
    parts += _gown(f, pose)
    parts += head_parts
    parts += _arm(f, "arm_f", sf, pose.hand_f, 1, False)
    hf, hb = hands(pose)
    parts += _glow(f, hf, pose.glow_f, "glow_f") + _glow(f, hb, pose.glow_b, "glow_b")
    img = creature.compose(parts, BW, BH)
    if pose.tell is not None:
        creature.star(img, f.pixel(*pose.tell), TELL, 7)
    if pose.eyes >= 0.5:
        for sx in (-1, 1):
            creature.star(img, f.pixel(c[0] + 3.2 * sx, c[1] - 1.2), TELL, 3, clamp=False)
    return img


CALM = Pose(hand_f=(12, -36), hand_b=(-12, -36))


def idle_poses():
    out = []
    for i in range(6):
        t = i / 6
        s = math.sin(2 * math.pi * t)
        out.append(Pose(hand_f=(13 + s, -35 + 2 * s), hand_b=(-13 - s, -35 + 2 * s), bob=2.0 * s,
                        sway=math.sin(2 * math.pi * (t + 0.25)), hem=t))
    return out


def lightning_poses():
    high = Pose(hand_f=(10, 38), hand_b=(-16, -16), bob=3, glow_f=0.5, hem=0.2)
    charged = Pose(hand_f=(6, 42), hand_b=(-18, -12), bob=5, glow_f=1.0, hem=0.35)
    hold = Pose(hand_f=(8, 40), hand_b=(-18, -12), bob=4, glow_f=0.8, hem=0.45)
    strike = Pose(hand_f=(30, -16), hand_b=(-20, -10), bob=-3, glow_f=0.4, hem=0.7, lean=3)
    settle = Pose(hand_f=(22, -22), hand_b=(-18, -18), bob=-1, hem=0.9)
    return keyed(7, [(0, CALM, "linear"), (1, high, "out"), (2, charged, "in"), (3, hold, "linear"),
                     (4, strike, "out"), (5, strike.mixed(settle, 0.4), "out"), (6, settle, "inout")])


def spark_poses(trigger):
    if not trigger:
        open_ = Pose(hand_f=(24, 10), hand_b=(-24, 10), bob=1, hem=0.2)
        up = Pose(hand_f=(30, 34), hand_b=(-30, 34), bob=3, glow_f=0.5, glow_b=0.5, hem=0.4)
        born = Pose(hand_f=(34, 36), hand_b=(-34, 36), bob=4, glow_f=1.0, glow_b=1.0, hem=0.55)
        rest = Pose(hand_f=(20, -14), hand_b=(-20, -14), bob=1, hem=0.9)
        return keyed(6, [(0, CALM, "linear"), (1, open_, "out"), (2, up, "inout"), (3, born, "in"),
                         (4, born.mixed(rest, 0.35), "out"), (5, rest, "inout")])
    gather = Pose(hand_f=(8, 6), hand_b=(-8, 6), bob=-1, glow_f=0.5, glow_b=0.5, hem=0.2)
    tight = Pose(hand_f=(4, 10), hand_b=(-4, 10), bob=-2, glow_f=0.8, glow_b=0.8, hem=0.35)
    fling = Pose(hand_f=(40, 4), hand_b=(-40, 4), bob=3, glow_f=1.0, glow_b=1.0, hem=0.6)
    rest = Pose(hand_f=(20, -14), hand_b=(-20, -14), bob=1, hem=0.9)
    return keyed(6, [(0, CALM, "linear"), (1, gather, "out"), (2, tight, "inout"), (3, fling, "out"),
                     (4, fling.mixed(rest, 0.35), "out"), (5, rest, "inout")])


def whip_poses():
    back = Pose(hand_f=(-2, 30), hand_b=(-20, -12), bob=2, lean=-3, hem=0.2)
    far = Pose(hand_f=(-12, 38), hand_b=(-22, -8), bob=3, lean=-5, hem=0.3)
    swing = Pose(hand_f=(28, 26), hand_b=(-20, -14), bob=1, lean=2, hem=0.45)
    lash = Pose(hand_f=(40, -6), hand_b=(-18, -16), bob=-3, lean=5, hem=0.6)
    follow = Pose(hand_f=(34, -22), hand_b=(-18, -18), bob=-2, lean=3, hem=0.75)
    rest = Pose(hand_f=(22, -20), hand_b=(-18, -18), bob=0, hem=0.9)
    return keyed(7, [(0, back, "linear"), (1, far, "in"), (2, swing, "out"), (3, swing.mixed(lash, 0.6), "out"),
                     (4, lash, "out"), (5, follow, "inout"), (6, rest, "inout")])


def body_clips():
    """The five rows; each move's damage frame flares her eyes and puts the star on the hand that
    strikes (between her hands for the beam)."""
    whip = whip_poses()
    clips = [("IDLE", idle_poses()), ("ATTACK_LIGHTNING", lightning_poses()),
             ("ATTACK_CREATE_SPARK", spark_poses(False)), ("ATTACK_TRIGGER_SPARK", spark_poses(True)),
             ("ATTACK_WHIP", whip)]
    for (label, poses), (_, _, _, damage) in zip(clips, BODY_CLIPS):
        if damage:
            pose = poses[damage - 1]
            hf, _ = hands(pose)
            pose.eyes = 1
            pose.tell = (0, 16) if label == "ATTACK_TRIGGER_SPARK" else (hf[0], hf[1] + 4)
    return [(label, [render_body(p) for p in poses]) for label, poses in clips], whip


# ---------------------------------------------------------------- wings and hair


def render_wings(t):
    """Both wings half-raised and beating slowly, long hair streaming down her back. Each wing is a
    leading edge from the shoulder blade up and out to the wrist, with feathers hanging from it,
    longest at the tip, layered so the outer ones lie in front."""
    f = Frame(BW, BH)
    cv = f.cv
    beat = math.sin(2 * math.pi * t)
    parts = []
    for side in (-1, 1):
        root = (8 * side, 34)
        elbow = (root[0] + side * (58 + 4 * beat), 70 + 10 * beat)
        wrist = (root[0] + side * (120 + 6 * beat), 96 + 16 * beat)
        tip = (root[0] + side * (178 + 4 * beat), 58 + 24 * beat)
        layers = []
        n = 11
        for k in range(n):                       # from the body out to the tip
            u = k / (n - 1)
            if u < 0.5:
                a, b, v = root, elbow, u / 0.5
            else:
                a, b, v = elbow, wrist, (u - 0.5) / 0.5
            base = (a[0] + (b[0] - a[0]) * v, a[1] + (b[1] - a[1]) * v)
            length = 70 + 62 * u ** 1.3
            ang = math.radians(-100 + side * 0 + 58 * u + 6 * beat * u)
            end = (base[0] + side * length * math.cos(ang) * -1, base[1] + length * math.sin(ang))
            end = (base[0] + side * abs(end[0] - base[0]), end[1])
            mid = ((base[0] + end[0]) / 2 + side * 4, (base[1] + end[1]) / 2 + 3)
            layers.append(cv.ribbon([f.p(*base), f.p(*mid), f.p(*end)], [6.5, 7.5 - 2 * u, 1.2]))
        primaries = np.zeros((BH, BW), bool)
        for k in range(3):                       # the long flight feathers at the tip
            ang = math.radians(20 - 26 * k + 8 * beat)
            end = (tip[0] + side * 40 * math.cos(ang), tip[1] + 40 * math.sin(ang) - 20 * k)
            primaries |= cv.ribbon([f.p(*wrist), f.p((wrist[0] + end[0]) / 2, (wrist[1] + end[1]) / 2 + 4),
                                    f.p(*end)], [6.0, 6.0, 1.0])
        covert = cv.ribbon([f.p(*root), f.p(*elbow), f.p(*wrist), f.p(*tip)], [6, 11, 8, 2])
        for k, mask in enumerate(layers):
            part = Part(f"feather{side}{k}", mask, M["wing"], f"wing{side}{k % 2}", dim=k < 3)
            part.tone = creature.relief_tone(mask, 4)
            part.details.append((_stars(mask, 11 + side + k, 0.01), 3))
            parts.append(part)
        pp = Part(f"primaries{side}", primaries, M["wing"], f"prim{side}")
        pp.tone = creature.relief_tone(primaries, 4)
        parts.append(pp)
        cp = Part(f"covert{side}", covert, M["mist"], f"covert{side}")
        cp.tone = creature.relief_tone(covert, 5)
        cp.details.append((cv.capsule(f.p(*elbow), f.p(*wrist), 1.0) & covert, 3))
        parts.append(cp)
    hair = cv.ribbon([f.p(0, 66), f.p(3 * beat, 30), f.p(-6 + 5 * beat, -10), f.p(-12 + 8 * beat, -46)],
                     [13, 16, 14, 4])
    hp = Part("hair", hair, M["hair"], "hair")
    hp.tone = creature.relief_tone(hair, 6)
    streak = cv.capsule(f.p(-3, 56), f.p(-5 + 4 * beat, -30), 0.7) & hair
    hp.details.append((streak, 3))
    parts.append(hp)
    return creature.compose(parts, BW, BH)


def wings_clip():
    return [render_wings(i / 8) for i in range(8)]


# ---------------------------------------------------------------- the whip


def whip_curve(k, hand):
    """The whip's points for lash frame k (0-based), in whip-frame texels about its centre, from
    the hand outwards, and whether the crack flashes there."""
    hx, hy = hand[0], hand[1] - WHIP_RAISE
    n = 24
    pts = []
    for i in range(n + 1):
        s = i / n
        if k <= 1:       # drawn back, coiling over her shoulder
            a = math.radians(100 + 140 * s + 20 * k)
            r = 30 + 130 * s * (1 - 0.35 * s)
            pts.append((hx - 20 * s + r * math.cos(a) * 0.9, hy + 20 * s + r * math.sin(a) * 0.7))
        elif k == 2:     # swung over: trailing high behind the hand
            pts.append((hx - 260 * s, hy + 120 * s - 80 * s * s))
        elif k == 3:     # unfurling forward and down
            pts.append((hx + 250 * s, hy + 60 * s - 190 * s * s))
        elif k == 4:     # the lash: flat along the ground across the whole arena
            x = hx + (395 - hx) * s if s > 0.0 else hx
            y = hy + (-118 - hy) * min(1.0, s * 3.5) + 3 * math.sin(12 * s)
            pts.append((hx - 380 * s if i % 2 and False else x, y))
        elif k == 5:     # curling back
            pts.append((hx + 220 * s, hy - 90 * s + 70 * s * s))
        else:            # recoiled to the hand
            pts.append((hx + 50 * s, hy - 40 * s))
    return pts


def render_whip(k, hand):
    f = Frame(WW, WH)
    cv = f.cv
    pts = whip_curve(k, hand)
    glow = np.zeros((WH, WW), bool)
    core = np.zeros((WH, WW), bool)
    for i in range(len(pts) - 1):
        r = 2.6 - 1.8 * i / len(pts)
        glow |= cv.capsule(f.p(*pts[i]), f.p(*pts[i + 1]), r + 1.6)
        core |= cv.capsule(f.p(*pts[i]), f.p(*pts[i + 1]), r * 0.45)
    parts = []
    if k == 4:           # the sweep's smear under the lash
        sweep = cv.polygon([f.p(hand[0], hand[1] - WHIP_RAISE), f.p(400, -100), f.p(400, -135),
                            f.p(-400, -135), f.p(-400, -112)])
        sweep &= px.bayer(WH, WW) < 0.22
        back = Part("sweep", sweep & ~glow, M["light"], "fx", outline=False)
        back.tone = np.where(sweep, 1, -1)
        parts.append(back)
        # the far half of the lash, cracking back along the ground to the other side
        for i in range(24):
            s0, s1 = i / 24, (i + 1) / 24
            a, b = f.p(-395 * s0, -118 + 2 * math.sin(9 * s0)), f.p(-395 * s1, -118 + 2 * math.sin(9 * s1))
            glow |= cv.capsule(a, b, 2.2 - 1.2 * s0 + 1.6)
            core |= cv.capsule(a, b, (2.2 - 1.2 * s0) * 0.45)
    g = Part("whip", glow & ~core, M["light"], "whip")
    g.tone = np.where(glow & ~core, 1, -1)
    g.tone[glow & ~core & ~px.erode(glow)] = 0
    c = Part("core", core, M["light"], "fx", outline=False)
    c.tone = np.where(core, 3 if k == 4 else 2, -1)
    handle = cv.capsule(f.p(hand[0] - 2, hand[1] - WHIP_RAISE - 3), f.p(hand[0] + 2, hand[1] - WHIP_RAISE + 3), 1.6)
    parts += [g, c, Part("handle", handle, M["ember"], "handle")]
    img = creature.compose(parts, WW, WH)
    if k == 4:
        for x in (395, -395):
            creature.star(img, f.pixel(x, -118), TELL, 8)
    return img


# ---------------------------------------------------------------- effects


def render_lightning(k):
    """The column falls from the top of the frame to its centre, where it strikes."""
    img = np.zeros((LH, LW, 4), float)
    rng = np.random.RandomState(40 + min(k, 3))
    cx, cy = LW // 2, LH // 2
    strength = [0.35, 1.0, 0.9, 0.7, 0.45, 0.2][k]
    ys = np.arange(0, cy + 1)
    if k < 5:
        xs = np.cumsum(rng.randint(-3, 4, size=len(ys))).astype(float)
        xs -= np.linspace(0, xs[-1], len(ys))          # it lands on the centre
        width = (3 + 5 * strength) * (0.5 + 0.5 * ys / cy)
        glow_w = width * 3.2
        for y, x, w, gw in zip(ys, xs, width, glow_w):
            x0 = int(cx + x)
            for dx in range(-int(gw), int(gw) + 1):
                d = abs(dx) / gw
                if not 0 <= x0 + dx < LW:
                    continue
                if abs(dx) <= w * 0.45:
                    c, a = LIGHT_RAMP[4], 1
                elif abs(dx) <= w:
                    c, a = LIGHT_RAMP[3], 1
                elif px.bayer(LH, LW)[y, x0 + dx] < (1 - d) * strength:
                    c, a = LIGHT_RAMP[1 if d > 0.6 else 2], 1
                else:
                    continue
                img[y, x0 + dx, :3], img[y, x0 + dx, 3] = c, 255 * a
        if k in (1, 2):                                 # forks off the main bolt
            for start in (cy // 3, cy // 2, 2 * cy // 3):
                x, y = cx + xs[start], start
                d = 1 if start % 2 else -1
                for _ in range(40):
                    x += d * rng.randint(1, 4)
                    y += rng.randint(1, 3)
                    if 0 <= int(x) < LW and y < LH:
                        img[int(y), int(x), :3], img[int(y), int(x), 3] = LIGHT_RAMP[3], 255
    # the strike: a burst on the ground line, embers flying out
    burst = max(0.0, 1.0 - abs(k - 1.5) / 3.5)
    yy, xx = np.mgrid[0:LH, 0:LW]
    r = np.hypot((xx - cx) / 1.8, yy - cy)
    rad = 8 + 30 * burst
    ring = (r < rad) & (yy <= cy + 12)
    if burst > 0:
        t = np.clip(r / rad, 0, 1)
        pick = px.bayer(LH, LW) < 1.1 - t
        sel = ring & pick & (img[..., 3] == 0)
        idx = np.clip((4 - t * 4.5).astype(int), 0, 4)
        ramp = np.array(EMBER_RAMP if k >= 3 else LIGHT_RAMP, float)
        img[sel, :3] = ramp[idx[sel]]
        img[sel, 3] = 255
    for j in range(12 if k >= 2 else 0):
        a = rng.uniform(math.pi * 1.05, math.pi * 1.95)
        d = 20 + 12 * k + rng.uniform(0, 20)
        ex, ey = int(cx + math.cos(a) * d * 1.6), int(cy + math.sin(a) * d)
        if 0 <= ex < LW - 1 and 0 <= ey < LH - 1:
            img[ey:ey + 2, ex:ex + 2, :3] = EMBER_RAMP[3 if k < 4 else 2]
            img[ey:ey + 2, ex:ex + 2, 3] = 255
    return px.to_rgba8(img)


def render_orb(k):
    """A spark: a white core in a blue halo, ember rays turning round it."""
    img = np.zeros((OH, OW, 4), float)
    yy, xx = np.mgrid[0:OH, 0:OW]
    cx = cy = OW / 2 - 0.5
    r = np.hypot(xx - cx, yy - cy)
    ang = np.arctan2(yy - cy, xx - cx)
    pulse = 0.5 + 0.5 * math.sin(2 * math.pi * k / 8)
    rad = 13 + 2 * pulse
    bay = px.bayer(OH, OW)
    halo = (r < rad + 10) & (bay < np.clip(1 - (r - rad) / 10, 0, 1) * 0.6)
    img[halo, :3], img[halo, 3] = LIGHT_RAMP[1], 255
    for lo, col in ((1.0, LIGHT_RAMP[2]), (0.75, LIGHT_RAMP[3]), (0.4, LIGHT_RAMP[4])):
        sel = r < rad * lo
        img[sel, :3], img[sel, 3] = col, 255
    rays = ((np.cos(4 * (ang - 2 * math.pi * k / 32)) > 0.92) & (r < rad + 18 + 6 * pulse) & (r >= rad))
    rays |= (np.cos(4 * (ang + math.pi / 4 + 2 * math.pi * k / 32)) > 0.96) & (r < rad + 10) & (r >= rad)
    img[rays, :3], img[rays, 3] = EMBER_RAMP[3], 255
    spot = np.hypot(xx - cx + 4, yy - cy + 4) < 3
    img[spot, :3] = LIGHT_RAMP[4]
    return px.to_rgba8(img)


def render_laser(k):
    """The beam between the sparks, upright: a white core, a lamp-blue body whose bands run along
    it, and a thin violet fringe that flickers."""
    img = np.zeros((VH, VW, 4), float)
    yy, xx = np.mgrid[0:VH, 0:VW]
    d = np.abs(xx - (VW / 2 - 0.5))
    wave = 1.5 * np.sin(2 * math.pi * (yy / 40.0 - k / 4))
    bay = px.bayer(VH, VW)
    fringe = (d < 30 + wave) & (bay < 0.35)
    img[fringe, :3], img[fringe, 3] = px.rgb("#5a3aa0"), 255
    body = d < 20 + wave
    img[body, :3], img[body, 3] = LIGHT_RAMP[1], 255
    bands = body & (np.sin(2 * math.pi * (yy / 24.0 - k / 4)) > 0.6) & (d < 16)
    img[bands, :3] = LIGHT_RAMP[2]
    inner = d < 10 + 0.5 * wave
    img[inner, :3] = LIGHT_RAMP[3]
    img[d < 4, :3] = LIGHT_RAMP[4]
    return px.to_rgba8(img)


# ---------------------------------------------------------------- the data file


def anim_data():
    lines = ["BODY :", f"size : ({BW},{BH})", ""]
    for label, n, rate, damage in BODY_CLIPS:
        tail = f" / DamageFrame : {damage}" if damage else ""
        lines.append(f"{label} | NbFrame : {n} / FrameRate : {rate}{tail}")
    for name, w, h, n, rate in PARTS:
        lines += ["", f"{name} :", f"size : ({w},{h})", f"ANIM | NbFrame : {n} / FrameRate : {rate}"]
    return "\n".join(lines) + "\n"


def read_anim_data(text):
    """The file as the game reads it, field by field: the body's size and clips (label, frames,
    rate, damage frame or None), then each part's (size, frames, rate)."""
    reader = FieldReader(text, "Goddess AnimData")
    need = reader.need
    need("BODY :\n")
    size = tuple(need("size : (%d,%d)\n\n"))
    body = []
    for label, _, _, damage in BODY_CLIPS:
        fmt = label + " | NbFrame : %d / FrameRate : %d" + (" / DamageFrame : %d" if damage else "") + "\n"
        v = need(fmt)
        body.append((label, v[0], v[1], v[2] if damage else None))
    parts = []
    for name, *_ in PARTS:
        need(f"\n{name} :\n")
        psize = tuple(need("size : (%d,%d)\n"))
        parts.append((name, psize, *need("ANIM | NbFrame : %d / FrameRate : %d")))
    reader.finish()
    return size, body, parts


def whip_sheet(frames):
    """Frames left to right, wrapping into the next row at the sheet's width."""
    rows = math.ceil(len(frames) / WHIP_ROW)
    img = np.zeros((rows * WH, WHIP_ROW * WW, 4), np.uint8)
    for i, f in enumerate(frames):
        img[(i // WHIP_ROW) * WH:(i // WHIP_ROW + 1) * WH, (i % WHIP_ROW) * WW:(i % WHIP_ROW + 1) * WW] = f
    return img


def is_tell(img):
    rgb = img[..., :3].astype(int)
    return (img[..., 3] == 255) & (rgb.min(axis=-1) == 255)


def check(text, sheets):
    """What the game would not report: a field that stops scanning, a sheet whose rows do not hold
    their clips, a clip that never finishes or skips its damage frame, a dangerous frame with no
    tell, art cut off by a frame's edge."""
    if b"\r" in text.encode("ascii"):
        raise ValueError("Goddess AnimData must use LF line ends")
    size, body, parts = read_anim_data(text)
    if size != (BW, BH):
        raise ValueError("Goddess body size")
    img = sheets["BODY"]
    if img.shape[:2] != (BH * len(body), BW * max(n for _, n, _, _ in body)) or img.shape[1] > 4096:
        raise ValueError(f"Goddess body sheet is {img.shape[1]}x{img.shape[0]}")
    for row, (label, n, rate, damage) in enumerate(body):
        if not (n >= 1 and 1 <= rate <= 60) or (damage is not None and not 1 <= damage <= n):
            raise ValueError(f"Goddess {label}: {n} frames at {rate} fps, damage {damage}")
        for i in range(n):
            f = img[row * BH:(row + 1) * BH, i * BW:(i + 1) * BW]
            if f[0].any() or f[-1].any() or f[:, 0].any() or f[:, -1].any():
                raise ValueError(f"Goddess {label} {i}: cut off by the frame edge")
            if damage is not None and (is_tell(f).sum() >= 12) != (i + 1 == damage):
                raise ValueError(f"Goddess {label} {i + 1}: the tell is on the wrong frames")
    if body[1][1] < body[1][3] + 2:
        raise ValueError("Goddess lightning: it would never be shown")
    wings = sheets["WINGS"]
    for i in range(wings.shape[1] // BW):
        f = wings[:, i * BW:(i + 1) * BW]
        if f[0].any() or f[-1].any() or f[:, 0].any() or f[:, -1].any():
            raise ValueError(f"Goddess wings {i}: cut off by the frame edge")
    for name, psize, n, rate in parts:
        if not (n >= 1 and 1 <= rate <= 60):
            raise ValueError(f"Goddess {name}: {n} frames at {rate} fps")
        pic = sheets[name]
        if name == "WHIP":
            if n != body[4][1] or pic.shape[1] % psize[0] or pic.shape[1] // psize[0] * (pic.shape[0] // psize[1]) < n:
                raise ValueError("Goddess whip sheet does not hold the lash")
        elif pic.shape[:2] != (psize[1], psize[0] * n):
            raise ValueError(f"Goddess {name} sheet is {pic.shape[1]}x{pic.shape[0]}")


# ---------------------------------------------------------------- review sheet


def pose_sheet(clips, wings, whip_frames, whip_poses_, out):
    """Every body frame over its wings (and the whip on the lash), with the hurtbox and the move's
    attack box, at the texture's own scale."""
    cx, cy = BW / 2, BH / 2
    hw, hh = HURTBOX
    hurt = (cx - HURT_ORIGIN[0], cy - HURT_ORIGIN[1], cx - HURT_ORIGIN[0] + hw, min(BH, cy - HURT_ORIGIN[1] + hh),
            (90, 110, 200, 255))
    red = (220, 60, 50, 255)
    boxes = {"ATTACK_WHIP": (0, cy, BW, min(BH, cy + 400 / 3), red)}
    rows = []
    for row, (label, frames) in enumerate(clips):
        n, rate, damage = BODY_CLIPS[row][1:]
        composed = []
        for i, fr in enumerate(frames):
            base = np.zeros_like(fr)
            wings_on = damage is None or label in ("ATTACK_CREATE_SPARK", "ATTACK_TRIGGER_SPARK") or i + 1 < damage
            if wings_on:
                base = wings[i % len(wings)].copy()
            pic = _over(base, fr)
            if label == "ATTACK_WHIP":
                wf = np.pad(whip_frames[i], ((0, 2), (0, 0), (0, 0)))
                oy = int(round((WH - BH) / 2 + WHIP_RAISE))
                ox = (WW - BW) // 2
                pic = _over(pic, wf[oy:oy + BH, ox:ox + BW])
            composed.append(pic)
        info = f"{n} x {rate} fps" + (f", damage {damage}" if damage else "")
        marked = (damage - 1,) if damage else ()
        box = boxes.get(label)
        rows.append(creature.SheetRow(label, info, composed, "city", marked=marked,
                                      boxes=lambda col, b=box, d=damage: [hurt] + ([b] if b and col + 1 == d else [])))
    return creature.pose_sheet(rows, out / "Assets/Fonts/ButtonFont2.ttf", out / "docs/goddess_poses.png", scale=1,
                               label_w=220)


def _over(base, top):
    out = base.copy()
    sel = top[..., 3] > 0
    out[sel] = top[sel]
    return out


def generate(out):
    clips, whip_pose_list = body_clips()
    wings = wings_clip()
    whip_frames = [render_whip(k, hands(p)[0]) for k, p in enumerate(whip_pose_list)]
    sheets = {"BODY": px.sheet(clips, BW, BH), "WINGS": px.sheet([("ANIM", wings)], BW, BH),
              "WHIP": whip_sheet(whip_frames),
              "LASER": px.sheet([("ANIM", [render_lightning(k) for k in range(6)])], LW, LH),
              "ORBES": px.sheet([("ANIM", [render_orb(k) for k in range(8)])], OW, OH),
              "VERTICAL LASER": px.sheet([("ANIM", [render_laser(k) for k in range(4)])], VW, VH)}
    text = anim_data()
    check(text, sheets)
    paths = {"BODY": BODY_SHEET, "WINGS": WINGS_SHEET, "WHIP": WHIP_SHEET, "LASER": LIGHTNING_SHEET,
             "ORBES": ORB_SHEET, "VERTICAL LASER": LASER_SHEET}
    written = [px.save_png(sheets[k], out / p) for k, p in paths.items()]
    txt = out / DATA
    txt.parent.mkdir(parents=True, exist_ok=True)
    txt.write_bytes(text.encode("ascii"))
    return written + [txt, pose_sheet(clips, wings, whip_frames, whip_pose_list, out)]

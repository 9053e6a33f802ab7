"""The King, the city's guardian: Sprites/Enemies/Boss/King.png, KingAnimData.txt, and
docs/king_poses.png (every frame x3, labelled, with the hurtbox and each move's attack box).

A towering armoured guardian: slate plate trimmed with verdigris copper, a great helm under a
tarnished gold crown with a cold blue light behind its visor slit, vast pauldrons, a tattered
crimson mantle reaching to his heels, and a greatsword nearly as long as he is tall. Posed with the
character rig (`rig.py`) through his own part builder, facing right, and drawn facing left
(`facing=-1`), as the game shows him.

Frames are 180 x 150. The game's hurtbox is a sixth of the frame width and 47 % of its height,
bottom-centred (30 x 70 texture pixels): the legs and the torso fill it, the helm and crown stand
above it. The attack boxes are the game's too: the swing covers the half of the sprite on his
facing side (up to 72 tx in front of the centre line), the dash a small box at his feet, the
landing a wide box centred on him.

Every move is readable before it lands: anticipation (a step back, a crouch, the sword drawn up),
the visor blazing on the last frame before the strike, and on the damage frame itself the blade
flashing white with a star on its edge, a smear over the stroke and a follow-through. The walk is
a heavy lurch: the body pitches forward over the striding leg and drops onto the planted foot with
a puff of grit on exactly the frames where the game plays the footfall (5 and 14).

Rows: IDLE (loops), WALK (loops), ATTACK, DASH ATTACK, JUMP ATTACK, DEAD (once; DEAD holds its last
frame: the King fallen on his face beside his sword, planted in the floor).
"""
import math

import numpy as np
from PIL import Image, ImageDraw, ImageFont

from . import pixel as px
from . import rig
from .animdata import FieldReader, clip_line, read_clip
from .nomad import _ribbon_chain, _star, _tatter, lerp_pt
from .rig import Part, Pose, Smear, add, two_bone, vec

FW, FH = 180, 150
FACING = -1  # the sheet looks to the left
SHEET = "Assets/Sprites/Enemies/Boss/King.png"
DATA = "Assets/Sprites/Enemies/Boss/KingAnimData.txt"

ATTACK_RATE, ATTACK_HIT = 10, 6
DASH_RATE, DASH_FRAME = 10, 4
JUMP_RATE, JUMP_FRAME, FALL_FRAME, JUMP_HIT = 12, 4, 5, 6
WALK_RATE = 16
WALK_PLANTS = (5, 14)           # the frames (from 1) on which a foot lands: the game's footfalls
# label, frame rate; the frame counts come from the poses
CLIPS = [("IDLE", 6), ("WALK", WALK_RATE), ("ATTACK", ATTACK_RATE), ("DASH ATTACK", DASH_RATE),
         ("JUMP ATTACK", JUMP_RATE), ("DEAD", 10)]
HURTBOX = (FW / 6.0, FH * 1.4 / 3.0)     # tx, bottom-centred

# ---------------------------------------------------------------- materials

MATERIALS = {
    "plate": rig.Material.of("#0a0c14", "#2a3042", "#465068", "#6c7892", "#a2aec8"),
    "mail": rig.Material.of("#08090e", "#1e2029", "#30333f", "#454a59", "#5c6274"),
    "copper": rig.Material.of("#08140f", "#2a5848", "#428670", "#72b698", "#a8dcc0"),
    "crown": rig.Material.of("#1a0f05", "#76501a", "#b4822c", "#e4b85a", "#f6dc96"),
    "cloak": rig.Material.of("#10030a", "#3a0c1a", "#5c1626", "#842634", "#a8404a"),
    "leather": rig.Material.of("#0e0908", "#2a1b15", "#4a3024", "#6e4a34", "#93694a"),
    "blade": rig.Material.of("#0e141c", "#56667a", "#8a9aaa", "#bccad6", "#dce6ee"),
    "eye": rig.Material.of("#06141c", "#1e6a8a", "#3ab0d8", "#8ae4ff", "#d8f8ff"),
    "smear": rig.Material.of("#10283a", "#36708e", "#74b6d6", "#c4e8f6", "#ffffff"),
    "dust": rig.Material.of("#000000", "#45444f", "#63626f", "#878694", "#878694"),
    "ghost": px.rgb("#34507c"),
}
FLASH = rig.Material.of("#1c3040", "#e4f2fa", "#f6fcff", "#ffffff", "#ffffff")
TELL = [px.rgb(h) for h in ("#ffffff", "#e6f8ff", "#8ae4ff", "#3a8ab8")]
SPEED = [px.rgb(h) for h in ("#c4dcec", "#7ea4c0", "#4c6e8c")]

KING = rig.Body(thigh=18.0, shin=18.0, upper_arm=14.0, forearm=13.0, torso=26.0, shoulder=22.0,
                neck=2.0, head_r=(6.2, 7.0), grip=7.0, pommel=3.5, blade=50.0, blade_w=2.8,
                guard=7.0, cape_len=44.0, cape_w=(9.0, 14.0),
                limb_r={"thigh": (5.6, 4.6), "shin": (4.4, 3.6), "upper_arm": (4.4, 3.8),
                        "forearm": (3.9, 3.3)},
                materials=MATERIALS)

# ---------------------------------------------------------------- skeleton


class Skeleton:
    """Joint positions of one pose, shared by the part builder and the overlays."""

    def __init__(self, body, pose):
        self.body, self.pose = body, pose
        self.up = up = 90.0 - pose.lean
        self.hip = pose.hip
        self.fwd = vec(up - 90)
        self.stretch = pose.stretch
        self.neck = self.tl(body.torso, 0.5)
        self.sh_f = self.tl(body.shoulder, 2.0)
        self.sh_b = self.tl(body.shoulder, -2.5)
        self.head_up = up - pose.head
        self.head_c = add(self.neck, vec(self.head_up, body.neck + body.head_r[1] - 1.0))
        self.planted = "planted" in pose.tags          # the sword stands in the floor on its own
        self.weapon = pose.weapon
        hand_f = add(self.sh_f, pose.hand_f)
        if self.planted:
            self.weapon = PLANT_ANGLE
            self.guard_c = add(PLANT_TIP, vec(PLANT_ANGLE), -body.blade)
            self.grip_hand = add(self.guard_c, vec(PLANT_ANGLE), -body.grip + 1.5)
            if "hold" in pose.tags:
                hand_f = self.grip_hand
        self.elbow_f, self.hand_f = two_bone(self.sh_f, hand_f, body.upper_arm, body.forearm, -1)
        if not self.planted:
            self.guard_c = add(self.hand_f, vec(self.weapon), body.grip - 1.5)
            self.grip_hand = self.hand_f
        if pose.hand_b is None or "hold" in pose.tags:   # both hands on the long grip
            target = add(self.grip_hand, vec(self.weapon), -3.6)
        else:
            target = add(self.sh_b, pose.hand_b)
        self.elbow_b, self.hand_b = two_bone(self.sh_b, target, body.upper_arm, body.forearm, -1)

    def tl(self, u, v):
        """Torso-local (along, forward) -> rig space."""
        return add(add(self.hip, vec(self.up, u * self.stretch)), self.fwd, v)

    def hl(self, u, v):
        """Head-local (up, forward) -> rig space."""
        return add(add(self.head_c, vec(self.head_up, u)), vec(self.head_up - 90), v)

    def eye(self):
        return self.hl(0.6, 5.0)

    def blade_point(self, t):
        """The point a fraction t along the blade, guard 0 to tip 1."""
        return add(self.guard_c, vec(self.weapon), self.body.blade * t)


PLANT_TIP = (24.0, -4.0)    # where the dropped sword stands in the floor (DEAD)
PLANT_ANGLE = -80.0

# ---------------------------------------------------------------- parts


def _leg(cv, sk, name, hip_off, foot, toe, dim):
    body, m = sk.body, sk.body.materials
    hj = add(sk.hip, sk.fwd, hip_off)
    knee, ankle = two_bone(hj, foot, body.thigh, body.shin, +1)
    thigh = cv.capsule(hj, knee, *body.limb_r["thigh"])
    shin = cv.capsule(knee, ankle, *body.limb_r["shin"])
    cuisse = Part(name, thigh, m["mail"], name, dim=dim)
    greave = Part(name + "_greave", shin & ~thigh, m["plate"], name, dim=dim)
    greave.details.append((cv.capsule(lerp_pt(knee, ankle, 0.3), lerp_pt(knee, ankle, 0.85), 0.6)
                           & shin, 2))
    cop = cv.ellipse(knee, 4.6, 4.2)
    kp = Part(name + "_knee", cop, m["plate"], name, dim=dim)
    kp.details.append((cv.ellipse(add(knee, (0.6, 0.6)), 1.6, 1.4), 3))
    boot = cv.capsule(add(ankle, vec(toe), -2.5), add(ankle, vec(toe), 7.0), 3.6, 2.4)
    boot |= cv.capsule(add(ankle, vec(toe + 90), 2.5), ankle, 3.6)
    sabaton = Part(name + "_boot", boot, m["plate"], name, dim=dim)
    sabaton.details.append((cv.capsule(add(ankle, vec(toe), 1.0), add(ankle, vec(toe + 90), 2.4), 0.5)
                            & boot, 0))
    return [cuisse, greave, kp, sabaton]


def _arm(cv, sk, sh, elbow, hand, name, dim):
    body, m = sk.body, sk.body.materials
    upper = cv.capsule(sh, elbow, *body.limb_r["upper_arm"])
    fore = cv.capsule(elbow, hand, *body.limb_r["forearm"])
    parts = [Part(name, upper, m["mail"], name, dim=dim)]
    vam = Part(name + "_vambrace", fore, m["plate"], name, dim=dim)
    cuff = cv.capsule(lerp_pt(elbow, hand, 0.72), lerp_pt(elbow, hand, 0.8), body.limb_r["forearm"][1] + 0.9)
    vam.details.append((cuff, 2))
    parts.append(vam)
    parts.append(Part(name + "_couter", cv.ellipse(elbow, 4.0, 4.0), m["plate"], name, dim=dim))
    glove = cv.ellipse(hand, 3.6, 3.4)
    parts.append(Part(name + "_hand", glove, m["plate"], name + "_hand", dim=dim))
    return parts


def _sword(cv, sk, flash):
    body, m = sk.body, sk.body.materials
    d, n = vec(sk.weapon), vec(sk.weapon + 90)
    g = sk.guard_c
    pommel = add(g, d, -body.grip - body.pommel + 1.0)
    grip = Part("grip", cv.capsule(pommel, g, 1.3), m["leather"], "weapon")
    for k in range(3):                                   # the wire binding
        c = add(pommel, d, 2.5 + 1.6 * k)
        grip.details.append((cv.capsule(add(c, n, -1.4), add(c, n, 1.4), 0.45), 0))
    knob = Part("pommel", cv.ellipse(pommel, 2.4, 2.4), m["crown"], "weapon")
    arms = cv.capsule(add(g, n, -body.guard), add(g, n, body.guard), 1.4)
    arms |= cv.capsule(add(g, n, body.guard), add(add(g, n, body.guard + 1.0), d, 2.5), 1.1)
    arms |= cv.capsule(add(g, n, -body.guard), add(add(g, n, -body.guard - 1.0), d, 2.5), 1.1)
    guard = Part("guard", arms | cv.ellipse(add(g, d, 0.8), 2.2, 2.2), m["copper"], "weapon")
    w = body.blade_w
    b0 = add(g, d, 1.0)
    ricasso = add(g, d, 5.0)
    shoulder = add(g, d, body.blade - 8.0)
    tip = add(g, d, body.blade)
    blade = cv.polygon([add(b0, n, w * 0.8), add(ricasso, n, w), add(shoulder, n, w * 0.92), tip,
                        add(shoulder, n, -w * 0.92), add(ricasso, n, -w), add(b0, n, -w * 0.8)])
    blade |= cv.capsule(b0, add(g, d, body.blade - 1.0), 0.7)
    bp = Part("blade", blade, FLASH if flash else m["blade"], "weapon")
    fuller = cv.capsule(add(g, d, 6.0), add(g, d, body.blade * 0.62), 0.55) & blade
    bp.details.append((fuller, 2 if flash else 0))
    return [grip, knob, bp, guard]


def build_king(body, pose, cv):
    m = body.materials
    sk = Skeleton(body, pose)
    tl, hl = sk.tl, sk.hl
    parts = []
    wave = pose.cape_wave

    # the mantle: hangs from the shoulders to his heels, tattered at the hem
    mask, pts, dirs, widths = _ribbon_chain(cv, tl(body.torso - 2.0, -4.0), pose.cape, pose.cape_curl,
                                            pose.cape_flutter, wave, body.cape_len, body.cape_w[0],
                                            body.cape_w[1], segs=5)
    mask = _tatter(cv, mask, pts, dirs, body.cape_w[1], wave, n=4)
    cape = Part("cape", mask, m["cloak"], "cape")
    nl = (-dirs[-1][1], dirs[-1][0])
    for off in (-0.45, 0.1, 0.55):                       # heavy folds from the shoulders down
        a0 = add(pts[1], (-dirs[0][1], dirs[0][0]), off * widths[1])
        cape.details.append((cv.capsule(a0, add(pts[-1], nl, off * widths[-1] * 1.1), 0.7) & mask, 0))
    parts.append(cape)

    # far arm, far leg
    parts += _arm(cv, sk, sk.sh_b, sk.elbow_b, sk.hand_b, "arm_b", True)
    parts += _leg(cv, sk, "leg_b", -3.0, pose.foot_b, pose.toe_b, True)

    sword = _sword(cv, sk, "flash" in pose.tags)
    if pose.weapon_behind or sk.planted:
        parts += sword

    # tassets: a skirt of plates over the hips, three lames
    skirt = cv.polygon([tl(5.0, -9.5), tl(5.0, 9.5), tl(-5.0, 11.0), tl(-12.5, 10.0), tl(-13.0, 3.0),
                        tl(-11.5, -9.0), tl(-5.0, -10.5)])
    sp = Part("tassets", skirt, m["plate"], "skirt")
    for u in (-1.5, -7.0):
        sp.details.append((cv.capsule(tl(u, -11.0), tl(u - 0.8, 11.5), 0.55) & skirt, 0))
    sp.details.append((cv.capsule(tl(2.0, 1.5), tl(-12.0, 2.5), 0.5) & skirt, 0))
    parts.append(sp)

    # the cuirass: a barrel chest over a narrower waist, a ridge down its front
    chest = cv.polygon([tl(3.0, -9.0), tl(3.0, 8.5), tl(10.0, 10.0), tl(18.0, 12.0), tl(24.0, 11.0),
                        tl(28.0, 6.0), tl(28.5, -6.0), tl(25.0, -10.5), tl(14.0, -10.5)])
    cp = Part("cuirass", chest, m["plate"], "torso")
    cp.details.append((cv.capsule(tl(5.0, 9.2), tl(21.0, 11.0), 0.7) & chest, 2))
    cp.details.append((cv.capsule(tl(11.0, -10.0), tl(11.5, 9.5), 0.5) & chest, 0))
    cp.details.append((cv.capsule(tl(19.0, 2.0), tl(23.0, 6.0), 1.0) & chest, 3))
    parts.append(cp)
    belt = cv.polygon([tl(2.0, -9.5), tl(2.0, 9.5), tl(5.5, 9.8), tl(5.5, -9.8)])
    bp = Part("belt", belt, m["leather"], "belt")
    bp.details.append((cv.ellipse(tl(3.8, 8.0), 1.6, 1.6), 3))
    parts.append(bp)
    parts += _leg(cv, sk, "leg_f", 3.0, pose.foot_f, pose.toe_f, False)
    # the front tasset hangs over the near thigh
    flap = cv.polygon([tl(4.0, 1.0), tl(4.0, 11.0), tl(-8.0, 13.0), tl(-13.0, 9.0), tl(-12.0, 1.0)])
    fp = Part("tasset_f", flap, m["plate"], "tasset_f")
    fp.details.append((cv.capsule(tl(-3.0, 1.5), tl(-3.8, 12.2), 0.5) & flap, 0))
    fp.details.append((cv.capsule(tl(-12.0, 2.0), tl(-12.0, 9.5), 0.6) & flap, 2))
    parts.append(fp)

    # the gorget and the great helm under its crown; the visor's slit and the eye behind it
    gorget = cv.capsule(tl(body.torso - 1.0, -5.5), tl(body.torso - 0.5, 6.0), 3.6)
    parts.append(Part("gorget", gorget, m["copper"], "gorget"))
    up = sk.head_up
    helm = cv.ellipse(hl(0.5, 0.5), 6.4, 7.2, up - 90)
    helm |= cv.polygon([hl(5.0, -5.6), hl(5.5, 6.6), hl(-6.0, 7.0), hl(-6.8, -5.0)])
    hp = Part("helm", helm, m["plate"], "head")
    slit = cv.polygon([hl(1.8, 0.5), hl(1.8, 7.2), hl(-0.2, 7.2), hl(-0.2, 0.5)]) & helm
    hp.details.append((slit, "ink"))
    for k in range(3):                                   # breaths pierced below the slit
        hp.details.append((cv.ellipse(hl(-3.0, 3.6 + 1.3 * k), 0.45, 0.45) & helm, "ink"))
    hp.details.append((cv.capsule(hl(5.0, 1.0), hl(-6.0, 1.2), 0.5) & helm & ~slit, 2))
    parts.append(hp)
    band = cv.polygon([hl(5.2, -6.2), hl(5.6, 7.0), hl(8.0, 7.0), hl(7.8, -6.4)])
    crown = band
    for k, v in enumerate((-5.0, -1.5, 2.0, 5.5)):
        tall = 6.5 if k in (1, 2) else 4.5
        crown |= cv.polygon([hl(7.6, v - 1.6), hl(7.6 + tall, v), hl(7.6, v + 1.6)])
    cr = Part("crown", crown, m["crown"], "crown")
    cr.details.append((cv.ellipse(hl(6.6, 0.8), 1.0, 1.0), 3))
    cr.details.append((cv.capsule(hl(6.4, -6.0), hl(6.6, 6.8), 0.4) & band, 0))
    parts.append(cr)
    if "eyes_off" not in pose.tags:
        lvl = 3 if ("flare" in pose.tags or "flash" in pose.tags) else 2
        eye = cv.capsule(hl(0.8, 3.6), hl(0.8, 6.4), 0.8) & slit
        ep = Part("eye", eye, m["eye"], "head", outline=False)
        ep.tone = np.where(eye, lvl, -1)
        parts.append(ep)

    for sm in pose.smear:
        parts.append(rig._smear_part(cv, sm, m))
    if not (pose.weapon_behind or sk.planted):
        parts += sword
    parts += _arm(cv, sk, sk.sh_f, sk.elbow_f, sk.hand_f, "arm_f", False)
    # the pauldron: three lames over the near shoulder, edged in copper
    pc = add(sk.sh_f, vec(sk.up), 1.5)
    pauldron = cv.ellipse(pc, 9.0, 7.2, sk.up - 90 + 12)
    pp = Part("pauldron", pauldron, m["plate"], "pauldron")
    for k, r in enumerate((5.2, 2.6)):
        lame = cv.ellipse(add(pc, vec(sk.up), -r), 8.4 - k, 2.2, sk.up - 90 + 12)
        pp.details.append((lame & pauldron & ~px.shift(lame, 1, 0), 0))
    pp.details.append((pauldron & ~px.shift(pauldron, 1, 0) & ~px.shift(pauldron, 0, 1), 3))
    parts.append(pp)
    trim = px.outline_of(pauldron) & ~pauldron & cv.ellipse(add(pc, vec(sk.up), -4.0), 11.0, 4.5,
                                                            sk.up - 90 + 12)
    parts.append(Part("pauldron_trim", trim, m["copper"], "pauldron"))
    return parts, sk.hand_f


# ---------------------------------------------------------------- poses

STAND = Pose(hip=(0.0, 38.5), lean=4.0, head=-4.0, foot_f=(8.0, 3.5), foot_b=(-9.0, 3.5),
             hand_f=(10.0, -22.0), hand_b=None, weapon=-62.0, cape=8.0, cape_curl=3.0,
             cape_flutter=3.0)
# carried on the shoulder while he walks: the blade rests back over the pauldron
SHOULDERED = STAND.but(hand_f=(8.0, -8.0), weapon=148.0, hand_b=None)


def smear_of(pose, a0, a1, r0):
    """A crescent about the sword shoulder from the blade's past angle a0 to a1, its outer edge
    following the tip, kept inside the frame."""
    sk = Skeleton(KING, pose)
    tip = sk.blade_point(1.0)
    reach = math.hypot(tip[0] - sk.sh_f[0], tip[1] - sk.sh_f[1])
    room = min(FW / 2 - 2.0 - sk.sh_f[0], FH - 2.0 - sk.sh_f[1], sk.sh_f[0] + FW / 2 - 2.0)
    return (Smear(sk.sh_f, r0, max(min(reach + 1.0, room), r0 + 8), a0, a1),)


def idle():
    """The guard, breathing: the greatsword point-down before him in both hands, the mantle
    stirring, the light behind the visor slow and steady."""
    frames, n = [], 8
    for i in range(n):
        b = 0.5 - 0.5 * math.cos(2 * math.pi * i / n)
        frames.append(STAND.but(hip=(0.0, 38.5 - 1.0 * b), stretch=1.0 + 0.02 * b, head=-4.0 - 3 * b,
                                hand_f=(10.0, -22.0 + 1.0 * b), weapon=-62.0 + 2.0 * b,
                                cape=8.0 + 4 * b, cape_wave=i / n))
    return frames


def _walk_feet(i):
    """Ankles of walk frame i (0-based): a stride on frames 0-3 and 8-12, planted on 4-7 and
    13-15. The stance foot slides back as far as the game moves him forward (500 px/s at 16 fps,
    a third of that in texture pixels), so it stays put on the floor."""
    slide = 500.0 / WALK_RATE / 3.0
    plant_f = 21.0
    # the foot that strides first (the back one), and the one that strides second
    if i < 4:                       # stride 1: the back foot swings through to the front
        t = (i + 1) / 5.0
        stance = (plant_f - slide * i, 3.5)
        swing_x = -plant_f + (plant_f * 2 + 2.0) * (0.5 - 0.5 * math.cos(math.pi * t))
        return stance, (swing_x, 3.5 + 9.0 * math.sin(math.pi * t)), -20 * math.sin(math.pi * t), "b"
    if i < 8:                       # planted: the back foot has landed in front
        return (plant_f - slide * 4, 3.5), (plant_f + 2.0, 3.5), 0.0, "b"
    if i < 13:                      # stride 2: the other foot swings through
        k = i - 8
        t = (k + 1) / 6.0
        stance = (plant_f + 2.0 - slide * k, 3.5)
        start = plant_f - slide * 4
        swing_x = start + (plant_f - start) * (0.5 - 0.5 * math.cos(math.pi * t))
        return stance, (swing_x, 3.5 + 9.0 * math.sin(math.pi * t)), -20 * math.sin(math.pi * t), "f"
    return (plant_f + 2.0 - slide * 5, 3.5), (plant_f, 3.5), 0.0, "f"


def walk():
    """A heavy lurch, the greatsword on his shoulder: he pitches forward over the striding leg,
    drops onto the landing foot (grit flies on frames 5 and 14, the footfalls) and sags before
    the next stride."""
    frames = []
    for i in range(16):
        stance, swing_foot, toe, who = _walk_feet(i)
        plant = i + 1 in WALK_PLANTS
        settle = i in (5, 6, 7, 14, 15)
        if who == "b":
            foot_f, foot_b, toe_f, toe_b = stance, swing_foot, 0.0, toe
        else:
            foot_f, foot_b, toe_f, toe_b = swing_foot, stance, toe, 0.0
        striding = not (plant or settle)
        lurch = 12.0 if striding else (7.0 if plant else 5.0)
        hip_y = 36.5 if striding else (33.5 if plant else 35.5)
        hip_x = (foot_f[0] + foot_b[0]) / 2.0 + (3.0 if striding else 0.0)
        dust = ((max(foot_f[0], foot_b[0]) + 6.0, 2.0, 1.6),
                (max(foot_f[0], foot_b[0]) - 10.0, 1.5, 1.2)) if plant else ()
        frames.append(SHOULDERED.but(
            hip=(hip_x, hip_y), lean=lurch, head=-lurch * 0.6, foot_f=foot_f, foot_b=foot_b,
            toe_f=toe_f, toe_b=toe_b, hand_f=(9.0, -8.0 - (1.5 if plant else 0.0)),
            weapon=148.0 - (6.0 if plant else 0.0), cape=14.0 + (8.0 if striding else 2.0),
            cape_wave=i / 8.0, dust=dust))
    return frames


def attack():
    """The great stroke: a step back, the sword heaved up over the head and held, the visor
    blazing, then brought down in a wide arc before him (damage frame 6) to bite the floor in
    dust; wrenched up and back to guard."""
    ready = STAND.but(hand_f=(10.0, -20.0), weapon=-50.0)
    heave = STAND.but(hip=(-3.0, 37.5), lean=-2.0, foot_f=(9.0, 3.5), foot_b=(-13.0, 3.5),
                      hand_f=(0.0, 2.0), weapon=120.0, cape=6.0, weapon_behind=True)
    high = heave.but(hip=(-4.0, 38.5), lean=-8.0, head=-8.0, hand_f=(2.0, 14.0), weapon=112.0,
                     weapon_behind=False, stretch=1.03, cape_wave=0.3, tags=("glint",))
    coil = high.but(hip=(-5.0, 37.0), lean=-11.0, hand_f=(-1.0, 13.0), weapon=128.0,
                    stretch=1.0, cape_wave=0.5, tags=("flare", "glint2"))
    strike = STAND.but(hip=(10.0, 31.0), lean=26.0, head=-14.0, foot_f=(28.0, 3.5), foot_b=(-12.0, 3.5),
                       toe_b=-25, hand_f=(17.0, -17.0), weapon=-28.0, cape=70.0, cape_curl=6.0,
                       cape_flutter=8.0, tags=("flash",), dust=((-22.0, 1.5, 1.6),))
    strike = strike.but(smear=smear_of(strike, 118.0, -28.0, 14.0))
    bite = strike.but(hip=(11.0, 29.0), lean=32.0, hand_f=(12.0, -24.0), weapon=-50.0, cape=55.0,
                      cape_wave=0.3, tags=("impact",), dust=((-20.0, 2.0, 1.6),))
    bite = bite.but(smear=smear_of(bite, 10.0, -50.0, 22.0))
    wrench = STAND.but(hip=(6.0, 34.0), lean=16.0, head=-8.0, foot_f=(22.0, 3.5), foot_b=(-11.0, 3.5),
                       hand_f=(10.0, -22.0), weapon=-48.0, cape=30.0, cape_wave=0.6,
                       tags=("settling",))
    settle = STAND.but(hip=(2.0, 37.5), foot_f=(12.0, 3.5), cape=14.0, cape_wave=0.9)
    return rig.timeline(10, [(0, ready, "linear"), (1, heave, "inout"), (2, high, "out"),
                             (3, high.but(tags=("glint",), cape_wave=0.4), "linear"),
                             (4, coil, "in"), (5, strike, "linear"), (6, bite, "out"),
                             (7, wrench, "inout"), (9, settle, "inout")])


def dash_attack():
    """The dash: he drops low and draws the sword back along his side, the visor blazes, then he
    is across the arena in one blink (dash frame 4), the point driven forward level, afterimages
    and speed lines behind; he skids to a stop in grit and rises."""
    ready = STAND.but(hand_f=(10.0, -20.0), weapon=-50.0)
    draw = STAND.but(hip=(-4.0, 32.0), lean=20.0, head=-16.0, foot_f=(14.0, 3.5), foot_b=(-16.0, 3.5),
                     toe_b=-20, hand_f=(-12.0, -16.0), weapon=176.0, cape=24.0, weapon_behind=True)
    coil = draw.but(hip=(-6.0, 30.0), lean=26.0, hand_f=(-15.0, -13.0), weapon=182.0, cape=28.0,
                    cape_wave=0.3, tags=("flare",), dust=((-18.0, 1.5, 1.2),))
    lunge = STAND.but(hip=(2.0, 28.0), lean=48.0, head=-36.0, foot_f=(28.0, 4.0), foot_b=(-30.0, 3.5),
                      toe_f=10, toe_b=-55, hand_f=(10.0, -2.0), weapon=4.0, cape=100.0, cape_curl=2.0,
                      cape_flutter=8.0, ghosts=((-12, 0, 0.5), (-24, 0, 0.28), (-36, 0, 0.12)),
                      tags=("flash", "speed"), dust=((-32.0, 1.5, 1.8), (-44.0, 2.0, 1.4)))
    skid = STAND.but(hip=(8.0, 30.0), lean=26.0, head=-18.0, foot_f=(30.0, 3.5), foot_b=(-14.0, 3.5),
                     toe_f=-15, hand_f=(12.0, -12.0), weapon=-18.0, cape=70.0, cape_curl=10.0,
                     cape_wave=0.4, dust=((38.0, 1.5, 2.2), (28.0, 2.0, 1.5)))
    recover = STAND.but(hip=(5.0, 35.0), lean=12.0, foot_f=(20.0, 3.5), foot_b=(-10.0, 3.5),
                        hand_f=(14.0, -20.0), weapon=-40.0, cape=30.0, cape_wave=0.7)
    settle = STAND.but(hip=(2.0, 37.5), foot_f=(12.0, 3.5), cape=12.0, cape_wave=0.9)
    return rig.timeline(8, [(0, ready, "linear"), (1, draw, "inout"), (2, coil, "in"),
                            (3, lunge, "linear"), (4, skid, "out"), (5, recover, "out"),
                            (7, settle, "inout")])


def jump_attack():
    """The leap: a deep crouch with the sword drawn up (the visor glints) and grit kicked up by the
    spring, then off both feet (jump frame 4, held while he rises, so it carries no dust), the sword turned point-down in both hands over the hero
    (fall frame 5, held while he hangs and drops, blazing), the crash (damage frame 6): one knee
    down, the blade driven into the floor, a ring of dust and flying stone; then he wrenches it
    free and stands."""
    ready = STAND.but(hand_f=(10.0, -20.0), weapon=-50.0)
    crouch = STAND.but(hip=(-2.0, 28.0), lean=22.0, head=-18.0, foot_f=(12.0, 3.5), foot_b=(-12.0, 3.5),
                       toe_b=-10, hand_f=(2.0, -4.0), weapon=110.0, cape=16.0, stretch=0.96,
                       weapon_behind=True)
    deep = crouch.but(hip=(-3.0, 25.0), lean=28.0, hand_f=(0.0, -2.0), weapon=118.0, cape=20.0,
                      cape_wave=0.3, tags=("glint",), dust=((-16.0, 1.5, 1.2), (18.0, 1.5, 1.0)))
    rise = STAND.but(hip=(0.0, 44.0), lean=-6.0, head=-14.0, foot_f=(8.0, 22.0), foot_b=(-12.0, 14.0),
                     toe_f=-30, toe_b=-45, hand_f=(4.0, 18.0), weapon=96.0, cape=-28.0, cape_curl=-6.0,
                     cape_flutter=6.0, stretch=1.04)
    plunge = STAND.but(hip=(0.0, 46.0), lean=6.0, head=10.0, foot_f=(9.0, 17.0), foot_b=(-8.0, 13.0),
                       toe_f=-40, toe_b=-50, hand_f=(22.0, 12.0), weapon=-84.0, cape=-40.0,
                       cape_curl=-8.0, cape_flutter=8.0, stretch=1.02, tags=("flare", "glint2"))
    crash = STAND.but(hip=(2.0, 21.0), lean=30.0, head=-6.0, foot_f=(16.0, 3.5), foot_b=(-18.0, 2.5),
                      toe_b=-80, hand_f=(24.0, -14.0), weapon=-84.0, cape=40.0, cape_curl=10.0,
                      cape_flutter=8.0, tags=("flash", "crash"))
    settle_dust = crash.but(cape=25.0, cape_wave=0.4, tags=("settling",))
    wrench = STAND.but(hip=(1.0, 30.0), lean=18.0, foot_f=(14.0, 3.5), foot_b=(-14.0, 3.5),
                       hand_f=(14.0, -8.0), weapon=-70.0, cape=18.0, cape_wave=0.7)
    settle = STAND.but(hip=(1.0, 37.5), foot_f=(10.0, 3.5), cape=10.0, cape_wave=0.9)
    return rig.timeline(11, [(0, ready, "linear"), (1, crouch, "inout"), (2, deep, "in"),
                             (3, rise, "linear"), (4, plunge, "linear"), (5, crash, "linear"),
                             (6, settle_dust, "out"), (7, settle_dust.but(tags=()), "linear"),
                             (8, wrench, "inout"), (10, settle, "inout")])


def dead():
    """Struck down: he reels, drives the sword into the floor and sinks to one knee on it, the
    light behind the visor gutters and goes out, his hands slip from the hilt and he falls on his
    face beside the sword, which stays standing."""
    reel = STAND.but(hip=(-4.0, 38.0), lean=-14.0, head=-24.0, foot_f=(10.0, 5.0), toe_f=18,
                     hand_f=(14.0, -4.0), hand_b=(-10.0, -10.0), weapon=30.0, cape=-6.0)
    stagger = STAND.but(hip=(-1.0, 35.0), lean=14.0, head=10.0, foot_f=(12.0, 3.5), foot_b=(-12.0, 3.5),
                        hand_f=(12.0, -20.0), weapon=-75.0)
    grip = PLANT_TIP[0]
    kneel = STAND.but(hip=(-3.0, 24.0), lean=20.0, head=12.0, foot_f=(14.0, 3.5), foot_b=(-18.0, 2.5),
                      toe_b=-75, cape=4.0, tags=("planted", "hold"))
    bow = kneel.but(hip=(-3.0, 23.0), lean=28.0, head=28.0, cape_wave=0.4, tags=("planted", "hold", "dim"))
    slump = kneel.but(hip=(-4.0, 21.0), lean=42.0, head=32.0, hand_f=(6.0, -18.0), hand_b=(0.0, -19.0),
                      cape=-4.0, cape_wave=0.6, tags=("planted", "eyes_off"))
    topple = STAND.but(hip=(-14.0, 14.0), lean=66.0, head=16.0, foot_f=(-18.0, 3.5), foot_b=(-32.0, 2.5),
                       toe_f=-60, toe_b=-80, hand_f=(10.0, -8.0), hand_b=(8.0, -6.0), cape=-30.0,
                       tags=("planted", "eyes_off"))
    lying = STAND.but(hip=(-30.0, 7.0), lean=92.0, head=-8.0, foot_f=(-62.0, 3.0), foot_b=(-60.0, 2.5),
                      toe_f=-90, toe_b=-90, hand_f=(20.0, -4.0), hand_b=(4.0, 14.0), cape=84.0,
                      cape_curl=-4.0, cape_flutter=2.0, tags=("planted", "eyes_off"))
    bounce = lying.but(hip=(-29.0, 9.5), lean=86.0, head=-20.0, cape=74.0, cape_flutter=8.0,
                       tags=("planted", "eyes_off"), dust=((-4.0, 1.5, 2.2), (-34.0, 1.5, 1.8),
                                                           (-54.0, 1.5, 1.4)))
    del grip
    return rig.timeline(12, [(0, reel, "linear"), (1, stagger, "out"), (2, kneel, "in"),
                             (3, bow, "out"), (5, slump, "inout"), (6, slump, "linear"),
                             (7, topple, "in"), (8, bounce, "out"), (9, lying, "out"),
                             (11, lying, "linear")])


POSES = {"IDLE": idle, "WALK": walk, "ATTACK": attack, "DASH ATTACK": dash_attack,
         "JUMP ATTACK": jump_attack, "DEAD": dead}

# ---------------------------------------------------------------- frames


def _speed_lines(img, seed):
    """Thin streaks trailing behind the silhouette (on the right of a left-facing sheet)."""
    h, w = img.shape[:2]
    solid = img[..., 3] > 0
    rng = np.random.RandomState(seed)
    for y in (8, 18, 30, 42, 54, 66, 76):
        row = h - y
        cols = np.nonzero(solid[row])[0]
        if not cols.size:
            continue
        start = cols.max() + 2 if FACING < 0 else cols.min() - 2
        length = int(14 + rng.randint(0, 18))
        gap = int(rng.randint(0, 5))
        for k in range(length):
            x = start - FACING * (gap + k)
            if not 1 <= x < w - 1 or solid[row, x]:
                continue
            t = k / length
            if t > 0.55 and px.bayer(h, w)[row, x] < (t - 0.55) * 2.2:
                continue
            img[row, x, :3] = SPEED[0 if t < 0.25 else (1 if t < 0.6 else 2)]
            img[row, x, 3] = 255


def _crash(img, cv, x, size, stones=True):
    """Dust thrown out on both sides of an impact at x, in front of everything, with chips of stone
    flying out of it."""
    mat = MATERIALS["dust"]
    cloud = np.zeros((cv.h, cv.w), bool)
    for dx, dy, r in ((0.0, 2.5, 1.0), (-9.0, 2.0, 0.8), (9.0, 2.0, 0.8), (-17.0, 1.5, 0.6),
                      (17.0, 1.5, 0.6), (-5.0, 8.0, 0.6), (5.0, 8.0, 0.55)):
        cloud |= cv.ellipse((x + dx * size, dy * size), 5.0 * r * size, 3.6 * r * size)
    cloud &= (px.bayer(cv.h, cv.w) < 0.85) & (img[..., 3] == 0)
    tone = rig.tone_map(cloud, 1, 1)
    for k, col in enumerate((mat.shadow, mat.base, mat.light)):
        sel = cloud & (tone == k)
        img[sel, :3] = col
        img[sel, 3] = 255
    if not stones:
        return
    for dx, dy in ((-26.0, 16.0), (24.0, 18.0), (30.0, 10.0), (-32.0, 9.0), (4.0, 24.0),
                   (-10.0, 22.0), (14.0, 26.0)):
        c, r = cv.pixel((x + dx * size, dy * size))
        if 1 < c < cv.w - 2 and 1 < r < cv.h - 2:
            img[r:r + 2, c:c + 2, :3] = mat.light
            img[r:r + 2, c:c + 2, 3] = 255


def render(pose, seed=0):
    img = rig.render(KING, pose, FW, FH, builder=build_king, facing=FACING)
    cv = rig.Canvas(FW, FH, FACING)
    sk = Skeleton(KING, pose)
    if "speed" in pose.tags:
        _speed_lines(img, seed)
    if "impact" in pose.tags:
        _crash(img, cv, sk.blade_point(1.0)[0], 0.8)
    if "crash" in pose.tags:
        _crash(img, cv, sk.blade_point(1.0)[0], 1.6)
    if "settling" in pose.tags:
        _crash(img, cv, sk.blade_point(1.0)[0], 1.0, stones=False)
    if "flare" in pose.tags:                    # the visor blazes just before a strike
        _star(img, cv.pixel(sk.eye()), TELL, 4)
    if "flash" in pose.tags:                    # the strike itself: the visor and the edge flash
        _star(img, cv.pixel(sk.eye()), TELL, 5)
        _star(img, cv.pixel(sk.blade_point(0.7)), TELL, 6)
    for tag, t, size in (("glint", 0.6, 3), ("glint2", 0.92, 4)):
        if tag in pose.tags:                    # a glint running up the raised blade
            _star(img, cv.pixel(sk.blade_point(t)), TELL, size)
    if "dim" in pose.tags:                      # the light behind the visor gutters
        c = cv.pixel(sk.eye())
        img[c[1], c[0], :3] = MATERIALS["eye"].shadow
    return img


def build():
    """Every clip's frames (uint8 RGBA), in row order."""
    return [(label, [render(p, 37 * row + i) for i, p in enumerate(POSES[label]())])
            for row, (label, _) in enumerate(CLIPS)]


def sheet(clips):
    return px.sheet(clips, FW, FH)


def anim_data(clips):
    counts = {label: len(frames) for label, frames in clips}
    rates = dict(CLIPS)
    lines = [f"size : ({FW},{FH})", "first Frame Position : (0,0)", "",
             clip_line("IDLE", counts["IDLE"], rates["IDLE"]),
             clip_line("WALK", counts["WALK"], rates["WALK"]),
             clip_line("ATTACK", counts["ATTACK"], ATTACK_RATE, ("Damage", ATTACK_HIT)),
             clip_line("DASH ATTACK", counts["DASH ATTACK"], DASH_RATE, ("Dash", DASH_FRAME)),
             clip_line("JUMP ATTACK", counts["JUMP ATTACK"], JUMP_RATE, ("Jump", JUMP_FRAME))
             + f" / Fall Frame {FALL_FRAME} / Damage Frame : {JUMP_HIT}",
             clip_line("DEAD", counts["DEAD"], rates["DEAD"])]
    return "\n".join(lines) + "\n"


# ---------------------------------------------------------------- checks


def read_anim_data(text):
    """Read the file the way the game does, field by field (C fscanf); every field must match.
    Returns the frame size and {label: (frames, rate, {word: frame})}."""
    reader = FieldReader(text, "King AnimData")
    need = reader.need
    size = need("size : (%d,%d)\n")
    first = need("first Frame Position : (%d,%d)\n\n")
    rows = {}
    for label, word in (("IDLE", None), ("WALK", None), ("ATTACK", "Damage"), ("DASH ATTACK", "Dash")):
        _, n, rate, k = read_clip(reader, label, word)
        rows[label] = (n, rate, {word: k} if word else {})
    n, rate = need("JUMP ATTACK | NbFrame : %d / FrameRate : %d")
    j, f, d = need(" / Jump Frame : %d / Fall Frame %d / Damage Frame : %d\n")
    rows["JUMP ATTACK"] = (n, rate, {"Jump": j, "Fall": f, "Damage": d})
    _, n, rate, _ = read_clip(reader, "DEAD")
    rows["DEAD"] = (n, rate, {})
    reader.finish()
    return tuple(size), tuple(first), rows


def tell_pixels(img):
    """Pixels in the white-hot colours of the tell (nothing else on the sheet is this bright)."""
    rgb = img[..., :3].astype(int)
    return (img[..., 3] == 255) & (rgb.min(axis=-1) >= 225)


# the frames (from 1) that carry the tell: the strike of each move and the frame before it
TELL_FRAMES = {"ATTACK": (ATTACK_HIT - 1, ATTACK_HIT), "DASH ATTACK": (DASH_FRAME - 1, DASH_FRAME),
               "JUMP ATTACK": (FALL_FRAME, JUMP_HIT)}


def check(text, img, clips):
    """The faults the game would not report: a field that stops scanning, a row that wraps into the
    next clip, a strike frame out of order or without its tell, a clip that never finishes, art cut
    off by the frame edge, a body that does not fill its hurtbox."""
    raw = text.encode("ascii")
    if raw.startswith(b"\xef\xbb\xbf") or b"\r" in raw:
        raise ValueError("King AnimData must be plain ASCII with LF line ends")
    (fw, fh), first, rows = read_anim_data(text)
    if (fw, fh) != (FW, FH) or first != (0, 0):
        raise ValueError(f"King AnimData size {fw}x{fh} / first {first}")
    if img.shape[:2] != (fh * len(CLIPS), fw * max(n for n, _, _ in rows.values())):
        raise ValueError(f"King sheet is {img.shape[1]}x{img.shape[0]}")
    jump = rows["JUMP ATTACK"][2]
    if not 1 < jump["Jump"] < jump["Fall"] < jump["Damage"] < rows["JUMP ATTACK"][0]:
        raise ValueError(f"King JUMP ATTACK frames out of order: {jump}")
    if rows["WALK"][0] < 14:
        raise ValueError("King WALK needs 14 frames or more: its second footfall is on 14")
    frames_of = dict(clips)
    for label, (n, rate, marks) in rows.items():
        if not (n >= 1 and n == len(frames_of[label]) and 1 <= rate <= 60):
            raise ValueError(f"King {label}: {n} frames at {rate} fps")
        for word, k in marks.items():
            if not 2 <= k < n:
                raise ValueError(f"King {label}: {word} frame {k} of {n}")
    for label, frames in clips:
        tells = TELL_FRAMES.get(label, ())
        for i, f in enumerate(frames):
            if f[0].any() or f[:, 0].any() or f[:, -1].any():
                raise ValueError(f"King {label} {i}: cut off by the frame edge")
            lit = tell_pixels(f).sum()
            if i + 1 in tells and lit < (12 if i + 1 == tells[-1] else 5):
                raise ValueError(f"King {label} {i}: a strike frame without its tell")
            if label in ("IDLE", "WALK", "DEAD") and lit:
                raise ValueError(f"King {label} {i}: tell colours outside an attack")
    for f in frames_of["IDLE"]:
        solid = f[..., 3] == 255
        body = solid[-int(HURTBOX[1]):, FW // 2 - int(HURTBOX[0] / 2):FW // 2 + int(HURTBOX[0] / 2)]
        if body.mean() < 0.6:
            raise ValueError("King IDLE: the body does not fill the hurtbox")


# ---------------------------------------------------------------- review sheet


def attack_box(label, frame):
    """The game's attack box of a damage frame, in frame pixels (x0, y0, x1, y1), for a sprite
    facing left; None on other frames."""
    n = {"ATTACK": ATTACK_HIT, "DASH ATTACK": DASH_FRAME, "JUMP ATTACK": JUMP_HIT}.get(label)
    if n != frame:
        return None
    if label == "ATTACK":
        return (0.1 * FW, 0, 0.6 * FW, FH)
    if label == "DASH ATTACK":
        return (0.4 * FW, 0.6 * FH, 0.6 * FW, FH)
    return (0.2 * FW, 0, 0.8 * FW, FH)


def pose_sheet(clips, out):
    """docs/king_poses.png: every frame at x3, one labelled row per clip; the hurtbox in grey, the
    attack box of each damage frame in red, the planted-foot frames of the walk marked in gold."""
    scale, label_w, pad = 3, 250, 6
    cols = max(len(frames) for _, frames in clips)
    cw, ch = FW * scale, FH * scale
    W = label_w + cols * (cw + pad) + pad
    H = len(clips) * (ch + pad) + pad
    img = Image.new("RGBA", (W, H), (18, 20, 26, 255))
    draw = ImageDraw.Draw(img)
    font = ImageFont.truetype(str(out / "Assets/Fonts/ButtonFont2.ttf"), 16)
    grounds = [(22, 24, 34, 255), (32, 36, 50, 255)]
    notes = {"ATTACK": f"hits on {ATTACK_HIT}", "DASH ATTACK": f"dashes on {DASH_FRAME}",
             "JUMP ATTACK": f"up {JUMP_FRAME}, down {FALL_FRAME}, hits {JUMP_HIT}",
             "WALK": "steps on 5 and 14"}
    for row, ((label, rate), (_, frames)) in enumerate(zip(CLIPS, clips)):
        y = pad + row * (ch + pad)
        draw.text((pad, y + 8), label, font=font, fill=(225, 220, 205, 255))
        draw.text((pad, y + 30), f"{len(frames)} x {rate} fps", font=font, fill=(150, 150, 160, 255))
        if label in notes:
            draw.text((pad, y + 52), notes[label], font=font, fill=(150, 150, 160, 255))
        for col, f in enumerate(frames):
            x = label_w + col * (cw + pad)
            draw.rectangle([x, y, x + cw - 1, y + ch - 1], grounds[(row + col) % 2])
            hw, hh = int(round(HURTBOX[0] * scale)), int(round(HURTBOX[1] * scale))
            hx0 = x + cw // 2 - hw // 2
            draw.rectangle([hx0, y + ch - hh, hx0 + hw - 1, y + ch - 1], outline=(80, 90, 120, 255))
            if label == "WALK" and col + 1 in WALK_PLANTS:
                draw.rectangle([x, y + ch - 4, x + cw - 1, y + ch - 1], fill=(200, 160, 60, 255))
            box = attack_box(label, col + 1)
            if box:
                draw.rectangle([x + box[0] * scale, y + box[1] * scale, x + box[2] * scale - 1,
                                y + box[3] * scale - 1], outline=(200, 60, 50, 255), width=2)
            img.alpha_composite(Image.fromarray(px.upscale(f, scale), "RGBA"), (x, y))
    return px.save_png(np.array(img), out / "docs/king_poses.png")


def generate(out):
    clips = build()
    img, text = sheet(clips), anim_data(clips)
    check(text, img, clips)
    png = px.save_png(img, out / SHEET)
    txt = out / DATA
    txt.parent.mkdir(parents=True, exist_ok=True)
    txt.write_bytes(text.encode("ascii"))
    return [png, txt, pose_sheet(clips, out)]

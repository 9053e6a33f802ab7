"""The Trash, the common foot soldier: Sprites/Enemies/Trash/TrashForest.png and TrashCity.png,
their AnimData files, and docs/trash_poses.png (every frame x3, labelled).

Two looks with the same behaviour and the same timing:
- forest: a bramble ghoul, a hunched knot of bark and thorny vines with moss on its back, long
  thorn claws and glowing amber eyes;
- city: a rag-wrapped scavenger, hooded and stooped, a rusty hook in its fist, a cold blue glint
  under the hood.

Both are posed with the character rig (`rig.py`) through their own part builders and drawn
facing left (`facing=-1`), with the light kept on the top left. Frames are 72 x 64; the standing
body is about 25 x 45 on the bottom row, centred, to match the fixed 25 x 45 hurtbox. The attack
box reaches 0.55 x 72 = 40 tx in front of the centre line, and on the damage frame the game moves
the Trash at 1500 px/s for 1/12 s (about 42 tx), so that frame shows the lunge at full stretch
with an afterimage, a smear and the eye and claw flash. The frame before it is the last of the
wind-up, where the eyes flare first.

Rows: IDLE (loops), WALK (loops), ATTACK (once), DEAD (once, holds its last frame, lying).
"""
import math

import numpy as np
from PIL import Image, ImageDraw, ImageFont

from . import pixel as px
from . import rig
from .animdata import FieldReader, clip_line, read_clip
from .rig import Part, Pose, Smear, add, lerp, swing, two_bone, vec

FW, FH = 72, 64
FACING = -1  # the sheets look to the left

# label, frame rate, damage frame (1-based) or None; the frame counts come from the poses
CLIPS = [("IDLE", 8, None), ("WALK", 10, None), ("ATTACK", 12, 4), ("DEAD", 10, None)]

# ---------------------------------------------------------------- materials

FOREST = {
    "bark": rig.Material.of("#0a0605", "#2e1e13", "#4a3220", "#6b4a2c", "#93703f"),
    "vine": rig.Material.of("#050c07", "#142e1c", "#1f4a28", "#33683a", "#4f8a48"),
    "moss": rig.Material.of("#08120b", "#27502f", "#3f763b", "#6a9f4c", "#9cc866"),
    "thorn": rig.Material.of("#15100a", "#6b5a3a", "#a08a5c", "#cdb98a", "#efe2b8"),
    "eye": rig.Material.of("#2a1204", "#d8861e", "#ffc34a", "#fff0a0", "#fffbe4"),
    "smear": rig.Material.of("#5a3a0c", "#b8742a", "#f0b44a", "#ffe08a", "#fffbe4"),
    "dust": rig.Material.of("#000000", "#2a2420", "#40362c", "#5a4c3c", "#5a4c3c"),
    "ghost": px.rgb("#3a2812"),
}
CITY = {
    "rags": rig.Material.of("#0b090e", "#2e2630", "#4a3e48", "#6e5e66", "#95838a"),
    "cloth": rig.Material.of("#0b090e", "#262232", "#3a3450", "#534b70", "#766c98"),
    "wrap": rig.Material.of("#0e0c0c", "#3e3836", "#5a524c", "#7a7064", "#9c907e"),
    "skin": rig.Material.of("#0e0d14", "#3e3e52", "#5c5c74", "#82829c", "#a8a8c0"),
    "rust": rig.Material.of("#140a06", "#5a2c14", "#8e4a22", "#c4733a", "#e8a060"),
    "wood": rig.Material.of("#100b08", "#33241a", "#4e3626", "#6d4d34", "#8f6a48"),
    "eye": rig.Material.of("#04101e", "#3f7fc0", "#8fd4ff", "#d8f3ff", "#ffffff"),
    "smear": rig.Material.of("#1c3a6a", "#3f7fc0", "#8fd4ff", "#d8f3ff", "#ffffff"),
    "dust": rig.Material.of("#000000", "#24263a", "#363a52", "#4d5468", "#4d5468"),
    "ghost": px.rgb("#222c50"),
}
# the flash of the tell: core, inner arms, outer arms, tips (brightest first)
TELL = {"forest": [px.rgb(h) for h in ("#ffffff", "#fff0a0", "#ffc34a", "#d8861e")],
        "city": [px.rgb(h) for h in ("#ffffff", "#d8f3ff", "#8fd4ff", "#3f7fc0")]}

GHOUL = rig.Body(thigh=11.0, shin=11.0, upper_arm=10.0, forearm=10.0, torso=15.0, shoulder=13.0,
                 neck=1.5, head_r=(4.6, 3.8), cape_len=16.0, scarf_len=9.0,
                 limb_r={"thigh": (2.6, 1.8), "shin": (1.8, 1.3), "upper_arm": (2.0, 1.5),
                         "forearm": (1.6, 1.2)},
                 materials=FOREST)
SCAVENGER = rig.Body(thigh=11.0, shin=11.0, upper_arm=9.0, forearm=9.0, torso=15.0, shoulder=13.0,
                     neck=1.0, head_r=(4.6, 4.4), cape_len=17.0, cape_w=(4.0, 7.0), scarf_len=10.0,
                     limb_r={"thigh": (2.4, 1.9), "shin": (1.8, 1.4), "upper_arm": (1.8, 1.5),
                             "forearm": (1.5, 1.2)},
                     materials=CITY)

# ---------------------------------------------------------------- skeleton


class Skeleton:
    """Joint positions of one pose, shared by the part builders and the tell overlay."""

    def __init__(self, body, pose):
        self.up = up = 90.0 - pose.lean
        self.hip = hip = pose.hip
        self.fwd = vec(up - 90)
        self.stretch = pose.stretch
        self.body = body
        self.neck = self.tl(body.torso, 1.5)
        self.sh_f = self.tl(body.shoulder, 1.5)
        self.sh_b = self.tl(body.shoulder, -0.5)
        self.head_up = up - pose.head
        self.head_c = add(self.neck, vec(self.head_up, body.neck + body.head_r[1] - 1.0))
        self.elbow_f, self.hand_f = two_bone(self.sh_f, add(self.sh_f, pose.hand_f),
                                             body.upper_arm, body.forearm, -1)
        hb = pose.hand_b if pose.hand_b is not None else (-2.0, -14.0)
        self.elbow_b, self.hand_b = two_bone(self.sh_b, add(self.sh_b, hb), body.upper_arm,
                                             body.forearm, -1)
        self.weapon = pose.weapon

    def tl(self, u, v):
        """Torso-local (along, forward) -> rig space."""
        return add(add(self.hip, vec(self.up, u * self.stretch)), self.fwd, v)

    def hl(self, u, v):
        """Head-local (up, forward) -> rig space."""
        return add(add(self.head_c, vec(self.head_up, u)), vec(self.head_up - 90), v)

    def eye(self):
        return self.hl(0.4, 2.6)

    def claw_tip(self):
        return add(self.hand_f, vec(self.weapon), 5.0)

    def hook_tip(self):
        d, n = vec(self.weapon), vec(self.weapon - 90)
        return add(add(self.hand_f, d, 9.7), n, 3.2)


def _leg(cv, sk, name, hip_off, foot, toe, material, dim, foot_material=None):
    body = sk.body
    hj = add(sk.hip, sk.fwd, hip_off)
    knee, ankle = two_bone(hj, foot, body.thigh, body.shin, +1)
    mask = cv.capsule(hj, knee, *body.limb_r["thigh"]) | cv.capsule(knee, ankle, *body.limb_r["shin"])
    leg = Part(name, mask, material, name, dim=dim)
    foot_mask = cv.capsule(add(ankle, vec(toe), -1.2), add(ankle, vec(toe), 3.6), 1.5, 0.8)
    foot_mask |= cv.capsule(ankle, add(ankle, vec(toe + 180 + 30), 2.0), 1.0, 0.6)
    return leg, Part(name + "_foot", foot_mask, foot_material or material, name, dim=dim), knee, ankle


def _tendril(cv, start, swing_deg, curl, wave, length, w0, w1, segs=4):
    pts = [start]
    for k in range(segs):
        d = swing(swing_deg + curl * k + 14 * math.sin(2 * math.pi * (wave + k / segs)) * k / 2)
        pts.append(add(pts[-1], d, length / segs))
    widths = [lerp(w0, w1, k / segs) for k in range(segs + 1)]
    return cv.ribbon(pts, widths), pts


def _thorn(cv, base, direction, length, width):
    d = vec(direction)
    n = vec(direction + 90)
    return cv.polygon([add(base, n, width), add(base, n, -width), add(base, d, length)])


# ---------------------------------------------------------------- forest: the bramble ghoul


def build_ghoul(body, pose, cv):
    m = body.materials
    sk = Skeleton(body, pose)
    tl, hl = sk.tl, sk.hl
    parts = []

    # vine tendrils trailing from the back, with thorns along them
    for k, (u, v, off, ln) in enumerate(((13.0, -4.0, 0.0, 1.0), (9.5, -5.5, 12.0, 0.75),
                                         (5.0, -4.5, 24.0, 0.55))):
        mask, pts = _tendril(cv, tl(u, v), pose.cape + off, pose.cape_curl, pose.cape_wave + k / 3,
                             body.cape_len * ln, 1.1, 0.5)
        for j in (2, 3):
            d = (pts[j][0] - pts[j - 1][0], pts[j][1] - pts[j - 1][1])
            ang = math.degrees(math.atan2(d[1], d[0]))
            mask |= _thorn(cv, pts[j], ang + 70 * (1 if (j + k) % 2 else -1), 2.2, 0.6)
        parts.append(Part(f"vine{k}", mask, m["vine"], "vines"))

    # far arm and claw, far leg
    parts += _arm_ghoul(cv, sk, sk.sh_b, sk.elbow_b, sk.hand_b, pose.weapon - 25, m, "arm_b", True)
    leg, foot, _, _ = _leg(cv, sk, "leg_b", -1.0, pose.foot_b, pose.toe_b, m["bark"], True)
    parts += [leg, foot]

    # the trunk: narrow hips, a humped back, a broad chest
    trunk = cv.polygon([tl(-0.5, -3.2), tl(-0.5, 3.2), tl(5.0, 4.6), tl(10.5, 5.4), tl(13.8, 4.6),
                        tl(15.6, 1.0), tl(15.0, -3.6), tl(12.0, -6.4), tl(7.0, -6.0), tl(3.0, -4.2)])
    tp = Part("trunk", trunk, m["bark"], "torso")
    for a, b in ((tl(2.0, 1.5), tl(9.0, 3.0)), (tl(4.0, -2.5), tl(12.0, -3.5)),
                 (tl(8.0, 0.5), tl(13.5, 1.0))):
        tp.details.append((cv.capsule(a, b, 0.45) & trunk, 0))
    tp.details.append((cv.ellipse(tl(6.0, 2.5), 1.1, 0.8) & trunk, "ink"))   # a knot hole
    parts.append(tp)
    # thorns along the back
    back = np.zeros((cv.h, cv.w), bool)
    for u, v, ln in ((3.5, -4.2, 3.5), (6.5, -5.6, 4.5), (9.5, -6.3, 5.5), (12.5, -5.8, 5.0),
                     (15.0, -2.5, 3.5)):
        back |= _thorn(cv, tl(u, v + 0.8), sk.up + 145, ln, 1.1)
    parts.append(Part("thorns", back & ~trunk, m["thorn"], "torso"))
    # moss over the shoulders and hump
    moss = (cv.ellipse(tl(12.5, -2.5), 4.2, 2.6, sk.up) | cv.ellipse(tl(9.0, -4.8), 2.8, 1.8, sk.up))
    moss &= trunk & ~px.shift(trunk, 2, 2)
    parts.append(Part("moss", moss, m["moss"], "torso"))
    # a moss tuft hanging from the chest
    parts.append(Part("beard", cv.capsule(tl(13.0, 4.5), add(tl(11.0, 5.8), (0.0, -2.5)), 1.0, 0.5),
                      m["moss"], "torso"))

    leg, foot, _, _ = _leg(cv, sk, "leg_f", 1.0, pose.foot_f, pose.toe_f, m["bark"], False)
    parts += [leg, foot]

    # the head: a long knot of wood with a hollow jaw, antler branches and one amber eye
    skull = cv.ellipse(hl(0.3, 0.6), body.head_r[0], body.head_r[1], sk.head_up - 90)
    skull |= cv.polygon([hl(1.5, 1.0), hl(0.0, 6.8), hl(-2.2, 5.6), hl(-3.0, 1.0)])
    jaw = cv.polygon([hl(-1.6, -1.0), hl(-2.4, 5.2), hl(-4.2, 4.2), hl(-4.6, 0.0)])
    hp = Part("skull", skull | jaw, m["bark"], "head")
    mouth = cv.capsule(hl(-2.3, 1.0), hl(-2.5, 5.0), 0.45) & (skull | jaw)
    hp.details.append((mouth, "ink"))
    teeth = (cv.capsule(hl(-2.0, 2.2), hl(-2.8, 2.2), 0.4) | cv.capsule(hl(-2.0, 4.0), hl(-2.9, 4.0), 0.4))
    hp.details.append((teeth & (skull | jaw) & ~mouth | (teeth & mouth), 2))
    eye_c = sk.eye()
    socket = cv.ellipse(eye_c, 1.8, 1.3, sk.head_up - 90)
    hp.details.append((socket, "ink"))
    cap = cv.ellipse(hl(3.0, -1.2), 3.4, 1.6, sk.head_up - 90) & skull & ~px.shift(skull, 2, 1)
    parts.append(hp)
    parts.append(Part("cap", cap, m["moss"], "head"))
    antlers = (cv.capsule(hl(2.8, -1.0), hl(4.6, -5.0), 1.2, 0.8)
               | cv.capsule(hl(4.6, -5.0), hl(4.2, -9.0), 0.8, 0.4)
               | cv.capsule(hl(4.0, -3.4), hl(6.8, -4.6), 0.7, 0.4)
               | cv.capsule(hl(3.2, 1.0), hl(5.2, 0.0), 0.8, 0.4))
    parts.append(Part("antlers", antlers & ~skull, m["bark"], "antlers"))
    if "eyes_off" not in pose.tags:
        eye = cv.ellipse(eye_c, 1.4, 0.9, sk.head_up - 90)
        ep = Part("eye", eye, m["eye"], "head")
        ep.tone = np.where(eye, 2 if "tell" in pose.tags else 1, -1)
        parts.append(ep)

    for sm in pose.smear:
        parts.append(rig._smear_part(cv, sm, m))
    parts += _arm_ghoul(cv, sk, sk.sh_f, sk.elbow_f, sk.hand_f, pose.weapon, m, "arm_f", False)
    return parts, sk.hand_f


def _arm_ghoul(cv, sk, sh, elbow, hand, claw_angle, m, name, dim):
    b = sk.body
    arm = cv.capsule(sh, elbow, *b.limb_r["upper_arm"]) | cv.capsule(elbow, hand, *b.limb_r["forearm"])
    arm |= cv.ellipse(sh, 2.6, 2.3)
    ap = Part(name, arm, m["bark"], name, dim=dim)
    # a vine wound around the forearm
    vine = cv.capsule(lerp_pt(elbow, hand, 0.25), lerp_pt(elbow, hand, 0.7), 0.5)
    ap.details.append((px.dilate(vine) & arm & ~vine, 0))
    claws = np.zeros((cv.h, cv.w), bool)
    d = (hand[0] - elbow[0], hand[1] - elbow[1])
    fa = math.degrees(math.atan2(d[1], d[0]))
    side = 1 if math.sin(math.radians(fa)) < 0.5 else -1
    for t, ln in ((0.35, 2.6), (0.75, 2.2)):
        claws |= _thorn(cv, lerp_pt(elbow, hand, t), fa + side * 110, ln, 0.7)
    claws |= _thorn(cv, elbow, fa - 160, 2.6, 0.8)
    for spread, ln in ((-24, 5.0), (0, 6.0), (24, 4.6)):
        a = claw_angle + spread
        claws |= _thorn(cv, add(hand, vec(a), 0.3), a, ln, 0.8)
    claws &= ~arm
    return [ap, Part(name + "_claws", claws, m["thorn"], name, dim=dim)]


def lerp_pt(p, q, t):
    return (lerp(p[0], q[0], t), lerp(p[1], q[1], t))


# ---------------------------------------------------------------- city: the rag-wrapped scavenger


def build_scavenger(body, pose, cv):
    m = body.materials
    sk = Skeleton(body, pose)
    tl, hl = sk.tl, sk.hl
    parts = []

    # the cloak over the back, hanging in tatters
    seg = 4
    pts = [tl(body.torso - 1.0, -2.5)]
    dirs = []
    for k in range(seg):
        d = swing(pose.cape + pose.cape_curl * k
                  + pose.cape_flutter * math.sin(2 * math.pi * (pose.cape_wave + k / seg)) * k / 2)
        dirs.append(d)
        pts.append(add(pts[-1], d, body.cape_len / seg))
    widths = [lerp(body.cape_w[0], body.cape_w[1], k / seg) for k in range(seg + 1)]
    cloak = cv.ribbon(pts, widths)
    hem, dl = pts[-1], dirs[-1]
    nl = (-dl[1], dl[0])
    for j, off in enumerate((-0.8, -0.35, 0.1, 0.55, 0.9)):
        ph = math.sin(2 * math.pi * (pose.cape_wave + j / 5.0))
        tip = add(add(hem, nl, off * body.cape_w[1]), dl, 1.5 + 1.2 * ph + (j % 2) * 1.5)
        cloak |= cv.capsule(add(hem, nl, off * body.cape_w[1]), tip, 1.1, 0.5)
        if j < 4:
            notch = add(add(hem, nl, (off + 0.22) * body.cape_w[1]), dl, -0.8 - 0.8 * ph)
            cloak &= ~cv.ellipse(notch, 0.9, 1.8, math.degrees(math.atan2(dl[1], dl[0])))
    cp = Part("cloak", cloak, m["rags"], "cloak")
    for off in (-0.4, 0.3):
        cp.details.append((cv.capsule(add(pts[1], nl, off * widths[1]),
                                      add(pts[-1], nl, off * widths[-1] * 1.1), 0.5) & cloak, 0))
    cp.details.append((cv.ellipse(add(pts[2], nl, -0.2 * widths[2]), 0.9, 0.7) & cloak, "ink"))  # a hole
    parts.append(cp)

    # far arm, far leg
    parts += _arm_scav(cv, sk, sk.sh_b, sk.elbow_b, sk.hand_b, m, "arm_b", True, None)
    leg, foot, knee, ankle = _leg(cv, sk, "leg_b", -1.0, pose.foot_b, pose.toe_b, m["wrap"], True,
                                  m["skin"])
    _bandage(cv, leg, knee, ankle)
    parts += [leg, foot]

    # the hunched body in a rag tunic with a rope belt
    trunk = cv.polygon([tl(-1.0, -3.6), tl(-1.5, 3.8), tl(4.0, 5.0), tl(10.0, 5.6), tl(14.0, 4.0),
                        tl(15.5, 0.0), tl(14.5, -4.5), tl(10.0, -6.4), tl(4.0, -5.2)])
    tp = Part("tunic", trunk, m["cloth"], "torso")
    tp.details.append((cv.capsule(tl(1.0, -4.0), tl(1.6, 4.6), 0.6) & trunk, "ink"))
    tp.details.append((cv.capsule(tl(1.6, 4.4), add(tl(1.6, 4.4), (0.0, -3.5)), 0.45), 2))
    tp.details.append((cv.capsule(tl(5.0, -2.0), tl(11.0, -4.0), 0.45) & trunk, 0))
    patch = cv.polygon([tl(6.0, 1.0), tl(6.0, 3.8), tl(9.0, 4.2), tl(9.2, 1.2)]) & trunk
    tp.details.append((patch, 2))
    tp.details.append((px.outline_of(patch) & trunk & px.bayer(cv.h, cv.w).__lt__(0.5), 0))
    parts.append(tp)
    # a shawl of rags over the shoulders
    shawl = cv.polygon([tl(15.0, -5.0), tl(15.8, 3.5), tl(11.0, 6.4), tl(8.5, 4.0), tl(9.0, -6.8)])
    shawl |= cv.capsule(tl(9.5, 4.5), add(tl(9.5, 4.5), (0.5, -4.0)), 0.9, 0.5)
    parts.append(Part("shawl", shawl, m["rags"], "shawl"))

    leg, foot, knee, ankle = _leg(cv, sk, "leg_f", 1.0, pose.foot_f, pose.toe_f, m["wrap"], False,
                                  m["skin"])
    _bandage(cv, leg, knee, ankle)
    parts += [leg, foot]

    # a trailing strip of the hood
    s_pts = [hl(1.5, -3.0)]
    for k in range(3):
        sw = pose.scarf + pose.scarf_curl * k + 14 * math.sin(2 * math.pi * (pose.scarf_wave + k / 3))
        s_pts.append(add(s_pts[-1], swing(sw), body.scarf_len / 3))
    parts.append(Part("strip", cv.ribbon(s_pts, [1.3, 1.1, 0.9, 0.6]), m["rags"], "strip"))

    # the hood: a pointed cowl, a dark opening, a cold glint for an eye
    hood = cv.ellipse(hl(0.2, 0.0), body.head_r[0], body.head_r[1], sk.head_up - 90)
    hood |= cv.polygon([hl(3.6, -1.5), hl(5.5, -6.5), hl(0.5, -4.4)])
    hood |= cv.polygon([hl(2.5, 1.0), hl(1.0, 5.8), hl(-3.5, 5.0), hl(-4.2, 0.0)])
    hp = Part("hood", hood, m["rags"], "head")
    face = cv.ellipse(hl(-0.6, 2.9), 2.6, 2.7, sk.head_up - 90) & hood
    hp.details.append((face, "ink"))
    hp.details.append((px.outline_of(face) & hood & px.shift(face, 1, 0), 2))    # the lit brim
    parts.append(hp)
    if "eyes_off" not in pose.tags:
        ec = sk.eye()
        eye = cv.ellipse(ec, 1.1, 0.6, sk.head_up - 90)
        ep = Part("eye", eye, m["eye"], "head")
        ep.tone = np.where(eye, 3 if "tell" in pose.tags else 2, -1)
        parts.append(ep)

    for sm in pose.smear:
        parts.append(rig._smear_part(cv, sm, m))
    parts += _arm_scav(cv, sk, sk.sh_f, sk.elbow_f, sk.hand_f, m, "arm_f", False, pose.weapon)
    return parts, sk.hand_f


def _bandage(cv, leg, knee, ankle):
    """Dark wraps across the shin."""
    for t in (0.2, 0.5, 0.8):
        c = lerp_pt(knee, ankle, t)
        d = (ankle[0] - knee[0], ankle[1] - knee[1])
        ang = math.degrees(math.atan2(d[1], d[0])) + 70
        leg.details.append((cv.capsule(add(c, vec(ang), -2.5), add(c, vec(ang), 2.5), 0.4) & leg.mask, 0))


def _arm_scav(cv, sk, sh, elbow, hand, m, name, dim, weapon):
    b = sk.body
    sleeve = cv.capsule(sh, elbow, *b.limb_r["upper_arm"]) | cv.capsule(elbow, lerp_pt(elbow, hand, 0.55),
                                                                      b.limb_r["forearm"][0] + 0.3)
    sleeve |= cv.ellipse(sh, 2.4, 2.2)
    out = [Part(name, sleeve, m["rags"], name, dim=dim)]
    wrist = cv.capsule(lerp_pt(elbow, hand, 0.5), hand, b.limb_r["forearm"][1]) & ~sleeve
    out.append(Part(name + "_wrist", wrist, m["wrap"], name, dim=dim))
    if weapon is not None:
        d, n = vec(weapon), vec(weapon - 90)
        handle = cv.capsule(add(hand, d, -2.5), add(hand, d, 4.0), 0.8)
        out.append(Part("handle", handle, m["wood"], "hook"))
        # the hook: a bar that bends round into a point, curving to the underside
        c = add(add(hand, d, 5.0), n, 2.5)
        c = add(add(hand, d, 6.5), n, 3.2)
        pts = [add(c, vec(weapon + 90 + a), 3.2) for a in (0, -40, -80, -120, -160, -200, -230)]
        hook = cv.capsule(add(hand, d, 3.5), pts[0], 0.9, 0.8)
        for k in range(len(pts) - 1):
            r0 = 0.85 - 0.09 * k
            hook |= cv.capsule(pts[k], pts[k + 1], r0, max(r0 - 0.12, 0.35))
        out.append(Part("hook", hook & ~handle, m["rust"], "hook"))
    out.append(Part(name + "_hand", cv.ellipse(hand, 1.6, 1.5), m["skin"], name, dim=dim))
    return out


# ---------------------------------------------------------------- poses


STAND = Pose(hip=(-2.5, 20.0), lean=34.0, head=-24.0, foot_f=(1.5, 2.0), foot_b=(-7.0, 2.0),
             hand_f=(7.0, -11.0), hand_b=(3.0, -12.0), weapon=-70.0, cape=22.0, cape_curl=8.0,
             scarf=70.0, scarf_curl=10.0)


def idle():
    frames = []
    n = 6
    for i in range(n):
        b = 0.5 - 0.5 * math.cos(2 * math.pi * i / n)       # breath: 0 out, 1 in
        sway = math.sin(2 * math.pi * i / n)
        frames.append(STAND.but(hip=(-2.5 + 0.4 * sway, 20.0 - 0.8 * b), lean=34.0 + 3.0 * b,
                                stretch=1.0 + 0.03 * b, head=-24.0 - 6.0 * b,
                                hand_f=(7.0 + 0.8 * sway, -11.0 + 1.2 * b), hand_b=(3.0 - 0.6 * sway,
                                                                                   -12.0 + 1.0 * b),
                                weapon=-70.0 + 6.0 * sway, cape=22.0 + 6.0 * b, cape_wave=i / n,
                                scarf=70.0 + 8.0 * b, scarf_wave=i / n))
    return frames


def _foot(phase, stride, lift, stance):
    phase %= 1.0
    if phase < stance:
        t = phase / stance
        return (stride * (1 - 2 * t), 2.0), 0.0
    t = (phase - stance) / (1 - stance)
    x = -stride + 2 * stride * (0.5 - 0.5 * math.cos(math.pi * t))
    toe = -20 * math.sin(math.pi * min(t * 1.6, 1.0)) if t < 0.6 else 8 * math.sin(math.pi * t)
    return (x, 2.0 + lift * math.sin(math.pi * t)), toe


WALK_FRAMES, WALK_STRIDE, WALK_STANCE = 8, 11.0, 0.5


def walk():
    """A loping, stooped gait: the head leads, the arms hang and swing against the legs."""
    frames = []
    for i in range(WALK_FRAMES):
        ph = i / WALK_FRAMES
        ff, tf = _foot(ph, WALK_STRIDE, 3.5, WALK_STANCE)
        fb, tb = _foot(ph + 0.5, WALK_STRIDE, 3.5, WALK_STANCE)
        bob = math.cos(4 * math.pi * (ph - 0.25))
        sw = math.cos(2 * math.pi * ph)
        frames.append(STAND.but(
            hip=(-2.0, 19.2 + 0.8 * bob), lean=36.0 + 2.0 * bob, head=-26.0 - 2 * bob,
            foot_f=(ff[0] - 1.5, ff[1]), toe_f=tf, foot_b=(fb[0] - 3.5, fb[1]), toe_b=tb,
            hand_f=(5.0 - 5.0 * sw, -11.0 + abs(sw)), hand_b=(2.0 + 5.0 * sw, -11.5 + abs(sw)),
            weapon=-75.0 + 18 * sw, cape=38.0 + 5 * bob, cape_curl=8.0, cape_wave=ph * 2,
            scarf=85.0 + 6 * bob, scarf_wave=ph * 2))
    return frames


def _claw_smear(sk_pose, body, a0, a1, r0):
    sk = Skeleton(body, sk_pose)
    tip = sk.claw_tip() if body is GHOUL else sk.hook_tip()
    reach = math.hypot(tip[0] - sk.sh_f[0], tip[1] - sk.sh_f[1])
    room = min(FW / 2 - 2.0 - sk.sh_f[0], FH - 2.0 - sk.sh_f[1])
    return (Smear(sk.sh_f, r0, max(min(reach + 1.0, room), r0 + 6), a0, a1),)


def attack(body):
    """Notice, coil, flare, lunge (damage frame 4), follow through, recover."""
    notice = STAND.but(hip=(-3.5, 20.5), lean=18.0, head=-22.0, hand_f=(2.0, -11.0), weapon=-40.0,
                       cape=30.0, scarf=60.0)
    coil = STAND.but(hip=(-6.0, 16.0), lean=14.0, head=-8.0, foot_f=(3.0, 2.0), foot_b=(-10.0, 2.0),
                     toe_b=-20, hand_f=(-9.0, 2.0), hand_b=(3.0, -11.0), weapon=150.0, cape=20.0,
                     cape_curl=4.0, scarf=40.0, stretch=0.95)
    flare = coil.but(hip=(-7.0, 15.0), lean=10.0, hand_f=(-10.0, 4.0), weapon=165.0, head=-4.0,
                     tags=("tell",), dust=((-12.0, 1.5, 1.0),))
    lunge = STAND.but(hip=(1.0, 16.0), lean=62.0, head=-40.0, foot_f=(11.0, 2.0), foot_b=(-12.0, 3.0),
                      toe_b=-40, toe_f=0, hand_f=(8.5, 3.5), hand_b=(-8.0, -6.0), weapon=5.0,
                      cape=95.0, cape_curl=4.0, cape_flutter=8.0, scarf=110.0, stretch=1.08,
                      ghosts=((-6, 0, 0.5), (-12, 0, 0.25)), tags=("tell", "flash"),
                      dust=((-14.0, 1.5, 1.5), (-8.0, 1.5, 1.0)))
    lunge = lunge.but(smear=_claw_smear(lunge, body, 140.0, 5.0, 5.0))
    follow = lunge.but(hip=(3.0, 15.0), lean=58.0, head=-30.0, hand_f=(10.0, -8.0), weapon=-45.0,
                       ghosts=(), tags=(), cape=70.0, cape_wave=0.3, scarf=90.0,
                       dust=((-10.0, 2.0, 1.8), (20.0, 1.5, 1.0)))
    follow = follow.but(smear=_claw_smear(follow, body, 30.0, -45.0, 10.0))
    recover = STAND.but(hip=(1.0, 18.0), lean=40.0, head=-24.0, foot_f=(9.0, 2.0), foot_b=(-7.0, 2.0),
                        hand_f=(8.0, -10.0), weapon=-60.0, cape=50.0, cape_wave=0.6, scarf=75.0)
    settle = STAND.but(hip=(-2.0, 19.3), lean=30.0, cape_wave=0.8)
    return rig.timeline(7, [(0, notice, "linear"), (1, coil, "out"), (2, flare, "in"),
                            (3, lunge, "linear"), (4, follow, "out"), (5, recover, "inout"),
                            (6, settle, "inout")])


def dead():
    """Struck: reel back, buckle, fall on the back, a last twitch, still (held)."""
    reel = STAND.but(hip=(-5.0, 20.5), lean=-6.0, head=-35.0, foot_f=(3.0, 3.5), toe_f=20,
                     hand_f=(9.0, -2.0), hand_b=(-6.0, -6.0), weapon=30.0, cape=10.0, scarf=20.0,
                     tags=("tell",))
    buckle = STAND.but(hip=(-5.0, 14.0), lean=10.0, head=20.0, foot_f=(4.0, 2.0), foot_b=(-8.0, 2.0),
                       hand_f=(4.0, -12.0), hand_b=(2.0, -12.0), weapon=-90.0, cape=5.0, scarf=10.0)
    topple = STAND.but(hip=(-6.0, 9.0), lean=-50.0, head=-20.0, foot_f=(4.0, 4.0), foot_b=(-2.0, 2.0),
                       toe_f=40, hand_f=(6.0, 2.0), hand_b=(-2.0, 6.0), weapon=60.0, cape=-40.0,
                       scarf=-20.0)
    lying = STAND.but(hip=(-1.0, 4.0), lean=-84.0, head=-6.0, foot_f=(19.0, 2.5), foot_b=(17.0, 1.5),
                      toe_f=70, toe_b=85, hand_f=(-2.0, 8.0), hand_b=(3.0, 9.0), weapon=150.0,
                      cape=-85.0, cape_curl=-4.0, cape_flutter=2.0, scarf=-80.0, scarf_curl=-4.0,
                      tags=("eyes_off",))
    bounce = lying.but(hip=(-1.0, 5.5), lean=-78.0, head=-16.0, foot_f=(18.0, 5.0), tags=(),
                       dust=((-8.0, 1.5, 1.6), (6.0, 1.5, 1.2)))
    twitch = lying.but(hand_f=(-1.0, 10.0), head=-2.0, tags=(), dust=((-12.0, 2.0, 1.2),))
    return rig.timeline(7, [(0, reel, "linear"), (1, buckle, "in"), (2, topple, "in"),
                            (3, bounce, "out"), (4, twitch, "inout"), (5, lying, "inout"),
                            (6, lying, "linear")])


# ---------------------------------------------------------------- frames

LOOKS = {  # look -> (body, part builder, file stem)
    "forest": (GHOUL, build_ghoul, "TrashForest"),
    "city": (SCAVENGER, build_scavenger, "TrashCity"),
}


def _star(img, c, colours, size):
    """A hard-pixel four-point flash centred on pixel c, with short diagonals."""
    h, w = img.shape[:2]
    cx, cy = min(max(c[0], size + 1), w - size - 2), min(max(c[1], size + 1), h - size - 2)
    pts = [(0, 0, 0), (1, 0, 1), (-1, 0, 1), (0, 1, 1), (0, -1, 1)]
    for k in range(2, size + 1):
        tone = 1 if k <= size // 2 else (2 if k < size else 3)
        pts += [(k, 0, tone), (-k, 0, tone), (0, k, tone), (0, -k, tone)]
    pts += [(1, 1, 2), (-1, -1, 2), (1, -1, 2), (-1, 1, 2)]
    for dx, dy, tone in pts:
        x, y = cx + dx, cy + dy
        if 0 <= x < w and 0 <= y < h:
            img[y, x, :3] = colours[tone]
            img[y, x, 3] = 255


def render(look, pose):
    body, builder, _ = LOOKS[look]
    img = rig.render(body, pose, FW, FH, builder=builder, facing=FACING)
    if "tell" in pose.tags:
        cv = rig.Canvas(FW, FH, FACING)
        sk = Skeleton(body, pose)
        _star(img, cv.pixel(sk.eye()), TELL[look], 4 if "flash" in pose.tags else 3)
        if "flash" in pose.tags:
            tip = sk.claw_tip() if look == "forest" else sk.hook_tip()
            _star(img, cv.pixel(tip), TELL[look], 3)
    return img


def build(look):
    """Every clip's frames (uint8 RGBA) for one look, in row order."""
    body = LOOKS[look][0]
    poses = {"IDLE": idle(), "WALK": walk(), "ATTACK": attack(body), "DEAD": dead()}
    return [(label, [render(look, p) for p in poses[label]]) for label, _, _ in CLIPS]


def sheet(clips):
    return px.sheet(clips, FW, FH)


def anim_data(clips):
    lines = [f"size : ({FW},{FH})", "first Frame Position : (0,0)", ""]
    for (label, rate, dmg), (_, frames) in zip(CLIPS, clips):
        lines.append(clip_line(label, len(frames), rate, None if dmg is None else ("Damage", dmg)))
    return "\n".join(lines) + "\n"


# ---------------------------------------------------------------- checks


def read_anim_data(text):
    """Read the file the way the game does, field by field (C fscanf); every field must match."""
    reader = FieldReader(text, "Trash AnimData")
    need = reader.need
    size = need("size : (%d,%d)\n")
    first = need("first Frame Position : (%d,%d)\n\n")
    rows = [read_clip(reader, label, None if dmg is None else "Damage") for label, _, dmg in CLIPS]
    reader.finish()
    return tuple(size), tuple(first), rows


def check(text, img, clips):
    """The faults the game would not report: a field that stops scanning, a row that wraps into
    the next clip, a damage frame that never comes, a clip that never finishes, a body that does
    not fill its hurtbox or stand on the ground, art cut off by the frame edge."""
    raw = text.encode("ascii")
    if raw.startswith(b"\xef\xbb\xbf") or b"\r" in raw:
        raise ValueError("Trash AnimData must be plain ASCII with LF line ends")
    (fw, fh), first, rows = read_anim_data(text)
    if (fw, fh) != (FW, FH) or first != (0, 0):
        raise ValueError(f"Trash AnimData size {fw}x{fh} / first {first}")
    if img.shape[:2] != (fh * len(CLIPS), fw * max(n for _, n, _, _ in rows)):
        raise ValueError(f"Trash sheet is {img.shape[1]}x{img.shape[0]}")
    for (label, n, rate, dmg), (_, frames) in zip(rows, clips):
        if not (n >= 1 and n == len(frames) and 1 <= rate <= 60 and n * fw <= img.shape[1]):
            raise ValueError(f"Trash {label}: {n} frames at {rate} fps")
        if dmg is not None and not 1 <= dmg < n:
            raise ValueError(f"Trash {label}: damage frame {dmg} of {n}")
    for label, frames in clips:
        for i, f in enumerate(frames):
            if f[0].any() or f[:, 0].any() or f[:, -1].any():
                raise ValueError(f"Trash {label} {i}: cut off by the frame edge")
            if label in ("IDLE", "WALK"):
                cols = np.nonzero(f[..., 3].any(axis=0))[0]
                top = np.nonzero(f[..., 3].any(axis=1))[0][0]
                feet = np.nonzero(f[-1, :, 3])[0]
                if not feet.size:
                    raise ValueError(f"Trash {label} {i}: no foot on the bottom row")
                tall, wide = FH - top, cols[-1] - cols[0] + 1
                centre = (cols[0] + cols[-1] + 1) / 2
                if not (40 <= tall <= 50 and 20 <= wide <= 40 and abs(centre - FW / 2) <= 5):
                    raise ValueError(f"Trash {label} {i}: body {wide}x{tall} centred at {centre}")


# ---------------------------------------------------------------- review sheet


def pose_sheet(looks, out):
    """docs/trash_poses.png: every frame of both looks at x3, one labelled row per clip."""
    scale, label_w, pad = 3, 230, 6
    cols = max(len(frames) for clips in looks.values() for _, frames in clips)
    cw, ch = FW * scale, FH * scale
    n_rows = sum(len(clips) for clips in looks.values())
    W = label_w + cols * (cw + pad) + pad
    H = n_rows * (ch + pad) + pad
    img = Image.new("RGBA", (W, H), (18, 20, 26, 255))
    draw = ImageDraw.Draw(img)
    font = ImageFont.truetype(str(out / "Assets/Fonts/ButtonFont2.ttf"), 16)
    grounds = {"forest": [(16, 24, 22, 255), (28, 44, 36, 255)],
               "city": [(18, 20, 34, 255), (34, 36, 56, 255)]}
    row = 0
    for look, clips in looks.items():
        for (label, rate, dmg), (_, frames) in zip(CLIPS, clips):
            y = pad + row * (ch + pad)
            draw.text((pad, y + 8), f"{look} {label}", font=font, fill=(225, 220, 205, 255))
            info = f"{len(frames)} x {rate} fps" + (f", hits on {dmg}" if dmg else "")
            draw.text((pad, y + 30), info, font=font, fill=(150, 150, 160, 255))
            for col, f in enumerate(frames):
                x = label_w + col * (cw + pad)
                draw.rectangle([x, y, x + cw - 1, y + ch - 1], grounds[look][(row + col) % 2])
                # the fixed hurtbox, 25 x 45, bottom-centred
                hx0, hy0 = x + (FW // 2 - 12) * scale, y + (FH - 45) * scale
                draw.rectangle([hx0, hy0, hx0 + 25 * scale - 1, y + ch - 1], outline=(70, 70, 80, 255))
                if dmg is not None and col == dmg - 1:
                    draw.rectangle([x, y, x + cw - 1, y + ch - 1], outline=(200, 60, 50, 255))
                img.alpha_composite(Image.fromarray(px.upscale(f, scale), "RGBA"), (x, y))
            row += 1
    return px.save_png(np.array(img), out / "docs/trash_poses.png")


def generate(out):
    written, looks = [], {}
    for look, (_, _, stem) in LOOKS.items():
        clips = build(look)
        img, text = sheet(clips), anim_data(clips)
        check(text, img, clips)
        folder = out / "Assets/Sprites/Enemies/Trash"
        written.append(px.save_png(img, folder / f"{stem}.png"))
        txt = folder / f"{stem}AnimData.txt"
        txt.write_bytes(text.encode("ascii"))
        written.append(txt)
        looks[look] = clips
    written.append(pose_sheet(looks, out))
    return written

"""The Lost Nomad, the forest's boss: Sprites/Enemies/Nomad.png, NomadAnimData.txt, and
docs/nomad_poses.png (every frame x3, labelled, with the hurtbox and the attack boxes).

A hooded duellist in a long, dust-coloured greatcoat, a teal scarf wound over the lower face and
streaming behind, wrapped forearms and shins, a long curved blade. Two amber eyes burn in the dark
of the hood. Posed with the character rig (`rig.py`) through its own part builder, facing right.

Frames are 128 x 128. The game's hurtbox is the central fifth of the frame width and the lower half
of its height (about 26 x 64, bottom-centred), so the standing Nomad is about 64 tall and 26 wide
on the frame's bottom centre: a head taller than the hero. The frame width also sets its reach:
the attack box runs half the frame width (64 tx) in front of the centre line, half the frame height
from the feet for the light cut and the full height for the heavy one, so the light cut sweeps
level through the lower half in front and the heavy cut comes down from high overhead to the
ground in front.

Every attack is readable before it lands: a wind-up with weight shifting back (anticipation), the
eyes flaring on the last frame before the cut, and on the damage frame itself the blade flashing
white with a star on its edge and the eyes blazing (the tell), a smear over the cut and a
follow-through. The heavy cut winds up for half a second, the blade held high over the head with a
glint running up its edge, before it comes down. The dashes are stretched poses with afterimages, speed lines and dust; the escape dash
is already moving on its first frame (the game moves it from the first frame), the rush dash
gathers on its first frame (the game moves it only from the second).

Rows: IDLE (loops), WALK (loops), LIGHT_ATTACK, HEAVY_ATTACK, ESCAPE_DASH, RUSH_DASH, DEAD (once;
DEAD holds its last frame: the Nomad face down beside its blade, planted in the ground).
"""
import math

import numpy as np
from PIL import Image, ImageDraw, ImageFont

from . import pixel as px
from . import rig
from .animdata import FieldReader, clip_line, read_clip
from .rig import Part, Pose, Smear, add, lerp, swing, two_bone, vec

FW, FH = 128, 128
FACING = 1  # the sheet looks to the right
SHEET = "Assets/Sprites/Enemies/Nomad.png"
DATA = "Assets/Sprites/Enemies/NomadAnimData.txt"

# label, frame rate, tail word ("Damage" or "Dash"), its frame (1-based) or None;
# the frame counts come from the poses
CLIPS = [
    ("IDLE", 8, None, None),
    ("WALK", 10, None, None),
    ("LIGHT_ATTACK", 14, "Damage", 5),
    ("HEAVY_ATTACK", 12, "Damage", 7),
    ("ESCAPE_DASH", 12, "Dash", 1),
    ("RUSH_DASH", 12, "Dash", 2),
    ("DEAD", 10, None, None),
]
HURTBOX = (FW * 0.2, FH * 0.5)       # tx, bottom-centred
REACH = FW * 0.5                     # tx in front of the centre line

# ---------------------------------------------------------------- materials

MATERIALS = {
    "coat": rig.Material.of("#0c0a08", "#282319", "#3e3626", "#5a4e36", "#7a6c4c"),
    "hood": rig.Material.of("#0f0c08", "#5a4a32", "#84704c", "#ab966a", "#cdbb8e"),
    "mantle": rig.Material.of("#0e0b08", "#3e3424", "#5c4e36", "#7c6a4a", "#9c8862"),
    "trousers": rig.Material.of("#090909", "#1f1d22", "#312e35", "#4a4650", "#65606c"),
    "scarf": rig.Material.of("#03100f", "#15403c", "#22645b", "#3a8f7f", "#64b6a0"),
    "wraps": rig.Material.of("#15110c", "#6c604c", "#9c8c6c", "#c4b48e", "#dccfaa"),
    "leather": rig.Material.of("#0e0908", "#2a1b15", "#4a3024", "#6e4a34", "#93694a"),
    "brass": rig.Material.of("#1a0f05", "#6e4818", "#a8772c", "#d8ac58", "#ecd08c"),
    "blade": rig.Material.of("#0f151c", "#61727e", "#9aaab2", "#c6d2d6", "#dfe8ea"),
    "eye": rig.Material.of("#2a1204", "#a8581a", "#e89a2e", "#ffc850", "#ffe89a"),
    "smear": rig.Material.of("#4a3810", "#a88a3c", "#e0c670", "#fbeaa8", "#ffffff"),
    "dust": rig.Material.of("#000000", "#5e5a50", "#868070", "#aca490", "#aca490"),
    "ghost": px.rgb("#4f9a8a"),
}
# the flash of the blade on a damage frame: dark edge, shadow, base, light, rim (white hot)
FLASH = rig.Material.of("#3a2a08", "#f4e2a0", "#fff6d0", "#ffffff", "#ffffff")
# the heavy cut's smear burns hotter at its head
HEAVY_SMEAR = rig.Material.of("#5a2a08", "#c0702a", "#f4b450", "#ffe6a0", "#ffffff")
# stars of the tell: core, inner arms, outer arms, tips (brightest first)
TELL = [px.rgb(h) for h in ("#ffffff", "#fff4c0", "#ffc850", "#c87a20")]
SPEED = [px.rgb(h) for h in ("#bcd8cc", "#7fae9e", "#4e7e70")]   # speed lines, bright to faint

NOMAD = rig.Body(thigh=15.0, shin=15.0, upper_arm=10.5, forearm=10.0, torso=18.0, shoulder=15.5,
                 neck=2.0, head_r=(5.2, 5.4), grip=4.0, pommel=2.5, blade=33.0, blade_w=1.5,
                 guard=2.6, cape_len=25.0, cape_w=(4.5, 8.0), scarf_len=26.0,
                 limb_r={"thigh": (3.0, 2.4), "shin": (2.2, 1.7), "upper_arm": (2.1, 1.8),
                         "forearm": (1.8, 1.5)},
                 materials=MATERIALS)
CURVE = 0.012        # the blade's bend towards its back, per tx squared along it

# ---------------------------------------------------------------- skeleton


class Skeleton:
    """Joint positions of one pose, shared by the part builder and the overlays."""

    def __init__(self, body, pose):
        self.body, self.pose = body, pose
        self.up = up = 90.0 - pose.lean
        self.hip = pose.hip
        self.fwd = vec(up - 90)
        self.stretch = pose.stretch
        self.neck = self.tl(body.torso, 0.8)
        self.sh_f = self.tl(body.shoulder, 1.2)
        self.sh_b = self.tl(body.shoulder, -1.2)
        self.head_up = up - pose.head
        self.head_c = add(self.neck, vec(self.head_up, body.neck + body.head_r[1] - 1.0))
        self.planted = "planted" in pose.tags     # the blade stands in the ground on its own
        hand_f = add(self.sh_f, pose.hand_f)
        self.weapon = pose.weapon
        if self.planted:
            self.guard_c = add(PLANT_TIP, vec(PLANT_ANGLE), -body.blade)
            self.grip_hand = add(self.guard_c, vec(PLANT_ANGLE), -body.grip)
            self.weapon = PLANT_ANGLE
            if "hold" in pose.tags:                # leaning on it, both hands on the hilt
                hand_f = self.grip_hand
        self.elbow_f, self.hand_f = two_bone(self.sh_f, hand_f, body.upper_arm, body.forearm, -1)
        if not self.planted:
            self.guard_c = add(self.hand_f, vec(self.weapon), body.grip)
            self.grip_hand = self.hand_f
        if pose.hand_b is None or "hold" in pose.tags:    # both hands on the hilt
            target = add(self.grip_hand, vec(self.weapon), -2.6)
        else:
            target = add(self.sh_b, pose.hand_b)
        self.elbow_b, self.hand_b = two_bone(self.sh_b, target, body.upper_arm, body.forearm, -1)

    def tl(self, u, v):
        """Torso-local (along, forward) -> rig space."""
        return add(add(self.hip, vec(self.up, u * self.stretch)), self.fwd, v)

    def hl(self, u, v):
        """Head-local (up, forward) -> rig space."""
        return add(add(self.head_c, vec(self.head_up, u)), vec(self.head_up - 90), v)

    def eyes(self):
        """Near eye, far eye."""
        return self.hl(0.2, 4.8), self.hl(0.4, 2.5)

    def blade_point(self, t):
        """The point a fraction t along the edge, guard 0 to tip 1, following the curve."""
        s = self.body.blade * t
        d, n = vec(self.weapon), vec(self.weapon + 90)
        return add(add(self.guard_c, d, s), n, CURVE * s * s)


IMPACT_X = 50.0              # where the heavy cut bites the ground
PLANT_TIP = (15.0, -7.0)      # where the dropped blade stands in the ground (DEAD)
PLANT_ANGLE = -84.0


def _ribbon_chain(cv, start, swing_deg, curl, flutter, wave, length, w0, w1, segs=4):
    """A strip of cloth hanging from `start`, swung back by swing_deg, curling and rippling."""
    pts, dirs = [start], []
    for k in range(segs):
        d = swing(swing_deg + curl * k + flutter * math.sin(2 * math.pi * (wave + k / segs)) * k / 2)
        dirs.append(d)
        pts.append(add(pts[-1], d, length / segs))
    widths = [lerp(w0, w1, k / segs) for k in range(segs + 1)]
    return cv.ribbon(pts, widths), pts, dirs, widths


def _tatter(cv, mask, pts, dirs, half_w, wave, n=3):
    """A ragged hem: broad tongues of cloth of uneven length with notches between them."""
    hem, dl = pts[-1], dirs[-1]
    nl = (-dl[1], dl[0])
    r = max(0.8, 1.6 * half_w / n)
    for j in range(n):
        off = -0.7 + 1.4 * j / max(n - 1, 1)
        ph = math.sin(2 * math.pi * (wave + j / n))
        base = add(hem, nl, off * half_w)
        mask |= cv.capsule(base, add(base, dl, 1.2 + 1.0 * ph + (j % 2) * 1.4), r, r * 0.55)
        if j < n - 1:
            mid = -0.7 + 1.4 * (j + 0.5) / max(n - 1, 1)
            notch = add(add(hem, nl, mid * half_w), dl, 0.2 - 0.6 * ph)
            mask &= ~cv.ellipse(notch, 0.7, 1.8, math.degrees(math.atan2(dl[1], dl[0])))
    return mask


def _leg(cv, sk, name, hip_off, foot, toe, dim):
    body, m = sk.body, sk.body.materials
    hj = add(sk.hip, sk.fwd, hip_off)
    knee, ankle = two_bone(hj, foot, body.thigh, body.shin, +1)
    thigh = cv.capsule(hj, knee, *body.limb_r["thigh"])
    # baggy trousers bloused over the wraps just below the knee
    thigh |= cv.capsule(knee, lerp_pt(knee, ankle, 0.3), body.limb_r["thigh"][1] + 0.2, 1.9)
    shin = cv.capsule(lerp_pt(knee, ankle, 0.25), ankle, *body.limb_r["shin"])
    trousers = Part(name, thigh, m["trousers"], name, dim=dim)
    wraps = Part(name + "_wraps", shin & ~thigh, m["wraps"], name, dim=dim)
    for t in (0.45, 0.65, 0.85):                      # the bands of the wrapping
        c = lerp_pt(knee, ankle, t)
        d = (ankle[0] - knee[0], ankle[1] - knee[1])
        ang = math.degrees(math.atan2(d[1], d[0])) + 65
        wraps.details.append((cv.capsule(add(c, vec(ang), -3.0), add(c, vec(ang), 3.0), 0.4) & shin, 0))
    boot = cv.capsule(add(ankle, vec(toe), -1.2), add(ankle, vec(toe), 4.2), 1.9, 1.3)
    boot |= cv.capsule(add(ankle, vec(toe + 90), 1.6), ankle, 1.8)
    return [trousers, wraps, Part(name + "_boot", boot, m["leather"], name, dim=dim)]


def lerp_pt(p, q, t):
    return (lerp(p[0], q[0], t), lerp(p[1], q[1], t))


def _arm(cv, sk, sh, elbow, hand, name, dim):
    body, m = sk.body, sk.body.materials
    sleeve = cv.capsule(sh, elbow, *body.limb_r["upper_arm"]) | cv.ellipse(sh, 2.8, 2.6)
    sleeve |= cv.capsule(elbow, lerp_pt(elbow, hand, 0.35), body.limb_r["upper_arm"][1] + 0.3, 2.0)
    fore = cv.capsule(lerp_pt(elbow, hand, 0.3), hand, *body.limb_r["forearm"]) & ~sleeve
    wraps = Part(name + "_wraps", fore, m["wraps"], name, dim=dim)
    for t in (0.55, 0.8):
        c = lerp_pt(elbow, hand, t)
        d = (hand[0] - elbow[0], hand[1] - elbow[1])
        ang = math.degrees(math.atan2(d[1], d[0])) + 70
        wraps.details.append((cv.capsule(add(c, vec(ang), -2.5), add(c, vec(ang), 2.5), 0.35) & fore, 0))
    glove = Part(name + "_hand", cv.ellipse(hand, 1.9, 1.9), m["leather"], name, dim=dim)
    return [Part(name, sleeve, m["coat"], name, dim=dim), wraps, glove]


def _blade_parts(cv, sk, flash):
    body, m = sk.body, sk.body.materials
    d, n = vec(sk.weapon), vec(sk.weapon + 90)
    g = sk.guard_c
    pommel = add(sk.grip_hand, d, -body.pommel)
    grip = Part("grip", cv.capsule(pommel, g, 0.9), m["leather"], "weapon")
    grip.details.append((cv.capsule(add(pommel, d, 1.5), add(pommel, d, 2.2), 0.9), 0))
    knob = Part("pommel", cv.ellipse(pommel, 1.3, 1.3), m["brass"], "weapon")
    # a short, down-swept guard
    guard = Part("guard", cv.capsule(add(g, n, -body.guard), add(add(g, n, body.guard), d, 0.8), 1.0),
                 m["brass"], "weapon")
    # the blade: a single edge on the outside of its curve, widening a little towards the point,
    # then a clipped tip
    back, edge = [], []
    steps = 10
    for i in range(steps + 1):
        t = i / steps
        p = sk.blade_point(t)
        if t < 0.999:
            w = body.blade_w * (1.0 + 0.25 * math.sin(math.pi * t * 0.8))
            w = w * (1.0 - max(0.0, (t - 0.82) / 0.18) * 0.9)
        else:
            w = 0.0
        s = body.blade * t
        tangent = vec(sk.weapon + math.degrees(math.atan(2 * CURVE * s)))
        nn = (-tangent[1], tangent[0])
        back.append(add(p, nn, w * 0.8))
        edge.append(add(p, nn, -w * 1.1))
    blade = cv.polygon(back + edge[::-1]) | cv.capsule(sk.blade_point(0.0), sk.blade_point(0.96), 0.55)
    bp = Part("blade", blade, FLASH if flash else m["blade"], "weapon")
    # a fuller along the back third of the blade
    fuller = cv.capsule(sk.blade_point(0.05), sk.blade_point(0.6), 0.35) & blade
    bp.details.append((fuller, 0 if not flash else 2))
    return [grip, knob, bp, guard]


FLAT = 0.42   # a level cut, seen from the side, sweeps a flattened arc


def _smear_part(cv, sm, material, flat):
    """The rig's crescent, squashed vertically by `flat` for a cut that sweeps round the body."""
    dx, dy = cv.x - sm.centre[0], (cv.y - sm.centre[1]) / flat
    r = np.hypot(dx, dy)
    ang = np.degrees(np.arctan2(dy, dx))
    lo, hi = sorted((sm.a0, sm.a1))
    span = hi - lo
    rel = (ang - lo) % 360.0
    t = rel / span
    t = t if sm.a1 >= sm.a0 else 1.0 - t                    # 0 at the tail, 1 at the head
    inner = sm.r1 - (sm.r1 - sm.r0) * np.clip(t, 0, 1) ** 0.6
    band = (rel <= span) & (r <= sm.r1) & (r >= inner)
    s = np.clip((r - inner) / np.maximum(sm.r1 - inner, 1e-3), 0, 1)
    p = Part("smear", band, material, "fx", outline=False)
    tone = np.where(band, 1, -1)
    tone[band & (s < 0.35)] = 0
    tone[band & (s > 0.72)] = 2
    tone[band & (s > 0.72) & (t > 0.55)] = 3
    keep = px.bayer(cv.h, cv.w) < np.clip(t * 2.2, 0, 1)
    p.mask = band & (keep | (s > 0.72) & (t > 0.25))
    p.tone = np.where(p.mask, tone, -1)
    return p


# ---------------------------------------------------------------- the part builder


def build_nomad(body, pose, cv):
    m = body.materials
    sk = Skeleton(body, pose)
    tl, hl = sk.tl, sk.hl
    parts = []
    wave = pose.cape_wave

    # the two tails of the scarf, streaming from the back of the neck
    for k, (ln, w0, off) in enumerate(((1.0, 2.2, 0.0), (0.72, 1.8, 18.0))):
        mask, pts, dirs, widths = _ribbon_chain(cv, tl(body.torso + 0.5, -2.4), pose.scarf + off,
                                                pose.scarf_curl, 12.0, pose.scarf_wave + 0.35 * k,
                                                body.scarf_len * ln, w0, 1.4, segs=4)
        mask = _tatter(cv, mask, pts, dirs, 1.4, pose.scarf_wave, n=2)
        sp = Part(f"scarf_tail{k}", mask, m["scarf"], "scarf_tail")
        sp.details.append((cv.capsule(pts[1], pts[-1], 0.35) & mask, 0))
        parts.append(sp)

    # the greatcoat's long back skirt, split and tattered at the hem
    streaming = min(max((pose.cape - 50.0) / 50.0, 0.0), 1.0)    # cloth in a fast wind narrows
    hem_w = body.cape_w[1] * (1.0 - 0.4 * streaming)
    mask, pts, dirs, widths = _ribbon_chain(cv, tl(2.5, -1.5), pose.cape, pose.cape_curl,
                                            pose.cape_flutter, wave, body.cape_len, body.cape_w[0], hem_w)
    mask = _tatter(cv, mask, pts, dirs, hem_w, wave, n=3)
    nl = (-dirs[-1][1], dirs[-1][0])
    skirt = Part("skirt", mask, m["coat"], "skirt")
    for off in (-0.3, 0.35):                              # folds running up from the hem
        a0 = add(pts[1], (-dirs[0][1], dirs[0][0]), off * widths[1])
        skirt.details.append((cv.capsule(a0, add(pts[-1], nl, off * widths[-1] * 1.2), 0.5) & mask, 0))
    split = cv.capsule(add(pts[2], nl, 0.1 * widths[2]), add(pts[-1], nl, 0.1 * widths[-1]), 0.45)
    skirt.details.append((split & mask, "ink"))
    parts.append(skirt)

    # far arm, far leg
    parts += _arm(cv, sk, sk.sh_b, sk.elbow_b, sk.hand_b, "arm_b", True)
    parts += _leg(cv, sk, "leg_b", -1.2, pose.foot_b, pose.toe_b, True)

    weapon = _blade_parts(cv, sk, "flash" in pose.tags)
    if pose.weapon_behind or sk.planted:
        parts += weapon

    # the coat's body: narrow at the waist, broad across the chest
    trunk = cv.polygon([tl(-1.0, -4.6), tl(-1.0, 4.4), tl(6.0, 4.6), tl(12.0, 5.4), tl(16.5, 5.0),
                        tl(19.5, 2.5), tl(19.5, -3.5), tl(15.5, -5.8), tl(8.0, -5.4), tl(3.0, -4.8)])
    tp = Part("coat", trunk, m["coat"], "torso")
    tp.details.append((cv.capsule(tl(4.0, 3.8), tl(16.0, 4.2), 0.4) & trunk, 0))     # the lapel
    parts.append(tp)
    # a leather baldric across the chest and a wide sash at the waist
    strap = cv.capsule(tl(18.0, -3.5), tl(3.5, 4.0), 1.0) & trunk
    sp = Part("strap", strap, m["leather"], "strap")
    sp.details.append((cv.ellipse(tl(11.0, 0.5), 0.8, 0.8) & strap, 3))
    parts.append(sp)
    sash = cv.polygon([tl(1.0, -4.9), tl(1.0, 4.8), tl(4.5, 4.9), tl(4.5, -5.0)])
    knot_end = cv.capsule(tl(2.5, -4.5), add(tl(2.5, -4.5), swing(pose.cape * 0.7 + 10), 6.5), 1.3, 0.8)
    sh = Part("sash", sash | knot_end, m["scarf"], "sash")
    sh.details.append((cv.capsule(tl(2.8, -4.9), tl(2.8, 4.8), 0.3) & sash, 0))
    parts.append(sh)

    # the front flap of the coat over the near thigh
    fmask, fpts, fdirs, _ = _ribbon_chain(cv, tl(1.0, 2.6), pose.cape * 0.3 - 8.0, 2.0, 3.0, wave,
                                          11.0, 3.0, 4.2, segs=2)
    fmask = _tatter(cv, fmask, fpts, fdirs, 4.2, wave + 0.3, n=3)
    parts += _leg(cv, sk, "leg_f", 1.2, pose.foot_f, pose.toe_f, False)
    parts.append(Part("flap", fmask, m["coat"], "flap"))

    # the mantle: a short cape over the shoulders, its back swinging a little behind
    mmask, mpts, mdirs, mw = _ribbon_chain(cv, tl(body.torso - 1.0, -1.5), pose.cape * 0.45 + 20.0,
                                           5.0, 3.0, wave + 0.2, 10.0, 5.0, 6.0, segs=2)
    mmask |= cv.polygon([tl(body.torso + 1.2, -4.0), tl(body.torso + 0.8, 4.6), tl(body.torso - 4.5, 6.0),
                         tl(body.torso - 8.5, 3.0), tl(body.torso - 9.5, -2.0), tl(body.torso - 6.0, -5.5)])
    mmask = _tatter(cv, mmask, mpts, mdirs, 5.0, wave + 0.5, n=2)
    mp = Part("mantle", mmask, m["mantle"], "mantle")
    mp.details.append((cv.capsule(tl(body.torso - 1.0, 1.5), tl(body.torso - 6.5, 4.0), 0.4) & mmask, 0))
    parts.append(mp)

    # the hood: deep, a cowl reaching over the face, its peak falling back; two eyes in the dark
    # of it and the scarf wound over the chin
    hood = cv.ellipse(hl(0.4, -0.2), body.head_r[0] + 1.6, body.head_r[1] + 1.4, sk.head_up - 90)
    hood |= cv.polygon([hl(5.4, -2.5), hl(2.5, -10.5), hl(-2.5, -6.5), hl(0.0, -3.0)])
    hood |= cv.polygon([hl(5.0, 1.0), hl(3.2, 7.2), hl(-1.0, 7.6), hl(-4.5, 6.4), hl(-4.0, 1.0)])
    hp = Part("hood", hood, m["hood"], "head")
    void = cv.ellipse(hl(-0.6, 4.4), 3.3, 3.6, sk.head_up - 90) & hood
    void &= ~px.shift(hood & ~px.shift(hood, 0, -1 * FACING), 0, 0)        # keep the brim's edge
    hp.details.append((void, "ink"))
    hp.details.append((px.outline_of(void) & hood & px.shift(void, 1, 0), 2))      # the lit brim
    hp.details.append((cv.capsule(hl(3.8, -3.0), hl(-0.5, -7.0), 0.4) & hood, 0))   # a fold
    parts.append(hp)
    wrap = cv.capsule(hl(-3.6, 0.5), hl(-3.0, 5.8), 1.6) & (void | ~hood)
    wrap |= cv.capsule(tl(body.torso + 0.2, -2.6), tl(body.torso + 0.6, 3.8), 1.8)
    wp = Part("face_wrap", wrap, m["scarf"], "face_wrap")
    parts.append(wp)
    if "eyes_off" not in pose.tags:
        near, far = sk.eyes()
        lvl = 3 if ("flare" in pose.tags or "flash" in pose.tags) else 2
        for c, rx, tone in ((far, 0.9, lvl - 1), (near, 1.2, lvl)):
            eye = cv.ellipse(c, rx, 0.7, sk.head_up - 90)
            ep = Part("eye", eye, m["eye"], "head", outline=False)
            ep.tone = np.where(eye, tone, -1)
            parts.append(ep)

    for sm in pose.smear:
        parts.append(_smear_part(cv, sm, HEAVY_SMEAR if "heavy" in pose.tags else m["smear"],
                                 FLAT if "flat" in pose.tags else 1.0))
    if not (pose.weapon_behind or sk.planted):
        parts += weapon
    parts += _arm(cv, sk, sk.sh_f, sk.elbow_f, sk.hand_f, "arm_f", False)
    return parts, sk.hand_f


# ---------------------------------------------------------------- poses

GUARD = Pose(hip=(0.0, 29.0), lean=8.0, head=-6.0, foot_f=(7.0, 2.0), foot_b=(-6.5, 2.0), toe_b=-6,
             hand_f=(9.0, -12.0), hand_b=(3.0, -15.0), weapon=-24.0, cape=14.0, cape_curl=6.0,
             cape_flutter=5.0, scarf=58.0, scarf_curl=9.0)


def smear_of(pose, a0, a1, r0, flat=1.0):
    """A crescent about the sword shoulder from the blade's past angle a0 to a1, its outer edge
    following the blade's tip, kept inside the frame (`flat` squashes it for a level cut)."""
    sk = Skeleton(NOMAD, pose)
    tip = sk.blade_point(1.0)
    reach = math.hypot(tip[0] - sk.sh_f[0], (tip[1] - sk.sh_f[1]) / flat)
    room = min(FW / 2 - 2.0 - sk.sh_f[0], (FH - 2.0 - sk.sh_f[1]) / flat, sk.sh_f[0] + FW / 2 - 2.0)
    return (Smear(sk.sh_f, r0, max(min(reach + 1.0, room), r0 + 6), a0, a1),)


def idle():
    """The guard, breathing: the blade low and forward, the coat and scarf stirring."""
    frames, n = [], 8
    for i in range(n):
        b = 0.5 - 0.5 * math.cos(2 * math.pi * i / n)
        s = math.sin(2 * math.pi * i / n)
        frames.append(GUARD.but(hip=(0.0, 29.0 - 0.8 * b), stretch=1.0 + 0.025 * b, head=-6.0 - 3 * b,
                                hand_f=(9.0, -12.0 + 0.8 * b), hand_b=(3.0, -15.0 + 0.6 * b),
                                weapon=-24.0 + 3.0 * b, cape=14.0 + 5 * b, cape_wave=i / n,
                                scarf=58.0 + 10 * s, scarf_wave=i / n))
    return frames


def _foot(phase, stride, lift, stance):
    """Ankle position and toe angle for a gait phase: planted and sliding back, then swinging."""
    phase %= 1.0
    if phase < stance:
        t = phase / stance
        return (stride * (1 - 2 * t), 2.0), 0.0
    t = (phase - stance) / (1 - stance)
    x = -stride + 2 * stride * (0.5 - 0.5 * math.cos(math.pi * t))
    toe = -22 * math.sin(math.pi * min(t * 1.6, 1.0)) if t < 0.6 else 8 * math.sin(math.pi * t)
    return (x, 2.0 + lift * math.sin(math.pi * t)), toe


WALK_FRAMES, WALK_STRIDE = 8, 9.0


def walk():
    """A stalking walk, the blade held low in front, the coat swinging."""
    frames = []
    for i in range(WALK_FRAMES):
        ph = i / WALK_FRAMES
        ff, tf = _foot(ph, WALK_STRIDE, 4.0, 0.5)
        fb, tb = _foot(ph + 0.5, WALK_STRIDE, 4.0, 0.5)
        bob = math.cos(4 * math.pi * (ph - 0.25))
        sw = math.cos(2 * math.pi * ph)
        frames.append(GUARD.but(
            hip=(0.5, 28.4 + 0.8 * bob), lean=10.0 + 1.0 * bob, head=-6.0,
            foot_f=(ff[0] + 0.5, ff[1]), toe_f=tf, foot_b=(fb[0] - 0.5, fb[1]), toe_b=tb,
            hand_f=(9.5 - 1.5 * sw, -12.0), hand_b=(1.0 + 4.5 * sw, -14.5), weapon=-22.0 - 5 * sw,
            cape=26.0 + 5 * bob, cape_curl=7.0, cape_wave=ph * 2, scarf=72.0 + 6 * bob,
            scarf_wave=ph * 2))
    return frames


def light_attack():
    """A level cut: weight back and the blade drawn across the body, the eyes flare, a long step in
    and the blade whips through at waist height (damage frame 5), follow-through low, back to
    guard."""
    ready = GUARD.but(hip=(0.5, 28.5), hand_f=(8.0, -10.0), weapon=-10.0, cape=16.0)
    draw = GUARD.but(hip=(-2.0, 27.5), lean=-2.0, head=-4.0, foot_f=(8.0, 2.0), foot_b=(-8.0, 2.0),
                     hand_f=(-5.0, -6.0), hand_b=(4.0, -12.0), weapon=-210.0, cape=8.0, scarf=46.0)
    coil = draw.but(hip=(-3.5, 26.0), lean=-6.0, hand_f=(-7.5, -3.5), weapon=-190.0, foot_f=(7.0, 3.5),
                    toe_f=-15, cape=5.0, scarf=40.0, stretch=0.98, tags=("flare",))
    cut = GUARD.but(hip=(7.0, 25.0), lean=20.0, head=-12.0, foot_f=(20.0, 2.0), foot_b=(-9.0, 2.0),
                    toe_b=-25, hand_f=(10.0, -7.0), hand_b=(-9.0, -8.0), weapon=-9.0, cape=62.0,
                    cape_curl=9.0, scarf=100.0, tags=("flash", "flat"), dust=((-14.0, 1.5, 1.2),))
    cut = cut.but(smear=smear_of(cut, 172.0, -9.0, 6.0, FLAT))
    follow = cut.but(hand_f=(13.0, -12.0), weapon=-48.0, lean=22.0, cape=50.0, scarf=86.0, tags=(),
                     dust=((-12.0, 2.0, 1.6),))
    follow = follow.but(smear=smear_of(follow, 28.0, -48.0, 14.0))
    recover = GUARD.but(hip=(4.0, 27.0), lean=14.0, foot_f=(16.0, 2.0), foot_b=(-8.0, 2.0),
                        hand_f=(11.0, -12.0), weapon=-40.0, cape=36.0, cape_wave=0.4, scarf=70.0)
    settle = GUARD.but(hip=(1.0, 28.5), foot_f=(10.0, 2.0), cape=20.0, cape_wave=0.7)
    return rig.timeline(9, [(0, ready, "linear"), (2, draw, "inout"), (3, coil, "in"),
                            (4, cut, "linear"), (5, follow, "out"), (6, recover, "out"),
                            (8, settle, "inout")])


def heavy_attack():
    """The overhead cleave: a step back, both hands on the hilt, the blade raised high and held
    (a glint runs up its edge, the eyes flare), then brought down from overhead to the ground in
    front in one stroke (damage frame 7), biting the earth in a burst of dust, wrenched free."""
    ready = GUARD.but(hip=(0.0, 28.5), hand_f=(7.0, -11.0), weapon=-30.0)
    drop = GUARD.but(hip=(-2.5, 27.0), lean=14.0, head=-4.0, foot_f=(6.0, 2.0), foot_b=(-11.0, 2.0),
                     hand_f=(-2.0, -13.0), hand_b=None, weapon=-140.0, cape=10.0, scarf=40.0)
    lift = GUARD.but(hip=(-2.0, 29.5), lean=-4.0, head=-8.0, foot_f=(6.0, 2.0), foot_b=(-11.0, 2.0),
                     hand_f=(-3.0, 3.0), hand_b=None, weapon=150.0, cape=6.0, scarf=30.0,
                     weapon_behind=True, stretch=1.03)
    high = lift.but(hip=(-2.5, 30.5), lean=-8.0, head=-6.0, hand_f=(4.0, 17.0), weapon=118.0,
                    toe_f=-10, stretch=1.05, weapon_behind=False)
    hold = high.but(hip=(-3.0, 30.0), lean=-10.0, hand_f=(3.0, 18.0), weapon=134.0, cape=10.0,
                    cape_wave=0.3, tags=("flare", "glint"))
    gather = hold.but(hip=(-4.0, 28.5), lean=-12.0, hand_f=(1.0, 17.5), weapon=148.0, stretch=1.0,
                      foot_f=(7.0, 2.0), cape=12.0, cape_wave=0.5, tags=("flare", "glint2"))
    cleave = GUARD.but(hip=(9.0, 22.0), lean=34.0, head=-18.0, foot_f=(22.0, 2.0), foot_b=(-10.0, 2.0),
                       toe_b=-35, hand_f=(12.0, -6.0), hand_b=None, weapon=-58.0, cape=95.0,
                       cape_curl=6.0, cape_flutter=8.0, scarf=120.0, scarf_curl=4.0,
                       tags=("flash", "heavy"), dust=((-12.0, 1.5, 1.4),))
    cleave = cleave.but(smear=smear_of(cleave, 125.0, -58.0, 6.0))
    bite = cleave.but(hip=(9.5, 20.5), lean=38.0, hand_f=(11.0, -10.0), weapon=-70.0, cape=70.0,
                      scarf=100.0, cape_wave=0.3, tags=("heavy", "impact"), dust=((-10.0, 2.0, 1.4),))
    bite = bite.but(smear=smear_of(bite, -15.0, -70.0, 16.0))
    stuck = bite.but(smear=(), tags=("settling",), cape=45.0, cape_wave=0.6, scarf=80.0, dust=())
    wrench = GUARD.but(hip=(5.0, 24.5), lean=22.0, head=-10.0, foot_f=(18.0, 2.0), foot_b=(-9.0, 2.0),
                       hand_f=(10.0, -11.0), hand_b=None, weapon=-35.0, cape=30.0, cape_wave=0.8,
                       scarf=70.0, dust=((50.0, 5.0, 1.2),))
    settle = GUARD.but(hip=(1.0, 28.0), foot_f=(10.0, 2.0), cape=18.0, cape_wave=0.9)
    return rig.timeline(12, [(0, ready, "linear"), (1, drop, "inout"), (2, lift, "inout"),
                             (3, high, "out"), (4, hold, "inout"), (5, gather, "in"),
                             (6, cleave, "linear"), (7, bite, "out"), (8, stuck, "linear"),
                             (9, wrench, "inout"), (11, settle, "inout")])


def escape_dash():
    """A leap backwards, already moving on the first frame: low, facing the foe, the blade held
    across in guard, the coat and scarf thrown forward, afterimages and speed lines ahead of it,
    dust from the pushing foot; a skid, then the guard again."""
    fly = GUARD.but(hip=(-5.0, 24.0), lean=14.0, head=-12.0, foot_f=(11.0, 6.0), foot_b=(-15.0, 2.0),
                    toe_f=-40, toe_b=10, hand_f=(10.0, -6.0), hand_b=(5.0, -12.0), weapon=38.0,
                    cape=-65.0, cape_curl=-8.0, cape_flutter=8.0, scarf=-80.0, scarf_curl=-6.0,
                    ghosts=((10, 0, 0.5), (20, 0, 0.25)), tags=("speed-",), dust=((12.0, 1.5, 1.6),))
    slide = fly.but(hip=(-5.0, 21.0), lean=28.0, foot_f=(4.0, 2.0), foot_b=(-16.0, 2.0), toe_f=0,
                    toe_b=0, cape=-50.0, cape_wave=0.3, scarf=-70.0, scarf_wave=0.3,
                    ghosts=((8, 0, 0.4), (16, 0, 0.2)), dust=((12.0, 2.0, 2.0), (-14.0, 1.5, 1.2)))
    skid = GUARD.but(hip=(-3.0, 23.0), lean=18.0, head=-10.0, foot_f=(7.0, 2.0), foot_b=(-14.0, 2.0),
                     toe_b=-15, hand_f=(10.0, -10.0), weapon=0.0, cape=-20.0, cape_wave=0.6,
                     scarf=-30.0, scarf_wave=0.6, tags=(),
                     dust=((-18.0, 1.5, 2.2), (-10.0, 1.5, 1.4)))
    settle = GUARD.but(hip=(-1.0, 28.0), foot_b=(-8.0, 2.0), cape=8.0, cape_wave=0.9, scarf=40.0)
    return rig.timeline(6, [(0, fly, "linear"), (1, slide, "linear"), (2, skid, "out"),
                            (3, skid.but(hip=(-2.0, 25.0), cape=0.0, scarf=10.0, dust=((-20.0, 3.0, 1.4),)),
                             "out"),
                            (5, settle, "inout")])


def rush_dash():
    """A lunge forward: it gathers low on the first frame (the game starts moving it on the
    second), then shoots ahead nearly flat, the blade trailing low behind, the coat and scarf
    streaming back, afterimages and speed lines behind; it brakes on its front foot in dust."""
    gather = GUARD.but(hip=(-3.0, 21.0), lean=34.0, head=-26.0, foot_f=(9.0, 2.0), foot_b=(-12.0, 2.0),
                       toe_b=-30, hand_f=(-8.0, -10.0), hand_b=(6.0, -9.0), weapon=-170.0, cape=34.0,
                       scarf=64.0, stretch=0.96, dust=((-15.0, 1.5, 1.2),))
    shoot = GUARD.but(hip=(5.0, 20.0), lean=46.0, head=-34.0, foot_f=(21.0, 4.0), foot_b=(-19.0, 3.0),
                      toe_f=10, toe_b=-55, hand_f=(-13.0, -3.0), hand_b=(9.0, -7.0), weapon=182.0,
                      cape=104.0, cape_curl=3.0, cape_flutter=6.0, scarf=112.0, scarf_curl=2.0,
                      ghosts=((-9, 0, 0.5), (-18, 0, 0.28), (-27, 0, 0.12)), tags=("speed+",),
                      dust=((-24.0, 1.5, 1.6), (-32.0, 2.0, 1.2)))
    streak = shoot.but(hip=(5.5, 19.0), foot_f=(22.0, 2.0), foot_b=(-20.0, 2.5), cape_wave=0.4,
                       scarf_wave=0.4, cape=108.0, scarf=118.0,
                       dust=((-28.0, 2.0, 1.8), (-36.0, 2.5, 1.2)))
    brake = GUARD.but(hip=(2.0, 22.0), lean=14.0, head=-14.0, foot_f=(19.0, 2.0), foot_b=(-10.0, 2.0),
                      toe_f=-20, hand_f=(4.0, -12.0), weapon=-60.0, cape=60.0, cape_curl=14.0,
                      cape_wave=0.7, scarf=70.0, scarf_curl=16.0, dust=((26.0, 1.5, 2.0), (19.0, 2.0, 1.3)))
    settle = GUARD.but(hip=(1.0, 28.0), foot_f=(10.0, 2.0), cape=16.0, cape_wave=0.9)
    return rig.timeline(6, [(0, gather, "linear"), (1, shoot, "linear"), (2, streak, "linear"),
                            (3, brake, "out"), (5, settle, "inout")])


def dead():
    """Struck down: it reels, drives its blade into the ground and sinks to one knee on it, the eyes
    gutter and go out, it lets go and falls face down beside the blade, which stays standing."""
    reel = GUARD.but(hip=(-3.0, 29.0), lean=-16.0, head=-30.0, foot_f=(8.0, 3.5), toe_f=20,
                     hand_f=(12.0, -2.0), hand_b=(-8.0, -6.0), weapon=30.0, cape=-10.0, scarf=20.0)
    stagger = GUARD.but(hip=(-1.0, 26.0), lean=16.0, head=10.0, foot_f=(10.0, 2.0), foot_b=(-9.0, 2.0),
                        hand_f=(8.0, -13.0), hand_b=(2.0, -14.0), weapon=-70.0, cape=10.0, scarf=30.0)
    grip = PLANT_TIP[0] - 1.0
    kneel = GUARD.but(hip=(-2.0, 18.0), lean=22.0, head=14.0, foot_f=(8.0, 2.0), foot_b=(-12.0, 1.5),
                      toe_b=-75, hand_f=(grip - 9.0, 12.0), hand_b=(grip - 5.0, 10.0), weapon=-84.0,
                      cape=4.0, cape_curl=2.0, scarf=20.0, tags=("planted", "hold"))
    bow = kneel.but(hip=(-2.0, 17.0), lean=30.0, head=30.0, hand_f=(grip - 11.0, 13.0), cape_wave=0.4,
                    tags=("planted", "hold", "dim"))
    slump = kneel.but(hip=(-3.0, 15.0), lean=44.0, head=34.0, hand_f=(4.0, -12.0), hand_b=(0.0, -13.0),
                      cape=-4.0, cape_wave=0.6, tags=("planted", "eyes_off"))
    topple = GUARD.but(hip=(-12.0, 10.0), lean=66.0, head=16.0, foot_f=(-14.0, 2.0), foot_b=(-24.0, 1.5),
                       toe_f=-60, toe_b=-80, hand_f=(8.0, -6.0), hand_b=(6.0, -4.0), cape=-30.0,
                       scarf=-20.0, tags=("planted", "eyes_off"))
    lying = GUARD.but(hip=(-22.0, 4.5), lean=92.0, head=-10.0, foot_f=(-43.0, 2.0), foot_b=(-41.0, 1.5),
                      toe_f=-90, toe_b=-90, hand_f=(17.0, -2.0), hand_b=(3.0, 11.0), cape=86.0,
                      cape_curl=-6.0, cape_flutter=2.0, scarf=100.0, scarf_curl=-10.0,
                      tags=("planted", "eyes_off"))
    bounce = lying.but(hip=(-21.0, 6.5), lean=86.0, head=-22.0, cape=76.0, cape_flutter=8.0,
                       tags=("planted", "eyes_off"),
                       dust=((-4.0, 1.5, 1.8), (-24.0, 1.5, 1.4)))
    return rig.timeline(10, [(0, reel, "linear"), (1, stagger, "out"), (2, kneel, "in"),
                             (3, bow, "out"), (5, slump, "inout"), (6, topple, "in"),
                             (7, bounce, "out"), (8, lying, "out"), (9, lying, "linear")])


POSES = {"IDLE": idle, "WALK": walk, "LIGHT_ATTACK": light_attack, "HEAVY_ATTACK": heavy_attack,
         "ESCAPE_DASH": escape_dash, "RUSH_DASH": rush_dash, "DEAD": dead}

# ---------------------------------------------------------------- frames


def _star(img, c, colours, size, diagonal=True):
    """A hard-pixel four-point flash centred on pixel c, with short diagonals."""
    h, w = img.shape[:2]
    cx, cy = min(max(c[0], size + 1), w - size - 2), min(max(c[1], size + 1), h - size - 2)
    pts = [(0, 0, 0), (1, 0, 1), (-1, 0, 1), (0, 1, 1), (0, -1, 1)]
    for k in range(2, size + 1):
        tone = 1 if k <= size // 2 else (2 if k < size else 3)
        pts += [(k, 0, tone), (-k, 0, tone), (0, k, tone), (0, -k, tone)]
    if diagonal:
        pts += [(1, 1, 2), (-1, -1, 2), (1, -1, 2), (-1, 1, 2)]
    for dx, dy, tone in pts:
        x, y = cx + dx, cy + dy
        if 0 <= x < w and 0 <= y < h:
            img[y, x, :3] = colours[tone]
            img[y, x, 3] = 255


def _speed_lines(img, direction, seed):
    """Thin streaks on empty pixels, trailing from the silhouette: direction -1 behind a
    right-facing runner, +1 ahead of it (a leap backwards)."""
    h, w = img.shape[:2]
    solid = img[..., 3] > 0
    rng = np.random.RandomState(seed)
    for y in (10, 18, 27, 35, 44, 53):
        row = h - y
        cols = np.nonzero(solid[row])[0]
        if not cols.size:
            continue
        start = cols.min() - 2 if direction < 0 else cols.max() + 2
        length = int(8 + rng.randint(0, 14))
        gap = int(rng.randint(0, 4))
        for k in range(length):
            x = start + direction * (gap + k)
            if not 1 <= x < w - 1 or solid[row, x]:
                continue
            t = k / length
            if t > 0.55 and px.bayer(h, w)[row, x] < (t - 0.55) * 2.2:
                continue
            img[row, x, :3] = SPEED[0 if t < 0.25 else (1 if t < 0.6 else 2)]
            img[row, x, 3] = 255


def _impact(img, cv, x, size):
    """The blade biting the earth at x: a cloud of thrown-up dirt in front of everything, with
    chips of stone flying out of it."""
    mat = MATERIALS["dust"]
    cloud = np.zeros((cv.h, cv.w), bool)
    for dx, dy, r in ((0.0, 2.5, 1.0), (-7.0, 1.5, 0.7), (7.0, 1.5, 0.6), (-3.0, 7.0, 0.6), (4.0, 6.5, 0.5)):
        cloud |= cv.ellipse((x + dx * size, dy * size), 4.6 * r * size, 3.4 * r * size)
    cloud &= px.bayer(cv.h, cv.w) < 0.85
    tone = rig.tone_map(cloud, 1, 1)
    for k, col in enumerate((mat.shadow, mat.base, mat.light)):
        sel = cloud & (tone == k)
        img[sel, :3] = col
        img[sel, 3] = 255
    for dx, dy in ((-10.0, 13.0), (8.0, 14.0), (12.0, 9.0), (-14.0, 8.0), (1.0, 17.0), (-5.0, 15.0)):
        c, r = cv.pixel((x + dx * size * 0.8, dy * size * 0.8))
        if 0 < c < cv.w - 1 and 0 < r < cv.h - 1:
            img[r, c, :3] = mat.light
            img[r, c, 3] = 255


def render(pose, seed=0):
    img = rig.render(NOMAD, pose, FW, FH, builder=build_nomad, facing=FACING)
    cv = rig.Canvas(FW, FH, FACING)
    sk = Skeleton(NOMAD, pose)
    if "speed+" in pose.tags or "speed-" in pose.tags:
        _speed_lines(img, -FACING if "speed+" in pose.tags else FACING, seed)
    if "flare" in pose.tags:                      # the eyes flare just before a cut
        _star(img, cv.pixel(sk.eyes()[0]), TELL, 3)
    if "flash" in pose.tags:                      # the damage frame: the eyes blaze, the edge flashes
        _star(img, cv.pixel(sk.eyes()[0]), TELL, 4)
        _star(img, cv.pixel(sk.blade_point(0.72)), TELL, 5)
    for tag, t, size in (("glint", 0.55, 3), ("glint2", 0.9, 4)):
        if tag in pose.tags:                      # a glint running up the raised blade
            _star(img, cv.pixel(sk.blade_point(t)), TELL, size)
    for tag, size in (("impact", 1.0), ("settling", 0.75)):
        if tag in pose.tags:
            _impact(img, cv, IMPACT_X, size)
    if "dim" in pose.tags:                        # the eyes gutter: only the near one, faint
        c = cv.pixel(sk.eyes()[0])
        img[c[1], c[0], :3] = MATERIALS["eye"].shadow
    return img


def build():
    """Every clip's frames (uint8 RGBA), in row order."""
    return [(label, [render(p, 31 * row + i) for i, p in enumerate(POSES[label]())])
            for row, (label, _, _, _) in enumerate(CLIPS)]


def sheet(clips):
    return px.sheet(clips, FW, FH)


def anim_data(clips):
    lines = [f"size : ({FW},{FH})", "first Frame Position : (0,0)", ""]
    for (label, rate, tail, k), (_, frames) in zip(CLIPS, clips):
        lines.append(clip_line(label, len(frames), rate, None if tail is None else (tail, k)))
    return "\n".join(lines) + "\n"


# ---------------------------------------------------------------- checks


def read_anim_data(text):
    """Read the file the way the game does, field by field (C fscanf); every field must match."""
    reader = FieldReader(text, "Nomad AnimData")
    need = reader.need
    size = need("size : (%d,%d)\n")
    first = need("first Frame Position : (%d,%d)\n\n")
    rows = [read_clip(reader, label, tail) for label, _, tail, _ in CLIPS]
    reader.finish()
    return tuple(size), tuple(first), rows


def is_tell(img):
    """Pixels in the white-hot colours of the tell (nothing else on the sheet is this bright)."""
    rgb = img[..., :3].astype(int)
    return (img[..., 3] == 255) & (rgb.min(axis=-1) >= 190) & (rgb[..., 0] >= 250) & (rgb[..., 1] >= 240)


def check(text, img, clips):
    """The faults the game would not report: a field that stops scanning, a row that wraps into the
    next clip, a damage frame that never comes or carries no tell, a clip that never finishes, a
    body that does not stand on its origin or fill its hurtbox, art cut off by the frame edge."""
    raw = text.encode("ascii")
    if raw.startswith(b"\xef\xbb\xbf") or b"\r" in raw:
        raise ValueError("Nomad AnimData must be plain ASCII with LF line ends")
    (fw, fh), first, rows = read_anim_data(text)
    if (fw, fh) != (FW, FH) or first != (0, 0):
        raise ValueError(f"Nomad AnimData size {fw}x{fh} / first {first}")
    if img.shape[:2] != (fh * len(CLIPS), fw * max(n for _, n, _, _ in rows)):
        raise ValueError(f"Nomad sheet is {img.shape[1]}x{img.shape[0]}")
    for (label, n, rate, k), (_, frames) in zip(rows, clips):
        if not (n >= 1 and n == len(frames) and 1 <= rate <= 60 and n * fw <= img.shape[1]):
            raise ValueError(f"Nomad {label}: {n} frames at {rate} fps")
        if k is not None and not 1 <= k <= n:
            raise ValueError(f"Nomad {label}: frame {k} of {n}")
        if label.endswith("_ATTACK"):
            if not 2 <= k < n:
                raise ValueError(f"Nomad {label}: damage frame {k} leaves no wind-up or follow-through")
            if is_tell(frames[k - 1]).sum() < 12:
                raise ValueError(f"Nomad {label}: no tell on the damage frame")
    for label, frames in clips:
        for i, f in enumerate(frames):
            if f[0].any() or f[:, 0].any() or f[:, -1].any():
                raise ValueError(f"Nomad {label} {i}: cut off by the frame edge")
            if not f[-1, :, 3].any():
                raise ValueError(f"Nomad {label} {i}: nothing on the ground row")
            if label in ("IDLE", "WALK") and is_tell(f).any():
                raise ValueError(f"Nomad {label} {i}: tell colours outside an attack")
            if label == "IDLE":
                solid = f[..., 3] == 255
                top = np.nonzero(solid.any(axis=1))[0][0]
                body = solid[:, FW // 2 - 13:FW // 2 + 13]
                if not (58 <= FH - top <= 70 and body[-int(HURTBOX[1]):].mean() > 0.3):
                    raise ValueError(f"Nomad IDLE {i}: body {FH - top} tall does not fill the hurtbox")


# ---------------------------------------------------------------- review sheet


def pose_sheet(clips, out):
    """docs/nomad_poses.png: every frame at x3, one labelled row per clip; the hurtbox in grey,
    the attack box of each damage frame in red, the reach as a tick on the ground."""
    scale, label_w, pad = 3, 250, 6
    cols = max(len(frames) for _, frames in clips)
    cw, ch = FW * scale, FH * scale
    W = label_w + cols * (cw + pad) + pad
    H = len(clips) * (ch + pad) + pad
    img = Image.new("RGBA", (W, H), (18, 20, 26, 255))
    draw = ImageDraw.Draw(img)
    font = ImageFont.truetype(str(out / "Assets/Fonts/ButtonFont2.ttf"), 16)
    grounds = [(16, 24, 22, 255), (28, 44, 36, 255)]
    for row, ((label, rate, tail, k), (_, frames)) in enumerate(zip(CLIPS, clips)):
        y = pad + row * (ch + pad)
        draw.text((pad, y + 8), label, font=font, fill=(225, 220, 205, 255))
        info = f"{len(frames)} x {rate} fps"
        if tail == "Damage":
            info += f", hits on {k}"
        elif tail == "Dash":
            info += f", dash frame {k}"
        draw.text((pad, y + 30), info, font=font, fill=(150, 150, 160, 255))
        draw.text((pad, y + 52), f"{len(frames) / rate:.2f} s", font=font, fill=(150, 150, 160, 255))
        for col, f in enumerate(frames):
            x = label_w + col * (cw + pad)
            draw.rectangle([x, y, x + cw - 1, y + ch - 1], grounds[(row + col) % 2])
            hw, hh = int(round(HURTBOX[0] * scale)), int(round(HURTBOX[1] * scale))
            hx0 = x + cw // 2 - hw // 2
            draw.rectangle([hx0, y + ch - hh, hx0 + hw - 1, y + ch - 1], outline=(80, 90, 120, 255))
            reach = x + cw // 2 + int(REACH * scale)
            draw.line([reach - 1, y + ch - 10, reach - 1, y + ch - 1], fill=(120, 120, 130, 255))
            if tail == "Damage" and col == k - 1:
                box_h = ch // 2 if label == "LIGHT_ATTACK" else ch
                draw.rectangle([x + cw // 2, y + ch - box_h, x + cw - 1, y + ch - 1],
                               outline=(200, 60, 50, 255))
            img.alpha_composite(Image.fromarray(px.upscale(f, scale), "RGBA"), (x, y))
    return px.save_png(np.array(img), out / "docs/nomad_poses.png")


def generate(out):
    clips = build()
    img, text = sheet(clips), anim_data(clips)
    check(text, img, clips)
    png = px.save_png(img, out / SHEET)
    txt = out / DATA
    txt.parent.mkdir(parents=True, exist_ok=True)
    txt.write_bytes(text.encode("ascii"))
    return [png, txt, pose_sheet(clips, out)]

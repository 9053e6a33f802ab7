"""The merchant: Sprites/Merchant/blackSmith.png, a blacksmith hammering at his anvil.

One looping clip of 12 frames of 123 x 129 at 10 fps, drawn x3 from the bottom centre of the
frame (the merchant's point is the floor under him). The game plays the anvil's ring when the clip
reaches frame 5 (counted from 0), so that is the frame where the hammer lands on the work, with a
burst of sparks and the bar flaring white; the sparks fly on frame 6 as the hammer bounces, and
embers fall on frame 7. Between blows he rests the hammer on the work, turns the bar with his
tongs and breathes, then lifts, gathers over his head (frame 3) and swings down (frame 4, a smear).

A burly, bald smith with a great ginger beard, bare arms, a leather apron over a dark shirt, heavy
boots; seen from the side facing right, the anvil on a stump in front of him, a glowing bar held on
it with tongs. Posed with the character rig (`rig.py`) through its own part builder; his head
reaches about 76 tx (the hero is about 60), the raised hammer about 100. The left of the frame is
kept low, under the merchant menu's buttons.
"""
import math

import numpy as np

from . import pixel as px
from . import rig
from . import statues
from .rig import Part, Pose, Smear, add, two_bone, vec

FW, FH = 123, 129
FRAMES, RATE = 12, 10
STRIKE = 5                        # the frame the anvil sounds on (0-based)
ORIGIN = (61.5, 129)

M = rig.Material.of
MAT = {
    "skin": M("#2a120a", "#94563a", "#c47e58", "#e0a07a", "#f6c49e"),
    "beard": M("#0a0604", "#2a1810", "#44281a", "#603a24", "#7c4e32"),
    "apron": M("#100a08", "#33241c", "#4a362a", "#644a38", "#7e624c"),
    "shirt": M("#0c0a10", "#27233a", "#383250", "#4e476c", "#675e8a"),
    "legs": M("#0a090e", "#24222c", "#34323e", "#484654", "#5e5c6c"),
    "boots": M("#0c0806", "#2a1c14", "#3e2a1e", "#563c2a", "#6e4e38"),
    "iron": M("#07080c", "#2c303e", "#434a5c", "#656e86", "#98a2ba"),
    "wood": M("#120a06", "#3c2818", "#5a3c24", "#7a5434", "#96704a"),
    "brass": M("#2a1608", "#a8701f", "#d9a53a", "#f5d272", "#fff3c4"),
    "smear": M("#5a3a0c", "#b8742a", "#f0b44a", "#ffe08a", "#fffbe4"),
    "dust": M("#000000", "#2a2420", "#40362c", "#5a4c3c", "#5a4c3c"),
    "ghost": px.rgb("#3a2812"),
}
HOT = px.ramp("#7a1408", "#c8380c", "#f07a1c", "#ffc040", "#fff2a8", "#ffffff")   # darkest first
SPARKS = px.ramp("#d86a14", "#ffa830", "#ffe070", "#ffffff")

SMITH = rig.Body(thigh=18.0, shin=18.0, upper_arm=17.0, forearm=15.5, torso=30.0, shoulder=26.5,
                 neck=2.0, head_r=(7.8, 8.4),
                 limb_r={"thigh": (5.4, 4.4), "shin": (4.2, 3.4), "upper_arm": (5.0, 4.2),
                         "forearm": (4.4, 3.4)},
                 materials=MAT)

# the anvil and its stump (rig coordinates: x right of the frame's centre, y up from the floor)
AX = 3.0                          # the anvil face's left end


def _at(points, k=1.2):
    return [(AX + k * x, k * y) for x, y in points]


STUMP = _at([(2.0, 0.0), (32.0, 0.0), (30.5, 15.5), (3.5, 15.5)])
ANVIL_FOOT = _at([(5.0, 15.0), (29.0, 15.0), (27.0, 19.0), (7.0, 19.0)])
ANVIL_WAIST = _at([(11.5, 18.5), (22.5, 18.5), (24.0, 25.0), (10.0, 25.0)])
ANVIL_FACE = _at([(0.0, 24.5), (36.0, 24.5), (36.0, 30.5), (0.0, 30.5)])
HORN = _at([(35.5, 25.0), (39.5, 26.2), (43.0, 28.6), (44.6, 29.6), (42.8, 30.5), (35.5, 30.5)])
FACE_TOP = 1.2 * 30.5
WORK = (AX + 1.2 * 5.0, AX + 1.2 * 25.0)      # the bar lying on the face, from x to x
STRIKE_AT = (AX + 1.2 * 15.0, FACE_TOP + 2.0)  # where the hammer's face meets the bar
HANDLE = 18.0                     # hand to the middle of the hammer's head
HEAD = (6.0, 3.8)                 # half length (across the handle), half thickness


class Skeleton:
    def __init__(self, body, pose):
        self.up = up = 90.0 - pose.lean
        self.fwd = vec(up - 90)
        self.hip = pose.hip
        self.body = body
        self.neck = self.tl(body.torso, 0.5)
        self.sh_f = self.tl(body.shoulder, 1.0)
        self.sh_b = self.tl(body.shoulder, -2.0)
        self.head_up = up - pose.head
        self.head_c = add(self.neck, vec(self.head_up, body.neck + body.head_r[1] - 2.0))
        self.elbow_f, self.hand_f = two_bone(self.sh_f, add(self.sh_f, pose.hand_f), body.upper_arm,
                                             body.forearm, -1)
        self.elbow_b, self.hand_b = two_bone(self.sh_b, add(self.sh_b, pose.hand_b), body.upper_arm,
                                             body.forearm, -1)

    def tl(self, u, v):
        return add(add(self.hip, vec(self.up, u)), self.fwd, v)

    def hl(self, u, v):
        return add(add(self.head_c, vec(self.head_up, u)), vec(self.head_up - 90), v)


def hammer_head_centre(sk, angle):
    return add(sk.hand_f, vec(angle), HANDLE)


def build_smith(body, pose, cv):
    m = body.materials
    sk = Skeleton(body, pose)
    tl, hl = sk.tl, sk.hl
    parts = []

    # the stump and the anvil
    stump = cv.polygon(STUMP)
    sp = Part("stump", stump, m["wood"], "stump")
    for x0 in (14.0, 25.0, 33.0):
        sp.details.append((cv.capsule((AX + x0, 1.5), (AX + x0 + 0.6, 16.5), 0.45) & stump, 0))
    sp.details.append((cv.capsule((AX + 3.0, 18.2), (AX + 37.0, 18.2), 0.5) & stump, 2))
    parts.append(sp)
    foot = cv.polygon(ANVIL_FOOT)
    waist = cv.polygon(ANVIL_WAIST)
    face = cv.polygon(ANVIL_FACE) | cv.polygon(HORN)
    parts.append(Part("anvil_foot", foot, m["iron"], "anvil_foot"))
    parts.append(Part("anvil_waist", waist, m["iron"], "anvil_waist"))
    fp = Part("anvil_face", face, m["iron"], "anvil_face")
    fp.details.append(((cv.y > FACE_TOP - 1.0) & face, 3))        # the polished top
    fp.details.append(((np.abs(cv.x - AX - 4.5) < 0.7) & (np.abs(cv.y - FACE_TOP + 4.0) < 1.5), "ink"))
    parts.append(fp)

    # the far arm with the tongs holding the bar on the anvil
    arm_b = cv.capsule(sk.sh_b, sk.elbow_b, *body.limb_r["upper_arm"]) | \
        cv.capsule(sk.elbow_b, sk.hand_b, *body.limb_r["forearm"])
    parts.append(Part("arm_b", arm_b, m["skin"], "arm_b", dim=True))
    jaw = (WORK[0] + 2.0, FACE_TOP + 1.0 + 0.08 * pose.cape)        # pose.cape turns the bar a little
    tongs = cv.capsule(sk.hand_b, jaw, 1.0) | cv.capsule(add(sk.hand_b, (0.0, -1.6)), add(jaw, (0.4, -0.8)), 0.9)
    parts.append(Part("tongs", tongs, m["iron"], "tongs", dim=True))
    parts.append(Part("hand_b", cv.ellipse(sk.hand_b, 2.8, 2.6), m["skin"], "arm_b", dim=True))

    # the far leg
    def leg(name, off, foot_at, dim):
        hj = add(sk.hip, sk.fwd, off)
        knee, ankle = two_bone(hj, foot_at, body.thigh, body.shin, +1)
        mask = cv.capsule(hj, knee, *body.limb_r["thigh"]) | cv.capsule(knee, ankle, *body.limb_r["shin"])
        boot = cv.capsule(add(ankle, (-2.0, -0.5)), add(ankle, (5.2, -0.8)), 3.0, 2.4) | \
            cv.capsule(ankle, add(ankle, (0.0, 5.0)), 3.3)
        boot &= cv.y >= 0.0
        lp = Part(name, mask & ~boot, m["legs"], name, dim=dim)
        bp = Part(name + "_boot", boot, m["boots"], name, dim=dim)
        bp.details.append((cv.capsule(add(ankle, (-2.5, 4.2)), add(ankle, (3.0, 4.2)), 0.5) & boot, 2))
        return [lp, bp]

    parts += leg("leg_b", -3.0, pose.foot_b, True)

    # the body: a barrel chest in a dark shirt, a belly, broad shoulders
    trunk = cv.polygon([tl(-2.0, -8.0), tl(-2.0, 8.5), tl(8.0, 11.5), tl(16.0, 11.0), tl(22.0, 9.5),
                        tl(26.5, 5.0), tl(27.0, -4.0), tl(24.0, -8.5), tl(14.0, -9.5), tl(4.0, -9.0)])
    tp = Part("trunk", trunk, m["shirt"], "trunk")
    tp.details.append((cv.capsule(tl(20.0, -5.0), tl(12.0, -6.5), 0.5) & trunk, 0))    # a crease
    parts.append(tp)
    parts += leg("leg_f", 2.5, pose.foot_f, False)

    # the apron: from the chest to below the knees, a strap over the shoulder, a pocket
    apron = cv.polygon([tl(22.5, 4.0), tl(22.5, 10.5), tl(10.0, 12.2), tl(0.0, 10.8), tl(-14.0, 10.5),
                        tl(-15.0, 1.5), tl(-3.0, -1.0), tl(8.0, 2.0)])
    ap = Part("apron", apron, m["apron"], "apron")
    ap.details.append((cv.capsule(tl(2.0, 4.0), tl(2.0, 11.0), 0.5) & apron, 0))       # the belt line
    pocket = cv.polygon([tl(-2.0, 6.0), tl(-2.0, 11.0), tl(-8.0, 11.2), tl(-8.0, 6.2)]) & apron
    ap.details.append((px.outline_of(pocket) & apron & ~pocket, 0))
    ap.details.append((cv.capsule(tl(-13.0, 3.0), tl(-13.5, 9.5), 0.45) & apron, 2))   # the lit hem
    parts.append(ap)
    strap = cv.capsule(tl(22.5, 6.0), tl(25.5, -3.0), 1.3)
    parts.append(Part("strap", strap & ~apron, m["apron"], "strap"))
    buckle = cv.ellipse(tl(2.2, 7.5), 1.6, 1.4)
    parts.append(Part("buckle", buckle, m["brass"], "buckle"))


    # the head in profile: bald, a heavy brow, a big nose, an ear, a great dark beard
    skull = cv.ellipse(hl(0.5, -0.5), body.head_r[0], body.head_r[1], sk.head_up - 90)
    nose = cv.ellipse(hl(0.2, 7.8), 1.9, 2.5, sk.head_up - 90)
    hp = Part("head", skull | nose, m["skin"], "head")
    hp.details.append((cv.capsule(hl(1.8, 3.6), hl(1.8, 6.4), 1.1) & skull, 0))        # eye socket
    hp.details.append((cv.capsule(hl(1.8, 5.2), hl(1.8, 5.6), 0.55) & skull, "ink"))   # the eye
    hp.details.append((cv.capsule(hl(3.4, 3.0), hl(3.2, 7.4), 0.6) & skull, 2))        # lit brow
    ear = cv.ellipse(hl(0.2, -1.6), 1.7, 2.4, sk.head_up - 90)
    hp.details.append((ear & ~px.erode(ear), 0))
    hp.details.append((cv.capsule(hl(0.6, -1.4), hl(-0.6, -1.6), 0.45), "ink"))
    parts.append(hp)
    beard = cv.polygon([hl(-1.4, 8.8), hl(-3.6, 9.4), hl(-9.0, 8.2), hl(-14.0, 5.0), hl(-15.5, 1.0),
                        hl(-11.0, -2.4), hl(-5.0, -3.6), hl(-2.0, -3.0), hl(-0.6, -0.2), hl(-1.6, 3.6)])
    beard |= cv.capsule(hl(-1.6, 5.2), hl(-2.2, 9.4), 1.3)                          # moustache
    bp = Part("beard", beard, m["beard"], "beard")
    for a0, a1 in ((hl(-4.0, 5.5), hl(-11.5, 3.5)), (hl(-4.5, 1.0), hl(-11.0, 0.0))):
        bp.details.append((cv.capsule(a0, a1, 0.5) & beard, 0))
    parts.append(bp)
    fringe = cv.ellipse(hl(-0.8, -5.0), 2.6, 4.0, sk.head_up - 90) & skull
    parts.append(Part("fringe", fringe, m["beard"], "hair"))

    # the hammer, then the near arm over it
    angle = pose.weapon
    head_c = hammer_head_centre(sk, angle)
    d, n = vec(angle), vec(angle + 90)
    handle = cv.capsule(add(sk.hand_f, d, -3.5), head_c, 1.3)
    head = cv.polygon([add(add(head_c, n, HEAD[0]), d, HEAD[1]), add(add(head_c, n, HEAD[0]), d, -HEAD[1]),
                       add(add(head_c, n, -HEAD[0]), d, -HEAD[1]), add(add(head_c, n, -HEAD[0]), d, HEAD[1])])
    for sm in pose.smear:
        parts.append(rig._smear_part(cv, sm, m))
    parts.append(Part("handle", handle & ~head, m["wood"], "hammer"))
    parts.append(Part("hammer", head, m["iron"], "hammer_head"))
    arm_f = cv.capsule(sk.sh_f, sk.elbow_f, *body.limb_r["upper_arm"]) | \
        cv.capsule(sk.elbow_f, sk.hand_f, *body.limb_r["forearm"])
    af = Part("arm_f", arm_f, m["skin"], "arm_f")
    bicep = cv.ellipse(((sk.sh_f[0] + sk.elbow_f[0]) / 2, (sk.sh_f[1] + sk.elbow_f[1]) / 2), 2.2, 1.6)
    af.details.append((bicep & arm_f & ~px.shift(bicep, 1, 1), 2))
    cuff = cv.capsule(add(sk.hand_f, vec(angle + 180), 3.0), add(sk.hand_f, vec(angle + 180), 5.0), 3.0)
    af.details.append((cuff & arm_f, 0))
    parts.append(af)
    parts.append(Part("hand_f", cv.ellipse(sk.hand_f, 3.0, 2.8), m["skin"], "arm_f"))
    parts.append(Part("sleeve", cv.ellipse(sk.sh_f, 4.6, 4.2), m["shirt"], "sleeve"))
    return parts, sk.hand_f


# ---------------------------------------------------------------- poses

REST = Pose(hip=(-24.0, 35.0), lean=16.0, head=8.0, foot_f=(-10.0, 3.5), foot_b=(-41.0, 3.5),
            hand_f=(24.0, -12.0), hand_b=(24.0, -16.0), weapon=-24.0, cape=0.0)


def hand_for(pose, head_at, angle):
    """The near hand's offset from its shoulder that puts the hammer's head at `head_at`."""
    sk = Skeleton(SMITH, pose)
    hand = add(head_at, vec(angle), -HANDLE)
    return (hand[0] - sk.sh_f[0], hand[1] - sk.sh_f[1])


def resting(**kw):
    """A pose whose hammer rests on the bar, the face of its head on the work."""
    p = REST.but(**kw)
    rest_head = (STRIKE_AT[0], STRIKE_AT[1] + HEAD[1] + 0.2)
    return p.but(hand_f=hand_for(p, rest_head, p.weapon))


def poses():
    """Rest, lift, raise, gather overhead, swing down, strike (frame 5), bounce, settle, turn the
    bar, breathe, ready."""
    def breath(b):
        return dict(hip=(-24.0, 35.0 - 0.7 * b), lean=16.0 + 1.5 * b)
    rest0 = resting(**breath(0.0))
    lift = REST.but(hip=(-24.5, 35.3), lean=12.0, head=4.0, hand_f=(14.0, 3.0), weapon=45.0)
    raise_ = REST.but(hip=(-25.0, 35.8), lean=6.0, head=0.0, hand_f=(2.0, 22.0), weapon=112.0)
    top = REST.but(hip=(-26.0, 36.0), lean=1.0, head=-5.0, hand_f=(-5.0, 24.0), weapon=158.0,
                   hand_b=(22.0, -17.0))
    down = REST.but(hip=(-23.5, 34.4), lean=19.0, head=8.0, hand_f=(24.0, 10.0), weapon=38.0)
    hit = resting(hip=(-23.0, 33.4), lean=23.0, head=12.0, weapon=-26.0)
    bounce = hit.but(hip=(-23.2, 33.8), lean=22.0, weapon=-14.0)
    bounce = bounce.but(hand_f=hand_for(bounce, (STRIKE_AT[0] - 1.0, STRIKE_AT[1] + 8.0), -14.0))
    settle = resting(hip=(-23.6, 34.5), lean=20.0, head=10.0, weapon=-24.0)
    turn = resting(hip=(-23.8, 34.7), lean=19.0, head=13.0, weapon=-24.0, hand_b=(25.5, -14.5), cape=6.0)
    turn2 = resting(**breath(1.0), head=11.0, hand_b=(23.5, -16.0), cape=-4.0)
    breathe = resting(**breath(0.5), head=8.0)
    ready = resting(hip=(-24.2, 35.2), lean=14.0, head=6.0, weapon=-18.0)
    # the smear of the downswing: round the shoulder from the raised hammer to the work
    sk = Skeleton(SMITH, down)
    reach = math.hypot(*down.hand_f) + HANDLE
    down = down.but(smear=(Smear(sk.sh_f, reach - 10.0, reach + 2.0, 150.0, 32.0),))
    return [rest0, lift, raise_, top, down, hit, bounce, settle, turn, turn2, breathe, ready]


# ---------------------------------------------------------------- frames


def bar(img, cv, heat, flash):
    """The glowing bar lying on the anvil's face, hot at its middle."""
    x0, x1 = WORK
    y = FACE_TOP + 1.0
    body = (cv.x >= x0) & (cv.x <= x1) & (np.abs(cv.y - y) <= 1.0)
    ink = px.outline_of(body) & (img[..., 3] == 0)
    img[ink, :3] = MAT["iron"].ink
    img[ink, 3] = 255
    t = 1.0 - np.abs(cv.x - (x0 + x1) / 2.0) / ((x1 - x0) / 2.0)
    lvl = np.clip(np.round(t * 3.5 + heat + (1.5 if flash else 0.0)), 0, 5).astype(int)
    for k in range(6):
        sel = body & (lvl == k)
        img[sel, :3] = HOT[k]
        img[sel, 3] = 255
    top = body & ~px.shift(body, 1, 0)
    img[top, :3] = np.minimum(HOT[np.clip(lvl[top] + 1, 0, 5)], 255)


def sparks(img, cv, stage):
    """The burst where the hammer lands (stage 0), flying (1), falling embers (2)."""
    cx, cy = STRIKE_AT
    rng = np.random.RandomState(517)
    n = 14
    for k in range(n):
        ang = math.radians(15 + 150 * rng.rand())
        speed = 8 + 10 * rng.rand()
        t = (0.35, 1.0, 1.7)[stage]
        x = cx + math.cos(ang) * speed * t * 1.3
        y = cy + math.sin(ang) * speed * t - 9.0 * t * t * (0.5 + 0.5 * rng.rand())
        if y < 1:
            continue
        if stage == 2 and k % 2:
            continue
        col, row = cv.pixel((x, y))
        trail = 2 if stage == 1 else (1 if stage == 0 else 0)
        for j in range(trail + 1):
            c2, r2 = cv.pixel((x - math.cos(ang) * j * 1.2, y - math.sin(ang) * j * 1.0 + 0.6 * j * t))
            if 0 <= r2 < FH and 0 <= c2 < FW:
                img[r2, c2, :3] = SPARKS[max(3 - j - stage, 0)]
                img[r2, c2, 3] = 255
        if 0 <= row < FH and 0 <= col < FW:
            img[row, col, :3] = SPARKS[3 - stage]
            img[row, col, 3] = 255
    if stage == 0:
        c, r = cv.pixel((cx + 1.0, cy + 1.0))
        for d in range(-5, 6):
            tone = 3 if abs(d) < 2 else (2 if abs(d) < 4 else 1)
            for rr, cc in ((r + d, c), (r, c + d)):
                if 0 <= rr < FH and 0 <= cc < FW:
                    img[rr, cc, :3] = SPARKS[tone]
                    img[rr, cc, 3] = 255
        for d in (-2, -1, 1, 2):
            for rr, cc in ((r + d, c + d), (r + d, c - d)):
                if 0 <= rr < FH and 0 <= cc < FW:
                    img[rr, cc, :3] = SPARKS[2 if abs(d) == 1 else 1]
                    img[rr, cc, 3] = 255


def frame(i, pose):
    img = rig.render(SMITH, pose, FW, FH, builder=build_smith).astype(float)
    cv = rig.Canvas(FW, FH)
    heat = {5: 1.0, 6: 0.8, 7: 0.6}.get(i, 0.4)
    # the bar's glow warms the anvil's face, the hammer and the hands near it, more on the blow
    centre = ((WORK[0] + WORK[1]) / 2.0, FACE_TOP + 2.0)
    statues.warm_light(img, centre, 10.0 if i == STRIKE else 8.0, 0.26 if i == STRIKE else 0.14, cv)
    img = img.astype(np.uint8)
    bar(img, cv, heat, flash=(i == STRIKE))
    if i == STRIKE:
        sparks(img, cv, 0)
    elif i == STRIKE + 1:
        sparks(img, cv, 1)
    elif i == STRIKE + 2:
        sparks(img, cv, 2)
    return img


def build():
    return [frame(i, p) for i, p in enumerate(poses())]


def check(frames):
    """The faults the game would not show: a wrong frame count or size, art cut by the frame's
    edge, a strike that misses the frame the sound plays on, a smith who floats."""
    if len(frames) != FRAMES:
        raise ValueError(f"blacksmith: {len(frames)} frames")
    for i, f in enumerate(frames):
        if f.shape[:2] != (FH, FW):
            raise ValueError(f"blacksmith frame {i} is {f.shape[1]}x{f.shape[0]}")
        if f[0].any() or f[:, 0].any() or f[:, -1].any():
            raise ValueError(f"blacksmith frame {i}: cut off by the frame edge")
        if not f[-1, :, 3].any():
            raise ValueError(f"blacksmith frame {i}: nothing stands on the floor")
    heights = [hammer_head_centre(Skeleton(SMITH, p), p.weapon)[1] for p in poses()]
    if min(range(FRAMES), key=lambda i: heights[i]) not in (STRIKE,) and \
            heights[STRIKE] > min(heights) + 0.5:
        raise ValueError("blacksmith: the hammer is not lowest on the strike frame")


def sheet(frames):
    return px.sheet([("WORK", frames)], FW, FH)


def generate(out):
    frames = build()
    check(frames)
    return [px.save_png(sheet(frames), out / "Assets/Sprites/Merchant/blackSmith.png")]

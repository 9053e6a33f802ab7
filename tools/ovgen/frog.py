"""The Frog: Sprites/Enemies/frog.png and docs/frog_poses.png.

The game fixes this sheet's layout in code (there is no data file): frames of 64 x 48, one clip per
row, IDLE 8 frames at 6 fps (loops), JUMP 1 frame (held for the whole leap), DEAD 3 frames at 3 fps
(plays once and holds), so the sheet is 512 x 144. The origin is the bottom centre and the sheet
looks left.

A squat marsh toad: olive back with moss blotches and pale warts, a cream belly and throat sac,
big amber eyes on top of a wide head. Sitting, it fills the 35 x 25 hurtbox on the frame's bottom
centre. The hurtbox is also the leap's attack box, so the JUMP frame keeps the body on that box
and throws the hind legs out behind it: the body stretched nose-up, arms reaching for the landing,
mouth agape and a flash in the eye (the tell: the whole leap hurts). IDLE breathes and croaks
twice with the throat sac, then blinks. DEAD: struck with a lolling tongue, rolled on its side,
belly up with its legs in the air.
"""
from dataclasses import dataclass
import math

import numpy as np

from . import pixel as px
from . import rig
from .creature import Key, SheetRow, compose, pose_sheet, relief_tone, star
from .rig import Part

FW, FH = 64, 48
FACING = -1
PATH = "Assets/Sprites/Enemies/frog.png"
# the layout fixed in the game: label, frames, frame rate
CLIPS = [("IDLE", 8, 6), ("JUMP", 1, 1), ("DEAD", 3, 3)]
HURTBOX = (35, 25)
SOLE = 1.0         # the feet rest one pixel up, so their ink line is the frame's bottom row


def _mat(*hexes):
    return rig.Material.of(*hexes)


SKIN = _mat("#0e1306", "#3e5420", "#60782c", "#8ea43c", "#c4d468")
BLOTCH = _mat("#0e1306", "#2c4018", "#3e5420", "#4e6a26", "#60782c")
BELLY = _mat("#1a1408", "#a89860", "#d8c888", "#eadca4", "#f2e6b4")
EYE = _mat("#120c04", "#c07a14", "#f0a828", "#ffd460", "#ffe488")
MOUTH = _mat("#1a0606", "#6a1e24", "#a83a3a", "#d86a5a", "#f0a090")
TELL = [px.rgb(h) for h in ("#ffffff", "#fff6c0", "#ffd460", "#e09020")]

# ---------------------------------------------------------------- poses


@dataclass(frozen=True)
class Hop(Key):
    """One key pose, in the toad's own frame (x forward, y up, the origin under its middle);
    `at` and `turn` place that frame in the picture (turn: degrees, positive noses up)."""
    at: tuple = (0.0, 0.0)
    turn: float = 0.0
    roll: float = 1.0                # 1 upright, -1 on its back (the toad's height is scaled by it)
    body: tuple = (14.0, 9.0)        # the trunk's half-length and half-height
    hump: float = 0.0                # the back arching up
    head: float = 0.0                # the head raised (degrees)
    knee: tuple = (-3.0, 5.5)        # near hind leg: knee, heel, toe tip
    heel: tuple = (-13.0, 2.0)
    toe: tuple = (-1.0, 0.6)
    elbow: tuple = (9.0, 4.5)        # near arm: elbow, hand
    hand: tuple = (11.5, 0.8)
    sac: float = 0.0                 # throat sac, 0 .. 1
    mouth: float = 0.0               # 0 shut .. 1 agape
    eyes: float = 1.0                # 1 open, 0 shut; -1 crossed out
    tongue: float = 0.0


SIT = Hop()


class Frame:
    """The toad's frame placed in rig space: its height scaled by `roll` (so -1 turns it on its
    back, head still forward), then turned by `turn` and moved to `at`."""

    def __init__(self, pose, cv):
        self.pose, self.cv = pose, cv
        self.c, self.s = math.cos(math.radians(pose.turn)), math.sin(math.radians(pose.turn))
        self.flat = max(abs(pose.roll), 0.3)

    def pt(self, p):
        x, y = p[0], p[1] * self.pose.roll
        return (self.pose.at[0] + x * self.c - y * self.s, SOLE + self.pose.at[1] + x * self.s + y * self.c)

    def ang(self, a):
        return (a if self.pose.roll >= 0 else -a) + self.pose.turn

    def ellipse(self, c, rx, ry, a=0.0):
        return self.cv.ellipse(self.pt(c), rx, ry * self.flat, self.ang(a))


def local(p, at, turn):
    """The toad-frame point that `Frame` puts at rig point p (upright)."""
    c, s = math.cos(math.radians(turn)), math.sin(math.radians(turn))
    x, y = p[0] - at[0], p[1] - at[1] - SOLE
    return (x * c + y * s, -x * s + y * c)


def _leg(cv, fr, hip, knee, heel, toe, scale=1.0):
    """A hind leg folded in a Z: a fat thigh, a shin and a long webbed foot."""
    P = fr.pt
    thigh = cv.capsule(P(hip), P(knee), 5.2 * scale, 3.0 * scale)
    thigh |= fr.ellipse(((hip[0] + knee[0]) / 2, (hip[1] + knee[1]) / 2),
                        0.5 * math.hypot(knee[0] - hip[0], knee[1] - hip[1]) + 2.0 * scale, 4.6 * scale,
                        math.degrees(math.atan2(knee[1] - hip[1], knee[0] - hip[0])))
    shin = cv.capsule(P(knee), P(heel), 2.6 * scale, 1.7 * scale)
    foot = cv.capsule(P(heel), P(toe), 1.6 * scale, 0.8 * scale)
    d = (toe[0] - heel[0], toe[1] - heel[1])
    a = math.atan2(d[1], d[0])
    for spread in (-0.45, 0.0, 0.45):        # three toes fanning from the foot's end
        tip = (toe[0] + 3.2 * math.cos(a + spread), toe[1] + 3.2 * math.sin(a + spread) * 0.6)
        foot |= cv.capsule(P(toe), P(tip), 0.8 * scale, 0.6 * scale)
    return thigh, shin | foot


def _arm(cv, fr, shoulder, elbow, hand, scale=1.0):
    P = fr.pt
    arm = (cv.capsule(P(shoulder), P(elbow), 2.0 * scale, 1.5 * scale)
           | cv.capsule(P(elbow), P(hand), 1.5 * scale, 1.1 * scale))
    d = (hand[0] - elbow[0], hand[1] - elbow[1])
    a = math.atan2(d[1], d[0])
    for spread in (-0.6, 0.0, 0.6):
        tip = (hand[0] + 2.4 * math.cos(a + spread), hand[1] + 2.4 * math.sin(a + spread))
        arm |= cv.capsule(P(hand), P(tip), 0.7 * scale, 0.6 * scale)
    return arm


def build(p, cv):
    fr = Frame(p, cv)
    P, E = fr.pt, fr.ellipse
    bx, by = p.body
    parts = []
    # far legs first, a shade darker and shifted back
    far_thigh, far_foot = _leg(cv, fr, (-8.5, 9.5), rig.add(p.knee, (2.0, 1.5)), rig.add(p.heel, (3.0, 1.0)),
                               rig.add(p.toe, (2.5, 0.4)), 0.85)
    parts.append(Part("far_leg", far_thigh | far_foot, SKIN, "far", dim=True))
    parts.append(Part("far_arm", _arm(cv, fr, (6.0, 8.0), rig.add(p.elbow, (-2.5, 0.6)),
                                      rig.add(p.hand, (-3.0, 0.0)), 0.85), SKIN, "far", dim=True))

    # the trunk and head, one mass: a round back rising into a wide, flat head
    head_c = (8.5, 12.5 + 0.15 * p.head)
    trunk = E((-2.0, 9.0 + 0.5 * p.hump), bx, by + p.hump, 13.0)
    trunk |= E((-8.0, 10.0 + p.hump), bx * 0.6, by + 0.6 + p.hump, 0.0)
    headm = E(head_c, 8.6, 6.2, p.head * 0.5 - 4.0)
    snout = E(rig.add(head_c, (5.5, -0.8)), 4.0, 3.6 + 1.2 * p.mouth, p.head * 0.5 - 10.0)
    mass = trunk | headm | snout
    # the eye bumps on top of the head
    eye_c = P(rig.add(head_c, (1.8, 5.6)))
    far_bump = E(rig.add(head_c, (-1.6, 6.2)), 2.9, 2.9)
    bump = E(rig.add(head_c, (1.8, 5.6)), 3.9, 3.7)
    parts.append(Part("far_bump", far_bump & ~mass, SKIN, "far", dim=True))
    body = Part("body", mass | bump, SKIN, "body")
    tone = relief_tone(mass | bump, 8, cuts=(0.4, 0.64, 0.92), depth=0.9)
    body.tone = tone
    # belly and throat: cream under a line from the chin back along the flank
    belly_line = [P((-15.0, 3.0)), P((-6.0, 4.0)), P((4.0, 5.5)), P(rig.add(head_c, (9.0, -2.6))),
                  P(rig.add(head_c, (12.0, -12.0))), P((-16.0, -8.0))]
    belly = cv.polygon(belly_line) & mass & px.erode(mass | px.shift(mass, 0, 1))
    body.details.append((belly & (tone >= 2), 2))
    # blotches and warts on the back
    rng_spots = [(-8.0, 14.0, 2.6, 1.7), (-1.0, 15.5, 2.2, 1.4), (-12.5, 9.0, 2.0, 1.4), (4.0, 16.0, 1.6, 1.1),
                 (-4.0, 11.0, 1.7, 1.1)]
    spots = np.zeros_like(mass)
    for x, y, rx, ry in rng_spots:
        spots |= E((x, y + p.hump), rx, ry, 15.0)
    spots &= mass & ~belly & px.erode(mass)
    body.details.append((spots & (tone <= 1), 0))
    body.details.append((spots & (tone >= 2), 1))
    warts = np.zeros_like(mass)
    for x, y in ((-10.0, 15.0), (-5.0, 16.8), (0.5, 17.2), (-13.0, 12.0), (-7.0, 12.5), (2.5, 13.0)):
        warts |= cv.ellipse(P((x, y + p.hump)), 0.6, 0.6)
    body.details.append((warts & mass & ~belly, 3))
    parts.append(body)
    parts.append(Part("belly_sh", belly & ~(tone >= 2), BELLY, "body"))
    parts[-1].tone = np.where(parts[-1].mask, 0, -1)
    bp = Part("belly", belly & (tone >= 2), BELLY, "body")
    bp.tone = np.where(bp.mask, 1, -1)
    bp.tone[bp.mask & ~px.shift(belly, -1, 0)] = 0
    parts.append(bp)

    # the mouth: a long line from the snout tip back under the eye; agape it shows a red maw
    tip = rig.add(head_c, (9.8, -1.0))
    corner = rig.add(head_c, (-2.0, -1.8))
    if p.mouth > 0.1:
        gape = 4.0 * p.mouth
        maw = cv.polygon([P(corner), P(rig.add(tip, (0.3, 0.6 * gape))), P(rig.add(tip, (0.0, -1.0 * gape)))])
        mp = Part("maw", maw & px.erode(mass), MOUTH, "body")
        mp.tone = np.where(mp.mask, 1, -1)
        mp.details.append((px.outline_of(mp.mask) & mp.mask | (mp.mask & ~px.erode(mp.mask)), "ink"))
        parts.append(mp)
    else:
        line = cv.capsule(P(tip), P(rig.add(head_c, (3.0, -2.4))), 0.45)
        line |= cv.capsule(P(rig.add(head_c, (3.0, -2.4))), P(corner), 0.45)
        line |= cv.capsule(P(corner), P(rig.add(corner, (-0.8, 0.9))), 0.45)
        body.details.append((line & mass, "ink"))
    if p.tongue > 0:
        t0 = P(rig.add(tip, (-1.0, -0.8)))
        t1 = P(rig.add(tip, (1.0 + 2.5 * p.tongue, -3.0 - 2.5 * p.tongue)))
        parts.append(Part("tongue", cv.capsule(t0, t1, 1.1, 0.9), MOUTH, "tongue"))
    # the throat sac swelling under the chin
    if p.sac > 0:
        sc = rig.add(head_c, (3.2, -4.6 - 1.2 * p.sac))
        sac = E(sc, 3.0 + 2.2 * p.sac, 2.0 + 2.0 * p.sac, -10.0)
        sp = Part("sac", sac, BELLY, "sac")
        sp.tone = relief_tone(sac, 3, cuts=(0.3, 0.55, 0.85))
        parts.append(sp)

    # the near hind leg over the flank, the near arm
    thigh, foot = _leg(cv, fr, (-9.0, 8.5), p.knee, p.heel, p.toe)
    leg = Part("thigh", thigh, SKIN, "leg")
    leg.tone = relief_tone(thigh, 4, cuts=(0.4, 0.64, 0.92))
    stripes = np.zeros_like(thigh)
    for k in (0.3, 0.62):
        mid = rig.add(p.knee, ((-9.0 - p.knee[0]) * k, (8.5 - p.knee[1]) * k))
        stripes |= E(mid, 1.0, 3.2, math.degrees(math.atan2(8.5 - p.knee[1], -9.0 - p.knee[0])))
    leg.details.append((stripes & px.erode(thigh), 0))
    parts.append(leg)
    parts.append(Part("foot", foot & ~thigh, SKIN, "foot"))
    parts.append(Part("arm", _arm(cv, fr, (7.0, 7.0), p.elbow, p.hand), SKIN, "arm"))

    # the eye: a gold ball in its bump, a black slot for a pupil, a lid
    if p.eyes > 0.3:
        parts.append(_eyeball(cv, eye_c))
    elif p.eyes >= 0:
        lid = cv.capsule(rig.add(eye_c, (-2.2, 0.2)), rig.add(eye_c, (2.4, 0.0)), 0.5)
        body.details.append((lid & bump, "ink"))
    else:   # crossed out
        x = (cv.capsule(rig.add(eye_c, (-1.6, -1.6)), rig.add(eye_c, (1.6, 1.6)), 0.45)
             | cv.capsule(rig.add(eye_c, (-1.6, 1.6)), rig.add(eye_c, (1.6, -1.6)), 0.45))
        body.details.append((x & bump, "ink"))
    return parts, eye_c


# the eye, stamped on the pixel grid so it keeps its shape from frame to frame:
# light rim (2), gold (1), shaded rim (0), the slot of the pupil (p), a glint (g)
EYE_STAMP = [".222.",
             "2g112",
             "1ppp1",
             "01110",
             ".000."]


def _eyeball(cv, eye_c):
    ex, ey = cv.pixel(rig.add(eye_c, (0.3, 0.1)))
    mask = np.zeros((cv.h, cv.w), bool)
    tone = np.full((cv.h, cv.w), -1)
    pupil = np.zeros_like(mask)
    for dy, row in enumerate(EYE_STAMP):
        for dx, ch in enumerate(row):
            y, x = ey + dy - 2, ex + dx - 2
            if ch == "." or not (0 <= y < cv.h and 0 <= x < cv.w):
                continue
            mask[y, x] = True
            tone[y, x] = {"g": 3, "p": 1}.get(ch, int(ch) if ch.isdigit() else 1)
            pupil[y, x] = ch == "p"
    ep = Part("eye", mask, EYE, "eye")
    ep.tone = tone
    ep.details.append((pupil, "ink"))
    return ep


def render(pose):
    cv = rig.Canvas(FW, FH, FACING)
    parts, eye_c = build(pose, cv)
    img = compose(parts, FW, FH)
    if "tell" in pose.tags:
        ex, ey = cv.pixel(eye_c)
        star(img, (ex, ey), TELL, 4)
    return img


# ---------------------------------------------------------------- clips


def idle():
    """Breathing, two swells of the throat (the croak), a blink."""
    sacs = (0.55, 1.0, 0.25, 0.85, 0.15, 0.0, 0.0, 0.0)
    frames = []
    for i in range(8):
        b = 0.5 - 0.5 * math.cos(2 * math.pi * i / 8)
        frames.append(SIT.but(body=(14.0 + 0.3 * b, 9.0 + 0.5 * b), hump=0.4 * b, sac=sacs[i],
                              eyes=0.0 if i == 6 else 1.0, head=2.0 * sacs[i]))
    return frames


def _leap():
    """Airborne: nose up, the hind legs kicked straight out behind, the arms reaching for the
    landing, mouth agape (limb targets given where they should land in the picture)."""
    at, turn = (3.0, 7.0), 28.0

    def L(p):
        return local(p, at, turn)
    return SIT.but(at=at, turn=turn, body=(15.5, 8.0), hump=-0.8, head=2.0,
                   knee=L((-14.5, 8.0)), heel=L((-20.5, 4.2)), toe=L((-25.5, 1.6)),
                   elbow=L((15.5, 14.0)), hand=L((21.0, 12.0)), mouth=1.0, tags=("tell",))


LEAP = _leap()


def dead():
    """Struck (eyes out, tongue lolling), flipping over, belly up with the legs in the air (held)."""
    struck = SIT.but(body=(14.5, 8.2), at=(0.0, 1.0), head=-8.0, eyes=-1.0, mouth=0.5, tongue=1.0,
                     knee=(-6.0, 3.0), heel=(-18.0, 0.0), toe=(-22.0, 4.0), elbow=(12.0, 2.0),
                     hand=(16.0, 4.0))
    flip = SIT.but(at=(0.0, 15.0), turn=-18.0, roll=-0.6, eyes=-1.0, mouth=0.4, tongue=0.8,
                   knee=(-7.0, -2.0), heel=(-16.0, -6.0), toe=(-21.0, -1.0), elbow=(11.0, -1.0),
                   hand=(15.0, -4.0))
    back = SIT.but(at=(0.0, 19.5), turn=0.0, roll=-1.0, body=(14.5, 8.5), eyes=-1.0, mouth=0.3,
                   tongue=0.6, knee=(-5.0, -5.0), heel=(-13.0, -9.0), toe=(-16.0, -3.5), elbow=(9.0, -4.0),
                   hand=(13.0, -8.0))
    return [struck, flip, back]


POSES = {"IDLE": idle, "JUMP": lambda: [LEAP], "DEAD": dead}


def build_clips():
    return [(label, [render(p) for p in POSES[label]()]) for label, _, _ in CLIPS]


def check(img, clips):
    """The faults the game would not report: a sheet of the wrong size (the game assumes it), a
    frame count off the fixed layout, a sitting body off its hurtbox, art cut by the frame edge."""
    cols = max(n for _, n, _ in CLIPS)
    if img.shape[:2] != (FH * len(CLIPS), FW * cols):
        raise ValueError(f"frog sheet is {img.shape[1]}x{img.shape[0]}")
    for (label, n, _), (_, frames) in zip(CLIPS, clips):
        if len(frames) != n:
            raise ValueError(f"frog {label}: {len(frames)} frames, the game plays {n}")
        for i, f in enumerate(frames):
            if f[0].any() or f[:, 0].any() or f[:, -1].any():
                raise ValueError(f"frog {label} {i}: cut off by the frame edge")
    for i, f in enumerate(clips[0][1]):
        ys, xs = np.nonzero(f[..., 3])
        tall, wide = FH - ys.min(), xs.max() - xs.min() + 1
        centre = (xs.min() + xs.max() + 1) / 2
        if not f[-1, :, 3].any() or not (20 <= tall <= 30 and 30 <= wide <= 46) or abs(centre - FW / 2) > 5:
            raise ValueError(f"frog IDLE {i}: body {wide}x{tall} centred at {centre}")


def _hurtbox(col):
    w, h = HURTBOX
    return [((FW - w) / 2, FH - h, (FW + w) / 2, FH, (70, 70, 80, 255))]


def generate(out):
    clips = build_clips()
    img = px.sheet(clips, FW, FH)
    check(img, clips)
    written = [px.save_png(img, out / PATH)]
    rows = []
    for (label, n, rate), (_, frames) in zip(CLIPS, clips):
        info = f"{n} x {rate} fps" + (", hurts" if label == "JUMP" else "")
        rows.append(SheetRow(f"frog {label}", info, frames, "forest", _hurtbox,
                             marked=(0,) if label == "JUMP" else ()))
    written.append(pose_sheet(rows, out / "Assets/Fonts/ButtonFont2.ttf", out / "docs/frog_poses.png"))
    return written

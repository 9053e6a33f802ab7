"""A small 2D character rig, posed per key frame and rasterised onto the native pixel grid.

A character is a `Body` (bone lengths, part shapes, materials) seen from the side, facing right.
A `Pose` places it: the hip, the torso lean, hand and foot targets (the elbows and knees come from
two-bone inverse kinematics), the weapon angle, the cape and scarf swing, and optional FX (smear
arcs, glints, dust, afterimages). `inbetween` interpolates two poses and `timeline` fills a clip
from its key poses, so every frame stays on model.

Coordinates are texture pixels with the origin at the feet: x forward (to the right), y up.
Angles are degrees, counter-clockwise from +x (0 = forward, 90 = up, -90 = down), except the cape
and scarf, whose swing is measured from hanging straight down towards the back (90 = streaming
straight back, above 90 = blown upwards).

`render(body, pose, w, h)` returns a uint8 RGBA frame whose bottom-centre is the origin. Each part
is sampled at pixel centres (hard pixels, no anti-aliasing), shaded in three tones by a light from
the top left, separated from the parts behind it by a 1 px line of its neighbour's ink, and the
whole silhouette gets a darker 1 px outline and a lighter rim on its top-left edges.
Everything is plain arithmetic on fixed inputs, so the same pose gives the same pixels.
"""
from dataclasses import dataclass, field, fields, replace
import math

import numpy as np

from . import pixel as px

# ---------------------------------------------------------------- materials


@dataclass(frozen=True)
class Material:
    """Ink (outline), shadow, base and light tones, plus a rim/specular tone (darkest first)."""
    ink: tuple
    shadow: tuple
    base: tuple
    light: tuple
    rim: tuple

    @staticmethod
    def of(*hex_codes):
        return Material(*[px.rgb(h) for h in hex_codes])

    def tones(self, dim=False):
        """Colours for tone indices 0 shadow, 1 base, 2 light, 3 rim; `dim` for far-side limbs."""
        deep = tuple(0.55 * s + 0.45 * i for s, i in zip(self.shadow, self.ink))
        if dim:
            return [deep, self.shadow, self.base, self.light]
        return [self.shadow, self.base, self.light, self.rim]


# ---------------------------------------------------------------- geometry helpers


def vec(angle_deg, length=1.0):
    a = math.radians(angle_deg)
    return (length * math.cos(a), length * math.sin(a))


def add(p, q, k=1.0):
    return (p[0] + k * q[0], p[1] + k * q[1])


def swing(s):
    """Unit direction of a hanging strip swung s degrees from straight down towards the back."""
    a = math.radians(s)
    return (-math.sin(a), -math.cos(a))


def lerp(a, b, t):
    return a + (b - a) * t


def two_bone(root, target, l1, l2, bend):
    """Middle joint and clamped end of a two-bone limb from `root` reaching for `target`.

    bend +1 puts the joint on the counter-clockwise side of root->target (knees, forward when
    standing), -1 on the clockwise side (elbows, backward when the arm hangs).
    """
    dx, dy = target[0] - root[0], target[1] - root[1]
    d = math.hypot(dx, dy)
    reach = l1 + l2 - 0.01
    if d > reach:
        dx, dy, d = dx * reach / d, dy * reach / d, reach
    d = max(d, abs(l1 - l2) + 0.01, 1e-6)
    ux, uy = dx / d, dy / d
    a = (l1 * l1 - l2 * l2 + d * d) / (2 * d)
    hgt = math.sqrt(max(l1 * l1 - a * a, 0.0))
    nx, ny = -uy * bend, ux * bend
    joint = (root[0] + ux * a + nx * hgt, root[1] + uy * a + ny * hgt)
    return joint, (root[0] + dx, root[1] + dy)


class Canvas:
    """Pixel-centre coordinates of a w x h frame in rig space (origin at the bottom centre).

    facing -1 mirrors rig x onto the picture, so a character posed facing +x looks to the left,
    while the shading (done in picture space) keeps its light from the top left."""

    def __init__(self, w, h, facing=1):
        self.w, self.h, self.facing = w, h, facing
        ys, xs = px.grid(h, w)
        self.x = (xs - w / 2.0) * facing
        self.y = h - ys

    def pixel(self, p):
        """The (column, row) of the pixel holding rig point p."""
        return int(math.floor(p[0] * self.facing + self.w / 2.0)), int(math.floor(self.h - p[1]))

    def capsule(self, p0, p1, r0, r1=None):
        """A segment thickened to radius r0 at p0 and r1 at p1 (round ends)."""
        r1 = r0 if r1 is None else r1
        vx, vy = p1[0] - p0[0], p1[1] - p0[1]
        ll = vx * vx + vy * vy or 1e-9
        t = np.clip(((self.x - p0[0]) * vx + (self.y - p0[1]) * vy) / ll, 0.0, 1.0)
        qx, qy = p0[0] + t * vx, p0[1] + t * vy
        r = r0 + (r1 - r0) * t
        return (self.x - qx) ** 2 + (self.y - qy) ** 2 <= r * r

    def polygon(self, points):
        """Even-odd fill of a polygon, sampled at pixel centres."""
        inside = np.zeros((self.h, self.w), bool)
        n = len(points)
        for i in range(n):
            (x0, y0), (x1, y1) = points[i], points[(i + 1) % n]
            if y0 == y1:
                continue
            crosses = (self.y >= min(y0, y1)) & (self.y < max(y0, y1))
            xc = x0 + (self.y - y0) * (x1 - x0) / (y1 - y0)
            inside ^= crosses & (self.x < xc)
        return inside

    def ellipse(self, c, rx, ry, angle=0.0):
        a = math.radians(angle)
        u = (self.x - c[0]) * math.cos(a) + (self.y - c[1]) * math.sin(a)
        v = -(self.x - c[0]) * math.sin(a) + (self.y - c[1]) * math.cos(a)
        return (u / rx) ** 2 + (v / ry) ** 2 <= 1.0

    def ribbon(self, points, widths):
        """A strip through `points` with a half-width per point (a cape, a scarf tail)."""
        left, right = [], []
        for i, p in enumerate(points):
            q0 = points[max(i - 1, 0)]
            q1 = points[min(i + 1, len(points) - 1)]
            tx, ty = q1[0] - q0[0], q1[1] - q0[1]
            tl = math.hypot(tx, ty) or 1.0
            nx, ny = -ty / tl, tx / tl
            left.append((p[0] + nx * widths[i], p[1] + ny * widths[i]))
            right.append((p[0] - nx * widths[i], p[1] - ny * widths[i]))
        return self.polygon(left + right[::-1])


# ---------------------------------------------------------------- pose


@dataclass(frozen=True)
class Pose:
    """One key pose. Points are rig coordinates; hands are relative to their own shoulder."""
    hip: tuple = (0.0, 26.0)
    lean: float = 0.0              # torso tilt, positive forward
    head: float = 0.0              # head tilt relative to the torso, positive nods forward
    foot_f: tuple = (4.0, 2.0)     # ankle targets
    foot_b: tuple = (-4.0, 2.0)
    toe_f: float = 0.0             # foot angles (0 flat, forward)
    toe_b: float = 0.0
    hand_f: tuple = (2.0, -15.0)   # hand targets from the shoulder
    hand_b: tuple = (-2.0, -15.0)  # or None: the back hand grips the weapon too
    weapon: float = -60.0          # weapon angle
    cape: float = 12.0             # swing from hanging straight down towards the back
    cape_curl: float = 6.0         # extra swing per cape segment
    cape_wave: float = 0.0         # ripple phase, one cycle per 1.0
    cape_flutter: float = 5.0      # ripple amplitude along the cape (degrees per segment)
    scarf: float = 70.0
    scarf_curl: float = 8.0
    scarf_wave: float = 0.0
    stretch: float = 1.0           # torso length factor (squash and stretch)
    # not interpolated: taken from the nearer key
    weapon_behind: bool = False    # draw the weapon behind the body
    smear: tuple = ()              # Smear arcs
    glint: float = -1.0            # position of a glint along the blade (0 hilt .. 1 tip)
    dust: tuple = ()               # (x, y, size) puffs
    ghosts: tuple = ()             # (dx, dy, strength) afterimages behind the body
    tags: tuple = ()               # free words for custom builders (the knight ignores them)

    def but(self, **changes):
        return replace(self, **changes)


@dataclass(frozen=True)
class Smear:
    """A crescent swept by the blade around `centre`, from angle a0 (tail) to a1 (head)."""
    centre: tuple
    r0: float
    r1: float
    a0: float
    a1: float


_STEPPED = {"weapon_behind", "smear", "glint", "dust", "ghosts", "tags"}


def _mix(a, b, t):
    if a is None or b is None:
        return a if t < 0.5 else b
    if isinstance(a, tuple):
        return tuple(_mix(x, y, t) for x, y in zip(a, b))
    return lerp(float(a), float(b), t)


def inbetween(a, b, t):
    """The pose a fraction t of the way from a to b (angles turn the way they are written)."""
    values = {}
    for f in fields(Pose):
        va, vb = getattr(a, f.name), getattr(b, f.name)
        values[f.name] = (va if t < 0.5 else vb) if f.name in _STEPPED else _mix(va, vb, t)
    return Pose(**values)


EASE = {
    "linear": lambda t: t,
    "in": lambda t: t * t,                          # slow start (a wind-up)
    "out": lambda t: 1 - (1 - t) * (1 - t),         # fast start, settle (a strike, a landing)
    "inout": lambda t: t * t * (3 - 2 * t),
}


def timeline(n, keys):
    """n frames from keys [(frame, pose, ease), ...]: frames between two keys are in-betweens,
    eased by the later key's curve. Keys must start at frame 0 and be in order."""
    frames = []
    for i in range(n):
        k = max(j for j, key in enumerate(keys) if key[0] <= i)
        f0, p0 = keys[k][0], keys[k][1]
        if k + 1 == len(keys) or f0 == i:
            frames.append(p0)
            continue
        f1, p1, ease = keys[k + 1][0], keys[k + 1][1], keys[k + 1][2]
        frames.append(inbetween(p0, p1, EASE[ease]((i - f0) / (f1 - f0))))
    return frames


# ---------------------------------------------------------------- body


@dataclass(frozen=True)
class Body:
    """Proportions and materials of one character (the defaults are a slight human knight)."""
    thigh: float = 12.0
    shin: float = 12.0
    upper_arm: float = 9.0
    forearm: float = 8.5
    torso: float = 16.0            # hip to the base of the neck
    shoulder: float = 14.0         # hip to the shoulder joint, along the torso
    neck: float = 2.5
    head_r: tuple = (4.6, 5.0)
    limb_r: dict = field(default_factory=lambda: {
        "thigh": (2.4, 2.0), "shin": (1.9, 1.6), "upper_arm": (1.7, 1.5), "forearm": (1.5, 1.3)})
    grip: float = 3.0              # hand to the guard
    pommel: float = 2.5
    blade: float = 28.0
    blade_w: float = 1.3           # half-width at the guard
    guard: float = 3.0             # half-length of the cross-guard
    cape_len: float = 27.0
    cape_w: tuple = (3.5, 7.5)     # half-width at the shoulders and at the hem
    scarf_len: float = 13.0
    materials: dict = field(default_factory=dict)


# ---------------------------------------------------------------- rasterising


class Part:
    __slots__ = ("name", "mask", "material", "group", "tone", "dim", "details", "outline")

    def __init__(self, name, mask, material, group, dim=False, outline=True):
        self.name, self.mask, self.material, self.group = name, mask, material, group
        self.dim, self.outline = dim, outline
        self.tone = None
        self.details = []          # (mask, tone index or "ink")


def tone_map(mask, lit=1, shade=1):
    """0 shadow, 1 base, 2 light for a part lit from the top left (edges facing the light are
    lit, edges facing away are in shadow)."""
    tone = np.where(mask, 1, -1)
    s = np.zeros_like(mask)
    for d in range(1, shade + 1):
        s |= ~(px.shift(mask, -d, 0) & px.shift(mask, 0, -d) & px.shift(mask, -d, -d))
    tone[mask & s] = 0
    g = np.zeros_like(mask)
    for d in range(1, lit + 1):
        g |= ~(px.shift(mask, d, 0) & px.shift(mask, 0, d))
    tone[mask & g] = 2
    return tone


def _remove_specks(mask):
    """Drop single pixels with no 4-neighbour (sampling crumbs on thin diagonal shapes)."""
    n = px.shift(mask, 1, 0) | px.shift(mask, -1, 0) | px.shift(mask, 0, 1) | px.shift(mask, 0, -1)
    return mask & n


def build_parts(body, pose, cv):
    """The character's parts in back-to-front order for one pose."""
    m = body.materials
    parts = []
    stretch = pose.stretch
    up = 90.0 - pose.lean                          # torso direction
    hip = pose.hip
    neck = add(hip, vec(up, body.torso * stretch))
    sh_f = add(add(hip, vec(up, body.shoulder * stretch)), vec(up - 90, 0.8))
    sh_b = add(add(hip, vec(up, body.shoulder * stretch)), vec(up - 90, -1.2))
    head_up = up - pose.head
    head_c = add(neck, vec(head_up, body.neck + body.head_r[1] - 1.0))
    fwd = vec(up - 90)                              # the torso's forward direction

    def tl(u, v):                                  # torso-local (along, across) -> rig space
        return add(add(hip, vec(up, u * stretch)), fwd, v)

    # -- weapon (computed first: the back hand may hold it)
    hand_f = add(sh_f, pose.hand_f)
    elbow_f, hand_f = two_bone(sh_f, hand_f, body.upper_arm, body.forearm, -1)
    wd = vec(pose.weapon)
    grip_b = add(hand_f, wd, -2.2)
    if pose.hand_b is None:
        elbow_b, hand_b = two_bone(sh_b, grip_b, body.upper_arm, body.forearm, -1)
    else:
        elbow_b, hand_b = two_bone(sh_b, add(sh_b, pose.hand_b), body.upper_arm, body.forearm, -1)

    # -- cape: a chain from the shoulders, swinging back, curling, rippling at the hem
    seg = 4
    pts = [tl(body.torso - 1.0, -1.5)]
    cape_dirs = []
    for k in range(seg):
        d = swing(pose.cape + pose.cape_curl * k
                  + pose.cape_flutter * math.sin(2 * math.pi * (pose.cape_wave + k / seg)) * k / 2)
        cape_dirs.append(d)
        pts.append(add(pts[-1], d, body.cape_len / seg))
    widths = [lerp(body.cape_w[0], body.cape_w[1], k / seg) for k in range(seg + 1)]
    cape = cv.ribbon(pts, widths)
    # hem ripple: bite notches out of the lower edge and add a flick at the tip
    hem = pts[-1]
    d_last = cape_dirs[-1]
    n_last = (-d_last[1], d_last[0])
    for j, off in enumerate((-0.6, 0.0, 0.6)):
        ph = math.sin(2 * math.pi * (pose.cape_wave + j / 3.0))
        c = add(add(hem, n_last, off * body.cape_w[1] * 1.6), d_last, 1.2 + 1.3 * ph)
        cape |= cv.ellipse(c, 1.8, 1.4)
        if j != 1:
            notch = add(add(hem, n_last, off * body.cape_w[1] * 0.95), d_last, 1.0 - 1.6 * ph)
            cape &= ~cv.ellipse(notch, 1.0, 1.3)
    cape_part = _Part("cape", cape, m["cloak"], "cape")
    # two folds running up from the hem
    for off in (-0.35, 0.4):
        a0 = add(pts[1], n_last, off * widths[1])
        a1 = add(pts[-1], n_last, off * widths[-1] * 1.2)
        cape_part.details.append((cv.capsule(a0, a1, 0.5) & cape, 0))
    parts.append(cape_part)

    # -- scarf tail behind the neck
    s_pts = [tl(body.torso + 0.2, -2.0)]
    for k in range(3):
        sw = pose.scarf + pose.scarf_curl * k + 14 * math.sin(2 * math.pi * (pose.scarf_wave + k / 3))
        d = swing(sw)
        s_pts.append(add(s_pts[-1], d, body.scarf_len / 3))
    parts.append(_Part("scarf_tail", cv.ribbon(s_pts, [1.6, 1.5, 1.3, 0.9]), m["scarf"], "scarf"))

    # -- far arm (and the far hand), far leg
    arm_b = (cv.capsule(sh_b, elbow_b, *body.limb_r["upper_arm"])
             | cv.capsule(elbow_b, hand_b, *body.limb_r["forearm"]))
    parts.append(_Part("arm_b", arm_b, m["armour"], "arm_b", dim=True))
    parts.append(_Part("hand_b", cv.ellipse(hand_b, 1.7, 1.7), m["leather"], "arm_b", dim=True))

    def leg(name, hip_off, foot, toe, dim):
        hj = add(hip, fwd, hip_off)
        knee, ankle = two_bone(hj, foot, body.thigh, body.shin, +1)
        mask = (cv.capsule(hj, knee, *body.limb_r["thigh"])
                | cv.capsule(knee, ankle, *body.limb_r["shin"]))
        boot = cv.capsule(add(ankle, vec(toe), -0.8), add(ankle, vec(toe), 3.4), 1.7, 1.3)
        boot |= cv.capsule(add(ankle, vec(toe + 90), 1.5), ankle, 1.6)
        p = _Part(name, mask, m["legs"], name, dim=dim)
        b = _Part(name + "_boot", boot, m["leather"], name, dim=dim)
        knee_pad = cv.ellipse(knee, 1.9, 1.9)
        p.details.append((knee_pad & ~px.shift(knee_pad, 1, 1), 2))
        return [p, b]

    parts += leg("leg_b", -1.0, pose.foot_b, pose.toe_b, True)

    # -- weapon behind the body (raised over the back)
    weapon_parts = _weapon(body, cv, hand_f, pose.weapon, m)
    if pose.weapon_behind:
        parts += weapon_parts

    # -- torso: tabard, cuirass, belt
    tabard = cv.polygon([tl(3.5, -4.6), tl(3.5, 4.4), tl(-5.5, 5.6), tl(-6.2, 0.5), tl(-5.5, -5.4)])
    parts.append(_Part("tabard", tabard, m["cloak"], "torso"))
    cuirass = cv.polygon([tl(1.5, -4.0), tl(1.5, 3.8), tl(6.5, 3.6), tl(11.5, 5.2), tl(14.8, 4.0),
                          tl(16.3, 1.0), tl(16.3, -3.0), tl(14.0, -4.6), tl(7.0, -4.2)])
    cu = _Part("cuirass", cuirass, m["armour"], "torso")
    plate = cv.capsule(tl(12.0, 0.5), tl(8.5, 3.2), 0.6)
    cu.details.append((plate & cuirass, 2))
    parts.append(cu)
    belt = cv.polygon([tl(1.6, -4.3), tl(1.6, 4.2), tl(3.6, 4.3), tl(3.6, -4.4)])
    bp = _Part("belt", belt, m["leather"], "torso")
    bp.details.append((cv.ellipse(tl(2.6, 2.6), 0.8, 0.8), 3))
    parts.append(bp)
    parts += leg("leg_f", 1.0, pose.foot_f, pose.toe_f, False)

    # -- head: pale helm with a crest and a dark T-slit; the scarf wraps the neck
    def hl(u, v):                                  # head-local (up, forward) -> rig space
        return add(add(head_c, vec(head_up, u)), vec(head_up - 90, v))

    helm = cv.ellipse(hl(0.5, -0.3), body.head_r[0], body.head_r[1], head_up - 90)
    helm |= cv.polygon([hl(2.0, 2.0), hl(1.2, 5.8), hl(-2.6, 5.4), hl(-5.4, 2.6), hl(-4.0, -1.0)])
    helm |= cv.polygon([hl(-1.0, -3.8), hl(-5.2, -5.6), hl(-4.2, -1.0)])
    hp = _Part("helm", helm, m["mask"], "head")
    eye = cv.polygon([hl(1.0, 1.4), hl(1.0, 4.4), hl(-0.8, 4.4), hl(-0.6, 2.2)])
    cheek = cv.capsule(hl(-1.2, 3.4), hl(-3.6, 3.0), 0.45)
    hp.details.append(((eye | cheek) & helm, "ink"))
    hp.details.append((cv.capsule(hl(0.1, 3.2), hl(0.1, 3.4), 0.3) & eye, 3))
    parts.append(hp)
    wrap = cv.capsule(tl(body.torso - 1.2, -3.2), tl(body.torso + 0.8, 3.4), 2.0)
    wrap |= cv.capsule(tl(body.torso - 0.5, -2.6), tl(body.torso - 4.0, -4.8), 1.6)
    parts.append(_Part("scarf", wrap, m["scarf"], "scarf"))

    # -- smear arcs sit under the sword arm and blade
    for sm in pose.smear:
        parts.append(_smear_part(cv, sm, m))

    if not pose.weapon_behind:
        parts += weapon_parts
    arm_f = (cv.capsule(sh_f, elbow_f, *body.limb_r["upper_arm"])
             | cv.capsule(elbow_f, hand_f, *body.limb_r["forearm"]))
    ap = _Part("arm_f", arm_f, m["armour"], "arm_f")
    pauldron = cv.ellipse(add(sh_f, vec(up), 0.6), 2.9, 2.5, up - 90 + 20)
    pp = _Part("pauldron", pauldron, m["armour"], "pauldron")
    parts.append(ap)
    parts.append(_Part("hand_f", cv.ellipse(hand_f, 1.8, 1.8), m["leather"], "arm_f"))
    parts.append(pp)
    return parts, hand_f


_Part = Part


def _weapon(body, cv, hand, angle, m):
    d = vec(angle)
    n = vec(angle + 90)
    guard_c = add(hand, d, body.grip)
    pommel = add(hand, d, -body.pommel)
    grip = _Part("grip", cv.capsule(pommel, guard_c, 0.8), m["leather"], "weapon")
    knob = _Part("pommel", cv.ellipse(pommel, 1.3, 1.3), m["gold"], "weapon")
    guard = _Part("guard", cv.capsule(add(guard_c, n, -body.guard), add(guard_c, n, body.guard), 0.9),
                  m["gold"], "weapon")
    b0 = add(guard_c, d, 0.8)
    tip = add(guard_c, d, body.blade)
    shoulder = add(guard_c, d, body.blade - 3.5)
    w = body.blade_w
    blade = cv.polygon([add(b0, n, w), add(shoulder, n, w * 0.85), tip,
                        add(shoulder, n, -w * 0.85), add(b0, n, -w)])
    blade |= cv.capsule(b0, tip, 0.55)
    bp = _Part("blade", blade, m["blade"], "weapon")
    return [grip, knob, bp, guard]


def _smear_part(cv, sm, m):
    """A crescent: thin at the tail, full and bright at the head, hard-edged."""
    dx, dy = cv.x - sm.centre[0], cv.y - sm.centre[1]
    r = np.hypot(dx, dy)
    ang = np.degrees(np.arctan2(dy, dx))
    lo, hi = sorted((sm.a0, sm.a1))
    span = hi - lo
    rel = (ang - lo) % 360.0
    inside_span = rel <= span
    t = rel / span if span else np.zeros_like(rel)          # 0 at lo, 1 at hi
    t = t if sm.a1 >= sm.a0 else 1.0 - t                    # 0 at the tail, 1 at the head
    inner = sm.r1 - (sm.r1 - sm.r0) * np.clip(t, 0, 1) ** 0.6
    band = inside_span & (r <= sm.r1) & (r >= inner)
    s = np.clip((r - inner) / np.maximum(sm.r1 - inner, 1e-3), 0, 1)   # 0 inner edge, 1 outer
    p = _Part("smear", band, m["smear"], "fx", outline=False)
    # tones: 0 thin inner wash, 1 body, 2 bright outer edge, 3 white core near the head
    tone = np.where(band, 1, -1)
    tone[band & (s < 0.35)] = 0
    tone[band & (s > 0.72)] = 2
    tone[band & (s > 0.72) & (t > 0.55)] = 3
    # the tail breaks up into a dither
    keep = px.bayer(cv.h, cv.w) < np.clip(t * 2.2, 0, 1)
    p.mask = band & (keep | (s > 0.72) & (t > 0.25))
    p.tone = np.where(p.mask, tone, -1)
    return p


def _ghost_mask(mask, dx, dy):
    return px.shift(mask, -int(round(dy)), int(round(dx)))


def weapon_point(body, pose, t):
    """Rig coordinates of the point a fraction t along the blade (0 guard, 1 tip)."""
    up = 90.0 - pose.lean
    fwd = vec(up - 90)
    sh_f = add(add(pose.hip, vec(up, body.shoulder * pose.stretch)), fwd, 0.8)
    _, hand = two_bone(sh_f, add(sh_f, pose.hand_f), body.upper_arm, body.forearm, -1)
    d = vec(pose.weapon)
    return add(hand, d, body.grip + body.blade * t)


def render(body, pose, w, h, ink_all=None, builder=None, facing=1):
    """One frame as uint8 RGBA (h, w, 4), origin at the bottom centre.

    `builder(body, pose, canvas)` returns (parts back to front, anything) for characters other than
    the default knight (`build_parts`); `facing` -1 draws the character looking left. A blade glint
    is placed with the knight's geometry, so other builders leave `pose.glint` negative."""
    cv = Canvas(w, h, facing)
    parts, hand_f = (builder or build_parts)(body, pose, cv)
    owner = np.full((h, w), -1)
    for i, p in enumerate(parts):
        p.mask = _remove_specks(p.mask) if p.tone is None else p.mask
        owner[p.mask] = i
    img = np.zeros((h, w, 4), float)
    # shading
    for i, p in enumerate(parts):
        vis = owner == i
        if not vis.any():
            continue
        tone = p.tone if p.tone is not None else tone_map(p.mask, 1, 1 if p.mask.sum() < 60 else 2)
        cols = p.material.tones(p.dim)
        for k, c in enumerate(cols):
            sel = vis & (tone == k)
            img[sel, :3] = c
        for dm, dt in p.details:
            sel = vis & dm
            img[sel, :3] = p.material.ink if dt == "ink" else cols[dt]
        img[vis, 3] = 255
    # 1 px lines where a part of another group passes in front (FX parts draw no lines)
    group = np.array([p.group for p in parts] + [""], dtype=object)
    inked = np.array([p.outline for p in parts] + [False])
    lined = np.zeros((h, w), bool)
    for dy, dx in ((1, 0), (-1, 0), (0, 1), (0, -1)):
        nb = px.shift(owner + 1, dy, dx) - 1          # the part next to each pixel (-1: none)
        front = (owner >= 0) & (nb > owner) & (group[owner] != group[nb])
        lined |= front & inked[owner] & inked[nb]
    for i, p in enumerate(parts):
        sel = lined & (owner == i)
        img[sel, :3] = p.material.ink
    solid = owner >= 0
    body_mask = np.zeros((h, w), bool)
    for i, p in enumerate(parts):
        if p.outline:
            body_mask |= owner == i
    # rim light on the top-left edge of the silhouette
    sil = body_mask
    edge = sil & ~(px.shift(sil, 1, 0) & px.shift(sil, 0, 1))
    for i, p in enumerate(parts):
        sel = edge & (owner == i) & ~lined
        if p.outline and not p.dim:
            img[sel, :3] = p.material.rim
    # outer outline: the ink of the neighbouring part
    ring = px.outline_of(sil) & ~solid
    for dy, dx in ((1, 0), (0, 1), (-1, 0), (0, -1)):
        src = px.shift(np.where(sil, owner, -1) + 1, dy, dx) - 1
        for i, p in enumerate(parts):
            sel = ring & (src == i) & (img[..., 3] == 0)
            img[sel, :3] = ink_all if ink_all is not None else p.material.ink
            img[sel, 3] = 255
    # afterimages behind everything
    for gdx, gdy, strength in pose.ghosts:
        g = _ghost_mask(sil | ring, gdx * facing, gdy) & (img[..., 3] == 0)
        img[g, :3] = body.materials["ghost"]
        img[g, 3] = 255 * strength
    for x, y, size in pose.dust:
        _dust(img, cv, (x, y), size, body.materials["dust"])
    if pose.glint >= 0:
        gp = weapon_point(body, pose, pose.glint)
        _glint(img, cv, gp, body.materials["glint"])
    return px.to_rgba8(img)


def _dust(img, cv, c, size, mat):
    """A puff of dust: a lit top-left lobe, a shaded body, its pixels thinning out at the rim."""
    if size <= 0:
        return
    puff = cv.ellipse(c, 1.6 * size, 1.0 * size) | cv.ellipse(add(c, (1.3 * size, -0.2)), 1.1 * size,
                                                                  0.8 * size)
    keep = px.bayer(cv.h, cv.w) < 0.75
    puff &= keep & (img[..., 3] == 0)
    tone = tone_map(puff, 1, 1)
    for k, col in enumerate((mat.shadow, mat.base, mat.light)):
        sel = puff & (tone == k)
        img[sel, :3] = col
        img[sel, 3] = 255


def _glint(img, cv, c, mat):
    """A four-point star: white core, pale arms, on top of everything."""
    cx, cy = cv.pixel(c)
    pts = [(0, 0, mat.rim), (1, 0, mat.rim), (-1, 0, mat.rim), (0, 1, mat.rim), (0, -1, mat.rim),
           (1, 1, mat.base), (-1, -1, mat.base), (1, -1, mat.base), (-1, 1, mat.base)]
    for k, col in ((2, mat.light), (3, mat.light), (4, mat.base), (5, mat.shadow)):
        pts += [(k, 0, col), (-k, 0, col), (0, k, col), (0, -k, col)]
    for dx, dy, col in pts:
        x, y = cx + dx, cy + dy
        if 0 <= x < cv.w and 0 <= y < cv.h:
            img[y, x, :3] = col
            img[y, x, 3] = 255


def render_clip(body, poses, w, h):
    return [render(body, p, w, h) for p in poses]

"""The Slime: Sprites/Enemies/Slime/ "Slime SpriteSheet.png" (forest), "NecroSlime SpriteSheet.png"
(forest, undead), "BlueSlime SpriteSheet.png" (city), their one SlimeAnimData.txt, the projectile
sheets "Slime-Projectile-SpriteSheet.png" (forest) and "BlueSlime-Projectile-SpriteSheet.png" (city),
and docs/slime_poses.png.

The three looks share one shape and one timing, so one data file serves them all: an onion-shaped
jelly with a curled tip, a lip of goo at its base and a face on its front (the left: the sheets
look left). Each look fills the jelly with its own insides:
- forest: moss-green jelly with rising bubbles and a sprout on its back, firefly-yellow eyes;
- necro: bruised violet jelly around a drowned skull whose sockets burn ghost-green;
- city: lamp-blue jelly around a swallowed verdigris cog, ember eyes.

Frames are 52 x 32, feet on the bottom row. The hurtbox is 0.7 of the frame wide (36.4 tx) and the
whole frame tall, so the resting body is about 37 x 27 with its goo lip and the frame is cropped
just above the spit's stretch. The spit (ATTACK) gathers a glow in the belly (frames 2 and 3: the tell), springs
up and spits on the launch frame with its mouth wide open, a spray and a flash, at the launch
point written in the data file; then it recoils and wobbles back.

Projectiles are 22 x 22, drawn heading up: frame 0 is the gob in flight (the head fills the 10 x 10
hitbox, a tail trails below), frames 1 to 5 its splash against whatever it hit ahead: the gob
flattens on the top edge, bursts into a crown of spikes that throws drops back and sideways, and
the drops thin out.
"""
from dataclasses import dataclass
import math

import numpy as np

from . import pixel as px
from . import rig
from .animdata import FieldReader, clip_line, read_clip
from .creature import Key, SheetRow, compose, pose_sheet, relief_tone, star, timeline
from .rig import Part

FW, FH = 52, 32
FACING = -1        # the sheets look left
FOLDER = "Assets/Sprites/Enemies/Slime"
SHEETS = {"forest": "Slime SpriteSheet.png", "necro": "NecroSlime SpriteSheet.png",
          "city": "BlueSlime SpriteSheet.png"}
SHOTS = {"forest": "Slime-Projectile-SpriteSheet.png", "city": "BlueSlime-Projectile-SpriteSheet.png"}
PW = 22            # projectile frame side
SHOT_FRAMES = 6

# label, frame rate, damage (launch) frame, 1-based
CLIPS = [("IDLE", 8, None), ("WALK", 10, None), ("ATTACK", 20, 4), ("DEAD", 12, None)]

# ---------------------------------------------------------------- looks


def _mat(*hexes):
    return rig.Material.of(*hexes)


LOOKS = {
    "forest": {
        "jelly": _mat("#0d1f0c", "#2f6a24", "#4e9c30", "#86cc44", "#d6f48a"),
        "core": _mat("#0d1f0c", "#22501c", "#2f6a24", "#3f8a2a", "#4e9c30"),
        "eye": _mat("#0b1208", "#e0a020", "#ffd84a", "#fff3a0", "#ffffff"),
        "moss": _mat("#0b1608", "#2e5a1c", "#4a8a2a", "#7cc04a", "#b8e070"),
        "drop": _mat("#0d1f0c", "#2f6a24", "#4e9c30", "#86cc44", "#d6f48a"),
        "tell": [px.rgb(h) for h in ("#ffffff", "#fff6b0", "#ffd84a", "#d89a1e")],
        "glow": px.ramp("#c8f07a", "#f2ffb8", "#ffffff"),
        "dust": _mat("#000000", "#1f3a1a", "#2f5428", "#46703a", "#46703a"),
    },
    "necro": {
        "jelly": _mat("#150a1a", "#4a2858", "#73448a", "#a676b6", "#e2c2ea"),
        "core": _mat("#150a1a", "#3a1f48", "#4a2858", "#5c3470", "#73448a"),
        "eye": _mat("#0a0f06", "#4fb83a", "#a6ff5a", "#e6ffc8", "#ffffff"),
        "bone": _mat("#1a1018", "#9a8a98", "#c8bcb4", "#e6dcc8", "#f4ecdc"),
        "drop": _mat("#150a1a", "#4a2858", "#73448a", "#a676b6", "#e2c2ea"),
        "tell": [px.rgb(h) for h in ("#ffffff", "#e6ffc8", "#a6ff5a", "#4fb83a")],
        "glow": px.ramp("#b8ff8a", "#e6ffc8", "#ffffff"),
        "dust": _mat("#000000", "#2a1f30", "#3a2c42", "#4e3c58", "#4e3c58"),
    },
    "city": {
        "jelly": _mat("#07122a", "#1e4c8c", "#3282ca", "#6abcf0", "#d0f2ff"),
        "core": _mat("#07122a", "#173c72", "#1e4c8c", "#2866aa", "#3282ca"),
        "eye": _mat("#140804", "#d8561e", "#ffa04a", "#ffe2b0", "#ffffff"),
        "cog": _mat("#0c1414", "#2a5e52", "#3f8a78", "#72bca0", "#e8a060"),
        "drop": _mat("#07122a", "#1e4c8c", "#3282ca", "#6abcf0", "#d0f2ff"),
        "tell": [px.rgb(h) for h in ("#ffffff", "#ffe2b0", "#ffa04a", "#d8561e")],
        "glow": px.ramp("#9ee0ff", "#e2f8ff", "#ffffff"),
        "dust": _mat("#000000", "#1c2234", "#283048", "#3a4560", "#3a4560"),
    },
}
SHOT_OF = {"forest": "forest", "necro": "forest", "city": "city"}   # the region's projectile

# ---------------------------------------------------------------- poses


@dataclass(frozen=True)
class Blob(Key):
    """One key pose of the slime, in rig units (x forward, y up from the feet)."""
    w: float = 16.0          # half-width at the widest
    h: float = 26.0          # height to the top of the tip
    lean: float = 0.0        # forward shift of the top
    shift: float = 0.0       # forward shift of the base
    lip: float = 0.14        # the goo spreading at the base, as a share of w
    tip: float = 0.0         # the tip's curl, degrees back (negative: forward)
    mouth: float = 0.0       # 0 shut .. 1 wide open
    eyes: float = 1.0        # 1 open, 0 shut
    glow: float = 0.0        # the spit gathering in the belly, 0 .. 1
    glow_y: float = 0.3      # where it is, as a share of the height
    bubbles: float = 0.0     # the rising bubbles' phase
    drops: tuple = ()        # (x, y, r) flying drops
    spray: float = 0.0       # the spit's spray at the mouth, 0 .. 1
    dead: float = 0.0        # 0 alive .. 1 a puddle: the face melts away


CROWN = 0.8        # the dome's top, as a share of the height; the tip rises above it
SOLE = 1.0         # the jelly sits one pixel up, so its ink line is the frame's bottom row


def _profile(p, y):
    """The dome's centre line and half-width at heights y (arrays)."""
    t = np.clip((y - SOLE) / p.h, 0.0, 1.0)
    centre = p.shift + p.lean * t ** 1.5
    s = np.clip(t / CROWN, 0.0, 1.0)
    dome = np.clip(1.0 - s ** 2.3, 0.0, 1.0) ** 0.55
    lip = p.lip * np.clip(1.0 - t / 0.16, 0.0, 1.0) ** 2
    return centre, p.w * (dome + lip)


def _at(p, t, u):
    """Rig point at height share t, across share u (1: the front edge, -1: the back edge)."""
    c, hw = _profile(p, np.array([SOLE + t * p.h]))
    return (float(c[0] + u * hw[0]), SOLE + t * p.h)


def face(p):
    """Centres of the near eye, the far eye and the mouth."""
    return _at(p, 0.5, 0.6), _at(p, 0.52, 0.16), _at(p, 0.27 + 0.05 * p.mouth, 0.5)


def launch_point(p, cv):
    """The pixel the gob leaves from: the front of the open mouth, so that the game's gob bursts
    out between the lips."""
    mouth = face(p)[2]
    return cv.pixel(_at(p, (mouth[1] - SOLE) / p.h, 0.82))


# ---------------------------------------------------------------- building


def _jelly_mask(p, cv):
    c, hw = _profile(p, cv.y)
    mask = (cv.y >= SOLE) & (np.abs(cv.x - c) <= hw) & (cv.y <= SOLE + CROWN * p.h)
    if p.dead >= 0.5:
        return mask
    # the tip: drawn up out of the crown in a fillet, curling back
    base = _at(p, CROWN - 0.2, 0.0)
    a = 90.0 + p.tip
    mid = rig.add(base, rig.vec(a, 0.26 * p.h))
    end = rig.add(mid, rig.vec(a + 50 + 0.5 * p.tip, 0.13 * p.h))
    mask |= cv.capsule(base, mid, 0.36 * p.w, 1.6) | cv.capsule(mid, end, 1.6, 0.7)
    return mask


def _eye(cv, c, r, open_):
    """A dark almond under a lid that slants down to the front, a glowing iris in its front half."""
    if open_ < 0.3:
        return cv.capsule(rig.add(c, (-r, -0.3)), rig.add(c, (r, -0.3)), 0.5), None
    m = cv.ellipse(c, r, r * 1.15 * open_)
    m &= (cv.y - c[1]) < 0.5 * r - 0.5 * (cv.x - c[0])
    iris = cv.ellipse(rig.add(c, (0.35 * r, -0.1 * r)), 0.5 * r, 0.75 * r) & px.erode(m | px.shift(m, 0, 1))
    return m, iris & m


def build(look):
    L = LOOKS[look]

    def builder(body, p, cv):
        parts = []
        jelly = _jelly_mask(p, cv)
        jp = Part("jelly", jelly, L["jelly"], "body")
        tone = relief_tone(jelly, 11, cuts=(0.3, 0.64, 0.9), depth=0.5)
        jp.tone = tone
        eye_n, eye_f, mouth_c = face(p)
        alive = 1.0 - p.dead
        # bubbles rise through the jelly and pop at the top
        for k, u in enumerate((-0.5, -0.1)):
            ph = (p.bubbles + k / 2.0) % 1.0
            b = _at(p, 0.1 + 0.6 * ph, u)
            r = 1.0 + 0.4 * (k == 0)
            bub = cv.ellipse(b, r, r) & px.erode(jelly)
            jp.details.append((bub, 2))
            jp.details.append((bub & ~px.shift(bub, 1, 1), 3))
        if p.dead < 0.5:
            gloss = cv.ellipse(_at(p, 0.66, 0.42), 1.6, 0.8, 35.0)
            gloss |= cv.ellipse(_at(p, 0.5, 0.78), 0.6, 0.6)
            jp.details.append((gloss & px.erode(jelly), 3))
        parts.append(jp)

        # each look's insides
        if look == "necro":
            parts += _skull(cv, p, L, jelly)
        elif look == "city":
            parts += _cog(cv, p, L, jelly)
        else:
            parts += _moss(cv, p, L, jelly)

        # the belly glow that gathers before the spit
        if p.glow > 0:
            gc = _at(p, p.glow_y, -0.35 + 0.55 * p.glow)
            g = cv.ellipse(gc, 1.6 + 2.0 * p.glow, 1.4 + 1.5 * p.glow) & px.erode(jelly)
            glow = rig.Material(L["jelly"].ink, *[tuple(c) for c in L["glow"]], tuple(L["glow"][2]))
            gp = Part("glow", g, glow, "body", outline=False)
            gp.tone = np.where(g, 0, -1)
            gp.tone[g & px.erode(g)] = 1
            gp.tone[g & px.erode(px.erode(g)) & ~px.shift(px.erode(g), -1, -1)] = 2
            parts.append(gp)

        # the face
        if alive > 0.5:
            face_mask = np.zeros_like(jelly)
            glints = np.zeros_like(jelly)
            if look != "necro":
                for c, r in ((eye_n, 2.3), (eye_f, 1.7)):
                    m, g = _eye(cv, c, r, p.eyes)
                    face_mask |= m
                    if g is not None:
                        glints |= g
            mouth = _mouth(cv, p, mouth_c)
            face_mask |= mouth
            fp = Part("face", face_mask & jelly, L["jelly"], "body")
            fp.tone = np.where(face_mask & jelly, 0, -1)
            fp.details.append((face_mask & jelly, "ink"))
            if p.mouth > 0.35:      # the throat's glow behind the open mouth
                throat = cv.ellipse(rig.add(mouth_c, (0.0, -0.4)), 1.0 + p.mouth, 0.7 + 1.2 * p.mouth)
                fp.details.append((throat & mouth & jelly, 2))
            parts.append(fp)
            if look != "necro" and p.eyes >= 0.3:
                ep = Part("irises", glints, L["eye"], "body", outline=False)
                ep.tone = np.where(glints, 1, -1)
                ep.tone[glints & ~px.shift(glints, 1, 0)] = 2
                parts.append(ep)
        elif look == "city" or look == "forest":
            # shut eyes melting into the puddle
            lines = np.zeros_like(jelly)
            for c, r in ((eye_n, 1.6), (eye_f, 1.2)):
                lines |= cv.capsule(rig.add(c, (-r, 0.0)), rig.add(c, (r, 0.0)), 0.45)
            fp = Part("face", lines & px.erode(jelly), L["jelly"], "body")
            fp.tone = np.where(fp.mask, 0, -1)
            fp.details.append((fp.mask, "ink"))
            parts.append(fp)

        # the spray of the spit in front of the mouth
        if p.spray > 0:
            parts.append(_spray(cv, p, L, mouth_c))
        for x, y, r in p.drops:
            d = cv.ellipse((x, y), r, r * 1.1)
            dp = Part("drop", d, L["drop"], "drops")
            dp.tone = np.where(d, 1, -1)
            dp.tone[d & ~px.shift(d, 1, 1)] = 2
            dp.tone[d & ~px.shift(d, -1, -1)] = 0
            parts.append(dp)
        return parts, None

    return builder


def _mouth(cv, p, c):
    if p.glow > 0.5:        # pressed shut on the gathering gob
        return cv.capsule(rig.add(c, (-0.6, 0.2)), rig.add(c, (1.4, 0.2)), 0.5)
    if p.mouth <= 0.05:
        # a wide, sly grin that turns up at the front
        m = cv.capsule(rig.add(c, (-2.2, 0.5)), rig.add(c, (0.4, -0.4)), 0.5)
        m |= cv.capsule(rig.add(c, (0.4, -0.4)), rig.add(c, (2.2, 0.6)), 0.5)
        return m
    return cv.ellipse(c, 1.4 + 1.4 * p.mouth, 0.6 + 2.4 * p.mouth)


def _spray(cv, p, L, mouth_c):
    """A fan of goo bursting forward from the open mouth."""
    mask = np.zeros((cv.h, cv.w), bool)
    s = p.spray
    for k, a in enumerate((-35, -12, 10, 32)):
        d = rig.vec(a)
        r0 = 2.2 + 3.2 * s
        mask |= cv.capsule(rig.add(mouth_c, d, 2.4), rig.add(mouth_c, d, r0 + (k % 2) * 1.5), 0.9, 0.5)
    mask |= cv.ellipse(rig.add(mouth_c, (1.6, 0.0)), 1.8, 2.2)
    part = Part("spray", mask, L["eye"], "fx", outline=False)
    part.tone = np.where(mask, 2, -1)
    part.tone[mask & cv.ellipse(rig.add(mouth_c, (1.6, 0.0)), 1.3, 1.6)] = 3
    return part


def _skull(cv, p, L, jelly):
    """The drowned skull: its face is the slime's face; the sockets burn ghost-green."""
    eye_n, eye_f, mouth_c = face(p)
    mid = ((eye_n[0] + eye_f[0]) / 2, (eye_n[1] + eye_f[1]) / 2)
    inside = px.erode(jelly)
    parts = []
    if p.dead < 0.5:
        skull = cv.ellipse(rig.add(mid, (-0.4, 1.2)), 5.6, 4.6)
        skull |= cv.ellipse(rig.add(mouth_c, (0.0, 0.2)), 3.4, 2.2 + 1.6 * p.mouth)
        skull &= inside
        part = Part("skull", skull, L["bone"], "body")
        part.tone = relief_tone(skull, 3, cuts=(0.3, 0.62, 0.95))
        sockets = np.zeros_like(skull)
        for ec, r in ((eye_n, 1.9), (eye_f, 1.5)):
            sockets |= cv.ellipse(ec, r, r * 1.15 * max(p.eyes, 0.4))
        nose = cv.polygon([rig.add(mid, (1.5, -1.8)), rig.add(mid, (2.3, -3.4)), rig.add(mid, (0.9, -3.4))])
        jaw = cv.capsule(rig.add(mouth_c, (-2.4, 0.0)), rig.add(mouth_c, (2.4, 0.0)), 0.5 + 1.7 * p.mouth)
        part.details.append(((sockets | nose | jaw) & skull, "ink"))
        teeth = np.zeros_like(skull)
        for k in range(-2, 3):
            x = mouth_c[0] + 1.0 * k
            teeth |= cv.capsule((x, mouth_c[1] + 0.2 + 1.3 * p.mouth), (x, mouth_c[1] + 0.6 + 1.5 * p.mouth), 0.35)
        part.details.append((teeth & jaw & skull, 2))
        parts.append(part)
        fire = np.zeros_like(skull)
        for ec, r in ((eye_n, 1.0), (eye_f, 0.7)):
            fire |= cv.ellipse(rig.add(ec, (0.3, -0.2)), r, r * 1.2 * max(p.eyes, 0.4)) & sockets & skull
        fp = Part("fire", fire, L["eye"], "body", outline=False)
        fp.tone = np.where(fire, 1, -1)
        fp.tone[fire & ~px.shift(fire, 1, 0)] = 2
        parts.append(fp)
    else:   # the skull left lying in the puddle
        skull = cv.ellipse(_at(p, 0.55, 0.1), 5.0, 2.6) & inside
        part = Part("skull", skull, L["bone"], "body")
        part.tone = relief_tone(skull, 2, cuts=(0.3, 0.62, 0.95))
        for dx in (1.6, -1.8):
            part.details.append((cv.ellipse(rig.add(_at(p, 0.55, 0.1), (dx, 0.2)), 1.1, 0.8) & skull, "ink"))
        parts.append(part)
    # a bone drifting behind it, knobbed at both ends
    a, b = _at(p, 0.3, -0.62), _at(p, 0.5, -0.3)
    bone = cv.capsule(a, b, 0.6)
    for end, toward in ((a, b), (b, a)):
        d = (end[0] - toward[0], end[1] - toward[1])
        ln = math.hypot(*d) or 1.0
        nrm = (-d[1] / ln, d[0] / ln)
        bone |= cv.ellipse(rig.add(end, nrm, 0.8), 0.9, 0.9) | cv.ellipse(rig.add(end, nrm, -0.8), 0.9, 0.9)
    bone &= px.erode(jelly)
    rp = Part("bone", bone, L["bone"], "body")
    rp.tone = np.where(bone, 1, -1)
    rp.tone[bone & ~px.shift(bone, 1, 1)] = 2
    rp.tone[bone & ~px.shift(bone, -1, -1)] = 0
    parts.append(rp)
    return parts


def _cog(cv, p, L, jelly):
    """A swallowed cog turning slowly in the belly."""
    c = _at(p, 0.3, -0.32)
    r = 4.0 * (1.0 - 0.35 * p.dead)
    turn = 45.0 * p.bubbles
    ang = np.degrees(np.arctan2(cv.y - c[1], cv.x - c[0])) + turn
    dist = np.hypot(cv.x - c[0], cv.y - c[1])
    teeth = np.cos(np.radians(ang * 8)) > 0.1
    cog = ((dist <= r) | ((dist <= r + 1.5) & teeth)) & px.erode(jelly)
    hole = dist <= 1.2
    part = Part("cog", cog, L["cog"], "body")
    part.tone = relief_tone(cog, 2, cuts=(0.3, 0.6, 0.9))
    part.details.append((hole & cog, "ink"))
    part.details.append((px.outline_of(cv.ellipse(c, r - 1.6, r - 1.6)) & cog & ~hole, 0))
    return [part]


def _moss(cv, p, L, jelly):
    """A sprout of two leaves growing out of the back, swaying with the jelly."""
    if p.dead >= 0.5:
        return []
    root = _at(p, 0.62, -0.62)
    sway = 0.6 * p.tip - 2.0 * p.lean
    stem_top = rig.add(root, rig.vec(120.0 + sway, 3.2))
    stem = cv.capsule(root, stem_top, 0.6, 0.5)
    leaves = (cv.ellipse(rig.add(stem_top, rig.vec(150.0 + sway, 1.9)), 2.2, 1.0, 150.0 + sway)
              | cv.ellipse(rig.add(stem_top, rig.vec(60.0 + sway, 1.7)), 1.9, 0.9, 60.0 + sway))
    part = Part("sprout", (stem | leaves) & ~px.erode(jelly), L["moss"], "sprout")
    part.tone = np.where(part.mask, 1, -1)
    part.tone[part.mask & ~px.shift(part.mask, 1, 0)] = 2
    part.tone[stem & part.mask] = 0
    return [part]


# ---------------------------------------------------------------- clips

REST = Blob()


def idle():
    """Breathing: the jelly sags and swells, the tip sways, bubbles rise; a blink."""
    frames = []
    for i in range(6):
        s = math.sin(2 * math.pi * i / 6)
        frames.append(REST.but(w=16.0 + 0.6 * s, h=26.0 - 1.2 * s, lean=0.6 * math.cos(2 * math.pi * i / 6),
                               tip=8 * s, bubbles=i / 6, eyes=0.0 if i == 4 else 1.0))
    return frames


def walk():
    """A creeping shuffle: the front reaches out low, the back gathers up and pushes."""
    keys = [REST.but(w=16.0, h=25.5, lean=0.0, tip=0.0),
            REST.but(w=16.8, h=23.5, lean=3.5, shift=0.5, tip=-10.0),
            REST.but(w=17.2, h=22.5, lean=5.0, shift=0.8, tip=-18.0),
            REST.but(w=15.2, h=27.0, lean=1.5, shift=0.5, tip=10.0),
            REST.but(w=14.8, h=28.0, lean=-1.5, shift=-0.5, tip=16.0),
            REST.but(w=15.6, h=26.0, lean=-1.0, tip=6.0)]
    return [k.but(bubbles=i / 6, drops=((-17.5 - 0.5 * i, 1.0, 0.9),) if i in (1, 2, 3) else ())
            for i, k in enumerate(keys)]


def attack():
    """Notice, gather (the glow rises: tell), squash, spit on the launch frame, recoil, wobble."""
    notice = REST.but(w=15.6, h=27.5, lean=-0.5, tip=8.0, eyes=1.0, glow=0.3, glow_y=0.2)
    gather = REST.but(w=17.0, h=23.5, lean=-1.5, tip=14.0, glow=0.7, glow_y=0.22, tags=("tell",))
    squash = REST.but(w=17.6, h=21.5, lean=-2.5, tip=22.0, glow=1.0, glow_y=0.26, tags=("tell",))
    spit = REST.but(w=14.2, h=29.5, lean=4.5, tip=-28.0, mouth=1.0, spray=1.0, glow=0.0,
                    tags=("tell", "flash"))
    recoil = REST.but(w=15.0, h=28.5, lean=-2.5, tip=24.0, mouth=0.5, spray=0.0,
                      drops=((10.0, 20.0, 0.9),))
    wobble1 = REST.but(w=18.0, h=24.0, lean=1.0, tip=-8.0, mouth=0.15)
    wobble2 = REST.but(w=16.0, h=26.8, lean=-0.5, tip=6.0)
    return timeline(8, [(0, notice, "linear"), (1, gather, "in"), (2, squash, "in"),
                        (3, spit, "out"), (4, recoil, "out"), (5, wobble1, "inout"),
                        (6, wobble2, "inout"), (7, REST, "inout")])


def dead():
    """Struck: it quivers up, caves in, splats flat with a spray of drops and melts into a puddle."""
    up = REST.but(w=14.5, h=28.5, lean=-2.0, tip=30.0, eyes=0.0, mouth=0.6)
    cave = REST.but(w=18.5, h=18.0, lean=1.0, tip=-30.0, eyes=0.0, mouth=0.3, lip=0.16)
    splat = REST.but(w=18.0, h=10.0, lip=0.2, dead=1.0,
                     drops=((-14.0, 16.0, 1.2), (9.0, 19.0, 1.0), (17.0, 12.0, 0.9), (-4.0, 21.0, 0.9)))
    spread = REST.but(w=18.2, h=7.5, lip=0.2, dead=1.0,
                      drops=((-18.0, 9.0, 1.0), (13.0, 13.0, 0.9), (19.5, 5.0, 0.8), (-3.0, 17.0, 0.8)))
    fall = REST.but(w=18.2, h=6.5, lip=0.2, dead=1.0, drops=((-20.0, 2.0, 0.9), (18.0, 5.0, 0.8),
                                                             (-2.0, 10.0, 0.7)))
    pool = REST.but(w=18.2, h=6.0, lip=0.2, dead=1.0, bubbles=0.5)
    return [up, cave, splat, spread, fall, pool, pool.but(h=5.5, bubbles=0.8)]


# ---------------------------------------------------------------- frames


def render(look, pose):
    L = LOOKS[look]
    cv = rig.Canvas(FW, FH, FACING)
    parts, _ = build(look)(None, pose, cv)
    img = compose(parts, FW, FH)
    if "flash" in pose.tags:
        star(img, launch_point(pose, cv), L["tell"], 4)
    return img


POSES = {"IDLE": idle, "WALK": walk, "ATTACK": attack, "DEAD": dead}


def build_clips(look):
    return [(label, [render(look, p) for p in POSES[label]()]) for label, _, _ in CLIPS]


def launch_pixel():
    """The launch point (px, py) in texture pixels: the open mouth of the launch frame."""
    dmg = CLIPS[2][2]
    return launch_point(attack()[dmg - 1], rig.Canvas(FW, FH, FACING))


# ---------------------------------------------------------------- projectiles


def _disc(xs, ys, x, y, rx, ry=None):
    ry = rx if ry is None else ry
    return ((xs - x) / rx) ** 2 + ((ys - y) / ry) ** 2 <= 1.0


def _segment(xs, ys, p0, p1, r0, r1):
    vx, vy = p1[0] - p0[0], p1[1] - p0[1]
    ll = vx * vx + vy * vy or 1e-9
    t = np.clip(((xs - p0[0]) * vx + (ys - p0[1]) * vy) / ll, 0.0, 1.0)
    r = r0 + (r1 - r0) * t
    return (xs - p0[0] - t * vx) ** 2 + (ys - p0[1] - t * vy) ** 2 <= r * r


WALL = 7.0   # the splat's centre: the gob's front stops about here (the hitbox's front edge is at 6)

# the splash frames: (blob half-width, blob half-height, arm length, arm width, arm bulb,
#                     drop distance, drop radius, the hit's flash)
SPLASH = [(6.2, 3.8, 3.0, 1.3, 0.0, 0.0, 0.0, True),
          (4.4, 3.4, 6.6, 1.1, 1.5, 0.0, 0.0, False),
          (3.6, 2.6, 3.2, 0.9, 0.0, 8.2, 1.4, False),
          (2.8, 1.9, 0.0, 0.0, 0.0, 9.0, 1.1, False),
          (1.8, 1.3, 0.0, 0.0, 0.0, 9.4, 0.8, False)]
# the arms of the splat: (degrees from straight back, clockwise; length share)
ARMS = ((-100, 0.7), (-68, 1.0), (-36, 0.8), (-8, 1.0), (22, 0.75), (52, 1.0), (82, 0.8), (106, 0.65))


def shot_frames(look):
    """The gob in flight (frame 0) and its splash (frames 1 to 5), heading up."""
    L = LOOKS[look]
    ys, xs = px.grid(PW, PW)
    c = PW / 2
    # in flight: a round head on the hitbox, a short tail and two flecks trailing behind
    head = _disc(xs, ys, c, c, 4.6, 4.8)
    tail = _segment(xs, ys, (c, c + 2.0), (c + 0.6, c + 7.6), 3.2, 0.6)
    flecks = _disc(xs, ys, c - 1.5, c + 8.0, 0.8) | _disc(xs, ys, c + 1.4, c + 8.6, 0.6)
    frames = [_shade_shot(head | tail | flecks, L, [(c - 1.2, c - 1.0, 2.6)])]
    for k, (bw, bh, arm, aw, bulb, dd, dr, flash) in enumerate(SPLASH):
        cy = WALL + 0.6 * bh
        mask = _disc(xs, ys, c, cy, bw, bh)
        for a, share in ARMS:
            ar = math.radians(a)
            d = (math.sin(ar), math.cos(ar))
            base = (c + d[0] * bw * 0.7, cy + d[1] * bh * 0.7)
            if arm:
                tip = (base[0] + d[0] * arm * share, base[1] + d[1] * arm * share * 0.9)
                mask |= _segment(xs, ys, base, tip, aw, 0.5)
                if bulb:
                    mask |= _disc(xs, ys, tip[0], tip[1], bulb * (0.8 + 0.2 * share))
            if dr:
                dist = dd * (0.8 + 0.2 * share)
                sag = 0.8 * (k - 2)                     # the drops fall back as they fly
                mask |= _disc(xs, ys, c + d[0] * dist, cy + d[1] * dist * 0.85 + sag,
                              dr * (0.75 + 0.25 * share))
        cores = [(c - 0.5, cy - 0.3, 2.6)] if flash else []
        frames.append(_shade_shot(mask, L, cores))
    return frames


def _shade_shot(mask, L, cores):
    """Shade a gob: relief tones, a hot core on a live or bursting gob, a 1 px ink outline."""
    mat, glow = L["jelly"], L["glow"]
    h, w = mask.shape
    ys, xs = px.grid(h, w)
    mask = mask.copy()
    mask[:2, :] = mask[-2:, :] = False      # the outline stays a pixel off the frame's edge
    mask[:, :2] = mask[:, -2:] = False
    img = np.zeros((h, w, 4), np.uint8)
    tone = relief_tone(mask, 3, cuts=(0.35, 0.6, 0.88))
    for k, col in enumerate([mat.shadow, mat.base, mat.light, mat.rim]):
        img[tone == k, :3] = col
    img[mask, 3] = 255
    for x, y, r in cores:
        img[_disc(xs, ys, x, y, r) & mask, :3] = glow[0]
        img[_disc(xs, ys, x - 0.3, y - 0.3, r * 0.6) & mask, :3] = glow[1]
        img[_disc(xs, ys, x - 0.6, y - 0.6, 0.75) & mask, :3] = glow[2]
    ring = px.outline_of(mask)
    img[ring, :3] = mat.ink
    img[ring, 3] = 255
    return img


# ---------------------------------------------------------------- data file


def anim_data(clips, launch):
    lines = [f"size : ({FW},{FH})", "first Frame Position : (0,0)",
             f"projectile position : ({launch[0]},{launch[1]})", ""]
    for (label, rate, dmg), (_, frames) in zip(CLIPS, clips):
        lines.append(clip_line(label, len(frames), rate, None if dmg is None else ("Damage", dmg)))
    return "\n".join(lines) + "\n"


def read_anim_data(text):
    """Read the file the way the game does, field by field; every field must match."""
    reader = FieldReader(text, "Slime AnimData")
    need = reader.need
    size = need("size : (%d,%d)\n")
    first = need("first Frame Position : (%d,%d)\n")
    launch = need("projectile position : (%d,%d)\n\n")
    rows = [read_clip(reader, label, None if dmg is None else "Damage") for label, _, dmg in CLIPS]
    reader.finish()
    return tuple(size), tuple(first), tuple(launch), rows


def check(text, sheets, clips):
    """The faults the game would not report: a field that stops scanning, a row that wraps into the
    next clip, a launch frame that never comes, sheets that disagree with the one data file, a
    launch point off the body, art cut by the frame edge."""
    raw = text.encode("ascii")
    if raw.startswith(b"\xef\xbb\xbf") or b"\r" in raw:
        raise ValueError("Slime AnimData must be plain ASCII with LF line ends")
    (fw, fh), first, (lx, ly), rows = read_anim_data(text)
    if (fw, fh) != (FW, FH) or first != (0, 0):
        raise ValueError(f"Slime AnimData size {fw}x{fh} / first {first}")
    for look, img in sheets.items():
        if img.shape[:2] != (fh * len(CLIPS), fw * max(n for _, n, _, _ in rows)):
            raise ValueError(f"{look} slime sheet is {img.shape[1]}x{img.shape[0]}")
    for (label, n, rate, dmg), (_, frames) in zip(rows, clips["forest"]):
        if not (n >= 1 and n == len(frames) and 1 <= rate <= 60):
            raise ValueError(f"Slime {label}: {n} frames at {rate} fps")
        if dmg is not None and not 1 <= dmg < n:
            raise ValueError(f"Slime {label}: launch frame {dmg} of {n}")
    for look, look_clips in clips.items():
        for label, frames in look_clips:
            for i, f in enumerate(frames):
                if f[0].any() or f[:, 0].any() or f[:, -1].any():
                    raise ValueError(f"{look} slime {label} {i}: cut off by the frame edge")
                if not f[-1, :, 3].any():
                    raise ValueError(f"{look} slime {label} {i}: not standing on the bottom row")
        spit = look_clips[2][1][rows[2][3] - 1]
        if not 0 <= lx < FW / 2 or not spit[ly - 1:ly + 2, lx - 1:lx + 2, 3].all():
            raise ValueError(f"{look} slime: launch point ({lx},{ly}) is not on its mouth")


# ---------------------------------------------------------------- review sheet


def _hurtbox(col):
    w = 0.7 * FW
    return [((FW - w) / 2, 0, (FW + w) / 2, FH, (70, 70, 80, 255))]


def write_pose_sheet(clips, shots, launch, out):
    rows = []
    regions = {"forest": "forest", "necro": "forest", "city": "city"}
    for look, look_clips in clips.items():
        for (label, rate, dmg), (_, frames) in zip(CLIPS, look_clips):
            over = None
            if dmg is not None:    # the game's gob leaving the mouth, heading left (270)
                gob = np.ascontiguousarray(np.rot90(shots[SHOT_OF[look]][0]))
                over = (lambda col, d=dmg, g=gob: [(g, launch[0] - PW // 2, launch[1] - PW // 2)]
                        if col == d - 1 else [])
            info = f"{len(frames)} x {rate} fps" + (f", spits on {dmg}" if dmg else "")
            rows.append(SheetRow(f"{look} {label}", info, frames, regions[look], _hurtbox, None,
                                 (dmg - 1,) if dmg else (), over))
    # the projectiles, padded onto the body frame size so they share the sheet's grid
    for look, frames in shots.items():
        pad = []
        for f in frames:
            big = np.zeros((FH, FW, 4), np.uint8)
            y0, x0 = (FH - PW) // 2, (FW - PW) // 2
            big[y0:y0 + PW, x0:x0 + PW] = f
            pad.append(big)
        rows.append(SheetRow(f"{look} gob", f"{SHOT_FRAMES} x 10 fps, heading up", pad, regions[look],
                             lambda col: [(FW / 2 - 5, FH / 2 - 5, FW / 2 + 5, FH / 2 + 5,
                                           (120, 50, 50, 255))]))
    return pose_sheet(rows, out / "Assets/Fonts/ButtonFont2.ttf", out / "docs/slime_poses.png")


def generate(out):
    clips = {look: build_clips(look) for look in SHEETS}
    launch = launch_pixel()
    sheets = {look: px.sheet(c, FW, FH) for look, c in clips.items()}
    text = anim_data(clips["forest"], launch)
    check(text, sheets, clips)
    folder = out / FOLDER
    written = [px.save_png(sheets[look], folder / name) for look, name in SHEETS.items()]
    shots = {look: shot_frames(look) for look in SHOTS}
    for look, frames in shots.items():
        strip = np.concatenate(frames, axis=1)
        written.append(px.save_png(strip, folder / SHOTS[look]))
    txt = folder / "SlimeAnimData.txt"
    txt.write_bytes(text.encode("ascii"))
    written.append(txt)
    written.append(write_pose_sheet(clips, shots, launch, out))
    return written

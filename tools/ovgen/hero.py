"""The hero's sheet: Sprites/Player/Hero1.png, Hero1AnimData.txt, and docs/hero_poses.png.

The hero is posed with the character rig (`rig.py`): every clip is a list of key poses, with the
in-betweens filled by `rig.timeline`. Frames are 96 x 80 texture pixels, drawn facing right with
the feet on the bottom edge, horizontally centred; the standing body is about 27 x 60.
The frame size also sets the reach of the attack box in game (half the frame width in front of the
centre line, 60 % of the frame height from the feet), which the long blade fills.

Row order, labels and tails are the ones the game's reader scans for, in file order. WALK and RUN
plant a foot on frames 2 and 7 (0-based), where the game plays the footsteps. TAKE DAMAGE holds
four single-frame recoil poses in columns 0-3; the game picks one per hit.
"""
import math

import numpy as np
from PIL import Image, ImageDraw, ImageFont

from . import pixel as px
from . import rig
from .animdata import FieldReader
from .rig import Pose, Smear

FW, FH = 96, 80

MATERIALS = {
    "cloak": rig.Material.of("#0b0912", "#1b1629", "#2c2543", "#463c68", "#6f64a3"),
    "armour": rig.Material.of("#0d0f17", "#2c3246", "#4b5571", "#8390b0", "#b9c6e0"),
    "legs": rig.Material.of("#0b0b12", "#23243a", "#3b3e5a", "#5f6588", "#868db0"),
    "mask": rig.Material.of("#1c1822", "#8d8696", "#cdc6ba", "#efe9dc", "#fffdf4"),
    "scarf": rig.Material.of("#3c0710", "#8f1727", "#d8343a", "#ff7356", "#ffb08a"),
    "leather": rig.Material.of("#0e0908", "#2a1b15", "#4a3024", "#6e4a34", "#93694a"),
    "gold": rig.Material.of("#1e1006", "#7a4c16", "#c08a2c", "#f0cd6a", "#fff2c0"),
    "blade": rig.Material.of("#141a28", "#7d88a2", "#c4cddd", "#eef3ff", "#ffffff"),
    "smear": rig.Material.of("#2a4a7a", "#5d9ee8", "#a9d8ff", "#e6f6ff", "#ffffff"),
    "glint": rig.Material.of("#000000", "#8fb8ff", "#cfe4ff", "#f4faff", "#ffffff"),
    "dust": rig.Material.of("#000000", "#3d3a48", "#5f5b6c", "#8a8598", "#8a8598"),
    "ghost": px.rgb("#3b3f8a"),
}
HERO = rig.Body(materials=MATERIALS)

# ---------------------------------------------------------------- key poses

STAND = Pose(hip=(0.0, 25.2), foot_f=(4.5, 2.0), foot_b=(-4.0, 2.0), hand_f=(3.0, -13.5),
             hand_b=(-2.5, -14.0), weapon=-58.0, scarf=50.0, scarf_curl=12.0, cape=8.0)
READY = STAND.but(hip=(0.5, 24.0), lean=6.0, foot_f=(6.5, 2.0), foot_b=(-5.5, 2.0),
                  hand_f=(6.0, -10.0), weapon=-30.0, cape=14.0)


def arc(pose, r0, _r1, a0, a1):
    """A smear around the pose's sword shoulder, from the blade's past angle a0 to a1.
    Its outer edge follows the blade tip; r0 sets how thick the crescent gets."""
    up = 90.0 - pose.lean
    sh = rig.add(rig.add(pose.hip, rig.vec(up, HERO.shoulder * pose.stretch)), rig.vec(up - 90), 0.8)
    tip = rig.weapon_point(HERO, pose, 1.0)
    reach = math.hypot(tip[0] - sh[0], tip[1] - sh[1])
    room = min(FW / 2 - 1.0 - sh[0], FH - 1.0 - sh[1])     # keep the crescent inside the frame
    return (Smear(sh, r0, max(min(reach + 0.5, room), r0 + 6), a0, a1),)


def idle():
    frames = []
    for i in range(8):
        b = 0.5 - 0.5 * math.cos(2 * math.pi * i / 8)        # breath: 0 out, 1 in
        frames.append(STAND.but(hip=(0.0, 25.2 - 0.9 * b), stretch=1.0 + 0.03 * b,
                                hand_f=(3.0, -13.5 - 0.6 * b), weapon=-58.0 + 3 * b,
                                hand_b=(-2.5, -14.0 + 0.4 * b), head=-2 * b,
                                cape=8.0 + 4 * b, cape_wave=i / 8, scarf=46 + 10 * b,
                                scarf_wave=i / 8))
    return frames


# gait phase of each frame: the front foot strikes at phase 0 (frame 2), the back foot at 0.5,
# between frames 6 and 7, so that it is planted on frame 7
_PHASE = [0.714, 0.857, 0.0, 0.111, 0.222, 0.333, 0.444, 0.571]


def _foot(phase, stride, lift, stance, ground=2.0):
    """Ankle position for a gait phase: planted and sliding back, then swinging forward."""
    phase %= 1.0
    if phase < stance:
        t = phase / stance
        return (stride * (1 - 2 * t), ground), 0.0
    t = (phase - stance) / (1 - stance)
    x = -stride + 2 * stride * (0.5 - 0.5 * math.cos(math.pi * t))
    toe = -25 * math.sin(math.pi * min(t * 1.6, 1.0)) if t < 0.6 else 10 * math.sin(math.pi * t)
    return (x, ground + lift * math.sin(math.pi * t)), toe


def walk():
    frames = []
    for i, ph in enumerate(_PHASE):
        ff, tf = _foot(ph, 6.0, 3.5, 0.5)
        fb, tb = _foot(ph + 0.5, 6.0, 3.5, 0.5)
        bob = math.cos(4 * math.pi * (ph - 0.25))          # high at passing, low after contact
        swing = math.cos(2 * math.pi * ph)                   # back arm swings against the front leg
        frames.append(STAND.but(
            hip=(0.5, 24.6 + 0.7 * bob), lean=6.0 + 1.0 * bob, foot_f=(ff[0] + 0.5, ff[1]), toe_f=tf,
            foot_b=(fb[0] - 0.5, fb[1]), toe_b=tb, hand_b=(-1.0 + 4.0 * swing, -13.5),
            hand_f=(4.0 - 1.5 * swing, -12.5), weapon=-50 - 6 * swing, head=2.0,
            cape=20 + 4 * bob, cape_curl=8, cape_wave=i / 8, scarf=62 + 6 * bob, scarf_wave=i / 4))
    return frames


def run():
    frames = []
    for i, ph in enumerate(_PHASE):
        ff, tf = _foot(ph, 9.0, 7.0, 0.38)
        fb, tb = _foot(ph + 0.5, 9.0, 7.0, 0.38)
        bob = math.cos(4 * math.pi * (ph - 0.3))
        swing = math.cos(2 * math.pi * ph)
        frames.append(STAND.but(
            hip=(1.5, 23.6 + 1.2 * bob), lean=16.0 + 1.5 * bob, head=-8.0,
            foot_f=(ff[0] + 1.5, ff[1]), toe_f=tf, foot_b=(fb[0] + 0.5, fb[1]), toe_b=tb,
            hand_b=(2.0 + 6.0 * swing, -9.0 + 2 * abs(swing)), hand_f=(-6.0 - 2 * swing, -11.0),
            weapon=-168 + 5 * swing, cape=58 + 8 * bob, cape_curl=10, cape_wave=i / 4,
            scarf=88 + 6 * bob, scarf_curl=6, scarf_wave=i / 4))
    return frames


def dash():
    base = STAND.but(hip=(2.0, 18.5), lean=38.0, head=-30.0, foot_f=(13.0, 2.0), toe_f=10,
                     foot_b=(-12.0, 2.0), toe_b=-20, hand_f=(-8.0, -7.0), weapon=-172.0,
                     hand_b=(3.0, -8.0), cape=100.0, cape_curl=5.0, scarf=100.0, scarf_curl=2.0,
                     ghosts=((-6, 0, 0.45), (-12, 0, 0.2)))
    return [base.but(cape_wave=i / 4, scarf_wave=i / 4, hip=(2.0, 18.5 + 0.4 * (i % 2)),
                     dust=((-16.0 - 3 * i, 2.0, 1.2 + 0.3 * i),)) for i in range(4)]


CROUCH = STAND.but(hip=(1.0, 18.5), lean=18.0, head=-8.0, foot_f=(6.0, 2.0), foot_b=(-5.0, 2.0),
                   hand_f=(-4.0, -11.0), hand_b=(-7.0, -10.0), weapon=-150.0, cape=4.0,
                   scarf=30.0)
LAUNCH = STAND.but(hip=(0.5, 29.0), stretch=1.07, lean=4.0, head=4.0, foot_f=(2.5, 6.0),
                   foot_b=(-2.5, 4.0), toe_f=-45, toe_b=-55, hand_f=(-2.0, -15.0),
                   hand_b=(3.0, 2.0), weapon=-120.0, cape=-6.0, cape_curl=2.0, scarf=-4.0,
                   dust=((-6.0, 1.5, 1.6), (6.0, 1.5, 1.3)))
RISE = STAND.but(hip=(0.0, 31.0), stretch=1.03, lean=0.0, head=6.0, foot_f=(5.0, 13.0),
                 foot_b=(-4.0, 9.0), toe_f=-20, toe_b=-45, hand_f=(-4.0, -12.0),
                 hand_b=(4.0, -6.0), weapon=-140.0, cape=2.0, cape_curl=-4.0, scarf=10.0,
                 scarf_curl=-6.0)


def jump():
    apex = RISE.but(hip=(0.0, 30.0), stretch=1.0, foot_f=(6.0, 14.0), foot_b=(-4.0, 11.0),
                    cape=25.0, cape_curl=14.0, scarf=45.0, scarf_curl=10.0, cape_wave=0.5)
    return rig.timeline(5, [(0, CROUCH, "linear"), (1, LAUNCH, "out"), (2, RISE, "out"),
                            (4, apex, "inout")])


def fall():
    base = STAND.but(hip=(0.0, 30.0), lean=-4.0, head=10.0, foot_f=(7.0, 12.0), foot_b=(-5.0, 7.0),
                     toe_f=-10, toe_b=-40, hand_f=(3.0, -9.0), hand_b=(-7.0, -3.0), weapon=-35.0,
                     cape=100.0, cape_curl=10.0, cape_flutter=12.0, scarf=125.0, scarf_curl=10.0)
    return [base.but(cape_wave=i / 4, scarf_wave=i / 4, cape=100 + 8 * math.sin(i * math.pi / 2),
                     hand_b=(-7.0, -3.0 + (i % 2)), foot_f=(7.0, 12.0 + 0.6 * (i % 2)))
            for i in range(4)]


def light_1():
    """A horizontal slash: draw back, whip through at chest height, follow through low."""
    wind = READY.but(hip=(-0.5, 23.5), lean=-6.0, head=-6.0, hand_f=(-6.0, -3.0), weapon=160.0,
                     hand_b=(5.0, -9.0), cape=4.0, scarf=40.0, foot_b=(-6.5, 2.0))
    coil = wind.but(hand_f=(-7.0, -1.5), weapon=168.0, lean=-8.0)
    strike = READY.but(hip=(2.5, 23.0), lean=16.0, head=-10.0, foot_f=(9.5, 2.0), foot_b=(-6.5, 2.0),
                       toe_b=-15, hand_f=(7.0, -2.0), weapon=-6.0, hand_b=(-9.0, -9.0),
                       cape=46.0, cape_curl=10.0, scarf=85.0)
    strike = strike.but(smear=arc(strike, 10, 33, 165, -6))
    follow = strike.but(hand_f=(10.0, -9.0), weapon=-40.0, lean=14.0, cape=36.0, scarf=70.0,
                        smear=arc(strike, 16, 33, 25, -40))
    settle = READY.but(hand_f=(8.0, -10.0), weapon=-38.0, cape=22.0, cape_wave=0.5)
    return rig.timeline(6, [(0, wind, "linear"), (1, coil, "in"), (2, strike, "out"),
                            (3, follow, "out"), (5, settle, "inout")])


def light_2():
    """A rising backhand: drop the blade low behind, sweep it up in front, finish high."""
    low = READY.but(hip=(0.0, 21.5), lean=14.0, head=-4.0, hand_f=(-3.0, -13.0), weapon=-150.0,
                    hand_b=(2.0, -12.0), foot_f=(8.0, 2.0), cape=10.0, scarf=40.0)
    coil = low.but(hand_f=(-1.0, -14.5), weapon=-125.0, hip=(0.5, 21.0))
    strike = READY.but(hip=(2.0, 25.0), lean=-2.0, head=8.0, foot_f=(8.5, 2.0), foot_b=(-6.0, 2.0),
                       toe_b=-20, hand_f=(9.5, 4.5), weapon=62.0, hand_b=(-8.0, -8.0),
                       cape=28.0, cape_curl=-4.0, scarf=30.0, scarf_curl=18.0, weapon_behind=False)
    strike = strike.but(smear=arc(strike, 8, 33, -120, 62))
    follow = strike.but(hand_f=(5.0, 5.0), weapon=98.0, head=10.0, smear=arc(strike, 14, 33, 20, 98),
                        cape=20.0, scarf=40.0)
    settle = READY.but(hand_f=(6.0, -8.0), weapon=-20.0, cape_wave=0.5)
    return rig.timeline(6, [(0, low, "linear"), (1, coil, "in"), (2, strike, "out"),
                            (3, follow, "out"), (5, settle, "inout")])


def light_3():
    """A heavy overhead cleave: raise the blade high, step in, bring it down to the ground."""
    raise1 = READY.but(hip=(-1.0, 25.5), lean=-8.0, head=-10.0, hand_f=(-3.0, 5.0), weapon=120.0,
                       hand_b=None, foot_b=(-6.0, 2.0), cape=6.0, scarf=36.0, weapon_behind=True)
    raise2 = raise1.but(hip=(-1.5, 26.5), stretch=1.04, lean=-12.0, hand_f=(-5.0, 6.5),
                        weapon=150.0, toe_f=15, foot_f=(6.0, 2.5))
    step = raise2.but(hip=(2.0, 24.0), lean=4.0, foot_f=(12.0, 4.0), hand_f=(1.0, 7.0),
                      weapon=108.0, stretch=1.02, weapon_behind=False)
    strike = READY.but(hip=(4.0, 19.5), lean=24.0, head=-16.0, foot_f=(13.5, 2.0), foot_b=(-8.5, 2.0),
                       toe_b=-25, hand_f=(11.0, -7.0), hand_b=None, weapon=-42.0, cape=60.0,
                       cape_curl=10.0, scarf=95.0)
    strike = strike.but(smear=arc(strike, 9, 34, 150, -42), dust=((30.0, 1.5, 1.5),))
    impact = strike.but(hand_f=(10.0, -11.0), weapon=-62.0, cape=40.0, scarf=70.0, cape_wave=0.3,
                        smear=arc(strike, 18, 34, 0, -62), dust=((31.0, 2.0, 2.0), (25.0, 1.5, 1.2)))
    settle = READY.but(hip=(1.5, 23.0), foot_f=(9.0, 2.0), foot_b=(-7.0, 2.0), hand_f=(8.0, -10.0),
                       weapon=-40.0, cape=20.0, cape_wave=0.7)
    return rig.timeline(7, [(0, raise1, "linear"), (1, raise2, "in"), (2, step, "in"),
                            (3, strike, "out"), (4, impact, "out"), (6, settle, "inout")])


WAIT = STAND.but(hip=(-1.0, 20.5), lean=10.0, head=-8.0, foot_f=(9.0, 2.0), foot_b=(-9.5, 2.0),
                 toe_b=-10, hand_f=(-7.0, -8.5), hand_b=None, weapon=172.0, cape=24.0,
                 cape_curl=10.0, scarf=70.0)


def heavy_prep():
    start = READY.but(hand_f=(4.0, -11.0), weapon=-40.0)
    mid = READY.but(hip=(0.0, 22.5), lean=2.0, hand_f=(-2.0, -10.0), weapon=-120.0, hand_b=None,
                    foot_b=(-7.5, 2.0), cape=14.0)
    over = WAIT.but(hip=(-1.5, 20.0), weapon=178.0, hand_f=(-8.0, -8.0), lean=12.0)
    return rig.timeline(5, [(0, start, "linear"), (2, mid, "in"), (3, over, "out"),
                            (4, WAIT, "inout")])


def heavy_wait():
    out = []
    for i, g in enumerate((0.25, 0.5, 0.75, 0.95)):
        b = math.sin(i * math.pi / 2)
        out.append(WAIT.but(hip=(-1.0, 20.5 - 0.4 * (i % 2)), weapon=172.0 + 1.5 * b, glint=g,
                            cape=24.0 + 4 * b, cape_wave=i / 4, scarf=70 + 6 * b, scarf_wave=i / 4))
    return out


def heavy_hit():
    """A huge two-handed sweep from behind, over the top and out in front."""
    wind = WAIT.but(weapon=182.0, hand_f=(-8.0, -7.0), lean=8.0)
    mid = STAND.but(hip=(2.0, 23.0), lean=2.0, head=-6.0, foot_f=(11.0, 2.0), foot_b=(-9.0, 2.0),
                    hand_f=(1.0, 6.0), hand_b=None, weapon=100.0, cape=40.0, scarf=70.0)
    strike = STAND.but(hip=(3.0, 19.0), lean=24.0, head=-18.0, foot_f=(15.0, 2.0), foot_b=(-9.5, 2.0),
                       toe_b=-30, hand_f=(5.0, -4.5), hand_b=None, weapon=-8.0, cape=80.0,
                       cape_curl=8.0, scarf=100.0)
    strike = strike.but(smear=arc(strike, 6, 35, 178, -8))
    follow = strike.but(hand_f=(11.0, -11.0), weapon=-48.0, lean=28.0, cape=60.0, scarf=85.0,
                        smear=arc(strike, 14, 35, 40, -48), cape_wave=0.4)
    recover = READY.but(hip=(2.0, 22.0), foot_f=(11.0, 2.0), foot_b=(-8.0, 2.0), hand_f=(7.0, -11.5),
                        weapon=-55.0, cape=30.0, cape_wave=0.8)
    return rig.timeline(7, [(0, wind, "linear"), (1, mid, "in"), (2, strike, "out"),
                            (3, follow, "out"), (6, recover, "inout")])


AIR = STAND.but(hip=(0.0, 30.0), lean=-6.0, head=8.0, foot_f=(7.0, 13.0), foot_b=(-6.0, 10.0),
                toe_f=-15, toe_b=-40, hand_f=(-1.0, 4.0), hand_b=None, weapon=108.0,
                cape=112.0, cape_curl=10.0, cape_flutter=12.0, scarf=125.0)


def jump_air():
    lift = AIR.but(hand_f=(2.0, 2.0), weapon=70.0, lean=0.0, cape=90.0, scarf=100.0)
    top = AIR.but(hand_f=(-3.0, 4.0), weapon=122.0, lean=-10.0, stretch=1.04, cape_wave=0.5)
    return rig.timeline(3, [(0, lift, "linear"), (1, top, "out"), (2, AIR, "inout")])


def jump_hit():
    """A plunge: the blade comes down in front and bites the ground as the hero lands."""
    down = STAND.but(hip=(2.0, 24.0), lean=20.0, head=-10.0, foot_f=(8.0, 3.0), foot_b=(-6.0, 5.0),
                     toe_b=-30, hand_f=(9.0, -2.0), hand_b=None, weapon=-30.0, cape=150.0,
                     cape_curl=10.0, scarf=150.0)
    down = down.but(smear=arc(down, 8, 34, 110, -30))
    impact = STAND.but(hip=(2.0, 15.5), lean=34.0, head=-22.0, foot_f=(10.0, 2.0), foot_b=(-8.0, 2.0),
                       toe_b=-35, hand_f=(9.0, -12.0), hand_b=None, weapon=-66.0, cape=40.0,
                       cape_curl=20.0, scarf=60.0, scarf_curl=20.0)
    impact = impact.but(smear=arc(impact, 14, 34, 10, -66),
                        dust=((26.0, 2.0, 2.4), (17.0, 1.5, 1.6), (-10.0, 1.5, 1.4)))
    hold = impact.but(smear=(), dust=((29.0, 3.0, 1.6), (13.0, 2.0, 1.0)), cape=20.0, cape_wave=0.3,
                      scarf=40.0)
    stand = READY.but(hand_f=(6.0, -11.0), weapon=-45.0, cape=12.0, cape_wave=0.7)
    return rig.timeline(6, [(0, down, "linear"), (1, impact, "out"), (2, hold, "linear"),
                            (5, stand, "inout")])


def take_damage():
    back = STAND.but(hip=(-3.0, 24.0), lean=-22.0, head=-25.0, foot_f=(6.0, 2.0), foot_b=(-6.0, 2.0),
                     toe_f=20, hand_f=(8.0, -6.0), weapon=-10.0, hand_b=(-9.0, -4.0), cape=-10.0,
                     scarf=-20.0, scarf_curl=-10.0)
    hunch = STAND.but(hip=(-2.0, 21.0), lean=30.0, head=20.0, foot_f=(5.0, 2.0), foot_b=(-7.0, 2.0),
                      hand_f=(2.0, -13.0), weapon=-100.0, hand_b=(5.0, -8.0), cape=-15.0,
                      cape_curl=-6.0, scarf=-10.0)
    twist = STAND.but(hip=(-2.0, 25.0), lean=-12.0, head=15.0, foot_f=(8.0, 6.0), foot_b=(-5.0, 2.0),
                      toe_f=-20, hand_f=(-6.0, -4.0), weapon=150.0, hand_b=(4.0, -3.0), cape=-5.0,
                      scarf=20.0)
    reel = STAND.but(hip=(-4.0, 22.5), lean=-30.0, head=-10.0, foot_f=(7.0, 2.0), foot_b=(-8.0, 2.0),
                     toe_f=25, hand_f=(6.0, 3.0), weapon=40.0, hand_b=(-4.0, -13.0), cape=-20.0,
                     cape_curl=-8.0, scarf=0.0)
    return [back, hunch, twist, reel]


KNEEL = STAND.but(hip=(-1.0, 15.5), lean=22.0, head=20.0, foot_f=(7.0, 2.0), foot_b=(-12.0, 1.5),
                  toe_b=-75, hand_f=(8.0, -10.0), weapon=-70.0, hand_b=(4.0, -12.0), cape=10.0,
                  scarf=20.0)
LYING = STAND.but(hip=(-10.0, 4.5), lean=96.0, head=-10.0, foot_f=(-32.0, 2.0), foot_b=(-30.0, 1.5),
                  toe_f=-90, toe_b=-90, hand_f=(5.0, 10.0), weapon=-4.0, hand_b=(2.0, 13.0),
                  cape=84.0, cape_curl=-10.0, cape_flutter=2.0, scarf=95.0, scarf_curl=-12.0)


def dead():
    hit = STAND.but(hip=(-2.0, 24.0), lean=-18.0, head=-25.0, foot_f=(6.0, 3.0), toe_f=20,
                    hand_f=(9.0, -4.0), weapon=-15.0, hand_b=(-9.0, -5.0), cape=-10.0, scarf=-15.0)
    sway = STAND.but(hip=(-1.0, 21.5), lean=4.0, head=25.0, foot_f=(6.0, 2.0), foot_b=(-6.0, 2.0),
                     hand_f=(5.0, -14.0), weapon=-80.0, hand_b=(2.0, -14.0), cape=0.0, scarf=10.0)
    slump = KNEEL.but(head=35.0, lean=30.0, hand_f=(7.0, -14.0), weapon=-88.0, hand_b=(6.0, -14.0))
    topple = STAND.but(hip=(-4.0, 10.0), lean=62.0, head=10.0, foot_f=(-10.0, 2.0), foot_b=(-18.0, 1.5),
                       toe_f=-60, toe_b=-80, hand_f=(8.0, -8.0), weapon=-30.0, hand_b=(8.0, -4.0),
                       cape=-60.0, scarf=-30.0)
    bounce = LYING.but(hip=(-9.0, 6.5), lean=88.0, head=-25.0, hand_f=(5.0, 12.0), weapon=10.0,
                       cape=100.0, cape_curl=-6.0)
    return rig.timeline(10, [(0, hit, "linear"), (2, sway, "out"), (4, slump, "in"),
                             (6, topple, "in"), (7, bounce, "out"), (8, LYING, "out"),
                             (9, LYING, "linear")])


def revive():
    push = LYING.but(hip=(-9.0, 7.0), lean=78.0, head=-20.0, hand_f=(1.0, -6.0), hand_b=(3.0, -7.0),
                     weapon=-10.0, cape=70.0, cape_curl=-6.0)
    crawl = STAND.but(hip=(-6.0, 12.0), lean=60.0, head=-15.0, foot_f=(-12.0, 2.0), foot_b=(-20.0, 1.5),
                      toe_f=-70, toe_b=-85, hand_f=(4.0, -14.0), hand_b=(2.0, -15.0), weapon=-10.0,
                      cape=-40.0, scarf=-20.0)
    kneel = KNEEL.but(head=0.0, lean=16.0, hand_f=(7.0, -8.0), weapon=-80.0)
    rise = STAND.but(hip=(0.0, 22.0), lean=8.0, head=-6.0, foot_f=(7.0, 2.0), foot_b=(-6.0, 2.0),
                     hand_f=(6.0, -7.0), weapon=40.0, cape=20.0, scarf=60.0)
    flourish = READY.but(hip=(0.0, 25.5), stretch=1.03, lean=-2.0, head=-8.0, hand_f=(8.0, -1.0),
                         weapon=80.0, glint=0.8, cape=30.0, cape_wave=0.5, scarf=70.0)
    return rig.timeline(10, [(0, LYING, "linear"), (1, push, "out"), (3, crawl, "inout"),
                             (5, kneel, "inout"), (7, rise, "out"), (8, flourish, "out"),
                             (9, READY.but(hand_f=(6.0, -9.0), weapon=-30.0, cape_wave=0.8), "inout")])


GUARD = STAND.but(hip=(-1.0, 22.5), lean=-6.0, head=8.0, foot_f=(7.5, 2.0), foot_b=(-7.5, 2.0),
                  hand_f=(9.0, -7.0), hand_b=None, weapon=98.0, cape=14.0, scarf=50.0)
PARRY_AT = 0.55  # where the blow meets the blade, along it


def parry():
    up = READY.but(hand_f=(7.0, -9.0), hand_b=None, weapon=40.0)
    hit = GUARD.but(glint=PARRY_AT, hip=(-2.0, 22.0), lean=-9.0, cape=24.0, scarf=60.0)
    return rig.timeline(5, [(0, up, "linear"), (1, GUARD, "out"), (2, hit, "out"),
                            (3, GUARD.but(cape_wave=0.5), "linear"),
                            (4, READY.but(hand_f=(6.0, -9.0), weapon=-20.0), "inout")])


# ---------------------------------------------------------------- clips

# label, frames, frame rate, damage frame (1-based) or None
CLIPS = [
    ("IDLE", idle, 8, None),
    ("WALK", walk, 12, None),
    ("DASH", dash, 20, None),
    ("RUN", run, 16, None),
    ("JUMP", jump, 14, None),
    ("FALL", fall, 10, None),
    ("LIGHT ATTACK_1", light_1, 16, 3),
    ("LIGHT ATTACK_2", light_2, 16, 3),
    ("LIGHT ATTACK_3", light_3, 16, 4),
    ("HEAVY ATTACK_PREPARATION", heavy_prep, 12, None),
    ("HEAVY ATTACK_WAIT", heavy_wait, 8, None),
    ("HEAVY ATTACK_HIT", heavy_hit, 18, 3),
    ("JUMP ATTACK_IN_THE_AIR", jump_air, 12, None),
    ("JUMP ATTACK_HIT", jump_hit, 16, 2),
    ("TAKE DAMAGE", take_damage, 10, None),
    ("DEAD", dead, 10, None),
    ("PARRY", parry, 16, None),
    ("REVIVE", revive, 10, None),
]
DAMAGE_POSES = 4  # TAKE DAMAGE: one frame per hit, four poses side by side


def frame_count(label, poses):
    return 1 if label == "TAKE DAMAGE" else len(poses)


def parry_offset():
    """The tx offset from the frame's top-left where the blow meets the raised blade."""
    x, y = rig.weapon_point(HERO, parry()[2], PARRY_AT)
    return int(round(x + FW / 2)), int(round(FH - y))


def anim_data(counts):
    lines = [f"size : ({FW},{FH})", "first Frame Position : (0,0)", ""]
    for label, _, rate, dmg in CLIPS:
        line = f"{label} | NbFrame : {counts[label]} / FrameRate : {rate}"
        if dmg is not None:
            line += f" / DAMAGE FRAME : {dmg}"
        if label == "PARRY":
            ox, oy = parry_offset()
            line += f" / PARRY IMPACT FX POSITIOJN ( {ox},{oy})"
        lines.append(line)
    return "\n".join(lines) + "\n"


def build():
    """Every clip's frames (uint8 RGBA), in row order."""
    return [(label, [rig.render(HERO, p, FW, FH) for p in fn()]) for label, fn, _, _ in CLIPS]


def sheet(clips):
    return px.sheet(clips, FW, FH)


def pose_sheet(clips, out):
    """docs/hero_poses.png: every frame at x3 on a dark ground, one labelled row per clip."""
    scale, label_w, pad = 3, 250, 6
    cols = max(len(frames) for _, frames in clips)
    cw, ch = FW * scale, FH * scale
    W = label_w + cols * (cw + pad) + pad
    H = len(clips) * (ch + pad) + pad
    img = Image.new("RGBA", (W, H), (18, 20, 26, 255))
    draw = ImageDraw.Draw(img)
    font = ImageFont.truetype(str(out / "Assets/Fonts/ButtonFont2.ttf"), 16)
    grounds = [(28, 44, 36, 255), (34, 36, 56, 255)]   # forest green, city indigo
    for row, (label, frames) in enumerate(clips):
        y = pad + row * (ch + pad)
        rate = next(r for lab, _, r, _ in CLIPS if lab == label)
        draw.text((pad, y + 8), label, font=font, fill=(225, 220, 205, 255))
        draw.text((pad, y + 30), f"{len(frames)} x {rate} fps", font=font, fill=(150, 150, 160, 255))
        for col, f in enumerate(frames):
            x = label_w + col * (cw + pad)
            draw.rectangle([x, y, x + cw - 1, y + ch - 1], grounds[(row + col) % 2])
            big = Image.fromarray(px.upscale(f, scale), "RGBA")
            img.alpha_composite(big, (x, y))
    return px.save_png(np.array(img), out / "docs/hero_poses.png")


# ---------------------------------------------------------------- checks


def read_anim_data(text):
    """Read the file the way the game does, field by field; every field must match."""
    reader = FieldReader(text, "AnimData")
    need = reader.need
    size = need("size : (%d,%d)\n")
    first = need("first Frame Position : (%d,%d)\n\n")
    clips = []
    for label, _, _, dmg in CLIPS:
        n, rate = need(label + " | NbFrame : %d / FrameRate : %d\n")
        d = need(" / DAMAGE FRAME : %d")[0] if dmg is not None else None
        fx = need(" / PARRY IMPACT FX POSITIOJN ( %d,%d)") if label == "PARRY" else None
        need("\n")
        clips.append((label, n, rate, d, fx))
    reader.finish()
    return tuple(size), tuple(first), clips


def check(text, sheet_img, clips):
    """The faults the game would not report: a field that stops scanning, a row that wraps into the
    next clip, a damage frame that never comes, a clip that never finishes, feet off the ground."""
    (fw, fh), first, rows = read_anim_data(text)
    assert (fw, fh) == (FW, FH) and first == (0, 0)
    assert sheet_img.shape[:2] == (fh * len(CLIPS), fw * max(len(f) for _, f in clips))
    for (label, n, rate, dmg, fx), (_, frames) in zip(rows, clips):
        assert n >= 1 and 1 <= rate <= 60, label
        columns = DAMAGE_POSES if label == "TAKE DAMAGE" else n
        assert columns * fw <= sheet_img.shape[1] and len(frames) >= columns, label
        if dmg is not None:
            assert 1 <= dmg < n, label
        if fx is not None:
            assert 0 <= fx[0] < fw and 0 <= fx[1] < fh, label
    assert 0.25 <= rows[16][1] / rows[16][2] <= 0.35            # PARRY lasts about 0.3 s
    for label in ("IDLE", "WALK", "RUN"):
        for i, f in enumerate(dict(clips)[label]):
            feet = np.nonzero(f[-1, FW // 2 - 16:FW // 2 + 16, 3])[0] + FW // 2 - 16
            if label == "IDLE" or i in (2, 7):              # standing, or a planted footfall
                assert feet.size, f"{label} {i}: no foot on the bottom row"
                if label != "RUN":                          # running feet land ahead of the body
                    assert abs((feet.min() + feet.max() + 1) / 2 - FW / 2) <= 4, f"{label} {i}"
    for label, frames in clips:                              # nothing cut off by the frame edge
        for i, f in enumerate(frames):
            assert not (f[0].any() or f[:, 0].any() or f[:, -1].any()), f"{label} {i}"


def generate(out):
    clips = build()
    counts = {label: frame_count(label, frames) for label, frames in clips}
    img, text = sheet(clips), anim_data(counts)
    check(text, img, clips)
    png = px.save_png(img, out / "Assets/Sprites/Player/Hero1.png")
    txt = out / "Assets/Sprites/Player/Hero1AnimData.txt"
    txt.parent.mkdir(parents=True, exist_ok=True)
    txt.write_bytes(text.encode("ascii"))
    return [png, txt, pose_sheet(clips, out)]

"""The elevator's machinery: Sprites/Objects/Elevator-Lever.png, Elevator-LeverOutline.png,
Gear-Big.png, Gear-Small.png and Sprites/FX/SparkDownFX.png, SparkUpFX.png.

- Lever: frames of 68 x 47 in one row, the pull clip: LEVER_FRAMES frames at LEVER_FPS, not
  looping, starting and ending on the rest pose (frame 0 is also the lever at rest). An iron
  housing with copper trim sits on the origin (34, 40.89), the bottom of the frame's 87 %; the
  handle leans back at rest, swings forward to its stop and springs back.
- Outline: the rest pose grown by 1 px (diagonals too) in the statues' highlight glow, 68 x 47.
- Gears: iron cog wheels drawn to spin about their centre; their radii at mid-tooth sum to 47 px so that
  a big gear and a small one 141 world px apart (x3) mesh.
- Sparks: 4 frames of 15 x 28, a looping spray of white-hot sparks thrown off the cabin's guide
  rails, falling (Down) or rising (Up). The game tints them with its colour tweens, so the
  sparks are drawn near white with warm tails.
"""
import math

import numpy as np

from . import pixel as px
from .statues import GLOW

LEVER_W, LEVER_H = 68, 47
LEVER_FRAMES, LEVER_FPS = 8, 16
LEVER_ANGLES = (-38, -24, 4, 34, 40, 22, -14, -38)   # degrees from upright, + leans right
PIVOT = (34.0, 29.0)
HANDLE = 23.0
GEAR_BIG_R, GEAR_SMALL_R = 26, 18                    # wheel radii; the teeth stand 4 px out
SPARK_W, SPARK_H, SPARK_FRAMES = 15, 28, 4

IRON = px.ramp("#0e0f16", "#1d202c", "#313646", "#4d5468", "#7a8299", "#a6aec2")
COPPER = px.ramp("#163635", "#245a55", "#37837a", "#5fb09c", "#a2e0c6")
BRASS = px.ramp("#3a2414", "#6e4424", "#a5683a", "#d69a5a", "#f2c88a")
INK = px.rgb("#07060a")
HOT = px.ramp("#7a2410", "#ee8a38", "#ffc772", "#fff2c8", "#ffffff")


def _shaded(c, mask, ramp):
    """A solid lit from the top left with a dark 1 px ink line round it."""
    tone = px.bevel(mask, 1)
    px.paint_tones(c, tone, [ramp[1], ramp[2], ramp[3]])
    px.paint(c, px.outline_of(mask), INK)


def _housing():
    c = px.new_sprite(LEVER_H, LEVER_W)
    box = px.poly_mask(LEVER_W, LEVER_H, [(20, 28), (48, 28), (52, 39), (16, 39)])
    _shaded(c, box, IRON)
    px.paint(c, px.draw_mask(LEVER_W, LEVER_H, lambda d: d.rectangle([19, 31, 48, 32], fill=1)), COPPER[2])
    px.paint(c, px.draw_mask(LEVER_W, LEVER_H, lambda d: d.rectangle([19, 31, 48, 31], fill=1)), COPPER[3])
    for x in (22, 45):
        px.paint(c, px.draw_mask(LEVER_W, LEVER_H, lambda d, x=x: d.point((x, 36), fill=1)), IRON[5])
    slot = px.draw_mask(LEVER_W, LEVER_H, lambda d: d.rectangle([24, 28, 43, 29], fill=1))
    px.paint(c, slot, INK)
    return c


def lever_frame(angle):
    c = _housing()
    a = math.radians(angle)
    tip = (PIVOT[0] + HANDLE * math.sin(a), PIVOT[1] - HANDLE * math.cos(a))
    rod = px.draw_mask(LEVER_W, LEVER_H, lambda d: d.line([PIVOT, tip], fill=1, width=3))
    _shaded(c, rod, IRON[1:])
    knob = px.disc_mask(LEVER_H, LEVER_W, tip[0], tip[1], 4.2)
    _shaded(c, knob, BRASS)
    px.paint(c, px.disc_mask(LEVER_H, LEVER_W, tip[0] - 1.4, tip[1] - 1.4, 1.1) & knob, BRASS[4])
    hub = px.disc_mask(LEVER_H, LEVER_W, PIVOT[0], PIVOT[1], 3.6)
    _shaded(c, hub, COPPER)
    return px.to_rgba8(c)


def lever_sheet():
    return np.concatenate([lever_frame(a) for a in LEVER_ANGLES], axis=1)


def lever_outline(rest):
    solid = rest[..., 3] > 0
    grown = px.dilate(solid, diagonal=True)
    out = np.zeros_like(rest)
    out[grown, :3] = GLOW
    out[grown, 3] = 255
    return out


def gear(radius, teeth, seed):
    size = 2 * (radius + 4)
    c = px.new_sprite(size, size)
    ys, xs = px.grid(size, size)
    cx = cy = size / 2
    r = np.hypot(xs - cx, ys - cy)
    th = np.arctan2(ys - cy, xs - cx)
    tooth = (np.cos(th * teeth) > -0.1)
    body = (r <= radius - 1) | (tooth & (r <= radius + 3))
    spokes = np.zeros_like(body)
    for k in range(5):
        a = 2 * math.pi * k / 5
        spokes |= np.abs((xs - cx) * math.sin(a) - (ys - cy) * math.cos(a)) < 2.2
    hole = (r < radius - 6) & (r > 5) & ~spokes
    body &= ~hole & ~(r < 2)
    _shaded(c, body, IRON[1:])
    rng = np.random.RandomState(seed)
    rim = body & (r > radius - 6) & (r < radius - 4.5) & (rng.rand(size, size) < 0.5)
    px.paint(c, rim, IRON[2])
    px.paint(c, body & (r >= 2) & (r < 4.5), COPPER[3])
    return px.to_rgba8(c)


def spark_frame(f, rising):
    """Short hot streaks thrown from the top centre, each frame a step further along."""
    c = px.new_sprite(SPARK_H, SPARK_W)
    rng = np.random.RandomState(4100 + f)
    for k in range(7):
        t = ((k * 0.37 + f / SPARK_FRAMES) % 1.0)
        spread = (rng.rand() - 0.5) * 10
        x0 = 7.5 + spread * t * 0.4
        y0 = 2 + t * 22
        x1 = 7.5 + spread * (t * 0.4 + 0.18)
        y1 = y0 + 3 + 3 * (1 - t)
        streak = px.draw_mask(SPARK_W, SPARK_H, lambda d: d.line([(x0, y0), (x1, y1)], fill=1, width=1))
        tone = min(4, int(4.6 * (1 - t)) + 1)
        px.paint(c, streak, HOT[tone])
        head = px.draw_mask(SPARK_W, SPARK_H, lambda d: d.point((round(x1), round(y1)), fill=1))
        px.paint(c, head, HOT[4])
    flash = px.disc_mask(SPARK_H, SPARK_W, 7.5, 2.5, 2.2 + (f % 2))
    px.paint(c, flash, HOT[4])
    img = px.to_rgba8(c)
    return img[::-1] if rising else img


def spark_sheet(rising):
    return np.concatenate([spark_frame(f, rising) for f in range(SPARK_FRAMES)], axis=1)


def generate(out):
    objects = out / "Assets/Sprites/Objects"
    fx = out / "Assets/Sprites/FX"
    sheet = lever_sheet()
    return [px.save_png(sheet, objects / "Elevator-Lever.png"),
            px.save_png(lever_outline(sheet[:, :LEVER_W]), objects / "Elevator-LeverOutline.png"),
            px.save_png(gear(GEAR_BIG_R, 12, 71), objects / "Gear-Big.png"),
            px.save_png(gear(GEAR_SMALL_R, 8, 72), objects / "Gear-Small.png"),
            px.save_png(spark_sheet(False), fx / "SparkDownFX.png"),
            px.save_png(spark_sheet(True), fx / "SparkUpFX.png")]

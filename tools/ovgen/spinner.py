"""Assets/Sprites/HUD/LoadingSpinner.png: the loading-screen rune wheel (24 x 24, shown x3).

The game spins it about its centre, so the design is a ring of gold with four moon-silver
crescents and rune ticks: it has no up, and its uneven weight makes the rotation easy to read.
"""
import numpy as np

from . import pixel as px

N = 24
C = N / 2
SILVER = px.ramp("#1d2230", "#4a5368", "#8d97ad", "#c9d1de", "#f4f8ff")


def spinner():
    c = px.new_sprite(N, N)
    ys, xs = px.grid(N, N)
    dx, dy = xs - C, ys - C
    r = np.hypot(dx, dy)
    a = np.arctan2(dy, dx)
    ring = (r >= 7.2) & (r < 9.6)
    # rune ticks cut into the ring, eight of them, one in four longer
    tick = ring & (np.abs(((a / (2 * np.pi) * 8) % 1) - 0.5) < 0.08)
    inner = (r >= 3.0) & (r < 5.0)
    # a crescent sweeping round a third of the ring: the tail that shows the spin
    sweep = (r >= 9.6) & (r < 11.6) & (((a + np.pi) % (2 * np.pi)) < 2.4)
    head = (r >= 9.6) & (r < 11.9) & (np.abs(((a + np.pi) % (2 * np.pi)) - 2.25) < 0.35)
    outline = px.outline_of(ring | sweep | head | inner, diagonal=False)
    px.paint(c, outline, px.INK)
    tone = px.bevel(ring, 1)
    px.paint_tones(c, tone, [px.GOLD[2], px.GOLD[3], px.GOLD[4]])
    px.paint(c, tick, px.GOLD[1])
    px.paint(c, sweep, SILVER[2])
    px.paint(c, sweep & (((a + np.pi) % (2 * np.pi)) > 1.2), SILVER[3])
    px.paint(c, head, SILVER[4])
    tone = px.bevel(inner, 1)
    px.paint_tones(c, tone, [SILVER[1], SILVER[2], SILVER[3]])
    px.paint(c, (r < 1.5), px.GOLD[4])
    # four spokes joining the centre to the ring
    spoke = (r >= 5.0) & (r < 7.2) & (np.abs(((a / (2 * np.pi) * 4) % 1) - 0.5) < 0.07)
    px.paint(c, spoke, px.GOLD[2])
    return c


def generate(out):
    return [px.save_png(spinner(), out / "Assets/Sprites/HUD/LoadingSpinner.png")]

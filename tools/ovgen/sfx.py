"""Every sound effect of the game: player, cloud ability, enemies and the merchant's anvil.

Each effect is layered from a few designed parts, an attack and a body: a sword is a swept-noise
whoosh plus a metallic ring, a hit a pitched thump plus a noise crack, a wet creature resonant
filter sweeps plus bubbles, a creature voice a rough buzz through vowel formants (no recording).
The parts live in `sfx_parts.py`; this module composes them and masters the files.

Output: 16-bit PCM at 44100 Hz. The spatial effects (every enemy sound of the Frog, Nomad, Trash,
Slime and Flying Knight, and the merchant's anvil) are stereo, because only mono samples are
positioned by OpenAL and the game places all its voices at the world origin; they are centred,
widened by a short room. The others (player, cloud, Plant, King) are mono.

Mastering matches the perceived loudness of every effect (the loudest 100 ms, weighted like
`audio.loudness_db`), then bends the peaks under -3 dBFS. `check()` reads each written file back
and raises on a wrong format, name, length, level, or a click at either end.

    cd tools && /usr/bin/python3 -B -m ovgen.sfx [--out DIR] [--png DIR]

writes the effects (default: the repository root), prints the table of levels, and with --png
draws a waveform and spectrogram of each effect.
"""
import zlib
from dataclasses import dataclass
from pathlib import Path

import numpy as np

from . import audio as au
from .sfx_parts import (SR, Mix, air, bubble, clink, crack, croak, curve, grains, growl, hollow_clank,
                        hump, n_of, noise, ring, room, squelch, thump, unit, whoosh)
from .sfx_parts import BAR, BELL, BLADE, HOLLOW, ANVIL, WOOD

SFX = "Assets/Sounds/SFX"

# ---------------------------------------------------------------- player


def sword_light(rng, m):
    """A quick slash: a bright whoosh over a little low air, the edge ringing briefly."""
    m.add(whoosh(rng, 0.26, [(0, 900), (0.07, 3800), (0.26, 1400)], q=1.4, peak=0.07, decay=0.055))
    m.add(air(rng, 0.22, 650, peak=0.07, decay=0.05), gain=0.45)
    m.add(ring(2150, 0.22, BLADE, decay=0.07, attack=0.012), at=0.025, gain=0.3)


def sword_heavy(rng, m):
    """A two-handed swing: a longer, lower whoosh with a tonal 'vwoom', a low push of air and a
    deeper ring."""
    m.add(whoosh(rng, 0.46, [(0, 320), (0.17, 2300), (0.46, 650)], q=1.0, peak=0.16, decay=0.09))
    m.add(whoosh(rng, 0.42, [(0, 220), (0.16, 1100), (0.42, 400)], q=4.0, peak=0.15, decay=0.08),
          gain=0.45)
    m.add(thump(0.36, 120, 62, drop=0.12, attack=0.1, decay=0.08), gain=0.25)
    m.add(ring(1380, 0.4, BLADE, decay=0.1, attack=0.02), at=0.07, gain=0.3)


def dash(rng, m):
    """A quick rush of air with the cloak fluttering, and a scuff of the push-off."""
    m.add(whoosh(rng, 0.25, [(0, 500), (0.06, 1900), (0.25, 700)], q=0.8, peak=0.055, decay=0.05))
    flutter = air(rng, 0.2, 1100, peak=0.05, decay=0.05)
    flutter *= 0.55 + 0.45 * np.sin(au.TAU * 42 * au.time_axis(len(flutter), SR))
    m.add(au.highpass(flutter, 250, sr=SR), gain=0.45)
    m.add(crack(rng, 0.03, 900, 4500, decay=0.008), gain=0.25)


def parry(rng, m):
    """The blade raised to block: a bright metallic clang, a hard tick and a short knock."""
    m.add(crack(rng, 0.02, 2200, 9000, decay=0.0035), gain=0.7)
    m.add(ring(1250, 0.4, BAR, decay=0.12, detune=0.004))
    m.add(ring(1870, 0.3, BAR, decay=0.07, detune=0.003), gain=0.45)
    m.add(thump(0.06, 320, 190, drop=0.01, decay=0.018), gain=0.35)


def parry_success(rng, m):
    """Two blades meeting: a hard clash, two rings beating against each other, a high shimmer,
    and sparks glinting out, in a small room."""
    d = Mix(m.seconds)
    d.add(crack(rng, 0.025, 2500, 11000, decay=0.004), gain=0.9)
    d.add(ring(1480, 0.6, BAR, decay=0.15, detune=0.003), gain=0.6)
    d.add(ring(1523, 0.6, BAR, decay=0.13, detune=0.002), gain=0.5)
    d.add(ring(3320, 0.35, BELL, decay=0.07), gain=0.22)
    d.add(thump(0.08, 240, 150, drop=0.015, decay=0.02), gain=0.3)
    for k in range(9):  # sparks, thinning out
        at = 0.025 + 0.36 * (k / 9) ** 1.4 + rng.uniform(0, 0.02)
        d.add(ring(rng.uniform(5200, 9000), 0.08, [(1, 1, 1), (2.01, 0.3, 0.5)], decay=0.03),
              at=at, gain=0.14 * (1 - 0.6 * k / 9))
    m.add(d.buf)
    m.add(room(d.buf, rng, 0.5, predelay=0.012), gain=0.28)


def walk(rng, m):
    """One footstep: a soft heel thud, a scuff of grit and the faintest clink of armour."""
    m.add(au.lowpass(thump(0.1, 190, 95, drop=0.01, decay=0.014), 1200, sr=SR))
    m.add(crack(rng, 0.05, 700, 4000, decay=0.012), at=0.004, gain=0.5)
    m.add(grains(rng, 0.06, 5, 2500, 7000, grain=0.004, gain=(0.05, 0.12)), at=0.008)
    m.add(clink(3100, 0.05), at=0.012, gain=0.05)


def fall(rng, m):
    """Landing: a full-body thud, a burst of dirt, and the armour settling."""
    m.add(thump(0.22, 130, 60, drop=0.025, decay=0.04))
    m.add(air(rng, 0.12, 1600, peak=0.004, decay=0.035), gain=0.7)
    m.add(crack(rng, 0.04, 2500, 8000, decay=0.012), gain=0.25)
    m.add(clink(2600, 0.08), at=0.012, gain=0.07)
    m.add(clink(3350, 0.07), at=0.045, gain=0.05)


def take_damage(rng, m):
    """The knight is struck: a heavy thump, a crack, the armour clanking, and a short falling
    sting so the hurt reads over the fight."""
    m.add(thump(0.2, 180, 75, drop=0.018, decay=0.03))
    m.add(crack(rng, 0.04, 1500, 7000, decay=0.008), gain=0.8)
    m.add(hollow_clank(rng, 610, 0.2, decay=0.05), gain=0.45)
    t = au.time_axis(n_of(0.2), SR)
    sting = au.saw(curve(len(t), [(0, 540), (0.2, 290)]), len(t), sr=SR, harmonics=16, tilt=1.3)
    sting += 0.7 * au.saw(curve(len(t), [(0, 571), (0.2, 305)]), len(t), sr=SR, harmonics=16, tilt=1.3)
    m.add(au.lowpass(sting, 2200, sr=SR) * au.percussive(len(t), 0.01, 0.055, sr=SR), at=0.015, gain=0.12)


def attack_success(rng, m):
    """The knight's blade lands: thump and crack, a meaty slap sweeping down, a tick of armour."""
    m.add(thump(0.18, 150, 70, drop=0.015, decay=0.028))
    m.add(crack(rng, 0.03, 2000, 8500, decay=0.006), gain=0.85)
    slap = au.svf(noise(rng, n_of(0.12)), curve(n_of(0.12), [(0, 1400), (0.12, 300)]), 1.8, "band", sr=SR)
    m.add(unit(slap * au.percussive(n_of(0.12), 0.002, 0.028, sr=SR)))
    m.add(clink(1950, 0.1), at=0.004, gain=0.12)


def cloud_creation(rng, m):
    """A soft airy swell: breath rising through a sweeping band, a faint open chord shimmering in,
    settling as the cloud forms."""
    n = n_of(0.58)
    t = au.time_axis(n, SR)
    env = hump(n, 0.42, rise_power=2.0, fall=0.06)
    swell = au.svf(noise(rng, n), curve(n, [(0, 380), (0.44, 2600), (0.58, 1700)]), 0.9, "band", sr=SR)
    chord = sum(a * au.sine(au.vibrato(f, n, 5.5, 0.004, 0.1, SR), n, sr=SR, phase=p)
                for f, a, p in ((660, 1.0, 0.0), (990, 0.7, 1.0), (1320, 0.45, 2.0), (1980, 0.2, 0.5)))
    dry = Mix(0.6)
    dry.add(swell * env)
    dry.add(chord * env * (t / t[-1]) ** 0.5, gain=0.09)
    m.add(dry.buf)
    m.add(room(dry.buf, rng, 0.45, predelay=0.01), gain=0.3)


def cloud_destruction(rng, m):
    """A dissolving puff: a soft burst of air closing down, then fine grains fizzing away."""
    n = n_of(0.3)
    puff = au.svf(noise(rng, n), curve(n, [(0, 2600), (0.3, 280)]), 0.8, "low", sr=SR)
    m.add(puff * au.percussive(n, 0.006, 0.075, sr=SR))
    m.add(thump(0.12, 110, 70, drop=0.02, decay=0.035), gain=0.25)
    m.add(grains(rng, 0.42, 46, 2200, 7500, grain=0.006, gain=(0.05, 0.14), thin=2.0), at=0.03)


# ---------------------------------------------------------------- Trash: bramble ghoul, rag scavenger


def trash_attack(rng, m):
    """A wet snarl winding up into a claw swipe, with twigs (or rags) rattling."""
    m.add(growl(rng, 0.36, [(0, 92), (0.12, 132), (0.36, 84)], [(0, (620, 1150, 2500))],
                rough=31, depth=0.75, breath=0.45, attack=0.04, release=0.12), gain=0.9)
    m.add(whoosh(rng, 0.17, [(0, 800), (0.05, 3100), (0.17, 1200)], q=1.5, peak=0.05, decay=0.035),
          at=0.24, gain=0.7)
    m.add(grains(rng, 0.12, 7, 1100, 5000, grain=0.005, gain=(0.08, 0.2)), at=0.26)


def trash_death(rng, m):
    """A death rattle: a groan sinking from 'ah' to 'oh' as the rasp grows, twigs and bones
    clattering slower and slower, and the body crumpling."""
    m.add(growl(rng, 0.85, [(0, 125), (0.3, 100), (0.85, 52)],
                [(0, (720, 1150, 2450)), (0.85, (420, 820, 2300))],
                rough=24, depth=0.9, breath=0.5, attack=0.03, release=0.35))
    at, gap = 0.28, 0.024
    while at < 0.95:
        m.add(crack(rng, 0.02, 1000, 4200, decay=0.004), at=at, gain=0.26 * (1 - (at - 0.28) / 0.8))
        at += gap
        gap *= 1.22
    m.add(thump(0.3, 95, 44, drop=0.03, decay=0.07), at=0.55, gain=0.65)
    m.add(air(rng, 0.2, 1400, peak=0.005, decay=0.05), at=0.55, gain=0.3)


# ---------------------------------------------------------------- Slime


def slime_attack(rng, m):
    """A wet blob spit: the slime gathers with a rising squelch, spits with a pop, and the gob
    spatters."""
    m.add(squelch(rng, 0.14, [(0, 240), (0.14, 950)], q=6.0, peak=0.11, decay=0.03), gain=0.75)
    m.add(bubble(300, 0.05, rise=3.5), at=0.125, gain=0.9)
    m.add(air(rng, 0.05, 3000, peak=0.002, decay=0.01), at=0.125, gain=0.35)
    for k in range(6):
        m.add(bubble(rng.uniform(480, 1400), rng.uniform(0.02, 0.04), rise=rng.uniform(1.5, 3)),
              at=0.16 + rng.uniform(0, 0.2), gain=rng.uniform(0.18, 0.32))
    m.add(squelch(rng, 0.22, [(0, 1500), (0.22, 380)], q=3.0, peak=0.01, decay=0.06), at=0.15, gain=0.45)


def slime_dead(rng, m):
    """A squelching death: the blob caves in with a falling squelch, splats flat and blubs out."""
    m.add(squelch(rng, 0.34, [(0, 950), (0.34, 190)], q=7.0, peak=0.05, decay=0.12))
    m.add(thump(0.2, 125, 58, drop=0.02, decay=0.05), at=0.23, gain=0.6)
    m.add(air(rng, 0.12, 1300, peak=0.003, decay=0.03), at=0.23, gain=0.45)
    for k in range(11):
        at = 0.05 + 0.6 * (k / 11) ** 1.3 + rng.uniform(0, 0.03)
        m.add(bubble(rng.uniform(240, 900), rng.uniform(0.025, 0.05), rise=rng.uniform(1.5, 3.2)),
              at=at, gain=0.35 * (1 - 0.7 * k / 11))
    fizz = au.highpass(noise(rng, n_of(0.4)), 4000, sr=SR) * hump(n_of(0.4), 0.05, fall=0.1)
    m.add(fizz, at=0.28, gain=0.06)


# ---------------------------------------------------------------- Nomad: hooded duellist, curved blade


def nomad_light(rng, m):
    """A thin, fast swish of a curved blade with a whistle rising along the curve."""
    m.add(whoosh(rng, 0.3, [(0, 1500), (0.07, 5200), (0.3, 2400)], q=2.0, peak=0.065, decay=0.05))
    m.add(whoosh(rng, 0.22, [(0, 2500), (0.09, 4300), (0.22, 3600)], q=9.0, peak=0.07, decay=0.04),
          gain=0.3)
    m.add(ring(2700, 0.2, BLADE, decay=0.06, attack=0.01), at=0.03, gain=0.13)
    m.add(air(rng, 0.16, 900, peak=0.05, decay=0.04), gain=0.3)


def nomad_heavy(rng, m):
    """A spinning double cut: a pull of air, a big swish and a second one on its heels, the
    blade ringing."""
    m.add(air(rng, 0.2, 500, peak=0.16, decay=0.03), gain=0.35)
    m.add(whoosh(rng, 0.4, [(0, 500), (0.17, 3600), (0.4, 900)], q=1.2, peak=0.16, decay=0.07))
    m.add(whoosh(rng, 0.3, [(0, 900), (0.1, 4200), (0.3, 1500)], q=1.8, peak=0.09, decay=0.05),
          at=0.2, gain=0.7)
    m.add(ring(1900, 0.35, BLADE, decay=0.1, attack=0.015), at=0.14, gain=0.15)
    m.add(thump(0.3, 105, 60, drop=0.1, attack=0.1, decay=0.06), gain=0.3)


def nomad_rush(rng, m):
    """The rush: quick scuffing steps, a rising rush of air and the robe flapping."""
    for k, at in enumerate((0.0, 0.065, 0.125)):
        m.add(crack(rng, 0.04, 600, 3500, decay=0.01), at=at, gain=0.32)
        m.add(thump(0.06, 130, 80, drop=0.01, decay=0.015), at=at, gain=0.3)
    n = n_of(0.46)
    rush = whoosh(rng, 0.46, [(0, 400), (0.28, 2300), (0.46, 900)], q=0.8, peak=0.27, decay=0.06)
    m.add(rush)
    flap = air(rng, 0.46, 1200, peak=0.27, decay=0.06)
    flap *= 0.5 + 0.5 * np.sin(au.TAU * 37 * au.time_axis(n, SR))
    m.add(au.highpass(flap, 250, sr=SR), gain=0.35)


def nomad_death(rng, m):
    """A dying groan sinking from 'ah' to 'oh' into a breath, the body falling, the blade
    clattering twice on the ground."""
    m.add(growl(rng, 0.85, [(0, 152), (0.15, 160), (0.85, 74)],
                [(0, (760, 1220, 2600)), (0.55, (560, 980, 2500)), (0.85, (440, 800, 2400))],
                rough=0, depth=0.0, breath=0.55, attack=0.06, release=0.4, wobble=0.025), gain=0.85)
    m.add(air(rng, 0.3, 1800, peak=0.08, decay=0.08), at=0.68, gain=0.12)
    m.add(thump(0.3, 100, 48, drop=0.03, decay=0.07), at=0.72, gain=0.7)
    m.add(air(rng, 0.15, 1200, peak=0.004, decay=0.04), at=0.72, gain=0.35)
    m.add(ring(2300, 0.4, BLADE, decay=0.1), at=0.86, gain=0.3)
    m.add(ring(2330, 0.3, BLADE, decay=0.07), at=0.985, gain=0.17)
    m.add(crack(rng, 0.02, 2500, 9000, decay=0.003), at=0.86, gain=0.3)


# ---------------------------------------------------------------- Flying Knight: empty floating armour


def fk_attack(rng, m):
    """The empty armour jolts with a hollow clank, and its sword whooshes through on its own."""
    m.add(hollow_clank(rng, 330, 0.4, decay=0.09), gain=0.8)
    m.add(whoosh(rng, 0.34, [(0, 700), (0.11, 3300), (0.34, 1100)], q=1.3, peak=0.11, decay=0.07),
          at=0.1, gain=0.95)
    m.add(ring(1650, 0.35, BLADE, decay=0.1, attack=0.02), at=0.15, gain=0.15)


def fk_dead(rng, m):
    """The spirit leaves with a falling breath and the armour collapses: a crash, plates
    clattering down, the sword ringing as it drops and bounces."""
    n = n_of(0.9)
    sigh = au.svf(noise(rng, n), curve(n, [(0, 1900), (0.9, 280)]), 2.0, "band", sr=SR)
    m.add(sigh * hump(n, 0.14, rise_power=1.5, fall=0.22), gain=0.35)
    m.add(thump(0.35, 125, 48, drop=0.03, decay=0.08), at=0.28, gain=0.75)
    m.add(air(rng, 0.3, 5000, peak=0.002, decay=0.1), at=0.28, gain=0.2)
    m.add(hollow_clank(rng, 290, 0.5, decay=0.16), at=0.28, gain=0.7)
    for k, at in enumerate((0.2, 0.36, 0.44, 0.55, 0.61, 0.7, 0.83, 0.97, 1.12)):
        m.add(hollow_clank(rng, rng.uniform(260, 900), 0.3, decay=rng.uniform(0.05, 0.1)),
              at=at + rng.uniform(0, 0.02), gain=0.5 * (1 - 0.75 * k / 9))
    m.add(ring(1420, 0.7, BLADE, decay=0.16), at=0.5, gain=0.3)
    m.add(ring(1433, 0.5, BLADE, decay=0.1), at=0.64, gain=0.16)


# ---------------------------------------------------------------- Frog


def frog_idle(rng, m):
    """A two-part croak on landing, 'rrib-bit'."""
    m.add(croak(rng, 0.19, 118, rate=27, formants=(520, 1250)))
    m.add(croak(rng, 0.12, 134, rate=31, formants=(600, 1400)), at=0.26, gain=0.85)


def frog_jump(rng, m):
    """The legs kick off: a soft push, a springy 'boing' rising and a little air."""
    m.add(thump(0.08, 140, 80, drop=0.015, decay=0.02), gain=0.55)
    n = n_of(0.25)
    t = au.time_axis(n, SR)
    wobble = 1 + 0.06 * np.sin(au.TAU * 19 * t) * np.exp(-t / 0.1)
    f = curve(n, [(0, 170), (0.09, 430), (0.25, 470)]) * wobble
    spring = au.additive(f, n, [(1, 1, None), (2, 0.4, 0.05), (3, 0.2, 0.03)], sr=SR)
    m.add(au.lowpass(spring, 2500, sr=SR) * au.percussive(n, 0.006, 0.06, sr=SR), at=0.01, gain=0.55)
    m.add(whoosh(rng, 0.2, [(0, 600), (0.07, 2000), (0.2, 900)], q=1.0, peak=0.06, decay=0.04),
          at=0.02, gain=0.5)


def frog_death(rng, m):
    """A squelch, a croak that fails on the way down, and a wet splat."""
    m.add(squelch(rng, 0.16, [(0, 400), (0.16, 1300)], q=6.0, peak=0.04, decay=0.05), gain=0.7)
    m.add(croak(rng, 0.34, [(0, 150), (0.34, 72)], rate=[(0, 30), (0.34, 14)], formants=(560, 1150)),
          at=0.08, gain=0.85)
    m.add(thump(0.2, 110, 55, drop=0.02, decay=0.045), at=0.42, gain=0.55)
    m.add(squelch(rng, 0.2, [(0, 900), (0.2, 250)], q=5.0, peak=0.01, decay=0.05), at=0.42, gain=0.55)
    for k in range(4):
        m.add(bubble(rng.uniform(350, 800), 0.03, rise=2.2), at=0.47 + 0.04 * k + rng.uniform(0, 0.02),
              gain=0.2 * (1 - 0.2 * k))


# ---------------------------------------------------------------- Carnivorous plant


def plant_attack(rng, m):
    """The trap springs: leaves rustle, the jaws swing up and snap shut on a woody crack, a wet
    crunch, leaves settling."""
    m.add(grains(rng, 0.08, 10, 1800, 6500, grain=0.006, gain=(0.06, 0.16), thin=-1.0))
    m.add(whoosh(rng, 0.08, [(0, 700), (0.07, 2800)], q=1.2, peak=0.065, decay=0.01), gain=0.55)
    m.add(crack(rng, 0.03, 1000, 5500, decay=0.005), at=0.072)
    m.add(ring(700, 0.12, WOOD, decay=0.025), at=0.072, gain=0.5)
    m.add(thump(0.1, 210, 95, drop=0.012, decay=0.028), at=0.072, gain=0.7)
    m.add(squelch(rng, 0.1, [(0, 1300), (0.1, 480)], q=4.0, peak=0.006, decay=0.03), at=0.085, gain=0.45)
    m.add(grains(rng, 0.3, 16, 1800, 6500, grain=0.007, gain=(0.04, 0.1), thin=2.0), at=0.11)


def plant_close(rng, m):
    """The trap folds back into the ground: a swell of rustling leaves, a creaking stem and a
    soft closing thump."""
    m.add(grains(rng, 0.45, 110, 1500, 7000, grain=0.008, gain=(0.08, 0.22), thin=0.0, swell=0.22))
    n = n_of(0.34)
    t = au.time_axis(n, SR)
    rate = curve(n, [(0, 38), (0.34, 22)])
    turns = np.floor(au.phase_of(rate, n, SR) / au.TAU)
    clicks = np.diff(turns, prepend=turns[0])          # one impulse per stick-slip
    creak = au.svf(clicks, 620, 6.0, "band", sr=SR) + 0.5 * au.svf(clicks, 1350, 8.0, "band", sr=SR)
    m.add(unit(creak * hump(n, 0.15, rise_power=1.0, fall=0.08)), at=0.05, gain=0.35)
    m.add(thump(0.18, 125, 68, drop=0.02, decay=0.04), at=0.38, gain=0.35)
    m.add(air(rng, 0.12, 900, peak=0.004, decay=0.035), at=0.38, gain=0.2)


# ---------------------------------------------------------------- King: towering armoured guardian


def heavy_step(rng, m, at=0.0, gain=1.0):
    m.add(thump(0.4, 72, 31, drop=0.035, decay=0.11), at=at, gain=gain)
    m.add(crack(rng, 0.06, 300, 2600, decay=0.02), at=at, gain=0.4 * gain)
    m.add(air(rng, 0.35, 220, peak=0.01, decay=0.12), at=at, gain=0.45 * gain)
    for k in range(3):
        jangle = at + 0.02 + 0.025 * k + rng.uniform(0, 0.01)
        m.add(clink(rng.uniform(850, 1600), 0.15, decay=0.04), at=jangle, gain=0.1 * gain)


def king_walk(rng, m):
    """A heavy footfall: a deep thud through the stone, grit and a jangle of heavy plate."""
    heavy_step(rng, m)


def king_attack(rng, m):
    """A greatsword stroke: a heavy, slow whoosh with a deep 'vwoom', a low push of air and
    the long blade's ring."""
    m.add(whoosh(rng, 0.7, [(0, 240), (0.16, 1900), (0.7, 450)], q=0.9, peak=0.15, decay=0.12))
    m.add(whoosh(rng, 0.6, [(0, 160), (0.15, 900), (0.6, 260)], q=4.5, peak=0.15, decay=0.1), gain=0.45)
    m.add(thump(0.5, 85, 45, drop=0.12, attack=0.12, decay=0.1), gain=0.45)
    m.add(ring(820, 0.7, BLADE, decay=0.17, attack=0.02), at=0.06, gain=0.2)


def king_dash_attack(rng, m):
    """The dash across the hall, played as it starts: the stone floor cracks under the push-off,
    a deep blast of displaced air with the greatsword's thrust singing through it, the plate
    rattling, and his sabatons grinding to a stop in grit."""
    heavy_step(rng, m, gain=0.8)
    m.add(whoosh(rng, 0.45, [(0, 1400), (0.05, 2600), (0.45, 300)], q=0.7, peak=0.04, decay=0.12))
    m.add(whoosh(rng, 0.4, [(0, 500), (0.05, 1200), (0.4, 220)], q=4.0, peak=0.04, decay=0.1), gain=0.5)
    m.add(ring(760, 0.55, BLADE, decay=0.14, attack=0.01), at=0.03, gain=0.2)
    for k in range(4):
        m.add(clink(rng.uniform(700, 1500), 0.12, decay=0.03), at=0.05 + 0.04 * k, gain=0.12)
    grind = air(rng, 0.45, 1800, peak=0.12, decay=0.12)
    grind *= 0.6 + 0.4 * np.sin(au.TAU * 31 * au.time_axis(len(grind), SR))
    m.add(au.highpass(grind, 500, sr=SR), at=0.22, gain=0.45)
    m.add(grains(rng, 0.4, 26, 900, 4500, grain=0.008, gain=(0.03, 0.1), thin=1.2), at=0.24)


def king_jump_attack(rng, m):
    """The King lands his leap: a huge boom, cracking stone, the greatsword clanging into the
    ground, debris raining down, a rumble through the hall."""
    d = Mix(m.seconds)
    d.add(thump(0.9, 82, 27, drop=0.05, decay=0.22))
    d.add(crack(rng, 0.08, 700, 6000, decay=0.018), gain=0.6)
    d.add(ring(610, 0.8, ANVIL, decay=0.2, detune=0.004), at=0.01, gain=0.22)
    d.add(air(rng, 0.9, 160, peak=0.015, decay=0.28), gain=0.55)
    d.add(grains(rng, 0.75, 38, 900, 4800, grain=0.01, gain=(0.04, 0.14), thin=1.6), at=0.05)
    m.add(d.buf)
    m.add(room(d.buf, rng, 0.9, predelay=0.02, damping=2500.0), gain=0.3)


def king_death(rng, m):
    """The King falls: a knee strikes the floor, the greatsword drops ringing and bounces, the
    body crashes down in a clatter of plate, and a low boom rolls away."""
    d = Mix(m.seconds)
    d.add(thump(0.35, 95, 45, drop=0.03, decay=0.07), gain=0.6)
    d.add(hollow_clank(rng, 240, 0.4, decay=0.12), gain=0.5)
    d.add(ring(700, 1.2, BLADE, decay=0.3), at=0.34, gain=0.3)
    d.add(crack(rng, 0.03, 1500, 8000, decay=0.004), at=0.34, gain=0.35)
    d.add(ring(706, 0.8, BLADE, decay=0.18), at=0.52, gain=0.15)
    d.add(thump(1.6, 62, 24, drop=0.06, decay=0.42), at=0.72)                       # the body
    d.add(air(rng, 0.4, 4500, peak=0.003, decay=0.12), at=0.72, gain=0.25)           # crash
    d.add(hollow_clank(rng, 200, 0.6, decay=0.2), at=0.72, gain=0.6)
    for k in range(12):                                                              # plates
        at = 0.75 + 0.75 * (k / 12) ** 1.3 + rng.uniform(0, 0.03)
        d.add(hollow_clank(rng, rng.uniform(220, 850), 0.3, decay=rng.uniform(0.05, 0.1)),
              at=at, gain=0.4 * (1 - 0.7 * k / 12))
    n = n_of(2.0)
    boom = au.sine(curve(n, [(0, 48), (2.0, 36)]), n, sr=SR) * hump(n, 0.06, rise_power=1.0, fall=0.45)
    d.add(boom, at=0.74, gain=0.5)
    d.add(air(rng, 2.0, 120, peak=0.1, decay=0.45), at=0.74, gain=0.55)               # rumble
    m.add(d.buf)
    m.add(room(d.buf, rng, 1.4, predelay=0.025, damping=2200.0), gain=0.35)


# ---------------------------------------------------------------- merchant


def anvil(rng, m):
    """The merchant's hammer on the anvil: a hard tick, the anvil ringing with beating partials,
    the hammer's weight, and its small bounce."""
    d = Mix(m.seconds)
    d.add(crack(rng, 0.015, 3000, 11000, decay=0.0025), gain=0.7)
    d.add(ring(1180, 1.0, ANVIL, decay=0.24, detune=0.0025))
    d.add(thump(0.07, 230, 125, drop=0.01, decay=0.02), gain=0.4)
    d.add(crack(rng, 0.012, 3000, 10000, decay=0.002), at=0.085, gain=0.2)
    d.add(ring(1180, 0.6, ANVIL, decay=0.1), at=0.085, gain=0.2)
    m.add(d.buf)
    m.add(room(d.buf, rng, 0.6, predelay=0.01), gain=0.22)


# ---------------------------------------------------------------- the list


@dataclass(frozen=True)
class Effect:
    path: str            # under Assets/Sounds/SFX/
    build: object        # build(rng, mix): adds its layers into the mix
    seconds: float       # the file's length
    level: float = 0.0   # loudness relative to the others, dB (frequent sounds sit lower)

    @property
    def spatial(self):
        """Enemy sounds of the Frog, Nomad, Trash, Slime and Flying Knight, and the anvil."""
        return self.path.startswith(("Enemy/Frog/", "Enemy/Nomad/", "Enemy/Trash/", "Enemy/Slime/",
                                     "Enemy/Flying Knight/", "PNJ/"))


EFFECTS = [
    Effect("Player/Sword_Light_Attack.wav", sword_light, 0.30),
    Effect("Player/Sword_Heavy_Attack.wav", sword_heavy, 0.50),
    Effect("Player/Dash.wav", dash, 0.25, level=-1.0),
    Effect("Player/Parry.wav", parry, 0.40),
    Effect("Player/ParrySucces.wav", parry_success, 0.60),
    Effect("Player/Walk.wav", walk, 0.15, level=-4.0),
    Effect("Player/Fall.wav", fall, 0.25, level=-2.0),
    Effect("Player/TakeDamage.wav", take_damage, 0.28),
    Effect("Player/AttackSucces.wav", attack_success, 0.25),
    Effect("Player/Capacity/CloudCreation.wav", cloud_creation, 0.60, level=-2.0),
    Effect("Player/Capacity/CloudDestruction.wav", cloud_destruction, 0.50, level=-2.0),
    Effect("Enemy/Trash/Trash_Attack.wav", trash_attack, 0.55),
    Effect("Enemy/Trash/Trash_Death.wav", trash_death, 1.10),
    Effect("Enemy/Slime/Slime_Attack.wav", slime_attack, 0.45),
    Effect("Enemy/Slime/Slime_Dead.wav", slime_dead, 0.80),
    Effect("Enemy/Nomad/Nomad_Light_Attack.wav", nomad_light, 0.35),
    Effect("Enemy/Nomad/Nomad_Heavy_Attack.wav", nomad_heavy, 0.55),
    Effect("Enemy/Nomad/Nomad_Death.wav", nomad_death, 1.40),
    Effect("Enemy/Nomad/Nomad_Rush_Dash.wav", nomad_rush, 0.50),
    Effect("Enemy/Flying Knight/Flying_Knight_Attack.wav", fk_attack, 0.60),
    Effect("Enemy/Flying Knight/Flying_Knight_Dead.wav", fk_dead, 1.60),
    Effect("Enemy/Frog/Frog_Idle.wav", frog_idle, 0.50, level=-1.0),
    Effect("Enemy/Frog/Frog_Jump.wav", frog_jump, 0.30, level=-1.0),
    Effect("Enemy/Frog/Frog_Death.wav", frog_death, 0.70),
    Effect("Enemy/Plant/Plant_Attack.wav", plant_attack, 0.45),
    Effect("Enemy/Plant/Plant_Close.wav", plant_close, 0.60, level=-1.0),
    Effect("Enemy/King/Walk.wav", king_walk, 0.45, level=-2.0),
    Effect("Enemy/King/Attack.wav", king_attack, 0.80),
    Effect("Enemy/King/DashAttack.wav", king_dash_attack, 0.90),
    Effect("Enemy/King/JumpAttack.wav", king_jump_attack, 1.30),
    Effect("Enemy/King/Death.wav", king_death, 3.00, level=-1.5),
    Effect("PNJ/PNJ_Hit_Anvil.wav", anvil, 1.00),
]

# ---------------------------------------------------------------- mastering

LOUDNESS = -13.5     # the loudest 100 ms, weighted (see short_loudness), before `level`
CEILING = -3.0       # dBFS: peaks are bent under this
FLOOR = -6.0         # dBFS: quieter peaks are raised to this
WIDTH = 0.3          # the room send that widens the centred stereo effects


def short_loudness(x, window=0.1):
    """Perceived loudness of a short effect: the loudest `window` seconds of the signal after a
    low cut and a presence lift (the weighting of `audio.loudness_db`), in dB."""
    w = au.highpass(x, 80.0, 2, sr=SR) + 0.6 * au.highpass(x, 1500.0, 1, sr=SR)
    power = w ** 2 if w.ndim == 1 else np.mean(w ** 2, axis=1)
    k = min(n_of(window), len(power))
    sums = np.convolve(power, np.ones(k) / k, mode="valid")
    return au.db(np.sqrt(np.max(sums)))


def seed_of(effect):
    return zlib.crc32(effect.path.encode()) & 0x7FFFFFFF


def render(effect):
    """The mastered signal of one effect: (n,) mono or (n, 2) stereo floats."""
    rng = np.random.RandomState(seed_of(effect))
    mix = Mix(effect.seconds)
    effect.build(rng, mix)
    x = au.highpass(mix.buf, 35.0, 2, sr=SR)          # no sub-sonic rumble, no DC
    if effect.spatial:
        x = np.stack([x, x], axis=-1) + WIDTH * room(x, rng, 0.3, predelay=0.008, stereo=True)
    x = au.fade(x, 0.002, 0.02, sr=SR)
    x = x * 10 ** ((LOUDNESS + effect.level - short_loudness(x)) / 20)
    x = au.soft_limit(x, CEILING, knee_db=4.0)
    peak = au.peak_db(x)
    if peak < FLOOR:
        x = x * 10 ** ((FLOOR - peak) / 20)
    return au.fade(x, 0.002, 0.02, sr=SR)


# ---------------------------------------------------------------- checks

LIMITS = {  # the longest each may be, in seconds, where the game depends on it
    "Player/TakeDamage.wav": 0.30,      # restarts only when the last one has finished
    "Player/Walk.wav": 0.20,            # two per walk cycle
    "PNJ/PNJ_Hit_Anvil.wav": 1.20,      # once per 12-frame, 10 fps merchant cycle
}
LONGEST = 3.0
EXPECTED = {  # every effect the game loads, by folder
    "Player": {"Sword_Light_Attack", "Sword_Heavy_Attack", "Dash", "Parry", "ParrySucces", "Walk",
               "Fall", "TakeDamage", "AttackSucces"},
    "Player/Capacity": {"CloudCreation", "CloudDestruction"},
    "Enemy/Trash": {"Trash_Attack", "Trash_Death"},
    "Enemy/Slime": {"Slime_Attack", "Slime_Dead"},
    "Enemy/Nomad": {"Nomad_Light_Attack", "Nomad_Heavy_Attack", "Nomad_Death", "Nomad_Rush_Dash"},
    "Enemy/Flying Knight": {"Flying_Knight_Attack", "Flying_Knight_Dead"},
    "Enemy/Frog": {"Frog_Idle", "Frog_Jump", "Frog_Death"},
    "Enemy/Plant": {"Plant_Attack", "Plant_Close"},
    "Enemy/King": {"Walk", "Attack", "DashAttack", "JumpAttack", "Death"},
    "PNJ": {"PNJ_Hit_Anvil"},
}


class SoundCheckError(ValueError):
    pass


def measure(path):
    """Format and levels of a written effect, read back from the file."""
    import wave
    with wave.open(str(path), "rb") as w:
        fmt = dict(channels=w.getnchannels(), rate=w.getframerate(), width=w.getsampwidth(),
                   comp=w.getcomptype())
    x, _ = au.read_wav(path)
    tail = x[-n_of(0.001):]
    body_end = x[-n_of(0.05):-n_of(0.02)]
    return dict(fmt, seconds=len(x) / fmt["rate"], peak=au.peak_db(x), rms=au.rms_db(x),
                loud=short_loudness(x), edge=float(np.max(np.abs(tail))),
                ends=(float(np.max(np.abs(x[0]))), float(np.max(np.abs(x[-1])))),
                late=au.rms_db(body_end), dc=float(np.max(np.abs(np.mean(x, axis=0)))))


def check(root):
    """Raise SoundCheckError listing every effect file that breaks a rule; return the levels."""
    root = Path(root) / SFX
    problems, rows = [], []
    listed = {f"{folder}/{name}.wav" for folder, names in EXPECTED.items() for name in names}
    made = {e.path for e in EFFECTS}
    for p in sorted(listed - made):
        problems.append(f"{p}: the game loads it but nothing makes it")
    for p in sorted(made - listed):
        problems.append(f"{p}: made but never loaded")
    on_disk = {p.relative_to(root).as_posix() for p in root.rglob("*.wav")}
    for p in sorted(on_disk - made):
        problems.append(f"{p}: a stray file in the effects folder")
    for e in EFFECTS:
        path = root / e.path
        if not path.is_file():
            problems.append(f"{e.path}: missing")
            continue
        m = measure(path)
        rows.append((e, m))
        bad = []
        if m["width"] != 2 or m["comp"] != "NONE" or m["rate"] not in (22050, 44100):
            bad.append(f"format {m['width'] * 8}-bit {m['comp']} {m['rate']} Hz")
        if m["channels"] != (2 if e.spatial else 1):
            bad.append(f"{m['channels']} channel(s), {'stereo' if e.spatial else 'mono'} expected")
        if m["seconds"] > LIMITS.get(e.path, LONGEST) or m["seconds"] < 0.1:
            bad.append(f"{m['seconds']:.3f} s long")
        if not FLOOR - 0.2 <= m["peak"] <= CEILING + 0.05:
            bad.append(f"peak {m['peak']:.1f} dBFS")
        if abs(m["loud"] - (LOUDNESS + e.level)) > 2.5:
            bad.append(f"loudness {m['loud']:.1f} dB, {LOUDNESS + e.level:.1f} wanted")
        if max(m["ends"]) > 1e-3 or m["edge"] > 0.05:
            bad.append(f"starts or ends with a step (ends {m['ends']}, last ms {m['edge']:.3f})")
        if m["late"] > m["peak"] - 20:
            bad.append(f"still sounding at the cut ({m['late']:.1f} dB before the end fade)")
        if m["dc"] > 2e-3:
            bad.append(f"DC offset {m['dc']:.4f}")
        problems += [f"{e.path}: {b}" for b in bad]
    if problems:
        raise SoundCheckError("sound effects:\n  " + "\n  ".join(problems))
    return rows


def table(rows):
    lines = [f"{'file':<50} {'ch':>2} {'sec':>6} {'peak dBFS':>9} {'RMS dBFS':>8} {'loud dB':>7}"]
    for e, m in rows:
        lines.append(f"{e.path:<50} {m['channels']:>2} {m['seconds']:>6.3f} {m['peak']:>9.1f} "
                     f"{m['rms']:>8.1f} {m['loud']:>7.1f}")
    return "\n".join(lines)


def generate(out):
    out = Path(out)
    written = [au.write_wav(out / SFX / e.path, render(e), sr=SR) for e in EFFECTS]
    check(out)
    return written


def main():
    import argparse
    root = Path(__file__).resolve().parents[2]
    ap = argparse.ArgumentParser(description="Write the sound effects and print their levels.")
    ap.add_argument("--out", default=str(root), help="output root (default: the repository root)")
    ap.add_argument("--png", help="also draw a waveform and spectrogram of each effect into this folder")
    args = ap.parse_args()
    generate(args.out)
    rows = check(args.out)
    print(table(rows))
    if args.png:
        from .sfx_preview import draw
        for e, _ in rows:
            draw(Path(args.out) / SFX / e.path, Path(args.png) / (e.path.replace("/", "_")[:-4] + ".png"))


if __name__ == "__main__":
    main()

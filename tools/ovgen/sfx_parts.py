"""The building blocks of the sound effects (see sfx.py): whooshes, rings, thumps, cracks,
grains, bubbles, squelches and creature voices, each a mono float array at 44100 Hz whose peak
is 1, so that a mix states its balance as plain gains."""
import numpy as np

from . import audio as au

SR = 44100

# Partials as (ratio to the fundamental, amplitude, decay relative to the fundamental's).
BLADE = [(1, 1, 1), (2.32, 0.55, 0.75), (4.25, 0.35, 0.55), (6.63, 0.22, 0.4), (9.38, 0.12, 0.3)]
BAR = [(1, 1, 1), (2.756, 0.7, 0.7), (5.404, 0.45, 0.5), (8.933, 0.28, 0.35), (13.34, 0.15, 0.25)]
BELL = [(0.5, 0.25, 1.4), (1, 1, 1), (1.19, 0.45, 0.8), (1.56, 0.35, 0.7), (2.0, 0.5, 0.6),
        (2.51, 0.25, 0.5), (3.01, 0.2, 0.4), (4.1, 0.12, 0.3)]
HOLLOW = [(1, 1, 1), (1.51, 0.8, 0.8), (2.17, 0.6, 0.65), (2.84, 0.4, 0.5), (3.9, 0.25, 0.35),
          (5.1, 0.15, 0.25)]
ANVIL = [(1, 1, 1), (1.47, 0.45, 0.8), (2.09, 0.7, 0.75), (2.76, 0.4, 0.55), (3.5, 0.3, 0.4),
         (4.93, 0.2, 0.3), (6.3, 0.12, 0.22)]
WOOD = [(1, 1, 1), (1.64, 0.6, 0.6), (2.57, 0.35, 0.4), (3.9, 0.2, 0.3)]


def n_of(seconds):
    return au.samples(seconds, SR)


def noise(rng, n):
    return au.noise(n, rng)


def unit(x):
    """Scale to a peak of 1 (silence stays silence)."""
    p = np.max(np.abs(x))
    return x / p if p > 0 else x


def curve(n, points):
    """A per-sample frequency (or rate) curve through (seconds, value) points, interpolated
    geometrically (even in pitch); a plain number gives a constant."""
    if np.isscalar(points):
        return np.full(n, float(points))
    ts, vs = zip(*points)
    return np.exp(np.interp(au.time_axis(n, SR), ts, np.log(vs)))


def hump(n, peak, rise_power=2.0, fall=0.05):
    """An envelope rising smoothly to 1 at `peak` seconds, then falling exponentially with time
    constant `fall`; it reaches zero on the last sample."""
    t = au.time_axis(n, SR)
    rise = np.sin(0.5 * np.pi * np.clip(t / max(peak, 1e-4), 0, 1)) ** rise_power
    env = np.where(t < peak, rise, np.exp(-(t - peak) / fall))
    return env * np.clip((n - 1 - np.arange(n)) / n_of(0.008), 0, 1)


class Mix:
    """A one-shot timeline `seconds` long; layers that run past the end are cut (the checks in
    sfx.py make sure nothing is still sounding there)."""

    def __init__(self, seconds):
        self.seconds = seconds
        self.n = n_of(seconds)
        self.buf = np.zeros(self.n)

    def add(self, x, at=0.0, gain=1.0):
        start = n_of(at)
        k = max(0, min(len(x), self.n - start))
        self.buf[start:start + k] += gain * np.asarray(x)[:k]


# ---------------------------------------------------------------- air


def whoosh(rng, seconds, points, q=1.2, peak=0.08, decay=0.05):
    """Noise through a resonant band sweeping along `points`: a blade or a body cutting the air.
    It swells to `peak` seconds and dies away with time constant `decay`."""
    n = n_of(seconds)
    x = au.svf(noise(rng, n), curve(n, points), q, "band", sr=SR)
    return unit(x * hump(n, peak, 2.0, decay))


def air(rng, seconds, cutoff, peak=0.01, decay=0.05):
    """Low-passed noise with a swell and fall: dirt, breath, rumble, the weight under a swing."""
    n = n_of(seconds)
    return unit(au.lowpass(noise(rng, n), cutoff, 2, sr=SR) * hump(n, peak, 1.0, decay))


# ---------------------------------------------------------------- impacts


def thump(seconds, f_start, f_end, drop=0.02, decay=0.05, attack=0.002):
    """A pitched body blow: a sine falling from f_start to f_end (time constant `drop`) with a
    little second harmonic and soft drive, so it punches on small speakers too."""
    n = n_of(seconds)
    t = au.time_axis(n, SR)
    f = f_end + (f_start - f_end) * np.exp(-t / drop)
    ph = au.phase_of(f, n, SR)
    x = np.tanh(1.6 * (np.sin(ph) + 0.25 * np.sin(2 * ph)))
    return unit(x * au.percussive(n, attack, decay, sr=SR))


def crack(rng, seconds, lo, hi, decay=0.006):
    """A sharp noise burst in a band: the snap of a hit, a scuff, a twig."""
    n = n_of(seconds)
    x = au.bandpass(noise(rng, n), lo, hi, 2, sr=SR)
    return unit(x * au.percussive(n, 0.0004, decay, sr=SR))


def ring(f0, seconds, partials, decay=0.1, attack=0.001, detune=0.0015):
    """Struck metal (or wood): inharmonic partials decaying at their own rates, doubled by a
    slightly detuned copy so that the ring beats and shimmers."""
    n = n_of(seconds)
    parts = [(r, a, decay * d) for r, a, d in partials]
    x = au.additive(f0, n, parts, sr=SR) + 0.7 * au.additive(f0 * (1 + detune), n, parts, sr=SR, phase=0.7)
    return unit(x * au.percussive(n, attack, 60.0, sr=SR))


def clink(f0, seconds, decay=0.03):
    """A small piece of metal touching another: a short high bell-like tick."""
    return ring(f0, seconds, BELL[1:], decay=decay, detune=0.003)


def hollow_clank(rng, f0, seconds, decay=0.12):
    """Empty plate armour struck: a knock resonating in a hollow (a comb tuned to f0) over the
    plate's own inharmonic partials."""
    n = n_of(seconds)
    knock = au.bandpass(noise(rng, n), 300, 3500, 2, sr=SR) * au.percussive(n, 0.0005, 0.008, sr=SR)
    hollow = au.echo(knock, 1.0 / f0, feedback=0.82, taps=int(decay * f0 * 2.5), cross=False, sr=SR)[:n]
    plate = ring(f0 * 1.02, seconds, HOLLOW, decay=decay, detune=0.004)
    return unit(0.8 * unit(hollow) * au.percussive(n, 0.0005, decay, sr=SR) + plate)


def grains(rng, seconds, count, lo, hi, grain=0.006, gain=(0.05, 0.15), thin=0.0, swell=None):
    """Many tiny band-limited ticks: leaves, grit, sparks of dust, debris. thin > 0 crowds them
    at the start and fades them out, thin < 0 crowds them towards the end; `swell` (seconds)
    gathers them round that time instead."""
    n = n_of(seconds)
    g = n_of(grain)
    source = au.bandpass(noise(rng, n + g), lo, hi, 2, sr=SR)
    env = au.percussive(g, 0.0005, grain / 3, sr=SR)
    out = np.zeros(n + g)
    for _ in range(count):
        u = rng.uniform()
        if swell is not None:
            at = np.clip(rng.normal(swell, seconds / 5), 0, seconds)
        elif thin >= 0:
            at = seconds * u ** (1 + thin)
        else:
            at = seconds * (1 - u ** (1 - thin))
        level = rng.uniform(*gain) * (1 - 0.8 * at / seconds if thin > 0 else 1)
        k, s = n_of(at), rng.randint(0, n)
        m = min(g, len(out) - k)
        out[k:k + m] += (level * source[s:s + g] * env)[:m]
    return out[:n] * au.percussive(n, 0.001, 60.0, sr=SR)


# ---------------------------------------------------------------- wet


def bubble(f0, seconds, rise=2.5):
    """A bubble popping: a sine whose pitch rises as it decays quickly ('blip')."""
    n = n_of(seconds)
    t = au.time_axis(n, SR)
    x = au.sine(f0 * (1 + rise * t / seconds), n, sr=SR)
    return unit(x * au.percussive(n, 0.001, seconds / 3.5, sr=SR))


def squelch(rng, seconds, points, q=6.0, peak=0.05, decay=0.05):
    """Something wet moving: dark noise and a low buzz through a sharp resonance sweeping
    along `points`."""
    n = n_of(seconds)
    src = au.lowpass(noise(rng, n), 2500, 2, sr=SR) + 0.5 * au.saw(85, n, sr=SR, harmonics=60, tilt=1.2)
    x = au.svf(src, curve(n, points), q, "band", sr=SR)
    return unit(x * hump(n, peak, 1.0, decay))


# ---------------------------------------------------------------- voices (synthesised, no recordings)


def _formant_bank(src, n, formants, qs=(5.0, 7.0, 9.0), gains=(1.0, 0.55, 0.3)):
    """Source through vowel formants; `formants` is [(seconds, (F1, F2, F3)), ...]."""
    out = np.zeros(n)
    for i, (q, g) in enumerate(zip(qs, gains)):
        pts = [(t, fs[i]) for t, fs in formants]
        out += g * au.svf(src, curve(n, pts if len(pts) > 1 else pts[0][1]), q, "band", sr=SR)
    return out


def growl(rng, seconds, pitch, formants, rough=30.0, depth=0.7, breath=0.4, attack=0.03,
          release=0.1, wobble=0.0):
    """A creature's voice: a buzzing glottal source gliding along `pitch`, flapping at `rough` Hz
    (a growl's rattle) by `depth`, with breath noise, through formants morphing between vowels."""
    n = n_of(seconds)
    f = curve(n, pitch)
    if wobble:
        f = f * (1 + wobble * unit(au.lowpass(noise(rng, n), 7, 1, sr=SR)))
    src = au.saw(f, n, sr=SR, harmonics=80, tilt=1.0)
    if depth:
        jitter = unit(au.lowpass(noise(rng, n), 20, 1, sr=SR))
        flap = (0.5 + 0.5 * np.sin(au.phase_of(rough * (1 + 0.2 * jitter), n, SR))) ** 2
        src = src * ((1 - depth) + depth * flap)
    src = src + breath * noise(rng, n)
    x = np.tanh(1.8 * unit(_formant_bank(src, n, formants)))
    env = au.adsr(n, attack, 0.1, 0.85, release, sr=SR) * np.clip((n - 1 - np.arange(n)) / n_of(0.005), 0, 1)
    return unit(x * env)


def croak(rng, seconds, pitch, rate=28.0, formants=(520, 1250)):
    """A frog's croak: a low buzz chopped into fast pulses (`rate` per second) through two
    throaty resonances."""
    n = n_of(seconds)
    f = curve(n, pitch)
    src = au.saw(f, n, sr=SR, harmonics=60, tilt=0.9) + 0.15 * noise(rng, n)
    gate = (0.5 + 0.5 * np.sin(au.phase_of(curve(n, rate), n, SR))) ** 3
    x = au.svf(src * gate, formants[0], 5.0, "band", sr=SR)
    x += 0.6 * au.svf(src * gate, formants[1], 6.0, "band", sr=SR)
    env = au.adsr(n, 0.012, 0.05, 0.8, 0.05, sr=SR)
    return unit(x * env)


# ---------------------------------------------------------------- space


def room(x, rng, seconds, predelay=0.015, damping=3500.0, stereo=False):
    """The reverberated part of `x` in a small room, cut to the length of x: mono, or (n, 2)
    with stereo=True (two decorrelated sides, which widens a centred sound)."""
    ir = au.reverb_ir(seconds, rng, predelay=predelay, damping=damping, sr=SR)
    wet = au.convolve(x, ir)[:len(x)]
    return wet if stereo else wet.mean(axis=1)

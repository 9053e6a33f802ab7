"""Small sound synthesis helpers for the music loops and the sound effects.

Signals are float numpy arrays in -1..1: mono (n,), stereo (n, 2). Everything is deterministic:
noise comes from a numpy RandomState the caller seeds, and nothing reads the clock.

Two kinds of timeline are supported:
- one-shot effects: plain arrays, filtered and convolved with zero padding (`lowpass`, `reverb`);
- seamless loops: a `Loop` buffer whose notes wrap past the end onto the start, and whose
  reverb and filters are circular (`circular=True`), so the last sample leads into the first.
"""
import wave
from pathlib import Path

import numpy as np

SR = 22050  # the sample rate of every generated sound
TAU = 2 * np.pi

# ---------------------------------------------------------------- pitch and time


def midi_hz(note):
    """MIDI note number (69 = A4 = 440 Hz) to frequency."""
    return 440.0 * 2.0 ** ((np.asarray(note, float) - 69) / 12.0)


def note_number(name):
    """'C4', 'Eb3', 'F#5' -> MIDI note number."""
    steps = {"C": 0, "D": 2, "E": 4, "F": 5, "G": 7, "A": 9, "B": 11}
    n, rest = steps[name[0].upper()], name[1:]
    while rest and rest[0] in "#b":
        n += 1 if rest[0] == "#" else -1
        rest = rest[1:]
    return n + 12 * (int(rest) + 1)


def samples(seconds, sr=SR):
    return int(round(seconds * sr))


def time_axis(n, sr=SR):
    return np.arange(n) / sr


# ---------------------------------------------------------------- oscillators


def phase_of(freq, n, sr=SR, phase=0.0):
    """Running phase (radians) for a constant or per-sample frequency, so glides stay smooth."""
    f = np.broadcast_to(np.asarray(freq, float), (n,))
    return phase + TAU * np.cumsum(f) / sr - TAU * f[0] / sr


def sine(freq, n, sr=SR, phase=0.0):
    return np.sin(phase_of(freq, n, sr, phase))


def additive(freq, n, partials, sr=SR, phase=0.0):
    """Sum of partials (ratio, amplitude, decay time in s or None) above a fundamental.

    Partials above the Nyquist frequency are left out, so nothing aliases."""
    ph = phase_of(freq, n, sr, phase)
    f0 = float(np.max(freq))
    t = time_axis(n, sr)
    out = np.zeros(n)
    for ratio, amp, decay in partials:
        if ratio * f0 >= sr / 2 * 0.95:
            continue
        env = 1.0 if decay is None else np.exp(-t / decay)
        out += amp * env * np.sin(ratio * ph + ratio * 1.3)
    return out


def saw(freq, n, sr=SR, harmonics=24, tilt=1.0):
    """A band-limited sawtooth-like wave; tilt > 1 rolls the upper harmonics off faster."""
    return additive(freq, n, [(k, 1.0 / k ** tilt, None) for k in range(1, harmonics + 1)], sr)


def vibrato(freq, n, rate=5.0, depth=0.006, delay=0.25, sr=SR):
    """A frequency curve with vibrato fading in after `delay` seconds (depth as a ratio)."""
    t = time_axis(n, sr)
    fade = np.clip((t - delay) / 0.4, 0, 1)
    return freq * (1 + depth * fade * np.sin(TAU * rate * t))


def noise(n, rng):
    return rng.uniform(-1.0, 1.0, n)


# ---------------------------------------------------------------- envelopes


def adsr(n, attack, decay, sustain, release, sr=SR, hold=None):
    """Attack-decay-sustain-release over n samples; the release starts at `hold` seconds
    (default: so that it ends with the note). Segments are raised-cosine shaped (no corners)."""
    t = time_axis(n, sr)
    if hold is None:
        hold = max(n / sr - release, attack)
    a = 0.5 - 0.5 * np.cos(np.pi * np.clip(t / max(attack, 1e-4), 0, 1))
    dk = np.clip((t - attack) / max(decay, 1e-4), 0, 1)
    env = np.where(t < attack, a, 1 - (1 - sustain) * (0.5 - 0.5 * np.cos(np.pi * dk)))
    r = np.clip((t - hold) / max(release, 1e-4), 0, 1)
    return env * (0.5 + 0.5 * np.cos(np.pi * r))


def percussive(n, attack, decay, sr=SR):
    """A fast rise and an exponential fall, ending at zero on the last sample."""
    t = time_axis(n, sr)
    rise = np.clip(t / max(attack, 1e-4), 0, 1)
    tail = np.clip((n - 1 - np.arange(n)) / max(samples(0.01, sr), 1), 0, 1)
    return rise * np.exp(-np.maximum(t - attack, 0) / decay) * tail


def fade(x, fade_in=0.005, fade_out=0.02, sr=SR):
    """Short raised-cosine fades at both ends of a one-shot (no clicks)."""
    x = np.array(x, float)
    k_in, k_out = min(samples(fade_in, sr), len(x)), min(samples(fade_out, sr), len(x))
    if k_in > 0:
        x[:k_in] = (x[:k_in].T * (0.5 - 0.5 * np.cos(np.pi * np.arange(k_in) / k_in))).T
    if k_out > 0:
        ramp = 0.5 + 0.5 * np.cos(np.pi * (np.arange(k_out) + 1) / k_out)
        x[len(x) - k_out:] = (x[len(x) - k_out:].T * ramp).T
    return x


# ---------------------------------------------------------------- filters (frequency domain)


def _response(freqs, lo, hi, order):
    """Butterworth-like magnitude: a high-pass at lo and a low-pass at hi (either may be None)."""
    g = np.ones_like(freqs)
    if hi is not None:
        g /= np.sqrt(1 + (freqs / hi) ** (2 * order))
    if lo is not None:
        with np.errstate(divide="ignore"):
            g /= np.sqrt(1 + (lo / np.maximum(freqs, 1e-9)) ** (2 * order))
    return g


def filtered(x, lo=None, hi=None, order=2, circular=False, sr=SR):
    """Zero-phase band filter. One-shots are zero-padded (nothing wraps); loops are filtered
    circularly, so the end still joins the start."""
    x = np.asarray(x, float)
    n = len(x)
    size = n if circular else int(2 ** np.ceil(np.log2(n + sr // 4)))
    spectrum = np.fft.rfft(x, size, axis=0)
    g = _response(np.fft.rfftfreq(size, 1 / sr), lo, hi, order)
    spectrum = (spectrum.T * g).T
    return np.fft.irfft(spectrum, size, axis=0)[:n]


def lowpass(x, cutoff, order=2, circular=False, sr=SR):
    return filtered(x, None, cutoff, order, circular, sr)


def highpass(x, cutoff, order=2, circular=False, sr=SR):
    return filtered(x, cutoff, None, order, circular, sr)


def bandpass(x, lo, hi, order=2, circular=False, sr=SR):
    return filtered(x, lo, hi, order, circular, sr)


def svf(x, cutoff, q=0.707, mode="low", sr=SR):
    """A resonant state-variable filter (mono, time domain) whose cutoff may change every sample:
    sweeps for whooshes, wet squelches and vowel formants. mode: "low", "band" or "high"; the
    band output peaks at unity gain. Stable for any cutoff below the Nyquist frequency."""
    x = np.asarray(x, float)
    n = len(x)
    fc = np.clip(np.broadcast_to(np.asarray(cutoff, float), (n,)), 1.0, 0.49 * sr)
    g = np.tan(np.pi * fc / sr)
    k = 1.0 / q
    a1 = 1.0 / (1.0 + g * (g + k))
    a2, a3 = g * a1, g * g * a1
    low, band = np.empty(n), np.empty(n)
    s1 = s2 = 0.0
    for i, (xi, b1, b2, b3) in enumerate(zip(x.tolist(), a1.tolist(), a2.tolist(), a3.tolist())):
        v3 = xi - s2
        v1 = b1 * s1 + b2 * v3
        v2 = s2 + b2 * s1 + b3 * v3
        s1, s2 = 2 * v1 - s1, 2 * v2 - s2
        band[i], low[i] = v1, v2
    if mode == "low":
        return low
    if mode == "band":
        return band * k
    if mode == "high":
        return x - k * band - low
    raise ValueError(f"unknown filter mode {mode!r}")


# ---------------------------------------------------------------- space


def pan(mono, position):
    """Constant-power pan: position -1 (left) .. 0 (centre) .. 1 (right) -> (n, 2)."""
    a = (np.clip(position, -1, 1) + 1) * np.pi / 4
    return np.stack([mono * np.cos(a), mono * np.sin(a)], axis=-1)


def reverb_ir(seconds, rng, predelay=0.02, damping=3500.0, sr=SR):
    """A stereo room response: sparse early reflections, then a dense decaying tail that
    darkens as it fades (a bright tail dies faster than a dark one). Energy normalised to 1."""
    n = samples(seconds, sr)
    t = time_axis(n, sr)
    rt = seconds / 1.6  # time for -60 dB, leaving room for the tail to reach silence
    ir = np.zeros((n, 2))
    for ch in range(2):
        bright = lowpass(noise(n, rng), damping, 1, sr=sr) * np.exp(-6.9 * t / (rt * 0.5))
        dark = lowpass(noise(n, rng), damping / 4, 1, sr=sr) * np.exp(-6.9 * t / rt)
        tail = (bright + 1.6 * dark) * np.clip((t - predelay) / 0.03, 0, 1)
        for _ in range(8):  # early reflections
            k = samples(predelay + rng.uniform(0.003, 0.06), sr)
            tail[k] += rng.uniform(0.2, 0.6) * rng.choice((-1, 1))
        ir[:, ch] = tail * (1 - t / t[-1])
    return ir / np.sqrt(np.sum(ir ** 2) / 2)


def convolve(x, ir, circular=False):
    """Convolve a stereo (or mono, duplicated) signal with a stereo response, channel by channel.
    circular=True wraps the tail around to the start (for loops; the length stays len(x))."""
    x = np.asarray(x, float)
    if x.ndim == 1:
        x = np.stack([x, x], axis=-1)
    n = len(x)
    size = n if circular else int(2 ** np.ceil(np.log2(n + len(ir))))
    if circular and len(ir) > n:
        raise ValueError("the response is longer than the loop")
    out = np.fft.irfft(np.fft.rfft(x, size, axis=0) * np.fft.rfft(ir, size, axis=0), size, axis=0)
    return out if circular else out[:n + len(ir) - 1]


def echo(x, delay, feedback=0.35, taps=5, cross=True, sr=SR, circular=False):
    """A feedback delay, optionally ping-ponging between the channels (stereo input)."""
    x = np.asarray(x, float)
    d = samples(delay, sr)
    n = len(x) if circular else len(x) + d * taps
    out = np.zeros((n,) + x.shape[1:])
    out[:len(x)] += x
    tap = x
    for k in range(1, taps + 1):
        tap = tap * feedback
        if cross and tap.ndim == 2:
            tap = tap[:, ::-1]
        if circular:
            out += np.roll(tap, d * k, axis=0)
        else:
            out[d * k:d * k + len(x)] += tap
    return out


# ---------------------------------------------------------------- loops


class Loop:
    """A stereo timeline of fixed length whose end joins its start: anything placed past the
    end wraps round. Two buses: `dry`, and `wet` (sent to the reverb when mixed)."""

    def __init__(self, seconds, sr=SR):
        self.sr = sr
        self.n = samples(seconds, sr)
        self.dry = np.zeros((self.n, 2))
        self.wet = np.zeros((self.n, 2))

    def add(self, sound, at, position=0.0, gain=1.0, send=0.0):
        """Place a mono or stereo sound starting at `at` seconds (wrapping past the end)."""
        s = pan(sound, position) if np.ndim(sound) == 1 else np.asarray(sound)
        s = s * gain
        start = samples(at, self.sr) % self.n
        done = 0
        while done < len(s):
            pos = (start + done) % self.n
            k = min(len(s) - done, self.n - pos)
            self.dry[pos:pos + k] += s[done:done + k]
            if send:
                self.wet[pos:pos + k] += s[done:done + k] * send
            done += k

    def mix(self, ir, wet_gain=1.0):
        """Dry plus the circularly reverberated send bus."""
        return self.dry + wet_gain * convolve(self.wet, ir, circular=True)


# ---------------------------------------------------------------- levels and output


def db(x):
    return 20 * np.log10(max(float(x), 1e-12))


def peak_db(x):
    return db(np.max(np.abs(x)))


def rms_db(x):
    return db(np.sqrt(np.mean(np.asarray(x, float) ** 2)))


def loudness_db(x, circular=True, sr=SR):
    """A rough perceived loudness: RMS after a low cut and a presence lift (in the spirit of a
    K-weighting), averaged over the channels. Good for matching two pieces against each other."""
    lows_cut = highpass(x, 80.0, 2, circular=circular, sr=sr)
    presence = highpass(x, 1500.0, 1, circular=circular, sr=sr)
    return rms_db(lows_cut + 0.6 * presence)


def soft_limit(x, ceiling_db=-3.0, knee_db=6.0):
    """Leave quiet samples alone and bend louder ones smoothly under the ceiling."""
    ceiling = 10 ** (ceiling_db / 20)
    knee = ceiling * 10 ** (-knee_db / 20)
    a = np.abs(x)
    over = a > knee
    room = ceiling - knee
    bent = knee + room * np.tanh((a - knee) / room)
    return np.where(over, np.sign(x) * bent, x)


def to_pcm16(x):
    return np.clip(np.rint(np.asarray(x) * 32767.0), -32768, 32767).astype("<i2")


def write_wav(path, x, sr=SR):
    """16-bit integer PCM WAV, mono (n,) or stereo (n, 2), with no extra chunks."""
    path = Path(path)
    path.parent.mkdir(parents=True, exist_ok=True)
    pcm = to_pcm16(x)
    with wave.open(str(path), "wb") as w:
        w.setnchannels(1 if pcm.ndim == 1 else pcm.shape[1])
        w.setsampwidth(2)
        w.setframerate(sr)
        w.writeframes(pcm.tobytes())
    return path


def read_wav(path):
    """A 16-bit PCM WAV back as float (n,) or (n, channels), and its sample rate."""
    with wave.open(str(path), "rb") as w:
        ch, sr, n = w.getnchannels(), w.getframerate(), w.getnframes()
        data = np.frombuffer(w.readframes(n), "<i2").astype(float) / 32767.0
    return (data if ch == 1 else data.reshape(-1, ch)), sr

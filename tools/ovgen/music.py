"""The music loops: Forest (calm, D dorian), City (tense, C phrygian) and the King (heavy, D minor).

Each loop is 16-bit PCM at 22050 Hz (the King's mono, the region loops stereo) and plays end to
start without a seam: notes that ring past the last bar wrap onto the first, and the reverb is
circular. The last bar of each piece
leads back into its first, so the loop also reads as music, not just as a join.

Forest, 80 bpm, 16 bars (48 s): plucked harp arpeggios, a soft pad and a low bass; a flute-like
lead carries the motif (A-D-E-F, E-D-B: the raised sixth, B, is the dorian colour). Bars 9-12 the
harp takes the motif up high while the flute rests; a few wind chimes glint.

City, 96 bpm, 20 bars (50 s): a low drone and pulsing strings, a muted frame drum, a distant bell
every four bars; a cello states the descending motif (G-Ab-G, F-Eb-Db-C: the flat second, Db,
is the phrygian colour), a horn answers over Ab-Db-Fm-G, and the last bars fall back to the cello.

King, 112 bpm, 26 bars (56 s, mono): war drums, a string ostinato and an anvil; horns over cellos
hammer out his call (see `king`).
"""
import numpy as np

from . import audio as au

SR = au.SR
N = au.note_number

# ---------------------------------------------------------------- instruments


def harp(note, vel=1.0, ring=3.2):
    """A plucked string: inharmonic-free partials, the upper ones dying faster; plucked near
    the end of the string, so the even partials are not cancelled."""
    f = au.midi_hz(note)
    n = au.samples(ring)
    low = np.clip(1.4 - (note - 50) / 40.0, 0.6, 1.4)  # low strings ring longer
    partials = [(k * (1 + 0.0003 * k * k), np.sin(np.pi * k * 0.16) / k ** 1.05,
                 1.9 * low / (1 + 0.75 * (k - 1))) for k in range(1, 12)]
    x = au.additive(f, n, partials) * au.percussive(n, 0.003, 5.0)
    return au.fade(x, 0.002, 0.3) * vel * 0.5


def flute(note, beats_long, vel=1.0, beat=0.75, rng=None):
    """A breathy, soft lead: nearly pure tone with a scoop into pitch, delayed vibrato, breath."""
    length = beats_long * beat
    n = au.samples(length + 0.25)
    t = au.time_axis(n)
    f0 = au.midi_hz(note)
    scoop = 1 - 0.012 * np.exp(-t / 0.05)
    f = au.vibrato(f0, n, rate=4.8, depth=0.0055, delay=0.35) * scoop
    ph = au.phase_of(f, n)
    tone = np.sin(ph) + 0.22 * np.sin(2 * ph) + 0.06 * np.sin(3 * ph) + 0.02 * np.sin(4 * ph)
    env = au.adsr(n, 0.09, 0.25, 0.82, 0.22, hold=length)
    swell = 1 + 0.08 * np.sin(np.pi * np.clip(t / max(length, 0.1), 0, 1))
    breath = au.bandpass(au.noise(n, rng), f0 * 1.5, f0 * 4, 2) * 0.35
    chiff = au.bandpass(au.noise(n, rng), 1500, 5000, 2) * np.exp(-t / 0.03) * 0.25
    return (tone * swell + breath) * env * vel * 0.32 + chiff * vel * 0.2


def pad(notes, length, rng):
    """A soft string-machine pad: two slightly detuned voices per note, one on each side."""
    n = au.samples(length)
    out = np.zeros((n, 2))
    env = au.adsr(n, 1.3, 0.6, 0.8, 1.6)
    t = au.time_axis(n)
    for note in notes:
        for side, cents in ((-0.7, -5), (0.7, 5)):
            f = au.midi_hz(note) * 2 ** (cents / 1200) * (1 + 0.0015 * np.sin(t * 0.9 + note))
            v = au.saw(f, n, harmonics=8, tilt=1.9)
            out += au.pan(v * env, side)
    return out * 0.085 / np.sqrt(len(notes))


def bass(note, length):
    n = au.samples(length)
    f = au.midi_hz(note)
    x = au.additive(f, n, [(1, 1.0, None), (2, 0.35, 1.2), (3, 0.12, 0.6)])
    return x * au.adsr(n, 0.25, 0.8, 0.65, 0.9) * 0.22


def bell(note, rng, length=5.0, bright=1.0):
    """A cast bell: hum, prime, minor third, fifth, nominal and upper partials, each with its own
    decay (the hum lasts longest), slightly detuned pairs for a slow beat."""
    f = au.midi_hz(note)
    n = au.samples(length)
    ratios = [(0.5, 0.5, 4.0), (1.0, 0.7, 2.6), (1.19, 0.45, 1.8), (1.5, 0.25, 1.4),
              (2.0, 0.5, 1.2), (2.51, 0.2, 0.8), (2.66, 0.25, 0.7), (3.01, 0.15, 0.5),
              (4.07, 0.08 * bright, 0.35)]
    x = np.zeros(n)
    for r, a, d in ratios:
        x += au.additive(f, n, [(r, a, d), (r * 1.0013, a * 0.5, d)])
    x += au.bandpass(au.noise(n, rng), 800, 4000) * np.exp(-au.time_axis(n) / 0.01) * 0.3
    return au.fade(x * au.percussive(n, 0.002, 9.0), 0.001, 0.5) * 0.3


def chime(note, rng):
    return bell(note, rng, length=2.2, bright=0.5) * 0.35


def cello(note, length, vel=1.0, rng=None):
    """A bowed low string: bright saw-like tone through body resonances, vibrato, bow noise."""
    n = au.samples(length + 0.35)
    t = au.time_axis(n)
    f = au.vibrato(au.midi_hz(note), n, rate=5.3, depth=0.007, delay=0.3)
    raw = au.saw(f, n, harmonics=28, tilt=1.05)
    body = au.bandpass(raw, 90, 700, 2) + 0.55 * au.bandpass(raw, 900, 1600, 2) \
        + 0.2 * au.bandpass(raw, 2200, 3400, 2)
    bow = au.bandpass(au.noise(n, rng), 1000, 4000, 1) * 0.05
    env = au.adsr(n, 0.16, 0.3, 0.85, 0.3, hold=length)
    swell = 1 + 0.1 * np.sin(np.pi * np.clip(t / max(length, 0.1), 0, 1))
    return (body + bow) * env * swell * vel * 0.33


def horn(note, length, vel=1.0):
    """A brass-like voice: its upper partials bloom as it gets louder, a slight lip scoop."""
    n = au.samples(length + 0.3)
    t = au.time_axis(n)
    env = au.adsr(n, 0.14, 0.35, 0.8, 0.28, hold=length)
    f = au.vibrato(au.midi_hz(note), n, rate=4.6, depth=0.004, delay=0.45) \
        * (1 - 0.02 * np.exp(-t / 0.04))
    ph = au.phase_of(f, n)
    x = np.zeros(n)
    for k in range(1, 14):
        if k * au.midi_hz(note) > SR * 0.45:
            break
        x += np.sin(k * ph) / k * env ** (1 + 0.45 * (k - 1))
    return au.lowpass(x, 2600, 2) * vel * 0.36


def string_pulse(notes, length, beat, rng):
    """Low strings re-bowed on every eighth note: each stroke swells in and sags back."""
    n = au.samples(length + 0.4)
    t = au.time_axis(n)
    eighth = beat / 2
    phase = (t % eighth) / eighth
    stroke = 0.45 + 0.55 * np.exp(-phase * 3.5) * np.clip(phase / 0.06, 0, 1) \
        + 0.55 * np.exp(-3.5) * (phase < 0.06) * (1 - phase / 0.06)
    stroke *= (t < length)
    env = au.adsr(n, 0.05, 0.2, 0.9, 0.35, hold=length)
    out = np.zeros((n, 2))
    for i, note in enumerate(notes):
        for side, cents in ((-0.6, -6), (0.6, 6)):
            f = au.midi_hz(note) * 2 ** (cents / 1200)
            v = au.lowpass(au.saw(f, n, harmonics=20, tilt=1.1), 900, 2)
            out += au.pan(v, side * (1 if i % 2 else -1))
    return (out.T * stroke * env).T * 0.18 / np.sqrt(len(notes))


def drone(notes, length):
    """A low sustained drone that lasts the whole loop. Its pitches are nudged (by far less than
    a cent) to whole numbers of cycles over the loop, and its slow swells divide the loop too,
    so it is continuous across the join."""
    n = au.samples(length)
    t = au.time_axis(n)
    out = np.zeros((n, 2))
    for i, note in enumerate(notes):
        f = round(au.midi_hz(note) * length) / length
        f = f * (1 + 0.001 * np.sin(2 * np.pi * 3 * t / length + i))
        v = au.lowpass(au.saw(f, n, harmonics=12, tilt=1.5), 500, 2, circular=True)
        breathe = 0.85 + 0.15 * np.sin(2 * np.pi * 6 * t / length + i)
        out += au.pan(v * breathe, -0.3 + 0.6 * i)
    return out * 0.12


def frame_drum(rng, vel=1.0, low=True):
    """A hand drum, muffled: a low 'doum' (pitch falling onto the head's note and a soft
    thump) or a high 'tek' on the rim."""
    n = au.samples(0.6 if low else 0.25)
    t = au.time_axis(n)
    if low:
        f = 62 + 45 * np.exp(-t / 0.03)
        x = np.sin(au.phase_of(f, n)) * np.exp(-t / 0.2)
        x += 0.3 * np.sin(au.phase_of(f * 1.58, n)) * np.exp(-t / 0.08)
        x += au.lowpass(au.noise(n, rng), 400, 2) * np.exp(-t / 0.02) * 0.6
        x = au.lowpass(x, 1400, 2)
    else:
        x = au.bandpass(au.noise(n, rng), 700, 2600, 2) * np.exp(-t / 0.03) * 1.1
        x += 0.4 * np.sin(au.phase_of(340.0, n)) * np.exp(-t / 0.05)
    return au.fade(x * vel, 0.001, 0.03) * 0.4


# ---------------------------------------------------------------- the forest


def forest(rng):
    bpm, bars = 80, 16
    beat = 60.0 / bpm
    bar = 4 * beat
    loop = au.Loop(bars * bar)
    chords = {  # root for the bass, pad voicing, harp arpeggio (eight eighth notes)
        "Dm": ("D2", ["D3", "F3", "A3", "C4"], ["D3", "A3", "D4", "E4", "F4", "A4", "F4", "E4"]),
        "G": ("G2", ["D3", "G3", "B3", "D4"], ["G2", "D3", "G3", "B3", "D4", "E4", "D4", "B3"]),
        "F": ("F2", ["C3", "F3", "A3", "E4"], ["F2", "C3", "F3", "A3", "C4", "E4", "C4", "A3"]),
        "C": ("C3", ["E3", "G3", "C4", "D4"], ["C3", "G3", "C4", "D4", "E4", "G4", "E4", "D4"]),
        "Am": ("A2", ["E3", "A3", "C4", "E4"], ["A2", "E3", "A3", "B3", "C4", "E4", "C4", "B3"]),
        "Em": ("E2", ["E3", "G3", "B3", "D4"], ["E2", "B2", "E3", "G3", "B3", "D4", "B3", "G3"]),
    }
    progression = ["Dm", "G", "F", "C", "Dm", "G", "Am", "Am",
                   "Dm", "G", "F", "C", "Dm", "Em", "G", "Am"]
    for i, name in enumerate(progression):
        root, voicing, arp = chords[name]
        at = i * bar
        loop.add(pad([N(v) for v in voicing], bar + 1.6, rng), at, gain=1.0, send=0.6)
        loop.add(bass(N(root), bar + 0.4), at, gain=1.0, send=0.15)
        pattern = arp if i % 2 == 0 else arp[:4] + arp[4:][::-1]
        for k, name_ in enumerate(pattern):
            if i >= 8 and i < 12 and k % 2 == 1:
                continue  # lighter under the harp's motif
            accent = 1.0 if k % 4 == 0 else 0.72
            human = 0.012 * (rng.rand() - 0.5)
            loop.add(harp(N(name_), accent * (0.9 + 0.2 * rng.rand())), at + k * beat / 2 + human,
                     position=-0.35 + 0.1 * (k % 3), gain=0.45, send=0.35)
    motif = [  # (bar, beat, note, length in beats)
        (0, 0, "A4", 1), (0, 1, "D5", 1.5), (0, 2.5, "E5", 0.5), (0, 3, "F5", 1),
        (1, 0, "E5", 1), (1, 1, "D5", 1), (1, 2, "B4", 2),
        (2, 0, "C5", 1.5), (2, 1.5, "D5", 0.5), (2, 2, "C5", 1), (2, 3, "A4", 1),
        (3, 0, "G4", 3),
        (4, 0, "A4", 1), (4, 1, "D5", 1.5), (4, 2.5, "E5", 0.5), (4, 3, "F5", 1),
        (5, 0, "G5", 1.5), (5, 1.5, "F5", 0.5), (5, 2, "E5", 1), (5, 3, "D5", 1),
        (6, 0, "E5", 2), (6, 2, "C5", 1), (6, 3, "B4", 1),
        (7, 0, "A4", 3.5),
        # the flute returns after the harp's verse, a little lower, and leads back to D
        (12, 0, "A4", 1), (12, 1, "D5", 1.5), (12, 2.5, "E5", 0.5), (12, 3, "F5", 1),
        (13, 0, "G5", 1), (13, 1, "E5", 1), (13, 2, "B4", 2),
        (14, 0, "D5", 1.5), (14, 1.5, "C5", 0.5), (14, 2, "B4", 1), (14, 3, "G4", 1),
        (15, 0, "A4", 2), (15, 2, "E4", 1), (15, 3, "G4", 0.5), (15, 3.5, "A4", 0.5),
    ]
    for b, bt, name, length in motif:
        loop.add(flute(N(name), length, beat=beat, rng=rng), b * bar + bt * beat,
                 position=0.15, gain=0.9, send=0.45)
    harp_verse = [(8, 0, "A5"), (8, 1, "D6"), (8, 2.5, "E6"), (8, 3, "F6"),
                  (9, 0, "E6"), (9, 1, "D6"), (9, 2, "B5"),
                  (10, 0, "C6"), (10, 1.5, "D6"), (10, 2, "C6"), (10, 3, "A5"),
                  (11, 0, "G5"), (11, 2, "A5"), (11, 3, "C6")]
    for b, bt, name in harp_verse:
        loop.add(harp(N(name), 0.9, ring=3.5), b * bar + bt * beat, position=0.35, gain=0.6,
                 send=0.5)
    for b, bt, name in [(2, 3.5, "A6"), (3, 2, "E6"), (6, 1.5, "D6"), (10, 3.5, "A6"),
                        (11, 1, "E6"), (14, 2.5, "D6"), (15, 1, "A5")]:
        loop.add(chime(N(name), rng), b * bar + bt * beat, position=0.6 - 0.15 * (b % 5),
                 gain=0.5, send=0.7)
    ir = au.reverb_ir(3.2, rng, predelay=0.03, damping=3200)
    return loop.mix(ir, wet_gain=0.55), bpm, bars


# ---------------------------------------------------------------- the city


def city(rng):
    bpm, bars = 96, 20
    beat = 60.0 / bpm
    bar = 4 * beat
    loop = au.Loop(bars * bar)
    chords = {  # drone/bass root, string voicing
        "Cm": ("C2", ["C2", "G2", "C3", "Eb3"]),
        "Db": ("Db2", ["Db2", "Ab2", "Db3", "F3"]),
        "Bbm": ("Bb1", ["Bb1", "F2", "Bb2", "Db3"]),
        "Ab": ("Ab1", ["Ab1", "Eb2", "Ab2", "C3"]),
        "Fm": ("F1", ["F1", "C2", "F2", "Ab2"]),
        "G": ("G1", ["G1", "D2", "G2", "B2"]),
    }
    progression = ["Cm", "Cm", "Db", "Db", "Cm", "Cm", "Bbm", "Db",
                   "Ab", "Ab", "Db", "Db", "Fm", "Fm", "G", "G",
                   "Cm", "Db", "Cm", "G"]
    loop.add(drone([N("C2"), N("G2")], bars * bar), 0, gain=0.8, send=0.3)
    for i, name in enumerate(progression):
        root, voicing = chords[name]
        at = i * bar
        quiet = 0.6 if i >= 16 else 1.0  # the last bars thin out before the loop comes round
        loop.add(string_pulse([N(v) for v in voicing], bar, beat, rng), at, gain=quiet,
                 send=0.35)
        loop.add(bass(N(root) + 12, bar + 0.3), at, gain=0.9, send=0.1)
        # frame drum: doum on 1 and 3, teks around them; fuller in the middle section
        hits = [(0, True, 1.0), (1.5, False, 0.5), (2, True, 0.8), (3.5, False, 0.6)]
        if 8 <= i < 16:
            hits += [(2.75, False, 0.35), (3.0, False, 0.45)]
        if i % 4 == 3:
            hits += [(3.25, True, 0.55), (3.5, True, 0.7), (3.75, True, 0.8)]
        for bt, low, vel in hits:
            vel *= 0.85 + 0.15 * rng.rand()
            loop.add(frame_drum(rng, vel, low), at + bt * beat + 0.006 * (rng.rand() - 0.5),
                     position=-0.15 if low else 0.25, gain=quiet, send=0.25)
        if i % 4 == 0:  # the distant bell
            loop.add(au.lowpass(bell(N("C4") if i % 8 == 0 else N("G3"), rng, 6.0), 2500),
                     at, position=0.45, gain=0.3, send=0.9)
    cello_lines = [  # (bar, beat, note, beats)
        (0, 0, "G3", 1.5), (0, 1.5, "Ab3", 0.5), (0, 2, "G3", 2),
        (1, 0, "F3", 1), (1, 1, "Eb3", 1), (1, 2, "Db3", 1), (1, 3, "Eb3", 1),
        (2, 0, "C3", 4),
        (3, 2, "Db3", 1), (3, 3, "Eb3", 1),
        (4, 0, "G3", 1.5), (4, 1.5, "Ab3", 0.5), (4, 2, "G3", 2),
        (5, 0, "Bb3", 1), (5, 1, "Ab3", 1), (5, 2, "G3", 1), (5, 3, "F3", 1),
        (6, 0, "F3", 2), (6, 2, "Db3", 2),
        (7, 0, "C3", 3),
        (16, 0, "G2", 1.5), (16, 1.5, "Ab2", 0.5), (16, 2, "G2", 2),
        (17, 0, "F2", 1), (17, 1, "Eb2", 1), (17, 2, "Db2", 2),
        (18, 0, "C2", 4),
        (19, 0, "B1", 2), (19, 2, "D2", 1), (19, 3, "F2", 1),
    ]
    for b, bt, name, length in cello_lines:
        loop.add(cello(N(name), length * beat, rng=rng), b * bar + bt * beat, position=-0.2,
                 gain=1.0, send=0.35)
    horn_lines = [
        (8, 0, "C4", 1), (8, 1, "Eb4", 1), (8, 2, "Db4", 1), (8, 3, "C4", 1),
        (9, 0, "Ab3", 4),
        (10, 0, "Db4", 1.5), (10, 1.5, "C4", 0.5), (10, 2, "Bb3", 1), (10, 3, "Ab3", 1),
        (11, 0, "F3", 4),
        (12, 0, "F3", 1), (12, 1, "Ab3", 1), (12, 2, "C4", 2),
        (13, 0, "Db4", 2), (13, 2, "C4", 2),
        (14, 0, "B3", 4),
        (15, 0, "D4", 2), (15, 2, "B3", 1.5),
    ]
    for b, bt, name, length in horn_lines:
        loop.add(horn(N(name), length * beat), b * bar + bt * beat, position=0.2, gain=0.95,
                 send=0.45)
    ir = au.reverb_ir(2.6, rng, predelay=0.025, damping=2600)
    return loop.mix(ir, wet_gain=0.5), bpm, bars


# ---------------------------------------------------------------- the King


def war_drum(rng, vel=1.0):
    """A great war drum: a deep skin falling onto its note, a hard beater and a long boom."""
    n = au.samples(1.1)
    t = au.time_axis(n)
    f = 46 + 60 * np.exp(-t / 0.025)
    x = np.sin(au.phase_of(f, n)) * np.exp(-t / 0.38)
    x += 0.35 * np.sin(au.phase_of(f * 1.5, n)) * np.exp(-t / 0.12)
    x += au.lowpass(au.noise(n, rng), 900, 2) * np.exp(-t / 0.015) * 0.9
    return au.fade(au.lowpass(x, 1800, 2) * vel, 0.001, 0.05) * 0.55


def anvil(note, rng):
    """An anvil struck with a hammer: a hard click and a few bright, inharmonic partials."""
    n = au.samples(1.6)
    f = au.midi_hz(note)
    x = au.additive(f, n, [(1.0, 0.6, 0.9), (2.76, 0.4, 0.5), (5.4, 0.25, 0.3), (8.9, 0.12, 0.15)])
    x += au.bandpass(au.noise(n, rng), 2000, 7000) * np.exp(-au.time_axis(n) / 0.004) * 0.6
    return au.fade(x * au.percussive(n, 0.001, 6.0), 0.0005, 0.3) * 0.22


KING_MOTIF = [  # (beat, semitones above the tonic, beats): the King's call, two bars long
    (0, 0, 1), (1, 0, 0.5), (1.5, 3, 0.5), (2, 7, 1), (3, 5, 0.5), (3.5, 3, 0.5),
    (4, 2, 1.5), (5.5, 3, 0.5), (6, 0, 2)]


def king(rng):
    """The King's loop: D minor, 112 bpm, 26 bars. War drums and a driving string ostinato from
    the first beat; horns and cellos state the motif (D-D-F-A, G-F-E-F-D) twice, take it up to
    G minor, and hammer it out an octave higher before the drums lead back round to the start.
    An anvil rings on each phrase's downbeat."""
    bpm, bars = 112, 26
    beat = 60.0 / bpm
    bar = 4 * beat
    loop = au.Loop(bars * bar)
    chords = {"Dm": ("D2", ["D2", "A2", "D3", "F3"]), "Bb": ("Bb1", ["Bb1", "F2", "Bb2", "D3"]),
              "A": ("A1", ["A1", "E2", "A2", "C#3"]), "Gm": ("G1", ["G1", "D2", "G2", "Bb2"]),
              "Eb": ("Eb2", ["Eb2", "Bb2", "Eb3", "G3"])}
    progression = ["Dm", "Dm", "Bb", "A", "Dm", "Dm", "Bb", "A", "Dm", "Dm", "Gm", "A",
                   "Gm", "Gm", "Eb", "A", "Gm", "Bb", "Eb", "A", "Dm", "Dm", "Bb", "A", "Gm", "A"]
    for i, name in enumerate(progression):
        root, voicing = chords[name]
        at = i * bar
        loop.add(string_pulse([N(v) for v in voicing], bar, beat, rng), at, gain=1.2, send=0.3)
        loop.add(bass(N(root), bar + 0.3), at, gain=1.3, send=0.1)
        # the drums march on 1, the and of 2 and 3; heavier from bar 12; a roll into each phrase
        hits = [(0, 1.0), (1.5, 0.6), (2, 0.85), (3, 0.5)]
        if i >= 12:
            hits += [(2.5, 0.55), (3.5, 0.6)]
        if i % 4 == 3:
            hits += [(3.25, 0.6), (3.5, 0.75), (3.75, 0.9)]
        for bt, vel in hits:
            vel *= 0.88 + 0.12 * rng.rand()
            loop.add(war_drum(rng, vel), at + bt * beat + 0.004 * (rng.rand() - 0.5), gain=1.0,
                     send=0.25)
        for bt in (1, 3):
            loop.add(frame_drum(rng, 0.7, low=False), at + bt * beat, position=0.2, gain=0.9,
                     send=0.2)
        if i % 4 == 0:
            loop.add(anvil(N("D5") if i % 8 == 0 else N("A4"), rng), at, position=0.3, gain=1.0,
                     send=0.6)
    for start, tonic, vel in [(4, "D3", 1.0), (8, "D3", 1.0), (12, "G3", 1.0), (16, "G3", 1.0),
                              (20, "D4", 1.1)]:
        for bt, step, length in KING_MOTIF:
            at = start * bar + bt * beat
            note = N(tonic) + step
            loop.add(horn(note, length * beat * 0.92, vel), at, position=0.15, gain=1.1, send=0.4)
            loop.add(cello(note - 12, length * beat * 0.92, rng=rng), at, position=-0.15,
                     gain=0.9, send=0.3)
    for b, bt, name, length in [(24, 0, "A3", 2), (24, 2, "Bb3", 2), (25, 0, "A3", 3),
                                (25, 3, "C#4", 1)]:
        loop.add(horn(N(name), length * beat * 0.92), b * bar + bt * beat, position=0.15,
                 gain=0.9, send=0.45)
    ir = au.reverb_ir(2.2, rng, predelay=0.02, damping=2400)
    return loop.mix(ir, wet_gain=0.45), bpm, bars


# ---------------------------------------------------------------- output

LOUDNESS = -15.5   # matched rough perceived loudness of the loops (see audio.loudness_db)
CEILING = -3.0     # dBFS: peaks stay at or under this

PIECES = {"ForestMusic": (forest, 5011), "CityMusic": (city, 6029), "King_Music": (king, 7013)}
MONO = {"King_Music"}   # heard only in one hall and never placed: one channel is enough


def master(x):
    """Clean the lows, match the loudness, keep the peaks under the ceiling (all circular)."""
    x = au.highpass(x, 35.0, 2, circular=True)
    x = x * 10 ** ((LOUDNESS - au.loudness_db(x)) / 20)
    return au.soft_limit(x, CEILING, knee_db=4.0)


def render(name):
    build, seed = PIECES[name]
    x, _, _ = build(np.random.RandomState(seed))
    return master(x.mean(axis=1) if name in MONO else x)


def generate(out):
    written = []
    for name in PIECES:
        x = render(name)
        if not 40 <= len(x) / SR <= 60 or au.peak_db(x) > CEILING + 0.01:
            raise ValueError(f"{name}: {len(x) / SR:.1f} s, peak {au.peak_db(x):.2f} dBFS")
        written.append(au.write_wav(out / f"Assets/Sounds/MUSIC/{name}.wav", x))
    return written

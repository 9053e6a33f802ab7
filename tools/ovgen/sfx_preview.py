"""A quick look at a sound effect: its waveform over a spectrogram, as a PNG (for checking the
layering of sfx.py by eye; nothing in the game uses these pictures)."""
from pathlib import Path

import numpy as np
from PIL import Image, ImageDraw

from . import audio as au

WIDTH, WAVE_H, SPEC_H = 900, 160, 360
TOP_HZ = 16000.0


def draw(wav, png):
    x, sr = au.read_wav(wav)
    mono = x if x.ndim == 1 else x.mean(axis=1)
    img = Image.new("RGB", (WIDTH, WAVE_H + SPEC_H + 18), (12, 12, 16))
    d = ImageDraw.Draw(img)
    # waveform: min and max per column, with -6 and -3 dBFS guides
    cols = np.array_split(mono, WIDTH)
    mid = WAVE_H // 2
    for level, colour in ((10 ** (-6 / 20), (60, 60, 90)), (10 ** (-3 / 20), (110, 50, 50))):
        for y in (mid - level * mid, mid + level * mid):
            d.line([(0, y), (WIDTH, y)], fill=colour)
    for i, c in enumerate(cols):
        if len(c):
            d.line([(i, mid - c.max() * mid), (i, mid - c.min() * mid)], fill=(200, 200, 140))
    # spectrogram: 1024-point frames, log-frequency rows from 40 Hz up, 70 dB range
    size, hop = 1024, max(1, (len(mono) - 1024) // WIDTH)
    padded = np.concatenate([mono, np.zeros(size)])
    frames = np.stack([padded[i * hop:i * hop + size] * np.hanning(size) for i in range(WIDTH)])
    mag = 20 * np.log10(np.abs(np.fft.rfft(frames, axis=1)) + 1e-9)
    freqs = np.fft.rfftfreq(size, 1 / sr)
    rows = np.geomspace(TOP_HZ, 40.0, SPEC_H)
    gram = np.stack([np.interp(rows, freqs, m) for m in mag], axis=1)
    v = np.clip((gram - (gram.max() - 70)) / 70, 0, 1)
    rgb = np.stack([v ** 0.7 * 255, v ** 1.5 * 230, (1 - v) * v * 4 * 160 + v ** 3 * 80], axis=-1)
    img.paste(Image.fromarray(rgb.astype(np.uint8)), (0, WAVE_H))
    for hz in (100, 1000, 10000):
        y = WAVE_H + int(np.argmin(np.abs(rows - hz)))
        d.text((2, y - 6), f"{hz:g}", fill=(255, 255, 255))
    d.text((4, WAVE_H + SPEC_H + 3), f"{Path(wav).name}  {len(mono) / sr:.2f} s", fill=(220, 220, 220))
    Path(png).parent.mkdir(parents=True, exist_ok=True)
    img.save(png)

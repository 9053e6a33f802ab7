"""Hit and parry effects: Sprites/FX/DamageBloodFX.png and PlayerparryFX.png.

Both are one-row strips of five frames, drawn on the native grid (hard pixels) and shown x3 with
the origin at the frame centre; they play once.
- DamageBloodFX: 135 x 106 frames at 15 fps, mirrored in game for hits to the left, so the spray
  flies to the right: a white-hot hit flash on frame 1, a dark-red burst, droplets thrown right
  that arc down under gravity and thin out, gone by frame 5.
- PlayerparryFX: 78 x 76 frames at 10 fps: a white-gold star burst with radiating lines, then a
  ring that expands and fades.
"""
import math

import numpy as np

from . import pixel as px

BLOOD_FRAME, BLOOD_COUNT = (135, 106), 5
PARRY_FRAME, PARRY_COUNT = (78, 76), 5

BLOOD = px.ramp("#1e0306", "#4a070e", "#7e0f18", "#b41c22", "#e0443a", "#ff8a6a")
FLASH = px.ramp("#ffb08a", "#ffe6c8", "#ffffff")
GOLD = px.ramp("#7a4c16", "#c08a2c", "#f5d272", "#fff3c4", "#ffffff")


def _put(img, mask, colour, alpha=255):
    img[mask, :3] = colour
    img[mask, 3] = alpha


def _ray(cv_y, cv_x, c, angle, r0, r1, width):
    """Pixels within `width` of the ray from radius r0 to r1 at `angle` (degrees, y up)."""
    dx, dy = math.cos(math.radians(angle)), -math.sin(math.radians(angle))
    rx, ry = cv_x - c[0], cv_y - c[1]
    t = rx * dx + ry * dy
    d = np.abs(rx * dy - ry * dx)
    return (t >= r0) & (t <= r1) & (d <= width * (1 - 0.6 * np.clip((t - r0) / max(r1 - r0, 1), 0, 1)))


# ---------------------------------------------------------------- blood


def blood_frames():
    w, h = BLOOD_FRAME
    ys, xs = px.grid(h, w)
    c = (w / 2.0, h / 2.0)
    rng = np.random.RandomState(6121)
    # droplets: launched from the centre, mostly to the right, some up, some down
    n = 60
    ang = np.radians(rng.uniform(-50, 62, n) + rng.normal(0, 8, n))
    speed = rng.uniform(18, 62, n)
    size = rng.uniform(0.9, 2.8, n) * np.clip(1.4 - speed / 80, 0.5, 1.2)
    frames = []
    times = (0.0, 0.3, 0.6, 0.9, 1.2)           # seconds-like steps, a little slower than real
    for k, t in enumerate(times):
        img = np.zeros((h, w, 4), np.uint8)
        dist = np.hypot(xs - c[0], ys - c[1])
        if k == 0:
            # the hit: a white-hot core, four long spikes, a red ring of spatter just starting
            core = dist <= 7.0
            spikes = np.zeros((h, w), bool)
            for a, ln in ((0, 30), (90, 16), (180, 12), (270, 16), (32, 20), (-32, 20), (145, 9),
                          (-145, 9)):
                spikes |= _ray(ys, xs, c, a, 0, ln, 2.2)
            halo = (dist <= 13) & ~core
            _put(img, px.dither_mask(np.clip(1.4 - dist / 13, 0, 1)) & halo, BLOOD[4])
            _put(img, spikes & ~core, FLASH[1])
            _put(img, spikes & (dist <= 10), FLASH[2])
            _put(img, core, FLASH[2])
            _put(img, (np.abs(dist - 11) <= 0.8) & (xs > c[0] + 3) & px.dither_mask(np.full((h, w), 0.7)),
                 BLOOD[3])
        # the burst body: a lobe of blood to the right, swelling then breaking up
        if 1 <= k <= 3:
            lobe_r = (10, 13, 12)[k - 1]
            lobe_c = (c[0] + (6, 13, 20)[k - 1], c[1] + (0, 2, 5)[k - 1])
            lobe = ((xs - lobe_c[0]) / (lobe_r * 1.4)) ** 2 + ((ys - lobe_c[1]) / lobe_r) ** 2 <= 1
            keep = px.dither_mask(np.full((h, w), (1.0, 0.7, 0.35)[k - 1]))
            noise = px.noise_2d(h, w, 3, np.random.RandomState(50 + k)) > (0.25, 0.4, 0.55)[k - 1]
            lobe &= keep & noise
            tone = px.bevel(lobe)
            _put(img, tone == 0, BLOOD[1])
            _put(img, tone == 1, BLOOD[2])
            _put(img, tone == 2, BLOOD[4] if k == 1 else BLOOD[3])
            if k == 1:
                _put(img, dist <= 4.5, FLASH[0])
                _put(img, dist <= 2.5, FLASH[1])
        # droplets with a short streak behind them, falling under gravity, shrinking
        if k >= 1:
            for i in range(n):
                tt = t * (1.0 + 0.15 * (i % 3))
                x = c[0] + math.cos(ang[i]) * speed[i] * tt * 1.4
                y = c[1] - math.sin(ang[i]) * speed[i] * tt + 34 * tt * tt
                r = size[i] * (1.15 - 0.22 * k)
                if r < 0.45 or not (2 <= x < w - 2 and 2 <= y < h - 2):
                    continue
                if k >= 3 and (i * 7 + k) % (6 - k + 2) == 0:
                    continue                            # drops thin out
                px0 = c[0] + math.cos(ang[i]) * speed[i] * (tt - 0.12) * 1.4
                py0 = c[1] - math.sin(ang[i]) * speed[i] * (tt - 0.12) + 34 * (tt - 0.12) ** 2
                seg_t = np.clip(((xs - px0) * (x - px0) + (ys - py0) * (y - py0))
                                / max((x - px0) ** 2 + (y - py0) ** 2, 1e-6), 0, 1)
                qd = np.hypot(xs - (px0 + seg_t * (x - px0)), ys - (py0 + seg_t * (y - py0)))
                streak = qd <= max(r * 0.55, 0.5)
                drop = np.hypot(xs - x, ys - y) <= max(r, 0.6)
                _put(img, streak & (img[..., 3] == 0), BLOOD[2 if k < 3 else 1])
                _put(img, drop, BLOOD[3 if k < 4 else 2])
                hi = drop & ~px.shift(drop, 1, 1)
                if r > 1.1:
                    _put(img, hi, BLOOD[5 if k < 3 else 4])
        # dark outline so the burst reads on pale skies and stone alike
        sil = img[..., 3] > 0
        _put(img, px.outline_of(sil) & (k < 4), BLOOD[0])
        frames.append(img)
    return frames


# ---------------------------------------------------------------- parry


def parry_frames():
    w, h = PARRY_FRAME
    ys, xs = px.grid(h, w)
    c = (w / 2.0, h / 2.0)
    dist = np.hypot(xs - c[0], ys - c[1])
    frames = []
    for k in range(PARRY_COUNT):
        img = np.zeros((h, w, 4), np.uint8)
        # ring: expands, thins, breaks into a dither
        if k >= 1:
            R = (0, 13, 21, 28, 34)[k]
            thick = (0, 2.6, 2.0, 1.5, 1.1)[k]
            ring = np.abs(dist - R) <= thick
            fade = (1.0, 1.0, 0.95, 0.7, 0.4)[k]
            ring &= px.dither_mask(np.full((h, w), fade))
            _put(img, ring, GOLD[(4, 3, 2, 1, 1)[k]])
            _put(img, ring & (np.abs(dist - R - thick * 0.5) <= 0.6), GOLD[(4, 4, 3, 2, 1)[k]])
        # radiating lines: long and bright at first, then flying outward and shortening
        if k <= 3:
            for j in range(12):
                a = j * 30 + (15 if j % 2 else 0) + 7
                long_ray = j % 3 == 0
                r0 = (5, 9, 17, 26)[k] + (0 if long_ray else 2)
                r1 = r0 + ((22, 16, 10, 6)[k] if long_ray else (12, 9, 6, 3)[k])
                wid = (1.4, 1.1, 0.9, 0.7)[k] if long_ray else 0.7
                ray = _ray(ys, xs, c, a, r0, min(r1, 36), wid)
                _put(img, ray, GOLD[(4, 3, 2, 2)[k]] if long_ray else GOLD[(3, 2, 2, 1)[k]])
        # the star: a four-point flare with a white core, largest on frame 2
        if k <= 2:
            s = (11, 15, 8)[k]
            star = np.zeros((h, w), bool)
            for a in (0, 90, 180, 270):
                star |= _ray(ys, xs, c, a, 0, s, 2.2 if k < 2 else 1.5)
            for a in (45, 135, 225, 315):
                star |= _ray(ys, xs, c, a, 0, s * 0.45, 1.4)
            core = dist <= (4.5, 5.5, 3.0)[k]
            _put(img, star, GOLD[3])
            _put(img, star & (dist <= s * 0.5), GOLD[4])
            _put(img, core, GOLD[4])
            glow = (dist <= (9, 11, 7)[k]) & ~star & px.dither_mask(np.clip(1 - dist / 11, 0, 1) * 0.6)
            _put(img, glow & (img[..., 3] == 0), GOLD[2])
        # a few sparks flung out
        rng = np.random.RandomState(77)
        for j in range(10):
            a = math.radians(rng.uniform(0, 360))
            r = rng.uniform(8, 14) + k * rng.uniform(5, 8)
            if k == 0 or r > 36 or (k == 4 and j % 2):
                continue
            x, y = int(c[0] + r * math.cos(a)), int(c[1] - r * math.sin(a))
            img[y, x] = (*GOLD[4 if k < 3 else 2].astype(int), 255)
            if k < 3:
                img[y, x + 1 if math.cos(a) < 0 else x - 1] = (*GOLD[2].astype(int), 255)
        # a thin dark edge keeps it readable on the pale sky
        sil = img[..., 3] > 0
        _put(img, px.outline_of(sil) & (k <= 1), px.rgb("#3a2208"), 160)
        frames.append(img)
    return frames


def strip(frames):
    return np.concatenate(frames, axis=1)


def generate(out):
    blood, parry = strip(blood_frames()), strip(parry_frames())
    for img, (fw, fh), n, name in ((blood, BLOOD_FRAME, BLOOD_COUNT, "DamageBloodFX.png"),
                                   (parry, PARRY_FRAME, PARRY_COUNT, "PlayerparryFX.png")):
        if img.shape != (fh, fw * n, 4):
            raise ValueError(f"{name} is {img.shape[1]}x{img.shape[0]}, not {fw * n}x{fh}")
        for k in range(n):
            f = img[:, k * fw:(k + 1) * fw, 3]
            if not f.any() or f[0].any() or f[-1].any() or f[:, 0].any() or f[:, -1].any():
                raise ValueError(f"{name} frame {k + 1} is empty or touches its edge")
    return [px.save_png(blood, out / "Assets/Sprites/FX/DamageBloodFX.png"),
            px.save_png(parry, out / "Assets/Sprites/FX/PlayerparryFX.png")]

"""The conjured cloud: Sprites/Player/PlatformCapacity-SpriteSheet.png, its AnimData file and
docs/cloud_poses.png.

The hero conjures a small cloud under the feet in mid-air and stands on it for three seconds. The
game draws the cloud x3 from the top centre of its frame, 5 tx above the hero's feet, and stands
the hero on a box 70 % of the frame wide (and 70 % of it high) starting at the feet. So:
- frames are 64 x 28; the cloud's walkable top, the ink line on its crown, is row 5 in every
  frame the hero can stand on (creation and the float), across the middle where the feet go;
- the cloud's body keeps within the middle 70 % of the frame (columns 10 to 53);
- rows: CREATION (6 frames at 15 fps, 0.4 s, with the swell of its sound: a puff bursts out
  under the feet and billows to full size), STATIC (6 frames at 8 fps, looping for the three
  seconds: the puffs breathe, wisps trail underneath, a glint drifts over it), DESTRUCTION
  (6 frames at 20 fps, 0.3 s, with the burst of its sound: the cloud tears apart into puffs that
  sink, shrink and scatter into motes). The game plays creation and destruction once.
Same cloud as the item that rises out of the chest (`ability_art.cloud_tone`): white on top,
lavender underneath, a dark indigo outline, lit from the top left.
"""
import math

import numpy as np
from PIL import Image, ImageDraw, ImageFont

from . import ability_art as aa
from . import pixel as px
from . import rig
from .animdata import FieldReader

FW, FH = 64, 28
TOP = 5                          # the walkable top: the crown's ink line, in frame rows
BODY = (10, 53)                  # columns the body keeps within (the middle 70 %)
CLIPS = [("CREATION", 15), ("STATIC", 8), ("DESTRUCTION", 20)]
N = 6                            # frames per clip
BASE_Y = 10.0                    # rig y of the flat underside
CROWN = (0.0, 5.5, 6.5, 7.0)     # flat on top from -7 to 7 at 10 + 5.5 + 6.5 = 22, the top of row TOP + 1

# the full cloud's puffs, back to front: crown, shoulders, far ends, low front puffs
PUFFS = [CROWN, (12.5, 3.6, 6.0), (-12.5, 3.8, 6.0), (18.0, 1.4, 3.2), (-18.0, 1.4, 3.2),
         (-6.4, -0.6, 5.6), (6.0, -0.8, 5.8)]
MOTE = px.ramp("#b8c4e6", "#e8eefc", "#ffffff")
GLINT = px.ramp("#d9a53a", "#f5d272", "#fff3c4", "#ffffff")


def render_cloud(puffs, centre=(0.0, BASE_Y), extra=None):
    """Rasterise a cloud from puffs (dx, dy, r) around `centre`; `extra` may paint on it after."""
    cv = rig.Canvas(FW, FH)
    mask = aa.cloud_puffs(cv, 1.0, centre, puffs)
    tone = aa.cloud_tone(cv, mask, centre, 1.0, puffs)
    img = aa.render([aa.part("cloud", mask, aa.CLOUD, "cloud", tone)], FW, FH)
    if extra:
        extra(img, cv)
    return img


def wisps(img, phase, strength=1.0):
    """Thin trails of vapour under the cloud, drifting back and forth, breaking up at their ends."""
    solid = img[..., 3] > 0
    rows = np.nonzero(solid.any(axis=1))[0]
    if not rows.size:
        return
    bottom = rows.max()
    for k, (x0, ln, dy) in enumerate(((23, 10, 1), (35, 8, 2), (28, 6, 4))):
        shift = int(round(2.0 * math.sin(2 * math.pi * (phase + k / 3.0)) * strength))
        y = bottom + dy
        if y >= FH:
            continue
        for i in range(ln):
            x = x0 + shift + i
            end = min(i, ln - 1 - i)
            if 0 <= x < FW and img[y, x, 3] == 0 and (end > 0 or (i + k) % 2 == 0):
                img[y, x, :3] = MOTE[1] if end > 1 else MOTE[0]
                img[y, x, 3] = 255


def glint(img, x, y, size):
    """A small star of light on the cloud."""
    if size <= 0:
        return
    colours = [GLINT[0], GLINT[1], GLINT[2], GLINT[3]]
    aa.sparkle(img, (x, y), size, colours)


# ---------------------------------------------------------------- clips


def creation():
    """A dense puff bursts out under the feet and billows out to the full cloud: the crown's top
    stays on the feet from the first frame, the shoulders and ends roll out sideways."""
    frames = []
    for i in range(N):
        t = (i + 1) / N
        g = 1 - (1 - t) ** 2                      # fast, then settling
        puffs = [CROWN]                              # under the feet from the first frame
        for dx, dy, r in PUFFS[1:]:
            puffs.append((dx * g, dy, r * min(1.0, 0.25 + g)))
        # a touch of overshoot on the fourth frame, so the cloud billows rather than slides out
        if i == 3:
            puffs = puffs[:1] + [(dx * 1.02, dy, r * 1.04) for dx, dy, r in puffs[1:]]

        def extra(img, cv, i=i):
            wisps(img, i / N, strength=0.5)
            # swirling motes thrown out as it forms
            for k in range(5):
                a = 2 * math.pi * (k / 5.0 + i * 0.09)
                rad = 6 + 3.6 * i
                x = int(round(FW / 2 + rad * math.cos(a) * 1.5))
                y = int(round(14 + rad * math.sin(a) * 0.45))
                clear_of_feet = y > TOP + 2 or abs(x - FW / 2) > 12
                inside = BODY[0] <= x <= BODY[1] and 0 <= y < FH
                if inside and img[y, x, 3] == 0 and i < N - 1 and clear_of_feet:
                    img[y, x, :3] = MOTE[2 - (k % 2)]
                    img[y, x, 3] = 255
            if i == N - 1:
                glint(img, 18, 9, 2)
        frames.append(render_cloud(puffs, extra=extra))
    # the crown's ink line is the walkable top; the first frames keep it even while small
    return frames


def static():
    """The float: the shoulders and ends breathe, the wisps drift, a glint travels over it."""
    frames = []
    for i in range(N):
        ph = i / N
        puffs = [CROWN]
        for k, (dx, dy, r) in enumerate(PUFFS[1:]):
            b = math.sin(2 * math.pi * (ph + k * 0.23))
            puffs.append((dx, dy + 0.35 * b, r + 0.3 * b))

        def extra(img, cv, i=i, ph=ph):
            wisps(img, ph)
            if i in (1, 2, 3):
                glint(img, 14 + 6 * i, 10 + (i % 2), 2 if i == 2 else 1)
        frames.append(render_cloud(puffs, extra=extra))
    return frames


def destruction():
    """The cloud tears into three puffs that sink, shrink and drift apart, then only motes."""
    frames = []
    groups = [(-1, PUFFS[2:3] + PUFFS[4:6]), (0, [CROWN]), (1, PUFFS[1:2] + PUFFS[3:4] + PUFFS[6:7])]
    for i in range(N):
        t = i / (N - 1)
        if i == 0:
            puffs = [(p[0], p[1] - 0.5, p[2] * 0.97) + tuple(p[3:]) for p in PUFFS]
            img = render_cloud(puffs)
            tear = np.zeros(img.shape[:2], bool)
            for x in (21, 22, 34):
                tear[14:19, x] = True
            img[tear & (img[..., 3] > 0)] = (*aa.CLOUD.shadow, 255)
            frames.append(img)
            continue
        img = np.zeros((FH, FW, 4), np.uint8)
        for side, group in groups:
            if i >= 5:
                break
            spread = 4.0 * t * side
            sink = 5.0 * t * t
            shrink = 1.0 - 0.55 * t
            puffs = [(p[0] * (1 + 0.15 * t), p[1], p[2] * shrink) + tuple(q * shrink for q in p[3:])
                     for p in group]
            part = render_cloud(puffs, centre=(spread, BASE_Y - sink))
            # the puffs thin out: an ordered dither eats them as they go
            keep = px.bayer(FH, FW) < 1.15 - 0.5 * t
            a = (part[..., 3] > 0) & keep & (img[..., 3] == 0)
            img[a] = part[a]
        # motes scattering outwards and falling
        rng = np.random.RandomState(830 + i)
        for k in range(10 + 2 * i):
            ang = 2 * math.pi * rng.rand()
            rad = (4 + 10 * t) * (0.5 + rng.rand())
            x = int(round(FW / 2 + 1.6 * rad * math.cos(ang)))
            y = int(round(14 + 0.7 * rad * math.sin(ang) + 4 * t * t))
            if 0 <= x < FW and 0 <= y < FH and img[y, x, 3] == 0 and rng.rand() < 1.05 - 0.45 * t:
                img[y, x, :3] = MOTE[int(rng.randint(3))]
                img[y, x, 3] = 255
        frames.append(img)
    return frames


def build():
    return [("CREATION", creation()), ("STATIC", static()), ("DESTRUCTION", destruction())]


def anim_data(clips):
    """The file in the game's order; STATIC and DESTRUCTION are each followed by a blank line."""
    rates = dict(CLIPS)
    lines = [f"size : ({FW},{FH})", "first Frame Position : (0,0)", ""]
    for label, frames in clips:
        lines.append(f"{label} | NbFrame : {len(frames)} / FrameRate : {rates[label]}")
        if label != "CREATION":
            lines.append("")
    return "\n".join(lines) + "\n"


def read_anim_data(text):
    """Read the file the way the game does, field by field; every field must match."""
    reader = FieldReader(text, "PlatformCapacity AnimData")
    size = reader.need("size : (%d,%d)\n")
    first = reader.need("first Frame Position : (%d,%d)\n\n")
    rows = [("CREATION",) + tuple(reader.need("CREATION | NbFrame : %d / FrameRate : %d\n")),
            ("STATIC",) + tuple(reader.need("STATIC | NbFrame : %d / FrameRate : %d\n\n")),
            ("DESTRUCTION",) + tuple(reader.need("DESTRUCTION | NbFrame : %d / FrameRate : %d\n\n"))]
    reader.finish()
    return tuple(size), tuple(first), rows


def check(text, img, clips):
    """What the game would not report: a field that stops scanning, a clip that never finishes,
    a row too short, a frame the hero sinks into or floats over, a body wider than the box."""
    raw = text.encode("ascii")
    if raw.startswith(b"\xef\xbb\xbf") or b"\r" in raw:
        raise ValueError("cloud AnimData must be plain ASCII with LF line ends")
    (fw, fh), first, rows = read_anim_data(text)
    if (fw, fh) != (FW, FH) or first != (0, 0):
        raise ValueError(f"cloud AnimData size {fw}x{fh} / first {first}")
    if img.shape[:2] != (FH * 3, FW * max(n for _, n, _ in rows)):
        raise ValueError(f"cloud sheet is {img.shape[1]}x{img.shape[0]}")
    for (label, n, rate), (_, frames) in zip(rows, clips):
        if not (1 <= n == len(frames) and 1 <= rate <= 60):
            raise ValueError(f"cloud {label}: {n} frames at {rate} fps")
    mid = slice(FW // 2 - 6, FW // 2 + 6)
    for label, frames in clips:
        for i, f in enumerate(frames):
            a = f[..., 3] > 0
            if not a.any():
                raise ValueError(f"cloud {label} {i} is empty")
            if label != "DESTRUCTION":
                top = np.nonzero(a[:, mid].any(axis=1))[0].min()
                cols = np.nonzero(a[TOP:TOP + 14].any(axis=0))[0]
                if top != TOP:
                    raise ValueError(f"cloud {label} {i}: walkable top on row {top}")
                if cols.min() < BODY[0] or cols.max() > BODY[1]:
                    raise ValueError(f"cloud {label} {i}: body spans columns {cols.min()}..{cols.max()}")


# ---------------------------------------------------------------- review sheet


def pose_sheet(clips, out):
    """docs/cloud_poses.png: every frame x3 with the stand box (the hero's feet line in gold, the
    box in red), then the hero standing on the float frame over both regions' backgrounds."""
    from . import hud_preview as hp
    s, label_w, pad = 3, 210, 8
    cw, ch = FW * s, FH * s
    rows_h = len(clips) * (ch + pad) + pad
    stand_h = 110 * s
    width = label_w + N * (cw + pad) + pad
    img = Image.new("RGBA", (width, rows_h + stand_h + pad), (18, 20, 26, 255))
    draw = ImageDraw.Draw(img)
    font = ImageFont.truetype(str(out / "Assets/Fonts/ButtonFont2.ttf"), 16)
    rates = dict(CLIPS)
    for r, (label, frames) in enumerate(clips):
        y = pad + r * (ch + pad)
        draw.text((pad, y + 8), label, font=font, fill=(225, 220, 205, 255))
        draw.text((pad, y + 30), f"{len(frames)} x {rates[label]} fps", font=font, fill=(150, 150, 160, 255))
        for c, f in enumerate(frames):
            x = label_w + c * (cw + pad)
            draw.rectangle([x, y, x + cw - 1, y + ch - 1], (40, 44, 64, 255))
            img.alpha_composite(Image.fromarray(px.upscale(f, s)), (x, y))
            bx0 = x + int(round(0.15 * FW * s))
            draw.rectangle([bx0, y + TOP * s, bx0 + int(round(0.7 * FW * s)) - 1,
                            y + min(ch - 1, TOP * s + int(round(0.7 * FH * s)))], outline=(200, 60, 50, 255))
            draw.line([x, y + TOP * s, x + cw - 1, y + TOP * s], fill=(245, 210, 114, 255))
    # the hero on the float frame, over each region's room, at the height the game puts the cloud
    hero = hp.hero_idle(out)
    y0 = rows_h
    for k, region in enumerate(("Forest", "City")):
        view = hp.room(out, region, 21 + k)
        shot = np.array(hp.screen(view))
        fy = 60 * s                                  # the hero's feet, 60 tx below the band's top
        band = Image.fromarray(shot[160 * s - fy:160 * s - fy + 100 * s, 200 * s:200 * s + width // 2 - pad])
        feet = (band.width // 2, fy)
        band.alpha_composite(Image.fromarray(px.upscale(clips[1][1][0], s)),
                             (feet[0] - FW * s // 2, feet[1] - TOP * s))
        band.alpha_composite(Image.fromarray(px.upscale(hero, s)),
                             (feet[0] - hero.shape[1] * s // 2, feet[1] - hero.shape[0] * s))
        img.alpha_composite(band, (k * (width // 2) + pad // 2, y0 + pad))
    return px.save_png(np.array(img), out / "docs/cloud_poses.png")


def generate(out):
    clips = build()
    img, text = px.sheet(clips, FW, FH), anim_data(clips)
    check(text, img, clips)
    folder = out / "Assets/Sprites/Player"
    written = [px.save_png(img, folder / "PlatformCapacity-SpriteSheet.png")]
    txt = folder / "PlatformCapacityAnimData.txt"
    txt.write_bytes(text.encode("ascii"))
    written.append(txt)
    written.append(pose_sheet(clips, out))
    return written

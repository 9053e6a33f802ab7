"""The map screen's pictures.

- `Assets/Sprites/Minimap/Rooms/MiniMapRoom<N>.png` for every room map that is built: the real room
  (its tiles through `tmxrasterizer` over the region's backdrops, `room_picture.py`) in a gold
  frame, shown over the zoomed room rectangle at the room's preview scale. Each picture is made at
  the size it shows on the screen (whole-pixel scaling of the tiles when the room is small, an area
  average when it must shrink), then stretched by 1 / preview scale so that the game's unsmoothed
  downscale lands every screen pixel on exactly one of them. In the statue rooms the picture is
  shifted inside a transparent margin so that the statue stands under the teleport button.
- `Minimap/Teleport/CheckpointIcon.png` and the same picture as `MiniMap/Teleport/CheckpointIcon.png`
  (the teleport button): a night medallion in a gold ring holding a kneeling statue.
- `Minimap/Teleport/Player.png`: the hero's marker, a silver crescent on a small gold-rimmed shield.
- `docs/map_preview.png`: the map as the game lays it out, and two rooms zoomed in.
"""
import json
from fractions import Fraction
from pathlib import Path

import numpy as np
from PIL import Image, ImageDraw

from . import pixel as px
from .room_picture import room_picture

SCREEN = (1920, 1080)
BOX = (1728, 972)  # the picture fills at most 90 % of the screen
INSET = 24  # and, shifted under a teleport button, stays this far inside it
MAX_SIDE = 4096
FRAME = 4  # screen pixels of the picture's frame
PREVIEW_SCALE = {7: Fraction(1), 9: Fraction(1), 13: Fraction(1), 14: Fraction(1),
                 8: Fraction(11, 20), 10: Fraction(1, 4), 12: Fraction(1, 10)}
DEFAULT_SCALE = Fraction(7, 20)
# Teleport buttons on the screen, by room: the statue stands under its button.
TELEPORT_BUTTON = {2: (830, 330), 4: (1210, 717), 13: (1205, 725), 16: (1050, 505)}
# The statue's middle above its feet, in map pixels (forest 64 and city 80 pixels tall).
STATUE_MIDDLE = {"Forest": 32, "City": 40}
NIGHT = px.ramp("#0b0d1c", "#161a30", "#232a48", "#35406a")
SILVER = px.ramp("#1d2230", "#4a5368", "#8d97ad", "#c9d1de", "#f4f8ff")


def preview_scale(number):
    return PREVIEW_SCALE.get(number, DEFAULT_SCALE)


def rooms_built(out):
    folder = Path(out) / "Assets/Maps/Rooms"
    numbers = (int(p.stem[len("Room"):]) for p in folder.glob("Room*.json"))
    return sorted(n for n in numbers if 1 <= n <= 20)


def statue_point(path):
    """Where the button should land on the room, in map pixels: the middle of statue 0."""
    tmap = json.loads(Path(path).read_text())
    region = next(p["value"] for p in tmap["properties"] if p["name"] == "tsx name")
    for layer in tmap["layers"]:
        for o in layer.get("objects", []) if layer["name"] == "Player" else []:
            props = {p["name"]: p["value"] for p in o.get("properties", [])}
            if o["name"] == "PlayerCheckpoint" and props.get("id") == 0:
                return o["x"], o["y"] - STATUE_MIDDLE.get(region, 32)
    return None


def step_of(scale):
    """Screen sizes that are whole, even multiples of this give whole pictures centred on a pixel."""
    return 2 * scale.numerator // np.gcd(2, scale.numerator)


def _fits(size, factor, scale, statue, button):
    """The picture's screen size and content shift at a factor, or None when it does not fit."""
    step = step_of(scale)
    w, h = max(1, round(size[0] * factor)), max(1, round(size[1] * factor))
    dx = dy = 0
    if statue is not None and button is not None:
        dx = round(button[0] - SCREEN[0] / 2 - (statue[0] * factor - w / 2))
        dy = round(button[1] - SCREEN[1] / 2 - (statue[1] * factor - h / 2))
        left, top = SCREEN[0] / 2 - w / 2 + dx, SCREEN[1] / 2 - h / 2 + dy
        if left < INSET or top < INSET or left + w > SCREEN[0] - INSET or \
                top + h > SCREEN[1] - INSET:
            return None
    elif w > BOX[0] or h > BOX[1]:
        return None
    full_w = -(-(w + 2 * abs(dx)) // step) * step
    full_h = -(-(h + 2 * abs(dy)) // step) * step
    if full_w / scale > MAX_SIDE or full_h / scale > MAX_SIDE:
        return None
    return (w, h), (dx, dy), (full_w, full_h)


def layout(size, scale, statue=None, button=None):
    """The largest factor (whole when it can be, for hard pixels) at which the room fits."""
    factor = min(BOX[0] / size[0], BOX[1] / size[1], 8.0)
    if factor >= 1 and _fits(size, 1.0, scale, statue, button):
        factor = float(int(factor))
        while _fits(size, factor, scale, statue, button) is None:
            factor -= 1
        return factor, _fits(size, factor, scale, statue, button)
    factor = min(factor, 1.0)
    while _fits(size, factor, scale, statue, button) is None:
        factor *= 0.99
    return factor, _fits(size, factor, scale, statue, button)


def framed(picture):
    """A gold frame drawn inside the picture's edge: ink, three gold tones lit from the top left."""
    c = picture.astype(float)
    h, w = c.shape[:2]
    ys, xs = px.grid(h, w)
    edge = np.minimum(np.minimum(xs, w - xs), np.minimum(ys, h - ys))
    rim = edge < FRAME
    c[rim & (edge < 1)] = list(px.INK) + [255]
    lit = (xs + ys) < (w + h) / 2
    c[rim & (edge >= 1) & lit] = list(px.GOLD[4]) + [255]
    c[rim & (edge >= 1) & ~lit] = list(px.GOLD[2]) + [255]
    c[rim & (edge >= FRAME - 1)] = list(px.GOLD[1]) + [255]
    return c.astype(np.uint8)


def stretched(img, scale):
    """Each screen pixel j becomes the texels under it when the game draws the picture at `scale`:
    texel t shows screen pixel floor((t + 1/2) * scale), computed exactly."""
    p, q = scale.numerator, scale.denominator

    def index(n):
        return ((2 * np.arange(n * q // p) + 1) * p) // (2 * q)
    return img[index(img.shape[0])][:, index(img.shape[1])]


def room_preview(out, number):
    path = Path(out) / f"Assets/Maps/Rooms/Room{number}.json"
    room = room_picture(path, Path(out) / "Assets/Maps/RoomBackground")
    scale = preview_scale(number)
    statue = statue_point(path) if number in TELEPORT_BUTTON else None
    factor, ((w, h), (dx, dy), (full_w, full_h)) = layout(room.size, scale, statue,
                                                          TELEPORT_BUTTON.get(number))
    if factor >= 1:
        shown = room.resize((w, h), Image.NEAREST)
    else:
        shown = room.resize((w, h), Image.BOX)
    canvas = np.zeros((full_h, full_w, 4), np.uint8)
    left, top = (full_w - w) // 2 + dx, (full_h - h) // 2 + dy
    canvas[top:top + h, left:left + w] = framed(np.array(shown.convert("RGBA")))
    return stretched(canvas, scale)


# ---------------------------------------------------------------- icons

def checkpoint_icon():
    """28 x 28, shown x2: a kneeling statue in a night medallion ringed in gold."""
    n = 28
    c = px.new_sprite(n, n)
    ys, xs = px.grid(n, n)
    r = np.hypot(xs - n / 2, ys - n / 2)
    disc = r < 12.5
    ring = disc & (r >= 10.5)
    px.paint(c, px.outline_of(disc, diagonal=True), px.INK)
    inside = disc & ~ring
    glow = np.clip(1 - np.hypot(xs - n / 2, ys - n / 2 + 3) / 10, 0, 1)
    c[inside, :3] = px.dither_ramp(glow, NIGHT)[inside]
    c[inside, 3] = 235  # the night shows a little of the map through it
    px.paint_tones(c, px.bevel(ring, 1), [px.GOLD[2], px.GOLD[3], px.GOLD[4]])
    px.paint(c, (r >= 10.5) & (r < 11.5) & disc, px.GOLD[1], 0.6)
    statue = px.ascii_mask([
        "............................",
        "............................",
        "............................",
        "............................",
        "............................",
        "............................",
        "............###.............",
        "...........#####............",
        "...........######...........",
        "...........######...........",
        "............#####...........",
        "...........######...........",
        "..........########..........",
        "..........#########.........",
        "..........####.#####........",
        "..........####..####........",
        "..........#####.............",
        "..........######............",
        "..........########..........",
        "..........##########........",
        "........##############......",
        "........##############......",
        "........##############......",
        "............................",
        "............................",
        "............................",
        "............................",
        "............................",
    ])
    statue = px.shift(statue, 0, 1)
    px.paint(c, px.outline_of(statue) & inside, px.INK)
    px.paint_tones(c, px.bevel(statue, 1), [SILVER[1], SILVER[2], SILVER[4]])
    plinth = statue & (ys > 20)
    px.paint_tones(c, px.bevel(plinth, 1), [SILVER[0], SILVER[1], SILVER[2]])
    halo = inside & ~statue & (np.abs(np.hypot(xs - 14.0, ys - 8.0) - 3.8) < 0.6)
    px.paint(c, halo, px.GOLD[4])
    return px.upscale(px.to_rgba8(c), 2)


def player_marker():
    """10 x 10, shown x2: a moon-silver gem in a gold setting, bright on the map's colours."""
    n = 10
    ys, xs = px.grid(n, n)
    diamond = np.abs(xs - 5) + np.abs(ys - 5) <= 4.2
    gem = np.abs(xs - 5) + np.abs(ys - 5) <= 2.2
    c = px.new_sprite(n, n)
    px.paint(c, px.outline_of(diamond), px.INK)
    px.paint_tones(c, px.bevel(diamond & ~gem, 1), [px.GOLD[2], px.GOLD[3], px.GOLD[5]])
    px.paint_tones(c, px.bevel(gem, 1), [SILVER[2], SILVER[3], SILVER[4]])
    return px.upscale(px.to_rgba8(c), 2)


# ---------------------------------------------------------------- preview

def _paste(canvas, img, center, scale):
    """Draws a picture as the game does: origin at its centre, unsmoothed scale."""
    shown = Image.fromarray(px.scale_nearest(img, scale), "RGBA")
    canvas.alpha_composite(shown, (round(center[0] - shown.width / 2),
                                   round(center[1] - shown.height / 2)))


MAP_ROOMS = [  # (size, position) of each room's rectangle on the map, rooms 1 to 20
    ((182, 32.5), (192, 540)), ((143, 93.6), (289.5, 612.8)), ((104, 52), (422.1, 592)),
    ((104, 65), (535.2, 628.4)), ((104, 32.5), (422.1, 644)), ((91, 52), (163.4, 605)),
    ((19.5, 19.5), (199.8, 649.2)), ((123.5, 45.5), (544.3, 562.1)),
    ((19.5, 19.5), (624.9, 575.1)), ((178.1, 32.5), (686, 644)), ((178.1, 32.5), (873.2, 644)),
    ((32.5, 356.2), (987.6, 482.8)), ((97.5, 65), (1063, 335.9)),
    ((97.5, 32.5), (1169.6, 352.8)), ((97.5, 136.5), (1277.5, 300.8)),
    ((97.5, 136.5), (1385.4, 300.8)), ((162.5, 71.5), (1525.8, 333.3)),
    ((65, 52), (1185.2, 267)), ((122.2, 50.7), (1505, 257.9)), ((91, 32.5), (1620.7, 267))]


def _world(out, number):
    """The game's view of a room around its statue (640 x 360 map pixels shown x3)."""
    path = Path(out) / f"Assets/Maps/Rooms/Room{number}.json"
    room = room_picture(path, Path(out) / "Assets/Maps/RoomBackground")
    x, y = statue_point(path) or (room.width / 2, room.height / 2)
    left = int(min(max(0, x - 320), room.width - 640))
    top = int(min(max(0, y - 200), room.height - 360))
    return room.crop((left, top, left + 640, top + 360)).resize(SCREEN, Image.NEAREST)


def map_preview(out, pictures, icon, marker):
    """Three screens, halved: the map opened in room 4, room 4 zoomed in with its teleport button,
    and room 2 zoomed in with its statue under the button."""
    first = _world(out, 4) if 4 in pictures else Image.new("RGBA", SCREEN, (20, 26, 38, 255))
    first.alpha_composite(Image.new("RGBA", SCREEN, (0, 0, 0, 200)))
    draw = ImageDraw.Draw(first, "RGBA")
    for number, (size, at) in enumerate(MAP_ROOMS, start=1):
        city = number >= 11
        fill = (75, 100, 175, 175) if city else (150, 200, 100, 175)
        line = (125, 175, 225, 255) if city else (175, 200, 125, 255)
        box = [at[0] - size[0] / 2, at[1] - size[1] / 2, at[0] + size[0] / 2, at[1] + size[1] / 2]
        draw.rectangle([box[0] - 2, box[1] - 2, box[2] + 1, box[3] + 1], outline=line, width=2)
        draw.rectangle([box[0], box[1], box[2] - 1, box[3] - 1], fill=fill)
    for number in TELEPORT_BUTTON:
        at = MAP_ROOMS[number - 1][1]
        _paste(first, icon, (at[0] - 20, at[1]), 0.55)
    at = MAP_ROOMS[3][1]
    _paste(first, marker, (at[0] + 20, at[1]), 1)
    screens = [first]
    for number in (4, 2):
        if number not in pictures:
            continue
        zoomed = Image.new("RGBA", SCREEN, (0, 0, 25, 255))
        _paste(zoomed, pictures[number], (960, 540), float(preview_scale(number)))
        _paste(zoomed, icon, TELEPORT_BUTTON[number], 1)
        screens.append(zoomed)
    sheet = Image.new("RGBA", (SCREEN[0], SCREEN[1] * len(screens)), (0, 0, 0, 255))
    for i, screen in enumerate(screens):
        sheet.paste(screen, (0, i * SCREEN[1]))
    return np.array(sheet.resize((SCREEN[0] // 2, sheet.height // 2), Image.BOX))


def generate(out):
    out = Path(out)
    icon, marker = checkpoint_icon(), player_marker()
    written = [px.save_png(icon, out / "Assets/Sprites/Minimap/Teleport/CheckpointIcon.png"),
               px.save_png(icon, out / "Assets/Sprites/MiniMap/Teleport/CheckpointIcon.png"),
               px.save_png(marker, out / "Assets/Sprites/Minimap/Teleport/Player.png")]
    pictures = {}
    for number in rooms_built(out):
        pictures[number] = room_preview(out, number)
        written.append(px.save_png(pictures[number],
                                   out / f"Assets/Sprites/Minimap/Rooms/MiniMapRoom{number}.png"))
    written.append(px.save_png(map_preview(out, pictures, icon, marker), out / "docs/map_preview.png"))
    return written

#!/usr/bin/env python3
"""Pictures of the built rooms for the design notes: the room's tiles drawn by Tiled's own
`tmxrasterizer` over its region's backdrops, with the objects marked on top (doors and where they
lead, arrivals, enemies by kind, the chest, statues, the merchant, locked doors and the triggers
that close them, death zones).

    /usr/bin/python3 tools/render_rooms.py 8 9 10            # docs/screenshots/rooms/room8.png ...
    /usr/bin/python3 tools/render_rooms.py --plain --out DIR 8

Each picture is drawn at the largest whole scale that fits 1920 px across, or shrunk to 1920 px
when even one map pixel per pixel is wider. Needs the Debian packages `tiled` (tmxrasterizer) and
`fonts-dejavu-core`.
"""
import argparse
import json
import sys
from pathlib import Path

from PIL import Image, ImageDraw, ImageFont

sys.path.insert(0, str(Path(__file__).resolve().parent))
from ovgen.room_picture import room_picture  # noqa: E402

ROOT = Path(__file__).resolve().parent.parent
ROOMS = ROOT / "Assets" / "Maps" / "Rooms"
FONT = "/usr/share/fonts/truetype/dejavu/DejaVuSans-Bold.ttf"
MAX_WIDTH = 1920

ENEMY_MARKS = {0: ("F", (120, 200, 90)), 1: ("K", (230, 190, 60)), 2: ("N", (235, 80, 70)),
               3: ("T", (200, 140, 90)), 4: ("S", (110, 200, 220)), 5: ("P", (200, 90, 200)),
               6: ("FK", (170, 170, 230)), 7: ("G", (250, 240, 200))}


def _props(obj):
    return {p["name"]: p["value"] for p in obj.get("properties", [])}


def mark_objects(picture, tmap, scale):
    draw = ImageDraw.Draw(picture, "RGBA")
    font = ImageFont.truetype(FONT, max(13, int(6 * scale)))
    small = ImageFont.truetype(FONT, max(11, int(4.5 * scale)))
    size = max(scale, 1.4)  # markers stay legible on rooms shrunk to fit

    def box(o):
        return [o["x"] * scale, o["y"] * scale, (o["x"] + o["width"]) * scale,
                (o["y"] + o["height"]) * scale]

    def label(x, y, text, fill, anchor="mm", face=None):
        draw.text((x, y), text, font=face or font, fill=fill, anchor=anchor,
                  stroke_width=max(2, int(scale)), stroke_fill=(10, 10, 20, 255))

    layers = {layer["name"]: layer for layer in tmap["layers"]}
    for o in layers.get("Trigger", {}).get("objects", []):
        colour = {"DeathZone": (255, 40, 40), "Locked Door trigger": (255, 150, 40),
                  "Chest trigger": (255, 220, 80), "Interaction spawn": (120, 220, 255)}
        c = colour.get(o["name"], (200, 200, 200))
        draw.rectangle(box(o), fill=c + (50,), outline=c + (230,), width=max(1, int(scale)))
    group = layers.get("Door group")
    for doors in group["layers"] if group else []:
        gid, kill = _props(doors)["id"], _props(doors)["enemyToKill"]
        for door in doors["layers"]:
            for o in door["objects"]:
                b = box(o)
                draw.rectangle(b, fill=(150, 60, 40, 120), outline=(255, 150, 40, 255),
                               width=max(2, int(scale)))
                label((b[0] + b[2]) / 2, b[1] - 8 * scale, f"lock {gid}: {kill} kill"
                      + ("s" if kill != 1 else ""), (255, 190, 120), face=small)
    for o in layers.get("TransitionDoor", {}).get("objects", []):
        p = _props(o)
        b = box(o)
        draw.rectangle(b, fill=(80, 200, 255, 70), outline=(80, 200, 255, 255),
                       width=max(2, int(scale)))
        text = f"{p['id']} \u2192 {p['TargetedRoom']}:{p['targetedDoorID']}"
        x, y = (b[0] + b[2]) / 2, (b[1] + b[3]) / 2
        anchor = {"Left": "lm", "Right": "rm"}.get(p["CameraTransition"], "mm")
        x = b[2] + 4 * scale if anchor == "lm" else b[0] - 4 * scale if anchor == "rm" else x
        y = b[1] + 12 * scale if p["CameraTransition"] == "Up" else \
            b[3] - 12 * scale if p["CameraTransition"] == "Down" else y
        label(x, y, text, (150, 225, 255), anchor)
    for o in layers.get("Player", {}).get("objects", []):
        x, y = o["x"] * scale, o["y"] * scale
        if o["name"] == "PlayerDoorSpawn":
            draw.polygon([(x, y), (x - 4 * size, y - 10 * size), (x + 4 * size, y - 10 * size)],
                         fill=(150, 225, 255, 230), outline=(10, 10, 20, 255))
        else:
            label(x, y - 20 * scale, "statue", (120, 220, 255), face=small)
    for o in layers.get("Enemies", {}).get("objects", []):
        if o["name"] == "EnemiesContainer":
            draw.rectangle(box(o), outline=(255, 255, 255, 70), width=1)
    for o in layers.get("Enemies", {}).get("objects", []):
        if o["name"] != "EnemySpawn":
            continue
        text, c = ENEMY_MARKS.get(_props(o)["EnemyType"], ("?", (255, 255, 255)))
        x, y, r = o["x"] * scale, o["y"] * scale - 9 * size, 8 * size
        draw.ellipse([x - r, y - r, x + r, y + r], fill=c + (230,), outline=(10, 10, 20, 255),
                     width=max(1, int(scale)))
        label(x, y, text, (255, 255, 255))
    for o in layers.get("Chest", {}).get("objects", []):
        x, y = o["x"] * scale, o["y"] * scale
        draw.rectangle([x - 10 * scale, y - 14 * scale, x + 10 * scale, y],
                       fill=(200, 150, 50, 255), outline=(60, 30, 10, 255),
                       width=max(1, int(scale)))
        label(x, y - 24 * scale, "chest: " + ("dash", "run", "cloud")[_props(o)["Ability"]],
              (255, 220, 120), face=small)
    for o in layers.get("Pnj", {}).get("objects", []):
        if o.get("point"):
            label(o["x"] * scale, o["y"] * scale - 20 * scale, "merchant", (255, 220, 160),
                  face=small)


def render(number, out, plain=False):
    path = ROOMS / f"Room{number}.json"
    tmap = json.loads(path.read_text())
    picture = room_picture(path, ROOT / "Assets" / "Maps" / "RoomBackground")
    if picture.width > MAX_WIDTH:
        scale = MAX_WIDTH / picture.width
        size = (MAX_WIDTH, round(picture.height * scale))
        picture = picture.resize(size, Image.LANCZOS)
    else:
        scale = MAX_WIDTH // picture.width
        picture = picture.resize((picture.width * scale, picture.height * scale), Image.NEAREST)
    picture = picture.convert("RGB")
    if not plain:
        mark_objects(picture, tmap, scale)
    out.parent.mkdir(parents=True, exist_ok=True)
    picture.save(out, optimize=True)
    return out


def main(argv):
    parser = argparse.ArgumentParser(description=__doc__.splitlines()[0])
    parser.add_argument("rooms", nargs="+", type=int)
    parser.add_argument("--out", type=Path, default=ROOT / "docs" / "screenshots" / "rooms")
    parser.add_argument("--plain", action="store_true", help="tiles and backdrops only")
    args = parser.parse_args(argv)
    for number in args.rooms:
        print(render(number, args.out / f"room{number}.png", args.plain))
    return 0


if __name__ == "__main__":
    sys.exit(main(sys.argv[1:]))

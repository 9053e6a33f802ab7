"""A built room as a picture: its tiles drawn by Tiled's own `tmxrasterizer` (one map pixel per
pixel, the object layers and the locked doors left out) over its region's backdrops, stacked and
repeated across the room. Shared by the map screen's room pictures and the design notes' room
pictures (`tools/render_rooms.py`). Needs the Debian package `tiled`.
"""
import json
import os
import subprocess
import tempfile
from pathlib import Path

from PIL import Image


def tiles_picture(path, tmap):
    """The tile layers alone, one map pixel per pixel, on a transparent ground."""
    def names(layers, inside=None):
        for layer in layers:
            if layer["type"] == "group":
                yield from names(layer["layers"], layer["name"])
            elif layer["type"] in ("objectgroup", "imagelayer") or inside == "Door group":
                yield layer["name"]
    hidden = sorted(set(names(tmap["layers"])))
    with tempfile.TemporaryDirectory() as tmp:
        out = Path(tmp) / "tiles.png"
        args = ["tmxrasterizer", "--no-smoothing"]
        for name in hidden:
            args += ["--hide-layer", name]
        env = dict(os.environ, QT_QPA_PLATFORM="offscreen")
        subprocess.run(args + [str(path), str(out)], env=env, check=True, capture_output=True)
        return Image.open(out).convert("RGBA")


def _moonless(sky):
    """The sky with the columns that the moon and its glow brighten replaced by the sky half a
    picture further on, so that a sky repeated across a wide room shows one moon."""
    grey = sky.convert("L")
    columns = [sum(grey.crop((x, 0, x + 1, grey.height)).getdata()) / grey.height
               for x in range(grey.width)]
    calm = sorted(columns)[len(columns) // 2] + 1.5
    shift = sky.width // 2
    plain = sky.copy()
    for x, value in enumerate(columns):
        if value > calm and columns[(x + shift) % sky.width] <= calm:
            source = (x + shift) % sky.width
            plain.paste(sky.crop((source, 0, source + 1, sky.height)), (x, 0))
    return plain


def backdrop(folder, region, size):
    """The region's layers stacked (far first) and repeated across the room, standing on its
    floor, with one moon; the sky's top colour fills any height above them."""
    names = ("sky", "far", "mid", "near")
    layers = [Image.open(Path(folder) / region / f"{name}.png").convert("RGBA") for name in names]
    skies = [layers[0], _moonless(layers[0])]
    width, height = size
    ground = Image.new("RGBA", size, layers[0].getpixel((0, 0)))
    top = height - layers[0].height
    for i, x in enumerate(range(0, width, layers[0].width)):
        band = (skies[0] if i == 1 or width <= layers[0].width else skies[1]).copy()
        for layer in layers[1:]:
            band.alpha_composite(layer)
        ground.alpha_composite(band, (x, max(0, top)), (0, max(0, -top), band.width, band.height))
    return ground


def region_of(tmap):
    return next(p["value"] for p in tmap["properties"] if p["name"] == "tsx name")


def room_picture(path, backdrops):
    """The room's tiles over its region's backdrops (from the folder `backdrops`), opaque."""
    tmap = json.loads(Path(path).read_text())
    tiles = tiles_picture(path, tmap)
    picture = backdrop(backdrops, region_of(tmap), tiles.size)
    picture.alpha_composite(tiles)
    return picture

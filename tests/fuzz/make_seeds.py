#!/usr/bin/env python3
"""Writes the fuzz targets' seed corpora from the real files under Assets/ and a few hand-made
edge cases. Run from the repository root; the output is committed. Seeds are rewritten in place:
the grown inputs that make fuzz merged into the same folders stay."""
import json
import pathlib

ROOT = pathlib.Path(__file__).resolve().parents[2]
CORPUS = ROOT / "tests" / "fuzz" / "corpus"

NEW_GAME = ("////////////////////\nCHECKPOINT DATA :\ncheckpointID 0\nroomID 1\n"
            "////////////////////\nABILITIES DATA :\ncanDash 0\ncanRun 0\nCanCreatePlatform 0\n"
            "potionCount 1\n")
STATE = ("#Elevator ID : 1\nPos ID : 2\n- Lever ID : 0\nLever is active : 1\n- Lever ID : 1\n"
         "Lever is active : 0\n\n#Elevator ID : 2\nPos ID : 1\n\n")


def write(target, name, data):
    folder = CORPUS / target
    folder.mkdir(parents=True, exist_ok=True)
    (folder / name).write_bytes(data if isinstance(data, bytes) else data.encode("latin-1"))


def save_seeds():
    write("save", "new_game", NEW_GAME)
    mid = NEW_GAME.replace("checkpointID 0", "checkpointID 2").replace("roomID 1", "roomID 4")
    write("save", "mid_game", mid.replace("canDash 0", "canDash 1").replace("potionCount 1",
                                                                            "potionCount 3"))
    write("save", "cut_short", NEW_GAME[:70])
    write("save", "minus_one", NEW_GAME.replace("canRun 0", "canRun -1"))
    write("save", "crlf", NEW_GAME.replace("\n", "\r\n"))


def settings_seeds():
    sound = (ROOT / "Assets/Settings/SoundSettings.txt").read_bytes()
    binding = (ROOT / "Assets/Settings/BindingSettings.txt").read_bytes()
    write("settings", "sound", sound)
    write("settings", "binding", binding)
    write("settings", "loud_and_unknown_key",
          b"MASTER VOLUME 400\nMUSIC -3\nSOUNDS 99999999999\nLEFT : 101\nRIGHT : -1\n")
    write("settings", "second_line_damaged", sound.replace(b"MUSIC", b"MUZIC"))


def elevator_seeds():
    write("elevator_state", "two_cabins", STATE)
    write("elevator_state", "unknown_stop", STATE.replace("Pos ID : 2", "Pos ID : 7"))
    write("elevator_state", "lever_half_on", STATE.replace("active : 0", "active : 2"))
    write("elevator_state", "long_line", "#Elevator ID : 1\nPos ID : " + "1" * 300 + "\n")
    write("elevator_state", "no_header", "Pos ID : 1\n")


def animation_seeds():
    for path in sorted(ROOT.glob("Assets/Sprites/**/*AnimData.txt")):
        write("animation", path.stem, path.read_bytes())
    write("animation", "huge_frames",
          "size : (2147483647,2147483647)\nfirst Frame Position : (2147483647,-2147483648)\n"
          "IDLE | NbFrame : 4294967295 / FrameRate : 4294967295\n"
          "WALK | NbFrame : 0 / FrameRate : 0\n")


def crop_layer(layer, width, height):
    """A tile layer cut to its top-left corner, so the seeds stay small."""
    w, h = min(width, layer["width"]), min(height, layer["height"])
    data = layer["data"]
    layer["data"] = [data[r * layer["width"] + c] for r in range(h) for c in range(w)]
    layer["width"], layer["height"] = w, h


def cropped(node):
    """Tile layers cut to 4 x 3 cells, groups to their first two layers and object layers to
    their first two objects, each with its first two properties: the readers meet every shape,
    in less text (a run's time grows with its input's length)."""
    if node.get("type") == "group":
        node["layers"] = node["layers"][:2]
    for layer in node.get("layers", []):
        if layer["type"] == "tilelayer":
            crop_layer(layer, 4, 3)
        if layer["type"] == "objectgroup":
            layer["objects"] = layer["objects"][:2]
            for item in layer["objects"]:
                if "properties" in item:
                    item["properties"] = item["properties"][:2]
        cropped(layer)
    return node


# The keys the map and tileset readers look at: the others only make every run slower.
READ_KEYS = {"animation", "columns", "data", "duration", "encoding", "height", "id", "image",
             "imageheight", "imagewidth", "infinite", "layers", "name", "objectgroup", "objects",
             "offsetx", "offsety", "parallaxx", "parallaxy", "point", "properties", "tilecount",
             "tileheight", "tileid", "tiles", "tilewidth", "type", "value", "width", "x", "y"}


def slim(node):
    if isinstance(node, list):
        return [slim(item) for item in node]
    if isinstance(node, dict):
        return {key: slim(value) for key, value in node.items() if key in READ_KEYS}
    return node


def small_tileset(name, keep=2):
    tileset = json.loads((ROOT / f"Assets/Maps/Tilesets/Tileset-{name}.json").read_text())
    animated = [tile for tile in tileset["tiles"] if "animation" in tile][:1]
    tileset["tiles"] = tileset["tiles"][:keep] + animated
    return slim(tileset)


def compact(value):
    return json.dumps(value, separators=(",", ":"))


def elevator_map():
    def prop(name, kind, value):
        return {"name": name, "type": kind, "value": value}

    def point(x, y, props):
        return {"id": 1, "name": "", "x": x, "y": y, "point": True, "properties": props}

    stops = {"type": "objectgroup", "name": "Stops", "objects": [
        point(112, 128, [prop("id", "int", 0)]), point(112, 448, [prop("id", "int", 1)]),
        {"id": 2, "name": "Trigger", "x": 64, "y": 32, "width": 96, "height": 80}]}
    lever = {"type": "objectgroup", "name": "Lever", "objects": [
        {"id": 3, "name": "", "x": 0, "y": 96, "width": 48, "height": 32},
        point(24, 128, [prop("id", "int", 0), prop("isActive", "bool", True)])]}
    cabin = {"type": "tilelayer", "name": "Cabin", "width": 4, "height": 3,
             "data": [0, 0, 0, 0, 0, 10, 10, 0, 0, 9, 9, 0], "properties": [prop("id", "int", 4)]}
    group = {"type": "group", "name": "Elevator group", "layers": [
        {"type": "group", "name": "Elevator", "layers": [
            stops, cabin, {"type": "group", "name": "Lever group", "layers": [lever]}]}]}
    return {"width": 4, "height": 3, "tilewidth": 32, "tileheight": 32, "infinite": False,
            "layers": [group], "properties": [prop("tsx name", "string", "City")]}


def room_seed(name, data):
    """The room map readers and the room builder start from the same seeds."""
    write("room_map", name, data)
    write("room_build", name, data)


def room_map_seeds():
    for path in sorted(ROOT.glob("Assets/Maps/Rooms/Room*.json")):
        room = slim(cropped(json.loads(path.read_text())))
        name = next(p["value"] for p in room["properties"] if p["name"] == "tsx name")
        room_seed(path.stem, compact(room) + "\0" + compact(small_tileset(name)))
    room_seed("elevator", compact(elevator_map()) + "\0" + compact(small_tileset("City")))
    room_seed("tile_out_of_sheet",
          '{"width":2,"height":1,"tilewidth":32,"tileheight":32,"layers":[{"type":"tilelayer",'
          '"name":"Ground","width":2,"height":1,"data":[4294967295,3221225473]}]}')
    room_seed("big_numbers",
          '{"width":1e300,"height":1,"tilewidth":32,"tileheight":32,"layers":[]}')


if __name__ == "__main__":
    save_seeds()
    settings_seeds()
    elevator_seeds()
    animation_seeds()
    room_map_seeds()

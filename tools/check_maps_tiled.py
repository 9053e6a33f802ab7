#!/usr/bin/env python3
"""Check every room map: the Tiled editor opens it, and it keeps the rules the game relies on.

    /usr/bin/python3 tools/check_maps_tiled.py [MAP.json ...]

For each Assets/Maps/Rooms/Room*.json (or the maps given) this
- exports the map with the real Tiled (`tiled --export-map json`, offscreen) and fails with Tiled's
  message when Tiled cannot open it; the export must read back the same layers, tiles, objects and
  properties (so nothing was silently dropped or misread);
- checks the files it names (tileset, tileset image, backdrop images) exist;
- checks the game's rules: map properties, layer shapes, walls closed except at doors, doors and
  door spawns (links resolve where the target room exists and lead back, arrival sides, spawns
  outside door rectangles, Left/Right doors ending at the floor, a ledge over Down holes and no
  floor under them), enemies standing on the floor inside their containers (flying ones hovering
  over a floor), checkpoint ids 0..n-1,
  statue triggers near their statue, one camera container, chest and merchant objects, and locked
  door groups (every "Locked Door trigger" names a group and every group has one; doors one tile
  wide, at least three tall, standing on the floor under solid middle-layer terrain as tall as the
  door, where the raised door hides; no trigger over its own doors; "enemyToKill" no more than the
  enemies of the room that can die).
Exit 1 when any map fails. The last line is "maps open in Tiled: N passed, M failed".
"""
import json
import os
import re
import shutil
import subprocess
import sys
import tempfile
from pathlib import Path

ROOT = Path(__file__).resolve().parent.parent
ROOMS = ROOT / "Assets" / "Maps" / "Rooms"
CHECKPOINT_ROOMS = {2, 4, 13, 16}
DIRECTIONS = ("Left", "Right", "Up", "Down")
OPPOSITE = {"Left": "Right", "Right": "Left", "Up": "Down", "Down": "Up"}
GID_FLAGS = 0xE0000000
BODY_HALF_W, BODY_H = 40 / 3, 180 / 3  # the hero's body in map px (80 x 180 world)
UNDYING = {5}  # the Plant never dies: it never counts towards "enemyToKill"
FLYING = {6, 7}  # the Flying Knight and the Goddess float at their spawn's height
HOVER_ROWS = 6  # over a floor at most six tiles down
LOCKDOOR_MIN_H = 3 * 32  # a locked door is at least three tiles tall
DOOR_BASE = ROOT / "Assets" / "Sprites" / "Objects" / "Door" / "{}-DoorDownPart.png"
NOISE = re.compile(r"^(QStandardPaths: XDG_RUNTIME_DIR not set.*|)$")


def tiled_export(path, out):
    """Run Tiled; return (ok, message)."""
    env = dict(os.environ, QT_QPA_PLATFORM="offscreen")
    try:
        run = subprocess.run(["tiled", "--export-map", "json", str(path), str(out)], env=env,
                             capture_output=True, text=True, timeout=120)
    except FileNotFoundError:
        return False, "the Tiled editor (`tiled`) is not installed"
    except subprocess.TimeoutExpired:
        return False, "Tiled did not finish within 120 s"
    text = "\n".join(line for line in (run.stdout + run.stderr).splitlines()
                     if not NOISE.match(line.strip()))
    if run.returncode != 0 or not Path(out).is_file():
        detail = text.strip() or "no message"
        return False, f"Tiled cannot open it (exit {run.returncode}): {detail}"
    if text.strip():
        return False, f"Tiled reports: {text.strip()}"
    return True, ""


def _normalise(node, base):
    """Make file references absolute and drop values Tiled leaves out when they are defaults."""
    if isinstance(node, dict):
        out = {}
        for key, value in node.items():
            if key in ("image", "source") and isinstance(value, str):
                value = os.path.normpath(os.path.join(base, value))
            elif key in ("offsetx", "offsety") and value == 0:
                continue
            out[key] = _normalise(value, base)
        return out
    if isinstance(node, list):
        return [_normalise(v, base) for v in node]
    return node


def _first_difference(a, b, path=""):
    if isinstance(a, dict) and isinstance(b, dict):
        for key in sorted(set(a) | set(b)):
            if key not in a or key not in b:
                state = "missing" if key not in b else "added"
                return f"{path}/{key} is {state} after Tiled's export"
            diff = _first_difference(a[key], b[key], f"{path}/{key}")
            if diff:
                return diff
        return None
    if isinstance(a, list) and isinstance(b, list):
        if len(a) != len(b):
            return f"{path} has {len(a)} entries, Tiled reads {len(b)}"
        for i, (x, y) in enumerate(zip(a, b)):
            diff = _first_difference(x, y, f"{path}[{i}]")
            if diff:
                return diff
        return None
    if a != b:
        return f"{path} is {str(a)[:40]!r}, Tiled reads {str(b)[:40]!r}"
    return None


class Tileset:
    def __init__(self, path):
        self.path = path
        data = json.loads(path.read_text())
        self.count = data["tilecount"]
        self.image = path.parent / data["image"]
        self.kinds = {}  # tile id -> list of (x, y, w, h, kind)
        for tile in data.get("tiles", []):
            rects = []
            for obj in tile.get("objectgroup", {}).get("objects", []):
                props = obj.get("properties", [])
                kind = int(props[0]["value"]) if props else 0
                rects.append((obj["x"], obj["y"], obj["width"], obj["height"], kind))
            if rects:
                self.kinds[tile["id"]] = rects


def _props(obj):
    return {p["name"]: p for p in obj.get("properties", [])}


def _value(obj, name):
    p = _props(obj).get(name)
    return None if p is None else p["value"]


class MapCheck:
    def __init__(self, path):
        self.path = path
        self.errors = []
        self.number = int(re.match(r"Room(\d+)\.json$", path.name).group(1))
        self.map = json.loads(path.read_text())
        self.layers = {}
        for layer in self.map["layers"]:
            self.layers.setdefault((layer["name"], layer["type"]), layer)

    def err(self, text):
        self.errors.append(text)

    def objects(self, name):
        layer = self.layers.get((name, "objectgroup"))
        return layer["objects"] if layer else []

    # -- collision grid from the tile layers and the tileset
    def collision(self, tileset, middle_only=False):
        """Solid and one-way cells; with middle_only, only the tile layers drawn between the
        backdrops' "Background" layer and the "Foreground" (the ones that hide a raised door)."""
        w, h = self.map["width"], self.map["height"]
        solid = [[False] * w for _ in range(h)]
        oneway = [[False] * w for _ in range(h)]
        for layer in self.map["layers"]:
            if layer["type"] != "tilelayer" or \
                    middle_only and layer["name"] in ("Background", "Foreground"):
                continue
            for i, gid in enumerate(layer["data"]):
                if not gid:
                    continue
                for _x, _y, _w, _h, kind in tileset.kinds.get((gid & ~GID_FLAGS) - 1, []):
                    if kind == 0:
                        solid[i // w][i % w] = True
                    elif kind == 1:
                        oneway[i // w][i % w] = True
        return solid, oneway

    def run(self, tileset):
        m = self.map
        tw = m.get("tilewidth")
        if (m.get("orientation"), tw, m.get("tileheight"), m.get("infinite")) != \
                ("orthogonal", 32, 32, False):
            self.err("the map must be orthogonal, 32 x 32 tiles, not infinite")
        props = _props(m)
        region = props.get("tsx name", {})
        if region.get("type") != "string" or region.get("value") not in ("Forest", "City"):
            self.err('map property "tsx name" must be the string "Forest" or "City"')
        if props.get("Boss room", {}).get("type") != "int":
            self.err('map property "Boss room" (int) is missing')
        sets = m.get("tilesets", [])
        want = f"../Tilesets/Tileset-{region.get('value')}.json"
        if len(sets) != 1 or sets[0].get("firstgid") != 1 or sets[0].get("source") != want:
            self.err(f'the one tileset must be {{"firstgid": 1, "source": "{want}"}}')
        w, h = m["width"], m["height"]
        for layer in m["layers"]:
            shifted = layer.get("offsetx", 0) or layer.get("offsety", 0)
            if layer["type"] != "imagelayer" and shifted:
                self.err(f'layer "{layer["name"]}" has an offset (the game ignores it)')
            if layer["type"] == "tilelayer":
                data = layer.get("data")
                if "encoding" in layer or not isinstance(data, list) or len(data) != w * h \
                        or (layer["width"], layer["height"]) != (w, h):
                    self.err(f'tile layer "{layer["name"]}" must be a plain array of the map size')
                elif any(g & GID_FLAGS for g in data):
                    self.err(f'tile layer "{layer["name"]}" uses flipped or rotated tiles')
                elif tileset and any(g > tileset.count for g in data):
                    self.err(f'tile layer "{layer["name"]}" uses tiles beyond the tileset')
        group = self.layers.get(("Background", "group"))
        if not group:
            self.err('the "Background" group of backdrops is missing')
        else:
            for img in group["layers"]:
                if img["type"] != "imagelayer":
                    self.err(f'"Background" holds a {img["type"]}, not an image layer')
                    continue
                if not (self.path.parent / img["image"]).is_file():
                    self.err(f'backdrop image {img["image"]} does not exist')
                if "parallaxx" not in img or "parallaxy" not in img:
                    self.err(f'backdrop "{img["name"]}" must state its parallax factors')
        cams = [o for o in self.objects("CameraContainer") if not o.get("point")]
        if len(cams) != 1:
            self.err(f"there must be exactly one camera container (found {len(cams)})")
        elif (cams[0]["width"], cams[0]["height"]) < (640, 360):
            self.err("the camera container is smaller than one screen")
        self.check_objects()
        if tileset:
            self.check_space(tileset)

    def check_objects(self):
        tw = 32
        # triggers: rectangles with exactly one int property
        for o in self.objects("Trigger"):
            if o.get("point") or len(o.get("properties", [])) != 1 \
                    or o["properties"][0]["type"] != "int":
                self.err(f'trigger "{o["name"]}" must be a rectangle with exactly one int property')
        # checkpoints
        cps = [o for o in self.objects("Player") if o["name"] == "PlayerCheckpoint"]
        ids = []
        for o in cps:
            if not o.get("point") or len(o.get("properties", [])) != 1:
                self.err("a PlayerCheckpoint must be a point with exactly one property (its id)")
                continue
            ids.append(o["properties"][0]["value"])
        if sorted(ids) != list(range(len(ids))):
            self.err(f"checkpoint ids must be 0..n-1 (found {sorted(ids)})")
        by_id = {o["properties"][0]["value"]: o for o in cps if o.get("properties")}
        statues = [o for o in self.objects("Trigger") if o["name"] == "Interaction spawn"]
        if self.number == 1:
            if 0 not in by_id:
                self.err("room 1 needs PlayerCheckpoint 0 (where a new game starts)")
            if statues:
                self.err('room 1 must have no "Interaction spawn" (no statue is created there)')
        if self.number in CHECKPOINT_ROOMS and (0 not in by_id or not any(
                o["properties"][0]["value"] == 0 for o in statues if o.get("properties"))):
            self.err('a checkpoint room needs PlayerCheckpoint 0 and an "Interaction spawn" 0')
        for o in statues:
            cp = by_id.get(o["properties"][0]["value"]) if o.get("properties") else None
            if cp is None:
                self.err('an "Interaction spawn" names a checkpoint that does not exist')
            elif o["x"] < cp["x"] - 160 / 3 or o["x"] + o["width"] > cp["x"] + 160 / 3:
                self.err('an "Interaction spawn" reaches more than 160 px from its statue')
        # doors and their spawns
        doors = [o for o in self.objects("TransitionDoor")]
        self.doors = {}
        for o in doors:
            p = _props(o)
            kinds = {"CameraTransition": "string", "TargetedRoom": "int", "id": "int",
                     "targetedDoorID": "int"}
            if o.get("point") or any(p.get(k, {}).get("type") != t for k, t in kinds.items()):
                self.err("a TransitionDoor must be a rectangle with CameraTransition, "
                         "TargetedRoom, id and targetedDoorID")
                continue
            if p["CameraTransition"]["value"] not in DIRECTIONS:
                self.err(f'door {p["id"]["value"]}: CameraTransition must be one of {DIRECTIONS}')
            if p["id"]["value"] in self.doors:
                self.err(f'two doors have id {p["id"]["value"]}')
            self.doors[p["id"]["value"]] = o
        self.spawns = {}
        for o in self.objects("Player"):
            if o["name"] != "PlayerDoorSpawn":
                continue
            sid, link = _value(o, "id"), _value(o, "LinkedDoorID")
            if not o.get("point") or sid is None or link is None:
                self.err("a PlayerDoorSpawn must be a point with id and LinkedDoorID")
                continue
            if sid in self.spawns:
                self.err(f"two door spawns have id {sid}")
            self.spawns[sid] = o
            if link not in self.doors:
                self.err(f"door spawn {sid} links door {link}, which is not in the room")
        for o in self.objects("Player"):
            if not o.get("point"):
                continue
            x0, x1, y0, y1 = o["x"] - BODY_HALF_W, o["x"] + BODY_HALF_W, o["y"] - BODY_H, o["y"]
            for d in self.doors.values():
                if x0 < d["x"] + d["width"] and d["x"] < x1 and y0 < d["y"] + d["height"] \
                        and d["y"] <= y1:
                    self.err(f'{o["name"]} at ({o["x"]}, {o["y"]}) stands inside door '
                             f'{_value(d, "id")}')
        for did, d in self.doors.items():
            sp = next((s for s in self.spawns.values() if _value(s, "LinkedDoorID") == did), None)
            if sp is None:
                continue
            side = _value(d, "CameraTransition")
            if side == "Left" and sp["x"] <= d["x"] + d["width"] or \
                    side == "Right" and sp["x"] >= d["x"] or \
                    side == "Up" and sp["y"] <= d["y"] + d["height"] or \
                    side == "Down" and sp["y"] >= d["y"]:
                self.err(f"door {did} ({side}): its arrival spawn is on the wrong side")
        # enemies
        containers = {}
        for o in self.objects("Enemies"):
            if o["name"] == "EnemiesContainer":
                if o.get("point") or len(o.get("properties", [])) != 1:
                    self.err("an EnemiesContainer must be a rectangle with exactly one property")
                else:
                    containers[o["properties"][0]["value"]] = o
        for o in self.objects("Enemies"):
            if o["name"] != "EnemySpawn":
                continue
            kind, cid = _value(o, "EnemyType"), _value(o, "idContainer")
            if not o.get("point") or kind not in range(8) or cid is None:
                self.err("an EnemySpawn must be a point with EnemyType 0..7 and idContainer")
                continue
            c = containers.get(cid)
            inside = c is not None and c["x"] <= o["x"] <= c["x"] + c["width"] and (
                c["y"] < o["y"] < c["y"] + c["height"] if kind in FLYING else
                c["y"] + BODY_H < o["y"] <= c["y"] + c["height"] <= o["y"] + tw)
            if c is None:
                self.err(f"enemy at ({o['x']}, {o['y']}) has no container {cid}")
            elif not inside:
                self.err(f"enemy at ({o['x']}, {o['y']}): container {cid} must hold it, reach "
                         "above its head and end at its floor")
        self.check_door_groups()
        # chest and merchant
        chests = self.objects("Chest")
        chest_triggers = [o for o in self.objects("Trigger") if o["name"] == "Chest trigger"]
        if len(chests) > 1 or len(chest_triggers) > 1 or bool(chests) != bool(chest_triggers):
            self.err("a room holds at most one chest, with exactly one chest trigger")
        for o in chests:
            if not o.get("point") or _value(o, "Ability") not in (0, 1, 2) \
                    or _value(o, "Right") is None or o["properties"][0]["name"] != "Ability":
                self.err("a chest must be a point with Ability 0..2 and Right")
        pnj = self.objects("Pnj")
        if pnj:
            zones = [o for o in pnj if not o.get("point")]
            points = [o for o in pnj if o.get("point")]
            if len(zones) != 1 or len(points) != 1:
                self.err('"Pnj" must hold one rectangle and one point')
            elif zones[0]["x"] < points[0]["x"] - 50 or \
                    zones[0]["x"] + zones[0]["width"] > points[0]["x"] + 50:
                self.err("the merchant zone reaches more than 150 px from the merchant")

    def check_door_groups(self):
        """The structure of "Door group", its triggers and the kills it waits for."""
        self.lock_doors = []  # (group id, door rectangle)
        top = [layer for layer in self.map["layers"] if layer["name"] == "Door group"]
        if len(top) > 1 or top and top[0]["type"] != "group":
            self.err('"Door group" must be one group layer')
            top = []
        groups = {}
        for g in top[0]["layers"] if top else []:
            gid = _value(g, "id")
            if g["type"] != "group" or _props(g).get("enemyToKill", {}).get("type") != "int" \
                    or _props(g).get("id", {}).get("type") != "int":
                self.err(f'"Door group" child "{g["name"]}" must be a group with int '
                         '"enemyToKill" and "id"')
                continue
            if gid in groups:
                self.err(f"two door groups have id {gid}")
            groups[gid] = g
            doors = g["layers"]
            if not doors:
                self.err(f"door group {gid} has no door")
            for d in doors:
                objs = d.get("objects", [])
                if d["type"] != "objectgroup" or len(objs) != 1 or objs[0].get("point") \
                        or objs[0].get("ellipse") or "polygon" in objs[0] \
                        or _props(objs[0]).get("isClosed", {}).get("type") != "bool":
                    self.err(f'door group {gid}: "{d["name"]}" must be an object layer holding '
                             'one rectangle with a bool "isClosed"')
                    continue
                self.lock_doors.append((gid, objs[0]))
        triggers = [o for o in self.objects("Trigger") if o["name"] == "Locked Door trigger"]
        named = set()
        for o in triggers:
            if not o.get("properties"):
                continue  # reported with the other triggers
            gid = o["properties"][0]["value"]
            named.add(gid)
            if gid not in groups:
                self.err(f'a "Locked Door trigger" closes door group {gid}, which does not exist')
            for g, d in self.lock_doors:
                if g == gid and o["x"] < d["x"] + d["width"] and d["x"] < o["x"] + o["width"] \
                        and o["y"] < d["y"] + d["height"] and d["y"] < o["y"] + o["height"]:
                    self.err(f'a "Locked Door trigger" of group {gid} overlaps one of its doors '
                             "(it would close on the hero)")
        for gid in sorted(set(groups) - named):
            self.err(f'door group {gid} has no "Locked Door trigger" (it never closes)')
        killable = sum(1 for o in self.objects("Enemies") if o["name"] == "EnemySpawn"
                       and _value(o, "EnemyType") in range(8)
                       and _value(o, "EnemyType") not in UNDYING)
        for gid, g in groups.items():
            kill = _value(g, "enemyToKill")
            if not 0 <= kill <= killable:
                self.err(f'door group {gid} waits for {kill} kills; the room holds {killable} '
                         "enemies that can die (the Plant never does)")

    def check_lock_doors(self, tileset, solid):
        """Locked doors: their size, the floor under them and the rock that hides them open."""
        hidden, _ = self.collision(tileset, middle_only=True)
        h = self.map["height"]
        region = _value(self.map, "tsx name")
        base = Path(str(DOOR_BASE).format(region))
        min_h = LOCKDOOR_MIN_H
        if base.is_file():  # the door's base piece is drawn x3 at the bottom of the rectangle
            from PIL import Image  # only needed once the door pictures exist
            with Image.open(base) as im:
                min_h = max(min_h, (3 * 3 * im.height + 3) / 3)
        for gid, d in self.lock_doors:
            where = f'door group {gid}: the door at ({d["x"]}, {d["y"]})'
            if d["width"] != 32 or d["x"] % 32 or d["y"] % 32 or d["height"] % 32:
                self.err(f"{where} must be one tile wide and sit on the tile grid")
                continue
            if d["height"] < min_h:
                self.err(f"{where} is {d['height']} map px tall, less than {min_h:g}")
            c, r0 = int(d["x"]) // 32, int(d["y"]) // 32
            rows = int(d["height"]) // 32
            r1 = r0 + rows - 1
            if not 0 <= c < self.map["width"] or r0 < 0 or r1 >= h:
                self.err(f"{where} lies outside the map")
                continue
            if any(solid[r][c] for r in range(r0, r1 + 1)):
                self.err(f"{where} has solid ground inside it")
            if r1 + 1 >= h or not solid[r1 + 1][c]:
                self.err(f"{where} must stand on a solid floor")
            if r0 - rows < 0 or not all(hidden[r][c] for r in range(r0 - rows, r0)):
                self.err(f"{where} needs solid middle-layer terrain {rows} tiles tall right above "
                         "it, where the open door hangs")

    def check_space(self, tileset):
        """Walls, floors under standing points, door openings."""
        solid, oneway = self.collision(tileset)
        w, h = self.map["width"], self.map["height"]
        self.check_lock_doors(tileset, solid)
        doors = list(self.doors.values())

        def in_door(cx, cy):
            return any(d["x"] <= cx * 32 < d["x"] + d["width"] and
                       d["y"] <= cy * 32 < d["y"] + d["height"] for d in doors)
        edge = [(x, 0) for x in range(w)] + [(x, h - 1) for x in range(w)] + \
            [(0, y) for y in range(h)] + [(w - 1, y) for y in range(h)]
        holes = sorted({(x, y) for x, y in edge if not solid[y][x] and not in_door(x, y)})
        if holes:
            self.err(f"the room is open at its edge at cells {holes[:6]}"
                     f"{' ...' if len(holes) > 6 else ''}: walls must be solid except at doors")
        for d in doors:
            c0, r0 = int(d["x"] // 32), int(d["y"] // 32)
            c1, r1 = int((d["x"] + d["width"] - 1) // 32), int((d["y"] + d["height"] - 1) // 32)
            did, side = _value(d, "id"), _value(d, "CameraTransition")
            if any(solid[r][c] for r in range(r0, r1 + 1) for c in range(c0, c1 + 1)):
                self.err(f"door {did}: solid ground inside its rectangle")
            if side in ("Left", "Right"):
                if d["x"] != 0 and d["x"] + d["width"] != w * 32:
                    self.err(f"door {did} ({side}) is not at the room's side edge")
                if r1 + 1 >= h or not all(solid[r1 + 1][c] for c in range(c0, c1 + 1)) \
                        or d["y"] + d["height"] != (r1 + 1) * 32:
                    self.err(f"door {did} ({side}): its rectangle must end on the floor")
            elif side == "Up" and d["y"] != 0:
                self.err(f"door {did} (Up) must open in the room's top edge")
            elif side == "Down":
                if d["y"] + d["height"] != h * 32:
                    self.err(f"door {did} (Down) must open in the room's bottom edge")
                if r0 > 0 and not any(oneway[r0 - 1][c] for c in range(c0, c1 + 1)):
                    self.err(f"door {did} (Down): no one-way ledge across the hole above it")
        # points that stand on the floor
        standing = [o for o in self.objects("Player")] + self.objects("Chest") + \
            [o for o in self.objects("Pnj") if o.get("point")] + \
            [o for o in self.objects("Enemies") if o["name"] == "EnemySpawn"]
        for o in standing:
            if not o.get("point"):
                continue
            cx, cy = int(o["x"] // 32), int(round(o["y"])) // 32
            if o["name"] == "EnemySpawn" and _value(o, "EnemyType") in FLYING:
                floors = [r for r in range(-(-int(o["y"]) // 32), min(h, cy + HOVER_ROWS + 1))
                          if solid[r][cx] or oneway[r][cx]]
                if solid[cy][cx] or not floors:
                    self.err(f"EnemySpawn at ({o['x']}, {o['y']}) hovers over no floor")
                continue
            if o["y"] != cy * 32 or not (0 <= cx < w and 0 <= cy < h) or \
                    not (solid[cy][cx] or oneway[cy][cx]) or (cy > 0 and solid[cy - 1][cx]):
                self.err(f'{o["name"]} at ({o["x"]}, {o["y"]}) does not stand on a floor')


def check_links(checks):
    by_room = {c.number: c for c in checks}
    for c in checks:
        for did, d in getattr(c, "doors", {}).items():
            target, tdoor = _value(d, "TargetedRoom"), _value(d, "targetedDoorID")
            other = by_room.get(target)
            if other is None:
                if not (ROOMS / f"Room{target}.json").is_file():
                    continue  # the target room is not built yet
                other = MapCheck(ROOMS / f"Room{target}.json")
                other.check_objects()
            spawn = other.spawns.get(tdoor)
            if spawn is None:
                c.err(f"door {did} leads to room {target} spawn {tdoor}, which does not exist")
                continue
            back = other.doors.get(_value(spawn, "LinkedDoorID"))
            if back is None:
                continue
            if _value(back, "TargetedRoom") != c.number or _value(back, "targetedDoorID") not in \
                    c.spawns or _value(c.spawns[_value(back, "targetedDoorID")],
                                       "LinkedDoorID") != did:
                c.err(f"door {did} -> room {target} spawn {tdoor}: the way back does not lead "
                      "to this door")
            if _value(back, "CameraTransition") != OPPOSITE.get(_value(d, "CameraTransition")):
                c.err(f"door {did} ({_value(d, 'CameraTransition')}) arrives through a "
                      f"{_value(back, 'CameraTransition')} door in room {target}")


def main(argv):
    paths = [Path(a) for a in argv] or sorted(ROOMS.glob("Room*.json"),
                                              key=lambda p: int(re.sub(r"\D", "", p.name) or 0))
    if not paths:
        print("no room maps under Assets/Maps/Rooms")
        print("maps open in Tiled: 0 passed, 0 failed")
        return 1
    if shutil.which("tiled") is None:
        print("the Tiled editor (`tiled`) is not installed")
        print(f"maps open in Tiled: 0 passed, {len(paths)} failed")
        return 1
    tilesets = {}
    checks = []
    with tempfile.TemporaryDirectory() as tmp:
        for path in paths:
            path = path.resolve()
            c = MapCheck(path)
            checks.append(c)
            out = Path(tmp) / path.name
            ok, message = tiled_export(path, out)
            if not ok:
                c.err(message)
                continue
            ours = _normalise(c.map, str(path.parent))
            theirs = _normalise(json.loads(out.read_text()), tmp)
            diff = _first_difference(ours, theirs)
            if diff:
                c.err(f"Tiled reads the map differently: {diff}")
            source = (c.map.get("tilesets") or [{}])[0].get("source", "")
            ts_path = (path.parent / source).resolve()
            if ts_path not in tilesets:
                tilesets[ts_path] = Tileset(ts_path) if ts_path.is_file() else None
            tileset = tilesets[ts_path]
            if tileset is None:
                c.err(f"tileset {source} does not exist")
            elif not tileset.image.is_file():
                c.err(f"tileset image {tileset.image.name} does not exist")
            c.run(tileset)
    check_links(checks)
    failed = 0
    for c in checks:
        if c.errors:
            failed += 1
            for e in c.errors:
                print(f"{c.path.name}: {e}")
        else:
            print(f"{c.path.name}: ok")
    print(f"maps open in Tiled: {len(checks) - failed} passed, {failed} failed")
    return 1 if failed else 0


if __name__ == "__main__":
    sys.exit(main(sys.argv[1:]))

"""Screenshots of two of the city's fights for the README, taken from the real game (not a test:
run it under Xvfb with the game binary; the pictures go to tests/out/).

- The armoury hall (room 17): from room 16's statue the hero walks east through the door; the
  hall's gates drop behind him, the Empty Armor's bar rises, and the picture is taken when its
  sword is out in a cut.
- The pit of the watch (room 18): the hero resumes on the walkway over the pit (a checkpoint
  point added to the scratch copy of the map, since the room has none), walks west into the
  trigger so that the gate drops behind him, and the debug console shows the whole arena with
  its keepers below.
"""
import json
import os
import sys
import time

import numpy
from PIL import Image

from boss import bar_pixels
from chest import console
from driver import LOADED_ROOM, TRANSITION, Game, find, key_for, saved_at, worn_only_by

DEADLINE = 90
# Room 18's walkway (floor 8) between its gate (column 27) and its trigger (column 22), in map px.
WALKWAY_POINT = (25.5 * 32, 8 * 32)


def keys_of(game):
    settings = game.read("Assets/Settings/BindingSettings.txt")
    return {action: key_for(action, settings) for action in ("RIGHT", "LEFT")}


def walk_until(game, key, transitions, what):
    deadline = time.time() + DEADLINE
    with game.holding(key):
        while game.count(TRANSITION) < transitions:
            if time.time() > deadline:
                game.fail("%s within %d s" % (what, DEADLINE))
            time.sleep(0.1)


def armoury(binary):
    game = Game(binary, saved_at(16))
    try:
        game.play()
        console(game, "/god")
        console(game, "/kill/enemy")
        walk_until(game, keys_of(game)["RIGHT"], 1, "the door to the armoury hall taken")
        game.wait_until(lambda: game.count(LOADED_ROOM) >= 2, "the armoury hall loaded")
        game.wait_for_screen(lambda image: bar_pixels(image) > 900 * 24 // 2,
                             "the Empty Armor's bar risen")
        # Into the hall, past the trigger, so that the gates drop and the armour comes at him.
        with game.holding(keys_of(game)["RIGHT"]):
            time.sleep(0.6)
        sword = worn_only_by("Enemies/Flying Knight/Sword")
        hero = worn_only_by("Sprites/Player/Hero1")
        armour = worn_only_by("Flying Knight/GladiatorSpriteSheet")

        def fighting(image):
            blade, him = find(image, sword, step=1, minimum=400), find(image, hero)
            return (bar_pixels(image) > 900 * 24 // 2 and blade is not None and him is not None
                    and find(image, armour) is not None and abs(blade.x - him.x) < 500)
        deadline = time.time() + DEADLINE
        shot = game.screen()
        while not fighting(shot):  # on east, a step at a time, until the armour is at him
            if time.time() > deadline:
                game.fail("the Empty Armor's sword out beside the hero, its bar shown, within "
                          "%d s" % DEADLINE)
            with game.holding(keys_of(game)["RIGHT"]):
                time.sleep(0.2)
            shot = game.screen()
        game.screenshot("boss_flying_knight", shot)
    finally:
        game.close()


def with_walkway_point(workdir):
    # Every checkpoint point shows a statue; the pit has none, so the copy's statue is bare.
    for name in ("City-Statue.png", "City-StatueOutline.png"):
        path = os.path.join(workdir, "Assets/Sprites/Objects/Checkpoint", name)
        with Image.open(path) as picture:
            size = picture.size
        Image.new("RGBA", size).save(path)
    path = os.path.join(workdir, "Assets/Maps/Rooms/Room18.json")
    with open(path) as f:
        tmap = json.load(f)
    player = next(layer for layer in tmap["layers"] if layer["name"] == "Player")
    player["objects"].append({"id": 9999, "name": "PlayerCheckpoint", "type": "", "point": True,
                              "x": WALKWAY_POINT[0], "y": WALKWAY_POINT[1], "width": 0,
                              "height": 0, "rotation": 0, "visible": True,
                              "properties": [{"name": "id", "type": "int", "value": 0}]})
    with open(path, "w") as f:
        json.dump(tmap, f)


def arena(binary):
    game = Game(binary, saved_at(18), prepare=with_walkway_point)
    try:
        game.play()
        console(game, "/god")
        left = keys_of(game)["LEFT"]
        gate = worn_only_by("Objects/Door/City-Door")
        deadline = time.time() + DEADLINE
        # West in short steps until the gate shows: the trigger is the walkway's last tile.
        while find(game.screen(), gate) is None:
            if time.time() > deadline:
                game.fail("the walkway's gate dropped within %d s of walking west" % DEADLINE)
            with game.holding(left):
                time.sleep(0.08)
            time.sleep(0.3)
        counts = []

        def settled(image):
            shown = find(image, gate)
            counts.append(0 if shown is None else shown.pixels)
            return len(counts) > 3 and counts[-1] == counts[-2] == counts[-3] > 0
        game.wait_for_screen(settled, "the gate down and still")
        hero = worn_only_by("Sprites/Player/Hero1")
        close = find(game.screen(), hero).pixels
        # The whole pit at once (the view 1.6 times wider), so that its keepers show below the
        # walkway: the bodies of the slimes and the scavengers, not the slimes' gobs.
        console(game, "/camera/dezoom")
        keepers = numpy.concatenate([worn_only_by("Slime/BlueSlime SpriteSheet"),
                                     worn_only_by("Trash/TrashCity")])

        def fight(image):
            him = find(image, hero, minimum=5)
            return (him is not None and him.pixels < 0.6 * close and find(image, gate) is not None
                    and find(image, keepers, step=1, minimum=20) is not None)
        shot, _ = game.wait_for_screen(fight, "the whole pit in view: the gate shut, the hero and "
                                       "the pit's keepers")
        game.screenshot("arena", shot)
    finally:
        game.close()


if __name__ == "__main__":
    armoury(sys.argv[1])
    arena(sys.argv[1])
    print("city shots: ok")

"""A player walks from room 4's statue into the Nomad's clearing: the camera pans to the Nomad
and his boss bar slides up with his title.

The hero starts rested at room 4's statue. East of the terrace he drops into the great tree's
hall and walks on to the door of room 10, hopping as he goes so the hall's carnivorous plant
snaps at nothing. Arriving in a boss room the game pans to the boss, then gives the hero back;
the bar rises from under the screen 2.5 s after the room was loaded.
"""
import sys
import time

import numpy

from driver import (LOADED_ROOM, REPO, TRANSITION, Game, find, key_for, packed,
                    palette, saved_at, worn_only_by)

# The boss bar's fill is drawn where its groove lies: 900 x 24 screen pixels from (510, 990).
BAR_ROWS = (980, 1024)
BAR_COLUMNS = (480, 1440)
# Walking from the statue to the door of room 10 takes about 8 s of the world.
WALK_DEADLINE = 90
HOP_INTERVAL = 0.35
CAMERA_SIZE = "camera size : "


def bar_pixels(image):
    """How many pixels of the bottom band wear the boss bar's fill colours."""
    fill = numpy.array(sorted(palette(REPO + "/Assets/Sprites/HUD/Boss/LifeBar.png")))
    band = image[BAR_ROWS[0]:BAR_ROWS[1], BAR_COLUMNS[0]:BAR_COLUMNS[1]]
    return int(numpy.count_nonzero(numpy.isin(packed(band), fill)))


def walk_to_the_clearing(game, keys):
    """Holds RIGHT and hops until the door to room 10 has been taken."""
    transitions = game.count(TRANSITION)
    # A death zooms the camera in for the rise at the statue, and says so.
    zooms = game.count(CAMERA_SIZE)
    deadline = time.time() + WALK_DEADLINE
    with game.holding(keys["RIGHT"]):
        while game.count(TRANSITION) == transitions:
            if time.time() > deadline:
                game.fail("the door to room 10 taken within %d s of walking east"
                          % WALK_DEADLINE)
            if game.count(CAMERA_SIZE) != zooms:
                game.fail("the hero alive on the way to room 10 (he died)")
            game.key(keys["JUMP"])
            time.sleep(HOP_INTERVAL)
    return game.count(LOADED_ROOM)


def main(binary):
    game = Game(binary, saved_at(4))
    try:
        game.play()
        settings = game.read("Assets/Settings/BindingSettings.txt")
        keys = {action: key_for(action, settings) for action in ("RIGHT", "JUMP")}
        loads = walk_to_the_clearing(game, keys)
        game.wait_until(lambda: game.count(LOADED_ROOM) > loads - 1 and
                        "0.000000 0.000000" in game.output(),
                        "the Nomad's boss bar made on arrival in room 10")
        nomad = worn_only_by("Sprites/Enemies/Nomad")
        panned, _ = game.wait_for_screen(
            lambda image: find(image, nomad) is not None and
            abs(find(image, nomad).x - 960) < 400,
            "the camera panned onto the Nomad (him near the middle of the screen)")
        game.screenshot("boss-pan", panned)
        shown, _ = game.wait_for_screen(lambda image: bar_pixels(image) > 900 * 24 // 2,
                                        "the Nomad's bar risen at the bottom of the screen")
        game.screenshot("boss-bar", shown)
    finally:
        game.close()


if __name__ == "__main__":
    main(sys.argv[1])
    print("boss: ok")

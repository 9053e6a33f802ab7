"""A player travels from room 2's statue to room 4's through the map.

The hero starts rested at room 2's statue, standing at it. M opens the map over the frozen world:
the twenty rooms as green and blue rectangles. A click on room 4 zooms it up into the picture of
the room, which carries the teleport button over its statue because the map was opened at a
statue. A click on the button fades the screen out; the game logs the teleport and loads room 4,
and the hero stands at room 4's statue beside the blacksmith's forge when the screen clears.
Screenshots of the map and of the zoomed room go to tests/out/map.png and map_preview.png.
"""
import sys

import numpy

from driver import LOADED_ROOM, Game, find, saved_at, worn_only_by

# Room rectangles on the 1920 x 1080 screen: the middle of rooms 1 and 4, and room 4's teleport
# button over its picture.
ROOM_1 = (192, 540)
ROOM_4 = (535, 628)
TELEPORT = (1210, 717)
ZOOMED_FILL = (0, 0, 25)


def block(image, at, half=4):
    """The mean colour of a small square around a point."""
    x, y = at
    return image[y - half:y + half, x - half:x + half, :3].reshape(-1, 3).mean(axis=0)


def map_shown(image):
    """Room 1's rectangle: its green (150, 200, 100) at alpha 175 over the darkened world."""
    r, g, b = block(image, ROOM_1)
    return 120 <= g <= 175 and g > r + 20 > b + 20


def zoomed(image):
    """The zoomed rectangle's deep blue in the corner, the room's picture in the middle, and the
    teleport button's gold ring round its point."""
    corner = tuple(int(v) for v in block(image, (40, 40)))
    if corner != ZOOMED_FILL:
        return False
    middle = image[440:640, 860:1060, :3].reshape(-1, 3)
    ring = image[TELEPORT[1] - 30:TELEPORT[1] + 30, TELEPORT[0] - 30:TELEPORT[0] + 30, :3]
    gold = numpy.count_nonzero((ring[..., 0] > 150) & (ring[..., 0] > ring[..., 2] + 60))
    return len(numpy.unique(middle, axis=0)) > 30 and gold > 40


def main(binary):
    game = Game(binary, saved_at(2))
    try:
        game.play()
        loads = game.count(LOADED_ROOM)
        game.key("m")
        image, _ = game.wait_for_screen(map_shown, "the map's green room 1 at %s" % (ROOM_1,))
        game.screenshot("map", image)
        game.click(*ROOM_4)
        try:
            image, _ = game.wait_for_screen(zoomed, "room 4 zoomed in, its teleport button at %s"
                                            % (TELEPORT,))
        except AssertionError:
            game.screenshot("map-no-zoom")
            raise
        game.screenshot("map_preview", image)
        game.click(*TELEPORT)
        game.wait_for_line("teleport to room 4\n")
        game.wait_until(lambda: game.count(LOADED_ROOM) > loads, "room 4 loaded")
        smith = worn_only_by("Sprites/Merchant")

        def beside_the_forge(image):
            hero, him = game.hero(image), find(image, smith)
            return hero is not None and him is not None and 0 < him.x - hero.spot.x < 900
        image, _ = game.wait_for_screen(beside_the_forge,
                                        "the hero in room 4, the blacksmith east of him")
        game.screenshot("map_arrived", image)
    finally:
        game.close()


if __name__ == "__main__":
    main(sys.argv[1])
    print("map: ok")

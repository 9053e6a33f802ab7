"""A player walks from the palace porch into the throne hall: the camera pans to the King and his
boss bar slides up, while his own music takes over from the city's.

The hero starts at the top of the palace steps (room 20's checkpoint point, by the palace door)
and walks east through the door. Arriving in a boss room the game pans to the boss, then gives
the hero back; the bar rises from under the screen 2.5 s after the room was loaded.
"""
import sys
import time

from boss import bar_pixels
from driver import LOADED_ROOM, TRANSITION, Game, find, key_for, saved_at, worn_only_by

WALK_DEADLINE = 60


def main(binary):
    game = Game(binary, saved_at(20))
    try:
        game.play()
        settings = game.read("Assets/Settings/BindingSettings.txt")
        right = key_for("RIGHT", settings)
        deadline = time.time() + WALK_DEADLINE
        with game.holding(right):
            while game.count(TRANSITION) == 0:
                if time.time() > deadline:
                    game.fail("the palace door taken within %d s of walking east" % WALK_DEADLINE)
                time.sleep(0.1)
        # The palace steps were the first room loaded, the throne hall is the second.
        game.wait_until(lambda: game.count(LOADED_ROOM) >= 2 and
                        "0.000000 0.000000" in game.output(),
                        "the King's boss bar made on arrival in the throne hall")
        king = worn_only_by("Sprites/Enemies/Boss/King")
        panned, _ = game.wait_for_screen(
            lambda image: find(image, king) is not None and abs(find(image, king).x - 960) < 400,
            "the camera panned onto the King (him near the middle of the screen)")
        game.screenshot("king-pan", panned)
        shown, _ = game.wait_for_screen(lambda image: bar_pixels(image) > 900 * 24 // 2,
                                        "the King's bar risen at the bottom of the screen")
        game.screenshot("king-bar", shown)
    finally:
        game.close()


if __name__ == "__main__":
    main(sys.argv[1])
    print("king: ok")

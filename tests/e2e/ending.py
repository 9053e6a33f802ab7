"""The end of the game, reached with the debug console's help: in the Goddess's garden the
console fells her, dawn floods the garden, the ending screen rolls, and a few presses bring back
the title menu with the save as it was.

The hero starts at the statue on the garden's lawn, shut in with her. Once her bar has risen,
the console's "/kill/enemy" ends her.
"""
import sys

import numpy

from boss import bar_pixels
from driver import Game, saved_at

# The ending screen's dawn colour, before the landscape settles in.
DAWN = (255, 240, 214)


def console(game, line):
    game.key("F1")
    game.type_text(line)
    game.key("Return")


def mostly_dawn(image):
    """The world washed out by the rising light: most pixels near the dawn's colour."""
    near = numpy.all(numpy.abs(image[::8, ::8, :3].astype(int) - DAWN) < 40, axis=2)
    return near.mean() > 0.8


def main(binary):
    save = saved_at(23)
    game = Game(binary, save)
    try:
        # The garden's view is wider than the screen: the hero shows too small to be matched.
        game.play(at_rest=False)
        # Her bar rises a few seconds into the fight, too soon for her to fell him; then the
        # console fells her.
        shown, _ = game.wait_for_screen(lambda image: bar_pixels(image) > 900 * 24 // 2,
                                        "the Goddess's bar risen at the bottom of the screen")
        game.screenshot("goddess", shown)
        console(game, "/kill/enemy")
        game.wait_for_line("Ending : dawn\n")
        washed, _ = game.wait_for_screen(mostly_dawn, "the garden washed out by the dawn")
        game.screenshot("ending-dawn", washed)
        game.wait_for_line("Ending : the end\n")
        # Once the white has settled the roll runs; a press hurries it, another leaves.
        start = game.output().find("Ending : the end\n")
        # The night sky of the title's landscape comes back from under the white.
        game.wait_for_screen(lambda image: image[:200, 600:1200].mean() < 90,
                             "the title's landscape settled under the roll")
        # The epilogue's white lines rise up the left side.
        rolling, _ = game.wait_for_screen(
            lambda image: int((image[200:900, 0:860].min(axis=2) > 225).sum()) > 3000,
            "the epilogue rolling up the left side")
        game.screenshot("ending-roll", rolling)

        def pressed_through():
            game.key("space")
            return "Ending : back to the title\n" in game.output()[start:]
        game.wait_until(pressed_through, "the roll hurried by presses and left at THE END",
                        interval=1.5)
        game.wait_for_line("Load Menu\n", start=start)
        game.screenshot("ending-title")
        if game.read("Assets/Saves/PlayerSave.txt") != save:
            game.fail("the save left as it was by the ending")
    finally:
        game.close()


if __name__ == "__main__":
    main(sys.argv[1])
    print("ending: ok")

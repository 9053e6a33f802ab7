"""A player opens the game, reads the credits, changes a volume and a key, and quits."""
import os
import re
import sys

import numpy

from driver import REPO, Game, difference, distinct_colours, find, png_size, worn_only_by

WHOLE_SCREEN = 1920 * 1080
# The fill colour of a binding entry that waits for its new key.
WAITING_ENTRY = numpy.array([0x00FFFF])
MASTER_ROW = 324


def handle_at(game, image):
    """Where the MASTER VOLUME slider's handle is drawn, or None."""
    return find(image, worn_only_by("Sprites/Settings/button.png"), step=1, minimum=10,
                rows=(MASTER_ROW - 30, MASTER_ROW + 30))


def drag_master_volume(game, target_x):
    """Drags the MASTER VOLUME handle to target_x, holding the button until the handle is drawn
    there: the slider follows the pointer only while the game sees the button held."""
    master = int(re.search(r"MASTER VOLUME (\d+)",
                           game.read("Assets/Settings/SoundSettings.txt")).group(1))
    bar_width = png_size(os.path.join(REPO, "Assets/Sprites/Settings/bar.png"))[0]
    x0 = 672 + master / 100 * bar_width
    game.move(x0, MASTER_ROW)
    game.button_down()
    game.move(x0 + 1, MASTER_ROW)  # grabbing happens on a move over the handle, button held
    steps = 8
    for i in range(1, steps + 1):
        game.move(x0 + (target_x - x0) * i / steps, MASTER_ROW)
    image, _ = game.wait_for_screen(
        lambda image: (lambda spot: spot and abs(spot.x - target_x) <= 3)(handle_at(game, image)),
        "the MASTER VOLUME handle drawn under the pointer at x = %d" % target_x)
    game.button_up()
    return image


def main(binary):
    game = Game(binary)
    try:
        game.wait_for_line("Load Menu\n")
        game.wait_for_line("gamepad 0 not connected\n")
        game.find_window()
        title, _ = game.wait_for_screen(lambda image: distinct_colours(image) > 200,
                                        "the title menu drawn")
        game.screenshot("title", title)

        game.click(200, 783)  # CREDITS
        credits, _ = game.wait_for_screen(
            lambda image: difference(image, title) > WHOLE_SCREEN // 4, "the credits drawn")
        assert distinct_colours(credits) > 100, "the credits look empty"
        game.screenshot("credits", credits)
        game.click(1766, 1026)  # RETURN

        game.click(200, 702)  # SETTINGS (read after RETURN: the game takes events in order)
        bar_width = png_size(os.path.join(REPO, "Assets/Sprites/Settings/bar.png"))[0]
        sound = drag_master_volume(game, 672 + bar_width / 2 + 1)  # to the middle
        game.screenshot("settings-sound", sound)

        game.click(1488, 108)  # BINDING tab
        game.click(672, 297 + 81 * 3)  # the JUMP entry starts waiting
        game.wait_for_screen(lambda image: find(image, WAITING_ENTRY, step=1, minimum=100),
                             "the JUMP entry waiting for a key (filled cyan)")
        game.key("j")
        binding, _ = game.wait_for_screen(
            lambda image: not find(image, WAITING_ENTRY, step=1, minimum=100),
            "the JUMP entry done waiting once J was pressed")
        game.screenshot("settings-binding", binding)
        game.click(96, 1026)  # OK

        # Only the changed values differ from the shipped files, once the game has written them.
        shipped_sound = open(os.path.join(REPO, "Assets/Settings/SoundSettings.txt")).read()
        shipped_binding = open(os.path.join(REPO, "Assets/Settings/BindingSettings.txt")).read()
        expected_sound = re.sub(r"MASTER VOLUME \d+\n", "MASTER VOLUME 50\n", shipped_sound)
        expected_binding = re.sub(r"JUMP : \d+\n", "JUMP : 9\n", shipped_binding)
        game.wait_for_file("Assets/Settings/SoundSettings.txt",
                           lambda text: text == expected_sound,
                           "the master volume saved at 50, the other volumes as shipped")
        game.wait_for_file("Assets/Settings/BindingSettings.txt",
                           lambda text: text == expected_binding,
                           "the jump saved on J (key code 9), the other keys as shipped")

        game.click(200, 864)  # QUIT
        status = game.wait_exit()
        assert status == 0, "exit status %d" % status
        assert game.output().rstrip().endswith("Cleanup Menu"), game.log_tail()
        print("title menu end to end: 1 passed, 0 failed")
    finally:
        game.close()


if __name__ == "__main__":
    main(sys.argv[1])

"""A player opens the game, reads the credits, changes a volume and a key, and quits."""
import re
import sys

import os

from driver import REPO, Game, distinct_colours, png_size


def main(binary):
    game = Game(binary)
    try:
        game.wait_for_line("Load Menu\n")
        game.wait_for_line("gamepad 0 not connected\n")
        game.find_window()
        title = game.screenshot("title")
        assert distinct_colours(title) > 200, "the title screen looks empty"

        game.click(200, 783)  # CREDITS
        credits = game.screenshot("credits")
        assert distinct_colours(credits) > 100
        game.click(1766, 1026)  # RETURN

        game.click(200, 702)  # SETTINGS
        master = int(re.search(r"MASTER VOLUME (\d+)", game.read("Assets/Settings/SoundSettings.txt")).group(1))
        bar_width = png_size(os.path.join(REPO, "Assets/Sprites/Settings/bar.png"))[0]
        handle = 672 + master / 100 * bar_width
        game.drag(handle, 324, 672 + bar_width / 2 + 1, 324)  # to the middle
        game.screenshot("settings-sound")
        game.click(1488, 108)  # BINDING tab
        game.click(672, 297 + 81 * 3)  # the JUMP entry starts waiting
        game.key("j")
        game.screenshot("settings-binding")
        game.click(96, 1026)  # OK

        sound = game.read("Assets/Settings/SoundSettings.txt")
        binding = game.read("Assets/Settings/BindingSettings.txt")
        assert "MASTER VOLUME 50\n" in sound, sound
        assert "JUMP : 9\n" in binding, binding

        game.click(200, 864)  # QUIT
        status = game.wait_exit()
        assert status == 0, "exit status %d" % status
        assert game.output().rstrip().endswith("Cleanup Menu"), game.output()
        print("title menu end to end: 1 passed, 0 failed")
    finally:
        game.close()


if __name__ == "__main__":
    main(sys.argv[1])

"""A player fights the Trash of room 4's lower hall with the sword and kills it."""
import subprocess
import sys
import time

from driver import Game, key_for
from hero import ROOM4_SAVE, start


def main(binary):
    game = start(binary, ROOM4_SAVE)
    try:
        settings = game.read("Assets/Settings/BindingSettings.txt")
        right, left = key_for("RIGHT", settings), key_for("LEFT", settings)
        game.hold(right, 4.5)  # off the statue terrace into the hall
        time.sleep(0.6)
        game.hold(left, 3.5)  # towards the Trash of the lower passage
        deadline = time.time() + 100
        while "enemy down : kind 3" not in game.output() and time.time() < deadline:
            game.hold(left, 0.35)  # step in and face the Trash
            subprocess.run(["xdotool", "mousedown", "1"])  # a held attack chains the combo
            time.sleep(1.6)
            subprocess.run(["xdotool", "mouseup", "1"])
            time.sleep(0.5)
        shot = game.screenshot("fight")
        assert "enemy down : kind 3" in game.output(), "the Trash survived:\n" + game.output()[-2000:]
        assert game.process.poll() is None, "the game ended during the fight"
        print("fight end to end: 1 passed, 0 failed (%s)" % shot)
    finally:
        game.close()


if __name__ == "__main__":
    main(sys.argv[1])

"""A player presses PLAY and the first room of the forest appears."""
import sys
import time

from driver import Game, distinct_colours


def main(binary):
    game = Game(binary)
    try:
        game.wait_for_line("Load Menu\n")
        game.find_window()
        game.click(200, 594)  # PLAY
        game.wait_for_line("Load Game\n")
        game.wait_for_line("nb of collisions : ")
        count = int(game.output().split("nb of collisions : ")[1].split()[0])
        assert count > 50, "room 1 has only %d solid rectangles" % count
        time.sleep(2.0)  # the camera settles on the hero's spawn
        shot = game.screenshot("room1")
        colours = distinct_colours(shot)
        assert colours > 150, "the room looks empty (%d colours)" % colours
        assert game.process.poll() is None, "the game ended on its own:\n" + game.output()
        print("play end to end: 1 passed, 0 failed")
    finally:
        game.close()


if __name__ == "__main__":
    main(sys.argv[1])

"""A player presses PLAY and the first room of the forest appears."""
import sys

from driver import LOADED_ROOM, Game, distinct_colours


def main(binary):
    game = Game(binary)
    try:
        room = game.play()  # the hero stands in room 1, the camera on him
        output = game.output()
        assert output.index("Load Game\n") < output.index(LOADED_ROOM), game.log_tail()
        count = int(output.split(LOADED_ROOM)[1].split()[0])
        assert count > 50, "room 1 has only %d solid rectangles" % count
        shot = game.screenshot("room1", room)
        colours = distinct_colours(room)
        assert colours > 150, "the room looks empty (%d colours, %s)" % (colours, shot)
        assert game.process.poll() is None, "the game ended on its own:\n" + game.log_tail()
        print("play end to end: 1 passed, 0 failed")
    finally:
        game.close()


if __name__ == "__main__":
    main(sys.argv[1])

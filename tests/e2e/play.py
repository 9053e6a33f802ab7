"""A player presses PLAY and the first room of the forest appears; pausing and leaving for the
main menu, then pressing PLAY again, starts the game anew."""
import sys

from driver import LOADED_ROOM, Game, difference, distinct_colours

MAIN_MENU = (960, 778)  # the pause list's last entry


def pause_then_main_menu_then_play(game, room):
    game.key("Escape")
    paused, _ = game.wait_for_screen(lambda image: difference(room, image) > 1920 * 1080 // 2,
                                     "the pause darkening the room")
    game.screenshot("pause", paused)
    menus = game.count("Load Menu\n")
    game.click(*MAIN_MENU)
    game.wait_until(lambda: game.count("Load Menu\n") > menus, "the title menu loaded again")
    game.click(200, 594)  # PLAY
    game.wait_until(lambda: game.count("Load Game\n") == 2, "a second game loaded")
    game.wait_until(lambda: game.count(LOADED_ROOM) == 2, "room 1 loaded for the second game")
    again = game.wait_for_hero_at_rest()
    assert distinct_colours(again) > 150, "the second game looks empty"
    assert game.process.poll() is None, "the game ended on its own:\n" + game.log_tail()


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
        pause_then_main_menu_then_play(game, room)
        print("play end to end: 2 passed, 0 failed")
    finally:
        game.close()


if __name__ == "__main__":
    main(sys.argv[1])

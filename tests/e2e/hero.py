"""A player walks the hero with the RIGHT binding, then walks through a door into the next room."""
import sys
import time

from driver import (LOADED_ROOM, TRANSITION, Game, difference, distinct_colours, key_for,
                    saved_at)

WHOLE_SCREEN = 1920 * 1080


def rest_in_view(game, right, steps=6):
    """Waits for the hero to stand still in view; where a bush of the foreground hides him, he
    takes a short step on and stops again."""
    for _ in range(steps - 1):
        try:
            return game.wait_for_hero_at_rest(timeout=8)
        except AssertionError:
            with game.holding(right):
                time.sleep(0.3)  # a short step: only its length is timed, what follows waits
    return game.wait_for_hero_at_rest()


def walk_moves_the_view(binary):
    game = Game(binary)
    try:
        before = game.play()
        game.screenshot("walk-before", before)
        right = key_for("RIGHT", game.read("Assets/Settings/BindingSettings.txt"))
        # Walking carries the camera along: hold RIGHT until most of the picture has changed.
        with game.holding(right):
            game.wait_for_screen(
                lambda image: difference(before, image) > WHOLE_SCREEN // 4,
                "the view to scroll while RIGHT is held (a quarter of the screen changed)")
        after = rest_in_view(game, right)
        game.screenshot("walk-after", after)
        changed = difference(before, after)
        assert changed > WHOLE_SCREEN // 4, "the view hardly moved (%d pixels changed)" % changed
        assert TRANSITION not in game.output(), "a short walk east left room 1"
    finally:
        game.close()


def door_leads_to_the_next_room(binary):
    # From the statue of room 2 a quiet walk west leads through a door to the old arena (room 6).
    game = Game(binary, saved_at(2))
    try:
        game.play()
        left = key_for("LEFT", game.read("Assets/Settings/BindingSettings.txt"))
        with game.holding(left):
            banner = game.wait_for_line(TRANSITION)
        game.wait_for_line(LOADED_ROOM, start=banner)
        # The screen clears while the hero walks in; he is drawn in his own colours again once
        # the fade is over, and stands still when the walk is done.
        arrival = game.wait_for_hero_at_rest()
        game.screenshot("door-arrival", arrival)
        assert distinct_colours(arrival) > 150, "the next room looks empty"
        output = game.output()
        assert "No door found" not in output, game.log_tail()
        assert output.count(TRANSITION) == 1, "the hero went through more than one door"
        assert output.count(LOADED_ROOM) == 2, "expected two rooms loaded:\n" + game.log_tail()
    finally:
        game.close()


def rest_at_the_statue(binary):
    """INTERACT at room 2's statue saves there and unfolds the menu; Escape folds it again."""
    game = Game(binary, saved_at(2) + "an old line that a rest rewrites away\n")
    try:
        before = game.play()
        interact = key_for("INTERACT", game.read("Assets/Settings/BindingSettings.txt"))
        game.key(interact)
        game.wait_for_line("OUI !")
        game.wait_for_file("Assets/Saves/PlayerSave.txt", lambda text: text == saved_at(2),
                           "the save rewritten with room 2's checkpoint")
        menu_size = 3 * 175 * 52 // 2
        unfolded, _ = game.wait_for_screen(lambda image: difference(before, image) > menu_size,
                                           "the menu unfolded above the statue")
        game.screenshot("rest-menu", unfolded)
        game.key("Escape")
        folded, _ = game.wait_for_screen(lambda image: difference(unfolded, image) > menu_size,
                                         "the menu folded away after Escape")
        game.screenshot("rest-folded", folded)
    finally:
        game.close()


def main(binary):
    walk_moves_the_view(binary)
    door_leads_to_the_next_room(binary)
    rest_at_the_statue(binary)
    print("hero end to end: 3 passed, 0 failed")


if __name__ == "__main__":
    main(sys.argv[1])

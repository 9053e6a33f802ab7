"""A player walks the hero with the RIGHT binding, then walks through a door into the next room."""
import subprocess
import sys
import time

from driver import Game, difference, distinct_colours, key_for

def saved_at(room):
    """A game saved at the statue of a room."""
    return ("////////////////////\nCHECKPOINT DATA :\ncheckpointID 0\nroomID %d\n"
            "////////////////////\nABILITIES DATA :\ncanDash 0\ncanRun 0\n"
            "CanCreatePlatform 0\npotionCount 1\n" % room)


# The statue of room 4: the hall below it holds a Trash on the way west to room 5.
ROOM4_SAVE = saved_at(4)
# The statue of room 2: a quiet walk west leads to the old arena (room 6).
ROOM2_SAVE = saved_at(2)


def start(binary, save=None):
    game = Game(binary, save)
    game.wait_for_line("Load Menu\n")
    game.find_window()
    game.click(200, 594)  # PLAY
    game.wait_for_line("nb of collisions : ")
    time.sleep(2.0)  # the camera settles on the hero
    return game


def walk_moves_the_view(binary):
    game = start(binary)
    try:
        right = key_for("RIGHT", game.read("Assets/Settings/BindingSettings.txt"))
        before = game.screenshot("walk-before")
        game.hold(right, 3.0)
        time.sleep(1.0)
        after = game.screenshot("walk-after")
        changed = difference(before, after)
        assert changed > 1920 * 1080 // 4, "the view hardly moved (%d pixels changed)" % changed
    finally:
        game.close()


def door_leads_to_the_next_room(binary):
    game = start(binary, ROOM2_SAVE)
    try:
        left = key_for("LEFT", game.read("Assets/Settings/BindingSettings.txt"))
        subprocess.run(["xdotool", "keydown", left])
        try:
            game.wait_for_line("TRANSITION !!!!!!!!!!!!!!!!!!!\n", timeout=40)
        finally:
            subprocess.run(["xdotool", "keyup", left])
        banner = game.output().index("TRANSITION !!!")
        deadline = time.time() + 20
        while "nb of collisions : " not in game.output()[banner:] and time.time() < deadline:
            time.sleep(0.1)
        assert "nb of collisions : " in game.output()[banner:], "no room was loaded after the door"
        time.sleep(2.0)  # walking in while the screen clears
        arrival = game.screenshot("door-arrival")
        assert distinct_colours(arrival) > 150, "the next room looks empty"
        assert "No door found" not in game.output()
    finally:
        game.close()


def rest_at_the_statue(binary):
    """INTERACT at room 2's statue saves there and unfolds the menu; Escape folds it again."""
    game = start(binary, ROOM2_SAVE + "an old line that a rest rewrites away\n")
    try:
        interact = key_for("INTERACT", game.read("Assets/Settings/BindingSettings.txt"))
        before = game.screenshot("rest-before")
        game.key(interact)
        game.wait_for_line("OUI !", timeout=10)
        time.sleep(2.0)  # unfolding, then sliding
        unfolded = game.screenshot("rest-menu")
        assert game.read("Assets/Saves/PlayerSave.txt") == ROOM2_SAVE, "the save was not rewritten"
        shown = difference(before, unfolded)
        assert shown > 3 * 175 * 52 // 2, "the menu hardly shows (%d pixels changed)" % shown
        game.key("Escape")
        time.sleep(1.5)
        folded = game.screenshot("rest-folded")
        gone = difference(unfolded, folded)
        assert gone > 3 * 175 * 52 // 2, "the menu stayed (%d pixels changed)" % gone
    finally:
        game.close()


def main(binary):
    walk_moves_the_view(binary)
    door_leads_to_the_next_room(binary)
    rest_at_the_statue(binary)
    print("hero end to end: 3 passed, 0 failed")


if __name__ == "__main__":
    main(sys.argv[1])

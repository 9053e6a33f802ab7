"""A player fights the Trash of room 2's basin with the sword and kills it.

The hero starts rested at room 2's statue with full life. East of the statue the glade steps
down into a closed basin where one Trash patrols; the room's other Trash keeps to the upper path,
out of sight. The player walks east until the Trash shows on the same floor, then fights as the
game teaches: he keeps towards it, and parries and swings over and over, so that its lunges meet
a parry and the swings that follow land while it recovers. Where it is comes from the screen
(the colours only a Trash wears); whether it fell comes from the log.

Only the pace of the presses counts against the frame rate: a press every PRESS_INTERVAL seconds
of the clock comes at least every PRESS_INTERVAL seconds of the world however fast the game runs,
and more often on a slow machine, which does no harm.
"""
import sys
import threading
import time

import numpy

from driver import (LOADED_ROOM, LOOK_INTERVAL, TRANSITION, Game, find, key_for, saved_at,
                    worn_only_by)

TRASH_DOWN = "enemy down : kind 3\n"
# A Trash drawn this far above or below the hero stands on another floor.
OTHER_FLOOR = 120
# The hero starts fighting when the Trash shows this close on his floor.
ENGAGE = 700
# Closer than this the two middles read off the screen cannot tell left from right.
OVERLAP = 40
# Between two parry-and-swing presses (s). Kept well under a quarter of a second of the world,
# past which the Trash's lunges start to slip between the parries.
PRESS_INTERVAL = 0.1
# The fight ends well inside CTest's limit of 240 s even when the world runs at a third of its
# speed.
FIGHT_DEADLINE = 150


class Presser(threading.Thread):
    """Presses PARRY and the attack button together, over and over, until stopped."""

    def __init__(self, game, parry):
        super().__init__(daemon=True)
        self.game, self.parry = game, parry
        self.stopped = threading.Event()
        self.presses = 0

    def run(self):
        while not self.stopped.is_set():
            self.game.press_key_and_click(self.parry)
            self.presses += 1
            self.stopped.wait(PRESS_INTERVAL)

    def stop(self):
        self.stopped.set()
        if self.is_alive():
            self.join()


def fight(game, keys):
    """Walks east to the Trash and fights it until the log reports it down. Returns how many
    times PARRY and the attack were pressed."""
    trash_colours = worn_only_by("Sprites/Enemies/Trash/")
    loads = game.count(LOADED_ROOM)
    deadline = time.time() + FIGHT_DEADLINE
    presser = Presser(game, keys["PARRY"])
    toward = keys["RIGHT"]  # the basin lies east of the statue
    game.key_down(toward)
    try:
        while TRASH_DOWN not in game.output():
            if game.count(LOADED_ROOM) != loads:
                game.fail("the Trash down before the hero (the room was loaded again: he fell "
                          "and rose at the statue, or left the room)")
            if time.time() > deadline:
                game.fail("%r within %d s of fighting (%d presses)"
                          % (TRASH_DOWN, FIGHT_DEADLINE, presser.presses))
            image = game.screen()
            hero, trash = game.hero(image), find(image, trash_colours)
            if hero and trash and abs(trash.y - hero.spot.y) < OTHER_FLOOR:
                dx = trash.x - hero.spot.x
                if abs(dx) < ENGAGE and not presser.is_alive():
                    presser.start()
                if abs(dx) > OVERLAP:
                    side = keys["RIGHT"] if dx > 0 else keys["LEFT"]
                    if side != toward:
                        game.key_up(toward)
                        toward = side
                        game.key_down(toward)
            time.sleep(LOOK_INTERVAL)
    finally:
        presser.stop()
        game.release_all()
    return presser.presses


def counter_width(image):
    """How wide the money counter's white digits spread (px); the gain popup under them is left
    out, so the width holds after the popup fades."""
    amount = image[25:85, 1640:1920]
    columns = numpy.flatnonzero(numpy.any(numpy.all(amount == 255, axis=-1), axis=0))
    return int(columns[-1] - columns[0] + 1) if columns.size else 0


def main(binary):
    game = Game(binary, saved_at(2))
    try:
        game.play()
        # The counter shows its "0" once the room has faded in.
        _, zero = game.wait_for_screen(counter_width, "the money counter showing 0")
        settings = game.read("Assets/Settings/BindingSettings.txt")
        keys = {action: key_for(action, settings) for action in ("LEFT", "RIGHT", "PARRY")}
        presses = fight(game, keys)
        # The hero lowers his sword beside the fallen Trash.
        game.wait_for_hero_at_rest()
        # Its last wound's red fades from the body within a second.
        trash = worn_only_by("Sprites/Enemies/Trash/")
        image, _ = game.wait_for_screen(lambda seen: find(seen, trash),
                                        "the fallen Trash in view in its own colours")
        shot = game.screenshot("fight", image)
        # The Trash's coins fly into the hero and the counter climbs from 0 to its pay of 30.
        # "30" spreads twice as wide as the "0" of the start.
        paid, _ = game.wait_for_screen(lambda seen: counter_width(seen) > 1.6 * zero > 0,
                                       "the money counter to climb to two digits after the kill")
        game.screenshot("fight-paid", paid)
        assert game.count(TRASH_DOWN) == 1, "one Trash fell, the log says:\n" + game.log_tail()
        assert TRANSITION not in game.output(), "the hero left room 2 during the fight"
        print("fight end to end: 1 passed, 0 failed (%d presses, %s)" % (presses, shot))
    finally:
        game.close()


if __name__ == "__main__":
    main(sys.argv[1])

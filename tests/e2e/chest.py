"""From a new game a player walks to the dash's chest in room 3, opens it and reads the panel.

The route is the one every new player takes: east through room 1 to the sinkhole and down into
room 2, east along its upper path into room 3, then up the ledges to the alcove where the chest
stands. The console's "/god" keeps the walk about the walking, and "/kill/enemy" clears room 3
so the climb is not pushed about.

Room 1 is walked holding RIGHT with jumps over its rocks and pits. The jumps may carry the hero
over the sinkhole; then he stands at the far end (the camera stops there, so he leaves the middle
of the screen) and walks back west without jumping, onto the cover and through it. Room 2's upper path only steps down. In room 3 the chest is in
view from the foot of the ledges: where the hero stands against it on the screen says which step
he is on, and he climbs step by step, looking again after every move.
"""
import sys
import time

import numpy

from driver import (LOADED_ROOM, REPO, TRANSITION, Game, find, key_for, packed, palette,
                    worn_only_by)

# Walking a room end to end, and climbing to the chest, each take well under half of this.
STAGE_DEADLINE = 90
# Past this the hero has left the middle of the screen: the camera stands at room 1's east end,
# beyond the sinkhole.
EAST_END_X = 1150
# A jump key held this long gives the full jump even when the world runs at half the clock.
FULL_JUMP = 0.7
WALK_SPEED = 700.0  # world pixels per second, and the view shows them one to one

# Room 3, in world pixels from the chest (column 21, on the alcove's floor, row 8): the first
# ledge spans 624 to 912 to its left, four rows down; the second 336 to 624, two rows down. On
# the screen the hero's middle is about 90 px over his feet and the chest's 40 px over its base.
FIRST_LEDGE = (624, 912)
SECOND_LEDGE = (336, 624)
FLOOR_BELOW, ON_FIRST, ON_SECOND = -430, -240, -50

# The panel's plate, 800 x 320 in the middle of the screen: its colours fill about 47000 of these
# pixels when it shows, under 2000 of the room's own.
PANEL = (slice(380, 700), slice(560, 1360))
PANEL_SHOWN = 20000


def panel_pixels(image):
    plate = numpy.array(sorted(palette(REPO + "/Assets/Sprites/ExplanationHUD/block.png")))
    return int(numpy.count_nonzero(numpy.isin(packed(image[PANEL]), plate)))


def tap_together(game, *keys):
    for key in keys:
        game.key_down(key)
    time.sleep(0.05)
    for key in reversed(keys):
        game.key_up(key)


class Pace:
    """How fast the world runs against the clock, learnt from the hero's walks: on a loaded
    machine a frame takes longer than the 1/60 s it stands for, so a key held t seconds of the
    clock acts for less than t of the world, and a jump would come out short."""

    def __init__(self):
        self.value = 1.0

    def learn(self, moved, held):
        if held > 0.04 and moved > 10:
            self.value = min(1.0, max(0.15, moved / (held * WALK_SPEED)))

    def scaled(self, seconds):
        return seconds / self.value


def walk_for(game, key, pixels):
    """Holds a key for the time the walk takes at full pace; returns how long it was held."""
    held = min(0.5, max(0.05, pixels / WALK_SPEED))
    with game.holding(key):
        time.sleep(held)
    return held


def jump(game, keys, right=False, hold=FULL_JUMP):
    if right:
        game.key_down(keys["RIGHT"])
    with game.holding(keys["JUMP"]):
        time.sleep(hold)
    game.key_up(keys["RIGHT"])


def through_room_1(game, keys):
    hero_colours = worn_only_by("Sprites/Player/Hero1")
    deadline = time.time() + STAGE_DEADLINE
    while game.count(TRANSITION) == 0:
        if time.time() > deadline:
            game.screenshot("chest-stuck-in-room-1")
            game.fail("the hero through room 1's sinkhole within %d s" % STAGE_DEADLINE)
        hero = find(game.screen(), hero_colours, minimum=20)
        if hero is not None and hero.x > EAST_END_X:
            back_to_the_sinkhole(game, keys)
        else:
            with game.holding(keys["RIGHT"]):
                jump(game, keys, hold=0.45)
                time.sleep(0.1)


def back_to_the_sinkhole(game, keys):
    """From the rocks beyond the sinkhole, west without jumping: off the rocks onto the cover,
    whose drop-through is tried on the way, and off the cover into the gap at its far side."""
    with game.holding(keys["LEFT"]):
        for _ in range(8):
            if game.count(TRANSITION):
                return
            time.sleep(0.4)
            tap_together(game, keys["DOWN"], keys["JUMP"])


def through_room_2(game, keys):
    deadline = time.time() + STAGE_DEADLINE
    with game.holding(keys["RIGHT"]):
        while game.count(TRANSITION) < 2:
            if time.time() > deadline:
                game.fail("the hero along room 2's upper path into room 3 within %d s"
                          % STAGE_DEADLINE)
            time.sleep(0.2)
    game.wait_until(lambda: game.count(LOADED_ROOM) >= 3, "room 3 loaded")
    game.wait_for_hero_at_rest()


def chest_from_hero(game, colours):
    """Where the chest stands from the hero on the screen, once two looks agree (he stands)."""
    last = None
    for _ in range(40):
        image = game.screen()
        chest = find(image, colours["chest"], minimum=20)
        hero = find(image, colours["hero"], minimum=20)
        if chest is None:  # not in view: no need to wait for the hero to stand
            return None
        seen = None if hero is None else (chest.x - hero.x, chest.y - hero.y)
        if seen and last and abs(seen[0] - last[0]) < 4 and abs(seen[1] - last[1]) < 4:
            return seen
        last = seen
        time.sleep(0.15)
    return last


def climb_to_the_chest(game, keys):
    colours = {"chest": worn_only_by("Sprites/Objects/Chest"),
               "hero": worn_only_by("Sprites/Player/Hero1")}
    deadline = time.time() + STAGE_DEADLINE
    pace = Pace()
    walked = None  # where the last walk started from the chest, and how long it was held

    def walk(key, pixels):
        nonlocal walked
        walked = (seen, walk_for(game, key, pixels))

    def jump_paced(right=False, hold=FULL_JUMP):
        nonlocal walked
        walked = None
        jump(game, keys, right, pace.scaled(hold))

    trail = []
    while True:
        if time.time() > deadline:
            game.screenshot("chest-stuck-in-room-3")
            game.fail("the hero up the ledges beside room 3's chest within %d s (the chest from "
                      "the hero, and the pace, at each look: %s)"
                      % (STAGE_DEADLINE, trail[-12:]))
        seen = chest_from_hero(game, colours)
        trail.append((seen, round(pace.value, 2)))
        if seen is None:  # the chest not in view yet: on along the rim
            walk_for(game, keys["RIGHT"], 200)
            walked = None
            continue
        dx, dy = seen
        if walked and walked[0] and abs(dy - walked[0][1]) < 20:
            pace.learn(abs(dx - walked[0][0]), walked[1])
        walked = None
        if dy < FLOOR_BELOW:  # under the ledges: below the first one, then straight up
            if dx > FIRST_LEDGE[1] - 30:
                walk(keys["RIGHT"], dx - 760)
            elif dx < FIRST_LEDGE[0] + 40:
                walk(keys["LEFT"], 760 - dx)
            else:
                jump_paced()
        elif dy < ON_FIRST:  # on the first ledge: from its right end up onto the second
            if dx > FIRST_LEDGE[0] + 80:
                walk(keys["RIGHT"], dx - FIRST_LEDGE[0] - 40)
            else:
                jump_paced(right=True, hold=0.3)
        elif dy < ON_SECOND:  # on the second ledge: up and into the alcove
            jump_paced(right=True, hold=0.35)
        elif abs(dx) >= 70:  # in the alcove: up to the chest
            walk(keys["RIGHT"] if dx > 0 else keys["LEFT"], min(abs(dx), 200))
        else:
            return


def console(game, line):
    game.key("F1")
    game.type_text(line)
    game.key("Return")


def main(binary):
    game = Game(binary)
    try:
        game.play()
        settings = game.read("Assets/Settings/BindingSettings.txt")
        keys = {action: key_for(action, settings)
                for action in ("RIGHT", "LEFT", "DOWN", "JUMP", "INTERACT")}
        console(game, "/god")
        through_room_1(game, keys)
        through_room_2(game, keys)
        console(game, "/kill/enemy")
        climb_to_the_chest(game, keys)
        game.key(keys["INTERACT"])
        time.sleep(0.5)  # only to catch the boots on their way up in the picture
        game.screenshot("chest-open")
        panel, _ = game.wait_for_screen(lambda image: panel_pixels(image) > PANEL_SHOWN,
                                        "the dash's panel shown over the room")
        game.screenshot("chest-panel", panel)
        game.wait_for_file("Assets/Saves/PlayerSave.txt", lambda text: "canDash 1\n" in text,
                           "the dash saved as owned")
        game.key(keys["JUMP"])
        game.wait_for_screen(lambda image: panel_pixels(image) < PANEL_SHOWN // 4,
                             "the panel gone after JUMP")
    finally:
        game.close()


if __name__ == "__main__":
    main(sys.argv[1])
    print("chest: ok")

"""A player rides room 12's elevator from the foot of the shaft to the top hall and leaves by the
door to room 13.

The hero starts at the shaft's foot (room 12's checkpoint point, five tiles west of the cabin).
He walks up to the cabin, hops onto its deck and interacts: the cabin rides the sixty tiles up,
the view zooms out for the long ride and back in before the top. He steps off east and walks
through the door. The game then loads room 13 (its collision count in the log) and writes the
shaft's state file with the cabin at its top stop. Screenshots of the foot, the ride and the top
go to tests/out/elevator-*.png.

Every distance is read on the screen against the lever that stands four tiles east of the
cabin's middle at each stop, both in view at the normal zoom; the lever's colours are its own.
"""
import json
import os
import sys
import time

from chest import Pace, console, walk_for
from driver import LOADED_ROOM, REPO, TRANSITION, Game, find, key_for, saved_at, worn_only_by

STATE_FILE = "Assets/Saves/Elevator/ElevatorRoom-12.txt"
# The cabin's middle from the lever of its stop, in world pixels (the view shows them 1 to 1):
# four tiles west of its post, whose knob (the only colours the lever has of its own) shows
# 48 px west of the post. The knob is small: it is looked for on every pixel.
CABIN_FROM_LEVER = -336
# Half the cabin's deck, less a margin: standing this near its middle, the hero rides along.
ON_DECK = 100
# The deck is 81 px over the floor; the hero's middle rises as much when he stands on it.
DECK_RISE = 40
# A stage of the walk takes well under this even on a loaded machine.
STAGE_DEADLINE = 90
# The zoomed-out view is twice as wide: the hero covers a quarter of the pixels.
ZOOMED_OUT, ZOOMED_IN = 0.45, 0.8


def hero_and_lever(game, colours):
    """The hero's middle from the lever's, once two looks agree (nobody moves); None while
    either is out of view."""
    last = None
    for _ in range(40):
        image = game.screen()
        hero = find(image, colours["hero"], minimum=20)
        lever = find(image, colours["lever"], step=1, minimum=20)
        seen = None if hero is None or lever is None else (hero.x - lever.x, hero.y - lever.y)
        if seen and last and abs(seen[0] - last[0]) < 4 and abs(seen[1] - last[1]) < 4:
            return seen
        last = seen
        time.sleep(0.15)
    return last


def hop(game, keys, key, pace):
    """A short hop sideways: the jump tapped, so that it stops at the hop's height."""
    game.key_down(key)
    with game.holding(keys["JUMP"]):
        time.sleep(pace.scaled(0.1))
    time.sleep(pace.scaled(0.15))
    game.key_up(key)


def into_the_cabin(game, keys, colours):
    """Walks up to the cabin and hops onto its deck; returns the hero's height from the lever on
    the floor (to tell the deck from the floor later)."""
    deadline = time.time() + STAGE_DEADLINE
    pace = Pace()
    floor = None
    trail = []
    while True:
        if time.time() > deadline:
            game.screenshot("elevator-stuck-at-the-foot")
            game.fail("the hero on the cabin's deck within %d s (the hero from the lever, and "
                      "the pace, at each look: %s)" % (STAGE_DEADLINE, trail[-12:]))
        seen = hero_and_lever(game, colours)
        trail.append((seen, round(pace.value, 2)))
        if seen is None:
            continue
        dx, dy = seen[0] - CABIN_FROM_LEVER, seen[1]
        if floor is None:
            floor = dy
        on_deck = dy < floor - DECK_RISE
        if on_deck and abs(dx) < ON_DECK:
            return floor
        key = keys["RIGHT"] if dx < 0 else keys["LEFT"]
        if on_deck:
            walk_for(game, key, abs(dx))
        elif abs(dx) > 300:  # on the floor, far from the cabin: walk up to it, and learn the pace
            held = walk_for(game, key, abs(dx) - 250)
            after = hero_and_lever(game, colours)
            if after:
                pace.learn(abs(after[0] - seen[0]), held)
        else:
            hop(game, keys, key, pace)


def zoom(game, colours, at_rest):
    """How large the hero shows against his size in the normal view (about 1, or 0.25 zoomed
    out); 0 when he is not in view."""
    hero = find(game.screen(), colours["hero"], minimum=5)
    return 0 if hero is None else hero.pixels / at_rest


def widest_view(game, colours, rest):
    """Follows the view out until it turns back in; returns the widest screen seen and how large
    the hero showed on it."""
    widest = {"image": None, "size": 1.0}

    def turned_back():
        image = game.screen()
        hero = find(image, colours["hero"], minimum=5)
        size = 0 if hero is None else hero.pixels / rest
        if 0 < size < widest["size"]:
            widest.update(image=image, size=size)
        return widest["size"] < ZOOMED_IN and size > widest["size"] + 0.08
    game.wait_until(turned_back, "the view zooming out during the ride and back in",
                    interval=0.05)
    return widest["image"], widest["size"]


def ride_up(game, keys, colours):
    """Interacts in the cabin until the ride starts: the lever sinks below the hero on the
    screen, or out of view. The interaction is only tried again while nothing moves."""
    rest = find(game.screen(), colours["hero"], minimum=20).pixels
    before = hero_and_lever(game, colours)
    for _ in range(3):
        game.key(keys["INTERACT"])

        def started():
            image = game.screen()
            hero = find(image, colours["hero"], minimum=5)
            lever = find(image, colours["lever"], step=1, minimum=20)
            return hero is not None and (lever is None or lever.y - hero.y > 40 - before[1])
        try:
            game.wait_until(started, "the cabin setting off", timeout=15, interval=0.2)
            return rest
        except AssertionError:
            continue
    game.fail("the cabin setting off after INTERACT on its deck, three times")


def room_collisions(number):
    """The collision count the game logs for a room without locked doors or elevators: one per
    collision rectangle of every tile laid in the map."""
    rooms = os.path.join(REPO, "Assets/Maps/Rooms")
    with open(os.path.join(rooms, "Room%d.json" % number)) as f:
        tmap = json.load(f)
    with open(os.path.normpath(os.path.join(rooms, tmap["tilesets"][0]["source"]))) as f:
        tileset = json.load(f)
    shapes = {t["id"]: len(t["objectgroup"]["objects"])
              for t in tileset["tiles"] if "objectgroup" in t}
    first = tmap["tilesets"][0]["firstgid"]
    return sum(shapes.get(gid - first, 0) for layer in tmap["layers"]
               if layer["type"] == "tilelayer" for gid in layer["data"] if gid)


def main(binary):
    game = Game(binary, saved_at(12))
    try:
        game.play()
        settings = game.read("Assets/Settings/BindingSettings.txt")
        keys = {action: key_for(action, settings)
                for action in ("RIGHT", "LEFT", "JUMP", "INTERACT")}
        colours = {"hero": worn_only_by("Sprites/Player/Hero1"),
                   "lever": worn_only_by("Sprites/Objects/Elevator-Lever")}
        game.wait_for_file(STATE_FILE, lambda text: "Pos ID : 0\n" in text,
                           "the cabin at the foot (stop 0) when the shaft was first entered")
        console(game, "/god")  # the slimes of the drop shaft spit at the rider
        floor = into_the_cabin(game, keys, colours)
        game.screenshot("elevator-foot")
        rest = ride_up(game, keys, colours)
        shot, wide = widest_view(game, colours, rest)
        if wide >= ZOOMED_OUT:
            game.fail("the view zoomed out for the ride (the hero drawn at half size; he showed "
                      "at least %.2f of his size)" % wide)
        game.screenshot("elevator-ride", shot)
        game.wait_until(lambda: zoom(game, colours, rest) > ZOOMED_IN,
                        "the view zoomed back in after the ride (was at %.2f)" % wide)

        def at_the_top():
            seen = hero_and_lever(game, colours)
            return (seen and abs(seen[0] - CABIN_FROM_LEVER) < ON_DECK and
                    seen[1] < floor - DECK_RISE)
        game.wait_until(at_the_top, "the cabin at the top, the hero on its deck beside the top "
                        "lever")
        game.wait_for_hero_at_rest()
        game.screenshot("elevator-top")
        deadline = time.time() + STAGE_DEADLINE
        with game.holding(keys["RIGHT"]):
            while game.count(TRANSITION) == 0:
                if time.time() > deadline:
                    game.fail("the door to room 13 taken within %d s of walking east"
                              % STAGE_DEADLINE)
                time.sleep(0.1)
        game.wait_until(lambda: game.count(LOADED_ROOM) >= 2, "the next room loaded")
        loaded = game.output().split(LOADED_ROOM)[2].split("\n")[0]
        if loaded != str(room_collisions(13)):
            game.fail("room 13 loaded, %d collisions (the second room loaded had %s)"
                      % (room_collisions(13), loaded))
        game.wait_for_file(STATE_FILE, lambda text: "Pos ID : 1\n" in text,
                           "the cabin left at the top (stop 1)")
        game.wait_for_hero_at_rest()
        size = zoom(game, colours, rest)
        if size < ZOOMED_IN:
            game.fail("room 13 at the normal zoom (the hero showed at %.2f of his size)" % size)
        game.screenshot("elevator-room-13")
    finally:
        game.close()


if __name__ == "__main__":
    main(sys.argv[1])
    print("elevator: ok")

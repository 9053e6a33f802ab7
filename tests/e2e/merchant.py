"""A player buys a potion from the blacksmith of the statue hollow (room 4).

The hero starts rested at room 4's statue with no potion kept in the save. The debug console
(F1, a typed line, Enter) gives him 600 coins; he walks east to the blacksmith, presses INTERACT,
clicks BUY in the menu that unfolds above the forge and BUY under the potion in the shop. The
potion costs 500: the game logs "potion +" and the save now keeps one potion.
"""
import sys
import time

import numpy

from driver import REPO, Game, find, key_for, packed, palette, saved_at, worn_only_by

NO_POTION_AT_ROOM_4 = saved_at(4).replace("potionCount 1\n", "potionCount 0\n")
BUTTON = numpy.array(sorted(palette(REPO + "/Assets/Sprites/WorldHUD/button.png")))
# The popup of the last gain, "+ N", right-aligned under the counter at the top right.
POPUP_BAND = (slice(70, 135), slice(1550, 1920))
# The shop lies on the screen, not in the world: the potion's BUY is centred here.
POTION_BUY = (653, 385)
WALK_DEADLINE = 30


def white_pixels(image, band):
    return int(numpy.count_nonzero(numpy.all(image[band] == 255, axis=-1)))


def button_mask(image, before):
    """The pixels that wear the button picture's colours and were not there before."""
    changed = numpy.any(image != before, axis=-1)
    return changed & numpy.isin(packed(image), BUTTON)


def add_money(game):
    """Types the console's money command and waits for the "+ 600" to show under the counter."""
    quiet = white_pixels(game.screen(), POPUP_BAND)
    game.key("F1")
    time.sleep(0.3)
    game.type_text("/add money 600")
    game.key("Return")
    game.wait_for_screen(lambda image: white_pixels(image, POPUP_BAND) > quiet + 300,
                         "the console's /add money 600 showing + 600 under the counter "
                         "(the console must exist)")


def walk_to_the_blacksmith(game, keys):
    """East until the blacksmith shows beside the hero, then short steps until the hero stands
    within his reach (his zone reaches 132 px either side of him)."""
    smith = worn_only_by("Sprites/Merchant")

    def offset(image):
        him, hero = find(image, smith), game.hero(image)
        return None if him is None or hero is None else him.x - hero.spot.x

    with game.holding(keys["RIGHT"]):
        game.wait_for_screen(lambda image: (offset(image) or 999) < 80,
                             "the hero beside the blacksmith", timeout=WALK_DEADLINE)
    for _ in range(10):
        image = game.wait_for_hero_at_rest()
        dx = offset(image)
        if dx is not None and abs(dx) < 60:
            return image
        if dx is not None:
            with game.holding(keys["RIGHT"] if dx > 0 else keys["LEFT"]):
                time.sleep(min(0.15, abs(dx) / 700))
    game.fail("the hero standing within 60 px of the blacksmith")


def unfolded(image, before):
    """The button frames that appeared, once LEAVE has slid all the way under BUY: from BUY's
    top (x1.2, selected) to LEAVE's bottom is 31 + 65 + 26 px."""
    ys, xs = numpy.nonzero(button_mask(image, before))
    if len(ys) < 6000 or ys.max() - ys.min() < 118:
        return None
    return ys, xs


def buy_button(image, before):
    """The middle of BUY once both buttons have unfolded, else None."""
    found = unfolded(image, before)
    if found is None:
        return None
    ys, xs = found
    top = ys.min()
    first = ys < top + 50  # BUY, the upper button
    return int(numpy.median(xs[first])), int(top + 31)


def settled_buy_button(game, before):
    """BUY where two looks in a row agree: the menu stands in the world, and the view may still
    be easing onto the hero who has just stopped."""
    last = None

    def steady(image):
        nonlocal last
        seen, previous = buy_button(image, before), last
        last = seen
        still = seen and previous and max(abs(seen[0] - previous[0]),
                                          abs(seen[1] - previous[1])) <= 2
        return seen if still else None

    _, spot = game.wait_for_screen(steady, "the blacksmith's BUY and LEAVE unfolded and still")
    return spot


def open_shop(game, interact, before):
    """INTERACT, then BUY in the menu over the forge; a click lost to a moving view is tried again
    where BUY stands then. Returns the screen with the shop."""
    game.key(interact)
    for _ in range(3):
        game.click(*settled_buy_button(game, before))
        try:
            shop, _ = game.wait_for_screen(shop_shown, "the shop panel with the potion's BUY",
                                           timeout=8)
            return shop
        except AssertionError:
            if buy_button(game.screen(), before) is None:
                break
    game.screenshot("merchant-no-shop")
    game.fail("the shop panel with the potion's BUY after clicking the menu's BUY")


def shop_shown(image):
    x, y = POTION_BUY
    box = image[y - 24:y + 24, x - 75:x + 75]  # the whole 144 x 43 button and its frame
    return numpy.count_nonzero(numpy.isin(packed(box), BUTTON)) > 1500


def main(binary):
    game = Game(binary, NO_POTION_AT_ROOM_4)
    try:
        game.play()
        settings = game.read("Assets/Settings/BindingSettings.txt")
        keys = {action: key_for(action, settings) for action in ("RIGHT", "LEFT", "INTERACT")}
        add_money(game)
        before = walk_to_the_blacksmith(game, keys)
        shop = open_shop(game, keys["INTERACT"], before)
        game.screenshot("shop", shop)
        bought = game.count("potion +\n")
        game.click(*POTION_BUY)
        game.wait_until(lambda: game.count("potion +\n") > bought, "the log line 'potion +'")
        game.wait_for_file("Assets/Saves/PlayerSave.txt",
                           lambda text: text.endswith("potionCount 1\n"),
                           "one potion kept")
    finally:
        game.close()


if __name__ == "__main__":
    main(sys.argv[1])
    print("merchant: ok")

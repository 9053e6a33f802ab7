"""Drives the real game binary in an X display with xdotool, as a player would.

The game runs in a scratch copy of the assets so that what it writes never touches the
repository. Screenshots go to tests/out/ for a person to look at.

Every step waits on what the game shows: its log lines, the files it writes, the picture on the
screen. Nothing waits on the clock alone, because the game may run at any frame rate: a frame
never advances the world by more than 1/60 s, so on a slow machine (software GL, a busy CPU) the
world runs slower than the clock. The converse holds everywhere: the world never runs faster than
the clock, so a key pressed every t seconds of the clock is pressed at least every t seconds of the
world.
"""
import contextlib
import glob
import os
import re
import shutil
import subprocess
import sys
import tempfile
import time

import numpy
from PIL import Image, ImageGrab

REPO = os.path.dirname(os.path.dirname(os.path.dirname(os.path.abspath(__file__))))
SHOTS = os.path.join(REPO, "tests", "out")

# Between two looks at the screen: grabbing it costs the machine that the game runs on.
LOOK_INTERVAL = 0.2
# The longest any single wait may take. The whole of a test must stay well inside CTest's limit.
PATIENCE = 60

# The sprites' scale on the screen.
SPRITE_SCALE = 3

HERO_SHEET = "Assets/Sprites/Player/Hero1.png"
HERO_ANIMATIONS = "Assets/Sprites/Player/Hero1AnimData.txt"
LOADED_ROOM = "nb of collisions : "
TRANSITION = "TRANSITION !!!!!!!!!!!!!!!!!!!\n"


class Game:
    def __init__(self, binary, save=None, prepare=None):
        """prepare(workdir), when given, changes the scratch copy before the game starts."""
        self.binary = os.path.abspath(binary)
        self.workdir = tempfile.mkdtemp(prefix="ombrith-e2e-")
        shutil.copytree(os.path.join(REPO, "Assets"), os.path.join(self.workdir, "Assets"),
                        symlinks=True)
        if save is not None:
            with open(os.path.join(self.workdir, "Assets/Saves/PlayerSave.txt"), "w") as f:
                f.write(save)
        if prepare is not None:
            prepare(self.workdir)
        self.log_path = os.path.join(self.workdir, "stdout.log")
        self.log = open(self.log_path, "w")
        self.process = subprocess.Popen([self.binary], cwd=self.workdir, stdout=self.log,
                                        stderr=subprocess.STDOUT)
        self.window = None
        self.held_keys = set()
        self.held_buttons = set()

    # --- What the game printed -------------------------------------------------------------

    def output(self):
        with open(self.log_path, "rb") as f:
            return f.read().decode("latin-1")

    def count(self, text):
        return self.output().count(text)

    def log_tail(self, lines=30):
        """The end of the log, with the sound traces (printed without line breaks) gathered."""
        text = re.sub(r"(?:type : \d+)+",
                      lambda m: "[%d sound traces]" % m.group(0).count("type :"), self.output())
        return "\n".join(text.rstrip("\n").splitlines()[-lines:])

    def fail(self, expected):
        status = self.process.poll()
        ended = "" if status is None else " (the game had ended with status %d)" % status
        shown = ""
        if status is None:
            # What the screen showed when the wait gave up, to look at beside the log.
            name = "failed-" + os.path.splitext(os.path.basename(sys.argv[0]))[0]
            shown = "\n--- the screen then: " + self.screenshot(name)
        raise AssertionError("expected %s%s%s\n--- the game's log ends with:\n%s"
                             % (expected, ended, shown, self.log_tail()))

    def wait_until(self, check, expected, timeout=PATIENCE, interval=0.1):
        """Polls check() until it gives something true and returns that; fails saying what was
        expected if the deadline passes or the game ends first."""
        deadline = time.time() + timeout
        while True:
            value = check()
            if value:
                return value
            if self.process.poll() is not None or time.time() > deadline:
                self.fail(expected + " within %d s" % timeout)
            time.sleep(interval)

    def wait_for_line(self, line, timeout=PATIENCE, start=0):
        """Waits until the log holds line after its first start characters; returns where."""
        found = self.wait_until(lambda: self.output().find(line, start) + 1,
                                "the log line %r" % line, timeout)
        return found - 1

    # --- The window and the devices --------------------------------------------------------

    def find_window(self, timeout=PATIENCE):
        def window():
            found = subprocess.run(["xdotool", "search", "--name", "^Game$"],
                                   capture_output=True, text=True).stdout.split()
            return found[-1] if found else None
        self.window = self.wait_until(window, "the game window to appear", timeout)
        # No window manager: put the window at the origin so clicks land where we aim.
        subprocess.run(["xdotool", "windowmove", "--sync", self.window, "0", "0"])
        self.wait_until(lambda: "Position: 0,0" in subprocess.run(
            ["xdotool", "getwindowgeometry", self.window], capture_output=True,
            text=True).stdout, "the game window at the top left of the screen")

    def move(self, x, y):
        subprocess.run(["xdotool", "mousemove", "--sync", str(int(x)), str(int(y))])

    def click(self, x, y):
        """A press and release at (x, y): the game reads both as events, in order, however slow
        its frames are."""
        self.move(x, y)
        subprocess.run(["xdotool", "click", "1"])

    def click_here(self, times=1):
        """Presses and releases the left button where the pointer is, times over."""
        subprocess.run(["xdotool", "click", "--repeat", str(times), "--delay", "100", "1"])

    def press_key_and_click(self, name):
        """Presses and releases a key, then the left button where the pointer is."""
        subprocess.run(["xdotool", "key", name, "click", "1"])

    def button_down(self, button=1):
        subprocess.run(["xdotool", "mousedown", str(button)])
        self.held_buttons.add(button)

    def button_up(self, button=1):
        subprocess.run(["xdotool", "mouseup", str(button)])
        self.held_buttons.discard(button)

    def key(self, name):
        subprocess.run(["xdotool", "key", name])

    def type_text(self, text):
        """Types text as the keyboard would, a character at a time."""
        subprocess.run(["xdotool", "type", "--delay", "60", text])

    def key_down(self, name):
        if name not in self.held_keys:
            subprocess.run(["xdotool", "keydown", name])
            self.held_keys.add(name)

    def key_up(self, name):
        if name in self.held_keys:
            subprocess.run(["xdotool", "keyup", name])
            self.held_keys.discard(name)

    @contextlib.contextmanager
    def holding(self, name):
        """Holds a key for the duration of a with block, releasing it whatever happens."""
        self.key_down(name)
        try:
            yield
        finally:
            self.key_up(name)

    def release_all(self):
        for name in list(self.held_keys):
            self.key_up(name)
        for button in list(self.held_buttons):
            self.button_up(button)

    # --- The screen --------------------------------------------------------------------------

    def screen(self):
        """The screen as an array of rows of RGB pixels."""
        return grab()

    def screenshot(self, name, image=None):
        """Saves the screen (or an image already grabbed) to tests/out/<name>.png."""
        os.makedirs(SHOTS, exist_ok=True)
        path = os.path.join(SHOTS, name + ".png")
        Image.fromarray(self.screen() if image is None else image).save(path)
        return path

    def wait_for_screen(self, check, expected, timeout=PATIENCE):
        """Grabs the screen until check(image) gives something true; returns (image, value)."""
        result = {}

        def look():
            image = self.screen()
            value = check(image)
            if value:
                result["found"] = (image, value)
            return value
        self.wait_until(look, expected, timeout, interval=LOOK_INTERVAL)
        return result["found"]

    def hero(self, image=None):
        """How the hero is drawn on the screen: a Pose, or None when he is not in view (or hidden
        behind something, or tinted by a fade)."""
        return pose(self.screen() if image is None else image, HERO_SHEET, HERO_ANIMATIONS)

    def wait_for_hero(self, check, expected, timeout=PATIENCE):
        """Looks at the screen until two looks in a row show the hero on two different frames of
        his animation (the world advanced in between, however slowly it runs) and
        check(previous pose, pose) holds. Returns the image of the second look and its pose."""
        last = {"pose": None}

        def holds(image):
            seen = self.hero(image)
            previous, last["pose"] = last["pose"], seen
            return (seen is not None and previous is not None and
                    (seen.state, seen.frame) != (previous.state, previous.frame) and
                    check(previous, seen) and seen)
        return self.wait_for_screen(holds, expected, timeout)

    def wait_for_hero_at_rest(self, timeout=PATIENCE):
        """Waits until the hero stands idle at the same place on the screen while his idle
        animation plays on: he stands still and the camera has caught up with him."""
        def resting(previous, seen):
            return (previous.state == seen.state == "IDLE" and
                    abs(seen.spot.x - previous.spot.x) <= 3 and
                    abs(seen.spot.y - previous.spot.y) <= 3)
        image, _ = self.wait_for_hero(resting, "the hero standing still in view", timeout)
        return image

    # --- Files ------------------------------------------------------------------------------

    def write(self, relative, text):
        with open(os.path.join(self.workdir, relative), "w") as f:
            f.write(text)

    def read(self, relative):
        with open(os.path.join(self.workdir, relative)) as f:
            return f.read()

    def wait_for_file(self, relative, check, expected, timeout=PATIENCE):
        """Rereads a file until check(text) holds; returns its text."""
        seen = {"text": None}

        def holds():
            seen["text"] = self.read(relative)
            return check(seen["text"])
        try:
            self.wait_until(holds, expected + " in " + relative, timeout)
        except AssertionError as failure:
            raise AssertionError("%s\n--- %s holds:\n%s" % (failure, relative, seen["text"]))
        return seen["text"]

    # --- Playing ----------------------------------------------------------------------------

    def play(self, at_rest=True):
        """Presses PLAY on the title menu and waits until the room is loaded and, unless told
        otherwise, the hero stands in it (seen at the normal zoom only)."""
        self.wait_for_line("Load Menu\n")
        self.find_window()
        self.click(200, 594)  # PLAY
        self.wait_for_line(LOADED_ROOM)
        return self.wait_for_hero_at_rest() if at_rest else None

    def wait_exit(self, timeout=PATIENCE):
        try:
            return self.process.wait(timeout=timeout)
        except subprocess.TimeoutExpired:
            self.fail("the game to end")
        finally:
            self.log.close()

    def close(self):
        self.release_all()
        if self.process.poll() is None:
            self.process.kill()
            self.process.wait()
        if not self.log.closed:
            self.log.close()
        shutil.rmtree(self.workdir, ignore_errors=True)


# --- Reading the screen ---------------------------------------------------------------------

def grab():
    """The whole X screen as a height x width x 3 array."""
    return numpy.asarray(ImageGrab.grab(xdisplay=os.environ.get("DISPLAY")).convert("RGB"))


def packed(image):
    pixels = image.astype(numpy.int64)
    return (pixels[..., 0] << 16) | (pixels[..., 1] << 8) | pixels[..., 2]


_palettes = {}


def palette(path):
    if path not in _palettes:
        rgba = numpy.asarray(Image.open(path).convert("RGBA"))
        _palettes[path] = set(numpy.unique(packed(rgba[rgba[..., 3] == 255][:, :3])).tolist())
    return _palettes[path]


def worn_only_by(fragment):
    """The colours that the pictures whose path holds fragment wear and no other picture of the
    game does. Sprites are drawn with their exact colours, so finding these on the screen means
    one of those pictures is drawn there."""
    pictures = glob.glob(os.path.join(REPO, "Assets", "**", "*.png"), recursive=True)
    mine, others = set(), set()
    for path in pictures:
        (mine if fragment in path.replace(os.sep, "/") else others).update(palette(path))
    colours = numpy.array(sorted(mine - others), dtype=numpy.int64)
    assert len(colours) > 0, "no colour is worn only by %s" % fragment
    return colours


class Spot:
    def __init__(self, x, y, pixels):
        self.x, self.y, self.pixels = x, y, pixels

    def __repr__(self):
        return "(%d, %d)" % (self.x, self.y)


def find(image, colours, step=SPRITE_SCALE, minimum=40, rows=None):
    """The middle (median x and y) of the pixels of the given colours, or None when fewer than
    minimum of them show. Sprites drawn at x3 are read on every third pixel; rows limits the
    search to a band of the screen."""
    top, bottom = rows if rows else (0, image.shape[0])
    sample = packed(image[top:bottom:step, ::step])
    ys, xs = numpy.nonzero(numpy.isin(sample, colours))
    if len(xs) < minimum:
        return None
    return Spot(int(numpy.median(xs)) * step, top + int(numpy.median(ys)) * step, len(xs))


class Pose:
    """A frame of a sprite sheet as drawn on the screen: the state's name, the frame, and whether
    it faces right."""
    def __init__(self, state, frame, right, match, spot):
        self.state, self.frame, self.right, self.match, self.spot = state, frame, right, match, spot

    def __repr__(self):
        return "%s %d facing %s at %s" % (self.state, self.frame, "right" if self.right else
                                          "left", self.spot)


_sheets = {}


def sheet_frames(sheet, anim_data):
    """Every frame of a sheet, read as the game reads it from its AnimData file: frames of the
    given size side by side, one row per state. Each frame is kept as the mask of the colours
    only this sheet wears, cropped to what they cover, unflipped and flipped."""
    if sheet not in _sheets:
        colours = worn_only_by(sheet)
        rgba = numpy.asarray(Image.open(os.path.join(REPO, sheet)).convert("RGBA"))
        mask = numpy.isin(packed(rgba[..., :3]), colours) & (rgba[..., 3] == 255)
        with open(os.path.join(REPO, anim_data)) as f:
            text = f.read()
        width, height = map(int, re.search(r"size : \((\d+),(\d+)\)", text).groups())
        x0, y0 = map(int, re.search(r"first Frame Position : \((\d+),(\d+)\)", text).groups())
        frames = []
        states = re.findall(r"^(.+?) \| NbFrame : (\d+)", text, re.M)
        for row, (state, count) in enumerate(states):
            for frame in range(int(count)):
                left, top = x0 + frame * width, y0 + row * height
                cut = cropped(mask[top:top + height, left:left + width])
                if cut is not None:
                    frames.append((state, frame, True, cut))
                    frames.append((state, frame, False, cut[:, ::-1]))
        _sheets[sheet] = (colours, frames)
    return _sheets[sheet]


def cropped(mask):
    ys, xs = numpy.nonzero(mask)
    if len(xs) == 0:
        return None
    return mask[ys.min():ys.max() + 1, xs.min():xs.max() + 1]


def pose(image, sheet, anim_data, least=0.8):
    """Which frame of a sheet the screen shows, matching the sprite's silhouette in the colours
    only it wears against every frame, both ways round; None if nothing matches well. Part of
    the sprite may be hidden (scenery drawn in front of it): a frame matches when nearly all that
    shows belongs to it and most of it shows."""
    colours, frames = sheet_frames(sheet, anim_data)
    sample = numpy.isin(packed(image[::SPRITE_SCALE, ::SPRITE_SCALE]), colours)
    spot = find(image, colours)
    if spot is None:
        return None
    # Only the pixels around the middle of what shows: the sprite is at most a frame wide.
    cy, cx = spot.y // SPRITE_SCALE, spot.x // SPRITE_SCALE
    shown = cropped(sample[max(cy - 80, 0):cy + 80, max(cx - 96, 0):cx + 96])
    shown_count = numpy.count_nonzero(shown)
    best = None
    for state, frame, right, mask in frames:
        if shown.shape[0] > mask.shape[0] + 2 or shown.shape[1] > mask.shape[1] + 2:
            continue
        h, w = min(mask.shape[0], shown.shape[0]), min(mask.shape[1], shown.shape[1])
        # What hides the sprite cuts its outline on one side: line up the tops and either the
        # left or the right edges.
        for a in (mask[:h, :w], mask[:h, mask.shape[1] - w:]):
            for b in (shown[:h, :w], shown[:h, shown.shape[1] - w:]):
                both = numpy.count_nonzero(a & b)
                precision = both / max(shown_count, 1)
                recall = both / max(numpy.count_nonzero(mask), 1)
                match = (precision + recall) / 2
                if precision >= 0.9 and (best is None or match > best.match):
                    best = Pose(state, frame, right, match, spot)
    return best if best is not None and best.match >= least else None


def distinct_colours(image):
    """How many different colours a screen holds: a blank or broken frame has very few."""
    return len(numpy.unique(packed(image)))


def difference(a, b):
    """How many pixels differ between two screens."""
    return int(numpy.count_nonzero(numpy.any(a != b, axis=-1)))


def png_size(path):
    """Width and height from a PNG's header."""
    with open(path, "rb") as f:
        header = f.read(24)
    return int.from_bytes(header[16:20], "big"), int.from_bytes(header[20:24], "big")


def key_for(action_line, settings_text):
    """The xdotool name of the key bound to an action in the binding settings (letters, the
    space bar and the shift keys)."""
    others = {57: "space", 38: "Shift_L", 42: "Shift_R"}
    for line in settings_text.splitlines():
        if line.startswith(action_line + " :"):
            code = int(line.split(":")[1])
            if 0 <= code < 26:
                return chr(ord("a") + code)
            if code in others:
                return others[code]
    raise AssertionError("the %s binding is neither a letter, the space bar nor a shift key"
                         % action_line)


def saved_at(room, checkpoint=0):
    """A save file of a hero who rested at a statue of a room, with no ability and one potion."""
    return ("////////////////////\nCHECKPOINT DATA :\ncheckpointID %d\nroomID %d\n"
            "////////////////////\nABILITIES DATA :\ncanDash 0\ncanRun 0\n"
            "CanCreatePlatform 0\npotionCount 1\n" % (checkpoint, room))

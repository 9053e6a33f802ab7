"""Drives the real game binary in an X display with xdotool, as a player would.

The game runs in a scratch copy of the assets so that what it writes never touches the
repository. Screenshots go to tests/out/ for a person to look at.
"""
import os
import shutil
import subprocess
import tempfile
import time

REPO = os.path.dirname(os.path.dirname(os.path.dirname(os.path.abspath(__file__))))
SHOTS = os.path.join(REPO, "tests", "out")


class Game:
    def __init__(self, binary, save=None):
        self.binary = os.path.abspath(binary)
        self.workdir = tempfile.mkdtemp(prefix="ombrith-e2e-")
        shutil.copytree(os.path.join(REPO, "Assets"), os.path.join(self.workdir, "Assets"),
                        symlinks=True)
        if save is not None:
            with open(os.path.join(self.workdir, "Assets/Saves/PlayerSave.txt"), "w") as f:
                f.write(save)
        self.log_path = os.path.join(self.workdir, "stdout.log")
        self.log = open(self.log_path, "w")
        self.process = subprocess.Popen([self.binary], cwd=self.workdir, stdout=self.log,
                                        stderr=subprocess.STDOUT)
        self.window = None

    def output(self):
        with open(self.log_path, "rb") as f:
            return f.read().decode("latin-1")

    def wait_for_line(self, line, timeout=30):
        deadline = time.time() + timeout
        while time.time() < deadline:
            if line in self.output():
                return
            if self.process.poll() is not None:
                break
            time.sleep(0.1)
        raise AssertionError("no line %r in output:\n%s" % (line, self.output()))

    def find_window(self, timeout=30):
        deadline = time.time() + timeout
        while time.time() < deadline:
            found = subprocess.run(["xdotool", "search", "--name", "^Game$"],
                                   capture_output=True, text=True).stdout.split()
            if found:
                self.window = found[-1]
                # No window manager: put the window at the origin so clicks land where we aim.
                subprocess.run(["xdotool", "windowmove", "--sync", self.window, "0", "0"])
                time.sleep(0.5)
                return
            time.sleep(0.2)
        raise AssertionError("the game window never appeared")

    def move(self, x, y):
        subprocess.run(["xdotool", "mousemove", "--sync", str(int(x)), str(int(y))])
        time.sleep(0.15)

    def click(self, x, y):
        self.move(x, y)
        subprocess.run(["xdotool", "click", "1"])
        time.sleep(0.4)

    def drag(self, x0, y0, x1, y1):
        self.move(x0, y0)
        subprocess.run(["xdotool", "mousedown", "1"])
        time.sleep(0.2)
        self.move(x0 + 1, y0)  # grabbing happens on a move over the handle with the button held
        steps = 8
        for i in range(1, steps + 1):
            self.move(x0 + (x1 - x0) * i / steps, y0 + (y1 - y0) * i / steps)
        subprocess.run(["xdotool", "mouseup", "1"])
        time.sleep(0.2)

    def key(self, name):
        subprocess.run(["xdotool", "key", name])
        time.sleep(0.4)

    def hold(self, name, seconds):
        subprocess.run(["xdotool", "keydown", name])
        time.sleep(seconds)
        subprocess.run(["xdotool", "keyup", name])

    def write(self, relative, text):
        with open(os.path.join(self.workdir, relative), "w") as f:
            f.write(text)

    def screenshot(self, name):
        os.makedirs(SHOTS, exist_ok=True)
        path = os.path.join(SHOTS, name + ".png")
        subprocess.run(["import", "-window", "root", "-crop", "1920x1080+0+0", path], check=True)
        return path

    def read(self, relative):
        with open(os.path.join(self.workdir, relative)) as f:
            return f.read()

    def wait_exit(self, timeout=20):
        try:
            return self.process.wait(timeout=timeout)
        finally:
            self.log.close()

    def close(self):
        if self.process.poll() is None:
            self.process.kill()
            self.process.wait()
        shutil.rmtree(self.workdir, ignore_errors=True)


def png_size(path):
    """Width and height from a PNG's header."""
    with open(path, "rb") as f:
        header = f.read(24)
    return int.from_bytes(header[16:20], "big"), int.from_bytes(header[20:24], "big")


def distinct_colours(path):
    """How many different colours a screenshot holds: a blank or broken frame has very few."""
    out = subprocess.run(["convert", path, "-format", "%k", "info:"], capture_output=True,
                         text=True, check=True).stdout
    return int(out.strip())


def difference(a, b):
    """How many pixels differ between two screenshots."""
    out = subprocess.run(["compare", "-metric", "AE", a, b, "null:"], capture_output=True,
                         text=True).stderr
    return int(float(out.split()[0]))


def key_for(action_line, settings_text):
    """The xdotool name of the key bound to an action in the binding settings (letters only)."""
    for line in settings_text.splitlines():
        if line.startswith(action_line + " :"):
            code = int(line.split(":")[1])
            if 0 <= code < 26:
                return chr(ord("a") + code)
    raise AssertionError("the %s binding is not a letter key" % action_line)

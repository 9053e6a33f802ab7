"""Shared helpers for the generator tests: the repository's committed pictures, read as the game
reads them (8-bit RGBA)."""
from pathlib import Path

import numpy as np
from PIL import Image

ROOT = Path(__file__).resolve().parents[2]


def picture(rel):
    """A committed picture under the repository root as a uint8 (H, W, 4) array."""
    path = ROOT / rel
    if not path.is_file():
        raise AssertionError(f"missing: {rel}")
    img = Image.open(path)
    if img.mode != "RGBA":
        raise AssertionError(f"{rel} is {img.mode}, not 8-bit RGBA")
    return np.array(img)


def opaque(img):
    return img[..., 3] == 255


def luminance(rgb):
    rgb = np.asarray(rgb, float)
    return 0.299 * rgb[..., 0] + 0.587 * rgb[..., 1] + 0.114 * rgb[..., 2]


def bbox(mask):
    """(top, bottom, left, right) of a mask's set pixels, inclusive."""
    ys, xs = np.nonzero(mask)
    return ys.min(), ys.max(), xs.min(), xs.max()

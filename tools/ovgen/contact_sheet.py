"""docs/contact_sheet.png: every picture under Assets/Sprites at its in-game scale, labelled.

Pictures are scaled with the same nearest sampling an unsmoothed SFML sprite uses. Anything too
wide for the sheet is halved until it fits, and its label says so.
"""
import numpy as np
from PIL import Image, ImageDraw, ImageFont

from . import pixel as px

SHEET_W, PAD, LABEL_H = 1400, 16, 22
BACKGROUND, CELL, TEXT = (30, 30, 34, 255), (42, 42, 48, 255), (210, 205, 190, 255)
GAME_SCALE = {  # path under Assets/Sprites -> scale the game draws it at; anything else is drawn at 3
    "Menu/GameMenu.png": 1.0, "Menu/ButtonSelectorLeft.png": 1.5, "Menu/ButtonSelectorRight.png": 1.5,
    "Settings/bar.png": 1.0, "Settings/filler.png": 1.0, "Settings/button.png": 1.0,
    "Settings/windowSelect.png": 2.0, "Logo/LogoStudio.png": 0.1, "Logo/LogoLumorra.png": 0.2,
    "HUD/Player/vignette.png": 1.0,
    "ExplanationHUD/block.png": 1.25, "ExplanationHUD/BOTTE.png": 4.0,
    "ExplanationHUD/BOTTE AILESRecovered.png": 4.0, "Shop/Potion.png": 1.75, "Shop/AttackUp.png": 1.75,
    "Minimap/Teleport/CheckpointIcon.png": 0.55, "MiniMap/Teleport/CheckpointIcon.png": 1.0,
    "Minimap/Teleport/Player.png": 1.0,
}
# The map's room pictures are renders of the rooms, shown in docs/map_preview.png instead.
LEFT_OUT = ("Minimap/Rooms/",)
# shown smaller than in game, to keep the sheet compact
SHEET_SCALE = {"Menu/GameMenu.png": 0.5, "HUD/Player/vignette.png": 0.25}


def _entries(root):
    sprites = root / "Assets" / "Sprites"
    for path in sorted(sprites.rglob("*.png")):
        rel = path.relative_to(sprites).as_posix()
        if rel.startswith(LEFT_OUT):
            continue
        game = GAME_SCALE.get(rel, 3.0)
        shown = SHEET_SCALE.get(rel, game)
        img = np.array(Image.open(path).convert("RGBA"))
        while img.shape[1] * shown > SHEET_W - 2 * PAD:
            shown /= 2
        label = f"{rel}  x{game:g}"
        if shown != game:
            label += f" (shown x{shown:g})"
        yield label, px.scale_nearest(img, shown)


def _layout(items, font):
    """Shelf packing: left to right, a new row when the next picture does not fit."""
    x, y, row_h, placed = PAD, PAD, 0, []
    for label, img in items:
        w = max(img.shape[1], int(font.getlength(label)))
        h = img.shape[0] + LABEL_H
        if x + w > SHEET_W - PAD and x > PAD:
            x, y, row_h = PAD, y + row_h + PAD, 0
        placed.append((x, y, label, img))
        x, row_h = x + w + PAD, max(row_h, h)
    return placed, y + row_h + PAD


def generate(out):
    font = ImageFont.truetype(str(out / "Assets/Fonts/ButtonFont2.ttf"), 13)
    placed, height = _layout(list(_entries(out)), font)
    sheet = Image.new("RGBA", (SHEET_W, height), BACKGROUND)
    draw = ImageDraw.Draw(sheet)
    for x, y, label, img in placed:
        draw.rectangle([x, y + LABEL_H, x + img.shape[1] - 1, y + LABEL_H + img.shape[0] - 1], CELL)
        sheet.alpha_composite(Image.fromarray(img, "RGBA"), (x, y + LABEL_H))
        draw.text((x, y + 3), label, font=font, fill=TEXT)
    return [px.save_png(np.array(sheet), out / "docs/contact_sheet.png")]

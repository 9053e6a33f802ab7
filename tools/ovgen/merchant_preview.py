"""docs/merchant_preview.png: the blacksmith, the shop and the ability panel as the game shows them.

From the top:
1. the blacksmith's twelve frames x3, numbered, the frame the anvil rings on marked;
2. a 1920 x 1080 screen of the statue hollow's forge: the blacksmith at his point, the hero beside
   him, the merchant menu open (BUY selected, x1.2) 250 px left of and 200 px above his point, and
   the shop panel over it all: the 1440 x 810 black panel (alpha 200) centred on the screen, the
   headings "ITEMS : " and "SKILLS : " (size 63), the potion and the weapon upgrade x1.75 from
   their left middle at (340, 355) and (1060, 355), each name (48) and price (30) right of its
   icon and its BUY button (144 x 43.2, button.png) under the price;
3. a 1920 x 1080 screen with the ability panel open for the dash: block.png x1.25 centred, the
   icon x4 at (block left + 50, block top + 30), the title (55) right of it, the description (25)
   70 px lower, ending with the key bound to the dash;
4. the panels of the run and of the cloud (its icon the shop's upgrade, x3.5), cut from the same
   screen.
Reads what the other generators wrote, so make_assets runs it after them. Texts use the game's
font at the game's sizes and origins (`hud_preview.draw_text`).
"""
import numpy as np
from PIL import Image, ImageDraw, ImageFont

from . import blacksmith as bs
from . import hud_preview as hp
from . import panels
from . import pixel as px

S = 3
SCREEN = (1920, 1080)
PANEL = (240, 135, 1440, 810)               # the shop's background: left, top, width, height
SHOP_ICON_SCALE = 1.75
ABILITIES = [  # title, icon, scale, description (the key name is appended)
    ("Dash", "Assets/Sprites/ExplanationHUD/BOTTE.png", 4.0,
     "Quickly cover a short distance \n\n\nPress : RT / "),
    ("Run", "Assets/Sprites/ExplanationHUD/BOTTE AILESRecovered.png", 4.0,
     "Run right after performing a dash.\n\n\nMaintain : RT / "),
    ("Cloud Creation", "Assets/Sprites/Shop/AttackUp.png", 3.5,
     "Create a small cloud while in the air.\n\n\nPress :  LT / "),
]
KEYS = ("L Shift", "L Shift", "F")          # the shipped bindings of DASH, DASH, CLOUD CREATION


def sprite(canvas, img, pos, origin, scale):
    """An unsmoothed sprite: `origin` in texture px lands on `pos` in screen px."""
    big = px.scale_nearest(img, scale) if scale != int(scale) else px.upscale(img, int(scale))
    canvas.alpha_composite(Image.fromarray(big), (int(round(pos[0] - origin[0] * scale)),
                                                  int(round(pos[1] - origin[1] * scale))))
    return (pos[0] - origin[0] * scale, pos[1] - origin[1] * scale,
            img.shape[1] * scale, img.shape[0] * scale)


def text_lines(canvas, font, text, size, pos):
    """A multi-line white text with origin (0, 0): each line hangs from a baseline one character
    size below the line's top, lines one font line-spacing apart."""
    f = ImageFont.truetype(str(font), size)
    spacing = f.font.height
    draw = ImageDraw.Draw(canvas)
    for i, line in enumerate(text.split("\n")):
        if line:
            draw.text((pos[0], pos[1] + size + i * spacing), line, font=f, fill=(255, 255, 255, 255),
                      anchor="ls")


def button(canvas, out, size, pos, label, text_size, scale=1.0):
    """A button of the game's helper: the texture stretched on a rectangle centred on `pos`, the
    label with origin (0.5, 0.8) on the same point."""
    tex = Image.open(out / "Assets/Sprites/WorldHUD/button.png").convert("RGBA")
    w, h = int(round(size[0] * scale)), int(round(size[1] * scale))
    canvas.alpha_composite(tex.resize((w, h), Image.NEAREST), (int(round(pos[0] - w / 2)),
                                                               int(round(pos[1] - h / 2))))
    hp.draw_text(canvas, out / "Assets/Fonts/alagard.ttf", label, text_size, pos, (0.5, 0.8), scale)


# ---------------------------------------------------------------- the frames


def frames_strip(out, frames):
    cols, pad, label = 5, 10, 28
    cw, ch = bs.FW * S, bs.FH * S
    rows = (len(frames) + cols - 1) // cols
    img = Image.new("RGBA", (SCREEN[0], rows * (ch + label + pad) + pad), (18, 20, 26, 255))
    draw = ImageDraw.Draw(img)
    font = ImageFont.truetype(str(out / "Assets/Fonts/ButtonFont2.ttf"), 18)
    x0 = (SCREEN[0] - cols * (cw + pad) + pad) // 2
    for i, f in enumerate(frames):
        r, c = divmod(i, cols)
        x, y = x0 + c * (cw + pad), pad + r * (ch + label + pad)
        strike = i == bs.STRIKE
        draw.text((x + 4, y + 4), f"{i}" + ("  the anvil rings" if strike else ""), font=font,
                  fill=(245, 210, 114, 255) if strike else (200, 196, 184, 255))
        draw.rectangle([x, y + label, x + cw - 1, y + label + ch - 1], (34, 38, 52, 255),
                       outline=(200, 60, 50, 255) if strike else None)
        img.alpha_composite(Image.fromarray(px.upscale(f, S)), (x, y + label))
    return img


# ---------------------------------------------------------------- the forge with the shop open


def forge(out, smith_frame):
    """The statue hollow's forge: the room x3 with the blacksmith and the hero."""
    floor = hp.GROUND * 32
    view = hp.room(out, "Forest", 4, deco=((2, 0), (14, 4)))
    shot = hp.screen(view)
    merchant = (430 * S, floor * S)
    sprite(shot, smith_frame, merchant, bs.ORIGIN, S)
    hero = hp.hero_idle(out)
    sprite(shot, hero, (merchant[0] - 120, merchant[1]), (hero.shape[1] / 2, hero.shape[0]), S)
    return shot, merchant


def merchant_menu(shot, out, merchant):
    ax, ay = merchant[0] - 250, merchant[1] - 200
    button(shot, out, (175, 52), (ax, ay), "BUY", 25, 1.2)
    button(shot, out, (175, 52), (ax, ay + 65), "LEAVE", 25, 1.0)


def shop(shot, out):
    left, top, w, h = PANEL
    layer = Image.new("RGBA", SCREEN, (0, 0, 0, 0))
    ImageDraw.Draw(layer).rectangle([left, top, left + w - 1, top + h - 1], fill=(0, 0, 0, 200))
    font = out / "Assets/Fonts/alagard.ttf"
    hp.draw_text(layer, font, "ITEMS : ", 63, (left + 100, top + 100), (0.0, 0.8))
    hp.draw_text(layer, font, "SKILLS : ", 63, (left + w / 2 + 100, top + 100), (0.0, 0.85))
    goods = (("Assets/Sprites/Shop/Potion.png", "POTION", 500, (left + 100, top + 220)),
             ("Assets/Sprites/Shop/AttackUp.png", "WEAPON DAMAGE +", 500, (left + w / 2 + 100, top + 220)))
    for rel, name, price, pos in goods:
        icon = hp.load(out, rel)
        L, T, W, H = sprite(layer, icon, pos, (0, icon.shape[0] * 0.5), SHOP_ICON_SCALE)
        hp.draw_text(layer, font, name, 48, (L + W + 25, T), (0.0, 0.0))
        hp.draw_text(layer, font, str(price), 30, (L + W + 25, T + H / 2), (0.0, 0.0))
        button(layer, out, (144, 43.2), (L + W + 250, T + H / 2 + 30), "BUY", 30)
    shot.alpha_composite(layer)


# ---------------------------------------------------------------- the ability panel


def ability_panel(shot, out, ability):
    """The panel as the game composes it for one ability; returns the block's screen rectangle."""
    title, icon_rel, scale, text = ABILITIES[ability]
    block = hp.load(out, "Assets/Sprites/ExplanationHUD/block.png")
    bl, bt, bw, bh = sprite(shot, block, (960, 540), (block.shape[1] / 2, block.shape[0] / 2),
                            panels.BLOCK_SCALE)
    icon = hp.load(out, icon_rel)
    il, it, iw, ih = sprite(shot, icon, (bl + 50, bt + 30), (0, 0), scale)
    font = out / "Assets/Fonts/alagard.ttf"
    text_lines(shot, font, title, 55, (il + iw + 25, it))
    text_lines(shot, font, text + KEYS[ability], 25, (il + iw + 25, it + 70))
    return bl, bt, bw, bh


def preview(out):
    sheet = hp.load(out, "Assets/Sprites/Merchant/blackSmith.png")
    frames = [sheet[:, i * bs.FW:(i + 1) * bs.FW] for i in range(sheet.shape[1] // bs.FW)]
    parts = [frames_strip(out, frames)]
    shot, merchant = forge(out, frames[0])
    merchant_menu(shot, out, merchant)
    shop(shot, out)
    parts.append(shot)
    shot, _ = forge(out, frames[bs.STRIKE])
    ability_panel(shot, out, 0)
    parts.append(shot)
    crops = []
    for k in (1, 2):
        shot, _ = forge(out, frames[2])
        bl, bt, bw, bh = ability_panel(shot, out, k)
        crops.append(shot.crop((int(bl) - 40, int(bt) - 30, int(bl + bw) + 40, int(bt + bh) + 30)))
    row = Image.new("RGBA", (SCREEN[0], crops[0].height + 20), (18, 20, 26, 255))
    x = (SCREEN[0] - sum(c.width for c in crops) - 20) // 2
    for c in crops:
        row.alpha_composite(c, (x, 10))
        x += c.width + 20
    parts.append(row)
    sheet = Image.new("RGBA", (SCREEN[0], sum(p.height for p in parts)), (18, 20, 26, 255))
    y = 0
    for p in parts:
        sheet.alpha_composite(p, (0, y))
        y += p.height
    return np.array(sheet)


def generate(out):
    return [px.save_png(preview(out), out / "docs/merchant_preview.png")]

"""docs/hud_preview.png and docs/statue_preview.png: the HUD and the statues as the game shows them.

hud_preview.png stacks three 1920 x 1080 screens, each a small room (the region's parallax layers,
a floor of its tileset, the hero, a statue, coins) drawn x3 with the HUD composed over it exactly
where the game puts each piece:
  1. forest, life 100, the flask full (3 of 3), the hero at the statue with its outline showing;
  2. city, life 55 just after a hit (piece 2's lost layer still trailing), the flask at 2 of 3,
     coins flying in and the "+ 60" popup under the counter;
  3. forest, life 20 (piece 1 trailing), the vignette at the top of its pulse, the flask empty.
statue_preview.png shows both statues x3 on their region, plain and highlighted, the hero beside.

Everything is read back from the files the other generators wrote under the same output root, so
make_assets runs this after them. Texts use the game's font at the game's sizes and origins.
"""
import numpy as np
from PIL import Image, ImageDraw, ImageFont

from . import background_catalog as bgc
from . import backgrounds
from . import hud
from . import pixel as px
from . import tile_catalog as tc

W, H, S = 640, 360, 3               # native room view, shown x3
GROUND = 8                          # first tile row of the floor
HERO_FRAME = (96, 80)


def load(out, rel):
    return np.array(Image.open(out / rel).convert("RGBA"))


def room(out, region, seed, statue_x=None, deco=()):
    """A native 640 x 360 view: parallax layers, a tiled floor with a little decoration."""
    layers = {name: load(out, bgc.asset_path(region, name)) for name, _, _ in bgc.LAYERS}
    view = Image.fromarray(backgrounds.compose(layers, {"near": 90 * seed, "mid": 60 * seed,
                                                        "far": 30 * seed, "sky": 7 * seed}))
    tiles = load(out, f"Assets/Maps/Tilesets/{region}.png")
    rng = np.random.RandomState(seed)

    def tile(i):
        r, c = divmod(i, tc.COLUMNS)
        return Image.fromarray(tiles[r * tc.TILE:(r + 1) * tc.TILE, c * tc.TILE:(c + 1) * tc.TILE])

    cols, rows = W // tc.TILE, H // tc.TILE + 1

    def solid(x, y):
        return y >= GROUND or x < 0 or x >= cols

    for y in range(GROUND, rows):
        for x in range(cols):
            view.alpha_composite(tile(tc.terrain_tile(solid, x, y, lambda n: rng.randint(n))),
                                 (x * tc.TILE, y * tc.TILE))
    for x, k in deco:
        view.alpha_composite(tile(tc.DECO_GROUND[k]), (x * tc.TILE, (GROUND - 1) * tc.TILE))
    return view


def put_bottom_centre(view, img, x, y):
    view.alpha_composite(Image.fromarray(img), (int(x - img.shape[1] // 2), int(y - img.shape[0])))


def hero_idle(out, frame=0):
    sheet = load(out, "Assets/Sprites/Player/Hero1.png")
    fw, fh = HERO_FRAME
    return sheet[0:fh, frame * fw:(frame + 1) * fw]


# ---------------------------------------------------------------- SFML-like HUD drawing


def draw_sprite(canvas, img, pos, origin=(0, 0), colour_alpha=255):
    """Draw a texture x3 on the 1920 x 1080 canvas: position minus origin (texture px x3)."""
    big = px.upscale(img, S).copy()
    if colour_alpha != 255:
        big[..., 3] = (big[..., 3].astype(int) * colour_alpha // 255).astype(np.uint8)
    canvas.alpha_composite(Image.fromarray(big), (int(round(pos[0] - origin[0] * S)),
                                                  int(round(pos[1] - origin[1] * S))))


def draw_text(canvas, font, text, size, pos, factor=(0.5, 0.5), scale=1.0):
    """A white text placed like the game's: its origin is `factor` times its bounds' size (the
    bounds' own offset is not subtracted), and its glyphs hang from a baseline one character
    size below the text's top, as SFML lays them out."""
    f = ImageFont.truetype(str(font), max(1, int(round(size * scale))))
    size = size * scale
    x0, y0, x1, y1 = f.getbbox(text, anchor="ls")
    w, h = x1 - x0, y1 - y0
    left = pos[0] - w * factor[0]                # the pen starts at the bounds' left
    base = pos[1] - h * factor[1] + size         # the baseline lies one size below the top
    ImageDraw.Draw(canvas).text((left, base), text, font=f, fill=(255, 255, 255, 255), anchor="ls")


def life_widths(life):
    """The widths (texture px) the game gives the three fills for a life value."""
    p1 = p2 = p3 = 0
    if life >= 71:
        p1, p2, p3 = hud.PIECE1_W, hud.PIECE_W, int(hud.PIECE_W * (life - 71) / 29)
    elif life >= 41:
        p1, p2 = hud.PIECE1_W, int(hud.PIECE_W * (life - 41) / 29)
    else:
        p1 = int(hud.PIECE1_W * life / 40)
    if life >= 100:
        p3 = hud.PIECE_W
    return p1, p2, p3


def draw_hud(canvas, out, life, lost, flask, money, popup=None, vignette_alpha=0):
    """The HUD in the game's order: container, each piece's lost layer then fill, the flask,
    the coin icon, the amount, the popup, the vignette. `lost` gives the lost layers' widths,
    `flask` the heal clip and its frame (clip 0 is the full flask at the sheet's first frame,
    clip k > 0 is sheet row k - 1)."""
    pics = {name: load(out, f"Assets/Sprites/HUD/Player/{name}.png")
            for name in ("LifeContainer", "LifeBar40", "LifeBar40Lost", "LifeBar30", "LifeBarLost")}
    draw_sprite(canvas, pics["LifeContainer"], hud.CONTAINER_POS)
    fills = life_widths(life)
    for k, x in enumerate(hud.PIECE_X):
        fill, lost_tex = (pics["LifeBar40"], pics["LifeBar40Lost"]) if k == 0 else \
            (pics["LifeBar30"], pics["LifeBarLost"])
        if lost[k] > 0:
            draw_sprite(canvas, lost_tex[:, :lost[k]], (x, hud.BAR_POS[1]))
        if fills[k] > 0:
            draw_sprite(canvas, fill[:, :fills[k]], (x, hud.BAR_POS[1]))
    sheet = load(out, "Assets/Sprites/HUD/Player/HealBar/HealSheet.png")
    clip, col = flask
    row = max(clip - 1, 0)
    fr = sheet[row * hud.FRAME_H:(row + 1) * hud.FRAME_H, col * hud.FRAME_W:(col + 1) * hud.FRAME_W]
    draw_sprite(canvas, fr, hud.FLASK_POS)
    icon = load(out, "Assets/Sprites/HUD/Score/hud piece.png")
    draw_sprite(canvas, icon, hud.COIN_POS, (icon.shape[1] / 2, icon.shape[0] / 2))
    font = out / "Assets/Fonts/alagard.ttf"
    draw_text(canvas, font, str(money), 72, (1820, 31))
    if popup:
        draw_text(canvas, font, popup, 60, (1790, 101))
    if vignette_alpha:
        vig = load(out, "Assets/Sprites/HUD/Player/vignette.png")
        vig[..., 3] = (vig[..., 3].astype(int) * vignette_alpha // 255).astype(np.uint8)
        canvas.alpha_composite(Image.fromarray(vig))


def screen(view):
    return Image.fromarray(px.upscale(np.array(view), S))


# ---------------------------------------------------------------- the two pictures


def hud_preview(out):
    hero = hero_idle(out)
    statue = {r: load(out, f"Assets/Sprites/Objects/Checkpoint/{r}-Statue.png") for r in ("Forest", "City")}
    outline = {r: load(out, f"Assets/Sprites/Objects/Checkpoint/{r}-StatueOutline.png")
               for r in ("Forest", "City")}
    small = load(out, "Assets/Sprites/Objects/small piece.png")
    big = load(out, "Assets/Sprites/Objects/big piece.png")
    floor = GROUND * tc.TILE
    shots = []

    # 1. forest, full life, resting at the statue
    v = room(out, "Forest", 1, deco=((2, 0), (5, 4), (13, 1), (17, 6)))
    put_bottom_centre(v, outline["Forest"], 300, floor)
    put_bottom_centre(v, statue["Forest"], 300, floor)
    put_bottom_centre(v, hero, 352, floor)
    c = screen(v)
    draw_hud(c, out, 100, (hud.PIECE1_W, hud.PIECE_W, hud.PIECE_W), (0, 0), 0)
    shots.append(c)

    # 2. city, life 55 after a hit from 70: coins of the kill flying to the hero
    v = room(out, "City", 2, deco=((3, 2), (9, 5), (15, 3)))
    put_bottom_centre(v, statue["City"], 110, floor)
    put_bottom_centre(v, hero, 300, floor)
    for x, y, k in ((360, 226, 1), (392, 204, 0), (420, 238, 0), (338, 196, 0), (404, 180, 1)):
        put_bottom_centre(v, big if k else small, x, y)
    c = screen(v)
    draw_hud(c, out, 55, (hud.PIECE1_W, hud.PIECE_W, 0), (4, 4), 250, popup="+ 60")
    shots.append(c)

    # 3. forest, life 20 after a hit from 35: the vignette pulses at its strongest
    v = room(out, "Forest", 3, deco=((4, 3), (11, 7), (16, 2)))
    put_bottom_centre(v, statue["Forest"], 520, floor)
    put_bottom_centre(v, hero, 250, floor)
    c = screen(v)
    draw_hud(c, out, 20, (int(hud.PIECE1_W * 35 / 40), 0, 0), (6, 7), 1250,
             vignette_alpha=int(abs(20 / 40 - 1) * 255))
    shots.append(c)
    sheet = Image.new("RGBA", (W * S, H * S * len(shots)))
    for i, shot in enumerate(shots):
        sheet.alpha_composite(shot, (0, i * H * S))
    return np.array(sheet)


MENU_LABELS = ("TELEPORT", "SAVE", "LEAVE")
MENU_SIZE = (175, 52)


def checkpoint_menu(canvas, out, statue_pos, selected=0):
    """The open rest menu in world px: three buttons textured with WorldHUD/button.png from
    (statue x + 280, statue y - 365) downwards every 65 px, the selected one at x1.2."""
    tex = Image.open(out / "Assets/Sprites/WorldHUD/button.png").convert("RGBA")
    font = out / "Assets/Fonts/alagard.ttf"
    ax, ay = statue_pos[0] + 280, statue_pos[1] - 365
    for i, label in enumerate(MENU_LABELS):
        k = 1.2 if i == selected else 1.0
        w, h = int(round(MENU_SIZE[0] * k)), int(round(MENU_SIZE[1] * k))
        cx, cy = ax, ay + 65 * i
        canvas.alpha_composite(tex.resize((w, h), Image.NEAREST),
                               (int(round(cx - w / 2)), int(round(cy - h / 2))))
        draw_text(canvas, font, label, 25, (cx, cy), (0.5, 0.8), k)


def statue_preview(out):
    """Each region at x3: the statue alone; the statue highlighted with the hero touching it and
    the rest menu open above it (TELEPORT selected)."""
    hero = hero_idle(out)
    floor = GROUND * tc.TILE
    top, bottom = floor - 150, floor + 16
    shots = []
    for i, region in enumerate(("Forest", "City")):
        st = load(out, f"Assets/Sprites/Objects/Checkpoint/{region}-Statue.png")
        ol = load(out, f"Assets/Sprites/Objects/Checkpoint/{region}-StatueOutline.png")
        v = room(out, region, 5 + i)
        put_bottom_centre(v, st, 110, floor)
        put_bottom_centre(v, ol, 300, floor)
        put_bottom_centre(v, st, 300, floor)
        put_bottom_centre(v, hero, 342, floor)
        c = screen(v)
        checkpoint_menu(c, out, (300 * S, floor * S))
        shots.append(np.array(c)[top * S:bottom * S])
    return np.concatenate(shots, axis=0)


def generate(out):
    return [px.save_png(hud_preview(out), out / "docs/hud_preview.png"),
            px.save_png(statue_preview(out), out / "docs/statue_preview.png")]

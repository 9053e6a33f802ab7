#!/usr/bin/env python3
"""Generate every content file of Ombrith Valkesh.

    /usr/bin/python3 tools/make_assets.py [--out DIR]

DIR defaults to the repository root. Output is deterministic: the same bytes on every run.
Each generator module exposes generate(out: Path) -> list of written paths; add new ones to
GENERATORS (the contact sheet runs last because it shows what the others wrote).
"""
import argparse
import sys
from pathlib import Path

sys.dont_write_bytecode = True  # keep tools/ free of __pycache__
sys.path.insert(0, str(Path(__file__).resolve().parent))

from ovgen import (backgrounds, boss_hud, coins, contact_sheet, doors, fonts, frog, fx, hero, hud,  # noqa: E402
                   hud_preview, logos, menu_art, music, nomad, plant, rooms, sfx, slime, spinner, statues,
                   tilesets, trash)
from ovgen import (blacksmith, chests, cloud, elevator_art, goddess, king, knight, merchant_preview,  # noqa: E402
                   minimap, panels)

ROOT = Path(__file__).resolve().parent.parent
GENERATORS = [fonts, menu_art, logos, backgrounds, music, rooms, hero, sfx, tilesets, spinner, trash, fx, doors,
              statues, coins, hud, nomad, boss_hud, hud_preview, slime, frog, plant, chests, cloud, panels,
              blacksmith, merchant_preview, knight, elevator_art, king, goddess, minimap, contact_sheet]


def make_all(out):
    """Run every generator into `out`; return the written files relative to it, sorted."""
    out = Path(out)
    written = []
    for gen in GENERATORS:
        written += gen.generate(out)
    return sorted(p.relative_to(out).as_posix() for p in written)


def main():
    ap = argparse.ArgumentParser(description=__doc__.splitlines()[1])
    ap.add_argument("--out", default=str(ROOT), help="output root (default: the repository root)")
    args = ap.parse_args()
    files = make_all(args.out)
    for f in files:
        print(f)
    print(f"{len(files)} files written under {args.out}")


if __name__ == "__main__":
    main()

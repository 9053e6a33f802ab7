"""Fonts: copied from Debian font packages under the names the game loads, with their licences.

alagard.ttf     <- Cardo Bold (fonts-cardo), David J. Perry, SIL Open Font License 1.1
ButtonFont2.ttf <- DejaVu Sans Mono (fonts-dejavu-core), Bitstream Vera licence + public domain
"""
import sys
from pathlib import Path

FONTS = [  # (Debian package, source file, licence source, target font, target licence)
    ("fonts-cardo", "/usr/share/fonts/truetype/cardo/Cardob101.ttf",
     "/usr/share/doc/fonts-cardo/copyright", "Assets/Fonts/alagard.ttf", "Assets/Fonts/Cardo-OFL.txt"),
    ("fonts-dejavu-core", "/usr/share/fonts/truetype/dejavu/DejaVuSansMono.ttf",
     "/usr/share/doc/fonts-dejavu-core/copyright", "Assets/Fonts/ButtonFont2.ttf",
     "Assets/Fonts/DejaVu-LICENSE.txt"),
]


def _read(path, package):
    p = Path(path)
    if not p.is_file():
        sys.exit(f"error: {path} is missing; install the Debian package '{package}' "
                 f"(apt-get install {package})")
    return p.read_bytes()


def _copy(data, target):
    target.parent.mkdir(parents=True, exist_ok=True)
    target.write_bytes(data)
    return target


def generate(out):
    written = []
    for package, font, licence, font_to, licence_to in FONTS:
        written.append(_copy(_read(font, package), out / font_to))
        written.append(_copy(_read(licence, package), out / licence_to))
    return written

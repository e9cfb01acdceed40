#!/usr/bin/python3
"""fonts.py TEXTS FOLDER: the page's fonts, cut down to what its texts need.

Made from Debian's Lato and Gentium Book Plus: printable ASCII, and every letter that the tables in
TEXTS use, as far as the font has it; the rest, Japanese say, is drawn with the system's own font.
A font that was cut down is a modified one, and may not keep its name: their licence reserves it.
"""
import json
import logging
import sys
from pathlib import Path

from fontTools import subset
from fontTools.ttLib import TTFont

SOURCES = Path("/usr/share/fonts/truetype")
ASCII = {chr(code) for code in range(0x20, 0x7F)}
FIGURES = set("0123456789., Hz" "ACDG=")
FAMILY, FULL, POSTSCRIPT = 1, 4, 6  # the numbers of a font's names


def letters(texts):
    tables = (json.loads(path.read_text()) for path in sorted(texts.glob("*.json")))
    return ASCII.union(*(text for table in tables for text in table.values()))


def make(source, name, characters, target):
    options = subset.Options(hinting=False, layout_features=["kern"], name_IDs=[0, 1, 2, 4, 6, 14])
    font = TTFont(SOURCES / source, recalcTimestamp=False)  # the same bytes every time
    subsetter = subset.Subsetter(options)
    subsetter.populate(text="".join(sorted(characters)))
    subsetter.subset(font)
    for identity in FAMILY, FULL, POSTSCRIPT:
        font["name"].setName(name, identity, 3, 1, 0x409)
    font.flavor = "woff2"
    font.save(target)


logging.getLogger("fontTools").setLevel(logging.ERROR)
texts, folder = map(Path, sys.argv[1:])
used = letters(texts)
make("lato/Lato-Regular.ttf", "EndpinSans", used, folder / "sans.woff2")
make("lato/Lato-Bold.ttf", "EndpinSansBold", used, folder / "sans-bold.woff2")
make("lato/Lato-Medium.ttf", "EndpinFigures", FIGURES, folder / "figures.woff2")
make("gentiumplus/GentiumBookPlus-Regular.ttf", "EndpinSerif", used, folder / "serif.woff2")

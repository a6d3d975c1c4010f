"""Draws samples with a headless Chromium, many a page; a page has one scale and one kind of anti-aliasing."""

import html
import itertools
import os
import subprocess
import tempfile
import unicodedata

import numpy
from PIL import Image

from canvas import ROOM
from icons import icon_element
from sample import WITH_LIGATURES

# Chromium draws no larger picture without a graphics processor.
LARGEST_PAGE = 12000  # pixels of the picture

_FLAGS = [
    "--headless",
    "--no-sandbox",
    "--disable-gpu",
    "--disable-quic",
    "--no-first-run",
    "--disable-background-networking",
    "--disable-component-update",
    "--disable-sync",
    "--hide-scrollbars",
]

_FONTCONFIG = """<?xml version="1.0"?><!DOCTYPE fontconfig SYSTEM "fonts.dtd"><fontconfig>
<include>/etc/fonts/fonts.conf</include><match target="font">
<edit name="antialias" mode="assign"><bool>{antialias}</bool></edit>
<edit name="hinting" mode="assign"><bool>{hinting}</bool></edit>
<edit name="hintstyle" mode="assign"><const>{style}</const></edit>
<edit name="rgba" mode="assign"><const>{rgba}</const></edit></match>
<match target="pattern">
<edit name="antialias" mode="assign"><bool>{antialias}</bool></edit>
<edit name="hinting" mode="assign"><bool>{hinting}</bool></edit>
<edit name="hintstyle" mode="assign"><const>{style}</const></edit>
<edit name="rgba" mode="assign"><const>{rgba}</const></edit></match></fontconfig>"""


def _setting(sample):
    return sample.scale, sample.antialiasing, sample.hinting


def _room(sample):
    """The room around a sample in the page's pixels: whole pixels of the picture at every scale."""
    return ROOM / sample.scale


def _breadth(text):
    """How many letters of usual width a text is as wide as, in fonts of any."""
    return sum(1.3 if unicodedata.east_asian_width(c) in "WF" else 1 for c in text)


def _factor(line):
    """The largest factor of the type size in a line."""
    return max(line.factors, default=1)


def _cell_size(sample):
    """In the page's pixels, in fours to be whole pixels of the picture. Generous: it is cropped later."""
    longest = sum(max(_breadth(line.text) * _factor(line) for line in block) for block in sample.blocks)
    # With room for an icon.
    longest += sum(2 + 36 / sample.size for block in sample.blocks if block[0].icon)
    width = (
        longest * sample.size * 0.8 + 3 * sample.size + sample.gap * len(sample.blocks) + 2 * _room(sample)
    )
    lines_high = max(sum(map(_factor, block)) for block in sample.blocks)
    height = sample.line_height * lines_high + 2 * _room(sample)
    return 4 * round(width / 4 + 1), 4 * round(height / 4 + 1)


def _cell(sample, y, size):
    weight, style = ("bold" if sample.bold else "normal"), ("italic" if sample.italic else "normal")
    ligatures = "none" if sample.font in WITH_LIGATURES else "normal"
    pad = sample.line_height / 4
    blocks = ""
    for block in sample.blocks:
        blocks += f'<div style="margin-right:{sample.gap}px">'
        for line in block:
            ground = (
                f"background:{line.background};margin:0 -{pad}px;padding:0 {pad}px" if line.background else ""
            )
            sizes = [f";font-size:{factor}em" for factor in line.factors] or itertools.repeat("")
            spans = "".join(
                f'<span style="color:{colour}{size}">{html.escape(text)}</span>'
                for (text, colour), size in zip(line.spans, sizes)
            )
            if line.icon:
                colour = line.spans[0][1]
                spans = icon_element(line.icon, sample.icon_size, sample.icon_gap, colour) + spans
            height = sample.line_height * _factor(line)
            # A line of larger type has more room above and below it.
            ground += f"line-height:{height}px" if line.factors else ""
            blocks += f'<div class="line" style="height:{height}px;{ground}">{spans}</div>'
        blocks += "</div>"
    place = f"top:{y}px;width:{size[0]}px;height:{size[1]}px;background:{sample.theme.background}"
    # The ligatures come after the font, which resets them.
    font = (
        f"left:{_room(sample)}px;top:{_room(sample)}px;"
        f"font:{style} {weight} {sample.size}px/{sample.line_height}px '{sample.font}';"
        f"font-variant-ligatures:{ligatures}{';align-items:center' if sample.centred else ''}"
    )
    return f'<div class="cell" style="{place}"><div class="blocks" style="{font}">{blocks}</div></div>'


_STYLE = """body{margin:0;background:#fff}.cell{position:absolute;left:0;overflow:hidden}
.blocks{position:absolute;display:flex}.line{white-space:pre}"""


def _pages(samples):
    """Samples with their places, as many a page as fit."""
    page, y = [], 0
    for sample in samples:
        size = _cell_size(sample)
        if page and (y + size[1]) * sample.scale > LARGEST_PAGE:
            yield page
            page, y = [], 0
        page.append((sample, y, size))
        y += size[1]
    if page:
        yield page


def _photograph(page, folder):
    """The picture of a page of samples that share their setting."""
    scale, antialiasing, hinting = _setting(page[0][0])
    body = "".join(_cell(*placed) for placed in page)
    with open(f"{folder}/page.html", "w", encoding="utf-8") as stream:
        stream.write(f"<!doctype html><meta charset=utf-8><style>{_STYLE}</style>{body}")
    with open(f"{folder}/fonts.conf", "w", encoding="utf-8") as stream:
        stream.write(
            _FONTCONFIG.format(
                antialias=str(antialiasing != "none").lower(),
                hinting=str(hinting != "none").lower(),
                style=f"hint{hinting}",
                rgba="rgb" if antialiasing == "subpixel" else "none",
            )
        )
    width = max(size[0] for _, _, size in page)
    height = page[-1][1] + page[-1][2][1]
    # A window loses a little height to the frame it does not have here.
    command = [
        "chromium",
        *_FLAGS,
        f"--user-data-dir={folder}/profile",
        f"--force-device-scale-factor={scale}",
        f"--font-render-hinting={hinting}",
        "--enable-lcd-text" if antialiasing == "subpixel" else "--disable-lcd-text",
        f"--window-size={width},{height + 160}",
        f"--screenshot={folder}/page.png",
        f"file://{folder}/page.html",
    ]
    subprocess.run(
        command,
        check=True,
        timeout=180,
        stdout=subprocess.DEVNULL,
        stderr=subprocess.DEVNULL,
        env={**os.environ, "FONTCONFIG_FILE": f"{folder}/fonts.conf"},
    )
    return numpy.array(Image.open(f"{folder}/page.png").convert("RGB"))


def draw_all(samples):
    """Yields each sample with its picture as an array of rows, columns and RGB."""
    ordered = sorted(samples, key=_setting)
    for _, group in itertools.groupby(ordered, key=_setting):
        for page in _pages(group):
            with tempfile.TemporaryDirectory() as folder:
                picture = _photograph(page, folder)
            for sample, y, (width, height) in page:
                top, bottom, right = (round(part * sample.scale) for part in (y, y + height, width))
                if bottom > picture.shape[0] or right > picture.shape[1]:
                    raise RuntimeError("Chromium's picture is smaller than its page")
                yield sample, picture[top:bottom, :right]

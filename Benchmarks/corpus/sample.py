"""What one image of the text corpus shows, decided before anything draws it."""

import random as random_numbers
import re
from dataclasses import dataclass, field

import passages
from icons import icons_of
from phrases import Phrases
from themes import THEMES, coloured
from translations import TRANSLATED_KINDS, fonts_of, translated_lines

RENDERERS = ("chromium", "pango", "qt")

# The kinds of a mixed corpus, with how many of a hundred images are of each.
KINDS = {
    "prose": 18,
    "code": 24,
    "terminal": 8,
    "interface": 14,
    "word": 12,
    "german": 10,
    "columns": 4,
    "table": 5,
    "empty": 5,
}

# No part of it: labels with icons, and larger type beside smaller.
WITH_ICONS = "icons"
OF_SIZES = "sizes"

PROPORTIONAL = [
    "DejaVu Sans",
    "DejaVu Serif",
    "Liberation Sans",
    "Liberation Serif",
    "Noto Sans",
    "Noto Serif",
    "Roboto",
    "Cantarell",
    "Open Sans",
    "Lato",
    "Inter",
]
MONOSPACED = ["DejaVu Sans Mono", "Liberation Mono", "Noto Sans Mono", "Hack"]
# Their ligatures make one sign of != or ->, whose true text would be debatable; Qt 6.4 can't switch them off.
WITH_LIGATURES = ["Fira Code", "JetBrains Mono"]

SIZES = [10, 11, 12, 13, 13, 14, 14, 15, 16, 16, 18, 20, 24, 28]
# Nobody sets characters of many strokes in less.
WIDE_SIZES = [12, 13, 14, 14, 15, 16, 16, 18, 20, 24, 28]
SCALES = [1, 1, 1, 1.25, 1.5, 2]
ANTIALIASING = ["grey", "grey", "subpixel", "subpixel"]
HINTING = ["none", "slight", "slight", "full"]


@dataclass
class Line:
    spans: list  # of (text, colour)
    background: str | None = None
    icon: str | None = None  # the path of one before the text
    factors: list = field(default_factory=list)  # of the type size, one for each span, where they differ

    @property
    def text(self):
        return "".join(text for text, _ in self.spans)


@dataclass
class Sample:
    kind: str
    half: str
    number: int
    renderer: str
    font: str = ""
    bold: bool = False
    italic: bool = False
    size: int = 14  # in pixels before the scale
    scale: float = 1
    line_height: int = 20
    theme: object = None
    antialiasing: str = "grey"
    hinting: str = "slight"
    blocks: list = field(default_factory=list)  # side by side; each a list of Line
    gap: int = 24  # between blocks
    centred: bool = False  # the blocks, in height
    icon_size: int = 16
    icon_gap: int = 8  # between an icon and its text
    crop: str = "snug"
    margins: tuple = (8, 8, 8, 8)  # left, top, right, bottom, in pixels of the image
    decoration: str = "none"
    by_rows: bool = (
        False  # the reading order of blocks: a table's rows rather than one column after the other
    )

    @property
    def truth(self):
        """A line of text a line. A gap within a line is one space, indentation and empty lines are left out.

        An ellipsis is three full stops: most fonts draw the one sign as the other three. Fonts of wide
        characters don't.
        """
        if self.by_rows:
            lines = [" ".join(line.text for line in row) for row in zip(*self.blocks)]
        else:
            lines = [line.text for block in self.blocks for line in block]
        cleaned = [re.sub(r"\s+", " ", line).strip() for line in lines]
        if not fonts_of(self.kind):
            cleaned = [line.replace("…", "...") for line in cleaned]
        return [line for line in cleaned if line]

    @property
    def info(self):
        values = dict(
            kind=self.kind,
            half=self.half,
            renderer=self.renderer,
            font=self.font.replace(" ", "-"),
            weight="bold" if self.bold else "normal",
            style="italic" if self.italic else "normal",
            size=self.size,
            scale=self.scale,
            theme=self.theme.name if self.theme else "-",
            ground=self.theme.ground if self.theme else "-",
            antialiasing=self.antialiasing,
            hinting=self.hinting,
            crop=self.crop,
            margins=",".join(map(str, self.margins)),
            decoration=self.decoration,
        )
        return " ".join(f"{key}={value}" for key, value in values.items())


def _stream(half, kind, number):
    return random_numbers.Random(f"text/{half}/{kind}/{number}")


def translated_kinds(count):
    """The kind of each image of a corpus of all languages: as many of each, one after the other."""
    return [TRANSLATED_KINDS[number % len(TRANSLATED_KINDS)] for number in range(count)]


def mixed_kinds(count, half):
    """The kind of each image of a mixed corpus."""
    names, weights = list(KINDS), list(KINDS.values())
    return _stream(half, "mix", 0).choices(names, weights, k=count)


def _margins(random):
    style = random.choice(["tight", "snug", "snug", "roomy", "uneven"])
    if style == "uneven":
        return style, tuple(random.choice([1, 2, 4, 8, 16, 40]) for _ in range(4))
    margin = {
        "tight": random.randrange(1, 3),
        "snug": random.randrange(3, 9),
        "roomy": random.randrange(10, 45),
    }[style]
    return style, (margin,) * 4


def _plain(texts, theme):
    return [Line([(text, theme.text)]) for text in texts]


def _interface_lines(random, phrases, theme):
    make = phrases.datum if random.random() < 0.5 else phrases.label
    lines = _plain([make() for _ in range(random.choice([1, 2, 3, 4, 6, 8, 10]))], theme)
    if random.random() < 0.3:
        chosen = random.choice(lines)
        chosen.background = theme.accent
        chosen.spans = [(text, theme.on_accent) for text, _ in chosen.spans]
    return lines


def _lines_with_icons(random, half, phrases, theme):
    icons = icons_of(half)
    lines = _plain([phrases.label() for _ in range(random.choice([1, 2, 3, 4, 6, 8]))], theme)
    for line in lines:
        line.icon = random.choice(icons)
    return lines


def _sizes(random, phrases, theme):
    """Blocks of words of two sizes: in one line, or a large one beside several small lines."""
    factor = random.choice([1.4, 1.6, 1.8, 2, 2.4, 3])

    def line(*texts, factors=None):
        return Line([(text, theme.text) for text in texts], factors=factors or [factor])

    def figure():
        whole = random.randrange(1, 1000)
        shorter, longer = whole % 100, f"{whole},{whole % 899 + 100}"
        return random.choice(
            [f"{whole}", f"{shorter}%", f"${whole}", f"€{shorter}", f"{whole % 40}°", longer]
        )

    def words():
        return " ".join(phrases.word() for _ in range(random.randrange(1, 5)))

    def inline():
        unit = random.choice(["ms", "GB", "per seat", "km/h", "MB/s", "users", "min", "PM", "of 100", words()])
        return random.choice(
            [
                line(figure(), f" {unit}", factors=[factor, 1]),
                line(figure(), random.choice(["/month", "/year"]), factors=[factor, 1]),
                line(f"{phrases.label()}: ", figure(), factors=[1, factor]),
                line(phrases.label(), f"  {words()}", factors=[factor, 1]),
            ]
        )

    if random.random() < 0.6:
        return [[inline() for _ in range(random.choice([1, 1, 2, 3]))]]
    few = random.choice([figure(), str(random.randrange(1, 32)), phrases.label()[0].upper()])
    return [[line(few)], _plain([words() for _ in range(random.choice([2, 2, 3]))], theme)]


def _table(random, phrases, theme):
    makers = random.sample(
        [phrases.label, phrases.file_name, phrases.time, phrases.amount, phrases.version, phrases.word],
        random.choice([2, 3, 3, 4]),
    )
    rows = random.randrange(3, 8)
    return [_plain([make() for _ in range(rows)], theme) for make in makers]


def _columns(random, half, theme):
    paragraphs = passages.english_paragraphs(half)
    width, height = random.choice([26, 32, 40]), random.randrange(4, 10)
    blocks = []
    while len(blocks) < 2:
        lines = passages.prose_passage(random, paragraphs, width, height)
        if len(lines) >= 3:
            blocks.append(_plain(lines, theme))
    return blocks


def _fill(sample, random):
    half, theme, phrases = sample.half, sample.theme, Phrases(random, sample.half)
    count = random.choice([1, 1, 2, 3, 4, 6, 8, 12, 16])
    if sample.kind in ("prose", "german"):
        german = sample.kind == "german"
        if german and random.random() < 0.4:
            texts = [phrases.german_label() for _ in range(random.choice([1, 1, 2, 4, 6]))]
        else:
            paragraphs = (passages.german_paragraphs if german else passages.english_paragraphs)(half)
            texts = passages.prose_passage(random, paragraphs, random.choice([24, 36, 50, 64, 80, 96]), count)
        sample.blocks = [_plain(texts, theme)]
    elif sample.kind in TRANSLATED_KINDS:
        sample.blocks = [_plain(translated_lines(random, sample.kind, half), theme)]
    elif sample.kind == "code":
        texts, language = passages.code_passage(random, half, max(2, count))
        sample.blocks = [[Line(coloured(text, language, theme)) for text in texts]]
    elif sample.kind == "terminal":
        sample.blocks = [
            _plain([phrases.command_line() for _ in range(random.choice([1, 2, 3, 5, 8]))], theme)
        ]
    elif sample.kind == "interface":
        sample.blocks = [_interface_lines(random, phrases, theme)]
    elif sample.kind == WITH_ICONS:
        lines = _lines_with_icons(random, half, phrases, theme)
        sample.icon_size, sample.icon_gap = random.choice([16, 16, 20, 24]), random.choice([6, 8, 12])
        sample.line_height = max(sample.line_height, sample.icon_size + random.choice([4, 8, 16]))
        sample.by_rows = random.random() < 0.25  # a tool bar
        sample.blocks = [[line] for line in lines[:4]] if sample.by_rows else [lines]
    elif sample.kind == OF_SIZES:
        sample.blocks, sample.centred = _sizes(random, phrases, theme), True
        sample.gap = random.choice([8, 12, 16, 24])
    elif sample.kind == "word":
        sample.blocks = [_plain([phrases.datum()], theme)]
    elif sample.kind == "columns":
        sample.blocks = _columns(random, half, theme)
    elif sample.kind == "table":
        sample.blocks, sample.by_rows = _table(random, phrases, theme), True


def make_sample(kind, half, number, renderer):
    """The sample of that number, the same at every call. Renderer is one of RENDERERS or all."""
    random = _stream(half, kind, number)
    chosen = random.choice(RENDERERS)
    sample = Sample(kind, half, number, chosen if renderer == "all" else renderer)
    if kind == "empty":
        sample.renderer = "none"
        return sample
    sample.theme = random.choice(THEMES)
    if kind in (WITH_ICONS, OF_SIZES):
        sample.renderer = "chromium"
    monospaced = kind in ("code", "terminal") or kind == "table" and random.random() < 0.3
    ligatures = [] if sample.renderer == "qt" else WITH_LIGATURES
    sample.font = random.choice(MONOSPACED + ligatures if monospaced else PROPORTIONAL)
    sample.bold = random.random() < 0.12
    sample.italic = not monospaced and sample.font != "Cantarell" and random.random() < 0.05
    wide_fonts = fonts_of(kind)
    if wide_fonts:
        sample.font, sample.italic = random.choice(wide_fonts), False
    sample.size, sample.scale = random.choice(WIDE_SIZES if wide_fonts else SIZES), random.choice(SCALES)
    sample.line_height = round(sample.size * random.choice([1.3, 1.4, 1.5, 1.6]))
    if kind == "interface":
        sample.line_height = round(sample.size * random.choice([1.4, 1.8, 2.2]))
    sample.antialiasing = "none" if random.random() < 0.03 else random.choice(ANTIALIASING)
    sample.hinting = random.choice(HINTING)
    sample.gap = round(sample.size * random.choice([2, 2.5, 3, 4]))
    sample.crop, sample.margins = _margins(random)
    decorations = ["none"] * 6 + ["left-border", "top-border", "frame", "caret"]
    if kind in ("word", "interface"):
        decorations += ["button", "frame"]
    sample.decoration = random.choice(decorations)
    _fill(sample, random)
    return sample

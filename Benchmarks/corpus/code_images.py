"""Images of the code corpus: symbols on grounds, turned, scaled and set among text as on screens."""

import random as random_numbers
import textwrap
from dataclasses import dataclass

import numpy
from PIL import Image, ImageColor, ImageDraw, ImageFont

import passages
from empty_images import empty_image
from symbols import OTHER_SYMBOLOGIES, QUIET_ZONE, SYMBOLOGIES, modules, payload

# The kinds of image, with how many of a hundred are of each; every symbology alone beside them.
KINDS = {
    **{symbology: 7 for symbology in SYMBOLOGIES},
    "several": 14,
    "other-code": 8,
    "text-only": 4,
    "no-code": 4,
}

SANS = "/usr/share/fonts/truetype/dejavu/DejaVuSans.ttf"
SCHEMES = {  # dark and light parts of a symbol; the light part is the ground
    "dark-on-light": [("#000000", "#ffffff")] * 4 + [("#222222", "#f4f4f4")],
    "light-on-dark": [("#ffffff", "#000000"), ("#e8e8e8", "#1e1e1e"), ("#c9d1d9", "#0d1117")],
    "coloured": [
        ("#000000", "#f5c211"),
        ("#0b3d66", "#e5f1fb"),
        ("#5c1020", "#fde7ea"),
        ("#1a1a6a", "#c8e6c9"),
        ("#ffffff", "#1a5fb4"),
    ],
}


@dataclass
class CodeImage:
    image: object
    payloads: list
    values: dict

    @property
    def info(self):
        return " ".join(f"{key}={value}" for key, value in self.values.items())


def mixed_kinds(count, half):
    """The kind of each image of a mixed corpus."""
    return random_numbers.Random(f"codes/{half}/mix").choices(list(KINDS), list(KINDS.values()), k=count)


def _is_bars(symbology):
    return {**SYMBOLOGIES, **OTHER_SYMBOLOGIES}[symbology][1]


def _symbol(random, symbology, data, module, colours, quiet):
    """The upright symbol with a quiet zone of that many modules."""
    grid = modules(symbology, data)
    if _is_bars(symbology):
        grid = grid.repeat(random.randrange(14, 46), axis=0)
    grid = numpy.pad(grid, ((min(quiet, 4), min(quiet, 4)), (quiet, quiet)))
    grid = grid.repeat(module, axis=0).repeat(module, axis=1)
    dark, light = (numpy.array(ImageColor.getrgb(colour), numpy.uint8) for colour in colours)
    return Image.fromarray(numpy.where(grid[..., None], dark, light))


def _captioned(image, caption, colours, size):
    """The symbol with its payload printed beneath, as under the bars of a product."""
    font = ImageFont.truetype(SANS, size)
    below = Image.new("RGB", (image.width, image.height + size + 8), colours[1])
    below.paste(image, (0, 0))
    x = (image.width - font.getlength(caption)) / 2
    ImageDraw.Draw(below).text((max(0, x), image.height + 2), caption, fill=colours[0], font=font)
    return below


def _altered(random, image, module, colours, symbology):
    """Turned, slightly rotated or scaled by a fraction, with the names of what was done."""
    turn = random.choice([0, 0, 0, 0, 90, 180, 270])
    image = image.rotate(turn, expand=True)
    angle, scale = 0, 1
    alteration = random.random()
    if alteration < 0.2 and module >= 3:
        limit = 3 if _is_bars(symbology) else 9
        angle = random.choice([-1, 1]) * random.uniform(1, limit)
        image = image.rotate(angle, resample=Image.BICUBIC, expand=True, fillcolor=colours[1])
    elif alteration < 0.45 and module >= 2:
        scale = random.choice([0.75, 1.25, 1.5, 1.75])
        resample = random.choice([Image.BILINEAR, Image.BILINEAR, Image.NEAREST])
        image = image.resize((round(image.width * scale), round(image.height * scale)), resample)
    return image, turn, round(angle, 1), scale


def _paragraph(random, half, width):
    paragraph = random.choice(passages.english_paragraphs(half))
    return "\n".join(textwrap.wrap(paragraph, max(12, width // 8))[: random.randrange(1, 5)])


def _among_text(random, half, image, colours):
    """The symbol on a page with text above and below it."""
    font = ImageFont.truetype(SANS, 13)
    texts = [_paragraph(random, half, max(260, image.width)) for _ in range(2)]
    boxes = [ImageDraw.Draw(image).multiline_textbbox((0, 0), text, font=font) for text in texts]
    room = random.randrange(14, 30)
    width = max(image.width, *(box[2] for box in boxes)) + 2 * room
    page = Image.new("RGB", (width, image.height + boxes[0][3] + boxes[1][3] + 4 * room), colours[1])
    pen = ImageDraw.Draw(page)
    pen.multiline_text((room, room), texts[0], fill=colours[0], font=font)
    page.paste(image, (random.randrange(room, width - room - image.width + 1), boxes[0][3] + 2 * room))
    pen.multiline_text((room, boxes[0][3] + image.height + 3 * room), texts[1], fill=colours[0], font=font)
    return page


def _single(random, half, symbology):
    data, truth = payload(random, symbology)
    module = random.choice([1, 1, 2, 2, 3, 3, 4, 5, 6, 8])
    scheme = random.choice(["dark-on-light", "dark-on-light", "light-on-dark", "coloured"])
    colours = random.choice(SCHEMES[scheme])
    standard = QUIET_ZONE.get(symbology, 10)
    crop = random.choice(["quiet-zone", "quiet-zone", "quiet-zone", "narrow", "tight"])
    quiet = {"quiet-zone": standard, "narrow": max(1, standard // 4), "tight": 0}[crop]
    image = _symbol(random, symbology, data, module, colours, quiet)
    captioned = truth and _is_bars(symbology) and module > 1 and crop != "tight" and random.random() < 0.6
    if captioned:
        image = _captioned(image, truth, colours, max(9, 6 * module))
    image, turn, angle, scale = _altered(random, image, module, colours, symbology)
    setting = "alone"
    if crop == "quiet-zone" and random.random() < 0.3:
        image, setting = _among_text(random, half, image, colours), "text"
    values = dict(
        symbology=symbology,
        module=module,
        turn=turn,
        angle=angle,
        scale=scale,
        scheme=scheme,
        crop=crop,
        setting=setting,
    )
    return image, [truth] if truth else [], values


def _several(random, half):
    """Two to five symbols in rows, each under a line of text. A row's tops are level: the order is plain."""
    scheme = random.choice(["dark-on-light", "dark-on-light", "light-on-dark"])
    colours = random.choice(SCHEMES[scheme])
    font, gap, count = ImageFont.truetype(SANS, 13), random.randrange(24, 50), random.randrange(2, 6)
    symbols, module = [], random.choice([2, 2, 3, 4])
    for _ in range(count):
        symbology = random.choice(list(SYMBOLOGIES))
        data, truth = payload(random, symbology)
        symbols.append(
            (_symbol(random, symbology, data, module, colours, QUIET_ZONE.get(symbology, 10)), truth)
        )
    columns = random.choice([1, 2, 3])
    rows = [symbols[i : i + columns] for i in range(0, count, columns)]
    width = max(sum(image.width + gap for image, _ in row) for row in rows) + gap
    height = sum(max(image.height for image, _ in row) + gap + 20 for row in rows) + gap
    page = Image.new("RGB", (width, height), colours[1])
    pen, y = ImageDraw.Draw(page), gap
    for row in rows:
        x = gap
        for image, _ in row:
            label = _paragraph(random, half, image.width).split("\n", 1)[0]
            while label and font.getlength(label) > image.width:
                label = label[:-1]
            pen.text((x, y), label, fill=colours[0], font=font)
            page.paste(image, (x, y + 20))
            x += image.width + gap
        y += max(image.height for image, _ in row) + gap + 20
    values = dict(
        symbology="mixed",
        module=module,
        turn=0,
        angle=0,
        scale=1,
        scheme=scheme,
        crop="quiet-zone",
        setting=f"{count}-codes",
    )
    return page, [truth for _, truth in symbols], values


def _text_only(random, half):
    scheme = random.choice(["dark-on-light", "light-on-dark", "coloured"])
    colours = random.choice(SCHEMES[scheme])
    text = "\n".join(_paragraph(random, half, 600) for _ in range(random.randrange(1, 6)))
    font = ImageFont.truetype(SANS, random.choice([11, 13, 16, 20]))
    box = ImageDraw.Draw(Image.new("RGB", (8, 8))).multiline_textbbox((10, 10), text, font=font)
    page = Image.new("RGB", (box[2] + 10, box[3] + 10), colours[1])
    ImageDraw.Draw(page).multiline_text((10, 10), text, fill=colours[0], font=font)
    return page, [], dict(symbology="none", scheme=scheme)


def make_code_image(kind, half, number):
    """The image of that number, the same at every call."""
    random = random_numbers.Random(f"codes/{half}/{kind}/{number}")
    if kind == "several":
        image, payloads, values = _several(random, half)
    elif kind == "other-code":
        image, payloads, values = _single(random, half, random.choice(list(OTHER_SYMBOLOGIES)))
    elif kind == "text-only":
        image, payloads, values = _text_only(random, half)
    elif kind == "no-code":
        image, style = empty_image(half, 100_000 + number)
        payloads, values = [], dict(symbology="none", setting=style)
    else:
        image, payloads, values = _single(random, half, kind)
    return CodeImage(image, payloads, dict(kind=kind, half=half, **values))

"""From a drawn sample to the image of a selection: crops to the ink, adds what a selection also catches."""

import numpy
from PIL import Image, ImageColor, ImageDraw

ROOM = 60  # pixels that a renderer leaves free around the text; more than any margin


def _ink(picture, background):
    difference = numpy.abs(picture.astype(int) - numpy.array(ImageColor.getrgb(background))).max(axis=2) > 12
    rows, columns = numpy.flatnonzero(difference.any(axis=1)), numpy.flatnonzero(difference.any(axis=0))
    if not len(rows):
        raise RuntimeError("nothing was drawn")
    return columns[0], rows[0], columns[-1] + 1, rows[-1] + 1


def _decorate(image, sample):
    pen, theme, scale = ImageDraw.Draw(image), sample.theme, sample.scale
    width, height = image.size
    line = max(1, round(scale))
    edge = theme.accent if sample.number % 2 else theme.comment
    if sample.decoration == "left-border":
        pen.rectangle((0, 0, line - 1, height), fill=edge)
    elif sample.decoration == "top-border":
        pen.rectangle((0, 0, width, line - 1), fill=edge)
    elif sample.decoration == "frame":
        pen.rectangle((0, 0, width - 1, height - 1), outline=edge, width=line)
    elif sample.decoration == "button":
        pen.rounded_rectangle(
            (0, 0, width - 1, height - 1), radius=round(4 * scale), outline=edge, width=line
        )
    elif sample.decoration == "caret":
        # At the end of the last line or, as often, left of the first.
        at = width - 1 - line if sample.number % 2 else 0
        extent = min(height, round(1.2 * sample.size * scale))
        top = height - extent if sample.number % 2 else 0
        pen.rectangle((at, top, at + line - 1, top + extent), fill=theme.text)


def selection(picture, sample):
    """The image that a user's selection around the sample's text gives."""
    left, top, right, bottom = _ink(picture, sample.theme.background)
    if left == 0 or top == 0 or right == picture.shape[1] or bottom == picture.shape[0]:
        raise RuntimeError(f"sample {sample.number} does not fit its picture")
    # What is drawn around the text must not touch it.
    extra = round(3 * sample.scale) if sample.decoration != "none" else 0
    margins = [min(ROOM, margin + extra) for margin in sample.margins]
    box = (max(0, left - margins[0]), max(0, top - margins[1]), right + margins[2], bottom + margins[3])
    image = Image.fromarray(picture).crop(
        (box[0], box[1], min(box[2], picture.shape[1]), min(box[3], picture.shape[0]))
    )
    _decorate(image, sample)
    return image

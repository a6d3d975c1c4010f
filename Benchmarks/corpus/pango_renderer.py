"""Draws samples with Pango and Cairo, as GTK's programs do."""

import math

import cairo
import gi
import numpy

gi.require_version("Pango", "1.0")
gi.require_version("PangoCairo", "1.0")
from gi.repository import Pango, PangoCairo  # noqa: E402

from canvas import ROOM  # noqa: E402
from sample import WITH_LIGATURES  # noqa: E402

_ANTIALIASING = {
    "grey": cairo.ANTIALIAS_GRAY,
    "subpixel": cairo.ANTIALIAS_SUBPIXEL,
    "none": cairo.ANTIALIAS_NONE,
}
_HINTING = {"none": cairo.HINT_STYLE_NONE, "slight": cairo.HINT_STYLE_SLIGHT, "full": cairo.HINT_STYLE_FULL}


def _rgb(colour):
    return [int(colour[i : i + 2], 16) / 255 for i in (1, 3, 5)]


def _layout(context, sample, line):
    layout = PangoCairo.create_layout(context)
    options = cairo.FontOptions()
    options.set_antialias(_ANTIALIASING[sample.antialiasing])
    options.set_hint_style(_HINTING[sample.hinting])
    options.set_hint_metrics(cairo.HINT_METRICS_OFF if sample.hinting == "none" else cairo.HINT_METRICS_ON)
    PangoCairo.context_set_font_options(layout.get_context(), options)
    font = Pango.FontDescription()
    font.set_family(sample.font)
    font.set_absolute_size(sample.size * sample.scale * Pango.SCALE)
    font.set_weight(Pango.Weight.BOLD if sample.bold else Pango.Weight.NORMAL)
    font.set_style(Pango.Style.ITALIC if sample.italic else Pango.Style.NORMAL)
    layout.set_font_description(font)
    layout.set_text(line.text, -1)
    attributes, end = Pango.AttrList(), 0
    if sample.font in WITH_LIGATURES:
        attributes.insert(Pango.attr_font_features_new("liga=0, calt=0"))
    for text, colour in line.spans:
        attribute = Pango.attr_foreground_new(*[round(65535 * part) for part in _rgb(colour)])
        attribute.start_index, end = end, end + len(text.encode())
        attribute.end_index = end
        attributes.insert(attribute)
    layout.set_attributes(attributes)
    return layout


def _draw(sample):
    scratch = cairo.Context(cairo.ImageSurface(cairo.FORMAT_RGB24, 8, 8))
    layouts = [[_layout(scratch, sample, line) for line in block] for block in sample.blocks]
    widths = [max(layout.get_pixel_size()[0] for layout in block) for block in layouts]
    step, gap = round(sample.line_height * sample.scale), round(sample.gap * sample.scale)
    width = sum(widths) + gap * (len(widths) - 1) + 2 * ROOM
    height = step * max(map(len, layouts)) + 2 * ROOM
    surface = cairo.ImageSurface(cairo.FORMAT_RGB24, width, height)
    context = cairo.Context(surface)
    context.set_source_rgb(*_rgb(sample.theme.background))
    context.paint()
    x = ROOM
    for block, block_width in zip(sample.blocks, widths):
        for row, line in enumerate(block):
            y = ROOM + row * step
            if line.background:
                context.set_source_rgb(*_rgb(line.background))
                context.rectangle(x - step // 4, y, block_width + step // 2, step)
                context.fill()
            layout = _layout(context, sample, line)
            context.move_to(x, y + math.floor((step - layout.get_pixel_size()[1]) / 2))
            PangoCairo.show_layout(context, layout)
        x += block_width + gap
    surface.flush()
    pixels = numpy.ndarray((height, surface.get_stride() // 4, 4), numpy.uint8, surface.get_data())
    return pixels[:, :width, 2::-1].copy()


def draw_all(samples):
    """Yields each sample with its picture as an array of rows, columns and RGB."""
    for sample in samples:
        yield sample, _draw(sample)

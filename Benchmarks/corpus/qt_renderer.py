"""Draws samples with Qt, as its programs do. It rasterises and scales glyphs otherwise than Cairo."""

import os

import numpy

from canvas import ROOM

_HINTING = {"none": "PreferNoHinting", "slight": "PreferVerticalHinting", "full": "PreferFullHinting"}


def _font(sample):
    from PyQt6.QtGui import QFont

    font = QFont(sample.font)
    font.setPixelSize(sample.size)
    font.setBold(sample.bold)
    font.setItalic(sample.italic)
    font.setHintingPreference(getattr(QFont.HintingPreference, _HINTING[sample.hinting]))
    strategy = {
        "grey": QFont.StyleStrategy.NoSubpixelAntialias,
        "none": QFont.StyleStrategy.NoAntialias,
        "subpixel": QFont.StyleStrategy.PreferAntialias,
    }[sample.antialiasing]
    font.setStyleStrategy(strategy)
    return font


def _draw(sample):
    from PyQt6.QtCore import QPointF, QRectF
    from PyQt6.QtGui import QColor, QFontMetricsF, QImage, QPainter

    font = _font(sample)
    metrics = QFontMetricsF(font)
    widths = [max(metrics.horizontalAdvance(line.text) for line in block) for block in sample.blocks]
    room = ROOM / sample.scale
    width = sum(widths) + sample.gap * (len(widths) - 1) + 2 * room
    height = sample.line_height * max(map(len, sample.blocks)) + 2 * room
    image = QImage(round(width * sample.scale), round(height * sample.scale), QImage.Format.Format_RGB32)
    image.setDevicePixelRatio(sample.scale)
    image.fill(QColor(sample.theme.background))
    painter = QPainter(image)
    painter.setFont(font)
    x = room
    for block, block_width in zip(sample.blocks, widths):
        for row, line in enumerate(block):
            y = room + row * sample.line_height
            if line.background:
                pad = sample.line_height / 4
                painter.fillRect(
                    QRectF(x - pad, y, block_width + 2 * pad, sample.line_height), QColor(line.background)
                )
            baseline = y + (sample.line_height - metrics.height()) / 2 + metrics.ascent()
            done = ""
            for text, colour in line.spans:
                painter.setPen(QColor(colour))
                painter.drawText(QPointF(x + metrics.horizontalAdvance(done), baseline), text)
                done += text
        x += block_width + sample.gap
    painter.end()
    bits = image.constBits().asstring(image.sizeInBytes())
    return (
        numpy.frombuffer(bits, numpy.uint8).reshape(image.height(), -1, 4)[:, : image.width(), 2::-1].copy()
    )


def draw_all(samples):
    """Yields each sample with its picture as an array of rows, columns and RGB."""
    os.environ["QT_QPA_PLATFORM"] = "offscreen"
    # It would complain of a missing run-time folder that nothing here needs.
    os.environ["QT_LOGGING_RULES"] = "default.warning=false"
    from PyQt6.QtWidgets import QApplication

    application = QApplication(["make-text"])
    for sample in samples:
        yield sample, _draw(sample)
    del application

"""Images of screens without any text: what a recogniser must read nothing in."""

import random as random_numbers

import numpy
from PIL import Image, ImageDraw, ImageFilter


def _colour(random):
    return tuple(random.randrange(256) for _ in range(3))


def _photograph(random, noise, size):
    """Soft shapes at several scales with grain, as a photograph has."""
    total = numpy.zeros((size[1], size[0], 3))
    for cells in (2, 4, 9, 20, 60):
        small = noise.integers(0, 256, (max(2, cells * size[1] // size[0]), cells, 3), dtype=numpy.uint8)
        total += numpy.array(Image.fromarray(small).resize(size, Image.BICUBIC)).astype(float) / cells**0.5
    total += noise.normal(0, random.choice([2, 8]), total.shape)
    return Image.fromarray((255 * (total - total.min()) / numpy.ptp(total)).astype(numpy.uint8))


def _gradient(random, noise, size):
    a, b = (numpy.array(_colour(random)) for _ in range(2))
    x, y = numpy.meshgrid(numpy.linspace(0, 1, size[0]), numpy.linspace(0, 1, size[1]))
    share = random.random()
    position = (share * x + (1 - share) * y)[..., None]
    return Image.fromarray((a + (b - a) * position).astype(numpy.uint8))


def _icons(random, noise, size):
    """Shapes of a tool bar: discs, frames, arrows, hamburger menus; drawn large and reduced."""
    image = Image.new("RGB", (size[0] * 3, size[1] * 3), _colour(random))
    pen, step = ImageDraw.Draw(image), random.choice([60, 90, 130])
    for x in range(10, size[0] * 3 - step, step):
        for y in range(10, size[1] * 3 - step, step):
            if random.random() < 0.4:
                continue
            box, side, colour = (x, y, x + step * 0.6, y + step * 0.6), step * 0.6, _colour(random)
            shape = random.randrange(6)
            if shape == 0:
                pen.ellipse(box, fill=colour)
            elif shape == 1:
                pen.rounded_rectangle(box, radius=8, outline=colour, width=5)
            elif shape == 2:
                pen.polygon([(x, y), (x + side, y + side / 2), (x, y + side)], fill=colour)
            elif shape == 3:
                for i in range(3):
                    pen.rectangle((x, y + i * side / 3, x + side, y + i * side / 3 + 5), fill=colour)
            elif shape == 4:
                pen.line([(x, y), (x + side, y + side)], fill=colour, width=6)
                pen.line([(x + side, y), (x, y + side)], fill=colour, width=6)
            else:
                pen.arc(box, 30, 330, fill=colour, width=7)
    return image.resize(size, Image.LANCZOS)


def _plain(random, noise, size):
    return Image.new("RGB", size, random.choice([(255, 255, 255), (0, 0, 0), (30, 30, 30), _colour(random)]))


def _border(random, noise, size):
    image = Image.new("RGB", size, _colour(random))
    pen = ImageDraw.Draw(image)
    x, y = random.randrange(size[0]), random.randrange(size[1])
    pen.rectangle(
        (x, y, size[0], size[1]), fill=_colour(random), outline=_colour(random), width=random.choice([1, 2])
    )
    return image


def _noise(random, noise, size):
    image = Image.fromarray(noise.integers(0, 256, (size[1], size[0], 3), dtype=numpy.uint8))
    return image.filter(ImageFilter.GaussianBlur(random.choice([0, 1, 3])))


def _chart(random, noise, size):
    image = Image.new("RGB", size, random.choice([(255, 255, 255), (24, 26, 31)]))
    pen, y = ImageDraw.Draw(image), size[1] / 2
    for i in range(1, 5):
        pen.line([(0, i * size[1] / 5), (size[0], i * size[1] / 5)], fill=(128, 128, 128))
    points = []
    for x in range(0, size[0], 6):
        y = min(size[1] - 3, max(3, y + random.uniform(-12, 12)))
        points.append((x, y))
    pen.line(points, fill=_colour(random), width=2)
    return image


STYLES = {
    "photograph": _photograph,
    "gradient": _gradient,
    "icons": _icons,
    "plain": _plain,
    "border": _border,
    "noise": _noise,
    "chart": _chart,
}


def empty_image(half, number):
    """An image without text, the same at every call, and the style it is in."""
    random = random_numbers.Random(f"empty/{half}/{number}")
    noise = numpy.random.default_rng(random.getrandbits(64))
    style = random.choice(list(STYLES))
    size = random.randrange(20, 700), random.randrange(16, 420)
    return STYLES[style](random, noise, size), style

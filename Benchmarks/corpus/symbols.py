"""Symbols of the code corpus: payloads, and their modules as zint encodes them."""

import functools
import subprocess

import numpy

# What zint calls them, and whether they are bars rather than a matrix.
SYMBOLOGIES = {
    "qr": (58, False),
    "aztec": (92, False),
    "data-matrix": (71, False),
    "pdf417": (55, False),
    "ean13": (13, True),
    "ean8": (13, True),
    "code128": (20, True),
    "code39": (8, True),
    "code93": (25, True),
    "upce": (37, True),
}
# Not read on purpose: their digits are too easily found in anything striped.
OTHER_SYMBOLOGIES = {
    "interleaved-2-of-5": (3, True),
    "codabar": (18, True),
    "databar": (29, True),
    "databar-limited": (30, True),
    "databar-expanded": (31, True),
}
# How many modules of quiet ground their standards ask for.
QUIET_ZONE = {"qr": 4, "aztec": 1, "data-matrix": 2, "pdf417": 2}
PDF417_ROW_HEIGHT = 3  # in modules

WORDS = "alpha bravo delta ferry garden harbor island kernel lumen meadow orbit parcel river ticket".split()


def with_check_digit(digits):
    """EAN digits followed by the check digit: weights of three and one from the right."""
    total = sum(int(digit) * (3 if i % 2 == 0 else 1) for i, digit in enumerate(reversed(digits)))
    return digits + str(-total % 10)


def upce_digits(six):
    """The eight digits printed under a UPC-E symbol of number system 0."""
    last = six[5]
    if last in "012":
        long = six[:2] + last + "0000" + six[2:5]
    elif last == "3":
        long = six[:3] + "00000" + six[3:5]
    elif last == "4":
        long = six[:4] + "00000" + six[4]
    else:
        long = six[:5] + "0000" + last
    return "0" + six + with_check_digit("0" + long)[-1]


def _digits(random, count):
    return "".join(random.choice("0123456789") for _ in range(count))


def _upce_six(random):
    """Six digits that no shorter form of the same number exists for: others are no valid symbol."""
    while True:
        six = _digits(random, 6)
        if not (
            six[5] == "3"
            and six[2] in "012"
            or six[5] == "4"
            and six[3] == "0"
            or six[5] in "56789"
            and six[4] == "0"
        ):
            return six


def _text(random):
    word, other = random.choice(WORDS), random.choice(WORDS)
    return random.choice(
        [
            f"https://example.org/{word}/{random.getrandbits(32):x}",
            f"https://www.example.com/?{word}={_digits(random, 5)}&ref={other}",
            f"WIFI:T:WPA;S:{word}-{other};P:{random.getrandbits(48):x};;",
            f"mailto:{word}@example.org",
            f"tel:+4930{_digits(random, 7)}",
            f"{word.title()} {other} {_digits(random, 4)}",
            f"geo:52.{_digits(random, 4)},13.{_digits(random, 4)}",
            f"otpauth://totp/{word}:{other}?secret={_secret(random)}&issuer={word}",
            f"Grüße aus {word.title()}, schöne Straße {_digits(random, 2)}",
        ]
    )


def _secret(random):
    return "".join(random.choice("ABCDEFGHIJKLMNOPQRSTUVWXYZ234567") for _ in range(16))


def payload(random, symbology):
    """A payload that the symbology can hold: what is handed to zint, and what a reader must say."""
    if symbology in ("qr", "aztec", "data-matrix", "pdf417"):
        text = _text(random)
        while symbology != "qr" and not text.isascii():
            text = _text(random)
        return text, text
    if symbology == "ean13":
        digits = random.choice("123456789") + _digits(random, 11)
        return digits, with_check_digit(digits)
    if symbology == "ean8":
        digits = _digits(random, 7)
        return digits, with_check_digit(digits)
    if symbology == "upce":
        six = _upce_six(random)
        return six, upce_digits(six)
    if symbology == "code128":
        text = random.choice(
            [
                f"{random.choice(WORDS)}-{_digits(random, 6)}",
                _digits(random, random.choice([8, 12, 18])),
                f"SN{_secret(random)[:9]}",
            ]
        )
        return text, text
    if symbology in ("code39", "code93"):
        text = random.choice(
            [
                f"{random.choice(WORDS).upper()}-{_digits(random, 3)}",
                f"A{_digits(random, 6)}",
                f"LOT {_digits(random, 4)}/{_digits(random, 2)}",
            ]
        )
        return text, text
    if symbology == "codabar":
        return f"A{_digits(random, 8)}B", None
    if symbology == "databar-expanded":
        return "[01]" + with_check_digit("9501101" + _digits(random, 6)), None
    return _digits(random, 12), None


@functools.cache
def modules(symbology, data):
    """The symbol as rows of modules, True where it is dark; bars have one row."""
    number, _ = {**SYMBOLOGIES, **OTHER_SYMBOLOGIES}[symbology]
    # QR codes hold UTF-8 without saying so, as nearly every generator writes them.
    binary = ["--binary"] if symbology == "qr" else []
    gs1 = ["--gs1"] if symbology == "databar-expanded" else []
    dump = subprocess.run(
        ["zint", "-b", str(number), *binary, *gs1, "-d", data, "--dump"],
        check=True,
        capture_output=True,
        text=True,
    )
    rows = [
        [bit == "1" for digit in line.replace(" ", "") for bit in f"{int(digit, 16):04b}"]
        for line in dump.stdout.splitlines()
        if line
    ]
    symbol = numpy.array(rows)
    # The dump fills each row up to whole digits.
    symbol = symbol[:, : numpy.flatnonzero(symbol.any(axis=0))[-1] + 1]
    return symbol.repeat(PDF417_ROW_HEIGHT, axis=0) if symbology == "pdf417" else symbol

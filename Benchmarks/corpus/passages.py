"""Passages of real text from files that Debian's packages install, divided into two halves by file."""

import functools
import glob
import hashlib
import os
import re
import textwrap

TRAINING, HELD_OUT = HALVES = ("training", "held-out")

# What any font of the corpus can draw. A line with anything else is passed over.
READABLE = re.compile(r"^[\x20-\x7eäöüÄÖÜß§€–…„“”’é©]*$")
# Rulers and ornaments have no true text worth the name: nobody agrees how long a row of dashes is.
RULER = re.compile(r"([^\w\s])\1{3,}|_{4,}|([-=*~#]\s){3,}")

# Licences of one family quote one another, so a family belongs to one half as a whole.
LICENCES = {
    TRAINING: ("GPL-1", "GPL-2", "LGPL-2", "LGPL-2.1", "GFDL-1.2", "GFDL-1.3", "Artistic"),
    HELD_OUT: ("Apache-2.0", "MPL-2.0", "CC0-1.0"),
}

CODE_FILES = {
    "python": [
        "/usr/lib/python3.11/*.py",
        "/usr/lib/python3.11/asyncio/*.py",
        "/usr/lib/python3.11/email/*.py",
        "/usr/lib/python3.11/http/*.py",
        "/usr/lib/python3.11/json/*.py",
        "/usr/lib/python3.11/urllib/*.py",
        "/usr/lib/python3.11/xml/*/*.py",
    ],
    "c++": ["/usr/include/c++/12/*", "/usr/include/c++/12/bits/*.h"],
    "c": ["/usr/include/linux/*.h"],
    "perl": ["/usr/share/perl/5.36.0/*.pm", "/usr/share/perl/5.36.0/*/*.pm"],
    "cmake": ["/usr/share/cmake-3.25/Modules/*.cmake"],
}

# The scripts of compression programs were copied from one another, so they stay together.
SHELL_SCRIPTS = {
    TRAINING: "zdiff zforce zgrep zless zmore znew gzexe xzdiff xzgrep xzless xzmore bzdiff bzexe bzgrep bzmore",
    HELD_OUT: "ldd tzselect savelog which.debianutils",
}

GERMAN_FILES = [
    "anekdoten",
    "bahnhof",
    "computer",
    "hauptgericht",
    "kuchen",
    "mathematiker",
    "murphy",
    "regeln",
    "salat",
    "sprichworte",
    "sprueche",
    "suppe",
    "tips",
    "wusstensie",
    "zitate",
]
ENGLISH_FILES = [
    "computers",
    "education",
    "law",
    "linux",
    "literature",
    "people",
    "science",
    "wisdom",
    "work",
]


def half_of(name):
    """The half that everything from a file belongs to."""
    return HALVES[hashlib.sha256(name.encode()).digest()[0] % 2]


def _read(file):
    with open(file, encoding="utf-8", errors="replace") as stream:
        return stream.read()


def _is_usable(paragraph):
    return (
        60 < len(paragraph) < 1500
        and READABLE.match(paragraph)
        and not RULER.search(paragraph)
        and sum(c.isalpha() for c in paragraph) > 0.6 * len(paragraph)
    )


def _paragraphs(text):
    for paragraph in re.split(r"\n\s*\n|\n%\n", text):
        joined = " ".join(paragraph.split())
        if _is_usable(joined):
            yield joined


@functools.cache
def english_paragraphs(half):
    found = []
    for name in LICENCES[half]:
        found += _paragraphs(_read(f"/usr/share/common-licenses/{name}"))
    for name in ENGLISH_FILES:
        if half_of(name) == half:
            found += _paragraphs(_read(f"/usr/share/games/fortunes/{name}"))
    return sorted(set(found))


@functools.cache
def german_paragraphs(half):
    found = []
    for name in GERMAN_FILES:
        if half_of(name) == half:
            found += _paragraphs(_read(f"/usr/share/games/fortunes/de/{name}"))
    return sorted(set(found))


@functools.cache
def _code_files(half, language):
    if language == "shell":
        files = [f"/usr/bin/{script}" for script in SHELL_SCRIPTS[half].split()]
    else:
        found = {file for pattern in CODE_FILES[language] for file in glob.glob(pattern)}
        files = [file for file in found if half_of(os.path.basename(file)) == half]
    return sorted(file for file in files if os.path.isfile(file) and _is_text(file))


def _is_text(file):
    with open(file, "rb") as stream:
        return b"\0" not in stream.read(4096)


def _code_lines(file):
    """The file's lines without a licence at its head, which would be prose and the same in many files."""
    lines = [line.expandtabs(4).rstrip() for line in _read(file).splitlines()]
    start = next(
        (i for i, line in enumerate(lines) if i > 0 and not re.match(r"\s*(#|//|\*|/\*|$)", line)), 0
    )
    return lines[start:]


def code_passage(random, half, count):
    """Up to count successive lines of code with their common indentation removed, and their language."""
    for _ in range(1000):
        language = random.choice([*CODE_FILES, "shell"])
        files = _code_files(half, language)
        if not files:
            continue
        lines = _code_lines(random.choice(files))
        start = random.randrange(max(1, len(lines) - count))
        passage = lines[start : start + count]
        while passage and not passage[-1]:
            passage.pop()
        text = "\n".join(passage)
        if (
            all(READABLE.match(line) and len(line) <= 100 for line in passage)
            and not RULER.search(text)
            and len(re.findall(r"\w", text)) > 6 * len(passage)
        ):
            return textwrap.dedent(text).strip("\n").split("\n"), language
    raise LookupError("no passage of code found: are the packages of benchmark_packages installed?")


def prose_passage(random, paragraphs, width, count):
    """Up to count lines of a paragraph broken at a width, beginning anywhere, as a selection does."""
    words = random.choice(paragraphs).split()
    if random.random() < 0.5:
        words = words[random.randrange(max(1, len(words) - 8)) :]
    return textwrap.wrap(" ".join(words), width, break_long_words=False, break_on_hyphens=False)[:count]

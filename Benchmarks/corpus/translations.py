"""Prose and labels in the languages of the settings window, from the help and the catalogues of translated programs.

As with the English passages, everything from one page or catalogue belongs to one half, and what both halves have
belongs to none.
"""

import functools
import gettext
import glob
import os
import re
import textwrap
import xml.etree.ElementTree as xml
from dataclasses import dataclass

from passages import HALVES, RULER, TRAINING, half_of

LATIN, CYRILLIC, JAPANESE, CHINESE, KOREAN = "latin", "cyrillic", "japanese", "chinese", "korean"

# The letters that tell that a text is in the script, and what else its fonts can draw.
_LETTERS = {
    LATIN: r"a-zA-Z\u00c0-\u00ff\u0152\u0153",
    CYRILLIC: r"\u0400-\u045f\u0490\u0491",
    JAPANESE: r"\u3041-\u30ff\u4e00-\u9fff",
    CHINESE: r"\u4e00-\u9fff",
    KOREAN: r"\uac00-\ud7a3",
}
_SIGNS = {
    LATIN: r"\x20-\x7e\u00a0\u00ab\u00bb\u00a1\u00bf\u00ba\u00aa\u202f\u2013\u2014\u2018-\u201e\u2026",
    CYRILLIC: r"\x20-\x7e\u00a0\u00ab\u00bb\u2013\u2014\u2018-\u201e\u2026\u2116",
    JAPANESE: r"\x20-\x7e\u3000-\u3011\u201c\u201d\u2026\uff01-\uff5e",
    CHINESE: r"\x20-\x7e\u3000-\u3011\u2014\u2018-\u201d\u2026\uff01-\uff5e",
    KOREAN: r"\x20-\x7e\u2018-\u201d\u2026",
}


@dataclass(frozen=True)
class Language:
    script: str
    locale: str
    fonts: tuple = ()  # Beside those of the script.

    @property
    def breaks_anywhere(self):
        """Whether lines break between any two characters, and not only at spaces."""
        return self.script in (JAPANESE, CHINESE)

    @property
    def is_wide(self):
        """Whether its characters are as wide as they are high."""
        return self.breaks_anywhere or self.script == KOREAN


LANGUAGES = {
    "en-US": Language(LATIN, "C"),
    "fr-FR": Language(LATIN, "fr"),
    "it-IT": Language(LATIN, "it"),
    "de-DE": Language(LATIN, "de"),
    "es-ES": Language(LATIN, "es"),
    "pt-BR": Language(LATIN, "pt_BR"),
    "zh-Hans": Language(CHINESE, "zh_CN", ("Noto Sans CJK SC", "Noto Serif CJK SC", "WenQuanYi Micro Hei")),
    "zh-Hant": Language(CHINESE, "zh_TW", ("Noto Sans CJK TC", "Noto Serif CJK TC")),
    "ja-JP": Language(JAPANESE, "ja", ("Noto Sans CJK JP", "Noto Serif CJK JP", "IPAPGothic")),
    "ko-KR": Language(KOREAN, "ko", ("Noto Sans CJK KR", "Noto Serif CJK KR", "NanumGothic", "NanumMyeongjo")),
    "ru-RU": Language(CYRILLIC, "ru"),
    "uk-UA": Language(CYRILLIC, "uk"),
}
# Pages in two languages, lines of one among lines of the other.
MIXED_PAGES = ("de-DE+en-US", "ja-JP+en-US", "ru-RU+en-US", "zh-Hans+en-US")
TRANSLATED_KINDS = (*LANGUAGES, *MIXED_PAGES)

_CATALOGUES = {TRAINING: "nautilus", HALVES[1]: "gtk30"}
_NO_LINE_START = "、。，．：；！？）」』】〉》”’…ーァィゥェォッャュョ々,.:;!?)"
_NO_LINE_END = "（「『【〈《“‘("


def _fits(tag, text):
    """Whether a text is in the language's script, and its fonts can draw all of it."""
    script = LANGUAGES[tag].script
    letters = re.findall(f"[{_LETTERS[script]}]", text)
    return (
        re.fullmatch(f"[{_LETTERS[script]}{_SIGNS[script]}]*", text)
        and not RULER.search(text)
        and len(letters) >= 0.5 * len(text.replace(" ", ""))
    )


def _help_texts(locale):
    """(page, paragraph) of the desktop's user guide."""
    element_name = "{http://projectmallard.org/1.0/}p"
    for file in sorted(glob.glob(f"/usr/share/help/{locale}/gnome-help/*.page")):
        for element in xml.parse(file).iter(element_name):
            yield os.path.basename(file), "".join(element.itertext())


def _reference_texts(locale):
    """(page, paragraph) of the Debian reference, for the one language that the user guide lacks."""
    for file in sorted(glob.glob(f"/usr/share/debian-reference/ch*.{locale}.html")):
        with open(file, encoding="utf-8") as stream:
            for paragraph in re.findall(r"<p>(.*?)</p>", stream.read(), re.DOTALL):
                if not re.search(r"&\w+;", paragraph):
                    yield os.path.basename(file), re.sub(r"<[^>]+>", "", paragraph)


def _joined(tag, text):
    """A text on one line. Where lines break anywhere, a break in the source is no space."""
    text = text.strip()
    if LANGUAGES[tag].breaks_anywhere:
        wide = r"[\u3000-\u9fff\uff00-\uffef]"
        text = re.sub(rf"(?<={wide})\s*\n\s*(?={wide})", "", text)
    return " ".join(text.split())


@functools.cache
def paragraphs(tag, half):
    locale = LANGUAGES[tag].locale
    texts = list(_reference_texts("zh-tw") if locale == "zh_TW" else _help_texts(locale))
    untranslated = set() if locale == "C" else {_joined("en-US", text) for _, text in _help_texts("C")}
    shortest = 20 if LANGUAGES[tag].is_wide else 60
    found = {name: set() for name in HALVES}
    for page, text in texts:
        joined = _joined(tag, text)
        if shortest < len(joined) < 1500 and joined not in untranslated and _fits(tag, joined):
            found[half_of(page)].add(joined)
    return sorted(found[half] - found[HALVES[1 - HALVES.index(half)]])


@functools.cache
def _catalogue_labels(tag, half):
    """What is written on buttons and in menus, without their keyboard letters."""
    # A language without a catalogue is the one that programs are written in: the keys of another's.
    locale = LANGUAGES[tag].locale
    catalogue = gettext.translation(_CATALOGUES[half], "/usr/share/locale", ["de" if locale == "C" else locale])
    labels = set()
    for key, value in catalogue._catalog.items():
        if not isinstance(key, str) or not isinstance(value, str):
            continue
        source = key.split("\4")[-1]
        text = source if locale == "C" else value
        text = re.sub(r"\s*\(_\w\)", "", text).replace("_", "")
        if 2 <= len(text) <= 30 and not re.search(r"[%\n\\<]", text) and _fits(tag, text):
            if locale == "C" or value != source:
                labels.add(text)
    return labels


@functools.cache
def labels(tag, half):
    mine, other = (_catalogue_labels(tag, name) for name in (half, HALVES[1 - HALVES.index(half)]))
    return sorted(mine - other)


def _break_anywhere(text, width):
    """Lines of so many characters, those of half the width counted as half, by the rules for what may start or
    end a line. Words of Latin letters stay whole."""
    pieces = re.findall(r"[!-~]+ ?|.", text)
    lines, line, used = [], "", 0.0
    for piece in pieces:
        size = sum(0.5 if c < "\u2000" else 1 for c in piece)
        if line and used + size > width and piece[0] not in _NO_LINE_START and line[-1] not in _NO_LINE_END:
            lines.append(line)
            line, used = "", 0.0
        line, used = line + piece, used + size
    return [*lines, line] if line else lines


def _prose(random, tag, half, width, count):
    text = random.choice(paragraphs(tag, half))
    if LANGUAGES[tag].breaks_anywhere:
        lines = _break_anywhere(text, width // 2)
    else:
        lines = textwrap.wrap(
            text, width // 2 if LANGUAGES[tag].is_wide else width, break_long_words=False, break_on_hyphens=False
        )
    start = random.randrange(len(lines)) if random.random() < 0.5 and len(lines) > count else 0
    return lines[start : start + count]


def translated_lines(random, kind, half):
    """Lines of prose or labels in the language, or languages, of the kind."""
    tags = kind.split("+")
    width = random.choice([24, 36, 50, 64, 80, 96])
    if len(tags) == 1 and random.random() < 0.4:
        choice = labels(tags[0], half)
        return [random.choice(choice) for _ in range(random.choice([1, 1, 2, 4, 6]))]
    if len(tags) == 1:
        return _prose(random, tags[0], half, width, random.choice([1, 1, 2, 3, 4, 6, 8, 12, 16]))
    lines = []
    random.shuffle(tags)
    for tag in tags * random.choice([1, 1, 2]):
        if random.random() < 0.4:
            lines += [random.choice(labels(tag, half)) for _ in range(random.choice([1, 2, 3]))]
        else:
            lines += _prose(random, tag, half, width, random.choice([1, 2, 3, 4]))
    return lines


def fonts_of(kind):
    """The fonts that draw all languages of the kind; none where any font of the corpus does."""
    for tag in kind.split("+"):
        if tag in LANGUAGES and LANGUAGES[tag].fonts:
            return LANGUAGES[tag].fonts
    return ()

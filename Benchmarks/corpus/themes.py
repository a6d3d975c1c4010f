"""Colours of screen text: a ground, its text, what is selected, and the signs of source code."""

import re
from dataclasses import dataclass


@dataclass(frozen=True)
class Theme:
    name: str
    ground: str  # light, dark or coloured
    background: str
    text: str
    accent: str
    on_accent: str
    comment: str
    string: str
    keyword: str
    number: str


def _light(name, background, text):
    return Theme(
        name, "light", background, text, "#3584e4", "#ffffff", "#6a737d", "#0a6e31", "#0033b3", "#1750eb"
    )


def _dark(name, background, text):
    return Theme(
        name, "dark", background, text, "#264f78", "#ffffff", "#7f9f7f", "#ce9178", "#569cd6", "#b5cea8"
    )


def _coloured(name, background, text, accent, on_accent):
    return Theme(name, "coloured", background, text, accent, on_accent, text, text, text, text)


THEMES = [
    _light("white", "#ffffff", "#1f1f1f"),
    _light("black-on-white", "#ffffff", "#000000"),
    _light("paper", "#fafafa", "#3d3846"),
    _light("silver", "#ebebeb", "#2e3436"),
    _light("faint", "#ffffff", "#767676"),
    _dark("charcoal", "#1e1e1e", "#d4d4d4"),
    _dark("slate", "#282c34", "#abb2bf"),
    _dark("night", "#0d1117", "#c9d1d9"),
    _dark("white-on-black", "#000000", "#ffffff"),
    _dark("dim", "#2d2d2d", "#9a9a9a"),
    _coloured("aubergine", "#300a24", "#eeeeec", "#eeeeec", "#300a24"),
    _coloured("blue", "#3584e4", "#ffffff", "#1a5fb4", "#ffffff"),
    _coloured("red", "#c01c28", "#ffffff", "#ffffff", "#c01c28"),
    _coloured("green", "#1b7f4d", "#ffffff", "#ffffff", "#1b7f4d"),
    _coloured("yellow", "#f5c211", "#241f31", "#241f31", "#f5c211"),
    _coloured("cream", "#fdf6e3", "#586e75", "#268bd2", "#fdf6e3"),
    _coloured("petrol", "#002b36", "#93a1a1", "#268bd2", "#fdf6e3"),
    _coloured("sky", "#e5f1fb", "#0b3d66", "#0b3d66", "#e5f1fb"),
]

_KEYWORDS = (
    r"\b(?:def|class|return|import|from|if|elif|else|for|while|in|not|and|or|with|try|except|raise|pass|None|True|False"
    r"|const|static|struct|template|typename|using|namespace|void|int|bool|char|unsigned|public|private|noexcept"
    r"|my|our|sub|use|unless|foreach|then|fi|do|done|case|esac|function|endif|endforeach|set|endfunction)\b"
)
_COMMENTS = {"c": r"//.*|/\*.*", "c++": r"//.*|/\*.*"}


def coloured(line, language, theme):
    """A line of code as spans of (text, colour)."""
    comment = _COMMENTS.get(language, r"(?<!\S)#.*")
    tokens = re.compile(
        f"(?P<comment>{comment})|(?P<string>\"[^\"]*\"|'[^']*')|(?P<keyword>{_KEYWORDS})|(?P<number>\\b\\d\\w*)"
    )
    spans, end = [], 0
    for token in tokens.finditer(line):
        if token.start() > end:
            spans.append((line[end : token.start()], theme.text))
        spans.append((token.group(), getattr(theme, token.lastgroup)))
        end = token.end()
    if end < len(line) or not spans:
        spans.append((line[end:], theme.text))
    return spans

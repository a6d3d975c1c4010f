"""The icons of Debian's usual theme, those in one colour, as side bars and menus have them beside their labels."""

import base64
import pathlib

from passages import HELD_OUT

_THEME = pathlib.Path("/usr/share/icons/Adwaita/scalable")
# Words in the names of icons that are, or hold, a letter, a digit or a punctuation mark.
_WITH_CHARACTERS = (
    "text", "font", "bold", "italic", "underline", "strike", "character", "spell", "calendar", "calculator",
    "cellular", "help", "question", "information", "important", "warning", "error", "about", "keyboard", "list-ordered",
    "percent", "display-1",
)  # fmt: skip


def icons_of(half):
    """The paths of the icons of a half, of which the other has none."""
    paths = sorted(_THEME.glob("*/*-symbolic.svg"))
    plain = [path for path in paths if not any(word in path.name for word in _WITH_CHARACTERS)]
    if not plain:
        raise RuntimeError("there are no icons: the package adwaita-icon-theme has them")
    return [str(path) for path in plain[half == HELD_OUT :: 2]]


def icon_element(path, size, gap, colour):
    """The icon as an element of a page: a square of `size` in a colour, and a gap behind it, in its pixels."""
    data = base64.b64encode(pathlib.Path(path).read_bytes()).decode()
    return (
        f'<span style="display:inline-block;vertical-align:middle;width:{size}px;height:{size}px;'
        f"margin-right:{gap}px;background:{colour};"
        f'-webkit-mask:url(data:image/svg+xml;base64,{data}) center/contain no-repeat"></span>'
    )

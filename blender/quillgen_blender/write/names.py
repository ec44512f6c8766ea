"""Names of folders and files that every file system takes, and that no two materials share."""

import re
import unicodedata
from collections.abc import Container

TEXTURES = "_textures"
TEMPORARY = ".quillgen-"  # what a file or folder that isn't in its place yet begins with

# Windows keeps these for devices, whatever follows behind a dot.
DEVICES = re.compile(r"(CON|PRN|AUX|NUL|CONIN\$|CONOUT\$|(COM|LPT)[0-9\u00b9\u00b2\u00b3])(\..*)?", re.IGNORECASE)
REFUSED = re.compile(r'[<>:"/\\|?*\x00-\x1f\x7f\ud800-\udfff]')
LONGEST = 120  # bytes; most file systems take 255, Windows 260 characters for the whole path


def plain(name: str) -> str:
    """The nearest name that Linux, macOS and Windows take as a folder."""
    text = REFUSED.sub("_", name)
    text = text.encode()[:LONGEST].decode(errors="ignore")
    text = re.sub(r"[. ]+$", lambda end: "_" * len(end[0]), text)  # Windows drops dots and blanks at the end
    text = re.sub(r"^[. ]", "_", text)  # a dot at the start hides it
    if DEVICES.fullmatch(text):
        text = "_" + text
    return text or "_"


def key(name: str) -> str:
    """Equal for names that some file system holds for the same: macOS and Windows don't tell case apart, macOS
    nor how an accent is composed."""
    return unicodedata.normalize("NFC", unicodedata.normalize("NFD", name).casefold())


def free(name: str, taken: Container[str]) -> str:
    """A folder for a material of this name; `taken` holds the keys of those that aren't free."""
    wish = plain(name)
    found, count = wish, 1
    while key(found) in taken or key(found) == key(TEXTURES):
        count += 1
        found = f"{wish} {count}"
    return found


def stem(image: str) -> str:
    """What a picture's file begins with: its name's letters and digits, without the ending of a file."""
    name = re.sub(r"\.[A-Za-z0-9]{2,4}$", "", image)
    return re.sub(r"[^A-Za-z0-9_-]+", "_", name).strip("_")[:60] or "picture"

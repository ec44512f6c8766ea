"""Names of folders and files that are valid in every file system and unique for each material."""

import re
import unicodedata
from collections.abc import Container

TEXTURES = "_textures"
TEMPORARY = ".quillgen-"  # prefix of a file or folder that isn't in its final place yet

# Windows reserves these for devices, with any extension.
DEVICES = re.compile(r"(CON|PRN|AUX|NUL|CONIN\$|CONOUT\$|(COM|LPT)[0-9\u00b9\u00b2\u00b3])(\..*)?", re.IGNORECASE)
REFUSED = re.compile(r'[<>:"/\\|?*\x00-\x1f\x7f\ud800-\udfff]')
LONGEST = 120  # bytes; most file systems allow 255, Windows 260 characters for the whole path


def plain(name: str) -> str:
    """The nearest name that is valid for a folder on Linux, macOS and Windows."""
    text = REFUSED.sub("_", name)
    text = text.encode()[:LONGEST].decode(errors="ignore")
    text = re.sub(r"[. ]+$", lambda end: "_" * len(end[0]), text)  # Windows drops dots and blanks at the end
    text = re.sub(r"^[. ]", "_", text)  # a dot at the start hides it
    if DEVICES.fullmatch(text):
        text = "_" + text
    return text or "_"


def key(name: str) -> str:
    """Equal for names that some file system treats as the same: macOS and Windows ignore case, and macOS ignores how an
    accent is composed."""
    return unicodedata.normalize("NFC", unicodedata.normalize("NFD", name).casefold())


def free(name: str, taken: Container[str]) -> str:
    """A free folder name for a material of this name; `taken` holds the keys of the names in use."""
    wish = plain(name)
    found, count = wish, 1
    while key(found) in taken or key(found) == key(TEXTURES):
        count += 1
        found = f"{wish} {count}"
    return found


def stem(image: str) -> str:
    """The start of a picture's file name: the letters and digits of the image's name, without an extension."""
    name = re.sub(r"\.[A-Za-z0-9]{2,4}$", "", image)
    return re.sub(r"[^A-Za-z0-9_-]+", "_", name).strip("_")[:60] or "picture"

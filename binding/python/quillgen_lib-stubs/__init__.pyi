from collections.abc import Iterable
from types import MappingProxyType
from typing import Final

__version__: Final[str]
NAMES: Final[tuple[str, ...]]
STRUCTS: Final[MappingProxyType[str, str]]
TYPES: Final[MappingProxyType[int, str]]

def resolve(need: Iterable[str], /) -> list[str]: ...

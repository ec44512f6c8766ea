"""The exports of python3.dll on Windows in CPython 3.11 (the stable ABI), as a module definition file."""

from abi3info import DATAS, FUNCTIONS
from abi3info.models import PyVersion

OLDEST = PyVersion(3, 11)


def text() -> str:
    functions = (symbol.name for symbol, function in FUNCTIONS.items() if function.added <= OLDEST)
    data = (f"{symbol.name} DATA" for symbol, datum in DATAS.items() if datum.added <= OLDEST)
    return "\n    ".join(["LIBRARY python3.dll\nEXPORTS", *sorted(functions), *sorted(data)]) + "\n"

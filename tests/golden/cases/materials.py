"""The example materials."""

from golden.cases import Case
from golden.documents import EXAMPLES, example

NAMES = sorted(path.stem for path in EXAMPLES.glob("*.json"))


def cases():
    for name in NAMES:
        yield (
            f"material {name}",
            [
                Case("surface", example(name), "surface", True),
                Case("literals", example(name), "surface", False),
                Case("base colour", example(f"reference/{name}.base"), "emission", False),
            ][: 3 if name == "white_marble" else 1],
        )

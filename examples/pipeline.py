"""A minimal pipeline: translates every document of a folder to a text and a list of the inputs to wire.

python examples/pipeline.py [FOLDER]
"""

import json
import sys
from pathlib import Path

import quillgen
from quillgen_tools.types import Document, Input, Result
from quillgen_tools.wiring import expression


def wires(inputs: list[Input]) -> dict[str, str]:
    return {one["name"]: expression(one) for one in inputs}


def main(folder: Path) -> None:
    paths = sorted(folder.glob("*.json"))
    if not paths:
        sys.exit(f"no documents in {folder}")
    for path in paths:
        document: Document = json.loads(path.read_text(encoding="utf-8"))
        try:
            result: Result = quillgen.compile(document)
        except quillgen.Unsupported as error:
            print(f"{path.stem}: {error}")
            continue
        print(f"{path.stem}: {result['material']['shading']}, {len(result['code'])} characters")
        for name, wire in wires(result["inputs"]).items():
            print(f"    {name}: {wire}")


if __name__ == "__main__":
    main(Path(sys.argv[1] if len(sys.argv) > 1 else "examples/materials"))

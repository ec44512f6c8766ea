"""Translates material documents into HLSL files, with a table of what to wire beside each.

    python examples/translate.py [DOCUMENT.json ...] [--out FOLDER]

Without documents it takes examples/materials/*.json. NAME.hlsl is the text of the Custom expression, NAME.md the
table; a material with real displacement has NAME.displacement.hlsl as well.
"""

import argparse
import json
from pathlib import Path

import quillgen

ROOT = Path(__file__).resolve().parents[1]


def main():
    parser = argparse.ArgumentParser(description=__doc__, formatter_class=argparse.RawDescriptionHelpFormatter)
    parser.add_argument("documents", nargs="*", type=Path)
    parser.add_argument("--out", type=Path, default=ROOT / "out" / "materials")
    options = parser.parse_args()
    documents = options.documents or sorted((ROOT / "examples" / "materials").glob("*.json"))
    options.out.mkdir(parents=True, exist_ok=True)
    for path in documents:
        result = quillgen.compile(json.loads(path.read_text(encoding="utf-8")))
        write(options.out, path.stem, result)
        print(f"{path.stem}: {len(result['code']) // 1024} KB, {len(result['inputs'])} inputs", *warned(result))
    print(f"\n{len(documents)} materials are in {options.out}: NAME.hlsl and, beside it, NAME.md")


def warned(result):
    return [f"({len(result['warnings'])} warnings)"] if result["warnings"] else []


def write(folder, name, result):
    (folder / f"{name}.hlsl").write_text(result["code"] + "\n", encoding="utf-8")
    (folder / f"{name}.md").write_text(tables(name, result), encoding="utf-8")
    if result["displacement"]:
        (folder / f"{name}.displacement.hlsl").write_text(result["displacement"]["code"] + "\n", encoding="utf-8")


def tables(name, result):
    lines = [f"# {name}", ""]
    lines += table(["Setting", "Value"], result["material"].items())
    lines += ["## Inputs", ""] + input_table(result["inputs"])
    lines += ["## Outputs", "", "The text returns the base colour, and assigns:", ""]
    lines += table(["Output", "Type", "Material property"], [(o["name"], o["type"], o["property"]) for o in result["outputs"]])
    if result["displacement"]:
        lines += ["## Displacement", "", f"Magnitude: {result['displacement']['magnitude']} cm. Inputs of its text:", ""]
        lines += input_table(result["displacement"]["inputs"])
    if result["warnings"]:
        lines += ["## Warnings", ""] + [f"- {warning}" for warning in result["warnings"]] + [""]
    return "\n".join(lines)


def input_table(inputs):
    def details(entry):
        return ", ".join(f"{key} {value}" for key, value in entry.items() if key not in ("name", "kind"))

    return table(["Input", "Kind", "Details"], [(e["name"], e["kind"], details(e)) for e in inputs])


def table(head, rows):
    row = "| {} |".format
    lines = [row(" | ".join(head)), row(" | ".join("---" for _ in head))]
    return lines + [row(" | ".join(str(cell).replace("|", "\\|") for cell in cells)) for cells in rows] + [""]


if __name__ == "__main__":
    main()

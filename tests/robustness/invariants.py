"""Invariants of every document, which the fuzzers check."""

import re

import quillgen
from robustness.outcomes import CALLS, outcome

RESULT = ["code", "inputs", "outputs", "material", "warnings", "params", "displacement"]
NAME = re.compile(r"\b(?:v|bsdf|surf|img|ct|rc|vp|sz|nm|c)\d+\b")
DECLARATION = re.compile(r"\b(?:float[234]?|QWKClosure|QWKVoronoiParams|QWKVoronoiOutput) (\w+)\b")


class Broken(AssertionError):
    """An invariant that does not hold."""


def insist(holds, what):
    if not holds:
        raise Broken(what)


def check(document):
    """Translates a document in every way, twice. Returns the number of calls and their outcomes."""
    before = repr(document)
    endings = []
    for name, call in CALLS.items():
        first = outcome(call, document)
        insist(repr(outcome(call, document)) == repr(first), f"{name}: the second call ends in another way")
        insist(repr(document) == before, f"{name}: the document has changed")
        if first[0] == "result" and name.startswith("compile"):
            check_result(first[1])
        endings.append(first[0] if first[0] == "result" else first[1].__name__)
    insist(repr(outcome(in_one, document)) == repr(outcome(in_two, document)), "compile is not parts and assemble")
    return 2 * len(CALLS) + 3, endings


def in_one(document):
    return quillgen.compile(document, "emission", False)["code"]


def in_two(document):
    made = quillgen.parts(document)
    return quillgen.assemble([(made["body"], made["ret"])], made["structs"], made["need"])


def check_result(result):
    insist(list(result) == RESULT, "keys of the result")
    check_text(result)
    names = {record["name"] for record in result["inputs"]}
    if result["displacement"]:
        insist(list(result["displacement"]) == ["code", "inputs", "magnitude"], "keys of the displacement")
        check_text(result["displacement"])
        names |= {record["name"] for record in result["displacement"]["inputs"]}
    insist(result["params"].keys() <= names, "a parameter without an input")
    insist(all(type(warning) is str for warning in result["warnings"]), "warnings")


def check_text(part):
    names = [record["name"] for record in part["inputs"]]
    insist(names == sorted(set(names)), "inputs are not in order")
    insist(not part["code"].endswith("\n"), "the last line")
    seen = set()
    for statement in part["code"].split("\nQWK L;\n", 1)[1].split("\n"):
        declared = [name for name in DECLARATION.findall(statement) if NAME.fullmatch(name)]
        insist(not seen & set(declared), f"declared twice: {statement}")
        seen |= set(declared)
        insist(set(NAME.findall(statement)) <= seen, f"read before it is declared: {statement}")

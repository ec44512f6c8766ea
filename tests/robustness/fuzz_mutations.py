#!/usr/bin/env python3
"""Fuzzer that puts a few wrong values into golden documents and example materials.

    python fuzz_mutations.py --calls 1000000 [--seed N] [--only NUMBER] [--objects]

The seed and the number of a document reproduce it: --only prints it and translates only this one. With --objects some
values are objects whose own code raises or changes the document during the translation.
"""

import argparse
import collections
import contextlib
import copy
import math
import pathlib
import pprint
import random
import sys

sys.path[:0] = [str(pathlib.Path(__file__).parents[1]), str(pathlib.Path(__file__).parents[1] / "gpu")]

from golden.cases import all_cases
from robustness.hostile import Mine, raising, shuffle, trap, wreck
from robustness.invariants import check
from robustness.outcomes import CALLS, at, outcome, paths

LARGEST = 6000  # characters of a document; larger ones are slow to copy and repetitive
ODD = [
    None,
    True,
    False,
    0,
    1,
    -1,
    2.5,
    1e300,
    -0.0,
    5e-324,
    math.nan,
    math.inf,
    -math.inf,
    10**400,
    "",
    "0.5",
    "Color",
    "VALUE",
    "RGBA",
    "SHADER",
    "VECTOR",
    "BOX",
    "4D",
    "\ud800",
    "a\0b",
    "é" * 40,
    b"x",
    [],
    [1],
    [1, 2],
    [1, 2, 3, 4, 5],
    ["a", "b", "c"],
    [None],
    [math.nan] * 3,
    [[1, 2], [3]],
    (),
    (1.0, 2.0, 3.0),
    ("x", "y"),
    {},
    {"v": 1},
    {"link": ["a", "b", None]},
    {"t": "VALUE", "v": 0.5},
    {1, 2},
    [0.1, [1, 0, 0, 1]],
]


def sources():
    found = {}
    for cases in all_cases().values():
        for case in cases.values():
            if case.document and len(repr(case.document)) < LARGEST:
                found.setdefault(repr(case.document), case.document)
    return list(found.values())


def words(value):
    if isinstance(value, str):
        yield value
    elif isinstance(value, dict):
        for key, item in value.items():
            yield key
            yield from words(item)
    elif isinstance(value, (list, tuple)):
        for item in value:
            yield from words(item)


def mutate(chance, document, objects):
    """Changes one place of the document. Returns the document."""
    places = list(paths(document))
    path = chance.choice(places)
    if not path:
        return copy.deepcopy(chance.choice(ODD)) if chance.random() < 0.1 else document
    holder, key = at(document, path[:-1]), path[-1]
    if not isinstance(holder, (dict, list)):
        return document
    value = holder[key]
    kind = chance.randrange(8 if objects else 7)
    if kind == 0:
        del holder[key]
    elif kind <= 2:
        holder[key] = copy.deepcopy(chance.choice(ODD))
    elif kind == 3:
        holder[key] = copy.deepcopy(at(document, chance.choice(places)))
    elif kind == 4:
        holder[key] = chance.choice(list(filter(lambda word: isinstance(word, str), words(document))) or ["x"])
    elif kind == 5 and isinstance(holder, list):
        holder.insert(key, copy.deepcopy(chance.choice([value, *ODD])))
    elif kind == 5:
        holder[chance.choice(list(holder) + [0, None, (1, 2), "x"])] = holder.pop(key)
    elif kind == 6:
        holder[key] = {
            list: tuple,
            float: str,
            str: lambda text: [text],
            dict: lambda map: list(map.items()),
            int: float,
            bool: int,
        }.get(type(value), lambda other: [other])(value)
    elif chance.random() < 0.5:
        holder[key] = raising(value)
    else:
        change = chance.choice([wreck, shuffle])
        holder[key] = trap(value, lambda name: change(document))
    return document


def mutant(documents, seed, number, objects=False):
    chance = random.Random(f"{seed} {number}")
    document = copy.deepcopy(chance.choice(documents))
    for _ in range(chance.choice([1, 1, 2, 3])):
        with contextlib.suppress(Exception):  # an earlier mutation can interfere or run its own code
            document = mutate(chance, document, objects)
    return document


def survive(document):
    """Checks for documents that change during the translation: it must end with a result or an error."""
    endings = [outcome(call, document, [Mine, RuntimeError]) for call in CALLS.values()]
    return len(CALLS), [ending[0] if ending[0] == "result" else ending[1].__name__ for ending in endings]


def fuzz(calls, seed, objects=False, first=0):
    """Makes mutants until that many calls are done. Returns the outcomes of the calls."""
    documents, measure = sources(), survive if objects else check
    done, number, endings = 0, first, collections.Counter()
    while done < calls:
        document = mutant(documents, seed, number, objects)
        try:
            made, found = measure(document)
        except BaseException:
            print(f"seed {seed}, document {number}", flush=True)
            raise
        done += made
        endings.update(found)
        number += 1
    return done, endings


def main():
    options = argparse.ArgumentParser(description=__doc__, formatter_class=argparse.RawDescriptionHelpFormatter)
    options.add_argument("--calls", type=int, default=20_000)
    options.add_argument("--seed", type=int, default=random.randrange(2**31))
    options.add_argument("--only", type=int)
    options.add_argument("--objects", action="store_true")
    given = options.parse_args()
    print("seed", given.seed, flush=True)
    if given.only is not None:
        pprint.pprint(mutant(sources(), given.seed, given.only, given.objects), sort_dicts=False)
        given.calls = 1
    done, endings = fuzz(given.calls, given.seed, given.objects, given.only or 0)
    print(done, "calls:", ", ".join(f"{name} {number}" for name, number in endings.most_common()))


if __name__ == "__main__":
    main()

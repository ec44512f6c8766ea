#!/usr/bin/env python3
"""Fuzzer that generates valid and invalid documents from the table of node types. hypothesis shrinks the failures.

python fuzz_documents.py --calls 1000000 [--seed N]
"""

import argparse
import collections
import copy
import functools
import pathlib
import random
import re
import sys

sys.path[:0] = [str(pathlib.Path(__file__).parents[1]), str(pathlib.Path(__file__).parents[1] / "gpu")]

import hypothesis
from hypothesis import strategies as st

from golden.cases import all_cases
from golden.documents import IMAGES
from golden.node_types import FURTHER, OPTIONAL, SHADER, TYPES
from robustness.invariants import check, insist

KINDS = sorted(TYPES)
NUMBERS = st.floats(width=32) | st.integers(-3, 3) | st.booleans() | st.floats()
NAMES = st.text(st.characters(), max_size=6)
WORDS = st.sampled_from(KINDS + ["VALUE", "RGBA", "VECTOR", "SHADER", "ROTATION", "STRING", "Color", "Value"])
WRONG = st.one_of(
    st.none(), st.booleans(), st.integers(), st.just(10**400), st.floats(), NAMES, st.binary(max_size=3), WORDS
)
WRONG = st.recursive(
    WRONG,
    lambda inner: (
        st.lists(inner, max_size=5)
        | st.dictionaries(NAMES, inner, max_size=3)
        | st.dictionaries(st.sampled_from(["t", "v", "link"]), inner)
        | st.tuples(inner, inner, inner)
    ),
    max_leaves=8,
)


@functools.cache
def words_of(kind):
    """property -> all its values in the golden documents."""
    words = collections.defaultdict(list)
    for cases in all_cases().values():
        for case in cases.values():
            for record in (case.document or {"nodes": ()})["nodes"]:
                if record.get("type") == kind:
                    for key, value in record.get("props", {}).items():
                        if value not in words[key]:
                            words[key].append(value)
    return dict(words)


@st.composite
def records(draw, kind, node_id, sources):
    """A valid record. `sources`: the (id, output, type) that it may read."""
    sockets, outputs, _ = TYPES[kind]
    inputs = {}
    for name, entry in sockets.items():
        fitting = [source for source in sources if (source[2] == SHADER) == (entry["t"] == SHADER)]
        if name in OPTIONAL.get(kind, ()) and name != "Coat Roughness" and draw(st.integers(0, 4)) == 0:
            continue
        if fitting and draw(st.booleans()):
            source = draw(st.sampled_from(fitting))
            inputs[name] = {"t": entry["t"], "link": [*source[:2], draw(st.sampled_from([source[2], None, ""]))]}
        else:
            value = entry.get("v")
            several = st.lists(NUMBERS, min_size=3, max_size=4)
            inputs[name] = {"t": entry["t"], "v": draw(several if isinstance(value, list) else NUMBERS)}
    props = {key: draw(st.sampled_from(values)) for key, values in words_of(kind).items() if draw(st.integers(0, 3))}
    return {
        "id": node_id,
        "type": kind,
        "in": inputs,
        "outs": outputs,
        "props": props,
        **copy.deepcopy(FURTHER.get(kind, {})),
    }


@st.composite
def sound_documents(draw, apart=False):
    """Valid documents: no cycles, and shader sockets link only to shaders. `apart`: no two nodes share parameter names,
    since the last one would win, whatever its type."""
    sources, nodes = [], []
    spelling = (lambda name: re.sub("[^A-Za-z0-9]", "_", name)) if apart else str
    for node_id in draw(st.lists(NAMES, min_size=1, max_size=6, unique_by=spelling)):
        kind = draw(st.sampled_from(KINDS))
        nodes.append(draw(records(kind, node_id, sources)))
        if kind != "ShaderNodeMix":  # it has only the output of its data type
            sources += [(node_id, output, word) for output, word in TYPES[kind][1].items()]
    hypothesis.assume(sources)
    document = {"nodes": draw(st.permutations(nodes)), "out": {"surface": list(sources[-1][:2])}, "images": IMAGES}
    vectors = [source for source in sources if source[2] != SHADER]
    if vectors and draw(st.booleans()):
        document["out"]["displacement"] = list(draw(st.sampled_from(vectors))[:2])
    document["settings"] = draw(
        st.fixed_dictionaries(
            {},
            optional={
                "displacement": st.sampled_from(["BUMP", "DISPLACEMENT", "BOTH", "NONE"]),
                "backface_culling": st.booleans(),
                "blend": st.sampled_from(["BLENDED", "HASHED"]),
            },
        )
    )
    document["uv_maps"] = draw(st.lists(st.sampled_from(["Col", "UVMap", "second"]), max_size=3))
    return document


@st.composite
def wrong_documents(draw):
    """A valid document with wrong values in a few places."""
    document = copy.deepcopy(draw(sound_documents()))
    for _ in range(draw(st.integers(1, 4))):
        holder = document
        while True:
            key = draw(st.sampled_from(sorted(holder) if isinstance(holder, dict) else range(len(holder))))
            if not (isinstance(holder[key], (dict, list)) and holder[key]) or draw(st.integers(0, 4)) == 0:
                break
            holder = holder[key]
        if draw(st.booleans()):
            holder[key] = draw(WRONG)
        else:
            del holder[key]
        if not document:
            break
    return document


def check_sound(document):
    """Checks that a valid document translates, unless a number is too large to convert or an enumeration value selects
    no function."""
    calls, endings = check(document)
    insist(set(endings) <= {"result", "OverflowError", "ValueError", "KeyError", "UnicodeEncodeError"}, endings)
    return calls, endings


def fuzz(calls, seed):
    """Generates documents until that many calls are done. Returns their outcomes."""
    done, endings, batch = 0, collections.Counter(), 0
    while done < calls:
        for strategy, measure in ((sound_documents(), check_sound), (wrong_documents(), check)):
            counted = []

            @hypothesis.seed(seed + batch)
            @hypothesis.settings(
                max_examples=min(500, max(20, (calls - done) // 26)),
                deadline=None,
                database=None,
                suppress_health_check=list(hypothesis.HealthCheck),
                print_blob=True,
            )
            @hypothesis.given(strategy)
            def one(document):
                counted.append(measure(document))  # noqa: B023  (it is called in this turn)

            one()
            done += sum(number for number, _ in counted)
            endings.update(ending for _, found in counted for ending in found)
            batch += 1
    return done, endings


def main():
    options = argparse.ArgumentParser(description=__doc__, formatter_class=argparse.RawDescriptionHelpFormatter)
    options.add_argument("--calls", type=int, default=20_000)
    options.add_argument("--seed", type=int, default=random.randrange(2**31))
    given = options.parse_args()
    print("seed", given.seed, flush=True)
    done, endings = fuzz(given.calls, given.seed)
    print(done, "calls:", ", ".join(f"{name} {number}" for name, number in endings.most_common()))


if __name__ == "__main__":
    main()

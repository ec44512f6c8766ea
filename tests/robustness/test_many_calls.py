"""Many calls in sequence and in parallel: memory use doesn't grow, and all results are identical."""

import json
import subprocess
import threading

import pytest

import quillgen
from golden.documents import example
from robustness.isolated import run
from robustness.outcomes import base_documents

# After a warm-up, memory use is measured at intervals and its peaks are compared.
FLAT = """
import copy, gc, os, resource, sys
import quillgen
from golden.documents import material, node
from robustness.outcomes import CALLS, at, base_documents, outcome, paths, put

def resident():
    gc.collect()
    return int(open("/proc/self/statm").read().split()[1]) * resource.getpagesize()

documents = list(base_documents().values())
calls = list(CALLS.values())

def sound(number):
    outcome(calls[number % 5], documents[number % len(documents)])

def without(document, path):
    document = copy.deepcopy(document)
    del at(document, path[:-1])[path[-1]]
    return document

places = [(d, path) for d in documents[::7] for path in list(paths(d))[1::5]]
wrong = [put(copy.deepcopy(d), path, value) for d, path in places for value in (None, [], 10**400)]
wrong += [without(d, path) for d, path in places * 3]

def mistaken(number):
    outcome(calls[number % 5], wrong[number % len(wrong)])

def named_anew(number):
    result = quillgen.compile(material(node("Gamma", id=f"a node that is named {number}")))
    assert f"P_a_node_that_is_named_{number}__Color" in result["params"]
    quillgen.param_name(f"node {number}", "Value"), quillgen.tex_input(f"image {number}.png")

work = {"sound": sound, "mistaken": mistaken, "named anew": named_anew}[sys.argv[1]]
warm_up, calls_between, looked_at = 10_000, 100_000, 20_000
last = warm_up + calls_between
peaks = {warm_up: [0, 0], last: [0, 0]}
for _ in range(3):
    resident(), len(gc.get_objects())  # the first looks take memory of their own
for number in range(last + looked_at):
    work(number)
    start = last if number >= last else warm_up
    if number % 1_000 == 0 and start <= number < start + looked_at:
        peaks[start] = [*map(max, peaks[start], (resident(), len(gc.get_objects())))]
print(*(after - before for before, after in zip(peaks[warm_up], peaks[last])))
"""


@pytest.mark.parametrize("work", ["sound", "mistaken", "named anew"])
def test_memory_is_flat(work):
    grown, objects = map(int, run(FLAT, work, timeout=300).split())
    assert grown < 300_000 and abs(objects) < 100


def test_the_check_sees_a_leak():
    leaking = FLAT.replace(
        "outcome(calls[number % 5], documents[number % len(documents)])", "LEAK.append(str(number) * 10)"
    ).replace("import copy", "LEAK = []\nimport copy")
    grown, _ = map(int, run(leaking, "sound").split())
    assert grown > 1_000_000


def test_eight_threads_give_the_same_bytes():
    documents = [example(name) for name in ("oak_planks", "lava", "mossy_rock", "pbr_crate")]
    wanted = [json.dumps(quillgen.compile(document)) for document in documents]
    results = {}

    def work(number):
        results[number] = [[json.dumps(quillgen.compile(document)) for document in documents] for _ in range(25)]

    threads = [threading.Thread(target=work, args=[number]) for number in range(8)]
    for thread in threads:
        thread.start()
    for thread in threads:
        thread.join()
    assert all(result == wanted for number in range(8) for result in results[number])


def test_eight_threads_with_objects_that_let_others_run():
    """The interpreter can switch threads while it runs Python code of objects in the document."""

    class Slow(float):
        def __gt__(self, other):
            for _ in range(2000):
                pass
            return float.__gt__(self, other)

    document = base_documents()["ShaderNodeBsdfPrincipled"]
    for record in document["nodes"]:
        for name in ("Coat Weight", "Sheen Weight", "Subsurface Weight"):
            record["in"][name] = {"t": "VALUE", "v": Slow(0.5)}
    wanted = quillgen.compile(document)
    results = []
    threads = [
        threading.Thread(target=lambda: results.extend(quillgen.compile(document) for _ in range(50))) for _ in range(8)
    ]
    for thread in threads:
        thread.start()
    for thread in threads:
        thread.join()
    assert len(results) == 400 and all(result == wanted for result in results)


EVERYTHING = """
import hashlib
from golden.documents import material, node
from robustness.outcomes import CALLS, base_documents, outcome, plain
numbers = [material(node("Gamma", {"Gamma": number})) for number in (0.25, -1.5e300, 2.5e-7, 123456.789)]
said = [plain(outcome(call, d)) for d in [*base_documents().values(), *numbers] for call in CALLS.values()]
print(hashlib.sha256(repr(said).encode("utf-8", "surrogatepass")).hexdigest())
"""


def test_hash_randomisation():
    assert len({run(EVERYTHING, PYTHONHASHSEED=str(seed)) for seed in (0, 1, 2, 12345)}) == 1


@pytest.fixture(scope="session")
def german_locale(tmp_path_factory):
    """A locale with a decimal comma, compiled here because few machines have one installed."""
    folder = tmp_path_factory.mktemp("locale")
    subprocess.run(["localedef", "-i", "de_DE", "-f", "UTF-8", folder / "de_DE.UTF-8"], check=True)
    return {"LOCPATH": str(folder), "LC_ALL": "de_DE.UTF-8"}


def test_locale_with_a_decimal_comma(german_locale):
    asked = "import locale\nlocale.setlocale(locale.LC_ALL, '')\nprint(locale.localeconv()['decimal_point'])\n"
    comma, result = run(asked + EVERYTHING, **german_locale).split()
    assert comma == ","
    assert result == run(EVERYTHING, LC_ALL="C")

"""Deep graphs translate up to the interpreter's recursion limit, and raise RecursionError beyond it."""

import sys

import pytest

import quillgen
from robustness.chains import LINKS, chain
from robustness.isolated import run

# Translates chains on a thread with the given stack size and recursion limit.
ON_A_THREAD = """
import sys, threading
import quillgen
from robustness.chains import chain, mixed_chain

def work():
    kind, length, limit = sys.argv[1], int(sys.argv[2]), int(sys.argv[4])
    mixed = kind == "mixed"
    document = mixed_chain(length, *sys.argv[5:]) if mixed else chain(kind, length, *sys.argv[5:])
    sys.setrecursionlimit(limit)
    try:
        quillgen.compile(document)
        print("translated")
    except RecursionError as error:
        print(error)
    print(quillgen.compile(chain("ShaderNodeMath" if mixed else kind, 3))["code"].count("QWKClosure surf"))

threading.stack_size(int(sys.argv[3]))
thread = threading.Thread(target=work)
thread.start()
thread.join()
"""
TOO_DEEP = "maximum recursion depth exceeded while a node graph was evaluated"
MIB = 1 << 20


def levels_taken(length):
    """The number of recursion levels that a chain takes: the lowest limit that is sufficient."""

    def translates(limit):
        before = sys.getrecursionlimit()
        sys.setrecursionlimit(depth_here() + limit)
        try:
            quillgen.compile(document)
            return True
        except RecursionError:
            return False
        finally:
            sys.setrecursionlimit(before)

    document = chain("ShaderNodeMath", length)
    return next(limit for limit in range(length // 2, 4 * length) if translates(limit))


def depth_here():
    frame, depth = sys._getframe(), 0
    while frame:
        frame, depth = frame.f_back, depth + 1
    return depth


@pytest.mark.parametrize("kind", LINKS)
def test_chain_of_200_and_what_comes_out_of_it(kind):
    code = quillgen.compile(chain(kind, 200))["code"]
    assert len(code.split("\nQWK L;\n")[-1].splitlines()) > 200


def test_each_level_counts_once():
    assert levels_taken(300) - levels_taken(200) == 100


@pytest.mark.parametrize("kind", LINKS)
def test_chain_of_950_under_the_limit_of_1000_on_a_small_stack(kind):
    assert run(ON_A_THREAD, kind, 950, MIB, 1000) == "translated\n1"


@pytest.mark.parametrize("kind", LINKS)
@pytest.mark.parametrize("limit", [1000, 10**9])
def test_chain_of_100_000_on_a_small_stack(kind, limit):
    said, after = run(ON_A_THREAD, kind, 100_000, MIB, limit).rsplit("\n", 1)
    assert said.startswith("maximum recursion depth exceeded") and after == "1"


@pytest.mark.parametrize("seed", range(3))
@pytest.mark.parametrize(
    "length, limit, ends",
    [(300, 1000, "translated"), (20_000, 1000, "maximum recursion depth"), (20_000, 10**9, "maximum recursion depth")],
)
def test_chain_of_many_types_on_a_small_stack(length, limit, ends, seed):
    said, after = run(ON_A_THREAD, "mixed", length, MIB, limit, seed).rsplit("\n", 1)
    assert said.startswith(ends) and after == "1"


@pytest.mark.parametrize("socket", ["Height", "Normal", "Strength"])
def test_bumps_one_within_the_other(socket):
    assert run(ON_A_THREAD, "ShaderNodeBump", 100_000, MIB, 10**9, socket) == f"{TOO_DEEP}\n1"


def test_the_budget_lets_a_higher_limit_be_used():
    assert run(ON_A_THREAD, "ShaderNodeMath", 1300, 8 * MIB, 10_000) == "translated\n1"


def test_ring_that_every_evaluation_enters_anew():
    """A bump whose height reads the bump itself. Only the recursion limit ends it."""
    document = chain("ShaderNodeBump", 1)
    document["nodes"][0]["in"]["Height"] = {"t": "VALUE", "link": [0, "Normal", "VECTOR"]}
    with pytest.raises(RecursionError):
        quillgen.compile(document)


def test_ring_that_is_seen():
    document = chain("ShaderNodeMath", 3)
    document["nodes"][2]["in"]["Value"] = {"t": "VALUE", "link": [0, "Value", "VALUE"]}
    with pytest.raises(quillgen.Unsupported, match="^ShaderNodeMath has no output Value$"):
        quillgen.compile(document)

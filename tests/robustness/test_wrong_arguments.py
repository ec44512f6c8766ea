"""Every function of the two modules, called with any number of arguments of any type, returns or raises."""

import collections
import random

import pytest

import quillgen
import quillgen_lib
from robustness.fuzz_mutations import ODD, sources
from robustness.hostile import Mine, breaking_off, raising
from robustness.outcomes import outcome


class Word(str):
    pass


class Wide(tuple):
    """Reports a wrong length, and iterates over items that differ from those at its indices."""

    def __len__(self):
        return 10**9

    def __getitem__(self, place):
        raise IndexError

    def __iter__(self):
        return iter((["a"], "b"))


class Number(int):
    def __index__(self):
        raise Mine("index")


def itself(kind):
    value = kind()
    value.append(value) if kind is list else value.update(x=value)
    return value


FUNCTIONS = [
    quillgen.assemble,
    quillgen.compile,
    quillgen.parts,
    quillgen.param_name,
    quillgen.tex_input,
    quillgen_lib.resolve,
]
KEYWORDS = [
    "bodies",
    "structs",
    "need",
    "selector",
    "wrap",
    "extra_lib",
    "ir",
    "mode",
    "use_params",
    "uv_bias",
    "node_id",
    "socket",
    "image_name",
    "no such one",
    "\udcff",
    "",
]
SOUND = {
    quillgen.assemble: [[(["float a = 1.0;"], "b")], {"QWKVoronoiParams"}, {"gabor"}, "s", "f(%s)", ""],
    quillgen.compile: [sources()[0], "emission", True],
    quillgen.parts: [sources()[0], "surface", True, (0.5, 1)],
    quillgen.param_name: ["a b", "Color"],
    quillgen.tex_input: ["wood.png"],
    quillgen_lib.resolve: [["gabor", "mix_mix"]],
}
# Functions that make a value, because some (iterators) can be used only once.
MAKERS = [lambda value=value: value for value in ODD] + [
    lambda: Word("x"),
    lambda: Word("%s"),
    lambda: "%s %s",
    lambda: "%",
    lambda: "%(a)s",
    lambda: "%5s%%",
    lambda: "%*s",
    lambda: Number(3),
    lambda: Wide((1, 2)),
    lambda: itself(list),
    lambda: itself(dict),
    lambda: [(["a"], "b")],
    lambda: [(["a"], "b"), (["c"], "d")],
    lambda: [[["a"], "b"]],
    lambda: [("ab", "c")],
    lambda: [(iter("abc"), "x")],
    lambda: [("a",)],
    lambda: [("a", "b", "c")],
    lambda: [("\udcff", "\udcff")],
    lambda: {"gabor"},
    lambda: ["gabor"],
    lambda: {Word("gabor"): 1},
    lambda: iter(["gabor", 3]),
    lambda: (x for x in ["gabor", None]),
    lambda: range(3),
    lambda: {"QWKClosure"},
    lambda: ["QWKVoronoiOutput", "no such one"],
    object,
    lambda: type,
    lambda: quillgen,
    lambda: raising("x"),
    lambda: raising([1]),
    lambda: raising({}),
    lambda: breaking_off(["gabor"]),
    lambda: bytearray(b"a"),
    lambda: memoryview(b"a"),
    lambda: 1j,
    lambda: "\udcff",
    lambda: "a" * 100_000,
]


def test_arguments(seed):
    chance, endings = random.Random(seed), collections.Counter()
    for _ in range(60_000):
        function = chance.choice(FUNCTIONS)
        given = [sound if chance.random() < 0.7 else chance.choice(MAKERS)() for sound in SOUND[function]]
        given = given[: chance.randrange(len(given) + 1)]
        given += [chance.choice(MAKERS)() for _ in range(chance.choice([0] * 9 + [5]))]
        named = {chance.choice(KEYWORDS): chance.choice(MAKERS)() for _ in range(chance.choice([0, 0, 0, 1, 2]))}
        ending = outcome(lambda _, f=function, a=given, k=named: f(*a, **k), None, [Mine])
        endings[function.__name__, ending[0] if ending[0] == "result" else ending[1].__name__] += 1
    for function in FUNCTIONS:
        assert min(endings[function.__name__, "result"], endings[function.__name__, "TypeError"]) > 20, endings
    assert endings["assemble", "Mine"] > 20


@pytest.mark.parametrize("function", FUNCTIONS)
def test_keywords_that_are_no_names(function):
    for names in ({1: 2}, {None: 3}, {(): 1}):
        with pytest.raises(TypeError):
            function(*SOUND[function], **names)
    with pytest.raises(TypeError):
        function(*SOUND[function] * 1000)
    with pytest.raises(TypeError):
        function()

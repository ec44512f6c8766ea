"""Zeros, denormals, huge numbers, infinities and NaN in the library: it terminates, and is finite wherever Blender is.

Loop iterations are counted, because Mesa aborts each loop after 65535 of them.
"""

import pathlib
import re
import sys

import numpy as np
import pytest

import custom_expression
import device
import quillgen
from golden.documents import link, material, node
from robustness.extremes.cases import CASES, NUMBERS, ORDINARY, SIDE, samples
from robustness.extremes.exceptions import AGAINST_BLENDER, OUT_OF_RANGE
from robustness.loops import COUNTER, counted

sys.path.append(str(pathlib.Path(__file__).parents[1] / "library"))
from calls import FUNCTIONS, calls

SECONDS = 20  # ten times the time of the slowest one, including compilation
MOST_TURNS = 16 * (5**4 + 5**3) + 16  # octaves, cells and rows of cells of smooth Voronoi noise in four dimensions
POINTS = 1024
ORDINARY_POINTS = 200
WHOLE = np.int32([0, 1, 2, 3, 4, 5, -1, 10, 7, 100, 2**31 - 1, -(2**31), 1 - 2**31, 2**30, 65536, -7])
KEPT = np.load(pathlib.Path(__file__).with_name("extremes") / "finite.npz")


@pytest.fixture(autouse=True)
def soon(monkeypatch):
    monkeypatch.setattr(device, "TIMEOUT", SECONDS)


def fed(case):
    """A document of the case whose sockets read Value and RGB nodes."""
    one, feeds = node(case.kind, props=dict(case.props)), []
    for place, (name, entry) in enumerate(one["in"].items()):
        feeds.append(node("Value" if entry["t"] == "VALUE" else "RGB", id=f"socket{place}"))
        one["in"][name] = {**link(feeds[-1]), "t": entry["t"]}
    return material(one, *feeds, surface=(one, case.output))


def run(case, values=samples()):  # noqa: B008  (the same each time)
    """The results of the case's text for the samples: [samples, 3]."""
    result = quillgen.compile(fed(case), mode="emission")
    given = {}
    for record in result["inputs"]:
        socket = values[int(re.fullmatch(r"P_socket(\d+)\w*", record["name"])[1])]
        one = custom_expression.width(record) == 1
        given[record["name"]] = socket[:, 0].copy() if one else np.c_[socket, np.ones(len(socket), "f")]
    return custom_expression.evaluate(result, given)["result"]


def blender():
    """Case -> [samples, 3], whether Blender's result is finite."""
    assert list(KEPT["titles"]) == [case.title for case in CASES]
    finite = np.unpackbits(KEPT["finite"])[: len(CASES) * SIDE**2 * 3].reshape(len(CASES), SIDE**2, 3)
    return dict(zip(CASES, finite.astype(bool), strict=True))


def lost():
    """Title -> number of components that are not finite where Blender's are, if there are any."""
    found = {case.title: int((finite & ~np.isfinite(run(case))).sum()) for case, finite in blender().items()}
    return {title: count for title, count in found.items() if count}


def test_finite_wherever_blender_is():
    found = lost()
    assert found.keys() == AGAINST_BLENDER.keys()
    assert [title for title, count in found.items() if count > AGAINST_BLENDER[title][0]] == []


def test_the_samples_say_something():
    """Most of Blender's results are finite, also for extreme samples, but not all."""
    finite = np.stack(list(blender().values()))
    assert finite[:, :64].mean() > 0.98 and 0.8 < finite[:, 64:].mean() < 0.95
    extreme = ~np.isfinite(samples()).all(axis=(0, 2))
    assert 0.5 < finite[:, extreme].mean() < 0.95


def test_a_lost_number_is_seen(monkeypatch):
    case = next(case for case in CASES if case.title == "Math ADD Value")
    compiled = quillgen.compile

    def spoiled(*args, **kwargs):
        result = compiled(*args, **kwargs)
        return {**result, "code": result["code"].replace("return (", "return log2(0.0 * v1) * (")}

    finite = blender()[case]
    assert np.isfinite(run(case))[finite].all()
    monkeypatch.setattr(quillgen, "compile", spoiled)
    assert not np.isfinite(run(case))[finite].any()


def draw(kind, chance):
    """Random values of a type for all points. The first ones are ordinary."""
    base, width = kind.rstrip("234"), int(kind[-1]) if kind[-1] in "234" else 1
    if base == "bool":
        values = chance.random((POINTS, width)) < 0.5
    elif base == "float":
        values = np.where(
            chance.random((POINTS, width)) < 0.3,
            chance.choice(NUMBERS, (POINTS, width)),
            chance.choice(NUMBERS[:ORDINARY], (POINTS, width)),
        )
        values[:ORDINARY_POINTS] = chance.choice(NUMBERS[:ORDINARY], (ORDINARY_POINTS, width))
    else:
        values = chance.choice(WHOLE, (POINTS, width))
        values[:ORDINARY_POINTS] = chance.choice(WHOLE[:6], (ORDINARY_POINTS, width))
        values = values.astype(base + "32")
    return values[:, 0].copy() if width == 1 else values


def outcome(body, inputs, outputs, textures=()):
    """Returns (loop iterations of each point, whether all results are finite at each point)."""
    chance = np.random.default_rng(1)
    given = {name: draw(kind, chance) for name, kind in inputs.items()}
    texels = {name: chance.random((5, 7, 4)).astype("f") for name in textures}
    got = device.evaluate(f"{counted(body)}\nturns = L.{COUNTER};", given, {**outputs, "turns": "uint"}, texels)
    finite = [np.isfinite(values.reshape(POINTS, -1)).all(axis=1) for values in got.values()]
    return got["turns"], np.all(finite, axis=0)


@pytest.fixture(scope="module")
def everything():
    with pytest.MonkeyPatch.context() as patch:
        patch.setattr(device, "TIMEOUT", SECONDS)
        return {unit: outcome(*calls(unit)) for unit in FUNCTIONS}


def test_every_loop_ends(everything):
    turns = {unit: int(turns.max()) for unit, (turns, _) in everything.items()}
    assert {unit: most for unit, most in turns.items() if most > MOST_TURNS} == {}
    assert turns["fractal_voronoi_x_fx4"] > 16 * 3**4 and turns["noise_texture4_FBM"] >= 16


def test_finite_for_ordinary_inputs(everything):
    broken = {unit for unit, (_, finite) in everything.items() if not finite[:ORDINARY_POINTS].all()}
    reasons = {unit: [pattern for pattern in OUT_OF_RANGE if re.fullmatch(pattern, unit)] for unit in FUNCTIONS}
    assert broken == {unit for unit, patterns in reasons.items() if patterns}
    assert {pattern for patterns in reasons.values() for pattern in patterns} == OUT_OF_RANGE.keys()


@pytest.mark.parametrize(
    "loop",
    [
        "while (x < 1.0) { x *= 0.5; } return x;",
        "for (float done = 0.0; done < x; done += 1.0) x = max(x, 1e30); return x;",
        "[loop] do { [branch] if (x > 2.0) x = x * 0.5; } while (x < 1.0 || !(x == x)); return x;",
    ],
)
def test_a_loop_that_does_not_end_is_seen(loop):
    body = "struct QWK {\nfloat f(float x) { " + loop + " }\n};\nQWK L;\ny = L.f(x);"
    try:
        turns, _ = outcome(body, {"x": "float"}, {"y": "float"})
    except device.DeviceError as error:
        assert "no answer" in str(error)
    else:
        assert turns.max() > MOST_TURNS


def test_an_infinite_result_is_seen():
    _, finite = outcome(
        "struct QWK {\nfloat f(float x) { return 1.0 / x; }\n};\nQWK L;\ny = L.f(x);", {"x": "float"}, {"y": "float"}
    )
    assert finite.any() and not finite[:ORDINARY_POINTS].all()

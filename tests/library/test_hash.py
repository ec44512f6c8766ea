"""The hashes: every result must equal Blender's bit for bit."""

import math

import numpy as np
import pytest

import library
from agreement import signature, table
from noise_reference import cell_hash, float_hash, word_hash

VALUES = table("hash")
TYPES = {1: "float", 2: "float2", 3: "float3", 4: "float4"}


def column(rows, dtype):
    array = np.array([row[0] for row in rows], dtype)
    return array[:, 0] if array.ndim == 2 and array.shape[1] == 1 else array


def random_words(n, width, seed):
    return np.random.default_rng(seed).integers(0, 2**32, (n, width), np.uint32)


@pytest.mark.parametrize("name", VALUES["words"])
def test_word_hashes_of_the_table(name):
    rows = VALUES["words"][name]
    got = library.call(name, column(rows, np.uint32), result="uint")
    assert [f"{word:08x}" for word in got] == [row[1] for row in rows]


@pytest.mark.parametrize("width", [1, 2, 3, 4])
def test_word_hashes_of_random_words(width):
    words = random_words(4000, width, width)
    got = library.call(f"hash_word{width}", words[:, 0] if width == 1 else words, result="uint")
    assert np.array_equal(got, word_hash(*words.T))


@pytest.mark.parametrize("name", VALUES["floats"])
def test_float_hashes_of_the_table(name):
    rows = VALUES["floats"][name]
    result = "float3" if name.endswith("float3") else "float"
    got = library.call(name, column(rows, np.float32), result=result)
    assert np.array_equal(got, np.float32([row[1] for row in rows]))


@pytest.mark.parametrize("d", [1, 2, 3, 4])
def test_float_hashes_of_random_floats(d):
    rng = np.random.default_rng(d)
    x = (rng.uniform(-1, 1, (4000, d)) * 10.0 ** rng.uniform(-20, 20, (4000, d))).astype(np.float32)
    x[::9, 0] = 0.0
    x[1::9, d - 1] = -0.0
    c = [x[:, k] for k in range(d)]
    more = [(*c, np.float32(1)), (*c, np.float32(2))]
    if d == 4:
        more = [(c[2], c[0], c[3], c[1]), (c[3], c[2], c[1], c[0])]
    want = np.stack([float_hash(*c), *(float_hash(*m) for m in more)], axis=1)
    point = x[:, 0] if d == 1 else x
    assert np.array_equal(library.call(f"hash_{TYPES[d]}_to_float3", point), want)
    assert np.array_equal(library.call(f"hash_{TYPES[d]}_to_float", point, result="float"), want[:, 0])


def test_the_sign_of_zero_and_every_bit_of_infinity_count():
    got = library.call("hash_float_to_float", np.float32([0.0, -0.0, math.inf, -math.inf]), result="float")
    assert len(set(got.tolist())) == 4
    assert np.array_equal(got, float_hash(np.float32([0.0, -0.0, math.inf, -math.inf])))


def test_a_hash_reaches_one_where_the_word_rounds_up():
    words = np.uint32([0, 1, 0x80000000, 0xFFFFFF7F, 0xFFFFFF80, 0xFFFFFFFF])
    got = library.call("hash_unit", words, result="float")
    assert got.tolist() == [0.0, 2.0**-32, 0.5, 1.0 - 2.0**-24, 1.0, 1.0]


def as_floats(words):
    return np.asarray(words).astype(np.float32) * np.float32(2.0**-31)


@pytest.mark.parametrize("name", VALUES["integers"])
def test_cell_hashes_of_the_table(name):
    rows = VALUES["integers"][name]
    cells = column(rows, np.int32)
    assert cell_hash(cells).tolist() == [row[1] for row in rows]
    got = library.call(name, cells, result=name.rsplit("_", 1)[1])
    assert np.array_equal(got, as_floats([row[1] for row in rows]))


@pytest.mark.parametrize("d", [2, 3, 4])
def test_cell_hashes_of_random_cells(d):
    cells = random_words(4000, d, 10 + d).view(np.int32)
    cells[::2] %= 64
    got = library.call(f"hash_int{d}_to_float{d}", cells, result=f"float{d}")
    assert np.array_equal(got, as_floats(cell_hash(cells)))


# DXIL instructions, slightly above the current counts. A larger count means that the components share less code.
@pytest.mark.parametrize(
    "name, most",
    [
        ("hash_float_to_float", 36),
        ("hash_float_to_float3", 100),
        ("hash_float2_to_float", 46),
        ("hash_float2_to_float3", 126),
        ("hash_float3_to_float", 48),
        ("hash_float3_to_float3", 165),
        ("hash_float4_to_float", 90),
        ("hash_float4_to_float3", 250),
        ("hash_int2_to_float2", 25),
        ("hash_int3_to_float3", 39),
        ("hash_int4_to_float4", 52),
    ],
)
def test_cost(name, most):
    result, (kind,) = signature(name)
    assert library.cost(name, kind, result=result) <= most

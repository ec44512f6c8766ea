"""Every kind of input in every version: the graph provides the value and the width that the text expects."""

import numpy as np
import pytest

import custom_expression
import quillgen
import test_picture
from double import tables
from double.libraries import width_of
from examples.gallery import materials
from quillgen_blender import write
from shader import Run, kind_of, wires
from surroundings import Surroundings

KINDS = [
    *(
        {"kind": kind}
        for kind in (
            "world_position",
            "world_position_cr",
            "local_position",
            "cycles_normal",
            "vertex_normal",
            "camera_vector",
            "object_origin",
            "vertex_color",
            "two_sided_sign",
            "tangent_world",
            "bitangent_world",
            "camera_position",
            "pixel_depth",
            "tan_half_fov",
            "view_size",
            "local_bounds_min",
            "local_bounds_max",
            "pixel_position",
            "temporal_index",
        )
    ),
    *({"kind": "texcoord", "index": index} for index in (0, 1)),
    *({"kind": kind, "axis": axis} for kind in ("object_axis", "view_axis") for axis in "xyz"),
    *(
        {"kind": word, "of": of}
        for word in ("ddx", "ddy")
        for of in (
            {"kind": "texcoord", "index": 0},
            {"kind": "texcoord", "index": 1},
            {"kind": "vertex_color"},
            {"kind": "world_position_cr"},
        )
    ),
]


def export(folder, records=tuple(KINDS), name="Every Kind", blend="opaque", code="return float3(0.0, 0.0, 0.0);"):
    """Writes a material whose text has these inputs. Returns its folder."""
    inputs = [{"name": f"i{number}", **record} for number, record in enumerate(records)]
    settings = {"shading": "unlit", "blend": blend, "two_sided": True, "tangent_space_normal": True}
    settings.update({"clip": 0.5} if blend == "masked" else {})
    result = {
        "code": code,
        "inputs": inputs,
        "outputs": [],
        "material": settings,
        "warnings": [],
        "params": {},
        "displacement": None,
    }
    document = {"nodes": [], "out": {}}
    written = write.write_material(write.look(folder), write.Material(name, document, result, mode="emission"))
    return written.folder


def custom_of(ue, path="/Game/Blender/M_Every_Kind"):
    return next(
        e
        for e in ue.editor.assets[path]._expressions
        if kind_of(e) == "Custom" and e.outputs() and e.description != "Normal with the object's scale"
    )


def test_the_list_of_kinds_is_the_translators():
    """KINDS contains all kinds that the example materials use, and those with reference values for rendering."""
    known = {materials.kind_of(record) for record in KINDS}
    thing, places, points = test_picture.look("sphere")
    assert known == set(test_picture.given(thing, places, points))
    for name in materials.names():
        result = quillgen.compile(materials.document(name))
        for text in filter(None, (result, result["displacement"])):
            assert {materials.kind_of(r) for r in text["inputs"]} - {"scalar", "vector", "texture"} <= known


@pytest.mark.parametrize("instanced", [False, True])
@pytest.mark.parametrize("blend", ["opaque", "masked"])
@pytest.mark.parametrize("version", tables.VERSIONS)
def test_every_kind_has_its_value_and_width(start, tmp_path, version, blend, instanced):
    ue = start(version)
    ue.plugin.import_material(export(tmp_path / "out", blend=blend), instanced=instanced)
    custom = custom_of(ue)
    for where in ("sphere", "plane", "back"):
        thing, places, points = test_picture.look(where)
        wanted = test_picture.given(thing, places, points)
        run = Run(Surroundings(thing, test_picture.CAMERA, places, points))
        for record, (_, source, index) in zip(KINDS, wires(custom)):
            value = wanted[materials.kind_of(record)]
            found = run.value(source, index)
            assert width_of(source, index) == found.shape[1] == custom_expression.width(record), record
            # The corrected normal is computed on the device, in 32-bit floats.
            exact = 1e-6 if record["kind"] == "cycles_normal" else 1e-9
            np.testing.assert_allclose(
                *np.broadcast_arrays(found, value),
                atol=exact * max(1, np.abs(value).max()),
                err_msg=f"{where} {record}",
            )


def test_any_two_inputs_that_are_swapped_are_seen(start, tmp_path):
    """The values of different kinds differ somewhere, so the test above detects each wrong wire."""
    ue = start()
    ue.plugin.import_material(export(tmp_path / "out"))
    run = Run(Surroundings(*_around("sphere")))
    values = {}
    for record, (_, source, index) in zip(KINDS, wires(custom_of(ue))):
        values[materials.kind_of(record)] = run.value(source, index)
    alike = {frozenset(("cycles_normal", "vertex_normal"))}  # equal if the scale is uniform
    names = sorted(values)
    for a in names:
        for b in names:
            if a < b and values[a].shape[1] == values[b].shape[1] and frozenset((a, b)) not in alike:
                assert np.abs(values[a] - values[b]).max() > 1e-6, (a, b)


def test_a_turned_sign_shows(start, tmp_path):
    """Negates the constants from which the axes and the bitangent are computed."""
    ue = start()
    ue.plugin.import_material(export(tmp_path / "out"))
    custom = custom_of(ue)
    for expression in ue.editor.assets["/Game/Blender/M_Every_Kind"]._expressions:
        if kind_of(expression) == "Constant3Vector":
            c = expression.constant
            expression._values["constant"] = ue.unreal.LinearColor(-c.r, -c.g, -c.b, 0.0)
    thing, places, points = test_picture.look("sphere")
    wanted = test_picture.given(thing, places, points)
    run = Run(Surroundings(*_around("sphere")))
    wrong = {
        materials.kind_of(r)
        for r, (_, source, index) in zip(KINDS, wires(custom))
        if np.abs(run.value(source, index) - wanted[materials.kind_of(r)]).max() > 1e-3
    }
    assert wrong >= {f"{kind}:{axis}" for kind in ("object_axis", "view_axis") for axis in "xyz"} | {"bitangent_world"}


def _around(where):
    thing, places, points = test_picture.look(where)
    return thing, test_picture.CAMERA, places, points


@pytest.mark.parametrize("blend, space", [("masked", "CAMERA"), ("opaque", "VIEW")])
def test_the_opacity_does_not_follow_the_light(start, tmp_path, blend, space):
    """In shadow passes the view belongs to the light, but the camera's axes must not change."""
    ue = start()
    ue.plugin.import_material(export(tmp_path / "out", [r for r in KINDS if r["kind"] == "view_axis"], blend=blend))
    spaces = {source.transform_source_type.name for _, source, _ in wires(custom_of(ue))}
    assert spaces == {f"TRANSFORMSOURCE_{space}"}


@pytest.mark.parametrize("instanced, space", [(True, "INSTANCE"), (False, "LOCAL")])
def test_the_space_of_an_instance(start, tmp_path, instanced, space):
    ue = start((5, 4))
    kinds = ("object_axis", "object_origin", "local_position")
    folder = export(tmp_path / "out", [r for r in KINDS if r["kind"] in kinds])
    ue.plugin.import_material(folder, instanced=instanced)
    named = [
        (e.transform_source_type.name, e.transform_type.name)
        for e in ue.editor.assets["/Game/Blender/M_Every_Kind"]._expressions
        if kind_of(e).startswith("Transform")
    ]
    assert len(named) == 5 and all(sum(name.endswith(f"_{space}") for name in pair) == 1 for pair in named)


def test_one_expression_for_each_distinct_input(start, tmp_path):
    """Two inputs of one kind share their expression, and chains share a common beginning."""
    ue = start((5, 3))
    ue.plugin.import_material(export(tmp_path / "out", (*KINDS, *KINDS)))
    expressions = ue.editor.assets["/Game/Blender/M_Every_Kind"]._expressions
    counts = {}
    for expression in expressions:
        counts[kind_of(expression)] = counts.get(kind_of(expression), 0) + 1
    assert counts["VertexNormalWS"] == counts["VertexColor"] == counts["PixelDepth"] == counts["VertexTangentWS"] == 1
    assert counts["WorldPosition"] == 3  # absolute, camera-relative, and without offsets for the local position
    assert counts["Constant3Vector"] == 4 and counts["DDX"] == counts["DDY"] == 4
    assert counts["Transform"] == 7  # three axes of the object, three of the view, the bitangent
    assert counts["ObjectLocalBounds"] == 1 and counts["Custom"] == 2


@pytest.mark.parametrize("mirrored", [False, True])
def test_the_normal_follows_a_scale_that_differs_along_the_axes(start, tmp_path, mirrored):
    """Compares it with the inverse transpose of the object's matrix, computed here."""
    import device
    import shader

    ue = start()
    ue.plugin.import_material(export(tmp_path / "out", ({"kind": "cycles_normal"},)))
    ((_, custom, _),) = wires(custom_of(ue))
    random = np.random.default_rng(5)
    rotation = np.linalg.qr(random.normal(size=(3, 3)))[0]
    rotation *= np.sign(np.linalg.det(rotation))
    scale = np.array([0.5, 2.0, -3.0 if mirrored else 3.0])
    normals = random.normal(size=(200, 3))
    normals /= np.linalg.norm(normals, axis=1, keepdims=True)
    axes = rotation * scale  # columns: the object's axes in the world
    # Unreal rotates the normal by the normalized axes.
    given = {
        "N": normals @ (axes / np.abs(scale)).T,
        "X": tuple(axes[:, 0]),
        "Y": tuple(axes[:, 1]),
        "Z": tuple(axes[:, 2]),
    }
    wanted = normals @ np.linalg.inv(axes)
    wanted /= np.linalg.norm(wanted, axis=1, keepdims=True)
    text = shader.HEAD + shader.function(custom)
    found = device.evaluate(shader.call(custom), given, shader.outputs(custom), {}, text)
    np.testing.assert_allclose(found[shader.RESULT], wanted, atol=2e-6)

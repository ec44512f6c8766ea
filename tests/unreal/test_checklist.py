"""The checklist's level is built, and its checks pass for the values that the expressions should have."""

import numpy as np
import pytest

import shader
import test_picture
from conftest import ROOT
from double import tables
from examples.gallery import surfaces
from surroundings import Surroundings


@pytest.mark.parametrize("version", tables.VERSIONS)
def test_the_level(start, version):
    ue = start(version)
    text = ue.plugin.build_checklist()
    assert not ue.editor.texts("log_error")
    assert len(ue.editor.actors) == 2 * len(ue.checks.CHECKS)
    for check, actor in zip(ue.checks.CHECKS, ue.editor.actors[::2]):
        assert f"{check.name}: {check.shows}" in text
        assert actor._label == check.name
        assert shader.compiled(ue.editor, ue.editor.path_of(actor.static_mesh_component._material)) >= 1
    places = {(a._location.y, a._location.z) for a in ue.editor.actors}
    assert len(places) == len(ue.editor.actors)
    ue.plugin.build_checklist()
    assert len(ue.editor.actors) == 2 * len(ue.checks.CHECKS)


def test_the_page_lists_the_checks(start):
    ue = start()
    page = (ROOT / "docs" / "unreal.md").read_text(encoding="utf-8")
    for number, check in enumerate(ue.checks.CHECKS, 1):
        assert f"| {number} | {check.name} | {check.shows} |" in page


BALL = surfaces.Thing(surfaces.sphere(0.5), surfaces.turned(35) @ surfaces.turned(20, "x"), (0.2, 0.3, -0.1), 1.7)


def shown(ue, check, thing, raytraced=False):
    """The fraction of points that are green."""
    test_picture.THINGS["ball"] = thing
    thing, places, points = test_picture.look("ball")
    around = Surroundings(thing, test_picture.CAMERA, places, points, raytraced=raytraced)
    around.color = lambda: np.ones((len(points), 4))
    path = "/Game/BlenderChecklist/" + ue.naming.asset("M_", f"Check {check.name}")
    color = shader.attributes(ue.editor, path, around)["EmissiveColor"]
    return float(np.mean(np.broadcast_to(color, (len(points), 3))[:, 1]))


def test_a_right_engine_shows_green(start):
    ue = start()
    ue.plugin.build_checklist()
    for check in ue.checks.CHECKS:
        if check.mesh == "Sphere":
            assert shown(ue, check, BALL) > 0.9, check.name


def test_the_derivatives_are_green_in_ray_tracing(start):
    """The ray tracing switch is needed: without it there are no derivatives, which define the plane."""
    ue = start()
    ue.plugin.build_checklist()
    check = next(c for c in ue.checks.CHECKS if c.name == "Derivatives of the position")
    assert shown(ue, check, BALL, raytraced=True) > 0.99
    path = "/Game/BlenderChecklist/" + ue.naming.asset("M_", f"Check {check.name}")
    for expression in ue.editor.assets[path]._expressions:
        if shader.kind_of(expression) == "RayTracingQualitySwitch":
            expression._wires[1] = expression._wires[0]
    assert shown(ue, check, BALL, raytraced=True) < 0.01


def test_the_back_of_a_plane_is_red(start):
    ue = start()
    ue.plugin.build_checklist()
    check = next(c for c in ue.checks.CHECKS if c.mesh == "Plane")
    assert shown(ue, check, test_picture.THINGS["plane"]) == 1.0
    assert shown(ue, check, test_picture.THINGS["back"]) == 0.0


def wrong_engines():
    """Possible deviations of an engine: method of Surroundings -> (its replacement, the check that must detect it)."""
    flip = np.array([1.0, -1.0, 1.0])
    return {
        "local_position": (lambda old: lambda self, e: [old(self, e)[0] * flip], "Object axes"),
        "camera_vector": (lambda old: lambda self, e: [-old(self, e)[0]], "Camera position and"),
        "vertex_normal": (lambda old: lambda self, e: [-old(self, e)[0]], "Vertex normal"),
        "pixel_depth": (lambda old: lambda self, e: [old(self, e)[0] / 100], "Pixel depth"),
        "bounds": (lambda old: lambda self, e: [old(self, e)[0]] * 4, "Local bounds"),
        "screen_position": (lambda old: lambda self, e: [old(self, e)[0]] * 2, "View axes"),
        "vertex_tangent": (lambda old: lambda self, e: self.vertex_normal(e), "Tangent"),
    }


@pytest.mark.parametrize("method", wrong_engines())
def test_a_wrong_engine_shows_red(start, monkeypatch, method):
    import surroundings

    change, title = wrong_engines()[method]
    key = next(k for k, f in surroundings.PLAIN.items() if f is getattr(Surroundings, method))
    changed = change(getattr(Surroundings, method))
    monkeypatch.setitem(surroundings.PLAIN, key, changed)
    ue = start()
    ue.plugin.build_checklist()
    check = next(c for c in ue.checks.CHECKS if c.name.startswith(title))
    assert shown(ue, check, BALL) < 0.6

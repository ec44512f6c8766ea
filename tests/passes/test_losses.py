"""Features that the translator drops silently become notes with the node's name."""

from records import document, link, node, principled, value

import quillgen
from quillgen_blender.passes import Options, losses


def notes_of(*nodes, **keys):
    made = document(*nodes, surface=[nodes[-1]["id"], "BSDF"]) | keys
    after, notes = losses.run(made, Options())
    assert after is made
    return [(told.node, told.loss, told.text) for told in notes]


def named(identity, name, kind="GEOMETRY"):
    return node(identity, "Attribute", {}, attribute_name=name, attribute_type=kind)


def test_a_plain_principled_loses_nothing():
    assert notes_of(principled()) == []


def test_attributes_that_are_no_uv_maps_all_read_the_one_vertex_colour():
    host = {"color_attributes": ["Dirt", "Wear"], "active_color": "Wear"}
    nodes = (named("A", "Dirt"), named("B", "Wear"), named("C", "UVMap"), named("D", "Missing"), principled())
    found = notes_of(*nodes, host=host, uv_maps=["UVMap"])
    assert [told[0] for told in found] == ["A", "D"] and all("Wear is read instead" in told[2] for told in found)


def test_the_first_colour_that_the_mesh_has_is_read_where_the_active_one_is_not_asked_for():
    host = {"color_attributes": ["Dirt", "Wear", "Other"], "active_color": "Other"}
    found = notes_of(named("A", "Missing"), named("B", "Wear"), principled(), host=host)
    assert found[0][0] == "A" and "Wear is read instead" in found[0][2]
    assert found[1] == ("B", "near", "Wear: make it the active colour attribute, which Unreal gets")


def test_properties_of_objects():
    assert [told[:2] for told in notes_of(named("A", "index", "OBJECT"), principled())] == [("A", "lost")]


def test_anisotropy_thin_film_tints_and_coats():
    shader = principled(
        Anisotropic=value(0.5),
        Thin_Film_Thickness=value(300.0),
        Specular_Tint=value([1.0, 0.5, 0.5, 1.0], "RGBA"),
        Coat_Weight=value(1.0),
        Coat_Tint=value([1.0, 0.9, 0.9, 1.0], "RGBA"),
    )
    texts = [told[2] for told in notes_of(shader)]
    assert len(texts) == 4 and "anisotropy" in texts[0] and "film" in texts[1] and "coat" in texts[3]
    metal = node("Glossy BSDF", "BsdfAnisotropic", {"Anisotropy": link("Value", "Value", "VALUE")})
    assert [told[:2] for told in notes_of(node("Value", "Value", {}, value=0.0), metal)] == [("Glossy BSDF", "lost")]


def test_light_paths_tell_what_is_read():
    path = node("Light Path", "LightPath") | {"outs": {"Is Camera Ray": "VALUE", "Is Shadow Ray": "VALUE"}}
    shadow = principled(Alpha=link("Light Path", "Is Shadow Ray", "VALUE"))
    found = notes_of(path, shadow)
    assert found[0][:2] == ("Light Path", "near") and found[0][2].startswith("Is Shadow Ray:")
    assert notes_of(path, principled(Alpha=link("Light Path", "Is Camera Ray", "VALUE"))) == []


def test_facts_of_the_object_that_unreal_has_not():
    info = node("Object Info", "ObjectInfo")
    found = notes_of(info, principled(Base_Color=link("Object Info", "Color", "RGBA")))
    assert found[0][2].startswith("Color: white")
    occlusion = node("Ambient Occlusion", "AmbientOcclusion")
    assert len(notes_of(occlusion, principled(Base_Color=link("Ambient Occlusion", "Color", "RGBA")))) == 1


def test_volumes_and_drivers():
    found = notes_of(principled(), host={"volume": True, "drivers": ["Principled BSDF"]})
    assert [told[:2] for told in found] == [("", "lost"), ("Principled BSDF", "near")]


def test_the_translator_itself_says_nothing_of_these():
    """Otherwise it would be reported twice."""
    nodes = (named("A", "Dirt"), principled(Anisotropic=value(0.5), Base_Color=link("A", "Color", "RGBA")))
    assert quillgen.compile(document(*nodes, surface=["Principled BSDF", "BSDF"]))["warnings"] == []

"""Colours linked to float sockets are converted with Cycles' exact luma weights."""

import copy

from records import document, link, node, principled, value

import quillgen
from quillgen_blender.passes import Options, finish, luma, prepare


def noise_of_colour():
    white = node("White Noise Texture", "TexWhiteNoise", {"Vector": value([0.0] * 3, "VECTOR"), "W": value(0.0)})
    times = node(
        "Math",
        "Math",
        {"Value": link("White Noise Texture", "Color", "RGBA", "VALUE"), "Value_001": value(1000.0)},
        operation="MULTIPLY",
    )
    grey = node("RGB to BW", "RGBToBW", {"Color": link("White Noise Texture", "Color", "RGBA")})
    shader = principled(
        Roughness=link("Math", "Value", "VALUE"),
        Metallic=link("RGB to BW", "Val", "VALUE"),
        Alpha=link("White Noise Texture", "Color", "RGBA", "VALUE"),
    )
    return document(white, times, grey, shader, surface=["Principled BSDF", "BSDF"])


def test_one_product_serves_all_links_of_an_output():
    before = noise_of_colour()
    kept = copy.deepcopy(before)
    after, notes = luma.run(before, Options())
    assert before == kept and notes == []
    made = [record for record in after["nodes"] if record.get("made")]
    assert [record["id"] for record in made] == ["RGB to BW", "White Noise Texture Color Luma"]
    assert all(record["in"]["Vector_001"]["v"] == list(luma.WEIGHTS_5) for record in made)
    records = {record["id"]: record for record in after["nodes"]}
    product = ["White Noise Texture Color Luma", "Value", "VALUE"]
    assert records["Math"]["in"]["Value"] == {"t": "VALUE", "link": product}
    assert records["Principled BSDF"]["in"]["Alpha"]["link"] == product
    assert records["Principled BSDF"]["in"]["Metallic"]["link"] == ["RGB to BW", "Value", "VALUE"]
    assert records["White Noise Texture"] is before["nodes"][0]


def test_the_text_has_no_weights_of_four_digits_and_no_parameter_of_the_product():
    options = Options(parameters="all")
    prepared, _ = prepare(noise_of_colour(), options)
    result, _ = finish(quillgen.compile(prepared), prepared, (), options)
    assert "0.2126," not in result["code"] and "float3(0.21263909, 0.71516913, 0.07219274)" in result["code"]
    assert not [name for name in result["params"] if "Luma" in name or "RGB_to_BW" in name]
    without, _ = prepare(noise_of_colour(), Options(exact_luma=False))
    assert "0.2126," in quillgen.compile(without)["code"]


def test_nothing_changes_where_no_colour_feeds_a_number():
    plain = document(principled(), surface=["Principled BSDF", "BSDF"])
    assert luma.run(plain, Options())[0] is plain
    assert luma.run(noise_of_colour(), Options(exact_luma=False))[0] == noise_of_colour()


def test_weights_are_those_of_the_blender_at_hand():
    old = noise_of_colour() | {"host": {"blender": [4, 5, 15]}}
    made = [record for record in luma.run(old, Options())[0]["nodes"] if record.get("made")]
    assert made[0]["in"]["Vector_001"]["v"] == list(luma.WEIGHTS_4)


def test_a_grey_output_that_is_the_surface_or_the_displacement():
    after, _ = luma.run(noise_of_colour() | {"out": {"surface": ["RGB to BW", "Val"]}}, Options())
    assert after["out"] == {"surface": ["RGB to BW", "Value"]}
    assert "surf" in quillgen.compile(after)["code"]

"""Every name of the shader library compiles by itself, in HLSL 2018 and 2021, with warnings as errors."""

import re

import pytest

import cost
import library
from calls import FUNCTIONS, calls

# The names that quillgen requests. The others are internal helpers of the library.
ASKED_FOR = """
    safe_divide safe_powf safe_logf safe_sqrtf inversesqrtf safe_modulo safe_floored_modulo wrapf pingpongf
    compatible_atan2 compatible_signf smoothminf smoothstepc smootherstep
    safe_divide3 safe_normalize project3 reflect3 refract3 faceforward3 safe_fmod3 wrap3 safe_pow3
    compatible_sign3
    rgb_to_hsv hsv_to_rgb rgb_to_hsl hsl_to_rgb srgb_to_linear3 blackbody_rec709 wavelength_xyz
    mapping vector_rotate n_obj_to_world dir_world_to_obj rot_to_obj facing_normal make_orthonormals_a bump_dp
    tex_gradient tex_checker tex_brick tex_magic tex_wave gabor radial_tiling
    texel_fetch_a box_weights map_to_sphere map_to_tube mirrorball_uv equirect_uv
    fresnel_dielectric_cos dither_coverage
""".split()
ASKED_FOR += [
    f"mix_{blend}"
    for blend in """
    mix darken multiply burn lighten screen dodge add overlay soft_light linear_light difference exclusion
    subtract divide hue saturation color value""".split()
]
ASKED_FOR += [
    f"noise_texture{d}_{kind}"
    for d in (1, 2, 3, 4)
    for kind in ("FBM", "MULTIFRACTAL", "HYBRID_MULTIFRACTAL", "RIDGED_MULTIFRACTAL", "HETERO_TERRAIN")
]
ASKED_FOR += [f"hash_{t}_to_{u}" for t in ("float", "float2", "float3", "float4") for u in ("float", "float3")]
ASKED_FOR += [
    f"{name}{d}"
    for d in (1, 2, 3, 4)
    for name in ("fractal_voronoi_x_fx", "fractal_voronoi_distance_to_edge", "voronoi_n_sphere_radius")
]
ASKED_FOR += [f"voronoi_distance{d}" for d in (2, 3, 4)]

RESERVED = {"sample", "point", "line", "triangle", "half", "min16float", "precise", "packed", "linear", "vector"}


def caller(unit):
    """A shader that calls all functions of a name with varying arguments and stores all results."""
    body, inputs, outputs, textures = calls(unit)
    return cost.shader(body, inputs, outputs, textures)


@pytest.mark.parametrize("name", FUNCTIONS)
def test_compiles_alone_as_members_of_a_struct(name):
    assert len(cost.compile_both(caller(name))) == 2


@pytest.mark.parametrize("name", FUNCTIONS)
def test_compiles_alone_as_free_functions(name):
    texts = [*library.library().STRUCTS.values(), *library.library().resolve({name})]
    assert len(cost.compile_both("\n".join([*texts, "[numthreads(1, 1, 1)] void main() {}"]))) == 2


@pytest.mark.parametrize("name", FUNCTIONS)
def test_names_nothing_that_engines_or_hlsl_reserve(name):
    for text in library.library().resolve({name}):
        assert not RESERVED & set(re.findall(r"[A-Za-z_]\w*(?=\s*[,;=)\[])", text))
        assert not re.search(r"\bstatic\b|\bgroupshared\b|//|/\*", text)


@pytest.mark.parametrize("name", ASKED_FOR)
def test_every_name_that_is_asked_for_is_there(name):
    assert name in FUNCTIONS
    assert library.library().resolve({name})

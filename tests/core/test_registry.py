"""The complete lists of the translated node types and of the library functions that the texts call."""

import pytest

import quillgen
import quillgen_lib

NODE_TYPES = """
    BsdfPrincipled BsdfDiffuse BsdfAnisotropic BsdfMetallic Emission Background BsdfTransparent Holdout
    MixShader
    AddShader
    Math VectorMath Mix MixRGB MapRange Clamp
    Value RGB SeparateXYZ CombineXYZ SeparateColor CombineColor HueSaturation BrightContrast Gamma Invert
    RGBToBW
    Mapping VectorRotate VectorTransform
    TexCoord UVMap TexGradient TexChecker TexBrick TexMagic TexWave TexNoise TexWhiteNoise TexVoronoi TexGabor
    RadialTiling ValToRGB RGBCurve VectorCurve FloatCurve TexImage TexEnvironment
    LightPath ObjectInfo VertexColor Attribute AmbientOcclusion Bevel Wireframe Normal Squeeze CameraData
    Blackbody Wavelength
    NewGeometry Tangent Fresnel LayerWeight NormalMap Bump Displacement VectorDisplacement
""".split()

LIBRARY_NAMES = """
    safe_divide safe_powf safe_logf safe_sqrtf inversesqrtf safe_modulo safe_floored_modulo wrapf pingpongf
    compatible_atan2 compatible_signf smoothminf smoothstepc smootherstep
    safe_divide3 safe_normalize project3 reflect3 refract3 faceforward3 safe_fmod3 wrap3 safe_pow3
    compatible_sign3
    rgb_to_hsv hsv_to_rgb rgb_to_hsl hsl_to_rgb srgb_to_linear3 blackbody_rec709 wavelength_xyz
    mix_mix mix_darken mix_multiply mix_burn mix_lighten mix_screen mix_dodge mix_add mix_overlay
    mix_soft_light
    mix_linear_light mix_difference mix_exclusion mix_subtract mix_divide mix_hue mix_saturation mix_color
    mix_value
    mapping vector_rotate n_obj_to_world dir_world_to_obj rot_to_obj facing_normal make_orthonormals_a bump_dp
    tex_gradient tex_checker tex_brick tex_magic tex_wave gabor radial_tiling
    noise_texture1_FBM noise_texture1_MULTIFRACTAL noise_texture1_HYBRID_MULTIFRACTAL
    noise_texture1_RIDGED_MULTIFRACTAL noise_texture1_HETERO_TERRAIN
    noise_texture2_FBM noise_texture2_MULTIFRACTAL noise_texture2_HYBRID_MULTIFRACTAL
    noise_texture2_RIDGED_MULTIFRACTAL noise_texture2_HETERO_TERRAIN
    noise_texture3_FBM noise_texture3_MULTIFRACTAL noise_texture3_HYBRID_MULTIFRACTAL
    noise_texture3_RIDGED_MULTIFRACTAL noise_texture3_HETERO_TERRAIN
    noise_texture4_FBM noise_texture4_MULTIFRACTAL noise_texture4_HYBRID_MULTIFRACTAL
    noise_texture4_RIDGED_MULTIFRACTAL noise_texture4_HETERO_TERRAIN
    hash_float_to_float hash_float2_to_float hash_float3_to_float hash_float4_to_float
    hash_float_to_float3 hash_float2_to_float3 hash_float3_to_float3 hash_float4_to_float3
    fractal_voronoi_x_fx1 fractal_voronoi_x_fx2 fractal_voronoi_x_fx3 fractal_voronoi_x_fx4
    fractal_voronoi_distance_to_edge1 fractal_voronoi_distance_to_edge2 fractal_voronoi_distance_to_edge3
    fractal_voronoi_distance_to_edge4
    voronoi_n_sphere_radius1 voronoi_n_sphere_radius2 voronoi_n_sphere_radius3 voronoi_n_sphere_radius4
    voronoi_distance2 voronoi_distance3 voronoi_distance4
    texel_fetch_a box_weights map_to_sphere map_to_tube mirrorball_uv equirect_uv
    fresnel_dielectric_cos dither_coverage
""".split()

# Library names whose functions have other names.
FUNCTIONS = {"gabor": ["tex_gabor"], "radial_tiling": ["calculate_out_variables", "calculate_out_segment_id"]}


def test_node_types_are_these_68():
    assert len(NODE_TYPES) == 68
    assert set(quillgen.NODES) == {"ShaderNode" + name for name in NODE_TYPES}
    assert len(quillgen.NODES) == 68


@pytest.mark.parametrize("name", LIBRARY_NAMES)
def test_library_has(name):
    assert name in quillgen_lib.NAMES
    texts = quillgen_lib.resolve({name})
    for function in FUNCTIONS.get(name, [name]):
        assert sum(f" {function}(" in text.split("{")[0] for text in texts) == 1


@pytest.mark.parametrize("name", FUNCTIONS)
def test_no_function_has_the_name(name):
    assert not any(f" {name}(" in text for text in quillgen_lib.resolve({name}))


def test_structs_and_types():
    assert sorted(quillgen_lib.STRUCTS) == ["QWKVoronoiOutput", "QWKVoronoiParams"]
    assert dict(quillgen_lib.TYPES) == {1: "float", 2: "float2", 3: "float3", 4: "float4"}

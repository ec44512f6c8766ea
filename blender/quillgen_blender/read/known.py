"""The properties and sockets that the reader knows, for the node types that can be translated.

A newer Blender may add some. The reader adds a note for each that this table lacks, and tests/host fails if the
installed Blender has one: it is then either handed over and translated, or listed in IGNORED with the reason.
"""

from collections.abc import Iterable
from functools import cache

# Node type: properties | sockets, with underscores for blanks. They are handed to the translator; passes/support.py
# says how they are translated.
_KNOWN = """
AddShader: | Shader Shader_001
AmbientOcclusion: inside only_local | Color Normal
Attribute: attribute_type attribute_name |
Background: | Color Strength
Bevel: | Normal
Blackbody: | Temperature
BrightContrast: | Color Bright Contrast
BsdfAnisotropic: distribution | Color Roughness Anisotropy Rotation Normal Tangent
BsdfDiffuse: | Color Roughness Normal
BsdfGlass: distribution | Color Roughness IOR Normal Thin_Film_Thickness Thin_Film_IOR
BsdfHair: component | Color Offset RoughnessU RoughnessV Tangent
BsdfMetallic: distribution fresnel_type | Base_Color Edge_Tint IOR Extinction Roughness Anisotropy Rotation Normal \
Tangent Thin_Film_Thickness Thin_Film_IOR
BsdfPrincipled: distribution subsurface_method | Base_Color Metallic Roughness IOR Alpha Thin_Wall Normal \
Diffuse_Roughness Subsurface_Weight Subsurface_Radius Subsurface_Scale Subsurface_IOR Subsurface_Anisotropy \
Specular_IOR_Level Specular_Tint Anisotropic Anisotropic_Rotation Tangent Transmission_Weight Coat_Weight \
Coat_Roughness Coat_IOR Coat_Tint Coat_Normal Sheen_Weight Sheen_Roughness Sheen_Tint Emission_Color \
Emission_Strength Thin_Film_Thickness Thin_Film_IOR
BsdfRefraction: distribution | Color Roughness IOR Normal
BsdfSheen: distribution | Color Roughness Normal
BsdfToon: component | Color Size Smooth Normal
BsdfTranslucent: | Color Normal
BsdfTransparent: | Color
Bump: invert | Strength Distance Filter_Width Height Normal
CameraData: |
Clamp: clamp_type | Value Min Max
CombineColor: mode | Red Green Blue
CombineHSV: | H S V
CombineRGB: | R G B
CombineXYZ: | X Y Z
Displacement: space | Height Midlevel Scale Normal
Emission: | Color Strength
FloatCurve: mapping | Factor Value
Fresnel: | IOR Normal
Gamma: | Color Gamma
Holdout: |
HueSaturation: | Hue Saturation Value Fac Color
Invert: | Fac Color
LayerWeight: | Blend Normal
LightPath: |
MapRange: clamp interpolation_type data_type | Value From_Min From_Max To_Min To_Max Steps Vector From_Min_FLOAT3 \
From_Max_FLOAT3 To_Min_FLOAT3 To_Max_FLOAT3 Steps_FLOAT3
Mapping: vector_type | Vector Location Rotation Scale
Math: operation use_clamp | Value Value_001 Value_002
Mix: data_type factor_mode blend_type clamp_factor clamp_result | Factor_Float Factor_Vector A_Float B_Float A_Vector \
B_Vector A_Color B_Color A_Rotation B_Rotation
MixRGB: blend_type use_clamp | Fac Color1 Color2
MixShader: | Fac Shader Shader_001
NewGeometry: |
Normal: | Normal
NormalMap: space uv_map convention base | Strength Color
ObjectInfo: |
RGB: |
RGBCurve: mapping | Fac Color
RGBToBW: | Color
RadialTiling: normalize | Vector Sides Roundness
SeparateColor: mode | Color
SeparateHSV: | Color
SeparateRGB: | Image
SeparateXYZ: | Vector
Squeeze: | Value Width Center
SubsurfaceScattering: falloff | Color Scale Radius IOR Roughness Anisotropy Normal
Tangent: direction_type axis uv_map |
TexBrick: offset_frequency squash_frequency offset squash | Vector Color1 Color2 Mortar Scale Mortar_Size \
Mortar_Smooth Bias Brick_Width Row_Height
TexChecker: | Vector Color1 Color2 Scale
TexCoord: object from_instancer |
TexEnvironment: image projection interpolation | Vector
TexGabor: gabor_type | Vector Scale Frequency Anisotropy Orientation_2D Orientation_3D
TexGradient: gradient_type | Vector
TexImage: image projection interpolation projection_blend extension | Vector
TexMagic: turbulence_depth | Vector Scale Distortion
TexNoise: noise_dimensions noise_type normalize | Vector W Scale Detail Roughness Lacunarity Offset Gain Distortion
TexVoronoi: voronoi_dimensions distance feature normalize | Vector W Scale Detail Roughness Lacunarity Smoothness \
Exponent Randomness
TexWave: wave_type bands_direction rings_direction wave_profile | Vector Scale Distortion Detail Detail_Scale \
Detail_Roughness Phase_Offset
TexWhiteNoise: noise_dimensions | Vector W
UVMap: from_instancer uv_map |
ValToRGB: color_ramp | Fac
Value: |
VectorCurve: mapping | Fac Vector
VectorDisplacement: space | Vector Midlevel Scale
VectorMath: operation | Vector Vector_001 Vector_002 Scale
VectorRotate: rotation_type invert | Vector Center Axis Angle Rotation
VectorTransform: vector_type convert_from convert_to | Vector
VertexColor: layer_name |
Wavelength: | Wavelength
Wireframe: use_pixel_size | Size
"""

# Properties and sockets that are deliberately not read or do not affect rendering: (node type or "*", name): reason.
IGNORED = {
    ("*", "Weight"): "a shader's weight is hidden and set by the render engine",
    ("*", "color_mapping"): "Cycles ignores it",
    ("*", "texture_mapping"): "told by a note where it does anything (records.py)",
    ("*", "image_user"): "the frame of a sequence is told by a note (records.py)",
    ("AmbientOcclusion", "samples"): "the occlusion is a fixed value",
    ("AmbientOcclusion", "Distance"): "the occlusion is a fixed value",
    ("Bevel", "samples"): "the normal passes through",
    ("Bevel", "Radius"): "the normal passes through",
    ("MixRGB", "use_alpha"): "Cycles ignores it",
}


@cache
def names(node_type: str) -> frozenset[str] | None:
    """The known names of a node type; None if the type is not translated."""
    known = _table().get(node_type.removeprefix("ShaderNode"))
    if known is None:
        return None
    return known | {name for kind, name in IGNORED if kind in ("*", node_type.removeprefix("ShaderNode"))}


@cache
def _table() -> dict[str, frozenset[str]]:
    found = {}
    for line in _KNOWN.strip().splitlines():
        kind, _, rest = line.partition(":")
        found[kind] = frozenset(rest.replace("|", " ").split())
    return found


def unknown(node_type: str, found: Iterable[str]) -> tuple[str, ...]:
    """The given properties and sockets of a node type that are not known."""
    known = names(node_type)
    return () if known is None else tuple(name for name in found if name.replace(" ", "_") not in known)

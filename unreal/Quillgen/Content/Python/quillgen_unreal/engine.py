"""Differences between versions of the editor, and the enumeration members that materials use."""

from __future__ import annotations

from typing import Any, NamedTuple

from .plan import Enum


class Features(NamedTuple):
    local_position: bool  # the expression LocalPosition, 5.5 and newer
    tessellation: bool  # displacement with Nanite, 5.4 and newer

    @classmethod
    def of_version(cls, major: int, minor: int = 0) -> Features:
        return cls(local_position=(major, minor) >= (5, 5), tessellation=(major, minor) >= (5, 4))

    @classmethod
    def of_editor(cls, unreal: Any) -> Features:
        """The features of the running editor, found by its classes, not by its version number."""
        return cls(
            local_position=hasattr(unreal, "MaterialExpressionLocalPosition"),
            tessellation=hasattr(unreal, "DisplacementScaling"),
        )


def _members(type_name: str, **texts: str) -> dict[str, Enum]:
    return {member: Enum(type_name, member, text) for member, text in texts.items()}


WORLD_POSITION = _members(
    "WorldPositionIncludedOffsets",
    WPT_DEFAULT="WPT_Default",
    WPT_EXCLUDE_ALL_SHADER_OFFSETS="WPT_ExcludeAllShaderOffsets",
    WPT_CAMERA_RELATIVE="WPT_CameraRelative",
)
LOCAL_ORIGIN = _members("LocalPositionOrigin", INSTANCE="Instance")
INCLUDED_OFFSETS = _members("PositionIncludedOffsets", EXCLUDE_OFFSETS="ExcludeOffsets")
POSITION_SPACE = _members(
    "MaterialPositionTransformSource",
    TRANSFORMPOSSOURCE_LOCAL="TRANSFORMPOSSOURCE_Local",
    TRANSFORMPOSSOURCE_WORLD="TRANSFORMPOSSOURCE_World",
    TRANSFORMPOSSOURCE_INSTANCE="TRANSFORMPOSSOURCE_Instance",
)
VECTOR_SOURCE = _members(
    "MaterialVectorCoordTransformSource",
    TRANSFORMSOURCE_TANGENT="TRANSFORMSOURCE_Tangent",
    TRANSFORMSOURCE_LOCAL="TRANSFORMSOURCE_Local",
    TRANSFORMSOURCE_VIEW="TRANSFORMSOURCE_View",
    TRANSFORMSOURCE_CAMERA="TRANSFORMSOURCE_Camera",
    TRANSFORMSOURCE_INSTANCE="TRANSFORMSOURCE_Instance",
)
VECTOR_TARGET = _members("MaterialVectorCoordTransform", TRANSFORM_WORLD="TRANSFORM_World")
VIEW_PROPERTY = _members(
    "MaterialExposedViewProperty",
    MEVP_TAN_HALF_FIELD_OF_VIEW="MEVP_TanHalfFieldOfView",
    MEVP_VIEW_SIZE="MEVP_ViewSize",
    MEVP_TEMPORAL_SAMPLE_INDEX="MEVP_TemporalSampleIndex",
)
SAMPLER_TYPE = _members("MaterialSamplerType", SAMPLERTYPE_LINEAR_COLOR="SAMPLERTYPE_LinearColor")
OUTPUT_TYPE = _members(
    "CustomMaterialOutputType",
    CMOT_FLOAT1="CMOT_Float1",
    CMOT_FLOAT2="CMOT_Float2",
    CMOT_FLOAT3="CMOT_Float3",
    CMOT_FLOAT4="CMOT_Float4",
)
SHADING = _members(
    "MaterialShadingModel",
    MSM_DEFAULT_LIT="MSM_DefaultLit",
    MSM_CLEAR_COAT="MSM_ClearCoat",
    MSM_UNLIT="MSM_Unlit",
)
BLEND = _members(
    "BlendMode", BLEND_OPAQUE="BLEND_Opaque", BLEND_MASKED="BLEND_Masked", BLEND_TRANSLUCENT="BLEND_Translucent"
)
LIGHTING = _members("TranslucencyLightingMode", TLM_SURFACE_PER_PIXEL_LIGHTING="TLM_SurfacePerPixelLighting")
PRECISION = _members(
    "MaterialFloatPrecisionMode", MFPM_FULL_MATERIAL_EXPRESSION_ONLY="MFPM_Full_MaterialExpressionOnly"
)
COMPRESSION = _members(
    "TextureCompressionSettings",
    TC_VECTOR_DISPLACEMENTMAP="TC_VectorDisplacementmap",
    TC_HDR_F32="TC_HDR_F32",
)
MIPS = _members("TextureMipGenSettings", TMGS_NO_MIPMAPS="TMGS_NoMipmaps")
TEXTURE_GROUP = _members("TextureGroup", TEXTUREGROUP_WORLD="TEXTUREGROUP_World")

FLOATS = {f"float{n if n > 1 else ''}": OUTPUT_TYPE[f"CMOT_FLOAT{n}"] for n in (1, 2, 3, 4)}

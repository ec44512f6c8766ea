"""Tables of Unreal's classes by version: properties, pins, enumeration members.

A property's type is "bool", "int", "float", "str", "name", the name of an enumeration, a struct or an asset class, or
any of these followed by "[]". An output pin is a pair of its name and its number of components; 0 means as many as the
input has, "object" a texture.
"""

# Members that were added by a newer version are in SINCE.
ENUMS = {
    "WorldPositionIncludedOffsets": "WPT_DEFAULT WPT_EXCLUDE_ALL_SHADER_OFFSETS WPT_CAMERA_RELATIVE "
    "WPT_CAMERA_RELATIVE_NO_OFFSETS",
    "LocalPositionOrigin": "INSTANCE INSTANCE_PRE_SKINNING PRIMITIVE",
    "PositionIncludedOffsets": "INCLUDE_OFFSETS EXCLUDE_OFFSETS",
    "MaterialPositionTransformSource": "TRANSFORMPOSSOURCE_LOCAL TRANSFORMPOSSOURCE_WORLD "
    "TRANSFORMPOSSOURCE_TRANSLATED_WORLD TRANSFORMPOSSOURCE_VIEW "
    "TRANSFORMPOSSOURCE_CAMERA TRANSFORMPOSSOURCE_PARTICLE "
    "TRANSFORMPOSSOURCE_INSTANCE",
    "MaterialVectorCoordTransformSource": "TRANSFORMSOURCE_TANGENT TRANSFORMSOURCE_LOCAL TRANSFORMSOURCE_WORLD "
    "TRANSFORMSOURCE_VIEW TRANSFORMSOURCE_CAMERA "
    "TRANSFORMSOURCE_PARTICLE_WORLD TRANSFORMSOURCE_INSTANCE",
    "MaterialVectorCoordTransform": "TRANSFORM_TANGENT TRANSFORM_LOCAL TRANSFORM_WORLD TRANSFORM_VIEW "
    "TRANSFORM_CAMERA TRANSFORM_PARTICLE_WORLD TRANSFORM_INSTANCE",
    "MaterialExposedViewProperty": "MEVP_BUFFER_SIZE MEVP_FIELD_OF_VIEW MEVP_TAN_HALF_FIELD_OF_VIEW MEVP_VIEW_SIZE "
    "MEVP_WORLD_SPACE_VIEW_POSITION MEVP_WORLD_SPACE_CAMERA_POSITION "
    "MEVP_VIEWPORT_OFFSET MEVP_TEMPORAL_SAMPLE_COUNT MEVP_TEMPORAL_SAMPLE_INDEX",
    "MaterialSamplerType": "SAMPLERTYPE_COLOR SAMPLERTYPE_GRAYSCALE SAMPLERTYPE_ALPHA SAMPLERTYPE_NORMAL "
    "SAMPLERTYPE_MASKS SAMPLERTYPE_LINEAR_COLOR SAMPLERTYPE_LINEAR_GRAYSCALE",
    "CustomMaterialOutputType": "CMOT_FLOAT1 CMOT_FLOAT2 CMOT_FLOAT3 CMOT_FLOAT4 CMOT_MATERIAL_ATTRIBUTES",
    "MaterialShadingModel": "MSM_UNLIT MSM_DEFAULT_LIT MSM_SUBSURFACE MSM_CLEAR_COAT MSM_TWO_SIDED_FOLIAGE",
    "BlendMode": "BLEND_OPAQUE BLEND_MASKED BLEND_TRANSLUCENT BLEND_ADDITIVE BLEND_MODULATE",
    "TranslucencyLightingMode": "TLM_VOLUMETRIC_NON_DIRECTIONAL TLM_VOLUMETRIC_DIRECTIONAL TLM_SURFACE "
    "TLM_SURFACE_PER_PIXEL_LIGHTING",
    "MaterialFloatPrecisionMode": "MFPM_DEFAULT MFPM_FULL_MATERIAL_EXPRESSION_ONLY MFPM_FULL MFPM_HALF",
    "MaterialProperty": "MP_EMISSIVE_COLOR MP_OPACITY MP_OPACITY_MASK MP_BASE_COLOR MP_METALLIC MP_SPECULAR "
    "MP_ROUGHNESS MP_NORMAL MP_WORLD_POSITION_OFFSET MP_MATERIAL_ATTRIBUTES",
    "TextureCompressionSettings": "TC_DEFAULT TC_NORMALMAP TC_MASKS TC_GRAYSCALE TC_DISPLACEMENTMAP "
    "TC_VECTOR_DISPLACEMENTMAP TC_HDR TC_EDITOR_ICON TC_ALPHA TC_HDR_COMPRESSED TC_BC7 "
    "TC_HALF_FLOAT TC_SINGLE_FLOAT TC_HDR_F32",
    "TextureMipGenSettings": "TMGS_FROM_TEXTURE_GROUP TMGS_SIMPLE_AVERAGE TMGS_NO_MIPMAPS TMGS_LEAVE_EXISTING_MIPS",
    "TextureGroup": "TEXTUREGROUP_WORLD TEXTUREGROUP_WORLD_NORMAL_MAP TEXTUREGROUP_UI",
    "MultiBlockType": "NONE BUTTON_ROW EDITABLE_TEXT HEADING MENU_ENTRY MENU_SEPARATOR",
    "ToolMenuStringCommandType": "COMMAND PYTHON CUSTOM",
    "AppMsgType": "OK YES_NO OK_CANCEL YES_NO_CANCEL",
    "AppReturnType": "NO YES CANCEL OK",
    "HorizTextAligment": "EHTA_LEFT EHTA_CENTER EHTA_RIGHT",
}

VERSIONS = [(5, 3), (5, 4), (5, 5), (5, 6), (5, 7)]

# Types and properties -> the version that added them.
SINCE = {
    "MaterialExpressionLocalPosition": (5, 5),
    "LocalPositionOrigin": (5, 5),
    "PositionIncludedOffsets": (5, 5),
    "DisplacementScaling": (5, 4),
    "Material.enable_tessellation": (5, 4),
    "Material.displacement_scaling": (5, 4),
}

PARAMETER = {"parameter_name": "name", "group": "name", "sort_priority": "int"}
POSITION_TRANSFORM = {
    "transform_source_type": "MaterialPositionTransformSource",
    "transform_type": "MaterialPositionTransformSource",
}
VECTOR_TRANSFORM = {
    "transform_source_type": "MaterialVectorCoordTransformSource",
    "transform_type": "MaterialVectorCoordTransform",
}
ATTRIBUTES = (
    "BaseColor",
    "Metallic",
    "Specular",
    "Roughness",
    "Anisotropy",
    "EmissiveColor",
    "Opacity",
    "OpacityMask",
    "Normal",
    "Tangent",
    "WorldPositionOffset",
    "SubsurfaceColor",
    "ClearCoat",
    "ClearCoatRoughness",
    "AmbientOcclusion",
    "Refraction",
    "CustomizedUVs0",
    "CustomizedUVs1",
    "PixelDepthOffset",
    "ShadingModel",
    "Displacement",
)

# Class -> (properties, input pins, output pins). An input without a documented name is None; "" selects it.
EXPRESSIONS = {
    "ScalarParameter": (
        {**PARAMETER, "default_value": "float", "slider_min": "float", "slider_max": "float"},
        (),
        (("", 1),),
    ),
    "VectorParameter": (
        {**PARAMETER, "default_value": "LinearColor"},
        (),
        (("", 3), ("R", 1), ("G", 1), ("B", 1), ("A", 1), ("RGBA", 4)),
    ),
    "TextureObjectParameter": (
        {**PARAMETER, "texture": "Texture", "sampler_type": "MaterialSamplerType"},
        (),
        (("", "object"),),
    ),
    "TextureCoordinate": ({"coordinate_index": "int", "u_tiling": "float", "v_tiling": "float"}, (), (("", 2),)),
    "DDX": ({}, ("Value",), (("", 0),)),
    "DDY": ({}, ("Value",), (("", 0),)),
    "WorldPosition": ({"world_position_shader_offset": "WorldPositionIncludedOffsets"}, (), (("", 3),)),
    "LocalPosition": (
        {"local_origin": "LocalPositionOrigin", "included_offsets": "PositionIncludedOffsets"},
        (),
        (("", 3),),
    ),
    "TransformPosition": (POSITION_TRANSFORM, (None,), (("", 3),)),
    "Transform": (VECTOR_TRANSFORM, (None,), (("", 3),)),
    "Constant3Vector": ({"constant": "LinearColor"}, (), (("", 3),)),
    "VertexNormalWS": ({}, (), (("", 3),)),
    "PixelNormalWS": ({}, (), (("", 3),)),
    "VertexTangentWS": ({}, (), (("", 3),)),
    "CameraVectorWS": ({}, (), (("", 3),)),
    "CameraPositionWS": ({}, (), (("", 3),)),
    "ObjectPositionWS": ({}, (), (("", 3),)),
    "ObjectLocalBounds": ({}, (), (("Half Extents", 3), ("Extents", 3), ("Min", 3), ("Max", 3))),
    "VertexColor": ({}, (), (("", 3), ("R", 1), ("G", 1), ("B", 1), ("A", 1))),
    "AppendVector": ({}, ("A", "B"), (("", "sum"),)),
    "TwoSidedSign": ({}, (), (("", 1),)),
    "PixelDepth": ({}, (), (("", 1),)),
    "ViewProperty": ({"property": "MaterialExposedViewProperty"}, (), (("Property", None), ("InvProperty", None))),
    "ScreenPosition": ({}, (), (("ViewportUV", 2), ("PixelPosition", 2))),
    "RayTracingQualitySwitch": ({}, ("Normal", "RayTraced"), (("", 0),)),
    "MakeMaterialAttributes": ({}, ATTRIBUTES, (("", "attributes"),)),
    "Custom": (
        {
            "code": "str",
            "description": "str",
            "output_type": "CustomMaterialOutputType",
            "inputs": "CustomInput[]",
            "additional_outputs": "CustomOutput[]",
            "include_file_paths": "str[]",
        },
        (),
        (),
    ),
}
VIEW_WIDTHS = {
    "MEVP_TAN_HALF_FIELD_OF_VIEW": 2,
    "MEVP_VIEW_SIZE": 2,
    "MEVP_TEMPORAL_SAMPLE_INDEX": 1,
    "MEVP_BUFFER_SIZE": 2,
    "MEVP_FIELD_OF_VIEW": 2,
}
CUSTOM_WIDTHS = {"CMOT_FLOAT1": 1, "CMOT_FLOAT2": 2, "CMOT_FLOAT3": 3, "CMOT_FLOAT4": 4}

ASSETS = {
    "Material": {
        "shading_model": "MaterialShadingModel",
        "blend_mode": "BlendMode",
        "two_sided": "bool",
        "opacity_mask_clip_value": "float",
        "tangent_space_normal": "bool",
        "use_material_attributes": "bool",
        "translucency_lighting_mode": "TranslucencyLightingMode",
        "used_with_nanite": "bool",
        "float_precision_mode": "MaterialFloatPrecisionMode",
        "enable_tessellation": "bool",
        "displacement_scaling": "DisplacementScaling",
    },
    "MaterialInstanceConstant": {
        "parent": "MaterialInterface",
        "scalar_parameter_values": "ScalarParameterValue[]",
        "vector_parameter_values": "VectorParameterValue[]",
        "texture_parameter_values": "TextureParameterValue[]",
    },
    "Texture2D": {
        "srgb": "bool",
        "compression_settings": "TextureCompressionSettings",
        "mip_gen_settings": "TextureMipGenSettings",
        "never_stream": "bool",
        "virtual_texture_streaming": "bool",
        "lod_group": "TextureGroup",
        "max_texture_size": "int",
        "lod_bias": "int",
    },
}

STRUCTS = {
    "LinearColor": {"r": "float", "g": "float", "b": "float", "a": "float"},
    "CustomInput": {"input_name": "name"},
    "CustomOutput": {"output_name": "name", "output_type": "CustomMaterialOutputType"},
    "DisplacementScaling": {"magnitude": "float", "center": "float"},
    "MaterialParameterInfo": {"name": "name"},
    "ScalarParameterValue": {"parameter_info": "MaterialParameterInfo", "parameter_value": "float"},
    "VectorParameterValue": {"parameter_info": "MaterialParameterInfo", "parameter_value": "LinearColor"},
    "TextureParameterValue": {"parameter_info": "MaterialParameterInfo", "parameter_value": "Texture"},
    "Vector": {"x": "float", "y": "float", "z": "float"},
    "Rotator": {"roll": "float", "pitch": "float", "yaw": "float"},
    "DirectoryPath": {"path": "str"},
}
DEFAULTS = {"bool": False, "int": 0, "float": 0.0, "str": "", "name": "None"}

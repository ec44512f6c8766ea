"""Blender's node types: input sockets with a value, output sockets, and all properties.

The values differ between sockets, so that a text shows which socket it reads.
"""

VALUE, VECTOR, RGBA, SHADER = "VALUE", "VECTOR", "RGBA", "SHADER"


def entry(value, kind=None):
    """An unlinked input entry. None means a shader, three numbers a vector, four numbers a colour."""
    if value is None:
        return {"t": SHADER}
    size = len(value) if isinstance(value, (list, tuple)) else 1
    return {"t": kind or {1: VALUE, 3: VECTOR, 4: RGBA}[size], "v": list(value) if size > 1 else value}


RAMP = {
    "stops": [[0.25, [0.1, 0.2, 0.3, 1.0]], [0.5, [0.9, 0.6, 0.4, 0.5]], [0.75, [0.0, 0.7, 0.8, 1.0]]],
    "interp": "LINEAR",
    "mode": "RGB",
}
CURVES = {"tables": [[0.0, 0.25, 1.0], [0.0, 0.5, 1.0], [0.0, 0.75, 0.5]], "min": 0.0, "max": 1.0}

ORIGIN = (0.0, 0.0, 0.0)
NORMAL = {"Normal": ORIGIN}
COLOURS = {"Color1": (0.8, 0.1, 0.2, 1.0), "Color2": (0.3, 0.9, 0.4, 1.0)}
SHADERS = {"Shader": None, "Shader_001": None}
HSV = {"Hue": 0.55, "Saturation": 1.25, "Value": 0.75}
FACTOR = {"Fac": VALUE}
COLOUR = {"Color": RGBA}
PATTERN = {"Color": RGBA, "Fac": VALUE}
BSDF = {"BSDF": SHADER}
FACED = {"Normal": VECTOR}
TINT = (0.8, 0.5, 0.25, 1.0)
ARROW = (0.5, -1.5, 2.5)

# Each type without its "ShaderNode": inputs, outputs, properties.
_TYPES = {
    "BsdfPrincipled": (
        {
            "Base Color": TINT,
            "Metallic": 0.2,
            "Roughness": 0.4,
            "IOR": 1.45,
            "Alpha": 1.0,
            **NORMAL,
            "Subsurface Weight": 0.0,
            "Specular IOR Level": 0.6,
            "Transmission Weight": 0.0,
            "Coat Weight": 0.0,
            "Coat Roughness": 0.03,
            "Sheen Weight": 0.0,
            "Emission Color": (1.0, 0.9, 0.7, 1.0),
            "Emission Strength": 0.0,
        },
        BSDF,
        {},
    ),
    "BsdfDiffuse": ({"Color": TINT, "Roughness": 0.3, **NORMAL}, BSDF, {}),
    "BsdfAnisotropic": ({"Color": TINT, "Roughness": 0.3, "Anisotropy": 0.1, **NORMAL}, BSDF, {}),
    "BsdfMetallic": ({"Base Color": TINT, "Roughness": 0.3, "Anisotropy": 0.1, **NORMAL}, BSDF, {}),
    "Emission": ({"Color": TINT, "Strength": 2.0}, {"Emission": SHADER}, {}),
    "Background": ({"Color": TINT, "Strength": 2.0}, {"Background": SHADER}, {}),
    "BsdfTransparent": ({"Color": TINT}, BSDF, {}),
    "Holdout": ({}, {"Holdout": SHADER}, {}),
    "MixShader": ({"Fac": 0.3, **SHADERS}, {"Shader": SHADER}, {}),
    "AddShader": (SHADERS, {"Shader": SHADER}, {}),
    "Math": (
        {"Value": 0.75, "Value_001": -1.5, "Value_002": 0.125},
        {"Value": VALUE},
        {"operation": "ADD", "use_clamp": False},
    ),
    "VectorMath": (
        {"Vector": ARROW, "Vector_001": (1.25, 0.75, -0.5), "Vector_002": (3.0, 2.0, 1.0), "Scale": 1.75},
        {"Vector": VECTOR, "Value": VALUE},
        {"operation": "ADD"},
    ),
    "Mix": (
        {
            "Factor_Float": 0.3,
            "Factor_Vector": (0.2, 0.4, 0.6),
            "A_Float": 1.25,
            "B_Float": 2.5,
            "A_Vector": ARROW,
            "B_Vector": (3.0, 2.0, 1.0),
            "A_Color": TINT,
            "B_Color": (0.1, 0.9, 0.4, 1.0),
        },
        {"Result_Float": VALUE, "Result_Vector": VECTOR, "Result_Color": RGBA},
        {
            "data_type": "FLOAT",
            "factor_mode": "UNIFORM",
            "blend_type": "MIX",
            "clamp_factor": True,
            "clamp_result": False,
        },
    ),
    "MixRGB": ({"Fac": 0.3, **COLOURS}, COLOUR, {"blend_type": "MIX", "use_clamp": False}),
    "MapRange": (
        {
            "Value": 0.75,
            "From Min": 0.25,
            "From Max": 1.5,
            "To Min": -1.0,
            "To Max": 2.0,
            "Steps": 4.0,
            "Vector": ARROW,
            "From_Min_FLOAT3": (0.1, 0.2, 0.3),
            "From_Max_FLOAT3": (1.1, 1.2, 1.3),
            "To_Min_FLOAT3": (-1.1, -1.2, -1.3),
            "To_Max_FLOAT3": (2.1, 2.2, 2.3),
            "Steps_FLOAT3": (4.0, 5.0, 6.0),
        },
        {"Result": VALUE, "Vector": VECTOR},
        {"interpolation_type": "LINEAR", "data_type": "FLOAT", "clamp": True},
    ),
    "Clamp": ({"Value": 1.75, "Min": 0.25, "Max": 0.5}, {"Result": VALUE}, {"clamp_type": "MINMAX"}),
    "Value": ({}, {"Value": VALUE}, {"value": 0.625}),
    "RGB": ({}, COLOUR, {"color": [0.25, 0.5, 0.75, 1.0]}),
    "SeparateXYZ": ({"Vector": ARROW}, {"X": VALUE, "Y": VALUE, "Z": VALUE}, {}),
    "CombineXYZ": ({"X": 0.25, "Y": -0.5, "Z": 1.5}, {"Vector": VECTOR}, {}),
    "SeparateColor": ({"Color": TINT}, {"Red": VALUE, "Green": VALUE, "Blue": VALUE}, {"mode": "RGB"}),
    "CombineColor": ({"Red": 0.25, "Green": 0.5, "Blue": 1.5}, COLOUR, {"mode": "RGB"}),
    "HueSaturation": ({**HSV, "Fac": 0.9, "Color": TINT}, COLOUR, {}),
    "BrightContrast": ({"Color": TINT, "Bright": 0.1, "Contrast": -0.2}, COLOUR, {}),
    "Gamma": ({"Color": TINT, "Gamma": 2.2}, COLOUR, {}),
    "Invert": ({"Fac": 0.7, "Color": TINT}, COLOUR, {}),
    "RGBToBW": ({"Color": TINT}, {"Val": VALUE}, {}),
    "Mapping": (
        {"Vector": ARROW, "Location": (0.1, 0.2, 0.3), "Rotation": (0.4, 0.5, 0.6), "Scale": (2.0, 3.0, 4.0)},
        {"Vector": VECTOR},
        {"vector_type": "POINT"},
    ),
    "VectorRotate": (
        {
            "Vector": ARROW,
            "Center": (0.1, 0.2, 0.3),
            "Axis": (0.0, 0.6, 0.8),
            "Angle": 0.7,
            "Rotation": (0.4, 0.5, 0.6),
        },
        {"Vector": VECTOR},
        {"rotation_type": "AXIS_ANGLE", "invert": False},
    ),
    "VectorTransform": (
        {"Vector": ARROW},
        {"Vector": VECTOR},
        {"vector_type": "VECTOR", "convert_from": "WORLD", "convert_to": "OBJECT"},
    ),
    "TexCoord": (
        {},
        dict.fromkeys(("Generated", "Normal", "UV", "Object", "Camera", "Window", "Reflection"), VECTOR),
        {"from_instancer": False},
    ),
    "UVMap": ({}, {"UV": VECTOR}, {"uv_map": "UVMap"}),
    "TexGradient": ({"Vector": ORIGIN}, PATTERN, {"gradient_type": "LINEAR"}),
    "TexChecker": ({"Vector": ORIGIN, **COLOURS, "Scale": 5.0}, PATTERN, {}),
    "TexBrick": (
        {
            "Vector": ORIGIN,
            **COLOURS,
            "Mortar": (0.05, 0.15, 0.25, 1.0),
            "Scale": 5.0,
            "Mortar Size": 0.02,
            "Mortar Smooth": 0.1,
            "Bias": -0.25,
            "Brick Width": 0.5,
            "Row Height": 0.125,
        },
        PATTERN,
        {"offset": 0.25, "offset_frequency": 3, "squash": 1.5, "squash_frequency": 4},
    ),
    "TexMagic": ({"Vector": ORIGIN, "Scale": 5.0, "Distortion": 1.5}, PATTERN, {"turbulence_depth": 3}),
    "TexWave": (
        {
            "Vector": ORIGIN,
            "Scale": 5.0,
            "Distortion": 1.5,
            "Detail": 2.0,
            "Detail Scale": 1.25,
            "Detail Roughness": 0.625,
            "Phase Offset": 0.375,
        },
        PATTERN,
        {"wave_type": "BANDS", "bands_direction": "X", "rings_direction": "X", "wave_profile": "SIN"},
    ),
    "TexNoise": (
        {
            "Vector": ORIGIN,
            "W": 0.3,
            "Scale": 5.0,
            "Detail": 2.0,
            "Roughness": 0.625,
            "Lacunarity": 2.25,
            "Offset": 0.125,
            "Gain": 1.75,
            "Distortion": 0.4,
        },
        {"Fac": VALUE, "Color": RGBA},
        {"noise_dimensions": "3D", "noise_type": "FBM", "normalize": True},
    ),
    "TexWhiteNoise": ({"Vector": ORIGIN, "W": 0.3}, {"Value": VALUE, "Color": RGBA}, {"noise_dimensions": "3D"}),
    "TexVoronoi": (
        {
            "Vector": ORIGIN,
            "W": 0.3,
            "Scale": 5.0,
            "Detail": 2.0,
            "Roughness": 0.625,
            "Lacunarity": 2.25,
            "Smoothness": 0.75,
            "Exponent": 0.375,
            "Randomness": 0.875,
        },
        {"Distance": VALUE, "Color": RGBA, "Position": VECTOR, "W": VALUE, "Radius": VALUE},
        {"voronoi_dimensions": "3D", "feature": "F1", "distance": "EUCLIDEAN", "normalize": False},
    ),
    "TexGabor": (
        {
            "Vector": ORIGIN,
            "Scale": 5.0,
            "Frequency": 2.0,
            "Anisotropy": 0.875,
            "Orientation 2D": 0.7,
            "Orientation 3D": (1.0, 2.0, 3.0),
        },
        {"Value": VALUE, "Phase": VALUE, "Intensity": VALUE},
        {"gabor_type": "2D"},
    ),
    "RadialTiling": (
        {"Vector": ARROW, "Sides": 5.0, "Roundness": 0.125},
        {"Segment Coordinates": VECTOR, "Segment ID": VALUE, "Segment Width": VALUE, "Segment Rotation": VALUE},
        {"normalize": False},
    ),
    "ValToRGB": ({"Fac": 0.6}, {"Color": RGBA, "Alpha": VALUE}, {}),
    "RGBCurve": ({"Fac": 0.9, "Color": TINT}, COLOUR, {}),
    "VectorCurve": ({"Fac": 0.9, "Vector": ARROW}, {"Vector": VECTOR}, {}),
    "FloatCurve": ({"Factor": 0.9, "Value": 0.35}, {"Value": VALUE}, {}),
    "TexImage": (
        {"Vector": ORIGIN},
        {"Color": RGBA, "Alpha": VALUE},
        {
            "image": "wood.png",
            "projection": "FLAT",
            "projection_blend": 0.25,
            "extension": "REPEAT",
            "interpolation": "Linear",
        },
    ),
    "TexEnvironment": (
        {"Vector": ORIGIN},
        COLOUR,
        {"image": "wood.png", "projection": "EQUIRECTANGULAR", "interpolation": "Linear"},
    ),
    "LightPath": ({}, dict.fromkeys(("Is Camera Ray", "Is Shadow Ray", "Ray Length", "Ray Depth"), VALUE), {}),
    "ObjectInfo": (
        {},
        {
            "Location": VECTOR,
            "Color": RGBA,
            "Alpha": VALUE,
            "Object Index": VALUE,
            "Material Index": VALUE,
            "Random": VALUE,
        },
        {},
    ),
    "VertexColor": ({}, {"Color": RGBA, "Alpha": VALUE}, {"layer_name": "Col"}),
    "Attribute": (
        {},
        {"Color": RGBA, "Vector": VECTOR, "Fac": VALUE, "Alpha": VALUE},
        {"attribute_name": "Col", "attribute_type": "GEOMETRY"},
    ),
    "AmbientOcclusion": ({"Color": TINT, "Distance": 1.0, **NORMAL}, {"Color": RGBA, "AO": VALUE}, {}),
    "Bevel": ({"Radius": 0.05, **NORMAL}, FACED, {}),
    "Wireframe": ({"Size": 0.01}, FACTOR, {}),
    "Normal": ({"Normal": ARROW}, {"Normal": VECTOR, "Dot": VALUE}, {"normal": [0.0, 0.6, 0.8]}),
    "Squeeze": ({"Value": 0.3, "Width": 1.5, "Center": 0.1}, {"Value": VALUE}, {}),
    "CameraData": ({}, {"View Vector": VECTOR, "View Z Depth": VALUE, "View Distance": VALUE}, {}),
    "Blackbody": ({"Temperature": 4500.0}, COLOUR, {}),
    "Wavelength": ({"Wavelength": 550.0}, COLOUR, {}),
    "NewGeometry": (
        {},
        {
            "Position": VECTOR,
            "Normal": VECTOR,
            "Tangent": VECTOR,
            "True Normal": VECTOR,
            "Incoming": VECTOR,
            "Parametric": VECTOR,
            "Backfacing": VALUE,
            "Pointiness": VALUE,
            "Random Per Island": VALUE,
        },
        {},
    ),
    "Tangent": ({}, {"Tangent": VECTOR}, {"direction_type": "RADIAL", "axis": "Z", "uv_map": ""}),
    "Fresnel": ({"IOR": 1.45, **NORMAL}, FACTOR, {}),
    "LayerWeight": ({"Blend": 0.3, **NORMAL}, {"Fresnel": VALUE, "Facing": VALUE}, {}),
    "NormalMap": (
        {"Strength": 0.8, "Color": (0.4, 0.6, 0.9, 1.0)},
        FACED,
        {"space": "TANGENT", "convention": "OPENGL", "uv_map": ""},
    ),
    "Bump": (
        {"Strength": 0.9, "Distance": 0.2, "Filter Width": 0.15, "Height": 1.0, **NORMAL},
        FACED,
        {"invert": False},
    ),
    "Displacement": (
        {"Height": 0.7, "Midlevel": 0.4, "Scale": 0.3, **NORMAL},
        {"Displacement": VECTOR},
        {"space": "OBJECT"},
    ),
    "VectorDisplacement": (
        {"Vector": (0.1, 0.2, 0.3, 1.0), "Midlevel": 0.4, "Scale": 0.3},
        {"Displacement": VECTOR},
        {"space": "TANGENT"},
    ),
}

TYPES = {
    "ShaderNode" + name: ({socket: entry(value) for socket, value in inputs.items()}, outputs, props)
    for name, (inputs, outputs, props) in _TYPES.items()
}

# Further keys of node records.
FURTHER = {
    "ShaderNodeValToRGB": {"ramp": RAMP},
    "ShaderNodeRGBCurve": {"curve": CURVES},
    "ShaderNodeVectorCurve": {"curve": {**CURVES, "min": -1.0}},
    "ShaderNodeFloatCurve": {"curve": {**CURVES, "tables": CURVES["tables"][:1]}},
}

# Sockets that may be absent from a document.
OPTIONAL = {
    "BsdfPrincipled": (
        "Normal",
        "Coat Weight",
        "Coat Roughness",
        "Specular IOR Level",
        "Subsurface Weight",
        "Transmission Weight",
        "Sheen Weight",
    ),
    "BsdfDiffuse": ("Roughness", "Normal"),
    "BsdfAnisotropic": ("Anisotropy", "Normal"),
    "BsdfMetallic": ("Anisotropy", "Normal"),
    "BsdfTransparent": ("Color",),
    "Math": ("Value_001", "Value_002"),
    "VectorMath": ("Vector_001", "Vector_002", "Scale"),
    "Mapping": ("Location",),
    "VectorRotate": ("Center", "Axis", "Angle", "Rotation"),
    "TexNoise": ("Vector", "W", "Offset", "Gain"),
    "TexWhiteNoise": ("Vector", "W"),
    "TexVoronoi": ("Vector", "W", "Detail", "Roughness", "Lacunarity", "Smoothness", "Exponent", "Randomness"),
    "TexGabor": ("Vector", "Orientation 2D", "Orientation 3D"),
    **dict.fromkeys(("TexGradient", "TexChecker", "TexBrick", "TexMagic", "TexWave"), ("Vector",)),
    **dict.fromkeys(("TexImage", "TexEnvironment"), ("Vector",)),
    "AmbientOcclusion": ("Distance", "Normal"),
    "Bevel": ("Radius", "Normal"),
    "Wireframe": ("Size",),
    "Fresnel": ("Normal",),
    "LayerWeight": ("Normal",),
    "Bump": ("Filter Width", "Height", "Normal"),
    "Displacement": ("Normal",),
}
OPTIONAL = {"ShaderNode" + name: sockets for name, sockets in OPTIONAL.items()}

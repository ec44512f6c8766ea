"""Builds the HLSL that Unreal would make from the Custom expressions of a double's material, and runs it on the device.

Widths and order of the arguments come from the graph and the expression's inputs, not from the translator's result.
"""

import numpy as np
from PIL import Image

import device
from double.editor import CompileError
from double.libraries import width_of
from surroundings import PLAIN, TRANSFORMS, vector

HEAD = """typedef float MaterialFloat;
typedef float2 MaterialFloat2;
typedef float3 MaterialFloat3;
typedef float4 MaterialFloat4;
struct FMaterialPixelParameters { float4 SvPosition; float4 VertexColor; float3 WorldNormal; };
"""
RESULT = "ue_result"


def kind_of(expression):
    return type(expression).__name__.removeprefix("MaterialExpression")


def _word(width):
    return "" if width == 1 else str(width)


def wires(custom):
    """(input name, source, output index) of each input of a Custom expression. All inputs must be wired."""
    for pin, name in enumerate(custom.inputs()):
        if pin not in custom._wires:
            raise CompileError(f"Custom material {custom.description} missing input {pin + 1} ({name})")
    return [(name, *custom._wires[pin]) for pin, name in enumerate(custom.inputs())]


def outputs(custom):
    """Name -> width of the return value and of the inout arguments."""
    (_, returned), *further = custom.outputs()
    return {RESULT: returned, **dict(further)}


def function(custom, name="CustomExpression0"):
    arguments = ["FMaterialPixelParameters Parameters"]
    for argument, source, index in wires(custom):
        width = width_of(source, index)
        if width == "object":
            arguments.append(f"Texture2D {argument}, SamplerState {argument}Sampler")
        else:
            arguments.append(f"MaterialFloat{_word(width)} {argument}")
    (_, returned), *further = custom.outputs()
    arguments += [f"inout MaterialFloat{_word(width)} {output}" for output, width in further]
    code = custom.code if "return" in custom.code else f"return {custom.code};"
    return f"MaterialFloat{_word(returned)} {name}({', '.join(arguments)})\n{{\n{code}\n}}\n"


def call(custom):
    arguments = ["ue_parameters"]
    for name, source, index in wires(custom):
        arguments += [name, "qh_sampler"] if width_of(source, index) == "object" else [name]
    arguments += list(outputs(custom))[1:]
    return (
        "  FMaterialPixelParameters ue_parameters = (FMaterialPixelParameters)0;\n"
        f"  {RESULT} = CustomExpression0({', '.join(arguments)});"
    )


class Run:
    """Evaluates a material's expressions in given surroundings."""

    def __init__(self, around, overrides=None):
        self.around, self.overrides = around, overrides or {}
        self._known = {}

    def value(self, expression, index):
        if expression not in self._known:
            self._known[expression] = self._outputs(expression)
        return self._known[expression][index]

    def wired(self, expression, pin):
        return self.value(*expression._wires[pin])

    def _outputs(self, e):
        kind = kind_of(e)
        if kind in PLAIN:
            return PLAIN[kind](self.around, e)
        if kind in TRANSFORMS:
            return TRANSFORMS[kind](self.around, e, self.wired(e, 0))
        return getattr(self, f"_{kind}")(e)

    def _Constant3Vector(self, e):
        return [vector(e.constant)]

    def _ScalarParameter(self, e):
        return [np.array([[self.overrides.get(e.parameter_name, e.default_value)]])]

    def _VectorParameter(self, e):
        color = self.overrides.get(e.parameter_name, e.default_value)
        rgba = np.array([[color.r, color.g, color.b, color.a]])
        return [rgba[:, :3], *(rgba[:, k : k + 1] for k in range(4)), rgba]

    def _AppendVector(self, e):
        return [np.concatenate([self.wired(e, 0), self.wired(e, 1)], axis=1)]

    def _DDX(self, e):
        return [self._difference(e, (1, 0))]

    def _DDY(self, e):
        return [self._difference(e, (0, 1))]

    def _difference(self, e, step):
        here = self.wired(e, 0)
        if self.around.raytraced:
            return 0 * here
        return Run(self.around.beside(step)).wired(e, 0) - here

    def _RayTracingQualitySwitch(self, e):
        return [self.wired(e, 1 if self.around.raytraced else 0)]

    def _TextureObjectParameter(self, e):
        return [texels(self.overrides.get(e.parameter_name, e.texture), e.sampler_type.name)]

    def _MakeMaterialAttributes(self, e):
        return [{pin: self.wired(e, k) for k, pin in enumerate(e.inputs()) if k in e._wires}]

    def _Custom(self, e):
        values, textures = {}, {}
        for name, source, index in wires(e):
            width, found = width_of(source, index), self.value(source, index)
            if width == "object":
                textures[name] = found
            else:
                assert found.shape[1] == width, f"{source.get_name()} gives {found.shape[1]} numbers, not {width}"
                values[name] = _argument(found)
        found = device.evaluate(call(e), values, outputs(e), textures, HEAD + function(e))
        return [v[:, None] if v.ndim == 1 else v for v in found.values()]


def _argument(found):
    """Converts values to the device's form: a tuple if they are the same at all points."""
    found = np.float32(found)
    if len(found) == 1:
        return tuple(found[0].tolist())
    return found[:, 0] if found.shape[1] == 1 else found


def texels(texture, sampler):
    """The values that the shader reads from a texture asset. They depend on its import settings."""
    if sampler != ("SAMPLERTYPE_COLOR" if texture.srgb else "SAMPLERTYPE_LINEAR_COLOR"):
        raise CompileError(f"Sampler type is {sampler}, the texture is {'' if texture.srgb else 'not '}sRGB")
    if texture.virtual_texture_streaming:
        raise CompileError("a virtual texture is no Texture2D")
    found = np.asarray(Image.open(texture._file).convert("RGBA")).astype(np.float32) / 255
    kind = texture.compression_settings.name
    if kind == "TC_NORMALMAP":
        found = found * (1, 1, 0, 0) + (0, 0, 0, 1)
    if kind == "TC_GRAYSCALE":
        found = found[..., :1] * (1, 1, 1, 0) + (0, 0, 0, 1)
    if texture.srgb:
        low = found[..., :3] <= 0.04045
        found[..., :3] = np.where(low, found[..., :3] / 12.92, ((found[..., :3] + 0.055) / 1.055) ** 2.4)
    return np.float32(found)


def attributes(editor, path, around, overrides=None):
    """Attribute of the material -> the values of its graph at the points."""
    _, root = editor.material(path)
    return Run(around, overrides).value(*root)


def compiled(editor, path):
    """Compiles every Custom expression of a material in both language versions, with warnings as errors."""
    import cost

    count = 0
    for expression in editor.material(path)[0]:
        if kind_of(expression) == "Custom":
            widths = {name: width_of(s, i) for name, s, i in wires(expression)}
            textures = [name for name, width in widths.items() if width == "object"]
            inputs = {name: f"float{_word(w)}" for name, w in widths.items() if w != "object"}
            made = {name: f"float{_word(width)}" for name, width in outputs(expression).items()}
            cost.compile_both(cost.shader(call(expression), inputs, made, textures, HEAD + function(expression)))
            count += 1
    return count

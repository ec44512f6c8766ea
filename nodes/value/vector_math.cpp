// The Vector Math node: one row of HLSL per operation.
#include "core/gen/gen.h"

namespace quillgen {

namespace {

// `s` is the scalar operand. Some identifiers differ from those of Math, as they do in Blender.
const TemplateTable VMATH = {
    "abcs",
    {
        {"ADD", "a + b"},
        {"SUBTRACT", "a - b"},
        {"MULTIPLY", "a * b"},
        {"DIVIDE", "L.safe_divide3(a, b)", {"safe_divide3"_w}},
        {"CROSS_PRODUCT", "cross(a, b)"},
        {"PROJECT", "L.project3(a, b)", {"project3"_w}},
        {"REFLECT", "L.reflect3(a, L.safe_normalize(b))", {"reflect3"_w, "safe_normalize"_w}},
        {"REFRACT", "L.refract3(a, L.safe_normalize(b), s)", {"refract3"_w, "safe_normalize"_w}},
        {"FACEFORWARD", "L.faceforward3(a, b, c)", {"faceforward3"_w}},
        {"MULTIPLY_ADD", "a * b + c"},
        {"DOT_PRODUCT", "dot(a, b)", {}, true},
        {"DISTANCE", "distance(a, b)", {}, true},
        {"LENGTH", "length(a)", {}, true},
        {"SCALE", "a * s"},
        {"NORMALIZE", "L.safe_normalize(a)", {"safe_normalize"_w}},
        {"SNAP", "floor(L.safe_divide3(a, b)) * b", {"safe_divide3"_w}},
        {"ROUND", "floor(a + 0.5)"},
        {"FLOOR", "floor(a)"},
        {"CEIL", "ceil(a)"},
        {"MODULO", "L.safe_fmod3(a, b)", {"safe_fmod3"_w}},
        {"WRAP", "L.wrap3(a, b, c)", {"wrap3"_w}},
        {"FRACTION", "a - floor(a)"},
        {"ABSOLUTE", "abs(a)"},
        {"POWER", "L.safe_pow3(a, b)", {"safe_pow3"_w}},
        {"SIGN", "L.compatible_sign3(a)", {"compatible_sign3"_w}},
        {"MINIMUM", "min(a, b)"},
        {"MAXIMUM", "max(a, b)"},
        {"SINE", "sin(a)"},
        {"COSINE", "cos(a)"},
        {"TANGENT", "tan(a)"},
    }};

constexpr Text kZero3 = "float3(0.0, 0.0, 0.0)";

// All four operands are declared, whichever of them the operation uses. The output that the operation does not compute
// is bound too, so that a link from it reads zero.
void _vmath(Gen& g, Node& n) {
    const Value operation = n.props().get("operation"_w);
    const Text a = g.var("float3", g.inp(n, "Vector"_w, VECTOR));
    const Text b = g.var("float3", g.inp(n, "Vector_001"_w, VECTOR, kZero3));
    const Text c = g.var("float3", g.inp(n, "Vector_002"_w, VECTOR, kZero3));
    const Text s = g.var("float", g.inp(n, "Scale"_w, VALUE, "1.0"));
    const Template* const row = g.find_template(VMATH, operation, "ADD");
    const Text e = row != nullptr ? g.fill_template(*row, {a, b, c, s}) : kZero3;
    if (row != nullptr && row->row->is_scalar) {
        g.set(n, "Value"_w, VALUE, e);
        g.bind(n, "Vector"_w, VECTOR, kZero3);
    } else {
        g.set(n, "Vector"_w, VECTOR, e);
        g.bind(n, "Value"_w, VALUE, "0.0");
    }
}

const node nodes[] = {
    {{"ShaderNodeVectorMath"}, _vmath},
};

}  // namespace

}  // namespace quillgen

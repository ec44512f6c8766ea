// The Vector Math node: one row of HLSL per operation.
#include "core/gen/gen.h"
#include "nodes/register.h"

namespace quillgen {

namespace {

// `s` is the scalar operand. The words differ from those of Math here and there, as Blender's do.
const TemplateRow VMATH[] = {
    {"ADD", "a + b"},
    {"SUBTRACT", "a - b"},
    {"MULTIPLY", "a * b"},
    {"DIVIDE", "L.safe_divide3(a, b)", {"safe_divide3"}},
    {"CROSS_PRODUCT", "cross(a, b)"},
    {"PROJECT", "L.project3(a, b)", {"project3"}},
    {"REFLECT", "L.reflect3(a, L.safe_normalize(b))", {"reflect3", "safe_normalize"}},
    {"REFRACT", "L.refract3(a, L.safe_normalize(b), s)", {"refract3", "safe_normalize"}},
    {"FACEFORWARD", "L.faceforward3(a, b, c)", {"faceforward3"}},
    {"MULTIPLY_ADD", "a * b + c"},
    {"DOT_PRODUCT", "dot(a, b)", {}, true},
    {"DISTANCE", "distance(a, b)", {}, true},
    {"LENGTH", "length(a)", {}, true},
    {"SCALE", "a * s"},
    {"NORMALIZE", "L.safe_normalize(a)", {"safe_normalize"}},
    {"SNAP", "floor(L.safe_divide3(a, b)) * b", {"safe_divide3"}},
    {"ROUND", "floor(a + 0.5)"},
    {"FLOOR", "floor(a)"},
    {"CEIL", "ceil(a)"},
    {"MODULO", "L.safe_fmod3(a, b)", {"safe_fmod3"}},
    {"WRAP", "L.wrap3(a, b, c)", {"wrap3"}},
    {"FRACTION", "a - floor(a)"},
    {"ABSOLUTE", "abs(a)"},
    {"POWER", "L.safe_pow3(a, b)", {"safe_pow3"}},
    {"SIGN", "L.compatible_sign3(a)", {"compatible_sign3"}},
    {"MINIMUM", "min(a, b)"},
    {"MAXIMUM", "max(a, b)"},
    {"SINE", "sin(a)"},
    {"COSINE", "cos(a)"},
    {"TANGENT", "tan(a)"},
};

constexpr Text kZero3 = "float3(0.0, 0.0, 0.0)";

// All four operands are declared, whichever of them the operation names. The output that the operation
// does not compute is bound too, so that a link from it reads a neutral constant.
void _vmath(Gen& g, const Node& n) {
    const Value operation = n.props().get("operation");
    const Text a = g.var("float3", g.inp(n, "Vector", VECTOR));
    const Text b = g.var("float3", g.inp(n, "Vector_001", VECTOR, kZero3));
    const Text c = g.var("float3", g.inp(n, "Vector_002", VECTOR, kZero3));
    const Text s = g.var("float", g.inp(n, "Scale", VALUE, "1.0"));
    const TemplateTable::Row* row = g.row("VMATH", operation, "ADD");
    const Text e = row != nullptr ? g.fill_row(*row, {a, b, c, s}) : kZero3;
    if (row != nullptr && row->is_scalar) {
        g.set(n, "Value", VALUE, e);
        g.bind(n, "Vector", VECTOR, kZero3);
    } else {
        g.set(n, "Vector", VECTOR, e);
        g.bind(n, "Value", VALUE, "0.0");
    }
}

}  // namespace

void register_vector_math(Registry& registry) {
    registry.table("VMATH", "abcs", VMATH);
    registry.node({"ShaderNodeVectorMath"}, _vmath);
}

}  // namespace quillgen

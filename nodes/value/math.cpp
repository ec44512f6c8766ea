// The scalar Math node: one row of HLSL per operation.
#include "core/gen/gen.h"

namespace quillgen {

namespace {

const TemplateTable MATH = {"abc",
                            {
                                {"ADD", "a + b"},
                                {"SUBTRACT", "a - b"},
                                {"MULTIPLY", "a * b"},
                                {"DIVIDE", "L.safe_divide(a, b)", {"safe_divide"_w}},
                                {"POWER", "L.safe_powf(a, b)", {"safe_powf"_w}},
                                {"LOGARITHM", "L.safe_logf(a, b)", {"safe_logf"_w}},
                                {"SQRT", "L.safe_sqrtf(a)", {"safe_sqrtf"_w}},
                                {"INVERSE_SQRT", "L.inversesqrtf(a)", {"inversesqrtf"_w}},
                                {"ABSOLUTE", "abs(a)"},
                                {"RADIANS", "a * (3.14159265358979323846 / 180.0)"},
                                {"DEGREES", "a * (180.0 / 3.14159265358979323846)"},
                                {"MINIMUM", "min(a, b)"},
                                {"MAXIMUM", "max(a, b)"},
                                {"LESS_THAN", "((a < b) ? 1.0 : 0.0)"},
                                {"GREATER_THAN", "((a > b) ? 1.0 : 0.0)"},
                                {"ROUND", "floor(a + 0.5)"},
                                {"FLOOR", "floor(a)"},
                                {"CEIL", "ceil(a)"},
                                {"FRACT", "(a - floor(a))"},
                                {"MODULO", "L.safe_modulo(a, b)", {"safe_modulo"_w}},
                                {"FLOORED_MODULO", "L.safe_floored_modulo(a, b)", {"safe_floored_modulo"_w}},
                                {"TRUNC", "((a >= 0.0) ? floor(a) : ceil(a))"},
                                {"SNAP", "(floor(L.safe_divide(a, b)) * b)", {"safe_divide"_w}},
                                {"WRAP", "L.wrapf(a, b, c)", {"wrapf"_w}},
                                {"PINGPONG", "L.pingpongf(a, b)", {"pingpongf"_w}},
                                {"SINE", "sin(a)"},
                                {"COSINE", "cos(a)"},
                                {"TANGENT", "tan(a)"},
                                {"SINH", "sinh(a)"},
                                {"COSH", "cosh(a)"},
                                {"TANH", "tanh(a)"},
                                {"ARCSINE", "asin(clamp(a, -1.0, 1.0))"},
                                {"ARCCOSINE", "acos(clamp(a, -1.0, 1.0))"},
                                {"ARCTANGENT", "atan(a)"},
                                {"ARCTAN2", "L.compatible_atan2(a, b)", {"compatible_atan2"_w}},
                                {"SIGN", "L.compatible_signf(a)", {"compatible_signf"_w}},
                                {"EXPONENT", "exp(a)"},
                                {"COMPARE", "(((a == b) || (abs(a - b) <= max(c, 1.192092896e-07))) ? 1.0 : 0.0)"},
                                {"MULTIPLY_ADD", "(a * b + c)"},
                                {"SMOOTH_MIN", "L.smoothminf(a, b, c)", {"smoothminf"_w}},
                                {"SMOOTH_MAX", "(-L.smoothminf(-a, -b, c))", {"smoothminf"_w}},
                            }};

// All three operands are declared, whichever of them the operation uses.
void _math(Gen& g, Node& n) {
    const Value p = n.props();
    const Value operation = p.get("operation"_w);
    const Text a = g.var("float", g.inp(n, "Value"_w, VALUE));
    const Text b = g.var("float", g.inp(n, "Value_001"_w, VALUE, "0.0"));
    const Text c = g.var("float", g.inp(n, "Value_002"_w, VALUE, "0.0"));
    const Template* const row = g.find_template(MATH, operation, "ADD");
    const Text e = row != nullptr ? g.fill_template(*row, {a, b, c}) : "0.0";
    g.set(n, "Value"_w, VALUE, p.get("use_clamp"_w).truthy() ? g.text("saturate($0)", e) : e);
}

const node nodes[] = {
    {{"ShaderNodeMath"}, _math},
};

}  // namespace

}  // namespace quillgen

// Geometry signals: what each word declares and reads. Unreal's left-handed centimetres become
// Blender's right-handed metres here: y is negated, lengths are multiplied by 0.01.
#include "core/gen/gen.h"

namespace quillgen {

namespace {

struct TableSignal {
    Text input;
    Word kind;
    Text expr;
};

// By Signal::Kind, from P to vsize.
constexpr TableSignal kTable[] = {
    {"wpos", "world_position", "(float3(wpos.x, -wpos.y, wpos.z) * 0.01)"},
    {"wpcr", "world_position_cr", "(float3(wpcr.x, -wpcr.y, wpcr.z) * 0.01)"},
    {"lpos", "local_position", "(float3(lpos.x, -lpos.y, lpos.z) * 0.01)"},
    {"cnorm", "cycles_normal", "normalize(float3(cnorm.x, -cnorm.y, cnorm.z))"},
    {"vnorm", "vertex_normal", "float3(vnorm.x, -vnorm.y, vnorm.z)"},
    {"camvec", "camera_vector", "normalize(float3(camvec.x, -camvec.y, camvec.z))"},
    {"opos", "object_origin", "(float3(opos.x, -opos.y, opos.z) * 0.01)"},
    {"vcol", "vertex_color", "vcol"},
    {"tsign", "two_sided_sign", "tsign"},
    {"ttan", "tangent_world", "float3(ttan.x, -ttan.y, ttan.z)"},
    {"tbit", "bitangent_world", "float3(tbit.x, -tbit.y, tbit.z)"},
    {"cpos", "camera_position", "(float3(cpos.x, -cpos.y, cpos.z) * 0.01)"},
    {"pdepth", "pixel_depth", "(pdepth * 0.01)"},
    {"thfov", "tan_half_fov", "thfov"},
    {"vsz", "view_size", "vsz"},
};
static_assert(std::size(kTable) == Signal::vsize + 1);

struct AxisSignal {
    Text input;
    Word kind;
    Word axis;
    Text expr;
};

// By Signal::Kind, from vx to oz. The whole of the object's y axis is negated, on top of the flip of
// each vector's y component.
constexpr AxisSignal kAxes[] = {
    {"vaxx", "view_axis", "x", "float3(vaxx.x, -vaxx.y, vaxx.z)"},
    {"vaxy", "view_axis", "y", "float3(vaxy.x, -vaxy.y, vaxy.z)"},
    {"vaxz", "view_axis", "z", "float3(vaxz.x, -vaxz.y, vaxz.z)"},
    {"oax", "object_axis", "x", "(float3(oax.x, -oax.y, oax.z))"},
    {"oay", "object_axis", "y", "(-float3(oay.x, -oay.y, oay.z))"},
    {"oaz", "object_axis", "z", "(float3(oaz.x, -oaz.y, oaz.z))"},
};
static_assert(std::size(kAxes) == Signal::oz - Signal::vx + 1);

}  // namespace

void Gen::declare_input(Text name, Word kind) { inputs.put({.name = &input_name(name), .kind = kind}); }

Text Gen::uv_signal(int index) {
    const Text uv = text("uv$0"_fmt, index);
    inputs.put({.name = &input_name(uv), .kind = "texcoord", .index = index});
    if (uv_bias.truthy()) {
        const Text bx = _f(uv_bias.at(Py_ssize_t{0}));
        const Text by = _f(uv_bias.at(Py_ssize_t{1}));
        return text("float3($0.x + $1, 1.0 - $0.y + $2, 0.0)"_fmt, uv, bx, by);
    }
    return text("float3($0.x, 1.0 - $0.y, 0.0)"_fmt, uv);
}

Text Gen::axis_signal(Signal what) {
    const AxisSignal& axis = kAxes[what.kind() - Signal::vx];
    inputs.put({.name = &input_name(axis.input), .kind = axis.kind, .axis = axis.axis});
    return axis.expr;
}

// The normal, tangent or bitangent of the vertex in object space. All three inputs are declared,
// whichever is wanted.
Text Gen::frame_vector(Signal what) {
    use({"rot_to_obj", "safe_normalize"});
    const Text normal = geo("Nv");
    const Text tangent = geo("T_ue");
    const Text bitangent = text("-($0)"_fmt, geo("B_ue"));
    const Text source = what == Signal("Nl") ? normal : what == Signal("Tl") ? tangent : bitangent;
    const Text ox = geo("ox");
    const Text oy = geo("oy");
    const Text oz = geo("oz");
    const Text v = text("L.rot_to_obj($0, $1, $2, $3)"_fmt, source, ox, oy, oz);
    return what == Signal("Nl") ? text("L.safe_normalize($0)"_fmt, v) : v;
}

// The signal at the shaded point. Signals that are made of others read those through `geo`, so that
// they move with them.
Text Gen::_geo(Signal what) {
    switch (what.kind()) {
    case Signal::uv:
        return uv_signal(what.index());
    case Signal::Nf: {
        if (!n_override.empty()) {
            return n_override;
        }
        const Text n = geo("N");
        return text("($0 * (($1 < 0.0) ? -1.0 : 1.0))"_fmt, n, geo("twosided"));
    }
    case Signal::N: {
        // With an override, Nf is the override itself and N the one with the sign of the side: the
        // reverse of the plain case.
        if (!n_override.empty()) {
            return text("($0 * (($1 < 0.0) ? -1.0 : 1.0))"_fmt, n_override, geo("twosided"));
        }
        if (!disp_stage) {
            break;
        }
        use("n_obj_to_world");
        const Text nl = geo("Nl");
        const Text ox = geo("ox");
        const Text oy = geo("oy");
        return text("L.n_obj_to_world($0, $1, $2, $3)"_fmt, nl, ox, oy, geo("oz"));
    }
    case Signal::Nobj: {
        use("safe_normalize");
        const Text nf = geo("Nf");
        const Text ox = geo("ox");
        const Text oy = geo("oy");
        return text("L.safe_normalize(float3(dot($0, $1), dot($0, $2), dot($0, $3)))"_fmt, nf, ox, oy, geo("oz"));
    }
    case Signal::Nl:
    case Signal::Tl:
    case Signal::Bl:
        return frame_vector(what);
    case Signal::Ng: {
        use("facing_normal");
        const Text dx = deriv("Pcr", 'x');
        const Text dy = deriv("Pcr", 'y');
        return text("L.facing_normal(normalize(cross($0, $1)), $2)"_fmt, dx, dy, geo("I"));
    }
    case Signal::vx:
    case Signal::vy:
    case Signal::vz:
    case Signal::ox:
    case Signal::oy:
    case Signal::oz:
        return axis_signal(what);
    case Signal::bmin:
    case Signal::bmax:
        declare_input("bmin", "local_bounds_min");
        declare_input("bmax", "local_bounds_max");
        // The y bounds cross over: negation reverses their order.
        return what == Signal("bmin") ? "(float3(bmin.x, -bmax.y, bmin.z) * 0.01)"
                                      : "(float3(bmax.x, -bmin.y, bmax.z) * 0.01)";
    case Signal::generated: {
        const Text lo = geo("bmin");
        const Text hi = geo("bmax");
        return text("(($0 - $1) / max($2 - $1, float3(1e-8, 1e-8, 1e-8)))"_fmt, geo("Pobj"), lo, hi);
    }
    case Signal::view:
        axis_signal("vx");
        axis_signal("vy");
        axis_signal("vz");
        declare_input("wpos", "world_position");
        declare_input("cpos", "camera_position");
        return "(float3(dot(wpos - cpos, vaxx), dot(wpos - cpos, vaxy), dot(wpos - cpos, vaxz)) * 0.01)";
    default:
        break;
    }
    const TableSignal& signal = kTable[what.kind()];
    declare_input(signal.input, signal.kind);
    return signal.expr;
}

Text Gen::deriv(Signal what, char axis) {
    const Word kind = axis == 'x' ? Word("ddx") : Word("ddy");
    const Text letter = axis == 'x' ? "x" : "y";
    if (what.kind() == Signal::uv) {
        const Text name = text("uv$0_d$1"_fmt, what.index(), letter);
        inputs.put({.name = &input_name(name), .kind = kind, .index = what.index(), .of = "texcoord"});
        return text("float3($0.x, -$0.y, 0.0)"_fmt, name);
    }
    if (what == Signal("vcol")) {
        const Text name = text("vcol_d$0"_fmt, letter);
        inputs.put({.name = &input_name(name), .kind = kind, .of = "vertex_color"});
        return name;
    }
    if (what == Signal("Pcr")) {
        const Text name = text("wpcr_d$0"_fmt, letter);
        inputs.put({.name = &input_name(name), .kind = kind, .of = "world_position_cr"});
        return text("(float3($0.x, -$0.y, $0.z) * 0.01)"_fmt, name);
    }
    unsupported(text("no derivative for $0"_fmt, Signal::kNames[what.kind()]));
}

}  // namespace quillgen

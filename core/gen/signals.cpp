// Geometry signals: the inputs that each signal declares, and its expression. This is where Unreal's left-handed
// centimetres become Blender's right-handed metres: y is negated, lengths are multiplied by 0.01.
#include "core/gen/gen.h"

namespace quillgen {

namespace {

struct TableSignal {
    Word input;
    Word kind;
    Text expr;
};

// By Signal::Kind, from P to vsize.
constexpr TableSignal kTable[] = {
    {"wpos"_w, "world_position"_w, "(float3(wpos.x, -wpos.y, wpos.z) * 0.01)"},
    {"wpcr"_w, "world_position_cr"_w, "(float3(wpcr.x, -wpcr.y, wpcr.z) * 0.01)"},
    {"lpos"_w, "local_position"_w, "(float3(lpos.x, -lpos.y, lpos.z) * 0.01)"},
    {"cnorm"_w, "cycles_normal"_w, "normalize(float3(cnorm.x, -cnorm.y, cnorm.z))"},
    {"vnorm"_w, "vertex_normal"_w, "float3(vnorm.x, -vnorm.y, vnorm.z)"},
    {"camvec"_w, "camera_vector"_w, "normalize(float3(camvec.x, -camvec.y, camvec.z))"},
    {"opos"_w, "object_origin"_w, "(float3(opos.x, -opos.y, opos.z) * 0.01)"},
    {"vcol"_w, "vertex_color"_w, "vcol"},
    {"tsign"_w, "two_sided_sign"_w, "tsign"},
    {"ttan"_w, "tangent_world"_w, "float3(ttan.x, -ttan.y, ttan.z)"},
    {"tbit"_w, "bitangent_world"_w, "float3(tbit.x, -tbit.y, tbit.z)"},
    {"cpos"_w, "camera_position"_w, "(float3(cpos.x, -cpos.y, cpos.z) * 0.01)"},
    {"pdepth"_w, "pixel_depth"_w, "(pdepth * 0.01)"},
    {"thfov"_w, "tan_half_fov"_w, "thfov"},
    {"vsz"_w, "view_size"_w, "vsz"},
};
static_assert(std::size(kTable) == Signal::vsize + 1);

struct AxisSignal {
    Word input;
    Word kind;
    Word axis;
    Text expr;
};

// By Signal::Kind, from vx to oz. The object's y axis is also negated as a whole, in addition to the y component of
// each vector.
constexpr AxisSignal kAxes[] = {
    {"vaxx"_w, "view_axis"_w, "x"_w, "float3(vaxx.x, -vaxx.y, vaxx.z)"},
    {"vaxy"_w, "view_axis"_w, "y"_w, "float3(vaxy.x, -vaxy.y, vaxy.z)"},
    {"vaxz"_w, "view_axis"_w, "z"_w, "float3(vaxz.x, -vaxz.y, vaxz.z)"},
    {"oax"_w, "object_axis"_w, "x"_w, "(float3(oax.x, -oax.y, oax.z))"},
    {"oay"_w, "object_axis"_w, "y"_w, "(-float3(oay.x, -oay.y, oay.z))"},
    {"oaz"_w, "object_axis"_w, "z"_w, "(float3(oaz.x, -oaz.y, oaz.z))"},
};
static_assert(std::size(kAxes) == Signal::oz - Signal::vx + 1);

}  // namespace

void Gen::declare_input(Word name, Word kind) {
    if (inputs.find(name.text()) == nullptr) {
        inputs.declare({.name = name.text(), .key = Value::word(runtime(), name), .kind = kind});
    }
}

void Gen::declare_input(Text name, Word kind, const Value& rest) {
    inputs.declare({.name = name, .key = Value::text(runtime(), name), .kind = kind, .rest = rest});
}

Text Gen::uv_signal(int index) {
    const Text uv = text("uv$0", index);
    declare_input(uv, "texcoord"_w, Value::map(runtime(), {{"index"_w, Value::integer(runtime(), index)}}));
    if (uv_bias.truthy()) {
        const Text bx = _f(uv_bias.item(0));
        const Text by = _f(uv_bias.item(1));
        return text("float3($0.x + $1, 1.0 - $0.y + $2, 0.0)", uv, bx, by);
    }
    return text("float3($0.x, 1.0 - $0.y, 0.0)", uv);
}

Text Gen::axis_signal(Signal what) {
    const AxisSignal& axis = kAxes[what.kind() - Signal::vx];
    if (inputs.find(axis.input.text()) == nullptr) {
        const Value letter = Value::map(runtime(), {{"axis"_w, Value::word(runtime(), axis.axis)}});
        declare_input(axis.input.text(), axis.kind, letter);
    }
    return axis.expr;
}

// The normal, tangent or bitangent of the vertex in object space. All three inputs are declared in each case.
Text Gen::frame_vector(Signal what) {
    use("rot_to_obj"_w, "safe_normalize"_w);
    const Text normal = geo("Nv");
    const Text tangent = geo("T_ue");
    const Text bitangent = text("-($0)", geo("B_ue"));
    const Text source = what == Signal("Nl") ? normal : what == Signal("Tl") ? tangent : bitangent;
    const Text ox = geo("ox");
    const Text oy = geo("oy");
    const Text oz = geo("oz");
    const Text v = text("L.rot_to_obj($0, $1, $2, $3)", source, ox, oy, oz);
    return what == Signal("Nl") ? text("L.safe_normalize($0)", v) : v;
}

// The signal at the shaded point. Composed signals read their parts through `geo`, so an offset moves them too.
Text Gen::_geo(Signal what) {
    switch (what.kind()) {
    case Signal::uv:
        return uv_signal(what.index());
    case Signal::Nf: {
        if (!n_override.empty()) {
            return n_override;
        }
        const Text n = geo("N");
        return text("($0 * (($1 < 0.0) ? -1.0 : 1.0))", n, geo("twosided"));
    }
    case Signal::N: {
        // With an override, Nf is the override itself, and N has the sign of the side applied. Without an override it
        // is the other way round.
        if (!n_override.empty()) {
            return text("($0 * (($1 < 0.0) ? -1.0 : 1.0))", n_override, geo("twosided"));
        }
        if (!disp_stage) {
            break;
        }
        use("n_obj_to_world"_w);
        const Text nl = geo("Nl");
        const Text ox = geo("ox");
        const Text oy = geo("oy");
        return text("L.n_obj_to_world($0, $1, $2, $3)", nl, ox, oy, geo("oz"));
    }
    case Signal::Nobj: {
        use("safe_normalize"_w);
        const Text nf = geo("Nf");
        const Text ox = geo("ox");
        const Text oy = geo("oy");
        return text("L.safe_normalize(float3(dot($0, $1), dot($0, $2), dot($0, $3)))", nf, ox, oy, geo("oz"));
    }
    case Signal::Nl:
    case Signal::Tl:
    case Signal::Bl:
        return frame_vector(what);
    case Signal::Ng: {
        use("facing_normal"_w);
        const Text dx = deriv("Pcr", 'x');
        const Text dy = deriv("Pcr", 'y');
        return text("L.facing_normal(normalize(cross($0, $1)), $2)", dx, dy, geo("I"));
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
        declare_input("bmin"_w, "local_bounds_min"_w);
        declare_input("bmax"_w, "local_bounds_max"_w);
        // The negation of y swaps its two bounds.
        return what == Signal("bmin") ? "(float3(bmin.x, -bmax.y, bmin.z) * 0.01)"
                                      : "(float3(bmax.x, -bmin.y, bmax.z) * 0.01)";
    case Signal::generated: {
        const Text lo = geo("bmin");
        const Text hi = geo("bmax");
        return text("(($0 - $1) / max($2 - $1, float3(1e-8, 1e-8, 1e-8)))", geo("Pobj"), lo, hi);
    }
    case Signal::view:
        axis_signal("vx");
        axis_signal("vy");
        axis_signal("vz");
        declare_input("wpos"_w, "world_position"_w);
        declare_input("cpos"_w, "camera_position"_w);
        return "(float3(dot(wpos - cpos, vaxx), dot(wpos - cpos, vaxy), dot(wpos - cpos, vaxz)) * 0.01)";
    default:
        break;
    }
    const TableSignal& signal = kTable[what.kind()];
    declare_input(signal.input, signal.kind);
    return signal.expr;
}

Text Gen::deriv(Signal what, char axis) {
    const Word kind = axis == 'x' ? "ddx"_w : "ddy"_w;
    const Text letter = axis == 'x' ? "x" : "y";
    const auto declare = [&](Text name, std::initializer_list<Value::Item> of) {
        declare_input(name, kind, Value::map(runtime(), {{"of"_w, Value::map(runtime(), of)}}));
        return name;
    };
    if (what.kind() == Signal::uv) {
        const Text name = declare(
            text("uv$0_d$1", what.index(), letter),
            {{"kind"_w, Value::word(runtime(), "texcoord"_w)}, {"index"_w, Value::integer(runtime(), what.index())}});
        return text("float3($0.x, -$0.y, 0.0)", name);
    }
    if (what == Signal("vcol")) {
        return declare(text("vcol_d$0", letter), {{"kind"_w, Value::word(runtime(), "vertex_color"_w)}});
    }
    if (what == Signal("Pcr")) {
        const Text name =
            declare(text("wpcr_d$0", letter), {{"kind"_w, Value::word(runtime(), "world_position_cr"_w)}});
        return text("(float3($0.x, -$0.y, $0.z) * 0.01)", name);
    }
    unsupported(text("no derivative for $0", Signal::kNames[what.kind()]));
}

}  // namespace quillgen

// The displacement output as a bump of the shading normal, which shows the relief that the mesh, displaced
// or not, is too coarse for.
#include "core/gen/gen.h"
#include "nodes/surface/bump_normal.h"

namespace quillgen {

namespace {

// A record with one socket linked to the displacement output, so that the output is read as any other
// socket. It is no node of the document.
Node displacement_reader(const Runtime& runtime, const Value& src) {
    const Value link = Value::list(runtime);
    link.append(src.at(Py_ssize_t{0}));
    link.append(src.at(Py_ssize_t{1}));
    link.append(Value::none(runtime));  // of whatever type the output is
    const Value entry = Value::map(runtime);
    entry.put("t", Value::word(runtime, "VECTOR"));
    entry.put("link", link);
    Node disp;
    disp.in = Value::map(runtime);
    disp.in.put("D", entry);
    return disp;
}

}  // namespace

// The height is the part of the displacement along the normal.
void Gen::displacement_bump(const Value& src, bool object_space) {
    const Node disp = displacement_reader(runtime(), src);
    Bump bump;
    bump.N = var("float3", geo("Nf"));
    bump.scale = "1.0";
    bump.strength = "1.0";
    bump.fw = "0.1";  // the default of the Bump node
    const BumpOffsets offs = _bump_offsets(*this, bump.fw);
    bump.dpdx = offs.dpdx;
    bump.dpdy = offs.dpdy;
    bump.hx = var("float", "dot($0, $1)"_fmt, inp_offset(disp, "D", VECTOR, offs.dx), bump.N);
    bump.hy = var("float", "dot($0, $1)"_fmt, inp_offset(disp, "D", VECTOR, offs.dy), bump.N);
    bump.hc = var("float", "dot($0, $1)"_fmt, inp(disp, "D", VECTOR), bump.N);
    n_override = _bump_normal(*this, bump, object_space);
}

void Gen::displacement_normal() {
    const Value src = ir.at("out").get("displacement");
    const Value settings = ir.get("settings");
    const Value method = settings.present() ? settings.get("displacement") : Value();
    const bool bump = !method.present() || method.is("BUMP");
    if (src.truthy() && (bump || method.is("BOTH") || method.is("DISPLACEMENT"))) {
        displacement_bump(src, !bump);
    }
}

}  // namespace quillgen

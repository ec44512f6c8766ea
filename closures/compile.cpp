#include "closures/compile.h"

#include "closures/records.h"
#include "closures/text_layout.h"
#include "core/gen/gen.h"

namespace quillgen {

namespace {

// An output of the material besides the base colour.
struct OutputRow {
    Word name;
    Word type;
    Word property;
    Text expr;
};

// The property `key` of the document's settings, absent where either is.
Value setting(const Value& ir, Word key) {
    const Value settings = ir.get("settings");
    return settings.present() ? settings.get(key) : settings;
}

// The opacity output. Masked alpha is a dithered coverage that varies over frames, against a fixed clip value.
OutputRow write_opacity(Gen& g, const Value& material, Text c) {
    const bool blended = setting(g.ir, "blend").is("BLENDED");
    material.put("blend", Value::word(g.runtime(), blended ? Word("translucent") : Word("masked")));
    if (blended) {
        return {"OutOpacity", "float", "opacity", g.text("$0.alpha"_fmt, c)};
    }
    g.declare_input("pixpos", "pixel_position");
    g.declare_input("taaidx", "temporal_index");
    g.use("dither_coverage");
    material.put("clip", Value::number(g.runtime(), 0.5));
    return {"OutOpacity", "float", "opacity", g.text("L.dither_coverage($0.alpha, pixpos, taaidx)"_fmt, c)};
}

// The outputs of a lit material, in the order of their assignments, and what they say of the material.
std::vector<OutputRow> write_outputs(Gen& g, const Value& material, Text c) {
    std::vector<OutputRow> outputs = {
        {"OutMetallic", "float", "metallic", g.text("$0.metallic"_fmt, c)},
        {"OutRoughness", "float", "roughness", g.text("$0.roughness"_fmt, c)},
        {"OutSpecular", "float", "specular", g.text("$0.specular"_fmt, c)},
    };
    if (g.uses.emission) {
        outputs.push_back({"OutEmissive", "float3", "emissive", g.text("$0.emission"_fmt, c)});
    }
    material.put("tangent_space_normal", Value::boolean(g.runtime(), false));
    const Text nf = g.var("float3", g.geo("Nf"));
    // y flips on the way back into Unreal's frame.
    outputs.push_back({"OutNormal", "float3", "normal",
                       g.text("(($0.has_normal > 0.0) ? float3($0.normal.x, -$0.normal.y, $0.normal.z) : "
                              "float3($1.x, -$1.y, $1.z))"_fmt,
                              c, nf)});
    if (g.uses.alpha) {
        outputs.push_back(write_opacity(g, material, c));
    }
    if (g.uses.coat) {
        material.put("shading", Value::word(g.runtime(), "clear_coat"));
        outputs.push_back({"OutCoat", "float", "clear_coat", g.text("$0.coat"_fmt, c)});
        outputs.push_back({"OutCoatRoughness", "float", "clear_coat_roughness", g.text("$0.coat_roughness"_fmt, c)});
    }
    return outputs;
}

Value material_record(const Gen& g, bool emission_mode) {
    Value material = Value::map(g.runtime());
    material.put("shading", Value::word(g.runtime(), emission_mode ? Word("unlit") : Word("default_lit")));
    material.put("blend", Value::word(g.runtime(), "opaque"));
    const bool culled = setting(g.ir, "backface_culling").truthy();
    material.put("two_sided", Value::boolean(g.runtime(), !culled));
    material.put("tangent_space_normal", Value::boolean(g.runtime(), true));
    return material;
}

Value output_record(const Gen& g, const OutputRow& row) {
    Value record = Value::map(g.runtime());
    record.put("name", Value::word(g.runtime(), row.name));
    record.put("type", Value::word(g.runtime(), row.type));
    record.put("property", Value::word(g.runtime(), row.property));
    record.put("expr", Value::text(g.runtime(), row.expr));
    return record;
}

// The displacement's record without its parameters and warnings, which go to the material's.
Value put_displacement(Gen& g, const Value& params, const Value& warnings) {
    const Displacement disp = _displacement(g);
    params.update(disp.params);
    disp.warnings.for_each([&](const Value& warning) { warnings.append(warning); });
    Value record = Value::map(g.runtime());
    record.put("code", disp.code);
    record.put("inputs", disp.inputs);
    record.put("magnitude", Value::number(g.runtime(), disp.magnitude));
    return record;
}

bool wants_displacement(const Gen& g) {
    const Value method = setting(g.ir, "displacement");
    return g.ir.at("out").get("displacement").truthy() && (method.is("DISPLACEMENT") || method.is("BOTH"));
}

}  // namespace

Value compile(const Module& module, const Value& ir, const Value& mode, bool use_params) {
    const bool emission_mode = mode.is("emission");
    Gen g(module, ir, emission_mode, use_params, {});
    const Gen::Run res = g.run();
    const Value material = material_record(g, emission_mode);
    std::vector<OutputRow> outputs;
    Text ret = res.base;
    if (!emission_mode) {
        ret = g.text("$0.base"_fmt, res.closure);
        outputs = write_outputs(g, material, res.closure);
    }
    for (const OutputRow& row : outputs) {
        g.emit("$0 = $1;"_fmt, row.name.text(), row.expr);
    }
    g.emit("return $0;"_fmt, ret);
    const Value code = lay_out(g.module(), "material", g.structs(), g.need(), g.body());
    const InputRecords inputs = input_records(g);
    const Value output_list = Value::list(g.runtime());
    for (const OutputRow& row : outputs) {
        output_list.append(output_record(g, row));
    }
    const Value warnings = warning_list(g);
    Value displacement = Value::none(g.runtime());
    if (!emission_mode && wants_displacement(g)) {
        displacement = put_displacement(g, inputs.params, warnings);
    }
    Value result = Value::map(g.runtime());
    result.put("code", code);
    result.put("inputs", inputs.sorted);
    result.put("outputs", output_list);
    result.put("material", material);
    result.put("warnings", warnings);
    result.put("params", inputs.params);
    result.put("displacement", displacement);
    return result;
}

}  // namespace quillgen

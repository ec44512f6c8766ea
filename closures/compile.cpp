#include "closures/compile.h"

#include "closures/records.h"
#include "closures/text_layout.h"
#include "core/gen/gen.h"
#include "nodes/register.h"

namespace quillgen {

namespace {

// The outputs of a material besides the base colour, and the property of Unreal's that each goes to.
struct OutputRow {
    Word name;
    Word type;
    Word property;
};
constexpr OutputRow OUTPUTS[] = {
    {"OutMetallic", "float", "metallic"}, {"OutRoughness", "float", "roughness"},
    {"OutSpecular", "float", "specular"}, {"OutEmissive", "float3", "emissive"},
    {"OutNormal", "float3", "normal"},    {"OutOpacity", "float", "opacity"},
    {"OutCoat", "float", "clear_coat"},   {"OutCoatRoughness", "float", "clear_coat_roughness"},
};

// An output that a material has.
struct Assignment {
    Word name;
    Text expr;
};

// The property `key` of the document's settings, absent where either is.
Value setting(const Value& ir, Word key) {
    const Value settings = ir.get("settings");
    return settings.present() ? settings.get(key) : settings;
}

// The opacity output. Masked alpha is a dithered coverage that varies over frames, against a fixed clip value.
Assignment write_opacity(Gen& g, const Value& material, Text c) {
    const bool blended = setting(g.ir, "blend").is("BLENDED");
    material.put("blend", Value::word(g.runtime(), blended ? Word("translucent") : Word("masked")));
    if (blended) {
        return {"OutOpacity", g.text("$0.alpha"_fmt, c)};
    }
    g.declare_input("pixpos", "pixel_position");
    g.declare_input("taaidx", "temporal_index");
    g.use("dither_coverage");
    material.put("clip", Value::number(g.runtime(), 0.5));
    return {"OutOpacity", g.text("L.dither_coverage($0.alpha, pixpos, taaidx)"_fmt, c)};
}

// The outputs of a lit material, in the order of their assignments, and what they say of the material.
std::vector<Assignment> write_outputs(Gen& g, const Value& material, Text c) {
    std::vector<Assignment> outputs = {
        {"OutMetallic", g.text("$0.metallic"_fmt, c)},
        {"OutRoughness", g.text("$0.roughness"_fmt, c)},
        {"OutSpecular", g.text("$0.specular"_fmt, c)},
    };
    if (g.uses.emission) {
        outputs.push_back({"OutEmissive", g.text("$0.emission"_fmt, c)});
    }
    material.put("tangent_space_normal", Value::boolean(g.runtime(), false));
    const Text nf = g.var("float3", g.geo("Nf"));
    // y flips on the way back into Unreal's frame.
    outputs.push_back({"OutNormal", g.text("(($0.has_normal > 0.0) ? float3($0.normal.x, -$0.normal.y, $0.normal.z) : "
                                           "float3($1.x, -$1.y, $1.z))"_fmt,
                                           c, nf)});
    if (g.uses.alpha) {
        outputs.push_back(write_opacity(g, material, c));
    }
    if (g.uses.coat) {
        material.put("shading", Value::word(g.runtime(), "clear_coat"));
        outputs.push_back({"OutCoat", g.text("$0.coat"_fmt, c)});
        outputs.push_back({"OutCoatRoughness", g.text("$0.coat_roughness"_fmt, c)});
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

bool wants_displacement(const Gen& g) {
    const Value method = setting(g.ir, "displacement");
    return g.ir.at("out").get("displacement").truthy() && (method.is("DISPLACEMENT") || method.is("BOTH"));
}

Translation translate(Gen& g, bool emission_mode) {
    const Gen::Run res = g.run();
    const Value material = material_record(g, emission_mode);
    std::vector<Assignment> assignments;
    Text ret = res.base;
    if (!emission_mode) {
        ret = g.text("$0.base"_fmt, res.closure);
        assignments = write_outputs(g, material, res.closure);
    }
    std::vector<MaterialOutput> outputs;
    outputs.reserve(assignments.size());
    for (const Assignment& output : assignments) {
        g.emit("$0 = $1;"_fmt, output.name.text(), output.expr);
        outputs.push_back({output.name, Value::text(g.runtime(), output.expr)});
    }
    g.emit("return $0;"_fmt, ret);
    return {.surface = material_draft(g, "material"), .material = material, .outputs = std::move(outputs)};
}

// ---- the result -----------------------------------------------------------------------------

Value output_list(const Module& module, const std::vector<MaterialOutput>& outputs) {
    Value list = Value::list(module.runtime);
    for (const MaterialOutput& output : outputs) {
        Value record = module.registry.constant(output.name.text()).copied_map();
        record.put("expr", output.expr);
        list.append(record);
    }
    return list;
}

// The displacement's record without its parameters and warnings, which go to the material's.
Value put_displacement(const Module& module, const Translation& made, const Value& params, const Value& warnings) {
    const Draft& draft = made.displacement->draft;
    const Value code = finished_text(module, draft);
    const InputRecords inputs = input_records(module.runtime, draft);
    params.update(inputs.params);
    draft.warnings.for_each([&](const Value& warning) { warnings.append(warning); });
    Value record = Value::map(module.runtime);
    record.put("code", code);
    record.put("inputs", inputs.sorted);
    record.put("magnitude", Value::number(module.runtime, made.displacement->magnitude));
    return record;
}

// Each list and map is the result's own.
Value make_result(const Module& module, const Translation& made) {
    const Value code = finished_text(module, made.surface);
    const InputRecords inputs = input_records(module.runtime, made.surface);
    const Value warnings = made.surface.warnings.copied_list();
    Value displacement = Value::none(module.runtime);
    if (made.displacement) {
        displacement = put_displacement(module, made, inputs.params, warnings);
    }
    Value result = module.registry.constant("result").copied_map();
    result.put("code", code);
    result.put("inputs", inputs.sorted);
    result.put("outputs", output_list(module, made.outputs));
    result.put("material", made.material.copied_map());
    result.put("warnings", warnings);
    result.put("params", inputs.params);
    result.put("displacement", displacement);
    return result;
}

}  // namespace

Value compile(const Module& module, Recall& recall, const Value& ir, const Value& mode, bool use_params) {
    const bool emission_mode = mode.is("emission");
    Recall::Visit visit(
        recall, ir,
        {.is_material = true, .emission_mode = emission_mode, .use_params = use_params, .is_biased = false});
    if (const Translation* known = visit.known()) {
        return make_result(module, *known);
    }
    Gen surface(module, ir, emission_mode, use_params, {});
    Translation made = translate(surface, emission_mode);
    std::optional<Gen> displacement;
    if (!emission_mode && wants_displacement(surface)) {
        displacement.emplace(Gen::After{surface});
        made.displacement = _displacement(*displacement);
    }
    Value result = make_result(module, made);
    visit.keep(std::move(made), surface, displacement ? &*displacement : nullptr);
    return result;
}

// Maps with what differs left out: copying them is cheaper than putting in each key.
void register_results(Registry& registry) {
    const Runtime& runtime = registry.runtime();
    for (const OutputRow& row : OUTPUTS) {
        const Value record = Value::map(runtime);
        record.put("name", Value::word(runtime, row.name));
        record.put("type", Value::word(runtime, row.type));
        record.put("property", Value::word(runtime, row.property));
        record.put("expr", Value::none(runtime));
        registry.constant(row.name.text(), record);
    }
    const Value result = Value::map(runtime);
    for (const Word key : {Word("code"), Word("inputs"), Word("outputs"), Word("material"), Word("warnings"),
                           Word("params"), Word("displacement")}) {
        result.put(key, Value::none(runtime));
    }
    registry.constant("result", result);
}

}  // namespace quillgen

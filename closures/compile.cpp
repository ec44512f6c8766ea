#include "closures/compile.h"

#include "closures/layout.h"
#include "closures/run.h"

namespace quillgen {

namespace {

// An output of a material besides the base colour.
struct MaterialOutput {
    Word name;
    Word type;
    Word property;  // of Unreal's material
    Text expr;
};

// The property `key` of the document's settings; absent if the key or the settings are.
Value setting(const Value& ir, Word key) {
    const Value settings = ir.get("settings"_w);
    return settings.present() ? settings.get(key) : settings;
}

// The opacity of a masked material is alpha as a dithered coverage that varies per frame. The clip value is fixed.
Text opacity(Gen& g, const Value& material, Text c) {
    const bool blended = setting(g.ir, "blend"_w).is("BLENDED");
    material.set_item("blend"_w, Value::word(g.runtime(), blended ? "translucent"_w : "masked"_w));
    if (blended) {
        return g.text("$0.alpha", c);
    }
    g.declare_input("pixpos"_w, "pixel_position"_w);
    g.declare_input("taaidx"_w, "temporal_index"_w);
    g.use("dither_coverage"_w);
    material.set_item("clip"_w, Value::number(g.runtime(), 0.5));
    return g.text("L.dither_coverage($0.alpha, pixpos, taaidx)", c);
}

// The outputs of a lit material, in the order of their assignments. Sets the keys of `material` that depend on them.
std::vector<MaterialOutput> lit_outputs(Gen& g, const Value& material, Text c) {
    std::vector<MaterialOutput> outputs = {
        {"OutMetallic"_w, "float"_w, "metallic"_w, g.text("$0.metallic", c)},
        {"OutRoughness"_w, "float"_w, "roughness"_w, g.text("$0.roughness", c)},
        {"OutSpecular"_w, "float"_w, "specular"_w, g.text("$0.specular", c)},
    };
    if (g.uses.emission) {
        outputs.push_back({"OutEmissive"_w, "float3"_w, "emissive"_w, g.text("$0.emission", c)});
    }
    material.set_item("tangent_space_normal"_w, Value::boolean(g.runtime(), false));
    const Text nf = g.var("float3", g.geo("Nf"));
    // Unreal's frame has the opposite y.
    outputs.push_back({"OutNormal"_w, "float3"_w, "normal"_w,
                       g.text("(($0.has_normal > 0.0) ? float3($0.normal.x, -$0.normal.y, $0.normal.z) : "
                              "float3($1.x, -$1.y, $1.z))",
                              c, nf)});
    if (g.uses.alpha) {
        outputs.push_back({"OutOpacity"_w, "float"_w, "opacity"_w, opacity(g, material, c)});
    }
    if (g.uses.coat) {
        material.set_item("shading"_w, Value::word(g.runtime(), "clear_coat"_w));
        outputs.push_back({"OutCoat"_w, "float"_w, "clear_coat"_w, g.text("$0.coat", c)});
        outputs.push_back({"OutCoatRoughness"_w, "float"_w, "clear_coat_roughness"_w, g.text("$0.coat_roughness", c)});
    }
    return outputs;
}

// Writes the assignments to the outputs, and returns the records of the outputs.
Value write_outputs(Gen& g, const std::vector<MaterialOutput>& outputs) {
    const Runtime& runtime = g.runtime();
    Value list = Value::list(runtime);
    for (const auto& [name, type, property, expr] : outputs) {
        g.emit("$0 = $1;", name.text(), expr);
        list.append(Value::map(runtime, {{"name"_w, Value::word(runtime, name)},
                                         {"type"_w, Value::word(runtime, type)},
                                         {"property"_w, Value::word(runtime, property)},
                                         {"expr"_w, Value::text(runtime, expr)}}));
    }
    return list;
}

Value material_record(const Gen& g, bool emission_mode) {
    const Runtime& runtime = g.runtime();
    const bool culled = setting(g.ir, "backface_culling"_w).truthy();
    return Value::map(runtime, {{"shading"_w, Value::word(runtime, emission_mode ? "unlit"_w : "default_lit"_w)},
                                {"blend"_w, Value::word(runtime, "opaque"_w)},
                                {"two_sided"_w, Value::boolean(runtime, !culled)},
                                {"tangent_space_normal"_w, Value::boolean(runtime, true)}});
}

bool wants_displacement(const Gen& g) {
    const Value method = setting(g.ir, "displacement"_w);
    return g.ir.at("out"_w).get("displacement"_w).truthy() && (method.is("DISPLACEMENT") || method.is("BOTH"));
}

Value displacement_record(Gen& g, const Value& params) {
    const Runtime& runtime = g.runtime();
    const Displacement made = _displacement(g, params);
    return Value::map(
        runtime,
        {{"code"_w, made.code}, {"inputs"_w, made.inputs}, {"magnitude"_w, Value::number(runtime, made.magnitude)}});
}

}  // namespace

Value compile(const Module& module, const Value& ir, const Value& mode, bool use_params) {
    const Runtime& runtime = module.runtime;
    const bool emission_mode = mode.is("emission");
    Gen g(module, ir, use_params);
    const Text result = run(g, emission_mode);
    const Value material = material_record(g, emission_mode);
    Value outputs = Value::list(runtime);
    if (emission_mode) {
        g.emit("return $0;", result);
    } else {
        outputs = write_outputs(g, lit_outputs(g, material, result));
        g.emit("return $0.base;", result);
    }
    const Value code = lay_out(runtime, kMaterialHeader, g.structs, g.need, g.body());
    const Value inputs = input_list(g);
    const Value params = Value::map(runtime);
    add_parameters(g, params);
    Value displacement = Value::none(runtime);
    if (!emission_mode && wants_displacement(g)) {
        displacement = displacement_record(g, params);
    }
    return Value::map(runtime, {{"code"_w, code},
                                {"inputs"_w, inputs},
                                {"outputs"_w, outputs},
                                {"material"_w, material},
                                {"warnings"_w, g.warnings},
                                {"params"_w, params},
                                {"displacement"_w, displacement}});
}

}  // namespace quillgen

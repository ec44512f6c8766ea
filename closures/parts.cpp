// Several graphs in one text: `parts` translates each alone, `assemble` writes the text around them.
#include "closures/compile.h"
#include "closures/records.h"
#include "closures/text_layout.h"
#include "core/gen/gen.h"

namespace quillgen {

namespace {

Value line_list(const Gen& g) {
    Value list = Value::list(g.runtime());
    const Value body = Value::text(g.runtime(), g.body());
    // Cutting a string is cheaper than decoding each line, where a character is a byte.
    const bool is_ascii = body.size() == static_cast<Py_ssize_t>(g.body().size());
    std::size_t start = 0;
    for (const std::size_t end : g.line_ends()) {
        list.append(is_ascii ? body.cut_out(start, end - 1)
                             : Value::text(g.runtime(), g.body().substr(start, end - start - 1)));
        start = end;
    }
    return list;
}

// Appends a graph's statements and the return of its colour.
void append_graph(const Value& lines, const Value& pair, const Value& wrap) {
    const auto [body, ret] = pair.unpack2();
    body.for_each([&](const Value& line) { lines.append(line); });
    std::string line = "  return ";
    wrap.remainder(ret).append_to(line);
    lines.append(Value::text(lines.runtime(), line + ";"));
}

Translation translate(Gen& g, bool emission_mode) {
    const Gen::Run res = g.run();
    Draft draft = {
        .header = {},
        .statements = line_list(g),
        .structs = g.structs(),
        .need = g.need(),
        .warnings = warning_list(g),
        .inputs = g.inputs.entries(),
    };
    const Text ret = emission_mode ? res.base : g.text("$0.base"_fmt, res.closure);
    return {.surface = std::move(draft), .ret = Value::text(g.runtime(), ret)};
}

// Each list, set and map is the result's own.
Value make_result(const Runtime& runtime, const Translation& made) {
    Value result = Value::map(runtime);
    result.put("body", made.surface.statements.copied_list());
    result.put("ret", made.ret);
    result.put("need", made.surface.need.copied_set());
    result.put("structs", made.surface.structs.copied_set());
    result.put("inputs", inputs_by_name(runtime, made.surface));
    result.put("warnings", made.surface.warnings.copied_list());
    return result;
}

}  // namespace

Value parts(const Module& module, Recall& recall, const Value& ir, const Value& mode, bool use_params,
            const Value& uv_bias) {
    const bool emission_mode = mode.is("emission");
    Recall::Visit visit(recall, ir,
                        {.is_material = false,
                         .emission_mode = emission_mode,
                         .use_params = use_params,
                         .is_biased = !uv_bias.is_none()});
    if (const Translation* known = visit.known()) {
        return make_result(module.runtime, *known);
    }
    Gen g(module, ir, emission_mode, use_params, uv_bias);
    Translation made = translate(g, emission_mode);
    Value result = make_result(module.runtime, made);
    visit.keep(std::move(made), g, nullptr);
    return result;
}

Value assemble(const Module& module, const Value& bodies, const Value& structs, const Value& need,
               const Value& selector, const Value& wrap, const Value& extra_lib) {
    const Runtime& runtime = module.runtime;
    const Value lines = Value::list(runtime);
    append_head(module, lines, "material", structs, need, extra_lib);
    if (selector.is_none()) {
        append_graph(lines, bodies.at(Py_ssize_t{0}), wrap);
        return lines.joined();
    }
    int i = 0;
    bodies.for_each([&](const Value& pair) {
        std::string storage;
        TextBuffer chosen;
        fill(chosen, "if ($0 < $1.5) {"_fmt, selector.formatted(storage), i++);
        lines.append(Value::text(runtime, chosen.view()));
        append_graph(lines, pair, wrap);
        lines.append(Value::text(runtime, "}"));
    });
    lines.append(Value::text(runtime, "return float3(0.0, 0.0, 0.0);"));
    return lines.joined();
}

}  // namespace quillgen

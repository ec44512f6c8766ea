// Several graphs in one text: `parts` translates each alone, `assemble` writes the text around them.
#include "closures/compile.h"
#include "closures/layout.h"
#include "closures/run.h"

namespace quillgen {

namespace {

Value line_list(const Gen& g) {
    Value list = Value::list(g.runtime());
    std::size_t start = 0;
    for (const std::size_t end : g.line_ends()) {
        list.append(Value::text(g.runtime(), g.body().substr(start, end - start - 1)));
        start = end;
    }
    return list;
}

// Appends a graph's statements and the return of its colour.
void append_graph(const Value& lines, const Value& pair, const Value& wrap) {
    const auto [body, ret] = pair.unpack2();
    body.for_each([&](const Value& line) { lines.append(line); });
    std::string storage;
    Buffer line;
    fill(line, "  return $0;", wrap.remainder(ret).formatted(storage));
    lines.append(Value::text(lines.runtime(), line.text()));
}

}  // namespace

Value parts(const Module& module, const Value& ir, const Value& mode, bool use_params, const Value& uv_bias) {
    const bool emission_mode = mode.is("emission");
    Gen g(module, ir, use_params, uv_bias);
    const Text result = run(g, emission_mode);
    const Text ret = emission_mode ? result : g.text("$0.base", result);
    return Value::map(module.runtime, {{"body"_w, line_list(g)},
                                       {"ret"_w, Value::text(module.runtime, ret)},
                                       {"need"_w, g.need},
                                       {"structs"_w, g.structs},
                                       {"inputs"_w, input_map(g)},
                                       {"warnings"_w, g.warnings}});
}

Value assemble(const Module& module, const Value& bodies, const Value& structs, const Value& need,
               const Value& selector, const Value& wrap, const Value& extra_lib) {
    const Runtime& runtime = module.runtime;
    std::string storage;
    const Text further = extra_lib.present() ? extra_lib.text(storage) : Text();
    const Value lines = head_lines(runtime, kMaterialHeader, structs, need, further);
    if (selector.is_none()) {
        append_graph(lines, bodies.item(0), wrap);
        return lines.joined();
    }
    int i = 0;
    bodies.for_each([&](const Value& pair) {
        std::string selector_storage;
        Buffer chosen;
        fill(chosen, "if ($0 < $1.5) {", selector.formatted(selector_storage), i++);
        lines.append(Value::text(runtime, chosen.text()));
        append_graph(lines, pair, wrap);
        lines.append(Value::text(runtime, "}"));
    });
    lines.append(Value::text(runtime, "return float3(0.0, 0.0, 0.0);"));
    return lines.joined();
}

}  // namespace quillgen

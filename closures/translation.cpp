#include "closures/translation.h"

#include "closures/records.h"
#include "closures/text_layout.h"

namespace quillgen {

Draft material_draft(const Gen& g, Text header) {
    Draft draft = {
        .header = header,
        .statements = Value::text(g.runtime(), g.body().substr(0, g.body().size() - 1)),
        .structs = g.structs(),
        .need = g.need(),
        .warnings = warning_list(g),
        .inputs = g.inputs.entries(),
        .sorted = g.sorted_inputs(),
    };
    draft.code = finished_text(g.module(), draft);
    return draft;
}

// Whoever has replaced the library's function gets a set that is no one else's.
Value finished_text(const Module& module, const Draft& draft) {
    return draft.code.present()
               ? draft.code
               : lay_out(module, draft.header, draft.structs, draft.need.copied_set(), draft.statements);
}

}  // namespace quillgen

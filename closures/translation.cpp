#include "closures/translation.h"

#include "closures/records.h"
#include "closures/text_layout.h"

namespace quillgen {

Draft material_draft(const Gen& g, Text header) {
    const Text lines = g.body().substr(0, g.body().size() - 1);
    Draft draft = {
        .statements = Value::text(g.runtime(), lines),
        .structs = g.structs(),
        .need = g.need(),
        .warnings = warning_list(g),
        .inputs = g.inputs.entries(),
        .sorted = g.sorted_inputs(),
    };
    draft.code = lay_out(g.module(), header, draft.structs, draft.need, draft.statements);
    return draft;
}

// The library is asked each time, for it may have changed: whoever replaces a function of it gets a set that is no one
// else's.
Value finished_text(const Module& module, Text header, const Draft& draft) {
    return draft.code.present() ? draft.code
                                : lay_out(module, header, draft.structs, draft.need.copied_set(), draft.statements);
}

}  // namespace quillgen

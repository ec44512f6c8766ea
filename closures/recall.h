// Translations that are kept for documents that come again. Where a document holds what one has held before, apart from
// the values of its parameters, its text is the same: a step of a slider then costs a comparison and the making of the
// result, a third to a half of the time of a translation (docs/performance.md). Two things are told by evaluation
// alone, and not where there is none: that the interpreter's recursion limit is lower by now, and that the document was
// another one for a while inside the call that kept it.
#pragma once

#include <memory>
#include <unordered_map>
#include <vector>

#include "closures/translation.h"
#include "core/document/snapshot.h"

namespace quillgen {

class Recall {
    struct Kept;

public:
    // What tells one way of translating from another.
    struct Way {
        bool is_material;
        bool emission_mode;
        bool use_params;
        bool is_biased;  // by a bias that is no part of the document: such translations are not kept
    };

    // One call's use of it. What is known of the document is the call's own meanwhile: a finalizer that runs inside the
    // call, or another thread, may call with the same document.
    class Visit {
    public:
        Visit(Recall& recall, const Value& document, Way way);
        // Gives back what the call has had, unless a call inside it has kept another or forgotten all.
        ~Visit();
        Visit(const Visit&) = delete;
        Visit& operator=(const Visit&) = delete;

        // The translation of the document, with the values that its parameters have now; null where none is known.
        [[nodiscard]] const Translation* known() const;
        // Keeps a new translation whose result has been made, if that is worth it. `surface` has made it, and
        // `displacement` if there is one.
        void keep(Translation translation, Gen& surface, Gen* displacement);

    private:
        Recall& recall_;
        const Value document_;
        std::size_t key_;
        std::unique_ptr<Snapshot>
            before_;  // where the translation is to be kept: it may run code that changes the document
        std::unique_ptr<Kept> kept_;
    };

    Recall();
    ~Recall();
    Recall(const Recall&) = delete;
    Recall& operator=(const Recall&) = delete;

private:
    struct Entry {
        std::unique_ptr<Kept> kept;  // null where there is none, or where a call has it
        unsigned misses = 0;         // since it was of use
    };

    std::unique_ptr<Kept> take_out(Entry& entry);
    void put(Entry& entry, std::unique_ptr<Kept> kept);
    void forget();

    std::unordered_map<std::size_t, Entry> entries_;
    std::size_t bytes_ = 0;         // of what the entries have
    const Names* names_ = nullptr;  // of what was kept last; only compared, may be gone
};

}  // namespace quillgen

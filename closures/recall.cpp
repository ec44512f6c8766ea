#include "closures/recall.h"

#include <algorithm>
#include <bit>
#include <list>

namespace quillgen {

namespace {

// All of it is forgotten beyond that, so that a long session does not grow: room for more than a hundred materials of
// thirty nodes.
constexpr std::size_t kMostBytes = std::size_t{32} * 1024 * 1024;
constexpr std::size_t kMostEntries = 1024;  // documents that have come once count too

// 0 for a document that cannot be known.
std::size_t key_of(const Value& document, Recall::Way way) {
    const std::size_t fingerprint = way.is_biased ? 0 : Snapshot::fingerprint(document);
    const unsigned kind = (way.is_material ? 1U : 0U) + (way.emission_mode ? 2U : 0U) + (way.use_params ? 4U : 0U);
    return fingerprint == 0 ? 0 : fingerprint * 8 + kind;
}

// Taking a document down costs two thirds of its translation. It is done for one that comes again, and less and less
// often where that was in vain: a value is dragged that the text depends on, or copies of a material take turns.
bool is_worth_keeping(unsigned misses) {
    constexpr unsigned kMostBetween = 32;
    return std::has_single_bit(misses) || misses % kMostBetween == 0;
}

bool is_plain(const Texture& texture) {
    return texture.image.is_plain_str() && texture.extension.is_plain_str() && texture.interpolation.is_plain_str();
}

// Adds where the values of parameters stand. A map that is the place of two of them stands in two places of the
// document, and such a document is not taken.
void add_parameters(const Gen& g, Snapshot::FreeItems& free) {
    for (const Input& input : g.inputs.entries()) {
        if (input.origin.map != nullptr) {
            free.try_emplace(input.origin.map, input.origin.key);
        }
    }
}

void remove_decisive(const Gen& g, Snapshot::FreeItems& free) {
    for (const void* entry : g.decisive()) {
        free.erase(entry);
    }
}

}  // namespace

// A translation with all that it refers to.
struct Recall::Kept {
    struct Inputs {
        std::vector<Input> entries;
        std::vector<int> places;                           // of the entries: of their values among the free ones, or -1
        std::vector<std::pair<std::size_t, Value>> lists;  // the vectors of other entries, to be copied for each result
    };

    explicit Kept(Translation made) : translation(std::move(made)) {}

    // False where the document cannot be taken down.
    bool take(const Value& document, Gen& surface, Gen* displacement);
    // Whether the library still has the words that the text holds.
    [[nodiscard]] bool has_words_of(const Runtime& runtime) const;
    // Gives the parameters the values of a document that it matches.
    void refresh(const std::vector<Value>& values);

    Snapshot snapshot;
    Translation translation;
    std::shared_ptr<Names> names;
    Gen::Types types;
    Inputs surface_inputs;
    Inputs displacement_inputs;
    std::list<Texture> textures;
    std::size_t bytes = 0;

private:
    void adopt(Draft& draft, Inputs& inputs, Gen& g, const Snapshot::FreeItems& free);
    static void refresh_inputs(Inputs& inputs, const std::vector<Value>& values);
};

// Takes over what a draft's generator has of the inputs.
void Recall::Kept::adopt(Draft& draft, Inputs& inputs, Gen& g, const Snapshot::FreeItems& free) {
    inputs.entries.assign(draft.inputs.begin(), draft.inputs.end());
    for (const Input*& input : draft.sorted) {
        input = inputs.entries.data() + (input - draft.inputs.data());
    }
    draft.inputs = inputs.entries;
    draft.code = {};
    for (const Input& input : inputs.entries) {
        const auto found = free.find(input.origin.map);
        const int place = found != free.end() ? found->second.place : -1;
        if (place < 0 && input.kind == Word("vector")) {
            inputs.lists.emplace_back(inputs.places.size(), input.value.copied_list());
        }
        inputs.places.push_back(place);
    }
    textures.splice(textures.end(), g.textures);
    for (std::size_t d = 0; d < types.size(); ++d) {
        types[d] = g.asked_types()[d].empty() ? types[d] : g.asked_types()[d];
    }
    bytes += inputs.entries.size() * 2 * sizeof(Input) + 2 * g.body().size();
}

bool Recall::Kept::take(const Value& document, Gen& surface, Gen* displacement) {
    // The text does not depend on a value that has become a parameter, unless something has decided by it.
    Snapshot::FreeItems free;
    add_parameters(surface, free);
    if (displacement != nullptr) {
        add_parameters(*displacement, free);
        remove_decisive(*displacement, free);
    }
    remove_decisive(surface, free);
    if (!snapshot.take(document, free)) {
        return false;
    }
    bytes = sizeof(Kept) + snapshot.bytes();
    names = surface.names();
    adopt(translation.surface, surface_inputs, surface, free);
    if (displacement != nullptr) {
        adopt(translation.displacement->draft, displacement_inputs, *displacement, free);
    }
    return std::all_of(textures.begin(), textures.end(), is_plain);
}

bool Recall::Kept::has_words_of(const Runtime& runtime) const {
    for (std::size_t d = 0; d < types.size(); ++d) {
        if (!types[d].empty() && library_type(runtime, static_cast<int>(d)) != types[d]) {
            return false;
        }
    }
    return true;
}

void Recall::Kept::refresh(const std::vector<Value>& values) {
    refresh_inputs(surface_inputs, values);
    refresh_inputs(displacement_inputs, values);
}

void Recall::Kept::refresh_inputs(Inputs& inputs, const std::vector<Value>& values) {
    for (std::size_t i = 0; i < inputs.entries.size(); ++i) {
        if (inputs.places[i] >= 0) {
            Input& input = inputs.entries[i];
            const Value& value = values[static_cast<std::size_t>(inputs.places[i])];
            const Runtime& runtime = value.runtime();
            input.value = input.kind == Word("scalar") ? scalar_value(runtime, value) : vector_value(runtime, value);
        }
    }
    for (const auto& [place, list] : inputs.lists) {  // no two results share one
        inputs.entries[place].value = list.copied_list();
    }
}

Recall::Recall() = default;
Recall::~Recall() = default;

std::unique_ptr<Recall::Kept> Recall::take_out(Entry& entry) {
    bytes_ -= entry.kept != nullptr ? entry.kept->bytes : 0;
    return std::move(entry.kept);
}

void Recall::put(Entry& entry, std::unique_ptr<Kept> kept) {
    bytes_ += kept->bytes;
    entry.kept = std::move(kept);
}

// What is forgotten is destroyed when nothing of it is to be seen any more.
void Recall::forget() {
    const auto forgotten = std::exchange(entries_, {});
    bytes_ = 0;
    names_ = nullptr;
}

Recall::Visit::Visit(Recall& recall, const Value& document, Way way)
    : recall_(recall), document_(document), key_(key_of(document, way)) {
    if (key_ == 0) {
        return;
    }
    const auto found = recall_.entries_.find(key_);
    if (found == recall_.entries_.end()) {
        if (recall_.entries_.size() >= kMostEntries) {
            recall_.forget();
        }
        recall_.entries_.try_emplace(key_);
        return;
    }
    Entry& entry = found->second;
    std::vector<Value> values;
    const bool is_known = entry.kept != nullptr && entry.kept->snapshot.matches(document, values);
    entry.misses = is_known ? 0 : entry.misses + 1;
    const bool is_wanted = !is_known && is_worth_keeping(entry.misses);
    // What does not match is given up, so that comparisons in vain are as rare as what they take.
    std::unique_ptr<Kept> kept = recall_.take_out(entry);
    if (is_known && kept->has_words_of(document.runtime())) {
        kept->refresh(values);
        kept_ = std::move(kept);
    } else if (is_wanted) {
        before_ = std::make_unique<Snapshot>();
        Snapshot::FreeItems none;
        if (!before_->take(document, none)) {
            before_.reset();
        }
    }
}

Recall::Visit::~Visit() {
    const auto found = kept_ != nullptr ? recall_.entries_.find(key_) : recall_.entries_.end();
    if (found != recall_.entries_.end() && found->second.kept == nullptr) {
        recall_.put(found->second, std::move(kept_));
    }
}

const Translation* Recall::Visit::known() const { return kept_ != nullptr ? &kept_->translation : nullptr; }

void Recall::Visit::keep(Translation translation, Gen& surface, Gen* displacement) {
    std::vector<Value> values;
    if (before_ == nullptr || !before_->matches(document_, values)) {
        return;
    }
    auto kept = std::make_unique<Kept>(std::move(translation));
    if (!kept->take(document_, surface, displacement)) {
        return;
    }
    // Names of before have been given up, and what is kept would hold on to them.
    const bool are_other_names = recall_.names_ != nullptr && recall_.names_ != kept->names.get();
    if (are_other_names || recall_.bytes_ + kept->bytes > kMostBytes) {
        recall_.forget();
        return;
    }
    const auto found = recall_.entries_.find(key_);
    if (found == recall_.entries_.end()) {
        return;
    }
    recall_.names_ = kept->names.get();
    const std::unique_ptr<Kept> older = recall_.take_out(found->second);
    recall_.put(found->second, std::move(kept));
}

}  // namespace quillgen

#include "core/gen/names.h"

#include <algorithm>

namespace quillgen {

const Name* NodeNames::find(Word socket) {
    for (std::size_t i = 0; i < names_.size(); ++i) {
        const auto& [known, name] = names_[next_];
        next_ = next_ + 1 < names_.size() ? next_ + 1 : 0;
        if (known == socket) {
            return name;
        }
    }
    return nullptr;
}

const Name& NodeNames::add(Word socket, const Name& name) {
    names_.emplace_back(socket, &name);
    return name;
}

const Name& Names::get(Text text) {
    if (const auto known = names_.find(text); known != names_.end()) {
        return known->second;
    }
    Value string = Value::text(runtime_, text);
    const auto [entry, is_new] = names_.try_emplace(std::string(text));
    entry->second = {entry->first, std::move(string), names_.size() - 1, 0, {}, {}};
    new_.push_back(&entry->second);
    bytes_ += text.size();
    return entry->second;
}

NodeNames& Names::of_node(Text id) {
    if (const auto known = nodes_.find(id); known != nodes_.end()) {
        return known->second;
    }
    // Replacing characters runs code of Python's, and with that perhaps other translations.
    NodeNames made("P_" + runtime_.identifier(id) + "__");
    bytes_ += id.size();
    return nodes_.try_emplace(std::string(id), std::move(made)).first->second;
}

void Names::rank() {
    if (new_.empty()) {
        return;
    }
    const auto by_text = [](const Name* a, const Name* b) { return a->text < b->text; };
    std::sort(new_.begin(), new_.end(), by_text);
    const auto middle = ranked_.insert(ranked_.end(), new_.begin(), new_.end());
    std::inplace_merge(ranked_.begin(), middle, ranked_.end(), by_text);
    new_.clear();
    for (std::size_t i = 0; i < ranked_.size(); ++i) {
        ranked_[i]->rank = i;
    }
}

std::shared_ptr<Names> SharedNames::lend() {
    // Of texts: some twenty thousand names, which come to 11 MiB with all that is kept of them. A graph of more has
    // them made anew each time; it has seven thousand nodes.
    constexpr std::size_t kMostBytes = std::size_t{512} * 1024;
    if (names_ == nullptr || names_->bytes() > kMostBytes) {
        names_ = std::make_shared<Names>(runtime_);
    }
    return names_;
}

}  // namespace quillgen

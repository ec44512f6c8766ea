// Evaluation at moved positions. Bump mapping needs the height beside the shaded point, and the height is
// whatever a graph computes: so the text of that graph is written again while the signals read moved
// positions.
#include "core/gen/gen.h"

namespace quillgen {

Text Gen::geo(Signal what) {
    const Text e = _geo(what);
    if (boff_ == nullptr) {
        return e;
    }
    switch (what.kind()) {
    case Signal::P:
        return text("($0 + $1)"_fmt, e, boff_->w);
    case Signal::Pobj: {
        use("dir_world_to_obj");
        const Text ox = geo("ox");
        const Text oy = geo("oy");
        return text("($0 + L.dir_world_to_obj($1, $2, $3, $4))"_fmt, e, boff_->w, ox, oy, geo("oz"));
    }
    case Signal::uv:
    case Signal::vcol: {
        const Text dx = deriv(what, 'x');
        const Text dy = deriv(what, 'y');
        return text("($0 + $1 * $2 + $3 * $4)"_fmt, e, boff_->a, dx, boff_->b, dy);
    }
    default:
        return e;
    }
}

// The places of a node and of every node that feeds it, through any link.
std::vector<int> Gen::upstream(int place) {
    std::vector<int> reached;
    if (place < 0) {
        return reached;
    }
    reached.reserve(nodes_.size());
    std::vector<bool> seen(nodes_.size(), false);
    seen[static_cast<std::size_t>(place)] = true;
    reached.push_back(place);
    for (std::size_t i = 0; i < reached.size(); ++i) {
        for (const Socket& socket : states_[static_cast<std::size_t>(reached[i])].sockets) {
            const int feeder = socket.source.place;
            if (feeder >= 0 && !seen[static_cast<std::size_t>(feeder)]) {
                seen[static_cast<std::size_t>(feeder)] = true;
                reached.push_back(feeder);
            }
        }
    }
    return reached;
}

// What an evaluation at moved positions may change of the nodes upstream, and what it gets back: which have
// run and what their outputs are bound to. Restored on every way out.
class Gen::MovedEvaluation {
public:
    MovedEvaluation(Gen& g, std::vector<int> up, const Offset& offset) : g_(g), up_(std::move(up)), boff_(g.boff_) {
        done_.reserve(up_.size());
        bound_.reserve(2 * up_.size());
        for (const int place : up_) {
            NodeState& state = g_.states_[static_cast<std::size_t>(place)];
            done_.push_back(std::exchange(state.done, false));
            for_outputs(state,
                        [&](Output& output) { bound_.emplace_back(std::exchange(output.bound, false), output.value); });
        }
        g_.boff_ = &offset;
    }
    ~MovedEvaluation() {
        auto done = done_.begin();
        auto bound = bound_.begin();
        for (const int place : up_) {
            NodeState& state = g_.states_[static_cast<std::size_t>(place)];
            state.done = *done++;
            for_outputs(state, [&](Output& output) {
                output.bound = bound->first;
                output.value = bound->second;
                ++bound;
            });
        }
        g_.boff_ = boff_;
    }
    MovedEvaluation(const MovedEvaluation&) = delete;
    MovedEvaluation& operator=(const MovedEvaluation&) = delete;

private:
    template <class Visit>
    void for_outputs(const NodeState& state, Visit visit) {
        for (int i = state.first_output; i >= 0;) {
            Output& output = g_.outputs_[static_cast<std::size_t>(i)];
            visit(output);
            i = output.next;
        }
    }

    Gen& g_;
    const std::vector<int> up_;
    const Offset* const boff_;
    std::vector<bool> done_;
    std::vector<std::pair<bool, Bound>> bound_;
};

Text Gen::inp_offset(const Node& n, Word ident, SocketType want, const Offset& offset) {
    const Socket* const socket = find_socket(n, ident);
    const int place = socket != nullptr && socket->link ? socket->source.place
                                                        : find_place(n.in.at(ident).at("link").at(Py_ssize_t{0}));
    const MovedEvaluation moved(*this, upstream(place), offset);
    return var(hlsl(want), inp(n, ident, want));
}

}  // namespace quillgen

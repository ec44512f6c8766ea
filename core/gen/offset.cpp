// Evaluation at moved positions. Bump mapping needs the height beside the shaded point. A graph computes the height, so
// the HLSL of that graph is generated again with the signals at moved positions.
#include <utility>

#include "core/gen/gen.h"

namespace quillgen {

Text Gen::geo(Signal what) {
    const Text e = _geo(what);
    if (boff_ == nullptr) {
        return e;
    }
    switch (what.kind()) {
    case Signal::P:
        return text("($0 + $1)", e, boff_->w);
    case Signal::Pobj: {
        use("dir_world_to_obj"_w);
        const Text ox = geo("ox");
        const Text oy = geo("oy");
        return text("($0 + L.dir_world_to_obj($1, $2, $3, $4))", e, boff_->w, ox, oy, geo("oz"));
    }
    case Signal::uv:
    case Signal::vcol: {
        const Text dx = deriv(what, 'x');
        const Text dy = deriv(what, 'y');
        return text("($0 + $1 * $2 + $3 * $4)", e, boff_->a, dx, boff_->b, dy);
    }
    default:
        return e;
    }
}

// While it exists, the given nodes count as not evaluated and the signals are moved. The destructor restores the state.
class Gen::MovedEvaluation {
public:
    MovedEvaluation(Gen& g, const std::vector<int>& nodes, const Offset& offset)
        : g_(g), boff_(std::exchange(g.boff_, &offset)) {
        for (const int index : nodes) {
            Node& n = g_.graph_.nodes[static_cast<std::size_t>(index)];
            nodes_.emplace_back(&n, std::exchange(n.done, false));
            for (Output& output : n.outputs) {
                outputs_.push_back(output);
                output.is_bound = false;
            }
        }
    }
    ~MovedEvaluation() {
        auto output = outputs_.cbegin();
        for (const auto& [n, done] : nodes_) {
            n->done = done;
            for (Output& moved : n->outputs) {
                moved = *output++;
            }
        }
        g_.boff_ = boff_;
    }
    MovedEvaluation(const MovedEvaluation&) = delete;
    MovedEvaluation& operator=(const MovedEvaluation&) = delete;

private:
    Gen& g_;
    const Offset* const boff_;
    std::vector<std::pair<Node*, bool>> nodes_;  // and whether each was done
    std::vector<Output> outputs_;                // of these nodes
};

Text Gen::inp_offset(Node& n, Word ident, const SocketType& want, const Offset& offset) {
    const MovedEvaluation moved(*this, upstream(graph_, n.find_socket(ident)->source.node), offset);
    return var(hlsl(want), inp(n, ident, want));
}

Node Gen::reader(Word ident, const Value& source) {
    const Value any_type = Value::none(runtime());
    const Value link = Value::list(runtime(), {source.item(0), source.item(1), any_type});
    Node node;
    node.sockets.push_back(
        {.name = static_cast<int>(ident.index()), .entry = {}, .link = link, .source = find_source(graph_, source)});
    return node;
}

}  // namespace quillgen

// The translations that the module offers. All raise Unsupported for a graph that cannot be translated and Python's own
// errors for a document that is not what it should be; no partial result is returned.
#pragma once

#include "core/gen/gen.h"

namespace quillgen {

// One material: a map with `code` (str), `inputs` (list of maps, by name), `outputs` (list of maps), `material` (map),
// `warnings` (list of str), `params` (map of [kind, value]) and `displacement` (map or none).
Value compile(const Module& module, const Value& ir, const Value& mode, bool use_params);

// The text of real displacement: a scalar, centred on 0.5, that a magnitude in centimetres scales.
struct Displacement {
    Value code;
    Value inputs;  // list of maps, by name
    double magnitude;
};
// Takes over the graph that the surface's generator has read. Adds its parameters to `params`, and its warnings to
// those of the surface.
Displacement _displacement(Gen& surface, const Value& params);

// One graph without a header: a map with `body` (list of statements), `ret` (expression of the colour), `need` and
// `structs` (sets), `inputs` (map of records), `warnings`.
Value parts(const Module& module, const Value& ir, const Value& mode, bool use_params, const Value& uv_bias);

// One text from several graphs. `bodies` are pairs of statements and colour expression; `selector` the HLSL of a float
// that chooses among them at run time, or none for the first alone; `wrap` a format text with one "%s" around each
// colour; `extra_lib` further text for the struct.
Value assemble(const Module& module, const Value& bodies, const Value& structs, const Value& need,
               const Value& selector, const Value& wrap, const Value& extra_lib);

// The records of the inputs, sorted by name or as a map by name. They hold the values of `g` themselves, so that
// nothing may be declared in `g` from then on.
Value input_list(const Gen& g);
Value input_map(const Gen& g);
// Adds the kind and the value of each tweakable input to a map.
void add_parameters(const Gen& g, const Value& params);

}  // namespace quillgen

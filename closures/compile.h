// The translations that the module offers. They raise Unsupported for a graph that cannot be translated, and Python's
// own errors for an invalid document; no partial result is returned.
#pragma once

#include "core/gen/gen.h"

namespace quillgen {

// One material: a map with `code` (str), `inputs` (list of maps, by name), `outputs` (list of maps), `material` (map),
// `warnings` (list of str), `params` (map of [kind, value]) and `displacement` (map or none).
Value compile(const Module& module, const Value& ir, const Value& mode, bool use_params);

// The text for displacement of the geometry: a scalar, centred on 0.5, that a magnitude in centimetres scales.
struct Displacement {
    Value code;
    Value inputs;  // list of maps, by name
    double magnitude;
};
// Takes over the reading of the surface's generator. Adds its parameters to `params`, and its warnings to those of the
// surface.
Displacement _displacement(Gen& surface, const Value& params);

// One graph without a header: a map with `body` (list of statements), `ret` (expression of the colour), `need` and
// `structs` (sets), `inputs` (map of records), `warnings`.
Value parts(const Module& module, const Value& ir, const Value& mode, bool use_params, const Value& uv_bias);

// One text from several graphs. `bodies` are pairs of statements and colour expression; `selector` is the HLSL of a
// float that selects one at run time, or None for the first alone; `wrap` is a format with one "%s", put around each
// colour; `extra_lib` is further HLSL for the struct.
Value assemble(const Module& module, const Value& bodies, const Value& structs, const Value& need,
               const Value& selector, const Value& wrap, const Value& extra_lib);

// The records of the inputs, as a list sorted by name or as a map by name. They share their values with `g`, so nothing
// may be declared in `g` afterwards.
Value input_list(const Gen& g);
Value input_map(const Gen& g);
// Adds the kind and the value of each tweakable input to a map.
void add_parameters(const Gen& g, const Value& params);

}  // namespace quillgen

// Every file of handlers registers its own in one function; these are all of them.
#pragma once

#include "core/gen/registry.h"

namespace quillgen {

void register_all(Registry& registry);

// closures/
void register_layout(Registry& registry);
void register_results(Registry& registry);
void register_shaders(Registry& registry);
// nodes/value/
void register_math(Registry& registry);
void register_vector_math(Registry& registry);
void register_mix(Registry& registry);
void register_map_range(Registry& registry);
void register_channels(Registry& registry);
void register_colour(Registry& registry);
void register_vector_operators(Registry& registry);
// nodes/texture/
void register_coordinates(Registry& registry);
void register_simple_textures(Registry& registry);
void register_noise(Registry& registry);
void register_voronoi(Registry& registry);
void register_gabor(Registry& registry);
void register_ramp(Registry& registry);
void register_curves(Registry& registry);
void register_image_nodes(Registry& registry);
// nodes/surface/
void register_scene(Registry& registry);
void register_attributes(Registry& registry);
void register_geometry(Registry& registry);
void register_facing(Registry& registry);
void register_normal_map(Registry& registry);
void register_bump(Registry& registry);
void register_displacement(Registry& registry);

}  // namespace quillgen

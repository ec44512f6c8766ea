#include "nodes/register.h"

namespace quillgen {

void register_all(Registry& registry) {
    register_layout(registry);
    register_results(registry);
    register_shaders(registry);

    register_math(registry);
    register_vector_math(registry);
    register_mix(registry);
    register_map_range(registry);
    register_channels(registry);
    register_colour(registry);
    register_vector_operators(registry);

    register_coordinates(registry);
    register_simple_textures(registry);
    register_noise(registry);
    register_voronoi(registry);
    register_gabor(registry);
    register_ramp(registry);
    register_curves(registry);
    register_image_nodes(registry);

    register_scene(registry);
    register_attributes(registry);
    register_geometry(registry);
    register_facing(registry);
    register_normal_map(registry);
    register_bump(registry);
    register_displacement(registry);
}

}  // namespace quillgen

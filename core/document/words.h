// The vocabulary: every word that the translator asks a document for, binds a socket under, writes
// into a result as a key, or asks the library by. Each has one interned Python string per
// interpreter (see Runtime), so that a lookup hashes and compares nothing.
#pragma once

#include <array>
#include <cstdint>
#include <string_view>

namespace quillgen {

// clang-format off
inline constexpr auto kWords = std::to_array<std::string_view>({
    // the document, its records and their keys
    "nodes", "out", "settings", "images", "uv_maps", "surface", "displacement", "backface_culling", "blend",
    "id", "type", "in", "outs", "props", "ramp", "curve", "object_matrix", "t", "v", "link",
    "name", "colorspace", "alpha", "float", "stops", "interp", "mode", "tables", "min", "max", "extend",
    // socket types
    "VALUE", "INT", "BOOLEAN", "VECTOR", "RGBA", "SHADER", "ROTATION",
    // properties of nodes
    "operation", "use_clamp", "data_type", "factor_mode", "clamp_factor", "clamp_result", "blend_type",
    "interpolation_type", "clamp", "clamp_type", "value", "color", "vector_type", "rotation_type", "invert",
    "convert_from", "convert_to", "gradient_type", "bands_direction", "rings_direction", "wave_profile",
    "wave_type", "offset", "offset_frequency", "squash", "squash_frequency", "turbulence_depth",
    "noise_dimensions", "noise_type", "normalize", "voronoi_dimensions", "feature", "distance", "gabor_type",
    "image", "projection", "projection_blend", "extension", "interpolation", "REPEAT", "Linear", "attribute_name", "normal",
    "direction_type", "axis", "space", "convention",
    // sockets
    "A_Color", "A_Float", "A_Vector", "AO", "Alpha", "Angle", "Anisotropy", "Axis", "B_Color", "B_Float",
    "B_Vector", "BSDF", "Backfacing", "Background", "Base Color", "Bias", "Blend", "Blue", "Brick Width",
    "Bright", "Camera", "Center", "Coat Roughness", "Coat Weight", "Color", "Color1", "Color2", "Contrast", "D",
    "Detail", "Detail Roughness", "Detail Scale", "Displacement", "Distance", "Distortion", "Dot", "Emission",
    "Emission Color", "Emission Strength", "Exponent", "Fac", "Facing", "Factor", "Factor_Float", "Factor_Vector",
    "Filter Width", "Frequency", "Fresnel", "From Max", "From Min", "From_Max_FLOAT3", "From_Min_FLOAT3", "Gain",
    "Gamma", "Generated", "Green", "Height", "Holdout", "Hue", "IOR", "Incoming", "Intensity", "Lacunarity",
    "Location", "Material Index", "Max", "Metallic", "Midlevel", "Min", "Mortar", "Mortar Size", "Mortar Smooth",
    "Normal", "Object", "Object Index", "Offset", "Orientation 2D", "Orientation 3D", "Parametric", "Phase",
    "Phase Offset", "Pointiness", "Position", "Radius", "Random", "Random Per Island", "Randomness", "Red",
    "Reflection", "Result", "Result_Color", "Result_Float", "Result_Vector", "Rotation", "Roughness", "Roundness",
    "Row Height", "Saturation", "Scale", "Segment Coordinates", "Segment ID", "Segment Rotation", "Segment Width",
    "Shader", "Shader_001", "Sheen Weight", "Sides", "Smoothness", "Specular IOR Level", "Steps", "Steps_FLOAT3",
    "Strength", "Subsurface Weight", "Tangent", "Temperature", "To Max", "To Min", "To_Max_FLOAT3", "To_Min_FLOAT3",
    "Transmission Weight", "True Normal", "UV", "Val", "Value", "Value_001", "Value_002", "Vector", "Vector_001",
    "Vector_002", "View Distance", "View Vector", "View Z Depth", "W", "Wavelength", "Width", "Window", "X", "Y", "Z",
    // keys and words of the results
    "code", "inputs", "outputs", "material", "warnings", "params", "magnitude", "body", "ret", "need", "structs",
    "kind", "default", "index", "of", "srgb", "property", "expr", "shading", "two_sided", "tangent_space_normal",
    "clip", "unlit", "default_lit", "clear_coat", "opaque", "translucent", "masked", "emission", "metallic",
    "roughness", "specular", "emissive", "opacity", "clear_coat_roughness", "float3", "x", "y", "z",
    "OutMetallic", "OutRoughness", "OutSpecular", "OutEmissive", "OutNormal", "OutOpacity", "OutCoat",
    "OutCoatRoughness",
    // kinds of inputs
    "scalar", "vector", "texture", "texcoord", "ddx", "ddy", "view_axis", "object_axis", "world_position",
    "world_position_cr", "local_position", "cycles_normal", "vertex_normal", "camera_vector", "object_origin",
    "vertex_color", "two_sided_sign", "tangent_world", "bitangent_world", "camera_position", "pixel_depth",
    "tan_half_fov", "view_size", "local_bounds_min", "local_bounds_max", "pixel_position", "temporal_index",
    // library names that do not depend on the document, and the library's entries
    "safe_divide", "safe_powf", "safe_logf", "safe_sqrtf", "inversesqrtf", "safe_modulo", "safe_floored_modulo",
    "wrapf", "pingpongf", "compatible_atan2", "compatible_signf", "smoothminf", "smoothstepc", "smootherstep",
    "safe_divide3", "safe_normalize", "project3", "reflect3", "refract3", "faceforward3", "safe_fmod3", "wrap3",
    "safe_pow3", "compatible_sign3", "rgb_to_hsv", "hsv_to_rgb", "rgb_to_hsl", "hsl_to_rgb", "srgb_to_linear3",
    "blackbody_rec709", "wavelength_xyz", "mapping", "vector_rotate", "n_obj_to_world", "dir_world_to_obj",
    "rot_to_obj", "facing_normal", "make_orthonormals_a", "bump_dp", "tex_gradient", "tex_checker", "tex_brick",
    "tex_magic", "tex_wave", "gabor", "radial_tiling", "texel_fetch_a", "box_weights", "map_to_sphere",
    "map_to_tube", "mirrorball_uv", "equirect_uv", "fresnel_dielectric_cos", "dither_coverage",
    "hash_float3_to_float", "QWKVoronoiParams", "QWKVoronoiOutput", "resolve", "STRUCTS", "TYPES",
    // methods of Python's own types that a document's values are asked for
    "get", "values", "items", "lower", "encode", "hexdigest",
});
// clang-format on

// A word of the vocabulary, written as its text: `g.inp(n, "Base Color", RGBA)`. The text is looked
// up while compiling, and one that the vocabulary lacks does not compile.
class Word {
public:
    // NOLINTNEXTLINE(google-explicit-constructor): a word is written as a plain text
    consteval Word(const char* text) : index_(find(text)) {}
    static constexpr Word at(std::size_t index) { return Word(static_cast<std::uint16_t>(index)); }

    [[nodiscard]] constexpr std::size_t index() const { return index_; }
    [[nodiscard]] constexpr std::string_view text() const { return kWords[index_]; }
    constexpr bool operator==(const Word&) const = default;

private:
    constexpr explicit Word(std::uint16_t index) : index_(index) {}
    static consteval std::uint16_t find(std::string_view text) {
        for (std::size_t i = 0; i < kWords.size(); ++i) {
            if (kWords[i] == text) {
                return static_cast<std::uint16_t>(i);
            }
        }
        throw "not a word of the vocabulary";
    }

    std::uint16_t index_;
};

}  // namespace quillgen

#include <algorithm>

#include "core/gen/properties.h"
#include "nodes/texture/image.h"

namespace quillgen {

namespace {

constexpr Text DATA_SPACES[] = {"Non-Color", "Raw", "Generic Data", "Data"};

constexpr std::size_t kMostCharacters = 32;
constexpr std::size_t kDigits = 6;

Value property_or(const Gen& g, const Value& props, Word key, Text fallback) {
    const Value property = props.get(key);
    return property.present() ? property.unshared() : Value::text(g.runtime(), fallback);
}

}  // namespace

std::string tex_input(const Runtime& runtime, const Value& image_name) {
    std::string storage;
    std::string base;
    append_identifier(base, image_name.text(storage));
    return "T_" + base.substr(0, kMostCharacters) + "_" + runtime.sha1_digits(image_name.object(), kDigits);
}

DeclaredImage _image_spec(Gen& g, Node& n, const Value& img) {
    const Runtime& runtime = g.runtime();
    const Value p = n.props();
    const Text t = g.keep(tex_input(runtime, img));
    const Value info = g.ir.at("images"_w).at(img);
    const Value extension = property_or(g, p, "extension"_w, "REPEAT");
    const Value interpolation = property_or(g, p, "interpolation"_w, "Linear");
    if (g.inputs.find(t) == nullptr) {
        g.declare_input(t, "texture"_w,
                        Value::map(runtime, {{"image"_w, img},
                                             {"srgb"_w, Value::boolean(runtime, false)},
                                             {"float"_w, Value::boolean(runtime, info.get("float"_w).truthy())},
                                             {"extension"_w, extension},
                                             {"interpolation"_w, interpolation}}));
    }
    const Value spec = g.inputs.find(t)->rest;
    if (!spec.at("extension"_w).equals(extension) || !spec.at("interpolation"_w).equals(interpolation)) {
        g.warn("image $0 is used with different extension / interpolation settings - Unreal uses the first",
               g.formatted(img));
    }
    return {t, spec, info};
}

bool is_data_space(const Value& colorspace) {
    return std::any_of(std::begin(DATA_SPACES), std::end(DATA_SPACES),
                       [&](Text space) { return colorspace.is(space); });
}

AlphaUse _image_alpha(const Value& info) {
    if (is_data_space(info.get("colorspace"_w))) {
        return {0, false};
    }
    const Value mode = info.get("alpha"_w);
    if (mode.is("CHANNEL_PACKED") || mode.is("NONE")) {
        return {0, false};
    }
    if (mode.is("PREMUL")) {
        return {0, true};
    }
    return {info.get("float"_w).truthy() ? 2 : 1, true};
}

}  // namespace quillgen

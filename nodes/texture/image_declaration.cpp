#include <algorithm>

#include "core/gen/choices.h"
#include "nodes/texture/image.h"

namespace quillgen {

namespace {

constexpr Text DATA_SPACES[] = {"Non-Color", "Raw", "Generic Data", "Data"};

constexpr std::size_t kMostCharacters = 32;
constexpr std::size_t kDigits = 6;

Value word_or(const Gen& g, const Value& props, Word key, Word fallback) {
    const Value word = props.get(key);
    return word.present() ? word.unshared() : Value::word(g.runtime(), fallback);
}

}  // namespace

std::string tex_input(const Runtime& runtime, const Value& image_name) {
    const std::string base = runtime.identifier(image_name.object()).substr(0, kMostCharacters);
    return "T_" + base + "_" + runtime.sha1_digits(image_name.object(), kDigits);
}

Text tex_input(Gen& g, const Value& image_name) {
    if (!image_name.is_str()) {
        return g.keep(tex_input(g.runtime(), image_name));
    }
    std::string storage;
    const Text name = image_name.text(storage);
    return g.keep(g.runtime().memory().textures.get(name, [&] { return tex_input(g.runtime(), image_name); }));
}

DeclaredImage _image_spec(Gen& g, const Node& n, const Value& img) {
    const Value p = n.props();
    const Text t = tex_input(g, img);
    const Value info = g.ir.at("images").at(img);
    const Value extension = word_or(g, p, "extension", "REPEAT");
    const Value interpolation = word_or(g, p, "interpolation", "Linear");
    const Name& name = g.input_name(t);
    const Input* input = g.inputs.find(name);
    if (input == nullptr) {
        g.textures.push_back({img, info.get("float").truthy(), extension, interpolation});
        input = &g.inputs.put({.name = &name, .kind = "texture", .texture = &g.textures.back()});
    }
    const Texture* texture = input->texture;
    if (!texture->extension.equals(extension) || !texture->interpolation.equals(interpolation)) {
        g.warn("image $0 is used with different extension / interpolation settings - Unreal uses the first"_fmt,
               g.formatted(img));
    }
    return {t, texture, info};
}

bool is_data_space(const Value& colorspace) {
    return std::any_of(std::begin(DATA_SPACES), std::end(DATA_SPACES),
                       [&](Text space) { return colorspace.is(space); });
}

AlphaUse _image_alpha(const Value& info) {
    if (is_data_space(info.get("colorspace"))) {
        return {0, false};
    }
    const Value mode = info.get("alpha");
    if (mode.is("CHANNEL_PACKED") || mode.is("NONE")) {
        return {0, false};
    }
    if (mode.is("PREMUL")) {
        return {0, true};
    }
    return {info.get("float").truthy() ? 2 : 1, true};
}

}  // namespace quillgen

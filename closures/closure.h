// The closure struct, which is the value of a shader socket in the generated HLSL, and its functions.
#pragma once

#include "core/gen/socket_type.h"

namespace quillgen {

inline constexpr ClosureText kClosureText = {"QWKClosure", "L.closure_none()"};

inline constexpr std::string_view CLOSURE =
    R"(struct QWKClosure { float3 base; float metallic; float roughness; float specular; float3 normal; float3 emission;
  float alpha; float coat; float coat_roughness; float has_normal; };)";

// Members of `struct QWK` after the library's functions, always present. Mix and add differ on purpose: a mix blends
// the fields; an addition keeps the metallic, roughness and specular of its first argument, and adds base, emission and
// alpha.
inline constexpr std::string_view CLOSURE_LIB = R"(
QWKClosure closure_none() {
  QWKClosure c; c.base = float3(0.0, 0.0, 0.0); c.metallic = 0.0; c.roughness = 0.5; c.specular = 0.5;
  c.normal = float3(0.0, 0.0, 1.0); c.emission = float3(0.0, 0.0, 0.0); c.alpha = 1.0; c.coat = 0.0; c.coat_roughness = 0.03;
  c.has_normal = 0.0; return c;
}
QWKClosure closure_emission(float3 e) { QWKClosure c = closure_none(); c.specular = 0.0; c.emission = e; return c; }
QWKClosure closure_mix(QWKClosure a, QWKClosure b, float t) {
  QWKClosure c;
  c.base = lerp(a.base, b.base, t); c.metallic = lerp(a.metallic, b.metallic, t); c.roughness = lerp(a.roughness, b.roughness, t);
  c.specular = lerp(a.specular, b.specular, t); c.emission = lerp(a.emission, b.emission, t); c.alpha = lerp(a.alpha, b.alpha, t);
  c.coat = lerp(a.coat, b.coat, t); c.coat_roughness = lerp(a.coat_roughness, b.coat_roughness, t);
  c.has_normal = max(a.has_normal, b.has_normal);
  c.normal = (a.has_normal > 0.0 && b.has_normal > 0.0) ? normalize(lerp(a.normal, b.normal, t)) : (a.has_normal > 0.0 ? a.normal : b.normal);
  return c;
}
QWKClosure closure_add(QWKClosure a, QWKClosure b) {
  QWKClosure c = a;
  c.base = a.base + b.base; c.emission = a.emission + b.emission; c.alpha = saturate(a.alpha + b.alpha);
  c.coat = max(a.coat, b.coat); c.has_normal = max(a.has_normal, b.has_normal);
  if (a.has_normal == 0.0) c.normal = b.normal;
  return c;
})";

}  // namespace quillgen

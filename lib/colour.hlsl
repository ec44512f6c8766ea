// Colour models. Components are linear and not limited to 0 to 1. The models agree with Blender to a few units in the
// last place of the largest component; srgb_to_linear3 to 1e-6 relative.

// (hue, largest, smallest component); hue is 0 to 1, red at 0, meaningless for a grey. Green and blue are sorted first,
// then red and the larger of them; the hue is relative to that of the largest component.
float3 hue_range(float3 c) {
  float2 hue = c.g < c.b ? float2(-1.0, 0.6666667) : float2(0.0, -0.33333334);
  float hi = max(c.g, c.b), lo = min(c.g, c.b);
  float top = max(c.r, hi), middle = min(c.r, hi), bottom = min(middle, lo);
  return float3(abs((c.r < hi ? hue.y : hue.x) + (middle - lo) / (6.0 * (top - bottom))), top, bottom);
}

// Hue, saturation, value. Grey, and a colour whose largest component is 0, has hue and saturation 0.
float3 rgb_to_hsv(float3 c) {
  float3 h = hue_range(c);
  float s = h.y == 0.0 ? 0.0 : (h.y - h.z) / h.y;
  return float3(s == 0.0 ? 0.0 : h.x, s, h.y);
}

// The inverse. A hue outside 0 to 1 is not wrapped but uses the last sextant. With a saturation of 0 the hue does not
// matter, not even an infinite one. `lack` is what a pure colour of this hue lacks of white. An infinite saturation
// leaves the largest component as it is.
float3 hsv_to_rgb(float3 c) {
  float h = c.y == 0.0 ? 0.0 : 6.0 * c.x;
  if (!(h >= 0.0 && h <= 6.0)) h = 5.0 + frac(h);
  float3 lack = saturate(float3(2.0 - abs(h - 3.0), abs(h - 2.0) - 1.0, abs(h - 4.0) - 1.0));
  return c.z * (1.0 - clamp(c.y, -3.402823466e+38, 3.402823466e+38) * lack);
}

// Hue, saturation, lightness; lightness at most 1. Grey has hue and saturation 0. Colours outside 0 to 1 have
// saturations outside 0 to 1, an infinite one where the largest and the smallest component sum to 0 or 2.
float3 rgb_to_hsl(float3 c) {
  float3 h = hue_range(c);
  float d = h.y - h.z, l = min((h.y + h.z) * 0.5, 1.0);
  float s = d / (l > 0.5 ? 2.0 - h.y - h.z : h.y + h.z);
  return d == 0.0 ? float3(0.0, 0.0, l) : float3(h.x, s, l);
}

// The inverse. A hue outside 0 to 1 is not wrapped: it is red.
float3 hsl_to_rgb(float3 c) {
  float h = 6.0 * c.x;
  float3 hue = saturate(float3(abs(h - 3.0) - 1.0, 2.0 - abs(h - 2.0), 2.0 - abs(h - 4.0)));
  return (hue - 0.5) * ((1.0 - abs(2.0 * c.z - 1.0)) * c.y) + c.z;
}

// One channel from the sRGB transfer curve to linear light: 0 below 0, no upper limit.
float srgb_to_linear(float x) {
  return x < 0.04045 ? max(x, 0.0) * (1.0 / 12.92) : pow(mad(x, 1.0 / 1.055, 0.055 / 1.055), 2.4);
}

// srgb_to_linear in each component.
float3 srgb_to_linear3(float3 c) {
  return float3(srgb_to_linear(c.r), srgb_to_linear(c.g), srgb_to_linear(c.b));
}

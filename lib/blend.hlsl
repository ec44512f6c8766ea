// Blends of the Mix nodes: one function for each blend_type, in lower case. t is the factor, a the first and b the
// second colour. The comments describe the result for t = 1. Results are clamped only where stated. The functions agree
// with Blender to a few units in the last place of the largest component (the four of HSV to 1e-6 of it). A mix is
// always a + t * (b - a), as Blender rounds it; lerp may be compiled to another form.

// b.
float3 mix_mix(float t, float3 a, float3 b) {
  return a + t * (b - a);
}

// The smaller in each channel.
float3 mix_darken(float t, float3 a, float3 b) {
  return a + t * (min(a, b) - a);
}

// The product.
float3 mix_multiply(float t, float3 a, float3 b) {
  return a + t * (a * b - a);
}

// One channel of mix_burn.
float burn_channel(float t, float a, float b) {
  float q = 1.0 - t + t * b;
  return q <= 0.0 ? 0.0 : saturate(1.0 - (1.0 - a) / q);
}

// 1 - (1 - a) / b, clamped to 0 to 1; 0 where the divisor is not positive.
float3 mix_burn(float t, float3 a, float3 b) {
  return float3(burn_channel(t, a.r, b.r), burn_channel(t, a.g, b.g), burn_channel(t, a.b, b.b));
}

// The larger in each channel.
float3 mix_lighten(float t, float3 a, float3 b) {
  return a + t * (max(a, b) - a);
}

// 1 - (1 - a) * (1 - b).
float3 mix_screen(float t, float3 a, float3 b) {
  return 1.0 - (1.0 - t + t * (1.0 - b)) * (1.0 - a);
}

// One channel of mix_dodge.
float dodge_channel(float t, float a, float b) {
  float q = 1.0 - t * b;
  return a == 0.0 ? a : (q <= 0.0 ? 1.0 : min(a / q, 1.0));
}

// a / (1 - b), at most 1; 1 where the divisor is not positive, but 0 for a = 0. A negative quotient is not clamped.
float3 mix_dodge(float t, float3 a, float3 b) {
  return float3(dodge_channel(t, a.r, b.r), dodge_channel(t, a.g, b.g), dodge_channel(t, a.b, b.b));
}

// The sum.
float3 mix_add(float t, float3 a, float3 b) {
  return a + t * (a + b - a);
}

// One channel of mix_overlay.
float overlay_channel(float t, float a, float b) {
  return a < 0.5 ? a * (1.0 - t + 2.0 * t * b) : 1.0 - (1.0 - t + 2.0 * t * (1.0 - b)) * (1.0 - a);
}

// mix_multiply below a = 0.5, mix_screen from there on, with b or 1 - b doubled.
float3 mix_overlay(float t, float3 a, float3 b) {
  return float3(overlay_channel(t, a.r, b.r), overlay_channel(t, a.g, b.g), overlay_channel(t, a.b, b.b));
}

// Interpolates from the product to the screen by a.
float3 mix_soft_light(float t, float3 a, float3 b) {
  return (1.0 - t) * a + t * ((1.0 - a) * b * a + a * (1.0 - (1.0 - b) * (1.0 - a)));
}

// a + (2 * b - 1).
float3 mix_linear_light(float t, float3 a, float3 b) {
  return a + t * (2.0 * b - 1.0);
}

// abs(a - b).
float3 mix_difference(float t, float3 a, float3 b) {
  return a + t * (abs(a - b) - a);
}

// a + b - 2 * a * b, not below 0.
float3 mix_exclusion(float t, float3 a, float3 b) {
  return max(a + t * (a + b - 2.0 * a * b - a), 0.0);
}

// a - b.
float3 mix_subtract(float t, float3 a, float3 b) {
  return a + t * (a - b - a);
}

// One channel of mix_divide.
float divide_channel(float t, float a, float b) {
  return b == 0.0 ? a : (1.0 - t) * a + t * a / b;
}

// a / b; a where b is 0.
float3 mix_divide(float t, float3 a, float3 b) {
  return float3(divide_channel(t, a.r, b.r), divide_channel(t, a.g, b.g), divide_channel(t, a.b, b.b));
}

// a with the hue of b, mixed in RGB; a where b is grey.
float3 mix_hue(float t, float3 a, float3 b) {
  float3 hsv = rgb_to_hsv(b);
  return hsv.y == 0.0 ? a : mix_mix(t, a, hsv_to_rgb(float3(hsv.x, rgb_to_hsv(a).yz)));
}

// a with the saturation of b, mixed in HSV; a where a is grey.
float3 mix_saturation(float t, float3 a, float3 b) {
  float3 hsv = rgb_to_hsv(a);
  float s = (1.0 - t) * hsv.y + t * rgb_to_hsv(b).y;
  return hsv.y == 0.0 ? a : hsv_to_rgb(float3(hsv.x, s, hsv.z));
}

// a's value with hue and saturation of b, mixed in RGB; a where b is grey.
float3 mix_color(float t, float3 a, float3 b) {
  float3 hsv = rgb_to_hsv(b);
  return hsv.y == 0.0 ? a : mix_mix(t, a, hsv_to_rgb(float3(hsv.xy, rgb_to_hsv(a).z)));
}

// a with the value of b, mixed in HSV. With t = 0 still a round trip through HSV, as in Blender.
float3 mix_value(float t, float3 a, float3 b) {
  float3 hsv = rgb_to_hsv(a);
  return hsv_to_rgb(float3(hsv.xy, (1.0 - t) * hsv.z + t * rgb_to_hsv(b).z));
}

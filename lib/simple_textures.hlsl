// The Gradient, Checker, Brick and Magic textures.

// Gradient, not clamped to 0 to 1. code: 0 linear, 1 quadratic, 2 easing, 3 diagonal, 4 spherical, 5 quadratic sphere,
// 6 radial (0.5 on the axis); 0 for any other. 0.999999 makes the spheres exactly 0 at a unit vector.
// Tolerance: 2e-7, radial as good as the GPU's atan2.
float tex_gradient(float3 co, int code) {
  if (code == 0) return co.x;
  if (code == 3) return (co.x + co.y) * 0.5;
  if (code == 6) return compatible_atan2(co.y, co.x) / 6.2831855 + 0.5;
  float r = max(code < 3 ? co.x : 0.999999 - length(co), 0.0);
  float t = r * r;
  if (code == 2) {
    r = min(r, 1.0);
    t = 3.0 * (r * r) - 2.0 * (r * r) * r;
  }
  return code == 4 ? r : code < 6 && code > 0 ? t : 0.0;
}

// Checker at p, already scaled: 1 in the cells whose three coordinates have an odd sum, 0 in the others. Exact.
// The nudge stops coordinates that are integers up to rounding from flickering: 0 and negative integers begin a cell,
// positive ones end one. The scaling of p, the sum and the product here must each be rounded: without `precise` a
// compiler merges the outer factor with the scale, and integers change their cells.
float tex_checker(float3 p) {
  precise float3 q = (p + 0.000001) * 0.999999;
  int3 cell = int3(floor(q));
  return float((cell.x ^ cell.y ^ cell.z) & 1);
}

// Brick at p, already scaled; z is ignored. x of the result is the tint of the brick, y the mortar, both 0 to 1. Rows
// divisible by squash_frequency have bricks `squash` times as wide, rows divisible by offset_frequency are shifted by
// `offset` of a brick; if either frequency is 0, neither applies. The tint is a hash of row and brick number, exact.
// Row and brick numbers are clamped to the range of int, which a height or a width of 0 leaves at once. Tolerance: a
// few units in the last place of p, divided by the mortar's size.
float2 tex_brick(float3 p, float mortar_size, float mortar_smooth, float bias, float brick_width, float row_height,
    float offset, int offset_frequency, float squash, int squash_frequency) {
  float row = clamp(floor(p.y / row_height), -2147483520.0, 2147483520.0);
  if (offset_frequency != 0 && squash_frequency != 0) {
    uint number = asuint(abs(int(row)));
    if (number % asuint(squash_frequency) == 0u) brick_width *= squash;
    if (number % asuint(offset_frequency) == 0u) p.x += brick_width * offset;
  }
  float brick = clamp(floor(p.x / brick_width), -2147483520.0, 2147483520.0);
  uint h = (asuint(int(row)) << 16) + (asuint(int(brick)) & 0xFFFFu);
  h = (h + 1013u) & 0x7FFFFFFFu;
  h ^= h >> 13;
  h = (h * (h * h * 60493u + 19990303u) + 1376312589u) & 0x7FFFFFFFu;
  float2 edge = p.xy - float2(brick_width, row_height) * float2(brick, row);
  edge = min(edge, float2(brick_width, row_height) - edge);
  float d = min(edge.x, edge.y);
  float mortar = d >= mortar_size ? 0.0 : 1.0;
  if (mortar_smooth != 0.0 && mortar > 0.0) {
    float f = saturate((1.0 - d / mortar_size) / mortar_smooth);
    mortar = 3.0 * (f * f) - 2.0 * (f * f) * f;
  }
  return float2(saturate(float(h) * 4.656612873077393e-10 + bias), mortar);
}

// Magic: a colour from sines nested `depth` times (0 to 10). The scaled coordinate is wrapped at 2 pi, as in Blender
// from 5.2 on; before, the unscaled one was. For large coordinates the remainder has a rounding error, and is clamped
// to that range.
// Tolerance: 1e-5, the GPU's sine at each nesting.
float3 tex_magic(float3 co, float scale, int depth, float distortion) {
  co *= scale;
  co = clamp(mad(trunc(co / 6.2831855), -6.2831855, co), -6.2831855, 6.2831855);
  float x = sin((co.x + co.y + co.z) * 5.0);
  float y = cos((-co.x + co.y - co.z) * 5.0);
  float z = -cos((-co.x - co.y + co.z) * 5.0);
  if (depth > 0) {
    x *= distortion;
    y *= distortion;
    z *= distortion;
    y = -cos(x - y + z) * distortion;
  }
  if (depth > 1) x = cos(x - y - z) * distortion;
  if (depth > 2) z = sin(-x - y - z) * distortion;
  if (depth > 3) x = -cos(-x + y - z) * distortion;
  if (depth > 4) y = -sin(-x + y + z) * distortion;
  if (depth > 5) y = -cos(-x + y + z) * distortion;
  if (depth > 6) x = cos(x + y + z) * distortion;
  if (depth > 7) z = sin(x + y - z) * distortion;
  if (depth > 8) x = -cos(-x - y + z) * distortion;
  if (depth > 9) y = -sin(x - y + z) * distortion;
  return 0.5 - (distortion == 0.0 ? float3(x, y, z) : float3(x, y, z) / (2.0 * distortion));
}

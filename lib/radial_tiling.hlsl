// Radial tiling: the plane is cut into segments around the origin, each with a coordinate along its edge of a regular
// polygon, whose corners may be rounded up to a circle.

// Number of the segment that contains p: an integer from 0, counter-clockwise from the x axis. At the borders, as
// precise as the angle. The origin has 0.
// @name radial_tiling
float calculate_out_segment_id(float sides, float2 p) {
  return floor(sides * (compatible_atan2(p.y, p.x) / 6.2831855 + (p.y < 0.0 ? 1.0 : 0.0)));
}

// (radial coordinate, coordinate along the edge, width parameter of the segment, angle of its bisector) at p. sides is
// 2 or more; if it is fractional, the last segment is narrower. roundness is 0 to 1. Unnormalised, the radial
// coordinate is 0 on the polygon and the other is a length; normalised, they are 1 on the polygon and 0 to 1 along the
// edge. The two want_ flags are not tested: everything is computed, and compilers remove what is not used. Tolerance
// against Blender: 1e-5, with many sides 1e-6 of a segment's angle.
//
// Half an edge is a straight part up to the angle half_angle - bend from the bisector, then an arc of a circle. Lengths
// along it are computed from `slope`, the tangent of that angle, and from the `bend` radians. The share `sharp` of
// those is weighted by the radial coordinate, which blends to 1 along it. The last segment is computed as a polygon of
// its own and scaled to size by `scale`; the corners beside it have their own circle.
// @name radial_tiling
float4 calculate_out_variables(bool want_coordinates, bool want_width, bool normalized, float sides, float roundness,
    float2 p) {
  p = clamp(p, -1e18, 1e18);  // the length of points farther out overflows
  float alpha = 3.1415927 / sides;
  float whole = floor(sides);
  float lambda = 3.1415927 - whole * alpha;
  float angle = compatible_atan2(p.y, p.x) + (p.y < 0.0 ? 6.2831855 : 0.0);
  float segment = floor(angle / (2.0 * alpha));
  float phi = angle - segment * (2.0 * alpha);
  float border = segment + step(alpha, phi);
  bool fractional = sides != whole;
  bool last = fractional && segment >= whole;
  // Two sides are parallel lines without corners, or else a circle: their half angle, pi / 2, has no tangent.
  bool strip = sides == 2.0 && roundness < 1.0;

  float half_angle = last ? lambda : alpha;
  float scale = last ? cos(alpha) / cos(lambda) : 1.0;
  float turn = segment * (2.0 * alpha) + half_angle;
  float from_middle = abs(half_angle - phi);
  float sharp = 1.0 - roundness;
  float slope = sides == 2.0 ? 0.0 : sharp * tan(half_angle);
  float bend = half_angle - atan(slope);
  float width = slope + bend * (sharp * (0.5 + 0.5 * scale) + roundness * scale);

  float radius = roundness;
  float2 centre = float2(slope / sin(half_angle), 0.0);
  float corner_scale = 1.0;
  if (fractional && (border == 0.0 || border >= whole)) {
    float tangent = tan(lambda);
    float end = atan(sharp * tangent);
    radius *= tangent / tan(0.5 * (alpha + lambda));
    centre = float2(cos(lambda - end), -sin(lambda - end)) / cos(end) +
      radius * float2(-cos(lambda), sin(lambda));
    if (!last) {
      bend = atan((centre.y + radius * sin(alpha)) / (centre.x + radius * cos(alpha)));
      slope = tan(alpha - bend);
      sharp = slope / tan(alpha);
      corner_scale = cos(alpha) / cos(lambda);
    }
  }

  float l = length(p);
  float h = dot(p, float2(cos(turn), sin(turn)));
  float t = abs(dot(p, float2(-sin(turn), cos(turn))));
  float norm_h = h;
  float q = sharp * bend;
  float d = from_middle - half_angle + bend;
  if (d > 0.0 && roundness > 0.0 && !strip) {
    float psi = last ? from_middle - half_angle : half_angle - from_middle;
    float u = cos(psi) * centre.x + sin(psi) * centre.y;
    float v = cos(psi) * centre.y - sin(psi) * centre.x;
    h = corner_scale * l / (u + sqrt(max(radius * radius - v * v, 0.0)));
    float x = l * rsqrt(1.0 + slope * slope);
    t = x * slope + (d < q ? x * d + 0.5 * (1.0 - x) * d * d / q : q * (0.5 * x - 0.5) + d);
    norm_h = lerp(h, x, d / bend);
  }
  if (!normalized) t *= scale;
  else if (!strip) t /= norm_h * slope + q * (0.5 * norm_h + 0.5) + bend - q;
  if (phi < half_angle) t = -t;
  if (p.x == 0.0 && p.y == 0.0) t = 0.0;
  h *= scale;
  return float4(normalized ? h : h - 1.0, normalized ? 0.5 * t + 0.5 : t, strip ? 0.0 : width, turn);
}

// Texel access, and the projections of the Image and Environment textures.

// The texel of an image of `size` texels that stands at `texel`, by the extension code: 0 repeat, 1 and 2 the nearest
// one at the edge, 3 mirror (which doubles the edge texel); any other repeats. Exact. A GPU has no integer division, so
// the quotients are of floats. The first is off by 2^9 texels at most, and its product is one of integers, which do not
// round; so near the image the second remainder is exact. The half keeps its floor clear of the quotient's rounding.
int2 wrap_texel(int2 texel, int2 size, int extension) {
  int2 wrapped = clamp(texel, 0, size - 1);
  if (extension != 1 && extension != 2) {
    float2 period = float2(size) * (extension == 3 ? 2.0 : 1.0);
    float2 turn = 1.0 / period;
    float2 i = float2(texel - int2(floor(float2(texel) * turn)) * int2(period));
    i = mad(floor(mad(i, turn, 0.5 * turn)), -period, i);
    if (extension == 3) i = min(i, period - 1.0 - i);
    wrapped = int2(i);
  }
  return wrapped;
}

// One texel of mip level 0, wrapped by the extension code (2: transparent black outside) and multiplied by alpha
// according to the association code: 0 not at all, 1 in whole bytes rounded down, as Blender does for 8-bit images
// before any filter, 2 as a plain product. The added half keeps floor clear of a GPU's inexact division. The texel is
// read without a branch, so that the reads of a filter do not wait for each other.
float4 texel_fetch_a(Texture2D tex, int2 texel, int2 size, int extension, int association) {
  int2 wrapped = wrap_texel(texel, size, extension);
  float4 t = tex.Load(int3(wrapped, 0));
  if (extension == 2 && any(wrapped != texel)) t = 0.0;
  if (association == 1) {
    float4 bytes = floor(mad(t, 255.0, 0.5));
    t.rgb = floor(mad(bytes.rgb, bytes.a / 255.0, 0.5 / 255.0)) / 255.0;
  }
  if (association == 2) t.rgb *= t.a;
  return t;
}

// Share of a in the blend of two neighbouring sides.
float box_share(float a, float b, float blend) {
  return saturate((a / (a + b) - 0.5 * (1.0 - blend)) / blend);
}

// Weights of the projections along x, y and z for the box mode; their sum is 1. `normal` is in object space, of any
// length. Each axis has a zone of its own, each pair of axes a zone where the two blend, and the corner blends all
// three. Without blending a tie goes to x, and so does a zero normal. Tolerance: a few units in the last place.
float3 box_weights(float3 normal, float blend) {
  float3 n = abs(normal);
  float sum = n.x + n.y + n.z;
  if (sum == 0.0) return float3(1.0, 0.0, 0.0);
  n *= 1.0 / sum;
  float limit = 0.5 * (1.0 + blend);
  float xy = n.x + n.y, xz = n.x + n.z, yz = n.y + n.z;
  if (n.x > limit * xy && n.x > limit * xz) return float3(1.0, 0.0, 0.0);
  if (n.y > limit * xy && n.y > limit * yz) return float3(0.0, 1.0, 0.0);
  if (n.z > limit * xz && n.z > limit * yz) return float3(0.0, 0.0, 1.0);
  if (blend <= 0.0) return float3(1.0, 0.0, 0.0);
  float3 w = ((2.0 - limit) * n + (limit - 1.0)) / (2.0 * limit - 1.0);
  if (n.z < (1.0 - limit) * xy) {
    w.x = box_share(n.x, n.y, blend);
    w.yz = float2(1.0 - w.x, 0.0);
  } else if (n.x < (1.0 - limit) * yz) {
    w.y = box_share(n.y, n.z, blend);
    w.xz = float2(0.0, 1.0 - w.y);
  } else if (n.y < (1.0 - limit) * xz) {
    w.x = box_share(n.x, n.z, blend);
    w.yz = float2(0.0, 1.0 - w.x);
  }
  return w;
}

// Angle from the z axis in radians. Blender takes the inverse cosine of z over the length, which is off by up to 3e-4
// near the poles. This is the same angle without that loss of digits, and GPUs have better inverse tangents than
// inverse cosines.
float polar_angle(float3 p) {
  return atan2(length(p.xy), p.z);
}

// UV of p (-1 to 1) on a sphere, the seam at x = 0, y < 0; (0, 0) for the origin. Tolerance: 1e-6, near the poles 1e-4.
float2 map_to_sphere(float3 p) {
  float u = (p.x == 0.0 && p.y == 0.0) ? 0.0 : 0.5 - atan2(p.x, p.y) * 0.15915494;
  return dot(p, p) == 0.0 ? float2(0.0, 0.0) : float2(u, 1.0 - polar_angle(p) * 0.31830987);
}

// UV of p (-1 to 1) on a cylinder about z; (0, 0) on the axis. Tolerance: 1e-6.
float2 map_to_tube(float3 p) {
  float u = (1.0 - atan2(p.x, p.y) / 3.1415927) * 0.5;
  return length(p.xy) > 0.0 ? float2(u, (p.z + 1.0) * 0.5) : float2(0.0, 0.0);
}

// UV of a unit direction on the image of a mirror ball, seen along +y. The centre for (0, 1, 0), which is the whole
// rim, and for zero. Tolerance: a few units in the last place, less precise near the rim.
float2 mirrorball_uv(float3 direction) {
  float m = 2.0 * sqrt(max(0.5 * (1.0 - direction.y), 0.0));
  float2 d = direction.xz;
  return 0.5 * ((m > 0.0 ? d * (1.0 / m) : d) + 1.0);
}

// UV of a direction (any length) on a latitude-longitude image: +x in the centre, u decreasing counter-clockwise, v = 1
// at the top; u = 0.5 at the poles and (0, 0) for zero. Tolerance: 1e-6, near the poles 1e-4.
float2 equirect_uv(float3 direction) {
  float2 uv = float2((compatible_atan2(direction.y, direction.x) - 3.1415927) / -6.2831855,
    (polar_angle(direction) - 3.1415927) / -3.1415927);
  return all(direction == 0.0) ? float2(0.0, 0.0) : uv;
}

// Noise textures: gradient noise of one to four dimensions and the five fractals that sum its octaves.
// Tolerance against Blender: 2e-6 up to detail 4 without distortion. Beyond that, the larger part of the error is the
// rounding of the coordinate, which every octave multiplies by the lacunarity.
// Compilers inline every call. So each texture calls its fractal at one place, and each fractal calls the noise at one
// place: octaves, colour channels and distortion components are iterations of a loop. So are the sides of a cell in y
// and z; two or four of its corners are lanes of a vector.

// Wraps a point with a coordinate of 100000 or more to where float32 resolves cells: the remainder by 100000 with the
// coordinate's sign, plus half a cell from a million on, where most coordinates are integers and the noise would be
// zero. One test of the squared length covers all coordinates; smaller coordinates do not change.
// Exact up to 2e12, with or without fused multiply-add: 409600000 = 4096 * 100000 = 2^17 * 3125, so the products of
// quotients up to 5368 have 24 bits, and the first step leaves the second quotients below 4096.
// The operator % is not used, because FXC compiles it to twice as many instructions. Infinite and NaN coordinates
// become arbitrary ones.
// @each DIM 1 2 3 4
floatDIM noise_wrapDIM(floatDIM p) {
  [branch]
  if (!(dot(p, p) < 1e10)) {
    floatDIM near = mad(trunc(p / 409600000.0), -409600000.0, p);
    p = max(mad(trunc(near / 100000.0), -100000.0, near), -100000.0) + 0.5 * step(1000000.0, abs(p));
  }
  return p;
}

// The weight of a cell's lower side, from the offset f in the cell, 0 to 1: one minus the fifth-order fade.
// @each DIM 1 2 3 4
floatDIM noise_fadeDIM(floatDIM f) {
  return mad(f * f * f, mad(f, mad(f, -6.0, 15.0), -10.0), 1.0);
}

// Twice the dot products of four corners' gradients with the offsets x, y from the corners. n holds the complements of
// the corners' hashes. Its low three bits choose one of eight gradients: +-1 along one axis, +-2 along the other.
// Each constant is a table of one component: the eight signs from bit 31 down, the eight lengths from bit 23 down.
// Shifted to bits 31 and 23 they make the float +-2 or +-4.
float4 noise_gradient2(uint4 n, float4 x, float4 y) {
  n &= 7u;
  float4 a = asfloat((((uint4)0xCAF00000u << n) & 0x80800000u) | 0x40000000u);
  float4 b = asfloat((((uint4)0xAC0F0000u << n) & 0x80800000u) | 0x40000000u);
  return mad(a, x, b * y);
}

// The same for two corners, with one of sixteen gradients: +-1 along two of three axes. The tables have two bits for
// each gradient: 1 makes the float 2, 3 makes -2, and 0 makes 0.
float2 noise_gradient3(uint2 n, float2 x, float y, float z) {
  n = (n << 1) & 31u;
  float2 g = asfloat(((uint2)0xC4F5F500u << n) & 0xC0000000u) * z;
  g = mad(asfloat(((uint2)0xDDDD00F5u << n) & 0xC0000000u), y, g);
  return mad(asfloat(((uint2)0x3100DDDDu << n) & 0xC0000000u), x, g);
}

// Selects per lane: a where n is above the limit, else b. Written out because HLSL 2018 and 2021 have different syntax
// for a select on vectors.
float4 noise_above(uint4 n, uint limit, float4 a, float4 b) {
  return float4(n.x > limit ? a.x : b.x, n.y > limit ? a.y : b.y, n.z > limit ? a.z : b.z, n.w > limit ? a.w : b.w);
}

// The same for the corners of a square in x and w, with one of 32 gradients, +-1 along three of four axes, and negated.
// Bits 3 and 4 of n select the axis that is left out, the other bits are signs; all are complemented. x and w are the
// offsets from the lower corner. Those from the others are computed where they are used: held longer, they take
// registers where a GPU has the fewest left.
float4 noise_gradient4(uint4 n, float x, float y, float z, float w) {
  n &= 31u;
  float4 g = asfloat(((n << 29) & 0x80000000u) | 0x40000000u) *
    noise_above(n, 23u, (float4)z, w - float4(0.0, 0.0, 1.0, 1.0));
  g = mad(asfloat((n << 30) | 0x40000000u), noise_above(n, 15u, (float4)y, (float4)z), g);
  return mad(asfloat((n << 31) | 0x40000000u), noise_above(n, 7u, x - float4(0.0, 1.0, 0.0, 1.0), (float4)y), g);
}

// Gradient noise of a point, about -1 to 1; 0 where all coordinates are integers. The hash of a corner is the word hash
// of its cell coordinates. The last factor scales the noise of each dimension to that range; it also halves products
// that are doubled.
float noise_signed1(float p) {
  p = noise_wrap1(p);
  float2 f = float2(frac(p), frac(p) - 1.0);
  uint2 h = hash_final(0xDEADBF00u + asuint(int(floor(p))) + uint4(0u, 1u, 0u, 1u), 0xDEADBF00u, 0xDEADBF00u).xy;
  float2 g = asfloat(asuint(float2(1u + (h & 7u)) * f) ^ ((h & 8u) << 28));
  return 0.25 * lerp(g.y, g.x, noise_fade1(f.x));
}

// In 2D to 4D, two or four corners are computed side by side as lanes of a vector. Lanes are independent, so a GPU
// overlaps their latencies, while the iterations of a loop wait for each other. But each lane takes registers, which
// limit the number of waves (occupancy), and compile time in FXC. In 3D, four lanes instead of two take 3 % fewer
// cycles, 48 registers instead of 32, and a fifth more of FXC's time.

// Bilinear interpolation of the values at a square's corners, in the order (0, 0), (1, 0), (0, 1), (1, 1); v is the
// weight of the lower side.
float noise_between(float4 g, float2 v) {
  float2 row = lerp(g.yw, g.xz, v.x);
  return lerp(row.y, row.x, v.y);
}

float noise_signed2(float2 p) {
  p = noise_wrap2(p);
  float2 f = frac(p);
  uint2 k = 0xDEADBF04u + asuint(int2(floor(p)));
  uint4 b = k.y + uint4(0u, 0u, 1u, 1u);
  uint4 n = hash_last4(k.x + uint4(0u, 1u, 0u, 1u), b, (~0xDEADBF04u ^ b) + hash_rotate4(b, 14u));
  float4 g = noise_gradient2(n, f.x - float4(0.0, 1.0, 0.0, 1.0), f.y - float4(0.0, 0.0, 1.0, 1.0));
  return 0.3308 * noise_between(g, noise_fade2(f));
}

// The y and z of a side of the cell, 0 or 1 each: the two bits of the loop counter `side`, 0 to 3. A GPU multiplies by
// the bits of 1.0 once for all pixels, but converts to float for each pixel.
float2 noise_side(uint side) {
  return asfloat(uint2(side & 1u, side >> 1) * 0x3F800000u);
}

// The lanes are the two corners along x.
float noise_signed3(float3 p) {
  p = noise_wrap3(p);
  float3 f = frac(p);
  float3 v = noise_fade3(f);
  uint3 k = 0xDEADBF08u + asuint(int3(floor(p)));
  float2 x = f.x - float2(0.0, 1.0);
  uint2 a = k.x + uint2(0u, 1u);
  uint c = ~k.z;
  float sum = 0.0;
  [loop] [fastopt]
  for (uint side = 0u; side < 4u; side++) {
    uint2 b = k.y + (side & 1u);
    uint2 n = hash_last2(a, b, ((c - (side >> 1)) ^ b) + hash_rotate2(b, 14u));
    float2 at = noise_side(side);
    float2 e = f.yz - at;
    float2 w = v.yz - at;
    float2 g = noise_gradient3(n, x, e.x, e.y);
    sum = mad(abs(w.x * w.y), lerp(g.y, g.x, v.x), sum);
  }
  return 0.491 * sum;
}

// The lanes are the corners of the square in x and w: lanes that differ in w share the mixing of the other three
// coordinates. k has the words of the lowest corner, the first less the third, as hash_mix takes it.
float noise_signed4(float4 p) {
  p = noise_wrap4(p);
  float4 f = frac(p);
  float4 v = noise_fade4(f);
  uint4 k = asuint(int4(floor(p)));
  k.x -= k.z;
  k.yz += 0xDEADBF0Cu;
  float sum = 0.0;
  [loop] [fastopt]
  for (uint side = 0u; side < 4u; side++) {
    uint4 a = k.x - (side >> 1) + uint4(0u, 1u, 0u, 1u);
    uint4 b = k.y + (side & 1u);
    uint4 c = k.z + (side >> 1);
    hash_mix(a, b, c);
    uint4 n = hash_last4(a + k.w + uint4(0u, 0u, 1u, 1u), b, (~c ^ b) + hash_rotate4(b, 14u));
    float2 at = noise_side(side);
    float2 e = f.yz - at;
    float g = noise_between(noise_gradient4(n, f.x, e.x, e.y, f.w), v.xw);
    float2 u = v.yz - at;
    sum = mad(abs(u.x * u.y), g, sum);
  }
  return -0.4172 * sum;
}

// The fractals sum octaves: a first one and `more` after it, never above 15, whatever `detail` is. If `detail` is not
// an integer, the last one is weighted by the rest of `detail` (a fractional octave). Octaves are counted in integers,
// which a GPU keeps once for all pixels. The loops test at their start: with a test at the end, Mesa's CPU driver gives
// all lanes the last octave of the lane that runs longest. [fastopt] stops FXC from simulating the iterations at
// compile time.
// plain: the noise of the last octave before any weighting. plain_only: the first octave is the last one, and the value
// is meaningless. A detail of 0 would do the same, but what follows from a constant detail is constant.

// The sums of the octaves' weights, with the last one and without it. The loop over the noise does not add them up:
// they would take registers there, and the sums of constant weights are constants. The 1e-30 keeps quotients by the
// second sum finite where there is one octave, and where the weights sum to 0, as with a roughness of -1.
float2 noise_weights(uint more, float roughness) {
  float sum = 0.0;
  float weight = 1.0;
  for (uint octave = 0u; octave < min(more, 15u); octave++) {
    sum += weight;
    weight *= roughness;
  }
  return float2(sum + weight, sum + 1e-30);
}

// The sum of octaves whose amplitude is multiplied by `roughness`; normalize scales it to 0 to 1. The second components
// are one octave behind: a fractional octave interpolates between the two results.
// This fractal multiplies the scale, the others multiply the point, each as in Blender: the two round differently.
// @each DIM 1 2 3 4
float noise_fractalDIM_FBM(floatDIM p, bool plain_only, float detail, float roughness, float lacunarity, float offset,
    float gain, float normalize, out float plain) {
  detail = clamp(detail, 0.0, 15.0);
  uint more = uint(ceil(detail));
  float scale = 1.0;
  float weight = 1.0;
  float2 sum = 0.0;
  plain = 0.0;
  [loop] [fastopt]
  for (uint octave = 0u; octave <= (plain_only ? 0u : more); octave++) {
    plain = noise_signedDIM(p * scale);
    sum = float2(mad(plain, weight, sum.x), sum.x);
    weight *= roughness;
    scale *= lacunarity;
  }
  if (normalize != 0.0) sum /= noise_weights(more, roughness);
  sum.x = lerp(sum.x, sum.y, ceil(detail) - detail);
  return normalize != 0.0 ? mad(sum.x, 0.5, 0.5) : sum.x;
}

// The product of octaves around 1.
// @each DIM 1 2 3 4
float noise_fractalDIM_MULTIFRACTAL(floatDIM p, bool plain_only, float detail, float roughness, float lacunarity,
    float offset, float gain, float normalize, out float plain) {
  detail = clamp(detail, 0.0, 15.0);
  uint more = uint(ceil(detail));
  float weight = 1.0;
  float value = 1.0;
  plain = 0.0;
  [loop] [fastopt]
  for (uint octave = 0u; octave <= (plain_only ? 0u : more); octave++) {
    plain = noise_signedDIM(p);
    float share = min(detail - (float(octave) - 1.0), 1.0);
    value *= share * weight * plain + 1.0;
    weight *= roughness;
    p *= lacunarity;
  }
  return value;
}

// A sum in which each octave is weighted by `carry`, the signal that the octaves before it left. A signal of 0.001 or
// less ends it.
// @each DIM 1 2 3 4
float noise_fractalDIM_HYBRID_MULTIFRACTAL(floatDIM p, bool plain_only, float detail, float roughness, float lacunarity,
    float offset, float gain, float normalize, out float plain) {
  detail = clamp(detail, 0.0, 15.0);
  uint more = uint(ceil(detail));
  float weight = 1.0;
  float carry = 1.0;
  float value = 0.0;
  plain = 0.0;
  [loop] [fastopt]
  for (uint octave = 0u; octave <= (plain_only ? 0u : more) && carry > 0.001; octave++) {
    plain = noise_signedDIM(p);
    float share = min(detail - (float(octave) - 1.0), 1.0);
    float signal = (plain + offset) * weight;
    carry = min(carry, 1.0);
    value += share * carry * signal;
    carry *= gain * signal;
    weight *= roughness;
    p *= lacunarity;
  }
  return value;
}

// Ridges where the noise is 0, each octave weighted by the one before. It has no fractional octave.
// @each DIM 1 2 3 4
float noise_fractalDIM_RIDGED_MULTIFRACTAL(floatDIM p, bool plain_only, float detail, float roughness, float lacunarity,
    float offset, float gain, float normalize, out float plain) {
  uint more = uint(clamp(detail, 0.0, 15.0));
  float weight = 1.0;
  float carry = 1.0;
  float value = 0.0;
  plain = 0.0;
  [loop] [fastopt]
  for (uint octave = 0u; octave <= (plain_only ? 0u : more); octave++) {
    plain = noise_signedDIM(p);
    float ridge = offset - abs(plain);
    ridge *= ridge;
    ridge *= carry;
    carry = saturate(ridge * gain);
    value += ridge * weight;
    weight *= roughness;
    p *= lacunarity;
  }
  return value;
}

// A sum in which each octave is multiplied by the height so far.
// @each DIM 1 2 3 4
float noise_fractalDIM_HETERO_TERRAIN(floatDIM p, bool plain_only, float detail, float roughness, float lacunarity,
    float offset, float gain, float normalize, out float plain) {
  detail = clamp(detail, 0.0, 15.0);
  uint more = uint(ceil(detail));
  float weight = 1.0;
  float value = 0.0;
  plain = 0.0;
  [loop] [fastopt]
  for (uint octave = 0u; octave <= (plain_only ? 0u : more); octave++) {
    plain = noise_signedDIM(p);
    float share = min(detail - (float(octave) - 1.0), 1.0);
    float height = (plain + offset) * weight;
    value += octave == 0u ? height : share * height * value;
    weight *= roughness;
    p *= lacunarity;
  }
  return value;
}

// Offsets of the point for the components of the distortion and for the second and third channel of the colour: 100 to
// 200, which decorrelates them from the value. Row s, column j is 100 + 100 * hash_float2_to_float(s, j), rounded once
// as in Blender from 5.1 on; in one dimension it is 100 + 100 * hash_float_to_float(s). These are conditional
// expressions, because an array costs memory at each use, on typed values, because a choice between plain literals
// loses digits in one of DXC's two targets.
float noise_offset1(int s) {
  float3 o = float3(158.24258, 114.83605, 188.4887);
  return s == 0 ? o.x : s == 1 ? o.y : o.z;
}

float4 noise_offset(int s) {
  return s == 0 ? float4(186.03128, 114.955956, 154.447495, 142.50491) :
    s == 1 ? float4(199.84, 162.292587, 154.04823, 142.267593) :
    s == 2 ? float4(111.63384, 157.3694, 199.0881, 178.436142) :
    s == 3 ? float4(165.44528, 162.76822, 193.408401, 145.25551) :
    s == 4 ? float4(155.58092, 177.15463, 138.14003, 180.18573) :
    float4(188.85379, 132.67769, 162.05215, 185.26816);
}

// @each DIM 2 3 4
floatDIM noise_offsetDIM(int s) {
  return (floatDIM)noise_offset(s);
}

// The offset of a component of the distortion: -1 for the first. Cases that DIM excludes are folded away.
// @each DIM 1 2 3 4
floatDIM noise_distortion_offsetDIM(int component) {
  return DIM == 1 || component == -1 ? noise_offsetDIM(0) : DIM == 2 || component == -2 ? noise_offsetDIM(1) :
    DIM == 3 || component == -3 ? noise_offsetDIM(2) : noise_offsetDIM(3);
}

// A noise texture at co, already scaled: detail 0 to 15, roughness not negative, the rest unlimited; normalize and
// want_colour are 1.0 or 0.0. Returns the value; colour is the value and two more channels if it is wanted, else 0.
// Parts below 0 are the components of the distortion, part 0 is the value, 1 and 2 are the other channels. `found` has
// the results of the last four parts, the latest first; the components are computed from the last to the first, so that
// part 0 finds each at its place. If only the value is wanted, no part is above 0: the test of the distortion is left
// out, as it costs where that is a live parameter.
// Compilers keep a loop marked [loop] even if it has one iteration. The test at the end removes it if only the value is
// wanted, without distortion: the parts are constants then.
// @each DIM 1 2 3 4
// @each TYPE FBM MULTIFRACTAL HYBRID_MULTIFRACTAL RIDGED_MULTIFRACTAL HETERO_TERRAIN
float noise_textureDIM_TYPE(floatDIM co, float detail, float roughness, float lacunarity, float offset, float gain,
    float distortion, float normalize, float want_colour, out float3 colour) {
  float4 found = 0.0;
  float plain = 0.0;
  int part = distortion != 0.0 ? -DIM : 0;
  int last = want_colour != 0.0 ? 2 : 0;
  [loop] [fastopt]
  while (true) {
    floatDIM p = co;
    if (want_colour == 0.0 || (distortion != 0.0 && part <= 0))
      p += part < 0 ? noise_distortion_offsetDIM(part) : (floatDIM)found;
    if (want_colour != 0.0 && part == 0) co = p;
    if (want_colour != 0.0 && part > 0) p += part == 1 ? noise_offsetDIM(DIM) : noise_offsetDIM(DIM + 1);
    bool plain_only = distortion != 0.0 && part < 0;  // a constant without distortion
    float value = noise_fractalDIM_TYPE(p, plain_only, detail, roughness, lacunarity, offset, gain, normalize, plain);
    found = float4(part < 0 ? distortion * plain : value, found.xyz);
    if (part == last) break;
    part++;
  }
  colour = want_colour != 0.0 ? found.zyx : (float3)0.0;
  return want_colour != 0.0 ? found.z : found.x;
}

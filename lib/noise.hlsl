// Noise textures: gradient noise of one to four dimensions and the five fractals that sum its octaves.
// Tolerance against Blender: 2e-6 up to detail 4 without distortion; the rounding of the coordinate, which every
// octave multiplies by the lacunarity, is the larger part beyond that.
// Everything is inlined where it is called, so each texture calls its fractal at one place and a fractal calls the
// noise at one place: what differs between octaves, colour channels and components is data of a loop. So are the sides
// of a cell in y and z; two or four of its corners are taken side by side.

// A point brought to where float32 resolves cells, where one of its coordinates is 100000 or more: the remainder by
// 100000 with its sign, and half a cell more from a million on, where most coordinates are integers and the noise would
// be zero. The squared length is one test for all; a smaller coordinate that comes along stays as it is.
// Exact up to 2e12, fused or not: 409600000 = 4096 * 100000 = 2^17 * 3125, so the products of quotients up to 5368 have
// 24 bits, and the first step leaves the second quotients below 4096.
// Not the operator %, which FXC makes twice as many instructions of. What is infinite or no number ends up somewhere.
// @each DIM 1 2 3 4
floatDIM noise_wrapDIM(floatDIM p) {
  [branch]
  if (!(dot(p, p) < 1e10)) {
    floatDIM near = mad(trunc(p / 409600000.0), -409600000.0, p);
    p = max(mad(trunc(near / 100000.0), -100000.0, near), -100000.0) + 0.5 * step(1000000.0, abs(p));
  }
  return p;
}

// The weight of a cell's lower side, from the offset f in the cell, 0 to 1: one minus the fade of the fifth order.
// @each DIM 1 2 3 4
floatDIM noise_fadeDIM(floatDIM f) {
  return mad(f * f * f, mad(f, mad(f, -6.0, 15.0), -10.0), 1.0);
}

// Twice the products of four corners' gradients and the offsets x, y from the corners; n are the complements of the
// corners' hashes. The gradient is one of eight, chosen by the low bits of n: +-1 along one axis, +-2 along the other.
// Each table word holds a component: the eight signs from bit 31 down, the eight lengths from bit 23 down. Brought to
// bits 31 and 23 they make the float +-2 or +-4.
float4 noise_gradient2(uint4 n, float4 x, float4 y) {
  n &= 7u;
  float4 a = asfloat((((uint4)0xCAF00000u << n) & 0x80800000u) | 0x40000000u);
  float4 b = asfloat((((uint4)0xAC0F0000u << n) & 0x80800000u) | 0x40000000u);
  return mad(a, x, b * y);
}

// The same for two corners, with one of sixteen gradients: +-1 along two of three axes. Two bits for each: 1 makes the
// float 2, 3 makes -2, and 0 makes 0.
float2 noise_gradient3(uint2 n, float2 x, float y, float z) {
  n = (n << 1) & 31u;
  float2 g = asfloat(((uint2)0xC4F5F500u << n) & 0xC0000000u) * z;
  g = mad(asfloat(((uint2)0xDDDD00F5u << n) & 0xC0000000u), y, g);
  return mad(asfloat(((uint2)0x3100DDDDu << n) & 0xC0000000u), x, g);
}

// A component of each lane: a where its number is above the limit, else b. A choice by vectors is written in different
// ways in HLSL 2018 and 2021.
float4 noise_above(uint4 n, uint limit, float4 a, float4 b) {
  return float4(n.x > limit ? a.x : b.x, n.y > limit ? a.y : b.y, n.z > limit ? a.z : b.z, n.w > limit ? a.w : b.w);
}

// The same for four corners, with one of 32 gradients, +-1 along three of four axes, and the other sign: bits 3 and 4
// leave one axis out, the others are signs, all complements.
float4 noise_gradient4(uint4 n, float4 x, float y, float z, float4 w) {
  n &= 31u;
  float4 g = asfloat(((n << 29) & 0x80000000u) | 0x40000000u) * noise_above(n, 23u, (float4)z, w);
  g = mad(asfloat((n << 30) | 0x40000000u), noise_above(n, 15u, (float4)y, (float4)z), g);
  return mad(asfloat((n << 31) | 0x40000000u), noise_above(n, 7u, x, (float4)y), g);
}

// Gradient noise of a point, about -1 to 1; 0 where all coordinates are integers. The hash of a corner is the word
// hash of its cell's numbers. The last factor brings the noise of each dimension to that range; it halves doubled
// products.
float noise_signed1(float p) {
  p = noise_wrap1(p);
  float2 f = float2(frac(p), frac(p) - 1.0);
  uint2 h = hash_final(0xDEADBF00u + asuint(int(floor(p))) + uint4(0u, 1u, 0u, 1u), 0xDEADBF00u, 0xDEADBF00u).xy;
  float2 g = asfloat(asuint(float2(1u + (h & 7u)) * f) ^ ((h & 8u) << 28));
  return 0.25 * lerp(g.y, g.x, noise_fade1(f.x));
}

// In more dimensions two or four corners are taken side by side, as lanes of a vector: a GPU that waits for one lane's
// step does another's meanwhile, where the turns of a loop wait for each other. But each lane takes registers, of which
// the number of waves depends, and time of FXC. With four lanes instead of two, noise in 3D takes 3 % fewer cycles, 48
// registers instead of 32, and a fifth more of FXC's time.

// A square's value between its corners' four, in the order (0, 0), (1, 0), (0, 1), (1, 1); v is the weight of the lower
// side.
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

// Where a side of the cell is in y and z, 0 or 1 each: the two bits of `side`, 0 to 3, which is the turn of a loop. A
// product with the bits of 1.0 is made once for all pixels, where a GPU's conversion to float is made for each.
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

// The lanes are the square's corners in x and w: those that differ in w share the mixing of the other three numbers.
float noise_signed4(float4 p) {
  p = noise_wrap4(p);
  float4 f = frac(p);
  float4 v = noise_fade4(f);
  uint4 k = asuint(int4(floor(p)));
  k.xyz += 0xDEADBF0Cu;
  float4 x = f.x - float4(0.0, 1.0, 0.0, 1.0);
  float4 w = f.w - float4(0.0, 0.0, 1.0, 1.0);
  float sum = 0.0;
  [loop] [fastopt]
  for (uint side = 0u; side < 4u; side++) {
    uint4 a = k.x + uint4(0u, 1u, 0u, 1u);
    uint4 b = k.y + (side & 1u);
    uint4 c = k.z + (side >> 1);
    hash_mix(a, b, c);
    uint4 n = hash_last4(a + k.w + uint4(0u, 0u, 1u, 1u), b, (~c ^ b) + hash_rotate4(b, 14u));
    float2 at = noise_side(side);
    float2 e = f.yz - at;
    float2 u = v.yz - at;
    sum = mad(abs(u.x * u.y), noise_between(noise_gradient4(n, x, e.x, e.y, w), v.xw), sum);
  }
  return -0.4172 * sum;
}

// The fractals. Octaves are counted by how much of `detail` is done when one begins: -1 at the first, which is always
// there. The last counts for as much as remains, below 1 where `detail` is no integer. The loops test at their head:
// with a test at the foot, Mesa's CPU driver gives the last octave of the longest lane to all. None goes on beyond the
// 16 octaves that Blender has at most, whatever number it is given.
// plain: the noise alone of the last octave, which with detail 0 is the only one.

// The sum of octaves whose amplitude changes by `roughness`; normalize brings it to 0 to 1. The second components are
// those of one octave earlier: a fractional octave mixes the two results.
// What is left of `detail` when an octave begins is told as 1 for the first, so that the compiler knows there is one;
// the 1e-30 keeps the quotient of the octaves before the last finite, where there are none and where their weights add
// up to 0, as a roughness of -1 makes them: nothing is taken of it unless the last is a broken one.
// Here the scale grows and the point stays, where the other fractals multiply the point again and again: Blender does
// so, and the two round differently.
// @each DIM 1 2 3 4
float noise_fractalDIM_FBM(floatDIM p, float detail, float roughness, float lacunarity, float offset, float gain,
    float normalize, out float plain) {
  float scale = 1.0;
  float weight = 1.0;
  float2 weights = 0.0;
  float2 sum = 0.0;
  float left = 1.0;
  float next = min(detail, 15.0);
  plain = 0.0;
  [loop]
  while (left > 0.0) {
    plain = noise_signedDIM(p * scale);
    sum = float2(mad(plain, weight, sum.x), sum.x);
    weights = float2(weights.x + weight, weights.x);
    weight *= roughness;
    scale *= lacunarity;
    left = next;
    next -= 1.0;
  }
  if (normalize != 0.0) sum /= float2(weights.x, weights.y + 1e-30);
  float value = mad(left, sum.x - sum.y, sum.x);
  return normalize != 0.0 ? mad(value, 0.5, 0.5) : value;
}

// The product of octaves around 1.
// @each DIM 1 2 3 4
float noise_fractalDIM_MULTIFRACTAL(floatDIM p, float detail, float roughness, float lacunarity, float offset,
    float gain, float normalize, out float plain) {
  detail = min(detail, 15.0);
  float weight = 1.0;
  float value = 1.0;
  plain = 0.0;
  [loop]
  for (float done = -1.0; done < detail; done += 1.0) {
    plain = noise_signedDIM(p);
    value *= min(detail - done, 1.0) * weight * plain + 1.0;
    weight *= roughness;
    p *= lacunarity;
  }
  return value;
}

// A sum in which each octave counts as far as the ones before it left a signal. A negative signal ends it.
// @each DIM 1 2 3 4
float noise_fractalDIM_HYBRID_MULTIFRACTAL(floatDIM p, float detail, float roughness, float lacunarity, float offset,
    float gain, float normalize, out float plain) {
  detail = min(detail, 15.0);
  float weight = 1.0;
  float carry = 1.0;
  float value = 0.0;
  plain = 0.0;
  [loop]
  for (float done = -1.0; done < detail && carry > 0.001; done += 1.0) {
    plain = noise_signedDIM(p);
    float octave = (plain + offset) * weight;
    carry = min(carry, 1.0);
    value += min(detail - done, 1.0) * carry * octave;
    carry *= gain * octave;
    weight *= roughness;
    p *= lacunarity;
  }
  return value;
}

// Ridges where the noise is 0, each octave weighted by the one before. It has no fractional octave.
// @each DIM 1 2 3 4
float noise_fractalDIM_RIDGED_MULTIFRACTAL(floatDIM p, float detail, float roughness, float lacunarity, float offset,
    float gain, float normalize, out float plain) {
  detail = min(detail, 15.0);
  float weight = 1.0;
  float carry = 1.0;
  float value = 0.0;
  plain = 0.0;
  [loop]
  for (float done = -1.0; done < floor(detail); done += 1.0) {
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
float noise_fractalDIM_HETERO_TERRAIN(floatDIM p, float detail, float roughness, float lacunarity, float offset,
    float gain, float normalize, out float plain) {
  detail = min(detail, 15.0);
  float weight = 1.0;
  float value = 0.0;
  plain = 0.0;
  [loop]
  for (float done = -1.0; done < detail; done += 1.0) {
    plain = noise_signedDIM(p);
    float octave = (plain + offset) * weight;
    value += done < 0.0 ? octave : min(detail - done, 1.0) * octave * value;
    weight *= roughness;
    p *= lacunarity;
  }
  return value;
}

// Where the noise is read for the components of the distortion and for the second and third channel of the colour:
// offsets in 100 to 200 that keep them apart from the value. Row s, column j is 100 + 100 * hash_float2_to_float(s,
// j), rounded once as Blender does from 5.1 on, in one dimension 100 + 100 * hash_float_to_float(s). Choices, as an
// array costs memory at each use; and typed values, as a choice of plain literals loses digits in one of the two
// targets of the compiler.
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

// Where a turn of the texture below reads the noise, from the point. Choices that `turn` cannot meet fall away.
// @each DIM 1 2 3 4
floatDIM noise_turnDIM(int turn, floatDIM moved) {
  return turn == -1 ? noise_offsetDIM(0) : DIM > 1 && turn == -2 ? noise_offsetDIM(1) :
    DIM > 2 && turn == -3 ? noise_offsetDIM(2) : DIM > 3 && turn == -4 ? noise_offsetDIM(3) : moved;
}

// A noise texture at co, already scaled: detail 0 to 15, roughness not negative, the rest unlimited; normalize and
// want_colour are 1.0 or 0.0. Gives the value; colour becomes the value and two more channels where it is wanted,
// else 0.
// Turns below 0 make the components of the distortion, the last one first, so that each pushes the others to its
// place; turn 0 makes the value and turns 1 and 2 the other channels.
// Compilers keep a loop that the text says to keep, be it of one turn: the break leaves its counter and test out where
// the value is all that is wanted. fastopt keeps FXC from playing the turns through.
// @each DIM 1 2 3 4
// @each TYPE FBM MULTIFRACTAL HYBRID_MULTIFRACTAL RIDGED_MULTIFRACTAL HETERO_TERRAIN
float noise_textureDIM_TYPE(floatDIM co, float detail, float roughness, float lacunarity, float offset, float gain,
    float distortion, float normalize, float want_colour, out float3 colour) {
  float4 moved = 0.0;
  float plain = 0.0;
  float value = 0.0;
  colour = 0.0;
  int turn = distortion != 0.0 ? -DIM : 0;
  int last = want_colour != 0.0 ? 2 : 0;
  [loop] [fastopt]
  while (turn <= last) {
    floatDIM p = co + noise_turnDIM(turn, (floatDIM)moved);
    if (want_colour != 0.0 && turn > 0) p += turn == 1 ? noise_offsetDIM(DIM) : noise_offsetDIM(DIM + 1);
    value = noise_fractalDIM_TYPE(p, turn < 0 ? 0.0 : detail, roughness, lacunarity, offset, gain, normalize, plain);
    if (want_colour == 0.0 || turn < 0) moved = float4(distortion * plain, moved.xyz);
    if (want_colour != 0.0) colour = float3(colour.yz, value);
    if (distortion == 0.0 && want_colour == 0.0) break;
    turn++;
  }
  return want_colour != 0.0 ? colour.x : value;
}

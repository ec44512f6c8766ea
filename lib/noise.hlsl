// Noise textures: gradient noise of one to four dimensions and the five fractals that sum its octaves.
// Tolerance against Blender: 2e-6 up to detail 4 without distortion; the rounding of the coordinate, which every
// octave multiplies by the lacunarity, is the larger part beyond that.
// Everything is inlined where it is called, so each texture calls its fractal at one place and a fractal calls the
// noise at one place: what differs between octaves, colour channels and components is data of a loop.

// A point brought to where float32 resolves cells: the remainder by 100000 with the sign of the coordinate, and half
// a cell more from a million on, where most coordinates are integers and the noise would be zero.
// Exact up to 2e12, the quotients too, though they are products: the first step leaves what the second can take
// without rounding (409600000 = 4096 * 100000). As mad() the differences also stay ahead of the half in a compiler
// that may regroup sums.
// @each DIM 1 2 3 4
floatDIM noise_wrapDIM(floatDIM p) {
  [branch]
  if (any(abs(p) >= 100000.0)) {
    floatDIM moved = 0.5 * step(1000000.0, abs(p));
    p = mad(trunc(p * 2.44140625e-9), -409600000.0, p);
    p = mad(trunc(p * 1e-5), -100000.0, p);
    p += moved;
  }
  return p;
}

// The weight of a cell's upper side, from the offset f in the cell, 0 to 1.
// @each DIM 1 2 3 4
floatDIM noise_fadeDIM(floatDIM f) {
  return f * f * f * (f * (f * 6.0 - 15.0) + 10.0);
}

// Twice the product of a corner's gradient and the offset from the corner. The gradient is one of eight, chosen by
// the low bits of h: +-1 along one axis, +-2 along the other. Each table word holds a component: the eight signs from
// bit 31 down, the eight lengths from bit 23 down. Brought to bits 31 and 23 they make the float +-2 or +-4.
float noise_gradient2(uint h, float2 f) {
  return dot(asfloat(((uint2(0x530F0000u, 0x35F00000u) << (h & 7u)) & 0x80800000u) | 0x40000000u), f);
}

// The same with one of sixteen gradients: +-1 along two of three axes. Two bits for each: 1 makes the float 2, 3
// makes -2, and 0 makes 0.
float noise_gradient3(uint h, float3 f) {
  return dot(asfloat((uint3(0x7777004Cu, 0x5F007777u, 0x005F5F13u) << ((h & 15u) << 1)) & 0xC0000000u), f);
}

// The same with one of 32 gradients: +-1 along three of four axes. Bits 3 and 4 leave one axis out, the others are
// signs.
float noise_gradient4(uint h, float4 f) {
  uint s = h & 31u;
  float3 a = float3(s < 24u ? f.x : f.y, s < 16u ? f.y : f.z, s < 8u ? f.z : f.w);
  return dot(asfloat((uint3(h << 31, h << 30, h << 29) & 0x80000000u) | 0x40000000u), a);
}

// The four corners of a cell in x and y, whose hashes are h (x changes first), summed with the weights w.
// @each DIM 2 3 4
float noise_faceDIM(uint4 h, floatDIM f, float4 w) {
  floatDIM e = f;
  float4 g = 0.0;
  g.x = noise_gradientDIM(h.x, e);
  e.x = f.x - 1.0;
  g.y = noise_gradientDIM(h.y, e);
  e.y = f.y - 1.0;
  g.w = noise_gradientDIM(h.w, e);
  e.x = f.x;
  g.z = noise_gradientDIM(h.z, e);
  return dot(g, w);
}

// The weights of those four corners.
float4 noise_face_weights(float2 u) {
  return float4(1.0 - u.x, u.x, 1.0 - u.x, u.x) * float4(1.0 - u.yy, u.yy);
}

// Gradient noise of a point, about -1 to 1; 0 where all coordinates are integers. The hash of a corner is the word
// hash of its cell's numbers. The last factor brings the noise of each dimension to that range; it halves doubled
// products.
float noise_signed1(float p) {
  p = noise_wrap1(p);
  float2 f = float2(frac(p), frac(p) - 1.0);
  uint2 h = hash_final(0xDEADBF00u + asuint(int(floor(p))) + uint4(0u, 1u, 0u, 1u), 0xDEADBF00u, 0xDEADBF00u).xy;
  float2 g = asfloat(asuint(float2(1u + (h & 7u)) * f) ^ ((h & 8u) << 28));
  return 0.25 * lerp(g.x, g.y, noise_fade1(f.x));
}

float noise_signed2(float2 p) {
  p = noise_wrap2(p);
  float2 f = frac(p);
  uint2 k = 0xDEADBF04u + asuint(int2(floor(p)));
  uint4 h = hash_final(k.x + uint4(0u, 1u, 0u, 1u), k.y + uint4(0u, 0u, 1u, 1u), 0xDEADBF04u);
  return 0.3308 * noise_face2(h, f, noise_face_weights(noise_fade2(f)));
}

// The two sides in z are two turns of a loop, at half the code and the same work: they share no step of the hash.
float noise_signed3(float3 p) {
  p = noise_wrap3(p);
  float3 f = frac(p);
  float3 u = noise_fade3(f);
  float4 w = noise_face_weights(u.xy);
  uint3 k = 0xDEADBF08u + asuint(int3(floor(p)));
  float weight = 1.0 - u.z;
  float sum = 0.0;
  [loop]
  for (uint z = 0u; z < 2u; z++) {
    uint4 h = hash_final(k.x + uint4(0u, 1u, 0u, 1u), k.y + uint4(0u, 0u, 1u, 1u), k.z + z);
    sum += weight * noise_face3(h, f, w);
    f.z -= 1.0;
    weight = u.z;
  }
  return 0.491 * sum;
}

// The sides in w are a loop within that: they share the mixing of the other three numbers.
float noise_signed4(float4 p) {
  p = noise_wrap4(p);
  float4 f = frac(p);
  float4 u = noise_fade4(f);
  float4 w = noise_face_weights(u.xy);
  uint4 k = asuint(int4(floor(p)));
  float2 weight = 1.0 - u.zw;
  float sum = 0.0;
  [loop]
  for (uint z = 0u; z < 2u; z++) {
    uint4 a = 0xDEADBF0Cu + k.x + uint4(0u, 1u, 0u, 1u);
    uint4 b = 0xDEADBF0Cu + k.y + uint4(0u, 0u, 1u, 1u);
    uint4 c = 0xDEADBF0Cu + k.z + z;
    hash_mix(a, b, c);
    a += k.w;
    float4 e = f;
    weight.y = 1.0 - u.w;
    [loop]
    for (uint side = 0u; side < 2u; side++) {
      sum += weight.x * weight.y * noise_face4(hash_final(a + side, b, c), e, w);
      e.w -= 1.0;
      weight.y = u.w;
    }
    f.z -= 1.0;
    weight.x = u.z;
  }
  return 0.4172 * sum;
}

// The fractals. Octaves are counted by how much of `detail` is done when one begins: -1 at the first, which is always
// there. The last counts for as much as remains, below 1 where `detail` is no integer. The loops test at their head:
// with a test at the foot, Mesa's CPU driver gives the last octave of the longest lane to all.
// plain: the noise alone of the last octave, which with detail 0 is the only one.

// The sum of octaves whose amplitude changes by `roughness`; normalize brings it to 0 to 1. The second components are
// those of one octave earlier: a fractional octave mixes the two results.
// Here the scale grows and the point stays, where the other fractals multiply the point again and again: Blender does
// so, and the two round differently.
// @each DIM 1 2 3 4
float noise_fractalDIM_FBM(floatDIM p, float detail, float roughness, float lacunarity, float offset, float gain,
    float normalize, out float plain) {
  float scale = 1.0;
  float weight = 1.0;
  float2 weights = 0.0;
  float2 sum = 0.0;
  float done = -1.0;
  plain = 0.0;
  [loop]
  while (done < detail) {
    plain = noise_signedDIM(p * scale);
    sum = float2(sum.x + plain * weight, sum.x);
    weights = float2(weights.x + weight, weights.x);
    weight *= roughness;
    scale *= lacunarity;
    done += 1.0;
  }
  if (normalize != 0.0)
    sum = 0.5 * sum / weights + 0.5;
  return done > detail ? lerp(sum.y, sum.x, frac(detail)) : sum.x;
}

// The product of octaves around 1.
// @each DIM 1 2 3 4
float noise_fractalDIM_MULTIFRACTAL(floatDIM p, float detail, float roughness, float lacunarity, float offset,
    float gain, float normalize, out float plain) {
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
// j), in one dimension 100 + 100 * hash_float_to_float(s).
float noise_offset1(int s) {
  float o[3] = { 158.24258, 114.83605, 188.4887 };
  return o[s];
}

float4 noise_offset(int s) {
  float4 o[6] = {
    float4(186.03128, 114.955956, 154.44751, 142.50491),
    float4(199.84, 162.2926, 154.04823, 142.26761),
    float4(111.63384, 157.36938, 199.0881, 178.43613),
    float4(165.44528, 162.76822, 193.40842, 145.25551),
    float4(155.58092, 177.15463, 138.14003, 180.18573),
    float4(188.85379, 132.67769, 162.05215, 185.26816)
  };
  return o[s];
}

// @each DIM 2 3 4
floatDIM noise_offsetDIM(int s) {
  return (floatDIM)noise_offset(s);
}

// A noise texture at co, already scaled: detail 0 to 15, roughness not negative, the rest unlimited; normalize and
// want_colour are 1.0 or 0.0. Gives the value; colour becomes the value and two more channels where it is wanted,
// else 0.
// Turns below 0 make the components of the distortion, the last one first, so that each pushes the others to its
// place; turn 0 makes the value and turns 1 and 2 the other channels.
// @each DIM 1 2 3 4
// @each TYPE FBM MULTIFRACTAL HYBRID_MULTIFRACTAL RIDGED_MULTIFRACTAL HETERO_TERRAIN
float noise_textureDIM_TYPE(floatDIM co, float detail, float roughness, float lacunarity, float offset, float gain,
    float distortion, float normalize, float want_colour, out float3 colour) {
  float4 moved = 0.0;
  float plain = 0.0;
  float value = 0.0;
  colour = 0.0;
  [loop]
  for (int turn = distortion != 0.0 ? -DIM : 0; turn <= (want_colour != 0.0 ? 2 : 0); turn++) {
    floatDIM p = co;
    if (turn != 0) p += noise_offsetDIM(turn < 0 ? -1 - turn : DIM - 1 + turn);
    float result = noise_fractalDIM_TYPE(p, turn < 0 ? 0.0 : detail, roughness, lacunarity, offset, gain, normalize,
        plain);
    moved = float4(distortion * plain, moved.xyz);
    if (turn == -1) co += (floatDIM)moved;
    if (turn == 0) value = result;
    colour = float3(colour.yz, result);
  }
  if (want_colour == 0.0) colour = 0.0;
  return value;
}

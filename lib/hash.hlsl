// Hashes: the word hash of white noise, gradient noise and Gabor noise, and the integer hash of Voronoi cells.
// All arithmetic is on 32-bit words with wrap-around, so every result here is exact: no tolerance.

// Rotates the bits of each lane to the left by r, 0 < r < 32.
// @each DIM 2 4
uintDIM hash_rotateDIM(uintDIM x, uint r) {
  return (x << r) | (x >> (32u - r));
}

// The last seven steps of Bob Jenkins' lookup3, in four independent lanes. A caller that needs one lane takes .x of the
// result. Lanes with the same b and c share the steps that depend only on those.
uint4 hash_final(uint4 a, uint4 b, uint4 c) {
  c = (c ^ b) - hash_rotate4(b, 14u);
  a = (a ^ c) - hash_rotate4(c, 11u);
  b = (b ^ a) - hash_rotate4(a, 25u);
  c = (c ^ b) - hash_rotate4(b, 16u);
  a = (a ^ c) - hash_rotate4(c, 4u);
  b = (b ^ a) - hash_rotate4(a, 14u);
  return (c ^ b) - hash_rotate4(b, 24u);
}

// The complement of the same, valid in the low 24 bits only, for which the last rotation is a shift. It has fewer
// instructions, but more of them wait for each other, so it suits many lanes at a time. A step x = (x ^ y) - rotate(y)
// is ~x = (~x ^ y) + rotate(y) on complements, and a GPU has an exclusive or followed by an addition as one
// instruction. c is kept as complement, and so is a up to its second step: the exclusive or of two complements is that
// of the values. That step gives a itself, since its complement would take the value of c and so more registers. The 1
// comes first because Mesa moves a 1 at the end into the rotation that follows, where it takes another instruction.
// The caller does the first step, c = (~c ^ b) + hash_rotateDIM(b, 14u): lanes with the same b and c share it.
// @each DIM 2 4
uintDIM hash_lastDIM(uintDIM a, uintDIM b, uintDIM c) {
  a = (a ^ c) + hash_rotateDIM(~c, 11u);
  b = hash_rotateDIM(a, 25u) - (b ^ a);
  c = (c ^ b) + hash_rotateDIM(b, 16u);
  a = 1u + (a ^ c) + hash_rotateDIM(c, 4u);
  b = (b ^ a) - hash_rotateDIM(a, 14u);
  return (c ^ b) + (b >> 8);
}

// The six mixing steps of lookup3 that precede a fourth word, in four independent lanes. For a the caller gives the
// difference a - c, its only use. The start value cancels in it.
void hash_mix(inout uint4 a, inout uint4 b, inout uint4 c) {
  a ^= hash_rotate4(c, 4u);
  c += b;
  b = (b - a) ^ hash_rotate4(a, 6u);
  a += c;
  c = (c - b) ^ hash_rotate4(b, 8u);
  b += a;
  a = (a - c) ^ hash_rotate4(c, 16u);
  c += b;
  b = (b - a) ^ hash_rotate4(a, 19u);
  a += c;
  c = (c - b) ^ hash_rotate4(b, 4u);
  b += a;
}

// lookup3 of one to four words. The start value is 0xDEADBEEF + 4 * words + 13.
uint hash_word1(uint k) {
  return hash_final(0xDEADBF00u + k, 0xDEADBF00u, 0xDEADBF00u).x;
}

uint hash_word2(uint2 k) {
  return hash_final(0xDEADBF04u + k.x, 0xDEADBF04u + k.y, 0xDEADBF04u).x;
}

uint hash_word3(uint3 k) {
  k += 0xDEADBF08u;
  return hash_final(k.x, k.y, k.z).x;
}

uint hash_word4(uint4 k) {
  uint4 a = k.x - k.z;
  uint4 b = 0xDEADBF0Cu + k.y;
  uint4 c = 0xDEADBF0Cu + k.z;
  hash_mix(a, b, c);
  return hash_final(a + k.w, b, c).x;
}

// A word as a float from 0 to 1, 1 included: words from 0xFFFFFF80 up round to 2^32. The factor is 2^-32.
float hash_unit(uint h) {
  return float(h) * 2.3283064365386963e-10;
}

// Hashes the bits of a float vector to a float from 0 to 1. -0 and +0 differ, and so do NaNs of different bits.
float hash_float_to_float(float x) {
  return hash_unit(hash_word1(asuint(x)));
}

// @each DIM 2 3 4
float hash_floatDIM_to_float(floatDIM x) {
  return hash_unit(hash_wordDIM(asuint(x)));
}

// Three values in 0 to 1. The first is the single-value hash of the same x; the others hash x with 1.0 or 2.0
// appended.
float3 hash_float_to_float3(float x) {
  return float3(hash_float_to_float(x), hash_float2_to_float(float2(x, 1.0)), hash_float2_to_float(float2(x, 2.0)));
}

float3 hash_float2_to_float3(float2 x) {
  return float3(hash_float2_to_float(x), hash_float3_to_float(float3(x, 1.0)), hash_float3_to_float(float3(x, 2.0)));
}

float3 hash_float3_to_float3(float3 x) {
  return float3(hash_float3_to_float(x), hash_float4_to_float(float4(x, 1.0)), hash_float4_to_float(float4(x, 2.0)));
}

// There is no hash of five words: the other two values hash the components in another order.
float3 hash_float4_to_float3(float4 x) {
  return float3(hash_float4_to_float(x), hash_float4_to_float(x.zxwy), hash_float4_to_float(x.wzyx));
}

// One round of the integer hash below. Later lines read what earlier ones wrote.
int2 hash_round2(int2 v) {
  v.x = mad(v.y, 1664525, v.x);
  v.y = mad(v.x, 1664525, v.y);
  return v;
}

int3 hash_round3(int3 v) {
  v.x = mad(v.y, v.z, v.x);
  v.y = mad(v.z, v.x, v.y);
  v.z = mad(v.x, v.y, v.z);
  return v;
}

int4 hash_round4(int4 v) {
  v.x = mad(v.y, v.w, v.x);
  v.y = mad(v.z, v.x, v.y);
  v.z = mad(v.x, v.y, v.z);
  v.w = mad(v.y, v.z, v.w);
  return v;
}

// Integer hash (a PCG generator with as many outputs as inputs) of the coordinates of a Voronoi cell: each component
// from 0 to 1, 1 included. Several times cheaper than the word hash. The shift must be the arithmetic shift of signed
// integers. The factor is 2^-31, as the top bit is cleared.
// hash_int is the step before the first round. hash_cell is the steps after it, without the factor: 0 to 2^31.
// @each DIM 1 2 3 4
intDIM hash_intDIM(intDIM v) {
  return mad(v, 1664525, 1013904223);
}

// @each DIM 2 3 4
floatDIM hash_cellDIM(intDIM v) {
  return floatDIM(hash_roundDIM(v ^ (v >> 16)) & 0x7FFFFFFF);
}

// @each DIM 2 3 4
floatDIM hash_intDIM_to_floatDIM(intDIM v) {
  return hash_cellDIM(hash_roundDIM(hash_intDIM(v))) * 4.656612873077393e-10;
}

// The lines of the first round that a row of cells along x shares. A GPU's integer product costs as much as four
// additions, so the shared products are computed here. No product here has two factors that depend on x, so x and y of
// the round are linear in the cell's position. Returns their increments per cell: 1664525, and 1664525 times the factor
// of x in y.
int2 hash_row2(inout int2 v) {
  v = hash_round2(v);
  return int2(1664525, 389569705);  // 1664525 squared, modulo 2^32
}

int2 hash_row3(inout int3 v) {
  v.x = mad(v.y, v.z, v.x);
  v.y = mad(v.z, v.x, v.y);
  return int2(1664525, v.z * 1664525);
}

int2 hash_row4(inout int4 v) {
  v.x = mad(v.y, v.w, v.x);
  v.y = mad(v.z, v.x, v.y);
  return int2(1664525, v.z * 1664525);
}

// The first round's remaining lines.
int2 hash_rest2(int2 v) {
  return v;
}

int3 hash_rest3(int3 v) {
  v.z = mad(v.x, v.y, v.z);
  return v;
}

int4 hash_rest4(int4 v) {
  v.z = mad(v.x, v.y, v.z);
  v.w = mad(v.y, v.z, v.w);
  return v;
}

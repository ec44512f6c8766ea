// Gabor noise: a sum of wave packets (impulses), eight at random positions in each cell of the unit grid.

// The word hash as a float, 0 to 1: of the first three words in 2D, of all four in 3D. The two share all steps except
// hash_mix.
float gabor_hash(float4 words, bool solid) {
  uint start = solid ? 0xDEADBF0Cu : 0xDEADBF08u;
  uint4 k = asuint(words);
  uint4 a = start + k.x;
  uint4 b = start + k.y;
  uint4 c = start + k.z;
  if (solid) {
    a = k.x - k.z;
    hash_mix(a, b, c);
    a += k.w;
  }
  return hash_unit(hash_final(a, b, c).x);
}

// The hash of a cell and a seed: the first random number of an impulse for that seed.
float gabor_hash_cell(float3 cell, float seed, bool solid) {
  return gabor_hash(float4(cell.xy, solid ? cell.z : seed, seed), solid);
}

// The unit vector `along` rotated by an impulse's hashes, by up to `spread` radians. In 3D its inclination and its
// azimuth increase, the azimuth of the z axis being 0; in 2D, where z is 0, the azimuth changes in both directions.
// Angle sum formulas avoid the inverse functions.
float3 gabor_turned(float3 cell, float seed, float3 along, float spread, bool solid) {
  float h = gabor_hash_cell(cell, seed, solid);
  float tilt = solid ? h * spread : 0.0;
  float turn = (solid ? hash_float4_to_float(float4(cell.zx, seed, cell.y)) : h - 0.5) * spread;
  float radius = length(along.xy);
  float2 side = radius > 0.0 ? along.xy / radius : float2(1.0, 0.0);
  side = float2(side.x * cos(turn) - side.y * sin(turn), side.y * cos(turn) + side.x * sin(turn));
  return float3(side * (radius * cos(tilt) + along.z * sin(tilt)), along.z * cos(tilt) - radius * sin(tilt));
}

// The sum of a cell's packets as complex numbers (cosine, sine), for a point at q from the cell's corner. Most packets
// are out of reach and hashes dominate the cost, so each hash is computed only when needed, and none for a cell too far
// away.
float2 gabor_cell(float3 cell, float3 q, float frequency, float3 along, float spread, bool solid) {
  float2 sum = 0.0;
  float3 gap = max(max(q - 1.0, -q), 0.0);
  if (dot(gap, gap) >= 1.0) return sum;
  [loop]
  for (float seed = 0.0; seed < 24.0; seed += 3.0) {
    float b = seed + 1.0;
    float3 v = q;
    v.x -= gabor_hash_cell(cell, b, solid);
    if (abs(v.x) >= 1.0) continue;
    v.y -= gabor_hash(float4(solid ? cell.z : b, cell.x, solid ? b : cell.y, cell.y), solid);
    if (solid && dot(v.xy, v.xy) < 1.0) v.z -= hash_float4_to_float(float4(b, cell.zyx));
    float m = dot(v, v);
    if (m >= 1.0) continue;
    float3 direction = along;
    if (spread != 0.0) direction = gabor_turned(cell, seed, along, spread, solid);
    float height = exp(-3.1415927 * m) * (0.5 + 0.5 * cos(3.1415927 * m));
    if (gabor_hash_cell(cell, seed + 2.0, solid) < 0.5) height = -height;
    float phase = 6.2831855 * frequency * dot(v, direction);
    sum += height * float2(cos(phase), sin(phase));
  }
  return sum;
}

// (value, phase, intensity) of the noise at co * scale in 2 or 3 dimensions. The orientation (radians in 2D, a vector
// in 3D) of the other dimension is ignored. anisotropy is clamped to 0 to 1, frequency to at least 0.001. The value
// averages 0.5 and may leave 0 to 1 a little; the phase is 0 to 1, and 0.5 where the sum is 0. A zero vector counts as
// the z axis. Tolerance against Blender: 1e-5.
// @name gabor
float3 tex_gabor(float3 co, float scale, float frequency, float anisotropy, float angle, float3 along, int dimensions) {
  bool solid = dimensions == 3;
  float spread = 3.1415927 * (1.0 - saturate(anisotropy));
  float size = length(along);
  along = size > 0.0 ? along / size : float3(0.0, 0.0, 1.0);
  if (!solid) along = float3(cos(angle), sin(angle), 0.0);
  float3 p = float3(co.xy, solid ? co.z : 0.0) * scale;
  float3 cell = floor(p);
  // In 2D there is one layer of cells: the iteration begins in the last layer, which then counts as the middle one.
  int3 o = int3(-1, -1, solid ? -1 : 1);
  float2 sum = 0.0;
  [loop]
  do {
    float3 offset = float3(o.xy, solid ? o.z : 0);
    sum += gabor_cell(cell + offset, p - cell - offset, max(frequency, 0.001), along, spread, solid);
  } while (cell_next3(o, 1));
  // Six standard deviations of the sum: sqrt(8 impulses * 0.5 * 1/4), in 3D with 1/(4 sqrt(2)) in place of 1/4.
  sum /= solid ? 5.0453784 : 6.0;
  return float3(sum.y * 0.5 + 0.5, (compatible_atan2(sum.y, sum.x) + 3.1415927) / 6.2831855, length(sum));
}

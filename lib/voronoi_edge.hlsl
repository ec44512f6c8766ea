// The Voronoi features that measure the space between feature points. The only setting of the cells that matters is
// randomness, and distances are always Euclidean. Tolerance against Blender: rounding.

// One octave of the distance to the border between this cell's point and its neighbours'. The sign of a zero coordinate
// is part of this cell's hash, as in Blender.
float voronoi_edge1(QWKVoronoiParams params, float co) {
  float c = floor(co);
  float h = hash_float_to_float(c);
  float left = (hash_float_to_float(c - 1.0) + h) * params.randomness - 1.0;
  float right = (hash_float_to_float(c + 1.0) + h) * params.randomness + 1.0;
  float at = co - c;
  return min(abs(left * 0.5 - at), abs(right * 0.5 - at));
}

// One row of the two passes of an octave, around the point at `local`. The first finds the nearest feature point, the
// second the nearest of its borders with the others; `nearest` is the offset to that point, `radius` its distance. It
// doesn't matter which of two equally near points is found, because their border goes through the point at `local`.
// Points nearer than 0.01 to each other make no border. A border with a point at distance v is at least half the
// difference of v and radius away, and `limit` is the square of the largest distance that still matters.
// @each DIM 2 3 4
void voronoi_edge_rowDIM(QWKVoronoiParams params, intDIM base, uint row, bool first, floatDIM local, float radius,
    inout float limit, inout floatDIM nearest, inout float edge) {
  intDIM at = cell_rowDIM(row);
  floatDIM gap = voronoi_gapDIM((floatDIM)at, local, params);
  gap.x = 0.0;
  [branch]
  if (dot(gap, gap) <= limit) {
    float scale = params.randomness * 4.656612873077393e-10;
    intDIM v = base + at * 1664525;
    int2 growth = hash_rowDIM(v);
    v.xy -= growth;
    [loop]
    for (at.x = -1; at.x <= 1; at.x++) {
      floatDIM other = mad(hash_cellDIM(hash_restDIM(v)), scale, (floatDIM)at - local);
      [branch]
      if (first) {
        float square = dot(other, other);
        nearest = square < limit ? other : nearest;
        limit = min(limit, square);
      } else {
        floatDIM apart = other - nearest;
        float square = dot(apart, apart);
        if (square > 0.0001) edge = min(edge, 0.5 * dot(nearest + other, apart) * rsqrt(square));
        limit = (radius + 2.0 * edge) * (radius + 2.0 * edge);
      }
      v.xy += growth;
    }
  }
}

// Distance to the nearest border over detail + 1 octaves; the last is weighted by its fraction. normalize divides by
// the interpolated max_distance. A single octave is not interpolated: the interpolation, which starts at 8, loses
// digits.
float fractal_voronoi_distance_to_edge1(QWKVoronoiParams params, float co) {
  float detail = params.roughness != 0.0 ? clamp(params.detail, 0.0, 15.0) : 0.0;
  uint more = uint(ceil(detail));
  float amplitude = 1.0;
  float limit = params.max_distance;
  float scale = 1.0;
  float edge = 8.0;
  [loop]
  for (uint done = 0u; done <= more; done++) {
    float octave = voronoi_edge1(params, co * scale) / scale;
    float w = amplitude * min(detail - (float(done) - 1.0), 1.0);
    limit = lerp(limit, params.max_distance / scale, w);
    edge = detail != 0.0 ? lerp(edge, min(edge, octave), w) : octave;
    scale *= params.lacunarity;
    amplitude *= params.roughness;
  }
  return params.normalize != 0.0 ? edge / limit : edge;
}

// Only cells at offsets -1 to 1 are searched, so some borders are missed, as in Blender.
// @each DIM 2 3 4
float fractal_voronoi_distance_to_edgeDIM(QWKVoronoiParams params, floatDIM co) {
  uint rows = cell_rowsDIM(1);
  float detail = params.roughness != 0.0 ? clamp(params.detail, 0.0, 15.0) : 0.0;
  uint more = uint(ceil(detail));
  float amplitude = 1.0;
  float limit = params.max_distance;
  float scale = 1.0;
  float edge = 8.0;
  uint done = 0u;
  uint row = 0u;
  float farthest = 3.402823466e+38;
  float radius = 0.0;
  floatDIM nearest = 0.0;
  float octave = 3.402823466e+38;
  floatDIM c = 0.0;
  floatDIM local = 0.0;
  intDIM base = 0;
  voronoi_startDIM(co, c, local, base);
  [loop] [fastopt]
  while (done <= more) {
    [branch]
    if (row == rows) {
      radius = sqrt(farthest);
      farthest = 3.402823466e+38;
    }
    bool first = row < rows;
    voronoi_edge_rowDIM(params, base, first ? row : row - rows, first, local, radius, farthest, nearest, octave);
    row++;
    [branch]
    if (row == 2u * rows) {
      octave /= scale;
      float w = amplitude * min(detail - (float(done) - 1.0), 1.0);
      limit = lerp(limit, params.max_distance / scale, w);
      edge = detail != 0.0 ? lerp(edge, min(edge, octave), w) : octave;
      scale *= params.lacunarity;
      amplitude *= params.roughness;
      done++;
      row = 0u;
      farthest = 3.402823466e+38;
      octave = 3.402823466e+38;
      voronoi_startDIM(co * scale, c, local, base);
    }
  }
  return params.normalize != 0.0 ? edge / limit : edge;
}

// Radius of the largest sphere around the nearest feature point that touches no other's: half the distance from it to
// its own nearest neighbour, which is a second search from there. Scale only enters by the coordinate; there are no
// octaves.
// @each DIM 1 2 3 4
float voronoi_n_sphere_radiusDIM(QWKVoronoiParams params, floatDIM co) {
  params.feature = 0;
  params.metric = 0;
  uint rows = cell_rowsDIM(1);
  float2 bounds = 3.402823466e+38;
  int2 keys = 0;
  floatDIM best = 0.0;
  floatDIM next = 0.0;
  float3 color = 0.0;
  floatDIM c = 0.0;
  floatDIM local = 0.0;
  intDIM base = 0;
  voronoi_startDIM(co, c, local, base);
  [loop] [fastopt]
  for (uint row = 0u; row < 2u * rows; row++) {
    bool others = row >= rows;
    [branch]
    if (row == rows) {
      c += (floatDIM)cell_of_keyDIM(keys.x);
      local = best * (params.randomness * 4.656612873077393e-10);
      base = hash_intDIM(intDIM(c));
      bounds = 3.402823466e+38;
    }
    voronoi_rowDIM(params, c, base, others ? row - rows : row, local, others, bounds, keys, best, next, color);
  }
  return 0.5 * sqrt(bounds.x);
}

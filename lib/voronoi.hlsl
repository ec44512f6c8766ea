// Voronoi textures of one to four dimensions. Every cell of the unit grid holds one feature point: the cell's corner
// plus a hash of the cell times the randomness (0 to 1). Coordinates are already scaled. Cell coordinates have 32 bits,
// so coordinates beyond +-2^31 give arbitrary values. Cells and colours are Blender's exactly, distances up to
// rounding.
// A search visits the cells around a point row by row, along x. Hashes dominate the cost, and most rows are too far
// away to matter: a row is skipped if even the nearest position that its points can have is farther than the best point
// found.
// FXC's time multiplies with each loop around another and with each branch in the inner one. So there are only two
// loops, and no branch for single cells: octaves, and the passes of a search, are further iterations of the loop over
// rows. [fastopt] there stops FXC from simulating the iterations at compile time.

// The largest component.
float voronoi_largest1(float v) {
  return v;
}

float voronoi_largest2(float2 v) {
  return max(v.x, v.y);
}

float voronoi_largest3(float3 v) {
  return max(v.x, voronoi_largest2(v.yz));
}

float voronoi_largest4(float4 v) {
  return max(v.x, voronoi_largest3(v.yzw));
}

// Distances are compared without the root: the bound of a vector is the sum or the maximum that its length is made of.
// In 1D all metrics agree. One exit per function: FXC takes longer for early returns.
// @each DIM 1 2 3 4
float voronoi_boundDIM(floatDIM d, QWKVoronoiParams params) {
  float bound = 0.0;
  if (params.metric == 0) bound = dot(d, d);
  else if (params.metric == 1) bound = dot(abs(d), (floatDIM)1.0);
  else if (params.metric == 2) bound = voronoi_largestDIM(abs(d));
  else if (params.metric == 3) bound = dot(pow(abs(d), params.exponent), (floatDIM)1.0);
  return bound;
}

// Converts a bound to a distance, and back.
float voronoi_root(float bound, QWKVoronoiParams params) {
  if (params.metric == 0) bound = sqrt(bound);
  if (params.metric == 3) bound = isinf(params.exponent) ? 1.0 : pow(bound, 1.0 / params.exponent);
  return bound;
}

float voronoi_unroot(float distance, QWKVoronoiParams params) {
  if (params.metric == 0) distance *= distance;
  if (params.metric == 3) distance = pow(distance, params.exponent);
  return distance;
}

// Distance of a and b: metric 0 Euclidean, 1 Manhattan, 2 Chebychev, 3 Minkowski with the exponent; 0 for other
// numbers. An exponent of 0 is meaningless and gives NaN or infinity.
// @each DIM 2 3 4
float voronoi_distanceDIM(floatDIM a, floatDIM b, QWKVoronoiParams params) {
  return voronoi_root(voronoi_boundDIM(a - b, params), params);
}

// The minimum of each component of the offset to a point in the cell at o. Rounding is monotonic, so no point is nearer
// than this.
// @each DIM 2 3 4
floatDIM voronoi_gapDIM(floatDIM o, floatDIM local, QWKVoronoiParams params) {
  return max(max(o - local, local - o - params.randomness), (floatDIM)0.0);
}

// The bound of a gap: no point in the cell has a lower bound. Powers are only good to 1e-6 on a GPU. Powers with a
// negative exponent decrease with the distance, so they exclude nothing.
float voronoi_least(float bound, QWKVoronoiParams params) {
  return params.metric != 3 ? bound : params.exponent > 0.0 ? bound * 0.99999 : 0.0;
}

// The colour of the cell c + o, whose hash is h. In 3D and 4D, the colour is the hash. The sum in 2D is one of
// integers, which stay exact where floats skip numbers.
float3 voronoi_color1(float h, float c, float o) {
  return hash_float_to_float3(c + o);
}

float3 voronoi_color2(float2 h, float2 c, float2 o) {
  return hash_int3_to_float3(int3(int2(c) + int2(o), 0));
}

float3 voronoi_color3(float3 h, float3 c, float3 o) {
  return h;
}

float3 voronoi_color4(float4 h, float4 c, float4 o) {
  return h.xyz;
}

// A position in the four components of the output.
float4 voronoi_position1(float p) {
  return float4(0.0, 0.0, 0.0, p);
}

float4 voronoi_position2(float2 p) {
  return float4(p, 0.0, 0.0);
}

float4 voronoi_position3(float3 p) {
  return float4(p, 0.0);
}

float4 voronoi_position4(float4 p) {
  return p;
}

// Starts a search at a point: the cell c, the point's place in it, and the cell's hash_int.
// @each DIM 1 2 3 4
void voronoi_startDIM(floatDIM co, out floatDIM c, out floatDIM local, out intDIM base) {
  c = floor(co);
  local = co - c;
  base = hash_intDIM(intDIM(c));
}

// Offers a cell to a search for the nearest feature point, and for feature 1 also the second nearest: t is the bound of
// its point, key orders the cells, hash is 0 to 2^31. The x components are of the nearest, y of the second nearest.
// Of equal bounds the lowest key wins, as in Blender. For the nearest, only powers need the test: all are 1 with an
// exponent of 0. In other metrics, points are equally near by chance of rounding, or in a grid without randomness; its
// nearest cells are visited in the order of their keys.
// @each DIM 1 2 3 4
void voronoi_keepDIM(QWKVoronoiParams params, float t, int key, floatDIM hash, inout float2 bounds, inout int2 keys,
    inout floatDIM best, inout floatDIM next) {
  bool nearer = params.metric == 3 && t == bounds.x ? key < keys.x : t < bounds.x;
  if (params.feature == 1) {
    bool moves = nearer || (t == bounds.y ? key < keys.y : t < bounds.y);
    bounds.y = nearer ? bounds.x : moves ? t : bounds.y;
    keys.y = nearer ? keys.x : moves ? key : keys.y;
    next = nearer ? best : moves ? hash : next;
  }
  bounds.x = nearer ? t : bounds.x;
  keys.x = nearer ? key : keys.x;
  best = nearer ? hash : best;
}

// Adds a cell to the smooth blend: t is the distance to its point, which is at q. The result depends on the order of
// the cells, which is x fastest. A weight of 1 leaves nothing of the previous values.
// @each DIM 1 2 3 4
void voronoi_blendDIM(QWKVoronoiParams params, float t, float3 cell_color, floatDIM q, inout float best,
    inout float3 color, inout floatDIM place) {
  float w = params.smoothness != 0.0 ? saturate(0.5 + 0.5 * (best - t) / params.smoothness) : t < best ? 1.0 : 0.0;
  [branch]
  if (w > 0.0) {
    w = (3.0 - 2.0 * w) * (w * w);
    float rest = 1.0 - w;
    float z = params.smoothness * w * rest;
    best = mad(rest, best - t, t) - z;
    z /= 1.0 + 3.0 * params.smoothness;
    color = mad((float3)rest, color - cell_color, cell_color) - z;
    place = mad((floatDIM)rest, place - q, q) - z;
  }
}

// The number of cells that a search reaches to each side.
int voronoi_reach(QWKVoronoiParams params) {
  return params.feature == 2 && params.smoothness != 0.0 ? 2 : 1;
}

// Searches one row around the point at `local` in the cell c. Features 0 and 1 keep the nearest cells. Feature 2 blends
// them: bounds.x is the blended distance, best the blended place relative to c. `others` excludes the cell c itself.
// 1D has one row, and hashes a cell as a float.
void voronoi_row1(QWKVoronoiParams params, float c, int base, uint row, float local, bool others, inout float2 bounds,
    inout int2 keys, inout float best, inout float next, inout float3 color) {
  int reach = voronoi_reach(params);
  [loop]
  for (int x = -reach; x <= reach; x++) {
    float hash = hash_float_to_float(c + float(x));
    float q = float(x) + hash * params.randomness;
    float t = others && x == 0 ? 3.402823466e+38 : voronoi_bound1(q - local, params);
    if (params.feature == 2) {
      float3 cell_color = hash_float_to_float3(c + float(x));
      voronoi_blend1(params, abs(q - local), cell_color, q, bounds.x, color, best);
    } else {
      voronoi_keep1(params, t, x, hash * 2147483648.0, bounds, keys, best, next);
    }
  }
}

// A point that is at least the smoothness farther than the blended distance has weight 0. Rows of a blend are visited
// in Blender's order, others from the inside out.
// @each DIM 2 3 4
void voronoi_rowDIM(QWKVoronoiParams params, floatDIM c, intDIM base, uint row, floatDIM local, bool others,
    inout float2 bounds, inout int2 keys, inout floatDIM best, inout floatDIM next, inout float3 color) {
  bool smooth = params.feature == 2;
  int reach = voronoi_reach(params);
  intDIM at = smooth ? cell_lineDIM(row, reach) : cell_rowDIM(row);
  floatDIM gap = voronoi_gapDIM((floatDIM)at, local, params);
  gap.x = 0.0;
  float least = voronoi_least(voronoi_boundDIM(gap, params), params);
  float limit = params.feature == 1 ? bounds.y : bounds.x;
  if (smooth) limit = voronoi_unroot(bounds.x + params.smoothness, params);
  [branch]
  if (least <= limit) {
    float scale = params.randomness * 4.656612873077393e-10;
    intDIM v = base + at * 1664525;
    int2 growth = hash_rowDIM(v);
    v.xy -= growth * reach;
    [loop]
    for (at.x = -reach; at.x <= reach; at.x++) {
      floatDIM hash = hash_cellDIM(hash_restDIM(v));
      int key = cell_keyDIM(at);
      float t = voronoi_boundDIM(mad(hash, scale, (floatDIM)at - local), params);
      if (others && key == 0) t = 3.402823466e+38;
      if (smooth) {
        float3 cell_color = voronoi_colorDIM(hash * 4.656612873077393e-10, c, (floatDIM)at);
        floatDIM q = mad(hash, scale, (floatDIM)at);
        voronoi_blendDIM(params, voronoi_root(t, params), cell_color, q, bounds.x, color, best);
      } else {
        voronoi_keepDIM(params, t, key, hash, bounds, keys, best, next);
      }
      v.xy += growth;
    }
  }
}

// What the search of one octave found. A second point at an infinite distance, as with an exponent of 0, counts as
// absent: its distance is the largest float.
// @each DIM 1 2 3 4
QWKVoronoiOutput voronoi_octaveDIM(QWKVoronoiParams params, floatDIM c, float2 bounds, int2 keys, floatDIM best,
    floatDIM next, float3 color) {
  bool second = params.feature == 1;
  floatDIM o = (floatDIM)cell_of_keyDIM(second ? keys.y : keys.x);
  floatDIM h = (second ? next : best) * 4.656612873077393e-10;
  QWKVoronoiOutput octave;
  if (params.feature == 2) {
    octave.distance = bounds.x;
    octave.color = color;
    octave.position = voronoi_positionDIM(best + c);
  } else {
    octave.distance = voronoi_root(second ? bounds.y : bounds.x, params);
    if (second) octave.distance = min(octave.distance, 3.402823466e+38);
    octave.color = voronoi_colorDIM(h, c, o);
    octave.position = voronoi_positionDIM(o + h * params.randomness + c);
  }
  return octave;
}

// Features 0 to 2 over detail + 1 octaves; the last is weighted by its fraction. normalize scales distance and colour
// back to the range of one octave, and divides the distance by max_distance. The position is interpolated, not summed.
// A smooth blend with a smoothness of 0 is the nearest point. Octaves are counted in integers, which a GPU keeps once
// for all pixels: there are `more` after the first, never above 15, and `done` so far.
// @each DIM 1 2 3 4
QWKVoronoiOutput fractal_voronoi_x_fxDIM(QWKVoronoiParams params, floatDIM co) {
  uint rows = cell_rowsDIM(voronoi_reach(params));
  QWKVoronoiOutput result;
  result.distance = 0.0;
  result.color = 0.0;
  result.position = 0.0;
  float amplitude = 1.0;
  float total = 0.0;
  float scale = 1.0;
  float detail = params.roughness != 0.0 ? clamp(params.detail, 0.0, 15.0) : 0.0;
  uint more = uint(ceil(detail));
  uint done = 0u;
  uint row = 0u;
  float2 bounds = 0.0;
  int2 keys = 0;
  floatDIM best = 0.0;
  floatDIM next = 0.0;
  float3 color = 0.0;
  floatDIM c = 0.0;
  floatDIM local = 0.0;
  intDIM base = 0;
  [loop] [fastopt]
  while (done <= more) {
    [branch]
    if (row == 0u) {
      bounds = 3.402823466e+38;
      voronoi_startDIM(co * scale, c, local, base);
    }
    voronoi_rowDIM(params, c, base, row, local, false, bounds, keys, best, next, color);
    row++;
    [branch]
    if (row == rows) {
      QWKVoronoiOutput octave = voronoi_octaveDIM(params, c, bounds, keys, best, next, color);
      float w = amplitude * min(detail - (float(done) - 1.0), 1.0);
      total += w;
      result.distance += octave.distance * w;
      result.color += octave.color * w;
      result.position = lerp(result.position, octave.position * (1.0 / scale), w);
      scale *= params.lacunarity;
      amplitude *= params.roughness;
      done++;
      row = 0u;
    }
  }
  if (params.normalize != 0.0) {
    result.distance /= total * params.max_distance;
    result.color *= 1.0 / total;
  }
  // A denormal scale counts as 0, because its reciprocal is infinite.
  result.position = abs(params.scale) >= 1.1754944e-38 ? result.position * (1.0 / params.scale) : (float4)0.0;
  return result;
}

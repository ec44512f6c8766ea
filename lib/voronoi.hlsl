// Voronoi textures of one to four dimensions. Every cell of the unit grid holds one feature point: the cell's corner
// plus a hash of the cell times the randomness (0 to 1). Coordinates are already scaled. Cell coordinates have 32 bits,
// so coordinates beyond +-2^31 give arbitrary values. Cells and colours are Blender's exactly, distances up to
// rounding.
// Hashes dominate the cost, and most cells around a point are too far away to matter: a cell is skipped if even the
// nearest position that its point can have is farther than the best point found. The nested loops have constant trip
// counts, and FXC simulates them iteration by iteration unless [fastopt] stops it: 0.3 s instead of 3.4 s.

// Distances are compared without the root: the bound of a vector is the sum of its components' terms, or the largest.
float voronoi_term(float d, QWKVoronoiParams params)
{
    if (params.metric == 0) return d * d;
    if (params.metric == 3) return pow(abs(d), params.exponent);
    return params.metric == 1 || params.metric == 2 ? abs(d) : 0.0;
}

float voronoi_join(float bound, float d, QWKVoronoiParams params)
{
    float term = voronoi_term(d, params);
    return params.metric == 2 ? max(bound, term) : bound + term;
}

// The bound without the x component, and of all components. In 1D all metrics agree.
float voronoi_across1(float d, QWKVoronoiParams params)
{
    return 0.0;
}

float voronoi_across2(float2 d, QWKVoronoiParams params)
{
    return voronoi_term(d.y, params);
}

float voronoi_across3(float3 d, QWKVoronoiParams params)
{
    return voronoi_join(voronoi_term(d.z, params), d.y, params);
}

float voronoi_across4(float4 d, QWKVoronoiParams params)
{
    return voronoi_join(voronoi_across3(d.yzw, params), d.y, params);
}

// @each DIM 1 2 3 4
float voronoi_boundDIM(floatDIM d, QWKVoronoiParams params)
{
    return voronoi_join(voronoi_acrossDIM(d, params), d.x, params);
}

// Converts a bound to a distance, and back.
float voronoi_root(float bound, QWKVoronoiParams params)
{
    if (params.metric == 0) return sqrt(bound);
    if (params.metric == 3) return isinf(params.exponent) ? 1.0 : pow(bound, 1.0 / params.exponent);
    return bound;
}

float voronoi_unroot(float distance, QWKVoronoiParams params)
{
    if (params.metric == 0) return distance * distance;
    if (params.metric == 3) return pow(distance, params.exponent);
    return distance;
}

// Distance of a and b: metric 0 Euclidean, 1 Manhattan, 2 Chebychev, 3 Minkowski with the exponent; 0 for other
// numbers. An exponent of 0 is meaningless and gives NaN or infinity.
// @each DIM 2 3 4
float voronoi_distanceDIM(floatDIM a, floatDIM b, QWKVoronoiParams params)
{
    return voronoi_root(voronoi_boundDIM(a - b, params), params);
}

// The minimum of each component of the offset to a point in the cell at o. Rounding is monotonic, so no point is nearer
// than this.
// @each DIM 1 2 3 4
floatDIM voronoi_gapDIM(floatDIM o, floatDIM local, QWKVoronoiParams params)
{
    return max(max(o - local, local - o - params.randomness), (floatDIM)0.0);
}

// The bound of a gap: no point in the cell has a lower bound. Powers are only good to 1e-6 on a GPU. Powers with a
// negative exponent decrease with the distance, so they exclude nothing.
float voronoi_least(float bound, QWKVoronoiParams params)
{
    return params.metric != 3 ? bound : params.exponent > 0.0 ? bound * 0.99999 : 0.0;
}

// The hash of the cell at x (-1 to 1) from the middle of a row; v and growth come from hash_rowDIM.
// @each DIM 2 3 4
floatDIM voronoi_cellDIM(intDIM v, int2 growth, int x)
{
    v.xy += x < 0 ? -growth : x > 0 ? growth : (int2)0;
    return hash_cellDIM(hash_restDIM(v));
}

// The colour of the cell c + o, whose hash is h. In 3D and 4D, the colour is the hash. The sum in 2D is one of
// integers, which stay exact where floats skip numbers.
float3 voronoi_color1(float h, float c, float o)
{
    return hash_float_to_float3(c + o);
}

float3 voronoi_color2(float2 h, float2 c, float2 o)
{
    return hash_int3_to_float3(int3(int2(c) + int2(o), 0));
}

float3 voronoi_color3(float3 h, float3 c, float3 o)
{
    return h;
}

float3 voronoi_color4(float4 h, float4 c, float4 o)
{
    return h.xyz;
}

// A position in the four components of the output.
float4 voronoi_position1(float p)
{
    return float4(0.0, 0.0, 0.0, p);
}

float4 voronoi_position2(float2 p)
{
    return float4(p, 0.0, 0.0);
}

float4 voronoi_position3(float3 p)
{
    return float4(p, 0.0);
}

float4 voronoi_position4(float4 p)
{
    return p;
}

// The bound of the nearest feature point, or of the second nearest, to a point at `local` in the cell c + around; the
// offset o of its cell from there, and the cell's hash h, 0 to 1. `others` excludes the point's own cell. Of equal
// bounds the first cell wins, x fastest. In 1D the cell is hashed as a float.
float voronoi_walk1(QWKVoronoiParams params, float c, float around, float local, bool second, bool others, out float o,
                    out float h)
{
    float best = 3.402823466e+38;
    float next = best;
    float2 best_o = 0.0;
    float2 next_o = 0.0;
    [loop]
    for (int x = -1; x <= 1; x++)
    {
        float hash = hash_float_to_float(c + around + float(x));
        float t = voronoi_bound1(float(x) + hash * params.randomness - local, params);
        if (others && x == 0) t = 3.402823466e+38;
        if (t < best)
        {
            next = best;
            next_o = best_o;
            best = t;
            best_o = float2(float(x), hash);
        }
        else if (t < next)
        {
            next = t;
            next_o = float2(float(x), hash);
        }
    }
    o = second ? next_o.x : best_o.x;
    h = second ? next_o.y : best_o.y;
    return second ? next : best;
}

// @each DIM 2 3 4
float voronoi_walkDIM(QWKVoronoiParams params, floatDIM c, floatDIM around, floatDIM local, bool second, bool others,
                      out floatDIM o, out floatDIM h)
{
    float scale = params.randomness * 4.656612873077393e-10;
    intDIM base = hash_intDIM(intDIM(c) + intDIM(around));
    float best = 3.402823466e+38;
    float next = best;
    int best_key = 0;
    int next_key = 0;
    floatDIM best_h = 0.0;
    floatDIM next_h = 0.0;
    [loop] [fastopt]
    for (uint row = 0u; row < (DIM < 3 ? 3u : DIM < 4 ? 9u : 27u); row++)
    {
        intDIM at = cell_rowDIM(row);
        float across = voronoi_acrossDIM(voronoi_gapDIM((floatDIM)at, local, params), params);
        [branch]
        if (voronoi_least(across, params) <= (second ? next : best))
        {
            intDIM v = base + at * 1664525;
            int2 growth = hash_rowDIM(v);
            [loop] [fastopt]
            for (uint i = 0u; i < 3u; i++)
            {
                at.x = cell_offset(i);
                int key = cell_keyDIM(at);
                float least = voronoi_join(across, voronoi_gap1(float(at.x), local.x, params), params);
                [branch]
                if (voronoi_least(least, params) <= (second ? next : best) && !(others && key == 0))
                {
                    floatDIM hash = voronoi_cellDIM(v, growth, at.x);
                    float t = voronoi_boundDIM(mad(hash, scale, (floatDIM)at - local), params);
                    bool nearer = t == best ? key < best_key : t < best;
                    if (second)
                    {
                        bool moves = nearer || (t == next ? key < next_key : t < next);
                        next = nearer ? best : moves ? t : next;
                        next_key = nearer ? best_key : moves ? key : next_key;
                        next_h = nearer ? best_h : moves ? hash : next_h;
                    }
                    best = nearer ? t : best;
                    best_key = nearer ? key : best_key;
                    best_h = nearer ? hash : best_h;
                }
            }
        }
    }
    o = (floatDIM)cell_of_keyDIM(second ? next_key : best_key);
    h = (second ? next_h : best_h) * 4.656612873077393e-10;
    return second ? next : best;
}

// One octave of the nearest feature point (feature 0) or the second nearest (1).
// @each DIM 1 2 3 4
QWKVoronoiOutput voronoi_nearestDIM(QWKVoronoiParams params, floatDIM co)
{
    floatDIM c = floor(co);
    floatDIM o = 0.0;
    floatDIM h = 0.0;
    float bound = voronoi_walkDIM(params, c, (floatDIM)0.0, co - c, params.feature == 1, false, o, h);
    QWKVoronoiOutput result;
    result.distance = voronoi_root(bound, params);
    // A second point at an infinite distance, as with an exponent of 0, counts as absent: the result is the largest
    // float.
    if (params.feature == 1) result.distance = min(result.distance, 3.402823466e+38);
    result.color = voronoi_colorDIM(h, c, o);
    result.position = voronoi_positionDIM(o + h * params.randomness + c);
    return result;
}

// Adds a cell to the smooth blend: t is the distance to its point, which is at q. The result depends on the order of
// the cells, which is x fastest. A weight of 1 leaves nothing of the previous values.
// @each DIM 1 2 3 4
void voronoi_blendDIM(QWKVoronoiParams params, float t, float3 cell_color, floatDIM q, inout float best,
                      inout float3 color, inout floatDIM place)
{
    float w = params.smoothness != 0.0 ? saturate(0.5 + 0.5 * (best - t) / params.smoothness) : t < best ? 1.0 : 0.0;
    [branch]
    if (w > 0.0)
    {
        w = (3.0 - 2.0 * w) * (w * w);
        float rest = 1.0 - w;
        float z = params.smoothness * w * rest;
        best = mad(rest, best - t, t) - z;
        z /= 1.0 + 3.0 * params.smoothness;
        color = mad((float3)rest, color - cell_color, cell_color) - z;
        place = mad((floatDIM)rest, place - q, q) - z;
    }
}

// One octave of the smooth blend of the surrounding points (feature 2). With a smoothness of 0 it is the nearest point.
QWKVoronoiOutput voronoi_smooth1(QWKVoronoiParams params, float co)
{
    int reach = params.smoothness != 0.0 ? 2 : 1;
    float c = floor(co);
    float best = 3.402823466e+38;
    float3 color = 0.0;
    float place = 0.0;
    [loop]
    for (int x = -reach; x <= reach; x++)
    {
        float q = float(x) + hash_float_to_float(c + float(x)) * params.randomness;
        voronoi_blend1(params, abs(q - (co - c)), hash_float_to_float3(c + float(x)), q, best, color, place);
    }
    QWKVoronoiOutput result;
    result.distance = best;
    result.color = color;
    result.position = voronoi_position1(place + c);
    return result;
}

// A point has weight 0 if its distance is at least the blended distance plus the smoothness.
// @each DIM 2 3 4
QWKVoronoiOutput voronoi_smoothDIM(QWKVoronoiParams params, floatDIM co)
{
    int reach = params.smoothness != 0.0 ? 2 : 1;
    float scale = params.randomness * 4.656612873077393e-10;
    floatDIM c = floor(co);
    floatDIM local = co - c;
    intDIM base = hash_intDIM(intDIM(c));
    intDIM at = -reach;
    float best = 3.402823466e+38;
    float limit = best;
    float3 color = 0.0;
    floatDIM place = 0.0;
    [loop] [fastopt]
    do
    {
        at.x = 0;
        float across = voronoi_acrossDIM(voronoi_gapDIM((floatDIM)at, local, params), params);
        [branch]
        if (voronoi_least(across, params) < limit)
        {
            intDIM v = base + at * 1664525;
            int2 growth = hash_rowDIM(v);
            v.xy -= growth * reach;
            [loop] [fastopt]
            for (at.x = -reach; at.x <= reach; at.x++)
            {
                float least = voronoi_join(across, voronoi_gap1(float(at.x), local.x, params), params);
                [branch]
                if (voronoi_least(least, params) < limit)
                {
                    floatDIM hash = hash_cellDIM(hash_restDIM(v));
                    float bound = voronoi_boundDIM(mad(hash, scale, (floatDIM)at - local), params);
                    float3 cell_color = voronoi_colorDIM(hash * 4.656612873077393e-10, c, (floatDIM)at);
                    voronoi_blendDIM(params, voronoi_root(bound, params), cell_color, mad(hash, scale, (floatDIM)at),
                                     best, color, place);
                    limit = voronoi_unroot(best + params.smoothness, params);
                }
                v.xy += growth;
            }
        }
    }
    while (cell_next_rowDIM(at, reach));
    QWKVoronoiOutput result;
    result.distance = best;
    result.color = color;
    result.position = voronoi_positionDIM(place + c);
    return result;
}

// Features 0 to 2 over detail + 1 octaves; the last is weighted by its fraction. normalize scales distance and colour
// back to the range of one octave, and divides the distance by max_distance. The position is interpolated, not summed.
// @each DIM 1 2 3 4
QWKVoronoiOutput fractal_voronoi_x_fxDIM(QWKVoronoiParams params, floatDIM co)
{
    QWKVoronoiOutput result;
    result.distance = 0.0;
    result.color = 0.0;
    result.position = 0.0;
    float amplitude = 1.0;
    float total = 0.0;
    float scale = 1.0;
    [loop]
    for (float left = params.roughness != 0.0 ? min(params.detail, 15.0) : 0.0; left > -1.0; left -= 1.0)
    {
        QWKVoronoiOutput octave;
        if (params.feature == 2) octave = voronoi_smoothDIM(params, co * scale);
        else octave = voronoi_nearestDIM(params, co * scale);
        float w = amplitude * min(left + 1.0, 1.0);
        total += w;
        result.distance += octave.distance * w;
        result.color += octave.color * w;
        result.position = lerp(result.position, octave.position * (1.0 / scale), w);
        scale *= params.lacunarity;
        amplitude *= params.roughness;
    }
    if (params.normalize != 0.0)
    {
        result.distance /= total * params.max_distance;
        result.color *= 1.0 / total;
    }
    // A denormal scale counts as 0, because its reciprocal is infinite.
    result.position = abs(params.scale) >= 1.1754944e-38 ? result.position * (1.0 / params.scale) : (float4)0.0;
    return result;
}

// Voronoi textures of one to four dimensions. Every cell of the unit grid holds one feature point, in the cell's
// corner plus a hash of the cell times the randomness (0 to 1). Coordinates come scaled; cells are numbered with 32
// bits, so coordinates beyond +-2^31 give arbitrary values. Cells and colours are Blender's exactly, distances up
// to rounding.

// The largest component.
float voronoi_largest1(float v)
{
    return v;
}

float voronoi_largest2(float2 v)
{
    return max(v.x, v.y);
}

float voronoi_largest3(float3 v)
{
    return max(v.x, voronoi_largest2(v.yz));
}

float voronoi_largest4(float4 v)
{
    return max(v.x, voronoi_largest3(v.yzw));
}

// The length of d in one of the metrics, before its root is taken: enough to compare distances. In 1D all agree.
// @each DIM 1 2 3 4
float voronoi_boundDIM(floatDIM d, QWKVoronoiParams params)
{
    if (params.metric == 0) return dot(d, d);
    d = abs(d);
    if (params.metric == 1) return dot(d, (floatDIM)1.0);
    if (params.metric == 2) return voronoi_largestDIM(d);
    if (params.metric == 3) return dot(pow(d, params.exponent), (floatDIM)1.0);
    return 0.0;
}

// The root that makes a distance of the above.
float voronoi_root(float bound, QWKVoronoiParams params)
{
    if (params.metric == 0) return sqrt(bound);
    if (params.metric == 3) return isinf(params.exponent) ? 1.0 : pow(bound, 1.0 / params.exponent);
    return bound;
}

// Distance of a and b: metric 0 Euclidean, 1 Manhattan, 2 Chebychev, 3 Minkowski with the exponent; 0 for other
// numbers of metrics. An exponent of 0 has no sense and gives NaN or infinity.
// @each DIM 2 3 4
float voronoi_distanceDIM(floatDIM a, floatDIM b, QWKVoronoiParams params)
{
    return voronoi_root(voronoi_boundDIM(a - b, params), params);
}

// The hash, 0 to 1 in each component, that places the feature point of the cell c + o. In 1D the cell is hashed as
// a float.
float voronoi_hash1(float c, float o)
{
    return hash_float_to_float(c + o);
}

// The sum is made of integers, which stay exact where floats skip numbers.
// @each DIM 2 3 4
floatDIM voronoi_hashDIM(floatDIM c, floatDIM o)
{
    return hash_intDIM_to_floatDIM(intDIM(c) + intDIM(o));
}

// The colour of the cell c + o, h being its hash. In 3D and 4D they are the same numbers.
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

// One octave: the nearest feature point (feature 0), the second nearest (1) or a smooth blend of them (2; without
// smoothness it is the nearest). Of equal distances the first wins, so the order of the cells matters.
// The nearest are remembered by their offset alone; their hash is made again after the loop.
// @each DIM 1 2 3 4
QWKVoronoiOutput voronoi_octaveDIM(QWKVoronoiParams params, floatDIM co)
{
    bool smooth = params.feature == 2 && params.smoothness != 0.0;
    bool second = params.feature == 1;
    float reach = smooth ? 2.0 : 1.0;
    floatDIM c = floor(co);
    floatDIM local = co - c;
    floatDIM o = -reach;
    floatDIM best_o = 0.0;
    floatDIM next_o = 0.0;
    floatDIM h = 0.0;
    floatDIM place = 0.0;
    float3 color = 0.0;
    float best = smooth ? 0.0 : 3.402823466e+38;
    float next = best;
    bool first = true;
    [loop]
    do
    {
        h = voronoi_hashDIM(c, o);
        floatDIM q = o + h * params.randomness;
        float t = voronoi_boundDIM(q - local, params);
        if (smooth || second) t = voronoi_root(t, params);
        if (smooth)
        {
            float w = first ? 1.0 : saturate(0.5 + 0.5 * (best - t) / params.smoothness);
            w = (3.0 - 2.0 * w) * (w * w);
            first = false;
            if (w > 0.0)
            {
                float z = params.smoothness * w * (1.0 - w);
                best = lerp(best, t, w) - z;
                z /= 1.0 + 3.0 * params.smoothness;
                color = lerp(color, voronoi_colorDIM(h, c, o), w) - z;
                place = lerp(place, q, w) - z;
            }
        }
        else if (t < best)
        {
            next = best;
            next_o = best_o;
            best = t;
            best_o = o;
        }
        else if (second && t < next)
        {
            next = t;
            next_o = o;
        }
    }
    while (cell_nextDIM(o, reach));
    if (!smooth)
    {
        if (second)
        {
            best = next;
            best_o = next_o;
        }
        else best = voronoi_root(best, params);
        h = voronoi_hashDIM(c, best_o);
        color = voronoi_colorDIM(h, c, best_o);
        place = best_o + h * params.randomness;
    }
    QWKVoronoiOutput result;
    result.distance = best;
    result.color = color;
    result.position = voronoi_positionDIM(place + c);
    return result;
}

// Features 0 to 2 over detail + 1 octaves; the last counts for its fraction. normalize brings distance and colour
// back to the range of one octave, the distance divided by max_distance on top. The position is a blend, not a sum.
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
        QWKVoronoiOutput octave = voronoi_octaveDIM(params, co * scale);
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
    // A scale too small to be told from 0 counts as 0: its inverse is infinite.
    result.position = abs(params.scale) >= 1.1754944e-38 ? result.position * (1.0 / params.scale) : (float4)0.0;
    return result;
}

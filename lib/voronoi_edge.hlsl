// The Voronoi features that ask for the space between feature points. Only randomness counts of the cell's
// settings, and distances are Euclidean throughout. Tolerance against Blender: rounding.

// One octave of the distance to the border between this cell's point and its neighbours'. The cell itself is hashed
// with the sign of its zero, as Blender does here.
float voronoi_edge1(QWKVoronoiParams params, float co)
{
    float c = floor(co);
    float h = hash_float_to_float(c);
    float left = (voronoi_hash1(c, -1.0) + h) * params.randomness - 1.0;
    float right = (voronoi_hash1(c, 1.0) + h) * params.randomness + 1.0;
    float at = co - c;
    return min(abs(left * 0.5 - at), abs(right * 0.5 - at));
}

// The first walk finds the nearest point, the second the nearest of its borders with the others. Only one cell
// around is looked at, so now and then a border is missed, as in Blender. Points nearer to each other than 0.01
// make no border.
// @each DIM 2 3 4
float voronoi_edgeDIM(QWKVoronoiParams params, floatDIM co)
{
    floatDIM c = floor(co);
    floatDIM local = co - c;
    floatDIM nearest = 0.0;
    float best = 3.402823466e+38;
    float edge = best;
    [loop]
    for (int walk = 0; walk < 2; walk++)
    {
        floatDIM o = -1.0;
        [loop]
        do
        {
            floatDIM v = o + voronoi_hashDIM(c, o) * params.randomness - local;
            floatDIM apart = walk == 0 ? v : v - nearest;
            float square = dot(apart, apart);
            if (walk == 0)
            {
                if (square < best)
                {
                    best = square;
                    nearest = v;
                }
            }
            else if (square > 0.0001) edge = min(edge, 0.5 * dot(nearest + v, apart) * rsqrt(square));
        }
        while (cell_nextDIM(o, 1.0));
    }
    return edge;
}

// Distance to the nearest border over detail + 1 octaves; the last counts for its fraction. normalize divides by the
// blended max_distance. One octave alone gives its distance unblended: the blend, which begins at 8, costs digits.
// @each DIM 1 2 3 4
float fractal_voronoi_distance_to_edgeDIM(QWKVoronoiParams params, floatDIM co)
{
    float detail = params.roughness != 0.0 ? min(params.detail, 15.0) : 0.0;
    float amplitude = 1.0;
    float limit = params.max_distance;
    float scale = 1.0;
    float edge = 8.0;
    [loop]
    for (float left = detail; left > -1.0; left -= 1.0)
    {
        float octave = voronoi_edgeDIM(params, co * scale) / scale;
        float w = amplitude * min(left + 1.0, 1.0);
        limit = lerp(limit, params.max_distance / scale, w);
        edge = detail != 0.0 ? lerp(edge, min(edge, octave), w) : octave;
        scale *= params.lacunarity;
        amplitude *= params.roughness;
    }
    return params.normalize != 0.0 ? edge / limit : edge;
}

// Radius of the largest sphere around the nearest feature point that touches no other's: half the distance from it to
// its own nearest neighbour. Scale only enters by the coordinate; there are no octaves.
// @each DIM 1 2 3 4
float voronoi_n_sphere_radiusDIM(QWKVoronoiParams params, floatDIM co)
{
    floatDIM c = floor(co);
    floatDIM around = 0.0;
    floatDIM target = co - c;
    float best = 0.0;
    [loop]
    for (int walk = 0; walk < 2; walk++)
    {
        floatDIM nearest = 0.0;
        floatDIM nearest_q = 0.0;
        floatDIM o = -1.0;
        best = 3.402823466e+38;
        [loop]
        do
        {
            floatDIM cell = around + o;
            floatDIM q = cell + voronoi_hashDIM(c, cell) * params.randomness;
            float square = dot(q - target, q - target);
            if (square < best && (walk == 0 || any(o != 0.0)))
            {
                best = square;
                nearest = cell;
                nearest_q = q;
            }
        }
        while (cell_nextDIM(o, 1.0));
        around = nearest;
        target = nearest_q;
    }
    return 0.5 * sqrt(best);
}

// The Voronoi features that measure the space between feature points. The only setting of the cells that matters is
// randomness, and distances are always Euclidean. Tolerance against Blender: rounding.

// One octave of the distance to the border between this cell's point and its neighbours'. The sign of a zero coordinate
// is part of this cell's hash, as in Blender.
float voronoi_edge1(QWKVoronoiParams params, float co)
{
    float c = floor(co);
    float h = hash_float_to_float(c);
    float left = (hash_float_to_float(c - 1.0) + h) * params.randomness - 1.0;
    float right = (hash_float_to_float(c + 1.0) + h) * params.randomness + 1.0;
    float at = co - c;
    return min(abs(left * 0.5 - at), abs(right * 0.5 - at));
}

// The first pass finds the nearest point, the second the nearest of its borders with the others. Both iterate over the
// same rows of cells in one loop, because a loop around two more costs FXC a third of its time. Only cells at offsets
// -1 to 1 are searched, so some borders are missed, as in Blender. Points nearer than 0.01 to each other make no
// border.
// The border with a point at distance v is at least half the difference of v and the nearest point's distance away.
// @each DIM 2 3 4
float voronoi_edgeDIM(QWKVoronoiParams params, floatDIM co)
{
    params.metric = 0;
    float scale = params.randomness * 4.656612873077393e-10;
    floatDIM c = floor(co);
    floatDIM local = co - c;
    intDIM base = hash_intDIM(intDIM(c));
    floatDIM nearest = 0.0;
    int nearest_key = 0;
    float radius = 0.0;
    float edge = 3.402823466e+38;
    float limit = edge;
    uint rows = DIM < 3 ? 3u : DIM < 4 ? 9u : 27u;
    [loop] [fastopt]
    for (uint row = 0u; row < 2u * rows; row++)
    {
        [branch]
        if (row == rows)
        {
            radius = sqrt(limit);
            limit = 3.402823466e+38;
        }
        intDIM at = cell_rowDIM(row < rows ? row : row - rows);
        float across = voronoi_acrossDIM(voronoi_gapDIM((floatDIM)at, local, params), params);
        [branch]
        if (across <= limit)
        {
            intDIM v = base + at * 1664525;
            int2 growth = hash_rowDIM(v);
            [loop] [fastopt]
            for (uint i = 0u; i < 3u; i++)
            {
                at.x = cell_offset(i);
                [branch]
                if (voronoi_join(across, voronoi_gap1(float(at.x), local.x, params), params) <= limit)
                {
                    floatDIM other = mad(voronoi_cellDIM(v, growth, at.x), scale, (floatDIM)at - local);
                    [branch]
                    if (row < rows)
                    {
                        float square = dot(other, other);
                        int key = cell_keyDIM(at);
                        bool nearer = square == limit ? key < nearest_key : square < limit;
                        limit = nearer ? square : limit;
                        nearest_key = nearer ? key : nearest_key;
                        nearest = nearer ? other : nearest;
                    }
                    else
                    {
                        floatDIM apart = other - nearest;
                        float square = dot(apart, apart);
                        if (square > 0.0001) edge = min(edge, 0.5 * dot(nearest + other, apart) * rsqrt(square));
                        limit = (radius + 2.0 * edge) * (radius + 2.0 * edge);
                    }
                }
            }
        }
    }
    return edge;
}

// Distance to the nearest border over detail + 1 octaves; the last is weighted by its fraction. normalize divides by
// the interpolated max_distance. A single octave is not interpolated: the interpolation, which starts at 8, loses
// digits.
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
    params.metric = 0;
    floatDIM c = floor(co);
    floatDIM local = co - c;
    floatDIM around = 0.0;
    floatDIM o = 0.0;
    floatDIM h = 0.0;
    float square = 0.0;
    [loop]
    for (int walk = 0; walk < 2; walk++)
    {
        square = voronoi_walkDIM(params, c, around, local, false, walk > 0, o, h);
        around = o;
        local = h * params.randomness;
    }
    return 0.5 * sqrt(square);
}

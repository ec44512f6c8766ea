// Parameters of a Voronoi texture. The caller clamps detail to 0 to 15, roughness and randomness to 0 to 1, and
// smoothness to 0 to 0.5. scale is only used to scale the position back: the coordinate is already scaled.
struct QWKVoronoiParams {
  int feature, metric;
  float scale, detail, roughness, lacunarity, smoothness, exponent, randomness, max_distance, normalize;
};

// Distance, colour and position of a feature point; the position's fourth component is W, the only one in 1D.
struct QWKVoronoiOutput {
  float distance;
  float3 color;
  float4 position;
};

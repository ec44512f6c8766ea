// Reflectance, and the coverage of masked materials.

// Share of unpolarised light that a smooth dielectric boundary reflects. cosi: cosine between the normal and the
// direction to the viewer, of either sign; eta: ratio of the refractive indices, far side over near side. 1 at total
// reflection and for NaN. Tolerance: a few units in the last place of 1.
float fresnel_dielectric_cos(float cosi, float eta) {
  float c = abs(cosi), g = eta * eta - 1.0 + c * c;
  if (!(g > 0.0)) return 1.0;
  g = sqrt(g);
  float a = (g - c) / (g + c), b = (c * (g + c) - 1.0) / (c * (g - c) + 1.0);
  return 0.5 * a * a * (1.0 + b * b);
}

// Opacity of a masked material, which is clipped below 0.5. It is at least 0.5 for a share `alpha` of the pixels of a
// frame, and of the frames at a pixel; never for an alpha of 0, always for 1. pixpos: pixel coordinates; taaidx: frame
// number. Blender has no such function: this is interleaved gradient noise, advanced by the golden ratio from frame to
// frame, which spreads the values of one pixel evenly. The period is 64 frames, to keep the product precise.
float dither_coverage(float alpha, float2 pixpos, float taaidx) {
  float2 p = floor(pixpos);
  float a = frac(52.9829189 * frac(0.06711056 * p.x + 0.00583715 * p.y));
  float n = frac(a + 0.618034 * (taaidx - 64.0 * floor(taaidx / 64.0)));
  return alpha + n - 0.5;
}

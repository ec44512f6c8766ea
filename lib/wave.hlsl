// The Wave texture at p, already scaled; 0 to 1.
// type: 0 bands, 1 rings. bands: 0 X, 1 Y, 2 Z, 3 diagonal. rings: around 0 X, 1 Y, 2 Z, 3 the centre. profile: 0 sine,
// 1 saw, 2 triangle. phase is in radians; the distortion adds noise of `detail` octaves (0 to 15) at detail_scale.
// The nudge of the point stops planes at 0 from flickering.
// Tolerance against Blender: 1e-5 for |p| up to 10. The error grows with |p|, as the rounding error of the angle does.
float tex_wave(int type, int bands, int rings, int profile, float3 p, float distortion, float detail,
    float detail_scale, float detail_roughness, float phase) {
  p = (p + 0.000001) * 0.999999;
  float n = 0.0;
  if (type == 0) {
    n = bands == 0 ? p.x * 20.0 : bands == 1 ? p.y * 20.0 : bands == 2 ? p.z * 20.0 : (p.x + p.y + p.z) * 10.0;
  } else {
    float3 r = p;
    if (rings == 0) r.x = 0.0;
    if (rings == 1) r.y = 0.0;
    if (rings == 2) r.z = 0.0;
    n = length(r) * 20.0;
  }
  n += phase;
  if (distortion != 0.0) {
    float plain = 0.0;
    n += distortion * (2.0 * noise_fractal3_FBM(p * detail_scale, false, clamp(detail, 0.0, 15.0), detail_roughness,
      2.0, 0.0, 0.0, 1.0, plain) - 1.0);
  }
  if (profile == 0) return 0.5 + 0.5 * sin(n - 1.5707964);
  n /= 6.2831855;
  return profile == 1 ? frac(n) : abs(n - floor(n + 0.5)) * 2.0;
}

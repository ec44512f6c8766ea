// Scalar arithmetic of the Math and Map Range nodes. The quotients, remainders and polynomials agree with Blender to a
// few units in the last place; functions that use pow, log or atan2 agree to 1e-6 relative, as far as the GPU's own do.
// Zero divisors are tested with ==. With !=, one of DXC's two targets treats NaN as equal.

// a / b; 0 for a divisor of +0 or -0. An infinite quotient is returned unchanged.
float safe_divide(float a, float b) {
  return b == 0.0 ? 0.0 : a / b;
}

// a to the power of b, for every a: 1 for b = 0 (also 0^0) and for a = 1 (also with a NaN exponent), 0 for a = 0 (also
// with negative b), 0 for a negative base with a fractional exponent; Blender counts an exponent beyond 2^31 as
// fractional. A negative base with an integer exponent takes its sign from the exponent's parity. HLSL's pow handles
// none of these cases, so it only gets positive bases.
float safe_powf(float a, float b) {
  float p = pow(abs(a), b);
  if (a < 0.0 && b != 2.0 * trunc(b * 0.5)) p = -p;
  if (a == 0.0 || (a < 0.0 && !(b == trunc(b) && abs(b) < 2147483648.0))) p = 0.0;
  if (b == 0.0 || a == 1.0) p = 1.0;
  return p;
}

// Logarithm of a to the base b; 0 where a or b is not positive and for base 1. The ratio is the same for logarithms of
// any base, and GPUs have log2.
float safe_logf(float a, float b) {
  return (a <= 0.0 || b <= 0.0) ? 0.0 : safe_divide(log2(a), log2(b));
}

// Square root; 0 for negative a.
float safe_sqrtf(float a) {
  return sqrt(max(a, 0.0));
}

// 1 / sqrt(a); 0 unless a is positive.
float inversesqrtf(float a) {
  return a > 0.0 ? rsqrt(a) : 0.0;
}

// a - b * q without rounding, for the integer q nearest to a / b. The product of two floats is the exact sum of two
// floats, computed from the halves of its factors. 4097 = 2^12 + 1 splits 24 bits in the middle. `precise` stops the
// compiler from fusing or reordering any of it.
float modulo_step(float a, float b) {
  float q = floor(a / b + 0.5);
  precise float2 both = float2(q, b);
  precise float2 scaled = both * 4097.0;
  precise float2 high = scaled - (scaled - both);
  precise float2 low = both - high;
  precise float product = q * b;
  precise float below = ((high.x * high.y - product) + high.x * low.y + low.x * high.y) + low.x * low.y;
  precise float rest = (a - product) - below;
  return rest;
}

// Remainder of a / b with the sign of a, exact; 0 for b = 0. An infinite b returns a. A quotient of up to 2^20 takes
// one step, each further step another 20 bits; beyond 1e34 the remainder is 0. Very large and very small operands are
// scaled by 2^-40 or 2^40, so that the halves neither overflow nor are flushed to 0.
float safe_modulo(float a, float b) {
  float2 v = abs(float2(a, b));
  if (!(v.x / v.y <= 1e34)) return 0.0;
  float scale = v.x > 1e30 ? 9.094947017729282e-13 : v.y < 1e-18 ? 1099511627776.0 : 1.0;
  float back = v.x > 1e30 ? 1099511627776.0 : v.y < 1e-18 ? 9.094947017729282e-13 : 1.0;
  float r = v.x * scale;
  float period = v.y * scale;
  if (v.x < v.y) return a;
  [loop]
  while (abs(r) >= period) r = modulo_step(r, period);
  r = (r < 0.0 ? r + period : r) * back;
  return a < 0.0 ? -r : r;
}

// Remainder of a / b with the sign of b; 0 for b = 0.
float safe_floored_modulo(float a, float b) {
  return b == 0.0 ? 0.0 : a - floor(a / b) * b;
}

// Wraps a into the range from c (lowest) to b (highest) by whole periods; c for an empty range. b below c is allowed.
float wrapf(float a, float b, float c) {
  float r = b - c;
  return r == 0.0 ? c : a - r * floor((a - c) / r);
}

// Triangle wave of a between 0 and |b|, 0 at the even multiples of b; 0 for b = 0.
float pingpongf(float a, float b) {
  return b == 0.0 ? 0.0 : abs(frac((a - b) / (b * 2.0)) * b * 2.0 - b);
}

// Angle of the point (b, a) in radians; 0 for the origin, which HLSL's atan2 leaves undefined.
float compatible_atan2(float a, float b) {
  return (a == 0.0 && b == 0.0) ? 0.0 : atan2(a, b);
}

// -1, 0 or 1; 0 for either zero, 1 for NaN.
float compatible_signf(float a) {
  return a < 0.0 ? -1.0 : (a == 0.0 ? 0.0 : 1.0);
}

// The smaller of a and b, rounded off by a cubic where they are closer than c; c of 0 and below does not round.
float smoothminf(float a, float b, float c) {
  float h = max(c - abs(a - b), 0.0) / c;
  return c == 0.0 ? min(a, b) : min(a, b) - h * h * h * c * (1.0 / 6.0);
}

// Hermite step from 0 below lo to 1 from hi on. With lo = hi a hard step: the two tests cover every x, so the division
// is unused.
float smoothstepc(float lo, float hi, float x) {
  float t = (x - lo) / (hi - lo);
  return x < lo ? 0.0 : (x >= hi ? 1.0 : mad(t, -2.0, 3.0) * (t * t));
}

// Step of the fifth order from 0 at lo to 1 at hi; 0 everywhere if lo = hi.
float smootherstep(float lo, float hi, float x) {
  float t = saturate(safe_divide(x - lo, hi - lo));
  return t * t * t * (t * (t * 6.0 - 15.0) + 10.0);
}

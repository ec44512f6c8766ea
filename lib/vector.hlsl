// Vector arithmetic of the Vector Math node. All agree with Blender to a few units in the last place, safe_pow3 to
// 1e-6 relative.

// a / b in each component; 0 where the divisor is 0.
float3 safe_divide3(float3 a, float3 b) {
  return float3(safe_divide(a.x, b.x), safe_divide(a.y, b.y), safe_divide(a.z, b.z));
}

// a normalized. The zero vector stays zero, and a vector whose squared length underflows is returned unchanged; one
// whose squared length overflows becomes zero.
float3 safe_normalize(float3 a) {
  float l = dot(a, a);
  return a * (l == 0.0 ? 1.0 : rsqrt(l));
}

// Projection of a on b; zero for b = 0.
float3 project3(float3 a, float3 b) {
  float l = dot(b, b);
  return l == 0.0 ? float3(0.0, 0.0, 0.0) : dot(a, b) / l * b;
}

// a mirrored at the plane of the unit vector `normal`; a itself for a zero normal.
float3 reflect3(float3 a, float3 normal) {
  return a - 2.0 * normal * dot(a, normal);
}

// Refraction of the direction a at the unit vector `normal`, ior the ratio of the indices; zero at total reflection. a
// is not normalized.
float3 refract3(float3 a, float3 normal, float ior) {
  float d = dot(normal, a);
  float k = 1.0 - ior * ior * (1.0 - d * d);
  return k < 0.0 ? float3(0.0, 0.0, 0.0) : ior * a - (ior * d + sqrt(k)) * normal;
}

// a if the incident vector b points against the reference c, else -a, also at a right angle.
float3 faceforward3(float3 a, float3 b, float3 c) {
  return dot(c, b) < 0.0 ? a : -a;
}

// safe_modulo in each component.
float3 safe_fmod3(float3 a, float3 b) {
  return float3(safe_modulo(a.x, b.x), safe_modulo(a.y, b.y), safe_modulo(a.z, b.z));
}

// Wraps a into the range from c to b in each component; c for an empty range. Unlike wrapf it subtracts c first, which
// changes the last bits.
float3 wrap3(float3 a, float3 b, float3 c) {
  float3 v = a - c, r = b - c;
  return c + float3(safe_floored_modulo(v.x, r.x), safe_floored_modulo(v.y, r.y), safe_floored_modulo(v.z, r.z));
}

// safe_powf in each component.
float3 safe_pow3(float3 a, float3 b) {
  return float3(safe_powf(a.x, b.x), safe_powf(a.y, b.y), safe_powf(a.z, b.z));
}

// compatible_signf in each component.
float3 compatible_sign3(float3 a) {
  return float3(compatible_signf(a.x), compatible_signf(a.y), compatible_signf(a.z));
}

// The Mapping and Vector Rotate nodes: right-handed rotations, angles in radians. They agree with Blender to 1e-6 of
// the largest component, as far as the GPU's sin and cos do.

// v rotated about x, then y, then z by the angles r. Three plane rotations cost half as much as the matrix that Blender
// builds, and the result is bit-identical if only one of the angles is not 0.
float3 euler_rotate(float3 v, float3 r) {
  float3 s = sin(r), c = cos(r);
  v.yz = mad(c.x, v.yz, s.x * float2(-v.z, v.y));
  v.xz = mad(c.y, v.xz, s.y * float2(v.z, -v.x));
  v.xy = mad(c.z, v.xy, s.z * float2(-v.y, v.x));
  return v;
}

// The inverse of euler_rotate: rotates by -r about z, then y, then x.
float3 euler_unrotate(float3 v, float3 r) {
  float3 s = sin(r), c = cos(r);
  v.xy = mad(c.z, v.xy, s.z * float2(v.y, -v.x));
  v.xz = mad(c.y, v.xz, s.y * float2(-v.z, v.x));
  v.yz = mad(c.x, v.yz, s.x * float2(v.z, -v.y));
  return v;
}

// The Mapping node. type: 0 point, 1 texture (the inverse of point), 2 vector (no location), 3 normal (no location,
// unit length). Division by a scale of 0 gives 0 in its component, and a zero normal stays zero.
float3 mapping(int type, float3 v, float3 location, float3 rotation, float3 scale) {
  if (type == 1) return safe_divide3(euler_unrotate(v - location, rotation), scale);
  if (type == 3) return safe_normalize(euler_rotate(safe_divide3(v, scale), rotation));
  float3 p = euler_rotate(v * scale, rotation);
  return type == 0 ? p + location : p;
}

// v rotated about the unit vector n.
float3 axis_rotate(float3 v, float3 n, float angle) {
  float k = cos(angle);
  return k * v + sin(angle) * cross(n, v) + (1.0 - k) * dot(n, v) * n;
}

// The Vector Rotate node. mode: 0 about axis, 1 to 3 about x, y, z by angle, 4 by the angles of rotation; invert 1
// inverts the rotation. A zero axis returns v.
float3 vector_rotate(int mode, int invert, float3 v, float3 center, float3 axis, float angle, float3 rotation) {
  float3 p = v - center;
  if (mode == 4) {
    if (invert != 0) return euler_unrotate(p, rotation) + center;
    return euler_rotate(p, rotation) + center;
  }
  float3 n = axis;
  if (mode == 1) n = float3(1.0, 0.0, 0.0);
  if (mode == 2) n = float3(0.0, 1.0, 0.0);
  if (mode == 3) n = float3(0.0, 0.0, 1.0);
  float l = dot(n, n);
  return l == 0.0 ? v : axis_rotate(p, n * rsqrt(l), invert != 0 ? -angle : angle) + center;
}

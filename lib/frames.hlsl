// Transformations between spaces and the geometry of bump mapping. ox, oy, oz are the columns of the object's matrix:
// they contain its scale and need be neither unit vectors nor orthogonal. All agree with Blender to 1e-6 unless stated.

// A normal from object to world space, unit length. It is transformed by the inverse transpose of the matrix, so that
// it stays perpendicular to the surface of a stretched object, and has the right sign for a mirrored one. The columns
// of the inverse transpose are cross products of the axes over the determinant, of which only the sign survives the
// normalization. A zero normal, or axes that leave none, return zero.
float3 n_obj_to_world(float3 n, float3 ox, float3 oy, float3 oz) {
  float3 c = cross(oy, oz);
  float3 w = safe_normalize(n.x * c + n.y * cross(oz, ox) + n.z * cross(ox, oy));
  return dot(ox, c) < 0.0 ? -w : w;
}

// A direction from world to object space by the inverse of the matrix; its length changes with the scale. Zero if the
// matrix has no inverse. A component is the triple product of d and two axes over the determinant. d is in the cross
// products: those of the axes would be common to all calls, and compilers would keep all nine components in registers
// from the first call to the last one, for a bump across all the textures that it reads.
float3 dir_world_to_obj(float3 d, float3 ox, float3 oy, float3 oz) {
  float det = dot(ox, cross(oy, oz));
  float3 c = cross(d, oy);
  float3 v = float3(dot(oz, c), dot(ox, cross(d, oz)), -dot(ox, c));
  return v * (det == 0.0 ? 0.0 : 1.0 / det);
}

// A direction from world to object space by the rotation alone, which is all that Unreal applies to the frame of a
// vertex. The component of a zero axis is 0; with sheared axes the result is approximate.
float3 rot_to_obj(float3 v, float3 ox, float3 oy, float3 oz) {
  return float3(dot(v, safe_normalize(ox)), dot(v, safe_normalize(oy)), dot(v, safe_normalize(oz)));
}

// n flipped to the side of `incoming`, which points to the viewer; n itself at a right angle. Where screen derivatives
// make the normal NaN, the result is `incoming`, so that a bump stays finite there.
float3 facing_normal(float3 n, float3 incoming) {
  float side = dot(n, incoming);
  return side < 0.0 ? -n : (side >= 0.0 ? n : incoming);
}

// A unit vector perpendicular to the unit vector n, the same one as Blender's; zero for n = 0. It is the normalized
// cross product with (1, 1, 1). That is zero if n lies on the diagonal, where a constant replaces it: 1.2247449 is the
// root of 3/2, and n.x there that of 1/3.
float3 make_orthonormals_a(float3 n) {
  float3 t = n.zxy - n.yzx;
  float l = dot(t, t);
  return l == 0.0 ? float3(0.0, 1.2247449, -1.2247449) * n.x : t * rsqrt(l);
}

// Length (in the unit of `view`) of the step between neighbouring pixels at the shaded point: the distance times the
// angle between their two rays, averaged over the horizontal and the vertical neighbour. view: the point in camera
// space, z along the view axis; tanfov: tangent of half the field of view; vsize: pixels; both horizontal, vertical. 0
// at the camera.
// The sine approximates the chord of that angle to 2e-4 for a view of 64 pixels and to 1e-6 for usual ones, better than
// the difference of two unit vectors, which cancels.
float bump_dp(float3 view, float2 tanfov, float2 vsize) {
  float2 d = 2.0 * tanfov * view.z / max(vsize, 1.0);
  float3 h = view + float3(d.x, 0.0, 0.0), v = view + float3(0.0, d.y, 0.0);
  float dx = abs(d.x) * sqrt(dot(view.yz, view.yz) / dot(h, h));
  float dy = abs(d.y) * sqrt(dot(view.xz, view.xz) / dot(v, v));
  return dot(view, view) > 0.0 ? 0.5 * (dx + dy) : 0.0;
}

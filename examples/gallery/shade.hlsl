// A plain physically based surface under rectangular lights: Lambert, a GGX lobe and a GGX clear coat, with the
// meaning that Unreal gives to the outputs; the coat lies on a normal of its own. Light is gathered from points on
// the lights and from directions that the surface favours, weighted against each other. Metres, right-handed, z up.
//
// Ahead of this text stand constants of the scene: LIGHTS, LIGHT_AT, LIGHT_A, LIGHT_B (the halves of its sides),
// LIGHT_GLOW (radiance), SKY and GROUND (radiance from above and below the horizon), FLOOR (reflectance of the
// studio's floor and rear wall, negative for no studio), STUDIO (where the floor begins to rise, radius of the
// rise), BLOCKER (what casts shadows: 1 a sphere, 2 a box, 0 nothing), BLOCKER_SIZE (radius or half edge),
// BLOCKER_X, BLOCKER_Y (directions of the box's sides), BLOCKER_BASE, BLOCKER_GLOW (its mean colour and emission).

static const float PI = 3.14159265;
static const float FLOOR_Z = -1.0;
static const float FAR = 1e6;

struct Surface {
  float3 at, normal, view, base, coat_normal;
  float3 seen;  // shares of the lights that the surface's own relief lets by
  float open;   // the same for the surroundings
  float metallic, alpha, f0, coat, coat_alpha;  // alpha: the square of the roughness
};

uint hashed(uint x) {
  x = (x ^ (x >> 16)) * 0x7feb352du;
  x = (x ^ (x >> 15)) * 0x846ca68bu;
  return x ^ (x >> 16);
}

// An even sequence in the unit square, moved by a seed of the pixel.
float2 spread(int i, uint seed) {
  float2 shift = float2(hashed(seed), hashed(seed + 0x9e3779b9u)) / 4294967296.0;
  return frac(shift + float(i) * float2(0.7548776662, 0.5698402910));
}

float3 around(float3 n, float3 v) {
  float3 a = normalize(cross(abs(n.z) < 0.9 ? float3(0.0, 0.0, 1.0) : float3(1.0, 0.0, 0.0), n));
  return a * v.x + cross(n, a) * v.y + n * v.z;
}

// ---- what is around

// Distance at which a ray enters the object that casts shadows, or FAR.
float blocked(float3 at, float3 to) {
  if (BLOCKER == 1) {
    float b = dot(at, to), q = b * b - dot(at, at) + BLOCKER_SIZE * BLOCKER_SIZE;
    return q > 0.0 && -b - sqrt(max(q, 0.0)) > 0.0 ? -b - sqrt(max(q, 0.0)) : FAR;
  }
  if (BLOCKER == 2) {
    float3 z = float3(0.0, 0.0, 1.0), p = at - float3(0.0, 0.0, FLOOR_Z + BLOCKER_SIZE);
    float3 o = float3(dot(p, BLOCKER_X), dot(p, BLOCKER_Y), p.z);
    float3 d = float3(dot(to, BLOCKER_X), dot(to, BLOCKER_Y), to.z);
    float3 one = (-BLOCKER_SIZE - o) / d, two = (BLOCKER_SIZE - o) / d, near = min(one, two), far = max(one, two);
    float enter = max(near.x, max(near.y, near.z)), leave = min(far.x, min(far.y, far.z));
    return enter <= leave && enter > 1e-4 ? enter : FAR;
  }
  return FAR;
}

// The floor that rises to a wall. Gives the distance (FAR: none) and the normal.
float studio(float3 at, float3 to, out float3 normal) {
  normal = float3(0.0, 0.0, 1.0);
  if (FLOOR.x < 0.0) return FAR;
  float t = to.z < 0.0 ? (FLOOR_Z - at.z) / to.z : FAR;
  if (t < FAR && at.y + t * to.y < STUDIO.x) return max(t, 0.0);
  float2 o = at.yz - float2(STUDIO.x, FLOOR_Z + STUDIO.y), d = to.yz;
  float a = dot(d, d), b = dot(o, d), q = b * b - a * (dot(o, o) - STUDIO.y * STUDIO.y);
  if (q > 0.0) {
    t = (-b + sqrt(q)) / a;
    float2 p = o + t * d;
    normal = float3(0.0, -p / STUDIO.y);
    if (t > 0.0 && p.x >= 0.0 && p.y <= 0.0) return t;
  }
  normal = float3(0.0, -1.0, 0.0);
  return to.y > 1e-4 ? (STUDIO.x + STUDIO.y - at.y) / to.y : FAR;
}

float3 light_normal(int k) { return normalize(cross(LIGHT_A[k], LIGHT_B[k])); }

// Distance at which a ray meets a light's bright side, or FAR.
float light_hit(int k, float3 at, float3 to) {
  float3 n = light_normal(k);
  float falling = dot(to, n);
  if (falling >= -1e-5) return FAR;
  float t = dot(LIGHT_AT[k] - at, n) / falling;
  float3 p = at + t * to - LIGHT_AT[k];
  float a = dot(p, LIGHT_A[k]) / dot(LIGHT_A[k], LIGHT_A[k]), b = dot(p, LIGHT_B[k]) / dot(LIGHT_B[k], LIGHT_B[k]);
  return t > 0.0 && max(abs(a), abs(b)) <= 1.0 ? t : FAR;
}

// Probability per solid angle that the light's sampling takes this direction.
float light_pdf(int k, float3 to, float t) {
  return t * t / max(-dot(to, light_normal(k)) * 4.0 * length(LIGHT_A[k]) * length(LIGHT_B[k]), 1e-6);
}

// Light on a point from all lights as if each were its middle, for what is seen in reflections only.
float3 rough_light(float3 at, float3 n) {
  float3 sum = float3(0.0, 0.0, 0.0);
  for (int k = 0; k < LIGHTS; k++) {
    float3 to = LIGHT_AT[k] - at;
    float far = length(to);
    to /= far;
    float area = 4.0 * length(LIGHT_A[k]) * length(LIGHT_B[k]);
    float e = saturate(dot(n, to)) * saturate(-dot(to, light_normal(k))) * area / (far * far + area / PI);
    if (blocked(at + 1e-3 * n, to) > far) sum += e * LIGHT_GLOW[k];
  }
  return sum;
}

// What arrives along a ray from all but the lights.
float3 surroundings(float3 at, float3 to) {
  float3 n;
  float wall = studio(at, to, n), thing = blocked(at, to);
  float3 ambient = lerp(GROUND, SKY, 0.5 + 0.5 * to.z);
  if (thing < wall) {
    float3 p = at + thing * to, away = BLOCKER == 1 ? normalize(p) : -to;
    return BLOCKER_GLOW + BLOCKER_BASE * (rough_light(p + 1e-3 * away, away) / PI + ambient);
  }
  if (wall < FAR) return FLOOR * (rough_light(at + wall * to, n) / PI + SKY);
  return ambient;
}

// ---- the surface

float ggx(float alpha, float nh) {
  float d = nh * nh * (alpha * alpha - 1.0) + 1.0;
  return alpha * alpha / (PI * d * d);
}

// Smith's shadowing of both directions, divided by 4 nl nv.
float visibility(float alpha, float nl, float nv) {
  float a2 = alpha * alpha;
  return 0.5 / (nl * sqrt(nv * nv * (1.0 - a2) + a2) + nv * sqrt(nl * nl * (1.0 - a2) + a2));
}

float rising(float vh) { return pow(saturate(1.0 - vh), 5.0); }

// What the coat reflects of light that comes at this cosine.
float mirrored(float cosine) { return 0.04 + 0.96 * rising(cosine); }

// Light passed on towards the viewer, cosine included; `pdf`: how likely `favoured` takes this direction.
float3 scattered(Surface s, float3 to, out float pdf) {
  float3 h = normalize(to + s.view);
  float vh = max(dot(s.view, h), 1e-4), lobes = s.coat > 0.0 ? 3.0 : 2.0;
  float nl = dot(s.normal, to), nv = max(dot(s.normal, s.view), 1e-3), nh = saturate(dot(s.normal, h));
  float3 f0 = lerp(float3(s.f0, s.f0, s.f0), s.base, s.metallic), f = f0 + (1.0 - f0) * rising(vh);
  float3 color = s.base * (1.0 - s.metallic) * (1.0 - max(f.x, max(f.y, f.z))) / PI;
  color += f * ggx(s.alpha, nh) * visibility(s.alpha, max(nl, 1e-3), nv);
  color *= max(nl, 0.0);
  pdf = (max(nl, 0.0) / PI + ggx(s.alpha, nh) * nh / (4.0 * vh)) / lobes;
  if (s.coat > 0.0) {
    float cl = dot(s.coat_normal, to), cv = max(dot(s.coat_normal, s.view), 1e-3);
    float ch = saturate(dot(s.coat_normal, h)), d = ggx(s.coat_alpha, ch);
    color *= (1.0 - s.coat * mirrored(cl)) * (1.0 - s.coat * mirrored(cv));
    if (cl > 0.0) color += s.coat * mirrored(vh) * d * visibility(s.coat_alpha, cl, cv) * cl;
    pdf += d * ch / (4.0 * vh) / lobes;
  }
  return color;
}

// A direction that the surface favours.
float3 favoured(Surface s, float2 u, int i) {
  int lobe = i % (s.coat > 0.0 ? 3 : 2);
  float turn = 2.0 * PI * u.y;
  if (lobe == 0) return around(s.normal, float3(sqrt(u.x) * float2(cos(turn), sin(turn)), sqrt(1.0 - u.x)));
  float alpha = lobe == 1 ? s.alpha : s.coat_alpha;
  float z = sqrt((1.0 - u.x) / (1.0 + (alpha * alpha - 1.0) * u.x));
  float3 h = float3(sqrt(saturate(1.0 - z * z)) * float2(cos(turn), sin(turn)), z);
  return reflect(-s.view, lobe == 1 ? around(s.normal, h) : around(s.coat_normal, h));
}

float3 from_lights(Surface s, float2 u) {
  float3 sum = float3(0.0, 0.0, 0.0);
  [loop] for (int k = 0; k < LIGHTS; k++) {
    float3 to = LIGHT_AT[k] + (2.0 * u.x - 1.0) * LIGHT_A[k] + (2.0 * u.y - 1.0) * LIGHT_B[k] - s.at;
    float t = length(to), pdf;
    to /= t;
    float3 f = scattered(s, to, pdf);
    if (dot(to, light_normal(k)) < -1e-5 && pdf > 0.0 && blocked(s.at, to) > t)
      sum += s.seen[k] * f * LIGHT_GLOW[k] / (light_pdf(k, to, t) + pdf);
  }
  return sum;
}

float3 from_favoured(Surface s, float3 to) {
  float pdf;
  float3 f = scattered(s, to, pdf), seen = float3(0.0, 0.0, 0.0), n;
  if (pdf <= 0.0) return seen;
  float nearest = min(studio(s.at, to, n), blocked(s.at, to));
  [loop] for (int k = 0; k < LIGHTS; k++) {
    float t = light_hit(k, s.at, to);
    if (t < nearest) return s.seen[k] * f * LIGHT_GLOW[k] / (pdf + light_pdf(k, to, t));
  }
  return s.open * f * surroundings(s.at, to) / pdf;
}

float3 lit(Surface s, int count, uint seed) {
  float3 sum = float3(0.0, 0.0, 0.0);
  [loop] for (int i = 0; i < count; i++) {
    sum += from_lights(s, spread(i, seed));
    // No single bright direction may spoil a pixel.
    sum += min(from_favoured(s, favoured(s, spread(i, seed + 7u), i)), 12.0);
  }
  return sum / float(count);
}

// Surface prelude of the mray library: what every surface shader knows about
// the point it shades, the lights and the surroundings.  World space is metres,
// y up; colours are linear light.  All names begin with tv or TV_.

in vec3 tvPosition;      // point shaded, world space
in vec3 tvObject;        // the same point in the object's own space, about [-1,1]^3
in vec3 tvNormal;        // world space, not of unit length after interpolation
in vec3 tvTangent;       // world space, direction of increasing u
in vec2 tvUV;            // 0..1
in vec4 tvLit;           // how much of each light is seen from here, 0..1
in float tvOpen;         // how open the point is to its surroundings, 0..1
uniform vec3 tvEye;      // camera position, world space
uniform float tvTime;    // 0 in a still picture
out vec4 tvColor;        // linear light; the renderer exposes and encodes it

const int TV_MAX_LIGHTS = 4;
const float TV_PI = 3.14159265;
uniform int tvLights;                        // lights in the scene
uniform vec4 tvLightPlace[TV_MAX_LIGHTS];    // w 1: position, w 0: direction to it
uniform vec4 tvLightColor[TV_MAX_LIGHTS];    // rgb strength, a angular size
uniform vec3 tvSky[9];                       // surroundings as spherical harmonics
uniform sampler2D tvSurround;                // surroundings, rougher in each level

// ---- Lights

// Number of lights in the scene.
int tvLightCount()
{
    return min(tvLights, TV_MAX_LIGHTS);
}

// Unit vector from p to light i.
vec3 tvLightDirection(int i, vec3 p)
{
    return normalize(tvLightPlace[i].xyz - p * tvLightPlace[i].w);
}

// Colour arriving at p from light i, distance and soft shadow included.  The
// scale is such that a white matte surface facing the light shows this colour
// (that is: irradiance divided by pi).
vec3 tvLightRadiance(int i, vec3 p)
{
    vec3 way = tvLightPlace[i].xyz - p;
    float falloff = mix(1.0, max(dot(way, way), 0.01), tvLightPlace[i].w);
    return tvLightColor[i].rgb * tvLit[i] / falloff;
}

// ---- Surroundings

// Radiance of the surroundings in a direction, blurred by roughness 0..1.
// Unit vectors are unfolded as an octahedron (Cigolle et al. 2014).
vec3 tvEnvironment(vec3 direction, float roughness)
{
    vec3 d = direction / (abs(direction.x) + abs(direction.y) + abs(direction.z));
    vec2 side = vec2(d.x < 0.0 ? -1.0 : 1.0, d.z < 0.0 ? -1.0 : 1.0);
    vec2 at = d.y < 0.0 ? (1.0 - abs(d.zx)) * side : d.xz;
    vec3 seen = textureLod(tvSurround, at * 0.46875 + 0.5, clamp(roughness, 0.0, 1.0) * 4.0).rgb;
    // Downwards the object meets its own shadow on the ground.
    vec2 ground = tvPosition.xz - d.xz * (tvPosition.y / min(d.y, -0.05));
    float shade = 0.75 * exp(-1.2 * dot(ground, ground));
    return seen * (1.0 - shade * clamp(-d.y * 6.0, 0.0, 1.0));
}

// Light from all around on a matte surface, irradiance divided by pi
// (Ramamoorthi and Hanrahan 2001; the cosine lobe is already in tvSky).
vec3 tvAmbient(vec3 n)
{
    vec3 sum = tvSky[0] + tvSky[1] * n.y + tvSky[2] * n.z + tvSky[3] * n.x
        + tvSky[4] * (n.x * n.y) + tvSky[5] * (n.y * n.z) + tvSky[6] * (3.0 * n.z * n.z - 1.0)
        + tvSky[7] * (n.x * n.z) + tvSky[8] * (n.x * n.x - n.y * n.y);
    return max(sum, 0.0) * tvOpen;
}

// ---- Reflection

// Unit vector from p to the eye.
vec3 tvView(vec3 p)
{
    return normalize(tvEye - p);
}

// Reflectance at a given cosine of incidence (Schlick 1994).
vec3 tvFresnel(float cosine, vec3 f0)
{
    return f0 + (1.0 - f0) * pow(1.0 - clamp(cosine, 0.0, 1.0), 5.0);
}

// Matte surface of albedo 1: cosine over all lights, and the ambient light.
vec3 tvLambert(vec3 n, vec3 p)
{
    vec3 sum = tvAmbient(n);
    for (int i = 0; i < tvLightCount(); ++i)
    {
        sum += tvLightRadiance(i, p) * max(dot(n, tvLightDirection(i, p)), 0.0);
    }
    return sum;
}

// Glossy reflection of all lights and of the surroundings; v points to the eye.
// Microfacets after Walter et al. 2007, height-correlated masking after Heitz
// 2014, reflectance of the surroundings after Lazarov 2013.
vec3 tvSpecular(vec3 n, vec3 v, vec3 p, float roughness, vec3 f0)
{
    float alpha = max(roughness * roughness, 0.002);
    float nv = clamp(dot(n, v), 0.001, 1.0);
    vec3 sum = vec3(0.0);
    for (int i = 0; i < tvLightCount(); ++i)
    {
        vec3 l = tvLightDirection(i, p);
        vec3 h = normalize(l + v);
        float nl = max(dot(n, l), 0.0);
        float nh = max(dot(n, h), 0.0);
        // A light with a size shows as a wider highlight.
        float wide = min(alpha + 0.5 * tvLightColor[i].a, 1.0);
        float a2 = wide * wide;
        float q = nh * nh * (a2 - 1.0) + 1.0;
        float mask = nl * sqrt(nv * nv * (1.0 - a2) + a2) + nv * sqrt(nl * nl * (1.0 - a2) + a2);
        float lobe = 0.5 * a2 * nl / (q * q * max(mask, 0.0001));
        sum += tvLightRadiance(i, p) * tvFresnel(dot(h, v), f0) * lobe;
    }
    vec4 r = roughness * vec4(-1.0, -0.0275, -0.572, 0.022) + vec4(1.0, 0.0425, 1.04, -0.04);
    float bend = min(r.x * r.x, exp2(-9.28 * nv)) * r.x + r.y;
    vec2 scale = vec2(-1.04, 1.04) * bend + r.zw;
    return sum + tvEnvironment(reflect(-v, n), roughness) * (f0 * scale.x + scale.y) * min(tvOpen * 1.5, 1.0);
}

// Normal bent by a height (in metres times amount) that varies over the surface,
// from screen derivatives only (Mikkelsen 2010).
vec3 tvPerturbNormal(vec3 n, float height, float amount)
{
    vec3 px = dFdx(tvPosition);
    vec3 py = dFdy(tvPosition);
    vec3 rx = cross(py, n);
    vec3 ry = cross(n, px);
    float area = dot(px, rx);
    vec3 slope = sign(area) * (dFdx(height) * rx + dFdy(height) * ry) * amount;
    return normalize(abs(area) * n - slope + n * 1e-12);
}

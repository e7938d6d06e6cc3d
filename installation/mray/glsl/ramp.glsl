// Four colours in a row; the places of the two in the middle are free.

// How far x has come from a to b, 0 to 1.
float mrBetween(float x, float a, float b)
{
    return b - a > 1e-5 ? clamp((x - a) / (b - a), 0.0, 1.0) : step(b, x);
}

vec3 mrRamp_Linear(float x, float a, float b, vec3 c1, vec3 c2, vec3 c3, vec3 c4)
{
    b = max(a, b);
    return mix(mix(mix(c1, c2, mrBetween(x, 0.0, a)), c3, mrBetween(x, a, b)), c4, mrBetween(x, b, 1.0));
}

vec3 mrRamp_Smooth(float x, float a, float b, vec3 c1, vec3 c2, vec3 c3, vec3 c4)
{
    b = max(a, b);
    vec3 t = vec3(mrBetween(x, 0.0, a), mrBetween(x, a, b), mrBetween(x, b, 1.0));
    t = t * t * (3.0 - 2.0 * t);
    return mix(mix(mix(c1, c2, t.x), c3, t.y), c4, t.z);
}

vec3 mrRamp_Steps(float x, float a, float b, vec3 c1, vec3 c2, vec3 c3, vec3 c4)
{
    b = max(a, b);
    // The edges lie half way between the places, as wide as a pixel.
    vec3 edge = 0.5 * vec3(a, a + b, b + 1.0);
    vec3 t = clamp((x - edge) / max(fwidth(x), 1e-4) + 0.5, 0.0, 1.0);
    return mix(mix(mix(c1, c2, t.x), c3, t.y), c4, t.z);
}

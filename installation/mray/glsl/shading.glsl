//@use geometry

// Lit surfaces at the point of the prelude; n has length 1.

vec3 mrMatte(vec3 colour, vec3 n)
{
    return colour * tvLambert(n, tvPosition);
}

// A gloss over a body of colour: what the gloss reflects does not reach the body.
vec3 mrPlastic(vec3 colour, float gloss, float roughness, vec3 n)
{
    vec3 v = mrView();
    vec3 f0 = vec3(0.08 * clamp(gloss, 0.0, 1.0));
    vec3 passed = 1.0 - tvFresnel(dot(n, v), f0) * (1.0 - 0.6 * roughness) * step(0.001, gloss);
    vec3 shine = tvSpecular(n, v, tvPosition, clamp(roughness, 0.03, 1.0), f0) * min(gloss * 20.0, 1.0);
    return colour * tvLambert(n, tvPosition) * passed + shine;
}

vec3 mrMetal(vec3 colour, float roughness, vec3 n)
{
    return tvSpecular(n, mrView(), tvPosition, clamp(roughness, 0.03, 1.0), colour);
}

// Clear lacquer over a finished surface: it tints the light on its way in and
// out, the more the flatter it goes through, and adds its own gloss.
vec3 mrLacquer(vec3 under, vec3 tint, float amount, float roughness, vec3 n)
{
    vec3 v = mrView();
    float cosine = clamp(dot(n, v), 0.0, 1.0);
    // The way through the lacquer after it has bent the light, index 1.5.
    float way = inversesqrt(1.0 - (1.0 - cosine * cosine) / 2.25);
    vec3 coloured = under * pow(max(tint, 0.0001), vec3(way));
    vec3 kept = coloured * (1.0 - tvFresnel(cosine, vec3(0.04)));
    vec3 shine = tvSpecular(n, v, tvPosition, clamp(roughness, 0.02, 1.0), vec3(0.04));
    return mix(under, kept + shine, clamp(amount, 0.0, 1.0));
}

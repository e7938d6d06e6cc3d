//@use noise

// Pushes a point about by three fields of noise.
vec3 mrWarp(vec3 p, float amount, float scale, float octaves)
{
    vec3 q = p * scale;
    float spread = mrSpread(q);
    vec3 push = vec3(mrFractal(q, octaves, 0.5, spread), mrFractal(q + 57.0, octaves, 0.5, spread), mrFractal(q + 113.0, octaves, 0.5, spread));
    return p + amount * (push * 2.0 - 1.0);
}

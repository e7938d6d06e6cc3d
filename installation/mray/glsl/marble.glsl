//@use noise

// Veins and the clouds between them.
vec2 mrMarble(vec3 p, float amount, float octaves, float sharpness, float spread)
{
    // Two fields of noise push the point about before the layers are cut.
    vec3 q = p * 0.9 + vec3(3.1, 7.7, 1.3);
    float a = mrFractal(q, octaves, 0.5, spread) - 0.5;
    float b = mrFractal(q.yzx * 1.3 + 9.2, min(octaves, 4.0), 0.5, spread * 1.3) - 0.5;
    vec3 bent = p + amount * vec3(a, b, a - b) * 1.1;
    float layer = bent.x * 0.8 + bent.y * 1.1 + bent.z * 0.35 + amount * (1.6 * a + 0.7 * b);
    // The veins: where the layers and a second, crossing set change over.
    float cross1 = abs(fract(layer) * 2.0 - 1.0);
    float fold = mrFractal(bent * 1.7 + 21.0, octaves, 0.55, spread * 1.7);
    float cross2 = abs(fold - 0.5) * 2.4;
    float soft = fwidth(layer);
    float thin = pow(clamp(1.0 - cross1, 0.0, 1.0), max(sharpness, 1.0));
    float hair = pow(clamp(1.0 - cross2, 0.0, 1.0), max(sharpness, 1.0) * 2.0);
    // Veins swell and fade along their way.
    float swell = smoothstep(0.25, 0.75, mrFractal(p * 0.7 + 40.0, 2.0, 0.5, spread));
    float veins = max(thin * (0.35 + 0.65 * swell), hair * 0.55 * (1.0 - 0.6 * swell));
    float clouds = clamp(0.5 + 0.9 * b + 0.35 * (fold - 0.5), 0.0, 1.0);
    return vec2(mix(veins, 0.2, smoothstep(0.5, 1.5, min(soft, 1.5))), clouds);
}

//@use noise

// The rings of a log along y, and its fibres.
vec2 mrWood(vec3 p, float rings, float wobble, float grain)
{
    float spread = mrSpread(p);
    vec3 slow = p * vec3(1.1, 0.35, 1.1);
    vec2 bend = vec2(mrNoise(slow + 4.0), mrNoise(slow + 19.0)) + 0.35 * vec2(mrNoise(slow * 2.7 + 7.0), mrNoise(slow * 2.7 + 31.0));
    float ring = length(p.xz + vec2(0.21, 0.13) + 0.22 * wobble * bend) * rings;
    // Years differ: some rings are narrow.
    ring += 0.35 * mrNoise(vec3(ring * 0.37, 0.5, 2.5));
    float pixel = min(fwidth(ring), 1.0);
    float t = fract(ring);
    float late = smoothstep(0.15, 0.88, t) * (1.0 - smoothstep(0.9 - pixel, 1.0, t));
    late = mix(late, 0.45, smoothstep(0.4, 1.0, pixel));
    vec3 fine = p * vec3(55.0, 2.2, 55.0);
    float fibre = mrFractal(fine, 3.0, 0.6, spread * 55.0);
    float pores = smoothstep(0.62, 0.8, mrFractal(p * vec3(38.0, 1.1, 38.0) + 11.0, 2.0, 0.5, spread * 38.0));
    float result = late * 0.75 + grain * ((fibre - 0.5) * 0.8 + pores * 0.4);
    return vec2(clamp(result, 0.0, 1.0), clamp(fibre - 0.5 * pores, 0.0, 1.0));
}

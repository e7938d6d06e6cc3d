// Lattice noise in three dimensions. Points of space go in; mrNoise gives about
// -1 to 1, all others 0 to 1.

uint mrScramble(uint h)
{
    h ^= h >> 16;
    h *= 0x6d2b79f5u;
    h ^= h >> 15;
    h *= 0x9e485565u;
    return h ^ (h >> 14);
}

uint mrHash(ivec3 c)
{
    uvec3 u = uvec3(c) * uvec3(0xa511e9b3u, 0x63d83595u, 0xc3a5c85du);
    return mrScramble(u.x ^ (u.y << 7) ^ (u.y >> 25) ^ (u.z << 13) ^ (u.z >> 19));
}

// Three random numbers, each 0 to 1, out of one hash.
vec3 mrUnpack(uint h)
{
    return vec3(uvec3(h, h >> 10, h >> 20) & 1023u) / 1023.0;
}

float mrRandom(vec3 cell)
{
    return float(mrHash(ivec3(floor(cell))) >> 8) / 16777215.0;
}

float mrSlope(ivec3 c, vec3 d)
{
    return dot(mrUnpack(mrHash(c)) * 2.0 - 1.0, d);
}

float mrNoise(vec3 p)
{
    vec3 cell = floor(p);
    vec3 f = p - cell;
    vec3 s = f * f * f * (f * (f * 6.0 - 15.0) + 10.0);
    ivec3 c = ivec3(cell);
    vec2 o = vec2(0.0, 1.0);
    vec4 low = vec4(mrSlope(c, f), mrSlope(c + ivec3(1, 0, 0), f - o.yxx), mrSlope(c + ivec3(0, 1, 0), f - o.xyx), mrSlope(c + ivec3(1, 1, 0), f - o.yyx));
    vec4 high = vec4(mrSlope(c + ivec3(0, 0, 1), f - o.xxy), mrSlope(c + ivec3(1, 0, 1), f - o.yxy), mrSlope(c + ivec3(0, 1, 1), f - o.xyy), mrSlope(c + ivec3(1, 1, 1), f - o.yyy));
    vec4 z = mix(low, high, s.z);
    vec2 y = mix(z.xy, z.zw, s.y);
    return mix(y.x, y.y, s.x) * 1.35;
}

// How far apart two neighbouring pixels are in the space of p.
float mrSpread(vec3 p)
{
    return max(length(dFdx(p)), length(dFdy(p)));
}

// How much of a pattern with features of the size 1 can be seen at that spread:
// detail finer than the pixels would only flicker.
float mrVisible(float spread)
{
    return 1.0 - smoothstep(0.35, 0.9, spread);
}

// Layers of noise, each twice as fine as the last and gain times as strong.
float mrFractal(vec3 p, float octaves, float gain, float spread)
{
    float sum = 0.0;
    float most = 0.0;
    float weight = 1.0;
    for (int i = 0; i < 8; i++)
    {
        float share = weight * clamp(octaves - float(i), 0.0, 1.0);
        if (share <= 0.0)
            break;
        float seen = mrVisible(spread);
        if (seen > 0.0)
            sum += share * seen * mrNoise(p);
        most += share;
        weight *= gain;
        spread *= 2.03;
        p = p * 2.03 + vec3(17.3, 5.9, 31.7);
    }
    return clamp(0.5 + 0.75 * sum / max(most, 0.0001), 0.0, 1.0);
}

// The same with the folds of each layer turned into creases.
float mrTurbulence(vec3 p, float octaves, float gain, float spread)
{
    float sum = 0.0;
    float most = 0.0;
    float weight = 1.0;
    for (int i = 0; i < 8; i++)
    {
        float share = weight * clamp(octaves - float(i), 0.0, 1.0);
        if (share <= 0.0)
            break;
        float seen = mrVisible(spread);
        sum += share * mix(0.3, seen > 0.0 ? abs(mrNoise(p)) : 0.3, seen);
        most += share;
        weight *= gain;
        spread *= 2.03;
        p = p * 2.03 + vec3(17.3, 5.9, 31.7);
    }
    return clamp(1.5 * sum / max(most, 0.0001), 0.0, 1.0);
}

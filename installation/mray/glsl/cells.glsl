//@use noise

// Space divided among one point for each unit cube. Gives the distance from the
// nearest point, the distance from the border to the next cell, and the cell's
// random number.
vec3 mrCells(vec3 p, float scatter)
{
    vec3 home = floor(p);
    vec3 f = p - home;
    ivec3 c = ivec3(home);
    float amount = clamp(scatter, 0.0, 1.0);
    float best = 1e9;
    vec3 nearest = vec3(0.0);
    ivec3 owner = c;
    for (int z = -1; z <= 1; z++)
    for (int y = -1; y <= 1; y++)
    for (int x = -1; x <= 1; x++)
    {
        ivec3 o = ivec3(x, y, z);
        vec3 d = vec3(o) + 0.5 + amount * (mrUnpack(mrHash(c + o)) - 0.5) - f;
        float away = dot(d, d);
        if (away < best)
        {
            best = away;
            nearest = d;
            owner = c + o;
        }
    }
    // The border is the plane half way to another point; neighbours of the
    // owner are tried, since the owner may be a neighbour already.
    float border = 1e9;
    for (int z = -1; z <= 1; z++)
    for (int y = -1; y <= 1; y++)
    for (int x = -1; x <= 1; x++)
    {
        ivec3 o = owner - c + ivec3(x, y, z);
        vec3 d = vec3(o) + 0.5 + amount * (mrUnpack(mrHash(c + o)) - 0.5) - f;
        vec3 way = d - nearest;
        float apart = dot(way, way);
        if (apart > 1e-6)
            border = min(border, dot(0.5 * (d + nearest), way * inversesqrt(apart)));
    }
    return vec3(sqrt(best), border, float(mrScramble(mrHash(owner)) >> 8) / 16777215.0);
}

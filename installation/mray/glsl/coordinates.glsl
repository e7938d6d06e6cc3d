// The spaces in which patterns can be looked up.
vec3 mrSpace_Object() { return tvObject; }
vec3 mrSpace_World() { return tvPosition; }
vec3 mrSpace_Surface() { return vec3(tvUV, 0.0); }

// Turns p round x, then y, then z, by angles in degrees.
vec3 mrTurn(vec3 p, vec3 angles)
{
    vec3 a = radians(angles);
    vec3 c = cos(a);
    vec3 s = sin(a);
    p.yz = vec2(c.x * p.y - s.x * p.z, s.x * p.y + c.x * p.z);
    p.xz = vec2(c.y * p.x + s.y * p.z, c.y * p.z - s.y * p.x);
    p.xy = vec2(c.z * p.x - s.z * p.y, s.z * p.x + c.z * p.y);
    return p;
}

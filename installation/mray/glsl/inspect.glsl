//@use geometry
//@use tiles

// Values as flat colours, to be read off a picture.

// The light that the renderer makes this of, 0 to 1, as a part of the
// brightest pixel: its film bends bright tones and is encoded as sRGB.
vec3 mrPixelOf(vec3 part)
{
    part = clamp(part, 0.0, 1.0);
    vec3 light = mix(part / 12.92, pow((part + 0.055) / 1.055, vec3(2.4)), step(0.04045, part));
    vec3 bright = 0.5 - 0.575 * log(max(1.0 - (light - 0.5) * 2.0, 0.004));
    return mix(light, bright, step(0.5, light));
}

// The same for a colour of linear light, which is not to be bent.
vec3 mrPixelOfLight(vec3 light)
{
    light = clamp(light, 0.0, 1.0);
    return mrPixelOf(mix(light * 12.92, 1.055 * pow(light, vec3(1.0 / 2.4)) - 0.055, step(0.0031308, light)));
}

// Darker along the edge, where nothing is read off: flat as it is, the object
// keeps its shape.
float mrShapeHint()
{
    float front = clamp(dot(mrNormal(), mrView()), 0.0, 1.0);
    return mix(0.55, 1.0, smoothstep(0.0, 0.45, front));
}

bool mrIsNumber(vec4 v)
{
    return !any(isnan(v)) && !any(isinf(v));
}

// Below 0 blue, deeper the further below; above 1 orange, paler the further
// above.
vec3 mrInspect_Value(float x, vec4 v)
{
    if (x < 0.0)
    {
        return mrPixelOf(mix(vec3(0.30, 0.55, 0.95), vec3(0.05, 0.10, 0.45), 1.0 - exp(x)));
    }
    if (x > 1.0)
    {
        return mrPixelOf(mix(vec3(0.90, 0.35, 0.05), vec3(1.00, 0.85, 0.45), 1.0 - exp(1.0 - x)));
    }
    return mrPixelOf(vec3(x));
}

vec3 mrInspect_Colour(float x, vec4 v)
{
    return mrPixelOfLight(v.rgb);
}

// -1 is black, 0 the middle, 1 full: towards the viewer of the scene is blue.
vec3 mrInspect_Direction(float x, vec4 v)
{
    return mrPixelOf(v.xyz * 0.5 + 0.5);
}

// The colour over squares that are seen where it does not cover.
vec3 mrInspect_Cover(float x, vec4 v)
{
    vec3 squares = vec3(mix(0.20, 0.32, mrChecker(tvUV * vec2(32.0, 16.0))));
    return mrPixelOfLight(mix(squares, clamp(v.rgb, 0.0, 1.0), clamp(v.a, 0.0, 1.0)));
}

// The first as red and the second as green; beyond 0 to 1 they come again, a
// little darker.
vec3 mrInspect_Pair(float x, vec4 v)
{
    vec2 inside = clamp(v.xy, 0.0, 1.0);
    bool isInside = all(equal(inside, v.xy));
    return mrPixelOf(vec3(isInside ? inside : fract(v.xy) * 0.85, 0.0));
}

//@use noise

// Patterns on the surface, with edges as sharp as the pixels allow.

// How far two neighbouring pixels are apart in q, along each axis. A jump, as
// at a seam of the surface, is no distance.
vec2 mrPixel(vec2 q)
{
    return min(fwidth(q), vec2(1.0));
}

// A wall: brick or mortar, its relief, and the random number of the brick.
vec3 mrBrick(vec2 uv, vec2 count, float mortar, float rounding, float shift)
{
    vec2 q = uv * max(count, vec2(1.0));
    vec2 pixel = mrPixel(q);
    float row = floor(q.y);
    q.x += shift * mod(row, 2.0);
    vec2 place = vec2(floor(q.x), row);
    // Bricks that lie over the seam of a closed surface are one brick.
    place.x = mod(place.x, max(floor(count.x + 0.5), 1.0));
    vec2 f = q - vec2(floor(q.x), row);
    // Distance from the edge of the brick, measured in heights of a brick:
    // a brick is taken to be twice as long as high.
    vec2 size = vec2(2.0, 1.0);
    vec2 d = (0.5 - abs(f - 0.5)) * size - 0.5 * mortar;
    float wide = max(rounding, 0.001);
    // Round corners: the distance to a box with its corners cut by a circle.
    vec2 g = wide - d;
    float inside = wide - (length(max(g, 0.0)) + min(max(g.x, g.y), 0.0));
    float soft = max(0.75 * max(pixel.x * size.x, pixel.y), 0.002);
    float brick = smoothstep(-soft, soft, inside);
    float t = clamp(inside / (wide + soft), 0.0, 1.0);
    float height = sqrt(t * (2.0 - t));
    float random = mrRandom(vec3(place, 3.0) + 0.5);
    return vec3(brick, height, random);
}

// Squares: 1 on every second one.
float mrChecker(vec2 q)
{
    vec2 pixel = max(mrPixel(q), vec2(0.0001));
    // The mean of the square wave over the pixel, along each axis.
    vec2 low = q - 0.5 * pixel;
    vec2 high = q + 0.5 * pixel;
    vec2 a = floor(low * 0.5) + 2.0 * max(low * 0.5 - floor(low * 0.5) - 0.5, 0.0);
    vec2 b = floor(high * 0.5) + 2.0 * max(high * 0.5 - floor(high * 0.5) - 0.5, 0.0);
    vec2 wave = (b - a) * 2.0 / pixel;
    return clamp(wave.x + wave.y - wave.x * wave.y, 0.0, 1.0);
}

// Stripes across x: 1 on a stripe.
float mrStripes(float x, float width, float softness)
{
    float pixel = min(fwidth(x), 1.0);
    float soft = max(0.75 * pixel, 0.5 * softness);
    float d = 0.5 * width - abs(fract(x) - 0.5);
    return mix(smoothstep(-soft, soft, d), width, smoothstep(0.5, 1.0, pixel));
}

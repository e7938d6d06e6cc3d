// Hue, depth, brightness and contrast of a colour.
vec3 mrAdjust(vec3 c, float hue, float saturation, float brightness, float contrast)
{
    // The hue is turned round the axis of the greys.
    float turn = hue * 6.2831853;
    vec3 axis = vec3(0.57735027);
    c = c * cos(turn) + cross(axis, c) * sin(turn) + axis * dot(axis, c) * (1.0 - cos(turn));
    float grey = dot(max(c, 0.0), vec3(0.2126, 0.7152, 0.0722));
    c = mix(vec3(grey), c, saturation) * brightness;
    // 0.18 looks half way between black and white.
    return max(0.18 * pow(max(c, 0.0) / 0.18, vec3(max(contrast, 0.0))), 0.0);
}

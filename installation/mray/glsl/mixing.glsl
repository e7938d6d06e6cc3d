// What a colour above makes of the colour below, where it lies in full.
vec3 mrMix_Normal(vec3 below, vec3 above) { return above; }
vec3 mrMix_Multiply(vec3 below, vec3 above) { return below * above; }
vec3 mrMix_Screen(vec3 below, vec3 above) { return 1.0 - (1.0 - min(below, 1.0)) * (1.0 - min(above, 1.0)); }
vec3 mrMix_Overlay(vec3 below, vec3 above) { return mix(2.0 * below * above, 1.0 - 2.0 * (1.0 - below) * (1.0 - above), step(0.5, below)); }
vec3 mrMix_Add(vec3 below, vec3 above) { return below + above; }
vec3 mrMix_Difference(vec3 below, vec3 above) { return abs(below - above); }
vec3 mrMix_Lighten(vec3 below, vec3 above) { return max(below, above); }
vec3 mrMix_Darken(vec3 below, vec3 above) { return min(below, above); }

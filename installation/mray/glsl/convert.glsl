// Conversions between the types of wires. A float stands for a grey, a colour
// for its brightness, a missing component for 0 and a missing coverage for 1.
float mrAs_float(float x) { return x; }
float mrAs_float(vec2 x) { return x.x; }
float mrAs_float(vec3 x) { return dot(x, vec3(0.2126, 0.7152, 0.0722)); }
float mrAs_float(vec4 x) { return mrAs_float(x.rgb); }
vec2 mrAs_vec2(float x) { return vec2(x); }
vec2 mrAs_vec2(vec2 x) { return x; }
vec2 mrAs_vec2(vec3 x) { return x.xy; }
vec2 mrAs_vec2(vec4 x) { return x.xy; }
vec3 mrAs_vec3(float x) { return vec3(x); }
vec3 mrAs_vec3(vec2 x) { return vec3(x, 0.0); }
vec3 mrAs_vec3(vec3 x) { return x; }
vec3 mrAs_vec3(vec4 x) { return x.rgb; }
vec4 mrAs_vec4(float x) { return vec4(vec3(x), 1.0); }
vec4 mrAs_vec4(vec2 x) { return vec4(x, 0.0, 1.0); }
vec4 mrAs_vec4(vec3 x) { return vec4(x, 1.0); }
vec4 mrAs_vec4(vec4 x) { return x; }

// Arithmetic that has an answer for every pair of values.
float mrMath_Add(float a, float b) { return a + b; }
vec3 mrMath_Add(vec3 a, vec3 b) { return a + b; }
float mrMath_Subtract(float a, float b) { return a - b; }
vec3 mrMath_Subtract(vec3 a, vec3 b) { return a - b; }
float mrMath_Multiply(float a, float b) { return a * b; }
vec3 mrMath_Multiply(vec3 a, vec3 b) { return a * b; }
float mrMath_Divide(float a, float b) { return b == 0.0 ? 0.0 : a / b; }
vec3 mrMath_Divide(vec3 a, vec3 b) { return vec3(mrMath_Divide(a.x, b.x), mrMath_Divide(a.y, b.y), mrMath_Divide(a.z, b.z)); }
float mrMath_Minimum(float a, float b) { return min(a, b); }
vec3 mrMath_Minimum(vec3 a, vec3 b) { return min(a, b); }
float mrMath_Maximum(float a, float b) { return max(a, b); }
vec3 mrMath_Maximum(vec3 a, vec3 b) { return max(a, b); }
float mrMath_Power(float a, float b) { return a > 0.0 ? pow(a, b) : (a == 0.0 && b == 0.0 ? 1.0 : 0.0); }
vec3 mrMath_Power(vec3 a, vec3 b) { return vec3(mrMath_Power(a.x, b.x), mrMath_Power(a.y, b.y), mrMath_Power(a.z, b.z)); }
float mrMath_Modulo(float a, float b) { return b == 0.0 ? 0.0 : mod(a, b); }
vec3 mrMath_Modulo(vec3 a, vec3 b) { return vec3(mrMath_Modulo(a.x, b.x), mrMath_Modulo(a.y, b.y), mrMath_Modulo(a.z, b.z)); }
float mrMath_Distance(float a, float b) { return abs(a - b); }
vec3 mrMath_Distance(vec3 a, vec3 b) { return abs(a - b); }
float mrMath_Invert(float a, float b) { return 1.0 - a; }
vec3 mrMath_Invert(vec3 a, vec3 b) { return 1.0 - a; }

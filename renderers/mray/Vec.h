// SPDX-License-Identifier: Apache-2.0
// Small vectors for the scene arithmetic.
#pragma once

#include <algorithm>
#include <cmath>
#include <numbers>

namespace tavrin::mray {

inline constexpr float kPi = std::numbers::pi_v<float>;

struct Vec2 {
    float x = 0, y = 0;
};

struct Vec3 {
    float x = 0, y = 0, z = 0;
};

inline Vec2 operator+(Vec2 a, Vec2 b) { return {a.x + b.x, a.y + b.y}; }
inline Vec2 operator-(Vec2 a, Vec2 b) { return {a.x - b.x, a.y - b.y}; }
inline Vec2 operator*(Vec2 a, float s) { return {a.x * s, a.y * s}; }
inline float dot(Vec2 a, Vec2 b) { return a.x * b.x + a.y * b.y; }
inline float length(Vec2 a) { return std::sqrt(dot(a, a)); }

inline Vec3 operator+(Vec3 a, Vec3 b) { return {a.x + b.x, a.y + b.y, a.z + b.z}; }
inline Vec3 operator-(Vec3 a, Vec3 b) { return {a.x - b.x, a.y - b.y, a.z - b.z}; }
inline Vec3 operator-(Vec3 a) { return {-a.x, -a.y, -a.z}; }
inline Vec3 operator*(Vec3 a, Vec3 b) { return {a.x * b.x, a.y * b.y, a.z * b.z}; }
inline Vec3 operator*(Vec3 a, float s) { return {a.x * s, a.y * s, a.z * s}; }
inline Vec3& operator+=(Vec3& a, Vec3 b) { return a = a + b; }
inline float dot(Vec3 a, Vec3 b) { return a.x * b.x + a.y * b.y + a.z * b.z; }
inline float length(Vec3 a) { return std::sqrt(dot(a, a)); }

inline Vec3 cross(Vec3 a, Vec3 b) {
    return {a.y * b.z - a.z * b.y, a.z * b.x - a.x * b.z, a.x * b.y - a.y * b.x};
}

inline Vec3 normalized(Vec3 a) {
    const float n = length(a);
    return n > 0 ? a * (1 / n) : a;
}

inline float mix(float a, float b, float t) { return a + (b - a) * t; }
inline Vec3 mix(Vec3 a, Vec3 b, float t) { return a + (b - a) * t; }

inline float smoothstep(float low, float high, float x) {
    const float t = std::clamp((x - low) / (high - low), 0.0f, 1.0f);
    return t * t * (3 - 2 * t);
}

// Two unit vectors that complete n to a frame.
struct Frame {
    Vec3 u, v, n;
    explicit Frame(Vec3 normal) : n(normal) {
        const Vec3 aside = std::fabs(n.y) < 0.9f ? Vec3{0, 1, 0} : Vec3{1, 0, 0};
        u = normalized(cross(aside, n));
        v = cross(n, u);
    }
    [[nodiscard]] Vec3 at(float x, float y, float z) const { return u * x + v * y + n * z; }
};

// Point i of an evenly spread sequence in the unit square (additive recurrence
// with the plastic number).
inline Vec2 spread(int i) {
    const float a = 0.5f + 0.7548776662f * static_cast<float>(i);
    const float b = 0.5f + 0.5698402910f * static_cast<float>(i);
    return {a - std::floor(a), b - std::floor(b)};
}

}  // namespace tavrin::mray

// SPDX-License-Identifier: Apache-2.0
// Triangle meshes, made by arithmetic from patches over the unit square.
#pragma once

#include <array>
#include <cstdint>
#include <functional>
#include <vector>

#include "Vec.h"

namespace tavrin::mray {

inline constexpr int kMaxLights = 4;

// One vertex as the graphics library sees it.
struct Vertex {
    Vec3 position;  // world space
    Vec3 object;    // object space
    Vec3 normal;
    Vec3 tangent;  // direction of increasing u
    Vec2 uv;
    std::array<float, kMaxLights> lit{1, 1, 1, 1};  // how much of each light is seen
    float open = 1;                                 // how open to the surroundings
};

struct Mesh {
    std::vector<Vertex> vertices;
    std::vector<std::uint32_t> indices;

    using Surface = std::function<Vertex(float u, float v)>;

    // Adds a patch with a vertex at each pair of the given u and v.  Triangles
    // wind so that the side from which v goes up and u to the right is outside.
    void addPatch(const std::vector<float>& us, const std::vector<float>& vs, const Surface& surface);
};

// 0, 1/count, ... 1.
std::vector<float> evenSteps(int count);

}  // namespace tavrin::mray

// SPDX-License-Identifier: Apache-2.0
#include "Bake.h"

namespace tavrin::mray {

namespace {

// Share of a disc light of the given angular radius that is seen from a point:
// the nearest miss on the way, measured in widths of the cone to the light.
float seen(const Shape& shape, Vec3 from, Vec3 towards, float angle) {
    constexpr float kFar = 3.0f;
    float share = 1;
    float t = 0.02f;
    for (int step = 0; step < 48 && t < kFar && share > -1; ++step) {
        const float miss = shape.distance(from + towards * t);
        share = std::min(share, miss / (angle * t));
        t += std::clamp(std::fabs(miss), 0.02f, 0.4f);
    }
    share = std::max(share, -1.0f);
    return 0.25f * (1 + share) * (1 + share) * (2 - share);
}

// How much of the hemisphere over a point is free of the object and the ground.
float openness(const Shape& shape, Vec3 at, Vec3 normal) {
    constexpr float kReach[]{0.05f, 0.15f, 0.3f, 0.55f, 0.9f};
    float sum = 0;
    for (const float reach : kReach) {
        const Vec3 p = at + normal * reach;
        const float room = std::min(shape.distance(p), p.y);
        sum += std::clamp(room / reach, 0.0f, 1.0f);
    }
    const float open = sum / 5;
    return 0.06f + 0.94f * open * open;
}

}  // namespace

void bakeVisibility(Mesh& mesh, const Shape& shape, const LightRig& rig) {
    for (Vertex& vertex : mesh.vertices) {
        vertex.open = openness(shape, vertex.position, vertex.normal);
        const Vec3 from = vertex.position + vertex.normal * 0.01f;
        for (std::size_t i = 0; i < rig.size() && i < kMaxLights; ++i) {
            const Vec3 towards = rig[i].direction(vertex.position);
            const float angle = std::max(rig[i].angle, 0.05f);
            if (dot(towards, vertex.normal) < -0.5f) {
                vertex.lit[i] = 0;
            } else {
                vertex.lit[i] = seen(shape, from, towards, angle);
            }
        }
    }
}

}  // namespace tavrin::mray

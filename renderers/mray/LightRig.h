// SPDX-License-Identifier: Apache-2.0
// Sets of lights.  Every light is a disc that faces the object, or an infinitely
// far one; strength is irradiance divided by pi, where the object stands.
#pragma once

#include <vector>

#include "Mesh.h"

namespace tavrin::mray {

enum class LightKind { Key, Sun, Soft, Rim };

struct Light {
    Vec3 place;        // position, or direction to it
    bool near = true;  // place is a position
    Vec3 color;        // near: strength at one metre; far: strength
    float angle = 0;   // angular radius as seen from the object
    float spill = 1;   // share that is let fall on the ground

    [[nodiscard]] Vec3 direction(Vec3 from) const { return normalized(near ? place - from : place); }
    // Light arriving unhindered at a point.
    [[nodiscard]] Vec3 radiance(Vec3 at) const {
        const Vec3 way = place - at;
        return near ? color * (1 / std::max(dot(way, way), 0.01f)) : color;
    }
};

using LightRig = std::vector<Light>;

LightRig makeLightRig(LightKind kind);

}  // namespace tavrin::mray

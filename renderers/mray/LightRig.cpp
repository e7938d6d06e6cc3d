// SPDX-License-Identifier: Apache-2.0
#include "LightRig.h"

namespace tavrin::mray {

namespace {

constexpr Vec3 kObject{0, 0.9f, 0};  // what the lights point at

Light disc(Vec3 place, float radius, Vec3 tint, float strength, float spill = 1) {
    const Vec3 way = place - kObject;
    const float square = dot(way, way);
    return {place, true, tint * (strength * square), radius / std::sqrt(square), spill};
}

}  // namespace

LightRig makeLightRig(LightKind kind) {
    const Vec3 warm{1.0f, 0.95f, 0.88f};
    const Vec3 cool{0.86f, 0.93f, 1.0f};
    const Vec3 white{1, 1, 1};
    switch (kind) {
        case LightKind::Sun:
            return {{normalized({-0.62f, 0.78f, 0.42f}), false, Vec3{1.0f, 0.94f, 0.84f} * 1.35f, 0.022f, 1}};
        case LightKind::Soft:
            return {disc({0.2f, 5.2f, 0.6f}, 1.9f, white, 0.62f, 0.6f),
                    disc({-4.2f, 4.0f, 2.4f}, 1.8f, warm, 0.36f),
                    disc({4.2f, 3.6f, 2.0f}, 1.8f, cool, 0.22f)};
        case LightKind::Rim:
            return {disc({-3.2f, 3.2f, -3.4f}, 1.1f, white, 1.7f, 0.25f),
                    disc({3.6f, 2.6f, -2.8f}, 1.0f, cool, 1.3f, 0.25f),
                    disc({-1.5f, 5.0f, 4.5f}, 1.2f, warm, 0.10f)};
        case LightKind::Key:
            break;
    }
    return {disc({-3.4f, 4.6f, 3.6f}, 0.8f, warm, 0.95f), disc({4.4f, 2.4f, 3.4f}, 1.6f, cool, 0.10f),
            disc({2.6f, 3.9f, -4.0f}, 0.6f, white, 0.62f, 0.6f)};
}

}  // namespace tavrin::mray

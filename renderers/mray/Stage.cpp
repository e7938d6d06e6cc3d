// SPDX-License-Identifier: Apache-2.0
#include "Stage.h"

#include "Bake.h"

namespace tavrin::mray {

Stage::Plan Stage::Plan::of(const Options& options) {
    const auto small = static_cast<float>(std::min(options.width, options.height));
    return {options.object, options.backdrop, options.light, std::clamp(std::sqrt(small / 240), 1.0f, 4.0f)};
}

Stage::Stage(const Plan& plan)
    : shape_(plan.object),
      rig_(makeLightRig(plan.light)),
      backdrop_(plan.backdrop, rig_),
      detail_(plan.detail) {
    look_ = std::async(std::launch::async, [this] {
        Look look{shape_.mesh(detail_), Surround(backdrop_)};
        bakeVisibility(look.mesh, shape_, rig_);
        return look;
    });
    ground_ = std::async(std::launch::async, [this] {
        look_.wait();
        return GroundLight(shape_.mesh(0.6f * detail_), rig_, backdrop_.ambientUp(), std::min(detail_, 2.5f));
    });
}

std::vector<Vec3> Stage::background(const Camera& camera, const Area& area) const {
    const auto middle = [](int i) { return static_cast<float>(i) + 0.5f; };
    std::vector<Vec3> pixels;
    pixels.reserve(static_cast<std::size_t>(area.width) * static_cast<std::size_t>(area.height));
    for (int y = area.y; y < area.y + area.height; ++y) {
        for (int x = area.x; x < area.x + area.width; ++x) {
            pixels.push_back(behind(camera, camera.direction(middle(x), middle(y))));
        }
    }
    return pixels;
}

Vec3 Stage::behind(const Camera& camera, Vec3 direction) const {
    const Vec3 far = backdrop_.plate(direction);
    if (direction.y > -0.02f) {
        return far;
    }
    const Vec3 p = camera.eye() - direction * (camera.eye().y / direction.y);
    const float fade = smoothstep(1.3f, 8.5f, length(Vec2{p.x, p.z}));
    return fade >= 1 ? far : mix(backdrop_.groundAlbedo() * ground_.get().at(p.x, p.z), far, fade);
}

}  // namespace tavrin::mray

// SPDX-License-Identifier: Apache-2.0
#include "LiveScene.h"

#include "Painter.h"

namespace tavrin::mray {

namespace {

constexpr long kLargePicture = 1'000'000;  // pixels: twelve bytes each

}  // namespace

const Scene& LiveScene::scene(const Gl& gl) {
    if (!scene_) {
        scene_.emplace(gl, stage_);
    }
    return *scene_;
}

std::vector<Vec3> LiveScene::background(const Camera& camera, int width, int height, const Area& area) {
    if (long{width} * height > kLargePicture) {
        return stage_.background(camera, area);
    }
    const Area whole = withMargin({0, 0, width, height});
    const auto make = [&](std::list<Plate>& plates) {
        plates.push_front({whole, stage_.background(camera, whole)});
    };
    const Plate& plate = plates_.find(std::pair(whole.width, whole.height), make).first;
    std::vector<Vec3> pixels;
    pixels.reserve(static_cast<std::size_t>(area.width) * static_cast<std::size_t>(area.height));
    for (int y = area.y; y < area.y + area.height; ++y) {
        const auto from = plate.pixels.begin() + long{y - whole.y} * whole.width + (area.x - whole.x);
        pixels.insert(pixels.end(), from, from + area.width);
    }
    return pixels;
}

}  // namespace tavrin::mray

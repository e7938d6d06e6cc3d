// SPDX-License-Identifier: Apache-2.0
// The camera: slightly above, looking at the object on the ground.
#pragma once

#include <array>

#include "Vec.h"

namespace tavrin::mray {

// A part of the picture in pixels; may reach over its edges.
struct Area {
    int x = 0, y = 0, width = 0, height = 0;  // y counts downwards
};

class Camera {
  public:
    Camera(int width, int height);

    [[nodiscard]] Vec3 eye() const { return eye_; }

    // Unit direction through a point of the picture.
    [[nodiscard]] Vec3 direction(float x, float y) const;

    // Column-major matrix from world space to the clip space in which the area
    // fills the viewport.
    [[nodiscard]] std::array<float, 16> toClip(const Area& area) const;

  private:
    float width_, height_;
    float tanX_, tanY_;
    Vec3 eye_, right_, up_, ahead_;
};

}  // namespace tavrin::mray

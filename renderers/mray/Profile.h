// SPDX-License-Identifier: Apache-2.0
// The outline of the vase: a closed half section in the (radius, height) plane,
// from the middle of the foot up the outside, over the lip and down the inside.
#pragma once

#include <vector>

#include "Vec.h"

namespace tavrin::mray {

class Profile {
  public:
    Profile();

    struct Point {
        Vec2 at;      // radius, height
        Vec2 normal;  // outwards
        float along;  // 0..1 by length
    };

    // count + 1 points along the outline, closer together where it bends.
    [[nodiscard]] std::vector<Point> points(int count) const;

    // Signed distance, negative inside the wall; from a table, accurate enough
    // for shadows.
    [[nodiscard]] float distance(Vec2 p) const;

  private:
    static constexpr int kColumns = 48;
    static constexpr int kRows = 96;
    [[nodiscard]] float exactDistance(Vec2 p) const;
    std::vector<Vec2> outline_;
    std::vector<float> table_;
};

}  // namespace tavrin::mray

// SPDX-License-Identifier: Apache-2.0
// The surroundings prepared for shading: a picture of all directions with one
// level per roughness, and the matte light as spherical harmonics.
#pragma once

#include <array>

#include "Backdrop.h"

namespace tavrin::mray {

class Surround {
  public:
    static constexpr int kLevels = 5;  // roughness 0, 1/4 .. 1
    static constexpr int kSize = 256;  // of the sharpest level; each next one halves

    explicit Surround(const Backdrop& backdrop);

    [[nodiscard]] const std::vector<Vec3>& level(int i) const { return levels_[static_cast<std::size_t>(i)]; }
    // Coefficients with the constants and the cosine lobe folded in.
    [[nodiscard]] const std::array<Vec3, 9>& harmonics() const { return harmonics_; }

  private:
    using Level = std::vector<Vec3>;
    void blur(int level);
    void makeHarmonics();
    [[nodiscard]] Vec3 look(int level, Vec3 direction) const;

    std::array<Level, kLevels> sharp_;  // the same directions, only smaller
    std::array<Level, kLevels> levels_;
    std::array<Vec3, 9> harmonics_{};
};

}  // namespace tavrin::mray

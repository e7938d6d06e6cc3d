// SPDX-License-Identifier: Apache-2.0
// The picture: takes samples in linear light, puts them over the background and
// develops them: filter, tone curve, sRGB, dither.
#pragma once

#include <cstdint>
#include <vector>

#include "Camera.h"

namespace tavrin::mray {

// Samples per pixel as a grid.
struct Grid {
    int x = 1, y = 1;
    static Grid of(int samples);
};

class Film {
  public:
    // Pixels that a tile needs around it for the filter.
    static constexpr int kMargin = 1;

    Film(int width, int height, Grid grid, float exposure);

    // samples: grid.x by grid.y per pixel of the tile and its margin, red, green,
    // blue, alpha, bottom row first.  background: one colour per pixel of the
    // same area, top row first.
    void develop(const Area& tile, const std::vector<float>& samples, const std::vector<Vec3>& background);

    [[nodiscard]] int width() const { return width_; }
    [[nodiscard]] int height() const { return height_; }
    [[nodiscard]] const std::vector<std::uint8_t>& pixels() const { return pixels_; }
    // From a row of it on.
    [[nodiscard]] const std::uint8_t* row(int y) const {
        return &pixels_[static_cast<std::size_t>(y) * static_cast<std::size_t>(width_) * 3];
    }

    // Samples that were no numbers, so far.
    [[nodiscard]] long strange() const { return strange_; }

  private:
    struct Sum {
        Vec3 color;
        float weight = 0;
    };
    [[nodiscard]] Sum sampleOver(const float* sample, Vec3 behind);
    void filterRow(const Area& tile, const float* samples, const Vec3* background, std::vector<Sum>& row);
    void encode(const Area& tile, int y, const std::vector<Sum>& sums);

    int width_, height_;
    Grid grid_;
    float exposure_;
    std::vector<float> weightsX_, weightsY_;
    std::vector<std::uint16_t> curve_;
    std::vector<std::uint8_t> pixels_;
    long strange_ = 0;
};

}  // namespace tavrin::mray

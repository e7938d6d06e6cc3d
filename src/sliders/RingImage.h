// SPDX-License-Identifier: Apache-2.0
// The picture of the colour wheel's ring.
#pragma once

#include <cstdint>
#include <vector>

namespace tavrin {

// The pure hues in a ring on a transparent ground, red at the top, going round clockwise. R, G, B and A
// bytes, interleaved; the row at the bottom comes first, as OpenGL takes pixels. The ring stands in the
// middle of the square at the bottom; above that are the rows by which the picture is higher than wide.
class RingImage {
  public:
    static constexpr int kWidth = 159;
    static constexpr int kHeight = 161;

    // Of the same shape in any width: stretched, its pixels would show.
    explicit RingImage(int width = kWidth);

    int Width() const { return m_width; }
    int Height() const { return m_height; }
    const uint8_t* Pixels() const { return m_pixels.data(); }

  private:
    void SetPixel(int x, int row);

    int m_width;
    int m_height;
    std::vector<uint8_t> m_pixels;
};

}  // namespace tavrin

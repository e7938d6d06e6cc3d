// SPDX-License-Identifier: Apache-2.0
#include "sliders/RingImage.h"

#include <algorithm>
#include <cmath>

#include "sliders/ColorWheel.h"

namespace tavrin {

namespace {

constexpr size_t kChannels = 4;
constexpr double kFull = 255;

uint8_t Byte(double share) { return static_cast<uint8_t>(std::lround(share * kFull)); }

}  // namespace

RingImage::RingImage(int width)
    : m_width(width),
      m_height(static_cast<int>(std::lround(double(width) * kHeight / kWidth))),
      m_pixels(static_cast<size_t>(m_width) * static_cast<size_t>(m_height) * kChannels) {
    for (int row = 0; row < m_height; ++row) {
        for (int x = 0; x < m_width; ++x) SetPixel(x, row);
    }
}

// A pixel that an edge of the ring goes through is as opaque as the ring covers it.
void RingImage::SetPixel(int x, int row) {
    const double centre = 0.5 * m_width;
    const double dx = x + 0.5 - centre;
    const double dy = centre - (row + 0.5);
    const double distance = std::hypot(dx, dy);
    const double inner = ColorWheel::kRingRadius * m_width;
    const double outer = (ColorWheel::kRingRadius + ColorWheel::kRingWidth) * m_width;
    const double cover =
        std::clamp(distance - inner + 0.5, 0.0, 1.0) * std::clamp(outer - distance + 0.5, 0.0, 1.0);
    if (cover == 0) return;
    const Color color = PureColor(HueOfDirection(dx, dy));
    uint8_t* pixel =
        &m_pixels[(static_cast<size_t>(row) * static_cast<size_t>(m_width) + static_cast<size_t>(x)) *
                  kChannels];
    pixel[0] = Byte(static_cast<double>(color.r));
    pixel[1] = Byte(static_cast<double>(color.g));
    pixel[2] = Byte(static_cast<double>(color.b));
    pixel[3] = Byte(cover);
}

}  // namespace tavrin

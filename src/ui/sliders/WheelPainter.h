// SPDX-License-Identifier: Apache-2.0
// How the colour wheel looks.
#pragma once

#include <optional>

#include "sliders/ColorWheel.h"
#include "sliders/RingImage.h"

namespace tavrin {

struct WheelLook {
    Color ground;           // what the wheel stands on
    double pixelRatio = 1;  // device pixels in a window pixel
    bool isDimmed = false;  // it takes no input
};

// Draws a wheel into the current context, the whole square of it, with OpenGL 1.1 and GLU. Owned by the
// wheel's window; keeps nothing in a context.
class WheelPainter {
  public:
    void Paint(const ColorWheel& wheel, const WheelLook& look);

  private:
    void SetUp(const ColorWheel& wheel, const WheelLook& look) const;
    void DrawRing(const ColorWheel& wheel, double pixelRatio);

    std::optional<RingImage> m_ring;  // of the width that was wanted last
};

}  // namespace tavrin

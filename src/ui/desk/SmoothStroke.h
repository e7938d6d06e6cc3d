// SPDX-License-Identifier: Apache-2.0
// Lines with shades at their edges, as faces.
#pragma once

#include <span>
#include <vector>

#include "desk/DeskGeometry.h"
#include "desk/DeskStyle.h"

namespace tavrin {

// A corner; its colour is multiplied by what of it covers, from 0 to 1.
struct StrokeCorner {
    DeskPoint at;
    Rgb color;
    float cover = 1;
};

// Adds the faces, four corners each, of a line through the points, as wide as told in device pixels; `pixel`
// is one of them in desk units. What runs along the pixels has sharp edges. Corners are filled.
void AddStroke(std::span<const DeskPoint> points, float width, float pixel, const Rgb& color,
               std::vector<StrokeCorner>& corners);

// Draws faces, laid over what is there by what they cover of it.
void DrawStrokes(const StrokeCorner* corners, int count);

}  // namespace tavrin

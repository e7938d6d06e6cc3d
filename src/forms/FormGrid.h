// SPDX-License-Identifier: Apache-2.0
// The grid by which a frame of the form places its children.
#pragma once

#include <vector>

namespace tavrin {

// In pixels.
struct FormSize {
    int width = 0;
    int height = 0;
};

// In pixels from the upper left corner of what it lies in.
struct FormPoint {
    int x = 0;
    int y = 0;
};

enum class FormOrientation : int { kVertical = 0, kHorizontal = 1 };

// Where the children of a frame lie, and the room that they take together, in pixels.
struct FormGrid {
    std::vector<FormPoint> positions;  // one for each child, in order
    int contentWidth = 0;
    int contentHeight = 0;
};

// Splits the children into `count` groups: columns filled from top to bottom in a vertical frame, rows
// filled from left to right in a horizontal one. A column or row is as large as the child that set its
// extent, plus `spacing`; a later child sets it anew only if it is larger than that sum. Children are
// centred in their cells. A count below 1 is taken as 1: a form may say 0, and there is no frame
// without a group. No children give an empty grid. The cost depends on the children alone, not on the
// count.
FormGrid LayoutGrid(FormOrientation orientation, int count, int margin, int spacing,
                    const std::vector<FormSize>& children);

}  // namespace tavrin

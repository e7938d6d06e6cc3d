// SPDX-License-Identifier: Apache-2.0
// Where boxes would stand if they were put in order: plain arithmetic on rectangles and wires, in desk units.
// It knows no box and changes nothing. All functions give, for each rectangle in its order, the lower left
// corner of its new place, and take any numbers: what a file brings may be of any size, or no number at all.
#pragma once

#include <cstddef>
#include <vector>

#include "desk/DeskGeometry.h"

namespace tavrin {

// What comes to lie on one line, which is the outermost edge that there is of those, or the middle of all.
enum class DeskAlign { kLeft, kRight, kTop, kBottom, kMiddleAcross, kMiddleUp };

enum class DeskAxis { kAcross, kUp };

std::vector<DeskPoint> AlignRects(const std::vector<DeskRect>& rects, DeskAlign align);

// The first and the last stay, and the gaps between neighbours become equal; where there is no room for gaps,
// the distances of the middles do. Less than three stay where they are.
std::vector<DeskPoint> DistributeRects(const std::vector<DeskRect>& rects, DeskAxis axis);

// From the right edge of one rectangle to the left edge of another, each at a height above its bottom.
struct LayoutWire {
    size_t from = 0;
    size_t to = 0;
    float fromHeight = 0;
    float toHeight = 0;
};

struct LayoutGaps {
    float across = 64;  // between columns: wires run there
    float up = 24;      // between those of a column
    float islands = 48;
};

// In columns, so that wires run from left to right, but for those that close a circle; with few crossings,
// and with nothing over anything else. Rectangles that no wire joins form islands, which are packed in rows.
// What the wires leave open follows the present places: the order within a column, and the order of the
// islands as one reads. The middle of all stays where it is, to the unit. Done twice it is the same, to the
// bit. Equals go by their order in `rects`, so that this is to be one that lasts.
std::vector<DeskPoint> TidyRects(const std::vector<DeskRect>& rects, const std::vector<LayoutWire>& wires,
                                 const LayoutGaps& gaps = {});

}  // namespace tavrin

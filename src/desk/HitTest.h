// SPDX-License-Identifier: Apache-2.0
// What lies under a point of the desk. Boxes come before lines, and in a box buttons before its own area: a
// line that runs under a box cannot be hit there.
#pragma once

#include "desk/DeskGeometry.h"

namespace tavrin {

// The topmost box there, or nothing.
COpBox* HitBox(const CTvDoc& document, DeskPoint point);
// The button of the box there, or nothing.
COpButton* HitButton(const COpBox& box, DeskPoint point);
// The input whose connection runs within `tolerance` desk units of the point, or nothing.
COpButton* HitConnection(const CTvDoc& document, DeskPoint point, float tolerance);

// Of the connections that run within `reach` desk units of the point the nearest one, of like ones the first.
COpButton* NearestConnection(const CTvDoc& document, DeskPoint point, float reach);

bool HitsSegment(DeskPoint point, DeskPoint start, DeskPoint end, float tolerance);
float DistanceToSegment(DeskPoint point, DeskPoint start, DeskPoint end);

}  // namespace tavrin

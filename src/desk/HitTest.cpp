// SPDX-License-Identifier: Apache-2.0
#include "desk/HitTest.h"

#include <algorithm>
#include <cmath>

#include "document/TvDoc.h"

namespace tavrin {

COpBox* HitBox(const CTvDoc& document, DeskPoint point) {
    for (const auto& box : document.m_boxes) {
        if (BoxRect(*box).Contains(point)) return box.get();
    }
    return nullptr;
}

COpButton* HitButton(const COpBox& box, DeskPoint point) {
    for (const bool isOutput : {false, true}) {
        if (!ButtonColumnRect(box, isOutput).Contains(point)) continue;
        const auto& buttons = isOutput ? box.outputs : box.inputs;
        for (size_t index = 0; index < buttons.size(); ++index) {
            if (ButtonRect({&box, isOutput, index}).Contains(point)) return buttons[index].get();
        }
    }
    return nullptr;
}

COpButton* HitConnection(const CTvDoc& document, DeskPoint point, float tolerance) {
    COpButton* hit = nullptr;
    for (const auto& box : document.m_boxes) {
        ForEachConnection(*box, [&](const ButtonPlace& from, const ButtonPlace& to, COpButton& input) {
            const Polyline line = ConnectionPolyline(from, to, document.linetype == 1);
            for (size_t i = 1; i < line.count && hit == nullptr; ++i) {
                if (HitsSegment(point, line.points[i - 1], line.points[i], tolerance)) hit = &input;
            }
            return hit == nullptr;
        });
        if (hit != nullptr) break;
    }
    return hit;
}

COpButton* NearestConnection(const CTvDoc& document, DeskPoint point, float reach) {
    const DeskRect around = DeskRect{point.x, point.y, 0, 0}.GrownBy(reach);
    COpButton* nearest = nullptr;
    for (const auto& box : document.m_boxes) {
        ForEachConnectionWithin(
            around, *box, [&](const ButtonPlace& from, const ButtonPlace& to, COpButton& input) {
                const Polyline line = ConnectionPolyline(from, to, document.linetype == 1);
                for (size_t i = 1; i < line.count; ++i) {
                    const float distance = DistanceToSegment(point, line.points[i - 1], line.points[i]);
                    if (!(distance < reach)) continue;
                    reach = distance;
                    nearest = &input;
                }
                return true;
            });
    }
    return nearest;
}

bool HitsSegment(DeskPoint point, DeskPoint start, DeskPoint end, float tolerance) {
    if (!DeskRect::Between(start, end).GrownBy(tolerance).Contains(point)) return false;
    if (start.x == end.x) return std::abs(point.x - start.x) < tolerance;
    if (start.y == end.y) return std::abs(point.y - start.y) < tolerance;
    const float slope = (end.y - start.y) / (end.x - start.x);
    const float intercept = start.y - slope * start.x;
    return std::abs(point.y - (slope * point.x + intercept)) < tolerance ||
           std::abs(point.x - (point.y - intercept) / slope) < tolerance;
}

float DistanceToSegment(DeskPoint point, DeskPoint start, DeskPoint end) {
    const float across = end.x - start.x;
    const float up = end.y - start.y;
    const float length = across * across + up * up;
    const float part = length > 0 ? ((point.x - start.x) * across + (point.y - start.y) * up) / length : 0;
    const float along = std::clamp(part, 0.0F, 1.0F);
    return std::hypot(point.x - start.x - along * across, point.y - start.y - along * up);
}

}  // namespace tavrin

// SPDX-License-Identifier: Apache-2.0
// How the boxes are marked that the errors of the last run name: a red frame, and a badge with an exclamation
// mark on their upper left corner.
#include <algorithm>
#include <array>
#include <cmath>

#include "desk/BoxMarks.h"
#include "document/TvDoc.h"
#include "ui/desk/DeskPainter.h"

namespace tavrin {

namespace {

constexpr Rgb kError{0.84F, 0.07F, 0.1F};
constexpr Rgb kSign{1, 1, 1};
constexpr float kFrameWidth = 2;   // pixels, round that of a selection
constexpr float kRadius = 10;      // of the badge, desk units
constexpr float kLeastRadius = 7;  // pixels: however small the boxes are, it is found
constexpr float kRim = 0.17F;      // of the radius, as all below
constexpr size_t kCorners = 20;
// Of the sign: a bar that grows thinner downwards, and a dot.
constexpr float kBarTop = 0.62F;
constexpr float kBarFoot = -0.12F;
constexpr float kBarTopHalf = 0.19F;
constexpr float kBarFootHalf = 0.12F;
constexpr float kDotMiddle = -0.48F;
constexpr float kDotHalf = 0.16F;

std::array<DeskPoint, kCorners> Disc(DeskPoint middle, float radius) {
    std::array<DeskPoint, kCorners> corners;
    for (size_t i = 0; i < kCorners; ++i) {
        const float angle = static_cast<float>(i) / kCorners * 2 * 3.14159265F;
        corners[i] = {middle.x + radius * std::cos(angle), middle.y + radius * std::sin(angle)};
    }
    return corners;
}

}  // namespace

// Above all boxes and lines: an error is not to be overlooked because something lies over its box.
void DeskPainter::PaintErrorMarks(const BoxMarks& marks) {
    if (marks.IsEmpty()) return;
    const float radius = std::max(kRadius, kLeastRadius * m_pen.Pixel());
    for (const auto& box : m_parts.document.m_boxes) {
        const DeskRect rect = BoxRect(*box);
        if (!rect.GrownBy(radius).Overlaps(m_pen.Visible()) || marks.Find(box->BoxTitleWid()) == nullptr)
            continue;
        const float pixel = m_pen.Pixel();
        const float selection = std::max(0.0F, m_parts.style.selectedBoxWidth) * pixel;
        PaintFrame(rect.GrownBy(selection), kFrameWidth * pixel, kError);
        PaintErrorBadge({rect.left, rect.Top()}, radius);
    }
}

void DeskPainter::PaintErrorBadge(DeskPoint middle, float radius) {
    m_pen.Polygon(Disc(middle, radius * (1 + kRim)), kSign);
    m_pen.Polygon(Disc(middle, radius), kError);
    const auto at = [&](float x, float y) { return DeskPoint{middle.x + x * radius, middle.y + y * radius}; };
    m_pen.Polygon(std::array{at(-kBarTopHalf, kBarTop), at(-kBarFootHalf, kBarFoot),
                             at(kBarFootHalf, kBarFoot), at(kBarTopHalf, kBarTop)},
                  kSign);
    m_pen.Polygon(std::array{at(-kDotHalf, kDotMiddle - kDotHalf), at(kDotHalf, kDotMiddle - kDotHalf),
                             at(kDotHalf, kDotMiddle + kDotHalf), at(-kDotHalf, kDotMiddle + kDotHalf)},
                  kSign);
}

}  // namespace tavrin

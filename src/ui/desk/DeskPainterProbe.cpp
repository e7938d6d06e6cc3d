// SPDX-License-Identifier: Apache-2.0
// How the output is marked that stands for the picture: a ring round its button, and an eye beside it.
#include <algorithm>
#include <array>
#include <cmath>

#include "document/TvDoc.h"
#include "ui/desk/DeskPainter.h"

namespace tavrin {

namespace {

using namespace desk_colors;

constexpr float kRing = 2;  // pixels, with an edge of one more
// Of the eye, in desk units: half of its width and height, and how far it stands from the button.
constexpr DeskPoint kEye{9, 5.5F};
constexpr float kPupil = 3.4F;
constexpr float kGlint = 1.1F;
constexpr float kLid = 1.2F;
constexpr float kDistance = 5;
constexpr float kLeastWidth = 15;  // pixels: however small the boxes are, it is found
constexpr size_t kSteps = 12;      // of each lid

// Two bows that meet in the corners.
std::array<DeskPoint, 2 * kSteps> Almond(DeskPoint middle, DeskPoint half) {
    std::array<DeskPoint, 2 * kSteps> corners;
    for (size_t i = 0; i < corners.size(); ++i) {
        const bool isUpper = i < kSteps;
        const float along = static_cast<float>(isUpper ? i : i - kSteps) / kSteps * 2 - 1;
        const float x = isUpper ? along : -along;
        const float y = (1 - x * x) * (isUpper ? 1.0F : -1.0F);
        corners[i] = {middle.x + x * half.x, middle.y + y * half.y};
    }
    return corners;
}

std::array<DeskPoint, kSteps> Disc(DeskPoint middle, float radius) {
    std::array<DeskPoint, kSteps> corners;
    for (size_t i = 0; i < kSteps; ++i) {
        const float angle = static_cast<float>(i) / kSteps * 2 * 3.14159265F;
        corners[i] = {middle.x + radius * std::cos(angle), middle.y + radius * std::sin(angle)};
    }
    return corners;
}

}  // namespace

// Above all boxes and lines, whatever lies over the button.
void DeskPainter::PaintProbe(const COpButton& output) {
    const DeskRect row = ButtonRect(ButtonPlace::Of(output));
    const float pixel = m_pen.Pixel();
    const float scale = std::max(1.0F, kLeastWidth * pixel / (2 * kEye.x));
    const DeskPoint eye{row.Right() + (kDistance + kEye.x) * scale, row.Middle().y};
    const DeskRect reach = row.UnitedWith({eye.x, eye.y, 0, 0}).GrownBy(2 * kEye.x * scale);
    if (!reach.Overlaps(m_pen.Visible())) return;
    PaintFrame(row, kRing * pixel, m_parts.style.probe);
    PaintFrame(row.GrownBy(kRing * pixel), pixel, kInk);
    PaintEye(eye, scale);
}

void DeskPainter::PaintEye(DeskPoint middle, float scale) {
    const auto sized = [scale](float lid) {
        return DeskPoint{(kEye.x + 1.5F * lid) * scale, (kEye.y + lid) * scale};
    };
    m_pen.Polygon(Almond(middle, sized(kLid)), kInk);
    m_pen.Polygon(Almond(middle, sized(0)), m_parts.style.probe);
    m_pen.Polygon(Disc(middle, kPupil * scale), kInk);
    m_pen.Polygon(Disc({middle.x + kGlint * scale, middle.y + kGlint * scale}, kGlint * scale),
                  m_parts.style.highlightedBox);
}

}  // namespace tavrin

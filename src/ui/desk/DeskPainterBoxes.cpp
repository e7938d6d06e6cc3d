// SPDX-License-Identifier: Apache-2.0
// How a box is painted.
#include <algorithm>
#include <array>
#include <cmath>

#include "document/TvDoc.h"
#include "ui/desk/DeskPainter.h"

namespace tavrin {

namespace {

using namespace desk_colors;

// Marks left of a button, in desk units from its left edge.
constexpr float kCrossDistance = 12;
constexpr float kCrossSize = 4;
constexpr float kCrossWidth = 2;  // pixels
constexpr float kArgumentDistance = 7;
constexpr float kArgumentBesideMark = 11;  // where the mark of the type stands between
constexpr float kHoverWidth = 2;           // pixels of the outline of a box that a press would meet
constexpr std::array<DeskPoint, 6> kHexagon{
    {{-2, 0}, {-1, 1.74F}, {1, 1.74F}, {2, 0}, {1, -1.74F}, {-1, -1.74F}}};
constexpr float kMarksWidth = kCrossDistance + kCrossSize;  // what a box's marks stand out of it
// The triangle in a grow arrow, in desk units.
constexpr float kArrowHalf = 10;
constexpr float kVeil = 0.55F;    // how much of the desk is seen through what the library does not know
constexpr float kDashWidth = 2;   // pixels
constexpr float kDashLength = 5;  // pixels, and of the gaps between
constexpr float kMostDashes = 4000;
constexpr float kArrowMargin = 3;

}  // namespace

void DeskPainter::PaintAllBoxes(const std::string& highlightedBox) {
    // What may stand out of a box.
    const float pixels = std::max(0.0F, m_parts.style.selectedBoxWidth) + kHoverWidth + kCrossWidth + 1;
    const float around = desk_lengths::kGrowArrowHeight + kMarksWidth + pixels * m_pen.Pixel();
    const auto paint = [&](const COpBox& box) {
        const DeskRect bounds = BoxRect(box).GrownBy(around);
        if (!bounds.Overlaps(m_pen.Visible())) return;
        m_pen.BeginObject(bounds);
        PaintBox(box, !highlightedBox.empty() && box.BoxTitleWid() == highlightedBox);
    };
    // The first box of the network lies on top.
    const auto& boxes = m_parts.document.m_boxes;
    for (auto box = boxes.rbegin(); box != boxes.rend(); ++box) paint(**box);
    if (m_parts.desk.m_pendingPlaced) {
        for (const auto& box : m_parts.desk.m_pendingBoxes) paint(*box);
    }
    m_pen.EndObjects();
}

void DeskPainter::PaintBox(const COpBox& box, bool isHighlighted) {
    const DeskStyle& style = m_parts.style;
    const Rgb own = isHighlighted ? style.highlightedBox : style.ColorOf(box.color);
    const bool isVeiled = box.IsPlaceholder() || box.muted != 0;
    const Rgb color = isVeiled && !isHighlighted ? Veiled(own) : own;
    PaintFace(TitleRect(box), color, box.IsPlaceholder());
    m_pen.CentredLabel(ShownTitle(box, ' '), TitleRect(box));
    PaintPanel(box, color, isHighlighted);
    PaintButtons(box, false, color);
    PaintButtons(box, true, color);
    if (box.muted != 0) PaintPass(box);
    if (box.IsPlaceholder()) PaintDashes(BoxRect(box));
    if (box.selected != 0) PaintSelection(BoxRect(box));
    PaintTypeMarks(box);
    const DeskGestures::Hover& hover = m_parts.gestures.Hovered();
    if (hover.box == &box && hover.button == nullptr) PaintHover(box);
    if (m_parts.gestures.GrowArrowsShown() && m_parts.desk.m_mouseBox == &box) PaintGrowArrows(box, color);
}

// What the library does not know lies flat, as if there were only the place for it.
void DeskPainter::PaintFace(const DeskRect& rect, const Rgb& color, bool isUnknown) {
    if (isUnknown) {
        m_pen.Fill(rect, color);
    } else {
        m_pen.Bevel(rect, color);
    }
}

// The desk shines through.
Rgb DeskPainter::Veiled(const Rgb& color) const {
    const Rgb& desk = m_parts.style.background;
    const auto mixed = [](float own, float behind) { return own + (behind - own) * kVeil; };
    return {mixed(color.r, desk.r), mixed(color.g, desk.g), mixed(color.b, desk.b)};
}

// Light on dark, to be seen on any desk. A box of many buttons may be far larger than what is seen of it.
void DeskPainter::PaintDashes(const DeskRect& rect) {
    const auto corners = rect.Corners();
    m_pen.Line(std::array{corners[0], corners[1], corners[2], corners[3], corners[0]},
               {kBevelDark, kDashWidth});
    const float length = kDashLength * m_pen.Pixel();
    const auto dash = [&](float from, float to, float seenFrom, float seenTo, const auto& pointAt) {
        const float first = std::max(0.0F, std::floor((seenFrom - from) / (2 * length)));
        const float behind = std::ceil((std::min(to, seenTo) - from) / (2 * length));
        const int count = static_cast<int>(std::clamp(behind - first, 0.0F, kMostDashes));
        for (int i = 0; i < count; ++i) {
            const float at = from + (first + static_cast<float>(i)) * 2 * length;
            m_pen.Line(std::array{pointAt(at), pointAt(std::min(at + length, to))},
                       {kBevelLight, kDashWidth});
        }
    };
    const DeskRect& seen = m_pen.Visible();
    for (const float y : {rect.bottom, rect.Top()})
        dash(rect.left, rect.Right(), seen.left, seen.Right(), [y](float x) { return DeskPoint{x, y}; });
    for (const float x : {rect.left, rect.Right()})
        dash(rect.bottom, rect.Top(), seen.bottom, seen.Top(), [x](float y) { return DeskPoint{x, y}; });
}

void DeskPainter::PaintPanel(const COpBox& box, const Rgb& color, bool isHighlighted) {
    const DeskRect panel = PanelRect(box);
    PaintFace(panel, color, box.IsPlaceholder());
    const CSgiImage* icon =
        m_parts.document.showiconimages == 0 ? nullptr : m_parts.icons.IconOf(box, isHighlighted);
    if (icon == nullptr) {
        m_pen.CentredTitle(box.icontext, panel);
        return;
    }
    const DeskPoint middle = panel.Middle();
    m_pen.Icon(*icon, {middle.x - static_cast<float>(icon->width) * 0.5F,
                       middle.y - static_cast<float>(icon->height) * 0.5F});
}

void DeskPainter::PaintButtons(const COpBox& box, bool outputs, const Rgb& color) {
    const auto& buttons = outputs ? box.outputs : box.inputs;
    if (buttons.empty()) {
        m_pen.Fill(ButtonColumnRect(box, outputs), box.IsPlaceholder() ? color : kBevelDark);
        return;
    }
    for (size_t index = buttons.size(); index-- > 0;) {
        const COpButton& button = *buttons[index];
        const DeskRect row = ButtonRect({&box, outputs, index});
        PaintFace(row, FaceOf(button, color), button.IsUnknown());
        m_pen.CentredLabel(ShownName(button), row);
        PaintMarks(button, row);
    }
}

Rgb DeskPainter::FaceOf(const COpButton& button, const Rgb& box) const {
    if (IsButtonLit(button)) return m_parts.style.selectedButton;
    if (m_parts.gestures.Hovered().button == &button) return m_parts.style.hover;
    return button.stray != nullptr ? Veiled(box) : box;
}

// The button that was picked, and the one under the mouse if the two may be wired.
bool DeskPainter::IsButtonLit(const COpButton& button) const {
    const DeskGestures& gestures = m_parts.gestures;
    const bool isUnderMouse = &button == m_parts.desk.m_mouseButton;
    if (isUnderMouse && (gestures.IsGrowArrowHot(true) || gestures.IsGrowArrowHot(false))) return false;
    const COpButton* selected = m_parts.desk.m_selectedButton;
    if (&button == selected) return true;
    return isUnderMouse && selected != nullptr && selected->CanConnect(button) &&
           !selected->WouldLoop(button);
}

void DeskPainter::PaintMarks(const COpButton& button, const DeskRect& row) {
    const float middle = row.Middle().y;
    if (button.disableconnectflag != 0) {
        const float x = row.left - kCrossDistance;
        for (const float slope : {kCrossSize, -kCrossSize}) {
            m_pen.Line(std::array{DeskPoint{x - kCrossSize, middle - slope},
                                  DeskPoint{x + kCrossSize, middle + slope}},
                       {kInk, kCrossWidth});
        }
    }
    if (button.arg != 0) {
        const bool isBesideMark = m_parts.style.typeMarks && button.disableconnectflag == 0;
        const float distance = isBesideMark ? kArgumentBesideMark : kArgumentDistance;
        auto corners = kHexagon;
        for (DeskPoint& corner : corners) {
            corner = {row.left - distance + corner.x, middle + corner.y};
        }
        m_pen.Polygon(corners, kArgumentMark);
    }
}

// Above the marks beside the box.
void DeskPainter::PaintSelection(const DeskRect& rect) {
    PaintFrame(rect, m_parts.style.selectedBoxWidth * m_pen.Pixel(), m_parts.style.selectedBox);
}

// Round the outline of a selected one.
void DeskPainter::PaintHover(const COpBox& box) {
    const float outline = box.selected != 0 ? std::max(0.0F, m_parts.style.selectedBoxWidth) : 0;
    PaintFrame(BoxRect(box).GrownBy(outline * m_pen.Pixel()), kHoverWidth * m_pen.Pixel(),
               m_parts.style.hover);
}

void DeskPainter::PaintFrame(const DeskRect& rect, float width, const Rgb& color) {
    const DeskRect outer = rect.GrownBy(width);
    const std::array edges{DeskRect{outer.left, outer.bottom, width, outer.height},
                           DeskRect{rect.Right(), outer.bottom, width, outer.height},
                           DeskRect{rect.left, outer.bottom, rect.width, width},
                           DeskRect{rect.left, rect.Top(), rect.width, width}};
    for (const DeskRect& edge : edges) m_pen.Polygon(edge.Corners(), color);
}

void DeskPainter::PaintGrowArrows(const COpBox& box, const Rgb& color) {
    const COpButton& button = *m_parts.desk.m_mouseButton;
    const ButtonPlace place{&box, false, box.IndexOfButton(button)};
    m_pen.BeginObject(GrowArrowRect(place, false).UnitedWith(GrowArrowRect(place, true)));
    for (const bool above : {true, false}) {
        const DeskRect rect = GrowArrowRect(place, above);
        m_pen.Bevel(rect, m_parts.gestures.IsGrowArrowHot(above) ? m_parts.style.selectedButton : color);
        const float middle = rect.Middle().x;
        const float high = rect.Top() - kArrowMargin;
        const float low = rect.bottom + kArrowMargin;
        const float base = above ? low : high;
        m_pen.Polygon(std::array{DeskPoint{middle, above ? high : low}, DeskPoint{middle - kArrowHalf, base},
                                 DeskPoint{middle + kArrowHalf, base}},
                      kInk);
    }
}

}  // namespace tavrin

// SPDX-License-Identifier: Apache-2.0
#include "ui/desk/DeskPainter.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <span>

#include "desk/DeskFlow.h"
#include "document/TvDoc.h"

namespace tavrin {

namespace {

constexpr float kLitExtra = 2;             // pixels by which lines that invite something are wider
constexpr float kVeilShade = 0.2F;         // how much darker than the background
constexpr DeskPoint kVarNameOffset{4, 6};  // of a variable's name from the start of its line, desk units

// Positions from a file may be anything.
bool IsDrawable(const Polyline& line) {
    return std::all_of(line.begin(), line.end(),
                       [](DeskPoint point) { return std::isfinite(point.x) && std::isfinite(point.y); });
}

// The one box that would go between a wire's ends if it was let go of here; null for none.
const COpBox* BoxInHand(const COpDesk& desk, const CTvDoc& document, const DeskGestures& gestures) {
    if (!desk.Rules().insertBoxes) return nullptr;
    if (desk.m_pendingBoxes.size() == 1 && desk.m_pendingPlaced) return desk.m_pendingBoxes.front().get();
    if (gestures.Current() != DeskGestures::Kind::kMoving || !gestures.HasMoved()) return nullptr;
    const COpBox* only = nullptr;
    for (const auto& box : document.m_boxes) {
        if (box->selected == 0) continue;
        if (only != nullptr) return nullptr;
        only = box.get();
    }
    return only;
}

// Without the segments at both ends that are out of view.
std::span<const DeskPoint> PartInView(const Polyline& line, const DeskRect& visible) {
    const auto isOut = [&](size_t segment) {
        const DeskRect reach = DeskRect::Between(line.points[segment], line.points[segment + 1]);
        return reach.left > visible.Right() || reach.Right() < visible.left || reach.bottom > visible.Top() ||
               reach.Top() < visible.bottom;
    };
    size_t first = 0;
    size_t last = line.count - 1;
    while (first < last && isOut(first)) ++first;
    while (first < last && isOut(last - 1)) --last;
    return std::span(line.points).subspan(first, first < last ? last - first + 1 : 0);
}

}  // namespace

void DeskPainter::Paint(const Extras& extras) {
    m_pen.SetSmoothLines(m_parts.style.smoothLines);
    m_pen.Begin(m_parts.style.background);
    if (extras.wallpaper != nullptr) m_pen.Wallpaper(*extras.wallpaper, extras.tileWallpaper);
    PaintFrames();
    const bool linesOver = m_parts.document.drawlinesoverboxes != 0;
    if (!linesOver) PaintAllLines();
    PaintAllBoxes(extras.highlightedBox);
    if (linesOver) PaintAllLines();
    if (extras.marks != nullptr) PaintErrorMarks(*extras.marks);
    if (extras.shownOutput != nullptr) PaintProbe(*extras.shownOutput);
    PaintGesture();
    if (m_parts.document.lock != 0) PaintVeil();
    m_pen.End();
}

void DeskPainter::FindLitLines() {
    const auto& selected = m_parts.desk.m_selectedConnects;
    m_selectedLines = {selected.begin(), selected.end()};
    m_insertionLine = nullptr;
    if (const COpBox* box = BoxInHand(m_parts.desk, m_parts.document, m_parts.gestures)) {
        if (const auto place = FindInsertion(m_parts.document, *box)) m_insertionLine = place->target;
    }
    m_litLines = m_selectedLines;
    for (const COpButton* line : {m_insertionLine, m_parts.gestures.Hovered().line}) {
        if (line != nullptr) m_litLines.insert(line);
    }
}

LineLook DeskPainter::LookOf(const COpButton& output, const COpButton& input, bool isLit) const {
    const DeskStyle& style = m_parts.style;
    const float wide = style.connectWidth + kLitExtra;
    if (&input == m_insertionLine) return {style.selectedConnect, wide};
    const bool isHovered = &input == m_parts.gestures.Hovered().line;
    if (isHovered) return {m_selectedLines.contains(&input) ? style.selectedConnect : style.hover, wide};
    if (isLit) return {style.selectedConnect, style.connectWidth};
    const bool stippled = input.CurrentType() != output.CurrentType();
    const Rgb& color = stippled && !style.typeLines ? style.stippleLine : LineColor(output);
    return {color, style.connectWidth, stippled};
}

void DeskPainter::PaintAllLines() {
    FindLitLines();
    PaintLines(m_parts.document.m_boxes);
    if (m_parts.desk.m_pendingPlaced) PaintLines(m_parts.desk.m_pendingBoxes);
}

// The lit ones come out above the others; one in hand is where the pointer is.
template <typename Boxes>
void DeskPainter::PaintLines(const Boxes& boxes) {
    const DeskStyle& style = m_parts.style;
    // A name stands above the start of its line, wherever the line goes.
    const bool hasNames = m_parts.document.showvarnames != 0 && m_pen.HasLabels();
    const DeskRect visible = m_pen.Visible().GrownBy((style.connectWidth + kLitExtra + 1) * m_pen.Pixel());
    for (const bool isLit : {false, true}) {
        if (isLit && m_litLines.empty()) break;
        for (const auto& box : boxes) {
            const auto paint = [&](const ButtonPlace& from, const ButtonPlace& to, COpButton& input) {
                if (&input == m_parts.desk.m_pulledInput || m_litLines.contains(&input) != isLit) return true;
                PaintLine(from, to, LookOf(*from.box->outputs[from.index], input, isLit));
                return true;
            };
            if (hasNames) {
                ForEachConnection(*box, paint);
            } else {
                ForEachConnectionWithin(visible, *box, paint);
            }
        }
    }
}

void DeskPainter::PaintLine(const ButtonPlace& from, const ButtonPlace& to, const LineLook& look) {
    const Polyline line = ConnectionPolyline(from, to, m_parts.document.linetype == 1);
    if (!IsDrawable(line)) return;
    // A stipple whose first segment the context clips away would begin with whatever the last one ended with.
    // It clips by a line's middle, about half a pixel beside what is seen.
    const float margin = look.stippled ? -0.5F : look.width + 1;
    m_pen.Line(PartInView(line, m_pen.Visible().GrownBy(margin * m_pen.Pixel())), look);
    if (m_parts.document.showvarnames != 0 && m_pen.HasLabels()) {
        PaintVariableName(*from.box->outputs[from.index], line.points[0], look.color);
    }
}

void DeskPainter::PaintVariableName(const COpButton& output, DeskPoint start, const Rgb& color) {
    const DeskPoint at{start.x + kVarNameOffset.x, start.y + kVarNameOffset.y};
    const DeskRect& visible = m_pen.Visible();
    const float height = m_pen.LabelHeight();
    if (output.IsUnknown()) return;  // code has no name for it
    if (at.x >= visible.Right() || at.y - height >= visible.Top() || at.y + height < visible.bottom) return;
    // Nobody is told of an output without a name: a repaint may come at any time, and as often as it likes.
    const std::string name =
        output.VariableName({m_parts.document.preparedVariables, nullptr, &m_tiebackEnds});
    if (at.x + m_pen.LabelWidth(name) + height >= visible.left) m_pen.LabelAt(name, color, at);
}

void DeskPainter::PaintGesture() {
    using Kind = DeskGestures::Kind;
    const DeskGestures& gestures = m_parts.gestures;
    const COpButton* selected = m_parts.desk.m_selectedButton;
    const bool drawsWire =
        gestures.DrawsWire() && selected != m_parts.desk.m_mouseButton && selected->disableconnectflag == 0;
    if (drawsWire) {
        m_pen.Line(std::array{ButtonAnchor(ButtonPlace::Of(*selected)), gestures.Mouse()},
                   {LineColor(*selected), m_parts.style.connectWidth, false});
    }
    if (gestures.Current() == Kind::kBandAdd || gestures.Current() == Kind::kBandToggle) {
        const DeskRect band = gestures.Band();
        const DeskPoint first{band.left, band.bottom};
        m_pen.Line(std::array{first, DeskPoint{band.Right(), band.bottom},
                              DeskPoint{band.Right(), band.Top()}, DeskPoint{band.left, band.Top()}, first},
                   {m_parts.style.rubberBand});
    }
}

// A locked desk stays readable through it.
void DeskPainter::PaintVeil() {
    const Rgb& color = m_parts.style.background;
    m_pen.Veil({color.r - kVeilShade, color.g - kVeilShade, color.b - kVeilShade});
}

}  // namespace tavrin

// SPDX-License-Identifier: Apache-2.0
// How frames and notes are painted: flat and paler than boxes, which lie on them.
#include <algorithm>
#include <array>
#include <cmath>

#include "desk/FrameGeometry.h"
#include "document/TvDoc.h"
#include "ui/desk/DeskPainter.h"
#include "ui/desk/WrappedText.h"

namespace tavrin {

namespace {

using namespace desk_colors;

constexpr float kFill = 0.22F;   // how much of its colour a frame has below the bar
constexpr float kPaper = 0.35F;  // how much paler a note is than its colour
constexpr float kEdge = 0.35F;   // how much darker than the colour the edges are
constexpr float kTitlePoints = 10;
constexpr float kNotePoints = 9;        // both of a unit of the zoom
constexpr float kLeastTitlePoints = 8;  // seen from afar the titles tell what is where
constexpr float kMargin = 6;            // desk units beside the text
constexpr float kMostLines = 200;
constexpr size_t kMostTitle = 2000;  // bytes; no title of more is seen whole
constexpr float kGrips = 3;          // lines in the corner that shows that it may be dragged

Rgb Mixed(const Rgb& one, const Rgb& other, float share) {
    const auto mixed = [share](float from, float to) { return from + (to - from) * share; };
    return {mixed(one.r, other.r), mixed(one.g, other.g), mixed(one.b, other.b)};
}

constexpr Rgb kWhite{1, 1, 1};

// What is out of sight of a huge one costs nothing, and numbers stay fine enough.
DeskRect Seen(const DeskRect& rect, const DeskRect& visible) {
    const float left = std::max(rect.left, visible.left);
    const float bottom = std::max(rect.bottom, visible.bottom);
    return {left, bottom, std::max(std::min(rect.Right(), visible.Right()) - left, 0.0F),
            std::max(std::min(rect.Top(), visible.Top()) - bottom, 0.0F)};
}

}  // namespace

void DeskPainter::PaintFrames() {
    const COpDesk& desk = m_parts.desk;
    const DeskFrames& frames = m_parts.document.frames;
    if (frames.empty() && !desk.HasPending()) return;
    const float around = (std::max(0.0F, m_parts.style.selectedBoxWidth) + 1) * m_pen.Pixel();
    const DeskRect seen = m_pen.Visible().GrownBy(around);
    const auto paint = [&](const DeskFrame& frame, bool isSelected) {
        m_pen.BeginObject(FrameRect(frame).GrownBy(around));
        PaintDeskFrame(frame);
        if (isSelected) PaintSelection(FrameRect(frame));
    };
    for (const PlacedFrame& placed : FramesFromBelow(frames, seen))
        paint(*placed.frame, desk.m_selectedFrames.contains(placed.number));
    if (desk.m_pendingPlaced) {
        for (const DeskFrame& frame : desk.FramesInHand()) {
            if (FrameRect(frame).Overlaps(seen)) paint(frame, true);
        }
    }
    m_pen.EndObjects();
}

void DeskPainter::PaintDeskFrame(const DeskFrame& frame) {
    const DeskRect seen = m_pen.Visible().GrownBy(2 * m_pen.Pixel());
    const DeskRect rect = Seen(FrameRect(frame), seen);
    const Rgb& color = FrameColor(frame.color);
    const Rgb edge = Mixed(color, kInk, kEdge);
    const float line = m_pen.Pixel();
    if (frame.kind == DeskFrame::Kind::kNote) {
        m_pen.Fill(rect, edge);
        m_pen.Fill(Seen(FrameRect(frame).GrownBy(-line), seen), Mixed(color, kWhite, kPaper));
        PaintNoteText(frame);
    } else {
        const DeskRect bar = FrameHandle(frame, 1 / m_pen.Pixel());
        m_pen.Fill(rect, edge);
        m_pen.Fill(Seen(FrameRect(frame).GrownBy(-line), seen),
                   Mixed(m_parts.style.background, color, kFill));
        m_pen.Fill(Seen(bar, seen), color);
        PaintFrameTitle(frame, bar);
    }
    PaintGrip(frame, edge);
}

void DeskPainter::PaintFrameTitle(const DeskFrame& frame, const DeskRect& bar) {
    const float zoom = 1 / m_pen.Pixel();
    const int font = m_pen.FontOf(std::max(kTitlePoints * zoom, kLeastTitlePoints));
    const float height = m_pen.LineHeight(font);
    if (font == DeskFonts::kNone || height > bar.height + 2 * m_pen.Pixel()) return;
    // It stays in sight as long as something of the bar does.
    const float left = std::max(bar.left, m_pen.Visible().left);
    const float margin = std::min(kMargin, bar.width * 0.1F);
    const float width = bar.Right() - left - 2 * margin;
    if (width <= 0) return;
    const std::string title = frame.text.substr(0, std::min(frame.text.find('\n'), kMostTitle));
    const auto measure = [&](const std::string& text) { return m_pen.WidthOf(font, text); };
    m_pen.TextIn(font, CutToWidth(title, width, measure), kInk,
                 {left + margin, bar.Middle().y - height * 0.5F + m_pen.DescentOf(font)});
}

void DeskPainter::PaintNoteText(const DeskFrame& frame) {
    const int font = m_pen.FontOf(kNotePoints / m_pen.Pixel());
    const float height = m_pen.LineHeight(font);
    const DeskRect page = FrameRect(frame).GrownBy(-kMargin);
    if (font == DeskFonts::kNone || height <= 0 || page.width <= 0) return;
    const float most = std::clamp(std::floor(page.height / height), 0.0F, kMostLines);
    const auto measure = [&](const std::string& text) { return m_pen.WidthOf(font, text); };
    float y = page.Top() - height + m_pen.DescentOf(font);
    for (const std::string& line : WrapText(frame.text, page.width, static_cast<size_t>(most), measure)) {
        m_pen.TextIn(font, line, kInk, {page.left, y});
        y -= height;
    }
}

void DeskPainter::PaintGrip(const DeskFrame& frame, const Rgb& color) {
    const DeskRect corner = FrameCorner(frame, 1, 1 / m_pen.Pixel());
    if (!corner.Overlaps(m_pen.Visible())) return;
    for (float grip = 1; grip <= kGrips; ++grip) {
        const float length = corner.width * grip / (kGrips + 1);
        m_pen.Line(std::array{DeskPoint{corner.Right() - length, corner.bottom + m_pen.Pixel()},
                              DeskPoint{corner.Right() - m_pen.Pixel(), corner.bottom + length}},
                   {color});
    }
}

}  // namespace tavrin

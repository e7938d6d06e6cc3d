// SPDX-License-Identifier: Apache-2.0
// What tells at a glance how buttons stand: the marks of their types, and what goes through a muted box.
#include <algorithm>
#include <array>

#include "document/TvDoc.h"
#include "ui/desk/DeskPainter.h"

namespace tavrin {

namespace {

using namespace desk_colors;

// Sides of marks, in desk units and in window pixels.
constexpr float kMark = 9;
constexpr float kLeastMark = 7;
constexpr float kLeastSeen = 4;    // smaller ones would be dirt
constexpr float kOutward = 0.36F;  // of a mark's side, from its button's edge to its middle
constexpr float kPassWidth = 3;    // pixels, with an edge of one on each side

}  // namespace

// Above the outline of a selected box, which runs through them.
void DeskPainter::PaintTypeMarks(const COpBox& box) {
    if (!m_parts.style.typeMarks || m_parts.types == nullptr) return;
    // In one object lines come above all marks, whenever they are drawn.
    if (box.selected != 0)
        m_pen.BeginObject(BoxRect(box).GrownBy(std::max(kMark, kLeastMark * m_pen.Pixel())));
    for (const bool outputs : {false, true}) {
        const auto& buttons = outputs ? box.outputs : box.inputs;
        for (size_t index = buttons.size(); index-- > 0;)
            PaintTypeMark(*buttons[index], ButtonRect({&box, outputs, index}), outputs);
    }
}

// Where the line meets the button, so that the two are seen as one; most of it beside the box, so that it
// covers no text. What cannot be wired has none.
void DeskPainter::PaintTypeMark(const COpButton& button, const DeskRect& row, bool isOutput) {
    if (button.disableconnectflag != 0) return;
    const float pixel = m_pen.Pixel();
    const float side = std::min(std::max(kMark, kLeastMark * pixel), desk_lengths::kRowHeight);
    if (side < kLeastSeen * pixel) return;
    const bool isWired = !button.connections.Empty() || !button.NamedBy().Empty();
    const TypeLook& type = m_parts.types->Of(button.CurrentType());
    const float out = side * kOutward;
    m_pen.Mark({type.shape, type.color, side, isWired},
               {isOutput ? row.Right() + out : row.left - out, row.Middle().y});
}

// Between the two columns, from the inputs to the outputs that they stand for.
void DeskPainter::PaintPass(const COpBox& box) {
    const DeskRect panel = PanelRect(box);
    for (size_t index = 0; index < box.outputs.size(); ++index) {
        const COpButton& output = *box.outputs[index];
        const COpButton* input = output.PassesThrough() ? output.PassedInput() : nullptr;
        if (input == nullptr) continue;
        const DeskRect from = ButtonRect({&box, false, box.IndexOfButton(*input)});
        const DeskRect to = ButtonRect({&box, true, index});
        const std::array way{DeskPoint{panel.left, from.Middle().y}, DeskPoint{panel.Right(), to.Middle().y}};
        m_pen.Line(way, {kInk, kPassWidth + 2});
        m_pen.Line(way, {LineColor(output), kPassWidth});
    }
}

// Of the wires that leave it.
const Rgb& DeskPainter::LineColor(const COpButton& output) const {
    if (!m_parts.style.typeLines || m_parts.types == nullptr) return m_parts.style.connect;
    return m_parts.types->Of(output.CurrentType()).color;
}

}  // namespace tavrin

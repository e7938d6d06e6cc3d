// SPDX-License-Identifier: Apache-2.0
// Where things lie on the desk: plain arithmetic in desk units, x to the right and y upward.
#pragma once

#include <algorithm>
#include <array>
#include <cstddef>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "library/OpBox.h"

namespace tavrin {

class CTvDoc;

// A point, or a distance, in desk units.
struct DeskPoint {
    float x = 0;
    float y = 0;
    bool operator==(const DeskPoint&) const = default;
};

// Half open: left and bottom belong to it, right and top do not.
struct DeskRect {
    float left = 0;
    float bottom = 0;
    float width = 0;
    float height = 0;
    bool operator==(const DeskRect&) const = default;

    static DeskRect Between(DeskPoint corner, DeskPoint opposite);
    float Right() const { return left + width; }
    float Top() const { return bottom + height; }
    // From the lower left one on, against the clock.
    std::array<DeskPoint, 4> Corners() const {
        return {{{left, bottom}, {Right(), bottom}, {Right(), Top()}, {left, Top()}}};
    }
    DeskPoint Middle() const { return {left + width * 0.5F, bottom + height * 0.5F}; }
    bool Contains(DeskPoint point) const {
        return point.x >= left && point.x < Right() && point.y >= bottom && point.y < Top();
    }
    // Both corners of the other lie inside.
    bool Encloses(const DeskRect& other) const {
        return Contains({other.left, other.bottom}) && Contains({other.Right(), other.Top()});
    }
    bool Overlaps(const DeskRect& other) const {
        return left < other.Right() && other.left < Right() && bottom < other.Top() && other.bottom < Top();
    }
    DeskRect UnitedWith(const DeskRect& other) const;
    DeskRect GrownBy(float margin) const {
        return {left - margin, bottom - margin, width + 2 * margin, height + 2 * margin};
    }
};

namespace desk_lengths {
inline constexpr float kRowHeight = 16;  // of the title too
inline constexpr float kMinColumnText = 20;
inline constexpr float kBevel = 2;
inline constexpr float kTextGap = 4;  // between a text and the bevels round it, both sides together
inline constexpr float kRouteSpacing = 8;
inline constexpr float kGrowArrowHeight = 16;
}  // namespace desk_lengths

// The widths of texts in window pixels, in the fonts that belong to the zoom.
class TextMeasure {
  public:
    virtual ~TextMeasure() = default;
    virtual float LabelWidth(const std::string& text) const = 0;  // of titles, buttons and wires
    virtual float TitleWidth(const std::string& text) const = 0;  // of the text in a box's middle
};

// In pixels; 0 without an icon.
struct IconSize {
    int width = 0;
    int height = 0;
};

// What a box and its buttons are called where they are seen. Names that no library vouches for may be of any
// length, and are cut.
std::string ShownTitle(const COpBox& box, char joint = '_');
std::string ShownName(const COpButton& button);

// Lays a box out round its anchor, as large as its texts, icon and buttons need. Depends on the zoom through
// the texts, whose size in desk units it changes.
void LayoutBox(COpBox& box, float zoom, const TextMeasure& text, IconSize icon);

// What a laid out box covers, title included, and its pieces.
inline DeskRect BoxRect(const COpBox& box) {
    const BoxLayout& layout = box.layout;
    return {layout.left, layout.bottom, layout.width, layout.titleHeight + layout.bodyHeight};
}
DeskRect TitleRect(const COpBox& box);
DeskRect PanelRect(const COpBox& box);  // between the two columns of buttons
DeskRect ButtonColumnRect(const COpBox& box, bool outputs);

// A button by its place in its box, so that nothing need search for it.
struct ButtonPlace {
    const COpBox* box = nullptr;
    bool isOutput = false;
    size_t index = 0;

    // Searches the box for the button.
    static ButtonPlace Of(const COpButton& button);
};
DeskRect ButtonRect(const ButtonPlace& place);
// Where lines meet the button: the middle of its outer edge.
DeskPoint ButtonAnchor(const ButtonPlace& place);
// The boxes above and below a vinput that it grows from.
DeskRect GrowArrowRect(const ButtonPlace& place, bool above);

// The points of a wire from its output to its input.
struct Polyline {
    std::array<DeskPoint, 6> points;
    size_t count = 0;

    const DeskPoint* begin() const { return points.data(); }
    const DeskPoint* end() const { return points.data() + count; }
};
// The line from an output to an input: straight with two points, or traced at right angles with four, or with
// six where it has to come round the target box. Lines of neighbouring buttons keep clear of one another.
Polyline ConnectionPolyline(const ButtonPlace& output, const ButtonPlace& input, bool traced);

// A rectangle beyond which no line from the one box to the other goes. Traced lines turn beside the source
// and round the target, by a spacing for each of their buttons at most; a button's row is never lower than
// two.
inline DeskRect LineReach(const COpBox& source, const COpBox& target) {
    const BoxLayout& from = source.layout;
    const BoxLayout& to = target.layout;
    static_assert(desk_lengths::kRowHeight >= 2 * desk_lengths::kRouteSpacing);
    const float turns = std::max(from.bodyHeight, to.bodyHeight) * 0.5F + desk_lengths::kRouteSpacing;
    const float left = std::min(from.left, to.left);
    const float bottom = std::min(from.bottom, to.bottom);
    const float right = std::max(from.left + from.width, to.left + to.width);
    const float top = std::max(from.bottom + from.bodyHeight, to.bottom + to.bodyHeight) +
                      std::max(from.titleHeight, to.titleHeight);
    return {left - turns, bottom - turns, right - left + 2 * turns, top - bottom + 2 * turns};
}

// Calls `visit(ButtonPlace output, ButtonPlace input, COpButton& inputButton)` for each input of the box that
// has a connection, top to bottom. `visit` returns whether to go on; the result is whether all were visited.
template <typename Visit>
bool ForEachConnection(const COpBox& box, Visit visit) {
    for (size_t index = 0; index < box.inputs.size(); ++index) {
        COpButton& input = *box.inputs[index];
        if (input.connections.Empty()) continue;
        const ButtonPlace target{&box, false, index};
        if (!visit(ButtonPlace::Of(*input.connections.First()), target, input)) return false;
    }
    return true;
}

// The same for those whose lines may touch a rectangle: most of the others are known by their boxes alone.
template <typename Visit>
bool ForEachConnectionWithin(const DeskRect& rect, const COpBox& box, Visit visit) {
    for (size_t index = 0; index < box.inputs.size(); ++index) {
        COpButton& input = *box.inputs[index];
        if (input.connections.Empty()) continue;
        const COpButton& output = *input.connections.First();
        if (!LineReach(*output.owner, box).Overlaps(rect)) continue;
        if (!visit(ButtonPlace::Of(output), ButtonPlace{&box, false, index}, input)) return false;
    }
    return true;
}

// What all boxes, frames and notes cover and, where lines are traced, the lines, with a margin of some
// pixels; nothing for an empty desk.
std::optional<DeskRect> NetworkRect(const CTvDoc& document, float zoom);

}  // namespace tavrin

// SPDX-License-Identifier: Apache-2.0
#include "desk/DeskGeometry.h"

#include <algorithm>

#include "desk/FrameGeometry.h"
#include "document/TvDoc.h"

namespace tavrin {

namespace {

using namespace desk_lengths;

constexpr float kNetworkMargin = 10;  // pixels round the network

float ColumnWidth(const std::vector<std::unique_ptr<COpButton>>& buttons, float pixel, float pad,
                  const TextMeasure& text) {
    float widest = kMinColumnText;
    for (const auto& button : buttons) widest = std::max(widest, text.LabelWidth(ShownName(*button)) * pixel);
    return pad + widest;
}

float RouteSpacing(size_t steps) { return static_cast<float>(steps) * kRouteSpacing; }

// What has been covered so far, by its edges.
struct Bounds {
    float left;
    float bottom;
    float right;
    float top;

    explicit Bounds(const DeskRect& rect)
        : left(rect.left), bottom(rect.bottom), right(rect.Right()), top(rect.Top()) {}
    void Add(const Bounds& other) {
        left = std::min(left, other.left);
        bottom = std::min(bottom, other.bottom);
        right = std::max(right, other.right);
        top = std::max(top, other.top);
    }
    void Add(const Polyline& line) {
        for (const DeskPoint& point : line) Add(Bounds({point.x, point.y, 0, 0}));
    }
};

// Takes in the traced lines. From a box they reach no further than one step for each of its buttons on that
// side, so most cannot reach beyond what all boxes cover and need not be looked at.
void AddTracedLines(const CTvDoc& document, Bounds& covered) {
    const Bounds boxes = covered;
    for (const auto& box : document.m_boxes) {
        const DeskRect rect = BoxRect(*box);
        const float entry = RouteSpacing(box->inputs.size());
        if (rect.left - entry < boxes.left || rect.bottom - entry < boxes.bottom ||
            rect.Top() + entry > boxes.top) {
            ForEachConnection(*box, [&](const ButtonPlace& from, const ButtonPlace& to, COpButton&) {
                covered.Add(ConnectionPolyline(from, to, true));
                return true;
            });
        }
        if (rect.Right() + RouteSpacing(box->outputs.size()) <= boxes.right) continue;
        for (size_t index = 0; index < box->outputs.size(); ++index) {
            for (const COpButton* input : box->outputs[index]->NamedBy()) {
                covered.Add(ConnectionPolyline({box.get(), true, index}, ButtonPlace::Of(*input), true));
            }
        }
    }
}

constexpr size_t kMostShown = 60;  // bytes of a name that no library vouches for

// Not within a character.
std::string Shortened(std::string name) {
    if (name.size() <= kMostShown) return name;
    size_t end = kMostShown;
    while (end > 0 && (static_cast<unsigned char>(name[end]) & 0xC0) == 0x80) --end;
    return name.substr(0, end) + "...";
}

size_t ButtonCount(const COpBox& box, bool outputs) {
    return outputs ? box.outputs.size() : box.inputs.size();
}

}  // namespace

DeskRect DeskRect::Between(DeskPoint corner, DeskPoint opposite) {
    const float left = std::min(corner.x, opposite.x);
    const float bottom = std::min(corner.y, opposite.y);
    return {left, bottom, std::max(corner.x, opposite.x) - left, std::max(corner.y, opposite.y) - bottom};
}

DeskRect DeskRect::UnitedWith(const DeskRect& other) const {
    const DeskPoint low{std::min(left, other.left), std::min(bottom, other.bottom)};
    return {low.x, low.y, std::max(Right(), other.Right()) - low.x, std::max(Top(), other.Top()) - low.y};
}

std::string ShownTitle(const COpBox& box, char joint) {
    return (box.IsPlaceholder() ? Shortened(box.filename) : box.filename) + joint + std::to_string(box.wid);
}

std::string ShownName(const COpButton& button) {
    return button.IsUnknown() ? Shortened(button.DisplayName()) : button.DisplayName();
}

void LayoutBox(COpBox& box, float zoom, const TextMeasure& text, IconSize icon) {
    const float pixel = 1 / zoom;  // in desk units
    // Bevels and gaps are never thinner than their pixels.
    const float thin = zoom < 1 ? pixel : 1;
    const float pad = (kTextGap + 2 * kBevel) * thin;
    const auto rows = [](const auto& buttons) { return static_cast<float>(buttons.size()) * kRowHeight; };
    const bool hasIcon = icon.width > 0 && icon.height > 0;
    // An icon's pixels count as desk units: it is magnified with the desk.
    const float iconWidth = hasIcon ? static_cast<float>(icon.width) + pad : 0;
    const float iconHeight = hasIcon ? static_cast<float>(icon.height) + pad : 0;
    const float nameWidth = text.LabelWidth(ShownTitle(box)) * pixel + pad;
    const float labelWidth = text.TitleWidth(box.icontext) * pixel + pad;

    BoxLayout& layout = box.layout;
    layout.titleHeight = kRowHeight;
    layout.leftColumnWidth = ColumnWidth(box.inputs, pixel, pad, text);
    layout.rightColumnWidth = ColumnWidth(box.outputs, pixel, pad, text);
    const float columns = layout.leftColumnWidth + layout.rightColumnWidth;
    layout.width =
        std::max({static_cast<float>(box.size[0]), nameWidth, iconWidth + columns, labelWidth + columns});
    layout.bodyHeight = std::max({static_cast<float>(box.size[1]) - layout.titleHeight, rows(box.inputs),
                                  iconHeight, kRowHeight, rows(box.outputs)});
    layout.left = box.xypos[0] - layout.width * 0.5F;
    layout.bottom = box.xypos[1] - (layout.bodyHeight + layout.titleHeight) * 0.5F;
}

DeskRect TitleRect(const COpBox& box) {
    const BoxLayout& layout = box.layout;
    return {layout.left, layout.bottom + layout.bodyHeight, layout.width, layout.titleHeight};
}

DeskRect PanelRect(const COpBox& box) {
    const BoxLayout& layout = box.layout;
    return {layout.left + layout.leftColumnWidth, layout.bottom,
            layout.width - layout.leftColumnWidth - layout.rightColumnWidth, layout.bodyHeight};
}

DeskRect ButtonColumnRect(const COpBox& box, bool outputs) {
    const BoxLayout& layout = box.layout;
    if (!outputs) return {layout.left, layout.bottom, layout.leftColumnWidth, layout.bodyHeight};
    return {layout.left + layout.width - layout.rightColumnWidth, layout.bottom, layout.rightColumnWidth,
            layout.bodyHeight};
}

ButtonPlace ButtonPlace::Of(const COpButton& button) {
    return {button.owner, button.IsOutput(), button.owner->IndexOfButton(button)};
}

DeskRect ButtonRect(const ButtonPlace& place) {
    const DeskRect column = ButtonColumnRect(*place.box, place.isOutput);
    const auto count = static_cast<float>(ButtonCount(*place.box, place.isOutput));
    const float below = count - static_cast<float>(place.index) - 1;  // rows under this one
    return {column.left, column.bottom + column.height * below / count, column.width, column.height / count};
}

DeskPoint ButtonAnchor(const ButtonPlace& place) {
    const DeskRect rect = ButtonRect(place);
    return {place.isOutput ? rect.Right() : rect.left, rect.Middle().y};
}

DeskRect GrowArrowRect(const ButtonPlace& place, bool above) {
    const DeskRect button = ButtonRect(place);
    return {button.left, above ? button.Top() : button.bottom - kGrowArrowHeight,
            place.box->layout.leftColumnWidth, kGrowArrowHeight};
}

Polyline ConnectionPolyline(const ButtonPlace& output, const ButtonPlace& input, bool traced) {
    const DeskPoint from = ButtonAnchor(output);
    const DeskPoint to = ButtonAnchor(input);
    if (!traced) return {{from, to}, 2};

    const bool isDown = to.y <= from.y;
    const float turn = RouteSpacing(isDown ? input.index + 1 : input.box->inputs.size() - input.index);
    const float middle = to.x - turn;
    if (middle > from.x + kRouteSpacing) return {{from, {middle, from.y}, {middle, to.y}, to}, 4};

    const DeskRect target = BoxRect(*input.box);
    const float out =
        from.x + RouteSpacing(isDown ? output.box->outputs.size() - output.index : output.index + 1);
    const float past = isDown ? target.Top() + turn : target.bottom - turn;
    return {{from, {out, from.y}, {out, past}, {middle, past}, {middle, to.y}, to}, 6};
}

std::optional<DeskRect> NetworkRect(const CTvDoc& document, float zoom) {
    if (document.IsBare()) return std::nullopt;
    Bounds covered(document.m_boxes.empty() ? FrameRect(document.frames.begin()->second)
                                            : BoxRect(*document.m_boxes.front()));
    for (const auto& box : document.m_boxes) covered.Add(Bounds(BoxRect(*box)));
    for (const auto& [number, frame] : document.frames) covered.Add(Bounds(FrameRect(frame)));
    if (document.linetype == 1) AddTracedLines(document, covered);
    const DeskRect network{covered.left, covered.bottom, covered.right - covered.left,
                           covered.top - covered.bottom};
    return network.GrownBy(kNetworkMargin / zoom);
}

}  // namespace tavrin

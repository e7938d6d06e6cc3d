// SPDX-License-Identifier: Apache-2.0
// A network as it stood at a moment, for comparing it with another.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <map>
#include <span>
#include <string>
#include <vector>

#include "document/NetworkState.h"

namespace tavrin {

class CTvDoc;

// All that can make a network's picture another one: nothing of the layout of the desk or of the slider
// column, and nothing of exports. A plain value that outlives its document. What is of one kind lies in one
// row, in which boxes and buttons name each other by their places: some thousand boxes are taken and compared
// while a render starts.
struct NetworkPicture {
    static constexpr uint32_t kNone = UINT32_MAX;

    // What buttons of a definition have in common.
    struct Shape {
        std::string name;
        bool isOutput = false;
        bool isVinput = false;
        std::vector<std::string> types;  // of its casts; those of an output have no values

        // The same text for shapes that are the same.
        std::string Key() const;
    };
    struct Button {
        uint32_t shape = 0;
        uint32_t box = 0;
        uint32_t firstValue = 0;  // of as many as the shape has types, for an input
        uint32_t currentCast = 0;
        uint32_t feeder = kNone;  // the output that an input is wired to
        int instance = 1;
        int arg = 0;
        std::string argname;
        std::string comments;
    };
    struct Box {
        std::string operatorName;
        int wid = 0;
        std::array<float, 2> place{};  // tells alike boxes apart, and is no difference by itself
        uint32_t firstButton = 0;      // inputs in their order, then outputs
        uint32_t buttonCount = 0;
        bool isPlaceholder = false;
    };

    std::vector<Shape> shapes;
    std::vector<ValueState> values;
    std::vector<Button> buttons;
    std::vector<Box> boxes;  // in the order of their numbers
    OptionsState options;
    std::string help;  // of the finished shader, lines joined by CR LF

    std::span<const Button> ButtonsOf(const Box& box) const {
        return std::span(buttons).subspan(box.firstButton, box.buttonCount);
    }
    // Those of its casts; none for an output.
    std::span<const ValueState> ValuesOf(const Button& button) const {
        const Shape& shape = ShapeOf(button);
        return std::span(values).subspan(button.firstValue, shape.isOutput ? 0 : shape.types.size());
    }
    const Shape& ShapeOf(const Button& button) const { return shapes[button.shape]; }
    // As COpBox::BoxTitleWid and COpButton::DisplayName.
    std::string TitleOf(const Box& box) const;
    std::string DisplayNameOf(const Button& button) const;
};

// Changes nothing, and costs as much as there are buttons.
NetworkPicture CaptureNetwork(const CTvDoc& document);

}  // namespace tavrin

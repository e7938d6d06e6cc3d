// SPDX-License-Identifier: Apache-2.0
// What lies behind the boxes of a network and says what they are for: frames with a title, and notes.
#pragma once

#include <cstddef>
#include <map>
#include <optional>
#include <string>
#include <string_view>

namespace tavrin {

// A plain value of the document. It makes no code, and which boxes are on a frame is told by where they lie
// alone.
struct DeskFrame {
    enum class Kind {
        kFrame,  // has a title bar, and is empty desk below it
        kNote,   // free text
    };
    static constexpr int kColors = 6;  // what they look like is for who paints them
    // No side is shorter, nor longer, and no corner lies further from the origin. Desk units.
    static constexpr float kLeastSide = 32;
    static constexpr float kMostSide = 1e6F;
    static constexpr float kFarthest = 1e6F;

    Kind kind = Kind::kFrame;
    int color = 0;  // below kColors
    // Desk units, y upward.
    float left = 0;
    float bottom = 0;
    float width = kLeastSide;
    float height = kLeastSide;
    std::string text;  // a title, or any number of lines, joined by LF

    bool operator==(const DeskFrame&) const = default;
    // Brings colour, place and size into their bounds. All numbers are finite.
    void KeepBounds();
};

// By number, in the order in which they came. A number says which one is meant and is not saved.
using DeskFrames = std::map<int, DeskFrame>;

// More than these a document does not have.
inline constexpr size_t kMostFrames = 10000;

// Adds it behind the others; false if there is no room.
bool AddFrame(DeskFrames& frames, DeskFrame frame);

// It as the words of a document, from which FrameOf makes the same again: its kind, colour, place and size,
// and its text, in which control characters and '%' stand as '%' and two hexadecimal digits.
std::string WordsOf(const DeskFrame& frame);
// Within bounds; nothing if the words are none of a frame.
std::optional<DeskFrame> FrameOf(std::string_view words);

}  // namespace tavrin

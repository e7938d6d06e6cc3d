// SPDX-License-Identifier: Apache-2.0
// Where frames and notes lie, which of them lies on top, and what of them is under a point.
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "desk/DeskGeometry.h"
#include "desk/DeskStyle.h"
#include "document/DeskFrame.h"

namespace tavrin {

inline DeskRect FrameRect(const DeskFrame& frame) {
    return {frame.left, frame.bottom, frame.width, frame.height};
}
// What it is dragged by: a frame's title bar, which is seen at any zoom if there is room for it, or the whole
// note. `zoom` is how many pixels a desk unit has.
DeskRect FrameHandle(const DeskFrame& frame, float zoom);
// A corner that it is resized by, counted as DeskRect::Corners does.
inline constexpr size_t kFrameCorners = 4;
DeskRect FrameCorner(const DeskFrame& frame, size_t corner, float zoom);
// The rectangle with that corner at a point, no side of it shorter than a frame's may be.
DeskRect WithCornerAt(const DeskRect& rect, size_t corner, DeskPoint point);

// A frame or note by its number.
struct PlacedFrame {
    int number = 0;
    const DeskFrame* frame = nullptr;
};
// Those that overlap the rectangle, the lowest first: small ones lie on larger ones, notes on frames.
std::vector<PlacedFrame> FramesFromBelow(const DeskFrames& frames, const DeskRect& within);

// What a press there would take hold of.
struct FrameHit {
    int number = 0;
    std::optional<size_t> corner = {};  // else it is the handle
};
// The topmost; nothing on empty desk, as all of a frame is but its bar and its corners.
std::optional<FrameHit> HitFrame(const DeskFrames& frames, DeskPoint point, float zoom);

// The middle of a new note: in the middle of what is seen, or as near to that as nothing is hidden by it, and
// no box hides it; where there is no such place, in the middle all the same.
DeskPoint PlaceForNote(const CTvDoc& document, const DeskRect& seen);
// In desk units.
inline constexpr DeskRect kNewNote{0, 0, 160, 80};

// What a colour of frames and notes is called, and how it looks: of a bar, below black text.
const char* FrameColorName(int color);
const Rgb& FrameColor(int color);

}  // namespace tavrin

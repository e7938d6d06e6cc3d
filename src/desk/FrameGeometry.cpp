// SPDX-License-Identifier: Apache-2.0
#include "desk/FrameGeometry.h"

#include <algorithm>
#include <array>
#include <cstdlib>

#include "document/TvDoc.h"

namespace tavrin {

namespace {

using Kind = DeskFrame::Kind;

constexpr float kBarHeight = 22;       // desk units
constexpr float kLeastBarPixels = 16;  // of a frame that is high enough
constexpr float kMostBarShare = 0.5F;  // of the frame
constexpr float kCornerPixels = 10;
constexpr float kMostCornerShare = 0.3F;  // of a side

struct NamedColor {
    const char* name;
    Rgb color;
};
constexpr std::array<NamedColor, DeskFrame::kColors> kColors = {{
    {"Grey", {0.74F, 0.76F, 0.78F}},
    {"Blue", {0.62F, 0.77F, 0.93F}},
    {"Green", {0.66F, 0.87F, 0.66F}},
    {"Yellow", {0.96F, 0.90F, 0.56F}},
    {"Orange", {0.97F, 0.77F, 0.56F}},
    {"Rose", {0.95F, 0.70F, 0.74F}},
}};

const NamedColor& ColorAt(int color) {
    return kColors[static_cast<size_t>(std::clamp(color, 0, DeskFrame::kColors - 1))];
}

bool LiesBelow(const PlacedFrame& one, const PlacedFrame& other) {
    const auto area = [](const DeskFrame& frame) { return frame.width * frame.height; };
    if (one.frame->kind != other.frame->kind) return one.frame->kind == Kind::kFrame;
    if (area(*one.frame) != area(*other.frame)) return area(*one.frame) > area(*other.frame);
    return one.number < other.number;
}

}  // namespace

DeskRect FrameHandle(const DeskFrame& frame, float zoom) {
    const DeskRect rect = FrameRect(frame);
    if (frame.kind == Kind::kNote) return rect;
    const float height = std::min(std::max(kBarHeight, kLeastBarPixels / zoom), rect.height * kMostBarShare);
    return {rect.left, rect.Top() - height, rect.width, height};
}

DeskRect FrameCorner(const DeskFrame& frame, size_t corner, float zoom) {
    const DeskRect rect = FrameRect(frame);
    const float side = std::min(kCornerPixels / zoom, std::min(rect.width, rect.height) * kMostCornerShare);
    const DeskPoint at = rect.Corners()[corner];
    return {at.x == rect.left ? at.x : at.x - side, at.y == rect.bottom ? at.y : at.y - side, side, side};
}

DeskRect WithCornerAt(const DeskRect& rect, size_t corner, DeskPoint point) {
    constexpr float kLeast = DeskFrame::kLeastSide;
    constexpr float kMost = DeskFrame::kMostSide;
    DeskRect moved = rect;
    const DeskPoint former = rect.Corners()[corner];
    if (former.x == rect.left) {
        moved.width = std::clamp(rect.Right() - point.x, kLeast, kMost);
        moved.left = rect.Right() - moved.width;
    } else {
        moved.width = std::clamp(point.x - rect.left, kLeast, kMost);
    }
    if (former.y == rect.bottom) {
        moved.height = std::clamp(rect.Top() - point.y, kLeast, kMost);
        moved.bottom = rect.Top() - moved.height;
    } else {
        moved.height = std::clamp(point.y - rect.bottom, kLeast, kMost);
    }
    return moved;
}

std::vector<PlacedFrame> FramesFromBelow(const DeskFrames& frames, const DeskRect& within) {
    std::vector<PlacedFrame> placed;
    for (const auto& [number, frame] : frames) {
        if (FrameRect(frame).Overlaps(within)) placed.push_back({number, &frame});
    }
    std::sort(placed.begin(), placed.end(), LiesBelow);
    return placed;
}

std::optional<FrameHit> HitFrame(const DeskFrames& frames, DeskPoint point, float zoom) {
    PlacedFrame top;
    FrameHit hit;
    for (const auto& [number, frame] : frames) {
        if (!FrameRect(frame).Contains(point)) continue;
        std::optional<size_t> corner;
        for (size_t i = 0; i < kFrameCorners; ++i) {
            if (FrameCorner(frame, i, zoom).Contains(point)) corner = i;
        }
        if (!corner && !FrameHandle(frame, zoom).Contains(point)) continue;
        const PlacedFrame own{number, &frame};
        if (top.frame != nullptr && LiesBelow(own, top)) continue;
        top = own;
        hit = {number, corner};
    }
    if (top.frame == nullptr) return std::nullopt;
    return hit;
}

DeskPoint PlaceForNote(const CTvDoc& document, const DeskRect& seen) {
    constexpr float kStep = 40;
    constexpr int kMostRings = 12;
    constexpr float kGap = 8;
    const DeskPoint middle = seen.Middle();
    const auto isFree = [&](DeskPoint at) {
        const DeskRect note{at.x - kNewNote.width * 0.5F, at.y - kNewNote.height * 0.5F, kNewNote.width,
                            kNewNote.height};
        const DeskRect room = note.GrownBy(kGap);
        const auto isBox = [&](const auto& box) { return BoxRect(*box).Overlaps(room); };
        const auto isNote = [&](const auto& frame) {
            return frame.second.kind == Kind::kNote && FrameRect(frame.second).Overlaps(room);
        };
        return seen.Encloses(note) && std::none_of(document.m_boxes.begin(), document.m_boxes.end(), isBox) &&
               std::none_of(document.frames.begin(), document.frames.end(), isNote);
    };
    for (int ring = 0; ring <= kMostRings; ++ring) {
        for (int down = -ring; down <= ring; ++down) {
            for (int across = -ring; across <= ring; ++across) {
                if (std::max(std::abs(down), std::abs(across)) != ring) continue;
                const DeskPoint at{middle.x + static_cast<float>(across) * kStep,
                                   middle.y - static_cast<float>(down) * kStep};
                if (isFree(at)) return at;
            }
        }
    }
    return middle;
}

const char* FrameColorName(int color) { return ColorAt(color).name; }

const Rgb& FrameColor(int color) { return ColorAt(color).color; }

}  // namespace tavrin

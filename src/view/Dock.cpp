// SPDX-License-Identifier: Apache-2.0
#include "view/Dock.h"

#include <array>
#include <cstdlib>

namespace tavrin {

namespace {

int RightOf(const QRect& rect) { return rect.x() + rect.width(); }
int BottomOf(const QRect& rect) { return rect.y() + rect.height(); }

// Whether two stretches come within reach of each other.
bool Meet(int begin, int end, int otherBegin, int otherEnd) {
    return begin <= otherEnd + Dock::kReach && otherBegin <= end + Dock::kReach;
}

// Of the near edge, snapped to either end of the other window's side.
int Offset(int begin, int length, int otherBegin, int otherLength) {
    if (std::abs(begin - otherBegin) <= Dock::kReach) return 0;
    const int atEnd = otherLength - length;
    return std::abs(begin - otherBegin - atEnd) <= Dock::kReach ? atEnd : begin - otherBegin;
}

}  // namespace

std::optional<Dock> Dock::Of(const QRect& window, const QRect& other) {
    struct Edge {
        Side side;
        int distance;
        bool meets;
    };
    const bool besides = Meet(window.y(), BottomOf(window), other.y(), BottomOf(other));
    const bool above = Meet(window.x(), RightOf(window), other.x(), RightOf(other));
    const std::array<Edge, 4> edges{{
        {Side::kRight, std::abs(window.x() - RightOf(other)), besides},
        {Side::kLeft, std::abs(RightOf(window) - other.x()), besides},
        {Side::kBottom, std::abs(window.y() - BottomOf(other)), above},
        {Side::kTop, std::abs(BottomOf(window) - other.y()), above},
    }};
    const Edge* nearest = nullptr;
    for (const Edge& edge : edges) {
        if (!edge.meets || edge.distance > kReach) continue;
        if (nearest == nullptr || edge.distance < nearest->distance) nearest = &edge;
    }
    if (nearest == nullptr) return std::nullopt;
    const bool isBeside = nearest->side == Side::kRight || nearest->side == Side::kLeft;
    return Dock{nearest->side, isBeside ? Offset(window.y(), window.height(), other.y(), other.height())
                                        : Offset(window.x(), window.width(), other.x(), other.width())};
}

QPoint Dock::Place(QSize window, const QRect& other) const {
    switch (side) {
        case Side::kRight:
            return {RightOf(other), other.y() + offset};
        case Side::kLeft:
            return {other.x() - window.width(), other.y() + offset};
        case Side::kBottom:
            return {other.x() + offset, BottomOf(other)};
        case Side::kTop:
            break;
    }
    return {other.x() + offset, other.y() - window.height()};
}

std::optional<Dock> Dock::First(QSize window, const QRect& other, const QRect& screen) {
    for (const Side side : {Side::kRight, Side::kLeft}) {
        const Dock dock{side, 0};
        if (screen.contains(QRect(dock.Place(window, other), window))) return dock;
    }
    return std::nullopt;
}

}  // namespace tavrin

// SPDX-License-Identifier: Apache-2.0
#include "desk/DeskLayout.h"

#include <algorithm>
#include <cmath>
#include <numeric>
#include <utility>

#include "desk/IslandLayout.h"

namespace tavrin {

namespace {

constexpr double kFurthest = 1e6;  // where floats still tell neighbouring units well apart
constexpr double kLargest = 1e5;   // box
constexpr double kSameRow = 1;     // islands whose tops are so near stand in one row
constexpr double kRowShape = 1.6;  // width of all islands to their height, about

// Within what can be laid out. What is no number counts as none.
double Tamed(float number, double least, double most) {
    return std::isnan(number) ? std::clamp(0.0, least, most)
                              : std::clamp(static_cast<double>(number), least, most);
}

struct Span {
    double low = 0;
    double high = 0;
    double Middle() const { return (low + high) / 2; }
};

// A rectangle that arithmetic can trust.
struct Piece {
    explicit Piece(const DeskRect& rect)
        : left(Tamed(rect.left, -kFurthest, kFurthest)),
          bottom(Tamed(rect.bottom, -kFurthest, kFurthest)),
          width(Tamed(rect.width, 0, kLargest)),
          height(Tamed(rect.height, 0, kLargest)) {}

    Span Across() const { return {left, left + width}; }
    Span Up() const { return {bottom, bottom + height}; }

    double left;
    double bottom;
    double width;
    double height;
};

std::vector<Piece> PiecesOf(const std::vector<DeskRect>& rects) { return {rects.begin(), rects.end()}; }

template <typename SpanOf>
Span Cover(const std::vector<Piece>& pieces, SpanOf spanOf) {
    Span all = spanOf(pieces.front());
    for (const Piece& piece : pieces) {
        const Span own = spanOf(piece);
        all = {std::min(all.low, own.low), std::max(all.high, own.high)};
    }
    return all;
}
Span CoverAcross(const std::vector<Piece>& pieces) {
    return Cover(pieces, [](const Piece& piece) { return piece.Across(); });
}
Span CoverUp(const std::vector<Piece>& pieces) {
    return Cover(pieces, [](const Piece& piece) { return piece.Up(); });
}

DeskPoint PointOf(double x, double y) { return {static_cast<float>(x), static_cast<float>(y)}; }

std::vector<DeskPoint> CornersOf(const std::vector<Piece>& pieces) {
    std::vector<DeskPoint> corners;
    corners.reserve(pieces.size());
    for (const Piece& piece : pieces) corners.push_back(PointOf(piece.left, piece.bottom));
    return corners;
}

// What wires join, as places among all pieces.
struct Island {
    std::vector<size_t> members;
    std::vector<LayoutWire> wires;  // by places among the members
    std::vector<IslandLayout::Place> places;
    Span across;  // what it covers
    Span up;
};

// The root of a piece's island, with the way there made shorter.
size_t RootOf(std::vector<size_t>& parents, size_t piece) {
    while (parents[piece] != piece) piece = parents[piece] = parents[parents[piece]];
    return piece;
}

std::vector<Island> IslandsOf(size_t count, const std::vector<LayoutWire>& wires) {
    std::vector<size_t> parents(count);
    std::iota(parents.begin(), parents.end(), size_t{0});
    for (const LayoutWire& wire : wires) parents[RootOf(parents, wire.from)] = RootOf(parents, wire.to);
    std::vector<Island> islands;
    std::vector<size_t> islandOf(count, count);  // by root
    std::vector<size_t> placeOf(count);
    for (size_t piece = 0; piece < count; ++piece) {
        size_t& island = islandOf[RootOf(parents, piece)];
        if (island == count) {
            island = islands.size();
            islands.emplace_back();
        }
        placeOf[piece] = islands[island].members.size();
        islands[island].members.push_back(piece);
    }
    for (const LayoutWire& wire : wires) {
        if (wire.from == wire.to) continue;
        islands[islandOf[RootOf(parents, wire.from)]].wires.push_back(
            {placeOf[wire.from], placeOf[wire.to], wire.fromHeight, wire.toHeight});
    }
    return islands;
}

// Only those whose ends there are, and whose heights are such.
std::vector<LayoutWire> SoundWires(const std::vector<LayoutWire>& wires, size_t count) {
    std::vector<LayoutWire> sound;
    sound.reserve(wires.size());
    for (const LayoutWire& wire : wires) {
        if (wire.from >= count || wire.to >= count) continue;
        sound.push_back({wire.from, wire.to, static_cast<float>(Tamed(wire.fromHeight, 0, kLargest)),
                         static_cast<float>(Tamed(wire.toHeight, 0, kLargest))});
    }
    return sound;
}

void ArrangeIsland(Island& island, const std::vector<Piece>& pieces, const LayoutGaps& gaps) {
    std::vector<IslandLayout::Box> boxes;
    boxes.reserve(island.members.size());
    for (const size_t member : island.members) {
        const Piece& piece = pieces[member];
        boxes.push_back({piece.width, piece.height, piece.Up().Middle()});
    }
    island.places = IslandLayout(boxes, std::move(island.wires), gaps).Arrange();
    for (size_t i = 0; i < boxes.size(); ++i) {
        const IslandLayout::Place& place = island.places[i];
        const Span across{place.left, place.left + boxes[i].width};
        const Span up{place.bottom, place.bottom + boxes[i].height};
        island.across =
            i == 0 ? across
                   : Span{std::min(island.across.low, across.low), std::max(island.across.high, across.high)};
        island.up = i == 0 ? up : Span{std::min(island.up.low, up.low), std::max(island.up.high, up.high)};
    }
}

// As one reads what stands there now: by rows of equal tops, in a row from left to right.
std::vector<size_t> ReadingOrder(const std::vector<Island>& islands, const std::vector<Piece>& pieces) {
    struct Corner {
        size_t island;
        double left;
        double top;
    };
    std::vector<Corner> corners;
    for (size_t i = 0; i < islands.size(); ++i) {
        Corner corner{i, kFurthest + kLargest, -kFurthest};
        for (const size_t member : islands[i].members) {
            corner.left = std::min(corner.left, pieces[member].left);
            corner.top = std::max(corner.top, pieces[member].Up().high);
        }
        corners.push_back(corner);
    }
    std::stable_sort(corners.begin(), corners.end(),
                     [](const Corner& one, const Corner& other) { return one.top > other.top; });
    for (auto row = corners.begin(); row != corners.end();) {
        const double least = row->top - kSameRow;
        const auto next =
            std::find_if(row, corners.end(), [&](const Corner& corner) { return corner.top < least; });
        std::stable_sort(row, next,
                         [](const Corner& one, const Corner& other) { return one.left < other.left; });
        row = next;
    }
    std::vector<size_t> order;
    order.reserve(corners.size());
    for (const Corner& corner : corners) order.push_back(corner.island);
    return order;
}

// In rows from the top down, each as high as its highest island.
void PackIslands(const std::vector<Island>& islands, const std::vector<size_t>& order, double gap,
                 std::vector<Piece>& pieces) {
    double area = 0;
    double widest = 0;
    for (const Island& island : islands) {
        const double width = island.across.high - island.across.low + gap;
        area += width * (island.up.high - island.up.low + gap);
        widest = std::max(widest, width);
    }
    const double rowWidth = std::max(widest, std::sqrt(area * kRowShape));
    double left = 0;
    double top = 0;
    double height = 0;
    for (const size_t index : order) {
        const Island& island = islands[index];
        const double width = island.across.high - island.across.low + gap;
        if (left > 0 && left + width > rowWidth) {
            left = 0;
            top -= height + gap;
            height = 0;
        }
        for (size_t i = 0; i < island.members.size(); ++i) {
            Piece& piece = pieces[island.members[i]];
            piece.left = island.places[i].left - island.across.low + left;
            piece.bottom = island.places[i].bottom - island.up.high + top;
        }
        left += width;
        height = std::max(height, island.up.high - island.up.low);
    }
}

}  // namespace

std::vector<DeskPoint> AlignRects(const std::vector<DeskRect>& rects, DeskAlign align) {
    if (rects.empty()) return {};
    std::vector<Piece> pieces = PiecesOf(rects);
    const Span across = CoverAcross(pieces);
    const Span up = CoverUp(pieces);
    for (Piece& piece : pieces) {
        if (align == DeskAlign::kLeft) piece.left = across.low;
        if (align == DeskAlign::kRight) piece.left = across.high - piece.width;
        if (align == DeskAlign::kMiddleAcross) piece.left = across.Middle() - piece.width / 2;
        if (align == DeskAlign::kBottom) piece.bottom = up.low;
        if (align == DeskAlign::kTop) piece.bottom = up.high - piece.height;
        if (align == DeskAlign::kMiddleUp) piece.bottom = up.Middle() - piece.height / 2;
    }
    return CornersOf(pieces);
}

std::vector<DeskPoint> DistributeRects(const std::vector<DeskRect>& rects, DeskAxis axis) {
    std::vector<Piece> pieces = PiecesOf(rects);
    if (pieces.size() < 3) return CornersOf(pieces);
    const bool isAcross = axis == DeskAxis::kAcross;
    const auto spanOf = [&](size_t i) { return isAcross ? pieces[i].Across() : pieces[i].Up(); };
    const auto sizeOf = [&](size_t i) { return isAcross ? pieces[i].width : pieces[i].height; };
    std::vector<size_t> order(pieces.size());
    std::iota(order.begin(), order.end(), size_t{0});
    std::stable_sort(order.begin(), order.end(),
                     [&](size_t one, size_t other) { return spanOf(one).Middle() < spanOf(other).Middle(); });
    const Span first = spanOf(order.front());
    const Span last = spanOf(order.back());
    double room = last.high - first.low;
    for (const size_t piece : order) room -= sizeOf(piece);
    const auto steps = static_cast<double>(pieces.size() - 1);
    double next = first.low;
    for (size_t i = 1; i + 1 < order.size(); ++i) {
        next += sizeOf(order[i - 1]) + room / steps;
        const double middle =
            first.Middle() + (last.Middle() - first.Middle()) * static_cast<double>(i) / steps;
        (isAcross ? pieces[order[i]].left : pieces[order[i]].bottom) =
            room >= 0 ? next : middle - sizeOf(order[i]) / 2;
    }
    return CornersOf(pieces);
}

// The islands have an origin of their own, at which all is the same for the same order: what is added to go
// back to the middle is whole units, so that it is the same again where that has been done already.
std::vector<DeskPoint> TidyRects(const std::vector<DeskRect>& rects, const std::vector<LayoutWire>& wires,
                                 const LayoutGaps& gaps) {
    if (rects.empty()) return {};
    std::vector<Piece> pieces = PiecesOf(rects);
    const Span across = CoverAcross(pieces);
    const Span up = CoverUp(pieces);
    std::vector<Island> islands = IslandsOf(pieces.size(), SoundWires(wires, pieces.size()));
    const std::vector<size_t> order = ReadingOrder(islands, pieces);
    for (Island& island : islands) ArrangeIsland(island, pieces, gaps);
    PackIslands(islands, order, static_cast<double>(gaps.islands), pieces);
    const double right = std::round(across.Middle() - CoverAcross(pieces).Middle());
    const double higher = std::round(up.Middle() - CoverUp(pieces).Middle());
    for (Piece& piece : pieces) {
        piece.left += right;
        piece.bottom += higher;
    }
    return CornersOf(pieces);
}

}  // namespace tavrin

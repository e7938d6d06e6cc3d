// SPDX-License-Identifier: Apache-2.0
// The columns. The order within them is found in IslandOrder.cpp, the places in IslandPlaces.cpp.
#include "desk/IslandLayout.h"

#include <algorithm>
#include <numeric>
#include <utility>

namespace tavrin {

namespace {

constexpr int kShortenings = 8;     // passes over all boxes
constexpr int kStraightenings = 6;  // passes over all columns, there and back

}  // namespace

IslandLayout::IslandLayout(std::vector<Box> boxes, std::vector<LayoutWire> wires, const LayoutGaps& gaps)
    : m_boxes(std::move(boxes)),
      m_wires(std::move(wires)),
      m_gaps(gaps),
      m_feeders(m_boxes.size()),
      m_consumers(m_boxes.size()),
      m_closesCircle(m_wires.size()),
      m_columnOf(m_boxes.size()),
      m_bottom(m_boxes.size()) {
    for (size_t i = 0; i < m_wires.size(); ++i) {
        const LayoutWire& wire = m_wires[i];
        m_feeders[wire.to].push_back({i, wire.from, wire.fromHeight, wire.toHeight});
        m_consumers[wire.from].push_back({i, wire.to, wire.toHeight, wire.fromHeight});
    }
}

std::vector<IslandLayout::Place> IslandLayout::Arrange() {
    FindCircles();
    ChooseColumns();
    FillColumns();
    ReduceCrossings();
    FindLanes();
    Straighten();
    return Places();
}

// A walk downstream, without recursion: a wire that leads back to the way that the walk has come closes a
// circle. It begins where nothing feeds, so that most wires of a circle run forward.
void IslandLayout::FindCircles() {
    enum : char { kNew, kOnTheWay, kDone };
    std::vector<char> state(m_boxes.size(), kNew);
    struct Step {
        size_t box;
        size_t next = 0;
    };
    std::vector<Step> way;
    const auto walkFrom = [&](size_t start) {
        if (state[start] != kNew) return;
        state[start] = kOnTheWay;
        way.push_back({start});
        while (!way.empty()) {
            Step& step = way.back();
            if (step.next == m_consumers[step.box].size()) {
                state[step.box] = kDone;
                way.pop_back();
                continue;
            }
            const End& end = m_consumers[step.box][step.next++];
            if (state[end.box] == kOnTheWay) m_closesCircle[end.wire] = true;
            if (state[end.box] != kNew) continue;
            state[end.box] = kOnTheWay;
            way.push_back({end.box});
        }
    };
    for (size_t box = 0; box < m_boxes.size(); ++box) {
        if (m_feeders[box].empty()) walkFrom(box);
    }
    for (size_t box = 0; box < m_boxes.size(); ++box) walkFrom(box);
}

// At first as far to the right as a box may stand: next to what it feeds.
void IslandLayout::ChooseColumns() {
    std::vector<size_t> open(m_boxes.size());  // wires to boxes without a column
    std::vector<size_t> ready;
    for (size_t box = 0; box < m_boxes.size(); ++box) {
        for (const End& end : m_consumers[box]) open[box] += m_closesCircle[end.wire] ? 0 : 1;
        if (open[box] == 0) ready.push_back(box);
    }
    size_t furthest = 0;
    for (size_t place = 0; place < ready.size(); ++place) {
        const size_t box = ready[place];
        furthest = std::max(furthest, m_columnOf[box]);
        for (const End& end : m_feeders[box]) {
            if (m_closesCircle[end.wire]) continue;
            m_columnOf[end.box] = std::max(m_columnOf[end.box], m_columnOf[box] + 1);
            if (--open[end.box] == 0) ready.push_back(end.box);
        }
    }
    for (size_t& column : m_columnOf) column = furthest - column;
    ShortenWires();
}

// A box with more wires from the left than to the right, or as many, goes left as far as it may: so what
// feeds nothing stands beside what it is fed by, and not at the far end.
void IslandLayout::ShortenWires() {
    std::vector<size_t> boxes(m_boxes.size());
    std::iota(boxes.begin(), boxes.end(), size_t{0});
    for (int pass = 0; pass < kShortenings; ++pass) {
        std::stable_sort(boxes.begin(), boxes.end(),
                         [this](size_t left, size_t right) { return m_columnOf[left] < m_columnOf[right]; });
        bool isShorter = false;
        for (const size_t box : boxes) {
            size_t fed = 0;
            size_t feeds = 0;
            size_t least = 0;
            for (const End& end : m_feeders[box]) {
                if (m_closesCircle[end.wire]) continue;
                ++fed;
                least = std::max(least, m_columnOf[end.box] + 1);
            }
            for (const End& end : m_consumers[box]) feeds += m_closesCircle[end.wire] ? 0 : 1;
            if (fed == 0 || fed < feeds || least == m_columnOf[box]) continue;
            m_columnOf[box] = least;
            isShorter = true;
        }
        if (!isShorter) break;
    }
}

void IslandLayout::FillColumns() {
    std::vector<size_t> boxes(m_boxes.size());
    std::iota(boxes.rbegin(), boxes.rend(), size_t{0});  // of equals the first is to be the upper one
    std::stable_sort(boxes.begin(), boxes.end(), [this](size_t left, size_t right) {
        return m_boxes[left].middle < m_boxes[right].middle;
    });
    std::vector<Column> columns(m_boxes.size());
    for (const size_t box : boxes) columns[m_columnOf[box]].push_back(box);
    for (Column& column : columns) {
        if (column.empty()) continue;  // all of it went left
        for (const size_t box : column) m_columnOf[box] = m_columns.size();
        m_columns.push_back(std::move(column));
    }
}

// Each column by itself, its middle on one height with all others.
void IslandLayout::Stack() {
    for (const Column& column : m_columns) StackColumn(column);
}

void IslandLayout::StackColumn(const Column& column) {
    double height = -m_gaps.up;
    for (const size_t box : column) height += m_boxes[box].height + m_gaps.up;
    double bottom = -height / 2;
    for (const size_t box : column) {
        m_bottom[box] = bottom;
        bottom += m_boxes[box].height + m_gaps.up;
    }
}

}  // namespace tavrin

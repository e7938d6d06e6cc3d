// SPDX-License-Identifier: Apache-2.0
// In which order the boxes of a column stand: a descent to where no attempt gives fewer crossings. Each
// attempt depends on the order alone that it starts from, so that a layout begun with the order found stays
// there.
#include <algorithm>
#include <cmath>
#include <utility>

#include "desk/IslandLayout.h"

namespace tavrin {

namespace {

constexpr int kSweeps = 6;             // in a row, before they are given up
constexpr size_t kMostRounds = 200;    // of a small island
constexpr size_t kMostWork = 400'000;  // wires that all rounds of a large one look at
constexpr size_t kMostStretches = 8;   // of one wire that are looked at, from either end
constexpr size_t kMostSwaps = 16;      // of one box in a row
constexpr size_t kManyWires = 64;      // of a box that is not swapped: others are, round it

// A wire between two neighbouring columns.
struct Stretch {
    double left;
    double right;
};

// How many pairs of a sequence are out of order; sorts it.
size_t CountInversions(std::vector<double>& values, std::vector<double>& spare) {
    size_t inversions = 0;
    spare.resize(values.size());
    for (size_t width = 1; width < values.size(); width *= 2) {
        for (size_t begin = 0; begin < values.size(); begin += 2 * width) {
            const size_t middle = std::min(begin + width, values.size());
            const size_t end = std::min(begin + 2 * width, values.size());
            size_t one = begin;
            size_t other = middle;
            for (size_t place = begin; place < end; ++place) {
                if (other == end || (one < middle && !(values[other] < values[one]))) {
                    spare[place] = values[one++];
                } else {
                    inversions += middle - one;
                    spare[place] = values[other++];
                }
            }
        }
        values.swap(spare);
    }
    return inversions;
}

// How many pairs of two ascending sequences have the first one's above the second one's.
size_t CountAbove(const std::vector<double>& first, const std::vector<double>& second) {
    size_t count = 0;
    size_t below = 0;
    for (const double value : first) {
        while (below < second.size() && second[below] < value) ++below;
        count += below;
    }
    return count;
}

}  // namespace

void IslandLayout::ReduceCrossings() {
    Stack();
    m_crossings = CountCrossings();
    const size_t most = std::clamp(kMostWork / (m_wires.size() + 1), size_t{8}, kMostRounds);
    for (size_t round = 0; round < most && m_crossings > 0; ++round) {
        const bool isLess = TrySweeps();
        if (!TrySwaps() && !isLess) break;
    }
}

// Several in a row, since one alone may make it worse before the next makes it better.
bool IslandLayout::TrySweeps() {
    const auto columns = m_columns;
    for (const bool forward : {true, false}) {
        for (int sweep = 0; sweep < kSweeps; ++sweep) {
            Sweep((sweep % 2 == 0) == forward);
            Stack();
            const size_t crossings = CountCrossings();
            if (crossings >= m_crossings) continue;
            m_crossings = crossings;
            return true;
        }
        m_columns = columns;
        Stack();
    }
    return false;
}

bool IslandLayout::TrySwaps() {
    auto columns = m_columns;
    for (Column& column : m_columns) SwapNeighbours(column);
    Stack();
    const size_t crossings = CountCrossings();
    if (crossings < m_crossings) {
        m_crossings = crossings;
        return true;
    }
    m_columns = std::move(columns);
    Stack();
    return false;
}

// Puts the boxes of each column in the order of what feeds them, or of what they feed.
void IslandLayout::Sweep(bool forward) {
    std::vector<double> wanted(m_boxes.size());
    for (size_t i = 0; i < m_columns.size(); ++i) {
        Column& column = m_columns[forward ? i : m_columns.size() - 1 - i];
        for (const size_t box : column) {
            const std::vector<End>& ends = forward ? m_feeders[box] : m_consumers[box];
            const double half = m_boxes[box].height / 2;
            wanted[box] = m_bottom[box] + half;
            if (ends.empty()) continue;
            double sum = 0;
            for (const End& end : ends) sum += Anchor(end) - end.ownHeight + half;
            wanted[box] = sum / static_cast<double>(ends.size());
        }
        std::stable_sort(column.begin(), column.end(),
                         [&](size_t left, size_t right) { return wanted[left] < wanted[right]; });
        StackColumn(column);  // the next one goes by it
    }
}

// From the lowest up, each down as far as it gains.
void IslandLayout::SwapNeighbours(Column& column) {
    for (size_t place = 1; place < column.size(); ++place) {
        const size_t least = place < kMostSwaps ? 0 : place - kMostSwaps;
        for (size_t upper = place; upper > least && SwapGain(column[upper - 1], column[upper]) > 0; --upper)
            std::swap(column[upper - 1], column[upper]);
    }
}

// How many crossings less there are if the two change places, seen from their own wires; 0 if not less.
size_t IslandLayout::SwapGain(size_t lower, size_t upper) const {
    const auto anchors = [this](const std::vector<End>& ends) {
        std::vector<double> heights;
        heights.reserve(ends.size());
        for (const End& end : ends) heights.push_back(Anchor(end));
        std::sort(heights.begin(), heights.end());
        return heights;
    };
    size_t now = 0;
    size_t then = 0;
    for (const auto* side : {&m_feeders, &m_consumers}) {
        if ((*side)[lower].empty() || (*side)[upper].empty()) continue;
        if ((*side)[lower].size() > kManyWires || (*side)[upper].size() > kManyWires) return 0;
        const auto ofLower = anchors((*side)[lower]);
        const auto ofUpper = anchors((*side)[upper]);
        now += CountAbove(ofLower, ofUpper);
        then += CountAbove(ofUpper, ofLower);
    }
    return now > then ? now - then : 0;
}

// Wires are straight: how high one runs between two columns is known from its ends. Of very long ones the
// stretches near their ends count, so that the work grows with the wires and not with their lengths.
size_t IslandLayout::CountCrossings() const {
    std::vector<std::vector<Stretch>> stretches(m_columns.size());
    for (const LayoutWire& wire : m_wires) {
        size_t begin = m_columnOf[wire.from];
        size_t end = m_columnOf[wire.to];
        double low = m_bottom[wire.from] + static_cast<double>(wire.fromHeight);
        double high = m_bottom[wire.to] + static_cast<double>(wire.toHeight);
        if (begin > end) {
            std::swap(begin, end);
            std::swap(low, high);
        }
        const double slope = begin == end ? 0 : (high - low) / static_cast<double>(end - begin);
        for (size_t column = begin; column < end; ++column) {
            if (column - begin >= kMostStretches && end - column > kMostStretches) {
                column = end - kMostStretches;
            }
            const auto at = [&](size_t there) {
                return there == end ? high : low + slope * static_cast<double>(there - begin);
            };
            stretches[column].push_back({at(column), at(column + 1)});
        }
    }
    size_t crossings = 0;
    std::vector<double> rights;
    std::vector<double> spare;
    for (auto& between : stretches) {
        std::sort(between.begin(), between.end(), [](const Stretch& one, const Stretch& other) {
            return one.left != other.left ? one.left < other.left : one.right < other.right;
        });
        rights.clear();
        for (const Stretch& stretch : between) rights.push_back(stretch.right);
        crossings += CountInversions(rights, spare);
    }
    return crossings;
}

}  // namespace tavrin

// SPDX-License-Identifier: Apache-2.0
// How high each box stands once the columns and their orders are known: wires are to run level, and long ones
// beside the boxes that they pass.
#include <algorithm>
#include <cmath>
#include <numeric>

#include "desk/IslandLayout.h"

namespace tavrin {

namespace {

constexpr int kStraightenings = 8;  // passes over all columns, there and back
constexpr int kChoosing = 5;        // of which lanes may change their place among the boxes
constexpr int kClearances = 4;
constexpr size_t kLanesOfABox = 8;  // on average, at most: of more wires the longest go without
constexpr size_t kLanesAtLeast = 1000;
constexpr double kLaneWeight = 8;    // against that of a wire
constexpr double kHighestLane = 80;  // of one that runs steeply
constexpr double kBetweenLanes = 4;
constexpr size_t kMuchToChoose = 50'000;  // boxes of a column times its lanes
constexpr double kIdleWeight = 0.25;  // of a box without wires to that side, which stays unless others push

}  // namespace

// The shortest of the long wires first.
void IslandLayout::FindLanes() {
    m_lanes.resize(m_columns.size());
    m_items.resize(m_columns.size());
    m_left.push_back(0);
    for (const Column& column : m_columns) {
        double widest = 0;
        for (const size_t box : column) widest = std::max(widest, m_boxes[box].width);
        m_width.push_back(widest);
        m_left.push_back(m_left.back() + widest + static_cast<double>(m_gaps.across));
    }
    const auto columnsOf = [this](size_t wire) {
        return std::minmax(m_columnOf[m_wires[wire].from], m_columnOf[m_wires[wire].to]);
    };
    std::vector<size_t> wires(m_wires.size());
    std::iota(wires.begin(), wires.end(), size_t{0});
    const auto length = [&](size_t wire) { return columnsOf(wire).second - columnsOf(wire).first; };
    std::stable_sort(wires.begin(), wires.end(),
                     [&](size_t one, size_t other) { return length(one) < length(other); });
    size_t left = kLanesOfABox * m_boxes.size() + kLanesAtLeast;
    for (const size_t wire : wires) {
        const auto [begin, end] = columnsOf(wire);
        if (end - begin < 2) continue;
        if (end - begin - 1 > left) break;
        left -= end - begin - 1;
        for (size_t column = begin + 1; column < end; ++column) m_lanes[column].push_back({wire});
    }
}

// There and back over the columns, each of which follows what its boxes are wired to; then what still stands
// over a long wire goes aside, since ends have moved after it.
void IslandLayout::Straighten() {
    for (int pass = 0; pass < kStraightenings; ++pass) {
        if (pass < kChoosing) {
            for (size_t column = 0; column < m_columns.size(); ++column) PlaceLanes(column);
        }
        for (size_t column = 0; column < m_columns.size(); ++column) Settle(column, Pull::kFeeders);
        for (size_t column = m_columns.size(); column-- > 0;) Settle(column, Pull::kConsumers);
    }
    for (int pass = 0; pass < kClearances; ++pass) {
        for (size_t column = 0; column < m_columns.size(); ++column) Settle(column, Pull::kNone);
    }
}

// How high the wire runs there, between its ends.
double IslandLayout::HeightAt(const LayoutWire& wire, double x) const {
    const double start = m_left[m_columnOf[wire.from]] + m_boxes[wire.from].width;
    const double end = m_left[m_columnOf[wire.to]];
    const double low = m_bottom[wire.from] + static_cast<double>(wire.fromHeight);
    const double high = m_bottom[wire.to] + static_cast<double>(wire.toHeight);
    return low + (high - low) * std::clamp((x - start) / (end - start), 0.0, 1.0);
}

// Takes a lane to where its wire runs now.
void IslandLayout::Follow(Lane& lane, size_t column) const {
    const double one = HeightAt(m_wires[lane.wire], m_left[column]);
    const double other = HeightAt(m_wires[lane.wire], m_left[column] + m_width[column]);
    lane.height = std::min(std::abs(one - other), kHighestLane);
    lane.bottom = (one + other - lane.height) / 2;
}

// How many boxes of the column a lane is to have below it, so that its wire crosses few of theirs: of equals
// the place nearest to where it runs.
size_t IslandLayout::ChoosePlace(const Lane& lane, size_t column) const {
    const Column& boxes = m_columns[column];
    const double middle = lane.bottom + lane.height / 2;
    const auto isBelow = [&](size_t box) { return m_bottom[box] + m_boxes[box].height / 2 < middle; };
    const auto nearest = static_cast<size_t>(std::count_if(boxes.begin(), boxes.end(), isBelow));
    if (boxes.size() * m_lanes[column].size() > kMuchToChoose) return nearest;
    const double left = HeightAt(m_wires[lane.wire], m_left[column] - static_cast<double>(m_gaps.across));
    const double right = HeightAt(m_wires[lane.wire], m_left[column + 1]);
    // A box that comes to lie below has its upward wires cross the lane instead of its downward ones.
    long crossings = 0;
    size_t best = nearest;
    const auto distance = [&](size_t place) { return place > nearest ? place - nearest : nearest - place; };
    std::vector<long> all{0};
    for (const size_t box : boxes) {
        for (const End& end : m_feeders[box])
            crossings += Anchor(end) > left ? 1 : Anchor(end) < left ? -1 : 0;
        for (const End& end : m_consumers[box])
            crossings += Anchor(end) > right ? 1 : Anchor(end) < right ? -1 : 0;
        all.push_back(crossings);
    }
    long fewest = all[nearest];
    for (size_t place = 0; place < all.size(); ++place) {
        if (all[place] > fewest || (all[place] == fewest && distance(place) >= distance(best))) continue;
        fewest = all[place];
        best = place;
    }
    return best;
}

// Each between two boxes; these keep their order.
void IslandLayout::PlaceLanes(size_t column) {
    std::vector<Lane>& lanes = m_lanes[column];
    std::vector<Item>& items = m_items[column];
    for (Lane& lane : lanes) {
        Follow(lane, column);
        lane.boxesBelow = ChoosePlace(lane, column);
    }
    std::stable_sort(lanes.begin(), lanes.end(), [](const Lane& one, const Lane& other) {
        if (one.boxesBelow != other.boxesBelow) return one.boxesBelow < other.boxesBelow;
        return one.bottom + one.height / 2 < other.bottom + other.height / 2;
    });
    items.clear();
    size_t lane = 0;
    const auto putLanes = [&](size_t boxesBelow) {
        for (; lane < lanes.size() && lanes[lane].boxesBelow == boxesBelow; ++lane)
            items.push_back({true, lane});
    };
    putLanes(0);
    for (size_t i = 0; i < m_columns[column].size(); ++i) {
        items.push_back({false, m_columns[column][i]});
        putLanes(i + 1);
    }
}

double IslandLayout::Gap(const Item& lower, const Item& upper) const {
    if (lower.isLane && upper.isLane) return kBetweenLanes;
    const auto up = static_cast<double>(m_gaps.up);
    return lower.isLane || upper.isLane ? up / 2 : up;
}

// Puts each box of a column where its wires run level on average, and each lane where its wire runs, as far
// as the order and the gaps allow. Least squares under an order are found by pooling those that come too near
// to one another.
void IslandLayout::Settle(size_t column, Pull pull) {
    struct Pool {
        double wanted;  // of the lowest one's bottom, as if all gaps and heights were none
        double weight;
        size_t count;
    };
    const std::vector<Item>& items = m_items[column];
    std::vector<Pool> pools;
    std::vector<double> under;  // what lies under each: heights and gaps
    pools.reserve(items.size());
    under.reserve(items.size());
    double below = 0;
    for (size_t i = 0; i < items.size(); ++i) {
        const Item& item = items[i];
        if (i > 0) below += Gap(items[i - 1], item);
        under.push_back(below);
        Pool pool{0, 0, 1};
        if (item.isLane) {
            Lane& lane = m_lanes[column][item.index];
            Follow(lane, column);
            pool = {lane.bottom, kLaneWeight, 1};
            below += lane.height;
        } else {
            const size_t box = item.index;
            double sum = 0;
            if (pull != Pull::kNone) {
                for (const End& end : pull == Pull::kFeeders ? m_feeders[box] : m_consumers[box]) {
                    sum += Anchor(end) - end.ownHeight;
                    pool.weight += 1;
                }
            }
            pool.wanted = pool.weight == 0 ? m_bottom[box] : sum / pool.weight;
            if (pool.weight == 0) pool.weight = kIdleWeight;
            below += m_boxes[box].height;
        }
        pool.wanted -= under.back();
        while (!pools.empty() && pools.back().wanted > pool.wanted) {
            const Pool& last = pools.back();
            const double both = last.weight + pool.weight;
            pool = {(last.wanted * last.weight + pool.wanted * pool.weight) / both, both,
                    last.count + pool.count};
            pools.pop_back();
        }
        pools.push_back(pool);
    }
    size_t place = 0;
    for (const Pool& pool : pools) {
        for (size_t i = 0; i < pool.count; ++i, ++place) {
            if (!items[place].isLane) m_bottom[items[place].index] = pool.wanted + under[place];
        }
    }
}

std::vector<IslandLayout::Place> IslandLayout::Places() const {
    std::vector<Place> places(m_boxes.size());
    for (size_t box = 0; box < m_boxes.size(); ++box) places[box] = {m_left[m_columnOf[box]], m_bottom[box]};
    return places;
}

}  // namespace tavrin

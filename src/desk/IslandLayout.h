// SPDX-License-Identifier: Apache-2.0
// The layers of what wires join: in which column each box stands, in which order, and how high.
#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

#include "desk/DeskLayout.h"

namespace tavrin {

// For one island, made and asked once. All is decided by the wires and the order of the boxes in the list,
// but for what the wires leave open: there the lower of two boxes stays the lower one.
class IslandLayout {
  public:
    struct Box {
        double width = 0;
        double height = 0;
        double middle = 0;  // how high it is now
    };
    // Wires by places in `boxes`; none leads from a box to itself.
    IslandLayout(std::vector<Box> boxes, std::vector<LayoutWire> wires, const LayoutGaps& gaps);

    struct Place {
        double left = 0;
        double bottom = 0;
    };
    // Any origin.
    std::vector<Place> Arrange();

  private:
    // The other end of a wire, as a box has it.
    struct End {
        size_t wire;
        size_t box;
        double height;     // of the wire's end there, above the other box's bottom
        double ownHeight;  // of its end here
    };
    using Column = std::vector<size_t>;  // boxes from the lowest up

    // Which wires run forward.
    void FindCircles();
    // The columns.
    void ChooseColumns();
    void ShortenWires();
    void FillColumns();
    // The order in the columns.
    void ReduceCrossings();
    bool TrySweeps();
    bool TrySwaps();
    void Sweep(bool forward);
    void SwapNeighbours(Column& column);
    size_t SwapGain(size_t lower, size_t upper) const;
    size_t CountCrossings() const;
    void Stack();
    void StackColumn(const Column& column);
    // The places.
    // Where a long wire passes a column between its ends: boxes are to leave room for it.
    struct Lane {
        size_t wire = 0;
        double bottom = 0;
        double height = 0;
        size_t boxesBelow = 0;
    };
    // What stands in a column, one above the other: a box, or a lane of the column.
    struct Item {
        bool isLane;
        size_t index;
    };
    void FindLanes();
    void Straighten();
    void PlaceLanes(size_t column);
    double HeightAt(const LayoutWire& wire, double x) const;
    void Follow(Lane& lane, size_t column) const;
    size_t ChoosePlace(const Lane& lane, size_t column) const;
    enum class Pull { kFeeders, kConsumers, kNone };
    void Settle(size_t column, Pull pull);
    double Gap(const Item& lower, const Item& upper) const;
    std::vector<Place> Places() const;

    double Anchor(const End& end) const { return m_bottom[end.box] + end.height; }

    std::vector<Box> m_boxes;
    std::vector<LayoutWire> m_wires;
    LayoutGaps m_gaps;
    std::vector<std::vector<End>> m_feeders;  // of each box
    std::vector<std::vector<End>> m_consumers;
    std::vector<bool> m_closesCircle;  // of each wire
    std::vector<size_t> m_columnOf;    // of each box, from the left
    std::vector<Column> m_columns;
    std::vector<double> m_bottom;            // of each box
    std::vector<double> m_left;              // of each column, and behind the last
    std::vector<double> m_width;             // of each column
    std::vector<std::vector<Lane>> m_lanes;  // of each column
    std::vector<std::vector<Item>> m_items;  // of each column, from the lowest up
    size_t m_crossings = 0;
};

}  // namespace tavrin

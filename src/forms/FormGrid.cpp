// SPDX-License-Identifier: Apache-2.0
#include "forms/FormGrid.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <limits>

namespace tavrin {

namespace {

// Sizes come from the text of a form, so their sums need not fit an int.
int Saturate(int64_t value) {
    constexpr int64_t kLeast = std::numeric_limits<int>::min();
    constexpr int64_t kMost = std::numeric_limits<int>::max();
    return static_cast<int>(std::clamp(value, kLeast, kMost));
}

// The columns or the rows of a grid.
class Tracks {
  public:
    Tracks(size_t count, int spacing) : m_spacing(spacing), m_extents(count, 0) {}

    // Compared with the padded extent on purpose: a child that fits into the spacing changes nothing.
    void Fit(size_t track, int size) {
        if (size > m_extents[track]) m_extents[track] = int64_t{size} + m_spacing;
    }

    // Fixes where each track starts. To be called once, after the last Fit.
    void Arrange(int margin) {
        int64_t start = margin;
        for (const int64_t extent : m_extents) {
            m_starts.push_back(start);
            start += extent;
        }
        m_total = start + margin;
    }

    int Centred(size_t track, int size) const {
        return Saturate(m_starts[track] + ((m_extents[track] - size) >> 1));
    }
    int Total() const { return Saturate(m_total); }

  private:
    int m_spacing;
    std::vector<int64_t> m_extents;
    std::vector<int64_t> m_starts;
    int64_t m_total = 0;
};

}  // namespace

FormGrid LayoutGrid(FormOrientation orientation, int count, int margin, int spacing,
                    const std::vector<FormSize>& children) {
    FormGrid grid;
    if (children.empty()) return grid;
    const auto groups = static_cast<size_t>(std::max(count, 1));
    const size_t cells = (children.size() + groups - 1) / groups;
    // Groups behind the last child are empty: without extent they add nothing to the total.
    const size_t usedGroups = (children.size() + cells - 1) / cells;

    const bool vertical = orientation == FormOrientation::kVertical;
    Tracks columns(vertical ? usedGroups : cells, spacing);
    Tracks rows(vertical ? cells : usedGroups, spacing);
    const auto columnOf = [&](size_t i) { return vertical ? i / cells : i % cells; };
    const auto rowOf = [&](size_t i) { return vertical ? i % cells : i / cells; };
    for (size_t i = 0; i < children.size(); ++i) {
        columns.Fit(columnOf(i), children[i].width);
        rows.Fit(rowOf(i), children[i].height);
    }
    columns.Arrange(margin);
    rows.Arrange(margin);

    grid.positions.reserve(children.size());
    for (size_t i = 0; i < children.size(); ++i) {
        grid.positions.push_back(
            {columns.Centred(columnOf(i), children[i].width), rows.Centred(rowOf(i), children[i].height)});
    }
    grid.contentWidth = columns.Total();
    grid.contentHeight = rows.Total();
    return grid;
}

}  // namespace tavrin

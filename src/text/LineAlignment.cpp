// SPDX-License-Identifier: Apache-2.0
// By the linear-space way of E. Myers, "An O(ND) Difference Algorithm and Its Variations" (1986): from both
// ends, furthest first, until the two ways meet in the middle; then the same for each half. Diagonals are
// those of a grid with the left row across and the right one down.
#include "text/LineAlignment.h"

#include <limits>
#include <utility>

namespace tavrin {

namespace {

using Place = int64_t;
using Numbers = std::vector<uint32_t>;

// The furthest place on each diagonal that a number of steps from one end leads to.
struct Front {
    // `none` is what no way leads to. There may be so many diagonals, and one on either side of them.
    Front(size_t diagonals, Place noPlace) : none(noPlace), m_places(diagonals + 3) {}

    void Begin(Place diagonal, Place place, Place lowest) {
        low = high = diagonal;
        m_origin = 1 - lowest;
        At(diagonal) = place;
    }
    // Every other diagonal is reached with one step more, at the borders none that is beyond them.
    void Widen(Place lowest, Place highest) {
        if (low > lowest) {
            At(--low - 1) = none;
        } else {
            ++low;
        }
        if (high < highest) {
            At(++high + 1) = none;
        } else {
            --high;
        }
    }
    bool Holds(Place diagonal) const { return low <= diagonal && diagonal <= high; }
    Place& At(Place diagonal) { return m_places[static_cast<size_t>(diagonal + m_origin)]; }

    Place low = 0;
    Place high = 0;
    const Place none;

  private:
    std::vector<Place> m_places;
    Place m_origin = 0;
};

class Aligning {
  public:
    Aligning(const Numbers& left, const Numbers& right, size_t mostSteps)
        : m_left(left),
          m_right(right),
          m_mostSteps(mostSteps),
          m_forward(left.size() + right.size(), -1),
          m_backward(left.size() + right.size(), std::numeric_limits<Place>::max()) {
        m_found.partners.assign(left.size(), LineAlignment::kNone);
    }

    LineAlignment Run() {
        Align(0, Signed(m_left.size()), 0, Signed(m_right.size()));
        return std::move(m_found);
    }

  private:
    static Place Signed(size_t size) { return static_cast<Place>(size); }

    struct Area {
        Place left, leftEnd, right, rightEnd;
    };

    bool IsEqual(Place left, Place right) const {
        return m_left[static_cast<size_t>(left)] == m_right[static_cast<size_t>(right)];
    }
    void Match(Place left, Place right) {
        m_found.partners[static_cast<size_t>(left)] = static_cast<size_t>(right);
        ++m_found.steps;
    }

    // The depth is the logarithm of what differs: each half has half of it.
    void Align(Place left, Place leftEnd, Place right, Place rightEnd) {
        for (; left < leftEnd && right < rightEnd && IsEqual(left, right); ++left, ++right)
            Match(left, right);
        while (left < leftEnd && right < rightEnd && IsEqual(leftEnd - 1, rightEnd - 1))
            Match(--leftEnd, --rightEnd);
        if (left == leftEnd || right == rightEnd) return;
        Place middle = 0;
        Place middleRight = 0;
        if (!FindMiddle({left, leftEnd, right, rightEnd}, middle, middleRight)) {
            m_found.isCoarse = true;
            return;
        }
        Align(left, middle, right, middleRight);
        Align(middle, leftEnd, middleRight, rightEnd);
    }

    // A place on a shortest way; false when the steps are used up.
    bool FindMiddle(const Area& area, Place& middle, Place& middleRight) {
        const Place lowest = area.left - area.rightEnd;
        const Place highest = area.leftEnd - area.right;
        m_forward.Begin(area.left - area.right, area.left, lowest);
        m_backward.Begin(area.leftEnd - area.rightEnd, area.leftEnd, lowest);
        const bool isOdd = ((m_forward.low - m_backward.low) & 1) != 0;
        while (m_found.steps <= m_mostSteps) {
            m_forward.Widen(lowest, highest);
            for (Place diagonal = m_forward.high; diagonal >= m_forward.low; diagonal -= 2) {
                middle = StepForward(area, diagonal);
                middleRight = middle - diagonal;
                if (isOdd && m_backward.Holds(diagonal) && m_backward.At(diagonal) <= middle) return true;
            }
            m_backward.Widen(lowest, highest);
            for (Place diagonal = m_backward.high; diagonal >= m_backward.low; diagonal -= 2) {
                middle = StepBackward(area, diagonal);
                middleRight = middle - diagonal;
                if (!isOdd && m_forward.Holds(diagonal) && m_forward.At(diagonal) >= middle) return true;
            }
        }
        return false;
    }

    Place StepForward(const Area& area, Place diagonal) {
        const Place below = m_forward.At(diagonal - 1);
        const Place above = m_forward.At(diagonal + 1);
        Place place = below < above ? above : below + 1;
        const Place from = place;
        while (place < area.leftEnd && place - diagonal < area.rightEnd && IsEqual(place, place - diagonal))
            ++place;
        m_found.steps += 1 + static_cast<size_t>(place - from);
        return m_forward.At(diagonal) = place;
    }

    Place StepBackward(const Area& area, Place diagonal) {
        const Place below = m_backward.At(diagonal - 1);
        const Place above = m_backward.At(diagonal + 1);
        Place place = below < above ? below : above - 1;
        const Place from = place;
        while (place > area.left && place - diagonal > area.right && IsEqual(place - 1, place - diagonal - 1))
            --place;
        m_found.steps += 1 + static_cast<size_t>(from - place);
        return m_backward.At(diagonal) = place;
    }

    const Numbers& m_left;
    const Numbers& m_right;
    const size_t m_mostSteps;
    Front m_forward;
    Front m_backward;
    LineAlignment m_found;
};

}  // namespace

LineAlignment AlignLines(const std::vector<uint32_t>& left, const std::vector<uint32_t>& right,
                         size_t mostSteps) {
    return Aligning(left, right, mostSteps).Run();
}

}  // namespace tavrin

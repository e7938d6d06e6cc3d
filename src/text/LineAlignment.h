// SPDX-License-Identifier: Apache-2.0
// Which lines of two texts are the same, when each is known by a number.
#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

namespace tavrin {

// A plain value.
struct LineAlignment {
    static constexpr size_t kNone = SIZE_MAX;

    std::vector<size_t> partners;  // by the place on the left that on the right; kNone for none
    bool isCoarse = false;         // the steps did not suffice: there may be more
    size_t steps = 0;
};

// A longest common part of two rows, in their orders, within about so many steps. Memory grows with the rows.
LineAlignment AlignLines(const std::vector<uint32_t>& left, const std::vector<uint32_t>& right,
                         size_t mostSteps);

}  // namespace tavrin

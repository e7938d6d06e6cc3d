// SPDX-License-Identifier: Apache-2.0
// What differs between two texts, line by line.
#pragma once

#include <cstddef>
#include <string_view>
#include <vector>

namespace tavrin {

// A row of two columns that stand side by side. A plain value.
struct LineRow {
    enum class Kind { kSame, kChanged, kOnlyLeft, kOnlyRight };
    // Bytes of a line. One that is empty stands where the other line has more.
    struct Span {
        size_t begin = 0;
        size_t end = 0;
        bool operator==(const Span&) const = default;
    };

    Kind kind = Kind::kSame;
    size_t left = 0;  // number of the line, from 0; without meaning for a row that has none on this side
    size_t right = 0;
    // Of a changed row what differs, in whole words.
    Span inLeft;
    Span inRight;
};

// A plain value; the lines are views of the two texts, which outlive it.
struct LineDifference {
    std::vector<std::string_view>
        left;  // without line ends; what follows the last one is a line if it is not empty
    std::vector<std::string_view> right;
    std::vector<LineRow> rows;  // each line stands in one of them, in its order
    // There was too much to find out: fewer lines than possible are the same.
    bool isCoarse = false;
    size_t steps = 0;  // that were taken to align the lines
};

inline constexpr size_t kMostLineSteps = 10'000'000;

// As many lines as possible are the same, within that many steps; lines that are removed where others are
// added are paired as changed, in their order, the most alike of them. Memory and the rest of the time grow
// with the texts.
LineDifference CompareLines(std::string_view left, std::string_view right, size_t mostSteps = kMostLineSteps);

}  // namespace tavrin

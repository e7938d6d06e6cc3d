// SPDX-License-Identifier: Apache-2.0
#include "text/LineDifference.h"

#include <algorithm>
#include <cctype>
#include <cstdint>
#include <unordered_map>
#include <utility>

#include "text/LineAlignment.h"

namespace tavrin {

namespace {

std::vector<std::string_view> SplitLines(std::string_view text) {
    std::vector<std::string_view> lines;
    lines.reserve(static_cast<size_t>(std::count(text.begin(), text.end(), '\n')) + 1);
    while (!text.empty()) {
        const size_t length = std::min(text.find('\n'), text.size());
        std::string_view line = text.substr(0, length);
        if (line.ends_with('\r')) line.remove_suffix(1);
        lines.push_back(line);
        text.remove_prefix(std::min(length + 1, text.size()));
    }
    return lines;
}

// What stands on both sides, as numbers, and where it stands. A line that the other side has not can be none
// of the common part.
struct Common {
    std::vector<uint32_t> numbers;
    std::vector<size_t> places;
};

void FindCommon(const std::vector<std::string_view>& left, const std::vector<std::string_view>& right,
                Common& inLeft, Common& inRight) {
    struct Known {
        uint32_t number = 0;
        bool isOnRight = false;
    };
    std::unordered_map<std::string_view, Known> known;
    known.reserve(left.size());
    for (const std::string_view line : left)
        known.try_emplace(line, Known{static_cast<uint32_t>(known.size()), false});
    for (size_t place = 0; place < right.size(); ++place) {
        const auto found = known.find(right[place]);
        if (found == known.end()) continue;
        found->second.isOnRight = true;
        inRight.numbers.push_back(found->second.number);
        inRight.places.push_back(place);
    }
    for (size_t place = 0; place < left.size(); ++place) {
        const Known& line = known.find(left[place])->second;
        if (!line.isOnRight) continue;
        inLeft.numbers.push_back(line.number);
        inLeft.places.push_back(place);
    }
}

// Numbers with their point are words as well.
bool IsInWord(char c) {
    const auto byte = static_cast<unsigned char>(c);
    return byte >= 0x80 || std::isalnum(byte) != 0 || c == '_' || c == '.';
}

// What both lines begin and end with is left out, as far as it is whole words.
void MarkSpans(std::string_view left, std::string_view right, LineRow& row) {
    const size_t most = std::min(left.size(), right.size());
    size_t before = 0;
    while (before < most && left[before] == right[before]) ++before;
    size_t behind = 0;
    while (behind < most - before && left[left.size() - 1 - behind] == right[right.size() - 1 - behind])
        ++behind;
    const auto isInWordAt = [](std::string_view line, size_t place) {
        return place < line.size() && IsInWord(line[place]);
    };
    const auto cutsBefore = [&] {
        return IsInWord(left[before - 1]) && (isInWordAt(left, before) || isInWordAt(right, before));
    };
    while (before > 0 && cutsBefore()) --before;
    const auto cutsBehind = [&] {
        const size_t leftEnd = left.size() - behind;
        const size_t rightEnd = right.size() - behind;
        return IsInWord(left[leftEnd]) && ((leftEnd > before && IsInWord(left[leftEnd - 1])) ||
                                           (rightEnd > before && IsInWord(right[rightEnd - 1])));
    };
    while (behind > 0 && cutsBehind()) --behind;
    row.inLeft = {before, left.size() - behind};
    row.inRight = {before, right.size() - behind};
}

// Of 1000, how much of the longer of two lines both begin or end with.
uint32_t Likeness(std::string_view left, std::string_view right) {
    constexpr size_t kMost = 200;  // bytes looked at
    left = left.substr(0, kMost);
    right = right.substr(0, kMost);
    const auto shared = [](auto one, auto oneEnd, auto other, auto otherEnd) {
        return static_cast<size_t>(std::mismatch(one, oneEnd, other, otherEnd).first - one);
    };
    const size_t before = shared(left.begin(), left.end(), right.begin(), right.end());
    const size_t behind = shared(left.rbegin(), left.rend(), right.rbegin(), right.rend());
    const size_t longer = std::max({left.size(), right.size(), size_t{1}});
    return static_cast<uint32_t>(1000 * std::min(before + behind, longer) / longer);
}

// Runs of lines that differ, removed on the left and added on the right.
struct Runs {
    size_t left;
    size_t leftEnd;
    size_t right;
    size_t rightEnd;

    size_t LeftCount() const { return leftEnd - left; }
    size_t RightCount() const { return rightEnd - right; }
};

// Which lines of the two runs stand beside each other: as many as can be, in their order, and those that are
// most alike. Long runs are paired from their beginnings.
std::vector<std::pair<size_t, size_t>> PairLines(const LineDifference& lines, const Runs& runs) {
    constexpr size_t kMostPairs = 2000;    // looked at
    constexpr uint32_t kPair = 1U << 16U;  // worth more than any likeness
    const size_t rows = runs.LeftCount();
    const size_t columns = runs.RightCount();
    std::vector<std::pair<size_t, size_t>> pairs;
    if (rows == columns || rows * columns > kMostPairs) {
        for (size_t i = 0; i < std::min(rows, columns); ++i)
            pairs.emplace_back(runs.left + i, runs.right + i);
        return pairs;
    }
    std::vector<uint32_t> worth((rows + 1) * (columns + 1));
    const auto at = [&worth, columns](size_t i, size_t j) -> uint32_t& {
        return worth[i * (columns + 1) + j];
    };
    const auto paired = [&](size_t i, size_t j) {
        return at(i + 1, j + 1) + kPair + Likeness(lines.left[runs.left + i], lines.right[runs.right + j]);
    };
    for (size_t i = rows; i-- > 0;) {
        for (size_t j = columns; j-- > 0;) at(i, j) = std::max({at(i + 1, j), at(i, j + 1), paired(i, j)});
    }
    for (size_t i = 0, j = 0; i < rows && j < columns;) {
        if (at(i, j) == paired(i, j)) {
            pairs.emplace_back(runs.left + i++, runs.right + j++);
        } else if (at(i, j) == at(i + 1, j)) {
            ++i;
        } else {
            ++j;
        }
    }
    return pairs;
}

// Lines up to these, of which the other side has none.
void AddAlone(LineDifference& result, LineRow& next, size_t left, size_t right) {
    for (; next.left < left; ++next.left) {
        result.rows.push_back(next);
        result.rows.back().kind = LineRow::Kind::kOnlyLeft;
    }
    for (; next.right < right; ++next.right) {
        result.rows.push_back(next);
        result.rows.back().kind = LineRow::Kind::kOnlyRight;
    }
}

// Lines up to these, which stand in no row yet.
void AddDiffering(LineDifference& result, LineRow& next, size_t left, size_t right) {
    for (const auto& [leftPlace, rightPlace] : PairLines(result, {next.left, left, next.right, right})) {
        AddAlone(result, next, leftPlace, rightPlace);
        LineRow& row = result.rows.emplace_back(next);
        row.kind = LineRow::Kind::kChanged;
        MarkSpans(result.left[leftPlace], result.right[rightPlace], row);
        ++next.left;
        ++next.right;
    }
    AddAlone(result, next, left, right);
}

}  // namespace

LineDifference CompareLines(std::string_view left, std::string_view right, size_t mostSteps) {
    LineDifference result;
    result.left = SplitLines(left);
    result.right = SplitLines(right);
    Common inLeft;
    Common inRight;
    FindCommon(result.left, result.right, inLeft, inRight);
    const LineAlignment alignment = AlignLines(inLeft.numbers, inRight.numbers, mostSteps);
    result.isCoarse = alignment.isCoarse;
    result.steps = alignment.steps;
    LineRow next;
    for (size_t i = 0; i < inLeft.places.size(); ++i) {
        const size_t partner = alignment.partners[i];
        if (partner == LineAlignment::kNone) continue;
        AddDiffering(result, next, inLeft.places[i], inRight.places[partner]);
        result.rows.push_back(next);
        ++next.left;
        ++next.right;
    }
    AddDiffering(result, next, result.left.size(), result.right.size());
    return result;
}

}  // namespace tavrin

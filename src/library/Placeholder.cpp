// SPDX-License-Identifier: Apache-2.0
#include "library/Placeholder.h"

#include <algorithm>
#include <bit>
#include <cstdint>
#include <vector>

#include "text/Numbers.h"

namespace tavrin {

namespace {

constexpr const char* kNewLine = "\r\n        ";

struct Replacement {
    Placeholder::Span place;
    std::string text;
};

// By their bits: a place that is no number differs from nothing, itself included.
bool IsSame(float one, float other) { return std::bit_cast<uint32_t>(one) == std::bit_cast<uint32_t>(other); }

}  // namespace

std::string BlockOf(const Placeholder& placeholder, int wid, const float (&xypos)[2]) {
    std::vector<Replacement> changes;
    const Placeholder::Span behindName{placeholder.nameEnd, placeholder.nameEnd};
    const auto put = [&](const std::optional<Placeholder::Span>& place, const char* keyword,
                         const std::string& operands) {
        changes.push_back(place ? Replacement{*place, operands}
                                : Replacement{behindName, kNewLine + (keyword + operands)});
    };
    if (wid != placeholder.wid) put(placeholder.widPlace, "wid ", std::to_string(wid));
    if (!IsSame(xypos[0], placeholder.xypos[0]) || !IsSame(xypos[1], placeholder.xypos[1])) {
        put(placeholder.xyPlace, "xypos ",
            FormatF(static_cast<double>(xypos[0])) + " " + FormatF(static_cast<double>(xypos[1])));
    }
    std::stable_sort(changes.begin(), changes.end(), [](const Replacement& left, const Replacement& right) {
        return left.place.begin < right.place.begin;
    });
    std::string text;
    size_t taken = 0;
    for (const Replacement& change : changes) {
        text.append(placeholder.block, taken, change.place.begin - taken).append(change.text);
        taken = change.place.end;
    }
    return text.append(placeholder.block, taken);
}

}  // namespace tavrin

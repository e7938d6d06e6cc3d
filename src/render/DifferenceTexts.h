// SPDX-License-Identifier: Apache-2.0
// How differences of two networks are worded.
#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <utility>

#include "document/NetworkState.h"
#include "render/NetworkCompare.h"

namespace tavrin {

using TextPair = std::pair<std::string, std::string>;  // older, newer

// The difference with its text, and nothing of where it is. Control characters in it are made visible.
Difference MakeDifference(Difference::Kind kind, std::string_view what, std::string_view older,
                          std::string_view newer);

// Two texts that differ, short. What both begin with is left out where it is long, so
// that what differs is seen.
TextPair ShortTexts(std::string_view older, std::string_view newer);

// Both values as a panel shows them; nothing where they show the same. `type` is that of both.
std::optional<TextPair> DifferingValues(std::string_view type, const ValueState& older,
                                        const ValueState& newer);
// The same for the range of the slider and whether it stops at whole numbers only.
std::optional<TextPair> DifferingRanges(std::string_view type, const ValueState& older,
                                        const ValueState& newer);
// The value with the range of the slider that the other one has.
ValueState WithRangeOf(std::string_view type, ValueState value, const ValueState& other);

}  // namespace tavrin

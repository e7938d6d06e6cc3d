// SPDX-License-Identifier: Apache-2.0
// What a user may have meant by a name that nobody knows.
#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace tavrin {

// Those of the known names that a slip of the hand could have made into `name`, the nearest first and three
// at most. Letters, omissions, insertions and exchanges count one each, case nothing.
std::vector<std::string> NearestNames(std::string_view name, const std::vector<std::string>& known);

// "A", "A or B", "A, B or C"; empty for none.
std::string JoinNames(const std::vector<std::string>& names);

}  // namespace tavrin

// SPDX-License-Identifier: Apache-2.0
// The printf patterns that operator definitions give their values.
#pragma once

#include <initializer_list>
#include <string>
#include <string_view>

namespace tavrin {

// Formats numbers by a pattern from a definition. The pattern never reaches the C library as it stands:
// the conversions a, e, f and g in either case, and d, i, u, o, x and X, which print the whole part, take one
// value each. They may have flags, width and precision of up to three digits and a length modifier, as far as
// C allows it for the letter; the modifier changes nothing. A conversion with no value left gives nothing;
// "%%" gives "%"; any other text that begins with '%' is text. The C locale is used whatever the user's is.
std::string FormatNumbers(std::string_view pattern, std::initializer_list<double> values);

// The same for a pattern with conversions "%s".
std::string FormatString(std::string_view pattern, std::string_view value);

}  // namespace tavrin

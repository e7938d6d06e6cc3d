// SPDX-License-Identifier: Apache-2.0
// Numbers as the fields of panels show and take them, always by the rules of the C locale.
#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace tavrin {

// Six significant digits, as "%g" prints them: what a field shows may be another number than the value.
std::string NumberText(float value);

// The number of the whole text, blanks at its ends passed over. Nothing for a text that goes on after a
// number, for hexadecimal digits, for "nan" and "inf", and for what 64 bits cannot hold or is too large
// for 32.
std::optional<float> ReadNumber(std::string_view text);

// The user is on the way to a number, so that the text is not to be read yet: "", "-", "." or "-.".
bool IsBeginOfNumber(std::string_view text);
// The same where no number is negative: blank, or "." with blanks round it.
bool IsBeginOfShare(std::string_view text);

// As the colour picker has its numbers: through "%.3f" and back.
float RoundedToThousandths(float value);

}  // namespace tavrin

// SPDX-License-Identifier: Apache-2.0
// The rules for values that several kinds of widget share.
#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace tavrin {

// A text whose leading number is whole becomes that number with one decimal: "3" gives "3.0", a text
// without a number "0.0". Any other stays as it is, infinity included, for which there are no decimals.
std::string ForceFloat(const std::string& text);

// The two halves of a value such as "320,240".
struct FormPair {
    std::string first;
    std::string second;
};
// Splits a pair at the first character, the very first one apart, that is neither a digit nor a dot. It
// is dropped whatever it is, so pairs are read alike with any separator and the first may have a sign.
FormPair SplitPair(std::string_view text);

// Adds a fault if documents cannot hold an option of this name. Without a name there is no option.
void CheckOptionName(const std::string& name, std::vector<std::string>& faults);

// Without regard to the case of ASCII letters. Every text begins with the empty one.
bool BeginsWith(std::string_view text, std::string_view prefix);
bool EqualText(std::string_view a, std::string_view b);

}  // namespace tavrin

// SPDX-License-Identifier: Apache-2.0
// How texts are put into a document so that its reader gives them back.
#pragma once

#include <string>
#include <string_view>

namespace tavrin {

// The text comes back as it is where it stands bare in a document: it is not empty and holds no blank, tab or
// line end, no '#', no double quote and no backslash. Names of operators, buttons, types and options are
// written bare, so what is none is refused where the name is read.
bool IsBareToken(std::string_view text);

// What a name has to be free of, for messages about one that is no bare token.
inline constexpr const char* kBareTokenRule =
    "use a name without blanks, line breaks, double quotes, backslashes and #";

// The text as one token: bare where that comes back, else quoted.
std::string TokenText(std::string_view text);

// The text with a blank for each line break (LF, CR or CR LF), for what a document holds on one line.
std::string OneLine(std::string_view text);

}  // namespace tavrin

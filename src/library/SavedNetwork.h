// A network in place of an operator's definition: what the library offers under its name is a document, whose
// boxes are inserted.
#pragma once

#include <string>
#include <string_view>

namespace tavrin {

// The first token of each document, which no definition begins with.
inline constexpr std::string_view kDocumentKeyword = "tavrn-version";

// Whether an operator's file is a saved network. One that cannot be read is none.
bool IsSavedNetwork(const std::string& path);

}  // namespace tavrin

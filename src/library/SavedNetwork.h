// SPDX-License-Identifier: Apache-2.0
// A network in place of an operator's definition: what the library offers under its name is a document, whose
// boxes are inserted.
#pragma once

#include <string>
#include <string_view>

namespace tavrin {

class CArchive;

// The first token of each document, which no definition begins with.
inline constexpr std::string_view kDocumentKeyword = "tavrn-version";

// What the file of an operator holds.
enum class OperatorText {
    kEmpty,       // no more than comments; the archive then stands at its end
    kDefinition,  // the archive stands at the beginning, as it does for a network
    kNetwork,
};
OperatorText KindOf(CArchive& operatorFile);

// Whether an operator's file is a saved network. One that cannot be read is none.
bool IsSavedNetwork(const std::string& path);

}  // namespace tavrin

// SPDX-License-Identifier: Apache-2.0
// All of a document that an undo has to bring back, as text.
#pragma once

#include <string>

namespace tavrin {
class CTvDoc;
}

namespace tavrin::test {

// To the bit of each number: boxes by their serial numbers, inputs in their order, both ends of every wire,
// all casts, how arguments are shown, options, settings. Not the order of the stack, the selection and the
// view.
std::string PrintNetwork(const CTvDoc& document);

}  // namespace tavrin::test

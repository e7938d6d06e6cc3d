// SPDX-License-Identifier: Apache-2.0
// The order in which lists name boxes.
#pragma once

#include <vector>

namespace tavrin {

class COpBox;
class COpButton;

// By title and number as text, without regard to case; of equals, those first that come first.
std::vector<COpBox*> InOrderOfTitles(const std::vector<COpBox*>& boxes);

// The inputs of these boxes that nothing feeds and the library knows, box by box.
std::vector<COpButton*> UnconnectedInputs(const std::vector<COpBox*>& boxes);

}  // namespace tavrin

// SPDX-License-Identifier: Apache-2.0
// A text in lines that are no wider than there is room for.
#pragma once

#include <functional>
#include <string>
#include <vector>

namespace tavrin {

// How wide a text is, in the unit of the room.
using MeasureText = std::function<float(const std::string&)>;

// The text if there is room for it, else as much of its beginning as there is room for, and an ellipsis.
std::string CutToWidth(const std::string& text, float width, const MeasureText& measure);

// The text's first lines, which LF ends, broken between words, or within those that are too long for a line
// by themselves. Where more lines follow than `most`, the last one ends in an ellipsis. A text of any length
// costs what is shown of it. Characters of UTF-8 stay whole.
std::vector<std::string> WrapText(const std::string& text, float width, size_t most,
                                  const MeasureText& measure);

}  // namespace tavrin

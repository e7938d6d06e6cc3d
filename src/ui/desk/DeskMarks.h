// SPDX-License-Identifier: Apache-2.0
// Pictures of the marks by which the types of buttons are told apart.
#pragma once

#include <map>
#include <tuple>

#include "site/TypeMark.h"
#include "ui/desk/DeskFonts.h"

namespace tavrin {

// Owned by a pen; needs no context. Each mark is made when it is first needed.
class DeskMarks {
  public:
    static constexpr int kMostPixels = 96;

    // What of a shape in a square of so many pixels, at most kMostPixels, is further inside than told; seen
    // from the square's lower left corner, without width if nothing is. It stays for as long as there are
    // marks.
    const Glyph& MarkOf(TypeShape shape, int pixels, int inset);

  private:
    std::map<std::tuple<TypeShape, int, int>, Glyph> m_marks;
};

}  // namespace tavrin

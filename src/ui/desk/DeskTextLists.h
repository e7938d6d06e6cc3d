// SPDX-License-Identifier: Apache-2.0
// The desk's letters as bitmaps in display lists: a block of 128 lists for each size.
#pragma once

#include <array>
#include <string>

#include "ui/desk/DeskFonts.h"

namespace tavrin {

// Belongs to the context in which it drew last; ContextIsNew tells it of another one. Letters beyond the
// lists are drawn one by one.
class DeskTextLists {
  public:
    explicit DeskTextLists(DeskFonts& fonts) : m_fonts(fonts) {}

    // Lists made before went with the context that held them.
    void ContextIsNew();
    // Draws at the raster position, in the raster colour.
    void Draw(int font, const std::string& text);

  private:
    void MakeBlock(int font);

    DeskFonts& m_fonts;
    std::array<bool, DeskFonts::kSizes> m_made{};
    int m_generation = 0;     // of the letters in the lists
    unsigned m_listBase = 0;  // 0 until the context's first text
};

}  // namespace tavrin

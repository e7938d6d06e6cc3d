// SPDX-License-Identifier: Apache-2.0
#include "ui/desk/DeskTextLists.h"

#include <GL/gl.h>

#include <algorithm>
#include <vector>

namespace tavrin {

namespace {

constexpr int kBlock = 128;  // display lists for one size: the letters of ASCII

// Draws a letter and moves the raster on by its advance.
void DrawBitmap(const Glyph& glyph, int advance) {
    static constexpr unsigned char kNothing[1] = {};
    if (glyph.width == 0) {
        glBitmap(1, 1, 0, 0, static_cast<float>(advance), 0, kNothing);
        return;
    }
    const auto rowBytes = static_cast<size_t>(glyph.width + 7) / 8;
    std::vector<unsigned char> bits(rowBytes * static_cast<size_t>(glyph.height));
    for (int y = 0; y < glyph.height; ++y) {
        for (int x = 0; x < glyph.width; ++x) {
            if (!glyph.HasInk(x, y)) continue;
            unsigned char& byte = bits[static_cast<size_t>(y) * rowBytes + static_cast<size_t>(x) / 8];
            byte = static_cast<unsigned char>(byte | 0x80U >> (static_cast<unsigned>(x) % 8));
        }
    }
    glPixelStorei(GL_UNPACK_ALIGNMENT, 1);
    glBitmap(glyph.width, glyph.height, static_cast<float>(-glyph.left), static_cast<float>(-glyph.bottom),
             static_cast<float>(advance), 0, bits.data());
}

}  // namespace

void DeskTextLists::ContextIsNew() {
    m_listBase = 0;
    m_made = {};
}

void DeskTextLists::MakeBlock(int font) {
    if (m_listBase == 0) m_listBase = glGenLists(kBlock * DeskFonts::kSizes);
    for (int letter = 0; letter < kBlock; ++letter) {
        const auto code = static_cast<char32_t>(letter);
        const Glyph& glyph = m_fonts.GlyphOf(font, code);
        glNewList(m_listBase + static_cast<unsigned>(kBlock * font + letter), GL_COMPILE);
        DrawBitmap(glyph, m_fonts.AdvanceOf(font, code));
        glEndList();
    }
    m_made[static_cast<size_t>(font)] = true;
}

void DeskTextLists::Draw(int font, const std::string& text) {
    if (font == DeskFonts::kNone) return;
    if (m_generation != m_fonts.Generation()) m_made = {};
    m_generation = m_fonts.Generation();
    if (!m_made[static_cast<size_t>(font)]) MakeBlock(font);
    const std::u32string letters = LettersOf(text);
    glPushAttrib(GL_LIST_BIT);
    glListBase(m_listBase + static_cast<unsigned>(kBlock * font));
    for (auto at = letters.begin(); at != letters.end();) {
        const auto end = std::find_if(at, letters.end(), [](char32_t letter) { return letter >= kBlock; });
        const std::string run(at, end);
        glCallLists(static_cast<GLsizei>(run.size()), GL_UNSIGNED_BYTE, run.data());
        at = end;
        if (at == letters.end()) break;
        DrawBitmap(m_fonts.GlyphOf(font, *at), m_fonts.AdvanceOf(font, *at));
        ++at;
    }
    glPopAttrib();
}

}  // namespace tavrin

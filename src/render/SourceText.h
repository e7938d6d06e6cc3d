// SPDX-License-Identifier: Apache-2.0
// A source as lines, and what the parts of each are.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "render/SourceWords.h"

namespace tavrin {

// A part of a line that is more than plain; in bytes.
struct SourceSpan {
    size_t begin = 0;
    size_t end = 0;
    SourceClass kind = SourceClass::kPlain;

    bool operator==(const SourceSpan&) const = default;
};

// The marks that are open at the end of a line: their place in the list, from 1; 0 for none.
using OpenMarks = size_t;

// Takes a line apart, which begins with these marks open. Gives those that are open at its end; `spans`,
// where they are wanted, get what is more than plain, in its order.
OpenMarks ScanSourceLine(const SourceWords& words, std::string_view line, OpenMarks open,
                         std::vector<SourceSpan>* spans);

// Owns its text. Where comments are open is found out as far as somebody has looked, so that a large text
// costs what is seen of it. Lines count from 0.
class SourceText {
  public:
    SourceText() : SourceText(std::string(), {}) {}
    SourceText(std::string text, const SourceWords& words);

    // An empty text has no line; a line feed at the end begins none.
    size_t LineCount() const { return m_starts.size(); }
    // Without its end, LF or CR LF. There is one.
    std::string_view Line(size_t line) const;
    std::vector<SourceSpan> SpansOf(size_t line);
    // Of the longest line, in bytes.
    size_t Longest() const { return m_longest; }
    const std::string& Text() const { return m_text; }

    // Where a line of the text before stands in this one: the lines that both begin and end with are matched,
    // one between stays where it was as far as there are such.
    size_t PlaceOf(size_t line, const SourceText& before) const;

  private:
    struct Shared {
        size_t begin = 0;  // lines that both begin with
        size_t end = 0;
    };
    Shared SharedWith(const SourceText& before) const;

    std::string m_text;
    SourceWords m_words;
    std::vector<size_t> m_starts;
    std::vector<OpenMarks> m_open;  // at the beginning of each line that was looked at
    size_t m_longest = 0;
};

}  // namespace tavrin

// SPDX-License-Identifier: Apache-2.0
// One block of template lines.
#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <unordered_set>
#include <vector>

namespace tavrin {

// How a line came in, which decides how it goes on when blocks merge.
enum class LineKind : int {
    kAppend = 0,
    kInsert = 1,
    kUnique = 2,
};

// Where a template line was written, in 32 bits. A plain value; what finds no room in it is not known.
class LineSource {
  public:
    static constexpr uint32_t kUnknown = 0;
    static constexpr uint32_t kDefinition = 1;  // the text that the clauses were read from
    static constexpr uint32_t kFirstFile = 2;   // of those that the line's CCodeGen names
    // The generation wrote it: the label of a box as line 0, the declaration of its Nth output as line N.
    static constexpr uint32_t kGenerated = 4095;

    LineSource() = default;
    LineSource(size_t file, size_t line)
        : m_place(file <= kGenerated && line <= kLineMask
                      ? static_cast<uint32_t>(file << kLineBits) | static_cast<uint32_t>(line)
                      : 0) {}

    uint32_t File() const { return m_place >> kLineBits; }
    int Line() const { return static_cast<int>(m_place & kLineMask); }  // counted from 1
    bool operator==(const LineSource&) const = default;

  private:
    static constexpr unsigned kLineBits = 20;
    static constexpr uint32_t kLineMask = (1U << kLineBits) - 1;

    uint32_t m_place = 0;
};

// Where a line of the final text comes from. A plain value.
struct LineOrigin {
    uint32_t box =
        0;  // its place in the order of generation, counted from 1; 0 for the site and the document
    LineSource source = {};

    bool operator==(const LineOrigin&) const = default;
};
static_assert(sizeof(LineOrigin) == 8);

// A template line with the way in which a merge takes it up.
struct CodeLine {
    std::string text;
    LineKind kind = LineKind::kAppend;
    LineOrigin origin = {};
};

// Lines in order, with cheap additions at both ends: the inserted lines are held back to front.
class CodeBlock {
  public:
    CodeBlock() = default;
    CodeBlock(const CodeBlock& other) : m_inserted(other.m_inserted), m_appended(other.m_appended) {}
    CodeBlock& operator=(const CodeBlock& other) {
        m_inserted = other.m_inserted;
        m_appended = other.m_appended;
        m_texts.reset();
        return *this;
    }
    CodeBlock(CodeBlock&&) = default;
    CodeBlock& operator=(CodeBlock&&) = default;

    // Append adds at the end, insert at the start; unique adds at the end unless a line of whatever kind
    // has the same text.
    void Add(LineKind kind, std::string text, LineOrigin origin = {}) {
        if (kind == LineKind::kUnique && !m_texts) IndexTexts();
        if (m_texts && !m_texts->insert(text).second && kind == LineKind::kUnique) return;
        auto& side = kind == LineKind::kInsert ? m_inserted : m_appended;
        side.push_back({std::move(text), kind, origin});
    }

    size_t Size() const { return m_inserted.size() + m_appended.size(); }
    const CodeLine& Line(size_t index) const {
        return index < m_inserted.size() ? m_inserted[m_inserted.size() - 1 - index]
                                         : m_appended[index - m_inserted.size()];
    }

    // Replaces the text of each line by what `change` makes of it, in order; the kinds stay.
    template <typename Change>
    void ChangeTexts(Change change) {
        m_texts.reset();
        for (size_t i = m_inserted.size(); i > 0; --i) change(m_inserted[i - 1].text);
        for (CodeLine& line : m_appended) change(line.text);
    }

  private:
    void IndexTexts() {
        m_texts = std::make_unique<std::unordered_set<std::string>>();
        for (size_t i = 0; i < Size(); ++i) m_texts->insert(Line(i).text);
    }

    std::vector<CodeLine> m_inserted;
    std::vector<CodeLine> m_appended;
    // The texts of all lines, from the first "unique" line on.
    std::unique_ptr<std::unordered_set<std::string>> m_texts;
};

}  // namespace tavrin

// SPDX-License-Identifier: Apache-2.0
// What a library says of the language that it generates, for who shows a source in colours.
#pragma once

#include <array>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

namespace tavrin {

class CArchive;
class Report;
struct Site;

// What a part of a source is, as far as a list of words tells.
enum class SourceClass : uint8_t {
    kPlain,
    kKeyword,
    kType,
    kFunction,
    kVariable,
    kConstant,
    kDirective,
    kNumber,
    kString,
    kComment,
};

// A plain value; one that nothing was read into knows no language, and to it all is plain. The program itself
// knows none: the format stands in docs/library.md.
class SourceWords {
  public:
    SourceWords();
    // A mistake is alerted with its file and line, and nothing is returned.
    static std::optional<SourceWords> Read(CArchive& archive, Report& report);
    // Those of the library in use. A file that cannot be read is alerted, and is as good as none.
    static SourceWords Of(const Site& site);

    // Between two marks; one without a closing mark ends with its line.
    struct Marks {
        std::string open;
        std::string close;
        char escape = 0;  // takes the next character as it is; 0 for none
        SourceClass kind = SourceClass::kComment;
        bool overLines = false;
    };
    const std::vector<Marks>& AllMarks() const { return m_marks; }
    // What begins a line that is a directive, with its first word; empty for nothing.
    const std::string& Directive() const { return m_directive; }
    bool HasNumbers() const { return m_hasNumbers; }
    bool IsLetter(char c) const { return m_letters[static_cast<unsigned char>(c)]; }
    bool BeginsMarks(char c) const { return m_opening[static_cast<unsigned char>(c)]; }

    SourceClass ClassOf(std::string_view word) const;

  private:
    class Parser;
    struct Hash {
        using is_transparent = void;
        size_t operator()(std::string_view text) const { return std::hash<std::string_view>{}(text); }
    };
    struct Beginning {
        std::string text;
        SourceClass kind;
    };

    std::vector<Marks> m_marks;
    std::string m_directive;
    bool m_hasNumbers = false;
    bool m_ignoresCase = false;
    std::array<bool, 256> m_letters{};  // of words, digits among them
    std::array<bool, 256> m_opening{};
    std::unordered_map<std::string, SourceClass, Hash, std::equal_to<>> m_words;
    std::vector<Beginning> m_beginnings;  // of words, the longest first
};

}  // namespace tavrin

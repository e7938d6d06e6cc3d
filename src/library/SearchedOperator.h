// SPDX-License-Identifier: Apache-2.0
// One operator as the search reads it: all its texts in lower case, one behind the other.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "library/SearchedName.h"

namespace tavrin {

struct KnownOperator;

// How well a word that was typed goes together with an operator, the best first.
enum class SearchRank : uint8_t {
    kWholeName,
    kNameBeginning,
    kNameWords,  // the beginning of a word of the name, or of several
    kInName,
    kWholeAlias,  // or keyword, as the others below
    kAliasBeginning,
    kAliasWords,
    kInAlias,
    kMenuWord,
    kInMenu,
    kButtonWord,  // the name of a button, or what may be chosen there
    kInButton,
    kHelpWord,
    kInHelp,
    kSlip,  // of the name, an alias or the menu, but for a slip of the hand
};

// What a text of an operator is.
enum class SearchField : uint8_t { kName, kAlias, kKeyword, kMenu, kButton, kOption, kHelp, kButtonHelp };

// Made of what is known, and to be made anew when that changes. ASCII letters have no case here, all other
// bytes are what they are.
class SearchedOperator {
  public:
    struct Part {
        SearchField field = SearchField::kName;
        size_t item = 0;    // among the aliases, keywords or buttons
        size_t option = 0;  // kOption: among those of the button
        size_t begin = 0;
        size_t end = 0;
    };
    struct Match {
        SearchRank rank = SearchRank::kSlip;
        size_t part = 0;  // of Parts
        TextSpan span;    // within the part; unset for kNameWords and kAliasWords that are no one piece
    };

    SearchedOperator() = default;
    explicit SearchedOperator(const KnownOperator& known);

    // The best place of a word in lower case, of the best ones the first; nothing where it stands nowhere.
    // What does not match does not match either when the word is typed on.
    std::optional<Match> Find(std::string_view word, uint64_t bytesOfWord) const;
    // The same with as many slips of the hand as the word may have.
    std::optional<Match> FindWithSlips(std::string_view word, uint64_t bytesOfWord) const;
    // False if no word that begins so has a match with slips.
    bool MayHaveSlips(std::string_view word, uint64_t bytesOfWord) const;

    // The best first: name, aliases, keywords, menu, each button's name and options, help, each button's
    // help.
    const std::vector<Part>& Parts() const { return m_parts; }
    std::string_view TextOf(const Part& part) const {
        return std::string_view(m_text).substr(part.begin, part.end - part.begin);
    }
    std::string_view Name() const { return TextOf(m_parts.front()); }
    // For a match in names whose words were put together: the pieces.
    std::vector<TextSpan> PiecesOf(std::string_view word, const Match& match) const;

  private:
    void Add(SearchField field, size_t item, std::string_view text, size_t option = 0);
    SearchRank RankOf(const Part& part, size_t place, size_t length) const;
    std::optional<Match> FindPiece(std::string_view word) const;
    std::optional<Match> FindInitialsOf(SearchField field, std::string_view word) const;
    std::optional<Match> NearestSlip(std::string_view word, uint64_t bytesOfWord, size_t most) const;

    std::string m_text;  // the parts with line feeds between them
    std::vector<Part> m_parts;
    // Where words begin in the name, the aliases, the keywords and the menu, which are the first parts.
    std::vector<std::vector<bool>> m_beginnings;
    uint64_t m_bytesOfNames = 0;  // of those
};

}  // namespace tavrin

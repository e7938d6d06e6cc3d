// SPDX-License-Identifier: Apache-2.0
// Finds operators by what a user types.
#pragma once

#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "library/KnownOperator.h"
#include "library/SearchedOperator.h"

namespace tavrin {

class OperatorIndex;

// An operator that was found.
struct OperatorHit {
    size_t place = 0;                          // in OperatorIndex::Operators
    SearchRank rank = SearchRank::kWholeName;  // of the word that goes together with it worst
    std::optional<WireFit> fit;                // where the search was for an open end
    bool operator==(const OperatorHit&) const = default;
};

// Where it was found: a text as it is to be shown, and the pieces in it that are to be lit, in their order,
// which never part the bytes of a character.
struct SearchFinding {
    SearchField field = SearchField::kName;
    std::string text;    // of help the line in which the first piece lies
    std::string button;  // kButton, kOption, kButtonHelp: its name
    std::vector<TextSpan> pieces;
};

// Belongs to one search window, or to whoever asks again and again while a text is typed: a word that is
// typed on is looked for only where it was found before. Words are separated by blanks and found without
// regard to the case of ASCII letters; each has to be found somewhere. The best hits come first: those of
// which all words have the best ranks, then those whose buttons fit the wire best, then those that were used
// last, then by name. Main thread only.
class OperatorSearch {
  public:
    // Longer texts find nothing: no name, menu or word is that long, and one that was pasted by mistake is
    // not to be looked for word by word.
    static constexpr size_t kLongestText = 1000;
    static constexpr size_t kMostRecent = 50;

    // The index outlives it, and may change between two searches.
    explicit OperatorSearch(const OperatorIndex& index) : m_index(index) {}

    // All operators for a text without words. With an open end, those that have a button for it, as far as
    // their definitions have been read. Good until the next search.
    const std::vector<OperatorHit>& Find(std::string_view text, const OpenEnd* end = nullptr);

    // Of a hit of the last search; the name is always the first. Of an operator of which the index has read
    // more since the name alone, and nothing once the index was made anew.
    std::vector<SearchFinding> FindingsOf(const OperatorHit& hit) const;

    // The operator was chosen: among equals it comes first from now on.
    void Use(const std::string& name);
    // Names in lower case, the last used first, for who keeps them from one start of the program to the next.
    const std::vector<std::string>& Recent() const { return m_recent; }
    void SetRecent(const std::vector<std::string>& names);

    // Takes over what the index has read since. Each search does so by itself; whoever has the index step
    // does it behind each step as well, so that no key pays for it.
    void Refresh();

  private:
    // What is known of a word and an operator, and stays true when the word is typed on.
    enum class Outlook : uint8_t { kOpen, kSlipOnly, kHopeless };
    struct Word {
        std::string text;  // in lower case
        uint64_t bytes = 0;
        std::vector<Outlook> outlooks;  // by the operator's place
    };
    struct Score {
        unsigned worst = 0;
        unsigned sum = 0;
    };

    using PiecesByPart = std::map<size_t, std::vector<TextSpan>>;

    void SetWords(std::string_view text);
    void SetEnd(const OpenEnd* end);
    void SetOrder();
    void SetRecency();
    std::optional<Score> ScoreOf(size_t place);
    std::optional<SearchRank> RankOf(Word& word, size_t place) const;
    std::vector<TextSpan> FromBeginning(size_t place, bool& isWhole) const;
    uint64_t KeyOf(const Score& score, size_t place) const;
    void AddPieces(const SearchedOperator& searched, PiecesByPart& pieces) const;
    static SearchFinding Shown(const KnownOperator& known, const SearchedOperator::Part& part);

    const OperatorIndex& m_index;
    uint64_t m_reloads = 0;
    uint64_t m_revision = 0;
    // By place:
    std::vector<SearchedOperator> m_searched;
    std::vector<uint32_t> m_alphabet;            // the number in the order of names
    std::vector<uint32_t> m_recency;             // 0 for the one used last
    std::vector<std::optional<WireFit>> m_fits;  // with m_end, as the index was at m_fitsRevision
    std::optional<OpenEnd> m_end;
    uint64_t m_fitsRevision = 0;
    std::unordered_map<std::string, size_t> m_places;  // by name in lower case
    std::vector<std::string> m_recent;
    std::vector<Word> m_words;
    std::vector<OperatorHit> m_hits;
};

}  // namespace tavrin

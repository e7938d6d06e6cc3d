// SPDX-License-Identifier: Apache-2.0
#include "library/SearchedOperator.h"

#include <bit>
#include <cstring>

#include "library/KnownOperator.h"

namespace tavrin {

namespace {

bool IsWordByte(char c) {
    return (c >= 'a' && c <= 'z') || (c >= '0' && c <= '9') || static_cast<unsigned char>(c) >= 0x80;
}

char LowerOf(char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c; }

// The place of the letter that is rarest in texts: there are the fewest places to look at.
size_t RarestIn(std::string_view word) {
    constexpr std::string_view kFromRareToCommon = "zqxjkvbpygfwmucldrhsnioate";
    size_t rarest = 0;
    size_t rank = kFromRareToCommon.size();
    for (size_t i = 0; i < word.size(); ++i) {
        const size_t own = kFromRareToCommon.find(word[i]);
        if (own == std::string_view::npos) return i;
        if (own >= rank) continue;
        rank = own;
        rarest = i;
    }
    return rarest;
}

// Several times as fast as a search for the first letter, since whole runs without the rare one are passed
// over at once.
size_t FindIn(std::string_view text, std::string_view word, size_t rarest, size_t from) {
    for (size_t place = from + rarest; place < text.size(); ++place) {
        const void* found = std::memchr(text.data() + place, word[rarest], text.size() - place);
        if (found == nullptr) break;
        place = static_cast<size_t>(static_cast<const char*>(found) - text.data());
        if (text.substr(place - rarest, word.size()) == word) return place - rarest;
    }
    return std::string_view::npos;
}

// The best that a place in such a text can be.
SearchRank BestOf(SearchField field) {
    switch (field) {
        case SearchField::kName:
            return SearchRank::kWholeName;
        case SearchField::kAlias:
        case SearchField::kKeyword:
            return SearchRank::kWholeAlias;
        case SearchField::kMenu:
            return SearchRank::kMenuWord;
        case SearchField::kButton:
        case SearchField::kOption:
            return SearchRank::kButtonWord;
        case SearchField::kHelp:
        case SearchField::kButtonHelp:
            break;
    }
    return SearchRank::kHelpWord;
}

SearchRank Worse(SearchRank rank, int steps) {
    return static_cast<SearchRank>(static_cast<int>(rank) + steps);
}

}  // namespace

SearchedOperator::SearchedOperator(const KnownOperator& known) {
    Add(SearchField::kName, 0, known.name);
    for (size_t i = 0; i < known.aliases.size(); ++i) Add(SearchField::kAlias, i, known.aliases[i]);
    for (size_t i = 0; i < known.keywords.size(); ++i) Add(SearchField::kKeyword, i, known.keywords[i]);
    Add(SearchField::kMenu, 0, known.menu);
    for (size_t i = 0; i < known.buttons.size(); ++i) {
        const KnownButton& button = known.buttons[i];
        Add(SearchField::kButton, i, button.name);
        for (size_t k = 0; k < button.options.size(); ++k) Add(SearchField::kOption, i, button.options[k], k);
    }
    Add(SearchField::kHelp, 0, known.help);
    for (size_t i = 0; i < known.buttons.size(); ++i) Add(SearchField::kButtonHelp, i, known.buttons[i].help);
}

void SearchedOperator::Add(SearchField field, size_t item, std::string_view text, size_t option) {
    const size_t begin = m_text.size();
    if (text.empty() && field > SearchField::kMenu) return;
    m_text += text;
    for (size_t i = begin; i < m_text.size(); ++i) m_text[i] = LowerOf(m_text[i]);
    m_parts.push_back({field, item, option, begin, m_text.size()});
    m_text += '\n';
    if (field > SearchField::kMenu) return;
    m_beginnings.push_back(WordBeginnings(text));
    m_bytesOfNames |= BytesOf(text);
}

SearchRank SearchedOperator::RankOf(const Part& part, size_t place, size_t length) const {
    const SearchRank best = BestOf(part.field);
    if (part.field > SearchField::kMenu)
        return Worse(best, place == 0 || !IsWordByte(m_text[part.begin + place - 1]) ? 0 : 1);
    const bool beginsWord = m_beginnings[static_cast<size_t>(&part - m_parts.data())][place];
    if (part.field == SearchField::kMenu) return Worse(best, beginsWord ? 0 : 1);
    if (place == 0) return Worse(best, length == part.end - part.begin ? 0 : 1);
    return Worse(best, beginsWord ? 2 : 3);
}

// Where the word stands in one piece.
std::optional<SearchedOperator::Match> SearchedOperator::FindPiece(std::string_view word) const {
    std::optional<Match> best;
    size_t part = 0;
    const size_t rarest = RarestIn(word);
    for (size_t at = FindIn(m_text, word, rarest, 0); at != std::string_view::npos;
         at = FindIn(m_text, word, rarest, at + 1)) {
        while (at >= m_parts[part].end) ++part;
        // Parts that come later are worse.
        if (best && best->rank <= BestOf(m_parts[part].field)) break;
        const size_t place = at - m_parts[part].begin;
        const SearchRank rank = RankOf(m_parts[part], place, word.size());
        if (!best || rank < best->rank) best = Match{rank, part, {place, place + word.size()}};
    }
    return best;
}

std::optional<SearchedOperator::Match> SearchedOperator::FindInitialsOf(SearchField field,
                                                                        std::string_view word) const {
    for (size_t i = 0; i < m_beginnings.size(); ++i) {
        const bool isKeyword = m_parts[i].field == SearchField::kKeyword && field == SearchField::kAlias;
        if ((m_parts[i].field != field && !isKeyword) ||
            FindInitials(word, TextOf(m_parts[i]), m_beginnings[i]).empty())
            continue;
        return Match{field == SearchField::kName ? SearchRank::kNameWords : SearchRank::kAliasWords, i, {}};
    }
    return std::nullopt;
}

std::optional<SearchedOperator::Match> SearchedOperator::Find(std::string_view word,
                                                              uint64_t bytesOfWord) const {
    const std::optional<Match> piece = FindPiece(word);
    const bool mayBeInitials = (bytesOfWord & ~m_bytesOfNames) == 0;
    if (!mayBeInitials || (piece && piece->rank <= SearchRank::kNameWords)) return piece;
    if (const auto initials = FindInitialsOf(SearchField::kName, word)) return initials;
    if (piece && piece->rank <= SearchRank::kAliasWords) return piece;
    if (const auto initials = FindInitialsOf(SearchField::kAlias, word)) return initials;
    return piece;
}

std::optional<SearchedOperator::Match> SearchedOperator::NearestSlip(std::string_view word,
                                                                     uint64_t bytesOfWord,
                                                                     size_t most) const {
    // Each slip brings one letter that is not there at most.
    if (static_cast<size_t>(std::popcount(bytesOfWord & ~m_bytesOfNames)) > most) return std::nullopt;
    std::optional<Match> best;
    for (size_t i = 0; i < m_beginnings.size() && most > 0; ++i) {
        const auto slip = FindSlip(word, TextOf(m_parts[i]), m_beginnings[i], most);
        if (!slip) continue;
        best = Match{SearchRank::kSlip, i, slip->span};
        if (slip->count == 0) break;
        most = slip->count - 1;
    }
    return best;
}

std::optional<SearchedOperator::Match> SearchedOperator::FindWithSlips(std::string_view word,
                                                                       uint64_t bytesOfWord) const {
    const size_t most = SlipsAllowed(word.size());
    if (most == 0) return std::nullopt;
    return NearestSlip(word, bytesOfWord, most);
}

bool SearchedOperator::MayHaveSlips(std::string_view word, uint64_t bytesOfWord) const {
    if (static_cast<size_t>(std::popcount(bytesOfWord & ~m_bytesOfNames)) > kMostSlips) return false;
    // The distance to what is only begun says nothing yet.
    if (word.size() < kShortestWithSlip) return true;
    return NearestSlip(word, bytesOfWord, kMostSlips).has_value();
}

std::vector<TextSpan> SearchedOperator::PiecesOf(std::string_view word, const Match& match) const {
    if (match.span.end > match.span.begin) return {match.span};
    return FindInitials(word, TextOf(m_parts[match.part]), m_beginnings[match.part]);
}

}  // namespace tavrin

// SPDX-License-Identifier: Apache-2.0
#include "library/OperatorSearch.h"

#include <algorithm>
#include <numeric>
#include <utility>

#include "library/OperatorIndex.h"
#include "text/Tokens.h"

namespace tavrin {

namespace {

bool ContinuesCharacter(char c) { return (static_cast<unsigned char>(c) & 0xC0U) == 0x80; }

// What was typed may be part of a character alone. No character has more than four bytes.
TextSpan WholeCharacters(std::string_view text, TextSpan span) {
    constexpr int kMostBytes = 3;
    for (int i = 0; i < kMostBytes && span.begin > 0 && ContinuesCharacter(text[span.begin]); ++i)
        --span.begin;
    for (int i = 0; i < kMostBytes && span.end < text.size() && ContinuesCharacter(text[span.end]); ++i)
        ++span.end;
    return span;
}

// In their order, those that touch as one.
std::vector<TextSpan> Joined(std::string_view text, std::vector<TextSpan> spans) {
    for (TextSpan& span : spans) span = WholeCharacters(text, span);
    std::sort(spans.begin(), spans.end(), [](const TextSpan& left, const TextSpan& right) {
        return std::pair(left.begin, left.end) < std::pair(right.begin, right.end);
    });
    std::vector<TextSpan> joined;
    for (const TextSpan& span : spans) {
        if (joined.empty() || joined.back().end < span.begin) {
            joined.push_back(span);
        } else {
            joined.back().end = std::max(joined.back().end, span.end);
        }
    }
    return joined;
}

// Leaves the line of the first piece alone.
void CutToLine(SearchFinding& finding) {
    constexpr std::string_view kLineEnds = "\r\n";
    if (finding.pieces.empty()) return;
    const TextSpan first = finding.pieces.front();
    const size_t before =
        first.begin == 0 ? std::string::npos : finding.text.find_last_of(kLineEnds, first.begin - 1);
    const size_t begin = before == std::string::npos ? 0 : before + 1;
    const size_t end = std::min(finding.text.find_first_of(kLineEnds, first.end), finding.text.size());
    std::erase_if(finding.pieces, [&](const TextSpan& piece) { return piece.begin >= end; });
    for (TextSpan& piece : finding.pieces) piece = {piece.begin - begin, std::min(piece.end, end) - begin};
    finding.text = finding.text.substr(begin, end - begin);
}

}  // namespace

void OperatorSearch::Refresh() {
    if (m_revision == m_index.Revision() && m_reloads == m_index.Reloads()) return;
    const std::vector<KnownOperator>& known = m_index.Operators();
    const bool isAnew = m_reloads != m_index.Reloads();
    if (isAnew) {
        m_searched.assign(known.size(), {});
        m_words.clear();
    }
    for (size_t place = 0; place < known.size(); ++place) {
        if (!isAnew && known[place].revision <= m_revision) continue;
        m_searched[place] = SearchedOperator(known[place]);
        for (Word& word : m_words) word.outlooks[place] = Outlook::kOpen;
    }
    if (isAnew) SetOrder();
    m_reloads = m_index.Reloads();
    m_revision = m_index.Revision();
}

void OperatorSearch::SetOrder() {
    std::vector<size_t> places(m_searched.size());
    std::iota(places.begin(), places.end(), size_t{0});
    std::sort(places.begin(), places.end(), [this](size_t left, size_t right) {
        return m_searched[left].Name() < m_searched[right].Name();
    });
    m_alphabet.assign(places.size(), 0);
    m_places.clear();
    for (size_t i = 0; i < places.size(); ++i) {
        m_alphabet[places[i]] = static_cast<uint32_t>(i);
        m_places.emplace(m_searched[places[i]].Name(), places[i]);
    }
    SetRecency();
}

// A word that was typed on keeps what is known of it.
void OperatorSearch::SetWords(std::string_view text) {
    std::vector<Word> before = std::exchange(m_words, {});
    while (!text.empty()) {
        const size_t begin =
            static_cast<size_t>(std::find_if_not(text.begin(), text.end(), IsBlank) - text.begin());
        text.remove_prefix(begin);
        const size_t length =
            static_cast<size_t>(std::find_if(text.begin(), text.end(), IsBlank) - text.begin());
        std::string word = ToLower(text.substr(0, length));
        text.remove_prefix(length);
        const bool isKnown = std::any_of(m_words.begin(), m_words.end(),
                                         [&](const Word& other) { return other.text == word; });
        if (word.empty() || isKnown) continue;
        const size_t number = m_words.size();
        Word& added = m_words.emplace_back();
        if (number < before.size() && word.starts_with(before[number].text)) {
            added.outlooks = std::move(before[number].outlooks);
        } else {
            added.outlooks.assign(m_searched.size(), Outlook::kOpen);
        }
        added.bytes = BytesOf(word);
        added.text = std::move(word);
    }
}

void OperatorSearch::SetEnd(const OpenEnd* end) {
    const bool isSame = end == nullptr ? !m_end : m_end && *m_end == *end;
    if (isSame && m_fitsRevision == m_revision) return;
    m_end = end == nullptr ? std::nullopt : std::optional(*end);
    m_fitsRevision = m_revision;
    m_fits.clear();
    if (end == nullptr) return;
    for (const KnownOperator& known : m_index.Operators()) m_fits.push_back(FindFit(*end, known));
}

const std::vector<OperatorHit>& OperatorSearch::Find(std::string_view text, const OpenEnd* end) {
    m_hits.clear();
    Refresh();
    SetEnd(end);
    const bool isTooLong = text.size() > kLongestText;
    SetWords(isTooLong ? std::string_view() : text);
    if (isTooLong) return m_hits;
    struct Found {
        uint64_t key = 0;
        size_t place = 0;
        SearchRank rank = SearchRank::kWholeName;
    };
    std::vector<Found> found;
    for (size_t place = 0; place < m_searched.size(); ++place) {
        if (m_end && !m_fits[place]) continue;
        if (const auto score = ScoreOf(place))
            found.push_back({KeyOf(*score, place), place, static_cast<SearchRank>(score->worst)});
    }
    std::sort(found.begin(), found.end(),
              [](const Found& left, const Found& right) { return left.key < right.key; });
    m_hits.reserve(found.size());
    for (const Found& each : found)
        m_hits.push_back({each.place, each.rank, m_end ? m_fits[each.place] : std::nullopt});
    return m_hits;
}

std::optional<OperatorSearch::Score> OperatorSearch::ScoreOf(size_t place) {
    Score score;
    for (Word& word : m_words) {
        const std::optional<SearchRank> rank = RankOf(word, place);
        if (!rank) return std::nullopt;
        score.worst = std::max(score.worst, static_cast<unsigned>(*rank));
        score.sum += static_cast<unsigned>(*rank);
    }
    bool isWhole = false;
    if (FromBeginning(place, isWhole).empty()) return score;
    const auto together =
        static_cast<unsigned>(isWhole ? SearchRank::kWholeName : SearchRank::kNameBeginning);
    return together < score.worst ? Score{together, together} : score;
}

std::optional<SearchRank> OperatorSearch::RankOf(Word& word, size_t place) const {
    const SearchedOperator& searched = m_searched[place];
    Outlook& outlook = word.outlooks[place];
    if (outlook == Outlook::kOpen) {
        if (const auto match = searched.Find(word.text, word.bytes)) return match->rank;
    }
    if (outlook == Outlook::kHopeless) return std::nullopt;
    outlook = searched.MayHaveSlips(word.text, word.bytes) ? Outlook::kSlipOnly : Outlook::kHopeless;
    if (outlook == Outlook::kHopeless || !searched.FindWithSlips(word.text, word.bytes)) return std::nullopt;
    return SearchRank::kSlip;
}

// Several words that are the beginning of the name together, such as "worn p".
std::vector<TextSpan> OperatorSearch::FromBeginning(size_t place, bool& isWhole) const {
    if (m_words.size() < 2) return {};
    const std::string_view name = m_searched[place].Name();
    if (!name.starts_with(m_words.front().text)) return {};
    std::vector<std::string> texts;
    for (const Word& word : m_words) texts.push_back(word.text);
    return FindFromBeginning(texts, name, isWhole);
}

// Smaller for the better hit; no two operators have the same.
uint64_t OperatorSearch::KeyOf(const Score& score, size_t place) const {
    constexpr unsigned kMostSum = 0xFFF;
    const auto fit = m_end ? static_cast<uint64_t>(m_fits[place]->types) : 0;
    return uint64_t{score.worst} << 60U | uint64_t{std::min(score.sum, kMostSum)} << 48U | fit << 44U |
           uint64_t{m_recency[place]} << 32U | m_alphabet[place];
}

void OperatorSearch::SetRecency() {
    m_recency.assign(m_searched.size(), kMostRecent);
    for (size_t i = 0; i < m_recent.size(); ++i) {
        const auto found = m_places.find(m_recent[i]);
        if (found != m_places.end()) m_recency[found->second] = static_cast<uint32_t>(i);
    }
}

void OperatorSearch::Use(const std::string& name) {
    std::vector<std::string> names{name};
    names.insert(names.end(), m_recent.begin(), m_recent.end());
    SetRecent(names);
}

void OperatorSearch::SetRecent(const std::vector<std::string>& names) {
    m_recent.clear();
    for (const std::string& name : names) {
        std::string lower = ToLower(name);
        if (m_recent.size() == kMostRecent) break;
        if (std::find(m_recent.begin(), m_recent.end(), lower) == m_recent.end())
            m_recent.push_back(std::move(lower));
    }
    SetRecency();
}

std::vector<SearchFinding> OperatorSearch::FindingsOf(const OperatorHit& hit) const {
    if (m_reloads != m_index.Reloads() || hit.place >= m_searched.size()) return {};
    const KnownOperator& known = m_index.Operators()[hit.place];
    const SearchedOperator& searched = m_searched[hit.place];
    PiecesByPart pieces;
    bool isWhole = false;
    pieces[0] = FromBeginning(hit.place, isWhole);
    // Of what has been read since, the next search tells.
    const bool isCurrent = known.revision <= m_revision;
    if (isCurrent && pieces[0].empty()) AddPieces(searched, pieces);
    std::vector<SearchFinding> findings;
    for (auto& [number, spans] : pieces) {
        SearchFinding& finding = findings.emplace_back(Shown(known, searched.Parts()[number]));
        finding.pieces = Joined(finding.text, std::move(spans));
        if (finding.field == SearchField::kHelp || finding.field == SearchField::kButtonHelp)
            CutToLine(finding);
    }
    return findings;
}

void OperatorSearch::AddPieces(const SearchedOperator& searched, PiecesByPart& pieces) const {
    for (const Word& word : m_words) {
        auto match = searched.Find(word.text, word.bytes);
        if (!match) match = searched.FindWithSlips(word.text, word.bytes);
        if (!match) continue;
        std::vector<TextSpan>& all = pieces[match->part];
        for (const TextSpan& piece : searched.PiecesOf(word.text, *match)) all.push_back(piece);
    }
}

// The text of a part as it is written.
SearchFinding OperatorSearch::Shown(const KnownOperator& known, const SearchedOperator::Part& part) {
    switch (part.field) {
        case SearchField::kName:
            return {part.field, known.name, {}, {}};
        case SearchField::kAlias:
            return {part.field, known.aliases[part.item], {}, {}};
        case SearchField::kKeyword:
            return {part.field, known.keywords[part.item], {}, {}};
        case SearchField::kMenu:
            return {part.field, known.menu, {}, {}};
        case SearchField::kHelp:
            return {part.field, known.help, {}, {}};
        case SearchField::kButton:
        case SearchField::kOption:
        case SearchField::kButtonHelp:
            break;
    }
    const KnownButton& button = known.buttons[part.item];
    if (part.field == SearchField::kButtonHelp) return {part.field, button.help, button.name, {}};
    if (part.field == SearchField::kOption) return {part.field, button.options[part.option], button.name, {}};
    return {part.field, button.name, button.name, {}};
}

}  // namespace tavrin

// SPDX-License-Identifier: Apache-2.0
#include "library/SearchedName.h"

#include <algorithm>
#include <array>
#include <bit>
#include <utility>

namespace tavrin {

namespace {

constexpr size_t kShortestWithTwo = 8;
constexpr size_t kLongestWithSlip = 32;

enum class Sort { kOther, kSmall, kCapital, kDigit };

Sort SortOf(char c) {
    if (c >= 'A' && c <= 'Z') return Sort::kCapital;
    if (c >= '0' && c <= '9') return Sort::kDigit;
    const bool isBeyond = static_cast<unsigned char>(c) >= 0x80;
    return isBeyond || (c >= 'a' && c <= 'z') ? Sort::kSmall : Sort::kOther;
}

bool BeginsWord(std::string_view name, size_t place) {
    const Sort sort = SortOf(name[place]);
    if (sort == Sort::kOther) return false;
    const Sort before = place == 0 ? Sort::kOther : SortOf(name[place - 1]);
    if (before == Sort::kOther) return true;
    if (sort == Sort::kDigit || before == Sort::kDigit) return sort != before;
    if (sort != Sort::kCapital) return false;
    return before != Sort::kCapital || (place + 1 < name.size() && SortOf(name[place + 1]) == Sort::kSmall);
}

bool Separates(char c) { return SortOf(c) == Sort::kOther; }

// Places of a name as bits of one number.
using Places = uint64_t;
constexpr Places Bit(size_t place) { return place < kLongestName ? Places{1} << place : 0; }

}  // namespace

std::vector<bool> WordBeginnings(std::string_view name) {
    std::vector<bool> beginnings(name.size());
    for (size_t i = 0; i < name.size(); ++i) beginnings[i] = BeginsWord(name, i);
    return beginnings;
}

uint64_t BytesOf(std::string_view text) {
    constexpr unsigned kLetters = 26;
    constexpr unsigned kDigits = 10;
    constexpr unsigned kOthers = 64 - kLetters - kDigits;
    uint64_t bytes = 0;
    for (const char c : text) {
        const auto byte = static_cast<unsigned char>(c);
        unsigned bit = kLetters + kDigits + byte % kOthers;
        if (c >= 'a' && c <= 'z') bit = byte - 'a';
        if (c >= 'A' && c <= 'Z') bit = byte - 'A';
        if (c >= '0' && c <= '9') bit = kLetters + byte - '0';
        bytes |= uint64_t{1} << bit;
    }
    return bytes;
}

// After each letter typed, all places up to which the text so far may reach; then back again along one way.
std::vector<TextSpan> FindInitials(std::string_view typed, std::string_view name,
                                   const std::vector<bool>& beginnings) {
    name = name.substr(0, kLongestName - 1);
    if (typed.empty() || typed.size() > name.size()) return {};
    std::array<Places, kLongestName> reached{};
    Places ends = Bit(0);
    for (size_t i = 0; i < typed.size(); ++i) {
        const Places from = ends;
        const Places behind = ~(Bit(static_cast<size_t>(std::countr_zero(from))) - 1);
        ends = 0;
        for (size_t p = 0; p < name.size(); ++p) {
            if (name[p] != typed[i]) continue;
            const bool goesOn = i > 0 && (from & Bit(p)) != 0;
            if (goesOn || (beginnings[p] && (behind & Bit(p)) != 0)) ends |= Bit(p + 1);
        }
        if (ends == 0) return {};
        reached[i] = ends;
    }
    std::vector<TextSpan> pieces;
    auto end = static_cast<size_t>(std::countr_zero(reached[typed.size() - 1]));
    for (size_t i = typed.size(); i-- > 0;) {
        const size_t place = end - 1;
        if (!pieces.empty() && pieces.back().begin == place + 1) {
            pieces.back().begin = place;
        } else {
            pieces.push_back({place, place + 1});
        }
        if (i == 0) break;
        if ((reached[i - 1] & Bit(place)) != 0) {
            end = place;
        } else {
            end = static_cast<size_t>(std::bit_width(reached[i - 1] & (Bit(place) - 1))) - 1;
        }
    }
    std::reverse(pieces.begin(), pieces.end());
    return pieces;
}

std::vector<TextSpan> FindFromBeginning(const std::vector<std::string>& typed, std::string_view name,
                                        bool& isWhole) {
    std::vector<TextSpan> pieces;
    size_t place = 0;
    for (const std::string& word : typed) {
        while (!pieces.empty() && place < name.size() && Separates(name[place]) &&
               !name.substr(place).starts_with(word))
            ++place;
        if (!name.substr(place).starts_with(word)) return {};
        if (!pieces.empty() && pieces.back().end == place) {
            pieces.back().end += word.size();
        } else {
            pieces.push_back({place, place + word.size()});
        }
        place += word.size();
    }
    isWhole = place == name.size();
    return pieces;
}

size_t SlipsAllowed(size_t length) {
    if (length < kShortestWithSlip || length > kLongestWithSlip) return 0;
    return length < kShortestWithTwo ? 1 : kMostSlips;
}

namespace {

// The piece of `name` from its beginning on that is nearest to the typed text; gives up beyond `most`.
std::optional<Slip> NearestBeginning(std::string_view typed, std::string_view name, size_t most) {
    constexpr size_t kColumns = kLongestWithSlip + kMostSlips + 1;
    const size_t length = std::min(name.size(), typed.size() + most);
    std::array<size_t, kColumns> rows[3];
    for (size_t j = 0; j <= length; ++j) rows[0][j] = j;
    for (size_t i = 1; i <= typed.size(); ++i) {
        auto& row = rows[i % 3];
        const auto& last = rows[(i + 2) % 3];
        const auto& beforeLast = rows[(i + 1) % 3];
        row[0] = i;
        size_t least = i;
        for (size_t j = 1; j <= length; ++j) {
            const size_t other = typed[i - 1] == name[j - 1] ? 0 : 1;
            row[j] = std::min({last[j] + 1, row[j - 1] + 1, last[j - 1] + other});
            const bool areExchanged =
                i > 1 && j > 1 && typed[i - 1] == name[j - 2] && typed[i - 2] == name[j - 1];
            if (areExchanged) row[j] = std::min(row[j], beforeLast[j - 2] + 1);
            least = std::min(least, row[j]);
        }
        if (least > most) return std::nullopt;
    }
    // Of pieces that are equally near the longest.
    const auto& row = rows[typed.size() % 3];
    size_t nearest = length;
    for (size_t j = length; j-- > 0;) {
        if (row[j] < row[nearest]) nearest = j;
    }
    return Slip{{0, nearest}, row[nearest]};
}

}  // namespace

std::optional<Slip> FindSlip(std::string_view typed, std::string_view name,
                             const std::vector<bool>& beginnings, size_t most) {
    if (typed.size() > kLongestWithSlip) return std::nullopt;
    most = std::min(most, kMostSlips);
    name = name.substr(0, kLongestName);
    std::optional<Slip> best;
    for (size_t begin = 0; begin < name.size(); ++begin) {
        if (!beginnings[begin]) continue;
        auto slip = NearestBeginning(typed, name.substr(begin), most);
        if (!slip || slip->count > most || slip->span.end == 0 || (best && best->count <= slip->count))
            continue;
        slip->span = {begin, begin + slip->span.end};
        best = slip;
    }
    return best;
}

}  // namespace tavrin

// SPDX-License-Identifier: Apache-2.0
// How what a user types goes together with a name that is made of words, such as "WornPaint".
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace tavrin {

// Bytes of a text, from the first up to the one behind the last.
struct TextSpan {
    size_t begin = 0;
    size_t end = 0;
    bool operator==(const TextSpan&) const = default;
};

// For each byte of a name whether a word of it begins there: behind what is neither letter nor digit, at a
// capital that no capital stands before or a small letter behind, and between letters and digits. Bytes
// beyond ASCII are small letters.
std::vector<bool> WordBeginnings(std::string_view name);

// A bit for each letter, digit or other byte that occurs, small letters as capitals.
uint64_t BytesOf(std::string_view text);

// All below compares what is in lower case already, and has a bound on its cost: of a name no more than this
// is looked at.
inline constexpr size_t kLongestName = 64;

// Whether the typed text is put together of beginnings of words of the name, in their order, as "wp" and
// "worpa" are of "WornPaint". The pieces, of which two never touch.
std::vector<TextSpan> FindInitials(std::string_view typed, std::string_view name,
                                   const std::vector<bool>& beginnings);

// Whether words that were typed are the name from its beginning on, one behind the other, with nothing
// between them but what separates words there. The pieces, empty if not; `isWhole` tells that nothing of the
// name is left.
std::vector<TextSpan> FindFromBeginning(const std::vector<std::string>& typed, std::string_view name,
                                        bool& isWhole);

// A slip of the hand: letters that are wrong, left out, too many or exchanged with their neighbour.
struct Slip {
    TextSpan span;  // of the name
    size_t count = 0;
};
// Of how many letters a typed text may be wrong. One that is very long is not looked at.
size_t SlipsAllowed(size_t length);
inline constexpr size_t kMostSlips = 2;
inline constexpr size_t kShortestWithSlip = 4;
// The piece of the name, from the beginning of a word on, that is nearest to the typed text. Nothing if it is
// farther away than `most`. The distance never falls when the text is typed on.
std::optional<Slip> FindSlip(std::string_view typed, std::string_view name,
                             const std::vector<bool>& beginnings, size_t most);

}  // namespace tavrin

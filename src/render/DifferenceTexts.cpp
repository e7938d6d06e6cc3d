// SPDX-License-Identifier: Apache-2.0
#include "render/DifferenceTexts.h"

#include <algorithm>
#include <span>

#include "document/DocumentRecords.h"
#include "sliders/NumberText.h"
#include "text/VisibleText.h"

namespace tavrin {

namespace {

using Kind = Difference::Kind;

constexpr size_t kMostText = 60;    // bytes of a text that is shown
constexpr size_t kMostBefore = 20;  // bytes shown before the first one that differs
constexpr const char* kCut = "...";

bool IsInsideCharacter(char c) { return (static_cast<unsigned char>(c) & 0xC0U) == 0x80U; }

// From there on, at the beginning of a character, as much as is shown.
std::string Cut(std::string_view text, size_t from) {
    while (from > 0 && from < text.size() && IsInsideCharacter(text[from])) --from;
    const bool isCutBefore = from > 0;
    text.remove_prefix(std::min(from, text.size()));
    const bool isCutBehind = text.size() > kMostText;
    if (isCutBehind) {
        size_t length = kMostText;
        while (length > 0 && IsInsideCharacter(text[length])) --length;
        text = text.substr(0, length);
    }
    return (isCutBefore ? kCut : "") + std::string(text) + (isCutBehind ? kCut : "");
}

const NumberType* NumberTypeOf(std::string_view type) {
    const auto isIt = [type](const NumberType& known) { return known.word == type; };
    const auto* found = std::find_if(kNumberTypes.begin(), kNumberTypes.end(), isIt);
    return found == kNumberTypes.end() ? nullptr : found;
}

// Behind the value itself stand the ends of the range, for a type that has one.
size_t RangeAt(const NumberType& type) { return type.hasInteger ? type.count - 2 : type.count; }

std::string NumbersText(std::span<const float> numbers) {
    std::string text;
    for (const float number : numbers) text.append(text.empty() ? "" : " ").append(NumberText(number));
    return text;
}

std::string RangeText(const NumberType& type, const ValueState& value) {
    const auto range = std::span(value.numbers).subspan(RangeAt(type), type.count - RangeAt(type));
    return NumbersText(range) + (value.integer != 0 ? " whole" : "");
}

std::optional<TextPair> IfDiffering(std::string older, std::string newer) {
    if (older == newer) return std::nullopt;
    return TextPair(std::move(older), std::move(newer));
}

std::string Quoted(const std::string& text) { return "\"" + text + "\""; }

bool CameOrWent(const Difference& difference) {
    switch (difference.kind) {
        case Kind::kBox:
        case Kind::kInput:
        case Kind::kWire:
            return difference.older.empty() || difference.newer.empty();
        default:
            return false;
    }
}

// What stands behind the name of the thing.
std::string HowOf(const Difference& difference) {
    if (CameOrWent(difference)) return difference.older.empty() ? "came" : "went";
    if (difference.kind == Kind::kWire) return "now from " + difference.newer;
    const auto shown = [](const std::string& text) { return text.empty() ? "\"\"" : text; };
    return shown(difference.older) + " -> " + shown(difference.newer);
}

}  // namespace

Difference MakeDifference(Kind kind, std::string_view what, std::string_view older, std::string_view newer) {
    Difference difference;
    difference.kind = kind;
    difference.what = VisibleOneLine(what);
    difference.older = VisibleOneLine(older);
    difference.newer = VisibleOneLine(newer);
    difference.text = difference.what + (CameOrWent(difference) ? " " : ": ") + HowOf(difference);
    return difference;
}

TextPair ShortTexts(std::string_view older, std::string_view newer) {
    const auto differs = std::mismatch(older.begin(), older.end(), newer.begin(), newer.end());
    const auto same = static_cast<size_t>(differs.first - older.begin());
    const size_t from = same > kMostText / 2 ? same - kMostBefore : 0;
    return {Cut(older, from), Cut(newer, from)};
}

std::optional<TextPair> DifferingValues(std::string_view type, const ValueState& older,
                                        const ValueState& newer) {
    if (const NumberType* known = NumberTypeOf(type)) {
        const auto shown = [known](const ValueState& value) {
            return NumbersText(std::span(value.numbers).first(RangeAt(*known)));
        };
        return IfDiffering(shown(older), shown(newer));
    }
    if (older.text == newer.text) return std::nullopt;
    auto [was, is] = ShortTexts(older.text, newer.text);
    return IfDiffering(Quoted(was), Quoted(is));
}

std::optional<TextPair> DifferingRanges(std::string_view type, const ValueState& older,
                                        const ValueState& newer) {
    const NumberType* known = NumberTypeOf(type);
    if (known == nullptr || !known->hasInteger) return std::nullopt;
    return IfDiffering(RangeText(*known, older), RangeText(*known, newer));
}

ValueState WithRangeOf(std::string_view type, ValueState value, const ValueState& other) {
    const NumberType* known = NumberTypeOf(type);
    if (known == nullptr || !known->hasInteger) return value;
    for (size_t i = RangeAt(*known); i < known->count; ++i) value.numbers[i] = other.numbers[i];
    value.integer = other.integer;
    return value;
}

std::string Summary(const std::vector<Difference>& differences, size_t most) {
    std::string text;
    for (size_t i = 0; i < std::min(most, differences.size()); ++i) {
        if (i > 0) text += ", ";
        text.append(differences[i].what).append(" ").append(HowOf(differences[i]));
    }
    if (differences.size() <= most) return text;
    const std::string more = "+" + std::to_string(differences.size() - most);
    return text.empty() ? more : text.append(", ").append(more);
}

}  // namespace tavrin

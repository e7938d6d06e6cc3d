// SPDX-License-Identifier: Apache-2.0
#include "sliders/NumberText.h"

#include <array>
#include <charconv>
#include <cmath>

#include "text/Numbers.h"
#include "text/Tokens.h"

namespace tavrin {

std::string NumberText(float value) { return FormatG(static_cast<double>(value)); }

std::optional<float> ReadNumber(std::string_view text) {
    std::string_view digits = Trim(text);
    if (digits.starts_with('+')) {
        digits.remove_prefix(1);
        if (digits.starts_with('-')) return std::nullopt;
    }
    double value = 0;
    const char* end = digits.data() + digits.size();
    const auto result = std::from_chars(digits.data(), end, value);
    if (result.ptr != end || result.ec != std::errc() || !std::isfinite(value)) return std::nullopt;
    const auto number = static_cast<float>(value);
    if (!std::isfinite(number)) return std::nullopt;
    return number;
}

bool IsBeginOfNumber(std::string_view text) {
    return text.empty() || text == "-" || text == "." || text == "-.";
}

bool IsBeginOfShare(std::string_view text) {
    const std::string_view trimmed = Trim(text);
    return trimmed.empty() || trimmed == ".";
}

float RoundedToThousandths(float value) {
    if (!std::isfinite(value)) return value;
    // The longest 32-bit number has 39 digits before the point.
    std::array<char, 64> text;
    const auto printed = std::to_chars(text.data(), text.data() + text.size(), static_cast<double>(value),
                                       std::chars_format::fixed, 3);
    double rounded = 0;
    std::from_chars(text.data(), printed.ptr, rounded);
    return static_cast<float>(rounded);
}

}  // namespace tavrin

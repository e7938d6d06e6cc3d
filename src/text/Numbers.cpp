// SPDX-License-Identifier: Apache-2.0
#include "text/Numbers.h"

#include <charconv>
#include <limits>

#include "text/Tokens.h"

namespace tavrin {

namespace {

constexpr size_t kNumberRoom = 512;  // %f of the largest double has 316 characters
constexpr int kPrintfPrecision = 6;  // what %g and %f use where none is given

// from_chars takes no leading '+', which scanf and atoi do.
std::string_view WithoutPlus(std::string_view text) {
    if (text.size() > 1 && text[0] == '+' && text[1] != '-') text.remove_prefix(1);
    return text;
}

// Scans a number at the start of `text`; the count of characters used, 0 if none fits.
template <typename Number>
size_t Scan(std::string_view text, Number& value) {
    const std::string_view digits = WithoutPlus(text);
    const auto result = std::from_chars(digits.data(), digits.data() + digits.size(), value);
    if (result.ec == std::errc::invalid_argument) return 0;
    if (result.ec == std::errc::result_out_of_range) {
        const bool negative = digits.front() == '-';
        if constexpr (std::numeric_limits<Number>::is_integer) {
            value = negative ? std::numeric_limits<Number>::min() : std::numeric_limits<Number>::max();
        } else {
            // Too large and too small look alike here; a wider type tells them apart.
            long double wide = 0;
            std::from_chars(digits.data(), digits.data() + digits.size(), wide);
            value = static_cast<Number>(wide);
        }
    }
    return static_cast<size_t>(result.ptr - text.data());
}

template <typename Number>
std::optional<Number> Take(std::string_view& rest) {
    std::string_view text = rest;
    while (!text.empty() && IsBlank(text.front())) text.remove_prefix(1);
    Number value{};
    const size_t used = Scan(text, value);
    if (used == 0) return std::nullopt;
    rest = text.substr(used);
    return value;
}

std::string_view Print(char (&room)[kNumberRoom], double value, std::chars_format format) {
    const auto result = std::to_chars(room, room + kNumberRoom, value, format, kPrintfPrecision);
    return {room, static_cast<size_t>(result.ptr - room)};
}

}  // namespace

int ParseInt(std::string_view text) { return Take<int>(text).value_or(0); }
float ParseFloat(std::string_view text) { return Take<float>(text).value_or(0.0F); }

void AppendG(std::string& text, double value) {
    char room[kNumberRoom];
    text += Print(room, value, std::chars_format::general);
}

std::string FormatG(double value) {
    char room[kNumberRoom];
    return std::string(Print(room, value, std::chars_format::general));
}

std::string FormatF(double value) {
    char room[kNumberRoom];
    return std::string(Print(room, value, std::chars_format::fixed));
}

std::optional<int> FieldScanner::Int() { return Take<int>(m_rest); }
std::optional<float> FieldScanner::Float() { return Take<float>(m_rest); }

std::optional<std::string_view> FieldScanner::Word() {
    SkipBlanks();
    size_t length = 0;
    while (length < m_rest.size() && !IsBlank(m_rest[length])) ++length;
    if (length == 0) return std::nullopt;
    const std::string_view word = m_rest.substr(0, length);
    m_rest.remove_prefix(length);
    return word;
}

bool FieldScanner::Literal(std::string_view text) {
    if (!m_rest.starts_with(text)) return false;
    m_rest.remove_prefix(text.size());
    return true;
}

std::optional<std::string_view> FieldScanner::Until(char stop) {
    const size_t length = std::min(m_rest.find(stop), m_rest.size());
    if (length == 0) return std::nullopt;
    const std::string_view run = m_rest.substr(0, length);
    m_rest.remove_prefix(length);
    return run;
}

void FieldScanner::SkipBlanks() {
    while (!m_rest.empty() && IsBlank(m_rest.front())) m_rest.remove_prefix(1);
}

}  // namespace tavrin

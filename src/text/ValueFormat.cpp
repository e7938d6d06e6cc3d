// SPDX-License-Identifier: Apache-2.0
#include "text/ValueFormat.h"

#include <clocale>
#include <cmath>
#include <cstdint>
#include <cstdio>
#include <limits>
#include <span>

#include "text/Numbers.h"

namespace tavrin {

namespace {

constexpr size_t kMostDigits = 3;  // of a width or a precision; more would only ask for memory
constexpr std::string_view kFlags = "-+ #0";

// Runs printf in the C locale on this thread.
class CLocaleScope {
  public:
    CLocaleScope() : m_previous(::uselocale(CLocale())) {}
    CLocaleScope(const CLocaleScope&) = delete;
    CLocaleScope& operator=(const CLocaleScope&) = delete;
    ~CLocaleScope() { ::uselocale(m_previous); }

  private:
    static locale_t CLocale() {
        static const locale_t locale = ::newlocale(LC_ALL_MASK, "C", nullptr);
        return locale;
    }
    locale_t m_previous;
};

bool IsDigit(char c) { return c >= '0' && c <= '9'; }

// One conversion: '%', flags, width and precision, a length modifier, the letter.
struct Conversion {
    std::string_view text;    // the whole
    std::string_view spec;    // up to the modifier
    std::string_view length;  // the modifier
    char letter = 0;          // 0 if this is no conversion that is honoured
};

constexpr std::string_view kFloatLetters = "aAeEfFgG";
constexpr std::string_view kIntegerLetters = "diuoxX";

bool IsOneOf(char c, std::string_view letters) { return letters.find(c) != std::string_view::npos; }

std::string_view LengthModifier(std::string_view text) {
    for (const std::string_view modifier : {"hh", "ll", "h", "l", "L", "j", "z", "t"}) {
        if (text.starts_with(modifier)) return modifier;
    }
    return {};
}

// What C says of the letter with this modifier and these flags. "%ls" it allows, but for a text of another
// kind.
bool IsAllowed(const Conversion& conversion) {
    const std::string_view length = conversion.length;
    if (IsOneOf(conversion.letter, kFloatLetters)) return length.empty() || length == "l" || length == "L";
    if (!IsOneOf(conversion.letter, kIntegerLetters))
        return (conversion.letter == 's' || conversion.letter == '%') && length.empty();
    const bool isHexOrOctal = IsOneOf(conversion.letter, "oxX");
    return length != "L" && (isHexOrOctal || conversion.spec.find('#') == std::string_view::npos);
}

size_t CountDigits(std::string_view text, size_t from) {
    size_t count = 0;
    while (from + count < text.size() && IsDigit(text[from + count])) ++count;
    return count;
}

Conversion ParseConversion(std::string_view pattern) {
    size_t i = 1;
    while (i < pattern.size() && kFlags.find(pattern[i]) != std::string_view::npos && i <= kFlags.size()) ++i;
    const size_t width = CountDigits(pattern, i);
    i += width;
    size_t precision = 0;
    if (i < pattern.size() && pattern[i] == '.') {
        precision = CountDigits(pattern, i + 1);
        i += 1 + precision;
    }
    if (width > kMostDigits || precision > kMostDigits) return {};
    const std::string_view length = LengthModifier(pattern.substr(i));
    const size_t end = i + length.size();
    if (end >= pattern.size()) return {};
    const Conversion conversion{pattern.substr(0, end + 1), pattern.substr(0, i), length, pattern[end]};
    return IsAllowed(conversion) ? conversion : Conversion{};
}

// The format takes one argument, of the type that is passed.
template <typename Number>
void AppendPrinted(std::string& result, const std::string& format, Number value) {
    const CLocaleScope locale;
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wformat-nonliteral"  // put together letter by letter below
    const int length = std::snprintf(nullptr, 0, format.c_str(), value);
    if (length <= 0) return;
    const size_t before = result.size();
    result.resize(before + static_cast<size_t>(length) + 1);
    std::snprintf(result.data() + before, static_cast<size_t>(length) + 1, format.c_str(), value);
#pragma GCC diagnostic pop
    result.resize(before + static_cast<size_t>(length));
}

// The whole part, at the nearest end of the range if it lies outside; 0 for what is no number.
template <typename Integer>
Integer WholePart(double value) {
    using Limits = std::numeric_limits<Integer>;
    if (std::isnan(value)) return 0;
    if (value <= static_cast<double>(Limits::min())) return Limits::min();
    if (value >= static_cast<double>(Limits::max())) return Limits::max();
    return static_cast<Integer>(value);
}

// The values are doubles, whatever length a pattern speaks of: what is printed is the value in the widest
// type of the conversion's kind, which no length makes shorter.
void AppendNumber(std::string& result, const Conversion& conversion, double value) {
    const std::string spec(conversion.spec);
    if (IsOneOf(conversion.letter, "di")) {
        AppendPrinted(result, spec + "j" + conversion.letter, WholePart<std::intmax_t>(value));
    } else if (IsOneOf(conversion.letter, kIntegerLetters)) {
        AppendPrinted(result, spec + "j" + conversion.letter, WholePart<std::uintmax_t>(value));
    } else if (conversion.letter == 'g' && spec == "%") {
        AppendG(result, value);
    } else {
        AppendPrinted(result, spec + conversion.letter, value);
    }
}

// Width and precision of %s, done here because the value may hold any bytes.
void AppendPadded(std::string& result, const Conversion& conversion, std::string_view value) {
    std::string_view spec = conversion.spec.substr(1);
    bool left = false;
    while (!spec.empty() && kFlags.find(spec.front()) != std::string_view::npos) {
        left = left || spec.front() == '-';  // the other flags have no effect on text
        spec.remove_prefix(1);
    }
    const auto dot = spec.find('.');
    const auto width = static_cast<size_t>(ParseInt(spec.substr(0, dot)));
    if (dot != std::string_view::npos)
        value = value.substr(0, static_cast<size_t>(ParseInt(spec.substr(dot + 1))));
    const std::string padding(width > value.size() ? width - value.size() : 0, ' ');
    if (!left) result += padding;
    result += value;
    if (left) result += padding;
}

// Walks the pattern; `convert` appends what a conversion gives and says whether it took it.
template <typename Convert>
std::string Format(std::string_view pattern, Convert convert) {
    std::string result;
    while (!pattern.empty()) {
        const size_t run = std::min(pattern.find('%'), pattern.size());
        result += pattern.substr(0, run);
        pattern.remove_prefix(run);
        if (pattern.empty()) break;
        const Conversion conversion = ParseConversion(pattern);
        if (conversion.letter == '%') {
            result += '%';
            pattern.remove_prefix(conversion.text.size());
        } else if (conversion.letter != 0 && convert(result, conversion)) {
            pattern.remove_prefix(conversion.text.size());
        } else {
            result += '%';
            pattern.remove_prefix(1);
        }
    }
    return result;
}

}  // namespace

std::string FormatNumbers(std::string_view pattern, std::initializer_list<double> values) {
    std::span<const double> left(values.begin(), values.size());
    return Format(pattern, [&left](std::string& result, const Conversion& conversion) {
        if (conversion.letter == 's') return false;
        if (left.empty()) return true;
        AppendNumber(result, conversion, left.front());
        left = left.subspan(1);
        return true;
    });
}

std::string FormatString(std::string_view pattern, std::string_view value) {
    bool taken = false;
    return Format(pattern, [&taken, value](std::string& result, const Conversion& conversion) {
        if (conversion.letter != 's') return false;
        if (!taken) AppendPadded(result, conversion, value);
        taken = true;
        return true;
    });
}

}  // namespace tavrin

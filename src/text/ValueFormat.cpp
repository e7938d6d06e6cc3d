#include "text/ValueFormat.h"

#include <clocale>
#include <cstdio>
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

// One conversion: the '%', its flags, width and precision, and the letter.
struct Conversion {
    std::string_view text;
    char letter = 0;  // 0 if this is no conversion that is honoured
};

size_t CountDigits(std::string_view text, size_t from) {
    size_t count = 0;
    while (from + count < text.size() && IsDigit(text[from + count])) ++count;
    return count;
}

Conversion ParseConversion(std::string_view pattern) {
    constexpr std::string_view kLetters = "aAeEfFgGs%";
    size_t i = 1;
    while (i < pattern.size() && kFlags.find(pattern[i]) != std::string_view::npos && i <= kFlags.size()) ++i;
    const size_t width = CountDigits(pattern, i);
    i += width;
    size_t precision = 0;
    if (i < pattern.size() && pattern[i] == '.') {
        precision = CountDigits(pattern, i + 1);
        i += 1 + precision;
    }
    if (width > kMostDigits || precision > kMostDigits || i >= pattern.size()) return {};
    if (kLetters.find(pattern[i]) == std::string_view::npos) return {};
    return {pattern.substr(0, i + 1), pattern[i]};
}

void AppendNumber(std::string& result, const Conversion& conversion, double value) {
    if (conversion.text == "%g") return AppendG(result, value);
    const std::string format(conversion.text);
    const CLocaleScope locale;
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wformat-nonliteral"  // checked letter by letter above
    const int length = std::snprintf(nullptr, 0, format.c_str(), value);
    if (length <= 0) return;
    const size_t before = result.size();
    result.resize(before + static_cast<size_t>(length) + 1);
    std::snprintf(result.data() + before, static_cast<size_t>(length) + 1, format.c_str(), value);
#pragma GCC diagnostic pop
    result.resize(before + static_cast<size_t>(length));
}

// Width and precision of %s, done here because the value may hold any bytes.
void AppendPadded(std::string& result, const Conversion& conversion, std::string_view value) {
    std::string_view spec = conversion.text.substr(1, conversion.text.size() - 2);
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

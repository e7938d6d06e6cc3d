// SPDX-License-Identifier: Apache-2.0
#include "forms/FormValues.h"

#include <locale.h>
#include <stdlib.h>

#include <algorithm>
#include <cmath>

#include "text/StoredText.h"
#include "text/Tokens.h"
#include "text/ValueFormat.h"

namespace tavrin {

namespace {

// atof in double precision by the C locale's rules, whatever the user's locale is.
double LeadingNumber(const std::string& text) {
    static const locale_t cLocale = ::newlocale(LC_ALL_MASK, "C", nullptr);
    return ::strtod_l(text.c_str(), nullptr, cLocale);
}

char LowerCase(char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c; }

}  // namespace

std::string ForceFloat(const std::string& text) {
    const double number = LeadingNumber(text);
    if (!std::isfinite(number) || number != std::floor(number)) return text;
    return FormatNumbers("%.1f", {number});
}

FormPair SplitPair(std::string_view text) {
    text = Trim(text);
    const auto split = text.find_first_not_of("0123456789.", 1);
    if (split == std::string_view::npos) return {std::string(text), {}};
    return {std::string(text.substr(0, split)), std::string(text.substr(split + 1))};
}

void CheckOptionName(const std::string& name, std::vector<std::string>& faults) {
    if (name.empty() || IsBareToken(name)) return;
    faults.push_back("documents cannot keep the option \"" + OneLine(name) + "\": " + kBareTokenRule +
                     ", or notavrnsave");
}

bool BeginsWith(std::string_view text, std::string_view prefix) {
    return text.size() >= prefix.size() && EqualText(text.substr(0, prefix.size()), prefix);
}

bool EqualText(std::string_view a, std::string_view b) {
    return std::equal(a.begin(), a.end(), b.begin(), b.end(),
                      [](char left, char right) { return LowerCase(left) == LowerCase(right); });
}

}  // namespace tavrin

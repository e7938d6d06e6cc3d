// SPDX-License-Identifier: Apache-2.0
#include "text/StoredText.h"

#include <algorithm>

#include "text/Tokens.h"

namespace tavrin {

bool IsBareToken(std::string_view text) {
    const auto endsOrChanges = [](char c) { return IsBlank(c) || c == '#' || c == '"' || c == '\\'; };
    return !text.empty() && std::none_of(text.begin(), text.end(), endsOrChanges);
}

std::string TokenText(std::string_view text) {
    return IsBareToken(text) ? std::string(text) : QuoteString(text);
}

std::string OneLine(std::string_view text) {
    std::string result;
    result.reserve(text.size());
    for (size_t i = 0; i < text.size(); ++i) {
        const bool isPair = text[i] == '\r' && i + 1 < text.size() && text[i + 1] == '\n';
        if (isPair) continue;  // its line feed gives the blank
        result += text[i] == '\r' || text[i] == '\n' ? ' ' : text[i];
    }
    return result;
}

}  // namespace tavrin

// SPDX-License-Identifier: Apache-2.0
#include "codegen/Mex.h"

#include <algorithm>
#include <array>
#include <cstdio>
#include <cstdlib>

namespace tavrin {

namespace {

// Letters, digits and '_' as isalnum tells them in the C locale: bytes above 127 are none.
constexpr std::array<bool, 256> kWordTable = [] {
    std::array<bool, 256> table{};
    for (size_t c = '0'; c <= '9'; ++c) table[c] = true;
    for (size_t c = 'A'; c <= 'Z'; ++c) table[c] = true;
    for (size_t c = 'a'; c <= 'z'; ++c) table[c] = true;
    table['_'] = true;
    return table;
}();

bool IsWord(char c) { return kWordTable[static_cast<unsigned char>(c)]; }

size_t WordLength(std::string_view text, size_t from) {
    size_t end = from;
    while (end < text.size() && IsWord(text[end])) ++end;
    return end - from;
}

// The first token of the list that begins at `i`; empty if none does.
std::string_view TokenAt(const std::vector<std::string>& tokens, std::string_view text, size_t i) {
    for (const std::string& token : tokens) {
        if (!token.empty() && text.substr(i).starts_with(token)) return token;
    }
    return {};
}

bool Holds(const std::vector<char>& characters, char c) {
    return std::find(characters.begin(), characters.end(), c) != characters.end();
}

[[noreturn]] void DieOfUnknownState(int state) {
    std::printf("CMex::Expand: unknown m_state %d\n", state);
    std::fflush(stdout);
    std::exit(-1);
}

}  // namespace

void CMex::Reset() { *this = CMex(); }

void CMex::Expand(std::string_view text, std::string& result) {
    result.clear();
    Append(text, result);
}

std::string CMex::Expanded(std::string_view text) const {
    std::string result;
    if (IsPlain()) {
        ExpandBare(text, result);
    } else {
        CMex(*this).Append(text, result);
    }
    return result;
}

void CMex::ExpandLines(std::vector<std::string>& lines) {
    BeginLines();
    for (const std::string& line : m_lines) ExpandLine(line, lines);
}

void CMex::BeginLines() {
    m_state = kPlain;
    m_lineCounter = 0;
}

void CMex::ExpandLine(std::string_view line, std::vector<std::string>& lines) {
    std::string& result = lines.emplace_back();
    result.reserve(line.size());
    Append(line, result);
    ++m_lineCounter;
}

void CMex::Append(std::string_view text, std::string& result) {
    if (text.empty()) return;
    if (IsPlain()) return ExpandBare(text, result);
    for (size_t i = 0; i < text.size(); ++i) Step(text, i, result);
    EndText();
}

void CMex::EndText() {
    if (m_state == kInLineComment) m_state = kPlain;
    if (m_state < kPlain || m_state > kInLineComment) DieOfUnknownState(m_state);
}

size_t CMex::BraceFinder::Next(size_t from) {
    if (!searched || known < from) known = text.find('}', from);
    searched = true;
    return known;
}

bool CMex::TryVariable(std::string_view text, size_t& i, BraceFinder& braces, std::string& result) const {
    size_t start = i;
    size_t length = 0;
    size_t past = 0;
    if (text.substr(i).starts_with("${")) {
        start = i + 2;
        const size_t brace = braces.Next(start);
        if (brace == std::string_view::npos) return false;
        length = brace - start;
        past = brace + 1;
    } else {
        length = WordLength(text, i);
        if (length == 0) return false;
        past = i + length;
    }
    const VariableList::Found variable = m_variables.Find(text.substr(start, length));
    if (!variable.found) return false;
    result += variable.value;
    i = past;
    return true;
}

// What the steps below come to while no token list is filled: runs of plain text are copied whole.
void CMex::ExpandBare(std::string_view text, std::string& result) const {
    BraceFinder braces{text};
    size_t i = 0;
    while (i < text.size()) {
        const size_t plain = i;
        while (i < text.size() && !IsWord(text[i]) && text[i] != '$') ++i;
        result += text.substr(plain, i - plain);
        if (i == text.size()) return;
        if (TryVariable(text, i, braces, result)) continue;
        const size_t copied = text[i] == '$' ? 1 : WordLength(text, i);
        result += text.substr(i, copied);
        i += copied;
    }
}

void CMex::Step(std::string_view text, size_t& i, std::string& result) {
    const char c = text[i];
    switch (m_state) {
        case kPlain:
            StepPlain(text, i, result);
            return;
        case kEscaped:
            result += c;
            m_state = kPlain;
            return;
        case kInQuotes:
            result += c;
            if (Holds(m_syntax.quotes, c)) m_state = kPlain;
            return;
        case kInComment: {
            const std::string_view close = TokenAt(m_syntax.closeComments, text, i);
            if (m_syntax.keepComments) result += close.empty() ? text.substr(i, 1) : close;
            if (close.empty()) return;
            m_state = kPlain;
            i += close.size() - 1;
            return;
        }
        case kAfterStrayClose:
            return;
        case kInLineComment:
            if (m_syntax.keepComments) result += c;
            return;
        default:
            DieOfUnknownState(m_state);
    }
}

void CMex::StepPlain(std::string_view text, size_t& i, std::string& result) {
    const char c = text[i];
    if (Holds(m_syntax.escapes, c)) return Enter(kEscaped);
    if (Holds(m_syntax.quotes, c)) {
        result += c;
        return Enter(kInQuotes);
    }
    struct Mark {
        const std::vector<std::string>& tokens;
        State next;
    };
    for (const Mark& mark :
         {Mark{m_syntax.openComments, kInComment}, Mark{m_syntax.closeComments, kAfterStrayClose},
          Mark{m_syntax.lineComments, kInLineComment}}) {
        const std::string_view token = TokenAt(mark.tokens, text, i);
        if (token.empty()) continue;
        if (m_syntax.keepComments && mark.next != kAfterStrayClose) result += token;
        i += token.size() - 1;
        return Enter(mark.next);
    }
    BraceFinder braces{text};
    size_t past = i;
    if (!TryVariable(text, past, braces, result)) {
        past = i + std::max<size_t>(WordLength(text, i), 1);
        result += text.substr(i, past - i);
    }
    i = past - 1;
}

}  // namespace tavrin

// SPDX-License-Identifier: Apache-2.0
#include "text/VisibleText.h"

#include <algorithm>
#include <array>
#include <cstdio>

namespace tavrin {

namespace {

constexpr size_t kLongestProgress = 6;  // a carriage return, blanks and digits, the percent sign

// The signs that turn the direction of writing, in UTF-8.
struct Sign {
    std::string_view bytes;
    std::string_view shown;
};
constexpr std::array<Sign, 12> kSigns = {{{"\xd8\x9c", "\\u{61c}"},
                                          {"\xe2\x80\x8e", "\\u{200e}"},
                                          {"\xe2\x80\x8f", "\\u{200f}"},
                                          {"\xe2\x80\xaa", "\\u{202a}"},
                                          {"\xe2\x80\xab", "\\u{202b}"},
                                          {"\xe2\x80\xac", "\\u{202c}"},
                                          {"\xe2\x80\xad", "\\u{202d}"},
                                          {"\xe2\x80\xae", "\\u{202e}"},
                                          {"\xe2\x81\xa6", "\\u{2066}"},
                                          {"\xe2\x81\xa7", "\\u{2067}"},
                                          {"\xe2\x81\xa8", "\\u{2068}"},
                                          {"\xe2\x81\xa9", "\\u{2069}"}}};
constexpr char kUpperLead = '\xc2';  // before a control character beyond 0x7F, in UTF-8

bool IsUpperControl(char c) { return (static_cast<unsigned char>(c) & 0xE0U) == 0x80U; }
bool IsContinuation(char c) { return (static_cast<unsigned char>(c) & 0xC0U) == 0x80U; }

std::string Escaped(char c) {
    char text[8];
    std::snprintf(text, sizeof text, "\\x%02x", static_cast<unsigned>(static_cast<unsigned char>(c)));
    return text;
}

bool BeginsSign(std::string_view held) {
    return std::any_of(kSigns.begin(), kSigns.end(),
                       [held](const Sign& sign) { return sign.bytes.starts_with(held); });
}

// Of "\r", blanks, up to three digits and "%".
bool BeginsProgress(std::string_view held) {
    if (!held.starts_with('\r') || held.size() > kLongestProgress) return false;
    const size_t number = std::min(held.find_first_not_of(' ', 1), held.size());
    const size_t end = std::min(held.find_first_not_of("0123456789", number), held.size());
    return end == held.size() || (held[end] == '%' && end > number && end + 1 == held.size());
}

}  // namespace

std::string VisibleText::Add(std::string_view piece) {
    std::string shown;
    shown.reserve(piece.size());
    for (const char c : piece) Take(shown, c);
    return shown;
}

std::string VisibleText::End() {
    std::string shown;
    Settle(shown);
    return shown;
}

void VisibleText::Take(std::string& shown, char c) {
    if (!m_held.empty() && !Continues(c)) {
        if (m_held == "\r" && c == '\n') {
            m_held.clear();
        } else {
            Settle(shown);
        }
    }
    const bool begins = c == '\r' || c == kUpperLead || BeginsSign(std::string_view(&c, 1));
    if (m_held.empty() && !begins) return TakePlain(shown, c);
    m_held += c;
    if (m_held.size() > 1 && m_held.front() == kUpperLead) {
        shown += IsUpperControl(c) ? "\\u{" + Escaped(c).substr(2) + "}" : m_held;
    } else if (m_held.size() > 1 && m_held.back() == '%') {
        m_line = Line::kProgress;
        shown += m_held;
        m_held.clear();
        return;
    } else if (const auto sign = std::find_if(kSigns.begin(), kSigns.end(),
                                              [this](const Sign& one) { return one.bytes == m_held; });
               sign != kSigns.end()) {
        shown += sign->shown;
    } else {
        return;
    }
    m_line = Line::kText;
    m_tail = 0;
    m_held.clear();
}

void VisibleText::TakePlain(std::string& shown, char c) {
    const auto byte = static_cast<unsigned char>(c);
    m_line = c == '\n' ? Line::kEmpty : Line::kText;
    const bool isControl = (byte < ' ' && c != '\n' && c != '\t') || byte == 0x7F;
    if (isControl || (IsContinuation(c) && m_tail == 0 && IsUpperControl(c))) {
        shown += Escaped(c);
    } else {
        shown += c;
    }
    if (IsContinuation(c)) {
        m_tail = std::max(0, m_tail - 1);
    } else {
        m_tail = byte >= 0xF0 ? 3 : byte >= 0xE0 ? 2 : byte >= 0xC0 ? 1 : 0;
    }
}

// Whether what is held may still become one of the signs with it.
bool VisibleText::Continues(char c) const {
    if (m_held.front() == kUpperLead) return IsContinuation(c);
    const std::string longer = m_held + c;
    if (m_held.front() == '\r') return m_line != Line::kText && BeginsProgress(longer);
    return BeginsSign(longer);
}

// What is held is none of the signs.
void VisibleText::Settle(std::string& shown) {
    const std::string held = std::move(m_held);
    m_held.clear();
    for (const char c : held) {
        if (c == '\r') {
            shown += "\\r";
            m_line = Line::kText;
        } else {
            TakePlain(shown, c);
        }
    }
}

std::string VisibleOneLine(std::string_view text) {
    VisibleText visible;
    std::string shown;
    for (const char c : text) {
        const char* breaks = c == '\n' ? "\\n" : c == '\r' ? "\\r" : c == '\t' ? "\\t" : nullptr;
        shown += breaks == nullptr ? visible.Add(std::string_view(&c, 1)) : visible.End() + breaks;
    }
    return shown + visible.End();
}

}  // namespace tavrin

// SPDX-License-Identifier: Apache-2.0
#include "render/PictureMessage.h"

#include <algorithm>
#include <charconv>
#include <utility>

namespace tavrin {

namespace {

constexpr char kHex[] = "0123456789ABCDEF";

bool IsName(std::string_view text) {
    constexpr size_t kLongest = 32;
    return !text.empty() && text.size() <= kLongest &&
           std::all_of(text.begin(), text.end(), [](char c) { return c >= 'a' && c <= 'z'; });
}

bool IsPlain(char c) { return c != '%' && c != '\x7f' && static_cast<unsigned char>(c) > ' '; }

std::string Encoded(std::string_view text) {
    std::string encoded;
    for (const char c : text) {
        if (IsPlain(c)) {
            encoded += c;
            continue;
        }
        const auto byte = static_cast<unsigned char>(c);
        encoded += {'%', kHex[byte >> 4], kHex[byte & 15]};
    }
    return encoded;
}

std::optional<std::string> Decoded(std::string_view text) {
    std::string decoded;
    for (size_t at = 0; at < text.size(); ++at) {
        if (text[at] != '%') {
            if (!IsPlain(text[at])) return std::nullopt;
            decoded += text[at];
            continue;
        }
        const std::string_view digits = text.substr(at + 1, 2);
        unsigned byte = 0;
        const auto [end, error] = std::from_chars(digits.data(), digits.data() + digits.size(), byte, 16);
        if (digits.size() < 2 || error != std::errc() || end != digits.data() + digits.size())
            return std::nullopt;
        decoded += static_cast<char>(byte);
        at += 2;
    }
    return decoded;
}

}  // namespace

std::string PictureMessage::Text(const std::string& key) const {
    const auto found = m_words.find(key);
    return found == m_words.end() ? std::string() : found->second;
}

std::optional<int64_t> PictureMessage::Number(const std::string& key) const {
    const auto found = m_words.find(key);
    if (found == m_words.end()) return std::nullopt;
    const std::string& text = found->second;
    int64_t number = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number);
    if (text.empty() || error != std::errc() || end != text.data() + text.size()) return std::nullopt;
    return number;
}

PictureMessage& PictureMessage::Set(const std::string& key, std::string_view text) {
    m_words[key] = text.substr(0, kLongestValue);
    return *this;
}

PictureMessage& PictureMessage::Set(const std::string& key, int64_t number) {
    return Set(key, std::to_string(number));
}

std::string PictureMessage::Line() const {
    std::string line = m_verb;
    for (const auto& [key, text] : m_words) {
        const std::string word = " " + key + "=" + Encoded(text);
        if (line.size() + word.size() < kLongestLine) line += word;
    }
    return line + "\n";
}

std::optional<PictureMessage> PictureMessage::Parse(std::string_view line) {
    if (line.size() >= kLongestLine) return std::nullopt;
    const auto nextWord = [&line] {
        const std::string_view word = line.substr(0, line.find(' '));
        line.remove_prefix(std::min(line.size(), word.size() + 1));
        return word;
    };
    const std::string_view verb = nextWord();
    if (!IsName(verb)) return std::nullopt;
    PictureMessage message{std::string(verb)};
    while (!line.empty()) {
        const std::string_view word = nextWord();
        const size_t equals = word.find('=');
        if (equals == std::string_view::npos || !IsName(word.substr(0, equals))) return std::nullopt;
        const auto value = Decoded(word.substr(equals + 1));
        if (!value || value->size() > kLongestValue) return std::nullopt;
        message.m_words[std::string(word.substr(0, equals))] = *value;
        if (message.m_words.size() > kMostWords) return std::nullopt;
    }
    return message;
}

std::optional<PictureMessage> PictureMessageReader::Next() {
    for (;;) {
        const size_t end = m_bytes.find('\n');
        if (end == std::string::npos) {
            if (m_bytes.size() >= PictureMessage::kLongestLine) m_isSkipping = true;
            if (m_isSkipping) m_bytes.clear();
            return std::nullopt;
        }
        const std::string line = m_bytes.substr(0, end);
        m_bytes.erase(0, end + 1);
        if (std::exchange(m_isSkipping, false)) continue;
        if (auto message = PictureMessage::Parse(line)) return message;
    }
}

}  // namespace tavrin

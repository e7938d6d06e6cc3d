// SPDX-License-Identifier: Apache-2.0
// What the desk and the picture window say to each other: a line each, bounded.
#pragma once

#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <string_view>

namespace tavrin {

// A verb and words "key=value". Verbs and keys are small letters. On the line, '%', blanks, controls and DEL
// of a value are percent-encoded, so that a line is blanks between words and nothing else. A plain value.
class PictureMessage {
  public:
    static constexpr size_t kLongestLine = 64 << 10;  // bytes, with its line feed
    static constexpr size_t kLongestValue = 4096;     // bytes; no path is longer
    static constexpr size_t kMostWords = 24;

    explicit PictureMessage(std::string verb = {}) : m_verb(std::move(verb)) {}

    const std::string& Verb() const { return m_verb; }
    bool Has(const std::string& key) const { return m_words.contains(key); }
    // Empty where there is no such word.
    std::string Text(const std::string& key) const;
    // None where there is no such word, or it is no whole number.
    std::optional<int64_t> Number(const std::string& key) const;

    // Both return the message itself. A value that is too long is cut.
    PictureMessage& Set(const std::string& key, std::string_view text);
    PictureMessage& Set(const std::string& key, int64_t number);

    // With the line feed. A word that does not fit any more is left out.
    std::string Line() const;
    // A line without its line feed; none if it is no message.
    static std::optional<PictureMessage> Parse(std::string_view line);

    bool operator==(const PictureMessage&) const = default;

  private:
    std::string m_verb;
    std::map<std::string, std::string> m_words;
};

// Cuts what comes over a connection into messages, whoever is at the other end: it keeps no more than a line,
// and what is no message, a line that is too long among it, is passed over.
class PictureMessageReader {
  public:
    // To be followed by calls of Next until there is none.
    void Add(std::string_view bytes) { m_bytes += bytes; }
    std::optional<PictureMessage> Next();

  private:
    std::string m_bytes;
    bool m_isSkipping = false;  // the rest of a line that is too long
};

}  // namespace tavrin

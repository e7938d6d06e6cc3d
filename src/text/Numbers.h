// SPDX-License-Identifier: Apache-2.0
// Numbers as text, always by the rules of the C locale, whatever the user's locale is.
#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace tavrin {

// The leading number of the text as by atoi and atof: white space first, then as much as fits; 0 if there
// is none. Integers outside 32 bits are held at the nearest end of the range.
int ParseInt(std::string_view text);
float ParseFloat(std::string_view text);

// "%g" and "%f" of the C library.
std::string FormatG(double value);
void AppendG(std::string& text, double value);
std::string FormatF(double value);

// Walks a text by scanf's rules, one conversion at a time. A conversion that does not fit leaves the
// position where it was.
class FieldScanner {
  public:
    explicit FieldScanner(std::string_view text) : m_rest(text) {}

    std::optional<int> Int();                // %d
    std::optional<float> Float();            // %g
    std::optional<std::string_view> Word();  // %s
    bool Literal(std::string_view text);     // the text exactly, blanks not passed over
    // One or more characters up to but without `stop`; %[^stop].
    std::optional<std::string_view> Until(char stop);
    void SkipBlanks();
    std::string_view Rest() const { return m_rest; }

  private:
    std::string_view m_rest;
};

}  // namespace tavrin

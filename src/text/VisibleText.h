// SPDX-License-Identifier: Apache-2.0
// Text from files as a terminal or a message box may show it.
#pragma once

#include <string>
#include <string_view>

namespace tavrin {

// Makes visible what would steer a terminal or have letters stand elsewhere than where they are read: control
// characters as "\x1b", those beyond 0x7F and the signs that turn the direction of writing as "\u{202e}".
// Line ends (LF, CR LF) and tabs stay. A carriage return within a line is "\r", so that no text is written
// over another; a percentage alone on its line may still replace the one before it, as progress is shown. All
// other text passes as it stands, bytes that are no UTF-8 among it. Owned by who prints, one for each stream.
class VisibleText {
  public:
    // What may be shown with this piece; its end may be kept back until more has come.
    std::string Add(std::string_view piece);
    // What was kept back.
    std::string End();

  private:
    enum class Line { kEmpty, kProgress, kText };

    void Take(std::string& shown, char c);
    void TakePlain(std::string& shown, char c);
    bool Continues(char c) const;
    void Settle(std::string& shown);

    Line m_line = Line::kEmpty;
    std::string m_held;  // the beginning of what may be one of the signs or a line end
    int m_tail = 0;      // bytes of a UTF-8 character that are still to come
};

// A text as a whole, such as a path, in which a line break is visible too: "\n".
std::string VisibleOneLine(std::string_view text);

}  // namespace tavrin

// SPDX-License-Identifier: Apache-2.0
// The field of a text of the document that stands on one line.
#pragma once

#include <QLineEdit>
#include <functional>
#include <string>

namespace tavrin {

// A child of its row or panel, which says what the text means. What the program shows in it is told to
// nobody, and its bytes are told only once the user has changed the text. What he brings of several lines
// becomes one. Nothing is cut: what would make the text too long is refused as a whole, and a text that is
// too long already can be read but not edited.
class OneLineField : public QLineEdit {
  public:
    static constexpr int kMostCharacters = 32767;

    using Edited = std::function<void(const std::string& bytes)>;
    // `edited` is called at each change of the user's.
    OneLineField(QWidget* parent, Edited edited);

    // One that is shown already is left alone, with its caret and its undo steps.
    void ShowText(const std::string& bytes);
    // What the document is to hold: the bytes that were shown, until the user has changed the text.
    const std::string& Text() const { return m_bytes; }

  protected:
    void keyPressEvent(QKeyEvent* event) override;

  private:
    class LineRule;
    void OnEdited();

    Edited m_edited;
    std::string m_bytes;  // what is shown
    bool m_isLatin1 = false;
    bool m_isShowing = false;  // the program is changing the text
};

}  // namespace tavrin

// SPDX-License-Identifier: Apache-2.0
// The field of a text of the document that stands on one line.
#pragma once

#include <QLineEdit>
#include <functional>
#include <string>

namespace tavrin {

// A child of its panel. What the program itself shows in it is told to nobody. Line breaks that come in, as
// with a paste, become blanks. A text that is longer than a field takes is shown and cannot be edited here,
// so that nothing of it is lost; one that would become so by a paste is refused, and the former text stands.
class TextField : public QLineEdit {
  public:
    // `typed` gets the bytes for the document.
    TextField(QWidget* parent, const QString& name, std::function<void(const std::string&)> typed);

    // Shows the document's text. One that is shown already is left alone with its caret.
    void ShowText(const std::string& bytes);
    // What the document is to hold: the bytes that were shown, until the user has changed the text.
    const std::string& Text() const { return m_bytes; }

  private:
    void Edited();

    std::function<void(const std::string&)> m_typed;
    std::string m_bytes;
    bool m_isLatin1 = false;
};

}  // namespace tavrin

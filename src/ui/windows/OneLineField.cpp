// SPDX-License-Identifier: Apache-2.0
#include "ui/windows/OneLineField.h"

#include <QClipboard>
#include <QGuiApplication>
#include <QKeyEvent>
#include <QValidator>
#include <algorithm>
#include <utility>

#include "ui/base/DocumentText.h"

namespace tavrin {

// The one place that every way into the field passes: keys, the clipboard, a drop, an input method. What it
// refuses, the toolkit takes back.
class OneLineField::LineRule : public QValidator {
  public:
    explicit LineRule(OneLineField* field) : QValidator(field), m_field(*field) {}
    State validate(QString& input, int&) const override {
        if (m_field.m_isShowing) return Acceptable;
        if (input.size() > kMostCharacters) return Invalid;
        QString line = OnOneLine(input);
        if (line != input) input = std::move(line);
        return Acceptable;
    }

  private:
    const OneLineField& m_field;
};

OneLineField::OneLineField(QWidget* parent, Edited edited) : QLineEdit(parent), m_edited(std::move(edited)) {
    // The toolkit would cut there; one more lets the rule see what is too long, and costs no more than that
    // however long it is.
    setMaxLength(kMostCharacters + 1);
    setValidator(new LineRule(this));
    connect(this, &QLineEdit::textEdited, this, [this] { OnEdited(); });
}

void OneLineField::ShowText(const std::string& bytes) {
    if (bytes == m_bytes) return;
    DocumentText shown = Decoded(bytes);
    m_bytes = bytes;
    m_isLatin1 = shown.isLatin1;
    if (shown.text == text()) return;
    const bool isTooLong = shown.text.size() > kMostCharacters;
    const int room = isTooLong ? static_cast<int>(shown.text.size()) : kMostCharacters + 1;
    const int caret = hasFocus() ? cursorPosition() : 0;
    m_isShowing = true;
    if (room != maxLength()) setMaxLength(room);
    setText(shown.text);
    m_isShowing = false;
    setReadOnly(isTooLong);
    setToolTip(isTooLong ? QString("Too long to be edited here") : QString());
    setCursorPosition(std::min(caret, static_cast<int>(shown.text.size())));
}

// Brought as one line, a text of several can be undone; made one line afterwards, as by the rule, it cannot.
void OneLineField::keyPressEvent(QKeyEvent* event) {
    if (event->matches(QKeySequence::Paste) && !isReadOnly()) {
        const QString brought = QGuiApplication::clipboard()->text();
        const QString line = OnOneLine(brought);
        if (line != brought) {
            event->accept();
            insert(line);
            return;
        }
    }
    QLineEdit::keyPressEvent(event);
}

void OneLineField::OnEdited() {
    m_bytes = Encoded({text(), m_isLatin1});
    m_edited(m_bytes);
}

}  // namespace tavrin

// SPDX-License-Identifier: Apache-2.0
#include "ui/sliders/TextField.h"

#include <utility>

#include "ui/base/ByteText.h"

namespace tavrin {

namespace {

constexpr int kMaxLength = 32767;  // characters, as many as the toolkit's field takes
constexpr const char* kTooLong = "This text is too long to be edited here";

bool IsBreak(QChar c) {
    return c == u'\n' || c == u'\r' || c == u'\v' || c == u'\f' || c == QChar::LineSeparator ||
           c == QChar::ParagraphSeparator;
}

QString OnOneLine(QString text) {
    text.replace("\r\n", " ");
    for (QChar& c : text) {
        if (IsBreak(c)) c = u' ';
    }
    return text;
}

}  // namespace

TextField::TextField(QWidget* parent, const QString& name, std::function<void(const std::string&)> typed)
    : QLineEdit(parent), m_typed(std::move(typed)) {
    setAccessibleName(name);
    setMaxLength(kMaxLength + 1);  // what reaches it is too long
    connect(this, &QLineEdit::textEdited, this, [this] { Edited(); });
}

void TextField::ShowText(const std::string& bytes) {
    if (bytes == m_bytes && (isReadOnly() || Encoded(text(), m_isLatin1) == bytes)) return;
    m_bytes = bytes;
    const DecodedText shown = Decoded(bytes);
    m_isLatin1 = shown.isLatin1;
    const bool isTooLong = shown.text.size() > kMaxLength;
    setReadOnly(isTooLong);
    setToolTip(isTooLong ? kTooLong : QString());
    setText(shown.text.left(kMaxLength));
    setCursorPosition(0);
}

void TextField::Edited() {
    if (text().size() > kMaxLength) {
        undo();
        return;
    }
    const QString line = OnOneLine(text());
    if (line != text()) {
        const int caret = cursorPosition();
        setText(line);
        setCursorPosition(caret);
    }
    const std::string bytes = Encoded(line, m_isLatin1);
    if (bytes == m_bytes) return;  // as after one that was taken back
    m_bytes = bytes;
    m_typed(m_bytes);
}

}  // namespace tavrin

// SPDX-License-Identifier: Apache-2.0
// Texts of the document as fields show and edit them.
#pragma once

#include <QString>
#include <string>

namespace tavrin {

// Bytes that are no UTF-8 come from documents of other times, when a byte was a letter. They are edited as
// such, and keep their bytes as long as the text can be written so.
struct DocumentText {
    QString text;
    bool isLatin1 = false;  // the bytes are no UTF-8
};

DocumentText Decoded(const std::string& bytes);
// The bytes of a text that has been edited: as UTF-8, unless the former bytes were none.
std::string Encoded(const DocumentText& edited);

// Each end of a line as a blank, for what has to stay on one.
QString OnOneLine(QString text);

// The text as a tool tip that shows it as it is, whatever marks it has in it; the beginning of one that
// would fill the screen.
QString PlainToolTip(const QString& text);

}  // namespace tavrin

// SPDX-License-Identifier: Apache-2.0
// Texts of documents as fields edit them, so that bytes that nobody touched stay what they are.
#pragma once

#include <QString>
#include <string>

namespace tavrin {

// Bytes that are no UTF-8 come from documents of other times, when a byte was a letter.
struct DecodedText {
    QString text;
    bool isLatin1 = false;
};
DecodedText Decoded(const std::string& bytes);

// As UTF-8, unless the text came in single bytes and can go back so.
std::string Encoded(const QString& text, bool wasLatin1);

}  // namespace tavrin

// SPDX-License-Identifier: Apache-2.0
#include "ui/base/ByteText.h"

#include <QStringDecoder>

#include "ui/base/Text.h"

namespace tavrin {

DecodedText Decoded(const std::string& bytes) {
    const QByteArrayView view(bytes.data(), qsizetype(bytes.size()));
    QStringDecoder decoder(QStringDecoder::Utf8);
    const QString text = decoder.decode(view);
    if (!decoder.hasError() && text.toUtf8() == view) return {text, false};
    return {QString::fromLatin1(view), true};
}

std::string Encoded(const QString& text, bool wasLatin1) {
    if (wasLatin1) {
        const std::string bytes = text.toLatin1().toStdString();
        const DecodedText back = Decoded(bytes);
        if (back.isLatin1 && back.text == text) return bytes;
    }
    return Bytes(text);
}

}  // namespace tavrin

// SPDX-License-Identifier: Apache-2.0
#include "ui/base/DocumentText.h"

#include <QStringDecoder>
#include <QTextDocument>

#include "ui/base/Text.h"

namespace tavrin {

namespace {

constexpr qsizetype kLongestToolTip = 4000;  // characters

}  // namespace

DocumentText Decoded(const std::string& bytes) {
    const QByteArrayView view(bytes.data(), qsizetype(bytes.size()));
    QStringDecoder decoder(QStringDecoder::Utf8);
    const QString text = decoder.decode(view);  // without a mark of the byte order, which is to stay
    if (!decoder.hasError() && text.toUtf8() == view) return {text, false};
    return {QString::fromLatin1(view), true};
}

std::string Encoded(const DocumentText& edited) {
    if (edited.isLatin1) {
        const std::string bytes = edited.text.toLatin1().toStdString();
        if (Decoded(bytes).text == edited.text) return bytes;
    }
    return Bytes(edited.text);
}

QString OnOneLine(QString text) {
    text.replace("\r\n", " ");
    for (const QChar end : {QChar(u'\n'), QChar(u'\r'), QChar(u'\v'), QChar(u'\f'), QChar(u'\x85'),
                            QChar(QChar::LineSeparator), QChar(QChar::ParagraphSeparator)}) {
        text.replace(end, u' ');
    }
    return text;
}

QString PlainToolTip(const QString& text) {
    const QString shown = text.size() > kLongestToolTip ? text.left(kLongestToolTip) + u'\u2026' : text;
    return Qt::mightBeRichText(shown) ? "<qt>" + shown.toHtmlEscaped() + "</qt>" : shown;
}

}  // namespace tavrin

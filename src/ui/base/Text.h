// SPDX-License-Identifier: Apache-2.0
// Between the core's bytes and the windows' text: shown as UTF-8, bytes that are none as a replacement.
#pragma once

#include <QString>
#include <string>

namespace tavrin {

inline QString Shown(const std::string& text) {
    return QString::fromUtf8(text.data(), qsizetype(text.size()));
}
// The bytes of a file name as the platform takes it, or of what the user typed.
inline std::string Bytes(const QString& text) { return text.toStdString(); }

// As the label of a button or a menu item, which would take '&' for the mark of a letter that presses it and
// a tab for what separates the keys of a command.
inline QString LiteralLabel(QString text) { return text.replace('&', "&&").replace('\t', ' '); }

}  // namespace tavrin

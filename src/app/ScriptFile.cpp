// SPDX-License-Identifier: Apache-2.0
#include "app/ScriptFile.h"

#include "text/Numbers.h"
#include "text/Tokens.h"

namespace tavrin {

bool ScriptFile::Next(ScriptStatement& statement) {
    std::string text;
    while (ReadText(text)) {
        FieldScanner scanner(text);
        for (std::string& word : statement) word = scanner.Word().value_or("");
        if (!statement[0].empty()) return true;
    }
    return false;
}

bool ScriptFile::ReadText(std::string& text) {
    text.clear();
    m_line = m_nextLine;
    int c = m_archive.ReadByte();
    if (c < 0) return false;
    for (; c >= 0 && c != '\n' && c != ';'; c = m_archive.ReadByte()) {
        if (c == '#') {
            m_archive.SkipToLineEnd();
            c = m_archive.ReadByte();  // the line feed
            break;
        }
        text += static_cast<char>(c);
    }
    if (c == '\n') ++m_nextLine;
    return true;
}

}  // namespace tavrin

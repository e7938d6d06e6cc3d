// SPDX-License-Identifier: Apache-2.0
#include "document/DocumentLayout.h"

#include <algorithm>

#include "text/StoredText.h"
#include "text/Tokens.h"

namespace tavrin {

void DocumentLayout::PutLibrary(std::string_view name) { Line("tavrn-renderer ", TokenText(name), kLineEnd); }

// A word and its operand that programs which do not know it pass over.
void DocumentLayout::PutMuted(std::string_view wids) {
    Line("tavrn-muted ", QuoteString(OneLine(wids)), kLineEnd);
}

// The same. As the operand holds blanks, it is never one of the words that begin a section.
void DocumentLayout::PutFrame(std::string_view words) {
    Line("tavrn-frame ", QuoteString(OneLine(words)), kLineEnd);
}

void DocumentLayout::PutToolButton(size_t number, std::string_view operatorName) {
    Line("    button ", TokenText(std::to_string(number).append("=").append(operatorName)));
}

void DocumentLayout::PutMaxInstances(int number) {
    Line("        opboxdefs\r\n        {");
    Line("            maxinstances ", number);
    Line("        }");
}

void DocumentLayout::BeginButton(std::string_view kind, std::string_view name, std::string_view displayName,
                                 std::string_view cast) {
    Line("\r\n        ", TokenText(std::string("opbutton.").append(kind)), " ", name, " ", displayName);
    Line("        {\r\n            opbuttondefs\r\n            {");
    Line("                currentcast ", TokenText(cast));
    Line("                wwms\r\n                {");
}

// A name is a field between commas here, and not empty. Nobody relies on it.
std::string DocumentLayout::WireEndText(const WireEnd& end) {
    const auto field = [](std::string name) {
        std::replace(name.begin(), name.end(), ',', '_');
        return name.empty() ? std::string("_") : name;
    };
    return TokenText("opbox:" + field(std::string(end.operatorName)) + "," + std::to_string(end.wid) + "," +
                     field(std::string(end.button)) + "," + std::to_string(end.position));
}

void DocumentLayout::PutConnection(const WireEnd& source, const WireEnd& target) {
    Line("        ", WireEndText(source), " -> ", WireEndText(target));
}

void DocumentLayout::PutDeskKeyword(std::string_view keyword) {
    constexpr size_t kWidth = 19;
    std::string column(keyword);
    column.resize(std::max(kWidth, keyword.size() + 1), ' ');
    Put("    " + column);
}

void DocumentLayout::PutRenderOption(std::string_view name, std::string_view value) {
    Line("    setenv ", name, " ", QuoteString(value));
}

// A mark before each line protects the text's own indentation and braces.
void DocumentLayout::PutHelp(std::string_view text) {
    BeginSection("customshaderhelp");
    bool lineBegins = true;
    for (const char c : text) {
        if (lineBegins) m_text += '>';
        m_text += c;
        lineBegins = c == '\n';
    }
    Line();
    EndSection();
}

}  // namespace tavrin

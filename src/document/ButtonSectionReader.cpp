// SPDX-License-Identifier: Apache-2.0
// The `opbutton` blocks of a box.
#include "document/DocumentReader.h"
#include "library/Value.h"
#include "text/Numbers.h"
#include "text/Tokens.h"

namespace tavrin {

bool DocumentReader::ReadOpBoxButton(BoxRecord& box, std::string_view kind) {
    const DocumentRecord begun = Begun();
    std::string_view name;
    std::string_view fullName;
    if (!Next(name)) return Stop("expected button name");
    if (!Next(fullName)) return Stop("expected button id");
    ButtonRecord& button = box.buttons.emplace_back();
    static_cast<DocumentRecord&>(button) = begun;
    button.kind = kind;
    button.name = name;
    button.fullName = fullName;
    button.namesEnd = TokenEnd();
    if (!ReadButtonBlock(button)) return false;
    End(button);
    return true;
}

bool DocumentReader::ReadButtonBlock(ButtonRecord& button) {
    // Neither the braces before "currentcast" nor the word "wwms" is checked.
    std::string_view token;
    do {
        if (!Operand(token)) return false;
    } while (token != "currentcast");
    if (!Operand(button.cast)) return false;
    do {
        if (!Operand(token)) return false;
    } while (token != "{");
    for (;;) {
        if (!Operand(token)) return false;
        if (token == "}") break;
        if (!ReadButtonItem(button, token)) return false;
    }
    return Expect("}") && Expect("}");
}

bool DocumentReader::ReadButtonItem(ButtonRecord& button, std::string_view keyword) {
    if (keyword == "pin") return Operand(button.pin);
    if (keyword == "stow") return Operand(button.stow);
    if (keyword == "lock") return Operand(button.lock);
    if (keyword == "arg") return Operand(button.arg);
    if (keyword == "argname") return Operand(button.argname);
    if (keyword == "comments") return Operand(button.comments);
    if (keyword == type_words::kString) return ReadText(button, keyword);
    if (IsGenericType(keyword)) return ReadGeneric(button, keyword);
    if (keyword == "disableargflag" || keyword == "disableconnectflag") {
        std::string_view rest;  // these come from the definition
        return m_archive.ReadLine(rest) || Unexpected();
    }
    for (const NumberType& type : kNumberTypes) {
        if (type.word == keyword) return ReadNumbers(button, type);
    }
    return Stop("unexpected input \"" + std::string(keyword) + "\"");
}

bool DocumentReader::ReadText(ButtonRecord& button, std::string_view keyword) {
    ValueRecord value{Begun(), keyword, {}, 0, {}, {}, {}};
    if (!Operand(value.text)) return false;
    End(value);
    button.values.push_back(value);
    return true;
}

bool DocumentReader::ReadNumbers(ButtonRecord& button, const NumberType& type) {
    ValueRecord& value = button.values.emplace_back(ValueRecord{Begun(), type.word, {}, 0, {}, {}, {}});
    if (!Operands(std::span(value.numbers).first(type.count), value.numberCount)) return false;
    if (type.hasInteger && !Operand(value.integer)) return false;
    End(value);
    return true;
}

// A generic value is a line and no tokens: backslashes in it are not undone.
bool DocumentReader::ReadGeneric(ButtonRecord& button, std::string_view keyword) {
    ValueRecord value{Begun(), keyword, {}, 0, {}, {}, {}};
    std::string_view rest;
    if (!m_archive.ReadLine(rest)) return Unexpected();
    rest = Trim(rest);
    if (rest.size() > 1 && rest.front() == '"' && rest.back() == '"') {
        value.text = rest.substr(1, rest.size() - 2);
    } else {
        FieldScanner scanner(rest);
        const auto word = scanner.Word();
        if (!word) return Unexpected();
        value.name = *word;
        scanner.SkipBlanks();
        if (scanner.Literal("\"")) value.text = scanner.Until('"').value_or("");
    }
    End(value);
    button.values.push_back(value);
    return true;
}

}  // namespace tavrin

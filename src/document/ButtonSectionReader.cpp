// The `opbutton` blocks of a box.
#include "document/DocumentReader.h"
#include "document/TvDoc.h"
#include "library/ValueVisitor.h"
#include "site/TypeTables.h"

namespace tavrin {

bool DocumentReader::ReadOpBoxButton(COpBox& box, const std::string& kind) {
    std::string name;
    std::string fullName;
    if (!ReadToken(m_archive, name)) return Stop("expected button name");
    if (!ReadToken(m_archive, fullName)) return Stop("expected button id");
    const bool isInput = kind == "input" || kind == "vinput";
    COpButton* button = isInput ? FindInput(box, kind, name, fullName) : NextOutput(box, kind, name);
    if (button == nullptr || !ReadButtonBlock(*button)) return false;
    m_namesSeen.insert(name);
    return true;
}

// Looks forward only: the file's buttons stand in the definition's order.
COpButton* DocumentReader::FindInput(COpBox& box, const std::string& kind, const std::string& name,
                                     const std::string& fullName) {
    while (m_inputCursor < box.inputs.size() && box.inputs[m_inputCursor]->name != name) ++m_inputCursor;
    if (m_inputCursor == box.inputs.size()) {
        Stop(FormatText("undefined input %s specified", name.c_str()));
        return nullptr;
    }
    if (kind == "input" && box.inputs[m_inputCursor].get() == m_inputRead) PassToTwin(box);
    COpButton& found = *box.inputs[m_inputCursor];
    m_inputRead = &found;
    if (found.KindText() != kind) {
        m_report.AlertAt(m_archive, "input %s not of type %s", name.c_str(), kind.c_str());
    }
    if (fullName == name || fullName == name + "1") return &found;
    // A further copy of a vinput. It is numbered at once, since messages name it.
    auto copy = std::make_unique<COpButton>(found);
    copy->instance = found.instance + 1;
    ++m_inputCursor;
    const auto place = box.inputs.begin() + static_cast<std::ptrdiff_t>(m_inputCursor);
    return box.inputs.insert(place, std::move(copy))->get();
}

// A definition may have several inputs of one name, and the file then has a block for each.
void DocumentReader::PassToTwin(const COpBox& box) {
    for (size_t next = m_inputCursor + 1; next < box.inputs.size(); ++next) {
        const COpButton& input = *box.inputs[next];
        if (input.kind != ButtonKind::kInput || input.name != m_inputRead->name) continue;
        m_inputCursor = next;
        return;
    }
}

// Outputs are matched by position alone.
COpButton* DocumentReader::NextOutput(COpBox& box, const std::string& kind, const std::string& name) {
    if (m_outputCursor == box.outputs.size()) {
        Stop(FormatText("undefined output %s specified", name.c_str()));
        return nullptr;
    }
    COpButton& button = *box.outputs[m_outputCursor++];
    if (button.KindText() == kind) return &button;
    Stop(FormatText("button %s not of type %s", name.c_str(), kind.c_str()));
    return nullptr;
}

bool DocumentReader::ReadButtonBlock(COpButton& button) {
    // Neither the braces before "currentcast" nor the word "wwms" is checked.
    std::string token;
    std::string castName;
    do {
        if (!Operand(token)) return false;
    } while (token != "currentcast");
    if (!Operand(castName)) return false;
    do {
        if (!Operand(token)) return false;
    } while (token != "{");
    for (;;) {
        if (!Operand(token)) return false;
        if (token == "}") break;
        if (!ReadButtonClause(button, token)) return false;
    }
    if (!Expect("}") || !Expect("}")) return false;
    ChooseCast(button, castName);
    return true;
}

bool DocumentReader::ReadButtonClause(COpButton& button, const std::string& keyword) {
    if (keyword == "pin") return Operand(button.pin);
    if (keyword == "stow") return Operand(button.stow);
    if (keyword == "lock") return Operand(button.lock);
    if (keyword == "arg") return Operand(button.arg);
    if (keyword == "argname") return Operand(button.argname);
    if (keyword == "comments") return Operand(button.comments);
    if (keyword == "disableargflag" || keyword == "disableconnectflag") {
        std::string_view rest;  // these come from the definition
        return m_archive.ReadLine(rest) || Unexpected();
    }
    // Fields of a type that the button does not have are read all the same, and dropped.
    std::unique_ptr<COpValue> dropped;
    COpValue* value = button.FindValue(keyword);
    if (value == nullptr) {
        dropped = MakeValue(keyword);
        value = dropped.get();
    }
    if (value == nullptr) return Stop("unexpected input \"" + keyword + "\"");
    return ReadValue(button, *value);
}

bool DocumentReader::ReadValue(COpButton& button, COpValue& value) {
    return VisitValue(
        value, ValueCalls{
                   [&](COpValueFloat& v) {
                       return Operand(v.value) && Operand(v.min) && Operand(v.max) && Operand(v.integer);
                   },
                   [&](COpValueXyz& v) {
                       return Operand(v.x) && Operand(v.y) && Operand(v.z) && Operand(v.min) &&
                              Operand(v.max) && Operand(v.integer);
                   },
                   [&](COpValueRgb& v) { return Operand(v.r) && Operand(v.g) && Operand(v.b); },
                   [&](COpValueRgba& v) {
                       return Operand(v.r) && Operand(v.g) && Operand(v.b) && Operand(v.a);
                   },
                   [&](COpValueString& v) {
                       std::string text;
                       if (!Operand(text)) return false;
                       v.value = std::move(text);
                       return true;
                   },
                   [&](COpValueGeneric& v) { return ReadGeneric(button, v.type); },
               });
}

// A generic value is a line and no tokens: backslashes in it are not undone. A type that is neither "generic"
// nor "generic:NAME" is its line's keyword.
bool DocumentReader::ReadGeneric(COpButton& button, const std::string& keyword) {
    std::string_view rest;
    if (!m_archive.ReadLine(rest)) return Unexpected();
    rest = Trim(rest);
    std::string type(type_words::kGeneric);
    std::string text;
    if (rest.size() > 1 && rest.front() == '"' && rest.back() == '"') {
        text = rest.substr(1, rest.size() - 2);
        const bool mayBeType =
            !keyword.starts_with(kGenericPrefix) || keyword.size() == kGenericPrefix.size();
        if (mayBeType && button.FindValue(keyword) != nullptr) type = keyword;
    } else {
        FieldScanner scanner(rest);
        const auto word = scanner.Word();
        if (!word) return Unexpected();
        type.append(":").append(*word);
        scanner.SkipBlanks();
        if (scanner.Literal("\"")) text = scanner.Until('"').value_or("");
    }
    if (auto* value = static_cast<COpValueGeneric*>(button.FindValue(type))) value->value = text;
    return true;
}

// The cast is assigned plainly: castlock pairs do not spread it while reading.
void DocumentReader::ChooseCast(COpButton& button, const std::string& castName) {
    const int cast = button.FindCast(castName);
    if (cast >= 0) {
        button.currentcast = static_cast<size_t>(cast);
        return;
    }
    if (castName.empty() && button.values.empty()) return;  // an output without any type
    std::string message = "illegal cast " + castName + " for button " + button.owner->BoxTitleWid() + ":" +
                          button.DisplayName() + ".\n\nAvailable casts:\n";
    for (const auto& value : button.values) message += "\n        " + value->type;
    m_report.AlertAt(m_archive, "%s", message.c_str());
}

}  // namespace tavrin

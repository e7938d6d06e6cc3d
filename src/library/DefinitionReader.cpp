#include "library/DefinitionReader.h"

#include "library/OpBox.h"

namespace tavrin {

namespace {

constexpr std::string_view kCodegenPrefix = "codegen.";
constexpr std::string_view kFixedValuePrefix = "fixedvalue=";
constexpr std::string_view kTiebackPrefix = "tieback=";

}  // namespace

// The end of the file before the brace fails in silence; so does one inside the text, which is all there.
bool DefinitionReader::HelpBlock(std::string& help) {
    std::string token;
    if (!ReadToken(m_archive, token)) return false;
    if (token != "{") return Unexpected();
    ReadTextBlock(m_archive, help);
    return true;
}

bool DefinitionReader::Read() {
    std::string keyword;
    while (ReadToken(m_archive, keyword)) {
        if (!ReadClause(keyword)) return false;
    }
    return true;
}

bool DefinitionReader::ReadClause(const std::string& keyword) {
    if (keyword == "iconimg") return Operand(m_box.iconimg);
    if (keyword == "size") return Operand(m_box.size[0]) && Operand(m_box.size[1]);
    if (keyword == "color")
        return Operand(m_box.color[0]) && Operand(m_box.color[1]) && Operand(m_box.color[2]);
    if (keyword == "icontext") return Operand(m_box.icontext);
    if (keyword == "boxhelp") {
        if (!Expect("{")) return false;
        ReadTextBlock(m_archive, m_box.boxhelp);
        return true;
    }
    if (keyword == "input") return ReadInput(ButtonKind::kInput);
    if (keyword == "vinput") return ReadInput(ButtonKind::kVinput);
    if (keyword == "output") return ReadOutput();
    if (keyword == "defs") return ReadDefs();
    if (keyword.starts_with(kCodegenPrefix)) {
        std::string errorText;
        if (m_box.codegen.ParseClause(m_archive, keyword.substr(kCodegenPrefix.size()), m_libraryDir,
                                      errorText)) {
            return true;
        }
        m_report.AlertAt(m_archive, "%s", errorText.c_str());
        return false;
    }
    return Unexpected();
}

// Loose on purpose: whatever is no clause is passed over, the opening brace among it.
bool DefinitionReader::ReadDefs() {
    std::string token;
    while (ReadToken(m_archive, token) && token != "}") {
        if (token == "castlock.clear") {
            m_box.castlock.erase("");  // the pairs of buttons stay
        } else if (token == "castlock.add") {
            std::string first;
            std::string second;
            if (!Operand(first) || !Operand(second)) return false;
            m_box.castlock.emplace(first, second);
        } else if (token == "maxinstances") {
            if (!Operand(m_box.maxinstances)) return false;
        }
    }
    return true;
}

bool DefinitionReader::ReadInput(ButtonKind kind) {
    COpButton& button = *m_box.inputs.emplace_back(std::make_unique<COpButton>(&m_box, kind));
    if (!Operand(button.name) || !Expect("{")) return false;
    std::string token;
    while (ReadToken(m_archive, token) && token != "}") {
        if (!ReadInputProperty(button, token)) return false;
    }
    if (button.values.empty()) {
        m_report.AlertAt(m_archive, "no type for button");
        return false;
    }
    constexpr int kMostInstances = 10000;  // a slip of the pen must not eat the memory
    for (int i = 2; i <= button.vinstances && i <= kMostInstances; ++i) {
        m_box.inputs.push_back(std::make_unique<COpButton>(button));
        m_box.inputs.back()->instance = i;
    }
    return true;
}

bool DefinitionReader::ReadInputProperty(COpButton& button, const std::string& keyword) {
    if (keyword == "help") return HelpBlock(button.help);
    if (keyword == "wwms.argname") return Operand(button.argname);
    if (keyword == "wwms.argflag") return Operand(button.arg);
    if (keyword == "wwms.disableargflag") return Operand(button.disableargflag);
    if (keyword == "wwms.disableconnectflag") return Operand(button.disableconnectflag);
    if (keyword == "macro.fixedtext") {
        std::string_view rest;
        if (!m_archive.ReadLine(rest)) return Unexpected();
        button.fixedtext = Trim(rest);
        return true;
    }
    if (button.kind == ButtonKind::kVinput) {
        if (keyword == "vargseparator") return Operand(button.vargseparator);
        if (keyword == "vinstances") return Operand(button.vinstances);
    }
    return ReadValue(button, keyword);
}

bool DefinitionReader::ReadOutput() {
    COpButton& button = *m_box.outputs.emplace_back(std::make_unique<COpButton>(&m_box, ButtonKind::kOutput));
    std::string token;
    if (!Operand(token)) return false;
    if (token.starts_with(kFixedValuePrefix)) {
        button.fixedvalue = token.substr(kFixedValuePrefix.size());
        if (!Operand(token)) return false;
    } else if (token.starts_with(kTiebackPrefix)) {
        const std::string target = token.substr(kTiebackPrefix.size());
        const COpButton* found = m_box.FindButton(target);
        if (found == nullptr || found->IsOutput()) {
            m_report.AlertAt(m_archive, "tieback names unknown button %s", target.c_str());
            return false;
        }
        button.tieback = target;
        if (!Operand(token)) return false;
    }
    button.name = token;
    if (!Expect("{")) return false;
    while (ReadToken(m_archive, token) && token != "}") {
        if (!ReadOutputProperty(button, token)) return false;
    }
    return true;
}

// Words that are neither help nor a type that an output can have are passed over.
bool DefinitionReader::ReadOutputProperty(COpButton& button, const std::string& keyword) {
    if (keyword == "help") return HelpBlock(button.help);
    auto value = keyword == type_words::kString ? nullptr : MakeValue(keyword);
    if (!value) return true;
    if (!Expect("out")) return false;
    button.values.push_back(std::move(value));
    return true;
}

}  // namespace tavrin

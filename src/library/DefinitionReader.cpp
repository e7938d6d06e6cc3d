// SPDX-License-Identifier: Apache-2.0
#include "library/DefinitionReader.h"

#include <algorithm>

#include "library/OpBox.h"
#include "library/SourceLines.h"
#include "text/StoredText.h"

namespace tavrin {

namespace {

constexpr std::string_view kCodegenPrefix = "codegen.";
constexpr std::string_view kFixedValuePrefix = "fixedvalue=";
constexpr std::string_view kTiebackPrefix = "tieback=";

}  // namespace

// The table is none of the text, so that no block which is left open takes it in.
DefinitionReader::DefinitionReader(COpBox& box, CArchive& archive, const std::string& libraryDir,
                                   Report& report, const std::string& operatorPath)
    : TokenParser(archive, report),
      m_box(box),
      m_libraryDir(libraryDir),
      m_operatorPath(operatorPath),
      m_sourceLines(archive.CutOff(EndOfDefinition(archive.Text()))) {
    if (!operatorPath.empty()) archive.SetRemark([this](int line) { return Origin(line); });
}

std::string DefinitionReader::Origin(int line) const {
    const auto place = SourceLines(m_sourceLines).Find(line);
    const std::string name = " (operator " + m_box.filename;
    if (!place) return name + " of " + m_operatorPath + ")";
    return name + (place->file == m_operatorPath ? "" : " of " + m_operatorPath) + ": line " +
           std::to_string(place->line) + " of " + place->file + ")";
}

// The end of the file before the brace fails in silence.
bool DefinitionReader::HelpBlock(std::string& help) {
    std::string token;
    if (!ReadToken(m_archive, token)) return false;
    if (token != "{") return Unexpected();
    HelpText("help", help);
    return true;
}

// A block that the file ends in is told with the place of its beginning, and has the whole rest of the file
// for its text.
void DefinitionReader::HelpText(const char* keyword, std::string& help) {
    const size_t left = m_archive.Rest().size();
    if (ReadTextBlock(m_archive, help)) return;
    m_archive.Rewind();
    m_archive.Skip(m_archive.Rest().size() - left);
    m_report.AlertAt(m_archive, "the block \"%s\"%s is not closed: its last line has to be a \"}\" alone",
                     keyword, OfOperator().c_str());
    m_archive.Skip(left);
    m_isOpenEnded = true;
}

std::string DefinitionReader::OfOperator() const {
    return m_box.filename.empty() || !m_operatorPath.empty() ? std::string()
                                                             : " of operator " + m_box.filename;
}

bool DefinitionReader::CanBeStored(const char* what, const std::string& name) {
    if (IsBareToken(name)) return true;
    m_report.AlertAt(m_archive, "the %s \"%s\"%s cannot be kept in a document: %s", what,
                     OneLine(name).c_str(), OfOperator().c_str(), kBareTokenRule);
    return false;
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
        HelpText("boxhelp", m_box.boxhelp);
        return true;
    }
    if (keyword == "input") return ReadInput(ButtonKind::kInput);
    if (keyword == "vinput") return ReadInput(ButtonKind::kVinput);
    if (keyword == "output") return ReadOutput();
    if (keyword == "defs") return ReadDefs();
    if (keyword == "alias") return ReadAlias(m_box.aliases);
    if (keyword == "keywords") return ReadKeywords();
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

bool DefinitionReader::ReadAlias(std::vector<std::string>& aliases) {
    std::string name;
    if (!Operand(name)) return false;
    if (std::find(aliases.begin(), aliases.end(), name) == aliases.end()) aliases.push_back(std::move(name));
    return true;
}

// A block that is not closed would take the rest of the definition for words.
bool DefinitionReader::ReadKeywords() {
    if (!Expect("{")) return false;
    for (std::string word; Operand(word);) {
        if (word == "}") return true;
        m_box.keywords.push_back(std::move(word));
    }
    return false;
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
    if (!Operand(button.name) || !CanBeStored("button name", button.name) || !Expect("{")) return false;
    if (kind == ButtonKind::kVinput) m_box.vinputNames.push_back(button.name);
    std::string token;
    while (ReadToken(m_archive, token) && token != "}") {
        if (!ReadInputProperty(button, token)) return false;
    }
    if (button.values.empty()) {
        // Where an open help block took the type along, its alert is the one to be seen.
        if (!m_isOpenEnded) m_report.AlertAt(m_archive, "no type for button");
        return false;
    }
    AddInstances(button);
    return true;
}

void DefinitionReader::AddInstances(const COpButton& button) {
    constexpr int kMostInstances = 10000;  // a slip of the pen must not eat the memory
    if (button.vinstances > kMostInstances) {
        m_report.AlertAt(m_archive,
                         "vinput %s%s asks for %d instances and gets %d, the most that there can be",
                         button.name.c_str(), OfOperator().c_str(), button.vinstances, kMostInstances);
    }
    for (int i = 2; i <= button.vinstances && i <= kMostInstances; ++i) {
        m_box.inputs.push_back(std::make_unique<COpButton>(button));
        m_box.inputs.back()->instance = i;
    }
}

bool DefinitionReader::ReadInputProperty(COpButton& button, const std::string& keyword) {
    if (keyword == "help") return HelpBlock(button.help);
    if (keyword == "alias") return ReadAlias(button.aliases);
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
    if (!CanBeStored("button name", button.name) || !Expect("{")) return false;
    while (ReadToken(m_archive, token) && token != "}") {
        if (!ReadOutputProperty(button, token)) return false;
    }
    return true;
}

// Words that are neither help nor a type that an output can have are passed over.
bool DefinitionReader::ReadOutputProperty(COpButton& button, const std::string& keyword) {
    if (keyword == "help") return HelpBlock(button.help);
    if (keyword == "alias") return ReadAlias(button.aliases);
    auto value = keyword == type_words::kString ? nullptr : MakeValue(keyword);
    if (!value) return true;
    if (!CanBeStored("type", keyword) || !Expect("out")) return false;
    button.values.push_back(std::move(value));
    return true;
}

}  // namespace tavrin

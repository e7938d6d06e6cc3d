// SPDX-License-Identifier: Apache-2.0
// What boxes and buttons are called in generated code, and how a box turns its templates into lines.
#include <algorithm>

#include "codegen/BoxMerge.h"
#include "library/CodeNames.h"
#include "library/OpBox.h"
#include "library/OpButton.h"
#include "library/TiebackEnds.h"
#include "site/TypeTables.h"
#include "text/Report.h"

namespace tavrin {

namespace {

// The variables that every template can use, by the button's plain name.
constexpr std::string_view kNumVinputs = "TAVRN_NumVinputs_";
constexpr std::string_view kDeclareHead = "TAVRN_DeclareHead_";
constexpr std::string_view kDeclareTail = "TAVRN_DeclareTail_";
constexpr std::string_view kIsConnect = "TAVRN_IsConnect_";
constexpr std::string_view kCast = "TAVRN_Cast_";

// Sets variables that are named by a prefix and a button, reusing one buffer for the names.
class VariableWriter {
  public:
    VariableWriter(CMex& mex, const TypeTables& types) : m_mex(mex), m_types(types) {}

    void Set(std::string_view prefix, const COpButton& button, std::string_view value) {
        m_name.assign(prefix).append(button.name);
        m_mex.SetVariable(m_name, value);
    }
    void SetDeclaration(const COpButton& button) {
        const TypeTables::Declaration& declaration = m_types.GetDeclaration(button.CurrentType());
        Set(kDeclareHead, button, declaration.head);
        Set(kDeclareTail, button, declaration.tail);
    }
    void SetCast(const COpButton& button) { Set(kCast, button, m_types.TranslateType(button.CurrentType())); }

  private:
    CMex& m_mex;
    const TypeTables& m_types;
    std::string m_name;
};

// "/arg" with the slash and "noarg" without it are the words that templates compare with.
std::string_view StateText(const COpButton& button) {
    const bool connected = button.Feeder() != nullptr;
    if (button.arg != 0) return connected ? "connected/arg" : "default/arg";
    return connected ? "connectednoarg" : "defaultnoarg";
}

// What an output stands for that is tied back, or that is one of a muted box; nothing, alerted, if its way
// ends nowhere.
std::string TiedName(const COpButton& output, const NameSource& names, TiebackEnds& ends) {
    using Kind = TiebackEnds::Kind;
    const TiebackEnds::End end = ends.Of(output);
    if (end.kind == Kind::kInput) return end.button->MacroValue(names);
    if (end.kind == Kind::kOutput) return end.button->VariableName(names);
    if (names.report == nullptr) return {};
    if (end.kind == Kind::kMissing) {
        names.report->Alert("%s %s: can't find tieback button %s (did you delete it?)",
                            end.button->owner->BoxTitleWid().c_str(), end.button->DisplayName().c_str(),
                            end.button->tieback.c_str());
    } else if (output.tieback.empty()) {
        names.report->Alert(
            "%s %s: the way through muted boxes leads back to itself; cut one of the connections between",
            output.owner->BoxTitleWid().c_str(), output.DisplayName().c_str());
    } else {
        names.report->Alert(
            "%s %s: the tieback to %s leads back to itself; cut one of the connections between",
            output.owner->BoxTitleWid().c_str(), output.DisplayName().c_str(), output.tieback.c_str());
    }
    return {};
}

}  // namespace

std::string COpButton::VariableName(const NameSource& names) const {
    if (PassesThrough()) {
        TiebackEnds own;
        return TiedName(*this, names, names.ends == nullptr ? own : *names.ends);
    }
    if (!fixedvalue.empty()) return names.variables.Of(*owner).Expanded(fixedvalue);
    std::string text;
    return text.append(owner->filename)
        .append("_")
        .append(std::to_string(owner->wid))
        .append("_")
        .append(DisplayName());
}

bool COpButton::IsOfMutedBox() const { return owner->muted != 0 && IsOutput(); }

const COpButton* COpButton::FirstOfItsType() const {
    const std::string& type = CurrentType();
    for (const auto& input : owner->inputs) {
        if (!input->IsUnknown() && (type.empty() || input->CurrentType() == type)) return input.get();
    }
    return nullptr;
}

const COpButton* COpButton::PassedInput() const {
    return tieback.empty() ? FirstOfItsType() : owner->FindButton(tieback);
}

std::string COpButton::ArgumentName(const NameSource& names) const {
    if (arg == 0) return {};
    return argname.empty() ? VariableName(names) : argname;
}

std::string COpButton::MacroValue(const NameSource& names) const {
    if (const COpButton* source = Feeder()) return source->VariableName(names);
    if (!fixedtext.empty()) return fixedtext;
    return arg != 0 ? ArgumentName(names) : ValueText();
}

std::string COpButton::Declaration(const TypeTables& types, const NameSource& names) const {
    const TypeTables::Declaration& declaration = types.GetDeclaration(CurrentType());
    return declaration.head + VariableName(names) + declaration.tail;
}

bool COpBox::HasFixedValue() const {
    return std::any_of(outputs.begin(), outputs.end(),
                       [](const auto& output) { return !output->fixedvalue.empty(); });
}

void COpBox::PrepareVariables(CMex& expander, const TypeTables& types) const {
    VariableWriter writer(expander, types);
    std::string_view last;
    for (const auto& button : inputs) {
        if (button->IsUnknown()) continue;
        const bool isVinput = button->kind == ButtonKind::kVinput;
        if (isVinput && button->name == last) continue;
        if (isVinput) {
            writer.Set(kNumVinputs, *button, std::to_string(CountInputsNamed(button->name)));
            last = button->name;
        }
        writer.SetDeclaration(*button);
    }
    for (const auto& button : inputs) {
        if (button->IsUnknown()) continue;
        writer.Set(kIsConnect, *button, StateText(*button));
        writer.SetCast(*button);
    }
    expander.SetVariable("TAVRN_BoxWid", std::to_string(wid));
    expander.SetVariable("TAVRN_BoxTitle", filename);
    expander.SetVariable("TAVRN_BoxTitleWid", BoxTitleWid());
    for (const auto& button : outputs) {
        if (button->IsUnknown()) continue;
        writer.SetDeclaration(*button);
        writer.SetCast(*button);
    }
}

void COpBox::GenerateCode(BoxMerge& merge, const TypeTables& types, const NameSource& names) const {
    CMex& local = merge.Start(codegen);
    PrepareVariables(local, types);
    for (const auto& button : inputs) {
        if (!button->IsUnknown())
            local.AppendVariable(button->name, button->MacroValue(names), button->vargseparator);
    }
    std::vector<BoxMerge::Declaration> declarations;
    std::string expanded;
    size_t output = 0;
    for (const auto& button : outputs) {
        ++output;
        if (button->IsUnknown()) continue;
        if (!button->fixedvalue.empty()) {
            local.Expand(button->fixedvalue, expanded);
            local.SetVariable(button->name, expanded);
        } else if (button->tieback.empty()) {
            declarations.push_back({button->Declaration(types, names), output});
            local.SetVariable(button->name, button->VariableName(names));
        }
    }
    // A labelled gap before each box's statements.
    CCodeGen& shader = merge.Shader();
    shader.AddLine(CCodeGen::kMainBody, LineKind::kAppend, {}, merge.Generated(0));
    std::string comment;
    if (shader.MakeComment(BoxTitleWid(), comment)) {
        shader.AddLine(CCodeGen::kMainBody, LineKind::kAppend, std::move(comment), merge.Generated(0));
    }
    merge.Merge(declarations);
}

}  // namespace tavrin

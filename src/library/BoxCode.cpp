// What boxes and buttons are called in generated code, and how a box turns its templates into lines.
#include <algorithm>
#include <unordered_set>

#include "library/OpBox.h"
#include "library/OpButton.h"
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
    const bool connected = !button.connections.Empty();
    if (button.arg != 0) return connected ? "connected/arg" : "default/arg";
    return connected ? "connectednoarg" : "defaultnoarg";
}

// Follows tiebacks from an output to the input that feeds it in the end, across boxes. Nothing if a
// target is gone, which is alerted, or if the way leads round in a circle.
struct TiebackEnd {
    COpButton* input = nullptr;   // an input with nothing connected
    COpButton* output = nullptr;  // or an output that is not tied back
};

TiebackEnd FollowTiebacks(COpButton& start, Report& report) {
    std::unordered_set<const COpButton*> seen;
    COpButton* output = &start;
    while (!output->tieback.empty()) {
        COpButton* target = output->owner->FindButton(output->tieback);
        if (target == nullptr) {
            report.Alert("%s %s: can't find tieback button %s (did you delete it?)",
                         output->owner->BoxTitleWid().c_str(), output->DisplayName().c_str(),
                         output->tieback.c_str());
            return {};
        }
        if (!seen.insert(target).second) {
            report.Alert("%s %s: the tieback to %s leads back to itself; cut one of the connections between",
                         start.owner->BoxTitleWid().c_str(), start.DisplayName().c_str(),
                         start.tieback.c_str());
            return {};
        }
        // An argument without a name stands for its own variable, which leads on where the target is an
        // output: one that bears the name of a deleted input.
        const bool leadsOn = target->fixedtext.empty() && target->arg != 0 && target->argname.empty();
        if (target->connections.Empty() && !leadsOn) return {target, nullptr};
        output = target->connections.Empty() ? target : target->connections.First();
    }
    return {nullptr, output};
}

}  // namespace

std::string COpButton::VariableName(Report& report) {
    if (!tieback.empty()) {
        const TiebackEnd end = FollowTiebacks(*this, report);
        if (end.input != nullptr) return end.input->MacroValue(report);
        return end.output != nullptr ? end.output->VariableName(report) : std::string();
    }
    std::string text;
    if (!fixedvalue.empty()) {
        owner->codegen.ExpandString(fixedvalue, text);
        return text;
    }
    return text.append(owner->filename)
        .append("_")
        .append(std::to_string(owner->wid))
        .append("_")
        .append(DisplayName());
}

std::string COpButton::ArgumentName(Report& report) {
    if (arg == 0) return {};
    return argname.empty() ? VariableName(report) : argname;
}

std::string COpButton::MacroValue(Report& report) {
    if (!connections.Empty()) return connections.First()->VariableName(report);
    if (!fixedtext.empty()) return fixedtext;
    return arg != 0 ? ArgumentName(report) : ValueText();
}

std::string COpButton::Declaration(const TypeTables& types, Report& report) {
    const TypeTables::Declaration& declaration = types.GetDeclaration(CurrentType());
    return declaration.head + VariableName(report) + declaration.tail;
}

void COpBox::PrepareVariables(const TypeTables& types) {
    codegen.ClearVariables();
    SetVariables(codegen.Mex(), types);
}

bool COpBox::HasFixedValue() const {
    return std::any_of(outputs.begin(), outputs.end(),
                       [](const auto& output) { return !output->fixedvalue.empty(); });
}

void COpBox::SetVariables(CMex& mex, const TypeTables& types) const {
    VariableWriter writer(mex, types);
    std::string_view last;
    for (const auto& button : inputs) {
        const bool isVinput = button->kind == ButtonKind::kVinput;
        if (isVinput && button->name == last) continue;
        if (isVinput) {
            writer.Set(kNumVinputs, *button, std::to_string(CountInputsNamed(button->name)));
            last = button->name;
        }
        writer.SetDeclaration(*button);
    }
    for (const auto& button : inputs) {
        writer.Set(kIsConnect, *button, StateText(*button));
        writer.SetCast(*button);
    }
    mex.SetVariable("TAVRN_BoxWid", std::to_string(wid));
    mex.SetVariable("TAVRN_BoxTitle", filename);
    mex.SetVariable("TAVRN_BoxTitleWid", BoxTitleWid());
    for (const auto& button : outputs) {
        writer.SetDeclaration(*button);
        writer.SetCast(*button);
    }
}

void COpBox::GenerateCode(CCodeGen& shader, const TypeTables& types, Report& report) {
    CMex& local = shader.BoxExpander(codegen);
    SetVariables(local, types);
    for (const auto& button : inputs) {
        local.AppendVariable(button->name, button->MacroValue(report), button->vargseparator);
    }
    std::vector<std::string> declarations;
    std::string expanded;
    for (const auto& button : outputs) {
        if (!button->fixedvalue.empty()) {
            local.Expand(button->fixedvalue, expanded);
            local.SetVariable(button->name, expanded);
        } else if (button->tieback.empty()) {
            declarations.push_back(button->Declaration(types, report));
            local.SetVariable(button->name, button->VariableName(report));
        }
    }
    // A labelled gap before each box's statements.
    shader.AddLine(CCodeGen::kMainBody, LineKind::kAppend, {});
    std::string comment;
    if (shader.MakeComment(BoxTitleWid(), comment)) {
        shader.AddLine(CCodeGen::kMainBody, LineKind::kAppend, std::move(comment));
    }
    shader.MergeExpanded(codegen, declarations);
}

}  // namespace tavrin

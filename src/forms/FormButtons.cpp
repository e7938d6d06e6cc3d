// SPDX-License-Identifier: Apache-2.0
#include "forms/FormButtons.h"

#include <algorithm>

#include "forms/FormHost.h"
#include "forms/FormValues.h"
#include "text/Report.h"

namespace tavrin {

FormAction CFormLedButton::Click(bool on, FormHost& host) {
    state = on;
    if (!envname.empty()) host.SetVariable(envname, StateValue());
    return {action.to, action.message, on ? "1" : "0", action.isHeld};
}

// The form may give the state only as "1" or "0", unlike the values that reach the button later.
void CFormLedButton::Finish(const FormDraft& draft, FormHost& host, Report& report) {
    state = draft.value == "1";
    if (!state && draft.value != "0") {
        report.LogLine("unknown state value %s specified for LED button %s", draft.value.c_str(),
                       label.c_str());
    }
    host.SetVariable(envname, StateValue());
    if (draft.unsaved) host.AddUnsavedOption(envname);
}

void CFormLedButton::Show(const std::string& value) {
    state = value == "1" || value == envon || EqualText(value, "true");
}

std::optional<std::string> CFormLedButton::Take(const std::string& value) {
    Show(value);
    return StateValue();
}

std::string CFormLedButton::StateValue() const {
    if (state) return envon.empty() ? "1" : envon;
    return envoff.empty() ? "0" : envoff;
}

FormAction CFormChooser::Choose(int index, FormHost& host) {
    if (index < 0 || static_cast<size_t>(index) >= lines.size()) return {};
    const std::string line = lines[static_cast<size_t>(index)];
    Read(line, host);
    if (selected != index) Refresh();
    return {action.to, action.message, line, action.isHeld};
}

// The toolbar's rows come first, so that the option finds its row there when it is stored.
void CFormChooser::Finish(const FormDraft& draft, FormHost& host, Report& report) {
    if (envname == kShaderTypeOption) {
        for (const std::string& line : lines) host.AddShaderType(line);
        m_filledShaderTypes = true;
    }
    CFormOption::Finish(draft, host, report);
}

std::vector<std::string> CFormChooser::Faults(const FormDraft& draft) const {
    std::vector<std::string> faults = CFormOption::Faults(draft);
    const bool asksForNothing = envname.empty() && draft.value.empty();
    if (selected == kNothing && !asksForNothing) {
        faults.push_back("the value \"" + draft.value + "\" of chooser " +
                         (envname.empty() ? "without envname" : envname) +
                         " is none of its lines: the option has no default");
    }
    return faults;
}

void CFormChooser::Removed(FormHost& host) {
    if (m_filledShaderTypes) host.ClearShaderTypes();
}

std::optional<std::string> CFormChooser::Take(const std::string& value) {
    if (!Select(value)) return std::nullopt;
    return value;
}

bool CFormChooser::Select(const std::string& text) {
    const auto found = std::find_if(lines.begin(), lines.end(), [&](const std::string& line) {
        return text.empty() ? line.empty() : BeginsWith(line, text);
    });
    if (found == lines.end()) return false;
    selected = static_cast<int>(found - lines.begin());
    return true;
}

}  // namespace tavrin

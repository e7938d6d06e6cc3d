// SPDX-License-Identifier: Apache-2.0
#include "forms/FormWidget.h"

#include "forms/FormHost.h"
#include "forms/FormValues.h"

namespace tavrin {

void CFormOption::Read(const std::string& value, FormHost& host) {
    const auto stored = Take(value);
    if (stored && !envname.empty()) host.SetVariable(envname, *stored);
}

void CFormOption::OptionChanged(const std::string& name, const std::string& value) {
    if (name != envname) return;
    Show(value);
    Refresh();
}

void CFormOption::LoadDefaults(FormHost& host) {
    Read(host.GetAppVariable(envname), host);
    Refresh();
}

void CFormOption::Finish(const FormDraft& draft, FormHost& host, Report& /*report*/) {
    const auto stored = Take(draft.value);
    if (stored) host.SetVariable(envname, *stored);
    if (draft.unsaved) host.AddUnsavedOption(envname);
}

std::vector<std::string> CFormOption::Faults(const FormDraft& draft) const {
    std::vector<std::string> faults;
    if (!draft.unsaved) CheckOptionName(envname, faults);
    if (envname.empty() && NeedsName())
        faults.emplace_back("there is no envname: what the user enters is kept nowhere");
    return faults;
}

}  // namespace tavrin

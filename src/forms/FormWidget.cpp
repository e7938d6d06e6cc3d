#include "forms/FormWidget.h"

#include "forms/FormHost.h"

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

}  // namespace tavrin

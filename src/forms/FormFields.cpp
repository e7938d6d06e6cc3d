// SPDX-License-Identifier: Apache-2.0
#include "forms/FormFields.h"

#include "base/Paths.h"
#include "forms/FormHost.h"
#include "forms/FormValues.h"
#include "text/Numbers.h"

namespace tavrin {

namespace {

std::string Forced(const std::string& text, bool forcefloat) { return forcefloat ? ForceFloat(text) : text; }

// The value of a preset is its first word. A line of blanks has none, and then the box keeps its text.
std::string FirstWord(const std::string& line, const std::string& otherwise) {
    return std::string(FieldScanner(line).Word().value_or(otherwise));
}

}  // namespace

void CFormPresetField::ChoosePreset(int index, FormHost& host) {
    if (const std::string* line = presets.Choose(index)) Read(PresetValue(*line), host);
    Refresh();
}

std::optional<std::string> CFormXField::Take(const std::string& value) {
    text = Forced(value, forcefloat);
    return text;
}

std::string CFormXField::PresetValue(const std::string& line) const { return FirstWord(line, text); }

void CFormXYField::Show(const std::string& value) {
    auto [first, second] = SplitPair(value);
    xText = std::move(first);
    yText = std::move(second);
}

std::optional<std::string> CFormXYField::Take(const std::string& value) {
    Show(value);
    xText = Forced(xText, forcefloat);
    yText = Forced(yText, forcefloat);
    return xText + separator + yText;
}

// A preset gives its text up to the first comma and the word behind; a box for which the line has
// nothing keeps its text.
std::string CFormXYField::PresetValue(const std::string& line) const {
    FieldScanner scanner(line);
    std::string x = xText;
    std::string y = yText;
    if (const auto first = scanner.Until(',')) {
        x = *first;
        scanner.Literal(",");  // without one the line is at its end
        y = std::string(scanner.Word().value_or(yText));
    }
    return x + ',' + y;
}

void CFormXYZField::ReadBoxes(const std::array<std::string, 3>& texts, FormHost& host) {
    for (size_t i = 0; i < axes.size(); ++i) axes[i].text = texts[i];
    StoreAll(host);
}

void CFormXYZField::ChoosePreset(size_t axis, int index, FormHost& host) {
    Axis& chosen = axes[axis];
    if (const std::string* line = chosen.presets.Choose(index)) {
        chosen.text = FirstWord(*line, chosen.text);
        StoreAll(host);
    }
    Refresh();
}

void CFormXYZField::OptionChanged(const std::string& name, const std::string& value) {
    bool changed = false;
    for (Axis& axis : axes) {
        if (axis.envname.empty() || axis.envname != name) continue;
        axis.text = value;
        changed = true;
    }
    if (changed) Refresh();
}

void CFormXYZField::LoadDefaults(FormHost& host) {
    for (Axis& axis : axes) {
        if (!axis.envname.empty()) axis.text = host.GetAppVariable(axis.envname);
    }
    StoreAll(host);
    Refresh();
}

void CFormXYZField::Finish(const FormDraft& draft, FormHost& host, Report& /*report*/) {
    StoreAll(host);
    if (!draft.unsaved) return;
    for (const Axis& axis : axes) host.AddUnsavedOption(axis.envname);
}

std::vector<std::string> CFormXYZField::Faults(const FormDraft& draft) const {
    std::vector<std::string> faults;
    if (draft.unsaved) return faults;
    for (const Axis& axis : axes) CheckOptionName(axis.envname, faults);
    return faults;
}

void CFormXYZField::StoreAll(FormHost& host) {
    for (Axis& axis : axes) {
        axis.text = Forced(axis.text, forcefloat);
        if (!axis.envname.empty()) host.SetVariable(axis.envname, axis.text);
    }
}

void CFormStringInput::TakeFile(const std::string& path, FormHost& host) {
    lastDir = PathDir(path);
    Read(path, host);
    Refresh();
}

std::optional<std::string> CFormStringInput::Take(const std::string& value) {
    text = value;
    return text;
}

}  // namespace tavrin

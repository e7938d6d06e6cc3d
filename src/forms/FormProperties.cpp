// SPDX-License-Identifier: Apache-2.0
// The properties of each kind of widget.
#include "forms/FormReader.h"
#include "text/Archive.h"
#include "text/Numbers.h"
#include "text/Tokens.h"

namespace tavrin {

namespace {

constexpr const char* kSeparatorLine = "_SEPARATOR_";  // means something in other lists; a form's have none

// Properties that are understood and have no effect.
bool IsShadow(const std::string& key) { return key == "shadowtype" || key == "shadowsize"; }

// Any other word leaves the alignment as it was.
void SetAlignment(CFormLabel::Alignment& alignment, const std::string& word) {
    if (word == "left") alignment = CFormLabel::Alignment::kLeft;
    if (word == "center") alignment = CFormLabel::Alignment::kCenter;
    if (word == "right") alignment = CFormLabel::Alignment::kRight;
}

// The fields of an action, whose keys may carry a prefix.
bool SetAction(FormAction& action, std::string_view key, const std::string& value) {
    if (key == "actionto") {
        action.to = value;
    } else if (key == "actionmsg") {
        action.message = value;
    } else if (key == "actionarg") {
        action.argument = value;
    } else {
        return false;
    }
    return true;
}

// What all widgets of one option have.
bool SetOption(CFormOption& option, FormDraft& draft, const std::string& key, const std::string& value) {
    if (key == "envname") {
        option.envname = value;
    } else if (key == "notavrnsave") {
        draft.unsaved = true;
    } else {
        return false;
    }
    return true;
}

}  // namespace

bool FormReader::Property(CFormLabel& label, FormDraft& /*draft*/, const std::string& key,
                          const std::string& value) {
    if (key == "label") {
        label.label = value;
    } else if (key == "justify") {
        SetAlignment(label.alignment, value);
    } else if (key == "resize") {
        label.resize = ParseBool(value) != 0;
    } else if (key == "width") {
        label.width = ParseInt(value);
    } else if (key == "height") {
        label.height = ParseInt(value);
    } else if (!IsShadow(key)) {
        return Unexpected();
    }
    return true;
}

bool FormReader::Property(CFormPresetField& field, FormDraft& draft, const std::string& key,
                          const std::string& value) {
    if (SetOption(field, draft, key, value)) return true;
    if (key == "optioncontents") return ReadPresets(value, field.presets);
    if (key == "help") return ReadHelp(value, field);
    if (key == "optionlabel") {
        field.presets.SetCaption(value);
    } else if (key == "value") {
        draft.value = value;
    } else if (key == "forcefloat") {
        field.forcefloat = true;
    } else {
        return Unexpected();
    }
    return true;
}

bool FormReader::Property(CFormXYField& field, FormDraft& draft, const std::string& key,
                          const std::string& value) {
    if (key == "separatorlabel") {
        field.separatorLabel = value;
    } else if (key == "envseparator") {
        field.separator = value.empty() ? ',' : value.front();
    } else {
        return Property(static_cast<CFormPresetField&>(field), draft, key, value);
    }
    return true;
}

bool FormReader::Property(CFormXYZField& field, FormDraft& draft, const std::string& key,
                          const std::string& value) {
    if (key == "help") return ReadHelp(value, field);
    if (key == "headinglabel") {
        field.headingLabel = value;
    } else if (key == "forcefloat") {
        field.forcefloat = true;
    } else if (key == "notavrnsave") {
        draft.unsaved = true;
    } else {
        const char axis = key.front();
        if (axis < 'x' || axis > 'z') return Unexpected();
        return AxisProperty(field.axes[static_cast<size_t>(axis - 'x')], key.substr(1), value);
    }
    return true;
}

bool FormReader::AxisProperty(CFormXYZField::Axis& axis, const std::string& key, const std::string& value) {
    if (key == "optioncontents") return ReadPresets(value, axis.presets);
    if (key == "envname") {
        axis.envname = value;
    } else if (key == "optionlabel") {
        axis.presets.SetCaption(value);
    } else if (key == "value") {
        axis.text = value;
    } else {
        return Unexpected();
    }
    return true;
}

bool FormReader::Property(CFormButton& button, FormDraft& /*draft*/, const std::string& key,
                          const std::string& value) {
    if (SetAction(button.action, key, value)) return true;
    if (key != "buttonlabel") return Unexpected();
    button.label = value;
    return true;
}

bool FormReader::Property(CFormLedButton& button, FormDraft& draft, const std::string& key,
                          const std::string& value) {
    if (SetOption(button, draft, key, value)) return true;
    if (key != "actionarg" && SetAction(button.action, key, value)) return true;
    if (key == "buttonlabel") {
        button.label = value;
    } else if (key == "state") {
        draft.value = value;
    } else if (key == "envon") {
        button.envon = value;
    } else if (key == "envoff") {
        button.envoff = value;
    } else {
        return Unexpected();
    }
    return true;
}

bool FormReader::Property(CFormChooser& chooser, FormDraft& draft, const std::string& key,
                          const std::string& value) {
    if (SetOption(chooser, draft, key, value)) return true;
    if (key != "actionarg" && SetAction(chooser.action, key, value)) return true;
    if (key == "choosercontents") {
        return ReadContents(value, [&](std::string line) { chooser.lines.push_back(std::move(line)); });
    }
    if (key == "resize") {
        chooser.resize = ParseBool(value) != 0;
    } else if (key == "value") {
        draft.value = value;
    } else {
        return Unexpected();
    }
    return true;
}

bool FormReader::Property(CFormOkField& field, FormDraft& /*draft*/, const std::string& key,
                          const std::string& value) {
    constexpr std::string_view kDefaults = "defaults_";
    constexpr std::string_view kOk = "ok_";
    const std::string_view name = key;
    if (name.starts_with(kDefaults) && SetAction(field.defaults, name.substr(kDefaults.size()), value))
        return true;
    if (name.starts_with(kOk) && SetAction(field.ok, name.substr(kOk.size()), value)) return true;
    return IsShadow(key) || Unexpected();
}

bool FormReader::Property(CFormStringInput& input, FormDraft& draft, const std::string& key,
                          const std::string& value) {
    if (SetOption(input, draft, key, value)) return true;
    if (key == "help") return ReadHelp(value, input);
    if (key == "label") {
        input.label = value;
    } else if (key == "value") {
        draft.value = value;
    } else if (key == "file") {
        input.file = ParseBool(value) != 0;
    } else {
        return Unexpected();
    }
    return true;
}

template <typename Add>
bool FormReader::ReadContents(const std::string& value, Add add) {
    if (!OpenBlock(value)) return false;
    std::string_view line;
    while (m_archive.ReadLine(line)) {
        line = Trim(line);
        if (line == "}") break;
        if (line.empty()) continue;
        std::string text = StripQuotes(line);
        if (text != kSeparatorLine) add(std::move(text));
    }
    return true;
}

bool FormReader::ReadPresets(const std::string& value, PresetList& presets) {
    return ReadContents(value, [&](std::string line) { presets.AddPreset(std::move(line)); });
}

bool FormReader::ReadHelp(const std::string& value, CFormWidget& widget) {
    if (!OpenBlock(value)) return false;
    const int line = m_archive.LineNumber();
    if (!ReadTextBlock(m_archive, widget.help)) {
        Warn(line,
             "the block \"help\" is not closed and takes the rest of the file: its last line has to be a "
             "\"}\" alone");
    }
    return true;
}

}  // namespace tavrin

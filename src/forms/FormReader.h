// SPDX-License-Identifier: Apache-2.0
// The parser behind ReadForm.
#pragma once

#include <string>

#include "forms/FormButtons.h"
#include "forms/FormFields.h"
#include "forms/FormFrame.h"

namespace tavrin {

class CArchive;

// Reads one section. The language goes by lines: a widget's body is a series of keys with a value each, up
// to a line that is exactly "}". The end of the file closes whatever is open. Used once.
// Properties of widgets are read in FormProperties.cpp.
class FormReader {
  public:
    // Far beyond any form that can be used, and no danger to the stack.
    static constexpr int kMostNestedFrames = 200;

    FormReader(CArchive& archive, FormHost& host, Report& report)
        : m_archive(archive), m_host(host), m_report(report) {}

    bool ReadSection(CRenderOptionsEditor& form);

  private:
    // Every operation that returns false has reported why, except where the file ends in place of an
    // opening brace, which is a failure without words.
    bool Unexpected();
    // Tells what is no error, and yet hardly meant.
    void Warn(int line, const std::string& text);

    // A widget of the kind named, from behind its opening brace, as the last child of `parent`.
    bool ReadWidget(CFormFrame& parent, const std::string& kind);
    template <typename Widget>
    bool ReadInto(CFormFrame& parent);
    bool ReadFrameInto(CFormFrame& parent);

    // The body of a widget, with its closing brace.
    template <typename Widget>
    bool ReadBody(Widget& widget, FormDraft& draft);
    bool ReadBody(CFormFrame& frame, FormDraft& draft);
    bool ReadLayoutBlock(CFormFrame& frame);

    // One property. A key that the kind does not have is reported.
    bool Property(CFormLabel& label, FormDraft& draft, const std::string& key, const std::string& value);
    bool Property(CFormPresetField& field, FormDraft& draft, const std::string& key,
                  const std::string& value);
    bool Property(CFormXYField& field, FormDraft& draft, const std::string& key, const std::string& value);
    bool Property(CFormXYZField& field, FormDraft& draft, const std::string& key, const std::string& value);
    bool AxisProperty(CFormXYZField::Axis& axis, const std::string& key, const std::string& value);
    bool Property(CFormButton& button, FormDraft& draft, const std::string& key, const std::string& value);
    bool Property(CFormLedButton& button, FormDraft& draft, const std::string& key, const std::string& value);
    bool Property(CFormChooser& chooser, FormDraft& draft, const std::string& key, const std::string& value);
    bool Property(CFormOkField& field, FormDraft& draft, const std::string& key, const std::string& value);
    bool Property(CFormStringInput& input, FormDraft& draft, const std::string& key,
                  const std::string& value);

    // The opening brace of a block whose keyword's line has this value: there, or the next token.
    bool OpenBlock(const std::string& value);
    // Hands each line of a contents block to `add`. '#' is text here.
    template <typename Add>
    bool ReadContents(const std::string& value, Add add);
    bool ReadPresets(const std::string& value, PresetList& presets);
    bool ReadHelp(const std::string& value, CFormWidget& widget);

    CArchive& m_archive;
    FormHost& m_host;
    Report& m_report;
    int m_depth = 0;  // frames that are open
};

}  // namespace tavrin

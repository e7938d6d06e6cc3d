// SPDX-License-Identifier: Apache-2.0
// The widgets without edit boxes: texts, buttons and lists of choices.
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "forms/FormWidget.h"

namespace tavrin {

// "label": a line of static text.
class CFormLabel : public CFormWidget {
  public:
    static constexpr FormSize kTemplateSize = {64, 12};  // dialog units

    enum class Alignment : int { kLeft = 0, kCenter = 1, kRight = 2 };

    std::string label;
    Alignment alignment = Alignment::kLeft;
    bool resize = true;        // the widget is as large as its text; if not, as told below
    std::optional<int> width;  // pixels; that of the template if none is given
    std::optional<int> height;

    void Accept(FormVisitor& visitor) override { visitor.Visit(*this); }
};

// "button": sends an action.
class CFormButton : public CFormWidget {
  public:
    std::string label;
    FormAction action;

    void Accept(FormVisitor& visitor) override { visitor.Visit(*this); }
};

// "ledbutton": on or off.
class CFormLedButton : public CFormOption {
  public:
    std::string label;
    bool state = false;
    std::string envon;   // stored when on; "1" if empty
    std::string envoff;  // stored when off; "0" if empty
    FormAction action;   // without argument

    // The user switched it: stored, and the action to be sent, with the plain state as argument.
    FormAction Click(bool on, FormHost& host);

    void Accept(FormVisitor& visitor) override { visitor.Visit(*this); }
    void Finish(const FormDraft& draft, FormHost& host, Report& report) override;

  protected:
    bool NeedsName() const override { return false; }  // it may be there for its action
    // On for "1", for `envon` exactly, and for "true" in any case; off for everything else.
    void Show(const std::string& value) override;
    std::optional<std::string> Take(const std::string& value) override;

  private:
    std::string StateValue() const;
};

// "chooser": one line of a list.
class CFormChooser : public CFormOption {
  public:
    static constexpr int kTemplateWidth = 82;  // dialog units
    static constexpr int kNothing = -1;
    // A chooser for this option also fills the toolbar's shader type box.
    static constexpr const char* kShaderTypeOption = "TAVRN_SHADER_TYPE";

    bool resize = true;  // as wide as the widest line; if not, as the template
    std::vector<std::string> lines;
    int selected = kNothing;
    FormAction action;  // without argument

    // The user chose a line: stored, and the action to be sent, with the line as argument. The selection
    // goes to the first line that begins with the chosen one. An index without a line does nothing.
    FormAction Choose(int index, FormHost& host);

    void Accept(FormVisitor& visitor) override { visitor.Visit(*this); }
    void Finish(const FormDraft& draft, FormHost& host, Report& report) override;
    // A default that is none of the lines as well: the option then has no value until the user chooses one.
    std::vector<std::string> Faults(const FormDraft& draft) const override;
    void Removed(FormHost& host) override;

  protected:
    bool NeedsName() const override { return false; }  // it may be there for its action
    void Show(const std::string& value) override { Select(value); }
    // The value as written, if a line begins with it.
    std::optional<std::string> Take(const std::string& value) override;

  private:
    // Selects the first line that begins with the text in any case; without one the selection stays. The
    // empty text is the beginning of an empty line alone.
    bool Select(const std::string& text);

    bool m_filledShaderTypes = false;
};

// "okfield": the buttons "Default" and "OK".
class CFormOkField : public CFormWidget {
  public:
    FormAction defaults;
    FormAction ok;

    void Accept(FormVisitor& visitor) override { visitor.Visit(*this); }
};

}  // namespace tavrin

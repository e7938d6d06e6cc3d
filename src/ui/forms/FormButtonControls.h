// SPDX-License-Identifier: Apache-2.0
// The controls of widgets without edit boxes.
#pragma once

#include "forms/FormButtons.h"
#include "ui/forms/FormControl.h"

class QPushButton;

namespace tavrin {

class FormList;

class FormLabelControl : public FormControl {
  public:
    FormLabelControl(QWidget* frame, CFormLabel& label, const FormNeeds& needs);
};

class FormButtonControl : public FormControl {
  public:
    FormButtonControl(QWidget* frame, CFormButton& button, const FormNeeds& needs);
};

class FormLedButtonControl : public FormControl {
  public:
    FormLedButtonControl(QWidget* frame, CFormLedButton& button, const FormNeeds& needs);
    void Refresh() override;

  private:
    CFormLedButton& m_led;
    QPushButton* m_button;
};

class FormChooserControl : public FormControl {
  public:
    FormChooserControl(QWidget* frame, CFormChooser& chooser, const FormNeeds& needs);
    void Refresh() override;

  private:
    int WidestLine() const;

    CFormChooser& m_chooser;
    FormList* m_list;
};

class FormOkFieldControl : public FormControl {
  public:
    FormOkFieldControl(QWidget* frame, CFormOkField& field, const FormNeeds& needs);
};

}  // namespace tavrin

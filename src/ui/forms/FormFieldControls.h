// SPDX-License-Identifier: Apache-2.0
// The controls of widgets with edit boxes.
#pragma once

#include <array>

#include "forms/FormFields.h"
#include "ui/forms/FormControl.h"

namespace tavrin {

class FormEdit;
class FormList;

class FormXFieldControl : public FormControl {
  public:
    FormXFieldControl(QWidget* frame, CFormXField& field, const FormNeeds& needs);
    void Refresh() override;

  private:
    CFormXField& m_field;
    FormList* m_list;
    FormEdit* m_edit;
};

class FormXYFieldControl : public FormControl {
  public:
    FormXYFieldControl(QWidget* frame, CFormXYField& field, const FormNeeds& needs);
    void Refresh() override;

  private:
    void Read();

    CFormXYField& m_field;
    FormList* m_list;
    FormEdit* m_first;
    FormEdit* m_second;
};

class FormXYZFieldControl : public FormControl {
  public:
    FormXYZFieldControl(QWidget* frame, CFormXYZField& field, const FormNeeds& needs);
    void Refresh() override;

  private:
    void Read();

    CFormXYZField& m_field;
    std::array<FormList*, 3> m_lists{};
    std::array<FormEdit*, 3> m_edits{};
};

class FormStringInputControl : public FormControl {
  public:
    FormStringInputControl(QWidget* frame, CFormStringInput& input, const FormNeeds& needs);
    void Refresh() override;

  private:
    void ChooseFile();

    CFormStringInput& m_input;
    FormEdit* m_edit;
};

}  // namespace tavrin

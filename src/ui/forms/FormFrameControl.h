// SPDX-License-Identifier: Apache-2.0
// The controls of widgets that hold widgets.
#pragma once

#include <vector>

#include "forms/FormFrame.h"
#include "ui/forms/FormControl.h"

class QGroupBox;

namespace tavrin {

class FormFrameControl : public FormControl {
  public:
    FormFrameControl(QWidget* frame, CFormFrame& form, const FormNeeds& needs);
};

// The whole form, which the window scrolls. What a section of the form that failed has left stands below all
// that was placed, one widget below the other.
class FormRootControl : public FormControl {
  public:
    FormRootControl(QWidget* window, CRenderOptionsEditor& form, const FormNeeds& needs);
};

}  // namespace tavrin

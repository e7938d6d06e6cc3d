// SPDX-License-Identifier: Apache-2.0
// The window "Render Options [F2]": the form that the site has written.
#pragma once

#include "ui/forms/FormControl.h"
#include "ui/windows/ToolWindow.h"

class QAbstractScrollArea;

namespace tavrin {

class CRenderOptionsEditor;

// Lives as long as the frame. The form is read when it is made, and outlives it. Both scroll bars are always
// there.
class RenderOptionsWindow : public ToolWindow {
  public:
    RenderOptionsWindow(QWidget* frame, CRenderOptionsEditor& form, FormNeeds needs);
    ~RenderOptionsWindow() override;

  private:
    const FormNeeds m_needs;
    QAbstractScrollArea* m_area;
};

}  // namespace tavrin

// SPDX-License-Identifier: Apache-2.0
#include "ui/forms/FormControl.h"

#include <QPushButton>

#include "ui/base/Text.h"
#include "ui/dialogs/Messages.h"
#include "ui/forms/FormButtonControls.h"
#include "ui/forms/FormFieldControls.h"
#include "ui/forms/FormFrameControl.h"

namespace tavrin {

namespace {

class Maker : public FormVisitor {
  public:
    Maker(QWidget* frame, const FormNeeds& needs) : m_frame(frame), m_needs(needs) {}

    void Visit(CFormFrame& frame) override { Make<FormFrameControl>(frame); }
    void Visit(CFormLabel& label) override { Make<FormLabelControl>(label); }
    void Visit(CFormXField& field) override { Make<FormXFieldControl>(field); }
    void Visit(CFormXYField& field) override { Make<FormXYFieldControl>(field); }
    void Visit(CFormXYZField& field) override { Make<FormXYZFieldControl>(field); }
    void Visit(CFormButton& button) override { Make<FormButtonControl>(button); }
    void Visit(CFormLedButton& button) override { Make<FormLedButtonControl>(button); }
    void Visit(CFormChooser& chooser) override { Make<FormChooserControl>(chooser); }
    void Visit(CFormOkField& field) override { Make<FormOkFieldControl>(field); }
    void Visit(CFormStringInput& input) override { Make<FormStringInputControl>(input); }

    FormControl* made = nullptr;

  private:
    template <typename Control, typename Widget>
    void Make(Widget& widget) {
        made = new Control(m_frame, widget, m_needs);
    }

    QWidget* m_frame;
    const FormNeeds& m_needs;
};

}  // namespace

FormControl::FormControl(QWidget* frame, CFormWidget& widget, const FormNeeds& needs)
    : QWidget(frame), m_widget(widget), m_needs(needs) {
    m_widget.refresh = [this] { Refresh(); };
}

FormControl::~FormControl() { m_widget.refresh = {}; }

QWidget* FormControl::MakeInfo(const UnitRect& rect, const std::string& title) {
    auto* info = new QPushButton("Info...", this);
    info->setAutoDefault(false);
    info->setEnabled(!m_widget.help.empty());
    Place(*info, rect);
    connect(info, &QPushButton::clicked, this, [this, title] {
        ShowInformation(window(), Shown(title), Shown(m_widget.help).replace("\r\n", "\n"));
    });
    return info;
}

FormControl* MakeFormControl(QWidget* frame, CFormWidget& widget, const FormNeeds& needs) {
    Maker maker(frame, needs);
    widget.Accept(maker);
    return maker.made;
}

}  // namespace tavrin

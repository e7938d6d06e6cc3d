// SPDX-License-Identifier: Apache-2.0
// A widget of the form in the Render Options window.
#pragma once

#include <QWidget>
#include <functional>

#include "forms/FormHost.h"
#include "forms/FormWidget.h"
#include "ui/windows/DialogUnits.h"

namespace tavrin {

// What controls work with. All of it outlives them.
struct FormNeeds {
    FormHost& host;
    // Sends an action to the application; while it goes on, events may come to any control.
    std::function<void(const FormAction&)> send;
};

// Shows one widget of the form, which outlives it, and hands it what the user enters. A child of the control
// of its frame, with the size that it has once it is made.
class FormControl : public QWidget {
  public:
    FormControl(QWidget* frame, CFormWidget& widget, const FormNeeds& needs);
    ~FormControl() override;

    // From the widget to the controls, which tell nobody.
    virtual void Refresh() {}

  protected:
    const FormNeeds& Needs() const { return m_needs; }
    FormHost& Host() const { return m_needs.host; }
    void Send(const FormAction& action) const {
        if (action.IsSet()) m_needs.send(action);
    }
    DialogUnits Units() const { return DialogUnits(fontMetrics()); }
    void Place(QWidget& control, const UnitRect& rect) const { control.setGeometry(Units().Pixels(rect)); }
    // A button that shows the widget's help under that title.
    QWidget* MakeInfo(const UnitRect& rect, const std::string& title);

  private:
    CFormWidget& m_widget;
    const FormNeeds& m_needs;
};

// Makes the control for a widget of any kind, with all that is in it.
FormControl* MakeFormControl(QWidget* frame, CFormWidget& widget, const FormNeeds& needs);

}  // namespace tavrin

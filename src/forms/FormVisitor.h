// SPDX-License-Identifier: Apache-2.0
// How a window finds out what kind of widget it is to show.
#pragma once

namespace tavrin {

class CFormButton;
class CFormChooser;
class CFormFrame;
class CFormLabel;
class CFormLedButton;
class CFormOkField;
class CFormStringInput;
class CFormXField;
class CFormXYField;
class CFormXYZField;

// Given to CFormWidget::Accept, which calls the one operation for the widget's kind. A frame's children
// are not visited by themselves: the window of the frame does that, within the frame's own.
class FormVisitor {
  public:
    virtual ~FormVisitor() = default;

    virtual void Visit(CFormFrame& frame) = 0;
    virtual void Visit(CFormLabel& label) = 0;
    virtual void Visit(CFormXField& field) = 0;
    virtual void Visit(CFormXYField& field) = 0;
    virtual void Visit(CFormXYZField& field) = 0;
    virtual void Visit(CFormButton& button) = 0;
    virtual void Visit(CFormLedButton& button) = 0;
    virtual void Visit(CFormChooser& chooser) = 0;
    virtual void Visit(CFormOkField& field) = 0;
    virtual void Visit(CFormStringInput& input) = 0;
};

}  // namespace tavrin

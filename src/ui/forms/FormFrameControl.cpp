// SPDX-License-Identifier: Apache-2.0
#include "ui/forms/FormFrameControl.h"

#include <QGroupBox>
#include <algorithm>

namespace tavrin {

namespace {

std::vector<FormControl*> MakeChildren(QWidget* frame, CFormFrame& form, const FormNeeds& needs) {
    std::vector<FormControl*> controls;
    for (const auto& child : form.children) controls.push_back(MakeFormControl(frame, *child, needs));
    return controls;
}

// The first ones, as many as there are to be in the grid.
void PlaceInGrid(CFormFrame& form, const std::vector<FormControl*>& controls, size_t count) {
    std::vector<FormSize> sizes;
    for (size_t i = 0; i < count; ++i) sizes.push_back({controls[i]->width(), controls[i]->height()});
    const std::vector<FormPoint> places = form.Place(sizes);
    for (size_t i = 0; i < places.size(); ++i) controls[i]->move(places[i].x, places[i].y);
}

QSize TemplateSize(const DialogUnits& units, const FormSize& size) {
    return {units.Across(size.width), units.Down(size.height)};
}

}  // namespace

FormFrameControl::FormFrameControl(QWidget* frame, CFormFrame& form, const FormNeeds& needs)
    : FormControl(frame, form, needs) {
    auto* box = new QGroupBox(this);
    const auto controls = MakeChildren(this, form, needs);
    PlaceInGrid(form, controls, controls.size());
    resize(controls.empty() ? TemplateSize(Units(), CFormFrame::kTemplateSize)
                            : QSize(form.contentWidth, form.contentHeight));
    box->setGeometry(rect());
}

FormRootControl::FormRootControl(QWidget* window, CRenderOptionsEditor& form, const FormNeeds& needs)
    : FormControl(window, form, needs) {
    const auto controls = MakeChildren(this, form, needs);
    const size_t placed = std::min(form.placed, controls.size());
    PlaceInGrid(form, controls, placed);
    QSize whole(form.contentWidth, form.contentHeight);
    if (placed == 0) whole = QSize(0, form.margin);
    for (size_t i = placed; i < controls.size(); ++i) {
        controls[i]->move(form.margin, whole.height());
        whole = {std::max(whole.width(), controls[i]->width() + 2 * form.margin),
                 whole.height() + controls[i]->height() + form.spacing};
    }
    resize(controls.empty() ? TemplateSize(Units(), CRenderOptionsEditor::kTemplateSize) : whole);
}

}  // namespace tavrin

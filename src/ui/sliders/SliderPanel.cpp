// SPDX-License-Identifier: Apache-2.0
#include "ui/sliders/SliderPanel.h"

#include <QEvent>

#include "library/ValueVisitor.h"
#include "ui/sliders/ColorPanels.h"
#include "ui/sliders/NumberPanels.h"
#include "ui/sliders/TextPanels.h"

namespace tavrin {

namespace {

constexpr int kRefusalSeconds = 4;

}  // namespace

SliderPanel::SliderPanel(QWidget* frame, COpButton& button, const SliderNeeds& needs)
    : QWidget(frame), m_button(button), m_needs(needs) {}

void SliderPanel::Release() {
    m_held.reset();
    m_button = {};
}

void SliderPanel::HoldEdit(bool holds) {
    if (!holds) {
        m_held.reset();
    } else if (m_held == nullptr && Button() != nullptr) {
        m_held = std::make_unique<HeldEdit>(m_needs.document, kAct);
    }
}

void SliderPanel::ShowRefusal(const std::string& text) const { m_needs.showStatus(text, kRefusalSeconds); }

std::string SliderPanel::VariableName() const {
    const COpButton* button = Button();
    return button == nullptr ? "" : button->VariableName({m_needs.document.preparedVariables});
}

// A drag that the value was taken from ends there.
void SliderPanel::changeEvent(QEvent* event) {
    QWidget::changeEvent(event);
    if (event->type() == QEvent::EnabledChange && !isEnabled()) HoldEdit(false);
}

void SliderPanel::hideEvent(QHideEvent* event) {
    QWidget::hideEvent(event);
    HoldEdit(false);
}

PanelKind KindOfPanel(const COpButton& button) {
    if (button.currentcast >= button.values.size()) return PanelKind::kGeneric;
    return VisitValue(*button.values.at(button.currentcast),
                      ValueCalls{
                          [](const COpValueFloat&) { return PanelKind::kFloat; },
                          [](const COpValueXyz&) { return PanelKind::kXyz; },
                          [](const COpValueRgb&) { return PanelKind::kRgb; },
                          [](const COpValueRgba&) { return PanelKind::kRgba; },
                          [](const COpValueString&) { return PanelKind::kString; },
                          [](const COpValueGeneric&) { return PanelKind::kGeneric; },
                      });
}

int PanelUnitsHigh(PanelKind kind) {
    switch (kind) {
        case PanelKind::kFloat:
            return CFloatPanel::kUnitsHigh;
        case PanelKind::kXyz:
            return CXyzPanel::kUnitsHigh;
        case PanelKind::kRgb:
            return CRgbPanel::kUnitsHigh;
        case PanelKind::kRgba:
            return CRgbaPanel::kUnitsHigh;
        case PanelKind::kString:
            return CStringPanel::kUnitsHigh;
        case PanelKind::kGeneric:
            break;
    }
    return CGenericPanel::kUnitsHigh;
}

SliderPanel* MakePanel(PanelKind kind, QWidget* frame, COpButton& button, const SliderNeeds& needs) {
    switch (kind) {
        case PanelKind::kFloat:
            return new CFloatPanel(frame, button, needs);
        case PanelKind::kXyz:
            return new CXyzPanel(frame, button, needs);
        case PanelKind::kRgb:
            return new CRgbPanel(frame, button, needs);
        case PanelKind::kRgba:
            return new CRgbaPanel(frame, button, needs);
        case PanelKind::kString:
            return new CStringPanel(frame, button, needs);
        case PanelKind::kGeneric:
            break;
    }
    return new CGenericPanel(frame, button, needs);
}

}  // namespace tavrin

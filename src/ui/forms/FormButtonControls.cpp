// SPDX-License-Identifier: Apache-2.0
#include "ui/forms/FormButtonControls.h"

#include <QGroupBox>
#include <QLabel>
#include <QPushButton>
#include <QStyleOptionButton>
#include <algorithm>

#include "ui/base/DocumentText.h"
#include "ui/base/Text.h"
#include "ui/forms/FormEdits.h"
#include "ui/forms/FormSizes.h"

namespace tavrin {

namespace {

constexpr int kTextTop = 2;       // pixels above a label's text
constexpr int kTextRoom = 4;      // pixels that a label is higher than its text
constexpr int kChooserRoom = 30;  // pixels that a chooser is wider than its widest line

Qt::Alignment AlignmentOf(CFormLabel::Alignment alignment) {
    switch (alignment) {
        case CFormLabel::Alignment::kCenter:
            return Qt::AlignHCenter;
        case CFormLabel::Alignment::kRight:
            return Qt::AlignRight;
        case CFormLabel::Alignment::kLeft:
            break;
    }
    return Qt::AlignLeft;
}

template <typename Button = QPushButton>
QPushButton* MakeButton(FormControl* control, const std::string& label) {
    auto* button = new Button(LiteralLabel(Decoded(label).text), control);
    button->setAutoDefault(false);
    return button;
}

// Alight while it is on: pressed alone, a button of a dark desktop looks like the others.
class LedButton : public QPushButton {
  public:
    using QPushButton::QPushButton;

  protected:
    void initStyleOption(QStyleOptionButton* option) const override {
        QPushButton::initStyleOption(option);
        if (!isChecked()) return;
        option->palette.setColor(QPalette::Button, palette().color(QPalette::Highlight));
        option->palette.setColor(QPalette::ButtonText, palette().color(QPalette::HighlightedText));
    }
};

// As large as its caption asks for, but not too small to be hit.
QSize SizeOf(const QPushButton& button, const DialogUnits& units) {
    return {std::max(units.Across(form_sizes::button::kLeastWidth), button.sizeHint().width()),
            units.Down(form_sizes::button::kHeight)};
}

}  // namespace

FormLabelControl::FormLabelControl(QWidget* frame, CFormLabel& label, const FormNeeds& needs)
    : FormControl(frame, label, needs) {
    auto* text = new QLabel(this);
    text->setTextFormat(Qt::PlainText);
    text->setText(Decoded(label.label).text);
    text->setAlignment(AlignmentOf(label.alignment) | Qt::AlignVCenter);
    const QSize size = text->sizeHint();
    if (label.resize) {
        text->setGeometry(QRect(QPoint(0, kTextTop), size));
        resize(size.width(), size.height() + kTextRoom);
        return;
    }
    const int width = label.width.value_or(Units().Across(CFormLabel::kTemplateSize.width));
    const int height = label.height.value_or(Units().Down(CFormLabel::kTemplateSize.height));
    text->setGeometry(0, (height - size.height()) / 2, width, size.height());
    resize(width, height);
}

FormButtonControl::FormButtonControl(QWidget* frame, CFormButton& button, const FormNeeds& needs)
    : FormControl(frame, button, needs) {
    QPushButton* push = MakeButton(this, button.label);
    push->resize(SizeOf(*push, Units()));
    connect(push, &QPushButton::clicked, this, [this, &button] { Send(button.action); });
    resize(push->size());
}

FormLedButtonControl::FormLedButtonControl(QWidget* frame, CFormLedButton& button, const FormNeeds& needs)
    : FormControl(frame, button, needs), m_led(button), m_button(MakeButton<LedButton>(this, button.label)) {
    m_button->setCheckable(true);
    m_button->resize(SizeOf(*m_button, Units()));
    connect(m_button, &QPushButton::clicked, this, [this](bool on) { Send(m_led.Click(on, Host())); });
    resize(m_button->size());
    Refresh();
}

void FormLedButtonControl::Refresh() { m_button->setChecked(m_led.state); }

FormChooserControl::FormChooserControl(QWidget* frame, CFormChooser& chooser, const FormNeeds& needs)
    : FormControl(frame, chooser, needs), m_chooser(chooser) {
    m_list = new FormList(this, Decoded(chooser.envname).text,
                          [this](int index) { Send(m_chooser.Choose(index, Host())); });
    m_list->SetLines(chooser.lines);
    const DialogUnits units = Units();
    m_list->resize(chooser.resize ? WidestLine() + kChooserRoom : units.Across(CFormChooser::kTemplateWidth),
                   units.Down(form_sizes::kLine));
    resize(m_list->size());
    Refresh();
}

int FormChooserControl::WidestLine() const {
    int widest = 0;
    for (const std::string& line : m_chooser.lines)
        widest = std::max(widest, fontMetrics().horizontalAdvance(Decoded(line).text));
    return widest;
}

void FormChooserControl::Refresh() { m_list->setCurrentIndex(m_chooser.selected); }

FormOkFieldControl::FormOkFieldControl(QWidget* frame, CFormOkField& field, const FormNeeds& needs)
    : FormControl(frame, field, needs) {
    auto* box = new QGroupBox(this);
    Place(*box, {0, 0, form_sizes::okfield::kWidth, form_sizes::okfield::kHeight});
    const auto add = [this](const char* caption, const UnitRect& rect, const FormAction& action) {
        QPushButton* button = MakeButton(this, caption);
        Place(*button, rect);
        connect(button, &QPushButton::clicked, this, [this, &action] { Send(action); });
    };
    add("Default", form_sizes::okfield::kDefault, field.defaults);
    add("OK", form_sizes::okfield::kOk, field.ok);
    resize(box->size());
}

}  // namespace tavrin

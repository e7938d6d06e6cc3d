// SPDX-License-Identifier: Apache-2.0
#include "ui/sliders/NumberSpin.h"

#include <QHBoxLayout>
#include <QPointer>
#include <QToolButton>
#include <QWheelEvent>
#include <algorithm>
#include <cmath>
#include <utility>

#include "sliders/NumberText.h"
#include "ui/sliders/NumberField.h"

namespace tavrin {

namespace {

constexpr int kCoarse = 10;  // steps at a time, with Shift

// A step is the least there is: what asks for less of it gets one.
int WholeSteps(double steps) {
    const int whole = static_cast<int>(std::lround(steps));
    if (whole != 0) return whole;
    return steps > 0 ? 1 : -1;
}

}  // namespace

CNumberSpin::CNumberSpin(QWidget* parent, const QString& name, std::function<void(float)> callback,
                         const SpinRange& range)
    : QWidget(parent), m_callback(std::move(callback)), m_range(range), m_value(range.min) {
    m_field = new NumberField(this, name,
                              {.typed = [this] { ReadText(); },
                               .left = [this] { ShowValue(); },
                               .stepped = [this](double steps) { Step(steps); }});
    setFocusProxy(m_field);
    auto* arrows = new QVBoxLayout;
    arrows->setSpacing(0);
    arrows->addWidget(MakeArrow(Qt::UpArrow, 1));
    arrows->addWidget(MakeArrow(Qt::DownArrow, -1));
    auto* layout = new QHBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(0);
    layout->addWidget(m_field);
    layout->addLayout(arrows);
    ShowValue();
}

// A field in the midst of a signal, by which the user's number came here, is needed until that is over.
CNumberSpin::~CNumberSpin() {
    if (!m_isTelling) return;
    m_field->setParent(nullptr);
    m_field->deleteLater();
}

QToolButton* CNumberSpin::MakeArrow(Qt::ArrowType arrow, int steps) {
    auto* button = new QToolButton(this);
    button->setArrowType(arrow);
    button->setAutoRepeat(true);
    button->setFocusPolicy(Qt::NoFocus);
    button->setSizePolicy(QSizePolicy::Fixed, QSizePolicy::Ignored);
    button->setFixedWidth(fontMetrics().height());
    connect(button, &QToolButton::pressed, this, [this, steps] {
        m_field->setFocus(Qt::MouseFocusReason);
        Step(steps);
    });
    return button;
}

void CNumberSpin::SetValue(float value) {
    if (std::isnan(value)) return;
    const float inRange = std::clamp(value, m_range.min, m_range.max);
    if (inRange == m_value) return;
    m_value = inRange;
    ShowValue();
}

void CNumberSpin::ReadText() {
    const std::string text = m_field->Text();
    if (IsBeginOfShare(text)) return;
    const std::optional<float> number = ReadNumber(text);
    if (!number || *number < m_range.min || *number > m_range.max) {
        PutBack();
        return;
    }
    m_value = *number;
    Tell();
}

// The caret stays before what it was before.
void CNumberSpin::PutBack() {
    const auto behind = m_field->text().size() - m_field->cursorPosition();
    ShowValue();
    const auto length = m_field->text().size();
    m_field->setCursorPosition(static_cast<int>(length - std::min(behind, length)));
}

void CNumberSpin::wheelEvent(QWheelEvent* event) {
    if (!m_field->hasFocus()) {
        event->ignore();
        return;
    }
    const int notches = m_wheel.Turn(*event);
    event->accept();
    const bool isCoarse = event->modifiers().testFlag(Qt::ShiftModifier);
    if (notches != 0) Step(isCoarse ? notches * kCoarse : notches);
}

void CNumberSpin::Step(double steps) {
    const int position = std::clamp(Position() + WholeSteps(steps), 0, m_range.steps);
    const float value = ValueAt(position);
    if (value == m_value) return;
    m_value = value;
    ShowValue();
    Tell();
}

// Where the value stands, cut off to whole steps. A value that a step gave stands there, though its number in
// 32 bits may be a bit less.
int CNumberSpin::Position() const {
    const double share = (static_cast<double>(m_value) - static_cast<double>(m_range.min)) /
                         (static_cast<double>(m_range.max) - static_cast<double>(m_range.min));
    const int position = static_cast<int>(share * m_range.steps);
    return position < m_range.steps && ValueAt(position + 1) == m_value ? position + 1 : position;
}

float CNumberSpin::ValueAt(int position) const {
    const double length = static_cast<double>(m_range.max) - static_cast<double>(m_range.min);
    return static_cast<float>(length * position / m_range.steps + static_cast<double>(m_range.min));
}

void CNumberSpin::ShowValue() { m_field->ShowNumber(m_value); }

void CNumberSpin::Tell() {
    const QPointer<CNumberSpin> self(this);
    const auto callback = m_callback;
    m_isTelling = true;
    callback(m_value);
    if (self != nullptr) m_isTelling = false;
}

}  // namespace tavrin

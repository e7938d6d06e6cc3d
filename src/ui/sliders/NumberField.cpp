// SPDX-License-Identifier: Apache-2.0
#include "ui/sliders/NumberField.h"

#include <QKeyEvent>
#include <QPalette>
#include <utility>

#include "sliders/NumberText.h"
#include "ui/base/Text.h"

namespace tavrin {

namespace {

constexpr int kMaxLength = 64;  // characters; no number that anybody types is longer
constexpr QRgb kRefusedOnLight = 0xffb00020;
constexpr QRgb kRefusedOnDark = 0xffff8a80;

// How far an arrow or page key moves; 0 for other keys.
double StepsOf(const QKeyEvent& key) {
    const bool isCtrl = (key.modifiers() & Qt::ControlModifier) != 0;
    const bool isShift = (key.modifiers() & Qt::ShiftModifier) != 0;
    const double arrow = isCtrl ? 0.1 : isShift ? 10 : 1;
    switch (key.key()) {
        case Qt::Key_Up:
            return arrow;
        case Qt::Key_Down:
            return -arrow;
        case Qt::Key_PageUp:
            return 10;
        case Qt::Key_PageDown:
            return -10;
        default:
            return 0;
    }
}

}  // namespace

NumberField::NumberField(QWidget* parent, const QString& name, Hooks hooks)
    : QLineEdit(parent), m_hooks(std::move(hooks)) {
    setAccessibleName(name);
    setMaxLength(kMaxLength);
    connect(this, &QLineEdit::textEdited, this, [this] { m_hooks.typed(); });
}

void NumberField::ShowNumber(float value) {
    SetRefused({});
    const QString text = Shown(NumberText(value));
    if (text != this->text()) setText(text);
}

void NumberField::Type(const QString& text) {
    selectAll();
    insert(text);  // which counts as the user's doing
}

std::optional<float> NumberField::Number() const { return ReadNumber(Text()); }

std::string NumberField::Text() const { return Bytes(text()); }

void NumberField::SetRefused(const QString& reason) {
    const bool isRefused = !reason.isEmpty();
    if (isRefused) setToolTip(reason);
    if (isRefused == m_isRefused) return;
    m_isRefused = isRefused;
    if (!isRefused) {
        setToolTip({});
        setPalette({});
        return;
    }
    QPalette marked = palette();
    const bool isDark = marked.color(QPalette::Base).lightness() < 128;
    marked.setColor(QPalette::Text, QColor(isDark ? kRefusedOnDark : kRefusedOnLight));
    setPalette(marked);
}

void NumberField::focusOutEvent(QFocusEvent* event) {
    QLineEdit::focusOutEvent(event);
    if (event->reason() != Qt::PopupFocusReason && m_hooks.left) m_hooks.left();
}

void NumberField::keyPressEvent(QKeyEvent* event) {
    const double steps = StepsOf(*event);
    if (steps == 0 || !m_hooks.stepped || isReadOnly()) {
        QLineEdit::keyPressEvent(event);
        return;
    }
    event->accept();
    m_hooks.stepped(steps);
}

}  // namespace tavrin

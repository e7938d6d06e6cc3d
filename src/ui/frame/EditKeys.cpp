// SPDX-License-Identifier: Apache-2.0
#include "ui/frame/EditKeys.h"

#include <QAbstractItemView>
#include <QAbstractSlider>
#include <QAbstractSpinBox>
#include <QComboBox>
#include <QCoreApplication>
#include <QKeyEvent>
#include <QLineEdit>
#include <QPlainTextEdit>
#include <QTextEdit>

namespace tavrin {

namespace {

bool IsTextField(const QObject* object) {
    const auto* chooser = qobject_cast<const QComboBox*>(object);
    return qobject_cast<const QLineEdit*>(object) != nullptr ||
           qobject_cast<const QTextEdit*>(object) != nullptr ||
           qobject_cast<const QPlainTextEdit*>(object) != nullptr ||
           qobject_cast<const QAbstractSpinBox*>(object) != nullptr ||
           (chooser != nullptr && chooser->isEditable());
}

// Moves within itself by the arrow keys.
bool TakesArrows(const QObject* object) {
    return qobject_cast<const QAbstractItemView*>(object) != nullptr ||
           qobject_cast<const QAbstractSlider*>(object) != nullptr ||
           qobject_cast<const QComboBox*>(object) != nullptr;
}

constexpr const char* kChosen = "tavrinChosenByHand";  // property of what the user gave the focus

bool IsChosen(const QWidget& widget) { return widget.property(kChosen).toBool(); }

void SetChosen(QWidget& widget, bool chosen) {
    if (TakesArrows(&widget) && chosen != IsChosen(widget)) widget.setProperty(kChosen, chosen);
}

// What a press on a widget gives the focus to, whether or not it had it.
void ChooseByClick(QWidget& pressed) {
    for (QWidget* widget = &pressed; widget != nullptr; widget = widget->parentWidget()) {
        if (TakesArrows(widget) && (widget->focusPolicy() & Qt::ClickFocus) != 0) {
            SetChosen(*widget, true);
            return;
        }
        if (widget->isWindow()) return;
    }
}

// Whether the focus comes back with the window, or when a menu has closed.
bool IsOnlyLent(Qt::FocusReason reason) {
    return reason == Qt::ActiveWindowFocusReason || reason == Qt::PopupFocusReason ||
           reason == Qt::MenuBarFocusReason;
}

bool IsTab(const QKeyEvent& key) { return key.key() == Qt::Key_Tab || key.key() == Qt::Key_Backtab; }

bool IsArrow(const QKeyEvent& key) {
    return (key.key() == Qt::Key_Up || key.key() == Qt::Key_Down) &&
           (key.modifiers() & ~Qt::KeypadModifier) == Qt::NoModifier;
}

bool IsEditingKey(const QKeyEvent& key) {
    if (IsArrow(key)) return true;
    switch (key.key()) {
        case Qt::Key_Escape:
        case Qt::Key_Delete:
        case Qt::Key_Insert:
            return true;
        case Qt::Key_A:
        case Qt::Key_C:
        case Qt::Key_V:
        case Qt::Key_X:
        case Qt::Key_Y:
            return key.modifiers() == Qt::ControlModifier;
        case Qt::Key_Z:  // a field takes back its own typing
            return (key.modifiers() & ~Qt::ShiftModifier) == Qt::ControlModifier;
        default:
            return false;
    }
}

// A list that is open, as that of a chooser, has been opened by hand.
bool Claims(const QWidget& widget, const QKeyEvent& key) {
    if (IsTextField(&widget)) return IsEditingKey(key);
    if (!TakesArrows(&widget) || !IsArrow(key)) return false;
    return IsChosen(widget) || widget.window()->windowType() == Qt::Popup;
}

}  // namespace

EditKeys::EditKeys() { QCoreApplication::instance()->installEventFilter(this); }

EditKeys::~EditKeys() { QCoreApplication::instance()->removeEventFilter(this); }

// The toolkit names the Tab key as the reason also where it looks for a first widget itself.
bool EditKeys::eventFilter(QObject* object, QEvent* event) {
    if (!object->isWidgetType()) return false;
    auto& widget = static_cast<QWidget&>(*object);
    switch (event->type()) {
        case QEvent::KeyPress:
            m_tabIsDown = IsTab(static_cast<const QKeyEvent&>(*event));
            break;
        case QEvent::KeyRelease:
        case QEvent::WindowActivate:
        case QEvent::WindowDeactivate:
            m_tabIsDown = false;
            break;
        case QEvent::MouseButtonPress:
            ChooseByClick(widget);
            break;
        case QEvent::FocusIn:
            if (m_tabIsDown || static_cast<const QFocusEvent&>(*event).reason() == Qt::ShortcutFocusReason)
                SetChosen(widget, true);
            break;
        case QEvent::FocusOut:
            if (!IsOnlyLent(static_cast<const QFocusEvent&>(*event).reason())) SetChosen(widget, false);
            break;
        case QEvent::Hide:
            SetChosen(widget, false);
            break;
        case QEvent::ShortcutOverride:
            if (!Claims(widget, static_cast<const QKeyEvent&>(*event))) break;
            event->accept();
            return true;
        default:
            break;
    }
    return false;
}

}  // namespace tavrin

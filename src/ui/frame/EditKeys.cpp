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
            return key.modifiers() == Qt::ControlModifier;
        default:
            return false;
    }
}

}  // namespace

EditKeys::EditKeys() { QCoreApplication::instance()->installEventFilter(this); }

EditKeys::~EditKeys() { QCoreApplication::instance()->removeEventFilter(this); }

bool EditKeys::eventFilter(QObject* object, QEvent* event) {
    if (event->type() != QEvent::ShortcutOverride || !object->isWidgetType()) return false;
    const auto& key = static_cast<const QKeyEvent&>(*event);
    const bool claimed = IsTextField(object) ? IsEditingKey(key) : TakesArrows(object) && IsArrow(key);
    if (!claimed) return false;
    event->accept();
    return true;
}

}  // namespace tavrin

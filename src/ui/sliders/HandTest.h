// SPDX-License-Identifier: Apache-2.0
// A user's hand on one widget of a test, by events as the platform sends them.
#pragma once

#include <QApplication>
#include <QKeyEvent>
#include <QLineEdit>
#include <QMouseEvent>
#include <QTest>
#include <QWheelEvent>

namespace tavrin::test {

// False if nobody took the event.
inline bool SendMouse(QWidget& widget, QEvent::Type type, QPointF at, Qt::MouseButton button,
                      Qt::MouseButtons held) {
    QMouseEvent event(type, at, widget.mapToGlobal(at), button, held, {});
    QSpontaneKeyEvent::setSpontaneous(&event);
    return qApp->notify(&widget, &event);
}
inline void PressAt(QWidget& widget, QPointF at, Qt::MouseButton button = Qt::LeftButton) {
    SendMouse(widget, QEvent::MouseButtonPress, at, button, button);
}
inline void DragTo(QWidget& widget, QPointF at, Qt::MouseButtons held = Qt::LeftButton) {
    SendMouse(widget, QEvent::MouseMove, at, Qt::NoButton, held);
}
inline void ReleaseAt(QWidget& widget, QPointF at, Qt::MouseButton button = Qt::LeftButton) {
    SendMouse(widget, QEvent::MouseButtonRelease, at, button, Qt::NoButton);
}
inline void ClickAt(QWidget& widget, QPointF at) {
    PressAt(widget, at);
    ReleaseAt(widget, at);
}

// Turns the mouse's wheel over the widget; 120 to a notch, positive away from the user.
inline void TurnWheel(QWidget& widget, int eighths, Qt::KeyboardModifiers keys = {}) {
    const QPointF at = QRectF(widget.rect()).center();
    QWheelEvent event(at, widget.mapToGlobal(at), {}, {0, eighths}, Qt::NoButton, keys, Qt::NoScrollPhase,
                      false);
    QSpontaneKeyEvent::setSpontaneous(&event);
    qApp->notify(&widget, &event);
}

// Replaces the field's text, key by key.
inline void TypeInto(QLineEdit& field, const QString& text) {
    field.selectAll();
    QTest::keyClicks(&field, text);
}

// Replaces the field's text at once, as the program's own insertion that counts as typed.
inline void ReplaceText(QLineEdit& field, const QString& text) {
    field.selectAll();
    field.insert(text);
}

// Presses a key over a widget that may not take it.
inline void PressKey(QWidget& widget, int key, const QString& text = {}) {
    QKeyEvent event(QEvent::KeyPress, key, {}, text);
    QSpontaneKeyEvent::setSpontaneous(&event);
    qApp->notify(&widget, &event);
}

}  // namespace tavrin::test

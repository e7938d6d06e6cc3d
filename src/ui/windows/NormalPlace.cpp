// SPDX-License-Identifier: Apache-2.0
#include "ui/windows/NormalPlace.h"

#include <QEvent>
#include <QScreen>
#include <QTimer>
#include <QWidget>

namespace tavrin {

namespace {

constexpr int kNearlyAll = 64;  // pixels that a window may leave free and still fill the screen

}  // namespace

NormalPlace::NormalPlace(QWidget& window) : m_window(window) { m_window.installEventFilter(this); }

NormalPlace::~NormalPlace() { m_window.removeEventFilter(this); }

QPoint NormalPlace::Position() const { return IsNormal() || !m_size.isValid() ? m_window.pos() : m_position; }

QSize NormalPlace::Size() const { return IsNormal() || !m_size.isValid() ? m_window.size() : m_size; }

bool NormalPlace::IsNormal() const {
    return (m_window.windowState() & (Qt::WindowMaximized | Qt::WindowMinimized | Qt::WindowFullScreen)) == 0;
}

bool NormalPlace::FillsScreen() const {
    const QSize room = m_window.screen()->availableSize() - QSize(kNearlyAll, kNearlyAll);
    const QSize size = m_window.frameGeometry().size();
    return size.width() >= room.width() && size.height() >= room.height();
}

void NormalPlace::Note() {
    // One that fills the screen may be about to say that it is maximized.
    if (!IsNormal() || (m_size.isValid() && FillsScreen())) return;
    m_position = m_window.pos();
    m_size = m_window.size();
}

bool NormalPlace::eventFilter(QObject* object, QEvent* event) {
    const auto type = event->type();
    const bool counts = type == QEvent::Move || type == QEvent::Resize || type == QEvent::WindowStateChange;
    // Later, when position, size and state belong together: each is told by an event of its own.
    if (counts) QTimer::singleShot(0, this, [this] { Note(); });
    return QObject::eventFilter(object, event);
}

}  // namespace tavrin

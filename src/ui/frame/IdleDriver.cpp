// SPDX-License-Identifier: Apache-2.0
#include "ui/frame/IdleDriver.h"

#include <QCoreApplication>
#include <QEvent>

namespace tavrin {

IdleDriver::IdleDriver(std::function<void()> step) {
    m_timer.setSingleShot(true);
    m_timer.setInterval(0);
    m_timer.callOnTimeout(this, std::move(step));
    QCoreApplication::instance()->installEventFilter(this);
}

IdleDriver::~IdleDriver() { QCoreApplication::instance()->removeEventFilter(this); }

void IdleDriver::Request() {
    if (!m_timer.isActive()) m_timer.start();
}

bool IdleDriver::eventFilter(QObject*, QEvent* event) {
    switch (event->type()) {
        case QEvent::KeyPress:
        case QEvent::KeyRelease:
        case QEvent::MouseButtonPress:
        case QEvent::MouseButtonRelease:
        case QEvent::MouseButtonDblClick:
        case QEvent::Wheel:
        case QEvent::Shortcut:
        case QEvent::Drop:
        case QEvent::Show:
        case QEvent::Hide:
        case QEvent::Close:
        case QEvent::WindowStateChange:
        case QEvent::WindowActivate:
        case QEvent::WindowDeactivate:
            Request();
            break;
        default:
            break;
    }
    return false;
}

}  // namespace tavrin

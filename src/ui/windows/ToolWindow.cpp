// SPDX-License-Identifier: Apache-2.0
#include "ui/windows/ToolWindow.h"

#include <QCloseEvent>
#include <utility>

namespace tavrin {

namespace {

// To the window manager a utility of the frame: it keeps that over the frame, and where it was put. Plain
// windows it lets sink below, dialogs it moves. As a Qt::Tool the same would send the frame's shortcuts to
// the frame, Delete among them.
constexpr Qt::WindowType kFloating = Qt::Drawer;

}  // namespace

ToolWindow::ToolWindow(const QString& title, QWidget* frame) : QWidget(frame, kFloating) {
    setWindowTitle(title);
    setAttribute(Qt::WA_ShowWithoutActivating);
    setAttribute(Qt::WA_QuitOnClose, false);
}

void ToolWindow::Toggle() {
    if (IsUp()) {
        hide();
    } else {
        ComeUp();
    }
}

void ToolWindow::ComeUp() {
    if (isMinimized()) {
        showNormal();
    } else {
        show();
    }
    raise();
}

void ToolWindow::setVisible(bool visible) {
    if (visible && m_firstPlace) move(std::exchange(m_firstPlace, {})());
    QWidget::setVisible(visible);
}

void ToolWindow::closeEvent(QCloseEvent* event) {
    Closing();
    event->ignore();
    hide();
}

void ToolWindow::showEvent(QShowEvent* event) {
    QWidget::showEvent(event);
    if (m_observer) m_observer();
}

void ToolWindow::hideEvent(QHideEvent* event) {
    QWidget::hideEvent(event);
    if (m_observer) m_observer();
}

}  // namespace tavrin

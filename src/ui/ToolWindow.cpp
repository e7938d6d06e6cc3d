#include "ui/ToolWindow.h"

#include <QCloseEvent>

namespace tavrin {

ToolWindow::ToolWindow(const QString& title, QWidget* frame) : QWidget(frame, Qt::Window) {
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

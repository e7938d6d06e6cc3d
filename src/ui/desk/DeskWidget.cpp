// SPDX-License-Identifier: Apache-2.0
#include "ui/desk/DeskWidget.h"

#include <QApplication>
#include <QMouseEvent>
#include <QOpenGLContext>
#include <QTimer>
#include <utility>

#include "ui/desk/DeskContext.h"

namespace tavrin {

namespace {

constexpr int kGestureTick = 10;  // milliseconds
constexpr int kUnsteadyHand = 3;  // pixels by which the pointer may move in a click that is no drag

PointerState StateOf(const QMouseEvent& event) {
    const QPointF at = event.position();
    const auto buttons = event.buttons();
    const auto keys = event.modifiers();
    return {{static_cast<float>(at.x()), static_cast<float>(at.y())},
            buttons.testFlag(Qt::LeftButton),
            buttons.testFlag(Qt::MiddleButton),
            buttons.testFlag(Qt::RightButton),
            keys.testFlag(Qt::ShiftModifier),
            keys.testFlag(Qt::ControlModifier)};
}

}  // namespace

DeskWidget::DeskWidget(QWidget* parent, DeskGestures& gestures, Hooks hooks)
    : QOpenGLWidget(parent), m_gestures(gestures), m_hooks(std::move(hooks)) {
    setMouseTracking(true);
}

void DeskWidget::initializeGL() {
    if (!ContextFault(context()).empty()) {
        Fail();
        return;
    }
    m_hooks.contextIsNew();
}

void DeskWidget::paintGL() {
    if (m_usable) m_hooks.paint();
}

void DeskWidget::paintEvent(QPaintEvent* event) {
    if (!isValid()) Fail();
    QOpenGLWidget::paintEvent(event);
}

// Later, from the event loop: a box can hardly be shown in the midst of a paint.
void DeskWidget::Fail() {
    if (!m_usable) return;
    m_usable = false;
    QTimer::singleShot(0, this, [this] { m_hooks.fail(ContextFault(context())); });
}

// The base class paints here and now, and nothing paints again: the new size is to be known before.
void DeskWidget::resizeEvent(QResizeEvent* event) {
    m_hooks.resized();
    QOpenGLWidget::resizeEvent(event);
}

// Where the release of a button that is down will not be told of, its gesture ends at once: nothing may go on
// to scroll behind a box or on a locked desk.
bool DeskWidget::event(QEvent* event) {
    switch (event->type()) {
        case QEvent::WindowBlocked:
        case QEvent::EnabledChange:
            m_rightPress.reset();
            m_gestures.Cancel();
            m_gestures.PointerLeft();
            RunTimer();
            break;
        default:
            break;
    }
    return QOpenGLWidget::event(event);
}

void DeskWidget::mousePressEvent(QMouseEvent* event) {
    RightDown(*event);
    if (event->button() == Qt::LeftButton) {
        m_gestures.LeftDown(StateOf(*event));
    } else {
        m_gestures.OtherDown(StateOf(*event));
    }
    RunTimer();
}

void DeskWidget::mouseMoveEvent(QMouseEvent* event) {
    m_gestures.Move(StateOf(*event));
    FollowCorner();
    const bool pans = event->modifiers().testFlag(Qt::ShiftModifier);
    if (m_rightPress && pans && (event->pos() - *m_rightPress).manhattanLength() > kUnsteadyHand)
        m_rightPress.reset();
    RunTimer();
}

void DeskWidget::mouseReleaseEvent(QMouseEvent* event) {
    if (event->button() == Qt::LeftButton) m_gestures.LeftUp(StateOf(*event));
    RunTimer();
    RightUp(*event);
}

void DeskWidget::leaveEvent(QEvent* event) {
    m_gestures.PointerLeft();
    QOpenGLWidget::leaveEvent(event);
}

void DeskWidget::mouseDoubleClickEvent(QMouseEvent* event) {
    const bool isLeft = event->buttons() == Qt::LeftButton;
    if (isLeft && m_hooks.doubleClicked(event->pos())) return;
    QOpenGLWidget::mouseDoubleClickEvent(event);
}

// The pointer tells in which direction a corner may be dragged.
void DeskWidget::FollowCorner() {
    const auto corner = m_gestures.HotCorner();
    if (!corner) return unsetCursor();
    const bool rises = *corner % 2 == 0;
    setCursor(rises ? Qt::SizeBDiagCursor : Qt::SizeFDiagCursor);
}

// With any other button it is no click.
void DeskWidget::RightDown(const QMouseEvent& event) {
    m_rightPress.reset();
    if (event.buttons() == Qt::RightButton) m_rightPress = event.pos();
}

void DeskWidget::RightUp(const QMouseEvent& event) {
    if (event.button() != Qt::RightButton) return;
    const bool isClick = std::exchange(m_rightPress, std::nullopt).has_value();
    if (isClick && rect().contains(event.pos())) m_hooks.menuWanted(event.pos());
}

void DeskWidget::timerEvent(QTimerEvent* event) {
    if (event->timerId() == m_timer.timerId()) {
        if (QApplication::activePopupWidget() != nullptr) m_gestures.Cancel();  // it takes the release
        m_gestures.Tick();
        RunTimer();
    } else {
        QOpenGLWidget::timerEvent(event);
    }
}

void DeskWidget::RunTimer() {
    if (m_gestures.Current() == DeskGestures::Kind::kIdle) {
        m_timer.stop();
    } else if (!m_timer.isActive()) {
        m_timer.start(kGestureTick, this);
    }
}

}  // namespace tavrin

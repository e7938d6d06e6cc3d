#include "ui/desk/DeskWidget.h"

#include <QMouseEvent>
#include <QOpenGLContext>
#include <QTimer>

namespace tavrin {

namespace {

constexpr int kGestureTick = 10;  // milliseconds
constexpr const char* kNoContext =
    "FATAL ERROR: the desk needs OpenGL 1.1 or later with the compatibility profile";

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
    const QSurfaceFormat got = context()->format();
    if (context()->isOpenGLES() || got.profile() == QSurfaceFormat::CoreProfile ||
        got.version() < qMakePair(1, 1)) {
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
    QTimer::singleShot(0, this, [this] { m_hooks.fail(kNoContext); });
}

void DeskWidget::resizeEvent(QResizeEvent* event) {
    QOpenGLWidget::resizeEvent(event);
    m_hooks.resized();
}

void DeskWidget::mousePressEvent(QMouseEvent* event) {
    if (event->button() == Qt::LeftButton) m_gestures.LeftDown(StateOf(*event));
    RunTimer();
}

void DeskWidget::mouseMoveEvent(QMouseEvent* event) {
    m_gestures.Move(StateOf(*event));
    RunTimer();
}

void DeskWidget::mouseReleaseEvent(QMouseEvent* event) {
    if (event->button() == Qt::LeftButton) m_gestures.LeftUp(StateOf(*event));
    RunTimer();
}

void DeskWidget::timerEvent(QTimerEvent* event) {
    if (event->timerId() == m_timer.timerId()) {
        m_gestures.Tick();
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

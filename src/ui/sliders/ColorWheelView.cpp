// SPDX-License-Identifier: Apache-2.0
#include "ui/sliders/ColorWheelView.h"

#include <QMouseEvent>
#include <QPointer>
#include <utility>

namespace tavrin {

namespace {

// Edges are smooth with these; the desk has none, whose copies of pixels need that.
constexpr int kSamples = 4;

WheelPoint PlaceOf(const QMouseEvent& event) { return {event.position().x(), event.position().y()}; }

Color ColorIn(const QColor& color) {
    return {static_cast<float>(color.redF()), static_cast<float>(color.greenF()),
            static_cast<float>(color.blueF())};
}

}  // namespace

CColorWheel::CColorWheel(QWidget* parent, int side, Hooks hooks)
    : QOpenGLWidget(parent), m_hooks(std::move(hooks)), m_wheel(side) {
    QSurfaceFormat smooth = format();
    smooth.setSamples(kSamples);
    setFormat(smooth);
    setFixedSize(side, side);
    setMouseTracking(true);  // a move without the button is to be heard
    setAccessibleName("ColorWheel");
}

CColorWheel::~CColorWheel() { EndDrag(); }

void CColorWheel::SetColor(const Color& color) {
    m_wheel.SetColor(color);
    update();
}

void CColorWheel::EndDrag() {
    m_wheel.Release();
    Tell(false);
}

// Where the release of the button will not be told of, the drag ends at once.
bool CColorWheel::event(QEvent* event) {
    switch (event->type()) {
        case QEvent::Hide:
        case QEvent::WindowBlocked:
            EndDrag();
            break;
        case QEvent::EnabledChange:
            EndDrag();
            break;
        default:
            break;
    }
    return QOpenGLWidget::event(event);
}

void CColorWheel::paintGL() {
    m_painter.Paint(m_wheel, {.ground = ColorIn(palette().color(QPalette::Window)),
                              .pixelRatio = devicePixelRatioF(),
                              .isDimmed = !isEnabled()});
}

void CColorWheel::mousePressEvent(QMouseEvent* event) {
    if (event->button() == Qt::LeftButton) Tell(m_wheel.Press(PlaceOf(*event)));
}

// Without the button nothing; a drag of which the end was never told is over then.
void CColorWheel::mouseMoveEvent(QMouseEvent* event) {
    if (event->buttons().testFlag(Qt::LeftButton)) {
        Tell(m_wheel.Drag(PlaceOf(*event)));
    } else {
        EndDrag();
    }
}

void CColorWheel::mouseReleaseEvent(QMouseEvent* event) {
    if (event->button() == Qt::LeftButton) EndDrag();
}

// What the hand has done. Each hook is called from a copy: it may destroy the wheel and itself with it.
void CColorWheel::Tell(bool moved) {
    const QPointer<CColorWheel> self(this);
    if (moved) update();
    const bool isHeld = m_wheel.Held() != ColorWheel::Part::kNone;
    if (isHeld != m_isDragTold) {
        m_isDragTold = isHeld;
        const auto dragged = m_hooks.dragged;
        dragged(isHeld);
    }
    if (!moved || self == nullptr || !m_isDragTold) return;
    const auto picked = m_hooks.picked;
    picked(m_wheel.MarkerColor());
}

}  // namespace tavrin

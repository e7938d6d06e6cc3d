// SPDX-License-Identifier: Apache-2.0
#include "ui/sliders/PixelPicker.h"

#include <QGuiApplication>
#include <QImage>
#include <QKeyEvent>
#include <QMouseEvent>
#include <QPixmap>
#include <QScreen>
#include <algorithm>
#include <cmath>
#include <utility>

#include "sliders/NumberText.h"
#include "text/Report.h"

namespace tavrin {

namespace {

constexpr double kByteShare = 0.00392156862745098;  // 1/255

QPoint PixelOf(QPointF place) {
    return {static_cast<int>(std::floor(place.x())), static_cast<int>(std::floor(place.y()))};
}

// Which of the device's pixels in a window pixel the place is in.
int DevicePixel(double place, int count) {
    return std::min(static_cast<int>((place - std::floor(place)) * count), count - 1);
}

std::optional<QRgb> SeenAt(QPointF place) {
    const QPoint pixel = PixelOf(place);
    QScreen* screen = QGuiApplication::screenAt(pixel);
    if (screen == nullptr) return std::nullopt;
    const QPoint onScreen = pixel - screen->geometry().topLeft();
    const QImage seen = screen->grabWindow(0, onScreen.x(), onScreen.y(), 1, 1).toImage();
    if (seen.isNull()) return std::nullopt;
    return seen.pixel(DevicePixel(place.x(), seen.width()), DevicePixel(place.y(), seen.height()));
}

float Component(int byte) { return RoundedToThousandths(static_cast<float>(byte * kByteShare)); }

void NoteDisabled(Report& report) {
    static bool isNoted = false;
    if (!std::exchange(isNoted, true)) report.LogLine("disabled pixel pickers as screen reads unsupported");
}

}  // namespace

// An X server below another display gives what its own windows show, and black for all else.
ScreenReader PlatformScreenReader() {
    const bool isWhole =
        QGuiApplication::platformName() == "xcb" && qEnvironmentVariableIsEmpty("WAYLAND_DISPLAY");
    return isWhole ? ScreenReader(SeenAt) : ScreenReader();
}

CPixelPicker::CPixelPicker(QWidget* parent, Report& report, ScreenReader reader)
    : QPushButton("CPICK", parent), m_reader(std::move(reader)) {
    setToolTip("Press here and drag to any place on the screen: its color is taken");
    if (m_reader) return;
    setEnabled(false);
    NoteDisabled(report);
}

void CPixelPicker::SetTracking(bool tracks) {
    if (tracks == m_tracking) return;
    m_tracking = tracks;
    if (tracks) {
        setCursor(Qt::CrossCursor);
    } else {
        unsetCursor();
    }
}

bool CPixelPicker::event(QEvent* event) {
    switch (event->type()) {
        case QEvent::Hide:
        case QEvent::EnabledChange:
        case QEvent::WindowBlocked:
            SetTracking(false);
            break;
        // Which may be the key of a command.
        case QEvent::ShortcutOverride:
            if (m_tracking && static_cast<QKeyEvent*>(event)->key() == Qt::Key_Escape) event->accept();
            break;
        case QEvent::KeyPress:
            if (static_cast<QKeyEvent*>(event)->key() == Qt::Key_Escape) SetTracking(false);
            break;
        default:
            break;
    }
    return QPushButton::event(event);
}

void CPixelPicker::mousePressEvent(QMouseEvent* event) {
    if (event->button() == Qt::LeftButton && m_reader) SetTracking(true);
    QPushButton::mousePressEvent(event);
}

void CPixelPicker::mouseMoveEvent(QMouseEvent* event) {
    if (!m_tracking) QPushButton::mouseMoveEvent(event);
}

void CPixelPicker::mouseReleaseEvent(QMouseEvent* event) {
    const bool isPick = m_tracking && event->button() == Qt::LeftButton;
    const QPointF place = event->globalPosition();
    const bool isOutside = !rect().contains(PixelOf(event->position()));
    if (isPick) SetTracking(false);
    QPushButton::mouseReleaseEvent(event);
    if (isPick && isOutside) Pick(place);
}

void CPixelPicker::Pick(QPointF place) {
    if (!m_callback) return;
    const std::optional<QRgb> color = m_reader(place);
    if (!color) return;
    const auto callback = m_callback;  // which may destroy the picker, and itself with it
    callback(Component(qRed(*color)), Component(qGreen(*color)), Component(qBlue(*color)));
}

}  // namespace tavrin

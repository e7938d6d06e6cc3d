// SPDX-License-Identifier: Apache-2.0
// A drag on the wheel of an open color picker: what one step costs, from the mouse's event until all six
// fields, the swatch and the wheel are painted; on the ring and in the triangle. Wants a display. The floor
// is a window of that size with a wheel's window in it that only clears itself.
#include "ui/sliders/ColorPicker.h"

#include <QApplication>
#include <QElapsedTimer>
#include <QMouseEvent>
#include <QOpenGLFunctions>
#include <cmath>
#include <cstdio>
#include <functional>

#include "ui/desk/DeskContext.h"
#include "ui/sliders/ColorWheelView.h"

namespace {

using namespace tavrin;

constexpr int kSteps = 200;

void Send(QWidget& wheel, QEvent::Type type, QPointF at) {
    const bool isMove = type == QEvent::MouseMove;
    QMouseEvent event(type, at, wheel.mapToGlobal(at), isMove ? Qt::NoButton : Qt::LeftButton,
                      type == QEvent::MouseButtonRelease ? Qt::NoButton : Qt::LeftButton, {});
    QApplication::sendEvent(&wheel, &event);
}

// `step` changes what the wheel shows; the time is over when the window with all that is on the screen.
void Measure(const char* what, QOpenGLWidget& wheel, const std::function<void(int)>& step) {
    int frames = 0;
    const auto counter = QObject::connect(&wheel, &QOpenGLWidget::frameSwapped, [&frames] { ++frames; });
    while (frames == 0) QApplication::processEvents(QEventLoop::WaitForMoreEvents);
    double longest = 0;
    double total = 0;
    for (int i = 0; i < kSteps; ++i) {
        QApplication::processEvents();
        const int before = frames;
        QElapsedTimer clock;
        clock.start();
        step(i);
        while (frames == before) QApplication::processEvents(QEventLoop::WaitForMoreEvents);
        const double taken = double(clock.nsecsElapsed()) / 1e6;
        total += taken;
        longest = std::max(longest, taken);
    }
    QObject::disconnect(counter);
    std::printf("picker %-28s %4d steps  mean %6.2f ms  longest %6.2f ms\n", what, kSteps, total / kSteps,
                longest);
}

class Cleared : public QOpenGLWidget {
  public:
    using QOpenGLWidget::QOpenGLWidget;

  protected:
    void paintGL() override {
        context()->functions()->glClearColor(0.5F, 0.5F, 0.5F, 1);
        context()->functions()->glClear(GL_COLOR_BUFFER_BIT);
    }
};

void MeasureFloor(QSize size, int side) {
    QWidget window;
    window.setFixedSize(size);
    Cleared wheel(&window);
    wheel.setFixedSize(side, side);
    window.show();
    Measure("floor: clears only", wheel, [&wheel](int) { wheel.update(); });
}

}  // namespace

int main(int argc, char** argv) {
    QSurfaceFormat::setDefaultFormat(DeskFormat());
    QApplication application(argc, argv);
    QWidget owner;
    CColorPicker picker(&owner);
    int told = 0;
    picker.SetCallback([&told](float, float, float) { ++told; });
    picker.Open("Color");
    auto& wheel = *picker.findChild<CColorWheel*>();
    const double side = wheel.width();
    const auto around = [side](int step, double radius) {
        const double angle = kWholeTurn * step / kSteps;
        return QPointF(side * (0.5 + radius * std::sin(angle)), side * (0.5 - radius * std::cos(angle)));
    };
    Send(wheel, QEvent::MouseButtonPress, around(-1, 0.4));
    Measure("drag on the ring", wheel, [&](int i) { Send(wheel, QEvent::MouseMove, around(i, 0.4)); });
    Send(wheel, QEvent::MouseButtonRelease, around(0, 0.4));
    Send(wheel, QEvent::MouseButtonPress, around(-1, 0.12));
    Measure("drag in the triangle", wheel, [&](int i) { Send(wheel, QEvent::MouseMove, around(i, 0.12)); });
    Send(wheel, QEvent::MouseButtonRelease, around(0, 0.12));
    MeasureFloor(picker.size(), wheel.width());
    return told >= 2 * kSteps ? 0 : 1;
}

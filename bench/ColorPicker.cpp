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

// `step` changes what the window shows; what that asked to be painted is painted in the same step.
void Measure(const char* what, QWidget& window, const std::function<void(int)>& step) {
    for (int i = 0; i < 10; ++i) QApplication::processEvents(QEventLoop::AllEvents, 20);
    QElapsedTimer clock;
    double longest = 0;
    double total = 0;
    for (int i = 0; i < kSteps; ++i) {
        clock.start();
        step(i);
        window.repaint();
        const double taken = double(clock.nsecsElapsed()) / 1e6;
        total += taken;
        longest = std::max(longest, taken);
        QApplication::processEvents();
    }
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
    Measure("floor: clears only", window, [&wheel](int) { wheel.update(); });
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
    Measure("drag on the ring", picker, [&](int i) { Send(wheel, QEvent::MouseMove, around(i, 0.4)); });
    Send(wheel, QEvent::MouseButtonRelease, around(0, 0.4));
    Send(wheel, QEvent::MouseButtonPress, around(-1, 0.12));
    Measure("drag in the triangle", picker, [&](int i) { Send(wheel, QEvent::MouseMove, around(i, 0.12)); });
    Send(wheel, QEvent::MouseButtonRelease, around(0, 0.12));
    MeasureFloor(picker.size(), wheel.width());
    return told >= 2 * kSteps ? 0 : 1;
}

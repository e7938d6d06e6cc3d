// SPDX-License-Identifier: Apache-2.0
// The window of the colour wheel.
#pragma once

#include <QOpenGLWidget>
#include <functional>

#include "sliders/ColorWheel.h"
#include "ui/sliders/WheelPainter.h"

namespace tavrin {

// A square in which the user drags the hue on a ring, and its mix with white and black in a triangle. A child
// of the picker, which it only tells what was picked; owns its context. Takes no focus.
class CColorWheel : public QOpenGLWidget {
  public:
    // What they do of the mouse's doing may destroy the wheel.
    struct Hooks {
        std::function<void(const Color&)> picked;  // by the user, not rounded
        // A drag begins or has ended, each begin has one end: the release, or the wheel being hidden,
        // disabled or destroyed, or a box that takes the mouse.
        std::function<void(bool begins)> dragged;
    };
    CColorWheel(QWidget* parent, int side, Hooks hooks);  // in pixels
    ~CColorWheel() override;

    const ColorWheel& Wheel() const { return m_wheel; }
    void SetColor(const Color& color);
    // What the release of the button does.
    void EndDrag();

  protected:
    bool event(QEvent* event) override;
    void paintGL() override;
    void mousePressEvent(QMouseEvent* event) override;
    void mouseMoveEvent(QMouseEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;

  private:
    void Tell(bool moved);

    Hooks m_hooks;
    ColorWheel m_wheel;
    WheelPainter m_painter;
    bool m_isDragTold = false;
};

}  // namespace tavrin

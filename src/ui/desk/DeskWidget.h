// SPDX-License-Identifier: Apache-2.0
// The desk's window: the OpenGL context and the pointer.
#pragma once

#include <QBasicTimer>
#include <QOpenGLWidget>
#include <functional>
#include <optional>
#include <string>

#include "desk/DeskGestures.h"

namespace tavrin {

// Owns the context and forwards events; knows nothing of networks. Owned by the pane.
class DeskWidget : public QOpenGLWidget {
  public:
    struct Hooks {
        std::function<void()> contextIsNew;
        std::function<void()> paint;  // the context is current
        std::function<void()> resized;
        std::function<void(const std::string&)> fail;  // the platform cannot draw a desk; called once
        std::function<void(QPoint)> menuWanted;        // by a click of the right button there
        // Whether something there takes a double click of the left button, which is a press otherwise.
        std::function<bool(QPoint)> doubleClicked;
    };
    DeskWidget(QWidget* parent, DeskGestures& gestures, Hooks hooks);

  protected:
    bool event(QEvent* event) override;
    void initializeGL() override;
    void paintGL() override;
    void paintEvent(QPaintEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void mouseMoveEvent(QMouseEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;
    void mouseDoubleClickEvent(QMouseEvent* event) override;
    void leaveEvent(QEvent* event) override;
    void timerEvent(QTimerEvent* event) override;

  private:
    void Fail();
    void RunTimer();
    void FollowCorner();
    void RightDown(const QMouseEvent& event);
    void RightUp(const QMouseEvent& event);

    DeskGestures& m_gestures;
    Hooks m_hooks;
    QBasicTimer m_timer;
    std::optional<QPoint>
        m_rightPress;  // where the right button went down, while its release may open a menu
    bool m_usable = true;
};

}  // namespace tavrin
